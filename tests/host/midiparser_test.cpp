#include "host/host_midiparser.h"

#include <cstdio>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "midi_bytes.h"

namespace {

using midi::Bytes;
using midi::Chunk;
using midi::File;
using midi::Header;
using midi::Number;
using midi::Text;
using midi::Track;
using midi::operator+;
using testing::ElementsAre;
using testing::IsEmpty;

std::string Hex(std::span<unsigned char const> iBytes) {
  std::string result;
  for (unsigned char byte : iBytes) {
    char text[8];
    std::snprintf(text, sizeof text, " %02x", static_cast<unsigned>(byte));
    result += text;
  }
  return result;
}

// Writes down what it is told, a line each.
class Recorder : public Host_MidiFileVisitor {
public:
  std::vector<std::string> mLines, mProblems;
  Host_MidiHeader mHeader;

  void BeginFile(Host_MidiHeader const & iHeader) override { mHeader = iHeader; }
  void BeginTrack(int iTrack, size_t iOffset) override {
    mLines.push_back("track " + std::to_string(iTrack) + " @" + std::to_string(iOffset));
  }
  void ChannelMessage(long long iTick, unsigned char iStatus, unsigned char iData1,
                      unsigned char iData2, size_t iOffset) override {
    Bytes const bytes = {iStatus, iData1, iData2};
    mLines.push_back(At(iTick, iOffset) + Hex(bytes));
  }
  void SysexPacket(long long iTick, unsigned char iStatus, std::span<unsigned char const> iBytes,
                   size_t iOffset) override {
    mLines.push_back(At(iTick, iOffset) + " sysex" + Hex(Bytes{iStatus}) + " |" + Hex(iBytes));
  }
  void MetaEvent(long long iTick, unsigned char iType, std::span<unsigned char const> iBytes,
                 size_t iOffset) override {
    mLines.push_back(At(iTick, iOffset) + " meta" + Hex(Bytes{iType}) + " |" + Hex(iBytes));
  }
  void EndTrack(long long iTick) override { mLines.push_back("end " + std::to_string(iTick)); }
  void UnknownChunk(size_t iOffset) override {
    mLines.push_back("unknown @" + std::to_string(iOffset));
  }
  void Problem(size_t iOffset, std::string const & iText, bool iIsLoss) override {
    mProblems.push_back(std::to_string(iOffset) + ": " + iText + (iIsLoss ? "" : " (no loss)"));
  }

private:
  static std::string At(long long iTick, size_t iOffset) {
    return std::to_string(iTick) + " @" + std::to_string(iOffset);
  }
};

Recorder Parse(Bytes const & iFile) {
  Recorder recorder;
  Host_ParseMidiFile(iFile, recorder);
  return recorder;
}

std::string ErrorOf(Bytes const & iFile) {
  try {
    Recorder recorder;
    Host_ParseMidiFile(iFile, recorder);
  } catch (Host_MidiFileError const & error) {
    return std::to_string(error.GetOffset()) + ": " + error.what();
  }
  return "none";
}

TEST(Host_ParseMidiFile, GivesTheHeader) {
  Host_MidiHeader const header = Parse(Header(1, 0, 96)).mHeader;
  EXPECT_EQ(header.mFormat, 1);
  EXPECT_EQ(header.mNumTracks, 0);
  EXPECT_EQ(header.mDivision, 96);
}

TEST(Host_ParseMidiFile, GivesChannelMessagesWithTickAndOffset) {
  EXPECT_THAT(Parse(File({0, 0x90, 60, 80, 0x83, 0x60, 0x80, 60, 64})).mLines,
              ElementsAre("track 0 @14", "0 @23 90 3c 50", "480 @28 80 3c 40", "end 480"));
}

TEST(Host_ParseMidiFile, GivesMessagesOfOneDataByte) {
  EXPECT_THAT(Parse(File({0, 0xc5, 7, 1, 0xd5, 9})).mLines,
              ElementsAre("track 0 @14", "0 @23 c5 07 00", "1 @26 d5 09 00", "end 1"));
}

TEST(Host_ParseMidiFile, RepeatsTheRunningStatus) {
  EXPECT_THAT(
      Parse(File({0, 0xb0, 7, 1, 5, 7, 2, 5, 10, 3})).mLines,
      ElementsAre("track 0 @14", "0 @23 b0 07 01", "5 @27 b0 07 02", "10 @30 b0 0a 03", "end 10"));
}

TEST(Host_ParseMidiFile, KeepsTheRunningStatusAcrossSysexAndMeta) {
  Recorder const recorder =
      Parse(File({0, 0x90, 60, 80, 0, 0xf0, 1, 0xf7, 0, 61, 80, 0, 0xff, 1, 0, 0, 62, 80}));
  EXPECT_THAT(recorder.mLines,
              ElementsAre("track 0 @14", "0 @23 90 3c 50", "0 @27 sysex f0 | f7", "0 @31 90 3d 50",
                          "0 @34 meta 01 |", "0 @38 90 3e 50", "end 0"));
  EXPECT_THAT(recorder.mProblems, IsEmpty());
}

TEST(Host_ParseMidiFile, StartsEachTrackWithoutARunningStatus) {
  Recorder const recorder =
      Parse(Header(1, 2, 480) + Track({0, 0x90, 60, 80}) + Track({0, 61, 80}));
  EXPECT_THAT(recorder.mProblems,
              ElementsAre("39: byte 0x3d stands where a status byte must; the rest of the track is "
                          "not read"));
}

TEST(Host_ParseMidiFile, GivesSysexAndMetaContents) {
  EXPECT_THAT(
      Parse(File({0, 0xf0, 3, 0x41, 0x10, 0xf7, 2, 0xf7, 1, 0xfe, 0, 0xff, 0x51, 3, 7, 0xa1, 0x20}))
          .mLines,
      ElementsAre("track 0 @14", "0 @23 sysex f0 | 41 10 f7", "2 @29 sysex f7 | fe",
                  "2 @33 meta 51 | 07 a1 20", "end 2"));
}

TEST(Host_ParseMidiFile, GivesPolyphonicPressure) {
  EXPECT_THAT(Parse(File({0, 0xa3, 60, 99})).mLines,
              ElementsAre("track 0 @14", "0 @23 a3 3c 63", "end 0"));
}

TEST(Host_ParseMidiFile, TakesTheLongestDeltaTime) {
  EXPECT_THAT(Parse(File({0xff, 0xff, 0xff, 0x7f, 0x90, 60, 80})).mLines,
              ElementsAre("track 0 @14", "268435455 @26 90 3c 50", "end 268435455"));
}

TEST(Host_ParseMidiFile, PassesOverWhatALongHeaderAdds) {
  Bytes const file = Chunk("MThd", {0, 0, 0, 1, 1, 0xe0, 9, 9}) + Track({});
  Recorder const recorder = Parse(file);
  EXPECT_THAT(recorder.mLines, ElementsAre("track 0 @16", "end 0"));
  EXPECT_THAT(recorder.mProblems, IsEmpty());
}

TEST(Host_ParseMidiFile, PassesOverChunksOfOtherKinds) {
  Bytes const file =
      Header(1, 2, 480) + Track({}) + Chunk("XFIH", {1, 2, 3}) + Track({}) + Chunk("junk", {});
  Recorder const recorder = Parse(file);
  EXPECT_THAT(recorder.mLines, ElementsAre("track 0 @14", "end 0", "unknown @26", "track 1 @37",
                                           "end 0", "unknown @49"));
  EXPECT_THAT(recorder.mProblems, IsEmpty());
}

TEST(Host_ParseMidiFile, FindsTheNextTrackBehindGarbage) {
  Bytes const file = Header(1, 2, 480) + Track({}) + Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9} + Track({});
  Recorder const recorder = Parse(file);
  EXPECT_THAT(recorder.mLines, ElementsAre("track 0 @14", "end 0", "track 1 @35", "end 0"));
  EXPECT_THAT(recorder.mProblems, ElementsAre("26: 9 bytes that are not a chunk"));
}

TEST(Host_ParseMidiFile, FindsTheNextTrackBehindGarbageThatLooksLikeAChunk) {
  // Read as a chunk, the four letters and the length would lead past the track.
  Bytes const garbage = Text("oops") + Number(20, 4);
  Bytes const file = Header(1, 2, 480) + Track({}) + garbage + Track({0, 0x90, 60, 80}) +
                     Bytes{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  EXPECT_THAT(Parse(file).mLines,
              ElementsAre("track 0 @14", "end 0", "track 1 @34", "0 @43 90 3c 50", "end 0"));
}

TEST(Host_ParseMidiFile, ReportsGarbageAtTheEnd) {
  EXPECT_THAT(Parse(File({}) + Bytes(8, 0)).mProblems,
              ElementsAre("26: 8 bytes that are not a chunk"));
  EXPECT_THAT(Parse(File({}) + Text("MTr")).mProblems,
              ElementsAre("26: the header of a chunk is cut short"));
}

TEST(Host_ParseMidiFile, ReadsATrackThatIsCutShort) {
  Bytes file = File({0, 0x90, 60, 80, 10, 0x80, 60, 64});
  file.resize(file.size() - 6);
  Recorder const recorder = Parse(file);
  EXPECT_THAT(recorder.mLines, ElementsAre("track 0 @14", "0 @23 90 3c 50", "end 10"));
  EXPECT_THAT(recorder.mProblems,
              ElementsAre("18: a track of 12 bytes where 6 are left",
                          "27: a channel message is cut short; the rest of the track is not read"));
}

TEST(Host_ParseMidiFile, ReadsOnBehindADamagedTrack) {
  Bytes const file =
      Header(1, 2, 480) + Track({0, 0x90, 60, 0x85, 0, 0, 0}) + Track({0, 0x90, 61, 80});
  Recorder const recorder = Parse(file);
  EXPECT_THAT(recorder.mLines,
              ElementsAre("track 0 @14", "end 0", "track 1 @33", "0 @42 90 3d 50", "end 0"));
  EXPECT_THAT(recorder.mProblems, ElementsAre("25: byte 0x85 stands where data must; the rest of "
                                              "the track is not read"));
}

TEST(Host_ParseMidiFile, RefusesEndlessDeltaTimes) {
  EXPECT_THAT(
      Parse(File({0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80})).mProblems,
      ElementsAre("22: a delta time is longer than four bytes; the rest of the track is not "
                  "read"));
}

TEST(Host_ParseMidiFile, RefusesEndlessLengths) {
  EXPECT_THAT(
      Parse(File({0, 0xf0, 0xff, 0xff, 0xff, 0xff, 0xff})).mProblems,
      ElementsAre("24: a length is longer than four bytes; the rest of the track is not read"));
}

TEST(Host_ParseMidiFile, RefusesBlocksThatReachBeyondTheTrack) {
  EXPECT_THAT(Parse(File({0, 0xf0, 5})).mProblems,
              ElementsAre("24: sysex of 5 bytes where 4 are left; the rest of the track is not "
                          "read"));
  EXPECT_THAT(
      Parse(File({0, 0xff, 1, 0xff, 0xff, 0xff, 0x7f})).mProblems,
      ElementsAre("25: meta event of 268435455 bytes where 4 are left; the rest of the track "
                  "is not read"));
}

TEST(Host_ParseMidiFile, RefusesStatusBytesThatFilesDoNotHold) {
  for (unsigned char const status : Bytes{0xf1, 0xf2, 0xf3, 0xf6, 0xf8, 0xfe}) {
    SCOPED_TRACE(static_cast<int>(status));
    Recorder const recorder = Parse(File({0, status, 0}));
    ASSERT_EQ(recorder.mProblems.size(), 1u);
    EXPECT_THAT(recorder.mProblems[0],
                testing::EndsWith("does not belong in a file; the rest of the "
                                  "track is not read"));
  }
}

TEST(Host_ParseMidiFile, RefusesTracksLongerThan2To40Ticks) {
  // 4096 times the longest delta time fall 4096 ticks short of 2^40.
  Bytes events;
  for (int i = 0; i < 4096; ++i)
    events = std::move(events) + Bytes{0xff, 0xff, 0xff, 0x7f, 0xd0, 1};
  Recorder const within = Parse(File(events + Bytes{0xa0, 0, 0xd0, 2}));
  EXPECT_THAT(within.mProblems, IsEmpty());
  EXPECT_EQ(within.mLines.back(), "end 1099511627776");
  Recorder const beyond = Parse(File(events + Bytes{0xa0, 1, 0xd0, 2}));
  ASSERT_EQ(beyond.mProblems.size(), 1u);
  EXPECT_THAT(beyond.mProblems[0], testing::HasSubstr("longer than 2^40 ticks"));
  EXPECT_EQ(beyond.mLines.back(), "end 1099511623680");
}

TEST(Host_ParseMidiFile, ReportsATrackWithoutItsEnd) {
  Bytes const file = Header(0, 1, 480) + Chunk("MTrk", {0, 0x90, 60, 80});
  EXPECT_THAT(Parse(file).mProblems,
              ElementsAre("26: the track has no end-of-track event (no loss)"));
}

TEST(Host_ParseMidiFile, ReportsWhatStandsBehindTheEndOfATrack) {
  Bytes const file =
      Header(1, 2, 480) + Track({0, 0xff, 0x2f, 0, 0, 0x90, 60, 80}) + Track({0, 0x90, 61, 80});
  Recorder const recorder = Parse(file);
  EXPECT_THAT(recorder.mLines,
              ElementsAre("track 0 @14", "end 0", "track 1 @34", "0 @43 90 3d 50", "end 0"));
  EXPECT_THAT(recorder.mProblems, ElementsAre("26: 8 bytes behind the end of the track"));
}

TEST(Host_ParseMidiFile, FindsTheTrackThatALongLengthHides) {
  Bytes first = Track({0, 0x90, 60, 80});
  first[7] = 20;  // reaches into the next track
  Bytes const file = Header(1, 2, 480) + first + Track({0, 0x90, 61, 80});
  Recorder const recorder = Parse(file);
  EXPECT_THAT(recorder.mLines, ElementsAre("track 0 @14", "0 @23 90 3c 50", "end 0", "track 1 @30",
                                           "0 @39 90 3d 50", "end 0"));
  EXPECT_THAT(recorder.mProblems,
              ElementsAre("30: the track ends before the length that it announces (no loss)"));
}

TEST(Host_ParseMidiFile, FindsTheTrackBehindALengthBeyondTheFile) {
  Bytes first = Track({0, 0x90, 60, 80});
  first[4] = 0x7f;
  Bytes const file = Header(1, 2, 480) + first + Track({0, 0x90, 61, 80});
  Recorder const recorder = Parse(file);
  EXPECT_THAT(recorder.mLines, ElementsAre("track 0 @14", "0 @23 90 3c 50", "end 0", "track 1 @30",
                                           "0 @39 90 3d 50", "end 0"));
  EXPECT_THAT(recorder.mProblems, ElementsAre("18: a track of 2130706440 bytes where 24 are left"));
}

TEST(Host_ParseMidiFile, FindsTheTrackBehindALengthThatIsTooShort) {
  Bytes first = Track({0, 0x90, 60, 80, 0, 0x80, 60, 64});
  first[7] = 4;
  Bytes const file = Header(1, 2, 480) + first + Track({0, 0x90, 61, 80});
  Recorder const recorder = Parse(file);
  EXPECT_THAT(recorder.mLines, ElementsAre("track 0 @14", "0 @23 90 3c 50", "end 0", "track 1 @34",
                                           "0 @43 90 3d 50", "end 0"));
  EXPECT_THAT(recorder.mProblems, ElementsAre("26: the track has no end-of-track event (no loss)",
                                              "26: 8 bytes that are not a chunk"));
}

TEST(Host_ParseMidiFile, ReadsTracksThatWereNotAnnounced) {
  Recorder const recorder = Parse(Header(1, 1, 480) + Track({}) + Track({}));
  EXPECT_THAT(recorder.mLines, ElementsAre("track 0 @14", "end 0", "track 1 @26", "end 0"));
  EXPECT_THAT(recorder.mProblems, ElementsAre("10: tracks announced: 1, found: 2 (no loss)"));
}

TEST(Host_ParseMidiFile, ReportsTracksThatAreMissing) {
  EXPECT_THAT(Parse(Header(1, 65535, 480) + Track({})).mProblems,
              ElementsAre("10: tracks announced: 65535, found: 1"));
}

TEST(Host_ParseMidiFile, RefusesWhatIsNoMidiFile) {
  EXPECT_EQ(ErrorOf({}), "0: not a Standard MIDI File: it does not begin with MThd");
  EXPECT_EQ(ErrorOf(Text("RIFF....")), "0: not a Standard MIDI File: it does not begin with MThd");
  EXPECT_EQ(ErrorOf(Text("MTh")), "0: not a Standard MIDI File: it does not begin with MThd");
}

TEST(Host_ParseMidiFile, RefusesHeadersThatAreCutShort) {
  Bytes const header = Header(0, 0, 480);
  for (size_t size = 4; size < header.size(); ++size) {
    SCOPED_TRACE(size);
    EXPECT_THAT(ErrorOf(Bytes(header.begin(), header.begin() + static_cast<long>(size))),
                testing::EndsWith("the header is cut short"));
  }
}

TEST(Host_ParseMidiFile, RefusesHeadersOfTheWrongLength) {
  EXPECT_EQ(ErrorOf(Chunk("MThd", {0, 0, 0, 0, 0})), "4: a header of 5 bytes, not 6");
  Bytes header = Header(0, 0, 480);
  header[4] = 0xff;
  EXPECT_EQ(ErrorOf(header), "4: a header of 4278190086 bytes where 6 are left");
}

TEST(Host_ParseMidiFile, RefusesUnknownFormats) {
  EXPECT_EQ(ErrorOf(Header(2, 0, 480)), "none");
  EXPECT_EQ(ErrorOf(Header(3, 0, 480)), "8: format 3; 0, 1 and 2 are known");
}

TEST(Host_ParseMidiFile, RefusesDivisionsWithoutMeaning) {
  EXPECT_EQ(ErrorOf(Header(0, 0, 0)), "12: a division of 0 ticks");
  EXPECT_EQ(ErrorOf(Header(0, 0, 0x7fff)), "none");
  EXPECT_EQ(ErrorOf(Header(0, 0, 0xe728)), "none");  // 25 frames of 40 ticks
  EXPECT_EQ(ErrorOf(Header(0, 0, 0xe700)), "13: a division of 0 ticks to the frame");
  EXPECT_EQ(ErrorOf(Header(0, 0, 0xe928)),
            "12: a division of 23 frames a second; 24, 25, 29 and 30 are known");
}

}  // namespace
