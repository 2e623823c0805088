#include "host/host_streamchecker.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cmn/cmn_assert.h"
#include "foundation/time_convert.h"
#include "support/streamchecker_fixture.h"

namespace {

typedef Host_EViolation V;
typedef WireText Text;

typedef StreamChecker Host_StreamChecker_Notes;
typedef StreamChecker Host_StreamChecker_Transport;

}  // namespace

// ---- Notes ----

TEST_F(Host_StreamChecker_Notes, ANoteOnAndItsNoteOffAreGood) {
  AddNote(5, 60, 300, 33);
  Start();
  Block(256, {"5: 90 3c 64"});
  Block(256, {"49: 80 3c 21"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Notes, ANoteOnOfVelocityZeroIsANoteOff) {
  AddNote(5, 60, 20);
  Start();
  Block(256, {"5: 90 3c 64", "25: 90 3c 00"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Notes, FindsANoteOffWithoutItsNoteOn) {
  Start();
  Block(256, {"5: 80 3c 40"});
  EXPECT_EQ(V::kStrayNoteOff, Kind());
  EXPECT_EQ("block 0, offset 5 (sample 5): clip 1, channel 0: note 60 ends without having been "
            "struck",
            Why());
}

TEST_F(Host_StreamChecker_Notes, FindsADroppedNoteOff) {
  AddNote(5, 60, 20);
  Start();
  Block(256, {"5: 90 3c 64"});
  EXPECT_EQ(V::kNoteLeftOn, Kind());
  EXPECT_EQ("block 0, offset 25 (sample 25): clip 1, channel 0: note 60 is left on", Why());
}

TEST_F(Host_StreamChecker_Notes, FindsADroppedNoteOn) {
  AddNote(5, 60, 20);
  Start();
  Block(256);
  EXPECT_EQ(V::kMissingNote, Kind());
}

TEST_F(Host_StreamChecker_Notes, FindsADroppedNoteInTheLastSampleOfABlock) {
  AddNote(255, 60, 20);
  Start();
  Block(256);
  EXPECT_EQ(V::kMissingNote, Kind());
  EXPECT_EQ(255, mChecker.GetViolation().mOffset);
}

TEST_F(Host_StreamChecker_Notes, TakesANoteInTheLastSampleOfABlock) {
  AddNote(255, 60, 20);
  Start();
  Block(256, {"255: 90 3c 64"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Notes, FindsANoteOnThatTheClipHasNot) {
  AddNote(5, 60, 200);
  Start();
  Block(256, {"5: 90 3c 64", "6: 90 3d 64"});
  EXPECT_EQ(V::kWrongNote, Kind());
}

TEST_F(Host_StreamChecker_Notes, FindsANoteOffThatComesTooEarly) {
  AddNote(5, 60, 200);
  Start();
  Block(128, {"5: 90 3c 64", "104: 90 3c 00"});
  EXPECT_EQ(V::kNoteCutShort, Kind());
}

TEST_F(Host_StreamChecker_Notes, FindsEventsASampleLate) {
  AddNote(5, 60, 200);
  Start();
  Block(128, {"6: 90 3c 64"});
  EXPECT_EQ(V::kMissingNote, Kind());
  EXPECT_EQ(5, mChecker.GetViolation().mOffset);
}

TEST_F(Host_StreamChecker_Notes, FindsAnotherVelocity) {
  AddNote(5, 60, 200);
  Start();
  Block(128, {"5: 90 3c 63"});
  EXPECT_EQ(V::kWrongNote, Kind());
  EXPECT_EQ("block 0, offset 5 (sample 5): clip 1, channel 0: note 60 is struck with velocity 99 "
            "instead of 100",
            Why());
}

TEST_F(Host_StreamChecker_Notes, FindsALostReleaseVelocity) {
  AddNote(5, 60, 20, 33);
  Start();
  Block(128, {"5: 90 3c 64", "25: 90 3c 00"});
  EXPECT_EQ(V::kReleaseVelocity, Kind());
  EXPECT_EQ("block 0, offset 25 (sample 25): clip 1, channel 0: note 60 is released with velocity "
            "64 instead of 33",
            Why());
}

TEST_F(Host_StreamChecker_Notes, FindsANoteStruckAgainBeforeItsEnd) {
  AddNote(5, 60, 20);
  AddNote(25, 60, 20);
  Start();
  Block(40, {"5: 90 3c 64", "25: 90 3c 64", "25: 90 3c 00"});
  EXPECT_EQ(V::kStruckTwice, Kind());
}

TEST_F(Host_StreamChecker_Notes, TakesANoteStruckAgainAtTheEndOfAnother) {
  AddNote(5, 60, 20);
  AddNote(25, 60, 20);
  Start();
  Block(40, {"5: 90 3c 64", "25: 90 3c 00", "25: 90 3c 64"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Notes, TakesNotesOfOnePitchThatOverlap) {
  AddNote(5, 60, 20, 1);
  AddNote(15, 60, 20, 2);
  Start();
  Block(64, {"5: 90 3c 64", "15: 90 3c 64", "25: 80 3c 01", "35: 80 3c 02"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Notes, FindsOneNoteOffForTwoNotesThatOverlap) {
  AddNote(5, 60, 20);
  AddNote(15, 60, 20);
  Start();
  Block(64, {"5: 90 3c 64", "15: 90 3c 64", "25: 90 3c 00"});
  EXPECT_EQ(V::kNoteLeftOn, Kind());
  EXPECT_EQ(35, mChecker.GetViolation().mOffset);
}

TEST_F(Host_StreamChecker_Notes, TakesANoteOfOneTick) {
  mChunk->AddEvent(NoteAt(Ticks(410), 60, 1));
  Start();
  Block(64, {"10: 90 3c 64", "10: 90 3c 00"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Notes, TakesANoteOfNoLength) {
  Cmn_AssertRecorder const recorder;  // which the library remarks on
  mChunk->AddEvent(NoteAt(Ticks(410), 60, 0));
  Start();
  Block(64, {"10: 90 3c 64", "10: 90 3c 00"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Notes, FindsANoteOfOneTickThatIsNotSent) {
  mChunk->AddEvent(NoteAt(Ticks(410), 60, 1));
  Start();
  Block(64);
  EXPECT_FALSE(mChecker.IsGood());
}

// Its end lies farther away than samples can be counted.
TEST_F(Host_StreamChecker_Notes, ANoteWithoutEndRingsOnOverALoop) {
  mChunk->AddEvent(Vrad_NoteWithDurationExtendedEvent(
      Ticks(400), Vrae_NoteWithDurationEvent(60, Time_TickLength(9223372036854775807), 100, 64),
      false));
  mChecker.SetLoop(Samples(0), Samples(20));
  mChecker.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  Start();
  Block(30, {"10: 90 3c 64"});
  EXPECT_EQ("", Why());
  Block(30, {"0: 90 3c 00", "0: 90 3c 64", "20: 90 3c 00", "20: 90 3c 64"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Notes, MutedNotesAndFractionalPitchesAreNotPlayed) {
  mChunk->AddEvent(NoteAt(Samples(5), 60, 10, true));
  mChunk->AddEvent(Vrad_ExtendedEvent(Vrad_NoteWithDurationExtendedEvent(
      Samples(5),
      Vrae_PitchToMIDINoteWithDuration(61, Time_SampleLength(10), 80, 64, 0.25f)
          .AsNoteWithDuration(),
      false)));
  Start();
  Block(64);
  EXPECT_EQ("", Why());
}

// ---- Start, stop, jump, mute ----

TEST_F(Host_StreamChecker_Transport, FindsANoteLeftOnAfterStop) {
  AddNote(5, 60, 2000);
  Start();
  Block(256, {"5: 90 3c 64"});
  mChecker.Stop();
  Block(256);
  EXPECT_EQ(V::kNoteLeftOn, Kind());
  EXPECT_EQ("block 1, offset 0 (sample 256): clip 1, channel 0: note 60 is left on after the stop",
            Why());
}

TEST_F(Host_StreamChecker_Transport, AStopThatEndsTheNotesIsGood) {
  AddNote(5, 60, 2000);
  Start();
  Block(256, {"5: 90 3c 64"});
  mChecker.Stop();
  Block(0, {"0: 90 3c 00"});
  Block(256);
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Transport, AllNotesOffDoesNotEndNotes) {
  AddNote(5, 60, 2000);
  Start();
  Block(256, {"5: 90 3c 64"});
  mChecker.Stop();
  Block(256, {"0: b0 7b 00", "0: b0 78 00"});
  EXPECT_EQ(V::kNoteLeftOn, Kind());
}

TEST_F(Host_StreamChecker_Transport, FindsANoteStruckWhileStopped) {
  AddNote(5, 60, 2000);
  mChecker.AddClip(mChunk.Get(), 0, 1);
  Block(256, {"5: 90 3c 64"});
  EXPECT_EQ(V::kWrongNote, Kind());
}

TEST_F(Host_StreamChecker_Transport, AStartInTheMiddleStrikesWhatSounds) {
  AddNote(5, 60, 2000);
  AddNote(50, 61, 10);
  Start(100);
  Block(256, {"0: 90 3c 64"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Transport, FindsASoundingNoteThatAStartLeavesOut) {
  AddNote(5, 60, 2000);
  Start(100);
  Block(256);
  EXPECT_EQ(V::kMissingNote, Kind());
  EXPECT_EQ("block 0, offset 0 (sample 100): clip 1, channel 0: note 60 is not struck, though it "
            "should sound after the start",
            Why());
}

TEST_F(Host_StreamChecker_Transport, AJumpMayLetAPitchGoOnOrStrikeItAgain) {
  AddNote(5, 60, 500);
  AddNote(1000, 60, 500);
  for (bool const again : {false, true}) {
    Host_StreamChecker checker;
    checker.AddClip(mChunk.Get(), 0, 1);
    checker.Start(Samples(5));
    Block(checker, 10, {"0: 90 3c 64"});
    checker.Locate(Samples(1200));
    Block(checker, 10,
          again ? std::vector<Text>{"0: 90 3c 00", "0: 90 3c 64"} : std::vector<Text>());
    EXPECT_EQ("", checker.GetViolation().mText);
  }
}

TEST_F(Host_StreamChecker_Transport, FindsANoteStrandedByAJump) {
  AddNote(5, 60, 500);
  Start();
  Block(10, {"5: 90 3c 64"});
  mChecker.Locate(Samples(1200));
  Block(10);
  EXPECT_EQ(V::kNoteLeftOn, Kind());
  EXPECT_EQ("block 1, offset 0 (sample 1200): clip 1, channel 0: note 60 is left on after the jump",
            Why());
}

TEST_F(Host_StreamChecker_Transport, FindsANoteStruckAgainByAStartWhilePlaying) {
  AddNote(5, 60, 500);
  Start();
  Block(10, {"5: 90 3c 64"});
  mChecker.Start();
  Block(10, {"0: 90 3c 64"});
  EXPECT_EQ(V::kWrongNote, Kind());
}

TEST_F(Host_StreamChecker_Transport, ABlockOfNoSamplesBringsTheStateOfThePosition) {
  AddNote(5, 60, 500);
  AddNote(100, 61, 500);
  AddNote(0, 62, 100);
  Start(100);
  Block(0, {"0: 90 3c 64"});
  Block(10, {"0: 90 3d 64"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Transport, FindsAMuteThatLeavesANoteOn) {
  AddNote(5, 60, 500);
  Start();
  Block(10, {"5: 90 3c 64"});
  mChecker.SetMuted(1, true);
  Block(10);
  EXPECT_EQ(V::kNoteLeftOn, Kind());
  EXPECT_EQ("block 1, offset 0 (sample 10): clip 1, channel 0: note 60 is left on after the mute",
            Why());
}

TEST_F(Host_StreamChecker_Transport, FindsANoteOfAMutedClip) {
  AddNote(5, 60, 500);
  mChecker.AddClip(mChunk.Get(), 0, 1);
  mChecker.SetMuted(1, true);
  mChecker.Start(Samples(0));
  Block(10, {"5: 90 3c 64"});
  EXPECT_EQ(V::kWrongNote, Kind());
}

TEST_F(Host_StreamChecker_Transport, AMuteAndAnUnmuteAreGood) {
  AddNote(5, 60, 500);
  AddNote(12, 61, 5);
  Start();
  Block(10, {"5: 90 3c 64"});
  mChecker.SetMuted(1, true);
  Block(10, {"0: 90 3c 00"});
  mChecker.SetMuted(1, true);
  Block(10);
  mChecker.SetMuted(1, false);
  Block(10, {"0: 90 3c 64"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Transport, FindsAnUnmuteThatFiresWhatHasPassed) {
  AddNote(12, 61, 5);
  Start();
  mChecker.SetMuted(1, true);
  Block(100);
  mChecker.SetMuted(1, false);
  Block(10, {"0: 90 3d 64", "0: 90 3d 00"});
  EXPECT_FALSE(mChecker.IsGood());
}

TEST_F(Host_StreamChecker_Transport, FindsAPositionThatIsWrong) {
  Start(100);
  Block(256);
  mChecker.CheckPosition(Time_Sample(356));
  EXPECT_TRUE(mChecker.IsGood());
  mChecker.CheckPosition(Time_Sample(355));
  EXPECT_EQ(V::kPosition, Kind());
}

TEST_F(Host_StreamChecker_Transport, AfterAChangeOfTempoNotesGoOnToTheirTick) {
  mChunk->AddEvent(NoteAt(Ticks(400), 60, 4000));
  Start();
  Block(20, {"10: 90 3c 64"});
  Time_Convert::GetDefaultTempoMap().Reset(240.0);  // 80 ticks to the sample
  mChecker.TempoChanged();
  Block(60, {"45: 90 3c 00"});
  EXPECT_EQ("", Why());
  Time_Convert::GetDefaultTempoMap().Reset(120.0);
}

TEST_F(Host_StreamChecker_Transport, FindsANoteStruckAgainByAChangeOfTempo) {
  mChunk->AddEvent(NoteAt(Ticks(400), 60, 4000));
  Start();
  Block(20, {"10: 90 3c 64"});
  Time_Convert::GetDefaultTempoMap().Reset(240.0);
  mChecker.TempoChanged();
  Block(20, {"0: 90 3c 64"});
  EXPECT_EQ(V::kWrongNote, Kind());
  Time_Convert::GetDefaultTempoMap().Reset(120.0);
}
