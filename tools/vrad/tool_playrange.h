// Which stretch of a song is played, how fast and how often.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/host_song.h"
#include "tools/vrad/tool_position.h"

/// The options as they were written.
struct Tool_PlayOptions {
  std::optional<std::string> mClip, mFrom, mTo, mSpeed, mPasses;
  bool mIsLooping;
};

/// What they mean, first without a song and then with one.
class Tool_PlayRange {
public:
  /// Fails: Tool_UsageError for what cannot be right with any song.
  explicit Tool_PlayRange(Tool_PlayOptions const & iOptions);

  /// Takes clips and bounds from a song and makes the tempo of the process that of the song, times
  /// the speed.
  /// Fails: Tool_UsageError for what cannot be right with this song.
  void Resolve(Host_Song const & iSong);

  // Needs: resolved.

  std::vector<int> const & GetClips() const { return mClips; }
  Time_Typed GetStart() const { return mStart; }
  Time_Typed GetEnd() const { return mEnd; }
  /// Samples of one pass.
  long long GetLength() const { return mLength; }
  /// How often the stretch is played; 0: until stopped.
  long long GetNumPasses() const { return mNumPasses; }
  /// Samples of all passes, at most the largest number; 0: until stopped.
  long long GetTotalLength() const;

private:
  void ResolveBounds(Host_Song const & iSong);
  void SetTempo(Host_Song const & iSong) const;

  std::optional<long long> mClip;
  std::optional<Tool_Position> mFrom, mTo;
  double mSpeed;
  long long mNumPasses;
  std::vector<int> mClips;
  Time_Typed mStart, mEnd;
  long long mLength = 0;
};
