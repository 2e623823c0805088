// Which events pass a filter, and what it does to their velocities.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/event_samples.h"
#include "vrad/vrae_filter.h"

namespace {

typedef std::vector<std::string> Texts;
typedef Vrae_Filter F;

constexpr char const * kTypeText = "iType >= 0 && iType < eDataType_NumValues";

// The data type that governs a kind; -1 for controllers, -2 for kinds that always pass.
constexpr int kTypes[24] = {-2, 0, 0, 0, 3, -1, 4,  5,  6,  8,  8,  8,
                            8,  8, 7, 7, 7, -2, -2, -2, -2, -2, -2, -2};

bool Passes(Vrae_Filter const & iFilter, Vrae_Event iEvent) {
  return iFilter.FilterEvent(&iEvent);
}

std::vector<bool> GetFlags(Vrae_Filter const & iFilter) {
  std::vector<bool> flags;
  for (int type = 0; type < F::eDataType_NumValues; ++type)
    flags.push_back(iFilter.Get(F::EDataType(type)));
  return flags;
}

int GetNumControllers(Vrae_Filter const & iFilter) {
  int num = 0;
  for (int number = 0; number < 128; ++number)
    num += iFilter.GetControllers().Get(number);
  return num;
}

}  // namespace

TEST(Vrae_Filter, HasTheNumbersOfItsTypes) {
  EXPECT_EQ(F::eDataType_Notes, 0);
  EXPECT_EQ(F::eDataType_NoteOnVelocity, 1);
  EXPECT_EQ(F::eDataType_NoteOffVelocity, 2);
  EXPECT_EQ(F::eDataType_PitchBend, 3);
  EXPECT_EQ(F::eDataType_Program, 4);
  EXPECT_EQ(F::eDataType_MonoPressure, 5);
  EXPECT_EQ(F::eDataType_PolyPressure, 6);
  EXPECT_EQ(F::eDataType_Sysex, 7);
  EXPECT_EQ(F::eDataType_Realtime, 8);
  EXPECT_EQ(F::eDataType_NumValues, 9);
}

TEST(Vrae_Filter, StartsWithNothing) {
  EXPECT_EQ(GetFlags(F()), std::vector<bool>(9, false));
  EXPECT_EQ(GetNumControllers(F()), 0);
}

TEST(Vrae_Filter, LetsNothingButNoEventThroughAtStart) {
  for (int kind = 0; kind <= 16; ++kind)
    EXPECT_EQ(Passes(F(), MakeSampleEvent(kind)), kind == 0) << kind;
}

TEST(Vrae_Filter, SetAllTurnsEverythingOn) {
  F filter;
  EXPECT_EQ(&filter.SetAll(), &filter);
  EXPECT_EQ(GetFlags(filter), std::vector<bool>(9, true));
  EXPECT_EQ(GetNumControllers(filter), 128);
}

TEST(Vrae_Filter, ClearAllTurnsEverythingOff) {
  F filter;
  EXPECT_EQ(&filter.SetAll().ClearAll(), &filter);
  EXPECT_TRUE(filter == F());
}

TEST(Vrae_Filter, SetDefaultKeepsOnVelocitiesBendProgramsAndControllers) {
  F filter;
  filter.Set(F::eDataType_Realtime, true);
  EXPECT_EQ(&filter.SetDefault(), &filter);
  EXPECT_EQ(GetFlags(filter),
            (std::vector<bool>{true, true, false, true, true, false, false, false, false}));
  EXPECT_EQ(GetNumControllers(filter), 128);
}

TEST(Vrae_Filter, InvertAllInvertsEveryFlagAndController) {
  F filter;
  Cmn_BitArray<128> controllers;
  controllers.Set(7, true);
  filter.Set(F::eDataType_Sysex, true).SetControllers(controllers);
  EXPECT_EQ(&filter.InvertAll(), &filter);
  EXPECT_EQ(GetFlags(filter),
            (std::vector<bool>{true, true, true, true, true, true, true, false, true}));
  EXPECT_EQ(GetNumControllers(filter), 127);
  EXPECT_FALSE(filter.GetControllers().Get(7));
}

TEST(Vrae_Filter, InvertAllTwiceChangesNothing) {
  F filter;
  filter.SetDefault();
  F const former = filter;
  EXPECT_TRUE(filter.InvertAll().InvertAll() == former);
}

TEST(Vrae_Filter, SetStoresOneFlag) {
  for (int type = 0; type < 9; ++type) {
    F filter;
    EXPECT_EQ(&filter.Set(F::EDataType(type), true), &filter);
    std::vector<bool> expected(9, false);
    expected[static_cast<size_t>(type)] = true;
    EXPECT_EQ(GetFlags(filter), expected);
    EXPECT_EQ(GetFlags(filter.Set(F::EDataType(type), false)), std::vector<bool>(9, false));
  }
}

TEST(Vrae_Filter, ReportsABadType) {
  for (int type : {-1, 9, 10, 1000}) {
    F filter;
    EXPECT_EQ(GetFailedChecks([&] { (void)filter.Get(F::EDataType(type)); }), Texts{kTypeText});
    EXPECT_EQ(GetFailedChecks([&] { filter.Set(F::EDataType(type), true); }), Texts{kTypeText});
  }
}

TEST(Vrae_Filter, KeepsOneSpareFlagForAllBadTypes) {
  Cmn_AssertRecorder const silent;
  F filter;
  EXPECT_FALSE(filter.Get(F::EDataType(-1)));
  filter.Set(F::EDataType(9), true);
  EXPECT_TRUE(filter.Get(F::EDataType(-1)));
  EXPECT_TRUE(filter.Get(F::EDataType(1000)));
  EXPECT_EQ(GetFlags(filter), std::vector<bool>(9, false));
  EXPECT_EQ(GetNumControllers(filter), 0);
}

TEST(Vrae_Filter, TheSpareFlagTakesNoPartInEquality) {
  Cmn_AssertRecorder const silent;
  F filter;
  filter.Set(F::EDataType(9), true);
  EXPECT_TRUE(filter == F());
}

TEST(Vrae_Filter, EqualsByEveryFlagAndController) {
  for (int type = 0; type < 9; ++type)
    EXPECT_FALSE(F().Set(F::EDataType(type), true) == F());
  for (int number : {0, 63, 64, 127}) {
    Cmn_BitArray<128> controllers;
    controllers.Set(number, true);
    EXPECT_FALSE(F().SetControllers(controllers) == F());
    EXPECT_TRUE(F().SetControllers(controllers) == F().SetControllers(controllers));
  }
}

TEST(Vrae_Filter, EachTypeLetsItsKindsThrough) {
  for (int type = 0; type < 9; ++type) {
    for (int kind = 0; kind <= 16; ++kind) {
      F filter;
      filter.Set(F::EDataType(type), true);
      EXPECT_EQ(Passes(filter, MakeSampleEvent(kind)), kTypes[kind] == type || kTypes[kind] == -2)
          << type << " " << kind;
    }
  }
}

TEST(Vrae_Filter, EachTypeAloneHoldsItsKindsBack) {
  for (int type = 0; type < 9; ++type) {
    for (int kind = 0; kind <= 16; ++kind) {
      F filter;
      filter.SetAll().Set(F::EDataType(type), false);
      EXPECT_EQ(Passes(filter, MakeSampleEvent(kind)), kTypes[kind] != type) << type << " " << kind;
    }
  }
}

TEST(Vrae_Filter, EachControllerHasItsOwnBit) {
  for (int number = 0; number < 120; ++number) {
    Cmn_BitArray<128> controllers;
    controllers.Set(7, true);
    F filter;
    filter.SetControllers(controllers);
    EXPECT_EQ(Passes(filter, Vrae_ControllerEvent(static_cast<signed char>(number), 0)),
              number == 7);
  }
}

TEST(Vrae_Filter, ACorruptControllerIsReportedAndHeldBack) {
  Vrae_Event event = Vrae_ControllerEvent(7, 0);
  event.mU.mController.mControllerNumber = -1;
  F filter;
  filter.SetAll();
  bool passes = true;
  EXPECT_EQ(GetFailedChecks([&] { passes = filter.FilterEvent(&event); }),
            Texts{"iIndex >= 0 && iIndex < TSize"});
  EXPECT_FALSE(passes);
}

TEST(Vrae_Filter, InternalKindsAreReportedAndPassEvenAClearedFilter) {
  for (int kind : {17, 18, 19, 20, 21, 22, 23, 24, 127, -1, -128}) {
    SCOPED_TRACE(kind);
    Vrae_Event event = kind >= 0 && kind <= 23 ? MakeSampleEvent(kind) : MakeBlankEvent(kind);
    for (F const & filter : {F(), F().SetAll()}) {
      bool passes = false;
      EXPECT_EQ(GetFailedChecks([&] { passes = filter.FilterEvent(&event); }), Texts{"0"});
      EXPECT_TRUE(passes);
    }
  }
}

TEST(Vrae_Filter, ANoteInProgressIsReportedAndPasses) {
  Cmn_AssertRecorder const recorder;
  EXPECT_TRUE(Passes(F(), MakeSampleEvent(Vrae_Event::kAddNoteInProgress)));
  EXPECT_EQ(recorder.GetNum("0"), 1);
  EXPECT_FALSE(recorder.GetEntries().front().mThrowing);
}

TEST(Vrae_Filter, ANoteOnFallsBackToTheDefaultVelocity) {
  F filter;
  filter.Set(F::eDataType_Notes, true);
  Vrae_NoteOnEvent::SetDefaultVelocity(33);
  Vrae_Event event = Vrae_NoteOnEvent(60, 100);
  EXPECT_TRUE(filter.FilterEvent(&event));
  EXPECT_EQ(event.AsNoteOn().GetVelocity(), 33);
  EXPECT_EQ(event.AsNoteOn().GetPitch(), 60);
  Vrae_NoteOnEvent::SetDefaultVelocity(80);
}

TEST(Vrae_Filter, ANoteOnKeepsAVelocityThatIsKept) {
  F filter;
  filter.Set(F::eDataType_Notes, true).Set(F::eDataType_NoteOnVelocity, true);
  Vrae_Event event = Vrae_NoteOnEvent(60, 100);
  EXPECT_TRUE(filter.FilterEvent(&event));
  EXPECT_EQ(event.AsNoteOn().GetVelocity(), 100);
}

TEST(Vrae_Filter, ABadDefaultVelocityIsReportedAsItIsSet) {
  Cmn_AssertRecorder recorder;
  Vrae_NoteOnEvent::SetDefaultVelocity(0);
  recorder.Clear();
  Vrae_Event event = Vrae_NoteOnEvent(60, 100);
  EXPECT_TRUE(F().Set(F::eDataType_Notes, true).FilterEvent(&event));
  EXPECT_EQ(recorder.GetNum("iVelocity >= 1"), 1);
  EXPECT_EQ(recorder.GetNum(), 1);
  EXPECT_EQ(event.AsNoteOn().GetVelocity(), 0);
  Vrae_NoteOnEvent::SetDefaultVelocity(80);
}

TEST(Vrae_Filter, ANoteOffFallsBackTo64AndLeavesAsNoteOnOfVelocity0) {
  F filter;
  filter.SetDefault();
  Vrae_Event event = Vrae_NoteOffEvent(60, 30);
  EXPECT_TRUE(filter.FilterEvent(&event));
  EXPECT_EQ(event.AsNoteOff().GetVelocity(), 64);
  signed char bytes[3];
  event.GetMessageData(bytes, 0);
  EXPECT_EQ(static_cast<unsigned char>(bytes[0]), 0x90);
  EXPECT_EQ(bytes[1], 60);
  EXPECT_EQ(bytes[2], 0);
}

TEST(Vrae_Filter, SetDefaultAndOffVelocitiesKeepsReleaseVelocities) {
  F filter;
  filter.SetDefault().Set(F::eDataType_NoteOffVelocity, true);
  Vrae_Event event = Vrae_NoteOffEvent(60, 30);
  EXPECT_TRUE(filter.FilterEvent(&event));
  EXPECT_EQ(event.AsNoteOff().GetVelocity(), 30);
}

TEST(Vrae_Filter, ANoteWithDurationFallsBackTo64OnBothSides) {
  Vrae_NoteOnEvent::SetDefaultVelocity(33);
  Vrae_Event event = MakeSampleEvent(Vrae_Event::kNoteWithDuration);
  EXPECT_TRUE(F().Set(F::eDataType_Notes, true).FilterEvent(&event));
  EXPECT_EQ(event.AsNoteWithDuration().GetOnVelocity(), 64);
  EXPECT_EQ(event.AsNoteWithDuration().GetOffVelocity(), 64);
  EXPECT_EQ(event.AsNoteWithDuration().GetDuration().AsInt64(), 480);
  Vrae_NoteOnEvent::SetDefaultVelocity(80);
}

TEST(Vrae_Filter, ANoteWithDurationKeepsEachSideOnItsOwn) {
  Vrae_Event on = MakeSampleEvent(Vrae_Event::kNoteWithDuration), off = on;
  F filter;
  filter.Set(F::eDataType_Notes, true).Set(F::eDataType_NoteOnVelocity, true);
  EXPECT_TRUE(filter.FilterEvent(&on));
  EXPECT_EQ(on.AsNoteWithDuration().GetOnVelocity(), 100);
  EXPECT_EQ(on.AsNoteWithDuration().GetOffVelocity(), 64);
  filter.Set(F::eDataType_NoteOnVelocity, false).Set(F::eDataType_NoteOffVelocity, true);
  EXPECT_TRUE(filter.FilterEvent(&off));
  EXPECT_EQ(off.AsNoteWithDuration().GetOnVelocity(), 64);
  EXPECT_EQ(off.AsNoteWithDuration().GetOffVelocity(), 30);
}

TEST(Vrae_Filter, NotesThatAreHeldBackKeepTheirVelocities) {
  for (int kind : {1, 2, 3}) {
    Vrae_Event event = MakeSampleEvent(kind);
    EXPECT_FALSE(F().FilterEvent(&event));
    EXPECT_TRUE(event == MakeSampleEvent(kind)) << kind;
  }
}

TEST(Vrae_Filter, OtherKindsAreNotChanged) {
  for (int kind = 4; kind <= 14; ++kind) {
    Vrae_Event event = MakeSampleEvent(kind);
    EXPECT_TRUE(F().SetAll().FilterEvent(&event));
    EXPECT_TRUE(event == MakeSampleEvent(kind)) << kind;
  }
}

TEST(Vrae_Filter, SubStreamsPassAsTheirEventsDo) {
  F filter;
  filter.SetDefault();
  Cmn_AssertRecorder const recorder;
  EXPECT_TRUE(filter.FilterSubStream(Vrae_SubStream::PitchBend()));
  EXPECT_TRUE(filter.FilterSubStream(Vrae_SubStream::Program()));
  EXPECT_TRUE(filter.FilterSubStream(Vrae_SubStream::Controller(7)));
  EXPECT_FALSE(filter.FilterSubStream(Vrae_SubStream::MonoPressure()));
  EXPECT_FALSE(filter.FilterSubStream(Vrae_SubStream::PolyPressure(60)));
  filter.InvertAll();
  EXPECT_FALSE(filter.FilterSubStream(Vrae_SubStream::PitchBend()));
  EXPECT_FALSE(filter.FilterSubStream(Vrae_SubStream::Program()));
  EXPECT_FALSE(filter.FilterSubStream(Vrae_SubStream::Controller(7)));
  EXPECT_TRUE(filter.FilterSubStream(Vrae_SubStream::MonoPressure()));
  EXPECT_TRUE(filter.FilterSubStream(Vrae_SubStream::PolyPressure(60)));
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST(Vrae_Filter, EverySubStreamPassesAsItsLeastEventDoes) {
  std::vector<Vrae_SubStream> subStreams = {Vrae_SubStream::PitchBend(), Vrae_SubStream::Program(),
                                            Vrae_SubStream::MonoPressure(),
                                            Vrae_SubStream::PolyPressure(127)};
  for (int number = 0; number < 120; ++number)
    subStreams.push_back(Vrae_SubStream::Controller(static_cast<signed char>(number)));
  Cmn_BitArray<128> controllers;
  for (int number : {0, 1, 64, 119})
    controllers.Set(number, true);
  Cmn_AssertRecorder const recorder;
  for (F filter : {F().SetDefault(), F().SetAll().SetControllers(controllers)}) {
    for (int round = 0; round < 2; ++round, filter.InvertAll()) {
      for (Vrae_SubStream const & subStream : subStreams)
        EXPECT_EQ(filter.FilterSubStream(subStream),
                  Passes(filter, subStream.MakeEvent(subStream.GetValueRange().mMin)));
    }
  }
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST(Vrae_Filter, ASubStreamThatIsNoneIsReportedAsItsEventIs) {
  F filter;
  filter.SetAll();
  EXPECT_EQ(GetFailedChecks(
                [&] { EXPECT_TRUE(filter.FilterSubStream(Vrae_SubStream::Controller(120))); }),
            Texts{"iControllerNumber < 120"});
  EXPECT_EQ(GetFailedChecks(
                [&] { EXPECT_TRUE(filter.FilterSubStream(Vrae_SubStream::PolyPressure(-1))); }),
            Texts{"iPitch >= 0"});
}

TEST(Vrae_Filter, ANullSubStreamThrows) {
  Cmn_AssertRecorder const silent;
  EXPECT_THROW((void)F().FilterSubStream(Vrae_SubStream()), Cmn_AssertException);
}

TEST(Vrae_Filter, ANullSubStreamPassesWithThrowingOff) {
  Cmn_AssertRecorder const recorder;
  bool const former = Cmn_Assert::SetThrowing(false);
  EXPECT_TRUE(F().FilterSubStream(Vrae_SubStream()));
  Cmn_Assert::SetThrowing(former);
  EXPECT_EQ(recorder.GetNum("0"), recorder.GetNum());
  EXPECT_GE(recorder.GetNum(), 1);
}
