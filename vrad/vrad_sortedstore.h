// What all stores of records sorted by time share: bounds, sorted insertion, the digest that lets a
// chunked sequence search without touching its records. A store is a `Cmn_ChunkyPODVector` or a
// `Cmn_PolyVector` of records with a public `mTime`; positions are indices.
//
// A store may be unsorted or hold both units. Every binary search therefore has one probe sequence,
// whatever the container, and short cuts are taken only while the store is known to be sorted and
// of the one unit that is asked for: there every correct search gives the same answer.
#pragma once

#include <algorithm>
#include <vector>

#include "cmn/cmn_chunkyvector.h"
#include "cmn/cmn_polyvector.h"
#include "foundation/ticktimesmatter.h"
#include "foundation/time_convert.h"
#include "foundation/time_typed.h"

/// The marks that the digest of a sorted store leaves on each record; two bits are still free.
enum Vrad_EStoreMark : int {
  kStoreMark_Samples = 1,    // the time is in samples
  kStoreMark_Ticks = 2,      // the time is in ticks
  kStoreMark_OtherUnit = 4,  // the time is in neither
  kStoreMark_NoExtent = 8,   // the extent key does not say how far the record reaches
  kStoreMark_NoEvent = 16,   // the record's event is of kind 0
  kStoreMark_AllUnits = 7
};

constexpr int Vrad_StoreMarkOf(Time_EType iType) {
  return iType == Time_eType_Samples ? kStoreMark_Samples
         : iType == Time_eType_Ticks ? kStoreMark_Ticks
                                     : kStoreMark_OtherUnit;
}

/// Nothing but times of that unit, and none less than the one before it.
inline bool Vrad_IsSortedInUnit(Cmn_ChunkyVecSummary const & iSummary, Time_EType iType) {
  int const mark = Vrad_StoreMarkOf(iType);
  return iSummary.mAscending && (iSummary.mMarks & kStoreMark_AllUnits) == mark &&
         mark != kStoreMark_OtherUnit;
}

/// The digest of a store without extents: the time's count is the order key.
template <class TRecord>
class Vrad_TimeDigest final : public Cmn_ChunkyVecDigest {
public:
  static Vrad_TimeDigest const * Get() {
    static Vrad_TimeDigest const * const sOnly = new Vrad_TimeDigest;  // outlives static stores
    return sOnly;
  }
  void Extract(char const * iRecords, int iNum, long long * oOrder, long long * oExtent,
               unsigned char * oMarks) const override {
    TRecord const * const records = reinterpret_cast<TRecord const *>(iRecords);
    for (int i = 0; i < iNum; ++i) {
      oOrder[i] = oExtent[i] = records[i].mTime.AsInt64();
      oMarks[i] = static_cast<unsigned char>(Vrad_StoreMarkOf(records[i].mTime.GetType()));
    }
  }
};

/// The first index in [iFirst, iLast) for which `iIsBefore` is false, by the one probe sequence.
template <class TIsBefore>
int Vrad_FindFirstNotBefore(int iFirst, int iLast, TIsBefore iIsBefore) {
  int num = iLast - iFirst;
  while (num > 0) {
    int const half = num / 2;
    if (iIsBefore(iFirst + half)) {
      iFirst += half + 1;
      num -= half + 1;
    } else {
      num = half;
    }
  }
  return iFirst;
}

/// Keys that answer for times of that unit are at hand.
template <class T>
bool Vrad_HasKeysFor(Cmn_ChunkyPODVector<T> const & iStore, Time_EType iType) {
  return Vrad_IsSortedInUnit(iStore.GetImpl().Summarise(), iType);
}
template <class T>
bool Vrad_HasKeysFor(Cmn_PolyVector<T, 0> const &, Time_EType) {
  return false;
}

/// In [iFirst, iLast), the first record with a time not less than `iTime`.
template <class TStore>
int Vrad_LowerBoundIn(TStore const & iStore, int iFirst, int iLast, Time_Typed iTime) {
  return Vrad_FindFirstNotBefore(iFirst, iLast, [&iStore, iTime](int iIndex) {
    return iStore[static_cast<decltype(iStore.Size())>(iIndex)].mTime < iTime;
  });
}
/// In [iFirst, iLast), the first record with a time greater than `iTime`.
template <class TStore>
int Vrad_UpperBoundIn(TStore const & iStore, int iFirst, int iLast, Time_Typed iTime) {
  return Vrad_FindFirstNotBefore(iFirst, iLast, [&iStore, iTime](int iIndex) {
    return !(iTime < iStore[static_cast<decltype(iStore.Size())>(iIndex)].mTime);
  });
}

/// The same over the whole store. O(log n).
template <class TStore>
int Vrad_LowerBound(TStore const & iStore, Time_Typed iTime) {
  return Vrad_LowerBoundIn(iStore, 0, static_cast<int>(iStore.Size()), iTime);
}
template <class T>
int Vrad_LowerBound(Cmn_ChunkyPODVector<T> const & iStore, Time_Typed iTime) {
  if (Vrad_HasKeysFor(iStore, iTime.GetType())) {
    return iStore.GetImpl().LowerBound(iTime.AsInt64());
  }
  return Vrad_LowerBoundIn(iStore, 0, iStore.Size(), iTime);
}
template <class TStore>
int Vrad_UpperBound(TStore const & iStore, Time_Typed iTime) {
  return Vrad_UpperBoundIn(iStore, 0, static_cast<int>(iStore.Size()), iTime);
}
template <class T>
int Vrad_UpperBound(Cmn_ChunkyPODVector<T> const & iStore, Time_Typed iTime) {
  if (Vrad_HasKeysFor(iStore, iTime.GetType())) {
    return iStore.GetImpl().UpperBound(iTime.AsInt64());
  }
  return Vrad_UpperBoundIn(iStore, 0, iStore.Size(), iTime);
}

/// The same from `iFirst` on, which no record of the answer may lie before.
template <class TStore>
int Vrad_LowerBoundFrom(TStore const & iStore, int iFirst, Time_Typed iTime) {
  if (Vrad_HasKeysFor(iStore, iTime.GetType())) {
    return std::max(iFirst, Vrad_LowerBound(iStore, iTime));
  }
  return Vrad_LowerBoundIn(iStore, iFirst, static_cast<int>(iStore.Size()), iTime);
}
template <class TStore>
int Vrad_UpperBoundFrom(TStore const & iStore, int iFirst, Time_Typed iTime) {
  if (Vrad_HasKeysFor(iStore, iTime.GetType())) {
    return std::max(iFirst, Vrad_UpperBound(iStore, iTime));
  }
  return Vrad_UpperBoundIn(iStore, iFirst, static_cast<int>(iStore.Size()), iTime);
}

/// A stretch of a store, [mFirst, mLast).
struct Vrad_IndexRange {
  int mFirst;
  int mLast;
  bool IsEmpty() const { return mFirst >= mLast; }
};

/// Walks a stretch of a store in order, as it must be done where the store may be unsorted. In a
/// sorted one it leaps when it has far to go: O(log n) a leap, O(1) to a neighbour.
/// Lives: until the store is written.
template <class T>
class Vrad_StoreCursor {
public:
  Vrad_StoreCursor(Cmn_ChunkyPODVector<T> const & iStore, Vrad_IndexRange iRange)
      : mStore(iStore), mIter(iStore.At(iRange.mFirst)), mLast(iRange.mLast) {}

  bool IsAtEnd() const { return mIter.GetIndex() >= mLast; }
  int GetIndex() const { return mIter.GetIndex(); }
  T const & operator*() const { return *mIter; }
  T const * operator->() const { return &*mIter; }
  void operator++() { ++mIter; }

  /// To the next record whose time is not less than `iTime`, is greater than it.
  void SkipBefore(Time_Typed iTime) {
    Skip([iTime](Time_Typed iOther) { return iOther < iTime; },
         [this, iTime] { return Vrad_LowerBoundFrom(mStore, GetIndex(), iTime); }, iTime);
  }
  void SkipThrough(Time_Typed iTime) {
    Skip([iTime](Time_Typed iOther) { return !(iTime < iOther); },
         [this, iTime] { return Vrad_UpperBoundFrom(mStore, GetIndex(), iTime); }, iTime);
  }

private:
  template <class TIsPassed, class TFindBound>
  void Skip(TIsPassed iIsPassed, TFindBound iFindBound, Time_Typed iTime) {
    constexpr int kStepsBeforeLeap = 8;
    for (int i = 0; !IsAtEnd() && iIsPassed(mIter->mTime); ++i, ++mIter) {
      if (i != kStepsBeforeLeap || !Vrad_HasKeysFor(mStore, iTime.GetType())) continue;
      mIter += std::min(iFindBound(), mLast) - GetIndex();
      return;
    }
  }

  Cmn_ChunkyPODVector<T> const & mStore;
  Cmn_ChunkyVectorConstIterator<T> mIter;
  int mLast;
};

/// What a bulk edit takes from its source: the records from `iStart` up to `iEnd`, whose bound is
/// searched from the first bound on. Empty if `iEnd` is not after `iStart`.
template <class TStore>
Vrad_IndexRange Vrad_FindSource(TStore const & iStore, Time_Typed iStart, Time_Typed iEnd) {
  if (!(iStart < iEnd)) return {0, 0};
  int const first = Vrad_LowerBound(iStore, iStart);
  return {first, Vrad_LowerBoundFrom(iStore, first, iEnd)};
}

/// Where a bulk edit merges into: the same with the records at `iEnd`, to whose time the grid may
/// bring what is merged in.
template <class TStore>
Vrad_IndexRange Vrad_FindRegion(TStore const & iStore, Time_Typed iStart, Time_Typed iEnd) {
  int const first = Vrad_LowerBound(iStore, iStart);
  return {first, Vrad_UpperBoundFrom(iStore, first, iEnd)};
}

/// The time as a store keeps it after a shift: on the coarse grid if the store snaps and tick times
/// matter.
inline Time_Typed Vrad_ShiftedTime(Time_Typed iTime, Time_TypedLength iOffset, bool iSnaps) {
  iTime += iOffset;
  return iSnaps && TickTimesMatter::Active() ? Time_Convert::SnapToCoarseInternalTick(iTime)
                                             : iTime;
}

/// Copies of the records of a stretch.
template <class TRecord, class TStore>
std::vector<TRecord> Vrad_CopyIndices(TStore const & iStore, Vrad_IndexRange iRange) {
  return std::vector<TRecord>(iStore.begin() + iRange.mFirst, iStore.begin() + iRange.mLast);
}

/// Behind the last record, or behind those of equal time that are there. Gives the index.
template <class TStore, class TRecord>
int Vrad_InsertSorted(TStore & ioStore, TRecord const & iRecord) {
  TStore const & store = ioStore;
  int const size = static_cast<int>(store.Size());
  if (size > 0 && iRecord.mTime < store.back().mTime) {
    int const index = Vrad_UpperBound(store, iRecord.mTime);
    ioStore.insert(ioStore.begin() + index, iRecord);
    return index;
  }
  ioStore.push_back(iRecord);
  return size;
}

/// Erases [iFirst, iLast).
template <class TStore>
void Vrad_EraseIndices(TStore & ioStore, int iFirst, int iLast) {
  ioStore.erase(ioStore.begin() + iFirst, ioStore.begin() + iLast);
}

/// Puts records in front of the one at `iIndex`.
template <class T>
void Vrad_InsertRecords(Cmn_ChunkyPODVector<T> & ioStore, int iIndex,
                        std::vector<T> const & iRecords) {
  if (iRecords.empty()) return;
  ioStore.Insert(ioStore.begin() + iIndex, static_cast<int>(iRecords.size()), iRecords.data());
}
template <class T>
void Vrad_InsertRecords(Cmn_PolyVector<T, 0> & ioStore, int iIndex,
                        std::vector<T> const & iRecords) {
  ioStore.insert(ioStore.begin() + iIndex, iRecords.data(), iRecords.data() + iRecords.size());
}

/// Puts records in the place of a stretch.
/// Fails: `std::bad_alloc`; the new records may then stand in front of the stretch.
template <class TStore, class TRecord>
void Vrad_ReplaceIndices(TStore & ioStore, Vrad_IndexRange iRange,
                         std::vector<TRecord> const & iRecords) {
  int const num = static_cast<int>(iRecords.size());
  Vrad_InsertRecords(ioStore, iRange.mFirst, iRecords);
  Vrad_EraseIndices(ioStore, iRange.mFirst + num, iRange.mLast + num);
}

/// Rewrites each record once, in order.
/// Fails: `std::bad_alloc`, before the first is rewritten.
template <class T, class TRewrite>
void Vrad_RewriteAll(Cmn_ChunkyPODVector<T> & ioStore, TRewrite iRewrite) {
  ioStore.Unshare();
  for (int index = 0; index < ioStore.Size();) {
    T * records;
    int const num = ioStore.GetWritableSpan(index, &records);
    for (int i = 0; i < num; ++i)
      iRewrite(records[i]);
    index += num;
  }
  ioStore.Settle();
}
