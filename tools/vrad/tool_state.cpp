#include "tools/vrad/tool_state.h"

#include "vrad/vrae_chasetrackermap.h"

namespace {

// The map follows everything but the pressures of single pitches.
void AddPolyPressures(Vrae_ChaseTrackerMap & ioMap) {
  for (int pitch = 0; pitch < 128; ++pitch) {
    ioMap.AppendReleasingEntry(Vrae_SubStream::PolyPressure(static_cast<signed char>(pitch)), 0);
  }
  ioMap.DoneAddingChasingEntries();
}

Vrae_ChaseTrackerMap const & GetMap() {
  struct Map {
    Map() { AddPolyPressures(mMap); }
    Vrae_ChaseTrackerMap mMap;
  };
  static Map const sMap;
  return sMap.mMap;
}

}  // namespace

Tool_ClipState::Tool_ClipState(Vrad_Chunk const & iChunk, Time_Typed iPosition)
    : mValues(&GetMap(), false) {
  Time_Typed const first = Time_Typed::MinTime(Time_eType_Ticks);
  Time_Typed const last = Time_Typed::MaxTime(Time_eType_Ticks);
  iChunk.GetChaseStateAtTime(&mValues, iPosition, first);
  iChunk.AddNoteStateAtTime(&mNotes, iPosition, first, last, Time_TypedLength(), false);
}
