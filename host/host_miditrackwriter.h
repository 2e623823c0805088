// Writes the events of one track as bytes of a Standard MIDI File.
#pragma once

#include <vector>

#include "host/host_miditiming.h"
#include "host/host_trackevents.h"
#include "host/host_writereport.h"

/// The contents of the track's chunk, its end included. What is not read back as it was given is
/// counted.
/// Thread: one at a time.
std::vector<unsigned char> Host_WriteTrack(Host_TrackEvents const & iTrack,
                                           Host_MidiTiming const & iTiming,
                                           Host_WriteReport & ioReport);
