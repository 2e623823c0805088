// Where a player stands.
#pragma once

#include "foundation/time_typed.h"

/// The units of some times.
struct Host_TimeUnits {
  bool mHasTicks = false, mHasSamples = false;
  void Add(Time_Typed iTime) {
    (iTime.GetType() == Time_eType_Samples ? mHasSamples : mHasTicks) = true;
  }
};

/// A sample, and the tick up to which clips have been read when it is reached.
struct Host_PlayPosition {
  long long mSample = 0;
  Time_Typed mTick;

  static Host_PlayPosition At(long long iSample) {
    return {iSample, Time_Typed(Time_Sample(iSample)).AsTick()};
  }

  /// The sample in which the time lies.
  static long long SampleOf(Time_Typed iTime) {
    return iTime.GetType() == Time_eType_Samples ? iTime.AsInt64()
                                                 : Time_CountInUnit(iTime, Time_eType_Samples);
  }

  /// As a bound for what clips hold: a tick, or the sample where they hold times in samples, as a
  /// tick may lie beside these. After a change of tempo a tick may lie in the midst of the sample.
  Time_Typed AsBound(Host_TimeUnits iUnits) const {
    bool const isSample = iUnits.mHasSamples && (!iUnits.mHasTicks || At(mSample).mTick == mTick);
    return isSample ? Time_Typed(Time_Sample(mSample)) : mTick;
  }
};

/// From a time up to another.
struct Host_TimeRange {
  Time_Typed mFrom, mTo;
};

/// What lies between two positions.
struct Host_PlayStretch {
  Host_PlayPosition mFrom, mTo;
};
