#include "ndo/ndo_manager.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "ndo/ndo_externalref.h"
#include "support/undo_testobject.h"

namespace {

typedef UndoTest Ndo_Manager_Test;

// Built before every other dynamic initialiser of the program and destroyed after every other
// static object, the manager's own included if it had any.
__attribute__((init_priority(101))) UndoTestObject gFirstStatic(Ndo_Object::kUndoable, 5);

TEST_F(Ndo_Manager_Test, IsUsableBeforeDynamicInitialisers) {
  EXPECT_EQ(&gFirstStatic, Ndo_gManager.LookupObject(gFirstStatic.NdoGetID()));
}

TEST_F(Ndo_Manager_Test, IsNeverDestroyed) {
  EXPECT_TRUE(std::is_trivially_destructible_v<Ndo_Manager>);
}

TEST_F(Ndo_Manager_Test, CannotBeCopied) {
  EXPECT_FALSE(std::is_copy_constructible_v<Ndo_Manager>);
  EXPECT_FALSE(std::is_copy_assignable_v<Ndo_Manager>);
}

// ---- Transactions

TEST_F(Ndo_Manager_Test, StartsWithoutATransaction) {
  EXPECT_FALSE(Ndo_gManager.IsRecording());
  EXPECT_EQ(0, Ndo_gManager.GetNumAnnounced());
}

TEST_F(Ndo_Manager_Test, RecordsBetweenBeginAndEnd) {
  Ndo_gManager.BeginTransaction();
  EXPECT_TRUE(Ndo_gManager.IsRecording());
  Ndo_gManager.EndTransaction();
  EXPECT_FALSE(Ndo_gManager.IsRecording());
}

TEST_F(Ndo_Manager_Test, BeginInsideBeginIsRefused) {
  Ndo_gManager.BeginTransaction();
  EXPECT_THROW(Ndo_gManager.BeginTransaction(), std::logic_error);
  EXPECT_TRUE(Ndo_gManager.IsRecording());
}

TEST_F(Ndo_Manager_Test, EndWithoutBeginIsRefused) {
  EXPECT_THROW(Ndo_gManager.EndTransaction(), std::logic_error);
}

TEST_F(Ndo_Manager_Test, AbortWithoutBeginIsRefused) {
  EXPECT_THROW(Ndo_gManager.AbortTransaction(), std::logic_error);
}

TEST_F(Ndo_Manager_Test, UndoAndRedoInsideATransactionAreRefused) {
  Ndo_gManager.BeginTransaction();
  EXPECT_THROW(Ndo_gManager.Undo(), std::logic_error);
  EXPECT_THROW(Ndo_gManager.Redo(), std::logic_error);
  EXPECT_TRUE(Ndo_gManager.IsRecording());
}

TEST_F(Ndo_Manager_Test, EmptyTransactionMakesNoStep) {
  Ndo_gManager.BeginTransaction();
  EXPECT_FALSE(Ndo_gManager.EndTransaction());
  EXPECT_EQ(0, Ndo_gManager.GetNumUndoSteps());
}

TEST_F(Ndo_Manager_Test, AnnouncementMakesAStep) {
  UndoTestObject a;
  Ndo_gManager.BeginTransaction();
  a.SetValue(1);
  EXPECT_TRUE(Ndo_gManager.EndTransaction());
  EXPECT_EQ(1, Ndo_gManager.GetNumUndoSteps());
}

TEST_F(Ndo_Manager_Test, HandingOverMakesAStep) {
  UndoTestObject * const a = new UndoTestObject;
  Ndo_gManager.BeginTransaction();
  a->NdoDelete();
  EXPECT_TRUE(Ndo_gManager.EndTransaction());
  EXPECT_TRUE(Ndo_gManager.IsKept(a->NdoGetID()));
}

TEST_F(Ndo_Manager_Test, CreationAloneMakesNoStep) {
  Ndo_gManager.BeginTransaction();
  UndoTestObject a;
  EXPECT_FALSE(Ndo_gManager.EndTransaction());
  EXPECT_FALSE(Ndo_gManager.IsKept(a.NdoGetID()));
}

TEST_F(Ndo_Manager_Test, AnnouncementsCountForTheOpenTransactionAlone) {
  UndoTestObject a, b;
  Ndo_gManager.BeginTransaction();
  a.SetValue(1);
  EXPECT_TRUE(Ndo_gManager.HasAnnounced(a.NdoGetID()));
  EXPECT_FALSE(Ndo_gManager.HasAnnounced(b.NdoGetID()));
  EXPECT_EQ(1, Ndo_gManager.GetNumAnnounced());
  Ndo_gManager.EndTransaction();
  EXPECT_FALSE(Ndo_gManager.HasAnnounced(a.NdoGetID()));
  Ndo_gManager.BeginTransaction();
  EXPECT_FALSE(Ndo_gManager.HasAnnounced(a.NdoGetID()));
  EXPECT_EQ(0, Ndo_gManager.GetNumAnnounced());
}

TEST_F(Ndo_Manager_Test, UnknownIdentifiersAreNeitherAnnouncedNorKeptNorFound) {
  Ndo_gManager.BeginTransaction();
  EXPECT_FALSE(Ndo_gManager.HasAnnounced(-1));
  EXPECT_FALSE(Ndo_gManager.IsKept(-1));
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(-1));
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(1LL << 60));
}

// ---- Undo and redo

TEST_F(Ndo_Manager_Test, NothingToDoGivesFalse) {
  EXPECT_FALSE(Ndo_gManager.Undo());
  EXPECT_FALSE(Ndo_gManager.Redo());
}

TEST_F(Ndo_Manager_Test, UndoRestoresTheStateBeforeTheFirstAnnouncement) {
  UndoTestObject a(Ndo_Object::kUndoable, 1);
  Ndo_gManager.BeginTransaction();
  a.SetValue(2);
  a.SetValue(3);
  Ndo_gManager.EndTransaction();
  EXPECT_TRUE(Ndo_gManager.Undo());
  EXPECT_EQ(1, a.mValue);
}

TEST_F(Ndo_Manager_Test, RedoRestoresTheStateAtTheUndo) {
  UndoTestObject a(Ndo_Object::kUndoable, 1);
  Ndo_gManager.BeginTransaction();
  a.SetValue(2);
  Ndo_gManager.EndTransaction();
  Ndo_gManager.Undo();
  EXPECT_TRUE(Ndo_gManager.Redo());
  EXPECT_EQ(2, a.mValue);
  EXPECT_TRUE(Ndo_gManager.Undo());
  EXPECT_EQ(1, a.mValue);
}

TEST_F(Ndo_Manager_Test, StepsAreTakenInTurn) {
  UndoTestObject a;
  for (int i = 1; i <= 3; ++i) {
    Ndo_Transaction transaction;
    a.SetValue(i);
    transaction.End();
  }
  EXPECT_EQ(3, Ndo_gManager.GetNumUndoSteps());
  Ndo_gManager.Undo();
  EXPECT_EQ(2, a.mValue);
  Ndo_gManager.Undo();
  EXPECT_EQ(1, a.mValue);
  EXPECT_EQ(1, Ndo_gManager.GetNumUndoSteps());
  EXPECT_EQ(2, Ndo_gManager.GetNumRedoSteps());
  Ndo_gManager.Redo();
  EXPECT_EQ(2, a.mValue);
}

TEST_F(Ndo_Manager_Test, NewStepDropsTheRedoSteps) {
  UndoTestObject a;
  for (int i = 1; i <= 2; ++i) {
    Ndo_Transaction transaction;
    a.SetValue(i);
    transaction.End();
  }
  Ndo_gManager.Undo();
  Ndo_gManager.BeginTransaction();
  a.SetValue(9);
  EXPECT_EQ(1, Ndo_gManager.GetNumRedoSteps());
  Ndo_gManager.EndTransaction();
  EXPECT_EQ(0, Ndo_gManager.GetNumRedoSteps());
  EXPECT_FALSE(Ndo_gManager.Redo());
}

TEST_F(Ndo_Manager_Test, TransactionWithoutAStepKeepsTheRedoSteps) {
  UndoTestObject a;
  Ndo_gManager.BeginTransaction();
  a.SetValue(1);
  Ndo_gManager.EndTransaction();
  Ndo_gManager.Undo();
  Ndo_gManager.BeginTransaction();
  Ndo_gManager.EndTransaction();
  EXPECT_EQ(1, Ndo_gManager.GetNumRedoSteps());
}

std::vector<int> sRestored;
void NoteRestored(UndoTestObject & iObject) {
  sRestored.push_back(iObject.mValue);
}

TEST_F(Ndo_Manager_Test, UndoRestoresInReverseAndRedoInOrderOfAnnouncement) {
  UndoTestObject a(Ndo_Object::kUndoable, 1), b(Ndo_Object::kUndoable, 2);
  a.mOnRestore = b.mOnRestore = NoteRestored;
  Ndo_gManager.BeginTransaction();
  a.SetValue(10);
  b.SetValue(20);
  Ndo_gManager.EndTransaction();
  sRestored.clear();
  Ndo_gManager.Undo();
  EXPECT_EQ((std::vector<int>{2, 1}), sRestored);
  sRestored.clear();
  Ndo_gManager.Redo();
  EXPECT_EQ((std::vector<int>{10, 20}), sRestored);
}

TEST_F(Ndo_Manager_Test, NamesBelongToTheNextStepEitherWay) {
  UndoTestObject a;
  EXPECT_EQ("", Ndo_gManager.GetUndoName());
  EXPECT_EQ("", Ndo_gManager.GetRedoName());
  Ndo_gManager.BeginTransaction("first");
  a.SetValue(1);
  Ndo_gManager.EndTransaction();
  Ndo_gManager.BeginTransaction("second");
  a.SetValue(2);
  Ndo_gManager.EndTransaction();
  EXPECT_EQ("second", Ndo_gManager.GetUndoName());
  Ndo_gManager.Undo();
  EXPECT_EQ("first", Ndo_gManager.GetUndoName());
  EXPECT_EQ("second", Ndo_gManager.GetRedoName());
}

TEST_F(Ndo_Manager_Test, UndoTakesInWhatChangedOutsideTransactions) {
  UndoTestObject a;
  Ndo_gManager.BeginTransaction();
  a.SetValue(1);
  Ndo_gManager.EndTransaction();
  a.SetValue(5);
  Ndo_gManager.Undo();
  EXPECT_EQ(0, a.mValue);
  Ndo_gManager.Redo();
  EXPECT_EQ(5, a.mValue);
}

TEST_F(Ndo_Manager_Test, UndoPassesOverADeadObject) {
  std::unique_ptr<UndoTestObject> a(new UndoTestObject);
  UndoTestObject b;
  Ndo_gManager.BeginTransaction();
  a->SetValue(1);
  b.SetValue(1);
  Ndo_gManager.EndTransaction();
  a.reset();
  EXPECT_TRUE(Ndo_gManager.Undo());
  EXPECT_EQ(0, b.mValue);
  EXPECT_TRUE(Ndo_gManager.Redo());
  EXPECT_EQ(1, b.mValue);
}

TEST_F(Ndo_Manager_Test, StatesOfADestroyedIdentifierAreDropped) {
  std::unique_ptr<UndoTestObject> a(new UndoTestObject);
  for (int i = 0; i < 3; ++i) {
    Ndo_Transaction transaction;
    a->SetValue(i);
    transaction.End();
  }
  Ndo_gManager.Undo();
  EXPECT_EQ(3, UndoTestObject::sNumStates);
  a.reset();
  EXPECT_EQ(0, UndoTestObject::sNumStates);
}

TEST_F(Ndo_Manager_Test, ObjectDestroyedInsideItsTransactionIsForgotten) {
  std::unique_ptr<UndoTestObject> a(new UndoTestObject);
  long long const id = a->NdoGetID();
  Ndo_gManager.BeginTransaction();
  a->SetValue(1);
  a.reset();
  EXPECT_FALSE(Ndo_gManager.HasAnnounced(id));
  EXPECT_EQ(0, UndoTestObject::sNumStates);
  EXPECT_NO_THROW(Ndo_gManager.AbortTransaction());
}

UndoTestObject * sToDestroyP = 0;
void DestroyOther(UndoTestObject &) {
  delete sToDestroyP;
  sToDestroyP = 0;
}

TEST_F(Ndo_Manager_Test, ObjectDestroyedByTheRestoringOfAnotherIsPassedOver) {
  UndoTestObject a;
  UndoTestObject * const b = new UndoTestObject;
  Ndo_gManager.BeginTransaction();
  b->SetValue(1);
  a.SetValue(1);
  Ndo_gManager.EndTransaction();
  sToDestroyP = b;
  a.mOnRestore = DestroyOther;
  EXPECT_TRUE(Ndo_gManager.Undo());
  EXPECT_EQ(0, a.mValue);
  EXPECT_EQ(1, UndoTestObject::sNumStates);
}

// ---- Handing over and kept objects

TEST_F(Ndo_Manager_Test, UndoRevivesWhatTheStepHandedOver) {
  UndoTestObject * const child = new UndoTestObject(Ndo_Object::kUndoable, 7);
  UndoTestObject owner;
  owner.SetChild(child);
  Ndo_gManager.BeginTransaction();
  owner.SetChild(0);
  Ndo_gManager.EndTransaction();
  EXPECT_TRUE(Ndo_gManager.IsKept(child->NdoGetID()));
  Ndo_gManager.Undo();
  EXPECT_FALSE(Ndo_gManager.IsKept(child->NdoGetID()));
  EXPECT_EQ(child, owner.mChildP.Get());
  Ndo_gManager.Redo();
  EXPECT_TRUE(Ndo_gManager.IsKept(child->NdoGetID()));
  EXPECT_EQ(nullptr, owner.mChildP.Get());
}

TEST_F(Ndo_Manager_Test, UndoKeepsWhatTheStepCreated) {
  UndoTestObject owner;
  Ndo_gManager.BeginTransaction();
  UndoTestObject * const child = new UndoTestObject(Ndo_Object::kUndoable, 7);
  owner.SetChild(child);
  Ndo_gManager.EndTransaction();
  Ndo_gManager.Undo();
  EXPECT_EQ(nullptr, owner.mChildP.Get());
  EXPECT_TRUE(Ndo_gManager.IsKept(child->NdoGetID()));
  Ndo_gManager.DropUnreferenced();
  Ndo_gManager.Redo();
  EXPECT_EQ(child, owner.mChildP.Get());
  EXPECT_FALSE(Ndo_gManager.IsKept(child->NdoGetID()));
  EXPECT_EQ(7, child->mValue);
}

TEST_F(Ndo_Manager_Test, CreationOfAnUndoneStepGoesWithTheRedoSteps) {
  UndoTestObject owner;
  Ndo_gManager.BeginTransaction();
  UndoTestObject * const child = new UndoTestObject;
  long long const id = child->NdoGetID();
  owner.SetChild(child);
  Ndo_gManager.EndTransaction();
  Ndo_gManager.Undo();
  Ndo_gManager.BeginTransaction();
  owner.SetValue(1);
  EXPECT_TRUE(Ndo_gManager.IsKept(id));
  Ndo_gManager.EndTransaction();
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(id));
  EXPECT_EQ(1, UndoTestObject::sNumCleanups);
}

TEST_F(Ndo_Manager_Test, CreatedAndHandedOverInOneStepIsKeptUntilTheStepGoes) {
  Ndo_gManager.BeginTransaction();
  UndoTestObject * const a = new UndoTestObject;
  long long const id = a->NdoGetID();
  a->NdoDelete();
  EXPECT_TRUE(Ndo_gManager.EndTransaction());
  EXPECT_TRUE(Ndo_gManager.IsKept(id));
  Ndo_gManager.DropUnreferenced();
  EXPECT_TRUE(Ndo_gManager.IsKept(id));
  Ndo_gManager.Undo();
  EXPECT_TRUE(Ndo_gManager.IsKept(id));
  Ndo_gManager.Redo();
  EXPECT_TRUE(Ndo_gManager.IsKept(id));
  Ndo_gManager.ClearHistory();
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(id));
}

TEST_F(Ndo_Manager_Test, HandedOverOutsideIsDroppedAtTheNextEnd) {
  UndoTestObject * const a = new UndoTestObject;
  long long const id = a->NdoGetID();
  a->NdoDelete();
  Ndo_gManager.BeginTransaction();
  EXPECT_EQ(a, Ndo_gManager.LookupObject(id));
  EXPECT_FALSE(Ndo_gManager.EndTransaction());
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(id));
}

TEST_F(Ndo_Manager_Test, HandedOverOutsideIsDroppedByClearHistory) {
  UndoTestObject * const a = new UndoTestObject;
  long long const id = a->NdoGetID();
  a->NdoDelete();
  Ndo_gManager.ClearHistory();
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(id));
}

TEST_F(Ndo_Manager_Test, HandedOverOutsideIsDroppedByDropUnreferenced) {
  UndoTestObject * const a = new UndoTestObject;
  long long const id = a->NdoGetID();
  a->NdoDelete();
  Ndo_gManager.DropUnreferenced();
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(id));
  EXPECT_EQ(1, UndoTestObject::sNumCleanups);
}

TEST_F(Ndo_Manager_Test, HandedOverInAStepSurvivesDropUnreferenced) {
  UndoTestObject * const a = new UndoTestObject;
  Ndo_gManager.BeginTransaction();
  a->NdoDelete();
  Ndo_gManager.DropUnreferenced();
  EXPECT_TRUE(Ndo_gManager.IsKept(a->NdoGetID()));
  Ndo_gManager.EndTransaction();
  Ndo_gManager.DropUnreferenced();
  EXPECT_TRUE(Ndo_gManager.IsKept(a->NdoGetID()));
}

TEST_F(Ndo_Manager_Test, ClearHistoryDropsStepsAndWhatTheyKeep) {
  UndoTestObject owner;
  owner.SetChild(new UndoTestObject);
  long long const id = owner.mChildP.mCachedID;
  Ndo_gManager.BeginTransaction();
  owner.SetChild(0);
  Ndo_gManager.EndTransaction();
  Ndo_gManager.ClearHistory();
  EXPECT_EQ(0, Ndo_gManager.GetNumUndoSteps());
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(id));
  EXPECT_EQ(0, UndoTestObject::sNumStates);
}

TEST_F(Ndo_Manager_Test, ClearHistoryInsideATransactionKeepsWhatThatHandedOver) {
  UndoTestObject owner;
  Ndo_gManager.BeginTransaction();
  UndoTestObject * const child = new UndoTestObject;
  owner.SetChild(child);
  Ndo_gManager.EndTransaction();
  Ndo_gManager.BeginTransaction();
  owner.SetChild(0);
  Ndo_gManager.ClearHistory();
  EXPECT_TRUE(Ndo_gManager.IsKept(child->NdoGetID()));
  EXPECT_TRUE(Ndo_gManager.EndTransaction());
  Ndo_gManager.Undo();
  EXPECT_EQ(child, owner.mChildP.Get());
}

TEST_F(Ndo_Manager_Test, DroppedOwnerTakesItsChildAlong) {
  int const numBefore = UndoTestObject::sNumAlive;
  UndoTestObject * const owner = new UndoTestObject;
  owner->SetChild(new UndoTestObject);
  owner->NdoDelete();
  EXPECT_FALSE(Ndo_gManager.IsKept(owner->mChildP.mCachedID));
  Ndo_gManager.DropUnreferenced();
  EXPECT_EQ(numBefore, UndoTestObject::sNumAlive);
  EXPECT_EQ(2, UndoTestObject::sNumCleanups);
}

TEST_F(Ndo_Manager_Test, OwnerDroppedInsideATransactionAddsNothingToTheStep) {
  UndoTestObject * const owner = new UndoTestObject;
  owner->SetChild(new UndoTestObject);
  owner->NdoDelete();
  Ndo_gManager.BeginTransaction();
  Ndo_gManager.DropUnreferenced();
  EXPECT_FALSE(Ndo_gManager.EndTransaction());
}

TEST_F(Ndo_Manager_Test, ChildCreatedBeforeItsOwnerMayBeDroppedBeforeIt) {
  int const numBefore = UndoTestObject::sNumAlive;
  UndoTestObject other;
  Ndo_gManager.BeginTransaction();
  UndoTestObject * const child = new UndoTestObject;
  UndoTestObject * const owner = new UndoTestObject;
  owner->SetChild(child);
  other.SetValue(1);
  Ndo_gManager.EndTransaction();
  Ndo_gManager.Undo();
  owner->mChildP = Ndo_Ptr<UndoTestObject>(child);
  Ndo_gManager.ClearHistory();
  EXPECT_EQ(numBefore + 1, UndoTestObject::sNumAlive);
}

TEST_F(Ndo_Manager_Test, OwnedObjectStaysWithItsOwnerWhenItsCreationIsUndone) {
  UndoTestObject other;
  Ndo_gManager.BeginTransaction();
  UndoTestObject owned;
  owned.MarkOwned();
  other.SetValue(1);
  Ndo_gManager.EndTransaction();
  Ndo_gManager.Undo();
  EXPECT_FALSE(Ndo_gManager.IsKept(owned.NdoGetID()));
  Ndo_gManager.ClearHistory();
  EXPECT_EQ(&owned, Ndo_gManager.LookupObject(owned.NdoGetID()));
}

TEST_F(Ndo_Manager_Test, RevivedObjectCanBeHandedOverAgain) {
  UndoTestObject owner;
  UndoTestObject * const child = new UndoTestObject;
  owner.SetChild(child);
  for (int i = 0; i < 3; ++i) {
    Ndo_gManager.BeginTransaction();
    owner.SetChild(0);
    EXPECT_TRUE(Ndo_gManager.EndTransaction());
    Ndo_gManager.Undo();
    EXPECT_EQ(child, owner.mChildP.Get());
  }
}

// ---- Abort

TEST_F(Ndo_Manager_Test, AbortRestoresAndMakesNoStep) {
  UndoTestObject a(Ndo_Object::kUndoable, 1);
  Ndo_gManager.BeginTransaction();
  a.SetValue(2);
  Ndo_gManager.AbortTransaction();
  EXPECT_EQ(1, a.mValue);
  EXPECT_FALSE(Ndo_gManager.IsRecording());
  EXPECT_EQ(0, Ndo_gManager.GetNumUndoSteps());
  EXPECT_EQ(0, UndoTestObject::sNumStates);
}

TEST_F(Ndo_Manager_Test, AbortKeepsTheRedoSteps) {
  UndoTestObject a;
  Ndo_gManager.BeginTransaction();
  a.SetValue(1);
  Ndo_gManager.EndTransaction();
  Ndo_gManager.Undo();
  Ndo_gManager.BeginTransaction();
  a.SetValue(2);
  Ndo_gManager.AbortTransaction();
  EXPECT_TRUE(Ndo_gManager.Redo());
  EXPECT_EQ(1, a.mValue);
}

TEST_F(Ndo_Manager_Test, AbortRevivesWhatWasHandedOver) {
  UndoTestObject owner;
  UndoTestObject * const child = new UndoTestObject;
  owner.SetChild(child);
  Ndo_gManager.BeginTransaction();
  owner.SetChild(0);
  Ndo_gManager.AbortTransaction();
  EXPECT_FALSE(Ndo_gManager.IsKept(child->NdoGetID()));
  EXPECT_EQ(child, owner.mChildP.Get());
}

// Handed over by a step that was undone, and again by the transaction that was aborted.
TEST_F(Ndo_Manager_Test, AbortLeavesTheHandOversOfTheRedoSteps) {
  UndoTestObject owner;
  UndoTestObject * const child = new UndoTestObject;
  long long const id = child->NdoGetID();
  owner.SetChild(child);
  Ndo_gManager.BeginTransaction();
  owner.SetChild(0);
  Ndo_gManager.EndTransaction();
  Ndo_gManager.Undo();
  Ndo_gManager.BeginTransaction();
  owner.SetChild(0);
  Ndo_gManager.AbortTransaction();
  EXPECT_TRUE(Ndo_gManager.Redo());
  EXPECT_TRUE(Ndo_gManager.IsKept(id));
  Ndo_gManager.ClearHistory();
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(id));
}

TEST_F(Ndo_Manager_Test, ObjectCreatedInAnAbortedTransactionLivesOn) {
  Ndo_gManager.BeginTransaction();
  std::unique_ptr<UndoTestObject> a(new UndoTestObject);
  a->SetValue(4);
  Ndo_gManager.AbortTransaction();
  EXPECT_FALSE(Ndo_gManager.IsKept(a->NdoGetID()));
  Ndo_gManager.ClearHistory();
  EXPECT_EQ(a.get(), Ndo_gManager.LookupObject(a->NdoGetID()));
}

TEST_F(Ndo_Manager_Test, AbortRestoresTheOthersBeforeItTellsAFailure) {
  UndoTestObject a, b;
  Ndo_gManager.BeginTransaction();
  a.SetValue(1);
  b.SetValue(1);
  UndoTestObject::sNumRestoresLeft = 0;
  EXPECT_THROW(Ndo_gManager.AbortTransaction(), std::runtime_error);
  EXPECT_EQ(0, a.mValue);
  EXPECT_EQ(1, b.mValue);
  EXPECT_FALSE(Ndo_gManager.IsRecording());
  EXPECT_EQ(0, UndoTestObject::sNumStates);
}

// ---- Failures on the way

TEST_F(Ndo_Manager_Test, FailedRedoSnapshotLeavesTheStepAlone) {
  UndoTestObject a, b;
  Ndo_gManager.BeginTransaction();
  a.SetValue(1);
  b.SetValue(1);
  Ndo_gManager.EndTransaction();
  a.mThrowsInGetState = true;
  EXPECT_THROW(Ndo_gManager.Undo(), std::runtime_error);
  EXPECT_EQ(1, a.mValue);
  EXPECT_EQ(1, b.mValue);
  EXPECT_EQ(1, Ndo_gManager.GetNumUndoSteps());
  EXPECT_EQ(2, UndoTestObject::sNumStates);
}

TEST_F(Ndo_Manager_Test, FailedRestoringPutsTheOthersBack) {
  UndoTestObject a, b;
  b.SetChild(new UndoTestObject);
  Ndo_gManager.BeginTransaction();
  a.SetValue(1);
  b.SetValue(1);
  b.SetChild(0);
  Ndo_gManager.EndTransaction();
  UndoTestObject::sNumRestoresLeft = 1;
  EXPECT_THROW(Ndo_gManager.Undo(), std::runtime_error);
  EXPECT_EQ(1, a.mValue);
  EXPECT_EQ(1, b.mValue);
  EXPECT_EQ(nullptr, b.mChildP.Get());
  EXPECT_EQ(1, Ndo_gManager.GetNumUndoSteps());
  EXPECT_EQ(2, UndoTestObject::sNumStates);
  EXPECT_TRUE(Ndo_gManager.Undo());
  EXPECT_EQ(0, a.mValue);
  EXPECT_FALSE(Ndo_gManager.IsKept(b.mChildP.mCachedID));
}

// ---- Re-creation

TEST_F(Ndo_Manager_Test, ReCreateBringsAnObjectBackUnderItsIdentifier) {
  UndoTestObject * a = new UndoTestObject(Ndo_Object::kUndoable, 7);
  long long const id = a->NdoGetID();
  std::unique_ptr<Ndo_State> const state(a->NdoGetState());
  delete a;
  std::unique_ptr<Ndo_Object> const again(Ndo_gManager.ReCreate(state.get(), id));
  ASSERT_NE(nullptr, again);
  EXPECT_EQ(id, again->NdoGetID());
  EXPECT_EQ(again.get(), Ndo_gManager.LookupObject(id));
  EXPECT_EQ(7, dynamic_cast<UndoTestObject &>(*again).mValue);
}

TEST_F(Ndo_Manager_Test, ReCreatedObjectIsUndoable) {
  UndoTestObject * a = new UndoTestObject(Ndo_Object::kUndoable, 7);
  long long const id = a->NdoGetID();
  std::unique_ptr<Ndo_State> const state(a->NdoGetState());
  delete a;
  std::unique_ptr<UndoTestObject> const again(
      dynamic_cast<UndoTestObject *>(Ndo_gManager.ReCreate(state.get(), id)));
  Ndo_gManager.BeginTransaction();
  again->SetValue(8);
  EXPECT_TRUE(Ndo_gManager.EndTransaction());
  Ndo_gManager.Undo();
  EXPECT_EQ(7, again->mValue);
}

TEST_F(Ndo_Manager_Test, ReCreateRevivesTheKeptObjectsThatTheStateNames) {
  UndoTestObject * owner = new UndoTestObject;
  UndoTestObject * const child = new UndoTestObject;
  owner->SetChild(child);
  long long const id = owner->NdoGetID();
  std::unique_ptr<Ndo_State> const state(owner->NdoGetState());
  delete owner;
  ASSERT_TRUE(Ndo_gManager.IsKept(child->NdoGetID()));
  std::unique_ptr<UndoTestObject> const again(
      dynamic_cast<UndoTestObject *>(Ndo_gManager.ReCreate(state.get(), id)));
  EXPECT_EQ(child, again->mChildP.Get());
  EXPECT_FALSE(Ndo_gManager.IsKept(child->NdoGetID()));
}

TEST_F(Ndo_Manager_Test, ReCreateTakesARevivedObjectOutOfTheStepThatHandedItOver) {
  UndoTestObject * const owner = new UndoTestObject;
  UndoTestObject * const child = new UndoTestObject;
  owner->SetChild(child);
  long long const id = owner->NdoGetID();
  std::unique_ptr<Ndo_State> const state(owner->NdoGetState());
  Ndo_gManager.BeginTransaction();
  delete owner;  // hands the child over
  std::unique_ptr<UndoTestObject> const again(
      dynamic_cast<UndoTestObject *>(Ndo_gManager.ReCreate(state.get(), id)));
  EXPECT_FALSE(Ndo_gManager.EndTransaction());
  EXPECT_FALSE(Ndo_gManager.IsKept(child->NdoGetID()));
}

TEST_F(Ndo_Manager_Test, RevivedAndHandedOverAgainOutlivesTheRedoStepsThatCreatedIt) {
  UndoTestObject owner;
  Ndo_gManager.BeginTransaction();
  UndoTestObject * const child = new UndoTestObject;
  owner.SetChild(child);
  Ndo_gManager.EndTransaction();
  std::unique_ptr<Ndo_State> const state(owner.NdoGetState());
  Ndo_gManager.Undo();
  Ndo_gManager.BeginTransaction();
  std::unique_ptr<UndoTestObject> const other(
      dynamic_cast<UndoTestObject *>(Ndo_gManager.ReCreate(state.get(), 1000000)));
  Ndo_HandOver(other->mChildP);
  EXPECT_TRUE(Ndo_gManager.EndTransaction());
  EXPECT_EQ(0, UndoTestObject::sNumCleanups);
  Ndo_gManager.Undo();
  EXPECT_EQ(child, Ndo_gManager.LookupObject(child->NdoGetID()));
  EXPECT_FALSE(Ndo_gManager.IsKept(child->NdoGetID()));
  delete child;
}

TEST_F(Ndo_Manager_Test, ReCreateReplacesAKeptObject) {
  UndoTestObject * const owner = new UndoTestObject;
  UndoTestObject * const child = new UndoTestObject;
  owner->SetChild(child);
  long long const id = owner->NdoGetID();
  std::unique_ptr<Ndo_State> const state(owner->NdoGetState());
  owner->NdoDelete();
  std::unique_ptr<UndoTestObject> const again(
      dynamic_cast<UndoTestObject *>(Ndo_gManager.ReCreate(state.get(), id)));
  EXPECT_EQ(1, UndoTestObject::sNumCleanups);
  EXPECT_FALSE(Ndo_gManager.IsKept(id));
  EXPECT_EQ(again.get(), Ndo_gManager.LookupObject(id));
  EXPECT_EQ(child, again->mChildP.Get());
}

TEST_F(Ndo_Manager_Test, ReCreateRefusesAnIdentifierInUse) {
  UndoTestObject a;
  std::unique_ptr<Ndo_State> const state(a.NdoGetState());
  EXPECT_THROW(Ndo_gManager.ReCreate(state.get(), a.NdoGetID()), std::logic_error);
  EXPECT_EQ(&a, Ndo_gManager.LookupObject(a.NdoGetID()));
}

TEST_F(Ndo_Manager_Test, ReCreateWithoutAStateGivesNull) {
  EXPECT_EQ(nullptr, Ndo_gManager.ReCreate(0, 1LL << 40));
}

TEST_F(Ndo_Manager_Test, FailedReCreationLeavesNothingBehind) {
  int const numBefore = UndoTestObject::sNumAlive;
  UndoTestObject * a = new UndoTestObject;
  long long const id = a->NdoGetID();
  std::unique_ptr<Ndo_State> const state(a->NdoGetState());
  delete a;
  UndoTestObject::sNumRestoresLeft = 0;
  EXPECT_THROW(Ndo_gManager.ReCreate(state.get(), id), std::runtime_error);
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(id));
  EXPECT_EQ(numBefore, UndoTestObject::sNumAlive);
}

TEST_F(Ndo_Manager_Test, NewIdentifiersLieAboveReCreatedOnes) {
  UndoTestObject a;
  std::unique_ptr<Ndo_State> const state(a.NdoGetState());
  long long const id = a.NdoGetID() + 1000;
  std::unique_ptr<Ndo_Object> const again(Ndo_gManager.ReCreate(state.get(), id));
  EXPECT_LT(id, UndoTestObject().NdoGetID());
}

// ---- The scope

TEST_F(Ndo_Manager_Test, ScopeAbortsUnlessEnded) {
  UndoTestObject a;
  {
    Ndo_Transaction transaction("lost");
    a.SetValue(1);
  }
  EXPECT_EQ(0, a.mValue);
  EXPECT_EQ(0, Ndo_gManager.GetNumUndoSteps());
}

TEST_F(Ndo_Manager_Test, EndedScopeLeavesItsStep) {
  UndoTestObject a;
  {
    Ndo_Transaction transaction("kept");
    a.SetValue(1);
    EXPECT_TRUE(transaction.End());
  }
  EXPECT_EQ(1, a.mValue);
  EXPECT_EQ("kept", Ndo_gManager.GetUndoName());
}

TEST_F(Ndo_Manager_Test, ScopeGivesWhetherAStepWasRecorded) {
  Ndo_Transaction transaction;
  EXPECT_FALSE(transaction.End());
}

TEST_F(Ndo_Manager_Test, ScopeSwallowsAFailedAbort) {
  UndoTestObject a;
  {
    Ndo_Transaction transaction;
    a.SetValue(1);
    UndoTestObject::sNumRestoresLeft = 0;
  }
  EXPECT_FALSE(Ndo_gManager.IsRecording());
}

}  // namespace
