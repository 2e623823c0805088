#include "tools/vrad/command_events.h"

#include <CLI/CLI.hpp>

#include "tools/vrad/tool_clipprinter.h"
#include "tools/vrad/tool_load.h"
#include "tools/vrad/tool_options.h"
#include "vrad/vrad_extendedeventlist.h"

namespace {

void PrintPlayback(Tool_Range const & iRange, Vrad_Chunk const & iChunk, int iClip,
                   Tool_ClipPrinter & ioPrinter) {
  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  iRange.Retrieve(iChunk, iClip, wrapper);
  ioPrinter.Expect(list.size());
  for (Vrae_TimedEvent const & event : list) {
    ioPrinter.Print({event.mTime, event.mEvent, false, false, 0});
  }
}

void PrintDisplay(Tool_Range const & iRange, Vrad_Chunk const & iChunk, int iClip,
                  Tool_ClipPrinter & ioPrinter) {
  Vrad_DisplayItemList list;
  Vrad_EventListWrapper wrapper(&list);
  iRange.Retrieve(iChunk, iClip, wrapper);
  ioPrinter.Expect(list.size());
  for (Vrad_DisplayItem const & item : list) {
    ioPrinter.Print(
        {item.mTime, item.GetDisplayedEvent().mEvent, true, item.mDisplayFlag, item.mDisplayValue});
  }
}

}  // namespace

CLI::App * Tool_EventsCommand::AddTo(CLI::App & ioApp) {
  CLI::App * const command =
      ioApp.add_subcommand("events", "Print the sorted events of a time range, clip after clip");
  Tool_AddFileOption(*command, mFile);
  mRange.AddTo(*command);
  Tool_AddFormOption(*command, mAs);
  command
      ->add_option("--list", mList,
                   "The list that the library fills: playback, or display, which "
                   "adds the muted flag and the clip as tag")
      ->type_name("LIST")
      ->check(CLI::IsMember({"playback", "display"}));
  return command;
}

int Tool_EventsCommand::Run() const {
  Tool_Range range(mRange);
  Host_MidiFile const file = Tool_LoadFile(mFile);
  range.Resolve(file);
  Tool_ClipPrinter printer(file, mAs == "text");
  printer.ShowProgress(range.GetClips());
  for (int clip : range.GetClips()) {
    Vrad_Chunk const & chunk = *file.mClips[static_cast<size_t>(clip)].mChunk.Get();
    printer.BeginClip(clip);
    if (mList == "display") {
      PrintDisplay(range, chunk, clip, printer);
    } else {
      PrintPlayback(range, chunk, clip, printer);
    }
    printer.EndClip();
  }
  printer.Finish();
  return Tool_GetStatus(file);
}
