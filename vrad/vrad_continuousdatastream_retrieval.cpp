// A stream's values as events: for playback, for display, one by one.
#include "vrad/vrad_continuousdatastream.h"
#include "vrad/vrad_eventfiling.h"

namespace {

/// Files each value into a list for playback.
class EventFiler : public Vrad_ContinuousData_OutputIter {
public:
  EventFiler(Vrae_SubStream const & iSubStream, Vrad_EventFiling const & iFiling,
             Vrad_EventListWrapper * iListP)
      : mSubStream(iSubStream), mFiling(iFiling), mListP(iListP) {}

  void operator()(Time_Typed iTime, int iValue) override {
    mFiling.File(*mListP, iTime, mSubStream.MakeEvent(iValue));
  }

private:
  Vrae_SubStream const & mSubStream;
  Vrad_EventFiling const & mFiling;
  Vrad_EventListWrapper * mListP;
};

/// Files each value into a display list.
class EventPairFiler : public Vrad_ContinuousData_OutputIter {
public:
  EventPairFiler(Vrae_SubStream const & iSubStream, Vrad_EventFiling const & iFiling,
                 Vrad_DisplayItemList * iListP)
      : mSubStream(iSubStream), mFiling(iFiling), mListP(iListP) {}

  void operator()(Time_Typed iTime, int iValue) override {
    mFiling.FileConverted(*mListP, iTime, mSubStream.MakeEvent(iValue));
  }

private:
  Vrae_SubStream const & mSubStream;
  Vrad_EventFiling const & mFiling;
  Vrad_DisplayItemList * mListP;
};

}  // namespace

void Vrad_ContinuousDataStream::GetMidiEventsInRange(
    Vrad_EventListWrapper * iListP, Time_Typed iStart, Time_Typed iEnd, Time_Typed iWindowStart,
    Time_Typed iWindowEnd, Vrae_ChaseTracker * iTrackerP, Vrae_ChaseTrackerMap const * iMapP,
    Vrad_IRTProperties const * iPropertiesP, bool iExtendedFlag, int iExtendedIndex) const {
  Time_EType const type = iStart.GetType();
  GetMidiEventsInRange(iListP, iStart, iEnd, iWindowStart, iWindowEnd, iTrackerP, iMapP,
                       Time_TypedLength(0, type), Time_Typed::MinTime(type), type, iPropertiesP,
                       iExtendedFlag, iExtendedIndex);
}

void Vrad_ContinuousDataStream::GetMidiEventsInRange(
    Vrad_EventListWrapper * iListP, Time_Typed iStart, Time_Typed iEnd, Time_Typed iWindowStart,
    Time_Typed iWindowEnd, Vrae_ChaseTracker * iTrackerP, Vrae_ChaseTrackerMap const *,
    Time_TypedLength iOffset, Time_Typed iMinTime, Time_EType iTimeType,
    Vrad_IRTProperties const * iPropertiesP, bool iExtendedFlag, int iExtendedIndex) const {
  // Most streams have nothing in an audio block: the tracker is asked only if there is something.
  Vrad_ContinuousData const & data = GetData();
  if (data.IsSurelyEmptyInRange(iStart, iEnd)) return;
  Time_EType const type = iListP->IsDisplayList() ? iOffset.GetType() : iTimeType;
  Vrad_EventFiling const filing = {iOffset, iMinTime,     iWindowStart,  iWindowEnd,
                                   type,    iPropertiesP, iExtendedFlag, iExtendedIndex};
  EventFiler filer(mSubStream, filing, iListP);
  data.ForEachInRange(&filer, SkipChased(iStart, iTrackerP), iEnd);
}

void Vrad_ContinuousDataStream::GetMidiEventsInRange(
    Vrad_DisplayItemList * iListP, Time_Typed iStart, Time_Typed iEnd, Time_Typed iWindowStart,
    Time_Typed iWindowEnd, Time_TypedLength iOffset, Time_Typed iMinTime, Time_EType iTimeType,
    Vrad_IRTProperties const * iPropertiesP, bool iExtendedFlag, int iExtendedIndex) const {
  Vrad_EventFiling const filing = {iOffset,   iMinTime,     iWindowStart,  iWindowEnd,
                                   iTimeType, iPropertiesP, iExtendedFlag, iExtendedIndex};
  EventPairFiler filer(mSubStream, filing, iListP);
  GetData().ForEachInRange(&filer, iStart, iEnd);
}

// Without a stream there is nothing to walk.
template <class TIter, class... TRange>
std::unique_ptr<TIter> Vrad_ContinuousDataStream::MakeIter(Vrad_ContinuousDataStream * iStreamP,
                                                           TRange... iRange) {
  if (iStreamP == nullptr) return nullptr;
  return std::make_unique<TIter>(iStreamP->mDataP.Get(), iStreamP->mSubStream, iRange...);
}

typedef Vrad_ContinuousDataStreamTimedEventsInRangeIter TimedIter;
typedef Vrad_ContinuousDataTimedEventsInRangeIter DataTimedIter;

TimedIter::Vrad_ContinuousDataStreamTimedEventsInRangeIter() = default;

TimedIter::Vrad_ContinuousDataStreamTimedEventsInRangeIter(Vrad_ContinuousDataStream * iStreamP)
    : mIterP(Vrad_ContinuousDataStream::MakeIter<DataTimedIter>(iStreamP)) {}

TimedIter::Vrad_ContinuousDataStreamTimedEventsInRangeIter(Vrad_ContinuousDataStream * iStreamP,
                                                           Time_Typed iStart, Time_Typed iEnd)
    : mIterP(Vrad_ContinuousDataStream::MakeIter<DataTimedIter>(iStreamP, iStart, iEnd)) {}

TimedIter::Vrad_ContinuousDataStreamTimedEventsInRangeIter(TimedIter const & iOther)
    : mIterP(iOther.mIterP ? std::make_unique<DataTimedIter>(*iOther.mIterP) : nullptr) {}

TimedIter & TimedIter::operator=(TimedIter const & iOther) {
  mIterP = iOther.mIterP ? std::make_unique<DataTimedIter>(*iOther.mIterP) : nullptr;
  return *this;
}

TimedIter::~Vrad_ContinuousDataStreamTimedEventsInRangeIter() = default;

bool TimedIter::IsMore() const {
  return mIterP && mIterP->IsMore();
}

void TimedIter::operator++() {
  if (mIterP) ++*mIterP;
}

Vrae_TimedEvent TimedIter::operator*() const {
  return mIterP ? **mIterP : Vrae_TimedEvent();
}

typedef Vrad_ContinuousDataStreamExtendedEventsInRangeIter ExtendedIter;
typedef Vrad_ContinuousDataExtendedEventsInRangeIter DataExtendedIter;

ExtendedIter::Vrad_ContinuousDataStreamExtendedEventsInRangeIter() = default;

ExtendedIter::Vrad_ContinuousDataStreamExtendedEventsInRangeIter(
    Vrad_ContinuousDataStream * iStreamP)
    : mIterP(Vrad_ContinuousDataStream::MakeIter<DataExtendedIter>(iStreamP)) {}

ExtendedIter::Vrad_ContinuousDataStreamExtendedEventsInRangeIter(
    Vrad_ContinuousDataStream * iStreamP, Time_Typed iStart, Time_Typed iEnd)
    : mIterP(Vrad_ContinuousDataStream::MakeIter<DataExtendedIter>(iStreamP, iStart, iEnd)) {}

ExtendedIter::Vrad_ContinuousDataStreamExtendedEventsInRangeIter(ExtendedIter const & iOther)
    : mIterP(iOther.mIterP ? std::make_unique<DataExtendedIter>(*iOther.mIterP) : nullptr) {}

ExtendedIter & ExtendedIter::operator=(ExtendedIter const & iOther) {
  mIterP = iOther.mIterP ? std::make_unique<DataExtendedIter>(*iOther.mIterP) : nullptr;
  return *this;
}

ExtendedIter::~Vrad_ContinuousDataStreamExtendedEventsInRangeIter() = default;

bool ExtendedIter::IsMore() const {
  return mIterP && mIterP->IsMore();
}

void ExtendedIter::operator++() {
  if (mIterP) ++*mIterP;
}

Vrad_ExtendedEvent ExtendedIter::operator*() const {
  return mIterP ? **mIterP : Vrad_ExtendedEvent();
}
