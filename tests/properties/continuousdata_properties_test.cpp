// Continuous data against a map from time to value.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/store_printing.h"

namespace {

typedef std::map<long long, int> Model;

constexpr int kNumTimes = 400;

class CollectingVisitor : public Vrad_ContinuousData_OutputIter {
public:
  void operator()(Time_Typed iTime, int iValue) override {
    RC_ASSERT(iTime.GetType() == Time_eType_Ticks);
    mSegments.emplace_back(iTime.AsInt64(), iValue);
  }
  std::vector<std::pair<long long, int>> mSegments;
};

void CheckRange(Vrad_ContinuousData const & iData, Model const & iModel, long long iStart,
                long long iEnd) {
  CollectingVisitor visitor;
  iData.ForEachInRange(&visitor, Tick(iStart), Tick(iEnd));
  std::vector<std::pair<long long, int>> expected;
  if (iStart < iEnd) expected.assign(iModel.lower_bound(iStart), iModel.lower_bound(iEnd));
  RC_ASSERT(visitor.mSegments == expected);
}

void CheckInstant(Vrad_ContinuousData const & iData, Model const & iModel, long long iTime) {
  Time_Typed time;
  int value = 0;
  auto const after = iModel.lower_bound(iTime);
  bool const hasOne = iData.GetLastValueChangeBeforeTime(&time, &value, Tick(iTime));
  RC_ASSERT(hasOne == (after != iModel.begin()));
  if (!hasOne) return;
  RC_ASSERT(time.AsInt64() == std::prev(after)->first);
  RC_ASSERT(value == std::prev(after)->second);
  RC_ASSERT(iData.GetValueAtTime(Tick(iTime)) == std::prev(iModel.upper_bound(iTime))->second);
}

/// Two stores and their models, edited by turns.
class Script {
public:
  void Run() {
    int const numSteps = *rc::gen::inRange(0, 60);
    for (int i = 0; i < numSteps; ++i) {
      Step(*rc::gen::inRange(0, 2), *rc::gen::inRange(0, 10));
      for (int k = 0; k < 2; ++k) {
        CheckRange(mData[k], mModels[k], -10000000, 10000000);
        CheckRange(mData[k], mModels[k], Time(), Time());
        CheckBlocks(mData[k], mModels[k]);
        CheckInstant(mData[k], mModels[k], Time());
      }
    }
  }

private:
  // As playback does, one after the other.
  static void CheckBlocks(Vrad_ContinuousData const & iData, Model const & iModel) {
    long long start = Time();
    long long const length = *rc::gen::inRange(1, 30);
    for (int i = 0; i < 10; ++i, start += length)
      CheckRange(iData, iModel, start, start + length);
  }

  static long long Time() { return *rc::gen::inRange(0, kNumTimes); }
  static int Value() { return *rc::gen::inRange(0, 4); }

  void Step(int iTarget, int iOperation) {
    Vrad_ContinuousData & data = mData[iTarget];
    Model & model = mModels[iTarget];
    switch (iOperation) {
    case 0:
      Erase(data, model);
      break;
    case 1:
      Merge(iTarget, *rc::gen::inRange(0, 2));
      break;
    case 2:
      Unmerge(iTarget, *rc::gen::inRange(0, 2));
      break;
    case 3:
      Offset(data, model);
      break;
    case 4:
      data.ReplaceData(&mData[1 - iTarget]);
      model = mModels[1 - iTarget];
      break;
    case 5:
      Snapshot(data, model);
      break;
    default:
      Add(data, model);
    }
  }

  static void Add(Vrad_ContinuousData & ioData, Model & ioModel) {
    int const num = *rc::gen::inRange(1, 60);
    for (int i = 0; i < num; ++i) {
      long long const time = Time();
      int const value = Value();
      ioData.AddValue(Tick(time), value);
      ioModel[time] = value;
    }
  }

  static void Erase(Vrad_ContinuousData & ioData, Model & ioModel) {
    long long const start = Time(), end = Time();
    ioData.EraseRange(Tick(start), Tick(end));
    if (start < end) ioModel.erase(ioModel.lower_bound(start), ioModel.lower_bound(end));
  }

  void Merge(int iTarget, int iSource) {
    long long const start = Time(), end = Time(), offset = Time() - kNumTimes / 2;
    Model const source = mModels[iSource];
    mData[iTarget].AddFromData(&mData[iSource], Tick(start), Tick(end), Ticks(offset));
    for (auto const & [time, value] : source)
      if (time >= start && time < end) mModels[iTarget][time + offset] = value;
  }

  void Unmerge(int iTarget, int iSource) {
    long long const start = Time(), end = Time(), offset = *rc::gen::inRange(-3, 4);
    Model const source = mModels[iSource];
    mData[iTarget].EraseFromData(&mData[iSource], Tick(start), Tick(end), Ticks(offset));
    for (auto const & [time, value] : source) {
      if (time < start || time >= end) continue;
      auto const found = mModels[iTarget].find(time + offset);
      if (found != mModels[iTarget].end() && found->second == value) mModels[iTarget].erase(found);
    }
  }

  static void Offset(Vrad_ContinuousData & ioData, Model & ioModel) {
    long long const offset = *rc::gen::inRange(-20, 21);
    ioData.OffsetTimes(Ticks(offset));
    Model shifted;
    for (auto const & [time, value] : ioModel)
      shifted[time + offset] = value;
    ioModel = shifted;
  }

  // What is edited after a snapshot is gone after restoring it.
  static void Snapshot(Vrad_ContinuousData & ioData, Model const & iModel) {
    std::unique_ptr<Ndo_State> const state(ioData.NdoGetState());
    Model scratch = iModel;
    Add(ioData, scratch);
    Erase(ioData, scratch);
    ioData.NdoRestoreState(state.get());
  }

  Vrad_ContinuousData mData[2] = {{Ndo_Object::kUndoable, false}, {Ndo_Object::kUndoable, false}};
  Model mModels[2];
};

RC_GTEST_PROP(Vrad_ContinuousData_Properties, AgreesWithAMap, ()) {
  Script().Run();
}

// With snapping and mixed units only the invariants of the affected region hold: it is sorted and
// no two of its times are alike.
RC_GTEST_PROP(Vrad_ContinuousData_Properties, MergedRegionIsSortedWhateverTheUnits, ()) {
  TickTimesMatterScope const scope;
  Vrad_ContinuousData data(Ndo_Object::kUndoable, true), source(Ndo_Object::kUndoable, false);
  auto const time = [] {
    return *rc::gen::inRange(0, 2) ? Tick(*rc::gen::inRange(0, 5000))
                                   : Sample(*rc::gen::inRange(0, 125));
  };
  for (int i = *rc::gen::inRange(0, 50); i > 0; --i)
    data.AddValue(time(), i);
  for (int i = *rc::gen::inRange(1, 50); i > 0; --i)
    source.AddValue(time(), i);
  data.AddFromData(&source, Tick(-1), Tick(5001), Ticks(0));
  Vrad_ContinuousDataTimedEventsInRangeIter iter(&data, Vrae_SubStream::Program());
  Time_Typed last = Tick(-1000000);
  for (; iter.IsMore(); ++iter) {
    RC_ASSERT(last < (*iter).mTime);
    last = (*iter).mTime;
  }
}

}  // namespace
