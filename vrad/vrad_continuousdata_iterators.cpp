// Continuous data as events of a sub-stream.
#include "vrad/vrad_continuousdata.h"
#include "vrad/vrad_sortedstore.h"

Vrad_ContinuousData_RangeIter::Vrad_ContinuousData_RangeIter()
    : mDataP(nullptr), mIndex(0), mHasEnd(false) {}

Vrad_ContinuousData_RangeIter::Vrad_ContinuousData_RangeIter(Vrad_ContinuousData const * iDataP,
                                                             Vrae_SubStream const & iSubStream)
    : mDataP(iDataP), mSubStream(iSubStream), mIndex(0), mHasEnd(false) {}

Vrad_ContinuousData_RangeIter::Vrad_ContinuousData_RangeIter(Vrad_ContinuousData const * iDataP,
                                                             Vrae_SubStream const & iSubStream,
                                                             Time_Typed iStart, Time_Typed iEnd)
    : mDataP(iDataP),
      mSubStream(iSubStream),
      mIndex(iDataP ? Vrad_LowerBound(iDataP->mSegments, iStart) : 0),
      mHasEnd(true),
      mEnd(iEnd) {}

bool Vrad_ContinuousData_RangeIter::IsMore() const {
  if (mDataP == nullptr || mIndex >= mDataP->Size()) return false;
  return !mHasEnd || mDataP->mSegments[mIndex].mTime < mEnd;
}

void Vrad_ContinuousData_RangeIter::Next() {
  if (IsMore()) ++mIndex;
}

Vrae_TimedEvent Vrad_ContinuousData_RangeIter::GetEvent() const {
  if (!IsMore()) return Vrae_TimedEvent();
  Vrad_ContinuousData_Segment const & segment = mDataP->mSegments[mIndex];
  return Vrae_TimedEvent(segment.mTime, mSubStream.MakeEvent(segment.mValue));
}

Vrad_ContinuousDataTimedEventsInRangeIter::Vrad_ContinuousDataTimedEventsInRangeIter(
    Vrad_ContinuousData * iDataP, Vrae_SubStream const & iSubStream)
    : mIter(iDataP, iSubStream) {}

Vrad_ContinuousDataTimedEventsInRangeIter::Vrad_ContinuousDataTimedEventsInRangeIter(
    Vrad_ContinuousData * iDataP, Vrae_SubStream const & iSubStream, Time_Typed iStart,
    Time_Typed iEnd)
    : mIter(iDataP, iSubStream, iStart, iEnd) {}

Vrad_ContinuousDataTimedEventsInRangeIter::~Vrad_ContinuousDataTimedEventsInRangeIter() = default;

bool Vrad_ContinuousDataTimedEventsInRangeIter::IsMore() const {
  return mIter.IsMore();
}

void Vrad_ContinuousDataTimedEventsInRangeIter::operator++() {
  mIter.Next();
}

Vrae_TimedEvent Vrad_ContinuousDataTimedEventsInRangeIter::operator*() const {
  return mIter.GetEvent();
}

Vrad_ContinuousDataExtendedEventsInRangeIter::Vrad_ContinuousDataExtendedEventsInRangeIter(
    Vrad_ContinuousData * iDataP, Vrae_SubStream const & iSubStream)
    : mIter(iDataP, iSubStream) {}

Vrad_ContinuousDataExtendedEventsInRangeIter::Vrad_ContinuousDataExtendedEventsInRangeIter(
    Vrad_ContinuousData * iDataP, Vrae_SubStream const & iSubStream, Time_Typed iStart,
    Time_Typed iEnd)
    : mIter(iDataP, iSubStream, iStart, iEnd) {}

Vrad_ContinuousDataExtendedEventsInRangeIter::~Vrad_ContinuousDataExtendedEventsInRangeIter() =
    default;

bool Vrad_ContinuousDataExtendedEventsInRangeIter::IsMore() const {
  return mIter.IsMore();
}

void Vrad_ContinuousDataExtendedEventsInRangeIter::operator++() {
  mIter.Next();
}

Vrad_ExtendedEvent Vrad_ContinuousDataExtendedEventsInRangeIter::operator*() const {
  Vrae_TimedEvent const event = mIter.GetEvent();
  return Vrad_ExtendedEvent(event.mTime, event.mEvent);
}
