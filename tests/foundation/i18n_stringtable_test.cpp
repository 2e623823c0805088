#include "foundation/i18n_stringtable.h"

#include <string>

#include <gtest/gtest.h>

namespace {

// U+00E9, U+20AC, U+1F3B5 in UTF-8.
char const kThreeCharacters[] = "\xc3\xa9\xe2\x82\xac\xf0\x9f\x8e\xb5";

std::wstring LoadOf(I18N_StringTable const & iTable, int iID) {
  wchar_t buffer[1024];
  int const num = iTable.Load(iID, buffer, 1024);
  return std::wstring(buffer, static_cast<size_t>(num));
}

std::string RoundTripOf(std::string const & iUTF8) {
  I18N_StringTable table;
  table.Set(1, iUTF8);
  return I18N_StUTF8Buffer(LoadOf(table, 1).c_str()).Get();
}

int LoadAnswer(int iID, wchar_t * oBuffer, int iBufferSize) {
  if (iID != 42 || iBufferSize < 2) return 0;
  oBuffer[0] = L'!';
  oBuffer[1] = 0;
  return 1;
}

}  // namespace

TEST(I18N_StringTable_Load, GivesTheTextAndItsLength) {
  I18N_StringTable table;
  table.Set(100, "bad data");
  wchar_t buffer[1024];
  EXPECT_EQ(8, table.Load(100, buffer, 1024));
  EXPECT_EQ(std::wstring(L"bad data"), buffer);
}

TEST(I18N_StringTable_Load, AbsentTextGivesZeroAndAnEmptyBuffer) {
  I18N_StringTable const table;
  wchar_t buffer[4] = L"abc";
  EXPECT_EQ(0, table.Load(100, buffer, 4));
  EXPECT_EQ(L'\0', buffer[0]);
}

TEST(I18N_StringTable_Load, CutsToTheBuffer) {
  I18N_StringTable table;
  table.Set(1, "abc");
  wchar_t buffer[5] = L"####";
  EXPECT_EQ(3, table.Load(1, buffer, 4));
  EXPECT_EQ(std::wstring(L"abc"), buffer);
  EXPECT_EQ(2, table.Load(1, buffer, 3));
  EXPECT_EQ(std::wstring(L"ab"), buffer);
  EXPECT_EQ(0, table.Load(1, buffer, 1));
  EXPECT_EQ(std::wstring(L""), buffer);
}

TEST(I18N_StringTable_Load, BufferOfNothingIsNotTouched) {
  I18N_StringTable table;
  table.Set(1, "abc");
  wchar_t buffer[1] = {L'#'};
  EXPECT_EQ(0, table.Load(1, buffer, 0));
  EXPECT_EQ(0, table.Load(1, buffer, -1));
  EXPECT_EQ(L'#', buffer[0]);
}

TEST(I18N_StringTable_Set, ReplacesAText) {
  I18N_StringTable table;
  table.Set(1, "first");
  table.Set(1, "second");
  EXPECT_EQ(L"second", LoadOf(table, 1));
}

TEST(I18N_StringTable, AsksItsSourceForWhatItLacks) {
  I18N_StringTable table(&LoadAnswer);
  table.Set(1, "own");
  EXPECT_EQ(L"own", LoadOf(table, 1));
  EXPECT_EQ(L"!", LoadOf(table, 42));
  EXPECT_EQ(L"", LoadOf(table, 43));
}

TEST(I18N_StringTable_Set, ReadsUTF8) {
  I18N_StringTable table;
  table.Set(1, kThreeCharacters);
  EXPECT_EQ(L"\u00e9\u20ac\U0001f3b5", LoadOf(table, 1));
}

TEST(I18N_StUTF8Buffer, WritesUTF8) {
  EXPECT_STREQ(kThreeCharacters, I18N_StUTF8Buffer(L"\u00e9\u20ac\U0001f3b5").Get());
  EXPECT_STREQ("", I18N_StUTF8Buffer(L"").Get());
}

TEST(I18N_StUTF8Buffer, KeepsTheLimitsOfEachLength) {
  for (char const * const text :
       {"\x01", "\x7f", "\xc2\x80", "\xdf\xbf", "\xe0\xa0\x80", "\xed\x9f\xbf", "\xee\x80\x80",
        "\xef\xbf\xbf", "\xf0\x90\x80\x80", "\xf4\x8f\xbf\xbf"})
    EXPECT_EQ(text, RoundTripOf(text));
}

TEST(I18N_StringTable_Set, MalformedUTF8BecomesTheReplacementCharacter) {
  std::string const replacement = "\xef\xbf\xbd";
  for (char const * const text : {"\x80", "\xff", "\xc3", "\xe2\x82", "\xf0\x9f\x8e", "\xc0\xaf",
                                  "\xe0\x80\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80"}) {
    std::string const result = RoundTripOf(std::string("a") + text);
    EXPECT_EQ("a" + replacement, result.substr(0, 4)) << testing::PrintToString(text);
  }
  EXPECT_EQ(replacement + "b", RoundTripOf("\xc3"
                                           "b"));
}

TEST(I18N_StUTF8Buffer, HalfAPairBecomesTheReplacementCharacter) {
  wchar_t const text[] = {static_cast<wchar_t>(0xd800), L'a', static_cast<wchar_t>(0xdc00), 0};
  EXPECT_STREQ("\xef\xbf\xbd"
               "a\xef\xbf\xbd",
               I18N_StUTF8Buffer(text).Get());
}

TEST(I18N_Utils_FormatL10nString, WithoutArgumentsGivesTheText) {
  EXPECT_EQ("bad data", I18N_Utils::FormatL10nString("bad data", {}));
  EXPECT_EQ("100% %1 %", I18N_Utils::FormatL10nString("100% %1 %", {}));
}

TEST(I18N_Utils_FormatL10nString, PutsArgumentsInTheirPlaces) {
  EXPECT_EQ("b, a and a", I18N_Utils::FormatL10nString("%2, %1 and %1", {"a", "b"}));
}

TEST(I18N_Utils_FormatL10nString, PlaceWithoutArgumentStays) {
  EXPECT_EQ("a %2 %0 %x", I18N_Utils::FormatL10nString("%1 %2 %0 %x", {"a"}));
}

TEST(I18N_Utils_FormatL10nString, ArgumentsAreNotReadForPlaces) {
  EXPECT_EQ("%2 b", I18N_Utils::FormatL10nString("%1 %2", {"%2", "b"}));
}

// The header gives the failures too that carry such texts.
TEST(L10N_ExceptionData, CarriesTheMessage) {
  EXPECT_EQ("text", L10N_ExceptionData{"text"}.mMessage);
}
