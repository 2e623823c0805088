// Messages as such: whole ones, in order, of clips and channels that are there.
#include "host/host_streamchecker.h"

#include <gtest/gtest.h>

#include <string>

#include "support/streamchecker_fixture.h"

namespace {

typedef Host_EViolation V;
typedef WireText Text;

typedef StreamChecker Host_StreamChecker_Messages;
typedef StreamChecker Host_StreamChecker_Modes;

}  // namespace

// ---- Messages as such ----

TEST_F(Host_StreamChecker_Messages, SilenceOfAnEmptyClipIsGood) {
  Start();
  Block(256);
  EXPECT_TRUE(mChecker.IsGood());
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Messages, FindsOffsetsOutOfOrder) {
  AddController(5, 7, 1);
  AddController(9, 7, 1);
  Start();
  Block(256, {"5: b0 07 01", "9: b0 07 01", "8: b0 07 01"});
  EXPECT_EQ(V::kOrder, Kind());
  EXPECT_EQ("block 0, offset 9 (sample 9): clip 1, a message of the offset 8 comes behind one of 9",
            Why());
}

TEST_F(Host_StreamChecker_Messages, FindsOffsetsOutsideTheBlock) {
  EXPECT_EQ(V::kOrder, KindOf(0, 256, {"256: b0 07 01"}));
  EXPECT_EQ(V::kOrder, KindOf(0, 256, {"-1: b0 07 01"}));
}

TEST_F(Host_StreamChecker_Messages, FindsAMessageBetweenBlocks) {
  Start();
  Block(256);
  Text const message("0: b0 07 01");
  mChecker.ReceiveMessage({1, 0, message.mBytes.data(), 3, Time_Typed()});
  EXPECT_EQ(V::kOrder, Kind());
}

TEST_F(Host_StreamChecker_Messages, FindsABlockThatHasNotEnded) {
  Start();
  mChecker.BeginBlock(256);
  mChecker.BeginBlock(256);
  EXPECT_EQ(V::kOrder, Kind());
  EXPECT_EQ("block 0, offset 0 (sample 0): a block begins before this one has ended", Why());
}

TEST_F(Host_StreamChecker_Messages, FindsWhatIsNoWholeMessage) {
  for (char const * const text : {"0: 90 3c", "0: 3c 64", "0: 90 3c 64 00", "0: c0", "0: b0 07 80",
                                  "0: f8", "0: f0 01 02", "0: f0 01 90 f7", "0: f0"})
    EXPECT_EQ(V::kBytes, KindOf(0, 256, {text})) << text;
}

TEST_F(Host_StreamChecker_Messages, FindsAnUnknownClip) {
  Start();
  Block(256, {"7/0: b0 07 01"});
  EXPECT_EQ(V::kClip, Kind());
  EXPECT_EQ("block 0, offset 0 (sample 0): clip 7, there is no such clip", Why());
}

TEST_F(Host_StreamChecker_Messages, FindsAnotherChannel) {
  Start();
  Block(256, {"0: b3 07 01"});
  EXPECT_EQ(V::kClip, Kind());
  EXPECT_EQ("block 0, offset 0 (sample 0): clip 1, channel 0: a message goes to channel 3", Why());
}

TEST_F(Host_StreamChecker_Messages, TakesAClipWithoutChannelAsOneOfChannelZero) {
  AddNote(5, 60, 1000);
  mChecker.AddClip(mChunk.Get(), -1, 1);
  mChecker.Start(Samples(0));
  Block(256, {"5: 90 3c 64"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Messages, NamesTheFirstViolationAlone) {
  Start();
  Block(256, {"3: 80 3c 40", "5: 90 3c 64"});
  Block(256, {"3: b0 07"});
  EXPECT_EQ(V::kStrayNoteOff, Kind());
  EXPECT_EQ(0, mChecker.GetViolation().mBlock);
  EXPECT_EQ(3, mChecker.GetViolation().mOffset);
}

// ---- Messages that do not say whose they are ----

TEST_F(Host_StreamChecker_Messages, OfAnyClipIsThatOfTheChannel) {
  AddNote(5, 60, 20);
  mChecker.AddClip(mOther.Get(), 1, 2);
  Start();
  Block(64, {"-1/5: 90 3c 64", "-1/25: 90 3c 00"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Messages, OfAnyClipIsThatInWhichItIsDue) {
  AddNote(5, 60, 20, 1);
  mOther->AddEvent(NoteAt(Samples(5), 60, 20));
  mOther->AddEvent(NoteAt(Samples(10), 61, 30));
  mOther->AddEvent(SysexAt(Samples(12), 3));
  mChecker.AddClip(mOther.Get(), 0, 2);
  Start();
  Block(64, {"-1/5: 90 3c 64", "-1/5: 90 3c 64", "-1/10: 90 3d 64", "-1/12: f0 03 f7",
             "-1/25: 90 3c 00", "-1/25: 80 3c 01", "-1/40: 90 3d 00"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Messages, OfAnyClipMayFitNone) {
  Start();
  Block(64, {"-1/5: 93 3c 50"});
  EXPECT_EQ("block 0, offset 5 (sample 5): no clip has channel 3", Why());
}

TEST_F(Host_StreamChecker_Messages, ANoteOffOfAnyClipMayBeStray) {
  Start();
  Block(64, {"-1/5: 80 3c 50"});
  EXPECT_EQ(V::kStrayNoteOff, Kind());
  EXPECT_EQ(1, mChecker.GetViolation().mClip);
}

TEST_F(Host_StreamChecker_Messages, ANoteOffOfAnyClipMayBeOfOneThatWasTakenAway) {
  AddNote(5, 60, 500);
  mOther->AddEvent(NoteAt(Samples(5), 61, 500));
  mChecker.AddClip(mOther.Get(), 0, 2);
  Start();
  Block(64, {"5: 90 3c 64", "2/5: 90 3d 64"});
  mChecker.RemoveClip(2);
  Block(64, {"-1/0: 90 3d 00"});
  EXPECT_EQ("", Why());
}

// ---- Channel modes, which receivers obey or ignore ----

TEST_F(Host_StreamChecker_Modes, FindsANoteThatAllNotesOffMayCutShort) {
  AddNote(5, 60, 2000);
  Start();
  Block(256, {"5: 90 3c 64", "30: b0 7b 00"});
  EXPECT_EQ(V::kNoteCutShort, Kind());
  EXPECT_EQ(
      "block 0, offset 30 (sample 30): clip 1, channel 0: note 60 is cut off by a channel mode "
      "message, though it should sound on",
      Why());
}

TEST_F(Host_StreamChecker_Modes, AllNotesOffBesideTheNoteOffsIsGood) {
  AddNote(5, 60, 2000);
  Start();
  Block(256, {"5: 90 3c 64"});
  mChecker.Stop();
  Block(256, {"0: b0 7b 00", "0: 90 3c 00", "0: b0 78 00", "0: b0 7a 00"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Modes, FindsAValueThatAResetMayTakeAway) {
  AddController(5, 1, 90);
  Start();
  Block(64, {"5: b0 01 5a", "9: b0 79 00"});
  EXPECT_EQ(V::kValue, Kind());
  EXPECT_EQ("block 0, offset 9 (sample 9): channel 0: controller 1 is 90 or reset instead of 90",
            Why());
}

TEST_F(Host_StreamChecker_Modes, AResetBehindWhichValuesAreSentAgainIsGood) {
  AddController(5, 1, 90);
  AddController(5, 7, 80);  // volume is not reset
  mChunk->AddEvent(BendAt(Samples(5), 0));
  Start();
  Block(64, {"5: b0 01 5a", "5: b0 07 50", "5: e0 00 40", "9: b0 79 00", "9: b0 01 5a"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Modes, FindsAParameterThatAResetDeselects) {
  AddController(0, 101, 0);
  AddController(0, 100, 0);
  AddController(0, 6, 12);
  AddController(20, 6, 13);
  Start();
  Block(10, {"0: b0 65 00", "0: b0 64 00", "0: b0 06 0c"});
  mChecker.Locate(Samples(15));
  Block(10, {"0: b0 79 00", "5: b0 06 0d"});
  EXPECT_EQ(V::kParameter, Kind());
}

TEST_F(Host_StreamChecker_Modes, AResetDoesNotStandInForABendBroughtBack) {
  mChunk->AddEvent(BendAt(Samples(0), 100));
  Start();
  Block(10, {"0: e0 64 40"});
  mChecker.Stop();
  Block(10, {"0: b0 79 00"});
  EXPECT_EQ(V::kNotAtRest, Kind());
}
