#include "vrad/vrae_chasetrackermap.h"

#include <algorithm>

#include "cmn/cmn_assert.h"

namespace {

constexpr int kNullIndex = -1;
constexpr signed char kSustainPedal = 64;
constexpr signed char kLastController = 119;

}  // namespace

Vrae_ChaseTrackerMap::Vrae_ChaseTrackerMap()
    : mNumSubStreamIndices(Vrae_SubStream::GetNumIndices()),
      mIndexTable(new int[static_cast<size_t>(mNumSubStreamIndices)]),
      mNumChasing(0) {
  Clear();
  for (signed char number = 1; number <= kLastController; ++number) {
    if (number == kSustainPedal)
      AppendReleasingEntry(Vrae_SubStream::Controller(number), 0);
    else
      AppendEntry(Vrae_SubStream::Controller(number));
  }
  AppendReleasingEntry(Vrae_SubStream::PitchBend(), 0);
  AppendReleasingEntry(Vrae_SubStream::MonoPressure(), 0);
  AppendEntry(Vrae_SubStream::Program());
  DoneAddingChasingEntries();
}

Vrae_ChaseTrackerMap::~Vrae_ChaseTrackerMap() = default;

void Vrae_ChaseTrackerMap::Clear() {
  mNumChasing = 0;
  std::fill_n(mIndexTable.get(), mNumSubStreamIndices, kNullIndex);
}

void Vrae_ChaseTrackerMap::AppendEntry(Vrae_SubStream const & iSubStream) {
  Append({iSubStream, false, 0});
}

void Vrae_ChaseTrackerMap::AppendReleasingEntry(Vrae_SubStream const & iSubStream,
                                                int iReleaseValue) {
  Append({iSubStream, true, iReleaseValue});
}

void Vrae_ChaseTrackerMap::Append(Vrae_ChaseTrackerMap_Entry const & iEntry) {
  int const subStreamIndex = iEntry.mSubStream.GetIndex();
  if (!CheckSubStreamIndex(subStreamIndex)) return;
  int & mapRef = mIndexTable[static_cast<size_t>(subStreamIndex)];
  if (!CMN_REQUIRE(mapRef == kNullIndex, "mapRef == kNullIndex")) return;
  mEntries.push_back(iEntry);
  mapRef = GetNumIndices() - 1;
}

void Vrae_ChaseTrackerMap::DoneAddingChasingEntries() {
  mNumChasing = GetNumIndices();
}

void Vrae_ChaseTrackerMap::SetStandardReleasingNoChasing() {
  Clear();
  // The unreachable entries lie below the boundary, so all that can be found lies past it.
  DoneAddingChasingEntries();
  AddStandardReleasingEntries();
}

void Vrae_ChaseTrackerMap::AddStandardReleasingEntries() {
  AppendReleasingEntry(Vrae_SubStream::PitchBend(), 0);
  AppendReleasingEntry(Vrae_SubStream::Controller(kSustainPedal), 0);
  AppendReleasingEntry(Vrae_SubStream::MonoPressure(), 0);
}

int Vrae_ChaseTrackerMap::GetNumIndices() const {
  return static_cast<int>(mEntries.size());
}

int Vrae_ChaseTrackerMap::GetNumChasingIndices() const {
  return mNumChasing;
}

bool Vrae_ChaseTrackerMap::GetEntryIsChasing(int iIndex) const {
  return iIndex < mNumChasing;
}

bool Vrae_ChaseTrackerMap::IsEntry(int iIndex) const {
  return iIndex >= 0 && iIndex < GetNumIndices();
}

bool Vrae_ChaseTrackerMap::GetEntryIsReleasing(int iIndex) const {
  return IsEntry(iIndex) && mEntries[static_cast<size_t>(iIndex)].mIsReleasing;
}

int Vrae_ChaseTrackerMap::GetEntryReleaseValue(int iIndex) const {
  CMN_CHECK(GetEntryIsReleasing(iIndex), "this->GetEntryIsReleasing(mIndex)");
  return IsEntry(iIndex) ? mEntries[static_cast<size_t>(iIndex)].mReleaseValue : 0;
}

Vrae_SubStream Vrae_ChaseTrackerMap::GetEntrySubStream(int iIndex) const {
  return IsEntry(iIndex) ? mEntries[static_cast<size_t>(iIndex)].mSubStream : Vrae_SubStream();
}

bool Vrae_ChaseTrackerMap::GetIndexForSubStream(int * oIndexP,
                                                Vrae_SubStream const & iSubStream) const {
  // Controllers 0 and 120 would otherwise be taken for bend and mono pressure.
  if (!iSubStream.GetType()->IsValidSubType(iSubStream.GetSubType())) return false;
  return GetIndexForSubStreamIndex(oIndexP, iSubStream.GetIndex());
}

bool Vrae_ChaseTrackerMap::GetIndexForSubStreamIndex(int * oIndexP, int iSubStreamIndex) const {
  if (!CMN_REQUIRE(oIndexP != nullptr, "oIndexP != 0")) return false;
  if (!CheckSubStreamIndex(iSubStreamIndex)) return false;
  int const entryIndex = mIndexTable[static_cast<size_t>(iSubStreamIndex)];
  if (entryIndex == kNullIndex) return false;
  *oIndexP = entryIndex;
  return true;
}

bool Vrae_ChaseTrackerMap::CheckSubStreamIndex(int iSubStreamIndex) {
  return CMN_REQUIRE(iSubStreamIndex >= 0, "iSubStreamIndex >= 0") &&
         CMN_REQUIRE(iSubStreamIndex < Vrae_SubStream::GetNumIndices(),
                     "iSubStreamIndex < Vrae_SubStream::GetNumIndices()");
}
