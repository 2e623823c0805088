#include "host/host_projectrecord.h"

#include <algorithm>
#include <cstring>

#include <boost/crc.hpp>

#include "foundation/sys_stream.h"
#include "host/host_filebytes.h"

namespace {

typedef std::span<unsigned char const> Bytes;

constexpr size_t kHeaderSize = 1 + kHost_ProjectTagLength + 2 + 8;
constexpr size_t kSumsSize = 4 + 4;
constexpr size_t kFrameSize = kHeaderSize + kSumsSize;
constexpr unsigned char kBeginning[] = {kHost_ProjectTagLength, 'v', 'r', 'a', 'd'};

unsigned SumOf(Bytes iBytes) {
  boost::crc_32_type sum;
  sum.process_bytes(iBytes.data(), iBytes.size());
  return sum.checksum();
}

// Little-endian.
unsigned long long NumberAt(Bytes iBytes, size_t iOffset, int iNumBytes) {
  unsigned long long number = 0;
  for (int i = iNumBytes - 1; i >= 0; --i)
    number = number << 8 | iBytes[iOffset + static_cast<size_t>(i)];
  return number;
}

size_t ContentsSizeOf(Bytes iHeader) {
  return static_cast<size_t>(NumberAt(iHeader, kHeaderSize - 8, 8)) - kSumsSize;
}

}  // namespace

void Host_WriteProjectRecord(Sys_MemoryOutStream & ioStream, char const * iTag, short iVersion,
                             std::vector<unsigned char> const & iContents) {
  Sys_MemoryOutStream headerStream;
  Sys_StdStreamHeaderWriter(headerStream, iTag, iVersion);
  headerStream.SetPos(static_cast<long long>(kHeaderSize - 8));
  headerStream.Write(static_cast<long long>(kSumsSize + iContents.size()));
  std::vector<unsigned char> const & header = headerStream.GetBytes();
  Host_WriteBytes(ioStream, header);
  ioStream.Write(static_cast<int>(SumOf(header)));
  ioStream.Write(static_cast<int>(SumOf(iContents)));
  Host_WriteBytes(ioStream, iContents);
}

bool Host_IsProjectRecord(Bytes iBytes) {
  return iBytes.size() >= kFrameSize &&
         std::memcmp(iBytes.data(), kBeginning, sizeof kBeginning) == 0 &&
         NumberAt(iBytes, kHeaderSize, 4) == SumOf(iBytes.first(kHeaderSize)) &&
         NumberAt(iBytes, kHeaderSize - 8, 8) >= kSumsSize;
}

Host_ProjectScanner::Host_ProjectScanner(Bytes iBytes, Host_MidiReport & ioReport)
    : mBytes(iBytes), mReport(ioReport), mSumsLeft(2 * iBytes.size()) {}

std::optional<Host_ProjectRecord> Host_ProjectScanner::Next() {
  while (mOffset < mBytes.size()) {
    size_t const found = FindHeader();
    if (found > mOffset) {
      Tell(mOffset, std::to_string(found - mOffset) + " bytes are no record");
      mOffset = found;
    } else if (std::optional<Host_ProjectRecord> record = ReadRecord()) {
      return record;
    }
  }
  return std::nullopt;
}

// The end of the file if there is none.
size_t Host_ProjectScanner::FindHeader() const {
  auto at = mBytes.begin() + static_cast<std::ptrdiff_t>(mOffset);
  for (; at != mBytes.end(); ++at) {
    at = std::search(at, mBytes.end(), std::begin(kBeginning), std::end(kBeginning));
    if (at == mBytes.end() || Host_IsProjectRecord({at, mBytes.end()})) break;
  }
  return static_cast<size_t>(at - mBytes.begin());
}

std::optional<Host_ProjectRecord> Host_ProjectScanner::ReadRecord() {
  Bytes const bytes = mBytes.subspan(mOffset);
  std::string const tag(reinterpret_cast<char const *>(bytes.data()) + 1, kHost_ProjectTagLength);
  size_t const size = ContentsSizeOf(bytes);
  bool const isCut = size > bytes.size() - kFrameSize;
  Bytes const contents = bytes.subspan(kFrameSize, std::min(size, bytes.size() - kFrameSize));
  if (isCut || NumberAt(bytes, kHeaderSize + 4, 4) != SumOf(contents)) {
    Tell(mOffset, "record '" + tag + "' is " + (isCut ? "cut short" : "damaged"));
    SkipDamaged(contents.size());
    return std::nullopt;
  }
  Host_ProjectRecord const record{tag, static_cast<short>(NumberAt(bytes, kHeaderSize - 10, 2)),
                                  mOffset, contents};
  mOffset += kFrameSize + size;
  return record;
}

// The next search begins inside, where the record may have lost bytes and others follow early;
// behind it once that was done too often.
void Host_ProjectScanner::SkipDamaged(size_t iContentsSize) {
  size_t const end = mOffset + kFrameSize + iContentsSize;
  bool const mayLookInside = mSumsLeft >= iContentsSize;
  mOffset = mayLookInside ? mOffset + kFrameSize : end;
  if (!mayLookInside) return;
  mSumsLeft -= iContentsSize;
  mOffset = std::min(FindHeader(), end);
}

void Host_ProjectScanner::Tell(size_t iOffset, std::string const & iText) {
  mReport.AddProblem(iOffset, iText, true);
}
