// Sub-streams: names of continuous values and their index space.
#include <gtest/gtest.h>

#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "support/event_samples.h"
#include "vrad/vrae_substream.h"

namespace {

typedef std::vector<std::string> Texts;

constexpr char const * kRangeText =
    "iValue >= mTypeP->GetValueRange().mMin && iValue <= mTypeP->GetValueRange().mMax";

struct Row {
  std::string mName;
  Vrae_SubStream mSubStream;
  int mTypeCode, mIndex, mSubType, mMin, mMax, mKind;
};

void PrintTo(Row const & iRow, std::ostream * oStream) {
  *oStream << iRow.mName;
}

Row const kRows[] = {
    {"PitchBend", Vrae_SubStream::PitchBend(), 1, 0, 0, -8192, 8191, 4},
    {"Controller1", Vrae_SubStream::Controller(1), 2, 1, 1, 0, 127, 5},
    {"Controller119", Vrae_SubStream::Controller(119), 2, 119, 119, 0, 127, 5},
    {"MonoPressure", Vrae_SubStream::MonoPressure(), 4, 120, 0, 0, 127, 7},
    {"Program", Vrae_SubStream::Program(), 3, 121, 0, 0, 0xffffff, 6},
    {"PolyPressure0", Vrae_SubStream::PolyPressure(0), 5, 122, 0, 0, 127, 8},
    {"PolyPressure127", Vrae_SubStream::PolyPressure(127), 5, 249, 127, 0, 127, 8},
};

class SubStream : public testing::TestWithParam<Row> {};

TEST_P(SubStream, HasItsTypeIndexAndRange) {
  Row const & row = GetParam();
  EXPECT_FALSE(row.mSubStream.IsNull());
  EXPECT_EQ(row.mSubStream.GetType()->GetTypeCode(), row.mTypeCode);
  EXPECT_EQ(row.mSubStream.GetSubType(), row.mSubType);
  EXPECT_EQ(row.mSubStream.GetIndex(), row.mIndex);
  EXPECT_EQ(row.mSubStream.GetValueRange().mMin, row.mMin);
  EXPECT_EQ(row.mSubStream.GetValueRange().mMax, row.mMax);
}

TEST_P(SubStream, MakesEventsThatItReadsBackAndBelongsTo) {
  Row const & row = GetParam();
  Cmn_AssertRecorder const recorder;
  for (int value : {row.mMin, row.mMin + 1, (row.mMin + row.mMax) / 2, row.mMax - 1, row.mMax}) {
    Vrae_Event const event = row.mSubStream.MakeEvent(value);
    EXPECT_EQ(event.GetType(), row.mKind);
    EXPECT_EQ(row.mSubStream.GetValueFromEvent(event), value);
    EXPECT_EQ(Vrae_SubStream(event), row.mSubStream);
  }
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST_P(SubStream, ReportsAValueOutOfRangeAndMakesTheEvent) {
  Row const & row = GetParam();
  for (int value : {row.mMin - 1, row.mMax + 1}) {
    Cmn_AssertRecorder const recorder;
    EXPECT_EQ(row.mSubStream.MakeEvent(value).GetType(), row.mKind);
    EXPECT_EQ(recorder.GetNum(kRangeText), 1);
    EXPECT_FALSE(recorder.GetEntries().front().mThrowing);
  }
}

TEST_P(SubStream, ReportsAnEventOfAnotherKind) {
  EXPECT_EQ(GetFailedChecks([&] {
              (void)GetParam().mSubStream.GetValueFromEvent(Vrae_NoteOnEvent(60));
            }).size(),
            1u);
}

TEST_P(SubStream, TellsTheKindOfItsEvents) {
  signed char type = 99, subType = 99;
  GetParam().mSubStream.GetInfo(type, subType);
  EXPECT_EQ(type, GetParam().mKind);
  EXPECT_EQ(subType, GetParam().mKind == 5 ? GetParam().mSubType : 99);
}

INSTANTIATE_TEST_SUITE_P(Vrae, SubStream, testing::ValuesIn(kRows),
                         [](auto const & iInfo) { return iInfo.param.mName; });

Vrae_SubStreamType const & TypeOf(Vrae_SubStream const & iSubStream) {
  return *iSubStream.GetType();
}

}  // namespace

TEST(Vrae_SubStream, Has250Indices) {
  EXPECT_EQ(Vrae_SubStream::GetNumIndices(), 250);
}

TEST(Vrae_SubStream, EveryIndexIsTakenOnce) {
  std::set<int> indices = {Vrae_SubStream::PitchBend().GetIndex(),
                           Vrae_SubStream::Program().GetIndex(),
                           Vrae_SubStream::MonoPressure().GetIndex()};
  for (int number = 1; number < 120; ++number)
    indices.insert(Vrae_SubStream::Controller(static_cast<signed char>(number)).GetIndex());
  for (int pitch = 0; pitch < 128; ++pitch)
    indices.insert(Vrae_SubStream::PolyPressure(static_cast<signed char>(pitch)).GetIndex());
  EXPECT_EQ(indices.size(), 250u);
  EXPECT_EQ(*indices.begin(), 0);
  EXPECT_EQ(*indices.rbegin(), 249);
}

TEST(Vrae_SubStream, TheLastPitchHasTheLastIndex) {
  EXPECT_EQ(Vrae_SubStream::PolyPressure(127).GetIndex(), 249);
}

TEST(Vrae_SubStream, StartsNull) {
  Vrae_SubStream const subStream;
  EXPECT_TRUE(subStream.IsNull());
  EXPECT_EQ(subStream.GetSubType(), 0);
  EXPECT_NE(subStream.GetType(), nullptr);
}

TEST(Vrae_SubStream, IsMadeFromAnEventImplicitly) {
  EXPECT_TRUE((std::is_convertible_v<Vrae_Event, Vrae_SubStream>));
}

TEST(Vrae_SubStream, OfAnyOtherKindIsNull) {
  Cmn_AssertRecorder const recorder;
  for (int kind = 0; kind <= 23; ++kind) {
    if (kind >= 4 && kind <= 8) continue;
    EXPECT_TRUE(Vrae_SubStream(MakeSampleEvent(kind)).IsNull()) << kind;
    EXPECT_EQ(Vrae_SubStream(MakeSampleEvent(kind)).GetSubType(), 0) << kind;
  }
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST(Vrae_SubStream, OfControllerZeroIsNullAndThatOf119Has119) {
  EXPECT_TRUE(Vrae_SubStream(Vrae_ControllerEvent(0, 5)).IsNull());
  EXPECT_EQ(Vrae_SubStream(Vrae_ControllerEvent(119, 5)).GetIndex(), 119);
}

TEST(Vrae_SubStream, OfAControllerWithoutAStreamKeepsItsNumber) {
  Cmn_AssertRecorder const silent;
  Vrae_SubStream const subStream(Vrae_ControllerEvent(120, 5));
  EXPECT_TRUE(subStream.IsNull());
  EXPECT_EQ(subStream.GetSubType(), 120);
  EXPECT_EQ(Vrae_SubStream(Vrae_ControllerEvent(-3, 5)).GetSubType(), -3);
}

TEST(Vrae_SubStream, OfPolyPressureHasThePitch) {
  Vrae_SubStream const subStream(Vrae_PolyPressureEvent(60, 5));
  EXPECT_EQ(subStream.GetSubType(), 60);
  EXPECT_EQ(subStream.GetIndex(), 182);
}

TEST(Vrae_SubStream, EqualsByTypeAndSubType) {
  EXPECT_TRUE(Vrae_SubStream::Controller(7) == Vrae_SubStream::Controller(7));
  EXPECT_FALSE(Vrae_SubStream::Controller(7) != Vrae_SubStream::Controller(7));
  EXPECT_TRUE(Vrae_SubStream::Controller(7) != Vrae_SubStream::Controller(8));
  EXPECT_TRUE(Vrae_SubStream::Controller(7) != Vrae_SubStream::PolyPressure(7));
  EXPECT_TRUE(Vrae_SubStream() == Vrae_SubStream());
  EXPECT_TRUE(Vrae_SubStream() == Vrae_SubStream(Vrae_ControllerEvent(0, 5)));
}

TEST(Vrae_SubStream, ControllerReportsNumbersThatAreFarOut) {
  Texts const text = {"iControllerNumber >= 0 && iControllerNumber < 121"};
  EXPECT_EQ(GetFailedChecks([] { Vrae_SubStream::Controller(-1); }), text);
  EXPECT_EQ(GetFailedChecks([] { Vrae_SubStream::Controller(121); }), text);
  EXPECT_EQ(GetFailedChecks([] { Vrae_SubStream::Controller(127); }), text);
}

TEST(Vrae_SubStream, ControllersZeroAnd120PassButAreNotValid) {
  Cmn_AssertRecorder const recorder;
  Vrae_SubStream const zero = Vrae_SubStream::Controller(0), last = Vrae_SubStream::Controller(120);
  EXPECT_EQ(recorder.GetNum(), 0);
  EXPECT_EQ(zero.GetIndex(), 0);
  EXPECT_EQ(last.GetIndex(), 120);
  EXPECT_FALSE(TypeOf(zero).IsValidSubType(0));
  EXPECT_FALSE(TypeOf(last).IsValidSubType(120));
}

TEST(Vrae_SubStream, PolyPressureChecksNothing) {
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(Vrae_SubStream::PolyPressure(-1).GetSubType(), -1);
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST(Vrae_SubStream, AProgramIsOneNumber) {
  Vrae_Event const event = Vrae_SubStream::Program().MakeEvent(0x012345);
  EXPECT_EQ(event.mU.mProgram.mFullBank, 0x0123);
  EXPECT_EQ(event.mU.mProgram.mFullProgram, 0x45);
  EXPECT_EQ(Vrae_SubStream::Program().GetValueFromEvent(event), 0x012345);
}

TEST(Vrae_SubStream, AProgramsFlagsTravelInItsNumber) {
  Vrae_Event const event = Vrae_SubStream::Program().MakeEvent(0x8001C5);
  EXPECT_FALSE(event.AsProgram().IsMSBBankEnabled());
  EXPECT_FALSE(event.AsProgram().IsProgramEnabled());
  EXPECT_EQ(Vrae_SubStream::Program().GetValueFromEvent(event), 0x8001C5);
}

TEST(Vrae_SubStream, EveryBitOfAProgramTravels) {
  for (int bit = 0; bit < 24; ++bit) {
    Vrae_Event const event = Vrae_SubStream::Program().MakeEvent(1 << bit);
    EXPECT_EQ(Vrae_SubStream::Program().GetValueFromEvent(event), 1 << bit);
  }
}

TEST(Vrae_SubStream, TheRangeOfBendIsThatOfTheEvent) {
  EXPECT_EQ(Vrae_SubStream::PitchBend().GetValueRange().mMin, -8192);
  EXPECT_EQ(Vrae_SubStream::PitchBend().GetValueRange().mMax, 8191);
}

TEST(Vrae_SubStream, GetInfoOfPolyPressureLeavesTheSubType) {
  signed char type = 0, subType = 33;
  Vrae_SubStream::PolyPressure(60).GetInfo(type, subType);
  EXPECT_EQ(type, 8);
  EXPECT_EQ(subType, 33);
}

TEST(Vrae_SubStream, GetInfoOfAControllerGivesItsNumber) {
  signed char type = 0, subType = 33;
  Vrae_SubStream::Controller(7).GetInfo(type, subType);
  EXPECT_EQ(type, 5);
  EXPECT_EQ(subType, 7);
}

TEST(Vrae_SubStream_Null, ThrowsFromWhateverAsksItsType) {
  signed char type, subType;
  Vrae_SubStream const null;
  Texts const zero = {"0"};
  EXPECT_EQ(GetFailedChecks([&] { (void)null.GetIndex(); }), zero);
  EXPECT_EQ(GetFailedChecks([&] { (void)null.MakeEvent(0); }), zero);
  EXPECT_EQ(GetFailedChecks([&] { (void)null.GetValueRange(); }), zero);
  EXPECT_EQ(GetFailedChecks([&] { (void)null.GetValueFromEvent(Vrae_Event()); }), zero);
  EXPECT_EQ(GetFailedChecks([&] { null.GetInfo(type, subType); }), zero);
  EXPECT_EQ(GetFailedChecks([&] { (void)TypeOf(null).GetTypeCode(); }), zero);
  EXPECT_EQ(GetFailedChecks([&] { (void)TypeOf(null).IsValidSubType(0); }), zero);
  EXPECT_EQ(GetFailedChecks([&] { TypeOf(null).CheckValidSubType(0); }), zero);
}

TEST(Vrae_SubStream_Null, ThrowsWithTheFlagDown) {
  Cmn_AssertRecorder const recorder;
  EXPECT_THROW((void)Vrae_SubStream().GetIndex(), Cmn_AssertException);
  ASSERT_EQ(recorder.GetNum(), 1);
  EXPECT_TRUE(recorder.GetEntries()[0].mThrowing);
  EXPECT_FALSE(recorder.GetEntries()[0].mFlag);
  EXPECT_EQ(recorder.GetEntries()[0].mPath, "vrad/vrae_substream.cpp");
}

TEST(Vrae_SubStream_Null, GivesZerosWithThrowingOff) {
  Cmn_AssertRecorder const recorder;
  bool const former = Cmn_Assert::SetThrowing(false);
  Vrae_SubStream const null;
  EXPECT_EQ(null.GetIndex(), 0);
  EXPECT_EQ(null.MakeEvent(0).GetType(), 0);
  EXPECT_EQ(null.GetValueRange().mMin, 0);
  EXPECT_EQ(null.GetValueRange().mMax, 0);
  EXPECT_EQ(null.GetValueFromEvent(Vrae_PitchBendEvent(5)), 0);
  signed char type = 99, subType = 99;
  null.GetInfo(type, subType);
  EXPECT_EQ(type, 0);
  EXPECT_EQ(subType, 99);
  EXPECT_EQ(TypeOf(null).GetTypeCode(), 0);
  EXPECT_FALSE(TypeOf(null).IsValidSubType(0));
  Cmn_Assert::SetThrowing(former);
  EXPECT_EQ(recorder.GetNum("0"), recorder.GetNum());
  EXPECT_GE(recorder.GetNum(), 9);
}

TEST(Vrae_SubStreamType, KnowsItsSubTypes) {
  Vrae_SubStreamType const & controller = TypeOf(Vrae_SubStream::Controller(1));
  EXPECT_FALSE(controller.IsValidSubType(-1));
  EXPECT_FALSE(controller.IsValidSubType(0));
  EXPECT_TRUE(controller.IsValidSubType(1));
  EXPECT_TRUE(controller.IsValidSubType(119));
  EXPECT_FALSE(controller.IsValidSubType(120));
  Vrae_SubStreamType const & pressure = TypeOf(Vrae_SubStream::PolyPressure(1));
  EXPECT_FALSE(pressure.IsValidSubType(-1));
  EXPECT_TRUE(pressure.IsValidSubType(0));
  EXPECT_TRUE(pressure.IsValidSubType(127));
  EXPECT_FALSE(pressure.IsValidSubType(128));
}

TEST(Vrae_SubStreamType, TakesAnySubTypeWhereItMeansNothing) {
  for (Vrae_SubStream const & subStream :
       {Vrae_SubStream::PitchBend(), Vrae_SubStream::Program(), Vrae_SubStream::MonoPressure()}) {
    for (int subType : {-1, 0, 5000})
      EXPECT_TRUE(TypeOf(subStream).IsValidSubType(subType));
  }
}

TEST(Vrae_SubStreamType, ThrowsString201ForABadSubType) {
  try {
    TypeOf(Vrae_SubStream::Controller(1)).CheckValidSubType(120);
    FAIL() << "nothing thrown";
  } catch (std::runtime_error const & exception) {
    EXPECT_STREQ(exception.what(), "bad subtype encountered");
    EXPECT_EQ(typeid(exception), typeid(std::runtime_error));
  }
}

TEST(Vrae_SubStreamType, LetsAGoodSubTypePass) {
  EXPECT_NO_THROW(TypeOf(Vrae_SubStream::Controller(1)).CheckValidSubType(119));
}
