// From a MIDI file's division to library ticks.
#pragma once

#include "foundation/time_typed.h"

/// Whether a header may have this division: ticks to the quarter note, 1 to 0x7fff, or 24, 25, 29
/// or 30 frames a second of 1 tick or more.
bool Host_IsDivision(int iDivision);

/// The time scale of one MIDI file.
/// Thread: any; never changes.
class Host_MidiTiming {
public:
  /// Needs: `Host_IsDivision`. Ticks to the quarter note, or with bit 15 set frames a second (24,
  /// 25, 29 for 29.97, 30) and ticks to the frame.
  explicit Host_MidiTiming(int iDivision);

  /// Whether file ticks are parts of a frame and so of a second, whatever the tempo. A second is
  /// then 1920000 library ticks, as at 120 beats a minute.
  bool IsSMPTE() const { return mFramesPerSecond != 0; }
  /// To the quarter note, or to the frame.
  int GetTicks() const { return mTicks; }
  /// 24, 25, 29 or 30; 0 where ticks are parts of a quarter note.
  int GetFramesPerSecond() const { return mFramesPerSecond; }

  /// The nearest library tick, ties upward, and at most the last one. Needs: iFileTick 0 or later.
  Time_Tick ToTick(long long iFileTick) const;
  /// The nearest file tick, ties upward: the reverse of the above, since file ticks are the longer
  /// ones. Needs: iTick 0 or later.
  long long ToFileTick(Time_Tick iTick) const;
  /// Whether a file tick stands for exactly this one. Needs: iTick 0 or later.
  bool IsOnGrid(Time_Tick iTick) const {
    return ToTick(ToFileTick(iTick)).AsInt64() == iTick.AsInt64();
  }

private:
  int mTicks;
  int mFramesPerSecond;
  long long mNumerator;  // library ticks in mDenominator file ticks
  long long mDenominator;
};
