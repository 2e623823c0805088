// The frame around each part of a project file: what it is, how long, and whether it is whole.
//
//   record := header("vrad....", version)  headerSum:int32  contentsSum:int32  contents
//
// The header is that of the library's records, of 19 bytes, and its size counts all behind it. Both
// sums are CRC-32: of the header's 19 bytes, and of the contents. So a damaged size is known as
// such, and the next record is found by its header.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/host_midireport.h"

class Sys_MemoryOutStream;

/// Tags have this many bytes and begin with "vrad".
constexpr int kHost_ProjectTagLength = 8;

/// Appends a record. Needs: a tag as above.
void Host_WriteProjectRecord(Sys_MemoryOutStream & ioStream, char const * iTag, short iVersion,
                             std::vector<unsigned char> const & iContents);

/// Whether a whole header stands at the beginning of the bytes.
bool Host_IsProjectRecord(std::span<unsigned char const> iBytes);

/// A record whose sums are right. The contents lie in the file's bytes and live as long as those.
struct Host_ProjectRecord {
  std::string mTag;
  short mVersion;
  size_t mOffset;  // of its header in the file
  std::span<unsigned char const> mContents;
};

/// Finds the records of a file from front to back, past whatever is damaged.
/// Thread: one at a time. Cost: one pass, two or three over damaged stretches.
class Host_ProjectScanner {
public:
  /// The bytes and the report must outlive it.
  Host_ProjectScanner(std::span<unsigned char const> iBytes, Host_MidiReport & ioReport);

  /// The next whole record; nothing at the end. What lies before it and is no record, or a damaged
  /// one, is reported as a loss.
  std::optional<Host_ProjectRecord> Next();

  /// Where `Next` goes on.
  size_t GetOffset() const { return mOffset; }

private:
  size_t FindHeader() const;
  std::optional<Host_ProjectRecord> ReadRecord();
  void SkipDamaged(size_t iContentsSize);
  void Tell(size_t iOffset, std::string const & iText);

  std::span<unsigned char const> mBytes;
  Host_MidiReport & mReport;
  size_t mOffset = 0;
  size_t mSumsLeft;  // bytes that may still be summed in vain: keeps a hostile file to a few passes
};
