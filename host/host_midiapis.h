// What is asked of the systems behind RtMidi without its help.
#pragma once

/// The systems' own libraries write to the standard error stream when a system is not there; this
/// keeps them from it.
void Host_SilenceMidiSystems();

// Whether a system answers: RtMidi complains aloud if asked for one that does not.

/// The sequencer of the Linux kernel.
bool Host_IsAlsaRunning();
/// The server of this user.
bool Host_IsJackRunning();
