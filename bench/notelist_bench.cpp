// What a note list costs beside a sorted std::vector of the same records: building, edits in the
// middle, ranges, sounding notes, release times, snapshots. Notes follow each other by an eighth of
// a beat; one in a hundred is long.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "bench_ratios.h"
#include "vrad/vrad_notelist.h"

namespace {

typedef Vrad_NoteListBase_Note Note;

constexpr long long kStep = 120000;  // ticks from note to note

Note MakeNote(long long iIndex) {
  std::minstd_rand random(static_cast<unsigned>(iIndex) + 1);
  bool const isLong = random() % 100 == 0;
  long long const duration = isLong ? 15360000 + static_cast<long long>(random() % 40000000)
                                    : 30000 + static_cast<long long>(random() % 400000);
  return Note(Time_Typed(Time_Tick(iIndex * kStep)),
              Vrae_NoteWithDurationEvent(static_cast<signed char>(36 + random() % 48),
                                         Time_TypedLength(Time_TickLength(duration)), 80, 64));
}

bool StartsBefore(Note const & iA, Note const & iB) {
  return iA.mTime < iB.mTime;
}

// Both hold the same notes, in order.
struct Lists {
  explicit Lists(long long iNum) : mList(Ndo_Object::kUndoable, false) {
    for (long long i = 0; i < iNum; ++i) {
      mVector.push_back(MakeNote(i));
      mList.AddNote(mVector.back());
    }
  }
  Time_Typed EndTime() const {
    return Time_Typed(Time_Tick(static_cast<long long>(mVector.size()) * kStep));
  }
  Vrad_NoteList mList;
  std::vector<Note> mVector;
};

Lists & GetLists(long long iNum) {
  static std::unique_ptr<Lists> sListsP;
  if (!sListsP || sListsP->mVector.size() != static_cast<size_t>(iNum)) {
    sListsP.reset();
    sListsP = std::make_unique<Lists>(iNum);
  }
  return *sListsP;
}

// Times in the list, in random order, cheap to get.
class Times {
public:
  explicit Times(long long iNum) : Times(0, iNum * kStep) {}
  // As one edits: within a thousand notes in the middle.
  static Times InTheMiddle(long long iNum) {
    return Times((iNum - 1000) / 2 * kStep, 1000 * kStep);
  }
  Time_Typed Next() {
    long long const tick =
        static_cast<long long>(mRandom() % static_cast<unsigned long>(mNumTicks));
    return Time_Typed(Time_Tick(mFirst + tick));
  }

private:
  Times(long long iFirst, long long iNumTicks) : mRandom(7), mFirst(iFirst), mNumTicks(iNumTicks) {}

  std::mt19937_64 mRandom;
  long long mFirst, mNumTicks;
};

std::vector<Note> MakeNotes(long long iNum, bool iShuffle) {
  std::vector<Note> notes;
  for (long long i = 0; i < iNum; ++i)
    notes.push_back(MakeNote(i));
  if (iShuffle) std::shuffle(notes.begin(), notes.end(), std::mt19937_64(11));
  return notes;
}

void BuildList(benchmark::State & ioState, bool iShuffle) {
  std::vector<Note> const notes = MakeNotes(ioState.range(0), iShuffle);
  for (auto _ : ioState) {
    Vrad_NoteListBase list(Ndo_Object::kNotUndoable, false);
    for (Note const & note : notes)
      list.AddNote(note);
    benchmark::DoNotOptimize(list.Size());
  }
  ioState.SetItemsProcessed(ioState.iterations() * ioState.range(0));
}

void BuildVector(benchmark::State & ioState) {
  std::vector<Note> const notes = MakeNotes(ioState.range(0), false);
  for (auto _ : ioState) {
    std::vector<Note> vector;
    for (Note const & note : notes)
      vector.push_back(note);
    benchmark::DoNotOptimize(vector.size());
  }
  ioState.SetItemsProcessed(ioState.iterations() * ioState.range(0));
}

void BuildVectorShuffled(benchmark::State & ioState) {
  std::vector<Note> const notes = MakeNotes(ioState.range(0), true);
  for (auto _ : ioState) {
    std::vector<Note> vector;
    for (Note const & note : notes)
      vector.insert(std::upper_bound(vector.begin(), vector.end(), note, StartsBefore), note);
    benchmark::DoNotOptimize(vector.size());
  }
  ioState.SetItemsProcessed(ioState.iterations() * ioState.range(0));
}

Note MakeExtraNote(Time_Typed iTime) {
  return Note(iTime,
              Vrae_NoteWithDurationEvent(10, Time_TypedLength(Time_TickLength(1000)), 1, 64));
}

void EditList(benchmark::State & ioState, Times iTimes) {
  Lists & lists = GetLists(ioState.range(0));
  for (auto _ : ioState) {
    Note const note = MakeExtraNote(iTimes.Next());
    lists.mList.AddNote(note);
    lists.mList.EraseNote(Vrae_TimedEvent(note.mTime, note.mEvent));
  }
}

void EditVector(benchmark::State & ioState, Times iTimes) {
  std::vector<Note> & vector = GetLists(ioState.range(0)).mVector;
  for (auto _ : ioState) {
    Note const note = MakeExtraNote(iTimes.Next());
    vector.insert(std::upper_bound(vector.begin(), vector.end(), note, StartsBefore), note);
    auto at = std::lower_bound(vector.begin(), vector.end(), note, StartsBefore);
    while (at->mEvent.GetOnVelocity() != 1)
      ++at;
    vector.erase(at);
  }
}

// One range after the other, as in playback, or at random.
class Blocks {
public:
  Blocks(long long iNum, long long iLength, bool iAtRandom)
      : mTimes(iNum), mEnd(iNum * kStep), mLength(iLength), mAtRandom(iAtRandom) {}
  Time_Typed Next() {
    if (mAtRandom) return mTimes.Next();
    mStart = mStart + mLength >= mEnd ? 0 : mStart + mLength;
    return Time_Typed(Time_Tick(mStart));
  }
  Time_TypedLength Length() const { return Time_TypedLength(Time_TickLength(mLength)); }

private:
  Times mTimes;
  long long mEnd, mLength, mStart = 0;
  bool mAtRandom;
};

void RangeOfList(benchmark::State & ioState, long long iNumNotes, bool iAtRandom) {
  Lists & lists = GetLists(ioState.range(0));
  Blocks blocks(ioState.range(0), iNumNotes * kStep, iAtRandom);
  Vrae_TimedEventList target;
  for (auto _ : ioState) {
    Time_Typed const start = blocks.Next();
    target.clear();
    Vrad_NoteListBase::FullNotesInRangeIter iter(&lists.mList, start, start + blocks.Length());
    for (; iter.IsMore(); ++iter) {
      Note const & note = *iter;
      target.push_back(Vrae_TimedEvent(note.mTime, note.mEvent));
    }
    benchmark::DoNotOptimize(target.size());
  }
}

void RangeOfVector(benchmark::State & ioState, long long iNumNotes, bool iAtRandom) {
  std::vector<Note> const & vector = GetLists(ioState.range(0)).mVector;
  Blocks blocks(ioState.range(0), iNumNotes * kStep, iAtRandom);
  Vrae_TimedEventList target;
  for (auto _ : ioState) {
    Time_Typed const start = blocks.Next();
    Time_Typed const end = start + blocks.Length();
    target.clear();
    auto iter = std::lower_bound(vector.begin(), vector.end(), start,
                                 [](Note const & iA, Time_Typed iB) { return iA.mTime < iB; });
    for (; iter != vector.end() && iter->mTime < end; ++iter)
      target.push_back(Vrae_TimedEvent(iter->mTime, iter->mEvent));
    benchmark::DoNotOptimize(target.size());
  }
}

void SoundingInList(benchmark::State & ioState) {
  Lists & lists = GetLists(ioState.range(0));
  Times times(ioState.range(0));
  for (auto _ : ioState) {
    int num = 0;
    for (Vrad_NoteListBase::FullSustainingNoteIter iter(&lists.mList, times.Next()); iter.IsMore();
         ++iter)
      ++num;
    benchmark::DoNotOptimize(num);
  }
}

void SoundingInVector(benchmark::State & ioState) {
  std::vector<Note> const & vector = GetLists(ioState.range(0)).mVector;
  Times times(ioState.range(0));
  for (auto _ : ioState) {
    Time_Typed const time = times.Next();
    int num = 0;
    for (Note const & note : vector) {
      if (!(note.mTime < time)) break;
      num += note.mTime + note.mEvent.GetDuration() > time;
    }
    benchmark::DoNotOptimize(num);
  }
}

void Release(benchmark::State & ioState,
             Time_Typed (Vrad_NoteListBase::*iQuery)(Time_Typed, Time_Typed) const) {
  Lists & lists = GetLists(ioState.range(0));
  Times times(ioState.range(0));
  Time_TypedLength const length(Time_TickLength(4 * kStep));
  for (auto _ : ioState) {
    Time_Typed const start = times.Next();
    benchmark::DoNotOptimize((lists.mList.*iQuery)(start, start + length));
  }
}

void EarliestRelease(benchmark::State & ioState) {
  Release(ioState, &Vrad_NoteListBase::GetEarliestReleaseTimeForNotesInRange);
}
void LastRelease(benchmark::State & ioState) {
  Release(ioState, &Vrad_NoteListBase::GetLastReleaseTimeForNotesInRange);
}
void LatestRelease(benchmark::State & ioState) {
  Release(ioState, &Vrad_NoteListBase::GetLatestReleaseTimeForNotesInRange);
}

void SnapshotOfList(benchmark::State & ioState) {
  Lists & lists = GetLists(ioState.range(0));
  for (auto _ : ioState) {
    std::unique_ptr<Ndo_State> const stateP(lists.mList.NdoGetState());
    lists.mList.NdoRestoreState(stateP.get());
  }
}

void SnapshotOfVector(benchmark::State & ioState) {
  std::vector<Note> & vector = GetLists(ioState.range(0)).mVector;
  for (auto _ : ioState) {
    std::vector<Note> state = vector;
    vector.swap(state);
  }
}

// The edit alone is timed, each at another place.
void FirstEditOfList(benchmark::State & ioState) {
  Lists & lists = GetLists(ioState.range(0));
  Times times(ioState.range(0));
  std::vector<std::unique_ptr<Ndo_State>> states;
  for (auto _ : ioState) {
    ioState.PauseTiming();
    states.emplace_back(lists.mList.NdoGetState());
    Note const note = MakeExtraNote(times.Next());
    ioState.ResumeTiming();
    lists.mList.AddNote(note);
    ioState.PauseTiming();
    lists.mList.NdoRestoreState(states.back().get());
    if (states.size() > 100) states.clear();
    ioState.ResumeTiming();
  }
}

void RegisterAll() {
  auto const add = [](char const * iName, auto iBody) {
    benchmark::RegisterBenchmark(iName, iBody)->Arg(10000)->Arg(100000)->Arg(1000000);
  };
  typedef benchmark::State State;
  add("list/BuildInOrder", [](State & s) { BuildList(s, false); });
  add("vector/BuildInOrder", BuildVector);
  add("list/BuildAtRandom", [](State & s) { BuildList(s, true); });
  benchmark::RegisterBenchmark("vector/BuildAtRandom", BuildVectorShuffled)->Arg(10000);
  add("list/EditInTheMiddle", [](State & s) { EditList(s, Times::InTheMiddle(s.range(0))); });
  add("vector/EditInTheMiddle", [](State & s) { EditVector(s, Times::InTheMiddle(s.range(0))); });
  add("list/EditAtRandom", [](State & s) { EditList(s, Times(s.range(0))); });
  add("vector/EditAtRandom", [](State & s) { EditVector(s, Times(s.range(0))); });
  add("list/BlockOf16", [](State & s) { RangeOfList(s, 16, false); });
  add("vector/BlockOf16", [](State & s) { RangeOfVector(s, 16, false); });
  add("list/BlockOf1", [](State & s) { RangeOfList(s, 1, false); });
  add("vector/BlockOf1", [](State & s) { RangeOfVector(s, 1, false); });
  add("list/RangeAtRandom", [](State & s) { RangeOfList(s, 16, true); });
  add("vector/RangeAtRandom", [](State & s) { RangeOfVector(s, 16, true); });
  add("list/Sounding", SoundingInList);
  add("vector/Sounding", SoundingInVector);
  add("list/EarliestRelease", EarliestRelease);
  add("list/LastRelease", LastRelease);
  add("list/LatestRelease", LatestRelease);
  add("list/Snapshot", SnapshotOfList);
  add("vector/Snapshot", SnapshotOfVector);
  add("list/FirstEditAfterSnapshot", FirstEditOfList);
}

}  // namespace

int main(int iNumArgs, char ** iArgs) {
  RegisterAll();
  return Bench_RunWithRatios(iNumArgs, iArgs);
}
