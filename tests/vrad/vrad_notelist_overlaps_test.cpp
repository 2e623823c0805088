// Merging while overlaps and duplicates are avoided.
#include <gtest/gtest.h>

#include <string>

#include "cmn/cmn_assert.h"
#include "support/note_edits.h"
#include "vrad/vrad_notelist.h"

namespace {

class Vrad_NoteList_AvoidingMerge : public NoteEditTest {
protected:
  Vrad_NoteList_AvoidingMerge() { gAvoidOverlapsAndDuplicates = true; }

  /// Existing and incoming notes of pitch 60: what stays of both.
  std::string Merged(std::vector<std::pair<int, int>> const & iExisting,
                     std::vector<std::pair<int, int>> const & iIncoming) {
    for (auto const & [tick, ticks] : iExisting)
      AddNote(mList, 60, tick, ticks);
    for (auto const & [tick, ticks] : iIncoming)
      mOther.AddNote(StoredNote(60, tick, ticks, 7));
    mList.Merge(&mOther);
    return PrintOwners(mList);
  }

  // "new 0+100 | old 200+5"
  static std::string PrintOwners(Vrad_NoteListBase & iList) {
    std::string result;
    for (Vrad_NoteListBase::FullNotesInRangeIter iter(&iList); iter.IsMore(); ++iter)
      result += (result.empty() ? "" : " | ") +
                std::string((*iter).mEvent.GetOnVelocity() == 7 ? "new " : "old ") +
                std::to_string((*iter).mTime.AsInt64()) + "+" +
                std::to_string((*iter).mEvent.GetDuration().AsInt64());
    return result;
  }
};

}  // namespace

TEST_F(Vrad_NoteList_AvoidingMerge, OfAnEmptyListChangesNothing) {
  AddNotes(mList, {{60, 0, 100}, {60, 50, 100}});
  EXPECT_EQ("", Announced([this] { mList.Merge(&mOther); }));
  EXPECT_EQ("60@0+100 | 60@50+100", Print(mList));
}

TEST_F(Vrad_NoteList_AvoidingMerge, KeepsTheOverlapsThatAListHasWithinItself) {
  EXPECT_EQ("old 0+100 | old 0+100 | old 50+100 | new 900+100 | new 900+100 | new 950+100",
            Merged({{0, 100}, {0, 100}, {50, 100}}, {{900, 100}, {900, 100}, {950, 100}}));
}

TEST_F(Vrad_NoteList_AvoidingMerge, AnIncomingNoteOfEqualTimeReplacesTheExistingOne) {
  EXPECT_EQ("new 0+100", Merged({{0, 100}}, {{0, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnIncomingNoteOfEqualTimeReplacesALongerOne) {
  EXPECT_EQ("new 0+1", Merged({{0, 100000}}, {{0, 1}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnIncomingNoteOfEqualTimeReplacesAShorterOne) {
  EXPECT_EQ("new 0+100000", Merged({{0, 1}}, {{0, 100000}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnIncomingNoteReplacesAllExistingOnesOfItsTime) {
  EXPECT_EQ("new 0+10", Merged({{0, 10}, {0, 20}, {0, 30}}, {{0, 10}}));
}

// An existing note that begins first.
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteThatWouldKeepLessThanAQuarterGoes) {
  EXPECT_EQ("new 20+100", Merged({{0, 100}}, {{20, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteThatWouldKeepAQuarterGoes) {
  EXPECT_EQ("new 25+100", Merged({{0, 100}}, {{25, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteThatKeepsMoreThanAQuarterIsCut) {
  EXPECT_EQ("old 0+26 | new 26+100", Merged({{0, 100}}, {{26, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteIsCutWhereTheIncomingOneBegins) {
  EXPECT_EQ("old 0+30 | new 30+100", Merged({{0, 100}}, {{30, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, TheQuarterIsThatOfAWholeDivision) {
  EXPECT_EQ("old 0+2 | new 2+5", Merged({{0, 7}}, {{2, 5}}));  // 7 / 4 is 1
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteThatEndsWhereTheIncomingOneBeginsStays) {
  EXPECT_EQ("old 0+100 | new 100+5", Merged({{0, 100}}, {{100, 5}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteThatEndsOneLaterIsCutByOne) {
  EXPECT_EQ("old 0+100 | new 100+5", Merged({{0, 101}}, {{100, 5}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteIsCutByAnIncomingOneThatEndsBeforeIt) {
  EXPECT_EQ("old 0+50 | new 50+5", Merged({{0, 100}}, {{50, 5}}));
}

// The walk goes on to the last incoming note before the old end.
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteGrowsBackToTheLastIncomingStart) {
  EXPECT_EQ("old 0+35 | new 30+10 | new 35+10", Merged({{0, 100}}, {{30, 10}, {35, 10}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, TheQuarterIsThatOfThePresentDuration) {
  // 26 cuts to 26; 90 is more than a quarter of that.
  EXPECT_EQ("old 0+90 | new 26+1 | new 90+1", Merged({{0, 100}}, {{26, 1}, {90, 1}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteThatIsLostOnceIsLostForGood) {
  EXPECT_EQ("new 20+1 | new 60+1", Merged({{0, 100}}, {{20, 1}, {60, 1}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnIncomingNoteAtTheOldEndDoesNotCount) {
  EXPECT_EQ("old 0+50 | new 50+1 | new 100+1", Merged({{0, 100}}, {{50, 1}, {100, 1}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, IncomingNotesBeforeAnExistingOneDoNotCutIt) {
  EXPECT_EQ("new 0+10 | old 10+100 | new 110+5", Merged({{10, 150}}, {{0, 10}, {110, 5}}));
}

// An incoming note that begins first.
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteInTheFirstHalfGoes) {
  EXPECT_EQ("new 0+100", Merged({{40, 1000}}, {{0, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteAtTheHalfGoes) {
  EXPECT_EQ("new 0+100", Merged({{50, 1000}}, {{0, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNotePastTheHalfStaysAndTheIncomingOneIsCut) {
  EXPECT_EQ("new 0+51 | old 51+1000", Merged({{51, 1000}}, {{0, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteThatWouldLoseMoreThanAQuarterGoes) {
  EXPECT_EQ("new 0+100", Merged({{60, 100}}, {{0, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteThatWouldLoseAQuarterGoes) {
  EXPECT_EQ("new 0+100", Merged({{60, 160}}, {{0, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteThatWouldLoseLessThanAQuarterStays) {
  EXPECT_EQ("new 0+60 | old 60+164", Merged({{60, 164}}, {{0, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, TheQuarterThatAnExistingNoteLosesIsThatOfAWholeDivision) {
  EXPECT_EQ("new 0+100", Merged({{60, 163}}, {{0, 100}}));  // 163 / 4 is 40
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteOfTwiceTheLengthCutsTheIncomingOne) {
  EXPECT_EQ("new 0+60 | old 60+200", Merged({{60, 200}}, {{0, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteWhollyInTheSecondHalfGoes) {
  EXPECT_EQ("new 0+100", Merged({{60, 10}}, {{0, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteAtTheEndOfAnIncomingOneStays) {
  EXPECT_EQ("new 0+100 | old 100+1", Merged({{100, 1}}, {{0, 100}}));
}

TEST_F(Vrad_NoteList_AvoidingMerge, AnIncomingNoteGrowsBackToTheLastExistingStart) {
  EXPECT_EQ("new 0+70 | old 60+1000 | old 70+1000", Merged({{60, 1000}, {70, 1000}}, {{0, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnIncomingNoteThatIsCutStillRemovesUpToItsOldEnd) {
  EXPECT_EQ("new 0+60 | old 60+1000", Merged({{60, 1000}, {80, 10}}, {{0, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, AnExistingNoteThatStayedMayStillGoForTheNextIncomingOne) {
  EXPECT_EQ("new 0+60 | new 55+100", Merged({{60, 200}}, {{0, 100}, {55, 100}}));
}
TEST_F(Vrad_NoteList_AvoidingMerge, ARemovedNoteDoesNotCountForTheNextIncomingOne) {
  EXPECT_EQ("new 0+101 | new 60+41 | old 101+500",
            Merged({{100, 500}, {101, 500}}, {{0, 200}, {60, 60}}));
}

TEST_F(Vrad_NoteList_AvoidingMerge, OfOtherPitchesChangesNoNote) {
  AddNotes(mList, {{60, 0, 100}, {62, 30, 100}});
  AddNotes(mOther, {{61, 0, 100}, {63, 30, 100}, {61, 40, 100}});
  mList.Merge(&mOther);
  EXPECT_EQ("61@0+100 | 60@0+100 | 63@30+100 | 62@30+100 | 61@40+100", Print(mList));
  EXPECT_EQ("61@0+100 | 63@30+100 | 61@40+100", Print(mOther));
}

// Unlike the plain form.
TEST_F(Vrad_NoteList_AvoidingMerge, PutsIncomingNotesAheadAtEqualTimes) {
  AddNotes(mList, {{60, 5, 1}});
  AddNotes(mOther, {{61, 5, 1}, {62, 5, 1}});
  mList.Merge(&mOther);
  EXPECT_EQ("61@5+1 | 62@5+1 | 60@5+1", Print(mList));
}

TEST_F(Vrad_NoteList_AvoidingMerge, ShortensNotesOfTheOtherListItself) {
  EXPECT_EQ("new 0+60 | old 60+200", Merged({{60, 200}}, {{0, 100}}));
  EXPECT_EQ("new 0+60", PrintOwners(mOther));
}

TEST_F(Vrad_NoteList_AvoidingMerge, LeavesTheOthersLongNotesAndUndoAlone) {
  SetThresholds(100);
  AddNotes(mList, {{60, 60, 200}});
  AddNotes(mOther, {{60, 0, 100}});
  EXPECT_EQ("list long", Announced([this] { mList.Merge(&mOther); }));
  EXPECT_EQ("60@0+60", Print(mOther));
  EXPECT_EQ("60@0+100", PrintLongNotes(mOther));
}

TEST_F(Vrad_NoteList_AvoidingMerge, DropsExistingNotesThatAreMarked) {
  mList.AddNote(StoredNote(60, 0, 10));
  Vrad_NoteListBase_Note marked = StoredNote(61, 5, 10);
  marked.mEvent.MarkForDeletion();
  mList.AddNote(marked);
  marked.mTime = TickTime(500);  // behind the last incoming note
  mList.AddNote(marked);
  AddNotes(mOther, {{62, 100, 10}});
  mList.Merge(&mOther);
  EXPECT_EQ("60@0+10 | 62@100+10", Print(mList));
}

TEST_F(Vrad_NoteList_AvoidingMerge, KeepsIncomingNotesThatAreMarked) {
  Vrad_NoteListBase_Note marked = StoredNote(60, 30, 10);
  marked.mEvent.MarkForDeletion();
  mOther.AddNote(marked);
  AddNotes(mList, {{60, 0, 100}});
  mList.Merge(&mOther);
  EXPECT_EQ("60@0+30 | 60@30+10", Print(mList));
}

TEST_F(Vrad_NoteList_AvoidingMerge, AMarkedExistingNoteDoesNotCutAnIncomingOne) {
  Vrad_NoteListBase_Note marked = StoredNote(60, 60, 200);
  marked.mEvent.MarkForDeletion();
  mList.AddNote(marked);
  AddNotes(mOther, {{60, 0, 100}});
  mList.Merge(&mOther);
  EXPECT_EQ("60@0+100", Print(mList));
}

TEST_F(Vrad_NoteList_AvoidingMerge, ChangesNothingOfANoteButItsDuration) {
  mList.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(60, 100, 33), TickLength(3),
                                       NoteEvent(58, 7, 11), true));
  AddNotes(mOther, {{60, 30, 10}});
  mList.Merge(&mOther);
  Vrad_NoteList expected(Ndo_Object::kNotUndoable, false);
  expected.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(60, 30, 33), TickLength(3),
                                          NoteEvent(58, 7, 11), true));
  AddNotes(expected, {{60, 30, 10}});
  EXPECT_TRUE(mList == expected);
}

TEST_F(Vrad_NoteList_AvoidingMerge, ChangesNothingOfAnIncomingNoteButItsDuration) {
  AddNotes(mList, {{60, 60, 200}});
  mOther.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(60, 100, 33), TickLength(3),
                                        NoteEvent(58, 7, 11), true));
  mList.Merge(&mOther);
  Vrad_NoteList expected(Ndo_Object::kNotUndoable, false);
  expected.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(60, 60, 33), TickLength(3),
                                          NoteEvent(58, 7, 11), true));
  EXPECT_TRUE(mOther == expected);
  AddNotes(expected, {{60, 60, 200}});
  EXPECT_TRUE(mList == expected);
}

TEST_F(Vrad_NoteList_AvoidingMerge, OfItselfReplacesEachNoteByItsCopy) {
  AddNotes(mList, {{60, 0, 100}, {60, 30, 100}, {61, 30, 5}});
  mList.Merge(&mList);
  EXPECT_EQ("60@0+100 | 60@30+100 | 61@30+5", Print(mList));
}

TEST_F(Vrad_NoteList_AvoidingMerge, MakesTheLongNotesAnew) {
  SetThresholds(50);
  AddNotes(mList, {{60, 0, 100}, {61, 0, 50}});
  AddNotes(mOther, {{60, 30, 60}});
  AddNote(*mOther.GetLongNoteList(), 99, 7, 100);  // the other's are not used
  mList.Merge(&mOther);
  EXPECT_EQ("60@0+30 | 61@0+50 | 60@30+60", Print(mList));
  EXPECT_EQ("61@0+50 | 60@30+60", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_AvoidingMerge, TakesUpLongNotesThatLagged) {
  AddNotes(mList, {{60, 0, 100}});
  mList.SetLongNoteDuration(TickLength(50));
  AddNotes(mOther, {{61, 0, 1}});
  mList.Merge(&mOther);
  EXPECT_EQ("60@0+100", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_AvoidingMerge, IsOneStepOfUndoForTheListAlone) {
  SetThresholds(100);
  AddNotes(mList, {{60, 60, 200}});
  AddNotes(mOther, {{60, 0, 100}});
  EXPECT_TRUE(Do([this] { mList.Merge(&mOther); }));
  EXPECT_EQ("60@0+60 | 60@60+200 (60@60+200); 60@60+200 (60@60+200); "
            "60@0+60 | 60@60+200 (60@60+200)",
            PrintUndoAndRedo(mList));
  EXPECT_EQ("60@0+60", Print(mOther));
}

TEST_F(Vrad_NoteList_AvoidingMerge, InSamplesGoesByTheSameRules) {
  auto const note = [](long long iTime, long long iDuration) {
    return Vrad_NoteListBase_Note(SampleTime(iTime), NoteEvent(60, SampleLength(iDuration)));
  };
  mList.AddNote(note(0, 100));
  mList.AddNote(note(300, 200));
  mOther.AddNote(note(30, 10));
  mOther.AddNote(note(240, 100));
  mList.Merge(&mOther);
  EXPECT_EQ("60@0s+30s | 60@30s+10s | 60@240s+60s | 60@300s+200s", Print(mList));
}

TEST_F(Vrad_NoteList_AvoidingMerge, OfNotesThatReachTheLastOfAllTimes) {
  constexpr long long kLast = Time_Saturating::kMax;
  auto const note = [](int iPitch, long long iTime, long long iDuration) {
    return Vrad_NoteListBase_Note(TickTime(iTime), NoteEvent(iPitch, TickLength(iDuration)));
  };
  mList.AddNote(note(60, kLast - 100, 1000));  // would keep 60 of 1000
  mList.AddNote(note(61, kLast - 100, 200));   // keeps 60 of 200
  mList.AddNote(note(62, kLast - 40, 1000));   // begins in the first half
  mOther.AddNote(note(60, kLast - 40, 10));
  mOther.AddNote(note(61, kLast - 40, 10));
  mOther.AddNote(note(62, kLast - 100, 1000));
  mList.Merge(&mOther);
  EXPECT_EQ("62@9223372036854775707+1000 | 61@9223372036854775707+60 | 60@9223372036854775767+10 | "
            "61@9223372036854775767+10",
            Print(mList));
}

// The duration becomes the distance between two starts, so it has the unit of the later one.
TEST_F(Vrad_NoteList_AvoidingMerge, ACutDurationLeavesTheUnitItHad) {
  mList.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(60, SampleLength(100))));
  AddNotes(mOther, {{60, 2000, 10}});  // half of 4000 ticks
  mList.Merge(&mOther);
  EXPECT_EQ("60@0+2000 | 60@2000+10", Print(mList));
}

TEST_F(Vrad_NoteList_AvoidingMerge, ACutDurationTakesTheUnitOfTheTimeThatCutsIt) {
  AddNotes(mList, {{60, 0, 4000}});
  mOther.AddNote(Vrad_NoteListBase_Note(SampleTime(50), NoteEvent(60, SampleLength(9))));
  mList.Merge(&mOther);
  EXPECT_EQ("60@0+50s | 60@50s+9s", Print(mList));
}

TEST_F(Vrad_NoteList_AvoidingMerge, ReportsNothingOfItsOwn) {
  Cmn_AssertRecorder recorder;
  EXPECT_EQ("old 0+30 | new 30+60 | old 90+400", Merged({{0, 100}, {90, 400}}, {{30, 100}}));
  EXPECT_EQ(0, recorder.GetNum());
}
