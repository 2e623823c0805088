// Values that stand when playback starts in the middle: nothing is restored twice, late or in part.
#include <gtest/gtest.h>

#include "player_rig.h"

namespace {

void AddParameter(Vrad_Chunk & ioChunk, long long iSample, int iCoarse, int iFine) {
  AddController(ioChunk, iSample, 101, iCoarse);
  AddController(ioChunk, iSample, 100, iFine);
}

}  // namespace

TEST(Host_BlockPlayer_State, RestoresControllersPressuresAndBend) {
  PlayerRig rig;
  AddController(rig.Chunk(), 0, 7, 100);
  AddController(rig.Chunk(), 1, 7, 90);
  AddController(rig.Chunk(), 2, 119, 1);
  AddBend(rig.Chunk(), 3, 1);
  AddEvent(rig.Chunk(), 4, Vrae_MonoPressureEvent(5));
  AddEvent(rig.Chunk(), 5, Vrae_PolyPressureEvent(61, 6));
  EXPECT_EQ("0: b0 07 5a | 0: b0 77 01 | 0: e0 01 40 | 0: d0 05 | 0: a0 3d 06",
            rig.PlayFrom(10, 16));
}

TEST(Host_BlockPlayer_State, RestoresTheProgramFirst) {
  PlayerRig rig;
  AddController(rig.Chunk(), 0, 7, 100);
  AddEvent(rig.Chunk(), 1, Vrae_ProgramEvent(5, 2 * 128 + 3));
  EXPECT_EQ("0: b0 00 02 | 0: b0 20 03 | 0: c0 05 | 0: b0 07 64", rig.PlayFrom(10, 16));
}

TEST(Host_BlockPlayer_State, RestoresAProgramInTheBankThatWasGivenLongBefore) {
  PlayerRig rig;
  AddEvent(rig.Chunk(), 0, Vrae_ProgramEvent(5, 2 * 128 + 3));
  AddEvent(rig.Chunk(), 4, Vrae_ProgramEvent(6, static_cast<short>(0xC000)));
  EXPECT_EQ("0: b0 00 02 | 0: b0 20 03 | 0: c0 06", rig.PlayFrom(10, 16));
}

TEST(Host_BlockPlayer_State, SendsAValueAtThePositionOnce) {
  PlayerRig rig;
  AddController(rig.Chunk(), 2, 7, 100);
  AddController(rig.Chunk(), 10, 7, 90);
  AddNote(rig.Chunk(), 0, 100, 60);
  EXPECT_EQ("0: b0 07 5a | 0: 90 3c 64", rig.PlayFrom(10, 16));
}

TEST(Host_BlockPlayer_State, SendsWhatDiffersAfterAJump) {
  PlayerRig rig;
  AddController(rig.Chunk(), 0, 7, 100);
  AddController(rig.Chunk(), 0, 10, 64);
  AddController(rig.Chunk(), 50, 7, 20);
  rig.PlayFrom(0, 16);
  rig.mPlayer.Locate(AtSample(60));
  EXPECT_EQ("0: b0 07 14", rig.Play(16));
}

TEST(Host_BlockPlayer_State, SendsAllAfterAStart) {
  PlayerRig rig;
  AddController(rig.Chunk(), 0, 7, 100);
  rig.PlayFrom(0, 16);
  rig.mPlayer.Stop();
  rig.Play(16);
  rig.mPlayer.Start();
  EXPECT_EQ("0: b0 07 64", rig.Play(16));
}

TEST(Host_BlockPlayer_Parameters, SelectsBeforeDataAtOneTime) {
  PlayerRig rig;
  AddController(rig.Chunk(), 3, 6, 12);
  AddController(rig.Chunk(), 3, 38, 1);
  AddController(rig.Chunk(), 3, 7, 100);
  AddParameter(rig.Chunk(), 3, 0, 0);
  EXPECT_EQ("3: b0 07 64 | 3: b0 65 00 | 3: b0 64 00 | 3: b0 06 0c | 3: b0 26 01",
            rig.PlayFrom(0, 16));
}

TEST(Host_BlockPlayer_Parameters, RestoresTheBendRangeBehindPlainControllers) {
  PlayerRig rig;
  AddParameter(rig.Chunk(), 0, 0, 0);
  AddController(rig.Chunk(), 1, 6, 12);
  AddController(rig.Chunk(), 2, 91, 40);
  AddBend(rig.Chunk(), 3, 1);
  EXPECT_EQ("0: b0 5b 28 | 0: e0 01 40 | 0: b0 65 00 | 0: b0 64 00 | 0: b0 06 0c",
            rig.PlayFrom(10, 16));
}

TEST(Host_BlockPlayer_Parameters, RestoresEachParameterThatWasSet) {
  PlayerRig rig;
  AddParameter(rig.Chunk(), 0, 0, 0);
  AddController(rig.Chunk(), 1, 6, 12);
  AddController(rig.Chunk(), 2, 99, 1);
  AddController(rig.Chunk(), 2, 98, 8);
  AddController(rig.Chunk(), 3, 6, 33);
  AddController(rig.Chunk(), 4, 38, 44);
  AddController(rig.Chunk(), 5, 6, 34);
  EXPECT_EQ("0: b0 65 00 | 0: b0 64 00 | 0: b0 06 0c | "
            "0: b0 63 01 | 0: b0 62 08 | 0: b0 26 2c | 0: b0 06 22",
            rig.PlayFrom(10, 16));
}

TEST(Host_BlockPlayer_Parameters, RestoresWhatIsSelectedNow) {
  PlayerRig rig;
  AddParameter(rig.Chunk(), 0, 0, 0);
  AddController(rig.Chunk(), 1, 6, 12);
  AddParameter(rig.Chunk(), 2, 0, 2);
  AddController(rig.Chunk(), 12, 6, 70);
  EXPECT_EQ("0: b0 65 00 | 0: b0 64 00 | 0: b0 06 0c | 0: b0 65 00 | 0: b0 64 02 | 2: b0 06 46",
            rig.PlayFrom(10, 16));
}

TEST(Host_BlockPlayer_Parameters, RestoresNothingForDataWithNothingSelected) {
  PlayerRig rig;
  AddParameter(rig.Chunk(), 0, 127, 127);
  AddController(rig.Chunk(), 1, 6, 12);
  EXPECT_EQ("0: b0 65 7f | 0: b0 64 7f", rig.PlayFrom(10, 16));
}

TEST(Host_BlockPlayer_Parameters, RestoresStepsSinceTheData) {
  PlayerRig rig;
  AddParameter(rig.Chunk(), 0, 0, 0);
  AddController(rig.Chunk(), 0, 6, 2);
  AddController(rig.Chunk(), 0, 38, 0);
  AddController(rig.Chunk(), 1, 96, 0);
  AddController(rig.Chunk(), 2, 96, 0);
  AddController(rig.Chunk(), 3, 97, 0);
  EXPECT_EQ("0: b0 65 00 | 0: b0 64 00 | 0: b0 06 02 | 0: b0 26 00 | 0: b0 60 00 | 0: b0 60 00 | "
            "0: b0 61 00",
            rig.PlayFrom(10, 16));
}

TEST(Host_BlockPlayer_Parameters, StepsByTheDifferenceWhatWasNeverSet) {
  PlayerRig rig;
  AddParameter(rig.Chunk(), 0, 0, 1);
  for (int i = 1; i <= 3; ++i)
    AddController(rig.Chunk(), i, 96, 0);
  rig.PlayFrom(0, 16);
  rig.mPlayer.Locate(AtSample(2));
  EXPECT_EQ("0: b0 61 00 | 0: b0 61 00 | 0: b0 60 00 | 1: b0 60 00", rig.Play(16));
}

TEST(Host_BlockPlayer_Parameters, SendsNothingAfterAJumpThatChangesNoParameter) {
  PlayerRig rig;
  AddParameter(rig.Chunk(), 0, 0, 0);
  AddController(rig.Chunk(), 0, 6, 12);
  rig.PlayFrom(0, 16);
  rig.mPlayer.Locate(AtSample(100));
  EXPECT_EQ("", rig.Play(16));
}

TEST(Host_BlockPlayer_Parameters, DeselectsAheadOfTheFirstSelection) {
  PlayerRig rig;
  AddParameter(rig.Chunk(), 10, 0, 0);
  AddController(rig.Chunk(), 10, 6, 12);
  rig.PlayFrom(0, 16);
  rig.mPlayer.Locate(AtSample(0));
  EXPECT_EQ("0: b0 65 7f | 0: b0 64 7f | 10: b0 65 00 | 10: b0 64 00 | 10: b0 06 0c", rig.Play(16));
}

TEST(Host_BlockPlayer_Parameters, TreatsDataAsPlainControllersWithoutSelections) {
  PlayerRig rig;
  AddController(rig.Chunk(), 0, 6, 12);
  AddController(rig.Chunk(), 0, 7, 1);
  EXPECT_EQ("0: b0 06 0c | 0: b0 07 01", rig.PlayFrom(10, 16));
}

TEST(Host_BlockPlayer_Parameters, MergesThoseOfClipsThatShareAChannel) {
  PlayerRig rig;
  ChunkPtr const otherP = MakeChunk();
  AddParameter(rig.Chunk(), 0, 0, 0);
  AddController(*otherP.Get(), 1, 6, 7);
  rig.AddClip();
  rig.mPlayer.AddClip(otherP.Get(), 0, 1);
  rig.mPlayer.Start(AtSample(10));
  EXPECT_EQ("0 #1: b0 65 00 | 0 #1: b0 64 00 | 0 #1: b0 06 07", rig.Play(16, true));
}
