#include "host/host_blockclock.h"

#include <gtest/gtest.h>

#include "support/realtime_scope.h"

namespace {

// A sample is 1000 nanoseconds long.
constexpr double kRate = 1e6;
constexpr long long kMillisecond = 1'000'000;

}  // namespace

TEST(Host_BlockClock, BeginsWhenTheFirstBlockComes) {
  Host_BlockClock clock(kRate);
  clock.BeginBlock(5000, 10);
  EXPECT_EQ(5000, clock.GetTime(0));
  EXPECT_EQ(14000, clock.GetTime(9));
}

TEST(Host_BlockClock, StaysEvenWhenBlocksComeUnevenly) {
  Host_BlockClock clock(kRate);
  clock.BeginBlock(0, 1000);
  clock.BeginBlock(kMillisecond + 64000, 1000);  // 64 microseconds late
  EXPECT_EQ(kMillisecond + 1000, clock.GetTime(0));
  clock.BeginBlock(2 * kMillisecond + 1000 - 6400, 1000);
  EXPECT_EQ(2 * kMillisecond + 1000 - 100, clock.GetTime(0));
}

TEST(Host_BlockClock, FollowsAClockThatRunsFaster) {
  Host_BlockClock clock(kRate);
  long long now = 0;
  for (int i = 0; i < 2000; ++i, now += 999'000)
    clock.BeginBlock(now, 1000);
  clock.BeginBlock(now, 1000);
  // A block's time is 1000 too long each, which is made up for where it is late by 64 times that.
  EXPECT_EQ(64000 - 1000, clock.GetTime(0) - now);
}

TEST(Host_BlockClock, BeginsAnewAfterAPause) {
  Host_BlockClock clock(kRate);
  clock.BeginBlock(0, 1000);
  clock.BeginBlock(1000 * kMillisecond, 1000);
  EXPECT_EQ(1000 * kMillisecond, clock.GetTime(0));
}

TEST(Host_BlockClock, BeginsAnewFromFiftyMillisecondsOff) {
  Host_BlockClock at(kRate);
  at.BeginBlock(0, 0);
  at.BeginBlock(50 * kMillisecond, 0);
  EXPECT_EQ(781250, at.GetTime(0));
  Host_BlockClock beyond(kRate);
  beyond.BeginBlock(0, 0);
  beyond.BeginBlock(50 * kMillisecond + 1, 0);
  EXPECT_EQ(50 * kMillisecond + 1, beyond.GetTime(0));
}

TEST(Host_BlockClock, WorksInRealTime) {
  Host_BlockClock clock(kRate);
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              for (int i = 0; i < 100; ++i)
                clock.BeginBlock(i * kMillisecond, 1000);
            }));
}
