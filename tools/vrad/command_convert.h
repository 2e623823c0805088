// vrad convert
#pragma once

#include <string>

namespace CLI {
class App;
}

/// Turns MIDI files into projects and projects into MIDI files.
struct Tool_ConvertCommand {
  std::string mIn;
  std::string mOut;

  /// The options write to this object, which must outlive ioApp. Gives the command's part of it.
  CLI::App * AddTo(CLI::App & ioApp);
  /// Gives the exit status.
  /// Fails: Tool_UsageError, Tool_InputError.
  int Run() const;
};
