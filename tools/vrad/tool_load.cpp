#include "tools/vrad/tool_load.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <new>
#include <string_view>
#include <system_error>
#include <vector>

#include <fmt/format.h>

#include "cmn/cmn_assert.h"
#include "foundation/sys_stream.h"
#include "foundation/time_convert.h"
#include "host/host_filebytes.h"
#include "host/host_midifile.h"
#include "host/host_midiwriter.h"
#include "host/host_projectfile.h"
#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_output.h"
#include "tools/vrad/tool_progress.h"

namespace {

// In lower case, with its dot.
std::string GetEnding(std::string const & iPath) {
  std::string ending = std::filesystem::path(iPath).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return ending;
}

// What the file is by its beginning, if that is another kind than its name says.
std::string GuessKind(std::string const & iPath) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(iPath, error)) return "";
  std::vector<unsigned char> const bytes = Host_LoadBytes(iPath, [](auto) { return false; });
  bool const isProject = Tool_IsProjectName(iPath);
  if (!isProject && Host_IsProjectFile(bytes)) return "; it is a project, whose name ends in .vrad";
  bool const isMidi = std::string_view(reinterpret_cast<char const *>(bytes.data()), bytes.size())
                          .starts_with("MThd");
  return isProject && isMidi ? "; it is a MIDI file, whose name ends in .mid" : "";
}

void TellNotWritten(std::string const & iPath, Host_WriteReport const & iReport) {
  for (Host_WriteReport::NotWritten const & what : iReport.GetNotWritten()) {
    std::string const place =
        what.mClip < 0 ? fmt::format("at {}t", what.mTime.AsTick().AsInt64())
                       : fmt::format("clip {} at {}t", what.mClip, what.mTime.AsTick().AsInt64());
    Tool_TellError(
        fmt::format("{}: not kept: {} x {}, first {}", iPath, what.mCount, what.mName, place));
  }
}

}  // namespace

bool Tool_IsProjectName(std::string const & iPath) {
  return GetEnding(iPath) == ".vrad";
}

Host_EFileKind Tool_GetFileKind(std::string const & iWhat, std::string const & iPath) {
  if (Tool_IsProjectName(iPath)) return kFileKind_Project;
  std::string const ending = GetEnding(iPath);
  if (ending == ".mid" || ending == ".midi") return kFileKind_Midi;
  throw Tool_UsageError(fmt::format("{}: '{}' ends neither in .vrad nor in .mid", iWhat, iPath));
}

Host_Song Tool_ReadFile(std::string const & iPath) {
  try {
    Tool_ProgressBar bar;
    Host_Progress const progress = [&bar](size_t iNumDone, size_t iNumBytes) {
      bar.Show(iNumDone, iNumBytes);
    };
    if (Tool_IsProjectName(iPath)) return Host_ReadProjectFile(iPath, progress);
    return Host_ReadMidiFile(iPath, progress);
  } catch (Host_MidiFileError const & error) {
    throw Tool_InputError(fmt::format("{}: offset {:#x}: {}{}", iPath, error.GetOffset(),
                                      error.what(), GuessKind(iPath)));
  } catch (Host_ProjectFileError const & error) {
    throw Tool_InputError(
        fmt::format("{}: offset 0x0: {}{}", iPath, error.what(), GuessKind(iPath)));
  } catch (std::system_error const & error) {
    throw Tool_InputError(fmt::format("{}: {}", iPath, error.code().message()));
  } catch (std::bad_alloc const &) {
    throw Tool_InputError(fmt::format("{}: out of memory", iPath));
  }
}

Host_Song Tool_LoadFile(std::string const & iPath) {
  Host_Song song = Tool_ReadFile(iPath);
  song.FillTempoMap(Time_Convert::GetDefaultTempoMap());
  Tool_TellProblems(iPath, song.mReport, true);
  return song;
}

void Tool_SaveFile(std::string const & iPath, Host_Song const & iSong) {
  Host_EFileKind const kind = Tool_GetFileKind("OUT", iPath);
  try {
    if (kind == kFileKind_Project) return Host_WriteProjectFile(iSong, iPath);
    Host_WriteReport report;
    Host_WriteMidiFile(iSong, iPath, report);
    TellNotWritten(iPath, report);
  } catch (Host_MidiWriteError const & error) {
    throw Tool_InputError(Tool_TellPath(iPath, error.what()));
  } catch (Sys_StreamException const & error) {
    throw Tool_InputError(Tool_TellPath(iPath, error.what()));
  } catch (Cmn_AssertException const & error) {
    throw Tool_InputError(fmt::format("{}: a clip cannot be saved: {}", iPath, error.what()));
  } catch (std::bad_alloc const &) {
    throw Tool_InputError(fmt::format("{}: out of memory", iPath));
  }
}

std::string Tool_TellPath(std::string const & iPath, std::string const & iText) {
  std::string const prefix = iPath + ": ";
  return iText.starts_with(prefix) ? iText : prefix + iText;
}

void Tool_TellProblems(std::string const & iPath, Host_MidiReport const & iReport,
                       bool iOnlyLosses) {
  if (iOnlyLosses && !iReport.IsLossy()) return;
  for (Host_MidiReport::Problem const & problem : iReport.GetProblems()) {
    if (iOnlyLosses && !problem.mIsLoss) continue;
    Tool_TellError(fmt::format("{}: offset {:#x}: {}", iPath, problem.mOffset, problem.mText));
  }
  long long const numMore =
      iReport.GetNumProblems() - static_cast<long long>(iReport.GetProblems().size());
  if (numMore > 0) Tool_TellError(fmt::format("{}: {} more problems", iPath, numMore));
}

void Tool_TellNotKept(std::string const & iPath, Host_MidiReport const & iReport) {
  for (Host_MidiReport::NotKept const & what : iReport.GetNotKept()) {
    Tool_TellError(fmt::format("{}: not kept: {} x {}, first at offset {:#x}", iPath, what.mCount,
                               what.mName, what.mOffset));
  }
}

int Tool_GetStatus(Host_Song const & iSong) {
  return iSong.mReport.IsLossy() ? kStatus_BadInput : kStatus_Done;
}
