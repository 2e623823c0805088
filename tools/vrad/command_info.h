// vrad info
#pragma once

#include <string>

namespace CLI {
class App;
}

/// What a file holds, and what of it has no place in a clip.
struct Tool_InfoCommand {
  std::string mFile;

  /// The options write to this object, which must outlive ioApp. Gives the command's part of it.
  CLI::App * AddTo(CLI::App & ioApp);
  /// Gives the exit status.
  /// Fails: Tool_InputError.
  int Run() const;
};
