// vrad play
#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

/// Plays a file to a MIDI port, or renders its sound to a WAV file.
struct Tool_PlayCommand {
  std::string mFile;
  std::optional<std::string> mFrom, mTo, mClip, mPort, mWave, mSoundFont, mSpeed, mPasses;
  bool mIsLooping = false;
  bool mIsListingPorts = false;

  /// The options write to this object, which must outlive ioApp. Gives the command's part of it.
  CLI::App * AddTo(CLI::App & ioApp);
  /// Gives the exit status.
  /// Fails: Tool_UsageError, Tool_InputError, what ports and sound throw.
  int Run() const;
};
