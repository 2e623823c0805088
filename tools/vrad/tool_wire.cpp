#include "tools/vrad/tool_wire.h"

#include <algorithm>

namespace {

Vrae_Event MakeBend(signed char iLow, signed char iHigh) {
  return Vrae_PitchBendEvent(static_cast<short>((iLow | iHigh << 7) - 8192));
}

Vrae_Event MakeProgram(signed char iProgram) {
  Vrae_ProgramEvent event(iProgram, 0);
  event.SetMSBBankEnable(false);
  event.SetLSBBankEnable(false);
  return event;
}

Vrae_Event MakeSysex(std::span<unsigned char const> iBytes) {
  return Vrae_SysexEvent(static_cast<int>(iBytes.size()) - 2, iBytes.data() + 1);
}

signed char GetData(std::span<unsigned char const> iBytes, size_t iIndex) {
  return iIndex < iBytes.size() ? static_cast<signed char>(iBytes[iIndex] & 0x7f)
                                : static_cast<signed char>(0);
}

// The event that the bytes stand for.
Vrae_Event MakeEvent(std::span<unsigned char const> iBytes) {
  signed char const first = GetData(iBytes, 1);
  signed char const second = GetData(iBytes, 2);
  switch (iBytes[0] & 0xf0) {
  case 0x80:
    return Vrae_NoteOffEvent(first, second);
  case 0x90:  // velocity 0 is a release at the usual velocity
    if (second == 0) return Vrae_NoteOffEvent(first, 64);
    return Vrae_NoteOnEvent(first, second);
  case 0xa0:
    return Vrae_PolyPressureEvent(first, second);
  case 0xb0:
    return Vrae_ControllerEvent(first, second);
  case 0xc0:
    return MakeProgram(first);
  case 0xd0:
    return Vrae_MonoPressureEvent(first);
  case 0xe0:
    return MakeBend(first, second);
  default:
    return MakeSysex(iBytes);
  }
}

bool IsBankSelect(std::span<unsigned char const> iBytes) {
  return (iBytes[0] & 0xf0) == 0xb0 && (iBytes[1] == 0 || iBytes[1] == 32);
}

}  // namespace

bool Tool_IsWanted(Vrae_Filter const & iFilter, Tool_WireMessage const & iMessage) {
  if (IsBankSelect(iMessage.mBytes)) return iFilter.Get(Vrae_Filter::eDataType_Program);
  Vrae_Event event = MakeEvent(iMessage.mBytes);
  return iFilter.FilterEvent(&event);
}

void Tool_PrintWireAsJSON(Tool_Output & ioOut, Tool_EventSource const & iSource,
                          Tool_WireMessage const & iMessage) {
  Tool_PrintSourceAsJSON(ioOut, iSource, iMessage.mTime);
  ioOut.Print(",\"bytes\":\"");
  Tool_PrintBytes(ioOut, iMessage.mBytes, iMessage.mBytes.size());
  ioOut.Print("\"}}\n");
}

void Tool_PrintWireAsText(Tool_Output & ioOut, Host_BarMap const & iBars,
                          Tool_WireMessage const & iMessage) {
  constexpr size_t kMaxBytes = 3;
  std::span<unsigned char const> const bytes = iMessage.mBytes;
  Tool_PrintPlace(ioOut, iBars, iMessage.mTime);
  Tool_PrintBytes(ioOut, bytes, kMaxBytes);
  // As wide as three bytes; more of them are shown by the description.
  size_t const width = std::min(bytes.size(), kMaxBytes) * 3 - 1;
  ioOut.Print("{:{}}", bytes.size() > kMaxBytes ? ".." : "", kMaxBytes * 3 + 3 - width);
  Tool_DescribeEvent(ioOut, MakeEvent(bytes));
  ioOut.Print("\n");
}
