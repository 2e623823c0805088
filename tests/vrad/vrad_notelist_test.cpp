#include "vrad/vrad_notelist.h"

#include <gtest/gtest.h>

#include <utility>

#include "cmn/cmn_assert.h"
#include "foundation/time_convert.h"
#include "support/vrad_notes.h"

namespace {

constexpr char kNoNote[] =
    "mU.mBase.mType == kNoteWithDuration || mU.mBase.mType == kPitchToMIDINoteWithDuration";

Vrad_NoteList MakeList() {
  return Vrad_NoteList(Ndo_Object::kNotUndoable, false);
}

// A note with a fractional pitch, seen as a plain note.
Vrae_NoteWithDurationEvent FractionalEvent(int iPitch, long long iTicks, float iFraction) {
  Vrae_PitchToMIDINoteWithDuration const event(static_cast<signed char>(iPitch), TickLength(iTicks),
                                               80, 64, iFraction);
  return static_cast<Vrae_Event const &>(event).AsNoteWithDuration();
}

}  // namespace

TEST(Vrad_NoteList_Switch, AvoidingOverlapsIsOffAtStart) {
  EXPECT_FALSE(gAvoidOverlapsAndDuplicates);
}

TEST(Vrad_NoteList_AddNote, KeepsNotesSortedByTime) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 62, 200, 10);
  AddNote(list, 60, 100, 10);
  AddNote(list, 61, 150, 10);
  EXPECT_EQ("60@100+10 | 61@150+10 | 62@200+10", Print(list));
}

TEST(Vrad_NoteList_AddNote, AtTheTimeOfTheLastNoteAppends) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 62, 100, 10);
  AddNote(list, 60, 100, 5);
  EXPECT_EQ("62@100+10 | 60@100+5", Print(list));
}

TEST(Vrad_NoteList_AddNote, AtTheTimeOfAnInnerGroupGoesBehindIt) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 62, 100, 10);
  AddNote(list, 61, 100, 10);
  AddNote(list, 63, 200, 10);
  AddNote(list, 60, 100, 10);
  EXPECT_EQ("62@100+10 | 61@100+10 | 60@100+10 | 63@200+10", Print(list));
}

TEST(Vrad_NoteList_AddNote, OfTheSameNoteTwiceStoresTwo) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 60, 0, 10);
  AddNote(list, 60, 0, 10);
  EXPECT_EQ(2u, list.Size());
}

TEST(Vrad_NoteList_AddNote, PutsSamplesAndTicksInOneOrder) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 60, 400, 10);  // sample 10
  list.AddNote(Vrad_NoteListBase_Note(SampleTime(11), NoteEvent(61, 10)));
  list.AddNote(Vrad_NoteListBase_Note(SampleTime(9), NoteEvent(62, 10)));
  EXPECT_EQ("62@9s+10 | 60@400+10 | 61@11s+10", Print(list));
}

TEST(Vrad_NoteList_AddNote, TakesANoteOfTheListItself) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 60, 0, 20000000);
  AddNote(list, 61, 10, 10);
  list.AddNote(*Vrad_NoteListBase::FullNotesInRangeIter(&list));
  EXPECT_EQ("60@0+20000000 | 60@0+20000000 | 61@10+10", Print(list));
  EXPECT_EQ("60@0+20000000 | 60@0+20000000", PrintLongNotes(list));
}

TEST(Vrad_NoteList_AddNote, OfAnExtendedEventKeepsItsExtras) {
  Vrad_NoteList list = MakeList();
  list.AddNote(Vrad_NoteWithDurationExtendedEvent(TickTime(5), NoteEvent(60, 10), SampleLength(3),
                                                  NoteEvent(58, 7, 20), true));
  Vrad_NoteWithDurationExtendedEvent const note = list.Last();
  EXPECT_EQ(3, note.GetQuantizeTimeDelta().AsInt64());
  EXPECT_EQ(58, note.GetOrigEvent().GetPitch());
  EXPECT_EQ(7, note.GetOrigEvent().GetDuration().AsInt64());
  EXPECT_TRUE(note.IsMuted());
}

TEST(Vrad_NoteList_AddNote, OfAnExtendedEventThatIsNoNoteIsReportedAndStored) {
  Vrad_NoteList list = MakeList();
  Vrad_NoteWithDurationExtendedEvent event(TickTime(5), NoteEvent(60, 10), false);
  event.mEvent.mU.mBase.mType = Vrae_Event::kNoteOn;
  Cmn_AssertRecorder recorder;
  list.AddNote(event);
  EXPECT_EQ(1, recorder.GetNum(kNoNote));
  EXPECT_EQ(1u, list.Size());
}

TEST(Vrad_NoteList_AddNote, OfAStoredNoteOfAnyKindStoresItAsItLies) {
  Vrad_NoteList list = MakeList();
  Vrad_NoteListBase_Note note = StoredNote(60, 0, 10);
  note.mEvent.mU.mBase.mType = Vrae_Event::kNoteOn;
  Cmn_AssertRecorder recorder;
  list.AddNote(note);
  EXPECT_EQ(0, recorder.GetNum());
  EXPECT_EQ(1u, list.Size());
}

TEST(Vrad_NoteList_EraseNote, OfTwoAlikeErasesTheFirst) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 60, 0, 10);
  AddNote(list, 60, 0, 20);
  list.EraseNote(TimedNote(60, 0, 20));
  EXPECT_EQ("60@0+20", Print(list));
}

TEST(Vrad_NoteList_EraseNote, GoesByTimePitchAndOnVelocity) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 60, 0, 10);
  list.EraseNote(TimedNote(61, 0, 10));
  list.EraseNote(TimedNote(60, 1, 10));
  list.EraseNote(TimedNote(60, 0, 10, 79));
  EXPECT_EQ(1u, list.Size());
  list.EraseNote(TimedNote(60, 0, 99));
  EXPECT_EQ(0u, list.Size());
}

TEST(Vrad_NoteList_EraseNote, FindsANoteBehindOthersOfItsTime) {
  Vrad_NoteList list = MakeList();
  for (int pitch = 40; pitch < 70; ++pitch)
    AddNote(list, pitch, 0, 10);
  list.EraseNote(TimedNote(69, 0, 10));
  EXPECT_EQ(29u, list.Size());
  EXPECT_FALSE(list.IsNoteInList(TimedNote(69, 0, 10)));
}

TEST(Vrad_NoteList_EraseNote, OfAnEventThatIsNoNoteIsReported) {
  Vrad_NoteList list = MakeList();
  Vrae_TimedEvent event = TimedNote(60, 0, 10);
  event.mEvent.mU.mBase.mType = Vrae_Event::kNoteOff;
  Cmn_AssertRecorder recorder;
  list.EraseNote(event);
  EXPECT_EQ(1, recorder.GetNum(kNoNote));
}

TEST(Vrad_NoteList_IsNoteInList, IgnoresTheDuration) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 60, 0, 10);
  EXPECT_TRUE(list.IsNoteInList(TimedNote(60, 0, 999)));
}

TEST(Vrad_NoteList_IsNoteInList, NeverFindsAFractionalNoteThoughErasingDoes) {
  Vrad_NoteList list = MakeList();
  Vrae_NoteWithDurationEvent const event = FractionalEvent(60, 10, 0.5f);
  list.AddNote(Vrad_NoteListBase_Note(TickTime(0), event));
  Vrae_TimedEvent const timed(TickTime(0), event);
  EXPECT_FALSE(list.IsNoteInList(timed));
  list.EraseNote(timed);
  EXPECT_EQ(0u, list.Size());
}

TEST(Vrad_NoteList_IsNoteInList, OfAnotherKindIsFalseWithoutAReport) {
  Vrad_NoteList list = MakeList();
  Cmn_AssertRecorder recorder;
  EXPECT_FALSE(list.IsNoteInList(Vrae_TimedEvent(TickTime(0), Vrae_NoteOnEvent(60, 80))));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrad_NoteList_ChangeNote, ReplacesTheEventAlone) {
  Vrad_NoteList list = MakeList();
  list.AddNote(Vrad_NoteListBase_Note(TickTime(5), NoteEvent(60, 10), TickLength(3),
                                      NoteEvent(58, 7), true));
  list.ChangeNote(TickTime(5), NoteEvent(60, 10), NoteEvent(64, 20));
  EXPECT_EQ("64@5+20", Print(list));
  Vrad_NoteWithDurationExtendedEvent const note = list.Last();
  EXPECT_EQ(3, note.GetQuantizeTimeDelta().AsInt64());
  EXPECT_EQ(58, note.GetOrigEvent().GetPitch());
  EXPECT_TRUE(note.IsMuted());
}

TEST(Vrad_NoteList_ChangeNote, OfAnUnknownNoteIsReportedAndChangesNothing) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 60, 0, 10);
  Cmn_AssertRecorder recorder;
  list.ChangeNote(TickTime(0), NoteEvent(61, 10), NoteEvent(64, 20));
  EXPECT_EQ(1, recorder.GetNum("result.first"));
  EXPECT_EQ(1, recorder.GetNum());
  EXPECT_EQ("60@0+10", Print(list));
}

TEST(Vrad_NoteList_ChangeNote, TakesAnEventOfTheListItself) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 60, 0, 10);
  AddNote(list, 61, 5, 20);
  Vrad_NoteListBase::FullNotesInRangeIter iter(&list, TickTime(5), TickTime(6));
  list.ChangeNote(TickTime(0), NoteEvent(60, 10), (*iter).mEvent);
  EXPECT_EQ("61@0+20 | 61@5+20", Print(list));
}

TEST(Vrad_NoteList_Clear, EmptiesBothListsAndKeepsTheLongOneAttached) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 60, 0, 20000000);
  Vrad_NoteListBase * const longP = list.GetLongNoteList();
  list.Clear();
  EXPECT_EQ(0u, list.Size());
  EXPECT_EQ(longP, list.GetLongNoteList());
  EXPECT_EQ(0u, longP->Size());
}

TEST(Vrad_NoteList_ReplaceData, TakesNotesAndLongNotes) {
  Vrad_NoteList source = MakeList(), list = MakeList();
  AddNote(source, 60, 0, 20000000);
  AddNote(source, 61, 1, 10);
  AddNote(list, 70, 0, 30000000);
  list.ReplaceData(&source);
  AddNote(source, 62, 2, 10);
  EXPECT_EQ("60@0+20000000 | 61@1+10", Print(list));
  EXPECT_EQ("60@0+20000000", PrintLongNotes(list));
}

TEST(Vrad_NoteList_ReplaceData, WithLikeThresholdsTakesTheOthersLongNotesAsTheyLag) {
  Vrad_NoteList source = MakeList(), list = MakeList();
  AddNote(source, 60, 0, 10);
  source.ChangeNote(TickTime(0), NoteEvent(60, 10), NoteEvent(60, 20000000));
  list.ReplaceData(&source);
  EXPECT_EQ("60@0+10", PrintLongNotes(list));
}

TEST(Vrad_NoteList_ReplaceData, WithOtherThresholdsMakesTheLongNotesAnew) {
  Vrad_NoteList source = MakeList(), list = MakeList();
  AddNote(source, 60, 0, 10);
  AddNote(source, 61, 0, 9);
  list.SetLongNoteDuration(TickLength(10));
  list.ReplaceData(&source);
  EXPECT_EQ("60@0+10", PrintLongNotes(list));
}

TEST(Vrad_NoteList_ReplaceData, WithAnotherThresholdInSamplesAloneMakesTheLongNotesAnew) {
  Vrad_NoteList source = MakeList(), list = MakeList();
  source.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(60, SampleLength(10))));
  list.SetLongNoteDuration(SampleLength(10));
  list.ReplaceData(&source);
  EXPECT_EQ("60@0+10s", PrintLongNotes(list));
}

TEST(Vrad_NoteList_ReplaceData, FromAListWithoutLongNotesMakesThemAnew) {
  Vrad_NoteListBase source(Ndo_Object::kNotUndoable, false);
  Vrad_NoteList list = MakeList();
  AddNote(source, 60, 0, 20000000);
  list.ReplaceData(&source);
  EXPECT_EQ("60@0+20000000", PrintLongNotes(list));
}

TEST(Vrad_NoteList_ReplaceData, WithItselfChangesNothing) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 60, 0, 20000000);
  list.ReplaceData(&list);
  EXPECT_EQ("60@0+20000000", Print(list));
  EXPECT_EQ("60@0+20000000", PrintLongNotes(list));
}

TEST(Vrad_NoteList_Times, OfAnEmptyListAreTickZero) {
  Vrad_NoteList const list = MakeList();
  EXPECT_EQ("0", Print(list.TimeOfFirstNote()));
  EXPECT_EQ("0", Print(list.TimeOfLastNote()));
}

TEST(Vrad_NoteList_Times, AreThoseOfTheFirstAndLastNote) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 60, 30, 100);
  list.AddNote(Vrad_NoteListBase_Note(SampleTime(7), NoteEvent(60, 1)));
  EXPECT_EQ("30", Print(list.TimeOfFirstNote()));
  EXPECT_EQ("7s", Print(list.TimeOfLastNote()));
}

TEST(Vrad_NoteList_Last, GivesTheLastOfEqualTimes) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 60, 5, 10);
  AddNote(list, 61, 5, 10);
  EXPECT_EQ(61, list.Last().mEvent.AsNoteWithDuration().GetPitch());
}

TEST(Vrad_NoteList_EarliestTime, IgnoresASmallerValueThatWasPassedIn) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 60, 30, 10);
  Time_Typed time = TickTime(3);
  list.EarliestTime(time);
  EXPECT_EQ("30", Print(time));
}

TEST(Vrad_NoteList_EarliestTime, OfAnEmptyListKeepsTheValue) {
  Vrad_NoteList const list = MakeList();
  Time_Typed time = TickTime(3);
  list.EarliestTime(time);
  EXPECT_EQ("3", Print(time));
}

// Tick 400 is sample 10 at the tempo of the additions, sample 5 at twice that tempo.
TEST(Vrad_NoteList_EarliestTime, LooksAtEveryNoteOfMixedUnits) {
  Vrad_NoteList list = MakeList();
  list.AddNote(Vrad_NoteListBase_Note(SampleTime(9), NoteEvent(60, 1)));
  AddNote(list, 61, 400, 1);
  Time_Typed time;
  list.EarliestTime(time);
  EXPECT_EQ("9s", Print(time));
  Time_Convert::GetDefaultTempoMap().Reset(240);
  list.EarliestTime(time);
  Time_Convert::GetDefaultTempoMap().Reset(120);
  EXPECT_EQ("400", Print(time));
}

TEST(Vrad_NoteList_Equality, LooksAtEveryField) {
  Vrad_NoteListBase_Note const note(TickTime(5), NoteEvent(60, 10), TickLength(3), NoteEvent(58, 7),
                                    true);
  auto const equals = [&note](auto iChange) {
    Vrad_NoteList list = MakeList(), other = MakeList();
    Vrad_NoteListBase_Note changed = note;
    iChange(changed);
    list.AddNote(note);
    other.AddNote(changed);
    return list == other;
  };
  typedef Vrad_NoteListBase_Note Note;
  EXPECT_TRUE(equals([](Note &) {}));
  EXPECT_FALSE(equals([](Note & n) { n.mTime = TickTime(6); }));
  EXPECT_FALSE(equals([](Note & n) { n.mTime = SampleTime(5); }));
  EXPECT_FALSE(equals([](Note & n) { n.mEvent.SetPitch(61); }));
  EXPECT_FALSE(equals([](Note & n) { n.mEvent.SetOnVelocity(61); }));
  EXPECT_FALSE(equals([](Note & n) { n.mEvent.SetOffVelocity(61); }));
  EXPECT_FALSE(equals([](Note & n) { n.mEvent.SetDuration(SampleLength(10)); }));
  EXPECT_FALSE(equals([](Note & n) { n.mEvent = FractionalEvent(60, 10, 0); }));
  EXPECT_FALSE(equals([](Note & n) { n.mQuantizeTimeDelta = SampleLength(3); }));
  EXPECT_FALSE(equals([](Note & n) { n.mOrigEvent.SetPitch(59); }));
  EXPECT_FALSE(equals([](Note & n) { n.mMuted = false; }));
}

TEST(Vrad_NoteList_Equality, ComparesFractionsByTheirBits) {
  Vrad_NoteList list = MakeList(), other = MakeList();
  list.AddNote(Vrad_NoteListBase_Note(TickTime(0), FractionalEvent(60, 10, 0.0f)));
  other.AddNote(Vrad_NoteListBase_Note(TickTime(0), FractionalEvent(60, 10, -0.0f)));
  EXPECT_FALSE(list == other);
  EXPECT_TRUE(list == list);
}

TEST(Vrad_NoteList_Equality, NeedsEqualSizes) {
  Vrad_NoteList list = MakeList(), other = MakeList();
  AddNote(list, 60, 0, 10);
  EXPECT_FALSE(list == other);
}

TEST(Vrad_NoteList_AssertInvariant, DoesNothing) {
  Vrad_NoteList list = MakeList();
  list.SetLongNoteDuration(TickLength(1));
  AddNote(list, 60, 0, 10);
  Cmn_AssertRecorder recorder;
  list.AssertInvariant();
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrad_NoteList_Copy, SharesTheLongNoteList) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 60, 0, 20000000);
  Vrad_NoteList copy(list);
  EXPECT_EQ(list.GetLongNoteList(), copy.GetLongNoteList());
  AddNote(copy, 61, 0, 10);
  EXPECT_EQ("60@0+20000000", Print(list));
}

TEST(Vrad_NoteList_Copy, TheLastOwnerKeepsTheLongNoteListAlive) {
  auto listP = std::make_unique<Vrad_NoteList>(Ndo_Object::kNotUndoable, false);
  AddNote(*listP, 60, 0, 20000000);
  Vrad_NoteList copy(*listP);
  listP.reset();
  EXPECT_EQ("60@0+20000000", PrintLongNotes(copy));
}

TEST(Vrad_NoteList_Copy, TakesTheThresholds) {
  Vrad_NoteList list = MakeList();
  list.SetLongNoteDuration(TickLength(7));
  Vrad_NoteList const copy(list);
  EXPECT_EQ(7, copy.GetLongNoteDuration(Time_eType_Ticks).AsInt64());
}

TEST(Vrad_NoteList_Assign, LetsGoOfItsOwnLongNoteListAndSharesTheOthers) {
  Vrad_NoteList list = MakeList(), other = MakeList();
  AddNote(other, 60, 0, 20000000);
  list = other;
  EXPECT_EQ(other.GetLongNoteList(), list.GetLongNoteList());
  EXPECT_EQ("60@0+20000000", Print(list));
}

TEST(Vrad_NoteList_Assign, TakesTheThresholds) {
  Vrad_NoteList list = MakeList(), other = MakeList();
  other.SetLongNoteDuration(TickLength(7));
  other.SetLongNoteDuration(SampleLength(8));
  list = other;
  EXPECT_EQ(7, list.GetLongNoteDuration(Time_eType_Ticks).AsInt64());
  EXPECT_EQ(8, list.GetLongNoteDuration(Time_eType_Samples).AsInt64());
}

TEST(Vrad_NoteList_Assign, ItsOwnLongNoteListLeavesThoseNotesAndNoLongNoteList) {
  Vrad_NoteList list = MakeList();
  Vrad_NoteListBase & base = list;
  AddNote(list, 60, 0, 20000000);
  AddNote(list, 61, 1, 10);
  base = *list.GetLongNoteList();
  EXPECT_EQ("60@0+20000000", Print(list));
  EXPECT_EQ(nullptr, list.GetLongNoteList());
}

TEST(Vrad_NoteList_Assign, AListBaseSharesTooAndToItselfChangesNothing) {
  Vrad_NoteListBase list(Ndo_Object::kNotUndoable, false);
  Vrad_NoteList const other = MakeList();
  list = other;
  EXPECT_EQ(other.GetLongNoteList(), list.GetLongNoteList());
  Vrad_NoteListBase const & self = list;
  list = self;
  EXPECT_EQ(other.GetLongNoteList(), list.GetLongNoteList());
}
