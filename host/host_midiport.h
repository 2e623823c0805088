// Sends what a player sends to a MIDI port of the system: ALSA, JACK and whatever else RtMidi
// knows.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/host_blockreceiver.h"

/// There is no such port, or it cannot be used. The text is complete.
class Host_MidiPortError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// A port to which messages can be sent.
struct Host_MidiPortName {
  std::string mSystem;  // "ALSA", "JACK", ...
  std::string mName;    // as the system gives it, such as "synth:midi_in"
};

/// All ports that can be reached now, in the systems' order. None where no system runs.
/// Fails: Host_MidiPortError if the program was built without RtMidi.
/// Thread: not an audio thread; may wait for the systems, as may opening.
std::vector<Host_MidiPortName> Host_ListMidiPorts();

/// The index of the port that iPort means: its number in the list, its whole name, or a part of its
/// name that no other has.
/// Fails: Host_MidiPortError that says what there is.
size_t Host_FindMidiPort(std::vector<Host_MidiPortName> const & iPorts, std::string const & iPort);

/// An open port. A block's messages go out when their samples are due, a few milliseconds after the
/// block was begun, from a thread of the port's own: what the audio thread calls only puts them in
/// a queue. Messages for which there is no room, or which the system cannot take, are counted.
/// Thread: BeginBlock, ReceiveMessage and EndBlock in real time, one thread at a time; all else
/// not.
class Host_MidiPort : public Host_BlockReceiver {
public:
  /// iPort as in Host_FindMidiPort. The system's other programs see iClientName.
  /// Fails: Host_MidiPortError.
  Host_MidiPort(std::string const & iPort, std::string const & iClientName);
  /// As Close.
  ~Host_MidiPort() override;
  Host_MidiPort(Host_MidiPort const &) = delete;
  Host_MidiPort & operator=(Host_MidiPort const &) = delete;

  void BeginBlock(int iNumSamples) override;
  void ReceiveMessage(Host_WireMessage const & iMessage) override;

  /// Sends what is queued and closes the port. One that does not answer is given up after ten
  /// seconds. What comes afterwards is ignored; a second call does nothing.
  void Close();

  /// As the list gives it.
  Host_MidiPortName const & GetName() const;

  /// How many messages were not sent.
  long long GetNumLost() const;

private:
  class Sender;

  std::shared_ptr<Sender> mSender;  // shared with its thread
};
