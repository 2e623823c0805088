// The miscellaneous events of a chunk, those that are neither notes nor continuous values.
#pragma once

#include <cstddef>
#include <memory>

#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"
#include "ndo/ndo_object.h"
#include "vrad/vrad_extendedevent.h"
#include "vrad/vrad_extendedeventlist.h"
#include "vrad/vrae_timedevent.h"

class Sys_TypedInStream;
class Sys_TypedOutStream;
class Vrad_EventStream;

/// A snapshot of an event stream. Comes from `Vrad_EventStream::NdoGetState` alone.
class VRAD_EXPORT Vrad_EventStream_NdoState : public Ndo_State {
public:
  Vrad_EventStream_NdoState(Vrad_EventStream_NdoState const &) = delete;
  Vrad_EventStream_NdoState & operator=(Vrad_EventStream_NdoState const &) = delete;
  ~Vrad_EventStream_NdoState() override;

  /// A blank stream that snaps.
  Ndo_Object * NdoReCreate() override;

private:
  friend class Vrad_EventStream;

  typedef Vrae_TimedEventList Events;

  Vrad_EventStream_NdoState(bool iSnapToCoarseTicks, std::shared_ptr<Events> const & iEventsP);

  bool mSnapToCoarseTicks;
  std::shared_ptr<Events> mEventsP;  // never written to while it is shared
};

/// A time-sorted vector of whole events; one time may hold many. The order of events at one time
/// follows from how they arrived, never from what they are.
/// n events: searches cost O(log n), an insertion or erasure O(n), a snapshot O(1), the first edit
/// after it a copy. Copies of a long sysex share its payload.
/// Thread: the chunk's owner. Retrieval allocates nothing but what the target list needs.
class VRAD_EXPORT Vrad_EventStream : public Ndo_Object {
public:
  /// Empty. `iSnapToCoarseTicks`: shifted tick times go to the coarse grid while tick times matter.
  Vrad_EventStream(Ndo_Object::EUndoFlag iUndoFlag, bool iSnapToCoarseTicks);

  /// The same contents, with an undo identity of its own.
  Vrad_EventStream(Vrad_EventStream const & iOther);
  Vrad_EventStream & operator=(Vrad_EventStream const &) = delete;
  ~Vrad_EventStream() override;

  /// Ahead of the events of the same time. Always announces.
  void AddEvent(Vrae_TimedEvent const & iEvent);

  /// Erases the first event of that time that is equal. Announces only if there is one.
  /// Fails: as comparing events does, with nothing changed.
  void EraseEvent(Vrae_TimedEvent const & iEvent);

  /// Adds the source's events of [iStart, iEnd), shifted and snapped, ahead of those of the same
  /// time. Nothing is replaced. Order is made within the stretch that they fall into, not outside.
  /// An empty source range announces nothing.
  void AddFromStream(Vrad_EventStream const * iSourceP, Time_Typed iStart, Time_Typed iEnd,
                     Time_TypedLength iOffset);

  /// Takes out, for each of the source's events of [iStart, iEnd), one equal event at its shifted
  /// time, and with them the events of kind 0 of the stretch walked. Shifted times are not snapped.
  /// Fails: as comparing events does, with nothing changed but announced.
  void EraseFromStream(Vrad_EventStream const * iSourceP, Time_Typed iStart, Time_Typed iEnd,
                       Time_TypedLength iOffset);

  /// Removes the events from `iStart` to `iEnd`. Inclusive end, on purpose: unlike all retrievals,
  /// an event exactly at `iEnd` goes too. Announces only if there are any.
  void EraseRange(Time_Typed iStart, Time_Typed iEnd);

  /// Announces only if there is something to remove.
  void Clear();

  /// Shifts and snaps all times. The owner announces. The order is not repaired after snapping.
  /// Fails: a first event that is not in ticks is reported and shifted all the same.
  void OffsetTimes(Time_TypedLength iLength);

  /// Takes over the source's events, not its snapping. O(1).
  void ReplaceData(Vrad_EventStream const * iSourceP);

  /// Writes the stream's record. Fails: as `Vrae_TimedEventList::StreamOut`.
  void StreamOut(Sys_TypedOutStream & ioStream) const;

  /// Replaces the events by those of a record, in its order. Always announces, and first.
  /// Fails: as `Vrae_TimedEventList::StreamIn`; a wrong record leaves the events as they were.
  void StreamIn(Sys_TypedInStream & ioStream);

  unsigned long long Size() const { return mEventsP->size(); }

  /// Sizes and, pairwise, times and events. Compares events of every kind without a check.
  bool operator==(Vrad_EventStream const & iOther) const;

  /// The events in [iStart, iEnd) as stored that lie, after the properties, in the window
  /// [iWindowStart, iWindowEnd). The properties may be null.
  void GetEventsInRange(Vrad_EventListWrapper * iListP, Time_Typed iStart, Time_Typed iEnd,
                        Time_Typed iWindowStart, Time_Typed iWindowEnd,
                        Vrad_IRTProperties const * iPropertiesP, int iExtendedIndex) const;

  /// The same with times shifted: `iOffset` is taken off, what comes before `iMinTime` moves up to
  /// it, and after the window the time becomes one of `iTimeType`. Into a display list it becomes
  /// one of the offset's type instead.
  void GetEventsInRange(Vrad_EventListWrapper * iListP, Time_Typed iStart, Time_Typed iEnd,
                        Time_Typed iWindowStart, Time_Typed iWindowEnd, Time_TypedLength iOffset,
                        Time_Typed iMinTime, Time_EType iTimeType,
                        Vrad_IRTProperties const * iPropertiesP, bool iExtendedFlag,
                        int iExtendedIndex) const;

  /// The same into a display list; times become those of the offset's type.
  void GetEventsInRange(Vrad_DisplayItemList * iListP, Time_Typed iStart, Time_Typed iEnd,
                        Time_Typed iWindowStart, Time_Typed iWindowEnd, Time_TypedLength iOffset,
                        Time_Typed iMinTime, Time_EType iTimeType,
                        Vrad_IRTProperties const * iPropertiesP, bool iExtendedFlag,
                        int iExtendedIndex) const;

  /// O(1): the events are shared until the stream changes.
  Ndo_State * NdoGetState() override;

  /// Fails: throws on a state of another class and leaves the stream unchanged.
  void NdoRestoreState(Ndo_State * iStateP) override;

private:
  friend class Vrad_EventStream_RangeIter;

  typedef Vrad_EventStream_NdoState::Events Events;

  Events & Unshared();

  std::shared_ptr<Events> mEventsP;  // never null; shared with snapshots and copies
  bool mSnapToCoarseTicks;
};

/// The walk that the two iterators share. Must not outlive the stream; stands by index.
class VRAD_EXPORT Vrad_EventStream_RangeIter {
public:
  /// Nothing to walk.
  Vrad_EventStream_RangeIter();
  explicit Vrad_EventStream_RangeIter(Vrad_EventStream const * iStreamP);
  Vrad_EventStream_RangeIter(Vrad_EventStream const * iStreamP, Time_Typed iStart, Time_Typed iEnd);

  bool IsMore() const;
  void Next();

  /// A default event past the end.
  Vrae_TimedEvent const & GetEvent() const;

private:
  Vrad_EventStream const * mStreamP;
  size_t mIndex;
  bool mHasEnd;  // false: all events are walked
  Time_Typed mEnd;
};

/// The events of a stream, as stored. Must not outlive the stream.
class VRAD_EXPORT Vrad_EventStreamTimedEventsInRangeIter : public Vrae_TimedEventIterator {
public:
  /// Nothing to walk.
  Vrad_EventStreamTimedEventsInRangeIter();
  explicit Vrad_EventStreamTimedEventsInRangeIter(Vrad_EventStream * iStreamP);
  Vrad_EventStreamTimedEventsInRangeIter(Vrad_EventStream * iStreamP, Time_Typed iStart,
                                         Time_Typed iEnd);
  Vrad_EventStreamTimedEventsInRangeIter(Vrad_EventStreamTimedEventsInRangeIter const & iOther);
  Vrad_EventStreamTimedEventsInRangeIter &
  operator=(Vrad_EventStreamTimedEventsInRangeIter const & iOther);
  ~Vrad_EventStreamTimedEventsInRangeIter() override;

  bool IsMore() const override;
  void operator++() override;
  Vrae_TimedEvent operator*() const override;

private:
  Vrad_EventStream_RangeIter mIter;
};

/// The events of a range as extended events. Must not outlive the stream.
class VRAD_EXPORT Vrad_EventStreamExtendedEventsInRangeIter : public Vrad_ExtendedEventIterator {
public:
  /// Nothing to walk.
  Vrad_EventStreamExtendedEventsInRangeIter();
  Vrad_EventStreamExtendedEventsInRangeIter(Vrad_EventStream * iStreamP, Time_Typed iStart,
                                            Time_Typed iEnd);
  Vrad_EventStreamExtendedEventsInRangeIter(
      Vrad_EventStreamExtendedEventsInRangeIter const & iOther);
  Vrad_EventStreamExtendedEventsInRangeIter &
  operator=(Vrad_EventStreamExtendedEventsInRangeIter const & iOther);
  ~Vrad_EventStreamExtendedEventsInRangeIter() override;

  bool IsMore() const override;
  void operator++() override;
  Vrad_ExtendedEvent operator*() const override;

private:
  Vrad_EventStream_RangeIter mIter;
};
