#include "foundation/mem2_masterallocator.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/realtime_scope.h"

namespace {

constexpr int kPageBytes = 1024;

std::vector<void *> TakeAll(Mem2_MasterAllocator & ioPool, int iSize) {
  std::vector<void *> blocks;
  while (void * const blockP = ioPool.Alloc(iSize, nullptr))
    blocks.push_back(blockP);
  return blocks;
}

void FreeAll(Mem2_MasterAllocator & ioPool, std::vector<void *> const & iBlocks) {
  for (void * const blockP : iBlocks)
    ioPool.Free(blockP, nullptr);
}

// Takes, marks, checks and gives back blocks of changing sizes. Counts what was not as it should
// be.
int Churn(Mem2_MasterAllocator & ioPool, unsigned iSeed, int iNumSteps, int iMaxSize) {
  std::mt19937 random(iSeed);
  struct Held {
    unsigned char * mBytes;
    int mSize;
    unsigned char mMark;
  };
  std::vector<Held> held;
  int numWrong = 0;
  auto const give = [&](size_t iIndex) {
    Held const block = held[iIndex];
    for (int i = 0; i < block.mSize; ++i)
      numWrong += block.mBytes[i] != block.mMark;
    ioPool.Free(block.mBytes, nullptr);
    held[iIndex] = held.back();
    held.pop_back();
  };
  for (int step = 0; step < iNumSteps; ++step) {
    if (!held.empty() && (held.size() == 16 || random() % 2)) {
      give(random() % held.size());
      continue;
    }
    int const size = 1 + static_cast<int>(random() % static_cast<unsigned>(iMaxSize));
    void * const blockP = ioPool.Alloc(size, nullptr);
    if (!blockP) continue;
    unsigned char const mark = static_cast<unsigned char>(random());
    std::memset(blockP, mark, static_cast<size_t>(size));
    held.push_back({static_cast<unsigned char *>(blockP), size, mark});
  }
  while (!held.empty())
    give(0);
  return numWrong;
}

}  // namespace

TEST(Mem2_MasterAllocator, StartsWithAllItsBytesFree) {
  Mem2_MasterAllocator const pool(4096);
  EXPECT_EQ(4096, pool.GetBytesFree());
  EXPECT_EQ(0, pool.GetNumBlocksInUse());
  EXPECT_EQ(0, pool.GetNumBadFrees());
}

TEST(Mem2_MasterAllocator, RoundsThePoolDown) {
  EXPECT_EQ(1008, Mem2_MasterAllocator(1023).GetBytesFree());
  EXPECT_EQ(1024, Mem2_MasterAllocator(1024).GetBytesFree());
  EXPECT_EQ(1024, Mem2_MasterAllocator(1025).GetBytesFree());
}

TEST(Mem2_MasterAllocator, PoolOfNothingGivesNothing) {
  for (int const size : {-1, 0, 15}) {
    Mem2_MasterAllocator pool(size);
    EXPECT_EQ(nullptr, pool.Alloc(1, nullptr)) << size;
    EXPECT_EQ(0, pool.GetBytesFree()) << size;
  }
}

TEST(Mem2_MasterAllocator_Alloc, SizeOfNothingGivesNull) {
  Mem2_MasterAllocator pool(1024);
  EXPECT_EQ(nullptr, pool.Alloc(0, nullptr));
  EXPECT_EQ(nullptr, pool.Alloc(-1, nullptr));
  EXPECT_EQ(1024, pool.GetBytesFree());
}

TEST(Mem2_MasterAllocator_Alloc, TakesItsSizeRoundedUp) {
  Mem2_MasterAllocator pool(1024);
  pool.Alloc(1, nullptr);
  EXPECT_EQ(1008, pool.GetBytesFree());
  pool.Alloc(16, nullptr);
  EXPECT_EQ(992, pool.GetBytesFree());
  pool.Alloc(17, nullptr);
  EXPECT_EQ(960, pool.GetBytesFree());
  EXPECT_EQ(3, pool.GetNumBlocksInUse());
}

TEST(Mem2_MasterAllocator_Alloc, AlignsForAnyType) {
  Mem2_MasterAllocator pool(16384);
  for (int size = 1; size < 100; ++size) {
    void * const blockP = pool.Alloc(size, nullptr);
    ASSERT_NE(nullptr, blockP) << size;
    EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(blockP) % alignof(std::max_align_t)) << size;
  }
}

TEST(Mem2_MasterAllocator_Alloc, GivesNullWhenExhausted) {
  Mem2_MasterAllocator pool(64);
  EXPECT_EQ(4u, TakeAll(pool, 16).size());
  EXPECT_EQ(0, pool.GetBytesFree());
  EXPECT_EQ(nullptr, pool.Alloc(1, nullptr));
}

TEST(Mem2_MasterAllocator_Alloc, TakesTheWholePoolAsOneBlock) {
  for (int const size : {16, 1008, 1024, 1040, 100000, 131072, 1 << 20}) {
    Mem2_MasterAllocator pool(size);
    void * const blockP = pool.Alloc(size, nullptr);
    ASSERT_NE(nullptr, blockP) << size;
    EXPECT_EQ(0, pool.GetBytesFree()) << size;
    std::memset(blockP, 1, static_cast<size_t>(size));
    pool.Free(blockP, nullptr);
    EXPECT_EQ(size, pool.GetBytesFree()) << size;
  }
}

TEST(Mem2_MasterAllocator_Alloc, RefusesMoreThanThePool) {
  Mem2_MasterAllocator pool(100000);
  EXPECT_EQ(nullptr, pool.Alloc(100001, nullptr));
  EXPECT_EQ(nullptr, pool.Alloc(0x7fffffff, nullptr));
  EXPECT_EQ(100000, pool.GetBytesFree());
}

TEST(Mem2_MasterAllocator_Alloc, GivesALongSysexItsBytesBesideShortBlocks) {
  Mem2_MasterAllocator pool(1 << 18);
  void * const beforeP = pool.Alloc(24, nullptr);
  void * const firstP = pool.Alloc(100000, nullptr);
  void * const secondP = pool.Alloc(100000, nullptr);
  ASSERT_NE(nullptr, firstP);
  ASSERT_NE(nullptr, secondP);
  EXPECT_EQ(nullptr, pool.Alloc(100000, nullptr));
  std::memset(beforeP, 1, 24);
  std::memset(firstP, 2, 100000);
  std::memset(secondP, 3, 100000);
  EXPECT_EQ(1, static_cast<char *>(beforeP)[23]);
  EXPECT_EQ(2, static_cast<char *>(firstP)[99999]);
  EXPECT_EQ(3, static_cast<char *>(secondP)[0]);
}

TEST(Mem2_MasterAllocator_Alloc, LongBlockBeginsBehindAShortOneInItsPage) {
  Mem2_MasterAllocator pool(3 * kPageBytes);
  pool.Alloc(16, nullptr);
  EXPECT_NE(nullptr, pool.Alloc(3 * kPageBytes - 16, nullptr));
  EXPECT_EQ(0, pool.GetBytesFree());
}

TEST(Mem2_MasterAllocator_Alloc, LongBlockPassesOverStretchesTooShort) {
  Mem2_MasterAllocator pool(8 * kPageBytes);
  std::vector<void *> const pages = TakeAll(pool, kPageBytes);
  ASSERT_EQ(8u, pages.size());
  for (int const page : {1, 3, 4, 6, 7})
    pool.Free(pages[static_cast<size_t>(page)], nullptr);
  EXPECT_EQ(nullptr, pool.Alloc(2 * kPageBytes + 1, nullptr));
  EXPECT_EQ(pages[3], pool.Alloc(2 * kPageBytes, nullptr));
  EXPECT_EQ(pages[6], pool.Alloc(kPageBytes + 1, nullptr));
}

TEST(Mem2_MasterAllocator_Alloc, BlockOfAPageStaysWithinOnePage) {
  Mem2_MasterAllocator pool(2 * kPageBytes);
  void * const firstP = pool.Alloc(600, nullptr);
  void * const secondP = pool.Alloc(600, nullptr);
  ASSERT_NE(nullptr, firstP);
  ASSERT_NE(nullptr, secondP);
  // 832 bytes are free, in two pages.
  EXPECT_EQ(nullptr, pool.Alloc(500, nullptr));
  EXPECT_NE(nullptr, pool.Alloc(400, nullptr));
  EXPECT_NE(nullptr, pool.Alloc(400, nullptr));
}

TEST(Mem2_MasterAllocator_Alloc, ChoosesThePageWhoseStretchFitsBest) {
  Mem2_MasterAllocator pool(4 * kPageBytes);
  void * const fullP = pool.Alloc(1000, nullptr);
  pool.Alloc(kPageBytes - 64, nullptr);
  void * const blockP = pool.Alloc(64, nullptr);
  EXPECT_EQ(static_cast<char *>(fullP) + 2 * kPageBytes - 64, blockP);
}

TEST(Mem2_MasterAllocator_Free, NullDoesNothing) {
  Mem2_MasterAllocator pool(1024);
  Mem2_MasterAllocator::Statistics statistics("label");
  pool.Free(nullptr, &statistics);
  EXPECT_EQ(0, statistics.GetNumFrees());
  EXPECT_EQ(0, pool.GetNumBadFrees());
}

TEST(Mem2_MasterAllocator_Free, MakesTheBlockAvailableAgain) {
  Mem2_MasterAllocator pool(64);
  std::vector<void *> const blocks = TakeAll(pool, 16);
  pool.Free(blocks[2], nullptr);
  EXPECT_EQ(3, pool.GetNumBlocksInUse());
  EXPECT_EQ(blocks[2], pool.Alloc(16, nullptr));
}

TEST(Mem2_MasterAllocator_Free, SmallBlocksJoinToLargeOnes) {
  Mem2_MasterAllocator pool(1 << 17);
  std::vector<void *> const blocks = TakeAll(pool, 40);
  EXPECT_GT(blocks.size(), 2600u);
  FreeAll(pool, blocks);
  EXPECT_EQ(1 << 17, pool.GetBytesFree());
  EXPECT_NE(nullptr, pool.Alloc(1 << 17, nullptr));
}

TEST(Mem2_MasterAllocator_Free, LargeBlockServesSmallOnes) {
  Mem2_MasterAllocator pool(1 << 17);
  pool.Free(pool.Alloc(1 << 17, nullptr), nullptr);
  EXPECT_EQ(8192u, TakeAll(pool, 16).size());
}

TEST(Mem2_MasterAllocator_Free, EveryOtherBlockServesTheSameSizeAgain) {
  Mem2_MasterAllocator pool(1 << 16);
  std::vector<void *> const blocks = TakeAll(pool, 64);
  ASSERT_EQ(1024u, blocks.size());
  for (size_t i = 0; i < blocks.size(); i += 2)
    pool.Free(blocks[i], nullptr);
  EXPECT_EQ(512u, TakeAll(pool, 64).size());
}

TEST(Mem2_MasterAllocator_Free, SecondFreeOfABlockIsCountedAndIgnored) {
  Mem2_MasterAllocator pool(1024);
  Mem2_MasterAllocator::Statistics statistics("label");
  void * const blockP = pool.Alloc(40, &statistics);
  pool.Free(blockP, &statistics);
  pool.Free(blockP, &statistics);
  EXPECT_EQ(1, pool.GetNumBadFrees());
  EXPECT_EQ(1, statistics.GetNumFrees());
  EXPECT_EQ(0, statistics.GetBytesInUse());
  EXPECT_EQ(1024, pool.GetBytesFree());
  EXPECT_EQ(0, pool.GetNumBlocksInUse());
}

TEST(Mem2_MasterAllocator_Free, ForeignPointerIsCountedAndIgnored) {
  Mem2_MasterAllocator pool(1024), other(1024);
  alignas(16) char local[16];
  void * const othersP = other.Alloc(16, nullptr);
  pool.Free(local, nullptr);
  pool.Free(othersP, nullptr);
  EXPECT_EQ(2, pool.GetNumBadFrees());
  EXPECT_EQ(1024, pool.GetBytesFree());
  EXPECT_EQ(1, other.GetNumBlocksInUse());
}

TEST(Mem2_MasterAllocator_Free, PointerIntoABlockIsCountedAndIgnored) {
  Mem2_MasterAllocator pool(1024);
  char * const blockP = static_cast<char *>(pool.Alloc(64, nullptr));
  pool.Free(blockP + 1, nullptr);
  pool.Free(blockP + 16, nullptr);
  EXPECT_EQ(2, pool.GetNumBadFrees());
  EXPECT_EQ(1, pool.GetNumBlocksInUse());
  EXPECT_EQ(960, pool.GetBytesFree());
}

TEST(Mem2_MasterAllocator_Free, PointersJustOutsideThePoolAreCounted) {
  Mem2_MasterAllocator pool(1024);
  char * const blockP = static_cast<char *>(pool.Alloc(1024, nullptr));
  pool.Free(blockP + 1024, nullptr);
  pool.Free(reinterpret_cast<void *>(reinterpret_cast<std::uintptr_t>(blockP) - 16), nullptr);
  EXPECT_EQ(2, pool.GetNumBadFrees());
}

TEST(Mem2_MasterAllocator, BookkeepingSurvivesBlocksWrittenFull) {
  Mem2_MasterAllocator pool(8192);
  std::vector<void *> const blocks = TakeAll(pool, 48);
  for (void * const blockP : blocks)
    std::memset(blockP, 0xff, 48);
  FreeAll(pool, blocks);
  // Free memory may be written too: nothing in it is the pool's.
  for (void * const blockP : blocks)
    std::memset(blockP, 0xff, 48);
  EXPECT_EQ(blocks.size(), TakeAll(pool, 48).size());
}

TEST(Mem2_MasterAllocator_FailAfter, GrantsThatManyMoreAndThenNone) {
  Mem2_MasterAllocator pool(1024);
  pool.FailAfter(2);
  EXPECT_NE(nullptr, pool.Alloc(16, nullptr));
  EXPECT_NE(nullptr, pool.Alloc(16, nullptr));
  EXPECT_EQ(nullptr, pool.Alloc(16, nullptr));
  EXPECT_EQ(nullptr, pool.Alloc(16, nullptr));
  EXPECT_EQ(992, pool.GetBytesFree());
}

TEST(Mem2_MasterAllocator_FailAfter, ZeroRefusesTheNext) {
  Mem2_MasterAllocator pool(1024);
  pool.FailAfter(0);
  EXPECT_EQ(nullptr, pool.Alloc(16, nullptr));
  EXPECT_EQ(1024, pool.GetBytesFree());
}

TEST(Mem2_MasterAllocator_FailAfter, MinusOneGrantsAgain) {
  Mem2_MasterAllocator pool(1024);
  pool.FailAfter(0);
  pool.FailAfter(-1);
  EXPECT_NE(nullptr, pool.Alloc(16, nullptr));
}

TEST(Mem2_MasterAllocator_FailAfter, RequestsThatThePoolRefusesDoNotCount) {
  Mem2_MasterAllocator pool(64);
  pool.FailAfter(1);
  EXPECT_EQ(nullptr, pool.Alloc(65, nullptr));
  EXPECT_EQ(nullptr, pool.Alloc(0, nullptr));
  EXPECT_NE(nullptr, pool.Alloc(64, nullptr));
}

TEST(Mem2_MasterAllocator_FailAfter, FreeStillWorks) {
  Mem2_MasterAllocator pool(64);
  void * const blockP = pool.Alloc(64, nullptr);
  pool.FailAfter(0);
  pool.Free(blockP, nullptr);
  EXPECT_EQ(64, pool.GetBytesFree());
}

TEST(Mem2_MasterAllocator_Statistics, StartsAtZeroUnderItsLabel) {
  Mem2_MasterAllocator::Statistics const statistics("payloads");
  EXPECT_STREQ("payloads", statistics.GetLabel());
  EXPECT_EQ(0, statistics.GetNumAllocs());
  EXPECT_EQ(0, statistics.GetNumFrees());
  EXPECT_EQ(0, statistics.GetNumFailures());
  EXPECT_EQ(0, statistics.GetBytesInUse());
}

TEST(Mem2_MasterAllocator_Statistics, CountsAllocsAndFreesInBytesAskedFor) {
  Mem2_MasterAllocator pool(1024);
  Mem2_MasterAllocator::Statistics statistics("label");
  void * const firstP = pool.Alloc(40, &statistics);
  pool.Alloc(7, &statistics);
  EXPECT_EQ(2, statistics.GetNumAllocs());
  EXPECT_EQ(47, statistics.GetBytesInUse());
  pool.Free(firstP, &statistics);
  EXPECT_EQ(1, statistics.GetNumFrees());
  EXPECT_EQ(7, statistics.GetBytesInUse());
}

TEST(Mem2_MasterAllocator_Statistics, CountsFailures) {
  Mem2_MasterAllocator pool(64);
  Mem2_MasterAllocator::Statistics statistics("label");
  pool.Alloc(65, &statistics);
  pool.FailAfter(0);
  pool.Alloc(16, &statistics);
  EXPECT_EQ(2, statistics.GetNumFailures());
  EXPECT_EQ(0, statistics.GetNumAllocs());
  EXPECT_EQ(0, statistics.GetBytesInUse());
}

TEST(Mem2_MasterAllocator_Statistics, RequestForNothingIsNoFailure) {
  Mem2_MasterAllocator pool(64);
  Mem2_MasterAllocator::Statistics statistics("label");
  pool.Alloc(0, &statistics);
  EXPECT_EQ(0, statistics.GetNumFailures());
}

TEST(Mem2_MasterAllocator_Statistics, BytesDriftBelowZeroWhenOnlyFreesAreCounted) {
  Mem2_MasterAllocator pool(64);
  Mem2_MasterAllocator::Statistics statistics("label");
  pool.Free(pool.Alloc(20, nullptr), &statistics);
  EXPECT_EQ(-20, statistics.GetBytesInUse());
  EXPECT_EQ(1, statistics.GetNumFrees());
}

TEST(Mem2_MasterAllocator, KeepsToTheRulesOfRealTime) {
  Mem2_MasterAllocator pool(1 << 17);
  Mem2_MasterAllocator::Statistics statistics("label");
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              void * const shortP = pool.Alloc(64, &statistics);
              void * const longP = pool.Alloc(100000, &statistics);
              void * const nullP = pool.Alloc(100000, &statistics);
              pool.Free(shortP, &statistics);
              pool.Free(longP, &statistics);
              pool.Free(longP, &statistics);
              pool.Free(nullP, &statistics);
            }));
  EXPECT_EQ(2, statistics.GetNumAllocs());
  EXPECT_EQ(1, statistics.GetNumFailures());
  EXPECT_EQ(1, pool.GetNumBadFrees());
}

// Against a plain picture of the pool: a request gets null exactly when no stretch serves.
TEST(Mem2_MasterAllocator, AgreesWithAPlainPictureOfItsGranules) {
  constexpr int kNumGranules = 64 * 5 + 17;
  for (unsigned seed = 1; seed <= 20; ++seed) {
    std::mt19937 random(seed);
    Mem2_MasterAllocator pool(kNumGranules * 16);
    char * const baseP = static_cast<char *>(pool.Alloc(kNumGranules * 16, nullptr));
    pool.Free(baseP, nullptr);
    std::vector<bool> used(kNumGranules, false);
    std::map<int, int> blocks;
    auto const hasRoom = [&used](int iNum) {
      int run = 0;
      bool isPageFree = true, hadWholePage = false;
      for (int i = 0; i < kNumGranules; ++i) {
        bool const isPageStart = i % 64 == 0;
        if (isPageStart && iNum <= 64) run = 0;
        if (isPageStart) isPageFree = true;
        isPageFree = isPageFree && !used[static_cast<size_t>(i)];
        run = used[static_cast<size_t>(i)] ? 0 : run + 1;
        if (run == 0) hadWholePage = false;
        if (i % 64 == 63 && isPageFree) hadWholePage = true;
        if (run >= iNum && (iNum <= 64 || hadWholePage)) return true;
      }
      return false;
    };
    for (int step = 0; step < 2000; ++step) {
      if (!blocks.empty() && random() % 2) {
        auto const iter = std::next(blocks.begin(), static_cast<long>(random() % blocks.size()));
        pool.Free(baseP + iter->first * 16, nullptr);
        for (int i = 0; i < iter->second; ++i)
          used[static_cast<size_t>(iter->first + i)] = false;
        blocks.erase(iter);
        continue;
      }
      int const num = 1 + static_cast<int>(random() % (random() % 4 ? 10 : 150));
      char * const blockP = static_cast<char *>(pool.Alloc(num * 16, nullptr));
      ASSERT_EQ(hasRoom(num), blockP != nullptr) << "seed " << seed << " step " << step;
      if (!blockP) continue;
      int const first = static_cast<int>(blockP - baseP) / 16;
      for (int i = 0; i < num; ++i) {
        ASSERT_FALSE(used[static_cast<size_t>(first + i)]) << "seed " << seed << " step " << step;
        used[static_cast<size_t>(first + i)] = true;
      }
      blocks[first] = num;
    }
  }
}

TEST(Mem2_MasterAllocator_Threads, BlocksNeverOverlapAndAllComeBack) {
  Mem2_MasterAllocator pool(1 << 15);
  std::atomic<int> numWrong{0};
  {
    std::vector<std::jthread> threads;
    for (unsigned seed = 1; seed <= 4; ++seed)
      threads.emplace_back([&, seed] { numWrong += Churn(pool, seed, 20000, 300); });
  }
  EXPECT_EQ(0, numWrong);
  EXPECT_EQ(0, pool.GetNumBlocksInUse());
  EXPECT_EQ(0, pool.GetNumBadFrees());
  EXPECT_EQ(1 << 15, pool.GetBytesFree());
  EXPECT_NE(nullptr, pool.Alloc(1 << 15, nullptr));
}

TEST(Mem2_MasterAllocator_Threads, LongBlocksNeverOverlapAndAllComeBack) {
  Mem2_MasterAllocator pool(1 << 16);
  std::atomic<int> numWrong{0};
  {
    std::vector<std::jthread> threads;
    for (unsigned seed = 1; seed <= 4; ++seed)
      threads.emplace_back([&, seed] { numWrong += Churn(pool, seed, 4000, 5000); });
  }
  EXPECT_EQ(0, numWrong);
  EXPECT_EQ(1 << 16, pool.GetBytesFree());
  EXPECT_NE(nullptr, pool.Alloc(1 << 16, nullptr));
}

// The pool holds exactly one block for each thread, so none may ever be refused, wherever the
// others have been stopped.
TEST(Mem2_MasterAllocator_Threads, NeverRefusesWhatIsThere) {
  for (int const size : {16, 64, 240}) {
    Mem2_MasterAllocator pool(4 * size);
    std::atomic<int> numRefused{0};
    {
      std::vector<std::jthread> threads;
      for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
          for (int step = 0; step < 20000; ++step) {
            void * const blockP = pool.Alloc(size, nullptr);
            numRefused += blockP == nullptr;
            pool.Free(blockP, nullptr);
          }
        });
      }
    }
    EXPECT_EQ(0, numRefused) << size;
  }
}

TEST(Mem2_MasterAllocator_Threads, OneBlockIsFreedOnceHoweverManyTry) {
  Mem2_MasterAllocator pool(1024);
  for (int round = 0; round < 200; ++round) {
    void * const blockP = pool.Alloc(64, nullptr);
    {
      std::jthread const first([&] { pool.Free(blockP, nullptr); });
      std::jthread const second([&] { pool.Free(blockP, nullptr); });
    }
    ASSERT_EQ(round + 1, pool.GetNumBadFrees());
    ASSERT_EQ(1024, pool.GetBytesFree());
  }
}

TEST(Mem2_MasterAllocator_Threads, BlocksFreedByAnotherThreadComeBack) {
  Mem2_MasterAllocator pool(4096);
  std::atomic<void *> handed{nullptr};
  std::atomic<bool> isDone{false};
  int numWrong = 0;
  std::jthread consumer([&] {
    for (;;) {
      bool const wasDone = isDone;
      int * const numberP = static_cast<int *>(handed.exchange(nullptr));
      if (numberP) {
        numWrong += numberP[0] != numberP[9];
        pool.Free(numberP, nullptr);
      } else if (wasDone) {
        return;
      }
    }
  });
  for (int i = 0; i < 20000; ++i) {
    int * const numberP = static_cast<int *>(pool.Alloc(40, nullptr));
    if (!numberP) continue;
    numberP[0] = numberP[9] = i;
    pool.Free(handed.exchange(numberP), nullptr);
  }
  isDone = true;
  consumer.join();
  EXPECT_EQ(0, numWrong);
  EXPECT_EQ(4096, pool.GetBytesFree());
}

TEST(Mem2_MasterAllocator_Threads, StatisticsAddUp) {
  Mem2_MasterAllocator pool(1 << 16);
  Mem2_MasterAllocator::Statistics statistics("label");
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&] {
        for (int step = 0; step < 1000; ++step)
          pool.Free(pool.Alloc(24, &statistics), &statistics);
      });
    }
  }
  EXPECT_EQ(4000, statistics.GetNumAllocs());
  EXPECT_EQ(4000, statistics.GetNumFrees());
  EXPECT_EQ(0, statistics.GetBytesInUse());
}
