// Random feeding of a chase tracker against a map of plain values, and the promise of the jumps: a
// receiver that was in the old state ends in the new one.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <map>
#include <tuple>
#include <vector>

#include "cmn/cmn_assert.h"
#include "vrad/vrae_chasetracker.h"
#include "vrad/vrae_chasetrackermap.h"

namespace {

constexpr int kReleaseOnly = 182;  // the index of poly pressure of pitch 60
constexpr int kEntryZero = 1;      // the index of controller 1

// The default map and one release-only entry.
class Map : public Vrae_ChaseTrackerMap {
public:
  Map() { AppendReleasingEntry(Vrae_SubStream::PolyPressure(60), 3); }
};

Vrae_SubStream SubStreamAt(int iIndex) {
  if (iIndex == 0) return Vrae_SubStream::PitchBend();
  if (iIndex < 120) return Vrae_SubStream::Controller(static_cast<signed char>(iIndex));
  if (iIndex == 120) return Vrae_SubStream::MonoPressure();
  if (iIndex == 121) return Vrae_SubStream::Program();
  return Vrae_SubStream::PolyPressure(static_cast<signed char>(iIndex - 122));
}

bool IsReleasing(int iIndex) {
  return iIndex == 0 || iIndex == 64 || iIndex == 120 || iIndex == kReleaseOnly;
}

int ReleaseValue(int iIndex) {
  return iIndex == kReleaseOnly ? 3 : 0;
}

struct Entry {
  bool mIsActive = false;
  bool mIsChanged = false;
  int mValue = 0;
  long long mTime = -1000000;  // before all that is fed
};

typedef std::map<int, Entry> Model;  // by sub-stream index; missing entries are blank

// What to do, the sub-stream's index, value, time. Few sub-streams, so that steps meet: releasing
// ones, entry 0, the release-only one, and one that is not followed.
typedef std::tuple<int, int, int, int> Step;

std::vector<Step> DrawSteps() {
  return *rc::gen::container<std::vector<Step>>(
      rc::gen::tuple(rc::gen::inRange(0, 7),
                     rc::gen::element(0, kEntryZero, 7, 64, 119, 120, 121, kReleaseOnly, 200),
                     rc::gen::inRange(0, 4), rc::gen::inRange(-3, 4)));
}

bool IsFollowed(int iIndex) {
  return iIndex <= 121 || iIndex == kReleaseOnly;
}

bool IsChasing(int iIndex) {
  return iIndex <= 121;
}

void FeedModel(Model & ioModel, Step const & iStep) {
  auto const [what, index, value, time] = iStep;
  if (what == 6) {
    for (auto & [key, entry] : ioModel)
      entry.mIsActive = false;
    return;
  }
  if (!IsFollowed(index)) return;
  Entry & entry = ioModel[index];
  if (what == 5) {
    entry.mIsActive = false;
    return;
  }
  if (what >= 3 && !IsChasing(index)) return;
  if (what == 4) {
    if (entry.mIsActive && time < entry.mTime) return;
    entry.mTime = time;
  }
  if (what == 1 && !(IsReleasing(index) && entry.mIsActive)) entry.mIsChanged = true;
  entry.mIsActive = true;
  entry.mValue = value;
}

void FeedTracker(Vrae_ChaseTracker & ioTracker, Step const & iStep) {
  auto const [what, index, value, time] = iStep;
  Vrae_SubStream const subStream = SubStreamAt(index);
  switch (what) {
  case 0:
    return ioTracker.ChaseEvent(subStream.MakeEvent(value));
  case 1:
    return ioTracker.TrackEvent(subStream.MakeEvent(value));
  case 2:
    return ioTracker.TrackValue(subStream, value);
  case 3:
    return ioTracker.SetActiveValue(subStream, value);
  case 4:
    return ioTracker.SetActiveValueIfLater(subStream, value, Time_Typed(time, Time_eType_Ticks));
  case 5:
    return ioTracker.ClearActiveFlag(subStream);
  default:
    return ioTracker.Clear();
  }
}

Model Feed(Vrae_ChaseTracker & ioTracker, std::vector<Step> const & iSteps) {
  Model model;
  for (Step const & step : iSteps) {
    FeedModel(model, step);
    FeedTracker(ioTracker, step);
  }
  return model;
}

// The last value of each sub-stream that it was sent.
class Receiver : public Vrae_EventReceiver {
public:
  void ReceiveEvent(Vrae_Event const & iEvent) override {
    Vrae_SubStream const subStream(iEvent);
    mValues[subStream.GetIndex()] = subStream.GetValueFromEvent(iEvent);
  }
  std::map<int, int> mValues;
};

// A receiver that has heard all that the state holds.
Receiver ReceiverIn(Model const & iModel) {
  Receiver receiver;
  for (auto const & [index, entry] : iModel) {
    if (entry.mIsActive) receiver.mValues[index] = entry.mValue;
  }
  return receiver;
}

// What such a receiver must end with after a jump to the new state.
std::map<int, int> ValuesAfterJump(Model const & iOld, Model const & iNew) {
  std::map<int, int> values = ReceiverIn(iOld).mValues;
  for (auto const & [index, entry] : iOld) {
    if (entry.mIsActive && IsReleasing(index)) values[index] = ReleaseValue(index);
  }
  for (auto const & [index, entry] : iNew) {
    if (entry.mIsActive && IsChasing(index)) values[index] = entry.mValue;
  }
  return values;
}

}  // namespace

RC_GTEST_PROP(ChaseTracker, HoldsWhatItWasFed, ()) {
  Map const map;
  Vrae_ChaseTracker tracker(&map, true);
  Model const model = Feed(tracker, DrawSteps());
  Receiver unmuted;
  tracker.DoUnMute(&unmuted);
  for (auto const & [index, entry] : model) {
    Vrae_SubStream const subStream = SubStreamAt(index);
    RC_ASSERT(tracker.IsActive(subStream) == entry.mIsActive);
    Vrae_ChaseTracker_ChasingEntry chasing;
    RC_ASSERT(tracker.GetChasingEntry(&chasing, index) == IsChasing(index));
    if (!IsChasing(index)) continue;
    RC_ASSERT(chasing.mIsActive == entry.mIsActive);
    RC_ASSERT(chasing.mValue == entry.mValue);
    bool const mustSend =
        entry.mIsActive &&
        (entry.mIsChanged || (IsReleasing(index) && entry.mValue != ReleaseValue(index)));
    RC_ASSERT(unmuted.mValues.count(index) == (mustSend ? 1u : 0u));
  }
}

RC_GTEST_PROP(ChaseTracker, ChaseAndReleaseBringsTheReceiverToTheNewState, ()) {
  Map const map;
  Vrae_ChaseTracker older(&map, true), newer(&map, true);
  Model const oldModel = Feed(older, DrawSteps());
  Model const newModel = Feed(newer, DrawSteps());
  Receiver receiver = ReceiverIn(oldModel);
  Cmn_AssertRecorder recorder;
  newer.ChaseAndRelease(&older, &receiver);
  std::map<int, int> expected = ValuesAfterJump(oldModel, newModel);
  expected[kEntryZero] = 0;  // entry 0 is released last, whatever it holds
  RC_ASSERT(receiver.mValues == expected);
  RC_ASSERT(recorder.GetNum() == 1);
  for (int index : {0, 64, 120, kReleaseOnly})
    RC_ASSERT(!older.IsActive(SubStreamAt(index)));
}

RC_GTEST_PROP(ChaseTracker, DoUnMutedUpdateBringsTheReceiverToTheNewState, ()) {
  Vrae_ChaseTrackerMap const map;  // nothing release-only, which this operation leaves alone
  Vrae_ChaseTracker older(&map, true), newer(&map, true);
  Model oldModel = Feed(older, DrawSteps());
  Model newModel = Feed(newer, DrawSteps());
  oldModel.erase(kReleaseOnly);
  newModel.erase(kReleaseOnly);
  Receiver receiver = ReceiverIn(oldModel);
  Cmn_AssertRecorder recorder;
  newer.DoUnMutedUpdate(&older, &receiver);
  RC_ASSERT(receiver.mValues == ValuesAfterJump(oldModel, newModel));
  RC_ASSERT(recorder.GetNum() == 0);
}

// Muted, moved and unmuted again, a receiver hears the same as one that was never muted.
RC_GTEST_PROP(ChaseTracker, DoMutedUpdateMakesUnmutingReachTheNewState, ()) {
  Vrae_ChaseTrackerMap const map;
  Vrae_ChaseTracker older(&map, true), newer(&map, true);
  Model oldModel = Feed(older, DrawSteps());
  Model newModel = Feed(newer, DrawSteps());
  oldModel.erase(kReleaseOnly);
  newModel.erase(kReleaseOnly);
  Receiver receiver = ReceiverIn(oldModel);
  older.DoMute(&receiver, false);
  newer.DoMutedUpdate(&older);
  newer.DoUnMute(&receiver);
  RC_ASSERT(receiver.mValues == ValuesAfterJump(oldModel, newModel));
}
