#include "ndo/ndo_object.h"

#include <gtest/gtest.h>

#include "support/undo_testobject.h"

namespace {

typedef UndoTest Ndo_Object_Test;

TEST_F(Ndo_Object_Test, FlagsHaveTheirNumbers) {
  EXPECT_EQ(0, static_cast<int>(Ndo_Object::kNotUndoable));
  EXPECT_EQ(1, static_cast<int>(Ndo_Object::kUndoable));
  EXPECT_EQ(sizeof(int), sizeof(Ndo_Object::EUndoFlag));
}

TEST_F(Ndo_Object_Test, UndoableOneHasAnIdentifierOfItsOwn) {
  UndoTestObject a, b;
  EXPECT_TRUE(a.NdoIsUndoable());
  EXPECT_NE(-1, a.NdoGetID());
  EXPECT_NE(a.NdoGetID(), b.NdoGetID());
}

TEST_F(Ndo_Object_Test, OtherOneHasNone) {
  UndoTestObject a(Ndo_Object::kNotUndoable);
  EXPECT_FALSE(a.NdoIsUndoable());
  EXPECT_EQ(-1, a.NdoGetID());
}

TEST_F(Ndo_Object_Test, IdentifierIsNotUsedAgain) {
  UndoTestObject * const a = new UndoTestObject;
  long long const id = a->NdoGetID();
  delete a;
  EXPECT_LT(id, UndoTestObject().NdoGetID());
}

TEST_F(Ndo_Object_Test, IsFoundByItsIdentifierWhileItLives) {
  UndoTestObject * const a = new UndoTestObject;
  long long const id = a->NdoGetID();
  EXPECT_EQ(a, Ndo_gManager.LookupObject(id));
  delete a;
  EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(id));
}

TEST_F(Ndo_Object_Test, CopyOfAnUndoableOneHasAnIdentifierOfItsOwn) {
  UndoTestObject a(Ndo_Object::kUndoable, 7);
  UndoTestObject b(a);
  EXPECT_TRUE(b.NdoIsUndoable());
  EXPECT_NE(a.NdoGetID(), b.NdoGetID());
  EXPECT_EQ(&b, Ndo_gManager.LookupObject(b.NdoGetID()));
}

TEST_F(Ndo_Object_Test, CopyOfAnotherOneHasNone) {
  UndoTestObject a(Ndo_Object::kNotUndoable);
  EXPECT_EQ(-1, UndoTestObject(a).NdoGetID());
}

TEST_F(Ndo_Object_Test, AssignmentKeepsTheIdentifier) {
  UndoTestObject a, b, c(Ndo_Object::kNotUndoable);
  long long const id = a.NdoGetID();
  a = b;
  EXPECT_EQ(id, a.NdoGetID());
  a = c;
  EXPECT_EQ(id, a.NdoGetID());
  c = a;
  EXPECT_EQ(-1, c.NdoGetID());
}

TEST_F(Ndo_Object_Test, DeleteDestroysOneThatIsNotUndoableAtOnce) {
  int const numBefore = UndoTestObject::sNumAlive;
  UndoTestObject * const a = new UndoTestObject(Ndo_Object::kNotUndoable);
  EXPECT_EQ(numBefore + 1, UndoTestObject::sNumAlive);
  a->NdoDelete();
  EXPECT_EQ(numBefore, UndoTestObject::sNumAlive);
  EXPECT_EQ(0, UndoTestObject::sNumCleanups);
}

TEST_F(Ndo_Object_Test, DeleteHandsAnUndoableOneToTheManager) {
  UndoTestObject * const a = new UndoTestObject;
  a->NdoDelete();
  EXPECT_TRUE(Ndo_gManager.IsKept(a->NdoGetID()));
  EXPECT_EQ(a, Ndo_gManager.LookupObject(a->NdoGetID()));
}

TEST_F(Ndo_Object_Test, SecondDeleteDoesNothing) {
  UndoTestObject * const a = new UndoTestObject;
  long long const id = a->NdoGetID();
  a->NdoDelete();
  a->NdoDelete();
  EXPECT_TRUE(Ndo_gManager.IsKept(id));
  Ndo_gManager.DropUnreferenced();
  EXPECT_EQ(1, UndoTestObject::sNumCleanups);
  EXPECT_EQ(0, UndoTestObject::sNumAlive);
}

TEST_F(Ndo_Object_Test, AnnouncingOutsideATransactionTakesNoSnapshot) {
  UndoTestObject a;
  a.mThrowsInGetState = true;
  EXPECT_NO_THROW(a.SetValue(1));
  EXPECT_FALSE(Ndo_gManager.HasAnnounced(a.NdoGetID()));
}

TEST_F(Ndo_Object_Test, AnnouncingWithoutAnIdentifierDoesNothing) {
  Ndo_gManager.BeginTransaction();
  UndoTestObject a(Ndo_Object::kNotUndoable);
  a.mThrowsInGetState = true;
  EXPECT_NO_THROW(a.SetValue(1));
  EXPECT_EQ(0, Ndo_gManager.GetNumAnnounced());
  EXPECT_FALSE(Ndo_gManager.EndTransaction());
}

TEST_F(Ndo_Object_Test, FirstAnnouncementInATransactionTakesTheOneSnapshot) {
  UndoTestObject a;
  Ndo_gManager.BeginTransaction();
  a.SetValue(1);
  EXPECT_EQ(1, UndoTestObject::sNumStates);
  a.SetValue(2);
  EXPECT_EQ(1, UndoTestObject::sNumStates);
  EXPECT_EQ(1, Ndo_gManager.GetNumAnnounced());
}

TEST_F(Ndo_Object_Test, FailedSnapshotLeavesTheObjectUnannounced) {
  UndoTestObject a;
  Ndo_gManager.BeginTransaction();
  a.mThrowsInGetState = true;
  EXPECT_THROW(a.SetValue(1), std::runtime_error);
  EXPECT_EQ(0, a.mValue);
  EXPECT_FALSE(Ndo_gManager.HasAnnounced(a.NdoGetID()));
  a.mThrowsInGetState = false;
  a.SetValue(1);
  EXPECT_TRUE(Ndo_gManager.HasAnnounced(a.NdoGetID()));
  EXPECT_TRUE(Ndo_gManager.EndTransaction());
}

TEST_F(Ndo_Object_Test, BaseCleanupIsEmpty) {
  UndoTestObject a;
  a.mValue = 3;
  a.Ndo_Object::NdoCleanup();
  EXPECT_EQ(3, a.mValue);
  EXPECT_EQ(0, UndoTestObject::sNumCleanups);
}

}  // namespace
