// vrad jump
#pragma once

#include "tools/vrad/tool_way.h"

namespace CLI {
class App;
}

/// The events that turn the state at one position into the state at another.
struct Tool_JumpCommand {
  Tool_WayOptions mWay;

  /// The options write to this object, which must outlive ioApp. Gives the command's part of it.
  CLI::App * AddTo(CLI::App & ioApp);
  /// Gives the exit status.
  /// Fails: Tool_UsageError, Tool_InputError.
  int Run() const;
};
