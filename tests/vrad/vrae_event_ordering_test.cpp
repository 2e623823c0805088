// Equality, order and playback priority of events.
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "foundation/mem2_masterallocator.h"
#include "support/event_samples.h"
#include "vrad/vrae_event.h"

namespace {

typedef std::vector<unsigned char> Bytes;

Time_TypedLength Ticks(long long iCount) {
  return Time_TypedLength(iCount, Time_eType_Ticks);
}

Time_TypedLength Samples(long long iCount) {
  return Time_TypedLength(iCount, Time_eType_Samples);
}

Vrae_Event Sysex(Bytes const & iContents) {
  return Vrae_SysexEvent(static_cast<int>(iContents.size()), iContents.data());
}

Vrae_Event Packet(Bytes const & iBytes) {
  return Vrae_SysexPacketEvent(static_cast<int>(iBytes.size()), iBytes.data(), nullptr);
}

Bytes Repeated(int iLength, unsigned char iByte) {
  return Bytes(static_cast<size_t>(iLength), iByte);
}

Bytes WithLast(int iLength, unsigned char iLast) {
  Bytes bytes = Repeated(iLength, 0);
  bytes.back() = iLast;
  return bytes;
}

// Values of one kind, each less than all that follow it and equal to itself alone.
struct Chain {
  std::string mName;
  std::vector<Vrae_Event> mEvents;
};

void PrintTo(Chain const & iChain, std::ostream * oStream) {
  *oStream << iChain.mName;
}

template <class TNote>
Chain MakeNoteChain(char const * iName) {
  return {iName,
          {TNote(0, Ticks(99), 127, 127), TNote(60, Ticks(99), 1, 127), TNote(60, Ticks(99), 2, 0),
           TNote(60, Ticks(1), 2, 1), TNote(60, Samples(2), 2, 1), TNote(60, Ticks(3), 2, 1),
           TNote(60, Ticks(1LL << 40), 2, 1), TNote(127, Ticks(1), 1, 0)}};
}

std::vector<Chain> MakeChains() {
  Cmn_AssertRecorder const silent;  // negative values are in the chains too
  return {
      {"NoteOn",
       {Vrae_NoteOnEvent(-1, 5), Vrae_NoteOnEvent(0, 127), Vrae_NoteOnEvent(60, 1),
        Vrae_NoteOnEvent(60, 2), Vrae_NoteOnEvent(61, 1)}},
      {"NoteOff",
       {Vrae_NoteOffEvent(0, 127), Vrae_NoteOffEvent(60, -1), Vrae_NoteOffEvent(60, 0),
        Vrae_NoteOffEvent(60, 1), Vrae_NoteOffEvent(61, 0)}},
      MakeNoteChain<Vrae_NoteWithDurationEvent>("NoteWithDuration"),
      MakeNoteChain<Vrae_ClearNoteInProgressEvent>("ClearNoteInProgress"),
      MakeNoteChain<Vrae_AddNoteInProgressEvent>("AddNoteInProgress"),
      {"PitchBend",
       {Vrae_PitchBendEvent(-8192), Vrae_PitchBendEvent(-1), Vrae_PitchBendEvent(0),
        Vrae_PitchBendEvent(8191)}},
      {"Controller",
       {Vrae_ControllerEvent(-1, 127), Vrae_ControllerEvent(0, 127), Vrae_ControllerEvent(7, -1),
        Vrae_ControllerEvent(7, 0), Vrae_ControllerEvent(7, 1), Vrae_ControllerEvent(119, 0)}},
      {"MonoPressure",
       {Vrae_MonoPressureEvent(-1), Vrae_MonoPressureEvent(0), Vrae_MonoPressureEvent(127)}},
      {"PolyPressure",
       {Vrae_PolyPressureEvent(0, 127), Vrae_PolyPressureEvent(60, 0),
        Vrae_PolyPressureEvent(60, 1), Vrae_PolyPressureEvent(61, 0)}},
      {"SongPosition",
       {Vrae_SongPositionEvent(-1), Vrae_SongPositionEvent(0), Vrae_SongPositionEvent(0x3fff)}},
      {"ShortSysex",
       {Sysex({}), Sysex({0}), Sysex({0x7f}), Sysex({0xff}), Sysex({0, 0}), Sysex({0, 1}),
        Sysex({1, 0}), Sysex({0x80, 0}), Sysex(Repeated(14, 0)), Sysex(WithLast(14, 1))}},
      {"LongSysex",
       {Sysex(Repeated(15, 9)), Sysex(Repeated(16, 0)), Sysex(WithLast(16, 0x7f)),
        Sysex(WithLast(16, 0x80)), Sysex(Repeated(16, 1)), Sysex(Repeated(300, 0))}},
      {"SysexPacket", {Packet({}), Packet({5}), Packet({0xF0}), Packet({5, 5}), Packet({0xF0, 5})}},
      {"ReleaseController",
       {Vrae_ReleaseControllerEvent(-1), Vrae_ReleaseControllerEvent(0),
        Vrae_ReleaseControllerEvent(249)}},
      {"QuarterFrame",
       {Vrae_QuarterFrameEvent(0), Vrae_QuarterFrameEvent(0x7f), Vrae_QuarterFrameEvent(0x80),
        Vrae_QuarterFrameEvent(0xff)}},
  };
}

class EventChain : public testing::TestWithParam<Chain> {
protected:
  template <class TBody>
  void ForEachPair(TBody const & iBody) {
    std::vector<Vrae_Event> const & events = GetParam().mEvents;
    for (size_t i = 0; i < events.size(); ++i) {
      for (size_t j = 0; j < events.size(); ++j) {
        SCOPED_TRACE(std::to_string(i) + " and " + std::to_string(j));
        iBody(events[i], i, events[j], j);
      }
    }
  }
};

TEST_P(EventChain, EachIsLessThanThoseThatFollow) {
  ForEachPair([](Vrae_Event const & iA, size_t i, Vrae_Event const & iB, size_t j) {
    EXPECT_EQ(iA < iB, i < j);
  });
}

TEST_P(EventChain, EachEqualsItselfAlone) {
  ForEachPair([](Vrae_Event const & iA, size_t i, Vrae_Event const & iB, size_t j) {
    EXPECT_EQ(iA == iB, i == j);
  });
}

INSTANTIATE_TEST_SUITE_P(Vrae_Event, EventChain, testing::ValuesIn(MakeChains()),
                         [](auto const & iInfo) { return iInfo.param.mName; });

// A program from its parts; -1 stands for disabled with 77 as the number left behind.
Vrae_Event Program(int iMSB, int iLSB, int iProgram) {
  auto const number = [](int iPart) { return static_cast<signed char>(iPart < 0 ? 77 : iPart); };
  Vrae_ProgramEvent event(0, 0);
  event.SetMSBBank(number(iMSB));
  event.SetLSBBank(number(iLSB));
  event.SetProgram(number(iProgram));
  event.SetMSBBankEnable(iMSB >= 0);
  event.SetLSBBankEnable(iLSB >= 0);
  event.SetProgramEnable(iProgram >= 0);
  return event;
}

Vrae_Event DisabledProgram(signed char iMSB, signed char iLSB, signed char iProgram) {
  Vrae_ProgramEvent event(iProgram, 0);
  event.SetMSBBank(iMSB);
  event.SetLSBBank(iLSB);
  event.SetMSBBankEnable(false);
  event.SetLSBBankEnable(false);
  event.SetProgramEnable(false);
  return event;
}

}  // namespace

TEST(Vrae_Event_Equality, KindsWithoutFieldsAreAlwaysEqual) {
  for (int kind : {0, 10, 11, 12, 13, 20})
    EXPECT_TRUE(MakeSampleEvent(kind) == MakeSampleEvent(kind)) << kind;
}

TEST(Vrae_Event_Order, KindsWithoutFieldsAreLessThanThemselves) {
  for (int kind : {0, 10, 11, 12, 13, 20})
    EXPECT_TRUE(MakeSampleEvent(kind) < MakeSampleEvent(kind)) << kind;
}

TEST(Vrae_Event_Order, AStartIsLessThanAStartAndEqualToIt) {
  EXPECT_TRUE(Vrae_StartEvent() < Vrae_StartEvent());
  EXPECT_TRUE(Vrae_StartEvent() == Vrae_StartEvent());
}

TEST(Vrae_Event_Order, DifferentKindsAreNeitherEqualNorOrdered) {
  Cmn_AssertRecorder const recorder;
  for (int left = 0; left <= 23; ++left) {
    for (int right = 0; right <= 23; ++right) {
      if (left == right) continue;
      EXPECT_FALSE(MakeSampleEvent(left) == MakeSampleEvent(right)) << left << " " << right;
      EXPECT_FALSE(MakeSampleEvent(left) < MakeSampleEvent(right)) << left << " " << right;
    }
  }
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST(Vrae_Event_Order, ANoteOnAndANoteOffAreNotOrdered) {
  Vrae_Event const on = Vrae_NoteOnEvent(60, 64), off = Vrae_NoteOffEvent(60, 64);
  EXPECT_FALSE(on == off);
  EXPECT_FALSE(on < off);
  EXPECT_FALSE(off < on);
}

TEST(Vrae_Event_Equality, TheUnitOfADurationTakesNoPart) {
  Vrae_Event const ticks = Vrae_NoteWithDurationEvent(60, Ticks(480), 100, 64);
  Vrae_Event const samples = Vrae_NoteWithDurationEvent(60, Samples(480), 100, 64);
  EXPECT_TRUE(ticks == samples);
  EXPECT_FALSE(ticks < samples);
  EXPECT_FALSE(samples < ticks);
}

TEST(Vrae_Event_Equality, StaleBytesOfAShortSysexTakeNoPart) {
  Vrae_Event a = Sysex({1, 2, 3});
  Vrae_Event const b = Sysex({1, 2});
  a.mU.mShortSysex.mLength = 2;
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a < b);
}

TEST(Vrae_Event_Equality, AShortSysexOfNegativeLengthComparesByLengthAlone) {
  Vrae_Event a = Sysex({1, 2, 3}), b = Sysex({4, 5, 6});
  a.mU.mShortSysex.mLength = b.mU.mShortSysex.mLength = -1;
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a < b);
  EXPECT_TRUE(a < Sysex({}));
}

TEST(Vrae_Event_Equality, ACorruptLengthStaysInsideTheFieldOfBytes) {
  Vrae_Event a = Sysex(Repeated(14, 5)), b = Sysex(Repeated(14, 5));
  a.mU.mShortSysex.mLength = b.mU.mShortSysex.mLength = 78;
  b.mU.mClipEvent.mDuration = ~0ull;  // far behind the bytes
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a < b);
}

TEST(Vrae_Event_Equality, CopiesOfOneLongSysexAreEqual) {
  Vrae_Event const event = Sysex(Repeated(20, 5));
  Vrae_Event const copy(event);
  EXPECT_TRUE(event == copy);
  EXPECT_FALSE(event < copy);
}

TEST(Vrae_Event_Equality, ALongSysexBuiltAnewIsNotEqual) {
  Vrae_Event const a = Sysex(Repeated(20, 5)), b = Sysex(Repeated(20, 5));
  EXPECT_FALSE(a == b);
}

TEST(Vrae_Event_Order, LongSysexOfTheSameBytesAreNotOrdered) {
  Vrae_Event const a = Sysex(Repeated(20, 5)), b = Sysex(Repeated(20, 5));
  EXPECT_FALSE(a < b);
  EXPECT_FALSE(b < a);
}

TEST(Vrae_Event_Order, LongSysexOfOtherBytesAreOrdered) {
  Vrae_Event const a = Sysex(Repeated(20, 5)), b = Sysex(Repeated(20, 6));
  EXPECT_TRUE(a < b);
  EXPECT_FALSE(b < a);
}

TEST(Vrae_Event_Order, FramingBytesOfALongSysexTakePart) {
  Mem2_MasterAllocator pool(4096);
  Bytes fragment = Repeated(17, 0x7f);
  Bytes whole = fragment;
  whole.front() = 0xF0;
  Vrae_Event const a = Vrae_SysexPacketEvent(17, fragment.data(), &pool);
  Vrae_Event const b = Vrae_SysexPacketEvent(17, whole.data(), &pool);
  EXPECT_TRUE(a < b);
  EXPECT_FALSE(b < a);
}

TEST(Vrae_Event_Order, LongSysexWithoutPayloadReadAsEmpty) {
  Cmn_AssertRecorder const recorder;
  Vrae_Event blank = MakeBlankEvent(Vrae_Event::kLongSysex);
  Vrae_Event const full = Sysex(Repeated(20, 5));
  EXPECT_TRUE(blank < full);
  EXPECT_FALSE(full < blank);
  EXPECT_FALSE(blank == full);
  EXPECT_EQ(recorder.GetNum(), 0);
  blank.mU.mBase.mType = 0;
}

TEST(Vrae_Event_Equality, ProgramsAreEqualPartByPart) {
  EXPECT_TRUE(Program(1, 2, 3) == Program(1, 2, 3));
  EXPECT_FALSE(Program(1, 2, 3) == Program(9, 2, 3));
  EXPECT_FALSE(Program(1, 2, 3) == Program(1, 9, 3));
  EXPECT_FALSE(Program(1, 2, 3) == Program(1, 2, 9));
}

TEST(Vrae_Event_Equality, ProgramFlagsMustMatch) {
  EXPECT_FALSE(Program(77, 2, 3) == Program(-1, 2, 3));
  EXPECT_FALSE(Program(1, 77, 3) == Program(1, -1, 3));
  EXPECT_FALSE(Program(1, 2, 77) == Program(1, 2, -1));
}

TEST(Vrae_Event_Equality, NumbersOfDisabledPartsTakeNoPart) {
  EXPECT_TRUE(DisabledProgram(1, 2, 3) == DisabledProgram(4, 5, 6));
}

TEST(Vrae_Event_Order, ProgramsOfEqualMSBAreNotOrderedButNotEqual) {
  Vrae_Event const a = Program(1, 0, 5), b = Program(1, 0, 6);
  EXPECT_FALSE(a < b);
  EXPECT_FALSE(b < a);
  EXPECT_FALSE(a == b);
}

TEST(Vrae_Event_Order, TheFirstPartThatTellsProgramsApartDecides) {
  struct {
    Vrae_Event mA, mB;
    bool mALess, mBLess;
  } const rows[] = {
      {Program(1, 9, 9), Program(2, 0, 0), true, false},       // MSBs
      {Program(127, 0, 0), Program(-1, 0, 0), true, false},    // an enabled MSB goes first
      {Program(1, 0, 0), Program(1, -1, 0), false, false},     // equal MSBs end it
      {Program(-1, 1, 9), Program(-1, 2, 0), true, false},     // LSBs
      {Program(-1, 127, 0), Program(-1, -1, 0), true, false},  // an enabled LSB goes first
      {Program(-1, 1, 5), Program(-1, 1, 6), false, false},    // equal LSBs end it
      {Program(-1, -1, 5), Program(-1, -1, 6), true, false},   // programs
      {Program(-1, -1, 127), Program(-1, -1, -1), true, false},
      {Program(-1, -1, 5), Program(-1, -1, 5), false, false},
      {Program(-1, -1, -1), Program(-1, -1, -1), true, true},  // nothing left to tell
      {DisabledProgram(1, 2, 3), DisabledProgram(0, 0, 0), true, true},
  };
  for (auto const & row : rows) {
    SCOPED_TRACE(&row - rows);
    EXPECT_EQ(row.mA < row.mB, row.mALess);
    EXPECT_EQ(row.mB < row.mA, row.mBLess);
  }
}

TEST(Vrae_Event_Order, UnorderedKindsAreTrueWithThrowingOff) {
  Cmn_AssertRecorder const recorder;
  bool const former = Cmn_Assert::SetThrowing(false);
  for (int kind : {22, 23, 24, 127, -1, -128}) {
    EXPECT_TRUE(MakeBlankEvent(kind) == MakeBlankEvent(kind)) << kind;
    EXPECT_TRUE(MakeBlankEvent(kind) < MakeBlankEvent(kind)) << kind;
  }
  Cmn_Assert::SetThrowing(former);
  EXPECT_EQ(recorder.GetNum("0"), 12);
  EXPECT_EQ(recorder.GetNum(), 12);
}

TEST(Vrae_Event_Priority, IsThatOfTheKind) {
  int const priorities[24] = {0, 100, 90, 100, 50, 30, 20, 50, 50, 0, 0,   0,
                              0, 0,   50, 50,  50, 0,  0,  10, 0,  0, 100, 0};
  for (int kind = 0; kind <= 23; ++kind)
    EXPECT_EQ(MakeSampleEvent(kind).GetPlaybackPriority(), priorities[kind]) << kind;
}

TEST(Vrae_Event_Priority, IsZeroForUnknownKindsWithoutAReport) {
  Cmn_AssertRecorder const recorder;
  for (int kind : {24, 127, -1, -128})
    EXPECT_EQ(MakeBlankEvent(kind).GetPlaybackPriority(), 0) << kind;
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST(Vrae_Event_Priority, ReleasesProgramsControllersBendsOffsOnsFollowInThisOrder) {
  int former = 0;
  for (int kind : {19, 6, 5, 4, 2, 1}) {
    EXPECT_GT(MakeSampleEvent(kind).GetPlaybackPriority(), former) << kind;
    former = MakeSampleEvent(kind).GetPlaybackPriority();
  }
}
