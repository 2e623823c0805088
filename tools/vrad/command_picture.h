// vrad picture
#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

/// Draws the clips of a file.
struct Tool_PictureCommand {
  std::string mFile, mOut;
  std::optional<std::string> mClip, mFrom, mTo, mWidth, mHeight;

  /// The options write to this object, which must outlive ioApp. Gives the command's part of it.
  CLI::App * AddTo(CLI::App & ioApp);
  /// Gives the exit status.
  /// Fails: Tool_UsageError, Tool_InputError.
  int Run() const;
};
