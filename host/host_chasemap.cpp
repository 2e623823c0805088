#include "host/host_chasemap.h"

#include "vrad/vrae_substream.h"

namespace {

constexpr int kNumPitches = 128;

Vrae_ChaseTrackerMap * MakeMap() {
  auto * const mapP = new Vrae_ChaseTrackerMap;
  for (int pitch = 0; pitch < kNumPitches; ++pitch)
    mapP->AppendReleasingEntry(Vrae_SubStream::PolyPressure(static_cast<signed char>(pitch)), 0);
  mapP->DoneAddingChasingEntries();
  return mapP;
}

}  // namespace

Vrae_ChaseTrackerMap const & Host_GetChaseMap() {
  static Vrae_ChaseTrackerMap const * const sMapP = MakeMap();
  return *sMapP;
}

int Host_GetParameterRank(int iControllerNumber) {
  for (int i = 0; i < kHost_NumParameterControllers; ++i)
    if (kHost_ParameterControllers[i] == iControllerNumber) return i + 1;
  return 0;
}
