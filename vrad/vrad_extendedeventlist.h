// The lists that retrievals fill, and one face over the three kinds of them.
#pragma once

#include "cmn/cmn_polyvector.h"
#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"
#include "vrad/vrad_extendedevent.h"
#include "vrad/vrae_timedevent.h"

/// A retrieved event as it will sound and as it is stored. Copies have blank source stamps.
class VRAD_EXPORT Vrad_DisplayItem {
public:
  /// Whether displays show the effect of real-time properties.
  static bool sMIDIDisplayPropertyEffects;  // true at start

  /// `Time_Typed()`, two default events, false, 0.
  Vrad_DisplayItem() = default;

  /// The item's time is the new event's. Flag and value are kept for the host.
  /// Fails: a time that is in neither samples nor ticks is reported and stored.
  Vrad_DisplayItem(Vrad_ExtendedEvent const & iNewEvent, Vrad_ExtendedEvent const & iOrigEvent,
                   bool iDisplayFlag, int iDisplayValue);

  /// The new event or the original one, as the switch above says.
  Vrad_ExtendedEvent const & GetDisplayedEvent() const;

  /// By time, playback priority, kind, then the events' own order, of the new events alone. The
  /// last step is true both ways for kinds without fields, and throws for two notes with a
  /// fractional pitch.
  static bool PlaybackOrdering(Vrad_DisplayItem const & iA, Vrad_DisplayItem const & iB);

  Time_Typed mTime;  // the sort time, also when the display shows the original
  Vrad_ExtendedEvent mNewEvent;
  Vrad_ExtendedEvent mOrigEvent;
  bool mDisplayFlag = false;
  int mDisplayValue = 0;
};

/// A vector of extended events.
class VRAD_EXPORT Vrad_ExtendedEventList : public Cmn_PolyVector<Vrad_ExtendedEvent, 0> {};

/// A vector of display items.
class VRAD_EXPORT Vrad_DisplayItemList : public Cmn_PolyVector<Vrad_DisplayItem, 0> {
public:
  /// The first item that is not before `iTime`; one past the last if there is none, never null.
  /// Needs: a sorted list. Logarithmic. Lives: until the list changes.
  Vrad_DisplayItem const * FindTime(Time_Typed iTime) const;
};

/// One face over a list of one of the three kinds, so that a retrieval need not care which. Copies
/// stand for the same list. The list is the caller's and must outlive the wrapper.
/// Thread: the one that fills the list. Nothing here allocates but the growth of the list.
class VRAD_EXPORT Vrad_EventListWrapper {
public:
  explicit Vrad_EventListWrapper(Vrae_TimedEventList * iListP);
  explicit Vrad_EventListWrapper(Vrad_ExtendedEventList * iListP);
  explicit Vrad_EventListWrapper(Vrad_DisplayItemList * iListP);

  /// 0 without a list.
  unsigned long long size() const;
  bool IsExtended() const;
  bool IsDisplayList() const;

  /// Null for the other kinds.
  Vrad_DisplayItemList * GetDisplayList() const;

  /// Elements of a timed or extended list, of an extended one, of a display list.
  /// Needs: an index below the size.
  /// Fails: a list of the wrong kind is reported; a blank element of no list is given.
  Vrae_TimedEvent & operator[](unsigned long long iIndex);
  Vrad_ExtendedEvent & GetExtendedEvent(unsigned long long iIndex);
  Vrad_DisplayItem & GetDisplayItem(unsigned long long iIndex);

  /// Null unless this is a display list, which must not be empty.
  Vrad_DisplayItem * LastDisplayItem();

  /// Appends. A timed list keeps the timed part, with its stamp. Display lists take items alone,
  /// the others events alone: what does not fit is ignored, so that a store may offer both.
  void push_back(Vrad_ExtendedEvent const & iEvent);
  void push_back(Vrad_DisplayItem const & iItem);

  /// Sorts the elements from `iFirst` on into playback order, events that are equal in it keeping
  /// theirs. In place, without allocating: n comparisons if sorted already, else O(n log n). In an
  /// extended list the source stamps stay with the positions.
  /// Fails: what the order throws passes through, and the list then holds the same elements in some
  /// order. An `iFirst` past the size does nothing.
  void sort(unsigned long long iFirst);

private:
  // At most one is set.
  Vrae_TimedEventList * mTimedListP;
  Vrad_ExtendedEventList * mExtListP;
  Vrad_DisplayItemList * mDisplayItemListP;
};
