// What a dragged play position passes in one clip, and how it is printed.
#pragma once

#include <cstddef>
#include <functional>

#include "foundation/time_typed.h"
#include "host/host_midibars.h"
#include "tools/vrad/tool_event.h"
#include "tools/vrad/tool_output.h"
#include "vrad/vrad_chunk.h"
#include "vrad/vrad_scrub.h"

/// A transition that the position passes.
struct Tool_PassedTransition {
  Vrad_ScrubEvent const & mEvent;  // at a tick
  bool mIsForward;
};

/// The notes and bends of a clip, with a position among them.
class Tool_Scrubber {
public:
  typedef std::function<void(Tool_PassedTransition const &)> Receiver;

  /// Puts the position at a tick, with all that lies behind it passed. What neither begins nor ends
  /// from `iFrom` to `iTo` is left out. The bend before the first one is 0.
  Tool_Scrubber(Vrad_Chunk const & iChunk, Time_Tick iFrom, Time_Tick iTo);

  /// At most so many are passed on the way.
  size_t GetNumTransitions() const { return mNumTransitions; }

  /// Moves to a tick, and hands over what is passed on the way, in order.
  void MoveTo(Time_Tick iTick, Receiver const & iReceiver);

private:
  void Fill(Vrad_Chunk const & iChunk, long long iFirst, long long iLast);

  Vrad_ScrubList mList;
  size_t mNumTransitions = 0;
  long long mPosition;
};

/// One object and a line end, without blanks.
void Tool_PrintScrubAsJSON(Tool_Output & ioOut, Tool_EventSource const & iSource,
                           Tool_PassedTransition const & iTransition);

/// One line: bar, time, the direction, what is passed.
void Tool_PrintScrubAsText(Tool_Output & ioOut, Host_BarMap const & iBars,
                           Tool_PassedTransition const & iTransition);
