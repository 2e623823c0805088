// What the records of a project file hold, as far as its writer and its reader must agree.
#pragma once

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
