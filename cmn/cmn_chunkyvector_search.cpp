// Searches over the keys and summaries of a sequence with a digest.
#include <algorithm>

#include "cmn/cmn_chunkyvector.h"
#include "cmn/cmn_chunkyvector_tree.h"

namespace {

typedef Cmn_ChunkyVecNode Node;
typedef Cmn_ChunkyVecLeaf Leaf;
typedef Cmn_ChunkyVecInner Inner;

// How many keys in front of an ascending run go before the limit.
template <class TGoesBefore>
int NumBefore(long long const * iKeys, int iNum, TGoesBefore iGoesBefore) {
  return static_cast<int>(std::partition_point(iKeys, iKeys + iNum, iGoesBefore) - iKeys);
}

void Fetch(void const * iP, size_t iNumBytes) {
  constexpr size_t kBytesPerLine = 64;
  for (size_t i = 0; i < iNumBytes; i += kBytesPerLine)
    __builtin_prefetch(static_cast<char const *>(iP) + i);
}

struct Bound {
  Leaf * mLeafP;  // null: behind all records
  int mOffset;
  int mIndex;
};

// The first record of the ascending tree whose order key does not go before the limit.
template <class TGoesBefore>
Bound FindBound(Node * iRootP, TGoesBefore iGoesBefore) {
  if (!iRootP) return {nullptr, 0, 0};
  if (iGoesBefore(iRootP->mSummary.mLast)) return {nullptr, 0, iRootP->mSummary.mNum};
  Node * nodeP = iRootP;
  int index = 0;
  while (!nodeP->IsLeaf()) {
    Inner const & inner = static_cast<Inner const &>(*nodeP);
    int const child = NumBefore(inner.mLast, inner.mNum, iGoesBefore);
    index += inner.StartOf(child);
    nodeP = inner.mChild[child];
  }
  Leaf & leaf = static_cast<Leaf &>(*nodeP);
  int const offset = NumBefore(leaf.mOrder, leaf.mNum, iGoesBefore);
  return {&leaf, offset, index + offset};
}

// Indices within the node. Gives the first record above the limit, or iLast.
int FindAbove(Node * iNodeP, int iFirst, int iLast, long long iLimit) {
  if (iNodeP->IsLeaf()) {
    long long const * const extent = static_cast<Leaf const &>(*iNodeP).mExtent;
    while (iFirst < iLast && extent[iFirst] <= iLimit)
      ++iFirst;
    return iFirst;
  }
  Inner const & inner = static_cast<Inner const &>(*iNodeP);
  for (int i = inner.ChildAt(iFirst); i < inner.mNum && inner.StartOf(i) < iLast; ++i) {
    if (inner.mGreatest[i] <= iLimit) continue;
    int const start = inner.StartOf(i);
    int const last = std::min(iLast, inner.mEnd[i]) - start;
    int const found = FindAbove(inner.mChild[i], std::max(iFirst - start, 0), last, iLimit);
    if (found < last) return start + found;
  }
  return iLast;
}

// One walk over a range, forward or backward.
class Walker {
public:
  Walker(int iFirst, int iLast, bool iIsForward, Cmn_ChunkyVecVisitor & ioVisitor)
      : mFirst(iFirst), mLast(iLast), mIsForward(iIsForward), mVisitor(ioVisitor) {}

  // False: the visitor has seen enough.
  bool Walk(Node * iNodeP, int iStart) {
    if (iNodeP->IsLeaf()) return WalkLeaf(static_cast<Leaf const &>(*iNodeP), iStart);
    Inner const & inner = static_cast<Inner const &>(*iNodeP);
    int const first = inner.ChildAt(std::max(mFirst - iStart, 0));
    int const last = std::min(inner.ChildAt(mLast - 1 - iStart), inner.mNum - 1);
    for (int i = 0; i <= last - first; ++i) {
      int const child = mIsForward ? first + i : last - i;
      if (!mVisitor.Wants(inner.SummaryOf(child))) continue;
      if (!Walk(inner.mChild[child], iStart + inner.StartOf(child))) return false;
    }
    return true;
  }

private:
  bool WalkLeaf(Leaf const & iLeaf, int iStart) {
    int const first = std::max(mFirst - iStart, 0);
    int const last = std::min(mLast - iStart, iLeaf.mNum);
    return mVisitor.Visit({iStart + first, last - first, iLeaf.mOrder + first,
                           iLeaf.mExtent + first, iLeaf.mMarks + first});
  }

  int mFirst, mLast;
  bool mIsForward;
  Cmn_ChunkyVecVisitor & mVisitor;
};

}  // namespace

void Cmn_ChunkyVecImpl::Settle() const {
  if (!mIsUnsettled) return;
  Touch();
  Cmn_ChunkyVecTree::Settle(*mRootP);
  mIsUnsettled = false;
}

Cmn_ChunkyVecSummary const & Cmn_ChunkyVecImpl::Summarise() const {
  static constexpr Cmn_ChunkyVecSummary kEmpty;
  Settle();
  return mRootP ? mRootP->mSummary : kEmpty;
}

Cmn_ChunkyVecSummary Cmn_ChunkyVecImpl::Summarise(int iFirst, int iLast) const {
  Settle();
  return mRootP ? Cmn_ChunkyVecTree::Summarise(*mRootP, iFirst, iLast) : Cmn_ChunkyVecSummary();
}

int Cmn_ChunkyVecImpl::LowerBound(long long iKey) const {
  Settle();
  return FindBound(mRootP, [iKey](long long iOrder) { return iOrder < iKey; }).mIndex;
}

int Cmn_ChunkyVecImpl::UpperBound(long long iKey) const {
  Settle();
  return FindBound(mRootP, [iKey](long long iOrder) { return iOrder <= iKey; }).mIndex;
}

int Cmn_ChunkyVecImpl::FindSpanFrom(long long iKey, char const ** oFirst, int * oIndex) const {
  Settle();
  Bound const bound = FindBound(mRootP, [iKey](long long iOrder) { return iOrder < iKey; });
  *oIndex = bound.mIndex;
  if (!bound.mLeafP) return 0;
  *oFirst = bound.mLeafP->At(bound.mOffset);
  return bound.mLeafP->mNum - bound.mOffset;
}

// Goes by the first keys: the record is then in the chunk where the way ends.
char const * Cmn_ChunkyVecImpl::FindLastBefore(long long iKey) const {
  Settle();
  auto const goesBefore = [iKey](long long iOrder) { return iOrder < iKey; };
  Node * nodeP = mRootP;
  if (!nodeP || !goesBefore(nodeP->mSummary.mFirst)) return nullptr;
  while (!nodeP->IsLeaf()) {
    Inner const & inner = static_cast<Inner const &>(*nodeP);
    nodeP = inner.mChild[NumBefore(inner.mFirst, inner.mNum, goesBefore) - 1];
  }
  Leaf & leaf = static_cast<Leaf &>(*nodeP);
  return leaf.At(NumBefore(leaf.mOrder, leaf.mNum, goesBefore) - 1);
}

void Cmn_ChunkyVecImpl::FetchTop() const {
  if (!mRootP) return;
  Fetch(mRootP, sizeof(Node));
  if (!mRootP->IsLeaf())
    Fetch(static_cast<Inner const &>(*mRootP).mFirst, sizeof(Inner::mFirst) / 2);
}

void Cmn_ChunkyVecImpl::FetchChunkBefore(long long iKey) const {
  if (!mRootP || mIsUnsettled) return;
  Node const * nodeP = mRootP;
  while (!nodeP->IsLeaf()) {
    Inner const & inner = static_cast<Inner const &>(*nodeP);
    int const num =
        NumBefore(inner.mFirst, inner.mNum, [iKey](long long iOrder) { return iOrder < iKey; });
    if (num == 0) return;
    nodeP = inner.mChild[num - 1];
  }
  Fetch(nodeP, sizeof(Leaf) + Node::kLeafRoom * sizeof(long long));  // the keys lie behind the leaf
}

int Cmn_ChunkyVecImpl::GetSpanBefore(int iIndex, long long iKey, char const ** oFirst,
                                     bool * oIsLast) const {
  *oIsLast = true;
  if (iIndex < 0 || iIndex >= mSize) return 0;
  Settle();
  int offset;
  Leaf & leaf = *FindLeaf(iIndex, &offset);
  *oFirst = leaf.At(offset);
  *oIsLast = leaf.mSummary.mLast >= iKey;
  if (!*oIsLast) return leaf.mNum - offset;
  int num = 0;  // mostly small: a search would take longer
  for (long long const * order = leaf.mOrder + offset; order[num] < iKey;)
    ++num;
  return num;
}

int Cmn_ChunkyVecImpl::FindExtentAbove(int iFirst, int iLast, long long iLimit) const {
  Settle();
  return iFirst < iLast ? FindAbove(mRootP, iFirst, iLast, iLimit) : iLast;
}

void Cmn_ChunkyVecImpl::Walk(int iFirst, int iLast, Cmn_ChunkyVecVisitor & ioVisitor) const {
  Settle();
  if (iFirst < iLast && ioVisitor.Wants(mRootP->mSummary)) {
    Walker(iFirst, iLast, true, ioVisitor).Walk(mRootP, 0);
  }
}

void Cmn_ChunkyVecImpl::WalkBackward(int iFirst, int iLast,
                                     Cmn_ChunkyVecVisitor & ioVisitor) const {
  Settle();
  if (iFirst < iLast && ioVisitor.Wants(mRootP->mSummary)) {
    Walker(iFirst, iLast, false, ioVisitor).Walk(mRootP, 0);
  }
}
