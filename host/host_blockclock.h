// Tells when the samples of a player's blocks are due.
#pragma once

/// Blocks come when the system calls for them, early or late by some milliseconds; the samples in
/// them follow each other evenly. This evens the blocks' times out: each begins where the last one
/// ended, drawn a little towards the time at which it really came, and anew when it is far off.
/// Thread: one at a time; real time. Times are nanoseconds of any one clock.
class Host_BlockClock {
public:
  /// iSamplesPerSecond of the blocks.
  explicit Host_BlockClock(double iSamplesPerSecond) : mNanosPerSample(1e9 / iSamplesPerSecond) {}

  /// A block of so many samples has come at iNow.
  void BeginBlock(long long iNow, int iNumSamples) noexcept;

  /// When a sample of the block is due.
  long long GetTime(int iOffset) const noexcept;

private:
  double mNanosPerSample;
  bool mIsRunning = false;
  long long mStart = 0;  // of the block
  long long mEnd = 0;
};
