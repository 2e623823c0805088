#include "foundation/sys_delayeddeletion.h"

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/realtime_scope.h"

namespace {

// Tells in which order objects are destroyed.
class Dropped : public Sys_DelayedDeletionObject {
public:
  Dropped(std::vector<int> & ioOrder, int iNumber) : mOrder(ioOrder), mNumber(iNumber) {}
  ~Dropped() override { mOrder.push_back(mNumber); }

private:
  std::vector<int> & mOrder;
  int mNumber;
};

// Drops another object from its destructor.
class Owner : public Sys_DelayedDeletionObject {
public:
  explicit Owner(Sys_DelayedDeletionObject * iOwnedP) : mOwnedP(iOwnedP) {}
  ~Owner() override { mOwnedP->DelayedDelete(); }

private:
  Sys_DelayedDeletionObject * mOwnedP;
};

class Counted : public Sys_DelayedDeletionObject {
public:
  explicit Counted(std::atomic<int> & ioNum) : mNum(ioNum) {}
  ~Counted() override { ++mNum; }

private:
  std::atomic<int> & mNum;
};

}  // namespace

TEST(Sys_DelayedDeletionQueue, IsEmptyAtStart) {
  EXPECT_EQ(0, Sys_DelayedDeletionQueue::GetNumPending());
  EXPECT_EQ(0, Sys_DelayedDeletionQueue::DeletePending());
}

TEST(Sys_DelayedDeletionObject, DelayedDeleteQueuesAndDestroysNothing) {
  std::vector<int> order;
  (new Dropped(order, 1))->DelayedDelete();
  EXPECT_EQ(1, Sys_DelayedDeletionQueue::GetNumPending());
  EXPECT_TRUE(order.empty());
  Sys_DelayedDeletionQueue::DeletePending();
}

TEST(Sys_DelayedDeletionQueue, DeletePendingDestroysInOrderOfDropping) {
  std::vector<int> order;
  for (int number : {1, 2, 3})
    (new Dropped(order, number))->DelayedDelete();
  EXPECT_EQ(3, Sys_DelayedDeletionQueue::DeletePending());
  EXPECT_EQ((std::vector<int>{1, 2, 3}), order);
  EXPECT_EQ(0, Sys_DelayedDeletionQueue::GetNumPending());
  EXPECT_EQ(0, Sys_DelayedDeletionQueue::DeletePending());
}

TEST(Sys_DelayedDeletionQueue, DeletePendingIncludesWhatDestructorsDrop) {
  std::vector<int> order;
  (new Owner(new Dropped(order, 1)))->DelayedDelete();
  EXPECT_EQ(1, Sys_DelayedDeletionQueue::GetNumPending());
  EXPECT_EQ(2, Sys_DelayedDeletionQueue::DeletePending());
  EXPECT_EQ((std::vector<int>{1}), order);
  EXPECT_EQ(0, Sys_DelayedDeletionQueue::GetNumPending());
}

TEST(Sys_DelayedDeletionObject, SecondDelayedDeleteDoesNothing) {
  std::vector<int> order;
  Dropped * const objectP = new Dropped(order, 1);
  objectP->DelayedDelete();
  objectP->DelayedDelete();
  EXPECT_EQ(1, Sys_DelayedDeletionQueue::GetNumPending());
  EXPECT_EQ(1, Sys_DelayedDeletionQueue::DeletePending());
}

TEST(Sys_DelayedDeletionObject, CopyOfAQueuedObjectIsNotQueued) {
  std::vector<int> order;
  Dropped * const objectP = new Dropped(order, 1);
  objectP->DelayedDelete();
  Dropped * const copyP = new Dropped(*objectP);
  copyP->DelayedDelete();
  EXPECT_EQ(2, Sys_DelayedDeletionQueue::DeletePending());
}

TEST(Sys_DelayedDeletionObject, DeletedPlainlyIsNeverQueued) {
  std::vector<int> order;
  delete new Dropped(order, 7);
  EXPECT_EQ((std::vector<int>{7}), order);
  EXPECT_EQ(0, Sys_DelayedDeletionQueue::GetNumPending());
}

TEST(Sys_DelayedDeletionObject, DelayedDeleteKeepsToTheRulesOfRealTime) {
  std::vector<int> order;
  order.reserve(2);
  Dropped * const firstP = new Dropped(order, 1);
  Dropped * const secondP = new Dropped(order, 2);
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              firstP->DelayedDelete();
              secondP->DelayedDelete();
            }));
  EXPECT_EQ(2, Sys_DelayedDeletionQueue::DeletePending());
}

TEST(Sys_DelayedDeletionQueue_Threads, EachObjectIsDestroyedOnce) {
  std::atomic<int> numDestroyed{0};
  std::atomic<int> numDeleted{0};
  std::atomic<bool> isDone{false};
  {
    std::vector<std::jthread> cleaners;
    for (int i = 0; i < 2; ++i) {
      cleaners.emplace_back([&] {
        while (!isDone)
          numDeleted += Sys_DelayedDeletionQueue::DeletePending();
      });
    }
    {
      std::vector<std::jthread> droppers;
      for (int i = 0; i < 3; ++i) {
        droppers.emplace_back([&] {
          for (int step = 0; step < 5000; ++step)
            (new Counted(numDestroyed))->DelayedDelete();
        });
      }
    }
    isDone = true;
  }
  numDeleted += Sys_DelayedDeletionQueue::DeletePending();
  EXPECT_EQ(15000, numDestroyed);
  EXPECT_EQ(15000, numDeleted);
  EXPECT_EQ(0, Sys_DelayedDeletionQueue::GetNumPending());
}
