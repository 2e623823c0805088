#include "tools/vrad/command_info.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include <CLI/CLI.hpp>

#include "foundation/time_convert.h"
#include "tools/vrad/tool_event.h"
#include "tools/vrad/tool_load.h"
#include "tools/vrad/tool_names.h"
#include "tools/vrad/tool_options.h"
#include "tools/vrad/tool_output.h"
#include "tools/vrad/tool_tally.h"

namespace {

constexpr size_t kMaxNameLength = 24;

std::string GetTrackName(Host_Song const & iFile, int iTrack) {
  return Tool_MakePrintable(iFile.mTracks[static_cast<size_t>(iTrack)].mName, kMaxNameLength);
}

void PrintFormat(Tool_Output & ioOut, Host_Song const & iFile) {
  Host_MidiTiming const & timing = iFile.mTiming;
  char const * const kind =
      iFile.mKind == kFileKind_Project ? "Project, as a MIDI file of" : "Standard MIDI File,";
  ioOut.Print("  {} format {}, ", kind, iFile.mHeader.mFormat);
  if (timing.IsSMPTE()) {
    ioOut.Print("{} ticks to the frame at {} frames a second\n", timing.GetTicks(),
                timing.GetFramesPerSecond() == 29 ? "29.97"
                                                  : std::to_string(timing.GetFramesPerSecond()));
  } else {
    ioOut.Print("{} ticks to the quarter note\n", timing.GetTicks());
  }
}

void PrintLength(Tool_Output & ioOut, Host_Song const & iFile) {
  Time_Typed const end = iFile.GetEnd();
  Time_Typed const inSamples = Time_Convert::sTimeConverter->ToType(end, Time_eType_Samples);
  double const seconds = static_cast<double>(inSamples.AsInt64()) / Time_Globals::GetSampleRate();
  ioOut.Print("  ends     {} ({}t, {:.3f} seconds)\n",
              Tool_FormatBar(Host_BarMap(iFile.mTimeSignatures), end), end.AsInt64(), seconds);
}

// To the hundredth: files count microseconds, so that a plain tempo is seldom met.
double Round(double iBeatsPerMinute) {
  return std::round(iBeatsPerMinute * 100) / 100;
}

void PrintTempo(Tool_Output & ioOut, Host_Song const & iFile) {
  std::vector<Host_TempoChange> const & changes = iFile.mTempoChanges;
  double const first = Time_Convert::GetDefaultTempoMap().GetTempoAt(Time_Tick(0));
  ioOut.Print("  tempo    {} beats a minute", Round(first));
  long long const numLater =
      std::count_if(changes.begin(), changes.end(),
                    [](Host_TempoChange const & iChange) { return iChange.mTime.AsInt64() > 0; });
  if (numLater > 0) {
    auto const [low, high] =
        std::minmax_element(changes.begin(), changes.end(),
                            [](Host_TempoChange const & iA, Host_TempoChange const & iB) {
                              return iA.mBeatsPerMinute < iB.mBeatsPerMinute;
                            });
    ioOut.Print(" at first, {}, {} to {}", Tool_Plural(numLater, "change"),
                Round(low->mBeatsPerMinute), Round(high->mBeatsPerMinute));
  }
  ioOut.Print("\n");
}

// What counts from one bar on.
struct BarMark {
  Time_Tick mTime;
  std::string mText;
};

void PrintMarks(Tool_Output & ioOut, Host_BarMap const & iBars, char const * iLabel,
                std::vector<BarMark> const & iMarks) {
  constexpr size_t kMaxShown = 6;
  ioOut.Print("  {:8} ", iLabel);
  for (size_t i = 0; i < std::min(iMarks.size(), kMaxShown); ++i) {
    ioOut.Print("{}{}", i == 0 ? "" : ", ", iMarks[i].mText);
    if (iMarks[i].mTime.AsInt64() > 0) {
      ioOut.Print(" from bar {}", iBars.ToBar(iMarks[i].mTime).mBar);
    }
  }
  if (iMarks.size() > kMaxShown) ioOut.Print(", ... {} in all", iMarks.size());
  ioOut.Print("\n");
}

void PrintTimeSignatures(Tool_Output & ioOut, Host_Song const & iFile) {
  std::vector<BarMark> marks;
  for (Host_TimeSignature const & signature : iFile.mTimeSignatures) {
    if (marks.empty() && signature.mTime.AsInt64() > 0) marks.push_back({Time_Tick(0), "4/4"});
    marks.push_back(
        {signature.mTime, fmt::format("{}/{}", signature.mNumerator, signature.mDenominator)});
  }
  if (marks.empty()) marks.push_back({Time_Tick(0), "4/4"});
  PrintMarks(ioOut, Host_BarMap(iFile.mTimeSignatures), "meter", marks);
}

// The keys of all tracks; one that several tracks have at one time is told once.
void PrintKeySignatures(Tool_Output & ioOut, Host_Song const & iFile) {
  std::set<std::pair<long long, std::string>> told;
  std::vector<BarMark> marks;
  for (Host_KeySignature const & signature : iFile.mKeySignatures) {
    BarMark const mark = {signature.mTime,
                          Tool_GetKeyName(signature.mNumSharps, signature.mIsMinor)};
    bool const isNew = told.emplace(mark.mTime.AsInt64(), mark.mText).second;
    if (isNew) marks.push_back(mark);
  }
  if (!marks.empty()) PrintMarks(ioOut, Host_BarMap(iFile.mTimeSignatures), "key", marks);
}

std::string ListControllers(Tool_Tally const & iTally) {
  std::string result;
  for (size_t i = 0; i < iTally.mControllers.size(); ++i) {
    if (iTally.mControllers[i]) result += fmt::format("{}{}", result.empty() ? "" : " ", i);
  }
  return result.empty() ? "" : "cc " + result;
}

// Names may hold characters of several bytes, so that the column is filled by hand.
void PrintName(Tool_Output & ioOut, std::string const & iName, size_t iWidth) {
  ioOut.Print("  {}{:{}}", iName, "", iWidth - std::min(iWidth, Tool_GetNumChars(iName)));
}

void PrintClips(Tool_Output & ioOut, Host_Song const & iFile) {
  size_t width = 4;
  for (Host_Clip const & clip : iFile.mClips) {
    width = std::max(width, Tool_GetNumChars(GetTrackName(iFile, clip.mTrack)));
  }
  ioOut.Print("\n clip track channel");
  PrintName(ioOut, "name", width);
  ioOut.Print("   notes      cc   bends program pressure    poly   sysex\n");
  for (size_t i = 0; i < iFile.mClips.size(); ++i) {
    Host_Clip const & clip = iFile.mClips[i];
    Tool_Tally const tally(*clip.mChunk.Get());
    ioOut.Print("{:>5} {:>5} {:>7}", i, clip.mTrack,
                clip.mChannel < 0 ? "-" : std::to_string(clip.mChannel));
    PrintName(ioOut, GetTrackName(iFile, clip.mTrack), width);
    ioOut.Print(" {:>7} {:>7} {:>7} {:>7} {:>8} {:>7} {:>7}", tally.mNumNotes,
                tally.mNumControllers, tally.mNumBends, tally.mNumPrograms, tally.mNumPressures,
                tally.mNumPolyPressures, tally.mNumSysexes);
    std::string const controllers = ListControllers(tally);
    ioOut.Print("{}{}\n", controllers.empty() ? "" : "  ", controllers);
  }
}

void PrintNotKept(Tool_Output & ioOut, Host_MidiReport const & iReport) {
  std::vector<Host_MidiReport::NotKept> const notKept = iReport.GetNotKept();
  ioOut.Print("\nnot kept in clips:{}\n", notKept.empty() ? " nothing" : "");
  for (Host_MidiReport::NotKept const & line : notKept) {
    ioOut.Print("{:>7}  {} (first at offset {:#x})\n", line.mCount, line.mName, line.mOffset);
  }
}

void PrintProblems(Tool_Output & ioOut, Host_MidiReport const & iReport) {
  if (iReport.GetNumProblems() == 0) return;
  ioOut.Print("\nproblems:\n");
  for (Host_MidiReport::Problem const & problem : iReport.GetProblems()) {
    ioOut.Print("  offset {:#x}: {}\n", problem.mOffset, problem.mText);
  }
  long long const numMore =
      iReport.GetNumProblems() - static_cast<long long>(iReport.GetProblems().size());
  if (numMore > 0) ioOut.Print("  and {} more\n", numMore);
}

}  // namespace

CLI::App * Tool_InfoCommand::AddTo(CLI::App & ioApp) {
  CLI::App * const command = ioApp.add_subcommand(
      "info", "Show what a file holds: tracks, clips, counts, length, tempo, what is not kept");
  Tool_AddFileOption(*command, mFile);
  return command;
}

int Tool_InfoCommand::Run() const {
  Host_Song const file = Tool_LoadFile(mFile);
  Tool_Output out;
  out.Print("{}\n", mFile);
  PrintFormat(out, file);
  PrintLength(out, file);
  PrintTempo(out, file);
  PrintTimeSignatures(out, file);
  PrintKeySignatures(out, file);
  out.Print("  holds    {}, {}\n",
            Tool_Plural(static_cast<long long>(file.mTracks.size()), "track"),
            Tool_Plural(static_cast<long long>(file.mClips.size()), "clip"));
  if (!file.mClips.empty()) PrintClips(out, file);
  PrintNotKept(out, file.mReport);
  PrintProblems(out, file.mReport);
  out.Flush();
  return Tool_GetStatus(file);
}
