// Writes songs as Standard MIDI Files, so that what `Host_ReadMidiFile` kept of a file goes out
// again: every event at its tick and in its track. Reading the written file gives equal chunks
// unless the report says otherwise.
//
// What becomes of what:
// - Format and division are the song's. A song of several tracks is never of format 0 but of
//   format 1. Where times lie off the grid of a division in ticks to the quarter note, and a
//   division exists whose grid holds them all, that one is taken; else each goes to the nearest
//   tick of the file, ties upward.
// - All clips of a track make that track. At one tick stand, in this order: track name, time
//   signature, key signature, tempo; note-offs of notes that began before; sysex; what a clip
//   streams (program, controllers, bend, pressures); notes in the order of their list.
// - A note of release velocity 64 ends by a note-on of velocity 0. A note that ends on the file
//   tick of its beginning is written without length, and has 1 tick when it is read.
// - A program is its bank select, MSB and LSB, as far as these are enabled, and the program change.
// - A gap of 2^28 or more file ticks, too long for one delta time, is bridged with empty texts.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "host/host_song.h"
#include "host/host_writereport.h"

/// The song does not fit into a MIDI file at all. `what()` says why, without the file's name.
class Host_MidiWriteError : public std::length_error {
public:
  explicit Host_MidiWriteError(std::string const & iText);
  ~Host_MidiWriteError() override;
};

/// The bytes of the file. The song does not change; times in samples count by its own tempo.
/// Fails: Host_MidiWriteError for more than 65535 tracks or a track of 2^32 bytes or more.
///        std::bad_alloc.
/// Thread: one at a time, as the song.
std::vector<unsigned char> Host_WriteMidiFile(Host_Song const & iSong, Host_WriteReport & ioReport);

/// Writes it beside iPath and puts it in its place when it is whole and on the disk, so that
/// whatever stops the writing leaves an old file as it was. The path is UTF-8.
/// Fails: also Sys_StreamException when the file cannot be written.
void Host_WriteMidiFile(Host_Song const & iSong, std::string const & iPath,
                        Host_WriteReport & ioReport);
