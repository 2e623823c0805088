#include "tools/vrad/tool_filter.h"

#include <gtest/gtest.h>

#include "tools/vrad/tool_error.h"

namespace {

std::string Print(Vrae_Filter const & iFilter) {
  constexpr char const * kNames[] = {"notes", "on",   "off",   "bend",    "program",
                                     "mono",  "poly", "sysex", "realtime"};
  std::string result;
  for (int i = 0; i < Vrae_Filter::eDataType_NumValues; ++i) {
    if (iFilter.Get(static_cast<Vrae_Filter::EDataType>(i))) result += std::string(kNames[i]) + " ";
  }
  int numControllers = 0;
  for (int i = 0; i < 128; ++i) {
    if (!iFilter.GetControllers().Get(i)) continue;
    if (++numControllers <= 3) result += "cc" + std::to_string(i) + " ";
  }
  return result + std::to_string(numControllers);
}

std::string Filter(std::string const & iText) {
  try {
    return Print(Tool_ParseFilter("--filter", iText));
  } catch (Tool_UsageError const & error) {
    return error.what();
  }
}

TEST(Tool_ParseFilter, KnowsEachKind) {
  EXPECT_EQ(Filter("notes"), "notes on off 0");
  EXPECT_EQ(Filter("bend"), "on off bend 0");
  EXPECT_EQ(Filter("program"), "on off program 0");
  EXPECT_EQ(Filter("mono"), "on off mono 0");
  EXPECT_EQ(Filter("poly"), "on off poly 0");
  EXPECT_EQ(Filter("sysex"), "on off sysex 0");
}

TEST(Tool_ParseFilter, KnowsControllers) {
  EXPECT_EQ(Filter("cc1"), "on off cc1 1");
  EXPECT_EQ(Filter("cc119,cc7"), "on off cc7 cc119 2");
  EXPECT_EQ(Filter("cc"), "on off cc0 cc1 cc2 128");
}

TEST(Tool_ParseFilter, TakesSeveral) {
  EXPECT_EQ(Filter("notes,bend,cc7"), "notes on off bend cc7 1");
}

TEST(Tool_ParseFilter, RefusesOtherWords) {
  for (std::string const word :
       {"", "note", "cc0", "cc32", "cc120", "cc-1", "cc7x", "ccx", "NOTES"}) {
    EXPECT_EQ(Filter(word), "--filter: '" + word +
                                "' is not one of notes, bend, program (with its bank), mono, poly, "
                                "sysex, cc, cc1 to cc119");
  }
  EXPECT_EQ(Filter("notes,"),
            "--filter: '' is not one of notes, bend, program (with its bank), mono, "
            "poly, sysex, cc, cc1 to cc119");
}

}  // namespace
