// Under a sanitizer, which has replaced the heap already, its hooks tell of each call; the thread
// sanitizer leaves aligned_alloc out.
#include <cstddef>

#include "support/realtime_interpose.h"

extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*iMallocHook)(void const volatile *,
                                                                             size_t),
                                                         void (*iFreeHook)(void const volatile *));

namespace {

void NoteMalloc(void const volatile *, size_t) {
  RealtimeScope::Note(RealtimeViolation::kHeap, "malloc");
}

void NoteFree(void const volatile *) {
  RealtimeScope::Note(RealtimeViolation::kHeap, "free");
}

[[maybe_unused]] int const sInstalled =
    __sanitizer_install_malloc_and_free_hooks(&NoteMalloc, &NoteFree);

}  // namespace

bool RealtimeInterposeCanSee(RealtimeViolation iKind) {
  return iKind == RealtimeViolation::kHeap;
}
