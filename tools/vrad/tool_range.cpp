#include "tools/vrad/tool_range.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "tools/vrad/tool_clips.h"
#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_filter.h"
#include "tools/vrad/tool_options.h"
#include "vrad/vrad_extendedeventlist.h"

namespace {

std::optional<Tool_Position> ParseOptional(std::string const & iOption,
                                           std::optional<std::string> const & iText) {
  if (!iText) return std::nullopt;
  return Tool_ParsePosition(iOption, *iText);
}

std::optional<std::pair<Tool_Position, Tool_Position>>
ParseWindow(std::optional<std::string> const & iText) {
  if (!iText) return std::nullopt;
  size_t const dots = iText->find("..");
  if (dots == std::string::npos) {
    throw Tool_UsageError(fmt::format("--window: '{}' is not two positions, POS..POS", *iText));
  }
  return std::pair(Tool_ParsePosition("--window", iText->substr(0, dots)),
                   Tool_ParsePosition("--window", iText->substr(dots + 2)));
}

Vrae_Filter ParseFilter(std::optional<std::string> const & iText) {
  return iText ? Tool_ParseFilter("--filter", *iText) : Vrae_Filter().SetAll();
}

ENoteOffInclusion ParseNoteOffs(std::string const & iText) {
  if (iText == "earliest") return kNoteOffInclusion_Earliest;
  return iText == "last" ? kNoteOffInclusion_Last : kNoteOffInclusion_None;
}

}  // namespace

void Tool_RangeOptions::AddTo(CLI::App & ioCommand) {
  Tool_AddClipOption(ioCommand, mClip);
  ioCommand.add_option("--from", mFrom, "Events at and after this position")->type_name("POS");
  ioCommand.add_option("--to", mTo, "Events before this position")->type_name("POS");
  ioCommand
      .add_option("--offset", mOffset,
                  "Taken off all times: 960000t, 48000s, 12.5sec; may be negative")
      ->type_name("LEN");
  ioCommand.add_option("--window", mWindow, "Only what comes out in this range, offset taken off")
      ->type_name("POS..POS");
  ioCommand
      .add_option("--filter", mFilter,
                  "Only these: notes,bend,program,mono,poly,sysex,cc (all controllers),cc7,...")
      ->type_name("LIST");
  ioCommand.add_flag("--skip-muted", mIsSkippingMuted, "Leave muted notes out");
  ioCommand
      .add_option("--note-offs", mNoteOffs,
                  "Mark where a note of the range ends: none, "
                  "earliest, last")
      ->type_name("WHICH")
      ->check(CLI::IsMember({"none", "earliest", "last"}));
  ioCommand.footer(std::string(kTool_PositionHelp) +
                   " Ranges are exact to\n"
                   "the sample: a bound in ticks counts as the first tick of its sample.");
}

Tool_Range::Tool_Range(Tool_RangeOptions const & iOptions)
    : mClip(Tool_ParseClip(iOptions.mClip)),
      mFrom(ParseOptional("--from", iOptions.mFrom)),
      mTo(ParseOptional("--to", iOptions.mTo)),
      mWindow(ParseWindow(iOptions.mWindow)),
      mFilter(ParseFilter(iOptions.mFilter)),
      mIsSkippingMuted(iOptions.mIsSkippingMuted),
      mNoteOffs(ParseNoteOffs(iOptions.mNoteOffs)) {
  if (iOptions.mOffset) mOffset = Tool_ParseLength("--offset", *iOptions.mOffset);
}

void Tool_Range::Resolve(Host_MidiFile const & iFile) {
  mClips = Tool_SelectClips(mClip, static_cast<int>(iFile.mClips.size()));
  ResolveTimes(Host_BarMap(iFile.mTimeSignatures));
}

void Tool_Range::ResolveTimes(Host_BarMap const & iBars) {
  mStart =
      mFrom ? Tool_ResolvePosition("--from", *mFrom, iBars) : Time_Typed::MinTime(Time_eType_Ticks);
  mEnd = mTo ? Tool_ResolvePosition("--to", *mTo, iBars) : Time_Typed::MaxTime(Time_eType_Ticks);
  if (mStart > mEnd) throw Tool_UsageError("--from lies after --to");
  mWindowStart = Time_Typed::MinTime(mStart.GetType());
  mWindowEnd = Time_Typed::MaxTime(mEnd.GetType());
  if (!mWindow) return;
  mWindowStart = Tool_ResolvePosition("--window", mWindow->first, iBars);
  mWindowEnd = Tool_ResolvePosition("--window", mWindow->second, iBars);
  if (mWindowStart > mWindowEnd) throw Tool_UsageError("--window ends before it begins");
}

void Tool_Range::Retrieve(Vrad_Chunk const & iChunk, int iItemTag,
                          Vrad_EventListWrapper & ioList) const {
  iChunk.GetMidiEventsInRange(&ioList, mOffset, mStart, mEnd, mWindowStart, mWindowEnd, false,
                              nullptr, nullptr, mFilter, nullptr, mIsSkippingMuted, iItemTag,
                              mNoteOffs);
}

std::optional<Time_Typed> Tool_Range::GetShownTime(Time_Typed iTime) const {
  Time_Typed const time = iTime - mOffset;
  if (time < mWindowStart || !(time < mWindowEnd)) return std::nullopt;
  return time;
}
