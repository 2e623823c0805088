#include "host/host_midiwriter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <map>
#include <numeric>
#include <set>
#include <utility>

#include "foundation/time_convert.h"
#include "host/host_filebytes.h"
#include "host/host_midinumbers.h"
#include "host/host_miditrackwriter.h"
#include "host/host_trackevents.h"

namespace {

typedef std::vector<unsigned char> Bytes;

constexpr size_t kMaxTracks = 0xffff;
constexpr size_t kMaxTrackBytes = 0xffffffff;
constexpr int kSMPTEBit = 0x8000;
constexpr int kUsualDivision = 480;

// A meta event as it stands behind its delta time. Needs: contents that a file can hold.
Bytes MakeMeta(unsigned char iType, std::span<unsigned char const> iContents) {
  Bytes result = {0xff, iType};
  Host_AppendVariableLength(result, static_cast<unsigned>(iContents.size()));
  result.insert(result.end(), iContents.begin(), iContents.end());
  return result;
}

class FileWriter {
public:
  FileWriter(Host_Song const & iSong, Host_WriteReport & ioReport)
      : mSong(iSong), mReport(ioReport), mTracks(CountTracks(iSong)) {
    if (mTracks.size() > kMaxTracks) {
      throw Host_MidiWriteError("a MIDI file has at most 65535 tracks, not " +
                                std::to_string(mTracks.size()));
    }
    if (mSong.mHeader.mFormat == 0 && mTracks.size() == 1) mFormat = 0;
    if (mSong.mHeader.mFormat == 2) mFormat = 2;
  }

  Bytes Write() {
    AddTracks();
    AddClips();
    int const division = ChooseDivision();
    mTiming = Host_MidiTiming(division);
    AddTempos();
    AddTimeSignatures();
    AddKeySignatures();
    WriteHeader(division);
    for (Host_TrackEvents & track : mTracks) {
      WriteTrack(track);
      track = Host_TrackEvents();
    }
    return std::move(mBytes);
  }

private:
  static size_t CountTracks(Host_Song const & iSong) {
    int last = static_cast<int>(iSong.mTracks.size()) - 1;
    auto const include = [&last](auto const & iItems) {
      for (auto const & item : iItems)
        last = std::max(last, item.mTrack);
    };
    include(iSong.mClips);
    include(iSong.mTempoChanges);
    include(iSong.mTimeSignatures);
    include(iSong.mKeySignatures);
    return static_cast<size_t>(last + 1);
  }

  void AddTracks() {
    for (size_t i = 0; i < mSong.mTracks.size(); ++i) {
      mTracks[i].mEnd = std::max(mSong.mTracks[i].mEnd.AsInt64(), 0ll);
      std::string const & name = mSong.mTracks[i].mName;
      if (name.empty()) continue;
      if (name.size() > kHost_MaxVariableLength) {
        throw Host_MidiWriteError("the name of a track has 2^28 bytes or more");
      }
      AddMeta(static_cast<int>(i), 0, kTrackRank_Name, 0x03, Bytes(name.begin(), name.end()));
    }
  }

  void AddClips() {
    Time_TempoMap tempo;
    mSong.FillTempoMap(tempo);
    std::set<std::pair<int, int>> channels;  // and tracks that have a clip
    for (size_t i = 0; i < mSong.mClips.size(); ++i) {
      Host_Clip const & clip = mSong.mClips[i];
      int const index = static_cast<int>(i);
      if (!channels.emplace(clip.mTrack, clip.mChannel).second) {
        mReport.Count(kNotWritten_SharedChannel, index, Time_Tick(0));
      }
      Host_AddClip(mSong, index, tempo, mTracks[static_cast<size_t>(clip.mTrack)], mReport);
    }
  }

  // All times that matter; a note's end not where it only says that the note has no length.
  template <class TTake>
  void TakeTimes(TTake iTake) const {
    for (Host_TrackEvents const & track : mTracks) {
      iTake(track.mEnd);
      for (Host_TrackEvents::Message const & message : track.mMessages)
        iTake(message.mTick);
      for (Host_TrackEvents::Note const & note : track.mNotes) {
        iTake(note.mStart);
        if (note.mEnd - note.mStart > 1) iTake(note.mEnd);
      }
    }
    auto const takeOf = [&iTake](auto const & iItems) {
      for (auto const & item : iItems)
        iTake(std::max(item.mTime.AsInt64(), 0ll));
    };
    takeOf(mSong.mTempoChanges);
    takeOf(mSong.mTimeSignatures);
    takeOf(mSong.mKeySignatures);
  }

  bool IsGridOfAll(int iDivision) const {
    Host_MidiTiming const timing(iDivision);
    bool result = true;
    TakeTimes([&](long long iTick) { result = result && timing.IsOnGrid(Time_Tick(iTick)); });
    return result;
  }

  int ChooseDivision() const {
    int const own = mSong.mHeader.mDivision;
    if (own >= kSMPTEBit || IsGridOfAll(own)) return own;
    if (IsGridOfAll(kUsualDivision)) return kUsualDivision;
    long long step = Time_Globals::kTicksPerBeat;
    TakeTimes([&step](long long iTick) { step = std::gcd(step, iTick); });
    long long const coarsest = Time_Globals::kTicksPerBeat / step;
    return coarsest < kSMPTEBit ? static_cast<int>(coarsest) : own;
  }

  void AddMeta(int iTrack, long long iTick, Host_ETrackRank iRank, unsigned char iType,
               std::span<unsigned char const> iContents) {
    mTracks[static_cast<size_t>(iTrack)].AddMessage({iTick, iRank, -1, -1, 0, 0},
                                                    MakeMeta(iType, iContents));
  }

  // In format 2 only what stands in the first track counts.
  int GetTrackOfAll(int iTrack) const { return mFormat == 2 ? 0 : iTrack; }

  // Takes the place of an earlier one at the same tick of the file. ioLast, the file tick of that
  // one, is -1 at first. False, and counted, for a time before the beginning.
  bool ComesInTime(Time_Tick iTime, long long & ioLast) {
    if (iTime.AsInt64() < 0) {
      mReport.Count(kNotWritten_EarlyEvent, -1, iTime);
      return false;
    }
    long long const tick = mTiming.ToFileTick(iTime);
    if (tick == ioLast) mReport.Count(kNotWritten_MergedValue, -1, iTime);
    ioLast = tick;
    return true;
  }

  void AddTempos() {
    long long last = -1;
    for (Host_TempoChange const & change : mSong.mTempoChanges) {
      if (mTiming.IsSMPTE()) {
        mReport.Count(kNotWritten_TempoOfSMPTE, -1, change.mTime);
        continue;
      }
      if (!ComesInTime(change.mTime, last)) continue;
      double const exact = std::clamp(60e6 / change.mBeatsPerMinute, 1.0, 16777215.0);
      unsigned const microseconds = static_cast<unsigned>(std::lround(exact));
      if (60e6 / microseconds != change.mBeatsPerMinute) {
        mReport.Count(kNotWritten_RoundedTempo, -1, change.mTime);
      }
      Bytes contents;
      Host_AppendNumber(contents, microseconds, 3);
      AddMeta(GetTrackOfAll(change.mTrack), change.mTime.AsInt64(), kTrackRank_Tempo, 0x51,
              contents);
    }
  }

  void AddTimeSignatures() {
    long long last = -1;
    for (Host_TimeSignature const & signature : mSong.mTimeSignatures) {
      unsigned const denominator = static_cast<unsigned>(signature.mDenominator);
      if (!Host_IsTimeSignature(signature)) {
        mReport.Count(kNotWritten_BadTimeSignature, -1, signature.mTime);
        continue;
      }
      if (!ComesInTime(signature.mTime, last)) continue;
      std::array<unsigned char, 4> const contents = {
          static_cast<unsigned char>(signature.mNumerator),
          static_cast<unsigned char>(std::countr_zero(denominator)),
          static_cast<unsigned char>(signature.mClocksPerClick),
          static_cast<unsigned char>(signature.mThirtySecondsPerBeat)};
      AddMeta(GetTrackOfAll(signature.mTrack), signature.mTime.AsInt64(), kTrackRank_TimeSignature,
              0x58, contents);
    }
  }

  void AddKeySignatures() {
    std::map<int, long long> lastOfTracks;
    for (Host_KeySignature const & signature : mSong.mKeySignatures) {
      if (std::abs(signature.mNumSharps) > 7) {
        mReport.Count(kNotWritten_BadKeySignature, -1, signature.mTime);
        continue;
      }
      long long & last = lastOfTracks.try_emplace(signature.mTrack, -1).first->second;
      if (!ComesInTime(signature.mTime, last)) continue;
      std::array<unsigned char, 2> const contents = {
          static_cast<unsigned char>(signature.mNumSharps),
          static_cast<unsigned char>(signature.mIsMinor ? 1 : 0)};
      AddMeta(signature.mTrack, signature.mTime.AsInt64(), kTrackRank_KeySignature, 0x59, contents);
    }
  }

  void AppendChunk(char const * iID, std::span<unsigned char const> iContents) {
    mBytes.insert(mBytes.end(), iID, iID + 4);
    Host_AppendNumber(mBytes, static_cast<unsigned>(iContents.size()), 4);
    mBytes.insert(mBytes.end(), iContents.begin(), iContents.end());
  }

  void WriteHeader(int iDivision) {
    Bytes contents;
    Host_AppendNumber(contents, static_cast<unsigned>(mFormat), 2);
    Host_AppendNumber(contents, static_cast<unsigned>(mTracks.size()), 2);
    Host_AppendNumber(contents, static_cast<unsigned>(iDivision), 2);
    AppendChunk("MThd", contents);
  }

  void WriteTrack(Host_TrackEvents const & iTrack) {
    Bytes const contents = Host_WriteTrack(iTrack, mTiming, mReport);
    if (contents.size() > kMaxTrackBytes) {
      throw Host_MidiWriteError("a track of " + std::to_string(contents.size()) +
                                " bytes; a MIDI file can hold 2^32 - 1");
    }
    AppendChunk("MTrk", contents);
  }

  Host_Song const & mSong;
  Host_WriteReport & mReport;
  std::vector<Host_TrackEvents> mTracks;
  int mFormat = 1;
  Host_MidiTiming mTiming{kUsualDivision};
  Bytes mBytes;
};

}  // namespace

Host_MidiWriteError::Host_MidiWriteError(std::string const & iText) : std::length_error(iText) {}

Host_MidiWriteError::~Host_MidiWriteError() = default;

std::vector<unsigned char> Host_WriteMidiFile(Host_Song const & iSong,
                                              Host_WriteReport & ioReport) {
  return FileWriter(iSong, ioReport).Write();
}

void Host_WriteMidiFile(Host_Song const & iSong, std::string const & iPath,
                        Host_WriteReport & ioReport) {
  Host_SaveBytes(Host_WriteMidiFile(iSong, ioReport), iPath);
}
