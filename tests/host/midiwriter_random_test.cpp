// Songs by chance, odd ones among them: a written song is read as the same one unless something was
// counted as not written.
#include <random>

#include <gtest/gtest.h>

#include "foundation/sys_delayeddeletion.h"
#include "host/host_midiwriter.h"
#include "ndo/ndo_manager.h"
#include "song_print.h"
#include "vrad/vrad_extendedevent.h"

namespace {

// One song for each number.
class Dice {
public:
  explicit Dice(unsigned iSeed) : mEngine(iSeed) {}

  Host_Song MakeSong() {
    Host_Song song;
    song.mHeader.mFormat = Below(3);
    song.mHeader.mDivision = OneIn(3) ? 96 : OneIn(10) ? 0xe728 : 480;
    song.mTiming = Host_MidiTiming(song.mHeader.mDivision);
    int const numTracks = 1 + Below(3);
    for (int track = 0; track < numTracks; ++track) {
      song.mTracks.push_back({OneIn(2) ? "name" : "", AtFileTick(song, 3000)});
      for (int channel : {0, 9, -1})
        if (!OneIn(3)) AddClip(song, track, channel);
    }
    if (OneIn(2)) song.mTempoChanges.push_back({AtFileTick(song, Below(9)), 125.0, 0});
    if (OneIn(9)) song.mTempoChanges.push_back({AtFileTick(song, 10), 97.3, 0});
    if (OneIn(2)) song.mTimeSignatures.push_back({AtFileTick(song, Below(9)), 3, 4, 0});
    if (OneIn(9)) song.mTimeSignatures.push_back({AtFileTick(song, 10), 3, 2048, 0});
    if (OneIn(2)) song.mKeySignatures.push_back({AtFileTick(song, Below(9)), -3, true, 0});
    return song;
  }

private:
  int Below(int iNum) { return static_cast<int>(mEngine() % static_cast<unsigned>(iNum)); }
  bool OneIn(int iNum) { return Below(iNum) == 0; }
  signed char Data() { return static_cast<signed char>(Below(128)); }

  static Time_Tick AtFileTick(Host_Song const & iSong, int iFileTick) {
    return iSong.mTiming.ToTick(iFileTick);
  }

  void AddClip(Host_Song & ioSong, int iTrack, int iChannel) {
    ioSong.mClips.push_back(
        {iTrack, iChannel, Ndo_AutoPtr<Vrad_Chunk>(Vrad_Chunk::New(Ndo_Object::kUndoable, false))});
    Vrad_Chunk & chunk = *ioSong.mClips.back().mChunk.Get();
    for (int i = Below(4); i >= 0; --i) {
      bool const isSysex = iChannel < 0 ? !OneIn(60) : OneIn(60);
      Time_Typed time = AtFileTick(ioSong, Below(40));
      if (OneIn(60)) time = Time_Tick(time.AsInt64() + Below(3) - 1);
      if (OneIn(150)) time = Time_Sample(time.AsInt64() / 40);
      if (isSysex) {
        chunk.AddEvent(Vrad_ExtendedEvent(time, RandomSysex()));
      } else if (OneIn(2)) {
        chunk.AddEvent(Vrad_ExtendedEvent(time, RandomValue()));
      } else {
        AddNote(ioSong, chunk, time);
      }
    }
  }

  Vrae_Event RandomSysex() {
    unsigned char data[20];
    for (unsigned char & byte : data)
      byte = static_cast<unsigned char>(Below(128));
    return Vrae_SysexEvent(Below(21), data);
  }

  Vrae_Event RandomValue() {
    switch (Below(5)) {
    case 0:
      return Vrae_PitchBendEvent(static_cast<short>(Below(16384) - 8192));
    case 1:
      return Vrae_MonoPressureEvent(Data());
    case 2:
      return Vrae_PolyPressureEvent(Data(), Data());
    case 3: {
      Vrae_ProgramEvent program(Data(), static_cast<short>(Below(16384)));
      program.SetProgramEnable(!OneIn(8));
      program.SetMSBBankEnable(OneIn(2));
      program.SetLSBBankEnable(OneIn(2));
      return program;
    }
    default:
      return Vrae_ControllerEvent(static_cast<signed char>(OneIn(20) ? 32 : 1 + Below(31)), Data());
    }
  }

  void AddNote(Host_Song const & iSong, Vrad_Chunk & ioChunk, Time_Typed iTime) {
    long long const start = iTime.AsInt64();
    long long const fileTick = iSong.mTiming.ToFileTick(Time_Tick(start < 0 ? 0 : start));
    long long duration = iSong.mTiming.ToTick(fileTick + Below(20)).AsInt64() - start;
    if (duration <= 0) duration = OneIn(10) ? 0 : 1;
    Vrae_NoteWithDurationEvent note(static_cast<signed char>(60 + Below(3)), Time_TickLength(1),
                                    static_cast<signed char>(1 + Below(127)), Data());
    note.mU.mNoteWithDuration.mDuration = duration;
    if (OneIn(150)) note.mU.mNoteWithDuration.mOnVelocity = 0;
    Vrae_NoteWithDurationEvent original = note;
    if (OneIn(100)) original.mU.mNoteWithDuration.mPitch = 1;
    Time_TypedLength const delta(OneIn(100) ? 7 : 0, Time_eType_Ticks);
    ioChunk.GetNoteList()->AddNote(
        Vrad_NoteListBase_Note(iTime, note, delta, original, OneIn(100)));
  }

  std::mt19937 mEngine;
};

TEST(Host_WriteMidiFile, CountsWhateverDoesNotComeBack) {
  int numWhole = 0, numCounted = 0;
  for (unsigned seed = 0; seed < 3000; ++seed) {
    Host_Song const song = Dice(seed).MakeSong();
    Host_WriteReport report;
    Host_Song const copy = midi::Read(Host_WriteMidiFile(song, report));
    ASSERT_EQ(copy.mReport.GetNumProblems(), 0) << seed;
    ++(report.IsEmpty() ? numWhole : numCounted);
    if (report.IsEmpty()) {
      // The division may be another.
      ASSERT_EQ(midi::PrintMusic(copy), midi::PrintMusic(song)) << seed;
    }
    if (seed % 100 == 0) {
      Ndo_gManager.DropUnreferenced();
      Sys_DelayedDeletionQueue::DeletePending();
    }
  }
  EXPECT_GT(numWhole, 600);
  EXPECT_GT(numCounted, 600);
}

}  // namespace
