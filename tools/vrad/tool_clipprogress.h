// How far a work on clips is.
#pragma once

#include <cstddef>
#include <vector>

#include "host/host_song.h"
#include "tools/vrad/tool_progress.h"

/// Shows a bar while clips are printed, each of which counts by its notes.
class Tool_ClipProgress {
public:
  /// The song must outlive it.
  explicit Tool_ClipProgress(Host_Song const & iSong) : mSong(iSong) {}

  /// These clips will be printed. Without this call there is no bar.
  void Expect(std::vector<int> const & iClips);
  void BeginClip(int iClip);
  /// So many of so many parts of the clip are done.
  void Show(size_t iNumDone, size_t iNumParts);

private:
  Host_Song const & mSong;
  Tool_ProgressBar mBar{true};
  size_t mNumNotes = 0;        // of all clips
  size_t mNumNotesBefore = 0;  // of the clips before the present one
  size_t mNumNotesOfClip = 0;
};
