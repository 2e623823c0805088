// The version of the library. It is written here and nowhere else: the build reads this file.
#pragma once

#include "foundation/vrad_export.h"

/// The version that the host is compiled against, as major.minor.patch.
#define VRAD_VERSION "0.1.0"

/// The version of the library that the host runs with, in the same form. Thread: any.
VRAD_EXPORT char const * Vrad_GetVersion();
