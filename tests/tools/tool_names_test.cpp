#include "tools/vrad/tool_names.h"

#include <gtest/gtest.h>

namespace {

TEST(Tool_MakePrintable, KeepsPlainTextAndUTF8) {
  EXPECT_EQ(Tool_MakePrintable("Piano", 24), "Piano");
  EXPECT_EQ(Tool_MakePrintable("Flöte ♫ 𝄞", 24), "Flöte ♫ 𝄞");
}

TEST(Tool_MakePrintable, ReplacesControlCharacters) {
  EXPECT_EQ(Tool_MakePrintable("a\x1b[31mb\n\x7f", 24), "a?[31mb??");
  EXPECT_EQ(Tool_MakePrintable("a\xc2\x9b"
                               "b",
                               24),
            "a??b");
}

TEST(Tool_MakePrintable, ReplacesWhatIsNotUTF8) {
  EXPECT_EQ(Tool_MakePrintable("Fl\xf6te", 24), "Fl?te");
  EXPECT_EQ(Tool_MakePrintable("\xc3", 24), "?");
  EXPECT_EQ(Tool_MakePrintable("\xc0\x80", 24), "??");
}

TEST(Tool_MakePrintable, ShortensToAWidth) {
  EXPECT_EQ(Tool_MakePrintable("abcde", 5), "abcde");
  EXPECT_EQ(Tool_MakePrintable("abcdef", 5), "abcd…");
}

TEST(Tool_GetNumChars, CountsCharactersNotBytes) {
  EXPECT_EQ(Tool_GetNumChars(""), 0u);
  EXPECT_EQ(Tool_GetNumChars("Flöte ♫"), 7u);
}

}  // namespace
