#include "ndo/ndo_stateref.h"

#include <gtest/gtest.h>

#include "support/undo_testobject.h"

namespace {

typedef UndoTest Ndo_StateRef_Test;

char const * const kUnnamed = "! (iObjP.mCachedID == -1 && iObjP.mPtr != 0)";

struct OtherObject : Ndo_Object {
  OtherObject() : Ndo_Object(kUndoable) {}
  Ndo_State * NdoGetState() override { return 0; }
  void NdoRestoreState(Ndo_State *) override {}
};

TEST_F(Ndo_StateRef_Test, StartsEmpty) {
  Ndo_StateRef<UndoTestObject> const ref;
  EXPECT_EQ(-1, ref.GetID());
  EXPECT_EQ(nullptr, ref.Resolve().Get());
  EXPECT_EQ(-1, ref.Resolve().mCachedID);
}

TEST_F(Ndo_StateRef_Test, NamesAnObjectByItsIdentifier) {
  UndoTestObject a;
  Ndo_StateRef<UndoTestObject> const ref{Ndo_Ptr<UndoTestObject>(&a)};
  EXPECT_EQ(a.NdoGetID(), ref.GetID());
  EXPECT_EQ(&a, ref.Resolve().Get());
  EXPECT_EQ(a.NdoGetID(), ref.Resolve().mCachedID);
}

TEST_F(Ndo_StateRef_Test, EmptyPointerGivesMinusOne) {
  Cmn_AssertRecorder recorder;
  EXPECT_EQ(-1, Ndo_StateRef<UndoTestObject>(Ndo_Ptr<UndoTestObject>()).GetID());
  EXPECT_EQ(0, recorder.GetNum());
}

TEST_F(Ndo_StateRef_Test, PointerWithoutIdentifierThrows) {
  UndoTestObject a(Ndo_Object::kNotUndoable);
  Ndo_Ptr<UndoTestObject> const p(&a);
  Cmn_AssertRecorder recorder;
  EXPECT_THROW(Ndo_StateRef<UndoTestObject>{p}, Cmn_AssertException);
  ASSERT_EQ(1, recorder.GetNum(kUnnamed));
  EXPECT_FALSE(recorder.GetEntries()[0].mFlag);
  EXPECT_TRUE(recorder.GetEntries()[0].mThrowing);
}

TEST_F(Ndo_StateRef_Test, PointerWithoutIdentifierStoresMinusOneWithThrowingOff) {
  UndoTestObject a(Ndo_Object::kNotUndoable);
  Cmn_AssertRecorder recorder;
  bool const former = Cmn_Assert::SetThrowing(false);
  Ndo_StateRef<UndoTestObject> const ref{Ndo_Ptr<UndoTestObject>(&a)};
  Cmn_Assert::SetThrowing(former);
  EXPECT_EQ(1, recorder.GetNum(kUnnamed));
  EXPECT_EQ(-1, ref.GetID());
}

TEST_F(Ndo_StateRef_Test, ResolvesAKeptObject) {
  UndoTestObject * const a = new UndoTestObject;
  Ndo_StateRef<UndoTestObject> const ref(a->NdoGetID());
  a->NdoDelete();
  EXPECT_EQ(a, ref.Resolve().Get());
  EXPECT_TRUE(Ndo_gManager.IsKept(a->NdoGetID()));
}

TEST_F(Ndo_StateRef_Test, DestroyedObjectResolvesToNull) {
  UndoTestObject * const a = new UndoTestObject;
  Ndo_StateRef<UndoTestObject> const ref(a->NdoGetID());
  delete a;
  EXPECT_EQ(nullptr, ref.Resolve().Get());
  EXPECT_EQ(-1, ref.Resolve().mCachedID);
}

TEST_F(Ndo_StateRef_Test, ObjectOfAnotherClassResolvesToNull) {
  OtherObject other;
  Ndo_StateRef<UndoTestObject> const ref(other.NdoGetID());
  EXPECT_EQ(nullptr, ref.Resolve().Get());
  EXPECT_EQ(-1, ref.Resolve().mCachedID);
}

}  // namespace
