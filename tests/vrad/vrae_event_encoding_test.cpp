// Events as MIDI messages: counts, lengths, bytes, and slices of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <ostream>
#include <string>
#include <vector>

#include "foundation/mem2_masterallocator.h"
#include "support/event_samples.h"
#include "vrad/vrae_event.h"

namespace {

typedef std::vector<int> Bytes;  // as numbers, so that failures are readable
typedef std::vector<std::string> Texts;

constexpr signed char kUntouched = 0x55;

Bytes AsNumbers(std::vector<signed char> const & iData) {
  Bytes bytes;
  for (signed char byte : iData)
    bytes.push_back(static_cast<unsigned char>(byte));
  return bytes;
}

Bytes GetMessage(Vrae_Event const & iEvent, int iMessageNumber = 0) {
  std::vector<signed char> data(static_cast<size_t>(iEvent.GetMessageLength(iMessageNumber)));
  iEvent.GetMessageData(data.data(), iMessageNumber);
  return AsNumbers(data);
}

// What a slice writes into a buffer of iRoom bytes that holds 0x55 throughout.
Bytes GetSlice(Vrae_Event const & iEvent, int iByteOffset, int iByteLength, int iRoom,
               int iMessageNumber = 0) {
  std::vector<signed char> data(static_cast<size_t>(iRoom), kUntouched);
  iEvent.GetPartialMessageData(data.data(), iMessageNumber, iByteOffset, iByteLength);
  return AsNumbers(data);
}

Vrae_Event Sysex(std::vector<unsigned char> const & iContents) {
  return Vrae_SysexEvent(static_cast<int>(iContents.size()), iContents.data());
}

// Bytes 1, 2, 3 ...
std::vector<unsigned char> Counting(int iLength) {
  std::vector<unsigned char> bytes;
  for (int i = 1; i <= iLength; ++i)
    bytes.push_back(static_cast<unsigned char>(i & 0x7f));
  return bytes;
}

Bytes Framed(std::vector<unsigned char> const & iContents) {
  Bytes bytes = {0xF0};
  bytes.insert(bytes.end(), iContents.begin(), iContents.end());
  bytes.push_back(0xF7);
  return bytes;
}

struct Row {
  std::string mName;
  Vrae_Event mEvent;
  Bytes mMessage;
};

void PrintTo(Row const & iRow, std::ostream * oStream) {
  *oStream << iRow.mName;
}

std::vector<Row> MakeRows() {
  return {
      {"NoteOn", Vrae_NoteOnEvent(60, 100), {0x90, 60, 100}},
      {"NoteOff", Vrae_NoteOffEvent(60, 30), {0x80, 60, 30}},
      {"NoteOffOfVelocity0", Vrae_NoteOffEvent(60, 0), {0x80, 60, 0}},
      {"NoteOffOfVelocity63", Vrae_NoteOffEvent(60, 63), {0x80, 0x3C, 0x3F}},
      {"NoteOffOfVelocity64", Vrae_NoteOffEvent(60, 64), {0x90, 0x3C, 0x00}},
      {"NoteOffOfVelocity65", Vrae_NoteOffEvent(60, 65), {0x80, 60, 65}},
      {"NoteOffOfVelocity127", Vrae_NoteOffEvent(60, 127), {0x80, 60, 127}},
      {"PitchBendCentre", Vrae_PitchBendEvent(0), {0xE0, 0x00, 0x40}},
      {"PitchBendLowest", Vrae_PitchBendEvent(-8192), {0xE0, 0x00, 0x00}},
      {"PitchBendHighest", Vrae_PitchBendEvent(8191), {0xE0, 0x7F, 0x7F}},
      {"PitchBendBelowCentre", Vrae_PitchBendEvent(-1), {0xE0, 0x7F, 0x3F}},
      {"PitchBend128", Vrae_PitchBendEvent(128), {0xE0, 0x00, 0x41}},
      {"Controller", Vrae_ControllerEvent(119, 127), {0xB0, 119, 127}},
      {"MonoPressure", Vrae_MonoPressureEvent(70), {0xD0, 70}},
      {"PolyPressure", Vrae_PolyPressureEvent(61, 71), {0xA0, 61, 71}},
      {"SongPosition", Vrae_SongPositionEvent(300), {0xF2, 44, 2}},
      {"SongPositionLast", Vrae_SongPositionEvent(0x3fff), {0xF2, 0x7F, 0x7F}},
      {"Start", Vrae_StartEvent(), {0xFA}},
      {"Continue", Vrae_ContinueEvent(), {0xFB}},
      {"Stop", Vrae_StopEvent(), {0xFC}},
      {"TimingClock", Vrae_TimingClockEvent(), {0xF8}},
      {"AllNotesOff", Vrae_AllNotesOffEvent(), {0xB0, 0x7B, 0x00}},
      {"QuarterFrame", Vrae_QuarterFrameEvent(0x35), {0xF1, 0x35}},
      {"ShortSysexEmpty", Sysex({}), {0xF0, 0xF7}},
      {"ShortSysex", Sysex({1, 2, 3}), {0xF0, 1, 2, 3, 0xF7}},
      {"ShortSysexLongest", Sysex(Counting(14)), Framed(Counting(14))},
      {"LongSysexShortest", Sysex(Counting(15)), Framed(Counting(15))},
      {"LongSysex", Sysex(Counting(5000)), Framed(Counting(5000))},
  };
}

class Encoding : public testing::TestWithParam<Row> {};

TEST_P(Encoding, IsOneMessage) {
  EXPECT_EQ(GetParam().mEvent.GetNumMessages(), 1);
}

TEST_P(Encoding, HasItsBytesAndNoReport) {
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(GetMessage(GetParam().mEvent), GetParam().mMessage);
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST_P(Encoding, WritesNothingPastItsLength) {
  size_t const length = GetParam().mMessage.size();
  std::vector<signed char> data(length + 4, kUntouched);
  GetParam().mEvent.GetMessageData(data.data(), 0);
  data.erase(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(length));
  EXPECT_EQ(AsNumbers(data), (Bytes{0x55, 0x55, 0x55, 0x55}));
}

TEST_P(Encoding, AnotherNumberIsReportedAndTakenAsZero) {
  for (int number : {1, -1, INT_MAX}) {
    Cmn_AssertRecorder const recorder;
    EXPECT_EQ(GetMessage(GetParam().mEvent, number), GetParam().mMessage);
    EXPECT_EQ(recorder.GetNum("iMessageNumber == 0"), 2);
    EXPECT_EQ(recorder.GetNum(), 2);
  }
}

TEST_P(Encoding, SlicesGiveTheSameBytes) {
  Cmn_AssertRecorder const recorder;
  int const length = static_cast<int>(GetParam().mMessage.size());
  for (int step : {1, 2, 3, 7, 1000}) {
    Bytes bytes;
    for (int offset = 0; offset < length; offset += step) {
      int const size = std::min(step, length - offset);
      Bytes const slice = GetSlice(GetParam().mEvent, offset, size, size);
      bytes.insert(bytes.end(), slice.begin(), slice.end());
    }
    EXPECT_EQ(bytes, GetParam().mMessage) << step;
  }
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST_P(Encoding, AnEmptySliceWritesNothing) {
  Cmn_AssertRecorder const recorder;
  for (int offset : {0, 1, 2})
    EXPECT_EQ(GetSlice(GetParam().mEvent, offset, 0, 2), (Bytes{0x55, 0x55}));
  EXPECT_EQ(recorder.GetNum(), 0);
}

INSTANTIATE_TEST_SUITE_P(Vrae_Event, Encoding, testing::ValuesIn(MakeRows()),
                         [](auto const & iInfo) { return iInfo.param.mName; });

class SysexFragment : public testing::Test {
protected:
  Vrae_Event Make(int iLength, int iFirst, int iLast) {
    std::vector<unsigned char> bytes = Counting(iLength);
    bytes.front() = static_cast<unsigned char>(iFirst);
    bytes.back() = static_cast<unsigned char>(iLast);
    return Vrae_SysexPacketEvent(iLength, bytes.data(), &mPool);
  }
  // Kind 15 of any length, short ones too.
  Vrae_Event MakeStored(std::vector<unsigned char> const & iBytes) {
    unsigned char * const blockP =
        static_cast<unsigned char *>(mPool.Alloc(static_cast<int>(iBytes.size()) + 1, nullptr));
    std::copy(iBytes.begin(), iBytes.end(), blockP);
    return Vrae_SysexPacketEvent(Vrae_SysexPacketEvent::InitWithBlock(), blockP,
                                 static_cast<int>(iBytes.size()), &mPool);
  }

  Mem2_MasterAllocator mPool{1 << 16};
};

constexpr char const * kSysexViewText =
    "mU.mBase.mType == kShortSysex || this->IsCompleteLongSysex()";

}  // namespace

TEST(Vrae_Event_NumMessages, IsZeroWithoutAReportForKindsWithoutMessages) {
  Cmn_AssertRecorder const recorder;
  for (int kind : {0, 3, 16, 19})
    EXPECT_EQ(MakeSampleEvent(kind).GetNumMessages(), 0) << kind;
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST(Vrae_Event_NumMessages, IsZeroWithThrowingOffForKindsThatMustNotCome) {
  Cmn_AssertRecorder const recorder;
  bool const former = Cmn_Assert::SetThrowing(false);
  for (int kind : {17, 18, 22, 23, 24, 127, -1, -128})
    EXPECT_EQ(MakeBlankEvent(kind).GetNumMessages(), 0) << kind;
  Cmn_Assert::SetThrowing(former);
  EXPECT_EQ(recorder.GetNum("0"), 8);
}

TEST(Vrae_Event_NumMessages, ThrowsForKindsThatMustNotCome) {
  for (int kind : {17, 18, 22, 23, 24, 127, -1, -128}) {
    EXPECT_EQ(GetFailedChecks([&] {
                EXPECT_THROW((void)MakeBlankEvent(kind).GetNumMessages(), Cmn_AssertException);
              }),
              Texts{"0"})
        << kind;
  }
}

TEST(Vrae_Event_Message, ThrowsForKindsThatMustNotCome) {
  signed char data[3];
  for (int kind : {16, 17, 18, 22, 23, 24, 127, -1, -128}) {
    SCOPED_TRACE(kind);
    Cmn_AssertRecorder const recorder;
    Vrae_Event const event = MakeBlankEvent(kind);
    EXPECT_THROW((void)event.GetMessageLength(0), Cmn_AssertException);
    EXPECT_THROW(event.GetMessageData(data, 0), Cmn_AssertException);
    EXPECT_THROW(event.GetPartialMessageData(data, 0, 0, 1), Cmn_AssertException);
    EXPECT_EQ(recorder.GetNum("0"), 3);
    EXPECT_EQ(recorder.GetNum(), 3);
  }
}

TEST(Vrae_Event_Message, GivesNothingWithThrowingOffForKindsThatMustNotCome) {
  bool const former = Cmn_Assert::SetThrowing(false);
  for (int kind : {16, 17, 18, 22, 23, 24, 127, -1, -128}) {
    SCOPED_TRACE(kind);
    Cmn_AssertRecorder const recorder;
    Vrae_Event const event = MakeBlankEvent(kind);
    EXPECT_EQ(event.GetMessageLength(5), 0);
    signed char data[1] = {kUntouched};
    event.GetMessageData(data, 5);
    EXPECT_EQ(data[0], kUntouched);
    EXPECT_EQ(recorder.GetNum("0"), 2);
    EXPECT_EQ(recorder.GetNum(), 2);
  }
  Cmn_Assert::SetThrowing(former);
}

TEST(Vrae_Event_Message, ReportsKindsWithoutMessagesWhateverTheNumber) {
  for (int kind : {0, 3, 19}) {
    for (int number : {0, 1, -1}) {
      SCOPED_TRACE(kind);
      Cmn_AssertRecorder const recorder;
      Vrae_Event const event = MakeSampleEvent(kind);
      EXPECT_EQ(event.GetMessageLength(number), 0);
      signed char data[1] = {kUntouched};
      event.GetMessageData(data, number);
      EXPECT_EQ(data[0], kUntouched);
      EXPECT_EQ(recorder.GetNum("0"), 2);
      EXPECT_EQ(recorder.GetNum(), 2);
      EXPECT_FALSE(recorder.GetEntries().front().mThrowing);
    }
  }
}

TEST(Vrae_Event_Program, SendsEachEnabledPartInOrder) {
  Bytes const msb = {0xB0, 0x00, 2}, lsb = {0xB0, 0x20, 3}, program = {0xC0, 5};
  Cmn_AssertRecorder const recorder;
  for (int parts = 0; parts < 8; ++parts) {
    SCOPED_TRACE(parts);
    Vrae_ProgramEvent event(5, 2 * 128 + 3);
    event.SetMSBBankEnable((parts & 1) != 0);
    event.SetLSBBankEnable((parts & 2) != 0);
    event.SetProgramEnable((parts & 4) != 0);
    std::vector<Bytes> expected;
    if ((parts & 1) != 0) expected.push_back(msb);
    if ((parts & 2) != 0) expected.push_back(lsb);
    if ((parts & 4) != 0) expected.push_back(program);
    std::vector<Bytes> sent;
    for (int i = 0; i < event.GetNumMessages(); ++i)
      sent.push_back(GetMessage(event, i));
    EXPECT_EQ(sent, expected);
  }
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST(Vrae_Event_Program, WithLSBAndProgramStartsWithTheLSB) {
  Vrae_ProgramEvent event(5, 3);
  event.SetMSBBankEnable(false);
  EXPECT_EQ(event.GetNumMessages(), 2);
  EXPECT_EQ(GetMessage(event, 0), (Bytes{0xB0, 0x20, 3}));
}

TEST(Vrae_Event_Program, HasNoMessagesWithNothingEnabled) {
  EXPECT_EQ(Vrae_ProgramEvent(-1, -1).GetNumMessages(), 0);
}

TEST(Vrae_Event_Program, ANumberBeyondTheLastIsReportedAndGivesNothing) {
  Vrae_ProgramEvent event(5, 3);
  event.SetLSBBankEnable(false);
  for (int number : {2, 3, INT_MAX, -1, INT_MIN}) {
    SCOPED_TRACE(number);
    Cmn_AssertRecorder const recorder;
    EXPECT_EQ(event.GetMessageLength(number), 0);
    signed char data[1] = {kUntouched};
    event.GetMessageData(data, number);
    EXPECT_EQ(data[0], kUntouched);
    EXPECT_EQ(recorder.GetNum("0"), 2);
    EXPECT_EQ(recorder.GetNum(), 2);
  }
}

TEST(Vrae_Event_Program, IsSlicedByMessage) {
  Vrae_ProgramEvent const event(5, 2 * 128 + 3);
  EXPECT_EQ(GetSlice(event, 1, 2, 2, 1), (Bytes{0x20, 3}));
  EXPECT_EQ(GetSlice(event, 0, 2, 2, 2), (Bytes{0xC0, 5}));
}

TEST(Vrae_Event_Slice, OfAPlainMessageStaysInsideAZeroedBufferOfThree) {
  Vrae_Event const event = Vrae_MonoPressureEvent(70);
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(GetSlice(event, 0, 5, 5), (Bytes{0xD0, 70, 0, 0x55, 0x55}));
  EXPECT_EQ(GetSlice(event, 2, 1, 1), (Bytes{0}));
  EXPECT_EQ(GetSlice(event, 3, 1, 1), (Bytes{0x55}));
  EXPECT_EQ(GetSlice(event, -1, 3, 3), (Bytes{0x55, 0xD0, 70}));
  EXPECT_EQ(GetSlice(event, 0, -1, 1), (Bytes{0x55}));
  EXPECT_EQ(GetSlice(event, 2, INT_MAX, 1), (Bytes{0}));
  EXPECT_EQ(GetSlice(event, INT_MAX, INT_MAX, 1), (Bytes{0x55}));
  EXPECT_EQ(GetSlice(event, INT_MIN, INT_MIN, 1), (Bytes{0x55}));
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST(Vrae_Event_Slice, OfAPlainMessageReportsANumberForLengthAndForData) {
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(GetSlice(Vrae_NoteOnEvent(60, 100), 0, 3, 3, 1), (Bytes{0x90, 60, 100}));
  EXPECT_EQ(recorder.GetNum("iMessageNumber == 0"), 2);
  EXPECT_EQ(recorder.GetNum(), 2);
}

TEST(Vrae_Event_Slice, OfAKindWithoutMessagesIsZeros) {
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(GetSlice(Vrae_Event(), 0, 3, 3), (Bytes{0, 0, 0}));
  EXPECT_EQ(recorder.GetNum("0"), 2);
}

TEST(Vrae_Event_Slice, OfThreeContentsBytesOneAtATime) {
  Bytes bytes;
  for (int offset = 0; offset <= 4; ++offset)
    bytes.push_back(GetSlice(Sysex({1, 2, 3}), offset, 1, 1).front());
  EXPECT_EQ(bytes, (Bytes{0xF0, 1, 2, 3, 0xF7}));
}

TEST(Vrae_Event_Slice, OfSysexReportsAnotherNumberOnce) {
  for (Vrae_Event const & event : {Sysex({1, 2, 3}), Sysex(Counting(20))}) {
    Cmn_AssertRecorder const recorder;
    EXPECT_EQ(GetSlice(event, 1, 2, 2, 1), (Bytes{1, 2}));
    EXPECT_EQ(recorder.GetNum("iMessageNumber == 0"), 1);
    EXPECT_EQ(recorder.GetNum(), 1);
  }
}

TEST(Vrae_Event_Slice, PastTheEndOfSysexReportsAndWritesOneEnd) {
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(GetSlice(Sysex({1, 2, 3}), 3, 4, 4), (Bytes{3, 0xF7, 0x55, 0x55}));
  EXPECT_EQ(GetSlice(Sysex({}), 0, 3, 3), (Bytes{0xF0, 0xF7, 0x55}));
  EXPECT_EQ(recorder.GetNum("iByteLength == 1"), 2);
  EXPECT_EQ(recorder.GetNum(), 2);
}

TEST(Vrae_Event_Slice, OfOneBytePastTheEndOfSysexIsItsEnd) {
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(GetSlice(Sysex({1, 2, 3}), 9, 1, 1), (Bytes{0xF7}));
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST(Vrae_Event_Slice, OfNegativeLengthWritesNothing) {
  EXPECT_EQ(GetSlice(Sysex({1, 2, 3}), 0, -1, 1), (Bytes{0x55}));
  EXPECT_EQ(GetSlice(Sysex({1, 2, 3}), 2, INT_MIN, 1), (Bytes{0x55}));
}

TEST(Vrae_Event_Slice, OfSysexBeforeItsStartWritesTheContentsInTheirPlace) {
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(GetSlice(Sysex({1, 2, 3}), -1, 4, 4), (Bytes{0x55, 0x55, 1, 2}));
  EXPECT_EQ(recorder.GetNum("iStartIndex >= 0"), 1);
}

TEST(Vrae_Event_Message, AShortSysexOfNegativeLengthIsTwoBytes) {
  Vrae_Event event = Sysex({1, 2, 3});
  event.mU.mShortSysex.mLength = -3;
  EXPECT_EQ(GetMessage(event), (Bytes{0xF0, 0xF7}));
  EXPECT_EQ(GetSlice(event, 0, 2, 2), (Bytes{0xF0, 0xF7}));
}

TEST_F(SysexFragment, WithoutItsEndHasNoMessages) {
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(Make(20, 0xF0, 5).GetNumMessages(), 0);
  EXPECT_EQ(Make(20, 5, 0xF7).GetNumMessages(), 0);
  EXPECT_EQ(Make(20, 0xF0, 0xF7).GetNumMessages(), 1);
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST_F(SysexFragment, GivesItsStoredLengthInSilence) {
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(Make(20, 0xF0, 5).GetMessageLength(0), 20);
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST_F(SysexFragment, IsFramedAndReported) {
  Cmn_AssertRecorder const recorder;
  // Beginning with 0xF0, the contents start behind it; the last stored byte gives way to the 0xF7.
  EXPECT_EQ(GetMessage(Make(16, 0xF0, 5)),
            (Bytes{0xF0, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 0xF7}));
  EXPECT_EQ(GetMessage(Make(16, 1, 0xF7)),
            (Bytes{0xF0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 0xF7}));
  EXPECT_EQ(recorder.GetNum(kSysexViewText), 2);
  EXPECT_EQ(recorder.GetNum(), 2);
}

TEST_F(SysexFragment, IsSlicedFramedAndReportedOnce) {
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(GetSlice(Make(16, 1, 5), 13, 3, 3), (Bytes{13, 14, 0xF7}));
  EXPECT_EQ(recorder.GetNum(kSysexViewText), 1);
  EXPECT_EQ(recorder.GetNum(), 1);
}

TEST_F(SysexFragment, NeverWritesMoreThanItsStoredLength) {
  Cmn_AssertRecorder const silent;
  EXPECT_EQ(GetMessage(MakeStored({})), Bytes{});
  EXPECT_EQ(GetMessage(MakeStored({7})), Bytes{0xF0});
  EXPECT_EQ(GetMessage(MakeStored({7, 8})), (Bytes{0xF0, 0xF7}));
  signed char data[2] = {kUntouched, kUntouched};
  MakeStored({7}).GetMessageData(data, 0);
  EXPECT_EQ(data[1], kUntouched);
}

TEST_F(SysexFragment, WithoutAPayloadIsAnEmptyMessage) {
  Cmn_AssertRecorder const recorder;
  Vrae_Event event = MakeBlankEvent(Vrae_Event::kLongSysex);
  EXPECT_EQ(event.GetNumMessages(), 0);
  EXPECT_EQ(event.GetMessageLength(0), 0);
  event.GetMessageData(nullptr, 0);
  EXPECT_EQ(recorder.GetNum(kSysexViewText), 1);
  EXPECT_EQ(recorder.GetNum(), 1);
  event.mU.mBase.mType = 0;
}
