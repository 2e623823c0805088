#include "tools/vrad/tool_terminal.h"

#include <unistd.h>

bool Tool_IsErrorTerminal() {
  return isatty(STDERR_FILENO) == 1;
}
