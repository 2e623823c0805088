#include "vrad/vrae_trackstate.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cmn/cmn_assert.h"
#include "foundation/lumtrace.h"
#include "support/notes_in_progress.h"
#include "support/throwing_off.h"
#include "vrad/vrae_traceutil.h"

namespace {

constexpr char const * kDisorder = "srcP->mReleaseTime >= destTailP->mReleaseTime";

typedef std::vector<std::pair<unsigned, std::string>> Lines;

Vrae_TimedEvent At(long long iTick, Vrae_Event const & iEvent) {
  return Vrae_TimedEvent(Time_Tick(iTick), iEvent);
}

struct State : testing::Test {
  NoteInProgressPool mPool;
  Vrae_TrackState mState;
  Cmn_AssertRecorder mRecorder;

  int GetNumNodes() const { return mPool.mAllocator.GetNumBlocksInUse(); }
};

// Keeps what a predicate on the pitch says, and counts the calls.
struct PitchFilter : Vrae_TrackState::NoteInProgressFilter {
  explicit PitchFilter(bool (*iKeeps)(int)) : mKeeps(iKeeps) {}
  bool operator()(Vrae_NoteInProgress const & iNote) const override {
    ++mNumCalls;
    return mKeeps(iNote.mPitch);
  }
  bool (*mKeeps)(int);
  mutable int mNumCalls = 0;
};

typedef State Vrae_TrackState_List;
typedef State Vrae_TrackState_ReceiveUntimed;
typedef State Vrae_TrackState_ReceiveTimed;
typedef State Vrae_TrackState_Filter;
typedef State Vrae_TrackState_Copies;
typedef State Vrae_TrackState_Trace;

}  // namespace

// ---- The list ----

TEST_F(Vrae_TrackState_List, StartsEmpty) {
  EXPECT_EQ(nullptr, mState.NextNoteOff());
}

TEST_F(Vrae_TrackState_List, StandsInOrderOfReleaseTime) {
  mState.ReceiveEvent(TimedNote(0, 60, 300));
  mState.ReceiveEvent(TimedNote(0, 61, 100));
  mState.ReceiveEvent(TimedNote(50, 62, 150));
  EXPECT_EQ("61@100t 62@200t 60@300t", PrintNotes(mState));
  EXPECT_EQ(61, mState.NextNoteOff()->mPitch);
}

TEST_F(Vrae_TrackState_List, PutsTheNoteAddedLastFirstAtEqualTimes) {
  mState.ReceiveEvent(TimedNote(0, 60, 100));
  mState.ReceiveEvent(TimedNote(50, 61, 50));
  mState.ReceiveEvent(TimedNote(0, 62, 200));
  mState.ReceiveEvent(TimedNote(0, 63, 100));
  EXPECT_EQ("63@100t 61@100t 60@100t 62@200t", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_List, PopNoteOffDropsTheHead) {
  mState.ReceiveEvent(TimedNote(0, 60, 300));
  mState.ReceiveEvent(TimedNote(0, 61, 100));
  mState.PopNoteOff();
  EXPECT_EQ("60@300t", PrintNotes(mState));
  EXPECT_EQ(1, GetNumNodes());
}

TEST_F(Vrae_TrackState_List, PopNoteOffOfAnEmptyListDoesNothing) {
  mState.PopNoteOff();
  EXPECT_EQ(nullptr, mState.NextNoteOff());
  EXPECT_EQ(0, mPool.mAllocator.GetNumBadFrees());
}

TEST_F(Vrae_TrackState_List, BothWaysOfClearingFreeAllNodes) {
  for (bool const clear : {true, false}) {
    mState.ReceiveEvent(TimedNote(0, 60, 300));
    mState.ReceiveEvent(TimedNote(0, 61, 100));
    clear ? mState.Clear() : mState.DeleteNotesInProgress();
    EXPECT_EQ(nullptr, mState.NextNoteOff());
    EXPECT_EQ(0, GetNumNodes());
  }
}

TEST_F(Vrae_TrackState_List, DestructionFreesAllNodes) {
  {
    Vrae_TrackState state;
    state.ReceiveEvent(TimedNote(0, 60, 300));
    EXPECT_EQ(1, GetNumNodes());
  }
  EXPECT_EQ(0, GetNumNodes());
}

TEST_F(Vrae_TrackState_List, OffsetTimesMovesAll) {
  mState.ReceiveEvent(TimedNote(0, 60, 300));
  mState.ReceiveEvent(TimedNote(0, 61, 100));
  mState.OffsetTimes(Time_TickLength(50));
  EXPECT_EQ("61@150t 60@350t", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_List, OffsetTimesMovesBackAndKeepsTheOrder) {
  mState.ReceiveEvent(TimedNote(0, 60, 300));
  mState.ReceiveEvent(TimedNote(0, 61, 100));
  mState.OffsetTimes(Time_TickLength(-1000));
  EXPECT_EQ("61@-900t 60@-700t", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_List, OffsetTimesOfAnEmptyListDoesNothing) {
  mState.OffsetTimes(Time_TickLength(50));
  EXPECT_EQ(nullptr, mState.NextNoteOff());
}

TEST_F(Vrae_TrackState_List, OffsetTimesDoesNotSortTimesOfMixedUnitsAgain) {
  mState.ReceiveEvent(TimedNote(0, 60, 42));
  mState.ReceiveEvent(Vrae_TimedEvent(
      Time_Sample(0), Vrae_NoteWithDurationEvent(61, Time_SampleLength(2), 80, 64)));
  ASSERT_EQ("60@42t 61@2s", PrintNotes(mState));
  mState.OffsetTimes(Time_TickLength(39));  // 39 ticks don't make a sample
  EXPECT_EQ("60@81t 61@2s", PrintNotes(mState));
}

// ---- Untimed events ----

TEST_F(Vrae_TrackState_ReceiveUntimed, ANoteOnEndsAtSampleOneAheadOfTrueTimes) {
  mState.ReceiveEvent(TimedNote(0, 61, 100));
  mState.ReceiveEvent(Vrae_NoteOnEvent(60, 90));
  EXPECT_EQ("60@1s 61@100t", PrintNotes(mState));
  EXPECT_EQ(90, mState.NextNoteOff()->mOnVelocity);
  EXPECT_EQ(64, mState.NextNoteOff()->mOffVelocity);
}

TEST_F(Vrae_TrackState_ReceiveUntimed, ANoteOffOfThePitchLeavesTheListEmpty) {
  mState.ReceiveEvent(Vrae_NoteOnEvent(60, 90));
  mState.ReceiveEvent(Vrae_NoteOffEvent(60, 0));
  EXPECT_EQ("", PrintNotes(mState));
  EXPECT_EQ(0, GetNumNodes());
}

TEST_F(Vrae_TrackState_ReceiveUntimed, TheNoteOnThatCameLastStandsFirst) {
  mState.ReceiveEvent(Vrae_NoteOnEvent(60, 90));
  mState.ReceiveEvent(Vrae_NoteOnEvent(61, 90));
  EXPECT_EQ("61@1s 60@1s", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_ReceiveUntimed, ANoteOffRemovesTheNoteThatEndsFirst) {
  mState.ReceiveEvent(TimedNote(0, 60, 300));
  mState.ReceiveEvent(TimedNote(0, 60, 100));
  mState.ReceiveEvent(TimedNote(0, 61, 50));
  mState.ReceiveEvent(Vrae_NoteOffEvent(60, 0));
  EXPECT_EQ("61@50t 60@300t", PrintNotes(mState));
  EXPECT_EQ(2, GetNumNodes());
}

TEST_F(Vrae_TrackState_ReceiveUntimed, ANoteOffLeavesTheOtherOfTwoEqualNotes) {
  mState.ReceiveEvent(Vrae_NoteOnEvent(60, 90));
  mState.ReceiveEvent(Vrae_NoteOnEvent(60, 91));
  mState.ReceiveEvent(Vrae_NoteOffEvent(60, 0));
  ASSERT_EQ("60@1s", PrintNotes(mState));
  EXPECT_EQ(90, mState.NextNoteOff()->mOnVelocity);
}

TEST_F(Vrae_TrackState_ReceiveUntimed, AnUnmatchedNoteOffIsNoFailure) {
  mState.ReceiveEvent(Vrae_NoteOnEvent(60, 90));
  mState.ReceiveEvent(Vrae_NoteOffEvent(61, 0));
  EXPECT_EQ("60@1s", PrintNotes(mState));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrae_TrackState_ReceiveUntimed, ANoteOnOfVelocityZeroIsANoteOn) {
  Vrae_NoteOnEvent const noteOn(60, 0);
  mRecorder.Clear();
  mState.ReceiveEvent(noteOn);
  EXPECT_EQ(1, mRecorder.GetNum("iOnVelocity >= 1"));
  EXPECT_EQ("60@1s", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_ReceiveUntimed, OtherKindsAreIgnored) {
  mState.ReceiveEvent(TimedNote(0, 60, 100).mEvent);
  mState.ReceiveEvent(Vrae_ControllerEvent(7, 5));
  mState.ReceiveEvent(Vrae_AddNoteInProgressEvent(60, Time_TickLength(5), 1, 1));
  EXPECT_EQ("", PrintNotes(mState));
  EXPECT_EQ(0, mRecorder.GetNum());
}

// ---- Timed events ----

TEST_F(Vrae_TrackState_ReceiveTimed, ANoteOnIsReportedAndRefused) {
  mState.ReceiveEvent(At(0, Vrae_NoteOnEvent(60, 90)));
  ASSERT_EQ(1, mRecorder.GetNum("0"));
  EXPECT_FALSE(mRecorder.GetEntries()[0].mThrowing);
  EXPECT_EQ("", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_ReceiveTimed, ANoteKeepsItsValues) {
  mState.ReceiveEvent(TimedNote(10, 60, 100, 81, 33));
  Vrae_NoteInProgress const * const nip = mState.NextNoteOff();
  ASSERT_NE(nullptr, nip);
  EXPECT_EQ(60, nip->mPitch);
  EXPECT_EQ(81, nip->mOnVelocity);
  EXPECT_EQ(33, nip->mOffVelocity);
  EXPECT_EQ(110, nip->mReleaseTime.AsInt64());
}

TEST_F(Vrae_TrackState_ReceiveTimed, ANoteEndsInTheUnitOfItsTime) {
  mState.ReceiveEvent(Vrae_TimedEvent(
      Time_Sample(10), Vrae_NoteWithDurationEvent(60, Time_TickLength(400), 80, 64)));
  EXPECT_EQ("60@20s", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_ReceiveTimed, ANoteOffRemovesTheNoteThatEndsFirst) {
  mState.ReceiveEvent(TimedNote(0, 60, 300));
  mState.ReceiveEvent(TimedNote(0, 60, 100));
  mState.ReceiveEvent(TimedNote(0, 61, 50));
  mState.ReceiveEvent(At(0, Vrae_NoteOffEvent(60, 0)));
  EXPECT_EQ("61@50t 60@300t", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_ReceiveTimed, AnUnmatchedNoteOffOrClearIsNoFailure) {
  mState.ReceiveEvent(At(0, Vrae_NoteOffEvent(60, 0)));
  mState.ReceiveEvent(At(0, Vrae_ClearNoteInProgressEvent(60, Time_TickLength(5), 1, 1)));
  EXPECT_EQ("", PrintNotes(mState));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrae_TrackState_ReceiveTimed, AddNoteInProgressAdds) {
  mState.ReceiveEvent(At(10, Vrae_AddNoteInProgressEvent(60, Time_TickLength(5), 1, 2)));
  EXPECT_EQ("60@15t", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_ReceiveTimed, ClearNoteInProgressRemovesTheNoteThatIsAlike) {
  mState.ReceiveEvent(TimedNote(0, 60, 100, 80, 64));
  mState.ReceiveEvent(TimedNote(0, 60, 200, 80, 64));
  mState.ReceiveEvent(At(150, Vrae_ClearNoteInProgressEvent(60, Time_TickLength(50), 80, 64)));
  EXPECT_EQ("60@100t", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_ReceiveTimed, ClearNoteInProgressComparesAllFields) {
  mState.ReceiveEvent(TimedNote(0, 60, 100, 80, 64));
  Time_TickLength const length(100);
  mState.ReceiveEvent(At(1, Vrae_ClearNoteInProgressEvent(60, length, 80, 64)));
  mState.ReceiveEvent(At(0, Vrae_ClearNoteInProgressEvent(61, length, 80, 64)));
  mState.ReceiveEvent(At(0, Vrae_ClearNoteInProgressEvent(60, length, 81, 64)));
  mState.ReceiveEvent(At(0, Vrae_ClearNoteInProgressEvent(60, length, 80, 65)));
  EXPECT_EQ("60@100t", PrintNotes(mState));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrae_TrackState_ReceiveTimed, ClearNoteInProgressMeetsAnEndAtTheSameInstantInAnotherUnit) {
  mState.ReceiveEvent(TimedNote(0, 60, 400, 80, 64));
  mState.ReceiveEvent(Vrae_TimedEvent(
      Time_Sample(4), Vrae_ClearNoteInProgressEvent(60, Time_SampleLength(6), 80, 64)));
  EXPECT_EQ("", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_ReceiveTimed, ClearNoteInProgressTakesOneOfTwoNotesThatAreAlike) {
  mState.ReceiveEvent(TimedNote(0, 60, 100, 80, 64));
  mState.ReceiveEvent(TimedNote(50, 60, 50, 80, 64));
  mState.ReceiveEvent(At(0, Vrae_ClearNoteInProgressEvent(60, Time_TickLength(100), 80, 64)));
  EXPECT_EQ("60@100t", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_ReceiveTimed, OtherKindsAreIgnored) {
  mState.ReceiveEvent(
      At(0, Vrae_PitchToMIDINoteWithDuration(60, Time_TickLength(5), 80, 64, 0.5f)));
  mState.ReceiveEvent(At(0, Vrae_ControllerEvent(7, 5)));
  EXPECT_EQ("", PrintNotes(mState));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrae_TrackState_ReceiveTimed, WithoutMemoryTheNoteIsNotTracked) {
  mState.ReceiveEvent(TimedNote(0, 60, 100));
  mPool.mAllocator.FailAfter(0);
  mState.ReceiveEvent(TimedNote(0, 61, 100));
  mState.ReceiveEvent(Vrae_NoteOnEvent(62, 1));
  ASSERT_EQ(2, mRecorder.GetNum("nip"));
  EXPECT_FALSE(mRecorder.GetEntries()[0].mThrowing);
  EXPECT_EQ("60@100t", PrintNotes(mState));
}

// ---- Filtering ----

TEST_F(Vrae_TrackState_Filter, KeepsTheSurvivorsInOrderAndFreesTheRest) {
  for (signed char pitch = 1; pitch <= 6; ++pitch)
    mState.ReceiveEvent(TimedNote(0, pitch, 100 - pitch));
  PitchFilter const even([](int iPitch) { return iPitch % 2 == 0; });
  mState.FilterNotesInProgress(even);
  EXPECT_EQ("6@94t 4@96t 2@98t", PrintNotes(mState));
  EXPECT_EQ(6, even.mNumCalls);
  EXPECT_EQ(3, GetNumNodes());
}

TEST_F(Vrae_TrackState_Filter, MayDropAllOrNone) {
  mState.ReceiveEvent(TimedNote(0, 60, 100));
  mState.ReceiveEvent(TimedNote(0, 61, 200));
  mState.FilterNotesInProgress(PitchFilter([](int) { return true; }));
  EXPECT_EQ("60@100t 61@200t", PrintNotes(mState));
  mState.FilterNotesInProgress(PitchFilter([](int) { return false; }));
  EXPECT_EQ("", PrintNotes(mState));
  EXPECT_EQ(0, GetNumNodes());
}

TEST_F(Vrae_TrackState_Filter, OfAnEmptyListAsksNothing) {
  PitchFilter const filter([](int) { return true; });
  mState.FilterNotesInProgress(filter);
  EXPECT_EQ(0, filter.mNumCalls);
}

TEST_F(Vrae_TrackState_Filter, TakesEqualEndsAsOrdered) {
  mState.ReceiveEvent(TimedNote(0, 60, 100));
  mState.ReceiveEvent(TimedNote(0, 61, 100));
  mState.FilterNotesInProgress(PitchFilter([](int) { return true; }));
  EXPECT_EQ("61@100t 60@100t", PrintNotes(mState));
  EXPECT_EQ(0, mRecorder.GetNum());
}

namespace {

// Moves the first end past the second.
void Disorder(Vrae_TrackState & ioState) {
  ioState.ReceiveEvent(TimedNote(0, 60, 100));
  ioState.ReceiveEvent(TimedNote(0, 61, 200));
  ioState.ReceiveEvent(TimedNote(0, 62, 300));
  // A host sees the nodes as const, yet owns the state.
  auto * const firstP = const_cast<Vrae_NoteInProgress *>(ioState.NextNoteOff());
  firstP->mReleaseTime = Time_Tick(250);
}

}  // namespace

TEST_F(Vrae_TrackState_Filter, ThrowsForNotesThatDoNotAscendAndKeepsTheRest) {
  Disorder(mState);
  PitchFilter const filter([](int) { return true; });
  EXPECT_THROW(mState.FilterNotesInProgress(filter), Cmn_AssertException);
  ASSERT_EQ(1, mRecorder.GetNum(kDisorder));
  EXPECT_FALSE(mRecorder.GetEntries()[0].mFlag);
  EXPECT_EQ("60@250t 61@200t 62@300t", PrintNotes(mState));
  mState.Clear();
  EXPECT_EQ(0, GetNumNodes()) << "nothing leaked";
}

TEST_F(Vrae_TrackState_Filter, AppendsNotesThatDoNotAscendWithThrowingOff) {
  ThrowingOff const off;
  Disorder(mState);
  mState.FilterNotesInProgress(PitchFilter([](int iPitch) { return iPitch != 62; }));
  EXPECT_EQ(1, mRecorder.GetNum(kDisorder));
  EXPECT_EQ("60@250t 61@200t", PrintNotes(mState));
}

// ---- Copies ----

TEST_F(Vrae_TrackState_Copies, AreDeepAndInOrder) {
  mState.ReceiveEvent(TimedNote(0, 60, 100));
  mState.ReceiveEvent(TimedNote(0, 61, 100));
  Vrae_TrackState copy(mState);
  mState.Clear();
  EXPECT_EQ("61@100t 60@100t", PrintNotes(copy));
}

TEST_F(Vrae_TrackState_Copies, AssignmentFreesWhatWasThere) {
  mState.ReceiveEvent(TimedNote(0, 60, 100));
  Vrae_TrackState target;
  target.ReceiveEvent(TimedNote(0, 70, 100));
  target.ReceiveEvent(TimedNote(0, 71, 100));
  target = mState;
  EXPECT_EQ("60@100t", PrintNotes(target));
  EXPECT_EQ(2, GetNumNodes());
}

TEST_F(Vrae_TrackState_Copies, AssignmentToItselfEmptiesTheState) {
  mState.ReceiveEvent(TimedNote(0, 60, 100));
  Vrae_TrackState const & same = mState;
  mState = same;
  EXPECT_EQ("", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_Copies, AssignmentOfAnEmptyStateEmpties) {
  mState.ReceiveEvent(TimedNote(0, 60, 100));
  mState = Vrae_TrackState();
  EXPECT_EQ("", PrintNotes(mState));
  EXPECT_EQ(0, GetNumNodes());
}

// ---- Trace ----

TEST_F(Vrae_TrackState_Trace, NamesTheStateAndThePitch) {
  LumTraceRecorder trace;
  mState.ReceiveEvent(Vrae_NoteOnEvent(60, 90));
  mState.ReceiveEvent(Vrae_NoteOffEvent(60, 0));
  mState.ReceiveEvent(TimedNote(0, 61, 100));
  mState.ReceiveEvent(At(0, Vrae_ClearNoteInProgressEvent(61, Time_TickLength(9), 80, 64)));
  mState.ReceiveEvent(At(0, Vrae_AddNoteInProgressEvent(62, Time_TickLength(9), 80, 64)));
  mState.ReceiveEvent(At(0, Vrae_NoteOffEvent(62, 0)));
  mState.ReceiveEvent(Vrae_ControllerEvent(7, 5));
  char address[32];
  std::snprintf(address, sizeof address, "%p", static_cast<void *>(&mState));
  std::string const name = std::string("Vrae_TrackState ") + address + " ";
  Lines lines;
  for (auto const & line : trace.GetLines()) {
    if (line.first != 0x2000F27) lines.push_back(line);
  }
  EXPECT_EQ((Lines{{0x4000e0f, name + "ReceiveEvent note on 60"},
                   {0x4000e0f, name + "ReceiveEvent note off 60"},
                   {0x8000e0f, name + "RemoveMatchingNoteInProgress found"},
                   {0x4000e0f, name + "ReceiveTimedEvent note on 61"},
                   {0x4000e0f, name + "ReceiveTimedEvent clear note 61"},
                   {0x8000e0f, name + "RemoveMatchingNoteInProgress not found"},
                   {0x4000e0f, name + "ReceiveTimedEvent add note 62"},
                   {0x4000e0f, name + "ReceiveTimedEvent note off 62"},
                   {0x8000e0f, name + "RemoveMatchingNoteInProgress found"}}),
            lines);
}

TEST_F(Vrae_TrackState_Trace, SaysNothingOfWhatIsRefusedOrIgnored) {
  LumTraceRecorder trace;
  mState.ReceiveEvent(At(0, Vrae_NoteOnEvent(60, 90)));
  mState.ReceiveEvent(
      At(0, Vrae_PitchToMIDINoteWithDuration(60, Time_TickLength(5), 80, 64, 0.5f)));
  mState.ReceiveEvent(TimedNote(0, 61, 100).mEvent);
  EXPECT_EQ(Lines(), trace.GetLines());
}

TEST_F(Vrae_TrackState_Trace, AsksWithTheFacilityOfAllocations) {
  LumTraceRecorder trace;
  trace.SetActive(0x2000F27, false);
  mState.ReceiveEvent(Vrae_NoteOnEvent(60, 90));
  mState.ReceiveEvent(Vrae_NoteOffEvent(60, 0));
  EXPECT_EQ(Lines(), trace.GetLines());
  trace.SetActive(0x2000F27, true);
  trace.SetActive(0x4000e0f, false);
  trace.SetActive(0x8000e0f, false);
  mState.ReceiveEvent(Vrae_NoteOffEvent(60, 0));
  EXPECT_EQ(2u, trace.GetLines().size());
}

TEST_F(Vrae_TrackState_Trace, PrintTrackStateWritesALineForEachNote) {
  mState.ReceiveEvent(TimedNote(0, 60, 300, 81, 33));
  mState.ReceiveEvent(Vrae_NoteOnEvent(61, 90));
  std::ostringstream stream;
  Vrae_TraceUtil::PrintTrackState(&mState, stream);
  EXPECT_EQ("Begin Vrae_TrackState:\n\t(61, 90, 64, 1)\n\t(60, 81, 33, 300)\n", stream.str());
}

TEST_F(Vrae_TrackState_Trace, PrintTrackStateOfAnEmptyStateOpensOnly) {
  std::ostringstream stream;
  Vrae_TraceUtil::PrintTrackState(&mState, stream);
  EXPECT_EQ("Begin Vrae_TrackState:\n", stream.str());
}

TEST_F(Vrae_TrackState_Trace, PrintTrackStateWritesTheRawCountOfAnyTime) {
  mState.ReceiveEvent(TimedNote(-1000, 60, 100));
  mState.ReceiveEvent(TimedNote(5000000000, 127, 1, 127, 0));
  std::ostringstream stream;
  stream << "before ";
  Vrae_TraceUtil::PrintTrackState(&mState, stream);
  EXPECT_EQ("before Begin Vrae_TrackState:\n\t(60, 80, 64, -900)\n"
            "\t(127, 127, 0, 5000000001)\n",
            stream.str());
  EXPECT_EQ("60@-900t 127@5000000001t", PrintNotes(mState));
}
