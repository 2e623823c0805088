// Clips and receivers that come and go while notes sound.
#include <gtest/gtest.h>

#include "player_rig.h"

TEST(Host_BlockPlayer_SetMuted, EndsWhatSounds) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60);
  rig.PlayFrom(0, 16);
  rig.mPlayer.SetMuted(0, true);
  EXPECT_EQ("0: 80 3c 0a", rig.Play(16));
}

TEST(Host_BlockPlayer_SetMuted, LiftsPedalsAndCentresTheBend) {
  PlayerRig rig;
  AddController(rig.Chunk(), 0, 64, 127);
  AddController(rig.Chunk(), 0, 66, 1);
  AddController(rig.Chunk(), 0, 67, 2);
  AddController(rig.Chunk(), 0, 69, 3);
  AddBend(rig.Chunk(), 0, 100);
  rig.PlayFrom(0, 16);
  rig.mPlayer.SetMuted(0, true);
  EXPECT_EQ("0: b0 40 00 | 0: b0 42 00 | 0: b0 43 00 | 0: b0 45 00 | 0: e0 00 40", rig.Play(16));
}

TEST(Host_BlockPlayer_SetMuted, SendsTheSameASecondTime) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 200, 60);
  AddController(rig.Chunk(), 0, 64, 127);
  rig.PlayFrom(0, 16);
  rig.mPlayer.SetMuted(0, true);
  EXPECT_EQ("0: 80 3c 0a | 0: b0 40 00", rig.Play(16));
  rig.mPlayer.SetMuted(0, false);
  EXPECT_EQ("0: b0 40 7f | 0: 90 3c 64", rig.Play(16));
  rig.mPlayer.SetMuted(0, true);
  EXPECT_EQ("0: 80 3c 0a | 0: b0 40 00", rig.Play(16));
}

TEST(Host_BlockPlayer_SetMuted, SendsNothingTwiceInARow) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60);
  rig.PlayFrom(0, 16);
  rig.mPlayer.SetMuted(0, true);
  rig.Play(16);
  rig.mPlayer.SetMuted(0, true);
  EXPECT_EQ("", rig.Play(16));
}

TEST(Host_BlockPlayer_SetMuted, DoesNotFireWhatPassedWhileMuted) {
  PlayerRig rig;
  for (int i = 0; i < 10; ++i)
    AddNote(rig.Chunk(), i, 1, 60 + i);
  for (int i = 0; i < 10; ++i)
    AddController(rig.Chunk(), i, 7, i);
  AddNote(rig.Chunk(), 20, 4, 72);
  rig.mPlayer.AddClip(rig.mChunkP.Get(), 0, 0);
  rig.mPlayer.SetMuted(0, true);
  rig.mPlayer.Start(AtSample(0));
  EXPECT_EQ("", rig.Play(16));
  rig.mPlayer.SetMuted(0, false);
  EXPECT_EQ("0: b0 07 09 | 4: 90 48 64 | 8: 80 48 0a", rig.Play(16));
}

TEST(Host_BlockPlayer_RemoveClip, EndsWhatSounds) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60);
  AddController(rig.Chunk(), 0, 64, 127);
  rig.PlayFrom(0, 16);
  rig.mPlayer.RemoveClip(0);
  rig.mChunkP = ChunkPtr();
  EXPECT_EQ("0: 80 3c 0a | 0: b0 40 00", rig.Play(16));
  EXPECT_EQ("", rig.Play(16));
}

TEST(Host_BlockPlayer_RemoveClip, FreesTheNumberAtOnce) {
  PlayerRig rig;
  ChunkPtr const otherP = MakeChunk();
  AddNote(rig.Chunk(), 0, 100, 60);
  AddNote(*otherP.Get(), 18, 2, 67);
  rig.PlayFrom(0, 16);
  rig.mPlayer.RemoveClip(0);
  EXPECT_FALSE(rig.mPlayer.HasClip(0));
  EXPECT_TRUE(rig.mPlayer.AddClip(otherP.Get(), 0, 0));
  EXPECT_EQ("0: 80 3c 0a | 2: 90 43 64 | 4: 80 43 0a", rig.Play(16));
}

TEST(Host_BlockPlayer_SetReceiver, EndsWhatSoundsInTheFormerOneAndStrikesItInTheNewOne) {
  PlayerRig rig;
  Host_MessageList other;
  AddNote(rig.Chunk(), 0, 100, 60);
  AddController(rig.Chunk(), 0, 64, 127);
  rig.PlayFrom(0, 16);
  rig.mList.Clear();
  rig.mPlayer.SetReceiver(&other);
  EXPECT_EQ("0: 80 3c 0a | 0: b0 40 00", PrintMessages(rig.mList));
  rig.mPlayer.Process(16);
  EXPECT_EQ("0: b0 40 7f | 0: 90 3c 64", PrintMessages(other));
}

TEST(Host_BlockPlayer_SetReceiver, PlaysOnWithoutOne) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 20, 100, 60);
  rig.PlayFrom(0, 16);
  rig.mPlayer.SetReceiver(nullptr);
  rig.mPlayer.Process(16);
  rig.mPlayer.SetReceiver(&rig.mList);
  EXPECT_EQ("0: 90 3c 64", rig.Play(16));
  EXPECT_EQ(48, rig.mPlayer.GetPosition().AsInt64());
}

TEST(Host_BlockPlayer_AddClip, RefusesWhatMakesNoClip) {
  PlayerRig rig;
  EXPECT_FALSE(rig.mPlayer.AddClip(nullptr, 0, 0));
  EXPECT_FALSE(rig.mPlayer.AddClip(rig.mChunkP.Get(), 16, 0));
  EXPECT_FALSE(rig.mPlayer.AddClip(rig.mChunkP.Get(), -2, 0));
  EXPECT_TRUE(rig.mPlayer.AddClip(rig.mChunkP.Get(), 15, 0));
  EXPECT_FALSE(rig.mPlayer.AddClip(rig.mChunkP.Get(), 1, 0));
}

TEST(Host_BlockPlayer_AddClip, ComesInWhilePlaying) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60);
  rig.mPlayer.Start(AtSample(0));
  rig.Play(16);
  rig.AddClip();
  EXPECT_EQ("0: 90 3c 64", rig.Play(16));
}

TEST(Host_BlockPlayer_SetMuted, LeavesTheOtherClipOfTheChannelItsValue) {
  PlayerRig rig;
  ChunkPtr const otherP = MakeChunk();
  AddBend(rig.Chunk(), 0, 1);
  AddBend(*otherP.Get(), 2, 2);
  rig.mPlayer.AddClip(otherP.Get(), 0, 1);
  EXPECT_EQ("0: e0 01 40 | 2: e0 02 40", rig.PlayFrom(0, 16));
  rig.mPlayer.SetMuted(1, true);
  EXPECT_EQ("0 #1: e0 00 40 | 0 #0: e0 01 40", rig.Play(16, true));
}

TEST(Host_BlockPlayer_Locate, LeavesASharedChannelTheLatestValue) {
  PlayerRig rig;
  ChunkPtr const otherP = MakeChunk();
  AddController(rig.Chunk(), 9, 7, 10);
  AddController(*otherP.Get(), 5, 7, 20);
  rig.AddClip();
  rig.mPlayer.AddClip(otherP.Get(), 0, 1);
  rig.mPlayer.Start(AtSample(20));
  EXPECT_EQ("0 #0: b0 07 0a | 0 #1: b0 07 14 | 0 #0: b0 07 0a", rig.Play(16, true));
}
