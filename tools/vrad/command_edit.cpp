#include "tools/vrad/command_edit.h"

#include <CLI/CLI.hpp>

#include "tools/vrad/edit_parse.h"
#include "tools/vrad/edit_session.h"
#include "tools/vrad/tool_clips.h"
#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_load.h"
#include "tools/vrad/tool_options.h"
#include "tools/vrad/tool_output.h"

namespace {

std::string NameClip(Edit_ClipReport const & iReport) {
  return iReport.mChannel < 0
             ? fmt::format("track {}, no channel", iReport.mTrack)
             : fmt::format("track {}, channel {}", iReport.mTrack, iReport.mChannel);
}

void Tell(Tool_Output & ioOut, Edit_Command const & iCommand,
          std::vector<Edit_ClipReport> const & iReports) {
  ioOut.Print("{}\n", iCommand.mText);
  for (Edit_ClipReport const & report : iReports)
    ioOut.Print("  {}: {}\n", NameClip(report), report.mDifference.Describe());
  if (iReports.empty()) ioOut.Print("  nothing changed\n");
}

}  // namespace

CLI::App * Tool_EditCommand::AddTo(CLI::App & ioApp) {
  CLI::App * const command = ioApp.add_subcommand("edit", "Edit clips, with undo, and save them");
  command->add_option("IN", mIn, "A MIDI file or a project")->required();
  command->add_option("OUT", mOut, "The project to write: OUT.vrad")->required();
  command->add_option("COMMANDS", mCommands, "What to do, in order")->required();
  Tool_AddClipOption(*command, mClip);
  command->footer(Edit_GetCommandHelp());
  return command;
}

int Tool_EditCommand::Run() const {
  std::vector<Edit_Command> commands;
  for (std::string const & text : mCommands)
    commands.push_back(Edit_Parse(text));
  std::optional<long long> const clip = Tool_ParseClip(mClip);
  if (!Tool_IsProjectName(mOut)) {
    throw Tool_UsageError(fmt::format("OUT: '{}' does not end in .vrad", mOut));
  }
  Host_Song song = Tool_LoadFile(mIn);
  std::vector<int> const clips = Tool_SelectClips(clip, static_cast<int>(song.mClips.size()));
  Edit_Session session(song, clip ? std::optional(clips.front()) : std::nullopt);
  Tool_Output out;
  for (Edit_Command const & command : commands)
    Tell(out, command, session.Apply(command));
  session.Finish();
  Tool_SaveFile(mOut, song);
  out.Flush();
  return session.IsTakeLossy() ? kStatus_BadInput : Tool_GetStatus(song);
}
