#include "foundation/ticktimesmatter.h"

#include <gtest/gtest.h>

TEST(TickTimesMatter, StartsOff) {
  EXPECT_FALSE(TickTimesMatter::Active());
}

TEST(TickTimesMatter, IsSwitchedOnAndOff) {
  TickTimesMatter::SetActive(true);
  EXPECT_TRUE(TickTimesMatter::Active());
  TickTimesMatter::SetActive(false);
  EXPECT_FALSE(TickTimesMatter::Active());
}
