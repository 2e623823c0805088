// Fields of many equal records, to and from a stream in blocks: a field costs a copy of its bytes,
// not a call. Not installed.
#pragma once

#include <algorithm>
#include <array>

#include "foundation/sys_stream.h"
#include "foundation/sys_streamnumber.h"

/// Fields on their way out. Nothing else may write to the stream until `Flush`.
class Sys_BlockOut {
public:
  explicit Sys_BlockOut(Sys_TypedOutStream & ioStream) : mStream(ioStream) {}
  Sys_BlockOut(Sys_BlockOut const &) = delete;
  Sys_BlockOut & operator=(Sys_BlockOut const &) = delete;

  template <class T>
  void Write(T iValue) {
    if (mSize + sizeof(T) > mBytes.size()) Flush();
    Sys_StoreLittleEndian(mBytes.data() + mSize, iValue);
    mSize += sizeof(T);
  }
  void Write(bool iValue) { Write(static_cast<signed char>(iValue ? 1 : 0)); }

  /// Hands the stream what is still here; without it that is lost.
  void Flush() {
    mStream.WriteBlock(mBytes.data(), static_cast<int>(mSize));
    mSize = 0;
  }

private:
  Sys_TypedOutStream & mStream;
  size_t mSize = 0;
  std::array<unsigned char, 8192> mBytes;
};

/// Fields on their way in. Behaves as the stream itself, which stands where the last field ended
/// once this is destroyed. Nothing else may use the stream meanwhile.
class Sys_BlockIn {
public:
  /// `iExpected`: how many bytes will be asked for, as far as known. More may be.
  Sys_BlockIn(Sys_TypedInStream & ioStream, long long iExpected)
      : mStream(ioStream), mExpected(iExpected) {}
  Sys_BlockIn(Sys_BlockIn const &) = delete;
  Sys_BlockIn & operator=(Sys_BlockIn const &) = delete;

  // A position that cannot be set is met by the next read.
  ~Sys_BlockIn() {
    try {
      GiveBack();
    } catch (...) {
    }
  }

  template <class T>
  void Read(T * oValue) {
    if (mEnd - mNext < sizeof(T)) Fetch(sizeof(T));
    *oValue = Sys_LoadLittleEndian<T>(mBytes.data() + mNext);
    mNext += sizeof(T);
  }
  void Read(bool * oValue) {
    signed char byte;
    Read(&byte);
    *oValue = byte != 0;
  }

  /// Passes over bytes, also over ones that are not there: the next read then fails.
  void Skip(long long iNumBytes) {
    if (iNumBytes <= 0) return;
    if (iNumBytes <= static_cast<long long>(mEnd - mNext)) {
      mNext += static_cast<size_t>(iNumBytes);
      return;
    }
    GiveBack();
    mExpected -= iNumBytes;
    mStream.SetPos(mStream.GetPos() + iNumBytes);
  }

private:
  void GiveBack() {
    if (mNext == mEnd) return;
    long long const num = static_cast<long long>(mEnd - mNext);
    mNext = mEnd = 0;
    mExpected += num;
    mStream.SetPos(mStream.GetPos() - num);
  }

  // A stream that ends too soon says so itself, at the field that is cut.
  void Fetch(long long iNeeded) {
    GiveBack();
    long long const most = std::min(mExpected, static_cast<long long>(mBytes.size()));
    long long const num = std::max(std::min(most, mStream.BytesLeft()), iNeeded);
    mNext = mEnd = 0;
    mStream.ReadBlock(mBytes.data(), static_cast<int>(num));
    mEnd = static_cast<size_t>(num);
    mExpected -= num;
  }

  Sys_TypedInStream & mStream;
  long long mExpected;  // beyond what was fetched
  size_t mNext = 0;
  size_t mEnd = 0;
  std::array<unsigned char, 8192> mBytes;
};
