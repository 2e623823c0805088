// What bulk edits look at, set for the length of a scope.
#pragma once

#include <utility>

#include "foundation/time_convert.h"
#include "vrad/vrad_notelist.h"

/// Merging avoids overlaps for the length of a scope.
class AvoidOverlapsScope {
public:
  AvoidOverlapsScope() { gAvoidOverlapsAndDuplicates = true; }
  AvoidOverlapsScope(AvoidOverlapsScope const &) = delete;
  AvoidOverlapsScope & operator=(AvoidOverlapsScope const &) = delete;
  ~AvoidOverlapsScope() { gAvoidOverlapsAndDuplicates = false; }
};

/// Another coarse grid for the length of a scope.
class GridScope {
public:
  explicit GridScope(unsigned long long iGrid)
      : mFormer(std::exchange(Time_Globals::sCoarseInternalTickGrid, iGrid)) {}
  GridScope(GridScope const &) = delete;
  GridScope & operator=(GridScope const &) = delete;
  ~GridScope() { Time_Globals::sCoarseInternalTickGrid = mFormer; }

private:
  unsigned long long const mFormer;
};
