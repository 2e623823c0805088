#include "vrad/vrae_chasetracker.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "cmn/cmn_assert.h"
#include "support/chase_receiver.h"
#include "vrad/vrae_chasetrackermap.h"

namespace {

constexpr char const * kNotReleasing = "this->GetEntryIsReleasing(mIndex)";

Time_Typed Tick(long long iCount) {
  return Time_Typed(iCount, Time_eType_Ticks);
}

Vrae_SubStream Cc(signed char iNumber) {
  return Vrae_SubStream::Controller(iNumber);
}

Vrae_SubStream Bend() {
  return Vrae_SubStream::PitchBend();
}

Vrae_SubStream Pressure() {
  return Vrae_SubStream::MonoPressure();
}

struct Trackers : testing::Test {
  Vrae_ChaseTrackerMap mMap;
  ChaseSmallMap mSmallMap;
  Vrae_ChaseTracker mOld{&mMap, true};
  Vrae_ChaseTracker mNew{&mMap, true};
  ChasePrinter mOut;

  // What an unmute sends shows the changed flags of entries that are not releasing.
  std::string UnMuted(Vrae_ChaseTracker const & iTracker) {
    iTracker.DoUnMute(&mOut);
    return mOut.Take();
  }
  std::string Prepped(Vrae_ChaseTracker const & iTracker) {
    iTracker.Prep(&mOut);
    return mOut.Take();
  }
  static int ValueOf(Vrae_ChaseTracker const & iTracker, Vrae_SubStream const & iSubStream) {
    Vrae_ChaseTracker_ChasingEntry entry;
    return iTracker.GetChasingEntry(&entry, iSubStream) ? entry.mValue : -99999;
  }
};

typedef Trackers Vrae_ChaseTracker_Construction;
typedef Trackers Vrae_ChaseTracker_Feeding;
typedef Trackers Vrae_ChaseTracker_Queries;
typedef Trackers Vrae_ChaseTracker_Iterators;

}  // namespace

// ---- Construction, copying, clearing ----

TEST_F(Vrae_ChaseTracker_Construction, RefusesANullMap) {
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(Vrae_ChaseTracker(static_cast<Vrae_ChaseTrackerMap const *>(nullptr), true),
               Cmn_AssertException);
  ASSERT_EQ(1, recorder.GetNum("iMapP != 0"));
  EXPECT_FALSE(recorder.GetEntries()[0].mFlag);
}

TEST_F(Vrae_ChaseTracker_Construction, OnANullMapTreatsEveryEntryAsAbsent) {
  ThrowingOff const off;
  Cmn_AssertRecorder recorder;
  Vrae_ChaseTracker tracker(static_cast<Vrae_ChaseTrackerMap const *>(nullptr), true);
  tracker.TrackEvent(Vrae_ControllerEvent(7, 5));
  tracker.SetActiveValue(Cc(7), 5);
  EXPECT_FALSE(tracker.IsTracking(Cc(7)));
  EXPECT_FALSE(tracker.IsActive(Cc(7)));
  EXPECT_EQ("", Prepped(tracker));
  tracker.Release(&mOut, Vrae_ChaseTracker::kReleaseAndDeactivate);
  tracker.DoMute(&mOut, true);
  tracker.Clear();
  EXPECT_EQ("", mOut.Take());
  EXPECT_TRUE(Vrae_ChaseTracker_ActiveChasingIterator(&tracker).AtEnd());
  EXPECT_TRUE(Vrae_ChaseTracker_ActiveReleasingIterator(&tracker).AtEnd());
  EXPECT_EQ(1, recorder.GetNum());
}

TEST_F(Vrae_ChaseTracker_Construction, StartsWithoutActiveEntries) {
  for (signed char number = 1; number < 120; ++number)
    EXPECT_FALSE(mNew.IsActive(Cc(number)));
  EXPECT_EQ("", Prepped(mNew));
}

TEST_F(Vrae_ChaseTracker_Construction, StartsWithValuesOfZeroAndNothingChanged) {
  EXPECT_EQ(0, ValueOf(mNew, Cc(7)));
  mNew.ChaseEvent(Vrae_ControllerEvent(7, 5));
  EXPECT_EQ("", UnMuted(mNew));
}

TEST_F(Vrae_ChaseTracker_Construction, CopiesDeeplyByPointer) {
  mOld.TrackEvent(Vrae_ControllerEvent(7, 5));
  Vrae_ChaseTracker copy(&mOld);
  mOld.TrackEvent(Vrae_ControllerEvent(7, 6));
  mOld.TrackEvent(Vrae_ControllerEvent(8, 6));
  EXPECT_EQ("cc7=5", Prepped(copy));
  EXPECT_EQ("cc7=5", UnMuted(copy));
  copy.TrackEvent(Vrae_ControllerEvent(7, 9));
  EXPECT_EQ("cc7=6 cc8=6", Prepped(mOld));
}

TEST_F(Vrae_ChaseTracker_Construction, CopiesTheValueTimes) {
  mOld.SetActiveValueIfLater(Cc(7), 5, Tick(100));
  Vrae_ChaseTracker copy(&mOld);
  copy.SetActiveValueIfLater(Cc(7), 6, Tick(99));
  EXPECT_EQ(5, ValueOf(copy, Cc(7)));
}

TEST_F(Vrae_ChaseTracker_Construction, ACopysChangedFlagsAreItsOwn) {
  mOld.ChaseEvent(Vrae_ControllerEvent(7, 5));
  Vrae_ChaseTracker const copy(&mOld);
  mOld.TrackEvent(Vrae_ControllerEvent(7, 6));
  EXPECT_EQ("cc7=6", UnMuted(mOld));
  EXPECT_EQ("", UnMuted(copy));
}

TEST_F(Vrae_ChaseTracker_Construction, ACopysValueTimesAreItsOwn) {
  mOld.SetActiveValueIfLater(Cc(7), 5, Tick(100));
  Vrae_ChaseTracker copy(&mOld);
  mOld.SetActiveValueIfLater(Cc(7), 6, Tick(200));
  copy.SetActiveValueIfLater(Cc(7), 7, Tick(150));
  EXPECT_EQ(7, ValueOf(copy, Cc(7)));
  EXPECT_EQ(6, ValueOf(mOld, Cc(7)));
}

TEST_F(Vrae_ChaseTracker_Construction, CopiesReleaseOnMute) {
  Vrae_ChaseTracker quiet(&mSmallMap, false);
  quiet.TrackEvent(Vrae_PitchBendEvent(100));
  Vrae_ChaseTracker copy(&quiet);
  copy.DoMute(&mOut, true);
  EXPECT_EQ("", mOut.Take());
}

TEST_F(Vrae_ChaseTracker_Construction, ACopyOfAClearTrackerIsNotMarkedClear) {
  // mNew shares its arrays with the copy, is clear itself, and so would not sweep; the copy does.
  Vrae_ChaseTracker copy(&mOld);
  mNew = copy;
  copy.Clear();  // sweeps, and is clear now
  mNew.ChaseEvent(Vrae_ControllerEvent(7, 5));
  copy.Clear();  // does not sweep
  EXPECT_TRUE(copy.IsActive(Cc(7)));
  Vrae_ChaseTracker second(&copy);  // copied from one that is marked clear
  EXPECT_TRUE(second.IsActive(Cc(7)));
  second.Clear();  // sweeps all the same
  EXPECT_FALSE(second.IsActive(Cc(7)));
}

TEST_F(Vrae_ChaseTracker_Construction, HasNoCopyByReference) {
  EXPECT_FALSE(std::is_copy_constructible_v<Vrae_ChaseTracker>);
  EXPECT_TRUE(std::is_copy_assignable_v<Vrae_ChaseTracker>);
}

TEST_F(Vrae_ChaseTracker_Construction, AssignmentSharesTheArrays) {
  mNew = mOld;
  mOld.TrackEvent(Vrae_ControllerEvent(7, 5));
  EXPECT_TRUE(mNew.IsActive(Cc(7)));
  EXPECT_EQ("cc7=5", UnMuted(mNew));
  mNew.SetActiveValue(Cc(7), 6);
  EXPECT_EQ(6, ValueOf(mOld, Cc(7)));
}

TEST_F(Vrae_ChaseTracker_Construction, AssignmentOutlivesTheSource) {
  {
    Vrae_ChaseTracker source(&mMap, true);
    source.TrackEvent(Vrae_ControllerEvent(7, 5));
    mNew = source;
  }
  EXPECT_EQ("cc7=5", Prepped(mNew));
}

TEST_F(Vrae_ChaseTracker_Construction, AssignmentTakesTheClearMarkOnceAndThenKeepsItsOwn) {
  mNew = mOld;                                  // both clear
  mOld.ChaseEvent(Vrae_ControllerEvent(7, 5));  // mOld alone is no longer marked clear
  mNew.Clear();
  EXPECT_TRUE(mOld.IsActive(Cc(7)));
  mOld.Clear();
  EXPECT_FALSE(mNew.IsActive(Cc(7)));
}

TEST_F(Vrae_ChaseTracker_Construction, ClearTakesBackTheActiveFlagsAlone) {
  mNew.TrackEvent(Vrae_ControllerEvent(7, 5));
  mNew.Clear();
  EXPECT_FALSE(mNew.IsActive(Cc(7)));
  EXPECT_EQ(5, ValueOf(mNew, Cc(7)));
  mNew.ChaseEvent(Vrae_ControllerEvent(7, 6));
  EXPECT_EQ("cc7=6", UnMuted(mNew)) << "the changed flag stayed";
}

TEST_F(Vrae_ChaseTracker_Construction, ClearAfterHandleReleaseEventOnAClearTrackerIsSafe) {
  mNew.Clear();
  mNew.HandleReleaseEvent(Vrae_ReleaseControllerEvent(64), &mOut);
  mNew.Clear();
  EXPECT_EQ("", Prepped(mNew));
}

TEST_F(Vrae_ChaseTracker_Construction, ClearSweepsAfterSingleFlagsWereTakenBack) {
  auto const takeBacks = {+[](Vrae_ChaseTracker & t, ChasePrinter &) { t.ClearActiveFlag(Cc(64)); },
                          +[](Vrae_ChaseTracker & t, ChasePrinter & o) {
                            t.HandleReleaseEvent(Vrae_ReleaseControllerEvent(64), &o);
                          },
                          +[](Vrae_ChaseTracker & t, ChasePrinter & o) {
                            Cmn_AssertRecorder const silent;
                            t.Release(&o, Vrae_ChaseTracker::kReleaseAndDeactivate);
                          }};
  for (auto const takeBack : takeBacks) {
    mNew.ChaseEvent(Vrae_ControllerEvent(64, 127));
    mNew.ChaseEvent(Vrae_ControllerEvent(7, 5));
    takeBack(mNew, mOut);
    ASSERT_FALSE(mNew.IsActive(Cc(64)));
    ASSERT_TRUE(mNew.IsActive(Cc(7)));
    mNew.Clear();
    EXPECT_FALSE(mNew.IsActive(Cc(7)));
  }
}

TEST_F(Vrae_ChaseTracker_Construction, AnEntryThatTheMapGotLaterCountsAsAbsent) {
  mMap.AppendEntry(Vrae_SubStream::PolyPressure(60));
  mMap.DoneAddingChasingEntries();
  mNew.TrackEvent(Vrae_PolyPressureEvent(60, 5));
  mNew.SetActiveValue(Vrae_SubStream::PolyPressure(60), 5);
  EXPECT_FALSE(mNew.IsTracking(Vrae_SubStream::PolyPressure(60)));
  EXPECT_FALSE(mNew.IsActive(Vrae_SubStream::PolyPressure(60)));
  EXPECT_FALSE(mNew.IsChasing(Vrae_SubStream::PolyPressure(60)));
  Vrae_ChaseTracker_ChasingEntry entry;
  EXPECT_FALSE(mNew.GetChasingEntry(&entry, 182));
  mNew.DoMute(&mOut, true);
  EXPECT_EQ("", Prepped(mNew));
}

TEST_F(Vrae_ChaseTracker_Construction, AnEntryThatBecameChasingLaterStaysReleaseOnly) {
  mMap.AppendReleasingEntry(Vrae_SubStream::PolyPressure(60), 0);
  Vrae_ChaseTracker tracker(&mMap, true);
  mMap.DoneAddingChasingEntries();
  tracker.TrackEvent(Vrae_PolyPressureEvent(60, 5));
  EXPECT_TRUE(tracker.IsActive(Vrae_SubStream::PolyPressure(60)));
  EXPECT_FALSE(tracker.IsChasing(Vrae_SubStream::PolyPressure(60)));
  EXPECT_EQ("", Prepped(tracker));
}

// ---- Feeding ----

TEST_F(Vrae_ChaseTracker_Feeding, ChaseEventTakesTheValueWithoutAChange) {
  mNew.ChaseEvent(Vrae_ControllerEvent(7, 5));
  EXPECT_TRUE(mNew.IsActive(Cc(7)));
  EXPECT_EQ(5, ValueOf(mNew, Cc(7)));
  EXPECT_EQ("", UnMuted(mNew));
}

TEST_F(Vrae_ChaseTracker_Feeding, TrackEventMarksAChange) {
  mNew.TrackEvent(Vrae_ControllerEvent(7, 5));
  EXPECT_EQ("cc7=5", UnMuted(mNew));
}

TEST_F(Vrae_ChaseTracker_Feeding, TrackEventMarksAChangeOfAnActiveEntryToo) {
  mNew.ChaseEvent(Vrae_ControllerEvent(7, 5));
  mNew.TrackEvent(Vrae_ControllerEvent(7, 5));
  EXPECT_EQ("cc7=5", UnMuted(mNew));
}

TEST_F(Vrae_ChaseTracker_Feeding, TrackEventOnAnActiveReleasingEntryMarksNoChange) {
  mNew.ChaseEvent(Vrae_PitchBendEvent(100));
  mNew.TrackEvent(Vrae_PitchBendEvent(0));
  EXPECT_EQ("", UnMuted(mNew)) << "back at the release value and not changed";
}

TEST_F(Vrae_ChaseTracker_Feeding, TrackEventOnAnInactiveReleasingEntryMarksAChange) {
  mNew.TrackEvent(Vrae_PitchBendEvent(0));
  EXPECT_EQ("bend=0", UnMuted(mNew));
}

TEST_F(Vrae_ChaseTracker_Feeding, TrackValueTakesTheValueWithoutAChange) {
  mNew.TrackValue(Cc(7), 5);
  EXPECT_TRUE(mNew.IsActive(Cc(7)));
  EXPECT_EQ(5, ValueOf(mNew, Cc(7)));
  EXPECT_EQ("", UnMuted(mNew));
}

TEST_F(Vrae_ChaseTracker_Feeding, SetActiveValueTakesTheValueWithoutAChange) {
  mNew.SetActiveValue(Cc(7), 5);
  EXPECT_EQ("cc7=5", Prepped(mNew));
  EXPECT_EQ("", UnMuted(mNew));
}

TEST_F(Vrae_ChaseTracker_Feeding, NoneOfThemTakesBackAChange) {
  mNew.TrackEvent(Vrae_ControllerEvent(7, 1));
  mNew.ChaseEvent(Vrae_ControllerEvent(7, 2));
  mNew.TrackValue(Cc(7), 3);
  mNew.SetActiveValue(Cc(7), 4);
  mNew.SetActiveValueIfLater(Cc(7), 5, Tick(0));
  EXPECT_EQ("cc7=5", UnMuted(mNew));
}

TEST_F(Vrae_ChaseTracker_Feeding, ReleaseOnlyEntriesBecomeActiveWithoutAValue) {
  Vrae_SubStream const poly = Vrae_SubStream::PolyPressure(60);
  Vrae_ChaseTracker tracker(&mSmallMap, true);
  tracker.ChaseEvent(Vrae_PolyPressureEvent(60, 9));
  EXPECT_TRUE(tracker.IsActive(poly));
  tracker.ClearActiveFlag(poly);
  tracker.TrackEvent(Vrae_PolyPressureEvent(60, 9));
  EXPECT_TRUE(tracker.IsActive(poly));
  tracker.ClearActiveFlag(poly);
  tracker.TrackValue(poly, 9);
  EXPECT_TRUE(tracker.IsActive(poly));
  EXPECT_EQ("", Prepped(tracker));
}

TEST_F(Vrae_ChaseTracker_Feeding, SetActiveValueIgnoresReleaseOnlyEntries) {
  Vrae_SubStream const poly = Vrae_SubStream::PolyPressure(60);
  Vrae_ChaseTracker tracker(&mSmallMap, true);
  tracker.SetActiveValue(poly, 9);
  tracker.SetActiveValueIfLater(poly, 9, Tick(0));
  EXPECT_FALSE(tracker.IsActive(poly));
}

TEST_F(Vrae_ChaseTracker_Feeding, IgnoresEventsWithoutASubStream) {
  Cmn_AssertRecorder recorder;
  mNew.ChaseEvent(Vrae_NoteOnEvent(60, 5));
  mNew.TrackEvent(Vrae_NoteOnEvent(60, 5));
  mNew.ChaseEvent(Vrae_Event());
  mNew.TrackEvent(Vrae_Event());
  mNew.ChaseEvent(Vrae_ControllerEvent(0, 5));
  mNew.TrackEvent(Vrae_ControllerEvent(0, 5));
  EXPECT_EQ("", Prepped(mNew));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST_F(Vrae_ChaseTracker_Feeding, IgnoresWhatTheMapDoesNotFollow) {
  Cmn_AssertRecorder recorder;
  mNew.ChaseEvent(Vrae_PolyPressureEvent(60, 5));
  mNew.TrackEvent(Vrae_PolyPressureEvent(60, 5));
  mNew.TrackValue(Vrae_SubStream::PolyPressure(60), 5);
  mNew.SetActiveValue(Vrae_SubStream::PolyPressure(60), 5);
  mNew.SetActiveValueIfLater(Vrae_SubStream::PolyPressure(60), 5, Tick(0));
  mNew.ClearActiveFlag(Vrae_SubStream::PolyPressure(60));
  mNew.TrackValue(Cc(0), 5);
  EXPECT_EQ("", Prepped(mNew));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST_F(Vrae_ChaseTracker_Feeding, EachOfThemEndsTheClearMark) {
  auto const feeds = {+[](Vrae_ChaseTracker & t) { t.ChaseEvent(Vrae_ControllerEvent(7, 5)); },
                      +[](Vrae_ChaseTracker & t) { t.TrackEvent(Vrae_ControllerEvent(7, 5)); },
                      +[](Vrae_ChaseTracker & t) { t.TrackValue(Cc(7), 5); },
                      +[](Vrae_ChaseTracker & t) { t.SetActiveValue(Cc(7), 5); },
                      +[](Vrae_ChaseTracker & t) { t.SetActiveValueIfLater(Cc(7), 5, Tick(0)); }};
  for (auto const feed : feeds) {
    feed(mNew);
    ASSERT_TRUE(mNew.IsActive(Cc(7)));
    mNew.Clear();
    ASSERT_FALSE(mNew.IsActive(Cc(7)));
  }
}

TEST_F(Vrae_ChaseTracker_Feeding, AReleaseOnlyEntryEndsTheClearMarkToo) {
  Vrae_SubStream const poly = Vrae_SubStream::PolyPressure(60);
  Vrae_ChaseTracker tracker(&mSmallMap, true);
  auto const feeds = {
      +[](Vrae_ChaseTracker & t) { t.ChaseEvent(Vrae_PolyPressureEvent(60, 9)); },
      +[](Vrae_ChaseTracker & t) { t.TrackEvent(Vrae_PolyPressureEvent(60, 9)); },
      +[](Vrae_ChaseTracker & t) { t.TrackValue(Vrae_SubStream::PolyPressure(60), 9); }};
  for (auto const feed : feeds) {
    feed(tracker);
    ASSERT_TRUE(tracker.IsActive(poly));
    tracker.Clear();
    ASSERT_FALSE(tracker.IsActive(poly));
  }
}

TEST_F(Vrae_ChaseTracker_Feeding, ProgramsKeepBankAndFlags) {
  mNew.ChaseEvent(Vrae_ProgramEvent(5, 0x0123));
  EXPECT_EQ(0x012305, ValueOf(mNew, Vrae_SubStream::Program()));
  EXPECT_EQ("program=74501", Prepped(mNew));
}

TEST_F(Vrae_ChaseTracker_Feeding, ClearActiveFlagKeepsValueAndChange) {
  mNew.TrackEvent(Vrae_ControllerEvent(7, 5));
  mNew.ClearActiveFlag(Cc(7));
  EXPECT_FALSE(mNew.IsActive(Cc(7)));
  EXPECT_EQ(5, ValueOf(mNew, Cc(7)));
  mNew.TrackValue(Cc(7), 6);
  EXPECT_EQ("cc7=6", UnMuted(mNew));
}

TEST_F(Vrae_ChaseTracker_Feeding, IfLaterTakesALaterTime) {
  mNew.SetActiveValueIfLater(Cc(7), 5, Tick(100));
  mNew.SetActiveValueIfLater(Cc(7), 6, Tick(101));
  EXPECT_EQ(6, ValueOf(mNew, Cc(7)));
}

TEST_F(Vrae_ChaseTracker_Feeding, IfLaterTakesAnEqualTime) {
  mNew.SetActiveValueIfLater(Cc(7), 5, Tick(100));
  mNew.SetActiveValueIfLater(Cc(7), 6, Tick(100));
  EXPECT_EQ(6, ValueOf(mNew, Cc(7)));
}

TEST_F(Vrae_ChaseTracker_Feeding, IfLaterRefusesAnEarlierTime) {
  mNew.SetActiveValueIfLater(Cc(7), 5, Tick(100));
  mNew.SetActiveValueIfLater(Cc(7), 6, Tick(99));
  EXPECT_EQ(5, ValueOf(mNew, Cc(7)));
}

TEST_F(Vrae_ChaseTracker_Feeding, IfLaterAlwaysStoresOnAnInactiveEntry) {
  mNew.SetActiveValueIfLater(Cc(7), 5, Tick(100));
  mNew.ClearActiveFlag(Cc(7));
  mNew.SetActiveValueIfLater(Cc(7), 6, Tick(50));
  EXPECT_EQ(6, ValueOf(mNew, Cc(7)));
  mNew.SetActiveValueIfLater(Cc(7), 7, Tick(50));
  EXPECT_EQ(7, ValueOf(mNew, Cc(7)));
}

TEST_F(Vrae_ChaseTracker_Feeding, IfLaterAcceptsAnyTimeAfterTrackValue) {
  mNew.TrackValue(Cc(7), 5);
  mNew.SetActiveValueIfLater(Cc(7), 6, Tick(-1000));
  EXPECT_EQ(6, ValueOf(mNew, Cc(7))) << "times start at the lowest";
}

TEST_F(Vrae_ChaseTracker_Feeding, AStaleTimeStaysInForceAfterTrackValue) {
  mNew.SetActiveValueIfLater(Cc(7), 5, Tick(100));
  mNew.TrackValue(Cc(7), 6);
  mNew.SetActiveValueIfLater(Cc(7), 7, Tick(99));
  EXPECT_EQ(6, ValueOf(mNew, Cc(7)));
}

TEST_F(Vrae_ChaseTracker_Feeding, IfLaterComparesTimesOfBothUnits) {
  mNew.SetActiveValueIfLater(Cc(7), 5, Time_Typed(1, Time_eType_Samples));
  mNew.SetActiveValueIfLater(Cc(7), 6, Tick(39));
  EXPECT_EQ(5, ValueOf(mNew, Cc(7)));
  mNew.SetActiveValueIfLater(Cc(7), 7, Tick(40));
  EXPECT_EQ(7, ValueOf(mNew, Cc(7)));
}

// ---- Queries ----

TEST_F(Vrae_ChaseTracker_Queries, IsTrackingWhatTheMapHas) {
  Vrae_ChaseTracker const tracker(&mSmallMap, true);
  EXPECT_TRUE(tracker.IsTracking(Cc(7)));
  EXPECT_TRUE(tracker.IsTracking(Vrae_SubStream::PolyPressure(60)));
  EXPECT_FALSE(tracker.IsTracking(Cc(8)));
  EXPECT_FALSE(tracker.IsTracking(Cc(0)));
}

TEST_F(Vrae_ChaseTracker_Queries, IsChasingBelowTheBoundary) {
  Vrae_ChaseTracker const tracker(&mSmallMap, true);
  EXPECT_TRUE(tracker.IsChasing(Cc(7)));
  EXPECT_FALSE(tracker.IsChasing(Vrae_SubStream::PolyPressure(60)));
  EXPECT_FALSE(tracker.IsChasing(Cc(8)));
}

TEST_F(Vrae_ChaseTracker_Queries, IsReleasingGivesTheReleaseValue) {
  Vrae_ChaseTracker const tracker(&mSmallMap, true);
  int value = -1;
  EXPECT_TRUE(tracker.IsReleasing(&value, Pressure()));
  EXPECT_EQ(5, value);
  EXPECT_TRUE(tracker.IsReleasing(nullptr, Pressure()));
}

TEST_F(Vrae_ChaseTracker_Queries, IsReleasingStoresNothingWhenFalse) {
  Vrae_ChaseTracker const tracker(&mSmallMap, true);
  Cmn_AssertRecorder recorder;
  int value = -1;
  EXPECT_FALSE(tracker.IsReleasing(&value, Cc(7)));
  EXPECT_FALSE(tracker.IsReleasing(&value, Cc(8)));
  EXPECT_EQ(-1, value);
  EXPECT_EQ(0, recorder.GetNum());
}

TEST_F(Vrae_ChaseTracker_Queries, OfTheNullSubStreamThrow) {
  Cmn_AssertRecorder recorder;
  EXPECT_THROW((void)mNew.IsTracking(Vrae_SubStream()), Cmn_AssertException);
  EXPECT_EQ(1, recorder.GetNum("0"));
}

TEST_F(Vrae_ChaseTracker_Queries, GetChasingEntryBySubStream) {
  mNew.ChaseEvent(Vrae_ControllerEvent(7, 5));
  Vrae_ChaseTracker_ChasingEntry entry;
  ASSERT_TRUE(mNew.GetChasingEntry(&entry, Cc(7)));
  EXPECT_TRUE(entry.mIsActive);
  EXPECT_EQ(5, entry.mValue);
  EXPECT_TRUE(Cc(7) == entry.mSubStream);
  ASSERT_TRUE(mNew.GetChasingEntry(&entry, Cc(8)));
  EXPECT_FALSE(entry.mIsActive);
}

TEST_F(Vrae_ChaseTracker_Queries, GetChasingEntryBySubStreamIndex) {
  mNew.ChaseEvent(Vrae_PitchBendEvent(5));
  Vrae_ChaseTracker_ChasingEntry entry;
  ASSERT_TRUE(mNew.GetChasingEntry(&entry, 0));
  EXPECT_TRUE(entry.mIsActive);
  EXPECT_EQ(5, entry.mValue);
  EXPECT_TRUE(Bend() == entry.mSubStream);
  EXPECT_FALSE(mNew.GetChasingEntry(&entry, 182));
}

TEST_F(Vrae_ChaseTracker_Queries, GetChasingEntryOfAReleaseOnlyEntryIsFalse) {
  Vrae_ChaseTracker tracker(&mSmallMap, true);
  tracker.TrackEvent(Vrae_PolyPressureEvent(60, 5));
  Vrae_ChaseTracker_ChasingEntry entry;
  entry.mValue = 77;
  EXPECT_FALSE(tracker.GetChasingEntry(&entry, Vrae_SubStream::PolyPressure(60)));
  EXPECT_FALSE(tracker.GetChasingEntry(&entry, 182));
  EXPECT_EQ(77, entry.mValue);
}

TEST_F(Vrae_ChaseTracker_Queries, GetChasingEntryThrowsWithoutAPlaceForTheAnswer) {
  Cmn_AssertRecorder recorder;
  EXPECT_THROW((void)mNew.GetChasingEntry(nullptr, Cc(7)), Cmn_AssertException);
  EXPECT_THROW((void)mNew.GetChasingEntry(nullptr, 7), Cmn_AssertException);
  EXPECT_EQ(2, recorder.GetNum("oEntryP != 0"));
  ThrowingOff const off;
  EXPECT_FALSE(mNew.GetChasingEntry(nullptr, Cc(7)));
  EXPECT_FALSE(mNew.GetChasingEntry(nullptr, 7));
}

TEST_F(Vrae_ChaseTracker_Queries, GetChasingEntryThrowsForAnIndexOutOfRange) {
  Vrae_ChaseTracker_ChasingEntry entry;
  Cmn_AssertRecorder recorder;
  EXPECT_THROW((void)mNew.GetChasingEntry(&entry, -1), Cmn_AssertException);
  EXPECT_EQ(1, recorder.GetNum("iSubStreamIndex >= 0"));
  EXPECT_THROW((void)mNew.GetChasingEntry(&entry, 250), Cmn_AssertException);
  EXPECT_EQ(1, recorder.GetNum("iSubStreamIndex < Vrae_SubStream::GetNumIndices()"));
}

// ---- Iterators ----

TEST_F(Vrae_ChaseTracker_Iterators, ChasingStandsAtEntryZeroThoughInactive) {
  Vrae_ChaseTracker_ActiveChasingIterator iter(&mNew);
  ASSERT_FALSE(iter.AtEnd());
  Vrae_ChaseTracker_ChasingEntry const entry = *iter;
  EXPECT_TRUE(entry.mIsActive);
  EXPECT_EQ(0, entry.mValue);
  EXPECT_TRUE(Cc(1) == entry.mSubStream);
  ++iter;
  EXPECT_TRUE(iter.AtEnd());
}

TEST_F(Vrae_ChaseTracker_Iterators, ChasingStepsToActiveEntries) {
  mNew.ChaseEvent(Vrae_ControllerEvent(7, 5));
  mNew.ChaseEvent(Vrae_PitchBendEvent(6));
  Vrae_ChaseTracker_ActiveChasingIterator iter(&mNew);
  ++iter;
  EXPECT_TRUE(Cc(7) == (*iter).mSubStream);
  EXPECT_EQ(5, (*iter).mValue);
  ++iter;
  EXPECT_TRUE(Bend() == (*iter).mSubStream);
  EXPECT_EQ(6, (*iter).mValue);
  ++iter;
  EXPECT_TRUE(iter.AtEnd());
}

TEST_F(Vrae_ChaseTracker_Iterators, ChasingEndsAtTheBoundary) {
  Vrae_ChaseTracker tracker(&mSmallMap, true);
  tracker.TrackEvent(Vrae_PolyPressureEvent(60, 5));
  // The map's cleared entries and its four new ones lie below the boundary.
  Vrae_ChaseTracker_ActiveChasingIterator iter(&tracker);
  ++iter;
  EXPECT_TRUE(iter.AtEnd());
}

TEST_F(Vrae_ChaseTracker_Iterators, ReleasingStandsAtEntryZeroAndReportsItWhenRead) {
  Cmn_AssertRecorder recorder;
  Vrae_ChaseTracker_ActiveReleasingIterator iter(&mNew);
  ASSERT_FALSE(iter.AtEnd());
  EXPECT_EQ(0, recorder.GetNum());
  Vrae_ChaseTracker_ReleasingEntry const entry = *iter;
  EXPECT_EQ(1, recorder.GetNum(kNotReleasing));
  EXPECT_TRUE(entry.mIsActive);
  EXPECT_EQ(0, entry.mValue);
  EXPECT_TRUE(Cc(1) == entry.mSubStream);
}

TEST_F(Vrae_ChaseTracker_Iterators, ReleasingStepsToActiveReleasingEntries) {
  Vrae_ChaseTracker tracker(&mSmallMap, true);
  tracker.ChaseEvent(Vrae_ControllerEvent(7, 5));
  tracker.ChaseEvent(Vrae_MonoPressureEvent(6));
  tracker.ChaseEvent(Vrae_PolyPressureEvent(60, 7));
  Cmn_AssertRecorder recorder;
  Vrae_ChaseTracker_ActiveReleasingIterator iter(&tracker);
  ++iter;
  EXPECT_TRUE(Pressure() == (*iter).mSubStream);
  EXPECT_EQ(5, (*iter).mValue) << "the release value, not the current one";
  ++iter;
  EXPECT_TRUE(Vrae_SubStream::PolyPressure(60) == (*iter).mSubStream);
  ++iter;
  EXPECT_TRUE(iter.AtEnd());
  EXPECT_EQ(0, recorder.GetNum());
}

TEST_F(Vrae_ChaseTracker_Iterators, ThrowAtTheEnd) {
  Vrae_ChaseTracker_ActiveChasingIterator chasing(&mNew);
  Vrae_ChaseTracker_ActiveReleasingIterator releasing(&mNew);
  ++chasing;
  ++releasing;
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(*chasing, Cmn_AssertException);
  EXPECT_THROW(++chasing, Cmn_AssertException);
  EXPECT_THROW(*releasing, Cmn_AssertException);
  EXPECT_THROW(++releasing, Cmn_AssertException);
  EXPECT_EQ(4, recorder.GetNum("!this->AtEnd()"));
}

TEST_F(Vrae_ChaseTracker_Iterators, StayAtTheEndWithThrowingOff) {
  Vrae_ChaseTracker_ActiveChasingIterator chasing(&mNew);
  Vrae_ChaseTracker_ActiveReleasingIterator releasing(&mNew);
  ++chasing;
  ++releasing;
  ThrowingOff const off;
  Cmn_AssertRecorder recorder;
  ++chasing;
  ++releasing;
  EXPECT_FALSE((*chasing).mIsActive);
  EXPECT_FALSE((*releasing).mIsActive);
  EXPECT_TRUE(chasing.AtEnd());
  EXPECT_TRUE(releasing.AtEnd());
  EXPECT_EQ(4, recorder.GetNum("!this->AtEnd()"));
}
