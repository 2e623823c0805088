// Clip boundaries, the move of notes that keeps them on their side of one, and the one-time shift.
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "cmn/cmn_assert.h"
#include "ndo/ndo_manager.h"
#include "support/chunk_samples.h"
#include "support/edit_scopes.h"
#include "support/tick_times_matter.h"
#include "support/undo_testobject.h"
#include "vrad/vrad_chunk.h"

namespace {

/// Where one note at a raw count goes.
long long Moved(std::vector<long long> const & iBoundaries, long long iTime, long long iLength) {
  ChunkPtr const chunk = MakeChunk();
  for (long long boundary : iBoundaries)
    chunk->AddClipBoundary(boundary);
  chunk->AddEvent(NoteAt(Ticks(iTime), 60));
  chunk->MoveNotesForLegacyPlayback(Time_TickLength(iLength));
  EXPECT_EQ(chunk->GetNoteList()->Size(), 1U);
  Time_Typed const time = chunk->GetNoteList()->TimeOfFirstNote();
  EXPECT_EQ(time.GetType(), Time_eType_Ticks);
  return time.AsInt64();
}

struct Row {
  long long mTime, mWithoutLength, mWith250;
};
void PrintTo(Row const & iRow, std::ostream * oStream) {
  *oStream << "tick " << iRow.mTime;
}

/// Boundaries 0 and 10000 on a grid of 1000.
class Vrad_Chunk_LegacyMoveBetweenFarBoundaries : public testing::TestWithParam<Row> {};

Row const kFarRows[] = {
    {-2500, -1, -1},       {-500, -1, -1},        {0, 0, 0},
    {250, 0, 0},           {999, 0, 0},           {1000, 1000, 1000},
    {1249, 1000, 1000},    {1999, 1000, 1000},    {2000, 2000, 1000},
    {2249, 2000, 1000},    {2250, 2000, 2000},    {5500, 5000, 5000},
    {7999, 7000, 7000},    {8000, 8000, 7000},    {8001, 8000, 7000},
    {8999, 8000, 7000},    {9000, 9000, 8000},    {9750, 9000, 8000},
    {9999, 9000, 8000},    {10000, 10000, 9000},  {10250, 10000, 9000},
    {10999, 10000, 9000},  {11000, 11000, 10000}, {11999, 11000, 10000},
    {12000, 12000, 11000}, {12250, 12000, 12000}, {15000, 15000, 14000},
};

struct NearRow {
  long long mTime, mMoved;
};
void PrintTo(NearRow const & iRow, std::ostream * oStream) {
  *oStream << "tick " << iRow.mTime;
}

/// Boundaries 0 and 2500, length 0: between them there is no free place.
class Vrad_Chunk_LegacyMoveBetweenNearBoundaries : public testing::TestWithParam<NearRow> {};

NearRow const kNearRows[] = {{999, 0},     {1000, 0},    {1499, 0},    {1500, 1000},
                             {1999, 1000}, {2000, 1000}, {2499, 1000}, {2500, 2000}};

class Vrad_Chunk_MoveNotesForLegacyPlayback : public testing::Test {
protected:
  Vrad_Chunk_MoveNotesForLegacyPlayback() : mChunk(MakeChunk()) {}
  std::string Contents() const { return PrintContents(*mChunk.Get()); }
  ChunkPtr mChunk;
};

typedef Vrad_Chunk_MoveNotesForLegacyPlayback Vrad_Chunk_AddClipBoundary;

/// A note, a controller and a sysex, each at tick 5300.
class Vrad_Chunk_QuantizeEventsForTTM : public UndoTest {
protected:
  Vrad_Chunk_QuantizeEventsForTTM() : mChunk(MakeChunk(Ndo_Object::kUndoable)) {
    mChunk->AddEvent(NoteAt(Ticks(5300), 60));
    mChunk->AddEvent(ControllerAt(Ticks(5300), 7, 90));
    mChunk->AddEvent(SysexAt(Ticks(5300), 3));
  }
  std::string Contents() const { return PrintContents(*mChunk.Get()); }
  ChunkPtr mChunk;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Rows, Vrad_Chunk_LegacyMoveBetweenFarBoundaries,
                         testing::ValuesIn(kFarRows));
INSTANTIATE_TEST_SUITE_P(Rows, Vrad_Chunk_LegacyMoveBetweenNearBoundaries,
                         testing::ValuesIn(kNearRows));

TEST_P(Vrad_Chunk_LegacyMoveBetweenFarBoundaries, WithoutALength) {
  EXPECT_EQ(Moved({0, 10000}, GetParam().mTime, 0), GetParam().mWithoutLength);
}

TEST_P(Vrad_Chunk_LegacyMoveBetweenFarBoundaries, WithAQuarterOfTheGrid) {
  EXPECT_EQ(Moved({0, 10000}, GetParam().mTime, 250), GetParam().mWith250);
}

TEST_P(Vrad_Chunk_LegacyMoveBetweenNearBoundaries, StaysBehindTheFirst) {
  EXPECT_EQ(Moved({0, 2500}, GetParam().mTime, 0), GetParam().mMoved);
}

TEST(Vrad_Chunk_LegacyMove, WithoutBoundariesEveryNoteIsFree) {
  EXPECT_EQ(Moved({}, 2250, 250), 2000);
  EXPECT_EQ(Moved({}, 2249, 250), 1000);
}

TEST(Vrad_Chunk_LegacyMove, BehindTheLastBoundaryThereIsNoNextOne) {
  EXPECT_EQ(Moved({0}, 5999, 0), 5000);
  EXPECT_EQ(Moved({0}, 1999, 300), 1000);
}

TEST(Vrad_Chunk_LegacyMove, BeforeTheFirstBoundaryThereIsNoFormerOne) {
  EXPECT_EQ(Moved({10000}, 7999, 0), 7000);
  EXPECT_EQ(Moved({10000}, 9999, 300), 8000);
}

TEST(Vrad_Chunk_LegacyMove, OfManyBoundariesTheNearestOnBothSidesCount) {
  EXPECT_EQ(Moved({0, 10000, 20000, 30000}, 19999, 250), 18000);
  EXPECT_EQ(Moved({0, 10000, 20000, 30000}, 20000, 250), 19000);
}

TEST(Vrad_Chunk_LegacyMove, AtABoundaryThatIsTheFormerOne) {
  EXPECT_EQ(Moved({999, 1000}, 1000, 0), 1000);
}

TEST(Vrad_Chunk_LegacyMove, BetweenBoundariesLessThanAStepApartStaysBehindTheFirst) {
  EXPECT_EQ(Moved({0, 500}, 250, 0), 0);
  EXPECT_EQ(Moved({5000, 5500}, 5250, 0), 5000);
}

TEST(Vrad_Chunk_LegacyMove, OfANegativeLengthMovesUpward) {
  EXPECT_EQ(Moved({0, 10000}, 5000, -1500), 6000);
  EXPECT_EQ(Moved({0, 10000}, 10000, -1500), 11000);
  EXPECT_EQ(Moved({0, 10000}, 9999, -1500), 10000);
}

TEST(Vrad_Chunk_LegacyMove, TruncatesTowardsZero) {
  EXPECT_EQ(Moved({-100000}, 400, 500), 0);
  EXPECT_EQ(Moved({-100000}, -600, 500), -1);
}

TEST(Vrad_Chunk_LegacyMove, TheLengthOfTheOtherUnitIsARawCount) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(5500), 60));
  chunk->MoveNotesForLegacyPlayback(Time_SampleLength(1000));
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes n60@4000t+480t / misc");
}

TEST(Vrad_Chunk_LegacyMove, AGridOfNoneOrOneLeavesNotesWhereTheLengthPutsThem) {
  for (unsigned long long grid : {0ULL, 1ULL}) {
    GridScope const scope(grid);
    EXPECT_EQ(Moved({0, 10000}, 5501, 250), 5251) << grid;
    EXPECT_EQ(Moved({0, 10000}, 10001, 250), 9751) << grid;
  }
}

TEST(Vrad_Chunk_LegacyMove, AGridTooLargeCountsAsOne) {
  GridScope const scope((1ULL << 62) + 1);
  EXPECT_EQ(Moved({0}, 5501, 250), 5251);
}

TEST(Vrad_Chunk_LegacyMove, TheLargestGridPutsNotesOnItsFewPoints) {
  GridScope const scope(1ULL << 62);
  EXPECT_EQ(Moved({}, 5501, 250), 0);
  EXPECT_EQ(Moved({0}, (1LL << 62) + 5, 0), 1LL << 62);
  EXPECT_EQ(Moved({0, 10}, 5, 0), 0);
}

TEST(Vrad_Chunk_LegacyMove, FarLimitsDoNotOverflow) {
  long long const max = Time_Saturating::kMax, min = Time_Saturating::kMin;
  EXPECT_EQ(Moved({min, max}, 5500, 0), 5000);
  EXPECT_EQ(Moved({min}, min + 5, 0), -1);
  EXPECT_EQ(Moved({max}, max - 5, 0), max / 1000 * 1000 - 1000);
  EXPECT_EQ(Moved({0}, 5500, max), -1);
  EXPECT_EQ(Moved({0}, 5500, min), max / 1000 * 1000);
}

TEST_F(Vrad_Chunk_MoveNotesForLegacyPlayback, KeepsEverythingElseOfANote) {
  Vrae_NoteWithDurationEvent const original(50, Time_TickLength(7), 1, 2);
  mChunk->AddEvent(Vrad_NoteWithDurationExtendedEvent(
      Ticks(5300), NoteAt(Ticks(0), 70, 99).mEvent.AsNoteWithDuration(), Time_SampleLength(9),
      original, true));
  mChunk->MoveNotesForLegacyPlayback(Time_TickLength(0));
  Vrad_NoteListBase_Note const note =
      *Vrad_NoteListBase::FullNotesInRangeIter(mChunk->GetNoteList());
  EXPECT_EQ(Print(Vrae_TimedEvent(note.mTime, note.mEvent)), "n70@5000t+99t");
  EXPECT_EQ(note.mQuantizeTimeDelta.AsInt64(), 9);
  EXPECT_EQ(note.mQuantizeTimeDelta.GetType(), Time_eType_Samples);
  EXPECT_EQ(note.mOrigEvent.GetPitch(), 50);
  EXPECT_TRUE(note.mMuted);
}

TEST_F(Vrad_Chunk_MoveNotesForLegacyPlayback, NotesInSamplesComeOutInTicks) {
  mChunk->AddEvent(NoteAt(Samples(5300), 60));
  mChunk->MoveNotesForLegacyPlayback(Time_TickLength(0));
  EXPECT_EQ(Contents(), "notes n60@5000t+480s / misc");
}

TEST_F(Vrad_Chunk_MoveNotesForLegacyPlayback, ANoteAtTheLastOfAllTimesIsMovedToo) {
  mChunk->AddEvent(NoteAt(Ticks(5300), 60));
  mChunk->AddEvent(NoteAt(Time_Typed::MaxTime(Time_eType_Ticks), 61));
  mChunk->MoveNotesForLegacyPlayback(Time_TickLength(0));
  EXPECT_EQ(Contents(), "notes n60@5000t+480t n61@9223372036854775000t+480t / misc");
}

TEST_F(Vrad_Chunk_MoveNotesForLegacyPlayback, TiesKeepTheirOrder) {
  for (int i = 0; i < 4; ++i)
    mChunk->AddEvent(NoteAt(Ticks(5000 + 10 * i), 63 - i));
  mChunk->MoveNotesForLegacyPlayback(Time_TickLength(0));
  EXPECT_EQ(Contents(), "notes n63@5000t+480t n62@5000t+480t n61@5000t+480t n60@5000t+480t / misc");
}

// A free note just before the origin goes to 0, a later one near a boundary to -1.
TEST_F(Vrad_Chunk_MoveNotesForLegacyPlayback, TruncationMayTurnTheOrderOfTwoNotes) {
  GridScope const scope(10);
  mChunk->AddClipBoundary(15);
  mChunk->AddEvent(NoteAt(Ticks(-5), 60));
  mChunk->AddEvent(NoteAt(Ticks(0), 61));
  mChunk->MoveNotesForLegacyPlayback(Time_TickLength(4));
  EXPECT_EQ(Contents(), "notes n61@-1t+480t n60@0t+480t / misc");
}

TEST_F(Vrad_Chunk_MoveNotesForLegacyPlayback, LeavesTheOtherStores) {
  mChunk->AddEvent(ControllerAt(Ticks(5300), 7, 90));
  mChunk->AddEvent(SysexAt(Ticks(5300), 3));
  mChunk->MoveNotesForLegacyPlayback(Time_TickLength(250));
  EXPECT_EQ(Contents(), "notes / stream 7 c7=90@5300t / misc x3@5300t");
}

TEST_F(Vrad_Chunk_MoveNotesForLegacyPlayback, RebuildsTheLongNotes) {
  mChunk->AddEvent(NoteAt(Ticks(5300), 60, 20000000));
  mChunk->MoveNotesForLegacyPlayback(Time_TickLength(0));
  EXPECT_EQ(mChunk->GetNoteList()->GetLongNoteList()->TimeOfFirstNote(), Ticks(5000));
}

TEST_F(Vrad_Chunk_MoveNotesForLegacyPlayback, DropsTheCachedList) {
  mChunk->StoreSortedEventList(new Vrad_DisplayItemList);
  mChunk->MoveNotesForLegacyPlayback(Time_TickLength(0));
  EXPECT_EQ(mChunk->GetSortedEventList(), nullptr);
}

TEST_F(Vrad_Chunk_MoveNotesForLegacyPlayback, MayBeRepeated) {
  mChunk->AddEvent(NoteAt(Ticks(5300), 60));
  mChunk->MoveNotesForLegacyPlayback(Time_TickLength(1000));
  mChunk->MoveNotesForLegacyPlayback(Time_TickLength(1000));
  EXPECT_EQ(Contents(), "notes n60@3000t+480t / misc");
}

TEST_F(Vrad_Chunk_MoveNotesForLegacyPlayback, WithoutANoteListDoesNothing) {
  mChunk->SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase>());
  mChunk->MoveNotesForLegacyPlayback(Time_TickLength(1000));
  EXPECT_EQ(mChunk->GetNoteList(), nullptr);
}

// Seen by a note that lies near both.
TEST_F(Vrad_Chunk_AddClipBoundary, OfAValueTwiceLeavesOne) {
  for (long long boundary : {10000, 0, 10000, 0})
    mChunk->AddClipBoundary(boundary);
  mChunk->AddEvent(NoteAt(Ticks(9999), 60));
  mChunk->AddEvent(NoteAt(Ticks(10000), 61));
  mChunk->MoveNotesForLegacyPlayback(Time_TickLength(250));
  EXPECT_EQ(Contents(), "notes n60@8000t+480t n61@9000t+480t / misc");
}

TEST_F(Vrad_Chunk_AddClipBoundary, KeepsTheCachedList) {
  Vrad_DisplayItemList * const listP = new Vrad_DisplayItemList;
  mChunk->StoreSortedEventList(listP);
  mChunk->AddClipBoundary(0);
  EXPECT_EQ(mChunk->GetSortedEventList(), listP);
}

TEST_F(Vrad_Chunk_AddClipBoundary, StaysWhenTheChunkIsCleared) {
  mChunk->AddClipBoundary(10000);
  mChunk->Clear();
  mChunk->AddEvent(NoteAt(Ticks(10250), 60));
  mChunk->MoveNotesForLegacyPlayback(Time_TickLength(250));
  EXPECT_EQ(Contents(), "notes n60@9000t+480t / misc");
}

TEST_F(Vrad_Chunk_AddClipBoundary, DoesNotComeWithAnotherChunksContents) {
  ChunkPtr const source = MakeChunk();
  source->AddClipBoundary(10000);
  source->AddEvent(NoteAt(Ticks(10250), 60));
  mChunk->ReplaceData(source.Get());
  mChunk->MoveNotesForLegacyPlayback(Time_TickLength(250));
  EXPECT_EQ(Contents(), "notes n60@10000t+480t / misc");
}

TEST_F(Vrad_Chunk_QuantizeEventsForTTM, WithoutBoundariesMovesEverythingUpByTheLength) {
  mChunk->QuantizeEventsForTTM(Time_TickLength(250));
  EXPECT_EQ(Contents(), "notes n60@5550t+480t / stream 7 c7=90@5550t / misc x3@5550t");
}

TEST_F(Vrad_Chunk_QuantizeEventsForTTM, WithABoundaryMovesNotesDownOntoTheGridAndTheRestUp) {
  mChunk->AddClipBoundary(0);
  mChunk->QuantizeEventsForTTM(Time_TickLength(250));
  EXPECT_EQ(Contents(), "notes n60@5000t+480t / stream 7 c7=90@5550t / misc x3@5550t");
}

TEST_F(Vrad_Chunk_QuantizeEventsForTTM, SnapsInAChunkThatQuantizesWhileTickTimesMatter) {
  TickTimesMatterScope const scope;
  ChunkPtr const chunk = MakeChunk(Ndo_Object::kNotUndoable, true);
  chunk->GetNoteList()->AddNote(NoteAt(Ticks(5300), 60));
  chunk->GetEventStream()->AddEvent(SysexAt(Ticks(5300), 3));
  chunk->QuantizeEventsForTTM(Time_TickLength(250));
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes n60@6000t+480t / misc x3@6000t");
}

TEST_F(Vrad_Chunk_QuantizeEventsForTTM, ASecondTimeChangesNothing) {
  mChunk->QuantizeEventsForTTM(Time_TickLength(250));
  Vrad_DisplayItemList * const listP = new Vrad_DisplayItemList;
  mChunk->StoreSortedEventList(listP);
  mChunk->AddClipBoundary(0);
  mChunk->QuantizeEventsForTTM(Time_TickLength(250));
  EXPECT_EQ(Contents(), "notes n60@5550t+480t / stream 7 c7=90@5550t / misc x3@5550t");
  EXPECT_EQ(mChunk->GetSortedEventList(), listP);
}

TEST_F(Vrad_Chunk_QuantizeEventsForTTM, OfAnEmptyChunkCountsAsRun) {
  ChunkPtr const chunk = MakeChunk();
  chunk->QuantizeEventsForTTM(Time_TickLength(250));
  chunk->AddEvent(NoteAt(Ticks(10), 60));
  chunk->QuantizeEventsForTTM(Time_TickLength(250));
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes n60@10t+480t / misc");
}

TEST_F(Vrad_Chunk_QuantizeEventsForTTM, RunsOnceInALifeWhateverIsClearedOrReplaced) {
  mChunk->QuantizeEventsForTTM(Time_TickLength(250));
  ChunkPtr const source = MakeChunk();
  source->AddEvent(NoteAt(Ticks(10), 60));
  mChunk->Clear();
  mChunk->ReplaceData(source.Get());
  mChunk->QuantizeEventsForTTM(Time_TickLength(250));
  EXPECT_EQ(Contents(), "notes n60@10t+480t / misc");
  source->QuantizeEventsForTTM(Time_TickLength(250));
  EXPECT_EQ(PrintContents(*source.Get()), "notes n60@260t+480t / misc");
}

TEST_F(Vrad_Chunk_QuantizeEventsForTTM, DropsTheCachedList) {
  mChunk->StoreSortedEventList(new Vrad_DisplayItemList);
  mChunk->QuantizeEventsForTTM(Time_TickLength(0));
  EXPECT_EQ(mChunk->GetSortedEventList(), nullptr);
}

TEST_F(Vrad_Chunk_QuantizeEventsForTTM, ReportsStreamsAndSysexInSamplesAndMovesThemAllTheSame) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(ControllerAt(Samples(10), 7, 90));
  chunk->AddEvent(SysexAt(Samples(10), 3));
  Cmn_AssertRecorder const recorder;
  chunk->QuantizeEventsForTTM(Time_SampleLength(5));
  EXPECT_EQ(recorder.GetNum("iter->mTime.GetType() == Time_eType_Ticks"), 2);
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes / stream 7 c7=90@15s / misc x3@15s");
}

TEST_F(Vrad_Chunk_QuantizeEventsForTTM, UndoRestoresTheNotesAlone) {
  Ndo_Transaction transaction;
  mChunk->QuantizeEventsForTTM(Time_TickLength(250));
  EXPECT_EQ(Ndo_gManager.GetNumAnnounced(), 2);  // the notes and the long notes
  EXPECT_FALSE(Ndo_gManager.HasAnnounced(mChunk->NdoGetID()));
  EXPECT_TRUE(transaction.End());
  EXPECT_TRUE(Ndo_gManager.Undo());
  EXPECT_EQ(Contents(), "notes n60@5300t+480t / stream 7 c7=90@5550t / misc x3@5550t");
  EXPECT_TRUE(Ndo_gManager.Redo());
  EXPECT_EQ(Contents(), "notes n60@5550t+480t / stream 7 c7=90@5550t / misc x3@5550t");
}

TEST_F(Vrad_Chunk_QuantizeEventsForTTM, UndoLeavesItRun) {
  {
    Ndo_Transaction transaction;
    mChunk->QuantizeEventsForTTM(Time_TickLength(250));
    transaction.End();
  }
  Ndo_gManager.Undo();
  mChunk->QuantizeEventsForTTM(Time_TickLength(250));
  EXPECT_EQ(Contents(), "notes n60@5300t+480t / stream 7 c7=90@5550t / misc x3@5550t");
}

TEST_F(Vrad_Chunk_QuantizeEventsForTTM, UndoOfTheMoveNearBoundariesRestoresTheNotes) {
  mChunk->AddClipBoundary(5000);
  {
    Ndo_Transaction transaction;
    mChunk->MoveNotesForLegacyPlayback(Time_TickLength(250));
    EXPECT_TRUE(transaction.End());
  }
  EXPECT_EQ(Contents(), "notes n60@4000t+480t / stream 7 c7=90@5300t / misc x3@5300t");
  EXPECT_TRUE(Ndo_gManager.Undo());
  EXPECT_EQ(Contents(), "notes n60@5300t+480t / stream 7 c7=90@5300t / misc x3@5300t");
}
