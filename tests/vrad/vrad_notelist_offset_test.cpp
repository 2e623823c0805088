// Moving times, starts, ends and pitches.
#include <gtest/gtest.h>

#include <string>

#include "cmn/cmn_assert.h"
#include "foundation/time_convert.h"
#include "support/note_edits.h"
#include "support/tick_times_matter.h"
#include "vrad/vrad_notelist.h"

namespace {

class Vrad_NoteList_OffsetTimes : public NoteEditTest {};
class Vrad_NoteList_OffsetStarts : public NoteEditTest {};
class Vrad_NoteList_OffsetDurations : public NoteEditTest {};
class Vrad_NoteList_OffsetPitches : public NoteEditTest {};

// Keeps ticks on the grid while tick times matter; or not.
Vrad_NoteList MakeList(bool iQuantizeContents, std::vector<PlainNote> const & iNotes) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, iQuantizeContents);
  AddNotes(list, iNotes);
  return list;
}

Vrad_NoteListBase_Note SampleNote(int iPitch, long long iTime, long long iDuration) {
  return Vrad_NoteListBase_Note(SampleTime(iTime), NoteEvent(iPitch, SampleLength(iDuration)));
}

// A host's converter, to which every length is twice as long.
class DoublingConverter : public Time_TempoMap {
public:
  DoublingConverter() : mFormerP(Time_Convert::sTimeConverter) {
    Time_Convert::sTimeConverter = this;
  }
  ~DoublingConverter() override { Time_Convert::sTimeConverter = mFormerP; }
  Time_Typed AddLength(Time_Typed iStart, Time_TypedLength const & iLength) const override {
    return Time_TempoMap::AddLength(iStart, iLength + iLength);
  }

private:
  Time_Converter * mFormerP;
};

}  // namespace

TEST_F(Vrad_NoteList_OffsetTimes, MovesAllNotesAndNothingElse) {
  mList.AddNote(Vrad_NoteListBase_Note(TickTime(5), NoteEvent(60, 10), TickLength(3),
                                       NoteEvent(58, 7, 11), true));
  mOther.AddNote(Vrad_NoteListBase_Note(TickTime(105), NoteEvent(60, 10), TickLength(3),
                                        NoteEvent(58, 7, 11), true));
  mList.OffsetTimes(TickLength(100));
  EXPECT_TRUE(mList == mOther);
}

TEST_F(Vrad_NoteList_OffsetTimes, MovesBackward) {
  AddNotes(mList, {{60, 5, 10}, {61, 20, 10}});
  mList.OffsetTimes(TickLength(-7));
  EXPECT_EQ("60@-2+10 | 61@13+10", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetTimes, TurnsALengthOfTheOtherUnitAtEachNote) {
  Time_Convert::GetDefaultTempoMap().SetTempoAt(Time_Tick(4000), 240);  // 80 ticks to the sample
  AddNotes(mList, {{60, 0, 10}, {61, 4000, 10}});
  mList.OffsetTimes(SampleLength(10));
  EXPECT_EQ("60@400+10 | 61@4800+10", Print(mList));
  Time_Convert::GetDefaultTempoMap().Reset(120);
}

TEST_F(Vrad_NoteList_OffsetTimes, AsksTheConverterForALengthOfTheSameUnitToo) {
  DoublingConverter const converter;
  AddNotes(mList, {{60, 0, 100}});
  mList.OffsetTimes(TickLength(10));
  EXPECT_EQ("60@20+100", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetTimes, DoesNotSortAgain) {
  AddNotes(mList, {{60, 0, 10}});
  mList.AddNote(SampleNote(61, 1, 10));  // tick 40
  Time_Convert::GetDefaultTempoMap().SetTempoAt(Time_Tick(20), 12);
  mList.OffsetTimes(TickLength(100));
  Time_Convert::GetDefaultTempoMap().Reset(120);
  EXPECT_EQ(2u, mList.Size());
  EXPECT_EQ("100", Print(mList.TimeOfFirstNote()));
  EXPECT_EQ(Time_eType_Samples, mList.TimeOfLastNote().GetType());
}

TEST_F(Vrad_NoteList_OffsetTimes, WhileTickTimesMatterSnapsEachNote) {
  TickTimesMatterScope const scope;
  Vrad_NoteList list = MakeList(true, {{60, 0, 10}, {61, 1499, 10}, {62, 2000, 10}});
  list.OffsetTimes(TickLength(501));
  EXPECT_EQ("60@1000+10 | 61@2000+10 | 62@3000+10", Print(list));
}

TEST_F(Vrad_NoteList_OffsetTimes, OfLengthZeroSnapsToo) {
  TickTimesMatterScope const scope;
  Vrad_NoteList list = MakeList(true, {{60, 499, 10}, {61, 500, 10}});
  list.OffsetTimes(TickLength(0));
  EXPECT_EQ("60@0+10 | 61@1000+10", Print(list));
}

TEST_F(Vrad_NoteList_OffsetTimes, OfAListThatDoesNotQuantizeNeverSnaps) {
  TickTimesMatterScope const scope;
  Vrad_NoteList list = MakeList(false, {{60, 0, 10}});
  list.OffsetTimes(TickLength(501));
  EXPECT_EQ("60@501+10", Print(list));
}

TEST_F(Vrad_NoteList_OffsetTimes, UnlessTickTimesMatterNeverSnaps) {
  Vrad_NoteList list = MakeList(true, {{60, 0, 10}});
  list.OffsetTimes(TickLength(501));
  EXPECT_EQ("60@501+10", Print(list));
}

TEST_F(Vrad_NoteList_OffsetTimes, LeavesTimesInSamplesOffTheGrid) {
  TickTimesMatterScope const scope;
  Vrad_NoteList list = MakeList(true, {});
  list.AddNote(SampleNote(60, 3, 10));
  list.OffsetTimes(SampleLength(4));
  EXPECT_EQ("60@7s+10s", Print(list));
}

TEST_F(Vrad_NoteList_OffsetTimes, MovesTheLongNotesAlong) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 50}, {61, 1, 49}});
  AddNote(*mList.GetLongNoteList(), 99, 7, 1);  // nobody asks whether it belongs there
  mList.OffsetTimes(TickLength(10));
  EXPECT_EQ("60@10+50 | 99@17+1", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_OffsetTimes, AnnouncesAlwaysOnBothLists) {
  EXPECT_EQ("list long", Announced([this] { mList.OffsetTimes(TickLength(0)); }));
}

TEST_F(Vrad_NoteList_OffsetTimes, IsOneStepOfUndo) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}, {61, 1, 1}});
  Do([this] { mList.OffsetTimes(TickLength(10)); });
  EXPECT_EQ("60@10+60 | 61@11+1 (60@10+60); 60@0+60 | 61@1+1 (60@0+60); "
            "60@10+60 | 61@11+1 (60@10+60)",
            PrintUndoAndRedo(mList));
}

TEST_F(Vrad_NoteList_OffsetTimes, SearchesGoByTheNewTimes) {
  for (int i = 0; i < 200; ++i)
    AddNote(mList, 60, i, 1);
  mList.OffsetTimes(TickLength(1000));
  EXPECT_FALSE(mList.IsNoteInList(TimedNote(60, 100, 1)));
  EXPECT_TRUE(mList.IsNoteInList(TimedNote(60, 1100, 1)));
}

TEST_F(Vrad_NoteList_OffsetStarts, MovesStartsAndKeepsEnds) {
  AddNotes(mList, {{60, 0, 100}, {61, 50, 100}});
  mList.OffsetStarts(TickLength(10));
  EXPECT_EQ("60@10+90 | 61@60+90", Print(mList));
  mList.OffsetStarts(TickLength(-30));
  EXPECT_EQ("60@-20+120 | 61@30+120", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetStarts, KeepsTheRestOfANote) {
  mList.AddNote(Vrad_NoteListBase_Note(TickTime(5), NoteEvent(60, 10, 33), TickLength(3),
                                       NoteEvent(58, 7, 11), true));
  mOther.AddNote(Vrad_NoteListBase_Note(TickTime(6), NoteEvent(60, 9, 33), TickLength(3),
                                        NoteEvent(58, 7, 11), true));
  mList.OffsetStarts(TickLength(1));
  EXPECT_TRUE(mList == mOther);
}

TEST_F(Vrad_NoteList_OffsetStarts, ToADurationOfTwoIsDone) {
  AddNotes(mList, {{60, 0, 100}, {61, 0, 12}});
  mList.OffsetStarts(TickLength(10));
  EXPECT_EQ("60@10+90 | 61@10+2", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetStarts, ThatWouldLeaveADurationOfOneChangesNothing) {
  AddNotes(mList, {{60, 0, 100}, {61, 0, 11}});
  mList.OffsetStarts(TickLength(10));
  EXPECT_EQ("60@0+100 | 61@0+11", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetStarts, ThatWouldTurnANoteAroundChangesNothing) {
  AddNotes(mList, {{60, 0, 100}, {61, 0, 11}});
  mList.OffsetStarts(TickLength(50));
  EXPECT_EQ("60@0+100 | 61@0+11", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetStarts, OfLengthZeroIsRefusedForANoteOfOne) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}, {61, 0, 1}});
  EXPECT_EQ("list", Announced([this] { mList.OffsetStarts(TickLength(0)); }));
}

TEST_F(Vrad_NoteList_OffsetStarts, ARefusalAnnouncesAndLeavesTheLongNotesAlone) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}, {61, 0, 11}});
  EXPECT_EQ("list", Announced([this] { mList.OffsetStarts(TickLength(10)); }));
  EXPECT_EQ("60@0+60", PrintLongNotes(mList));
  EXPECT_EQ(1, Ndo_gManager.GetNumUndoSteps());
}

TEST_F(Vrad_NoteList_OffsetStarts, OfAnEmptyListAnnouncesOnBothLists) {
  EXPECT_EQ("list long", Announced([this] { mList.OffsetStarts(TickLength(10)); }));
}

TEST_F(Vrad_NoteList_OffsetStarts, OfTheLongNotesIsRefusedByTheirOwnDurations) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}});
  AddNote(*mList.GetLongNoteList(), 99, 7, 5);
  mList.OffsetStarts(TickLength(10));
  EXPECT_EQ("60@10+50", Print(mList));
  EXPECT_EQ("60@0+60 | 99@7+5", PrintLongNotes(mList));
}

// Whoever gets short or long is not reviewed until the long notes are made anew.
TEST_F(Vrad_NoteList_OffsetStarts, LeavesWhoIsLongAsItWas) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 55}});
  mList.OffsetStarts(TickLength(10));
  EXPECT_EQ("60@10+45", PrintLongNotes(mList));
  AddNotes(mOther, {{61, 0, 49}});
  mOther.OffsetStarts(TickLength(-10));
  EXPECT_EQ("", PrintLongNotes(mOther));
  AttachableList one;
  AddNotes(one, {{62, 90, 1}});
  mList.Merge(&one);
  mOther.Merge(&one);
  EXPECT_EQ("", PrintLongNotes(mList));
  EXPECT_EQ("61@-10+59", PrintLongNotes(mOther));
}

// By the threshold of the new unit it is short.
TEST_F(Vrad_NoteList_OffsetStarts, ALongNoteWhoseUnitChangesStaysLongUntilAllAreMadeAnew) {
  mList.SetLongNoteDuration(SampleLength(50));
  mList.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(60, SampleLength(60))));
  mList.OffsetStarts(TickLength(100));
  EXPECT_EQ("60@100+2300", PrintLongNotes(mList));
  AttachableList one;
  AddNotes(one, {{62, 90, 1}});
  mList.Merge(&one);
  EXPECT_EQ("", PrintLongNotes(mList));
}

// The end as well as the start.
TEST_F(Vrad_NoteList_OffsetStarts, AsksTheConverterForLengthsOfTheSameUnitToo) {
  DoublingConverter const converter;
  AddNotes(mList, {{60, 0, 100}});
  mList.OffsetStarts(TickLength(10));
  EXPECT_EQ("60@20+180", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetStarts, WhileTickTimesMatterSnapsALengthInTicks) {
  TickTimesMatterScope const scope;
  Vrad_NoteList list = MakeList(true, {{60, 7, 5000}});
  list.OffsetStarts(TickLength(1499));
  EXPECT_EQ("60@1007+4000", Print(list));  // the length is on the grid, not the start
}

TEST_F(Vrad_NoteList_OffsetStarts, TheLongNotesGetTheSnappedLength) {
  TickTimesMatterScope const scope;
  Vrad_NoteList list = MakeList(true, {});
  list.SetLongNoteDuration(TickLength(5000));
  AddNotes(list, {{60, 7, 5000}});
  list.OffsetStarts(TickLength(1499));
  EXPECT_EQ("60@1007+4000", PrintLongNotes(list));
}

// Their own first note, in samples, would not have let them snap it.
TEST_F(Vrad_NoteList_OffsetStarts, TheLongNotesGetTheLengthAsItThenStands) {
  TickTimesMatterScope const scope;
  Vrad_NoteList list = MakeList(true, {{60, 0, 5000}});
  list.AddNote(SampleNote(61, 100, 48000));
  list.OffsetStarts(TickLength(1480));
  EXPECT_EQ("60@1000+4000 | 61@125s+47975s", Print(list));
  EXPECT_EQ("61@125s+47975s", PrintLongNotes(list));
}

TEST_F(Vrad_NoteList_OffsetStarts, UnlessTickTimesMatterNeverSnaps) {
  Vrad_NoteList list = MakeList(true, {{60, 7, 5000}});
  list.OffsetStarts(TickLength(1499));
  EXPECT_EQ("60@1506+3501", Print(list));
}

TEST_F(Vrad_NoteList_OffsetStarts, OfAListThatDoesNotQuantizeNeverSnaps) {
  TickTimesMatterScope const scope;
  Vrad_NoteList list = MakeList(false, {{60, 7, 5000}});
  list.OffsetStarts(TickLength(1499));
  list.OffsetStarts(SampleLength(1));
  EXPECT_EQ("60@1546+3461", Print(list));
}

TEST_F(Vrad_NoteList_OffsetStarts, WhileTickTimesMatterALengthInSamplesSnapsEachStart) {
  TickTimesMatterScope const scope;
  Vrad_NoteList list = MakeList(true, {{60, 7, 5000}, {61, 700, 5000}});
  list.OffsetStarts(SampleLength(10));  // 400 ticks
  EXPECT_EQ("60@0+5007 | 61@1000+4700", Print(list));
}

// The first note decides whether a length in ticks is snapped.
TEST_F(Vrad_NoteList_OffsetStarts, ALengthInTicksIsNotSnappedWhenTheFirstNoteIsInSamples) {
  TickTimesMatterScope const scope;
  Vrad_NoteList list = MakeList(true, {});
  list.AddNote(SampleNote(60, 0, 1000));
  AddNotes(list, {{61, 4000, 5000}});
  list.OffsetStarts(TickLength(1480));
  EXPECT_EQ("60@37s+963s | 61@5480+3520", Print(list));
}

TEST_F(Vrad_NoteList_OffsetStarts, ALengthInTicksIsSnappedWhenOnlyLaterNotesAreInSamples) {
  TickTimesMatterScope const scope;
  Vrad_NoteList list = MakeList(true, {{61, 0, 5000}});
  list.AddNote(SampleNote(60, 100, 1000));
  list.OffsetStarts(TickLength(1480));
  EXPECT_EQ("61@1000+4000 | 60@125s+975s", Print(list));
}

TEST_F(Vrad_NoteList_OffsetStarts, ALengthInSamplesLeavesStartsInSamplesOffTheGrid) {
  TickTimesMatterScope const scope;
  Vrad_NoteList list = MakeList(true, {});
  list.AddNote(SampleNote(60, 3, 100));
  list.OffsetStarts(SampleLength(4));
  EXPECT_EQ("60@7s+96s", Print(list));
}

TEST_F(Vrad_NoteList_OffsetStarts, GivesADurationTheUnitOfTheNotesTime) {
  mList.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(60, SampleLength(10))));
  mList.OffsetStarts(TickLength(100));
  EXPECT_EQ("60@100+300", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetStarts, IsOneStepOfUndo) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}, {61, 1, 20}});
  Do([this] { mList.OffsetStarts(TickLength(10)); });
  EXPECT_EQ("60@10+50 | 61@11+10 (60@10+50); 60@0+60 | 61@1+20 (60@0+60); "
            "60@10+50 | 61@11+10 (60@10+50)",
            PrintUndoAndRedo(mList));
}

TEST_F(Vrad_NoteList_OffsetDurations, LengthensAndShortens) {
  AddNotes(mList, {{60, 0, 10}, {61, 5, 20}});
  mList.OffsetDurations(TickLength(5));
  EXPECT_EQ("60@0+15 | 61@5+25", Print(mList));
  mList.OffsetDurations(TickLength(-10));
  EXPECT_EQ("60@0+5 | 61@5+15", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetDurations, ToADurationOfOneIsDone) {
  AddNotes(mList, {{60, 0, 10}});
  mList.OffsetDurations(TickLength(-9));
  EXPECT_EQ("60@0+1", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetDurations, LeavesTheShortestNotesAloneAndShortensTheRest) {
  AddNotes(mList, {{60, 0, 100}, {61, 5, 1000}, {62, 6, 1001}, {63, 7, 5}});
  mList.OffsetDurations(TickLength(-1000));
  EXPECT_EQ("60@0+100 | 61@5+1000 | 62@6+1 | 63@7+5", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetDurations, KeepsTheUnitOfADuration) {
  mList.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(60, SampleLength(10))));
  mList.OffsetDurations(TickLength(80));
  EXPECT_EQ("60@0+12s", Print(mList));
}

// Turned into ticks at the first note, the length stays so for the notes behind it.
TEST_F(Vrad_NoteList_OffsetDurations, CarriesTheLengthOverInTheUnitOfTheNoteBefore) {
  Time_Convert::GetDefaultTempoMap().SetTempoAt(Time_Tick(4000), 240);  // 80 ticks to the sample
  AddNotes(mList, {{60, 0, 10}, {61, 4000, 10}});
  mList.OffsetDurations(SampleLength(10));
  EXPECT_EQ("60@0+410 | 61@4000+410", Print(mList));
  Time_Convert::GetDefaultTempoMap().Reset(120);
}

TEST_F(Vrad_NoteList_OffsetDurations, AsksTheConverterAtEachNoteForALengthOfTheSameUnitToo) {
  DoublingConverter const converter;
  AddNotes(mList, {{60, 0, 100}, {61, 5, 100}});
  mList.OffsetDurations(TickLength(10));
  EXPECT_EQ("60@0+120 | 61@5+140", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetDurations, TheLongNotesGetTheLengthAsItThenStands) {
  SetThresholds(50);
  Time_Convert::GetDefaultTempoMap().SetTempoAt(Time_Tick(4000), 240);
  AddNotes(mList, {{60, 0, 10}, {61, 4000, 50}});
  mList.OffsetDurations(SampleLength(10));
  EXPECT_EQ("61@4000+450", PrintLongNotes(mList));
  Time_Convert::GetDefaultTempoMap().Reset(120);
}

// 79 ticks become one sample, and 40 ticks from there on.
TEST_F(Vrad_NoteList_OffsetDurations, WhatConversionLosesStaysLost) {
  mList.AddNote(SampleNote(60, 0, 10));
  AddNotes(mList, {{61, 4000, 10}});
  mList.OffsetDurations(TickLength(79));
  EXPECT_EQ("60@0s+11s | 61@4000+50", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetDurations, LeavesWhoIsLongAsItWas) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 50}, {61, 1, 49}});
  mList.OffsetDurations(TickLength(1));
  EXPECT_EQ("60@0+51", PrintLongNotes(mList));
  mList.OffsetDurations(TickLength(-2));
  EXPECT_EQ("60@0+49", PrintLongNotes(mList));
  EXPECT_EQ("60@0+49 | 61@1+48", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetDurations, AGapClosesWhenTheLongNotesAreMadeAnew) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 50}, {61, 1, 49}});
  mList.OffsetDurations(TickLength(1));
  AttachableList one;
  AddNotes(one, {{62, 9, 1}});
  mList.Merge(&one);
  EXPECT_EQ("60@0+51 | 61@1+50", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_OffsetDurations, AnnouncesAlwaysOnBothLists) {
  EXPECT_EQ("list long", Announced([this] { mList.OffsetDurations(TickLength(0)); }));
}

TEST_F(Vrad_NoteList_OffsetDurations, NeverReports) {
  AddNotes(mList, {{60, 0, 10}});
  Cmn_AssertRecorder recorder;
  mList.OffsetDurations(TickLength(-10));
  EXPECT_EQ(0, recorder.GetNum());
  EXPECT_EQ("60@0+10", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetDurations, IsOneStepOfUndo) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}, {61, 1, 20}});
  Do([this] { mList.OffsetDurations(TickLength(10)); });
  EXPECT_EQ("60@0+70 | 61@1+30 (60@0+70); 60@0+60 | 61@1+20 (60@0+60); "
            "60@0+70 | 61@1+30 (60@0+70)",
            PrintUndoAndRedo(mList));
}

TEST_F(Vrad_NoteList_OffsetPitches, APositiveLengthLowersByOneHoweverLarge) {
  AddNotes(mList, {{60, 0, 10}, {1, 1, 10}, {127, 2, 10}});
  mList.OffsetPitches(TickLength(12));
  EXPECT_EQ("59@0+10 | 0@1+10 | 126@2+10", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetPitches, ALengthOfOneLowers) {
  AddNotes(mList, {{60, 0, 10}});
  mList.OffsetPitches(TickLength(1));
  EXPECT_EQ("59@0+10", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetPitches, ALengthOfZeroRaises) {
  AddNotes(mList, {{60, 0, 10}, {0, 1, 10}, {126, 2, 10}});
  mList.OffsetPitches(TickLength(0));
  EXPECT_EQ("61@0+10 | 1@1+10 | 127@2+10", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetPitches, ANegativeLengthRaisesByOne) {
  AddNotes(mList, {{60, 0, 10}});
  mList.OffsetPitches(SampleLength(-40));
  EXPECT_EQ("61@0+10", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetPitches, ANoteAtTheBottomBlocksEveryPositiveLength) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}, {0, 1, 10}});
  EXPECT_EQ("", Announced([this] { mList.OffsetPitches(TickLength(1)); }));
  EXPECT_EQ("", Announced([this] { mList.OffsetPitches(TickLength(100)); }));
  EXPECT_EQ("60@0+60 | 0@1+10", Print(mList));
  EXPECT_EQ("60@0+60", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_OffsetPitches, ANoteAtTheTopBlocksZeroAndNegativeLengths) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}, {127, 1, 10}});
  EXPECT_EQ("", Announced([this] { mList.OffsetPitches(TickLength(0)); }));
  EXPECT_EQ("", Announced([this] { mList.OffsetPitches(TickLength(-1)); }));
  EXPECT_EQ("60@0+60 | 127@1+10", Print(mList));
  EXPECT_EQ("60@0+60", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_OffsetPitches, TheLongNotesAreBlockedByTheirOwnPitches) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}});
  AddNote(*mList.GetLongNoteList(), 0, 7, 5);
  EXPECT_EQ("list", Announced([this] { mList.OffsetPitches(TickLength(1)); }));
  EXPECT_EQ("59@0+60", Print(mList));
  EXPECT_EQ("60@0+60 | 0@7+5", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_OffsetPitches, AnEmptyListIsNotBlocked) {
  EXPECT_EQ("list long", Announced([this] { mList.OffsetPitches(TickLength(1)); }));
  EXPECT_EQ("list long", Announced([this] { mList.OffsetPitches(TickLength(0)); }));
}

TEST_F(Vrad_NoteList_OffsetPitches, ANegativePitchThatRisesBelowZeroIsReported) {
  Vrad_NoteListBase_Note note = StoredNote(60, 0, 10);
  note.mEvent.mU.mNoteWithDuration.mPitch = -5;
  mList.AddNote(note);
  Cmn_AssertRecorder recorder;
  mList.OffsetPitches(TickLength(0));
  EXPECT_EQ(1, recorder.GetNum("iPitch >= 0"));
  EXPECT_EQ("-4@0+10", Print(mList));
}

TEST_F(Vrad_NoteList_OffsetPitches, KeepsTheFractionOfAPitch) {
  Vrae_PitchToMIDINoteWithDuration const event(60, TickLength(10), 80, 64, 0.5f);
  mList.AddNote(Vrad_NoteListBase_Note(
      TickTime(0), static_cast<Vrae_Event const &>(event).AsNoteWithDuration()));
  mList.OffsetPitches(TickLength(-1));
  Vrae_Event const moved = mList.Last().mEvent;
  EXPECT_EQ(Vrae_Event::kPitchToMIDINoteWithDuration, moved.GetType());
  EXPECT_EQ(61, moved.mU.mPitchToMIDINoteWithDuration.mPitch);
  EXPECT_EQ(0.5f, moved.mU.mPitchToMIDINoteWithDuration.mFractionalPitch);
}

TEST_F(Vrad_NoteList_OffsetPitches, LeavesTheOriginalEventAlone) {
  AddNotes(mList, {{60, 0, 10}});
  mList.OffsetPitches(TickLength(-1));
  EXPECT_EQ(60, mList.Last().GetOrigEvent().GetPitch());
}

TEST_F(Vrad_NoteList_OffsetPitches, IsOneStepOfUndo) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 60}, {61, 1, 20}});
  Do([this] { mList.OffsetPitches(TickLength(1)); });
  EXPECT_EQ("59@0+60 | 60@1+20 (59@0+60); 60@0+60 | 61@1+20 (60@0+60); "
            "59@0+60 | 60@1+20 (59@0+60)",
            PrintUndoAndRedo(mList));
}
