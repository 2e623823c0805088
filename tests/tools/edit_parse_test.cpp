#include "tools/vrad/edit_parse.h"

#include <gtest/gtest.h>

#include "tools/vrad/tool_error.h"

namespace {

std::string WhyNot(char const * iText) {
  try {
    Edit_Parse(iText);
    return "";
  } catch (Tool_UsageError const & error) {
    return error.what();
  }
}

Time_Typed GetTime(std::optional<Tool_Position> const & iPosition) {
  return std::get<Time_Typed>(*iPosition);
}

TEST(Edit_Parse, MergeTakesAFileAndKeepsOverlaps) {
  Edit_Merge const edit = std::get<Edit_Merge>(Edit_Parse("merge take.mid").mEdit);
  EXPECT_EQ("take.mid", edit.mFile);
  EXPECT_FALSE(edit.mIsAvoiding);
}

TEST(Edit_Parse, MergeCanAvoidOverlaps) {
  EXPECT_TRUE(std::get<Edit_Merge>(Edit_Parse("merge take.mid avoiding").mEdit).mIsAvoiding);
}

TEST(Edit_Parse, QuotesHoldANameWithBlanksTogether) {
  EXPECT_EQ("my take.mid", std::get<Edit_Merge>(Edit_Parse("merge \"my take.mid\"").mEdit).mFile);
}

TEST(Edit_Parse, EraseRangeTakesItsBounds) {
  Edit_EraseRange const edit = std::get<Edit_EraseRange>(Edit_Parse("erase-range 5t 9s").mEdit);
  EXPECT_EQ(Time_Typed(5, Time_eType_Ticks), GetTime(edit.mRange.mFrom));
  EXPECT_EQ(Time_Typed(9, Time_eType_Samples), GetTime(edit.mRange.mTo));
}

TEST(Edit_Parse, APlaceInBarsWaitsForTheFile) {
  Edit_EraseRange const edit =
      std::get<Edit_EraseRange>(Edit_Parse("erase-range 2:1 3:1:10").mEdit);
  EXPECT_EQ(2, std::get<Host_BarPosition>(*edit.mRange.mFrom).mBar);
  EXPECT_EQ(10, std::get<Host_BarPosition>(*edit.mRange.mTo).mTick);
}

TEST(Edit_Parse, CopyRangeTakesTheWayBehindTheRange) {
  Edit_CopyRange const edit = std::get<Edit_CopyRange>(Edit_Parse("copy-range 5t 9t -7t").mEdit);
  EXPECT_EQ(Time_TypedLength(-7, Time_eType_Ticks), edit.mOffset);
}

TEST(Edit_Parse, NudgeKnowsItsFourModes) {
  EXPECT_EQ(kNudgeTimes, std::get<Edit_Nudge>(Edit_Parse("nudge times 1t").mEdit).mMode);
  EXPECT_EQ(kNudgeStarts, std::get<Edit_Nudge>(Edit_Parse("nudge starts 1t").mEdit).mMode);
  EXPECT_EQ(kNudgeDurations, std::get<Edit_Nudge>(Edit_Parse("nudge durations 1t").mEdit).mMode);
  EXPECT_EQ(kNudgePitches, std::get<Edit_Nudge>(Edit_Parse("nudge pitches 1t").mEdit).mMode);
}

TEST(Edit_Parse, NudgeWithoutARangeIsForAll) {
  Edit_Nudge const edit = std::get<Edit_Nudge>(Edit_Parse("nudge times 480000t").mEdit);
  EXPECT_EQ(Time_TypedLength(480000, Time_eType_Ticks), edit.mOffset);
  EXPECT_FALSE(edit.mRange.mFrom);
  EXPECT_FALSE(edit.mRange.mTo);
}

TEST(Edit_Parse, NudgeTakesARange) {
  Edit_Nudge const edit = std::get<Edit_Nudge>(Edit_Parse("nudge times 1t 2t 3t").mEdit);
  EXPECT_EQ(Time_Typed(2, Time_eType_Ticks), GetTime(edit.mRange.mFrom));
  EXPECT_EQ(Time_Typed(3, Time_eType_Ticks), GetTime(edit.mRange.mTo));
}

TEST(Edit_Parse, EraseStreamNamesEveryKindOfStream) {
  auto const stream = [](char const * text) {
    return std::get<Edit_EraseStream>(Edit_Parse(text).mEdit).mStream;
  };
  EXPECT_EQ(Vrae_SubStream::Controller(7), stream("erase-stream cc7"));
  EXPECT_EQ(Vrae_SubStream::PitchBend(), stream("erase-stream bend"));
  EXPECT_EQ(Vrae_SubStream::Program(), stream("erase-stream program"));
  EXPECT_EQ(Vrae_SubStream::MonoPressure(), stream("erase-stream mono"));
  EXPECT_EQ(Vrae_SubStream::PolyPressure(60), stream("erase-stream poly60"));
}

TEST(Edit_Parse, QuantizeMovesNothingUnlessTold) {
  EXPECT_EQ(0, std::get<Edit_Quantize>(Edit_Parse("quantize").mEdit).mOffset.AsInt64());
  EXPECT_EQ(250, std::get<Edit_Quantize>(Edit_Parse("quantize 250t").mEdit).mOffset.AsInt64());
}

TEST(Edit_Parse, UndoAndRedoStandAlone) {
  EXPECT_TRUE(std::holds_alternative<Edit_Undo>(Edit_Parse("undo").mEdit));
  EXPECT_TRUE(std::holds_alternative<Edit_Redo>(Edit_Parse("redo").mEdit));
}

TEST(Edit_Parse, TheTextIsKeptAsWritten) {
  EXPECT_EQ("nudge  times 1t", Edit_Parse("nudge  times 1t").mText);
}

TEST(Edit_Parse, NamesAnUnknownCommand) {
  EXPECT_EQ("'shift 3': 'shift' is not one of merge, erase-range, copy-range, nudge, "
            "erase-stream, quantize, undo, redo",
            WhyNot("shift 3"));
}

TEST(Edit_Parse, SaysWhatIsMissing) {
  EXPECT_EQ("'merge': a file is missing", WhyNot("merge"));
  EXPECT_EQ("'erase-range 1t': the end of the range is missing", WhyNot("erase-range 1t"));
  EXPECT_EQ("'nudge times': a length is missing", WhyNot("nudge times"));
  EXPECT_EQ("'nudge': what to nudge is missing", WhyNot("nudge"));
  EXPECT_EQ("'erase-stream': a stream is missing", WhyNot("erase-stream"));
}

TEST(Edit_Parse, SaysWhatIsTooMuch) {
  EXPECT_EQ("'undo twice': 'twice' is too much", WhyNot("undo twice"));
  EXPECT_EQ("'merge a.mid b.mid': 'b.mid' is too much", WhyNot("merge a.mid b.mid"));
}

TEST(Edit_Parse, RefusesAnEmptyCommandAndAnOpenQuote) {
  EXPECT_EQ("'  ': an empty command", WhyNot("  "));
  EXPECT_EQ("'merge \"a': a quote is not closed", WhyNot("merge \"a"));
}

TEST(Edit_Parse, RefusesStreamsThatDoNotExist) {
  for (char const * text : {"erase-stream cc0", "erase-stream cc120", "erase-stream cc",
                            "erase-stream poly128", "erase-stream poly-1", "erase-stream cc7x"}) {
    EXPECT_NE("", WhyNot(text)) << text;
  }
}

TEST(Edit_Parse, RefusesLengthsAndPositionsThatAreNone) {
  EXPECT_NE("", WhyNot("nudge times much"));
  EXPECT_NE("", WhyNot("erase-range 1 2"));
  EXPECT_NE("", WhyNot("nudge tempo 1t"));
}

}  // namespace
