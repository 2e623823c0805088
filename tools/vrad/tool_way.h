// From one position of a file to another: the options that the commands of such a way share.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/time_typed.h"
#include "host/host_song.h"
#include "tools/vrad/tool_position.h"

namespace CLI {
class App;
}

/// The options as they were written.
struct Tool_WayOptions {
  std::string mFile;
  std::string mFrom, mTo;
  std::optional<std::string> mClip;
  std::string mAs = "text";

  /// The options write to this object, which must outlive ioCommand.
  void AddTo(CLI::App & ioCommand, std::string const & iFromHelp, std::string const & iToHelp);
};

/// What they mean, first without the file and then with it.
class Tool_Way {
public:
  /// Fails: Tool_UsageError for what cannot be right with any file.
  explicit Tool_Way(Tool_WayOptions const & iOptions);

  /// Reads the file, and takes bars and clips from it.
  /// Fails: Tool_InputError; Tool_UsageError for what cannot be right with this file.
  Host_Song Load();

  // Needs: loaded.
  Time_Typed GetFrom() const { return mFrom; }
  Time_Typed GetTo() const { return mTo; }
  std::vector<int> const & GetClips() const { return mClips; }

private:
  std::string mFile;
  Tool_Position mFromAsked, mToAsked;
  std::optional<long long> mClipAsked;
  Time_Typed mFrom, mTo;
  std::vector<int> mClips;
};
