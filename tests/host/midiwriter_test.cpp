// What a song becomes as a MIDI file, byte by byte, and what such a file cannot say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/host_midiwriter.h"
#include "song_print.h"
#include "support/golden_files.h"
#include "vrad/vrad_extendedevent.h"

namespace {

using midi::Bytes;
using midi::File;
using midi::Header;
using midi::PrintNotKept;
using midi::PrintNotWritten;
using midi::PrintSong;
using midi::Read;
using midi::Text;
using midi::Track;
using testing::ElementsAre;
using testing::IsEmpty;
using midi::operator+;

constexpr long long kFileTick = 2000;  // in library ticks, at 480 to the quarter note

Bytes Write(Host_Song const & iSong) {
  Host_WriteReport report;
  return Host_WriteMidiFile(iSong, report);
}

std::vector<std::string> NotWritten(Host_Song const & iSong) {
  Host_WriteReport report;
  Host_WriteMidiFile(iSong, report);
  return PrintNotWritten(report);
}

// What reading and writing make of a file.
Bytes Rewritten(Bytes const & iFile) {
  return Write(Read(iFile));
}

void ExpectUnchanged(Bytes const & iFile) {
  EXPECT_EQ(Rewritten(iFile), iFile);
}

// One track of one clip on a channel; -1 for none.
struct OneClip {
  explicit OneClip(int iChannel = 0) {
    mSong.mHeader.mFormat = 0;
    mSong.mTracks.push_back({"", Time_Tick(0)});
    mSong.mClips.push_back(
        {0, iChannel, Ndo_AutoPtr<Vrad_Chunk>(Vrad_Chunk::New(Ndo_Object::kUndoable, false))});
  }
  Vrad_Chunk & GetChunk() { return *mSong.mClips[0].mChunk.Get(); }
  void Add(Time_Typed iTime, Vrae_Event const & iEvent) {
    GetChunk().AddEvent(Vrad_ExtendedEvent(iTime, iEvent));
  }
  void AddNote(Time_Typed iTime, Time_TypedLength iDuration, signed char iPitch = 60) {
    GetChunk().GetNoteList()->AddNote(
        Vrad_NoteListBase_Note(iTime, Vrae_NoteWithDurationEvent(iPitch, iDuration, 80, 64)));
  }
  Host_Song mSong;
};

Time_Tick At(long long iFileTick) {
  return Time_Tick(iFileTick * kFileTick);
}

Time_TypedLength Length(long long iFileTicks) {
  return Time_TickLength(iFileTicks * kFileTick);
}

TEST(Host_WriteMidiFile, WritesAnEmptySong) {
  EXPECT_EQ(Write(Host_Song()), Header(1, 0, 480));
}

TEST(Host_WriteMidiFile, KeepsFormatDivisionAndTracks) {
  ExpectUnchanged(Header(0, 1, 96) + Track({}));
  ExpectUnchanged(Header(1, 2, 32767) + Track({}) + Track({}));
  ExpectUnchanged(Header(2, 2, 1) + Track({}) + Track({}));
  ExpectUnchanged(Header(1, 1, 0xe728) + Track({0, 0xc0, 1}));
}

TEST(Host_WriteMidiFile, TakesFormat1ForMoreTracksThanOne) {
  EXPECT_EQ(Rewritten(Header(0, 2, 480) + Track({}) + Track({})),
            Header(1, 2, 480) + Track({}) + Track({}));
}

TEST(Host_WriteMidiFile, HasTheBytesOfTheFileWrittenByHand) {
  Bytes const golden = ReadGolden("midifile");
  Host_Song const song = Read(golden);
  EXPECT_THAT(PrintSong(song),
              ElementsAre("division 480", "track 'Song' to 3840000", "track 'Piano' to 3840000",
                          "0 in 0: tempo 120", "960000 in 0: tempo 100", "0 in 0: meter 6/8 36 8",
                          "0 in 0: key -3 minor", "clip 0/-1", "0: sysex 7e 7f 09 01", "clip 1/2",
                          "0: note 60 +480000 on 80 off 64", "480000: note 62 +480000 on 81 off 33",
                          "960000: note 64 +1 on 82 off 64", "0: program 9 bank 3/4",
                          "0: bend 8065", "10000: cc7 100", "10000: mono 50", "10000: poly 62 51"));
  EXPECT_THAT(PrintNotKept(song), IsEmpty());
  EXPECT_THAT(NotWritten(song), IsEmpty());
  EXPECT_EQ(Write(song), golden);
}

TEST(Host_WriteMidiFile, KeepsNamesAndEnds) {
  ExpectUnchanged(Header(1, 2, 480) + Track({0, 0xff, 3, 2, 'H', 'i'}) +
                  midi::Chunk("MTrk", {0x83, 0x60, 0xff, 0x2f, 0}));
}

TEST(Host_WriteMidiFile, KeepsTempoMeterAndKeyInTheirTracks) {
  ExpectUnchanged(
      Header(1, 2, 480) + Track({0, 0xff, 0x58, 4, 6,    3,    36, 8,    0,    0xff, 0x59,
                                 2, 0xfd, 1,    0, 0xff, 0x51, 3,  0x07, 0xa1, 0x21}) +
      Track({0,    0xff, 0x59, 2,   7,  0, 10,  0xff, 0x51, 3,    0xff, 0xff, 0xff, 10,
             0xff, 0x58, 4,    255, 10, 0, 255, 0,    0xff, 0x51, 3,    0,    0,    1}));
}

TEST(Host_WriteMidiFile, KeepsEveryKindOfValue) {
  ExpectUnchanged(File({0,    0xb0, 0,    3, 0,   32, 4,    0,  0xc0, 9,    0,  0xe0, 1,
                        0x7f, 5,    0xb0, 7, 100, 0,  0xd0, 50, 0,    0xa0, 62, 51}));
}

TEST(Host_WriteMidiFile, KeepsABankSelectWithoutAProgramChange) {
  ExpectUnchanged(File({0, 0xc0, 9, 5, 0xb0, 32, 4}));
}

TEST(Host_WriteMidiFile, KeepsSysexInItsOrder) {
  ExpectUnchanged(File(Bytes{0, 0xf0, 17} + Bytes(16, 5) +
                       Bytes{0xf7, 0, 0xf0, 1, 0xf7, 0, 0xf0, 3, 1, 2, 0xf7}));
}

TEST(Host_WriteMidiFile, WritesLengthsOfManyBytes) {
  ExpectUnchanged(File(Bytes{0, 0xf0, 0x81, 0x00} + Bytes(127, 5) + Bytes{0xf7}));
  ExpectUnchanged(File(Bytes{0, 0xf0, 0x81, 0x80, 0x00} + Bytes(16383, 5) + Bytes{0xf7}));
}

TEST(Host_WriteMidiFile, LeavesOutARepeatedStatus) {
  EXPECT_EQ(Rewritten(File({0, 0x90, 60, 80, 10, 0x90, 60, 0, 0, 0x90, 62, 80, 10, 0x80, 62, 64})),
            File({0, 0x90, 60, 80, 10, 60, 0, 0, 62, 80, 10, 62, 0}));
}

TEST(Host_WriteMidiFile, RepeatsTheStatusBehindSysex) {
  EXPECT_EQ(Rewritten(File({0, 0xc0, 1, 5, 0xf0, 1, 0xf7, 0, 0xc0, 2})),
            File({0, 0xc0, 1, 5, 0xf0, 1, 0xf7, 0, 0xc0, 2}));
}

TEST(Host_WriteMidiFile, KeepsReleaseVelocities) {
  ExpectUnchanged(File({0, 0x90, 60, 80, 10, 0x80, 60, 0, 0, 0x90, 61, 80, 10, 0x80, 61, 127}));
}

TEST(Host_WriteMidiFile, EndsOverlappingNotesOfAPitchInOrder) {
  ExpectUnchanged(File({0, 0x90, 60, 80, 10, 60, 81, 10, 0x80, 60, 1, 10, 60, 2}));
}

TEST(Host_WriteMidiFile, EndsANoteBeforeTheNextOfItsPitch) {
  ExpectUnchanged(File({0, 0x90, 60, 80, 10, 60, 0, 0, 60, 81, 10, 60, 0}));
}

TEST(Host_WriteMidiFile, KeepsNotesOfNoLength) {
  Bytes const file = File({5, 0x90, 60, 80, 0, 60, 0, 0, 60, 81, 0, 60, 0});
  ExpectUnchanged(file);
  EXPECT_THAT(midi::PrintNotes(*Read(file).mClips[0].mChunk.Get()),
              ElementsAre("10000: note 60 +1 on 80 off 64", "10000: note 60 +1 on 81 off 64"));
}

TEST(Host_WriteMidiFile, WritesWhatBelongsToATickInOneOrder) {
  EXPECT_EQ(Rewritten(File({0, 0x90, 60,   80,                         // ends below
                            9, 60,   0,    0,  61, 80,   0,  61,   0,  // no length
                            0, 0xb0, 7,    1,  0,  0xf0, 1,  0xf7,     //
                            0, 0xff, 0x51, 3,  1,  2,    3,            //
                            0, 0xff, 0x59, 2,  0,  0,                  //
                            0, 0xff, 0x58, 4,  3,  2,    24, 8,        //
                            0, 0xc0, 5})),
            File({0,    0x90, 60,   80,   9,    0xff, 0x58, 4, 3, 2,    24,   8,  0, 0xff, 0x59, 2,
                  0,    0,    0,    0xff, 0x51, 3,    1,    2, 3, 0,    0x90, 60, 0, 0,    0xf0, 1,
                  0xf7, 0,    0xc0, 5,    0,    0xb0, 7,    1, 0, 0x90, 61,   80, 0, 61,   0}));
}

TEST(Host_WriteMidiFile, BridgesLongGaps) {
  Bytes const file = File({0xff, 0xff, 0xff, 0x7f, 0xff, 1, 0, 1, 0xc0, 5});
  ExpectUnchanged(file);
  EXPECT_EQ(Rewritten(File({0xff, 0xff, 0xff, 0x7f, 0xc0, 5, 0, 0xb0, 7, 1})),
            File({0xff, 0xff, 0xff, 0x7f, 0xc0, 5, 0, 0xb0, 7, 1}));
}

TEST(Host_WriteMidiFile, LosesNothingOfWhatAReaderKept) {
  EXPECT_THAT(NotWritten(Read(File({0, 0x90, 60,   80, 0, 60, 81,   0,    61, 82, 5, 60,
                                    0, 5,    0xb0, 32, 1, 0,  0xff, 0x51, 3,  7,  7, 7}))),
              IsEmpty());
}

TEST(Host_WriteMidiFile, GoesToTheUsualDivisionWhereItHoldsAllTimes) {
  OneClip one;
  one.mSong.mHeader.mDivision = 96;
  one.Add(At(1), Vrae_ControllerEvent(7, 1));
  EXPECT_EQ(Write(one.mSong), File({1, 0xb0, 7, 1}));
  EXPECT_THAT(NotWritten(one.mSong), IsEmpty());
}

TEST(Host_WriteMidiFile, GoesToTheCoarsestDivisionThatHoldsAllTimes) {
  OneClip one;
  one.Add(Time_Tick(960000 + 64), Vrae_ControllerEvent(7, 1));
  EXPECT_EQ(Write(one.mSong), Header(0, 1, 15000) + Track({0xf5, 0x19, 0xb0, 7, 1}));
}

TEST(Host_WriteMidiFile, RoundsToTheNearestTickWhereNoDivisionHoldsAllTimes) {
  OneClip one;
  one.Add(Time_Tick(999), Vrae_ControllerEvent(7, 1));
  one.Add(Time_Tick(3000), Vrae_ControllerEvent(7, 2));
  one.Add(Time_Tick(6999), Vrae_ControllerEvent(7, 3));
  EXPECT_EQ(Write(one.mSong), File({0, 0xb0, 7, 1, 2, 7, 2, 1, 7, 3}));
  EXPECT_THAT(NotWritten(one.mSong), ElementsAre("3 time moved to the nearest tick of the file"));
}

TEST(Host_WriteMidiFile, RoundsBothEndsOfANote) {
  OneClip one;
  one.AddNote(Time_Tick(999), Time_TickLength(2003));
  EXPECT_EQ(Write(one.mSong), File({0, 0x90, 60, 80, 2, 60, 0}));
  EXPECT_THAT(NotWritten(one.mSong), ElementsAre("1 time moved to the nearest tick of the file"));
}

TEST(Host_WriteMidiFile, CountsValuesThatComeToStandAtOneTick) {
  OneClip one;
  one.Add(Time_Tick(1), Vrae_ControllerEvent(7, 1));
  one.Add(Time_Tick(2), Vrae_ControllerEvent(7, 2));
  one.Add(Time_Tick(3), Vrae_ControllerEvent(8, 2));
  EXPECT_THAT(NotWritten(one.mSong), ElementsAre("3 time moved to the nearest tick of the file",
                                                 "1 value moved to the tick of a later one"));
}

TEST(Host_WriteMidiFile, LeavesOutMutedAndSilentNotes) {
  OneClip one;
  Vrae_NoteWithDurationEvent const note(60, Length(1), 80, 64);
  one.GetChunk().GetNoteList()->AddNote(
      Vrad_NoteListBase_Note(At(0), note, Time_TypedLength(), note, true));
  Vrae_NoteWithDurationEvent silent = note;
  silent.mU.mNoteWithDuration.mOnVelocity = 0;
  one.GetChunk().GetNoteList()->AddNote(
      Vrad_NoteListBase_Note(At(0), silent, Time_TypedLength(), silent, false));
  EXPECT_EQ(Write(one.mSong), File({}));
  EXPECT_THAT(NotWritten(one.mSong),
              ElementsAre("1 muted note, left out", "1 note of velocity 0, left out"));
}

TEST(Host_WriteMidiFile, CountsWhatNotesWereBefore) {
  OneClip one;
  Vrae_NoteWithDurationEvent const note(60, Length(1), 80, 64);
  Vrae_NoteWithDurationEvent const other(61, Length(1), 80, 64);
  Vrad_NoteListBase & list = *one.GetChunk().GetNoteList();
  list.AddNote(Vrad_NoteListBase_Note(At(0), note, Time_TypedLength(), other, false));
  list.AddNote(Vrad_NoteListBase_Note(At(1), note, Time_TickLength(1), note, false));
  list.AddNote(Vrad_NoteListBase_Note(At(2), note, Time_TypedLength(), note, false));
  EXPECT_THAT(NotWritten(one.mSong),
              ElementsAre("2 note without what it was before it was changed"));
}

TEST(Host_WriteMidiFile, CountsNotesOfAPitchThatCross) {
  OneClip one;
  one.AddNote(At(0), Length(10));
  one.AddNote(At(2), Length(3));
  one.AddNote(At(3), Length(1), 61);
  EXPECT_THAT(NotWritten(one.mSong),
              ElementsAre("2 note that gets the end of another one of its pitch"));
  EXPECT_EQ(Write(one.mSong),
            File({0, 0x90, 60, 80, 2, 60, 80, 1, 61, 80, 1, 61, 0, 1, 60, 0, 5, 60, 0}));
}

TEST(Host_WriteMidiFile, WritesTimesInSamplesByTheTempoOfTheSong) {
  OneClip one;
  one.mSong.mTempoChanges.push_back({Time_Tick(0), 60.0});
  one.Add(Time_Sample(48000), Vrae_ControllerEvent(7, 1));
  EXPECT_EQ(Write(one.mSong), File({0, 0xff, 0x51, 3, 0x0f, 0x42, 0x40, 0x83, 0x60, 0xb0, 7, 1}));
  EXPECT_THAT(NotWritten(one.mSong), ElementsAre("1 time in samples, written in ticks"));
}

TEST(Host_WriteMidiFile, LeavesOutWhatComesTooEarlyOrTooLate) {
  OneClip one;
  one.Add(Time_Tick(-1), Vrae_ControllerEvent(7, 1));
  one.Add(At(1LL << 40), Vrae_ControllerEvent(7, 2));
  one.Add(At((1LL << 40) + 1), Vrae_ControllerEvent(7, 3));
  one.AddNote(Time_Tick(-1), Length(1));
  one.AddNote(At(1LL << 40), Length(1));
  one.mSong.mTempoChanges.push_back({Time_Tick(-2000), 120.0});
  EXPECT_THAT(NotWritten(one.mSong), ElementsAre("3 event before the beginning, left out",
                                                 "2 event later than a file can say, left out"));
  Host_Song const read = Read(Write(one.mSong));
  EXPECT_THAT(midi::PrintClip(*read.mClips[0].mChunk.Get()),
              ElementsAre("2199023255552000: cc7 2"));
}

TEST(Host_WriteMidiFile, WritesAClipWithoutAChannelOnTheFirst) {
  OneClip one(-1);
  one.Add(At(0), Vrae_ControllerEvent(7, 1));
  one.AddNote(At(0), Length(1));
  EXPECT_EQ(Write(one.mSong), File({0, 0xb0, 7, 1, 0, 0x90, 60, 80, 1, 60, 0}));
  EXPECT_THAT(NotWritten(one.mSong),
              ElementsAre("2 event of a clip without a channel, written on channel 0"));
}

TEST(Host_WriteMidiFile, CountsSysexOfAChannel) {
  OneClip one(3);
  unsigned char const data[] = {1, 2};
  one.Add(At(0), Vrae_SysexEvent(2, data));
  EXPECT_EQ(Write(one.mSong), File({0, 0xf0, 3, 1, 2, 0xf7}));
  EXPECT_THAT(NotWritten(one.mSong), ElementsAre("1 sysex of a channel, written without it"));
}

TEST(Host_WriteMidiFile, CountsClipsOfOneChannel) {
  OneClip one, other;
  one.Add(At(0), Vrae_ControllerEvent(7, 1));
  other.Add(At(0), Vrae_ControllerEvent(7, 1));
  one.mSong.mClips.push_back(std::move(other.mSong.mClips[0]));
  EXPECT_THAT(NotWritten(one.mSong),
              ElementsAre("1 clip that becomes one with another of its track and channel"));
}

TEST(Host_WriteMidiFile, CountsBankSelectsThatAreReadOtherwise) {
  OneClip one;
  Vrae_ProgramEvent bank(0, 5);
  bank.SetProgramEnable(false);
  one.Add(At(0), bank);
  one.Add(At(1), Vrae_ProgramEvent(1, 0));
  one.Add(At(2), Vrae_ControllerEvent(32, 1));
  EXPECT_THAT(NotWritten(one.mSong),
              ElementsAre("1 controller 32 that is read as a bank select",
                          "1 bank select that the next program change takes"));
}

TEST(Host_WriteMidiFile, CountsClipsThatHoldNothing) {
  OneClip one;
  EXPECT_EQ(Write(one.mSong), File({}));
  EXPECT_THAT(NotWritten(one.mSong), ElementsAre("1 clip without events, left out"));
}

TEST(Host_WriteMidiFile, CountsNotesOfNoLength) {
  OneClip one;
  for (int length : {-1, 0, 1}) {
    Vrae_NoteWithDurationEvent note(60, Time_TickLength(1), 80, 64);
    note.mU.mNoteWithDuration.mDuration = length;
    one.GetChunk().GetNoteList()->AddNote(
        Vrad_NoteListBase_Note(At(2 + length), note, Time_TypedLength(), note, false));
  }
  EXPECT_EQ(Write(one.mSong),
            File({1, 0x90, 60, 80, 0, 60, 0, 1, 60, 80, 0, 60, 0, 1, 60, 80, 0, 60, 0}));
  EXPECT_THAT(NotWritten(one.mSong),
              ElementsAre("2 note of no length, which is read as one of 1 tick"));
}

TEST(Host_WriteMidiFile, RoundsTempos) {
  OneClip one;
  one.mSong.mClips.clear();
  one.mSong.mTempoChanges = {{Time_Tick(0), 120.0}, {At(1), 97.3}, {At(2), 1.0}};
  EXPECT_EQ(Write(one.mSong), File({0,    0xff, 0x51, 3, 0x07, 0xa1, 0x20, 1,    0xff, 0x51, 3,
                                    0x09, 0x68, 0xca, 1, 0xff, 0x51, 3,    0xff, 0xff, 0xff}));
  EXPECT_THAT(NotWritten(one.mSong), ElementsAre("2 tempo rounded to microseconds"));
}

TEST(Host_WriteMidiFile, LeavesOutTempoWhereTicksArePartsOfAFrame) {
  OneClip one;
  one.mSong.mClips.clear();
  one.mSong.mHeader.mDivision = 0xe728;
  one.mSong.mTempoChanges = {{Time_Tick(0), 120.0}};
  EXPECT_EQ(Write(one.mSong), Header(0, 1, 0xe728) + Track({}));
  EXPECT_THAT(NotWritten(one.mSong),
              ElementsAre("1 tempo in a file that counts time in frames, left out"));
}

TEST(Host_WriteMidiFile, LeavesOutSignaturesThatCannotBeSaid) {
  OneClip one;
  one.mSong.mClips.clear();
  one.mSong.mTimeSignatures = {{At(0), 256, 4},         {At(1), 0, 4},  {At(2), 4, 3},
                               {At(3), 4, 2048},        {At(4), 4, -4}, {At(5), 4, 4, 0, 256, 8},
                               {At(6), 4, 4, 0, 24, -1}};
  one.mSong.mKeySignatures = {{At(0), 8, false}, {At(0), -8, false}};
  EXPECT_EQ(Write(one.mSong), File({}));
  EXPECT_THAT(NotWritten(one.mSong), ElementsAre("7 time signature that MIDI cannot say, left out",
                                                 "2 key signature that MIDI cannot say, left out"));
}

TEST(Host_WriteMidiFile, RefusesMoreTracksThanAFileCounts) {
  Host_Song song;
  song.mTracks.resize(65535, {"", Time_Tick(0)});
  EXPECT_EQ(Write(song).size(), 14u + 65535 * 12);
  song.mTracks.push_back({"", Time_Tick(0)});
  EXPECT_THAT([&] { Write(song); }, testing::ThrowsMessage<Host_MidiWriteError>(
                                        "a MIDI file has at most 65535 tracks, not 65536"));
}

TEST(Host_WriteMidiFile, TellsTheFirstOfEachKind) {
  OneClip one;
  one.Add(Time_Tick(7), Vrae_ControllerEvent(7, 1));
  one.Add(Time_Tick(3), Vrae_ControllerEvent(7, 1));
  Host_WriteReport report;
  Host_WriteMidiFile(one.mSong, report);
  ASSERT_EQ(report.GetNotWritten().size(), 2u);
  EXPECT_EQ(report.GetNotWritten()[0].mClip, 0);
  EXPECT_EQ(report.GetNotWritten()[0].mTime.AsInt64(), 3);
  EXPECT_EQ(report.GetNum(kNotWritten_OffGrid), 2);
  EXPECT_EQ(report.GetNum(kNotWritten_MutedNote), 0);
}

}  // namespace
