// What a receiver of a clip is left with at a position.
#pragma once

#include "foundation/time_typed.h"
#include "host/host_notepool.h"
#include "vrad/vrad_chunk.h"
#include "vrad/vrae_chasetracker.h"
#include "vrad/vrae_trackstate.h"

/// The values in force at a position and the notes that sound there.
/// Needs: a Host_NotePool.
struct Tool_ClipState {
  Tool_ClipState(Vrad_Chunk const & iChunk, Time_Typed iPosition);

  Vrae_ChaseTracker mValues;  // of all controllers, bend, both kinds of pressure, and the program
  Vrae_TrackState mNotes;     // with the times of their ends
};
