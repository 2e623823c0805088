// Runs where the loader finds a trace library: support/fake_lumtrace.cpp.
#include <gtest/gtest.h>

#include "foundation/lumtrace.h"

namespace {

// An initialiser of another file may trace before the slots are filled, and after.
bool const sWasWanted = LumTraceIsWanted(0x2000f27);

}  // namespace

TEST(LumTrace_Loaded, FillsTheSlotsThatTheLibraryHas) {
  EXPECT_NE(nullptr, LumTraceIsActiveFunc);
  EXPECT_NE(nullptr, LumTraceFormat);
  EXPECT_NE(nullptr, LumTraceFormatQuiet);
  EXPECT_NE(nullptr, LumTraceFormatTimestamp);
  EXPECT_NE(nullptr, LumTracePuts);
  EXPECT_NE(nullptr, LumTraceMem);
}

TEST(LumTrace_Loaded, LeavesTheSlotOfAMissingEntryPointEmpty) {
  EXPECT_EQ(nullptr, LumTraceStack);
}

TEST(LumTrace_Loaded, CallsTheLibrary) {
  ASSERT_NE(nullptr, LumTraceIsActiveFunc);
  EXPECT_TRUE(LumTraceIsActiveFunc(0x2000f27));
  EXPECT_FALSE(LumTraceIsActiveFunc(0x4000e0f));
}

TEST(LumTrace_Loaded, LeavesTracingOffUntilTheHostSwitchesItOn) {
  EXPECT_FALSE(gLumTraceActive);
  EXPECT_FALSE(sWasWanted);
  gLumTraceActive = true;
  EXPECT_TRUE(LumTraceIsWanted(0x2000f27));
  EXPECT_FALSE(LumTraceIsWanted(0x4000e0f));
  gLumTraceActive = false;
}
