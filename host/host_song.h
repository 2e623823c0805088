// What a file of music holds, as a host has it in memory, whichever form of file it came from.
#pragma once

#include <string>
#include <vector>

#include "foundation/time_typed.h"
#include "host/host_midibars.h"
#include "host/host_midiparser.h"
#include "host/host_midireport.h"
#include "host/host_miditiming.h"
#include "ndo/ndo_ptr.h"
#include "vrad/vrad_chunk.h"

class Time_TempoMap;

/// A chunk and where in the file it comes from. Gives the chunk to the undo manager at its end.
struct Host_Clip {
  int mTrack;    // from 0, in file order
  int mChannel;  // 0 to 15; -1: the clip has none
  Ndo_AutoPtr<Vrad_Chunk> mChunk;
};

struct Host_MidiTrack {
  std::string mName;  // the bytes of the first track name, in whatever encoding; may be empty
  Time_Tick mEnd;
};

struct Host_TempoChange {
  Time_Tick mTime;
  double mBeatsPerMinute;  // quarter notes; finite and positive
  int mTrack = 0;          // where it stands; it counts for all tracks
};

/// For the track that it stands in.
struct Host_KeySignature {
  Time_Tick mTime;
  int mNumSharps;  // -7 to 7; below 0: flats
  bool mIsMinor;
  int mTrack = 0;
};

enum Host_EFileKind : int { kFileKind_Midi = 0, kFileKind_Project = 1 };

/// The music of one file and what was noticed while reading it. Can be moved, not copied.
/// Thread: one at a time, as the chunks.
struct Host_Song {
  /// Empty, of format 1, at 480 ticks to the quarter note.
  Host_Song();

  Host_EFileKind mKind = kFileKind_Midi;  // of the file that it came from
  Host_MidiHeader mHeader;                // a project keeps that of the MIDI file it was made of
  Host_MidiTiming mTiming;                // by mHeader.mDivision
  std::vector<Host_MidiTrack> mTracks;
  std::vector<Host_Clip> mClips;                    // by track, then channel, -1 last
  std::vector<Host_TempoChange> mTempoChanges;      // rising; may be empty: 120 throughout
  std::vector<Host_TimeSignature> mTimeSignatures;  // rising; may be empty: 4/4 throughout
  std::vector<Host_KeySignature> mKeySignatures;    // rising, equal times by track
  Host_MidiReport mReport;

  /// The latest end of a track.
  Time_Tick GetEnd() const;

  /// Sets ioMap to the file's tempo alone: 120 up to the first change.
  void FillTempoMap(Time_TempoMap & ioMap) const;
};

/// A file makes at most this many stores, a clip or a controller, bend, program or pressure of a
/// clip being one each; what asks for more is reported as a loss. It keeps a hostile file of a few
/// kilobytes from filling memory with stores of one value each, a kilobyte or more apiece.
constexpr int kHost_MaxStores = 65536;
