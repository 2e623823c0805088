#include <bit>
#include <string>

#include "foundation/sys_stream.h"
#include "host/host_filebytes.h"
#include "host/host_projectfile.h"
#include "host/host_projectformat.h"
#include "host/host_projectrecord.h"

namespace {

constexpr size_t kMaxNameSize = 0x7fffffff;

class Writer {
public:
  explicit Writer(Host_Song const & iSong) : mSong(iSong) {}

  std::vector<unsigned char> Write() {
    Need(mSong.mClips.size() <= kHost_MaxStores, "a number of clips");
    AddHead();
    AddTempo();
    AddMeters();
    AddKeys();
    for (size_t i = 0; i < mSong.mTracks.size(); ++i)
      AddTrack(i);
    for (Host_Clip const & clip : mSong.mClips)
      AddClip(clip);
    Add(kHost_ProjectLast, [this](Sys_TypedOutStream & out) { out.Write(mNumRecords + 1); });
    return mFile.GetBytes();
  }

private:
  template <class TWrite>
  void Add(char const * iTag, TWrite iWrite) {
    Sys_MemoryOutStream contents;
    iWrite(contents);
    Host_WriteProjectRecord(mFile, iTag, kHost_ProjectVersion, contents.GetBytes());
    ++mNumRecords;
  }

  // What a reader would leave out is refused while the song is still there. iName as in "a tempo".
  static void Need(bool iIsGood, char const * iName) {
    if (iIsGood) return;
    throw Sys_StreamException(Sys_StreamException::kIO, std::string("a song that has ") + iName +
                                                            " out of range can't be saved");
  }

  static void WriteCount(Sys_TypedOutStream & ioOut, size_t iCount) {
    ioOut.Write(static_cast<int>(iCount));
  }

  void AddHead() {
    Need(mSong.mHeader.mFormat >= 0 && mSong.mHeader.mFormat <= 2, "a format");
    Need(Host_IsDivision(mSong.mHeader.mDivision), "a division");
    Add(kHost_ProjectHead, [this](Sys_TypedOutStream & out) {
      out.Write(mSong.mHeader.mFormat);
      out.Write(mSong.mHeader.mDivision);
      out.Write(mSong.mHeader.mNumTracks);
      WriteCount(out, mSong.mTracks.size());
      WriteCount(out, mSong.mClips.size());
    });
  }

  void AddTempo() {
    Add(kHost_ProjectTempo, [this](Sys_TypedOutStream & out) {
      WriteCount(out, mSong.mTempoChanges.size());
      for (Host_TempoChange const & change : mSong.mTempoChanges) {
        Need(Host_IsProjectTempo(change), "a tempo");
        out.Write(change.mTime.AsInt64());
        out.Write(std::bit_cast<long long>(change.mBeatsPerMinute));
        out.Write(change.mTrack);
      }
    });
  }

  void AddMeters() {
    Add(kHost_ProjectMeters, [this](Sys_TypedOutStream & out) {
      WriteCount(out, mSong.mTimeSignatures.size());
      for (Host_TimeSignature const & signature : mSong.mTimeSignatures) {
        Need(Host_IsProjectMeter(signature), "a time signature");
        out.Write(signature.mTime.AsInt64());
        out.Write(signature.mNumerator);
        out.Write(signature.mDenominator);
        out.Write(signature.mTrack);
        out.Write(signature.mClocksPerClick);
        out.Write(signature.mThirtySecondsPerBeat);
      }
    });
  }

  void AddKeys() {
    Add(kHost_ProjectKeys, [this](Sys_TypedOutStream & out) {
      WriteCount(out, mSong.mKeySignatures.size());
      for (Host_KeySignature const & signature : mSong.mKeySignatures) {
        Need(Host_IsProjectKey(signature), "a key signature");
        out.Write(signature.mTime.AsInt64());
        out.Write(signature.mNumSharps);
        out.Write(signature.mIsMinor);
        out.Write(signature.mTrack);
      }
    });
  }

  void AddTrack(size_t iIndex) {
    Add(kHost_ProjectTrack, [&](Sys_TypedOutStream & out) {
      Host_MidiTrack const & track = mSong.mTracks[iIndex];
      Need(iIndex < kHost_MaxProjectTracks, "a number of tracks");
      Need(Host_IsProjectTick(track.mEnd), "an end of a track");
      Need(track.mName.size() <= kMaxNameSize, "a name of a track");
      WriteCount(out, iIndex);
      out.Write(track.mEnd.AsInt64());
      WriteCount(out, track.mName.size());
      out.WriteBlock(track.mName.data(), static_cast<int>(track.mName.size()));
    });
  }

  void AddClip(Host_Clip const & iClip) {
    Need(Host_IsProjectTrack(iClip.mTrack), "a track of a clip");
    Need(Host_IsProjectChannel(iClip.mChannel), "a channel of a clip");
    Add(kHost_ProjectClip, [&](Sys_TypedOutStream & out) {
      out.Write(iClip.mTrack);
      out.Write(iClip.mChannel);
      iClip.mChunk->StreamOut(out);
    });
  }

  Host_Song const & mSong;
  Sys_MemoryOutStream mFile;
  int mNumRecords = 0;
};

}  // namespace

std::vector<unsigned char> Host_WriteProjectFile(Host_Song const & iSong) {
  return Writer(iSong).Write();
}

void Host_WriteProjectFile(Host_Song const & iSong, std::string const & iPath) {
  Host_SaveBytes(Host_WriteProjectFile(iSong), iPath);
}
