// The events of a range: into lists for playback and display, and one by one.
#include "vrad/vrad_eventfiling.h"
#include "vrad/vrad_eventstream.h"
#include "vrad/vrad_sortedstore.h"

namespace {

template <class TList>
void FileRange(Cmn_PolyVector<Vrae_TimedEvent, 0> const & iEvents, Time_Typed iStart,
               Time_Typed iEnd, Vrad_EventFiling const & iFiling, TList & ioList) {
  size_t index = static_cast<size_t>(Vrad_LowerBound(iEvents, iStart));
  for (; index < iEvents.size() && iEvents[index].mTime < iEnd; ++index)
    iFiling.File(ioList, iEvents[index].mTime, iEvents[index].mEvent);
}

}  // namespace

void Vrad_EventStream::GetEventsInRange(Vrad_EventListWrapper * iListP, Time_Typed iStart,
                                        Time_Typed iEnd, Time_Typed iWindowStart,
                                        Time_Typed iWindowEnd,
                                        Vrad_IRTProperties const * iPropertiesP,
                                        int iExtendedIndex) const {
  Time_EType const type = iStart.GetType();
  GetEventsInRange(iListP, iStart, iEnd, iWindowStart, iWindowEnd, Time_TypedLength(0, type),
                   Time_Typed::MinTime(type), type, iPropertiesP, false, iExtendedIndex);
}

void Vrad_EventStream::GetEventsInRange(Vrad_EventListWrapper * iListP, Time_Typed iStart,
                                        Time_Typed iEnd, Time_Typed iWindowStart,
                                        Time_Typed iWindowEnd, Time_TypedLength iOffset,
                                        Time_Typed iMinTime, Time_EType iTimeType,
                                        Vrad_IRTProperties const * iPropertiesP, bool iExtendedFlag,
                                        int iExtendedIndex) const {
  Time_EType const type = iListP->IsDisplayList() ? iOffset.GetType() : iTimeType;
  FileRange(*mEventsP, iStart, iEnd,
            {iOffset, iMinTime, iWindowStart, iWindowEnd, type, iPropertiesP, iExtendedFlag,
             iExtendedIndex},
            *iListP);
}

void Vrad_EventStream::GetEventsInRange(Vrad_DisplayItemList * iListP, Time_Typed iStart,
                                        Time_Typed iEnd, Time_Typed iWindowStart,
                                        Time_Typed iWindowEnd, Time_TypedLength iOffset,
                                        Time_Typed iMinTime, Time_EType,
                                        Vrad_IRTProperties const * iPropertiesP, bool iExtendedFlag,
                                        int iExtendedIndex) const {
  FileRange(*mEventsP, iStart, iEnd,
            {iOffset, iMinTime, iWindowStart, iWindowEnd, iOffset.GetType(), iPropertiesP,
             iExtendedFlag, iExtendedIndex},
            *iListP);
}

Vrad_EventStream_RangeIter::Vrad_EventStream_RangeIter()
    : mStreamP(nullptr), mIndex(0), mHasEnd(false) {}

Vrad_EventStream_RangeIter::Vrad_EventStream_RangeIter(Vrad_EventStream const * iStreamP)
    : mStreamP(iStreamP), mIndex(0), mHasEnd(false) {}

Vrad_EventStream_RangeIter::Vrad_EventStream_RangeIter(Vrad_EventStream const * iStreamP,
                                                       Time_Typed iStart, Time_Typed iEnd)
    : mStreamP(iStreamP),
      mIndex(iStreamP ? static_cast<size_t>(Vrad_LowerBound(*iStreamP->mEventsP, iStart)) : 0),
      mHasEnd(true),
      mEnd(iEnd) {}

bool Vrad_EventStream_RangeIter::IsMore() const {
  if (mStreamP == nullptr || mIndex >= mStreamP->mEventsP->size()) return false;
  return !mHasEnd || (*mStreamP->mEventsP)[mIndex].mTime < mEnd;
}

void Vrad_EventStream_RangeIter::Next() {
  if (IsMore()) ++mIndex;
}

Vrae_TimedEvent const & Vrad_EventStream_RangeIter::GetEvent() const {
  static Vrae_TimedEvent const sBlank;
  return IsMore() ? (*mStreamP->mEventsP)[mIndex] : sBlank;
}

typedef Vrad_EventStreamTimedEventsInRangeIter TimedIter;

TimedIter::Vrad_EventStreamTimedEventsInRangeIter() = default;

TimedIter::Vrad_EventStreamTimedEventsInRangeIter(Vrad_EventStream * iStreamP) : mIter(iStreamP) {}

TimedIter::Vrad_EventStreamTimedEventsInRangeIter(Vrad_EventStream * iStreamP, Time_Typed iStart,
                                                  Time_Typed iEnd)
    : mIter(iStreamP, iStart, iEnd) {}

TimedIter::Vrad_EventStreamTimedEventsInRangeIter(TimedIter const & iOther) = default;

TimedIter & TimedIter::operator=(TimedIter const & iOther) = default;

TimedIter::~Vrad_EventStreamTimedEventsInRangeIter() = default;

bool TimedIter::IsMore() const {
  return mIter.IsMore();
}

void TimedIter::operator++() {
  mIter.Next();
}

Vrae_TimedEvent TimedIter::operator*() const {
  return mIter.GetEvent();
}

typedef Vrad_EventStreamExtendedEventsInRangeIter ExtendedIter;

ExtendedIter::Vrad_EventStreamExtendedEventsInRangeIter() = default;

ExtendedIter::Vrad_EventStreamExtendedEventsInRangeIter(Vrad_EventStream * iStreamP,
                                                        Time_Typed iStart, Time_Typed iEnd)
    : mIter(iStreamP, iStart, iEnd) {}

ExtendedIter::Vrad_EventStreamExtendedEventsInRangeIter(ExtendedIter const & iOther) = default;

ExtendedIter & ExtendedIter::operator=(ExtendedIter const & iOther) = default;

ExtendedIter::~Vrad_EventStreamExtendedEventsInRangeIter() = default;

bool ExtendedIter::IsMore() const {
  return mIter.IsMore();
}

void ExtendedIter::operator++() {
  mIter.Next();
}

Vrad_ExtendedEvent ExtendedIter::operator*() const {
  Vrae_TimedEvent const & event = mIter.GetEvent();
  return Vrad_ExtendedEvent(event.mTime, event.mEvent);
}
