#include "tools/vrad/tool_terminal.h"

#include <io.h>

bool Tool_IsErrorTerminal() {
  return _isatty(2) != 0;
}
