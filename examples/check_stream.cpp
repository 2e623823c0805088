// [readme]
// A program's own output under the referee: it plays a clip well, and then stops as many do.
#include <cstdio>
#include <vector>

#include "host/host_streamchecker.h"
#include "host/host_wirebytes.h"
#include "vrad/vrad.h"

namespace {

constexpr int kBlockSize = 256;

// One block of the program's output, as it would go to a MIDI port at the block's beginning.
void CheckBlock(Host_StreamChecker & ioChecker, std::vector<unsigned char> const & iBytes) {
  Host_WireBytes wire(ioChecker);
  ioChecker.BeginBlock(kBlockSize);
  wire.Receive(Host_StreamChecker::kAnyClip, 0, iBytes.data(), static_cast<int>(iBytes.size()));
  ioChecker.EndBlock();
  std::printf("%s\n", ioChecker.IsGood() ? "good" : ioChecker.GetViolation().mText.c_str());
}

}  // namespace

int main() {
  Ndo_AutoPtr<Vrad_Chunk> const chunk(Vrad_Chunk::New(Ndo_Object::kNotUndoable, false));
  Vrae_NoteWithDurationEvent const note(60, Time_TickLength(1920000), 100, 64);
  chunk->AddEvent(Vrad_NoteWithDurationExtendedEvent(Time_Tick(0), note, false));
  chunk->AddEvent(Vrad_ExtendedEvent(Time_Tick(0), Vrae_ControllerEvent(7, 90)));

  Host_StreamChecker checker;
  checker.AddClip(chunk.Get(), 0, 0);

  checker.Start(Time_Tick(0));
  CheckBlock(checker, {0xB0, 7, 90, 0x90, 60, 100});
  checker.CheckPosition(Time_Sample(kBlockSize));
  CheckBlock(checker, {});

  checker.Stop();
  CheckBlock(checker, {0xB0, 123, 0});  // "all notes off", which a receiver may ignore
}
// [readme end]
