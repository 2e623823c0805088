// Edits between chunks and of ranges; the shift for tick-time playback has a file of its own.
#include <gtest/gtest.h>

#include <string>

#include "cmn/cmn_assert.h"
#include "support/chunk_samples.h"
#include "support/edit_scopes.h"
#include "support/event_samples.h"
#include "support/throwing_off.h"
#include "support/tick_times_matter.h"
#include "vrad/vrad_chunk.h"

namespace {

constexpr char const * kModeText = "unexpected nudge mode";

/// A note, a bend, a controller and a sysex, at ticks 10, 20, 30 and 40, and again 100 later.
void Fill(Vrad_Chunk & ioChunk) {
  for (long long later : {0, 100}) {
    ioChunk.AddEvent(NoteAt(Ticks(10 + later), 60));
    ioChunk.AddEvent(BendAt(Ticks(20 + later), 5));
    ioChunk.AddEvent(ControllerAt(Ticks(30 + later), 7, 90));
    ioChunk.AddEvent(SysexAt(Ticks(40 + later), 3));
  }
}

class Source : public testing::Test {
protected:
  Source() : mTarget(MakeChunk()), mSource(MakeChunk()) { Fill(*mSource.Get()); }

  void Add(long long iStart, long long iEnd, Time_TypedLength iOffset, int iMode) {
    mTarget->AddEventsFromChunk(mSource.Get(), Ticks(iStart), Ticks(iEnd), iOffset,
                                static_cast<EMidiNudgeMode>(iMode));
  }
  void Erase(long long iStart, long long iEnd, Time_TypedLength iOffset) {
    mTarget->EraseEventsFromChunk(mSource.Get(), Ticks(iStart), Ticks(iEnd), iOffset);
  }
  std::string Contents() const { return PrintContents(*mTarget.Get()); }
  std::string SourceContents() const { return PrintContents(*mSource.Get()); }

  ChunkPtr mTarget, mSource;
};

typedef Source Vrad_Chunk_AddEventsFromChunk;
typedef Source Vrad_Chunk_EraseEventsFromChunk;

class Filled : public testing::Test {
protected:
  Filled() : mChunk(MakeChunk()) { Fill(*mChunk.Get()); }
  std::string Contents() const { return PrintContents(*mChunk.Get()); }
  ChunkPtr mChunk;
};

typedef Filled Vrad_Chunk_EraseRange;
typedef Filled Vrad_Chunk_EraseSubStream;

char const * const kAll = "notes n60@10t+480t n60@110t+480t / stream 0 b5@20t b5@120t"
                          " / stream 7 c7=90@30t c7=90@130t / misc x3@40t x3@140t";

}  // namespace

TEST_F(Vrad_Chunk_AddEventsFromChunk, CopiesEveryStore) {
  Add(0, 1000, Time_TickLength(0), 0);
  EXPECT_EQ(Contents(), kAll);
  EXPECT_EQ(SourceContents(), kAll);
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, RangeIncludesItsStartAndExcludesItsEnd) {
  Add(10, 110, Time_TickLength(0), 0);
  EXPECT_EQ(Contents(), "notes n60@10t+480t / stream 0 b5@20t / stream 7 c7=90@30t / misc x3@40t");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, EmptyRangeCopiesNothing) {
  Add(10, 10, Time_TickLength(5), 0);
  EXPECT_EQ(Contents(), "notes / misc");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, RangeWithItsEndBeforeItsStartCopiesNothing) {
  Add(100, 10, Time_TickLength(5), 0);
  EXPECT_EQ(Contents(), "notes / misc");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, MergesBehindNotesOfEqualTime) {
  mTarget->AddEvent(NoteAt(Ticks(10), 61));
  Add(0, 15, Time_TickLength(0), 0);
  EXPECT_EQ(Contents(), "notes n61@10t+480t n60@10t+480t / misc");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, AvoidsOverlapsWhereThatIsAskedFor) {
  AvoidOverlapsScope const scope;
  mTarget->AddEvent(NoteAt(Ticks(10), 60, 200));
  Add(0, 15, Time_TickLength(0), 0);
  EXPECT_EQ(Contents(), "notes n60@10t+480t / misc");
  EXPECT_EQ(SourceContents(), kAll);
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, SourceWinsWhereAValueStands) {
  mTarget->AddEvent(ControllerAt(Ticks(30), 7, 1));
  Add(0, 50, Time_TickLength(0), 0);
  EXPECT_EQ(Contents(), "notes n60@10t+480t / stream 0 b5@20t / stream 7 c7=90@30t / misc x3@40t");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, NoteKeepsItsExtras) {
  Vrae_NoteWithDurationEvent const original(50, Time_TickLength(7), 1, 2);
  mSource->AddEvent(
      Vrad_NoteWithDurationExtendedEvent(Ticks(0), NoteAt(Ticks(0), 70).mEvent.AsNoteWithDuration(),
                                         Time_TickLength(9), original, true));
  Add(0, 5, Time_TickLength(3), 0);
  Vrad_NoteListBase_Note const note =
      *Vrad_NoteListBase::FullNotesInRangeIter(mTarget->GetNoteList());
  EXPECT_EQ(note.mQuantizeTimeDelta.AsInt64(), 9);
  EXPECT_EQ(note.mOrigEvent.GetPitch(), 50);
  EXPECT_TRUE(note.mMuted);
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, ModeTimesMovesEverything) {
  Add(0, 100, Time_TickLength(1000), kNudgeTimes);
  EXPECT_EQ(Contents(), "notes n60@1010t+480t / stream 0 b5@1020t / stream 7 c7=90@1030t"
                        " / misc x3@1040t");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, ModeStartsMovesStartsOfNotesAndCopiesTheRestInPlace) {
  Add(0, 100, Time_TickLength(80), kNudgeStarts);
  EXPECT_EQ(Contents(), "notes n60@90t+400t / stream 0 b5@20t / stream 7 c7=90@30t / misc x3@40t");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, ModeStartsThatANoteRefusesCopiesAllInPlace) {
  Add(0, 100, Time_TickLength(479), kNudgeStarts);
  EXPECT_EQ(Contents(), "notes n60@10t+480t / stream 0 b5@20t / stream 7 c7=90@30t / misc x3@40t");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, ModeDurationsLengthensNotesAndCopiesTheRestInPlace) {
  Add(0, 100, Time_TickLength(-80), kNudgeDurations);
  EXPECT_EQ(Contents(), "notes n60@10t+400t / stream 0 b5@20t / stream 7 c7=90@30t / misc x3@40t");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, ModePitchesMovesPitchesAndCopiesTheRestInPlace) {
  Add(0, 100, Time_TickLength(1000), kNudgePitches);
  EXPECT_EQ(Contents(), "notes n59@10t+480t / stream 0 b5@20t / stream 7 c7=90@30t / misc x3@40t");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, ModePitchesUpwardForANegativeLength) {
  Add(0, 15, Time_TickLength(-1000), kNudgePitches);
  EXPECT_EQ(Contents(), "notes n61@10t+480t / misc");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, UnknownModeIsReportedAndMovesEverything) {
  for (int mode : {4, -1}) {
    mTarget = MakeChunk();
    Cmn_AssertRecorder const recorder;
    Add(0, 100, Time_TickLength(1000), mode);
    EXPECT_EQ(recorder.GetNum(kModeText), 1) << mode;
    EXPECT_EQ(recorder.GetNum(), 1) << mode;
    EXPECT_EQ(Contents(), "notes n60@1010t+480t / stream 0 b5@1020t / stream 7 c7=90@1030t"
                          " / misc x3@1040t")
        << mode;
  }
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, UnknownModeWithoutAnOffsetIsNotReported) {
  Cmn_AssertRecorder const recorder;
  Add(0, 1000, Time_TickLength(0), 4);
  EXPECT_EQ(recorder.GetNum(), 0);
  EXPECT_EQ(Contents(), kAll);
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, UnknownModeIsReportedForAnEmptyRangeToo) {
  Cmn_AssertRecorder const recorder;
  Add(0, 0, Time_TickLength(1), 9);
  EXPECT_EQ(recorder.GetNum(kModeText), 1);
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, OffsetMayBeOfTheOtherUnit) {
  Add(0, 15, Time_SampleLength(10), kNudgeTimes);
  EXPECT_EQ(Contents(), "notes n60@410t+480t / misc");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, SourceStreamWithoutEventsInTheRangeCreatesNone) {
  Add(25, 100, Time_TickLength(0), 0);
  EXPECT_EQ(Contents(), "notes / stream 7 c7=90@30t / misc x3@40t");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, NewStreamTakesItsPlaceByIndex) {
  mTarget->AddEvent(ControllerAt(Ticks(1), 3, 1));
  mTarget->AddEvent(ControllerAt(Ticks(1), 9, 1));
  Add(15, 35, Time_TickLength(0), 0);
  EXPECT_EQ(Contents(), "notes / stream 0 b5@20t / stream 3 c3=1@1t / stream 7 c7=90@30t"
                        " / stream 9 c9=1@1t / misc");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, OfItselfActsOnACopy) {
  mSource->AddEventsFromChunk(mSource.Get(), Ticks(0), Ticks(100), Time_TickLength(1), kNudgeTimes);
  EXPECT_EQ(SourceContents(),
            "notes n60@10t+480t n60@11t+480t n60@110t+480t / stream 0 b5@20t b5@21t b5@120t"
            " / stream 7 c7=90@30t c7=90@31t c7=90@130t / misc x3@40t x3@41t x3@140t");
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, DropsTheCachedList) {
  mTarget->StoreSortedEventList(new Vrad_DisplayItemList);
  Add(0, 0, Time_TickLength(0), 0);
  EXPECT_EQ(mTarget->GetSortedEventList(), nullptr);
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, LeavesTheSourcesCachedList) {
  Vrad_DisplayItemList * const listP = new Vrad_DisplayItemList;
  mSource->StoreSortedEventList(listP);
  Add(0, 1000, Time_TickLength(0), 0);
  EXPECT_EQ(mSource->GetSortedEventList(), listP);
}

TEST_F(Vrad_Chunk_AddEventsFromChunk, LongNotesSoundInTheTarget) {
  mSource->AddEvent(NoteAt(Ticks(0), 72, 20000000));
  Add(0, 5, Time_TickLength(0), 0);
  EXPECT_EQ(mTarget->GetNoteList()->GetLongNoteList()->Size(), 1U);
}

// A pair of chunks that quantize, or not, while tick times matter.
class Vrad_Chunk_AddEventsOnGrid : public testing::TestWithParam<bool> {
protected:
  Vrad_Chunk_AddEventsOnGrid()
      : mTarget(MakeChunk(Ndo_Object::kNotUndoable, GetParam())), mSource(MakeChunk()) {
    mSource->AddEvent(NoteAt(Ticks(1300), 60, 4000));
    mSource->AddEvent(ControllerAt(Ticks(1300), 7, 90));
    mSource->AddEvent(SysexAt(Ticks(1300), 3));
  }
  void Add(Time_Typed iStart, Time_TypedLength iOffset, EMidiNudgeMode iMode) {
    mTarget->AddEventsFromChunk(mSource.Get(), iStart, Ticks(9000), iOffset, iMode);
  }
  std::string Contents() const { return PrintContents(*mTarget.Get()); }

  TickTimesMatterScope mScope;
  ChunkPtr mTarget, mSource;
};

INSTANTIATE_TEST_SUITE_P(Quantizing, Vrad_Chunk_AddEventsOnGrid, testing::Bool());

TEST_P(Vrad_Chunk_AddEventsOnGrid, ModeTimesWithoutAnOffsetBringsCopiesOntoTheGrid) {
  Add(Ticks(0), Time_TickLength(0), kNudgeTimes);
  EXPECT_EQ(Contents(), GetParam()
                            ? "notes n60@1000t+4000t / stream 7 c7=90@1000t / misc x3@1000t"
                            : "notes n60@1300t+4000t / stream 7 c7=90@1300t / misc x3@1300t");
}

TEST_P(Vrad_Chunk_AddEventsOnGrid, WithoutAnOffsetARangeInSamplesLeavesNotesWhereTheyAre) {
  Add(Samples(0), Time_TickLength(0), kNudgeTimes);
  EXPECT_EQ(Contents(), GetParam()
                            ? "notes n60@1300t+4000t / stream 7 c7=90@1000t / misc x3@1000t"
                            : "notes n60@1300t+4000t / stream 7 c7=90@1300t / misc x3@1300t");
}

TEST_P(Vrad_Chunk_AddEventsOnGrid, ModeStartsWithoutAnOffsetInTicksDoesNotSnapNotes) {
  Add(Ticks(0), Time_TickLength(0), kNudgeStarts);
  EXPECT_EQ(Contents(), GetParam()
                            ? "notes n60@1300t+4000t / stream 7 c7=90@1000t / misc x3@1000t"
                            : "notes n60@1300t+4000t / stream 7 c7=90@1300t / misc x3@1300t");
}

TEST_P(Vrad_Chunk_AddEventsOnGrid, ModeStartsWithoutAnOffsetInSamplesSnapsEachStartAndKeepsTheEnd) {
  Add(Ticks(0), Time_SampleLength(0), kNudgeStarts);
  EXPECT_EQ(Contents(), GetParam()
                            ? "notes n60@1000t+4300t / stream 7 c7=90@1000t / misc x3@1000t"
                            : "notes n60@1300t+4000t / stream 7 c7=90@1300t / misc x3@1300t");
}

// Not refused, it would give each duration the unit of the note's time.
TEST_P(Vrad_Chunk_AddEventsOnGrid, ModeStartsWithoutAnOffsetIsRefusedForANoteOfOneTick) {
  mSource->GetNoteList()->Clear();
  Vrae_NoteWithDurationEvent const inSamples(60, Time_SampleLength(100), 100, 64);
  mSource->AddEvent(Vrad_NoteWithDurationExtendedEvent(Ticks(2000), inSamples, false));
  Add(Ticks(1400), Time_TickLength(0), kNudgeStarts);
  mSource->AddEvent(NoteAt(Ticks(3000), 61, 1));
  Add(Ticks(1400), Time_TickLength(0), kNudgeStarts);
  EXPECT_EQ(Contents(), "notes n60@2000t+4000t n60@2000t+100s n61@3000t+1t / misc");
}

TEST_P(Vrad_Chunk_AddEventsOnGrid, ModeDurationsWithoutAnOffsetChangesNoNote) {
  Add(Ticks(0), Time_TickLength(0), kNudgeDurations);
  EXPECT_EQ(Contents().substr(0, 21), "notes n60@1300t+4000t");
}

TEST_P(Vrad_Chunk_AddEventsOnGrid, ModePitchesWithoutAnOffsetRaisesEveryPitchQuantizingOrNot) {
  Add(Ticks(0), Time_TickLength(0), kNudgePitches);
  EXPECT_EQ(Contents().substr(0, 21), "notes n61@1300t+4000t");
}

TEST_P(Vrad_Chunk_AddEventsOnGrid, UnknownModeWithoutAnOffsetIsReported) {
  Cmn_AssertRecorder const recorder;
  Add(Ticks(0), Time_TickLength(0), static_cast<EMidiNudgeMode>(17));
  EXPECT_EQ(recorder.GetNum(kModeText), 1);
}

TEST_P(Vrad_Chunk_AddEventsOnGrid, ErasingWithoutAnOffsetMissesWhatTheGridHasMoved) {
  Add(Ticks(0), Time_TickLength(0), kNudgeTimes);
  mTarget->EraseEventsFromChunk(mSource.Get(), Ticks(0), Ticks(9000), Time_TickLength(0));
  EXPECT_EQ(Contents(), GetParam() ? "notes n60@1000t+4000t / stream 7 c7=90@1000t / misc x3@1000t"
                                   : "notes / misc");
}

TEST_P(Vrad_Chunk_AddEventsOnGrid, ErasingWithAnOffsetFindsNotesThatTheGridHasMovedAndNothingElse) {
  Add(Ticks(0), Time_TickLength(2000), kNudgeTimes);
  mTarget->EraseEventsFromChunk(mSource.Get(), Ticks(0), Ticks(9000), Time_TickLength(2000));
  EXPECT_EQ(Contents(),
            GetParam() ? "notes / stream 7 c7=90@3000t / misc x3@3000t" : "notes / misc");
}

TEST_F(Vrad_Chunk_EraseEventsFromChunk, RemovesWhatWasAddedWithAnOffset) {
  mTarget->AddEvent(NoteAt(Ticks(1), 40));
  Add(0, 1000, Time_TickLength(70), kNudgeTimes);
  Erase(0, 1000, Time_TickLength(70));
  EXPECT_EQ(Contents(), "notes n40@1t+480t / misc");
  EXPECT_EQ(SourceContents(), kAll);
}

TEST_F(Vrad_Chunk_EraseEventsFromChunk, RemovesTheRangeAlone) {
  Fill(*mTarget.Get());
  Erase(10, 110, Time_TickLength(0));
  EXPECT_EQ(Contents(),
            "notes n60@110t+480t / stream 0 b5@120t / stream 7 c7=90@130t / misc x3@140t");
}

TEST_F(Vrad_Chunk_EraseEventsFromChunk, RemovesOneNoteForEach) {
  for (int i = 0; i < 3; ++i)
    mTarget->AddEvent(NoteAt(Ticks(10), 60));
  mSource->AddEvent(NoteAt(Ticks(10), 60));
  Erase(0, 15, Time_TickLength(0));
  EXPECT_EQ(Contents(), "notes n60@10t+480t / misc");
}

TEST_F(Vrad_Chunk_EraseEventsFromChunk, NeedsNotesAlikeInDurationToo) {
  mTarget->AddEvent(NoteAt(Ticks(10), 60, 481));
  Erase(0, 100, Time_TickLength(0));
  EXPECT_EQ(Contents(), "notes n60@10t+481t / misc");
}

TEST_F(Vrad_Chunk_EraseEventsFromChunk, LeavesAnotherValueAtTheSameTime) {
  mTarget->AddEvent(ControllerAt(Ticks(30), 7, 91));
  mTarget->AddEvent(SysexAt(Ticks(40), 4));
  Erase(0, 100, Time_TickLength(0));
  EXPECT_EQ(Contents(), "notes / stream 7 c7=91@30t / misc x4@40t");
}

TEST_F(Vrad_Chunk_EraseEventsFromChunk, CreatesNoStream) {
  Erase(0, 1000, Time_TickLength(0));
  EXPECT_EQ(mTarget->GetContinuousList().size(), 0U);
}

TEST_F(Vrad_Chunk_EraseEventsFromChunk, LeavesStreamsThatTheSourceHasNot) {
  mTarget->AddEvent(ControllerAt(Ticks(30), 8, 90));
  Erase(0, 1000, Time_TickLength(0));
  EXPECT_EQ(Contents(), "notes / stream 8 c8=90@30t / misc");
}

TEST_F(Vrad_Chunk_EraseEventsFromChunk, LeavesAnEmptyStreamWithoutSourceEventsInTheRange) {
  mTarget->IsEventInChunk(ControllerAt(Ticks(30), 7, 90));
  Erase(35, 100, Time_TickLength(0));
  EXPECT_EQ(Contents(), "notes / stream 7 / misc");
  Erase(0, 100, Time_TickLength(0));
  EXPECT_EQ(Contents(), "notes / misc");
}

TEST_F(Vrad_Chunk_EraseEventsFromChunk, OfItselfEmptiesTheRange) {
  mSource->EraseEventsFromChunk(mSource.Get(), Ticks(0), Ticks(100), Time_TickLength(0));
  EXPECT_EQ(SourceContents(),
            "notes n60@110t+480t / stream 0 b5@120t / stream 7 c7=90@130t / misc x3@140t");
  mSource->EraseEventsFromChunk(mSource.Get(), Ticks(0), Ticks(1000), Time_TickLength(0));
  EXPECT_EQ(SourceContents(), "notes / misc");
}

TEST_F(Vrad_Chunk_EraseEventsFromChunk, OfItselfWithAnOffsetErasesTheMovedOnes) {
  mSource->EraseEventsFromChunk(mSource.Get(), Ticks(0), Ticks(1000), Time_TickLength(100));
  EXPECT_EQ(SourceContents(),
            "notes n60@10t+480t / stream 0 b5@20t / stream 7 c7=90@30t / misc x3@40t");
}

TEST_F(Vrad_Chunk_EraseEventsFromChunk, DropsTheCachedList) {
  mTarget->StoreSortedEventList(new Vrad_DisplayItemList);
  Erase(0, 0, Time_TickLength(0));
  EXPECT_EQ(mTarget->GetSortedEventList(), nullptr);
}

TEST_F(Vrad_Chunk_EraseEventsFromChunk, TwoNotesWithFractionalPitchesAtOneTimeThrowAndLeaveAll) {
  Vrae_Event const event = MakeSampleEvent(Vrae_Event::kPitchToMIDINoteWithDuration);
  Vrad_NoteWithDurationExtendedEvent const note(Ticks(10), event.AsNoteWithDuration(), false);
  mTarget->AddEvent(note);
  mSource->AddEvent(note);
  std::string const before = Contents();
  Cmn_AssertRecorder const recorder;
  EXPECT_THROW(Erase(0, 1000, Time_TickLength(0)), Cmn_AssertException);
  EXPECT_EQ(recorder.GetNum("0"), 1);
  EXPECT_EQ(Contents(), before);
}

TEST_F(Vrad_Chunk_EraseRange, IncludesItsStartAndExcludesItsEnd) {
  mChunk->EraseRange(Ticks(10), Ticks(110));
  EXPECT_EQ(Contents(),
            "notes n60@110t+480t / stream 0 b5@120t / stream 7 c7=90@130t / misc x3@140t");
}

TEST_F(Vrad_Chunk_EraseRange, TakesSysexAtItsEndToo) {
  mChunk->EraseRange(Ticks(25), Ticks(40));
  EXPECT_EQ(Contents(), "notes n60@10t+480t n60@110t+480t / stream 0 b5@20t b5@120t"
                        " / stream 7 c7=90@130t / misc x3@140t");
}

TEST_F(Vrad_Chunk_EraseRange, LeavesWhatSoundsIntoIt) {
  mChunk->EraseRange(Ticks(11), Ticks(20));
  EXPECT_EQ(Contents(), kAll);
}

TEST_F(Vrad_Chunk_EraseRange, EmptyRangeErasesNothing) {
  mChunk->EraseRange(Ticks(10), Ticks(10));
  EXPECT_EQ(Contents(), kAll);
}

TEST_F(Vrad_Chunk_EraseRange, BoundsMayBeInSamples) {
  mChunk->EraseRange(Samples(0), Samples(2));
  EXPECT_EQ(Contents(),
            "notes n60@110t+480t / stream 0 b5@120t / stream 7 c7=90@130t / misc x3@140t");
}

TEST_F(Vrad_Chunk_EraseRange, RemovesEmptiedStreamsAndALaterEventBringsThemBack) {
  mChunk->EraseRange(Ticks(0), Ticks(1000));
  EXPECT_EQ(Contents(), "notes / misc");
  mChunk->AddEvent(ControllerAt(Ticks(5), 7, 1));
  EXPECT_EQ(Contents(), "notes / stream 7 c7=1@5t / misc");
}

TEST_F(Vrad_Chunk_EraseRange, RemovesAStreamThatWasEmptyBefore) {
  mChunk->IsEventInChunk(ControllerAt(Ticks(30), 9, 90));
  mChunk->EraseRange(Ticks(500), Ticks(600));
  EXPECT_EQ(Contents(), kAll);
}

TEST_F(Vrad_Chunk_EraseRange, DropsTheCachedListEvenWhenNothingGoes) {
  mChunk->StoreSortedEventList(new Vrad_DisplayItemList);
  mChunk->EraseRange(Ticks(10), Ticks(10));
  EXPECT_EQ(mChunk->GetSortedEventList(), nullptr);
}

TEST_F(Vrad_Chunk_EraseSubStream, ErasesItsRangeAlone) {
  mChunk->EraseSubStream(Vrae_SubStream::Controller(7), Ticks(30), Ticks(130));
  EXPECT_EQ(Contents(), "notes n60@10t+480t n60@110t+480t / stream 0 b5@20t b5@120t"
                        " / stream 7 c7=90@130t / misc x3@40t x3@140t");
}

TEST_F(Vrad_Chunk_EraseSubStream, ExcludesItsEnd) {
  mChunk->EraseSubStream(Vrae_SubStream::Controller(7), Ticks(0), Ticks(30));
  EXPECT_EQ(Contents(), kAll);
}

TEST_F(Vrad_Chunk_EraseSubStream, RemovesTheStreamLeftEmpty) {
  mChunk->EraseSubStream(Vrae_SubStream::Controller(7), Ticks(0), Ticks(1000));
  EXPECT_EQ(Contents(), "notes n60@10t+480t n60@110t+480t / stream 0 b5@20t b5@120t"
                        " / misc x3@40t x3@140t");
}

TEST_F(Vrad_Chunk_EraseSubStream, WithoutAStreamErasesFromTheNextOneAbove) {
  mChunk->EraseSubStream(Vrae_SubStream::Controller(5), Ticks(0), Ticks(100));
  EXPECT_EQ(Contents(), "notes n60@10t+480t n60@110t+480t / stream 0 b5@20t b5@120t"
                        " / stream 7 c7=90@130t / misc x3@40t x3@140t");
}

TEST_F(Vrad_Chunk_EraseSubStream, AboveAllStreamsErasesNothing) {
  mChunk->EraseSubStream(Vrae_SubStream::Controller(8), Ticks(0), Ticks(1000));
  EXPECT_EQ(Contents(), kAll);
}

TEST_F(Vrad_Chunk_EraseSubStream, RemovesAStreamThatWasEmptyBefore) {
  mChunk->IsEventInChunk(ControllerAt(Ticks(30), 9, 90));
  mChunk->EraseSubStream(Vrae_SubStream::Controller(9), Ticks(0), Ticks(0));
  EXPECT_EQ(Contents(), kAll);
}

TEST_F(Vrad_Chunk_EraseSubStream, DropsTheCachedList) {
  mChunk->StoreSortedEventList(new Vrad_DisplayItemList);
  mChunk->EraseSubStream(Vrae_SubStream::Controller(8), Ticks(0), Ticks(0));
  EXPECT_EQ(mChunk->GetSortedEventList(), nullptr);
}

TEST_F(Vrad_Chunk_EraseSubStream, NullThrowsAndLeavesAll) {
  Vrad_DisplayItemList * const listP = new Vrad_DisplayItemList;
  mChunk->StoreSortedEventList(listP);
  Cmn_AssertRecorder const recorder;
  EXPECT_THROW(mChunk->EraseSubStream(Vrae_SubStream(), Ticks(0), Ticks(1000)),
               Cmn_AssertException);
  EXPECT_EQ(recorder.GetNum("0"), 1);
  EXPECT_EQ(Contents(), kAll);
  EXPECT_EQ(mChunk->GetSortedEventList(), listP);
}

TEST_F(Vrad_Chunk_EraseSubStream, NullWithThrowingOffErasesFromTheLowestStream) {
  Cmn_AssertRecorder const recorder;
  ThrowingOff const off;
  mChunk->EraseSubStream(Vrae_SubStream(), Ticks(0), Ticks(1000));
  EXPECT_EQ(Contents(), "notes n60@10t+480t n60@110t+480t / stream 7 c7=90@30t c7=90@130t"
                        " / misc x3@40t x3@140t");
}

TEST(Vrad_Chunk_BulkEdits, WithoutANoteListServeTheOtherStores) {
  ChunkPtr const chunk = MakeChunk(), source = MakeChunk();
  Fill(*source.Get());
  chunk->SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase>());
  chunk->AddEventsFromChunk(source.Get(), Ticks(0), Ticks(100), Time_TickLength(0), kNudgeTimes);
  EXPECT_EQ(chunk->GetEventStream()->Size(), 1U);
  source->SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase>());
  source->AddEventsFromChunk(chunk.Get(), Ticks(0), Ticks(100), Time_TickLength(7), kNudgeTimes);
  EXPECT_EQ(source->GetEventStream()->Size(), 3U);
  chunk->EraseEventsFromChunk(source.Get(), Ticks(0), Ticks(100), Time_TickLength(0));
  EXPECT_EQ(chunk->GetEventStream()->Size(), 0U);
  source->EraseRange(Ticks(0), Ticks(1000));
  EXPECT_EQ(source->GetEventStream()->Size(), 0U);
}
