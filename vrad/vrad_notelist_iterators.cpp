#include <algorithm>
#include <utility>

#include "cmn/cmn_assert.h"
#include "foundation/ticktimesmatter.h"
#include "foundation/time_convert.h"
#include "vrad/vrad_notelist.h"
#include "vrad/vrad_sortedstore.h"

Vrad_NoteListBase::FullNotesInRangeIter::FullNotesInRangeIter()
    : mListP(0), mEndTime(0, Time_eType_Samples) {}

Vrad_NoteListBase::FullNotesInRangeIter::FullNotesInRangeIter(Vrad_NoteListBase * iListP)
    : mListP(iListP), mEndTime(0, Time_eType_Samples) {
  if (!iListP) return;
  Notes const & notes = iListP->mNotes;
  mEnd = notes.Size();
  if (notes.empty()) return;
  mEndTime = notes.back().mTime;
  ++mEndTime;  // so that the last notes are in the range
}

Vrad_NoteListBase::FullNotesInRangeIter::FullNotesInRangeIter(Vrad_NoteListBase * iListP,
                                                              Time_Typed iStart, Time_Typed iEnd)
    : mListP(iListP) {
  SetRange(iStart, iEnd);
}

void Vrad_NoteListBase::FullNotesInRangeIter::SetRange(Time_Typed iStart, Time_Typed iEnd) {
  mEndTime = iEnd;
  mRunLeft = 0;
  if (!mListP) return;
  Notes const & notes = mListP->mNotes;
  mIndex = Vrad_LowerBound(notes, iStart);
  mEnd = notes.Size();
}

// In a list of the range's unit a run goes to the end of a chunk or of the range. In any other list
// it is one note: each is compared when its turn comes.
bool Vrad_NoteListBase::FullNotesInRangeIter::FindRun() const {
  mRunLeft = 0;
  if (!CMN_CHECK(mListP != 0, "mListP != 0") || mIndex >= mEnd) return false;
  Cmn_ChunkyVecImpl const & notes = mListP->mNotes.GetImpl();
  char const * first = nullptr;
  bool isLast = false;
  if (Vrad_HasKeysFor(mListP->mNotes, mEndTime.GetType())) {
    int const num = notes.GetSpanBefore(mIndex, mEndTime.AsInt64(), &first, &isLast);
    mRunLeft = std::min(num, mEnd - mIndex);
    if (isLast) mEnd = mIndex + mRunLeft;
  } else {
    first = notes.GetConstPtr(mIndex);
  }
  mNoteP = reinterpret_cast<Vrad_NoteListBase_Note const *>(first);
  if (mNoteP && !isLast && mRunLeft == 0 && mNoteP->mTime < mEndTime) mRunLeft = 1;
  mStamp = notes.GetStamp();
  return mRunLeft > 0;
}

bool Vrad_NoteListBase::FullNotesInRangeIter::FindRunOrReport() const {
  return CMN_CHECK(this->IsMore(), "this->IsMore()");
}

Vrad_NoteListBase_Note const & Vrad_NoteListBase::FullNotesInRangeIter::BlankNote() {
  static Vrad_NoteListBase_Note const sBlank;
  return sBlank;
}

void Vrad_NoteListBase::FullNotesInRangeIter::ChangeCurrentNote(
    Vrae_NoteWithDurationEvent const & iNew) {
  if (!IsInRun() && !FindRunOrReport()) return;
  mListP->ChangeNote(std::as_const(mListP->mNotes).At(mIndex), iNew);
}

// Passes over notes whose ends are known not to lie after the time, whole chunks at once, if need
// be past the range. Without keys for these times it stays where it is: the caller then looks at
// each note.
void Vrad_NoteListBase::FullNotesInRangeIter::SkipToEndAfter(Time_Typed iTime) {
  if (!mListP) return;
  if (!Vrad_HasKeysFor(mListP->mNotes, iTime.GetType())) return;
  int const found = mListP->mNotes.GetImpl().FindExtentAbove(mIndex, mEnd, iTime.AsInt64());
  int const num = found - mIndex;
  mIndex = found;
  if (num < mRunLeft) {
    mNoteP += num;
    mRunLeft -= num;
  } else {
    mRunLeft = 0;
  }
}

Vrad_NoteListBase::NotesExtendedEventInRangeIter::NotesExtendedEventInRangeIter() = default;
Vrad_NoteListBase::NotesExtendedEventInRangeIter::NotesExtendedEventInRangeIter(
    NotesExtendedEventInRangeIter const &) = default;
Vrad_NoteListBase::NotesExtendedEventInRangeIter &
Vrad_NoteListBase::NotesExtendedEventInRangeIter::operator=(NotesExtendedEventInRangeIter const &) =
    default;
Vrad_NoteListBase::NotesExtendedEventInRangeIter::~NotesExtendedEventInRangeIter() = default;

Vrad_NoteListBase::NotesExtendedEventInRangeIter::NotesExtendedEventInRangeIter(
    Vrad_NoteListBase * iListP)
    : mIter(iListP) {}

Vrad_NoteListBase::NotesExtendedEventInRangeIter::NotesExtendedEventInRangeIter(
    Vrad_NoteListBase * iListP, Time_TypedLength iOffset, Time_Typed iStart, Time_Typed iEnd,
    bool iFlag)
    : mIter(iListP) {
  bool const isOpen = iStart == Time_Typed::MinTime(Time_eType_Ticks);
  if (!TickTimesMatter::Active() && iStart.GetType() != Time_eType_Samples && !isOpen) {
    Time_Typed start, end;
    Time_Convert::MakeTickRangeSampleBased(iStart - iOffset, iEnd - iOffset, iFlag, start, end);
    iStart = start + iOffset;
    iEnd = end + iOffset;
  }
  mIter.SetRange(iStart, iEnd);
}

bool Vrad_NoteListBase::NotesExtendedEventInRangeIter::IsMore() const {
  return mIter.IsMore();
}

void Vrad_NoteListBase::NotesExtendedEventInRangeIter::operator++() {
  ++mIter;
}

Vrad_ExtendedEvent Vrad_NoteListBase::NotesExtendedEventInRangeIter::operator*() const {
  return ToExtendedEvent(*mIter);
}

void Vrad_NoteListBase::NotesExtendedEventInRangeIter::ChangeCurrentNote(
    Vrae_NoteWithDurationEvent const & iNew) {
  mIter.ChangeCurrentNote(iNew);
}

Vrad_NoteListBase::FullSustainingNoteIter::FullSustainingNoteIter(Vrad_NoteListBase * iListP,
                                                                  Time_Typed iTime)
    : mListP(iListP), mTime(iTime), mInLongNoteList(false) {
  if (!iListP) return;
  Vrad_NoteListBase * const longP = iListP->mLongNoteListP.Get();
  Time_Typed const split = iListP->SplitTime(iTime);
  if (longP) {
    mIter = FullNotesInRangeIter(longP, longP->TimeOfFirstNote(), split);
    mInLongNoteList = mIter.IsMore();
  }
  if (!mInLongNoteList) {
    mIter = FullNotesInRangeIter(iListP, longP ? split : iListP->TimeOfFirstNote(), iTime);
  }
  FindSustaining();
}

bool Vrad_NoteListBase::FullSustainingNoteIter::IsMore() const {
  return mInLongNoteList || mIter.IsMore();
}

Vrad_NoteListBase_Note const & Vrad_NoteListBase::FullSustainingNoteIter::operator*() const {
  return CMN_CHECK(this->IsMore(), "this->IsMore()") ? *mIter : FullNotesInRangeIter::BlankNote();
}

void Vrad_NoteListBase::FullSustainingNoteIter::operator++() {
  AdvanceToNext();
}

void Vrad_NoteListBase::FullSustainingNoteIter::AdvanceToNext() {
  if (!mInLongNoteList && !CMN_CHECK(this->IsMore(), "this->IsMore()")) return;
  ++mIter;
  FindSustaining();
}

// From the current note on, the first that sustains. The two walks meet at the split time, so no
// note comes twice.
void Vrad_NoteListBase::FullSustainingNoteIter::FindSustaining() {
  for (;;) {
    mIter.SkipToEndAfter(mTime);
    if (mInLongNoteList && !mIter.IsMore()) {
      mIter = FullNotesInRangeIter(mListP, mListP->SplitTime(mTime), mTime);
      mInLongNoteList = false;
      continue;
    }
    if (!mIter.IsMore() || CheckSustain()) return;
    ++mIter;
  }
}

bool Vrad_NoteListBase::FullSustainingNoteIter::CheckSustain() const {
  Vrad_NoteListBase_Note const & note = *mIter;
  return note.mTime + note.mEvent.GetDuration() > mTime;
}

Vrad_NoteListBase::SustainingNoteIter::SustainingNoteIter(Vrad_NoteListBase * iListP,
                                                          Time_Typed iTime)
    : mIter(iListP, iTime) {}

bool Vrad_NoteListBase::SustainingNoteIter::IsMore() const {
  return mIter.IsMore();
}

void Vrad_NoteListBase::SustainingNoteIter::operator++() {
  ++mIter;
}

Vrad_NoteWithDurationExtendedEvent Vrad_NoteListBase::SustainingNoteIter::operator*() const {
  return ToExtendedEvent(*mIter);
}

// What is missed by the long note list starts at or after the split time: a note that starts
// earlier reaches the instant only if it lasts the whole threshold. The 2 is exact.
Time_Typed Vrad_NoteListBase::SplitTime(Time_Typed iTime) const {
  Time_TypedLength const margin(2, iTime.GetType());
  return iTime - GetLongNoteDuration(iTime.GetType()) + margin;
}
