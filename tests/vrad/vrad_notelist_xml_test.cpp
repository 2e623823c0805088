// What a note list says about itself, as a tree and as a line of text.
#include <iostream>
#include <sstream>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "cmn/cmn_assert.h"
#include "support/vrad_notes.h"

namespace {

// The children as "Name=value Name=value".
std::string PrintChildren(Cmn_XMLNodePtr const & iNode) {
  std::string text;
  for (int i = 0; i < iNode->GetNumChildren(); ++i) {
    Cmn_XMLNodePtr const child = iNode->GetChild(i);
    text += (i == 0 ? "" : " ") + child->GetName() + "=" + child->GetValue();
  }
  return text;
}

Vrae_NoteWithDurationEvent NoteOf(int iPitch, Time_TypedLength iDuration, int iOnVelocity,
                                  int iOffVelocity) {
  return Vrae_NoteWithDurationEvent(static_cast<signed char>(iPitch), iDuration,
                                    static_cast<signed char>(iOnVelocity),
                                    static_cast<signed char>(iOffVelocity));
}

std::string PrintOnlyNote(Vrad_NoteListBase_Note const & iNote) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.AddNote(iNote);
  return PrintChildren(list.GetAsXML()->GetChild(1));
}

}  // namespace

TEST(Vrad_NoteListBase_GetAsXML, IsConst) {
  static_assert(
      std::is_same_v<
          decltype(std::declval<Vrad_NoteListBase const &>().GetAsXML()),
          Cmn_AliasedRefCountPtr<Cmn_XMLNode, Cmn_XMLNode *, Cmn_XMLNode_ForwardDeclarationHack>>);
}

TEST(Vrad_NoteListBase_GetAsXML, EmptyListHasACountAndNoNotes) {
  Vrad_NoteList const list(Ndo_Object::kNotUndoable, false);
  Cmn_XMLNodePtr const node = list.GetAsXML();
  EXPECT_EQ(node->GetName(), "NoteList");
  EXPECT_EQ(node->GetValue(), "");
  EXPECT_EQ(PrintChildren(node), "nNumNotes=0");
}

TEST(Vrad_NoteListBase_GetAsXML, CountStandsBeforeTheNotes) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteOf(60, TickLength(480), 100, 64)));
  list.AddNote(Vrad_NoteListBase_Note(TickTime(480), NoteOf(62, TickLength(480), 100, 64)));
  EXPECT_EQ(PrintChildren(list.GetAsXML()), "nNumNotes=2 Note= Note=");
}

TEST(Vrad_NoteListBase_GetAsXML, NotesComeInListOrder) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  for (auto const & [time, pitch] : {std::pair(480, 62), std::pair(0, 64), std::pair(480, 60)})
    list.AddNote(Vrad_NoteListBase_Note(TickTime(time), NoteOf(pitch, TickLength(1), 100, 64)));
  Cmn_XMLNodePtr const node = list.GetAsXML();
  std::string pitches;
  for (int i = 0; i < 3; ++i)
    pitches += node->FindChild("Note", i)->FindChild("nPitch")->GetValue() + " ";
  EXPECT_EQ(pitches, "64 62 60 ");
}

TEST(Vrad_NoteListBase_GetAsXML, NoteHasElevenChildrenInOrder) {
  Vrad_NoteListBase_Note const note(TickTime(960000), NoteOf(60, TickLength(480000), 80, 64),
                                    TickLength(-120), NoteOf(62, TickLength(240000), 90, 1), false);
  EXPECT_EQ(PrintOnlyNote(note),
            "Time=960000t nPitch=60 Duration=480000t nOnVel=80 nOffVel=64 QuantizeTimeDelta=-120t "
            "DurationDeltaFromOriginal=240000t nOriginalPitch=62 OriginalDuration=240000t "
            "nOriginalOnVel=90 nOriginalOffVel=1");
}

TEST(Vrad_NoteListBase_GetAsXML, ShowsSamplesAsSamples) {
  Vrad_NoteListBase_Note const note(SampleTime(48000), NoteOf(0, SampleLength(1), 1, 0));
  EXPECT_EQ(PrintOnlyNote(note),
            "Time=48000s nPitch=0 Duration=1s nOnVel=1 nOffVel=0 QuantizeTimeDelta=0s "
            "DurationDeltaFromOriginal=0s nOriginalPitch=0 OriginalDuration=1s nOriginalOnVel=1 "
            "nOriginalOffVel=0");
}

TEST(Vrad_NoteListBase_GetAsXML, DeltaIsTheCurrentDurationLessTheOriginal) {
  Vrad_NoteListBase_Note const note(TickTime(0), NoteOf(60, TickLength(100), 80, 64), TickLength(0),
                                    NoteOf(60, TickLength(480), 80, 64), false);
  EXPECT_NE(PrintOnlyNote(note).find(" DurationDeltaFromOriginal=-380t "), std::string::npos);
}

TEST(Vrad_NoteListBase_GetAsXML, DeltaOfUnlikeUnitsHasTheCurrentOne) {
  // At 120 beats a minute and 48000 Hz, 40 ticks make a sample.
  Vrad_NoteListBase_Note const note(TickTime(0), NoteOf(60, TickLength(4000), 80, 64),
                                    TickLength(0), NoteOf(60, SampleLength(50), 80, 64), false);
  EXPECT_NE(PrintOnlyNote(note).find(" DurationDeltaFromOriginal=2000t nOriginalPitch=60 "
                                     "OriginalDuration=50s "),
            std::string::npos);
}

TEST(Vrad_NoteListBase_GetAsXML, DeltaIsComputedAtTheTimeOfTheCall) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  Vrae_NoteWithDurationEvent const event = NoteOf(60, TickLength(480), 80, 64);
  list.AddNote(Vrad_NoteListBase_Note(TickTime(0), event));
  list.ChangeNote(TickTime(0), event, NoteOf(60, TickLength(500), 80, 64));
  Cmn_XMLNodePtr const note = list.GetAsXML()->GetChild(1);
  EXPECT_EQ(note->FindChild("DurationDeltaFromOriginal")->GetValue(), "20t");
  EXPECT_EQ(note->FindChild("OriginalDuration")->GetValue(), "480t");
}

TEST(Vrad_NoteListBase_GetAsXML, MutedHasNoNode) {
  Vrae_NoteWithDurationEvent const event = NoteOf(60, TickLength(480), 80, 64);
  Vrad_NoteListBase_Note const muted(TickTime(0), event, TickLength(0), event, true);
  Vrad_NoteListBase_Note const sounding(TickTime(0), event, TickLength(0), event, false);
  EXPECT_EQ(PrintOnlyNote(muted), PrintOnlyNote(sounding));
}

TEST(Vrad_NoteListBase_GetAsXML, ShowsANoteAtTheEndOfTime) {
  Vrad_NoteListBase_Note const note(Time_Typed::MaxTime(Time_eType_Ticks),
                                    NoteOf(60, TickLength(1), 80, 64));
  EXPECT_EQ(PrintOnlyNote(note).substr(0, 25), "Time=9223372036854775807t");
}

TEST(Vrad_NoteListBase_GetAsXML, ShowsTheWholePitchOfAFractionalOne) {
  Vrae_PitchToMIDINoteWithDuration const found(60, TickLength(480), 80, 64, 0.25f);
  Cmn_AssertRecorder const recorder;
  std::string const text =
      PrintOnlyNote(Vrad_NoteListBase_Note(TickTime(0), found.AsNoteWithDuration()));
  EXPECT_EQ(text.substr(0, 18), "Time=0t nPitch=60 ");
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST(Vrad_NoteListBase_GetAsXML, LeavesOutTheLongNoteList) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteOf(60, TickLength(15360000), 100, 64)));
  ASSERT_EQ(list.GetLongNoteList()->Size(), 1u);
  EXPECT_EQ(PrintChildren(list.GetAsXML()), "nNumNotes=1 Note=");
}

TEST(Vrad_NoteListBase_GetAsXML, IsASnapshot) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  Cmn_XMLNodePtr const before = list.GetAsXML();
  list.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteOf(60, TickLength(1), 100, 64)));
  EXPECT_EQ(PrintChildren(before), "nNumNotes=0");
}

namespace {

// What is written to the standard output while it lives, and what of it has been flushed.
class CapturedOutput : private std::stringbuf {
public:
  CapturedOutput() : mFormerP(std::cout.rdbuf(this)) {}
  ~CapturedOutput() override { std::cout.rdbuf(mFormerP); }
  CapturedOutput(CapturedOutput const &) = delete;
  CapturedOutput & operator=(CapturedOutput const &) = delete;
  std::string Get() const { return str(); }
  std::string GetFlushed() const { return mFlushed; }

private:
  int sync() override {
    mFlushed = str();
    return 0;
  }

  std::string mFlushed;
  std::streambuf * mFormerP;
};

}  // namespace

TEST(Vrad_NoteList_PrintList, WritesThousandsOfTicksAndPitches) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNotes(list, {{60, 0, 10}, {61, 999, 10}, {62, 960000, 10}});
  CapturedOutput const output;
  list.PrintList();
  EXPECT_EQ("0 60,0 61,960 62,\n", output.Get());
}

TEST(Vrad_NoteList_PrintList, TruncatesTowardsZero) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNotes(list, {{60, -1999, 10}, {61, -999, 10}, {62, 1999, 10}});
  CapturedOutput const output;
  list.PrintList();
  EXPECT_EQ("-1 60,0 61,1 62,\n", output.Get());
}

TEST(Vrad_NoteList_PrintList, WritesTimesInSamplesAsTicks) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.AddNote(Vrad_NoteListBase_Note(SampleTime(48000), NoteEvent(60, SampleLength(10))));
  CapturedOutput const output;
  list.PrintList();
  EXPECT_EQ("1920 60,\n", output.Get());
}

TEST(Vrad_NoteList_PrintList, WritesASignedPitch) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  Vrad_NoteListBase_Note note = StoredNote(60, 0, 10);
  note.mEvent.mU.mNoteWithDuration.mPitch = -5;
  list.AddNote(note);
  CapturedOutput const output;
  list.PrintList();
  EXPECT_EQ("0 -5,\n", output.Get());
}

TEST(Vrad_NoteList_PrintList, WritesALineEndForAnEmptyList) {
  CapturedOutput const output;
  Vrad_NoteListBase(Ndo_Object::kNotUndoable, false).PrintList();
  EXPECT_EQ("\n", output.Get());
}

TEST(Vrad_NoteList_PrintList, FlushesTheWholeLine) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 2000, 10);
  CapturedOutput const output;
  list.PrintList();
  EXPECT_EQ("2 60,\n", output.GetFlushed());
}
