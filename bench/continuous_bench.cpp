// What continuous values cost: the state of all controllers at an instant, the values of a range,
// snapshots, edits; each beside plain sorted vectors of the same points, the state also beside a
// walk over all points from the beginning.
//
// Arguments are points in all; the streams share them evenly. Instants and blocks are taken at
// random, the same ones on both sides.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench_ratios.h"
#include "vrad/vrad_continuousdatastream.h"
#include "vrad/vrae_chasetracker.h"
#include "vrad/vrae_chasetrackermap.h"

namespace {

constexpr int kNumStreams = 119;
constexpr long long kTicksPerPoint = 1000;
constexpr long long kTicksPerBlock = 256 * 40;  // 48 kHz, 120 beats a minute
constexpr int kNumPlaces = 1024;

struct Point {
  long long mTick;
  int mValue;
};
struct StreamPoint {
  long long mTick;
  int mStream;
  int mValue;
};
typedef std::vector<Point> Points;

Time_Typed Tick(long long iCount) {
  return Time_Typed(iCount, Time_eType_Ticks);
}

Vrae_SubStream SubStreamOf(int iStream) {
  return Vrae_SubStream::Controller(static_cast<signed char>(iStream + 1));
}

bool IsBefore(Point const & iPoint, long long iTick) {
  return iPoint.mTick < iTick;
}

/// The same points three times: in streams, in a vector for each stream, in one in order of time.
struct Clip {
  explicit Clip(int iNumPoints) : mNumTicks(kTicksPerPoint * iNumPoints / kNumStreams) {
    std::mt19937 random(1);
    for (int i = 0; i < kNumStreams; ++i) {
      mStreams.push_back(std::make_unique<Vrad_ContinuousDataStream>(SubStreamOf(i),
                                                                     Ndo_Object::kUndoable, false));
      FillStream(i, random);
    }
    std::stable_sort(
        mWalk.begin(), mWalk.end(),
        [](StreamPoint const & iA, StreamPoint const & iB) { return iA.mTick < iB.mTick; });
    for (int i = 0; i < kNumPlaces; ++i)
      mPlaces.push_back(
          static_cast<long long>(random() % static_cast<unsigned long long>(mNumTicks)));
  }

  static Clip & Get(benchmark::State const & iState) {
    static std::map<long long, std::unique_ptr<Clip>> sClips;
    std::unique_ptr<Clip> & clipP = sClips[iState.range(0)];
    if (!clipP) clipP = std::make_unique<Clip>(static_cast<int>(iState.range(0)));
    return *clipP;
  }

  // Streams are of unlike density, from half to one and a half of the mean, as in music: else the
  // searches in all of them would take the same turns.
  void FillStream(int iStream, std::mt19937 & ioRandom) {
    mVectors.emplace_back();
    long long const spacing = kTicksPerPoint * kNumStreams / (kNumStreams / 2 + iStream);
    for (long long tick = 0; tick < mNumTicks; tick += spacing) {
      Point const point = {tick + static_cast<long long>(ioRandom()) % spacing,
                           static_cast<int>(ioRandom() % 128)};
      mStreams.back()->AddEvent(Vrae_TimedEvent(
          Tick(point.mTick), Vrae_ControllerEvent(static_cast<signed char>(iStream + 1),
                                                  static_cast<signed char>(point.mValue))));
      mVectors.back().push_back(point);
      mWalk.push_back({point.mTick, iStream, point.mValue});
    }
  }

  long long mNumTicks;
  std::vector<std::unique_ptr<Vrad_ContinuousDataStream>> mStreams;
  std::vector<Points> mVectors;
  std::vector<StreamPoint> mWalk;
  std::vector<long long> mPlaces;
};

class Places {
public:
  explicit Places(Clip const & iClip) : mPlaces(iClip.mPlaces) {}
  long long Next() { return mPlaces[mIndex++ % kNumPlaces]; }

private:
  std::vector<long long> const & mPlaces;
  size_t mIndex = 0;
};

// ---- The values of all controllers at an instant

void ListValues(benchmark::State & ioState) {
  Clip & clip = Clip::Get(ioState);
  Places places(clip);
  for (auto _ : ioState) {
    Time_Typed const time = Tick(places.Next());
    int sum = 0;
    for (auto const & stream : clip.mStreams) {
      Time_Typed found;
      int value;
      if (stream->GetLastValueChangeBeforeTime(&found, &value, time)) sum += value;
    }
    benchmark::DoNotOptimize(sum);
  }
}

void VectorValues(benchmark::State & ioState) {
  Clip & clip = Clip::Get(ioState);
  Places places(clip);
  for (auto _ : ioState) {
    long long const time = places.Next();
    int sum = 0;
    for (Points const & points : clip.mVectors) {
      auto const after = std::lower_bound(points.begin(), points.end(), time, IsBefore);
      if (after != points.begin()) sum += after[-1].mValue;
    }
    benchmark::DoNotOptimize(sum);
  }
}

// ---- The same, fed to a chase tracker

struct Tracker {
  Tracker() : mTracker(&mMap, true) {}
  Vrae_ChaseTrackerMap mMap;
  Vrae_ChaseTracker mTracker;
};

void ListState(benchmark::State & ioState) {
  Clip & clip = Clip::Get(ioState);
  Places places(clip);
  Tracker tracker;
  for (auto _ : ioState) {
    Time_Typed const time = Tick(places.Next());
    tracker.mTracker.Clear();
    for (auto const & stream : clip.mStreams)
      stream->AccumulateChaseStateAtTime(&tracker.mTracker, time, Tick(0),
                                         Time_TypedLength(0, Time_eType_Ticks));
  }
}

void Feed(Tracker & ioTracker, int iStream, long long iTick, int iValue) {
  ioTracker.mTracker.SetActiveValueIfLater(SubStreamOf(iStream), iValue, Tick(iTick));
}

void VectorState(benchmark::State & ioState) {
  Clip & clip = Clip::Get(ioState);
  Places places(clip);
  Tracker tracker;
  for (auto _ : ioState) {
    long long const time = places.Next() + 1;
    tracker.mTracker.Clear();
    for (int i = 0; i < kNumStreams; ++i) {
      Points const & points = clip.mVectors[static_cast<size_t>(i)];
      auto const after = std::lower_bound(points.begin(), points.end(), time, IsBefore);
      if (after != points.begin()) Feed(tracker, i, after[-1].mTick, after[-1].mValue);
    }
  }
}

// All points up to the instant, each overwriting the value of its controller.
void WalkState(benchmark::State & ioState) {
  Clip & clip = Clip::Get(ioState);
  Places places(clip);
  std::vector<int> values(kNumStreams);
  for (auto _ : ioState) {
    long long const time = places.Next();
    for (StreamPoint const & point : clip.mWalk) {
      if (point.mTick > time) break;
      values[static_cast<size_t>(point.mStream)] = point.mValue;
    }
    benchmark::DoNotOptimize(values.data());
  }
}

// ---- The events of a range

void ReadBlock(Clip & ioClip, long long iStart, long long iNumTicks, Vrae_TimedEventList & ioList) {
  Vrad_EventListWrapper wrapper(&ioList);
  for (auto const & stream : ioClip.mStreams)
    stream->GetMidiEventsInRange(&wrapper, Tick(iStart), Tick(iStart + iNumTicks), Tick(0),
                                 Time_Typed::MaxTime(Time_eType_Ticks), nullptr, nullptr,
                                 Time_TypedLength(0, Time_eType_Ticks), Tick(0), Time_eType_Ticks,
                                 nullptr, false, 0);
}

void ReadVectorBlock(Clip & ioClip, long long iStart, long long iNumTicks,
                     Vrae_TimedEventList & ioList) {
  for (int i = 0; i < kNumStreams; ++i) {
    Points const & points = ioClip.mVectors[static_cast<size_t>(i)];
    auto point = std::lower_bound(points.begin(), points.end(), iStart, IsBefore);
    for (; point != points.end() && point->mTick < iStart + iNumTicks; ++point)
      ioList.push_back(
          Vrae_TimedEvent(Tick(point->mTick), SubStreamOf(i).MakeEvent(point->mValue)));
  }
}

// What is read: some ten values of each stream at random places; at most one of some streams there;
// one audio block after the other, from a random place on; nothing, as the range lies behind the
// last value.
enum ERange { kDense, kSparse, kPlay, kBehind };
constexpr long long kTicksPerShortBlock = 20;

long long NextStart(Clip const & iClip, ERange iRange, Places & ioPlaces, long long & ioPlaying) {
  if (iRange == kBehind) return iClip.mNumTicks + 2 * kTicksPerPoint;
  if (iRange != kPlay) return ioPlaces.Next();
  ioPlaying += kTicksPerShortBlock;
  if (ioPlaying > iClip.mNumTicks) ioPlaying = 0;
  return ioPlaying;
}

template <class TRead>
void ReadRanges(benchmark::State & ioState, ERange iRange, TRead const & iRead) {
  Clip & clip = Clip::Get(ioState);
  Places places(clip);
  Vrae_TimedEventList list;
  long long num = 0;
  long long playing = clip.mPlaces[0];
  for (auto _ : ioState) {
    long long const start = NextStart(clip, iRange, places, playing);
    iRead(clip, start, iRange == kDense ? kTicksPerBlock : kTicksPerShortBlock, list);
    num += static_cast<long long>(list.size());
    list.clear();
  }
  ioState.counters["events"] = static_cast<double>(num) / static_cast<double>(ioState.iterations());
}

// ---- Snapshots and edits, of one stream with all the points

struct OneStream {
  explicit OneStream(long long iNumPoints)
      : mData(Ndo_Object::kUndoable, false), mPlaces(kNumPlaces) {
    std::mt19937 random(1);
    for (long long i = 0; i < iNumPoints; ++i) {
      mData.AddValue(Tick(i * kTicksPerPoint), static_cast<int>(i % 128));
      mPoints.push_back({i * kTicksPerPoint, static_cast<int>(i % 128)});
    }
    for (long long & place : mPlaces)
      place = static_cast<long long>(random()) % iNumPoints * kTicksPerPoint;
  }

  Vrad_ContinuousData mData;
  Points mPoints;
  std::vector<long long> mPlaces;
};

void ListSnapshot(benchmark::State & ioState) {
  OneStream one(ioState.range(0));
  for (auto _ : ioState) {
    std::unique_ptr<Ndo_State> const state(one.mData.NdoGetState());
    benchmark::DoNotOptimize(state.get());
  }
}

void VectorSnapshot(benchmark::State & ioState) {
  OneStream one(ioState.range(0));
  for (auto _ : ioState) {
    Points const copy(one.mPoints);
    benchmark::DoNotOptimize(copy.data());
  }
}

void ListRestore(benchmark::State & ioState) {
  OneStream one(ioState.range(0));
  std::unique_ptr<Ndo_State> const state(one.mData.NdoGetState());
  for (auto _ : ioState)
    one.mData.NdoRestoreState(state.get());
}

void ListEditAfterSnapshot(benchmark::State & ioState) {
  OneStream one(ioState.range(0));
  size_t i = 0;
  for (auto _ : ioState) {
    std::unique_ptr<Ndo_State> const state(one.mData.NdoGetState());
    one.mData.AddValue(Tick(one.mPlaces[i++ % kNumPlaces]), 1);
  }
}

void ListAppend(benchmark::State & ioState) {
  for (auto _ : ioState) {
    Vrad_ContinuousData data(Ndo_Object::kUndoable, false);
    for (long long i = 0; i < ioState.range(0); ++i)
      data.AddValue(Tick(i), 1);
  }
}

void VectorAppend(benchmark::State & ioState) {
  for (auto _ : ioState) {
    Points points;
    for (long long i = 0; i < ioState.range(0); ++i)
      points.push_back({i, 1});
    benchmark::DoNotOptimize(points.data());
  }
}

void ListInsert(benchmark::State & ioState) {
  OneStream one(ioState.range(0));
  size_t i = 0;
  for (auto _ : ioState) {
    Time_Typed const time = Tick(one.mPlaces[i++ % kNumPlaces] + 1);
    one.mData.AddValue(time, 1);
    one.mData.EraseRange(time, Tick(time.AsInt64() + 1));
  }
}

void ListMerge(benchmark::State & ioState) {
  OneStream one(ioState.range(0));
  OneStream const other(100);
  size_t i = 0;
  for (auto _ : ioState)
    one.mData.AddFromData(&other.mData, Tick(0), Tick(100 * kTicksPerPoint),
                          Time_TypedLength(one.mPlaces[i++ % kNumPlaces], Time_eType_Ticks));
}

void AddSizes(benchmark::internal::Benchmark * iBenchmarkP) {
  iBenchmarkP->Arg(10000)->Arg(100000)->Arg(1000000);
}

void AddRanges(char const * iName, ERange iRange) {
  std::string const name(iName);
  auto const list = [iRange](benchmark::State & ioState) {
    ReadRanges(ioState, iRange, ReadBlock);
  };
  auto const vector = [iRange](benchmark::State & ioState) {
    ReadRanges(ioState, iRange, ReadVectorBlock);
  };
  AddSizes(benchmark::RegisterBenchmark(("list/" + name).c_str(), list));
  AddSizes(benchmark::RegisterBenchmark(("vector/" + name).c_str(), vector));
}

void Add(char const * iName, void (*iFunction)(benchmark::State &)) {
  AddSizes(benchmark::RegisterBenchmark(iName, iFunction));
}

}  // namespace

int main(int iNumArgs, char ** iArgs) {
  Add("list/Values", ListValues);
  Add("vector/Values", VectorValues);
  Add("list/State", ListState);
  Add("vector/State", VectorState);
  Add("walk/State", WalkState);
  AddRanges("RangeDense", kDense);
  AddRanges("RangeSparse", kSparse);
  AddRanges("RangePlay", kPlay);
  AddRanges("RangeBehind", kBehind);
  Add("list/Snapshot", ListSnapshot);
  Add("vector/Snapshot", VectorSnapshot);
  Add("list/Restore", ListRestore);
  Add("list/EditAfterSnapshot", ListEditAfterSnapshot);
  Add("list/Append", ListAppend);
  Add("vector/Append", VectorAppend);
  Add("list/InsertAndErase", ListInsert);
  Add("list/Merge100", ListMerge);
  return Bench_RunWithRatios(iNumArgs, iArgs);
}
