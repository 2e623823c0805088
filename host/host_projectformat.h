// What the records of a project file hold, as far as its writer and its reader must agree.
#pragma once

#include <cmath>

#include "host/host_song.h"

// Contents, in the library's typed values; text is length:int32 and its bytes.
//   head   := format:int32 division:int32 announcedTracks:int32 tracks:int32 clips:int32
//   tempo  := count:int32 (tick:int64 beatsPerMinute:float64 track:int32)[count]
//   meters := count:int32 meter[count]
//   meter  := tick:int64 numerator:int32 denominator:int32 track:int32
//             clocksPerClick:int32 thirtySecondsPerBeat:int32
//   keys   := count:int32 (tick:int64 sharps:int32 isMinor:bool track:int32)[count]
//   track  := number:int32 end:int64 name:text
//   clip   := track:int32 channel:int32 chunk
//   last   := records:int32, this one included
// A later writer of the same version may append to any of them; a reader passes over that.
constexpr char const * kHost_ProjectHead = "vradHead";
constexpr char const * kHost_ProjectTempo = "vradTmpo";
constexpr char const * kHost_ProjectMeters = "vradMetr";
constexpr char const * kHost_ProjectKeys = "vradKeys";
constexpr char const * kHost_ProjectTrack = "vradTrck";
constexpr char const * kHost_ProjectClip = "vradClip";
constexpr char const * kHost_ProjectLast = "vradLast";

constexpr short kHost_ProjectVersion = 1;

constexpr int kHost_MaxProjectTracks = 0xffff;  // as many as a MIDI file has

/// What values may stand in a record. The writer refuses a song with others, the reader leaves
/// them out.
inline bool Host_IsProjectTick(Time_Tick iTick) {
  constexpr long long kMaxTick = 1ll << 60;
  return iTick.AsInt64() >= 0 && iTick.AsInt64() <= kMaxTick;
}
inline bool Host_IsProjectTrack(int iTrack) {
  return iTrack >= 0 && iTrack < kHost_MaxProjectTracks;
}
inline bool Host_IsProjectChannel(int iChannel) {
  return iChannel >= -1 && iChannel <= 15;
}
inline bool Host_IsProjectTempo(Host_TempoChange const & iChange) {
  return Host_IsProjectTick(iChange.mTime) && Host_IsProjectTrack(iChange.mTrack) &&
         std::isfinite(iChange.mBeatsPerMinute) && iChange.mBeatsPerMinute > 0;
}
inline bool Host_IsProjectMeter(Host_TimeSignature const & iMeter) {
  return Host_IsProjectTick(iMeter.mTime) && Host_IsProjectTrack(iMeter.mTrack) &&
         Host_IsTimeSignature(iMeter);
}
inline bool Host_IsProjectKey(Host_KeySignature const & iKey) {
  return Host_IsProjectTick(iKey.mTime) && Host_IsProjectTrack(iKey.mTrack) &&
         iKey.mNumSharps >= -7 && iKey.mNumSharps <= 7;
}
