#include <string>

#include <gtest/gtest.h>

#include "cmn/cmn_assert.h"
#include "foundation/ticktimesmatter.h"
#include "foundation/time_convert.h"
#include "support/chunk_samples.h"

namespace {

typedef Vrad_ChunkExtendedEventsInRangeIter Iter;

Time_TypedLength const kNoOffset(0, Time_eType_Ticks);

Vrae_Filter All() {
  Vrae_Filter filter;
  return filter.SetAll();
}

std::string PrintRest(Iter iIter) {
  std::string text;
  for (; iIter.IsMore(); ++iIter)
    text += (text.empty() ? "" : " | ") + Print(*iIter);
  return text;
}

std::string PrintRange(ChunkPtr const & iChunk, long long iStart, long long iEnd,
                       Vrae_Filter const & iFilter = All()) {
  return PrintRest(Iter(iChunk.Get(), Ticks(iStart), Ticks(iEnd), kNoOffset, false, iFilter));
}

ChunkPtr MakeMixedChunk() {
  ChunkPtr chunk = MakeChunk();
  chunk->AddEvent(SysexAt(Ticks(40), 5));
  chunk->AddEvent(ControllerAt(Ticks(80), 7, 1));
  chunk->AddEvent(NoteAt(Ticks(120), 60));
  chunk->AddEvent(NoteAt(Ticks(80), 61));
  chunk->AddEvent(BendAt(Ticks(120), 9));
  return chunk;
}

}  // namespace

TEST(Vrad_ChunkExtendedEventsInRangeIter, MergesAllStoresInPlaybackOrder) {
  EXPECT_EQ(PrintRange(MakeMixedChunk(), 0, 1000),
            "x5@40t | c7=1@80t | n61@80t+480t | b9@120t | n60@120t+480t");
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, OfAnEmptyChunkHasNothing) {
  ChunkPtr const chunk = MakeChunk();
  EXPECT_FALSE(Iter(chunk.Get(), Ticks(0), Ticks(1000), kNoOffset, false, All()).IsMore());
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, ByDefaultHasNothing) {
  EXPECT_FALSE(Iter().IsMore());
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, WithoutAChunkHasNothing) {
  EXPECT_FALSE(Iter(nullptr, Ticks(0), Ticks(1000), kNoOffset, false, All()).IsMore());
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, TheRangeIsHalfOpen) {
  EXPECT_EQ(PrintRange(MakeMixedChunk(), 80, 120), "c7=1@80t | n61@80t+480t");
  EXPECT_EQ(PrintRange(MakeMixedChunk(), 80, 80), "");
  EXPECT_EQ(PrintRange(MakeMixedChunk(), 80, 40), "");
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, TheFilterLeavesOutStores) {
  ChunkPtr const chunk = MakeMixedChunk();
  EXPECT_EQ(PrintRange(chunk, 0, 1000, All().Set(Vrae_Filter::eDataType_Notes, false)),
            "x5@40t | c7=1@80t | b9@120t");
  EXPECT_EQ(PrintRange(chunk, 0, 1000, All().Set(Vrae_Filter::eDataType_Sysex, false)),
            "c7=1@80t | n61@80t+480t | b9@120t | n60@120t+480t");
  EXPECT_EQ(PrintRange(chunk, 0, 1000, All().Set(Vrae_Filter::eDataType_PitchBend, false)),
            "x5@40t | c7=1@80t | n61@80t+480t | n60@120t+480t");
  EXPECT_EQ(PrintRange(chunk, 0, 1000, Vrae_Filter()), "");
}

// A note plays after all else that a chunk stores, so one that ties is a record of another kind.
TEST(Vrad_ChunkExtendedEventsInRangeIter, OfATieTheNoteComesFirst) {
  Cmn_AssertRecorder const recorder;
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(ControllerAt(Ticks(0), 7, 1));
  Vrad_NoteListBase_Note note(Ticks(0), NoteAt(Ticks(0), 60).mEvent.AsNoteWithDuration());
  note.mEvent.mU.mBase.mType = Vrae_Event::kController;
  chunk->GetNoteList()->AddNote(note);
  EXPECT_EQ(PrintRange(chunk, 0, 1000), "c60=100@0t | c7=1@0t");
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, OfATieTheSysexComesLast) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(SysexAt(Ticks(0), 5));
  chunk->AddEvent(BendAt(Ticks(0), 1));
  EXPECT_EQ(PrintRange(chunk, 0, 1000), "b1@0t | x5@0t");
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, StreamsThatTieComeInListOrder) {
  ChunkPtr const chunk = MakeChunk();
  for (int const number : {30, 10, 20})
    chunk->AddEvent(ControllerAt(Ticks(0), number, 1));
  EXPECT_EQ(PrintRange(chunk, 0, 1000), "c10=1@0t | c20=1@0t | c30=1@0t");
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, AStoreThatGoesOnStandsBehindItsTies) {
  ChunkPtr const chunk = MakeChunk();
  for (int const number : {10, 20})
    chunk->AddEvent(ControllerAt(Ticks(40), number, 1));
  chunk->AddEvent(ControllerAt(Ticks(0), 10, 1));
  EXPECT_EQ(PrintRange(chunk, 0, 1000), "c10=1@0t | c20=1@40t | c10=1@40t");
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, GivesStoredTimesWhateverTheOffset) {
  ChunkPtr const chunk = MakeMixedChunk();
  Iter const iter(chunk.Get(), Ticks(0), Ticks(1000), Time_TypedLength(40, Time_eType_Ticks), false,
                  All());
  EXPECT_EQ(PrintRest(iter), "x5@40t | c7=1@80t | n61@80t+480t | b9@120t | n60@120t+480t");
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, TheOffsetShapesTheRangeOfTheStreamsAlone) {
  ChunkPtr const chunk = MakeChunk();
  for (long long const tick : {79, 80, 99, 100}) {
    chunk->AddEvent(ControllerAt(Ticks(tick), 7, static_cast<int>(tick)));
    chunk->AddEvent(NoteAt(Ticks(tick), 60));
  }
  // Notes: [80, 120). Streams: 100 - 20 is the first tick of its sample, so [100, ...).
  Iter const iter(chunk.Get(), Ticks(100), Ticks(140), Time_TypedLength(20, Time_eType_Ticks),
                  false, All());
  EXPECT_EQ(PrintRest(iter), "n60@80t+480t | n60@99t+480t | c7=100@100t | n60@100t+480t");
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, HandsTheRangeFlagToBothRanges) {
  // Notes what it is asked, and answers as the default map does.
  class Converter : public Time_Converter {
  public:
    Time_Typed ToType(Time_Typed iTime, Time_EType iType) const override {
      return Time_Convert::GetDefaultTempoMap().ToType(iTime, iType);
    }
    Time_Typed AddLength(Time_Typed iStart, Time_TypedLength const & iLength) const override {
      return Time_Convert::GetDefaultTempoMap().AddLength(iStart, iLength);
    }
    void MakeTickRangeSampleBased(Time_Typed iStart, Time_Typed iEnd, bool iFlag,
                                  Time_Typed & oStart, Time_Typed & oEnd) const override {
      mCalls += Print(iStart) + ".." + Print(iEnd) + (iFlag ? "! " : " ");
      Time_Converter::MakeTickRangeSampleBased(iStart, iEnd, iFlag, oStart, oEnd);
    }
    Converter() { Time_Convert::sTimeConverter = this; }
    ~Converter() override { Time_Convert::sTimeConverter = &Time_Convert::GetDefaultTempoMap(); }

    mutable std::string mCalls;
  };
  ChunkPtr const chunk = MakeChunk();
  for (bool const flag : {false, true}) {
    Converter const converter;
    Iter const iter(chunk.Get(), Ticks(100), Ticks(140), Time_TypedLength(20, Time_eType_Ticks),
                    flag, All());
    EXPECT_EQ(converter.mCalls, flag ? "100t..140t! 80t..120t! " : "100t..140t 80t..120t ");
  }
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, WhileTickTimesMatterTheNotesRangeIsAsGiven) {
  ChunkPtr const chunk = MakeChunk();
  for (long long const tick : {99, 100, 119, 120, 129, 130}) {
    chunk->AddEvent(SysexAt(Ticks(tick), 5));
    chunk->AddEvent(NoteAt(Ticks(tick), 60));
  }
  TickTimesMatter::SetActive(true);
  std::string const rest = PrintRange(chunk, 100, 130);
  TickTimesMatter::SetActive(false);
  EXPECT_EQ(rest, "x5@99t | x5@100t | n60@100t+480t | x5@119t | n60@119t+480t | n60@120t+480t | "
                  "n60@129t+480t");
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, ARangeInSamplesTakesTheTicksOfItsSamples) {
  ChunkPtr const chunk = MakeChunk();
  for (long long const tick : {79, 80, 119, 120}) {
    chunk->AddEvent(ControllerAt(Ticks(tick), 7, 1));
    chunk->AddEvent(NoteAt(Ticks(tick), 60));
  }
  Iter const iter(chunk.Get(), Samples(2), Samples(3), kNoOffset, false, All());
  EXPECT_EQ(PrintRest(iter), "c7=1@80t | n60@80t+480t | c7=1@119t | n60@119t+480t");
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, KeepsTheNotesExtras) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(0), 60, 480, true));
  Iter const iter(chunk.Get(), Ticks(0), Ticks(1000), kNoOffset, false, All());
  EXPECT_TRUE((*iter).IsNoteWithDurationExtendedEvent());
  EXPECT_TRUE((*iter).mMuted);
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, PastTheEndIsReportedAndStays) {
  Cmn_AssertRecorder const recorder;
  Iter iter;
  EXPECT_EQ(Print(*iter), "-@0t");
  EXPECT_EQ(recorder.GetNum("this->IsMore()"), 1);
  ++iter;
  EXPECT_EQ(recorder.GetNum("this->IsMore()"), 2);
  EXPECT_FALSE(recorder.GetEntries()[0].mThrowing);
  EXPECT_FALSE(iter.IsMore());
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, CopiesGoOnIndependently) {
  ChunkPtr const chunk = MakeMixedChunk();
  Iter iter(chunk.Get(), Ticks(0), Ticks(1000), kNoOffset, false, All());
  ++iter;
  Iter const copy(iter);
  Iter assigned;
  assigned = iter;
  ++iter;
  ++iter;
  EXPECT_EQ(PrintRest(copy), "c7=1@80t | n61@80t+480t | b9@120t | n60@120t+480t");
  EXPECT_EQ(PrintRest(assigned), "c7=1@80t | n61@80t+480t | b9@120t | n60@120t+480t");
  EXPECT_EQ(PrintRest(iter), "b9@120t | n60@120t+480t");
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, MayBeAssignedToItself) {
  ChunkPtr const chunk = MakeMixedChunk();
  Iter iter(chunk.Get(), Ticks(0), Ticks(1000), kNoOffset, false, All());
  Iter const & self = iter;
  iter = self;
  EXPECT_EQ(PrintRest(iter), "x5@40t | c7=1@80t | n61@80t+480t | b9@120t | n60@120t+480t");
}

TEST(Vrad_ChunkExtendedEventsInRangeIter, WorksThroughItsBase) {
  ChunkPtr const chunk = MakeMixedChunk();
  Iter iter(chunk.Get(), Ticks(0), Ticks(1000), kNoOffset, false, All());
  Vrad_ExtendedEventIterator & base = iter;
  EXPECT_TRUE(base.IsMore());
  ++base;
  EXPECT_EQ(Print(*base), "c7=1@80t");
}
