#include "vrad/vrad_scrub.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "cmn/cmn_assert.h"
#include "support/event_samples.h"
#include "support/scrub_printing.h"

namespace {

constexpr char const * kNoteText =
    "mU.mBase.mType == kNoteWithDuration || mU.mBase.mType == kPitchToMIDINoteWithDuration";
constexpr char const * kBendText = "mU.mBase.mType == kPitchBend";

Vrad_ScrubEvent MakeEvent(long long iTime, int iType) {
  Vrad_ScrubEvent event;
  event.mTime = iTime;
  event.mType = iType;
  return event;
}

bool GoesBefore(long long iTimeA, int iTypeA, long long iTimeB, int iTypeB) {
  Vrad_ScrubEvent const a = MakeEvent(iTimeA, iTypeA), b = MakeEvent(iTimeB, iTypeB);
  return a.GoesBefore(&b);
}

// A note from tick 10 to 30.
struct OneNote : testing::Test {
  OneNote() { mList.AddNote(ScrubNote(60, 10, 20), false); }
  Vrad_ScrubList mList;
};

// What is passed on the way from tick 50 to one place after the other, with a note ahead at 100 and
// another one put in.
std::string PassFrom50(Vrae_TimedEvent const & iNote, bool iFromEnd,
                       std::vector<long long> const & iPlaces) {
  Vrad_ScrubList list;
  list.AddNote(ScrubNote(60, 100, 10), false);
  MoveTo(list, 50);
  list.AddNote(iNote, iFromEnd);
  std::string passed;
  for (long long place : iPlaces)
    passed += (passed.empty() ? "" : " | ") + MoveTo(list, place);
  return passed;
}

// What is passed up to tick 12 of events added in order. The bend before the first one is 7.
std::string PassTo12(std::vector<Vrae_TimedEvent> const & iEvents, bool iFromEnd) {
  Vrad_ScrubList list;
  short bend = 7;
  for (Vrae_TimedEvent const & event : iEvents) {
    if (event.IsNoteWithDurationEvent()) {
      list.AddNote(event, iFromEnd);
    } else {
      list.AddPitchBend(event, bend, iFromEnd);
      bend = event.mEvent.AsPitchBend().GetBendValue();
    }
  }
  return MoveTo(list, 12);
}

typedef OneNote Vrad_ScrubList_MoveTowards;
typedef OneNote Vrad_ScrubList_Clear;

bool IsAfter(long long iTime, int iType, long long iPosition) {
  Vrad_ScrubEvent const event = MakeEvent(iTime, iType);
  return Vrad_ScrubList().EventIsAfterTime(&event, iPosition);
}

}  // namespace

static_assert(!std::is_copy_constructible_v<Vrad_ScrubList>);
static_assert(!std::is_copy_assignable_v<Vrad_ScrubList>);
static_assert(std::is_same_v<decltype(Vrad_ScrubEvent::mTime), long long>);
static_assert(std::is_same_v<decltype(Vrad_ScrubEvent::mValue), short>);
static_assert(std::is_same_v<decltype(Vrad_ScrubEvent::mType), int>);
static_assert(std::is_same_v<decltype(Vrad_ScrubEvent::mOnVelocity), signed char>);
static_assert(std::is_same_v<decltype(Vrad_ScrubEvent::mOffVelocity), signed char>);

TEST(Vrad_ScrubEvent, EarlierTimeGoesFirst) {
  EXPECT_TRUE(GoesBefore(1, 3, 2, 0));
  EXPECT_FALSE(GoesBefore(2, 0, 1, 3));
  EXPECT_TRUE(GoesBefore(-2, 3, -1, 0));
}

TEST(Vrad_ScrubEvent, AtOneTimeNoteEndOldBendNewBendNoteStart) {
  for (int a = 0; a < 4; ++a)
    for (int b = 0; b < 4; ++b)
      EXPECT_EQ(GoesBefore(5, a, 5, b), a < b) << a << " " << b;
}

TEST(Vrad_ScrubList_EventIsAfterTime, ComparesTimesFirst) {
  EXPECT_TRUE(IsAfter(11, 0, 10));
  EXPECT_FALSE(IsAfter(9, 3, 10));
}

TEST(Vrad_ScrubList_EventIsAfterTime, AtTheTimeItselfFromTheNewBendOn) {
  EXPECT_FALSE(IsAfter(10, 0, 10));
  EXPECT_FALSE(IsAfter(10, 1, 10));
  EXPECT_TRUE(IsAfter(10, 2, 10));
  EXPECT_TRUE(IsAfter(10, 3, 10));
}

TEST(Vrad_ScrubList, EmptyGivesNothingInEitherDirection) {
  Vrad_ScrubList list;
  EXPECT_EQ(list.MoveTowards(Time_Tick(100)), nullptr);
  EXPECT_EQ(list.MoveTowards(Time_Tick(-100)), nullptr);
}

// Seen by what is ahead of the first note added.
TEST(Vrad_ScrubList, EmptyRecordsThePosition) {
  Vrad_ScrubList list;
  list.MoveTowards(Time_Tick(100));
  list.AddNote(ScrubNote(60, 10, 20), false);
  EXPECT_EQ(MoveTo(list, 200), "");
  EXPECT_EQ(MoveTo(list, 0), "end60@30 start60@10");
}

TEST(Vrad_ScrubList, StartsAtPositionNought) {
  Vrad_ScrubList list;
  list.AddNote(ScrubNote(60, -20, 10), false);
  list.AddNote(ScrubNote(61, 20, 10), false);
  EXPECT_EQ(MoveTo(list, 100), "start61@20 end61@30");
}

TEST_F(Vrad_ScrubList_MoveTowards, GivesOneTransitionAtATime) {
  EXPECT_EQ(Print(mList.MoveTowards(Time_Tick(100))), "start60@10");
  EXPECT_EQ(Print(mList.MoveTowards(Time_Tick(100))), "end60@30");
  EXPECT_EQ(Print(mList.MoveTowards(Time_Tick(100))), "none");
}

TEST_F(Vrad_ScrubList_MoveTowards, GoesBackTheSameWay) {
  MoveTo(mList, 100);
  EXPECT_EQ(MoveTo(mList, 0), "end60@30 start60@10");
  EXPECT_EQ(MoveTo(mList, 100), "start60@10 end60@30");
}

TEST_F(Vrad_ScrubList_MoveTowards, PassesANoteEndAtTheTimeItself) {
  EXPECT_EQ(MoveTo(mList, 29), "start60@10");
  EXPECT_EQ(MoveTo(mList, 30), "end60@30");
}

TEST_F(Vrad_ScrubList_MoveTowards, DoesNotPassANoteStartAtTheTimeItself) {
  EXPECT_EQ(MoveTo(mList, 10), "");
  EXPECT_EQ(MoveTo(mList, 11), "start60@10");
}

TEST_F(Vrad_ScrubList_MoveTowards, GoingBackPassesANoteStartAtTheTimeItself) {
  MoveTo(mList, 15);
  EXPECT_EQ(MoveTo(mList, 11), "");
  EXPECT_EQ(MoveTo(mList, 10), "start60@10");
}

TEST_F(Vrad_ScrubList_MoveTowards, GoingBackDoesNotPassANoteEndAtTheTimeItself) {
  MoveTo(mList, 100);
  EXPECT_EQ(MoveTo(mList, 30), "");
  EXPECT_EQ(MoveTo(mList, 29), "end60@30");
}

TEST_F(Vrad_ScrubList_MoveTowards, AtTheTimeOfABendTheOldOneIsPassedAndTheNewOneNot) {
  Vrad_ScrubList list;
  list.AddNote(ScrubNote(60, 0, 5), false);
  list.AddPitchBend(ScrubBend(100, 10), 7, false);
  EXPECT_EQ(MoveTo(list, 10), "start60@0 end60@5 from7@10");
  EXPECT_EQ(MoveTo(list, 11), "to100@10");
  EXPECT_EQ(MoveTo(list, 10), "to100@10");
  EXPECT_EQ(MoveTo(list, 9), "from7@10");
}

TEST_F(Vrad_ScrubList_MoveTowards, ToWhereItIsGivesNothing) {
  MoveTo(mList, 20);
  EXPECT_EQ(MoveTo(mList, 20), "");
}

TEST_F(Vrad_ScrubList_MoveTowards, MovesOnPastTheEndWithoutLookingBack) {
  MoveTo(mList, 40);
  EXPECT_EQ(MoveTo(mList, 50), "");
  EXPECT_EQ(MoveTo(mList, 45), "");
  EXPECT_EQ(MoveTo(mList, 29), "end60@30");
}

// Seen by a bend at the very tick: its old side counts as passed there.
TEST_F(Vrad_ScrubList_MoveTowards, PositionOfAStepForwardIsThatOfItsTransition) {
  mList.MoveTowards(Time_Tick(100));
  EXPECT_EQ(Print(mList.MoveTowards(Time_Tick(100))), "end60@30");
  mList.AddPitchBend(ScrubBend(100, 30), 7, true);
  EXPECT_EQ(MoveTo(mList, 100), "to100@30");
}

// And its new side does not.
TEST_F(Vrad_ScrubList_MoveTowards, PositionOfAStepBackwardIsThatOfItsTransition) {
  MoveTo(mList, 100);
  mList.MoveTowards(Time_Tick(0));
  EXPECT_EQ(Print(mList.MoveTowards(Time_Tick(0))), "start60@10");
  mList.AddPitchBend(ScrubBend(100, 10), 7, true);
  EXPECT_EQ(MoveTo(mList, 20), "to100@10 start60@10");
}

// Only past the end does going forward keep it from looking back: with a node ahead, what counts as
// passed and lies behind the target is handed out backward.
TEST_F(Vrad_ScrubList_MoveTowards, GoingForwardGivesBackWhatCountsAsPassedBehindTheTarget) {
  Vrad_ScrubList list;
  list.AddPitchBend(ScrubBend(9, 100), 7, false);
  list.AddNote(ScrubNote(60, 200, 10), false);
  EXPECT_EQ(MoveTo(list, 50), "to9@100 from7@100");
  EXPECT_EQ(MoveTo(list, 300), "from7@100 to9@100 start60@200 end60@210");
}

TEST_F(Vrad_ScrubList_MoveTowards, MayTurnRoundBeforeItArrives) {
  mList.MoveTowards(Time_Tick(100));
  EXPECT_EQ(Print(mList.MoveTowards(Time_Tick(100))), "end60@30");
  EXPECT_EQ(MoveTo(mList, 25), "end60@30");
}

TEST_F(Vrad_ScrubList_MoveTowards, ReadsTheCountOfAnyUnit) {
  EXPECT_EQ(Print(mList.MoveTowards(Time_Sample(11))), "start60@10");
}

TEST(Vrad_ScrubList_AddNote, CarriesPitchAndBothVelocitiesAtBothEnds) {
  Vrad_ScrubList list;
  list.AddNote(
      Vrae_TimedEvent(Time_Tick(1), Vrae_NoteWithDurationEvent(61, Time_TickLength(2), 90, 33)),
      false);
  for (int i = 0; i < 2; ++i) {
    Vrad_ScrubEvent const * const eventP = list.MoveTowards(Time_Tick(9));
    ASSERT_NE(eventP, nullptr);
    EXPECT_EQ(eventP->mValue, 61);
    EXPECT_EQ(eventP->mOnVelocity, 90);
    EXPECT_EQ(eventP->mOffVelocity, 33);
    EXPECT_EQ(eventP->mType, i == 0 ? 3 : 0);
    EXPECT_EQ(eventP->mTime, i == 0 ? 1 : 3);
  }
}

TEST(Vrad_ScrubList_AddNote, AddsTheRawDurationWhateverItsUnit) {
  Vrad_ScrubList list;
  Vrae_NoteWithDurationEvent const note(60, Time_SampleLength(5), 80, 64);
  list.AddNote(Vrae_TimedEvent(Time_Tick(10), note), false);
  EXPECT_EQ(MoveTo(list, 100), "start60@10 end60@15");
}

TEST(Vrad_ScrubList_AddNote, TakesANoteWithAFractionalPitch) {
  Cmn_AssertRecorder const recorder;
  Vrad_ScrubList list;
  list.AddNote(Vrae_TimedEvent(Time_Tick(10), MakeSampleEvent(22)), false);
  EXPECT_EQ(recorder.GetNum(), 0);
  EXPECT_EQ(MoveTo(list, 1000), "start60@10 end60@490");
}

TEST(Vrad_ScrubList_AddNote, ReportsAnyOtherKindOnceAndReadsItAsItLies) {
  Cmn_AssertRecorder const recorder;
  Vrad_ScrubList list;
  list.AddNote(Vrae_TimedEvent(Time_Tick(10), MakeBlankEvent(Vrae_Event::kController)), false);
  EXPECT_EQ(recorder.GetNum(kNoteText), 1);
  EXPECT_EQ(recorder.GetNum(), 1);
  EXPECT_EQ(MoveTo(list, 11), "start0@10 end0@10");
}

TEST(Vrad_ScrubList_AddNote, FirstNoteAheadBeginsAtItsStart) {
  Vrad_ScrubList list;
  list.AddNote(ScrubNote(60, 0, 5), false);
  EXPECT_EQ(MoveTo(list, 1), "start60@0");
}

TEST(Vrad_ScrubList_AddNote, FirstNoteSoundingAtThePositionHasItsEndAhead) {
  Vrad_ScrubList list;
  list.AddNote(ScrubNote(60, -5, 10), true);
  EXPECT_EQ(MoveTo(list, 100), "end60@5");
}

// Its start goes in before there is an end.
TEST(Vrad_ScrubList_AddNote, FirstNoteOfNoLengthAtThePositionLiesAhead) {
  for (bool isFromEnd : {false, true}) {
    Vrad_ScrubList list;
    list.AddNote(ScrubNote(60, 0, 0), isFromEnd);
    EXPECT_EQ(MoveTo(list, 1), "start60@0 end60@0") << isFromEnd;
  }
}

TEST(Vrad_ScrubList_AddNote, FirstNotePassedLeavesTheCursorPastTheEnd) {
  Vrad_ScrubList list;
  list.AddNote(ScrubNote(60, -5, 5), false);
  EXPECT_EQ(MoveTo(list, 100), "");
  EXPECT_EQ(MoveTo(list, -10), "end60@0 start60@-5");
}

TEST(Vrad_ScrubList_AddNote, FromHeadAlikeStartsStandLastAddedFirst) {
  Vrad_ScrubList list;
  list.AddNote(ScrubNote(60, 10, 20), false);
  list.AddNote(ScrubNote(61, 10, 20), false);
  EXPECT_EQ(MoveTo(list, 100), "start61@10 start60@10 end61@30 end60@30");
}

TEST(Vrad_ScrubList_AddNote, FromEndAlikeStartsStandLastAddedLast) {
  Vrad_ScrubList list;
  list.AddNote(ScrubNote(60, 10, 20), true);
  list.AddNote(ScrubNote(61, 10, 20), true);
  EXPECT_EQ(MoveTo(list, 100), "start60@10 start61@10 end60@30 end61@30");
}

TEST(Vrad_ScrubList_AddNote, GoesBetweenWhatIsThereFromEitherSide) {
  for (bool isFromEnd : {false, true}) {
    Vrad_ScrubList list;
    list.AddNote(ScrubNote(60, 10, 90), isFromEnd);
    list.AddNote(ScrubNote(61, 30, 10), isFromEnd);
    list.AddNote(ScrubNote(62, 20, 100), isFromEnd);
    list.AddNote(ScrubNote(63, 5, 1), isFromEnd);
    EXPECT_EQ(MoveTo(list, 1000),
              "start63@5 end63@6 start60@10 start62@20 start61@30 end61@40 end60@100 end62@120")
        << isFromEnd;
    EXPECT_EQ(MoveTo(list, 0),
              "end62@120 end60@100 end61@40 start61@30 start62@20 start60@10 end63@6 start63@5")
        << isFromEnd;
  }
}

TEST(Vrad_ScrubList_AddNote, AheadOfTheCursorIsPlayedNext) {
  for (bool isFromEnd : {false, true})
    EXPECT_EQ(PassFrom50(ScrubNote(61, 60, 10), isFromEnd, {80}), "start61@60 end61@70")
        << isFromEnd;
}

TEST(Vrad_ScrubList_AddNote, BehindTheCursorIsNotPlayedNext) {
  for (bool isFromEnd : {false, true}) {
    EXPECT_EQ(PassFrom50(ScrubNote(61, 30, 10), isFromEnd, {80}), "") << isFromEnd;
    EXPECT_EQ(PassFrom50(ScrubNote(61, 30, 10), isFromEnd, {80, 35}), "end61@40") << isFromEnd;
  }
}

TEST(Vrad_ScrubList_AddNote, AcrossTheCursorHasItsEndAheadAlone) {
  for (bool isFromEnd : {false, true})
    EXPECT_EQ(PassFrom50(ScrubNote(61, 40, 20), isFromEnd, {80}), "end61@60") << isFromEnd;
}

TEST(Vrad_ScrubList_AddNote, AtTheTailWithTheCursorPastTheEndIsPlayedNext) {
  for (bool isFromEnd : {false, true}) {
    Vrad_ScrubList list;
    list.AddNote(ScrubNote(60, 10, 10), false);
    MoveTo(list, 50);
    list.AddNote(ScrubNote(61, 60, 10), isFromEnd);
    EXPECT_EQ(MoveTo(list, 80), "start61@60 end61@70") << isFromEnd;
  }
}

TEST(Vrad_ScrubList_AddNote, StartAtThePositionLiesAheadAndEndThereDoesNot) {
  Vrad_ScrubList list;
  list.AddNote(ScrubNote(60, 100, 10), false);
  MoveTo(list, 50);
  list.AddNote(ScrubNote(61, 50, 10), false);
  list.AddNote(ScrubNote(62, 40, 10), false);
  EXPECT_EQ(MoveTo(list, 80), "start61@50 end61@60");
}

// The look for the end's place goes on behind the start.
TEST(Vrad_ScrubList_AddNote, OfNoLengthFromHeadEndsBehindItsStart) {
  EXPECT_EQ(PassTo12({ScrubNote(60, 100, 10), ScrubNote(61, 10, 0)}, false), "start61@10 end61@10");
}

TEST(Vrad_ScrubList_AddNote, OfNoLengthFromEndStartsBehindItsEnd) {
  EXPECT_EQ(PassTo12({ScrubNote(60, 100, 10), ScrubNote(61, 10, 0)}, true), "end61@10 start61@10");
}

// Nothing stands behind the start, so the look for the end's place begins in front of it.
TEST(Vrad_ScrubList_AddNote, OfNoLengthFromHeadAtTheTailStartsBehindItsEnd) {
  EXPECT_EQ(PassTo12({ScrubNote(60, 1, 2), ScrubNote(61, 10, 0)}, false),
            "start60@1 end60@3 end61@10 start61@10");
}

// As from the head, seen from the other end.
TEST(Vrad_ScrubList_AddNote, OfNoLengthFromEndBehindAnotherEndsBehindItsStart) {
  EXPECT_EQ(PassTo12({ScrubNote(60, 1, 2), ScrubNote(61, 10, 0)}, true),
            "start60@1 end60@3 start61@10 end61@10");
}

TEST(Vrad_ScrubList_AddNote, AtTheEndOfTimeEndsThere) {
  Vrad_ScrubList list;
  list.AddNote(ScrubNote(60, Time_Saturating::kMax - 3, 10), false);
  EXPECT_EQ(MoveTo(list, Time_Saturating::kMax),
            "start60@9223372036854775804 end60@9223372036854775807");
}

TEST(Vrad_ScrubList_AddPitchBend, ReportsAnyOtherKindOnce) {
  Cmn_AssertRecorder const recorder;
  Vrad_ScrubList list;
  list.AddPitchBend(Vrae_TimedEvent(Time_Tick(10), MakeBlankEvent(Vrae_Event::kNoteOn)), 5, false);
  EXPECT_EQ(recorder.GetNum(kBendText), 1);
  EXPECT_EQ(recorder.GetNum(), 1);
}

TEST(Vrad_ScrubList_AddPitchBend, HoldsTheBendBeforeAndTheEvents) {
  Vrad_ScrubList list;
  list.AddNote(ScrubNote(60, 0, 1), false);
  list.AddPitchBend(ScrubBend(-8192, 10), 8191, false);
  EXPECT_EQ(MoveTo(list, 20), "start60@0 end60@1 from8191@10 to-8192@10");
}

TEST(Vrad_ScrubList_AddPitchBend, HasNoVelocities) {
  Vrad_ScrubList list;
  list.AddNote(ScrubNote(60, 0, 1), false);
  list.Clear();
  list.AddPitchBend(ScrubBend(5, 10), 0, false);
  Vrad_ScrubEvent const * const eventP = list.MoveTowards(Time_Tick(0));
  ASSERT_NE(eventP, nullptr);
  EXPECT_EQ(eventP->mOnVelocity, 0);
  EXPECT_EQ(eventP->mOffVelocity, 0);
}

TEST(Vrad_ScrubList_AddPitchBend, IntoAnEmptyListCountsAsPassed) {
  for (bool isFromEnd : {false, true}) {
    Vrad_ScrubList list;
    list.AddPitchBend(ScrubBend(100, 10), 7, isFromEnd);
    EXPECT_EQ(MoveTo(list, 5), "") << isFromEnd;
    EXPECT_EQ(MoveTo(list, 20), "") << isFromEnd;
    EXPECT_EQ(MoveTo(list, 0), "to100@10 from7@10") << isFromEnd;
    EXPECT_EQ(MoveTo(list, 20), "from7@10 to100@10") << isFromEnd;
  }
}

TEST(Vrad_ScrubList_AddPitchBend, IntoAListWithANoteIsPlayedNext) {
  for (bool isFromEnd : {false, true}) {
    Vrad_ScrubList list;
    list.AddNote(ScrubNote(60, 100, 10), false);
    list.AddPitchBend(ScrubBend(100, 10), 7, isFromEnd);
    EXPECT_EQ(MoveTo(list, 20), "from7@10 to100@10") << isFromEnd;
  }
}

TEST(Vrad_ScrubList_AddPitchBend, AtThePositionHasTheNewBendAhead) {
  for (bool isFromEnd : {false, true}) {
    Vrad_ScrubList list;
    list.AddNote(ScrubNote(60, 100, 10), false);
    MoveTo(list, 10);
    list.AddPitchBend(ScrubBend(100, 10), 7, isFromEnd);
    EXPECT_EQ(MoveTo(list, 20), "to100@10") << isFromEnd;
  }
}

TEST(Vrad_ScrubList_AddPitchBend, OldBendNewBendNoteStartAtOneTimeInWhateverOrderTheyCame) {
  Vrae_TimedEvent const former = ScrubNote(61, 4, 6), note = ScrubNote(60, 10, 5);
  Vrae_TimedEvent const bend = ScrubBend(100, 10);
  for (bool isFromEnd : {false, true}) {
    for (auto const & events : {std::vector{former, note, bend}, std::vector{former, bend, note}})
      EXPECT_EQ(PassTo12(events, isFromEnd), "start61@4 end61@10 from7@10 to100@10 start60@10")
          << isFromEnd;
  }
}

TEST(Vrad_ScrubList_AddPitchBend, TwoBendsAtOneTimeFromHeadStandLastAddedFirst) {
  EXPECT_EQ(PassTo12({ScrubNote(60, 10, 5), ScrubBend(100, 10), ScrubBend(200, 10)}, false),
            "from100@10 from7@10 to200@10 to100@10 start60@10");
}

TEST(Vrad_ScrubList_AddPitchBend, TwoBendsAtOneTimeStandOldOnesFirst) {
  EXPECT_EQ(PassTo12({ScrubNote(60, 10, 5), ScrubBend(100, 10), ScrubBend(200, 10)}, true),
            "from7@10 from100@10 to100@10 to200@10 start60@10");
}

TEST_F(Vrad_ScrubList_Clear, KeepsThePosition) {
  MoveTo(mList, 50);
  mList.Clear();
  mList.AddNote(ScrubNote(61, 10, 20), false);
  EXPECT_EQ(MoveTo(mList, 100), "");
  EXPECT_EQ(MoveTo(mList, 0), "end61@30 start61@10");
}

TEST_F(Vrad_ScrubList_Clear, LeavesNothingToMoveOver) {
  mList.Clear();
  EXPECT_EQ(MoveTo(mList, 100), "");
  EXPECT_EQ(MoveTo(mList, 0), "");
}
