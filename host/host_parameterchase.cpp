#include "host/host_parameterchase.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <tuple>

#include "host/host_chasemap.h"
#include "vrad/vrad_chunk.h"

namespace {

constexpr int kDataCoarse = 6, kDataFine = 38, kStepUp = 96, kStepDown = 97;
constexpr int kFirstSelection = 98;
constexpr signed char kNull = 127;
constexpr int kCoarseNumbers[] = {99, 101}, kFineNumbers[] = {98, 100};

bool IsSelection(int iNumber) {
  return iNumber >= kFirstSelection;
}

int StepOf(int iNumber) {
  return iNumber == kStepUp ? 1 : iNumber == kStepDown ? -1 : 0;
}

}  // namespace

// What the data of one parameter have come to while they are gone through.
struct Host_ParameterChase::DataRun {
  int mCoarse = kUnknown;                            // the last coarse datum
  int mCoarseNow = kUnknown, mFineNow = kUnknown;    // the last ones since a step
  int mCoarseFrom = kUnknown, mFineFrom = kUnknown;  // where what tells each part begins
  int mNumSteps = 0;

  void Set(std::vector<Datum> & ioData, int iDatum, int & ioNow, int & ioFrom) {
    if (ioNow != kUnknown) ioData[static_cast<size_t>(ioNow)].mNext = iDatum;
    ioNow = iDatum;
    ioFrom = iDatum;
  }

  // A step carries from one part to the other, so from here on each depends on both.
  void Step(int iStep) {
    mNumSteps += iStep;
    mCoarseNow = mFineNow = kUnknown;
    if (mCoarseFrom != kUnknown && mFineFrom != kUnknown)
      mCoarseFrom = mFineFrom = std::min(mCoarseFrom, mFineFrom);
  }

  int GetFirst() const {
    if (mFineFrom == kUnknown || mCoarseFrom == kUnknown) return mFineFrom;
    return std::min(mFineFrom, mCoarseFrom);
  }
};

std::vector<Host_ParameterChase::Message> Host_ParameterChase::Gather(Vrad_Chunk const & iChunk) {
  std::vector<Message> messages;
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : iChunk.GetContinuousList()) {
    Vrae_SubStream const subStream = streamP->GetSubStream();
    if (subStream.GetType() != Vrae_SubStream::Controller(1).GetType()) continue;
    if (Host_GetParameterRank(subStream.GetSubType()) == 0) continue;
    for (Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(streamP.Get()); iter.IsMore();
         ++iter) {
      Vrae_TimedEvent const event = *iter;
      auto const & controller = event.mEvent.mU.mController;
      messages.push_back({event.mTime, controller.mControllerNumber, controller.mValue, {}});
    }
  }
  std::stable_sort(messages.begin(), messages.end(), [](Message const & iA, Message const & iB) {
    if (iA.mTime != iB.mTime) return iA.mTime < iB.mTime;
    return Host_GetParameterRank(iA.mNumber) < Host_GetParameterRank(iB.mNumber);
  });
  return messages;
}

void Host_ParameterChase::Apply(Message const & iMessage, Selection & ioSelection) {
  for (EKind const kind : {kNonRegistered, kRegistered}) {
    Pair & pair = ioSelection.mPairs[kind];
    if (iMessage.mNumber == kCoarseNumbers[kind])
      pair.mCoarse = iMessage.mValue;
    else if (iMessage.mNumber == kFineNumbers[kind])
      pair.mFine = iMessage.mValue;
    else
      continue;
    ioSelection.mKind = kind;
  }
}

void Host_ParameterChase::Build(Vrad_Chunk const & iChunk) {
  mMessages.clear();
  mParameters.clear();
  std::vector<Message> messages = Gather(iChunk);
  Selection selection;
  for (Message & message : messages) {
    Apply(message, selection);
    message.mSelection = selection;
  }
  mMessages.swap(messages);
  try {
    FindParameters();
    mOrder.reserve(mParameters.size());
  } catch (...) {
    mMessages.clear();
    mParameters.clear();
    throw;
  }
}

void Host_ParameterChase::FindParameters() {
  std::map<std::tuple<int, int, int>, size_t> places;
  std::vector<DataRun> runs;
  bool const hasSelections = !mMessages.empty() && mMessages.back().mSelection.mKind != kNone;
  for (size_t i = 0; i < mMessages.size(); ++i) {
    Message const & message = mMessages[i];
    if (IsSelection(message.mNumber)) continue;
    EKind const kind = message.mSelection.mKind;
    if (hasSelections && kind == kNone) continue;
    Pair const pair = kind == kNone ? Pair() : message.mSelection.mPairs[kind];
    if (kind != kNone && (!pair.IsKnown() || pair == Pair{kNull, kNull})) continue;

    auto const [place, isNew] =
        places.try_emplace(std::tuple(kind, pair.mCoarse, pair.mFine), mParameters.size());
    if (isNew) {
      mParameters.push_back({kind, pair, {}});
      runs.emplace_back();
    }
    std::vector<Datum> & data = mParameters[place->second].mData;
    DataRun & run = runs[place->second];
    int const datum = static_cast<int>(data.size());
    if (message.mNumber == kDataCoarse) {
      run.mCoarse = datum;
      run.Set(data, datum, run.mCoarseNow, run.mCoarseFrom);
    } else if (message.mNumber == kDataFine) {
      run.Set(data, datum, run.mFineNow, run.mFineFrom);
    } else {
      run.Step(StepOf(message.mNumber));
    }
    data.push_back({static_cast<int>(i), run.GetFirst(), run.mCoarse, kUnknown, run.mNumSteps});
  }
}

int Host_ParameterChase::GetPlace(Time_Typed iTime) const {
  auto const place =
      std::partition_point(mMessages.begin(), mMessages.end(),
                           [iTime](Message const & iMessage) { return iMessage.mTime < iTime; });
  return static_cast<int>(place - mMessages.begin());
}

bool Host_ParameterChase::IsSameUpTo(int iPlace, Host_ParameterChase const & iOther,
                                     int iOtherPlace) const {
  return iPlace == iOtherPlace &&
         std::equal(mMessages.begin(), mMessages.begin() + iPlace, iOther.mMessages.begin(),
                    [](Message const & iA, Message const & iB) {
                      return iA.mTime == iB.mTime && iA.mNumber == iB.mNumber &&
                             iA.mValue == iB.mValue;
                    });
}

// The last datum ahead of the place.
int Host_ParameterChase::GetLast(Parameter const & iParameter, int iPlace) const {
  auto const last =
      std::partition_point(iParameter.mData.begin(), iParameter.mData.end(),
                           [iPlace](Datum const & iDatum) { return iDatum.mMessage < iPlace; });
  return static_cast<int>(last - iParameter.mData.begin()) - 1;
}

Host_ParameterChase::Selection Host_ParameterChase::GetSelection(int iPlace) const {
  return iPlace == 0 ? Selection() : mMessages[static_cast<size_t>(iPlace) - 1].mSelection;
}

void Host_ParameterChase::Restore(int iFrom, int iTo, bool iForce,
                                  Host_ParameterReceiver & iOutput) const {
  if (iFrom == iTo && !iForce) return;
  mOrder.clear();
  for (size_t i = 0; i < mParameters.size(); ++i) {
    int const last = GetLast(mParameters[i], iTo);
    bool const mayStand = last == GetLast(mParameters[i], iFrom) && !iForce;
    if (last != kUnknown && !mayStand)
      mOrder.emplace_back(mParameters[i].mData[static_cast<size_t>(last)].mMessage,
                          static_cast<int>(i));
  }
  std::sort(mOrder.begin(), mOrder.end());

  Selection present = iForce ? Selection() : GetSelection(iFrom);
  for (auto const & [message, index] : mOrder) {
    Parameter const & parameter = mParameters[static_cast<size_t>(index)];
    if (parameter.mKind != kNone) Select(parameter.mKind, parameter.mPair, present, iOutput);
    SendValue(parameter, GetLast(parameter, iFrom), GetLast(parameter, iTo), iOutput);
  }
  SelectAll(GetSelection(iTo), present, iOutput);
}

void Host_ParameterChase::Select(EKind iKind, Pair iPair, Selection & ioPresent,
                                 Host_ParameterReceiver & iOutput) {
  if (ioPresent.mKind == iKind && ioPresent.mPairs[iKind] == iPair) return;
  if (iPair.mCoarse != kUnknown)
    iOutput.ReceiveParameterController(kCoarseNumbers[iKind], iPair.mCoarse);
  if (iPair.mFine != kUnknown) iOutput.ReceiveParameterController(kFineNumbers[iKind], iPair.mFine);
  ioPresent.mKind = iKind;
  ioPresent.mPairs[iKind] = iPair;
}

// Where nothing, or half a parameter, is selected, data must not reach what stood before.
void Host_ParameterChase::SelectAll(Selection const & iWanted, Selection & ioPresent,
                                    Host_ParameterReceiver & iOutput) {
  if (iWanted == ioPresent) return;
  if (iWanted.mKind == kNone) {
    Select(kRegistered, {kNull, kNull}, ioPresent, iOutput);
    return;
  }
  EKind const other = iWanted.mKind == kRegistered ? kNonRegistered : kRegistered;
  if (iWanted.mPairs[other] != ioPresent.mPairs[other] && iWanted.mPairs[other].IsKnown())
    Select(other, iWanted.mPairs[other], ioPresent, iOutput);
  if (!iWanted.mPairs[iWanted.mKind].IsKnown())
    Select(iWanted.mKind, {kNull, kNull}, ioPresent, iOutput);
  Select(iWanted.mKind, iWanted.mPairs[iWanted.mKind], ioPresent, iOutput);
}

void Host_ParameterChase::SendValue(Parameter const & iParameter, int iFrom, int iTo,
                                    Host_ParameterReceiver & iOutput) const {
  auto const send = [&](Datum const & iDatum) {
    Message const & message = mMessages[static_cast<size_t>(iDatum.mMessage)];
    iOutput.ReceiveParameterController(message.mNumber, message.mValue);
  };
  auto const datumAt = [&](int iDatum) -> Datum const & {
    return iParameter.mData[static_cast<size_t>(iDatum)];
  };
  Datum const & last = datumAt(iTo);
  if (last.mFirst != kUnknown) {
    for (int i = last.mFirst; i <= iTo; ++i)
      if (datumAt(i).mNext == kUnknown || datumAt(i).mNext > iTo) send(datumAt(i));
    return;
  }
  // Its fine part began at a value that only the receiver knows.
  if (iFrom == kUnknown || datumAt(iFrom).mFirst == kUnknown) {
    int const numSteps = last.mNumSteps - (iFrom == kUnknown ? 0 : datumAt(iFrom).mNumSteps);
    for (int i = 0; i < std::abs(numSteps); ++i)
      iOutput.ReceiveParameterController(numSteps > 0 ? kStepUp : kStepDown, 0);
  }
  if (last.mCoarse != kUnknown) send(datumAt(last.mCoarse));
}
