// The program of a clip, whole: a program change takes the bank that was given last, which may be
// long before.
#pragma once

#include <vector>

#include "foundation/time_typed.h"
#include "host/host_playposition.h"
#include "vrad/vrae_event.h"
#include "vrad/vrae_timedevent.h"

class Vrad_Chunk;

/// p programs: building costs O(p), finding what stands at a position O(log p).
/// Thread: one at a time. `Build` takes memory, nothing else does.
class Host_ProgramChase {
public:
  /// `iUnits`: of all times of the clip, by which positions are looked at.
  /// Fails: std::bad_alloc; the former contents stay.
  void Build(Vrad_Chunk const & iChunk, Host_TimeUnits iUnits);

  /// Sends what selects the program that stands at the position: all its parts that are known,
  /// then the bank given since. `iIsReached`: what comes there counts.
  void Send(Host_PlayPosition const & iPosition, bool iIsReached,
            Vrae_EventReceiver & iOutput) const;
  /// Whether one position leaves what the other one selects. `iIsLeftPlayed`: what comes at the one
  /// that is left has been sent.
  bool IsSame(Host_PlayPosition const & iLeft, bool iIsLeftPlayed,
              Host_PlayPosition const & iPosition) const;
  bool IsSame(Host_ProgramChase const & iOther, Host_PlayPosition const & iPosition) const;

private:
  static constexpr int kUnknown = -1;

  struct State {
    Time_Typed mTime;
    int mProgram = kUnknown;
    int mMSB = kUnknown, mLSB = kUnknown;          // as they stood when the program was given
    int mNextMSB = kUnknown, mNextLSB = kUnknown;  // as they stand for the next one
    bool SendsAs(State const & iOther) const;
  };

  State GetState(Host_PlayPosition const & iPosition, bool iIsPlayed = true) const;
  static Vrae_ProgramEvent MakeEvent(int iProgram, int iMSB, int iLSB);

  std::vector<State> mStates;  // from its time on; rising
  Host_TimeUnits mUnits;
};
