#include "tools/vrad/edit_difference.h"

#include <gtest/gtest.h>

#include "ndo/ndo_ptr.h"

namespace {

class Edit_DifferenceTest : public testing::Test {
protected:
  void AddNote(long long iTick, int iPitch, long long iDuration, int iVelocity = 80) {
    Vrae_NoteWithDurationEvent const note(static_cast<signed char>(iPitch),
                                          Time_TickLength(iDuration),
                                          static_cast<signed char>(iVelocity), 64);
    mChunk->AddEvent(Vrad_NoteWithDurationExtendedEvent(Time_Tick(iTick), note, false));
  }
  void AddController(long long iTick, int iValue) {
    mChunk->AddEvent(Vrad_ExtendedEvent(Time_Tick(iTick),
                                        Vrae_ControllerEvent(7, static_cast<signed char>(iValue))));
  }
  std::string DescribeSince(Edit_Contents const & iBefore, bool iIsNudge = false) {
    return Edit_Difference(iBefore, Edit_Contents(*mChunk.Get()), iIsNudge).Describe();
  }

  Ndo_AutoPtr<Vrad_Chunk> mChunk{Vrad_Chunk::New(Ndo_Object::kNotUndoable, false)};
};

TEST_F(Edit_DifferenceTest, OfNothingIsEmpty) {
  AddNote(0, 60, 10);
  AddController(0, 1);
  EXPECT_EQ("", DescribeSince(Edit_Contents(*mChunk.Get())));
}

TEST_F(Edit_DifferenceTest, CountsNotesThatCameAndWent) {
  AddNote(0, 60, 10);
  Edit_Contents const before(*mChunk.Get());
  mChunk->Clear();
  AddNote(0, 61, 10);
  AddNote(5, 60, 10);
  EXPECT_EQ("notes: 2 added, 1 dropped", DescribeSince(before));
}

TEST_F(Edit_DifferenceTest, ASecondEqualNoteIsOneAdded) {
  AddNote(0, 60, 10);
  Edit_Contents const before(*mChunk.Get());
  AddNote(0, 60, 10);
  EXPECT_EQ("notes: 1 added", DescribeSince(before));
}

TEST_F(Edit_DifferenceTest, TellsShorterFromLongerNotes) {
  AddNote(0, 60, 10);
  AddNote(0, 62, 10);
  Edit_Contents const before(*mChunk.Get());
  mChunk->Clear();
  AddNote(0, 60, 9);
  AddNote(0, 62, 11);
  EXPECT_EQ("notes: 1 shortened, 1 lengthened", DescribeSince(before));
}

TEST_F(Edit_DifferenceTest, NotesThatMovedAreChangedByANudge) {
  AddNote(0, 60, 10);
  AddNote(5, 61, 10);
  AddController(0, 3);
  Edit_Contents const before(*mChunk.Get());
  mChunk->Clear();
  AddNote(100, 60, 10);
  AddNote(105, 61, 10);
  AddController(100, 3);
  EXPECT_EQ("notes: 2 changed; other events: 1 moved", DescribeSince(before, true));
}

TEST_F(Edit_DifferenceTest, CountsOtherEventsByWhatTheySay) {
  AddController(0, 1);
  AddController(5, 2);
  Edit_Contents const before(*mChunk.Get());
  AddController(5, 3);
  AddController(6, 4);
  EXPECT_EQ("other events: 2 added, 1 dropped", DescribeSince(before));
}

}  // namespace
