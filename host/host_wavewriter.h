// Renders what a player sends to a WAV file, with a software synthesizer and a SoundFont.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "host/host_blockreceiver.h"

/// Sound cannot be made. The text is complete.
class Host_SoundError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// Where the system keeps a SoundFont of the General MIDI instruments; empty if none is found.
/// Fails: Host_SoundError if the program was built without FluidSynth.
std::string Host_FindSoundFont();

/// Plays 16 channels on a synthesizer of its own, as fast as the processor allows, and writes 16
/// bits stereo at the sample rate of the process. Messages count from the synthesizer's next 64
/// samples on. The same blocks give the same bytes. The file appears under its name only when it is
/// finished; until then what stood there stays, and whatever stops the writer leaves nothing
/// behind. Thread: one at a time, not an audio thread: it takes memory and writes to disk.
class Host_WaveWriter : public Host_BlockReceiver {
public:
  /// Paths are UTF-8.
  /// Fails: Host_SoundError if the SoundFont cannot be used, or the program was built without
  /// FluidSynth; Sys_StreamException if the file cannot be made. The texts name the file.
  Host_WaveWriter(std::string const & iPath, std::string const & iSoundFont);
  ~Host_WaveWriter() override;
  Host_WaveWriter(Host_WaveWriter const &) = delete;
  Host_WaveWriter & operator=(Host_WaveWriter const &) = delete;

  /// A failure to write is kept for `Finish`, since a player hears of none.
  void BeginBlock(int iNumSamples) override;
  void ReceiveMessage(Host_WireMessage const & iMessage) override;
  void EndBlock() override;

  /// Whether writing has failed, so that further blocks are in vain.
  bool HasFailed() const;

  /// Lets the sound fade out, for ten seconds at most, and closes the file.
  /// Fails: Sys_StreamException if writing fails or has failed; there is no file then.
  void Finish();

  /// What was written so far, in samples of each channel.
  long long GetNumFrames() const;

  /// How many numbers were too loud for 16 bits and were cut off.
  long long GetNumClipped() const;

private:
  class Synthesizer;
  struct Rendering;

  std::unique_ptr<Rendering> mRendering;
};
