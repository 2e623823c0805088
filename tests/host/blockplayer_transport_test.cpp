// Start, stop, jump and loop, message by message.
#include <gtest/gtest.h>

#include "player_rig.h"

TEST(Host_BlockPlayer_Process, SendsNothingBeforeTheStart) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 10, 60);
  rig.AddClip();
  EXPECT_EQ("", rig.Play(64));
}

TEST(Host_BlockPlayer_Process, SendsNotesAtTheirSamples) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 3, 4, 60);
  EXPECT_EQ("3: 90 3c 64 | 7: 80 3c 0a", rig.PlayFrom(0, 16));
}

TEST(Host_BlockPlayer_Process, EndsANoteInALaterBlock) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 15, 4, 60);
  EXPECT_EQ("15: 90 3c 64", rig.PlayFrom(0, 16));
  EXPECT_EQ("3: 80 3c 0a", rig.Play(16));
}

TEST(Host_BlockPlayer_Stop, EndsWhatSoundsWithItsOwnRelease) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60, 100, 20);
  AddNote(rig.Chunk(), 0, 50, 64, 100, 30);
  rig.PlayFrom(0, 16);
  rig.mPlayer.Stop();
  EXPECT_EQ("0: 80 40 1e | 0: 80 3c 14", rig.Play(0));
}

TEST(Host_BlockPlayer_Loop, PlaysALoopShorterThanABlock) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 1, 2, 60);
  rig.mPlayer.SetLoop(AtSample(0), AtSample(5));
  EXPECT_EQ("1: 90 3c 64 | 3: 80 3c 0a | 6: 90 3c 64 | 8: 80 3c 0a | 11: 90 3c 64 | 13: 80 3c 0a",
            rig.PlayFrom(0, 15));
  EXPECT_EQ(0, rig.mPlayer.GetPosition().AsInt64());
}
