#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cmn/cmn_assert.h"
#include "support/chase_receiver.h"
#include "support/realtime_scope.h"
#include "vrad/vrae_chasetracker.h"

namespace {

constexpr char const * kNotReleasing = "this->GetEntryIsReleasing(mIndex)";

Vrae_SubStream Cc(signed char iNumber) {
  return Vrae_SubStream::Controller(iNumber);
}

// Walks begin at entry 0, controller 1, which no map makes releasing: each walk over the releasing
// entries begins with "cc1=0" and one report.
struct Output : testing::Test {
  ChaseSmallMap mMap;
  Vrae_ChaseTracker mOld{&mMap, true};
  Vrae_ChaseTracker mNew{&mMap, true};
  ChasePrinter mOut;
  Cmn_AssertRecorder mRecorder;

  static void Pedal(Vrae_ChaseTracker & ioTracker, signed char iValue) {
    ioTracker.ChaseEvent(Vrae_ControllerEvent(64, iValue));
  }
  static void Volume(Vrae_ChaseTracker & ioTracker, signed char iValue) {
    ioTracker.ChaseEvent(Vrae_ControllerEvent(7, iValue));
  }
  static void Bend(Vrae_ChaseTracker & ioTracker, short iValue) {
    ioTracker.ChaseEvent(Vrae_PitchBendEvent(iValue));
  }
  static void Pressure(Vrae_ChaseTracker & ioTracker, signed char iValue) {
    ioTracker.ChaseEvent(Vrae_MonoPressureEvent(iValue));
  }
  static void Poly(Vrae_ChaseTracker & ioTracker, signed char iValue) {
    ioTracker.ChaseEvent(Vrae_PolyPressureEvent(60, iValue));
  }
  // Makes the entry active and changed.
  static void Change(Vrae_ChaseTracker & ioTracker, Vrae_Event const & iEvent) {
    ioTracker.TrackEvent(iEvent);
  }
  std::string ChaseAndRelease(Vrae_ChaseTracker * iOldP) {
    mNew.ChaseAndRelease(iOldP, &mOut);
    return mOut.Take();
  }
  std::string DoUnMute(Vrae_ChaseTracker const & iTracker) {
    iTracker.DoUnMute(&mOut);
    return mOut.Take();
  }
  std::string DoMute(Vrae_ChaseTracker & ioTracker, bool iForceSustain) {
    ioTracker.DoMute(&mOut, iForceSustain);
    return mOut.Take();
  }
  std::string DoUnMutedUpdate() {
    mNew.DoUnMutedUpdate(&mOld, &mOut);
    return mOut.Take();
  }
};

typedef Output Vrae_ChaseTracker_Prep;
typedef Output Vrae_ChaseTracker_DoCurrentPositionChase;
typedef Output Vrae_ChaseTracker_Release;
typedef Output Vrae_ChaseTracker_ChaseAndRelease;
typedef Output Vrae_ChaseTracker_HandleReleaseEvent;
typedef Output Vrae_ChaseTracker_DoMute;
typedef Output Vrae_ChaseTracker_DoUnMute;
typedef Output Vrae_ChaseTracker_DoMutedUpdate;
typedef Output Vrae_ChaseTracker_DoUnMutedUpdate_OfAClearedMap;
typedef Output Vrae_ChaseTracker_NullArguments;
typedef Output Vrae_ChaseTracker_RealTime;

// On the default map, where every entry can be reached.
struct Vrae_ChaseTracker_DoUnMutedUpdate : Output {
  Vrae_ChaseTracker_DoUnMutedUpdate() {
    mOld = Vrae_ChaseTracker(&mDefaultMap, true);
    mNew = Vrae_ChaseTracker(&mDefaultMap, true);
  }
  Vrae_ChaseTrackerMap mDefaultMap;
};

}  // namespace

TEST_F(Vrae_ChaseTracker_Prep, SendsAllActiveValuesInEntryOrder) {
  Pressure(mNew, 9);
  Volume(mNew, 100);
  Bend(mNew, -5);
  mNew.Prep(&mOut);
  EXPECT_EQ("bend=-5 cc7=100 pressure=9", mOut.Take());
}

TEST_F(Vrae_ChaseTracker_Prep, ChangesNoFlag) {
  Change(mNew, Vrae_ControllerEvent(7, 100));
  mNew.Prep(&mOut);
  mNew.Prep(&mOut);
  EXPECT_EQ("cc7=100 cc7=100", mOut.Take());
  EXPECT_EQ("cc7=100", DoUnMute(mNew));
}

TEST_F(Vrae_ChaseTracker_Prep, ReportsAValueOutOfRangeAndSendsItsEvent) {
  mNew.SetActiveValue(Cc(7), 128);
  mNew.Prep(&mOut);
  EXPECT_EQ(1, mRecorder.GetNum("iValue >= mTypeP->GetValueRange().mMin && "
                                "iValue <= mTypeP->GetValueRange().mMax"));
  EXPECT_NE("", mOut.Take());
}

TEST_F(Vrae_ChaseTracker_DoCurrentPositionChase, SkipsReleasingEntries) {
  Volume(mNew, 100);
  Bend(mNew, 5);
  Pedal(mNew, 127);
  mNew.DoCurrentPositionChase(&mOut);
  EXPECT_EQ("cc7=100", mOut.Take());
}

TEST_F(Vrae_ChaseTracker_Release, SendsEntryZeroAndTheActiveReleasingEntries) {
  Pressure(mNew, 9);
  Bend(mNew, 100);
  Volume(mNew, 100);
  mNew.Release(&mOut, Vrae_ChaseTracker::kReleaseAndDeactivate);
  EXPECT_EQ("cc1=0 bend=0 pressure=5", mOut.Take());
}

TEST_F(Vrae_ChaseTracker_Release, ReportsEntryZeroOncePerCall) {
  mNew.Release(&mOut, Vrae_ChaseTracker::kReleaseAndDeactivate);
  EXPECT_EQ(1, mRecorder.GetNum(kNotReleasing));
  EXPECT_EQ(1, mRecorder.GetNum());
  mNew.Release(&mOut, Vrae_ChaseTracker::kReleaseKeepActive);
  EXPECT_EQ(2, mRecorder.GetNum(kNotReleasing));
}

TEST_F(Vrae_ChaseTracker_Release, DeactivatesInModeZero) {
  Bend(mNew, 100);
  Volume(mNew, 100);
  mNew.Release(&mOut, Vrae_ChaseTracker::kReleaseAndDeactivate);
  EXPECT_FALSE(mNew.IsActive(Vrae_SubStream::PitchBend()));
  EXPECT_TRUE(mNew.IsActive(Cc(7)));
}

TEST_F(Vrae_ChaseTracker_Release, OnlySendsInAnyOtherMode) {
  Bend(mNew, 100);
  for (int mode : {1, 2, -1}) {
    mNew.Release(&mOut, static_cast<Vrae_ChaseTracker::EReleaseMode>(mode));
    EXPECT_EQ("cc1=0 bend=0", mOut.Take());
    EXPECT_TRUE(mNew.IsActive(Vrae_SubStream::PitchBend()));
  }
}

TEST_F(Vrae_ChaseTracker_Release, DeactivatesEntryZeroToo) {
  Vrae_ChaseTrackerMap const map;
  Vrae_ChaseTracker tracker(&map, true);
  tracker.ChaseEvent(Vrae_ControllerEvent(1, 50));
  tracker.Release(&mOut, Vrae_ChaseTracker::kReleaseAndDeactivate);
  EXPECT_EQ("cc1=0", mOut.Take());
  EXPECT_FALSE(tracker.IsActive(Cc(1)));
}

TEST_F(Vrae_ChaseTracker_Release, FindsTheFlagAgainThroughTheSubStream) {
  Vrae_ChaseTrackerMap map;
  map.Clear();
  map.AppendEntry(Cc(1));
  map.DoneAddingChasingEntries();
  Vrae_ChaseTracker tracker(&map, true);
  tracker.ChaseEvent(Vrae_ControllerEvent(1, 50));
  tracker.Release(&mOut, Vrae_ChaseTracker::kReleaseAndDeactivate);
  EXPECT_FALSE(tracker.IsActive(Cc(1))) << "entry 0 cleared the new entry's flag";
}

TEST_F(Vrae_ChaseTracker_Release, SendsReleaseOnlyEntries) {
  Poly(mNew, 9);
  mNew.Release(&mOut, Vrae_ChaseTracker::kReleaseAndDeactivate);
  EXPECT_EQ("cc1=0 poly60=0", mOut.Take());
  EXPECT_FALSE(mNew.IsActive(Vrae_SubStream::PolyPressure(60)));
}

TEST_F(Vrae_ChaseTracker_ChaseAndRelease, WithoutAnOldStateSendsTheValuesAndNoRelease) {
  Bend(mNew, 100);
  Volume(mNew, 90);
  EXPECT_EQ("cc1=0 bend=100 cc7=90", ChaseAndRelease(nullptr));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrae_ChaseTracker_ChaseAndRelease, ReleasesWhatTheNewStateLacksAfterAllChaseEvents) {
  Bend(mOld, 100);
  Volume(mNew, 90);
  Pressure(mNew, 7);
  EXPECT_EQ("cc1=0 cc7=90 pressure=7 cc1=0 bend=0", ChaseAndRelease(&mOld));
  EXPECT_FALSE(mOld.IsActive(Vrae_SubStream::PitchBend()));
}

TEST_F(Vrae_ChaseTracker_ChaseAndRelease, SendsNothingForAnEqualValueAndTakesItOver) {
  Bend(mOld, 100);
  Bend(mNew, 100);
  EXPECT_EQ("cc1=0 cc1=0", ChaseAndRelease(&mOld)) << "entry 0 alone";
  EXPECT_FALSE(mOld.IsActive(Vrae_SubStream::PitchBend()));
  EXPECT_TRUE(mNew.IsActive(Vrae_SubStream::PitchBend()));
}

TEST_F(Vrae_ChaseTracker_ChaseAndRelease, SendsADifferingValueAndDoesNotReleaseIt) {
  Bend(mOld, 100);
  Bend(mNew, 101);
  EXPECT_EQ("cc1=0 bend=101 cc1=0", ChaseAndRelease(&mOld));
}

TEST_F(Vrae_ChaseTracker_ChaseAndRelease, SendsAnEqualValueThatIsInactiveInTheOldState) {
  Bend(mOld, 100);
  mOld.ClearActiveFlag(Vrae_SubStream::PitchBend());
  Bend(mNew, 100);
  EXPECT_EQ("cc1=0 bend=100 cc1=0", ChaseAndRelease(&mOld));
}

TEST_F(Vrae_ChaseTracker_ChaseAndRelease, LeavesOldValuesThatDoNotRelease) {
  Volume(mOld, 90);
  EXPECT_EQ("cc1=0 cc1=0", ChaseAndRelease(&mOld));
  EXPECT_TRUE(mOld.IsActive(Cc(7)));
}

TEST_F(Vrae_ChaseTracker_ChaseAndRelease, ReportsEntryZeroOnce) {
  ChaseAndRelease(&mOld);
  EXPECT_EQ(1, mRecorder.GetNum(kNotReleasing));
  EXPECT_EQ(1, mRecorder.GetNum());
}

TEST_F(Vrae_ChaseTracker_ChaseAndRelease, SendsNothingForEntryZeroHeldAlikeByTheOldState) {
  Vrae_ChaseTrackerMap const map;
  Vrae_ChaseTracker older(&map, true), newer(&map, true);
  older.ChaseEvent(Vrae_ControllerEvent(1, 50));
  newer.ChaseEvent(Vrae_ControllerEvent(1, 50));
  newer.ChaseAndRelease(&older, &mOut);
  EXPECT_EQ("cc1=0", mOut.Take()) << "only the release of entry 0";
}

TEST_F(Vrae_ChaseTracker_ChaseAndRelease, SendsWhatIsReleaseOnlyInTheOldStateAndTakesItOver) {
  Vrae_ChaseTrackerMap chasingMap;
  chasingMap.AppendEntry(Vrae_SubStream::PolyPressure(60));
  chasingMap.DoneAddingChasingEntries();
  Vrae_ChaseTracker newer(&chasingMap, true);
  newer.ChaseEvent(Vrae_PolyPressureEvent(60, 0));
  Poly(mOld, 0);
  newer.ChaseAndRelease(&mOld, &mOut);
  EXPECT_EQ("cc1=0 poly60=0 cc1=0", mOut.Take());
  EXPECT_FALSE(mOld.IsActive(Vrae_SubStream::PolyPressure(60)));
}

TEST_F(Vrae_ChaseTracker_ChaseAndRelease, SendsWhatTheOldMapDoesNotFollowAndTakesNothingOver) {
  Vrae_ChaseTrackerMap const map;
  Vrae_ChaseTrackerMap pedalMap;
  pedalMap.AppendReleasingEntry(Vrae_SubStream::PolyPressure(60), 0);
  pedalMap.DoneAddingChasingEntries();
  Vrae_ChaseTracker older(&map, true), newer(&pedalMap, true);
  older.ChaseEvent(Vrae_ControllerEvent(7, 90));
  Pedal(older, 127);
  newer.ChaseEvent(Vrae_PolyPressureEvent(60, 9));
  newer.ChaseAndRelease(&older, &mOut);
  EXPECT_EQ("cc1=0 poly60=9 cc1=0 cc64=0", mOut.Take());
  EXPECT_TRUE(older.IsActive(Cc(7)));
}

TEST_F(Vrae_ChaseTracker_ChaseAndRelease, OnAMapThatChasesNothingOnlyReleases) {
  Vrae_ChaseTrackerMap map;
  map.Clear();  // no chasing entries at all
  Vrae_ChaseTracker newer(&map, true);
  Bend(mOld, 100);
  newer.ChaseAndRelease(&mOld, &mOut);
  EXPECT_EQ("cc1=0 bend=0", mOut.Take());
}

TEST_F(Vrae_ChaseTracker_HandleReleaseEvent, SendsTheReleaseValueAndDeactivates) {
  Pedal(mNew, 127);
  mNew.HandleReleaseEvent(Vrae_ReleaseControllerEvent(64), &mOut);
  EXPECT_EQ("cc64=0", mOut.Take());
  EXPECT_FALSE(mNew.IsActive(Cc(64)));
}

TEST_F(Vrae_ChaseTracker_HandleReleaseEvent, WithoutAReceiverForgetsSilently) {
  Pedal(mNew, 127);
  mNew.HandleReleaseEvent(Vrae_ReleaseControllerEvent(64), nullptr);
  EXPECT_FALSE(mNew.IsActive(Cc(64)));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrae_ChaseTracker_HandleReleaseEvent, IgnoresAnInactiveEntry) {
  mNew.HandleReleaseEvent(Vrae_ReleaseControllerEvent(64), &mOut);
  EXPECT_EQ("", mOut.Take());
}

TEST_F(Vrae_ChaseTracker_HandleReleaseEvent, IgnoresAnEntryThatDoesNotRelease) {
  Volume(mNew, 90);
  mNew.HandleReleaseEvent(Vrae_ReleaseControllerEvent(7), &mOut);
  EXPECT_EQ("", mOut.Take());
  EXPECT_TRUE(mNew.IsActive(Cc(7)));
}

TEST_F(Vrae_ChaseTracker_HandleReleaseEvent, IgnoresWhatTheMapDoesNotFollow) {
  mNew.HandleReleaseEvent(Vrae_ReleaseControllerEvent(8), &mOut);
  EXPECT_EQ("", mOut.Take());
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrae_ChaseTracker_HandleReleaseEvent, ThrowsForAnIndexOutOfRange) {
  EXPECT_THROW(mNew.HandleReleaseEvent(Vrae_ReleaseControllerEvent(-1), &mOut),
               Cmn_AssertException);
  EXPECT_EQ(1, mRecorder.GetNum("iSubStreamIndex >= 0"));
  EXPECT_THROW(mNew.HandleReleaseEvent(Vrae_ReleaseControllerEvent(250), &mOut),
               Cmn_AssertException);
  EXPECT_EQ(1, mRecorder.GetNum("iSubStreamIndex < Vrae_SubStream::GetNumIndices()"));
}

TEST_F(Vrae_ChaseTracker_DoMute, SendsReleaseValuesThatDiffer) {
  Bend(mNew, 100);
  Pressure(mNew, 5);
  Volume(mNew, 90);
  EXPECT_EQ("bend=0", DoMute(mNew, false));
  EXPECT_TRUE(mNew.IsActive(Vrae_SubStream::PitchBend()));
}

TEST_F(Vrae_ChaseTracker_DoMute, SendsReleaseOnlyEntriesWhateverTheyAreAt) {
  Poly(mNew, 0);
  EXPECT_EQ("poly60=0", DoMute(mNew, false));
}

TEST_F(Vrae_ChaseTracker_DoMute, IgnoresInactiveEntries) {
  EXPECT_EQ("", DoMute(mNew, true));
}

TEST_F(Vrae_ChaseTracker_DoMute, SendsNothingForSustainAtZero) {
  Pedal(mNew, 0);
  EXPECT_EQ("", DoMute(mNew, false));
}

TEST_F(Vrae_ChaseTracker_DoMute, ForcesSustainAlone) {
  Pedal(mNew, 0);
  Bend(mNew, 0);
  EXPECT_EQ("cc64=0", DoMute(mNew, true));
}

TEST_F(Vrae_ChaseTracker_DoMute, ForcesThePressureOfPitch64NoMoreThanOthers) {
  Vrae_ChaseTrackerMap map;
  map.AppendReleasingEntry(Vrae_SubStream::PolyPressure(64), 0);
  map.DoneAddingChasingEntries();
  Vrae_ChaseTracker tracker(&map, true);
  tracker.ChaseEvent(Vrae_PolyPressureEvent(64, 0));
  EXPECT_EQ("", DoMute(tracker, true));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrae_ChaseTracker_DoMute, GoesInEntryOrder) {
  Poly(mNew, 9);
  Pressure(mNew, 9);
  Pedal(mNew, 127);
  Bend(mNew, 100);
  EXPECT_EQ("bend=0 cc64=0 pressure=5 poly60=0", DoMute(mNew, false));
}

TEST_F(Vrae_ChaseTracker_DoMute, ClearsTheChangedFlagOfAReleaseOnlyEntryToo) {
  Vrae_ChaseTrackerMap chasingMap;
  chasingMap.AppendReleasingEntry(Vrae_SubStream::PolyPressure(60), 0);
  chasingMap.DoneAddingChasingEntries();
  Vrae_ChaseTracker newer(&chasingMap, true);
  newer.ChaseEvent(Vrae_PolyPressureEvent(60, 0));
  Change(mOld, Vrae_PolyPressureEvent(60, 0));
  newer.DoMutedUpdate(&mOld);
  EXPECT_EQ("poly60=0", DoUnMute(newer)) << "changed, as the old entry is";
  DoMute(mOld, false);
  newer.DoMutedUpdate(&mOld);
  EXPECT_EQ("", DoUnMute(newer));
}

TEST_F(Vrae_ChaseTracker_DoMute, ClearsTheChangedFlags) {
  Change(mNew, Vrae_ControllerEvent(7, 90));
  DoMute(mNew, false);
  EXPECT_EQ("", DoUnMute(mNew));
}

TEST_F(Vrae_ChaseTracker_DoMute, WithoutReleaseOnMuteClearsTheChangedFlagsAlone) {
  Vrae_ChaseTracker quiet(&mMap, false);
  Change(quiet, Vrae_ControllerEvent(7, 90));
  Bend(quiet, 100);
  Pedal(quiet, 0);
  EXPECT_EQ("", DoMute(quiet, true));
  EXPECT_EQ("bend=100", DoUnMute(quiet)) << "the volume is no longer changed";
}

TEST_F(Vrae_ChaseTracker_DoUnMute, ResendsAReleasingEntryAwayFromItsReleaseValue) {
  Bend(mNew, 100);
  DoMute(mNew, false);
  EXPECT_EQ("bend=100", DoUnMute(mNew));
}

TEST_F(Vrae_ChaseTracker_DoUnMute, SkipsAReleasingEntryAtItsReleaseValue) {
  Pressure(mNew, 5);
  EXPECT_EQ("", DoUnMute(mNew));
}

TEST_F(Vrae_ChaseTracker_DoUnMute, SendsAChangedReleasingEntryAtItsReleaseValue) {
  Change(mNew, Vrae_MonoPressureEvent(5));
  EXPECT_EQ("pressure=5", DoUnMute(mNew));
}

TEST_F(Vrae_ChaseTracker_DoUnMute, SendsOtherEntriesOnlyIfChanged) {
  Volume(mNew, 90);
  EXPECT_EQ("", DoUnMute(mNew));
  Change(mNew, Vrae_ControllerEvent(7, 90));
  EXPECT_EQ("cc7=90", DoUnMute(mNew));
}

TEST_F(Vrae_ChaseTracker_DoUnMute, DoesNotClearTheChangedFlags) {
  Change(mNew, Vrae_ControllerEvent(7, 90));
  DoUnMute(mNew);
  EXPECT_EQ("cc7=90", DoUnMute(mNew));
}

TEST_F(Vrae_ChaseTracker_DoUnMute, SkipsInactiveEntries) {
  Change(mNew, Vrae_ControllerEvent(7, 90));
  mNew.Clear();
  EXPECT_EQ("", DoUnMute(mNew));
}

TEST_F(Vrae_ChaseTracker_DoMutedUpdate, ClearsTheChangeOfAnInactiveEntry) {
  Change(mNew, Vrae_ControllerEvent(7, 90));
  mNew.ClearActiveFlag(Cc(7));
  Change(mOld, Vrae_ControllerEvent(7, 80));
  mNew.DoMutedUpdate(&mOld);
  Volume(mNew, 90);
  EXPECT_EQ("", DoUnMute(mNew));
}

TEST_F(Vrae_ChaseTracker_DoMutedUpdate, ChangesWhatIsInactiveInTheOldState) {
  Volume(mNew, 90);
  Pressure(mNew, 5);
  mNew.DoMutedUpdate(&mOld);
  EXPECT_EQ("cc7=90 pressure=5", DoUnMute(mNew));
}

TEST_F(Vrae_ChaseTracker_DoMutedUpdate, CopiesTheFlagOfAReleasingEntry) {
  Change(mOld, Vrae_MonoPressureEvent(5));
  Pressure(mNew, 5);
  mNew.DoMutedUpdate(&mOld);
  EXPECT_EQ("pressure=5", DoUnMute(mNew));
  DoMute(mOld, false);
  mNew.DoMutedUpdate(&mOld);
  EXPECT_EQ("", DoUnMute(mNew));
}

TEST_F(Vrae_ChaseTracker_DoMutedUpdate, KeepsAChangeOfTheOldState) {
  Change(mOld, Vrae_ControllerEvent(7, 90));
  Volume(mNew, 90);
  mNew.DoMutedUpdate(&mOld);
  EXPECT_EQ("cc7=90", DoUnMute(mNew));
}

TEST_F(Vrae_ChaseTracker_DoMutedUpdate, ComparesTheValuesOfUnchangedEntries) {
  Volume(mOld, 90);
  Volume(mNew, 91);
  mNew.DoMutedUpdate(&mOld);
  EXPECT_EQ("cc7=91", DoUnMute(mNew));
  Volume(mOld, 91);
  mNew.DoMutedUpdate(&mOld);
  EXPECT_EQ("", DoUnMute(mNew));
}

TEST_F(Vrae_ChaseTracker_DoMutedUpdate, TakesAMissingOldEntryAsInactive) {
  Vrae_ChaseTrackerMap const map;
  Vrae_ChaseTracker newer(&map, true);
  newer.ChaseEvent(Vrae_ControllerEvent(8, 9));
  newer.DoMutedUpdate(&mOld);
  EXPECT_EQ("cc8=9", DoUnMute(newer));
}

TEST_F(Vrae_ChaseTracker_DoMutedUpdate, ChangesWhatIsReleaseOnlyInTheOldState) {
  Vrae_ChaseTrackerMap chasingMap;
  chasingMap.AppendEntry(Vrae_SubStream::PolyPressure(60));
  chasingMap.DoneAddingChasingEntries();
  Vrae_ChaseTracker newer(&chasingMap, true);
  newer.ChaseEvent(Vrae_PolyPressureEvent(60, 0));
  Poly(mOld, 0);
  newer.DoMutedUpdate(&mOld);
  EXPECT_EQ("poly60=0", DoUnMute(newer));
}

TEST_F(Vrae_ChaseTracker_DoUnMutedUpdate, SendsWhatIsNew) {
  Volume(mNew, 90);
  EXPECT_EQ("cc7=90", DoUnMutedUpdate());
}

TEST_F(Vrae_ChaseTracker_DoUnMutedUpdate, SendsNothingForWhatIsInactiveInBoth) {
  EXPECT_EQ("", DoUnMutedUpdate());
}

TEST_F(Vrae_ChaseTracker_DoUnMutedUpdate, SendsWhatDiffers) {
  Volume(mOld, 90);
  Volume(mNew, 91);
  Bend(mOld, 5);
  Bend(mNew, 5);
  EXPECT_EQ("cc7=91", DoUnMutedUpdate());
}

TEST_F(Vrae_ChaseTracker_DoUnMutedUpdate, ReleasesWhatIsGone) {
  Bend(mOld, 5);
  Pressure(mOld, 0);
  EXPECT_EQ("bend=0", DoUnMutedUpdate()) << "pressure is at its release value";
}

TEST_F(Vrae_ChaseTracker_DoUnMutedUpdate, LeavesTheOldValueOfOtherEntriesInForce) {
  Volume(mOld, 90);
  EXPECT_EQ("", DoUnMutedUpdate());
}

TEST_F(Vrae_ChaseTracker_DoUnMutedUpdate, ChangesNoFlag) {
  Bend(mOld, 5);
  Volume(mNew, 90);
  DoUnMutedUpdate();
  EXPECT_TRUE(mOld.IsActive(Vrae_SubStream::PitchBend()));
  EXPECT_EQ("cc7=90 bend=0", DoUnMutedUpdate());
}

TEST_F(Vrae_ChaseTracker_DoUnMutedUpdate, SendsWhatTheOldMapDoesNotFollow) {
  Vrae_ChaseTracker older(&mMap, true);
  mNew.ChaseEvent(Vrae_ControllerEvent(8, 9));
  mNew.DoUnMutedUpdate(&older, &mOut);
  EXPECT_EQ("cc8=9", mOut.Take());
}

TEST_F(Vrae_ChaseTracker_DoUnMutedUpdate_OfAClearedMap, ServesTheEntriesOutOfReachToo) {
  Bend(mOld, 5);
  EXPECT_EQ("bend=0 bend=0", DoUnMutedUpdate()) << "the default map's entry, then the new one";
}

TEST_F(Vrae_ChaseTracker_DoUnMutedUpdate_OfAClearedMap, SendsWhatIsReleaseOnlyInTheOldState) {
  Vrae_ChaseTrackerMap chasingMap;
  chasingMap.AppendReleasingEntry(Vrae_SubStream::PolyPressure(60), 0);
  chasingMap.DoneAddingChasingEntries();
  Vrae_ChaseTracker newer(&chasingMap, true);
  Poly(mOld, 0);
  newer.DoUnMutedUpdate(&mOld, &mOut);
  EXPECT_EQ("poly60=0", mOut.Take());
  newer.ChaseEvent(Vrae_PolyPressureEvent(60, 0));
  newer.DoUnMutedUpdate(&mOld, &mOut);
  EXPECT_EQ("poly60=0", mOut.Take());
}

TEST_F(Vrae_ChaseTracker_NullArguments, ThrowTheirTexts) {
  Volume(mNew, 90);
  EXPECT_THROW(mNew.Prep(nullptr), Cmn_AssertException);
  EXPECT_THROW(mNew.DoMute(nullptr, false), Cmn_AssertException);
  EXPECT_THROW(mNew.DoUnMute(nullptr), Cmn_AssertException);
  EXPECT_EQ(3, mRecorder.GetNum("iOutputP"));
  EXPECT_THROW(mNew.DoCurrentPositionChase(nullptr), Cmn_AssertException);
  EXPECT_THROW(mNew.Release(nullptr, Vrae_ChaseTracker::kReleaseAndDeactivate),
               Cmn_AssertException);
  EXPECT_THROW(mNew.ChaseAndRelease(&mOld, nullptr), Cmn_AssertException);
  EXPECT_THROW(mNew.DoUnMutedUpdate(&mOld, nullptr), Cmn_AssertException);
  EXPECT_EQ(4, mRecorder.GetNum("iOutputP != 0"));
  EXPECT_THROW(mNew.DoMutedUpdate(nullptr), Cmn_AssertException);
  EXPECT_THROW(mNew.DoUnMutedUpdate(nullptr, &mOut), Cmn_AssertException);
  EXPECT_EQ(2, mRecorder.GetNum("iOldStateP != 0"));
  EXPECT_EQ(9, mRecorder.GetNum());
  for (Cmn_AssertRecorder::Entry const & entry : mRecorder.GetEntries())
    EXPECT_FALSE(entry.mFlag);
}

TEST_F(Vrae_ChaseTracker_NullArguments, DoNothingWithThrowingOff) {
  ThrowingOff const off;
  Change(mNew, Vrae_ControllerEvent(7, 90));
  Bend(mOld, 100);
  mNew.Prep(nullptr);
  mNew.DoMute(nullptr, false);
  mNew.DoUnMute(nullptr);
  mNew.DoCurrentPositionChase(nullptr);
  mNew.Release(nullptr, Vrae_ChaseTracker::kReleaseAndDeactivate);
  mNew.ChaseAndRelease(&mOld, nullptr);
  mNew.DoUnMutedUpdate(&mOld, nullptr);
  mNew.DoMutedUpdate(nullptr);
  mNew.DoUnMutedUpdate(nullptr, &mOut);
  EXPECT_EQ("", mOut.Take());
  EXPECT_EQ(9, mRecorder.GetNum());
  EXPECT_TRUE(mOld.IsActive(Vrae_SubStream::PitchBend()));
  EXPECT_EQ("cc7=90", DoUnMute(mNew)) << "the changed flag stayed";
}

namespace {

struct Counter : Vrae_EventReceiver {
  void ReceiveEvent(Vrae_Event const &) override { ++mNum; }
  int mNum = 0;
};

struct SilentSink : Cmn_AssertSink {
  SilentSink() : mFormerP(Cmn_Assert::SetSink(this)) {}
  ~SilentSink() override { Cmn_Assert::SetSink(mFormerP); }
  void Report(Cmn_AssertReport const &) override {}
  Cmn_AssertSink * mFormerP;
};

}  // namespace

TEST_F(Vrae_ChaseTracker_RealTime, FeedingTakesNothing) {
  Time_Typed const time(5, Time_eType_Ticks);
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              mNew.ChaseEvent(Vrae_ControllerEvent(7, 90));
              mNew.TrackEvent(Vrae_PitchBendEvent(100));
              mNew.TrackEvent(Vrae_ProgramEvent(1, 2));
              mNew.TrackValue(Cc(64), 127);
              mNew.SetActiveValue(Cc(64), 1);
              mNew.SetActiveValueIfLater(Cc(64), 2, time);
              mNew.ClearActiveFlag(Cc(64));
              mNew.Clear();
            }));
}

TEST_F(Vrae_ChaseTracker_RealTime, OutputTakesNothing) {
  SilentSink const sink;
  Counter counter;
  for (Vrae_ChaseTracker * trackerP : {&mOld, &mNew}) {
    Change(*trackerP, Vrae_ControllerEvent(7, 90));
    Bend(*trackerP, 100);
    Pedal(*trackerP, 127);
    Poly(*trackerP, 3);
  }
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              mNew.Prep(&counter);
              mNew.DoCurrentPositionChase(&counter);
              mNew.DoUnMutedUpdate(&mOld, &counter);
              mNew.DoMutedUpdate(&mOld);
              mNew.DoUnMute(&counter);
              mNew.ChaseAndRelease(&mOld, &counter);
              mNew.HandleReleaseEvent(Vrae_ReleaseControllerEvent(64), &counter);
              mNew.DoMute(&counter, true);
              mNew.Release(&counter, Vrae_ChaseTracker::kReleaseAndDeactivate);
            }));
  EXPECT_LT(10, counter.mNum);
}
