// An event at a position, lists of them, and the interfaces through which events are handed on.
#pragma once

#include "cmn/cmn_polyvector.h"
#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"
#include "vrad/vrae_event.h"

class Sys_TypedInStream;
class Sys_TypedOutStream;

/// Identity of a MIDI input. The second field is the major key of the order, on purpose.
struct Vras_InputID {
  Vras_InputID() = default;
  Vras_InputID(int iFirst, int iSecond) : mFirst(iFirst), mSecond(iSecond) {}

  bool operator==(Vras_InputID const & iOther) const {
    return mFirst == iOther.mFirst && mSecond == iOther.mSecond;
  }
  bool operator!=(Vras_InputID const & iOther) const { return !(*this == iOther); }
  bool operator<(Vras_InputID const & iOther) const {
    return mSecond != iOther.mSecond ? mSecond < iOther.mSecond : mFirst < iOther.mFirst;
  }

  int mFirst = 0;
  int mSecond = 0;
};

/// Where an event came from. All zero when nobody said. No order and no comparison looks at it.
struct Vrae_SourceStamp {
  Vras_InputID mInputID;
  signed char mStampFlag = 0;  // kept for the host
};

/// An event at a position: what stores give out and take in. A value; copies of a long sysex share
/// its payload.
/// Thread: one at a time for each object; copying and destroying take nothing from the heap.
class VRAD_EXPORT Vrae_TimedEvent {
public:
  /// Tick 0, no event, a blank stamp.
  Vrae_TimedEvent() : mTime(0, Time_eType_Ticks) {}

  /// The stamp is blank unless given.
  Vrae_TimedEvent(Time_Typed iTime, Vrae_Event const & iEvent) : mTime(iTime), mEvent(iEvent) {}
  Vrae_TimedEvent(Time_Typed iTime, Vrae_Event const & iEvent, Vrae_SourceStamp const & iStamp)
      : mTime(iTime), mEvent(iEvent), mSourceStamp(iStamp) {}

  /// Whether the event is a note with a duration, with or without a fractional pitch.
  bool IsNoteWithDurationEvent() const;

  /// The note's duration; a default length for any other event.
  Time_TypedLength GetDuration() const;

  /// The order of playing: by time, then by the priority of the kinds. Events that agree in both
  /// are equivalent.
  static bool PlaybackOrdering(Vrae_TimedEvent const & iA, Vrae_TimedEvent const & iB);

  Time_Typed mTime;
  Vrae_Event mEvent;
  Vrae_SourceStamp mSourceStamp;
};

/// Times and events alike; the stamps take no part. The events are looked at only if the times are
/// equal.
VRAD_EXPORT bool operator==(Vrae_TimedEvent const & iA, Vrae_TimedEvent const & iB);

/// A vector of timed events, in whatever order they were put in.
/// Thread: the one that fills it.
class VRAD_EXPORT Vrae_TimedEventList : public Cmn_PolyVector<Vrae_TimedEvent, 0> {
public:
  /// The latest end of the notes, always in samples; sample 0 when there is none. Notes with a
  /// fractional pitch are not counted. Linear.
  Time_Typed GetLatestNoteOff() const;

  /// Writes the list's record; the stamps are not saved. Fails: as `Vrae_Event::StreamOut`.
  void StreamOut(Sys_TypedOutStream & ioStream) const;
  /// Erases the list, then reads a record into it, in its order. A negative count counts as 0.
  /// Fails: `Sys_StreamException` and what `Vrae_Event::StreamIn` throws; what was read stays.
  void StreamIn(Sys_TypedInStream & ioStream);
};

/// Notes that are taken to sound as one chord, in order of arrival.
class VRAD_EXPORT Vrae_Chord : public Vrae_TimedEventList {
public:
  /// Whether a note still belongs to the chord: it sounds together with the last note for three
  /// quarters of the longer of the two, or starts within a short window after the last note's
  /// start. Only the last note is consulted. An empty chord takes anything.
  /// Fails: an event that is no note is reported, once for each, and read as it lies.
  bool CanAdd(Vrae_TimedEvent const & iNew) const;

  /// Whether an equal event is in the chord. Linear.
  bool InChord(Vrae_TimedEvent const & iEvent) const;
};

/// Takes the events that chase and track states put out. Implemented by the host.
/// Thread: the one that called for the output.
class VRAD_EXPORT Vrae_EventReceiver {
public:
  virtual ~Vrae_EventReceiver();

  /// The event holds only during the call.
  virtual void ReceiveEvent(Vrae_Event const & iEvent) = 0;
};

/// Takes timed events one by one.
class VRAD_EXPORT Vrae_TimedEventReceiver {
public:
  virtual ~Vrae_TimedEventReceiver();

  /// The event holds only during the call.
  virtual void ReceiveEvent(Vrae_TimedEvent const & iEvent) = 0;

  /// For receivers that must know where a sequence ends.
  virtual void EndOfEvents() {}
};

/// Hands out timed events in order. Past its end the position stays.
class VRAD_EXPORT Vrae_TimedEventIterator {
public:
  virtual ~Vrae_TimedEventIterator();

  virtual bool IsMore() const = 0;
  virtual void operator++() = 0;
  virtual Vrae_TimedEvent operator*() const = 0;
};
