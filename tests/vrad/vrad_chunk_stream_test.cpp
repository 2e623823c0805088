// Chunks as records, whole and damaged.
#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cmn/cmn_assert.h"
#include "cmn/cmn_n10ncenter.h"
#include "foundation/i18n_stringtable.h"
#include "ndo/ndo_manager.h"
#include "support/chunk_samples.h"
#include "support/event_samples.h"
#include "support/golden_files.h"
#include "support/throwing_off.h"
#include "support/tick_times_matter.h"
#include "vrad/vrad_init.h"
#include "vrad/vrad_n10n.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

char const * const kBadData = "Vrad_Chunk::StreamIn exception: bad data encountered";
char const * const kIdentity = "101112131415161718191a1b1c1d1e1f";
char const * const kNotes1 = "notes n60@0t+480000t n64@480000t+240000t";
char const * const kSysex = "x1@960000t kind15@500s";

// A chunk read from a golden file, the checks that failed on the way, and the stream behind it.
class Reading {
public:
  explicit Reading(std::string const & iGolden,
                   Ndo_Object::EUndoFlag iFlag = Ndo_Object::kNotUndoable, bool iQuantizes = false)
      : Reading(ReadGolden(iGolden), iFlag, iQuantizes) {}
  explicit Reading(Bytes const & iBytes, Ndo_Object::EUndoFlag iFlag = Ndo_Object::kNotUndoable,
                   bool iQuantizes = false)
      : mStream(iBytes) {
    mChecks = GetFailedChecks(
        [&] { mChunkP = ChunkPtr(Vrad_Chunk::StreamIn(mStream, iFlag, iQuantizes)); });
  }

  std::string Print() const { return PrintContents(*mChunkP.Get()); }
  std::string PrintIdentity() const { return mChunkP->GetUID().AsHexString(); }
  /// The next chunk of the stream.
  std::string PrintNext() {
    ChunkPtr const nextP(Vrad_Chunk::StreamIn(mStream, Ndo_Object::kNotUndoable, false));
    return PrintContents(*nextP.Get());
  }

  Sys_MemoryInStream mStream;
  ChunkPtr mChunkP;
  std::vector<std::string> mChecks;
};

bool IsFresh(Sys_Umid const & iUID) {
  return iUID != Sys_Umid::NoID() && iUID != Reading("chunk").mChunkP->GetUID();
}

}  // namespace

TEST(Vrad_Chunk_StreamIn, ReadsEveryStore) {
  Reading const reading("chunk");
  EXPECT_THAT(reading.mChecks, IsEmpty());
  EXPECT_EQ(std::string(kNotes1) +
                " / stream 0 b-8192@0t b8191@240000s / stream 7 c7=100@0t c7=64@480000t "
                "c7=0@960000t / stream 182 kind8@10t / misc " +
                kSysex,
            reading.Print());
  EXPECT_EQ(kIdentity, reading.PrintIdentity());
  EXPECT_FALSE(reading.mChunkP->IsLocal());
}

TEST(Vrad_Chunk_StreamIn, ReadsAStreamOfEachType) {
  Reading const reading("chunk_all_types");
  EXPECT_EQ(std::string(kNotes1) +
                " / stream 0 b-8192@0t b8191@240000s / stream 7 c7=100@0t c7=64@480000t "
                "c7=0@960000t / stream 120 kind7@3t / stream 121 kind6@0t / stream 182 kind8@10t"
                " / misc",
            reading.Print());
}

TEST(Vrad_Chunk_StreamIn, GivesABareChunkNoIdentityAndMakesItLocal) {
  Reading const reading("chunk_bare");
  EXPECT_THAT(reading.mChecks, IsEmpty());
  EXPECT_EQ(std::string(kNotes1) + " / stream 7 c7=100@0t c7=64@480000t c7=0@960000t / misc",
            reading.Print());
  EXPECT_EQ(Sys_Umid::NoID(), reading.mChunkP->GetUID());
  EXPECT_TRUE(reading.mChunkP->IsLocal());
}

TEST(Vrad_Chunk_StreamIn, GivesAChunkWithoutIdentityNone) {
  Reading const reading("chunk_no_identity");
  EXPECT_EQ(std::string(kNotes1) + " / misc " + kSysex, reading.Print());
  EXPECT_EQ(Sys_Umid::NoID(), reading.mChunkP->GetUID());
  EXPECT_TRUE(reading.mChunkP->IsLocal());
}

TEST(Vrad_Chunk_StreamIn, SkipsWhatALaterVersionAdded) {
  Reading reading("chunk_longer");
  EXPECT_THAT(reading.mChecks, IsEmpty());
  EXPECT_EQ("notes / misc", reading.PrintNext());
  EXPECT_EQ(0, reading.mStream.BytesLeft());
}

TEST(Vrad_Chunk_StreamIn, SortsStreamsByIndex) {
  EXPECT_EQ(std::string(kNotes1) +
                " / stream 0 b-8192@0t b8191@240000s / stream 7 c7=100@0t c7=64@480000t "
                "c7=0@960000t / stream 182 kind8@10t / misc",
            Reading("chunk_unsorted_streams").Print());
}

TEST(Vrad_Chunk_StreamIn, ReportsTwinStreamsAndKeepsTheFirst) {
  Reading reading("chunk_twin_streams");
  EXPECT_THAT(
      reading.mChecks,
      ElementsAre("Vrad_Chunk::StreamIn exception: bad data encountered: stream not unique"));
  EXPECT_EQ(std::string(kNotes1) + " / stream 7 c7=100@0t c7=64@480000t c7=0@960000t / misc",
            reading.Print());
  EXPECT_EQ("notes / misc", reading.PrintNext());
}

// Else a small file could fill the memory with streams that share their bytes.
TEST(Vrad_Chunk_StreamIn, ReportsMoreSegmentsThanTheFileHasBytesFor) {
  Reading const reading("chunk_overlapping_streams");
  EXPECT_THAT(reading.mChecks, ElementsAre(kBadData));
  EXPECT_EQ("notes / stream 7 c7=0@0t c7=1@1t c7=2@2t c7=3@3t c7=4@4t c7=5@5t c7=6@6t c7=7@7t "
            "/ misc",
            reading.Print());
}

TEST(Vrad_Chunk_StreamIn, ReportsTwinStreamsByString101) {
  I18N_StringTable table;
  table.Set(101, "the string 101");
  I18N_ModuleHandle const former = Vrad_GetResourceModule();
  Vrad_SetResourceModule(&table);
  Reading const reading("chunk_twin_streams");
  Vrad_SetResourceModule(former);
  EXPECT_THAT(reading.mChecks, ElementsAre("Vrad_Chunk::StreamIn exception: the string 101"));
}

TEST(Vrad_Chunk_StreamIn, LeaksNoTwinStream) {
  Vrad_EventStream const before(Ndo_Object::kUndoable, false);
  { Reading const reading("chunk_twin_streams", Ndo_Object::kUndoable); }
  Vrad_EventStream const behind(Ndo_Object::kUndoable, false);
  Ndo_gManager.ClearHistory();
  // The chunk, its note lists and event stream, two streams and the data of each.
  EXPECT_EQ(before.NdoGetID() + 9, behind.NdoGetID());
  for (long long id = before.NdoGetID() + 1; id < behind.NdoGetID(); ++id)
    EXPECT_EQ(nullptr, Ndo_gManager.LookupObject(id)) << id;
}

TEST(Vrad_Chunk_StreamIn, ReportsANegativeNumberOfStreams) {
  Reading reading("chunk_negative_streams");
  EXPECT_THAT(reading.mChecks, ElementsAre(kBadData));
  EXPECT_EQ(std::string(kNotes1) + " / misc", reading.Print());
  EXPECT_EQ(0, reading.mStream.BytesLeft());
}

TEST(Vrad_Chunk_StreamIn, KeepsTheNotesBeforeADamagedOneAndTheRecordBehind) {
  Reading reading("chunk_damaged_notes");
  EXPECT_THAT(reading.mChecks, ElementsAre(kBadData));
  EXPECT_EQ("notes n60@0t+480000t / misc", reading.Print());
  EXPECT_TRUE(IsFresh(reading.mChunkP->GetUID()));
  EXPECT_TRUE(reading.mChunkP->IsLocal());
  EXPECT_EQ("notes / misc", reading.PrintNext());
}

TEST(Vrad_Chunk_StreamIn, NotifiesOfAnOnVelocityOf0BeforeItReports) {
  Cmn_AssertRecorder const recorder;
  std::vector<int> numReportsWhenHeard;
  Cmn_MsgConnection const connection =
      Cmn_N10nCenter::Sender()->Connect<Vrad_N10n_MIDIZeroOnVelocitiesFound>(
          [&](Vrad_N10n_MIDIZeroOnVelocitiesFound const &) {
            numReportsWhenHeard.push_back(recorder.GetNum());
          });
  Sys_MemoryInStream stream = OpenGolden("chunk_zero_on_velocity");
  ChunkPtr const chunkP(Vrad_Chunk::StreamIn(stream, Ndo_Object::kNotUndoable, false));
  EXPECT_THAT(numReportsWhenHeard, ElementsAre(0));
  EXPECT_EQ(1, recorder.GetNum(kBadData));
  EXPECT_EQ("notes n60@0t+480000t / misc", PrintContents(*chunkP.Get()));
}

TEST(Vrad_Chunk_StreamIn, KeepsTheStreamsBeforeADamagedOne) {
  Reading const reading("chunk_damaged_stream");
  EXPECT_THAT(reading.mChecks, ElementsAre(kBadData));
  EXPECT_EQ(std::string(kNotes1) + " / stream 0 b-8192@0t b8191@240000s / misc", reading.Print());
}

TEST(Vrad_Chunk_StreamIn, ReportsAStreamOfAnUnknownType) {
  EXPECT_THAT(Reading("chunk_unknown_stream").mChecks, ElementsAre(kBadData));
}

TEST(Vrad_Chunk_StreamIn, ReportsAStreamOfTheNullType) {
  EXPECT_THAT(Reading("chunk_null_stream").mChecks,
              ElementsAre("0", "Vrad_Chunk::StreamIn exception: 0"));
}

TEST(Vrad_Chunk_StreamIn, ReportsABadSubType) {
  EXPECT_THAT(Reading("chunk_bad_sub_type").mChecks,
              ElementsAre("Vrad_Chunk::StreamIn exception: bad subtype encountered"));
}

TEST(Vrad_Chunk_StreamIn, KeepsTheSysexBeforeADamagedOne) {
  Reading const reading("chunk_damaged_misc");
  ASSERT_EQ(1u, reading.mChecks.size());
  EXPECT_EQ("Vrad_Chunk::StreamIn exception: " + std::string(std::bad_alloc().what()),
            reading.mChecks[0]);
  EXPECT_EQ(std::string(kNotes1) + " / stream 7 c7=100@0t c7=64@480000t c7=0@960000t / misc x1@7t",
            reading.Print());
  EXPECT_TRUE(IsFresh(reading.mChunkP->GetUID()));
}

TEST(Vrad_Chunk_StreamIn, KeepsItsFreshIdentityWhenTheSavedOneIsTorn) {
  Reading const reading("chunk_torn");
  EXPECT_THAT(reading.mChecks, ElementsAre("Vrad_Chunk::StreamIn exception: end of stream"));
  EXPECT_TRUE(IsFresh(reading.mChunkP->GetUID()));
  EXPECT_TRUE(reading.mChunkP->IsLocal());
}

TEST(Vrad_Chunk_StreamIn, TakesAnIdentityWhoseFlagIsTornOff) {
  Reading const reading("chunk_torn_flag");
  EXPECT_THAT(reading.mChecks, ElementsAre("Vrad_Chunk::StreamIn exception: end of stream"));
  EXPECT_EQ(kIdentity, reading.PrintIdentity());
  EXPECT_TRUE(reading.mChunkP->IsLocal());
}

// Whether there is more goes by the recorded size alone.
TEST(Vrad_Chunk_StreamIn, MeetsATearBeforeTheMiscEventsWithTheNextRead) {
  Bytes bytes = ReadGolden("chunk_no_identity");
  bytes.resize(17 + 110);  // header, note list and number of streams
  Reading const reading(bytes);
  EXPECT_THAT(reading.mChecks, ElementsAre("Vrad_Chunk::StreamIn exception: end of stream"));
  EXPECT_EQ(std::string(kNotes1) + " / misc", reading.Print());
}

TEST(Vrad_Chunk_StreamIn, RefusesVersion0WithAnException) {
  Bytes bytes = ReadGolden("chunk");
  ASSERT_EQ(1, bytes[7]);
  bytes[7] = 0;
  Sys_MemoryInStream stream(bytes);
  EXPECT_EQ("record version 0 is not supported",
            ThrownBy([&] { Vrad_Chunk::StreamIn(stream, Ndo_Object::kNotUndoable, false); }));
}

TEST(Vrad_Chunk_StreamIn, RefusesAnotherVersionWithAnException) {
  Sys_MemoryInStream stream = OpenGolden("chunk_version_2");
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ("record version 2 is not supported",
            ThrownBy([&] { Vrad_Chunk::StreamIn(stream, Ndo_Object::kNotUndoable, false); }));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrad_Chunk_StreamIn, RefusesAnotherRecordWithAnException) {
  Sys_MemoryInStream stream = OpenGolden("notes_v3");
  EXPECT_EQ("no record \"VrChun\"",
            ThrownBy([&] { Vrad_Chunk::StreamIn(stream, Ndo_Object::kNotUndoable, false); }));
}

namespace {

// The checks that fail when one byte of a golden chunk, so many behind the beginning of a tag, is
// another one. The tag begins with its length.
std::vector<std::string> ChecksWith(std::string const & iTag, size_t iPlace, int iByte) {
  Bytes bytes = ReadGolden("chunk");
  auto const tag = std::search(bytes.begin(), bytes.end(), iTag.begin(), iTag.end());
  if (tag == bytes.end()) return {"no tag " + iTag};
  tag[static_cast<std::ptrdiff_t>(iPlace)] = static_cast<unsigned char>(iByte);
  return Reading(bytes).mChecks;
}

struct InnerRecord {
  char const * mTag;  // behind its length
  std::vector<int> mRefused;
};

std::vector<InnerRecord> const kInnerRecords = {{"\5VrNLB", {0, 4}}, {"\5VrCDS", {0, 1, 3}},
                                                {"\4Vrss", {0, 2}},  {"\4VrCD", {0, 2}},
                                                {"\4VrES", {0, 2}},  {"\5VrTEL", {0, 2}}};

}  // namespace

TEST(Vrad_Chunk_StreamIn, ReportsAnotherVersionOfAnyRecordInside) {
  for (InnerRecord const & record : kInnerRecords)
    for (int const version : record.mRefused)
      EXPECT_THAT(ChecksWith(record.mTag, std::string(record.mTag).size(), version),
                  ElementsAre("Vrad_Chunk::StreamIn exception: record version " +
                              std::to_string(version) + " is not supported"))
          << record.mTag + 1;
}

TEST(Vrad_Chunk_StreamIn, ReportsAnotherTagOfAnyRecordInside) {
  for (InnerRecord const & record : kInnerRecords)
    EXPECT_THAT(ChecksWith(record.mTag, 1, 0x76),
                ElementsAre("Vrad_Chunk::StreamIn exception: no record \"" +
                            std::string(record.mTag + 1) + "\""));
}

TEST(Vrad_Chunk_StreamIn, ReportsInTheThrowingFormWithTheFlagSet) {
  Cmn_AssertRecorder const recorder;
  Sys_MemoryInStream stream = OpenGolden("chunk_negative_streams");
  ChunkPtr const chunkP(Vrad_Chunk::StreamIn(stream, Ndo_Object::kNotUndoable, false));
  ASSERT_EQ(1, recorder.GetNum());
  EXPECT_TRUE(recorder.GetEntries()[0].mThrowing);
  EXPECT_TRUE(recorder.GetEntries()[0].mFlag);
  EXPECT_THAT(recorder.GetEntries()[0].mPath, testing::EndsWith("vrad/vrad_chunk_stream.cpp"));
}

TEST(Vrad_Chunk_StreamIn, GoesOnWithThrowingOff) {
  Cmn_AssertRecorder const recorder;
  ThrowingOff const off;
  Sys_MemoryInStream stream = OpenGolden("chunk_damaged_notes");
  ChunkPtr const chunkP(Vrad_Chunk::StreamIn(stream, Ndo_Object::kNotUndoable, false));
  EXPECT_EQ(1, recorder.GetNum(kBadData));
  EXPECT_EQ("notes n60@0t+480000t / misc", PrintContents(*chunkP.Get()));
}

namespace {

// Throws what a handler throws when an on velocity of 0 is found.
template <class T>
std::vector<std::string> ChecksOfReadingWith(T iThrown) {
  Cmn_MsgConnection const connection =
      Cmn_N10nCenter::Sender()->Connect<Vrad_N10n_MIDIZeroOnVelocitiesFound>(
          [iThrown](Vrad_N10n_MIDIZeroOnVelocitiesFound const &) { throw iThrown; });
  return Reading("chunk_zero_on_velocity").mChecks;
}

}  // namespace

TEST(Vrad_Chunk_StreamIn, ReportsWhatIsNoStandardException) {
  EXPECT_THAT(ChecksOfReadingWith(7), ElementsAre("Unexpected exception"));
}

TEST(Vrad_Chunk_StreamIn, ReportsAtMost511Characters) {
  std::vector<std::string> const checks =
      ChecksOfReadingWith(std::runtime_error(std::string(600, '%')));
  ASSERT_EQ(1u, checks.size());
  EXPECT_EQ("Vrad_Chunk::StreamIn exception: " + std::string(511 - 32, '%'), checks[0]);
}

TEST(Vrad_Chunk_StreamIn, GivesEveryStoreTheFlags) {
  Reading const reading("chunk", Ndo_Object::kUndoable, true);
  Vrad_Chunk & chunk = *reading.mChunkP.Get();
  EXPECT_TRUE(chunk.NdoIsUndoable());
  EXPECT_TRUE(chunk.QuantizeContents());
  EXPECT_TRUE(chunk.GetNoteList()->NdoIsUndoable());
  EXPECT_TRUE(chunk.GetEventStream()->NdoIsUndoable());
  for (auto const & streamP : chunk.GetContinuousList())
    EXPECT_TRUE(streamP->NdoIsUndoable());
  EXPECT_FALSE(Reading("chunk").mChunkP->GetContinuousList()[0]->NdoIsUndoable());
  EXPECT_FALSE(Reading("chunk").mChunkP->QuantizeContents());
}

TEST(Vrad_Chunk_StreamIn, GivesTheStreamsWhetherToSnap) {
  TickTimesMatterScope const scope;
  for (bool const quantizes : {false, true}) {
    Reading const reading("chunk", Ndo_Object::kNotUndoable, quantizes);
    reading.mChunkP->GetContinuousList()[2]->OffsetTimes(Time_TypedLength(400, Time_eType_Ticks));
    EXPECT_NE(std::string::npos, reading.Print().find(quantizes ? "kind8@0t" : "kind8@410t"));
  }
}

TEST(Vrad_Chunk_StreamIn, FillsTheLongNoteListWithUnmutedCopies) {
  Reading const reading("chunk_long_notes");
  Vrad_NoteListBase const & longNotes = *reading.mChunkP->GetNoteList()->GetLongNoteList();
  EXPECT_EQ(1u, longNotes.Size());
  EXPECT_FALSE(longNotes.Last().IsMuted());
  EXPECT_TRUE(reading.mChunkP->GetNoteList()->Last().IsMuted());
}

TEST(Vrad_Chunk_StreamOut, WritesByteForByte) {
  for (char const * const name : {"chunk", "chunk_empty", "chunk_long_notes"})
    EXPECT_EQ(ReadGolden(name), Written(*Reading(name).mChunkP.Get())) << name;
}

TEST(Vrad_Chunk_StreamOut, WritesWhatWasAddedByHand) {
  ChunkPtr const chunkP = MakeChunk();
  chunkP->AddEvent(NoteAt(Samples(48000), 60, 24000));
  Reading const reading(Written(*chunkP.Get()));
  EXPECT_EQ("notes n60@48000s+24000s / misc", reading.Print());
  EXPECT_EQ(chunkP->GetUID(), reading.mChunkP->GetUID());
}

TEST(Vrad_Chunk_StreamOut, ThrowsWithoutANoteListAndWritesNothing) {
  ChunkPtr const chunkP = MakeChunk();
  chunkP->SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase>());
  Sys_MemoryOutStream stream;
  EXPECT_THAT(GetFailedChecks([&] { chunkP->StreamOut(stream); }), ElementsAre("mNoteListP.Get()"));
  EXPECT_THAT(GetFailedChecks([&] { chunkP->StreamOut(stream); }, false),
              ElementsAre("mNoteListP.Get()"));
  EXPECT_THAT(stream.GetBytes(), IsEmpty());
}
