#include "host/host_parameterchase.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>

#include "host/host_chasemap.h"
#include "vrad/vrad_chunk.h"

namespace {

constexpr int kDataCoarse = 6, kDataFine = 38, kStepUp = 96, kStepDown = 97;
constexpr int kFirstSelection = 98;
constexpr signed char kNull = 127;
constexpr int kCoarseNumbers[] = {99, 101}, kFineNumbers[] = {98, 100};

int StepOf(int iNumber) {
  return iNumber == kStepUp ? 1 : iNumber == kStepDown ? -1 : 0;
}

}  // namespace

Host_ParameterList Host_GetParameters(Vrad_Chunk const & iChunk, int iClip) {
  Host_ParameterList list;
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : iChunk.GetContinuousList()) {
    Vrae_SubStream const subStream = streamP->GetSubStream();
    bool const isController = subStream.GetType() == Vrae_SubStream::Controller(1).GetType();
    if (!isController || Host_GetParameterRank(subStream.GetSubType()) == 0) continue;
    for (Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(streamP.Get()); iter.IsMore();
         ++iter) {
      Vrae_TimedEvent const event = *iter;
      Vrae_ControllerEvent const & controller = event.mEvent.AsController();
      list.push_back({event.mTime, iClip, controller.GetControllerNumber(), controller.GetValue()});
    }
  }
  std::stable_sort(list.begin(), list.end(),
                   [](Host_ParameterMessage const & iA, Host_ParameterMessage const & iB) {
                     if (iA.mTime != iB.mTime) return iA.mTime < iB.mTime;
                     return Host_GetParameterRank(iA.mNumber) < Host_GetParameterRank(iB.mNumber);
                   });
  return list;
}

// What the data of one parameter have come to while they are gone through.
struct Host_ParameterChase::DataRun {
  int mCoarse = kUnknown;                            // the last coarse datum
  int mCoarseNow = kUnknown, mFineNow = kUnknown;    // the last ones since a step
  int mCoarseFrom = kUnknown, mFineFrom = kUnknown;  // where what tells each part begins
  int mNumSteps = 0;

  static void Set(std::vector<Datum> & ioData, int iDatum, int & ioNow, int & ioFrom) {
    if (ioNow != kUnknown) ioData[static_cast<size_t>(ioNow)].mNext = iDatum;
    ioNow = ioFrom = iDatum;
  }

  // A step carries from one part to the other, so from here on each depends on both.
  void Step(int iStep) {
    mNumSteps += iStep;
    mCoarseNow = mFineNow = kUnknown;
    if (mCoarseFrom != kUnknown && mFineFrom != kUnknown)
      mCoarseFrom = mFineFrom = std::min(mCoarseFrom, mFineFrom);
  }

  void Add(int iNumber, std::vector<Datum> & ioData, int iDatum) {
    if (iNumber == kDataCoarse) {
      Set(ioData, iDatum, mCoarseNow, mCoarseFrom);
      mCoarse = iDatum;
    } else if (iNumber == kDataFine) {
      Set(ioData, iDatum, mFineNow, mFineFrom);
    } else {
      Step(StepOf(iNumber));
    }
    Datum & datum = ioData[static_cast<size_t>(iDatum)];
    datum.mFirst = mFineFrom == kUnknown || mCoarseFrom == kUnknown
                       ? mFineFrom
                       : std::min(mFineFrom, mCoarseFrom);
    datum.mCoarse = mCoarse;
    datum.mNumSteps = mNumSteps;
  }
};

// Sends what brings a receiver from one place to another.
class Host_ParameterChase::Sender {
public:
  Sender(Host_ParameterChase const & iChase, Selection const & iPresent,
         Host_ParameterReceiver & iOutput)
      : mChase(iChase), mPresent(iPresent), mOutput(iOutput) {}

  void Select(EKind iKind, Pair iPair, int iClip) {
    if (mPresent.mKind == iKind && mPresent.mPairs[iKind] == iPair) return;
    if (iPair.mCoarse != kUnknown)
      mOutput.ReceiveParameterController(iClip, kCoarseNumbers[iKind], iPair.mCoarse);
    if (iPair.mFine != kUnknown)
      mOutput.ReceiveParameterController(iClip, kFineNumbers[iKind], iPair.mFine);
    mPresent.mKind = iKind;
    mPresent.mPairs[iKind] = iPair;
  }

  // Where nothing, or half a parameter, is selected, data must not reach what stood before.
  void SelectAll(Selection const & iWanted, int iClip) {
    if (iWanted == mPresent) return;
    if (iWanted.mKind == kNone) {
      Select(kRegistered, {kNull, kNull}, iClip);
      return;
    }
    EKind const other = iWanted.mKind == kRegistered ? kNonRegistered : kRegistered;
    if (iWanted.mPairs[other].IsKnown() && iWanted.mPairs[other] != mPresent.mPairs[other])
      Select(other, iWanted.mPairs[other], iClip);
    if (!iWanted.mPairs[iWanted.mKind].IsKnown()) Select(iWanted.mKind, {kNull, kNull}, iClip);
    Select(iWanted.mKind, iWanted.mPairs[iWanted.mKind], iClip);
  }

  void SendValue(int iFrom, int iTo) {
    Datum const & last = DatumAt(iTo);
    if (last.mFirst != kUnknown) {
      for (int i = last.mFirst; i <= iTo; ++i)
        if (DatumAt(i).mNext == kUnknown || DatumAt(i).mNext > iTo) Send(i);
      return;
    }
    // The fine part began at a value that only the receiver knows. The steps that follow the
    // coarse datum are sent again, so these are left out of the difference.
    int const stepsSent =
        last.mCoarse == kUnknown ? last.mNumSteps : DatumAt(last.mCoarse).mNumSteps;
    if (iFrom == kUnknown)
      SendSteps(stepsSent, iTo);
    else if (DatumAt(iFrom).mFirst == kUnknown)
      SendSteps(stepsSent - DatumAt(iFrom).mNumSteps, iTo);
    if (last.mCoarse == kUnknown) return;
    Send(last.mCoarse);
    for (int i = last.mCoarse + 1; i <= iTo; ++i)
      Send(i);
  }

private:
  Datum const & DatumAt(int iDatum) const { return mChase.mData[static_cast<size_t>(iDatum)]; }

  void Send(int iDatum) {
    Message const & message = mChase.MessageOf(iDatum);
    mOutput.ReceiveParameterController(message.mClip, message.mNumber, message.mValue);
  }

  void SendSteps(int iNumSteps, int iDatum) {
    for (int i = 0; i < std::abs(iNumSteps); ++i)
      mOutput.ReceiveParameterController(mChase.MessageOf(iDatum).mClip,
                                         iNumSteps > 0 ? kStepUp : kStepDown, 0);
  }

  Host_ParameterChase const & mChase;
  Selection mPresent;
  Host_ParameterReceiver & mOutput;
};

void Host_ParameterChase::Reserve(size_t iNumMessages) {
  mMessages.reserve(iNumMessages);
  mFormer.reserve(iNumMessages);
  mData.reserve(iNumMessages);
  mParameters.reserve(iNumMessages);
  mDue.reserve(iNumMessages);
}

void Host_ParameterChase::Begin() {
  mFormer.swap(mMessages);
  mMessages.clear();
}

void Host_ParameterChase::Add(Host_ParameterList const & iList) {
  for (Host_ParameterMessage const & message : iList)
    mMessages.push_back({message, static_cast<int>(mMessages.size()), Selection()});
}

void Host_ParameterChase::End() {
  std::sort(mMessages.begin(), mMessages.end(), [](Message const & iA, Message const & iB) {
    return iA.mTime == iB.mTime ? iA.mSequence < iB.mSequence : iA.mTime < iB.mTime;
  });
  mUnits = Host_TimeUnits();
  Selection selection;
  for (Message & message : mMessages) {
    mUnits.Add(message.mTime);
    Apply(message, selection);
    message.mSelection = selection;
  }
  mHasSelections = selection.mKind != kNone;
  GatherData();
  FindParameters();
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

void Host_ParameterChase::GatherData() {
  constexpr int kNumPairs = 128 * 128;
  mData.clear();
  for (size_t i = 0; i < mMessages.size(); ++i) {
    EKind const kind = mMessages[i].mSelection.mKind;
    if (mMessages[i].mNumber >= kFirstSelection || kind == kNone) continue;
    Pair const pair = mMessages[i].mSelection.mPairs[kind];
    if (!pair.IsKnown() || pair == Pair{kNull, kNull}) continue;
    int const key = kind * kNumPairs + pair.mCoarse * 128 + pair.mFine;
    mData.push_back({key, static_cast<int>(i), kUnknown, kUnknown, kUnknown, 0});
  }
  std::sort(mData.begin(), mData.end(), [](Datum const & iA, Datum const & iB) {
    return std::tie(iA.mKey, iA.mMessage) < std::tie(iB.mKey, iB.mMessage);
  });
}

void Host_ParameterChase::FindParameters() {
  mParameters.clear();
  DataRun run;
  int const numData = static_cast<int>(mData.size());
  for (int i = 0; i < numData; ++i) {
    bool const isNew =
        i == 0 || mData[static_cast<size_t>(i)].mKey != mData[static_cast<size_t>(i) - 1].mKey;
    if (isNew) {
      Selection const & selection = MessageOf(i).mSelection;
      mParameters.push_back({selection.mKind, selection.mPairs[selection.mKind], i, i});
      run = DataRun();
    }
    run.Add(MessageOf(i).mNumber, mData, i);
    mParameters.back().mEnd = i + 1;
  }
}

Host_ParameterChase::Message const & Host_ParameterChase::MessageOf(int iDatum) const {
  return mMessages[static_cast<size_t>(mData[static_cast<size_t>(iDatum)].mMessage)];
}

int Host_ParameterChase::PlaceIn(std::vector<Message> const & iMessages, Time_Typed iTime) {
  auto const place =
      std::partition_point(iMessages.begin(), iMessages.end(),
                           [iTime](Message const & iMessage) { return iMessage.mTime < iTime; });
  return static_cast<int>(place - iMessages.begin());
}

int Host_ParameterChase::GetPlace(Host_PlayPosition const & iPosition) const {
  return PlaceIn(mMessages, iPosition.AsBound(mUnits));
}

bool Host_ParameterChase::IsSameUpTo(Host_PlayPosition const & iPosition) const {
  int const place = GetPlace(iPosition);
  return PlaceIn(mFormer, iPosition.AsBound(mUnits)) == place &&
         std::equal(mMessages.begin(), mMessages.begin() + place, mFormer.begin(),
                    [](Message const & iA, Message const & iB) {
                      return iA.mTime == iB.mTime && iA.mNumber == iB.mNumber &&
                             iA.mValue == iB.mValue;
                    });
}

// The last datum ahead of the place.
int Host_ParameterChase::GetLast(Parameter const & iParameter, int iPlace) const {
  auto const begin = mData.begin() + iParameter.mBegin;
  auto const last =
      std::partition_point(begin, mData.begin() + iParameter.mEnd,
                           [iPlace](Datum const & iDatum) { return iDatum.mMessage < iPlace; });
  return last == begin ? kUnknown : static_cast<int>(last - mData.begin()) - 1;
}

Host_ParameterChase::Selection Host_ParameterChase::GetSelection(int iPlace) const {
  return iPlace == 0 ? Selection() : mMessages[static_cast<size_t>(iPlace) - 1].mSelection;
}

void Host_ParameterChase::Restore(int iFrom, int iTo, bool iForce,
                                  Host_ParameterReceiver & iOutput) {
  if (mMessages.empty() || (iFrom == iTo && !iForce)) return;
  mDue.clear();
  for (size_t i = 0; i < mParameters.size(); ++i) {
    int const last = GetLast(mParameters[i], iTo);
    if (last != kUnknown && (iForce || last != GetLast(mParameters[i], iFrom)))
      mDue.push_back({mData[static_cast<size_t>(last)].mMessage, static_cast<int>(i)});
  }
  std::sort(mDue.begin(), mDue.end(),
            [](Due const & iA, Due const & iB) { return iA.mMessage < iB.mMessage; });

  Sender sender(*this, iForce ? Selection() : GetSelection(iFrom), iOutput);
  for (Due const & due : mDue) {
    Parameter const & parameter = mParameters[static_cast<size_t>(due.mParameter)];
    sender.Select(parameter.mKind, parameter.mPair,
                  mMessages[static_cast<size_t>(due.mMessage)].mClip);
    sender.SendValue(GetLast(parameter, iFrom), GetLast(parameter, iTo));
  }
  sender.SelectAll(GetSelection(iTo), mMessages[static_cast<size_t>(std::max(iTo, 1)) - 1].mClip);
}
