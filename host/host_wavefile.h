// Writes sound to a WAV file: 16 bits, two channels.
#pragma once

#include <span>
#include <string>

#include "foundation/sys_stream.h"

/// What stands before the sound: 80 bytes, with room for the long form (RF64), which takes over
/// where the sizes of the plain one cannot say how long the file is, from some six hours on.
/// Fails: Sys_StreamException.
void Host_WriteWaveHeader(Sys_TypedOutStream & ioOut, long long iNumFrames, int iFramesPerSecond);

/// Grows beside its target and takes the target's place when closed: what was there before stays
/// whole until then, and nothing half written is ever left behind.
/// Thread: one at a time; writes to disk.
class Host_WaveFile {
public:
  /// The path is UTF-8.
  /// Fails: Sys_StreamException, whose text begins with the path, if no file can be made there.
  Host_WaveFile(std::string const & iPath, int iFramesPerSecond);

  /// Left and right in turns, two numbers to the frame.
  /// Fails: Sys_StreamException; the file can no longer be closed then.
  void Write(std::span<short const> iSamples);

  long long GetNumFrames() const { return mNumFrames; }

  /// Puts the sizes into the header and the file into its place.
  /// Fails: Sys_StreamException; the old file stays.
  void Close();

private:
  Sys_FileOutStream mOut;
  int mFramesPerSecond;
  long long mNumFrames = 0;
};
