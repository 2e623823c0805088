// Whole files of the system as bytes.
#pragma once

#include <span>
#include <string>
#include <vector>

class Sys_TypedOutStream;

/// All bytes of a file, or of a pipe. The path is the system's.
/// iMayGoOn is asked once, with the first bytes, 16 of them if there are that many: a file that
/// cannot be the right one is given up then, however long it is, and only these bytes come back.
/// Fails: std::system_error when it cannot be opened or read. std::bad_alloc.
std::vector<unsigned char> Host_LoadBytes(std::string const & iPath,
                                          bool (*iMayGoOn)(std::span<unsigned char const>));

/// However many there are: a stream itself takes less than 2^31 at a time.
/// Fails: as the stream.
void Host_WriteBytes(Sys_TypedOutStream & ioStream, std::span<unsigned char const> iBytes);

/// Writes the bytes beside iPath and puts them in its place when they are on the disk.
/// Fails: Sys_StreamException; an old file is then as it was.
void Host_SaveBytes(std::span<unsigned char const> iBytes, std::string const & iPath);
