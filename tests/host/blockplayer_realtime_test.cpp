// What a player does on the audio thread takes no memory, waits for nothing and throws nothing.
#include <gtest/gtest.h>

#include "foundation/time_convert.h"
#include "random_clips.h"
#include "support/realtime_scope.h"

namespace {

constexpr int kLength = 20000;

// A player of four clips, into a list that does not grow.
struct Rig {
  explicit Rig(ClipKind const & iKind = ClipKind(), int iNumNotes = Host_NotePool::kDefaultNumNotes)
      : mPool(iNumNotes) {
    Chance chance(7);
    for (int i = 0; i < 4; ++i) {
      mChunks[i] = MakeChunk();
      FillAtRandom(*mChunks[i].Get(), chance, kLength, iKind);
      mPlayer.AddClip(mChunks[i].Get(), i / 2, i);
    }
  }

  std::string Play(int iNumSamples) {
    mList.Clear();
    return RealtimeViolationsOf([&] { mPlayer.Process(iNumSamples); });
  }

  Host_NotePool mPool;
  Host_MessageList mList{100000, 1000000};
  Host_BlockPlayer mPlayer{&mList};
  ChunkPtr mChunks[4];
};

void AddManyNotes(Vrad_Chunk & ioChunk, Time_Typed iTime) {
  for (int i = 0; i < 3000; ++i) {
    Vrae_NoteWithDurationEvent const note(static_cast<signed char>(i % 128),
                                          Time_TickLength(400 + i), 100, 64);
    ioChunk.AddEvent(Vrad_NoteWithDurationExtendedEvent(iTime, note, false));
  }
}

}  // namespace

TEST(Host_BlockPlayer_Process, IsFitForTheAudioThread) {
  Rig rig;
  EXPECT_EQ("", RealtimeViolationsOf([&] { rig.mPlayer.Start(AtSample(0)); }));
  for (int size : {16, 64, 100, 512, 1000, 8192})
    EXPECT_EQ("", rig.Play(size)) << size;
  EXPECT_LT(0u, rig.mList.GetMessages().size());
}

TEST(Host_BlockPlayer_Process, IsFitForTheAudioThreadInLoops) {
  for (Host_ELoopPolicy policy : {Host_ELoopPolicy::kCut, Host_ELoopPolicy::kKeep}) {
    Rig rig;
    rig.mPlayer.SetLoopPolicy(policy);
    rig.mPlayer.SetLoop(AtSample(1000), AtSample(1100));
    rig.mPlayer.Start(AtSample(950));
    for (int i = 0; i < 20; ++i)
      EXPECT_EQ("", rig.Play(512));
  }
}

TEST(Host_BlockPlayer_Process, IsFitForTheAudioThreadWithJumpsMutesAndStops) {
  Rig rig;
  rig.mPlayer.Start(AtSample(0));
  for (int i = 0; i < 200; ++i) {
    std::string const commands = RealtimeViolationsOf([&] {
      if (i % 3 == 0) rig.mPlayer.Locate(AtSample(i * 971 % kLength));
      if (i % 5 == 0) rig.mPlayer.SetMuted(i % 4, i % 2 == 0);
      if (i % 11 == 0) rig.mPlayer.Stop();
      if (i % 11 == 2) rig.mPlayer.Start();
    });
    EXPECT_EQ("", commands);
    EXPECT_EQ("", rig.Play(64));
  }
}

TEST(Host_BlockPlayer_Process, IsFitForTheAudioThreadAfterEdits) {
  Rig rig;
  Chance chance(3);
  rig.mPlayer.Start(AtSample(0));
  for (int i = 0; i < 100; ++i) {
    EditAtRandom(*rig.mChunks[i % 4].Get(), chance, kLength);
    rig.mPlayer.ClipEdited(i % 4);
    EXPECT_EQ("", rig.Play(200));
  }
}

TEST(Host_BlockPlayer_Process, IsFitForTheAudioThreadAfterAClipIsTakenAway) {
  Rig rig;
  rig.mPlayer.Start(AtSample(1000));
  rig.Play(64);
  rig.mPlayer.RemoveClip(1);
  EXPECT_EQ("", rig.Play(64));
  rig.mPlayer.SetReceiver(nullptr);
  EXPECT_EQ("", rig.Play(64));
  rig.mPlayer.SetReceiver(&rig.mList);
  EXPECT_EQ("", rig.Play(64));
}

TEST(Host_BlockPlayer_Process, IsFitForTheAudioThreadWithClipsOfBothUnitsWhoseTempoChanges) {
  ClipKind kind;
  kind.mNumOf = 2;
  kind.mHasLongNotes = true;
  Rig rig(kind);
  rig.mPlayer.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  rig.mPlayer.SetLoop(AtSample(1000), AtSample(1700));
  rig.mPlayer.Start(AtSample(0));
  for (int i = 0; i < 100; ++i) {
    Time_Convert::GetDefaultTempoMap().Reset(i % 2 == 0 ? 120.0 : 90.0);
    EXPECT_EQ("", rig.Play(200));
  }
  Time_Convert::GetDefaultTempoMap().Reset(120.0);
}

TEST(Host_BlockPlayer_Process, IsFitForTheAudioThreadWhenThePoolIsUsedUp) {
  Rig rig(ClipKind(), 32);
  Chance chance(3);
  rig.mPlayer.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  rig.mPlayer.SetLoop(AtSample(1000), AtSample(3000));
  rig.mPlayer.Start(AtSample(0));
  for (int i = 0; i < 100; ++i) {
    EditAtRandom(*rig.mChunks[i % 4].Get(), chance, kLength);
    rig.mPlayer.ClipEdited(i % 4);
    EXPECT_EQ("", rig.Play(200));
  }
  EXPECT_LT(0, rig.mPlayer.GetNumLostNotes());
}

TEST(Host_BlockPlayer_Process, IsFitForTheAudioThreadInABlockAsLongAsTheClip) {
  Rig rig;
  rig.mPlayer.Start(AtSample(0));
  EXPECT_EQ("", rig.Play(2 * kLength));
}

// Room is counted by stretches of 240,000 ticks; these notes lie on either side of where two meet.
TEST(Host_BlockPlayer_Process, IsFitForTheAudioThreadWhereverEventsCrowd) {
  PlayerRig rig;
  Host_MessageList list(10000, 100000);
  for (int i = 0; i < 400; ++i)
    AddNote(rig.Chunk(), 5950 + i % 100, 10, i % 128);
  rig.mPlayer.SetReceiver(&list);
  rig.AddClip();
  rig.mPlayer.Start(AtSample(5900));
  EXPECT_EQ("", RealtimeViolationsOf([&] { rig.mPlayer.Process(200); }));
}

TEST(Host_BlockPlayer_Process, IsFitForTheAudioThreadWithAThousandNotesAtOneTick) {
  Rig rig;
  for (int i = 0; i < 1000; ++i)
    AddNote(*rig.mChunks[0].Get(), 5000, 10 + i, i % 128);
  rig.mPlayer.ClipEdited(0);
  rig.mPlayer.Start(AtSample(4990));
  EXPECT_EQ("", rig.Play(2000));
}

TEST(Host_BlockPlayer_Process, IsFitForTheAudioThreadAfterAnEditOfARange) {
  Rig rig;
  AddManyNotes(*rig.mChunks[0].Get(), AtSample(5000));
  rig.mPlayer.ClipEdited(0, AtSample(5000), AtSample(5001));
  rig.mPlayer.Start(AtSample(4990));
  EXPECT_EQ("", rig.Play(2000));
}

TEST(Host_BlockPlayer_Process, HasRoomForWhatComesTogetherWithAnEditedRange) {
  for (long long const distance : {-4000, 4000}) {
    Rig rig;
    for (long long const sample : {8000LL, 8000 + distance}) {
      AddManyNotes(*rig.mChunks[0].Get(), AtSample(sample));
      rig.mPlayer.ClipEdited(0, AtSample(sample), AtSample(sample + 1));
    }
    rig.mPlayer.Start(AtSample(3990));
    EXPECT_EQ("", rig.Play(8192)) << distance;
  }
}

TEST(Host_BlockPlayer_Process, HasRoomForEventsInSamplesOfAnEditedRange) {
  Rig rig;
  AddManyNotes(*rig.mChunks[0].Get(), AtSample(19900));
  rig.mPlayer.ClipEdited(0);
  for (int i = 0; i < 3000; ++i)
    rig.mChunks[0]->AddEvent(SysexAt(Samples(100), i % 128));
  rig.mPlayer.ClipEdited(0, AtSample(100), AtSample(101));
  // Another tempo brings together what is in samples and what is in ticks.
  Time_Convert::GetDefaultTempoMap().Reset(120.0 * 19900 / 100);
  rig.mPlayer.Start(Samples(90));
  EXPECT_EQ("", rig.Play(100));
  Time_Convert::GetDefaultTempoMap().Reset(120.0);
}

TEST(Host_BlockPlayer_Process, HasRoomAfterAnEditOfARangeInSamples) {
  Rig rig;
  AddManyNotes(*rig.mChunks[0].Get(), AtSample(5000));
  rig.mPlayer.ClipEdited(0, Samples(5000), Samples(5001));
  rig.mPlayer.Start(AtSample(4990));
  EXPECT_EQ("", rig.Play(2000));
}

TEST(Host_BlockPlayer_Process, SendsALongSysexWithoutTakingMemory) {
  PlayerRig rig;
  std::vector<unsigned char> const contents(100000, 0x5a);
  AddEvent(rig.Chunk(), 3, Vrae_SysexEvent(100000, contents.data()));
  Host_MessageList list(10, 200000);
  rig.mPlayer.SetReceiver(&list);
  rig.AddClip();
  rig.mPlayer.Start(AtSample(0));
  EXPECT_EQ("", RealtimeViolationsOf([&] { rig.mPlayer.Process(16); }));
  ASSERT_EQ(1u, list.GetMessages().size());
  std::span<unsigned char const> const bytes = list.GetBytes(list.GetMessages()[0]);
  ASSERT_EQ(100002u, bytes.size());
  EXPECT_EQ(0xf0, bytes.front());
  EXPECT_EQ(0x5a, bytes[50000]);
  EXPECT_EQ(0xf7, bytes.back());
}

TEST(Host_BlockPlayer_Process, DoesNotStrikeWhatItCouldNotEnd) {
  Host_NotePool const pool(32);
  Host_MessageList list;
  Host_BlockPlayer player(&list);
  ChunkPtr const chunkP = MakeChunk();
  for (int i = 0; i < 40; ++i)
    AddNote(*chunkP.Get(), 0, 10, 40 + i);
  player.AddClip(chunkP.Get(), 0, 0);
  player.Start(AtSample(0));
  player.Process(64);
  EXPECT_EQ(8, player.GetNumLostNotes());
  EXPECT_EQ(64u, list.GetMessages().size());
}
