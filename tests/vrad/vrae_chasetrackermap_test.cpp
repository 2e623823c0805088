#include "vrad/vrae_chasetrackermap.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "cmn/cmn_assert.h"
#include "support/throwing_off.h"

namespace {

constexpr char const * kDuplicate = "mapRef == kNullIndex";
constexpr char const * kNotReleasing = "this->GetEntryIsReleasing(mIndex)";

// The entry index, or -1.
int Find(Vrae_ChaseTrackerMap const & iMap, Vrae_SubStream const & iSubStream) {
  int index = -2;
  bool const found = iMap.GetIndexForSubStream(&index, iSubStream);
  EXPECT_EQ(!found, index == -2) << "stored exactly when found";
  return found ? index : -1;
}

}  // namespace

TEST(Vrae_ChaseTrackerMap_Default, Has122ChasingEntries) {
  Vrae_ChaseTrackerMap const map;
  EXPECT_EQ(122, map.GetNumIndices());
  EXPECT_EQ(122, map.GetNumChasingIndices());
}

TEST(Vrae_ChaseTrackerMap_Default, MapsControllersInOrder) {
  Vrae_ChaseTrackerMap const map;
  for (signed char number = 1; number < 120; ++number)
    EXPECT_EQ(number - 1, Find(map, Vrae_SubStream::Controller(number)));
}

TEST(Vrae_ChaseTrackerMap_Default, MapsBendPressureAndProgramLast) {
  Vrae_ChaseTrackerMap const map;
  EXPECT_EQ(119, Find(map, Vrae_SubStream::PitchBend()));
  EXPECT_EQ(120, Find(map, Vrae_SubStream::MonoPressure()));
  EXPECT_EQ(121, Find(map, Vrae_SubStream::Program()));
}

TEST(Vrae_ChaseTrackerMap_Default, ReleasesSustainBendAndPressureToZero) {
  Vrae_ChaseTrackerMap const map;
  for (int index = 0; index < 122; ++index) {
    bool const isReleasing = index == 63 || index == 119 || index == 120;
    EXPECT_EQ(isReleasing, map.GetEntryIsReleasing(index)) << index;
    if (isReleasing) {
      EXPECT_EQ(0, map.GetEntryReleaseValue(index)) << index;
    }
  }
}

TEST(Vrae_ChaseTrackerMap_Default, KnowsEachEntrysSubStream) {
  Vrae_ChaseTrackerMap const map;
  EXPECT_TRUE(Vrae_SubStream::Controller(1) == map.GetEntrySubStream(0));
  EXPECT_TRUE(Vrae_SubStream::Controller(64) == map.GetEntrySubStream(63));
  EXPECT_TRUE(Vrae_SubStream::Controller(119) == map.GetEntrySubStream(118));
  EXPECT_TRUE(Vrae_SubStream::PitchBend() == map.GetEntrySubStream(119));
  EXPECT_TRUE(Vrae_SubStream::MonoPressure() == map.GetEntrySubStream(120));
  EXPECT_TRUE(Vrae_SubStream::Program() == map.GetEntrySubStream(121));
}

TEST(Vrae_ChaseTrackerMap_Default, DoesNotFollowControllerZeroNorPolyPressure) {
  Vrae_ChaseTrackerMap const map;
  Cmn_AssertRecorder recorder;
  EXPECT_EQ(-1, Find(map, Vrae_SubStream::Controller(0)));
  EXPECT_EQ(-1, Find(map, Vrae_SubStream::PolyPressure(0)));
  EXPECT_EQ(-1, Find(map, Vrae_SubStream::PolyPressure(60)));
  EXPECT_EQ(-1, Find(map, Vrae_SubStream(Vrae_PolyPressureEvent(60, 5))));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrae_ChaseTrackerMap_Default, DoesNotFollowController120) {
  Vrae_ChaseTrackerMap const map;
  Cmn_AssertRecorder recorder;
  EXPECT_EQ(-1, Find(map, Vrae_SubStream::Controller(120)));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrae_ChaseTrackerMap_Default, CannotBeCopied) {
  EXPECT_FALSE(std::is_copy_constructible_v<Vrae_ChaseTrackerMap>);
  EXPECT_FALSE(std::is_copy_assignable_v<Vrae_ChaseTrackerMap>);
}

TEST(Vrae_ChaseTrackerMap_GetEntryIsChasing, GoesByPosition) {
  Vrae_ChaseTrackerMap const map;
  EXPECT_TRUE(map.GetEntryIsChasing(0));
  EXPECT_TRUE(map.GetEntryIsChasing(121));
  EXPECT_FALSE(map.GetEntryIsChasing(122));
}

TEST(Vrae_ChaseTrackerMap_GetEntryIsReleasing, IsFalseForABadIndex) {
  Vrae_ChaseTrackerMap const map;
  Cmn_AssertRecorder recorder;
  EXPECT_FALSE(map.GetEntryIsReleasing(-1));
  EXPECT_FALSE(map.GetEntryIsReleasing(122));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrae_ChaseTrackerMap_GetEntrySubStream, IsNullForABadIndex) {
  Vrae_ChaseTrackerMap const map;
  Cmn_AssertRecorder recorder;
  EXPECT_TRUE(map.GetEntrySubStream(-1).IsNull());
  EXPECT_TRUE(map.GetEntrySubStream(122).IsNull());
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrae_ChaseTrackerMap_GetEntryReleaseValue, ReportsAnEntryThatIsNotReleasing) {
  Vrae_ChaseTrackerMap const map;
  Cmn_AssertRecorder recorder;
  EXPECT_EQ(0, map.GetEntryReleaseValue(0));
  ASSERT_EQ(1, recorder.GetNum(kNotReleasing));
  EXPECT_FALSE(recorder.GetEntries()[0].mThrowing);
  EXPECT_TRUE(recorder.GetEntries()[0].mFlag);
}

TEST(Vrae_ChaseTrackerMap_GetEntryReleaseValue, ReportsABadIndex) {
  Vrae_ChaseTrackerMap const map;
  Cmn_AssertRecorder recorder;
  EXPECT_EQ(0, map.GetEntryReleaseValue(122));
  EXPECT_EQ(1, recorder.GetNum(kNotReleasing));
}

TEST(Vrae_ChaseTrackerMap_GetIndexForSubStream, OfTheNullSubStreamThrows) {
  Vrae_ChaseTrackerMap const map;
  int index = 0;
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(map.GetIndexForSubStream(&index, Vrae_SubStream()), Cmn_AssertException);
  EXPECT_EQ(1, recorder.GetNum("0"));
}

TEST(Vrae_ChaseTrackerMap_GetIndexForSubStream, OfTheNullSubStreamIsFalseWithThrowingOff) {
  Vrae_ChaseTrackerMap const map;
  ThrowingOff const off;
  Cmn_AssertRecorder recorder;
  int index = 7;
  EXPECT_FALSE(map.GetIndexForSubStream(&index, Vrae_SubStream()));
  EXPECT_EQ(7, index);
}

TEST(Vrae_ChaseTrackerMap_GetIndexForSubStreamIndex, FindsTheEntryOfAnIndex) {
  Vrae_ChaseTrackerMap const map;
  int index = -2;
  EXPECT_TRUE(map.GetIndexForSubStreamIndex(&index, 0));
  EXPECT_EQ(119, index);
  EXPECT_TRUE(map.GetIndexForSubStreamIndex(&index, 64));
  EXPECT_EQ(63, index);
}

TEST(Vrae_ChaseTrackerMap_GetIndexForSubStreamIndex, StoresNothingWhenThereIsNone) {
  Vrae_ChaseTrackerMap const map;
  int index = -2;
  EXPECT_FALSE(map.GetIndexForSubStreamIndex(&index, 249));
  EXPECT_EQ(-2, index);
}

TEST(Vrae_ChaseTrackerMap_GetIndexForSubStreamIndex, ThrowsWithoutAPlaceForTheAnswer) {
  Vrae_ChaseTrackerMap const map;
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(map.GetIndexForSubStreamIndex(nullptr, 5), Cmn_AssertException);
  ASSERT_EQ(1, recorder.GetNum("oIndexP != 0"));
  EXPECT_FALSE(recorder.GetEntries()[0].mFlag);
}

TEST(Vrae_ChaseTrackerMap_GetIndexForSubStreamIndex, ThrowsBelowTheIndexSpace) {
  Vrae_ChaseTrackerMap const map;
  int index;
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(map.GetIndexForSubStreamIndex(&index, -1), Cmn_AssertException);
  EXPECT_EQ(1, recorder.GetNum("iSubStreamIndex >= 0"));
}

TEST(Vrae_ChaseTrackerMap_GetIndexForSubStreamIndex, ThrowsAboveTheIndexSpace) {
  Vrae_ChaseTrackerMap const map;
  int index;
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(map.GetIndexForSubStreamIndex(&index, 250), Cmn_AssertException);
  EXPECT_EQ(1, recorder.GetNum("iSubStreamIndex < Vrae_SubStream::GetNumIndices()"));
}

TEST(Vrae_ChaseTrackerMap_GetIndexForSubStreamIndex, IsFalseWithThrowingOff) {
  Vrae_ChaseTrackerMap const map;
  ThrowingOff const off;
  Cmn_AssertRecorder recorder;
  int index = 7;
  EXPECT_FALSE(map.GetIndexForSubStreamIndex(nullptr, 5));
  EXPECT_FALSE(map.GetIndexForSubStreamIndex(&index, -1));
  EXPECT_FALSE(map.GetIndexForSubStreamIndex(&index, 250));
  EXPECT_EQ(3, recorder.GetNum());
  EXPECT_EQ(7, index);
}

TEST(Vrae_ChaseTrackerMap_AppendEntry, TakesPolyPressure) {
  Vrae_ChaseTrackerMap map;
  map.AppendEntry(Vrae_SubStream::PolyPressure(127));
  EXPECT_EQ(122, Find(map, Vrae_SubStream::PolyPressure(127)));
  EXPECT_EQ(123, map.GetNumIndices());
}

TEST(Vrae_ChaseTrackerMap_AppendEntry, DoesNotMoveTheChasingBoundary) {
  Vrae_ChaseTrackerMap map;
  map.AppendEntry(Vrae_SubStream::PolyPressure(60));
  EXPECT_EQ(122, map.GetNumChasingIndices());
  EXPECT_FALSE(map.GetEntryIsChasing(122));
  EXPECT_FALSE(map.GetEntryIsReleasing(122));
}

TEST(Vrae_ChaseTrackerMap_AppendReleasingEntry, KeepsTheReleaseValue) {
  Vrae_ChaseTrackerMap map;
  map.AppendReleasingEntry(Vrae_SubStream::PolyPressure(60), 17);
  EXPECT_TRUE(map.GetEntryIsReleasing(122));
  EXPECT_EQ(17, map.GetEntryReleaseValue(122));
}

TEST(Vrae_ChaseTrackerMap_AppendEntry, RefusesADuplicate) {
  Vrae_ChaseTrackerMap map;
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(map.AppendEntry(Vrae_SubStream::Controller(64)), Cmn_AssertException);
  ASSERT_EQ(1, recorder.GetNum(kDuplicate));
  EXPECT_FALSE(recorder.GetEntries()[0].mFlag);
  EXPECT_EQ(122, map.GetNumIndices());
  EXPECT_EQ(63, Find(map, Vrae_SubStream::Controller(64)));
}

TEST(Vrae_ChaseTrackerMap_AppendReleasingEntry, RefusesADuplicateWithThrowingOff) {
  Vrae_ChaseTrackerMap map;
  ThrowingOff const off;
  Cmn_AssertRecorder recorder;
  map.AppendReleasingEntry(Vrae_SubStream::Controller(1), 5);
  EXPECT_EQ(1, recorder.GetNum(kDuplicate));
  EXPECT_EQ(122, map.GetNumIndices());
  EXPECT_FALSE(map.GetEntryIsReleasing(0));
}

TEST(Vrae_ChaseTrackerMap_AppendEntry, TakesAMappedSubStreamAfterClear) {
  Vrae_ChaseTrackerMap map;
  map.Clear();
  map.AppendEntry(Vrae_SubStream::Controller(64));
  EXPECT_EQ(122, Find(map, Vrae_SubStream::Controller(64)));
}

TEST(Vrae_ChaseTrackerMap_AppendEntry, RefusesAnIndexOutsideTheSpace) {
  Vrae_ChaseTrackerMap map;
  map.Clear();
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(map.AppendEntry(Vrae_SubStream::PolyPressure(-128)), Cmn_AssertException);
  EXPECT_EQ(1, recorder.GetNum("iSubStreamIndex >= 0"));
  EXPECT_EQ(122, map.GetNumIndices());
}

TEST(Vrae_ChaseTrackerMap_Clear, KeepsTheEntriesOutOfReach) {
  Vrae_ChaseTrackerMap map;
  map.Clear();
  EXPECT_EQ(0, map.GetNumChasingIndices());
  EXPECT_EQ(122, map.GetNumIndices());
  EXPECT_EQ(-1, Find(map, Vrae_SubStream::Controller(1)));
  EXPECT_EQ(-1, Find(map, Vrae_SubStream::PitchBend()));
  EXPECT_TRUE(Vrae_SubStream::Controller(1) == map.GetEntrySubStream(0));
}

TEST(Vrae_ChaseTrackerMap_DoneAddingChasingEntries, CountsTheClearedEntriesToo) {
  Vrae_ChaseTrackerMap map;
  map.Clear();
  map.AppendEntry(Vrae_SubStream::Controller(7));
  map.DoneAddingChasingEntries();
  EXPECT_EQ(123, map.GetNumChasingIndices());
  EXPECT_TRUE(map.GetEntryIsChasing(122));
}

TEST(Vrae_ChaseTrackerMap_SetStandardReleasingNoChasing, LeavesThreeReleaseOnlyEntries) {
  Vrae_ChaseTrackerMap map;
  map.SetStandardReleasingNoChasing();
  EXPECT_EQ(125, map.GetNumIndices());
  EXPECT_EQ(122, map.GetNumChasingIndices());
  EXPECT_EQ(-1, Find(map, Vrae_SubStream::Controller(1)));
  EXPECT_EQ(122, Find(map, Vrae_SubStream::PitchBend()));
  EXPECT_EQ(123, Find(map, Vrae_SubStream::Controller(64)));
  EXPECT_EQ(124, Find(map, Vrae_SubStream::MonoPressure()));
  for (int index = 122; index < 125; ++index) {
    EXPECT_FALSE(map.GetEntryIsChasing(index));
    EXPECT_TRUE(map.GetEntryIsReleasing(index));
    EXPECT_EQ(0, map.GetEntryReleaseValue(index));
  }
}

TEST(Vrae_ChaseTrackerMap_SetStandardReleasingNoChasing, GrowsByThreeEachTime) {
  Vrae_ChaseTrackerMap map;
  map.SetStandardReleasingNoChasing();
  map.SetStandardReleasingNoChasing();
  EXPECT_EQ(128, map.GetNumIndices());
  EXPECT_EQ(125, map.GetNumChasingIndices());
  EXPECT_EQ(126, Find(map, Vrae_SubStream::Controller(64)));
}

TEST(Vrae_ChaseTrackerMap_SetStandardReleasingNoChasing, KeepsController1AsEntryZero) {
  Vrae_ChaseTrackerMap map;
  map.SetStandardReleasingNoChasing();
  EXPECT_TRUE(Vrae_SubStream::Controller(1) == map.GetEntrySubStream(0));
  EXPECT_FALSE(map.GetEntryIsReleasing(0));
}
