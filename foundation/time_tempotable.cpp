#include "foundation/time_tempotable.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "foundation/time_typed.h"

namespace {

typedef Time_Int128 Int128;
typedef Time_IntWide Wide;

constexpr long long kMin = Time_Saturating::kMin;
constexpr long long kMax = Time_Saturating::kMax;
constexpr long long kFastLimit = 1LL << 62;  // products with a difference of counts fit 128 bits

// 120 beats per minute at 48000 Hz.
constinit Time_TempoLine const kLineAtStart = {0, 120.0, 0, 0, 1, 40, -1};

template <class T>
T FloorDiv(T const & iNum, T const & iDen) {
  T quotient = iNum / iDen;
  if (quotient * iDen > iNum) --quotient;
  return quotient;
}

template <class T>
T CeilDiv(T const & iNum, T const & iDen) {
  T quotient = iNum / iDen;
  if (quotient * iDen < iNum) ++quotient;
  return quotient;
}

template <class T>
long long Saturate(T const & iValue) {
  if (iValue >= T(kMax)) return kMax;
  if (iValue <= T(kMin)) return kMin;
  return static_cast<long long>(iValue);
}

struct Fraction {
  Wide mNum, mDen;
};

Fraction Reduced(Wide const & iNum, Wide const & iDen) {
  Wide const divisor = gcd(iNum, iDen);
  return {iNum / divisor, iDen / divisor};
}

// What a tempo or rate stands for: the first fraction of its expansion that rounds to the number,
// so that 85.714285714285708 is 600 / 7 and the samples on which its ticks fall are met. A number
// that no short fraction gives is taken as it is. Bounded to a range far beyond any use.
Fraction AsFraction(double iValue) {
  int exponent;
  double const value = std::clamp(iValue, 0x1p-64, 0x1p64);
  Wide const mantissa = static_cast<long long>(std::ldexp(std::frexp(value, &exponent), 53));
  Wide const num = mantissa << std::max(exponent - 53, 0);
  Wide const den = Wide(1) << std::max(53 - exponent, 0);
  Wide const limit = Wide(1) << 53;
  Fraction last = {0, 1}, result = {1, 0}, rest = {num, den};
  while (rest.mDen != 0) {
    Wide const whole = rest.mNum / rest.mDen;
    rest = {rest.mDen, rest.mNum - whole * rest.mDen};
    last =
        std::exchange(result, {whole * result.mNum + last.mNum, whole * result.mDen + last.mDen});
    if (result.mNum >= limit || result.mDen >= limit) break;
    if (static_cast<double>(result.mNum) / static_cast<double>(result.mDen) == value) return result;
  }
  return {num, den};
}

// rate * 60 / (tempo * 960000)
Fraction SamplesPerTick(double iTempo, double iSampleRate) {
  Fraction const tempo = AsFraction(iTempo), rate = AsFraction(iSampleRate);
  return Reduced(rate.mNum * tempo.mDen, rate.mDen * tempo.mNum * 16000);
}

// Keeps the numbers within their fixed size. Only sums of many odd tempos come here, whose fraction
// never meets a whole sample; 2^-128 of a sample keeps their order.
Fraction Bounded(Fraction const & iFraction) {
  Wide const limit = Wide(1) << 128;
  if (iFraction.mDen <= limit) return iFraction;
  return {iFraction.mNum * limit / iFraction.mDen, limit};
}

// A line through whole samples plus a fraction below 1.
Time_TempoWideLine MakeLine(Wide const & iSample, Fraction const & iRest, Fraction const & iSlope) {
  Wide const den = iRest.mDen / gcd(iRest.mDen, iSlope.mDen) * iSlope.mDen;
  return {iSample, iRest.mNum * (den / iRest.mDen), iSlope.mNum * (den / iSlope.mDen), den};
}

// The line with another slope that meets this one the given number of ticks from its start.
Time_TempoWideLine Continue(Time_TempoWideLine const & iLine, Wide const & iTicks,
                            Fraction const & iSlope) {
  Wide const num = iLine.mOffset + iTicks * iLine.mNum;
  Wide const whole = FloorDiv(num, iLine.mDen);
  Fraction const rest = Bounded(Reduced(num - whole * iLine.mDen, iLine.mDen));
  return MakeLine(iLine.mSample + whole, rest, iSlope);
}

Time_TempoWideLine Widen(Time_TempoLine const & iLine, Time_TempoWideLine const * iWides) {
  if (iLine.mWide >= 0) return iWides[iLine.mWide];
  return {iLine.mSample, iLine.mOffset, iLine.mNum, iLine.mDen};
}

void Store(Time_TempoWideLine const & iWide, Time_TempoLine & oLine,
           std::vector<Time_TempoWideLine> & ioWides) {
  bool const isFast = iWide.mNum < kFastLimit && iWide.mDen < kFastLimit &&
                      iWide.mSample < kFastLimit && iWide.mSample > -kFastLimit;
  oLine.mSample = Saturate(iWide.mSample);
  oLine.mOffset = isFast ? static_cast<long long>(iWide.mOffset) : iWide.mOffset != 0;
  oLine.mNum = isFast ? static_cast<long long>(iWide.mNum) : 0;
  oLine.mDen = isFast ? static_cast<long long>(iWide.mDen) : 0;
  oLine.mWide = isFast ? -1 : static_cast<int>(ioWides.size());
  if (!isFast) ioWides.push_back(iWide);
}

}  // namespace

void Time_TempoNumbers::Derive(double iSampleRate) {
  mWides.clear();
  auto const slopeOf = [&](Time_TempoLine const & iLine) {
    return SamplesPerTick(iLine.mTempo, iSampleRate);
  };
  // The line over tick 0, which is sample 0; the others follow from it in both directions.
  auto const after = std::upper_bound(
      mLines.begin(), mLines.end(), 0LL,
      [](long long iTick, Time_TempoLine const & iLine) { return iTick < iLine.mTick; });
  auto const origin = after == mLines.begin() ? after : after - 1;
  Fraction const slope = slopeOf(*origin);
  Time_TempoWideLine const through0 = MakeLine(0, {0, 1}, slope);
  Time_TempoWideLine const atOrigin = Continue(through0, origin->mTick, slope);
  Store(atOrigin, *origin, mWides);

  Time_TempoWideLine line = atOrigin;
  for (auto next = origin + 1; next != mLines.end(); ++next) {
    line = Continue(line, Wide(next->mTick) - (next - 1)->mTick, slopeOf(*next));
    Store(line, *next, mWides);
  }
  line = atOrigin;
  for (auto former = origin; former != mLines.begin();) {
    Wide const ticks = Wide((former - 1)->mTick) - former->mTick;
    --former;
    Fraction const back = slopeOf(*former);
    line = Continue(Continue(line, 0, back), ticks, back);
    Store(line, *former, mWides);
  }
}

void Time_TempoNumbers::DeriveLast(double iSampleRate) {
  Time_TempoLine & last = mLines.back();
  Time_TempoLine const & former = mLines[mLines.size() - 2];
  Store(Continue(Widen(former, mWides.data()), Wide(last.mTick) - former.mTick,
                 SamplesPerTick(last.mTempo, iSampleRate)),
        last, mWides);
}

Time_TempoTable::Time_TempoTable(std::shared_ptr<Time_TempoNumbers> const & iNumbersP)
    : mNumbersP(iNumbersP),
      mLinesP(iNumbersP->mLines.data()),
      mWidesP(iNumbersP->mWides.data()),
      mNumLines(static_cast<int>(iNumbersP->mLines.size())),
      mNumWides(static_cast<int>(iNumbersP->mWides.size())) {}

std::unique_ptr<Time_TempoTable> Time_TempoTable::MakeAppended(long long iTick, double iTempo,
                                                               double iSampleRate) const {
  std::shared_ptr<Time_TempoNumbers> const numbersP = CanGrow() ? mNumbersP : CopyNumbers();
  numbersP->mLines.push_back({iTick, iTempo, 0, 0});
  numbersP->DeriveLast(iSampleRate);
  return std::make_unique<Time_TempoTable>(numbersP);
}

std::shared_ptr<Time_TempoNumbers> Time_TempoTable::CopyNumbers() const {
  auto numbersP = std::make_shared<Time_TempoNumbers>();
  numbersP->mLines.reserve(2 * static_cast<size_t>(mNumLines));
  numbersP->mLines.assign(mLinesP, mLinesP + mNumLines);
  numbersP->mWides.reserve(2 * static_cast<size_t>(mNumWides));
  numbersP->mWides.assign(mWidesP, mWidesP + mNumWides);
  return numbersP;
}

// Whether a line fits behind those that this table sees without moving them. Wide numbers that are
// the first of their kind move nothing.
bool Time_TempoTable::CanGrow() const {
  std::vector<Time_TempoLine> const & lines = mNumbersP->mLines;
  std::vector<Time_TempoWideLine> const & wides = mNumbersP->mWides;
  bool const isLatest = lines.size() == static_cast<size_t>(mNumLines) &&
                        wides.size() == static_cast<size_t>(mNumWides);
  return isLatest && lines.size() < lines.capacity() &&
         (wides.empty() || wides.size() < wides.capacity());
}

Time_TempoLines::Time_TempoLines(Time_TempoTable const * iTableP)
    : mFirst(iTableP ? iTableP->mLinesP : &kLineAtStart),
      mNum(iTableP ? iTableP->mNumLines : 1),
      mWides(iTableP ? iTableP->mWidesP : nullptr) {}

Time_TempoLine const & Time_TempoLines::LineOfTick(long long iTick) const {
  Time_TempoLine const * const after =
      std::partition_point(mFirst + 1, mFirst + mNum,
                           [=](Time_TempoLine const & iLine) { return iLine.mTick <= iTick; });
  return after[-1];
}

Time_TempoLine const & Time_TempoLines::LineOfSample(long long iSample) const {
  Time_TempoLine const * const after =
      std::partition_point(mFirst + 1, mFirst + mNum, [=](Time_TempoLine const & iLine) {
        return iLine.mSample < iSample || (iLine.mSample == iSample && iLine.mOffset == 0);
      });
  return after[-1];
}

long long Time_TempoLines::TickToSample(long long iTick) const {
  Time_TempoLine const & line = LineOfTick(iTick);
  if (line.mDen != 0) {
    Int128 const ticks = Int128(iTick) - line.mTick;
    return Saturate(FloorDiv<Int128>(line.mOffset + ticks * line.mNum, line.mDen) + line.mSample);
  }
  Time_TempoWideLine const & wide = mWides[line.mWide];
  Wide const num = wide.mOffset + (Wide(iTick) - line.mTick) * wide.mNum;
  return Saturate<Wide>(wide.mSample + FloorDiv(num, wide.mDen));
}

long long Time_TempoLines::SampleToTick(long long iSample) const {
  Time_TempoLine const & line = LineOfSample(iSample);
  if (line.mDen != 0) {
    Int128 const num = (Int128(iSample) - line.mSample) * line.mDen - line.mOffset;
    return Saturate(CeilDiv<Int128>(num, line.mNum) + line.mTick);
  }
  Time_TempoWideLine const & wide = mWides[line.mWide];
  Wide const num = (iSample - wide.mSample) * wide.mDen - wide.mOffset;
  return Saturate<Wide>(CeilDiv(num, wide.mNum) + line.mTick);
}

int Time_TempoLines::CompareSampleWithTick(long long iSample, long long iTick) const {
  Time_TempoLine const & line = LineOfTick(iTick);
  if (line.mDen != 0) {
    Int128 const difference = (Int128(iSample) - line.mSample) * line.mDen -
                              (line.mOffset + (Int128(iTick) - line.mTick) * line.mNum);
    return difference < 0 ? -1 : difference > 0;
  }
  Time_TempoWideLine const & wide = mWides[line.mWide];
  Wide const difference = (iSample - wide.mSample) * wide.mDen -
                          (wide.mOffset + (Wide(iTick) - line.mTick) * wide.mNum);
  return difference.sign();
}

long long Time_TempoLines::AddTicksToSample(long long iSample, long long iTicks) const {
  Time_TempoLine const & from = LineOfSample(iSample);
  if (mNum == 1 && from.mDen != 0)
    return Saturate(FloorDiv<Int128>(Int128(iTicks) * from.mNum, from.mDen) + iSample);

  // The start lies num / from.mNum ticks after the beginning of its line.
  Time_TempoWideLine const start = Widen(from, mWides);
  Wide const num = (iSample - start.mSample) * start.mDen - start.mOffset;
  Wide const wholeTick = Wide(from.mTick) + iTicks + FloorDiv(num, start.mNum);
  Time_TempoLine const & to = LineOfTick(Saturate(wholeTick));
  Time_TempoWideLine const end = Widen(to, mWides);
  Wide const ticks = (Wide(from.mTick) + iTicks - to.mTick) * start.mNum + num;
  return Saturate<Wide>(end.mSample + FloorDiv<Wide>(end.mOffset * start.mNum + ticks * end.mNum,
                                                     end.mDen * start.mNum));
}

long long Time_TempoLines::AddSamplesToTick(long long iTick, long long iSamples) const {
  Time_TempoLine const & from = LineOfTick(iTick);
  if (mNum == 1 && from.mDen != 0)
    return Saturate(CeilDiv<Int128>(Int128(iSamples) * from.mDen, from.mNum) + iTick);

  // The end lies at num / start.mDen samples.
  Time_TempoWideLine const start = Widen(from, mWides);
  Wide const num = (start.mSample + iSamples) * start.mDen + start.mOffset +
                   (Wide(iTick) - from.mTick) * start.mNum;
  auto const past = [&](Time_TempoWideLine const & iLine) -> Wide {
    return num * iLine.mDen - (iLine.mSample * iLine.mDen + iLine.mOffset) * start.mDen;
  };
  Time_TempoLine const * const after =
      std::partition_point(mFirst + 1, mFirst + mNum, [&](Time_TempoLine const & iLine) {
        return past(Widen(iLine, mWides)) >= 0;
      });
  Time_TempoWideLine const end = Widen(after[-1], mWides);
  return Saturate<Wide>(CeilDiv<Wide>(past(end), start.mDen * end.mNum) + after[-1].mTick);
}
