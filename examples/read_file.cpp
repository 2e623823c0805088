// Reads a Standard MIDI File and counts what each of its clips holds in the first four beats.
#include <cstdio>
#include <exception>

#include "host/host_midifile.h"
#include "vrad/vrad.h"

namespace {

void PrintCounts(Host_Clip const & iClip) {
  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  Time_Tick const end(4 * Time_Globals::kTicksPerBeat);
  iClip.mChunk->GetMidiEventsInRange(&wrapper, Time_TickLength(0), Time_Tick(0), end, false, 0, 0,
                                     kNoteOffInclusion_None);
  int numNotes = 0;
  for (Vrae_TimedEvent const & event : list)
    numNotes += event.IsNoteWithDurationEvent();
  std::printf("track %d, channel %d: %d notes, %d other events\n", iClip.mTrack, iClip.mChannel,
              numNotes, static_cast<int>(list.size()) - numNotes);
}

}  // namespace

int main(int iNumArgs, char ** iArgs) {
  if (iNumArgs != 2) {
    std::fprintf(stderr, "usage: read_file FILE\n");
    return 2;
  }
  try {
    Host_MidiFile const file = Host_ReadMidiFile(iArgs[1]);
    for (Host_Clip const & clip : file.mClips)
      PrintCounts(clip);
  } catch (std::exception const & exception) {
    std::fprintf(stderr, "%s: %s\n", iArgs[1], exception.what());
    return 1;
  }
}
