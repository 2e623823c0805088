// Reads any bytes as a MIDI file. Whatever they are, reading gives an error with a place inside the
// file or a file whose clips hold up: no check fires on the way, events come out in order of time
// from 0 on, and reading again gives the same. Written as a file again, the song loses nothing: it
// is read as the same song, which is written as the same bytes.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "cmn/cmn_assert.h"
#include "foundation/sys_delayeddeletion.h"
#include "host/host_midifile.h"
#include "host/host_midiwriter.h"
#include "ndo/ndo_manager.h"
#include "tests/host/song_print.h"
#include "vrad/vrad_extendedeventlist.h"

namespace {

void Demand(bool iHolds, char const * iWhat) {
  if (iHolds) return;
  std::fprintf(stderr, "violated: %s\n", iWhat);
  std::abort();
}

// A checksum over what matters of a clip's events.
unsigned long long CheckClip(Vrad_Chunk const & iChunk) {
  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  iChunk.GetMidiEventsInRange(&wrapper, Time_TypedLength(), Time_Typed::MinTime(Time_eType_Ticks),
                              Time_Typed::MaxTime(Time_eType_Ticks), false, nullptr, nullptr,
                              kNoteOffInclusion_None);
  Demand(!list.empty(), "a clip holds something");
  long long before = 0;
  unsigned long long sum = 0;
  for (Vrae_TimedEvent const & event : list) {
    Demand(event.mTime.GetType() == Time_eType_Ticks, "times are ticks");
    Demand(event.mTime.AsInt64() >= before, "times never fall");
    before = event.mTime.AsInt64();
    sum = sum * 31 + static_cast<unsigned long long>(before) +
          static_cast<unsigned long long>(event.mEvent.GetType());
    if (event.IsNoteWithDurationEvent()) {
      Demand(event.GetDuration().AsInt64() >= 1, "notes last");
      sum = sum * 31 + static_cast<unsigned long long>(event.GetDuration().AsInt64());
    }
  }
  return sum;
}

// Only the format may change, and is checked by itself.
void CheckWriting(Host_Song const & iSong) {
  Host_WriteReport report, again;
  midi::Bytes const bytes = Host_WriteMidiFile(iSong, report);
  Demand(report.IsEmpty(), "what was read can be written");
  Host_Song const copy = Host_ReadMidiFile(bytes);
  Demand(copy.mReport.GetNumProblems() == 0, "what was written reads whole");
  for (Host_MidiReport::NotKept const & line : copy.mReport.GetNotKept())
    Demand(line.mName == "text", "all that was written is kept, but for what bridges long gaps");
  Demand(copy.mHeader.mFormat == iSong.mHeader.mFormat ||
             (copy.mHeader.mFormat == 1 && iSong.mTracks.size() != 1),
         "formats alike");
  Demand(midi::PrintSong(copy) == midi::PrintSong(iSong), "songs alike");
  Demand(Host_WriteMidiFile(copy, again) == bytes, "read and written alike");
}

unsigned long long CheckFile(std::span<unsigned char const> iBytes) {
  unsigned long long sum = 0;
  try {
    Host_MidiFile const file = Host_ReadMidiFile(iBytes);
    for (Host_Clip const & clip : file.mClips)
      sum = sum * 31 + CheckClip(*clip.mChunk.Get());
    Demand(!file.mReport.IsLossy() || file.mReport.GetNumProblems() > 0, "losses are told");
    for (Host_MidiReport::Problem const & problem : file.mReport.GetProblems()) {
      Demand(problem.mOffset <= iBytes.size(), "problems lie inside the file");
    }
    CheckWriting(file);
  } catch (Host_MidiFileError const & error) {
    Demand(error.GetOffset() <= iBytes.size(), "errors lie inside the file");
    sum = error.GetOffset() + 1;
  }
  Ndo_gManager.DropUnreferenced();
  Sys_DelayedDeletionQueue::DeletePending();
  return sum;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(unsigned char const * iData, size_t iSize) {
  Cmn_AssertRecorder recorder;
  unsigned long long const first = CheckFile({iData, iSize});
  Demand(CheckFile({iData, iSize}) == first, "reading again gives the same");
  Demand(recorder.GetNum() == 0, "no check fires");
  return 0;
}
