#include "tools/vrad/tool_interrupt.h"

#include <csignal>

#include "tools/vrad/tool_terminal.h"

namespace {

std::sig_atomic_t volatile sIsRequested = 0;

extern "C" void NoteRequest(int iSignal) {
  sIsRequested = 1;
  std::signal(iSignal, SIG_DFL);
}

}  // namespace

Tool_InterruptGuard::Tool_InterruptGuard() {
  sIsRequested = 0;
  for (int signal : Tool_GetEndingSignals())
    mFormer.push_back(std::signal(signal, NoteRequest));
}

Tool_InterruptGuard::~Tool_InterruptGuard() {
  std::vector<int> const signals = Tool_GetEndingSignals();
  for (size_t i = 0; i < signals.size(); ++i)
    std::signal(signals[i], mFormer[i]);
}

bool Tool_InterruptGuard::IsRequested() const {
  return sIsRequested != 0;
}
