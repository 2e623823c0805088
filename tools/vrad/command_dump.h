// vrad dump
#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

/// What the clips of a file say about themselves.
struct Tool_DumpCommand {
  std::string mFile;
  std::optional<std::string> mClip;
  std::string mAs = "text";

  /// The options write to this object, which must outlive ioApp. Gives the command's part of it.
  CLI::App * AddTo(CLI::App & ioApp);
  /// Gives the exit status.
  /// Fails: Tool_UsageError, Tool_InputError.
  int Run() const;
};
