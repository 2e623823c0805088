// Merging the notes of another list, overlaps and all.
#include <gtest/gtest.h>

#include <string>

#include "cmn/cmn_assert.h"
#include "foundation/time_convert.h"
#include "support/note_edits.h"
#include "vrad/vrad_notelist.h"

namespace {

class Vrad_NoteList_Merge : public NoteEditTest {};

// On velocities tell whose notes they are.
std::string PrintVelocities(Vrad_NoteListBase & iList) {
  std::string result;
  for (Vrad_NoteListBase::FullNotesInRangeIter iter(&iList); iter.IsMore(); ++iter)
    result += std::to_string((*iter).mEvent.GetOnVelocity()) + " ";
  return result;
}

}  // namespace

TEST_F(Vrad_NoteList_Merge, OfAnEmptyListChangesNothing) {
  AddNotes(mList, {{60, 0, 10}});
  EXPECT_EQ("", Announced([this] { mList.Merge(&mOther); }));
  EXPECT_EQ("60@0+10", Print(mList));
}

TEST_F(Vrad_NoteList_Merge, OfAnEmptyListLeavesLaggingLongNotesAlone) {
  AddNotes(mList, {{60, 0, 100}});
  mList.SetLongNoteDuration(TickLength(50));
  mList.Merge(&mOther);
  EXPECT_EQ("", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Merge, IntoAnEmptyListTakesAll) {
  AddNotes(mOther, {{60, 0, 10}, {61, 5, 10}});
  mList.Merge(&mOther);
  EXPECT_EQ("60@0+10 | 61@5+10", Print(mList));
}

TEST_F(Vrad_NoteList_Merge, InterleavesByTime) {
  AddNotes(mList, {{60, 0, 10}, {60, 20, 10}, {60, 40, 10}});
  AddNotes(mOther, {{61, 10, 10}, {61, 30, 10}});
  mList.Merge(&mOther);
  EXPECT_EQ("60@0+10 | 61@10+10 | 60@20+10 | 61@30+10 | 60@40+10", Print(mList));
}

TEST_F(Vrad_NoteList_Merge, GoesInFrontOfLaterNotesAndBehindEarlierOnes) {
  AddNotes(mList, {{60, 0, 10}, {60, 100, 10}});
  AddNotes(mOther, {{61, 40, 10}, {61, 50, 10}});
  mList.Merge(&mOther);
  EXPECT_EQ("60@0+10 | 61@40+10 | 61@50+10 | 60@100+10", Print(mList));
}

TEST_F(Vrad_NoteList_Merge, PutsOwnNotesAheadOfOthersAtEqualTimes) {
  AddNotes(mList, {{70, 10, 1}, {69, 10, 1}, {68, 20, 1}});
  AddNotes(mOther, {{61, 10, 1}, {60, 10, 1}, {62, 20, 1}});
  mList.Merge(&mOther);
  EXPECT_EQ("70@10+1 | 69@10+1 | 61@10+1 | 60@10+1 | 68@20+1 | 62@20+1", Print(mList));
}

TEST_F(Vrad_NoteList_Merge, OfEqualContentsKeepsBothCopiesOwnAhead) {
  mList.AddNote(StoredNote(60, 0, 10, 1));
  mList.AddNote(StoredNote(62, 5, 10, 1));
  mOther.AddNote(StoredNote(60, 0, 10, 2));
  mOther.AddNote(StoredNote(62, 5, 10, 2));
  mList.Merge(&mOther);
  EXPECT_EQ("60@0+10 | 60@0+10 | 62@5+10 | 62@5+10", Print(mList));
  EXPECT_EQ("1 2 1 2 ", PrintVelocities(mList));
}

TEST_F(Vrad_NoteList_Merge, NeitherDropsNorShortensOverlappingNotes) {
  AddNotes(mList, {{60, 0, 100}});
  AddNotes(mOther, {{60, 0, 100}, {60, 50, 100}});
  mList.Merge(&mOther);
  EXPECT_EQ("60@0+100 | 60@0+100 | 60@50+100", Print(mList));
}

TEST_F(Vrad_NoteList_Merge, CarriesRecordsWhole) {
  mOther.AddNote(Vrad_NoteListBase_Note(TickTime(5), NoteEvent(60, 10), TickLength(3),
                                        NoteEvent(58, 7, 11), true));
  mList.Merge(&mOther);
  EXPECT_TRUE(mList == mOther);
}

TEST_F(Vrad_NoteList_Merge, LeavesTheOtherListAlone) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 100}});
  AddNotes(mOther, {{61, 10, 60}});
  EXPECT_EQ("list long", Announced([this] { mList.Merge(&mOther); }));
  EXPECT_EQ("61@10+60", Print(mOther));
  EXPECT_EQ("61@10+60", PrintLongNotes(mOther));
}

TEST_F(Vrad_NoteList_Merge, OfItselfDoublesEveryNote) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 10}, {61, 5, 60}});
  mList.Merge(&mList);
  EXPECT_EQ("60@0+10 | 60@0+10 | 61@5+60 | 61@5+60", Print(mList));
  EXPECT_EQ("61@5+60 | 61@5+60", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Merge, OfUnlikeUnitsGoesByInstant) {
  AddNotes(mList, {{60, 0, 10}, {60, 400, 10}});  // 40 ticks to the sample
  mOther.AddNote(Vrad_NoteListBase_Note(SampleTime(5), NoteEvent(61, SampleLength(2))));
  mOther.AddNote(Vrad_NoteListBase_Note(SampleTime(10), NoteEvent(62, SampleLength(2))));
  mList.Merge(&mOther);
  EXPECT_EQ("60@0+10 | 61@5s+2s | 60@400+10 | 62@10s+2s", Print(mList));
}

// After a change of tempo the other list ends before it begins.
TEST_F(Vrad_NoteList_Merge, OfABrokenOrderStandsTogetherBehindTheNotesThatAreNotLater) {
  AddNotes(mList, {{60, 100, 1}, {60, 2000, 1}});
  mOther.AddNote(Vrad_NoteListBase_Note(SampleTime(30), NoteEvent(61, SampleLength(1))));
  AddNote(mOther, 62, 1500, 1);
  Time_Convert::GetDefaultTempoMap().Reset(480);  // sample 30 is tick 4800 now
  mList.Merge(&mOther);
  Time_Convert::GetDefaultTempoMap().Reset(120);
  EXPECT_EQ(4u, mList.Size());
  EXPECT_EQ("60@100+1 | 61@30s+1s | 62@1500+1 | 60@2000+1", Print(mList));
}

TEST_F(Vrad_NoteList_Merge, OfListsThatInterleaveAllTheWay) {
  for (int i = 0; i < 500; ++i) {
    AddNote(mList, 60, 2 * i, 1);
    AddNote(mOther, 61, 2 * i + 1, 1);
  }
  mList.Merge(&mOther);
  ASSERT_EQ(1000u, mList.Size());
  int index = 0;
  for (Vrad_NoteListBase::FullNotesInRangeIter iter(&mList); iter.IsMore(); ++iter, ++index) {
    ASSERT_EQ(index, (*iter).mTime.AsInt64());
    ASSERT_EQ(60 + index % 2, (*iter).mEvent.GetPitch());
  }
}

TEST_F(Vrad_NoteList_Merge, MergesTheLongNotesWhenBothThresholdsAgree) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 50}, {61, 0, 49}});
  AddNotes(mOther, {{62, 0, 50}, {63, 0, 49}});
  AddNote(*mOther.GetLongNoteList(), 99, 7, 1);  // lags, and is taken as it is
  mList.Merge(&mOther);
  EXPECT_EQ("60@0+50 | 62@0+50 | 99@7+1", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Merge, MakesTheLongNotesAnewWhenTheThresholdInTicksDiffers) {
  SetThresholds(50);
  AddNotes(mOther, {{62, 0, 50}, {63, 0, 49}});
  AddNote(*mOther.GetLongNoteList(), 99, 7, 1);
  mOther.SetLongNoteDuration(TickLength(51));
  mList.Merge(&mOther);
  EXPECT_EQ("62@0+50", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Merge, MakesTheLongNotesAnewWhenTheThresholdInSamplesDiffers) {
  SetThresholds(50);
  AddNotes(mOther, {{62, 0, 50}});
  AddNote(*mOther.GetLongNoteList(), 99, 7, 1);
  mOther.SetLongNoteDuration(SampleLength(51));
  mList.Merge(&mOther);
  EXPECT_EQ("62@0+50", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Merge, MakesTheLongNotesAnewWhenTheOtherListHasNone) {
  SetThresholds(50);
  AttachableList other;
  AddNotes(other, {{62, 0, 50}, {63, 0, 49}});
  mList.Merge(&other);
  EXPECT_EQ("62@0+50", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Merge, WithoutALongNoteListNeedsNone) {
  AttachableList list;
  AddNotes(mOther, {{62, 0, 20000000}});
  list.Merge(&mOther);
  EXPECT_EQ("62@0+20000000", Print(list));
}

TEST_F(Vrad_NoteList_Merge, OfShortNotesAnnouncesNoLongNotes) {
  AddNotes(mOther, {{62, 0, 5}});
  EXPECT_EQ("list", Announced([this] { mList.Merge(&mOther); }));
}

TEST_F(Vrad_NoteList_Merge, IsOneStepOfUndo) {
  SetThresholds(50);
  AddNotes(mList, {{60, 10, 60}});
  AddNotes(mOther, {{61, 0, 70}, {62, 20, 1}});
  EXPECT_TRUE(Do([this] { mList.Merge(&mOther); }));
  EXPECT_EQ("61@0+70 | 60@10+60 | 62@20+1 (61@0+70 | 60@10+60); 60@10+60 (60@10+60); "
            "61@0+70 | 60@10+60 | 62@20+1 (61@0+70 | 60@10+60)",
            PrintUndoAndRedo(mList));
}

// The lists share their notes afterwards; writing to one leaves the other.
TEST_F(Vrad_NoteList_Merge, LaterEditsOfEitherListLeaveTheOtherAlone) {
  for (int i = 0; i < 300; ++i)
    AddNote(mOther, 60, i, 1);
  mList.Merge(&mOther);
  mOther.OffsetPitches(TickLength(1));
  mList.OffsetTimes(TickLength(1000));
  EXPECT_EQ(TickTime(0), mOther.TimeOfFirstNote());
  EXPECT_EQ(60, mList.Last().mEvent.AsNoteWithDuration().GetPitch());
}
