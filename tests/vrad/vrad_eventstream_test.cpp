#include "vrad/vrad_eventstream.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/realtime_scope.h"
#include "support/store_printing.h"
#include "support/test_properties.h"

namespace {

typedef std::initializer_list<std::pair<long long, int>> TickBytes;

constexpr Time_EType kTicks = Time_eType_Ticks;
constexpr Time_EType kSamples = Time_eType_Samples;
Time_Typed const kFirst = Time_Typed::MinTime(kTicks);
Time_Typed const kLast = Time_Typed::MaxTime(kTicks);

/// A sysex of one byte, by which tests tell events apart.
Vrae_TimedEvent SysexAt(Time_Typed iTime, int iByte) {
  unsigned char const byte = static_cast<unsigned char>(iByte);
  return Vrae_TimedEvent(iTime, Vrae_SysexEvent(1, &byte));
}

Vrae_TimedEvent SysexAt(long long iTick, int iByte) {
  return SysexAt(Tick(iTick), iByte);
}

Vrae_TimedEvent NothingAt(long long iTick) {
  return Vrae_TimedEvent(Tick(iTick), Vrae_Event());
}

/// The events of one time come out in reverse order of adding.
struct TestStream : Vrad_EventStream {
  TestStream(TickBytes iBytes = {}, EUndoFlag iFlag = kUndoable, bool iSnaps = false)
      : Vrad_EventStream(iFlag, iSnaps) {
    for (auto const & byte : iBytes)
      AddEvent(SysexAt(byte.first, byte.second));
  }
};

struct SnappingStream : TestStream {
  SnappingStream(TickBytes iBytes = {}) : TestStream(iBytes, kUndoable, true) {}
};

std::string PrintStream(Vrad_EventStream & ioStream) {
  Vrad_EventStreamTimedEventsInRangeIter iter(&ioStream);
  return PrintRest(iter);
}

TEST(Vrad_EventStream, StartsEmpty) {
  Vrad_EventStream stream(Ndo_Object::kNotUndoable, true);
  EXPECT_EQ(0u, stream.Size());
  EXPECT_FALSE(stream.NdoIsUndoable());
  EXPECT_TRUE(Vrad_EventStream(Ndo_Object::kUndoable, true).NdoIsUndoable());
}

TEST(Vrad_EventStream, SizeIsTheNumberOfEvents) {
  TestStream const stream({{10, 1}, {10, 2}, {20, 3}});
  EXPECT_EQ(3u, stream.Size());
  EXPECT_TRUE((std::is_same_v<unsigned long long, decltype(stream.Size())>));
}

TEST(Vrad_EventStream, CannotBeAssigned) {
  EXPECT_FALSE(std::is_copy_assignable_v<Vrad_EventStream>);
}

TEST(Vrad_EventStream, StateHasNoPublicConstructor) {
  EXPECT_FALSE(std::is_copy_constructible_v<Vrad_EventStream_NdoState>);
  EXPECT_FALSE(std::is_default_constructible_v<Vrad_EventStream_NdoState>);
}

TEST(Vrad_EventStream, CopyHasTheContentsAndAnIdentityOfItsOwn) {
  TestStream stream({{10, 1}});
  Vrad_EventStream copy(stream);
  EXPECT_NE(-1, copy.NdoGetID());
  EXPECT_NE(stream.NdoGetID(), copy.NdoGetID());
  copy.AddEvent(SysexAt(20, 2));
  EXPECT_EQ("10:1", PrintStream(stream));
  EXPECT_EQ("10:1 20:2", PrintStream(copy));
}

TEST(Vrad_EventStream, CopyTakesOverTheSnapping) {
  TickTimesMatterScope const scope;
  Vrad_EventStream copy{SnappingStream()};
  TestStream const source({{1400, 1}});
  copy.AddFromStream(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("1000:1", PrintStream(copy));
}

// ---- AddEvent, EraseEvent

TEST(Vrad_EventStream_AddEvent, KeepsTheTimesInOrder) {
  TestStream stream({{20, 1}, {-10, 2}, {30, 3}, {25, 4}});
  EXPECT_EQ("-10:2 20:1 25:4 30:3", PrintStream(stream));
}

TEST(Vrad_EventStream_AddEvent, LaterAddedOfOneTimeStandsFirst) {
  TestStream stream({{10, 1}, {10, 2}, {10, 3}});
  EXPECT_EQ("10:3 10:2 10:1", PrintStream(stream));
}

TEST(Vrad_EventStream_AddEvent, AlwaysAnnounces) {
  TestStream stream;
  EXPECT_TRUE(Announces(stream, [&] { stream.AddEvent(SysexAt(1, 1)); }));
}

TEST(Vrad_EventStream_AddEvent, DoesNotSnap) {
  TickTimesMatterScope const scope;
  SnappingStream stream({{1001, 1}});
  EXPECT_EQ("1001:1", PrintStream(stream));
}

TEST(Vrad_EventStream_AddEvent, KeepsTheStamp) {
  TestStream stream;
  stream.AddEvent(Vrae_TimedEvent(Tick(1), Vrae_Event(), {{3, 4}, 5}));
  Vrad_EventStreamTimedEventsInRangeIter const iter(&stream);
  EXPECT_EQ(5, (*iter).mSourceStamp.mStampFlag);
}

TEST(Vrad_EventStream_EraseEvent, ErasesTheFirstEqualOneAlone) {
  TestStream stream({{10, 1}, {10, 2}, {10, 1}, {20, 1}});
  stream.EraseEvent(SysexAt(10, 1));
  EXPECT_EQ("10:2 10:1 20:1", PrintStream(stream));
}

TEST(Vrad_EventStream_EraseEvent, EventOfTheTimeWithOtherContentChangesAndAnnouncesNothing) {
  TestStream stream({{10, 1}});
  EXPECT_FALSE(Announces(stream, [&] { stream.EraseEvent(SysexAt(10, 2)); }));
  EXPECT_FALSE(Announces(stream, [&] { stream.EraseEvent(SysexAt(11, 1)); }));
  EXPECT_EQ("10:1", PrintStream(stream));
}

TEST(Vrad_EventStream_EraseEvent, AnnouncesIfOneGoes) {
  TestStream stream({{10, 1}});
  EXPECT_TRUE(Announces(stream, [&] { stream.EraseEvent(SysexAt(10, 1)); }));
}

TEST(Vrad_EventStream_EraseEvent, LongSysexIsFoundByItsPayload) {
  unsigned char const bytes[20] = {};
  Vrae_TimedEvent const stored(Tick(10), Vrae_SysexEvent(20, bytes));
  TestStream stream;
  stream.AddEvent(stored);
  stream.EraseEvent(Vrae_TimedEvent(Tick(10), Vrae_SysexEvent(20, bytes)));
  EXPECT_EQ(1u, stream.Size());
  stream.EraseEvent(Vrae_TimedEvent(stored));
  EXPECT_EQ(0u, stream.Size());
}

TEST(Vrad_EventStream_EraseEvent, ThrowsForAKindWithoutEqualityAndChangesNothing) {
  TestStream stream;
  Vrae_TimedEvent const clip(Tick(10), Vrae_ClipEvent("a", Ticks(1)));
  stream.AddEvent(clip);
  Cmn_AssertRecorder const recorder;
  EXPECT_THROW(stream.EraseEvent(clip), Cmn_AssertException);
  EXPECT_EQ(1u, stream.Size());
}

// ---- EraseRange, Clear

TEST(Vrad_EventStream_EraseRange, TakesAnEventExactlyAtTheEnd) {
  TestStream stream({{9, 1}, {10, 2}, {20, 3}, {20, 4}, {21, 5}});
  stream.EraseRange(Tick(10), Tick(20));
  EXPECT_EQ("9:1 21:5", PrintStream(stream));
}

TEST(Vrad_EventStream_EraseRange, RetrievalOfTheSameRangeWouldNotGiveTheEnd) {
  TestStream stream({{10, 2}, {20, 3}});
  Vrad_EventStreamTimedEventsInRangeIter iter(&stream, Tick(10), Tick(20));
  EXPECT_EQ("10:2", PrintRest(iter));
}

TEST(Vrad_EventStream_EraseRange, AnnouncesOnlyIfSomethingGoes) {
  TestStream stream({{10, 1}});
  EXPECT_FALSE(Announces(stream, [&] { stream.EraseRange(Tick(0), Tick(9)); }));
  EXPECT_FALSE(Announces(stream, [&] { stream.EraseRange(Tick(11), Tick(19)); }));
  EXPECT_TRUE(Announces(stream, [&] { stream.EraseRange(Tick(0), Tick(10)); }));
}

TEST(Vrad_EventStream_EraseRange, EndBeforeStartIsAnEmptyStretch) {
  TestStream stream({{10, 1}, {20, 2}});
  EXPECT_FALSE(Announces(stream, [&] { stream.EraseRange(Tick(30), Tick(0)); }));
  EXPECT_EQ(2u, stream.Size());
}

TEST(Vrad_EventStream_Clear, RemovesAllAndAnnouncesOnlyThen) {
  TestStream stream;
  EXPECT_FALSE(Announces(stream, [&] { stream.Clear(); }));
  stream.AddEvent(SysexAt(10, 1));
  EXPECT_TRUE(Announces(stream, [&] { stream.Clear(); }));
  EXPECT_EQ(1u, stream.Size());
  stream.Clear();
  EXPECT_EQ(0u, stream.Size());
}

// ---- AddFromStream

TEST(Vrad_EventStream_AddFromStream, MergesTheRangeShifted) {
  TestStream stream({{5, 1}, {115, 2}, {200, 3}});
  TestStream const source({{9, 10}, {10, 11}, {19, 12}, {20, 13}});
  stream.AddFromStream(&source, Tick(10), Tick(20), Ticks(100));
  EXPECT_EQ("5:1 110:11 115:2 119:12 200:3", PrintStream(stream));
}

TEST(Vrad_EventStream_AddFromStream, WhatComesInStandsFirstAndReplacesNothing) {
  TestStream stream({{10, 2}, {10, 1}, {20, 3}});
  TestStream const source({{10, 8}, {10, 7}});
  stream.AddFromStream(&source, Tick(0), Tick(100), Ticks(0));
  EXPECT_EQ("10:7 10:8 10:1 10:2 20:3", PrintStream(stream));
}

TEST(Vrad_EventStream_AddFromStream, EqualEventStaysBesideAndErasingTakesOne) {
  TestStream stream({{10, 1}});
  TestStream const source({{10, 1}});
  stream.AddFromStream(&source, Tick(0), Tick(100), Ticks(0));
  EXPECT_EQ("10:1 10:1", PrintStream(stream));
  stream.EraseFromStream(&source, Tick(0), Tick(100), Ticks(0));
  EXPECT_EQ("10:1", PrintStream(stream));
}

TEST(Vrad_EventStream_AddFromStream, EmptySourceRangeAnnouncesNothing) {
  TestStream stream;
  TestStream const source({{10, 1}});
  EXPECT_FALSE(
      Announces(stream, [&] { stream.AddFromStream(&source, Tick(11), Tick(99), Ticks(0)); }));
  EXPECT_FALSE(
      Announces(stream, [&] { stream.AddFromStream(&source, Tick(10), Tick(10), Ticks(0)); }));
  EXPECT_FALSE(
      Announces(stream, [&] { stream.AddFromStream(&source, Tick(99), Tick(0), Ticks(0)); }));
  EXPECT_TRUE(
      Announces(stream, [&] { stream.AddFromStream(&source, Tick(10), Tick(11), Ticks(0)); }));
}

TEST(Vrad_EventStream_AddFromStream, SnapsWhileTickTimesMatter) {
  TestStream const source({{900, 1}, {1100, 2}, {1500, 3}});
  SnappingStream stream({{1000, 9}});
  TickTimesMatterScope const scope;
  stream.AddFromStream(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("1000:1 1000:2 1000:9 2000:3", PrintStream(stream));
}

TEST(Vrad_EventStream_AddFromStream, DoesNotSnapOtherwise) {
  TestStream const source({{1400, 1}});
  SnappingStream snapping;
  snapping.AddFromStream(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("1400:1", PrintStream(snapping));
  TickTimesMatterScope const scope;
  TestStream stream;
  stream.AddFromStream(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("1400:1", PrintStream(stream));
}

TEST(Vrad_EventStream_AddFromStream, DoesNotSnapSampleTimes) {
  TickTimesMatterScope const scope;
  TestStream source;
  source.AddEvent(SysexAt(Sample(1400), 1));
  SnappingStream stream;
  stream.AddFromStream(&source, Sample(0), Sample(2000), Samples(1));
  EXPECT_EQ("1401s:1", PrintStream(stream));
}

TEST(Vrad_EventStream_AddFromStream, EventAtTheShiftedEndBelongsToTheRegion) {
  TickTimesMatterScope const scope;
  SnappingStream stream({{2000, 9}});
  TestStream const source({{1700, 1}});
  stream.AddFromStream(&source, Tick(1700), Tick(2000), Ticks(0));
  EXPECT_EQ("2000:1 2000:9", PrintStream(stream));
}

TEST(Vrad_EventStream_AddFromStream, LeavesTimesOutsideTheRegionOutOfOrder) {
  TickTimesMatterScope const scope;
  SnappingStream stream({{1200, 9}});
  TestStream const source({{1400, 1}});
  stream.AddFromStream(&source, Tick(1400), Tick(2000), Ticks(0));
  EXPECT_EQ("1200:9 1000:1", PrintStream(stream));
}

TEST(Vrad_EventStream_AddFromStream, ItselfActsAsACopy) {
  TestStream stream({{0, 1}, {10, 2}, {20, 3}});
  stream.AddFromStream(&stream, Tick(0), Tick(20), Ticks(10));
  EXPECT_EQ("0:1 10:1 10:2 20:2 20:3", PrintStream(stream));
}

// ---- EraseFromStream

TEST(Vrad_EventStream_EraseFromStream, TakesOutOneEqualEventForEach) {
  TestStream stream({{5, 1}, {110, 2}, {110, 1}, {110, 1}, {120, 1}});
  TestStream const source({{10, 1}, {10, 1}, {10, 3}});
  stream.EraseFromStream(&source, Tick(10), Tick(20), Ticks(100));
  EXPECT_EQ("5:1 110:2 120:1", PrintStream(stream));
}

TEST(Vrad_EventStream_EraseFromStream, SecondEqualEventFindsTheNextOne) {
  TestStream stream({{10, 1}, {10, 1}, {10, 1}});
  TestStream const source({{10, 1}, {10, 1}});
  stream.EraseFromStream(&source, Tick(0), Tick(20), Ticks(0));
  EXPECT_EQ("10:1", PrintStream(stream));
}

TEST(Vrad_EventStream_EraseFromStream, FindsEventsInAnyOrderOfTheirTime) {
  TestStream stream({{10, 3}, {10, 2}, {10, 1}});
  TestStream const source({{10, 1}, {10, 3}});
  stream.EraseFromStream(&source, Tick(0), Tick(20), Ticks(0));
  EXPECT_EQ("10:2", PrintStream(stream));
}

TEST(Vrad_EventStream_EraseFromStream, DropsKind0OfTheStretchWalked) {
  TestStream stream({{10, 1}, {30, 2}});
  stream.AddEvent(NothingAt(5));
  stream.AddEvent(NothingAt(20));
  stream.AddEvent(NothingAt(30));
  stream.AddEvent(NothingAt(40));
  TestStream const source({{10, 9}, {30, 9}});
  stream.EraseFromStream(&source, Tick(0), Tick(100), Ticks(0));
  EXPECT_EQ("5:kind0 10:1 30:2 40:kind0", PrintStream(stream));
}

// The stretch ends with the events of the time at which the walk stands.
TEST(Vrad_EventStream_EraseFromStream, DropsKind0AtATimeBehindTheLastSourceEvent) {
  TestStream stream({{30, 2}});
  stream.AddEvent(NothingAt(30));
  TestStream const source({{10, 9}});
  stream.EraseFromStream(&source, Tick(0), Tick(100), Ticks(0));
  EXPECT_EQ("30:2", PrintStream(stream));
}

TEST(Vrad_EventStream_EraseFromStream, Kind0OfTheSourceMatchesNothingThatIsReal) {
  TestStream stream({{10, 1}, {10, 2}});
  TestStream source({{10, 1}});
  source.AddEvent(NothingAt(10));
  stream.EraseFromStream(&source, Tick(0), Tick(100), Ticks(0));
  EXPECT_EQ("10:2", PrintStream(stream));
}

TEST(Vrad_EventStream_EraseFromStream, StopsAtTheEndOfTheStream) {
  TestStream stream({{10, 1}});
  TestStream const source({{10, 1}, {20, 1}, {30, 1}});
  stream.EraseFromStream(&source, Tick(0), Tick(100), Ticks(0));
  EXPECT_EQ(0u, stream.Size());
}

TEST(Vrad_EventStream_EraseFromStream, AnnouncesWheneverTheSourceRangeIsNotEmpty) {
  TestStream stream({{10, 1}});
  TestStream const source({{10, 9}});
  EXPECT_TRUE(
      Announces(stream, [&] { stream.EraseFromStream(&source, Tick(0), Tick(99), Ticks(0)); }));
  EXPECT_FALSE(
      Announces(stream, [&] { stream.EraseFromStream(&source, Tick(11), Tick(99), Ticks(0)); }));
  EXPECT_FALSE(
      Announces(stream, [&] { stream.EraseFromStream(&source, Tick(10), Tick(10), Ticks(0)); }));
}

TEST(Vrad_EventStream_EraseFromStream, DoesNotSnap) {
  TickTimesMatterScope const scope;
  SnappingStream stream;
  TestStream const source({{1400, 1}});
  stream.AddFromStream(&source, Tick(0), Tick(2000), Ticks(0));
  stream.EraseFromStream(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("1000:1", PrintStream(stream));
}

TEST(Vrad_EventStream_EraseFromStream, ItselfTakesAllOut) {
  TestStream stream({{0, 1}, {10, 2}, {10, 2}, {20, 3}});
  stream.EraseFromStream(&stream, Tick(0), Tick(20), Ticks(0));
  EXPECT_EQ("20:3", PrintStream(stream));
}

TEST(Vrad_EventStream_EraseFromStream, ThrowsForAKindWithoutEqualityAndChangesNothing) {
  TestStream stream({{5, 1}});
  Vrae_TimedEvent const clip(Tick(10), Vrae_ClipEvent("a", Ticks(1)));
  stream.AddEvent(clip);
  TestStream source({{5, 1}});
  source.AddEvent(clip);
  Cmn_AssertRecorder const recorder;
  EXPECT_THROW(stream.EraseFromStream(&source, Tick(0), Tick(99), Ticks(0)), Cmn_AssertException);
  EXPECT_EQ("5:1 10:kind23", PrintStream(stream));
}

// ---- OffsetTimes, ReplaceData, operator==

TEST(Vrad_EventStream_OffsetTimes, ShiftsAllAndAnnouncesNothing) {
  TestStream stream({{0, 1}, {10, 2}});
  Cmn_AssertRecorder const recorder;
  Ndo_Transaction transaction;
  stream.OffsetTimes(Ticks(-5));
  EXPECT_FALSE(Ndo_gManager.HasAnnounced(stream.NdoGetID()));
  EXPECT_EQ("-5:1 5:2", PrintStream(stream));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrad_EventStream_OffsetTimes, FirstEventInSamplesIsReportedAndShifted) {
  TestStream stream;
  stream.AddEvent(SysexAt(Sample(1), 1));
  stream.AddEvent(SysexAt(Sample(2), 2));
  Cmn_AssertRecorder const recorder;
  stream.OffsetTimes(Samples(10));
  EXPECT_EQ("11s:1 12s:2", PrintStream(stream));
  EXPECT_EQ(1, recorder.GetNum("iter->mTime.GetType() == Time_eType_Ticks"));
  EXPECT_EQ(1, recorder.GetNum());
}

TEST(Vrad_EventStream_OffsetTimes, SnapsWhileTickTimesMatter) {
  TickTimesMatterScope const scope;
  SnappingStream stream({{900, 1}, {1100, 2}, {2600, 3}});
  stream.OffsetTimes(Ticks(100));
  EXPECT_EQ("1000:1 1000:2 3000:3", PrintStream(stream));
}

TEST(Vrad_EventStream_OffsetTimes, LeavesASnapshotAlone) {
  TestStream stream({{0, 1}});
  std::unique_ptr<Ndo_State> const state(stream.NdoGetState());
  stream.OffsetTimes(Ticks(5));
  stream.NdoRestoreState(state.get());
  EXPECT_EQ("0:1", PrintStream(stream));
}

TEST(Vrad_EventStream_ReplaceData, TakesOverTheEventsAndKeepsItsSnapping) {
  TickTimesMatterScope const scope;
  TestStream stream({{5, 5}});
  SnappingStream const source({{0, 1}, {10, 2}});
  TestStream const more({{1400, 3}});
  stream.ReplaceData(&source);
  stream.AddFromStream(&more, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("0:1 10:2 1400:3", PrintStream(stream));
  EXPECT_EQ(2u, source.Size());
}

TEST(Vrad_EventStream_ReplaceData, AlwaysAnnounces) {
  TestStream stream;
  EXPECT_TRUE(Announces(stream, [&] { stream.ReplaceData(&stream); }));
}

TEST(Vrad_EventStream_Equality, ComparesSizesTimesAndEvents) {
  TestStream const stream({{10, 1}, {20, 2}});
  EXPECT_TRUE(stream == stream);
  EXPECT_TRUE(stream == TestStream({{10, 1}, {20, 2}}));
  EXPECT_FALSE(stream == TestStream({{10, 1}}));
  EXPECT_FALSE(stream == TestStream({{10, 1}, {21, 2}}));
  EXPECT_FALSE(stream == TestStream({{10, 1}, {20, 3}}));
  EXPECT_TRUE(TestStream() == TestStream());
}

TEST(Vrad_EventStream_Equality, SnappingAndIdentityTakeNoPart) {
  EXPECT_TRUE(TestStream({{10, 1}}) == SnappingStream({{10, 1}}));
  EXPECT_TRUE(TestStream({{10, 1}}) == TestStream({{10, 1}}, Ndo_Object::kNotUndoable));
}

TEST(Vrad_EventStream_Equality, ComparesTheLastKindsByTheirFields) {
  auto const note = [](float iFraction) {
    TestStream stream;
    stream.AddEvent(
        Vrae_TimedEvent(Tick(1), Vrae_PitchToMIDINoteWithDuration(60, Ticks(9), 1, 2, iFraction)));
    return stream;
  };
  auto const clip = [](char const * iName) {
    TestStream stream;
    stream.AddEvent(Vrae_TimedEvent(Tick(1), Vrae_ClipEvent(iName, Ticks(9))));
    return stream;
  };
  Cmn_AssertRecorder const recorder;
  EXPECT_TRUE(note(0.5f) == note(0.5f));
  EXPECT_FALSE(note(0.5f) == note(0.25f));
  EXPECT_TRUE(clip("a") == clip("a"));
  EXPECT_FALSE(clip("a") == clip("b"));
  EXPECT_FALSE(clip("a") == note(0.5f));
  EXPECT_EQ(0, recorder.GetNum());
}

// ---- Undo

TEST(Vrad_EventStream_Undo, RestoresEventsAndSnapping) {
  SnappingStream stream({{0, 1}, {10, 2}});
  Ndo_gManager.BeginTransaction();
  stream.AddEvent(SysexAt(5, 3));
  stream.EraseRange(Tick(10), Tick(10));
  Ndo_gManager.EndTransaction();
  EXPECT_EQ("0:1 5:3", PrintStream(stream));
  Ndo_gManager.Undo();
  EXPECT_EQ("0:1 10:2", PrintStream(stream));
  Ndo_gManager.Redo();
  EXPECT_EQ("0:1 5:3", PrintStream(stream));
  Ndo_gManager.ClearHistory();
}

TEST(Vrad_EventStream_Undo, StateOfAnotherClassThrows) {
  TestStream stream({{0, 1}});
  ForeignState state;
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(stream.NdoRestoreState(&state), Cmn_AssertException);
  ASSERT_EQ(1, recorder.GetNum("p"));
  EXPECT_TRUE(recorder.GetEntries()[0].mFlag);
  EXPECT_EQ("0:1", PrintStream(stream));
}

TEST(Vrad_EventStream_Undo, StateOfAnotherClassRestoresNothingWithThrowingOff) {
  TestStream stream({{0, 1}});
  ForeignState state;
  Cmn_AssertRecorder recorder;
  NotThrowingScope const scope;
  stream.NdoRestoreState(&state);
  EXPECT_EQ(1, recorder.GetNum("p"));
  EXPECT_EQ("0:1", PrintStream(stream));
}

TEST(Vrad_EventStream_Undo, StreamThatIsNotUndoableGivesAStateToo) {
  TestStream stream({{0, 1}}, Ndo_Object::kNotUndoable);
  std::unique_ptr<Ndo_State> const state(stream.NdoGetState());
  stream.Clear();
  stream.NdoRestoreState(state.get());
  EXPECT_EQ("0:1", PrintStream(stream));
}

TEST(Vrad_EventStream_Undo, BlankObjectOfAStateSnaps) {
  std::unique_ptr<Ndo_State> const state(TestStream().NdoGetState());
  std::unique_ptr<Ndo_Object> const blank(state->NdoReCreate());
  Vrad_EventStream & stream = dynamic_cast<Vrad_EventStream &>(*blank);
  EXPECT_FALSE(stream.NdoIsUndoable());
  TickTimesMatterScope const scope;
  TestStream const source({{1400, 1}});
  stream.AddFromStream(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("1000:1", PrintStream(stream));
}

TEST(Vrad_EventStream_Undo, SnapshotOfManyEventsIsNotACopy) {
  TestStream stream;
  for (int i = 0; i < 1000; ++i)
    stream.AddEvent(SysexAt(i, 1));
  RealtimeScope const scope;
  std::unique_ptr<Ndo_State> const state(stream.NdoGetState());
  EXPECT_EQ(1, scope.GetNumViolations());
}

// ---- Retrieval

struct Shift {
  Time_TypedLength mOffset;
  Time_Typed mMinTime = kFirst;
  Time_EType mType = kTicks;
  Time_Typed mWindowStart = kFirst;
  Time_Typed mWindowEnd = kLast;
};

std::string GetShort(Vrad_EventStream const & iStream, Time_Typed iStart, Time_Typed iEnd,
                     Time_Typed iWindowStart = kFirst, Time_Typed iWindowEnd = kLast,
                     Vrad_IRTProperties const * iPropertiesP = nullptr) {
  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  iStream.GetEventsInRange(&wrapper, iStart, iEnd, iWindowStart, iWindowEnd, iPropertiesP, 0);
  return PrintList(list);
}

template <class TList>
void GetInto(TList & oList, Vrad_EventStream const & iStream, Shift const & iShift,
             Vrad_IRTProperties const * iPropertiesP = nullptr, bool iFlag = false,
             int iIndex = 0) {
  Vrad_EventListWrapper wrapper(&oList);
  iStream.GetEventsInRange(&wrapper, Tick(0), Tick(1000000), iShift.mWindowStart, iShift.mWindowEnd,
                           iShift.mOffset, iShift.mMinTime, iShift.mType, iPropertiesP, iFlag,
                           iIndex);
}

template <class TList>
std::string Get(Vrad_EventStream const & iStream, Shift const & iShift,
                Vrad_IRTProperties const * iPropertiesP = nullptr) {
  TList list;
  GetInto(list, iStream, iShift, iPropertiesP);
  return PrintList(list);
}

std::string GetTimed(Vrad_EventStream const & iStream, Shift const & iShift,
                     Vrad_IRTProperties const * iPropertiesP = nullptr) {
  return Get<Vrae_TimedEventList>(iStream, iShift, iPropertiesP);
}

void DisplayInto(Vrad_DisplayItemList & oList, Vrad_EventStream const & iStream,
                 Shift const & iShift, Vrad_IRTProperties const * iPropertiesP = nullptr,
                 bool iFlag = false, int iIndex = 0) {
  iStream.GetEventsInRange(&oList, Tick(0), Tick(1000000), iShift.mWindowStart, iShift.mWindowEnd,
                           iShift.mOffset, iShift.mMinTime, iShift.mType, iPropertiesP, iFlag,
                           iIndex);
}

std::string Display(Vrad_EventStream const & iStream, Shift const & iShift,
                    Vrad_IRTProperties const * iPropertiesP = nullptr) {
  Vrad_DisplayItemList list;
  DisplayInto(list, iStream, iShift, iPropertiesP);
  return PrintList(list);
}

TestProperties MovingBy(long long iTicks) {
  return TestProperties(
      [iTicks](Vrad_ExtendedEvent & ioEvent, int) { ioEvent.mTime += Ticks(iTicks); });
}

TEST(Vrad_EventStream_Retrieval, GivesTheLaterAddedOfOneTimeFirst) {
  EXPECT_EQ("10:2 10:1", GetShort(TestStream({{10, 1}, {10, 2}}), Tick(0), Tick(99)));
}

TEST(Vrad_EventStream_Retrieval, RangeAndWindowAreHalfOpen) {
  TestStream const stream({{9, 1}, {10, 2}, {19, 3}, {20, 4}});
  EXPECT_EQ("10:2 19:3", GetShort(stream, Tick(10), Tick(20)));
  EXPECT_EQ("10:2 19:3", GetShort(stream, Tick(0), Tick(99), Tick(10), Tick(20)));
}

TEST(Vrad_EventStream_Retrieval, ShortFormPutsOutTheTypeOfTheStart) {
  TestStream const stream({{-40, 1}, {40, 2}});
  EXPECT_EQ("-40:1 40:2", GetShort(stream, Tick(-99), Tick(99)));
  EXPECT_EQ("-1s:1 1s:2", GetShort(stream, Sample(-9), Sample(9)));
}

TEST(Vrad_EventStream_Retrieval, ShortFormSetsTheIndexAndNoFlag) {
  TestStream const stream({{10, 1}});
  Vrad_DisplayItemList list;
  Vrad_EventListWrapper wrapper(&list);
  stream.GetEventsInRange(&wrapper, Tick(0), Tick(99), kFirst, kLast, nullptr, 42);
  ASSERT_EQ(1u, list.size());
  EXPECT_FALSE(list[0].mDisplayFlag);
  EXPECT_EQ(42, list[0].mDisplayValue);
}

TEST(Vrad_EventStream_Retrieval, OffsetIsTakenOff) {
  EXPECT_EQ("10:1 20:2", GetTimed(TestStream({{110, 1}, {120, 2}}), {Ticks(100)}));
}

TEST(Vrad_EventStream_Retrieval, EventBeforeTheFloorComesOutAtTheFloor) {
  TestStream const stream({{10, 1}, {20, 2}, {110, 3}});
  EXPECT_EQ("50:1 50:2 60:3", GetTimed(stream, {Ticks(50), Tick(50)}));
}

TEST(Vrad_EventStream_Retrieval, ConvertsAfterTheWindow) {
  TestStream const stream({{40, 1}, {80, 2}});
  EXPECT_EQ("1s:1", GetTimed(stream, {Ticks(0), kFirst, kSamples, Tick(0), Tick(41)}));
}

TEST(Vrad_EventStream_Retrieval, PropertiesMoveEventsOutOfTheWindowAndInto) {
  TestStream const stream({{10, 1}, {20, 2}});
  TestProperties const properties = MovingBy(85);
  EXPECT_EQ("95:1", GetTimed(stream, {Ticks(0), kFirst, kTicks, Tick(0), Tick(100)}, &properties));
  EXPECT_EQ("105:2",
            GetTimed(stream, {Ticks(0), kFirst, kTicks, Tick(100), Tick(200)}, &properties));
}

TEST(Vrad_EventStream_Retrieval, AsksPropertiesWithMask4AndWith16ForPolyPressure) {
  TestStream stream({{10, 1}});
  stream.AddEvent(Vrae_TimedEvent(Tick(20), Vrae_PolyPressureEvent(60, 5)));
  TestProperties const properties;
  GetTimed(stream, {}, &properties);
  EXPECT_EQ((std::vector<int>{4, 16, 4}), properties.mMasks);
}

TEST(Vrad_EventStream_Retrieval, FillsAnExtendedListWithPlainEvents) {
  Vrad_ExtendedEventList list;
  GetInto(list, TestStream({{10, 1}}), {});
  EXPECT_EQ("10:1", PrintList(list));
  EXPECT_FALSE(list[0].IsNoteWithDurationExtendedEvent());
}

TEST(Vrad_EventStream_Retrieval, DisplayListGetsTheTypeOfTheOffset) {
  TestStream const stream({{40, 1}});
  EXPECT_EQ("40:1/40:1", Get<Vrad_DisplayItemList>(stream, {Ticks(0), kFirst, kSamples}));
  EXPECT_EQ("1s:1/1s:1", Get<Vrad_DisplayItemList>(stream, {Samples(0), kFirst, kTicks}));
}

TEST(Vrad_EventStream_Retrieval, DisplayListGetsTheOriginalBeforeTheProperties) {
  TestStream const stream({{150, 1}});
  TestProperties const properties = MovingBy(40);
  EXPECT_EQ("90:1/50:1", Get<Vrad_DisplayItemList>(stream, {Ticks(100)}, &properties));
}

TEST(Vrad_EventStream_Display, DoesTheSameIntoADisplayList) {
  TestStream const stream({{-1, 0}, {0, 1}, {80, 2}, {160, 3}, {1000000, 4}});
  TestProperties const properties = MovingBy(40);
  EXPECT_EQ("80:1/40:1 80:2/40:2 120:3/80:3",
            Display(stream, {Ticks(80), Tick(40), kSamples}, &properties));
}

TEST(Vrad_EventStream_Display, ConvertsLastToTheTypeOfTheOffset) {
  TestStream const stream({{40, 1}, {79, 2}});
  EXPECT_EQ("1s:1/1s:1", Display(stream, {Samples(0), kFirst, kTicks, Tick(0), Tick(79)}));
}

TEST(Vrad_EventStream_Display, CarriesFlagIndexAndTheNewTime) {
  TestProperties const properties = MovingBy(5);
  Vrad_DisplayItemList list;
  DisplayInto(list, TestStream({{10, 1}}), {}, &properties, true, 42);
  ASSERT_EQ(1u, list.size());
  EXPECT_TRUE(list[0].mDisplayFlag);
  EXPECT_EQ(42, list[0].mDisplayValue);
  EXPECT_EQ(Tick(15), list[0].mTime);
}

// ---- The iterators

TEST(Vrad_EventStreamTimedEventsInRangeIter, DefaultOneHasNothing) {
  Vrad_EventStreamTimedEventsInRangeIter iter;
  ++iter;
  EXPECT_FALSE(iter.IsMore());
  EXPECT_EQ(Vrae_TimedEvent(), *iter);
}

TEST(Vrad_EventStreamTimedEventsInRangeIter, WalksAllOrARange) {
  TestStream stream({{9, 1}, {10, 2}, {20, 3}});
  stream.AddEvent(SysexAt(kLast, 4));
  Vrad_EventStreamTimedEventsInRangeIter all(&stream);
  EXPECT_EQ("9:1 10:2 20:3 9223372036854775807:4", PrintRest(all));
  Vrad_EventStreamTimedEventsInRangeIter range(&stream, Tick(10), Tick(20));
  EXPECT_EQ("10:2", PrintRest(range));
  EXPECT_EQ(Vrae_TimedEvent(), *range);
}

TEST(Vrad_EventStreamTimedEventsInRangeIter, CopyGoesOnByItself) {
  TestStream stream({{9, 1}, {10, 2}});
  Vrad_EventStreamTimedEventsInRangeIter iter(&stream);
  ++iter;
  Vrad_EventStreamTimedEventsInRangeIter copy(iter), assigned;
  assigned = iter;
  EXPECT_EQ("10:2", PrintRest(iter));
  EXPECT_EQ("10:2", PrintRest(copy));
  EXPECT_EQ("10:2", PrintRest(assigned));
}

TEST(Vrad_EventStreamExtendedEventsInRangeIter, DefaultOneHasNothing) {
  Vrad_EventStreamExtendedEventsInRangeIter iter;
  ++iter;
  EXPECT_FALSE(iter.IsMore());
  EXPECT_EQ(Vrae_TimedEvent(), *iter);
}

TEST(Vrad_EventStreamExtendedEventsInRangeIter, WalksARange) {
  TestStream stream({{9, 1}, {10, 2}, {20, 3}});
  Vrad_EventStreamExtendedEventsInRangeIter iter(&stream, Tick(10), Tick(20));
  Vrad_EventStreamExtendedEventsInRangeIter copy(iter);
  EXPECT_EQ("10:2", PrintRest(iter));
  EXPECT_EQ("10:2", PrintRest(copy));
  EXPECT_FALSE((*copy).IsNoteWithDurationExtendedEvent());
}

// ---- Real time

TEST(Vrad_EventStream_RealTime, RetrievalIntoAWarmListKeepsTheRules) {
  unsigned char const bytes[20] = {};
  TestStream stream;
  for (int i = 0; i < 300; ++i)
    stream.AddEvent(i % 2 ? SysexAt(i, 1) : Vrae_TimedEvent(Tick(i), Vrae_SysexEvent(20, bytes)));
  Vrae_TimedEventList list;
  GetInto(list, stream, {});
  list.clear();
  EXPECT_EQ("", RealtimeViolationsOf([&] { GetInto(list, stream, {}); }));
  EXPECT_EQ(300u, list.size());
}

}  // namespace
