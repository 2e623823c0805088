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

TEST(Tool_MakePrintable, ReplacesWhatUTF8Forbids) {
  EXPECT_EQ(Tool_MakePrintable("\xe0\x80\x80", 24), "???");                 // too long a form
  EXPECT_EQ(Tool_MakePrintable("\xed\xa0\x80", 24), "???");                 // half of a pair
  EXPECT_EQ(Tool_MakePrintable("\xf0\x80\x80\x80", 24), "????");            // too long a form
  EXPECT_EQ(Tool_MakePrintable("\xf4\x90\x80\x80", 24), "????");            // past the last one
  EXPECT_EQ(Tool_MakePrintable("\xef\xbf\xbe\xef\xbf\xbf", 24), "??????");  // none
  EXPECT_EQ(Tool_MakePrintable("\xef\xbf\xbd \xee\x80\x80", 24), "\xef\xbf\xbd \xee\x80\x80");
}

TEST(Tool_EscapeForXML, KeepsWhatIsACharacter) {
  EXPECT_EQ(Tool_EscapeForXML("Flöte <&\"'> ♫ 𝄞"), "Flöte <&\"'> ♫ 𝄞");
}

TEST(Tool_EscapeForXML, ShowsOtherBytesInHexadecimal) {
  EXPECT_EQ(Tool_EscapeForXML("Fl\xf6te\n\x1b"), "Fl\\xf6te\\x0a\\x1b");
  EXPECT_EQ(Tool_EscapeForXML(std::string("a\0b", 3)), "a\\x00b");
  EXPECT_EQ(Tool_EscapeForXML("\xed\xa0\x80"), "\\xed\\xa0\\x80");
}

TEST(Tool_MakePrintable, ShortensToAWidth) {
  EXPECT_EQ(Tool_MakePrintable("abcde", 5), "abcde");
  EXPECT_EQ(Tool_MakePrintable("abcdef", 5), "abcd…");
}

TEST(Tool_GetNumChars, CountsCharactersNotBytes) {
  EXPECT_EQ(Tool_GetNumChars(""), 0u);
  EXPECT_EQ(Tool_GetNumChars("Flöte ♫"), 7u);
}

TEST(Tool_GetKeyName, NamesMajorKeys) {
  EXPECT_EQ(Tool_GetKeyName(0, false), "C major");
  EXPECT_EQ(Tool_GetKeyName(1, false), "G major");
  EXPECT_EQ(Tool_GetKeyName(5, false), "B major");
  EXPECT_EQ(Tool_GetKeyName(6, false), "F-sharp major");
  EXPECT_EQ(Tool_GetKeyName(7, false), "C-sharp major");
  EXPECT_EQ(Tool_GetKeyName(-1, false), "F major");
  EXPECT_EQ(Tool_GetKeyName(-2, false), "B-flat major");
  EXPECT_EQ(Tool_GetKeyName(-7, false), "C-flat major");
}

TEST(Tool_GetKeyName, NamesMinorKeys) {
  EXPECT_EQ(Tool_GetKeyName(0, true), "A minor");
  EXPECT_EQ(Tool_GetKeyName(2, true), "B minor");
  EXPECT_EQ(Tool_GetKeyName(3, true), "F-sharp minor");
  EXPECT_EQ(Tool_GetKeyName(7, true), "A-sharp minor");
  EXPECT_EQ(Tool_GetKeyName(-1, true), "D minor");
  EXPECT_EQ(Tool_GetKeyName(-5, true), "B-flat minor");
  EXPECT_EQ(Tool_GetKeyName(-7, true), "A-flat minor");
}

}  // namespace
