#include "tools/vrad/command_wire.h"

#include <algorithm>

#include <CLI/CLI.hpp>

#include "host/host_messagelist.h"
#include "tools/vrad/tool_clipprinter.h"
#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_load.h"
#include "tools/vrad/tool_options.h"
#include "tools/vrad/tool_player.h"

namespace {

// Long, since most samples of a file bring nothing.
constexpr long long kBlockSize = 1 << 20;

// Plays the range and stops at its end. One without an end goes on to where nothing sounds any
// more: a stop would only add what the song does not hold.
bool Play(Tool_Range const & iRange, Host_Song const & iSong, Host_MessageList & ioList) {
  Tool_Player tool(iSong, iRange.GetClips(), ioList);
  Host_BlockPlayer & player = tool.GetPlayer();
  Time_Typed const start = std::max(iRange.GetStart(), Time_Typed(Time_Tick(0)));
  long long position = Tool_ToSample(start);
  bool const isToStop = iRange.GetEnd() != Time_Typed::MaxTime(Time_eType_Ticks);
  long long const end =
      std::min(Tool_ToSample(iRange.GetEnd()), Tool_FindEnd(iSong, iRange.GetClips()));
  if (position >= end) return true;
  player.Start(start);
  for (; position < end; position += kBlockSize) {
    player.Process(static_cast<int>(std::min(kBlockSize, end - position)));
  }
  if (isToStop) player.Stop();
  player.Process(0);
  return tool.TellLostNotes();
}

typedef std::vector<Host_MessageList::Message const *> Messages;

std::vector<Messages> SortByClip(Host_MessageList const & iList, size_t iNumClips) {
  std::vector<Messages> result(iNumClips);
  for (Host_MessageList::Message const & message : iList.GetMessages()) {
    result[static_cast<size_t>(message.mClip)].push_back(&message);
  }
  return result;
}

}  // namespace

CLI::App * Tool_WireCommand::AddTo(CLI::App & ioApp) {
  CLI::App * const command =
      ioApp.add_subcommand("wire", "Print the MIDI messages that a player sends, clip after clip");
  Tool_AddFileOption(*command, mFile);
  mRange.AddTo(*command);
  Tool_AddFormOption(*command, mAs);
  command->footer(
      command->get_footer() +
      "\nThe player starts at --from, with what is in force and sounds there, and stops at\n"
      "--to, where notes, pedals, bends and pressures end. --offset, --window and --filter\n"
      "choose what is printed of it. Muted notes are never sent, so that --skip-muted\n"
      "changes nothing; neither does --note-offs. Each message has the time of its event,\n"
      "to the tick; those of a start or stop have the first tick of its sample.");
  return command;
}

int Tool_WireCommand::Run() const {
  Tool_Range range(mRange);
  Host_Song const song = Tool_LoadFile(mFile);
  range.Resolve(song);
  Host_MessageList list;
  bool const isWhole = Play(range, song, list);
  std::vector<Messages> const messages = SortByClip(list, song.mClips.size());
  Tool_ClipPrinter printer(song, mAs == "text");
  printer.ShowProgress(range.GetClips());
  for (int clip : range.GetClips()) {
    printer.BeginClip(clip);
    printer.Expect(messages[static_cast<size_t>(clip)].size());
    for (Host_MessageList::Message const * message : messages[static_cast<size_t>(clip)]) {
      std::optional<Time_Typed> const time = range.GetShownTime(message->mTime);
      if (!time) continue;
      Tool_WireMessage const shown{*time, list.GetBytes(*message)};
      if (Tool_IsWanted(range.GetFilter(), shown)) printer.Print(shown);
    }
    printer.EndClip();
  }
  printer.Finish();
  return isWhole ? Tool_GetStatus(song) : kStatus_BadInput;
}
