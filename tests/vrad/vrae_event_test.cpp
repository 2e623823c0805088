// The record itself: kinds, copies, counted payloads, images, and the views' constructors and
// accessors. What is reported for bad arguments stands in vrae_event_checks_test.cpp.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "foundation/sys_delayeddeletion.h"
#include "support/event_samples.h"
#include "vrad/vrae_event.h"
#include "vrad/vrae_sysexdatabase.h"

namespace {

unsigned char const kBytes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

Time_TypedLength Ticks(long long iCount) {
  return Time_TypedLength(iCount, Time_eType_Ticks);
}

// Payloads whose last reference has gone.
int GetNumReleased() {
  return Sys_DelayedDeletionQueue::GetNumPending();
}

class Vrae_LongSysex : public testing::Test {
protected:
  void SetUp() override { Sys_DelayedDeletionQueue::DeletePending(); }
  void TearDown() override { Sys_DelayedDeletionQueue::DeletePending(); }
};

}  // namespace

TEST(Vrae_Event, HasTheNumbersOfItsKinds) {
  int const numbers[] = {Vrae_Event::kNoEvent,
                         Vrae_Event::kNoteOn,
                         Vrae_Event::kNoteOff,
                         Vrae_Event::kNoteWithDuration,
                         Vrae_Event::kPitchBend,
                         Vrae_Event::kController,
                         Vrae_Event::kProgram,
                         Vrae_Event::kMonoPressure,
                         Vrae_Event::kPolyPressure,
                         Vrae_Event::kSongPosition,
                         Vrae_Event::kStart,
                         Vrae_Event::kContinue,
                         Vrae_Event::kStop,
                         Vrae_Event::kTimingClock,
                         Vrae_Event::kShortSysex,
                         Vrae_Event::kLongSysex,
                         Vrae_Event::kSysexPacket,
                         Vrae_Event::kClearNoteInProgress,
                         Vrae_Event::kAddNoteInProgress,
                         Vrae_Event::kReleaseController,
                         Vrae_Event::kAllNotesOff,
                         Vrae_Event::kQuarterFrame,
                         Vrae_Event::kPitchToMIDINoteWithDuration,
                         Vrae_Event::kClipEvent};
  for (int i = 0; i < 24; ++i)
    EXPECT_EQ(numbers[i], i);
}

TEST(Vrae_Event, EachViewBuildsItsOwnKind) {
  for (int kind = 0; kind <= 23; ++kind)
    EXPECT_EQ(MakeSampleEvent(kind).GetType(), kind);
}

TEST(Vrae_Event, IsAsSmallAsTheLargestKindAllows) {
  EXPECT_EQ(sizeof(Vrae_Event), 80u);
  EXPECT_EQ(sizeof(Vrae_PitchToMIDINoteWithDuration), sizeof(Vrae_Event));
  EXPECT_EQ(sizeof(Vrae_SysexPacketEvent), sizeof(Vrae_Event));
}

TEST(Vrae_Event, HasNoVirtualOperations) {
  EXPECT_FALSE(std::is_polymorphic_v<Vrae_Event>);
  EXPECT_FALSE(std::is_polymorphic_v<Vrae_PitchToMIDINoteWithDuration>);
}

TEST(Vrae_Event, StartsAsNoEventWithAllBytesZero) {
  alignas(Vrae_Event) unsigned char room[sizeof(Vrae_Event)];
  std::memset(room, 0xAA, sizeof(room));
  Vrae_Event const * const eventP = new (room) Vrae_Event();
  EXPECT_EQ(eventP->GetType(), 0);
  unsigned char const zeros[sizeof(Vrae_Event)] = {};
  EXPECT_EQ(std::memcmp(eventP, zeros, sizeof(zeros)), 0);
}

TEST(Vrae_Event, AViewStartsZeroButForItsFields) {
  alignas(Vrae_Event) unsigned char room[sizeof(Vrae_Event)];
  std::memset(room, 0xAA, sizeof(room));
  Vrae_Event const * const eventP = new (room) Vrae_NoteOnEvent(60, 100);
  unsigned char expected[sizeof(Vrae_Event)] = {1, 60, 100};
  EXPECT_EQ(std::memcmp(eventP, expected, sizeof(expected)), 0);
}

TEST(Vrae_Event, TheKindIsTheFirstByteOfEveryVariant) {
  for (int kind = -128; kind <= 127; ++kind) {
    if (kind == Vrae_Event::kLongSysex) continue;
    Vrae_Event const event = MakeBlankEvent(kind);
    signed char first;
    std::memcpy(&first, &event, 1);
    EXPECT_EQ(first, kind);
    EXPECT_EQ(event.mU.mClipEvent.mType, kind);
    EXPECT_EQ(event.mU.mLongSysex.mType, kind);
  }
}

TEST(Vrae_Event, CopyingCopiesTheWholeRecordOfEveryPlainKind) {
  for (int kind = 0; kind <= 23; ++kind) {
    if (kind == Vrae_Event::kLongSysex) continue;
    SCOPED_TRACE(kind);
    Vrae_Event const event = MakeSampleEvent(kind);
    Vrae_Event const copy(event);
    EXPECT_EQ(std::memcmp(&copy, &event, sizeof(event)), 0);
  }
}

TEST(Vrae_Event, AssigningCopiesTheWholeRecordBetweenAnyTwoPlainKinds) {
  for (int from = 0; from <= 23; ++from) {
    for (int to = 0; to <= 23; ++to) {
      if (from == Vrae_Event::kLongSysex || to == Vrae_Event::kLongSysex) continue;
      Vrae_Event const event = MakeSampleEvent(from);
      Vrae_Event target = MakeSampleEvent(to);
      target = event;
      EXPECT_EQ(std::memcmp(&target, &event, sizeof(event)), 0) << from << " to " << to;
    }
  }
}

TEST(Vrae_Event, AssigningGivesTheTargetItself) {
  Vrae_Event target;
  Vrae_Event const & result = (target = Vrae_NoteOnEvent(60, 1));
  EXPECT_EQ(&result, &target);
}

TEST(Vrae_Event, AssigningItToItselfChangesNothing) {
  Vrae_Event event = Vrae_ControllerEvent(7, 90);
  Vrae_Event const & same = event;
  event = same;
  EXPECT_EQ(event.AsController().GetValue(), 90);
}

TEST(Vrae_Event, IsMessageSysexForShortAndLongSysexAlone) {
  for (int kind = 0; kind <= 23; ++kind)
    EXPECT_EQ(MakeSampleEvent(kind).IsMessageSysex(0), kind == 14 || kind == 15) << kind;
}

TEST(Vrae_Event, IsMessageSysexLooksNotAtTheNumber) {
  EXPECT_TRUE(MakeSampleEvent(14).IsMessageSysex(-5));
  EXPECT_TRUE(MakeSampleEvent(15).IsMessageSysex(99));
  EXPECT_FALSE(MakeSampleEvent(1).IsMessageSysex(99));
}

TEST(Vrae_Event, IsMessageSysexIsFalseForAPacketThatHoldsSysexBytes) {
  unsigned char const fragment[] = {0xF0, 0x7E};
  EXPECT_FALSE(Vrae_SysexPacketEvent(2, fragment, nullptr).IsMessageSysex(0));
}

TEST(Vrae_Event, IsCompleteLongSysexForThatKindAlone) {
  for (int kind = 0; kind <= 23; ++kind)
    EXPECT_EQ(MakeSampleEvent(kind).IsCompleteLongSysex(), kind == 15) << kind;
}

TEST_F(Vrae_LongSysex, CopiesShareOnePayload) {
  Vrae_Event const event = Vrae_SysexEvent(16, kBytes);
  Vrae_Event const copy(event);
  EXPECT_EQ(copy.mU.mLongSysex.mSysexP, event.mU.mLongSysex.mSysexP);
}

TEST_F(Vrae_LongSysex, ThePayloadGoesWithTheLastOfItsCopies) {
  {
    Vrae_Event const event = Vrae_SysexEvent(16, kBytes);
    {
      Vrae_Event const copy(event);
      EXPECT_EQ(GetNumReleased(), 0);
    }
    EXPECT_EQ(GetNumReleased(), 0);
  }
  EXPECT_EQ(GetNumReleased(), 1);
}

TEST_F(Vrae_LongSysex, AssigningToAPlainEventTakesAReference) {
  Vrae_Event target = Vrae_NoteOnEvent(60);
  {
    Vrae_Event const event = Vrae_SysexEvent(16, kBytes);
    target = event;
  }
  EXPECT_EQ(GetNumReleased(), 0);
  EXPECT_EQ(target.GetType(), 15);
  EXPECT_EQ(target.AsSysex().GetLength(), 16);
}

TEST_F(Vrae_LongSysex, AssigningAPlainEventDropsTheReference) {
  Vrae_Event target = Vrae_SysexEvent(16, kBytes);
  target = Vrae_NoteOnEvent(60, 90);
  EXPECT_EQ(GetNumReleased(), 1);
  EXPECT_EQ(target.AsNoteOn().GetVelocity(), 90);
}

TEST_F(Vrae_LongSysex, AssigningOneToAnotherMovesTheCounts) {
  Vrae_Event target = Vrae_SysexEvent(16, kBytes);
  Vrae_Event const event = Vrae_SysexEvent(15, kBytes);
  target = event;
  EXPECT_EQ(GetNumReleased(), 1);
  EXPECT_EQ(target.mU.mLongSysex.mSysexP, event.mU.mLongSysex.mSysexP);
}

TEST_F(Vrae_LongSysex, AssigningACopyOfItselfKeepsThePayload) {
  Vrae_Event target = Vrae_SysexEvent(16, kBytes);
  Vrae_Event const copy(target);
  target = copy;
  EXPECT_EQ(GetNumReleased(), 0);
}

TEST_F(Vrae_LongSysex, AssigningItToItselfKeepsThePayload) {
  Vrae_Event event = Vrae_SysexEvent(16, kBytes);
  Vrae_Event const & same = event;
  event = same;
  EXPECT_EQ(GetNumReleased(), 0);
  EXPECT_EQ(event.AsSysex().GetLength(), 16);
}

TEST_F(Vrae_LongSysex, AnImageKeptElsewhereHasItsOwnReference) {
  alignas(Vrae_Event) unsigned char slot[sizeof(Vrae_Event)];
  {
    Vrae_Event const event = Vrae_SysexEvent(16, kBytes);
    event.PrepareToImageOut();
    std::memcpy(slot, &event, sizeof(slot));
  }
  EXPECT_EQ(GetNumReleased(), 0);
  Vrae_Event & image = *std::launder(reinterpret_cast<Vrae_Event *>(slot));
  EXPECT_EQ(image.AsSysex().GetLength(), 16);
  image.PrepareToImageIn();
  EXPECT_EQ(GetNumReleased(), 1);
  EXPECT_EQ(image.GetType(), 0);
}

TEST_F(Vrae_LongSysex, AVectorOfEventsCountsCorrectly) {
  {
    std::vector<Vrae_Event> events(3, Vrae_SysexEvent(16, kBytes));
    for (int i = 0; i < 100; ++i)
      events.push_back(events.front());
    events.erase(events.begin(), events.begin() + 50);
    std::swap(events.front(), events.back());
    EXPECT_EQ(GetNumReleased(), 0);
  }
  EXPECT_EQ(GetNumReleased(), 1);
}

TEST(Vrae_Event, PrepareToImageOutLeavesPlainKindsAlone) {
  for (int kind = 0; kind <= 23; ++kind) {
    if (kind == Vrae_Event::kLongSysex) continue;
    Vrae_Event const event = MakeSampleEvent(kind);
    Vrae_Event const former(event);
    event.PrepareToImageOut();
    EXPECT_EQ(std::memcmp(&event, &former, sizeof(event)), 0) << kind;
  }
}

TEST(Vrae_Event, PrepareToImageInMakesAnyKindNoEvent) {
  unsigned char const zeros[sizeof(Vrae_Event)] = {};
  for (int kind = 0; kind <= 23; ++kind) {
    Vrae_Event event = MakeSampleEvent(kind);
    event.PrepareToImageIn();
    EXPECT_EQ(std::memcmp(&event, zeros, sizeof(zeros)), 0) << kind;
  }
}

TEST(Vrae_Event, OperationsWithoutAPayloadGoOn) {
  Cmn_AssertRecorder const silent;
  Vrae_Event event = MakeBlankEvent(Vrae_Event::kLongSysex);
  Vrae_Event const copy(event);
  EXPECT_EQ(copy.GetType(), 15);
  event.PrepareToImageOut();
  EXPECT_FALSE(event.IsCompleteLongSysex());
  event = Vrae_NoteOnEvent(60, 90);
  EXPECT_EQ(event.GetType(), 1);
}

TEST(Vrae_NoteOnEvent, TakesTheDefaultVelocity) {
  EXPECT_EQ(Vrae_NoteOnEvent(60).GetVelocity(), 80);
  EXPECT_EQ(Vrae_NoteOnEvent(60).GetPitch(), 60);
}

TEST(Vrae_NoteOnEvent, TakesAChangedDefaultVelocity) {
  Vrae_NoteOnEvent::SetDefaultVelocity(33);
  EXPECT_EQ(Vrae_NoteOnEvent::GetDefaultVelocity(), 33);
  EXPECT_EQ(Vrae_NoteOnEvent(60).GetVelocity(), 33);
  Vrae_NoteOnEvent::SetDefaultVelocity(80);
}

TEST(Vrae_NoteOnEvent, StoresABadDefaultVelocity) {
  Cmn_AssertRecorder const silent;
  Vrae_NoteOnEvent::SetDefaultVelocity(-7);
  EXPECT_EQ(Vrae_NoteOnEvent::GetDefaultVelocity(), -7);
  Vrae_NoteOnEvent::SetDefaultVelocity(80);
}

TEST(Vrae_NoteOnEvent, VelocityZeroIsReportedAndStored) {
  Cmn_AssertRecorder const recorder;
  Vrae_NoteOnEvent const event(60, 0);
  EXPECT_EQ(recorder.GetNum("iVelocity >= 1"), 1);
  EXPECT_EQ(event.GetVelocity(), 0);
}

TEST(Vrae_NoteOffEvent, HasPitchAndReleaseVelocity) {
  Vrae_NoteOffEvent event(60, 0);
  EXPECT_EQ(event.GetPitch(), 60);
  EXPECT_EQ(event.GetVelocity(), 0);
  event.SetPitch(61);
  event.SetVelocity(64);
  EXPECT_EQ(event.mU.mNoteOff.mPitch, 61);
  EXPECT_EQ(event.mU.mNoteOff.mVelocity, 64);
}

TEST(Vrae_NoteWithDurationEvent, HasTheFourFields) {
  Vrae_NoteWithDurationEvent const event(60, Time_TypedLength(480, Time_eType_Samples), 100, 30);
  EXPECT_EQ(event.GetPitch(), 60);
  EXPECT_EQ(event.GetOnVelocity(), 100);
  EXPECT_EQ(event.GetOffVelocity(), 30);
  EXPECT_EQ(event.GetDuration().AsInt64(), 480);
  EXPECT_EQ(event.GetDuration().GetType(), Time_eType_Samples);
  EXPECT_EQ(event.mU.mNoteWithDuration.mDuration, 480);
  EXPECT_EQ(event.mU.mNoteWithDuration.mDurationType, Time_eType_Samples);
}

TEST(Vrae_NoteWithDurationEvent, TheDefaultHasTheKindAlone) {
  Vrae_NoteWithDurationEvent const event;
  EXPECT_EQ(event.GetType(), 3);
  EXPECT_EQ(event.GetPitch(), 0);
  EXPECT_EQ(event.GetOnVelocity(), 0);
  EXPECT_EQ(event.GetDuration().AsInt64(), 0);
}

TEST(Vrae_NoteWithDurationEvent, SettersReplaceOneField) {
  Vrae_NoteWithDurationEvent event(60, Ticks(480), 100, 30);
  event.SetPitch(61);
  event.SetDuration(Time_TypedLength(7, Time_eType_Samples));
  event.SetOnVelocity(1);
  event.SetOffVelocity(0);
  EXPECT_EQ(event.GetPitch(), 61);
  EXPECT_EQ(event.GetDuration().AsInt64(), 7);
  EXPECT_EQ(event.GetDuration().GetType(), Time_eType_Samples);
  EXPECT_EQ(event.GetOnVelocity(), 1);
  EXPECT_EQ(event.GetOffVelocity(), 0);
}

TEST(Vrae_NoteWithDurationEvent, AZeroDurationIsReportedAndStored) {
  Cmn_AssertRecorder const recorder;
  Vrae_NoteWithDurationEvent const event(60, Ticks(0), 100, 30);
  EXPECT_EQ(recorder.GetNum("iDuration >= Time_TypedLength(1, iDuration.GetType())"), 1);
  EXPECT_EQ(recorder.GetNum(), 1);
  EXPECT_EQ(event.GetDuration().AsInt64(), 0);
}

TEST(Vrae_NoteWithDurationEvent, HoldsTheLongestDuration) {
  Vrae_NoteWithDurationEvent const event(60, Ticks(LLONG_MAX), 100, 30);
  EXPECT_EQ(event.GetDuration().AsInt64(), LLONG_MAX);
}

TEST(Vrae_NoteWithDurationEvent, MarkForDeletionClearsTheOnVelocityAlone) {
  Vrae_NoteWithDurationEvent event(60, Ticks(480), 100, 30);
  event.MarkForDeletion();
  EXPECT_EQ(event.GetOnVelocity(), 0);
  EXPECT_EQ(event.GetPitch(), 60);
  EXPECT_EQ(event.GetOffVelocity(), 30);
}

TEST(Vrae_NoteWithDurationBase, ServesTheOtherKinds) {
  Vrae_AddNoteInProgressEvent const add(60, Ticks(480), 100, 30);
  EXPECT_EQ(add.GetType(), 18);
  EXPECT_EQ(add.GetDuration().AsInt64(), 480);
  Vrae_ClearNoteInProgressEvent const clear(61, Ticks(481), 101, 31);
  EXPECT_EQ(clear.GetType(), 17);
  EXPECT_EQ(clear.GetPitch(), 61);
  EXPECT_EQ(clear.GetOnVelocity(), 101);
  EXPECT_EQ(clear.GetOffVelocity(), 31);
}

TEST(Vrae_PitchToMIDINoteWithDuration, HasAFractionBesideTheNote) {
  Vrae_PitchToMIDINoteWithDuration event(60, Ticks(480), 100, 30, -0.25f);
  EXPECT_EQ(event.GetFractionalPitch(), -0.25f);
  event.SetFractionalPitch(0.5f);
  EXPECT_EQ(event.GetFractionalPitch(), 0.5f);
  EXPECT_EQ(event.GetDuration().AsInt64(), 480);
  EXPECT_EQ(event.GetDuration().GetType(), Time_eType_Ticks);
}

TEST(Vrae_PitchToMIDINoteWithDuration, IsReadThroughTheNoteView) {
  Vrae_Event event = Vrae_PitchToMIDINoteWithDuration(60, Ticks(480), 100, 30, 0.25f);
  event.AsNoteWithDuration().SetPitch(72);
  EXPECT_EQ(event.AsPitchToMIDINoteWithDuration().GetPitch(), 72);
  EXPECT_EQ(event.AsPitchToMIDINoteWithDuration().GetFractionalPitch(), 0.25f);
  EXPECT_EQ(event.AsNoteWithDuration().GetType(), 22);
}

TEST(Vrae_PitchBendEvent, HoldsItsWholeRange) {
  for (int bend = -8192; bend <= 8191; ++bend)
    ASSERT_EQ(Vrae_PitchBendEvent(static_cast<short>(bend)).GetBendValue(), bend);
}

TEST(Vrae_ControllerEvent, AModeMessageIsReportedAndStored) {
  Cmn_AssertRecorder const recorder;
  Vrae_ControllerEvent const event(120, 0);
  EXPECT_EQ(recorder.GetNum("iControllerNumber < 120"), 1);
  EXPECT_EQ(event.GetControllerNumber(), 120);
}

TEST(Vrae_ControllerEvent, SettersReplaceOneField) {
  Vrae_ControllerEvent event(7, 90);
  event.SetControllerNumber(119);
  EXPECT_EQ(event.GetControllerNumber(), 119);
  EXPECT_EQ(event.GetValue(), 90);
  event.SetValue(127);
  EXPECT_EQ(event.GetControllerNumber(), 119);
  EXPECT_EQ(event.GetValue(), 127);
}

TEST(Vrae_MonoPressureEvent, HoldsItsPressure) {
  Vrae_MonoPressureEvent event(127);
  EXPECT_EQ(event.GetPressure(), 127);
  event.SetPressure(0);
  EXPECT_EQ(event.GetPressure(), 0);
}

TEST(Vrae_PolyPressureEvent, HoldsPitchAndPressure) {
  Vrae_PolyPressureEvent event(60, 127);
  event.SetPitch(61);
  EXPECT_EQ(event.GetPitch(), 61);
  EXPECT_EQ(event.GetPressure(), 127);
  event.SetPressure(1);
  EXPECT_EQ(event.GetPressure(), 1);
}

TEST(Vrae_SongPositionEvent, HoldsItsWholeRange) {
  for (int position = 0; position <= 0x3fff; ++position)
    ASSERT_EQ(Vrae_SongPositionEvent(position).GetPosition(), position);
}

TEST(Vrae_SongPositionEvent, TheFieldIsSigned) {
  Cmn_AssertRecorder const silent;
  EXPECT_EQ(Vrae_SongPositionEvent(-1).GetPosition(), -1);
  EXPECT_EQ(Vrae_SongPositionEvent(0x8000).GetPosition(), -32768);
}

TEST(Vrae_ReleaseControllerEvent, HoldsAnyIndex) {
  Vrae_ReleaseControllerEvent event(249);
  EXPECT_EQ(event.GetIndex(), 249);
  event.SetIndex(INT_MIN);
  EXPECT_EQ(event.GetIndex(), INT_MIN);
}

TEST(Vrae_QuarterFrameEvent, TakesTheByteApart) {
  Vrae_QuarterFrameEvent const event(0x35);
  EXPECT_EQ(event.GetQFDataByte(), 0x35);
  EXPECT_EQ(event.GetQFMessage(), Vrae_QuarterFrameEvent::EQuarterFrameMessage(3));
  EXPECT_EQ(event.GetQFNibble(), 5);
}

TEST(Vrae_QuarterFrameEvent, TheMessageIsThreeBitsWide) {
  Vrae_QuarterFrameEvent const event(0xFF);
  EXPECT_EQ(event.GetQFMessage(), Vrae_QuarterFrameEvent::EQuarterFrameMessage(7));
  EXPECT_EQ(event.GetQFNibble(), 15);
}

TEST(Vrae_QuarterFrameEvent, IsPutTogetherWithoutMasking) {
  typedef Vrae_QuarterFrameEvent::EQuarterFrameMessage Message;
  EXPECT_EQ(Vrae_QuarterFrameEvent(Message(7), 2).GetQFDataByte(), 0x72);
  EXPECT_EQ(Vrae_QuarterFrameEvent(Message(1), 0x42).GetQFDataByte(), 0x52);
  EXPECT_EQ(Vrae_QuarterFrameEvent(Message(9), 1).GetQFDataByte(), 0x91);
  EXPECT_EQ(Vrae_QuarterFrameEvent(Message(17), 1).GetQFDataByte(), 0x11);
}

TEST(Vrae_ClipEvent, KeepsTheCountAndDropsTheUnit) {
  EXPECT_EQ(Vrae_ClipEvent("a", Ticks(480)).GetDuration(), 480u);
  EXPECT_EQ(Vrae_ClipEvent("a", Time_TypedLength(480, Time_eType_Samples)).GetDuration(), 480u);
  EXPECT_EQ(Vrae_ClipEvent("a", Ticks(-1)).GetDuration(), ULLONG_MAX);
}

TEST(Vrae_ClipEvent, PadsAShortNameWithZeros) {
  Vrae_ClipEvent const event("ab", Ticks(1));
  EXPECT_EQ(event.GetRegionName(), "ab");
  char expected[64] = {'a', 'b'};
  EXPECT_EQ(std::memcmp(event.mU.mClipEvent.mRegionName, expected, 64), 0);
}

TEST(Vrae_ClipEvent, HoldsANameOf62Characters) {
  EXPECT_EQ(Vrae_ClipEvent(std::string(62, 'x'), Ticks(1)).GetRegionName(), std::string(62, 'x'));
}

TEST(Vrae_ClipEvent, ANameOf63CharactersFillsTheCopiedBytes) {
  Vrae_ClipEvent const event(std::string(63, 'x'), Ticks(1));
  EXPECT_EQ(event.mU.mClipEvent.mRegionName[62], 'x');
  EXPECT_EQ(event.mU.mClipEvent.mRegionName[63], 0);
  EXPECT_EQ(event.GetRegionName(), std::string(63, 'x'));
}

TEST(Vrae_ClipEvent, ALongerNameReadsBackAsItsFirst63Characters) {
  EXPECT_EQ(Vrae_ClipEvent(std::string(70, 'x'), Ticks(1)).GetRegionName(), std::string(63, 'x'));
}

TEST(Vrae_ClipEvent, TheNameEndsAtTheFieldsEndWithoutATerminator) {
  Vrae_ClipEvent event(std::string(63, 'x'), Ticks(-1));
  event.mU.mClipEvent.mRegionName[63] = 'y';
  EXPECT_EQ(event.GetRegionName(), std::string(63, 'x') + "y");
}

TEST(Vrae_ClipEvent, HoldsAnEmptyName) {
  EXPECT_EQ(Vrae_ClipEvent("", Ticks(1)).GetRegionName(), "");
}
