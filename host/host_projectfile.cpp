#include "host/host_projectfile.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "cmn/cmn_assert.h"
#include "foundation/sys_stream.h"
#include "host/host_filebytes.h"
#include "host/host_projectformat.h"
#include "host/host_projectrecord.h"

namespace {

constexpr std::string_view kChunkDamage = "Vrad_Chunk::StreamIn exception: ";
constexpr std::string_view kOtherChunkDamage = "Unexpected exception";

// Builds a song from records in whatever order they come.
class Reader {
public:
  Reader(std::span<unsigned char const> iBytes, Host_Progress const & iProgress)
      : mBytes(iBytes), mProgress(iProgress) {
    mSong.mKind = kFileKind_Project;
  }

  Host_Song Read() {
    Host_ProjectScanner scanner(mBytes, mSong.mReport);
    while (std::optional<Host_ProjectRecord> const record = scanner.Next()) {
      ++mNumRecords;
      mRecord = &*record;
      ReadRecord();
      if (mProgress) mProgress(scanner.GetOffset(), mBytes.size());
    }
    if (mNumRecords == 0) throw Host_ProjectFileError("no record of a project is in it");
    PutInOrder();
    TellWhatIsMissing();
    return std::move(mSong);
  }

private:
  // What a record of one kind is read by.
  struct Kind {
    char const * mTag;
    void (Reader::*mRead)(Sys_TypedInStream &);
  };

  void ReadRecord() {
    static constexpr Kind kKinds[] = {
        {kHost_ProjectHead, &Reader::ReadHead},     {kHost_ProjectTempo, &Reader::ReadTempo},
        {kHost_ProjectMeters, &Reader::ReadMeters}, {kHost_ProjectKeys, &Reader::ReadKeys},
        {kHost_ProjectTrack, &Reader::ReadTrack},   {kHost_ProjectClip, &Reader::ReadClip},
        {kHost_ProjectLast, &Reader::ReadLast}};
    auto const kind = std::find_if(std::begin(kKinds), std::end(kKinds), [this](Kind const & each) {
      return each.mTag == mRecord->mTag;
    });
    if (kind == std::end(kKinds)) {
      return mSong.mReport.CountNotKept(kNotKept_UnknownRecord, mRecord->mOffset);
    }
    if (mRecord->mVersion != kHost_ProjectVersion) {
      return Tell("is of version " + std::to_string(mRecord->mVersion) + ", not 1");
    }
    try {
      Sys_MemoryInStream contents({mRecord->mContents.begin(), mRecord->mContents.end()});
      (this->*kind->mRead)(contents);
    } catch (Sys_StreamException const & exception) {
      Tell(std::string("can't be read: ") + exception.what());
    }
  }

  void Tell(std::string const & iText, bool iIsLoss = true) {
    mSong.mReport.AddProblem(mRecord->mOffset, "record '" + mRecord->mTag + "' " + iText, iIsLoss);
  }

  // False and a word about it if not. iName as in "a tempo".
  bool Check(bool iIsGood, char const * iName) {
    if (!iIsGood) Tell(std::string("has ") + iName + " out of range");
    return iIsGood;
  }

  template <class T>
  static T Get(Sys_TypedInStream & ioStream) {
    T value;
    ioStream.Read(&value);
    return value;
  }

  // Memory follows what is read, whatever the count says.
  template <class TReadOne>
  void ReadMany(Sys_TypedInStream & ioStream, TReadOne iReadOne) {
    int count = Get<int>(ioStream);
    if (!Check(count >= 0, "a count")) return;
    for (; count > 0; --count)
      iReadOne();
  }

  static Time_Tick GetTick(Sys_TypedInStream & ioStream) {
    return Time_Tick(Get<long long>(ioStream));
  }

  void ReadHead(Sys_TypedInStream & ioStream) {
    Host_MidiHeader header;
    header.mFormat = Get<int>(ioStream);
    header.mDivision = Get<int>(ioStream);
    header.mNumTracks = Get<int>(ioStream);
    mNumTracks = Get<int>(ioStream);
    mNumClips = Get<int>(ioStream);
    mHasHead = true;
    if (!Check(header.mFormat >= 0 && header.mFormat <= 2, "a format") ||
        !Check(Host_IsDivision(header.mDivision), "a division")) {
      return;
    }
    mSong.mHeader = header;
    mSong.mTiming = Host_MidiTiming(header.mDivision);
  }

  void ReadTempo(Sys_TypedInStream & ioStream) {
    ReadMany(ioStream, [&] {
      Host_TempoChange change{GetTick(ioStream), 0};
      change.mBeatsPerMinute = std::bit_cast<double>(Get<long long>(ioStream));
      change.mTrack = Get<int>(ioStream);
      if (Check(Host_IsProjectTempo(change), "a tempo")) mSong.mTempoChanges.push_back(change);
    });
  }

  void ReadMeters(Sys_TypedInStream & ioStream) {
    ReadMany(ioStream, [&] {
      Host_TimeSignature meter{GetTick(ioStream), 0, 0};
      for (int * field : {&meter.mNumerator, &meter.mDenominator, &meter.mTrack,
                          &meter.mClocksPerClick, &meter.mThirtySecondsPerBeat}) {
        *field = Get<int>(ioStream);
      }
      bool const isGood = Check(Host_IsProjectMeter(meter), "a time signature");
      if (isGood) mSong.mTimeSignatures.push_back(meter);
    });
  }

  void ReadKeys(Sys_TypedInStream & ioStream) {
    ReadMany(ioStream, [&] {
      Host_KeySignature key{GetTick(ioStream), 0, false};
      key.mNumSharps = Get<int>(ioStream);
      key.mIsMinor = Get<bool>(ioStream);
      key.mTrack = Get<int>(ioStream);
      if (Check(Host_IsProjectKey(key), "a key signature")) mSong.mKeySignatures.push_back(key);
    });
  }

  void ReadTrack(Sys_TypedInStream & ioStream) {
    int const number = Get<int>(ioStream);
    Time_Tick const end = GetTick(ioStream);
    int const length = Get<int>(ioStream);
    if (!Check(Host_IsProjectTrack(number), "a number") ||
        !Check(Host_IsProjectTick(end), "an end") ||
        !Check(length >= 0 && length <= ioStream.BytesLeft(), "a name")) {
      return;
    }
    std::string name(static_cast<size_t>(length), '\0');
    ioStream.ReadBlock(name.data(), length);
    MakeTracksUpTo(number);
    mSong.mTracks[static_cast<size_t>(number)] = {name, end};
    ++mNumTracksFound;
  }

  void ReadClip(Sys_TypedInStream & ioStream) {
    int const track = Get<int>(ioStream);
    int const channel = Get<int>(ioStream);
    if (!Check(Host_IsProjectTrack(track), "a track") ||
        !Check(Host_IsProjectChannel(channel), "a channel") ||
        !Check(mSong.mClips.size() < kHost_MaxStores, "a number of clips")) {
      return;
    }
    Cmn_AssertRecorder const checks;
    Ndo_AutoPtr<Vrad_Chunk> chunk(Vrad_Chunk::StreamIn(ioStream, Ndo_Object::kUndoable, false));
    for (Cmn_AssertRecorder::Entry const & entry : checks.GetEntries())
      TellFailedCheck(entry.mCondition);
    MakeTracksUpTo(track);
    mSong.mClips.push_back({track, channel, std::move(chunk)});
  }

  // All but damage is about a value that the chunk took all the same: nothing is lost, and a chunk
  // that is saved with it fails the check again when it is read.
  void TellFailedCheck(std::string const & iCondition) {
    if (iCondition.starts_with(kChunkDamage)) {
      Tell("holds a damaged chunk: " + iCondition.substr(kChunkDamage.size()));
    } else if (iCondition == kOtherChunkDamage) {
      Tell("holds a damaged chunk");
    } else {
      Tell("holds a value that fails the check " + iCondition, false);
    }
  }

  void ReadLast(Sys_TypedInStream & ioStream) {
    mNumRecordsWritten = Get<int>(ioStream);
    mHasLast = true;
  }

  void MakeTracksUpTo(int iTrack) {
    size_t const size = static_cast<size_t>(iTrack) + 1;
    if (mSong.mTracks.size() < size) mSong.mTracks.resize(size, {std::string(), Time_Tick(0)});
  }

  // As whoever reads a song takes for granted.
  void PutInOrder() {
    auto const byTick = [](auto const & a, auto const & b) { return a.mTime < b.mTime; };
    std::stable_sort(mSong.mTempoChanges.begin(), mSong.mTempoChanges.end(), byTick);
    std::stable_sort(mSong.mTimeSignatures.begin(), mSong.mTimeSignatures.end(), byTick);
    std::stable_sort(mSong.mKeySignatures.begin(), mSong.mKeySignatures.end(),
                     [](Host_KeySignature const & a, Host_KeySignature const & b) {
                       return std::pair(a.mTime.AsInt64(), a.mTrack) <
                              std::pair(b.mTime.AsInt64(), b.mTrack);
                     });
    std::stable_sort(mSong.mClips.begin(), mSong.mClips.end(),
                     [](Host_Clip const & a, Host_Clip const & b) {
                       auto const place = [](Host_Clip const & clip) {
                         return std::pair(clip.mTrack, static_cast<unsigned>(clip.mChannel));
                       };
                       return place(a) < place(b);
                     });
  }

  void TellWhatIsMissing() {
    if (!mHasHead) return TellAtEnd("the head is missing: taken for format 1, 480 ticks a quarter");
    if (!mHasLast) TellAtEnd("the end of the file is missing");
    TellNumber(mNumTracksFound, mNumTracks, "tracks");
    TellNumber(std::ssize(mSong.mClips), mNumClips, "clips");
    MakeTracksUpTo(std::clamp(mNumTracks, 0, kHost_MaxProjectTracks) - 1);
    // What nothing else tells: a record that is gone without a trace, or stands there twice.
    if (mSong.mReport.GetNumProblems() == 0) TellNumber(mNumRecords, mNumRecordsWritten, "records");
  }

  void TellNumber(long long iFound, long long iAnnounced, char const * iWhat) {
    if (iFound == iAnnounced) return;
    TellAtEnd(std::to_string(iFound) + " of " + std::to_string(iAnnounced) + " " + iWhat +
              " could be read");
  }

  void TellAtEnd(std::string const & iText) {
    mSong.mReport.AddProblem(mBytes.size(), iText, true);
  }

  std::span<unsigned char const> mBytes;
  Host_Progress const & mProgress;
  Host_Song mSong;
  Host_ProjectRecord const * mRecord = nullptr;  // being read
  long long mNumRecords = 0;
  int mNumRecordsWritten = 0;  // by the last
  bool mHasHead = false;
  bool mHasLast = false;
  int mNumTracks = 0;  // by the head, as the next
  int mNumClips = 0;
  long long mNumTracksFound = 0;
};

}  // namespace

Host_ProjectFileError::Host_ProjectFileError(std::string const & iText)
    : std::runtime_error(iText) {}
Host_ProjectFileError::~Host_ProjectFileError() = default;

bool Host_IsProjectFile(std::span<unsigned char const> iBytes) {
  constexpr unsigned char kBeginning[] = {kHost_ProjectTagLength, 'v', 'r', 'a', 'd'};
  return iBytes.size() >= sizeof kBeginning &&
         std::equal(std::begin(kBeginning), std::end(kBeginning), iBytes.begin());
}

Host_Song Host_ReadProjectFile(std::span<unsigned char const> iBytes,
                               Host_Progress const & iProgress) {
  return Reader(iBytes, iProgress).Read();
}

Host_Song Host_ReadProjectFile(std::string const & iPath, Host_Progress const & iProgress) {
  return Host_ReadProjectFile(Host_LoadBytes(iPath, [](auto) { return true; }), iProgress);
}
