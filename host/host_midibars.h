// Bars and beats: where they lie in ticks, by the time signatures of a file.
#pragma once

#include <string>
#include <vector>

#include "foundation/time_typed.h"

/// From mTime on, until the next one. mDenominator is a power of two, 1 to 1024.
struct Host_TimeSignature {
  Time_Tick mTime;
  int mNumerator;  // 1 to 255
  int mDenominator;
  int mTrack = 0;                 // where it stands in a MIDI file; it counts for all tracks
  int mClocksPerClick = 24;       // of the metronome, 24 to the quarter note; 0 to 255
  int mThirtySecondsPerBeat = 8;  // written for what MIDI calls a quarter note; 0 to 255
};

/// Whether its numbers keep to these bounds, which are those of MIDI files.
bool Host_IsTimeSignature(Host_TimeSignature const & iSignature);

/// A place in bars. Bars and beats count from 1, ticks within the beat from 0.
struct Host_BarPosition {
  long long mBar;
  long long mBeat;
  long long mTick;
};

/// Turns places in bars into ticks and back. A time signature begins a bar wherever it stands, so a
/// bar before it may be short. Before the first one, and without any, time runs in 4/4.
/// Thread: any; never changes.
class Host_BarMap {
public:
  Host_BarMap();
  /// In rising order of time, none before tick 0.
  explicit Host_BarMap(std::vector<Host_TimeSignature> const & iSignatures);

  /// Fails: false and oWhyNot, as in "bar 3 has 4 beats", when there is no such place.
  bool ToTick(Host_BarPosition const & iPosition, Time_Tick & oTick, std::string & oWhyNot) const;

  /// iTick 0 or later.
  Host_BarPosition ToBar(Time_Tick iTick) const;

private:
  struct Stretch {
    long long mTick;  // where it begins
    long long mBar;   // the number of its first bar
    int mNumBeats;
    long long mBeat;  // ticks in a beat
    long long GetBarLength() const { return mBeat * mNumBeats; }
  };

  std::vector<Stretch> mStretches;  // never empty; the first begins at tick 0, bar 1
};
