#include <gtest/gtest.h>

#include "cmn/cmn_assert.h"
#include "foundation/ticktimesmatter.h"
#include "foundation/time_convert.h"
#include "support/vrad_notes.h"
#include "vrad/vrad_notelist.h"

namespace {

typedef Vrad_NoteListBase::FullNotesInRangeIter RangeIter;
typedef Vrad_NoteListBase::NotesExtendedEventInRangeIter ExtendedIter;
typedef Vrad_NoteListBase::FullSustainingNoteIter FullSustainingIter;
typedef Vrad_NoteListBase::SustainingNoteIter SustainingIter;

// Notes at 0, 10, 10, 20, 30 of duration 5.
Vrad_NoteList MakeList() {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  int pitch = 60;
  for (long long time : {0, 10, 10, 20, 30})
    AddNote(list, pitch++, time, 5);
  return list;
}

std::string InRange(Vrad_NoteListBase & iList, long long iStart, long long iEnd) {
  return PrintRest(RangeIter(&iList, TickTime(iStart), TickTime(iEnd)));
}

std::string Sustaining(Vrad_NoteListBase & iList, Time_Typed iTime) {
  return PrintRest(FullSustainingIter(&iList, iTime));
}

std::string PrintRest(ExtendedIter iIter) {
  std::string result;
  for (; iIter.IsMore(); ++iIter)
    result += Print((*iIter).mTime) + " ";
  return result;
}

// A host's converter: notes what it is asked and moves both bounds up by 1000.
class AskedConverter : public Time_TempoMap {
public:
  AskedConverter() : mFormerP(Time_Convert::sTimeConverter) { Time_Convert::sTimeConverter = this; }
  ~AskedConverter() override { Time_Convert::sTimeConverter = mFormerP; }
  void MakeTickRangeSampleBased(Time_Typed iStart, Time_Typed iEnd, bool iFlag, Time_Typed & oStart,
                                Time_Typed & oEnd) const override {
    mAsked += Print(iStart) + " " + Print(iEnd) + (iFlag ? " on" : " off") + "; ";
    oStart = iStart + TickLength(1000);
    oEnd = iEnd + TickLength(1000);
  }
  mutable std::string mAsked;

private:
  Time_Converter * mFormerP;
};

}  // namespace

TEST(Vrad_NoteList_RangeIter, IncludesTheStartAndExcludesTheEnd) {
  Vrad_NoteList list = MakeList();
  EXPECT_EQ("61@10+5 | 62@10+5", InRange(list, 10, 20));
  EXPECT_EQ("", InRange(list, 11, 20));
  EXPECT_EQ("63@20+5", InRange(list, 11, 21));
}

TEST(Vrad_NoteList_RangeIter, IgnoresANoteThatSoundsIntoTheRange) {
  Vrad_NoteList list = MakeList();
  EXPECT_EQ("", InRange(list, 1, 5));
}

TEST(Vrad_NoteList_RangeIter, OverAWholeListVisitsTheLastGroupCompletely) {
  Vrad_NoteList list = MakeList();
  AddNote(list, 70, 30, 1);
  AddNote(list, 71, 30, 1);
  EXPECT_EQ("60@0+5 | 61@10+5 | 62@10+5 | 63@20+5 | 64@30+5 | 70@30+1 | 71@30+1", Print(list));
}

TEST(Vrad_NoteList_RangeIter, OverAWholeListDoesNotVisitANoteAtTheLimitOfTime) {
  Vrad_NoteList list = MakeList();
  list.AddNote(Vrad_NoteListBase_Note(Time_Typed::MaxTime(Time_eType_Ticks), NoteEvent(70, 1)));
  EXPECT_EQ("60@0+5 | 61@10+5 | 62@10+5 | 63@20+5 | 64@30+5", Print(list));
}

TEST(Vrad_NoteList_RangeIter, HasNothingInAnEmptyList) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  EXPECT_FALSE(RangeIter(&list).IsMore());
  EXPECT_FALSE(RangeIter(&list, TickTime(-5), TickTime(5)).IsMore());
  EXPECT_FALSE(ExtendedIter(&list).IsMore());
  EXPECT_FALSE(ExtendedIter(&list, TickLength(0), TickTime(-5), TickTime(5), false).IsMore());
}

TEST(Vrad_NoteList_RangeIter, WithoutAListReportsAndHasNothing) {
  RangeIter const iter;
  Cmn_AssertRecorder recorder;
  EXPECT_FALSE(iter.IsMore());
  EXPECT_EQ(1, recorder.GetNum("mListP != 0"));
  EXPECT_EQ(1, recorder.GetNum());
}

TEST(Vrad_NoteList_RangeIter, WithoutAListGivesABlankNoteAndStays) {
  RangeIter iter;
  Cmn_AssertRecorder recorder;
  EXPECT_EQ("0@0+0", Print(*iter).substr(0, 5));
  ++iter;
  iter.ChangeCurrentNote(NoteEvent(60, 1));
  EXPECT_EQ(3, recorder.GetNum("this->IsMore()"));
}

TEST(Vrad_NoteList_RangeIter, MovesToANewRange) {
  Vrad_NoteList list = MakeList();
  RangeIter iter(&list, TickTime(20), TickTime(40));
  ++iter;
  iter.SetRange(TickTime(0), TickTime(10));
  EXPECT_EQ("60@0+5", PrintRest(iter));
}

TEST(Vrad_NoteList_RangeIter, ExhaustedReportsAndStays) {
  Vrad_NoteList list = MakeList();
  RangeIter iter(&list, TickTime(30), TickTime(40));
  ++iter;
  Cmn_AssertRecorder recorder;
  EXPECT_FALSE(iter.IsMore());
  EXPECT_EQ(0, recorder.GetNum());
  ++iter;
  EXPECT_EQ(1, recorder.GetNum("this->IsMore()"));
  EXPECT_EQ(0, (*iter).mEvent.GetPitch());
  EXPECT_EQ(2, recorder.GetNum("this->IsMore()"));
  EXPECT_FALSE(iter.IsMore());
}

TEST(Vrad_NoteList_RangeIter, ChangesTheCurrentNoteAndGoesOn) {
  Vrad_NoteList list = MakeList();
  RangeIter iter(&list, TickTime(10), TickTime(30));
  ++iter;
  iter.ChangeCurrentNote(NoteEvent(50, 7));
  EXPECT_EQ("50@10+7 | 63@20+5", PrintRest(iter));
  EXPECT_EQ("60@0+5 | 61@10+5 | 50@10+7 | 63@20+5 | 64@30+5", Print(list));
}

TEST(Vrad_NoteList_RangeIter, ChangingAnExhaustedOneReportsAndChangesNothing) {
  Vrad_NoteList list = MakeList();
  RangeIter iter(&list, TickTime(11), TickTime(12));
  Cmn_AssertRecorder recorder;
  iter.ChangeCurrentNote(NoteEvent(50, 7));
  EXPECT_EQ(1, recorder.GetNum("this->IsMore()"));
  EXPECT_EQ("60@0+5 | 61@10+5 | 62@10+5 | 63@20+5 | 64@30+5", Print(list));
}

TEST(Vrad_NoteList_RangeIter, FindsItsRangeAmongManyChunks) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  for (int i = 0; i < 5000; ++i)
    AddNote(list, 60, i, 1);
  EXPECT_EQ("60@4321+1 | 60@4322+1", InRange(list, 4321, 4323));
}

TEST(Vrad_NoteList_ExtendedIter, GivesNotesWithTheirExtrasAndABlankStamp) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.AddNote(Vrad_NoteListBase_Note(TickTime(5), NoteEvent(60, 10), TickLength(3),
                                      NoteEvent(58, 7), true));
  Vrad_ExtendedEvent const event = *ExtendedIter(&list);
  ASSERT_TRUE(event.IsNoteWithDurationExtendedEvent());
  EXPECT_EQ("5", Print(event.mTime));
  EXPECT_EQ(60, event.mEvent.AsNoteWithDuration().GetPitch());
  EXPECT_EQ(3, event.AsNoteWithDurationExtendedEvent().GetQuantizeTimeDelta().AsInt64());
  EXPECT_EQ(58, event.AsNoteWithDurationExtendedEvent().GetOrigEvent().GetPitch());
  EXPECT_TRUE(event.AsNoteWithDurationExtendedEvent().IsMuted());
  EXPECT_EQ(0, event.mSourceStamp.mInputID.mFirst);
}

TEST(Vrad_NoteList_ExtendedIter, WithoutAListReports) {
  ExtendedIter const iter;
  Cmn_AssertRecorder recorder;
  EXPECT_FALSE(iter.IsMore());
  EXPECT_EQ(1, recorder.GetNum("mListP != 0"));
}

// 40 ticks to the sample: bounds go down to the first tick of their sample.
TEST(Vrad_NoteList_ExtendedIter, MakesATickRangeSampleExact) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  for (long long time : {39, 40, 60, 79, 80, 85})
    AddNote(list, 60, time, 1);
  EXPECT_EQ("40 60 79 ",
            PrintRest(ExtendedIter(&list, TickLength(0), TickTime(75), TickTime(90), false)));
}

TEST(Vrad_NoteList_ExtendedIter, TheOffsetTakesPartInTheConversion) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  for (long long time : {39, 49, 50, 60, 79, 89, 90, 95})
    AddNote(list, 60, time, 1);
  EXPECT_EQ("50 60 79 89 ",
            PrintRest(ExtendedIter(&list, TickLength(10), TickTime(85), TickTime(100), false)));
}

TEST(Vrad_NoteList_ExtendedIter, AHostsConverterSeesTheShiftedRangeAndTheFlag) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  for (long long time : {85, 1084, 1085, 1099, 1100})
    AddNote(list, 60, time, 1);
  AskedConverter const converter;
  ExtendedIter const iter(&list, TickLength(10), TickTime(85), TickTime(100), true);
  EXPECT_EQ("1085 1099 ", PrintRest(iter));
  ExtendedIter(&list, TickLength(0), TickTime(85), TickTime(100), false);
  EXPECT_EQ("75 90 on; 85 100 off; ", converter.mAsked);
}

TEST(Vrad_NoteList_ExtendedIter, AHostsConverterIsNotAskedForARangeTakenAsGiven) {
  Vrad_NoteList list = MakeList();
  AskedConverter const converter;
  ExtendedIter{&list};
  ExtendedIter(&list, TickLength(0), SampleTime(0), TickTime(20), true);
  ExtendedIter(&list, TickLength(0), Time_Typed::MinTime(Time_eType_Ticks), TickTime(20), true);
  TickTimesMatter::SetActive(true);
  ExtendedIter(&list, TickLength(0), TickTime(0), TickTime(20), true);
  TickTimesMatter::SetActive(false);
  EXPECT_EQ("", converter.mAsked);
}

TEST(Vrad_NoteList_ExtendedIter, WithAnOpenStartTakesTheRangeAsGiven) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  for (long long time : {40, 84, 90})
    AddNote(list, 60, time, 1);
  EXPECT_EQ("40 84 ",
            PrintRest(ExtendedIter(&list, TickLength(0), Time_Typed::MinTime(Time_eType_Ticks),
                                   TickTime(85), false)));
}

TEST(Vrad_NoteList_ExtendedIter, WhileTickTimesMatterTakesTheRangeAsGiven) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  for (long long time : {40, 80, 84})
    AddNote(list, 60, time, 1);
  TickTimesMatter::SetActive(true);
  std::string const found =
      PrintRest(ExtendedIter(&list, TickLength(10), TickTime(75), TickTime(85), false));
  TickTimesMatter::SetActive(false);
  EXPECT_EQ("80 84 ", found);
}

TEST(Vrad_NoteList_ExtendedIter, WithSamplesTakesTheRangeAsGiven) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  for (long long time : {39, 40, 79, 80})
    AddNote(list, 60, time, 1);
  EXPECT_EQ("40 79 ",
            PrintRest(ExtendedIter(&list, SampleLength(7), SampleTime(1), SampleTime(2), false)));
}

TEST(Vrad_NoteList_ExtendedIter, CopiesAndChangesTheCurrentNote) {
  Vrad_NoteList list = MakeList();
  ExtendedIter iter(&list);
  ++iter;
  ExtendedIter copy(iter);
  copy.ChangeCurrentNote(NoteEvent(50, 7));
  EXPECT_EQ(50, (*iter).mEvent.AsNoteWithDuration().GetPitch());
}

TEST(Vrad_NoteList_Sustaining, IsStrictlyBetweenStartAndEnd) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 10, 5);
  EXPECT_EQ("", Sustaining(list, TickTime(10)));
  EXPECT_EQ("60@10+5", Sustaining(list, TickTime(11)));
  EXPECT_EQ("60@10+5", Sustaining(list, TickTime(14)));
  EXPECT_EQ("", Sustaining(list, TickTime(15)));
}

TEST(Vrad_NoteList_Sustaining, TheTwoWalksMeetAtTheSplitTime) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.SetLongNoteDuration(TickLength(100));
  AddNote(list, 60, 901, 100);  // before the split time of 1000, by its long copy
  AddNote(list, 61, 902, 99);   // at the split time, by itself
  EXPECT_EQ("60@901+100 | 61@902+99", Sustaining(list, TickTime(1000)));
}

TEST(Vrad_NoteList_Sustaining, ALongNoteAtTheSplitTimeComesOnce) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.SetLongNoteDuration(TickLength(100));
  AddNote(list, 60, 902, 100);
  EXPECT_EQ("60@902+100", Sustaining(list, TickTime(1000)));
}

// The first walk goes over the copies: what is not copied is missed before the split time, and what
// is no longer in the list is found there.
TEST(Vrad_NoteList_Sustaining, BeforeTheSplitTimeTheCopiesAreLookedAt) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 901, 500);  // not copied
  list.SetLongNoteDuration(TickLength(100));
  AddNote(*list.GetLongNoteList(), 61, 901, 100);
  AddNote(*list.GetLongNoteList(), 62, 902, 100);  // at the split time
  EXPECT_EQ("61@901+100", Sustaining(list, TickTime(1000)));
}

TEST(Vrad_NoteList_Sustaining, LongNotesThatEndEarlierAreSteppedOverInBothWalks) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.SetLongNoteDuration(TickLength(100));
  AddNote(list, 60, 0, 100);
  AddNote(list, 61, 10, 990);  // ends at the time itself
  AddNote(list, 62, 910, 90);
  AddNote(list, 63, 920, 81);
  AddNote(list, 64, 1000, 50);  // starts at the time itself
  EXPECT_EQ("63@920+81", Sustaining(list, TickTime(1000)));
}

// The split time then lies behind the time, so a long note that only starts there is handed out.
TEST(Vrad_NoteList_Sustaining, AThresholdOfOneLetsTheFirstWalkReachTheTimeItself) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.SetLongNoteDuration(TickLength(1));
  AddNote(list, 60, 99, 10);
  AddNote(list, 61, 100, 10);
  AddNote(list, 62, 101, 10);
  EXPECT_EQ("60@99+10 | 61@100+10", Sustaining(list, TickTime(100)));
}

TEST(Vrad_NoteList_Sustaining, WithoutAListReportsAndHasNothing) {
  FullSustainingIter const iter(0, TickTime(5));
  Cmn_AssertRecorder recorder;
  EXPECT_FALSE(iter.IsMore());
  EXPECT_EQ(1, recorder.GetNum("mListP != 0"));
  EXPECT_EQ(1, recorder.GetNum());
}

TEST(Vrad_NoteList_Sustaining, ANoteThatBecameLongIsMissedBeforeTheSplitTime) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.SetLongNoteDuration(TickLength(100));
  AddNote(list, 60, 0, 50);
  list.ChangeNote(TickTime(0), NoteEvent(60, 50), NoteEvent(60, 5000));
  EXPECT_EQ("", Sustaining(list, TickTime(1000)));
  EXPECT_EQ("60@0+5000", Sustaining(list, TickTime(50)));
}

TEST(Vrad_NoteList_Sustaining, WithAnEmptyLongNoteListStartsAtTheSplitTime) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 0, 5000);
  list.SetLongNoteDuration(TickLength(100));
  EXPECT_EQ("60@0+5000", Sustaining(list, TickTime(98)));
  EXPECT_EQ("", Sustaining(list, TickTime(99)));
}

TEST(Vrad_NoteList_Sustaining, WithoutALongNoteListLooksAtEveryNote) {
  Vrad_NoteListBase list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 0, 1LL << 40);
  for (int i = 1; i < 1000; ++i)
    AddNote(list, 61, i, 1);
  EXPECT_EQ("60@0+1099511627776", Sustaining(list, TickTime(5000)));
}

TEST(Vrad_NoteList_Sustaining, ComesInOrderOfStart) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 15000000, 400);
  AddNote(list, 61, 1000, 16000000);
  AddNote(list, 62, 14000000, 2000000);
  EXPECT_EQ("61@1000+16000000 | 62@14000000+2000000 | 60@15000000+400",
            Sustaining(list, TickTime(15000001)));
}

TEST(Vrad_NoteList_Sustaining, MissesANoteThatIsLongInTicksButNotInItsOwnUnit) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.SetLongNoteDuration(TickLength(400));
  list.AddNote(Vrad_NoteListBase_Note(TickTime(0), NoteEvent(60, SampleLength(100))));
  EXPECT_EQ("60@0+100s", Sustaining(list, TickTime(398)));
  EXPECT_EQ("", Sustaining(list, TickTime(1000)));
}

TEST(Vrad_NoteList_Sustaining, OfTickNotesAskedInSamples) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  AddNote(list, 60, 0, 4000);
  EXPECT_EQ("60@0+4000", Sustaining(list, SampleTime(99)));
  EXPECT_EQ("", Sustaining(list, SampleTime(100)));
}

TEST(Vrad_NoteList_Sustaining, ExhaustedReportsOnceAndStays) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  FullSustainingIter iter(&list, TickTime(5));
  Cmn_AssertRecorder recorder;
  EXPECT_FALSE(iter.IsMore());
  ++iter;
  EXPECT_EQ(1, recorder.GetNum("this->IsMore()"));
  EXPECT_EQ(0, (*iter).mEvent.GetPitch());
  EXPECT_EQ(2, recorder.GetNum("this->IsMore()"));
  EXPECT_EQ(2, recorder.GetNum());
}

TEST(Vrad_NoteList_Sustaining, HandsOutExtendedEvents) {
  Vrad_NoteList list(Ndo_Object::kNotUndoable, false);
  list.AddNote(Vrad_NoteListBase_Note(TickTime(5), NoteEvent(60, 10), TickLength(3),
                                      NoteEvent(58, 7), true));
  AddNote(list, 61, 6, 10);
  SustainingIter iter(&list, TickTime(10));
  ASSERT_TRUE(iter.IsMore());
  EXPECT_EQ(3, (*iter).GetQuantizeTimeDelta().AsInt64());
  EXPECT_TRUE((*iter).IsMuted());
  ++iter;
  EXPECT_EQ("6", Print((*iter).mTime));
  ++iter;
  EXPECT_FALSE(iter.IsMore());
}
