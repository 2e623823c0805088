// What is asked of the systems behind RtMidi without its help.
#pragma once

#include <memory>

/// The systems' own libraries write to the standard error stream when a system is not there; this
/// keeps them from it.
void Host_SilenceMidiSystems();

// Whether a system answers: RtMidi complains aloud if asked for one that does not.

/// The sequencer of the Linux kernel.
bool Host_IsAlsaRunning();
/// The server of this user.
bool Host_IsJackRunning();

/// Counts the cycles in which JACK calls its clients, as one of them.
class Host_JackCycles {
public:
  Host_JackCycles();
  ~Host_JackCycles();
  Host_JackCycles(Host_JackCycles const &) = delete;
  Host_JackCycles & operator=(Host_JackCycles const &) = delete;

  /// Until JACK has called every client since, so that nothing is left in their queues. False,
  /// after two seconds, if the server does not go on.
  bool WaitForNext() const;

private:
  struct Client;

  std::unique_ptr<Client> mClient;
};
