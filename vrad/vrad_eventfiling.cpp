#include "vrad/vrad_eventfiling.h"

namespace {

// Bits of the property mask that concern events outside the note list.
constexpr int kProperty_Events = 4;
constexpr int kProperty_PolyPressure = 16;

}  // namespace

Time_Typed Vrad_EventFiling::GetTime(Time_Typed iStoredTime) const {
  Time_Typed const time = iStoredTime - mOffset;
  return time < mMinTime ? mMinTime : time;
}

Time_Typed Vrad_EventFiling::Converted(Time_Typed iTime) const {
  if (iTime.GetType() == mTimeType) return iTime;
  return Time_Typed(Time_CountInUnit(iTime, mTimeType), mTimeType);
}

void Vrad_EventFiling::ApplyProperties(Vrad_ExtendedEvent & ioEvent) const {
  if (mPropertiesP == nullptr) return;
  if (ioEvent.mEvent.mU.mBase.mType == Vrae_Event::kPolyPressure)
    mPropertiesP->ApplyRealTimeProperties(ioEvent, kProperty_PolyPressure);
  mPropertiesP->ApplyRealTimeProperties(ioEvent, kProperty_Events);
}

void Vrad_EventFiling::File(Vrad_EventListWrapper & ioList, Time_Typed iStoredTime,
                            Vrae_Event const & iEvent) const {
  if (Vrad_DisplayItemList * const displayListP = ioList.GetDisplayList()) {
    File(*displayListP, iStoredTime, iEvent);
    return;
  }
  Vrad_ExtendedEvent event(GetTime(iStoredTime), iEvent);
  ApplyProperties(event);
  if (!IsInWindow(event.mTime)) return;
  event.mTime = Converted(event.mTime);
  ioList.push_back(event);
}

void Vrad_EventFiling::File(Vrad_DisplayItemList & ioList, Time_Typed iStoredTime,
                            Vrae_Event const & iEvent) const {
  Vrad_ExtendedEvent original(GetTime(iStoredTime), iEvent);
  Vrad_ExtendedEvent event(original);
  ApplyProperties(event);
  if (!IsInWindow(event.mTime)) return;
  event.mTime = Converted(event.mTime);
  original.mTime = Converted(original.mTime);
  ioList.push_back(Vrad_DisplayItem(event, original, mExtendedFlag, mExtendedIndex));
}

void Vrad_EventFiling::FileConverted(Vrad_DisplayItemList & ioList, Time_Typed iStoredTime,
                                     Vrae_Event const & iEvent) const {
  Vrad_ExtendedEvent const original(Converted(GetTime(iStoredTime)), iEvent);
  Vrad_ExtendedEvent event(original);
  ApplyProperties(event);
  if (!IsInWindow(event.mTime)) return;
  ioList.push_back(Vrad_DisplayItem(event, original, mExtendedFlag, mExtendedIndex));
}
