// Loops: what sounds where one wraps, and what is sent at its bounds.
#include <gtest/gtest.h>

#include "host/host_streamchecker.h"
#include "player_rig.h"

TEST(Host_BlockPlayer_Loop, PlaysALoopShorterThanABlock) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 1, 2, 60);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(5));
  EXPECT_EQ("1: 90 3c 64 | 3: 80 3c 0a | 6: 90 3c 64 | 8: 80 3c 0a | 11: 90 3c 64 | 13: 80 3c 0a",
            rig.PlayFrom(0, 15));
}

TEST(Host_BlockPlayer_Loop, KeepsThePositionWithinTheLoop) {
  PlayerRig rig;
  rig.mPlayer.SetLoop(AtSample(10), AtSample(25));
  rig.PlayFrom(10, 15);
  EXPECT_EQ(10, rig.mPlayer.GetPosition().AsInt64());
  rig.Play(16);
  EXPECT_EQ(11, rig.mPlayer.GetPosition().AsInt64());
}

TEST(Host_BlockPlayer_Loop, LoopsOneSample) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 3, 5, 60);
  rig.mPlayer.SetLoop(AtSample(3), AtSample(4));
  EXPECT_EQ("0: 90 3c 64 | 1: 80 3c 0a | 1: 90 3c 64 | 2: 80 3c 0a | 2: 90 3c 64",
            rig.PlayFrom(3, 3));
}

TEST(Host_BlockPlayer_Loop, DoesNotLoopAnEmptyStretch) {
  PlayerRig rig;
  rig.mPlayer.SetLoop(AtSample(5), AtSample(5));
  rig.PlayFrom(0, 64);
  EXPECT_EQ(64, rig.mPlayer.GetPosition().AsInt64());
}

TEST(Host_BlockPlayer_Loop, PlaysOnFromBehindTheEnd) {
  PlayerRig rig;
  rig.mPlayer.SetLoop(AtSample(5), AtSample(10));
  rig.PlayFrom(10, 64);
  EXPECT_EQ(74, rig.mPlayer.GetPosition().AsInt64());
}

TEST(Host_BlockPlayer_Loop, SendsWhatComesInTheLastSampleBeforeTheEnd) {
  PlayerRig rig;
  AddController(rig.Chunk(), 9, 7, 90);
  AddNote(rig.Chunk(), 9, 1, 60);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(10));
  EXPECT_EQ("9: b0 07 5a | 9: 90 3c 64 | 10: 80 3c 0a", rig.PlayFrom(0, 16));
}

TEST(Host_BlockPlayer_Loop, LeavesOutWhatComesAtTheEnd) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 10, 5, 60);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(10));
  EXPECT_EQ("", rig.PlayFrom(0, 30));
}

TEST(Host_BlockPlayer_Loop, EndsANoteOnceWhoseEndIsTheLoopsEnd) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 2, 8, 60);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(10));
  EXPECT_EQ("2: 90 3c 64 | 10: 80 3c 0a | 12: 90 3c 64", rig.PlayFrom(0, 16));
}

TEST(Host_BlockPlayer_Loop, EndsANoteOnTheBoundaryOfLoopAndBlock) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 2, 14, 60);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(16));
  EXPECT_EQ("2: 90 3c 64", rig.PlayFrom(0, 16));
  EXPECT_EQ("0: 80 3c 0a | 2: 90 3c 64", rig.Play(16));
}

TEST(Host_BlockPlayer_Loop, CutsWhatSoundsOverTheEnd) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 8, 7, 60);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(10));
  EXPECT_EQ("8: 90 3c 64 | 10: 80 3c 0a", rig.PlayFrom(0, 16));
}

TEST(Host_BlockPlayer_Loop, KeepsWhatSoundsOverTheEndIfAskedTo) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 8, 5, 60);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(10));
  rig.mPlayer.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  EXPECT_EQ("8: 90 3c 64 | 13: 80 3c 0a", rig.PlayFrom(0, 16));
}

TEST(Host_BlockPlayer_Loop, EndsAKeptNoteBeforeItsPitchIsStruckAgain) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 8, 7, 60, 100, 1);
  AddNote(rig.Chunk(), 3, 2, 60, 90, 2);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(10));
  rig.mPlayer.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  rig.PlayFrom(6, 4);
  EXPECT_EQ("3: 80 3c 01 | 3: 90 3c 5a | 5: 80 3c 02", rig.Play(6));
}

TEST(Host_BlockPlayer_Loop, LetsAKeptNoteRingOverSeveralPasses) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 12, 25, 60);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(16));
  rig.mPlayer.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  EXPECT_EQ("0: 90 3c 64", rig.PlayFrom(12, 4));
  rig.mPlayer.SetLoop(AtSample(0), AtSample(8));
  EXPECT_EQ("", rig.Play(4));
  EXPECT_EQ("17: 80 3c 0a", rig.Play(32));
}

TEST(Host_BlockPlayer_Loop, StrikesANoteThatBeginsBeforeTheLoop) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 2, 10, 60);
  rig.mPlayer.SetLoop(AtSample(8), AtSample(16));
  EXPECT_EQ("0: 90 3c 64 | 4: 80 3c 0a | 8: 90 3c 64 | 12: 80 3c 0a", rig.PlayFrom(8, 16));
}

TEST(Host_BlockPlayer_Loop, KeepsANoteThatSpansTheLoopSoundingIfAskedTo) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60);
  rig.mPlayer.SetLoop(AtSample(10), AtSample(20));
  rig.mPlayer.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  EXPECT_EQ("0: 90 3c 64", rig.PlayFrom(10, 64));
}

TEST(Host_BlockPlayer_Loop, RestoresValuesWhereItBegins) {
  PlayerRig rig;
  AddController(rig.Chunk(), 0, 7, 100);
  AddController(rig.Chunk(), 5, 7, 20);
  rig.mPlayer.SetLoop(AtSample(2), AtSample(8));
  EXPECT_EQ("0: b0 07 64 | 3: b0 07 14 | 6: b0 07 64 | 9: b0 07 14", rig.PlayFrom(2, 10));
}

TEST(Host_BlockPlayer_Loop, LiftsThePedalAtItsEnd) {
  PlayerRig rig;
  AddController(rig.Chunk(), 4, 64, 127);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(8));
  EXPECT_EQ("4: b0 40 7f | 8: b0 40 00", rig.PlayFrom(0, 10));
}

TEST(Host_BlockPlayer_Loop, DoesNotStrikeAgainWhatAnEditLeavesSounding) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 60, 60);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(64));
  EXPECT_EQ("0: 90 3c 64", rig.PlayFrom(0, 16));
  AddNote(rig.Chunk(), 40, 4, 67);
  rig.mPlayer.ClipEdited(0);
  EXPECT_EQ("", rig.Play(16));
  EXPECT_EQ("8: 90 43 64 | 12: 80 43 0a", rig.Play(16));
}

// The block has ended where the loop did, so the way back was still due.
TEST(Host_BlockPlayer_Loop, PlaysOnWhenItsEndIsMovedBehindThePosition) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 20, 4, 60);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(16));
  rig.PlayFrom(0, 16);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(32));
  EXPECT_EQ(16, rig.mPlayer.GetPosition().AsInt64());
  EXPECT_EQ("4: 90 3c 64 | 8: 80 3c 0a", rig.Play(16));
  EXPECT_EQ(0, rig.mPlayer.GetPosition().AsInt64());
}

TEST(Host_BlockPlayer_Loop, DoesNotJumpToALoopThatLiesAhead) {
  PlayerRig rig;
  rig.mPlayer.SetLoop(AtSample(0), AtSample(16));
  rig.PlayFrom(0, 16);
  rig.mPlayer.SetLoop(AtSample(100), AtSample(200));
  rig.Play(16);
  EXPECT_EQ(32, rig.mPlayer.GetPosition().AsInt64());
}

TEST(Host_BlockPlayer_Loop, GoesBackWhenItsEndIsMovedBeforeThePosition) {
  PlayerRig rig;
  rig.mPlayer.SetLoop(AtSample(0), AtSample(16));
  rig.PlayFrom(0, 16);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(8));
  rig.Play(4);
  EXPECT_EQ(4, rig.mPlayer.GetPosition().AsInt64());
}

TEST(Host_BlockPlayer_Loop, ThatIsTakenAwayAtItsEndLetsItPlayOn) {
  PlayerRig rig;
  rig.mPlayer.SetLoop(AtSample(0), AtSample(16));
  rig.PlayFrom(0, 16);
  rig.mPlayer.ClearLoop();
  rig.Play(4);
  EXPECT_EQ(20, rig.mPlayer.GetPosition().AsInt64());
}
