// What a dragged play position passes: notes and bends as a sorted list of transitions, walked in
// either direction, with nodes from a pool of its own.
#pragma once

#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"
#include "vrad/vrae_timedevent.h"

/// One transition, and a node of a list. `mType` is one of the enumeration; its order is that of
/// the transitions at one instant.
class VRAD_EXPORT Vrad_ScrubEvent {
public:
  enum EType : int { kNoteEnd = 0, kBendBefore = 1, kBendAfter = 2, kNoteStart = 3 };

  /// Earlier time first; at one time lower type first.
  bool GoesBefore(Vrad_ScrubEvent const * iOtherP) const {
    return mTime != iOtherP->mTime ? mTime < iOtherP->mTime : mType < iOtherP->mType;
  }

  long long mTime = 0;  // the count of the source time; its unit is not kept
  short mValue = 0;     // the pitch of a note, the value of a bend
  int mType = kNoteEnd;
  signed char mOnVelocity = 0;  // of notes alone, like the next
  signed char mOffVelocity = 0;
  Vrad_ScrubEvent * mPrevP = nullptr;
  Vrad_ScrubEvent * mNextP = nullptr;  // a free node is linked by it, too
};

/// The transitions around a play position, in order, with a cursor. All times must be of one unit,
/// which the list doesn't know.
/// Thread: the one that all scrubbing is done from; the nodes of all lists come from one pool.
class VRAD_EXPORT Vrad_ScrubList {
public:
  /// Empty, at position 0.
  Vrad_ScrubList();
  Vrad_ScrubList(Vrad_ScrubList const &) = delete;
  Vrad_ScrubList & operator=(Vrad_ScrubList const &) = delete;
  /// Gives the nodes back.
  ~Vrad_ScrubList();

  /// Adds a note's start and end. `iFromEnd`: looks for their places from the tail instead of from
  /// the head; of alike transitions one from the head goes first, one from the tail last.
  /// Fails: an event that is no note with duration is reported and read all the same;
  /// `std::bad_alloc`, with the list unchanged.
  void AddNote(Vrae_TimedEvent const & iEvent, bool iFromEnd);

  /// Adds the transition from the bend in force before to the event's, each side at the event's
  /// time. A bend that is the first in the list counts as passed, wherever the position is.
  /// Fails: as `AddNote`, for an event that is no bend.
  void AddPitchBend(Vrae_TimedEvent const & iEvent, short iPreviousBend, bool iFromEnd);

  /// Moves the position towards a time and gives the transition passed next, or null when there is
  /// none left on the way: call it until then. Going forward, what ends at the time itself is
  /// passed and what starts there is not; going backward the reverse.
  /// Lives: the transition until the next `Clear`.
  Vrad_ScrubEvent * MoveTowards(Time_Typed iTime);

  /// Empties the list. The position stays.
  void Clear();

  /// Whether a transition lies ahead of a position at that time.
  bool EventIsAfterTime(Vrad_ScrubEvent const * iEventP, long long iTime) const;

private:
  void InsertPair(Vrad_ScrubEvent * iFirstP, Vrad_ScrubEvent * iSecondP, bool iFromEnd);
  void InsertAfter(Vrad_ScrubEvent * iNodeP, Vrad_ScrubEvent *& ioCursorP);
  void InsertBefore(Vrad_ScrubEvent * iNodeP, Vrad_ScrubEvent *& ioCursorP);
  void Link(Vrad_ScrubEvent * iPrevP, Vrad_ScrubEvent * iNodeP, Vrad_ScrubEvent * iNextP);
  void MakeCurrentIfNext(Vrad_ScrubEvent * iNodeP);

  Vrad_ScrubEvent * mHeadP;
  Vrad_ScrubEvent * mTailP;
  Vrad_ScrubEvent * mCurrentP;  // the node that lies next going forward; null past the end
  long long mPosition;
};

/// A block of nodes on the heap, and the free nodes of all blocks. Blocks are never given back one
/// by one.
/// Thread: as the lists; there is no lock.
class VRAD_EXPORT Vrad_ScrubEventPool {
public:
  static constexpr int kNumEvents = 1024;

  /// Puts its nodes in front of the free ones. Needs: built by `new`; `Free` deletes it.
  Vrad_ScrubEventPool();
  Vrad_ScrubEventPool(Vrad_ScrubEventPool const &) = delete;
  Vrad_ScrubEventPool & operator=(Vrad_ScrubEventPool const &) = delete;

  /// A node with whatever it held before. Takes memory only when no node is free.
  /// Fails: `std::bad_alloc`, with nothing changed.
  static Vrad_ScrubEvent * GetEvent();

  /// Gives a node back. Returns the one that it was linked to, so that a list can be walked while
  /// it is released.
  static Vrad_ScrubEvent * ReleaseEvent(Vrad_ScrubEvent * iEventP);

  /// Deletes all blocks. The last call of all scrubbing in a process: nothing may be taken or
  /// released afterwards, and no list that holds transitions may be left.
  static void Free();

  static Vrad_ScrubEvent * sFirstEvent;     // the free nodes
  static Vrad_ScrubEventPool * sFirstPool;  // the blocks

private:
  Vrad_ScrubEvent mEvents[kNumEvents];
  Vrad_ScrubEventPool * mNextP;
};
