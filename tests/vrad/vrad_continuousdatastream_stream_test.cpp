// Continuous data and its stream as records.
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cmn/cmn_assert.h"
#include "foundation/i18n_stringtable.h"
#include "ndo/ndo_manager.h"
#include "support/golden_files.h"
#include "support/store_printing.h"
#include "vrad/vrad_continuousdatastream.h"
#include "vrad/vrad_init.h"

namespace {

typedef std::unique_ptr<Vrad_ContinuousDataStream> StreamPtr;

StreamPtr ReadFrom(Sys_TypedInStream & ioStream) {
  return std::make_unique<Vrad_ContinuousDataStream>(ioStream, Ndo_Object::kNotUndoable, false);
}

StreamPtr ReadStream(std::string const & iGolden) {
  Sys_MemoryInStream stream = OpenGolden(iGolden);
  return ReadFrom(stream);
}

std::string RefusalOf(std::string const & iGolden) {
  return ThrownBy([&] { ReadStream(iGolden); });
}

// "index: events".
std::string Print(StreamPtr const & iStreamP) {
  Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(iStreamP.get());
  return std::to_string(iStreamP->GetSubStream().GetIndex()) + ": " + PrintRest(iter);
}

StreamPtr MakeStream(Vrae_SubStream const & iSubStream) {
  return std::make_unique<Vrad_ContinuousDataStream>(iSubStream, Ndo_Object::kNotUndoable, false);
}

}  // namespace

TEST(Vrad_ContinuousDataStream_Reading, TakesSubStreamAndSegments) {
  EXPECT_EQ("7: 0:100 480000:64 960000:0", Print(ReadStream("continuous")));
}

TEST(Vrad_ContinuousDataStream_Reading, TakesEqualTimesAsTheyAre) {
  EXPECT_EQ("7: 10:1 10:2", Print(ReadStream("continuous_equal_times")));
}

TEST(Vrad_ContinuousDataStream_Reading, OrdersByCountsAlone) {
  EXPECT_EQ("0: 0:-8192 240000s:8191", Print(ReadStream("continuous_mixed_units")));
}

TEST(Vrad_ContinuousDataStream_Reading, TakesAnEmptyStream) {
  EXPECT_EQ("7: ", Print(ReadStream("continuous_empty")));
}

TEST(Vrad_ContinuousDataStream_Reading, SkipsWhatALaterVersionAdded) {
  Sys_MemoryInStream stream = OpenGolden("continuous_longer");
  EXPECT_EQ("7: 1:5", Print(ReadFrom(stream)));
  EXPECT_EQ("182: 10:90", Print(ReadFrom(stream)));
}

TEST(Vrad_ContinuousDataStream_Reading, RefusesTimeThatGoesBackwards) {
  EXPECT_EQ("bad data encountered", RefusalOf("continuous_backwards"));
}

TEST(Vrad_ContinuousDataStream_Reading, RefusesANegativeFirstTime) {
  EXPECT_EQ("bad data encountered", RefusalOf("continuous_negative_time"));
}

TEST(Vrad_ContinuousDataStream_Reading, RefusesTimeThatGoesBackwardsAnywhere) {
  StreamPtr const streamP = MakeStream(Vrae_SubStream::Controller(7));
  for (int i = 0; i < 2500; ++i)
    streamP->AddEvent(Vrae_TimedEvent(Tick(100 + i), Vrae_ControllerEvent(7, 1)));
  Bytes const bytes = Written(*streamP);
  for (size_t const i : {1, 2, 1023, 1024, 1025, 2047, 2048, 2049, 2499}) {
    Bytes damaged = bytes;
    size_t const word = 55 + 12 * i;
    damaged[word] = 1;  // tick 0
    damaged[word + 1] = 0;
    Sys_MemoryInStream stream(damaged);
    EXPECT_EQ("bad data encountered", ThrownBy([&] { ReadFrom(stream); })) << i;
  }
}

TEST(Vrad_ContinuousDataStream_Reading, RefusesANegativeCount) {
  EXPECT_EQ("bad data encountered", RefusalOf("continuous_negative_count"));
}

TEST(Vrad_ContinuousDataStream_Reading, RefusesWithString100) {
  I18N_StringTable table;
  table.Set(100, "the string 100");
  I18N_ModuleHandle const former = Vrad_GetResourceModule();
  Vrad_SetResourceModule(&table);
  std::string const backwards = RefusalOf("continuous_backwards");
  std::string const negative = RefusalOf("continuous_negative_count");
  Vrad_SetResourceModule(former);
  EXPECT_EQ("the string 100", backwards);
  EXPECT_EQ("the string 100", negative);
}

TEST(Vrad_ContinuousDataStream_Reading, RefusesVersion1OfTheStream) {
  EXPECT_EQ("record version 1 is not supported", RefusalOf("continuous_version_1"));
}

TEST(Vrad_ContinuousDataStream_Reading, StandsBehindTheDataAfterDamage) {
  Bytes bytes = ReadGolden("continuous_longer");
  ASSERT_EQ(1, bytes[51]);  // the count, at the start of the data's 19 bytes
  bytes[54] = 0x80;
  Sys_MemoryInStream stream(bytes);
  EXPECT_EQ("bad data encountered", ThrownBy([&] { ReadFrom(stream); }));
  EXPECT_EQ(51 + 19, stream.GetPos());
}

TEST(Vrad_ContinuousDataStream_Reading, SnapsAsItIsTold) {
  TickTimesMatterScope const scope;
  Sys_MemoryInStream stream = OpenGolden("continuous");
  Vrad_ContinuousDataStream snapping(stream, Ndo_Object::kNotUndoable, true);
  snapping.OffsetTimes(Ticks(400));
  Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(&snapping);
  EXPECT_EQ("0:100 480000:64 960000:0", PrintRest(iter));
}

TEST(Vrad_ContinuousDataStream_Reading, MakesDataThatIsUndoableAsTheStreamIs) {
  Sys_MemoryInStream stream = OpenGolden("continuous");
  Vrad_ContinuousDataStream const undoable(stream, Ndo_Object::kUndoable, false);
  EXPECT_TRUE(undoable.NdoIsUndoable());
  EXPECT_NE(-1, undoable.GetDataID());
  EXPECT_EQ(-1, ReadStream("continuous")->GetDataID());
}

TEST(Vrad_ContinuousDataStream_Reading, LeavesNothingBehindWhenItFails) {
  Vrad_ContinuousData const before(Ndo_Object::kUndoable, false);
  Sys_MemoryInStream stream = OpenGolden("continuous_backwards");
  ThrownBy([&] { Vrad_ContinuousDataStream(stream, Ndo_Object::kUndoable, false); });
  Ndo_gManager.ClearHistory();
  for (long long id : {before.NdoGetID() + 1, before.NdoGetID() + 2})
    EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(id)) << id;
}

TEST(Vrad_ContinuousDataStream_Reading, AnnouncesNothing) {
  Ndo_gManager.BeginTransaction();
  Sys_MemoryInStream stream = OpenGolden("continuous");
  Vrad_ContinuousDataStream const undoable(stream, Ndo_Object::kUndoable, false);
  EXPECT_FALSE(Ndo_gManager.HasAnnounced(undoable.NdoGetID()));
  EXPECT_FALSE(Ndo_gManager.HasAnnounced(undoable.GetDataID()));
  Ndo_gManager.AbortTransaction();
}

TEST(Vrad_ContinuousDataStream_Reading, FindsAmongManySegments) {
  StreamPtr const streamP = MakeStream(Vrae_SubStream::Controller(7));
  for (int i = 0; i < 3000; ++i)
    streamP->AddEvent(
        Vrae_TimedEvent(Tick(i * 10), Vrae_ControllerEvent(7, static_cast<signed char>(i % 128))));
  Sys_MemoryInStream stream(Written(*streamP));
  StreamPtr const copyP = ReadFrom(stream);
  EXPECT_EQ(Print(streamP), Print(copyP));
  Time_Typed time;
  int value;
  ASSERT_TRUE(copyP->GetLastValueChangeBeforeTime(&time, &value, Tick(25005)));
  EXPECT_EQ(25000, time.AsInt64());
  EXPECT_EQ(2500 % 128, value);
  EXPECT_FALSE(copyP->IsEventInRange(Tick(25001), Tick(25010)));
}

TEST(Vrad_ContinuousDataStream_StreamOut, WritesByteForByte) {
  for (char const * const name : {"continuous", "continuous_mixed_units", "continuous_empty"})
    EXPECT_EQ(ReadGolden(name), Written(*ReadStream(name))) << name;
}

TEST(Vrad_ContinuousDataStream_StreamOut, ThrowsForASegmentAtANegativeTime) {
  StreamPtr const streamP = MakeStream(Vrae_SubStream::Controller(7));
  streamP->AddEvent(Vrae_TimedEvent(Tick(-1), Vrae_ControllerEvent(7, 1)));
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ("iter->mTime.AsInt64() >= previousTime.AsInt64()",
            ThrownBy([&] { Written(*streamP); }));
  EXPECT_TRUE(recorder.GetEntries().at(0).mThrowing);
  EXPECT_FALSE(recorder.GetEntries().at(0).mFlag);
}

// Sample 50 is tick 2000, but 50 is less than 100.
TEST(Vrad_ContinuousDataStream_StreamOut, ThrowsWhereCountsFall) {
  StreamPtr const streamP = MakeStream(Vrae_SubStream::Controller(7));
  streamP->AddEvent(Vrae_TimedEvent(Sample(50), Vrae_ControllerEvent(7, 1)));
  streamP->AddEvent(Vrae_TimedEvent(Tick(49), Vrae_ControllerEvent(7, 2)));
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ("nothing", ThrownBy([&] { Written(*streamP); }));
  streamP->AddEvent(Vrae_TimedEvent(Tick(100), Vrae_ControllerEvent(7, 3)));
  ASSERT_EQ("7: 49:2 100:3 50s:1", Print(streamP));
  EXPECT_EQ("iter->mTime.AsInt64() >= previousTime.AsInt64()",
            ThrownBy([&] { Written(*streamP); }));
}

TEST(Vrad_ContinuousDataStream_StreamOut, GoesOnWritingWithThrowingOff) {
  StreamPtr const streamP = MakeStream(Vrae_SubStream::Controller(7));
  streamP->AddEvent(Vrae_TimedEvent(Tick(-1), Vrae_ControllerEvent(7, 1)));
  Cmn_AssertRecorder const recorder;
  NotThrowingScope const scope;
  EXPECT_EQ(ReadGolden("continuous_negative_time"), Written(*streamP));
}
