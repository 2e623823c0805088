#include "tools/vrad/tool_clips.h"

#include <charconv>

#include <fmt/format.h>

#include "tools/vrad/tool_error.h"

std::optional<long long> Tool_ParseClip(std::optional<std::string> const & iText) {
  if (!iText) return std::nullopt;
  long long clip = 0;
  char const * const end = iText->data() + iText->size();
  auto const [stop, error] = std::from_chars(iText->data(), end, clip);
  if (error == std::errc() && stop == end) return clip;
  throw Tool_UsageError(fmt::format("--clip: '{}' is not the number of a clip", *iText));
}

std::vector<int> Tool_SelectClips(std::optional<long long> iClip, int iNumClips) {
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
