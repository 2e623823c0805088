#include "host/host_midiring.h"

#include <array>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "support/realtime_scope.h"

namespace {

typedef std::vector<unsigned char> Bytes;

bool Push(Host_MidiRing & ioRing, long long iTime, Bytes const & iBytes) {
  return ioRing.Push(iTime, iBytes.data(), static_cast<int>(iBytes.size()));
}

// Takes out all there is, as in "5: 144 60 100 | 6: 240".
std::string PopAll(Host_MidiRing & ioRing) {
  std::string text;
  Bytes message;
  for (long long time; ioRing.Peek(time);) {
    ioRing.Pop(message);
    text += (text.empty() ? "" : " | ") + std::to_string(time) + ":";
    for (unsigned char byte : message)
      text += " " + std::to_string(byte);
  }
  return text;
}

}  // namespace

TEST(Host_MidiRing, IsEmptyAtFirst) {
  Host_MidiRing const ring(64);
  long long time = 7;
  EXPECT_FALSE(ring.Peek(time));
  EXPECT_EQ(7, time);
}

TEST(Host_MidiRing, GivesMessagesInTheirOrder) {
  Host_MidiRing ring(64);
  EXPECT_TRUE(Push(ring, 5, {144, 60, 100}));
  EXPECT_TRUE(Push(ring, -6, {192, 9}));
  EXPECT_EQ("5: 144 60 100 | -6: 192 9", PopAll(ring));
}

TEST(Host_MidiRing, PeekingTakesNothingOut) {
  Host_MidiRing ring(64);
  Push(ring, 5, {144, 60, 100});
  long long time = 0;
  EXPECT_TRUE(ring.Peek(time));
  EXPECT_TRUE(ring.Peek(time));
  EXPECT_EQ(5, time);
}

TEST(Host_MidiRing, RefusesWhatHasNoRoom) {
  Host_MidiRing ring(30);  // 32
  EXPECT_TRUE(Push(ring, 1, {144, 60, 100}));
  EXPECT_TRUE(Push(ring, 2, {192, 9}));
  EXPECT_FALSE(Push(ring, 3, {192, 9}));
  EXPECT_EQ("1: 144 60 100 | 2: 192 9", PopAll(ring));
  EXPECT_TRUE(Push(ring, 3, {192, 9}));
}

TEST(Host_MidiRing, TakesWhatJustFits) {
  Host_MidiRing ring(32);
  EXPECT_TRUE(Push(ring, 1, {144, 60, 100}));  // 15
  EXPECT_TRUE(Push(ring, 2, {144, 61, 100}));  // 30
  EXPECT_FALSE(Push(ring, 3, {}));
  Host_MidiRing small(16);
  EXPECT_TRUE(Push(small, 1, {144, 60, 100}));
  EXPECT_EQ("1: 144 60 100", PopAll(small));
}

TEST(Host_MidiRing, LongMessagesLeaveAQuarterToShortOnes) {
  Host_MidiRing ring(64);
  EXPECT_FALSE(Push(ring, 1, Bytes(37, 1)));  // 12 and 37 and 16 are one too many
  EXPECT_TRUE(Push(ring, 1, Bytes(36, 1)));
  EXPECT_TRUE(Push(ring, 2, {128, 60, 64}));
}

TEST(Host_MidiRing, GoesRoundItsEnd) {
  Host_MidiRing ring(32);
  std::string expected, found;
  for (int i = 0; i < 100; ++i) {
    unsigned char const pitch = static_cast<unsigned char>(i);
    ASSERT_TRUE(Push(ring, i, {144, pitch, 100}));
    expected += std::to_string(i) + ": 144 " + std::to_string(i) + " 100;";
    found += PopAll(ring) + ";";
  }
  EXPECT_EQ(expected, found);
}

TEST(Host_MidiRing, PushesInRealTime) {
  Host_MidiRing ring(64);
  std::array<unsigned char, 3> const note{144, 60, 100};
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              for (int i = 0; i < 100; ++i)
                ring.Push(i, note.data(), 3);
            }));
}

TEST(Host_MidiRing, HandsOverBetweenThreads) {
  constexpr int kNumMessages = 20000;
  Host_MidiRing ring(256);
  std::thread sender([&ring] {
    for (int i = 0; i < kNumMessages;) {
      Bytes const message(static_cast<size_t>(i % 7), static_cast<unsigned char>(i % 251));
      if (Push(ring, i, message)) {
        ++i;
      } else {
        std::this_thread::yield();
      }
    }
  });
  Bytes message;
  int numWrong = 0;
  for (int i = 0; i < kNumMessages;) {
    long long time = 0;
    if (!ring.Peek(time)) {
      std::this_thread::yield();
      continue;
    }
    ring.Pop(message);
    Bytes const expected(static_cast<size_t>(i % 7), static_cast<unsigned char>(i % 251));
    if (time != i || message != expected) ++numWrong;
    ++i;
  }
  sender.join();
  EXPECT_EQ(0, numWrong);
}
