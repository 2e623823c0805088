#include "tools/vrad/command_check.h"

#include <iterator>

#include <CLI/CLI.hpp>

#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_load.h"
#include "tools/vrad/tool_names.h"
#include "tools/vrad/tool_output.h"

namespace {

// Whether all is well.
bool Check(std::string const & iPath, Tool_Output & ioOut) {
  try {
    Host_Song const song = Tool_ReadFile(iPath);
    Tool_TellProblems(iPath, song.mReport, false);
    long long const numProblems = song.mReport.GetNumProblems();
    std::string const clips = Tool_Plural(std::ssize(song.mClips), "clip");
    if (numProblems == 0) ioOut.Print("{}: good, {}\n", iPath, clips);
    if (numProblems > 0) {
      ioOut.Print("{}: {}, {} could be read\n", iPath, Tool_Plural(numProblems, "problem"), clips);
    }
    return numProblems == 0;
  } catch (Tool_InputError const & error) {
    Tool_TellError(error.what());
    ioOut.Print("{}: can't be read\n", iPath);
    return false;
  }
}

}  // namespace

CLI::App * Tool_CheckCommand::AddTo(CLI::App & ioApp) {
  CLI::App * const command =
      ioApp.add_subcommand("check", "Read everything and say what is wrong and where");
  command->add_option("FILE", mFiles, "MIDI files (.mid) and projects (.vrad)")->required();
  return command;
}

int Tool_CheckCommand::Run() const {
  Tool_Output out;
  bool isGood = true;
  for (std::string const & path : mFiles)
    isGood = Check(path, out) && isGood;
  out.Flush();
  return isGood ? kStatus_Done : kStatus_BadInput;
}
