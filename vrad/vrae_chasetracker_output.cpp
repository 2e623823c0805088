// What a chase tracker sends: on arriving, on leaving, on muting, and from one state to the next.
#include "cmn/cmn_assert.h"
#include "vrad/vrae_chasetracker.h"

namespace {

constexpr signed char kSustainPedal = 64;

bool IsSustainPedal(Vrae_Event const & iEvent) {
  return iEvent.GetType() == Vrae_Event::kController &&
         iEvent.AsController().GetControllerNumber() == kSustainPedal;
}

}  // namespace

void Vrae_ChaseTracker::OutputForEntry(int iIndex, Vrae_EventReceiver * iOutputP,
                                       int iValue) const {
  if (!CMN_REQUIRE(iOutputP != nullptr, "iOutputP != 0")) return;
  iOutputP->ReceiveEvent(GetEntrySubStream(iIndex).MakeEvent(iValue));
}

void Vrae_ChaseTracker::Prep(Vrae_EventReceiver * iOutputP) const {
  if (!CMN_REQUIRE(iOutputP != nullptr, "iOutputP")) return;
  for (int index = 0; index < GetNumChasing(); ++index) {
    if (GetEntryIsActive(index)) OutputForEntry(index, iOutputP, GetEntryValue(index));
  }
}

void Vrae_ChaseTracker::DoCurrentPositionChase(Vrae_EventReceiver * iOutputP) const {
  for (int index = 0; index < GetNumChasing(); ++index) {
    if (GetEntryIsActive(index) && !GetEntryIsReleasing(index))
      OutputForEntry(index, iOutputP, GetEntryValue(index));
  }
}

void Vrae_ChaseTracker::Release(Vrae_EventReceiver * iOutputP, EReleaseMode iMode) {
  if (!CMN_REQUIRE(iOutputP != nullptr, "iOutputP != 0")) return;
  for (Vrae_ChaseTracker_ActiveReleasingIterator iter(this); !iter.AtEnd(); ++iter) {
    Vrae_ChaseTracker_ReleasingEntry const entry = *iter;
    iOutputP->ReceiveEvent(entry.mSubStream.MakeEvent(entry.mValue));
    // By sub-stream, on purpose: entry 0 of a cleared map may have a successor.
    if (iMode == kReleaseAndDeactivate) ClearActiveFlag(entry.mSubStream);
  }
}

void Vrae_ChaseTracker::ChaseAndRelease(Vrae_ChaseTracker * iOldStateP,
                                        Vrae_EventReceiver * iOutputP) const {
  if (!CMN_REQUIRE(iOutputP != nullptr, "iOutputP != 0")) return;
  for (Vrae_ChaseTracker_ActiveChasingIterator iter(this); !iter.AtEnd(); ++iter) {
    Vrae_ChaseTracker_ChasingEntry const entry = *iter;
    int oldIndex = 0;
    bool const isInOld = iOldStateP != nullptr &&
                         iOldStateP->FindEntryForIndex(&oldIndex, entry.mSubStream.GetIndex());
    if (!isInOld || !iOldStateP->GetEntryIsActive(oldIndex) ||
        !iOldStateP->HoldsValue(oldIndex, entry.mValue))
      iOutputP->ReceiveEvent(entry.mSubStream.MakeEvent(entry.mValue));
    // Taken over, so not to be released below.
    if (isInOld) iOldStateP->mActive[oldIndex] = false;
  }
  if (iOldStateP != nullptr) iOldStateP->Release(iOutputP, kReleaseAndDeactivate);
}

void Vrae_ChaseTracker::HandleReleaseEvent(Vrae_ReleaseControllerEvent const & iEvent,
                                           Vrae_EventReceiver * iOutputP) {
  int index;
  if (!FindEntryForIndex(&index, iEvent.GetIndex())) return;
  if (!GetEntryIsReleasing(index) || !GetEntryIsActive(index)) return;
  if (iOutputP != nullptr) OutputForEntry(index, iOutputP, GetEntryReleaseValue(index));
  mActive[index] = false;
}

void Vrae_ChaseTracker::DoMute(Vrae_EventReceiver * iOutputP, bool iForceSustain) {
  if (!CMN_REQUIRE(iOutputP != nullptr, "iOutputP")) return;
  for (int index = 0; index < GetNumEntries(); ++index) {
    if (mReleaseOnMute && GetEntryIsActive(index) && GetEntryIsReleasing(index)) {
      int const releaseValue = GetEntryReleaseValue(index);
      Vrae_Event const release = GetEntrySubStream(index).MakeEvent(releaseValue);
      if (!HoldsValue(index, releaseValue) || (iForceSustain && IsSustainPedal(release)))
        iOutputP->ReceiveEvent(release);
    }
    mChanged[index] = false;
  }
}

void Vrae_ChaseTracker::DoUnMute(Vrae_EventReceiver * iOutputP) const {
  if (!CMN_REQUIRE(iOutputP != nullptr, "iOutputP")) return;
  for (int index = 0; index < GetNumChasing(); ++index) {
    if (!GetEntryIsActive(index)) continue;
    bool const mustUndoRelease =
        GetEntryIsReleasing(index) && GetEntryValue(index) != GetEntryReleaseValue(index);
    if (mChanged[index] || mustUndoRelease) OutputForEntry(index, iOutputP, GetEntryValue(index));
  }
}

void Vrae_ChaseTracker::DoMutedUpdate(Vrae_ChaseTracker * iOldStateP) {
  if (!CMN_REQUIRE(iOldStateP != nullptr, "iOldStateP != 0")) return;
  for (int index = 0; index < GetNumChasing(); ++index)
    mChanged[index] = GetEntryIsActive(index) && IsChangedFrom(*iOldStateP, index);
}

bool Vrae_ChaseTracker::IsChangedFrom(Vrae_ChaseTracker const & iOld, int iIndex) const {
  int oldIndex;
  if (!iOld.FindEntryForIndex(&oldIndex, GetEntrySubStream(iIndex).GetIndex()) ||
      !iOld.GetEntryIsActive(oldIndex))
    return true;
  if (GetEntryIsReleasing(iIndex)) return iOld.mChanged[oldIndex];
  return iOld.mChanged[oldIndex] || !iOld.HoldsValue(oldIndex, GetEntryValue(iIndex));
}

void Vrae_ChaseTracker::DoUnMutedUpdate(Vrae_ChaseTracker * iOldStateP,
                                        Vrae_EventReceiver * iOutputP) const {
  if (!CMN_REQUIRE(iOldStateP != nullptr, "iOldStateP != 0")) return;
  if (!CMN_REQUIRE(iOutputP != nullptr, "iOutputP != 0")) return;
  for (int index = 0; index < GetNumChasing(); ++index)
    UpdateUnMutedEntry(index, *iOldStateP, iOutputP);
}

void Vrae_ChaseTracker::UpdateUnMutedEntry(int iIndex, Vrae_ChaseTracker const & iOld,
                                           Vrae_EventReceiver * iOutputP) const {
  int oldIndex;
  bool const isActiveInOld =
      iOld.FindEntryForIndex(&oldIndex, GetEntrySubStream(iIndex).GetIndex()) &&
      iOld.GetEntryIsActive(oldIndex);
  bool const isActive = GetEntryIsActive(iIndex);
  // An entry that is neither active nor releasing leaves the old value in force.
  if (!isActive && !(isActiveInOld && GetEntryIsReleasing(iIndex))) return;
  int const value = isActive ? GetEntryValue(iIndex) : GetEntryReleaseValue(iIndex);
  if (!isActiveInOld || !iOld.HoldsValue(oldIndex, value)) OutputForEntry(iIndex, iOutputP, value);
}

// A release-only entry holds no value, so whatever is asked for differs from it.
bool Vrae_ChaseTracker::HoldsValue(int iIndex, int iValue) const {
  return iIndex < GetNumChasing() && GetEntryValue(iIndex) == iValue;
}
