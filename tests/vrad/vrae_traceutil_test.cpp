#include "vrad/vrae_traceutil.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "cmn/cmn_assert.h"
#include "foundation/lumtrace.h"
#include "foundation/mem2_masterallocator.h"

namespace {

constexpr char const * kTooLong = "strlen(buf) < inLen";

std::string Format(Vrae_Event const & iEvent, size_t iSize = 200) {
  std::vector<char> buffer(iSize, '#');
  Vrae_TraceUtil::FormatMidiEvent(buffer.data(), iSize, iEvent);
  EXPECT_EQ(0, buffer[iSize - 1]) << "the last byte";
  return buffer.data();
}

std::string FormatTimed(Time_Typed iTime, Vrae_Event const & iEvent, size_t iSize = 200) {
  std::vector<char> buffer(iSize, '#');
  Vrae_TraceUtil::FormatTimedMidiEvent(buffer.data(), iSize, Vrae_TimedEvent(iTime, iEvent));
  EXPECT_EQ(0, buffer[iSize - 1]) << "the last byte";
  return buffer.data();
}

std::string Stamp(long long iMicroseconds, long long iSample, size_t iSize = 100) {
  std::vector<char> buffer(iSize, '#');
  Vrae_TraceUtil::FormatMidiTimestamp(buffer.data(), iSize, iMicroseconds, Time_Sample(iSample));
  return buffer.data();
}

Time_Typed Tick(long long iCount) {
  return Time_Typed(iCount, Time_eType_Ticks);
}

// Contents bytes 0, 1, 2, ... as a complete message.
Vrae_Event Sysex(int iNumContents) {
  std::vector<unsigned char> contents;
  for (int i = 0; i < iNumContents; ++i)
    contents.push_back(static_cast<unsigned char>(i % 128));
  return Vrae_SysexEvent(iNumContents, contents.data());
}

Vrae_Event Fragment(std::vector<unsigned char> const & iBytes) {
  return Vrae_SysexPacketEvent(static_cast<int>(iBytes.size()), iBytes.data(), nullptr);
}

size_t Count(std::string const & iText, char iChar) {
  size_t num = 0;
  for (char const c : iText)
    num += c == iChar;
  return num;
}

}  // namespace

TEST(Vrae_TraceUtil_FormatMidiEvent, WritesNotes) {
  EXPECT_EQ("NoteOn(60, 100)", Format(Vrae_NoteOnEvent(60, 100)));
  EXPECT_EQ("NoteOff(61, 0)", Format(Vrae_NoteOffEvent(61, 0)));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, WritesNotesWithDurationInTicksAndSamples) {
  EXPECT_EQ(
      "NoteWithDuration(p: 60, d: 960000t, on: 80, off: 64)",
      Format(Vrae_NoteWithDurationEvent(60, Time_TypedLength(960000, Time_eType_Ticks), 80, 64)));
  EXPECT_EQ("NoteWithDuration(p: 0, d: 1s, on: 1, off: 0)",
            Format(Vrae_NoteWithDurationEvent(0, Time_TypedLength(1, Time_eType_Samples), 1, 0)));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, WritesDurationsBeyond32Bits) {
  EXPECT_EQ("NoteWithDuration(p: 60, d: 9000000000t, on: 80, off: 64)",
            Format(Vrae_NoteWithDurationEvent(60, Time_TypedLength(9000000000, Time_eType_Ticks),
                                              80, 64)));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, WritesContinuousKinds) {
  EXPECT_EQ("PitchBend(-8192)", Format(Vrae_PitchBendEvent(-8192)));
  EXPECT_EQ("Controller(7: 100)", Format(Vrae_ControllerEvent(7, 100)));
  EXPECT_EQ("MonoPressure(5)", Format(Vrae_MonoPressureEvent(5)));
  EXPECT_EQ("PolyPressure(60: 5)", Format(Vrae_PolyPressureEvent(60, 5)));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, WritesTheEnabledPartsOfABank) {
  Vrae_ProgramEvent program(5, 129);
  EXPECT_EQ("Program(5, bank 129 LSB MSB)", Format(program));
  program.SetLSBBankEnable(false);
  EXPECT_EQ("Program(5, bank 129 MSB)", Format(program));
  program.SetMSBBankEnable(false);
  EXPECT_EQ("Program(5, bank 129)", Format(program));
  program.SetLSBBankEnable(true);
  EXPECT_EQ("Program(5, bank 129 LSB)", Format(program));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, WritesTheProgramsNumberWhateverItsFlag) {
  Vrae_ProgramEvent program(5, 0);
  program.SetProgramEnable(false);
  EXPECT_EQ("Program(5, bank 0 LSB MSB)", Format(program));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, WritesTransportKinds) {
  EXPECT_EQ("Song Position(300)", Format(Vrae_SongPositionEvent(300)));
  EXPECT_EQ("Start", Format(Vrae_StartEvent()));
  EXPECT_EQ("Continue", Format(Vrae_ContinueEvent()));
  EXPECT_EQ("Stop", Format(Vrae_StopEvent()));
  EXPECT_EQ("TimingClock", Format(Vrae_TimingClockEvent()));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, WritesOtherKindsByNumber) {
  EXPECT_EQ("UnknownEvent(0)", Format(Vrae_Event()));
  for (int kind : {-1, 17, 18, 19, 20, 21, 22, 23, 24, 127}) {
    Vrae_Event event;
    event.mU.mBase.mType = static_cast<signed char>(kind);
    EXPECT_EQ("UnknownEvent(" + std::to_string(kind) + ")", Format(event));
  }
}

TEST(Vrae_TraceUtil_FormatMidiEvent, ReportsNothingForATextThatFits) {
  Cmn_AssertRecorder recorder;
  EXPECT_EQ("Start", Format(Vrae_StartEvent(), 6));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrae_TraceUtil_FormatMidiEvent, ReportsAndCutsATextThatDoesNot) {
  Cmn_AssertRecorder recorder;
  EXPECT_EQ("Star", Format(Vrae_StartEvent(), 5));
  ASSERT_EQ(1, recorder.GetNum(kTooLong));
  EXPECT_FALSE(recorder.GetEntries()[0].mThrowing);
  EXPECT_EQ("", Format(Vrae_StartEvent(), 1));
  EXPECT_EQ(2, recorder.GetNum(kTooLong));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, WritesAShortSysexInItsWireForm) {
  EXPECT_EQ("Sysex - f0 00 01 02 f7", Format(Sysex(3)));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, WritesALongSysexInItsWireForm) {
  EXPECT_EQ("Sysex - f0 00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e f7", Format(Sysex(15)));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, WritesBytesUnsigned) {
  EXPECT_EQ("Sysex - INCOMPLETE ff 80", Format(Fragment({0xff, 0x80})));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, MarksAnEmptyFragment) {
  EXPECT_EQ("Sysex - INCOMPLETE", Format(Fragment({})));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, ShowsHeadAndLastFourOf200Bytes) {
  std::string const text = Format(Sysex(198));
  EXPECT_EQ(191u, text.size());
  EXPECT_EQ("Sysex - f0 00 01", text.substr(0, 16));
  // 56 bytes: 0xf0 and contents 0 to 54.
  EXPECT_EQ(" 35 36 ... 43 44 45 f7", text.substr(text.size() - 22));
  EXPECT_EQ(56u + 4u + 2u, Count(text, ' '));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, IsDoneWhenTheBytesEndExactlyWithTheRoom) {
  EXPECT_EQ(" 35 f7", Format(Sysex(54)).substr(169)) << "56 bytes";
  EXPECT_EQ(175u, Format(Sysex(54)).size());
  EXPECT_EQ(" ... 34 35 36 f7", Format(Sysex(55)).substr(175)) << "57 bytes";
}

TEST(Vrae_TraceUtil_FormatMidiEvent, TakesTheMarkOffTheRoomOfAnIncompleteSysex) {
  std::vector<unsigned char> bytes(200, 0x11);
  bytes[0] = 0xf0;
  Mem2_MasterAllocator pool(4096);
  // 7 + 11 + 3 n is at most 200 - 11 - 26 up to n = 48, so 49 bytes, " ..." and the last four.
  std::string const text = Format(Vrae_SysexPacketEvent(200, bytes.data(), &pool));
  EXPECT_EQ(7u + 11u + 49u * 3u + 4u + 12u, text.size());
  EXPECT_EQ("Sysex - INCOMPLETE f0 11 11", text.substr(0, 27));
  EXPECT_EQ(" ... 11 11 11 11", text.substr(text.size() - 16));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, ShowsNeitherDotsNorTailWithoutRoom) {
  // The room ends before the first byte, and 7 is not less than 12 - 5.
  Cmn_AssertRecorder recorder;
  EXPECT_EQ("Sysex -", Format(Sysex(3), 12));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrae_TraceUtil_FormatMidiEvent, ShowsTheDotsWithoutTheTail) {
  EXPECT_EQ("Sysex - ...", Format(Sysex(3), 13));
  EXPECT_EQ("Sysex - ...", Format(Sysex(3), 25)) << "11 is not less than 25 - 14";
}

TEST(Vrae_TraceUtil_FormatMidiEvent, ShowsTheTailFromRoomFor26) {
  EXPECT_EQ("Sysex - ... 00 01 02 f7", Format(Sysex(3), 26));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, ShowsAllOfFewerThanFourLastBytes) {
  EXPECT_EQ("Sysex - ... f0 f7", Format(Sysex(0), 32));
  EXPECT_EQ("Sysex - f0 f7", Format(Sysex(0), 36));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, ChecksAnIncompleteSysexAgainstTheReducedRoom) {
  Cmn_AssertRecorder recorder;
  // 18 characters: below 30 - 11, not below 29 - 11.
  EXPECT_EQ("Sysex - INCOMPLETE", Format(Fragment({}), 30));
  EXPECT_EQ(0, recorder.GetNum());
  EXPECT_EQ("Sysex - INCOMPLETE", Format(Fragment({}), 29));
  EXPECT_EQ(1, recorder.GetNum(kTooLong));
}

TEST(Vrae_TraceUtil_FormatMidiEvent, SurvivesTheSmallestBuffers) {
  Cmn_AssertRecorder recorder;
  for (size_t size = 1; size < 40; ++size) {
    EXPECT_GT(size, Format(Sysex(100), size).size());
    EXPECT_GT(size, Format(Fragment({0x11, 0x12}), size).size());
  }
}

TEST(Vrae_TraceUtil_FormatTimedMidiEvent, BeginsWithTheCount) {
  EXPECT_EQ("<sample: 480> Start",
            FormatTimed(Time_Typed(480, Time_eType_Samples), Vrae_StartEvent()));
}

TEST(Vrae_TraceUtil_FormatTimedMidiEvent, PrintsTheRawCountWhateverTheUnit) {
  EXPECT_EQ("<sample: -9000000000> NoteOn(60, 1)",
            FormatTimed(Tick(-9000000000), Vrae_NoteOnEvent(60, 1)));
}

TEST(Vrae_TraceUtil_FormatTimedMidiEvent, ChecksBothPartsOnceAgainstTheWholeSize) {
  Cmn_AssertRecorder recorder;
  EXPECT_EQ("<sample: 0> Start", FormatTimed(Tick(0), Vrae_StartEvent(), 18));
  EXPECT_EQ(0, recorder.GetNum());
  EXPECT_EQ("<sample: 0> Star", FormatTimed(Tick(0), Vrae_StartEvent(), 17));
  EXPECT_EQ(1, recorder.GetNum(kTooLong));
  EXPECT_EQ("<sampl", FormatTimed(Tick(0), Vrae_StartEvent(), 7));
  EXPECT_EQ(2, recorder.GetNum());
}

TEST(Vrae_TraceUtil_FormatTimedMidiEvent, FitsALongSysexIntoTheRoomThatIsLeft) {
  Cmn_AssertRecorder recorder;
  std::string const text = FormatTimed(Tick(0), Sysex(198));
  EXPECT_EQ(" ... 43 44 45 f7", text.substr(text.size() - 16));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrae_TraceUtil_FormatTimedMidiEvent, ChecksAnIncompleteSysexAgainstTheWholeSize) {
  Cmn_AssertRecorder recorder;
  EXPECT_EQ("<sample: 0> Sysex - INCOMPLETE", FormatTimed(Tick(0), Fragment({}), 31));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrae_TraceUtil_FormatMidiTimestamp, GivesThreeGroupsModuloAndTheSample) {
  // 12345678 us: second 12, millisecond 12345, hundred 123456.
  EXPECT_EQ("[2.345.6, 480]", Stamp(12345678, 480));
  EXPECT_EQ("[0.0.0, -1]", Stamp(99, -1));
  EXPECT_EQ("[0.1.0, 9000000000]", Stamp(1000, 9000000000));
}

TEST(Vrae_TraceUtil_FormatMidiTimestamp, CutsSilently) {
  Cmn_AssertRecorder recorder;
  EXPECT_EQ("[2.3", Stamp(12345678, 480, 5));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrae_TraceUtil_PrintMidiEvent, WritesTheTextAlone) {
  std::ostringstream stream;
  Vrae_TraceUtil::PrintMidiEvent(Vrae_StartEvent(), stream);
  EXPECT_EQ("Start", stream.str());
}

TEST(Vrae_TraceUtil_PrintMidiEvent, CutsALongSysexFor200Bytes) {
  std::ostringstream stream;
  Vrae_TraceUtil::PrintMidiEvent(Sysex(198), stream);
  EXPECT_EQ(191u, stream.str().size());
}

TEST(Vrae_TraceUtil_PrintTimedEventList, WritesALineForEachEvent) {
  Vrae_TimedEventList list;
  list.push_back(Vrae_TimedEvent(Tick(-5), Vrae_NoteOnEvent(60, 1)));
  list.push_back(Vrae_TimedEvent(Time_Typed(7, Time_eType_Samples), Vrae_StopEvent()));
  std::ostringstream stream;
  Vrae_TraceUtil::PrintTimedEventList(&list, stream);
  EXPECT_EQ("-5t  NoteOn(60, 1)\n7s  Stop\n", stream.str());
}

TEST(Vrae_TraceUtil_PrintTimedEventList, WritesNothingForAnEmptyList) {
  Vrae_TimedEventList list;
  std::ostringstream stream;
  Vrae_TraceUtil::PrintTimedEventList(&list, stream);
  EXPECT_EQ("", stream.str());
}

namespace {

Vrae_TimedEventList TwoEvents() {
  Vrae_TimedEventList list;
  list.push_back(Vrae_TimedEvent(Tick(0), Vrae_NoteOnEvent(60, 1)));
  list.push_back(Vrae_TimedEvent(Tick(1), Vrae_StopEvent()));
  return list;
}

typedef std::vector<std::pair<unsigned, std::string>> Lines;

}  // namespace

TEST(Vrae_TraceUtil_TraceMidiEventList, WritesOneTextACall) {
  LumTraceRecorder recorder;
  Vrae_TimedEventList list = TwoEvents();
  Vrae_TraceUtil::TraceMidiEventList(&list);
  EXPECT_EQ((Lines{{0x4000e0f, "NoteOn(60, 1)"}, {0x4000e0f, "Stop"}}), recorder.GetLines());
}

TEST(Vrae_TraceUtil_TraceMidiEventList, WritesNothingForAnInactiveFacility) {
  LumTraceRecorder recorder;
  recorder.SetActive(0x4000e0f, false);
  Vrae_TimedEventList list = TwoEvents();
  Vrae_TraceUtil::TraceMidiEventList(&list);
  EXPECT_EQ(Lines(), recorder.GetLines());
}

TEST(Vrae_TraceUtil_TraceMidiEventList, WritesNothingWhileTracingIsOff) {
  LumTraceRecorder recorder;
  gLumTraceActive = false;
  Vrae_TimedEventList list = TwoEvents();
  Vrae_TraceUtil::TraceMidiEventList(&list);
  EXPECT_EQ(Lines(), recorder.GetLines());
}

TEST(Vrae_TraceUtil_TraceMidiEventList, NeedsTheSlotForPutsAlone) {
  LumTraceRecorder recorder;
  LumTraceFormat = nullptr;
  LumTraceIsActiveFunc = nullptr;
  Vrae_TimedEventList list = TwoEvents();
  Vrae_TraceUtil::TraceMidiEventList(&list);
  EXPECT_EQ(2u, recorder.GetLines().size());
  LumTracePuts = nullptr;
  Vrae_TraceUtil::TraceMidiEventList(&list);
  EXPECT_EQ(2u, recorder.GetLines().size());
}

class Vra_AppCallback {};

TEST(Vrae_TraceUtil_SetCallback, KeepsThePointer) {
  EXPECT_EQ(nullptr, Vrae_TraceUtil::sCallback);
  Vra_AppCallback callback;
  Vrae_TraceUtil::SetCallback(&callback);
  EXPECT_EQ(&callback, Vrae_TraceUtil::sCallback);
  Vrae_TraceUtil::SetCallback(nullptr);
  EXPECT_EQ(nullptr, Vrae_TraceUtil::sCallback);
}
