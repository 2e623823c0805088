#include "tools/vrad/command_convert.h"

#include <CLI/CLI.hpp>

#include "tools/vrad/tool_load.h"

CLI::App * Tool_ConvertCommand::AddTo(CLI::App & ioApp) {
  CLI::App * const command =
      ioApp.add_subcommand("convert", "Turn a MIDI file into a project, or a project into one");
  command->add_option("IN", mIn, "A MIDI file (.mid) or a project (.vrad)")->required();
  command->add_option("OUT", mOut, "The file to write: .mid or .vrad")->required();
  command->footer(
      "What clips and the new file cannot keep is listed on the standard error stream.\n"
      "The new file takes the place of an old one only when it is whole.");
  return command;
}

int Tool_ConvertCommand::Run() const {
  Tool_GetFileKind("OUT", mOut);
  Host_Song const song = Tool_LoadFile(mIn);
  Tool_TellNotKept(mIn, song.mReport);
  Tool_SaveFile(mOut, song);
  return Tool_GetStatus(song);
}
