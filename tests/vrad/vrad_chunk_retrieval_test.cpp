#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cmn/cmn_assert.h"
#include "foundation/ticktimesmatter.h"
#include "foundation/time_convert.h"
#include "support/chunk_samples.h"
#include "support/realtime_scope.h"
#include "vrad/vrae_chasetracker.h"
#include "vrad/vrae_chasetrackermap.h"

namespace {

Time_TypedLength const kNoOffset(0, Time_eType_Ticks);

Vrae_Filter All() {
  Vrae_Filter filter;
  return filter.SetAll();
}

// Notes what it is asked, and changes what it is told to.
class Properties : public Vrad_IRTProperties {
public:
  typedef std::function<void(Vrad_ExtendedEvent &)> Change;
  explicit Properties(Change iChange = Change()) : mChange(iChange) {}

  void ApplyRealTimeProperties(Vrad_ExtendedEvent & ioEvent, int iPropertyMask) const override {
    mCalls += Print(ioEvent) + "/" + std::to_string(iPropertyMask) + " ";
    if (mChange) mChange(ioEvent);
  }

  mutable std::string mCalls;

private:
  Change mChange;
};

// One retrieval: everything but what a test sets.
struct Request {
  Time_TypedLength mOffset = kNoOffset;
  Time_Typed mStart = Ticks(0), mEnd = Ticks(1000000);
  Time_Typed mClipStart = Time_Typed::MinTime(Time_eType_Ticks);
  Time_Typed mClipEnd = Time_Typed::MaxTime(Time_eType_Ticks);
  bool mRangeFlag = false;
  Vrae_ChaseTracker * mTrackerP = nullptr;
  Vrae_ChaseTrackerMap const * mMapP = nullptr;
  Vrae_Filter mFilter = All();
  Vrad_IRTProperties const * mPropertiesP = nullptr;
  bool mSkipMuted = false;
  int mItemTag = 0;
  int mNoteOffs = kNoteOffInclusion_None;

  void Run(Vrad_Chunk const & iChunk, Vrad_EventListWrapper iWrapper) const {
    iChunk.GetMidiEventsInRange(&iWrapper, mOffset, mStart, mEnd, mClipStart, mClipEnd, mRangeFlag,
                                mTrackerP, mMapP, mFilter, mPropertiesP, mSkipMuted, mItemTag,
                                static_cast<ENoteOffInclusion>(mNoteOffs));
  }
  std::string Get(Vrad_Chunk const & iChunk) const {
    Vrae_TimedEventList list;
    Run(iChunk, Vrad_EventListWrapper(&list));
    return PrintList(list);
  }
  std::string Get(ChunkPtr const & iChunk) const { return Get(*iChunk.Get()); }

  Vrad_DisplayItemList GetItems(ChunkPtr const & iChunk) const {
    Vrad_DisplayItemList list;
    Run(*iChunk.Get(), Vrad_EventListWrapper(&list));
    return list;
  }
};

ChunkPtr MakeMixedChunk() {
  ChunkPtr chunk = MakeChunk();
  chunk->AddEvent(SysexAt(Ticks(40), 5));
  chunk->AddEvent(ControllerAt(Ticks(80), 7, 1));
  chunk->AddEvent(NoteAt(Ticks(120), 60));
  chunk->AddEvent(NoteAt(Ticks(80), 61));
  chunk->AddEvent(BendAt(Ticks(120), 9));
  return chunk;
}

// Asserts what the converter is asked, and answers as the default map does.
class Converter : public Time_Converter {
public:
  Time_Typed ToType(Time_Typed iTime, Time_EType iType) const override {
    return Time_Convert::GetDefaultTempoMap().ToType(iTime, iType);
  }
  Time_Typed AddLength(Time_Typed iStart, Time_TypedLength const & iLength) const override {
    return Time_Convert::GetDefaultTempoMap().AddLength(iStart, iLength);
  }
  void MakeTickRangeSampleBased(Time_Typed iStart, Time_Typed iEnd, bool iFlag, Time_Typed & oStart,
                                Time_Typed & oEnd) const override {
    mCalls += Print(iStart) + ".." + Print(iEnd) + (iFlag ? "! " : " ");
    Time_Converter::MakeTickRangeSampleBased(iStart, iEnd, iFlag, oStart, oEnd);
  }

  Converter() { Time_Convert::sTimeConverter = this; }
  ~Converter() override { Time_Convert::sTimeConverter = &Time_Convert::GetDefaultTempoMap(); }

  mutable std::string mCalls;
};

// Its sample 0 begins late.
class LateConverter : public Converter {
public:
  Time_Typed ToType(Time_Typed iTime, Time_EType iType) const override {
    bool const isSampleZero = iTime.GetType() == Time_eType_Samples && iTime.AsInt64() == 0;
    return isSampleZero && iType == Time_eType_Ticks ? Ticks(7) : Converter::ToType(iTime, iType);
  }
};

struct TickTimesOn {
  TickTimesOn() { TickTimesMatter::SetActive(true); }
  ~TickTimesOn() { TickTimesMatter::SetActive(false); }
};

// An event of each store at each of the ticks.
ChunkPtr MakeChunkAt(std::vector<long long> const & iTicks) {
  ChunkPtr chunk = MakeChunk();
  for (long long const tick : iTicks) {
    chunk->AddEvent(NoteAt(Ticks(tick), 60));
    chunk->AddEvent(ControllerAt(Ticks(tick), 7, 1));
    chunk->AddEvent(SysexAt(Ticks(tick), 5));
  }
  return chunk;
}

}  // namespace

TEST(Vrad_Chunk_Retrieval, MergesAllStoresInPlaybackOrder) {
  EXPECT_EQ(Request().Get(MakeMixedChunk()),
            "x5@40t | c7=1@80t | n61@80t+480t | b9@120t | n60@120t+480t");
}

TEST(Vrad_Chunk_Retrieval, FillsEachKindOfList) {
  ChunkPtr const chunk = MakeMixedChunk();
  Vrad_ExtendedEventList extended;
  Request().Run(*chunk.Get(), Vrad_EventListWrapper(&extended));
  EXPECT_EQ(PrintList(extended), "x5@40t | c7=1@80t | n61@80t+480t | b9@120t | n60@120t+480t");
  EXPECT_TRUE(extended[2].IsNoteWithDurationExtendedEvent());
  std::string items;
  for (Vrad_DisplayItem const & item : Request().GetItems(chunk))
    items += Print(item.mTime) + Print(item.mNewEvent) + Print(item.mOrigEvent) + " ";
  EXPECT_EQ(items, "40tx5@40tx5@40t 80tc7=1@80tc7=1@80t 80tn61@80t+480tn61@80t+480t "
                   "120tb9@120tb9@120t 120tn60@120t+480tn60@120t+480t ");
}

TEST(Vrad_Chunk_Retrieval, TheRangeIsHalfOpen) {
  ChunkPtr const chunk = MakeMixedChunk();
  Request request;
  request.mStart = Ticks(80);
  request.mEnd = Ticks(120);
  EXPECT_EQ(request.Get(chunk), "c7=1@80t | n61@80t+480t");
}

TEST(Vrad_Chunk_Retrieval, AnEmptyRangeGivesNothing) {
  ChunkPtr const chunk = MakeMixedChunk();
  Request request;
  request.mStart = request.mEnd = Ticks(80);
  EXPECT_EQ(request.Get(chunk), "");
  request.mEnd = Ticks(40);
  EXPECT_EQ(request.Get(chunk), "");
}

TEST(Vrad_Chunk_Retrieval, TheOffsetIsTakenOffStoredTimes) {
  ChunkPtr const chunk = MakeMixedChunk();
  Request request;
  request.mOffset = Time_TypedLength(40, Time_eType_Ticks);
  EXPECT_EQ(request.Get(chunk), "x5@0t | c7=1@40t | n61@40t+480t | b9@80t | n60@80t+480t");
  EXPECT_EQ(PrintContents(*chunk.Get()), PrintContents(*MakeMixedChunk().Get()));
}

TEST(Vrad_Chunk_Retrieval, StreamsStopAtTheFloorAndNotesDoNot) {
  ChunkPtr const chunk = MakeMixedChunk();
  Request request;
  request.mOffset = Time_TypedLength(100, Time_eType_Ticks);
  EXPECT_EQ(request.Get(chunk), "n61@-20t+480t | c7=1@0t | x5@0t | b9@20t | n60@20t+480t");
}

TEST(Vrad_Chunk_Retrieval, StreamsAreConvertedToTheOffsetsUnitAndNotesAreNot) {
  ChunkPtr const chunk = MakeMixedChunk();
  Request request;
  request.mOffset = Time_TypedLength(0, Time_eType_Samples);
  EXPECT_EQ(request.Get(chunk), "x5@1s | c7=1@2s | n61@80t+480t | b9@3s | n60@120t+480t");
}

TEST(Vrad_Chunk_Retrieval, TheClipRangeIsInOutputTimeAndHalfOpen) {
  ChunkPtr const chunk = MakeMixedChunk();
  Request request;
  request.mOffset = Time_TypedLength(40, Time_eType_Ticks);
  request.mClipStart = Ticks(40);
  request.mClipEnd = Ticks(80);
  EXPECT_EQ(request.Get(chunk), "c7=1@40t | n61@40t+480t");
}

TEST(Vrad_Chunk_Retrieval, TheClipRangeIsMadeSampleBased) {
  Request request;
  request.mClipStart = Ticks(100);  // within sample 2, which begins at tick 80
  request.mClipEnd = Ticks(130);    // within sample 3, which begins at tick 120
  EXPECT_EQ(request.Get(MakeChunkAt({79, 80, 119, 120})),
            "c7=1@80t | x5@80t | n60@80t+480t | c7=1@119t | x5@119t | n60@119t+480t");
}

TEST(Vrad_Chunk_Retrieval, HandsTheRangeFlagToTheRangesAlone) {
  ChunkPtr const chunk = MakeChunk();
  for (bool const flag : {false, true}) {
    Converter const converter;
    Request request;
    request.mRangeFlag = flag;
    request.mStart = Ticks(100);
    request.mEnd = Ticks(200);
    request.mClipStart = Ticks(1);
    request.mClipEnd = Ticks(2);
    request.mOffset = Time_TypedLength(30, Time_eType_Ticks);
    request.Get(chunk);
    EXPECT_EQ(converter.mCalls, flag ? "1t..2t 70t..170t! 70t..170t! "  // clip, notes, streams
                                     : "1t..2t 70t..170t 70t..170t ");
  }
}

TEST(Vrad_Chunk_Retrieval, WhileTickTimesMatterTheNotesAreAskedForTheRangeAsGiven) {
  TickTimesOn const on;
  Converter const converter;
  Request request;
  request.mStart = Ticks(100);
  request.mEnd = Ticks(130);
  request.mClipStart = Ticks(1);
  EXPECT_EQ(request.Get(MakeChunkAt({79, 80, 100, 119, 120, 129, 130})),
            "c7=1@80t | x5@80t | c7=1@100t | x5@100t | n60@100t+480t | c7=1@119t | x5@119t | "
            "n60@119t+480t | n60@120t+480t | n60@129t+480t");
  EXPECT_EQ(converter.mCalls, "1t..9223372036854775807t 100t..130t ");
}

TEST(Vrad_Chunk_Retrieval, AnOpenStartLeavesTheNotesTheEndAsGiven) {
  Request request;
  request.mStart = Time_Typed::MinTime(Time_eType_Ticks);
  request.mEnd = Ticks(130);
  EXPECT_EQ(request.Get(MakeChunkAt({-5000, 119, 120, 129, 130})),
            "n60@-5000t+480t | c7=1@0t | x5@0t | c7=1@119t | x5@119t | n60@119t+480t | "
            "n60@120t+480t | n60@129t+480t");
}

TEST(Vrad_Chunk_Retrieval, ARangeInSamplesTakesTheTicksOfItsSamples) {
  Request request;
  request.mStart = Samples(2);
  request.mEnd = Samples(3);
  EXPECT_EQ(request.Get(MakeChunkAt({79, 80, 119, 120})),
            "c7=1@80t | x5@80t | n60@80t+480t | c7=1@119t | x5@119t | n60@119t+480t");
}

TEST(Vrad_Chunk_Retrieval, AnOffsetInSamplesIsTakenOffTicks) {
  Request request;
  request.mOffset = Time_TypedLength(1, Time_eType_Samples);
  EXPECT_EQ(request.Get(MakeChunkAt({20, 120})),
            "n60@-20t+480t | c7=1@0s | x5@0s | c7=1@2s | x5@2s | n60@80t+480t");
}

TEST(Vrad_Chunk_Retrieval, WithoutAnOffsetStreamsStopAtZeroAndSysexAtSampleZero) {
  LateConverter const converter;
  Request request;
  request.mStart = Time_Typed::MinTime(Time_eType_Ticks);
  EXPECT_EQ(request.Get(MakeChunkAt({-3, 3, 8})),
            "n60@-3t+480t | c7=1@0t | c7=1@3t | n60@3t+480t | x5@7t | x5@7t | c7=1@8t | x5@8t | "
            "n60@8t+480t");
}

TEST(Vrad_Chunk_Retrieval, WithAnOffsetBothStopAtSampleZero) {
  LateConverter const converter;
  Request request;
  request.mStart = Time_Typed::MinTime(Time_eType_Ticks);
  request.mOffset = Time_TypedLength(1, Time_eType_Ticks);
  EXPECT_EQ(request.Get(MakeChunkAt({4, 9})),
            "n60@3t+480t | c7=1@7t | x5@7t | c7=1@8t | x5@8t | n60@8t+480t");
}

TEST(Vrad_Chunk_Retrieval, StreamsAreAskedForTheSampleBasedRange) {
  ChunkPtr const chunk = MakeChunk();
  for (long long const tick : {60, 79, 80, 119})
    chunk->AddEvent(ControllerAt(Ticks(tick), 7, int(tick)));
  Request request;
  request.mStart = Ticks(100);  // 80 and on
  request.mEnd = Ticks(119);    // up to 80
  EXPECT_EQ(request.Get(chunk), "");
  request.mEnd = Ticks(120);
  EXPECT_EQ(request.Get(chunk), "c7=80@80t | c7=119@119t");
}

TEST(Vrad_Chunk_Retrieval, TheFilterLeavesOutNotes) {
  Request request;
  request.mFilter.Set(Vrae_Filter::eDataType_Notes, false);
  EXPECT_EQ(request.Get(MakeMixedChunk()), "x5@40t | c7=1@80t | b9@120t");
}

TEST(Vrad_Chunk_Retrieval, TheFilterLeavesOutSysex) {
  Request request;
  request.mFilter.Set(Vrae_Filter::eDataType_Sysex, false);
  EXPECT_EQ(request.Get(MakeMixedChunk()), "c7=1@80t | n61@80t+480t | b9@120t | n60@120t+480t");
}

TEST(Vrad_Chunk_Retrieval, TheFilterLeavesOutStreamsOneByOne) {
  Request request;
  request.mFilter.Set(Vrae_Filter::eDataType_PitchBend, false);
  EXPECT_EQ(request.Get(MakeMixedChunk()), "x5@40t | c7=1@80t | n61@80t+480t | n60@120t+480t");
  request.mFilter = All();
  Cmn_BitArray<128> controllers;
  request.mFilter.SetControllers(controllers);
  EXPECT_EQ(request.Get(MakeMixedChunk()), "x5@40t | n61@80t+480t | b9@120t | n60@120t+480t");
}

TEST(Vrad_Chunk_Retrieval, VelocitiesStayAsStored) {
  ChunkPtr const chunk = MakeMixedChunk();
  Request request;
  request.mFilter.Set(Vrae_Filter::eDataType_NoteOnVelocity, false);
  request.mFilter.Set(Vrae_Filter::eDataType_NoteOffVelocity, false);
  Vrad_ExtendedEventList list;
  request.Run(*chunk.Get(), Vrad_EventListWrapper(&list));
  EXPECT_EQ(list[2].mEvent.AsNoteWithDuration().GetOnVelocity(), 100);
}

TEST(Vrad_Chunk_Retrieval, AFilterThatPassesNothingLeavesTheSort) {
  ChunkPtr const chunk = MakeMixedChunk();
  Request request;
  request.mFilter = Vrae_Filter();
  Vrae_TimedEventList list;
  list.push_back(NoteAt(Ticks(9), 9));
  list.push_back(NoteAt(Ticks(8), 8));
  request.Run(*chunk.Get(), Vrad_EventListWrapper(&list));
  EXPECT_EQ(PrintList(list), "n9@9t+480t | n8@8t+480t");
}

TEST(Vrad_Chunk_Retrieval, ASecondCallLeavesTheFirstOnesEventsInFront) {
  ChunkPtr const chunk = MakeMixedChunk();
  Vrae_TimedEventList list;
  Request request;
  request.mStart = Ticks(120);
  request.Run(*chunk.Get(), Vrad_EventListWrapper(&list));
  request.mStart = Ticks(0);
  request.mEnd = Ticks(120);
  request.Run(*chunk.Get(), Vrad_EventListWrapper(&list));
  EXPECT_EQ(PrintList(list), "b9@120t | n60@120t+480t | x5@40t | c7=1@80t | n61@80t+480t");
}

TEST(Vrad_Chunk_Retrieval, AMutedNoteIsShownAsSuch) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(0), 60, 480, true));
  chunk->AddEvent(NoteAt(Ticks(5), 61));
  Vrad_DisplayItemList const items = Request().GetItems(chunk);
  ASSERT_EQ(items.size(), 2u);
  EXPECT_TRUE(items[0].mDisplayFlag);
  EXPECT_FALSE(items[1].mDisplayFlag);
}

TEST(Vrad_Chunk_Retrieval, NothingButANoteIsShownAsMuted) {
  ChunkPtr const chunk = MakeMixedChunk();
  chunk->AddEvent(NoteAt(Ticks(300), 62, 480, true));
  std::string muted;
  for (Vrad_DisplayItem const & item : Request().GetItems(chunk))
    if (item.mDisplayFlag) muted += Print(item.mNewEvent) + " ";
  EXPECT_EQ(muted, "n62@300t+480t ");
}

TEST(Vrad_Chunk_Retrieval, AMutedNoteIsSkippedAndNotShownToTheProperties) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(0), 60, 480, true));
  chunk->AddEvent(NoteAt(Ticks(5), 61));
  Properties const properties;
  Request request;
  request.mSkipMuted = true;
  request.mPropertiesP = &properties;
  EXPECT_EQ(request.Get(chunk), "n61@5t+480t");
  EXPECT_EQ(properties.mCalls, "n61@5t+480t/255 ");
}

TEST(Vrad_Chunk_Retrieval, TheTagIsInEveryItem) {
  Request request;
  request.mItemTag = 77;
  request.mNoteOffs = kNoteOffInclusion_Last;
  Vrad_DisplayItemList const items = request.GetItems(MakeMixedChunk());
  EXPECT_EQ(items.size(), 6u);
  for (Vrad_DisplayItem const & item : items)
    EXPECT_EQ(item.mDisplayValue, 77);
}

TEST(Vrad_Chunk_Retrieval, ThePropertiesAreAskedWithTheMaskOfEachStore) {
  ChunkPtr const chunk = MakeMixedChunk();
  chunk->AddEvent(Vrad_ExtendedEvent(Ticks(200), Vrae_PolyPressureEvent(60, 1)));
  Properties const properties;
  Request request;
  request.mPropertiesP = &properties;
  request.Get(chunk);
  EXPECT_EQ(properties.mCalls,
            "n61@80t+480t/255 n60@120t+480t/255 b9@120t/4 c7=1@80t/4 kind8@200t/16 kind8@200t/4 "
            "x5@40t/4 ");
}

TEST(Vrad_Chunk_Retrieval, ThePropertiesChangeTheNewEventAlone) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(100), 60));
  Properties const properties([](Vrad_ExtendedEvent & ioEvent) {
    ioEvent.mEvent.AsNoteWithDuration().SetPitch(72);
    ioEvent.mTime += Time_TickLength(5);
  });
  Request request;
  request.mPropertiesP = &properties;
  request.mOffset = Time_TypedLength(40, Time_eType_Ticks);
  Vrad_DisplayItemList const items = request.GetItems(chunk);
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(Print(items[0].mTime), "65t");
  EXPECT_EQ(Print(items[0].mNewEvent), "n72@65t+480t");
  EXPECT_EQ(Print(items[0].mOrigEvent), "n60@60t+480t");
  EXPECT_EQ(properties.mCalls, "n60@60t+480t/255 ");
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes n60@100t+480t / misc");
}

TEST(Vrad_Chunk_Retrieval, ThePropertiesMayMoveANoteIntoTheClipRangeOrOut) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(0), 60));
  Request request;
  request.mClipStart = Ticks(80);
  request.mClipEnd = Ticks(120);
  for (auto const & [target, expected] : {std::pair<long long, char const *>(79, ""),
                                          {80, "n60@80t+480t"},
                                          {119, "n60@119t+480t"},
                                          {120, ""},
                                          {500, ""}}) {
    Properties const properties(
        [time = target](Vrad_ExtendedEvent & ioEvent) { ioEvent.mTime = Ticks(time); });
    request.mPropertiesP = &properties;
    EXPECT_EQ(request.Get(chunk), expected) << target;
  }
}

TEST(Vrad_Chunk_NoteOffMarker, AnEmptyChunkYieldsOneAtTheQuerysAnswer) {
  ChunkPtr const chunk = MakeChunk();
  Request request;
  request.mStart = Ticks(100);
  request.mEnd = Ticks(200);
  request.mOffset = Time_TypedLength(30, Time_eType_Ticks);
  request.mNoteOffs = kNoteOffInclusion_Earliest;
  EXPECT_EQ(request.Get(chunk), "-@170t");
  request.mNoteOffs = kNoteOffInclusion_Last;
  EXPECT_EQ(request.Get(chunk), "-@70t");
}

TEST(Vrad_Chunk_NoteOffMarker, StandsAtTheEarliestOrTheLastRelease) {
  ChunkPtr const chunk = MakeChunk();
  for (long long const duration : {50, 60, 70})
    chunk->AddEvent(NoteAt(Ticks(0), 60, duration));
  Request request;
  request.mStart = Ticks(40);
  request.mEnd = Ticks(100);
  request.mNoteOffs = kNoteOffInclusion_Earliest;
  EXPECT_EQ(request.Get(chunk), "-@50t");
  request.mNoteOffs = kNoteOffInclusion_Last;
  EXPECT_EQ(request.Get(chunk), "-@70t");
}

TEST(Vrad_Chunk_NoteOffMarker, EveryOtherValueBehavesAsTheLast) {
  ChunkPtr const chunk = MakeChunk();
  for (long long const duration : {50, 60, 70})
    chunk->AddEvent(NoteAt(Ticks(0), 60, duration));
  Request request;
  request.mStart = Ticks(40);
  request.mEnd = Ticks(100);
  for (int const value : {3, -1, 1000}) {
    request.mNoteOffs = value;
    EXPECT_EQ(request.Get(chunk), "-@70t");
  }
}

TEST(Vrad_Chunk_NoteOffMarker, IsNeitherFilteredNorClipped) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(0), 60, 50));
  Properties const properties;
  Request request;
  request.mPropertiesP = &properties;
  request.mFilter = Vrae_Filter();
  request.mClipStart = Ticks(2000);
  request.mClipEnd = Ticks(3000);
  request.mNoteOffs = kNoteOffInclusion_Last;
  EXPECT_EQ(request.Get(chunk), "-@50t");
  EXPECT_EQ(properties.mCalls, "");
}

TEST(Vrad_Chunk_NoteOffMarker, InADisplayItemStandsAsBothEvents) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(0), 60, 50, true));
  Request request;
  request.mStart = Ticks(40);
  request.mItemTag = 9;
  request.mNoteOffs = kNoteOffInclusion_Last;
  Vrad_DisplayItemList const items = request.GetItems(chunk);
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(Print(items[0].mTime), "50t");
  EXPECT_EQ(Print(items[0].mNewEvent), "-@50t");
  EXPECT_EQ(Print(items[0].mOrigEvent), "-@50t");
  EXPECT_FALSE(items[0].mDisplayFlag);
  EXPECT_EQ(items[0].mDisplayValue, 9);
  EXPECT_FALSE(items[0].mNewEvent.IsNoteWithDurationExtendedEvent());
}

TEST(Vrad_Chunk_NoteOffMarker, InAnExtendedListIsAPlainEvent) {
  Request request;
  request.mNoteOffs = kNoteOffInclusion_Last;
  Vrad_ExtendedEventList list;
  request.Run(*MakeChunk().Get(), Vrad_EventListWrapper(&list));
  EXPECT_EQ(PrintList(list), "-@0t");
  EXPECT_FALSE(list[0].IsNoteWithDurationExtendedEvent());
}

TEST(Vrad_Chunk_NoteOffMarker, KeepsTheUnitOfTheQuerysAnswer) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(0), 60, 200));  // ends with sample 5
  Request request;
  request.mOffset = Time_TypedLength(40, Time_eType_Ticks);
  request.mNoteOffs = kNoteOffInclusion_Earliest;
  request.mStart = Samples(1);
  request.mEnd = Samples(6);
  EXPECT_EQ(request.Get(chunk), "-@160t");
  request.mEnd = Samples(5);
  EXPECT_EQ(request.Get(chunk), "-@4s");
}

TEST(Vrad_Chunk_NoteOffMarker, IsSortedIn) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(NoteAt(Ticks(0), 60, 50));
  chunk->AddEvent(NoteAt(Ticks(80), 61, 5000000));
  Request request;
  request.mNoteOffs = kNoteOffInclusion_Earliest;
  EXPECT_EQ(request.Get(chunk), "n60@0t+50t | -@50t | n61@80t+5000000t");
}

TEST(Vrad_Chunk_NoteOffMarker, NeedsANoteList) {
  ChunkPtr const chunk = MakeChunk();
  chunk->SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase>());
  Request request;
  request.mFilter.Set(Vrae_Filter::eDataType_Notes, false);
  request.mNoteOffs = kNoteOffInclusion_Last;
  EXPECT_EQ(request.Get(chunk), "");
}

TEST(Vrad_Chunk_Retrieval, LeavesOutWhatTheTrackerHoldsAlready) {
  ChunkPtr const chunk = MakeChunk();
  chunk->AddEvent(ControllerAt(Ticks(0), 7, 1));
  chunk->AddEvent(ControllerAt(Ticks(40), 7, 2));
  chunk->AddEvent(ControllerAt(Ticks(40), 10, 3));
  Vrae_ChaseTrackerMap map;
  Vrae_ChaseTracker tracker(&map, true);
  tracker.ChaseEvent(Vrae_ControllerEvent(7, 2));
  Request request;
  request.mTrackerP = &tracker;
  request.mMapP = &map;
  request.mStart = Ticks(40);
  EXPECT_EQ(request.Get(chunk), "c10=3@40t");
  tracker.ChaseEvent(Vrae_ControllerEvent(7, 1));
  EXPECT_EQ(request.Get(chunk), "c7=2@40t | c10=3@40t");
}

TEST(Vrad_Chunk_Retrieval, IntoAWrapperWithoutAListGivesNothing) {
  Request request;
  request.mNoteOffs = kNoteOffInclusion_Last;
  Vrad_EventListWrapper const wrapper(static_cast<Vrae_TimedEventList *>(nullptr));
  request.Run(*MakeMixedChunk().Get(), wrapper);
  EXPECT_EQ(wrapper.size(), 0u);
}

TEST(Vrad_Chunk_RetrievalShortForm, GivesEverythingMutedNotesToo) {
  ChunkPtr const chunk = MakeMixedChunk();
  chunk->AddEvent(NoteAt(Ticks(0), 62, 480, true));
  Vrad_DisplayItemList list;
  Vrad_EventListWrapper wrapper(&list);
  chunk->GetMidiEventsInRange(&wrapper, Time_TypedLength(40, Time_eType_Ticks), Ticks(0),
                              Ticks(120), false, nullptr, nullptr, kNoteOffInclusion_Last);
  std::string items;
  for (Vrad_DisplayItem const & item : list)
    items += Print(item.mNewEvent) + (item.mDisplayFlag ? " muted " : " ");
  EXPECT_EQ(items, "-@-40t n62@-40t+480t muted x5@0t c7=1@40t n61@40t+480t ");
}

// Warm: the list has the room from before.
TEST(Vrad_Chunk_Retrieval, IntoAWarmListIsFitForTheAudioThread) {
  ChunkPtr const chunk = MakeChunk();
  for (int i = 0; i < 2000; ++i) {
    chunk->AddEvent(NoteAt(Ticks(i * 40), 40 + i % 40, 90));
    chunk->AddEvent(ControllerAt(Ticks(i * 40 + 3), 1 + i % 119, i % 128));
    if (i % 50 == 0) chunk->AddEvent(SysexAt(Ticks(i * 40), i % 100));
    if (i % 400 == 0)
      chunk->AddEvent(Vrad_ExtendedEvent(
          Ticks(i * 40),
          Vrae_SysexEvent(18, reinterpret_cast<unsigned char const *>("abcdefghijklmnopqr"))));
  }
  Vrae_ChaseTrackerMap map;
  Vrae_ChaseTracker tracker(&map, true);
  tracker.ChaseEvent(Vrae_ControllerEvent(7, 2));
  class Quiet : public Vrad_IRTProperties {
    void ApplyRealTimeProperties(Vrad_ExtendedEvent & ioEvent, int) const override {
      ioEvent.mTime += Time_TickLength(1);
    }
  } const properties;
  Vrae_TimedEventList timed;
  Vrad_ExtendedEventList extended;
  Vrad_DisplayItemList items;
  Request request;
  request.mTrackerP = &tracker;
  request.mMapP = &map;
  request.mPropertiesP = &properties;
  request.mNoteOffs = kNoteOffInclusion_Earliest;
  auto const retrieveAll = [&] {
    for (long long block = 0; block < 80000; block += 2000) {
      timed.clear();
      extended.clear();
      items.clear();
      request.mStart = Ticks(block);
      request.mEnd = Ticks(block + 2000);
      request.Run(*chunk.Get(), Vrad_EventListWrapper(&timed));
      request.Run(*chunk.Get(), Vrad_EventListWrapper(&extended));
      request.Run(*chunk.Get(), Vrad_EventListWrapper(&items));
    }
  };
  retrieveAll();
  EXPECT_GT(timed.size(), 80u);
  EXPECT_EQ("", RealtimeViolationsOf(retrieveAll));
}
