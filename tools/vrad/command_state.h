// vrad state
#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

/// Controller values and sounding notes at a position.
struct Tool_StateCommand {
  std::string mFile;
  std::string mAt;
  std::optional<std::string> mClip;
  std::string mAs = "text";

  /// The options write to this object, which must outlive ioApp. Gives the command's part of it.
  CLI::App * AddTo(CLI::App & ioApp);
  /// Gives the exit status.
  /// Fails: Tool_UsageError, Tool_InputError.
  int Run() const;
};
