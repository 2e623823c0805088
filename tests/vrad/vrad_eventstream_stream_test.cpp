// Event streams as records.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ndo/ndo_manager.h"
#include "support/golden_files.h"
#include "support/store_printing.h"
#include "vrad/vrad_eventstream.h"

namespace {

std::string Print(Vrad_EventStream & iStream) {
  Vrad_EventStreamTimedEventsInRangeIter iter(&iStream);
  return PrintRest(iter);
}

Vrae_TimedEvent SysexAt(Time_Typed iTime, unsigned char iByte) {
  return Vrae_TimedEvent(iTime, Vrae_SysexEvent(1, &iByte));
}

class Vrad_EventStream_StreamIn : public testing::Test {
protected:
  Vrad_EventStream_StreamIn() : mStream(Ndo_Object::kUndoable, false) {
    mStream.AddEvent(SysexAt(Tick(3), 33));
  }

  Vrad_EventStream mStream;
};

}  // namespace

TEST_F(Vrad_EventStream_StreamIn, ReplacesTheEvents) {
  ReadInto(mStream, "event_stream");
  EXPECT_EQ("960000:1 500s:kind15", Print(mStream));
}

TEST_F(Vrad_EventStream_StreamIn, KeepsTheOrderOfTheFile) {
  ReadInto(mStream, "event_stream_unsorted");
  EXPECT_EQ("20:1 10:1", Print(mStream));
}

TEST_F(Vrad_EventStream_StreamIn, SkipsWhatALaterVersionAdded) {
  Sys_MemoryInStream stream = OpenGolden("event_stream_longer");
  mStream.StreamIn(stream);
  EXPECT_EQ("20:1", Print(mStream));
  EXPECT_EQ(0, stream.BytesLeft());
}

TEST_F(Vrad_EventStream_StreamIn, AnnouncesFirstAndIsUndone) {
  Ndo_gManager.BeginTransaction();
  EXPECT_EQ("no record \"VrES\"", Refusal(mStream, "timed_events"));
  EXPECT_TRUE(Ndo_gManager.HasAnnounced(mStream.NdoGetID()));
  EXPECT_EQ("3:33", Print(mStream));
  ReadInto(mStream, "event_stream_unsorted");
  Ndo_gManager.EndTransaction();
  Ndo_gManager.Undo();
  EXPECT_EQ("3:33", Print(mStream));
  Ndo_gManager.ClearHistory();
}

TEST_F(Vrad_EventStream_StreamIn, LeavesSharersOfTheEventsAlone) {
  Vrad_EventStream copy(mStream);
  ReadInto(mStream, "event_stream_unsorted");
  EXPECT_EQ("3:33", Print(copy));
}

TEST_F(Vrad_EventStream_StreamIn, KeepsWhatWasReadBeforeATear) {
  Bytes bytes = ReadGolden("event_stream_unsorted");
  bytes.resize(bytes.size() - 2);
  Sys_MemoryInStream stream(bytes);
  EXPECT_EQ("end of stream", ThrownBy([&] { mStream.StreamIn(stream); }));
  EXPECT_EQ("20:1", Print(mStream));
}

TEST(Vrad_EventStream_StreamOut, WritesByteForByte) {
  for (char const * const name : {"event_stream", "event_stream_unsorted"}) {
    Vrad_EventStream stream(Ndo_Object::kNotUndoable, false);
    ReadInto(stream, name);
    EXPECT_EQ(ReadGolden(name), Written(stream)) << name;
  }
}
