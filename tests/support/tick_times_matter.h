// For tests of what the coarse grid does.
#pragma once

#include "foundation/ticktimesmatter.h"

/// Tick times matter for the length of a scope.
class TickTimesMatterScope {
public:
  TickTimesMatterScope() { TickTimesMatter::SetActive(true); }
  TickTimesMatterScope(TickTimesMatterScope const &) = delete;
  TickTimesMatterScope & operator=(TickTimesMatterScope const &) = delete;
  ~TickTimesMatterScope() { TickTimesMatter::SetActive(false); }
};
