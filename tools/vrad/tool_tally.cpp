#include "tools/vrad/tool_tally.h"

#include "vrad/vrad_extendedeventlist.h"

Tool_Tally::Tool_Tally(Vrad_Chunk const & iChunk) {
  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  iChunk.GetMidiEventsInRange(&wrapper, Time_TypedLength(), Time_Typed::MinTime(Time_eType_Ticks),
                              Time_Typed::MaxTime(Time_eType_Ticks), false, nullptr, nullptr,
                              kNoteOffInclusion_None);
  for (Vrae_TimedEvent const & event : list)
    Count(event.mEvent);
}

void Tool_Tally::Count(Vrae_Event const & iEvent) {
  switch (iEvent.GetType()) {
  case Vrae_Event::kNoteWithDuration:
  case Vrae_Event::kPitchToMIDINoteWithDuration:
    ++mNumNotes;
    break;
  case Vrae_Event::kPitchBend:
    ++mNumBends;
    break;
  case Vrae_Event::kController:
    ++mNumControllers;
    mControllers[static_cast<size_t>(iEvent.AsController().GetControllerNumber())] = true;
    break;
  case Vrae_Event::kProgram:
    ++mNumPrograms;
    break;
  case Vrae_Event::kMonoPressure:
    ++mNumPressures;
    break;
  case Vrae_Event::kPolyPressure:
    ++mNumPolyPressures;
    break;
  case Vrae_Event::kShortSysex:
  case Vrae_Event::kLongSysex:
    ++mNumSysexes;
    break;
  default:
    break;
  }
}
