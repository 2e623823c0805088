// Where FluidSynth was not found: says so.
#include "host/host_wavewriter.h"

namespace {

[[noreturn]] void Fail() {
  throw Host_SoundError("this program was built without sound: FluidSynth was not found");
}

}  // namespace

class Host_WaveWriter::Synthesizer {};

struct Host_WaveWriter::Rendering {};

std::string Host_FindSoundFont() {
  Fail();
}

Host_WaveWriter::Host_WaveWriter(std::string const &, std::string const &) {
  Fail();
}

Host_WaveWriter::~Host_WaveWriter() = default;
void Host_WaveWriter::BeginBlock(int) {}
void Host_WaveWriter::ReceiveMessage(Host_WireMessage const &) {}
void Host_WaveWriter::EndBlock() {}
void Host_WaveWriter::Finish() {}

bool Host_WaveWriter::HasFailed() const {
  return true;
}

long long Host_WaveWriter::GetNumFrames() const {
  return 0;
}

long long Host_WaveWriter::GetNumClipped() const {
  return 0;
}
