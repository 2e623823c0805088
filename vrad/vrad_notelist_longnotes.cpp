// The long note list: who owns it, what belongs in it.
#include <utility>
#include <vector>

#include "cmn/cmn_assert.h"
#include "vrad/vrad_notelist.h"

namespace {

// Units other than the two have no threshold.
bool HasThreshold(Time_EType iType) {
  return iType == Time_eType_Samples || iType == Time_eType_Ticks;
}

// Finds the notes that may be long in a list of one unit: a part whose ends all lie less than the
// threshold behind its first start has none. Ends and starts at the limits say nothing.
class LongCandidates final : public Cmn_ChunkyVecVisitor {
public:
  explicit LongCandidates(long long iThreshold) : mThreshold(iThreshold) {}
  bool Wants(Cmn_ChunkyVecSummary const & iPart) override {
    return MayBeLong(iPart.mFirst, iPart.mGreatest);
  }
  bool Visit(Cmn_ChunkyVecKeys const & iKeys) override {
    for (int i = 0; i < iKeys.mNum; ++i)
      if (MayBeLong(iKeys.mOrder[i], iKeys.mExtent[i])) mFound.push_back(iKeys.mFirstIndex + i);
    return true;
  }
  std::vector<int> const & Get() const { return mFound; }

private:
  bool MayBeLong(long long iStart, long long iEnd) const {
    return Time_Saturating::Subtract(iEnd, iStart) >= mThreshold ||
           iStart == Time_Saturating::kMin || iEnd == Time_Saturating::kMax;
  }

  long long mThreshold;
  std::vector<int> mFound;
};

}  // namespace

void Vrad_NoteListBase::SetLongNoteDuration(Time_TypedLength iDuration) {
  if (HasThreshold(iDuration.GetType())) mLongNoteDuration[iDuration.GetType()] = iDuration;
}

Time_TypedLength Vrad_NoteListBase::GetLongNoteDuration(Time_EType iType) const {
  return HasThreshold(iType) ? mLongNoteDuration[iType] : Time_TypedLength(0, iType);
}

Vrad_NoteListBase * Vrad_NoteListBase::GetLongNoteList() const {
  return mLongNoteListP.Get();
}

long long Vrad_NoteListBase::GetLongNoteListID() const {
  return mLongNoteListP.mCachedID;
}

void Vrad_NoteListBase::SetLongNoteList(Ndo_AutoPtr<Vrad_NoteListBase> iLongNoteListP,
                                        Time_TickLength iTicks, Time_SampleLength iSamples) {
  CMN_CHECK(iLongNoteListP.Get() == 0 || this->NdoIsUndoable() == iLongNoteListP->NdoIsUndoable(),
            "iLongNoteListP.Get() == 0 || this->NdoIsUndoable() == "
            "iLongNoteListP->NdoIsUndoable()");
  if (iLongNoteListP.Get()) iLongNoteListP->NdoSetOwned();
  ShareLongNoteList(Ndo_Ptr<Vrad_NoteListBase>(iLongNoteListP.Release()));
  mLongNoteDuration[Time_eType_Ticks] = iTicks;
  mLongNoteDuration[Time_eType_Samples] = iSamples;
}

// The last owner destroys the list that it lets go of.
void Vrad_NoteListBase::ShareLongNoteList(Ndo_Ptr<Vrad_NoteListBase> const & iListP) {
  if (iListP) ++iListP->mNumOwners;
  Ndo_Ptr<Vrad_NoteListBase> const former = std::exchange(mLongNoteListP, iListP);
  if (former && --former->mNumOwners == 0) delete former.Get();
}

void Vrad_NoteListBase::RegenerateLongNoteList() {
  if (!mLongNoteListP) return;
  mLongNoteListP->Clear();
  auto const addIfLong = [this](Vrad_NoteListBase_Note const & iNote) {
    if (IsLong(iNote.mEvent)) mLongNoteListP->AddNote(iNote);
  };
  for (Time_EType const type : {Time_eType_Samples, Time_eType_Ticks}) {
    if (!KnowsEndsIn(type)) continue;
    LongCandidates candidates(mLongNoteDuration[type].AsInt64());
    mNotes.GetImpl().Walk(0, mNotes.Size(), candidates);
    for (int const index : candidates.Get())
      addIfLong(mNotes[index]);
    return;
  }
  for (Vrad_NoteListBase_Note const & note : std::as_const(mNotes))
    addIfLong(note);
}

bool Vrad_NoteListBase::IsLong(Vrae_NoteWithDurationEvent const & iEvent) const {
  Time_TypedLength const duration = iEvent.GetDuration();
  return HasThreshold(duration.GetType()) && duration >= mLongNoteDuration[duration.GetType()];
}

bool Vrad_NoteListBase::HasThresholdsOf(Vrad_NoteListBase const & iOther) const {
  return mLongNoteDuration[Time_eType_Samples] == iOther.mLongNoteDuration[Time_eType_Samples] &&
         mLongNoteDuration[Time_eType_Ticks] == iOther.mLongNoteDuration[Time_eType_Ticks];
}
