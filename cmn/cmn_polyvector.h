// A growable array in one block, driven by a table of element operations, so that one untyped body
// serves every element type.
#pragma once

#include <cstddef>
#include <new>
#include <type_traits>

#include "foundation/vrad_export.h"

/// The element operations of one element type. All pointers are untyped.
class VRAD_EXPORT Cmn_PolyVectorTraitsBase {
public:
  virtual ~Cmn_PolyVectorTraitsBase();

  /// Room for `iNum` elements, nothing constructed in it. Fails: `std::bad_alloc`.
  virtual void * Allocate(size_t iNum) const = 0;
  /// Gives back what `Allocate` gave.
  virtual void Deallocate(void * iRoom) const = 0;
  /// Makes an element at `iPlace`, which holds none.
  virtual void CopyConstruct(void * iPlace, void const * iSource) const = 0;
  /// Gives a living element the value of another.
  virtual void Assign(void * ioTarget, void const * iSource) const = 0;
  virtual void Destruct(void * iElement) const = 0;

  /// Neither copying nor assigning an element throws, so that elements may be moved up in place.
  bool CopiesNeverThrow() const { return mCopiesNeverThrow; }

protected:
  explicit constexpr Cmn_PolyVectorTraitsBase(bool iCopiesNeverThrow = false)
      : mCopiesNeverThrow(iCopiesNeverThrow) {}
  Cmn_PolyVectorTraitsBase(Cmn_PolyVectorTraitsBase const &) = default;
  Cmn_PolyVectorTraitsBase & operator=(Cmn_PolyVectorTraitsBase const &) = default;

private:
  bool mCopiesNeverThrow;
};

/// The operations of T, by T's own copy constructor, assignment and destructor.
template <class T>
class Cmn_PolyVectorTraits : public Cmn_PolyVectorTraitsBase {
public:
  constexpr Cmn_PolyVectorTraits()
      : Cmn_PolyVectorTraitsBase(std::is_nothrow_copy_constructible_v<T> &&
                                 std::is_nothrow_copy_assignable_v<T>) {}

  /// The one that vectors of T use. Lives for ever, so static vectors may use it at exit.
  static Cmn_PolyVectorTraits & Get();

  void * Allocate(size_t iNum) const override {
    if (iNum > static_cast<size_t>(-1) / 2 / sizeof(T)) throw std::bad_array_new_length();
    return ::operator new(iNum * sizeof(T), std::align_val_t(alignof(T)));
  }
  void Deallocate(void * iRoom) const override {
    ::operator delete(iRoom, std::align_val_t(alignof(T)));
  }
  void CopyConstruct(void * iPlace, void const * iSource) const override {
    ::new (iPlace) T(*static_cast<T const *>(iSource));
  }
  void Assign(void * ioTarget, void const * iSource) const override {
    *static_cast<T *>(ioTarget) = *static_cast<T const *>(iSource);
  }
  void Destruct(void * iElement) const override { static_cast<T *>(iElement)->~T(); }
};

/// A traits object that no destructor ends.
template <class T>
union Cmn_PolyVectorTraitsForever {
  constexpr Cmn_PolyVectorTraitsForever() : mTraits() {}
  ~Cmn_PolyVectorTraitsForever() {}
  Cmn_PolyVectorTraits<T> mTraits;
  static Cmn_PolyVectorTraitsForever sOnly;
};

template <class T>
constinit Cmn_PolyVectorTraitsForever<T> Cmn_PolyVectorTraitsForever<T>::sOnly;

template <class T>
Cmn_PolyVectorTraits<T> & Cmn_PolyVectorTraits<T>::Get() {
  return Cmn_PolyVectorTraitsForever<T>::sOnly.mTraits;
}

/// The untyped body. Positions are addresses; an operation that adds may move all of them.
/// Fails: `std::bad_alloc` or what copying an element throws; the vector is then as before.
/// Sources may lie in the vector itself.
/// Thread: one at a time.
class VRAD_EXPORT Cmn_PolyVectorImpl {
public:
  /// Empty. `iTraits` must outlive the vector.
  Cmn_PolyVectorImpl(Cmn_PolyVectorTraitsBase & iTraits, size_t iElementSize);
  ~Cmn_PolyVectorImpl();
  Cmn_PolyVectorImpl(Cmn_PolyVectorImpl const &) = delete;
  Cmn_PolyVectorImpl & operator=(Cmn_PolyVectorImpl const &) = delete;

  /// Copies the elements of `iOther` into this vector, which is empty.
  void Init(Cmn_PolyVectorImpl const & iOther);
  /// Replaces the contents by copies of the elements of `iOther`.
  void Assign(Cmn_PolyVectorImpl const & iOther);
  /// Destructs all elements and frees the room. The vector is then empty and may be used again.
  void Destruct();
  /// Room for `iNum` elements in all; the size stays.
  void Reserve(size_t iNum);
  /// Exchanges contents with a vector of the same element type.
  void Swap(Cmn_PolyVectorImpl & ioOther);

  /// Never null, in an empty vector neither.
  char * Begin() { return mBegin; }
  char const * Begin() const { return mBegin; }
  char * End() { return mEnd; }
  char const * End() const { return mEnd; }
  char * operator[](size_t iIndex) { return mBegin + iIndex * mElementSize; }
  char const * operator[](size_t iIndex) const { return mBegin + iIndex * mElementSize; }
  size_t Size() const { return static_cast<size_t>(mEnd - mBegin) / mElementSize; }

  /// One copy before `iPos`. Gives the position of the new element.
  char * Insert(char * iPos, void const * iElement);
  /// Copies of [iFirst, iLast) before `iPos`. Gives the position of the first of them.
  char * Insert(char * iPos, char const * iFirst, char const * iLast);
  /// Destructs and closes the gap, keeping the room. Gives the position after it.
  /// Fails: only as assigning an element does; the elements are then all alive, some twice.
  char * Erase(char * iPos);
  char * Erase(char * iFirst, char * iLast);

private:
  template <class T, int N>
  friend class Cmn_PolyVector;

  class Block;

  bool Contains(char const * iPos) const;
  size_t GrownRoom(size_t iNumMore) const;
  char * InsertIntoNewBlock(char * iPos, char const * iFirst, char const * iLast);
  void InsertAtEnd(char const * iFirst, char const * iLast);
  void InsertInPlace(char * iPos, char const * iFirst, char const * iLast);
  void PlaceAt(char * iTarget, char const * iSource, char const * iLivingEnd);
  void DestructRange(char * iFirst, char * iLast);
  void TakeOver(Block & ioBlock);

  Cmn_PolyVectorTraitsBase * mTraitsP;  // not owned
  size_t mElementSize;
  char * mBegin;    // a placeholder while there is no room
  char * mEnd;      // behind the last element
  char * mRoomEnd;  // equal to mBegin while there is no room
};

/// A growable array of T. The second parameter is the number of elements kept inside the object;
/// only 0 is in use. Costs as of `std::vector`; `clear` and `erase` keep the room.
/// Fails: `std::bad_alloc` or what copying an element throws; the vector is then as before.
/// Thread: one at a time.
template <class T, int N = 0>
class Cmn_PolyVector {
  static_assert(N == 0, "no element is kept inside the object");

public:
  typedef T value_type;
  typedef T & reference;
  typedef T const & const_reference;
  typedef T * iterator;
  typedef T const * const_iterator;
  typedef size_t size_type;
  typedef ptrdiff_t difference_type;

  Cmn_PolyVector() : mImpl(Cmn_PolyVectorTraits<T>::Get(), sizeof(T)) {}
  Cmn_PolyVector(Cmn_PolyVector const & iOther) : Cmn_PolyVector() { mImpl.Init(iOther.mImpl); }
  Cmn_PolyVector(Cmn_PolyVector && ioOther) noexcept : Cmn_PolyVector() {
    mImpl.Swap(ioOther.mImpl);
  }
  Cmn_PolyVector & operator=(Cmn_PolyVector const & iOther) {
    mImpl.Assign(iOther.mImpl);
    return *this;
  }
  /// The other vector ends up with what this one held.
  Cmn_PolyVector & operator=(Cmn_PolyVector && ioOther) noexcept {
    mImpl.Swap(ioOther.mImpl);
    return *this;
  }
  ~Cmn_PolyVector() = default;

  size_t size() const { return Size(); }
  bool empty() const { return mImpl.mBegin == mImpl.mEnd; }
  T & operator[](size_t iIndex) { return begin()[iIndex]; }
  T const & operator[](size_t iIndex) const { return begin()[iIndex]; }
  T & front() { return *begin(); }
  T const & front() const { return *begin(); }
  T & back() { return end()[-1]; }
  T const & back() const { return end()[-1]; }

  iterator begin() { return reinterpret_cast<T *>(mImpl.mBegin); }
  iterator end() { return reinterpret_cast<T *>(mImpl.mEnd); }
  const_iterator begin() const { return reinterpret_cast<T const *>(mImpl.mBegin); }
  const_iterator end() const { return reinterpret_cast<T const *>(mImpl.mEnd); }

  void push_back(T const & iElement) {
    if (mImpl.mEnd == mImpl.mRoomEnd) {
      mImpl.Insert(mImpl.mEnd, &iElement);
      return;
    }
    ::new (static_cast<void *>(mImpl.mEnd)) T(iElement);
    mImpl.mEnd += sizeof(T);
  }
  /// One copy before `iPos`. Gives the new element.
  iterator insert(iterator iPos, T const & iElement) {
    return Typed(mImpl.Insert(Untyped(iPos), &iElement));
  }
  /// Copies of [iFirst, iLast) before `iPos`. Gives the first of them.
  iterator insert(iterator iPos, const_iterator iFirst, const_iterator iLast) {
    return Typed(mImpl.Insert(Untyped(iPos), Untyped(iFirst), Untyped(iLast)));
  }
  /// Gives the element behind the gap.
  iterator erase(iterator iPos) { return Typed(mImpl.Erase(Untyped(iPos))); }
  iterator erase(iterator iFirst, iterator iLast) {
    return Typed(mImpl.Erase(Untyped(iFirst), Untyped(iLast)));
  }
  void clear() { mImpl.Erase(mImpl.mBegin, mImpl.mEnd); }
  void reserve(size_t iNum) { mImpl.Reserve(iNum); }

  size_t Size() const { return static_cast<size_t>(mImpl.mEnd - mImpl.mBegin) / sizeof(T); }
  iterator Begin() { return begin(); }
  iterator End() { return end(); }
  const_iterator Begin() const { return begin(); }
  const_iterator End() const { return end(); }
  iterator Insert(iterator iPos, T const & iElement) { return insert(iPos, iElement); }
  iterator Insert(iterator iPos, const_iterator iFirst, const_iterator iLast) {
    return insert(iPos, iFirst, iLast);
  }
  iterator Erase(iterator iPos) { return erase(iPos); }
  iterator Erase(iterator iFirst, iterator iLast) { return erase(iFirst, iLast); }
  void Reserve(size_t iNum) { reserve(iNum); }

private:
  static char * Untyped(iterator iPos) { return reinterpret_cast<char *>(iPos); }
  static char const * Untyped(const_iterator iPos) { return reinterpret_cast<char const *>(iPos); }
  static iterator Typed(char * iPos) { return reinterpret_cast<T *>(iPos); }

  Cmn_PolyVectorImpl mImpl;
};
