#include "vrad/vrad_init.h"

#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

// Puts the library's own table back.
class Vrad_Strings : public testing::Test {
protected:
  void TearDown() override { Vrad_SetResourceModule(mFormer); }
  I18N_ModuleHandle const mFormer = Vrad_GetResourceModule();
};

template <class F>
std::string WhatOfRuntimeError(F const & iBody) {
  try {
    iBody();
  } catch (std::runtime_error const & error) {
    return error.what();
  }
  return "nothing thrown";
}

// Initialisers of other files may load texts, whatever the order of files.
std::string const sTextAtLoad = Vrad_LoadString(203);

}  // namespace

TEST(Vrad_Init, FlagIsClearAtStart) {
  EXPECT_FALSE(Vrad_Init::sIsInitialized);
}

TEST(Vrad_Init, InitSetsTheFlagAndFreeClearsIt) {
  Vrad_Init::Init();
  EXPECT_TRUE(Vrad_Init::sIsInitialized);
  Vrad_Init::Init();
  EXPECT_TRUE(Vrad_Init::sIsInitialized);
  Vrad_Init::Free();
  EXPECT_FALSE(Vrad_Init::sIsInitialized);
  Vrad_Init::Free();
  EXPECT_FALSE(Vrad_Init::sIsInitialized);
}

TEST(Vrad_Init, ChangesNothingElse) {
  I18N_ModuleHandle const before = Vrad_GetResourceModule();
  Vrad_Init::Init();
  EXPECT_EQ(before, Vrad_GetResourceModule());
  Vrad_Init::Free();
  EXPECT_EQ(before, Vrad_GetResourceModule());
}

TEST(Vrae_ResourceFailure, SignalsReturn) {
  EXPECT_NO_THROW(Vrae_ResourceFailure::SignalFailure());
  EXPECT_NO_THROW(Vrae_ResourceFailure::SignalMainMemoryFailure());
  EXPECT_NO_THROW(Vrae_ResourceFailure::SignalRealTimeMemoryFailure());
}

TEST(Vrad_LoadString, GivesEveryTextOfTheLibrary) {
  std::map<int, std::string> const texts = {
      {100, "bad data encountered"},
      {101, "bad data encountered: stream not unique"},
      {200, "...out of notes in progress..."},
      {201, "bad subtype encountered"},
      {202, "bad data encountered"},
      {203, "sorter full"},
      {204, "Step Input"},
      {205, "Step Input: 64th Note"},
      {206, "Step Input: 32nd Note"},
      {207, "Step Input: 16th Note"},
      {208, "Step Input: 8th Note"},
      {209, "Step Input: Quarter Note"},
      {210, "Step Input: Half Note"},
      {211, "Step Input: Whole Note"},
      {212, "Step Input: Toggle Tuplet"},
      {213, "Step Input: Toggle Dotted"},
      {214, "Step Input: Next Step"},
      {215, "Step Input: Undo Step"},
      {216, "Step Input: Redo Step"},
      {300, "The LumMIDIService could not be acquired. Please verify LumMIDIService is properly "
            "installed and registered (may require a complete reinstall)."},
  };
  for (auto const & [id, text] : texts)
    EXPECT_EQ(text, Vrad_LoadString(id));
}

TEST(Vrad_LoadString, HasNoOtherText) {
  for (int const id : {-1, 0, 99, 102, 199, 217, 299, 301})
    EXPECT_EQ("0 Length String", WhatOfRuntimeError([id] { Vrad_LoadString(id); })) << id;
}

TEST(Vrad_LoadString, WorksFromInitialisersOn) {
  EXPECT_EQ("sorter full", sTextAtLoad);
}

TEST(Vrad_GetResourceModule, IsSetAtLoad) {
  EXPECT_NE(nullptr, Vrad_GetResourceModule());
}

TEST_F(Vrad_Strings, SetResourceModuleChangesTheTexts) {
  I18N_StringTable table;
  table.Set(100, "schlechte Daten \xc3\xa4");
  Vrad_SetResourceModule(&table);
  EXPECT_EQ(&table, Vrad_GetResourceModule());
  EXPECT_EQ("schlechte Daten \xc3\xa4", Vrad_LoadString(100));
}

TEST_F(Vrad_Strings, NullModuleGivesEmptyTexts) {
  Vrad_SetResourceModule(nullptr);
  EXPECT_EQ("", Vrad_LoadString(100));
  EXPECT_EQ("", Vrad_LoadString(12345));
}

TEST_F(Vrad_Strings, EmptyTextIsAsGoodAsNone) {
  I18N_StringTable table;
  table.Set(100, "");
  Vrad_SetResourceModule(&table);
  EXPECT_EQ("0 Length String", WhatOfRuntimeError([] { Vrad_LoadString(100); }));
}

TEST_F(Vrad_Strings, LongTextIsCutTo1023Characters) {
  I18N_StringTable table;
  table.Set(1, std::string(1023, 'x'));
  table.Set(2, std::string(1024, 'x'));
  Vrad_SetResourceModule(&table);
  EXPECT_EQ(std::string(1023, 'x'), Vrad_LoadString(1));
  EXPECT_EQ(std::string(1023, 'x'), Vrad_LoadString(2));
}

TEST(Vrad_ThrowBadData, ThrowsTheTypedExceptionWithTheText) {
  try {
    Vrad_ThrowBadData(101);
  } catch (Cmn_TypedException<L10N_ExceptionData> const & exception) {
    EXPECT_STREQ("bad data encountered: stream not unique", exception.what());
    EXPECT_EQ("bad data encountered: stream not unique", exception.GetDescription());
    EXPECT_EQ(nullptr, exception.GetStackDump());
    return;
  }
  FAIL() << "not caught by its type";
}

TEST(Vrad_ThrowBadData, IsCaughtAsCmnException) {
  EXPECT_THROW(Vrad_ThrowBadData(100), Cmn_Exception);
}

TEST_F(Vrad_Strings, BadDataWithoutAModuleHasAnEmptyText) {
  Vrad_SetResourceModule(nullptr);
  try {
    Vrad_ThrowBadData(100);
  } catch (Cmn_TypedException<L10N_ExceptionData> const & exception) {
    EXPECT_STREQ("", exception.what());
    return;
  }
  FAIL() << "not caught by its type";
}

TEST(Vrad_ThrowBadData, MissingTextGoesOutAsAPlainError) {
  try {
    Vrad_ThrowBadData(12345);
  } catch (Cmn_Exception const &) {
    FAIL() << "a typed exception went out";
  } catch (std::runtime_error const & error) {
    EXPECT_STREQ("0 Length String", error.what());
  }
}
