// vrad scrub
#pragma once

#include "tools/vrad/tool_way.h"

namespace CLI {
class App;
}

/// The transitions of notes and bends that a dragged position passes.
struct Tool_ScrubCommand {
  Tool_WayOptions mWay;
  bool mIsGoingBack = false;

  /// The options write to this object, which must outlive ioApp. Gives the command's part of it.
  CLI::App * AddTo(CLI::App & ioApp);
  /// Gives the exit status.
  /// Fails: Tool_UsageError, Tool_InputError.
  int Run() const;
};
