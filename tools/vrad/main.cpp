// vrad: what the library makes of a MIDI file or a project.
#include <exception>
#include <functional>
#include <sstream>
#include <tuple>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "tools/vrad/command_check.h"
#include "tools/vrad/command_convert.h"
#include "tools/vrad/command_dump.h"
#include "tools/vrad/command_edit.h"
#include "tools/vrad/command_events.h"
#include "tools/vrad/command_info.h"
#include "tools/vrad/command_jump.h"
#include "tools/vrad/command_picture.h"
#include "tools/vrad/command_play.h"
#include "tools/vrad/command_scrub.h"
#include "tools/vrad/command_state.h"
#include "tools/vrad/command_wire.h"
#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_output.h"
#include "vrad/vrad_version.h"

namespace {

// In the order in which the help lists them.
typedef std::tuple<Tool_InfoCommand, Tool_EventsCommand, Tool_WireCommand, Tool_StateCommand,
                   Tool_JumpCommand, Tool_PlayCommand, Tool_ConvertCommand, Tool_DumpCommand,
                   Tool_PictureCommand, Tool_EditCommand, Tool_ScrubCommand, Tool_CheckCommand>
    Commands;

struct Entry {
  CLI::App const * mApp;
  std::function<int()> mRun;
};

std::vector<Entry> AddCommands(Commands & ioCommands, CLI::App & ioApp) {
  std::vector<Entry> entries;
  auto const add = [&](auto & ioCommand) {
    entries.push_back({ioCommand.AddTo(ioApp), [&ioCommand] { return ioCommand.Run(); }});
  };
  std::apply([&](auto &... ioCommand) { (add(ioCommand), ...); }, ioCommands);
  return entries;
}

// --help and --version. Their text can fail to be written like any other.
int Print(CLI::App const & iApp, CLI::Success const & iSuccess) {
  std::ostringstream text;
  iApp.exit(iSuccess, text, text);
  Tool_Output out;
  out.Print("{}", text.str());
  out.Flush();
  return kStatus_Done;
}

int Run(int iNumArgs, char ** iArgs) {
  CLI::App app("Reads Standard MIDI Files and projects: shows, plays, edits and saves them.",
               "vrad");
  app.set_version_flag("--version", std::string("vrad ") + Vrad_GetVersion());
  app.require_subcommand(1);
  Commands commands;
  std::vector<Entry> const entries = AddCommands(commands, app);
  try {
    app.parse(iNumArgs, iArgs);
  } catch (CLI::Success const & success) {
    return Print(app, success);
  } catch (CLI::ParseError const & error) {
    bool const hasCommand = !app.get_subcommands().empty();
    if (hasCommand || app.remaining_size() == 0) throw Tool_UsageError(error.what());
    throw Tool_UsageError(fmt::format("'{}' is not a command", app.remaining().front()));
  }
  for (Entry const & entry : entries) {
    if (entry.mApp->parsed()) return entry.mRun();
  }
  return kStatus_BadCommandLine;
}

}  // namespace

int main(int iNumArgs, char ** iArgs) {
  try {
    return Run(iNumArgs, iArgs);
  } catch (Tool_UsageError const & error) {
    Tool_TellError(error.what());
    Tool_TellError("see vrad --help");
    return kStatus_BadCommandLine;
  } catch (std::exception const & error) {
    Tool_TellError(error.what());
    return kStatus_BadInput;
  }
}
