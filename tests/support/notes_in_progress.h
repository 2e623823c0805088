// A pool for notes in progress, and how tests print what is in a track state.
#pragma once

#include <string>

#include "foundation/mem2_masterallocator.h"
#include "vrad/vrae_noteinprogress.h"
#include "vrad/vrae_trackstate.h"

/// The allocator of all notes in progress while it lives.
class NoteInProgressPool {
public:
  explicit NoteInProgressPool(int iPoolBytes = 1 << 16) : mAllocator(iPoolBytes) {
    Vrae_NoteInProgress::SetAllocator(&mAllocator);
  }
  ~NoteInProgressPool() { Vrae_NoteInProgress::SetAllocator(nullptr); }
  NoteInProgressPool(NoteInProgressPool const &) = delete;
  NoteInProgressPool & operator=(NoteInProgressPool const &) = delete;

  Mem2_MasterAllocator mAllocator;
};

/// "60@480t 64@12s": pitch, count and unit of the release time, in list order.
inline std::string PrintNotes(Vrae_TrackState const & iState) {
  std::string text;
  for (Vrae_NoteInProgress const * nip = iState.NextNoteOff(); nip != nullptr; nip = nip->mNextP) {
    text += (text.empty() ? "" : " ") + std::to_string(nip->mPitch) + "@" +
            std::to_string(nip->mReleaseTime.AsInt64()) +
            (nip->mReleaseTime.GetType() == Time_eType_Ticks ? "t" : "s");
  }
  return text;
}

/// A note of the given velocities, in ticks.
inline Vrae_TimedEvent TimedNote(long long iTick, signed char iPitch, long long iTicks,
                                 signed char iOnVelocity = 80, signed char iOffVelocity = 64) {
  return Vrae_TimedEvent(
      Time_Tick(iTick),
      Vrae_NoteWithDurationEvent(iPitch, Time_TickLength(iTicks), iOnVelocity, iOffVelocity));
}
