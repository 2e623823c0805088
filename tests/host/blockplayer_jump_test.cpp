// After a jump a receiver stands as it would after playing from the beginning.
#include <gtest/gtest.h>

#include <map>

#include "foundation/time_convert.h"
#include "host/host_midifile.h"
#include "random_clips.h"

namespace {

// What a receiver holds of each channel. Parameters are 14-bit values that data and steps change.
class Receiver : public Host_BlockReceiver {
public:
  void ReceiveMessage(Host_WireMessage const & iMessage) override {
    unsigned char const * const data = iMessage.mData;
    int const status = data[0] & 0xF0, channel = data[0] & 0x0F;
    if (status == 0xF0) return;
    std::string const where = std::to_string(channel) + "/";
    if (status == 0x90 || status == 0x80) {
      int & num = mSounding[where + std::to_string(data[1])];
      num += status == 0x90 && data[2] > 0 ? 1 : -1;
      if (num == 0) mSounding.erase(where + std::to_string(data[1]));
    } else if (status == 0xB0) {
      TakeController(where, data[1], data[2]);
    } else if (status == 0xC0) {
      mValues[where + "program"] = data[1];
      for (char const * const part : {"0", "32"})  // those that it takes with it
        if (mValues.count(where + part) > 0)
          mValues[where + "bank " + part] = mValues[where + part];
    } else if (status == 0xA0) {
      mValues[where + "poly " + std::to_string(data[1])] = data[2];
    } else {
      mValues[where + (status == 0xD0 ? "mono" : "bend")] =
          status == 0xD0 ? data[1] : data[1] + data[2] * 128;
    }
  }

  // What this one has and the other lacks or holds differently. What is at rest counts for not set.
  std::string DifferenceTo(Receiver const & iOther) const {
    for (auto const & [name, value] : mValues) {
      auto const other = iOther.mValues.find(name);
      if (other == iOther.mValues.end() || other->second != value)
        return name + " is " + std::to_string(value) + ", not " +
               (other == iOther.mValues.end() ? "set" : std::to_string(other->second));
    }
    return mSounding == iOther.mSounding ? "" : "other notes sound";
  }

private:
  void TakeController(std::string const & iWhere, int iNumber, int iValue) {
    if (iNumber >= 98 && iNumber <= 101) {
      bool const isRegistered = iNumber >= 100;
      mSelected[iWhere + (isRegistered ? "r" : "n") + (iNumber % 2 == 0 ? "fine" : "coarse")] =
          iValue;
      mKind[iWhere] = isRegistered ? "r" : "n";
    } else if (iNumber == 6 || iNumber == 38 || iNumber == 96 || iNumber == 97) {
      TakeData(iWhere, iNumber, iValue);
    } else {
      mValues[iWhere + std::to_string(iNumber)] = iValue;
    }
  }

  void TakeData(std::string const & iWhere, int iNumber, int iValue) {
    std::string const kind = mKind[iWhere];
    int const coarse = mSelected[iWhere + kind + "coarse"];
    int const fine = mSelected[iWhere + kind + "fine"];
    if (kind.empty() || (coarse == 127 && fine == 127)) return;
    constexpr int kMiddle = 8192;
    int & value = mValues
                      .try_emplace(iWhere + "parameter " + kind + std::to_string(coarse) + "." +
                                       std::to_string(fine),
                                   kMiddle)
                      .first->second;
    if (iNumber == 6) value = iValue * 128 + value % 128;
    if (iNumber == 38) value = value / 128 * 128 + iValue;
    if (iNumber == 96) ++value;
    if (iNumber == 97) --value;
  }

  std::map<std::string, int> mValues;
  std::map<std::string, int> mSounding;
  std::map<std::string, int> mSelected;
  std::map<std::string, std::string> mKind;
};

struct Clip {
  Vrad_Chunk * mChunkP;
  int mChannel;
};

void AddAll(Host_BlockPlayer & ioPlayer, std::vector<Clip> const & iClips) {
  for (size_t i = 0; i < iClips.size(); ++i)
    ioPlayer.AddClip(iClips[i].mChunkP, iClips[i].mChannel, static_cast<int>(i));
}

// Plays one player from the beginning and lets another one jump, from wherever it is, to each
// position that comes; one sample is played there by both.
void CompareJumps(std::vector<Clip> const & iClips, Chance & ioChance, int iLength,
                  int iNumPositions) {
  Host_NotePool const pool;
  Receiver played, jumped;
  Host_BlockPlayer player(&played), jumper(&jumped);
  AddAll(player, iClips);
  AddAll(jumper, iClips);
  player.Start(Samples(0));
  jumper.Start(Samples(ioChance.Below(iLength)));
  for (int i = 1; i <= iNumPositions; ++i) {
    jumper.Locate(Samples(ioChance.Below(iLength)));
    jumper.Process(ioChance.From(0, 2000));
    long long const position = static_cast<long long>(iLength) * i / iNumPositions;
    while (player.GetPosition().AsInt64() < position)
      player.Process(
          static_cast<int>(std::min<long long>(position - player.GetPosition().AsInt64(), 4096)));
    jumper.Locate(Samples(position));
    player.Process(1);
    jumper.Process(1);
    ASSERT_EQ("", played.DifferenceTo(jumped)) << "at sample " << position;
  }
}

void CompareJumpsInGeneratedClips(ClipKind iKind, int iNumClipsOnAChannel = 1) {
  constexpr int kLength = 20000;
  iKind.mAreParametersWhole = true;
  for (unsigned seed = 1; seed <= 3; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Chance chance(seed);
    ChunkPtr chunks[4];
    std::vector<Clip> clips;
    for (ChunkPtr & chunkP : chunks) {
      chunkP = MakeChunk();
      FillAtRandom(*chunkP.Get(), chance, kLength, iKind);
      clips.push_back({chunkP.Get(), static_cast<int>(clips.size()) / iNumClipsOnAChannel});
    }
    CompareJumps(clips, chance, kLength, 100);
    if (testing::Test::HasFatalFailure()) return;
  }
}

}  // namespace

TEST(Host_BlockPlayer_Jump, LeavesWhatPlayingLeavesInGeneratedClips) {
  CompareJumpsInGeneratedClips(ClipKind());
}

TEST(Host_BlockPlayer_Jump, LeavesWhatPlayingLeavesInClipsThatShareChannels) {
  ClipKind kind;
  kind.mHasBanks = false;
  CompareJumpsInGeneratedClips(kind, 2);
}

TEST(Host_BlockPlayer_Jump, LeavesWhatPlayingLeavesInClipsOfBothUnits) {
  ClipKind kind;
  kind.mNumOf = 2;
  CompareJumpsInGeneratedClips(kind);
}

TEST(Host_BlockPlayer_Jump, LeavesWhatPlayingLeavesInClipsOfLongNotes) {
  ClipKind kind;
  kind.mHasLongNotes = true;
  CompareJumpsInGeneratedClips(kind);
}

TEST(Host_BlockPlayer_Jump, LeavesWhatPlayingLeavesInTheDemo) {
  Host_MidiFile file = Host_ReadMidiFile(VRAD_SOURCE_DIR "/examples/demo.mid");
  file.FillTempoMap(Time_Convert::GetDefaultTempoMap());
  std::vector<Clip> clips;
  for (Host_Clip const & clip : file.mClips)
    clips.push_back({clip.mChunk.Get(), clip.mChannel});
  Chance chance(1);
  CompareJumps(clips, chance, 49 * 48000, 300);
  Time_Convert::GetDefaultTempoMap().Reset(120.0);
}
