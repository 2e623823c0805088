// Giving the pool back is the last scrub call of a process, so it has a program of its own, whose
// one test goes through all that must come before it.
#include <gtest/gtest.h>

#include "support/refusing_heap.h"
#include "support/scrub_printing.h"

using refusing_heap::gNumInUse;
using refusing_heap::IsRefusedAfter;

namespace {

void ExpectRefused(Vrad_ScrubList & ioList) {
  EXPECT_TRUE(IsRefusedAfter(0, [&] { ioList.AddNote(ScrubNote(60, 10, 20), false); }));
  EXPECT_TRUE(IsRefusedAfter(0, [&] { ioList.AddPitchBend(ScrubBend(5, 1), 0, true); }));
  EXPECT_EQ(MoveTo(ioList, 100), "");
  EXPECT_EQ(MoveTo(ioList, 0), "");
}

}  // namespace

TEST(Vrad_ScrubEventPool, RefusalsLeaveTheListAsItWasAndFreeGivesAllBlocksBack) {
  long long const numBefore = gNumInUse;
  {
    Vrad_ScrubList list;
    ExpectRefused(list);
    EXPECT_EQ(Vrad_ScrubEventPool::sFirstPool, nullptr);

    // With one free node left, it comes back when there is none for the other half.
    Vrad_ScrubEvent * taken[Vrad_ScrubEventPool::kNumEvents - 1];
    for (Vrad_ScrubEvent *& eventP : taken)
      eventP = Vrad_ScrubEventPool::GetEvent();
    ExpectRefused(list);
    ASSERT_NE(Vrad_ScrubEventPool::sFirstEvent, nullptr);
    EXPECT_EQ(Vrad_ScrubEventPool::sFirstEvent->mNextP, nullptr);

    list.AddNote(ScrubNote(60, 10, 20), false);
    EXPECT_EQ(MoveTo(list, 100), "start60@10 end60@30");
    for (Vrad_ScrubEvent * eventP : taken)
      Vrad_ScrubEventPool::ReleaseEvent(eventP);
  }
  EXPECT_EQ(gNumInUse, numBefore + 2);
  Vrad_ScrubEvent const * const firstP = Vrad_ScrubEventPool::sFirstEvent;
  Vrad_ScrubEventPool::Free();
  EXPECT_EQ(gNumInUse, numBefore);
  EXPECT_EQ(Vrad_ScrubEventPool::sFirstPool, nullptr);
  EXPECT_EQ(Vrad_ScrubEventPool::sFirstEvent, firstP);
}
