// Bytes as they may come over a MIDI cable: however they are cut they give the same messages, and
// whatever they are, a stream checker that compares them with clips comes to an end.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "host/host_messagelist.h"
#include "host/host_streamchecker.h"
#include "host/host_wirebytes.h"
#include "ndo/ndo_ptr.h"
#include "vrad/vrad_chunk.h"

namespace {

typedef std::vector<std::vector<unsigned char>> Messages;

Messages Cut(std::uint8_t const * iBytes, size_t iSize, size_t iPieceSize) {
  Host_MessageList list;
  Host_WireBytes wire(list);
  for (size_t done = 0; done < iSize; done += iPieceSize)
    wire.Receive(0, 0, iBytes + done, static_cast<int>(std::min(iPieceSize, iSize - done)));
  Messages messages;
  for (Host_MessageList::Message const & message : list.GetMessages()) {
    auto const bytes = list.GetBytes(message);
    messages.emplace_back(bytes.begin(), bytes.end());
  }
  return messages;
}

Ndo_AutoPtr<Vrad_Chunk> MakeChunk() {
  Ndo_AutoPtr<Vrad_Chunk> chunk(Vrad_Chunk::New(Ndo_Object::kNotUndoable, false));
  for (int i = 0; i < 8; ++i) {
    Vrae_NoteWithDurationEvent const note(static_cast<signed char>(60 + i % 3),
                                          Time_TickLength(900), 100, 64);
    chunk->AddEvent(Vrad_NoteWithDurationExtendedEvent(Time_Tick(400 * i), note, false));
    chunk->AddEvent(Vrad_ExtendedEvent(Time_Tick(500 * i),
                                       Vrae_ControllerEvent(7, static_cast<signed char>(i))));
  }
  return chunk;
}

void Command(Host_StreamChecker & ioChecker, int iWhat) {
  if (iWhat == 0) ioChecker.Stop();
  if (iWhat == 1) ioChecker.Start(Time_Tick(0));
  if (iWhat == 2) ioChecker.Locate(Time_Tick(1000));
  if (iWhat == 3) ioChecker.SetMuted(0, true);
  if (iWhat == 4) ioChecker.SetLoop(Time_Tick(400), Time_Tick(2000));
}

// A command, the length of a block, and what is sent in it.
void Check(FuzzInput iInput) {
  Ndo_AutoPtr<Vrad_Chunk> const chunk = MakeChunk();
  Host_StreamChecker checker;
  Host_WireBytes wire(checker);
  for (int i = 0; i < 3; ++i)
    checker.AddClip(chunk.Get(), i / 2, i);
  while (iInput.IsMore() && checker.IsGood()) {
    Command(checker, iInput.Take(16));
    int const length = iInput.Take(100);
    checker.BeginBlock(length);
    for (int num = iInput.Take(8); num > 0; --num) {
      unsigned char const byte = static_cast<unsigned char>(iInput.Take());
      wire.Receive(Host_StreamChecker::kAnyClip, length / 2, &byte, 1);
    }
    checker.EndBlock();
  }
  FuzzExpect(checker.IsGood() == checker.GetViolation().mText.empty(),
             "a violation without a text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * iBytes, size_t iSize) {
  Messages const messages = Cut(iBytes, iSize, std::max<size_t>(iSize, 1));
  for (std::vector<unsigned char> const & message : messages)
    FuzzExpect(!message.empty(), "a message without bytes");
  for (size_t pieceSize = 1; pieceSize <= 3; ++pieceSize)
    FuzzExpect(Cut(iBytes, iSize, pieceSize) == messages, "cut otherwise, other messages");
  Check(FuzzInput(iBytes, iSize));
  return 0;
}
