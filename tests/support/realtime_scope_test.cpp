#include "support/realtime_scope.h"

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Both keep the compiler from taking a pair of calls away.
void Keep(void * iP) {
  asm volatile("" : : "r"(iP) : "memory");
}

template <class F>
int CountOf(RealtimeViolation iKind, F const & iBody) {
  RealtimeScope const scope;
  iBody();
  return scope.GetNumViolations(iKind);
}

// Plants one violation. Where the build cannot see its kind, it must not be counted either.
template <class F>
void ExpectSeen(RealtimeViolation iKind, F const & iBody) {
  int const num = CountOf(iKind, iBody);
  EXPECT_EQ(RealtimeScope::CanSee(iKind), num > 0) << num;
}

}  // namespace

TEST(RealtimeScope, CountsNothingInPlainWork) {
  int numbers[100] = {};
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              for (int i = 1; i < 100; ++i)
                numbers[i] = numbers[i - 1] + i;
            }));
  EXPECT_EQ(4950, numbers[99]);
}

TEST(RealtimeScope, CountsNothingInAtomicWork) {
  std::atomic<int> number{0};
  EXPECT_EQ("", RealtimeViolationsOf([&] { ++number; }));
}

TEST(RealtimeScope, SeesMallocAndFree) {
  ExpectSeen(RealtimeViolation::kHeap, [] {
    void * const p = std::malloc(100);
    Keep(p);
    std::free(p);
  });
}

TEST(RealtimeScope, SeesFreeAlone) {
  void * const p = std::malloc(100);
  ExpectSeen(RealtimeViolation::kHeap, [p] { std::free(p); });
}

TEST(RealtimeScope, SeesCalloc) {
  void * p = nullptr;
  ExpectSeen(RealtimeViolation::kHeap, [&p] { p = std::calloc(3, 7); });
  std::free(p);
}

TEST(RealtimeScope, SeesRealloc) {
  void * p = std::malloc(10);
  ExpectSeen(RealtimeViolation::kHeap, [&p] { p = std::realloc(p, 10000); });
  std::free(p);
}

TEST(RealtimeScope, SeesAlignedAlloc) {
  void * p = nullptr;
  ExpectSeen(RealtimeViolation::kHeap, [&p] { p = std::aligned_alloc(64, 128); });
  EXPECT_EQ(0u, reinterpret_cast<size_t>(p) % 64);
  std::free(p);
}

TEST(RealtimeScope, SeesNew) {
  int * p = nullptr;
  ExpectSeen(RealtimeViolation::kHeap, [&p] { p = new int(1); });
  delete p;
}

TEST(RealtimeScope, SeesDelete) {
  int * const p = new int(1);
  ExpectSeen(RealtimeViolation::kHeap, [p] { delete p; });
}

TEST(RealtimeScope, SeesOveralignedNew) {
  struct alignas(64) Wide {
    int mNumber = 0;
  };
  Wide * p = nullptr;
  ExpectSeen(RealtimeViolation::kHeap, [&p] { p = new Wide; });
  delete p;
}

TEST(RealtimeScope, SeesAVectorGrow) {
  std::vector<int> numbers;
  ExpectSeen(RealtimeViolation::kHeap, [&] { numbers.push_back(1); });
}

TEST(RealtimeScope, SeesAMutex) {
  std::mutex mutex;
  ExpectSeen(RealtimeViolation::kLock, [&] { std::lock_guard const lock(mutex); });
}

TEST(RealtimeScope, SeesASharedMutex) {
  std::shared_mutex mutex;
  ExpectSeen(RealtimeViolation::kLock, [&] { std::shared_lock const lock(mutex); });
  ExpectSeen(RealtimeViolation::kLock, [&] { std::unique_lock const lock(mutex); });
}

TEST(RealtimeScope, SeesAConditionWait) {
  std::mutex mutex;
  std::condition_variable condition;
  std::unique_lock lock(mutex);
  ExpectSeen(RealtimeViolation::kWait,
             [&] { condition.wait_for(lock, std::chrono::microseconds(1)); });
}

// What waiting on an atomic comes down to. The word is not what is waited on, so nothing waits.
TEST(RealtimeScope, SeesAFutexWait) {
  int word = 0;
  ExpectSeen(RealtimeViolation::kWait,
             [&word] { syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, 1, nullptr, nullptr, 0); });
}

TEST(RealtimeScope, SeesASleep) {
  ExpectSeen(RealtimeViolation::kWait,
             [] { std::this_thread::sleep_for(std::chrono::nanoseconds(1)); });
}

TEST(RealtimeScope, SeesAYield) {
  ExpectSeen(RealtimeViolation::kWait, [] { std::this_thread::yield(); });
}

TEST(RealtimeScope, SeesAFileOpenedAndClosed) {
  ExpectSeen(RealtimeViolation::kSystem, [] {
    if (std::FILE * const file = std::fopen(".", "r")) std::fclose(file);
  });
}

TEST(RealtimeScope, SeesAFileStream) {
  std::string const path = testing::TempDir() + "realtime_scope_test";
  ExpectSeen(RealtimeViolation::kSystem, [&] { std::ofstream(path) << "text"; });
  std::remove(path.c_str());
}

TEST(RealtimeScope, SeesATextPrinted) {
  ExpectSeen(RealtimeViolation::kSystem, [] { std::fprintf(stderr, "%d\n", 1); });
}

TEST(RealtimeScope, SeesAThrow) {
  ExpectSeen(RealtimeViolation::kThrow, [] {
    try {
      throw 1;
    } catch (int) {
    }
  });
}

TEST(RealtimeScope, NamesTheFirstFunction) {
  int * p = nullptr;
  RealtimeScope const scope;
  p = new int(1);
  Keep(p);
  char const * const first = scope.GetFirst();
  delete p;
  EXPECT_STREQ("malloc", first);
}

TEST(RealtimeScope, TellsTheNumberOfViolations) {
  int * p = nullptr;
  EXPECT_EQ("1 violations, first malloc", RealtimeViolationsOf([&] {
              p = new int(1);
              Keep(p);
            }));
  delete p;
}

TEST(RealtimeScope, CountsOnlyInsideTheScope) {
  int * const before = new int(1);
  int num = 0;
  {
    RealtimeScope const scope;
    num = scope.GetNumViolations();
  }
  delete before;
  EXPECT_EQ(0, num);
}

TEST(RealtimeScope, CountsOnlyItsOwnThread) {
  std::atomic<int> step{0};
  std::thread other([&] {
    while (step == 0) {
    }
    delete new int(1);
    step = 2;
  });
  std::string const violations = RealtimeViolationsOf([&] {
    step = 1;
    while (step == 1) {
    }
  });
  other.join();
  EXPECT_EQ("", violations);
}

TEST(RealtimeScope, NestedScopesCountApart) {
  RealtimeScope const outer;
  int inside = 0;
  {
    RealtimeScope const inner;
    int * const p = new int(1);
    Keep(p);
    delete p;
    inside = inner.GetNumViolations();
  }
  int const outside = outer.GetNumViolations();
  EXPECT_EQ(2, inside);
  EXPECT_EQ(0, outside);
}
