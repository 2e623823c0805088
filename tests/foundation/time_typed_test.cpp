#include "foundation/time_typed.h"

#include <limits>
#include <sstream>
#include <type_traits>

#include <gtest/gtest.h>

#include "foundation/time_convert.h"

namespace {

constexpr long long kMax = std::numeric_limits<long long>::max();
constexpr long long kMin = std::numeric_limits<long long>::min();

std::string Print(long long iCount, Time_EType iType) {
  std::ostringstream text;
  text << iCount << (iType == Time_eType_Ticks ? "t" : iType == Time_eType_Samples ? "s" : "?");
  return text.str();
}
std::string Print(Time_Typed iTime) {
  return Print(iTime.AsInt64(), iTime.GetType());
}
std::string Print(Time_TypedLength iLength) {
  return Print(iLength.AsInt64(), iLength.GetType());
}

Time_Typed Ticks(long long iCount) {
  return Time_Typed(iCount, Time_eType_Ticks);
}
Time_Typed Samples(long long iCount) {
  return Time_Typed(iCount, Time_eType_Samples);
}
Time_TypedLength TickLength(long long iCount) {
  return Time_TypedLength(iCount, Time_eType_Ticks);
}
Time_TypedLength SampleLength(long long iCount) {
  return Time_TypedLength(iCount, Time_eType_Samples);
}

// Unlike units then compare by count, as without a host.
struct WithoutConverter {
  WithoutConverter() { Time_Convert::sTimeConverter = nullptr; }
  ~WithoutConverter() { Time_Convert::sTimeConverter = &Time_Convert::GetDefaultTempoMap(); }
};

class AllEqual : public Time_Converter {
public:
  AllEqual() { Time_Convert::sTimeConverter = this; }
  ~AllEqual() override { Time_Convert::sTimeConverter = &Time_Convert::GetDefaultTempoMap(); }
  Time_Typed ToType(Time_Typed iTime, Time_EType) const override { return iTime; }
  Time_Typed AddLength(Time_Typed iStart, Time_TypedLength const &) const override {
    return iStart;
  }
  int Compare(Time_Typed, Time_Typed) const override { return 0; }
};

long long RoundTripCount(long long iCount, Time_EType iType) {
  long long count = 0;
  Time_EType type = Time_eType_Samples;
  Time_TypedDefs::SetFromRawSavedData(Time_TypedDefs::GetRawDataForSave(iCount, iType), &count,
                                      &type);
  EXPECT_EQ(type, iType);
  return count;
}

}  // namespace

// The tempo of all these tests is the one at start: 40 ticks to the sample.

TEST(Time_EType, HasTheNumbersOfSavedFiles) {
  EXPECT_EQ(Time_eType_Samples, 0);
  EXPECT_EQ(Time_eType_Ticks, 1);
  EXPECT_EQ(sizeof(Time_EType), 4u);
}

TEST(Time_Typed, StartsAsTickZero) {
  EXPECT_EQ(Print(Time_Typed()), "0t");
}

TEST(Time_Typed, KeepsCountAndUnit) {
  EXPECT_EQ(Print(Time_Typed(-5, Time_eType_Samples)), "-5s");
  EXPECT_EQ(Print(Time_Typed(7, Time_eType_Ticks)), "7t");
}

TEST(Time_Typed, AdoptsTheUnitOfItsSource) {
  Time_Typed const tick = Time_Tick(3), sample = Time_Sample(4);
  EXPECT_EQ(Print(tick), "3t");
  EXPECT_EQ(Print(sample), "4s");
}

TEST(Time_Typed, IsTriviallyCopyable) {
  EXPECT_TRUE(std::is_trivially_copyable_v<Time_Typed>);
  EXPECT_TRUE(std::is_trivially_copyable_v<Time_TypedLength>);
}

TEST(Time_Typed, DerivesFromItsBase) {
  EXPECT_TRUE((std::is_base_of_v<Time_TypedBase<Time_Typed>, Time_Typed>));
}

TEST(Time_Typed, TakesNoBareNumber) {
  EXPECT_FALSE((std::is_convertible_v<long long, Time_Typed>));
  EXPECT_FALSE((std::is_convertible_v<long long, Time_TypedLength>));
}

TEST(Time_Typed, LimitsAreTheEndsOfTheNumberRange) {
  EXPECT_EQ(Time_Typed::MaxTime(Time_eType_Ticks).AsInt64(), kMax);
  EXPECT_EQ(Time_Typed::MinTime(Time_eType_Samples).AsInt64(), kMin);
  EXPECT_EQ(Time_Typed::MinTime(Time_eType_Samples).GetType(), Time_eType_Samples);
}

TEST(Time_Typed, TimeOfAnEmptyStoreEqualsTickZero) {
  EXPECT_TRUE(Time_Typed(0, Time_eType_Ticks) == Time_Tick(0));
}

TEST(Time_Typed_Compare, LikeUnitsCompareCountsAsSigned) {
  EXPECT_TRUE(Ticks(-1) < Ticks(0));
  EXPECT_FALSE(Ticks(0) < Ticks(0));
  EXPECT_TRUE(Samples(2) > Samples(1));
  EXPECT_TRUE(Samples(2) >= Samples(2));
  EXPECT_TRUE(Samples(2) <= Samples(2));
  EXPECT_TRUE(Samples(2) == Samples(2));
  EXPECT_TRUE(Samples(2) != Samples(3));
}

TEST(Time_Typed_Compare, UnlikeUnitsCompareAsInstants) {
  EXPECT_TRUE(Samples(1) == Ticks(40));
  EXPECT_TRUE(Ticks(40) == Samples(1));
  EXPECT_TRUE(Samples(1) < Ticks(41));
  EXPECT_TRUE(Ticks(39) < Samples(1));
  EXPECT_TRUE(Samples(-1) > Ticks(-41));
}

TEST(Time_Typed_Compare, UnlikeUnitsAreNotRounded) {
  // Both lie within sample 1, the tick behind its beginning.
  EXPECT_FALSE(Samples(1) == Ticks(79));
  EXPECT_TRUE(Samples(1) != Ticks(79));
}

TEST(Time_Typed_Compare, LimitsEqualTheirTwins) {
  EXPECT_TRUE(Time_Typed::MaxTime(Time_eType_Ticks) == Time_Typed::MaxTime(Time_eType_Samples));
  EXPECT_TRUE(Time_Typed::MinTime(Time_eType_Ticks) == Time_Typed::MinTime(Time_eType_Samples));
}

TEST(Time_Typed_Compare, LimitsLieBeyondEverythingElse) {
  EXPECT_TRUE(Samples(kMax - 1) < Time_Typed::MaxTime(Time_eType_Ticks));
  EXPECT_TRUE(Ticks(kMax - 1) < Time_Typed::MaxTime(Time_eType_Samples));
  EXPECT_TRUE(Samples(kMin + 1) > Time_Typed::MinTime(Time_eType_Ticks));
  EXPECT_TRUE(Ticks(kMin + 1) > Time_Typed::MinTime(Time_eType_Samples));
}

TEST(Time_Typed_Compare, AHostsConverterNeedNotKnowTheLimits) {
  AllEqual const converter;
  EXPECT_TRUE(Samples(5) == Ticks(7));
  EXPECT_TRUE(Samples(5) < Time_Typed::MaxTime(Time_eType_Ticks));
  EXPECT_TRUE(Time_Typed::MinTime(Time_eType_Ticks) < Samples(5));
  EXPECT_TRUE(Time_Typed::MaxTime(Time_eType_Samples) > Ticks(5));
}

TEST(Time_Typed_Compare, OtherUnitsCompareByCount) {
  Time_EType const other = static_cast<Time_EType>(2);
  EXPECT_TRUE(Time_Typed(40, other) == Ticks(40));
  EXPECT_TRUE(Samples(1) < Time_Typed(2, other));
}

TEST(Time_Typed_Compare, WithoutAConverterUnlikeUnitsCompareByCount) {
  WithoutConverter const without;
  EXPECT_TRUE(Samples(40) == Ticks(40));
  EXPECT_TRUE(Samples(1) < Ticks(2));
}

TEST(Time_Typed_Compare, ATickConvertsOnEitherSide) {
  EXPECT_TRUE(Time_Tick(40) == Samples(1));
  EXPECT_TRUE(Samples(1) == Time_Tick(40));
  EXPECT_TRUE(Time_Tick(1) < Time_Tick(2));
  EXPECT_TRUE(Time_Sample(1) == Time_Tick(40));
}

TEST(Time_Typed_Arithmetic, AddsAndSubtractsLengths) {
  EXPECT_EQ(Print(Ticks(5) + TickLength(3)), "8t");
  EXPECT_EQ(Print(Samples(5) - SampleLength(8)), "-3s");
  EXPECT_EQ(Print(Time_Tick(5) + Time_TickLength(3)), "8t");
}

TEST(Time_Typed_Arithmetic, InPlaceFormsGiveTheDerivedReference) {
  Time_Typed time = Ticks(5);
  Time_Typed & added = time += TickLength(2);
  Time_Typed & subtracted = time -= TickLength(4);
  EXPECT_EQ(&added, &time);
  EXPECT_EQ(&subtracted, &time);
  EXPECT_EQ(Print(time), "3t");
}

TEST(Time_Typed_Arithmetic, StepsByOneOfItsUnit) {
  Time_Typed time = Samples(5);
  EXPECT_EQ(Print(++time), "6s");
  EXPECT_EQ(Print(time++), "6s");
  EXPECT_EQ(Print(time), "7s");
}

TEST(Time_Typed_Arithmetic, KeepsItsUnitWhenALengthHasTheOther) {
  EXPECT_EQ(Print(Samples(10) + TickLength(80)), "12s");
  EXPECT_EQ(Print(Ticks(10) + SampleLength(2)), "90t");
  EXPECT_EQ(Print(Samples(10) - TickLength(80)), "8s");
  EXPECT_EQ(Print(Ticks(10) - SampleLength(2)), "-70t");
}

TEST(Time_Typed_Arithmetic, RoundsASampleDownWhenTicksAreAdded) {
  EXPECT_EQ(Print(Samples(10) + TickLength(79)), "11s");
  EXPECT_EQ(Print(Samples(10) - TickLength(1)), "9s");
}

TEST(Time_Typed_Arithmetic, DifferenceHasTheLeftUnit) {
  EXPECT_EQ(Print(Ticks(100) - Ticks(130)), "-30t");
  EXPECT_EQ(Print(Ticks(100) - Samples(2)), "20t");
  EXPECT_EQ(Print(Samples(10) - Ticks(79)), "9s");  // tick 79 lies in sample 1
}

TEST(Time_Typed_Arithmetic, WithoutAConverterCountsAreTakenAsTheyAre) {
  WithoutConverter const without;
  EXPECT_EQ(Print(Samples(10) + TickLength(80)), "90s");
  EXPECT_EQ(Print(Ticks(10) - SampleLength(2)), "8t");
  EXPECT_EQ(Print(Ticks(10) - Samples(2)), "8t");
  EXPECT_EQ(Ticks(10).AsTick().AsInt64(), 10);
  EXPECT_EQ(Samples(10).AsTick().AsInt64(), 10);
}

TEST(Time_Typed_Arithmetic, StopsAtTheEndsOfTheRange) {
  EXPECT_EQ((Ticks(kMax - 1) + TickLength(5)).AsInt64(), kMax);
  EXPECT_EQ((Ticks(kMin + 1) - TickLength(5)).AsInt64(), kMin);
  EXPECT_EQ((Ticks(kMax - 1) - TickLength(kMin)).AsInt64(), kMax);
  EXPECT_EQ((Ticks(-2) - Ticks(kMax)).AsInt64(), kMin);
  EXPECT_EQ((Ticks(0) - Ticks(kMin)).AsInt64(), kMax);
  EXPECT_EQ((Samples(kMax - 1) + TickLength(400)).AsInt64(), kMax);
  EXPECT_EQ((Ticks(5) + SampleLength(kMax)).AsInt64(), kMax);
  EXPECT_EQ((Ticks(5) - SampleLength(kMin)).AsInt64(), kMax);
}

TEST(Time_Typed_Arithmetic, LimitsStay) {
  for (Time_EType const type : {Time_eType_Samples, Time_eType_Ticks}) {
    Time_Typed const max = Time_Typed::MaxTime(type), min = Time_Typed::MinTime(type);
    EXPECT_EQ((max - TickLength(1)).AsInt64(), kMax);
    EXPECT_EQ((max - SampleLength(1)).AsInt64(), kMax);
    EXPECT_EQ((min + TickLength(1)).AsInt64(), kMin);
    EXPECT_EQ((min + SampleLength(1)).AsInt64(), kMin);
    Time_Typed stepped = min;
    EXPECT_EQ((++stepped).AsInt64(), kMin);
    stepped = max;
    EXPECT_EQ((stepped++).AsInt64(), kMax);
    EXPECT_EQ(stepped.AsInt64(), kMax);
  }
}

TEST(Time_Typed_AsTick, ConvertsSamplesUpward) {
  EXPECT_EQ(Ticks(7).AsTick().AsInt64(), 7);
  EXPECT_EQ(Samples(3).AsTick().AsInt64(), 120);
}

TEST(Time_Typed_AsTick, LimitsGiveLimits) {
  EXPECT_EQ(Time_Typed::MaxTime(Time_eType_Samples).AsTick().AsInt64(), kMax);
  EXPECT_EQ(Time_Typed::MinTime(Time_eType_Samples).AsTick().AsInt64(), kMin);
}

TEST(Time_Typed_GetAsXML, ShowsCountAndSuffix) {
  Cmn_XMLNodePtr const ticks = Ticks(960000).GetAsXML("time");
  EXPECT_EQ(ticks->GetName(), "time");
  EXPECT_EQ(ticks->GetValue(), "960000t");
  EXPECT_EQ(Samples(-3).GetAsXML("time")->GetValue(), "-3s");
}

TEST(Time_TypedLength, StartsAsNothing) {
  EXPECT_EQ(Print(Time_TypedLength()), "0t");
}

TEST(Time_TypedLength, AdoptsTheUnitOfItsSource) {
  Time_TypedLength const ticks = Time_TickLength(3), samples = Time_SampleLength(4);
  EXPECT_EQ(Print(ticks), "3t");
  EXPECT_EQ(Print(samples), "4s");
}

TEST(Time_TypedLength, OneIsTheSmallestLegalDurationInEitherUnit) {
  EXPECT_TRUE(Time_TypedLength(1, Time_eType_Ticks) > TickLength(0));
  EXPECT_TRUE(Time_TypedLength(1, Time_eType_Samples) > SampleLength(0));
}

TEST(Time_TypedLength_Compare, LikeUnitsCompareCounts) {
  EXPECT_TRUE(TickLength(-2) < TickLength(1));
  EXPECT_TRUE(TickLength(2) == TickLength(2));
  EXPECT_TRUE(TickLength(2) != TickLength(3));
  EXPECT_TRUE(TickLength(2) >= TickLength(2));
  EXPECT_TRUE(TickLength(2) <= TickLength(2));
  EXPECT_TRUE(TickLength(3) > TickLength(2));
}

TEST(Time_TypedLength_Compare, UnlikeUnitsCompareTheInstantsReachedFromTheOrigin) {
  EXPECT_TRUE(TickLength(80) == SampleLength(2));
  EXPECT_TRUE(TickLength(79) < SampleLength(2));
  EXPECT_TRUE(SampleLength(2) < TickLength(81));
}

TEST(Time_TypedLength_Arithmetic, AddsAndSubtracts) {
  EXPECT_EQ(Print(TickLength(5) + TickLength(3)), "8t");
  EXPECT_EQ(Print(TickLength(5) - TickLength(8)), "-3t");
  Time_TypedLength length = SampleLength(5);
  Time_TypedLength & added = length += SampleLength(1);
  Time_TypedLength & subtracted = length -= SampleLength(4);
  EXPECT_EQ(&added, &length);
  EXPECT_EQ(&subtracted, &length);
  EXPECT_EQ(Print(length), "2s");
}

TEST(Time_TypedLength_Arithmetic, KeepsTheLeftUnit) {
  EXPECT_EQ(Print(TickLength(5) + SampleLength(2)), "85t");
  EXPECT_EQ(Print(SampleLength(5) - TickLength(79)), "4s");
}

TEST(Time_TypedLength_Arithmetic, MultipliesByANumber) {
  EXPECT_EQ(Print(SampleLength(5) * 3), "15s");
  EXPECT_EQ(Print(TickLength(5) * -3), "-15t");
}

TEST(Time_TypedLength_Arithmetic, FractionsTruncateTowardsZero) {
  EXPECT_EQ(Print(TickLength(7) * 0.5), "3t");
  EXPECT_EQ(Print(TickLength(-7) * 0.5), "-3t");
  EXPECT_EQ(Print(TickLength(7) / 2), "3t");
  EXPECT_EQ(Print(TickLength(-7) / 2), "-3t");
}

TEST(Time_TypedLength_Arithmetic, StopsAtTheEndsOfTheRange) {
  EXPECT_EQ((TickLength(kMax) + TickLength(1)).AsInt64(), kMax);
  EXPECT_EQ((TickLength(kMin) - TickLength(1)).AsInt64(), kMin);
  EXPECT_EQ((TickLength(kMax) * 2).AsInt64(), kMax);
  EXPECT_EQ((TickLength(kMax) * -2).AsInt64(), kMin);
  EXPECT_EQ((TickLength(kMin) * -1).AsInt64(), kMax);
  EXPECT_EQ((TickLength(kMax) * 2.0).AsInt64(), kMax);
  EXPECT_EQ((TickLength(kMax) * -2.0).AsInt64(), kMin);
  EXPECT_EQ((TickLength(kMin) / -1).AsInt64(), kMax);
}

TEST(Time_TypedLength_Arithmetic, AFactorKeepsTheLowBitsOfALongCount) {
  constexpr long long kOdd = (1LL << 53) + 1;  // no double
  EXPECT_EQ((TickLength(kOdd) * 1.0).AsInt64(), kOdd);
  EXPECT_EQ((TickLength(kOdd) * -1.0).AsInt64(), -kOdd);
  EXPECT_EQ((TickLength(-kOdd) * 3.0).AsInt64(), -3 * kOdd);
  EXPECT_EQ((TickLength(kOdd) * 512.0).AsInt64(), 512 * kOdd);
  EXPECT_EQ((TickLength(kMax) * 1.0).AsInt64(), kMax);
  EXPECT_EQ((TickLength(kMax - 1) * 1.0).AsInt64(), kMax - 1);
  EXPECT_EQ((TickLength(kMin) * 1.0).AsInt64(), kMin);
  EXPECT_EQ((TickLength(kMin) * 0.5).AsInt64(), kMin / 2);
}

TEST(Time_TypedLength_Arithmetic, AFactorTruncatesALongProductTowardsZero) {
  constexpr long long kOdd = (1LL << 55) + 3;
  EXPECT_EQ((TickLength(kOdd) * 0.5).AsInt64(), (1LL << 54) + 1);
  EXPECT_EQ((TickLength(kOdd) * -0.5).AsInt64(), -(1LL << 54) - 1);
  EXPECT_EQ((TickLength(kOdd) * 0.0).AsInt64(), 0);
}

TEST(Time_TypedLength_Arithmetic, AFactorTakesShortCountsAsADoubleDoes) {
  EXPECT_EQ((TickLength(480) * 0.3).AsInt64(), 144);
  EXPECT_EQ((TickLength(480) * 0.7).AsInt64(), 336);
  EXPECT_EQ((TickLength(-480) * 0.7).AsInt64(), -336);
}

TEST(Time_TypedLength_Arithmetic, AnOverlongProductStopsAtTheLimit) {
  EXPECT_EQ((TickLength(1) * 0x1p63).AsInt64(), kMax);
  EXPECT_EQ((TickLength(1) * -0x1p63).AsInt64(), kMin);
  EXPECT_EQ((TickLength(1) * 0x1p62).AsInt64(), 1LL << 62);
  EXPECT_EQ((TickLength(3) * 0x1p1000).AsInt64(), kMax);
  EXPECT_EQ((TickLength(3) * -std::numeric_limits<double>::infinity()).AsInt64(), kMin);
  EXPECT_EQ((TickLength(0) * std::numeric_limits<double>::infinity()).AsInt64(), 0);
  EXPECT_EQ((TickLength(kMax) * 1.0000000000000002).AsInt64(), kMax);
}

TEST(Time_TypedLength_Arithmetic, DividingByZeroGivesTheLimitOfTheSign) {
  EXPECT_EQ((TickLength(5) / 0).AsInt64(), kMax);
  EXPECT_EQ((TickLength(-5) / 0).AsInt64(), kMin);
  EXPECT_EQ((TickLength(0) / 0).AsInt64(), 0);
}

TEST(Time_TypedLength_Arithmetic, AFactorThatIsNoNumberGivesNothing) {
  EXPECT_EQ((TickLength(5) * std::numeric_limits<double>::quiet_NaN()).AsInt64(), 0);
}

TEST(Time_TypedLength_GetAsXML, ShowsCountAndSuffix) {
  EXPECT_EQ(TickLength(480000).GetAsXML("length")->GetName(), "length");
  EXPECT_EQ(TickLength(480000).GetAsXML("length")->GetValue(), "480000t");
  EXPECT_EQ(SampleLength(2).GetAsXML("length")->GetValue(), "2s");
}

TEST(Time_TypedDefs, PacksTwiceTheCountPlusTheUnit) {
  EXPECT_EQ(Time_TypedDefs::GetRawDataForSave(5, Time_eType_Samples), 10);
  EXPECT_EQ(Time_TypedDefs::GetRawDataForSave(5, Time_eType_Ticks), 11);
  EXPECT_EQ(Time_TypedDefs::GetRawDataForSave(-5, Time_eType_Samples), -10);
  EXPECT_EQ(Time_TypedDefs::GetRawDataForSave(-5, Time_eType_Ticks), -9);
}

TEST(Time_TypedDefs, IsNegativeExactlyWhenTheCountIs) {
  EXPECT_EQ(Time_TypedDefs::GetRawDataForSave(-1, Time_eType_Ticks), -1);
  EXPECT_EQ(Time_TypedDefs::GetRawDataForSave(0, Time_eType_Ticks), 1);
}

TEST(Time_TypedDefs, GivesBackCountAndUnit) {
  EXPECT_EQ(RoundTripCount(960000, Time_eType_Ticks), 960000);
  EXPECT_EQ(RoundTripCount(-960000, Time_eType_Ticks), -960000);
  EXPECT_EQ(RoundTripCount(-1, Time_eType_Samples), -1);
  EXPECT_EQ(RoundTripCount((1LL << 62) - 1, Time_eType_Ticks), (1LL << 62) - 1);
  EXPECT_EQ(RoundTripCount(-(1LL << 62) + 1, Time_eType_Ticks), -(1LL << 62) + 1);
}

TEST(Time_TypedDefs, SaturatesWhatDoesNotFit) {
  EXPECT_EQ(RoundTripCount(1LL << 62, Time_eType_Samples), (1LL << 62) - 1);
  EXPECT_EQ(RoundTripCount(-(1LL << 62), Time_eType_Ticks), -(1LL << 62) + 1);
  EXPECT_EQ(RoundTripCount(kMax, Time_eType_Ticks), (1LL << 62) - 1);
  EXPECT_EQ(RoundTripCount(kMin, Time_eType_Samples), -(1LL << 62) + 1);
}

TEST(Time_TypedLength_Raw, IsPackedAsInTheDefs) {
  EXPECT_EQ(TickLength(-480000).GetRawDataForSave(), -959999);
  Time_TypedLength length;
  length.SetFromRawSavedData(-959999);
  EXPECT_EQ(Print(length), "-480000t");
  length.SetFromRawSavedData(10);
  EXPECT_EQ(Print(length), "5s");
}
