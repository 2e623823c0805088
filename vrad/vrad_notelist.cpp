#include "vrad/vrad_notelist.h"

#include <climits>
#include <cstring>
#include <iostream>
#include <string>

#include "cmn/cmn_assert.h"
#include "foundation/time_convert.h"
#include "vrad/vrad_sortedstore.h"

constinit bool gAvoidOverlapsAndDuplicates = false;

namespace {

// The order key is the start, the extent key the end. The end of a note whose duration is of
// another unit than its start moves with the tempo: nothing rules such a note out.
class NoteDigest final : public Cmn_ChunkyVecDigest {
public:
  static NoteDigest const * Get() {
    static NoteDigest const * const sOnly = new NoteDigest;  // outlives static lists
    return sOnly;
  }
  void Extract(char const * iRecords, int iNum, long long * oOrder, long long * oExtent,
               unsigned char * oMarks) const override {
    auto const * const notes = reinterpret_cast<Vrad_NoteListBase_Note const *>(iRecords);
    for (int i = 0; i < iNum; ++i) {
      Time_Typed const time = notes[i].mTime;
      auto const & event = notes[i].mEvent.mU.mNoteWithDuration;
      bool const hasEnd = event.mDurationType == time.GetType();
      Time_TypedLength const duration(event.mDuration, event.mDurationType);
      oOrder[i] = time.AsInt64();
      oExtent[i] = hasEnd ? (time + duration).AsInt64() : LLONG_MAX;
      int const mark = Vrad_StoreMarkOf(time.GetType()) | (hasEnd ? 0 : kStoreMark_NoExtent);
      bool const isBlank = notes[i].mEvent.GetType() == Vrae_Event::kNoEvent;
      oMarks[i] = static_cast<unsigned char>(mark | (isBlank ? kStoreMark_NoEvent : 0));
    }
  }
};

bool AreAlike(Time_TypedLength iA, Time_TypedLength iB) {
  return iA.AsInt64() == iB.AsInt64() && iA.GetType() == iB.GetType();
}

// Fractional pitches by their bits; other kinds have none.
bool HaveSameFraction(Vrae_Event const & iA, Vrae_Event const & iB) {
  if (iA.GetType() != Vrae_Event::kPitchToMIDINoteWithDuration) return true;
  return std::memcmp(&iA.mU.mPitchToMIDINoteWithDuration.mFractionalPitch,
                     &iB.mU.mPitchToMIDINoteWithDuration.mFractionalPitch, sizeof(float)) == 0;
}

bool AreAlike(Vrae_NoteWithDurationEvent const & iA, Vrae_NoteWithDurationEvent const & iB) {
  return iA.GetType() == iB.GetType() && iA.GetPitch() == iB.GetPitch() &&
         iA.GetOnVelocity() == iB.GetOnVelocity() && iA.GetOffVelocity() == iB.GetOffVelocity() &&
         AreAlike(iA.GetDuration(), iB.GetDuration()) && HaveSameFraction(iA, iB);
}

bool AreAlike(Vrad_NoteListBase_Note const & iA, Vrad_NoteListBase_Note const & iB) {
  return iA.mTime.AsInt64() == iB.mTime.AsInt64() && iA.mTime.GetType() == iB.mTime.GetType() &&
         AreAlike(iA.mEvent, iB.mEvent) && AreAlike(iA.mQuantizeTimeDelta, iB.mQuantizeTimeDelta) &&
         AreAlike(iA.mOrigEvent, iB.mOrigEvent) && iA.mMuted == iB.mMuted;
}

}  // namespace

Vrad_NoteListBase::Vrad_NoteListBase(Ndo_Object::EUndoFlag iFlag, bool iQuantizeContents)
    : Ndo_Object(iFlag),
      mQuantizeContents(iQuantizeContents),
      mNotes(NoteDigest::Get()),
      mLongNoteDuration{Time_TypedLength(0, Time_eType_Samples),
                        Time_TypedLength(0, Time_eType_Ticks),
                        Time_TypedLength(0, Time_eType_Ticks)} {}

Vrad_NoteListBase::Vrad_NoteListBase(Vrad_NoteListBase const & iOther)
    : Ndo_Object(iOther), mQuantizeContents(iOther.mQuantizeContents), mNotes(iOther.mNotes) {
  ShareLongNoteList(iOther.mLongNoteListP);
  for (int i = 0; i < 3; ++i)
    mLongNoteDuration[i] = iOther.mLongNoteDuration[i];
}

Vrad_NoteListBase & Vrad_NoteListBase::operator=(Vrad_NoteListBase const & iOther) {
  if (this == &iOther) return *this;
  NdoAboutToModify();
  Ndo_Object::operator=(iOther);
  mQuantizeContents = iOther.mQuantizeContents;
  mNotes = iOther.mNotes;
  for (int i = 0; i < 3; ++i)
    mLongNoteDuration[i] = iOther.mLongNoteDuration[i];
  ShareLongNoteList(iOther.mLongNoteListP);
  return *this;
}

Vrad_NoteListBase::~Vrad_NoteListBase() {
  ShareLongNoteList(Ndo_Ptr<Vrad_NoteListBase>());
}

// A long note is copied first: the argument may be a note of this very list.
void Vrad_NoteListBase::AddNote(Vrad_NoteListBase_Note const & iNote) {
  NdoAboutToModify();
  if (!mLongNoteListP || !IsLong(iNote.mEvent)) {
    Vrad_InsertSorted(mNotes, iNote);
    return;
  }
  Vrad_NoteListBase_Note const note(iNote);
  Vrad_InsertSorted(mNotes, note);
  mLongNoteListP->AddNote(note);
}

void Vrad_NoteListBase::AddNote(Vrad_NoteWithDurationExtendedEvent const & iNote) {
  iNote.mEvent.AsNoteWithDuration();  // reports what is none
  AddNote(Vrad_NoteListBase_Note(iNote));
}

void Vrad_NoteListBase::EraseNote(Vrae_TimedEvent const & iNote) {
  auto const [isFound, iter] = FindNote(iNote.mTime, iNote.mEvent.AsNoteWithDuration());
  if (!isFound) return;
  if (mLongNoteListP && IsLong(iter->mEvent)) mLongNoteListP->EraseNote(iNote);
  NdoAboutToModify();
  mNotes.Erase(iter);
}

void Vrad_NoteListBase::ChangeNote(Time_Typed iTime, Vrae_NoteWithDurationEvent const & iOld,
                                   Vrae_NoteWithDurationEvent const & iNew) {
  auto const result = FindNote(iTime, iOld);
  if (!CMN_CHECK(result.first, "result.first")) return;
  ChangeNote(result.second, iNew);
}

// A note that becomes long enters the long note list as it was, old duration included.
void Vrad_NoteListBase::ChangeNote(iterator iIter, Vrae_NoteWithDurationEvent const & iNew) {
  Vrad_NoteListBase_Note const & former = *iIter;
  Vrad_NoteListBase_Note changed(former);
  changed.mEvent = iNew;
  if (mLongNoteListP) {
    bool const wasLong = IsLong(former.mEvent);
    bool const isLong = IsLong(changed.mEvent);
    if (wasLong && isLong) {
      mLongNoteListP->ChangeNote(former.mTime, former.mEvent, changed.mEvent);
    } else if (wasLong) {
      mLongNoteListP->EraseNote(Vrae_TimedEvent(former.mTime, former.mEvent));
    } else if (isLong) {
      mLongNoteListP->AddNote(former);
    }
  }
  NdoAboutToModify();
  mNotes.Replace(iIter.GetIndex(), changed);
}

void Vrad_NoteListBase::Clear() {
  for (Vrad_NoteListBase * listP = this; listP; listP = listP->mLongNoteListP.Get()) {
    listP->NdoAboutToModify();
    listP->mNotes.Clear();
  }
}

void Vrad_NoteListBase::ReplaceData(Vrad_NoteListBase const * iOther) {
  Vrad_NoteListBase * listP = this;
  for (;;) {
    listP->NdoAboutToModify();
    listP->mNotes = iOther->mNotes;
    if (!listP->mLongNoteListP) return;
    if (!iOther->mLongNoteListP || !listP->HasThresholdsOf(*iOther)) {
      listP->RegenerateLongNoteList();
      return;
    }
    listP = listP->mLongNoteListP.Get();
    iOther = iOther->mLongNoteListP.Get();
  }
}

unsigned long long Vrad_NoteListBase::Size() const {
  return mNotes.size();
}

Time_Typed Vrad_NoteListBase::TimeOfFirstNote() const {
  return mNotes.empty() ? Time_Typed(Time_Tick(0)) : mNotes.front().mTime;
}

Time_Typed Vrad_NoteListBase::TimeOfLastNote() const {
  return mNotes.empty() ? Time_Typed(Time_Tick(0)) : mNotes.back().mTime;
}

Vrad_NoteWithDurationExtendedEvent Vrad_NoteListBase::Last() const {
  return ToExtendedEvent(mNotes.back());
}

Vrad_NoteWithDurationExtendedEvent
Vrad_NoteListBase::ToExtendedEvent(Vrad_NoteListBase_Note const & iNote) {
  return Vrad_NoteWithDurationExtendedEvent(iNote.mTime, iNote.mEvent, iNote.mQuantizeTimeDelta,
                                            iNote.mOrigEvent, iNote.mMuted);
}

bool Vrad_NoteListBase::operator==(Vrad_NoteListBase const & iOther) const {
  if (mNotes.Size() != iOther.mNotes.Size()) return false;
  iterator other = iOther.mNotes.Begin();
  for (iterator iter = mNotes.Begin(); iter != mNotes.End(); ++iter, ++other)
    if (!AreAlike(*iter, *other)) return false;
  return true;
}

void Vrad_NoteListBase::AssertInvariant() const {}

void Vrad_NoteListBase::PrintList() const {
  constexpr long long kScale = 1000;
  std::string text;
  for (Vrad_NoteListBase_Note const & note : mNotes) {
    long long const ticks = note.mTime.AsTick().AsInt64() - Time_cDefaultOriginTick.AsInt64();
    text += std::to_string(ticks / kScale) + " " + std::to_string(note.mEvent.GetPitch()) + ",";
  }
  std::cout << text << std::endl;
}

Vrad_NoteList::Vrad_NoteList(Ndo_Object::EUndoFlag iFlag, bool iQuantizeContents)
    : Vrad_NoteListBase(iFlag, iQuantizeContents) {
  constexpr Time_TickLength kLongTicks(15360000);
  Time_SampleLength const second(static_cast<long long>(Time_Globals::GetSampleRate()));
  SetLongNoteList(Ndo_AutoPtr<Vrad_NoteListBase>(new Vrad_NoteListBase(iFlag, iQuantizeContents)),
                  kLongTicks, second);
}

Vrad_NoteList::Vrad_NoteList(Vrad_NoteList const &) = default;
Vrad_NoteList & Vrad_NoteList::operator=(Vrad_NoteList const &) = default;
Vrad_NoteList::~Vrad_NoteList() = default;
