#include "tools/vrad/tool_way.h"

#include <CLI/CLI.hpp>

#include "tools/vrad/tool_clips.h"
#include "tools/vrad/tool_load.h"
#include "tools/vrad/tool_options.h"

void Tool_WayOptions::AddTo(CLI::App & ioCommand, std::string const & iFromHelp,
                            std::string const & iToHelp) {
  Tool_AddFileOption(ioCommand, mFile);
  ioCommand.add_option("--from", mFrom, iFromHelp)->type_name("POS")->required();
  ioCommand.add_option("--to", mTo, iToHelp)->type_name("POS")->required();
  Tool_AddClipOption(ioCommand, mClip);
  Tool_AddFormOption(ioCommand, mAs);
}

Tool_Way::Tool_Way(Tool_WayOptions const & iOptions)
    : mFile(iOptions.mFile),
      mFromAsked(Tool_ParsePosition("--from", iOptions.mFrom)),
      mToAsked(Tool_ParsePosition("--to", iOptions.mTo)),
      mClipAsked(Tool_ParseClip(iOptions.mClip)) {}

Host_Song Tool_Way::Load() {
  Host_Song song = Tool_LoadFile(mFile);
  mClips = Tool_SelectClips(mClipAsked, static_cast<int>(song.mClips.size()));
  Host_BarMap const bars(song.mTimeSignatures);
  mFrom = Tool_ResolvePosition("--from", mFromAsked, bars);
  mTo = Tool_ResolvePosition("--to", mToAsked, bars);
  return song;
}
