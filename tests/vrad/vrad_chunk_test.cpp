#include "vrad/vrad_chunk.h"

#include <algorithm>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "cmn/cmn_assert.h"
#include "foundation/ticktimesmatter.h"
#include "support/chunk_samples.h"
#include "support/event_samples.h"
#include "support/throwing_off.h"

namespace {

char const * const kNoNoteText = "!\"non-extended note event cannot be in a chunk\"";
char const * const kNoEventText = "!\"event type cannot be in a chunk\"";

struct TickTimesOn {
  TickTimesOn() { TickTimesMatter::SetActive(true); }
  ~TickTimesOn() { TickTimesMatter::SetActive(false); }
};

Vrad_ExtendedEvent FractionalNoteAt(Time_Typed iTime) {
  Vrae_PitchToMIDINoteWithDuration const note(60, Time_TypedLength(480, Time_eType_Ticks), 100, 64,
                                              0.25f);
  return Vrad_NoteWithDurationExtendedEvent(iTime, note.AsNoteWithDuration(), false);
}

// Stores a cached list, to see whether an operation drops it.
void StoreCache(Vrad_Chunk & ioChunk) {
  ioChunk.StoreSortedEventList(new Vrad_DisplayItemList);
}

// Shows which stores snap while tick times matter.
std::string AfterShiftBy400(Vrad_Chunk & ioChunk) {
  Time_TypedLength const length(400, Time_eType_Ticks);
  for (auto const & streamP : ioChunk.GetContinuousList())
    streamP->OffsetTimes(length);
  ioChunk.GetEventStream()->OffsetTimes(length);
  return PrintContents(ioChunk);
}

std::string Indices(Vrad_Chunk const & iChunk) {
  std::string text;
  for (auto const & streamP : iChunk.GetContinuousList())
    text += std::to_string(streamP->GetSubStream().GetIndex()) + " ";
  return text;
}

}  // namespace

TEST(ENoteOffInclusion, HasFixedNumbers) {
  EXPECT_EQ(kNoteOffInclusion_None, 0);
  EXPECT_EQ(kNoteOffInclusion_Earliest, 1);
  EXPECT_EQ(kNoteOffInclusion_Last, 2);
}

TEST(EMidiNudgeMode, HasFixedNumbers) {
  EXPECT_EQ(kNudgeTimes, 0);
  EXPECT_EQ(kNudgeStarts, 1);
  EXPECT_EQ(kNudgeDurations, 2);
  EXPECT_EQ(kNudgePitches, 3);
}

TEST(Vrad_Chunk_New, IsEmptyAndLocal) {
  ChunkPtr const chunk = MakeChunk();
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes / misc");
  EXPECT_TRUE(chunk->IsLocal());
  EXPECT_EQ(chunk->GetSortedEventList(), nullptr);
}

TEST(Vrad_Chunk_New, HasAFreshIdentity) {
  ChunkPtr const a = MakeChunk(), b = MakeChunk();
  EXPECT_NE(a->GetUID(), Sys_Umid::NoID());
  EXPECT_NE(a->GetUID(), b->GetUID());
}

TEST(Vrad_Chunk_New, HasANoteListWithItsLongNoteList) {
  ChunkPtr const chunk = MakeChunk();
  EXPECT_NE(dynamic_cast<Vrad_NoteList *>(chunk->GetNoteList()), nullptr);
  EXPECT_NE(chunk->GetNoteList()->GetLongNoteList(), nullptr);
}

TEST(Vrad_Chunk_New, HandsBothArgumentsOn) {
  ChunkPtr const plain = MakeChunk(Ndo_Object::kNotUndoable, false);
  EXPECT_FALSE(plain->NdoIsUndoable());
  EXPECT_FALSE(plain->QuantizeContents());
  EXPECT_FALSE(plain->GetNoteList()->NdoIsUndoable());
  EXPECT_FALSE(plain->GetEventStream()->NdoIsUndoable());
  ChunkPtr const undoable = MakeChunk(Ndo_Object::kUndoable, true);
  EXPECT_TRUE(undoable->NdoIsUndoable());
  EXPECT_TRUE(undoable->QuantizeContents());
  EXPECT_TRUE(undoable->GetNoteList()->NdoIsUndoable());
  EXPECT_TRUE(undoable->GetEventStream()->NdoIsUndoable());
}

TEST(Vrad_Chunk, CannotBeCopied) {
  EXPECT_FALSE(std::is_copy_constructible_v<Vrad_Chunk>);
  EXPECT_FALSE(std::is_copy_assignable_v<Vrad_Chunk>);
}

TEST(Vrad_Chunk, GivesItsStoresForReadingToo) {
  ChunkPtr const chunk = MakeChunk();
  Vrad_Chunk const & reading = *chunk.Get();
  EXPECT_EQ(reading.GetNoteList(), chunk->GetNoteList());
  EXPECT_EQ(reading.GetEventStream(), chunk->GetEventStream());
  EXPECT_EQ(&reading.GetContinuousList(), &chunk->GetContinuousList());
}

TEST(Vrad_Chunk_AddEvent, RoutesEachKindToItsStore) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(10), 60));
  chunk->AddEvent(FractionalNoteAt(Ticks(20)));
  chunk->AddEvent(BendAt(Ticks(30), 5));
  chunk->AddEvent(ControllerAt(Ticks(40), 7, 90));
  chunk->AddEvent(SysexAt(Ticks(50), 5));
  EXPECT_EQ(PrintContents(*chunk.Get()),
            "notes n60@10t+480t f60@20t+480t / stream 0 b5@30t / stream 7 c7=90@40t / misc x5@50t");
}

TEST(Vrad_Chunk_AddEvent, EverySubStreamKindHasAStream) {
  ChunkPtr const chunk = MakeChunk();
  for (int kind = Vrae_Event::kPitchBend; kind <= Vrae_Event::kPolyPressure; ++kind)
    chunk->AddEvent(Vrad_ExtendedEvent(Ticks(0), MakeSampleEvent(kind)));
  EXPECT_EQ(Indices(*chunk.Get()), "0 7 120 121 183 ");
}

TEST(Vrad_Chunk_AddEvent, TakesLongSysex) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(Vrad_ExtendedEvent(Ticks(0), MakeSampleEvent(Vrae_Event::kLongSysex)));
  EXPECT_EQ(chunk->GetEventStream()->Size(), 1u);
}

TEST(Vrad_Chunk_AddEvent, ANewStreamTakesItsSortedPlace) {
  ChunkPtr const chunk = MakeChunk();
  for (int const number : {64, 7, 119, 1, 10})
    chunk->AddEvent(ControllerAt(Ticks(0), number, 1));
  chunk->AddEvent(BendAt(Ticks(0), 1));
  EXPECT_EQ(Indices(*chunk.Get()), "0 1 7 10 64 119 ");
}

TEST(Vrad_Chunk_AddEvent, OneStreamServesAllEventsOfItsSubStream) {
  ChunkPtr const chunk = MakeChunk();
  for (int i = 0; i < 5; ++i)
    chunk->AddEvent(ControllerAt(Ticks(10 * i), 7, i));
  EXPECT_EQ(Indices(*chunk.Get()), "7 ");
}

TEST(Vrad_Chunk_AddEvent, StreamsAreUndoableAsTheChunkIs) {
  for (auto const flag : {Ndo_Object::kNotUndoable, Ndo_Object::kUndoable}) {
    ChunkPtr const chunk = MakeChunk(flag);
    chunk->AddEvent(ControllerAt(Ticks(0), 7, 1));
    EXPECT_EQ(chunk->GetContinuousList()[0]->NdoIsUndoable(), flag == Ndo_Object::kUndoable);
  }
}

TEST(Vrad_Chunk_AddEvent, ANoteWithoutItsExtrasIsReportedAndNotStored) {
  Cmn_AssertRecorder const recorder;
  ChunkPtr const chunk = MakeChunk();
  StoreCache(*chunk.Get());
  chunk->AddEvent(Vrad_ExtendedEvent(
      Ticks(0), Vrae_NoteWithDurationEvent(60, Time_TypedLength(1, Time_eType_Ticks), 1, 1)));
  ASSERT_EQ(recorder.GetNum(), 1);
  EXPECT_EQ(recorder.GetNum(kNoNoteText), 1);
  EXPECT_TRUE(recorder.GetEntries()[0].mFlag);
  EXPECT_FALSE(recorder.GetEntries()[0].mThrowing);
  EXPECT_EQ(recorder.GetEntries()[0].mPath, "vrad/vrad_chunk.cpp");
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes / misc");
  EXPECT_EQ(chunk->GetSortedEventList(), nullptr);
}

TEST(Vrad_Chunk_AddEvent, OtherKindsAreReportedAndNotStored) {
  ChunkPtr const chunk = MakeChunk();
  for (int const kind : {0, 1, 2, 9, 10, 11, 12, 13, 16, 17, 18, 19, 20, 21, 23, 24, -1}) {
    Cmn_AssertRecorder const recorder;
    StoreCache(*chunk.Get());
    chunk->AddEvent(Vrad_ExtendedEvent(Ticks(0), MakeBlankEvent(kind)));
    EXPECT_EQ(recorder.GetNum(), 1) << kind;
    EXPECT_EQ(recorder.GetNum(kNoEventText), 1) << kind;
    EXPECT_EQ(chunk->GetSortedEventList(), nullptr) << kind;
  }
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes / misc");
}

TEST(Vrad_Chunk_AddEvent, AControllerWithoutSubStreamIsPassedOver) {
  Cmn_AssertRecorder const recorder;
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(ControllerAt(Ticks(0), 0, 1));
  EXPECT_EQ(Indices(*chunk.Get()), "");
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST(Vrad_Chunk_AddEvent, DropsTheCache) {
  ChunkPtr const chunk = MakeChunk();
  StoreCache(*chunk.Get());
  chunk->AddEvent(NoteAt(Ticks(0), 60));
  EXPECT_EQ(chunk->GetSortedEventList(), nullptr);
}

TEST(Vrad_Chunk_AddEvent, AQuantizingChunkSnapsTicksAndNotTheCallersEvent) {
  TickTimesOn const on;
  ChunkPtr const chunk = MakeChunk(Ndo_Object::kNotUndoable, true);
  Vrad_NoteWithDurationExtendedEvent const note = NoteAt(Ticks(1499), 60);
  chunk->AddEvent(note);
  chunk->AddEvent(ControllerAt(Ticks(1500), 7, 1));
  chunk->AddEvent(SysexAt(Ticks(501), 5));
  EXPECT_EQ(PrintContents(*chunk.Get()),
            "notes n60@1000t+480t / stream 7 c7=1@2000t / misc x5@1000t");
  EXPECT_EQ(Print(note), "n60@1499t+480t");
}

TEST(Vrad_Chunk_AddEvent, ASampleTimeIsNeverSnapped) {
  TickTimesOn const on;
  ChunkPtr const chunk = MakeChunk(Ndo_Object::kNotUndoable, true);
  chunk->AddEvent(NoteAt(Samples(1499), 60));
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes n60@1499s+480s / misc");
}

TEST(Vrad_Chunk_AddEvent, NothingIsSnappedWhileTickTimesDoNotMatter) {
  ChunkPtr const chunk = MakeChunk(Ndo_Object::kNotUndoable, true);
  chunk->AddEvent(NoteAt(Ticks(1499), 60));
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes n60@1499t+480t / misc");
}

TEST(Vrad_Chunk_AddEvent, AChunkThatDoesNotQuantizeSnapsNothing) {
  TickTimesOn const on;
  ChunkPtr const chunk = MakeChunk(Ndo_Object::kNotUndoable, false);
  chunk->AddEvent(NoteAt(Ticks(1499), 60));
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes n60@1499t+480t / misc");
}

TEST(Vrad_Chunk_AddEvent, ASnappedSysexLosesItsStampAnUnsnappedOneKeepsIt) {
  TickTimesOn const on;
  ChunkPtr const chunk = MakeChunk(Ndo_Object::kNotUndoable, true);
  for (long long const tick : {1000, 2001}) {
    Vrad_ExtendedEvent event = SysexAt(Ticks(tick), 5);
    event.mSourceStamp.mStampFlag = 7;
    chunk->AddEvent(event);
  }
  Vrad_EventStreamTimedEventsInRangeIter iter(chunk->GetEventStream());
  EXPECT_EQ((*iter).mSourceStamp.mStampFlag, 7);
  ++iter;
  EXPECT_EQ((*iter).mSourceStamp.mStampFlag, 0);
}

TEST(Vrad_Chunk_AddEvent, StreamsSnapAsTheChunkQuantizes) {
  TickTimesOn const on;
  for (bool const quantizes : {false, true}) {
    ChunkPtr const chunk = MakeChunk(Ndo_Object::kNotUndoable, quantizes);
    chunk->AddEvent(ControllerAt(Ticks(1000), 7, 1));
    chunk->AddEvent(SysexAt(Ticks(1000), 5));
    EXPECT_EQ(AfterShiftBy400(*chunk.Get()), quantizes
                                                 ? "notes / stream 7 c7=1@1000t / misc x5@1000t"
                                                 : "notes / stream 7 c7=1@1400t / misc x5@1400t");
  }
}

TEST(Vrad_Chunk_EraseEvent, DoesNotSnap) {
  TickTimesOn const on;
  ChunkPtr const chunk = MakeChunk(Ndo_Object::kNotUndoable, true);
  Vrad_ExtendedEvent const events[] = {NoteAt(Ticks(1400), 60), ControllerAt(Ticks(1400), 7, 1),
                                       SysexAt(Ticks(1400), 5)};
  for (Vrad_ExtendedEvent const & event : events)
    chunk->AddEvent(event);
  for (Vrad_ExtendedEvent const & event : events)
    chunk->EraseEvent(event);
  EXPECT_EQ(PrintContents(*chunk.Get()),
            "notes n60@1000t+480t / stream 7 c7=1@1000t / misc x5@1000t");
}

TEST(Vrad_Chunk_EraseEvent, RemovesANote) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(10), 60));
  chunk->AddEvent(NoteAt(Ticks(10), 61));
  StoreCache(*chunk.Get());
  chunk->EraseEvent(NoteAt(Ticks(10), 60));
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes n61@10t+480t / misc");
  EXPECT_EQ(chunk->GetSortedEventList(), nullptr);
}

TEST(Vrad_Chunk_EraseEvent, KindTwentyTwoReachesNoNoteStore) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(FractionalNoteAt(Ticks(10)));
  chunk->AddEvent(NoteAt(Ticks(10), 60));
  StoreCache(*chunk.Get());
  chunk->EraseEvent(FractionalNoteAt(Ticks(10)));
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes f60@10t+480t n60@10t+480t / misc");
  EXPECT_EQ(chunk->GetSortedEventList(), nullptr);
}

TEST(Vrad_Chunk_EraseEvent, RemovesASysex) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(SysexAt(Ticks(10), 5));
  chunk->AddEvent(SysexAt(Ticks(10), 6));
  chunk->EraseEvent(SysexAt(Ticks(10), 5));
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes / misc x6@10t");
}

TEST(Vrad_Chunk_EraseEvent, FindsALongSysexByItsPayload) {
  ChunkPtr const chunk = MakeChunk();
  Vrad_ExtendedEvent const event(Ticks(0), MakeSampleEvent(Vrae_Event::kLongSysex));
  chunk->AddEvent(event);
  chunk->EraseEvent(Vrad_ExtendedEvent(Ticks(0), MakeSampleEvent(Vrae_Event::kLongSysex)));
  EXPECT_EQ(chunk->GetEventStream()->Size(), 1u);
  chunk->EraseEvent(event);
  EXPECT_EQ(chunk->GetEventStream()->Size(), 0u);
}

TEST(Vrad_Chunk_EraseEvent, TheLastEventOfAStreamTakesItAlong) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(ControllerAt(Ticks(0), 7, 1));
  chunk->AddEvent(ControllerAt(Ticks(10), 7, 2));
  chunk->AddEvent(ControllerAt(Ticks(0), 10, 1));
  chunk->EraseEvent(ControllerAt(Ticks(0), 7, 1));
  EXPECT_EQ(Indices(*chunk.Get()), "7 10 ");
  chunk->EraseEvent(ControllerAt(Ticks(10), 7, 99));  // whatever its value
  EXPECT_EQ(Indices(*chunk.Get()), "10 ");
}

TEST(Vrad_Chunk_EraseEvent, OfAMissingStreamDoesNothing) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(ControllerAt(Ticks(0), 7, 1));
  StoreCache(*chunk.Get());
  chunk->EraseEvent(ControllerAt(Ticks(0), 6, 1));
  chunk->EraseEvent(ControllerAt(Ticks(0), 8, 1));
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes / stream 7 c7=1@0t / misc");
  EXPECT_EQ(chunk->GetSortedEventList(), nullptr);
}

TEST(Vrad_Chunk_EraseEvent, AKindWithoutStoreDoesNothing) {
  Cmn_AssertRecorder const recorder;
  ChunkPtr const chunk = MakeChunk();
  StoreCache(*chunk.Get());
  chunk->EraseEvent(Vrae_TimedEvent(Ticks(0), MakeBlankEvent(Vrae_Event::kStart)));
  EXPECT_EQ(recorder.GetNum(), 0);
  EXPECT_EQ(chunk->GetSortedEventList(), nullptr);
}

TEST(Vrad_Chunk_Clear, EmptiesAllStoresAndKeepsTheIdentity) {
  ChunkPtr const chunk = MakeChunk();
  Sys_Umid const id = chunk->GetUID();
  chunk->SetIsLocal(false);
  chunk->AddEvent(NoteAt(Ticks(0), 60));
  for (int number = 1; number < 6; ++number)
    chunk->AddEvent(ControllerAt(Ticks(0), number, 1));
  chunk->AddEvent(SysexAt(Ticks(0), 5));
  StoreCache(*chunk.Get());
  chunk->Clear();
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes / misc");
  EXPECT_EQ(chunk->GetUID(), id);
  EXPECT_FALSE(chunk->IsLocal());
  EXPECT_EQ(chunk->GetSortedEventList(), nullptr);
}

TEST(Vrad_Chunk_Clear, RemovesAStreamThatWasEmptyBefore) {
  ChunkPtr const chunk = MakeChunk();
  EXPECT_FALSE(chunk->IsEventInChunk(ControllerAt(Ticks(0), 7, 1)));
  EXPECT_EQ(Indices(*chunk.Get()), "7 ");
  chunk->Clear();
  EXPECT_EQ(Indices(*chunk.Get()), "");
}

TEST(Vrad_Chunk_ReplaceData, TakesTheContentsAndNotTheIdentity) {
  ChunkPtr const source = MakeChunk(), chunk = MakeChunk();
  source->AddEvent(NoteAt(Ticks(0), 60));
  source->AddEvent(ControllerAt(Ticks(5), 10, 3));
  source->AddEvent(BendAt(Ticks(6), 4));
  source->AddEvent(SysexAt(Ticks(7), 5));
  source->SetIsLocal(false);
  Sys_Umid const id = chunk->GetUID();
  chunk->AddEvent(NoteAt(Ticks(9), 1));
  chunk->AddEvent(ControllerAt(Ticks(9), 7, 1));
  StoreCache(*chunk.Get());
  chunk->ReplaceData(source.Get());
  EXPECT_EQ(PrintContents(*chunk.Get()),
            "notes n60@0t+480t / stream 0 b4@6t / stream 10 c10=3@5t / misc x5@7t");
  EXPECT_EQ(PrintContents(*source.Get()), PrintContents(*chunk.Get()));
  EXPECT_EQ(chunk->GetUID(), id);
  EXPECT_TRUE(chunk->IsLocal());
  EXPECT_EQ(chunk->GetSortedEventList(), nullptr);
}

TEST(Vrad_Chunk_ReplaceData, GivesStreamsOfItsOwn) {
  ChunkPtr const source = MakeChunk(Ndo_Object::kNotUndoable);
  ChunkPtr const chunk = MakeChunk(Ndo_Object::kUndoable);
  source->AddEvent(ControllerAt(Ticks(5), 10, 3));
  chunk->ReplaceData(source.Get());
  EXPECT_NE(chunk->GetContinuousList()[0].Get(), source->GetContinuousList()[0].Get());
  EXPECT_TRUE(chunk->GetContinuousList()[0]->NdoIsUndoable());
  source->Clear();
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes / stream 10 c10=3@5t / misc");
}

TEST(Vrad_Chunk_ReplaceData, StreamsSnapAsTheSourcesDoTheSysexAsBefore) {
  TickTimesOn const on;
  ChunkPtr const snapping = MakeChunk(Ndo_Object::kNotUndoable, true), plain = MakeChunk();
  for (Vrad_Chunk * const chunkP : {snapping.Get(), plain.Get()}) {
    chunkP->AddEvent(ControllerAt(Ticks(1000), 7, 1));
    chunkP->AddEvent(SysexAt(Ticks(1000), 5));
  }
  ChunkPtr const target = MakeChunk(), snappingTarget = MakeChunk(Ndo_Object::kNotUndoable, true);
  target->ReplaceData(snapping.Get());
  snappingTarget->ReplaceData(plain.Get());
  EXPECT_EQ(AfterShiftBy400(*target.Get()), "notes / stream 7 c7=1@1000t / misc x5@1400t");
  EXPECT_EQ(AfterShiftBy400(*snappingTarget.Get()), "notes / stream 7 c7=1@1400t / misc x5@1000t");
}

TEST(Vrad_Chunk_ReplaceData, WithItselfLosesItsStreams) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(0), 60));
  chunk->AddEvent(ControllerAt(Ticks(5), 10, 3));
  chunk->AddEvent(SysexAt(Ticks(7), 5));
  chunk->ReplaceData(chunk.Get());
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes n60@0t+480t / misc x5@7t");
}

TEST(Vrad_Chunk_ReplaceData, AMissingNoteListIsReportedAndPassedOver) {
  ChunkPtr const source = MakeChunk(), chunk = MakeChunk();
  source->AddEvent(NoteAt(Ticks(0), 60));
  source->AddEvent(SysexAt(Ticks(7), 5));
  chunk->SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase>());
  Cmn_AssertRecorder const recorder;
  chunk->ReplaceData(source.Get());
  EXPECT_EQ(recorder.GetNum(), 1);
  EXPECT_EQ(recorder.GetNum("mNoteListP"), 1);
  EXPECT_EQ(chunk->GetEventStream()->Size(), 1u);
  source->ReplaceData(chunk.Get());
  EXPECT_EQ(recorder.GetNum("iSrcP->mNoteListP.Get()"), 1);
  EXPECT_EQ(source->GetNoteList()->Size(), 1u);
}

TEST(Vrad_Chunk_IsEventInChunk, FindsANote) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(10), 60));
  EXPECT_TRUE(chunk->IsEventInChunk(NoteAt(Ticks(10), 60)));
  EXPECT_FALSE(chunk->IsEventInChunk(NoteAt(Ticks(11), 60)));
  EXPECT_FALSE(chunk->IsEventInChunk(NoteAt(Ticks(10), 61)));
}

TEST(Vrad_Chunk_IsEventInChunk, FindsASysexByEqualityAlone) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(SysexAt(Ticks(10), 5));
  chunk->AddEvent(SysexAt(Ticks(10), 6));
  chunk->AddEvent(SysexAt(Ticks(11), 7));
  EXPECT_TRUE(chunk->IsEventInChunk(SysexAt(Ticks(10), 5)));
  EXPECT_TRUE(chunk->IsEventInChunk(SysexAt(Ticks(10), 6)));
  EXPECT_FALSE(chunk->IsEventInChunk(SysexAt(Ticks(10), 7)));  // within a unit, at another time
  EXPECT_FALSE(chunk->IsEventInChunk(SysexAt(Ticks(12), 7)));
}

TEST(Vrad_Chunk_IsEventInChunk, FindsAContinuousValueByEquality) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(ControllerAt(Samples(10), 7, 5));
  EXPECT_TRUE(chunk->IsEventInChunk(ControllerAt(Samples(10), 7, 5)));
  EXPECT_FALSE(chunk->IsEventInChunk(ControllerAt(Samples(10), 7, 6)));
  EXPECT_FALSE(chunk->IsEventInChunk(ControllerAt(Samples(11), 7, 5)));
}

TEST(Vrad_Chunk_IsEventInChunk, ATimeInSamplesFindsWhatStandsWithinTheSample) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(ControllerAt(Ticks(439), 7, 5));  // sample 10 begins at tick 400
  chunk->AddEvent(SysexAt(Ticks(401), 6));
  EXPECT_TRUE(chunk->IsEventInChunk(ControllerAt(Samples(10), 7, 5)));
  EXPECT_FALSE(chunk->IsEventInChunk(ControllerAt(Ticks(400), 7, 5)));
  EXPECT_TRUE(chunk->IsEventInChunk(SysexAt(Samples(10), 6)));
  EXPECT_FALSE(chunk->IsEventInChunk(SysexAt(Samples(11), 6)));
}

TEST(Vrad_Chunk_IsEventInChunk, DoesNotSnap) {
  TickTimesOn const on;
  ChunkPtr const chunk = MakeChunk(Ndo_Object::kNotUndoable, true);
  for (Vrad_ExtendedEvent const & event : {Vrad_ExtendedEvent(ControllerAt(Ticks(1400), 7, 1)),
                                           Vrad_ExtendedEvent(SysexAt(Ticks(1400), 5))}) {
    chunk->AddEvent(event);
    EXPECT_FALSE(chunk->IsEventInChunk(event));
  }
}

TEST(Vrad_Chunk_IsEventInChunk, LeavesANewEmptyStreamWhereNoneWas) {
  ChunkPtr const chunk = MakeChunk();
  StoreCache(*chunk.Get());
  EXPECT_FALSE(chunk->IsEventInChunk(ControllerAt(Ticks(10), 7, 5)));
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes / stream 7 / misc");
  EXPECT_NE(chunk->GetSortedEventList(), nullptr);
}

TEST(Vrad_Chunk_IsEventInChunk, AKindWithoutStoreIsNeverThere) {
  ChunkPtr const chunk = MakeChunk();
  for (int const kind : {0, 1, 2, 9, 13, 16, 21, 23})
    EXPECT_FALSE(chunk->IsEventInChunk(Vrae_TimedEvent(Ticks(0), MakeBlankEvent(kind))));
  EXPECT_EQ(Indices(*chunk.Get()), "");
}

TEST(Vrad_Chunk_SetNoteList, ExchangesTheNotes) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(0), 60));
  StoreCache(*chunk.Get());
  Vrad_NoteListBase * const listP = new Vrad_NoteList(Ndo_Object::kNotUndoable, false);
  listP->AddNote(NoteAt(Ticks(5), 61));
  chunk->SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase>(listP));
  EXPECT_EQ(chunk->GetNoteList(), listP);
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes n61@5t+480t / misc");
  EXPECT_EQ(chunk->GetSortedEventList(), nullptr);
}

TEST(Vrad_Chunk_SetNoteList, RefusesAListThatDiffersInBeingUndoable) {
  char const * const text = "this->NdoIsUndoable() == iNoteListP->NdoIsUndoable()";
  Cmn_AssertRecorder const recorder;
  ChunkPtr const chunk = MakeChunk();
  Vrad_NoteListBase * const formerP = chunk->GetNoteList();
  StoreCache(*chunk.Get());
  Vrad_NoteListBase * const listP = new Vrad_NoteList(Ndo_Object::kUndoable, false);
  long long const id = listP->NdoGetID();
  EXPECT_THROW(chunk->SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase>(listP)), Cmn_AssertException);
  EXPECT_EQ(recorder.GetNum(text), 1);
  EXPECT_FALSE(recorder.GetEntries()[0].mFlag);
  EXPECT_TRUE(recorder.GetEntries()[0].mThrowing);
  EXPECT_EQ(chunk->GetNoteList(), formerP);
  EXPECT_NE(chunk->GetSortedEventList(), nullptr);
  EXPECT_TRUE(Ndo_gManager.IsKept(id));
  Ndo_gManager.DropUnreferenced();
}

TEST(Vrad_Chunk_SetNoteList, WithThrowingOffExchangesAllTheSame) {
  ThrowingOff const off;
  Cmn_AssertRecorder const recorder;
  ChunkPtr const chunk = MakeChunk();
  Vrad_NoteListBase * const listP = new Vrad_NoteList(Ndo_Object::kUndoable, false);
  chunk->SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase>(listP));
  EXPECT_EQ(recorder.GetNum(), 1);
  EXPECT_EQ(chunk->GetNoteList(), listP);
}

TEST(Vrad_Chunk_SetNoteList, TakesNoneWithoutACheck) {
  Cmn_AssertRecorder const recorder;
  ChunkPtr const chunk = MakeChunk(Ndo_Object::kUndoable);
  chunk->SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase>());
  EXPECT_EQ(recorder.GetNum(), 0);
  EXPECT_EQ(chunk->GetNoteList(), nullptr);
}

TEST(Vrad_Chunk_FindMIDIControllersInUse, MarksTheControllersThatHaveAStream) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(ControllerAt(Ticks(0), 1, 1));
  chunk->AddEvent(ControllerAt(Ticks(0), 119, 1));
  chunk->AddEvent(BendAt(Ticks(0), 1));
  chunk->AddEvent(Vrad_ExtendedEvent(Ticks(0), Vrae_PolyPressureEvent(60, 1)));
  chunk->IsEventInChunk(ControllerAt(Ticks(0), 64, 1));  // an empty stream counts too
  bool used[128] = {};
  used[5] = true;
  chunk->FindMIDIControllersInUse(used);
  std::string marked;
  for (int i = 0; i < 128; ++i)
    if (used[i]) marked += std::to_string(i) + " ";
  EXPECT_EQ(marked, "1 5 64 119 ");
}

TEST(Vrad_Chunk_Equal, AChunkEqualsItself) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(0), 60));
  chunk->AddEvent(ControllerAt(Ticks(0), 7, 1));
  EXPECT_TRUE(*chunk.Get() == *chunk.Get());
}

TEST(Vrad_Chunk_Equal, TwoEmptyChunksAreEqual) {
  ChunkPtr const a = MakeChunk(), b = MakeChunk();
  EXPECT_TRUE(*a.Get() == *b.Get());
}

TEST(Vrad_Chunk_Equal, ChunksWithOneIdenticalStreamEachAreUnequal) {
  ChunkPtr const a = MakeChunk(), b = MakeChunk();
  a->AddEvent(ControllerAt(Ticks(0), 7, 1));
  b->AddEvent(ControllerAt(Ticks(0), 7, 1));
  EXPECT_FALSE(*a.Get() == *b.Get());
}

TEST(Vrad_Chunk_Equal, ComparesNotesAndSysex) {
  ChunkPtr const a = MakeChunk(), b = MakeChunk();
  a->AddEvent(NoteAt(Ticks(0), 60));
  EXPECT_FALSE(*a.Get() == *b.Get());
  b->AddEvent(NoteAt(Ticks(0), 60));
  EXPECT_TRUE(*a.Get() == *b.Get());
  a->AddEvent(SysexAt(Ticks(0), 5));
  EXPECT_FALSE(*a.Get() == *b.Get());
  b->AddEvent(SysexAt(Ticks(0), 5));
  EXPECT_TRUE(*a.Get() == *b.Get());
}

TEST(Vrad_Chunk_Equal, ADifferentNumberOfStreamsIsUnequal) {
  ChunkPtr const a = MakeChunk(), b = MakeChunk();
  a->AddEvent(ControllerAt(Ticks(0), 7, 1));
  EXPECT_FALSE(*a.Get() == *b.Get());
  EXPECT_FALSE(*b.Get() == *a.Get());
}

TEST(Vrad_Chunk_Equal, LooksAtNothingElse) {
  ChunkPtr const a = MakeChunk(), b = MakeChunk(Ndo_Object::kNotUndoable, true);
  b->SetIsLocal(false);
  EXPECT_TRUE(*a.Get() == *b.Get());
}

TEST(Vrad_Chunk_StoreSortedEventList, HandsOutWhatWasStored) {
  ChunkPtr const chunk = MakeChunk();
  Vrad_DisplayItemList * const listP = new Vrad_DisplayItemList;
  chunk->StoreSortedEventList(listP);
  EXPECT_EQ(chunk->GetSortedEventList(), listP);
}

TEST(Vrad_Chunk_StoreSortedEventList, LeavesAFormerListToTheHost) {
  ChunkPtr const chunk = MakeChunk();
  Vrad_DisplayItemList former;
  chunk->StoreSortedEventList(&former);
  chunk->StoreSortedEventList(new Vrad_DisplayItemList);
  EXPECT_NE(chunk->GetSortedEventList(), &former);
}

TEST(Vrad_Chunk_SetUID, TakesTheIdentity) {
  ChunkPtr const chunk = MakeChunk();
  StoreCache(*chunk.Get());
  chunk->SetUID(Sys_Umid::NoID());
  EXPECT_EQ(chunk->GetUID(), Sys_Umid::NoID());
  EXPECT_NE(chunk->GetSortedEventList(), nullptr);
}

TEST(Vrad_Chunk_SetIsLocal, KeepsTheFlag) {
  ChunkPtr const chunk = MakeChunk();
  StoreCache(*chunk.Get());
  chunk->SetIsLocal(false);
  EXPECT_FALSE(chunk->IsLocal());
  EXPECT_NE(chunk->GetSortedEventList(), nullptr);
}
