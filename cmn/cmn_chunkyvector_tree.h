// The tree under the chunked sequence. Leaves hold records and their keys, inner nodes hold
// children and, side by side, what is known of each. All leaves lie at one depth. A node that more
// than one owner counts is never written.
#pragma once

#include <atomic>
#include <utility>

#include "cmn/cmn_chunkyvector.h"

struct Cmn_ChunkyVecNode {
  static constexpr int kLeafRoom = 64;  // records in a leaf
  static constexpr int kWidth = 128;    // children of an inner node
  static constexpr int kMaxHeight = 8;  // enough for 2^31 records in half-filled nodes

  std::atomic<int> mRefs{1};
  short mHeight = 0;              // 0: a leaf
  bool mIsUnsettled = false;      // keys lag behind records here or below
  int mNum = 0;                   // records or children
  Cmn_ChunkyVecSummary mSummary;  // mNum always; the rest in a sequence with a digest

  bool IsLeaf() const { return mHeight == 0; }
  bool IsShared() const { return mRefs.load(std::memory_order_acquire) != 1; }
  void AddRef() { mRefs.fetch_add(1, std::memory_order_relaxed); }
};

struct Cmn_ChunkyVecLeaf : Cmn_ChunkyVecNode {
  int mRoom;  // records that fit
  int mElementSize;
  Cmn_ChunkyVecDigest const * mDigestP;  // null: the three arrays of keys are too
  long long * mOrder;
  long long * mExtent;
  unsigned char * mMarks;
  char * mRecords;

  char * At(int iOffset) { return mRecords + static_cast<ptrdiff_t>(iOffset) * mElementSize; }
};

struct Cmn_ChunkyVecInner : Cmn_ChunkyVecNode {
  Cmn_ChunkyVecNode * mChild[kWidth];  // one count each
  int mEnd[kWidth];                    // records in the children up to and with this one
  // The summaries of the children.
  bool mAscending[kWidth];
  unsigned char mMarks[kWidth];
  long long mFirst[kWidth];
  long long mLast[kWidth];
  long long mLeast[kWidth];
  long long mGreatest[kWidth];

  int StartOf(int iChild) const { return iChild == 0 ? 0 : mEnd[iChild - 1]; }
  /// The child that holds the record; the child behind one of whose records a new one goes.
  int ChildAt(int iIndex) const;
  int ChildForInsertion(int iIndex) const;
  Cmn_ChunkyVecSummary SummaryOf(int iChild) const;
  /// All of a summary but the number of records.
  void SetKeys(int iChild, Cmn_ChunkyVecSummary const & iSummary);
  /// After records were appended to the last child.
  void Widen(Cmn_ChunkyVecSummary const & iAppended);
  /// After a change of a child's contents: the whole of what is known here. Looks at the other
  /// children only if what the child has lost may have been an extreme of all.
  void Update(int iChild);
  /// The same, but for its own summary, which is left to `Fold`, as below.
  void Refresh(int iChild);
  /// Children of another node, [iFirst, iLast), before the one at `iAt`. Their counts are the
  /// caller's affair. Needs: room.
  void Take(int iAt, Cmn_ChunkyVecInner const & iSource, int iFirst, int iLast);
  /// Takes over a count. Needs: fewer than kWidth children.
  void Insert(int iAt, Cmn_ChunkyVecNode * iChildP, Cmn_ChunkyVecSummary const & iSummary);
  /// Gives the count back.
  Cmn_ChunkyVecNode * Remove(int iAt);
  /// Its own summary from those of the children.
  void Fold();

private:
  /// Moves the children from one place on, and what is known of them.
  void MoveChildren(int iTo, int iFrom);
};

inline Cmn_ChunkyVecSummary Cmn_ChunkyVecInner::SummaryOf(int iChild) const {
  return {mEnd[iChild] - StartOf(iChild),
          mAscending[iChild],
          mMarks[iChild],
          mFirst[iChild],
          mLast[iChild],
          mLeast[iChild],
          mGreatest[iChild]};
}

inline void Cmn_ChunkyVecInner::SetKeys(int iChild, Cmn_ChunkyVecSummary const & iSummary) {
  mAscending[iChild] = iSummary.mAscending;
  mMarks[iChild] = iSummary.mMarks;
  mFirst[iChild] = iSummary.mFirst;
  mLast[iChild] = iSummary.mLast;
  mLeast[iChild] = iSummary.mLeast;
  mGreatest[iChild] = iSummary.mGreatest;
}

/// One count on a node, given up unless released.
class Cmn_ChunkyVecNodeRef {
public:
  Cmn_ChunkyVecNodeRef() = default;
  /// Takes over a count.
  explicit Cmn_ChunkyVecNodeRef(Cmn_ChunkyVecNode * iNodeP) : mNodeP(iNodeP) {}
  Cmn_ChunkyVecNodeRef(Cmn_ChunkyVecNodeRef && ioOther) noexcept : mNodeP(ioOther.Release()) {}
  Cmn_ChunkyVecNodeRef & operator=(Cmn_ChunkyVecNodeRef && ioOther) noexcept {
    Reset(ioOther.Release());
    return *this;
  }
  Cmn_ChunkyVecNodeRef(Cmn_ChunkyVecNodeRef const &) = delete;
  ~Cmn_ChunkyVecNodeRef() { Reset(nullptr); }

  /// Adds a count.
  static Cmn_ChunkyVecNodeRef Share(Cmn_ChunkyVecNode * iNodeP) {
    if (iNodeP) iNodeP->AddRef();
    return Cmn_ChunkyVecNodeRef(iNodeP);
  }
  void Reset(Cmn_ChunkyVecNode * iNodeP);
  Cmn_ChunkyVecNode * Release() { return std::exchange(mNodeP, nullptr); }
  Cmn_ChunkyVecNode * Get() const { return mNodeP; }
  Cmn_ChunkyVecNode * operator->() const { return mNodeP; }
  explicit operator bool() const { return mNodeP != nullptr; }
  Cmn_ChunkyVecLeaf & AsLeaf() const { return static_cast<Cmn_ChunkyVecLeaf &>(*mNodeP); }
  Cmn_ChunkyVecInner & AsInner() const { return static_cast<Cmn_ChunkyVecInner &>(*mNodeP); }

private:
  Cmn_ChunkyVecNode * mNodeP = nullptr;
};

/// The way from a root to one leaf, every node on it unshared.
struct Cmn_ChunkyVecPath {
  struct Step {
    Cmn_ChunkyVecInner * mInnerP;
    int mChild;
  };
  Step mSteps[Cmn_ChunkyVecNode::kMaxHeight];
  int mNumSteps = 0;
  Cmn_ChunkyVecLeaf * mLeafP = nullptr;
  int mOffset = 0;          // of the index asked for, in the leaf
  bool mHasCloned = false;  // a shared node was replaced

  /// Brings the summaries up the path after a change in the leaf.
  void Refresh();
  /// Says along the path that keys lag behind.
  void MarkUnsettled();
};

/// What is done to trees of one kind of records. Roots passed as references are replaced; all
/// operations give what holds the same records if memory runs out.
class Cmn_ChunkyVecTree {
public:
  typedef Cmn_ChunkyVecNode Node;
  typedef Cmn_ChunkyVecLeaf Leaf;
  typedef Cmn_ChunkyVecInner Inner;
  typedef Cmn_ChunkyVecNodeRef NodeRef;
  typedef Cmn_ChunkyVecPath Path;

  Cmn_ChunkyVecTree(Cmn_ChunkyVecCopier const & iCopier, int iElementSize)
      : mCopier(iCopier), mElementSize(iElementSize) {}

  /// The leaf with the record, and the record's place in it.
  static Leaf * Find(Node * iRootP, int iIndex, int * oOffset);
  /// The same for writing.
  void FindForWriting(Node *& ioRootP, int iIndex, Path & oPath) const;
  /// A place for one more record before `iIndex`, in a leaf that has room.
  void FindForInsertion(Node *& ioRootP, int iIndex, Path & oPath) const;

  /// Copies every node that is shared.
  void Unshare(Node *& ioNodeP) const;

  /// Needs: room in the last leaf and an unshared path to it.
  void AppendToTail(Node & ioRoot, Leaf & ioTail, char const * iRecords, int iNum) const;
  /// Takes up records that were written behind the last one. Needs: an unshared path.
  void WidenTail(Node & ioRoot, Leaf & ioTail, int iNum) const;
  /// Needs: a higher tree. A count is added to the node, which goes behind all records.
  void AppendNode(Node *& ioRootP, Node & ioNode) const;
  void InsertIntoLeaf(Leaf & ioLeaf, int iOffset, char const * iRecord) const;
  void EraseFromLeaf(Leaf & ioLeaf, int iOffset, int iNum) const;
  void ReplaceInLeaf(Leaf & ioLeaf, int iOffset, char const * iRecord) const;
  /// After erasing: drops an empty leaf, joins a sparse one with a neighbour, lowers the tree.
  void Tidy(Node *& ioRootP, Path & ioPath) const;

  /// A tree of copies. Null for no records.
  NodeRef Build(char const * iRecords, int iNum) const;
  /// The records [iFirst, iLast) of a tree, sharing its nodes.
  NodeRef Slice(Node * iNodeP, int iFirst, int iLast) const;
  /// One tree of two, either of which may be null.
  NodeRef Concat(NodeRef iFront, NodeRef iBack) const;

  static void Settle(Node & ioNode);
  static Cmn_ChunkyVecSummary Summarise(Node & iNode, int iFirst, int iLast);

private:
  typedef std::pair<NodeRef, NodeRef> NodePair;

  NodeRef NewLeaf(int iRoom) const;
  static NodeRef NewInner(int iHeight);
  NodeRef Clone(Node & iNode) const;
  NodeRef CloneLeaf(Leaf & iLeaf, int iFirst, int iLast, int iRoom) const;
  bool MakeWritable(Node *& ioNodeP) const;
  NodeRef Writable(NodeRef iNode) const;
  static int Capacity(Node const & iNode);
  static bool IsFull(Node const & iNode);
  bool Enlarge(Node *& ioNodeP) const;
  void MakeRoomInRoot(Node *& ioRootP) const;
  int ChildWithRoom(Inner & ioParent, int iChild, int iIndex, bool iAtEnd) const;
  NodeRef SplitOff(Node & ioNode, int iFirst) const;
  void AppendToLeaf(Leaf & ioLeaf, Leaf & iSource, int iFirst, int iLast) const;
  void AbsorbNeighbour(Inner & ioParent, int iChild) const;
  void Absorb(Node & ioTarget, Node & iSource, bool iAtFront) const;
  NodePair Join(NodeRef iFront, NodeRef iBack) const;
  NodePair JoinIntoFront(NodeRef iFront, NodeRef iBack) const;
  NodePair JoinIntoBack(NodeRef iFront, NodeRef iBack) const;
  static void AppendChild(Inner & ioInner, NodeRef iChild);
  static void ShareChildren(Inner & ioInner, int iAt, Inner const & iSource, int iFirst, int iLast);
  static NodeRef Parent(NodeRef iFront, NodeRef iBack);

  Cmn_ChunkyVecCopier const & mCopier;
  int mElementSize;
};
