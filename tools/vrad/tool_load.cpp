#include "tools/vrad/tool_load.h"

#include <new>
#include <system_error>

#include <fmt/format.h>

#include "foundation/time_convert.h"
#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_output.h"
#include "tools/vrad/tool_progress.h"

namespace {

Host_MidiFile ReadFile(std::string const & iPath) {
  try {
    Tool_ProgressBar bar;
    return Host_ReadMidiFile(
        iPath, [&bar](size_t iNumDone, size_t iNumBytes) { bar.Show(iNumDone, iNumBytes); });
  } catch (Host_MidiFileError const & error) {
    throw Tool_InputError(
        fmt::format("{}: offset {:#x}: {}", iPath, error.GetOffset(), error.what()));
  } catch (std::system_error const & error) {
    throw Tool_InputError(fmt::format("{}: {}", iPath, error.code().message()));
  } catch (std::bad_alloc const &) {
    throw Tool_InputError(fmt::format("{}: out of memory", iPath));
  }
}

void TellLosses(std::string const & iPath, Host_MidiReport const & iReport) {
  for (Host_MidiReport::Problem const & problem : iReport.GetProblems()) {
    if (!problem.mIsLoss) continue;
    Tool_TellError(fmt::format("{}: offset {:#x}: {}", iPath, problem.mOffset, problem.mText));
  }
  long long const numMore =
      iReport.GetNumProblems() - static_cast<long long>(iReport.GetProblems().size());
  if (numMore > 0) Tool_TellError(fmt::format("{}: {} more problems", iPath, numMore));
}

}  // namespace

Host_MidiFile Tool_LoadFile(std::string const & iPath) {
  Host_MidiFile file = ReadFile(iPath);
  file.FillTempoMap(Time_Convert::GetDefaultTempoMap());
  TellLosses(iPath, file.mReport);
  return file;
}

int Tool_GetStatus(Host_MidiFile const & iFile) {
  return iFile.mReport.IsLossy() ? kStatus_BadInput : kStatus_Done;
}
