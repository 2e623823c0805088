// Reads Standard MIDI Files into chunks, as a host does when the user opens one.
//
// What becomes of what:
// - Each track and channel that holds anything makes one clip, an undoable chunk. Sysex goes to a
//   clip of its track without a channel. Clips stand in order of track, then channel; within its
//   track the clip without a channel is the last.
// - A file's tick becomes the nearest library tick, ties upward. A file that counts in frames
//   (SMPTE) is laid out at 120 beats a minute, and tempo events in it are not kept.
// - Note-ons and note-offs of a track, channel and pitch are paired first in, first out, and the
//   release velocity is kept. A note-on of velocity 0 is a note-off of velocity 64. A note of no
//   length gets 1 tick; a note never released ends with its track.
// - Bank select (controllers 0 and 32) waits for the next program change of its track and channel
//   and becomes part of that event, at the program change's tick. Parts not given since the
//   program change before are disabled. Bank select that no program change follows becomes a
//   program event with its program disabled, at the tick of the last such controller; where that
//   would put out a program event at the same tick, it is counted as not kept instead.
// - Of several values of one controller, bend, pressure or program at one tick the last is kept.
// - Sysex packets are joined into one message at the time of the first. An F7 event outside a
//   message is an escape: channel messages and whole sysex in it are taken as if they stood in the
//   track. A sysex whose last byte 0xF7 never comes is not kept.
// - Tempo and time signatures of all tracks are one map; at one tick the one that is read last
//   counts. In format 2, where each track is a piece of its own, those of the first track count.
//   Key signatures are kept for each track.
// What is not kept is counted in the report by kind, and so is whatever could not be read.
#pragma once

#include <span>
#include <string>

#include "host/host_progress.h"
#include "host/host_song.h"

/// What reading one gives.
typedef Host_Song Host_MidiFile;

/// Reads a file from its bytes, which are not needed any more afterwards. Leaves no undo step, and
/// neither uses nor changes the tempo map of the process. One pass; some 20 times the bytes in
/// working memory at most, besides the chunks, whose notes take some 200 bytes each.
/// Fails: Host_MidiFileError when it is no Standard MIDI File or its header makes no sense. Damage
///        further on is reported as a problem, and the rest is read. std::bad_alloc.
/// Thread: one at a time in the process, since chunks register with the undo manager.
///
/// `iProgress`, unless empty, is told every quarter of a megabyte or so, and at the end.
Host_MidiFile Host_ReadMidiFile(std::span<unsigned char const> iBytes,
                                Host_Progress const & iProgress = Host_Progress());

/// The same from a file of the system.
/// Fails: also std::system_error when the file cannot be opened or read.
Host_MidiFile Host_ReadMidiFile(std::string const & iPath,
                                Host_Progress const & iProgress = Host_Progress());
