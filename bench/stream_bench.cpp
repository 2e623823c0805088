// What saving a chunk of notes costs, and reading it back, beside the same fields written from
// plain structs through the same stream, and read into such. memcpy is the bytes alone, copied
// once.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "bench_ratios.h"
#include "foundation/sys_stream.h"
#include "vrad/vrad_chunk.h"

namespace {

typedef std::vector<unsigned char> Bytes;

constexpr long long kStep = 120000;  // ticks from note to note

// The fields of a saved note and no more, times and lengths being words already.
struct PackedNote {
  long long mTime, mDuration, mQuantizeTimeDelta, mDurationDelta, mOrigDuration;
  signed char mPitch, mOnVelocity, mOffVelocity, mOrigPitch, mOrigOnVelocity, mOrigOffVelocity;
  bool mMuted;
};

// The same fields in a record of the size that a note has in memory.
struct PlainNote : PackedNote {
  char mRest[sizeof(Vrad_NoteListBase_Note) - sizeof(PackedNote)];
};
static_assert(sizeof(PlainNote) == sizeof(Vrad_NoteListBase_Note));

// One note in a hundred is long, one in ten is muted, one in two was edited.
std::unique_ptr<Vrad_Chunk> MakeChunk(long long iNum) {
  std::unique_ptr<Vrad_Chunk> chunkP(Vrad_Chunk::New(Ndo_Object::kNotUndoable, false));
  std::minstd_rand random(1);
  for (long long i = 0; i < iNum; ++i) {
    long long const duration = random() % 100 == 0 ? 16000000 : 30000 + random() % 400000;
    signed char const pitch = static_cast<signed char>(36 + random() % 48);
    Vrae_NoteWithDurationEvent const event(pitch, Time_TickLength(duration), 80, 64);
    Vrae_NoteWithDurationEvent original(event);
    if (random() % 2 == 0) original.SetDuration(Time_TickLength(duration + 1000));
    chunkP->GetNoteList()->AddNote(Vrad_NoteListBase_Note(Time_Tick(i * kStep), event,
                                                          Time_TickLength(random() % 1000),
                                                          original, random() % 10 == 0));
  }
  return chunkP;
}

Bytes WriteChunk(Vrad_Chunk const & iChunk) {
  Sys_MemoryOutStream stream;
  iChunk.StreamOut(stream);
  return stream.GetBytes();
}

template <class TNote>
void ReadPlain(Sys_TypedInStream & ioStream, std::vector<TNote> & oNotes) {
  Sys_StdStreamHeaderReader chunk(ioStream, "VrChun");
  Sys_StdStreamHeaderReader header(ioStream, "VrNLB");
  int count, size;
  short version;
  ioStream.Read(&count);
  oNotes.resize(static_cast<size_t>(count));
  for (TNote & note : oNotes) {
    ioStream.Read(&note.mTime);
    ioStream.Read(&note.mPitch);
    ioStream.Read(&note.mDuration);
    ioStream.Read(&note.mOnVelocity);
    ioStream.Read(&note.mOffVelocity);
    ioStream.Read(&note.mQuantizeTimeDelta);
    ioStream.Read(&note.mDurationDelta);
  }
  ioStream.Read(&count);
  ioStream.Read(&size);
  for (TNote & note : oNotes) {
    ioStream.Read(&note.mOrigPitch);
    ioStream.Read(&note.mOrigDuration);
    ioStream.Read(&note.mOrigOnVelocity);
    ioStream.Read(&note.mOrigOffVelocity);
  }
  ioStream.Read(&count);
  ioStream.Read(&version);
  ioStream.Read(&size);
  for (TNote & note : oNotes)
    ioStream.Read(&note.mMuted);
  header.SkipTheRest();
  chunk.SkipTheRest();
}

template <class TNote>
void WritePlain(Sys_TypedOutStream & ioStream, std::vector<TNote> const & iNotes) {
  int const count = static_cast<int>(iNotes.size());
  Sys_StdStreamHeaderWriter header(ioStream, "VrNLB", 3);
  ioStream.Write(count);
  for (TNote const & note : iNotes) {
    ioStream.Write(note.mTime);
    ioStream.Write(note.mPitch);
    ioStream.Write(note.mDuration);
    ioStream.Write(note.mOnVelocity);
    ioStream.Write(note.mOffVelocity);
    ioStream.Write(note.mQuantizeTimeDelta);
    ioStream.Write(note.mDurationDelta);
  }
  ioStream.Write(count);
  ioStream.Write(11);
  for (TNote const & note : iNotes) {
    ioStream.Write(note.mOrigPitch);
    ioStream.Write(note.mOrigDuration);
    ioStream.Write(note.mOrigOnVelocity);
    ioStream.Write(note.mOrigOffVelocity);
  }
  ioStream.Write(count);
  ioStream.Write(static_cast<short>(1));
  ioStream.Write(1);
  for (TNote const & note : iNotes)
    ioStream.Write(note.mMuted);
  header.PatchSize();
}

void ListStreamOut(benchmark::State & ioState) {
  std::unique_ptr<Vrad_Chunk> const chunkP = MakeChunk(ioState.range(0));
  for (auto _ : ioState) {
    Sys_MemoryOutStream stream;
    chunkP->StreamOut(stream);
    benchmark::DoNotOptimize(stream.GetBytes().data());
  }
  ioState.SetItemsProcessed(ioState.iterations() * ioState.range(0));
}

template <class TNote>
void VectorStreamOut(benchmark::State & ioState) {
  std::vector<TNote> notes;
  Sys_MemoryInStream source(WriteChunk(*MakeChunk(ioState.range(0))));
  ReadPlain(source, notes);
  for (auto _ : ioState) {
    Sys_MemoryOutStream stream;
    WritePlain(stream, notes);
    benchmark::DoNotOptimize(stream.GetBytes().data());
  }
  ioState.SetItemsProcessed(ioState.iterations() * ioState.range(0));
}

void ListStreamIn(benchmark::State & ioState) {
  Sys_MemoryInStream stream(WriteChunk(*MakeChunk(ioState.range(0))));
  for (auto _ : ioState) {
    stream.SetPos(0);
    std::unique_ptr<Vrad_Chunk> const chunkP(
        Vrad_Chunk::StreamIn(stream, Ndo_Object::kNotUndoable, false));
    benchmark::DoNotOptimize(chunkP->GetNoteList()->Size());
  }
  ioState.SetItemsProcessed(ioState.iterations() * ioState.range(0));
}

template <class TNote>
void VectorStreamIn(benchmark::State & ioState) {
  Sys_MemoryInStream stream(WriteChunk(*MakeChunk(ioState.range(0))));
  for (auto _ : ioState) {
    stream.SetPos(0);
    std::vector<TNote> notes;
    ReadPlain(stream, notes);
    benchmark::DoNotOptimize(notes.data());
  }
  ioState.SetItemsProcessed(ioState.iterations() * ioState.range(0));
}

void Memcpy(benchmark::State & ioState) {
  Bytes const bytes = WriteChunk(*MakeChunk(ioState.range(0)));
  for (auto _ : ioState) {
    std::unique_ptr<unsigned char[]> const copy(new unsigned char[bytes.size()]);
    std::memcpy(copy.get(), bytes.data(), bytes.size());
    benchmark::DoNotOptimize(copy.get());
  }
  ioState.SetItemsProcessed(ioState.iterations() * ioState.range(0));
}

void Sizes(benchmark::internal::Benchmark * iBenchmarkP) {
  iBenchmarkP->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(ListStreamOut)->Name("list/StreamOut")->Apply(Sizes);
BENCHMARK(VectorStreamOut<PlainNote>)->Name("vector/StreamOut")->Apply(Sizes);
BENCHMARK(VectorStreamOut<PackedNote>)->Name("packed/StreamOut")->Apply(Sizes);
BENCHMARK(ListStreamIn)->Name("list/StreamIn")->Apply(Sizes);
BENCHMARK(VectorStreamIn<PlainNote>)->Name("vector/StreamIn")->Apply(Sizes);
BENCHMARK(VectorStreamIn<PackedNote>)->Name("packed/StreamIn")->Apply(Sizes);
BENCHMARK(Memcpy)->Name("memcpy")->Apply(Sizes);

}  // namespace

int main(int iNumArgs, char ** iArgs) {
  return Bench_RunWithRatios(iNumArgs, iArgs);
}
