// vrad edit
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

/// Edits the clips of a file, one undo step a command, and saves what comes of it.
struct Tool_EditCommand {
  std::string mIn;
  std::string mOut;
  std::vector<std::string> mCommands;
  std::optional<std::string> mClip;

  /// The options write to this object, which must outlive ioApp. Gives the command's part of it.
  CLI::App * AddTo(CLI::App & ioApp);
  /// Gives the exit status. Nothing is saved unless every command worked.
  /// Fails: Tool_UsageError, Tool_InputError.
  int Run() const;
};
