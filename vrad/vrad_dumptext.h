// Times and lengths in the texts that stores print about themselves.
#pragma once

#include <string>

#include "foundation/time_typed.h"

/// Count and suffix, "960000t" or "24000s", of a position or a length.
template <class T>
std::string Vrad_DumpText(T const & iTime) {
  return std::to_string(iTime.AsInt64()) + (iTime.GetType() == Time_eType_Samples ? "s" : "t");
}
