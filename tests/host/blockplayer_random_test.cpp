// Whatever a host does, what a player sends is what the clips ask for.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "foundation/time_convert.h"
#include "host/host_midifile.h"
#include "host/host_playposition.h"
#include "host/host_streamchecker.h"
#include "random_clips.h"

namespace {

constexpr int kNumSteps = VRAD_NUM_RANDOM_STEPS;

// A player and its referee, who are told the same.
class Session {
public:
  // Where the tempo changes notes are to be longer than a sample at any: of shorter ones a receiver
  // cannot tell whether they have passed.
  static constexpr long long kShortestAtAnyTempo = 400;  // ticks

  Session(unsigned iSeed, int iLength, bool iChangesTempo)
      : mChance(iSeed), mLength(iLength), mChangesTempo(iChangesTempo), mPlayer(&mChecker) {}
  ~Session() { Time_Convert::GetDefaultTempoMap().Reset(120.0); }

  void AddClip(Vrad_Chunk * iChunkP, int iChannel, ClipKind const & iKind) {
    mClips.push_back({iChunkP, iChannel, iKind, true, false});
    int const clip = static_cast<int>(mClips.size()) - 1;
    mPlayer.AddClip(iChunkP, iChannel, clip);
    mChecker.AddClip(iChunkP, iChannel, clip);
  }

  // A command or none, then a block. What is wrong then, if anything.
  std::string Step() {
    Command();
    long long before = mPlayer.GetPosition().AsInt64();
    int size = BlockSize();
    mPlayer.Process(size);
    mLog += " [" + std::to_string(before) + "+" + std::to_string(size) + "=" +
            std::to_string(mPlayer.GetPosition().AsInt64()) + "]";
    mChecker.CheckPosition(mPlayer.GetPosition());
    return mChecker.IsGood() ? std::string() : mChecker.GetViolation().mText + "\n" + mLog;
  }

private:
  struct Clip {
    Vrad_Chunk * mChunkP;
    int mChannel;
    ClipKind mKind;  // of what edits add
    bool mIsThere, mIsMuted;
  };

  int BlockSize() {
    if (mChance.OneIn(20)) return 0;
    return mChance.OneIn(200) ? mChance.From(1024, 8192) : mChance.From(16, 256);
  }

  Time_Typed Position() {
    Time_Typed const tick = AtSample(mChance.Below(mLength));
    return mChance.OneIn(4) ? Samples(Host_PlayPosition::SampleOf(tick)) : tick;
  }

  template <class TCommand>
  void Both(char const * iName, TCommand iCommand) {
    mLog += std::string(" ") + iName;
    if (mLog.size() > 400) mLog.erase(0, mLog.size() - 400);
    iCommand(mPlayer);
    iCommand(mChecker);
  }

  void Command() {
    switch (mChance.Below(40)) {
    case 0:
    case 1: {
      Time_Typed const to = Position();
      return Both("start at", [&](auto & ioTarget) { ioTarget.Start(to); });
    }
    case 2:
    case 3:
      return Both("start", [](auto & ioTarget) { ioTarget.Start(); });
    case 4:
      return Both("stop", [](auto & ioTarget) { ioTarget.Stop(); });
    case 5:
    case 6: {
      Time_Typed const to = Position();
      return Both("locate", [&](auto & ioTarget) { ioTarget.Locate(to); });
    }
    case 7:
    case 8:
      return SetLoop();
    case 9:
      return Both("no loop", [](auto & ioTarget) { ioTarget.ClearLoop(); });
    case 10: {
      auto const policy = mChance.OneIn(2) ? Host_ELoopPolicy::kCut : Host_ELoopPolicy::kKeep;
      return Both("policy", [&](auto & ioTarget) { ioTarget.SetLoopPolicy(policy); });
    }
    case 11:
    case 12:
      return Mute();
    case 13:
      return TakeAwayOrAdd();
    case 14:
    case 15:
      return Edit();
    case 16:
      if (mChangesTempo && mChance.OneIn(4)) ChangeTempo();
      return;
    default:
      return;
    }
  }

  // Often shorter than a block, and often just ahead.
  void SetLoop() {
    long long const from =
        mChance.OneIn(2) ? mPlayer.GetPosition().AsInt64() : mChance.Below(mLength);
    long long const to = from + (mChance.OneIn(2) ? mChance.Below(64) : mChance.Below(3000));
    Both("loop", [&](auto & ioTarget) { ioTarget.SetLoop(Samples(from), Samples(to)); });
  }

  int AnyClip() { return mChance.Below(static_cast<long long>(mClips.size())); }

  void Mute() {
    int const number = AnyClip();
    Clip & clip = mClips[static_cast<size_t>(number)];
    if (!clip.mIsThere) return;
    clip.mIsMuted = !clip.mIsMuted;
    Both(clip.mIsMuted ? "mute" : "unmute",
         [&](auto & ioTarget) { ioTarget.SetMuted(number, clip.mIsMuted); });
  }

  void TakeAwayOrAdd() {
    int const number = AnyClip();
    Clip & clip = mClips[static_cast<size_t>(number)];
    if (clip.mIsThere)
      Both("remove", [&](auto & ioTarget) { ioTarget.RemoveClip(number); });
    else
      Both("add", [&](auto & ioTarget) { ioTarget.AddClip(clip.mChunkP, clip.mChannel, number); });
    clip.mIsThere = !clip.mIsThere;
    clip.mIsMuted = false;
  }

  void Edit() {
    int const number = AnyClip();
    Clip const & clip = mClips[static_cast<size_t>(number)];
    if (!clip.mIsThere) return;
    EditAtRandom(*clip.mChunkP, mChance, mLength, clip.mKind);
    Both("edit", [&](auto & ioTarget) { ioTarget.ClipEdited(number); });
  }

  void ChangeTempo() {
    Time_TempoMap & map = Time_Convert::GetDefaultTempoMap();
    if (mChance.OneIn(2))
      map.Reset(mChance.From(40, 240));
    else
      map.SetTempoAt(AtSample(mChance.Below(mLength)).AsTick(), mChance.From(40, 240));
    mLog += " tempo";
    mChecker.TempoChanged();
  }

  Host_NotePool mPool;
  Chance mChance;
  int mLength;  // samples at the first tempo
  bool mChangesTempo;
  Host_StreamChecker mChecker;
  Host_BlockPlayer mPlayer;
  std::vector<Clip> mClips;
  std::string mLog;
};

void PlayAtRandom(Session & ioSession, int iNumSteps) {
  for (int step = 0; step < iNumSteps; ++step) {
    std::string const wrong = ioSession.Step();
    ASSERT_EQ("", wrong) << "in step " << step;
  }
}

}  // namespace

// In half of the sessions the tempo changes; in half two clips share each channel; in half there
// are times in samples, in clips of their own where the tempo changes, since the order of both
// units changes with it; in half long notes.
TEST(Host_BlockPlayer_Random, SendsWhatGeneratedClipsAskFor) {
  constexpr int kLength = 20000, kNumSessions = 16;
  for (unsigned seed = 1; seed <= kNumSessions; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Chance chance(seed);
    std::array<ChunkPtr, 4> chunks;
    bool const changesTempo = seed % 2 == 0, isShared = seed / 2 % 2 == 0;
    bool const hasSamples = seed / 4 % 2 == 0;
    ClipKind kind;
    kind.mShortestNote = changesTempo ? Session::kShortestAtAnyTempo : 1;
    kind.mHasLongNotes = seed / 8 % 2 == 0;
    kind.mHasBanks = !isShared;
    Session session(seed, kLength, changesTempo);
    for (int num = 0; ChunkPtr & chunkP : chunks) {
      if (hasSamples) kind.mNumOf = changesTempo ? 1 : 2;
      if (hasSamples && changesTempo) kind.mNumInTicks = num % 2;
      chunkP = MakeChunk();
      FillAtRandom(*chunkP.Get(), chance, kLength, kind);
      bool const hasChannel = !isShared || num > 0;  // without one it plays on the first
      session.AddClip(chunkP.Get(), !hasChannel ? -1 : isShared ? num / 2 : num, kind);
      ++num;
    }
    PlayAtRandom(session, kNumSteps / 2 / kNumSessions);
    if (testing::Test::HasFatalFailure()) return;
  }
}

TEST(Host_BlockPlayer_Random, SendsWhatTheDemoAsksFor) {
  Host_MidiFile file = Host_ReadMidiFile(VRAD_SOURCE_DIR "/examples/demo.mid");
  ClipKind kind;
  kind.mShortestNote = Session::kShortestAtAnyTempo;
  Session session(42, 49 * 48000, true);
  file.FillTempoMap(Time_Convert::GetDefaultTempoMap());
  for (Host_Clip const & clip : file.mClips)
    session.AddClip(clip.mChunk.Get(), clip.mChannel, kind);
  PlayAtRandom(session, kNumSteps / 2);
}
