// Typed time: every position and every length is a signed 64-bit count with its unit. Ticks are
// musical time and follow the tempo map; samples are audio time at the sample rate.
//
// Like units are compared and added as numbers, inline. Unlike units go through the converter of
// foundation/time_convert.h: they compare as exact instants. Nothing here throws; sums and products
// stop at the ends of the number range.
// Thread: any; plain values.
#pragma once

#include <limits>
#include <string>
#include <type_traits>

#include "cmn/cmn_xmlnode.h"
#include "foundation/vrad_export.h"

/// The unit of a count. The numbers are in saved projects.
enum Time_EType : int { Time_eType_Samples = 0, Time_eType_Ticks = 1 };

class Time_Typed;
class Time_TypedLength;
class Time_Tick;

/// Sums and differences that stop at the ends of the number range.
struct Time_Saturating {
  static constexpr long long kMin = std::numeric_limits<long long>::min();
  static constexpr long long kMax = std::numeric_limits<long long>::max();

  static constexpr long long Add(long long iA, long long iB) {
    if (iB > 0 && iA > kMax - iB) return kMax;
    if (iB < 0 && iA < kMin - iB) return kMin;
    return iA + iB;
  }
  static constexpr long long Subtract(long long iA, long long iB) {
    if (iB < 0 && iA > kMax + iB) return kMax;
    if (iB > 0 && iA < kMin + iB) return kMin;
    return iA - iB;
  }
};

/// What a position can do, for the class `T` that derives from it.
/// The smallest and the largest count are limits that mean "open": no length moves them.
template <class T>
class VRAD_EXPORT Time_TypedBase {
public:
  constexpr long long AsInt64() const { return mCount; }
  constexpr Time_EType GetType() const { return mType; }

  /// The position in ticks; from samples, the first tick that is not before it.
  Time_Tick AsTick() const;

  /// Move the position by a length of either unit. The position keeps its unit.
  T & operator+=(Time_TypedLength const & iLength);
  T & operator-=(Time_TypedLength const & iLength);

  /// Move the position by one in its own unit; the postfix form gives the old position.
  constexpr T & operator++() {
    if (!IsLimit()) ++mCount;
    return static_cast<T &>(*this);
  }
  constexpr T operator++(int) {
    T former(static_cast<T &>(*this));
    ++*this;
    return former;
  }

  /// A node whose value is count and suffix, "960000t" or "24000s".
  Cmn_XMLNodePtr GetAsXML(std::string const & iName) const;

protected:
  constexpr Time_TypedBase(long long iCount, Time_EType iType) : mCount(iCount), mType(iType) {}

private:
  constexpr bool IsLimit() const {
    return mCount == Time_Saturating::kMin || mCount == Time_Saturating::kMax;
  }

  long long mCount;
  Time_EType mType;
};

/// A position that is ticks by construction.
class Time_Tick {
public:
  constexpr explicit Time_Tick(long long iTicks) : mTicks(iTicks) {}
  constexpr long long AsInt64() const { return mTicks; }

private:
  long long mTicks;
};

/// A position that is samples by construction.
class Time_Sample {
public:
  constexpr explicit Time_Sample(long long iSamples) : mSamples(iSamples) {}
  constexpr long long AsInt64() const { return mSamples; }

private:
  long long mSamples;
};

/// A length that is ticks by construction.
class Time_TickLength {
public:
  constexpr explicit Time_TickLength(long long iTicks) : mTicks(iTicks) {}
  constexpr long long AsInt64() const { return mTicks; }

private:
  long long mTicks;
};

/// A length that is samples by construction.
class Time_SampleLength {
public:
  constexpr explicit Time_SampleLength(long long iSamples) : mSamples(iSamples) {}
  constexpr long long AsInt64() const { return mSamples; }

private:
  long long mSamples;
};

/// A position in either unit. Starts as tick 0.
class VRAD_EXPORT Time_Typed : public Time_TypedBase<Time_Typed> {
public:
  constexpr Time_Typed() : Time_TypedBase(0, Time_eType_Ticks) {}
  constexpr Time_Typed(long long iCount, Time_EType iType) : Time_TypedBase(iCount, iType) {}
  constexpr Time_Typed(Time_Tick const & iTick)
      : Time_TypedBase(iTick.AsInt64(), Time_eType_Ticks) {}
  constexpr Time_Typed(Time_Sample const & iSample)
      : Time_TypedBase(iSample.AsInt64(), Time_eType_Samples) {}

  /// The limits of a unit. They lie above and below every other position of either unit, each
  /// equal to its twin of the other unit.
  static constexpr Time_Typed MaxTime(Time_EType iType) {
    return Time_Typed(Time_Saturating::kMax, iType);
  }
  static constexpr Time_Typed MinTime(Time_EType iType) {
    return Time_Typed(Time_Saturating::kMin, iType);
  }
};

/// A signed length in either unit. Starts as 0 ticks.
class VRAD_EXPORT Time_TypedLength {
public:
  constexpr Time_TypedLength() : mCount(0), mType(Time_eType_Ticks) {}
  constexpr Time_TypedLength(long long iCount, Time_EType iType) : mCount(iCount), mType(iType) {}
  constexpr Time_TypedLength(Time_TickLength const & iTicks)
      : mCount(iTicks.AsInt64()), mType(Time_eType_Ticks) {}
  constexpr Time_TypedLength(Time_SampleLength const & iSamples)
      : mCount(iSamples.AsInt64()), mType(Time_eType_Samples) {}

  constexpr long long AsInt64() const { return mCount; }
  constexpr Time_EType GetType() const { return mType; }

  /// A length of the other unit is measured from the origin, and the left one keeps its unit.
  Time_TypedLength & operator+=(Time_TypedLength const & iLength);
  Time_TypedLength & operator-=(Time_TypedLength const & iLength);

  /// Count and unit in one number, as saved in projects; see `Time_TypedDefs`.
  long long GetRawDataForSave() const;
  void SetFromRawSavedData(long long iRaw);

  /// A node whose value is count and suffix, "960000t" or "24000s".
  Cmn_XMLNodePtr GetAsXML(std::string const & iName) const;

private:
  long long mCount;
  Time_EType mType;
};

static_assert(std::is_trivially_copyable_v<Time_Typed>);
static_assert(std::is_trivially_copyable_v<Time_TypedLength>);
static_assert(std::is_trivially_copyable_v<Time_Tick> && std::is_trivially_copyable_v<Time_Sample>);

/// The saved form of a count and its unit: twice the count, plus the unit.
class VRAD_EXPORT Time_TypedDefs {
public:
  /// Lossless for counts below 2^62 in size; larger ones become 2^62 - 1 in size.
  static long long GetRawDataForSave(long long iCount, Time_EType iType);
  static void SetFromRawSavedData(long long iRaw, long long * oCount, Time_EType * oType);
};

// The rules for two values of unlike unit; the operators below come here only for those.

/// -1, 0 or 1 by exact instant. Without a converter, and for units other than the two, by count.
VRAD_EXPORT int Time_CompareUnlike(Time_Typed iA, Time_Typed iB);
/// The position that lies the length after, or before, `iStart`, in the unit of `iStart`.
VRAD_EXPORT Time_Typed Time_AddUnlike(Time_Typed iStart, Time_TypedLength iLength);
VRAD_EXPORT Time_Typed Time_SubtractUnlike(Time_Typed iStart, Time_TypedLength iLength);
/// The count of the position, in another unit.
VRAD_EXPORT long long Time_CountInUnit(Time_Typed iTime, Time_EType iType);

constexpr bool operator==(Time_Typed iA, Time_Typed iB) {
  return iA.GetType() == iB.GetType() ? iA.AsInt64() == iB.AsInt64()
                                      : Time_CompareUnlike(iA, iB) == 0;
}
constexpr bool operator<(Time_Typed iA, Time_Typed iB) {
  return iA.GetType() == iB.GetType() ? iA.AsInt64() < iB.AsInt64()
                                      : Time_CompareUnlike(iA, iB) < 0;
}
constexpr bool operator!=(Time_Typed iA, Time_Typed iB) {
  return !(iA == iB);
}
constexpr bool operator>(Time_Typed iA, Time_Typed iB) {
  return iB < iA;
}
constexpr bool operator<=(Time_Typed iA, Time_Typed iB) {
  return !(iB < iA);
}
constexpr bool operator>=(Time_Typed iA, Time_Typed iB) {
  return !(iA < iB);
}

/// Lengths of unlike unit compare as the instants that they reach from the origin.
constexpr bool operator==(Time_TypedLength iA, Time_TypedLength iB) {
  return Time_Typed(iA.AsInt64(), iA.GetType()) == Time_Typed(iB.AsInt64(), iB.GetType());
}
constexpr bool operator<(Time_TypedLength iA, Time_TypedLength iB) {
  return Time_Typed(iA.AsInt64(), iA.GetType()) < Time_Typed(iB.AsInt64(), iB.GetType());
}
constexpr bool operator!=(Time_TypedLength iA, Time_TypedLength iB) {
  return !(iA == iB);
}
constexpr bool operator>(Time_TypedLength iA, Time_TypedLength iB) {
  return iB < iA;
}
constexpr bool operator<=(Time_TypedLength iA, Time_TypedLength iB) {
  return !(iB < iA);
}
constexpr bool operator>=(Time_TypedLength iA, Time_TypedLength iB) {
  return !(iA < iB);
}

template <class T>
T & Time_TypedBase<T>::operator+=(Time_TypedLength const & iLength) {
  if (!IsLimit()) {
    if (iLength.GetType() == mType)
      mCount = Time_Saturating::Add(mCount, iLength.AsInt64());
    else
      mCount = Time_AddUnlike(Time_Typed(mCount, mType), iLength).AsInt64();
  }
  return static_cast<T &>(*this);
}
template <class T>
T & Time_TypedBase<T>::operator-=(Time_TypedLength const & iLength) {
  if (!IsLimit()) {
    if (iLength.GetType() == mType)
      mCount = Time_Saturating::Subtract(mCount, iLength.AsInt64());
    else
      mCount = Time_SubtractUnlike(Time_Typed(mCount, mType), iLength).AsInt64();
  }
  return static_cast<T &>(*this);
}
template <class T>
Time_Tick Time_TypedBase<T>::AsTick() const {
  if (mType == Time_eType_Ticks) return Time_Tick(mCount);
  return Time_Tick(Time_CountInUnit(Time_Typed(mCount, mType), Time_eType_Ticks));
}

inline Time_Typed operator+(Time_Typed iTime, Time_TypedLength iLength) {
  return iTime += iLength;
}
inline Time_Typed operator-(Time_Typed iTime, Time_TypedLength iLength) {
  return iTime -= iLength;
}

/// The length from `iB` to `iA`, in the unit of `iA`; `iB` is converted to it first.
inline Time_TypedLength operator-(Time_Typed iA, Time_Typed iB) {
  long long const count =
      iB.GetType() == iA.GetType() ? iB.AsInt64() : Time_CountInUnit(iB, iA.GetType());
  return Time_TypedLength(Time_Saturating::Subtract(iA.AsInt64(), count), iA.GetType());
}

inline Time_TypedLength operator+(Time_TypedLength iA, Time_TypedLength iB) {
  return iA += iB;
}
inline Time_TypedLength operator-(Time_TypedLength iA, Time_TypedLength iB) {
  return iA -= iB;
}

/// Scaled, truncated towards zero, in the same unit; no low bit of a long count is lost. A factor
/// that is no number gives 0; dividing by 0 gives the limit of the sign.
VRAD_EXPORT Time_TypedLength operator*(Time_TypedLength iLength, int iFactor);
VRAD_EXPORT Time_TypedLength operator*(Time_TypedLength iLength, double iFactor);
VRAD_EXPORT Time_TypedLength operator/(Time_TypedLength iLength, int iDivisor);
