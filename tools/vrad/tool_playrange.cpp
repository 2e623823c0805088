#include "tools/vrad/tool_playrange.h"

#include <charconv>
#include <limits>

#include <fmt/format.h>

#include "foundation/time_convert.h"
#include "tools/vrad/tool_clips.h"
#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_event.h"
#include "tools/vrad/tool_player.h"

namespace {

constexpr double kMinSpeed = 0.01;
constexpr double kMaxSpeed = 100;
constexpr long long kMaxPasses = 1000000;

template <class T>
bool Parse(std::string const & iText, T & oValue) {
  char const * const end = iText.data() + iText.size();
  auto const [stop, error] = std::from_chars(iText.data(), end, oValue);
  return error == std::errc() && stop == end;
}

// Words such as "inf" and "nan", which from_chars takes, fail the comparison or lie outside.
double ParseSpeed(std::optional<std::string> const & iText) {
  double speed = 1;
  if (!iText || (Parse(*iText, speed) && speed >= kMinSpeed && speed <= kMaxSpeed)) return speed;
  throw Tool_UsageError(
      fmt::format("--speed: '{}' is not a number from {} to {}", *iText, kMinSpeed, kMaxSpeed));
}

long long ParsePasses(Tool_PlayOptions const & iOptions) {
  long long numPasses = iOptions.mIsLooping ? 0 : 1;
  if (!iOptions.mPasses) return numPasses;
  bool const isNumber = Parse(*iOptions.mPasses, numPasses);
  if (isNumber && numPasses >= 1 && numPasses <= kMaxPasses) return numPasses;
  throw Tool_UsageError(
      fmt::format("--passes: '{}' is not a number from 1 to {}", *iOptions.mPasses, kMaxPasses));
}

std::optional<Tool_Position> ParseBound(std::string const & iOption,
                                        std::optional<std::string> const & iText) {
  if (!iText) return std::nullopt;
  return Tool_ParsePosition(iOption, *iText);
}

}  // namespace

Tool_PlayRange::Tool_PlayRange(Tool_PlayOptions const & iOptions)
    : mClip(Tool_ParseClip(iOptions.mClip)),
      mFrom(ParseBound("--from", iOptions.mFrom)),
      mTo(ParseBound("--to", iOptions.mTo)),
      mSpeed(ParseSpeed(iOptions.mSpeed)),
      mNumPasses(ParsePasses(iOptions)) {}

void Tool_PlayRange::Resolve(Host_Song const & iSong) {
  mClips = Tool_SelectClips(mClip, static_cast<int>(iSong.mClips.size()));
  ResolveBounds(iSong);
  SetTempo(iSong);
  mLength = Tool_ToSample(mEnd) - Tool_ToSample(mStart);
  if (mLength <= 0) throw Tool_UsageError("nothing lies between --from and --to");
}

long long Tool_PlayRange::GetTotalLength() const {
  constexpr long long kMost = std::numeric_limits<long long>::max();
  bool const isWithin = mNumPasses == 0 || mLength <= kMost / mNumPasses;
  return isWithin ? mLength * mNumPasses : kMost;
}

// In the song's own tempo, as ticks, which the speed does not move.
void Tool_PlayRange::ResolveBounds(Host_Song const & iSong) {
  Host_BarMap const bars(iSong.mTimeSignatures);
  Time_Tick const end = Time_Typed(Time_Sample(Tool_FindEnd(iSong, mClips))).AsTick();
  mStart = mFrom ? Tool_ResolvePosition("--from", *mFrom, bars).AsTick() : Time_Tick(0);
  mEnd = mTo ? Tool_ResolvePosition("--to", *mTo, bars).AsTick() : end;
  if (mStart < Time_Typed(Time_Tick(0))) throw Tool_UsageError("--from lies before the beginning");
  if (mStart >= Time_Typed(end)) {
    throw Tool_UsageError(
        fmt::format("--from lies behind the end, {}", Tool_FormatBar(bars, iSong.GetEnd())));
  }
  if (mTo && mEnd <= mStart) throw Tool_UsageError("--to does not lie behind --from");
}

void Tool_PlayRange::SetTempo(Host_Song const & iSong) const {
  Time_TempoMap & map = Time_Convert::GetDefaultTempoMap();
  map.Reset(120.0 * mSpeed);
  for (Host_TempoChange const & change : iSong.mTempoChanges)
    map.SetTempoAt(change.mTime, change.mBeatsPerMinute * mSpeed);
}
