#include "cmn/cmn_polyvector.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace {

// Where the positions of a vector without room point.
alignas(std::max_align_t) char sPlaceholder[1];

}  // namespace

Cmn_PolyVectorTraitsBase::~Cmn_PolyVectorTraitsBase() = default;

// Room that is being filled from its front. Unless it is taken over, what was made in it goes
// again.
class Cmn_PolyVectorImpl::Block {
public:
  Block(Cmn_PolyVectorImpl const & iOwner, size_t iNum)
      : mOwner(iOwner),
        mBegin(static_cast<char *>(iOwner.mTraitsP->Allocate(iNum))),
        mFirst(mBegin),
        mLast(mBegin),
        mRoomEnd(mBegin + iNum * iOwner.mElementSize) {}
  ~Block() {
    for (char * pos = mFirst; pos != mLast; pos += mOwner.mElementSize)
      mOwner.mTraitsP->Destruct(pos);
    if (mBegin) mOwner.mTraitsP->Deallocate(mBegin);
  }
  Block(Block const &) = delete;
  Block & operator=(Block const &) = delete;

  void Append(char const * iFirst, char const * iLast) {
    for (; iFirst != iLast; iFirst += mOwner.mElementSize, mLast += mOwner.mElementSize)
      mOwner.mTraitsP->CopyConstruct(mLast, iFirst);
  }

  Cmn_PolyVectorImpl const & mOwner;
  char * mBegin;  // null once taken over
  char * mFirst;
  char * mLast;  // [mFirst, mLast) are alive
  char * mRoomEnd;
};

Cmn_PolyVectorImpl::Cmn_PolyVectorImpl(Cmn_PolyVectorTraitsBase & iTraits, size_t iElementSize)
    : mTraitsP(&iTraits),
      mElementSize(iElementSize),
      mBegin(sPlaceholder),
      mEnd(sPlaceholder),
      mRoomEnd(sPlaceholder) {}

Cmn_PolyVectorImpl::~Cmn_PolyVectorImpl() {
  Destruct();
}

void Cmn_PolyVectorImpl::Init(Cmn_PolyVectorImpl const & iOther) {
  if (iOther.mBegin == iOther.mEnd) return;
  Block block(*this, iOther.Size());
  block.Append(iOther.mBegin, iOther.mEnd);
  TakeOver(block);
}

void Cmn_PolyVectorImpl::Assign(Cmn_PolyVectorImpl const & iOther) {
  if (this == &iOther) return;
  bool const fits = iOther.mEnd - iOther.mBegin <= mRoomEnd - mBegin;
  if (!(fits && mTraitsP->CopiesNeverThrow())) {
    Cmn_PolyVectorImpl copy(*mTraitsP, mElementSize);
    copy.Init(iOther);
    Swap(copy);
    return;
  }
  DestructRange(mBegin, mEnd);
  mEnd = mBegin;
  InsertAtEnd(iOther.mBegin, iOther.mEnd);
}

void Cmn_PolyVectorImpl::Destruct() {
  DestructRange(mBegin, mEnd);
  if (mRoomEnd != mBegin) mTraitsP->Deallocate(mBegin);
  mBegin = mEnd = mRoomEnd = sPlaceholder;
}

void Cmn_PolyVectorImpl::Reserve(size_t iNum) {
  if (iNum <= static_cast<size_t>(mRoomEnd - mBegin) / mElementSize) return;
  Block block(*this, iNum);
  block.Append(mBegin, mEnd);
  TakeOver(block);
}

void Cmn_PolyVectorImpl::Swap(Cmn_PolyVectorImpl & ioOther) {
  std::swap(mTraitsP, ioOther.mTraitsP);
  std::swap(mBegin, ioOther.mBegin);
  std::swap(mEnd, ioOther.mEnd);
  std::swap(mRoomEnd, ioOther.mRoomEnd);
}

char * Cmn_PolyVectorImpl::Insert(char * iPos, void const * iElement) {
  char const * const element = static_cast<char const *>(iElement);
  return Insert(iPos, element, element + mElementSize);
}

char * Cmn_PolyVectorImpl::Insert(char * iPos, char const * iFirst, char const * iLast) {
  if (iFirst == iLast) return iPos;
  if (iLast - iFirst > mRoomEnd - mEnd) return InsertIntoNewBlock(iPos, iFirst, iLast);
  if (iPos == mEnd) {
    InsertAtEnd(iFirst, iLast);
    return iPos;
  }
  // A source that would move under the copying, or a copy that may fail half way, takes new room.
  if (Contains(iFirst) || !mTraitsP->CopiesNeverThrow()) {
    return InsertIntoNewBlock(iPos, iFirst, iLast);
  }
  InsertInPlace(iPos, iFirst, iLast);
  return iPos;
}

char * Cmn_PolyVectorImpl::Erase(char * iPos) {
  return Erase(iPos, iPos + mElementSize);
}

char * Cmn_PolyVectorImpl::Erase(char * iFirst, char * iLast) {
  if (iFirst == iLast) return iFirst;
  char * target = iFirst;
  for (char * pos = iLast; pos != mEnd; pos += mElementSize, target += mElementSize)
    mTraitsP->Assign(target, pos);
  DestructRange(target, mEnd);
  mEnd = target;
  return iFirst;
}

bool Cmn_PolyVectorImpl::Contains(char const * iPos) const {
  return std::less_equal<>()(mBegin, iPos) && std::less<>()(iPos, mEnd);
}

size_t Cmn_PolyVectorImpl::GrownRoom(size_t iNumMore) const {
  size_t const size = Size();
  return std::max(size + iNumMore, size + size);
}

// Everything is made in the new room before the old is touched, so an element that throws leaves
// all as it was.
char * Cmn_PolyVectorImpl::InsertIntoNewBlock(char * iPos, char const * iFirst,
                                              char const * iLast) {
  size_t const offset = static_cast<size_t>(iPos - mBegin);
  Block block(*this, GrownRoom(static_cast<size_t>(iLast - iFirst) / mElementSize));
  block.Append(mBegin, iPos);
  block.Append(iFirst, iLast);
  block.Append(iPos, mEnd);
  TakeOver(block);
  return mBegin + offset;
}

void Cmn_PolyVectorImpl::InsertAtEnd(char const * iFirst, char const * iLast) {
  char * target = mEnd;
  try {
    for (; iFirst != iLast; iFirst += mElementSize, target += mElementSize)
      mTraitsP->CopyConstruct(target, iFirst);
  } catch (...) {
    DestructRange(mEnd, target);
    throw;
  }
  mEnd = target;
}

// Needs: room, a source outside the vector, copies that do not throw.
void Cmn_PolyVectorImpl::InsertInPlace(char * iPos, char const * iFirst, char const * iLast) {
  ptrdiff_t const width = iLast - iFirst;
  char const * const oldEnd = mEnd;
  for (char * pos = mEnd; pos != iPos;) {
    pos -= mElementSize;
    PlaceAt(pos + width, pos, oldEnd);
  }
  for (char * target = iPos; iFirst != iLast; iFirst += mElementSize, target += mElementSize)
    PlaceAt(target, iFirst, oldEnd);
  mEnd += width;
}

// Before `iLivingEnd` there is an element to assign to, from there on one is made.
void Cmn_PolyVectorImpl::PlaceAt(char * iTarget, char const * iSource, char const * iLivingEnd) {
  if (iTarget < iLivingEnd) {
    mTraitsP->Assign(iTarget, iSource);
  } else {
    mTraitsP->CopyConstruct(iTarget, iSource);
  }
}

void Cmn_PolyVectorImpl::DestructRange(char * iFirst, char * iLast) {
  for (; iFirst != iLast; iFirst += mElementSize)
    mTraitsP->Destruct(iFirst);
}

void Cmn_PolyVectorImpl::TakeOver(Block & ioBlock) {
  Destruct();
  mBegin = ioBlock.mBegin;
  mEnd = ioBlock.mLast;
  mRoomEnd = ioBlock.mRoomEnd;
  ioBlock.mBegin = ioBlock.mFirst = ioBlock.mLast = nullptr;
}
