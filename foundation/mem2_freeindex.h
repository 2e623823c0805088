// Which page of a pool has room: a tree over the pages' longest free runs. Not installed.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

/// Each node holds the longest run below each of its four children. Lock-free; an operation takes a
/// few steps for each of at most eleven levels.
///
/// The page words are the truth and the tree follows them. `Update` reads a child after the node
/// that it writes, and each write moves on the node's version, so a value once overtaken is never
/// written over a newer one. So a run that has been free since an `Update` returned is seen at the
/// root until it is taken, wherever other threads have been stopped: when the root knows of no run,
/// there was none. A run that is gone may still be told of; who goes there finds out and puts it
/// right. Thread: any.
class Mem2_FreeIndex {
public:
  /// Needs: the page words outlive this. All runs count as 0 until `Update`. Fails:
  /// `std::bad_alloc`.
  Mem2_FreeIndex(std::atomic<std::uint64_t> const * iPages, int iNumPages);

  /// Carries a page's longest run to the root. To be called after each change of the page's word,
  /// and whenever the index told of a run that was not there.
  void Update(int iPage);

  /// A page that should have a run of `iRun`, by preference one whose longest is not much longer;
  /// -1 if there is none.
  int Find(int iRun);

  /// The first page at or after `iPage` that should have a run of `iRun`; -1 if there is none.
  int FindFrom(int iPage, int iRun);

private:
  static constexpr int kMaxLevels = 11;
  typedef std::atomic<std::uint64_t> Node;  // low to high: 4 times 7 bits, 36 bits of version

  Node & At(int iLevel, int iIndex) const;
  void UpdateUpwards(int iLevel, int iChild);
  int GetRunBelow(int iLevel, int iChild) const;

  std::atomic<std::uint64_t> const * mPages;
  int mNumLevels;
  int mNumNodes[kMaxLevels];    // of each level; above the pages is level 0, the last has one
  int mFirstNodes[kMaxLevels];  // where each level begins in mNodes
  std::unique_ptr<Node[]> mNodes;
};
