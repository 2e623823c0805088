#include "ndo/ndo_ptr.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "support/undo_testobject.h"

namespace {

typedef UndoTest Ndo_Ptr_Test;
typedef UndoTest Ndo_AutoPtr_Test;
typedef UndoTest Ndo_HandOver_Test;

TEST_F(Ndo_Ptr_Test, StartsEmpty) {
  Ndo_Ptr<UndoTestObject> const p;
  EXPECT_EQ(nullptr, p.Get());
  EXPECT_FALSE(p);
  EXPECT_EQ(nullptr, p.mPtr);
  EXPECT_EQ(-1, p.mCachedID);
}

TEST_F(Ndo_Ptr_Test, HoldsObjectAndIdentifier) {
  UndoTestObject a(Ndo_Object::kUndoable, 3);
  Ndo_Ptr<UndoTestObject> const p(&a);
  EXPECT_EQ(&a, p.Get());
  EXPECT_TRUE(p);
  EXPECT_EQ(3, p->mValue);
  EXPECT_EQ(a.NdoGetID(), p.mCachedID);
}

TEST_F(Ndo_Ptr_Test, NullHasNoIdentifier) {
  EXPECT_EQ(-1, Ndo_Ptr<UndoTestObject>(nullptr).mCachedID);
}

TEST_F(Ndo_Ptr_Test, ObjectThatIsNotUndoableHasNoIdentifier) {
  UndoTestObject a(Ndo_Object::kNotUndoable);
  Ndo_Ptr<UndoTestObject> const p(&a);
  EXPECT_EQ(&a, p.Get());
  EXPECT_EQ(-1, p.mCachedID);
}

TEST_F(Ndo_Ptr_Test, OwnsNothing) {
  UndoTestObject a;
  { Ndo_Ptr<UndoTestObject> const p(&a); }
  EXPECT_FALSE(Ndo_gManager.IsKept(a.NdoGetID()));
}

TEST_F(Ndo_Ptr_Test, IdentifierOutlivesTheObject) {
  UndoTestObject * const a = new UndoTestObject;
  long long const id = a->NdoGetID();
  Ndo_Ptr<UndoTestObject> const p(a);
  delete a;
  EXPECT_EQ(id, p.mCachedID);
}

TEST_F(Ndo_HandOver_Test, HandsOverAndEmpties) {
  UndoTestObject * const a = new UndoTestObject;
  Ndo_Ptr<UndoTestObject> p(a);
  Ndo_HandOver(p);
  EXPECT_EQ(nullptr, p.Get());
  EXPECT_EQ(-1, p.mCachedID);
  EXPECT_TRUE(Ndo_gManager.IsKept(a->NdoGetID()));
}

TEST_F(Ndo_HandOver_Test, DestroysWhatIsNotUndoable) {
  int const numBefore = UndoTestObject::sNumAlive;
  Ndo_Ptr<UndoTestObject> p(new UndoTestObject(Ndo_Object::kNotUndoable));
  Ndo_HandOver(p);
  EXPECT_EQ(numBefore, UndoTestObject::sNumAlive);
}

TEST_F(Ndo_HandOver_Test, PassesOverWhatIsGone) {
  UndoTestObject * const a = new UndoTestObject;
  Ndo_Ptr<UndoTestObject> p(a);
  delete a;
  Ndo_HandOver(p);
  EXPECT_EQ(nullptr, p.Get());
}

TEST_F(Ndo_HandOver_Test, EmptyPointerIsLeftAlone) {
  Ndo_Ptr<UndoTestObject> p;
  Ndo_HandOver(p);
  EXPECT_EQ(nullptr, p.Get());
}

TEST_F(Ndo_AutoPtr_Test, IsMoveOnly) {
  EXPECT_FALSE(std::is_copy_constructible_v<Ndo_AutoPtr<UndoTestObject>>);
  EXPECT_FALSE(std::is_copy_assignable_v<Ndo_AutoPtr<UndoTestObject>>);
  EXPECT_TRUE(std::is_move_constructible_v<Ndo_AutoPtr<UndoTestObject>>);
  EXPECT_TRUE(std::is_move_assignable_v<Ndo_AutoPtr<UndoTestObject>>);
}

TEST_F(Ndo_AutoPtr_Test, StartsEmpty) {
  EXPECT_EQ(nullptr, Ndo_AutoPtr<UndoTestObject>().Get());
}

TEST_F(Ndo_AutoPtr_Test, HandsOverWhatItStillHolds) {
  UndoTestObject * const a = new UndoTestObject;
  { Ndo_AutoPtr<UndoTestObject> const p(a); }
  EXPECT_TRUE(Ndo_gManager.IsKept(a->NdoGetID()));
}

TEST_F(Ndo_AutoPtr_Test, DestroysWhatIsNotUndoable) {
  int const numBefore = UndoTestObject::sNumAlive;
  { Ndo_AutoPtr<UndoTestObject> const p(new UndoTestObject(Ndo_Object::kNotUndoable)); }
  EXPECT_EQ(numBefore, UndoTestObject::sNumAlive);
}

TEST_F(Ndo_AutoPtr_Test, ReleaseGivesTheObjectUp) {
  UndoTestObject a;
  {
    Ndo_AutoPtr<UndoTestObject> p(&a);
    EXPECT_EQ(&a, p.Release());
    EXPECT_EQ(nullptr, p.Get());
  }
  EXPECT_FALSE(Ndo_gManager.IsKept(a.NdoGetID()));
}

TEST_F(Ndo_AutoPtr_Test, MovingEmptiesTheSource) {
  UndoTestObject a;
  Ndo_AutoPtr<UndoTestObject> p(&a);
  Ndo_AutoPtr<UndoTestObject> q(std::move(p));
  EXPECT_EQ(nullptr, p.Get());
  EXPECT_EQ(&a, q.Get());
  q.Release();
}

TEST_F(Ndo_AutoPtr_Test, MovesFromADerivedClass) {
  struct Derived : UndoTestObject {};
  Derived a;
  Ndo_AutoPtr<Derived> p(&a);
  Ndo_AutoPtr<UndoTestObject> q(std::move(p));
  EXPECT_EQ(nullptr, p.Get());
  EXPECT_EQ(&a, q.Release());
}

TEST_F(Ndo_AutoPtr_Test, AssignmentHandsOverTheFormerObject) {
  UndoTestObject * const a = new UndoTestObject;
  UndoTestObject b;
  Ndo_AutoPtr<UndoTestObject> p(a), q(&b);
  p = std::move(q);
  EXPECT_TRUE(Ndo_gManager.IsKept(a->NdoGetID()));
  EXPECT_EQ(&b, p.Release());
}

TEST_F(Ndo_AutoPtr_Test, ReachesTheObject) {
  UndoTestObject a(Ndo_Object::kUndoable, 3);
  Ndo_AutoPtr<UndoTestObject> p(&a);
  EXPECT_EQ(3, p->mValue);
  p.Release();
}

}  // namespace
