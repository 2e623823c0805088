// vrad: shows what the library makes of a MIDI file.
#include <exception>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "tools/vrad/command_events.h"
#include "tools/vrad/command_info.h"
#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_output.h"
#include "vrad/vrad_version.h"

namespace {

int Run(int iNumArgs, char ** iArgs) {
  CLI::App app("Reads Standard MIDI Files into clips and hands out their events.", "vrad");
  app.set_version_flag("--version", std::string("vrad ") + Vrad_GetVersion());
  app.require_subcommand(1);
  Tool_InfoCommand info;
  Tool_EventsCommand events;
  CLI::App const * const infoApp = info.AddTo(app);
  CLI::App const * const eventsApp = events.AddTo(app);
  try {
    app.parse(iNumArgs, iArgs);
  } catch (CLI::Success const & success) {
    return app.exit(success);  // --help and --version
  } catch (CLI::ParseError const & error) {
    bool const hasCommand = !app.get_subcommands().empty();
    if (hasCommand || app.remaining_size() == 0) throw Tool_UsageError(error.what());
    throw Tool_UsageError(fmt::format("'{}' is not a command", app.remaining().front()));
  }
  if (infoApp->parsed()) return info.Run();
  if (eventsApp->parsed()) return events.Run();
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
