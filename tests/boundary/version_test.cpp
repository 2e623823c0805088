#include "vrad/vrad_version.h"

#include <gtest/gtest.h>

// VRAD_BUILT_VERSION is what the build calls the project, and so names the library file.
TEST(Vrad_GetVersion, IsThatOfTheHeader) {
  EXPECT_STREQ(VRAD_VERSION, Vrad_GetVersion());
}

TEST(Vrad_GetVersion, IsThatOfTheBuild) {
  EXPECT_STREQ(VRAD_BUILT_VERSION, Vrad_GetVersion());
}
