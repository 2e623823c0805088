// Where RtMidi was not found: says so.
#include "host/host_midiport.h"

namespace {

[[noreturn]] void Fail() {
  throw Host_MidiPortError("this program was built without MIDI ports: RtMidi was not found");
}

}  // namespace

class Host_MidiPort::Sender {};

std::vector<Host_MidiPortName> Host_ListMidiPorts() {
  Fail();
}

Host_MidiPort::Host_MidiPort(std::string const &, std::string const &) {
  Fail();
}

Host_MidiPort::~Host_MidiPort() = default;
void Host_MidiPort::Close() {}
void Host_MidiPort::BeginBlock(int) {}
void Host_MidiPort::ReceiveMessage(Host_WireMessage const &) {}

Host_MidiPortName const & Host_MidiPort::GetName() const {
  Fail();
}

long long Host_MidiPort::GetNumLost() const {
  return 0;
}
