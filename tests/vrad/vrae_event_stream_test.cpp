// Events, lists of them and sub-streams as records.
#include <algorithm>
#include <numeric>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/i18n_stringtable.h"
#include "foundation/mem2_masterallocator.h"
#include "support/event_samples.h"
#include "support/golden_files.h"
#include "support/throwing_off.h"
#include "vrad/vrad_init.h"
#include "vrad/vrae_substream.h"
#include "vrad/vrae_sysexdatabase.h"
#include "vrad/vrae_timedevent.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Kind, length and the stored bytes of the contents.
std::string Print(Vrae_Event const & iEvent) {
  std::string text = std::to_string(iEvent.GetType());
  if (!iEvent.IsMessageSysex(0)) return text;
  Vrae_SysexEvent const & sysex = iEvent.AsSysex();
  text += ":";
  for (int i = 0; i < sysex.GetLength(); ++i)
    text += " " + std::to_string(sysex.GetInternalDataPtr()[i]);
  return text;
}

std::string Print(Vrae_TimedEventList const & iList) {
  std::string text;
  for (Vrae_TimedEvent const & event : iList) {
    char const * const unit = event.mTime.GetType() == Time_eType_Ticks ? "t" : "s";
    text += (text.empty() ? "" : " | ") + std::to_string(event.mTime.AsInt64()) + unit + " " +
            Print(event.mEvent);
  }
  return text;
}

char const * const kTwentyBytes = "15: 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20";

std::string PrintGolden(std::string const & iName) {
  Vrae_Event event;
  ReadInto(event, iName);
  return Print(event);
}

// A sysex of 1, 2, 3, ..., iLength, in one byte each.
Vrae_SysexEvent MakeSysex(int iLength) {
  Bytes data(static_cast<size_t>(iLength));
  std::iota(data.begin(), data.end(), static_cast<unsigned char>(1));
  return Vrae_SysexEvent(iLength, data.data());
}

Vrae_Event RoundTrip(Vrae_Event const & iEvent) {
  Sys_MemoryInStream stream(Written(iEvent));
  Vrae_Event event;
  event.StreamIn(stream);
  return event;
}

}  // namespace

TEST(Vrae_Event_StreamIn, ReadsAShortSysex) {
  EXPECT_EQ("14: 1 2 3", PrintGolden("event_short_sysex"));
}

TEST(Vrae_Event_StreamIn, ReadsALongSysex) {
  EXPECT_EQ(kTwentyBytes, PrintGolden("event_long_sysex"));
}

TEST(Vrae_Event_StreamIn, FramesALongSysexAnew) {
  Vrae_Event event;
  ReadInto(event, "event_long_sysex");
  unsigned char const * const data = event.AsSysex().GetDirectDataPtr();
  EXPECT_EQ(0xF0, data[0]);
  EXPECT_EQ(0xF7, data[21]);
  EXPECT_EQ(22, event.mU.mLongSysex.mSysexP->GetLength());
}

TEST(Vrae_Event_StreamIn, TakesAFlagOtherThanZeroForNoEvent) {
  EXPECT_EQ("0", PrintGolden("event_flagged_empty"));
}

TEST(Vrae_Event_StreamIn, TakesARecordWithoutBytesForNoEvent) {
  EXPECT_EQ("0", PrintGolden("event_without_bytes"));
}

TEST(Vrae_Event_StreamIn, ReplacesALongSysexByNoEvent) {
  Vrae_Event event = MakeSysex(30);
  ReadInto(event, "event_flagged_empty");
  EXPECT_EQ("0", Print(event));
}

TEST(Vrae_Event_StreamIn, SkipsWhatALaterVersionAdded) {
  Sys_MemoryInStream stream = OpenGolden("event_longer");
  Vrae_Event event;
  event.StreamIn(stream);
  EXPECT_EQ("14: 5", Print(event));
  event.StreamIn(stream);
  EXPECT_EQ("14: 6", Print(event));
}

TEST(Vrae_Event_StreamIn, RefusesANegativeLengthAsOutOfMemory) {
  Vrae_Event event;
  EXPECT_THROW(ReadInto(event, "event_length_negative"), std::bad_alloc);
}

TEST(Vrae_Event_StreamIn, RefusesALengthBeyondTheRecord) {
  Vrae_Event event = MakeSysex(3);
  try {
    ReadInto(event, "event_length_beyond");
    ADD_FAILURE();
  } catch (Sys_StreamException const & exception) {
    EXPECT_EQ(Sys_StreamException::kEndOfStream, exception.GetReason());
  }
  EXPECT_EQ("14: 1 2 3", Print(event));
}

TEST(Vrae_Event_StreamIn, RefusesALengthThatRunsIntoTheNextRecord) {
  Bytes bytes = ReadGolden("event_short_sysex");
  bytes[12] = 4;  // one byte more than the record has
  bytes.resize(100);
  Sys_MemoryInStream stream(bytes);
  Vrae_Event event;
  EXPECT_EQ("end of stream", ThrownBy([&] { event.StreamIn(stream); }));
}

TEST(Vrae_Event_StreamIn, RefusesAnotherVersion) {
  Vrae_Event event;
  EXPECT_EQ("record version 2 is not supported", Refusal(event, "event_version_2"));
}

TEST(Vrae_Event_StreamOut, WritesAShortSysexByteForByte) {
  unsigned char const contents[] = {1, 2, 3};
  EXPECT_EQ(ReadGolden("event_short_sysex"), Written(Vrae_SysexEvent(3, contents)));
}

TEST(Vrae_Event_StreamOut, WritesALongSysexWithoutItsFrame) {
  EXPECT_EQ(ReadGolden("event_long_sysex"), Written(MakeSysex(20)));
}

TEST(Vrae_Event_StreamOut, RoundTripsEveryLengthAroundTheLimits) {
  for (int const length : {0, 1, 13, 14, 15, 1023, 1024, 1025, 2048, 5000})
    EXPECT_EQ(Print(MakeSysex(length)), Print(RoundTrip(MakeSysex(length)))) << length;
}

namespace {

class MeteredStream : public Sys_MemoryOutStream {
public:
  void WriteBlock(void const * iData, int iNumBytes) override {
    mLargest = std::max(mLargest, iNumBytes);
    Sys_MemoryOutStream::WriteBlock(iData, iNumBytes);
  }

  int mLargest = 0;
};

}  // namespace

TEST(Vrae_Event_StreamOut, WritesALongSysexInPiecesOfAtMost1024Bytes) {
  MeteredStream stream;
  MakeSysex(3000).StreamOut(stream);
  EXPECT_EQ(1024, stream.mLargest);
  EXPECT_EQ(Written(MakeSysex(3000)), stream.GetBytes());
}

TEST(Vrae_Event_StreamOut, ReportsEveryOtherKindAndWritesTheHeaderAlone) {
  for (int kind = 0; kind <= Vrae_Event::kClipEvent; ++kind) {
    if (kind == Vrae_Event::kShortSysex || kind == Vrae_Event::kLongSysex) continue;
    Bytes bytes;
    EXPECT_THAT(GetFailedChecks([&] { bytes = Written(MakeSampleEvent(kind)); }), ElementsAre("0"));
    EXPECT_EQ(ReadGolden("event_without_bytes"), bytes) << kind;
  }
}

TEST(Vrae_Event_StreamOut, SignalsAnotherKindWithoutThrowing) {
  Cmn_AssertRecorder recorder;
  Written(Vrae_NoteOnEvent(60, 100));
  ASSERT_EQ(1, recorder.GetNum());
  EXPECT_FALSE(recorder.GetEntries()[0].mThrowing);
  EXPECT_TRUE(recorder.GetEntries()[0].mFlag);
}

// What begins a message and does not end it: both ends are taken for the frame.
TEST(Vrae_Event_StreamOut, LosesBothEndBytesOfAnIncompleteLongSysex) {
  Mem2_MasterAllocator pool(4096);
  Bytes packet(18, 7);
  packet.front() = 0xF0;
  packet.back() = 9;
  Vrae_Event const event = Vrae_SysexPacketEvent(18, packet.data(), &pool);
  EXPECT_EQ("15: 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7 7", Print(RoundTrip(event)));
}

TEST(Vrae_Event_StreamOut, BringsAnIncompleteLongSysexBackAsAShortOne) {
  Mem2_MasterAllocator pool(4096);
  Bytes const packet(15, 7);
  Vrae_Event const event = Vrae_SysexPacketEvent(15, packet.data(), &pool);
  ASSERT_EQ(Vrae_Event::kLongSysex, event.GetType());
  EXPECT_EQ("14: 7 7 7 7 7 7 7 7 7 7 7 7 7", Print(RoundTrip(event)));
}

TEST(Vrae_Event_StreamOut, CountsANegativeShortLengthAsNone) {
  Vrae_Event event = MakeBlankEvent(Vrae_Event::kShortSysex);
  event.mU.mShortSysex.mLength = -3;
  EXPECT_EQ("14:", Print(RoundTrip(event)));
}

TEST(Vrae_TimedEventList_StreamIn, ReadsTicksAndSamples) {
  Vrae_TimedEventList list;
  ReadInto(list, "timed_events");
  EXPECT_EQ(std::string("960000t 14: 1 2 3 | 500s ") + kTwentyBytes, Print(list));
}

TEST(Vrae_TimedEventList_StreamIn, ErasesTheListFirst) {
  Vrae_TimedEventList list;
  list.push_back(Vrae_TimedEvent(Time_Tick(1), MakeSysex(1)));
  ReadInto(list, "timed_events_longer");
  EXPECT_EQ("7t 14: 1 2 3", Print(list));
}

TEST(Vrae_TimedEventList_StreamIn, LeavesTheStampsBlank) {
  Vrae_TimedEventList list;
  ReadInto(list, "timed_events");
  EXPECT_EQ(Vras_InputID(), list[0].mSourceStamp.mInputID);
  EXPECT_EQ(0, list[0].mSourceStamp.mStampFlag);
}

TEST(Vrae_TimedEventList_StreamIn, TakesANegativeCountForNone) {
  Vrae_TimedEventList list;
  list.push_back(Vrae_TimedEvent(Time_Tick(1), MakeSysex(1)));
  EXPECT_EQ("nothing", Refusal(list, "timed_events_negative"));
  EXPECT_EQ("", Print(list));
}

// Were it taken as it is, the event would be read again and again, as often as the count says.
TEST(Vrae_TimedEventList_StreamIn, EndsNoEventBeforeItBegins) {
  Vrae_TimedEventList list;
  EXPECT_EQ("nothing", Refusal(list, "timed_events_negative_size"));
  EXPECT_EQ("7t 0 | 8t 14: 1 2 3", Print(list));
  Bytes bytes = ReadGolden("timed_events_negative_size");
  ASSERT_EQ(2, bytes[16]);
  bytes[17] = 4;  // a count of 1026
  Sys_MemoryInStream stream(bytes);
  EXPECT_EQ("end of stream", ThrownBy([&] { list.StreamIn(stream); }));
  EXPECT_EQ(2u, list.size());
}

TEST(Vrae_TimedEventList_StreamIn, SkipsWhatALaterVersionAdded) {
  Sys_MemoryInStream stream = OpenGolden("timed_events_longer");
  Vrae_TimedEventList list;
  list.StreamIn(stream);
  EXPECT_EQ(0, stream.BytesLeft());
}

TEST(Vrae_TimedEventList_StreamIn, KeepsWhatWasReadBeforeATear) {
  Vrae_TimedEventList list;
  EXPECT_EQ("end of stream", Refusal(list, "timed_events_torn"));
  EXPECT_EQ("7t 14: 1 2 3", Print(list));
}

TEST(Vrae_TimedEventList_StreamIn, RefusesAnotherTagWithTheListErased) {
  Vrae_TimedEventList list;
  list.push_back(Vrae_TimedEvent(Time_Tick(1), MakeSysex(1)));
  EXPECT_EQ("no record \"VrTEL\"", Refusal(list, "event_stream"));
  EXPECT_EQ("", Print(list));
}

TEST(Vrae_TimedEventList_StreamOut, WritesByteForByte) {
  Vrae_TimedEventList list;
  list.push_back(Vrae_TimedEvent(Time_Tick(960000), MakeSysex(3)));
  list.push_back(Vrae_TimedEvent(Time_Sample(500), MakeSysex(20)));
  EXPECT_EQ(ReadGolden("timed_events"), Written(list));
}

namespace {

std::string PrintSubStream(std::string const & iGolden) {
  Vrae_SubStream subStream;
  ReadInto(subStream, iGolden);
  return std::to_string(subStream.GetType()->GetTypeCode()) + "/" +
         std::to_string(subStream.GetSubType());
}

}  // namespace

TEST(Vrae_SubStream_StreamIn, ReadsEveryType) {
  EXPECT_EQ("1/0", PrintSubStream("sub_stream_bend"));
  EXPECT_EQ("2/7", PrintSubStream("sub_stream_controller"));
  EXPECT_EQ("3/0", PrintSubStream("sub_stream_program"));
  EXPECT_EQ("4/0", PrintSubStream("sub_stream_mono_pressure"));
  EXPECT_EQ("5/60", PrintSubStream("sub_stream_poly_pressure"));
}

TEST(Vrae_SubStream_StreamOut, WritesEveryTypeByteForByte) {
  EXPECT_EQ(ReadGolden("sub_stream_bend"), Written(Vrae_SubStream::PitchBend()));
  EXPECT_EQ(ReadGolden("sub_stream_controller"), Written(Vrae_SubStream::Controller(7)));
  EXPECT_EQ(ReadGolden("sub_stream_program"), Written(Vrae_SubStream::Program()));
  EXPECT_EQ(ReadGolden("sub_stream_mono_pressure"), Written(Vrae_SubStream::MonoPressure()));
  EXPECT_EQ(ReadGolden("sub_stream_poly_pressure"), Written(Vrae_SubStream::PolyPressure(60)));
}

TEST(Vrae_SubStream_StreamIn, SkipsWhatALaterVersionAdded) {
  Sys_MemoryInStream stream = OpenGolden("sub_stream_longer");
  Vrae_SubStream subStream;
  subStream.StreamIn(stream);
  EXPECT_EQ(Vrae_SubStream::Controller(7), subStream);
  subStream.StreamIn(stream);
  EXPECT_EQ(Vrae_SubStream::Controller(8), subStream);
}

TEST(Vrae_SubStream_StreamIn, RefusesUnknownTypesWithString202) {
  I18N_StringTable table;
  table.Set(202, "the string 202");
  I18N_ModuleHandle const former = Vrad_GetResourceModule();
  Vrad_SetResourceModule(&table);
  Vrae_SubStream subStream = Vrae_SubStream::Controller(3);
  EXPECT_EQ("the string 202", Refusal(subStream, "sub_stream_type_6"));
  EXPECT_EQ("the string 202", Refusal(subStream, "sub_stream_type_255"));
  Vrad_SetResourceModule(former);
  EXPECT_EQ("bad data encountered", Refusal(subStream, "sub_stream_type_6"));
  EXPECT_EQ(Vrae_SubStream::Controller(3), subStream);
}

TEST(Vrae_SubStream_StreamIn, RefusesEveryTypeFrom6On) {
  Bytes bytes = ReadGolden("sub_stream_type_6");
  ASSERT_EQ(6, bytes[15]);
  for (int type = 6; type < 256; ++type) {
    bytes[15] = static_cast<unsigned char>(type);
    Sys_MemoryInStream stream(bytes);
    Vrae_SubStream subStream;
    EXPECT_EQ("bad data encountered", ThrownBy([&] { subStream.StreamIn(stream); })) << type;
  }
}

TEST(Vrae_SubStream_StreamIn, RefusesSubTypesOutsideTheRangeOfTheType) {
  Vrae_SubStream subStream;
  EXPECT_EQ("bad subtype encountered", Refusal(subStream, "sub_stream_controller_0"));
  EXPECT_EQ("bad subtype encountered", Refusal(subStream, "sub_stream_poly_pressure_128"));
  EXPECT_TRUE(subStream.IsNull());
}

TEST(Vrae_SubStream_StreamIn, MeetsTheNullTypesCheck) {
  Vrae_SubStream subStream;
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ("0", Refusal(subStream, "sub_stream_null"));
  EXPECT_EQ(1, recorder.GetNum("0"));
}

TEST(Vrae_SubStream_StreamIn, RefusesTheNullTypeWithThrowingOff) {
  Cmn_AssertRecorder const recorder;
  ThrowingOff const off;
  Vrae_SubStream subStream;
  EXPECT_EQ("bad subtype encountered", Refusal(subStream, "sub_stream_null"));
}

TEST(Vrae_SubStream_StreamOut, ThrowsForTheNullSubStreamWithNothingWritten) {
  Cmn_AssertRecorder const recorder;
  Sys_MemoryOutStream stream;
  EXPECT_EQ("0", ThrownBy([&] { Vrae_SubStream().StreamOut(stream); }));
  EXPECT_THAT(stream.GetBytes(), IsEmpty());
}
