#include "vrad/vrad_extendedeventlist.h"

#include "cmn/cmn_assert.h"
#include "vrad/vrad_sortedstore.h"

bool Vrad_DisplayItem::sMIDIDisplayPropertyEffects = true;

Vrad_DisplayItem::Vrad_DisplayItem(Vrad_ExtendedEvent const & newEvent,
                                   Vrad_ExtendedEvent const & origEvent, bool iDisplayFlag,
                                   int iDisplayValue)
    : mDisplayFlag(iDisplayFlag), mDisplayValue(iDisplayValue) {
  CMN_CHECK(newEvent.mTime.GetType() == Time_eType_Ticks ||
                newEvent.mTime.GetType() == Time_eType_Samples,
            "newEvent.mTime.GetType() == Time_eType_Ticks || "
            "newEvent.mTime.GetType() == Time_eType_Samples");
  CMN_CHECK(origEvent.mTime.GetType() == Time_eType_Ticks ||
                origEvent.mTime.GetType() == Time_eType_Samples,
            "origEvent.mTime.GetType() == Time_eType_Ticks || "
            "origEvent.mTime.GetType() == Time_eType_Samples");
  mTime = newEvent.mTime;
  mNewEvent = newEvent;
  mOrigEvent = origEvent;
}

Vrad_ExtendedEvent const & Vrad_DisplayItem::GetDisplayedEvent() const {
  return sMIDIDisplayPropertyEffects ? mNewEvent : mOrigEvent;
}

bool Vrad_DisplayItem::PlaybackOrdering(Vrad_DisplayItem const & iA, Vrad_DisplayItem const & iB) {
  if (iA.mTime != iB.mTime) return iA.mTime < iB.mTime;
  Vrae_Event const & a = iA.mNewEvent.mEvent;
  Vrae_Event const & b = iB.mNewEvent.mEvent;
  int const priorityA = a.GetPlaybackPriority();
  int const priorityB = b.GetPlaybackPriority();
  if (priorityA != priorityB) return priorityA < priorityB;
  if (a.GetType() != b.GetType()) return a.GetType() < b.GetType();
  return a < b;
}

Vrad_DisplayItem const * Vrad_DisplayItemList::FindTime(Time_Typed iTime) const {
  int const index = Vrad_FindFirstNotBefore(0, static_cast<int>(size()), [this, iTime](int iIndex) {
    return (*this)[static_cast<size_t>(iIndex)].mTime < iTime;
  });
  return begin() + index;
}

Vrad_EventListWrapper::Vrad_EventListWrapper(Vrae_TimedEventList * iListP)
    : mTimedListP(iListP), mExtListP(nullptr), mDisplayItemListP(nullptr) {}

Vrad_EventListWrapper::Vrad_EventListWrapper(Vrad_ExtendedEventList * iListP)
    : mTimedListP(nullptr), mExtListP(iListP), mDisplayItemListP(nullptr) {}

Vrad_EventListWrapper::Vrad_EventListWrapper(Vrad_DisplayItemList * iListP)
    : mTimedListP(nullptr), mExtListP(nullptr), mDisplayItemListP(iListP) {}

unsigned long long Vrad_EventListWrapper::size() const {
  if (mTimedListP != nullptr) return mTimedListP->size();
  if (mExtListP != nullptr) return mExtListP->size();
  if (mDisplayItemListP != nullptr) return mDisplayItemListP->size();
  return 0;
}

bool Vrad_EventListWrapper::IsExtended() const {
  return mExtListP != nullptr;
}

bool Vrad_EventListWrapper::IsDisplayList() const {
  return mDisplayItemListP != nullptr;
}

Vrad_DisplayItemList * Vrad_EventListWrapper::GetDisplayList() const {
  return mDisplayItemListP;
}

Vrae_TimedEvent & Vrad_EventListWrapper::operator[](unsigned long long iIndex) {
  if (mTimedListP != nullptr) return (*mTimedListP)[static_cast<size_t>(iIndex)];
  if (mExtListP != nullptr) return (*mExtListP)[static_cast<size_t>(iIndex)];
  CMN_CHECK(false, "mTimedListP != 0 || mExtListP != 0");
  static Vrae_TimedEvent sBlank;
  return sBlank = Vrae_TimedEvent();
}

Vrad_ExtendedEvent & Vrad_EventListWrapper::GetExtendedEvent(unsigned long long iIndex) {
  if (CMN_CHECK(mExtListP != nullptr, "mExtListP"))
    return (*mExtListP)[static_cast<size_t>(iIndex)];
  static Vrad_ExtendedEvent sBlank;
  sBlank = Vrad_ExtendedEvent();
  return sBlank;
}

Vrad_DisplayItem & Vrad_EventListWrapper::GetDisplayItem(unsigned long long iIndex) {
  if (CMN_CHECK(mDisplayItemListP != nullptr, "mDisplayItemListP"))
    return (*mDisplayItemListP)[static_cast<size_t>(iIndex)];
  static Vrad_DisplayItem sBlank;
  return sBlank = Vrad_DisplayItem();
}

Vrad_DisplayItem * Vrad_EventListWrapper::LastDisplayItem() {
  return mDisplayItemListP != nullptr ? &mDisplayItemListP->back() : nullptr;
}

void Vrad_EventListWrapper::push_back(Vrad_ExtendedEvent const & iEvent) {
  if (mTimedListP != nullptr)
    mTimedListP->push_back(iEvent);
  else if (mExtListP != nullptr)
    mExtListP->push_back(iEvent);
}

void Vrad_EventListWrapper::push_back(Vrad_DisplayItem const & iItem) {
  if (mDisplayItemListP != nullptr) mDisplayItemListP->push_back(iItem);
}
