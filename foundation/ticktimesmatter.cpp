#include "foundation/ticktimesmatter.h"

#include <atomic>

namespace {
constinit std::atomic<bool> sActive(false);
}

bool TickTimesMatter::Active() {
  return sActive.load(std::memory_order_relaxed);
}

void TickTimesMatter::SetActive(bool iActive) {
  sActive.store(iActive, std::memory_order_relaxed);
}
