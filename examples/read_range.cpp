// [readme]
#include <cstdio>

#include "vrad/vrad.h"

int main() {
  Ndo_AutoPtr<Vrad_Chunk> const chunk(Vrad_Chunk::New(Ndo_Object::kNotUndoable, false));
  Vrae_NoteWithDurationEvent const note(60, Time_TickLength(480000), 100, 64);
  chunk->AddEvent(Vrad_NoteWithDurationExtendedEvent(Time_Tick(960000), note, false));
  chunk->AddEvent(Vrad_ExtendedEvent(Time_Tick(960000), Vrae_ControllerEvent(7, 90)));
  chunk->AddEvent(Vrad_ExtendedEvent(Time_Tick(5000000), Vrae_PitchBendEvent(-200)));

  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  chunk->GetMidiEventsInRange(&wrapper, Time_TickLength(0), Time_Tick(0), Time_Tick(1920000), false,
                              0, 0, kNoteOffInclusion_None);

  for (Vrae_TimedEvent const & event : list) {
    std::printf("%lldt: ", event.mTime.AsInt64());
    if (event.IsNoteWithDurationEvent()) {
      std::printf("note %d for %lldt\n", event.mEvent.AsNoteWithDuration().GetPitch(),
                  event.GetDuration().AsInt64());
    } else {
      Vrae_ControllerEvent const & change = event.mEvent.AsController();
      std::printf("controller %d to %d\n", change.GetControllerNumber(), change.GetValue());
    }
  }
}
// [readme end]
