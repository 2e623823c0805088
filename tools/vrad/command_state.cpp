#include "tools/vrad/command_state.h"

#include <CLI/CLI.hpp>

#include "tools/vrad/tool_clipprinter.h"
#include "tools/vrad/tool_clips.h"
#include "tools/vrad/tool_load.h"
#include "tools/vrad/tool_options.h"
#include "tools/vrad/tool_position.h"
#include "tools/vrad/tool_state.h"

namespace {

// Each note with what is left of it, the one that ends first at the head.
void PrintNotes(Vrae_TrackState & ioNotes, Time_Typed iPosition, Vrae_EventReceiver & ioReceiver) {
  for (; Vrae_NoteInProgress const * note = ioNotes.NextNoteOff(); ioNotes.PopNoteOff()) {
    ioReceiver.ReceiveEvent(Vrae_NoteWithDurationEvent(note->mPitch, note->mReleaseTime - iPosition,
                                                       note->mOnVelocity, note->mOffVelocity));
  }
}

}  // namespace

CLI::App * Tool_StateCommand::AddTo(CLI::App & ioApp) {
  CLI::App * const command =
      ioApp.add_subcommand("state", "Print the controller values and sounding notes at a position");
  Tool_AddFileOption(*command, mFile);
  command->add_option("--at", mAt, "The position")->type_name("POS")->required();
  Tool_AddClipOption(*command, mClip);
  Tool_AddFormOption(*command, mAs);
  command->footer(
      std::string(kTool_PositionHelp) +
      "\nValues are those of the last change at or before the position. Notes are those\n"
      "that began before it and end after it, each with what is left of it.");
  return command;
}

int Tool_StateCommand::Run() const {
  Tool_Position const at = Tool_ParsePosition("--at", mAt);
  std::optional<long long> const clipAsked = Tool_ParseClip(mClip);
  Host_Song const song = Tool_LoadFile(mFile);
  std::vector<int> const clips = Tool_SelectClips(clipAsked, static_cast<int>(song.mClips.size()));
  Time_Typed const position = Tool_ResolvePosition("--at", at, Host_BarMap(song.mTimeSignatures));
  Host_NotePool const pool;
  Tool_ClipPrinter printer(song, mAs == "text");
  for (int clip : clips) {
    Tool_ClipState state(*song.mClips[static_cast<size_t>(clip)].mChunk.Get(), position);
    Tool_EventPrinter receiver(printer, position);
    printer.BeginClip(clip);
    state.mValues.Prep(&receiver);
    PrintNotes(state.mNotes, position, receiver);
    printer.EndClip();
  }
  printer.Finish();
  return Tool_GetStatus(song);
}
