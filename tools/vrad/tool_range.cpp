#include "tools/vrad/tool_range.h"

#include <charconv>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_filter.h"
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

// Always decimal, so that "010" is ten; an empty text is no number.
std::optional<long long> ParseClip(std::optional<std::string> const & iText) {
  if (!iText) return std::nullopt;
  long long clip = 0;
  char const * const end = iText->data() + iText->size();
  auto const [stop, error] = std::from_chars(iText->data(), end, clip);
  if (error == std::errc() && stop == end) return clip;
  throw Tool_UsageError(fmt::format("--clip: '{}' is not the number of a clip", *iText));
}

ENoteOffInclusion ParseNoteOffs(std::string const & iText) {
  if (iText == "earliest") return kNoteOffInclusion_Earliest;
  return iText == "last" ? kNoteOffInclusion_Last : kNoteOffInclusion_None;
}

std::vector<int> SelectClips(std::optional<long long> iClip, int iNumClips) {
  std::vector<int> result;
  if (iClip && (*iClip < 0 || *iClip >= iNumClips)) {
    throw Tool_UsageError(iNumClips == 0
                              ? "--clip: the file has no clips"
                              : fmt::format("--clip: the file has clips 0 to {}", iNumClips - 1));
  }
  for (int i = 0; i < iNumClips; ++i) {
    if (!iClip || *iClip == i) result.push_back(i);
  }
  return result;
}

}  // namespace

void Tool_RangeOptions::AddTo(CLI::App & ioCommand) {
  ioCommand.add_option("--clip", mClip, "Only this clip, as numbered by 'vrad info'")
      ->type_name("N");
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
  ioCommand.footer("POS is 960000t (ticks, 960000 to the quarter note), 48000s (samples),\n"
                   "12.5sec, or BAR:BEAT[:TICK] with bars and beats from 1. Ranges are exact to\n"
                   "the sample: a bound in ticks counts as the first tick of its sample.");
}

Tool_Range::Tool_Range(Tool_RangeOptions const & iOptions)
    : mClip(ParseClip(iOptions.mClip)),
      mFrom(ParseOptional("--from", iOptions.mFrom)),
      mTo(ParseOptional("--to", iOptions.mTo)),
      mWindow(ParseWindow(iOptions.mWindow)),
      mFilter(ParseFilter(iOptions.mFilter)),
      mIsSkippingMuted(iOptions.mIsSkippingMuted),
      mNoteOffs(ParseNoteOffs(iOptions.mNoteOffs)) {
  if (iOptions.mOffset) mOffset = Tool_ParseLength("--offset", *iOptions.mOffset);
}

void Tool_Range::Resolve(Host_MidiFile const & iFile) {
  mClips = SelectClips(mClip, static_cast<int>(iFile.mClips.size()));
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
