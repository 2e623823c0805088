#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "cmn/cmn_assert.h"
#include "ndo/ndo_manager.h"
#include "support/throwing_off.h"
#include "support/vrad_notes.h"
#include "vrad/vrad_notelist.h"

namespace {

constexpr long long kLong = 20000000;  // ticks

class Vrad_NoteList_Undo : public testing::Test {
protected:
  ~Vrad_NoteList_Undo() override { Ndo_gManager.ClearHistory(); }

  static void Do(std::function<void()> iEdit) {
    Ndo_gManager.BeginTransaction();
    iEdit();
    Ndo_gManager.EndTransaction();
  }
  // "1 0": this list announced the edit, its long note list did not.
  std::string Announced(std::function<void()> iEdit) {
    Ndo_gManager.BeginTransaction();
    iEdit();
    std::string const result = std::to_string(Ndo_gManager.HasAnnounced(mList.NdoGetID())) + " " +
                               std::to_string(Ndo_gManager.HasAnnounced(mList.GetLongNoteListID()));
    Ndo_gManager.EndTransaction();
    return result;
  }

  Vrad_NoteList mList{Ndo_Object::kUndoable, false};
};

class OtherState : public Ndo_State {
public:
  Ndo_Object * NdoReCreate() override { return 0; }
};

}  // namespace

TEST_F(Vrad_NoteList_Undo, TakesBackAndRepeatsAnAddition) {
  AddNote(mList, 60, 0, 10);
  Do([this] { AddNote(mList, 61, 5, kLong); });
  Ndo_gManager.Undo();
  EXPECT_EQ("60@0+10", Print(mList));
  EXPECT_EQ("", PrintLongNotes(mList));
  Ndo_gManager.Redo();
  EXPECT_EQ("60@0+10 | 61@5+20000000", Print(mList));
  EXPECT_EQ("61@5+20000000", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Undo, AbortingTakesBack) {
  Ndo_gManager.BeginTransaction();
  AddNote(mList, 61, 5, kLong);
  Ndo_gManager.AbortTransaction();
  EXPECT_EQ(0u, mList.Size());
  EXPECT_EQ("", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Undo, AddingAnnouncesTheLongNoteListOnlyForALongNote) {
  EXPECT_EQ("1 0", Announced([this] { AddNote(mList, 60, 0, 10); }));
  EXPECT_EQ("1 1", Announced([this] { AddNote(mList, 60, 0, kLong); }));
}

TEST_F(Vrad_NoteList_Undo, ErasingAnnouncesOnlyWhatIsFound) {
  AddNote(mList, 60, 0, 10);
  AddNote(mList, 61, 0, kLong);
  EXPECT_EQ("0 0", Announced([this] { mList.EraseNote(TimedNote(70, 0, 10)); }));
  EXPECT_EQ("1 0", Announced([this] { mList.EraseNote(TimedNote(60, 0, 10)); }));
  EXPECT_EQ("1 1", Announced([this] { mList.EraseNote(TimedNote(61, 0, 10)); }));
}

TEST_F(Vrad_NoteList_Undo, AnErasureOfNothingLeavesNoStep) {
  Do([this] { mList.EraseNote(TimedNote(70, 0, 10)); });
  EXPECT_EQ(0, Ndo_gManager.GetNumUndoSteps());
}

TEST_F(Vrad_NoteList_Undo, ChangingAnnouncesOnlyWhatIsFoundAnEqualEventIncluded) {
  AddNote(mList, 60, 0, 10);
  EXPECT_EQ("1 0", Announced([this] {
              mList.ChangeNote(TickTime(0), NoteEvent(60, 10), NoteEvent(60, 10));
            }));
  Cmn_AssertRecorder recorder;
  EXPECT_EQ("0 0", Announced([this] {
              mList.ChangeNote(TickTime(0), NoteEvent(61, 10), NoteEvent(60, 10));
            }));
}

TEST_F(Vrad_NoteList_Undo, ChangingAnnouncesTheLongNoteListWhereALongNoteTakesPart) {
  AddNote(mList, 60, 0, kLong);
  auto const changeTo = [this](long long iTicks) {
    return Announced(
        [&] { mList.ChangeNote(TickTime(0), NoteEvent(60, 1), NoteEvent(60, iTicks)); });
  };
  EXPECT_EQ("1 1", changeTo(kLong + 1));
  EXPECT_EQ("1 1", changeTo(10));
  EXPECT_EQ("1 0", changeTo(11));
  EXPECT_EQ("1 1", changeTo(kLong));
}

TEST_F(Vrad_NoteList_Undo, TakesBackAndRepeatsAChangeOfALongNote) {
  AddNote(mList, 60, 0, kLong);
  Do([this] { mList.ChangeNote(TickTime(0), NoteEvent(60, 1), NoteEvent(62, kLong + 1)); });
  Ndo_gManager.Undo();
  EXPECT_EQ("60@0+20000000", Print(mList));
  EXPECT_EQ("60@0+20000000", PrintLongNotes(mList));
  Ndo_gManager.Redo();
  EXPECT_EQ("62@0+20000001", Print(mList));
  EXPECT_EQ("62@0+20000001", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Undo, TakesBackAndRepeatsALengthening) {
  AddNote(mList, 60, 0, 10);
  Do([this] { mList.ChangeNote(TickTime(0), NoteEvent(60, 1), NoteEvent(60, kLong)); });
  Ndo_gManager.Undo();
  EXPECT_EQ("60@0+10", Print(mList));
  EXPECT_EQ("", PrintLongNotes(mList));
  Ndo_gManager.Redo();
  EXPECT_EQ("60@0+20000000", Print(mList));
  EXPECT_EQ("60@0+10", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Undo, TakesBackAnErasureAndAnEmptyingWithTheirLongNotes) {
  AddNote(mList, 60, 0, kLong);
  AddNote(mList, 61, 5, 10);
  Do([this] { mList.EraseNote(TimedNote(60, 0, 1)); });
  Do([this] { mList.Clear(); });
  Ndo_gManager.Undo();
  EXPECT_EQ("61@5+10", Print(mList));
  EXPECT_EQ("", PrintLongNotes(mList));
  Ndo_gManager.Undo();
  EXPECT_EQ("60@0+20000000 | 61@5+10", Print(mList));
  EXPECT_EQ("60@0+20000000", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Undo, TakesBackAReplacementWhetherItMadeTheLongNotesAnewOrNot) {
  Vrad_NoteList like(Ndo_Object::kNotUndoable, false);
  Vrad_NoteListBase base(Ndo_Object::kNotUndoable, false);
  AddNote(like, 70, 0, kLong + 1);
  AddNote(base, 71, 0, kLong + 2);
  AddNote(mList, 60, 0, kLong);
  Do([&] { mList.ReplaceData(&like); });
  Do([&] { mList.ReplaceData(&base); });
  EXPECT_EQ("71@0+20000002", PrintLongNotes(mList));
  Ndo_gManager.Undo();
  EXPECT_EQ("70@0+20000001", Print(mList));
  EXPECT_EQ("70@0+20000001", PrintLongNotes(mList));
  Ndo_gManager.Undo();
  EXPECT_EQ("60@0+20000000", Print(mList));
  EXPECT_EQ("60@0+20000000", PrintLongNotes(mList));
}

TEST_F(Vrad_NoteList_Undo, OfALongNoteAddedToACopyTakesItFromTheSharedLongNotes) {
  AddNote(mList, 60, 0, kLong);
  Vrad_NoteList copy(mList);
  Do([&] { AddNote(copy, 61, 0, kLong); });
  EXPECT_EQ("60@0+20000000 | 61@0+20000000", PrintLongNotes(mList));
  EXPECT_EQ("60@0+20000000", Print(mList));
  Ndo_gManager.Undo();
  EXPECT_EQ("60@0+20000000", Print(copy));
  EXPECT_EQ("60@0+20000000", PrintLongNotes(mList));
  EXPECT_EQ(mList.GetLongNoteList(), copy.GetLongNoteList());
}

TEST_F(Vrad_NoteList_Undo, OfACreationKeepsTheListForRedoWithItsLongNotes) {
  Vrad_NoteList * listP = 0;
  Do([&] {
    listP = new Vrad_NoteList(Ndo_Object::kUndoable, false);
    AddNote(*listP, 60, 0, kLong);
  });
  long long const id = listP->NdoGetID(), longID = listP->GetLongNoteListID();
  Ndo_gManager.Undo();
  EXPECT_TRUE(Ndo_gManager.IsKept(id));
  EXPECT_EQ("", PrintLongNotes(*listP));
  Ndo_gManager.Redo();
  EXPECT_FALSE(Ndo_gManager.IsKept(id));
  EXPECT_EQ("60@0+20000000", PrintLongNotes(*listP));
  Ndo_gManager.Undo();
  Ndo_gManager.ClearHistory();
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(id));
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(longID));
}

TEST_F(Vrad_NoteList_Undo, ClearingAnnouncesBothListsEmptyOrNot) {
  EXPECT_EQ("1 1", Announced([this] { mList.Clear(); }));
}

TEST_F(Vrad_NoteList_Undo, ReplacingAnnouncesEachLevelReached) {
  Vrad_NoteList const other(Ndo_Object::kNotUndoable, false);
  EXPECT_EQ("1 1", Announced([&] { mList.ReplaceData(&other); }));
  Vrad_NoteListBase base(Ndo_Object::kUndoable, false);
  Ndo_gManager.BeginTransaction();
  base.ReplaceData(&other);
  EXPECT_EQ(1, Ndo_gManager.GetNumAnnounced());
  Ndo_gManager.EndTransaction();
}

TEST_F(Vrad_NoteList_Undo, ThresholdsAndReadsAnnounceNothing) {
  AddNote(mList, 60, 0, 10);
  EXPECT_EQ("0 0", Announced([this] {
              mList.SetLongNoteDuration(TickLength(5));
              Print(mList);
              mList.GetLatestReleaseTimeForNotesInRange(TickTime(0), TickTime(5));
            }));
}

TEST_F(Vrad_NoteList_Undo, ChangingThroughAnIteratorCanBeTakenBack) {
  AddNote(mList, 60, 0, 10);
  AddNote(mList, 61, 5, 10);
  Do([this] {
    Vrad_NoteListBase::FullNotesInRangeIter iter(&mList);
    for (; iter.IsMore(); ++iter)
      iter.ChangeCurrentNote(NoteEvent(70, 3));
  });
  EXPECT_EQ("70@0+3 | 70@5+3", Print(mList));
  Ndo_gManager.Undo();
  EXPECT_EQ("60@0+10 | 61@5+10", Print(mList));
}

TEST_F(Vrad_NoteList_Undo, AssigningAnnouncesOnTheTargetAlone) {
  Vrad_NoteList other(Ndo_Object::kUndoable, false);
  Ndo_gManager.BeginTransaction();
  mList = other;
  EXPECT_TRUE(Ndo_gManager.HasAnnounced(mList.NdoGetID()));
  EXPECT_FALSE(Ndo_gManager.HasAnnounced(other.NdoGetID()));
  Ndo_gManager.EndTransaction();
}

TEST_F(Vrad_NoteList_Undo, OfAnAssignmentBringsTheNotesBackWithoutALongNoteList) {
  Vrad_NoteList other(Ndo_Object::kUndoable, false);
  AddNote(mList, 60, 0, kLong);
  Do([&] { mList = other; });
  EXPECT_EQ(other.GetLongNoteList(), mList.GetLongNoteList());
  Ndo_gManager.Undo();
  EXPECT_EQ("60@0+20000000", Print(mList));
  EXPECT_EQ(nullptr, mList.GetLongNoteList());
  EXPECT_EQ(-1, mList.GetLongNoteListID());
  EXPECT_NE(nullptr, other.GetLongNoteList());
}

TEST_F(Vrad_NoteList_Undo, AssigningKeepsTheIdentifierAndACopyHasItsOwn) {
  Vrad_NoteList other(Ndo_Object::kUndoable, false);
  long long const id = mList.NdoGetID();
  mList = other;
  EXPECT_EQ(id, mList.NdoGetID());
  Vrad_NoteList const copy(mList);
  EXPECT_NE(id, copy.NdoGetID());
  EXPECT_TRUE(copy.NdoIsUndoable());
}

TEST_F(Vrad_NoteList_Undo, AStateHoldsThresholdsAndNotesButNotTheLongNotes) {
  AddNote(mList, 60, 0, kLong);
  std::unique_ptr<Ndo_State> const stateP(mList.NdoGetState());
  mList.SetLongNoteDuration(TickLength(5));
  mList.SetLongNoteDuration(SampleLength(6));
  mList.Clear();
  mList.NdoRestoreState(stateP.get());
  EXPECT_EQ("60@0+20000000", Print(mList));
  EXPECT_EQ("", PrintLongNotes(mList));
  EXPECT_EQ(15360000, mList.GetLongNoteDuration(Time_eType_Ticks).AsInt64());
  EXPECT_EQ(48000, mList.GetLongNoteDuration(Time_eType_Samples).AsInt64());
}

TEST_F(Vrad_NoteList_Undo, RestoringKeepsTheLongNoteListThatTheStateNames) {
  Vrad_NoteListBase * const longP = mList.GetLongNoteList();
  std::unique_ptr<Ndo_State> const stateP(mList.NdoGetState());
  mList.NdoRestoreState(stateP.get());
  EXPECT_EQ(longP, mList.GetLongNoteList());
  EXPECT_EQ(longP, Ndo_gManager.LookupObject(mList.GetLongNoteListID()));
}

TEST_F(Vrad_NoteList_Undo, AStateOutlivesTheNotesItWasTakenFrom) {
  auto listP = std::make_unique<Vrad_NoteListBase>(Ndo_Object::kUndoable, false);
  AddNote(*listP, 60, 0, 10);
  std::unique_ptr<Ndo_State> const stateP(listP->NdoGetState());
  AddNote(*listP, 61, 0, 10);
  listP.reset();
  mList.NdoRestoreState(stateP.get());
  EXPECT_EQ("60@0+10", Print(mList));
}

TEST_F(Vrad_NoteList_Undo, RestoringAnnouncesNothing) {
  std::unique_ptr<Ndo_State> const stateP(mList.NdoGetState());
  EXPECT_EQ("0 0", Announced([&] { mList.NdoRestoreState(stateP.get()); }));
}

TEST_F(Vrad_NoteList_Undo, RestoringAStateWhoseLongNoteListIsGoneLeavesNone) {
  auto sourceP = std::make_unique<Vrad_NoteList>(Ndo_Object::kUndoable, false);
  std::unique_ptr<Ndo_State> const stateP(sourceP->NdoGetState());
  sourceP.reset();
  mList.NdoRestoreState(stateP.get());
  EXPECT_EQ(nullptr, mList.GetLongNoteList());
  EXPECT_EQ(-1, mList.GetLongNoteListID());
}

TEST_F(Vrad_NoteList_Undo, RestoringAStateThatNamesAnotherListSharesThatOne) {
  Vrad_NoteList source(Ndo_Object::kUndoable, false);
  std::unique_ptr<Ndo_State> const stateP(source.NdoGetState());
  mList.NdoRestoreState(stateP.get());
  EXPECT_EQ(source.GetLongNoteList(), mList.GetLongNoteList());
  EXPECT_EQ(source.GetLongNoteListID(), mList.GetLongNoteListID());
}

TEST_F(Vrad_NoteList_Undo, AStateOfAnotherClassThrowsAndRestoresNothing) {
  AddNote(mList, 60, 0, 10);
  OtherState other;
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(mList.NdoRestoreState(&other), Cmn_AssertException);
  ASSERT_EQ(1, recorder.GetNum("p"));
  EXPECT_TRUE(recorder.GetEntries()[0].mFlag);
  EXPECT_TRUE(recorder.GetEntries()[0].mThrowing);
  EXPECT_EQ("60@0+10", Print(mList));
}

TEST_F(Vrad_NoteList_Undo, AStateOfAnotherClassWithThrowingOffRestoresNothing) {
  AddNote(mList, 60, 0, 10);
  OtherState other;
  Cmn_AssertRecorder recorder;
  ThrowingOff const throwingOff;
  mList.NdoRestoreState(&other);
  EXPECT_EQ("60@0+10", Print(mList));
}

TEST_F(Vrad_NoteList_Undo, AStateOfAListThatIsNotUndoableCannotNameItsLongNotes) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(list.NdoGetState(), Cmn_AssertException);
  ASSERT_EQ(1, recorder.GetNum("! (iObjP.mCachedID == -1 && iObjP.mPtr != 0)"));
  EXPECT_FALSE(recorder.GetEntries()[0].mFlag);
}

TEST_F(Vrad_NoteList_Undo, AReCreatedListIsAPlainOneWithTheNotes) {
  AddNote(mList, 60, 0, 10);
  std::unique_ptr<Ndo_State> const stateP(mList.NdoGetState());
  std::unique_ptr<Ndo_Object> const blankP(stateP->NdoReCreate());
  ASSERT_NE(nullptr, dynamic_cast<Vrad_NoteListBase *>(blankP.get()));
  EXPECT_EQ(nullptr, dynamic_cast<Vrad_NoteList *>(blankP.get()));
  EXPECT_FALSE(blankP->NdoIsUndoable());
  blankP->NdoRestoreState(stateP.get());
  EXPECT_EQ("60@0+10", Print(static_cast<Vrad_NoteListBase &>(*blankP)));
}

TEST_F(Vrad_NoteList_Undo, TheLongNoteListIsDestroyedWithItsLastOwner) {
  auto listP = std::make_unique<Vrad_NoteList>(Ndo_Object::kUndoable, false);
  long long const id = listP->GetLongNoteListID();
  EXPECT_NE(nullptr, Ndo_gManager.LookupObject(id));
  Vrad_NoteList copy(*listP);
  listP.reset();
  EXPECT_NE(nullptr, Ndo_gManager.LookupObject(id));
  copy = mList;
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(id));
}

TEST_F(Vrad_NoteList_Undo, AListHandedOverComesBackWithItsLongNotes) {
  Vrad_NoteList * const listP = new Vrad_NoteList(Ndo_Object::kUndoable, false);
  AddNote(*listP, 60, 0, kLong);
  Do([&] { listP->NdoDelete(); });
  Ndo_gManager.Undo();
  EXPECT_EQ("60@0+20000000", PrintLongNotes(*listP));
  delete listP;
}
