#include "vrad/vrae_timedevent.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "cmn/cmn_assert.h"

namespace {

constexpr char const * kNoteText = "mU.mBase.mType == kNoteWithDuration || "
                                   "mU.mBase.mType == kPitchToMIDINoteWithDuration";

Time_Typed Tick(long long iCount) {
  return Time_Typed(iCount, Time_eType_Ticks);
}

Time_Typed Sample(long long iCount) {
  return Time_Typed(iCount, Time_eType_Samples);
}

Time_TypedLength Ticks(long long iCount) {
  return Time_TypedLength(iCount, Time_eType_Ticks);
}

Time_TypedLength Samples(long long iCount) {
  return Time_TypedLength(iCount, Time_eType_Samples);
}

Vrae_TimedEvent Note(Time_Typed iTime, Time_TypedLength iDuration, signed char iPitch = 60) {
  return Vrae_TimedEvent(iTime, Vrae_NoteWithDurationEvent(iPitch, iDuration, 80, 64));
}

Vrae_TimedEvent FractionalNote(Time_Typed iTime, Time_TypedLength iDuration) {
  return Vrae_TimedEvent(iTime, Vrae_PitchToMIDINoteWithDuration(60, iDuration, 80, 64, 0.5f));
}

Vrae_TimedEvent Controller(Time_Typed iTime) {
  return Vrae_TimedEvent(iTime, Vrae_ControllerEvent(7, 100));
}

Vrae_SourceStamp Stamp(int iFirst, int iSecond, signed char iFlag) {
  Vrae_SourceStamp stamp;
  stamp.mInputID = Vras_InputID(iFirst, iSecond);
  stamp.mStampFlag = iFlag;
  return stamp;
}

bool IsBlank(Vrae_SourceStamp const & iStamp) {
  return iStamp.mInputID == Vras_InputID() && iStamp.mStampFlag == 0;
}

Vrae_Chord ChordOf(Vrae_TimedEvent const & iEvent) {
  Vrae_Chord chord;
  chord.push_back(iEvent);
  return chord;
}

}  // namespace

TEST(Vras_InputID, StartsZero) {
  EXPECT_EQ(0, Vras_InputID().mFirst);
  EXPECT_EQ(0, Vras_InputID().mSecond);
}

TEST(Vras_InputID, TakesFieldsInOrder) {
  EXPECT_EQ(3, Vras_InputID(3, 4).mFirst);
  EXPECT_EQ(4, Vras_InputID(3, 4).mSecond);
}

TEST(Vras_InputID, ComparesBothFields) {
  EXPECT_TRUE(Vras_InputID(1, 2) == Vras_InputID(1, 2));
  EXPECT_FALSE(Vras_InputID(1, 2) == Vras_InputID(1, 3));
  EXPECT_FALSE(Vras_InputID(1, 2) == Vras_InputID(2, 2));
  EXPECT_FALSE(Vras_InputID(1, 2) != Vras_InputID(1, 2));
  EXPECT_TRUE(Vras_InputID(1, 2) != Vras_InputID(0, 2));
}

TEST(Vras_InputID, OrdersBySecondFieldFirst) {
  EXPECT_TRUE(Vras_InputID(2, 1) < Vras_InputID(1, 2));
  EXPECT_FALSE(Vras_InputID(1, 2) < Vras_InputID(2, 1));
}

TEST(Vras_InputID, OrdersByFirstFieldWhenSecondIsEqual) {
  EXPECT_TRUE(Vras_InputID(1, 2) < Vras_InputID(2, 2));
  EXPECT_FALSE(Vras_InputID(2, 2) < Vras_InputID(1, 2));
  EXPECT_FALSE(Vras_InputID(2, 2) < Vras_InputID(2, 2));
}

TEST(Vrae_TimedEvent, StartsAsNoEventAtTickZero) {
  Vrae_TimedEvent const event;
  EXPECT_EQ(0, event.mTime.AsInt64());
  EXPECT_EQ(Time_eType_Ticks, event.mTime.GetType());
  EXPECT_EQ(Vrae_Event::kNoEvent, event.mEvent.GetType());
  EXPECT_TRUE(IsBlank(event.mSourceStamp));
}

TEST(Vrae_TimedEvent, HasABlankStampUnlessGiven) {
  Vrae_TimedEvent const event(Sample(5), Vrae_ControllerEvent(7, 100));
  EXPECT_EQ(5, event.mTime.AsInt64());
  EXPECT_EQ(Time_eType_Samples, event.mTime.GetType());
  EXPECT_EQ(100, event.mEvent.AsController().GetValue());
  EXPECT_TRUE(IsBlank(event.mSourceStamp));
}

TEST(Vrae_TimedEvent, KeepsTheStampGiven) {
  Vrae_TimedEvent const event(Tick(5), Vrae_ControllerEvent(7, 100), Stamp(1, 2, 3));
  EXPECT_EQ(1, event.mSourceStamp.mInputID.mFirst);
  EXPECT_EQ(2, event.mSourceStamp.mInputID.mSecond);
  EXPECT_EQ(3, event.mSourceStamp.mStampFlag);
}

TEST(Vrae_TimedEvent, CopiesAndAssignsFieldByField) {
  Vrae_TimedEvent const event(Tick(5), Vrae_ControllerEvent(7, 100), Stamp(1, 2, 3));
  Vrae_TimedEvent const copy(event);
  Vrae_TimedEvent assigned;
  assigned = event;
  Vrae_TimedEvent const moved(std::move(assigned));
  for (Vrae_TimedEvent const & other : {copy, moved}) {
    EXPECT_TRUE(other == event);
    EXPECT_EQ(3, other.mSourceStamp.mStampFlag);
  }
}

TEST(Vrae_TimedEvent, CopiesShareALongSysex) {
  std::vector<unsigned char> const contents(20, 0x11);
  Vrae_TimedEvent const event(Tick(0), Vrae_SysexEvent(20, contents.data()));
  ASSERT_EQ(Vrae_Event::kLongSysex, event.mEvent.GetType());
  Vrae_TimedEvent const copy(event);
  EXPECT_EQ(event.mEvent.mU.mLongSysex.mSysexP, copy.mEvent.mU.mLongSysex.mSysexP);
}

TEST(Vrae_TimedEvent, IsNoteForBothNoteKinds) {
  EXPECT_TRUE(Note(Tick(0), Ticks(1)).IsNoteWithDurationEvent());
  EXPECT_TRUE(FractionalNote(Tick(0), Ticks(1)).IsNoteWithDurationEvent());
}

TEST(Vrae_TimedEvent, IsNoNoteForOtherKinds) {
  EXPECT_FALSE(Vrae_TimedEvent().IsNoteWithDurationEvent());
  EXPECT_FALSE(Controller(Tick(0)).IsNoteWithDurationEvent());
  EXPECT_FALSE(Vrae_TimedEvent(Tick(0), Vrae_NoteOnEvent(60, 1)).IsNoteWithDurationEvent());
  EXPECT_FALSE(Vrae_TimedEvent(Tick(0), Vrae_AddNoteInProgressEvent(60, Ticks(1), 1, 1))
                   .IsNoteWithDurationEvent());
}

TEST(Vrae_TimedEvent_GetDuration, GivesTheNotesDuration) {
  EXPECT_EQ(17, Note(Tick(0), Samples(17)).GetDuration().AsInt64());
  EXPECT_EQ(Time_eType_Samples, Note(Tick(0), Samples(17)).GetDuration().GetType());
  EXPECT_EQ(18, FractionalNote(Tick(0), Ticks(18)).GetDuration().AsInt64());
}

TEST(Vrae_TimedEvent_GetDuration, OfAControllerIsADefaultLength) {
  Cmn_AssertRecorder recorder;
  Time_TypedLength const length = Controller(Tick(9)).GetDuration();
  EXPECT_EQ(Time_TypedLength().AsInt64(), length.AsInt64());
  EXPECT_EQ(Time_TypedLength().GetType(), length.GetType());
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrae_TimedEvent_PlaybackOrdering, GoesByTimeFirst) {
  Vrae_TimedEvent const note = Note(Tick(1), Ticks(1));
  Vrae_TimedEvent const controller = Controller(Tick(2));
  EXPECT_TRUE(Vrae_TimedEvent::PlaybackOrdering(note, controller));
  EXPECT_FALSE(Vrae_TimedEvent::PlaybackOrdering(controller, note));
}

TEST(Vrae_TimedEvent_PlaybackOrdering, GoesByPriorityAtOneTime) {
  std::vector<Vrae_TimedEvent> const inOrder = {
      Vrae_TimedEvent(Tick(0), Vrae_ReleaseControllerEvent(5)),
      Vrae_TimedEvent(Tick(0), Vrae_ProgramEvent(5, 0)),
      Vrae_TimedEvent(Tick(0), Vrae_ControllerEvent(7, 1)),
      Vrae_TimedEvent(Tick(0), Vrae_PitchBendEvent(5)),
      Vrae_TimedEvent(Tick(0), Vrae_NoteOffEvent(60, 1)),
      Vrae_TimedEvent(Tick(0), Vrae_NoteOnEvent(60, 1))};
  for (size_t a = 0; a < inOrder.size(); ++a) {
    for (size_t b = 0; b < inOrder.size(); ++b)
      EXPECT_EQ(a < b, Vrae_TimedEvent::PlaybackOrdering(inOrder[a], inOrder[b])) << a << " " << b;
  }
}

TEST(Vrae_TimedEvent_PlaybackOrdering, HasNoFurtherTieBreak) {
  EXPECT_FALSE(
      Vrae_TimedEvent::PlaybackOrdering(Note(Tick(0), Ticks(1), 60), Note(Tick(0), Ticks(1), 61)));
  EXPECT_FALSE(
      Vrae_TimedEvent::PlaybackOrdering(Note(Tick(0), Ticks(1), 61), Note(Tick(0), Ticks(1), 60)));
}

TEST(Vrae_TimedEvent_PlaybackOrdering, TakesEqualInstantsOfBothUnitsAsEqual) {
  EXPECT_TRUE(Vrae_TimedEvent::PlaybackOrdering(Controller(Tick(40)), Note(Sample(1), Ticks(1))));
  EXPECT_FALSE(Vrae_TimedEvent::PlaybackOrdering(Note(Sample(1), Ticks(1)), Controller(Tick(40))));
  EXPECT_TRUE(Vrae_TimedEvent::PlaybackOrdering(Note(Tick(39), Ticks(1)), Controller(Sample(1))));
}

TEST(Vrae_TimedEvent_PlaybackOrdering, IgnoresTheStamp) {
  Vrae_TimedEvent const a(Tick(0), Vrae_NoteOnEvent(60, 1), Stamp(1, 1, 1));
  Vrae_TimedEvent const b(Tick(0), Vrae_NoteOnEvent(60, 1), Stamp(2, 2, 2));
  EXPECT_FALSE(Vrae_TimedEvent::PlaybackOrdering(a, b));
  EXPECT_FALSE(Vrae_TimedEvent::PlaybackOrdering(b, a));
}

TEST(Vrae_TimedEvent_Equality, ComparesTimeAndEvent) {
  EXPECT_TRUE(Controller(Tick(1)) == Controller(Tick(1)));
  EXPECT_FALSE(Controller(Tick(1)) == Controller(Tick(2)));
  EXPECT_FALSE(Controller(Tick(1)) == Vrae_TimedEvent(Tick(1), Vrae_ControllerEvent(7, 99)));
}

TEST(Vrae_TimedEvent_Equality, IgnoresTheStamp) {
  EXPECT_TRUE(Vrae_TimedEvent(Tick(0), Vrae_NoteOnEvent(60, 1), Stamp(1, 1, 1)) ==
              Vrae_TimedEvent(Tick(0), Vrae_NoteOnEvent(60, 1)));
}

TEST(Vrae_TimedEvent_Equality, LooksAtTheEventsOnlyAtEqualTimes) {
  Cmn_AssertRecorder recorder;
  EXPECT_FALSE(FractionalNote(Tick(0), Ticks(1)) == FractionalNote(Tick(1), Ticks(1)));
  EXPECT_EQ(0, recorder.GetNum());
  EXPECT_THROW((void)(FractionalNote(Tick(0), Ticks(1)) == FractionalNote(Tick(0), Ticks(1))),
               Cmn_AssertException);
}

TEST(Vrae_TimedEventList_GetLatestNoteOff, OfAnEmptyListIsSampleZero) {
  Time_Typed const latest = Vrae_TimedEventList().GetLatestNoteOff();
  EXPECT_EQ(0, latest.AsInt64());
  EXPECT_EQ(Time_eType_Samples, latest.GetType());
}

TEST(Vrae_TimedEventList_GetLatestNoteOff, SkipsNotesWithAFractionalPitch) {
  Vrae_TimedEventList list;
  list.push_back(FractionalNote(Sample(100), Samples(50)));
  EXPECT_EQ(0, list.GetLatestNoteOff().AsInt64());
  EXPECT_EQ(Time_eType_Samples, list.GetLatestNoteOff().GetType());
}

TEST(Vrae_TimedEventList_GetLatestNoteOff, SkipsOtherKinds) {
  Vrae_TimedEventList list;
  list.push_back(Controller(Sample(100)));
  EXPECT_EQ(0, list.GetLatestNoteOff().AsInt64());
}

TEST(Vrae_TimedEventList_GetLatestNoteOff, IsTheLatestEndAndNotTheLastOne) {
  Vrae_TimedEventList list;
  list.push_back(Note(Sample(0), Samples(500)));
  list.push_back(Note(Sample(100), Samples(10)));
  EXPECT_EQ(500, list.GetLatestNoteOff().AsInt64());
}

TEST(Vrae_TimedEventList_GetLatestNoteOff, ConvertsTicksToSamples) {
  Vrae_TimedEventList list;
  list.push_back(Note(Sample(0), Samples(10)));
  list.push_back(Note(Tick(400), Ticks(400)));
  EXPECT_EQ(20, list.GetLatestNoteOff().AsInt64());
  EXPECT_EQ(Time_eType_Samples, list.GetLatestNoteOff().GetType());
}

TEST(Vrae_TimedEventList_GetLatestNoteOff, OfNotesBeforeZeroIsSampleZero) {
  Vrae_TimedEventList list;
  list.push_back(Note(Sample(-100), Samples(10)));
  EXPECT_EQ(0, list.GetLatestNoteOff().AsInt64());
}

TEST(Vrae_TimedEventList, CopiesItsElements) {
  Vrae_TimedEventList list;
  list.push_back(Note(Tick(1), Ticks(2)));
  Vrae_TimedEventList copy(list);
  copy.push_back(Note(Tick(3), Ticks(4)));
  EXPECT_EQ(1u, list.size());
  EXPECT_EQ(2u, copy.size());
  list = copy;
  EXPECT_TRUE(list[1] == copy[1]);
}

TEST(Vrae_Chord, CanBeCopiedMovedAndAssigned) {
  EXPECT_TRUE(std::is_copy_constructible_v<Vrae_Chord>);
  EXPECT_TRUE(std::is_move_constructible_v<Vrae_Chord>);
  EXPECT_TRUE(std::is_copy_assignable_v<Vrae_Chord>);
  EXPECT_TRUE(std::is_move_assignable_v<Vrae_Chord>);
  Vrae_Chord const chord = ChordOf(Note(Tick(1), Ticks(2)));
  Vrae_Chord copy(chord);
  Vrae_Chord const moved(std::move(copy));
  EXPECT_TRUE(moved.InChord(Note(Tick(1), Ticks(2))));
}

TEST(Vrae_Chord_CanAdd, AnEmptyChordTakesAnythingUnexamined) {
  Cmn_AssertRecorder recorder;
  EXPECT_TRUE(Vrae_Chord().CanAdd(Controller(Tick(0))));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrae_Chord_CanAdd, ReportsANewEventThatIsNoNote) {
  Vrae_Chord const chord = ChordOf(Note(Tick(0), Ticks(100)));
  Cmn_AssertRecorder recorder;
  chord.CanAdd(Controller(Tick(0)));
  EXPECT_EQ(1, recorder.GetNum(kNoteText));
  EXPECT_EQ(1, recorder.GetNum());
}

TEST(Vrae_Chord_CanAdd, ReportsALastEventThatIsNoNote) {
  Vrae_Chord const chord = ChordOf(Controller(Tick(0)));
  Cmn_AssertRecorder recorder;
  chord.CanAdd(Note(Tick(0), Ticks(100)));
  EXPECT_EQ(1, recorder.GetNum(kNoteText));
}

TEST(Vrae_Chord_CanAdd, ReportsBothThatAreNoNotes) {
  Vrae_Chord const chord = ChordOf(Controller(Tick(0)));
  Cmn_AssertRecorder recorder;
  chord.CanAdd(Controller(Tick(0)));
  EXPECT_EQ(2, recorder.GetNum(kNoteText));
}

TEST(Vrae_Chord_CanAdd, TakesNotesWithAFractionalPitchInSilence) {
  Vrae_Chord const chord = ChordOf(FractionalNote(Tick(0), Ticks(100)));
  Cmn_AssertRecorder recorder;
  EXPECT_TRUE(chord.CanAdd(FractionalNote(Tick(0), Ticks(100))));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrae_Chord_CanAdd, TakesNotesThatStartTogetherWithEqualLengths) {
  EXPECT_TRUE(ChordOf(Note(Tick(0), Ticks(100))).CanAdd(Note(Tick(0), Ticks(100), 64)));
}

TEST(Vrae_Chord_CanAdd, TakesAnOverlapOfThreeQuartersOfTheLonger) {
  // Outside the window of 1000, so that the overlap alone decides.
  Vrae_Chord const chord = ChordOf(Note(Tick(0), Ticks(4000)));
  EXPECT_TRUE(chord.CanAdd(Note(Tick(1000), Ticks(3000))));
  EXPECT_FALSE(chord.CanAdd(Note(Tick(1001), Ticks(2999))));
}

TEST(Vrae_Chord_CanAdd, TakesTheLongerOfTheTwoWhicheverItIs) {
  Vrae_Chord const chord = ChordOf(Note(Tick(1000), Ticks(3000)));
  EXPECT_TRUE(chord.CanAdd(Note(Tick(1000), Ticks(4000))));
  // Starts before the last note: within the window whatever the overlap.
  EXPECT_TRUE(chord.CanAdd(Note(Tick(0), Ticks(10))));
}

TEST(Vrae_Chord_CanAdd, RoundsThreeQuartersDown) {
  // Three quarters of 1 is 0, and notes that only touch overlap by 0.
  Vrae_Chord const chord = ChordOf(Note(Tick(0), Ticks(1)));
  EXPECT_TRUE(chord.CanAdd(Note(Tick(1), Ticks(1))));
  EXPECT_FALSE(chord.CanAdd(Note(Tick(2), Ticks(1))));
}

TEST(Vrae_Chord_CanAdd, MultipliesByThreeBeforeItDividesByFour) {
  // Three quarters of 6 are 4, not three times 6 / 4; and of 7 they are 5.
  EXPECT_FALSE(ChordOf(Note(Tick(0), Ticks(6))).CanAdd(Note(Tick(3), Ticks(3))));
  EXPECT_TRUE(ChordOf(Note(Tick(0), Ticks(6))).CanAdd(Note(Tick(2), Ticks(4))));
  EXPECT_FALSE(ChordOf(Note(Tick(0), Ticks(7))).CanAdd(Note(Tick(3), Ticks(4))));
  EXPECT_TRUE(ChordOf(Note(Tick(0), Ticks(7))).CanAdd(Note(Tick(2), Ticks(5))));
}

TEST(Vrae_Chord_CanAdd, RoundsAQuarterOfAShortNoteDown) {
  // A quarter of 11 is 2.
  Vrae_Chord const chord = ChordOf(Note(Tick(0), Ticks(11)));
  EXPECT_TRUE(chord.CanAdd(Note(Tick(1), Ticks(1000))));
  EXPECT_FALSE(chord.CanAdd(Note(Tick(2), Ticks(1000))));
}

TEST(Vrae_Chord_CanAdd, HasAWindowOf480000TicksAfterALongNote) {
  Vrae_Chord const chord = ChordOf(Note(Tick(0), Ticks(9600000)));
  EXPECT_FALSE(chord.CanAdd(Note(Tick(480000), Ticks(1000))));
  EXPECT_FALSE(chord.CanAdd(Note(Tick(480001), Ticks(1000))));
  EXPECT_TRUE(chord.CanAdd(Note(Tick(479999), Ticks(1000))));
}

TEST(Vrae_Chord_CanAdd, HasAWindowOfAQuarterOfAShortNote) {
  Vrae_Chord const chord = ChordOf(Note(Tick(0), Ticks(100)));
  EXPECT_FALSE(chord.CanAdd(Note(Tick(25), Ticks(1000))));
  EXPECT_TRUE(chord.CanAdd(Note(Tick(24), Ticks(1000))));
}

TEST(Vrae_Chord_CanAdd, MeasuresTheWindowFromASamplePosition) {
  // 480000 ticks are 12000 samples.
  Vrae_Chord const chord = ChordOf(Note(Sample(100), Samples(1000000)));
  EXPECT_TRUE(chord.CanAdd(Note(Sample(12099), Samples(10))));
  EXPECT_FALSE(chord.CanAdd(Note(Sample(12100), Samples(10))));
}

TEST(Vrae_Chord_CanAdd, ConsultsTheLastElementAlone) {
  Vrae_Chord chord = ChordOf(Note(Tick(0), Ticks(9600000)));
  chord.push_back(Note(Tick(400000), Ticks(9600000)));
  EXPECT_TRUE(chord.CanAdd(Note(Tick(800000), Ticks(1000))));
}

TEST(Vrae_Chord_CanAdd, TakesANoteThatStartsBeforeTheChord) {
  EXPECT_TRUE(ChordOf(Note(Tick(1000), Ticks(100))).CanAdd(Note(Tick(0), Ticks(10))));
}

TEST(Vrae_Chord_InChord, IsFalseForAnEmptyChord) {
  EXPECT_FALSE(Vrae_Chord().InChord(Note(Tick(0), Ticks(1))));
}

TEST(Vrae_Chord_InChord, FindsAnEqualEvent) {
  Vrae_Chord chord = ChordOf(Note(Tick(0), Ticks(1)));
  chord.push_back(Note(Tick(5), Ticks(2), 64));
  EXPECT_TRUE(chord.InChord(Note(Tick(5), Ticks(2), 64)));
  EXPECT_FALSE(chord.InChord(Note(Tick(5), Ticks(2), 65)));
  EXPECT_FALSE(chord.InChord(Note(Tick(6), Ticks(2), 64)));
}

TEST(Vrae_TimedEventReceiver, LetsTheEndOfEventsPass) {
  struct Receiver : Vrae_TimedEventReceiver {
    void ReceiveEvent(Vrae_TimedEvent const &) override { ++mNum; }
    int mNum = 0;
  } receiver;
  receiver.ReceiveEvent(Vrae_TimedEvent());
  receiver.EndOfEvents();
  EXPECT_EQ(1, receiver.mNum);
}

TEST(Vrae_TimedEventIterator, IsAbstractWithAVirtualDestructor) {
  EXPECT_TRUE(std::is_abstract_v<Vrae_TimedEventIterator>);
  EXPECT_TRUE(std::has_virtual_destructor_v<Vrae_TimedEventIterator>);
  EXPECT_TRUE(std::is_abstract_v<Vrae_EventReceiver>);
  EXPECT_TRUE(std::has_virtual_destructor_v<Vrae_EventReceiver>);
}
