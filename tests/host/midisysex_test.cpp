#include "host/host_midisysex.h"

#include <cstdio>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "midi_bytes.h"

namespace {

using midi::Bytes;
using testing::ElementsAre;
using testing::IsEmpty;

class Recorder : public Host_MidiSysexListener {
public:
  std::vector<std::string> mLines;

  void Sysex(long long iTick, std::span<unsigned char const> iContents, size_t iOffset) override {
    std::string line = At(iTick, iOffset) + "sysex";
    for (unsigned char byte : iContents)
      line += Hex(byte);
    mLines.push_back(line);
  }
  void EscapedMessage(long long iTick, unsigned char iStatus, unsigned char iData1,
                      unsigned char iData2, size_t iOffset) override {
    mLines.push_back(At(iTick, iOffset) + "message" + Hex(iStatus) + Hex(iData1) + Hex(iData2));
  }
  void EscapedBytes(size_t iOffset) override {
    mLines.push_back("bytes @" + std::to_string(iOffset));
  }
  void UnfinishedSysex(size_t iOffset) override {
    mLines.push_back("unfinished @" + std::to_string(iOffset));
  }

private:
  static std::string At(long long iTick, size_t iOffset) {
    return std::to_string(iTick) + " @" + std::to_string(iOffset) + " ";
  }
  static std::string Hex(unsigned char iByte) {
    char text[8];
    std::snprintf(text, sizeof text, " %02x", static_cast<unsigned>(iByte));
    return text;
  }
};

struct Packet {
  unsigned char mStatus;
  Bytes mBytes;
};

// Packet n stands at tick 10 n, offset 100 n.
std::vector<std::string> Join(std::vector<Packet> const & iPackets) {
  Recorder recorder;
  Host_MidiSysexJoiner joiner(recorder);
  for (size_t i = 0; i < iPackets.size(); ++i) {
    joiner.AddPacket(10 * static_cast<long long>(i), iPackets[i].mStatus, iPackets[i].mBytes,
                     100 * i);
  }
  joiner.EndTrack();
  return recorder.mLines;
}

TEST(Host_MidiSysexJoiner, GivesAWholeMessageWithoutItsEnd) {
  EXPECT_THAT(Join({{0xf0, {0x41, 0x10, 0xf7}}}), ElementsAre("0 @0 sysex 41 10"));
}

TEST(Host_MidiSysexJoiner, GivesAnEmptyMessage) {
  EXPECT_THAT(Join({{0xf0, {0xf7}}}), ElementsAre("0 @0 sysex"));
}

TEST(Host_MidiSysexJoiner, JoinsPacketsAtTheTimeOfTheFirst) {
  EXPECT_THAT(Join({{0xf0, {0xf7}}, {0xf0, {1, 2}}, {0xf7, {3}}, {0xf7, {4, 0xf7}}}),
              ElementsAre("0 @0 sysex", "10 @100 sysex 01 02 03 04"));
}

TEST(Host_MidiSysexJoiner, EndsAMessageWithAPacketThatHoldsItsEndAlone) {
  EXPECT_THAT(Join({{0xf0, {1, 2}}, {0xf7, {0xf7}}}), ElementsAre("0 @0 sysex 01 02"));
}

TEST(Host_MidiSysexJoiner, JoinsEmptyPackets) {
  EXPECT_THAT(Join({{0xf0, {}}, {0xf7, {}}, {0xf7, {7, 0xf7}}}), ElementsAre("0 @0 sysex 07"));
}

TEST(Host_MidiSysexJoiner, ReportsAMessageThatTheNextOneCutsOff) {
  EXPECT_THAT(Join({{0xf0, {1, 2}}, {0xf0, {3, 0xf7}}}),
              ElementsAre("unfinished @0", "10 @100 sysex 03"));
}

TEST(Host_MidiSysexJoiner, ReportsAMessageThatTheTrackCutsOff) {
  EXPECT_THAT(Join({{0xf0, {1, 2}}, {0xf7, {3}}}), ElementsAre("unfinished @0"));
}

TEST(Host_MidiSysexJoiner, StartsAnewWithTheNextTrack) {
  Recorder recorder;
  Host_MidiSysexJoiner joiner(recorder);
  joiner.AddPacket(0, 0xf0, Bytes{1, 2}, 0);
  joiner.EndTrack();
  joiner.AddPacket(0, 0xf7, Bytes{0x90, 60, 80}, 50);
  joiner.EndTrack();
  EXPECT_THAT(recorder.mLines, ElementsAre("unfinished @0", "0 @50 message 90 3c 50"));
}

TEST(Host_MidiSysexJoiner, TakesChannelMessagesFromAnEscape) {
  EXPECT_THAT(Join({{0xf7, {0x90, 60, 80, 0xc1, 5}}}),
              ElementsAre("0 @0 message 90 3c 50", "0 @0 message c1 05 00"));
}

TEST(Host_MidiSysexJoiner, TakesRunningStatusFromAnEscape) {
  EXPECT_THAT(Join({{0xf7, {0xb0, 7, 1, 7, 2}}}),
              ElementsAre("0 @0 message b0 07 01", "0 @0 message b0 07 02"));
}

TEST(Host_MidiSysexJoiner, TakesAWholeSysexFromAnEscape) {
  EXPECT_THAT(Join({{0xf7, {0xf0, 1, 2, 0xf7, 0xd0, 3}}}),
              ElementsAre("0 @0 sysex 01 02", "0 @0 message d0 03 00"));
}

TEST(Host_MidiSysexJoiner, JoinsAnEscapedSysexWithWhatFollows) {
  EXPECT_THAT(Join({{0xf7, {0xf0, 1, 2}}, {0xf7, {3, 0xf7}}}), ElementsAre("0 @0 sysex 01 02 03"));
}

TEST(Host_MidiSysexJoiner, CountsOtherEscapedBytesByMessage) {
  // A song position with its data, a clock, then data without a status.
  EXPECT_THAT(Join({{0xf7, {0xf2, 1, 2}}, {0xf7, {0xf8, 0xfa}}, {0xf7, {5, 6}}}),
              ElementsAre("bytes @0", "bytes @100", "bytes @100", "bytes @200"));
}

TEST(Host_MidiSysexJoiner, CountsAnEscapedMessageThatIsCutShort) {
  EXPECT_THAT(Join({{0xf7, {0x90, 60}}}), ElementsAre("bytes @0"));
  EXPECT_THAT(Join({{0xf7, {0x90}}}), ElementsAre("bytes @0"));
}

TEST(Host_MidiSysexJoiner, PassesOverAnEmptyEscape) {
  EXPECT_THAT(Join({{0xf7, {}}}), IsEmpty());
}

}  // namespace
