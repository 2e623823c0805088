#include "cmn/cmn_chunkyvector.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

#include "cmn/cmn_assert.h"
#include "cmn/cmn_chunkyvector_tree.h"

namespace {

typedef Cmn_ChunkyVecTree Tree;
typedef Cmn_ChunkyVecNodeRef NodeRef;

// Larger records than this are inserted by way of a chunk of their own.
constexpr int kLargestHeld = 512;

bool IsAtEnd(Cmn_ChunkyVecPath const & iPath) {
  for (int i = 0; i < iPath.mNumSteps; ++i)
    if (iPath.mSteps[i].mChild != iPath.mSteps[i].mInnerP->mNum - 1) return false;
  return true;
}

}  // namespace

Cmn_ChunkyVecDigest::~Cmn_ChunkyVecDigest() = default;
Cmn_ChunkyVecVisitor::~Cmn_ChunkyVecVisitor() = default;
Cmn_ChunkyVecCopier::~Cmn_ChunkyVecCopier() = default;

Cmn_ChunkyVecDigest const * Cmn_ChunkyVecCopier::GetDigest() const {
  return nullptr;
}

Cmn_ChunkyVecPODCopier::Cmn_ChunkyVecPODCopier(int iElementSize,
                                               Cmn_ChunkyVecDigest const * iDigestP)
    : mElementSize(iElementSize), mDigestP(iDigestP) {}
Cmn_ChunkyVecPODCopier::Cmn_ChunkyVecPODCopier(Cmn_ChunkyVecPODCopier const &) = default;
Cmn_ChunkyVecPODCopier &
Cmn_ChunkyVecPODCopier::operator=(Cmn_ChunkyVecPODCopier const &) = default;
Cmn_ChunkyVecPODCopier::~Cmn_ChunkyVecPODCopier() = default;

void Cmn_ChunkyVecPODCopier::Copy(char * oTo, char const * iFrom, int iNum) const {
  std::memmove(oTo, iFrom, static_cast<size_t>(iNum) * static_cast<size_t>(mElementSize));
}

Cmn_ChunkyVecDigest const * Cmn_ChunkyVecPODCopier::GetDigest() const {
  return mDigestP;
}

void Cmn_ChunkyVec_ReportUnknownException() {
  CMN_CHECK(false, "Cmn_ChunkyPODVector::~Cmn_ChunkyPODVector - unknown exception caught.");
}

Cmn_ChunkyVecImpl::Cmn_ChunkyVecImpl(Cmn_ChunkyVecCopier & iCopier, int iElementSize, int)
    : mCopierP(&iCopier),
      mElementSize(iElementSize),
      mSize(0),
      mRootP(nullptr),
      mTailP(nullptr),
      mTailStamp(0),
      mIsUnsettled(false),
      mStamp(1) {}

Cmn_ChunkyVecImpl::~Cmn_ChunkyVecImpl() {
  Destruct();
}

void Cmn_ChunkyVecImpl::Assign(Cmn_ChunkyVecImpl const & iOther) {
  if (this == &iOther) return;
  Cmn_ChunkyVecImpl whole(*mCopierP, mElementSize, 0);
  whole.Insert(whole.End(), iOther.Begin(), iOther.End());
  ReplaceRoot(std::exchange(whole.mRootP, nullptr));
}

void Cmn_ChunkyVecImpl::Destruct() {
  ReplaceRoot(nullptr);
}

Cmn_ChunkyVecImpl::iterator Cmn_ChunkyVecImpl::Insert(iterator const & iPos, int iNum,
                                                      char const * iRecords) {
  int const index = iPos.GetIndex();
  if (iNum <= 0) return iterator(this, index);
  CheckRoomFor(iNum);
  if (iNum == 1 && mElementSize <= kLargestHeld) {
    InsertOne(index, iRecords);
  } else {
    InsertTree(index, Tree(*mCopierP, mElementSize).Build(iRecords, iNum).Release());
  }
  return iterator(this, index);
}

Cmn_ChunkyVecImpl::iterator
Cmn_ChunkyVecImpl::Insert(iterator const & iPos, iterator const & iFirst, iterator const & iLast) {
  int const index = iPos.GetIndex();
  int const num = iLast.Subtract(iFirst);
  if (num <= 0) return iterator(this, index);
  CheckRoomFor(num);
  InsertTree(index, iFirst.mVecP->Copy(*mCopierP, iFirst.GetIndex(), iLast.GetIndex()));
  return iterator(this, index);
}

Cmn_ChunkyVecImpl::iterator Cmn_ChunkyVecImpl::Erase(iterator const & iPos) {
  return Erase(iPos, iterator(this, iPos.GetIndex() + 1));
}

Cmn_ChunkyVecImpl::iterator Cmn_ChunkyVecImpl::Erase(iterator const & iFirst,
                                                     iterator const & iLast) {
  int const first = iFirst.GetIndex();
  int const num = iLast.Subtract(iFirst);
  if (num <= 0) return iterator(this, first);
  Settle();
  int offset;
  Tree const tree(*mCopierP, mElementSize);
  if (num > Tree::Find(mRootP, first, &offset)->mNum - offset) {
    NodeRef front = tree.Slice(mRootP, 0, first);
    NodeRef back = tree.Slice(mRootP, first + num, mSize);
    ReplaceRoot(tree.Concat(std::move(front), std::move(back)).Release());
    return iterator(this, first);
  }
  Touch();
  Cmn_ChunkyVecPath path;
  tree.FindForWriting(mRootP, first, path);
  tree.EraseFromLeaf(*path.mLeafP, path.mOffset, num);
  tree.Tidy(mRootP, path);
  mSize -= num;
  return iterator(this, first);
}

void Cmn_ChunkyVecImpl::Append(char const * iRecord) {
  if (!MayAppendInPlace()) {
    Insert(End(), 1, iRecord);
    return;
  }
  Cmn_ChunkyVecLeaf & tail = static_cast<Cmn_ChunkyVecLeaf &>(*mTailP);
  Tree(*mCopierP, mElementSize).AppendToTail(*mRootP, tail, iRecord, 1);
  ++mSize;
}

int Cmn_ChunkyVecImpl::OpenTail(char ** oFirst) {
  *oFirst = nullptr;
  if (!MayAppendInPlace()) return 0;
  Cmn_ChunkyVecLeaf & tail = static_cast<Cmn_ChunkyVecLeaf &>(*mTailP);
  *oFirst = tail.At(tail.mNum);
  return std::min(tail.mRoom - tail.mNum, INT_MAX - mSize);
}

void Cmn_ChunkyVecImpl::CloseTail(int iNum) {
  if (iNum == 0) return;
  Cmn_ChunkyVecLeaf & tail = static_cast<Cmn_ChunkyVecLeaf &>(*mTailP);
  Tree(*mCopierP, mElementSize).WidenTail(*mRootP, tail, iNum);
  mSize += iNum;
}

// What is longer than all that is there takes the place of it, as a whole.
void Cmn_ChunkyVecImpl::Append(Cmn_ChunkyVecImpl const & iSource, int iFirst, int iLast) {
  int const num = iLast - iFirst;
  bool const mayShare = &iSource != this && iSource.mCopierP->GetDigest() == mCopierP->GetDigest();
  if (num > mSize || !mayShare) {
    Insert(End(), iterator(&iSource, iFirst), iterator(&iSource, iLast));
    return;
  }
  if (num <= 0) return;
  CheckRoomFor(num);
  Settle();
  iSource.Settle();
  AppendShared(iSource, *iSource.mRootP, iFirst, iLast);
}

// Indices within the node.
void Cmn_ChunkyVecImpl::AppendShared(Cmn_ChunkyVecImpl const & iSource, Cmn_ChunkyVecNode & ioNode,
                                     int iFirst, int iLast) {
  int const num = ioNode.mSummary.mNum;
  bool const isWhole = iFirst == 0 && iLast == num && ioNode.mHeight < mRootP->mHeight;
  if (isWhole && !FitsIntoTail(ioNode)) {
    Touch();
    iSource.Touch();
    Tree(*mCopierP, mElementSize).AppendNode(mRootP, ioNode);
    mSize += num;
    return;
  }
  if (ioNode.IsLeaf()) {
    AppendRun(static_cast<Cmn_ChunkyVecLeaf &>(ioNode).At(iFirst), iLast - iFirst);
    return;
  }
  auto const & inner = static_cast<Cmn_ChunkyVecInner &>(ioNode);
  for (int i = inner.ChildAt(iFirst); i < inner.mNum && inner.StartOf(i) < iLast; ++i) {
    int const start = inner.StartOf(i);
    AppendShared(iSource, *inner.mChild[i], std::max(iFirst - start, 0),
                 std::min(iLast, inner.mEnd[i]) - start);
  }
}

bool Cmn_ChunkyVecImpl::FitsIntoTail(Cmn_ChunkyVecNode & iNode) const {
  int offset;
  int const numInTail = FindLeaf(mSize - 1, &offset)->mNum;
  return numInTail + Tree::Find(&iNode, 0, &offset)->mNum <= Cmn_ChunkyVecNode::kLeafRoom;
}

void Cmn_ChunkyVecImpl::AppendRun(char const * iRecords, int iNum) {
  while (iNum > 0) {
    int num = 1;
    if (MayAppendInPlace()) {
      Cmn_ChunkyVecLeaf & tail = static_cast<Cmn_ChunkyVecLeaf &>(*mTailP);
      num = std::min(iNum, tail.mRoom - tail.mNum);
      Tree(*mCopierP, mElementSize).AppendToTail(*mRootP, tail, iRecords, num);
      mSize += num;
    } else {
      Insert(End(), 1, iRecords);
    }
    iRecords += static_cast<ptrdiff_t>(num) * mElementSize;
    iNum -= num;
  }
}

void Cmn_ChunkyVecImpl::Replace(int iIndex, char const * iRecord) {
  Settle();
  alignas(std::max_align_t) char held[kLargestHeld];
  bool const holds = mElementSize <= kLargestHeld;
  if (holds) mCopierP->Copy(held, iRecord, 1);
  Tree const tree(*mCopierP, mElementSize);
  NodeRef const large = holds ? NodeRef() : tree.Build(iRecord, 1);
  Touch();
  Cmn_ChunkyVecPath path;
  tree.FindForWriting(mRootP, iIndex, path);
  tree.ReplaceInLeaf(*path.mLeafP, path.mOffset, holds ? held : large.AsLeaf().mRecords);
  path.Refresh();
}

void Cmn_ChunkyVecImpl::Unshare() {
  Settle();
  Touch();
  if (mRootP) Tree(*mCopierP, mElementSize).Unshare(mRootP);
}

char const * Cmn_ChunkyVecImpl::GetConstPtr(int iIndex) const {
  char const * first;
  return GetSpan(iIndex, &first) > 0 ? first : nullptr;
}

char * Cmn_ChunkyVecImpl::GetPtr(int iIndex) {
  char * first;
  return GetWritableSpan(iIndex, &first) > 0 ? first : nullptr;
}

int Cmn_ChunkyVecImpl::GetSpan(int iIndex, char const ** oFirst) const {
  if (iIndex < 0 || iIndex >= mSize) return 0;
  int offset;
  Cmn_ChunkyVecLeaf * const leafP = FindLeaf(iIndex, &offset);
  *oFirst = leafP->At(offset);
  return leafP->mNum - offset;
}

int Cmn_ChunkyVecImpl::GetSpanBesideKeys(int iIndex, char ** oFirst) {
  if (iIndex < 0 || iIndex >= mSize) return 0;
  Cmn_ChunkyVecPath path;
  UnshareFor(iIndex, path, false);
  *oFirst = path.mLeafP->At(path.mOffset);
  return path.mLeafP->mNum - path.mOffset;
}

int Cmn_ChunkyVecImpl::GetWritableSpan(int iIndex, char ** oFirst) {
  if (iIndex < 0 || iIndex >= mSize) return 0;
  Cmn_ChunkyVecPath path;
  UnshareFor(iIndex, path);
  *oFirst = path.mLeafP->At(path.mOffset);
  return path.mLeafP->mNum - path.mOffset;
}

void Cmn_ChunkyVecImpl::Remember(Cmn_ChunkyVecImpl_Iterator const & iPos, bool iForWriting) const {
  iPos.mChunk = nullptr;
  iPos.mChunkNum = 0;
  if (iPos.mIndex < 0 || iPos.mIndex >= mSize) return;
  Cmn_ChunkyVecLeaf * leafP;
  int offset;
  if (iForWriting) {
    Cmn_ChunkyVecPath path;
    const_cast<Cmn_ChunkyVecImpl *>(this)->UnshareFor(iPos.mIndex, path);
    leafP = path.mLeafP;
    offset = path.mOffset;
  } else {
    leafP = FindLeaf(iPos.mIndex, &offset);
  }
  iPos.mStamp = mStamp.load(std::memory_order_relaxed);
  iPos.mIsWritable = iForWriting;
  iPos.mChunkFirst = iPos.mIndex - offset;
  iPos.mChunkNum = leafP->mNum;
  iPos.mChunk = leafP->mRecords;
}

// The last chunk is known while things are appended.
Cmn_ChunkyVecLeaf * Cmn_ChunkyVecImpl::FindLeaf(int iIndex, int * oOffset) const {
  if (mTailStamp == mStamp.load(std::memory_order_relaxed)) {
    *oOffset = iIndex - (mSize - mTailP->mNum);
    if (*oOffset >= 0) return static_cast<Cmn_ChunkyVecLeaf *>(mTailP);
  }
  return Tree::Find(mRootP, iIndex, oOffset);
}

// Addresses in a chunk that is replaced are void, also if memory runs out further down.
void Cmn_ChunkyVecImpl::UnshareFor(int iIndex, Cmn_ChunkyVecPath & oPath, bool iTouchesKeys) {
  try {
    Tree(*mCopierP, mElementSize).FindForWriting(mRootP, iIndex, oPath);
  } catch (...) {
    Touch();
    throw;
  }
  if (oPath.mHasCloned) Touch();
  if (!iTouchesKeys || !oPath.mLeafP->mDigestP) return;
  oPath.MarkUnsettled();
  mIsUnsettled = true;
}

// Addresses are void before the first node is replaced, even if memory runs out half way. The
// record is held apart, as its chunk may go with the first node that is replaced.
void Cmn_ChunkyVecImpl::InsertOne(int iIndex, char const * iRecord) {
  alignas(std::max_align_t) char held[kLargestHeld];
  mCopierP->Copy(held, iRecord, 1);
  Settle();
  Touch();
  Cmn_ChunkyVecPath path;
  Tree const tree(*mCopierP, mElementSize);
  tree.FindForInsertion(mRootP, iIndex, path);
  tree.InsertIntoLeaf(*path.mLeafP, path.mOffset, held);
  path.Refresh();
  ++mSize;
  if (!IsAtEnd(path)) return;
  mTailP = path.mLeafP;
  mTailStamp = mStamp.load(std::memory_order_relaxed);
}

// Takes over a count on the tree.
void Cmn_ChunkyVecImpl::InsertTree(int iIndex, Cmn_ChunkyVecNode * iRootP) {
  NodeRef middle(iRootP);
  Settle();
  Tree const tree(*mCopierP, mElementSize);
  NodeRef front = tree.Slice(mRootP, 0, iIndex);
  NodeRef back = tree.Slice(mRootP, iIndex, mSize);
  middle = tree.Concat(std::move(front), std::move(middle));
  ReplaceRoot(tree.Concat(std::move(middle), std::move(back)).Release());
}

// A tree of the records [iFirst, iLast), shared if the copier keeps the same keys. Gives a count.
Cmn_ChunkyVecNode * Cmn_ChunkyVecImpl::Copy(Cmn_ChunkyVecCopier const & iCopier, int iFirst,
                                            int iLast) const {
  Settle();
  Tree const tree(iCopier, mElementSize);
  if (iCopier.GetDigest() == mCopierP->GetDigest()) {
    Touch();
    return tree.Slice(mRootP, iFirst, iLast).Release();
  }
  NodeRef result;
  while (iFirst < iLast) {
    char const * records = 0;
    int const num = std::min(GetSpan(iFirst, &records), iLast - iFirst);
    result = tree.Concat(std::move(result), tree.Build(records, num));
    iFirst += num;
  }
  return result.Release();
}

void Cmn_ChunkyVecImpl::ReplaceRoot(Cmn_ChunkyVecNode * iRootP) {
  Touch();
  NodeRef const old(std::exchange(mRootP, iRootP));
  mSize = iRootP ? iRootP->mSummary.mNum : 0;
  mIsUnsettled = false;
}

void Cmn_ChunkyVecImpl::CheckRoomFor(int iNum) const {
  if (iNum > INT_MAX - mSize) throw std::bad_alloc();
}

bool Cmn_ChunkyVecImpl::MayAppendInPlace() const {
  if (mTailStamp != mStamp.load(std::memory_order_relaxed)) return false;
  return mTailP->mNum < static_cast<Cmn_ChunkyVecLeaf *>(mTailP)->mRoom && !mIsUnsettled;
}
