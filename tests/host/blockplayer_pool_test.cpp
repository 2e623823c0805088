// The pool of notes in progress runs out: no note is left on, none is lost that could be kept.
#include <gtest/gtest.h>

#include <map>

#include "cmn/cmn_assert.h"
#include "foundation/time_convert.h"
#include "player_rig.h"
#include "support/notes_in_progress.h"

namespace {

constexpr int kNotesInPool = 32;  // a page

// How many notes of each pitch are on.
std::map<int, int> CountOn(Host_MessageList const & iList) {
  std::map<int, int> numOn;
  for (Host_MessageList::Message const & message : iList.GetMessages()) {
    std::span<unsigned char const> const bytes = iList.GetBytes(message);
    bool const isNote = bytes[0] == 0x90 || bytes[0] == 0x80;
    if (isNote) numOn[bytes[1]] += bytes[0] == 0x90 && bytes[2] > 0 ? 1 : -1;
  }
  std::erase_if(numOn, [](auto const & iCount) { return iCount.second == 0; });
  return numOn;
}

struct Host_BlockPlayer_FullPool : testing::Test {
  Host_NotePool mPool{kNotesInPool};
  Host_MessageList mList;
  Host_BlockPlayer mPlayer{&mList};
  ChunkPtr mChunkP = MakeChunk();

  // That many notes from sample 0 to 1000.
  void AddNotes(int iNum) {
    for (int i = 0; i < iNum; ++i)
      AddNote(*mChunkP.Get(), 0, 1000, 40 + i, 100, i + 1);
    mPlayer.AddClip(mChunkP.Get(), 0, 0);
  }
  void Play(int iNumSamples) {
    mList.Clear();
    mPlayer.Process(iNumSamples);
  }
};

}  // namespace

TEST_F(Host_BlockPlayer_FullPool, KeepsAllNotesOverAnEdit) {
  AddNotes(kNotesInPool);
  mPlayer.Start();
  Play(16);
  AddController(*mChunkP.Get(), 900, 7, 1);
  mPlayer.ClipEdited(0);
  Play(16);
  EXPECT_EQ(2u * kNotesInPool, mList.GetMessages().size());
  EXPECT_EQ(0u, CountOn(mList).size());
  EXPECT_EQ(kNotesInPool, mPool.GetNumInUse());
  EXPECT_EQ(0, mPlayer.GetNumLostNotes());
}

TEST_F(Host_BlockPlayer_FullPool, KeepsAllNotesOverTheLoopsEnd) {
  AddNotes(kNotesInPool);
  mPlayer.SetLoop(AtSample(10), AtSample(26));
  mPlayer.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  mPlayer.Start(AtSample(10));
  Play(16);
  Play(0);
  EXPECT_EQ(2u * kNotesInPool, mList.GetMessages().size());
  EXPECT_EQ(kNotesInPool, mPool.GetNumInUse());
  EXPECT_EQ(0, mPlayer.GetNumLostNotes());
}

TEST_F(Host_BlockPlayer_FullPool, EndsNotesForWhichThereIsNoRoomToRingOn) {
  AddNotes(kNotesInPool);
  mPlayer.SetLoop(AtSample(0), AtSample(16));
  mPlayer.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  mPlayer.Start();
  Play(16);
  Play(1);
  EXPECT_EQ(0u, CountOn(mList).size());
  EXPECT_EQ(0, mPlayer.GetNumLostNotes());
}

TEST_F(Host_BlockPlayer_FullPool, KeepsAllNotesOverAJump) {
  AddNotes(kNotesInPool);
  mPlayer.Start();
  Play(16);
  mPlayer.Locate(AtSample(500));
  Play(16);
  EXPECT_EQ(kNotesInPool, mPool.GetNumInUse());
  EXPECT_EQ(0, mPlayer.GetNumLostNotes());
}

TEST_F(Host_BlockPlayer_FullPool, GivesAllBackAtTheStop) {
  AddNotes(kNotesInPool + 8);
  mPlayer.Start();
  Play(16);
  mPlayer.Stop();
  Play(0);
  EXPECT_EQ(0, mPool.GetNumInUse());
  EXPECT_EQ(8, mPlayer.GetNumLostNotes());
}

TEST_F(Host_BlockPlayer_FullPool, CountsWhatAClipLostAfterItIsTakenAway) {
  AddNotes(kNotesInPool + 8);
  mPlayer.Start();
  Play(16);
  mPlayer.RemoveClip(0);
  Play(16);
  mPlayer.AddClip(mChunkP.Get(), 0, 1);
  EXPECT_EQ(8, mPlayer.GetNumLostNotes());
}

namespace {

// Notes that begin before the loop, in it, over its end, and of one pitch.
void FillChunk(Vrad_Chunk & ioChunk) {
  AddNote(ioChunk, 0, 300, 60);
  AddNote(ioChunk, 2, 50, 61);
  AddNote(ioChunk, 10, 10, 60);
  AddNote(ioChunk, 30, 20, 62);
  AddNote(ioChunk, 35, 20, 62);
  ioChunk.AddEvent(NoteAt(Samples(36), 63, 200));
}

// All that a transport does, one after the other.
void PlayThrough(Host_BlockPlayer & ioPlayer, Vrad_Chunk & ioChunk) {
  Time_TempoMap & map = Time_Convert::GetDefaultTempoMap();
  ioPlayer.AddClip(&ioChunk, 0, 0);
  ioPlayer.SetLoop(AtSample(4), AtSample(40));
  ioPlayer.Start(AtSample(0));
  for (Host_ELoopPolicy const policy : {Host_ELoopPolicy::kKeep, Host_ELoopPolicy::kCut}) {
    ioPlayer.SetLoopPolicy(policy);
    for (int i = 0; i < 4; ++i)
      ioPlayer.Process(32);
  }
  ioPlayer.SetMuted(0, true);
  ioPlayer.Process(16);
  ioPlayer.SetMuted(0, false);
  ioPlayer.Process(16);
  AddNote(ioChunk, 1, 90, 64);
  ioPlayer.ClipEdited(0);
  ioPlayer.Process(16);
  ioPlayer.ClearLoop();
  ioPlayer.Locate(AtSample(45));
  ioPlayer.Process(16);
  map.SetTempoAt(Time_Tick(5000), 480.0);
  ioPlayer.Process(16);
  map.Reset(60.0);
  ioPlayer.Process(16);
  ioPlayer.Stop();
  ioPlayer.Process(0);
  map.Reset(120.0);
}

// What a player sends that can take so many nodes from the pool and no more.
std::string PlayWithMemoryFor(Mem2_MasterAllocator & ioAllocator, int iNumNodes) {
  ChunkPtr const chunkP = MakeChunk();
  FillChunk(*chunkP.Get());
  Host_MessageList list;
  Host_BlockPlayer player(&list);
  ioAllocator.FailAfter(iNumNodes);
  PlayThrough(player, *chunkP.Get());
  ioAllocator.FailAfter(-1);
  EXPECT_EQ(0u, CountOn(list).size());
  return PrintMessages(list);
}

}  // namespace

// The first so many allocations succeed, the next one fails, and all behind it.
TEST(Host_BlockPlayer_Pool, LeavesNoNoteOnWhicheverAllocationFails) {
  NoteInProgressPool pool;
  Mem2_MasterAllocator & allocator = pool.mAllocator;
  Cmn_AssertRecorder const silence;
  std::string const whole = PlayWithMemoryFor(allocator, -1);
  int num = 0;
  for (; PlayWithMemoryFor(allocator, num) != whole; ++num) {
    SCOPED_TRACE(std::to_string(num) + " nodes to be had");
    ASSERT_FALSE(testing::Test::HasFailure());
    ASSERT_EQ(0, allocator.GetNumBlocksInUse());
    ASSERT_EQ(0, allocator.GetNumBadFrees());
    ASSERT_GT(1000, num);
  }
  EXPECT_LT(50, num);
}
