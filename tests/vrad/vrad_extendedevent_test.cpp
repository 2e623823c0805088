#include "vrad/vrad_extendedevent.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "cmn/cmn_assert.h"
#include "support/realtime_scope.h"

namespace {

Time_Typed Tick(long long iCount) {
  return Time_Typed(iCount, Time_eType_Ticks);
}

Time_TypedLength Ticks(long long iCount) {
  return Time_TypedLength(iCount, Time_eType_Ticks);
}

Time_TypedLength Samples(long long iCount) {
  return Time_TypedLength(iCount, Time_eType_Samples);
}

Vrae_NoteWithDurationEvent Note(signed char iPitch = 60) {
  return Vrae_NoteWithDurationEvent(iPitch, Ticks(480), 80, 64);
}

Vrae_NoteWithDurationEvent DeletedNote() {
  Vrae_NoteWithDurationEvent note = Note();
  note.MarkForDeletion();
  return note;
}

// A note whose every field differs from the others here.
Vrad_NoteWithDurationExtendedEvent FullNote() {
  return Vrad_NoteWithDurationExtendedEvent(
      Tick(100), Note(), Samples(-7), Vrae_NoteWithDurationEvent(50, Samples(33), 11, 12), true);
}

Vrae_SourceStamp Stamp(int iFirst) {
  Vrae_SourceStamp stamp;
  stamp.mInputID = Vras_InputID(iFirst, 2);
  stamp.mStampFlag = 3;
  return stamp;
}

bool IsBlank(Vrae_SourceStamp const & iStamp) {
  return iStamp.mInputID == Vras_InputID() && iStamp.mStampFlag == 0;
}

void ExpectLength(Time_TypedLength iExpected, Time_TypedLength iLength) {
  EXPECT_EQ(iExpected.AsInt64(), iLength.AsInt64());
  EXPECT_EQ(iExpected.GetType(), iLength.GetType());
}

// What FullNote() holds as its original.
void ExpectFullOriginal(Vrae_NoteWithDurationEvent const & iOrig) {
  EXPECT_EQ(Vrae_Event::kNoteWithDuration, iOrig.GetType());
  EXPECT_EQ(50, iOrig.GetPitch());
  EXPECT_EQ(11, iOrig.GetOnVelocity());
  EXPECT_EQ(12, iOrig.GetOffVelocity());
  ExpectLength(Samples(33), iOrig.GetDuration());
}

void ExpectFullNote(Vrad_NoteWithDurationExtendedEvent const & iEvent) {
  EXPECT_EQ(100, iEvent.mTime.AsInt64());
  EXPECT_TRUE(iEvent.mEvent == Note());
  ExpectLength(Samples(-7), iEvent.GetQuantizeTimeDelta());
  ExpectFullOriginal(iEvent.GetOrigEvent());
  EXPECT_TRUE(iEvent.IsMuted());
}

}  // namespace

TEST(Vrad_ExtendedEvent, StartsPlainAndBlank) {
  Vrad_ExtendedEvent const event;
  EXPECT_EQ(0, event.mTime.AsInt64());
  EXPECT_EQ(Time_eType_Ticks, event.mTime.GetType());
  EXPECT_EQ(Vrae_Event::kNoEvent, event.mEvent.GetType());
  EXPECT_TRUE(IsBlank(event.mSourceStamp));
  EXPECT_EQ(0, event.mExtensionKind);
  EXPECT_FALSE(event.IsNoteWithDurationExtendedEvent());
}

TEST(Vrad_ExtendedEvent, StartsWithNoteFieldsOfZero) {
  Vrad_ExtendedEvent const event(Tick(5), Note());
  EXPECT_EQ(0, event.mQuantizeDeltaValue);
  EXPECT_EQ(Time_eType_Samples, event.mQuantizeDeltaType);
  EXPECT_EQ(0, event.mOrigPitch);
  EXPECT_EQ(0, event.mOrigOnVelocity);
  EXPECT_EQ(0, event.mOrigOffVelocity);
  EXPECT_EQ(0, event.mOrigDurationValue);
  EXPECT_EQ(Time_eType_Samples, event.mOrigDurationType);
  EXPECT_FALSE(event.mMuted);
}

TEST(Vrad_ExtendedEvent, TakesTimeAndEvent) {
  Vrad_ExtendedEvent const event(Tick(5), Note());
  EXPECT_EQ(5, event.mTime.AsInt64());
  EXPECT_TRUE(event.mEvent == Note());
  EXPECT_EQ(0, event.mExtensionKind) << "plain, though the event is a note";
}

TEST(Vrad_ExtendedEvent, ACopyHasABlankStamp) {
  Vrad_ExtendedEvent event(Tick(5), Note());
  event.mSourceStamp = Stamp(1);
  Vrad_ExtendedEvent const copy(event);
  EXPECT_TRUE(IsBlank(copy.mSourceStamp));
  EXPECT_TRUE(copy.mEvent == Note());
  EXPECT_EQ(5, copy.mTime.AsInt64());
}

TEST(Vrad_ExtendedEvent, MovingIsCopying) {
  Vrad_ExtendedEvent event(FullNote());
  event.mSourceStamp = Stamp(1);
  Vrad_ExtendedEvent const moved(std::move(event));
  EXPECT_TRUE(IsBlank(moved.mSourceStamp));
  ExpectFullNote(moved.AsNoteWithDurationExtendedEvent());
}

TEST(Vrad_ExtendedEvent, SlicingCopiesTheStamp) {
  Vrad_ExtendedEvent event(Tick(5), Note());
  event.mSourceStamp = Stamp(1);
  Vrae_TimedEvent const timed(event);
  EXPECT_EQ(1, timed.mSourceStamp.mInputID.mFirst);
  EXPECT_EQ(3, timed.mSourceStamp.mStampFlag);
}

TEST(Vrad_ExtendedEvent_Assignment, LeavesTheTargetsStamp) {
  Vrad_ExtendedEvent source(Tick(5), Note());
  source.mSourceStamp = Stamp(1);
  Vrad_ExtendedEvent target;
  target.mSourceStamp = Stamp(9);
  target = source;
  EXPECT_EQ(9, target.mSourceStamp.mInputID.mFirst);
  EXPECT_EQ(5, target.mTime.AsInt64());
}

TEST(Vrad_ExtendedEvent_Assignment, CopiesTheNoteFields) {
  Vrad_ExtendedEvent target;
  target = FullNote();
  ASSERT_TRUE(target.IsNoteWithDurationExtendedEvent());
  ExpectFullNote(target.AsNoteWithDurationExtendedEvent());
}

TEST(Vrad_ExtendedEvent_Assignment, OfAPlainEventLeavesTheNoteFieldsButNotTheirKind) {
  Vrad_ExtendedEvent target(FullNote());
  target = Vrad_ExtendedEvent(Tick(1), Vrae_ControllerEvent(7, 5));
  EXPECT_FALSE(target.IsNoteWithDurationExtendedEvent());
  EXPECT_EQ(Vrae_Event::kController, target.mEvent.GetType());
  EXPECT_EQ(-7, target.mQuantizeDeltaValue);
  EXPECT_EQ(50, target.mOrigPitch);
  EXPECT_EQ(33, target.mOrigDurationValue);
  EXPECT_TRUE(target.mMuted);
}

TEST(Vrad_ExtendedEvent_Assignment, TakesAnyOtherExtensionKindAsPlain) {
  Vrad_ExtendedEvent source(FullNote());
  source.mExtensionKind = 2;
  Vrad_ExtendedEvent target;
  target = source;
  EXPECT_EQ(0, target.mExtensionKind);
}

TEST(Vrad_ExtendedEvent_Assignment, ToItselfChangesNothing) {
  Vrad_ExtendedEvent event(FullNote());
  Vrad_ExtendedEvent const & same = event;
  event = same;
  ExpectFullNote(event.AsNoteWithDurationExtendedEvent());
}

TEST(Vrad_ExtendedEvent_Assignment, GivesAConstReference) {
  EXPECT_TRUE((std::is_same_v<Vrad_ExtendedEvent const &,
                              decltype(std::declval<Vrad_ExtendedEvent &>() =
                                           std::declval<Vrad_ExtendedEvent const &>())>));
}

TEST(Vrad_ExtendedEvent_Assignment, SharesALongSysex) {
  std::vector<unsigned char> const contents(20, 0x11);
  Vrad_ExtendedEvent const source(Tick(0), Vrae_SysexEvent(20, contents.data()));
  Vrad_ExtendedEvent target(Tick(0), Vrae_SysexEvent(20, contents.data()));
  target = source;
  EXPECT_EQ(source.mEvent.mU.mLongSysex.mSysexP, target.mEvent.mU.mLongSysex.mSysexP);
  Vrad_ExtendedEvent const copy(source);
  EXPECT_EQ(source.mEvent.mU.mLongSysex.mSysexP, copy.mEvent.mU.mLongSysex.mSysexP);
  target = Vrad_ExtendedEvent();
  EXPECT_EQ(Vrae_Event::kNoEvent, target.mEvent.GetType());
}

TEST(Vrad_ExtendedEvent_AsNote, IsTheSameObject) {
  Vrad_ExtendedEvent event(FullNote());
  Vrad_ExtendedEvent const & constant = event;
  Cmn_AssertRecorder recorder;
  EXPECT_EQ(&event, &event.AsNoteWithDurationExtendedEvent());
  EXPECT_EQ(&event, &constant.AsNoteWithDurationExtendedEvent());
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrad_ExtendedEvent_AsNote, ReportsAPlainEventAndGivesItAllTheSame) {
  Vrad_ExtendedEvent event(Tick(0), Note());
  Vrad_ExtendedEvent const & constant = event;
  Cmn_AssertRecorder recorder;
  EXPECT_EQ(&event, &event.AsNoteWithDurationExtendedEvent());
  EXPECT_EQ(&event, &constant.AsNoteWithDurationExtendedEvent());
  EXPECT_EQ(2, recorder.GetNum("IsNoteWithDurationExtendedEvent()"));
  EXPECT_FALSE(recorder.GetEntries()[0].mThrowing);
}

TEST(Vrad_NoteWithDurationExtendedEvent, AddsNoStorage) {
  EXPECT_EQ(sizeof(Vrad_ExtendedEvent), sizeof(Vrad_NoteWithDurationExtendedEvent));
  EXPECT_FALSE(std::is_polymorphic_v<Vrad_ExtendedEvent>);
}

TEST(Vrad_NoteWithDurationExtendedEvent, ANewNoteIsItsOwnOriginalAndNotMoved) {
  Vrad_NoteWithDurationExtendedEvent const event(Time_Typed(9, Time_eType_Samples), Note(), false);
  EXPECT_EQ(1, event.mExtensionKind);
  EXPECT_TRUE(IsBlank(event.mSourceStamp));
  ExpectLength(Samples(0), event.GetQuantizeTimeDelta());
  EXPECT_TRUE(event.GetOrigEvent() == Note());
  ExpectLength(Ticks(480), event.GetOrigEvent().GetDuration());
  EXPECT_FALSE(event.IsMuted());
}

TEST(Vrad_NoteWithDurationExtendedEvent, HasADeltaOfItsOwnTimesUnit) {
  Vrad_NoteWithDurationExtendedEvent const event(Tick(9), Note(), true);
  ExpectLength(Ticks(0), event.GetQuantizeTimeDelta());
  EXPECT_TRUE(event.IsMuted());
}

TEST(Vrad_NoteWithDurationExtendedEvent, TakesDeltaAndOriginalAsGiven) {
  Vrad_NoteWithDurationExtendedEvent const event = FullNote();
  EXPECT_EQ(1, event.mExtensionKind);
  EXPECT_TRUE(IsBlank(event.mSourceStamp));
  ExpectFullNote(event);
}

TEST(Vrad_NoteWithDurationExtendedEvent, KeepsAFractionalPitchButNotInTheOriginal) {
  Vrae_PitchToMIDINoteWithDuration const fractional(60, Ticks(480), 80, 64, 0.25f);
  Vrad_NoteWithDurationExtendedEvent const event(Tick(0), fractional.AsNoteWithDuration(), false);
  EXPECT_EQ(Vrae_Event::kPitchToMIDINoteWithDuration, event.mEvent.GetType());
  EXPECT_EQ(0.25f, event.mEvent.AsPitchToMIDINoteWithDuration().GetFractionalPitch());
  EXPECT_EQ(Vrae_Event::kNoteWithDuration, event.GetOrigEvent().GetType());
}

TEST(Vrad_NoteWithDurationExtendedEvent, CopiesWithABlankStamp) {
  Vrad_NoteWithDurationExtendedEvent event = FullNote();
  event.mSourceStamp = Stamp(1);
  Vrad_NoteWithDurationExtendedEvent const copy(event);
  EXPECT_TRUE(IsBlank(copy.mSourceStamp));
  ExpectFullNote(copy);
}

TEST(Vrad_NoteWithDurationExtendedEvent, AssignsAllButTheStamp) {
  Vrad_NoteWithDurationExtendedEvent target(Tick(0), Note(), false);
  target.mSourceStamp = Stamp(9);
  target = FullNote();
  ExpectFullNote(target);
  EXPECT_EQ(9, target.mSourceStamp.mInputID.mFirst);
}

TEST(Vrad_NoteWithDurationExtendedEvent, AssignsFromAPlainEventAsFromANote) {
  Vrad_ExtendedEvent plain(FullNote());
  plain.mExtensionKind = 0;
  Vrad_NoteWithDurationExtendedEvent target(Tick(0), Note(), false);
  {
    Cmn_AssertRecorder recorder;
    target = plain.AsNoteWithDurationExtendedEvent();
  }
  EXPECT_EQ(1, target.mExtensionKind);
  ExpectFullNote(target);
}

TEST(Vrad_NoteWithDurationExtendedEvent, CopyingReportsAnOriginalThatWasMarkedForDeletion) {
  Vrad_NoteWithDurationExtendedEvent const event(Tick(0), DeletedNote(), false);
  Cmn_AssertRecorder recorder;
  Vrad_NoteWithDurationExtendedEvent const copy(event);
  EXPECT_LE(1, recorder.GetNum("iOnVelocity >= 1"));
  EXPECT_EQ(0, copy.mOrigOnVelocity);
}

TEST(Vrad_NoteWithDurationExtendedEvent, BuildingFromADeletedNoteReportsNothing) {
  Vrae_NoteWithDurationEvent const deleted = DeletedNote();
  Cmn_AssertRecorder recorder;
  Vrad_NoteWithDurationExtendedEvent const event(Tick(0), deleted, false);
  EXPECT_EQ(0, recorder.GetNum());
  EXPECT_EQ(0, event.mOrigOnVelocity);
}

TEST(Vrad_NoteWithDurationExtendedEvent_GetOrigEvent, ReportsWhatANoteCannotHave) {
  Vrad_NoteWithDurationExtendedEvent event(Tick(0), Note(), false);
  event.mOrigPitch = -1;
  event.mOrigOnVelocity = 0;
  event.mOrigOffVelocity = -1;
  event.mOrigDurationValue = 0;
  Cmn_AssertRecorder recorder;
  Vrae_NoteWithDurationEvent const orig = event.GetOrigEvent();
  EXPECT_EQ(1, recorder.GetNum("iPitch >= 0"));
  EXPECT_EQ(1, recorder.GetNum("iOnVelocity >= 1"));
  EXPECT_EQ(1, recorder.GetNum("iOffVelocity >= 0"));
  EXPECT_EQ(1, recorder.GetNum("iDuration >= Time_TypedLength(1, iDuration.GetType())"));
  EXPECT_EQ(-1, orig.GetPitch());
  EXPECT_EQ(0, orig.GetOnVelocity());
}

TEST(Vrad_NoteWithDurationExtendedEvent_SetOrigEvent, KeepsValuesButNotTheKind) {
  Vrad_NoteWithDurationExtendedEvent event(Tick(0), Note(), false);
  Vrae_PitchToMIDINoteWithDuration const fractional(50, Samples(33), 11, 12, 0.25f);
  event.SetOrigEvent(fractional.AsNoteWithDuration());
  ExpectFullOriginal(event.GetOrigEvent());
  EXPECT_TRUE(event.mEvent == Note());
}

TEST(Vrad_NoteWithDurationExtendedEvent_SetQuantizeTimeDelta, ReplacesValueAndUnit) {
  Vrad_NoteWithDurationExtendedEvent event(Tick(0), Note(), false);
  event.SetQuantizeTimeDelta(Samples(-3));
  ExpectLength(Samples(-3), event.GetQuantizeTimeDelta());
}

TEST(Vrad_NoteWithDurationExtendedEvent_AdjustQuantizeTimeDelta, AddsInTheSameUnit) {
  Vrad_NoteWithDurationExtendedEvent event(Tick(0), Note(), false);
  event.SetQuantizeTimeDelta(Samples(-3));
  event.AdjustQuantizeTimeDelta(Samples(10));
  ExpectLength(Samples(7), event.GetQuantizeTimeDelta());
}

TEST(Vrad_NoteWithDurationExtendedEvent_AdjustQuantizeTimeDelta, RefusesTheOtherUnit) {
  Vrad_NoteWithDurationExtendedEvent event(Tick(0), Note(), false);
  event.SetQuantizeTimeDelta(Samples(-3));
  Cmn_AssertRecorder recorder;
  event.AdjustQuantizeTimeDelta(Ticks(400));
  ASSERT_EQ(1, recorder.GetNum("!bFail"));
  EXPECT_FALSE(recorder.GetEntries()[0].mThrowing);
  ExpectLength(Samples(-3), event.GetQuantizeTimeDelta());
}

TEST(Vrad_NoteWithDurationExtendedEvent_ResetQuantizeTimeDelta, LeavesZeroInTheGivenUnit) {
  Vrad_NoteWithDurationExtendedEvent event(Tick(0), Note(), false);
  event.SetQuantizeTimeDelta(Ticks(5));
  event.ResetQuantizeTimeDelta(Time_eType_Samples);
  ExpectLength(Samples(0), event.GetQuantizeTimeDelta());
}

TEST(Vrad_NoteListBase_Note, StartsAsABlankNote) {
  Vrad_NoteListBase_Note const note;
  EXPECT_EQ(0, note.mTime.AsInt64());
  EXPECT_EQ(Vrae_Event::kNoteWithDuration, note.mEvent.GetType());
  EXPECT_EQ(Vrae_Event::kNoteWithDuration, note.mOrigEvent.GetType());
  EXPECT_EQ(0, note.mQuantizeTimeDelta.AsInt64());
  EXPECT_FALSE(note.mMuted);
}

TEST(Vrad_NoteListBase_Note, ANewNoteIsItsOwnOriginal) {
  Vrad_NoteListBase_Note const note(Time_Typed(9, Time_eType_Samples), Note());
  EXPECT_EQ(9, note.mTime.AsInt64());
  EXPECT_TRUE(note.mEvent == Note());
  EXPECT_TRUE(note.mOrigEvent == Note());
  ExpectLength(Ticks(480), note.mOrigEvent.GetDuration());
  ExpectLength(Samples(0), note.mQuantizeTimeDelta);
  EXPECT_FALSE(note.mMuted);
}

TEST(Vrad_NoteListBase_Note, ANewFractionalNoteHasAnOriginalOfThePlainKind) {
  Vrae_PitchToMIDINoteWithDuration const fractional(50, Samples(33), 11, 12, 0.25f);
  Vrad_NoteListBase_Note const note(Tick(0), fractional.AsNoteWithDuration());
  EXPECT_EQ(Vrae_Event::kPitchToMIDINoteWithDuration, note.mEvent.GetType());
  ExpectFullOriginal(note.mOrigEvent);
}

TEST(Vrad_NoteListBase_Note, ANewDeletedNoteIsTakenInSilence) {
  Vrae_NoteWithDurationEvent const deleted = DeletedNote();
  Cmn_AssertRecorder recorder;
  Vrad_NoteListBase_Note const note(Tick(0), deleted);
  EXPECT_EQ(0, note.mOrigEvent.GetOnVelocity());
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrad_NoteListBase_Note, TakesAllFieldsAsGiven) {
  Vrae_NoteWithDurationEvent const orig(50, Samples(33), 11, 12);
  Vrad_NoteListBase_Note const note(Tick(100), Note(), Samples(-7), orig, true);
  EXPECT_EQ(100, note.mTime.AsInt64());
  EXPECT_TRUE(note.mEvent == Note());
  ExpectLength(Samples(-7), note.mQuantizeTimeDelta);
  ExpectFullOriginal(note.mOrigEvent);
  EXPECT_TRUE(note.mMuted);
}

TEST(Vrad_NoteListBase_Note, ComesFromAnExtendedNoteAndGoesBack) {
  Vrad_NoteListBase_Note const note(FullNote());
  EXPECT_TRUE(note.mEvent == Note());
  ExpectLength(Samples(-7), note.mQuantizeTimeDelta);
  ExpectFullOriginal(note.mOrigEvent);
  EXPECT_TRUE(note.mMuted);
  ExpectFullNote(Vrad_NoteWithDurationExtendedEvent(
      note.mTime, note.mEvent, note.mQuantizeTimeDelta, note.mOrigEvent, note.mMuted));
}

TEST(Vrad_NoteListBase_Note, KeepsAFractionalPitchFromAnExtendedNote) {
  Vrae_PitchToMIDINoteWithDuration const fractional(50, Samples(33), 11, 12, 0.25f);
  Vrad_NoteListBase_Note const note(
      Vrad_NoteWithDurationExtendedEvent(Tick(0), fractional.AsNoteWithDuration(), false));
  EXPECT_EQ(Vrae_Event::kPitchToMIDINoteWithDuration, note.mEvent.GetType());
  EXPECT_EQ(0.25f, note.mEvent.AsPitchToMIDINoteWithDuration().GetFractionalPitch());
  ExpectFullOriginal(note.mOrigEvent);
}

TEST(Vrad_NoteListBase_Note, ReportsAnOriginalThatANoteCannotHave) {
  Vrad_NoteWithDurationExtendedEvent const event(Tick(0), DeletedNote(), false);
  Cmn_AssertRecorder recorder;
  Vrad_NoteListBase_Note const note(event);
  EXPECT_EQ(1, recorder.GetNum("iOnVelocity >= 1"));
}

TEST(Vrad_NoteListBase_Note, StoresAWrongKindAsItLies) {
  Vrad_NoteWithDurationExtendedEvent event(Tick(0), Note(), false);
  static_cast<Vrae_Event &>(event.mEvent) = Vrae_ControllerEvent(7, 5);
  Cmn_AssertRecorder recorder;
  Vrad_NoteListBase_Note const note(event);
  EXPECT_EQ(Vrae_Event::kController, note.mEvent.GetType());
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrad_NoteListBase_Note, ComesFromAnExtendedNoteOnlyWhenAsked) {
  EXPECT_FALSE(
      (std::is_convertible_v<Vrad_NoteWithDurationExtendedEvent const &, Vrad_NoteListBase_Note>));
  EXPECT_TRUE((
      std::is_constructible_v<Vrad_NoteListBase_Note, Vrad_NoteWithDurationExtendedEvent const &>));
}

TEST(Vrad_ExtendedEvent_RealTime, CopyingTakesNothing) {
  std::vector<unsigned char> const contents(20, 0x11);
  Vrad_ExtendedEvent const sysex(Tick(0), Vrae_SysexEvent(20, contents.data()));
  Vrad_NoteWithDurationExtendedEvent const note = FullNote();
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              Vrad_ExtendedEvent copy(sysex);
              copy = note;
              Vrad_NoteWithDurationExtendedEvent const second(note);
              Vrad_NoteListBase_Note const stored(second);
            }));
}

TEST(Vrad_ExtendedEventIterator, IsAbstractWithAVirtualDestructor) {
  EXPECT_TRUE(std::is_abstract_v<Vrad_ExtendedEventIterator>);
  EXPECT_TRUE(std::has_virtual_destructor_v<Vrad_ExtendedEventIterator>);
}

TEST(Vrad_IRTProperties, ChangesTheEventInPlace) {
  struct Transposer : Vrad_IRTProperties {
    void ApplyRealTimeProperties(Vrad_ExtendedEvent & ioEvent, int iPropertyMask) const override {
      if (iPropertyMask & 1) ioEvent.mEvent.AsNoteWithDuration().SetPitch(72);
    }
  } const transposer;
  Vrad_IRTProperties const & properties = transposer;
  Vrad_ExtendedEvent event(Tick(0), Note());
  properties.ApplyRealTimeProperties(event, 2);
  EXPECT_EQ(60, event.mEvent.AsNoteWithDuration().GetPitch());
  properties.ApplyRealTimeProperties(event, 1);
  EXPECT_EQ(72, event.mEvent.AsNoteWithDuration().GetPitch());
}
