// vrad picture
#pragma once

#include <optional>
#include <string>

#include "host/host_picture.h"

namespace CLI {
class App;
}

/// Draws the clips of a file.
struct Tool_PictureCommand {
  std::string mFile, mOut;
  std::optional<std::string> mClip, mFrom, mTo;
  int mWidth = Host_Picture().mWidth;
  int mHeight = 0;

  /// The options write to this object, which must outlive ioApp. Gives the command's part of it.
  CLI::App * AddTo(CLI::App & ioApp);
  /// Gives the exit status.
  /// Fails: Tool_UsageError, Tool_InputError.
  int Run() const;
};
