// vrad wire
#pragma once

#include <string>

#include "tools/vrad/tool_range.h"

namespace CLI {
class App;
}

/// The messages that a player sends, each with its place.
struct Tool_WireCommand {
  std::string mFile;
  Tool_RangeOptions mRange;
  std::string mAs = "text";

  /// The options write to this object, which must outlive ioApp. Gives the command's part of it.
  CLI::App * AddTo(CLI::App & ioApp);
  /// Gives the exit status.
  /// Fails: Tool_UsageError, Tool_InputError.
  int Run() const;
};
