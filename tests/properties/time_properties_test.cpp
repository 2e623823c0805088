// What holds for every tempo map, position and length.
#include <algorithm>
#include <limits>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "foundation/time_convert.h"

namespace {

constexpr long long kMax = std::numeric_limits<long long>::max();
constexpr long long kMin = std::numeric_limits<long long>::min();

// Few digits, many digits, and the tempos of MIDI files. None is so slow that a tick is longer than
// a sample.
rc::Gen<double> AnyTempo() {
  return rc::gen::oneOf(
      rc::gen::map(rc::gen::inRange(3, 1000), [](int n) { return double(n); }),
      rc::gen::map(rc::gen::inRange(300, 99999), [](int n) { return n / 97.0; }),
      rc::gen::map(rc::gen::inRange(200000, 2000000), [](int n) { return 60000000.0 / n; }));
}

void Fill(Time_TempoMap & oMap, bool iOnlyNear) {
  long long const reach = iOnlyNear ? 2000 : 1LL << 40;
  oMap.Reset(*AnyTempo());
  int const numChanges = *rc::gen::inRange(0, 12);
  for (int i = 0; i < numChanges; ++i)
    oMap.SetTempoAt(Time_Tick(*rc::gen::inRange<long long>(-reach, reach)), *AnyTempo());
}

long long AnyCount(bool iOnlyNear) {
  if (iOnlyNear) return *rc::gen::inRange<long long>(-3000, 3000);
  return *rc::gen::oneOf(rc::gen::inRange<long long>(-(1LL << 42), 1LL << 42),
                         rc::gen::arbitrary<long long>(),
                         rc::gen::element(kMin, kMin + 1, 0LL, kMax - 1, kMax));
}

Time_Typed AnyTime(bool iOnlyNear) {
  return Time_Typed(AnyCount(iOnlyNear), *rc::gen::element(Time_eType_Samples, Time_eType_Ticks));
}

long long ToSample(Time_TempoMap const & iMap, long long iTick) {
  return iMap.ToType(Time_Tick(iTick), Time_eType_Samples).AsInt64();
}
long long ToTick(Time_TempoMap const & iMap, long long iSample) {
  return iMap.ToType(Time_Sample(iSample), Time_eType_Ticks).AsInt64();
}

struct Installed {
  explicit Installed(Time_Converter * iConverterP) { Time_Convert::sTimeConverter = iConverterP; }
  ~Installed() { Time_Convert::sTimeConverter = &Time_Convert::GetDefaultTempoMap(); }
};

}  // namespace

RC_GTEST_PROP(Time_TempoMap_Properties, ConversionIsMonotone, (bool iNear)) {
  Time_TempoMap map;
  Fill(map, iNear);
  long long const a = AnyCount(iNear), b = AnyCount(iNear);
  RC_ASSERT(ToSample(map, std::min(a, b)) <= ToSample(map, std::max(a, b)));
  RC_ASSERT(ToTick(map, std::min(a, b)) <= ToTick(map, std::max(a, b)));
}

RC_GTEST_PROP(Time_TempoMap_Properties, SampleToTickToSampleIsTheIdentity, (bool iNear)) {
  Time_TempoMap map;
  Fill(map, iNear);
  long long const sample = AnyCount(iNear), tick = ToTick(map, sample);
  if (tick != kMax && tick != kMin) RC_ASSERT(ToSample(map, tick) == sample);
}

RC_GTEST_PROP(Time_TempoMap_Properties, ASampleConvertsToItsFirstTick, (bool iNear)) {
  Time_TempoMap map;
  Fill(map, iNear);
  long long const sample = AnyCount(iNear), tick = ToTick(map, sample);
  RC_PRE(tick < kMax && tick > kMin + 1);
  RC_ASSERT(map.Compare(Time_Tick(tick), Time_Sample(sample)) >= 0);
  RC_ASSERT(map.Compare(Time_Tick(tick - 1), Time_Sample(sample)) < 0);
}

RC_GTEST_PROP(Time_TempoMap_Properties, ATickConvertsToTheSampleThatHoldsIt, (bool iNear)) {
  Time_TempoMap map;
  Fill(map, iNear);
  long long const tick = AnyCount(iNear), sample = ToSample(map, tick);
  RC_PRE(sample < kMax - 1 && sample > kMin);
  RC_ASSERT(map.Compare(Time_Sample(sample), Time_Tick(tick)) <= 0);
  RC_ASSERT(map.Compare(Time_Sample(sample + 1), Time_Tick(tick)) > 0);
}

RC_GTEST_PROP(Time_TempoMap_Properties, TickZeroIsSampleZero, (bool iNear)) {
  Time_TempoMap map;
  Fill(map, iNear);
  RC_ASSERT(ToSample(map, 0) == 0);
  RC_ASSERT(ToTick(map, 0) == 0);
}

RC_GTEST_PROP(Time_TempoMap_Properties, ChangesInAnyOrderGiveOneMap, (bool iNear)) {
  Time_TempoMap forward(100), backward(100);
  std::vector<std::pair<long long, double>> changes;
  for (long long tick = 1; tick < 8; ++tick)
    changes.emplace_back(tick * 700 - 2000, *AnyTempo());
  for (auto const & [tick, tempo] : changes)
    forward.SetTempoAt(Time_Tick(tick), tempo);
  std::reverse(changes.begin(), changes.end());
  for (auto const & [tick, tempo] : changes)
    backward.SetTempoAt(Time_Tick(tick), tempo);
  long long const count = AnyCount(iNear);
  RC_ASSERT(ToSample(forward, count) == ToSample(backward, count));
  RC_ASSERT(ToTick(forward, count) == ToTick(backward, count));
}

RC_GTEST_PROP(Time_TempoMap_Properties, ALengthFromTheOriginIsAPosition, (bool iNear)) {
  Time_TempoMap map;
  Fill(map, iNear);
  long long const count = AnyCount(iNear);
  RC_PRE(count != kMin && count != kMax);
  RC_ASSERT(map.AddLength(Time_Sample(0), Time_TickLength(count)).AsInt64() ==
            ToSample(map, count));
  RC_ASSERT(map.AddLength(Time_Tick(0), Time_SampleLength(count)).AsInt64() == ToTick(map, count));
}

// The sum lies in the result's unit at the last sample, or first tick, that the exact sum allows.
RC_GTEST_PROP(Time_TempoMap_Properties, LengthsAddAsInstants, ()) {
  Time_TempoMap map;
  Fill(map, true);
  long long const tick = AnyCount(true), samples = AnyCount(true);
  long long const floorSample = ToSample(map, tick);
  long long const sum = map.AddLength(Time_Tick(tick), Time_SampleLength(samples)).AsInt64();
  // tick lies in [floorSample, floorSample + 1), so the sum in that interval moved by the samples.
  RC_ASSERT(map.Compare(Time_Tick(sum), Time_Sample(floorSample + samples)) >= 0);
  RC_ASSERT(map.Compare(Time_Tick(sum - 1), Time_Sample(floorSample + samples + 1)) < 0);
  if (samples == 0) RC_ASSERT(sum == tick);
}

RC_GTEST_PROP(Time_TempoMap_Properties, LinesTooOddFor64BitsKeepTheRules, ()) {
  Time_TempoMap map(*AnyTempo());
  for (int i = 1; i < 30; ++i)
    map.SetTempoAt(Time_Tick(i * 101), 50 + 1.0 / (3 * i + *rc::gen::inRange(1, 9999)));
  long long const sample = *rc::gen::inRange<long long>(-100, 3000), tick = ToTick(map, sample);
  RC_ASSERT(ToSample(map, tick) == sample);
  RC_ASSERT(map.Compare(Time_Tick(tick), Time_Sample(sample)) >= 0);
  RC_ASSERT(map.Compare(Time_Tick(tick - 1), Time_Sample(sample)) < 0);
  RC_ASSERT(map.AddLength(Time_Sample(0), Time_TickLength(tick)).AsInt64() == sample);
  RC_ASSERT(map.AddLength(Time_Tick(0), Time_SampleLength(sample)).AsInt64() == tick);
}

RC_GTEST_PROP(Time_Typed_Properties, ComparisonIsATotalOrder, (bool iNear)) {
  Time_TempoMap map;
  Fill(map, iNear);
  Installed const installed(&map);
  Time_Typed const a = AnyTime(iNear), b = AnyTime(iNear), c = AnyTime(iNear);
  RC_ASSERT((a < b) + (a == b) + (b < a) == 1);
  RC_ASSERT((a == b) == (b == a));
  if (a < b && b < c) RC_ASSERT(a < c);
  if (a == b && b == c) RC_ASSERT(a == c);
  if (a == b && b < c) RC_ASSERT(a < c);
}

RC_GTEST_PROP(Time_Typed_Properties, SampleBasedRangesHandOutEachTickOnce, ()) {
  Time_TempoMap map;
  Fill(map, true);
  Installed const installed(&map);
  long long const tick = AnyCount(true);
  Time_Typed start, end;
  Time_Convert::MakeTickRangeSampleBased(Time_Tick(tick), Time_Tick(tick), false, start, end);
  RC_ASSERT(start == end);
  RC_ASSERT(start <= Time_Typed(Time_Tick(tick)));
  RC_ASSERT(ToSample(map, start.AsInt64()) == ToSample(map, tick));
}

RC_GTEST_PROP(Time_TypedDefs_Properties, PackingGivesBackCountAndUnit, (long long iRaw)) {
  long long const count = iRaw / 2;
  for (Time_EType const type : {Time_eType_Samples, Time_eType_Ticks}) {
    long long back;
    Time_EType backType;
    long long const packed = Time_TypedDefs::GetRawDataForSave(count, type);
    Time_TypedDefs::SetFromRawSavedData(packed, &back, &backType);
    RC_ASSERT(back == std::clamp(count, 1 - (1LL << 62), (1LL << 62) - 1));
    RC_ASSERT(backType == type);
    RC_ASSERT((packed < 0) == (count < 0));
    RC_ASSERT(packed == Time_TypedLength(count, type).GetRawDataForSave());
  }
}

RC_GTEST_PROP(Time_Convert_Properties, SnappingGoesToTheNearestMultiple, ()) {
  long long const grid = *rc::gen::inRange<long long>(1, 5000);
  long long const tick = *rc::gen::inRange<long long>(-100000, 100000);
  Time_Globals::sCoarseInternalTickGrid = static_cast<unsigned long long>(grid);
  long long snapped = tick;
  Time_Convert::SnapToCoarseInternalTick(snapped);
  Time_Globals::sCoarseInternalTickGrid = 1000;
  RC_ASSERT(snapped % grid == 0);
  RC_ASSERT(2 * (snapped - tick) <= grid);
  RC_ASSERT(2 * (snapped - tick) > -grid);
}
