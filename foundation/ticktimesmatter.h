// Whether the project keeps note times on the tick grid.
#pragma once

#include "foundation/vrad_export.h"

/// The switch that stores and retrievals ask. Off at start.
/// While on, tick positions written into a store that snaps go to the coarse grid; while off, tick
/// ranges of a retrieval are first made sample-exact.
/// Thread: any, without a lock; a change takes effect for the calls that follow.
class VRAD_EXPORT TickTimesMatter {
public:
  static bool Active();
  static void SetActive(bool iActive);
};
