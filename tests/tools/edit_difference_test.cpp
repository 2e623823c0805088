#include "tools/vrad/edit_difference.h"

#include <gtest/gtest.h>

#include "ndo/ndo_ptr.h"

namespace {

class Clip {
public:
  Clip & AddNote(long long iTick, int iPitch, long long iDuration, int iVelocity = 80) {
    Vrae_NoteWithDurationEvent const note(static_cast<signed char>(iPitch),
                                          Time_TickLength(iDuration),
                                          static_cast<signed char>(iVelocity), 64);
    mChunk->AddEvent(Vrad_NoteWithDurationExtendedEvent(Time_Tick(iTick), note, false));
    return *this;
  }
  Clip & AddController(long long iTick, int iValue) {
    mChunk->AddEvent(Vrad_ExtendedEvent(Time_Tick(iTick),
                                        Vrae_ControllerEvent(7, static_cast<signed char>(iValue))));
    return *this;
  }
  Clip & AddSysex(Time_Typed iTime, unsigned char iByte) {
    mChunk->AddEvent(Vrad_ExtendedEvent(iTime, Vrae_SysexEvent(1, &iByte)));
    return *this;
  }
  void Clear() { mChunk->Clear(); }

  Edit_Contents Read() const { return Edit_Contents(*mChunk.Get()); }
  std::string DescribeSince(Edit_Contents const & iBefore) const {
    return Edit_Difference(iBefore, Read()).Describe();
  }

private:
  Ndo_AutoPtr<Vrad_Chunk> mChunk{Vrad_Chunk::New(Ndo_Object::kNotUndoable, false)};
};

// All of a clip, moved.
std::string DescribeMove(Clip const & iBefore, Clip const & iAfter) {
  return Edit_Difference(iBefore.Read(), iAfter.Read(), iBefore.Read(), iAfter.Read()).Describe();
}

TEST(Edit_Difference, OfNothingIsEmpty) {
  Clip clip;
  clip.AddNote(0, 60, 10).AddController(0, 1);
  EXPECT_EQ("", clip.DescribeSince(clip.Read()));
}

TEST(Edit_Difference, CountsNotesThatCameAndWent) {
  Clip clip;
  Edit_Contents const before = clip.AddNote(0, 60, 10).Read();
  clip.Clear();
  clip.AddNote(0, 61, 10).AddNote(5, 60, 10);
  EXPECT_EQ("notes: 2 added, 1 dropped", clip.DescribeSince(before));
}

TEST(Edit_Difference, ASecondEqualNoteIsOneAdded) {
  Clip clip;
  Edit_Contents const before = clip.AddNote(0, 60, 10).Read();
  clip.AddNote(0, 60, 10);
  EXPECT_EQ("notes: 1 added", clip.DescribeSince(before));
}

TEST(Edit_Difference, TellsShorterFromLongerNotes) {
  Clip clip;
  Edit_Contents const before = clip.AddNote(0, 60, 10).AddNote(0, 62, 10).Read();
  clip.Clear();
  clip.AddNote(0, 60, 9).AddNote(0, 62, 11);
  EXPECT_EQ("notes: 1 shortened, 1 lengthened", clip.DescribeSince(before));
}

TEST(Edit_Difference, CountsOtherEventsByWhatTheySay) {
  Clip clip;
  Edit_Contents const before = clip.AddController(0, 1).AddController(5, 2).Read();
  clip.AddController(5, 3).AddController(6, 4).AddSysex(Time_Tick(6), 1).AddSysex(Time_Tick(6), 1);
  EXPECT_EQ("other events: 4 added, 1 dropped", clip.DescribeSince(before));
}

TEST(Edit_Difference, OfAMoveCountsWhatMoved) {
  Clip before, after;
  before.AddNote(0, 60, 10).AddNote(5, 61, 10).AddController(0, 3);
  after.AddNote(100, 60, 10).AddNote(105, 61, 10).AddController(100, 3);
  EXPECT_EQ("notes: 2 changed; other events: 1 moved", DescribeMove(before, after));
}

TEST(Edit_Difference, OfAMoveOntoEqualNotesAndEventsCountsThemAll) {
  Clip before, after;
  before.AddNote(0, 60, 10).AddNote(50, 60, 10).AddController(0, 3).AddController(50, 3);
  after.AddNote(50, 60, 10).AddNote(100, 60, 10).AddController(50, 3).AddController(100, 3);
  EXPECT_EQ("notes: 2 changed; other events: 2 moved", DescribeMove(before, after));
}

TEST(Edit_Difference, OfAMoveTellsShorterFromLongerNotes) {
  Clip before, after;
  before.AddNote(0, 60, 10).AddNote(0, 60, 11).AddNote(5, 60, 10).AddNote(6, 60, 10);
  after.AddNote(0, 60, 9).AddNote(0, 60, 10).AddNote(5, 60, 11).AddNote(7, 60, 9);
  EXPECT_EQ("notes: 2 shortened, 1 lengthened, 1 changed", DescribeMove(before, after));
}

TEST(Edit_Difference, OfAMoveOfNothingIsEmpty) {
  Clip clip;
  clip.AddNote(0, 60, 10).AddNote(0, 62, 10).AddController(0, 3).AddController(5, 4);
  EXPECT_EQ("", DescribeMove(clip, clip));
}

TEST(Edit_Difference, OfAMoveOntoAnotherEventDropsThatOne) {
  Clip before, part, moved, after;
  before.AddController(0, 3).AddController(50, 4);
  part.AddController(0, 3);
  moved.AddController(50, 3);
  after.AddController(50, 3);
  EXPECT_EQ("other events: 1 dropped, 1 moved",
            Edit_Difference(before.Read(), after.Read(), part.Read(), moved.Read()).Describe());
}

TEST(Edit_Difference, OfAMoveThatLetsEventsMeetCountsWhatIsLeft) {
  Clip before, after;
  before.AddController(400, 3).AddController(600, 4).AddController(2000, 5);
  after.AddController(1000, 3).AddController(2000, 5);
  EXPECT_EQ("other events: 1 dropped, 1 moved", DescribeMove(before, after));
}

TEST(Edit_Difference, ReversedGivesWhatWasTaken) {
  Clip clip;
  Edit_Contents const before =
      clip.AddNote(0, 60, 10).AddNote(5, 60, 10).AddNote(9, 60, 10).AddController(0, 1).Read();
  clip.Clear();
  clip.AddNote(0, 60, 9).AddNote(5, 60, 11).AddNote(6, 60, 10).AddNote(7, 60, 10);
  EXPECT_EQ("notes: 2 added, 1 dropped, 1 shortened, 1 lengthened; other events: 1 dropped",
            clip.DescribeSince(before));
  clip.AddNote(8, 60, 10);
  EXPECT_EQ("notes: 1 added, 3 dropped, 1 shortened, 1 lengthened; other events: 1 added",
            Edit_Difference(before, clip.Read()).GetReversed().Describe());
}

TEST(Edit_Difference, ReversedShortensWhatWasLengthened) {
  Clip clip;
  Edit_Contents const before = clip.AddNote(0, 60, 10).Read();
  clip.Clear();
  clip.AddNote(0, 60, 11);
  EXPECT_EQ("notes: 1 shortened", Edit_Difference(before, clip.Read()).GetReversed().Describe());
}

TEST(Edit_Difference, ReversedLeavesMovesAsTheyAre) {
  Clip before, after;
  before.AddNote(0, 60, 10).AddController(0, 1);
  after.AddNote(5, 60, 10).AddController(5, 1);
  EXPECT_EQ("notes: 1 changed; other events: 1 moved",
            Edit_Difference(before.Read(), after.Read(), before.Read(), after.Read())
                .GetReversed()
                .Describe());
}

TEST(Edit_Contents, EndWithTheirLastNoteOrEvent) {
  EXPECT_EQ(0, Clip().Read().GetEnd().AsInt64());
  EXPECT_EQ(0, Clip().AddNote(-10, 60, 5).Read().GetEnd().AsInt64());
  EXPECT_EQ(15, Clip().AddNote(5, 60, 10).AddNote(6, 60, 1).Read().GetEnd().AsInt64());
  EXPECT_EQ(15, Clip().AddController(15, 1).AddController(5, 1).Read().GetEnd().AsInt64());
  // 40 ticks to the sample at 120 beats a minute.
  EXPECT_EQ(400, Clip().AddSysex(Time_Sample(10), 1).Read().GetEnd().AsInt64());
}

TEST(Edit_Contents, LieWithinLimitsBelowTwoToThe62nd) {
  constexpr long long kLast = (1ll << 62) - 1;
  EXPECT_TRUE(Clip().Read().IsWithinLimits());
  EXPECT_TRUE(Clip().AddNote(kLast, 60, kLast).Read().IsWithinLimits());
  EXPECT_TRUE(Clip().AddNote(-kLast, 60, 1).Read().IsWithinLimits());
  EXPECT_FALSE(Clip().AddNote(kLast + 1, 60, 1).Read().IsWithinLimits());
  EXPECT_FALSE(Clip().AddNote(-kLast - 1, 60, 1).Read().IsWithinLimits());
  EXPECT_FALSE(Clip().AddNote(0, 60, kLast + 1).Read().IsWithinLimits());
  EXPECT_TRUE(Clip().AddController(kLast, 1).AddController(-kLast, 1).Read().IsWithinLimits());
  EXPECT_FALSE(Clip().AddController(kLast + 1, 1).Read().IsWithinLimits());
  EXPECT_FALSE(Clip().AddController(-kLast - 1, 1).Read().IsWithinLimits());
}

}  // namespace
