#include "host/host_midiparser.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "host/host_midibytes.h"
#include "host/host_miditiming.h"

namespace {

typedef std::span<unsigned char const> Bytes;

constexpr size_t kChunkHeaderSize = 8;

std::string Hex(unsigned iByte) {
  char text[8];
  std::snprintf(text, sizeof text, "0x%02x", iByte);
  return text;
}

bool HasID(Bytes iFile, size_t iOffset, char const * iID) {
  return iOffset <= iFile.size() && iFile.size() - iOffset >= 4 &&
         std::memcmp(iFile.data() + iOffset, iID, 4) == 0;
}

bool IsPrintableID(Bytes iFile, size_t iOffset) {
  Bytes const id = iFile.subspan(iOffset, 4);
  return std::all_of(id.begin(), id.end(), [](unsigned char c) { return c >= 0x20 && c < 0x7f; });
}

// One track's events, from its first delta time to its end or its first damage.
class TrackParser {
public:
  TrackParser(Host_MidiBytes & ioBytes, Host_MidiFileVisitor & ioVisitor)
      : mBytes(ioBytes), mVisitor(ioVisitor) {}

  enum EEnd : int { kEnded, kRanOut, kDamaged };

  EEnd Parse() {
    while (!mBytes.AtEnd() && mEnd == kRanOut)
      ParseEvent();
    return mEnd;
  }

  long long GetTick() const { return mTick; }

private:
  void Damage(size_t iOffset, std::string const & iText) {
    mEnd = kDamaged;
    mVisitor.Problem(iOffset, iText + "; the rest of the track is not read", true);
  }

  bool ReadVariableLength(char const * iWhat, unsigned & oNumber) {
    size_t const offset = mBytes.GetOffset();
    switch (mBytes.ReadVariableLength(oNumber)) {
    case Host_MidiBytes::kRead:
      return true;
    case Host_MidiBytes::kCutShort:
      Damage(offset, std::string(iWhat) + " is cut short");
      return false;
    default:
      Damage(offset, std::string(iWhat) + " is longer than four bytes");
      return false;
    }
  }

  void ParseEvent() {
    size_t const offset = mBytes.GetOffset();
    unsigned delta;
    if (!ReadVariableLength("a delta time", delta)) return;
    if (mTick + delta > kHost_MaxFileTick)
      return Damage(offset, "the track is longer than 2^40 ticks");
    mTick += delta;
    unsigned char status;
    size_t const statusOffset = mBytes.GetOffset();
    if (!mBytes.PeekByte(status)) return Damage(statusOffset, "a message is missing");
    if (status >= 0x80) {
      mBytes.ReadByte(status);
    } else if (mRunningStatus != 0) {
      status = mRunningStatus;
    } else {
      return Damage(statusOffset, "byte " + Hex(status) + " stands where a status byte must");
    }
    ParseMessage(status, statusOffset);
  }

  void ParseMessage(unsigned char iStatus, size_t iOffset) {
    if (iStatus < 0xf0) {
      mRunningStatus = iStatus;
      ParseChannelMessage(iStatus, iOffset);
    } else if (iStatus == 0xf0 || iStatus == 0xf7) {
      Bytes bytes;
      if (ReadBlock("sysex", bytes)) mVisitor.SysexPacket(mTick, iStatus, bytes, iOffset);
    } else if (iStatus == 0xff) {
      ParseMetaEvent(iOffset);
    } else {
      Damage(iOffset, "status byte " + Hex(iStatus) + " does not belong in a file");
    }
  }

  void ParseChannelMessage(unsigned char iStatus, size_t iOffset) {
    unsigned char data[2] = {0, 0};
    int const numData = (iStatus & 0xe0) == 0xc0 ? 1 : 2;
    for (int i = 0; i < numData; ++i) {
      if (!mBytes.ReadByte(data[i])) return Damage(iOffset, "a channel message is cut short");
      if (data[i] >= 0x80) {
        return Damage(mBytes.GetOffset() - 1, "byte " + Hex(data[i]) + " stands where data must");
      }
    }
    mVisitor.ChannelMessage(mTick, iStatus, data[0], data[1], iOffset);
  }

  void ParseMetaEvent(size_t iOffset) {
    unsigned char type;
    if (!mBytes.ReadByte(type)) return Damage(iOffset, "a meta event is cut short");
    Bytes bytes;
    if (!ReadBlock("meta event", bytes)) return;
    if (type == 0x2f) {
      mEnd = kEnded;
    } else {
      mVisitor.MetaEvent(mTick, type, bytes, iOffset);
    }
  }

  bool ReadBlock(char const * iWhat, Bytes & oBytes) {
    size_t const offset = mBytes.GetOffset();
    unsigned length;
    if (!ReadVariableLength("a length", length)) return false;
    if (mBytes.ReadBlock(length, oBytes)) return true;
    Damage(offset, std::string(iWhat) + " of " + std::to_string(length) + " bytes where " +
                       std::to_string(mBytes.GetBytesLeft()) + " are left");
    return false;
  }

  Host_MidiBytes & mBytes;
  Host_MidiFileVisitor & mVisitor;
  EEnd mEnd = kRanOut;
  long long mTick = 0;
  unsigned char mRunningStatus = 0;  // 0: none yet
};

// The chunks of a file, one after the other.
class FileParser {
public:
  FileParser(Bytes iFile, Host_MidiFileVisitor & ioVisitor) : mFile(iFile), mVisitor(ioVisitor) {}

  void Parse() {
    size_t offset = ParseHeader();
    while (offset < mFile.size())
      offset = ParseChunk(offset);
    CompareNumTracks();
  }

private:
  size_t ParseHeader() {
    if (!HasID(mFile, 0, "MThd")) {
      throw Host_MidiFileError(0, "not a Standard MIDI File: it does not begin with MThd");
    }
    Host_MidiBytes bytes(mFile, 4, mFile.size());
    unsigned length, format, numTracks, division;
    if (!bytes.ReadNumber(4, length)) throw Host_MidiFileError(4, "the header is cut short");
    if (length < 6) {
      throw Host_MidiFileError(4, "a header of " + std::to_string(length) + " bytes, not 6");
    }
    if (!bytes.ReadNumber(2, format) || !bytes.ReadNumber(2, numTracks) ||
        !bytes.ReadNumber(2, division)) {
      throw Host_MidiFileError(bytes.GetOffset(), "the header is cut short");
    }
    if (length > mFile.size() - kChunkHeaderSize) {
      throw Host_MidiFileError(4, "a header of " + std::to_string(length) + " bytes where " +
                                      std::to_string(mFile.size() - kChunkHeaderSize) +
                                      " are left");
    }
    CheckHeader(format, division);
    mHeader = {static_cast<int>(format), static_cast<int>(numTracks), static_cast<int>(division)};
    mVisitor.BeginFile(mHeader);
    return kChunkHeaderSize + length;
  }

  static void CheckHeader(unsigned iFormat, unsigned iDivision) {
    if (iFormat > 2) {
      throw Host_MidiFileError(8, "format " + std::to_string(iFormat) + "; 0, 1 and 2 are known");
    }
    if (Host_IsDivision(static_cast<int>(iDivision))) return;
    if (iDivision == 0) throw Host_MidiFileError(12, "a division of 0 ticks");
    if (Host_IsDivision(static_cast<int>(iDivision | 1))) {
      throw Host_MidiFileError(13, "a division of 0 ticks to the frame");
    }
    throw Host_MidiFileError(12, "a division of " + std::to_string(0x100 - (iDivision >> 8)) +
                                     " frames a second; 24, 25, 29 and 30 are known");
  }

  // Gives the offset where the next chunk should stand.
  size_t ParseChunk(size_t iOffset) {
    if (HasID(mFile, iOffset, "MTrk") && mFile.size() - iOffset >= kChunkHeaderSize) {
      return ParseTrack(iOffset);
    }
    if (IsUnknownChunk(iOffset)) {
      mVisitor.UnknownChunk(iOffset);
      return iOffset + kChunkHeaderSize + GetChunkLength(iOffset);
    }
    return SkipGarbage(iOffset);
  }

  size_t GetChunkLength(size_t iOffset) const {
    Host_MidiBytes bytes(mFile, iOffset + 4, mFile.size());
    unsigned length = 0;
    bytes.ReadNumber(4, length);
    return length;
  }

  // A chunk of another kind is believed only if something sensible follows it: four letters in a
  // stretch of garbage must not lead past the tracks behind them.
  bool IsUnknownChunk(size_t iOffset) const {
    size_t const left = mFile.size() - iOffset;
    if (left < kChunkHeaderSize || !IsPrintableID(mFile, iOffset)) return false;
    size_t const length = GetChunkLength(iOffset);
    if (length > left - kChunkHeaderSize) return false;
    size_t const next = iOffset + kChunkHeaderSize + length;
    return next == mFile.size() || (mFile.size() - next >= 4 && IsPrintableID(mFile, next));
  }

  // The file's end if no further track follows.
  size_t FindTrack(size_t iOffset) const {
    constexpr std::array<unsigned char, 4> kTrackID = {'M', 'T', 'r', 'k'};
    auto const from = mFile.begin() + static_cast<std::ptrdiff_t>(iOffset);
    auto const found = std::search(from, mFile.end(), kTrackID.begin(), kTrackID.end());
    return static_cast<size_t>(found - mFile.begin());
  }

  size_t SkipGarbage(size_t iOffset) {
    if (mFile.size() - iOffset < kChunkHeaderSize) {
      mVisitor.Problem(iOffset, "the header of a chunk is cut short", true);
      return mFile.size();
    }
    size_t const next = FindTrack(iOffset + 1);
    mVisitor.Problem(iOffset, std::to_string(next - iOffset) + " bytes that are not a chunk", true);
    return next;
  }

  size_t ParseTrack(size_t iOffset) {
    size_t const begin = iOffset + kChunkHeaderSize;
    size_t const length = GetChunkLength(iOffset);
    size_t const left = mFile.size() - begin;
    mVisitor.BeginTrack(mNumTracks, iOffset);
    if (length > left) {
      mVisitor.Problem(iOffset + 4,
                       "a track of " + std::to_string(length) + " bytes where " +
                           std::to_string(left) + " are left",
                       true);
    }
    Host_MidiBytes bytes(mFile, begin, begin + std::min(length, left));
    TrackParser track(bytes, mVisitor);
    TrackParser::EEnd const end = track.Parse();
    size_t const next = GoOnBehindTrack(bytes, end, length > left);
    mVisitor.EndTrack(track.GetTick());
    ++mNumTracks;
    return next;
  }

  // A length that lies is found out where a track ends before it, right before the next track.
  size_t GoOnBehindTrack(Host_MidiBytes const & iBytes, TrackParser::EEnd iEnd, bool iIsTooLong) {
    size_t const offset = iBytes.GetOffset();
    if (iEnd == TrackParser::kRanOut) {
      mVisitor.Problem(offset, "the track has no end-of-track event", false);
    }
    if (iEnd != TrackParser::kEnded || iBytes.AtEnd()) {
      return iIsTooLong && iEnd == TrackParser::kDamaged ? FindTrack(offset) : iBytes.GetEnd();
    }
    if (HasID(mFile, offset, "MTrk") || iIsTooLong) {
      if (!iIsTooLong) {
        mVisitor.Problem(offset, "the track ends before the length that it announces", false);
      }
      return offset;
    }
    mVisitor.Problem(
        offset, std::to_string(iBytes.GetBytesLeft()) + " bytes behind the end of the track", true);
    return iBytes.GetEnd();
  }

  void CompareNumTracks() {
    if (mNumTracks == mHeader.mNumTracks) return;
    mVisitor.Problem(10,
                     "tracks announced: " + std::to_string(mHeader.mNumTracks) +
                         ", found: " + std::to_string(mNumTracks),
                     mNumTracks < mHeader.mNumTracks);
  }

  Bytes mFile;
  Host_MidiFileVisitor & mVisitor;
  Host_MidiHeader mHeader;
  int mNumTracks = 0;  // found so far
};

}  // namespace

Host_MidiFileError::Host_MidiFileError(size_t iOffset, std::string const & iText)
    : std::runtime_error(iText), mOffset(iOffset) {}

Host_MidiFileError::~Host_MidiFileError() = default;

Host_MidiFileVisitor::~Host_MidiFileVisitor() = default;

void Host_ParseMidiFile(std::span<unsigned char const> iFile, Host_MidiFileVisitor & ioVisitor) {
  FileParser(iFile, ioVisitor).Parse();
}
