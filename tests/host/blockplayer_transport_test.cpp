// Start, stop, jump and loop, message by message.
#include <gtest/gtest.h>

#include "foundation/time_convert.h"
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

TEST(Host_BlockPlayer_Stop, RestsPedalsBendAndPressures) {
  PlayerRig rig;
  AddController(rig.Chunk(), 0, 64, 127);
  AddController(rig.Chunk(), 0, 7, 90);
  AddBend(rig.Chunk(), 0, -8192);
  AddEvent(rig.Chunk(), 0, Vrae_MonoPressureEvent(9));
  AddEvent(rig.Chunk(), 0, Vrae_PolyPressureEvent(60, 8));
  rig.PlayFrom(0, 16);
  rig.mPlayer.Stop();
  EXPECT_EQ("0: b0 40 00 | 0: e0 00 40 | 0: d0 00 | 0: a0 3c 00", rig.Play(16));
}

TEST(Host_BlockPlayer_Stop, SendsNothingTwice) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60);
  rig.PlayFrom(0, 16);
  rig.mPlayer.Stop();
  rig.Play(16);
  rig.mPlayer.Stop();
  EXPECT_EQ("", rig.Play(16));
}

TEST(Host_BlockPlayer_Stop, KeepsThePosition) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 20, 4, 60);
  rig.PlayFrom(0, 16);
  rig.mPlayer.Stop();
  rig.Play(16);
  EXPECT_EQ(16, rig.mPlayer.GetPosition().AsInt64());
  rig.mPlayer.Start();
  EXPECT_EQ("4: 90 3c 64 | 8: 80 3c 0a", rig.Play(16));
}

TEST(Host_BlockPlayer_Start, StrikesNothingWhenPressedTwice) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60);
  EXPECT_EQ("0: 90 3c 64", rig.PlayFrom(0, 16));
  rig.mPlayer.Start();
  EXPECT_EQ("", rig.Play(16));
}

TEST(Host_BlockPlayer_Start, EndsWhatSoundsWhenPressedTwiceWithAPosition) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60);
  rig.PlayFrom(0, 16);
  rig.mPlayer.Start(AtSample(0));
  EXPECT_EQ("0: 80 3c 0a | 0: 90 3c 64", rig.Play(16));
}

TEST(Host_BlockPlayer_Start, StrikesNotesThatSoundThere) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60, 50, 3);
  AddNote(rig.Chunk(), 5, 5, 62);
  EXPECT_EQ("0: 90 3c 32", rig.PlayFrom(10, 16));
}

TEST(Host_BlockPlayer_Locate, LeavesNoNoteBehind) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60);
  AddNote(rig.Chunk(), 205, 4, 67);
  rig.PlayFrom(0, 16);
  rig.mPlayer.Locate(AtSample(200));
  EXPECT_EQ("0: 80 3c 0a | 5: 90 43 64 | 9: 80 43 0a", rig.Play(16));
}

TEST(Host_BlockPlayer_Locate, LiftsThePedalAndPressesItWhereItIsDown) {
  PlayerRig rig;
  AddController(rig.Chunk(), 0, 64, 127);
  AddController(rig.Chunk(), 100, 64, 0);
  rig.PlayFrom(0, 16);
  rig.mPlayer.Locate(AtSample(50));
  EXPECT_EQ("0: b0 40 00 | 0: b0 40 7f", rig.Play(16));
  rig.mPlayer.Locate(AtSample(150));
  EXPECT_EQ("0: b0 40 00", rig.Play(16));
}

TEST(Host_BlockPlayer_Locate, CentresABendThatTheClipDoesNotHaveThere) {
  PlayerRig rig;
  AddBend(rig.Chunk(), 50, 500);
  EXPECT_EQ("0: e0 74 43", rig.PlayFrom(60, 16));
  rig.mPlayer.Locate(AtSample(0));
  EXPECT_EQ("0: e0 00 40", rig.Play(16));
}

TEST(Host_BlockPlayer_Locate, DoesNothingAtThePositionThatItStandsAt) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60);
  AddController(rig.Chunk(), 0, 64, 127);
  rig.PlayFrom(0, 16);
  rig.mPlayer.Locate(AtSample(16));
  EXPECT_EQ("", rig.Play(16));
}

TEST(Host_BlockPlayer_Locate, MovesAStoppedPlayer) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60);
  rig.AddClip();
  rig.mPlayer.Locate(AtSample(30));
  EXPECT_EQ("", rig.Play(16));
  EXPECT_EQ(30, rig.mPlayer.GetPosition().AsInt64());
}

TEST(Host_BlockPlayer_Locate, CountsTimesBeforeTheOriginAsTheOrigin) {
  PlayerRig rig;
  rig.mPlayer.Start(Ticks(-1000));
  rig.Play(16);
  EXPECT_EQ(16, rig.mPlayer.GetPosition().AsInt64());
}

TEST(Host_BlockPlayer_Process, SendsTheSameInBlocksOfAnySize) {
  auto const play = [](int iSize) {
    PlayerRig rig;
    for (int i = 0; i < 300; ++i) {
      AddNote(rig.Chunk(), i * 37, 55, 40 + i % 50);
      AddController(rig.Chunk(), i * 29, 7, i % 128);
    }
    rig.AddClip();
    rig.mPlayer.Start(AtSample(0));
    for (int done = 0; done < 16384; done += iSize)
      rig.mPlayer.Process(iSize);
    std::string text;
    for (Host_MessageList::Message const & message : rig.mList.GetMessages())
      text += std::to_string(message.mSample) + ":" + PrintBytes(rig.mList.GetBytes(message)) + " ";
    return text;
  };
  std::string const expected = play(16);
  EXPECT_EQ(expected.substr(0, 30), "0:b0 07 00 0:90 28 64 29:b0 07");
  for (int size : {32, 64, 1024, 8192})
    EXPECT_EQ(expected, play(size)) << size;
}

TEST(Host_BlockPlayer_TempoChange, KeepsTheEndOfASoundingNoteAtItsTick) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 32, 60);
  rig.PlayFrom(0, 16);
  Time_Convert::GetDefaultTempoMap().Reset(60.0);
  EXPECT_EQ(32, rig.mPlayer.GetPosition().AsInt64());
  EXPECT_EQ("", rig.Play(32));
  EXPECT_EQ("0: 80 3c 0a", rig.Play(16));
  Time_Convert::GetDefaultTempoMap().Reset(120.0);
}
