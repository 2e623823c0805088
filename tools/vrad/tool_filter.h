// The kinds of events that a command line asks for.
#pragma once

#include <string>

#include "vrad/vrae_filter.h"

/// From a list such as "notes,bend,cc7": notes, bend, program, mono, poly, sysex, cc (all
/// controllers) and cc1 to cc119.
/// Fails: Tool_UsageError that begins with iOption.
Vrae_Filter Tool_ParseFilter(std::string const & iOption, std::string const & iText);
