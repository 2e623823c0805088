#include <gtest/gtest.h>

#include "cmn/cmn_assert.h"
#include "foundation/time_convert.h"
#include "ndo/ndo_manager.h"
#include "support/vrad_notes.h"
#include "vrad/vrad_notelist.h"

namespace {

constexpr long long kLong = 15360000;  // ticks

// Opens up how a long note list is attached.
class List : public Vrad_NoteListBase {
public:
  explicit List(EUndoFlag iFlag = kNotUndoable) : Vrad_NoteListBase(iFlag, false) {}
  void Attach(Vrad_NoteListBase * iListP, long long iTicks, long long iSamples) {
    SetLongNoteList(Ndo_AutoPtr<Vrad_NoteListBase>(iListP), Time_TickLength(iTicks),
                    Time_SampleLength(iSamples));
  }
};

// Says when it is destroyed.
class WatchedList : public Vrad_NoteListBase {
public:
  explicit WatchedList(bool & oIsGone) : Vrad_NoteListBase(kNotUndoable, false), mIsGone(oIsGone) {}
  ~WatchedList() override { mIsGone = true; }

private:
  bool & mIsGone;
};

// A list whose long note list has one of its own: from 50 and from 100 ticks on.
class ChainedList : public List {
public:
  ChainedList() {
    List * const middleP = new List;
    middleP->Attach(new Vrad_NoteListBase(kNotUndoable, false), 100, 100);
    Attach(middleP, 50, 50);
  }
};

std::string PrintChain(Vrad_NoteListBase & iList) {
  return Print(iList) + "; " + PrintLongNotes(iList) + "; " +
         PrintLongNotes(*iList.GetLongNoteList());
}

Vrad_NoteListBase * NewList(Ndo_Object::EUndoFlag iFlag = Ndo_Object::kNotUndoable) {
  return new Vrad_NoteListBase(iFlag, false);
}

}  // namespace

TEST(Vrad_NoteList_LongNotes, ANewListHasAnEmptyOneAndTheThresholdInTicks) {
  Vrad_NoteList const list(Ndo_Object::kNotUndoable, false);
  EXPECT_EQ("", PrintLongNotes(list));
  EXPECT_EQ(15360000, list.GetLongNoteDuration(Time_eType_Ticks).AsInt64());
  EXPECT_EQ(Time_eType_Ticks, list.GetLongNoteDuration(Time_eType_Ticks).GetType());
}

TEST(Vrad_NoteList_LongNotes, TheThresholdInSamplesIsOneSecondOfTheRateInForce) {
  Time_Globals::SetSampleRate(44100.9);
  Vrad_NoteList const list(Ndo_Object::kNotUndoable, false);
  Time_Globals::SetSampleRate(48000);
  EXPECT_EQ(44100, list.GetLongNoteDuration(Time_eType_Samples).AsInt64());
  EXPECT_EQ(Time_eType_Samples, list.GetLongNoteDuration(Time_eType_Samples).GetType());
}

TEST(Vrad_NoteList_LongNotes, TheListOfLongNotesHasNoneItself) {
  Vrad_NoteList const list(Ndo_Object::kUndoable, false);
  EXPECT_EQ(nullptr, list.GetLongNoteList()->GetLongNoteList());
  EXPECT_TRUE(list.GetLongNoteList()->NdoIsUndoable());
}

TEST(Vrad_NoteList_LongNotes, AListBaseHasNoneAndNoThresholds) {
  Vrad_NoteListBase const list(Ndo_Object::kNotUndoable, false);
  EXPECT_EQ(nullptr, list.GetLongNoteList());
  EXPECT_EQ(-1, list.GetLongNoteListID());
  EXPECT_EQ(0, list.GetLongNoteDuration(Time_eType_Ticks).AsInt64());
  EXPECT_EQ(0, list.GetLongNoteDuration(Time_eType_Samples).AsInt64());
}

TEST(Vrad_NoteList_LongNotes, ExactlyTheThresholdIsLongOneLessIsNot) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 0, kLong - 1);
  AddNote(list, 61, 0, kLong);
  AddNote(list, 62, 0, kLong + 1);
  EXPECT_EQ("61@0+15360000 | 62@0+15360001", PrintLongNotes(list));
}

TEST(Vrad_NoteList_LongNotes, ADurationInSamplesIsJudgedBySamples) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(60, SampleLength(47999))));
  list.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(61, SampleLength(48000))));
  EXPECT_EQ("61@0+48000s", PrintLongNotes(list));
}

TEST(Vrad_NoteList_LongNotes, ADurationOfNeitherUnitIsNotLong) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  Vrad_NoteListBase_Note note = StoredNote(60, 0, 1LL << 60);
  note.mEvent.mU.mNoteWithDuration.mDurationType = static_cast<Time_EType>(2);
  list.AddNote(note);
  EXPECT_EQ("", PrintLongNotes(list));
}

TEST(Vrad_NoteList_LongNotes, ErasingALongNoteErasesItsCopy) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 0, kLong);
  AddNote(list, 61, 0, kLong);
  list.EraseNote(TimedNote(60, 0, 1));
  EXPECT_EQ("61@0+15360000", PrintLongNotes(list));
}

TEST(Vrad_NoteList_LongNotes, ErasingAShortNoteLeavesTheCopyOfALikeLongOne) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 0, 10);
  AddNote(list, 60, 0, kLong);
  list.EraseNote(TimedNote(60, 0, 10));
  EXPECT_EQ("60@0+15360000", PrintLongNotes(list));
}

TEST(Vrad_NoteList_LongNotes, ChangingALongNoteToAnotherChangesItsCopy) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 0, kLong);
  list.ChangeNote(TickTime(0), NoteEvent(60, 1), NoteEvent(62, kLong + 5));
  EXPECT_EQ("62@0+15360005", PrintLongNotes(list));
}

TEST(Vrad_NoteList_LongNotes, ShorteningALongNoteErasesItsCopy) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 0, kLong);
  list.ChangeNote(TickTime(0), NoteEvent(60, 1), NoteEvent(60, 10));
  EXPECT_EQ("", PrintLongNotes(list));
  EXPECT_EQ("60@0+10", Print(list));
}

TEST(Vrad_NoteList_LongNotes, AChangeOfUnitIsJudgedByTheThresholdOfEachUnit) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 0, kLong);
  list.ChangeNote(TickTime(0), NoteEvent(60, 1), NoteEvent(61, SampleLength(48000)));
  EXPECT_EQ("61@0+48000s", PrintLongNotes(list));
  list.ChangeNote(TickTime(0), NoteEvent(61, 1), NoteEvent(62, kLong - 1));
  EXPECT_EQ("", PrintLongNotes(list));
  list.ChangeNote(TickTime(0), NoteEvent(62, 1), NoteEvent(63, SampleLength(47999)));
  EXPECT_EQ("", PrintLongNotes(list));
}

TEST(Vrad_NoteList_LongNotes, LengtheningAShortNoteFilesItWithItsOldDuration) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 0, 10);
  list.ChangeNote(TickTime(0), NoteEvent(60, 1), NoteEvent(62, kLong));
  EXPECT_EQ("60@0+10", PrintLongNotes(list));
  EXPECT_EQ("62@0+15360000", Print(list));
}

TEST(Vrad_NoteList_LongNotes, TheCopyOfALengthenedNoteCatchesUpWhenTheyAreMadeAnew) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  List one;
  AddNote(list, 60, 0, 10);
  AddNote(one, 61, 5, 10);
  list.ChangeNote(TickTime(0), NoteEvent(60, 1), NoteEvent(62, kLong));
  list.Merge(&one);
  EXPECT_EQ("62@0+15360000", PrintLongNotes(list));
}

TEST(Vrad_NoteList_LongNotes, ACopyThatIsMissingIsReportedAndTheNoteChangedAllTheSame) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 0, 10);
  list.ChangeNote(TickTime(0), NoteEvent(60, 1), NoteEvent(62, kLong));  // copied as pitch 60
  Cmn_AssertRecorder recorder;
  list.ChangeNote(TickTime(0), NoteEvent(62, 1), NoteEvent(63, kLong));
  EXPECT_EQ(1, recorder.GetNum("result.first"));
  EXPECT_EQ("63@0+15360000", Print(list));
  EXPECT_EQ("60@0+10", PrintLongNotes(list));
}

TEST(Vrad_NoteList_LongNotes, ALongNoteOfFractionalPitchIsCopiedWhole) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  Vrae_PitchToMIDINoteWithDuration const event(60, TickLength(kLong), 80, 64, 0.25f);
  list.AddNote(Vrad_NoteListBase_Note(TickTime(0),
                                      static_cast<Vrae_Event const &>(event).AsNoteWithDuration(),
                                      TickLength(3), NoteEvent(58, 7), true));
  EXPECT_TRUE(*list.GetLongNoteList() == list);
}

TEST(Vrad_NoteList_LongNotes, AdditionAndErasureGoDownAChain) {
  ChainedList list;
  AddNote(list, 60, 0, 49);
  AddNote(list, 61, 0, 99);
  AddNote(list, 62, 0, 100);
  EXPECT_EQ("60@0+49 | 61@0+99 | 62@0+100; 61@0+99 | 62@0+100; 62@0+100", PrintChain(list));
  list.EraseNote(TimedNote(62, 0, 1));
  EXPECT_EQ("60@0+49 | 61@0+99; 61@0+99; ", PrintChain(list));
}

TEST(Vrad_NoteList_LongNotes, AChangeGoesDownAChainByTheCasesOfEachLevel) {
  ChainedList list;
  AddNote(list, 60, 0, 60);
  list.ChangeNote(TickTime(0), NoteEvent(60, 1), NoteEvent(61, 200));
  EXPECT_EQ("61@0+200; 61@0+200; 60@0+60", PrintChain(list));
}

TEST(Vrad_NoteList_LongNotes, ClearingGoesDownAChain) {
  ChainedList list;
  AddNote(list, 60, 0, 100);
  list.Clear();
  EXPECT_EQ("; ; ", PrintChain(list));
}

TEST(Vrad_NoteList_LongNotes, ReplacingGoesDownAChainWhileTheThresholdsAgree) {
  ChainedList source, list;
  AddNote(source, 60, 0, 60);
  source.ChangeNote(TickTime(0), NoteEvent(60, 1), NoteEvent(61, 200));
  list.ReplaceData(&source);
  EXPECT_EQ("61@0+200; 61@0+200; 60@0+60", PrintChain(list));
  list.GetLongNoteList()->SetLongNoteDuration(SampleLength(7));
  list.ReplaceData(&source);
  EXPECT_EQ("61@0+200; 61@0+200; 61@0+200", PrintChain(list));
}

// A note that does not belong at the lowest level shows whether that was made anew.
TEST(Vrad_NoteList_LongNotes, MergingGoesDownAChainWhileTheThresholdsAgree) {
  ChainedList list, other;
  AddNotes(list, {{60, 0, 100}});
  AddNotes(other, {{61, 0, 60}, {62, 0, 100}});
  AddNote(*other.GetLongNoteList()->GetLongNoteList(), 99, 7, 1);
  list.Merge(&other);
  EXPECT_EQ("60@0+100 | 61@0+60 | 62@0+100; 60@0+100 | 61@0+60 | 62@0+100; "
            "60@0+100 | 62@0+100 | 99@7+1",
            PrintChain(list));
  other.GetLongNoteList()->SetLongNoteDuration(SampleLength(7));
  list.Clear();
  list.Merge(&other);
  EXPECT_EQ("61@0+60 | 62@0+100; 61@0+60 | 62@0+100; 62@0+100", PrintChain(list));
}

TEST(Vrad_NoteList_LongNotes, ErasingGoesDownAChainWhileTheThresholdsAgree) {
  ChainedList list, other;
  AddNotes(list, {{60, 0, 100}, {61, 0, 60}, {62, 0, 100}});
  AddNote(*list.GetLongNoteList()->GetLongNoteList(), 99, 7, 1);
  AddNotes(other, {{62, 0, 100}});
  list.Erase(&other);
  EXPECT_EQ("60@0+100 | 61@0+60; 60@0+100 | 61@0+60; 60@0+100 | 99@7+1", PrintChain(list));
  other.GetLongNoteList()->SetLongNoteDuration(SampleLength(7));
  list.Erase(&other);
  EXPECT_EQ("60@0+100 | 61@0+60; 60@0+100 | 61@0+60; 60@0+100", PrintChain(list));
}

TEST(Vrad_NoteList_LongNotes, ErasingARangeGoesDownAChain) {
  ChainedList list;
  AddNotes(list, {{60, 0, 100}, {61, 5, 100}});
  list.EraseTimeRange(TickTime(0), TickTime(5));
  EXPECT_EQ("61@5+100; 61@5+100; 61@5+100", PrintChain(list));
}

TEST(Vrad_NoteList_LongNotes, EachWayOfMovingGoesDownAChain) {
  ChainedList list;
  AddNotes(list, {{60, 0, 100}});
  list.OffsetTimes(TickLength(7));
  EXPECT_EQ("60@7+100; 60@7+100; 60@7+100", PrintChain(list));
  list.OffsetStarts(TickLength(3));
  EXPECT_EQ("60@10+97; 60@10+97; 60@10+97", PrintChain(list));
  list.OffsetDurations(TickLength(-50));
  EXPECT_EQ("60@10+47; 60@10+47; 60@10+47", PrintChain(list));
  list.OffsetPitches(TickLength(1));
  EXPECT_EQ("59@10+47; 59@10+47; 59@10+47", PrintChain(list));
}

TEST(Vrad_NoteList_LongNotes, MakingThemAnewEmptiesAndFillsTheWholeChain) {
  ChainedList list;
  List source;
  AddNote(list, 60, 0, 100);
  AddNote(source, 61, 0, 60);
  list.ReplaceData(&source);
  EXPECT_EQ("61@0+60; 61@0+60; ", PrintChain(list));
}

// A merge of a list without long notes makes them anew.
TEST(Vrad_NoteList_LongNotes, MakingThemAnewFindsThemAmongManyShortOnes) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  for (int i = 0; i < 1000; ++i)
    AddNote(list, 60, i, i == 7 || i == 700 ? 100 : 99);
  list.SetLongNoteDuration(TickLength(100));
  List one;
  AddNote(one, 61, 500, 101);
  list.Merge(&one);
  EXPECT_EQ("60@7+100 | 61@500+101 | 60@700+100", PrintLongNotes(list));
}

TEST(Vrad_NoteList_LongNotes, MakingThemAnewFindsThoseAtTheLimitsOfTime) {
  constexpr long long kFirst = Time_Saturating::kMin, kLast = Time_Saturating::kMax;
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, kFirst, 50);
  AddNote(list, 61, 5, 50);
  AddNote(list, 62, kLast - 9, 50);
  AddNote(list, 63, kLast, 50);
  list.SetLongNoteDuration(TickLength(50));
  List one;
  AddNote(one, 64, 0, 1);
  list.Merge(&one);
  ASSERT_EQ(4u, list.GetLongNoteList()->Size());
}

TEST(Vrad_NoteList_SetLongNoteDuration, ChangesOneThresholdAndMovesNoNote) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 0, 100);
  list.SetLongNoteDuration(TickLength(50));
  EXPECT_EQ("", PrintLongNotes(list));
  EXPECT_EQ(50, list.GetLongNoteDuration(Time_eType_Ticks).AsInt64());
  EXPECT_EQ(48000, list.GetLongNoteDuration(Time_eType_Samples).AsInt64());
  AddNote(list, 61, 0, 50);
  EXPECT_EQ("61@0+50", PrintLongNotes(list));
}

TEST(Vrad_NoteList_SetLongNoteList, TakesTheListAsItComesAndBothThresholds) {
  List list;
  AddNote(list, 60, 0, 1000);
  Vrad_NoteListBase * const longP = NewList();
  AddNote(*longP, 70, 5, 1);
  list.Attach(longP, 11, 22);
  EXPECT_EQ("70@5+1", PrintLongNotes(list));
  EXPECT_EQ(11, list.GetLongNoteDuration(Time_eType_Ticks).AsInt64());
  EXPECT_EQ(22, list.GetLongNoteDuration(Time_eType_Samples).AsInt64());
}

TEST(Vrad_NoteList_SetLongNoteList, AnEmptyPointerRemovesTheSchemeAndSetsTheThresholds) {
  List list(Ndo_Object::kUndoable);
  list.Attach(NewList(Ndo_Object::kUndoable), 11, 22);
  EXPECT_NE(-1, list.GetLongNoteListID());
  list.Attach(0, 33, 44);
  EXPECT_EQ(nullptr, list.GetLongNoteList());
  EXPECT_EQ(-1, list.GetLongNoteListID());
  EXPECT_EQ(33, list.GetLongNoteDuration(Time_eType_Ticks).AsInt64());
  EXPECT_EQ(44, list.GetLongNoteDuration(Time_eType_Samples).AsInt64());
}

TEST(Vrad_NoteList_SetLongNoteList, KeepsTheIdentifierOfAnUndoableList) {
  List list(Ndo_Object::kUndoable);
  Vrad_NoteListBase * const longP = NewList(Ndo_Object::kUndoable);
  list.Attach(longP, 11, 22);
  EXPECT_EQ(longP->NdoGetID(), list.GetLongNoteListID());
}

TEST(Vrad_NoteList_SetLongNoteList, DestroysTheOldList) {
  bool isGone = false;
  List list;
  list.Attach(new WatchedList(isGone), 1, 1);
  EXPECT_FALSE(isGone);
  list.Attach(NewList(), 1, 1);
  EXPECT_TRUE(isGone);
}

TEST(Vrad_NoteList_SetLongNoteList, TheListGoesWithItsOwner) {
  bool isGone = false;
  {
    List list;
    list.Attach(new WatchedList(isGone), 1, 1);
  }
  EXPECT_TRUE(isGone);
}

TEST(Vrad_NoteList_SetLongNoteList, AListThatDiffersInUndoIsReportedAndAttached) {
  List list;
  Cmn_AssertRecorder recorder;
  list.Attach(NewList(Ndo_Object::kUndoable), 11, 22);
  EXPECT_EQ(1, recorder.GetNum("iLongNoteListP.Get() == 0 || this->NdoIsUndoable() == "
                               "iLongNoteListP->NdoIsUndoable()"));
  EXPECT_EQ(1, recorder.GetNum());
  EXPECT_NE(nullptr, list.GetLongNoteList());
}

// Attaching is not undone, so what was attached in the step must not go with it.
TEST(Vrad_NoteList_SetLongNoteList, AListAttachedInAnUndoneStepLivesOn) {
  List list(Ndo_Object::kUndoable);
  Ndo_gManager.BeginTransaction();
  list.Attach(NewList(Ndo_Object::kUndoable), 11, 22);
  AddNote(*list.GetLongNoteList(), 60, 0, 10);
  Ndo_gManager.EndTransaction();
  Ndo_gManager.Undo();
  EXPECT_FALSE(Ndo_gManager.IsKept(list.GetLongNoteListID()));
  Ndo_gManager.ClearHistory();
  EXPECT_EQ(list.GetLongNoteList(), Ndo_gManager.LookupObject(list.GetLongNoteListID()));
}
