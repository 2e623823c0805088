// What reading a MIDI file of notes takes beside adding the same notes from memory, and writing it.
//
// The mark, in one run: reading takes at most twice as long as adding.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "bench_ratios.h"
#include "host/host_midifile.h"
#include "host/host_midiwriter.h"
#include "ndo/ndo_ptr.h"
#include "vrad/vrad_chunk.h"

namespace {

typedef Ndo_AutoPtr<Vrad_Chunk> ChunkPtr;
typedef Vrad_NoteListBase::FullNotesInRangeIter NoteIter;

constexpr long long kStep = 120000;  // ticks from note to note: 60 of 480 to the quarter
constexpr long long kFileTick = 2000;

// An eighth of a beat apart, up to four sounding at a time, one in a hundred long.
ChunkPtr MakeChunk(long long iNum) {
  ChunkPtr chunk(Vrad_Chunk::New(Ndo_Object::kUndoable, false));
  std::minstd_rand random(1);
  for (long long i = 0; i < iNum; ++i) {
    long long const numFileTicks = random() % 100 == 0 ? 8000 : 15 + random() % 200;
    chunk->AddEvent(Vrad_NoteWithDurationExtendedEvent(
        Time_Tick(i * kStep),
        Vrae_NoteWithDurationEvent(static_cast<signed char>(i % 128),
                                   Time_TickLength(numFileTicks * kFileTick), 80,
                                   static_cast<signed char>(random() % 128)),
        false));
  }
  return chunk;
}

Host_Song MakeSong(long long iNum) {
  Host_Song song;
  song.mTracks.push_back({"", Time_Tick((iNum + 64) * kStep)});
  song.mClips.push_back({0, 0, MakeChunk(iNum)});
  return song;
}

std::vector<unsigned char> MakeFile(long long iNum) {
  Host_WriteReport report;
  return Host_WriteMidiFile(MakeSong(iNum), report);
}

void Read(benchmark::State & ioState) {
  std::vector<unsigned char> const file = MakeFile(ioState.range(0));
  for (auto _ : ioState) {
    Host_MidiFile const song = Host_ReadMidiFile(file);
    benchmark::DoNotOptimize(song.mClips.front().mChunk->GetNoteList()->Size());
  }
  ioState.SetItemsProcessed(ioState.iterations() * ioState.range(0));
}

void Add(benchmark::State & ioState) {
  Host_MidiFile const song = Host_ReadMidiFile(MakeFile(ioState.range(0)));
  std::vector<Vrad_NoteWithDurationExtendedEvent> notes;
  for (NoteIter iter(song.mClips.front().mChunk->GetNoteList(),
                     Time_Typed::MinTime(Time_eType_Ticks), Time_Typed::MaxTime(Time_eType_Ticks));
       iter.IsMore(); ++iter)
    notes.emplace_back((*iter).mTime, (*iter).mEvent, false);
  for (auto _ : ioState) {
    ChunkPtr const chunk(Vrad_Chunk::New(Ndo_Object::kUndoable, false));
    for (auto const & note : notes)
      chunk->AddEvent(note);
    benchmark::DoNotOptimize(chunk->GetNoteList()->Size());
  }
  ioState.SetItemsProcessed(ioState.iterations() * ioState.range(0));
}

void Write(benchmark::State & ioState) {
  Host_Song const song = MakeSong(ioState.range(0));
  for (auto _ : ioState) {
    Host_WriteReport report;
    benchmark::DoNotOptimize(Host_WriteMidiFile(song, report).size());
  }
  ioState.SetItemsProcessed(ioState.iterations() * ioState.range(0));
}

BENCHMARK(Read)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(Add)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(Write)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int iNumArgs, char ** iArgs) {
  return Bench_RunWithRatios(iNumArgs, iArgs,
                             {{"Read/10000", "Add/10000"}, {"Read/1000000", "Add/1000000"}});
}
