// Two clips on one channel: what one of them leaves to the other.
#include <gtest/gtest.h>

#include "player_rig.h"

namespace {

// Clips 0 and 1, both on channel 0.
struct Host_BlockPlayer_SharedChannel : testing::Test {
  PlayerRig mRig;
  ChunkPtr mOtherP = MakeChunk();

  Vrad_Chunk & First() { return mRig.Chunk(); }
  Vrad_Chunk & Second() { return *mOtherP.Get(); }

  std::string PlayFrom(long long iSample, int iNumSamples) {
    mRig.AddClip();
    mRig.mPlayer.AddClip(mOtherP.Get(), 0, 1);
    mRig.mPlayer.Start(AtSample(iSample));
    return Play(iNumSamples);
  }
  std::string Play(int iNumSamples) { return mRig.Play(iNumSamples, true); }
};

}  // namespace

TEST_F(Host_BlockPlayer_SharedChannel, StrikesAndReleasesEqualPitchesOneByOne) {
  AddNote(First(), 0, 10, 60, 100, 1);
  AddNote(Second(), 4, 4, 60, 90, 2);
  EXPECT_EQ("0 #0: 90 3c 64 | 4 #1: 90 3c 5a | 8 #1: 80 3c 02 | 10 #0: 80 3c 01", PlayFrom(0, 16));
}

TEST_F(Host_BlockPlayer_SharedChannel, EndsANoteBeforeTheOtherClipsNoteOfItsPitchBegins) {
  AddNote(First(), 8, 8, 60, 100, 1);
  AddNote(Second(), 0, 8, 60, 90, 2);
  EXPECT_EQ("0 #1: 90 3c 5a | 8 #1: 80 3c 02 | 8 #0: 90 3c 64", PlayFrom(0, 16));
}

TEST_F(Host_BlockPlayer_SharedChannel, LeavesTheValueOfTheClipThatWasAddedLastAtOneTime) {
  AddController(First(), 8, 7, 80);
  AddController(Second(), 8, 7, 90);
  EXPECT_EQ("8 #0: b0 07 50 | 8 #1: b0 07 5a", PlayFrom(0, 16));
}

TEST_F(Host_BlockPlayer_SharedChannel, SendsTheValuesOfATimeAheadOfTheOtherClipsNotes) {
  AddNote(First(), 8, 8, 60);
  AddController(Second(), 8, 7, 90);
  EXPECT_EQ("8 #1: b0 07 5a | 8 #0: 90 3c 64", PlayFrom(0, 16));
}

TEST_F(Host_BlockPlayer_SharedChannel, KeepsTheNoteOfThePitchWhenOneClipIsTakenAway) {
  AddNote(First(), 0, 40, 60, 100, 1);
  AddNote(Second(), 0, 40, 60, 90, 2);
  PlayFrom(0, 16);
  mRig.mPlayer.RemoveClip(1);
  EXPECT_EQ("0 #1: 80 3c 02", Play(16));
  EXPECT_EQ("8 #0: 80 3c 01", Play(16));
}

TEST_F(Host_BlockPlayer_SharedChannel, GoesBackToTheValuesOfTheClipThatIsLeft) {
  AddController(First(), 0, 7, 1);
  AddBend(First(), 0, 100);
  AddController(First(), 0, 64, 127);
  AddController(Second(), 5, 7, 2);
  AddBend(Second(), 5, 200);
  AddController(Second(), 5, 64, 127);
  PlayFrom(0, 16);
  mRig.mPlayer.RemoveClip(1);
  mOtherP = ChunkPtr();
  EXPECT_EQ("0 #1: b0 40 00 | 0 #1: e0 00 40 | 0 #0: b0 07 01 | 0 #0: b0 40 7f | 0 #0: e0 64 40",
            Play(16));
}

TEST_F(Host_BlockPlayer_SharedChannel, GoesBackToTheProgramOfTheClipThatIsLeft) {
  AddEvent(First(), 0, Vrae_ProgramEvent(5, 2 * 128 + 3));
  AddEvent(Second(), 5, Vrae_ProgramEvent(6, 4 * 128 + 1));
  PlayFrom(0, 16);
  mRig.mPlayer.RemoveClip(1);
  EXPECT_EQ("0 #0: b0 00 02 | 0 #0: b0 20 03 | 0 #0: c0 05", Play(16));
}

// The second clip has the same program at both positions, once with the bank that it is in anyway.
TEST_F(Host_BlockPlayer_SharedChannel, RestoresAProgramThatIsWrittenOtherwise) {
  AddEvent(Second(), 5, Vrae_ProgramEvent(6, 4 * 128 + 1));
  AddEvent(Second(), 50, Vrae_ProgramEvent(6, static_cast<short>(0xC000)));
  AddEvent(First(), 60, Vrae_ProgramEvent(5, static_cast<short>(0xC000)));
  AddEvent(First(), 2, Vrae_ProgramEvent(3, static_cast<short>(0xC000)));
  PlayFrom(70, 16);
  mRig.mPlayer.Locate(AtSample(10));
  EXPECT_EQ("0 #0: c0 03 | 0 #1: b0 00 04 | 0 #1: b0 20 01 | 0 #1: c0 06", Play(16));
}

TEST_F(Host_BlockPlayer_SharedChannel, GoesBackToTheParametersOfTheClipThatIsLeft) {
  for (int number : {101, 100})
    AddController(First(), 0, number, 0);
  AddController(First(), 0, 6, 12);
  AddController(Second(), 5, 6, 24);
  PlayFrom(0, 16);
  mRig.mPlayer.RemoveClip(1);
  EXPECT_EQ("0 #0: b0 65 00 | 0 #0: b0 64 00 | 0 #0: b0 06 0c", Play(16));
}

TEST_F(Host_BlockPlayer_SharedChannel, LeavesTheOtherClipAloneWhenAMutedOneIsTakenAway) {
  AddController(First(), 0, 7, 1);
  AddController(Second(), 5, 7, 2);
  AddNote(First(), 0, 40, 60);
  mRig.mPlayer.AddClip(mOtherP.Get(), 0, 1);
  mRig.mPlayer.SetMuted(1, true);
  mRig.PlayFrom(0, 16);
  mRig.mPlayer.RemoveClip(1);
  EXPECT_EQ("", Play(16));
}

TEST_F(Host_BlockPlayer_SharedChannel, TakesTheLaterValueWhenAClipIsUnmuted) {
  AddController(First(), 8, 7, 1);
  AddController(Second(), 5, 7, 2);
  PlayFrom(0, 16);
  mRig.mPlayer.SetMuted(1, true);
  EXPECT_EQ("", Play(16));
  mRig.mPlayer.SetMuted(1, false);
  EXPECT_EQ("0 #1: b0 07 02 | 0 #0: b0 07 01", Play(16));
}

// The value that comes there is the first clip's, which has not been told it yet.
TEST_F(Host_BlockPlayer_SharedChannel, LeavesWhatComesAtThePositionToTheBlock) {
  AddController(First(), 16, 7, 1);
  AddController(Second(), 5, 7, 2);
  PlayFrom(0, 16);
  mRig.mPlayer.SetMuted(1, true);
  EXPECT_EQ("0 #0: b0 07 01", Play(16));
}

TEST_F(Host_BlockPlayer_SharedChannel, HasTheLatestValueBeforeThePositionWhenNotesAreStruck) {
  AddController(First(), 8, 7, 1);
  AddController(First(), 16, 7, 3);
  AddController(Second(), 5, 7, 2);
  AddNote(Second(), 0, 40, 60);
  PlayFrom(0, 10);
  mRig.mPlayer.SetMuted(1, true);
  Play(6);
  mRig.mPlayer.SetMuted(1, false);
  EXPECT_EQ("0 #1: b0 07 02 | 0 #0: b0 07 01 | 0 #1: 90 3c 64 | 0 #0: b0 07 03", Play(16));
}

TEST_F(Host_BlockPlayer_SharedChannel, SharesChannel0WithAClipWithoutAChannel) {
  AddController(First(), 0, 7, 1);
  AddController(Second(), 5, 7, 2);
  mRig.mPlayer.AddClip(mOtherP.Get(), -1, 1);
  mRig.PlayFrom(0, 16);
  mRig.mPlayer.RemoveClip(1);
  EXPECT_EQ("0 #0: b0 07 01", Play(16));
}
