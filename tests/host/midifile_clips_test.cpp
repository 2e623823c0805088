// What becomes of the messages of a file. One file tick is 2000 library ticks throughout.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "clip_print.h"
#include "cmn/cmn_assert.h"
#include "host/host_midifile.h"

namespace {

using midi::Bytes;
using midi::File;
using midi::PrintClip;
using midi::PrintClips;
using midi::PrintNotKept;
using midi::Read;
using testing::ElementsAre;
using testing::IsEmpty;
using midi::operator+;

// The only clip of a file with these events. No assertion may fire on the way.
std::vector<std::string> ClipOf(Bytes const & iEvents) {
  Cmn_AssertRecorder recorder;
  Host_MidiFile const file = Read(File(iEvents));
  EXPECT_EQ(file.mClips.size(), 1u);
  EXPECT_EQ(file.mReport.GetNumProblems(), 0);
  EXPECT_EQ(recorder.GetNum(), 0);
  return file.mClips.size() == 1 ? PrintClip(*file.mClips[0].mChunk.Get())
                                 : std::vector<std::string>();
}

std::vector<std::string> NotKeptOf(Bytes const & iEvents) {
  return PrintNotKept(Read(File(iEvents)));
}

TEST(Host_ReadMidiFile, PairsNoteOnAndNoteOff) {
  EXPECT_THAT(ClipOf({1, 0x90, 60, 80, 10, 0x80, 60, 33}),
              ElementsAre("2000: note 60 +20000 on 80 off 33"));
}

TEST(Host_ReadMidiFile, TakesANoteOnOfVelocity0ForANoteOffOfVelocity64) {
  EXPECT_THAT(ClipOf({0, 0x90, 60, 80, 10, 60, 0}), ElementsAre("0: note 60 +20000 on 80 off 64"));
}

TEST(Host_ReadMidiFile, PairsNotesOfOnePitchFirstInFirstOut) {
  EXPECT_THAT(ClipOf({0, 0x90, 60, 80, 1, 60, 81, 1, 60, 82, 3, 0x80, 60, 1, 5, 60, 2, 7, 60, 3}),
              ElementsAre("0: note 60 +10000 on 80 off 1", "2000: note 60 +18000 on 81 off 2",
                          "4000: note 60 +30000 on 82 off 3"));
}

TEST(Host_ReadMidiFile, PairsEachPitchByItself) {
  EXPECT_THAT(ClipOf({0, 0x90, 60, 80, 0, 64, 81, 5, 0x80, 64, 1, 5, 60, 2}),
              ElementsAre("0: note 60 +20000 on 80 off 2", "0: note 64 +10000 on 81 off 1"));
}

TEST(Host_ReadMidiFile, PairsEachChannelByItself) {
  Host_MidiFile const file =
      Read(File({0, 0x90, 60, 80, 0, 0x91, 60, 81, 5, 0x81, 60, 1, 5, 0x80, 60, 2}));
  ASSERT_THAT(PrintClips(file), ElementsAre("0/0", "0/1"));
  EXPECT_THAT(PrintClip(*file.mClips[0].mChunk.Get()),
              ElementsAre("0: note 60 +20000 on 80 off 2"));
  EXPECT_THAT(PrintClip(*file.mClips[1].mChunk.Get()),
              ElementsAre("0: note 60 +10000 on 81 off 1"));
}

TEST(Host_ReadMidiFile, PairsEachTrackByItself) {
  Host_MidiFile const file =
      Read(midi::Header(1, 2, 480) + midi::Track({0, 0x90, 60, 80, 20, 0xff, 1, 0}) +
           midi::Track({5, 0x80, 60, 1}));
  ASSERT_THAT(PrintClips(file), ElementsAre("0/0"));
  EXPECT_THAT(PrintClip(*file.mClips[0].mChunk.Get()),
              ElementsAre("0: note 60 +40000 on 80 off 64"));
  EXPECT_THAT(PrintNotKept(file), ElementsAre("1 note-off without a note-on", "1 text"));
}

TEST(Host_ReadMidiFile, Gives1TickToANoteOfNoLength) {
  EXPECT_THAT(ClipOf({0, 0x90, 60, 80, 0, 0x80, 60, 9}), ElementsAre("0: note 60 +1 on 80 off 9"));
}

TEST(Host_ReadMidiFile, EndsANoteThatIsNeverReleasedWithItsTrack) {
  EXPECT_THAT(ClipOf({0, 0x90, 60, 80, 8, 0xff, 1, 0}),
              ElementsAre("0: note 60 +16000 on 80 off 64"));
}

TEST(Host_ReadMidiFile, Gives1TickToANoteThatBeginsWhereItsTrackEnds) {
  EXPECT_THAT(ClipOf({3, 0x90, 60, 80}), ElementsAre("6000: note 60 +1 on 80 off 64"));
}

TEST(Host_ReadMidiFile, CountsUnmatchedNoteOffs) {
  EXPECT_THAT(NotKeptOf({0, 0x80, 60, 64, 0, 0x90, 61, 0, 0, 61, 80, 1, 61, 0, 0, 61, 0}),
              ElementsAre("3 note-off without a note-on"));
}

TEST(Host_ReadMidiFile, KeepsTheOrderOfNotesThatBeginTogether) {
  EXPECT_THAT(ClipOf({0, 0x90, 64, 80, 0, 60, 80, 0, 62, 80, 1, 60, 0, 0, 62, 0, 0, 64, 0}),
              ElementsAre("0: note 64 +2000 on 80 off 64", "0: note 60 +2000 on 80 off 64",
                          "0: note 62 +2000 on 80 off 64"));
}

TEST(Host_ReadMidiFile, KeepsControllers) {
  EXPECT_THAT(ClipOf({0, 0xb0, 1, 5, 0, 7, 127, 2, 119, 0}),
              ElementsAre("0: cc1 5", "0: cc7 127", "4000: cc119 0"));
}

TEST(Host_ReadMidiFile, KeepsBends) {
  EXPECT_THAT(ClipOf({0, 0xe0, 0, 0, 1, 0, 0x40, 1, 0x7f, 0x7f, 1, 1, 0x40}),
              ElementsAre("0: bend -8192", "2000: bend 0", "4000: bend 8191", "6000: bend 1"));
}

TEST(Host_ReadMidiFile, KeepsBothKindsOfPressure) {
  EXPECT_THAT(ClipOf({0, 0xd0, 99, 1, 0xa0, 60, 5, 1, 61, 6}),
              ElementsAre("0: mono 99", "2000: poly 60 5", "4000: poly 61 6"));
}

TEST(Host_ReadMidiFile, KeepsTheLastOfSeveralValuesAtOneTick) {
  Bytes const events = {0, 0xb0, 7, 1, 0, 7, 2, 0, 7, 3, 0, 8, 4};
  EXPECT_THAT(ClipOf(events), ElementsAre("0: cc7 3", "0: cc8 4"));
  EXPECT_THAT(NotKeptOf(events), ElementsAre("2 value replaced by a later one at the same tick"));
}

TEST(Host_ReadMidiFile, CountsReplacedValuesOfEachKind) {
  EXPECT_THAT(NotKeptOf({0, 0xe0, 0,  0, 0, 0,  1, 0, 0xd0, 1, 0, 2,
                         0, 0xa0, 60, 1, 0, 60, 1, 0, 0xc0, 1, 0, 2}),
              ElementsAre("4 value replaced by a later one at the same tick"));
}

TEST(Host_ReadMidiFile, KeepsPressureOfTwoPitchesAtOneTick) {
  EXPECT_THAT(NotKeptOf({0, 0xa0, 60, 1, 0, 61, 1}), IsEmpty());
}

TEST(Host_ReadMidiFile, KeepsEqualValuesAtDifferentTicks) {
  EXPECT_THAT(ClipOf({0, 0xb0, 7, 1, 1, 7, 1}), ElementsAre("0: cc7 1", "2000: cc7 1"));
}

TEST(Host_ReadMidiFile, CountsChannelModeMessages) {
  Bytes events;
  for (unsigned char number = 120; number < 128; ++number)
    events = events + Bytes{0, 0xb0, number, 0};
  Host_MidiFile const file = Read(File(events));
  EXPECT_THAT(PrintClips(file), IsEmpty());
  EXPECT_THAT(PrintNotKept(file), ElementsAre("8 channel mode message (controllers 120 to 127)"));
}

TEST(Host_ReadMidiFile, DisablesTheBankOfAProgramChangeWithoutOne) {
  EXPECT_THAT(ClipOf({0, 0xc0, 5}), ElementsAre("0: program 5 bank -/-"));
}

TEST(Host_ReadMidiFile, TakesTheBankIntoTheProgramChange) {
  EXPECT_THAT(ClipOf({0, 0xb0, 0, 1, 0, 32, 2, 0, 0xc0, 5}), ElementsAre("0: program 5 bank 1/2"));
}

TEST(Host_ReadMidiFile, DisablesThePartOfTheBankThatIsNotGiven) {
  EXPECT_THAT(ClipOf({0, 0xb0, 0, 1, 0, 0xc0, 5}), ElementsAre("0: program 5 bank 1/-"));
  EXPECT_THAT(ClipOf({0, 0xb0, 32, 2, 0, 0xc0, 5}), ElementsAre("0: program 5 bank -/2"));
}

TEST(Host_ReadMidiFile, PutsAnEarlierBankAtTheProgramChange) {
  EXPECT_THAT(ClipOf({0, 0xb0, 0, 1, 1, 32, 2, 1, 0xc0, 5}),
              ElementsAre("4000: program 5 bank 1/2"));
}

TEST(Host_ReadMidiFile, SpendsABankOnOneProgramChange) {
  EXPECT_THAT(ClipOf({0, 0xb0, 0, 1, 0, 32, 2, 0, 0xc0, 5, 1, 6}),
              ElementsAre("0: program 5 bank 1/2", "2000: program 6 bank -/-"));
}

TEST(Host_ReadMidiFile, CountsABankThatIsReplacedBeforeAProgramChange) {
  Bytes const events = {0, 0xb0, 0, 1, 0, 0, 3, 0, 32, 1, 0, 32, 2, 0, 0xc0, 5};
  EXPECT_THAT(ClipOf(events), ElementsAre("0: program 5 bank 3/2"));
  EXPECT_THAT(NotKeptOf(events), ElementsAre("2 bank select replaced before a program change"));
}

TEST(Host_ReadMidiFile, MakesAProgramEventWithoutProgramOfALoneBank) {
  EXPECT_THAT(ClipOf({0, 0xc0, 5, 1, 0xb0, 0, 1, 1, 32, 2}),
              ElementsAre("0: program 5 bank -/-", "4000: program - bank 1/2"));
  EXPECT_THAT(ClipOf({0, 0xb0, 32, 2}), ElementsAre("0: program - bank -/2"));
}

TEST(Host_ReadMidiFile, KeepsTheProgramThatALoneBankFollowsAtItsTick) {
  Bytes const events = {0, 0xc0, 5, 0, 0xb0, 0, 1, 0, 32, 2};
  EXPECT_THAT(ClipOf(events), ElementsAre("0: program 5 bank -/-"));
  EXPECT_THAT(NotKeptOf(events),
              ElementsAre("2 bank select behind a program change at the same tick"));
}

TEST(Host_ReadMidiFile, KeepsTheBanksOfTwoChannelsApart) {
  Host_MidiFile const file = Read(File({0, 0xb0, 0, 1, 0, 0xc1, 5, 0, 0xc0, 6}));
  EXPECT_THAT(PrintClip(*file.mClips[0].mChunk.Get()), ElementsAre("0: program 6 bank 1/-"));
  EXPECT_THAT(PrintClip(*file.mClips[1].mChunk.Get()), ElementsAre("0: program 5 bank -/-"));
}

TEST(Host_ReadMidiFile, PutsSysexIntoAClipWithoutChannelBehindTheOthers) {
  Host_MidiFile const file =
      Read(midi::Header(1, 2, 480) + midi::Track({0, 0xf0, 2, 0x41, 0xf7, 0, 0xdf, 1, 0, 0xd0, 1}) +
           midi::Track({0, 0xd3, 1}));
  EXPECT_THAT(PrintClips(file), ElementsAre("0/0", "0/15", "0/-1", "1/3"));
  EXPECT_THAT(PrintClip(*file.mClips[2].mChunk.Get()), ElementsAre("0: sysex 41"));
}

TEST(Host_ReadMidiFile, KeepsShortAndLongSysex) {
  Bytes const contents(14, 0x11);
  EXPECT_THAT(ClipOf(Bytes{0, 0xf0, 15} + contents + Bytes{0xf7}),
              ElementsAre("0: sysex 11 11 11 11 11 11 11 11 11 11 11 11 11 11"));
  EXPECT_THAT(ClipOf(Bytes{0, 0xf0, 16, 1} + contents + Bytes{0xf7}),
              ElementsAre("0: sysex 01 11 11 11 11 11 11 11 11 11 11 11 11 11 11"));
  EXPECT_THAT(ClipOf({0, 0xf0, 1, 0xf7}), ElementsAre("0: sysex"));
}

TEST(Host_ReadMidiFile, JoinsSysexPackets) {
  EXPECT_THAT(ClipOf({1, 0xf0, 2, 1, 2, 5, 0xf7, 1, 3, 5, 0xf7, 2, 4, 0xf7}),
              ElementsAre("2000: sysex 01 02 03 04"));
}

TEST(Host_ReadMidiFile, KeepsSysexOfOneTickInFileOrder) {
  EXPECT_THAT(ClipOf({0, 0xf0, 2, 9,    0xf7, 1, 0xf0, 2, 3,    0xf7, 0, 0xf0, 2,
                      1, 0xf7, 0, 0xf0, 2,    2, 0xf7, 1, 0xf0, 2,    8, 0xf7}),
              ElementsAre("0: sysex 09", "2000: sysex 03", "2000: sysex 01", "2000: sysex 02",
                          "4000: sysex 08"));
}

TEST(Host_ReadMidiFile, KeepsLongRunsOfSysexInFileOrder) {
  // More than go in one by one.
  for (int num : {64, 65, 128, 129, 1000}) {
    SCOPED_TRACE(num);
    Bytes events = {0, 0xf0, 2, 0x7f, 0xf7};
    std::vector<std::string> expected = {"0: sysex 7f"};
    for (int i = 0; i < num; ++i) {
      unsigned char const high = static_cast<unsigned char>(i / 100);
      unsigned char const low = static_cast<unsigned char>(i % 100);
      unsigned char const delta = i == 0 ? 1 : 0;
      Bytes const event = {delta, 0xf0, 3, high, low, 0xf7};
      events.insert(events.end(), event.begin(), event.end());
      char text[32];
      std::snprintf(text, sizeof text, "2000: sysex %02x %02x", i / 100, i % 100);
      expected.push_back(text);
    }
    EXPECT_THAT(ClipOf(events), testing::ElementsAreArray(expected));
  }
}

TEST(Host_ReadMidiFile, CountsSysexWithoutItsEnd) {
  EXPECT_THAT(NotKeptOf({0, 0xf0, 2, 1, 2, 0, 0xf0, 2, 3, 0xf7, 0, 0xf0, 1, 1}),
              ElementsAre("2 sysex without its end"));
}

TEST(Host_ReadMidiFile, TakesEscapedMessagesAsIfTheyStoodInTheTrack) {
  Host_MidiFile const file = Read(File({0, 0xf7, 3, 0x90, 60, 80, 5, 0x80, 60, 7}));
  ASSERT_THAT(PrintClips(file), ElementsAre("0/0"));
  EXPECT_THAT(PrintClip(*file.mClips[0].mChunk.Get()),
              ElementsAre("0: note 60 +10000 on 80 off 7"));
}

TEST(Host_ReadMidiFile, TakesEscapedSysex) {
  EXPECT_THAT(ClipOf({0, 0xf7, 3, 0xf0, 1, 0xf7}), ElementsAre("0: sysex 01"));
}

TEST(Host_ReadMidiFile, CountsOtherEscapes) {
  Host_MidiFile const file = Read(File({0, 0xf7, 1, 0xf8, 0, 0xf7, 2, 0xf1, 3}));
  EXPECT_THAT(PrintClips(file), IsEmpty());
  EXPECT_THAT(PrintNotKept(file),
              ElementsAre("2 escaped message that is no channel message and no sysex"));
}

TEST(Host_ReadMidiFile, CountsMetaEventsByName) {
  EXPECT_THAT(NotKeptOf({0, 0xff, 1, 1,    'a',  0, 0xff, 5,    0,    0, 0xff,
                         5, 0,    0, 0xff, 0x60, 0, 0,    0xff, 0x7f, 0}),
              ElementsAre("1 text", "2 lyric", "1 unknown meta event 0x60",
                          "1 sequencer-specific meta event"));
}

TEST(Host_ReadMidiFile, MakesClipsThatCanBeUndone) {
  Host_MidiFile const file = Read(File({0, 0x90, 60, 80, 1, 60, 0}));
  EXPECT_TRUE(file.mClips[0].mChunk.Get()->NdoIsUndoable());
  EXPECT_TRUE(file.mClips[0].mChunk.Get()->GetNoteList()->NdoIsUndoable());
}

TEST(Host_ReadMidiFile, LeavesTimesOffTheCoarseGrid) {
  EXPECT_FALSE(Read(File({0, 0xd0, 1})).mClips[0].mChunk.Get()->QuantizeContents());
}

}  // namespace
