// The pool is cut into granules of 16 bytes and pages of 64 granules. A page is one atomic word
// with a bit for each free granule, so taking and giving back a short block is one exchange, freed
// neighbours join by themselves, and at no moment is free memory hidden from other threads. An
// index over the pages' longest free runs tells where to look.
#include "foundation/mem2_masterallocator.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "foundation/mem2_bits.h"
#include "foundation/mem2_freeindex.h"

namespace {

constexpr int kGranuleBytes = 16;
constexpr int kPageGranules = kMem2_PageGranules;

struct alignas(kGranuleBytes) Granule {
  unsigned char mBytes[kGranuleBytes];
};
static_assert(alignof(std::max_align_t) <= kGranuleBytes);

int GetNumGranules(int iNumBytes) {
  return (iNumBytes - 1) / kGranuleBytes + 1;
}

}  // namespace

Mem2_MasterAllocator::Statistics::Statistics(char const * iLabel)
    : mLabel(iLabel), mNumAllocs(0), mNumFrees(0), mNumFailures(0), mBytesInUse(0) {}

char const * Mem2_MasterAllocator::Statistics::GetLabel() const {
  return mLabel;
}

long long Mem2_MasterAllocator::Statistics::GetNumAllocs() const {
  return mNumAllocs;
}

long long Mem2_MasterAllocator::Statistics::GetNumFrees() const {
  return mNumFrees;
}

long long Mem2_MasterAllocator::Statistics::GetNumFailures() const {
  return mNumFailures;
}

long long Mem2_MasterAllocator::Statistics::GetBytesInUse() const {
  return mBytesInUse;
}

struct Mem2_MasterAllocator::Pool {
  explicit Pool(int iNumGranules);

  void * Alloc(int iNumBytes);
  int Free(void * iBlockP);

  int mNumGranules, mNumPages;
  std::atomic<int> mNumFree;  // granules; never less than there are, for a moment more
  std::atomic<int> mNumBlocks, mNumBadFrees;
  std::atomic<int> mNumUntilFail;  // -1: none is made to fail

private:
  int Take(int iNum);
  int TakeShort(int iNum);
  int TakeFromPage(int iPage, int iNum);
  int TakeLong(int iNum);
  int FindWholePage(int iFirstPage);
  bool FindStretch(int iNum, int & ioPage, int & oFirst) const;
  bool Claim(int iFirst, int iNum);
  void GiveBack(int iFirst, int iNum);
  bool MayTakeOneMore();

  std::unique_ptr<Granule[]> mGranules;
  std::unique_ptr<std::atomic<std::uint64_t>[]> mPages;  // bits of free granules
  std::unique_ptr<std::atomic<int>[]> mBlockBytes;  // where a block in use begins its size, else 0
  Mem2_FreeIndex mIndex;
};

Mem2_MasterAllocator::Pool::Pool(int iNumGranules)
    : mNumGranules(iNumGranules),
      mNumPages((iNumGranules + kPageGranules - 1) / kPageGranules),
      mNumFree(iNumGranules),
      mNumBlocks(0),
      mNumBadFrees(0),
      mNumUntilFail(-1),
      // Cleared, so that no block's first use waits for the system to find the memory.
      mGranules(new Granule[static_cast<size_t>(iNumGranules)]()),
      mPages(new std::atomic<std::uint64_t>[static_cast<size_t>(mNumPages)]()),
      mBlockBytes(new std::atomic<int>[static_cast<size_t>(iNumGranules)]()),
      mIndex(mPages.get(), mNumPages) {
  GiveBack(0, iNumGranules);
}

void * Mem2_MasterAllocator::Pool::Alloc(int iNumBytes) {
  int const num = GetNumGranules(iNumBytes);
  if (num > mNumFree) return nullptr;
  int const first = Take(num);
  if (first < 0) return nullptr;
  if (!MayTakeOneMore()) {
    GiveBack(first, num);
    return nullptr;
  }
  mNumFree -= num;
  ++mNumBlocks;
  mBlockBytes[static_cast<size_t>(first)] = iNumBytes;
  return &mGranules[static_cast<size_t>(first)];
}

// The bytes that were asked for; 0 and a bad free counted if it is no block in use.
int Mem2_MasterAllocator::Pool::Free(void * iBlockP) {
  std::uintptr_t const offset =
      reinterpret_cast<std::uintptr_t>(iBlockP) - reinterpret_cast<std::uintptr_t>(mGranules.get());
  std::uintptr_t const first = offset / kGranuleBytes;
  bool const isGranule =
      offset % kGranuleBytes == 0 && first < static_cast<std::uintptr_t>(mNumGranules);
  int const numBytes = isGranule ? mBlockBytes[first].exchange(0) : 0;
  if (numBytes == 0) {
    ++mNumBadFrees;
    return 0;
  }
  int const num = GetNumGranules(numBytes);
  --mNumBlocks;
  // Counted before it is free: a count that is behind would refuse what is there.
  mNumFree += num;
  GiveBack(static_cast<int>(first), num);
  return numBytes;
}

// The first of iNum granules taken; -1 if no stretch serves.
int Mem2_MasterAllocator::Pool::Take(int iNum) {
  return iNum <= kPageGranules ? TakeShort(iNum) : TakeLong(iNum);
}

int Mem2_MasterAllocator::Pool::TakeShort(int iNum) {
  for (;;) {
    int const page = mIndex.Find(iNum);
    if (page < 0) return -1;
    int const first = TakeFromPage(page, iNum);
    if (first >= 0) return first;
  }
}

// -1 if the page has no such run, contrary to the index.
int Mem2_MasterAllocator::Pool::TakeFromPage(int iPage, int iNum) {
  std::atomic<std::uint64_t> & page = mPages[static_cast<size_t>(iPage)];
  std::uint64_t former = page.load();
  std::uint64_t next = 0;
  int start = 0;
  do {
    std::uint64_t const starts = Mem2_GetStarts(former, iNum);
    if (starts == 0) {
      mIndex.Update(iPage);
      return -1;
    }
    start = std::countr_zero(starts);
    next = former & ~Mem2_GetMask(start, iNum);
  } while (!page.compare_exchange_weak(former, next));
  if (Mem2_GetLongestRun(next) != Mem2_GetLongestRun(former)) mIndex.Update(iPage);
  return iPage * kPageGranules + start;
}

int Mem2_MasterAllocator::Pool::TakeLong(int iNum) {
  for (int page = FindWholePage(0); page >= 0; page = FindWholePage(page)) {
    int first = 0;
    if (FindStretch(iNum, page, first) && Claim(first, iNum)) return first;
  }
  return -1;
}

// The first page at or after iFirstPage that is free as a whole; -1 if there is none.
int Mem2_MasterAllocator::Pool::FindWholePage(int iFirstPage) {
  for (int first = iFirstPage; first < mNumPages;) {
    int const page = mIndex.FindFrom(first, kPageGranules);
    if (page < 0 || mPages[static_cast<size_t>(page)] == kMem2_WholePage) return page;
    mIndex.Update(page);
    first = page;
  }
  return -1;
}

// Whether the free stretch around a whole page has iNum granules. If not, moves on to the page
// where the search has to be taken up again.
bool Mem2_MasterAllocator::Pool::FindStretch(int iNum, int & ioPage, int & oFirst) const {
  int const numBefore =
      ioPage == 0 ? 0 : std::countl_one(mPages[static_cast<size_t>(ioPage - 1)].load());
  oFirst = ioPage * kPageGranules - numBefore;
  int page = ioPage;
  int num = numBefore;
  while (num < iNum && page < mNumPages) {
    int const numMore = std::countr_one(mPages[static_cast<size_t>(page)].load());
    num += numMore;
    if (numMore < kPageGranules) break;
    ++page;
  }
  if (num >= iNum) return true;
  ioPage = page + 1;
  return false;
}

// Takes the granules page by page. If another thread was quicker anywhere, gives all back.
bool Mem2_MasterAllocator::Pool::Claim(int iFirst, int iNum) {
  for (int done = 0; done < iNum;) {
    int const page = (iFirst + done) / kPageGranules;
    int const start = (iFirst + done) % kPageGranules;
    int const num = std::min(iNum - done, kPageGranules - start);
    std::uint64_t const mask = Mem2_GetMask(start, num);
    std::uint64_t value = mPages[static_cast<size_t>(page)].load();
    do {
      if ((value & mask) != mask) {
        GiveBack(iFirst, done);
        return false;
      }
    } while (!mPages[static_cast<size_t>(page)].compare_exchange_weak(value, value & ~mask));
    mIndex.Update(page);
    done += num;
  }
  return true;
}

void Mem2_MasterAllocator::Pool::GiveBack(int iFirst, int iNum) {
  for (int done = 0; done < iNum;) {
    int const start = (iFirst + done) % kPageGranules;
    int const num = std::min(iNum - done, kPageGranules - start);
    int const page = (iFirst + done) / kPageGranules;
    mPages[static_cast<size_t>(page)].fetch_or(Mem2_GetMask(start, num));
    mIndex.Update(page);
    done += num;
  }
}

bool Mem2_MasterAllocator::Pool::MayTakeOneMore() {
  int num = mNumUntilFail;
  while (num > 0 && !mNumUntilFail.compare_exchange_weak(num, num - 1)) {
  }
  return num != 0;
}

Mem2_MasterAllocator::Mem2_MasterAllocator(int iPoolBytes)
    : mPoolP(new Pool(std::max(iPoolBytes, 0) / kGranuleBytes)) {}

Mem2_MasterAllocator::~Mem2_MasterAllocator() {
  delete mPoolP;
}

void * Mem2_MasterAllocator::Alloc(int iSize, Statistics * ioStatisticsP) {
  if (iSize <= 0) return nullptr;
  void * const blockP = mPoolP->Alloc(iSize);
  if (ioStatisticsP && blockP) {
    ++ioStatisticsP->mNumAllocs;
    ioStatisticsP->mBytesInUse += iSize;
  } else if (ioStatisticsP) {
    ++ioStatisticsP->mNumFailures;
  }
  return blockP;
}

void Mem2_MasterAllocator::Free(void * iBlockP, Statistics * ioStatisticsP) {
  if (!iBlockP) return;
  int const numBytes = mPoolP->Free(iBlockP);
  if (!ioStatisticsP || numBytes == 0) return;
  ++ioStatisticsP->mNumFrees;
  ioStatisticsP->mBytesInUse -= numBytes;
}

int Mem2_MasterAllocator::GetNumBlocksInUse() const {
  return mPoolP->mNumBlocks;
}

int Mem2_MasterAllocator::GetBytesFree() const {
  return mPoolP->mNumFree * kGranuleBytes;
}

int Mem2_MasterAllocator::GetNumBadFrees() const {
  return mPoolP->mNumBadFrees;
}

void Mem2_MasterAllocator::FailAfter(int iNumAllocs) {
  mPoolP->mNumUntilFail = std::max(iNumAllocs, -1);
}
