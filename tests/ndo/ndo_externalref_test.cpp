#include "ndo/ndo_externalref.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "support/undo_testobject.h"

namespace {

typedef UndoTest Ndo_ExternalRefBase_Test;

TEST_F(Ndo_ExternalRefBase_Test, NullYieldsNull) {
  EXPECT_EQ(nullptr, Ndo_ExternalRefBase(nullptr).GetObjPtr());
}

TEST_F(Ndo_ExternalRefBase_Test, YieldsTheObjectWhileItLives) {
  UndoTestObject a;
  Ndo_ExternalRefBase const ref(&a);
  EXPECT_EQ(&a, ref.GetObjPtr());
}

TEST_F(Ndo_ExternalRefBase_Test, YieldsTheObjectWhileItIsKept) {
  UndoTestObject * const a = new UndoTestObject;
  Ndo_ExternalRefBase const ref(a);
  a->NdoDelete();
  EXPECT_EQ(a, ref.GetObjPtr());
}

TEST_F(Ndo_ExternalRefBase_Test, YieldsNullOnceTheObjectIsDropped) {
  UndoTestObject * const a = new UndoTestObject;
  Ndo_ExternalRefBase const ref(a);
  a->NdoDelete();
  Ndo_gManager.DropUnreferenced();
  EXPECT_EQ(nullptr, ref.GetObjPtr());
}

TEST_F(Ndo_ExternalRefBase_Test, WorksForAnObjectThatIsNotUndoable) {
  UndoTestObject * const a = new UndoTestObject(Ndo_Object::kNotUndoable);
  Ndo_ExternalRefBase const ref(a);
  EXPECT_EQ(a, ref.GetObjPtr());
  a->NdoDelete();
  EXPECT_EQ(nullptr, ref.GetObjPtr());
}

TEST_F(Ndo_ExternalRefBase_Test, CopyRefersToTheSameObject) {
  std::unique_ptr<UndoTestObject> a(new UndoTestObject);
  Ndo_ExternalRefBase const ref(a.get());
  Ndo_ExternalRefBase const copy(ref);
  EXPECT_EQ(a.get(), copy.GetObjPtr());
  a.reset();
  EXPECT_EQ(nullptr, ref.GetObjPtr());
  EXPECT_EQ(nullptr, copy.GetObjPtr());
}

TEST_F(Ndo_ExternalRefBase_Test, AssignmentChangesTheObject) {
  std::unique_ptr<UndoTestObject> a(new UndoTestObject), b(new UndoTestObject);
  Ndo_ExternalRefBase ref(a.get());
  Ndo_ExternalRefBase const other(b.get());
  ref = other;
  EXPECT_EQ(b.get(), ref.GetObjPtr());
  a.reset();
  EXPECT_EQ(b.get(), ref.GetObjPtr());
  b.reset();
  EXPECT_EQ(nullptr, ref.GetObjPtr());
}

TEST_F(Ndo_ExternalRefBase_Test, AssignmentToItselfChangesNothing) {
  UndoTestObject a;
  Ndo_ExternalRefBase ref(&a);
  Ndo_ExternalRefBase const & same = ref;
  ref = same;
  EXPECT_EQ(&a, ref.GetObjPtr());
}

// Leaves the list of references from its middle, its head and its end.
TEST_F(Ndo_ExternalRefBase_Test, ReferencesGoInAnyOrder) {
  std::unique_ptr<UndoTestObject> a(new UndoTestObject);
  std::unique_ptr<Ndo_ExternalRefBase> first(new Ndo_ExternalRefBase(a.get()));
  std::unique_ptr<Ndo_ExternalRefBase> second(new Ndo_ExternalRefBase(a.get()));
  std::unique_ptr<Ndo_ExternalRefBase> third(new Ndo_ExternalRefBase(a.get()));
  std::unique_ptr<Ndo_ExternalRefBase> fourth(new Ndo_ExternalRefBase(a.get()));
  second.reset();
  fourth.reset();
  EXPECT_EQ(a.get(), first->GetObjPtr());
  EXPECT_EQ(a.get(), third->GetObjPtr());
  first.reset();
  a.reset();
  EXPECT_EQ(nullptr, third->GetObjPtr());
}

TEST_F(Ndo_ExternalRefBase_Test, ReferencesOfACopiedObjectStayWithTheSource) {
  std::unique_ptr<UndoTestObject> a(new UndoTestObject);
  Ndo_ExternalRefBase const ref(a.get());
  UndoTestObject const copy(*a);
  EXPECT_EQ(a.get(), ref.GetObjPtr());
  a.reset();
  EXPECT_EQ(nullptr, ref.GetObjPtr());
}

}  // namespace
