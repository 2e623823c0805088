// How many events of which kind a clip holds.
#pragma once

#include <array>

#include "vrad/vrad_chunk.h"
#include "vrad/vrae_event.h"

/// Counted through the clip's retrieval over all times.
struct Tool_Tally {
  explicit Tool_Tally(Vrad_Chunk const & iChunk);

  long long mNumNotes = 0;
  long long mNumControllers = 0;
  long long mNumBends = 0;
  long long mNumPrograms = 0;
  long long mNumPressures = 0;      // of the channel
  long long mNumPolyPressures = 0;  // of single pitches
  long long mNumSysexes = 0;
  std::array<bool, 128> mControllers{};  // those in use, by number

private:
  void Count(Vrae_Event const & iEvent);
};
