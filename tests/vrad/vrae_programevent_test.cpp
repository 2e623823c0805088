// The packed fields of a program: numbers and flags keep out of each other's way.
#include <gtest/gtest.h>

#include "support/event_samples.h"
#include "vrad/vrae_event.h"

TEST(Vrae_ProgramEvent, StartsWithAllPartsEnabled) {
  Vrae_ProgramEvent const event(5, 0);
  EXPECT_TRUE(event.IsProgramEnabled());
  EXPECT_TRUE(event.IsMSBBankEnabled());
  EXPECT_TRUE(event.IsLSBBankEnabled());
  EXPECT_EQ(event.GetProgram(), 5);
  EXPECT_EQ(event.GetBank(), 0);
}

TEST(Vrae_ProgramEvent, TakesThePackedFieldsAsTheyStand) {
  Vrae_ProgramEvent const event(static_cast<signed char>(0x85), static_cast<short>(0xC083));
  EXPECT_FALSE(event.IsProgramEnabled());
  EXPECT_FALSE(event.IsMSBBankEnabled());
  EXPECT_FALSE(event.IsLSBBankEnabled());
  EXPECT_EQ(event.GetProgram(), 5);
  EXPECT_EQ(event.GetBank(), 0x83);
  EXPECT_EQ(event.GetMSBBank(), 1);
  EXPECT_EQ(event.GetLSBBank(), 3);
}

TEST(Vrae_ProgramEvent, ThePackedFieldsAreUnsignedInTheRecordAndSignedOutside) {
  Vrae_ProgramEvent event(0, 0);
  event.SetFullProgram(-1);
  event.SetFullBank(-2);
  EXPECT_EQ(event.mU.mProgram.mFullProgram, 0xFF);
  EXPECT_EQ(event.mU.mProgram.mFullBank, 0xFFFE);
  EXPECT_EQ(event.GetFullProgram(), -1);
  EXPECT_EQ(event.GetFullBank(), -2);
}

TEST(Vrae_ProgramEvent, SetProgramKeepsTheFlag) {
  Vrae_ProgramEvent event(static_cast<signed char>(0x85), 0);
  event.SetProgram(7);
  EXPECT_EQ(event.mU.mProgram.mFullProgram, 0x87);
  EXPECT_EQ(event.GetProgram(), 7);
}

TEST(Vrae_ProgramEvent, ABadProgramIsStoredInSevenBits) {
  Cmn_AssertRecorder const silent;
  Vrae_ProgramEvent event(0, 0);
  event.SetProgram(-1);
  EXPECT_EQ(event.mU.mProgram.mFullProgram, 0x7F);
  EXPECT_TRUE(event.IsProgramEnabled());
}

TEST(Vrae_ProgramEvent, SettingTheBankKeepsADisabledMSB) {
  Vrae_ProgramEvent event(5, 0);
  event.SetMSBBankEnable(false);
  event.SetBank(16383);
  EXPECT_FALSE(event.IsMSBBankEnabled());
  EXPECT_TRUE(event.IsLSBBankEnabled());
  EXPECT_EQ(event.GetBank(), 16383);
  EXPECT_EQ(event.mU.mProgram.mFullBank, 0xBFFF);
}

TEST(Vrae_ProgramEvent, ABadBankIsStoredInFourteenBits) {
  Cmn_AssertRecorder const silent;
  Vrae_ProgramEvent event(0, static_cast<short>(0x8000));
  event.SetBank(16384 + 5);
  EXPECT_EQ(event.mU.mProgram.mFullBank, 0x8005);
  event.SetBank(-1);
  EXPECT_EQ(event.mU.mProgram.mFullBank, 0xBFFF);
}

TEST(Vrae_ProgramEvent, AnMSBOfOneIsBank128) {
  Vrae_ProgramEvent event(5, 0);
  event.SetMSBBank(1);
  EXPECT_EQ(event.GetBank(), 128);
}

TEST(Vrae_ProgramEvent, SetMSBBankKeepsTheRest) {
  Vrae_ProgramEvent event(5, static_cast<short>(0xC003));
  event.SetMSBBank(127);
  EXPECT_EQ(event.mU.mProgram.mFullBank, 0xFF83);
  EXPECT_EQ(event.GetMSBBank(), 127);
  EXPECT_EQ(event.GetLSBBank(), 3);
}

TEST(Vrae_ProgramEvent, SetLSBBankKeepsTheRest) {
  Vrae_ProgramEvent event(5, static_cast<short>(0xFF80));
  event.SetLSBBank(9);
  EXPECT_EQ(event.mU.mProgram.mFullBank, 0xFF89);
  EXPECT_EQ(event.GetMSBBank(), 127);
  EXPECT_EQ(event.GetLSBBank(), 9);
}

TEST(Vrae_ProgramEvent, ABadHalfOfTheBankIsStoredInSevenBits) {
  Cmn_AssertRecorder const silent;
  Vrae_ProgramEvent event(0, 0);
  event.SetMSBBank(-1);
  EXPECT_EQ(event.mU.mProgram.mFullBank, 0x3F80);
  event.SetMSBBank(0);
  event.SetLSBBank(-128);
  EXPECT_EQ(event.mU.mProgram.mFullBank, 0);
}

TEST(Vrae_ProgramEvent, EachPartHasItsOwnFlag) {
  Vrae_ProgramEvent event(127, 16383);
  event.SetProgramEnable(false);
  EXPECT_EQ(event.mU.mProgram.mFullProgram, 0xFF);
  EXPECT_EQ(event.mU.mProgram.mFullBank, 0x3FFF);
  event.SetMSBBankEnable(false);
  EXPECT_EQ(event.mU.mProgram.mFullBank, 0xBFFF);
  event.SetLSBBankEnable(false);
  EXPECT_EQ(event.mU.mProgram.mFullBank, 0xFFFF);
  event.SetProgramEnable(true);
  event.SetMSBBankEnable(true);
  event.SetLSBBankEnable(true);
  EXPECT_EQ(event.mU.mProgram.mFullProgram, 0x7F);
  EXPECT_EQ(event.mU.mProgram.mFullBank, 0x3FFF);
}

TEST(Vrae_ProgramEvent, TheOMSPatchHoldsTheEnabledParts) {
  Vrae_ProgramEvent event(5, 0);
  event.SetMSBBank(2);
  event.SetLSBBank(3);
  EXPECT_EQ(event.GetOMSPatchNum(), static_cast<int>(0xFF020305u));
}

TEST(Vrae_ProgramEvent, TheOMSPatchLeavesOutADisabledHalfOfTheBank) {
  Vrae_ProgramEvent event(5, 0);
  event.SetMSBBank(2);
  event.SetLSBBank(3);
  event.SetMSBBankEnable(false);
  EXPECT_EQ(event.GetOMSPatchNum(), static_cast<int>(0xFF000305u));
  event.SetMSBBankEnable(true);
  event.SetLSBBankEnable(false);
  EXPECT_EQ(event.GetOMSPatchNum(), static_cast<int>(0xFF020005u));
}

TEST(Vrae_ProgramEvent, ADisabledProgramSetsEveryBitFromSevenUpward) {
  Vrae_ProgramEvent event(5, 0);
  event.SetProgramEnable(false);
  EXPECT_EQ(event.GetOMSPatchNum(), static_cast<int>(0xFFFFFF85u));
}
