// What a block costs in a player, and what a jump costs whatever the clip holds.
//
// The marks, in one run: a jump in a clip of 1,000,000 notes and 119 controllers takes at most 3
// times as long as in one of 10,000 notes with equally many sounding, and at most 1/100 of a walk
// over the clip's events up to the position.
#include <benchmark/benchmark.h>

#include <map>

#include "bench_ratios.h"
#include "host/host_blockplayer.h"
#include "host/host_notepool.h"
#include "ndo/ndo_ptr.h"
#include "vrad/vrad_chunk.h"

namespace {

typedef Ndo_AutoPtr<Vrad_Chunk> ChunkPtr;

constexpr long long kTicksPerNote = 4000, kNoteLength = 40000;  // so ten notes sound at a time
constexpr int kBlockSize = 256;
constexpr long long kTicksPerSample = 40;

Host_NotePool gPool;

// Counts what it gets, as a port would look at it.
class Counter : public Host_BlockReceiver {
public:
  void ReceiveMessage(Host_WireMessage const & iMessage) override { mNumBytes += iMessage.mLength; }
  long long mNumBytes = 0;
};

ChunkPtr MakeClip(int iNumNotes, int iNumControllers) {
  ChunkPtr chunk(Vrad_Chunk::New(Ndo_Object::kNotUndoable, false));
  for (int i = 0; i < iNumNotes; ++i)
    chunk->AddEvent(Vrad_NoteWithDurationExtendedEvent(
        Time_Tick(i * kTicksPerNote),
        Vrae_NoteWithDurationEvent(static_cast<signed char>(36 + i % 61),
                                   Time_TickLength(kNoteLength), 100, 64),
        false));
  // One value for each hundred notes, in each stream; of those that select parameters one of a few,
  // so that clips of any size have equally many.
  constexpr int kNumParameters = 4, kFirstSelection = 98, kLastSelection = 101;
  for (int number = 1; number <= iNumControllers; ++number)
    for (int i = 0; i < iNumNotes / 100; ++i) {
      bool const selects = number >= kFirstSelection && number <= kLastSelection;
      int const value = selects ? i % kNumParameters : (i * 7 + number) % 128;
      chunk->AddEvent(Vrad_ExtendedEvent(
          Time_Tick(i * 100 * kTicksPerNote + number),
          Vrae_ControllerEvent(static_cast<signed char>(number), static_cast<signed char>(value))));
    }
  return chunk;
}

void Block(benchmark::State & ioState) {
  static ChunkPtr const sClip = MakeClip(100000, 0);
  Counter counter;
  Host_BlockPlayer player(&counter);
  int const numClips = static_cast<int>(ioState.range(0));
  for (int i = 0; i < numClips; ++i)
    player.AddClip(sClip.Get(), i % 16, i);
  long long const end = 100000 * kTicksPerNote / kTicksPerSample - 2 * kBlockSize;
  player.Start(Time_Sample(0));
  for (auto _ : ioState) {
    if (player.GetPosition().AsInt64() > end) player.Locate(Time_Sample(1000));
    player.Process(kBlockSize);
  }
  benchmark::DoNotOptimize(counter.mNumBytes);
}

// The clip of that many notes.
Vrad_Chunk & ClipOf(long long iNumNotes) {
  static std::map<long long, ChunkPtr> sClips;
  auto const [iter, isNew] = sClips.try_emplace(iNumNotes);
  if (isNew) iter->second = MakeClip(static_cast<int>(iNumNotes), 119);
  return *iter->second.Get();
}

// Positions in the second half, some way off each other, so that most values differ.
Time_Tick PositionOf(long long iNumNotes, int iStep) {
  long long const last = iNumNotes * kTicksPerNote;
  return Time_Tick(last / 2 + (iStep * 7919LL * kTicksPerNote + 17) % (last / 2));
}

void Jump(benchmark::State & ioState) {
  Counter counter;
  Host_BlockPlayer player(&counter);
  player.AddClip(&ClipOf(ioState.range(0)), 0, 0);
  player.Start(PositionOf(ioState.range(0), 0));
  player.Process(0);
  int step = 0;
  for (auto _ : ioState) {
    player.Locate(PositionOf(ioState.range(0), ++step));
    player.Process(0);
  }
  ioState.counters["bytes"] = benchmark::Counter(static_cast<double>(counter.mNumBytes),
                                                 benchmark::Counter::kAvgIterations);
}

// The state at a position as a player without an index finds it: each event up to it, in order.
void Walk(benchmark::State & ioState) {
  Vrad_Chunk & clip = ClipOf(ioState.range(0));
  int step = 0;
  for (auto _ : ioState) {
    Time_Typed const position = PositionOf(ioState.range(0), ++step);
    int numSounding = 0, values[128] = {};
    for (Vrad_NoteListBase::FullNotesInRangeIter iter(
             clip.GetNoteList(), Time_Typed::MinTime(Time_eType_Ticks), position);
         iter.IsMore(); ++iter)
      if (position < (*iter).mTime + (*iter).mEvent.GetDuration()) ++numSounding;
    for (auto const & streamP : clip.GetContinuousList())
      for (Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(
               streamP.Get(), Time_Typed::MinTime(Time_eType_Ticks), position);
           iter.IsMore(); ++iter)
        values[streamP->GetSubStream().GetSubType()] =
            streamP->GetSubStream().GetValueFromEvent((*iter).mEvent);
    benchmark::DoNotOptimize(numSounding);
    benchmark::DoNotOptimize(values[7]);
  }
}

void AddClip(benchmark::State & ioState) {
  Vrad_Chunk & clip = ClipOf(ioState.range(0));
  for (auto _ : ioState) {
    Host_BlockPlayer player(nullptr);
    player.AddClip(&clip, 0, 0);
  }
}

// A note was edited, and the player is told where.
void TellEdit(benchmark::State & ioState) {
  Vrad_Chunk & clip = ClipOf(ioState.range(0));
  Host_BlockPlayer player(nullptr);
  player.AddClip(&clip, 0, 0);
  Time_Typed const time = PositionOf(ioState.range(0), 1);
  for (auto _ : ioState)
    player.ClipEdited(0, time, time + Time_TickLength(1));
}

BENCHMARK(Block)->Arg(1)->Arg(16)->Arg(128);
BENCHMARK(Jump)->Arg(10000)->Arg(1000000);
BENCHMARK(Walk)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(AddClip)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(TellEdit)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int iNumArgs, char ** iArgs) {
  return Bench_RunWithRatios(iNumArgs, iArgs,
                             {{"Jump/1000000", "Jump/10000"}, {"Jump/1000000", "Walk/1000000"}});
}
