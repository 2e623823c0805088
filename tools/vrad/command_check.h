// vrad check
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

/// Reads whole files and says what is wrong with them.
struct Tool_CheckCommand {
  std::vector<std::string> mFiles;

  /// The options write to this object, which must outlive ioApp. Gives the command's part of it.
  CLI::App * AddTo(CLI::App & ioApp);
  /// Gives the exit status: bad input if anything is wrong with any file.
  /// Fails: Tool_InputError when nothing can be printed.
  int Run() const;
};
