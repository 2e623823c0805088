// What a scrub list hands out, in print, and short ways to fill one.
#pragma once

#include <string>

#include "vrad/vrad_scrub.h"
#include "vrad/vrae_event.h"

/// Of no length, too, which an event cannot be given by its own operations.
inline Vrae_TimedEvent ScrubNote(int iPitch, long long iTick, long long iTicks) {
  Vrae_NoteWithDurationEvent note(static_cast<signed char>(iPitch), Time_TickLength(1), 80, 64);
  note.mU.mNoteWithDuration.mDuration = iTicks;
  return Vrae_TimedEvent(Time_Tick(iTick), note);
}
inline Vrae_TimedEvent ScrubBend(int iBend, long long iTick) {
  return Vrae_TimedEvent(Time_Tick(iTick), Vrae_PitchBendEvent(static_cast<short>(iBend)));
}

/// "start60@10", "end60@20", "from0@5", "to100@5"; "none" for null.
inline std::string Print(Vrad_ScrubEvent const * iEventP) {
  static char const * const kNames[] = {"end", "from", "to", "start"};
  if (!iEventP) return "none";
  return kNames[iEventP->mType] + std::to_string(iEventP->mValue) + "@" +
         std::to_string(iEventP->mTime);
}

/// All that is handed out on the way to a time.
inline std::string MoveTo(Vrad_ScrubList & ioList, long long iTicks) {
  std::string line;
  while (Vrad_ScrubEvent const * const eventP = ioList.MoveTowards(Time_Tick(iTicks)))
    line += (line.empty() ? "" : " ") + Print(eventP);
  return line;
}
