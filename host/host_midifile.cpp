#include "host/host_midifile.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "host/host_clipbuilder.h"
#include "host/host_filebytes.h"
#include "host/host_midisysex.h"

namespace {

typedef std::span<unsigned char const> Bytes;

// A change with the place it stands at, until it is settled which of two at one tick counts.
template <class T>
struct Found {
  T mChange;
  size_t mOffset;
};

// In order of time; of several at one place the last one found. iPlaceOf gives what is to be
// different in all that stay, time first.
template <class T, class TPlaceOf>
std::vector<T> SettleChanges(std::vector<Found<T>> & ioFound, TPlaceOf iPlaceOf,
                             Host_ENotKept iEarlier, Host_MidiReport & ioReport) {
  std::stable_sort(ioFound.begin(), ioFound.end(), [&](Found<T> const & iA, Found<T> const & iB) {
    return iPlaceOf(iA.mChange) < iPlaceOf(iB.mChange);
  });
  std::vector<T> result;
  for (size_t i = 0; i < ioFound.size(); ++i) {
    if (i + 1 < ioFound.size() &&
        iPlaceOf(ioFound[i].mChange) == iPlaceOf(ioFound[i + 1].mChange)) {
      ioReport.CountNotKept(iEarlier, ioFound[i].mOffset);
    } else {
      result.push_back(ioFound[i].mChange);
    }
  }
  return result;
}

// Hears a file out and fills a `Host_MidiFile`.
class Reader : public Host_MidiFileVisitor, public Host_MidiSysexListener {
public:
  Reader(Host_MidiFile & ioFile, Host_Progress const & iProgress, size_t iNumBytes)
      : mFile(ioFile),
        mBuilder(ioFile.mClips, ioFile.mReport),
        mJoiner(*this),
        mProgress(iProgress),
        mNumBytes(iNumBytes) {}

  void Finish() {
    auto const tickOf = [](auto const & iChange) { return iChange.mTime.AsInt64(); };
    auto const tickAndTrackOf = [](auto const & iChange) {
      return std::pair(iChange.mTime.AsInt64(), iChange.mTrack);
    };
    mFile.mTempoChanges = SettleChanges(mTempos, tickOf, kNotKept_EarlierTempo, mFile.mReport);
    mFile.mTimeSignatures =
        SettleChanges(mSignatures, tickOf, kNotKept_EarlierTimeSignature, mFile.mReport);
    mFile.mKeySignatures =
        SettleChanges(mKeys, tickAndTrackOf, kNotKept_EarlierKeySignature, mFile.mReport);
  }

  void BeginFile(Host_MidiHeader const & iHeader) override {
    mFile.mHeader = iHeader;
    mFile.mTiming = Host_MidiTiming(iHeader.mDivision);
  }

  void BeginTrack(int iTrack, size_t) override {
    mFile.mTracks.push_back({std::string(), Time_Tick(0)});
    mHasName = false;
    mBuilder.BeginTrack(iTrack);
  }

  void ChannelMessage(long long iTick, unsigned char iStatus, unsigned char iData1,
                      unsigned char iData2, size_t iOffset) override {
    TellProgress(iOffset);
    mBuilder.AddChannelMessage(ToTick(iTick), iStatus, iData1, iData2, iOffset);
  }

  void SysexPacket(long long iTick, unsigned char iStatus, Bytes iBytes, size_t iOffset) override {
    TellProgress(iOffset);
    mJoiner.AddPacket(ToTick(iTick), iStatus, iBytes, iOffset);
  }

  void MetaEvent(long long iTick, unsigned char iType, Bytes iBytes, size_t iOffset) override {
    TellProgress(iOffset);
    if (iType == 0x03 && !mHasName) {
      mFile.mTracks.back().mName.assign(iBytes.begin(), iBytes.end());
      mHasName = true;
    } else if (iType == 0x51) {
      AddTempo(iTick, iBytes, iOffset);
    } else if (iType == 0x58) {
      AddTimeSignature(iTick, iBytes, iOffset);
    } else if (iType == 0x59) {
      AddKeySignature(iTick, iBytes, iOffset);
    } else {
      mFile.mReport.CountMetaEvent(iType, iOffset);
    }
  }

  void EndTrack(long long iTick) override {
    mJoiner.EndTrack();
    mBuilder.EndTrack(ToTick(iTick));
    mFile.mTracks.back().mEnd = mFile.mTiming.ToTick(iTick);
  }

  void UnknownChunk(size_t iOffset) override {
    mFile.mReport.CountNotKept(kNotKept_UnknownChunk, iOffset);
  }

  void Problem(size_t iOffset, std::string const & iText, bool iIsLoss) override {
    mFile.mReport.AddProblem(iOffset, iText, iIsLoss);
  }

  void Sysex(long long iTick, Bytes iContents, size_t iOffset) override {
    mBuilder.AddSysex(iTick, iContents, iOffset);
  }

  void EscapedMessage(long long iTick, unsigned char iStatus, unsigned char iData1,
                      unsigned char iData2, size_t iOffset) override {
    mBuilder.AddChannelMessage(iTick, iStatus, iData1, iData2, iOffset);
  }

  void EscapedBytes(size_t iOffset) override {
    mFile.mReport.CountNotKept(kNotKept_EscapedMessage, iOffset);
  }

  void UnfinishedSysex(size_t iOffset) override {
    mFile.mReport.CountNotKept(kNotKept_UnfinishedSysex, iOffset);
  }

private:
  static constexpr size_t kProgressStep = 1 << 18;

  void TellProgress(size_t iOffset) {
    if (iOffset < mNextProgress) return;
    mNextProgress = iOffset + kProgressStep;
    if (mProgress) mProgress(iOffset, mNumBytes);
  }

  // Most messages share their tick with the one before.
  long long ToTick(long long iFileTick) {
    if (iFileTick != mFileTick) {
      mFileTick = iFileTick;
      mTick = mFile.mTiming.ToTick(iFileTick).AsInt64();
    }
    return mTick;
  }

  int GetTrack() const { return static_cast<int>(mFile.mTracks.size()) - 1; }

  bool IsFurtherSequence() const { return mFile.mHeader.mFormat == 2 && mFile.mTracks.size() > 1; }

  void AddTempo(long long iTick, Bytes iBytes, size_t iOffset) {
    int const microseconds = iBytes.size() < 3 ? 0 : iBytes[0] << 16 | iBytes[1] << 8 | iBytes[2];
    if (microseconds == 0) return mFile.mReport.CountNotKept(kNotKept_BadTempo, iOffset);
    if (mFile.mTiming.IsSMPTE()) {
      return mFile.mReport.CountNotKept(kNotKept_TempoOfSMPTE, iOffset);
    }
    if (IsFurtherSequence()) {
      return mFile.mReport.CountNotKept(kNotKept_TempoOfFurtherSequence, iOffset);
    }
    mTempos.push_back({{Time_Tick(ToTick(iTick)), 60e6 / microseconds, GetTrack()}, iOffset});
  }

  void AddTimeSignature(long long iTick, Bytes iBytes, size_t iOffset) {
    if (iBytes.size() < 2 || iBytes[0] == 0 || iBytes[1] > 10) {
      return mFile.mReport.CountNotKept(kNotKept_BadTimeSignature, iOffset);
    }
    if (IsFurtherSequence()) {
      return mFile.mReport.CountNotKept(kNotKept_TimeSignatureOfFurtherSequence, iOffset);
    }
    Host_TimeSignature signature = {Time_Tick(ToTick(iTick)), iBytes[0], 1 << iBytes[1],
                                    GetTrack()};
    if (iBytes.size() >= 4) {
      signature.mClocksPerClick = iBytes[2];
      signature.mThirtySecondsPerBeat = iBytes[3];
    }
    mSignatures.push_back({signature, iOffset});
  }

  void AddKeySignature(long long iTick, Bytes iBytes, size_t iOffset) {
    int const numSharps = iBytes.size() < 2 ? 8 : static_cast<signed char>(iBytes[0]);
    if (std::abs(numSharps) > 7 || iBytes[1] > 1) {
      return mFile.mReport.CountNotKept(kNotKept_BadKeySignature, iOffset);
    }
    mKeys.push_back({{Time_Tick(ToTick(iTick)), numSharps, iBytes[1] == 1, GetTrack()}, iOffset});
  }

  Host_MidiFile & mFile;
  Host_ClipBuilder mBuilder;
  Host_MidiSysexJoiner mJoiner;
  Host_Progress const & mProgress;
  size_t mNumBytes;
  size_t mNextProgress = kProgressStep;
  std::vector<Found<Host_TempoChange>> mTempos;
  std::vector<Found<Host_TimeSignature>> mSignatures;
  std::vector<Found<Host_KeySignature>> mKeys;
  bool mHasName = false;
  long long mFileTick = 0;
  long long mTick = 0;
};

bool MayBeMidi(Bytes iBegin) {
  return iBegin.size() >= 4 && std::equal(iBegin.begin(), iBegin.begin() + 4, "MThd");
}

}  // namespace

Host_MidiFile Host_ReadMidiFile(std::span<unsigned char const> iBytes,
                                Host_Progress const & iProgress) {
  Host_MidiFile file;
  Reader reader(file, iProgress, iBytes.size());
  Host_ParseMidiFile(iBytes, reader);
  reader.Finish();
  if (iProgress) iProgress(iBytes.size(), iBytes.size());
  return file;
}

Host_MidiFile Host_ReadMidiFile(std::string const & iPath, Host_Progress const & iProgress) {
  std::vector<unsigned char> const bytes = Host_LoadBytes(iPath, MayBeMidi);
  return Host_ReadMidiFile(std::span<unsigned char const>(bytes), iProgress);
}
