#include "foundation/sys_umid.h"

#include <cstring>
#include <set>
#include <string>

#include <gtest/gtest.h>

TEST(Sys_Umid, IsSixteenBytes) {
  EXPECT_EQ(16u, sizeof(Sys_Umid));
}

TEST(Sys_Umid, BlankIsAllZero) {
  unsigned char const zeros[16] = {};
  EXPECT_EQ(0, std::memcmp(zeros, Sys_Umid().GetBytes(), 16));
}

TEST(Sys_Umid_NoID, EqualsTheBlankValue) {
  EXPECT_TRUE(Sys_Umid::NoID() == Sys_Umid());
  EXPECT_FALSE(Sys_Umid::NoID() != Sys_Umid());
}

TEST(Sys_Umid_Create, IsNeverNoID) {
  for (int i = 0; i < 100; ++i)
    ASSERT_TRUE(Sys_Umid::Create() != Sys_Umid::NoID());
}

TEST(Sys_Umid_Create, IsFreshEachTime) {
  std::set<std::string> texts;
  for (int i = 0; i < 1000; ++i)
    texts.insert(Sys_Umid::Create().AsHexString());
  EXPECT_EQ(1000u, texts.size());
}

TEST(Sys_Umid_AsHexString, IsThirtyTwoLowerCaseDigits) {
  unsigned char const bytes[16] = {0x00, 0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0xcd,
                                   0xef, 0xff, 0x10, 0x0f, 0xf0, 0x80, 0x7f, 0xfe};
  Sys_Umid umid;
  umid.SetBytes(bytes);
  EXPECT_EQ("000123456789abcdefff100ff0807ffe", umid.AsHexString());
  EXPECT_EQ("00000000000000000000000000000000", Sys_Umid::NoID().AsHexString());
}

TEST(Sys_Umid_SetBytes, GivesBackWhatWasSet) {
  Sys_Umid const created = Sys_Umid::Create();
  Sys_Umid copy;
  EXPECT_TRUE(copy != created);
  copy.SetBytes(created.GetBytes());
  EXPECT_TRUE(copy == created);
}

TEST(Sys_Umid, LastByteCounts) {
  unsigned char bytes[16] = {};
  bytes[15] = 1;
  Sys_Umid umid;
  umid.SetBytes(bytes);
  EXPECT_TRUE(umid != Sys_Umid());
}
