// A fixed number of bits.
#pragma once

#include <bitset>
#include <cstddef>

#include "cmn/cmn_assert.h"

/// `TSize` bits, all false at start. A value: copies are independent. Allocates nothing.
/// Fails: an index outside [0, TSize) is reported; reading it gives false, writing it does nothing.
template <int TSize>
class Cmn_BitArray {
public:
  Cmn_BitArray() = default;

  bool Get(int iIndex) const { return IsInside(iIndex) && mBits[static_cast<size_t>(iIndex)]; }

  void Set(int iIndex, bool iValue) {
    if (IsInside(iIndex)) mBits[static_cast<size_t>(iIndex)] = iValue;
  }

  void SetAll(bool iValue) {
    mBits.reset();
    if (iValue) mBits.flip();
  }

  void InvertAll() { mBits.flip(); }

  bool operator==(Cmn_BitArray const & iOther) const { return mBits == iOther.mBits; }

private:
  static bool IsInside(int iIndex) {
    return CMN_CHECK(iIndex >= 0 && iIndex < TSize, "iIndex >= 0 && iIndex < TSize");
  }

  std::bitset<static_cast<size_t>(TSize)> mBits;
};
