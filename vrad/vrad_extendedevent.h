// What a stored note remembers beside when and what: the events that retrievals hand out, their
// view for notes, and the record that a note list keeps.
#pragma once

#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"
#include "vrad/vrae_event.h"
#include "vrad/vrae_timedevent.h"

class Vrad_NoteWithDurationExtendedEvent;

/// A timed event that can hold a note's extras, so that a list of plain extended events holds notes
/// without slicing. A value; a copy has a blank source stamp, and assigning leaves the target's.
/// Thread: one at a time for each object; copying takes nothing from the heap.
class VRAD_EXPORT Vrad_ExtendedEvent : public Vrae_TimedEvent {
public:
  /// Tick 0, no event, no extras.
  Vrad_ExtendedEvent() = default;
  Vrad_ExtendedEvent(Time_Typed iTime, Vrae_Event const & iEvent);
  Vrad_ExtendedEvent(Vrad_ExtendedEvent const & iOther) noexcept;

  /// A plain source makes the target plain, with the bytes of its note fields left as they were.
  Vrad_ExtendedEvent const & operator=(Vrad_ExtendedEvent const & iOther) noexcept;

  bool IsNoteWithDurationExtendedEvent() const;

  /// The same object seen as a note, never a copy.
  /// Fails: an event that holds no note is reported and given all the same.
  Vrad_NoteWithDurationExtendedEvent & AsNoteWithDurationExtendedEvent();
  Vrad_NoteWithDurationExtendedEvent const & AsNoteWithDurationExtendedEvent() const;

  int mExtensionKind = 0;  // 0: plain; 1: a note, and what follows is valid
  long long mQuantizeDeltaValue = 0;
  Time_EType mQuantizeDeltaType = Time_eType_Samples;
  signed char mOrigPitch = 0;
  signed char mOrigOnVelocity = 0;
  signed char mOrigOffVelocity = 0;
  long long mOrigDurationValue = 0;
  Time_EType mOrigDurationType = Time_eType_Samples;
  bool mMuted = false;

protected:
  void CopyTimeAndEvent(Vrad_ExtendedEvent const & iOther) noexcept;

private:
  void CopyExtension(Vrad_ExtendedEvent const & iOther) noexcept;
};

/// The view for notes. Adds no storage. The quantize delta is how far the host's quantizer moved
/// the note: carried along, never applied here. The original event is the note before any edit.
class VRAD_EXPORT Vrad_NoteWithDurationExtendedEvent : public Vrad_ExtendedEvent {
public:
  /// Not moved, and its own original. A note with a fractional pitch keeps its kind and fraction.
  Vrad_NoteWithDurationExtendedEvent(Time_Typed iTime, Vrae_NoteWithDurationEvent const & iEvent,
                                     bool iMuted);
  Vrad_NoteWithDurationExtendedEvent(Time_Typed iTime, Vrae_NoteWithDurationEvent const & iEvent,
                                     Time_TypedLength const & iDelta,
                                     Vrae_NoteWithDurationEvent const & iOrig, bool iMuted);

  /// Copying goes through the note constructor's checks, which report what the source's original
  /// values break.
  Vrad_NoteWithDurationExtendedEvent(Vrad_NoteWithDurationExtendedEvent const & iOther);
  Vrad_NoteWithDurationExtendedEvent const &
  operator=(Vrad_NoteWithDurationExtendedEvent const & iOther);

  Time_TypedLength GetQuantizeTimeDelta() const;
  void SetQuantizeTimeDelta(Time_TypedLength const & iDelta);

  /// Adds to the delta.
  /// Fails: a length of the other unit is reported and refused, never converted.
  void AdjustQuantizeTimeDelta(Time_TypedLength const & iLength);
  void ResetQuantizeTimeDelta(Time_EType iType);

  /// A note of the plain kind, whatever the current event's.
  /// Fails: values that a note cannot have are reported and given all the same.
  Vrae_NoteWithDurationEvent GetOrigEvent() const;

  /// Keeps pitch, velocities and duration; not the kind.
  void SetOrigEvent(Vrae_NoteWithDurationEvent const & iEvent);

  bool IsMuted() const;
};

/// The record that a note list keeps. An edit of a stored note rewrites time and event alone.
class VRAD_EXPORT Vrad_NoteListBase_Note {
public:
  /// `Time_Typed()`, a blank note as event and as original, a default delta, not muted.
  Vrad_NoteListBase_Note();

  /// Its own original, of the plain kind; delta 0 in the time's unit; not muted.
  Vrad_NoteListBase_Note(Time_Typed iTime, Vrae_NoteWithDurationEvent const & iEvent);
  Vrad_NoteListBase_Note(Time_Typed iTime, Vrae_NoteWithDurationEvent const & iEvent,
                         Time_TypedLength const & iDelta, Vrae_NoteWithDurationEvent const & iOrig,
                         bool iMuted);

  /// The source stamp is lost.
  explicit Vrad_NoteListBase_Note(Vrad_NoteWithDurationExtendedEvent const & iEvent);

  Time_Typed mTime;                     // the list's sort key
  Vrae_NoteWithDurationEvent mEvent;    // as the note now stands
  Time_TypedLength mQuantizeTimeDelta;  // as in Vrad_NoteWithDurationExtendedEvent
  Vrae_NoteWithDurationEvent mOrigEvent;
  bool mMuted = false;
};

/// Hands out extended events in order. Past its end the position stays.
class VRAD_EXPORT Vrad_ExtendedEventIterator {
public:
  virtual ~Vrad_ExtendedEventIterator();

  virtual bool IsMore() const = 0;
  virtual void operator++() = 0;
  virtual Vrad_ExtendedEvent operator*() const = 0;
};

/// A track's real-time properties, such as transposition. Implemented by the host, called by
/// retrievals.
/// Thread: the one that called for the retrieval; the audio thread too, if the host does so.
class VRAD_EXPORT Vrad_IRTProperties {
public:
  virtual ~Vrad_IRTProperties();

  /// Changes the event in place, by those properties whose bit is in the mask.
  virtual void ApplyRealTimeProperties(Vrad_ExtendedEvent & ioEvent, int iPropertyMask) const = 0;
};
