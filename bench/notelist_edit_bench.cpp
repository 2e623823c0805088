// What edits of many notes at once cost beside the same edits of sorted std::vectors, and how their
// cost grows with the list. Notes follow each other by an eighth of a beat; one in a hundred is
// long.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench_ratios.h"
#include "ndo/ndo_manager.h"
#include "vrad/vrad_notelist.h"

namespace {

typedef benchmark::State State;
typedef Vrad_NoteListBase_Note Note;
typedef std::vector<Note> Notes;

constexpr long long kStep = 120000;  // ticks from note to note
constexpr long long kNumEdited = 1000;

Time_Typed Tick(long long iCount) {
  return Time_Typed(Time_Tick(iCount));
}
Time_TypedLength Ticks(long long iCount) {
  return Time_TypedLength(Time_TickLength(iCount));
}

Note MakeNote(long long iTick, unsigned iSeed) {
  std::minstd_rand random(iSeed + 1);
  long long const duration =
      random() % 100 == 0 ? 15360000 : 30000 + static_cast<long long>(random() % 400000);
  return Note(Tick(iTick), Vrae_NoteWithDurationEvent(static_cast<signed char>(36 + random() % 48),
                                                      Ticks(duration), 80, 64));
}

// Notes from a tick on, as far from each other as asked.
Notes MakeNotes(long long iNum, long long iFirst, long long iStep) {
  Notes notes;
  for (long long i = 0; i < iNum; ++i)
    notes.push_back(MakeNote(iFirst + i * iStep, static_cast<unsigned>(iFirst + i)));
  return notes;
}

std::unique_ptr<Vrad_NoteList> NewList(Notes const & iNotes) {
  auto listP = std::make_unique<Vrad_NoteList>(Ndo_Object::kUndoable, false);
  for (Note const & note : iNotes)
    listP->AddNote(note);
  return listP;
}

bool StartsBefore(Note const & iA, Note const & iB) {
  return iA.mTime < iB.mTime;
}

// What is merged into the notes.
enum EAdded { kNeighbours, kSpread, kApart };

Notes MakeAdded(EAdded iWhich, long long iNum) {
  if (iWhich == kNeighbours) return MakeNotes(kNumEdited, iNum / 2 * kStep + kStep / 2, kStep);
  if (iWhich == kSpread) {
    return MakeNotes(kNumEdited, kStep / 2, iNum / kNumEdited * kStep);
  }
  return MakeNotes(iNum, iNum * kStep, kStep);
}

// An edit in a transaction, timed; undone outside of what is timed, or the other way round.
template <class TEdit>
void EditList(State & ioState, bool iTimesUndo, TEdit iEdit) {
  for (auto _ : ioState) {
    if (iTimesUndo) ioState.PauseTiming();
    Ndo_gManager.BeginTransaction();
    iEdit();
    Ndo_gManager.EndTransaction();
    if (iTimesUndo)
      ioState.ResumeTiming();
    else
      ioState.PauseTiming();
    Ndo_gManager.Undo();
    if (iTimesUndo) ioState.PauseTiming();
    Ndo_gManager.ClearHistory();
    ioState.ResumeTiming();
  }
}

struct Setting {
  explicit Setting(long long iNum) : mNotes(MakeNotes(iNum, 0, kStep)), mListP(NewList(mNotes)) {}
  Notes mNotes;
  std::unique_ptr<Vrad_NoteList> mListP;
};

// The last one asked for is kept, as several benchmarks in a row use it.
Setting & GetSetting(long long iNum) {
  static std::unique_ptr<Setting> sSettingP;
  if (!sSettingP || sSettingP->mNotes.size() != static_cast<size_t>(iNum)) {
    sSettingP.reset();
    sSettingP = std::make_unique<Setting>(iNum);
  }
  return *sSettingP;
}

void MergeIntoList(State & ioState, EAdded iWhich, bool iTimesUndo) {
  Setting & setting = GetSetting(ioState.range(0));
  auto const addedP = NewList(MakeAdded(iWhich, ioState.range(0)));
  EditList(ioState, iTimesUndo, [&] { setting.mListP->Merge(addedP.get()); });
}

void MergeIntoVector(State & ioState, EAdded iWhich) {
  Notes const & notes = GetSetting(ioState.range(0)).mNotes;
  Notes const added = MakeAdded(iWhich, ioState.range(0));
  for (auto _ : ioState) {
    ioState.PauseTiming();
    Notes merged;
    merged.reserve(notes.size() + added.size());
    merged = notes;
    ioState.ResumeTiming();
    auto const first = std::lower_bound(merged.begin(), merged.end(), added.front(), StartsBefore);
    auto const last = std::upper_bound(first, merged.end(), added.back(), StartsBefore);
    auto const numFirst = first - merged.begin(), numLast = last - merged.begin();
    merged.insert(last, added.begin(), added.end());
    auto const middle = merged.begin() + numLast;
    std::inplace_merge(merged.begin() + numFirst, middle, middle + static_cast<long>(added.size()),
                       StartsBefore);
    benchmark::DoNotOptimize(merged.data());
    ioState.PauseTiming();
    Notes().swap(merged);
    ioState.ResumeTiming();
  }
}

void EraseFromList(State & ioState, bool iTimesUndo) {
  Setting & setting = GetSetting(ioState.range(0));
  auto const goneP =
      NewList(Notes(setting.mNotes.begin() + 1000, setting.mNotes.begin() + 1000 + kNumEdited));
  EditList(ioState, iTimesUndo, [&] { setting.mListP->Erase(goneP.get()); });
}

void EraseRangeOfList(State & ioState, bool iTimesUndo) {
  Vrad_NoteList & list = *GetSetting(ioState.range(0)).mListP;
  long long const first = ioState.range(0) / 2 * kStep;
  EditList(ioState, iTimesUndo,
           [&] { list.EraseTimeRange(Tick(first), Tick(first + kNumEdited * kStep)); });
}

void EraseRangeOfVector(State & ioState) {
  Notes const & notes = GetSetting(ioState.range(0)).mNotes;
  for (auto _ : ioState) {
    ioState.PauseTiming();
    Notes edited = notes;
    ioState.ResumeTiming();
    auto const first = edited.begin() + static_cast<long>(edited.size() / 2);
    edited.erase(first, first + kNumEdited);
    benchmark::DoNotOptimize(edited.data());
    ioState.PauseTiming();
    Notes().swap(edited);
    ioState.ResumeTiming();
  }
}

void CopyRangeOfList(State & ioState) {
  Vrad_NoteList const & list = *GetSetting(ioState.range(0)).mListP;
  Vrad_NoteList target(Ndo_Object::kUndoable, false);
  long long const first = ioState.range(0) / 2 * kStep;
  for (auto _ : ioState)
    list.CopyTimeRange(&target, Tick(first), Tick(first + kNumEdited * kStep));
}

void CopyRangeOfVector(State & ioState) {
  Notes const & notes = GetSetting(ioState.range(0)).mNotes;
  auto const first = notes.begin() + static_cast<long>(notes.size() / 2);
  for (auto _ : ioState) {
    Notes const copy(first, first + kNumEdited);
    benchmark::DoNotOptimize(copy.data());
  }
}

void NudgeList(State & ioState, bool iTimesUndo) {
  Vrad_NoteList & list = *GetSetting(ioState.range(0)).mListP;
  EditList(ioState, iTimesUndo, [&] { list.OffsetTimes(Ticks(1000)); });
}

void NudgeVector(State & ioState) {
  Notes const & notes = GetSetting(ioState.range(0)).mNotes;
  for (auto _ : ioState) {
    Notes moved = notes;  // as a snapshot for undo would be taken
    for (Note & note : moved)
      note.mTime += Ticks(1000);
    benchmark::DoNotOptimize(moved.data());
  }
}

// Two takes of the same music, a little apart in time.
void MergeTakes(State & ioState) {
  auto const firstP = NewList(MakeNotes(ioState.range(0), 0, kStep));
  auto const secondP = NewList(MakeNotes(ioState.range(0), kStep / 3, kStep));
  for (auto _ : ioState) {
    ioState.PauseTiming();
    Vrad_NoteList added(Ndo_Object::kUndoable, false);
    added.ReplaceData(secondP.get());
    gAvoidOverlapsAndDuplicates = true;
    Ndo_gManager.BeginTransaction();
    ioState.ResumeTiming();
    firstP->Merge(&added);
    ioState.PauseTiming();
    Ndo_gManager.EndTransaction();
    gAvoidOverlapsAndDuplicates = false;
    Ndo_gManager.Undo();
    Ndo_gManager.ClearHistory();
    ioState.ResumeTiming();
  }
}

void RegisterAll() {
  auto const add = [](char const * iName, auto iBody) {
    benchmark::RegisterBenchmark(iName, iBody)->Arg(10000)->Arg(100000)->Arg(1000000);
  };
  // Counted out where what is not timed takes far longer than what is.
  auto const addCounted = [](char const * iName, auto iBody) {
    for (long long const num : {10000, 100000, 1000000})
      benchmark::RegisterBenchmark(iName, iBody)->Arg(num)->Iterations(5000000 / num);
  };
  add("list/MergeNeighbours", [](State & s) { MergeIntoList(s, kNeighbours, false); });
  add("vector/MergeNeighbours", [](State & s) { MergeIntoVector(s, kNeighbours); });
  add("list/UndoMergeNeighbours", [](State & s) { MergeIntoList(s, kNeighbours, true); });
  add("list/MergeSpread", [](State & s) { MergeIntoList(s, kSpread, false); });
  add("vector/MergeSpread", [](State & s) { MergeIntoVector(s, kSpread); });
  addCounted("list/UndoMergeSpread", [](State & s) { MergeIntoList(s, kSpread, true); });
  add("list/MergeApart", [](State & s) { MergeIntoList(s, kApart, false); });
  add("vector/MergeApart", [](State & s) { MergeIntoVector(s, kApart); });
  add("list/EraseEqual", [](State & s) { EraseFromList(s, false); });
  add("list/UndoEraseEqual", [](State & s) { EraseFromList(s, true); });
  add("list/EraseRange", [](State & s) { EraseRangeOfList(s, false); });
  add("vector/EraseRange", EraseRangeOfVector);
  add("list/UndoEraseRange", [](State & s) { EraseRangeOfList(s, true); });
  add("list/CopyRange", CopyRangeOfList);
  add("vector/CopyRange", CopyRangeOfVector);
  add("list/Nudge", [](State & s) { NudgeList(s, false); });
  add("vector/Nudge", NudgeVector);
  addCounted("list/UndoNudge", [](State & s) { NudgeList(s, true); });
  benchmark::RegisterBenchmark("list/MergeTakes", MergeTakes)->Arg(100000)->Arg(200000);
}

}  // namespace

int main(int iNumArgs, char ** iArgs) {
  RegisterAll();
  return Bench_RunWithRatios(iNumArgs, iArgs,
                             {{"list/MergeNeighbours/1000000", "list/MergeNeighbours/10000"},
                              {"list/EraseRange/1000000", "list/EraseRange/10000"},
                              {"list/CopyRange/1000000", "list/CopyRange/10000"},
                              {"list/MergeTakes/200000", "list/MergeTakes/100000"}});
}
