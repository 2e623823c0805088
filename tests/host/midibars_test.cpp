#include "host/host_midibars.h"

#include <gtest/gtest.h>

#include "host/host_miditiming.h"

namespace {

std::string Ticks(Host_BarMap const & iMap, Host_BarPosition const & iPosition) {
  Time_Tick tick(0);
  std::string whyNot;
  return iMap.ToTick(iPosition, tick, whyNot) ? std::to_string(tick.AsInt64()) : whyNot;
}

std::string Bar(Host_BarMap const & iMap, long long iTick) {
  Host_BarPosition const position = iMap.ToBar(Time_Tick(iTick));
  return std::to_string(position.mBar) + ":" + std::to_string(position.mBeat) + ":" +
         std::to_string(position.mTick);
}

TEST(Host_BarMap, CountsBarsAndBeatsFromOne) {
  Host_BarMap const map;
  EXPECT_EQ(Ticks(map, {1, 1, 0}), "0");
  EXPECT_EQ(Ticks(map, {1, 2, 5}), "960005");
  EXPECT_EQ(Ticks(map, {3, 1, 0}), "7680000");
  EXPECT_EQ(Bar(map, 0), "1:1:0");
  EXPECT_EQ(Bar(map, 960005), "1:2:5");
  EXPECT_EQ(Bar(map, 3839999), "1:4:959999");
  EXPECT_EQ(Bar(map, 3840000), "2:1:0");
}

TEST(Host_BarMap, FollowsTimeSignatures) {
  // Two bars of 4/4, then 3/4, then 6/8 from bar 5.
  Host_BarMap const map({{Time_Tick(7680000), 3, 4}, {Time_Tick(13440000), 6, 8}});
  EXPECT_EQ(Ticks(map, {3, 3, 0}), "9600000");
  EXPECT_EQ(Ticks(map, {4, 1, 0}), "10560000");
  EXPECT_EQ(Ticks(map, {5, 1, 0}), "13440000");
  EXPECT_EQ(Ticks(map, {5, 6, 0}), "15840000");
  EXPECT_EQ(Ticks(map, {6, 1, 0}), "16320000");
  EXPECT_EQ(Bar(map, 9600000), "3:3:0");
  EXPECT_EQ(Bar(map, 15840000), "5:6:0");
}

TEST(Host_BarMap, BeginsABarWhereASignatureStands) {
  // In the middle of bar 1.
  Host_BarMap const map({{Time_Tick(1920000), 2, 4}});
  EXPECT_EQ(Bar(map, 1919999), "1:2:959999");
  EXPECT_EQ(Bar(map, 1920000), "2:1:0");
  EXPECT_EQ(Ticks(map, {2, 1, 0}), "1920000");
  EXPECT_EQ(Ticks(map, {3, 1, 0}), "3840000");
}

TEST(Host_BarMap, TakesTheFirstSignatureFromTheBeginning) {
  EXPECT_EQ(Ticks(Host_BarMap({{Time_Tick(0), 3, 4}}), {2, 1, 0}), "2880000");
}

TEST(Host_BarMap, RefusesPlacesThatDoNotExist) {
  Host_BarMap const map({{Time_Tick(0), 6, 8}});
  EXPECT_EQ(Ticks(map, {0, 1, 0}), "bars count from 1 to 1073741824");
  EXPECT_EQ(Ticks(map, {1073741825, 1, 0}), "bars count from 1 to 1073741824");
  EXPECT_EQ(Ticks(map, {3, 7, 0}), "bar 3 has beats 1 to 6");
  EXPECT_EQ(Ticks(map, {3, 0, 0}), "bar 3 has beats 1 to 6");
  EXPECT_EQ(Ticks(map, {3, 6, 479999}), "8639999");
  EXPECT_EQ(Ticks(map, {3, 6, 480000}), "a beat of bar 3 has ticks 0 to 479999");
}

TEST(Host_MidiTiming, GivesTheNearestTickTiesUpward) {
  EXPECT_EQ(Host_MidiTiming(480).ToTick(7).AsInt64(), 14000);
  EXPECT_EQ(Host_MidiTiming(7).ToTick(1).AsInt64(), 137143);   // 137142.86
  EXPECT_EQ(Host_MidiTiming(7).ToTick(2).AsInt64(), 274286);   // 274285.71
  EXPECT_EQ(Host_MidiTiming(7).ToTick(3).AsInt64(), 411429);   // 411428.57
  EXPECT_EQ(Host_MidiTiming(7).ToTick(4).AsInt64(), 548571);   // 548571.43
  EXPECT_EQ(Host_MidiTiming(0x3c00).ToTick(1).AsInt64(), 63);  // 62.5
  EXPECT_EQ(Host_MidiTiming(32767).ToTick(32767).AsInt64(), 960000);
}

TEST(Host_MidiTiming, StaysExactFarOut) {
  EXPECT_EQ(Host_MidiTiming(1).ToTick(1099511627776).AsInt64(), 1055531162664960000);
  EXPECT_EQ(Host_MidiTiming(7).ToTick(1099511627776).AsInt64(), 150790166094994286);
}

TEST(Host_MidiTiming, StaysWithinTheLastTick) {
  constexpr long long kLast = 9223372036854775807;
  Host_MidiTiming const timing(15);  // 64000 library ticks each
  EXPECT_EQ(timing.ToFileTick(Time_Tick(kLast)), 144115188075856);
  EXPECT_EQ(timing.ToTick(144115188075855).AsInt64(), 9223372036854720000);
  EXPECT_EQ(timing.ToTick(144115188075856).AsInt64(), kLast);
  EXPECT_EQ(timing.ToTick(kLast).AsInt64(), kLast);
  EXPECT_FALSE(timing.IsOnGrid(Time_Tick(kLast - 1)));
}

TEST(Host_MidiTiming, LaysFramesOutAt120BeatsAMinute) {
  Host_MidiTiming const timing(0xe728);  // 25 frames of 40 ticks: milliseconds
  EXPECT_TRUE(timing.IsSMPTE());
  EXPECT_EQ(timing.GetFramesPerSecond(), 25);
  EXPECT_EQ(timing.GetTicks(), 40);
  EXPECT_EQ(timing.ToTick(1).AsInt64(), 1920);
  EXPECT_EQ(timing.ToTick(1000).AsInt64(), 1920000);
}

TEST(Host_MidiTiming, Takes29For30000FramesIn1001Seconds) {
  Host_MidiTiming const timing(0xe301);
  EXPECT_EQ(timing.ToTick(30000).AsInt64(), 1001ll * 1920000);
  EXPECT_EQ(timing.ToTick(1).AsInt64(), 64064);
}

TEST(Host_MidiTiming, KnowsPartsOfAQuarterNote) {
  EXPECT_FALSE(Host_MidiTiming(480).IsSMPTE());
  EXPECT_EQ(Host_MidiTiming(480).GetTicks(), 480);
  EXPECT_EQ(Host_MidiTiming(480).GetFramesPerSecond(), 0);
}

}  // namespace
