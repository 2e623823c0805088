#include "tools/vrad/command_scrub.h"

#include <CLI/CLI.hpp>

#include "tools/vrad/tool_clipprinter.h"
#include "tools/vrad/tool_load.h"
#include "tools/vrad/tool_position.h"
#include "tools/vrad/tool_scrub.h"

CLI::App * Tool_ScrubCommand::AddTo(CLI::App & ioApp) {
  CLI::App * const command = ioApp.add_subcommand(
      "scrub", "Print the note and bend transitions that a moving position passes");
  mWay.AddTo(*command, "Where the position starts", "Where it goes, before or after");
  command->add_flag("--back", mIsGoingBack, "Then back to where it started");
  command->footer(
      std::string(kTool_PositionHelp) +
      "\nGoing forward (>) a note's start is passed behind its tick and its end at it;\n"
      "going backward (<) the reverse. A bend has two sides, the value before it and\n"
      "its own; the tick itself lies between them.");
  return command;
}

int Tool_ScrubCommand::Run() const {
  Tool_Way way(mWay);
  Host_Song const song = way.Load();
  Time_Tick const from = way.GetFrom().AsTick(), to = way.GetTo().AsTick();
  Tool_ClipPrinter printer(song, mWay.mAs == "text");
  printer.ShowProgress(way.GetClips());
  auto const print = [&](Tool_PassedTransition const & iTransition) { printer.Print(iTransition); };
  for (int clip : way.GetClips()) {
    Tool_Scrubber scrubber(*song.mClips[static_cast<size_t>(clip)].mChunk.Get(), from, to);
    printer.BeginClip(clip);
    printer.Expect(scrubber.GetNumTransitions() * (mIsGoingBack ? 2 : 1));
    scrubber.MoveTo(to, print);
    if (mIsGoingBack) scrubber.MoveTo(from, print);
    printer.EndClip();
  }
  printer.Finish();
  return Tool_GetStatus(song);
}
