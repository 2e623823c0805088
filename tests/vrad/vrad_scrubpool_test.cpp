// The nodes of scrub lists. What ends all scrubbing is in a program of its own.
#include <gtest/gtest.h>

#include <set>
#include <type_traits>

#include "support/realtime_scope.h"
#include "support/scrub_printing.h"
#include "vrad/vrad_scrub.h"

namespace {

int GetNumFree() {
  int num = 0;
  for (Vrad_ScrubEvent const * p = Vrad_ScrubEventPool::sFirstEvent; p; p = p->mNextP)
    ++num;
  return num;
}

// Knows how many nodes were free when the test began, and that there is a block.
class Vrad_ScrubEventPool_Nodes : public testing::Test {
protected:
  Vrad_ScrubEventPool_Nodes() {
    Vrad_ScrubEventPool::ReleaseEvent(Vrad_ScrubEventPool::GetEvent());
    mNumFree = GetNumFree();
  }
  int mNumFree;
};

}  // namespace

static_assert(!std::is_copy_constructible_v<Vrad_ScrubEventPool>);

TEST_F(Vrad_ScrubEventPool_Nodes, ComeBackByClear) {
  Vrad_ScrubList list;
  list.AddNote(ScrubNote(60, 10, 20), false);
  list.AddPitchBend(ScrubBend(100, 10), 7, false);
  EXPECT_EQ(GetNumFree(), mNumFree - 4);
  list.Clear();
  EXPECT_EQ(GetNumFree(), mNumFree);
}

TEST_F(Vrad_ScrubEventPool_Nodes, ComeBackWithTheList) {
  {
    Vrad_ScrubList list;
    list.AddNote(ScrubNote(60, 10, 20), false);
  }
  EXPECT_EQ(GetNumFree(), mNumFree);
}

TEST_F(Vrad_ScrubEventPool_Nodes, LastReleasedIsTakenFirst) {
  Vrad_ScrubEvent * const eventP = Vrad_ScrubEventPool::GetEvent();
  Vrad_ScrubEventPool::ReleaseEvent(eventP);
  EXPECT_EQ(Vrad_ScrubEventPool::GetEvent(), eventP);
  Vrad_ScrubEventPool::ReleaseEvent(eventP);
}

TEST_F(Vrad_ScrubEventPool_Nodes, ReleasingGivesTheFormerLink) {
  Vrad_ScrubEvent * const aP = Vrad_ScrubEventPool::GetEvent();
  Vrad_ScrubEvent * const bP = Vrad_ScrubEventPool::GetEvent();
  aP->mNextP = bP;
  bP->mNextP = nullptr;
  EXPECT_EQ(Vrad_ScrubEventPool::ReleaseEvent(aP), bP);
  EXPECT_EQ(Vrad_ScrubEventPool::ReleaseEvent(bP), nullptr);
  EXPECT_EQ(GetNumFree(), mNumFree);
}

TEST_F(Vrad_ScrubEventPool_Nodes, TakingAndReleasingStaysOffTheHeap) {
  Vrad_ScrubList list;
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              list.AddNote(ScrubNote(60, 10, 20), false);
              list.AddPitchBend(ScrubBend(100, 10), 7, true);
              while (list.MoveTowards(Time_Tick(50))) {
              }
              list.Clear();
            }));
}

TEST_F(Vrad_ScrubEventPool_Nodes, RunningDryAddsOneBlockOf1024) {
  std::set<Vrad_ScrubEvent *> taken;
  for (int i = 0; i < mNumFree; ++i)
    taken.insert(Vrad_ScrubEventPool::GetEvent());
  EXPECT_EQ(Vrad_ScrubEventPool::sFirstEvent, nullptr);
  Vrad_ScrubEventPool * const formerP = Vrad_ScrubEventPool::sFirstPool;
  taken.insert(Vrad_ScrubEventPool::GetEvent());
  EXPECT_NE(Vrad_ScrubEventPool::sFirstPool, formerP);
  EXPECT_EQ(GetNumFree(), 1023);
  EXPECT_EQ(taken.size(), static_cast<size_t>(mNumFree) + 1);
  for (Vrad_ScrubEvent * const eventP : taken)
    Vrad_ScrubEventPool::ReleaseEvent(eventP);
  EXPECT_EQ(GetNumFree(), mNumFree + 1024);
}

TEST_F(Vrad_ScrubEventPool_Nodes, NewBlockGoesInFrontOfTheFreeOnes) {
  Vrad_ScrubEvent const * const formerP = Vrad_ScrubEventPool::sFirstEvent;
  Vrad_ScrubEventPool * const poolP = new Vrad_ScrubEventPool;
  EXPECT_EQ(Vrad_ScrubEventPool::sFirstPool, poolP);
  EXPECT_NE(Vrad_ScrubEventPool::sFirstEvent, formerP);
  EXPECT_EQ(GetNumFree(), mNumFree + 1024);
}
