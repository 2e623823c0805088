#include "tools/vrad/tool_position.h"

#include <charconv>
#include <cmath>
#include <optional>

#include <fmt/format.h>

#include "foundation/time_convert.h"
#include "tools/vrad/tool_error.h"

namespace {

// Far beyond music, and sums of two such counts stay within 64 bits.
constexpr long long kMaxCount = 1ll << 61;

bool TakeSuffix(std::string_view & ioText, std::string_view iSuffix) {
  if (!ioText.ends_with(iSuffix)) return false;
  ioText.remove_suffix(iSuffix.size());
  return true;
}

template <class T>
std::optional<T> ParseAll(std::string_view iText) {
  T value{};
  char const * const end = iText.data() + iText.size();
  auto const [stop, error] = std::from_chars(iText.data(), end, value);
  if (error != std::errc() || stop != end) return std::nullopt;
  return value;
}

std::optional<long long> ParseCount(std::string_view iText) {
  std::optional<long long> const count = ParseAll<long long>(iText);
  if (!count || *count > kMaxCount || *count < -kMaxCount) return std::nullopt;
  return count;
}

std::optional<long long> ParseSeconds(std::string_view iText) {
  if (iText.find_first_not_of("0123456789.-") != std::string_view::npos) return std::nullopt;
  std::optional<double> const seconds = ParseAll<double>(iText);
  if (!seconds) return std::nullopt;
  double const samples = std::floor(*seconds * Time_Globals::GetSampleRate() + 0.5);
  if (std::abs(samples) > static_cast<double>(kMaxCount)) return std::nullopt;
  return static_cast<long long>(samples);
}

struct Amount {
  long long mCount;
  Time_EType mType;
};

// The forms with a unit behind them.
std::optional<Amount> ParseAmount(std::string_view iText) {
  Time_EType const type = iText.ends_with("t") ? Time_eType_Ticks : Time_eType_Samples;
  std::optional<long long> count;
  if (TakeSuffix(iText, "sec")) {
    count = ParseSeconds(iText);
  } else if (TakeSuffix(iText, "t") || TakeSuffix(iText, "s")) {
    count = ParseCount(iText);
  }
  if (!count) return std::nullopt;
  return Amount{*count, type};
}

std::string_view TakeField(std::string_view & ioText) {
  size_t const colon = ioText.find(':');
  std::string_view const field = ioText.substr(0, colon);
  ioText = colon == std::string_view::npos ? std::string_view() : ioText.substr(colon + 1);
  return field;
}

std::optional<Host_BarPosition> ParseBar(std::string_view iText) {
  bool const hasTick = iText.find(':') != iText.rfind(':');
  if (iText.find(':') == std::string_view::npos || iText.ends_with(":")) return std::nullopt;
  std::optional<long long> const bar = ParseCount(TakeField(iText));
  std::optional<long long> const beat = ParseCount(TakeField(iText));
  std::optional<long long> const tick = hasTick ? ParseCount(iText) : 0;
  if (!bar || !beat || !tick) return std::nullopt;
  return Host_BarPosition{*bar, *beat, *tick};
}

}  // namespace

Tool_Position Tool_ParsePosition(std::string const & iOption, std::string const & iText) {
  if (std::optional<Amount> const amount = ParseAmount(iText)) {
    return Time_Typed(amount->mCount, amount->mType);
  }
  if (std::optional<Host_BarPosition> const bar = ParseBar(iText)) return *bar;
  throw Tool_UsageError(
      fmt::format("{}: '{}' is not a position such as 960000t, 48000s, 12.5sec or BAR:BEAT[:TICK]",
                  iOption, iText));
}

Time_TypedLength Tool_ParseLength(std::string const & iOption, std::string const & iText) {
  if (std::optional<Amount> const amount = ParseAmount(iText)) {
    return Time_TypedLength(amount->mCount, amount->mType);
  }
  throw Tool_UsageError(
      fmt::format("{}: '{}' is not a length such as 960000t, 48000s or 12.5sec", iOption, iText));
}

Time_Typed Tool_ResolvePosition(std::string const & iOption, Tool_Position const & iPosition,
                                Host_BarMap const & iBars) {
  if (Time_Typed const * const time = std::get_if<Time_Typed>(&iPosition)) return *time;
  Time_Tick tick(0);
  std::string whyNot;
  if (iBars.ToTick(std::get<Host_BarPosition>(iPosition), tick, whyNot)) return tick;
  throw Tool_UsageError(iOption + ": " + whyNot);
}
