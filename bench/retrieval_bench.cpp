// What one audio block of playback costs in a clip of many notes and 119 controller streams, beside
// a sorted vector of the same events that fills the same kind of list.
//
// All clips have the same density, so that a block holds equally many events in each; only their
// length grows. Blocks are taken one behind the other, as in playback, or at random: the same ones
// for the clip and for the vector.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <vector>

#include "vrad/vrad.h"

namespace {

constexpr long long kTicksPerBlock = 256 * 40;  // 48 kHz, 120 beats a minute
constexpr long long kTicksPerNote = kTicksPerBlock / 4;
constexpr int kNumStreams = 119;
constexpr long long kTicksPerValue = 64 * kTicksPerBlock;  // of one stream
constexpr int kNumPlaces = 1024;

struct Clip {
  explicit Clip(int iNumNotes) : mChunk(Vrad_Chunk::New(Ndo_Object::kUndoable, false)) {
    FillNotes(iNumNotes);
    FillStreams(iNumNotes * kTicksPerNote);
    std::stable_sort(mEvents.begin(), mEvents.end(), Vrae_TimedEvent::PlaybackOrdering);
    std::mt19937 random(1);
    std::uniform_int_distribution<long long> block(0,
                                                   iNumNotes * kTicksPerNote / kTicksPerBlock - 1);
    for (int i = 0; i < kNumPlaces; ++i) {
      mRandomPlaces.push_back(block(random) * kTicksPerBlock);
      mPlaybackPlaces.push_back((iNumNotes / 8 + i) * kTicksPerBlock);
    }
  }

  // A clip's lists, kept from one benchmark to the next: making the longest takes a while.
  static Clip & Get(int iNumNotes) {
    static std::map<int, std::unique_ptr<Clip>> sClips;
    std::unique_ptr<Clip> & clipP = sClips[iNumNotes];
    if (!clipP) clipP = std::make_unique<Clip>(iNumNotes);
    return *clipP;
  }

  Ndo_AutoPtr<Vrad_Chunk> mChunk;
  std::vector<Vrad_ExtendedEvent> mEvents;  // the same events, in playback order
  std::vector<long long> mRandomPlaces;     // where blocks start
  std::vector<long long> mPlaybackPlaces;   // each where the one before ends

private:
  void FillNotes(int iNumNotes) {
    std::mt19937 random(2);
    for (int i = 0; i < iNumNotes; ++i) {
      signed char const pitch = static_cast<signed char>(random() % 128);
      long long const length = 1 + static_cast<long long>(random() % (8 * kTicksPerBlock));
      Vrae_NoteWithDurationEvent const note(pitch, Time_TickLength(length), 100, 64);
      Add(Vrad_NoteWithDurationExtendedEvent(Time_Tick(i * kTicksPerNote), note, false));
    }
  }

  void FillStreams(long long iEnd) {
    for (int stream = 0; stream < kNumStreams; ++stream) {
      signed char value = 0;
      for (long long time = stream * kTicksPerValue / kNumStreams; time < iEnd;
           time += kTicksPerValue) {
        value = static_cast<signed char>((value + 1) % 128);
        Vrae_ControllerEvent const event(static_cast<signed char>(stream), value);
        Add(Vrad_ExtendedEvent(Time_Tick(time), event));
      }
    }
  }

  void Add(Vrad_ExtendedEvent const & iEvent) {
    mChunk->AddEvent(iEvent);
    mEvents.push_back(iEvent);
  }
};

void Retrieve(Clip const & iClip, long long iStart, Vrae_TimedEventList & ioList,
              ENoteOffInclusion iMarker) {
  Vrad_EventListWrapper wrapper(&ioList);
  iClip.mChunk->GetMidiEventsInRange(&wrapper, Time_TickLength(0), Time_Tick(iStart),
                                     Time_Tick(iStart + kTicksPerBlock), false, 0, 0, iMarker);
}

typedef std::vector<long long> Clip::*Places;

/// Retrieves block after block with `iRetrieve(clip, start, list)`.
template <class TRetrieve>
void RunBlocks(benchmark::State & ioState, Places iPlaces, TRetrieve iRetrieve) {
  Clip const & clip = Clip::Get(static_cast<int>(ioState.range(0)));
  std::vector<long long> const & places = clip.*iPlaces;
  Vrae_TimedEventList list;
  size_t place = 0, numEvents = 0;
  for (auto _ : ioState) {
    list.clear();
    iRetrieve(clip, places[place++ % kNumPlaces], list);
    numEvents += list.size();
  }
  ioState.counters["events"] =
      static_cast<double>(numEvents) / static_cast<double>(ioState.iterations());
}

void OfChunk(Clip const & iClip, long long iStart, Vrae_TimedEventList & ioList) {
  Retrieve(iClip, iStart, ioList, kNoteOffInclusion_None);
}

void OfChunkWithMarker(Clip const & iClip, long long iStart, Vrae_TimedEventList & ioList) {
  Retrieve(iClip, iStart, ioList, kNoteOffInclusion_Last);
}

void OfVector(Clip const & iClip, long long iStart, Vrae_TimedEventList & ioList) {
  auto const isBefore = [](Vrad_ExtendedEvent const & iEvent, Time_Typed iTime) {
    return iEvent.mTime < iTime;
  };
  Vrad_EventListWrapper wrapper(&ioList);
  Time_Typed const start = Time_Tick(iStart), end = Time_Tick(iStart + kTicksPerBlock);
  auto iter = std::lower_bound(iClip.mEvents.begin(), iClip.mEvents.end(), start, isBefore);
  for (; iter != iClip.mEvents.end() && iter->mTime < end; ++iter)
    wrapper.push_back(*iter);
}

void PlaybackBlock(benchmark::State & ioState) {
  RunBlocks(ioState, &Clip::mPlaybackPlaces, OfChunk);
}

void PlaybackBlockWithMarker(benchmark::State & ioState) {
  RunBlocks(ioState, &Clip::mPlaybackPlaces, OfChunkWithMarker);
}

void PlaybackBlockOfVector(benchmark::State & ioState) {
  RunBlocks(ioState, &Clip::mPlaybackPlaces, OfVector);
}

void RandomBlock(benchmark::State & ioState) {
  RunBlocks(ioState, &Clip::mRandomPlaces, OfChunk);
}

void RandomBlockOfVector(benchmark::State & ioState) {
  RunBlocks(ioState, &Clip::mRandomPlaces, OfVector);
}

// One note into the middle, taken back.
void UndoOfOneEdit(benchmark::State & ioState) {
  Clip const & clip = Clip::Get(static_cast<int>(ioState.range(0)));
  Vrae_NoteWithDurationEvent const note(60, Time_TickLength(1000), 100, 64);
  size_t place = 0;
  for (auto _ : ioState) {
    Time_Tick const time(clip.mRandomPlaces[place++ % kNumPlaces]);
    Ndo_gManager.BeginTransaction("Add a note");
    clip.mChunk->AddEvent(Vrad_NoteWithDurationExtendedEvent(time, note, false));
    Ndo_gManager.EndTransaction();
    Ndo_gManager.Undo();
  }
  Ndo_gManager.ClearHistory();
}

void WithSizes(benchmark::internal::Benchmark * iBenchmarkP) {
  iBenchmarkP->Arg(10000)->Arg(100000)->Arg(1000000);
}

BENCHMARK(PlaybackBlock)->Apply(WithSizes);
BENCHMARK(PlaybackBlockWithMarker)->Apply(WithSizes);
BENCHMARK(PlaybackBlockOfVector)->Apply(WithSizes);
BENCHMARK(RandomBlock)->Apply(WithSizes);
BENCHMARK(RandomBlockOfVector)->Apply(WithSizes);
BENCHMARK(UndoOfOneEdit)->Apply(WithSizes);

}  // namespace
