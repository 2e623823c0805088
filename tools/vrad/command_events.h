// vrad events
#pragma once

#include <string>

#include "tools/vrad/tool_range.h"

namespace CLI {
class App;
}

/// The sorted events of a time range, as the library hands them out.
struct Tool_EventsCommand {
  std::string mFile;
  Tool_RangeOptions mRange;
  std::string mAs = "text";
  std::string mList = "playback";

  /// The options write to this object, which must outlive ioApp. Gives the command's part of it.
  CLI::App * AddTo(CLI::App & ioApp);
  /// Gives the exit status.
  /// Fails: Tool_UsageError, Tool_InputError.
  int Run() const;
};
