#include "foundation/time_convert.h"

namespace {

bool IsLimit(Time_Typed iTime) {
  return iTime.AsInt64() == Time_Saturating::kMin || iTime.AsInt64() == Time_Saturating::kMax;
}

int CompareCounts(long long iA, long long iB) {
  return iA < iB ? -1 : iA > iB;
}

// A sample and a tick. The tick's sample is rounded down, so a sample above it lies after the tick
// and one below it before; of the ticks of one sample the first is where the sample stands.
int CompareSampleWithTick(Time_Converter const & iConverter, Time_Typed iSample, Time_Typed iTick) {
  int const bySample =
      CompareCounts(iSample.AsInt64(), iConverter.ToType(iTick, Time_eType_Samples).AsInt64());
  if (bySample != 0) return bySample;
  return CompareCounts(iConverter.ToType(iSample, Time_eType_Ticks).AsInt64(), iTick.AsInt64());
}

Time_Typed FirstTickOfSample(Time_Converter const & iConverter, Time_Typed iBound) {
  if (iBound.GetType() != Time_eType_Ticks || IsLimit(iBound)) return iBound;
  Time_Typed const sample = iConverter.ToType(iBound, Time_eType_Samples);
  return IsLimit(sample) ? iBound : iConverter.ToType(sample, Time_eType_Ticks);
}

}  // namespace

Time_Converter::~Time_Converter() = default;

int Time_Converter::Compare(Time_Typed iA, Time_Typed iB) const {
  if (iA.GetType() == iB.GetType() || IsLimit(iA) || IsLimit(iB))
    return CompareCounts(iA.AsInt64(), iB.AsInt64());
  return iA.GetType() == Time_eType_Samples ? CompareSampleWithTick(*this, iA, iB)
                                            : -CompareSampleWithTick(*this, iB, iA);
}

void Time_Converter::MakeTickRangeSampleBased(Time_Typed iStart, Time_Typed iEnd, bool,
                                              Time_Typed & oStart, Time_Typed & oEnd) const {
  Time_Typed const end = FirstTickOfSample(*this, iEnd);  // the outputs may be the inputs' objects
  oStart = FirstTickOfSample(*this, iStart);
  oEnd = end;
}

Time_Typed Time_Convert::ToType(Time_Sample iSample, Time_EType iType) {
  return Time_Typed(Time_CountInUnit(iSample, iType), iType);
}

void Time_Convert::MakeTickRangeSampleBased(Time_Typed iStart, Time_Typed iEnd, bool iFlag,
                                            Time_Typed & oStart, Time_Typed & oEnd) {
  if (sTimeConverter) {
    sTimeConverter->MakeTickRangeSampleBased(iStart, iEnd, iFlag, oStart, oEnd);
  } else {
    oStart = iStart;
    oEnd = iEnd;
  }
}

void Time_Convert::SnapToCoarseInternalTick(long long & ioTicks) {
  __extension__ typedef __int128 Wide;
  unsigned long long const grid = Time_Globals::sCoarseInternalTickGrid;
  if (grid <= 1 || IsLimit(Time_Tick(ioTicks))) return;
  Wide const size = grid, doubled = 2 * static_cast<Wide>(ioTicks) + size;
  Wide steps = doubled / (2 * size);
  if (doubled % (2 * size) < 0) --steps;
  Wide const snapped = steps * size;
  if (snapped > Time_Saturating::kMax)
    ioTicks = Time_Saturating::kMax;
  else if (snapped < Time_Saturating::kMin)
    ioTicks = Time_Saturating::kMin;
  else
    ioTicks = static_cast<long long>(snapped);
}

Time_Typed Time_Convert::SnapToCoarseInternalTick(Time_Typed iTime) {
  if (iTime.GetType() != Time_eType_Ticks) return iTime;
  long long ticks = iTime.AsInt64();
  SnapToCoarseInternalTick(ticks);
  return Time_Tick(ticks);
}

unsigned long long Time_Globals::sCoarseInternalTickGrid = 1000;
