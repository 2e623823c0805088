#include "cmn/cmn_bitarray.h"

#include <gtest/gtest.h>

TEST(Cmn_BitArray, StartsWithAllBitsFalse) {
  Cmn_BitArray<128> const bits;
  for (int i = 0; i < 128; ++i)
    EXPECT_FALSE(bits.Get(i)) << i;
}

TEST(Cmn_BitArray_Set, ChangesOneBit) {
  Cmn_BitArray<128> bits;
  bits.Set(0, true);
  bits.Set(127, true);
  EXPECT_TRUE(bits.Get(0));
  EXPECT_FALSE(bits.Get(1));
  EXPECT_FALSE(bits.Get(126));
  EXPECT_TRUE(bits.Get(127));
  bits.Set(0, false);
  EXPECT_FALSE(bits.Get(0));
}

TEST(Cmn_BitArray_SetAll, SetsAndClears) {
  Cmn_BitArray<128> bits;
  bits.SetAll(true);
  EXPECT_TRUE(bits.Get(0));
  EXPECT_TRUE(bits.Get(127));
  bits.SetAll(false);
  EXPECT_TRUE(bits == Cmn_BitArray<128>());
}

TEST(Cmn_BitArray_InvertAll, InvertsEachBit) {
  Cmn_BitArray<128> bits;
  bits.Set(5, true);
  bits.InvertAll();
  EXPECT_FALSE(bits.Get(5));
  EXPECT_TRUE(bits.Get(4));
  EXPECT_TRUE(bits.Get(127));
}

TEST(Cmn_BitArray, EqualWhenAllBitsAre) {
  Cmn_BitArray<128> first, second;
  first.Set(127, true);
  EXPECT_FALSE(first == second);
  EXPECT_TRUE(first != second);
  second.Set(127, true);
  EXPECT_TRUE(first == second);
}

TEST(Cmn_BitArray, CopyIsIndependent) {
  Cmn_BitArray<128> first;
  Cmn_BitArray<128> copy = first;
  copy.Set(1, true);
  EXPECT_FALSE(first.Get(1));
}

TEST(Cmn_BitArray_Get, BadIndexIsReportedAndGivesFalse) {
  Cmn_AssertRecorder const recorder;
  Cmn_BitArray<128> bits;
  bits.SetAll(true);
  EXPECT_FALSE(bits.Get(-1));
  EXPECT_FALSE(bits.Get(128));
  EXPECT_EQ(2, recorder.GetNum("iIndex >= 0 && iIndex < TSize"));
  EXPECT_EQ(2, recorder.GetNum());
}

TEST(Cmn_BitArray_Get, BadIndexReportReturnsAndIsFlagged) {
  Cmn_AssertRecorder const recorder;
  Cmn_BitArray<128>().Get(-1);
  EXPECT_TRUE(recorder.GetEntries()[0].mFlag);
  EXPECT_FALSE(recorder.GetEntries()[0].mThrowing);
  EXPECT_EQ("cmn/cmn_bitarray.h", recorder.GetEntries()[0].mPath);
}

TEST(Cmn_BitArray_Set, BadIndexIsReportedAndDoesNothing) {
  Cmn_AssertRecorder const recorder;
  Cmn_BitArray<128> bits;
  bits.Set(-1, true);
  bits.Set(128, true);
  EXPECT_EQ(2, recorder.GetNum("iIndex >= 0 && iIndex < TSize"));
  EXPECT_TRUE(bits == Cmn_BitArray<128>());
}

TEST(Cmn_BitArray, LimitsAreGood) {
  Cmn_AssertRecorder const recorder;
  Cmn_BitArray<128> bits;
  bits.Set(0, true);
  bits.Set(127, true);
  EXPECT_TRUE(bits.Get(0) && bits.Get(127));
  EXPECT_EQ(0, recorder.GetNum());
}
