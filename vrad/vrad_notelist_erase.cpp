// Erasing the notes of another list; erasing and copying what starts in a range.
#include <algorithm>
#include <vector>

#include "vrad/vrad_notelist.h"
#include "vrad/vrad_sortedstore.h"

namespace {

typedef Cmn_ChunkyPODVector<Vrad_NoteListBase_Note> Notes;
typedef Vrad_StoreCursor<Vrad_NoteListBase_Note> Cursor;

bool IsBlank(Vrad_NoteListBase_Note const & iNote) {
  return iNote.mEvent.GetType() == Vrae_Event::kNoEvent;
}

// The walk of an erasure: which notes are to go. Nothing is changed before it is over, since
// comparing events may throw.
class Erasure {
public:
  Erasure(Notes const & iNotes, int iFirst)
      : mNotes(iNotes), mFirst(iFirst), mCursor(iNotes, {iFirst, iNotes.Size()}) {}

  void Walk(Notes const & iGone) {
    Cursor gone(iGone, {0, iGone.Size()});
    while (!gone.IsAtEnd() && !mCursor.IsAtEnd()) {
      if (mCursor->mTime < gone->mTime) {
        LeaveGroup();
        mCursor.SkipBefore(gone->mTime);
      }
      if (mCursor.IsAtEnd()) return;
      if (gone->mTime < mCursor->mTime) {
        gone.SkipBefore(mCursor->mTime);
        continue;
      }
      FindInGroup(gone->mEvent);
      ++gone;
    }
  }

  /// What is to go, in order. Blank notes in the stretch that was walked, the notes of the cursor's
  /// time included, go along: a note found would have become one.
  std::vector<int> GetGone() {
    LeaveGroup();
    int last = mCursor.GetIndex();
    while (last < mNotes.Size() && mNotes[last].mTime == mNotes[mCursor.GetIndex()].mTime)
      ++last;
    bool const hasBlanks =
        (mNotes.GetImpl().Summarise(mFirst, last).mMarks & kStoreMark_NoEvent) != 0;
    if (!hasBlanks) return mGone;
    for (int i = mFirst; i < last; ++i)
      if (IsBlank(mNotes[i])) mGone.push_back(i);
    std::sort(mGone.begin(), mGone.end());
    mGone.erase(std::unique(mGone.begin(), mGone.end()), mGone.end());
    return mGone;
  }

private:
  // The cursor stays, so that a second equal note finds the next one. What has been found equals
  // nothing any more.
  void FindInGroup(Vrae_Event const & iEvent) {
    int const first = mCursor.GetIndex();
    while (mNumFront < mIsGone.size() && mIsGone[mNumFront])
      ++mNumFront;
    for (size_t i = mNumFront;; ++i) {
      int const index = first + static_cast<int>(i);
      if (index == mNotes.Size() || !(mNotes[index].mTime == mCursor->mTime)) return;
      if (i == mIsGone.size()) mIsGone.push_back(false);
      if (mIsGone[i] || !(mNotes[index].mEvent == iEvent)) continue;
      mIsGone[i] = true;
      return;
    }
  }
  void LeaveGroup() {
    for (size_t i = 0; i < mIsGone.size(); ++i)
      if (mIsGone[i]) mGone.push_back(mCursor.GetIndex() + static_cast<int>(i));
    mIsGone.clear();
    mNumFront = 0;
  }

  Notes const & mNotes;
  int const mFirst;
  Cursor mCursor;
  std::vector<bool> mIsGone;  // from the cursor on, of the notes of its time looked at so far
  size_t mNumFront = 0;       // of them in front are all gone
  std::vector<int> mGone;     // of the groups left behind
};

}  // namespace

void Vrad_NoteListBase::Erase(Vrad_NoteListBase * iOther) {
  if (iOther->mNotes.empty()) return;
  NdoAboutToModify();
  EraseEqual(iOther->mNotes);
  if (!mLongNoteListP) return;
  if (iOther->mLongNoteListP && HasThresholdsOf(*iOther))
    mLongNoteListP->Erase(iOther->mLongNoteListP.Get());
  else
    RegenerateLongNoteList();
}

// Puts together a new sequence of what stays, which shares what lies side by side.
void Vrad_NoteListBase::EraseEqual(Notes const & iGone) {
  Erasure erasure(mNotes, Vrad_LowerBound(mNotes, iGone.front().mTime));
  erasure.Walk(iGone);
  std::vector<int> const gone = erasure.GetGone();
  if (gone.empty()) return;
  Notes kept(mNotes);
  kept.Clear();
  int next = 0;
  for (int const index : gone) {
    kept.Append(mNotes, next, index);
    next = index + 1;
  }
  kept.Append(mNotes, next, mNotes.Size());
  mNotes = kept;
}

void Vrad_NoteListBase::EraseTimeRange(Time_Typed iStart, Time_Typed iEnd) {
  Vrad_IndexRange const range = {Vrad_LowerBound(mNotes, iStart), Vrad_LowerBound(mNotes, iEnd)};
  if (range.IsEmpty()) return;
  NdoAboutToModify();
  Vrad_EraseIndices(mNotes, range.mFirst, range.mLast);
  if (mLongNoteListP) mLongNoteListP->EraseTimeRange(iStart, iEnd);
}

// Copied first: the target may be this list.
void Vrad_NoteListBase::CopyTimeRange(Vrad_NoteListBase * iTarget, Time_Typed iStart,
                                      Time_Typed iEnd) const {
  Notes const notes(mNotes);
  iTarget->Clear();
  iTarget->mNotes.Append(notes, Vrad_LowerBound(notes, iStart), Vrad_LowerBound(notes, iEnd));
  iTarget->RegenerateLongNoteList();
}
