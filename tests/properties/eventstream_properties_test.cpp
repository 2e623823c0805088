// The event stream against a plain vector that does each step as slowly and plainly as possible.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "support/store_printing.h"
#include "vrad/vrad_eventstream.h"

namespace {

constexpr int kNumTimes = 40;

/// A time and the byte of a sysex; byte -1 is an event of kind 0.
typedef std::pair<long long, int> Entry;
typedef std::vector<Entry> Model;

Vrae_TimedEvent MakeEvent(Entry const & iEntry) {
  if (iEntry.second < 0) return Vrae_TimedEvent(Tick(iEntry.first), Vrae_Event());
  unsigned char const byte = static_cast<unsigned char>(iEntry.second);
  return Vrae_TimedEvent(Tick(iEntry.first), Vrae_SysexEvent(1, &byte));
}

Entry MakeEntry(Vrae_TimedEvent const & iEvent) {
  int const byte = iEvent.mEvent.mU.mBase.mType == Vrae_Event::kNoEvent
                       ? -1
                       : iEvent.mEvent.mU.mShortSysex.mData[0];
  return Entry(iEvent.mTime.AsInt64(), byte);
}

Model Contents(Vrad_EventStream & ioStream) {
  Model model;
  Vrad_EventStreamTimedEventsInRangeIter iter(&ioStream);
  for (; iter.IsMore(); ++iter)
    model.push_back(MakeEntry(*iter));
  return model;
}

size_t FirstNotBefore(Model const & iModel, long long iTime) {
  size_t i = 0;
  while (i < iModel.size() && iModel[i].first < iTime)
    ++i;
  return i;
}

void Insert(Model & ioModel, size_t iIndex, Entry const & iEntry) {
  ioModel.insert(ioModel.begin() + static_cast<std::ptrdiff_t>(iIndex), iEntry);
}

Model InRange(Model const & iModel, long long iStart, long long iEnd) {
  Model range;
  for (Entry const & entry : iModel)
    if (entry.first >= iStart && entry.first < iEnd) range.push_back(entry);
  return range;
}

// The last of them goes in first, so that they stand in their own order in front of their time.
void MergeInto(Model & ioModel, Model const & iRange, long long iOffset) {
  for (auto entry = iRange.rbegin(); entry != iRange.rend(); ++entry) {
    long long const time = entry->first + iOffset;
    Insert(ioModel, FirstNotBefore(ioModel, time), Entry(time, entry->second));
  }
}

void EraseFrom(Model & ioModel, Model const & iRange, long long iOffset) {
  if (iRange.empty()) return;
  size_t const walkStart = FirstNotBefore(ioModel, iRange.front().first + iOffset);
  size_t cursor = walkStart;
  for (Entry const & entry : iRange) {
    long long const time = entry.first + iOffset;
    while (cursor < ioModel.size() && ioModel[cursor].first < time)
      ++cursor;
    if (cursor == ioModel.size()) break;
    for (size_t i = cursor; i < ioModel.size() && ioModel[i].first == time; ++i) {
      if (ioModel[i].second != entry.second) continue;
      ioModel[i].second = -1;
      break;
    }
  }
  size_t walkEnd = cursor;
  while (walkEnd < ioModel.size() && ioModel[walkEnd].first == ioModel[cursor].first)
    ++walkEnd;
  for (size_t i = walkEnd; i-- > walkStart;)
    if (ioModel[i].second < 0) ioModel.erase(ioModel.begin() + static_cast<std::ptrdiff_t>(i));
}

class Script {
public:
  void Run() {
    int const numSteps = *rc::gen::inRange(0, 50);
    for (int i = 0; i < numSteps; ++i) {
      Step(*rc::gen::inRange(0, 2), *rc::gen::inRange(0, 11));
      for (int k = 0; k < 2; ++k) {
        RC_ASSERT(Contents(mStreams[k]) == mModels[k]);
        CheckRetrieval(mStreams[k], mModels[k]);
      }
      RC_ASSERT((mStreams[0] == mStreams[1]) == (mModels[0] == mModels[1]));
    }
  }

private:
  static long long Time() { return *rc::gen::inRange(0, kNumTimes); }
  static Entry AnyEntry() { return Entry(Time(), *rc::gen::inRange(-1, 3)); }

  void Step(int iTarget, int iOperation) {
    Vrad_EventStream & stream = mStreams[iTarget];
    Model & model = mModels[iTarget];
    int const source = *rc::gen::inRange(0, 2);
    long long const start = Time(), end = Time(), offset = *rc::gen::inRange(-4, 5);
    Model const range = InRange(mModels[source], start, end);
    switch (iOperation) {
    case 0:
      stream.EraseRange(Tick(start), Tick(end));
      std::erase_if(model,
                    [=](Entry const & iOne) { return iOne.first >= start && iOne.first <= end; });
      break;
    case 1:
      stream.AddFromStream(&mStreams[source], Tick(start), Tick(end), Ticks(offset));
      MergeInto(model, range, offset);
      break;
    case 2:
      stream.EraseFromStream(&mStreams[source], Tick(start), Tick(end), Ticks(offset));
      EraseFrom(model, range, offset);
      break;
    case 3:
      stream.OffsetTimes(Ticks(offset));
      for (Entry & entry : model)
        entry.first += offset;
      break;
    case 4:
      stream.ReplaceData(&mStreams[source]);
      model = Model(mModels[source]);
      break;
    case 5:
      Snapshot(stream, model);
      break;
    case 6:
      EraseOne(stream, model);
      break;
    default:
      Add(stream, model);
    }
  }

  static void Add(Vrad_EventStream & ioStream, Model & ioModel) {
    for (int i = *rc::gen::inRange(1, 10); i > 0; --i) {
      Entry const entry = AnyEntry();
      ioStream.AddEvent(MakeEvent(entry));
      Insert(ioModel, FirstNotBefore(ioModel, entry.first), entry);
    }
  }

  static void EraseOne(Vrad_EventStream & ioStream, Model & ioModel) {
    Entry const entry = AnyEntry();
    ioStream.EraseEvent(MakeEvent(entry));
    auto const found = std::find(ioModel.begin(), ioModel.end(), entry);
    if (found != ioModel.end()) ioModel.erase(found);
  }

  static void Snapshot(Vrad_EventStream & ioStream, Model const & iModel) {
    std::unique_ptr<Ndo_State> const state(ioStream.NdoGetState());
    Model scratch = iModel;
    Add(ioStream, scratch);
    RC_ASSERT(Contents(ioStream) == scratch);
    ioStream.NdoRestoreState(state.get());
  }

  static void CheckRetrieval(Vrad_EventStream const & iStream, Model const & iModel) {
    long long const start = Time(), end = Time(), windowStart = Time(), windowEnd = Time();
    long long const offset = *rc::gen::inRange(-10, 11), floor = *rc::gen::inRange(-10, 20);
    Vrae_TimedEventList list;
    Vrad_EventListWrapper wrapper(&list);
    iStream.GetEventsInRange(&wrapper, Tick(start), Tick(end), Tick(windowStart), Tick(windowEnd),
                             Ticks(offset), Tick(floor), Time_eType_Ticks, nullptr, false, 0);
    Model expected, actual;
    for (Entry const & entry : InRange(iModel, start, end)) {
      long long const time = std::max(entry.first - offset, floor);
      if (time >= windowStart && time < windowEnd) expected.emplace_back(time, entry.second);
    }
    for (Vrae_TimedEvent const & event : list)
      actual.push_back(MakeEntry(event));
    RC_ASSERT(actual == expected);
  }

  Vrad_EventStream mStreams[2] = {{Ndo_Object::kUndoable, false}, {Ndo_Object::kUndoable, false}};
  Model mModels[2];
};

RC_GTEST_PROP(Vrad_EventStream_Properties, AgreesWithAPlainVector, ()) {
  Script().Run();
}

}  // namespace
