#include "tools/vrad/tool_terminal.h"

#include <csignal>

#include <io.h>

bool Tool_IsErrorTerminal() {
  return _isatty(2) != 0;
}

std::vector<int> Tool_GetEndingSignals() {
  return {SIGINT, SIGTERM};
}

bool Tool_IsOutputTerminal() {
  return _isatty(1) != 0;
}
