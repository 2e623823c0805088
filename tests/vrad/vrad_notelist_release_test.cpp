#include <gtest/gtest.h>

#include <string>

#include "support/vrad_notes.h"
#include "vrad/vrad_notelist.h"

namespace {

// Notes end at 110, 125, 150 and 300.
Vrad_NoteList MakeList() {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 0, 300);
  AddNote(list, 61, 100, 10);
  AddNote(list, 62, 100, 50);
  AddNote(list, 63, 120, 5);
  return list;
}

std::string Earliest(Vrad_NoteListBase const & iList, long long iStart, long long iEnd) {
  return Print(iList.GetEarliestReleaseTimeForNotesInRange(TickTime(iStart), TickTime(iEnd)));
}
std::string Last(Vrad_NoteListBase const & iList, long long iStart, long long iEnd) {
  return Print(iList.GetLastReleaseTimeForNotesInRange(TickTime(iStart), TickTime(iEnd)));
}
std::string Latest(Vrad_NoteListBase const & iList, long long iStart, long long iEnd) {
  return Print(iList.GetLatestReleaseTimeForNotesInRange(TickTime(iStart), TickTime(iEnd)));
}

}  // namespace

TEST(Vrad_NoteList_EarliestRelease, IsTheFirstEndInsideTheRange) {
  EXPECT_EQ("110", Earliest(MakeList(), 100, 400));
  EXPECT_EQ("125", Earliest(MakeList(), 110, 400));
}

TEST(Vrad_NoteList_EarliestRelease, CountsNotesThatStartBeforeTheRange) {
  EXPECT_EQ("300", Earliest(MakeList(), 200, 400));
}

TEST(Vrad_NoteList_EarliestRelease, IgnoresAnEndExactlyAtEitherBound) {
  EXPECT_EQ("125", Earliest(MakeList(), 110, 126));
  EXPECT_EQ("125", Earliest(MakeList(), 110, 125));
  EXPECT_EQ("150", Earliest(MakeList(), 125, 150));
}

TEST(Vrad_NoteList_EarliestRelease, IsTheEndOfTheRangeIfNoNoteEndsThere) {
  EXPECT_EQ("290", Earliest(MakeList(), 150, 290));
  EXPECT_EQ("5", Earliest(Vrad_NoteList(Ndo_Object::kNotUndoable, false), 0, 5));
}

TEST(Vrad_NoteList_EarliestRelease, IgnoresNotesThatStartAtTheEndOfTheRange) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 100, 10);
  EXPECT_EQ("100", Earliest(list, 50, 100));
}

TEST(Vrad_NoteList_LastRelease, IsTheLastEndInsideTheRange) {
  EXPECT_EQ("300", Last(MakeList(), 100, 400));
  EXPECT_EQ("150", Last(MakeList(), 100, 300));
  EXPECT_EQ("125", Last(MakeList(), 100, 150));
}

TEST(Vrad_NoteList_LastRelease, IsTheStartOfTheRangeIfNoNoteEndsThere) {
  EXPECT_EQ("150", Last(MakeList(), 150, 300));
  EXPECT_EQ("310", Last(MakeList(), 310, 300));
}

TEST(Vrad_NoteList_LatestRelease, MayLieBeyondTheRange) {
  EXPECT_EQ("150", Latest(MakeList(), 90, 110));
}

TEST(Vrad_NoteList_LatestRelease, CountsOnlyNotesThatStartInTheRange) {
  EXPECT_EQ("125", Latest(MakeList(), 110, 130));
  EXPECT_EQ("200", Latest(MakeList(), 200, 400));
}

TEST(Vrad_NoteList_LatestRelease, IsTheStartOfARangeThatEndsBeforeIt) {
  EXPECT_EQ("110", Latest(MakeList(), 110, 90));
}

TEST(Vrad_NoteList_LatestRelease, IgnoresAShortNoteThatStartsAThresholdBeforeTheEnd) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.SetLongNoteDuration(TickLength(100));
  AddNote(list, 60, 50, 60);
  EXPECT_EQ("0", Latest(list, 0, 151));
  EXPECT_EQ("110", Latest(list, 0, 150));
}

TEST(Vrad_NoteList_LatestRelease, FindsALongNoteThatStartsEarlier) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.SetLongNoteDuration(TickLength(100));
  AddNote(list, 60, 50, 100);
  EXPECT_EQ("150", Latest(list, 0, 1000));
}

TEST(Vrad_NoteList_LatestRelease, WithoutALongNoteListLooksAtTheWholeRange) {
  Vrad_NoteListBase list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 50, 60);
  EXPECT_EQ("110", Latest(list, 0, 1LL << 40));
}

// 1000 ticks are 25 samples: the threshold is that of the end's unit, taken from the end.
TEST(Vrad_NoteList_LatestRelease, TakesTheThresholdInTheUnitOfTheEnd) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.SetLongNoteDuration(SampleLength(20));
  list.SetLongNoteDuration(TickLength(600));
  AddNote(list, 60, 300, 5);  // before tick 400, after sample 5
  EXPECT_EQ("305", Print(list.GetLatestReleaseTimeForNotesInRange(TickTime(0), SampleTime(25))));
  EXPECT_EQ("0s", Print(list.GetLatestReleaseTimeForNotesInRange(SampleTime(0), TickTime(1000))));
}

TEST(Vrad_NoteList_LatestRelease, TakesTheLatestOfBothLists) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.SetLongNoteDuration(TickLength(100));
  AddNote(list, 60, 10, 100);
  AddNote(list, 61, 200, 20);
  EXPECT_EQ("220", Latest(list, 0, 250));
  AddNote(list, 62, 20, 300);
  EXPECT_EQ("320", Latest(list, 0, 250));
  EXPECT_EQ("220", Latest(list, 21, 250));
}

TEST(Vrad_NoteList_Release, OfNotesInSamplesAskedInTicks) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.AddNote(Vrad_NoteListBase_Note(SampleTime(10), NoteEvent(60, SampleLength(5))));
  EXPECT_EQ("15s", Earliest(list, 0, 10000));
  EXPECT_EQ("15s", Last(list, 0, 10000));
  EXPECT_EQ("15s", Latest(list, 0, 10000));
}

TEST(Vrad_NoteList_Release, OfADurationOfTheOtherUnit) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.AddNote(Vrad_NoteListBase_Note(TickTime(400), NoteEvent(60, SampleLength(5))));
  EXPECT_EQ("600", Earliest(list, 0, 10000));
  EXPECT_EQ("600", Last(list, 0, 10000));
  EXPECT_EQ("600", Latest(list, 0, 10000));
}
