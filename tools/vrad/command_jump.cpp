#include "tools/vrad/command_jump.h"

#include <CLI/CLI.hpp>

#include "tools/vrad/tool_clipprinter.h"
#include "tools/vrad/tool_clips.h"
#include "tools/vrad/tool_load.h"
#include "tools/vrad/tool_options.h"
#include "tools/vrad/tool_position.h"
#include "tools/vrad/tool_state.h"

namespace {

// The values first, so that the notes begin under them.
void PrintJump(Tool_ClipState & ioOld, Tool_ClipState & ioNew, Vrae_EventReceiver & ioReceiver) {
  ioNew.mValues.DoUnMutedUpdate(&ioOld.mValues, &ioReceiver);
  Vrae_ChaseSpec const spec{true, Vrae_TrackState::kTransitionNoteOn, Time_Typed()};
  ioOld.mNotes.ComputeTransitionToNewState(&ioNew.mNotes, &ioReceiver, spec, false);
}

}  // namespace

CLI::App * Tool_JumpCommand::AddTo(CLI::App & ioApp) {
  CLI::App * const command = ioApp.add_subcommand(
      "jump", "Print the events that turn the state at one position into that at another");
  Tool_AddFileOption(*command, mFile);
  command->add_option("--from", mFrom, "Where the jump begins")->type_name("POS")->required();
  command->add_option("--to", mTo, "Where it ends, before or after")->type_name("POS")->required();
  Tool_AddClipOption(*command, mClip);
  Tool_AddFormOption(*command, mAs);
  command->footer(
      std::string(kTool_PositionHelp) +
      "\nWhat a position's state is, 'vrad state' shows. Values that both positions have\n"
      "alike and notes that sound at both send nothing. Bend, pressures and the sustain\n"
      "pedal (controller 64) go to 0 where the new position has no value for them; other\n"
      "values stay.");
  return command;
}

int Tool_JumpCommand::Run() const {
  Tool_Position const fromAsked = Tool_ParsePosition("--from", mFrom);
  Tool_Position const toAsked = Tool_ParsePosition("--to", mTo);
  std::optional<long long> const clipAsked = Tool_ParseClip(mClip);
  Host_Song const song = Tool_LoadFile(mFile);
  std::vector<int> const clips = Tool_SelectClips(clipAsked, static_cast<int>(song.mClips.size()));
  Host_BarMap const bars(song.mTimeSignatures);
  Time_Typed const from = Tool_ResolvePosition("--from", fromAsked, bars);
  Time_Typed const to = Tool_ResolvePosition("--to", toAsked, bars);
  Host_NotePool const pool;
  Tool_ClipPrinter printer(song, mAs == "text");
  Tool_EventPrinter receiver(printer, to);
  for (int clip : clips) {
    Vrad_Chunk const & chunk = *song.mClips[static_cast<size_t>(clip)].mChunk.Get();
    Tool_ClipState oldState(chunk, from);
    Tool_ClipState newState(chunk, to);
    printer.BeginClip(clip);
    PrintJump(oldState, newState, receiver);
    printer.EndClip();
  }
  printer.Finish();
  return Tool_GetStatus(song);
}
