// Several clips on one channel, under the referee.
#include <gtest/gtest.h>

#include "host/host_streamchecker.h"
#include "player_rig.h"

namespace {

Vrae_ProgramEvent MakeProgram(int iProgram, int iMSB) {
  Vrae_ProgramEvent program(static_cast<signed char>(iProgram < 0 ? 0 : iProgram),
                            static_cast<short>(iMSB < 0 ? 0 : iMSB * 128));
  program.SetProgramEnable(iProgram >= 0);
  program.SetMSBBankEnable(iMSB >= 0);
  program.SetLSBBankEnable(false);
  return program;
}

}  // namespace

// The second clip's state is the same before and after the jump, by other events.
TEST(Host_BlockPlayer_SharedChannel, AJumpBringsBackABankThatAnEventWithoutPartsHasFollowed) {
  Host_NotePool const pool(100);
  ChunkPtr const firstP = MakeChunk(), secondP = MakeChunk();
  AddEvent(*firstP.Get(), 0, MakeProgram(5, -1));
  AddEvent(*firstP.Get(), 300, MakeProgram(6, 11));
  AddEvent(*secondP.Get(), 10, MakeProgram(-1, 93));
  AddEvent(*secondP.Get(), 200, MakeProgram(-1, -1));
  Host_StreamChecker checker;
  Host_BlockPlayer player(&checker);
  auto const both = [&](auto iCommand) {
    iCommand(player);
    iCommand(checker);
  };
  both([&](auto & ioTarget) { ioTarget.AddClip(firstP.Get(), 0, 0); });
  both([&](auto & ioTarget) { ioTarget.AddClip(secondP.Get(), 0, 1); });
  both([](auto & ioTarget) { ioTarget.Start(AtSample(0)); });
  player.Process(400);
  both([](auto & ioTarget) { ioTarget.Locate(AtSample(100)); });
  player.Process(64);
  EXPECT_EQ("", checker.GetViolation().mText);
}
