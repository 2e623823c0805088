// A forward reader over bytes of a file that never reads past its end and knows where it stands.
#pragma once

#include <cstddef>
#include <span>

/// Reads a stretch of a file from front to back. Each read either gives a value and moves, or gives
/// false and stays. Owns nothing: the bytes must outlive it.
/// Thread: one at a time. Allocates nothing.
class Host_MidiBytes {
public:
  /// Reads [iStart, iEnd) of iFile, both offsets from the file's beginning, iStart <= iEnd <= size.
  Host_MidiBytes(std::span<unsigned char const> iFile, size_t iStart, size_t iEnd)
      : mFile(iFile), mOffset(iStart), mEnd(iEnd) {}

  /// From the file's beginning, in bytes.
  size_t GetOffset() const { return mOffset; }
  size_t GetEnd() const { return mEnd; }
  size_t GetBytesLeft() const { return mEnd - mOffset; }
  bool AtEnd() const { return mOffset == mEnd; }

  bool PeekByte(unsigned char & oByte) const {
    if (AtEnd()) return false;
    oByte = mFile[mOffset];
    return true;
  }

  bool ReadByte(unsigned char & oByte) {
    if (!PeekByte(oByte)) return false;
    ++mOffset;
    return true;
  }

  /// Big endian, iNumBytes of them, 1 to 4.
  bool ReadNumber(int iNumBytes, unsigned & oNumber) {
    if (GetBytesLeft() < static_cast<size_t>(iNumBytes)) return false;
    oNumber = 0;
    for (int i = 0; i < iNumBytes; ++i)
      oNumber = oNumber << 8 | mFile[mOffset++];
    return true;
  }

  enum EVarLength : int { kRead, kCutShort, kTooLong };

  /// Seven bits a byte, the top bit set in all but the last, at most four bytes: 0 to 0x0fffffff.
  EVarLength ReadVariableLength(unsigned & oNumber) {
    unsigned number = 0;
    size_t at = mOffset;
    for (int i = 0; i < 4; ++i) {
      if (at == mEnd) return kCutShort;
      unsigned char const byte = mFile[at++];
      number = number << 7 | (byte & 0x7fu);
      if (byte < 0x80) {
        mOffset = at;
        oNumber = number;
        return kRead;
      }
    }
    return kTooLong;
  }

  bool ReadBlock(size_t iNumBytes, std::span<unsigned char const> & oBlock) {
    if (GetBytesLeft() < iNumBytes) return false;
    oBlock = mFile.subspan(mOffset, iNumBytes);
    mOffset += iNumBytes;
    return true;
  }

private:
  std::span<unsigned char const> mFile;
  size_t mOffset;
  size_t mEnd;
};
