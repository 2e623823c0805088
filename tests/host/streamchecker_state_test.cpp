#include "host/host_streamchecker.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/streamchecker_fixture.h"

namespace {

typedef Host_EViolation V;

typedef StreamChecker Host_StreamChecker_Loops;
typedef StreamChecker Host_StreamChecker_Values;
typedef StreamChecker Host_StreamChecker_Clips;

}  // namespace

// ---- Loops ----

TEST_F(Host_StreamChecker_Loops, ALoopShorterThanABlockIsFollowed) {
  AddNote(5, 60, 2);
  mChecker.SetLoop(Samples(0), Samples(10));
  Start();
  Block(25, {"5: 90 3c 64", "7: 90 3c 00", "15: 90 3c 64", "17: 90 3c 00"});
  mChecker.CheckPosition(Time_Sample(5));
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Loops, FindsANoteOffThatIsDroppedAtTheLoopsEnd) {
  AddNote(5, 60, 100);
  mChecker.SetLoop(Samples(0), Samples(10));
  Start();
  Block(13, {"5: 90 3c 64"});
  EXPECT_EQ(V::kNoteLeftOn, Kind());
  EXPECT_EQ("block 0, offset 10 (sample 0): clip 1, channel 0: note 60 is left on after the loop's "
            "end",
            Why());
}

TEST_F(Host_StreamChecker_Loops, ANoteThatEndsExactlyAtTheLoopsEndEndsThere) {
  AddNote(5, 60, 5);
  mChecker.SetLoop(Samples(0), Samples(10));
  Start();
  Block(13, {"5: 90 3c 64", "10: 90 3c 00"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Loops, WhatAWrapAtTheBlocksEndSendsComesWithTheNextBlock) {
  AddNote(5, 60, 100);
  mChecker.SetLoop(Samples(0), Samples(10));
  Start();
  Block(10, {"5: 90 3c 64"});
  mChecker.CheckPosition(Time_Sample(0));
  Block(5, {"0: 90 3c 00"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Loops, FindsAnEventMissingInTheLastSampleOfTheLoop) {
  AddController(9, 7, 5);
  mChecker.SetLoop(Samples(0), Samples(10));
  Start();
  Block(12);
  EXPECT_EQ(V::kValue, Kind());
  EXPECT_EQ(9, mChecker.GetViolation().mOffset);
}

TEST_F(Host_StreamChecker_Loops, FindsAnEventBeyondTheLoopsEnd) {
  AddNote(10, 60, 5);
  mChecker.SetLoop(Samples(0), Samples(10));
  Start();
  Block(12, {"10: 90 3c 64"});
  EXPECT_EQ(V::kWrongNote, Kind());
}

TEST_F(Host_StreamChecker_Loops, FindsANoteThatBeginsBeforeTheLoopAndIsNeverHeard) {
  AddNote(5, 60, 1000);
  mChecker.SetLoop(Samples(100), Samples(120));
  Start(90);
  Block(15, {"0: 90 3c 64"});
  Block(10, {"5: 90 3c 00"});
  Block(10);
  EXPECT_EQ(V::kNoteCutShort, Kind());
}

TEST_F(Host_StreamChecker_Loops, FindsAMissingStrikeOfWhatSoundsAtTheLoopsStart) {
  AddNote(5, 60, 100);
  mChecker.SetLoop(Samples(100), Samples(120));
  Start(110);
  Block(15);
  EXPECT_EQ(V::kMissingNote, Kind());
}

TEST_F(Host_StreamChecker_Loops, KeptNotesRingOnForTheirRest) {
  AddNote(5, 60, 8, 33);
  mChecker.SetLoop(Samples(0), Samples(10));
  mChecker.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  Start();
  Block(15, {"5: 90 3c 64", "13: 80 3c 21"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Loops, FindsAKeptNoteThatIsCut) {
  AddNote(5, 60, 8);
  mChecker.SetLoop(Samples(0), Samples(10));
  mChecker.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  Start();
  Block(14, {"5: 90 3c 64", "10: 90 3c 00"});
  EXPECT_EQ(V::kNoteCutShort, Kind());
}

TEST_F(Host_StreamChecker_Loops, FindsAKeptNoteThatRingsTooLong) {
  AddNote(5, 60, 8);
  mChecker.SetLoop(Samples(0), Samples(10));
  mChecker.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  Start();
  Block(14, {"5: 90 3c 64"});
  EXPECT_EQ(V::kNoteLeftOn, Kind());
  EXPECT_EQ(13, mChecker.GetViolation().mOffset);
}

TEST_F(Host_StreamChecker_Loops, AKeptNoteEndsWhereItsPitchIsStruckAgain) {
  AddNote(5, 60, 18);
  mChecker.SetLoop(Samples(0), Samples(10));
  mChecker.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  Start();
  Block(18, {"5: 90 3c 64", "15: 90 3c 00", "15: 90 3c 64"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Loops, AKeptNoteThatSoundsAtTheLoopsStartGoesOn) {
  AddNote(5, 60, 1000);
  mChecker.SetLoop(Samples(100), Samples(120));
  mChecker.SetLoopPolicy(Host_ELoopPolicy::kKeep);
  Start(90);
  Block(100, {"0: 90 3c 64"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Loops, APositionBehindTheEndPlaysOn) {
  AddNote(15, 60, 5);
  mChecker.SetLoop(Samples(0), Samples(10));
  Start(12);
  Block(12, {"3: 90 3c 64", "8: 90 3c 00"});
  mChecker.CheckPosition(Time_Sample(24));
  EXPECT_EQ("", Why());
}

// ---- Values ----

TEST_F(Host_StreamChecker_Values, AValueAtItsSampleIsGood) {
  AddController(5, 7, 90);
  Start();
  Block(64, {"5: b0 07 5a"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Values, FindsAnotherValue) {
  AddController(5, 7, 90);
  Start();
  Block(64, {"5: b0 07 5b"});
  EXPECT_EQ(V::kValue, Kind());
  EXPECT_EQ("block 0, offset 5 (sample 5): channel 0: controller 7 is 91 instead of 90", Why());
}

TEST_F(Host_StreamChecker_Values, FindsAFirstValueThatComesTooEarly) {
  AddController(50, 7, 90);
  Start();
  Block(64, {"5: b0 07 5a"});
  EXPECT_EQ(V::kValue, Kind());
  EXPECT_EQ("block 0, offset 5 (sample 5): channel 0: controller 7 comes to 90 before the first of "
            "its values",
            Why());
}

TEST_F(Host_StreamChecker_Values, AStartMayBringAnythingWhereNoValueIsYet) {
  AddController(50, 7, 90);
  Start();
  Block(64, {"0: b0 07 64", "9: b0 0a 40", "50: b0 07 5a"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Values, FindsAStartWithoutChase) {
  AddController(5, 7, 90);
  Start(100);
  Block(64);
  EXPECT_EQ(V::kValue, Kind());
  EXPECT_EQ("block 0, offset 0 (sample 100): channel 0: controller 7 is not set instead of 90",
            Why());
}

TEST_F(Host_StreamChecker_Values, AChasedValueIsGood) {
  AddController(5, 7, 90);
  Start(100);
  Block(64, {"0: b0 07 5a"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Values, FindsAValueOfNoClip) {
  AddController(5, 7, 90);
  Start(100);
  Block(64, {"0: b0 07 5a", "3: b0 07 01"});
  EXPECT_EQ(V::kValue, Kind());
  EXPECT_EQ(3, mChecker.GetViolation().mOffset);
}

TEST_F(Host_StreamChecker_Values, FindsANoteStruckBeforeItsValues) {
  AddController(5, 7, 90);
  AddNote(50, 60, 500);
  Start(100);
  Block(64, {"0: 90 3c 64", "0: b0 07 5a"});
  EXPECT_EQ(V::kLateValue, Kind());
  EXPECT_EQ("block 0, offset 0 (sample 100): clip 1, channel 0: note 60 is struck while controller "
            "7 is not set instead of 90",
            Why());
}

TEST_F(Host_StreamChecker_Values, FindsBendProgramAndPressuresThatDiffer) {
  struct Case {
    Vrae_Event mEvent;
    char const * mGood;
    char const * mBad;
  };
  std::vector<Case> const cases = {{Vrae_PitchBendEvent(100), "0: e0 64 40", "0: e0 63 40"},
                                   {Vrae_MonoPressureEvent(9), "0: d0 09", "0: d0 08"},
                                   {Vrae_PolyPressureEvent(60, 9), "0: a0 3c 09", "0: a0 3d 09"}};
  for (Case const & one : cases) {
    for (bool const isGood : {true, false}) {
      mChunk->Clear();
      mChunk->AddEvent(Vrad_ExtendedEvent(Samples(0), one.mEvent));
      char const * const text = isGood ? one.mGood : one.mBad;
      EXPECT_EQ(isGood, KindOf(50, 10, {text}) == V::kNone) << text;
    }
  }
}

TEST_F(Host_StreamChecker_Values, AProgramCountsWithItsBank) {
  mChunk->AddEvent(Vrad_ExtendedEvent(Samples(0), Vrae_ProgramEvent(5, 3 * 128 + 4)));
  EXPECT_EQ(V::kNone, KindOf(50, 10, {"0: b0 00 03", "0: b0 20 04", "0: c0 05"}));
  EXPECT_EQ(V::kValue, KindOf(50, 10, {"0: b0 00 03", "0: b0 20 05", "0: c0 05"}));
}

TEST_F(Host_StreamChecker_Values, FindsABankThatComesBehindItsProgram) {
  mChunk->AddEvent(Vrad_ExtendedEvent(Samples(0), Vrae_ProgramEvent(5, 3 * 128 + 4)));
  Start(50);
  Block(10, {"0: c0 05", "0: b0 00 03", "0: b0 20 04"});
  EXPECT_EQ(V::kValue, Kind());
  EXPECT_EQ("block 0, offset 0 (sample 50): channel 0: program is 5 instead of 5, bank MSB 3, bank "
            "LSB 4",
            Why());
}

TEST_F(Host_StreamChecker_Values, FindsAPedalLeftDownByAStop) {
  AddController(5, 64, 127);
  Start();
  Block(10, {"5: b0 40 7f"});
  mChecker.Stop();
  Block(10);
  EXPECT_EQ(V::kNotAtRest, Kind());
  EXPECT_EQ("block 1, offset 0 (sample 10): channel 0: controller 64 is left at 127, where nothing "
            "holds it there",
            Why());
}

TEST_F(Host_StreamChecker_Values, FindsWhatAMuteLeaves) {
  for (Vrae_Event const & event :
       {Vrae_Event(Vrae_ControllerEvent(66, 127)), Vrae_Event(Vrae_PitchBendEvent(100)),
        Vrae_Event(Vrae_MonoPressureEvent(9)), Vrae_Event(Vrae_PolyPressureEvent(60, 9))}) {
    mChunk->Clear();
    mChunk->AddEvent(Vrad_ExtendedEvent(Samples(0), event));
    Host_StreamChecker checker;
    checker.AddClip(mChunk.Get(), 0, 1);
    checker.Start(Samples(0));
    std::vector<signed char> bytes(static_cast<size_t>(event.GetMessageLength(0)));
    event.GetMessageData(bytes.data(), 0);
    checker.BeginBlock(10);
    checker.ReceiveMessage({1, 0, reinterpret_cast<unsigned char const *>(bytes.data()),
                            static_cast<int>(bytes.size()), Time_Typed()});
    checker.EndBlock();
    EXPECT_TRUE(checker.IsGood());
    checker.SetMuted(1, true);
    checker.BeginBlock(10);
    checker.EndBlock();
    EXPECT_EQ(V::kNotAtRest, checker.GetViolation().mKind);
  }
}

TEST_F(Host_StreamChecker_Values, AStopThatLiftsThePedalIsGoodAndLeavesOtherControllers) {
  AddController(5, 64, 127);
  AddController(5, 7, 90);
  Start();
  Block(10, {"5: b0 40 7f", "5: b0 07 5a"});
  mChecker.Stop();
  Block(10, {"0: b0 40 00"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Values, FindsABendLeftInPlaceByAJumpToBeforeIt) {
  mChunk->AddEvent(BendAt(Samples(50), 100));
  Start(50);
  Block(10, {"0: e0 64 40"});
  mChecker.Locate(Samples(0));
  Block(10);
  EXPECT_EQ(V::kNotAtRest, Kind());
}

TEST_F(Host_StreamChecker_Values, OfClipsOnOneChannelTheLaterValueCounts) {
  AddController(50, 7, 90);
  mOther->AddEvent(ControllerAt(Samples(40), 7, 80));
  mChecker.AddClip(mOther.Get(), 0, 2);
  Start(100);
  Block(10, {"2/0: b0 07 50", "1/0: b0 07 5a"});
  EXPECT_EQ("", Why());
  mChecker.SetMuted(1, true);
  Block(10);
  EXPECT_EQ(V::kValue, Kind());
}

TEST_F(Host_StreamChecker_Values, AtOneTimeAClipsNoteMayComeBeforeTheValueOfAnother) {
  AddNote(50, 60, 500);
  mOther->AddEvent(Vrad_ExtendedEvent(Samples(50), Vrae_PolyPressureEvent(60, 9)));
  mChecker.AddClip(mOther.Get(), 0, 2);
  Start();
  Block(64, {"50: 90 3c 64", "2/50: a0 3c 09"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Values, ParametersAreSelectedBeforeTheirData) {
  AddController(0, 101, 0);
  AddController(0, 100, 0);
  AddController(0, 6, 12);
  Start(50);
  Block(10, {"0: b0 65 00", "0: b0 64 00", "0: b0 06 0c"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Values, FindsDataThatComesBeforeItsSelection) {
  AddController(0, 101, 0);
  AddController(0, 100, 0);
  AddController(0, 6, 12);
  Start(50);
  Block(10, {"0: b0 06 0c", "0: b0 65 00", "0: b0 64 00"});
  EXPECT_EQ(V::kParameter, Kind());
  EXPECT_EQ("block 0, offset 0 (sample 50): channel 0: registered parameter 0/0: data 12 is not in "
            "force",
            Why());
}

TEST_F(Host_StreamChecker_Values, FindsAParameterThatIsNotRestored) {
  AddController(0, 99, 1);
  AddController(0, 98, 2);
  AddController(0, 6, 12);
  AddController(10, 98, 3);
  AddController(10, 6, 13);
  Start(50);
  Block(10, {"0: b0 63 01", "0: b0 62 03", "0: b0 06 0d"});
  EXPECT_EQ(V::kParameter, Kind());
  EXPECT_NE(std::string::npos, Why().find("non-registered parameter 1/2: data 12")) << Why();
}

TEST_F(Host_StreamChecker_Values, FindsASelectionThatIsNotRestored) {
  AddController(0, 101, 0);
  AddController(0, 100, 0);
  AddController(0, 6, 12);
  AddController(10, 101, 127);
  AddController(10, 100, 127);
  Start(50);
  Block(10, {"0: b0 65 00", "0: b0 64 00", "0: b0 06 0c"});
  EXPECT_EQ(V::kParameter, Kind());
  EXPECT_NE(std::string::npos, Why().find("registered parameter 127/127 selected")) << Why();
}

TEST_F(Host_StreamChecker_Values, CountsStepsFromAKnownValue) {
  AddController(0, 101, 0);
  AddController(0, 100, 0);
  AddController(0, 6, 12);
  AddController(0, 38, 0);
  AddController(10, 96, 0);
  AddController(20, 96, 0);
  AddController(30, 97, 0);
  Start(50);
  Block(10, {"0: b0 65 00", "0: b0 64 00", "0: b0 06 0c", "0: b0 26 00", "0: b0 60 00"});
  EXPECT_EQ("", Why());
  mChecker.Locate(Samples(25));
  Block(3);
  EXPECT_EQ(V::kParameter, Kind());
  EXPECT_NE(std::string::npos, Why().find("registered parameter 0/0: 2 steps")) << Why();
}

TEST_F(Host_StreamChecker_Values, WithoutASelectionDataIsAPlainController) {
  AddController(0, 6, 12);
  Start(50);
  Block(10);
  EXPECT_EQ(V::kValue, Kind());
}

TEST_F(Host_StreamChecker_Values, SysexesComeOnceWhereTheyStand) {
  mChunk->AddEvent(SysexAt(Samples(5), 1));
  mChunk->AddEvent(SysexAt(Samples(6), 2));
  Start();
  Block(10, {"5: f0 01 f7", "6: f0 02 f7"});
  Block(10);
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Values, FindsSysexesThatAreMissingWrongOrOutOfOrder) {
  mChunk->AddEvent(SysexAt(Samples(5), 1));
  mChunk->AddEvent(SysexAt(Samples(6), 2));
  EXPECT_EQ(V::kSysex, KindOf(0, 10, {"5: f0 01 f7"}));
  EXPECT_EQ(V::kSysex, KindOf(0, 10, {"5: f0 02 f7", "6: f0 01 f7"}));
  EXPECT_EQ(V::kSysex, KindOf(0, 10, {"5: f0 01 f7", "6: f0 03 f7"}));
  EXPECT_EQ(V::kSysex, KindOf(0, 10, {"5: f0 01 f7", "6: f0 02 f7", "7: f0 02 f7"}));
}

// ---- Clips that come, change and go ----

TEST_F(Host_StreamChecker_Clips, RefusesWhatIsNoClip) {
  EXPECT_FALSE(mChecker.AddClip(nullptr, 0, 1));
  EXPECT_FALSE(mChecker.AddClip(mChunk.Get(), 16, 1));
  EXPECT_FALSE(mChecker.AddClip(mChunk.Get(), -2, 1));
  EXPECT_TRUE(mChecker.AddClip(mChunk.Get(), 15, 1));
  EXPECT_FALSE(mChecker.AddClip(mChunk.Get(), 0, 1));
}

TEST_F(Host_StreamChecker_Clips, FindsANoteOfAClipThatWasTakenAway) {
  AddNote(5, 60, 500);
  Start();
  Block(10, {"5: 90 3c 64"});
  mChecker.RemoveClip(1);
  Block(10);
  EXPECT_EQ(V::kNoteLeftOn, Kind());
}

TEST_F(Host_StreamChecker_Clips, AClipMayComeBackWhileItsNotesSound) {
  AddNote(5, 60, 500);
  Start();
  Block(10, {"5: 90 3c 64"});
  mChecker.RemoveClip(1);
  mChecker.AddClip(mChunk.Get(), 0, 1);
  Block(10, {"0: 90 3c 00", "0: 90 3c 64"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Clips, FindsANoteStruckAgainByAnEdit) {
  AddNote(5, 60, 500);
  Start();
  Block(10, {"5: 90 3c 64"});
  AddNote(300, 61, 5);
  mChecker.ClipEdited(1);
  Block(10, {"0: 90 3c 00", "0: 90 3c 64"});
  EXPECT_EQ(V::kWrongNote, Kind());
}

TEST_F(Host_StreamChecker_Clips, AfterAnEditNotesEndWhereTheyNowDo) {
  AddNote(5, 60, 500);
  Start();
  Block(10, {"5: 90 3c 64"});
  mChunk->Clear();
  AddNote(5, 60, 10);
  mChecker.ClipEdited(1);
  Block(10, {"5: 90 3c 00"});
  EXPECT_EQ("", Why());
}

TEST_F(Host_StreamChecker_Clips, FindsANoteLeftOnThatAnEditTookAway) {
  AddNote(5, 60, 500);
  Start();
  Block(10, {"5: 90 3c 64"});
  mChunk->Clear();
  mChecker.ClipEdited(1);
  Block(10);
  EXPECT_EQ(V::kNoteLeftOn, Kind());
  EXPECT_EQ("block 1, offset 0 (sample 10): clip 1, channel 0: note 60 is left on after the edit",
            Why());
}

TEST_F(Host_StreamChecker_Clips, ANoteThatAnEditBringsInIsStruck) {
  Start();
  Block(10);
  AddNote(5, 60, 500);
  mChecker.ClipEdited(1);
  Block(10, {"0: 90 3c 64"});
  EXPECT_EQ("", Why());
}

// What a clip asks for is found by a snapshot and a few edges, far into a long one too.
TEST_F(Host_StreamChecker_Clips, KnowsWhatSoundsFarIntoALongClip) {
  AddNote(0, 40, 1000000);
  for (int i = 0; i < 2000; ++i)
    AddNote(i * 100, 60, 50);
  Start(199910);
  Block(45, {"0: 90 28 64", "0: 90 3c 64", "40: 90 3c 00"});
  EXPECT_EQ("", Why());
}
