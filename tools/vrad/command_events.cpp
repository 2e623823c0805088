#include "tools/vrad/command_events.h"

#include <CLI/CLI.hpp>

#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_event.h"
#include "tools/vrad/tool_load.h"
#include "tools/vrad/tool_names.h"
#include "vrad/vrad_extendedeventlist.h"

namespace {

// Prints the events of one clip after the other, in the form asked for.
class Printer {
public:
  Printer(Host_MidiFile const & iFile, bool iIsText)
      : mFile(iFile), mBars(iFile.mTimeSignatures), mIsText(iIsText) {}

  void BeginClip(int iClip) {
    Host_Clip const & clip = mFile.mClips[static_cast<size_t>(iClip)];
    mSource = {iClip, clip.mTrack, clip.mChannel};
    if (!mIsText) return;
    std::string const name =
        Tool_MakePrintable(mFile.mTracks[static_cast<size_t>(clip.mTrack)].mName, 60);
    std::string const channel =
        clip.mChannel < 0 ? "no channel" : fmt::format("channel {}", clip.mChannel);
    mOut.Print("{}clip {}: track {}, {}{}{}\n", mIsFirstClip ? "" : "\n", iClip, clip.mTrack,
               channel, name.empty() ? "" : ", ", name);
    mIsFirstClip = false;
    mIsEmpty = true;
  }

  void Print(Tool_RetrievedEvent const & iEvent) {
    if (!mIsText) return Tool_PrintEventAsJSON(mOut, mSource, iEvent);
    if (mIsEmpty) mOut.Print("{:>14} {:>15}\n", "bar:beat:tick", "time");
    mIsEmpty = false;
    Tool_PrintEventAsText(mOut, mBars, iEvent);
  }

  void EndClip() {
    if (mIsText && mIsEmpty) mOut.Print("{:>14}\n", "nothing");
  }

  void Finish() { mOut.Flush(); }

private:
  Host_MidiFile const & mFile;
  Host_BarMap mBars;
  bool mIsText;
  bool mIsFirstClip = true;
  bool mIsEmpty = true;  // nothing of this clip yet
  Tool_EventSource mSource{};
  Tool_Output mOut;
};

void PrintPlayback(Tool_Range const & iRange, Vrad_Chunk const & iChunk, int iClip,
                   Printer & ioPrinter) {
  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  iRange.Retrieve(iChunk, iClip, wrapper);
  for (Vrae_TimedEvent const & event : list) {
    ioPrinter.Print({event.mTime, event.mEvent, false, false, 0});
  }
}

void PrintDisplay(Tool_Range const & iRange, Vrad_Chunk const & iChunk, int iClip,
                  Printer & ioPrinter) {
  Vrad_DisplayItemList list;
  Vrad_EventListWrapper wrapper(&list);
  iRange.Retrieve(iChunk, iClip, wrapper);
  for (Vrad_DisplayItem const & item : list) {
    ioPrinter.Print(
        {item.mTime, item.GetDisplayedEvent().mEvent, true, item.mDisplayFlag, item.mDisplayValue});
  }
}

}  // namespace

CLI::App * Tool_EventsCommand::AddTo(CLI::App & ioApp) {
  CLI::App * const command =
      ioApp.add_subcommand("events", "Print the sorted events of a time range, clip after clip");
  command->add_option("FILE", mFile, "A Standard MIDI File")->required();
  mRange.AddTo(*command);
  command->add_option("--as", mAs, "How to print: text, or jsonl for one JSON object a line")
      ->type_name("FORM")
      ->check(CLI::IsMember({"text", "jsonl"}));
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
  Printer printer(file, mAs == "text");
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
