// The clips of a file under the commands of `vrad edit`.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/host_song.h"
#include "tools/vrad/edit_parse.h"

/// What a command did to one clip.
struct Edit_ClipReport {
  int mTrack;
  int mChannel;  // -1: none
  std::string mText;
};

/// Applies commands to the clips of a file, each as one step of the process's undo manager.
/// Thread: one, as the chunks.
class Edit_Session {
public:
  /// Works on the clip iClip alone, or on all without one. Needs: ioFile outlives this.
  Edit_Session(Host_Song & ioFile, std::optional<int> iClip);

  /// Gives what changed, clip by clip.
  /// Fails: Tool_UsageError for a position that the file does not have and for an undo or redo
  /// without a step; Tool_InputError for a file to merge. The clips are as before.
  std::vector<Edit_ClipReport> Apply(Edit_Command const & iCommand);

  /// Takes out the clips that merging made and an undo left empty.
  void RemoveEmptyClips();

private:
  struct Range {
    Time_Typed mFrom, mTo;
  };

  void Step(Edit_Command const & iCommand);
  void Do(Edit_Merge const & iEdit);
  void Do(Edit_EraseRange const & iEdit);
  void Do(Edit_CopyRange const & iEdit);
  void Do(Edit_Nudge const & iEdit);
  void Do(Edit_EraseStream const & iEdit);
  void Do(Edit_Quantize const & iEdit);
  void Do(Edit_Undo const & iEdit);
  void Do(Edit_Redo const & iEdit);

  Range Resolve(Edit_Range const & iRange) const;
  std::vector<Vrad_Chunk *> GetChunks() const;
  Vrad_Chunk * FindClip(int iTrack, int iChannel) const;
  void LoadTake(std::string const & iPath);
  void MakeClipsForTake();

  Host_Song & mFile;
  Host_BarMap mBars;
  Vrad_Chunk * mOnly;                     // null: every clip
  Host_Song mTake;                        // what a merge brings
  std::vector<Vrad_Chunk const *> mMade;  // for takes
};
