// What the retrievals of all event stores do to an event between the store and the target list.
#pragma once

#include "foundation/time_typed.h"
#include "vrad/vrad_extendedevent.h"
#include "vrad/vrad_extendedeventlist.h"
#include "vrad/vrae_event.h"

/// The settings of one retrieval. Lives on the caller's stack and allocates nothing.
struct Vrad_EventFiling {
  /// The stored time less the offset, or the floor if that is later.
  Time_Typed GetTime(Time_Typed iStoredTime) const;

  /// To `mTimeType`, if the time is of another one.
  Time_Typed Converted(Time_Typed iTime) const;

  void ApplyProperties(Vrad_ExtendedEvent & ioEvent) const;
  bool IsInWindow(Time_Typed iTime) const { return !(iTime < mWindowStart) && iTime < mWindowEnd; }

  /// Shifts, applies the properties, drops what is then outside the window, and converts last. A
  /// display item's original is the event without the properties.
  void File(Vrad_EventListWrapper & ioList, Time_Typed iStoredTime,
            Vrae_Event const & iEvent) const;
  void File(Vrad_DisplayItemList & ioList, Time_Typed iStoredTime, Vrae_Event const & iEvent) const;

  /// The same, but converts first: properties and window see converted times.
  void FileConverted(Vrad_DisplayItemList & ioList, Time_Typed iStoredTime,
                     Vrae_Event const & iEvent) const;

  Time_TypedLength mOffset;
  Time_Typed mMinTime;
  Time_Typed mWindowStart, mWindowEnd;      // half open, of the times after the properties
  Time_EType mTimeType;                     // of what is put out
  Vrad_IRTProperties const * mPropertiesP;  // may be null
  bool mExtendedFlag;                       // for display items, as is the next one
  int mExtendedIndex;
};
