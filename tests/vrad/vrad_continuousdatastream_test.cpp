#include "vrad/vrad_continuousdatastream.h"

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
#include "vrad/vrae_chasetracker.h"
#include "vrad/vrae_chasetrackermap.h"

namespace {

typedef std::initializer_list<std::pair<long long, int>> TickValues;

constexpr Time_EType kTicks = Time_eType_Ticks;
constexpr Time_EType kSamples = Time_eType_Samples;
Time_Typed const kFirst = Time_Typed::MinTime(kTicks);
Time_Typed const kLast = Time_Typed::MaxTime(kTicks);

Vrae_TimedEvent ControllerAt(long long iTick, int iValue) {
  return Vrae_TimedEvent(Tick(iTick), Vrae_ControllerEvent(7, static_cast<signed char>(iValue)));
}

struct TestStream : Vrad_ContinuousDataStream {
  TestStream(TickValues iValues = {}, EUndoFlag iFlag = kUndoable, bool iSnaps = false,
             Vrae_SubStream const & iSubStream = Vrae_SubStream::Controller(7))
      : Vrad_ContinuousDataStream(iSubStream, iFlag, iSnaps) {
    for (auto const & value : iValues)
      AddEvent(ControllerAt(value.first, value.second));
  }
};

std::string PrintStream(Vrad_ContinuousDataStream & ioStream) {
  Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(&ioStream);
  return PrintRest(iter);
}

/// A tracker that follows controller 7.
struct TestTracker {
  explicit TestTracker() : mTracker(&mMap, true) {}
  explicit TestTracker(int iValue) : TestTracker() {
    mTracker.SetActiveValue(Vrae_SubStream::Controller(7), iValue);
  }
  std::string PrintValue() const {
    Vrae_ChaseTracker_ChasingEntry entry;
    if (!mTracker.GetChasingEntry(&entry, Vrae_SubStream::Controller(7))) return "none";
    return (entry.mIsActive ? "active " : "idle ") + std::to_string(entry.mValue);
  }
  Vrae_ChaseTrackerMap mMap;
  Vrae_ChaseTracker mTracker;
};

/// The first playback form, with a window that takes everything.
std::string Play(Vrad_ContinuousDataStream const & iStream, Time_Typed iStart, Time_Typed iEnd,
                 Vrae_ChaseTracker * iTrackerP = nullptr,
                 Vrad_IRTProperties const * iPropertiesP = nullptr) {
  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  iStream.GetMidiEventsInRange(&wrapper, iStart, iEnd, kFirst, kLast, iTrackerP, nullptr,
                               iPropertiesP, false, 0);
  return PrintList(list);
}

/// The second playback form.
struct Shift {
  Time_TypedLength mOffset;
  Time_Typed mMinTime = kFirst;
  Time_EType mType = kTicks;
  Time_Typed mWindowStart = kFirst;
  Time_Typed mWindowEnd = kLast;
};

template <class TList>
void PlayInto(TList & oList, Vrad_ContinuousDataStream const & iStream, Shift const & iShift,
              Vrad_IRTProperties const * iPropertiesP = nullptr, bool iFlag = false,
              int iIndex = 0) {
  Vrad_EventListWrapper wrapper(&oList);
  iStream.GetMidiEventsInRange(&wrapper, Tick(0), Tick(1000000), iShift.mWindowStart,
                               iShift.mWindowEnd, nullptr, nullptr, iShift.mOffset, iShift.mMinTime,
                               iShift.mType, iPropertiesP, iFlag, iIndex);
}

std::string PlayShifted(Vrad_ContinuousDataStream const & iStream, Shift const & iShift,
                        Vrad_IRTProperties const * iPropertiesP = nullptr) {
  Vrae_TimedEventList list;
  PlayInto(list, iStream, iShift, iPropertiesP);
  return PrintList(list);
}

std::string PlayToDisplay(Vrad_ContinuousDataStream const & iStream, Shift const & iShift,
                          Vrad_IRTProperties const * iPropertiesP = nullptr) {
  Vrad_DisplayItemList list;
  PlayInto(list, iStream, iShift, iPropertiesP);
  return PrintList(list);
}

/// The display form.
void DisplayInto(Vrad_DisplayItemList & oList, Vrad_ContinuousDataStream const & iStream,
                 Shift const & iShift, Vrad_IRTProperties const * iPropertiesP = nullptr,
                 bool iFlag = false, int iIndex = 0) {
  iStream.GetMidiEventsInRange(&oList, Tick(0), Tick(1000000), iShift.mWindowStart,
                               iShift.mWindowEnd, iShift.mOffset, iShift.mMinTime, iShift.mType,
                               iPropertiesP, iFlag, iIndex);
}

std::string Display(Vrad_ContinuousDataStream const & iStream, Shift const & iShift,
                    Vrad_IRTProperties const * iPropertiesP = nullptr) {
  Vrad_DisplayItemList list;
  DisplayInto(list, iStream, iShift, iPropertiesP);
  return PrintList(list);
}

TestProperties MovingBy(long long iTicks) {
  return TestProperties([iTicks](Vrad_ExtendedEvent & ioEvent, int iMask) {
    if (iMask == 4) ioEvent.mTime += Ticks(iTicks);
  });
}

// ---- Construction and undo

TEST(Vrad_ContinuousDataStream, StartsEmptyWithDataOfTheSameUndoability) {
  Vrad_ContinuousDataStream const undoable(Vrae_SubStream::PitchBend(), Ndo_Object::kUndoable,
                                           true);
  EXPECT_TRUE(undoable.IsEmpty());
  EXPECT_EQ(Vrae_SubStream::PitchBend(), undoable.GetSubStream());
  EXPECT_NE(-1, undoable.GetDataID());
  EXPECT_NE(undoable.NdoGetID(), undoable.GetDataID());
  Vrad_ContinuousDataStream const other(Vrae_SubStream::PitchBend(), Ndo_Object::kNotUndoable,
                                        true);
  EXPECT_EQ(-1, other.NdoGetID());
  EXPECT_EQ(-1, other.GetDataID());
}

TEST(Vrad_ContinuousDataStream, CannotBeAssigned) {
  EXPECT_FALSE(std::is_copy_assignable_v<Vrad_ContinuousDataStream>);
}

TEST(Vrad_ContinuousDataStream, StateHasNoPublicConstructor) {
  EXPECT_FALSE(std::is_copy_constructible_v<Vrad_ContinuousDataStream_NdoState>);
  EXPECT_FALSE(std::is_default_constructible_v<Vrad_ContinuousDataStream_NdoState>);
}

TEST(Vrad_ContinuousDataStream, CopyHasTheContentsInDataOfItsOwn) {
  TestStream stream({{10, 1}, {20, 2}});
  Vrad_ContinuousDataStream copy(stream);
  EXPECT_EQ(Vrae_SubStream::Controller(7), copy.GetSubStream());
  EXPECT_NE(-1, copy.NdoGetID());
  EXPECT_NE(stream.NdoGetID(), copy.NdoGetID());
  EXPECT_NE(stream.GetDataID(), copy.GetDataID());
  copy.AddEvent(ControllerAt(30, 3));
  EXPECT_EQ("10:1 20:2 30:3", PrintStream(copy));
  EXPECT_EQ("10:1 20:2", PrintStream(stream));
}

TEST(Vrad_ContinuousDataStream, CopyTakesOverTheSnapping) {
  TickTimesMatterScope const scope;
  TestStream const stream({}, Ndo_Object::kNotUndoable, true);
  Vrad_ContinuousDataStream copy(stream);
  TestStream const source({{1400, 1}});
  copy.AddFromStream(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("1000:1", PrintStream(copy));
  EXPECT_EQ(-1, copy.NdoGetID());
  EXPECT_EQ(-1, copy.GetDataID());
}

TEST(Vrad_ContinuousDataStream, CopyingAnnouncesNothing) {
  TestStream const stream({{10, 1}});
  Ndo_Transaction transaction;
  Vrad_ContinuousDataStream const copy(stream);
  EXPECT_EQ(0, Ndo_gManager.GetNumAnnounced());
  EXPECT_FALSE(transaction.End());
}

TEST(Vrad_ContinuousDataStream, DestructorHandsItsDataOver) {
  auto stream = std::make_unique<TestStream>(TickValues{{10, 1}});
  long long const id = stream->GetDataID();
  stream.reset();
  EXPECT_TRUE(Ndo_gManager.IsKept(id));
  Ndo_gManager.DropUnreferenced();
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(id));
}

TEST(Vrad_ContinuousDataStream, EditsAnnounceTheDataAlone) {
  TestStream stream({{10, 1}});
  TestStream const source({{10, 1}, {30, 3}});
  Ndo_Transaction transaction;
  stream.AddEvent(ControllerAt(20, 2));
  stream.AddFromStream(&source, Tick(0), Tick(100), Ticks(0));
  stream.EraseFromStream(&source, Tick(0), Tick(15), Ticks(0));
  stream.EraseEvent(ControllerAt(20, 2));
  stream.EraseRange(Tick(0), Tick(100));
  stream.ReplaceData(&source);
  stream.OffsetTimes(Ticks(1));
  stream.Clear();
  EXPECT_FALSE(Ndo_gManager.HasAnnounced(stream.NdoGetID()));
  EXPECT_TRUE(Ndo_gManager.HasAnnounced(stream.GetDataID()));
  EXPECT_EQ(1, Ndo_gManager.GetNumAnnounced());
}

TEST(Vrad_ContinuousDataStream_Undo, StateNamesTheDataAndTheSubStream) {
  TestStream stream({{10, 1}});
  TestStream other({}, Ndo_Object::kUndoable, false, Vrae_SubStream::PitchBend());
  long long const otherData = other.GetDataID();
  std::unique_ptr<Ndo_State> const state(stream.NdoGetState());
  std::unique_ptr<Ndo_State> const otherState(other.NdoGetState());
  other.NdoRestoreState(state.get());
  EXPECT_EQ(stream.GetDataID(), other.GetDataID());
  EXPECT_EQ(Vrae_SubStream::Controller(7), other.GetSubStream());
  EXPECT_EQ("10:1", PrintStream(other));
  EXPECT_FALSE(Ndo_gManager.IsKept(otherData));
  other.NdoRestoreState(otherState.get());
  EXPECT_EQ(otherData, other.GetDataID());
}

TEST(Vrad_ContinuousDataStream_Undo, DataThatIsGoneRestoresAsNone) {
  TestStream stream({{10, 1}});
  auto other = std::make_unique<TestStream>(TickValues{{20, 2}});
  std::unique_ptr<Ndo_State> const state(other->NdoGetState());
  std::unique_ptr<Ndo_State> const own(stream.NdoGetState());
  other.reset();
  Ndo_gManager.DropUnreferenced();
  stream.NdoRestoreState(state.get());
  EXPECT_EQ(-1, stream.GetDataID());
  EXPECT_TRUE(stream.IsEmpty());
  EXPECT_EQ("", Play(stream, kFirst, kLast));
  stream.AddEvent(ControllerAt(1, 1));
  EXPECT_TRUE(stream.IsEmpty());
  stream.NdoRestoreState(own.get());
  EXPECT_EQ("10:1", PrintStream(stream));
}

TEST(Vrad_ContinuousDataStream_Undo, StreamThatIsNotUndoableGivesNoState) {
  TestStream stream({{10, 1}}, Ndo_Object::kNotUndoable);
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(stream.NdoGetState(), Cmn_AssertException);
  ASSERT_EQ(1, recorder.GetNum("! (iObjP.mCachedID == -1 && iObjP.mPtr != 0)"));
  EXPECT_FALSE(recorder.GetEntries()[0].mFlag);
}

TEST(Vrad_ContinuousDataStream_Undo, StateOfAnotherClassThrows) {
  TestStream stream({{10, 1}});
  ForeignState state;
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(stream.NdoRestoreState(&state), Cmn_AssertException);
  ASSERT_EQ(1, recorder.GetNum("p"));
  EXPECT_TRUE(recorder.GetEntries()[0].mFlag);
  EXPECT_EQ("10:1", PrintStream(stream));
}

TEST(Vrad_ContinuousDataStream_Undo, StateOfAnotherClassRestoresNothingWithThrowingOff) {
  TestStream stream({{10, 1}});
  ForeignState state;
  Cmn_AssertRecorder recorder;
  NotThrowingScope const scope;
  stream.NdoRestoreState(&state);
  EXPECT_EQ(1, recorder.GetNum("p"));
  EXPECT_EQ("10:1", PrintStream(stream));
}

TEST(Vrad_ContinuousDataStream_Undo, ReCreatedStreamFindsItsData) {
  auto stream = std::make_unique<TestStream>(TickValues{{10, 1}});
  long long const id = stream->NdoGetID();
  long long const data = stream->GetDataID();
  std::unique_ptr<Ndo_State> const state(stream->NdoGetState());
  stream.reset();
  std::unique_ptr<Ndo_Object> const again(Ndo_gManager.ReCreate(state.get(), id));
  Vrad_ContinuousDataStream & restored = dynamic_cast<Vrad_ContinuousDataStream &>(*again);
  EXPECT_EQ(data, restored.GetDataID());
  EXPECT_FALSE(Ndo_gManager.IsKept(data));
  EXPECT_EQ("10:1", PrintStream(restored));
}

TEST(Vrad_ContinuousDataStream_Undo, UndoneEditsComeBack) {
  TestStream stream({{10, 1}});
  Ndo_gManager.BeginTransaction();
  stream.AddEvent(ControllerAt(20, 2));
  stream.EraseEvent(ControllerAt(10, 1));
  Ndo_gManager.EndTransaction();
  EXPECT_EQ("20:2", PrintStream(stream));
  Ndo_gManager.Undo();
  EXPECT_EQ("10:1", PrintStream(stream));
  Ndo_gManager.Redo();
  EXPECT_EQ("20:2", PrintStream(stream));
  Ndo_gManager.ClearHistory();
}

// ---- Edits

TEST(Vrad_ContinuousDataStream_AddEvent, TakesTheEventsValue) {
  Vrad_ContinuousDataStream stream(Vrae_SubStream::PitchBend(), Ndo_Object::kUndoable, false);
  stream.AddEvent(Vrae_TimedEvent(Tick(10), Vrae_PitchBendEvent(-300)));
  EXPECT_EQ("10:-300", PrintStream(stream));
}

TEST(Vrad_ContinuousDataStream_EraseEvent, RemovesWhateverStandsAtTheTime) {
  TestStream stream({{9, 1}, {10, 2}, {11, 3}});
  stream.EraseEvent(ControllerAt(10, 99));
  EXPECT_EQ("9:1 11:3", PrintStream(stream));
}

TEST(Vrad_ContinuousDataStream_EraseEvent, TakesOneUnitOfTheEventsType) {
  TestStream stream({{39, 1}, {40, 2}, {79, 3}, {80, 4}});
  stream.EraseEvent(Vrae_TimedEvent(Sample(1), Vrae_ControllerEvent(7, 2)));
  EXPECT_EQ("39:1 80:4", PrintStream(stream));
}

TEST(Vrad_ContinuousDataStream, ForwardsTheBulkEdits) {
  TestStream stream({{10, 1}, {20, 2}, {30, 3}});
  TestStream const source({{5, 9}, {10, 8}});
  stream.AddFromStream(&source, Tick(0), Tick(10), Ticks(10));
  EXPECT_EQ("10:1 15:9 20:2 30:3", PrintStream(stream));
  stream.EraseFromStream(&source, Tick(0), Tick(10), Ticks(10));
  EXPECT_EQ("10:1 20:2 30:3", PrintStream(stream));
  stream.EraseRange(Tick(20), Tick(30));
  EXPECT_EQ("10:1 30:3", PrintStream(stream));
  stream.OffsetTimes(Ticks(5));
  EXPECT_EQ("15:1 35:3", PrintStream(stream));
  stream.ReplaceData(&source);
  EXPECT_EQ("5:9 10:8", PrintStream(stream));
  stream.Clear();
  EXPECT_TRUE(stream.IsEmpty());
}

TEST(Vrad_ContinuousDataStream_ReplaceData, TakesOverTheSnapping) {
  TickTimesMatterScope const scope;
  TestStream stream;
  TestStream const snapping({}, Ndo_Object::kUndoable, true);
  TestStream const source({{1400, 1}});
  stream.ReplaceData(&snapping);
  stream.AddFromStream(&source, Tick(0), Tick(2000), Ticks(0));
  EXPECT_EQ("1000:1", PrintStream(stream));
}

// ---- Queries

TEST(Vrad_ContinuousDataStream_IsEventInRange, StartAtTheOnlySegmentIsTrueEndThereFalse) {
  TestStream const stream({{10, 1}});
  EXPECT_TRUE(stream.IsEventInRange(Tick(10), Tick(11)));
  EXPECT_FALSE(stream.IsEventInRange(Tick(0), Tick(10)));
  EXPECT_FALSE(stream.IsEventInRange(Tick(11), Tick(20)));
  EXPECT_FALSE(TestStream().IsEventInRange(kFirst, kLast));
}

TEST(Vrad_ContinuousDataStream_GetLastValueChangeBeforeTime, IsThatOfTheData) {
  TestStream const stream({{10, 1}});
  Time_Typed time;
  int value = 0;
  EXPECT_FALSE(stream.GetLastValueChangeBeforeTime(&time, &value, Tick(10)));
  EXPECT_TRUE(stream.GetLastValueChangeBeforeTime(&time, &value, Tick(11)));
  EXPECT_EQ(Tick(10), time);
  EXPECT_EQ(1, value);
}

TEST(Vrad_ContinuousDataStream_AccumulateChaseStateAtTime, FindsAChangeExactlyAtTheTime) {
  TestStream const stream({{10, 1}, {20, 2}});
  TestTracker tracker;
  stream.AccumulateChaseStateAtTime(&tracker.mTracker, Tick(20), Tick(0), Ticks(0));
  EXPECT_EQ("active 2", tracker.PrintValue());
  TestTracker before;
  stream.AccumulateChaseStateAtTime(&before.mTracker, Tick(19), Tick(0), Ticks(0));
  EXPECT_EQ("active 1", before.PrintValue());
}

TEST(Vrad_ContinuousDataStream_AccumulateChaseStateAtTime, IgnoresAChangeEarlierThanTheLimit) {
  TestStream const stream({{10, 1}});
  TestTracker tracker;
  stream.AccumulateChaseStateAtTime(&tracker.mTracker, Tick(20), Tick(11), Ticks(0));
  EXPECT_EQ("idle 0", tracker.PrintValue());
  stream.AccumulateChaseStateAtTime(&tracker.mTracker, Tick(20), Tick(10), Ticks(0));
  EXPECT_EQ("active 1", tracker.PrintValue());
}

TEST(Vrad_ContinuousDataStream_AccumulateChaseStateAtTime, KeepsTheLaterValueInEitherOrder) {
  TestStream const early({{10, 1}}), late({{20, 2}});
  for (bool const isLateFirst : {false, true}) {
    TestTracker tracker;
    (isLateFirst ? late : early)
        .AccumulateChaseStateAtTime(&tracker.mTracker, Tick(50), Tick(0), Ticks(0));
    (isLateFirst ? early : late)
        .AccumulateChaseStateAtTime(&tracker.mTracker, Tick(50), Tick(0), Ticks(0));
    EXPECT_EQ("active 2", tracker.PrintValue());
  }
}

TEST(Vrad_ContinuousDataStream_AccumulateChaseStateAtTime, TellsTheTimePlusTheOffset) {
  TestStream const early({{10, 1}}), late({{20, 2}});
  TestTracker tracker;
  early.AccumulateChaseStateAtTime(&tracker.mTracker, Tick(50), Tick(0), Ticks(100));
  late.AccumulateChaseStateAtTime(&tracker.mTracker, Tick(50), Tick(0), Ticks(0));
  EXPECT_EQ("active 1", tracker.PrintValue());
}

TEST(Vrad_ContinuousDataStream_AccumulateChaseStateAtTime, TrackerThatDoesNotChaseIsLeftAlone) {
  TestStream const stream({{10, 1}});
  TestTracker tracker;
  tracker.mMap.SetStandardReleasingNoChasing();
  Vrae_ChaseTracker releasing(&tracker.mMap, true);
  stream.AccumulateChaseStateAtTime(&releasing, Tick(50), Tick(0), Ticks(0));
  EXPECT_FALSE(releasing.IsActive(Vrae_SubStream::Controller(7)));
}

// ---- Playback

TEST(Vrad_ContinuousDataStream_Playback, GivesTheStartAndNotTheEnd) {
  TestStream const stream({{9, 1}, {10, 2}, {19, 3}, {20, 4}});
  EXPECT_EQ("10:2 19:3", Play(stream, Tick(10), Tick(20)));
}

TEST(Vrad_ContinuousDataStream_Playback, RangeWithNothingInItGivesNothing) {
  TestStream const stream({{10, 1}, {20, 2}});
  EXPECT_EQ("", Play(stream, Tick(0), Tick(10)));
  EXPECT_EQ("", Play(stream, Tick(11), Tick(20)));
  EXPECT_EQ("", Play(stream, Tick(21), Tick(99)));
}

TEST(Vrad_ContinuousDataStream_Playback, LeavesOutTheChasedValueExactlyAtTheStart) {
  TestStream const stream({{10, 5}, {20, 5}});
  TestTracker tracker(5);
  EXPECT_EQ("20:5", Play(stream, Tick(10), Tick(30), &tracker.mTracker));
}

TEST(Vrad_ContinuousDataStream_Playback, SendsADifferingValueAtTheStart) {
  TestStream const stream({{10, 5}});
  TestTracker tracker(6);
  EXPECT_EQ("10:5", Play(stream, Tick(10), Tick(30), &tracker.mTracker));
}

TEST(Vrad_ContinuousDataStream_Playback, SendsTheValueToAnInactiveEntry) {
  TestStream const stream({{10, 0}});
  TestTracker tracker;
  EXPECT_EQ("10:0", Play(stream, Tick(10), Tick(30), &tracker.mTracker));
}

TEST(Vrad_ContinuousDataStream_Playback, ReleaseOnlyEntryNeverTakesTheShortCut) {
  TestStream stream({}, Ndo_Object::kUndoable, false, Vrae_SubStream::Controller(64));
  stream.AddEvent(Vrae_TimedEvent(Tick(10), Vrae_ControllerEvent(64, 0)));
  TestTracker tracker;
  tracker.mMap.SetStandardReleasingNoChasing();
  Vrae_ChaseTracker releasing(&tracker.mMap, true);
  releasing.TrackValue(Vrae_SubStream::Controller(64), 0);
  ASSERT_TRUE(releasing.IsActive(Vrae_SubStream::Controller(64)));
  EXPECT_EQ("10:0", Play(stream, Tick(10), Tick(30), &releasing));
}

TEST(Vrad_ContinuousDataStream_Playback, DoesNotWriteToTheTracker) {
  TestStream const stream({{10, 6}});
  TestTracker tracker(5);
  Play(stream, Tick(0), Tick(30), &tracker.mTracker);
  EXPECT_EQ("active 5", tracker.PrintValue());
}

TEST(Vrad_ContinuousDataStream_Playback, ChasedUnitIsThatOfTheStart) {
  TestStream const stream({{40, 5}, {60, 5}, {80, 5}});
  TestTracker tracker(5);
  EXPECT_EQ("2s:5", Play(stream, Sample(1), Sample(3), &tracker.mTracker));
}

TEST(Vrad_ContinuousDataStream_Playback, FirstFormPutsOutTheTypeOfTheStart) {
  TestStream const stream({{40, 1}, {80, 2}});
  EXPECT_EQ("1s:1 2s:2", Play(stream, Sample(0), Sample(100)));
}

TEST(Vrad_ContinuousDataStream_Playback, FirstFormShiftsAndClampsNothing) {
  TestStream const stream({{-100, 1}, {0, 2}});
  EXPECT_EQ("-100:1 0:2", Play(stream, Tick(-1000), Tick(1000)));
}

TEST(Vrad_ContinuousDataStream_Playback, WindowIsHalfOpen) {
  TestStream const stream({{9, 1}, {10, 2}, {19, 3}, {20, 4}});
  EXPECT_EQ("10:2 19:3", PlayShifted(stream, {Ticks(0), kFirst, kTicks, Tick(10), Tick(20)}));
}

TEST(Vrad_ContinuousDataStream_Playback, OffsetIsTakenOff) {
  TestStream const stream({{110, 1}, {120, 2}});
  EXPECT_EQ("10:1 20:2", PlayShifted(stream, {Ticks(100)}));
}

TEST(Vrad_ContinuousDataStream_Playback, WhatComesBeforeTheFloorMovesUpInStoreOrder) {
  TestStream const stream({{10, 1}, {20, 2}, {100, 3}, {110, 4}});
  EXPECT_EQ("50:1 50:2 50:3 60:4", PlayShifted(stream, {Ticks(50), Tick(50)}));
}

TEST(Vrad_ContinuousDataStream_Playback, ConvertsAfterTheWindow) {
  TestStream const stream({{40, 1}, {80, 2}});
  EXPECT_EQ("1s:1", PlayShifted(stream, {Ticks(0), kFirst, kSamples, Tick(0), Tick(41)}));
}

TEST(Vrad_ContinuousDataStream_Playback, PropertyThatMovesAnEventOutOfTheWindowDropsIt) {
  TestStream const stream({{10, 1}, {20, 2}});
  TestProperties const properties = MovingBy(85);
  EXPECT_EQ("95:1",
            PlayShifted(stream, {Ticks(0), kFirst, kTicks, Tick(0), Tick(100)}, &properties));
}

TEST(Vrad_ContinuousDataStream_Playback, PropertyThatMovesAnEventIntoTheWindowKeepsIt) {
  TestStream const stream({{10, 1}});
  TestProperties const properties = MovingBy(90);
  EXPECT_EQ("100:1",
            PlayShifted(stream, {Ticks(0), kFirst, kTicks, Tick(100), Tick(200)}, &properties));
}

TEST(Vrad_ContinuousDataStream_Playback, AsksPropertiesWithMask4) {
  TestStream const stream({{10, 1}, {20, 2}});
  TestProperties const properties;
  Play(stream, Tick(0), Tick(100), nullptr, &properties);
  EXPECT_EQ((std::vector<int>{4, 4}), properties.mMasks);
}

TEST(Vrad_ContinuousDataStream_Playback, AsksWithMask16FirstForPolyPressure) {
  Vrad_ContinuousDataStream stream(Vrae_SubStream::PolyPressure(60), Ndo_Object::kUndoable, false);
  stream.AddEvent(Vrae_TimedEvent(Tick(10), Vrae_PolyPressureEvent(60, 5)));
  TestProperties const properties;
  EXPECT_EQ("10:5", Play(stream, Tick(0), Tick(100), nullptr, &properties));
  EXPECT_EQ((std::vector<int>{16, 4}), properties.mMasks);
}

TEST(Vrad_ContinuousDataStream_Playback, ValueOutOfRangeIsReported) {
  Vrad_ContinuousDataStream stream(Vrae_SubStream::PitchBend(), Ndo_Object::kUndoable, false);
  stream.AddEvent(Vrae_TimedEvent(Tick(10), Vrae_PitchBendEvent(8191)));
  TestStream narrow({}, Ndo_Object::kUndoable, false, Vrae_SubStream::MonoPressure());
  narrow.ReplaceData(&stream);
  Cmn_AssertRecorder const recorder;
  Play(narrow, Tick(0), Tick(100));
  EXPECT_EQ(1, recorder.GetNum("iValue >= mTypeP->GetValueRange().mMin && "
                               "iValue <= mTypeP->GetValueRange().mMax"));
}

TEST(Vrad_ContinuousDataStream_Playback, AppendsToWhatTheListHolds) {
  TestStream const stream({{10, 1}});
  Vrae_TimedEventList list;
  list.push_back(ControllerAt(99, 9));
  PlayInto(list, stream, {});
  EXPECT_EQ("99:9 10:1", PrintList(list));
}

TEST(Vrad_ContinuousDataStream_Playback, FillsAnExtendedListWithPlainEvents) {
  TestStream const stream({{10, 1}});
  Vrad_ExtendedEventList list;
  PlayInto(list, stream, {});
  EXPECT_EQ("10:1", PrintList(list));
  EXPECT_FALSE(list[0].IsNoteWithDurationExtendedEvent());
}

// ---- Playback into a display list

TEST(Vrad_ContinuousDataStream_PlaybackToDisplay, OriginalIsTheEventBeforeTheProperties) {
  TestStream const stream({{110, 1}});
  TestProperties const properties([](Vrad_ExtendedEvent & ioEvent, int) {
    ioEvent.mTime += Ticks(1);
    ioEvent.mEvent.mU.mController.mValue = 9;
  });
  EXPECT_EQ("11:9/10:1", PlayToDisplay(stream, {Ticks(100)}, &properties));
}

TEST(Vrad_ContinuousDataStream_PlaybackToDisplay, ConvertsToTheTypeOfTheOffset) {
  TestStream const stream({{40, 1}, {80, 2}});
  EXPECT_EQ("40:1/40:1 80:2/80:2", PlayToDisplay(stream, {Ticks(0), kFirst, kSamples}));
  EXPECT_EQ("1s:1/1s:1 2s:2/2s:2", PlayToDisplay(stream, {Samples(0), kFirst, kTicks}));
}

TEST(Vrad_ContinuousDataStream_PlaybackToDisplay, TestsTheWindowBeforeConverting) {
  TestStream const stream({{40, 1}, {79, 2}});
  EXPECT_EQ("1s:1/1s:1", PlayToDisplay(stream, {Samples(0), kFirst, kTicks, Tick(0), Tick(79)}));
}

TEST(Vrad_ContinuousDataStream_PlaybackToDisplay, CarriesFlagIndexAndTheNewTime) {
  TestStream const stream({{10, 1}});
  TestProperties const properties = MovingBy(5);
  Vrad_DisplayItemList list;
  PlayInto(list, stream, {}, &properties, true, 42);
  ASSERT_EQ(1u, list.size());
  EXPECT_TRUE(list[0].mDisplayFlag);
  EXPECT_EQ(42, list[0].mDisplayValue);
  EXPECT_EQ(Tick(15), list[0].mTime);
}

// ---- Display

TEST(Vrad_ContinuousDataStream_Display, GivesTheStartAndNotTheEnd) {
  TestStream const stream({{-1, 1}, {0, 2}, {999999, 3}, {1000000, 4}});
  EXPECT_EQ("0:2/0:2 999999:3/999999:3", Display(stream, {}));
}

TEST(Vrad_ContinuousDataStream_Display, ShiftsAndClamps) {
  TestStream const stream({{10, 1}, {110, 2}});
  EXPECT_EQ("0:1/0:1 10:2/10:2", Display(stream, {Ticks(100), Tick(0)}));
}

TEST(Vrad_ContinuousDataStream_Display, ConvertsBeforePropertiesAndWindow) {
  TestStream const stream({{40, 1}, {79, 2}, {80, 3}});
  TestProperties const properties(
      [](Vrad_ExtendedEvent & ioEvent, int) { ioEvent.mTime += Samples(10); });
  EXPECT_EQ("11s:1/1s:1 11s:2/1s:2",
            Display(stream, {Ticks(0), kFirst, kSamples, Sample(11), Sample(12)}, &properties));
}

TEST(Vrad_ContinuousDataStream_Display, WindowIsTestedOnTheNewEvent) {
  TestStream const stream({{10, 1}, {20, 2}});
  TestProperties const properties = MovingBy(100);
  EXPECT_EQ("110:1/10:1",
            Display(stream, {Ticks(0), kFirst, kTicks, Tick(110), Tick(120)}, &properties));
}

TEST(Vrad_ContinuousDataStream_Display, CarriesFlagIndexAndTheNewTime) {
  TestStream const stream({{10, 1}});
  TestProperties const properties = MovingBy(5);
  Vrad_DisplayItemList list;
  DisplayInto(list, stream, {}, &properties, true, 42);
  ASSERT_EQ(1u, list.size());
  EXPECT_TRUE(list[0].mDisplayFlag);
  EXPECT_EQ(42, list[0].mDisplayValue);
  EXPECT_EQ(Tick(15), list[0].mTime);
}

TEST(Vrad_ContinuousDataStream_Display, AsksWithMask16FirstForPolyPressure) {
  Vrad_ContinuousDataStream stream(Vrae_SubStream::PolyPressure(60), Ndo_Object::kUndoable, false);
  stream.AddEvent(Vrae_TimedEvent(Tick(10), Vrae_PolyPressureEvent(60, 5)));
  TestProperties const properties;
  Display(stream, {}, &properties);
  EXPECT_EQ((std::vector<int>{16, 4}), properties.mMasks);
}

// ---- The iterators

TEST(Vrad_ContinuousDataStreamTimedEventsInRangeIter, DefaultOneHasNothing) {
  Vrad_ContinuousDataStreamTimedEventsInRangeIter iter;
  ++iter;
  EXPECT_FALSE(iter.IsMore());
  EXPECT_EQ(Vrae_TimedEvent(), *iter);
}

TEST(Vrad_ContinuousDataStreamTimedEventsInRangeIter, WithoutAStreamHasNothing) {
  Vrad_ContinuousDataStream * const noneP = nullptr;
  EXPECT_FALSE(Vrad_ContinuousDataStreamTimedEventsInRangeIter(noneP).IsMore());
  EXPECT_FALSE(Vrad_ContinuousDataStreamTimedEventsInRangeIter(noneP, Tick(0), Tick(9)).IsMore());
}

TEST(Vrad_ContinuousDataStreamTimedEventsInRangeIter, WalksTheWholeStreamAndARange) {
  TestStream stream({{9, 1}, {10, 2}, {20, 3}});
  Vrad_ContinuousDataStreamTimedEventsInRangeIter all(&stream);
  EXPECT_EQ("9:1 10:2 20:3", PrintRest(all));
  Vrad_ContinuousDataStreamTimedEventsInRangeIter range(&stream, Tick(10), Tick(20));
  EXPECT_EQ("10:2", PrintRest(range));
}

TEST(Vrad_ContinuousDataStreamTimedEventsInRangeIter, CopyGoesOnByItself) {
  TestStream stream({{9, 1}, {10, 2}, {20, 3}});
  Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(&stream);
  ++iter;
  Vrad_ContinuousDataStreamTimedEventsInRangeIter copy(iter), assigned;
  assigned = iter;
  EXPECT_EQ("10:2 20:3", PrintRest(iter));
  EXPECT_EQ("10:2 20:3", PrintRest(copy));
  EXPECT_EQ("10:2 20:3", PrintRest(assigned));
}

TEST(Vrad_ContinuousDataStreamExtendedEventsInRangeIter, DefaultOneHasNothing) {
  Vrad_ContinuousDataStreamExtendedEventsInRangeIter iter;
  ++iter;
  EXPECT_FALSE(iter.IsMore());
  EXPECT_EQ(Vrae_TimedEvent(), *iter);
}

TEST(Vrad_ContinuousDataStreamExtendedEventsInRangeIter, WithoutAStreamHasNothing) {
  Vrad_ContinuousDataStream * const noneP = nullptr;
  EXPECT_FALSE(Vrad_ContinuousDataStreamExtendedEventsInRangeIter(noneP).IsMore());
  EXPECT_FALSE(
      Vrad_ContinuousDataStreamExtendedEventsInRangeIter(noneP, Tick(0), Tick(9)).IsMore());
}

TEST(Vrad_ContinuousDataStreamExtendedEventsInRangeIter, WalksTheWholeStreamAndARange) {
  TestStream stream({{9, 1}, {10, 2}, {20, 3}});
  Vrad_ContinuousDataStreamExtendedEventsInRangeIter all(&stream);
  EXPECT_EQ("9:1 10:2 20:3", PrintRest(all));
  Vrad_ContinuousDataStreamExtendedEventsInRangeIter range(&stream, Tick(10), Tick(20));
  EXPECT_EQ("10:2", PrintRest(range));
}

TEST(Vrad_ContinuousDataStreamExtendedEventsInRangeIter, CopyGoesOnByItself) {
  TestStream stream({{9, 1}, {10, 2}, {20, 3}});
  Vrad_ContinuousDataStreamExtendedEventsInRangeIter iter(&stream);
  ++iter;
  Vrad_ContinuousDataStreamExtendedEventsInRangeIter copy(iter), assigned;
  assigned = iter;
  EXPECT_EQ("10:2 20:3", PrintRest(iter));
  EXPECT_EQ("10:2 20:3", PrintRest(copy));
  EXPECT_EQ("10:2 20:3", PrintRest(assigned));
}

// ---- Real time

TEST(Vrad_ContinuousDataStream_RealTime, RetrievalIntoAWarmListKeepsTheRules) {
  TestStream stream;
  for (int i = 0; i < 2000; ++i)
    stream.AddEvent(ControllerAt(i * 10, i % 128));
  TestTracker tracker(0);
  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  auto const retrieve = [&] {
    stream.GetMidiEventsInRange(&wrapper, Sample(100), Sample(356), kFirst, kLast,
                                &tracker.mTracker, &tracker.mMap, Ticks(100), Tick(0), kSamples,
                                nullptr, false, 0);
  };
  retrieve();
  list.clear();
  EXPECT_EQ("", RealtimeViolationsOf(retrieve));
  EXPECT_EQ(1024u, list.size());
}

TEST(Vrad_ContinuousDataStream_RealTime, RetrievalIntoAWarmDisplayListKeepsTheRules) {
  TestStream stream;
  for (int i = 0; i < 2000; ++i)
    stream.AddEvent(ControllerAt(i * 10, i % 128));
  Vrad_DisplayItemList list;
  DisplayInto(list, stream, {});
  list.clear();
  EXPECT_EQ("", RealtimeViolationsOf([&] { DisplayInto(list, stream, {}); }));
  EXPECT_EQ(2000u, list.size());
}

TEST(Vrad_ContinuousDataStream_RealTime, ChasingKeepsTheRules) {
  TestStream stream;
  for (int i = 0; i < 2000; ++i)
    stream.AddEvent(ControllerAt(i * 10, i % 128));
  TestTracker tracker;
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              stream.AccumulateChaseStateAtTime(&tracker.mTracker, Tick(777), Tick(0), Ticks(0));
            }));
  EXPECT_EQ("active 77", tracker.PrintValue());
}

}  // namespace
