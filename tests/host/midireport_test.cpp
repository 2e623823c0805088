#include "host/host_midireport.h"

#include <gtest/gtest.h>

namespace {

std::string Print(Host_MidiReport const & iReport) {
  std::string result;
  for (Host_MidiReport::NotKept const & line : iReport.GetNotKept()) {
    result +=
        std::to_string(line.mCount) + " " + line.mName + " @" + std::to_string(line.mOffset) + "\n";
  }
  return result;
}

TEST(Host_MidiReport, StartsWithNothing) {
  Host_MidiReport const report;
  EXPECT_EQ(Print(report), "");
  EXPECT_EQ(report.GetNumNotKept(kNotKept_ChannelMode), 0);
  EXPECT_EQ(report.GetNumMetaEvents(1), 0);
  EXPECT_EQ(report.GetNumProblems(), 0);
  EXPECT_FALSE(report.IsLossy());
}

TEST(Host_MidiReport, CountsEachKindWithThePlaceOfTheFirst) {
  Host_MidiReport report;
  report.CountMetaEvent(5, 300);
  report.CountNotKept(kNotKept_UnmatchedNoteOff, 100);
  report.CountNotKept(kNotKept_ChannelMode, 200);
  report.CountNotKept(kNotKept_UnmatchedNoteOff, 400);
  report.CountMetaEvent(0x60, 500);
  EXPECT_EQ(Print(report), "1 channel mode message (controllers 120 to 127) @200\n"
                           "2 note-off without a note-on @100\n"
                           "1 lyric @300\n"
                           "1 unknown meta event 0x60 @500\n");
  EXPECT_EQ(report.GetNumNotKept(kNotKept_UnmatchedNoteOff), 2);
  EXPECT_EQ(report.GetNumMetaEvents(5), 1);
}

TEST(Host_MidiReport, NamesEveryKind) {
  for (int i = 0; i < kNotKept_NumValues; ++i) {
    Host_MidiReport report;
    report.CountNotKept(static_cast<Host_ENotKept>(i), 0);
    ASSERT_EQ(report.GetNotKept().size(), 1u);
    EXPECT_NE(report.GetNotKept()[0].mName, "") << i;
  }
}

TEST(Host_MidiReport, GivesProblemsInTheOrderFound) {
  Host_MidiReport report;
  report.AddProblem(20, "later in the file", false);
  report.AddProblem(10, "earlier", false);
  ASSERT_EQ(report.GetProblems().size(), 2u);
  EXPECT_EQ(report.GetProblems()[0].mText, "later in the file");
  EXPECT_EQ(report.GetProblems()[1].mOffset, 10u);
  EXPECT_FALSE(report.IsLossy());
}

TEST(Host_MidiReport, RemembersALoss) {
  Host_MidiReport report;
  report.AddProblem(20, "gone", true);
  report.AddProblem(30, "odd", false);
  EXPECT_TRUE(report.IsLossy());
}

TEST(Host_MidiReport, KeepsTheFirst100ProblemsAndCountsTheRest) {
  Host_MidiReport report;
  for (size_t i = 0; i < 101; ++i)
    report.AddProblem(i, "odd", i == 100);
  EXPECT_EQ(report.GetNumProblems(), 101);
  EXPECT_EQ(report.GetProblems().size(), 100u);
  EXPECT_EQ(report.GetProblems().back().mOffset, 99u);
  EXPECT_TRUE(report.IsLossy());
}

}  // namespace
