#include "tools/vrad/command_jump.h"

#include <CLI/CLI.hpp>

#include "tools/vrad/tool_clipprinter.h"
#include "tools/vrad/tool_load.h"
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
  mWay.AddTo(*command, "Where the jump begins", "Where it ends, before or after");
  command->footer(
      std::string(kTool_PositionHelp) +
      "\nWhat a position's state is, 'vrad state' shows. Values that both positions have\n"
      "alike and notes that sound at both send nothing. Bend, pressures and the sustain\n"
      "pedal (controller 64) go to 0 where the new position has no value for them; other\n"
      "values stay.");
  return command;
}

int Tool_JumpCommand::Run() const {
  Tool_Way way(mWay);
  Host_Song const song = way.Load();
  Host_NotePool const pool;
  Tool_ClipPrinter printer(song, mWay.mAs == "text");
  Tool_EventPrinter receiver(printer, way.GetTo());
  for (int clip : way.GetClips()) {
    Vrad_Chunk const & chunk = *song.mClips[static_cast<size_t>(clip)].mChunk.Get();
    Tool_ClipState oldState(chunk, way.GetFrom());
    Tool_ClipState newState(chunk, way.GetTo());
    printer.BeginClip(clip);
    PrintJump(oldState, newState, receiver);
    printer.EndClip();
  }
  printer.Finish();
  return Tool_GetStatus(song);
}
