// Clips with times in samples, or in both units; notes that last very long; the ends of time.
#include <gtest/gtest.h>

#include <vector>

#include "foundation/sys_stream.h"
#include "foundation/time_convert.h"
#include "host/host_streamchecker.h"
#include "player_rig.h"

namespace {

constexpr long long kSecond = 48000;

// A tempo for as long as the test lasts.
struct Host_BlockPlayer_TempoInSamples : testing::Test {
  ~Host_BlockPlayer_TempoInSamples() override { Time_Convert::GetDefaultTempoMap().Reset(120.0); }
  static void SetTempo(double iBeatsPerMinute) {
    Time_Convert::GetDefaultTempoMap().Reset(iBeatsPerMinute);
  }
  PlayerRig mRig;
};

void AddInSamples(Vrad_Chunk & ioChunk, long long iSample, Vrae_Event const & iEvent) {
  ioChunk.AddEvent(Vrad_ExtendedEvent(Samples(iSample), iEvent));
}

void AddInSamples(Vrad_Chunk & ioChunk, long long iSample, int iNumber, int iValue) {
  ioChunk.AddEvent(ControllerAt(Samples(iSample), iNumber, iValue));
}

Vrae_ProgramEvent Program(int iNumber) {
  return Vrae_ProgramEvent(static_cast<signed char>(iNumber), static_cast<short>(0xC000));
}

// A note of that many samples, in ticks, made so long by a change.
void AddLengthenedNote(Vrad_Chunk & ioChunk, long long iSample, long long iLength, int iPitch) {
  AddNote(ioChunk, iSample, 100, iPitch);
  signed char const pitch = static_cast<signed char>(iPitch);
  ioChunk.GetNoteList()->ChangeNote(
      AtSample(iSample),
      Vrae_NoteWithDurationEvent(pitch, Time_TickLength(100 * kTicksPerSample), 100, 10),
      Vrae_NoteWithDurationEvent(pitch, Time_TickLength(iLength * kTicksPerSample), 100, 10));
}

}  // namespace

// ---- Samples ----

TEST(Host_BlockPlayer_InSamples, RestoresValuesNotesAndParameters) {
  PlayerRig rig;
  Vrad_Chunk & chunk = rig.Chunk();
  AddInSamples(chunk, 1, 101, 0);
  AddInSamples(chunk, 1, 100, 0);
  AddInSamples(chunk, 2, 6, 12);
  AddInSamples(chunk, 3, 7, 90);
  AddInSamples(chunk, 4, Program(5));
  AddInSamples(chunk, 5, Vrae_PitchBendEvent(1));
  chunk.AddEvent(NoteAt(Samples(6), 60, 20));
  EXPECT_EQ("0: c0 05 | 0: b0 07 5a | 0: e0 01 40 | 0: b0 65 00 | 0: b0 64 00 | 0: b0 06 0c | "
            "0: 90 3c 64 | 16: 90 3c 00",
            rig.PlayFrom(10, 32));
}

TEST(Host_BlockPlayer_InSamples, SendsEachEventOnceAtItsSample) {
  PlayerRig rig;
  AddInSamples(rig.Chunk(), 10, 7, 90);
  AddInSamples(rig.Chunk(), 10, Program(5));
  rig.Chunk().AddEvent(NoteAt(Samples(10), 60, 6));
  EXPECT_EQ("", rig.PlayFrom(0, 10));
  EXPECT_EQ("0: c0 05 | 0: b0 07 5a | 0: 90 3c 64 | 6: 90 3c 00", rig.Play(16));
}

TEST(Host_BlockPlayer_InSamples, LoopsAndKeepsWhatRings) {
  PlayerRig rig;
  rig.Chunk().AddEvent(NoteAt(Samples(8), 60, 5));
  rig.mPlayer.SetLoop(Samples(0), Samples(10));
  rig.mPlayer.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  EXPECT_EQ("8: 90 3c 64 | 13: 90 3c 00 | 18: 90 3c 64", rig.PlayFrom(0, 20));
}

// The program lies in ticks, within the sample that playing begins with.
TEST(Host_BlockPlayer_InBothUnits, SendsAProgramThatComesWithinTheFirstSample) {
  PlayerRig rig;
  rig.Chunk().AddEvent(NoteAt(Samples(500), 60, 6));
  rig.Chunk().AddEvent(Vrad_ExtendedEvent(Ticks(4020), Program(5)));
  EXPECT_EQ("0: c0 05", rig.PlayFrom(100, 16));
}

TEST(Host_BlockPlayer_InBothUnits, StrikesANoteInTicksThatBeganSecondsBefore) {
  PlayerRig rig;
  AddInSamples(rig.Chunk(), 10, 7, 90);
  AddNote(rig.Chunk(), 0, 6 * kSecond, 60);
  EXPECT_EQ("0: b0 07 5a | 0: 90 3c 64", rig.PlayFrom(5 * kSecond, 16));
}

TEST(Host_BlockPlayer_InBothUnits, StrikesLongNotesOfBothUnits) {
  PlayerRig rig;
  rig.Chunk().AddEvent(NoteAt(Samples(0), 60, 30 * kSecond));
  AddNote(rig.Chunk(), 1, 31 * kSecond, 61);
  EXPECT_EQ("0: 90 3c 64 | 0: 90 3d 64", rig.PlayFrom(20 * kSecond, 16));
}

TEST(Host_BlockPlayer_InBothUnits, KeepsANoteInTicksSoundingOverAnEdit) {
  PlayerRig rig;
  AddInSamples(rig.Chunk(), 10, 7, 90);
  AddNote(rig.Chunk(), 0, 6 * kSecond, 60);
  rig.PlayFrom(5 * kSecond, 16);
  rig.mPlayer.ClipEdited(0);
  EXPECT_EQ("", rig.Play(16));
}

TEST_F(Host_BlockPlayer_TempoInSamples, EndsANoteThatThePositionMovesPast) {
  mRig.Chunk().AddEvent(NoteAt(Samples(100), 60, 50));
  EXPECT_EQ("0: 90 3c 64", mRig.PlayFrom(104, 16));
  SetTempo(60.0);
  EXPECT_EQ("0: 90 3c 00", mRig.Play(16));
  EXPECT_EQ(256, mRig.mPlayer.GetPosition().AsInt64());
}

TEST_F(Host_BlockPlayer_TempoInSamples, EndsANoteThatThePositionMovesBefore) {
  mRig.Chunk().AddEvent(NoteAt(Samples(100), 60, 50));
  EXPECT_EQ("0: 90 3c 64", mRig.PlayFrom(104, 16));
  SetTempo(240.0);
  EXPECT_EQ("0: 90 3c 00 | 40: 90 3c 64", mRig.Play(64));
}

// At this tempo there is no whole number of ticks to the sample.
TEST_F(Host_BlockPlayer_TempoInSamples, SendsValuesAheadOfTheNotesOfTheirSample) {
  SetTempo(77.0);
  mRig.Chunk().AddEvent(NoteAt(Samples(5), 60, 3));
  AddInSamples(mRig.Chunk(), 5, 7, 90);
  mRig.AddClip();
  mRig.mPlayer.Start();
  EXPECT_EQ("5: b0 07 5a | 5: 90 3c 64 | 8: 90 3c 00", mRig.Play(16));
}

TEST_F(Host_BlockPlayer_TempoInSamples, BringsTheValuesOfWhereThePositionMoves) {
  Vrad_Chunk & chunk = mRig.Chunk();
  AddInSamples(chunk, 0, 7, 1);
  AddInSamples(chunk, 0, 101, 0);
  AddInSamples(chunk, 0, 100, 0);
  AddInSamples(chunk, 0, 6, 12);
  AddInSamples(chunk, 0, Program(5));
  AddInSamples(chunk, 150, 7, 2);
  AddInSamples(chunk, 150, 6, 24);
  AddInSamples(chunk, 150, Program(6));
  mRig.PlayFrom(104, 16);
  SetTempo(60.0);
  EXPECT_EQ("0: c0 06 | 0: b0 07 02 | 0: b0 65 00 | 0: b0 64 00 | 0: b0 06 18", mRig.Play(16));
}

// The position stays, but of the two ends the other one comes first.
TEST_F(Host_BlockPlayer_TempoInSamples, EndsNotesOfBothUnitsInTheirNewOrder) {
  mRig.Chunk().AddEvent(NoteAt(Samples(0), 60, 250));
  AddNote(mRig.Chunk(), 0, 300, 61);
  mRig.PlayFrom(0, 100);
  Time_Convert::GetDefaultTempoMap().SetTempoAt(Time_Tick(4400), 480.0);
  EXPECT_EQ("57: 80 3d 0a | 150: 90 3c 00", mRig.Play(200));
}

// The tick that has been reached lies in the midst of a sample then.
TEST_F(Host_BlockPlayer_TempoInSamples, PlaysNothingTwiceOfASampleThatWasPlayedInPart) {
  mRig.Chunk().AddEvent(ControllerAt(Ticks(595), 7, 90));
  EXPECT_EQ("14: b0 07 5a", mRig.PlayFrom(0, 15));
  SetTempo(77.0);
  EXPECT_EQ("", mRig.Play(16));
}

TEST_F(Host_BlockPlayer_TempoInSamples, KeepsANoteOfASampleThatWasPlayedInPart) {
  mRig.Chunk().AddEvent(NoteAt(Ticks(595), 60, 40000));
  AddInSamples(mRig.Chunk(), 10000, 7, 90);
  EXPECT_EQ("14: 90 3c 64", mRig.PlayFrom(0, 15));
  SetTempo(77.0);
  EXPECT_EQ("", mRig.Play(16));
}

// ---- Long notes ----

TEST(Host_BlockPlayer_LongNotes, StrikesOneThatAChangeMadeLong) {
  PlayerRig rig;
  AddLengthenedNote(rig.Chunk(), 0, 20 * kSecond, 60);
  EXPECT_EQ("0: 90 3c 64", rig.PlayFrom(15 * kSecond, 16));
}

TEST(Host_BlockPlayer_LongNotes, KeepsOneSoundingThatAChangeMadeLong) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 12 * kSecond, 60);
  rig.PlayFrom(11 * kSecond, 16);
  rig.Chunk().GetNoteList()->ChangeNote(
      AtSample(0),
      Vrae_NoteWithDurationEvent(60, Time_TickLength(12 * kSecond * kTicksPerSample), 100, 10),
      Vrae_NoteWithDurationEvent(60, Time_TickLength(20 * kSecond * kTicksPerSample), 100, 10));
  rig.mPlayer.ClipEdited(0);
  EXPECT_EQ("", rig.Play(16));
}

TEST(Host_BlockPlayer_LongNotes, StrikesOneThatMovedStartsMadeLong) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 5 * kSecond, 5 * kSecond, 60);
  rig.Chunk().GetNoteList()->OffsetDurations(Time_TickLength(10 * kSecond * kTicksPerSample));
  EXPECT_EQ("0: 90 3c 64", rig.PlayFrom(18 * kSecond, 16));
}

TEST(Host_BlockPlayer_LongNotes, LeavesAMutedOneOut) {
  PlayerRig rig;
  rig.Chunk().AddEvent(NoteAt(AtSample(0), 60, 20 * kSecond * kTicksPerSample, true));
  EXPECT_EQ("", rig.PlayFrom(15 * kSecond, 16));
}

// Reading makes copies of long notes before it knows which are muted.
TEST(Host_BlockPlayer_LongNotes, LeavesAMutedOneOutThatWasRead) {
  PlayerRig rig;
  ChunkPtr const writtenP = MakeChunk();
  writtenP->AddEvent(NoteAt(AtSample(0), 60, 20 * kSecond * kTicksPerSample, true));
  writtenP->AddEvent(NoteAt(AtSample(0), 61, 20 * kSecond * kTicksPerSample));
  Sys_MemoryOutStream out;
  writtenP->StreamOut(out);
  Sys_MemoryInStream in(out.GetBytes());
  rig.mChunkP = ChunkPtr(Vrad_Chunk::StreamIn(in, Ndo_Object::kNotUndoable, false));
  EXPECT_EQ("0: 90 3d 64", rig.PlayFrom(15 * kSecond, 16));
}

// ---- The ends of time ----

TEST(Host_BlockPlayer_EndsOfTime, CountsPositionsBehindTheLastSampleAsThat) {
  for (Time_Typed const time :
       {Time_Typed::MaxTime(Time_eType_Ticks), Time_Typed::MaxTime(Time_eType_Samples),
        Samples(Host_BlockPlayer::kLastSample + 1)}) {
    PlayerRig rig;
    AddNote(rig.Chunk(), 0, 10, 60);
    rig.AddClip();
    rig.mPlayer.Start(time);
    EXPECT_EQ(1LL << 60, rig.mPlayer.GetPosition().AsInt64());
    EXPECT_EQ("", rig.Play(8192));
    EXPECT_EQ((1LL << 60) + 8192, rig.mPlayer.GetPosition().AsInt64());
  }
}

TEST(Host_BlockPlayer_EndsOfTime, CountsTheFirstTimeAsSample0) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 10, 60);
  rig.AddClip();
  rig.mPlayer.Start(Time_Typed::MinTime(Time_eType_Samples));
  EXPECT_EQ("0: 90 3c 64 | 10: 80 3c 0a", rig.Play(16));
}

TEST(Host_BlockPlayer_EndsOfTime, PlaysTheLastSamples) {
  PlayerRig rig;
  rig.Chunk().AddEvent(NoteAt(Samples(Host_BlockPlayer::kLastSample - 10), 60, 5));
  rig.AddClip();
  rig.mPlayer.Start(Samples(Host_BlockPlayer::kLastSample - 16));
  EXPECT_EQ("6: 90 3c 64 | 11: 90 3c 00", rig.Play(32));
}

TEST(Host_BlockPlayer_EndsOfTime, StaysWithinThemWhenTheTempoChanges) {
  PlayerRig rig;
  rig.AddClip();
  rig.mPlayer.Start(Time_Typed::MaxTime(Time_eType_Samples));
  rig.Play(64);
  Time_Convert::GetDefaultTempoMap().Reset(1.0);
  rig.Play(64);
  long long const position = rig.mPlayer.GetPosition().AsInt64();
  Time_Convert::GetDefaultTempoMap().Reset(120.0);
  EXPECT_EQ((1LL << 60) + 64, position);
}

TEST(Host_BlockPlayer_EndsOfTime, EndsANoteWithoutEnd) {
  for (Host_ELoopPolicy const policy : {Host_ELoopPolicy::kCut, Host_ELoopPolicy::kKeep}) {
    PlayerRig rig;
    constexpr long long kForEver = Time_Typed::MaxTime(Time_eType_Ticks).AsInt64();
    rig.Chunk().AddEvent(NoteAt(AtSample(4), 60, kForEver));
    rig.mPlayer.SetLoop(AtSample(0), AtSample(8));
    rig.mPlayer.SetLoopPolicy(policy);
    EXPECT_EQ("4: 90 3c 64", rig.PlayFrom(0, 8));
    rig.mPlayer.Stop();
    EXPECT_EQ("0: 90 3c 00", rig.Play(16));
  }
}

TEST(Host_BlockPlayer_EndsOfTime, LoopsToTheEndAsIfWithoutALoop) {
  PlayerRig rig;
  rig.mPlayer.SetLoop(AtSample(0), Time_Typed::MaxTime(Time_eType_Ticks));
  rig.PlayFrom(0, 8192);
  EXPECT_EQ(8192, rig.mPlayer.GetPosition().AsInt64());
}

TEST(Host_BlockPlayer_EndsOfTime, AreNoneOfTheCheckersTroubles) {
  Host_NotePool const pool(100);
  ChunkPtr const chunkP = MakeChunk();
  chunkP->AddEvent(NoteAt(AtSample(4), 60, Time_Typed::MaxTime(Time_eType_Ticks).AsInt64()));
  Host_StreamChecker checker;
  Host_BlockPlayer player(&checker);
  auto const both = [&](auto iCommand) {
    iCommand(player);
    iCommand(checker);
    for (int i = 0; i < 3; ++i) {
      player.Process(100);
      checker.CheckPosition(player.GetPosition());
    }
  };
  both([&](auto & ioTarget) { ioTarget.AddClip(chunkP.Get(), 0, 0); });
  both([](auto & ioTarget) { ioTarget.SetLoopPolicy(Host_ELoopPolicy::kKeep); });
  both([](auto & ioTarget) { ioTarget.SetLoop(AtSample(0), AtSample(70)); });
  both([](auto & ioTarget) { ioTarget.Start(); });
  both([](auto & ioTarget) { ioTarget.Locate(Samples(1LL << 50)); });
  both([](auto & ioTarget) { ioTarget.Stop(); });
  both([](auto & ioTarget) { ioTarget.Locate(Time_Typed::MaxTime(Time_eType_Samples)); });
  EXPECT_EQ("", checker.GetViolation().mText);
}
