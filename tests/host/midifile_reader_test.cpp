// What a file as a whole becomes: header, tracks, time, what goes wrong with files of the system.
#include <cstdio>
#include <fstream>
#include <system_error>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "clip_print.h"
#include "foundation/time_convert.h"
#include "host/host_midifile.h"
#include "ndo/ndo_manager.h"

namespace {

using midi::Bytes;
using midi::File;
using midi::Header;
using midi::PrintClip;
using midi::PrintClips;
using midi::PrintNotKept;
using midi::PrintProblems;
using midi::Read;
using midi::Text;
using midi::Track;
using testing::ElementsAre;
using testing::IsEmpty;
using midi::operator+;

Bytes Tempo(unsigned char iDelta, unsigned iMicroseconds) {
  return Bytes{iDelta, 0xff, 0x51, 3} + midi::Number(iMicroseconds, 3);
}

Bytes Signature(unsigned char iDelta, unsigned char iNumerator, unsigned char iPower) {
  return {iDelta, 0xff, 0x58, 4, iNumerator, iPower, 24, 8};
}

std::vector<std::string> PrintTempo(Host_MidiFile const & iFile) {
  std::vector<std::string> result;
  for (Host_TempoChange const & change : iFile.mTempoChanges) {
    char text[64];
    std::snprintf(text, sizeof text, "%lld: %.4f", change.mTime.AsInt64(), change.mBeatsPerMinute);
    result.push_back(text);
  }
  return result;
}

std::vector<std::string> PrintSignatures(Host_MidiFile const & iFile) {
  std::vector<std::string> result;
  for (Host_TimeSignature const & signature : iFile.mTimeSignatures) {
    result.push_back(std::to_string(signature.mTime.AsInt64()) + ": " +
                     std::to_string(signature.mNumerator) + "/" +
                     std::to_string(signature.mDenominator));
  }
  return result;
}

TEST(Host_ReadMidiFile, GivesTheHeader) {
  Host_MidiFile const file = Read(Header(1, 2, 96) + Track({}) + Track({}));
  EXPECT_EQ(file.mHeader.mFormat, 1);
  EXPECT_EQ(file.mHeader.mNumTracks, 2);
  EXPECT_EQ(file.mTiming.GetTicks(), 96);
  EXPECT_FALSE(file.mTiming.IsSMPTE());
}

TEST(Host_ReadMidiFile, GivesTracksWithTheirNamesAndEnds) {
  Host_MidiFile const file = Read(
      Header(1, 2, 480) + Track({0, 0xff, 3, 2, 'H', 'i', 5, 0xff, 1, 0}) + Track({2, 0xd0, 1}));
  ASSERT_EQ(file.mTracks.size(), 2u);
  EXPECT_EQ(file.mTracks[0].mName, "Hi");
  EXPECT_EQ(file.mTracks[0].mEnd.AsInt64(), 10000);
  EXPECT_EQ(file.mTracks[1].mName, "");
  EXPECT_EQ(file.mTracks[1].mEnd.AsInt64(), 4000);
  EXPECT_EQ(file.GetEnd().AsInt64(), 10000);
}

TEST(Host_ReadMidiFile, CountsFurtherTrackNames) {
  Host_MidiFile const file = Read(File({0, 0xff, 3, 1, 'a', 0, 0xff, 3, 1, 'b'}));
  EXPECT_EQ(file.mTracks[0].mName, "a");
  EXPECT_THAT(PrintNotKept(file), ElementsAre("1 further track name"));
}

TEST(Host_ReadMidiFile, MakesNoClipOfATrackWithoutEvents) {
  Host_MidiFile const file = Read(Header(1, 3, 480) + Track({}) + Track({0, 0xd2, 1}) + Track({}));
  EXPECT_EQ(file.mTracks.size(), 3u);
  EXPECT_THAT(PrintClips(file), ElementsAre("1/2"));
}

TEST(Host_ReadMidiFile, OrdersClipsByTrackThenChannel) {
  Host_MidiFile const file =
      Read(Header(1, 2, 480) + Track({0, 0xd5, 1, 0, 0xd0, 1, 0, 0xd9, 1}) + Track({0, 0xd0, 1}));
  EXPECT_THAT(PrintClips(file), ElementsAre("0/0", "0/5", "0/9", "1/0"));
}

TEST(Host_ReadMidiFile, ReadsAFileWithoutTracks) {
  Host_MidiFile const file = Read(Header(1, 0, 480));
  EXPECT_THAT(PrintClips(file), IsEmpty());
  EXPECT_EQ(file.GetEnd().AsInt64(), 0);
  EXPECT_EQ(file.mReport.GetNumProblems(), 0);
}

TEST(Host_ReadMidiFile, RoundsToTheNearestTick) {
  // 960000 / 7 = 137142.86, and twice that 274285.71; the length is the difference of the two.
  Host_MidiFile const file =
      Read(Header(0, 1, 7) + Track({1, 0x90, 60, 80, 1, 60, 0, 5, 0x90, 61, 80, 7, 61, 0}));
  EXPECT_THAT(
      PrintClip(*file.mClips[0].mChunk.Get()),
      ElementsAre("137143: note 60 +137143 on 80 off 64", "960000: note 61 +960000 on 80 off 64"));
}

TEST(Host_ReadMidiFile, KeepsTempoChanges) {
  Host_MidiFile const file = Read(File(Tempo(0, 500000) + Tempo(100, 400000)));
  EXPECT_THAT(PrintTempo(file), ElementsAre("0: 120.0000", "200000: 150.0000"));
  EXPECT_THAT(PrintNotKept(file), IsEmpty());
}

TEST(Host_ReadMidiFile, TakesTempoFromAllTracksInOrderOfTime) {
  Host_MidiFile const file = Read(Header(1, 2, 480) + Track(Tempo(0, 500000) + Tempo(100, 400000)) +
                                  Track(Tempo(50, 600000)));
  EXPECT_THAT(PrintTempo(file), ElementsAre("0: 120.0000", "100000: 100.0000", "200000: 150.0000"));
}

TEST(Host_ReadMidiFile, KeepsTheLastTempoAtOneTick) {
  Host_MidiFile const file = Read(Header(1, 2, 480) + Track(Tempo(7, 500000)) +
                                  Track(Tempo(7, 600000) + Tempo(0, 400000)));
  EXPECT_THAT(PrintTempo(file), ElementsAre("14000: 150.0000"));
  EXPECT_THAT(PrintNotKept(file), ElementsAre("2 tempo replaced by a later one at the same tick"));
}

TEST(Host_ReadMidiFile, CountsATempoThatIsNone) {
  Host_MidiFile const file = Read(File(Tempo(0, 0) + Bytes{0, 0xff, 0x51, 2, 7, 7}));
  EXPECT_THAT(PrintTempo(file), IsEmpty());
  EXPECT_THAT(PrintNotKept(file), ElementsAre("2 tempo that is no tempo"));
}

TEST(Host_MidiFile_FillTempoMap, Has120UpToTheFirstChange) {
  Time_TempoMap map(77.0);
  map.SetTempoAt(Time_Tick(5), 33.0);
  Read(File(Tempo(10, 600000))).FillTempoMap(map);
  EXPECT_DOUBLE_EQ(map.GetTempoAt(Time_Tick(0)), 120.0);
  EXPECT_DOUBLE_EQ(map.GetTempoAt(Time_Tick(19999)), 120.0);
  EXPECT_DOUBLE_EQ(map.GetTempoAt(Time_Tick(20000)), 100.0);
}

TEST(Host_MidiFile_FillTempoMap, HasTheTempoAtTheBeginning) {
  Time_TempoMap map;
  Read(File(Tempo(0, 600000))).FillTempoMap(map);
  EXPECT_DOUBLE_EQ(map.GetTempoAt(Time_Tick(-1)), 100.0);
  EXPECT_DOUBLE_EQ(map.GetTempoAt(Time_Tick(0)), 100.0);
}

TEST(Host_MidiFile_FillTempoMap, Has120WithoutAnyTempo) {
  Time_TempoMap map(77.0);
  Read(File({})).FillTempoMap(map);
  EXPECT_DOUBLE_EQ(map.GetTempoAt(Time_Tick(0)), 120.0);
}

TEST(Host_ReadMidiFile, LeavesTheTempoOfTheProcessAlone) {
  Read(File(Tempo(0, 600000)));
  EXPECT_DOUBLE_EQ(Time_Convert::GetDefaultTempoMap().GetTempoAt(Time_Tick(0)), 120.0);
}

TEST(Host_ReadMidiFile, KeepsTimeSignatures) {
  Host_MidiFile const file = Read(File(Signature(0, 3, 2) + Signature(100, 6, 3)));
  EXPECT_THAT(PrintSignatures(file), ElementsAre("0: 3/4", "200000: 6/8"));
}

TEST(Host_ReadMidiFile, KeepsTheLastTimeSignatureAtOneTick) {
  Host_MidiFile const file = Read(File(Signature(0, 3, 2) + Signature(0, 6, 3)));
  EXPECT_THAT(PrintSignatures(file), ElementsAre("0: 6/8"));
  EXPECT_THAT(PrintNotKept(file),
              ElementsAre("1 time signature replaced by a later one at the same tick"));
}

TEST(Host_ReadMidiFile, CountsATimeSignatureThatIsNone) {
  Host_MidiFile const file =
      Read(File(Signature(0, 0, 2) + Signature(0, 4, 11) + Bytes{0, 0xff, 0x58, 1, 4}));
  EXPECT_THAT(PrintSignatures(file), IsEmpty());
  EXPECT_THAT(PrintNotKept(file), ElementsAre("3 time signature that is no time signature"));
}

TEST(Host_ReadMidiFile, TakesTempoAndMeterOfFormat2FromTheFirstTrack) {
  Host_MidiFile const file =
      Read(Header(2, 2, 480) + Track(Tempo(0, 600000) + Signature(0, 3, 2) + Bytes{0, 0xd0, 1}) +
           Track(Tempo(0, 400000) + Signature(0, 6, 3) + Bytes{3, 0xd0, 2}));
  EXPECT_THAT(PrintTempo(file), ElementsAre("0: 100.0000"));
  EXPECT_THAT(PrintSignatures(file), ElementsAre("0: 3/4"));
  EXPECT_THAT(PrintNotKept(file),
              ElementsAre("1 tempo of a further sequence of format 2",
                          "1 time signature of a further sequence of format 2"));
  ASSERT_THAT(PrintClips(file), ElementsAre("0/0", "1/0"));
  EXPECT_THAT(PrintClip(*file.mClips[1].mChunk.Get()), ElementsAre("6000: mono 2"));
}

TEST(Host_ReadMidiFile, LaysFramesOutAt120BeatsAMinute) {
  // 25 frames of 40 ticks: a tick is a millisecond, whatever the tempo.
  Host_MidiFile const file = Read(
      Header(0, 1, 0xe728) + Track(Tempo(0, 1000000) + Bytes{0, 0x90, 60, 80, 0x87, 0x68, 60, 0}));
  EXPECT_TRUE(file.mTiming.IsSMPTE());
  EXPECT_THAT(PrintTempo(file), IsEmpty());
  EXPECT_THAT(PrintClip(*file.mClips[0].mChunk.Get()),
              ElementsAre("0: note 60 +1920000 on 80 off 64"));
  EXPECT_THAT(PrintNotKept(file), ElementsAre("1 tempo in a file that counts time in frames"));
}

TEST(Host_ReadMidiFile, CountsChunksOfOtherKinds) {
  Host_MidiFile const file = Read(File({}) + midi::Chunk("XFIH", {1, 2}) + midi::Chunk("XFKM", {}));
  EXPECT_THAT(PrintNotKept(file), ElementsAre("2 chunk of an unknown kind"));
  EXPECT_FALSE(file.mReport.IsLossy());
}

TEST(Host_ReadMidiFile, ReportsDamageAndReadsTheRest) {
  Host_MidiFile const file =
      Read(Header(1, 2, 480) + Track({0, 0x90, 60, 80, 5, 0xf4}) + Track({0, 0x91, 61, 80}));
  EXPECT_TRUE(file.mReport.IsLossy());
  EXPECT_THAT(
      PrintProblems(file),
      ElementsAre("27: status byte 0xf4 does not belong in a file; the rest of the track is "
                  "not read"));
  ASSERT_THAT(PrintClips(file), ElementsAre("0/0", "1/1"));
  EXPECT_THAT(PrintClip(*file.mClips[0].mChunk.Get()),
              ElementsAre("0: note 60 +10000 on 80 off 64"));
}

TEST(Host_ReadMidiFile, LeavesNoUndoStep) {
  Host_MidiFile const file = Read(File({0, 0x90, 60, 80, 1, 60, 0, 0, 0xb0, 7, 1}));
  EXPECT_EQ(Ndo_gManager.GetNumUndoSteps(), 0);
}

TEST(Host_MidiFile, GivesItsChunksToTheUndoManager) {
  long long id;
  {
    Host_MidiFile const file = Read(File({0, 0xd0, 1}));
    id = file.mClips[0].mChunk.Get()->NdoGetID();
    EXPECT_NE(Ndo_gManager.LookupObject(id), nullptr);
  }
  Ndo_gManager.DropUnreferenced();
  EXPECT_EQ(Ndo_gManager.LookupObject(id), nullptr);
}

TEST(Host_MidiFile, CanBeMoved) {
  Host_MidiFile first = Read(File({0, 0xd0, 1}));
  Host_MidiFile const second = std::move(first);
  EXPECT_THAT(PrintClip(*second.mClips[0].mChunk.Get()), ElementsAre("0: mono 1"));
}

std::string WriteFile(std::string const & iName, Bytes const & iBytes) {
  std::string const path = testing::TempDir() + "midifile_reader_test_" + iName;
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<char const *>(iBytes.data()), static_cast<long>(iBytes.size()));
  return path;
}

TEST(Host_ReadMidiFile, ReadsFilesOfTheSystem) {
  // Longer than a block of reading.
  Bytes events;
  for (int i = 0; i < 60000; ++i) {
    events.insert(events.end(), {1, 0xd0, static_cast<unsigned char>(i % 128)});
  }
  std::string const path = WriteFile("long.mid", File(events));
  Host_MidiFile const file = Host_ReadMidiFile(path);
  ASSERT_EQ(file.mClips.size(), 1u);
  std::vector<std::string> const lines = PrintClip(*file.mClips[0].mChunk.Get());
  ASSERT_EQ(lines.size(), 60000u);
  EXPECT_EQ(lines.back(), "120000000: mono 95");
  std::remove(path.c_str());
}

TEST(Host_ReadMidiFile, RefusesAFileThatIsNotThere) {
  try {
    Host_ReadMidiFile(testing::TempDir() + "midifile_reader_test_none.mid");
    FAIL();
  } catch (std::system_error const & error) {
    EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
  }
}

TEST(Host_ReadMidiFile, RefusesAFolder) {
  try {
    Host_ReadMidiFile(testing::TempDir());
    FAIL();
  } catch (std::system_error const & error) {
    EXPECT_EQ(error.code(), std::errc::is_a_directory);
  }
}

TEST(Host_ReadMidiFile, RefusesAnEmptyFile) {
  std::string const path = WriteFile("empty.mid", {});
  EXPECT_THROW(Host_ReadMidiFile(path), Host_MidiFileError);
  std::remove(path.c_str());
}

TEST(Host_ReadMidiFile, GivesUpEarlyOnWhatIsNoMidiFile) {
  // Endless, so that a reader that takes it whole never ends.
  EXPECT_THROW(Host_ReadMidiFile(std::string("/dev/zero")), Host_MidiFileError);
}

TEST(Host_ReadMidiFile, TellsHowFarItIs) {
  Bytes events;
  for (int i = 0; i < 200000; ++i)
    events.insert(events.end(), {0, 0xb0, 7, 1});
  Bytes const file = File(events);
  std::vector<size_t> told;
  Host_ReadMidiFile(file, [&](size_t iNumDone, size_t iNumBytes) {
    EXPECT_EQ(file.size(), iNumBytes);
    told.push_back(iNumDone);
  });
  ASSERT_EQ(4u, told.size());
  EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
  EXPECT_EQ(file.size(), told.back());
}

}  // namespace
