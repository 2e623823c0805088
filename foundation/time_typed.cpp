#include "foundation/time_typed.h"

#include <cmath>

#include "foundation/time_convert.h"

namespace {

__extension__ typedef unsigned __int128 Magnitude;

constexpr long long kMin = Time_Saturating::kMin;
constexpr long long kMax = Time_Saturating::kMax;

bool IsKnown(Time_EType iType) {
  return iType == Time_eType_Samples || iType == Time_eType_Ticks;
}

bool CanConvert(Time_EType iFrom, Time_EType iTo) {
  return IsKnown(iFrom) && IsKnown(iTo) && Time_Convert::sTimeConverter != nullptr;
}

bool IsLimit(long long iCount) {
  return iCount == kMin || iCount == kMax;
}

int CompareCounts(long long iA, long long iB) {
  return iA < iB ? -1 : iA > iB;
}

Time_Typed FromOrigin(Time_TypedLength iLength) {
  return Time_Typed(iLength.AsInt64(), iLength.GetType());
}

long long CountOf(Time_TypedLength iLength, Time_EType iType) {
  return iLength.GetType() == iType ? iLength.AsInt64()
                                    : Time_CountInUnit(FromOrigin(iLength), iType);
}

// The exact product, truncated, of a finite factor that makes it 1 or more in size.
long long ScaleExactly(long long iCount, double iFactor) {
  long long const limit = (iCount < 0) == (iFactor < 0) ? kMax : kMin;
  // The factor is a whole number of 53 bits, times two to the exponent.
  int exponent;
  double const fraction = std::frexp(std::fabs(iFactor), &exponent);
  exponent -= 53;
  Magnitude const wide = static_cast<Magnitude>(iCount);
  Magnitude product =
      (iCount < 0 ? -wide : wide) * static_cast<Magnitude>(std::ldexp(fraction, 53));
  if (exponent > 0 && (exponent > 63 || product >> (63 - exponent) != 0)) return limit;
  product = exponent > 0 ? product << exponent : product >> -exponent;
  if (product > static_cast<Magnitude>(kMax)) return limit;
  return limit == kMax ? static_cast<long long>(product) : -static_cast<long long>(product);
}

// Truncates. From 2^53 on a double would lose low bits; below, it gives what a caller expects of
// factors such as 0.3, which lie a little beside the number that was meant.
long long Scale(long long iCount, double iFactor) {
  double const product = static_cast<double>(iCount) * iFactor;
  if (std::isnan(product)) return 0;
  if (product >= 0x1p64) return kMax;
  if (product <= -0x1p64) return kMin;
  if (std::fabs(product) < 0x1p53) return static_cast<long long>(product);
  return ScaleExactly(iCount, iFactor);
}

// Saturates.
long long Divide(long long iCount, int iDivisor) {
  if (iDivisor == 0) return iCount > 0 ? kMax : iCount < 0 ? kMin : 0;
  if (iDivisor == -1) return Time_Saturating::Subtract(0, iCount);
  return iCount / iDivisor;
}

Cmn_XMLNodePtr MakeNode(std::string const & iName, long long iCount, Time_EType iType) {
  char const * const suffix = iType == Time_eType_Samples ? "s" : "t";
  return Cmn_CreateXMLNode(iName, std::to_string(iCount) + suffix);
}

}  // namespace

template <class T>
Cmn_XMLNodePtr Time_TypedBase<T>::GetAsXML(std::string const & iName) const {
  return MakeNode(iName, mCount, mType);
}

template VRAD_EXPORT Cmn_XMLNodePtr
Time_TypedBase<Time_Typed>::GetAsXML(std::string const & iName) const;

Cmn_XMLNodePtr Time_TypedLength::GetAsXML(std::string const & iName) const {
  return MakeNode(iName, mCount, mType);
}

int Time_CompareUnlike(Time_Typed iA, Time_Typed iB) {
  long long const a = iA.AsInt64(), b = iB.AsInt64();
  // A limit compares with its twin and with everything else as its count does.
  if (IsLimit(a) || IsLimit(b) || !CanConvert(iA.GetType(), iB.GetType()))
    return CompareCounts(a, b);
  return Time_Convert::sTimeConverter->Compare(iA, iB);
}

Time_Typed Time_AddUnlike(Time_Typed iStart, Time_TypedLength iLength) {
  if (IsLimit(iStart.AsInt64())) return iStart;
  if (CanConvert(iStart.GetType(), iLength.GetType()))
    return Time_Convert::sTimeConverter->AddLength(iStart, iLength);
  return Time_Typed(Time_Saturating::Add(iStart.AsInt64(), iLength.AsInt64()), iStart.GetType());
}

Time_Typed Time_SubtractUnlike(Time_Typed iStart, Time_TypedLength iLength) {
  long long const negated = Time_Saturating::Subtract(0, iLength.AsInt64());
  return Time_AddUnlike(iStart, Time_TypedLength(negated, iLength.GetType()));
}

long long Time_CountInUnit(Time_Typed iTime, Time_EType iType) {
  if (IsLimit(iTime.AsInt64()) || !CanConvert(iTime.GetType(), iType)) return iTime.AsInt64();
  return Time_Convert::sTimeConverter->ToType(iTime, iType).AsInt64();
}

Time_TypedLength & Time_TypedLength::operator+=(Time_TypedLength const & iLength) {
  mCount = Time_Saturating::Add(mCount, CountOf(iLength, mType));
  return *this;
}

Time_TypedLength & Time_TypedLength::operator-=(Time_TypedLength const & iLength) {
  mCount = Time_Saturating::Subtract(mCount, CountOf(iLength, mType));
  return *this;
}

Time_TypedLength operator*(Time_TypedLength iLength, int iFactor) {
  long long product;
  if (__builtin_mul_overflow(iLength.AsInt64(), static_cast<long long>(iFactor), &product))
    product = (iLength.AsInt64() < 0) == (iFactor < 0) ? kMax : kMin;
  return Time_TypedLength(product, iLength.GetType());
}

Time_TypedLength operator*(Time_TypedLength iLength, double iFactor) {
  return Time_TypedLength(Scale(iLength.AsInt64(), iFactor), iLength.GetType());
}

Time_TypedLength operator/(Time_TypedLength iLength, int iDivisor) {
  return Time_TypedLength(Divide(iLength.AsInt64(), iDivisor), iLength.GetType());
}

long long Time_TypedLength::GetRawDataForSave() const {
  return Time_TypedDefs::GetRawDataForSave(mCount, mType);
}

void Time_TypedLength::SetFromRawSavedData(long long iRaw) {
  Time_TypedDefs::SetFromRawSavedData(iRaw, &mCount, &mType);
}

long long Time_TypedDefs::GetRawDataForSave(long long iCount, Time_EType iType) {
  constexpr long long kLargest = (1LL << 62) - 1;
  long long const count = iCount > kLargest ? kLargest : iCount < -kLargest ? -kLargest : iCount;
  return count * 2 + (iType & 1);
}

void Time_TypedDefs::SetFromRawSavedData(long long iRaw, long long * oCount, Time_EType * oType) {
  *oCount = iRaw >> 1;
  *oType = static_cast<Time_EType>(iRaw & 1);
}
