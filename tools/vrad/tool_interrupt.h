// Lets long work end in good order when the user stops it.
#pragma once

#include <vector>

/// While it lives, a request of the system to end (Ctrl-C and the like) is noted instead of obeyed.
/// A second one is obeyed.
/// Lives: one at a time.
class Tool_InterruptGuard {
public:
  Tool_InterruptGuard();
  ~Tool_InterruptGuard();
  Tool_InterruptGuard(Tool_InterruptGuard const &) = delete;
  Tool_InterruptGuard & operator=(Tool_InterruptGuard const &) = delete;

  bool IsRequested() const;

private:
  std::vector<void (*)(int)> mFormer;  // what the signals did before
};
