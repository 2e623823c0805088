#include "tools/vrad/tool_player.h"

#include <algorithm>

#include <fmt/format.h>

#include "foundation/time_convert.h"
#include "tools/vrad/tool_output.h"
#include "vrad/vrad_extendedeventlist.h"

namespace {

// Of what begins and what ends in it, in samples.
long long FindLast(Vrad_Chunk const & iChunk) {
  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  iChunk.GetMidiEventsInRange(&wrapper, Time_TypedLength(), Time_Typed::MinTime(Time_eType_Ticks),
                              Time_Typed::MaxTime(Time_eType_Ticks), false, nullptr, nullptr,
                              kNoteOffInclusion_None);
  long long last = 0;
  for (Vrae_TimedEvent const & event : list) {
    bool const isNote = event.IsNoteWithDurationEvent();
    last = std::max(last, Tool_ToSample(isNote ? event.mTime + event.GetDuration() : event.mTime));
  }
  return last;
}

}  // namespace

Tool_Player::Tool_Player(Host_Song const & iSong, std::vector<int> const & iClips,
                         Host_BlockReceiver & iReceiver)
    : mPlayer(&iReceiver) {
  for (int i : iClips) {
    Host_Clip const & clip = iSong.mClips[static_cast<size_t>(i)];
    mPlayer.AddClip(clip.mChunk.Get(), clip.mChannel, i);
  }
}

bool Tool_Player::TellLostNotes() const {
  int const numLost = mPlayer.GetNumLostNotes();
  if (numLost == 0) return true;
  Tool_TellError(fmt::format("{} left out: more than {} would sound at once",
                             numLost == 1 ? "1 note was" : fmt::format("{} notes were", numLost),
                             Host_NotePool::kDefaultNumNotes));
  return false;
}

long long Tool_FindEnd(Host_Song const & iSong, std::vector<int> const & iClips) {
  long long last = Tool_ToSample(iSong.GetEnd());
  for (int clip : iClips) {
    last = std::max(last, FindLast(*iSong.mClips[static_cast<size_t>(clip)].mChunk.Get()));
  }
  return last + 1;
}

long long Tool_ToSample(Time_Typed iPosition) {
  return Time_Convert::sTimeConverter->ToType(iPosition, Time_eType_Samples).AsInt64();
}
