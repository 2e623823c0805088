// One MIDI message as it leaves a player, as a line of text or as a JSON object.
#pragma once

#include <span>

#include "foundation/time_typed.h"
#include "host/host_midibars.h"
#include "tools/vrad/tool_event.h"
#include "tools/vrad/tool_output.h"
#include "vrad/vrae_filter.h"

struct Tool_WireMessage {
  Time_Typed mTime;
  std::span<unsigned char const> mBytes;  // a whole message, at least one byte
};

/// Whether the filter lets through what the message stands for. Bank select goes with the program.
bool Tool_IsWanted(Vrae_Filter const & iFilter, Tool_WireMessage const & iMessage);

/// One object and a line end, without blanks but those between the bytes.
void Tool_PrintWireAsJSON(Tool_Output & ioOut, Tool_EventSource const & iSource,
                          Tool_WireMessage const & iMessage);

/// One line: bar, time, bytes, what it is.
void Tool_PrintWireAsText(Tool_Output & ioOut, Host_BarMap const & iBars,
                          Tool_WireMessage const & iMessage);
