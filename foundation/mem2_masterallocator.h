// Memory for real-time threads, taken from the system once and handed out in blocks.
#pragma once

#include <atomic>

#include "foundation/vrad_export.h"

/// A pool of memory, taken once, at construction. Owned by the host, which keeps it until every
/// block is back or forgotten.
///
/// A block takes its size rounded up to 16 bytes and is aligned for any ordinary type; all
/// book-keeping lies outside the pool. Freed memory joins with free memory beside it at once, so it
/// serves blocks of any size again. A block of up to 1024 bytes lies within one page of 1024 bytes:
/// it needs that many bytes free side by side in a page. A longer block needs its bytes free side
/// by side and among them at least one whole page. A new block comes from the page whose longest
/// free stretch is the shortest that serves, which keeps whole pages for long blocks.
///
/// Cost of `Alloc` and `Free`: lock-free, no heap, no system call. Constant up to 1024 bytes. A
/// longer block costs one step for each of its pages and, in `Alloc`, for each page in free
/// stretches passed over as too short.
/// Thread: any, several at once, audio threads too; construction and destruction are the host's.
class VRAD_EXPORT Mem2_MasterAllocator {
public:
  /// Who took how much. Counts are signed: bytes that were taken without a record and are freed
  /// with one drive them below zero, and nothing minds. Thread: any.
  class VRAD_EXPORT Statistics {
  public:
    /// Needs: `iLabel` outlives this object.
    explicit Statistics(char const * iLabel);
    Statistics(Statistics const &) = delete;
    Statistics & operator=(Statistics const &) = delete;

    char const * GetLabel() const;
    long long GetNumAllocs() const;
    long long GetNumFrees() const;
    long long GetNumFailures() const;  // requests for at least one byte that got null
    long long GetBytesInUse() const;   // as asked for, not as rounded

  private:
    friend class Mem2_MasterAllocator;
    char const * mLabel;
    std::atomic<long long> mNumAllocs, mNumFrees, mNumFailures, mBytesInUse;
  };

  /// A pool of `iPoolBytes`, rounded down to 16; the tables take another 27 % on top.
  /// Fails: `std::bad_alloc`.
  explicit Mem2_MasterAllocator(int iPoolBytes);
  Mem2_MasterAllocator(Mem2_MasterAllocator const &) = delete;
  Mem2_MasterAllocator & operator=(Mem2_MasterAllocator const &) = delete;

  /// Takes the memory of all blocks with it, blocks in use included.
  ~Mem2_MasterAllocator();

  /// A block of `iSize` bytes, not cleared, or null when no free stretch serves. 0 or less: null.
  /// `ioStatisticsP` may be null.
  void * Alloc(int iSize, Statistics * ioStatisticsP);

  /// Gives a block back. Null: nothing. A pointer that is not the start of a block in use, be it
  /// freed already, foreign or inside a block, is counted as a bad free and otherwise ignored.
  void Free(void * iBlockP, Statistics * ioStatisticsP);

  int GetNumBlocksInUse() const;
  int GetBytesFree() const;  // in all; the longest block may be shorter
  int GetNumBadFrees() const;

  /// For tests of what happens without memory: that many more requests succeed, then all get null.
  /// -1: as much as the pool holds, as at start.
  void FailAfter(int iNumAllocs);

private:
  struct Pool;
  Pool * mPoolP;  // owned
};
