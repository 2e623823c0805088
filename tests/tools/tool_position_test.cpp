#include "tools/vrad/tool_position.h"

#include <gtest/gtest.h>

#include "tools/vrad/tool_error.h"

namespace {

std::string Print(Tool_Position const & iPosition) {
  if (Time_Typed const * const time = std::get_if<Time_Typed>(&iPosition)) {
    return std::to_string(time->AsInt64()) + (time->GetType() == Time_eType_Ticks ? "t" : "s");
  }
  Host_BarPosition const bar = std::get<Host_BarPosition>(iPosition);
  return std::to_string(bar.mBar) + ":" + std::to_string(bar.mBeat) + ":" +
         std::to_string(bar.mTick);
}

std::string Position(std::string const & iText) {
  try {
    return Print(Tool_ParsePosition("--from", iText));
  } catch (Tool_UsageError const & error) {
    return error.what();
  }
}

std::string Length(std::string const & iText) {
  try {
    Time_TypedLength const length = Tool_ParseLength("--offset", iText);
    return std::to_string(length.AsInt64()) + (length.GetType() == Time_eType_Ticks ? "t" : "s");
  } catch (Tool_UsageError const & error) {
    return error.what();
  }
}

TEST(Tool_ParsePosition, TakesTicksAndSamples) {
  EXPECT_EQ(Position("960000t"), "960000t");
  EXPECT_EQ(Position("0t"), "0t");
  EXPECT_EQ(Position("-5t"), "-5t");
  EXPECT_EQ(Position("48000s"), "48000s");
}

TEST(Tool_ParsePosition, TakesSecondsToTheNearestSample) {
  EXPECT_EQ(Position("12.5sec"), "600000s");
  EXPECT_EQ(Position("2sec"), "96000s");
  EXPECT_EQ(Position("0.00001sec"), "0s");  // 0.48 samples
  EXPECT_EQ(Position("0.00002sec"), "1s");  // 0.96 samples
  EXPECT_EQ(Position("-0.5sec"), "-24000s");
}

TEST(Tool_ParsePosition, TakesBars) {
  EXPECT_EQ(Position("3:1"), "3:1:0");
  EXPECT_EQ(Position("12:4:959999"), "12:4:959999");
}

TEST(Tool_ParsePosition, TakesTheGreatestCount) {
  EXPECT_EQ(Position("2305843009213693952t"), "2305843009213693952t");
}

TEST(Tool_ParsePosition, RefusesWhatIsNoPosition) {
  for (std::string const text : {"",
                                 "t",
                                 "s",
                                 "sec",
                                 "12",
                                 "12x",
                                 "1.5t",
                                 "1e3sec",
                                 "nansec",
                                 "infsec",
                                 "0x10t",
                                 " 1t",
                                 "1t ",
                                 "--1t",
                                 "1-t",
                                 "2305843009213693953t",
                                 "99999999999999999999t",
                                 "1e30sec",
                                 "999999999999999999999sec",
                                 ":",
                                 "1:",
                                 ":1",
                                 "1:2:",
                                 "1:2:3:4",
                                 "1:x",
                                 "a:1",
                                 "1::2"}) {
    EXPECT_EQ(Position(text),
              "--from: '" + text +
                  "' is not a position such as 960000t, 48000s, 12.5sec or BAR:BEAT[:TICK]");
  }
}

TEST(Tool_ParseLength, TakesEitherSign) {
  EXPECT_EQ(Length("960000t"), "960000t");
  EXPECT_EQ(Length("-48000s"), "-48000s");
  EXPECT_EQ(Length("-1.5sec"), "-72000s");
}

TEST(Tool_ParseLength, RefusesBars) {
  EXPECT_EQ(Length("1:1"), "--offset: '1:1' is not a length such as 960000t, 48000s or 12.5sec");
}

TEST(Tool_ResolvePosition, FindsBars) {
  Host_BarMap const bars({{Time_Tick(0), 3, 4}});
  EXPECT_EQ(Print(Tool_ResolvePosition("--to", Host_BarPosition{2, 3, 5}, bars)), "4800005t");
  EXPECT_EQ(Print(Tool_ResolvePosition("--to", Time_Typed(7, Time_eType_Samples), bars)), "7s");
}

TEST(Tool_ResolvePosition, NamesTheOptionOfAPlaceThatDoesNotExist) {
  try {
    Tool_ResolvePosition("--to", Host_BarPosition{2, 5, 0}, Host_BarMap());
    FAIL();
  } catch (Tool_UsageError const & error) {
    EXPECT_STREQ(error.what(), "--to: bar 2 has beats 1 to 4");
  }
}

}  // namespace
