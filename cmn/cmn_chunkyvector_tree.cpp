#include "cmn/cmn_chunkyvector_tree.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace {

typedef Cmn_ChunkyVecNode Node;
typedef Cmn_ChunkyVecLeaf Leaf;
typedef Cmn_ChunkyVecInner Inner;
typedef Cmn_ChunkyVecNodeRef NodeRef;
typedef Cmn_ChunkyVecSummary Summary;

constexpr int kFirstRoom = 8;  // records in the only leaf of a short sequence
constexpr size_t kAlignment = alignof(std::max_align_t);

constexpr size_t Aligned(size_t iSize) {
  return (iSize + kAlignment - 1) / kAlignment * kAlignment;
}

template <class T>
void MoveWithin(T * ioArray, int iTo, int iFrom, int iNum) {
  std::memmove(ioArray + iTo, ioArray + iFrom, static_cast<size_t>(iNum) * sizeof(T));
}

template <class T>
void CopyArray(T * oTo, T const * iFrom, int iNum) {
  std::memcpy(oTo, iFrom, static_cast<size_t>(iNum) * sizeof(T));
}

void Free(Node * iNodeP) {
  if (iNodeP->IsLeaf()) {
    static_cast<Leaf *>(iNodeP)->~Leaf();
    ::operator delete(iNodeP);
    return;
  }
  Inner * const innerP = static_cast<Inner *>(iNodeP);
  for (int i = 0; i < innerP->mNum; ++i)
    NodeRef(innerP->mChild[i]).Reset(nullptr);
  delete innerP;
}

void MoveKeys(Leaf & ioLeaf, int iTo, int iFrom, int iNum) {
  if (!ioLeaf.mDigestP || iNum == 0) return;
  MoveWithin(ioLeaf.mOrder, iTo, iFrom, iNum);
  MoveWithin(ioLeaf.mExtent, iTo, iFrom, iNum);
  MoveWithin(ioLeaf.mMarks, iTo, iFrom, iNum);
}

void CopyKeys(Leaf & ioLeaf, int iTo, Leaf const & iSource, int iFrom, int iNum) {
  if (!ioLeaf.mDigestP) return;
  CopyArray(ioLeaf.mOrder + iTo, iSource.mOrder + iFrom, iNum);
  CopyArray(ioLeaf.mExtent + iTo, iSource.mExtent + iFrom, iNum);
  CopyArray(ioLeaf.mMarks + iTo, iSource.mMarks + iFrom, iNum);
}

void ExtractKeys(Leaf & ioLeaf, int iFirst, int iNum) {
  if (!ioLeaf.mDigestP || iNum == 0) return;
  ioLeaf.mDigestP->Extract(ioLeaf.At(iFirst), iNum, ioLeaf.mOrder + iFirst, ioLeaf.mExtent + iFirst,
                           ioLeaf.mMarks + iFirst);
}

Summary SummaryOfKeys(Leaf const & iLeaf, int iFirst, int iLast) {
  Summary result;
  result.mNum = iLast - iFirst;
  if (!iLeaf.mDigestP || iFirst == iLast) return result;
  result.mFirst = iLeaf.mOrder[iFirst];
  result.mLast = iLeaf.mOrder[iLast - 1];
  long long least = iLeaf.mExtent[iFirst];
  long long greatest = least;
  for (int i = iFirst; i < iLast; ++i) {
    least = std::min(least, iLeaf.mExtent[i]);
    greatest = std::max(greatest, iLeaf.mExtent[i]);
    result.mMarks |= iLeaf.mMarks[i];
  }
  result.mLeast = least;
  result.mGreatest = greatest;
  result.mAscending = std::is_sorted(iLeaf.mOrder + iFirst, iLeaf.mOrder + iLast);
  return result;
}

void FoldLeaf(Leaf & ioLeaf) {
  ioLeaf.mSummary = SummaryOfKeys(ioLeaf, 0, ioLeaf.mNum);
}

Summary SummaryOfOne(Leaf const & iLeaf, int iOffset) {
  if (!iLeaf.mDigestP) return {1};
  long long const order = iLeaf.mOrder[iOffset];
  long long const extent = iLeaf.mExtent[iOffset];
  return {1, true, iLeaf.mMarks[iOffset], order, order, extent, extent};
}

// One record more changes a summary without a look at the others.
void WidenLeaf(Leaf & ioLeaf, int iOffset) {
  Summary & summary = ioLeaf.mSummary;
  Summary const one = SummaryOfOne(ioLeaf, iOffset);
  if (iOffset == ioLeaf.mNum - 1) {
    summary.Append(one);
    return;
  }
  ++summary.mNum;
  if (!ioLeaf.mDigestP) return;
  summary.mMarks |= one.mMarks;
  summary.mLeast = std::min(summary.mLeast, one.mLeast);
  summary.mGreatest = std::max(summary.mGreatest, one.mGreatest);
  bool const fits = (iOffset == 0 || ioLeaf.mOrder[iOffset - 1] <= one.mFirst) &&
                    one.mFirst <= ioLeaf.mOrder[iOffset + 1];
  summary.mAscending = summary.mAscending && fits;
  if (iOffset == 0) summary.mFirst = one.mFirst;
}

}  // namespace

void Cmn_ChunkyVecNodeRef::Reset(Cmn_ChunkyVecNode * iNodeP) {
  Cmn_ChunkyVecNode * const oldP = std::exchange(mNodeP, iNodeP);
  if (oldP && oldP->mRefs.fetch_sub(1, std::memory_order_acq_rel) == 1) Free(oldP);
}

int Cmn_ChunkyVecInner::ChildAt(int iIndex) const {
  return static_cast<int>(std::upper_bound(mEnd, mEnd + mNum, iIndex) - mEnd);
}

int Cmn_ChunkyVecInner::ChildForInsertion(int iIndex) const {
  return static_cast<int>(std::lower_bound(mEnd, mEnd + mNum, iIndex) - mEnd);
}

void Cmn_ChunkyVecInner::Widen(Summary const & iAppended) {
  int const last = mNum - 1;
  mAscending[last] = mAscending[last] && iAppended.mAscending && mLast[last] <= iAppended.mFirst;
  mMarks[last] |= iAppended.mMarks;
  mLast[last] = iAppended.mLast;
  mLeast[last] = std::min(mLeast[last], iAppended.mLeast);
  mGreatest[last] = std::max(mGreatest[last], iAppended.mGreatest);
  mEnd[last] += iAppended.mNum;
  mSummary.Append(iAppended);
}

void Cmn_ChunkyVecInner::Update(int iChild) {
  Summary const before = SummaryOf(iChild);
  Refresh(iChild);
  Summary const & after = mChild[iChild]->mSummary;
  bool const isBound =
      (before.mLeast == mSummary.mLeast && after.mLeast > before.mLeast) ||
      (before.mGreatest == mSummary.mGreatest && after.mGreatest < before.mGreatest) ||
      (before.mMarks & ~after.mMarks) != 0;
  if (isBound || !mSummary.mAscending || before.mNum == 0 || after.mNum == 0) {
    Fold();
    return;
  }
  mSummary.mNum = mEnd[mNum - 1];
  mSummary.mFirst = mFirst[0];
  mSummary.mLast = mLast[mNum - 1];
  mSummary.mLeast = std::min(mSummary.mLeast, after.mLeast);
  mSummary.mGreatest = std::max(mSummary.mGreatest, after.mGreatest);
  mSummary.mMarks |= after.mMarks;
  mSummary.mAscending = after.mAscending && (iChild == 0 || mLast[iChild - 1] <= after.mFirst) &&
                        (iChild == mNum - 1 || after.mLast <= mFirst[iChild + 1]);
}

void Cmn_ChunkyVecInner::Refresh(int iChild) {
  Summary const & summary = mChild[iChild]->mSummary;
  SetKeys(iChild, summary);
  int const grown = summary.mNum - (mEnd[iChild] - StartOf(iChild));
  for (int i = iChild; i < mNum; ++i)
    mEnd[i] += grown;
}

void Cmn_ChunkyVecInner::MoveChildren(int iTo, int iFrom) {
  int const num = mNum - iFrom;
  if (num == 0) return;
  MoveWithin(mChild, iTo, iFrom, num);
  MoveWithin(mEnd, iTo, iFrom, num);
  MoveWithin(mAscending, iTo, iFrom, num);
  MoveWithin(mMarks, iTo, iFrom, num);
  MoveWithin(mFirst, iTo, iFrom, num);
  MoveWithin(mLast, iTo, iFrom, num);
  MoveWithin(mLeast, iTo, iFrom, num);
  MoveWithin(mGreatest, iTo, iFrom, num);
}

void Cmn_ChunkyVecInner::Take(int iAt, Inner const & iSource, int iFirst, int iLast) {
  int const num = iLast - iFirst;
  if (num <= 0) return;
  int const start = StartOf(iAt);
  int const sourceStart = iSource.StartOf(iFirst);
  int const added = iSource.mEnd[iLast - 1] - sourceStart;
  MoveChildren(iAt + num, iAt);
  mNum += num;
  for (int i = iAt + num; i < mNum; ++i)
    mEnd[i] += added;
  for (int i = 0; i < num; ++i)
    mEnd[iAt + i] = start + iSource.mEnd[iFirst + i] - sourceStart;
  CopyArray(mChild + iAt, iSource.mChild + iFirst, num);
  CopyArray(mAscending + iAt, iSource.mAscending + iFirst, num);
  CopyArray(mMarks + iAt, iSource.mMarks + iFirst, num);
  CopyArray(mFirst + iAt, iSource.mFirst + iFirst, num);
  CopyArray(mLast + iAt, iSource.mLast + iFirst, num);
  CopyArray(mLeast + iAt, iSource.mLeast + iFirst, num);
  CopyArray(mGreatest + iAt, iSource.mGreatest + iFirst, num);
}

void Cmn_ChunkyVecInner::Insert(int iAt, Node * iChildP, Summary const & iSummary) {
  int const start = StartOf(iAt);
  MoveChildren(iAt + 1, iAt);
  ++mNum;
  for (int i = iAt + 1; i < mNum; ++i)
    mEnd[i] += iSummary.mNum;
  mChild[iAt] = iChildP;
  mEnd[iAt] = start + iSummary.mNum;
  SetKeys(iAt, iSummary);
}

Node * Cmn_ChunkyVecInner::Remove(int iAt) {
  Node * const childP = mChild[iAt];
  int const removed = mEnd[iAt] - StartOf(iAt);
  MoveChildren(iAt, iAt + 1);
  --mNum;
  for (int i = iAt; i < mNum; ++i)
    mEnd[i] -= removed;
  return childP;
}

void Cmn_ChunkyVecInner::Fold() {
  mSummary = Summary();
  if (mNum == 0) return;
  mSummary.mNum = mEnd[mNum - 1];
  mSummary.mFirst = mFirst[0];
  mSummary.mLast = mLast[mNum - 1];
  long long least = mLeast[0];
  long long greatest = mGreatest[0];
  unsigned char marks = 0;
  bool ascending = true;
  for (int i = 0; i < mNum; ++i) {
    least = std::min(least, mLeast[i]);
    greatest = std::max(greatest, mGreatest[i]);
    marks |= mMarks[i];
    ascending = ascending && mAscending[i] && (i == 0 || mLast[i - 1] <= mFirst[i]);
  }
  mSummary.mLeast = least;
  mSummary.mGreatest = greatest;
  mSummary.mMarks = marks;
  mSummary.mAscending = ascending;
}

void Cmn_ChunkyVecPath::Refresh() {
  for (int i = mNumSteps - 1; i >= 0; --i)
    mSteps[i].mInnerP->Update(mSteps[i].mChild);
}

void Cmn_ChunkyVecPath::MarkUnsettled() {
  mLeafP->mIsUnsettled = true;
  for (int i = 0; i < mNumSteps; ++i)
    mSteps[i].mInnerP->mIsUnsettled = true;
}

Leaf * Cmn_ChunkyVecTree::Find(Node * iRootP, int iIndex, int * oOffset) {
  Node * nodeP = iRootP;
  while (!nodeP->IsLeaf()) {
    Inner const & inner = static_cast<Inner const &>(*nodeP);
    int const child = inner.ChildAt(iIndex);
    iIndex -= inner.StartOf(child);
    nodeP = inner.mChild[child];
  }
  *oOffset = iIndex;
  return static_cast<Leaf *>(nodeP);
}

void Cmn_ChunkyVecTree::FindForWriting(Node *& ioRootP, int iIndex, Path & oPath) const {
  oPath.mHasCloned = MakeWritable(ioRootP);
  Node * nodeP = ioRootP;
  while (!nodeP->IsLeaf()) {
    Inner & inner = static_cast<Inner &>(*nodeP);
    int const child = inner.ChildAt(iIndex);
    iIndex -= inner.StartOf(child);
    if (MakeWritable(inner.mChild[child])) oPath.mHasCloned = true;
    oPath.mSteps[oPath.mNumSteps++] = {&inner, child};
    nodeP = inner.mChild[child];
  }
  oPath.mLeafP = static_cast<Leaf *>(nodeP);
  oPath.mOffset = iIndex;
}

// Full nodes are split on the way down, before anything depends on it: each split leaves a good
// tree of the same records, so running out of memory half way does no harm.
void Cmn_ChunkyVecTree::FindForInsertion(Node *& ioRootP, int iIndex, Path & oPath) const {
  bool const atEnd = !ioRootP || iIndex == ioRootP->mSummary.mNum;
  if (!ioRootP) ioRootP = NewLeaf(kFirstRoom).Release();
  MakeWritable(ioRootP);
  if (IsFull(*ioRootP)) MakeRoomInRoot(ioRootP);
  Node * nodeP = ioRootP;
  while (!nodeP->IsLeaf()) {
    Inner & inner = static_cast<Inner &>(*nodeP);
    int const first = inner.ChildForInsertion(iIndex);
    int const child = ChildWithRoom(inner, first, iIndex - inner.StartOf(first), atEnd);
    iIndex -= inner.StartOf(child);
    oPath.mSteps[oPath.mNumSteps++] = {&inner, child};
    nodeP = inner.mChild[child];
  }
  oPath.mLeafP = static_cast<Leaf *>(nodeP);
  oPath.mOffset = iIndex;
}

void Cmn_ChunkyVecTree::Unshare(Node *& ioNodeP) const {
  MakeWritable(ioNodeP);
  if (ioNodeP->IsLeaf()) return;
  Inner & inner = static_cast<Inner &>(*ioNodeP);
  for (int i = 0; i < inner.mNum; ++i)
    Unshare(inner.mChild[i]);
}

void Cmn_ChunkyVecTree::AppendToTail(Node & ioRoot, Leaf & ioTail, char const * iRecords,
                                     int iNum) const {
  mCopier.Copy(ioTail.At(ioTail.mNum), iRecords, iNum);
  WidenTail(ioRoot, ioTail, iNum);
}

void Cmn_ChunkyVecTree::WidenTail(Node & ioRoot, Leaf & ioTail, int iNum) const {
  int const first = ioTail.mNum;
  ioTail.mNum += iNum;
  ExtractKeys(ioTail, first, iNum);
  Summary const appended =
      iNum == 1 ? SummaryOfOne(ioTail, first) : SummaryOfKeys(ioTail, first, first + iNum);
  ioTail.mSummary.Append(appended);
  for (Node * nodeP = &ioRoot; !nodeP->IsLeaf();) {
    Inner & inner = static_cast<Inner &>(*nodeP);
    inner.Widen(appended);
    nodeP = inner.mChild[inner.mNum - 1];
  }
}

void Cmn_ChunkyVecTree::AppendNode(Node *& ioRootP, Node & ioNode) const {
  MakeWritable(ioRootP);
  if (IsFull(*ioRootP)) MakeRoomInRoot(ioRootP);
  Path path;
  Inner * innerP = static_cast<Inner *>(ioRootP);
  while (innerP->mHeight > ioNode.mHeight + 1) {
    int const child = ChildWithRoom(*innerP, innerP->mNum - 1, 0, true);
    path.mSteps[path.mNumSteps++] = {innerP, child};
    innerP = static_cast<Inner *>(innerP->mChild[child]);
  }
  AppendChild(*innerP, NodeRef::Share(&ioNode));
  innerP->mSummary.Append(ioNode.mSummary);
  for (int i = path.mNumSteps - 1; i >= 0; --i)
    path.mSteps[i].mInnerP->Widen(ioNode.mSummary);
}

void Cmn_ChunkyVecTree::InsertIntoLeaf(Leaf & ioLeaf, int iOffset, char const * iRecord) const {
  int const num = ioLeaf.mNum - iOffset;
  if (num > 0) {
    mCopier.Copy(ioLeaf.At(iOffset + 1), ioLeaf.At(iOffset), num);
    MoveKeys(ioLeaf, iOffset + 1, iOffset, num);
  }
  mCopier.Copy(ioLeaf.At(iOffset), iRecord, 1);
  ++ioLeaf.mNum;
  ExtractKeys(ioLeaf, iOffset, 1);
  WidenLeaf(ioLeaf, iOffset);
}

void Cmn_ChunkyVecTree::EraseFromLeaf(Leaf & ioLeaf, int iOffset, int iNum) const {
  int const num = ioLeaf.mNum - iOffset - iNum;
  if (num > 0) {
    mCopier.Copy(ioLeaf.At(iOffset), ioLeaf.At(iOffset + iNum), num);
    MoveKeys(ioLeaf, iOffset, iOffset + iNum, num);
  }
  ioLeaf.mNum -= iNum;
  FoldLeaf(ioLeaf);
}

void Cmn_ChunkyVecTree::ReplaceInLeaf(Leaf & ioLeaf, int iOffset, char const * iRecord) const {
  mCopier.Copy(ioLeaf.At(iOffset), iRecord, 1);
  ExtractKeys(ioLeaf, iOffset, 1);
  FoldLeaf(ioLeaf);
}

void Cmn_ChunkyVecTree::Tidy(Node *& ioRootP, Path & ioPath) const {
  Node * childP = ioPath.mLeafP;
  for (int i = ioPath.mNumSteps - 1; i >= 0; --i) {
    Inner & inner = *ioPath.mSteps[i].mInnerP;
    int const child = ioPath.mSteps[i].mChild;
    if (childP->mNum == 0) {
      NodeRef(inner.Remove(child)).Reset(nullptr);
      inner.Fold();
    } else {
      inner.Update(child);
      if (childP->mNum < Capacity(*childP) / 2) AbsorbNeighbour(inner, child);
    }
    childP = &inner;
  }
  if (ioRootP->mNum == 0) NodeRef(std::exchange(ioRootP, nullptr)).Reset(nullptr);
  while (ioRootP && !ioRootP->IsLeaf() && ioRootP->mNum == 1) {
    NodeRef const old(ioRootP);
    ioRootP = NodeRef::Share(old.AsInner().mChild[0]).Release();
  }
}

NodeRef Cmn_ChunkyVecTree::Build(char const * iRecords, int iNum) const {
  NodeRef result;
  while (iNum > 0) {
    int const num = std::min(iNum, Node::kLeafRoom);
    NodeRef leaf =
        NewLeaf(result || num == Node::kLeafRoom ? Node::kLeafRoom : std::max(num, kFirstRoom));
    mCopier.Copy(leaf.AsLeaf().mRecords, iRecords, num);
    leaf->mNum = num;
    ExtractKeys(leaf.AsLeaf(), 0, num);
    FoldLeaf(leaf.AsLeaf());
    result = Concat(std::move(result), std::move(leaf));
    iRecords += static_cast<ptrdiff_t>(num) * mElementSize;
    iNum -= num;
  }
  return result;
}

NodeRef Cmn_ChunkyVecTree::Slice(Node * iNodeP, int iFirst, int iLast) const {
  if (iFirst >= iLast) return NodeRef();
  if (iFirst == 0 && iLast == iNodeP->mSummary.mNum) return NodeRef::Share(iNodeP);
  if (iNodeP->IsLeaf()) {
    return CloneLeaf(static_cast<Leaf &>(*iNodeP), iFirst, iLast, Node::kLeafRoom);
  }
  Inner const & inner = static_cast<Inner const &>(*iNodeP);
  int const first = inner.ChildAt(iFirst);
  int const last = inner.ChildAt(iLast - 1);
  int const start = inner.StartOf(first);
  if (first == last) return Slice(inner.mChild[first], iFirst - start, iLast - start);
  NodeRef front = Slice(inner.mChild[first], iFirst - start, inner.mEnd[first] - start);
  NodeRef back = Slice(inner.mChild[last], 0, iLast - inner.StartOf(last));
  NodeRef middle;
  if (last - first > 1) {
    middle = NewInner(inner.mHeight);
    ShareChildren(middle.AsInner(), 0, inner, first + 1, last);
    middle.AsInner().Fold();
  }
  return Concat(Concat(std::move(front), std::move(middle)), std::move(back));
}

NodeRef Cmn_ChunkyVecTree::Concat(NodeRef iFront, NodeRef iBack) const {
  if (!iFront) return iBack;
  if (!iBack) return iFront;
  NodePair joined = Join(std::move(iFront), std::move(iBack));
  if (!joined.second) return std::move(joined.first);
  return Parent(std::move(joined.first), std::move(joined.second));
}

void Cmn_ChunkyVecTree::Settle(Node & ioNode) {
  if (!ioNode.mIsUnsettled) return;
  if (ioNode.IsLeaf()) {
    Leaf & leaf = static_cast<Leaf &>(ioNode);
    ExtractKeys(leaf, 0, leaf.mNum);
    FoldLeaf(leaf);
  } else {
    Inner & inner = static_cast<Inner &>(ioNode);
    for (int i = 0; i < inner.mNum; ++i) {
      if (!inner.mChild[i]->mIsUnsettled) continue;
      Settle(*inner.mChild[i]);
      inner.SetKeys(i, inner.mChild[i]->mSummary);
    }
    inner.Fold();
  }
  ioNode.mIsUnsettled = false;
}

Summary Cmn_ChunkyVecTree::Summarise(Node & iNode, int iFirst, int iLast) {
  if (iFirst >= iLast) return Summary();
  if (iFirst == 0 && iLast == iNode.mSummary.mNum) return iNode.mSummary;
  if (iNode.IsLeaf()) return SummaryOfKeys(static_cast<Leaf &>(iNode), iFirst, iLast);
  Inner const & inner = static_cast<Inner const &>(iNode);
  Summary result;
  for (int i = inner.ChildAt(iFirst); i < inner.mNum && inner.StartOf(i) < iLast; ++i) {
    int const start = inner.StartOf(i);
    bool const isWhole = iFirst <= start && inner.mEnd[i] <= iLast;
    result.Append(isWhole ? inner.SummaryOf(i)
                          : Summarise(*inner.mChild[i], std::max(iFirst - start, 0),
                                      std::min(iLast, inner.mEnd[i]) - start));
  }
  return result;
}

NodeRef Cmn_ChunkyVecTree::NewLeaf(int iRoom) const {
  Cmn_ChunkyVecDigest const * const digestP = mCopier.GetDigest();
  size_t const room = static_cast<size_t>(iRoom);
  size_t const keys = digestP ? Aligned(room * (2 * sizeof(long long) + 1)) : 0;
  size_t const header = Aligned(sizeof(Leaf));
  size_t const records = room * static_cast<size_t>(mElementSize);
  char * const block = static_cast<char *>(::operator new(header + keys + records));
  Leaf * const leafP = ::new (block) Leaf;
  leafP->mRoom = iRoom;
  leafP->mElementSize = mElementSize;
  leafP->mDigestP = digestP;
  leafP->mOrder = digestP ? reinterpret_cast<long long *>(block + header) : nullptr;
  leafP->mExtent = digestP ? leafP->mOrder + iRoom : nullptr;
  leafP->mMarks = digestP ? reinterpret_cast<unsigned char *>(leafP->mExtent + iRoom) : nullptr;
  leafP->mRecords = block + header + keys;
  return NodeRef(leafP);
}

NodeRef Cmn_ChunkyVecTree::NewInner(int iHeight) {
  Inner * const innerP = new Inner;
  innerP->mHeight = static_cast<short>(iHeight);
  return NodeRef(innerP);
}

NodeRef Cmn_ChunkyVecTree::Clone(Node & iNode) const {
  if (iNode.IsLeaf()) {
    Leaf & leaf = static_cast<Leaf &>(iNode);
    return CloneLeaf(leaf, 0, leaf.mNum, leaf.mRoom);
  }
  Inner const & source = static_cast<Inner const &>(iNode);
  NodeRef result = NewInner(source.mHeight);
  Inner & inner = result.AsInner();
  ShareChildren(inner, 0, source, 0, source.mNum);
  inner.mSummary = source.mSummary;
  return result;
}

NodeRef Cmn_ChunkyVecTree::CloneLeaf(Leaf & iLeaf, int iFirst, int iLast, int iRoom) const {
  NodeRef result = NewLeaf(iRoom);
  AppendToLeaf(result.AsLeaf(), iLeaf, iFirst, iLast);
  return result;
}

bool Cmn_ChunkyVecTree::MakeWritable(Node *& ioNodeP) const {
  if (!ioNodeP->IsShared()) return false;
  NodeRef clone = Clone(*ioNodeP);
  NodeRef(std::exchange(ioNodeP, clone.Release())).Reset(nullptr);
  return true;
}

int Cmn_ChunkyVecTree::Capacity(Node const & iNode) {
  return iNode.IsLeaf() ? Node::kLeafRoom : Node::kWidth;
}

bool Cmn_ChunkyVecTree::IsFull(Node const & iNode) {
  return iNode.mNum == (iNode.IsLeaf() ? static_cast<Leaf const &>(iNode).mRoom : Node::kWidth);
}

// A leaf that began small grows before it is split. False: it is as large as leaves get.
bool Cmn_ChunkyVecTree::Enlarge(Node *& ioNodeP) const {
  if (!ioNodeP->IsLeaf()) return false;
  Leaf & leaf = static_cast<Leaf &>(*ioNodeP);
  if (leaf.mRoom == Node::kLeafRoom) return false;
  NodeRef larger = CloneLeaf(leaf, 0, leaf.mNum, std::min(2 * leaf.mRoom, Node::kLeafRoom));
  NodeRef(std::exchange(ioNodeP, larger.Release())).Reset(nullptr);
  return true;
}

void Cmn_ChunkyVecTree::MakeRoomInRoot(Node *& ioRootP) const {
  if (Enlarge(ioRootP)) return;
  NodeRef parent = NewInner(ioRootP->mHeight + 1);
  parent.AsInner().Insert(0, ioRootP, ioRootP->mSummary);
  parent.AsInner().Fold();
  ioRootP = parent.Release();
}

// The child, or one that was split off it, for writing. At the end of the sequence the new node
// starts empty, so that what is built in order is full.
int Cmn_ChunkyVecTree::ChildWithRoom(Inner & ioParent, int iChild, int iIndex, bool iAtEnd) const {
  if (!IsFull(*ioParent.mChild[iChild])) {
    MakeWritable(ioParent.mChild[iChild]);
    return iChild;
  }
  if (Enlarge(ioParent.mChild[iChild])) return iChild;
  if (iAtEnd && ioParent.mHeight == 1) {
    ioParent.Insert(iChild + 1, NewLeaf(Node::kLeafRoom).Release(), Summary());
    return iChild + 1;
  }
  MakeWritable(ioParent.mChild[iChild]);
  Node & child = *ioParent.mChild[iChild];
  NodeRef rest = SplitOff(child, iAtEnd ? child.mNum - 1 : child.mNum / 2);
  Summary const summary = rest->mSummary;
  ioParent.Refresh(iChild);
  ioParent.Insert(iChild + 1, rest.Release(), summary);
  bool const isInRest = iAtEnd || iIndex > child.mSummary.mNum;
  return isInRest ? iChild + 1 : iChild;
}

NodeRef Cmn_ChunkyVecTree::SplitOff(Node & ioNode, int iFirst) const {
  if (ioNode.IsLeaf()) {
    Leaf & leaf = static_cast<Leaf &>(ioNode);
    NodeRef rest = CloneLeaf(leaf, iFirst, leaf.mNum, Node::kLeafRoom);
    leaf.mNum = iFirst;
    FoldLeaf(leaf);
    return rest;
  }
  Inner & inner = static_cast<Inner &>(ioNode);
  NodeRef rest = NewInner(inner.mHeight);
  rest.AsInner().Take(0, inner, iFirst, inner.mNum);
  inner.mNum = iFirst;
  inner.Fold();
  rest.AsInner().Fold();
  return rest;
}

// Needs: room.
void Cmn_ChunkyVecTree::AppendToLeaf(Leaf & ioLeaf, Leaf & iSource, int iFirst, int iLast) const {
  int const num = iLast - iFirst;
  mCopier.Copy(ioLeaf.At(ioLeaf.mNum), iSource.At(iFirst), num);
  CopyKeys(ioLeaf, ioLeaf.mNum, iSource, iFirst, num);
  ioLeaf.mNum += num;
  ioLeaf.mSummary.Append(num == iSource.mNum ? iSource.mSummary
                                             : SummaryOfKeys(iSource, iFirst, iLast));
}

void Cmn_ChunkyVecTree::AbsorbNeighbour(Inner & ioParent, int iChild) const {
  Node & child = *ioParent.mChild[iChild];
  int const room = child.IsLeaf() ? static_cast<Leaf &>(child).mRoom : Node::kWidth;
  for (int const neighbour : {iChild + 1, iChild - 1}) {
    if (neighbour < 0 || neighbour >= ioParent.mNum) continue;
    if (ioParent.mChild[neighbour]->mNum + child.mNum > room) continue;
    NodeRef const absorbed(ioParent.Remove(neighbour));
    bool const atFront = neighbour < iChild;
    Absorb(child, *absorbed.Get(), atFront);
    ioParent.Refresh(atFront ? neighbour : iChild);
    return;
  }
}

void Cmn_ChunkyVecTree::Absorb(Node & ioTarget, Node & iSource, bool iAtFront) const {
  if (!ioTarget.IsLeaf()) {
    Inner & target = static_cast<Inner &>(ioTarget);
    Inner & source = static_cast<Inner &>(iSource);
    ShareChildren(target, iAtFront ? 0 : target.mNum, source, 0, source.mNum);
    target.Fold();
    return;
  }
  Leaf & target = static_cast<Leaf &>(ioTarget);
  Leaf & source = static_cast<Leaf &>(iSource);
  if (!iAtFront) {
    AppendToLeaf(target, source, 0, source.mNum);
    return;
  }
  mCopier.Copy(target.At(source.mNum), target.At(0), target.mNum);
  MoveKeys(target, source.mNum, 0, target.mNum);
  mCopier.Copy(target.At(0), source.At(0), source.mNum);
  CopyKeys(target, 0, source, 0, source.mNum);
  target.mNum += source.mNum;
  Summary summary = source.mSummary;
  summary.Append(target.mSummary);
  target.mSummary = summary;
}

// One node or two neighbours of the greater height, with the same records.
Cmn_ChunkyVecTree::NodePair Cmn_ChunkyVecTree::Join(NodeRef iFront, NodeRef iBack) const {
  if (iFront->mHeight > iBack->mHeight) return JoinIntoFront(std::move(iFront), std::move(iBack));
  if (iFront->mHeight < iBack->mHeight) return JoinIntoBack(std::move(iFront), std::move(iBack));
  int const num = iFront->mNum + iBack->mNum;
  if (num > Capacity(*iFront.Get())) return {std::move(iFront), std::move(iBack)};
  if (iFront->IsLeaf() && (iFront->IsShared() || iFront.AsLeaf().mRoom < num)) {
    iFront = CloneLeaf(iFront.AsLeaf(), 0, iFront->mNum, Node::kLeafRoom);
  } else {
    iFront = Writable(std::move(iFront));
  }
  Absorb(*iFront.Get(), *iBack.Get(), false);
  return {std::move(iFront), NodeRef()};
}

Cmn_ChunkyVecTree::NodePair Cmn_ChunkyVecTree::JoinIntoFront(NodeRef iFront, NodeRef iBack) const {
  iFront = Writable(std::move(iFront));
  Inner & inner = iFront.AsInner();
  NodePair joined = Join(NodeRef(inner.Remove(inner.mNum - 1)), std::move(iBack));
  AppendChild(inner, std::move(joined.first));
  NodeRef overflow;
  if (joined.second) {
    if (inner.mNum < Node::kWidth) {
      AppendChild(inner, std::move(joined.second));
    } else {
      overflow = NewInner(inner.mHeight);
      AppendChild(overflow.AsInner(), std::move(joined.second));
      overflow.AsInner().Fold();
    }
  }
  inner.Fold();
  return {std::move(iFront), std::move(overflow)};
}

Cmn_ChunkyVecTree::NodePair Cmn_ChunkyVecTree::JoinIntoBack(NodeRef iFront, NodeRef iBack) const {
  iBack = Writable(std::move(iBack));
  Inner & inner = iBack.AsInner();
  NodePair joined = Join(std::move(iFront), NodeRef(inner.Remove(0)));
  NodeRef & nearest = joined.second ? joined.second : joined.first;
  Summary const summary = nearest->mSummary;
  inner.Insert(0, nearest.Release(), summary);
  NodeRef overflow;
  if (joined.first) {
    Summary const firstSummary = joined.first->mSummary;
    if (inner.mNum < Node::kWidth) {
      inner.Insert(0, joined.first.Release(), firstSummary);
    } else {
      overflow = NewInner(inner.mHeight);
      AppendChild(overflow.AsInner(), std::move(joined.first));
      overflow.AsInner().Fold();
    }
  }
  inner.Fold();
  if (overflow) return {std::move(overflow), std::move(iBack)};
  return {std::move(iBack), NodeRef()};
}

void Cmn_ChunkyVecTree::AppendChild(Inner & ioInner, NodeRef iChild) {
  Summary const summary = iChild->mSummary;
  ioInner.Insert(ioInner.mNum, iChild.Release(), summary);
}

void Cmn_ChunkyVecTree::ShareChildren(Inner & ioInner, int iAt, Inner const & iSource, int iFirst,
                                      int iLast) {
  ioInner.Take(iAt, iSource, iFirst, iLast);
  for (int i = iFirst; i < iLast; ++i)
    iSource.mChild[i]->AddRef();
}

NodeRef Cmn_ChunkyVecTree::Parent(NodeRef iFront, NodeRef iBack) {
  NodeRef result = NewInner(iFront->mHeight + 1);
  AppendChild(result.AsInner(), std::move(iFront));
  AppendChild(result.AsInner(), std::move(iBack));
  result.AsInner().Fold();
  return result;
}

NodeRef Cmn_ChunkyVecTree::Writable(NodeRef iNode) const {
  return iNode->IsShared() ? Clone(*iNode.Get()) : std::move(iNode);
}
