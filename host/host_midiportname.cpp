#include <charconv>

#include "host/host_midiport.h"

namespace {

std::string ListPorts(std::vector<Host_MidiPortName> const & iPorts) {
  if (iPorts.empty()) return "; there are no ports";
  std::string result = "; there are:";
  for (size_t i = 0; i < iPorts.size(); ++i) {
    result += "\n  " + std::to_string(i) + "  " + iPorts[i].mName;
  }
  return result;
}

bool ParseNumber(std::string const & iText, size_t & oNumber) {
  char const * const end = iText.data() + iText.size();
  auto const [stop, error] = std::from_chars(iText.data(), end, oNumber);
  return error == std::errc() && stop == end;
}

}  // namespace

size_t Host_FindMidiPort(std::vector<Host_MidiPortName> const & iPorts, std::string const & iPort) {
  std::string const list = ListPorts(iPorts);
  size_t number = 0;
  if (ParseNumber(iPort, number)) {
    if (number < iPorts.size()) return number;
    throw Host_MidiPortError("no MIDI port has the number " + iPort + list);
  }
  std::vector<size_t> matching;
  for (size_t i = 0; i < iPorts.size(); ++i) {
    if (iPorts[i].mName == iPort) return i;
    if (iPorts[i].mName.find(iPort) != std::string::npos) matching.push_back(i);
  }
  if (matching.size() == 1) return matching.front();
  throw Host_MidiPortError((matching.empty() ? "no MIDI port is named '" + iPort + "'"
                                             : "several MIDI ports are named '" + iPort + "'") +
                           list);
}
