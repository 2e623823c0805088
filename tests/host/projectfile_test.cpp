// What a project file keeps of a song, byte by byte, and what its reader takes and refuses.
#include "host/host_projectfile.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/time_convert.h"
#include "project_samples.h"
#include "song_print.h"
#include "support/golden_files.h"

namespace {

using midi::PrintNotKept;
using midi::PrintProblems;
using midi::PrintSong;
using project::Clip;
using project::File;
using project::FindBounds;
using project::Float;
using project::Head;
using project::Int;
using project::Int64;
using project::Ints;
using project::Last;
using project::MakeSong;
using project::Read;
using project::Record;
using project::Track;
using testing::ElementsAre;
using testing::IsEmpty;
using project::operator+;

Host_Song Copy(Host_Song const & iSong) {
  return Read(Host_WriteProjectFile(iSong));
}

TEST(Host_ProjectFile, KeepsAllOfASong) {
  Host_Song const song = MakeSong(), copy = Copy(song);
  EXPECT_EQ(PrintSong(copy), PrintSong(song));
  EXPECT_THAT(PrintProblems(copy), IsEmpty());
  EXPECT_THAT(PrintNotKept(copy), IsEmpty());
}

TEST(Host_ProjectFile, KeepsTheHeaderOfTheMidiFile) {
  for (int division : {1, 480, 32767, 0xe728}) {
    Host_Song song;
    song.mHeader = {2, 7, division};
    Host_Song const copy = Copy(song);
    EXPECT_EQ(copy.mHeader.mFormat, 2);
    EXPECT_EQ(copy.mHeader.mNumTracks, 7);
    EXPECT_EQ(copy.mHeader.mDivision, division);
    EXPECT_EQ(copy.mTiming.IsSMPTE(), division == 0xe728);
  }
}

TEST(Host_ProjectFile, SaysThatItIsAProject) {
  EXPECT_EQ(Copy(Host_Song()).mKind, kFileKind_Project);
}

TEST(Host_ProjectFile, KeepsTimesInSamples) {
  Vrad_Chunk & chunk = *Copy(MakeSong()).mClips[4].mChunk.Get();
  EXPECT_THAT(PrintContents(chunk), "notes n60@24000s+12000s / stream 7 c7=1@48000s / misc");
}

TEST(Host_ProjectFile, KeepsTheIdentitiesOfClips) {
  Host_Song const song = MakeSong(), copy = Copy(song);
  ASSERT_EQ(copy.mClips.size(), 5u);
  for (size_t i = 0; i < 5; ++i)
    EXPECT_TRUE(copy.mClips[i].mChunk->GetUID() == song.mClips[i].mChunk->GetUID()) << i;
}

TEST(Host_ProjectFile, MakesClipsThatCanBeUndone) {
  EXPECT_TRUE(Copy(MakeSong()).mClips[0].mChunk->NdoIsUndoable());
}

TEST(Host_ProjectFile, KeepsAnEmptySong) {
  Host_Song const copy = Copy(Host_Song());
  EXPECT_THAT(PrintSong(copy), ElementsAre("division 480"));
  EXPECT_THAT(PrintProblems(copy), IsEmpty());
}

TEST(Host_ProjectFile, IsTheSameForTheSameSong) {
  Host_Song const song = MakeSong();
  Bytes const bytes = Host_WriteProjectFile(song);
  EXPECT_EQ(Host_WriteProjectFile(song), bytes);
  EXPECT_EQ(Host_WriteProjectFile(Read(bytes)), bytes);
}

TEST(Host_ProjectFile, HasTheBytesThatAreDescribed) {
  Bytes const golden = ReadGolden("project");
  Host_Song const song = Read(golden);
  EXPECT_THAT(PrintSong(song),
              ElementsAre("division 480", "track 'Solo' to 2880000", "0 in 0: tempo 90",
                          "0 in 0: meter 3/4 24 8", "0 in 0: key -1 minor", "clip 0/0",
                          "960000: note 62 +480000 on 100 off 64"));
  EXPECT_THAT(PrintProblems(song), IsEmpty());
  EXPECT_EQ(Host_WriteProjectFile(song), golden);
}

TEST(Host_ProjectFile, LeavesTheTempoOfTheProcessAlone) {
  double const before = Time_Convert::GetDefaultTempoMap().GetTempoAt(Time_Tick(0));
  Copy(MakeSong());
  EXPECT_EQ(Time_Convert::GetDefaultTempoMap().GetTempoAt(Time_Tick(0)), before);
}

TEST(Host_ProjectFile, GoesToADiskAndBack) {
  std::string const path = testing::TempDir() + "projectfile_test_\xc3\xa9.vrad";
  Host_Song const song = MakeSong();
  Host_WriteProjectFile(song, path);
  EXPECT_EQ(PrintSong(Host_ReadProjectFile(path)), PrintSong(song));
  std::filesystem::remove(path);
}

TEST(Host_ProjectFile, LeavesAnOldFileWhereItCannotBeWritten) {
  EXPECT_THROW(Host_WriteProjectFile(MakeSong(), testing::TempDir() + "no/such/folder.vrad"),
               Sys_StreamException);
}

TEST(Host_ReadProjectFile, TellsThatAFileIsMissing) {
  EXPECT_THROW(Host_ReadProjectFile(testing::TempDir() + "no_such.vrad"), std::system_error);
}

TEST(Host_ReadProjectFile, RefusesWhatHasNoRecord) {
  for (Bytes const & bytes : {Bytes(), midi::Text("MThd"), Bytes{8, 'v', 'r', 'a', 'd'},
                              midi::Text("\x08vradHead") + Bytes(100)}) {
    EXPECT_THAT([&] { Read(bytes); },
                testing::ThrowsMessage<Host_ProjectFileError>("no record of a project is in it"));
  }
}

TEST(Host_IsProjectFile, LooksAtTheBeginning) {
  EXPECT_TRUE(Host_IsProjectFile(Host_WriteProjectFile(Host_Song())));
  EXPECT_FALSE(Host_IsProjectFile(midi::Text("MThd")));
  EXPECT_FALSE(Host_IsProjectFile(midi::Text("\x08vra")));
  EXPECT_FALSE(Host_IsProjectFile(Bytes()));
}

TEST(Host_ReadProjectFile, TellsItsProgressUpToTheEnd) {
  Bytes const bytes = Host_WriteProjectFile(MakeSong());
  std::vector<size_t> done;
  Host_ReadProjectFile(bytes, [&](size_t iNumDone, size_t iNumBytes) {
    EXPECT_EQ(iNumBytes, bytes.size());
    done.push_back(iNumDone);
  });
  std::vector<size_t> const bounds = FindBounds(bytes);
  EXPECT_EQ(done, std::vector<size_t>(bounds.begin() + 1, bounds.end()));
}

TEST(Host_ReadProjectFile, CountsUnknownRecords) {
  Bytes const file = File(Record("vradNews", {1}) + Record("vradNews", {}, 7), 0, 0, 4);
  Host_Song const song = Read(file);
  EXPECT_THAT(PrintNotKept(song), ElementsAre("2 record of an unknown kind"));
  EXPECT_EQ(song.mReport.GetNotKept()[0].mOffset, Head(0, 0).size());
  EXPECT_THAT(PrintProblems(song), IsEmpty());
}

// Each record of the file with as many bytes more, under right sums.
Bytes Lengthened(Bytes const & iFile, Bytes const & iMore) {
  Host_MidiReport report;
  Host_ProjectScanner scanner(iFile, report);
  Bytes result;
  while (std::optional<Host_ProjectRecord> const record = scanner.Next()) {
    Bytes const contents(record->mContents.begin(), record->mContents.end());
    result = result + Record(record->mTag.c_str(), contents + iMore);
  }
  return result;
}

TEST(Host_ReadProjectFile, PassesOverWhatALaterWriterAppends) {
  Bytes const bytes = Host_WriteProjectFile(MakeSong());
  Host_Song const song = Read(Lengthened(bytes, {8, 'v', 'r', 'a', 'd', 1, 2, 3}));
  EXPECT_THAT(PrintProblems(song), IsEmpty());
  EXPECT_EQ(Host_WriteProjectFile(song), bytes);
}

TEST(Host_ReadProjectFile, TakesRecordsInAnyOrder) {
  Bytes const bytes = Host_WriteProjectFile(MakeSong());
  std::vector<size_t> const bounds = FindBounds(bytes);
  Bytes backwards;
  for (size_t i = bounds.size() - 1; i > 0; --i) {
    backwards.insert(backwards.end(), bytes.begin() + static_cast<std::ptrdiff_t>(bounds[i - 1]),
                     bytes.begin() + static_cast<std::ptrdiff_t>(bounds[i]));
  }
  Host_Song const song = Read(backwards);
  EXPECT_THAT(PrintProblems(song), IsEmpty());
  EXPECT_EQ(Host_WriteProjectFile(song), bytes);
}

TEST(Host_ReadProjectFile, PutsItemsInOrder) {
  Bytes const tempo = Int(3) + Int64(9) + Float(60) + Int(1) + Int64(5) + Float(70) + Int(0) +
                      Int64(9) + Float(80) + Int(0);
  Bytes const keys =
      Int(2) + Int64(9) + Int(1) + Bytes{0} + Int(1) + Int64(9) + Int(2) + Bytes{1} + Int(0);
  Host_Song const song =
      Read(File(Record(kHost_ProjectTempo, tempo) + Record(kHost_ProjectKeys, keys), 0, 0, 4));
  EXPECT_THAT(PrintSong(song),
              ElementsAre("division 480", "5 in 0: tempo 70", "9 in 1: tempo 60",
                          "9 in 0: tempo 80", "9 in 0: key 2 minor", "9 in 1: key 1 major"));
}

TEST(Host_ReadProjectFile, TellsAVersionThatItDoesNotKnow) {
  Bytes const good = Track(0, 0, "A");
  Bytes const file = File(good + Record(kHost_ProjectTempo, Int(0), 2), 1, 0, 4);
  Host_Song const song = Read(file);
  EXPECT_THAT(PrintProblems(song), ElementsAre("91: record 'vradTmpo' is of version 2, not 1"));
  EXPECT_EQ(Head(1, 0).size() + good.size(), 91u);
  EXPECT_TRUE(song.mReport.IsLossy());
  EXPECT_EQ(song.mTracks[0].mName, "A");
}

TEST(Host_ReadProjectFile, TellsAContentsThatEndsEarly) {
  Host_Song const song = Read(File(Record(kHost_ProjectTempo, Int(1) + Int64(0)), 0, 0, 3));
  ASSERT_THAT(PrintProblems(song), testing::SizeIs(1));
  EXPECT_THAT(PrintProblems(song)[0], testing::StartsWith("47: record 'vradTmpo' can't be read: "));
}

TEST(Host_ReadProjectFile, TellsAMissingHead) {
  Bytes const file = Track(0, 5, "A") + Last(3);
  Host_Song const song = Read(file);
  EXPECT_THAT(PrintProblems(song),
              ElementsAre("75: the head is missing: taken for format 1, 480 ticks a quarter"));
  EXPECT_THAT(PrintSong(song), ElementsAre("division 480", "track 'A' to 5"));
}

TEST(Host_ReadProjectFile, TellsAMissingEnd) {
  EXPECT_THAT(PrintProblems(Read(Head(0, 0))), ElementsAre("47: the end of the file is missing"));
}

TEST(Host_ReadProjectFile, TellsMissingTracksAndClips) {
  EXPECT_THAT(PrintProblems(Read(File(Track(0, 0, ""), 2, 3, 6))),
              ElementsAre("121: 1 of 2 tracks could be read", "121: 0 of 3 clips could be read"));
}

TEST(Host_ReadProjectFile, TellsAnyOtherMissingRecord) {
  EXPECT_THAT(PrintProblems(Read(File(Track(0, 0, ""), 1, 0, 4))),
              ElementsAre("121: 3 of 4 records could be read"));
}

TEST(Host_ReadProjectFile, MakesTheTracksThatAreMissing) {
  Host_Song const song = Read(File(Clip(2, 0, *MakeChunk().Get()), 4, 1, 7));
  EXPECT_EQ(song.mTracks.size(), 4u);
}

struct BadContents {
  char const * mName;
  char const * mTag;
  Bytes mContents;
  char const * mWhat;
};

Bytes Tempo(long long iTick, double iTempo, int iTrack) {
  return Int(1) + Int64(iTick) + Float(iTempo) + Int(iTrack);
}
Bytes Meter(long long iTick, std::initializer_list<int> iNumbers) {
  return Int(1) + Int64(iTick) + Ints(iNumbers);
}
Bytes Key(long long iTick, int iNumSharps, int iTrack) {
  return Int(1) + Int64(iTick) + Int(iNumSharps) + Bytes{1} + Int(iTrack);
}
Bytes TrackContents(int iNumber, long long iEnd, int iLength) {
  return Int(iNumber) + Int64(iEnd) + Int(iLength);
}

constexpr long long kTooLate = (1ll << 60) + 1;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class BadValues : public testing::TestWithParam<BadContents> {};

TEST_P(BadValues, AreToldAndLeftOut) {
  Bytes const file = File(Record(GetParam().mTag, GetParam().mContents), 0, 0, 3);
  Host_Song const song = Read(file);
  std::string const problem =
      "47: record '" + std::string(GetParam().mTag) + "' has " + GetParam().mWhat + " out of range";
  ASSERT_THAT(PrintProblems(song), testing::SizeIs(testing::Ge(1u)));
  EXPECT_EQ(PrintProblems(song)[0], problem);
  EXPECT_TRUE(song.mReport.IsLossy());
  EXPECT_THAT(PrintSong(song), ElementsAre("division 480"));
}

INSTANTIATE_TEST_SUITE_P(
    Host_ReadProjectFile, BadValues,
    testing::ValuesIn(std::vector<BadContents>{
        {"EarlyTempo", kHost_ProjectTempo, Tempo(-1, 120, 0), "a tempo"},
        {"LateTempo", kHost_ProjectTempo, Tempo(kTooLate, 120, 0), "a tempo"},
        {"NoTempo", kHost_ProjectTempo, Tempo(0, 0, 0), "a tempo"},
        {"NegativeTempo", kHost_ProjectTempo, Tempo(0, -120, 0), "a tempo"},
        {"InfiniteTempo", kHost_ProjectTempo, Tempo(0, kInfinity, 0), "a tempo"},
        {"TempoThatIsNone", kHost_ProjectTempo, Tempo(0, std::nan(""), 0), "a tempo"},
        {"TempoBeforeTheTracks", kHost_ProjectTempo, Tempo(0, 120, -1), "a tempo"},
        {"TempoBehindTheTracks", kHost_ProjectTempo, Tempo(0, 120, 65535), "a tempo"},
        {"EarlyMeter", kHost_ProjectMeters, Meter(-1, {4, 4, 0, 24, 8}), "a time signature"},
        {"MeterOfNoBeats", kHost_ProjectMeters, Meter(0, {0, 4, 0, 24, 8}), "a time signature"},
        {"MeterOf256Beats", kHost_ProjectMeters, Meter(0, {256, 4, 0, 24, 8}), "a time signature"},
        {"MeterOfThirds", kHost_ProjectMeters, Meter(0, {4, 3, 0, 24, 8}), "a time signature"},
        {"MeterOfNothing", kHost_ProjectMeters, Meter(0, {4, 0, 0, 24, 8}), "a time signature"},
        {"MeterTooFine", kHost_ProjectMeters, Meter(0, {4, 2048, 0, 24, 8}), "a time signature"},
        {"MeterOfNoTrack", kHost_ProjectMeters, Meter(0, {4, 4, -1, 24, 8}), "a time signature"},
        {"MeterClicks", kHost_ProjectMeters, Meter(0, {4, 4, 0, 256, 8}), "a time signature"},
        {"MeterBeats", kHost_ProjectMeters, Meter(0, {4, 4, 0, 24, -1}), "a time signature"},
        {"TemposBelowNone", kHost_ProjectTempo, Int(-1), "a count"},
        {"MetersBelowNone", kHost_ProjectMeters, Int(-1), "a count"},
        {"KeysBelowNone", kHost_ProjectKeys, Int(-0x7fffffff), "a count"},
        {"EarlyKey", kHost_ProjectKeys, Key(-1, 0, 0), "a key signature"},
        {"KeyOf8Sharps", kHost_ProjectKeys, Key(0, 8, 0), "a key signature"},
        {"KeyOf8Flats", kHost_ProjectKeys, Key(0, -8, 0), "a key signature"},
        {"KeyOfNoTrack", kHost_ProjectKeys, Key(0, 0, 65535), "a key signature"},
        {"TrackBeforeTheFirst", kHost_ProjectTrack, TrackContents(-1, 0, 0), "a number"},
        {"TrackBehindTheLast", kHost_ProjectTrack, TrackContents(65535, 0, 0), "a number"},
        {"TrackThatEndsEarly", kHost_ProjectTrack, TrackContents(0, -1, 0), "an end"},
        {"TrackThatEndsLate", kHost_ProjectTrack, TrackContents(0, kTooLate, 0), "an end"},
        {"NameTooShort", kHost_ProjectTrack, TrackContents(0, 0, -1), "a name"},
        {"NameTooLong", kHost_ProjectTrack, TrackContents(0, 0, 1), "a name"},
        {"ClipOfNoTrack", kHost_ProjectClip, Ints({-1, 0}), "a track"},
        {"ClipOfFarTrack", kHost_ProjectClip, Ints({65535, 0}), "a track"},
        {"ClipOnChannel16", kHost_ProjectClip, Ints({0, 16}), "a channel"},
        {"ClipOnChannelMinus2", kHost_ProjectClip, Ints({0, -2}), "a channel"},
        {"HeadOfFormat3", kHost_ProjectHead, Ints({3, 480, 0, 0, 0}), "a format"},
        {"HeadOfFormatMinus1", kHost_ProjectHead, Ints({-1, 480, 0, 0, 0}), "a format"},
        {"HeadOfNoDivision", kHost_ProjectHead, Ints({1, 0, 0, 0, 0}), "a division"},
        {"HeadOfNoFrameRate", kHost_ProjectHead, Ints({1, 0xff28, 0, 0, 0}), "a division"},
    }),
    [](testing::TestParamInfo<BadContents> const & iInfo) { return iInfo.param.mName; });

struct BadSong {
  char const * mWhat;  // as in "a tempo"
  void (*mSpoil)(Host_Song &);
};

// What a reader would leave out is not written in the first place.
TEST(Host_WriteProjectFile, RefusesASongWithValuesOutOfRange) {
  BadSong const songs[] = {
      {"a format", [](Host_Song & song) { song.mHeader.mFormat = 3; }},
      {"a division", [](Host_Song & song) { song.mHeader.mDivision = 0; }},
      {"a tempo",
       [](Host_Song & song) {
         song.mTempoChanges = {{Time_Tick(0), 0.0}};
       }},
      {"a tempo",
       [](Host_Song & song) {
         song.mTempoChanges = {{Time_Tick(-1), 60.0}};
       }},
      {"a tempo",
       [](Host_Song & song) {
         song.mTempoChanges = {{Time_Tick(0), std::nan("")}};
       }},
      {"a time signature", [](Host_Song & song) { song.mTimeSignatures[0].mDenominator = 2048; }},
      {"a time signature", [](Host_Song & song) { song.mTimeSignatures[0].mTrack = 65535; }},
      {"a key signature", [](Host_Song & song) { song.mKeySignatures[0].mNumSharps = 8; }},
      {"a number of tracks", [](Host_Song & song) { song.mTracks.resize(65536, song.mTracks[0]); }},
      {"an end of a track", [](Host_Song & song) { song.mTracks[0].mEnd = Time_Tick(-1); }},
      {"a track of a clip", [](Host_Song & song) { song.mClips[0].mTrack = -1; }},
      {"a channel of a clip", [](Host_Song & song) { song.mClips[0].mChannel = 16; }},
  };
  for (BadSong const & bad : songs) {
    Host_Song song = MakeSong();
    bad.mSpoil(song);
    EXPECT_THAT([&] { Host_WriteProjectFile(song); },
                testing::ThrowsMessage<Sys_StreamException>(
                    "a song that has " + std::string(bad.mWhat) + " out of range can't be saved"));
  }
}

TEST(Host_ReadProjectFile, TakesValuesAtTheEndsOfTheirRanges) {
  Bytes const records = Record(kHost_ProjectTempo, Tempo(1ll << 60, 5e-324, 65534)) +
                        Record(kHost_ProjectMeters, Meter(1ll << 60, {255, 1024, 65534, 255, 0})) +
                        Record(kHost_ProjectKeys, Key(1ll << 60, -7, 65534)) +
                        Track(65534, 1ll << 60, "") + Clip(65534, -1, *MakeChunk().Get());
  Host_Song const song = Read(File(records, 1, 1, 7));
  EXPECT_THAT(PrintProblems(song), IsEmpty());
  EXPECT_EQ(song.mTempoChanges.size(), 1u);
  EXPECT_EQ(song.mTimeSignatures.size(), 1u);
  EXPECT_EQ(song.mKeySignatures.size(), 1u);
  EXPECT_EQ(song.mTracks.size(), 65535u);
  EXPECT_EQ(song.mClips.size(), 1u);
}

TEST(Host_ReadProjectFile, KeepsTheGoodValuesBesideBadOnes) {
  Bytes const tempo = Int(2) + Int64(-1) + Float(60) + Int(0) + Int64(0) + Float(70) + Int(0);
  EXPECT_THAT(PrintSong(Read(File(Record(kHost_ProjectTempo, tempo), 0, 0, 3))),
              ElementsAre("division 480", "0 in 0: tempo 70"));
}

TEST(Host_ReadProjectFile, KeepsWhatADamagedChunkStillHolds) {
  Bytes const contents = Ints({0, 0}) + ReadGolden("chunk_damaged_notes");
  Host_Song const song = Read(File(Record(kHost_ProjectClip, contents), 0, 1, 3));
  EXPECT_THAT(PrintProblems(song),
              ElementsAre("47: record 'vradClip' holds a damaged chunk: bad data encountered"));
  ASSERT_EQ(song.mClips.size(), 1u);
  EXPECT_EQ(PrintContents(*song.mClips[0].mChunk.Get()), "notes n60@0t+480000t / misc");
}

// One note, whose original has values that no note has.
Host_Song MakeSongWithOddOriginal() {
  Host_Song song;
  song.mTracks = {{"", Time_Tick(0)}};
  Vrae_NoteWithDurationEvent const note(60, Time_TickLength(480000), 100, 64);
  Vrae_NoteWithDurationEvent original = note;
  original.mU.mNoteWithDuration.mPitch = -1;
  original.mU.mNoteWithDuration.mDuration = 0;
  original.mU.mNoteWithDuration.mOnVelocity = 0;
  original.mU.mNoteWithDuration.mOffVelocity = -2;
  project::AddClip(song, 0, 0)
      .GetNoteList()
      ->AddNote(Vrad_NoteListBase_Note(Ticks(0), note, Time_TypedLength(), original, false));
  return song;
}

TEST(Host_ReadProjectFile, KeepsValuesThatFailChecks) {
  Host_Song const song = MakeSongWithOddOriginal();
  Bytes const bytes = Host_WriteProjectFile(song);
  Host_Song const copy = Read(bytes);
  EXPECT_EQ(PrintSong(copy), PrintSong(song));
  EXPECT_EQ(PrintSong(copy).back(), "0: note 60 +480000 on 100 off 64, was note -1 +0 on 0 off -2");
  EXPECT_EQ(Host_WriteProjectFile(copy), bytes);
}

TEST(Host_ReadProjectFile, TellsValuesThatFailChecksAndNoLoss) {
  Host_Song const song = Read(Host_WriteProjectFile(MakeSongWithOddOriginal()));
  std::string const clip = "183: record 'vradClip' holds a value that fails the check ";
  EXPECT_THAT(PrintProblems(song),
              ElementsAre(clip + "durationTyped.AsInt64() > 0", clip + "iPitch >= 0",
                          clip + "iDuration >= Time_TypedLength(1, iDuration.GetType())",
                          clip + "iOnVelocity >= 1", clip + "iOffVelocity >= 0"));
  EXPECT_FALSE(song.mReport.IsLossy());
}

TEST(Host_ReadProjectFile, TellsAClipWithoutAChunk) {
  Host_Song const song = Read(File(Record(kHost_ProjectClip, Ints({0, 0})), 0, 0, 3));
  ASSERT_THAT(PrintProblems(song), testing::SizeIs(1));
  EXPECT_THAT(PrintProblems(song)[0], testing::StartsWith("47: record 'vradClip' can't be read: "));
}

}  // namespace
