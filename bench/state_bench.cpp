// What it costs to learn the state at a random position of a clip with 119 controllers, and to send
// what leads there from the state of another position: of 1,000,000 notes beside 10,000 with as
// many sounding, and beside a walk over all events from the clip's start to the position.
//
// All clips have the same density. One note in a hundred is long. Positions lie in the last nine
// tenths, where as many notes sound in each clip.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <random>
#include <vector>

#include "bench_ratios.h"
#include "vrad/vrad.h"

namespace {

constexpr long long kTicksPerNote = 120000;
constexpr int kNumStreams = 119;                           // controllers 1 to 119
constexpr long long kTicksPerValue = 256 * kTicksPerNote;  // of one stream
constexpr int kNumPlaces = 1024;
constexpr int kPoolBytes = 1 << 20;

struct Clip {
  explicit Clip(int iNumNotes) : mChunk(Vrad_Chunk::New(Ndo_Object::kUndoable, false)) {
    long long const end = iNumNotes * kTicksPerNote;
    FillNotes(iNumNotes);
    FillStreams(end);
    std::stable_sort(mEvents.begin(), mEvents.end(), Vrae_TimedEvent::PlaybackOrdering);
    std::mt19937_64 random(1);
    std::uniform_int_distribution<long long> place(end / 10, end);
    for (int i = 0; i < kNumPlaces; ++i)
      mPlaces.push_back(Time_Tick(place(random)));
  }

  // Kept from one benchmark to the next: making the longest takes a while.
  static Clip & Get(benchmark::State const & iState) {
    static std::map<long long, std::unique_ptr<Clip>> sClips;
    std::unique_ptr<Clip> & clipP = sClips[iState.range(0)];
    if (!clipP) clipP = std::make_unique<Clip>(static_cast<int>(iState.range(0)));
    return *clipP;
  }

  Ndo_AutoPtr<Vrad_Chunk> mChunk;
  std::vector<Vrad_ExtendedEvent> mEvents;  // the same events, in playback order
  std::vector<Time_Typed> mPlaces;

private:
  void FillNotes(int iNumNotes) {
    std::mt19937 random(2);
    for (int i = 0; i < iNumNotes; ++i) {
      bool const isLong = random() % 100 == 0;
      long long const length = isLong ? 15360000 + static_cast<long long>(random() % 40000000)
                                      : 30000 + static_cast<long long>(random() % 400000);
      Vrae_NoteWithDurationEvent const note(static_cast<signed char>(36 + random() % 48),
                                            Time_TickLength(length), 100, 64);
      Add(Vrad_NoteWithDurationExtendedEvent(Time_Tick(i * kTicksPerNote), note, false));
    }
  }

  void FillStreams(long long iEnd) {
    for (int stream = 0; stream < kNumStreams; ++stream) {
      signed char value = 0;
      for (long long time = stream * kTicksPerValue / kNumStreams; time < iEnd;
           time += kTicksPerValue) {
        value = static_cast<signed char>((value + 1) % 128);
        Add(Vrad_ExtendedEvent(Time_Tick(time),
                               Vrae_ControllerEvent(static_cast<signed char>(stream + 1), value)));
      }
    }
  }

  void Add(Vrad_ExtendedEvent const & iEvent) {
    mChunk->AddEvent(iEvent);
    mEvents.push_back(iEvent);
  }
};

struct Counter : Vrae_EventReceiver {
  void ReceiveEvent(Vrae_Event const &) override { ++mNum; }
  long long mNum = 0;
};

// The values and the notes of one position.
struct Position {
  Position() : mValues(&sMap, true) {}
  static inline Vrae_ChaseTrackerMap const sMap;
  Vrae_ChaseTracker mValues;
  Vrae_TrackState mNotes;
};

void Find(Clip const & iClip, Time_Typed iTime, Position & oPosition) {
  Time_Typed const start = Time_Typed::MinTime(Time_eType_Ticks);
  iClip.mChunk->GetChaseStateAtTime(&oPosition.mValues, iTime, start);
  oPosition.mNotes.Clear();
  iClip.mChunk->AddNoteStateAtTime(&oPosition.mNotes, iTime, start,
                                   Time_Typed::MaxTime(Time_eType_Ticks), Time_TickLength(0),
                                   false);
}

// What a host without a search does: from the start on, the last value of each controller and the
// notes that reach the position.
void Walk(Clip const & iClip, Time_Typed iTime, Position & oPosition) {
  std::array<Vrad_ExtendedEvent const *, 128> last{};
  oPosition.mNotes.Clear();
  for (Vrad_ExtendedEvent const & event : iClip.mEvents) {
    if (event.mTime > iTime) break;
    if (event.mEvent.GetType() == Vrae_Event::kController)
      last[static_cast<size_t>(event.mEvent.AsController().GetControllerNumber())] = &event;
    else if (event.mTime < iTime && event.mTime + event.GetDuration() > iTime)
      oPosition.mNotes.ReceiveEvent(event);
  }
  oPosition.mValues.Clear();
  for (Vrad_ExtendedEvent const * const eventP : last)
    if (eventP != nullptr) oPosition.mValues.ChaseEvent(eventP->mEvent);
}

size_t CountNotes(Vrae_TrackState const & iNotes) {
  size_t num = 0;
  for (Vrae_NoteInProgress const * noteP = iNotes.NextNoteOff(); noteP; noteP = noteP->mNextP)
    ++num;
  return num;
}

template <class TFind>
void RunState(benchmark::State & ioState, TFind iFind) {
  Clip const & clip = Clip::Get(ioState);
  Position position;
  size_t place = 0;
  for (auto _ : ioState) {
    iFind(clip, clip.mPlaces[place++ % kNumPlaces], position);
    benchmark::DoNotOptimize(position.mNotes.NextNoteOff());
  }
  size_t numNotes = 0;
  for (int i = 0; i < 100; ++i) {
    Find(clip, clip.mPlaces[static_cast<size_t>(i)], position);
    numNotes += CountNotes(position.mNotes);
  }
  ioState.counters["sounding"] = static_cast<double>(numNotes) / 100.0;
}

void State(benchmark::State & ioState) {
  RunState(ioState, Find);
}

void StateByWalking(benchmark::State & ioState) {
  RunState(ioState, Walk);
}

// The state, and what leads to it from that of the position before.
void Jump(benchmark::State & ioState) {
  Clip const & clip = Clip::Get(ioState);
  Position positions[2];
  Counter counter;
  Find(clip, clip.mPlaces[kNumPlaces - 1], positions[0]);
  size_t place = 0;
  int current = 0;
  for (auto _ : ioState) {
    Position & former = positions[current];
    current = 1 - current;
    Position & position = positions[current];
    Time_Typed const time = clip.mPlaces[place++ % kNumPlaces];
    Find(clip, time, position);
    former.mNotes.ComputeTransitionToNewState(
        &position.mNotes, &counter, {true, Vrae_TrackState::kTransitionNoteOn, time}, false);
    position.mValues.DoUnMutedUpdate(&former.mValues, &counter);
  }
  ioState.counters["sent"] =
      static_cast<double>(counter.mNum) / static_cast<double>(ioState.iterations());
}

void WithSizes(benchmark::internal::Benchmark * iBenchmarkP) {
  iBenchmarkP->Arg(10000)->Arg(100000)->Arg(1000000);
}

BENCHMARK(State)->Apply(WithSizes);
BENCHMARK(Jump)->Apply(WithSizes);
BENCHMARK(StateByWalking)->Apply(WithSizes);

}  // namespace

int main(int iNumArgs, char ** iArgs) {
  Mem2_MasterAllocator pool(kPoolBytes);
  Vrae_NoteInProgress::SetAllocator(&pool);
  return Bench_RunWithRatios(iNumArgs, iArgs,
                             {{"State/1000000", "State/10000"},
                              {"State/1000000", "StateByWalking/1000000"},
                              {"Jump/1000000", "Jump/10000"},
                              {"Jump/1000000", "StateByWalking/1000000"}});
}
