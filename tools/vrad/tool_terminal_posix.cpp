#include "tools/vrad/tool_terminal.h"

#include <csignal>

#include <unistd.h>

bool Tool_IsErrorTerminal() {
  return isatty(STDERR_FILENO) == 1;
}

std::vector<int> Tool_GetEndingSignals() {
  return {SIGINT, SIGTERM, SIGHUP};
}

bool Tool_IsOutputTerminal() {
  return isatty(STDOUT_FILENO) == 1;
}
