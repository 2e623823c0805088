// Project files: a song as the library itself saves it, nothing left out. The bytes are described
// in docs/project-format.md.
//
// Every part of a song stands in a record of its own with a checksum, so that damage costs the
// records that it hits and no other.
#pragma once

#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/host_midifile.h"
#include "host/host_song.h"

/// The file is no project file: no whole record is in it.
/// `what()` says so, without the file's name.
class Host_ProjectFileError : public std::runtime_error {
public:
  explicit Host_ProjectFileError(std::string const & iText);
  ~Host_ProjectFileError() override;
};

/// Whether the file begins as a project file does.
bool Host_IsProjectFile(std::span<unsigned char const> iBytes);

/// Reads what is whole. The rest is told by the song's report: each damaged, missing or wrong
/// record as a problem with its offset, records of unknown kinds as not kept. A value that a chunk
/// takes although it fails a check, such as a note's original without velocity, is a problem but
/// no loss. Leaves no undo step, and neither uses nor changes the tempo map of the process.
/// Fails: Host_ProjectFileError when there is nothing to read. std::bad_alloc.
/// Thread: one at a time in the process, since chunks register with the undo manager and failed
///         checks of any thread are taken for the file's meanwhile.
///
/// `iProgress`, unless empty, is told after every record.
Host_Song Host_ReadProjectFile(std::span<unsigned char const> iBytes,
                               Host_Progress const & iProgress = Host_Progress());

/// The same from a file of the system.
/// Fails: also std::system_error when the file cannot be opened or read.
Host_Song Host_ReadProjectFile(std::string const & iPath,
                               Host_Progress const & iProgress = Host_Progress());

/// The bytes of the file. The same song gives the same bytes.
/// Fails: what the chunks throw that cannot be saved; Sys_StreamException when the song has a value
///        outside of what its declaration says, more than 65535 tracks or kHost_MaxStores clips;
///        std::bad_alloc.
/// Thread: one at a time, as the song.
std::vector<unsigned char> Host_WriteProjectFile(Host_Song const & iSong);

/// Writes it beside iPath and puts it in its place when it is whole and on the disk, so that
/// whatever stops the writing leaves an old file as it was. The path is UTF-8.
/// Fails: also Sys_StreamException when the file cannot be written.
void Host_WriteProjectFile(Host_Song const & iSong, std::string const & iPath);
