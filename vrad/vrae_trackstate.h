// The notes in progress of a track, and the events that lead from one such state to another.
#pragma once

#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"
#include "vrad/vrae_event.h"
#include "vrad/vrae_noteinprogress.h"
#include "vrad/vrae_timedevent.h"

struct Vrae_ChaseSpec;

/// Says which note in progress is meant.
class VRAD_EXPORT Vrae_TrackState_Matcher {
public:
  virtual ~Vrae_TrackState_Matcher();
  virtual bool operator()(Vrae_NoteInProgress const & iNote) const = 0;
};

/// Which notes sound and when each ends. Nodes stand in ascending order of release time, the one
/// added last first among equals; several may have one pitch. All nodes come from the pool of
/// `Vrae_NoteInProgress`; the heap is never touched.
/// Thread: one at a time.
class VRAD_EXPORT Vrae_TrackState {
public:
  /// What a transition sends beside the note-offs of notes that only the old state has.
  enum ETransitionMode : int {
    kTransitionInProgress = 0,  // shared notes: clear, then add; new ones: what is left of them
    kTransitionNoteOn = 1,      // new notes: note-on
    kTransitionNoteOffOnly = 2  // nothing; so does any other value
  };

  /// True for a note that stays. Implemented by the host.
  class VRAD_EXPORT NoteInProgressFilter {
  public:
    virtual ~NoteInProgressFilter();
    virtual bool operator()(Vrae_NoteInProgress const & iNote) const = 0;
  };

  Vrae_TrackState();
  Vrae_TrackState(Vrae_TrackState const & iOther);
  ~Vrae_TrackState();

  /// A deep copy.
  /// Needs: not itself, which would leave it empty.
  /// Fails: without memory it is reported and stops; the last node copied then points into the
  /// source's list.
  Vrae_TrackState & operator=(Vrae_TrackState const & iOther);

  /// Frees all notes. Both do the same.
  void Clear();
  void DeleteNotesInProgress();

  /// A note-on starts a note that ends at sample 1, ahead of all notes with true times; a note-off
  /// ends the note of its pitch that would end first. Other kinds are ignored.
  void ReceiveEvent(Vrae_Event const & iEvent);

  /// Takes notes with a duration, note-offs, and the kinds that add and clear notes in progress.
  /// Fails: a note-on is reported and refused, as a timed stream carries durations; without memory
  /// it is reported and the note is not tracked.
  void ReceiveEvent(Vrae_TimedEvent const & iEvent);

  /// The note that ends first, or null. Lives: until the state changes.
  Vrae_NoteInProgress const * NextNoteOff() const;

  /// Drops the note that ends first, if there is one.
  void PopNoteOff();

  /// Moves all release times. The list is not sorted again.
  void OffsetTimes(Time_TypedLength iLength);

  /// Keeps the notes for which the filter, called once for each, says true.
  /// Fails: notes that do not ascend meet a throwing check; what is left is kept unfiltered then.
  void FilterNotesInProgress(NoteInProgressFilter const & iFilter);

  /// Sends what turns this state, the old one, into the new one, and, if `iUpdateState`, becomes a
  /// copy of it. Does neither unless notes are chased; sends nothing to a null receiver.
  /// Fails: a null new state meets a throwing check if there is a receiver.
  void ComputeTransitionToNewState(Vrae_TrackState * iNewStateP, Vrae_EventReceiver * iOutputP,
                                   Vrae_ChaseSpec const & iChaseSpec, bool iUpdateState);

private:
  void AddNoteInProgress(Time_Typed iTime, Vrae_NoteWithDurationBase const & iNote);
  void RemoveMatchingNoteInProgress(Vrae_TrackState_Matcher const & iMatcher);
  void RemoveNoteOfPitch(signed char iPitch);
  void ComputeNoteTransitions(Vrae_TrackState * iNewStateP, Vrae_EventReceiver * iOutputP,
                              ETransitionMode iMode, Time_Typed iTime) const;
  void TraceReceived(char const * iFormat, int iPitch) const;

  Vrae_NoteInProgress * mHeadP;  // owned, with all behind it
};

/// How to go from one state to another.
struct Vrae_ChaseSpec {
  bool mChaseNotes = false;
  Vrae_TrackState::ETransitionMode mTransitionMode = Vrae_TrackState::kTransitionInProgress;
  Time_Typed mTime;  // of the transition
};
