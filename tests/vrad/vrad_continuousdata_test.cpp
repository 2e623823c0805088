#include "vrad/vrad_continuousdata.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <utility>

#include "support/realtime_scope.h"
#include "support/store_printing.h"

namespace {

typedef std::initializer_list<std::pair<long long, int>> TickValues;

struct TestData : Vrad_ContinuousData {
  TestData(TickValues iValues = {}, EUndoFlag iFlag = kUndoable, bool iSnaps = false)
      : Vrad_ContinuousData(iFlag, iSnaps) {
    for (auto const & value : iValues)
      AddValue(Tick(value.first), value.second);
  }
};

struct SnappingData : TestData {
  SnappingData(TickValues iValues = {}) : TestData(iValues, kUndoable, true) {}
};

std::string PrintRange(Vrad_ContinuousData const & iData, Time_Typed iStart, Time_Typed iEnd) {
  PrintingVisitor visitor;
  iData.ForEachInRange(&visitor, iStart, iEnd);
  return visitor.mLine;
}

std::string PrintLastBefore(Vrad_ContinuousData const & iData, Time_Typed iTime) {
  Time_Typed time;
  int value;
  if (!iData.GetLastValueChangeBeforeTime(&time, &value, iTime)) return "none";
  return Print(time) + ":" + std::to_string(value);
}

TEST(Vrad_ContinuousData, StartsEmpty) {
  Vrad_ContinuousData const data(Ndo_Object::kNotUndoable, true);
  EXPECT_TRUE(data.IsEmpty());
  EXPECT_EQ(0, data.Size());
  EXPECT_EQ("", Print(data));
}

TEST(Vrad_ContinuousData, TakesTheUndoFlag) {
  EXPECT_TRUE(Vrad_ContinuousData(Ndo_Object::kUndoable, true).NdoIsUndoable());
  EXPECT_FALSE(Vrad_ContinuousData(Ndo_Object::kNotUndoable, true).NdoIsUndoable());
}

TEST(Vrad_ContinuousData, CannotBeCopiedOrAssigned) {
  EXPECT_FALSE(std::is_copy_constructible_v<Vrad_ContinuousData>);
  EXPECT_FALSE(std::is_copy_assignable_v<Vrad_ContinuousData>);
}

TEST(Vrad_ContinuousData, StateHasNoPublicConstructor) {
  EXPECT_FALSE(
      (std::is_constructible_v<Vrad_ContinuousData_NdoState, Vrad_ContinuousData const &>));
  EXPECT_FALSE(std::is_copy_constructible_v<Vrad_ContinuousData_NdoState>);
}

// ---- AddValue

TEST(Vrad_ContinuousData_AddValue, KeepsTheTimesInOrder) {
  EXPECT_EQ("-5:3 10:2 20:1 30:4", Print(TestData({{20, 1}, {10, 2}, {-5, 3}, {30, 4}})));
}

TEST(Vrad_ContinuousData_AddValue, TwiceAtOneTimeLeavesOneSegmentWithTheLastValue) {
  EXPECT_EQ("10:2", Print(TestData({{10, 1}, {10, 2}})));
}

TEST(Vrad_ContinuousData_AddValue, TwoEqualValuesInARowAreBothKept) {
  EXPECT_EQ("10:7 20:7", Print(TestData({{10, 7}, {20, 7}})));
}

TEST(Vrad_ContinuousData_AddValue, OverwritesAtAnEqualInstantOfTheOtherUnit) {
  TestData data({{40, 1}});
  data.AddValue(Sample(1), 2);
  EXPECT_EQ("40:2", Print(data));
}

TEST(Vrad_ContinuousData_AddValue, PutsSampleTimesInPlace) {
  TestData data({{39, 1}, {41, 2}});
  data.AddValue(Sample(1), 3);
  EXPECT_EQ("39:1 1s:3 41:2", Print(data));
}

TEST(Vrad_ContinuousData_AddValue, PutsATimeOfNeitherUnitInPlaceByItsCount) {
  TestData data({{200, 1}, {300, 2}});
  data.AddValue(Sample(10), 3);
  data.AddValue(Time_Typed(50, static_cast<Time_EType>(-1)), 9);
  EXPECT_EQ("50:9 200:1 300:2 10s:3", Print(data));
}

TEST(Vrad_ContinuousData_AddValue, DoesNotSnap) {
  TickTimesMatterScope const scope;
  EXPECT_EQ("1001:1", Print(SnappingData({{1001, 1}})));
}

TEST(Vrad_ContinuousData_AddValue, AnnouncesInEveryCase) {
  TestData data({{10, 1}});
  EXPECT_TRUE(Announces(data, [&] { data.AddValue(Tick(20), 1); }));
  EXPECT_TRUE(Announces(data, [&] { data.AddValue(Tick(10), 2); }));
  EXPECT_TRUE(Announces(data, [&] { data.AddValue(Tick(10), 1); }));
}

// ---- EraseRange

TEST(Vrad_ContinuousData_EraseRange, TakesTheStartAndLeavesTheEnd) {
  TestData data({{9, 1}, {10, 2}, {19, 3}, {20, 4}});
  data.EraseRange(Tick(10), Tick(20));
  EXPECT_EQ("9:1 20:4", Print(data));
}

TEST(Vrad_ContinuousData_EraseRange, AnnouncesOnlyIfSomethingGoes) {
  TestData data({{10, 1}});
  EXPECT_FALSE(Announces(data, [&] { data.EraseRange(Tick(11), Tick(20)); }));
  EXPECT_FALSE(Announces(data, [&] { data.EraseRange(Tick(0), Tick(10)); }));
  EXPECT_TRUE(Announces(data, [&] { data.EraseRange(Tick(10), Tick(11)); }));
}

TEST(Vrad_ContinuousData_EraseRange, EndBeforeStartIsAnEmptyStretch) {
  TestData data({{10, 1}, {20, 2}});
  EXPECT_FALSE(Announces(data, [&] { data.EraseRange(Tick(30), Tick(0)); }));
  EXPECT_EQ("10:1 20:2", Print(data));
}

// ---- GetLastValueChangeBeforeTime

TEST(Vrad_ContinuousData_GetLastValueChangeBeforeTime, EmptyStoreGivesFalseAndLeavesTheOutputs) {
  TestData const data;
  Time_Typed time = Tick(77);
  int value = 78;
  EXPECT_FALSE(data.GetLastValueChangeBeforeTime(&time, &value, Tick(100)));
  EXPECT_EQ(Tick(77), time);
  EXPECT_EQ(78, value);
}

TEST(Vrad_ContinuousData_GetLastValueChangeBeforeTime, SkipsASegmentExactlyAtTheTime) {
  TestData const data({{10, 1}, {20, 2}});
  EXPECT_EQ("none", PrintLastBefore(data, Tick(10)));
  EXPECT_EQ("10:1", PrintLastBefore(data, Tick(11)));
  EXPECT_EQ("10:1", PrintLastBefore(data, Tick(20)));
  EXPECT_EQ("20:2", PrintLastBefore(data, Tick(21)));
}

TEST(Vrad_ContinuousData_GetLastValueChangeBeforeTime, TakesTimesOfTheOtherUnit) {
  TestData const data({{40, 1}, {80, 2}});
  EXPECT_EQ("none", PrintLastBefore(data, Sample(1)));
  EXPECT_EQ("40:1", PrintLastBefore(data, Sample(2)));
}

// ---- GetValueAtTime

TEST(Vrad_ContinuousData_GetValueAtTime, TakesASegmentExactlyAtTheTime) {
  TestData const data({{10, 1}, {20, 2}});
  EXPECT_EQ(1, data.GetValueAtTime(Tick(10)));
  EXPECT_EQ(1, data.GetValueAtTime(Tick(19)));
  EXPECT_EQ(2, data.GetValueAtTime(Tick(20)));
  EXPECT_EQ(2, data.GetValueAtTime(Tick(1000)));
}

TEST(Vrad_ContinuousData_GetValueAtTime, ThrowsBeforeTheFirstSegment) {
  TestData const data({{10, 1}});
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(data.GetValueAtTime(Tick(9)), Cmn_AssertException);
  ASSERT_EQ(1, recorder.GetNum("i != mSegments.begin()"));
  EXPECT_FALSE(recorder.GetEntries()[0].mFlag);
  EXPECT_EQ("vrad/vrad_continuousdata.cpp", recorder.GetEntries()[0].mPath);
}

TEST(Vrad_ContinuousData_GetValueAtTime, GivesZeroThereWithThrowingOff) {
  TestData const data({{10, 1}});
  Cmn_AssertRecorder recorder;
  NotThrowingScope const scope;
  EXPECT_EQ(0, data.GetValueAtTime(Tick(9)));
  EXPECT_EQ(1, recorder.GetNum());
}

// ---- ForEachInRange

TEST(Vrad_ContinuousData_ForEachInRange, IncludesTheStartAndExcludesTheEnd) {
  TestData const data({{9, 1}, {10, 2}, {19, 3}, {20, 4}});
  EXPECT_EQ("10:2 19:3", PrintRange(data, Tick(10), Tick(20)));
}

TEST(Vrad_ContinuousData_ForEachInRange, EmptyStoreCallsNothing) {
  EXPECT_EQ("", PrintRange(TestData(), Tick(-1000), Tick(1000)));
}

TEST(Vrad_ContinuousData_ForEachInRange, EndBeforeStartCallsNothing) {
  EXPECT_EQ("", PrintRange(TestData({{10, 1}, {20, 2}}), Tick(30), Tick(0)));
  EXPECT_EQ("", PrintRange(TestData({{10, 1}, {20, 2}}), Tick(15), Tick(15)));
}

TEST(Vrad_ContinuousData_ForEachInRange, TakesBoundsOfTheOtherUnit) {
  TestData const data({{39, 1}, {40, 2}, {79, 3}, {80, 4}});
  EXPECT_EQ("40:2 79:3", PrintRange(data, Sample(1), Sample(2)));
}

TEST(Vrad_ContinuousData_ForEachInRange, GoesThroughManyChunks) {
  TestData data;
  for (int i = 0; i < 3000; ++i)
    data.AddValue(Tick(i), i);
  int num = 0;
  struct Counter : Vrad_ContinuousData_OutputIter {
    explicit Counter(int & ioNum) : mNum(ioNum) {}
    void operator()(Time_Typed iTime, int iValue) override {
      EXPECT_EQ(Tick(mNum + 100), iTime);
      EXPECT_EQ(mNum + 100, iValue);
      ++mNum;
    }
    int & mNum;
  } counter(num);
  data.ForEachInRange(&counter, Tick(100), Tick(2900));
  EXPECT_EQ(2800, num);
}

// ---- IsSurelyEmptyInRange

TEST(Vrad_ContinuousData_IsSurelyEmptyInRange, KnowsFirstAndLastTime) {
  TestData const data({{10, 1}, {20, 2}});
  EXPECT_TRUE(data.IsSurelyEmptyInRange(Tick(0), Tick(10)));
  EXPECT_FALSE(data.IsSurelyEmptyInRange(Tick(0), Tick(11)));
  EXPECT_FALSE(data.IsSurelyEmptyInRange(Tick(20), Tick(30)));
  EXPECT_TRUE(data.IsSurelyEmptyInRange(Tick(21), Tick(30)));
  EXPECT_TRUE(TestData().IsSurelyEmptyInRange(Tick(0), Tick(10)));
}

TEST(Vrad_ContinuousData_IsSurelyEmptyInRange, SaysNothingOfMixedUnits) {
  TestData data({{10, 1}});
  EXPECT_FALSE(data.IsSurelyEmptyInRange(Sample(100), Sample(200)));
  data.AddValue(Sample(10), 2);
  EXPECT_FALSE(data.IsSurelyEmptyInRange(Tick(10000), Tick(20000)));
}

// A read of a range remembers the gap where it ended: what follows must not depend on that.
TEST(Vrad_ContinuousData_ForEachInRange, ReadsBlockAfterBlock) {
  TestData const data({{10, 1}, {25, 2}, {26, 3}, {60, 4}});
  std::string line;
  for (int start = -20; start < 90; start += 5)
    AppendWord(line, "[" + PrintRange(data, Tick(start), Tick(start + 5)) + "]");
  EXPECT_EQ("[] [] [] [] [] [] [10:1] [] [] [25:2 26:3] [] [] [] [] [] [] [60:4] [] [] [] [] []",
            line);
}

TEST(Vrad_ContinuousData_ForEachInRange, ReadsOnBothSidesOfTheGapWhereItStands) {
  TestData const data({{10, 1}, {20, 2}, {30, 3}});
  EXPECT_EQ("", PrintRange(data, Tick(14), Tick(16)));
  EXPECT_TRUE(data.IsSurelyEmptyInRange(Tick(11), Tick(20)));
  EXPECT_FALSE(data.IsSurelyEmptyInRange(Tick(10), Tick(20)));
  EXPECT_FALSE(data.IsSurelyEmptyInRange(Tick(11), Tick(21)));
  EXPECT_EQ("20:2", PrintRange(data, Tick(11), Tick(21)));
  EXPECT_TRUE(data.IsSurelyEmptyInRange(Tick(21), Tick(30)));
}

TEST(Vrad_ContinuousData_ForEachInRange, EditsFillTheGap) {
  TestData data({{10, 1}, {20, 2}});
  EXPECT_EQ("", PrintRange(data, Tick(14), Tick(16)));
  data.AddValue(Tick(15), 3);
  EXPECT_EQ("15:3", PrintRange(data, Tick(14), Tick(16)));
  EXPECT_EQ("", PrintRange(data, Tick(16), Tick(18)));
  data.OffsetTimes(Ticks(2));
  EXPECT_EQ("17:3", PrintRange(data, Tick(16), Tick(18)));
  EXPECT_EQ("", PrintRange(data, Tick(18), Tick(19)));
  std::unique_ptr<Ndo_State> const state(TestData({{10, 1}, {18, 5}, {22, 2}}).NdoGetState());
  data.NdoRestoreState(state.get());
  EXPECT_EQ("18:5", PrintRange(data, Tick(18), Tick(19)));
}

TEST(Vrad_ContinuousData_ForEachInRange, TakesTimesFromOneLimitToTheOther) {
  TestData data({{0, 2}, {1LL << 40, 3}});
  data.AddValue(Time_Typed::MinTime(Time_eType_Ticks), 1);
  data.AddValue(Tick(Time_Saturating::kMax), 4);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ("", PrintRange(data, Tick(1), Tick(1LL << 40)));
    EXPECT_EQ("0:2 1099511627776:3", PrintRange(data, Tick(0), Tick((1LL << 40) + 1)));
    EXPECT_EQ("", PrintRange(data, Tick(1LL << 41), Tick(Time_Saturating::kMax)));
    EXPECT_EQ("1099511627776:3", PrintRange(data, Tick(1LL << 39), Tick(1LL << 62)));
  }
}

// ---- AddFromData

TEST(Vrad_ContinuousData_AddFromData, MergesTheRangeShifted) {
  TestData data({{5, 1}, {115, 2}, {200, 3}});
  TestData const source({{9, 10}, {10, 11}, {19, 12}, {25, 13}});
  data.AddFromData(&source, Tick(10), Tick(20), Ticks(100));
  EXPECT_EQ("5:1 110:11 115:2 119:12 200:3", Print(data));
  EXPECT_EQ("9:10 10:11 19:12 25:13", Print(source));
}

TEST(Vrad_ContinuousData_AddFromData, SourceSegmentAtTheEndIsNotMerged) {
  TestData data;
  data.AddFromData(std::make_unique<TestData>(TickValues{{10, 1}, {20, 2}}).get(), Tick(10),
                   Tick(20), Ticks(0));
  EXPECT_EQ("10:1", Print(data));
}

TEST(Vrad_ContinuousData_AddFromData, TargetSegmentAtTheShiftedEndIsKept) {
  TestData data({{120, 9}});
  TestData const source({{10, 1}, {20, 2}});
  data.AddFromData(&source, Tick(10), Tick(20), Ticks(100));
  EXPECT_EQ("110:1 120:9", Print(data));
}

TEST(Vrad_ContinuousData_AddFromData, ReplacesATargetSegmentOfEqualTime) {
  TestData data({{10, 1}, {20, 2}});
  TestData const source({{10, 7}});
  data.AddFromData(&source, Tick(0), Tick(100), Ticks(0));
  EXPECT_EQ("10:7 20:2", Print(data));
}

TEST(Vrad_ContinuousData_AddFromData, EndNotAfterStartDoesNothing) {
  TestData data;
  TestData const source({{10, 1}});
  EXPECT_FALSE(Announces(data, [&] { data.AddFromData(&source, Tick(10), Tick(10), Ticks(0)); }));
  EXPECT_FALSE(Announces(data, [&] { data.AddFromData(&source, Tick(20), Tick(0), Ticks(0)); }));
  EXPECT_EQ("", Print(data));
}

TEST(Vrad_ContinuousData_AddFromData, EmptySourceRangeAnnouncesNothing) {
  TestData data({{10, 1}});
  TestData const source({{10, 1}});
  EXPECT_FALSE(Announces(data, [&] { data.AddFromData(&source, Tick(11), Tick(99), Ticks(0)); }));
  EXPECT_TRUE(Announces(data, [&] { data.AddFromData(&source, Tick(10), Tick(11), Ticks(0)); }));
}

TEST(Vrad_ContinuousData_AddFromData, SnapsWhileTickTimesMatter) {
  TestData const source({{1400, 1}, {1600, 2}});
  SnappingData data;
  data.AddFromData(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("1400:1 1600:2", Print(data));
  data.Clear();
  TickTimesMatterScope const scope;
  data.AddFromData(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("1000:1 2000:2", Print(data));
}

TEST(Vrad_ContinuousData_AddFromData, DoesNotSnapWithoutTheFlag) {
  TickTimesMatterScope const scope;
  TestData data;
  TestData const source({{1400, 1}});
  data.AddFromData(&source, Tick(0), Tick(2000), Ticks(1));
  EXPECT_EQ("1401:1", Print(data));
}

TEST(Vrad_ContinuousData_AddFromData, DoesNotSnapSampleTimes) {
  TickTimesMatterScope const scope;
  SnappingData data;
  TestData source;
  source.AddValue(Sample(1400), 1);
  data.AddFromData(&source, Sample(0), Sample(2000), Samples(1));
  EXPECT_EQ("1401s:1", Print(data));
}

TEST(Vrad_ContinuousData_AddFromData, OfTwoThatSnapToOneTickTheEarlierStays) {
  TickTimesMatterScope const scope;
  SnappingData data({{1000, 9}});
  TestData const source({{900, 1}, {1100, 2}});
  data.AddFromData(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("1000:1", Print(data));
}

TEST(Vrad_ContinuousData_AddFromData, SegmentAtTheShiftedEndGivesWayToOneThatSnapsThere) {
  TickTimesMatterScope const scope;
  SnappingData data({{2000, 9}});
  TestData const source({{1700, 1}});
  data.AddFromData(&source, Tick(1700), Tick(2000), Ticks(0));
  EXPECT_EQ("2000:1", Print(data));
}

TEST(Vrad_ContinuousData_AddFromData, LeavesTimesOutsideTheRegionDoubled) {
  TickTimesMatterScope const scope;
  SnappingData data({{1000, 9}});
  TestData const source({{1400, 1}});
  data.AddFromData(&source, Tick(1400), Tick(2000), Ticks(0));
  EXPECT_EQ(2, data.Size());
  EXPECT_EQ("1000:9 1000:1", Print(data));
}

TEST(Vrad_ContinuousData_AddFromData, ItselfActsAsACopy) {
  TestData data({{0, 1}, {10, 2}, {20, 3}});
  data.AddFromData(&data, Tick(0), Tick(20), Ticks(10));
  EXPECT_EQ("0:1 10:1 20:2", Print(data));
}

TEST(Vrad_ContinuousData_AddFromData, TakesAnOffsetOfTheOtherUnit) {
  TestData data;
  TestData const source({{40, 1}});
  data.AddFromData(&source, Tick(0), Tick(100), Samples(2));
  EXPECT_EQ("120:1", Print(data));
}

// ---- EraseFromData

TEST(Vrad_ContinuousData_EraseFromData, TakesOutWhatIsAlikeInTimeAndValue) {
  TestData data({{5, 1}, {110, 11}, {115, 2}, {119, 12}, {125, 13}});
  TestData const source({{10, 11}, {19, 12}, {25, 13}});
  data.EraseFromData(&source, Tick(10), Tick(20), Ticks(100));
  EXPECT_EQ("5:1 115:2 125:13", Print(data));
}

TEST(Vrad_ContinuousData_EraseFromData, LeavesASegmentWhoseValueDiffers) {
  TestData data({{10, 1}, {20, 2}});
  TestData const source({{10, 9}, {20, 2}});
  data.EraseFromData(&source, Tick(0), Tick(100), Ticks(0));
  EXPECT_EQ("10:1", Print(data));
}

TEST(Vrad_ContinuousData_EraseFromData, AnnouncesWheneverTheSourceRangeIsNotEmpty) {
  TestData data({{10, 1}});
  TestData const source({{10, 9}});
  EXPECT_TRUE(Announces(data, [&] { data.EraseFromData(&source, Tick(0), Tick(99), Ticks(0)); }));
  EXPECT_FALSE(Announces(data, [&] { data.EraseFromData(&source, Tick(11), Tick(99), Ticks(0)); }));
  EXPECT_FALSE(Announces(data, [&] { data.EraseFromData(&source, Tick(99), Tick(0), Ticks(0)); }));
}

TEST(Vrad_ContinuousData_EraseFromData, DoesNotSnap) {
  TickTimesMatterScope const scope;
  SnappingData data;
  TestData const source({{1400, 1}});
  data.AddFromData(&source, Tick(0), Tick(2000), Ticks(0));
  data.EraseFromData(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("1000:1", Print(data));
}

TEST(Vrad_ContinuousData_EraseFromData, ItselfTakesAllOut) {
  TestData data({{0, 1}, {10, 2}, {20, 3}});
  data.EraseFromData(&data, Tick(0), Tick(11), Ticks(0));
  EXPECT_EQ("20:3", Print(data));
}

TEST(Vrad_ContinuousData_EraseFromData, ItselfShiftedTakesWhatRepeats) {
  TestData data({{0, 7}, {10, 7}, {20, 7}, {30, 8}});
  data.EraseFromData(&data, Tick(0), Tick(100), Ticks(10));
  EXPECT_EQ("0:7 30:8", Print(data));
}

// ---- OffsetTimes

TEST(Vrad_ContinuousData_OffsetTimes, ShiftsAllAndAnnouncesNothing) {
  TestData data({{0, 1}, {10, 2}});
  Cmn_AssertRecorder const recorder;
  Ndo_Transaction transaction;
  data.OffsetTimes(Ticks(-5));
  EXPECT_FALSE(Ndo_gManager.HasAnnounced(data.NdoGetID()));
  EXPECT_EQ("-5:1 5:2", Print(data));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrad_ContinuousData_OffsetTimes, EmptyStoreIsLeftAlone) {
  TestData data;
  Cmn_AssertRecorder const recorder;
  data.OffsetTimes(Ticks(5));
  EXPECT_TRUE(data.IsEmpty());
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrad_ContinuousData_OffsetTimes, FirstSegmentInSamplesIsReportedAndShifted) {
  TestData data;
  data.AddValue(Sample(1), 1);
  data.AddValue(Sample(2), 2);
  Cmn_AssertRecorder const recorder;
  data.OffsetTimes(Samples(10));
  EXPECT_EQ("11s:1 12s:2", Print(data));
  EXPECT_EQ(1, recorder.GetNum("iter->mTime.GetType() == Time_eType_Ticks"));
  EXPECT_EQ(1, recorder.GetNum());
}

TEST(Vrad_ContinuousData_OffsetTimes, SnapsWithoutRepairingWhatBecomesDouble) {
  TickTimesMatterScope const scope;
  SnappingData data({{900, 1}, {1100, 2}, {2600, 3}});
  data.OffsetTimes(Ticks(100));
  EXPECT_EQ(3, data.Size());
  EXPECT_EQ("1000:1 1000:2 3000:3", Print(data));
}

TEST(Vrad_ContinuousData_OffsetTimes, LeavesASnapshotAlone) {
  TestData data({{0, 1}});
  std::unique_ptr<Ndo_State> const state(data.NdoGetState());
  data.OffsetTimes(Ticks(5));
  data.NdoRestoreState(state.get());
  EXPECT_EQ("0:1", Print(data));
}

TEST(Vrad_ContinuousData_OffsetTimes, SearchesFindTheNewTimes) {
  TestData data;
  for (int i = 0; i < 1000; ++i)
    data.AddValue(Tick(i), i);
  data.OffsetTimes(Ticks(5000));
  EXPECT_EQ("5499:499", PrintLastBefore(data, Tick(5500)));
  EXPECT_EQ("none", PrintLastBefore(data, Tick(5000)));
}

// ---- Clear, ReplaceData

TEST(Vrad_ContinuousData_Clear, RemovesAll) {
  TestData data({{0, 1}, {10, 2}});
  data.Clear();
  EXPECT_TRUE(data.IsEmpty());
}

TEST(Vrad_ContinuousData_Clear, AnnouncesOnlyIfSomethingGoes) {
  TestData data;
  EXPECT_FALSE(Announces(data, [&] { data.Clear(); }));
  data.AddValue(Tick(0), 1);
  EXPECT_TRUE(Announces(data, [&] { data.Clear(); }));
}

TEST(Vrad_ContinuousData_ReplaceData, TakesOverSegmentsAndLeavesTheSource) {
  TestData data({{5, 5}});
  TestData source({{0, 1}, {10, 2}});
  data.ReplaceData(&source);
  data.AddValue(Tick(20), 3);
  EXPECT_EQ("0:1 10:2 20:3", Print(data));
  EXPECT_EQ("0:1 10:2", Print(source));
}

TEST(Vrad_ContinuousData_ReplaceData, TakesOverTheSnapping) {
  TickTimesMatterScope const scope;
  TestData data;
  data.ReplaceData(std::make_unique<SnappingData>().get());
  TestData const source({{1400, 1}});
  data.AddFromData(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("1000:1", Print(data));
}

TEST(Vrad_ContinuousData_ReplaceData, ItselfKeepsTheContents) {
  TestData data({{0, 1}});
  data.ReplaceData(&data);
  EXPECT_EQ("0:1", Print(data));
}

TEST(Vrad_ContinuousData_ReplaceData, AlwaysAnnounces) {
  TestData data;
  TestData const source;
  EXPECT_TRUE(Announces(data, [&] { data.ReplaceData(&source); }));
}

// ---- Undo

TEST(Vrad_ContinuousData_Undo, RestoresSegmentsAndSnapping) {
  SnappingData data({{0, 1}});
  TestData const other({{5, 5}});
  Ndo_gManager.BeginTransaction();
  data.ReplaceData(&other);
  data.AddValue(Tick(50), 6);
  Ndo_gManager.EndTransaction();
  Ndo_gManager.Undo();
  EXPECT_EQ("0:1", Print(data));
  TickTimesMatterScope const scope;
  TestData const source({{1400, 1}});
  data.AddFromData(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("0:1 1000:1", Print(data));
  Ndo_gManager.Redo();
  EXPECT_EQ("5:5 50:6", Print(data));
  Ndo_gManager.ClearHistory();
}

TEST(Vrad_ContinuousData_Undo, StateOfAnotherClassThrows) {
  TestData data({{0, 1}});
  ForeignState state;
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(data.NdoRestoreState(&state), Cmn_AssertException);
  EXPECT_EQ("0:1", Print(data));
  ASSERT_EQ(1, recorder.GetNum("p != 0"));
  EXPECT_TRUE(recorder.GetEntries()[0].mFlag);
}

TEST(Vrad_ContinuousData_Undo, StateOfAnotherClassRestoresNothingWithThrowingOff) {
  TestData data({{0, 1}});
  ForeignState state;
  Cmn_AssertRecorder recorder;
  NotThrowingScope const scope;
  data.NdoRestoreState(&state);
  EXPECT_EQ("0:1", Print(data));
  EXPECT_EQ(1, recorder.GetNum("p != 0"));
}

TEST(Vrad_ContinuousData_Undo, BlankObjectOfAStateSnapsAndIsNotUndoable) {
  std::unique_ptr<Ndo_State> const state(TestData().NdoGetState());
  std::unique_ptr<Ndo_Object> const blank(state->NdoReCreate());
  Vrad_ContinuousData & data = dynamic_cast<Vrad_ContinuousData &>(*blank);
  EXPECT_FALSE(data.NdoIsUndoable());
  EXPECT_TRUE(data.IsEmpty());
  TickTimesMatterScope const scope;
  TestData const source({{1400, 1}});
  data.AddFromData(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("1000:1", Print(data));
}

TEST(Vrad_ContinuousData_Undo, ReCreatedDataHasItsSegments) {
  auto data = std::make_unique<TestData>(TickValues{{0, 1}, {10, 2}});
  long long const id = data->NdoGetID();
  std::unique_ptr<Ndo_State> const state(data->NdoGetState());
  data.reset();
  std::unique_ptr<Ndo_Object> const again(Ndo_gManager.ReCreate(state.get(), id));
  EXPECT_EQ("0:1 10:2", Print(dynamic_cast<Vrad_ContinuousData &>(*again)));
  EXPECT_EQ(id, again->NdoGetID());
}

// ---- The iterators

TEST(Vrad_ContinuousDataTimedEventsInRangeIter, WalksTheWholeStore) {
  TestData data({{-5, 1}, {10, 2}});
  data.AddValue(Time_Typed::MaxTime(Time_eType_Ticks), 3);
  Vrad_ContinuousDataTimedEventsInRangeIter iter(&data, Vrae_SubStream::Controller(7));
  EXPECT_EQ("-5:1 10:2 9223372036854775807:3", PrintRest(iter));
}

TEST(Vrad_ContinuousDataTimedEventsInRangeIter, WalksARange) {
  TestData data({{9, 1}, {10, 2}, {19, 3}, {20, 4}});
  Vrad_ContinuousDataTimedEventsInRangeIter iter(&data, Vrae_SubStream::Controller(7), Tick(10),
                                                 Tick(20));
  EXPECT_EQ("10:2 19:3", PrintRest(iter));
}

TEST(Vrad_ContinuousDataTimedEventsInRangeIter, MakesEventsOfTheSubStream) {
  TestData data({{10, 2}});
  Vrad_ContinuousDataTimedEventsInRangeIter const iter(&data, Vrae_SubStream::Controller(7));
  Vrae_TimedEvent const expected(Tick(10), Vrae_ControllerEvent(7, 2));
  EXPECT_EQ(expected, *iter);
}

TEST(Vrad_ContinuousDataTimedEventsInRangeIter, ValueOutOfRangeIsReportedOnceForEachReading) {
  TestData data({{10, 128}});
  Vrad_ContinuousDataTimedEventsInRangeIter const iter(&data, Vrae_SubStream::MonoPressure());
  Cmn_AssertRecorder const recorder;
  *iter;
  EXPECT_EQ(1, recorder.GetNum("iValue >= mTypeP->GetValueRange().mMin && "
                               "iValue <= mTypeP->GetValueRange().mMax"));
}

TEST(Vrad_ContinuousDataTimedEventsInRangeIter, StaysAtItsEnd) {
  TestData data({{10, 2}});
  Vrad_ContinuousDataTimedEventsInRangeIter iter(&data, Vrae_SubStream::Controller(7));
  ++iter;
  ++iter;
  EXPECT_FALSE(iter.IsMore());
  EXPECT_EQ(Vrae_TimedEvent(), *iter);
}

TEST(Vrad_ContinuousDataExtendedEventsInRangeIter, WalksTheWholeStoreAndARange) {
  TestData data({{9, 1}, {10, 2}, {20, 3}});
  Vrad_ContinuousDataExtendedEventsInRangeIter all(&data, Vrae_SubStream::Controller(7));
  EXPECT_EQ("9:1 10:2 20:3", PrintRest(all));
  Vrad_ContinuousDataExtendedEventsInRangeIter range(&data, Vrae_SubStream::Controller(7), Tick(10),
                                                     Tick(20));
  EXPECT_EQ("10:2", PrintRest(range));
  EXPECT_FALSE(range.IsMore());
}

TEST(Vrad_ContinuousDataExtendedEventsInRangeIter, GivesPlainExtendedEvents) {
  TestData data({{9, 1}});
  Vrad_ContinuousDataExtendedEventsInRangeIter const iter(&data, Vrae_SubStream::Controller(7));
  EXPECT_FALSE((*iter).IsNoteWithDurationExtendedEvent());
}

// ---- Costs

TEST(Vrad_ContinuousData_RealTime, ReadingKeepsTheRules) {
  TestData data;
  for (int i = 0; i < 5000; ++i)
    data.AddValue(Tick(i * 10), i % 128);
  struct Sum : Vrad_ContinuousData_OutputIter {
    void operator()(Time_Typed, int iValue) override { mSum += iValue; }
    int mSum = 0;
  } sum;
  Time_Typed time;
  int value = 0;
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              data.ForEachInRange(&sum, Tick(10000), Tick(20000));
              data.GetLastValueChangeBeforeTime(&time, &value, Sample(500));
              value = data.GetValueAtTime(Tick(777));
            }));
  EXPECT_EQ(77, value);
}

TEST(Vrad_ContinuousData, BuiltInRandomOrderIsSorted) {
  std::mt19937 random(1);
  TestData data;
  for (int i = 0; i < 20000; ++i)
    data.AddValue(Tick(static_cast<int>(random() % 5000)), i);
  Vrad_ContinuousDataTimedEventsInRangeIter iter(&data, Vrae_SubStream::Program());
  Time_Typed last = Tick(-1);
  for (; iter.IsMore(); ++iter) {
    EXPECT_LT(last, (*iter).mTime);
    last = (*iter).mTime;
  }
}

}  // namespace
