#include "foundation/sys_atomic.h"

#include <thread>
#include <vector>

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <gtest/gtest.h>

#include "support/realtime_scope.h"

namespace {

class Counted : public Sys_ThreadSafeRefCountObject {
public:
  explicit Counted(int * oNumDestroyed) : mNumDestroyedP(oNumDestroyed) {}
  ~Counted() override { ++*mNumDestroyedP; }

private:
  int * mNumDestroyedP;
};

// Hands itself out while it is being destroyed.
class Clinging : public Sys_ThreadSafeRefCountObject {
public:
  explicit Clinging(int * oNumDestroyed) : mNumDestroyedP(oNumDestroyed) {}
  ~Clinging() override {
    ++*mNumDestroyedP;
    boost::intrusive_ptr<Clinging> const self(this);
  }

private:
  int * mNumDestroyedP;
};

// Keeps itself when the last handle goes.
class Kept : public Sys_ThreadSafeRefCountObject {
public:
  mutable int mNumReleased = 0;

protected:
  void RefCountDelete() const override { ++mNumReleased; }
};

}  // namespace

TEST(Sys_AtomicInt32, StartsAtZeroUnlessTold) {
  EXPECT_EQ(0, Sys_AtomicInt32().Get());
  EXPECT_EQ(5, Sys_AtomicInt32(5).Get());
}

TEST(Sys_AtomicInt32, IncrementGivesTheNewValue) {
  Sys_AtomicInt32 number(1);
  EXPECT_EQ(2, number.Increment());
  EXPECT_EQ(3, number.Increment());
}

TEST(Sys_AtomicInt32, DecrementGivesTheNewValue) {
  Sys_AtomicInt32 number(1);
  EXPECT_EQ(0, number.Decrement());
  EXPECT_EQ(-1, number.Decrement());
}

TEST(Sys_AtomicInt32, LosesNothingBetweenThreads) {
  Sys_AtomicInt32 number;
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&] {
        for (int step = 0; step < 10000; ++step)
          number.Increment();
        for (int step = 0; step < 4000; ++step)
          number.Decrement();
      });
    }
  }
  EXPECT_EQ(24000, number.Get());
}

TEST(Sys_ThreadSafeRefCountObject, StartsAtZero) {
  int numDestroyed = 0;
  Counted const object(&numDestroyed);
  EXPECT_EQ(0, object.GetRefCount());
}

TEST(Sys_ThreadSafeRefCountObject, LastReleaseDestroys) {
  int numDestroyed = 0;
  Counted * const objectP = new Counted(&numDestroyed);
  objectP->AddReference();
  objectP->AddReference();
  objectP->RemoveReference();
  EXPECT_EQ(1, objectP->GetRefCount());
  EXPECT_EQ(0, numDestroyed);
  objectP->RemoveReference();
  EXPECT_EQ(1, numDestroyed);
}

TEST(Sys_ThreadSafeRefCountObject, HandlesCount) {
  int numDestroyed = 0;
  {
    boost::intrusive_ptr<Counted> const first(new Counted(&numDestroyed));
    boost::intrusive_ptr<Sys_ThreadSafeRefCountObject const> const second(first);
    EXPECT_EQ(2, first->GetRefCount());
    EXPECT_EQ(0, numDestroyed);
  }
  EXPECT_EQ(1, numDestroyed);
}

TEST(Sys_ThreadSafeRefCountObject, CopyStartsAtZero) {
  int numDestroyed = 0;
  boost::intrusive_ptr<Counted> const object(new Counted(&numDestroyed));
  Counted const copy(*object);
  EXPECT_EQ(0, copy.GetRefCount());
  EXPECT_EQ(1, object->GetRefCount());
}

TEST(Sys_ThreadSafeRefCountObject, AssignmentKeepsTheCount) {
  int numDestroyed = 0;
  boost::intrusive_ptr<Counted> const object(new Counted(&numDestroyed));
  Counted const other(&numDestroyed);
  *object = other;
  EXPECT_EQ(1, object->GetRefCount());
  EXPECT_EQ(0, other.GetRefCount());
}

TEST(Sys_ThreadSafeRefCountObject_RefCountDelete, IsWhatTheLastReleaseCalls) {
  Kept kept;
  { boost::intrusive_ptr<Kept> const first(&kept), second(&kept); }
  EXPECT_EQ(1, kept.mNumReleased);
}

TEST(Sys_ThreadSafeRefCountObject_SmartDeletion, DestroysOnceThoughTheDestructorTakesAHandle) {
  int numDestroyed = 0;
  boost::intrusive_ptr<Clinging>(new Clinging(&numDestroyed)).reset();
  EXPECT_EQ(1, numDestroyed);
}

TEST(Sys_ThreadSafeRefCountObject, IsDestroyedOnceHoweverManyThreadsDropIt) {
  for (int round = 0; round < 100; ++round) {
    int numDestroyed = 0;
    {
      boost::intrusive_ptr<Counted> const object(new Counted(&numDestroyed));
      std::vector<std::jthread> threads;
      for (int i = 0; i < 4; ++i) {
        threads.emplace_back([handle = object] {
          for (int step = 0; step < 100; ++step)
            boost::intrusive_ptr<Counted> const another(handle);
        });
      }
    }
    ASSERT_EQ(1, numDestroyed);
  }
}

TEST(Sys_ThreadSafeRefCountObject, CountingKeepsToTheRulesOfRealTime) {
  int numDestroyed = 0;
  Counted const object(&numDestroyed);
  object.AddReference();
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              object.AddReference();
              object.RemoveReference();
            }));
  EXPECT_EQ(1, object.GetRefCount());
}

TEST(Sys_AtomicInt32, KeepsToTheRulesOfRealTime) {
  Sys_AtomicInt32 number;
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              number.Increment();
              number.Decrement();
            }));
}
