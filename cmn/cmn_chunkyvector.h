// A random-access sequence of plain records in chunks of some hundred: a counted tree of wide nodes
// over reference-counted leaves. Copying shares the tree, writing unshares one path of it.
#pragma once

#include <atomic>
#include <compare>
#include <cstddef>
#include <iterator>
#include <type_traits>

#include "foundation/vrad_export.h"

class Cmn_ChunkyVecImpl;
struct Cmn_ChunkyVecLeaf;
struct Cmn_ChunkyVecNode;
struct Cmn_ChunkyVecPath;

/// What is known of a run of records without looking at them, if their sequence has a digest.
struct Cmn_ChunkyVecSummary {
  int mNum = 0;              // records; 0 leaves the rest without meaning
  bool mAscending = true;    // no order key is less than the one before it
  unsigned char mMarks = 0;  // the marks of all, or-ed
  long long mFirst = 0;      // order key of the first record
  long long mLast = 0;       // order key of the last record
  long long mLeast = 0;      // least extent key
  long long mGreatest = 0;   // greatest extent key

  /// Adds the run that follows this one.
  void Append(Cmn_ChunkyVecSummary const & iNext) {
    if (iNext.mNum == 0) return;
    if (mNum == 0) {
      *this = iNext;
      return;
    }
    mNum += iNext.mNum;
    mAscending = mAscending && iNext.mAscending && mLast <= iNext.mFirst;
    mMarks |= iNext.mMarks;
    mLast = iNext.mLast;
    mLeast = iNext.mLeast < mLeast ? iNext.mLeast : mLeast;
    mGreatest = iNext.mGreatest > mGreatest ? iNext.mGreatest : mGreatest;
  }
};

/// The keys of neighbouring records of one chunk, side by side.
struct Cmn_ChunkyVecKeys {
  int mFirstIndex;  // of the first of them in the sequence
  int mNum;
  long long const * mOrder;
  long long const * mExtent;
  unsigned char const * mMarks;
};

/// Draws the keys out of records that a sequence keeps beside them, so that searches read keys and
/// not records: an order key (what the sequence is sorted by), an extent key (how far a record
/// reaches) and eight marks. What the keys mean is the affair of the class that derives; the
/// sequence compares them, folds them into summaries, and keeps both up to date.
/// Lives: as long as any sequence that uses it; best a static object.
/// Thread: any; `Extract` must depend on the records alone.
class VRAD_EXPORT Cmn_ChunkyVecDigest {
public:
  virtual ~Cmn_ChunkyVecDigest();
  virtual void Extract(char const * iRecords, int iNum, long long * oOrder, long long * oExtent,
                       unsigned char * oMarks) const = 0;
};

/// How records are copied. Two sequences may share chunks if they have the same digest.
class VRAD_EXPORT Cmn_ChunkyVecCopier {
public:
  virtual ~Cmn_ChunkyVecCopier();
  /// Copies `iNum` records. The two places may overlap.
  virtual void Copy(char * oTo, char const * iFrom, int iNum) const = 0;
  /// Null: nothing is kept beside the records.
  virtual Cmn_ChunkyVecDigest const * GetDigest() const;
};

/// The copier of records whose bytes are all there is to them.
class VRAD_EXPORT Cmn_ChunkyVecPODCopier : public Cmn_ChunkyVecCopier {
public:
  explicit Cmn_ChunkyVecPODCopier(int iElementSize, Cmn_ChunkyVecDigest const * iDigestP = nullptr);
  Cmn_ChunkyVecPODCopier(Cmn_ChunkyVecPODCopier const &);
  Cmn_ChunkyVecPODCopier & operator=(Cmn_ChunkyVecPODCopier const &);
  ~Cmn_ChunkyVecPODCopier() override;
  void Copy(char * oTo, char const * iFrom, int iNum) const override;
  Cmn_ChunkyVecDigest const * GetDigest() const override;

private:
  int mElementSize;
  Cmn_ChunkyVecDigest const * mDigestP;  // not owned
};

/// Walks the keys of a sequence, chunk by chunk, leaving out whole parts of it.
class VRAD_EXPORT Cmn_ChunkyVecVisitor {
public:
  virtual ~Cmn_ChunkyVecVisitor();
  /// False: nothing of that part is of interest. A part may reach beyond the range asked for.
  virtual bool Wants(Cmn_ChunkyVecSummary const & iPart) = 0;
  /// False: the walk is over.
  virtual bool Visit(Cmn_ChunkyVecKeys const & iKeys) = 0;
};

/// A position, by index. Any number of edits leave it at its index; an index equal to the size is
/// the end. It remembers its chunk, so that neighbours cost an addition.
/// Thread: as its sequence. Must not outlive it.
class VRAD_EXPORT Cmn_ChunkyVecImpl_Iterator {
public:
  Cmn_ChunkyVecImpl_Iterator() = default;
  Cmn_ChunkyVecImpl_Iterator(Cmn_ChunkyVecImpl const * iVecP, int iIndex)
      : mVecP(iVecP), mIndex(iIndex) {}

  void Add(int iNum) { mIndex += iNum; }
  int Subtract(Cmn_ChunkyVecImpl_Iterator const & iOther) const { return mIndex - iOther.mIndex; }
  int GetIndex() const { return mIndex; }

  /// The record, for writing; unshares its chunk. Null at the end.
  /// Lives: until the next insertion, erasure or copy of the sequence. With a digest, until the
  /// next search too, which takes up what has been written.
  char * GetPtr() const;
  /// The record, for reading; never unshares. Null at the end. Lives: until the next write.
  char const * GetConstPtr() const;

private:
  friend class Cmn_ChunkyVecImpl;
  template <class T>
  friend class Cmn_ChunkyVectorConstIterator;
  template <class T>
  friend class Cmn_ChunkyVectorIterator;

  bool IsRemembered() const;
  // For callers that know the size of the records.
  char const * ConstPtr(ptrdiff_t iElementSize) const;
  char * Ptr(ptrdiff_t iElementSize) const;

  Cmn_ChunkyVecImpl const * mVecP = nullptr;
  int mIndex = 0;
  // The chunk last used: valid while mStamp is the sequence's.
  mutable unsigned long long mStamp = 0;
  mutable bool mIsWritable = false;
  mutable int mChunkFirst = 0;  // index of its first record
  mutable int mChunkNum = 0;
  mutable char * mChunk = nullptr;
};

/// The untyped sequence. n records, C in a chunk.
/// Fails: `std::bad_alloc`, the sequence then being as before. Sources may lie in the sequence.
/// Thread: one at a time. Sequences that share chunks may live on different threads.
class VRAD_EXPORT Cmn_ChunkyVecImpl {
public:
  typedef Cmn_ChunkyVecImpl_Iterator iterator;

  /// Empty. `iCopier` must outlive the sequence. The last argument has no meaning; pass 0.
  Cmn_ChunkyVecImpl(Cmn_ChunkyVecCopier & iCopier, int iElementSize, int iReserved);
  ~Cmn_ChunkyVecImpl();
  Cmn_ChunkyVecImpl(Cmn_ChunkyVecImpl const &) = delete;
  Cmn_ChunkyVecImpl & operator=(Cmn_ChunkyVecImpl const &) = delete;

  /// Becomes equal to `iOther`: O(1), by sharing, when both have the same digest.
  void Assign(Cmn_ChunkyVecImpl const & iOther);
  /// Lets go of all records. The sequence is then empty and may be used again.
  void Destruct();
  /// Has no effect: chunks are made as they are needed.
  void Reserve(int) {}

  int Size() const { return mSize; }
  iterator Begin() const { return iterator(this, 0); }
  iterator End() const { return iterator(this, mSize); }

  /// `iNum` records before `iPos`. Gives the first of them. O(log n + C + iNum).
  iterator Insert(iterator const & iPos, int iNum, char const * iRecords);
  /// The records [iFirst, iLast) of any sequence of such records, before `iPos`. Gives the first of
  /// them. Whole chunks are shared: O(log n + C).
  iterator Insert(iterator const & iPos, iterator const & iFirst, iterator const & iLast);
  /// Gives the position behind the gap. O(log n + C).
  iterator Erase(iterator const & iPos);
  iterator Erase(iterator const & iFirst, iterator const & iLast);
  /// One record at the end. Amortised O(1).
  void Append(char const * iRecord);
  /// Room behind the last record, for records that are built where they belong: how many fit, which
  /// may be none, and where. They belong to the sequence once `CloseTail` says how many were
  /// written; nothing else may be done to it before. Amortised O(1) for each.
  int OpenTail(char ** oFirst);
  void CloseTail(int iNum);
  /// The records [iFirst, iLast) of any sequence of such records at the end. Whole chunks are
  /// shared but for those that fit into the last one: O(log n + C). Fails: `std::bad_alloc`; some
  /// of them may stand at the end.
  void Append(Cmn_ChunkyVecImpl const & iSource, int iFirst, int iLast);
  /// Puts another record in the place of one. O(log n + C).
  void Replace(int iIndex, char const * iRecord);
  /// Copies the chunks that are shared, so that no write needs memory until the next copy. O(n)
  void Unshare();

  /// The record for reading, for writing. Lives: as with the iterator.
  char const * GetConstPtr(int iIndex) const;
  char * GetPtr(int iIndex);
  /// How many records lie side by side from `iIndex` on, and where.
  int GetSpan(int iIndex, char const ** oFirst) const;
  int GetWritableSpan(int iIndex, char ** oFirst);
  /// The same for writing what the keys do not depend on: none lags behind.
  int GetSpanBesideKeys(int iIndex, char ** oFirst);
  /// Changes with whatever makes addresses void.
  unsigned long long GetStamp() const { return mStamp.load(std::memory_order_relaxed); }

  // With a digest only. iFirst and iLast are indices, [iFirst, iLast).

  /// Takes up what was written through addresses. Searches and copying do so by themselves; a bulk
  /// edit that ends with it keeps them fast.
  void Settle() const;
  Cmn_ChunkyVecSummary const & Summarise() const;               // of all: O(1)
  Cmn_ChunkyVecSummary Summarise(int iFirst, int iLast) const;  // O(log n + C)
  /// Needs: Summarise().mAscending. The first record whose order key is not less than `iKey`,
  /// greater than `iKey`. O(log n).
  int LowerBound(long long iKey) const;
  int UpperBound(long long iKey) const;
  /// Needs: Summarise().mAscending. How many records with order keys less than `iKey` lie side by
  /// side from `iIndex` on, where, and whether a record that is not less follows.
  int GetSpanBefore(int iIndex, long long iKey, char const ** oFirst, bool * oIsLast) const;
  /// Needs the same. From the lower bound on: how many records lie side by side, where, and the
  /// index of the first. In front of the lower bound: the record, null if there is none. O(log n).
  int FindSpanFrom(long long iKey, char const ** oFirst, int * oIndex) const;
  char const * FindLastBefore(long long iKey) const;
  /// Asks memory for what `FindLastBefore` is going to read, so that searches in many sequences
  /// wait for it together: first for the top, some time later for the chunk.
  void FetchTop() const;
  void FetchChunkBefore(long long iKey) const;
  /// The first record in the range whose extent key is greater than `iLimit`; else `iLast`.
  int FindExtentAbove(int iFirst, int iLast, long long iLimit) const;
  /// Walks the parts of the range from the front, from the back. Within a chunk keys come from the
  /// front in both.
  void Walk(int iFirst, int iLast, Cmn_ChunkyVecVisitor & ioVisitor) const;
  void WalkBackward(int iFirst, int iLast, Cmn_ChunkyVecVisitor & ioVisitor) const;

private:
  friend class Cmn_ChunkyVecImpl_Iterator;

  void Remember(Cmn_ChunkyVecImpl_Iterator const & iPos, bool iForWriting) const;
  Cmn_ChunkyVecLeaf * FindLeaf(int iIndex, int * oOffset) const;
  void UnshareFor(int iIndex, Cmn_ChunkyVecPath & oPath, bool iTouchesKeys = true);
  void InsertOne(int iIndex, char const * iRecord);
  void AppendRun(char const * iRecords, int iNum);
  void AppendShared(Cmn_ChunkyVecImpl const & iSource, Cmn_ChunkyVecNode & ioNode, int iFirst,
                    int iLast);
  bool FitsIntoTail(Cmn_ChunkyVecNode & iNode) const;
  void InsertTree(int iIndex, Cmn_ChunkyVecNode * iRootP);
  Cmn_ChunkyVecNode * Copy(Cmn_ChunkyVecCopier const & iCopier, int iFirst, int iLast) const;
  void ReplaceRoot(Cmn_ChunkyVecNode * iRootP);
  void CheckRoomFor(int iNum) const;
  bool MayAppendInPlace() const;
  void Touch() const {
    mStamp.store(mStamp.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
  }

  Cmn_ChunkyVecCopier * mCopierP;  // not owned
  int mElementSize;
  int mSize;
  Cmn_ChunkyVecNode * mRootP;  // one count owned; null in an empty sequence
  Cmn_ChunkyVecNode * mTailP;  // the last chunk, its path unshared, while mTailStamp is mStamp
  unsigned long long mTailStamp;
  mutable bool mIsUnsettled;  // keys of some chunk lag behind its records
  // Changes with all that voids addresses of chunks or the right to write there. Starts at 1, so
  // that a new iterator remembers nothing. Atomic, since one snapshot may be copied on any thread.
  mutable std::atomic<unsigned long long> mStamp;
};

inline bool Cmn_ChunkyVecImpl_Iterator::IsRemembered() const {
  unsigned const offset = static_cast<unsigned>(mIndex) - static_cast<unsigned>(mChunkFirst);
  return mStamp == mVecP->mStamp.load(std::memory_order_relaxed) &&
         offset < static_cast<unsigned>(mChunkNum);
}

inline char const * Cmn_ChunkyVecImpl_Iterator::ConstPtr(ptrdiff_t iElementSize) const {
  if (!IsRemembered()) {
    mVecP->Remember(*this, false);
    if (!mChunk) return nullptr;
  }
  return mChunk + (mIndex - mChunkFirst) * iElementSize;
}

inline char * Cmn_ChunkyVecImpl_Iterator::Ptr(ptrdiff_t iElementSize) const {
  if (!mIsWritable || !IsRemembered()) {
    mVecP->Remember(*this, true);
    if (!mChunk) return nullptr;
  }
  return mChunk + (mIndex - mChunkFirst) * iElementSize;
}

inline char const * Cmn_ChunkyVecImpl_Iterator::GetConstPtr() const {
  return ConstPtr(mVecP->mElementSize);
}

inline char * Cmn_ChunkyVecImpl_Iterator::GetPtr() const {
  return Ptr(mVecP->mElementSize);
}

/// What the two typed iterators share. TSelf is the iterator, TValue the record as it is handed
/// out.
template <class TSelf, class TValue>
class Cmn_ChunkyVectorIteratorBase {
public:
  typedef std::random_access_iterator_tag iterator_category;
  typedef std::remove_const_t<TValue> value_type;
  typedef ptrdiff_t difference_type;
  typedef TValue * pointer;
  typedef TValue & reference;

  Cmn_ChunkyVectorIteratorBase() = default;
  explicit Cmn_ChunkyVectorIteratorBase(Cmn_ChunkyVecImpl_Iterator const & iPos) : mPos(iPos) {}

  TValue & operator*() const { return *Self().Address(); }
  TValue * operator->() const { return Self().Address(); }
  TValue & operator[](ptrdiff_t iNum) const { return *(Self() + iNum); }

  TSelf & operator++() { return *this += 1; }
  TSelf & operator--() { return *this += -1; }
  TSelf operator++(int) {
    TSelf const old = Self();
    ++*this;
    return old;
  }
  TSelf operator--(int) {
    TSelf const old = Self();
    --*this;
    return old;
  }
  TSelf & operator+=(ptrdiff_t iNum) {
    mPos.Add(static_cast<int>(iNum));
    return static_cast<TSelf &>(*this);
  }
  TSelf & operator-=(ptrdiff_t iNum) { return *this += -iNum; }

  friend TSelf operator+(TSelf iPos, ptrdiff_t iNum) { return iPos += iNum; }
  friend TSelf operator+(ptrdiff_t iNum, TSelf iPos) { return iPos += iNum; }
  friend TSelf operator-(TSelf iPos, ptrdiff_t iNum) { return iPos -= iNum; }
  friend ptrdiff_t operator-(TSelf const & iA, TSelf const & iB) {
    return iA.mPos.Subtract(iB.mPos);
  }
  friend bool operator==(TSelf const & iA, TSelf const & iB) { return iA - iB == 0; }
  friend auto operator<=>(TSelf const & iA, TSelf const & iB) {
    return iA.GetIndex() <=> iB.GetIndex();
  }

  int GetIndex() const { return mPos.GetIndex(); }
  Cmn_ChunkyVecImpl_Iterator const & GetPosition() const { return mPos; }

protected:
  Cmn_ChunkyVecImpl_Iterator mPos;

private:
  TSelf const & Self() const { return static_cast<TSelf const &>(*this); }
};

/// Random access by index, for reading. As `Cmn_ChunkyVecImpl_Iterator`.
template <class T>
class Cmn_ChunkyVectorConstIterator
    : public Cmn_ChunkyVectorIteratorBase<Cmn_ChunkyVectorConstIterator<T>, T const> {
  typedef Cmn_ChunkyVectorIteratorBase<Cmn_ChunkyVectorConstIterator<T>, T const> Base;

public:
  Cmn_ChunkyVectorConstIterator() = default;
  explicit Cmn_ChunkyVectorConstIterator(Cmn_ChunkyVecImpl_Iterator const & iPos) : Base(iPos) {}
  T const * Address() const { return reinterpret_cast<T const *>(this->mPos.ConstPtr(sizeof(T))); }
};

/// Random access by index, for writing: reading through it unshares the chunk too.
/// As `Cmn_ChunkyVecImpl_Iterator`.
template <class T>
class Cmn_ChunkyVectorIterator
    : public Cmn_ChunkyVectorIteratorBase<Cmn_ChunkyVectorIterator<T>, T> {
  typedef Cmn_ChunkyVectorIteratorBase<Cmn_ChunkyVectorIterator<T>, T> Base;

public:
  Cmn_ChunkyVectorIterator() = default;
  explicit Cmn_ChunkyVectorIterator(Cmn_ChunkyVecImpl_Iterator const & iPos) : Base(iPos) {}
  operator Cmn_ChunkyVectorConstIterator<T>() const {
    return Cmn_ChunkyVectorConstIterator<T>(this->mPos);
  }
  T * Address() const { return reinterpret_cast<T *>(this->mPos.Ptr(sizeof(T))); }
  /// The record for reading: does not unshare.
  T const & Read() const { return *reinterpret_cast<T const *>(this->mPos.ConstPtr(sizeof(T))); }
};

/// The typed face of a sequence. Non-const access is for writing and unshares; read through a const
/// reference or `ReadAt`. Costs and failures as `Cmn_ChunkyVecImpl`.
template <class T>
class Cmn_ChunkyVectorBase {
public:
  typedef T value_type;
  typedef T & reference;
  typedef T const & const_reference;
  typedef size_t size_type;
  typedef ptrdiff_t difference_type;
  typedef Cmn_ChunkyVectorIterator<T> iterator;
  typedef Cmn_ChunkyVectorConstIterator<T> const_iterator;

  Cmn_ChunkyVectorBase(Cmn_ChunkyVectorBase const &) = delete;
  Cmn_ChunkyVectorBase & operator=(Cmn_ChunkyVectorBase const &) = delete;

  int Size() const { return mImpl.Size(); }
  iterator Begin() { return iterator(mImpl.Begin()); }
  iterator End() { return iterator(mImpl.End()); }
  const_iterator Begin() const { return const_iterator(mImpl.Begin()); }
  const_iterator End() const { return const_iterator(mImpl.End()); }
  /// The position of an index, for writing, for reading.
  iterator At(int iIndex) { return iterator(Position(iIndex)); }
  const_iterator At(int iIndex) const { return const_iterator(Position(iIndex)); }
  T & operator[](int iIndex) { return *reinterpret_cast<T *>(mImpl.GetPtr(iIndex)); }
  T const & operator[](int iIndex) const { return ReadAt(iIndex); }
  T const & ReadAt(int iIndex) const {
    return *reinterpret_cast<T const *>(mImpl.GetConstPtr(iIndex));
  }

  void PushBack(T const & iRecord) { mImpl.Append(Bytes(&iRecord)); }
  /// Before `iPos`. Gives the first record inserted.
  iterator Insert(const_iterator iPos, T const & iRecord) { return Insert(iPos, 1, &iRecord); }
  iterator Insert(const_iterator iPos, int iNum, T const * iRecords) {
    return iterator(mImpl.Insert(iPos.GetPosition(), iNum, Bytes(iRecords)));
  }
  iterator Insert(const_iterator iPos, const_iterator iFirst, const_iterator iLast) {
    return iterator(mImpl.Insert(iPos.GetPosition(), iFirst.GetPosition(), iLast.GetPosition()));
  }
  /// Gives the position behind the gap.
  iterator Erase(const_iterator iPos) { return iterator(mImpl.Erase(iPos.GetPosition())); }
  iterator Erase(const_iterator iFirst, const_iterator iLast) {
    return iterator(mImpl.Erase(iFirst.GetPosition(), iLast.GetPosition()));
  }
  /// As in the untyped sequence.
  int OpenTail(T ** oFirst) {
    char * first;
    int const num = mImpl.OpenTail(&first);
    *oFirst = reinterpret_cast<T *>(first);
    return num;
  }
  void CloseTail(int iNum) { mImpl.CloseTail(iNum); }
  /// Puts the records [iFirst, iLast) of any sequence of such records at the end. If that fails,
  /// some of them may stand there.
  void Append(Cmn_ChunkyVectorBase const & iSource, int iFirst, int iLast) {
    mImpl.Append(iSource.mImpl, iFirst, iLast);
  }
  void Replace(int iIndex, T const & iRecord) { mImpl.Replace(iIndex, Bytes(&iRecord)); }
  void Clear() { mImpl.Destruct(); }
  void Reserve(size_t) {}

  size_t size() const { return static_cast<size_t>(Size()); }
  bool empty() const { return Size() == 0; }
  T & front() { return (*this)[0]; }
  T const & front() const { return ReadAt(0); }
  T & back() { return (*this)[Size() - 1]; }
  T const & back() const { return ReadAt(Size() - 1); }
  iterator begin() { return Begin(); }
  iterator end() { return End(); }
  const_iterator begin() const { return Begin(); }
  const_iterator end() const { return End(); }
  void push_back(T const & iRecord) { PushBack(iRecord); }
  iterator insert(const_iterator iPos, T const & iRecord) { return Insert(iPos, iRecord); }
  iterator insert(const_iterator iPos, const_iterator iFirst, const_iterator iLast) {
    return Insert(iPos, iFirst, iLast);
  }
  iterator erase(const_iterator iPos) { return Erase(iPos); }
  iterator erase(const_iterator iFirst, const_iterator iLast) { return Erase(iFirst, iLast); }
  void reserve(size_t) {}
  void clear() { Clear(); }

  /// The records side by side from `iIndex` on, and how many they are.
  int GetSpan(int iIndex, T const ** oFirst) const {
    char const * first;
    int const num = mImpl.GetSpan(iIndex, &first);
    *oFirst = reinterpret_cast<T const *>(first);
    return num;
  }
  int GetWritableSpan(int iIndex, T ** oFirst) {
    char * first;
    int const num = mImpl.GetWritableSpan(iIndex, &first);
    *oFirst = reinterpret_cast<T *>(first);
    return num;
  }
  /// Makes every record writable without a copy, so that writing cannot fail any more.
  void Unshare() { mImpl.Unshare(); }
  int GetSpanBesideKeys(int iIndex, T ** oFirst) {
    char * first;
    int const num = mImpl.GetSpanBesideKeys(iIndex, &first);
    *oFirst = reinterpret_cast<T *>(first);
    return num;
  }
  /// The untyped sequence, for searches over its keys.
  Cmn_ChunkyVecImpl const & GetImpl() const { return mImpl; }
  void Settle() const { mImpl.Settle(); }

protected:
  explicit Cmn_ChunkyVectorBase(Cmn_ChunkyVecCopier & iCopier)
      : mImpl(iCopier, static_cast<int>(sizeof(T)), 0) {}
  ~Cmn_ChunkyVectorBase() = default;

  Cmn_ChunkyVecImpl mImpl;

private:
  static char const * Bytes(T const * iRecords) { return reinterpret_cast<char const *>(iRecords); }
  Cmn_ChunkyVecImpl_Iterator Position(int iIndex) const { return {&mImpl, iIndex}; }
};

/// Reports an exception that a destructor has met.
VRAD_EXPORT void Cmn_ChunkyVec_ReportUnknownException();

/// Runs the body of a destructor; what it throws is reported, not passed on.
template <class TBody>
void Cmn_ChunkyVec_Guard(TBody const & iBody) noexcept {
  try {
    iBody();
  } catch (...) {
    Cmn_ChunkyVec_ReportUnknownException();
  }
}

/// A sequence of records that are copied byte by byte and never destructed: T need not be trivially
/// copyable, but every value put in must bear it. Copying is O(1).
template <class T>
class Cmn_ChunkyPODVector : public Cmn_ChunkyVectorBase<T> {
public:
  /// Empty. With a digest, the keys of each record are kept beside it.
  explicit Cmn_ChunkyPODVector(Cmn_ChunkyVecDigest const * iDigestP = nullptr)
      : Cmn_ChunkyVectorBase<T>(mCopier), mCopier(static_cast<int>(sizeof(T)), iDigestP) {}
  Cmn_ChunkyPODVector(Cmn_ChunkyPODVector const & iOther)
      : Cmn_ChunkyVectorBase<T>(mCopier), mCopier(iOther.mCopier) {
    this->mImpl.Assign(iOther.mImpl);
  }
  Cmn_ChunkyPODVector & operator=(Cmn_ChunkyPODVector const & iOther) {
    Assign(iOther);
    return *this;
  }
  ~Cmn_ChunkyPODVector() {
    Cmn_ChunkyVec_Guard([this] { this->mImpl.Destruct(); });
  }

  /// Becomes equal to `iOther`, digest included. O(1).
  void Assign(Cmn_ChunkyPODVector const & iOther) {
    if (this == &iOther) return;
    this->mImpl.Destruct();
    mCopier = iOther.mCopier;
    this->mImpl.Assign(iOther.mImpl);
  }

private:
  Cmn_ChunkyVecPODCopier mCopier;
};
