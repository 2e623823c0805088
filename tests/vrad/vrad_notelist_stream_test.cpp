// Note lists as records: every version, every repair, every refusal.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cmn/cmn_assert.h"
#include "cmn/cmn_exception.h"
#include "cmn/cmn_n10ncenter.h"
#include "foundation/i18n_stringtable.h"
#include "ndo/ndo_manager.h"
#include "support/event_samples.h"
#include "support/golden_files.h"
#include "support/throwing_off.h"
#include "support/vrad_notes.h"
#include "vrad/vrad_init.h"
#include "vrad/vrad_n10n.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string Print(Time_TypedLength iLength) {
  return PrintCount(iLength.AsInt64(), iLength.GetType());
}

std::string PrintEvent(Vrae_NoteWithDurationEvent const & iEvent) {
  return std::to_string(iEvent.GetPitch()) + "+" + Print(iEvent.GetDuration()) + " " +
         std::to_string(iEvent.GetOnVelocity()) + "/" + std::to_string(iEvent.GetOffVelocity());
}

// Every field: "0: 60+480000 100/64, delta -2000, was 61+450000 90/32, muted".
std::string PrintWhole(Vrad_NoteListBase & iList) {
  std::string text;
  for (Vrad_NoteListBase::FullNotesInRangeIter iter(&iList); iter.IsMore(); ++iter) {
    Vrad_NoteListBase_Note const & note = *iter;
    text += (text.empty() ? "" : " | ") + Print(note.mTime) + ": " + PrintEvent(note.mEvent) +
            ", delta " + Print(note.mQuantizeTimeDelta) + ", was " + PrintEvent(note.mOrigEvent) +
            (note.mMuted ? ", muted" : "");
  }
  return text;
}

class Vrad_NoteList_StreamIn : public testing::Test {
protected:
  Vrad_NoteList_StreamIn() : mList(Ndo_Object::kNotUndoable, false) {}

  std::string Read(std::string const & iGolden) {
    mRefusal = Refusal(mList, iGolden);
    return PrintWhole(mList);
  }

  Vrad_NoteList mList;
  std::string mRefusal;
};

char const * const kFirst = "0: 60+480000 100/64, delta 0, was 60+480000 100/64";
char const * const kSecond = "480000: 64+240000 1/0, delta 0, was 64+240000 1/0";
char const * const kBadData = "bad data encountered";

std::string Both(std::string const & iFirst, std::string const & iSecond) {
  return iFirst + " | " + iSecond;
}

}  // namespace

TEST_F(Vrad_NoteList_StreamIn, GivesVersion1NotesNoDeltaAndThemselvesAsOriginal) {
  EXPECT_EQ(Both(kFirst, kSecond), Read("notes_v1"));
  EXPECT_EQ("nothing", mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, GivesVersion2NotesAnOriginalThatDiffersInDurationAlone) {
  EXPECT_EQ(Both("0: 60+480000 100/64, delta -2000, was 60+450000 100/64",
                 "480000: 64+240000 1/127, delta 0, was 64+240000 1/127"),
            Read("notes_v2"));
}

TEST_F(Vrad_NoteList_StreamIn, ReadsOriginalsAndMuteFlagsOfVersion3) {
  EXPECT_EQ(Both("0: 60+480000 100/64, delta -2000, was 61+450000 90/32, muted",
                 "480000: 64+240000 1/127, delta 0, was 64+240000 1/127"),
            Read("notes_v3"));
}

TEST_F(Vrad_NoteList_StreamIn, ReadsSamples) {
  EXPECT_EQ("48000s: 60+24000s 100/64, delta -3s, was 60+23900s 100/64", Read("notes_samples"));
}

TEST_F(Vrad_NoteList_StreamIn, GivesVersion1NotesADeltaInTheTimesUnit) {
  Cmn_AssertRecorder const recorder;
  Read("notes_zero_duration");
  Vrad_NoteListBase::FullNotesInRangeIter iter(&mList);
  EXPECT_EQ(Time_eType_Ticks, (*iter).mQuantizeTimeDelta.GetType());
  ++iter;
  EXPECT_EQ(Time_eType_Samples, (*iter).mQuantizeTimeDelta.GetType());
}

TEST_F(Vrad_NoteList_StreamIn, GivesVersion1NotesADeltaInTheTimesUnitWhateverTheDurations) {
  EXPECT_EQ("10s: 60+480000 100/64, delta 0s, was 60+480000 100/64", Read("notes_v1_units"));
}

TEST_F(Vrad_NoteList_StreamIn, ReadsAnEmptyList) {
  EXPECT_EQ("", Read("notes_v3_empty"));
  EXPECT_EQ("nothing", mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, TakesTheSecondAndThirdSectionAsOptional) {
  std::string const first = "0: 60+480000 100/64, delta -2000, was ";
  std::string const second = "480000: 64+240000 1/127, delta 0, was 64+240000 1/127";
  EXPECT_EQ(Both(first + "60+450000 100/64", second), Read("notes_v3_first_only"));
  EXPECT_EQ("nothing", mRefusal);
  EXPECT_EQ(Both(first + "61+450000 90/32", second), Read("notes_v3_no_flags"));
  EXPECT_EQ("nothing", mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, ReadsMuteFlagsInAnyVersion) {
  EXPECT_EQ(Both(kFirst, std::string(kSecond) + ", muted"), Read("notes_v1_flags"));
  EXPECT_EQ(Both("0: 60+480000 100/64, delta -2000, was 60+450000 100/64",
                 "480000: 64+240000 1/127, delta 0, was 64+240000 1/127, muted"),
            Read("notes_v2_flags"));
}

namespace {

// The two notes of the version 3 files, muted or not.
std::string Version3(bool iFirstIsMuted, bool iSecondIsMuted) {
  return Both(std::string("0: 60+480000 100/64, delta -2000, was 61+450000 90/32") +
                  (iFirstIsMuted ? ", muted" : ""),
              std::string("480000: 64+240000 1/127, delta 0, was 64+240000 1/127") +
                  (iSecondIsMuted ? ", muted" : ""));
}

// The same where the originals were left alone.
char const * const kWithoutOriginals = "0: 60+480000 100/64, delta -2000, was 60+450000 100/64 | "
                                       "480000: 64+240000 1/127, delta 0, was 64+240000 1/127";

}  // namespace

TEST_F(Vrad_NoteList_StreamIn, SkipsFourBytesBehindEachFlagOfSize5) {
  EXPECT_EQ(Version3(false, true), Read("notes_flags_size_5"));
}

TEST_F(Vrad_NoteList_StreamIn, ReadsFlagsOfASizeBelow1AsOnesOfSize1) {
  for (unsigned char const highestByte : Bytes{0x00, 0x80, 0xff}) {
    Bytes bytes = ReadGolden("notes_v3");
    size_t const size = bytes.size() - 6;  // four bytes, in front of the two flags
    ASSERT_EQ(bytes[size], 1);
    bytes[size] = 0;
    bytes[size + 3] = highestByte;
    Sys_MemoryInStream stream(bytes);
    mList.StreamIn(stream);
    EXPECT_EQ(Version3(true, false), PrintWhole(mList));
    EXPECT_EQ(0, stream.BytesLeft());
  }
}

TEST_F(Vrad_NoteList_StreamIn, ReadsNoFlagFromVersion0OfTheFlags) {
  EXPECT_EQ(Version3(false, false), Read("notes_flags_version_0"));
}

TEST_F(Vrad_NoteList_StreamIn, ReadsNoFlagFromANegativeVersionOfTheFlags) {
  Bytes bytes = ReadGolden("notes_v3");
  ASSERT_EQ(1, bytes[124]);
  bytes[124] = bytes[125] = 0xFF;
  Sys_MemoryInStream stream(bytes);
  mList.StreamIn(stream);
  EXPECT_EQ(Version3(false, false), PrintWhole(mList));
}

TEST_F(Vrad_NoteList_StreamIn, ReadsTheFlagOfALaterVersionOfTheFlags) {
  EXPECT_EQ(Version3(true, false), Read("notes_flags_version_2"));
}

TEST_F(Vrad_NoteList_StreamIn, LeavesFlagsOfAnotherCountAlone) {
  EXPECT_EQ(Version3(false, false), Read("notes_flags_other_count"));
  EXPECT_EQ("nothing", mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, LeavesOriginalsOfAnotherCountAlone) {
  EXPECT_EQ(kWithoutOriginals, Read("notes_originals_other_count"));
  EXPECT_EQ("nothing", mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, LeavesOriginalsOfAnotherSizeAlone) {
  EXPECT_EQ(kWithoutOriginals, Read("notes_originals_size_12"));
  EXPECT_EQ("nothing", mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, GoesOnWhereItLeftTheOriginals) {
  EXPECT_EQ(std::string(kWithoutOriginals) + ", muted", Read("notes_originals_left_then_flags"));
}

TEST_F(Vrad_NoteList_StreamIn, ReportsBadOriginalsAndKeepsThem) {
  std::string text;
  EXPECT_THAT(GetFailedChecks([&] { text = Read("notes_original_bad"); }),
              ElementsAre("iPitch >= 0", "iOnVelocity >= 1", "iOffVelocity >= 0"));
  EXPECT_EQ("nothing", mRefusal);
  EXPECT_EQ("0: 60+480000 100/64, delta -2000, was -1+450000 0/-2", text);
}

TEST_F(Vrad_NoteList_StreamIn, SetsAnOriginalDurationOfAnotherUnit) {
  Vrad_NoteListBase_Note note = StoredNote(60, 0, 480);
  note.mOrigEvent.SetDuration(SampleLength(12));  // as long as 480 ticks
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.AddNote(note);
  Sys_MemoryInStream stream(Written(list));
  mList.StreamIn(stream);
  EXPECT_EQ("0: 60+480 80/64, delta 0, was 60+12s 80/64", PrintWhole(mList));
}

TEST_F(Vrad_NoteList_StreamIn, SetsAnOriginalDurationThatDiffersInUnitAlone) {
  Bytes bytes = ReadGolden("notes_v3");
  ASSERT_EQ(0xA1, bytes[20 + 2 * 35 + 9]);  // the word of the first original, odd for ticks
  bytes[20 + 2 * 35 + 9] = 0xA0;
  Sys_MemoryInStream stream(bytes);
  mList.StreamIn(stream);
  EXPECT_EQ(Both("0: 60+480000 100/64, delta -2000, was 61+450000s 90/32, muted",
                 "480000: 64+240000 1/127, delta 0, was 64+240000 1/127"),
            PrintWhole(mList));
}

TEST_F(Vrad_NoteList_StreamIn, SkipsWhatALaterVersionAdded) {
  Sys_MemoryInStream stream = OpenGolden("notes_longer");
  mList.StreamIn(stream);
  EXPECT_EQ("0: 60+480000 100/64, delta -2000, was 61+450000 90/32, muted", PrintWhole(mList));
  EXPECT_EQ(0, stream.BytesLeft());
}

TEST_F(Vrad_NoteList_StreamIn, RepairsADurationOf0To1000TicksOr1Sample) {
  std::string text;
  EXPECT_THAT(GetFailedChecks([&] { text = Read("notes_zero_duration"); }),
              ElementsAre("durationTyped.AsInt64() > 0", "durationTyped.AsInt64() > 0"));
  EXPECT_EQ("nothing", mRefusal);
  EXPECT_EQ(Both("0: 60+1000 100/64, delta 0, was 60+1000 100/64",
                 "10s: 60+1s 100/64, delta 0s, was 60+1s 100/64"),
            text);
}

TEST_F(Vrad_NoteList_StreamIn, RepairsAnOriginalDurationThatIsNotPositive) {
  std::string text;
  EXPECT_THAT(GetFailedChecks([&] { text = Read("notes_negative_original"); }),
              ElementsAre("durationTyped.AsInt64() > 0", "durationTyped.AsInt64() > 0"));
  EXPECT_EQ(Both("0: 60+480 100/64, delta 0, was 60+1000 100/64",
                 "1: 60+480 100/64, delta 0, was 60+1000 100/64"),
            text);
}

TEST_F(Vrad_NoteList_StreamIn, RepairsAnOriginalDurationInSamplesTo1) {
  std::string text;
  GetFailedChecks([&] { text = Read("notes_negative_original_samples"); });
  EXPECT_EQ("0s: 60+480s 100/64, delta 0s, was 60+1s 100/64", text);
}

TEST_F(Vrad_NoteList_StreamIn, MakesTheOriginalOfTheRepairedDuration) {
  std::string text;
  EXPECT_THAT(GetFailedChecks([&] { text = Read("notes_v2_zero_duration"); }),
              ElementsAre("durationTyped.AsInt64() > 0"));
  EXPECT_EQ("0: 60+1000 100/64, delta -2000, was 60+700 100/64", text);
}

TEST_F(Vrad_NoteList_StreamIn, SignalsRepairsWithoutThrowing) {
  Cmn_AssertRecorder const recorder;
  Read("notes_zero_duration");
  EXPECT_FALSE(recorder.GetEntries()[0].mThrowing);
  EXPECT_TRUE(recorder.GetEntries()[0].mFlag);
}

TEST_F(Vrad_NoteList_StreamIn, RefusesANegativePitchAndKeepsTheNotesBefore) {
  EXPECT_EQ(kFirst, Read("notes_negative_pitch"));
  EXPECT_EQ(kBadData, mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, RefusesANegativeDurationWord) {
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(kFirst, Read("notes_negative_duration"));
  EXPECT_EQ(kBadData, mRefusal);
  EXPECT_EQ(0, recorder.GetNum());
}

TEST_F(Vrad_NoteList_StreamIn, RefusesANegativeOnVelocityWithoutNotifying) {
  int numHeard = 0;
  Cmn_MsgConnection const connection =
      Cmn_N10nCenter::Sender()->Connect<Vrad_N10n_MIDIZeroOnVelocitiesFound>(
          [&numHeard](Vrad_N10n_MIDIZeroOnVelocitiesFound const &) { ++numHeard; });
  EXPECT_EQ(kFirst, Read("notes_negative_on_velocity"));
  EXPECT_EQ(kBadData, mRefusal);
  EXPECT_EQ(0, numHeard);
}

TEST_F(Vrad_NoteList_StreamIn, RefusesANegativeOffVelocity) {
  EXPECT_EQ(kFirst, Read("notes_negative_off_velocity"));
  EXPECT_EQ(kBadData, mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, NotifiesOfAnOnVelocityOf0AndRefusesIt) {
  std::vector<std::string> heard;
  Cmn_MsgConnection const connection =
      Cmn_N10nCenter::Sender()->Connect<Vrad_N10n_MIDIZeroOnVelocitiesFound>(
          [this, &heard](Vrad_N10n_MIDIZeroOnVelocitiesFound const &) {
            heard.push_back(mRefusal);
          });
  mRefusal = "not refused yet";
  EXPECT_EQ(kFirst, Read("notes_zero_on_velocity"));
  EXPECT_THAT(heard, ElementsAre("not refused yet"));
  EXPECT_EQ(kBadData, mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, NotifiesWhateverElseIsWrongWithTheNote) {
  int numHeard = 0;
  Cmn_MsgConnection const connection =
      Cmn_N10nCenter::Sender()->Connect<Vrad_N10n_MIDIZeroOnVelocitiesFound>(
          [&numHeard](Vrad_N10n_MIDIZeroOnVelocitiesFound const &) { ++numHeard; });
  EXPECT_EQ(kFirst, Read("notes_zero_on_velocity_and_worse"));
  EXPECT_EQ(kBadData, mRefusal);
  EXPECT_EQ(1, numHeard);
}

TEST_F(Vrad_NoteList_StreamIn, PassesOnWhatAHandlerThrows) {
  Cmn_MsgConnection const connection =
      Cmn_N10nCenter::Sender()->Connect<Vrad_N10n_MIDIZeroOnVelocitiesFound>(
          [](Vrad_N10n_MIDIZeroOnVelocitiesFound const &) { throw std::runtime_error("heard"); });
  EXPECT_EQ(kFirst, Read("notes_zero_on_velocity"));
  EXPECT_EQ("heard", mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, RefusesANegativeCount) {
  EXPECT_EQ("", Read("notes_negative_count"));
  EXPECT_EQ(kBadData, mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, RefusesWithString100) {
  I18N_StringTable table;
  table.Set(100, "the string 100");
  I18N_ModuleHandle const former = Vrad_GetResourceModule();
  Vrad_SetResourceModule(&table);
  std::vector<std::string> refusals;
  for (char const * const name : {"notes_negative_count", "notes_negative_pitch",
                                  "notes_zero_on_velocity", "notes_negative_duration"}) {
    Read(name);
    refusals.push_back(mRefusal);
  }
  Vrad_SetResourceModule(former);
  EXPECT_THAT(refusals, testing::Each("the string 100"));
}

TEST_F(Vrad_NoteList_StreamIn, RefusesAsACmnException) {
  EXPECT_THROW(ReadInto(mList, "notes_negative_pitch"), Cmn_Exception);
}

TEST_F(Vrad_NoteList_StreamIn, RefusesVersions0And4) {
  EXPECT_EQ("", Read("notes_version_0"));
  EXPECT_EQ("record version 0 is not supported", mRefusal);
  EXPECT_EQ("", Read("notes_version_4"));
  EXPECT_EQ("record version 4 is not supported", mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, IsEmptyAfterAWrongTag) {
  AddNote(mList, 60, 0, 480);
  EXPECT_EQ("", Read("notes_wrong_tag"));
  EXPECT_EQ("no record \"VrNLB\"", mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, KeepsTheNotesBeforeATear) {
  EXPECT_EQ(kFirst, Read("notes_torn"));
  EXPECT_EQ("end of stream", mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, SetsWhatATornOriginalHasAndFillsNoLongNoteList) {
  EXPECT_EQ("0: 60+16000000 100/64, delta 0, was 61+450000 90/32 | "
            "480000: 64+240000 1/127, delta 0, was 65+240001 1/127",
            Read("notes_originals_torn"));
  EXPECT_EQ("end of stream", mRefusal);
  EXPECT_EQ(0u, mList.GetLongNoteList()->Size());
}

TEST_F(Vrad_NoteList_StreamIn, KeepsTheFlagsBeforeATear) {
  EXPECT_EQ(Both(std::string(kFirst) + ", muted", kSecond), Read("notes_flags_torn"));
  EXPECT_EQ("end of stream", mRefusal);
}

TEST_F(Vrad_NoteList_StreamIn, KeepsTheOrderOfTheFile) {
  Read("notes_unsorted");
  EXPECT_EQ(480000, mList.TimeOfFirstNote().AsInt64());
  EXPECT_EQ(0, mList.TimeOfLastNote().AsInt64());
}

TEST_F(Vrad_NoteList_StreamIn, FillsTheLongNoteListBeforeTheFlagsAreRead) {
  Read("notes_long");
  EXPECT_EQ(2u, mList.Size());
  EXPECT_EQ("0: 60+15360000 100/64, delta 0, was 50+15360000 100/64",
            PrintWhole(*mList.GetLongNoteList()));
}

TEST_F(Vrad_NoteList_StreamIn, LeavesTheLongNoteListEmptyAfterDamage) {
  AddNote(mList, 60, 0, 20000000);
  Bytes bytes = ReadGolden("notes_long");
  bytes[20 + 35 + 8] = 0x80;  // the pitch of the second note
  Sys_MemoryInStream stream(bytes);
  EXPECT_EQ(kBadData, ThrownBy([&] { mList.StreamIn(stream); }));
  EXPECT_EQ(1u, mList.Size());
  EXPECT_EQ(0u, mList.GetLongNoteList()->Size());
}

TEST_F(Vrad_NoteList_StreamIn, WorksWithoutALongNoteList) {
  Vrad_NoteListBase list(Ndo_Object::kNotUndoable, false);
  ReadInto(list, "notes_long");
  EXPECT_EQ(2u, list.Size());
}

TEST_F(Vrad_NoteList_StreamIn, ClearsTheListFirst) {
  AddNote(mList, 1, 0, 20000000);
  EXPECT_EQ(Both(kFirst, kSecond), Read("notes_v1"));
  EXPECT_EQ(0u, mList.GetLongNoteList()->Size());
}

TEST(Vrad_NoteList_StreamIn_Undo, AnnouncesOnBothLevelsAndIsUndone) {
  Vrad_NoteList list(Ndo_Object::kUndoable, false);
  AddNote(list, 50, 7, 20000000);
  Ndo_gManager.BeginTransaction();
  ReadInto(list, "notes_v1");
  EXPECT_TRUE(Ndo_gManager.HasAnnounced(list.NdoGetID()));
  EXPECT_TRUE(Ndo_gManager.HasAnnounced(list.GetLongNoteListID()));
  Ndo_gManager.EndTransaction();
  EXPECT_EQ("60@0+480000 | 64@480000+240000", Print(list));
  Ndo_gManager.Undo();
  EXPECT_EQ("50@7+20000000", Print(list));
  EXPECT_EQ("50@7+20000000", PrintLongNotes(list));
  Ndo_gManager.ClearHistory();
}

TEST(Vrad_NoteList_StreamIn_Runs, ReadsManyNotesAndKeepsThoseBeforeABadOne) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  for (int i = 0; i < 1000; ++i)
    AddNote(list, 60, i * 10, i % 7 == 0 ? 20000000 : 5);
  Bytes bytes = Written(list);
  Vrad_NoteList copy(Ndo_Object::kNotUndoable, false);
  Sys_MemoryInStream whole(bytes);
  copy.StreamIn(whole);
  EXPECT_TRUE(list == copy);
  EXPECT_EQ(143u, copy.GetLongNoteList()->Size());
  EXPECT_EQ(bytes, Written(copy));

  // Of 35 bytes each from byte 20 on: the pitch of note 700.
  bytes[20 + 700 * 35 + 8] = 0x80;
  Sys_MemoryInStream damaged(bytes);
  EXPECT_EQ(kBadData, ThrownBy([&] { copy.StreamIn(damaged); }));
  EXPECT_EQ(700u, copy.Size());
  EXPECT_EQ(6990, copy.TimeOfLastNote().AsInt64());
}

// Where a read field by field would stand: behind the off velocity of the bad note.
TEST(Vrad_NoteList_StreamIn_Runs, StandsBehindTheBadNote) {
  Sys_MemoryInStream stream = OpenGolden("notes_zero_on_velocity");
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  ThrownBy([&] { list.StreamIn(stream); });
  EXPECT_EQ(20 + 2 * 19, stream.GetPos());
}

TEST(Vrad_NoteList_StreamOut, WritesByteForByte) {
  for (char const * const name : {"notes_v3", "notes_v3_empty", "notes_samples", "notes_long"}) {
    Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
    ReadInto(list, name);
    EXPECT_EQ(ReadGolden(name), Written(list)) << name;
  }
}

TEST(Vrad_NoteList_StreamOut, WritesTheDifferenceOfAChangedDuration) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 0, 480);
  list.ChangeNote(TickTime(0), NoteEvent(60, 480), NoteEvent(60, 500));
  Bytes const bytes = Written(list);
  EXPECT_EQ(20 * 2 + 1, bytes[20 + 27]);  // 20 ticks
  Sys_MemoryInStream stream(bytes);
  list.StreamIn(stream);
  EXPECT_EQ("0: 60+500 80/64, delta 0, was 60+480 80/64", PrintWhole(list));
}

TEST(Vrad_NoteList_StreamOut, BringsFractionalPitchesBackAsPlainNotes) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  Vrad_ExtendedEvent const event = Vrad_NoteWithDurationExtendedEvent(
      TickTime(0), MakeSampleEvent(Vrae_Event::kPitchToMIDINoteWithDuration).AsNoteWithDuration(),
      false);
  list.AddNote(event.AsNoteWithDurationExtendedEvent());
  Sys_MemoryInStream stream(Written(list));
  Vrad_NoteList copy(Ndo_Object::kNotUndoable, false);
  copy.StreamIn(stream);
  Vrad_NoteListBase::FullNotesInRangeIter iter(&copy);
  EXPECT_EQ(Vrae_Event::kNoteWithDuration, (*iter).mEvent.GetType());
  EXPECT_EQ(60, (*iter).mEvent.GetPitch());
}
