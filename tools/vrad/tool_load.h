// The files that commands work on: read, told about, written.
#pragma once

#include <string>

#include "host/host_song.h"

/// By the ending, in whatever case.
bool Tool_IsProjectName(std::string const & iPath);

/// By the ending: .vrad is a project, .mid and .midi are MIDI files, in whatever case.
/// Fails: Tool_UsageError for any other, beginning with iWhat.
Host_EFileKind Tool_GetFileKind(std::string const & iWhat, std::string const & iPath);

/// Reads a project, or, whatever its ending otherwise, a MIDI file. Tells nothing.
/// Fails: Tool_InputError when nothing can be read.
Host_Song Tool_ReadFile(std::string const & iPath);

/// Reads a file and makes its tempo that of the process. What could not be read is told on the
/// standard error stream, a line each.
/// Fails: Tool_InputError when nothing can be read.
Host_Song Tool_LoadFile(std::string const & iPath);

/// Writes a project or a MIDI file, by the ending, and puts it in the place of the old one when it
/// is whole. What a MIDI file cannot hold is told on the standard error stream.
/// Fails: Tool_InputError; an old file is then as it was.
void Tool_SaveFile(std::string const & iPath, Host_Song const & iSong);

/// "PATH: what went wrong", also where the text begins with the path already.
std::string Tool_TellPath(std::string const & iPath, std::string const & iText);

/// Tells what the file holds and no clip keeps, a line for each kind.
void Tool_TellNotKept(std::string const & iPath, Host_MidiReport const & iReport);

/// Tells the problems found in reading, the losses alone or all, a line each.
void Tool_TellProblems(std::string const & iPath, Host_MidiReport const & iReport,
                       bool iOnlyLosses);

/// kStatus_BadInput if part of the file could not be read.
int Tool_GetStatus(Host_Song const & iSong);
