// Track states whose pool runs out, and the rules of the audio thread for all that they do.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cmn/cmn_assert.h"
#include "support/notes_in_progress.h"
#include "support/realtime_scope.h"
#include "vrad/vrae_trackstate.h"

namespace {

constexpr int kNumNotes = 5;

struct Memory : testing::Test {
  NoteInProgressPool mPool;
  Vrae_TrackState mState;
  Cmn_AssertRecorder mRecorder;

  int GetNumNodes() const { return mPool.mAllocator.GetNumBlocksInUse(); }
  void Refuse() { mPool.mAllocator.FailAfter(0); }
  void Allow() { mPool.mAllocator.FailAfter(-1); }

  // "60@100t 61@200t ..."
  static void AddNotes(Vrae_TrackState & ioState, int iNum = kNumNotes) {
    for (int i = 0; i < iNum; ++i)
      ioState.ReceiveEvent(TimedNote(0, static_cast<signed char>(60 + i), 100 * (i + 1)));
  }

  // Each of the first allocations succeeds, the next one fails, and all behind it.
  template <class TBody>
  void WithEveryRefusal(TBody const & iBody) {
    for (int num = 0; num <= kNumNotes; ++num) {
      SCOPED_TRACE(std::to_string(num) + " nodes to be had");
      mState.Clear();
      mRecorder.Clear();
      mPool.mAllocator.FailAfter(num);
      iBody(num);
      Allow();
      mState.Clear();
      EXPECT_EQ(0, GetNumNodes()) << "nothing leaked";
    }
  }
};

// "60@100t 61@200t", of so many notes.
std::string FirstNotes(int iNum) {
  std::string text;
  for (int i = 0; i < iNum; ++i)
    text +=
        (i == 0 ? "" : " ") + std::to_string(60 + i) + "@" + std::to_string(100 * (i + 1)) + "t";
  return text;
}

// The addresses of the notes, to tell copies from their originals.
std::vector<Vrae_NoteInProgress const *> NodesOf(Vrae_TrackState const & iState) {
  std::vector<Vrae_NoteInProgress const *> nodes;
  for (Vrae_NoteInProgress const * nip = iState.NextNoteOff(); nip != nullptr; nip = nip->mNextP)
    nodes.push_back(nip);
  return nodes;
}

typedef Memory Vrae_TrackState_Exhaustion;

// Reports go nowhere: a recorder allocates.
class SilentSink : public Cmn_AssertSink {
public:
  SilentSink() : mFormerP(Cmn_Assert::SetSink(this)) {}
  ~SilentSink() override { Cmn_Assert::SetSink(mFormerP); }
  SilentSink(SilentSink const &) = delete;
  SilentSink & operator=(SilentSink const &) = delete;
  void Report(Cmn_AssertReport const &) override { ++mNum; }
  int mNum = 0;

private:
  Cmn_AssertSink * mFormerP;
};

struct EventCounter : Vrae_EventReceiver {
  void ReceiveEvent(Vrae_Event const &) override { ++mNum; }
  int mNum = 0;
};

struct EvenPitches : Vrae_TrackState::NoteInProgressFilter {
  bool operator()(Vrae_NoteInProgress const & iNote) const override {
    return iNote.mPitch % 2 == 0;
  }
};

Vrae_ChaseSpec SpecOf(int iMode) {
  return {true, static_cast<Vrae_TrackState::ETransitionMode>(iMode), Time_Tick(100)};
}

struct Vrae_TrackState_RealTime : testing::Test {
  NoteInProgressPool mPool{1 << 18};
  Vrae_TrackState mState, mOther;
  SilentSink mSink;
};

}  // namespace

// ---- The pool runs out ----

TEST_F(Vrae_TrackState_Exhaustion, KeepsTheNotesForWhichThereWasMemory) {
  WithEveryRefusal([&](int iNum) {
    AddNotes(mState);
    EXPECT_EQ(FirstNotes(iNum), PrintNotes(mState));
    EXPECT_EQ(kNumNotes - iNum, mRecorder.GetNum("nip"));
    EXPECT_EQ(iNum, GetNumNodes());
  });
}

TEST_F(Vrae_TrackState_Exhaustion, ReportsUntimedNotesAndNotesInProgressToo) {
  AddNotes(mState, 1);
  Refuse();
  mState.ReceiveEvent(Vrae_NoteOnEvent(62, 1));
  mState.ReceiveEvent(
      Vrae_TimedEvent(Time_Tick(0), Vrae_AddNoteInProgressEvent(63, Time_TickLength(9), 1, 1)));
  ASSERT_EQ(2, mRecorder.GetNum("nip"));
  EXPECT_FALSE(mRecorder.GetEntries()[0].mThrowing);
  EXPECT_TRUE(mRecorder.GetEntries()[0].mFlag);
  EXPECT_EQ("60@100t", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_Exhaustion, TakesNotesAgainOnceANodeIsFree) {
  AddNotes(mState, 2);
  Refuse();
  mState.ReceiveEvent(TimedNote(0, 70, 900));
  Allow();
  mState.PopNoteOff();
  mState.ReceiveEvent(TimedNote(0, 71, 950));
  EXPECT_EQ("61@200t 71@950t", PrintNotes(mState));
}

TEST_F(Vrae_TrackState_Exhaustion, EndsNotesWithoutMemory) {
  AddNotes(mState, 4);
  Refuse();
  mState.ReceiveEvent(Vrae_NoteOffEvent(60, 0));
  mState.ReceiveEvent(Vrae_TimedEvent(
      Time_Tick(0), Vrae_ClearNoteInProgressEvent(61, Time_TickLength(200), 80, 64)));
  mState.PopNoteOff();
  EXPECT_EQ("63@400t", PrintNotes(mState));
  EXPECT_EQ(0, mRecorder.GetNum());
}

// A copy that stops short runs on into the source: no note is lost to who reads it, and freeing a
// node that is free already is counted and ignored.
TEST_F(Vrae_TrackState_Exhaustion, AnAssignmentThatStopsShortRunsOnIntoTheSource) {
  for (int num = 1; num < kNumNotes; ++num) {
    SCOPED_TRACE(num);
    Allow();
    int const numBadFrees = mPool.mAllocator.GetNumBadFrees();
    mRecorder.Clear();
    AddNotes(mState);
    {
      Vrae_TrackState target;
      mPool.mAllocator.FailAfter(num);
      target = mState;
      ASSERT_EQ(1, mRecorder.GetNum("newNIP"));
      EXPECT_FALSE(mRecorder.GetEntries()[0].mThrowing);
      EXPECT_EQ(FirstNotes(kNumNotes), PrintNotes(target));
      std::vector<Vrae_NoteInProgress const *> const source = NodesOf(mState);
      std::vector<Vrae_NoteInProgress const *> const copies = NodesOf(target);
      for (size_t i = 0; i < copies.size(); ++i)
        EXPECT_EQ(static_cast<int>(i) >= num, copies[i] == source[i]) << "node " << i;
      EXPECT_EQ(kNumNotes + num, GetNumNodes());
    }
    EXPECT_EQ(num, GetNumNodes()) << "the source's first nodes; the target took the others along";
    mState.Clear();
    EXPECT_EQ(0, GetNumNodes());
    EXPECT_EQ(kNumNotes - num, mPool.mAllocator.GetNumBadFrees() - numBadFrees);
  }
}

TEST_F(Vrae_TrackState_Exhaustion, AnAssignmentWithoutAnyMemoryIsEmpty) {
  AddNotes(mState);
  Vrae_TrackState target;
  target.ReceiveEvent(TimedNote(0, 70, 900));
  Refuse();
  target = mState;
  EXPECT_EQ("", PrintNotes(target));
  EXPECT_EQ(FirstNotes(kNumNotes), PrintNotes(mState));
  EXPECT_EQ(1, mRecorder.GetNum("newNIP"));
  EXPECT_EQ(kNumNotes, GetNumNodes());
}

TEST_F(Vrae_TrackState_Exhaustion, AnAssignmentGivesItsOwnNodesBackBeforeItTakesOthers) {
  Vrae_TrackState target;
  AddNotes(mState, 3);
  AddNotes(target, 3);
  std::vector<Vrae_NoteInProgress *> rest;  // the pool is full but for the target's nodes
  while (Vrae_NoteInProgress * const nip = Vrae_NoteInProgress::Alloc())
    rest.push_back(nip);
  target = mState;
  EXPECT_EQ(FirstNotes(3), PrintNotes(target));
  EXPECT_EQ(0, mRecorder.GetNum("newNIP"));
  for (Vrae_NoteInProgress * const nip : rest)
    nip->Free();
}

TEST_F(Vrae_TrackState_Exhaustion, ACopyWithoutAnyMemoryIsEmpty) {
  AddNotes(mState);
  Refuse();
  Vrae_TrackState const copy(mState);
  EXPECT_EQ("", PrintNotes(copy));
  EXPECT_EQ(1, mRecorder.GetNum("newNIP"));
}

TEST_F(Vrae_TrackState_Exhaustion, ATransitionSendsEverythingWithoutMemory) {
  AddNotes(mState, 2);
  Vrae_TrackState newState;
  newState.ReceiveEvent(TimedNote(0, 70, 900));
  EventCounter counter;
  for (int mode : {0, 1}) {
    Refuse();
    counter.mNum = 0;
    mState.ComputeTransitionToNewState(&newState, &counter, SpecOf(mode), false);
    EXPECT_EQ(3, counter.mNum);
  }
  EXPECT_EQ(FirstNotes(2), PrintNotes(mState));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrae_TrackState_Exhaustion, ATransitionThatCannotUpdateHasSentAllTheSame) {
  AddNotes(mState, 2);
  Vrae_TrackState newState;
  newState.ReceiveEvent(TimedNote(0, 70, 900));
  EventCounter counter;
  Refuse();
  mState.ComputeTransitionToNewState(&newState, &counter, SpecOf(1), true);
  EXPECT_EQ(3, counter.mNum);
  EXPECT_EQ(1, mRecorder.GetNum("newNIP"));
  EXPECT_EQ("", PrintNotes(mState));
  EXPECT_EQ("70@900t", PrintNotes(newState));
  EXPECT_EQ(1, GetNumNodes());
}

TEST_F(Vrae_TrackState_Exhaustion, FilteringAndMovingNeedNoMemory) {
  AddNotes(mState, 3);
  Refuse();
  mState.FilterNotesInProgress(EvenPitches());
  mState.OffsetTimes(Time_TickLength(1));
  EXPECT_EQ("60@101t 62@301t", PrintNotes(mState));
  EXPECT_EQ(0, mRecorder.GetNum());
  EXPECT_EQ(2, GetNumNodes());
}

// ---- On the audio thread ----

TEST_F(Vrae_TrackState_RealTime, TakesInAllKindsOfEvents) {
  EXPECT_EQ(
      "", RealtimeViolationsOf([&] {
        mState.ReceiveEvent(Vrae_NoteOnEvent(61, 90));
        mState.ReceiveEvent(Vrae_NoteOffEvent(61, 0));
        mState.ReceiveEvent(Vrae_NoteOffEvent(99, 0));
        mState.ReceiveEvent(Vrae_ControllerEvent(7, 5));
        mState.ReceiveEvent(TimedNote(0, 60, 300));
        mState.ReceiveEvent(Vrae_TimedEvent(
            Time_Tick(0), Vrae_AddNoteInProgressEvent(62, Time_TickLength(9), 80, 64)));
        mState.ReceiveEvent(Vrae_TimedEvent(
            Time_Tick(0), Vrae_ClearNoteInProgressEvent(62, Time_TickLength(9), 80, 64)));
        mState.ReceiveEvent(Vrae_TimedEvent(Time_Tick(0), Vrae_NoteOffEvent(60, 0)));
        mState.ReceiveEvent(Vrae_TimedEvent(
            Time_Tick(0), Vrae_PitchToMIDINoteWithDuration(60, Time_TickLength(5), 80, 64, 0.5f)));
      }));
  EXPECT_EQ(nullptr, mState.NextNoteOff());
  EXPECT_EQ(0, mSink.mNum);
}

TEST_F(Vrae_TrackState_RealTime, ReportsANoteOnInATimedStream) {
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              mState.ReceiveEvent(Vrae_TimedEvent(Time_Tick(0), Vrae_NoteOnEvent(60, 90)));
            }));
  EXPECT_EQ(1, mSink.mNum);
}

TEST_F(Vrae_TrackState_RealTime, GivesNotesOut) {
  Memory::AddNotes(mState);
  int lastPitch = 0;
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              for (; mState.NextNoteOff() != nullptr; mState.PopNoteOff())
                lastPitch = mState.NextNoteOff()->mPitch;
              mState.PopNoteOff();
            }));
  EXPECT_EQ(64, lastPitch);
}

TEST_F(Vrae_TrackState_RealTime, IsMadeCopiedAssignedAndDestroyed) {
  Memory::AddNotes(mState);
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              Vrae_TrackState const empty;
              Vrae_TrackState copy(mState);
              copy = mState;
              copy = empty;
              mOther = mState;
            }));
  EXPECT_EQ(FirstNotes(kNumNotes), PrintNotes(mOther));
}

TEST_F(Vrae_TrackState_RealTime, IsClearedFilteredAndMoved) {
  Memory::AddNotes(mState);
  Memory::AddNotes(mOther);
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              mState.OffsetTimes(Time_TickLength(5));
              mState.OffsetTimes(Time_SampleLength(5));
              mState.FilterNotesInProgress(EvenPitches());
              mState.Clear();
              mOther.DeleteNotesInProgress();
            }));
  EXPECT_EQ(0, mPool.mAllocator.GetNumBlocksInUse());
}

TEST_F(Vrae_TrackState_RealTime, TurnsIntoAnotherInEveryModeBeyond200Notes) {
  Vrae_TrackState newer;
  for (int i = 0; i < 300; ++i) {
    mState.ReceiveEvent(TimedNote(0, static_cast<signed char>(i % 128), 1000 + i));
    newer.ReceiveEvent(TimedNote(0, static_cast<signed char>((i + 64) % 128), 900 + i));
  }
  EventCounter counter;
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              for (int mode : {0, 1, 2, 7})
                mState.ComputeTransitionToNewState(&newer, &counter, SpecOf(mode), false);
              mState.ComputeTransitionToNewState(&newer, nullptr, SpecOf(0), true);
              mState.ComputeTransitionToNewState(&newer, &counter, SpecOf(0), true);
            }));
  EXPECT_LT(1000, counter.mNum);
  EXPECT_EQ(PrintNotes(newer), PrintNotes(mState));
}

TEST_F(Vrae_TrackState_RealTime, ReportsAPoolThatHasRunOut) {
  Memory::AddNotes(mState);
  mPool.mAllocator.FailAfter(0);
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              mState.ReceiveEvent(TimedNote(0, 60, 300));
              mState.ReceiveEvent(Vrae_NoteOnEvent(61, 90));
              mOther = mState;
            }));
  EXPECT_EQ(3, mSink.mNum);
  EXPECT_EQ(FirstNotes(kNumNotes), PrintNotes(mState));
}
