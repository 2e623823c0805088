#include "host/host_wirebytes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/host_messagelist.h"
#include "player_rig.h"

namespace {

typedef std::vector<unsigned char> Bytes;

struct Wire {
  Host_MessageList mList;
  Host_WireBytes mWire{mList};

  void Send(Bytes const & iBytes, int iOffset = 0, int iClip = 0) {
    mWire.Receive(iClip, iOffset, iBytes.data(), static_cast<int>(iBytes.size()));
  }
};

// What comes of bytes that are sent at once.
std::string MessagesOf(Bytes const & iBytes) {
  Wire wire;
  wire.Send(iBytes);
  return PrintMessages(wire.mList);
}

}  // namespace

TEST(Host_WireBytes, CutsMessagesOfEachLength) {
  EXPECT_EQ(
      "0: 90 3c 64 | 0: c0 05 | 0: d0 09 | 0: e0 01 40 | 0: a0 3c 01 | 0: b0 07 5a | 0: 80 3c "
      "40",
      MessagesOf(
          {0x90, 60, 100, 0xC0, 5, 0xD0, 9, 0xE0, 1, 64, 0xA0, 60, 1, 0xB0, 7, 90, 0x80, 60, 64}));
}

TEST(Host_WireBytes, PutsInTheStatusThatIsLeftOut) {
  EXPECT_EQ("0: 91 3c 64 | 0: 91 3e 64 | 0: 91 3c 00 | 0: c1 05 | 0: c1 06",
            MessagesOf({0x91, 60, 100, 62, 100, 60, 0, 0xC1, 5, 6}));
}

TEST(Host_WireBytes, AMessageBelongsWhereItsLastByteComes) {
  Wire wire;
  wire.Send({0x90}, 1, 1);
  wire.Send({60}, 2, 1);
  EXPECT_TRUE(wire.mWire.IsInMessage());
  wire.Send({100, 62}, 3, 1);
  wire.Send({101}, 4, 2);
  EXPECT_FALSE(wire.mWire.IsInMessage());
  EXPECT_EQ("3 #1: 90 3c 64 | 4 #2: 90 3e 65", PrintMessages(wire.mList, true));
}

TEST(Host_WireBytes, PutsASysexTogether) {
  Wire wire;
  wire.Send({0xF0, 1}, 1);
  wire.Send({2}, 2);
  wire.Send({0xF7}, 3);
  EXPECT_EQ("3: f0 01 02 f7", PrintMessages(wire.mList));
}

TEST(Host_WireBytes, LeavesRealTimeBytesOutWhereverTheyCome) {
  EXPECT_EQ("0: 90 3c 64 | 0: 90 3e 64 | 0: f0 01 02 f7",
            MessagesOf({0xF8, 0x90, 0xFE, 60, 0xF8, 100, 0xFA, 62, 0xFC, 100, 0xF0, 1, 0xF8, 2,
                        0xFB, 0xF7}));
}

TEST(Host_WireBytes, LeavesOutWhatIsOfNoClip) {
  EXPECT_EQ("0: 90 3c 64 | 0: 90 3c 00",
            MessagesOf({0x90, 60, 100, 0xF2, 1, 2, 0xF1, 3, 0xF3, 4, 0xF6, 0x90, 60, 0}));
}

TEST(Host_WireBytes, HandsOnASystemReset) {
  EXPECT_EQ("0: ff | 0: 90 3c 64", MessagesOf({0x90, 60, 0xFF, 100}));
}

TEST(Host_WireBytes, HandsOnWhatMakesNoMessage) {
  EXPECT_EQ("0: 3c | 0: 64", MessagesOf({60, 100}));
  EXPECT_EQ("0: 90 3c | 0: 80 3c 40", MessagesOf({0x90, 60, 0x80, 60, 64}));
  EXPECT_EQ("0: f0 01 | 0: 90 3c 64", MessagesOf({0xF0, 1, 0x90, 60, 100}));
  EXPECT_EQ("0: f7 | 0: f4", MessagesOf({0xF7, 0xF4}));
}

TEST(Host_WireBytes, NoStatusMayBeLeftOutBehindASysex) {
  EXPECT_EQ("0: 90 3c 64 | 0: f0 f7 | 0: 3c | 0: 00",
            MessagesOf({0x90, 60, 100, 0xF0, 0xF7, 60, 0}));
}
