// The long note list: who owns it, what belongs in it.
#include <utility>

#include "cmn/cmn_assert.h"
#include "vrad/vrad_notelist.h"

namespace {

// Units other than the two have no threshold.
bool HasThreshold(Time_EType iType) {
  return iType == Time_eType_Samples || iType == Time_eType_Ticks;
}

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
  for (Vrad_NoteListBase_Note const & note : std::as_const(mNotes))
    if (IsLong(note.mEvent)) mLongNoteListP->AddNote(note);
}

bool Vrad_NoteListBase::IsLong(Vrae_NoteWithDurationEvent const & iEvent) const {
  Time_TypedLength const duration = iEvent.GetDuration();
  return HasThreshold(duration.GetType()) && duration >= mLongNoteDuration[duration.GetType()];
}

bool Vrad_NoteListBase::HasThresholdsOf(Vrad_NoteListBase const & iOther) const {
  return mLongNoteDuration[Time_eType_Samples] == iOther.mLongNoteDuration[Time_eType_Samples] &&
         mLongNoteDuration[Time_eType_Ticks] == iOther.mLongNoteDuration[Time_eType_Ticks];
}
