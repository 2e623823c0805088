// Files that lie, break off or try to fill memory and time.
#include <ctime>
#include <fstream>
#include <iterator>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "clip_print.h"
#include "cmn/cmn_assert.h"
#include "foundation/sys_delayeddeletion.h"
#include "foundation/time_convert.h"
#include "host/host_midifile.h"
#include "memory_meter.h"
#include "ndo/ndo_manager.h"

namespace {

using midi::Bytes;
using midi::Chunk;
using midi::File;
using midi::Header;
using midi::Number;
using midi::PrintClip;
using midi::PrintProblems;
using midi::Read;
using midi::Text;
using midi::Track;
using testing::ElementsAre;
using midi::operator+;

Bytes ReadDemo() {
  std::ifstream stream(VRAD_SOURCE_DIR "/examples/demo.mid", std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

// Gives back what the undo manager keeps of files that are gone.
void DropAll() {
  Ndo_gManager.DropUnreferenced();
  Sys_DelayedDeletionQueue::DeletePending();
}

void Append(Bytes & ioBytes, Bytes const & iMore) {
  ioBytes.insert(ioBytes.end(), iMore.begin(), iMore.end());
}

Bytes Repeat(Bytes const & iEvents, int iNum) {
  Bytes result;
  result.reserve(iEvents.size() * static_cast<size_t>(iNum));
  for (int i = 0; i < iNum; ++i)
    Append(result, iEvents);
  return result;
}

// Silent but for the number of problems and messages.
class Counter : public Host_MidiFileVisitor {
public:
  int mNumMessages = 0;
  bool mIsLossy = false;

  void BeginFile(Host_MidiHeader const &) override {}
  void BeginTrack(int, size_t) override {}
  void ChannelMessage(long long, unsigned char, unsigned char, unsigned char, size_t) override {
    ++mNumMessages;
  }
  void SysexPacket(long long, unsigned char, std::span<unsigned char const>, size_t) override {
    ++mNumMessages;
  }
  void MetaEvent(long long, unsigned char, std::span<unsigned char const>, size_t) override {
    ++mNumMessages;
  }
  void EndTrack(long long) override {}
  void UnknownChunk(size_t) override {}
  void Problem(size_t, std::string const &, bool iIsLoss) override {
    mIsLossy = mIsLossy || iIsLoss;
  }
};

TEST(Host_ParseMidiFile, SaysSoWhereverTheFileIsCut) {
  Bytes const demo = ReadDemo();
  ASSERT_GT(demo.size(), 1000u);
  int numBefore = 0;
  for (size_t size = 0; size < demo.size(); ++size) {
    // A block of its own, so that sanitizers see a read beyond the cut.
    Bytes const cut(demo.begin(), demo.begin() + static_cast<long>(size));
    Counter counter;
    try {
      Host_ParseMidiFile(cut, counter);
      ASSERT_GE(size, 14u);
      ASSERT_TRUE(counter.mIsLossy) << size;
      ASSERT_GE(counter.mNumMessages, numBefore) << size;
      numBefore = counter.mNumMessages;
    } catch (Host_MidiFileError const & error) {
      ASSERT_LT(size, 14u);
      ASSERT_LE(error.GetOffset(), size);
    }
  }
  Counter whole;
  Host_ParseMidiFile(demo, whole);
  EXPECT_FALSE(whole.mIsLossy);
  EXPECT_GE(whole.mNumMessages, numBefore);
}

// Something of everything, in a few bytes.
Bytes MakeMedley() {
  return Header(1, 3, 480) +
         Track({0,    0xff, 3, 1,    'a', 0, 0xff, 0x51, 3,    7, 0xa1, 0x20, 0,    0xff,
                0x58, 4,    3, 2,    24,  8, 0,    0xf0, 2,    1, 0xf7, 1,    0xf0, 2,
                1,    2,    1, 0xf7, 2,   3, 0xf7, 0,    0xf7, 2, 0xd0, 5}) +
         Chunk("XFIH", {1, 2, 3}) +
         Track({0,    0xb0, 0,    1,  0,    32, 2,  0,  0xc0, 3,    0, 0x90, 60,
                80,   0x83, 0x60, 60, 0,    0,  61, 80, 0,    0xe0, 1, 2,    0,
                0xa0, 61,   5,    0,  0xb0, 7,  1,  0,  7,    2,    0, 123,  0}) +
         Track({0, 0x91, 60, 80, 1, 60, 81, 1, 0x81, 60, 7, 0, 0xb1, 0, 9});
}

void ReadCut(Bytes const & iFile, size_t iSize) {
  Bytes const cut(iFile.begin(), iFile.begin() + static_cast<long>(iSize));
  ASSERT_TRUE(Read(cut).mReport.IsLossy()) << iSize;
}

TEST(Host_ReadMidiFile, ReadsAFileCutAtEveryByte) {
  Bytes const medley = MakeMedley();
  EXPECT_FALSE(Read(medley).mReport.IsLossy());
  Cmn_AssertRecorder recorder;
  for (size_t size = 14; size < medley.size(); ++size)
    ReadCut(medley, size);
  EXPECT_EQ(recorder.GetNum(), 0);
  DropAll();
}

TEST(Host_ReadMidiFile, ReadsTheDemoCutAtManyBytes) {
  // The parser is tried at every byte above; 331 is prime, so that all kinds of messages are hit.
  Bytes const demo = ReadDemo();
  Cmn_AssertRecorder recorder;
  for (size_t size = 14; size < demo.size(); size += 331)
    ReadCut(demo, size);
  EXPECT_EQ(recorder.GetNum(), 0);
  DropAll();
}

// iFile with 1 to 8 bytes changed, as often as told.
void ReadChanged(Bytes const & iFile, int iNumRounds, unsigned iSeed) {
  std::mt19937 random(iSeed);
  Cmn_AssertRecorder recorder;
  for (int round = 0; round < iNumRounds; ++round) {
    Bytes changed = iFile;
    for (unsigned i = 0, num = 1 + random() % 8; i < num; ++i) {
      changed[random() % changed.size()] = static_cast<unsigned char>(random());
    }
    try {
      Read(changed);
    } catch (Host_MidiFileError const &) {
      // The header was hit.
    }
  }
  EXPECT_EQ(recorder.GetNum(), 0) << "seed " << iSeed;
  DropAll();
}

TEST(Host_ReadMidiFile, ReadsFilesWithBytesChanged) {
  ReadChanged(MakeMedley(), 2000, 20261120);
  ReadChanged(ReadDemo(), 30, 20261121);
}

TEST(Host_ReadMidiFile, ReadsGarbageBehindAGoodHeader) {
  constexpr unsigned kSeed = 7;
  std::mt19937 random(kSeed);
  for (int round = 0; round < 200; ++round) {
    Bytes garbage(random() % 2000);
    for (unsigned char & byte : garbage)
      byte = static_cast<unsigned char>(random());
    Append(garbage, Track({0, 0x90, 60, 80}));
    Host_MidiFile const file = Read(Header(1, 1, 480) + Chunk("MTrk", garbage));
    ASSERT_GE(file.mTracks.size(), 1u) << "seed " << kSeed;
  }
  DropAll();
}

TEST(Host_ReadMidiFile, ReservesNothingForAnnouncedTracks) {
  Bytes const file = Header(1, 65535, 480) + Track({0, 0x90, 60, 80});
  long long const most = memory_meter::Measure([&] {
    EXPECT_THAT(PrintProblems(Read(file)), ElementsAre("10: tracks announced: 65535, found: 1"));
  });
  EXPECT_LT(most, 100000);
  DropAll();
}

TEST(Host_ReadMidiFile, ReservesNothingForAnnouncedLengths) {
  Bytes const file = Header(1, 1, 480) + Text("MTrk") + Number(0xfffffff0, 4) +
                     Bytes{0, 0xf0, 0xff, 0xff, 0xff, 0x7f, 1, 2, 3};
  long long const most = memory_meter::Measure([&] { EXPECT_TRUE(Read(file).mReport.IsLossy()); });
  EXPECT_LT(most, 100000);
  DropAll();
}

// The most memory that reading these bytes takes, chunks included, as a multiple of the bytes.
double MemoryMultiple(Bytes const & iFile) {
  long long const most = memory_meter::Measure([&] { Read(iFile); });
  DropAll();
  return static_cast<double>(most) / static_cast<double>(iFile.size());
}

TEST(Host_ReadMidiFile, ReadsAMillionTracks) {
  Bytes file = Header(1, 65535, 480);
  Append(file, Repeat(Track({}), 1000000));
  double const multiple = MemoryMultiple(file);
  EXPECT_LT(multiple, 10.0);
}

TEST(Host_ReadMidiFile, TakesAFewHundredBytesForANote) {
  // Three bytes a note and none for its end: the stored note has some 200.
  double const multiple = MemoryMultiple(File(Bytes{0, 0x90, 60, 80} + Repeat({1, 60, 80}, 50000)));
  EXPECT_LT(multiple, 150.0);
}

TEST(Host_ReadMidiFile, TakesAFewBytesForWhatItDoesNotKeep) {
  EXPECT_LT(MemoryMultiple(File(Repeat({0, 0xff, 1, 0}, 50000))), 1.0);
  EXPECT_LT(MemoryMultiple(File(Bytes{0, 0x80, 60, 0} + Repeat({0, 60, 0}, 50000))), 1.0);
  EXPECT_LT(MemoryMultiple(File(Repeat({0, 0xf7, 1, 0xf8}, 50000))), 1.0);
}

TEST(Host_ReadMidiFile, TakesAFewHundredBytesForASysex) {
  EXPECT_LT(MemoryMultiple(File(Repeat({0, 0xf0, 1, 0xf7}, 25000))), 150.0);
  EXPECT_LT(MemoryMultiple(File(Repeat({1, 0xf0, 1, 0xf7}, 25000))), 150.0);
}

TEST(Host_ReadMidiFile, TakesLittleForPacketsOfOneSysex) {
  EXPECT_LT(MemoryMultiple(File(Bytes{0, 0xf0, 0} + Repeat({0, 0xf7, 1, 5}, 50000))), 2.0);
}

TEST(Host_ReadMidiFile, StopsAtAFixedNumberOfStores) {
  // A clip and its program stream for each channel: eight stores a track, 32 bytes each.
  Bytes const track = Track({0, 0xc0, 1, 0, 0xc1, 1, 0, 0xc2, 1, 0, 0xc3, 1});
  Bytes file = Header(1, 9000, 480);
  Append(file, Repeat(track, 9000));
  Host_MidiFile const result = Read(file);
  EXPECT_EQ(result.mClips.size(), 32768u);
  EXPECT_EQ(result.mTracks.size(), 9000u);
  EXPECT_TRUE(result.mReport.IsLossy());
  EXPECT_EQ(result.mReport.GetNumProblems(), 1);
  EXPECT_EQ(result.mReport.GetProblems()[0].mText,
            "too many tracks, channels and controllers; further ones are not read");
}

TEST(Host_ReadMidiFile, TakesBoundedMemoryForStoresOfOneValueEach) {
  // Pressure of each pitch on each channel: three bytes a stream.
  Bytes events;
  for (unsigned char channel = 0; channel < 16; ++channel) {
    unsigned char const status = static_cast<unsigned char>(0xa0 | channel);
    for (unsigned char pitch = 0; pitch < 128; ++pitch)
      Append(events, {0, status, pitch, 1});
  }
  Bytes file = Header(1, 60, 480);
  Append(file, Repeat(Track(events), 60));
  long long const most = memory_meter::Measure([&] { EXPECT_TRUE(Read(file).mReport.IsLossy()); });
  EXPECT_LT(most, 150'000'000);
  DropAll();
}

TEST(Host_ReadMidiFile, ReadsTimesAtTheFarEnd) {
  Bytes events = Repeat({0xff, 0xff, 0xff, 0x7f, 0xff, 1, 0}, 4096);
  Append(events, {0xa0, 0, 0x90, 60, 80});
  Host_MidiFile const file = Read(Header(0, 1, 1) + Track(events));
  EXPECT_THAT(PrintClip(*file.mClips[0].mChunk.Get()),
              ElementsAre("1055531162664960000: note 60 +1 on 80 off 64"));
  DropAll();
}

// Processor time, and generous: what is meant is that none of these takes minutes.
template <class F>
void ExpectQuick(F iBody) {
  std::clock_t const start = std::clock();
  iBody();
  EXPECT_LT(std::clock() - start, 30 * CLOCKS_PER_SEC);
}

TEST(Host_ReadMidiFile, ReadsManySysexAtOneTickQuickly) {
  ExpectQuick([] {
    Host_MidiFile const file = Read(File(Repeat({0, 0xf0, 1, 0xf7}, 50000)));
    EXPECT_EQ(file.mClips[0].mChunk.Get()->GetEventStream()->Size(), 50000u);
  });
  DropAll();
}

TEST(Host_ReadMidiFile, ReadsManyTempoChangesQuickly) {
  Bytes const rising = Repeat({1, 0xff, 0x51, 3, 7, 0xa1, 0x20}, 50000);
  ExpectQuick([&] {
    // Two tracks, the second with earlier times again.
    Host_MidiFile const file = Read(Header(1, 2, 480) + Track(rising) + Track(rising));
    EXPECT_EQ(file.mTempoChanges.size(), 50000u);
    Time_TempoMap map;
    file.FillTempoMap(map);
  });
}

TEST(Host_ReadMidiFile, ReadsManyOpenNotesQuickly) {
  ExpectQuick([] {
    Bytes events = Bytes{0, 0x90, 60, 80} + Repeat({0, 60, 80}, 50000);
    Append(events, Repeat({0, 60, 0}, 50001));
    Host_MidiFile const file = Read(File(events));
    EXPECT_EQ(file.mClips[0].mChunk.Get()->GetNoteList()->Size(), 50001u);
  });
  DropAll();
}

TEST(Host_ReadMidiFile, ReadsManyValuesAtOneTickQuickly) {
  ExpectQuick([] {
    Host_MidiFile const file = Read(File(Bytes{0, 0xb0, 7, 0} + Repeat({0, 7, 1}, 50000)));
    EXPECT_EQ(file.mReport.GetNumNotKept(kNotKept_EarlierValue), 50000);
  });
  DropAll();
}

}  // namespace
