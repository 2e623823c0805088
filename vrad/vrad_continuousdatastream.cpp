#include "vrad/vrad_continuousdatastream.h"

#include "cmn/cmn_assert.h"
#include "vrad/vrae_chasetracker.h"

namespace {

// The shortest stretch that begins at a time.
Time_Typed OneUnitAfter(Time_Typed iTime) {
  return iTime + Time_TypedLength(1, iTime.GetType());
}

}  // namespace

Vrad_ContinuousDataStream_NdoState::Vrad_ContinuousDataStream_NdoState(
    Vrae_SubStream const & iSubStream, Ndo_Ptr<Vrad_ContinuousData> const & iDataP)
    : mSubStream(iSubStream), mData(iDataP) {}

Vrad_ContinuousDataStream_NdoState::~Vrad_ContinuousDataStream_NdoState() = default;

Ndo_Object * Vrad_ContinuousDataStream_NdoState::NdoReCreate() {
  return new Vrad_ContinuousDataStream(Vrad_ContinuousDataStream::ReCreate());
}

Vrad_ContinuousDataStream::Vrad_ContinuousDataStream(Vrae_SubStream const & iSubStream,
                                                     Ndo_Object::EUndoFlag iUndoFlag,
                                                     bool iSnapToCoarseTicks)
    : Ndo_Object(iUndoFlag),
      mSubStream(iSubStream),
      mDataP(new Vrad_ContinuousData(iUndoFlag, iSnapToCoarseTicks)) {}

// Taking the contents over announces nothing: nobody has seen the new data yet.
Vrad_ContinuousDataStream::Vrad_ContinuousDataStream(Vrad_ContinuousDataStream const & iOther)
    : Ndo_Object(iOther), mSubStream(iOther.mSubStream) {
  Ndo_AutoPtr<Vrad_ContinuousData> data(
      new Vrad_ContinuousData(iOther.NdoIsUndoable() ? kUndoable : kNotUndoable, false));
  data->TakeContents(iOther.GetData());
  mDataP = Ndo_Ptr<Vrad_ContinuousData>(data.Release());
}

Vrad_ContinuousDataStream::Vrad_ContinuousDataStream(ReCreate) : Ndo_Object(kNotUndoable) {}

Vrad_ContinuousDataStream::~Vrad_ContinuousDataStream() {
  Ndo_HandOver(mDataP);
}

// What a stream without data reads is made when one does, as real-time threads read the others.
// Never destroyed, as streams may be used at exit.
Vrad_ContinuousData const & Vrad_ContinuousDataStream::GetData() const {
  if (mDataP) return *mDataP.Get();
  static Vrad_ContinuousData const & sNone = *new Vrad_ContinuousData(kNotUndoable, false);
  return sNone;
}

void Vrad_ContinuousDataStream::AddFromStream(Vrad_ContinuousDataStream const * iSourceP,
                                              Time_Typed iStart, Time_Typed iEnd,
                                              Time_TypedLength iOffset) {
  if (mDataP) mDataP->AddFromData(&iSourceP->GetData(), iStart, iEnd, iOffset);
}

void Vrad_ContinuousDataStream::EraseFromStream(Vrad_ContinuousDataStream const * iSourceP,
                                                Time_Typed iStart, Time_Typed iEnd,
                                                Time_TypedLength iOffset) {
  if (mDataP) mDataP->EraseFromData(&iSourceP->GetData(), iStart, iEnd, iOffset);
}

void Vrad_ContinuousDataStream::EraseRange(Time_Typed iStart, Time_Typed iEnd) {
  if (mDataP) mDataP->EraseRange(iStart, iEnd);
}

void Vrad_ContinuousDataStream::Clear() {
  if (mDataP) mDataP->Clear();
}

bool Vrad_ContinuousDataStream::IsEmpty() const {
  return GetData().IsEmpty();
}

void Vrad_ContinuousDataStream::OffsetTimes(Time_TypedLength iLength) {
  if (mDataP) mDataP->OffsetTimes(iLength);
}

void Vrad_ContinuousDataStream::ReplaceData(Vrad_ContinuousDataStream const * iSourceP) {
  if (mDataP) mDataP->ReplaceData(&iSourceP->GetData());
}

bool Vrad_ContinuousDataStream::GetLastValueChangeBeforeTime(Time_Typed * oTimeP, int * oValueP,
                                                             Time_Typed iTime) const {
  return GetData().GetLastValueChangeBeforeTime(oTimeP, oValueP, iTime);
}

void Vrad_ContinuousDataStream::AddEvent(Vrae_TimedEvent const & iEvent) {
  if (mDataP) mDataP->AddValue(iEvent.mTime, mSubStream.GetValueFromEvent(iEvent.mEvent));
}

void Vrad_ContinuousDataStream::EraseEvent(Vrae_TimedEvent const & iEvent) {
  if (mDataP) mDataP->EraseRange(iEvent.mTime, OneUnitAfter(iEvent.mTime));
}

bool Vrad_ContinuousDataStream::IsEventInRange(Time_Typed iStart, Time_Typed iEnd) const {
  Time_Typed time;
  int value;
  return GetData().GetLastValueChangeBeforeTime(&time, &value, iEnd) && !(time < iStart);
}

// A tracker that does not chase the sub-stream ignores the value; asking it first would cost as
// much again.
void Vrad_ContinuousDataStream::AccumulateChaseStateAtTime(Vrae_ChaseTracker * iTrackerP,
                                                           Time_Typed iTime, Time_Typed iLimit,
                                                           Time_TypedLength iOffset) const {
  Time_Typed time;
  int value;
  if (!GetData().GetLastValueChangeBeforeTime(&time, &value, OneUnitAfter(iTime))) return;
  if (!(time < iLimit)) iTrackerP->SetActiveValueIfLater(mSubStream, value, time + iOffset);
}

// A segment exactly at the start that repeats what was chased is not sent a second time.
Time_Typed Vrad_ContinuousDataStream::SkipChased(Time_Typed iStart,
                                                 Vrae_ChaseTracker const * iTrackerP) const {
  Vrae_ChaseTracker_ChasingEntry entry;
  if (iTrackerP == nullptr || !iTrackerP->GetChasingEntry(&entry, mSubStream) || !entry.mIsActive)
    return iStart;
  Time_Typed const next = OneUnitAfter(iStart);
  Time_Typed time;
  int value;
  bool const isChased =
      GetData().GetLastValueChangeBeforeTime(&time, &value, next) && value == entry.mValue;
  return isChased ? next : iStart;
}

Ndo_State * Vrad_ContinuousDataStream::NdoGetState() {
  return new Vrad_ContinuousDataStream_NdoState(mSubStream, mDataP);
}

void Vrad_ContinuousDataStream::NdoRestoreState(Ndo_State * iStateP) {
  Vrad_ContinuousDataStream_NdoState const * const p =
      dynamic_cast<Vrad_ContinuousDataStream_NdoState const *>(iStateP);
  if (!CMN_REQUIRE_FLAGGED(p != nullptr, "p")) return;
  mSubStream = p->mSubStream;
  mDataP = p->mData.Resolve();
}
