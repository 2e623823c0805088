// Which clips of a file a command works on.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/host_midifile.h"

/// The number behind --clip, if there is one. Always decimal, so that "010" is ten.
/// Fails: Tool_UsageError for what is no number, an empty text included.
std::optional<long long> Tool_ParseClip(std::optional<std::string> const & iText);

/// That clip, or all.
/// Fails: Tool_UsageError if the file has no such clip.
std::vector<int> Tool_SelectClips(std::optional<long long> iClip, int iNumClips);

/// "clip 1: track 2, channel 0, Piano", printable whatever the track's name holds.
std::string Tool_DescribeClip(Host_MidiFile const & iFile, int iClip);

size_t Tool_CountNotes(Host_Song const & iSong, int iClip);
