#include "foundation/time_convert.h"

#include <atomic>
#include <cmath>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr long long kMax = std::numeric_limits<long long>::max();
constexpr long long kMin = std::numeric_limits<long long>::min();

std::string Print(Time_Typed iTime) {
  std::ostringstream text;
  text << iTime.AsInt64() << (iTime.GetType() == Time_eType_Ticks ? "t" : "s");
  return text.str();
}

long long ToSample(Time_Converter const & iMap, long long iTick) {
  return iMap.ToType(Time_Tick(iTick), Time_eType_Samples).AsInt64();
}
long long ToTick(Time_Converter const & iMap, long long iSample) {
  return iMap.ToType(Time_Sample(iSample), Time_eType_Ticks).AsInt64();
}

struct SampleRate {
  explicit SampleRate(double iHertz) { Time_Globals::SetSampleRate(iHertz); }
  ~SampleRate() { Time_Globals::SetSampleRate(48000); }
};

struct Grid {
  explicit Grid(unsigned long long iGrid) { Time_Globals::sCoarseInternalTickGrid = iGrid; }
  ~Grid() { Time_Globals::sCoarseInternalTickGrid = 1000; }
};

struct Installed {
  explicit Installed(Time_Converter * iConverterP) { Time_Convert::sTimeConverter = iConverterP; }
  ~Installed() { Time_Convert::sTimeConverter = &Time_Convert::GetDefaultTempoMap(); }
};

// 10 ticks to the sample; what a host gives that overrides only what it must.
class TenTicks : public Time_Converter {
public:
  Time_Typed ToType(Time_Typed iTime, Time_EType iType) const override {
    if (iTime.GetType() == iType) return iTime;
    if (iType == Time_eType_Ticks) return Time_Tick(iTime.AsInt64() * 10);
    return Time_Sample(
        static_cast<long long>(std::floor(static_cast<double>(iTime.AsInt64()) / 10)));
  }
  Time_Typed AddLength(Time_Typed iStart, Time_TypedLength const & iLength) const override {
    return Time_Typed(iStart.AsInt64() + 7000 + iLength.AsInt64(), iStart.GetType());
  }
};

long long Snapped(long long iTicks) {
  Time_Convert::SnapToCoarseInternalTick(iTicks);
  return iTicks;
}

// Before any dynamic initialiser of this file, and perhaps of the library.
Time_Typed const sConvertedAtLoad =
    Time_Convert::sTimeConverter->ToType(Time_Tick(80), Time_eType_Samples);

}  // namespace

TEST(Time_Globals, StartValues) {
  EXPECT_EQ(Time_Globals::GetSampleRate(), 48000.0);
  EXPECT_EQ(Time_Globals::sCoarseInternalTickGrid, 1000u);
  EXPECT_EQ(Time_Globals::kTicksPerBeat, 960000);
  EXPECT_EQ(Time_cDefaultOriginTick.AsInt64(), 0);
}

TEST(Time_Globals_SetSampleRate, ChangesAllMaps) {
  Time_TempoMap map(60);
  SampleRate const rate(96000);
  EXPECT_EQ(Time_Globals::GetSampleRate(), 96000.0);
  EXPECT_EQ(ToSample(map, 960000), 96000);
  EXPECT_EQ(ToSample(Time_Convert::GetDefaultTempoMap(), 960000), 48000);
  EXPECT_EQ(ToSample(Time_TempoMap(60), 960000), 96000);
}

TEST(Time_Globals_SetSampleRate, KeepsTheTempoChanges) {
  Time_TempoMap map(60);
  map.SetTempoAt(Time_Tick(960000), 120);
  SampleRate const rate(24000);
  EXPECT_EQ(map.GetNumTempoChanges(), 2);
  EXPECT_EQ(ToSample(map, 2 * 960000), 24000 + 12000);
}

TEST(Time_Globals_SetSampleRate, RefusesWhatIsNotFiniteAndPositive) {
  double const inf = std::numeric_limits<double>::infinity();
  for (double const rate : {0.0, -48000.0, inf, std::nan("")})
    EXPECT_THROW(Time_Globals::SetSampleRate(rate), std::invalid_argument);
  EXPECT_EQ(Time_Globals::GetSampleRate(), 48000.0);
}

TEST(Time_Convert, StartsAtTheDefaultTempoMap) {
  EXPECT_EQ(Time_Convert::sTimeConverter, &Time_Convert::GetDefaultTempoMap());
}

TEST(Time_Convert, ConvertsBeforeAnythingIsInitialised) {
  EXPECT_EQ(Print(sConvertedAtLoad), "2s");
}

TEST(Time_Convert_ToType, GivesTheOriginInEitherUnit) {
  EXPECT_EQ(Print(Time_Convert::ToType(Time_Sample(0), Time_eType_Ticks)), "0t");
  EXPECT_EQ(Print(Time_Convert::ToType(Time_Sample(0), Time_eType_Samples)), "0s");
  EXPECT_EQ(Print(Time_Convert::ToType(Time_Sample(3), Time_eType_Ticks)), "120t");
}

TEST(Time_Convert_ToType, WithoutAConverterKeepsTheCount) {
  Installed const none(nullptr);
  EXPECT_EQ(Print(Time_Convert::ToType(Time_Sample(3), Time_eType_Ticks)), "3t");
}

TEST(Time_Convert_Snap, GoesToTheNearestMultiple) {
  EXPECT_EQ(Snapped(0), 0);
  EXPECT_EQ(Snapped(499), 0);
  EXPECT_EQ(Snapped(501), 1000);
  EXPECT_EQ(Snapped(1000), 1000);
  EXPECT_EQ(Snapped(-501), -1000);
  EXPECT_EQ(Snapped(-499), 0);
}

TEST(Time_Convert_Snap, TiesGoUpward) {
  EXPECT_EQ(Snapped(500), 1000);
  EXPECT_EQ(Snapped(-500), 0);
  EXPECT_EQ(Snapped(-1500), -1000);
}

TEST(Time_Convert_Snap, AnOddGridHasNoTies) {
  Grid const grid(7);
  EXPECT_EQ(Snapped(3), 0);
  EXPECT_EQ(Snapped(4), 7);
  EXPECT_EQ(Snapped(-3), 0);
  EXPECT_EQ(Snapped(-4), -7);
}

TEST(Time_Convert_Snap, AGridOfZeroOrOneChangesNothing) {
  for (unsigned long long const size : {0ULL, 1ULL}) {
    Grid const grid(size);
    EXPECT_EQ(Snapped(1001), 1001);
  }
}

TEST(Time_Convert_Snap, LimitsStay) {
  Grid const grid(10);
  EXPECT_EQ(Snapped(kMax), kMax);
  EXPECT_EQ(Snapped(kMin), kMin);
}

TEST(Time_Convert_Snap, AHugeGridStaysInRange) {
  Grid const grid(~0ULL);
  EXPECT_EQ(Snapped(5), 0);
  EXPECT_EQ(Snapped(kMax - 1), 0);
}

TEST(Time_Convert_Snap, ThePositionFormSnapsTicksAlone) {
  EXPECT_EQ(Print(Time_Convert::SnapToCoarseInternalTick(Time_Tick(1499))), "1000t");
  EXPECT_EQ(Print(Time_Convert::SnapToCoarseInternalTick(Time_Sample(1499))), "1499s");
}

TEST(Time_Convert_MakeTickRangeSampleBased, GivesTheFirstTickOfEachBoundsSample) {
  Time_Typed start, end;
  Time_Convert::MakeTickRangeSampleBased(Time_Tick(79), Time_Tick(120), false, start, end);
  EXPECT_EQ(Print(start), "40t");
  EXPECT_EQ(Print(end), "120t");
  Time_Convert::MakeTickRangeSampleBased(Time_Tick(-1), Time_Tick(119), true, start, end);
  EXPECT_EQ(Print(start), "-40t");
  EXPECT_EQ(Print(end), "80t");
}

TEST(Time_Convert_MakeTickRangeSampleBased, PassesSamplesAndLimitsUnchanged) {
  Time_Typed start, end;
  Time_Convert::MakeTickRangeSampleBased(Time_Sample(79), Time_Typed::MaxTime(Time_eType_Ticks),
                                         false, start, end);
  EXPECT_EQ(Print(start), "79s");
  EXPECT_EQ(end.AsInt64(), kMax);
  Time_Convert::MakeTickRangeSampleBased(Time_Typed::MinTime(Time_eType_Ticks), Time_Tick(1), false,
                                         start, end);
  EXPECT_EQ(start.AsInt64(), kMin);
  EXPECT_EQ(Print(end), "0t");
}

TEST(Time_Convert_MakeTickRangeSampleBased, MayWriteOverItsBounds) {
  Time_Typed start = Time_Tick(79), end = Time_Tick(121);
  Time_Convert::MakeTickRangeSampleBased(start, end, false, start, end);
  EXPECT_EQ(Print(start), "40t");
  EXPECT_EQ(Print(end), "120t");
  Time_Convert::MakeTickRangeSampleBased(Time_Tick(79), start, false, start, end);
  EXPECT_EQ(Print(end), "40t");
}

TEST(Time_Convert_MakeTickRangeSampleBased, ABoundWhoseSampleIsOutOfRangeStays) {
  Time_TempoMap map(0.001);  // 3000 samples to the tick
  Installed const installed(&map);
  Time_Typed start, end;
  Time_Convert::MakeTickRangeSampleBased(Time_Tick(kMax - 5), Time_Tick(kMin + 5), false, start,
                                         end);
  EXPECT_EQ(start.AsInt64(), kMax - 5);
  EXPECT_EQ(end.AsInt64(), kMin + 5);
}

TEST(Time_Convert_MakeTickRangeSampleBased, WithoutAConverterPassesTheRange) {
  Installed const none(nullptr);
  Time_Typed start, end;
  Time_Convert::MakeTickRangeSampleBased(Time_Tick(79), Time_Tick(121), false, start, end);
  EXPECT_EQ(Print(start), "79t");
  EXPECT_EQ(Print(end), "121t");
}

TEST(Time_Converter, AHostsOwnIsAskedByValuesAndStatics) {
  TenTicks ten;
  Installed const installed(&ten);
  EXPECT_TRUE(Time_Typed(Time_Sample(1)) == Time_Tick(10));
  EXPECT_EQ(Print(Time_Typed(Time_Sample(1)) + Time_TickLength(5)), "7006s");
  EXPECT_EQ(Print(Time_Typed(Time_Sample(1)) - Time_TickLength(5)), "6996s");
  EXPECT_EQ(Time_Typed(Time_Sample(3)).AsTick().AsInt64(), 30);
  EXPECT_EQ(Print(Time_Convert::ToType(Time_Sample(2), Time_eType_Ticks)), "20t");
}

TEST(Time_Converter_Compare, DefaultBodyOrdersByToType) {
  TenTicks const ten;
  EXPECT_EQ(ten.Compare(Time_Sample(1), Time_Tick(10)), 0);
  EXPECT_EQ(ten.Compare(Time_Tick(10), Time_Sample(1)), 0);
  EXPECT_EQ(ten.Compare(Time_Sample(1), Time_Tick(11)), -1);
  EXPECT_EQ(ten.Compare(Time_Tick(11), Time_Sample(1)), 1);
  EXPECT_EQ(ten.Compare(Time_Sample(1), Time_Tick(9)), 1);
  EXPECT_EQ(ten.Compare(Time_Sample(2), Time_Tick(19)), 1);
  EXPECT_EQ(ten.Compare(Time_Tick(3), Time_Tick(4)), -1);
}

TEST(Time_Converter_Compare, DefaultBodyPutsLimitsOutside) {
  TenTicks const ten;
  EXPECT_EQ(ten.Compare(Time_Sample(kMax), Time_Tick(kMax)), 0);
  EXPECT_EQ(ten.Compare(Time_Sample(5), Time_Tick(kMin)), 1);
}

TEST(Time_Converter_MakeTickRangeSampleBased, DefaultBodyGivesTheFirstTickOfTheSample) {
  TenTicks const ten;
  Time_Typed start, end;
  ten.MakeTickRangeSampleBased(Time_Tick(19), Time_Sample(3), false, start, end);
  EXPECT_EQ(Print(start), "10t");
  EXPECT_EQ(Print(end), "3s");
}

// Odd tempos, so that some of the changes need wide numbers.
double OddTempo(int iIndex) {
  return 60.0 + iIndex * 0.7310585786300049;
}

TEST(Time_TempoMap_SetTempoAt, GivesTheSameAppendedAsInsertedInFront) {
  constexpr int kNum = 40;
  Time_TempoMap appended, inserted;
  for (int i = 1; i <= kNum; ++i)
    appended.SetTempoAt(Time_Tick(i * 777777), OddTempo(i));
  for (int i = kNum; i >= 1; --i)
    inserted.SetTempoAt(Time_Tick(i * 777777), OddTempo(i));
  ASSERT_EQ(kNum + 1, appended.GetNumTempoChanges());
  for (long long tick = -1000000; tick < 40000000; tick += 98765) {
    Time_Typed const time = Time_Tick(tick);
    EXPECT_EQ(inserted.ToType(time, Time_eType_Samples).AsInt64(),
              appended.ToType(time, Time_eType_Samples).AsInt64())
        << tick;
  }
}

TEST(Time_TempoMap_SetTempoAt, LeavesWhatWasAppendedWhenTheLastChangeIsReplaced) {
  Time_TempoMap map;
  map.SetTempoAt(Time_Tick(960000), 60.0);
  map.SetTempoAt(Time_Tick(1920000), 240.0);
  map.SetTempoAt(Time_Tick(1920000), 30.0);
  map.SetTempoAt(Time_Tick(2880000), 120.0);
  // 0.5 s, then 1 s, then 2 s.
  EXPECT_EQ(168000, map.ToType(Time_Tick(2880000), Time_eType_Samples).AsInt64());
  EXPECT_EQ(4, map.GetNumTempoChanges());
}

TEST(Time_TempoMap, StartsAt120BeatsPerMinute) {
  Time_TempoMap const map;
  EXPECT_EQ(map.GetTempoAt(Time_Tick(0)), 120.0);
  EXPECT_EQ(map.GetNumTempoChanges(), 1);
  EXPECT_EQ(ToSample(map, 40), 1);
}

TEST(Time_TempoMap, RefusesTemposThatAreNotFiniteAndPositive) {
  double const inf = std::numeric_limits<double>::infinity();
  Time_TempoMap map(100);
  for (double const tempo : {0.0, -1.0, inf, -inf, std::nan("")}) {
    EXPECT_THROW(Time_TempoMap{tempo}, std::invalid_argument);
    EXPECT_THROW(map.Reset(tempo), std::invalid_argument);
    EXPECT_THROW(map.SetTempoAt(Time_Tick(5), tempo), std::invalid_argument);
  }
  EXPECT_EQ(map.GetNumTempoChanges(), 1);
  EXPECT_EQ(map.GetTempoAt(Time_Tick(5)), 100.0);
}

TEST(Time_TempoMap_ToType, TicksRoundDownToSamples) {
  Time_TempoMap const map;
  EXPECT_EQ(ToSample(map, 39), 0);
  EXPECT_EQ(ToSample(map, 40), 1);
  EXPECT_EQ(ToSample(map, -1), -1);
  EXPECT_EQ(ToSample(map, -40), -1);
  EXPECT_EQ(ToSample(map, -41), -2);
}

TEST(Time_TempoMap_ToType, SamplesRoundUpToTicks) {
  Time_TempoMap const map(70);  // 3 samples are 70 ticks
  EXPECT_EQ(ToTick(map, 1), 24);
  EXPECT_EQ(ToTick(map, 3), 70);
  EXPECT_EQ(ToTick(map, -1), -23);
}

TEST(Time_TempoMap_ToType, SameUnitAndLimitsPass) {
  Time_TempoMap const map;
  EXPECT_EQ(Print(map.ToType(Time_Tick(7), Time_eType_Ticks)), "7t");
  EXPECT_TRUE(map.ToType(Time_Typed::MaxTime(Time_eType_Ticks), Time_eType_Samples) ==
              Time_Typed::MaxTime(Time_eType_Samples));
  EXPECT_TRUE(map.ToType(Time_Typed::MinTime(Time_eType_Samples), Time_eType_Ticks) ==
              Time_Typed::MinTime(Time_eType_Ticks));
}

TEST(Time_TempoMap_ToType, Saturates) {
  Time_TempoMap const map;
  EXPECT_EQ(ToTick(map, kMax / 2), kMax);
  EXPECT_EQ(ToTick(map, kMin / 2), kMin);
}

TEST(Time_TempoMap_SetTempoAt, HoldsUntilTheNextChange) {
  Time_TempoMap map(120);
  map.SetTempoAt(Time_Tick(960000), 60);
  map.SetTempoAt(Time_Tick(2 * 960000), 240);
  EXPECT_EQ(map.GetNumTempoChanges(), 3);
  EXPECT_EQ(ToSample(map, 960000), 24000);
  EXPECT_EQ(ToSample(map, 2 * 960000), 72000);
  EXPECT_EQ(ToSample(map, 3 * 960000), 84000);
  EXPECT_EQ(ToTick(map, 24000), 960000);
  EXPECT_EQ(ToTick(map, 48000), 960000 + 480000);
  EXPECT_EQ(ToTick(map, 84000), 3 * 960000);
}

TEST(Time_TempoMap_SetTempoAt, OrderOfCallsDoesNotMatter) {
  Time_TempoMap map(120);
  map.SetTempoAt(Time_Tick(2 * 960000), 240);
  map.SetTempoAt(Time_Tick(960000), 60);
  EXPECT_EQ(ToSample(map, 3 * 960000), 84000);
}

TEST(Time_TempoMap_SetTempoAt, ASecondCallAtOneTickReplaces) {
  Time_TempoMap map(120);
  map.SetTempoAt(Time_Tick(0), 60);
  EXPECT_EQ(map.GetNumTempoChanges(), 1);
  EXPECT_EQ(ToSample(map, 960000), 48000);
  map.SetTempoAt(Time_Tick(960000), 240);
  map.SetTempoAt(Time_Tick(960000), 30);
  EXPECT_EQ(map.GetNumTempoChanges(), 2);
  EXPECT_EQ(ToSample(map, 2 * 960000), 48000 + 96000);
}

TEST(Time_TempoMap_SetTempoAt, TheFirstTempoHoldsBackward) {
  Time_TempoMap map(60);
  map.SetTempoAt(Time_Tick(960000), 240);
  EXPECT_EQ(ToSample(map, -960000), -48000);
  EXPECT_EQ(map.GetTempoAt(Time_Tick(kMin)), 60.0);
  EXPECT_EQ(map.GetTempoAt(Time_Tick(959999)), 60.0);
  EXPECT_EQ(map.GetTempoAt(Time_Tick(960000)), 240.0);
}

TEST(Time_TempoMap_SetTempoAt, TickZeroIsSampleZeroWhateverIsSetBeforeIt) {
  Time_TempoMap map(120);
  map.SetTempoAt(Time_Tick(-960000), 60);
  map.SetTempoAt(Time_Tick(-2 * 960000), 30);
  EXPECT_EQ(ToSample(map, 0), 0);
  EXPECT_EQ(ToSample(map, -960000), -48000);
  EXPECT_EQ(ToSample(map, -2 * 960000), -48000 - 96000);
  EXPECT_EQ(ToSample(map, -3 * 960000), -48000 - 2 * 96000);
  EXPECT_EQ(ToTick(map, -48000 - 2 * 96000), -3 * 960000);
}

TEST(Time_TempoMap_SetTempoAt, AnEqualTempoChangesNoPosition) {
  Time_TempoMap map(120);
  for (long long tick = 1; tick < 400; tick += 7)
    map.SetTempoAt(Time_Tick(tick), 120);
  for (long long tick = -100; tick < 500; ++tick)
    EXPECT_EQ(ToSample(map, tick),
              static_cast<long long>(std::floor(static_cast<double>(tick) / 40)));
}

TEST(Time_TempoMap_SetTempoAt, NothingDriftsOverManyChanges) {
  // A third of a sample to the tick and a seventh in turns: 21 ticks of each are 10 samples.
  Time_TempoMap map(9);
  for (long long i = 0; i < 1000; ++i) {
    map.SetTempoAt(Time_Tick(42 * i), 9);
    map.SetTempoAt(Time_Tick(42 * i + 21), 21);
  }
  EXPECT_EQ(ToSample(map, 42000), 10000);
  EXPECT_EQ(ToSample(map, 41999), 9999);
  EXPECT_EQ(ToTick(map, 10000), 42000);
  EXPECT_EQ(map.Compare(Time_Sample(10000), Time_Tick(42000)), 0);
}

// 700000 microseconds to the beat are 0.035 samples to the tick, though no double is 600 / 7.
TEST(Time_TempoMap_SetTempoAt, ATempoIsTheFractionThatItsDoubleStandsFor) {
  Time_TempoMap map(60000000.0 / 700000);
  EXPECT_EQ(ToSample(map, 200), 7);
  EXPECT_EQ(ToTick(map, 7), 200);
  map.Reset(99.9);
  EXPECT_EQ(ToSample(map, 333), 10);
  EXPECT_EQ(ToTick(map, 10), 333);
}

TEST(Time_TempoMap_SetTempoAt, TemposOfManyDigitsStayMonotone) {
  Time_TempoMap map(120.1);
  for (int i = 1; i < 200; ++i)
    map.SetTempoAt(Time_Tick(1009LL * i), 60000000.0 / (400000 + 7919 * i));
  long long last = ToSample(map, -1);
  for (long long tick = 0; tick < 205000; tick += 11) {
    long long const sample = ToSample(map, tick);
    EXPECT_GE(sample, last);
    EXPECT_LE(ToTick(map, sample), tick);
    EXPECT_GT(ToTick(map, sample + 1), tick);
    last = sample;
  }
}

TEST(Time_TempoMap_SetTempoAt, ExtremeTemposKeepTheRules) {
  for (double const tempo : {1e-300, 5e-324, 1e300, std::numeric_limits<double>::max()}) {
    Time_TempoMap map(tempo);
    map.SetTempoAt(Time_Tick(1000), 120);
    map.SetTempoAt(Time_Tick(-1000), tempo);
    EXPECT_EQ(ToSample(map, 0), 0);
    EXPECT_LE(ToSample(map, -1), -1);
    EXPECT_GE(ToSample(map, kMax - 1), 0);
    EXPECT_GE(ToTick(map, kMax - 1), 1);
    EXPECT_EQ(map.AddLength(Time_Sample(0), Time_TickLength(0)).AsInt64(), 0);
  }
}

TEST(Time_TempoMap_Reset, DropsAllChanges) {
  Time_TempoMap map(120);
  map.SetTempoAt(Time_Tick(-5), 30);
  map.SetTempoAt(Time_Tick(960000), 60);
  map.Reset(240);
  EXPECT_EQ(map.GetNumTempoChanges(), 1);
  EXPECT_EQ(map.GetTempoAt(Time_Tick(-10)), 240.0);
  EXPECT_EQ(ToSample(map, 2 * 960000), 24000);
}

TEST(Time_TempoMap_Compare, TellsInstantsWithinOneSample) {
  Time_TempoMap map(9);  // a third of a sample to the tick
  EXPECT_EQ(map.Compare(Time_Sample(1), Time_Tick(3)), 0);
  EXPECT_EQ(map.Compare(Time_Sample(1), Time_Tick(4)), -1);
  EXPECT_EQ(map.Compare(Time_Sample(1), Time_Tick(2)), 1);
  EXPECT_EQ(map.Compare(Time_Tick(4), Time_Sample(1)), 1);
}

TEST(Time_TempoMap_Compare, TellsInstantsWithinOneTick) {
  Time_TempoMap map(0.001);  // 3000 samples to the tick
  EXPECT_EQ(map.Compare(Time_Sample(2999), Time_Tick(1)), -1);
  EXPECT_EQ(map.Compare(Time_Sample(3000), Time_Tick(1)), 0);
  EXPECT_EQ(map.Compare(Time_Sample(3001), Time_Tick(1)), 1);
}

TEST(Time_TempoMap_AddLength, LikeUnitsAddCounts) {
  Time_TempoMap const map;
  EXPECT_EQ(Print(map.AddLength(Time_Tick(5), Time_TickLength(3))), "8t");
  EXPECT_EQ(Print(map.AddLength(Time_Sample(5), Time_SampleLength(-8))), "-3s");
}

TEST(Time_TempoMap_AddLength, MeasuresAlongTheTempoChanges) {
  Time_TempoMap map(120);
  map.SetTempoAt(Time_Tick(960000), 60);
  // Half a beat at 120, half a beat at 60.
  EXPECT_EQ(Print(map.AddLength(Time_Sample(12000), Time_TickLength(960000))), "48000s");
  EXPECT_EQ(Print(map.AddLength(Time_Tick(480000), Time_SampleLength(36000))), "1440000t");
  EXPECT_EQ(Print(map.AddLength(Time_Sample(48000), Time_TickLength(-960000))), "12000s");
  EXPECT_EQ(Print(map.AddLength(Time_Tick(1440000), Time_SampleLength(-36000))), "480000t");
}

TEST(Time_TempoMap_AddLength, RoundsOnceByTheUnitThatComesOut) {
  Time_TempoMap const map(27);  // a ninth of a sample to the tick
  EXPECT_EQ(Print(map.AddLength(Time_Sample(1), Time_TickLength(8))), "1s");
  EXPECT_EQ(Print(map.AddLength(Time_Sample(1), Time_TickLength(9))), "2s");
  EXPECT_EQ(Print(map.AddLength(Time_Sample(1), Time_TickLength(-1))), "0s");
  Time_TempoMap const slow(6);  // half a sample to the tick
  EXPECT_EQ(Print(slow.AddLength(Time_Tick(1), Time_SampleLength(1))), "3t");
  Time_TempoMap const odd(0.001);  // 3000 samples to the tick
  EXPECT_EQ(Print(odd.AddLength(Time_Tick(1), Time_SampleLength(1))), "2t");
  EXPECT_EQ(Print(odd.AddLength(Time_Tick(1), Time_SampleLength(-1))), "1t");
}

TEST(Time_TempoMap_AddLength, StartsWithinASampleAcrossAChange) {
  Time_TempoMap map(9);               // a third of a sample to the tick
  map.SetTempoAt(Time_Tick(4), 4.5);  // two thirds
  // Tick 1 is a third; one sample on is four thirds, where tick 4 is.
  EXPECT_EQ(Print(map.AddLength(Time_Tick(1), Time_SampleLength(1))), "4t");
  EXPECT_EQ(Print(map.AddLength(Time_Tick(1), Time_SampleLength(3))), "7t");
  EXPECT_EQ(Print(map.AddLength(Time_Sample(1), Time_TickLength(2))), "2s");
  EXPECT_EQ(Print(map.AddLength(Time_Sample(3), Time_TickLength(-3))), "1s");
}

TEST(Time_TempoMap_AddLength, LimitsStay) {
  Time_TempoMap const map;
  EXPECT_EQ(map.AddLength(Time_Typed::MaxTime(Time_eType_Ticks), Time_SampleLength(-5)).AsInt64(),
            kMax);
  EXPECT_EQ(map.AddLength(Time_Typed::MinTime(Time_eType_Samples), Time_TickLength(5)).AsInt64(),
            kMin);
}

TEST(Time_TempoMap, ReadersGoOnWhileChangesAreAddedBehind) {
  Time_TempoMap map(60);
  std::atomic<bool> stop(false);
  std::atomic<int> numBad(0);
  std::thread reader([&] {
    while (!stop) {
      if (ToSample(map, 960000) != 48000) ++numBad;
      if (map.GetTempoAt(Time_Tick(960000LL * map.GetNumTempoChanges())) < 60) ++numBad;
    }
  });
  for (int i = 1; i <= 2000; ++i)
    map.SetTempoAt(Time_Tick(960000LL * i), i % 2 ? 120 : 99.9);
  stop = true;
  reader.join();
  EXPECT_EQ(numBad, 0);
  EXPECT_EQ(map.GetNumTempoChanges(), 2001);
}

TEST(Time_TempoMap, ReadersSeeWholeTablesDuringEdits) {
  Time_TempoMap map(60);
  std::atomic<bool> stop(false);
  std::atomic<int> numBad(0);
  std::thread reader([&] {
    while (!stop) {
      long long const sample = ToSample(map, 960000);
      if (sample != 48000 && sample != 12000) ++numBad;
    }
  });
  for (int i = 0; i < 2000; ++i) {
    map.Reset(i % 2 ? 60 : 240);
    map.SetTempoAt(Time_Tick(960000 + i), 33);
  }
  stop = true;
  reader.join();
  EXPECT_EQ(numBad, 0);
}
