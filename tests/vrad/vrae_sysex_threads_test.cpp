// Copies of one long sysex on several threads: the count is theirs together, the bytes stay.
#include <gtest/gtest.h>

#include <atomic>
#include <numeric>
#include <thread>
#include <vector>

#include "foundation/mem2_masterallocator.h"
#include "foundation/sys_delayeddeletion.h"
#include "vrad/vrae_event.h"

namespace {

constexpr int kNumThreads = 4;
constexpr int kNumRounds = 2000;

std::vector<unsigned char> MakeBytes() {
  std::vector<unsigned char> bytes(100);
  std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
  bytes.front() = 0xF0;
  bytes.back() = 0xF7;
  return bytes;
}

// Runs iBody on all threads at once and waits for them.
template <class TBody>
void RunOnThreads(TBody const & iBody) {
  std::atomic<bool> go{false};
  std::vector<std::thread> threads;
  for (int i = 0; i < kNumThreads; ++i) {
    threads.emplace_back([&] {
      while (!go.load())
        std::this_thread::yield();
      iBody();
    });
  }
  go.store(true);
  for (std::thread & thread : threads)
    thread.join();
}

// Copies, assigns and reads iEvent over and over. Gives the number of wrong bytes read.
int CopyAndRead(Vrae_Event const & iEvent) {
  int numWrong = 0;
  std::vector<Vrae_Event> copies;
  for (int round = 0; round < kNumRounds; ++round) {
    copies.push_back(round % 2 == 0 || copies.empty() ? iEvent : copies.front());
    Vrae_Event target = copies.back();
    target = iEvent;
    signed char byte = 0;
    target.GetPartialMessageData(&byte, 0, round % 98 + 1, 1);
    numWrong += byte != round % 98 + 1;
    if (copies.size() > 20) copies.erase(copies.begin(), copies.begin() + 10);
  }
  return numWrong;
}

}  // namespace

TEST(Vrae_Sysex_Threads, CopiesOfAHeapPayloadReleaseItOnce) {
  Sys_DelayedDeletionQueue::DeletePending();
  std::vector<unsigned char> const bytes = MakeBytes();
  std::atomic<int> numWrong{0};
  {
    Vrae_Event const event = Vrae_SysexEvent(98, bytes.data() + 1);
    RunOnThreads([&] { numWrong += CopyAndRead(event); });
    EXPECT_EQ(Sys_DelayedDeletionQueue::GetNumPending(), 0);
  }
  EXPECT_EQ(numWrong, 0);
  EXPECT_EQ(Sys_DelayedDeletionQueue::GetNumPending(), 1);
  EXPECT_EQ(Sys_DelayedDeletionQueue::DeletePending(), 1);
}

TEST(Vrae_Sysex_Threads, CopiesOfAPoolPayloadReleaseItOnce) {
  Mem2_MasterAllocator pool(1 << 16);
  std::vector<unsigned char> const bytes = MakeBytes();
  std::atomic<int> numWrong{0};
  {
    Vrae_Event const event = Vrae_SysexPacketEvent(100, bytes.data(), &pool);
    RunOnThreads([&] { numWrong += CopyAndRead(event); });
    EXPECT_EQ(pool.GetNumBlocksInUse(), 2);
  }
  EXPECT_EQ(numWrong, 0);
  EXPECT_EQ(pool.GetNumBlocksInUse(), 0);
  EXPECT_EQ(pool.GetNumBadFrees(), 0);
}

TEST(Vrae_Sysex_Threads, AnyThreadMayDropTheLastCopy) {
  Mem2_MasterAllocator pool(1 << 16);
  std::vector<unsigned char> const bytes = MakeBytes();
  for (int round = 0; round < 200; ++round) {
    Vrae_Event event = Vrae_SysexPacketEvent(100, bytes.data(), &pool);
    std::vector<Vrae_Event> copies(kNumThreads, event);
    event = Vrae_Event();
    std::atomic<int> next{0};
    RunOnThreads([&] { copies[static_cast<size_t>(next++)] = Vrae_Event(); });
    ASSERT_EQ(pool.GetNumBlocksInUse(), 0) << round;
  }
  EXPECT_EQ(pool.GetNumBadFrees(), 0);
}

TEST(Vrae_Sysex_Threads, PacketsComeAndGoOnSeveralThreads) {
  Mem2_MasterAllocator pool(1 << 14);
  std::vector<unsigned char> const bytes = MakeBytes();
  std::atomic<int> numBadKinds{0};
  RunOnThreads([&] {
    for (int round = 0; round < kNumRounds; ++round) {
      Vrae_Event const event = Vrae_SysexPacketEvent(20 + round % 80, bytes.data(), &pool);
      Vrae_Event const copy(event);
      if (copy.GetType() != 15 && copy.GetType() != 0) ++numBadKinds;
    }
  });
  EXPECT_EQ(numBadKinds, 0);
  EXPECT_EQ(pool.GetNumBlocksInUse(), 0);
  EXPECT_EQ(pool.GetNumBadFrees(), 0);
}
