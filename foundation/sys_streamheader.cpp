// record := tagLength:uint8  tag:byte[tagLength]  version:int16  size:int64  byte[size]
#include "foundation/sys_stream.h"

#include <cstring>
#include <limits>
#include <stdexcept>

namespace {

constexpr size_t kLongestTag = 255;

void ReadTag(Sys_TypedInStream & iStream, std::string const & iTag) {
  signed char length;
  iStream.Read(&length);
  char tag[kLongestTag];
  size_t const tagLength = static_cast<unsigned char>(length);
  if (tagLength == iTag.size()) iStream.ReadBlock(tag, static_cast<int>(tagLength));
  if (tagLength != iTag.size() || std::memcmp(tag, iTag.data(), tagLength) != 0)
    throw Sys_StreamException(Sys_StreamException::kWrongTag, "no record \"" + iTag + "\"");
}

// A size from outside may be anything. No record ends before it begins: one that did could be read
// again and again.
long long EndOf(long long iPos, long long iSize) {
  constexpr long long kMax = std::numeric_limits<long long>::max();
  if (iSize < 0) return iPos;
  return iSize > kMax - iPos ? kMax : iPos + iSize;
}

}  // namespace

Sys_StdStreamHeaderWriter::Sys_StdStreamHeaderWriter(Sys_TypedOutStream & iStream,
                                                     char const * iTag, short iVersion)
    : mStream(iStream), mSizePos(0) {
  size_t const length = std::strlen(iTag);
  if (length > kLongestTag) throw std::length_error("record tag too long");
  mStream.Write(static_cast<signed char>(length));
  mStream.WriteBlock(iTag, static_cast<int>(length));
  mStream.Write(iVersion);
  mSizePos = mStream.GetPos();
  mStream.Write(0LL);
}

Sys_StdStreamHeaderWriter::~Sys_StdStreamHeaderWriter() = default;

void Sys_StdStreamHeaderWriter::PatchSize() {
  long long const end = mStream.GetPos();
  mStream.SetPos(mSizePos);
  mStream.Write(end - mSizePos - static_cast<long long>(sizeof(long long)));
  mStream.SetPos(end);
}

Sys_StdStreamHeaderReader::Sys_StdStreamHeaderReader(Sys_TypedInStream & iStream, char const * iTag)
    : mStream(iStream), mVersion(0), mEndPos(0) {
  ReadTag(mStream, iTag);
  mStream.Read(&mVersion);
  long long size;
  mStream.Read(&size);
  mEndPos = EndOf(mStream.GetPos(), size);
}

Sys_StdStreamHeaderReader::~Sys_StdStreamHeaderReader() = default;

void Sys_StdStreamHeaderReader::CheckVersion(short iMin, short iMax) {
  if (mVersion >= iMin && mVersion <= iMax) return;
  throw Sys_StreamException(Sys_StreamException::kWrongVersion,
                            "record version " + std::to_string(mVersion) + " is not supported");
}

bool Sys_StdStreamHeaderReader::IsMoreLeft() {
  return mStream.GetPos() < mEndPos;
}

void Sys_StdStreamHeaderReader::SkipTheRest() {
  mStream.SetPos(mEndPos);
}
