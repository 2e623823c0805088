#include <string>

#include <gtest/gtest.h>

#include "cmn/cmn_assert.h"
#include "foundation/time_convert.h"
#include "support/chase_receiver.h"
#include "support/chunk_samples.h"
#include "support/notes_in_progress.h"
#include "support/realtime_scope.h"
#include "vrad/vrae_chasetracker.h"
#include "vrad/vrae_chasetrackermap.h"
#include "vrad/vrae_trackstate.h"

namespace {

constexpr char const * kNoNote =
    "mU.mBase.mType == kNoteWithDuration || mU.mBase.mType == kPitchToMIDINoteWithDuration";
constexpr char const * kShort = "iDuration >= Time_TypedLength(1, iDuration.GetType())";

Time_Typed const kFromStart = Time_Typed::MinTime(Time_eType_Ticks);

struct ChaseState : testing::Test {
  ChunkPtr mChunk = MakeChunk();
  Vrae_ChaseTrackerMap mMap;
  Vrae_ChaseTracker mTracker{&mMap, false};

  std::string Active() const {
    ChasePrinter printer;
    mTracker.Prep(&printer);
    return printer.Take();
  }
  std::string GetAt(Time_Typed iTime, Time_Typed iLimit = kFromStart) {
    mChunk->GetChaseStateAtTime(&mTracker, iTime, iLimit);
    return Active();
  }
  std::string AddAt(Time_Typed iTime, Time_Typed iLimit = kFromStart) {
    mChunk->AddChaseStateAtTime(&mTracker, iTime, iLimit);
    return Active();
  }
};

// What a call is told: everything but the instant has a value that changes nothing.
struct NoteRequest {
  Time_Typed mSustainStart;
  Time_Typed mRangeStart = Time_Typed::MinTime(Time_eType_Ticks);
  Time_Typed mRangeEnd = Time_Typed::MaxTime(Time_eType_Ticks);
  Time_TypedLength mOffset = Time_TypedLength(0, Time_eType_Ticks);
  bool mClipDuration = false;
};

NoteRequest AtTick20() {
  NoteRequest request;
  request.mSustainStart = Ticks(20);
  return request;
}
NoteRequest AtTick20ClippedAt(Time_Typed iRangeEnd) {
  NoteRequest request = AtTick20();
  request.mRangeEnd = iRangeEnd;
  request.mClipDuration = true;
  return request;
}

struct NoteState : testing::Test {
  NoteInProgressPool mPool;
  ChunkPtr mChunk = MakeChunk();
  Vrae_TrackState mState;
  Cmn_AssertRecorder mRecorder;

  void Add(NoteRequest const & iRequest) {
    mChunk->AddNoteStateAtTime(&mState, iRequest.mSustainStart, iRequest.mRangeStart,
                               iRequest.mRangeEnd, iRequest.mOffset, iRequest.mClipDuration);
  }
  std::string Get(NoteRequest const & iRequest) {
    mState.Clear();
    Add(iRequest);
    return PrintNotes(mState);
  }
  std::string GetAt(Time_Typed iTime) {
    NoteRequest request;
    request.mSustainStart = iTime;
    return Get(request);
  }
  // Of notes that begin in a range.
  std::string GetOfRange(Time_Typed iTime, Time_Typed iRangeStart, Time_Typed iRangeEnd) {
    NoteRequest request;
    request.mSustainStart = iTime;
    request.mRangeStart = iRangeStart;
    request.mRangeEnd = iRangeEnd;
    return Get(request);
  }
  // Of one note from tick 10 that lasts so long, clipped at tick 100.
  std::string GetClipped(long long iTicks) {
    mChunk->Clear();
    mChunk->AddEvent(NoteAt(Ticks(10), 60, iTicks));
    return Get(AtTick20ClippedAt(Ticks(100)));
  }
};

typedef ChaseState Vrad_Chunk_GetChaseStateAtTime;
typedef ChaseState Vrad_Chunk_AddChaseStateAtTime;
typedef NoteState Vrad_Chunk_AddNoteStateAtTime;

}  // namespace

// ---- Values in force ----

TEST_F(Vrad_Chunk_GetChaseStateAtTime, OfAnEmptyChunkLeavesAClearedTracker) {
  mTracker.SetActiveValue(Vrae_SubStream::Controller(7), 90);
  EXPECT_EQ("", GetAt(Ticks(100)));
}

TEST_F(Vrad_Chunk_AddChaseStateAtTime, OfAnEmptyChunkLeavesTheTrackerAsItWas) {
  mTracker.SetActiveValue(Vrae_SubStream::Controller(7), 90);
  EXPECT_EQ("cc7=90", AddAt(Ticks(100)));
}

TEST_F(Vrad_Chunk_GetChaseStateAtTime, ForgetsWhatTheTrackerHeld) {
  mTracker.SetActiveValue(Vrae_SubStream::Controller(1), 5);
  mChunk->AddEvent(ControllerAt(Ticks(10), 7, 90));
  EXPECT_EQ("cc7=90", GetAt(Ticks(100)));
}

TEST_F(Vrad_Chunk_AddChaseStateAtTime, AddsToWhatTheTrackerHolds) {
  mTracker.SetActiveValue(Vrae_SubStream::Controller(1), 5);
  mChunk->AddEvent(ControllerAt(Ticks(10), 7, 90));
  EXPECT_EQ("cc1=5 cc7=90", AddAt(Ticks(100)));
}

TEST_F(Vrad_Chunk_GetChaseStateAtTime, TakesTheLastValueOfEachStream) {
  mChunk->AddEvent(ControllerAt(Ticks(10), 7, 1));
  mChunk->AddEvent(ControllerAt(Ticks(50), 7, 2));
  mChunk->AddEvent(ControllerAt(Ticks(150), 7, 3));
  mChunk->AddEvent(ControllerAt(Ticks(20), 64, 127));
  mChunk->AddEvent(BendAt(Ticks(30), -100));
  EXPECT_EQ("cc7=2 cc64=127 bend=-100", GetAt(Ticks(100)));
}

TEST_F(Vrad_Chunk_GetChaseStateAtTime, IncludesAValueAtTheTimeItself) {
  mChunk->AddEvent(ControllerAt(Ticks(100), 7, 2));
  EXPECT_EQ("", GetAt(Ticks(99)));
  EXPECT_EQ("cc7=2", GetAt(Ticks(100)));
}

TEST_F(Vrad_Chunk_GetChaseStateAtTime, LeavesOutValuesBeforeTheLimit) {
  mChunk->AddEvent(ControllerAt(Ticks(50), 7, 2));
  EXPECT_EQ("cc7=2", GetAt(Ticks(100), Ticks(50)));
  EXPECT_EQ("", GetAt(Ticks(100), Ticks(51)));
}

TEST_F(Vrad_Chunk_GetChaseStateAtTime, LooksNeitherAtNotesNorAtSysex) {
  mChunk->AddEvent(NoteAt(Ticks(10), 60, 1000));
  mChunk->AddEvent(SysexAt(Ticks(10), 5));
  EXPECT_EQ("", GetAt(Ticks(100)));
}

TEST_F(Vrad_Chunk_GetChaseStateAtTime, PassesOverWhatTheMapDoesNotFollow) {
  mChunk->AddEvent(ControllerAt(Ticks(10), 0, 5));
  mChunk->AddEvent(Vrad_ExtendedEvent(Ticks(10), Vrae_PolyPressureEvent(60, 5)));
  mChunk->AddEvent(ControllerAt(Ticks(10), 7, 6));
  EXPECT_EQ("cc7=6", GetAt(Ticks(100)));
}

TEST_F(Vrad_Chunk_AddChaseStateAtTime, KeepsALaterValueOfAnotherChunk) {
  ChunkPtr const later = MakeChunk();
  later->AddEvent(ControllerAt(Ticks(60), 7, 2));
  mChunk->AddEvent(ControllerAt(Ticks(50), 7, 1));
  later->AddChaseStateAtTime(&mTracker, Ticks(100), kFromStart);
  EXPECT_EQ("cc7=2", AddAt(Ticks(100))) << "whatever the order of the chunks";
}

TEST_F(Vrad_Chunk_AddChaseStateAtTime, LetsTheLaterCallWinAtEqualTimes) {
  ChunkPtr const other = MakeChunk();
  other->AddEvent(ControllerAt(Ticks(50), 7, 2));
  mChunk->AddEvent(ControllerAt(Ticks(50), 7, 1));
  other->AddChaseStateAtTime(&mTracker, Ticks(100), kFromStart);
  EXPECT_EQ("cc7=1", AddAt(Ticks(100)));
}

TEST_F(Vrad_Chunk_AddChaseStateAtTime, TellsTheTrackerStoredTimes) {
  mChunk->AddEvent(ControllerAt(Ticks(50), 7, 1));
  AddAt(Ticks(100));
  mTracker.SetActiveValueIfLater(Vrae_SubStream::Controller(7), 2, Ticks(49));
  EXPECT_EQ("cc7=1", Active());
  mTracker.SetActiveValueIfLater(Vrae_SubStream::Controller(7), 3, Ticks(50));
  EXPECT_EQ("cc7=3", Active());
}

TEST_F(Vrad_Chunk_GetChaseStateAtTime, TakesATimeInSamples) {
  mChunk->AddEvent(ControllerAt(Ticks(400), 7, 1));  // sample 10
  EXPECT_EQ("", GetAt(Samples(8), Samples(0)));
  EXPECT_EQ("cc7=1", GetAt(Samples(10), Samples(0)));
}

// ---- Sounding notes ----

TEST_F(Vrad_Chunk_AddNoteStateAtTime, OfAnEmptyChunkAddsNothing) {
  EXPECT_EQ("", GetAt(Ticks(100)));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, TakesNotesThatSoundStrictlyAroundTheInstant) {
  mChunk->AddEvent(NoteAt(Ticks(10), 60, 5));
  EXPECT_EQ("", GetAt(Ticks(10)));
  EXPECT_EQ("60@15t", GetAt(Ticks(11)));
  EXPECT_EQ("60@15t", GetAt(Ticks(14)));
  EXPECT_EQ("", GetAt(Ticks(15)));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, AddsToWhatTheStateHolds) {
  mState.ReceiveEvent(TimedNote(0, 72, 50));
  mChunk->AddEvent(NoteAt(Ticks(0), 60, 100));
  NoteRequest request;
  request.mSustainStart = Ticks(10);
  Add(request);
  EXPECT_EQ("72@50t 60@100t", PrintNotes(mState));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, KeepsTheVelocities) {
  mChunk->AddEvent(Vrad_NoteWithDurationExtendedEvent(
      Ticks(0), Vrae_NoteWithDurationEvent(60, Time_TickLength(100), 81, 33), false));
  ASSERT_EQ("60@100t", GetAt(Ticks(10)));
  EXPECT_EQ(81, mState.NextNoteOff()->mOnVelocity);
  EXPECT_EQ(33, mState.NextNoteOff()->mOffVelocity);
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, PassesOnANoteAtTheRangesStartAndNoneAtItsEnd) {
  mChunk->AddEvent(NoteAt(Ticks(9), 59, 1000));
  mChunk->AddEvent(NoteAt(Ticks(10), 60, 1000));
  mChunk->AddEvent(NoteAt(Ticks(19), 61, 1000));
  mChunk->AddEvent(NoteAt(Ticks(20), 62, 1000));
  EXPECT_EQ("60@1010t 61@1019t", GetOfRange(Ticks(100), Ticks(10), Ticks(20)));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, AsksForTheInstantAndNotForTheRangesStart) {
  mChunk->AddEvent(NoteAt(Ticks(30), 60, 100));
  Time_Typed const end = Time_Typed::MaxTime(Time_eType_Ticks);
  EXPECT_EQ("60@130t", GetOfRange(Ticks(50), Ticks(10), end));
  EXPECT_EQ("", GetOfRange(Ticks(20), Ticks(10), end)) << "it has not begun";
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, GoesOnBehindANoteOutsideTheRange) {
  mChunk->AddEvent(NoteAt(Ticks(0), 60, 1000));
  mChunk->AddEvent(NoteAt(Ticks(20), 61, 1000));
  mChunk->AddEvent(NoteAt(Ticks(40), 62, 1000));
  EXPECT_EQ("61@1020t", GetOfRange(Ticks(100), Ticks(10), Ticks(30)));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, LeavesANoteThatEndsExactlyAtTheRangesEnd) {
  EXPECT_EQ("60@100t", GetClipped(90));
  EXPECT_EQ("60@99t", GetClipped(89));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, TakesOneUnitOffANoteThatIsOneUnitLonger) {
  EXPECT_EQ("60@100t", GetClipped(91));
  EXPECT_EQ("60@100t", GetClipped(1000000));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, PassesOnTheFullLengthUnlessToldToClip) {
  mChunk->AddEvent(NoteAt(Ticks(10), 60, 91));
  NoteRequest request = AtTick20();
  request.mRangeEnd = Ticks(100);
  EXPECT_EQ("60@101t", Get(request));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, ClipsInTheUnitOfTheRangesEnd) {
  mChunk->AddEvent(NoteAt(Ticks(400), 60, 4000));
  NoteRequest request;
  request.mSustainStart = Ticks(800);
  request.mRangeEnd = Samples(100);  // tick 4000
  request.mClipDuration = true;
  EXPECT_EQ("60@4000t", Get(request));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, NeverClipsWithoutAnEnd) {
  mChunk->AddEvent(NoteAt(Ticks(10), 60, 91));
  NoteRequest request = AtTick20();
  request.mClipDuration = true;
  EXPECT_EQ("60@101t", Get(request));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, ClipsBeforeItAddsTheOffset) {
  mChunk->AddEvent(NoteAt(Ticks(10), 60, 1000));
  NoteRequest request = AtTick20ClippedAt(Ticks(100));
  request.mOffset = Time_TickLength(5000);
  EXPECT_EQ("60@5100t", Get(request));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, AddsTheOffset) {
  mChunk->AddEvent(NoteAt(Ticks(10), 60, 100));
  NoteRequest request = AtTick20();
  request.mOffset = Time_TickLength(5000);
  EXPECT_EQ("60@5110t", Get(request));
  request.mOffset = Time_TickLength(-50);
  EXPECT_EQ("60@60t", Get(request));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, AddsAnOffsetInSamplesToTicks) {
  mChunk->AddEvent(NoteAt(Ticks(10), 60, 100));
  NoteRequest request = AtTick20();
  request.mOffset = Time_SampleLength(10);
  EXPECT_EQ("60@510t", Get(request));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, ReportsALengthThatIsCutToNothing) {
  // At 40.5 ticks to the sample, sample 11 lies before tick 446 but rounds to it.
  Time_Convert::GetDefaultTempoMap().Reset(121.5);
  mChunk->AddEvent(NoteAt(Samples(11), 60, 4000));
  NoteRequest request;
  request.mSustainStart = Samples(20);
  request.mRangeEnd = Ticks(446);
  request.mClipDuration = true;
  EXPECT_EQ("60@11s", Get(request));
  ASSERT_EQ(1, mRecorder.GetNum(kShort));
  EXPECT_FALSE(mRecorder.GetEntries()[0].mThrowing);
  request.mRangeEnd = Ticks(447);
  Get(request);
  EXPECT_EQ(1, mRecorder.GetNum(kShort)) << "one tick is enough";
  Time_Convert::GetDefaultTempoMap().Reset(120.0);
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, ReportsARecordThatIsNoNoteWhenItIsClipped) {
  // Where a note's length lies, this record of another kind has one.
  Vrae_Event record = Vrae_AddNoteInProgressEvent(60, Time_TickLength(1000), 80, 64);
  mChunk->GetNoteList()->AddNote(Vrad_NoteWithDurationExtendedEvent(
      Ticks(10), static_cast<Vrae_NoteWithDurationEvent const &>(record), false));
  NoteRequest request = AtTick20ClippedAt(Ticks(100));
  mRecorder.Clear();
  EXPECT_EQ("60@100t", Get(request));
  ASSERT_LE(1, mRecorder.GetNum(kNoNote));
  EXPECT_FALSE(mRecorder.GetEntries()[0].mThrowing);
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, ANoteWithAFractionalPitchNeverSustains) {
  mChunk->AddEvent(Vrad_ExtendedEvent(Vrad_NoteWithDurationExtendedEvent(
      Ticks(10),
      Vrae_PitchToMIDINoteWithDuration(60, Time_TickLength(1000), 80, 64, 0.25f)
          .AsNoteWithDuration(),
      false)));
  ASSERT_EQ("notes f60@10t+1000t / misc", PrintContents(*mChunk.Get()));
  NoteRequest request = AtTick20();
  request.mRangeEnd = Ticks(100);
  for (bool const clip : {false, true}) {
    request.mClipDuration = clip;
    EXPECT_EQ("", Get(request));
  }
  EXPECT_EQ(0, mRecorder.GetNum(kNoNote));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, PassesOnMutedNotes) {
  mChunk->AddEvent(NoteAt(Ticks(10), 60, 100, true));
  EXPECT_EQ("60@110t", GetAt(Ticks(20)));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, FindsLongNotesAndShortOnes) {
  mChunk->AddEvent(NoteAt(Ticks(0), 60, 100000000));
  for (int i = 0; i < 1000; ++i)
    mChunk->AddEvent(NoteAt(Ticks(i * 30000), 61, 100));
  mChunk->AddEvent(NoteAt(Ticks(29999900), 62, 200));
  EXPECT_EQ("62@30000100t 60@100000000t", GetAt(Ticks(30000000)));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, PutsTheLaterOfTwoNotesThatEndTogetherFirst) {
  mChunk->AddEvent(NoteAt(Ticks(0), 60, 100));
  mChunk->AddEvent(NoteAt(Ticks(10), 61, 90));
  EXPECT_EQ("61@100t 60@100t", GetAt(Ticks(50)));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, WithoutMemoryPassesOverWhatItCannotTrack) {
  mChunk->AddEvent(NoteAt(Ticks(0), 60, 100));
  mChunk->AddEvent(NoteAt(Ticks(1), 61, 200));
  mChunk->AddEvent(NoteAt(Ticks(2), 62, 300));
  mPool.mAllocator.FailAfter(1);
  EXPECT_EQ("60@100t", GetAt(Ticks(50)));
  EXPECT_EQ(2, mRecorder.GetNum("nip"));
  mPool.mAllocator.FailAfter(-1);
  EXPECT_EQ("60@100t 61@201t 62@302t", GetAt(Ticks(50)));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, ChangesTheCopyAndNotTheStoredNote) {
  mChunk->AddEvent(NoteAt(Ticks(10), 60, 1000));
  NoteRequest request = AtTick20ClippedAt(Ticks(100));
  request.mOffset = Time_TickLength(5000);
  Get(request);
  EXPECT_EQ("notes n60@10t+1000t / misc", PrintContents(*mChunk.Get()));
}

TEST_F(Vrad_Chunk_AddNoteStateAtTime, LooksAtNotesAlone) {
  mChunk->AddEvent(ControllerAt(Ticks(10), 64, 127));
  mChunk->AddEvent(SysexAt(Ticks(10), 5));
  EXPECT_EQ("", GetAt(Ticks(20)));
  EXPECT_EQ("notes / stream 64 c64=127@10t / misc x5@10t", PrintContents(*mChunk.Get()));
}

// ---- For the audio thread ----

TEST_F(Vrad_Chunk_AddNoteStateAtTime, AndTheChaseStatesTakeNothingFromTheHeap) {
  for (int i = 0; i < 2000; ++i) {
    mChunk->AddEvent(NoteAt(Ticks(i * 100), i % 128, i % 10 == 0 ? 50000000 : 250));
    mChunk->AddEvent(ControllerAt(Ticks(i * 100), 1 + i % 119, i % 128));
    mChunk->AddEvent(BendAt(Ticks(i * 100), i));
  }
  Vrae_ChaseTrackerMap map;
  Vrae_ChaseTracker tracker(&map, true);
  auto const computeAll = [&](bool iClip) {
    mChunk->GetChaseStateAtTime(&tracker, Ticks(150000), kFromStart);
    mChunk->AddChaseStateAtTime(&tracker, Samples(2500), Samples(0));
    mState.Clear();
    mChunk->AddNoteStateAtTime(&mState, Ticks(150000), Ticks(0), Ticks(200000),
                               Time_SampleLength(7), iClip);
  };
  computeAll(false);  // the lists gather what their searches need
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              computeAll(false);
              computeAll(true);
            }));
  EXPECT_TRUE(tracker.IsActive(Vrae_SubStream::Controller(119)));
  EXPECT_NE(nullptr, mState.NextNoteOff());
}
