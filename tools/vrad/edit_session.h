// The clips of a file under the commands of `vrad edit`.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/host_song.h"
#include "tools/vrad/edit_difference.h"
#include "tools/vrad/edit_parse.h"

/// What a command did to one clip.
struct Edit_ClipReport {
  int mTrack;
  int mChannel;  // -1: none
  Edit_Difference mDifference;
};

/// Applies commands to the clips of a file, each as one step that can be taken back: also one that
/// changed nothing.
/// Thread: one, as the chunks. Needs: no other steps in the process's undo manager.
class Edit_Session {
public:
  typedef std::vector<Edit_ClipReport> Reports;

  /// Works on the clip iClip alone, or on all without one. Needs: ioFile outlives this.
  Edit_Session(Host_Song & ioFile, std::optional<int> iClip);

  /// Gives what changed, clip by clip.
  /// Fails: Tool_UsageError that quotes the command, for a position that the file does not have,
  /// for what would lie beyond the limits of time and for an undo or redo without a step;
  /// Tool_InputError for a file to merge. The session is then at its end.
  Reports Apply(Edit_Command const & iCommand);

  /// Makes the file ready to be saved: takes out the clips and tracks that merging made and that
  /// are empty again, and lets no track end before its contents.
  /// Fails: Tool_UsageError for contents that a project cannot hold.
  void Finish();

  /// Whether part of a file to merge could not be read.
  bool IsTakeLossy() const { return mIsTakeLossy; }

private:
  struct Range {
    Time_Typed mFrom, mTo;
  };
  // What was moved in one clip, and what came of it.
  struct Move {
    Edit_Contents mPart, mMoved;
  };
  // Of a command that moves, one for each clip that it works on; of others none.
  typedef std::vector<Move> Moves;
  struct Step {
    Reports mReports;
    bool mIsRecorded;  // by the undo manager, which passes over what changes nothing
  };

  template <class TEdit>
  Reports Perform(TEdit const & iEdit);
  Reports Perform(Edit_Undo const & iEdit);
  Reports Perform(Edit_Redo const & iEdit);

  Moves Do(Edit_Merge const & iEdit);
  Moves Do(Edit_EraseRange const & iEdit);
  Moves Do(Edit_CopyRange const & iEdit);
  Moves Do(Edit_Nudge const & iEdit);
  Moves Do(Edit_EraseStream const & iEdit);
  Moves Do(Edit_Quantize const & iEdit);

  std::vector<Edit_Contents> ReadContents() const;
  Reports Compare(std::vector<Edit_Contents> const & iBefore, Moves const & iMoves) const;
  Range Resolve(Edit_Range const & iRange) const;
  std::vector<Host_Clip const *> GetClips() const;
  void LoadTake(std::string const & iPath);
  void MakeClipsForTake();
  void ExtendTrack(Host_Clip const & iClip);

  Host_Song & mFile;
  Host_BarMap mBars;
  std::optional<size_t> mOnly;  // none: every clip
  size_t const mNumTracks;      // without what takes brought
  std::vector<Step> mSteps;     // those taken back are the last
  size_t mNumDone = 0;          // of them are in force
  Host_Song mTake;              // what a merge brings
  bool mIsTakeLossy = false;
  std::vector<Vrad_Chunk const *> mMade;  // for takes
};
