#include "vrad/vrad_extendedeventlist.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "cmn/cmn_assert.h"
#include "support/realtime_scope.h"
#include "support/throwing_off.h"

namespace {

constexpr char const * kNewUnitText = "newEvent.mTime.GetType() == Time_eType_Ticks || "
                                      "newEvent.mTime.GetType() == Time_eType_Samples";
constexpr char const * kOrigUnitText = "origEvent.mTime.GetType() == Time_eType_Ticks || "
                                       "origEvent.mTime.GetType() == Time_eType_Samples";

Time_Typed Tick(long long iCount) {
  return Time_Typed(iCount, Time_eType_Ticks);
}

Vrae_Event Note(signed char iPitch = 60) {
  return Vrae_NoteWithDurationEvent(iPitch, Time_TypedLength(480, Time_eType_Ticks), 80, 64);
}

Vrae_Event Controller(signed char iValue = 100) {
  return Vrae_ControllerEvent(7, iValue);
}

Vrae_Event FractionalNote() {
  return Vrae_PitchToMIDINoteWithDuration(60, Time_TypedLength(480, Time_eType_Ticks), 80, 64,
                                          0.5f);
}

Vrae_Event LongSysex() {
  std::vector<unsigned char> const contents(20, 0x11);
  return Vrae_SysexEvent(20, contents.data());
}

Vrae_SourceStamp Stamp(int iFirst) {
  Vrae_SourceStamp stamp;
  stamp.mInputID = Vras_InputID(iFirst, 0);
  return stamp;
}

Vrad_DisplayItem Item(Time_Typed iTime, Vrae_Event const & iEvent) {
  Vrad_ExtendedEvent const event(iTime, iEvent);
  return Vrad_DisplayItem(event, event, false, 0);
}

Vrad_NoteWithDurationExtendedEvent ExtendedNote(long long iTick, bool iMuted) {
  return Vrad_NoteWithDurationExtendedEvent(Tick(iTick), Note().AsNoteWithDuration(), iMuted);
}

std::string Times(Vrad_EventListWrapper & ioWrapper) {
  std::string text;
  for (unsigned long long i = 0; i < ioWrapper.size(); ++i) {
    Time_Typed const time =
        ioWrapper.IsDisplayList() ? ioWrapper.GetDisplayItem(i).mTime : ioWrapper[i].mTime;
    text += (i ? " " : "") + std::to_string(time.AsInt64());
  }
  return text;
}

// One list of each kind, with its wrapper.
struct Lists : testing::Test {
  Vrae_TimedEventList mTimed;
  Vrad_ExtendedEventList mExt;
  Vrad_DisplayItemList mDisplay;
  Vrad_EventListWrapper mTimedWrapper{&mTimed};
  Vrad_EventListWrapper mExtWrapper{&mExt};
  Vrad_EventListWrapper mDisplayWrapper{&mDisplay};
  Vrad_EventListWrapper mNoWrapper{static_cast<Vrad_DisplayItemList *>(nullptr)};

  std::vector<Vrad_EventListWrapper> All() const {
    return {mTimedWrapper, mExtWrapper, mDisplayWrapper};
  }
  static void Add(Vrad_EventListWrapper & ioWrapper, Time_Typed iTime, Vrae_Event const & iEvent) {
    ioWrapper.push_back(Vrad_ExtendedEvent(iTime, iEvent));
    ioWrapper.push_back(Item(iTime, iEvent));
  }
  static void AddTicks(Vrad_EventListWrapper & ioWrapper, std::vector<long long> const & iTicks) {
    for (long long const tick : iTicks)
      Add(ioWrapper, Tick(tick), Note());
  }
};

typedef Lists Vrad_EventListWrapper_Access;
typedef Lists Vrad_EventListWrapper_PushBack;
typedef Lists Vrad_EventListWrapper_Sort;
typedef Lists Vrad_EventListWrapper_RealTime;

class DisplaySwitch {
public:
  explicit DisplaySwitch(bool iEffects) : mFormer(Vrad_DisplayItem::sMIDIDisplayPropertyEffects) {
    Vrad_DisplayItem::sMIDIDisplayPropertyEffects = iEffects;
  }
  ~DisplaySwitch() { Vrad_DisplayItem::sMIDIDisplayPropertyEffects = mFormer; }
  DisplaySwitch(DisplaySwitch const &) = delete;
  DisplaySwitch & operator=(DisplaySwitch const &) = delete;

private:
  bool mFormer;
};

}  // namespace

// ---- Display items ----

TEST(Vrad_DisplayItem, StartsEmpty) {
  Vrad_DisplayItem const item;
  EXPECT_EQ(0, item.mTime.AsInt64());
  EXPECT_EQ(Time_Typed().GetType(), item.mTime.GetType());
  EXPECT_EQ(Vrae_Event::kNoEvent, item.mNewEvent.mEvent.GetType());
  EXPECT_EQ(Vrae_Event::kNoEvent, item.mOrigEvent.mEvent.GetType());
  EXPECT_FALSE(item.mDisplayFlag);
  EXPECT_EQ(0, item.mDisplayValue);
}

TEST(Vrad_DisplayItem, KeepsBothEventsFlagAndValue) {
  Cmn_AssertRecorder recorder;
  Vrad_DisplayItem const item(Vrad_ExtendedEvent(Tick(5), Note()),
                              Vrad_ExtendedEvent(Tick(3), Controller()), true, -7);
  EXPECT_EQ(5, item.mTime.AsInt64()) << "the new event's";
  EXPECT_TRUE(item.mNewEvent.mEvent == Note());
  EXPECT_TRUE(item.mOrigEvent.mEvent == Controller());
  EXPECT_EQ(3, item.mOrigEvent.mTime.AsInt64());
  EXPECT_TRUE(item.mDisplayFlag);
  EXPECT_EQ(-7, item.mDisplayValue);
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrad_DisplayItem, ReportsTimesInNeitherUnitAndStoresThem) {
  for (int unit : {2, -1}) {
    Time_Typed const odd(5, static_cast<Time_EType>(unit));
    Vrad_ExtendedEvent const oddEvent(odd, Note());
    Vrad_ExtendedEvent const event(Tick(0), Note());
    Cmn_AssertRecorder recorder;
    EXPECT_EQ(5, Vrad_DisplayItem(oddEvent, event, false, 0).mTime.AsInt64());
    EXPECT_EQ(1, recorder.GetNum(kNewUnitText));
    EXPECT_EQ(5, Vrad_DisplayItem(event, oddEvent, false, 0).mOrigEvent.mTime.AsInt64());
    EXPECT_EQ(1, recorder.GetNum(kOrigUnitText));
    EXPECT_EQ(2, recorder.GetNum());
    EXPECT_FALSE(recorder.GetEntries()[0].mThrowing);
  }
}

TEST(Vrad_DisplayItem, DoesNotCarryStamps) {
  Vrad_ExtendedEvent event(Tick(0), Note());
  event.mSourceStamp = Stamp(5);
  Vrad_DisplayItem item(event, event, false, 0);
  EXPECT_EQ(0, item.mNewEvent.mSourceStamp.mInputID.mFirst);
  item.mNewEvent.mSourceStamp = Stamp(6);
  Vrad_DisplayItem const copy(item);
  EXPECT_EQ(0, copy.mNewEvent.mSourceStamp.mInputID.mFirst);
  Vrad_DisplayItem assigned;
  assigned.mNewEvent.mSourceStamp = Stamp(7);
  assigned = item;
  EXPECT_EQ(7, assigned.mNewEvent.mSourceStamp.mInputID.mFirst);
}

TEST(Vrad_DisplayItem, CopiesMovesAndAssigns) {
  Vrad_DisplayItem const item(Vrad_ExtendedEvent(Tick(5), LongSysex()),
                              Vrad_ExtendedEvent(Tick(3), Controller()), true, -7);
  Vrad_DisplayItem copy(item);
  Vrad_DisplayItem const moved(std::move(copy));
  Vrad_DisplayItem assigned;
  assigned = moved;
  EXPECT_EQ(5, assigned.mTime.AsInt64());
  EXPECT_TRUE(assigned.mNewEvent.mEvent == item.mNewEvent.mEvent) << "the same payload";
  EXPECT_TRUE(assigned.mDisplayFlag);
  EXPECT_EQ(-7, assigned.mDisplayValue);
}

TEST(Vrad_DisplayItem, IsMovedUpInPlaceByLists) {
  EXPECT_TRUE(std::is_nothrow_copy_constructible_v<Vrad_DisplayItem>);
  EXPECT_TRUE(std::is_nothrow_copy_assignable_v<Vrad_DisplayItem>);
}

TEST(Vrad_DisplayItem_GetDisplayedEvent, IsTheNewEventAtStart) {
  Vrad_DisplayItem const item(Vrad_ExtendedEvent(Tick(5), Note()),
                              Vrad_ExtendedEvent(Tick(3), Controller()), false, 0);
  EXPECT_TRUE(Vrad_DisplayItem::sMIDIDisplayPropertyEffects);
  EXPECT_EQ(&item.mNewEvent, &item.GetDisplayedEvent());
}

TEST(Vrad_DisplayItem_GetDisplayedEvent, IsTheStoredEventWithoutEffects) {
  DisplaySwitch const off(false);
  Vrad_DisplayItem const item(Vrad_ExtendedEvent(Tick(5), Note()),
                              Vrad_ExtendedEvent(Tick(3), Controller()), false, 0);
  EXPECT_EQ(&item.mOrigEvent, &item.GetDisplayedEvent());
  EXPECT_EQ(5, item.mTime.AsInt64()) << "still placed by the new event";
}

TEST(Vrad_DisplayItem_PlaybackOrdering, GoesByTimeFirst) {
  EXPECT_TRUE(
      Vrad_DisplayItem::PlaybackOrdering(Item(Tick(1), Note()), Item(Tick(2), Controller())));
  EXPECT_FALSE(
      Vrad_DisplayItem::PlaybackOrdering(Item(Tick(2), Controller()), Item(Tick(1), Note())));
}

TEST(Vrad_DisplayItem_PlaybackOrdering, GoesByPriorityAtOneTime) {
  EXPECT_TRUE(
      Vrad_DisplayItem::PlaybackOrdering(Item(Tick(1), Controller()), Item(Tick(1), Note())));
  EXPECT_FALSE(
      Vrad_DisplayItem::PlaybackOrdering(Item(Tick(1), Note()), Item(Tick(1), Controller())));
}

TEST(Vrad_DisplayItem_PlaybackOrdering, GoesByKindAtOnePriority) {
  Vrad_DisplayItem const bend = Item(Tick(1), Vrae_PitchBendEvent(8000));
  Vrad_DisplayItem const pressure = Item(Tick(1), Vrae_MonoPressureEvent(0));
  EXPECT_TRUE(Vrad_DisplayItem::PlaybackOrdering(bend, pressure));
  EXPECT_FALSE(Vrad_DisplayItem::PlaybackOrdering(pressure, bend));
}

TEST(Vrad_DisplayItem_PlaybackOrdering, GoesByTheEventsOwnOrderAtOneKind) {
  EXPECT_TRUE(Vrad_DisplayItem::PlaybackOrdering(Item(Tick(1), Controller(1)),
                                                 Item(Tick(1), Controller(2))));
  EXPECT_FALSE(Vrad_DisplayItem::PlaybackOrdering(Item(Tick(1), Controller(2)),
                                                  Item(Tick(1), Controller(1))));
  EXPECT_FALSE(Vrad_DisplayItem::PlaybackOrdering(Item(Tick(1), Controller(1)),
                                                  Item(Tick(1), Controller(1))));
}

TEST(Vrad_DisplayItem_PlaybackOrdering, LooksAtTheItemsTimeAndTheNewEventsAlone) {
  Vrad_DisplayItem a(Vrad_ExtendedEvent(Tick(1), Controller(1)),
                     Vrad_ExtendedEvent(Tick(9), Note()), true, 9);
  Vrad_DisplayItem b(Vrad_ExtendedEvent(Tick(1), Controller(2)),
                     Vrad_ExtendedEvent(Tick(0), Controller(0)), false, 0);
  EXPECT_TRUE(Vrad_DisplayItem::PlaybackOrdering(a, b));
  b.mTime = Tick(0);
  EXPECT_TRUE(Vrad_DisplayItem::PlaybackOrdering(b, a));
}

TEST(Vrad_DisplayItem_PlaybackOrdering, IsTrueBothWaysForKindsWithoutFields) {
  for (int kind : {0, 10, 11, 12, 13, 20}) {
    Vrae_Event event;
    event.mU.mBase.mType = static_cast<signed char>(kind);
    EXPECT_TRUE(Vrad_DisplayItem::PlaybackOrdering(Item(Tick(1), event), Item(Tick(1), event)));
  }
}

TEST(Vrad_DisplayItem_PlaybackOrdering, IsTrueBothWaysForProgramsThatDisableAll) {
  Vrae_ProgramEvent program(5, 0);
  program.SetProgramEnable(false);
  program.SetMSBBankEnable(false);
  program.SetLSBBankEnable(false);
  EXPECT_TRUE(Vrad_DisplayItem::PlaybackOrdering(Item(Tick(1), program), Item(Tick(1), program)));
}

TEST(Vrad_DisplayItem_PlaybackOrdering, ThrowsForTwoNotesWithAFractionalPitch) {
  Vrad_DisplayItem const item = Item(Tick(1), FractionalNote());
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(Vrad_DisplayItem::PlaybackOrdering(item, item), Cmn_AssertException);
  EXPECT_EQ(1, recorder.GetNum("0"));
  EXPECT_TRUE(Vrad_DisplayItem::PlaybackOrdering(item, Item(Tick(2), FractionalNote())));
}

TEST(Vrad_DisplayItemList_FindTime, OfAnEmptyListIsItsBegin) {
  Vrad_DisplayItemList const list;
  EXPECT_NE(nullptr, list.FindTime(Tick(0)));
  EXPECT_EQ(list.begin(), list.FindTime(Tick(0)));
}

TEST(Vrad_DisplayItemList_FindTime, IsTheFirstItemNotBefore) {
  Vrad_DisplayItemList list;
  for (long long const tick : {10, 20, 20, 20, 30})
    list.push_back(Item(Tick(tick), Note()));
  EXPECT_EQ(list.begin(), list.FindTime(Tick(10)));
  EXPECT_EQ(list.begin() + 1, list.FindTime(Tick(11)));
  EXPECT_EQ(list.begin() + 1, list.FindTime(Tick(20)));
  EXPECT_EQ(list.begin() + 4, list.FindTime(Tick(21)));
}

TEST(Vrad_DisplayItemList_FindTime, PastTheLastItemIsTheEnd) {
  Vrad_DisplayItemList list;
  list.push_back(Item(Tick(10), Note()));
  EXPECT_EQ(list.end(), list.FindTime(Tick(11)));
}

TEST(Vrad_DisplayItemList_FindTime, ProbesAnUnsortedListAsAllSearchesDo) {
  // 5 left, probe 2 (7 is not before 5); 2 left, probe 1 (9 is not); 1 left, probe 0 (8 is not).
  Vrad_DisplayItemList list;
  for (long long const tick : {8, 9, 7, 1, 2})
    list.push_back(Item(Tick(tick), Note()));
  EXPECT_EQ(list.begin(), list.FindTime(Tick(5)));
  // Probe 2 (7 is before 8); 2 left from 3, probe 4 (2 is before): the end.
  EXPECT_EQ(list.end(), list.FindTime(Tick(8)));
}

// ---- Wrapper: access ----

TEST_F(Vrad_EventListWrapper_Access, KnowsItsKind) {
  EXPECT_FALSE(mTimedWrapper.IsExtended());
  EXPECT_FALSE(mTimedWrapper.IsDisplayList());
  EXPECT_EQ(nullptr, mTimedWrapper.GetDisplayList());
  EXPECT_TRUE(mExtWrapper.IsExtended());
  EXPECT_FALSE(mExtWrapper.IsDisplayList());
  EXPECT_EQ(nullptr, mExtWrapper.GetDisplayList());
  EXPECT_FALSE(mDisplayWrapper.IsExtended());
  EXPECT_TRUE(mDisplayWrapper.IsDisplayList());
  EXPECT_EQ(&mDisplay, mDisplayWrapper.GetDisplayList());
}

TEST_F(Vrad_EventListWrapper_Access, SizeOfEmptyListsIsZero) {
  for (Vrad_EventListWrapper const & wrapper : All())
    EXPECT_EQ(0u, wrapper.size());
  EXPECT_EQ(0u, mNoWrapper.size());
}

TEST_F(Vrad_EventListWrapper_Access, SizeIsTheLists) {
  mTimed.push_back(Vrae_TimedEvent());
  EXPECT_EQ(1u, mTimedWrapper.size());
  mExt.push_back(Vrad_ExtendedEvent());
  mExt.push_back(Vrad_ExtendedEvent());
  EXPECT_EQ(2u, mExtWrapper.size());
  mDisplay.push_back(Vrad_DisplayItem());
  EXPECT_EQ(1u, mDisplayWrapper.size());
}

TEST_F(Vrad_EventListWrapper_Access, GivesWritableElements) {
  mTimed.push_back(Vrae_TimedEvent());
  mExt.push_back(Vrad_ExtendedEvent());
  mDisplay.push_back(Vrad_DisplayItem());
  EXPECT_EQ(&mTimed[0], &mTimedWrapper[0]);
  EXPECT_EQ(&mExt[0], &mExtWrapper[0]);
  EXPECT_EQ(&mExt[0], &mExtWrapper.GetExtendedEvent(0));
  EXPECT_EQ(&mDisplay[0], &mDisplayWrapper.GetDisplayItem(0));
}

TEST_F(Vrad_EventListWrapper_Access, ReportsIndexingTheWrongKindAndGivesABlank) {
  Cmn_AssertRecorder recorder;
  mDisplayWrapper[0].mTime = Tick(5);
  EXPECT_EQ(1, recorder.GetNum("mTimedListP != 0 || mExtListP != 0"));
  EXPECT_EQ(0, mNoWrapper[7].mTime.AsInt64()) << "blank again";
  EXPECT_EQ(2, recorder.GetNum("mTimedListP != 0 || mExtListP != 0"));
  EXPECT_EQ(0, mTimedWrapper.GetExtendedEvent(0).mExtensionKind);
  EXPECT_EQ(1, recorder.GetNum("mExtListP"));
  EXPECT_FALSE(mExtWrapper.GetDisplayItem(0).mDisplayFlag);
  EXPECT_EQ(1, recorder.GetNum("mDisplayItemListP"));
  EXPECT_EQ(4, recorder.GetNum());
  for (Cmn_AssertRecorder::Entry const & entry : recorder.GetEntries())
    EXPECT_FALSE(entry.mThrowing);
}

TEST_F(Vrad_EventListWrapper_Access, LastDisplayItemIsTheLast) {
  mDisplay.push_back(Vrad_DisplayItem());
  mDisplay.push_back(Vrad_DisplayItem());
  EXPECT_EQ(&mDisplay[1], mDisplayWrapper.LastDisplayItem());
}

TEST_F(Vrad_EventListWrapper_Access, LastDisplayItemOfAnotherKindIsNull) {
  mTimed.push_back(Vrae_TimedEvent());
  mExt.push_back(Vrad_ExtendedEvent());
  Cmn_AssertRecorder recorder;
  EXPECT_EQ(nullptr, mTimedWrapper.LastDisplayItem());
  EXPECT_EQ(nullptr, mExtWrapper.LastDisplayItem());
  EXPECT_EQ(0, recorder.GetNum());
}

TEST_F(Vrad_EventListWrapper_Access, CopiesStandForTheSameList) {
  Vrad_EventListWrapper copy(mTimedWrapper);
  copy.push_back(Vrad_ExtendedEvent(Tick(0), Note()));
  EXPECT_EQ(1u, mTimed.size());
  copy = mExtWrapper;
  EXPECT_TRUE(copy.IsExtended());
}

// ---- Wrapper: push_back ----

TEST_F(Vrad_EventListWrapper_PushBack, OntoATimedListKeepsTheTimedPartWithItsStamp) {
  Vrad_ExtendedEvent event(ExtendedNote(5, true));
  event.mSourceStamp = Stamp(9);
  mTimedWrapper.push_back(event);
  ASSERT_EQ(1u, mTimed.size());
  EXPECT_EQ(5, mTimed[0].mTime.AsInt64());
  EXPECT_TRUE(mTimed[0].mEvent == Note());
  EXPECT_EQ(9, mTimed[0].mSourceStamp.mInputID.mFirst);
}

TEST_F(Vrad_EventListWrapper_PushBack, OntoAnExtendedListKeepsTheNoteButNotTheStamp) {
  Vrad_ExtendedEvent event(ExtendedNote(5, true));
  event.mSourceStamp = Stamp(9);
  mExtWrapper.push_back(event);
  ASSERT_EQ(1u, mExt.size());
  EXPECT_TRUE(mExt[0].AsNoteWithDurationExtendedEvent().IsMuted());
  EXPECT_EQ(0, mExt[0].mSourceStamp.mInputID.mFirst);
}

TEST_F(Vrad_EventListWrapper_PushBack, OfAnItemIsForDisplayListsAlone) {
  Cmn_AssertRecorder recorder;
  for (Vrad_EventListWrapper & wrapper : std::vector<Vrad_EventListWrapper>(All()))
    wrapper.push_back(Item(Tick(5), Note()));
  EXPECT_EQ(0u, mTimed.size());
  EXPECT_EQ(0u, mExt.size());
  ASSERT_EQ(1u, mDisplay.size());
  EXPECT_EQ(5, mDisplay[0].mTime.AsInt64());
  EXPECT_EQ(0, recorder.GetNum());
}

TEST_F(Vrad_EventListWrapper_PushBack, OfAnEventIgnoresDisplayLists) {
  mDisplayWrapper.push_back(Vrad_ExtendedEvent(Tick(5), Note()));
  EXPECT_EQ(0u, mDisplay.size());
}

TEST_F(Vrad_EventListWrapper_PushBack, WithoutAListIgnoresBoth) {
  Cmn_AssertRecorder recorder;
  mNoWrapper.push_back(Vrad_ExtendedEvent(Tick(5), Note()));
  mNoWrapper.push_back(Item(Tick(5), Note()));
  EXPECT_EQ(0u, mNoWrapper.size());
  EXPECT_EQ(0, recorder.GetNum());
}

// ---- Wrapper: sort ----

TEST_F(Vrad_EventListWrapper_Sort, OrdersEachKindOfList) {
  for (Vrad_EventListWrapper & wrapper : std::vector<Vrad_EventListWrapper>(All())) {
    AddTicks(wrapper, {5, 3, 9, 1, 1, 7});
    wrapper.sort(0);
    EXPECT_EQ("1 1 3 5 7 9", Times(wrapper));
  }
}

TEST_F(Vrad_EventListWrapper_Sort, LeavesWhatLiesBeforeTheStart) {
  for (Vrad_EventListWrapper & wrapper : std::vector<Vrad_EventListWrapper>(All())) {
    AddTicks(wrapper, {9, 8, 3, 2, 1});
    wrapper.sort(2);
    EXPECT_EQ("9 8 1 2 3", Times(wrapper));
  }
}

TEST_F(Vrad_EventListWrapper_Sort, FromTheSizeOrPastItChangesNothing) {
  for (Vrad_EventListWrapper & wrapper : std::vector<Vrad_EventListWrapper>(All())) {
    AddTicks(wrapper, {3, 2, 1});
    wrapper.sort(3);
    wrapper.sort(4);
    wrapper.sort(~0ull);
    EXPECT_EQ("3 2 1", Times(wrapper));
  }
}

TEST_F(Vrad_EventListWrapper_Sort, OfEmptyOrNoListsDoesNothing) {
  for (Vrad_EventListWrapper & wrapper : std::vector<Vrad_EventListWrapper>(All()))
    wrapper.sort(0);
  mNoWrapper.sort(0);
  EXPECT_EQ(0u, mNoWrapper.size());
}

TEST_F(Vrad_EventListWrapper_Sort, PutsTheLowerPriorityNumberFirstAtOneTime) {
  for (bool const noteFirst : {false, true}) {
    mDisplay.clear();
    mDisplay.push_back(Item(Tick(1), noteFirst ? Note() : Controller()));
    mDisplay.push_back(Item(Tick(1), noteFirst ? Controller() : Note()));
    mDisplayWrapper.sort(0);
    EXPECT_EQ(Vrae_Event::kController, mDisplay[0].mNewEvent.mEvent.GetType());
    EXPECT_EQ(Vrae_Event::kNoteWithDuration, mDisplay[1].mNewEvent.mEvent.GetType());
  }
}

TEST_F(Vrad_EventListWrapper_Sort, MovesStampsWithTimedEvents) {
  mTimed.push_back(Vrae_TimedEvent(Tick(2), Note(), Stamp(2)));
  mTimed.push_back(Vrae_TimedEvent(Tick(1), Note(), Stamp(1)));
  mTimedWrapper.sort(0);
  EXPECT_EQ(1, mTimed[0].mSourceStamp.mInputID.mFirst);
  EXPECT_EQ(2, mTimed[1].mSourceStamp.mInputID.mFirst);
}

TEST_F(Vrad_EventListWrapper_Sort, LeavesStampsOfExtendedEventsInPlace) {
  AddTicks(mExtWrapper, {2, 1});
  mExt[0].mSourceStamp = Stamp(2);
  mExt[1].mSourceStamp = Stamp(1);
  mExtWrapper.sort(0);
  EXPECT_EQ("1 2", Times(mExtWrapper));
  EXPECT_EQ(2, mExt[0].mSourceStamp.mInputID.mFirst);
  EXPECT_EQ(1, mExt[1].mSourceStamp.mInputID.mFirst);
}

TEST_F(Vrad_EventListWrapper_Sort, MovesNoteFieldsWithExtendedEvents) {
  mExtWrapper.push_back(Vrad_NoteWithDurationExtendedEvent(
      Tick(2), Note(61).AsNoteWithDuration(), Time_TypedLength(5, Time_eType_Samples),
      Vrae_NoteWithDurationEvent(50, Time_TypedLength(33, Time_eType_Samples), 11, 12), true));
  mExtWrapper.push_back(Vrad_ExtendedEvent(Tick(1), Controller()));
  mExtWrapper.sort(0);
  EXPECT_FALSE(mExt[0].IsNoteWithDurationExtendedEvent());
  EXPECT_EQ(Vrae_Event::kController, mExt[0].mEvent.GetType());
  Vrad_NoteWithDurationExtendedEvent const & note = mExt[1].AsNoteWithDurationExtendedEvent();
  EXPECT_EQ(61, note.mEvent.AsNoteWithDuration().GetPitch());
  EXPECT_EQ(5, note.GetQuantizeTimeDelta().AsInt64());
  EXPECT_EQ(Time_eType_Samples, note.GetQuantizeTimeDelta().GetType());
  EXPECT_TRUE(note.GetOrigEvent() ==
              Vrae_NoteWithDurationEvent(50, Time_TypedLength(33, Time_eType_Samples), 11, 12));
  EXPECT_EQ(Time_eType_Samples, note.GetOrigEvent().GetDuration().GetType());
  EXPECT_TRUE(note.IsMuted());
}

TEST_F(Vrad_EventListWrapper_Sort, MovesAllOfADisplayItem) {
  mDisplay.push_back(Vrad_DisplayItem(Vrad_ExtendedEvent(Tick(2), Note(61)),
                                      Vrad_ExtendedEvent(Tick(9), Note(62)), true, 5));
  mDisplay.push_back(Item(Tick(1), Controller()));
  mDisplayWrapper.sort(0);
  EXPECT_EQ(2, mDisplay[1].mTime.AsInt64());
  EXPECT_EQ(61, mDisplay[1].mNewEvent.mEvent.AsNoteWithDuration().GetPitch());
  EXPECT_EQ(62, mDisplay[1].mOrigEvent.mEvent.AsNoteWithDuration().GetPitch());
  EXPECT_EQ(9, mDisplay[1].mOrigEvent.mTime.AsInt64());
  EXPECT_TRUE(mDisplay[1].mDisplayFlag);
  EXPECT_EQ(5, mDisplay[1].mDisplayValue);
  EXPECT_FALSE(mDisplay[0].mDisplayFlag);
}

TEST_F(Vrad_EventListWrapper_Sort, MovesALongSysexWithItsEvent) {
  Vrae_Event const first = LongSysex();
  Vrae_Event const second = LongSysex();
  for (Vrad_EventListWrapper & wrapper : std::vector<Vrad_EventListWrapper>(All())) {
    Add(wrapper, Tick(3), second);
    Add(wrapper, Tick(2), Note());
    Add(wrapper, Tick(1), first);
    wrapper.sort(0);
  }
  EXPECT_TRUE(mTimed[0].mEvent == first);
  EXPECT_TRUE(mTimed[2].mEvent == second);
  EXPECT_TRUE(mExt[0].mEvent == first);
  EXPECT_TRUE(mExt[2].mEvent == second);
  EXPECT_TRUE(mDisplay[0].mNewEvent.mEvent == first);
  EXPECT_TRUE(mDisplay[2].mOrigEvent.mEvent == second);
}

TEST_F(Vrad_EventListWrapper_Sort, KeepsTheOrderOfEqualEvents) {
  for (int i = 0; i < 2000; ++i)
    mTimed.push_back(Vrae_TimedEvent(Tick(i % 3), Note(), Stamp(i)));
  mTimedWrapper.sort(0);
  for (size_t i = 1; i < mTimed.size(); ++i) {
    if (mTimed[i - 1].mTime == mTimed[i].mTime) {
      ASSERT_LT(mTimed[i - 1].mSourceStamp.mInputID.mFirst, mTimed[i].mSourceStamp.mInputID.mFirst);
    }
  }
}

TEST_F(Vrad_EventListWrapper_Sort, OrdersTimesOfBothUnits) {
  mTimed.push_back(Vrae_TimedEvent(Tick(81), Note()));
  mTimed.push_back(Vrae_TimedEvent(Time_Typed(2, Time_eType_Samples), Note()));
  mTimed.push_back(Vrae_TimedEvent(Tick(79), Note()));
  mTimedWrapper.sort(0);
  EXPECT_EQ("79 2 81", Times(mTimedWrapper));
}

TEST_F(Vrad_EventListWrapper_Sort, CopesWithItemsThatGoBeforeEachOther) {
  for (long long const tick : {5, 1, 5, 1, 3, 5, 1, 3}) {
    mDisplay.push_back(Item(Tick(tick), Vrae_StartEvent()));
    mDisplay.push_back(Item(Tick(tick), Vrae_Event()));
  }
  mDisplayWrapper.sort(0);
  EXPECT_EQ("1 1 1 1 1 1 3 3 3 3 5 5 5 5 5 5", Times(mDisplayWrapper));
}

TEST_F(Vrad_EventListWrapper_Sort, KeepsTheElementsWhenTheOrderThrows) {
  for (long long tick = 700; tick > 0; --tick)
    mDisplay.push_back(Item(Tick(tick), Note()));
  mDisplay.push_back(Item(Tick(350), FractionalNote()));
  mDisplay.push_back(Item(Tick(350), FractionalNote()));
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(mDisplayWrapper.sort(0), Cmn_AssertException);
  ASSERT_EQ(702u, mDisplay.size());
  std::vector<int> seen(701, 0);
  for (Vrad_DisplayItem const & item : mDisplay)
    seen[static_cast<size_t>(item.mTime.AsInt64())] += 1;
  for (size_t tick = 1; tick <= 700; ++tick)
    EXPECT_EQ(tick == 350 ? 3 : 1, seen[tick]) << tick;
}

TEST_F(Vrad_EventListWrapper_Sort, GoesOnWithThrowingOff) {
  ThrowingOff const off;
  mDisplay.push_back(Item(Tick(2), FractionalNote()));
  mDisplay.push_back(Item(Tick(1), FractionalNote()));
  mDisplay.push_back(Item(Tick(1), FractionalNote()));
  Cmn_AssertRecorder recorder;
  mDisplayWrapper.sort(0);
  EXPECT_LE(1, recorder.GetNum("0"));
  EXPECT_EQ("1 1 2", Times(mDisplayWrapper));
}

TEST_F(Vrad_EventListWrapper_RealTime, PushBackOntoWarmListsTakesNothing) {
  Vrad_NoteWithDurationExtendedEvent const note = ExtendedNote(5, false);
  Vrad_DisplayItem const item = Item(Tick(5), LongSysex());
  mTimed.reserve(1);
  mExt.reserve(1);
  mDisplay.reserve(1);
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              mTimedWrapper.push_back(note);
              mExtWrapper.push_back(note);
              mDisplayWrapper.push_back(item);
            }));
  EXPECT_EQ(1u, mDisplay.size());
}

TEST_F(Vrad_EventListWrapper_RealTime, SortTakesNothing) {
  for (long long i = 0; i < 2000; ++i) {
    AddTicks(mTimedWrapper, {i * 7919 % 2003});
    AddTicks(mExtWrapper, {i * 7919 % 2003});
    AddTicks(mDisplayWrapper, {i * 7919 % 2003});
  }
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              mTimedWrapper.sort(0);
              mExtWrapper.sort(0);
              mDisplayWrapper.sort(0);
            }));
  for (size_t i = 1; i < 2000; ++i) {
    ASSERT_LT(mTimed[i - 1].mTime, mTimed[i].mTime);
    ASSERT_LT(mExt[i - 1].mTime, mExt[i].mTime);
    ASSERT_LT(mDisplay[i - 1].mTime, mDisplay[i].mTime);
  }
}
