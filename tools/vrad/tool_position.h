// Positions and lengths as they are written on the command line.
#pragma once

#include <string>
#include <variant>

#include "foundation/time_typed.h"
#include "host/host_midibars.h"

/// A position: in ticks or samples ("960000t", "48000s"; "12.5sec" is the nearest sample), or a
/// place in bars ("3:1", "3:2:480000") until a file says where that is.
typedef std::variant<Time_Typed, Host_BarPosition> Tool_Position;

/// The forms, as the help of a command tells them.
constexpr char const * kTool_PositionHelp =
    "POS is 960000t (ticks, 960000 to the quarter note), 48000s (samples),\n"
    "12.5sec, or BAR:BEAT[:TICK] with bars and beats from 1.";

/// Fails: Tool_UsageError that begins with iOption.
Tool_Position Tool_ParsePosition(std::string const & iOption, std::string const & iText);

/// "960000t", "48000s" or "12.5sec", with a minus in front or without.
/// Fails: Tool_UsageError that begins with iOption.
Time_TypedLength Tool_ParseLength(std::string const & iOption, std::string const & iText);

/// Fails: Tool_UsageError that begins with iOption, for a place that the bars do not have.
Time_Typed Tool_ResolvePosition(std::string const & iOption, Tool_Position const & iPosition,
                                Host_BarMap const & iBars);
