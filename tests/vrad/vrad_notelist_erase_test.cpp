// Erasing the notes of another list; erasing and copying a range.
#include <gtest/gtest.h>

#include <string>

#include "cmn/cmn_assert.h"
#include "support/note_edits.h"
#include "support/throwing_off.h"
#include "vrad/vrad_notelist.h"

namespace {

class Vrad_NoteList_Erase : public NoteEditTest {};
class Vrad_NoteList_EraseTimeRange : public NoteEditTest {};
class Vrad_NoteList_CopyTimeRange : public NoteEditTest {};

Vrad_NoteListBase_Note BlankNote(long long iTick) {
  Vrad_NoteListBase_Note note = StoredNote(60, iTick, 10);
  static_cast<Vrae_Event &>(note.mEvent) = Vrae_Event();
  return note;
}

Vrad_NoteListBase_Note FractionalNote(int iPitch, long long iTick) {
  Vrae_PitchToMIDINoteWithDuration const event(static_cast<signed char>(iPitch), TickLength(10), 80,
                                               64, 0.5f);
  return Vrad_NoteListBase_Note(TickTime(iTick),
                                static_cast<Vrae_Event const &>(event).AsNoteWithDuration());
}

}  // namespace

TEST_F(Vrad_NoteList_Erase, WithAnEmptyListChangesNothing) {
  AddNotes(mList, {{60, 0, 10}});
  mList.AddNote(BlankNote(0));
  EXPECT_EQ("", Announced([this] { mList.Erase(&mOther); }));
  EXPECT_EQ(2u, mList.Size());
}

TEST_F(Vrad_NoteList_Erase, WithAnEmptyListLeavesLaggingLongNotesAlone) {
  AddNotes(mList, {{60, 0, 100}});
  mList.SetLongNoteDuration(TickLength(50));
  mList.Erase(&mOther);
  EXPECT_EQ("", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Erase, OfAnEmptyListAnnouncesAllTheSame) {
  AddNotes(mOther, {{60, 0, 10}});
  EXPECT_EQ("list", Announced([this] { mList.Erase(&mOther); }));
  EXPECT_EQ("", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, RemovesEqualNotes) {
  AddNotes(mList, {{60, 0, 10}, {61, 5, 10}, {62, 9, 10}, {63, 12, 10}});
  AddNotes(mOther, {{60, 0, 10}, {62, 9, 10}});
  mList.Erase(&mOther);
  EXPECT_EQ("61@5+10 | 63@12+10", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, LeavesTheOtherListAlone) {
  AddNotes(mList, {{60, 0, 10}});
  AddNotes(mOther, {{60, 0, 10}, {62, 9, 10}});
  mList.Erase(&mOther);
  EXPECT_EQ("60@0+10 | 62@9+10", Print(mOther));
}

TEST_F(Vrad_NoteList_Erase, OfNotesThatAreNotThereAnnouncesAndKeepsAll) {
  AddNotes(mList, {{60, 10, 10}, {61, 20, 10}});
  AddNotes(mOther, {{60, 5, 10}, {61, 10, 10}, {60, 20, 10}, {61, 25, 10}});
  EXPECT_EQ("list", Announced([this] { mList.Erase(&mOther); }));
  EXPECT_EQ("60@10+10 | 61@20+10", Print(mList));
}

// Unlike erasing one note.
TEST_F(Vrad_NoteList_Erase, OfANoteThatDiffersInDurationRemovesNothing) {
  AddNotes(mList, {{60, 0, 10}});
  AddNotes(mOther, {{60, 0, 11}});
  mList.Erase(&mOther);
  EXPECT_EQ("60@0+10", Print(mList));
  mList.EraseNote(TimedNote(60, 0, 11));
  EXPECT_EQ("", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, OfANoteThatDiffersInAVelocityRemovesNothing) {
  AddNotes(mList, {{60, 0, 10}});
  mOther.AddNote(StoredNote(60, 0, 10, 81));
  Vrad_NoteListBase_Note note = StoredNote(60, 0, 10);
  note.mEvent.SetOffVelocity(1);
  mOther.AddNote(note);
  mList.Erase(&mOther);
  EXPECT_EQ("60@0+10", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, OfANoteThatDiffersInAllButTimeAndEventRemovesIt) {
  AddNotes(mList, {{60, 0, 10}});
  mOther.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(60, 10), TickLength(3),
                                        NoteEvent(58, 7, 11), true));
  mList.Erase(&mOther);
  EXPECT_EQ("", Print(mList));
}

// The unit of a duration takes no part in the equality of events.
TEST_F(Vrad_NoteList_Erase, OfADurationOfTheOtherUnitAndTheSameCountRemovesIt) {
  AddNotes(mList, {{60, 0, 10}});
  mOther.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(60, SampleLength(10))));
  mList.Erase(&mOther);
  EXPECT_EQ("", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, OfATimeOfTheOtherUnitAndTheSameInstantRemovesIt) {
  AddNotes(mList, {{60, 40, 10}, {61, 40, 10}, {62, 41, 10}});
  mOther.AddNote(Vrad_NoteListBase_Note(SampleTime(1), NoteEvent(61, 10)));
  mList.Erase(&mOther);
  EXPECT_EQ("60@40+10 | 62@41+10", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, RemovesTheFirstOfEqualNotesOnceForEach) {
  for (int velocity : {1, 2, 3})  // alike as events: the muted flag tells them apart
    mList.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(60, 10), TickLength(velocity),
                                         NoteEvent(60, 10), velocity == 3));
  AddNotes(mOther, {{60, 0, 10}, {60, 0, 10}});
  mList.Erase(&mOther);
  EXPECT_EQ(1u, mList.Size());
  EXPECT_TRUE(mList.Last().IsMuted());
}

TEST_F(Vrad_NoteList_Erase, SearchesTheWholeGroupForEachNoteOfOneTime) {
  AddNotes(mList, {{60, 0, 10}, {61, 0, 10}, {62, 0, 10}, {63, 0, 10}});
  AddNotes(mOther, {{63, 0, 10}, {60, 0, 10}, {62, 0, 10}});
  mList.Erase(&mOther);
  EXPECT_EQ("61@0+10", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, FindsTheNextEqualNoteBehindOnesThatStay) {
  AddNotes(mList, {{61, 0, 10}, {60, 0, 10}, {62, 0, 10}, {60, 0, 10}});
  AddNotes(mOther, {{60, 0, 10}, {60, 0, 10}});
  mList.Erase(&mOther);
  EXPECT_EQ("61@0+10 | 62@0+10", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, KeepsNotesBehindTheLastTimeWalked) {
  AddNotes(mList, {{60, 0, 10}, {61, 0, 10}, {60, 5, 10}});
  AddNotes(mOther, {{60, 0, 10}});
  mList.Erase(&mOther);
  EXPECT_EQ("61@0+10 | 60@5+10", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, StopsAtTheEndOfTheList) {
  AddNotes(mList, {{60, 0, 10}, {61, 5, 10}});
  AddNotes(mOther, {{61, 5, 10}, {62, 100, 10}, {63, 200, 10}});
  mList.Erase(&mOther);
  EXPECT_EQ("60@0+10", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, AlsoDropsBlankNotesInItsStretch) {
  AddNotes(mList, {{60, 10, 10}, {61, 20, 10}, {62, 30, 10}});
  for (long long const tick : {5, 10, 15, 20, 25})
    mList.AddNote(BlankNote(tick));
  AddNotes(mOther, {{60, 10, 10}, {99, 20, 10}});
  mList.Erase(&mOther);  // walks from 10 to the end of the group at 20
  EXPECT_EQ("0@5+0s | 61@20+10 | 0@25+0s | 62@30+10", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, DropsBlankNotesUpToTheEndIfItGotThere) {
  AddNotes(mList, {{60, 10, 10}});
  mList.AddNote(BlankNote(15));
  AddNotes(mOther, {{99, 10, 10}, {99, 20, 10}});
  mList.Erase(&mOther);
  EXPECT_EQ("60@10+10", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, WithABlankNoteRemovesBlankNotes) {
  AddNotes(mList, {{60, 10, 10}});
  mList.AddNote(BlankNote(10));
  mList.AddNote(BlankNote(10));
  mOther.AddNote(BlankNote(10));
  mList.Erase(&mOther);
  EXPECT_EQ("60@10+10", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, OfTwoFractionalNotesAtOneTimeThrowsAndChangesNothing) {
  AddNotes(mList, {{60, 0, 10}, {61, 5, 10}});
  mList.AddNote(FractionalNote(62, 5));
  AddNotes(mOther, {{60, 0, 10}});
  mOther.AddNote(FractionalNote(62, 5));
  Ndo_gManager.BeginTransaction();
  EXPECT_THROW(mList.Erase(&mOther), Cmn_AssertException);
  EXPECT_TRUE(Ndo_gManager.HasAnnounced(mList.NdoGetID()));
  Ndo_gManager.EndTransaction();
  EXPECT_EQ("60@0+10 | 61@5+10 | 62@5+10", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, TheTextOfThatIsZero) {
  mList.AddNote(FractionalNote(62, 5));
  mOther.AddNote(FractionalNote(62, 5));
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(mList.Erase(&mOther), Cmn_AssertException);
  EXPECT_EQ(1, recorder.GetNum("0"));
}

TEST_F(Vrad_NoteList_Erase, WithThrowingOffFractionalNotesAreAllAlike) {
  mList.AddNote(FractionalNote(62, 5));
  mList.AddNote(FractionalNote(63, 5));
  mOther.AddNote(FractionalNote(64, 5));
  ThrowingOff const off;
  mList.Erase(&mOther);
  EXPECT_EQ("63@5+10", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, OfAFractionalNoteAtATimeOfItsOwnIsQuiet) {
  mList.AddNote(FractionalNote(62, 5));
  AddNotes(mList, {{60, 9, 10}});
  AddNotes(mOther, {{62, 5, 10}, {60, 9, 10}});
  mOther.AddNote(FractionalNote(62, 7));
  mList.Erase(&mOther);
  EXPECT_EQ("62@5+10", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, UndoesAPlainMergeOfDistinctNotes) {
  AddNotes(mList, {{60, 0, 10}, {60, 20, 10}});
  AddNotes(mOther, {{61, 0, 10}, {61, 10, 10}, {61, 30, 10}});
  mList.Merge(&mOther);
  mList.Erase(&mOther);
  EXPECT_EQ("60@0+10 | 60@20+10", Print(mList));
}

TEST_F(Vrad_NoteList_Erase, OfItselfRemovesAll) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 10}, {60, 0, 10}, {61, 5, 60}});
  mList.Erase(&mList);
  EXPECT_EQ("", Print(mList));
  EXPECT_EQ("", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Erase, ErasesTheLongNotesWhenBothThresholdsAgree) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 50}, {61, 0, 50}});
  AddNote(*mList.GetLongNoteList(), 99, 7, 1);  // lags, and is looked for as it is
  AddNotes(mOther, {{60, 0, 50}});
  EXPECT_EQ("list long", Announced([this] { mList.Erase(&mOther); }));
  EXPECT_EQ("61@0+50 | 99@7+1", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Erase, MakesTheLongNotesAnewWhenTheThresholdInTicksDiffers) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 50}, {61, 0, 50}});
  AddNote(*mList.GetLongNoteList(), 99, 7, 1);
  AddNotes(mOther, {{60, 0, 50}});
  mOther.SetLongNoteDuration(TickLength(51));
  mList.Erase(&mOther);
  EXPECT_EQ("61@0+50", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Erase, MakesTheLongNotesAnewWhenTheThresholdInSamplesDiffers) {
  SetThresholds(50);
  AddNotes(mList, {{61, 0, 50}});
  AddNote(*mList.GetLongNoteList(), 99, 7, 1);
  AddNotes(mOther, {{60, 0, 50}});
  mOther.SetLongNoteDuration(SampleLength(51));
  mList.Erase(&mOther);
  EXPECT_EQ("61@0+50", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Erase, MakesTheLongNotesAnewWhenTheOtherListHasNone) {
  SetThresholds(50);
  AddNotes(mList, {{61, 0, 50}});
  AddNote(*mList.GetLongNoteList(), 99, 7, 1);
  AttachableList other;
  AddNotes(other, {{60, 0, 50}});
  mList.Erase(&other);
  EXPECT_EQ("61@0+50", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Erase, IsOneStepOfUndo) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}, {61, 5, 10}, {62, 9, 60}});
  AddNotes(mOther, {{60, 0, 60}});
  EXPECT_TRUE(Do([this] { mList.Erase(&mOther); }));
  EXPECT_EQ("61@5+10 | 62@9+60 (62@9+60); 60@0+60 | 61@5+10 | 62@9+60 (60@0+60 | 62@9+60); "
            "61@5+10 | 62@9+60 (62@9+60)",
            PrintUndoAndRedo(mList));
}

TEST_F(Vrad_NoteList_EraseTimeRange, RemovesNotesThatStartInItFromItsStartToBeforeItsEnd) {
  AddNotes(mList, {{60, 9, 100}, {61, 10, 1}, {62, 15, 100}, {63, 19, 1}, {64, 20, 1}});
  mList.EraseTimeRange(TickTime(10), TickTime(20));
  EXPECT_EQ("60@9+100 | 64@20+1", Print(mList));
}

TEST_F(Vrad_NoteList_EraseTimeRange, OfAnEmptyRangeLeavesNoStepOfUndo) {
  AddNotes(mList, {{60, 10, 10}, {61, 20, 10}});
  EXPECT_FALSE(Do([this] { mList.EraseTimeRange(TickTime(11), TickTime(20)); }));
  EXPECT_FALSE(Do([this] { mList.EraseTimeRange(TickTime(10), TickTime(10)); }));
  EXPECT_FALSE(Do([this] { mList.EraseTimeRange(TickTime(30), TickTime(10)); }));
  EXPECT_EQ("60@10+10 | 61@20+10", Print(mList));
}

TEST_F(Vrad_NoteList_EraseTimeRange, OfAnEmptyRangeLeavesTheLongNotesAlone) {
  SetThresholds(50);
  AddNotes(mList, {{60, 10, 10}});
  AddNote(*mList.GetLongNoteList(), 99, 20, 1);
  EXPECT_EQ("", Announced([this] { mList.EraseTimeRange(TickTime(15), TickTime(30)); }));
  EXPECT_EQ("99@20+1", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_EraseTimeRange, ErasesTheSameRangeOfTheLongNotes) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}, {61, 10, 60}, {62, 20, 60}});
  EXPECT_EQ("list long", Announced([this] { mList.EraseTimeRange(TickTime(5), TickTime(15)); }));
  EXPECT_EQ("60@0+60 | 62@20+60", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_EraseTimeRange, AnnouncesTheLongNotesOnlyIfOneOfThemGoes) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}, {61, 10, 6}});
  EXPECT_EQ("list", Announced([this] { mList.EraseTimeRange(TickTime(5), TickTime(15)); }));
}

TEST_F(Vrad_NoteList_EraseTimeRange, OfSamplesInAListOfTicks) {
  AddNotes(mList, {{60, 39, 1}, {61, 40, 1}, {62, 79, 1}, {63, 80, 1}});
  mList.EraseTimeRange(SampleTime(1), SampleTime(2));
  EXPECT_EQ("60@39+1 | 63@80+1", Print(mList));
}

TEST_F(Vrad_NoteList_EraseTimeRange, OfManyNotesIsOneStepOfUndo) {
  for (int i = 0; i < 1000; ++i)
    AddNote(mList, 60, i, 1);
  EXPECT_TRUE(Do([this] { mList.EraseTimeRange(TickTime(1), TickTime(999)); }));
  EXPECT_EQ("60@0+1 | 60@999+1", Print(mList));
  Ndo_gManager.Undo();
  EXPECT_EQ(1000u, mList.Size());
  Ndo_gManager.Redo();
  EXPECT_EQ("60@0+1 | 60@999+1", Print(mList));
}

TEST_F(Vrad_NoteList_CopyTimeRange, ReplacesTheTargetByTheNotesThatStartInTheRange) {
  AddNotes(mList, {{60, 9, 100}, {61, 10, 1}, {62, 15, 100}, {63, 19, 1}, {64, 20, 1}});
  AddNotes(mOther, {{99, 0, 1}});
  mList.CopyTimeRange(&mOther, TickTime(10), TickTime(20));
  EXPECT_EQ("61@10+1 | 62@15+100 | 63@19+1", Print(mOther));
}

TEST_F(Vrad_NoteList_CopyTimeRange, LeavesTheListAlone) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}, {61, 10, 60}});
  EXPECT_EQ("other otherlong",
            Announced([this] { mList.CopyTimeRange(&mOther, TickTime(5), TickTime(20)); }));
  EXPECT_EQ("60@0+60 | 61@10+60", Print(mList));
  EXPECT_EQ("60@0+60 | 61@10+60", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_CopyTimeRange, OfAnEmptyRangeClearsTheTargetAndItsLongNotes) {
  SetThresholds(50);
  AddNotes(mOther, {{99, 0, 60}});
  EXPECT_EQ("other otherlong",
            Announced([this] { mList.CopyTimeRange(&mOther, TickTime(5), TickTime(5)); }));
  EXPECT_EQ("", Print(mOther));
  EXPECT_EQ("", PrintLongNotes(mOther));
}

TEST_F(Vrad_NoteList_CopyTimeRange, OfARangeThatEndsBeforeItStartsClearsTheTarget) {
  AddNotes(mList, {{60, 5, 10}});
  AddNotes(mOther, {{99, 0, 60}});
  mList.CopyTimeRange(&mOther, TickTime(9), TickTime(2));
  EXPECT_EQ("", Print(mOther));
}

TEST_F(Vrad_NoteList_CopyTimeRange, CarriesRecordsWhole) {
  mList.AddNote(Vrad_NoteListBase_Note(TickTime(5), NoteEvent(60, 10), TickLength(3),
                                       NoteEvent(58, 7, 11), true));
  mList.CopyTimeRange(&mOther, TickTime(0), TickTime(9));
  EXPECT_TRUE(mList == mOther);
}

// By the target's thresholds; neither list of long notes is looked at.
TEST_F(Vrad_NoteList_CopyTimeRange, MakesTheTargetsLongNotesAnew) {
  AddNotes(mList, {{60, 0, 49}, {61, 1, 50}});
  AddNote(*mList.GetLongNoteList(), 99, 1, 70);
  mOther.SetLongNoteDuration(TickLength(50));
  AddNote(*mOther.GetLongNoteList(), 98, 1, 70);
  mList.CopyTimeRange(&mOther, TickTime(0), TickTime(9));
  EXPECT_EQ("61@1+50", PrintLongNotes(mOther));
}

TEST_F(Vrad_NoteList_CopyTimeRange, ToAListWithoutLongNotes) {
  AttachableList target;
  AddNotes(mList, {{60, 0, 20000000}});
  mList.CopyTimeRange(&target, TickTime(0), TickTime(9));
  EXPECT_EQ("60@0+20000000", Print(target));
}

TEST_F(Vrad_NoteList_CopyTimeRange, OntoItselfCropsTheList) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}, {61, 10, 60}, {62, 20, 6}, {63, 30, 60}});
  mList.CopyTimeRange(&mList, TickTime(10), TickTime(30));
  EXPECT_EQ("61@10+60 | 62@20+6", Print(mList));
  EXPECT_EQ("61@10+60", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_CopyTimeRange, TheCopyAndTheListGoTheirOwnWays) {
  for (int i = 0; i < 300; ++i)
    AddNote(mList, 60, i, 1);
  mList.CopyTimeRange(&mOther, TickTime(50), TickTime(250));
  mOther.OffsetPitches(TickLength(1));
  mList.EraseNote(TimedNote(60, 100, 1));
  EXPECT_EQ(200u, mOther.Size());
  EXPECT_TRUE(mOther.IsNoteInList(TimedNote(59, 100, 1)));
  EXPECT_TRUE(mList.IsNoteInList(TimedNote(60, 101, 1)));
}

TEST_F(Vrad_NoteList_CopyTimeRange, IsOneStepOfUndo) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}});
  AddNotes(mOther, {{61, 5, 70}});
  EXPECT_TRUE(Do([this] { mList.CopyTimeRange(&mOther, TickTime(0), TickTime(9)); }));
  EXPECT_EQ("60@0+60 (60@0+60); 61@5+70 (61@5+70); 60@0+60 (60@0+60)", PrintUndoAndRedo(mOther));
}
