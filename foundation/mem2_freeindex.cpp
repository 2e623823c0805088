#include "foundation/mem2_freeindex.h"

#include <algorithm>

#include "foundation/mem2_bits.h"

namespace {

constexpr int kNumChildren = 4;
constexpr int kRunBits = 7;
constexpr std::uint64_t kRunMask = (1ull << kRunBits) - 1;
constexpr std::uint64_t kOneVersion = 1ull << (kNumChildren * kRunBits);

int GetRun(std::uint64_t iNode, int iChild) {
  return static_cast<int>((iNode >> (iChild * kRunBits)) & kRunMask);
}

std::uint64_t SetRun(std::uint64_t iNode, int iChild, int iRun) {
  int const shift = iChild * kRunBits;
  return (iNode & ~(kRunMask << shift)) | (static_cast<std::uint64_t>(iRun) << shift);
}

// The child whose longest run is the shortest that serves; -1 if none does.
int GetBestChild(std::uint64_t iNode, int iRun) {
  int best = -1;
  for (int child = 0; child < kNumChildren; ++child) {
    int const run = GetRun(iNode, child);
    if (run >= iRun && (best < 0 || run < GetRun(iNode, best))) best = child;
  }
  return best;
}

// The first child from iFirst on with a run that serves; -1 if none has.
int GetFirstChild(std::uint64_t iNode, int iFirst, int iRun) {
  for (int child = iFirst; child < kNumChildren; ++child) {
    if (GetRun(iNode, child) >= iRun) return child;
  }
  return -1;
}

}  // namespace

static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

Mem2_FreeIndex::Mem2_FreeIndex(std::atomic<std::uint64_t> const * iPages, int iNumPages)
    : mPages(iPages), mNumLevels(0), mNumNodes{}, mFirstNodes{} {
  int numNodes = std::max(iNumPages, 1);
  int numNodesInAll = 0;
  do {
    numNodes = (numNodes + kNumChildren - 1) / kNumChildren;
    mNumNodes[mNumLevels] = numNodes;
    mFirstNodes[mNumLevels++] = numNodesInAll;
    numNodesInAll += numNodes;
  } while (numNodes > 1);
  mNodes.reset(new Node[static_cast<size_t>(numNodesInAll)]());
}

void Mem2_FreeIndex::Update(int iPage) {
  UpdateUpwards(0, iPage);
}

// From the level whose node has the child as one of its four.
void Mem2_FreeIndex::UpdateUpwards(int iLevel, int iChild) {
  for (int level = iLevel; level < mNumLevels; ++level, iChild /= kNumChildren) {
    Node & node = At(level, iChild / kNumChildren);
    std::uint64_t former = node.load();
    std::uint64_t next = 0;
    do {
      next = SetRun(former, iChild % kNumChildren, GetRunBelow(level, iChild)) + kOneVersion;
    } while (!node.compare_exchange_weak(former, next));
  }
}

int Mem2_FreeIndex::GetRunBelow(int iLevel, int iChild) const {
  if (iLevel == 0) return Mem2_GetLongestRun(mPages[iChild]);
  std::uint64_t const node = At(iLevel - 1, iChild);
  int run = 0;
  for (int child = 0; child < kNumChildren; ++child)
    run = std::max(run, GetRun(node, child));
  return run;
}

int Mem2_FreeIndex::Find(int iRun) {
  int level = mNumLevels - 1;
  int index = 0;
  for (;;) {
    int const child = GetBestChild(At(level, index), iRun);
    if (child >= 0) {
      index = index * kNumChildren + child;
      if (level-- == 0) return index;
      continue;
    }
    if (level == mNumLevels - 1) return -1;
    UpdateUpwards(level + 1, index);
    level = mNumLevels - 1;
    index = 0;
  }
}

int Mem2_FreeIndex::FindFrom(int iPage, int iRun) {
  int level = 0;
  int next = iPage;  // of the level's children, the first that is not ruled out
  for (;;) {
    int const index = next / kNumChildren;
    if (index >= mNumNodes[level]) return -1;
    int const child = GetFirstChild(At(level, index), next % kNumChildren, iRun);
    if (child >= 0) {
      next = index * kNumChildren + child;
      if (level == 0) return next;
      next *= kNumChildren;
      --level;
      continue;
    }
    // Coming from above, that promised too much: put it right on the way back.
    if (next % kNumChildren == 0 && level + 1 < mNumLevels) UpdateUpwards(level + 1, index);
    if (++level == mNumLevels) return -1;
    next = index + 1;
  }
}

Mem2_FreeIndex::Node & Mem2_FreeIndex::At(int iLevel, int iIndex) const {
  return mNodes[static_cast<size_t>(mFirstNodes[iLevel]) + static_cast<size_t>(iIndex)];
}
