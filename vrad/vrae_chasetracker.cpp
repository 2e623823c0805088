// The state, what feeds it, what is asked of it, and the iterators.
#include "vrad/vrae_chasetracker.h"

#include <algorithm>

#include "cmn/cmn_assert.h"
#include "vrad/vrae_chasetrackermap.h"

namespace {

template <class T>
std::shared_ptr<T[]> MakeArray(int iNum, T const & iValue) {
  return std::make_shared<T[]>(static_cast<size_t>(iNum), iValue);
}

template <class T>
std::shared_ptr<T[]> CopyArray(std::shared_ptr<T[]> const & iArray, int iNum) {
  std::shared_ptr<T[]> copy = std::make_shared<T[]>(static_cast<size_t>(iNum));
  std::copy_n(iArray.get(), iNum, copy.get());
  return copy;
}

}  // namespace

Vrae_ChaseTracker::Vrae_ChaseTracker(Vrae_ChaseTrackerMap const * iMapP, bool iReleaseOnMute)
    : mMapP(iMapP), mIsClear(true), mReleaseOnMute(iReleaseOnMute), mNumValues(0), mNumFlags(0) {
  if (CMN_REQUIRE(iMapP != nullptr, "iMapP != 0")) {
    mNumValues = iMapP->GetNumChasingIndices();
    mNumFlags = iMapP->GetNumIndices();
  }
  mValues = MakeArray(mNumValues, 0);
  mValueTimes = MakeArray(mNumValues, Time_Typed::MinTime(Time_eType_Ticks));
  mActive = MakeArray(mNumFlags, false);
  mChanged = MakeArray(mNumFlags, false);
}

Vrae_ChaseTracker::Vrae_ChaseTracker(Vrae_ChaseTracker const * iOtherP)
    : mValues(CopyArray(iOtherP->mValues, iOtherP->mNumValues)),
      mValueTimes(CopyArray(iOtherP->mValueTimes, iOtherP->mNumValues)),
      mActive(CopyArray(iOtherP->mActive, iOtherP->mNumFlags)),
      mChanged(CopyArray(iOtherP->mChanged, iOtherP->mNumFlags)),
      mMapP(iOtherP->mMapP),
      mIsClear(false),
      mReleaseOnMute(iOtherP->mReleaseOnMute),
      mNumValues(iOtherP->mNumValues),
      mNumFlags(iOtherP->mNumFlags) {}

Vrae_ChaseTracker & Vrae_ChaseTracker::operator=(Vrae_ChaseTracker const &) = default;

Vrae_ChaseTracker::~Vrae_ChaseTracker() = default;

void Vrae_ChaseTracker::Clear() {
  if (mIsClear) return;
  std::fill_n(mActive.get(), mNumFlags, false);
  mIsClear = true;
}

// What the map got after the arrays were sized does not count.
int Vrae_ChaseTracker::GetNumEntries() const {
  return mMapP != nullptr ? std::min(mMapP->GetNumIndices(), mNumFlags) : 0;
}

int Vrae_ChaseTracker::GetNumChasing() const {
  return mMapP != nullptr ? std::min(mMapP->GetNumChasingIndices(), mNumValues) : 0;
}

bool Vrae_ChaseTracker::FindEntry(int * oIndexP, Vrae_SubStream const & iSubStream) const {
  return mMapP != nullptr && mMapP->GetIndexForSubStream(oIndexP, iSubStream) &&
         *oIndexP < GetNumEntries();
}

bool Vrae_ChaseTracker::FindEntryForIndex(int * oIndexP, int iSubStreamIndex) const {
  return mMapP != nullptr && mMapP->GetIndexForSubStreamIndex(oIndexP, iSubStreamIndex) &&
         *oIndexP < GetNumEntries();
}

bool Vrae_ChaseTracker::FindChasingEntry(int * oIndexP, Vrae_SubStream const & iSubStream) const {
  return FindEntry(oIndexP, iSubStream) && *oIndexP < GetNumChasing();
}

void Vrae_ChaseTracker::SetEntry(int iIndex, int iValue) {
  mActive[iIndex] = true;
  if (iIndex < GetNumChasing()) mValues[iIndex] = iValue;
  mIsClear = false;
}

void Vrae_ChaseTracker::ChaseEvent(Vrae_Event const & iEvent) {
  Vrae_SubStream const subStream(iEvent);
  if (!subStream.IsNull()) TrackValue(subStream, subStream.GetValueFromEvent(iEvent));
}

void Vrae_ChaseTracker::TrackEvent(Vrae_Event const & iEvent) {
  Vrae_SubStream const subStream(iEvent);
  int index;
  if (subStream.IsNull() || !FindEntry(&index, subStream)) return;
  // A releasing entry that is active will be sent anyway, unless it is back at its release value.
  if (!(GetEntryIsReleasing(index) && GetEntryIsActive(index))) mChanged[index] = true;
  SetEntry(index, subStream.GetValueFromEvent(iEvent));
}

void Vrae_ChaseTracker::TrackValue(Vrae_SubStream const & iSubStream, int iValue) {
  int index;
  if (FindEntry(&index, iSubStream)) SetEntry(index, iValue);
}

void Vrae_ChaseTracker::SetActiveValue(Vrae_SubStream const & iSubStream, int iValue) {
  int index;
  if (FindChasingEntry(&index, iSubStream)) SetEntry(index, iValue);
}

void Vrae_ChaseTracker::SetActiveValueIfLater(Vrae_SubStream const & iSubStream, int iValue,
                                              Time_Typed iTime) {
  int index;
  if (!FindChasingEntry(&index, iSubStream)) return;
  if (GetEntryIsActive(index) && iTime < mValueTimes[index]) return;
  mValueTimes[index] = iTime;
  SetEntry(index, iValue);
}

void Vrae_ChaseTracker::ClearActiveFlag(Vrae_SubStream const & iSubStream) {
  int index;
  if (FindEntry(&index, iSubStream)) mActive[index] = false;
}

bool Vrae_ChaseTracker::IsTracking(Vrae_SubStream const & iSubStream) const {
  int index;
  return FindEntry(&index, iSubStream);
}

bool Vrae_ChaseTracker::IsActive(Vrae_SubStream const & iSubStream) const {
  int index;
  return FindEntry(&index, iSubStream) && GetEntryIsActive(index);
}

bool Vrae_ChaseTracker::IsChasing(Vrae_SubStream const & iSubStream) const {
  int index;
  return FindChasingEntry(&index, iSubStream);
}

bool Vrae_ChaseTracker::IsReleasing(int * oReleaseValueP, Vrae_SubStream const & iSubStream) const {
  int index;
  if (!FindEntry(&index, iSubStream) || !GetEntryIsReleasing(index)) return false;
  if (oReleaseValueP != nullptr) *oReleaseValueP = GetEntryReleaseValue(index);
  return true;
}

bool Vrae_ChaseTracker::GetChasingEntry(Vrae_ChaseTracker_ChasingEntry * oEntryP,
                                        Vrae_SubStream const & iSubStream) const {
  if (!CMN_REQUIRE(oEntryP != nullptr, "oEntryP != 0")) return false;
  int index;
  if (!FindChasingEntry(&index, iSubStream)) return false;
  *oEntryP = {GetEntryIsActive(index), GetEntryValue(index), iSubStream};
  return true;
}

bool Vrae_ChaseTracker::GetChasingEntry(Vrae_ChaseTracker_ChasingEntry * oEntryP,
                                        int iSubStreamIndex) const {
  if (!CMN_REQUIRE(oEntryP != nullptr, "oEntryP != 0")) return false;
  int index;
  if (!FindEntryForIndex(&index, iSubStreamIndex) || index >= GetNumChasing()) return false;
  *oEntryP = {GetEntryIsActive(index), GetEntryValue(index), GetEntrySubStream(index)};
  return true;
}

bool Vrae_ChaseTracker::GetEntryIsActive(int iIndex) const {
  return mActive[iIndex];
}

int Vrae_ChaseTracker::GetEntryValue(int iIndex) const {
  return mValues[iIndex];
}

bool Vrae_ChaseTracker::GetEntryIsReleasing(int iIndex) const {
  return mMapP->GetEntryIsReleasing(iIndex);
}

int Vrae_ChaseTracker::GetEntryReleaseValue(int iIndex) const {
  return mMapP->GetEntryReleaseValue(iIndex);
}

Vrae_SubStream Vrae_ChaseTracker::GetEntrySubStream(int iIndex) const {
  return mMapP->GetEntrySubStream(iIndex);
}

// Both iterators take entry 0 as it is, on purpose: Release and ChaseAndRelease rely on it.

Vrae_ChaseTracker_ActiveChasingIterator::Vrae_ChaseTracker_ActiveChasingIterator(
    Vrae_ChaseTracker const * iTrackerP)
    : mTrackerP(iTrackerP), mIndex(0) {}

bool Vrae_ChaseTracker_ActiveChasingIterator::AtEnd() const {
  return mIndex >= mTrackerP->GetNumChasing();
}

Vrae_ChaseTracker_ChasingEntry Vrae_ChaseTracker_ActiveChasingIterator::operator*() const {
  if (!CMN_REQUIRE(!AtEnd(), "!this->AtEnd()")) return Vrae_ChaseTracker_ChasingEntry();
  return {true, mTrackerP->GetEntryValue(mIndex), mTrackerP->GetEntrySubStream(mIndex)};
}

void Vrae_ChaseTracker_ActiveChasingIterator::operator++() {
  if (!CMN_REQUIRE(!AtEnd(), "!this->AtEnd()")) return;
  ++mIndex;
  while (!AtEnd() && !mTrackerP->GetEntryIsActive(mIndex))
    ++mIndex;
}

Vrae_ChaseTracker_ActiveReleasingIterator::Vrae_ChaseTracker_ActiveReleasingIterator(
    Vrae_ChaseTracker const * iTrackerP)
    : mTrackerP(iTrackerP), mIndex(0) {}

bool Vrae_ChaseTracker_ActiveReleasingIterator::AtEnd() const {
  return mIndex >= mTrackerP->GetNumEntries();
}

Vrae_ChaseTracker_ReleasingEntry Vrae_ChaseTracker_ActiveReleasingIterator::operator*() const {
  if (!CMN_REQUIRE(!AtEnd(), "!this->AtEnd()")) return Vrae_ChaseTracker_ReleasingEntry();
  // Reading the release value reports an entry that has none.
  return {true, mTrackerP->GetEntryReleaseValue(mIndex), mTrackerP->GetEntrySubStream(mIndex)};
}

void Vrae_ChaseTracker_ActiveReleasingIterator::operator++() {
  if (!CMN_REQUIRE(!AtEnd(), "!this->AtEnd()")) return;
  ++mIndex;
  while (!AtEnd() &&
         !(mTrackerP->GetEntryIsReleasing(mIndex) && mTrackerP->GetEntryIsActive(mIndex)))
    ++mIndex;
}
