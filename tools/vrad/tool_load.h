// Opens the file that a command works on.
#pragma once

#include <string>

#include "host/host_midifile.h"

/// Reads a MIDI file and makes its tempo that of the process. What could not be read is told on the
/// standard error stream, a line each.
/// Fails: Tool_InputError when nothing can be read.
Host_MidiFile Tool_LoadFile(std::string const & iPath);

/// kStatus_BadInput if part of the file could not be read.
int Tool_GetStatus(Host_MidiFile const & iFile);
