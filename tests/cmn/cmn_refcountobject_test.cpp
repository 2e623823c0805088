#include "cmn/cmn_refcountobject.h"

#include <utility>

#include <gtest/gtest.h>

namespace {

class Counted : public Cmn_RefCountObject {
public:
  explicit Counted(int * oNumDestroyed) : mNumDestroyedP(oNumDestroyed) {}
  ~Counted() override { ++*mNumDestroyedP; }
  int GetNumber() const { return 7; }

private:
  int * mNumDestroyedP;
};

struct Helper {
  static void AddReference(Counted const * iP) { iP->AddReference(); }
  static void RemoveReference(Counted const * iP) { iP->RemoveReference(); }
};

typedef Cmn_AliasedRefCountPtr<Counted, Counted *, Helper> CountedPtr;

}  // namespace

TEST(Cmn_RefCountObject, StartsAtZero) {
  int numDestroyed = 0;
  EXPECT_EQ(0, Counted(&numDestroyed).GetRefCount());
}

TEST(Cmn_RefCountObject, LastRemoveDestroys) {
  int numDestroyed = 0;
  Counted const * const objectP = new Counted(&numDestroyed);
  objectP->AddReference();
  objectP->AddReference();
  EXPECT_EQ(2, objectP->GetRefCount());
  objectP->RemoveReference();
  EXPECT_EQ(0, numDestroyed);
  objectP->RemoveReference();
  EXPECT_EQ(1, numDestroyed);
}

TEST(Cmn_RefCountObject, CopyStartsAtZero) {
  int numDestroyed = 0;
  CountedPtr const object(new Counted(&numDestroyed));
  Counted const copy(*object);
  EXPECT_EQ(0, copy.GetRefCount());
  EXPECT_EQ(1, object->GetRefCount());
}

TEST(Cmn_RefCountObject, AssignmentKeepsTheCount) {
  int numDestroyed = 0;
  CountedPtr const object(new Counted(&numDestroyed));
  Counted const other(&numDestroyed);
  *object = other;
  EXPECT_EQ(1, object->GetRefCount());
}

TEST(Cmn_AliasedRefCountPtr, StartsNull) {
  CountedPtr const handle;
  EXPECT_EQ(nullptr, handle.Get());
  EXPECT_FALSE(handle);
}

TEST(Cmn_AliasedRefCountPtr, HoldsNullWithoutCounting) {
  EXPECT_FALSE(CountedPtr(nullptr));
}

TEST(Cmn_AliasedRefCountPtr, CountsWhileItHolds) {
  int numDestroyed = 0;
  {
    CountedPtr const first(new Counted(&numDestroyed));
    CountedPtr const second(first);
    EXPECT_TRUE(first);
    EXPECT_EQ(2, first->GetRefCount());
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_EQ(7, (*second).GetNumber());
  }
  EXPECT_EQ(1, numDestroyed);
}

TEST(Cmn_AliasedRefCountPtr, AssignmentLetsGoOfTheFormer) {
  int numFirst = 0, numSecond = 0;
  CountedPtr handle(new Counted(&numFirst));
  handle = CountedPtr(new Counted(&numSecond));
  EXPECT_EQ(1, numFirst);
  EXPECT_EQ(0, numSecond);
  EXPECT_EQ(1, handle->GetRefCount());
}

TEST(Cmn_AliasedRefCountPtr, AssignmentToItselfKeepsTheObject) {
  int numDestroyed = 0;
  CountedPtr handle(new Counted(&numDestroyed));
  CountedPtr const & same = handle;
  handle = same;
  EXPECT_EQ(1, handle->GetRefCount());
  EXPECT_EQ(0, numDestroyed);
}

TEST(Cmn_AliasedRefCountPtr, MoveTakesTheCountAlong) {
  int numDestroyed = 0;
  CountedPtr first(new Counted(&numDestroyed));
  CountedPtr const second(std::move(first));
  EXPECT_EQ(1, second->GetRefCount());
}
