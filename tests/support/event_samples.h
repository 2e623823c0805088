// Events for tests that go through all kinds, and what checks such a test may expect.
#pragma once

#include <string>
#include <vector>

#include "cmn/cmn_assert.h"
#include "vrad/vrae_event.h"

// A sound event of one kind, 0 to 23. Kind 15 is complete, of 20 stored bytes.
inline Vrae_Event MakeSampleEvent(int iKind) {
  static unsigned char const kContents[18] = {1,  2,  3,  4,  5,  6,  7,  8,  9,
                                              10, 11, 12, 13, 14, 15, 16, 17, 18};
  Time_TypedLength const duration(480, Time_eType_Ticks);
  switch (iKind) {
  case Vrae_Event::kNoteOn:
    return Vrae_NoteOnEvent(60, 100);
  case Vrae_Event::kNoteOff:
    return Vrae_NoteOffEvent(60, 30);
  case Vrae_Event::kNoteWithDuration:
    return Vrae_NoteWithDurationEvent(60, duration, 100, 30);
  case Vrae_Event::kPitchBend:
    return Vrae_PitchBendEvent(1000);
  case Vrae_Event::kController:
    return Vrae_ControllerEvent(7, 90);
  case Vrae_Event::kProgram:
    return Vrae_ProgramEvent(5, 3);
  case Vrae_Event::kMonoPressure:
    return Vrae_MonoPressureEvent(70);
  case Vrae_Event::kPolyPressure:
    return Vrae_PolyPressureEvent(61, 71);
  case Vrae_Event::kSongPosition:
    return Vrae_SongPositionEvent(300);
  case Vrae_Event::kStart:
    return Vrae_StartEvent();
  case Vrae_Event::kContinue:
    return Vrae_ContinueEvent();
  case Vrae_Event::kStop:
    return Vrae_StopEvent();
  case Vrae_Event::kTimingClock:
    return Vrae_TimingClockEvent();
  case Vrae_Event::kShortSysex:
    return Vrae_SysexEvent(3, kContents);
  case Vrae_Event::kLongSysex:
    return Vrae_SysexEvent(18, kContents);
  case Vrae_Event::kSysexPacket:
    return Vrae_SysexPacketEvent(3, kContents, nullptr);
  case Vrae_Event::kClearNoteInProgress:
    return Vrae_ClearNoteInProgressEvent(60, duration, 100, 30);
  case Vrae_Event::kAddNoteInProgress:
    return Vrae_AddNoteInProgressEvent(60, duration, 100, 30);
  case Vrae_Event::kReleaseController:
    return Vrae_ReleaseControllerEvent(64);
  case Vrae_Event::kAllNotesOff:
    return Vrae_AllNotesOffEvent();
  case Vrae_Event::kQuarterFrame:
    return Vrae_QuarterFrameEvent(0x35);
  case Vrae_Event::kPitchToMIDINoteWithDuration:
    return Vrae_PitchToMIDINoteWithDuration(60, duration, 100, 30, 0.25f);
  case Vrae_Event::kClipEvent:
    return Vrae_ClipEvent("region", duration);
  default:
    return Vrae_Event();
  }
}

// A record of any kind, sound or not: all fields zero but the kind.
inline Vrae_Event MakeBlankEvent(int iKind) {
  Vrae_Event event;
  event.mU.mBase.mType = static_cast<signed char>(iKind);
  return event;
}

// The texts that failed while iBody ran, in order. A throwing check ends the body, unless iThrowing
// is false.
template <class TBody>
std::vector<std::string> GetFailedChecks(TBody const & iBody, bool iThrowing = true) {
  Cmn_AssertRecorder const recorder;
  bool const former = Cmn_Assert::SetThrowing(iThrowing);
  try {
    iBody();
  } catch (Cmn_AssertException const &) {
  }
  Cmn_Assert::SetThrowing(former);
  std::vector<std::string> texts;
  for (Cmn_AssertRecorder::Entry const & entry : recorder.GetEntries())
    texts.push_back(entry.mCondition);
  return texts;
}
