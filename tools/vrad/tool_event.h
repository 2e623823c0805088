// One retrieved event as a line of text or as a JSON object.
#pragma once

#include "foundation/time_typed.h"
#include "host/host_midibars.h"
#include "tools/vrad/tool_output.h"
#include "vrad/vrae_event.h"

/// Where an event comes from.
struct Tool_EventSource {
  int mClip;
  int mTrack;
  int mChannel;  // -1: none
};

/// A retrieved event. What a display item adds is there in display lists alone.
struct Tool_RetrievedEvent {
  Time_Typed mTime;
  Vrae_Event const & mEvent;
  bool mIsDisplayItem;
  bool mIsMuted;
  int mTag;
};

/// One object and a line end, without blanks.
void Tool_PrintEventAsJSON(Tool_Output & ioOut, Tool_EventSource const & iSource,
                           Tool_RetrievedEvent const & iEvent);

/// One line: bar, time, what it is.
void Tool_PrintEventAsText(Tool_Output & ioOut, Host_BarMap const & iBars,
                           Tool_RetrievedEvent const & iEvent);

/// "t" or "s".
char const * Tool_GetUnit(Time_EType iType);

/// As in "3:2:480000". A time in samples is the place of its tick; before the beginning it is "-".
std::string Tool_FormatBar(Host_BarMap const & iBars, Time_Typed iTime);
