#include "host/host_song.h"

#include <algorithm>

#include "foundation/time_convert.h"

namespace {

constexpr int kDefaultDivision = 480;

}  // namespace

Host_Song::Host_Song() : mHeader{1, 0, kDefaultDivision}, mTiming(kDefaultDivision) {}

Time_Tick Host_Song::GetEnd() const {
  long long end = 0;
  for (Host_MidiTrack const & track : mTracks)
    end = std::max(end, track.mEnd.AsInt64());
  return Time_Tick(end);
}

void Host_Song::FillTempoMap(Time_TempoMap & ioMap) const {
  ioMap.Reset(120.0);
  for (Host_TempoChange const & change : mTempoChanges) {
    ioMap.SetTempoAt(change.mTime, change.mBeatsPerMinute);
  }
}
