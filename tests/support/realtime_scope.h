// Proves that code is fit for the audio thread: counts what such code must not do.
#pragma once

#include <string>

/// What a real-time thread must leave alone.
enum class RealtimeViolation : int {
  kHeap,    // the malloc family, operator new and delete
  kLock,    // taking a mutex, a reader-writer lock, a semaphore or a spin lock
  kWait,    // sleeping, yielding, waiting for a condition, a thread or a futex
  kSystem,  // files, streams and other system calls
  kThrow
};

/// Counts the violations of the thread that made it, from construction to destruction. Scopes nest:
/// the inner one counts, then the outer one goes on. Link the target `vrad_realtime_harness`.
class RealtimeScope {
public:
  RealtimeScope();
  ~RealtimeScope();
  RealtimeScope(RealtimeScope const &) = delete;
  RealtimeScope & operator=(RealtimeScope const &) = delete;

  int GetNumViolations() const;
  int GetNumViolations(RealtimeViolation iKind) const;

  /// The function that was called first; null if none was.
  char const * GetFirst() const;

  /// Whether this build can see violations of that kind. A sanitizer has the functions for itself:
  /// there only the heap can be seen.
  static bool CanSee(RealtimeViolation iKind);

  /// Called by whatever stands in the way of the forbidden functions.
  static void Note(RealtimeViolation iKind, char const * iFunction);

private:
  static constexpr int kNumKinds = 5;

  RealtimeScope * mOuterP;
  int mNumViolations[kNumKinds];
  char const * mFirst;
};

/// Runs `iBody` in a scope. Empty if it kept the rules, else how often it broke them and what it
/// called first: `EXPECT_EQ("", RealtimeViolationsOf([&] { ... }));`
template <class F>
std::string RealtimeViolationsOf(F && iBody) {
  int num = 0;
  char const * first = nullptr;
  {
    RealtimeScope const scope;
    iBody();
    num = scope.GetNumViolations();
    first = scope.GetFirst();
  }
  if (num == 0) return std::string();
  return std::to_string(num) + " violations, first " + first;
}
