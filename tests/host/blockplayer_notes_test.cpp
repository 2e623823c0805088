// Notes that meet, end and begin at one time, and what is in their messages.
#include <gtest/gtest.h>

#include "player_rig.h"

TEST(Host_BlockPlayer_Notes, StrikesAndReleasesOverlappingNotesOneByOne) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 10, 60, 100, 1);
  AddNote(rig.Chunk(), 5, 8, 60, 90, 2);
  EXPECT_EQ("0: 90 3c 64 | 5: 90 3c 5a | 10: 80 3c 01 | 13: 80 3c 02", rig.PlayFrom(0, 16));
}

TEST(Host_BlockPlayer_Notes, EndsBothOfTwoThatEndTogether) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 10, 60, 100, 1);
  AddNote(rig.Chunk(), 5, 5, 60, 90, 2);
  EXPECT_EQ("0: 90 3c 64 | 5: 90 3c 5a | 10: 80 3c 02 | 10: 80 3c 01", rig.PlayFrom(0, 16));
}

TEST(Host_BlockPlayer_Notes, EndsANoteBeforeTheNextOfItsPitchAtThatTick) {
  for (bool const isLaterFirst : {false, true}) {
    PlayerRig rig;
    if (isLaterFirst) AddNote(rig.Chunk(), 5, 5, 60);
    AddNote(rig.Chunk(), 0, 5, 60);
    if (!isLaterFirst) AddNote(rig.Chunk(), 5, 5, 60);
    EXPECT_EQ("0: 90 3c 64 | 5: 80 3c 0a | 5: 90 3c 64 | 10: 80 3c 0a", rig.PlayFrom(0, 16));
  }
}

TEST(Host_BlockPlayer_Notes, StrikesANoteOfOneTickAndEndsItInTheSameSample) {
  PlayerRig rig;
  rig.Chunk().AddEvent(NoteAt(Ticks(80), 60, 1));
  EXPECT_EQ("2: 90 3c 64 | 2: 90 3c 00", rig.PlayFrom(0, 16));
}

TEST(Host_BlockPlayer_Notes, KeepsTheOrderOfTicksWithinASample) {
  PlayerRig rig;
  rig.Chunk().AddEvent(NoteAt(Ticks(80), 60, 10));
  rig.Chunk().AddEvent(NoteAt(Ticks(85), 61, 3));
  EXPECT_EQ("2: 90 3c 64 | 2: 90 3d 64 | 2: 90 3d 00 | 2: 90 3c 00", rig.PlayFrom(0, 16));
}

TEST(Host_BlockPlayer_Notes, SendsTheReleaseVelocityOf64AsNoteOnOfVelocity0) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 2, 60, 100, 64);
  AddNote(rig.Chunk(), 4, 2, 60, 100, 63);
  EXPECT_EQ("0: 90 3c 64 | 2: 90 3c 00 | 4: 90 3c 64 | 6: 80 3c 3f", rig.PlayFrom(0, 16));
}

TEST(Host_BlockPlayer_Notes, KeepsTheReleaseVelocityOverStopAndJump) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60, 100, 77);
  rig.PlayFrom(0, 16);
  rig.mPlayer.Locate(AtSample(50));
  EXPECT_EQ("0: 80 3c 4d | 0: 90 3c 64", rig.Play(16));
  rig.mPlayer.Stop();
  EXPECT_EQ("0: 80 3c 4d", rig.Play(16));
}

TEST(Host_BlockPlayer_Notes, LeavesMutedNotesOut) {
  PlayerRig rig;
  rig.Chunk().AddEvent(NoteAt(AtSample(0), 60, 4000, true));
  rig.Chunk().AddEvent(NoteAt(AtSample(4), 61, 80, true));
  EXPECT_EQ("", rig.PlayFrom(0, 16));
  rig.mPlayer.Locate(AtSample(50));
  EXPECT_EQ("", rig.Play(16));
}

TEST(Host_BlockPlayer_Notes, PlaysNotesInSamples) {
  PlayerRig rig;
  rig.Chunk().AddEvent(NoteAt(Samples(3), 60, 6));
  AddNote(rig.Chunk(), 5, 2, 61);
  EXPECT_EQ("3: 90 3c 64 | 5: 90 3d 64 | 7: 80 3d 0a | 9: 90 3c 00", rig.PlayFrom(0, 16));
}

TEST(Host_BlockPlayer_Notes, LeavesOutThoseFoundInAudio) {
  PlayerRig rig;
  for (int pitch : {60, 61})
    rig.Chunk().GetNoteList()->AddNote(Vrad_NoteListBase_Note(
        AtSample(4), Vrae_PitchToMIDINoteWithDuration(static_cast<signed char>(pitch),
                                                      Time_TickLength(400), 80, 64, 0.25f)
                         .AsNoteWithDuration()));
  EXPECT_EQ("", rig.PlayFrom(0, 8));
  rig.mPlayer.Locate(AtSample(6));
  EXPECT_EQ("", rig.Play(32));
}

// A store takes one in; the offsets of a block never fall all the same.
TEST(Host_BlockPlayer_Notes, EndsOneOfNegativeLengthWhereItBegins) {
  PlayerRig rig;
  Vrae_NoteWithDurationEvent note(61, Time_TickLength(400), 100, 10);
  note.mU.mNoteWithDuration.mDuration = -400;
  rig.Chunk().GetNoteList()->AddNote(Vrad_NoteListBase_Note(AtSample(10), note));
  EXPECT_EQ("10: 90 3d 64 | 10: 80 3d 0a", rig.PlayFrom(0, 16));
}

TEST(Host_BlockPlayer_Order, SendsControllersThenNoteOffsThenNoteOns) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 5, 60);
  AddNote(rig.Chunk(), 5, 5, 62);
  AddBend(rig.Chunk(), 5, 0);
  AddController(rig.Chunk(), 5, 7, 1);
  AddEvent(rig.Chunk(), 5, Vrae_ProgramEvent(4, static_cast<short>(0xC000)));
  rig.PlayFrom(0, 5);
  EXPECT_EQ("0: c0 04 | 0: b0 07 01 | 0: e0 00 40 | 0: 80 3c 0a | 0: 90 3e 64", rig.Play(3));
}

TEST(Host_BlockPlayer_Order, MergesClipsByTime) {
  PlayerRig rig;
  ChunkPtr const otherP = MakeChunk();
  AddNote(rig.Chunk(), 2, 4, 60);
  AddNote(*otherP.Get(), 1, 3, 61);
  AddNote(*otherP.Get(), 6, 3, 61);
  rig.AddClip();
  rig.mPlayer.AddClip(otherP.Get(), 5, 7);
  rig.mPlayer.Start();
  EXPECT_EQ("1 #7: 95 3d 64 | 2 #0: 90 3c 64 | 4 #7: 85 3d 0a | 6 #0: 80 3c 0a | 6 #7: 95 3d 64 | "
            "9 #7: 85 3d 0a",
            rig.Play(16, true));
}

TEST(Host_BlockPlayer_Sysex, SendsShortAndLongOnesWhole) {
  PlayerRig rig;
  unsigned char const contents[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
  AddEvent(rig.Chunk(), 1, Vrae_SysexEvent(2, contents));
  AddEvent(rig.Chunk(), 2, Vrae_SysexEvent(14, contents));
  AddEvent(rig.Chunk(), 3, Vrae_SysexEvent(16, contents));
  EXPECT_EQ("1: f0 01 02 f7 | 2: f0 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e f7 | "
            "3: f0 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f 10 f7",
            rig.PlayFrom(0, 16));
}

TEST(Host_BlockPlayer_Edits, EndsANoteThatIsTakenAway) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60);
  rig.PlayFrom(0, 16);
  rig.Chunk().Clear();
  rig.mPlayer.ClipEdited(0);
  EXPECT_EQ("0: 80 3c 0a", rig.Play(16));
}

TEST(Host_BlockPlayer_Edits, TakesTheNewEndOfASoundingNote) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60);
  rig.PlayFrom(0, 16);
  rig.Chunk().GetNoteList()->ChangeNote(
      AtSample(0), Vrae_NoteWithDurationEvent(60, Time_TickLength(4000), 100, 10),
      Vrae_NoteWithDurationEvent(60, Time_TickLength(800), 100, 11));
  rig.mPlayer.ClipEdited(0);
  EXPECT_EQ("4: 80 3c 0b", rig.Play(16));
}

TEST(Host_BlockPlayer_Edits, EndsTheRightOneOfTwoNotesOfAPitch) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60, 100, 1);
  AddNote(rig.Chunk(), 2, 50, 60, 90, 2);
  rig.PlayFrom(0, 16);
  rig.Chunk().EraseEvent(
      Vrae_TimedEvent(AtSample(0), Vrae_NoteWithDurationEvent(60, Time_TickLength(4000), 100, 1)));
  rig.mPlayer.ClipEdited(0);
  EXPECT_EQ("0: 80 3c 01", rig.Play(16));
}

TEST(Host_BlockPlayer_Edits, StrikesANewNoteThatShouldSoundAlready) {
  PlayerRig rig;
  AddNote(rig.Chunk(), 0, 100, 60, 100, 1);
  rig.PlayFrom(0, 16);
  AddNote(rig.Chunk(), 4, 30, 60, 90, 2);
  rig.mPlayer.ClipEdited(0);
  EXPECT_EQ("0: 90 3c 5a", rig.Play(16));
}

TEST(Host_BlockPlayer_Edits, BringsAnEditedValue) {
  PlayerRig rig;
  AddController(rig.Chunk(), 0, 7, 100);
  rig.PlayFrom(0, 16);
  AddController(rig.Chunk(), 8, 7, 50);
  rig.mPlayer.ClipEdited(0);
  EXPECT_EQ("0: b0 07 32", rig.Play(16));
}

TEST(Host_BlockPlayer_Edits, LiftsThePedalsThatAreTakenAway) {
  PlayerRig rig;
  for (int number : {64, 66, 67, 69})
    AddController(rig.Chunk(), 0, number, 127);
  AddController(rig.Chunk(), 0, 7, 100);
  rig.PlayFrom(0, 16);
  for (int number : {64, 66, 67, 69, 7})
    rig.Chunk().EraseEvent(ControllerAt(AtSample(0), number, 127));
  rig.mPlayer.ClipEdited(0);
  EXPECT_EQ("0: b0 40 00 | 0: b0 42 00 | 0: b0 43 00 | 0: b0 45 00", rig.Play(16));
}

TEST(Host_BlockPlayer_Edits, CentresABendThatIsTakenAway) {
  PlayerRig rig;
  AddBend(rig.Chunk(), 0, 100);
  rig.PlayFrom(0, 16);
  rig.Chunk().EraseEvent(BendAt(AtSample(0), 100));
  rig.mPlayer.ClipEdited(0);
  EXPECT_EQ("0: e0 00 40", rig.Play(16));
}

TEST(Host_BlockPlayer_Edits, BringsAnEditedProgram) {
  PlayerRig rig;
  AddEvent(rig.Chunk(), 0, Vrae_ProgramEvent(5, 2 * 128 + 3));
  rig.PlayFrom(0, 16);
  AddEvent(rig.Chunk(), 8, Vrae_ProgramEvent(6, static_cast<short>(0xC000)));
  rig.mPlayer.ClipEdited(0);
  EXPECT_EQ("0: b0 00 02 | 0: b0 20 03 | 0: c0 06", rig.Play(16));
}

TEST(Host_BlockPlayer_Edits, BringsAnEditedParameter) {
  PlayerRig rig;
  for (int number : {101, 100})
    AddController(rig.Chunk(), 0, number, 0);
  AddController(rig.Chunk(), 0, 6, 12);
  rig.PlayFrom(0, 16);
  AddController(rig.Chunk(), 8, 6, 24);
  rig.mPlayer.ClipEdited(0);
  EXPECT_EQ("0: b0 65 00 | 0: b0 64 00 | 0: b0 06 18", rig.Play(16));
}
