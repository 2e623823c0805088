#include "tools/vrad/tool_clips.h"

#include <charconv>

#include <fmt/format.h>

#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_names.h"

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

std::string Tool_DescribeClip(Host_MidiFile const & iFile, int iClip) {
  Host_Clip const & clip = iFile.mClips[static_cast<size_t>(iClip)];
  std::string const name =
      Tool_MakePrintable(iFile.mTracks[static_cast<size_t>(clip.mTrack)].mName, 60);
  std::string const channel =
      clip.mChannel < 0 ? "no channel" : fmt::format("channel {}", clip.mChannel);
  return fmt::format("clip {}: track {}, {}{}{}", iClip, clip.mTrack, channel,
                     name.empty() ? "" : ", ", name);
}

size_t Tool_CountNotes(Host_Song const & iSong, int iClip) {
  Vrad_Chunk & chunk = *iSong.mClips[static_cast<size_t>(iClip)].mChunk.Get();
  return static_cast<size_t>(chunk.GetNoteList()->Size());
}
