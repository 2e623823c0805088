// One retrieved event as a line of text or as a JSON object.
#pragma once

#include <span>
#include <string>

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

/// The beginning of an object, down to the unit of its time.
void Tool_PrintSourceAsJSON(Tool_Output & ioOut, Tool_EventSource const & iSource,
                            Time_Typed iTime);

/// The beginning of a line: bar and time.
void Tool_PrintPlace(Tool_Output & ioOut, Host_BarMap const & iBars, Time_Typed iTime);

/// What the event is, without a line end.
void Tool_DescribeEvent(Tool_Output & ioOut, Vrae_Event const & iEvent);

/// As in "60 C4".
std::string Tool_FormatPitch(int iPitch);

/// At most iMaxBytes in hexadecimal digits with blanks between.
void Tool_PrintBytes(Tool_Output & ioOut, std::span<unsigned char const> iBytes, size_t iMaxBytes);

/// "t" or "s".
char const * Tool_GetUnit(Time_EType iType);

/// As in "3:2:480000". A time in samples is the place of its tick; before the beginning it is "-".
std::string Tool_FormatBar(Host_BarMap const & iBars, Time_Typed iTime);
