// The current value of each followed sub-stream, and the events that lead from one state to
// another.
#pragma once

#include <memory>

#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"
#include "vrad/vrae_substream.h"
#include "vrad/vrae_timedevent.h"

class Vrae_ChaseTrackerMap;

/// An active entry with its current value.
struct Vrae_ChaseTracker_ChasingEntry {
  bool mIsActive = false;
  int mValue = 0;
  Vrae_SubStream mSubStream;
};

/// An active entry with the value to release it to.
struct Vrae_ChaseTracker_ReleasingEntry {
  bool mIsActive = false;
  int mValue = 0;
  Vrae_SubStream mSubStream;
};

/// Holds the values of the sub-streams that its map follows. An entry is active from the feeding
/// operation that touches it until it is cleared or released; it is changed if its value must be
/// sent on unmuting. Output goes to a receiver as it is made, in entry order.
/// Fails: a null receiver or old state meets a throwing check, everywhere but where null is given a
/// meaning below.
/// Thread: one at a time. Only the constructors allocate.
class VRAD_EXPORT Vrae_ChaseTracker {
public:
  enum EReleaseMode : int { kReleaseAndDeactivate = 0, kReleaseKeepActive = 1 };

  /// The arrays are sized here for good: an entry that the map gets later counts as absent. The map
  /// must outlive the tracker. Without `iReleaseOnMute`, `DoMute` sends nothing.
  Vrae_ChaseTracker(Vrae_ChaseTrackerMap const * iMapP, bool iReleaseOnMute);

  /// A deep copy on the same map. It does not count as clear, whatever the source says.
  explicit Vrae_ChaseTracker(Vrae_ChaseTracker const * iOtherP);

  /// Shares the source's values and flags from here on; what one is fed, both hold. For a copy of
  /// its own use the constructor above.
  Vrae_ChaseTracker & operator=(Vrae_ChaseTracker const & iOther);

  Vrae_ChaseTracker(Vrae_ChaseTracker const &) = delete;
  ~Vrae_ChaseTracker();

  /// No entry is active any more. Values and changed flags stay. Costs nothing when clear already.
  void Clear();

  // Feeding. What the map does not follow is ignored; a release-only entry becomes active but holds
  // no value.

  /// Takes the event's value without calling it a change.
  void ChaseEvent(Vrae_Event const & iEvent);

  /// Takes the event's value and marks it changed, unless the entry is releasing and active.
  void TrackEvent(Vrae_Event const & iEvent);
  void TrackValue(Vrae_SubStream const & iSubStream, int iValue);

  /// For chasing entries alone. The second form keeps a value that is later than `iTime`; at equal
  /// times the value added last wins.
  void SetActiveValue(Vrae_SubStream const & iSubStream, int iValue);
  void SetActiveValueIfLater(Vrae_SubStream const & iSubStream, int iValue, Time_Typed iTime);

  void ClearActiveFlag(Vrae_SubStream const & iSubStream);

  // Queries.

  bool IsTracking(Vrae_SubStream const & iSubStream) const;
  bool IsActive(Vrae_SubStream const & iSubStream) const;
  bool IsChasing(Vrae_SubStream const & iSubStream) const;

  /// Stores the release value unless the pointer is null.
  bool IsReleasing(int * oReleaseValueP, Vrae_SubStream const & iSubStream) const;

  /// The entry of a chasing sub-stream, or of an index of the sub-stream space. False, with nothing
  /// stored, for what is not chasing.
  bool GetChasingEntry(Vrae_ChaseTracker_ChasingEntry * oEntryP,
                       Vrae_SubStream const & iSubStream) const;
  bool GetChasingEntry(Vrae_ChaseTracker_ChasingEntry * oEntryP, int iSubStreamIndex) const;

  // Output.

  /// Sends all active values.
  void Prep(Vrae_EventReceiver * iOutputP) const;

  /// Sends the active values of the entries that are not releasing.
  void DoCurrentPositionChase(Vrae_EventReceiver * iOutputP) const;

  /// Sends the release value of entry 0, tested or not, and of each active releasing entry behind
  /// it.
  void Release(Vrae_EventReceiver * iOutputP, EReleaseMode iMode);

  /// This tracker is the new state: sends what differs from the old one, then releases what the old
  /// one held and this one does not. Entry 0 is taken as active. A null old state differs in all
  /// and releases nothing. The old state ends without an active releasing entry.
  void ChaseAndRelease(Vrae_ChaseTracker * iOldStateP, Vrae_EventReceiver * iOutputP) const;

  /// Releases the sub-stream whose index the event carries, if it is active. With a null receiver
  /// it is forgotten silently.
  void HandleReleaseEvent(Vrae_ReleaseControllerEvent const & iEvent,
                          Vrae_EventReceiver * iOutputP);

  /// Sends the release values of the active releasing entries that are not there already; the
  /// sustain pedal in any case, if asked to. Nothing is changed any more after it.
  void DoMute(Vrae_EventReceiver * iOutputP, bool iForceSustain);

  /// Sends the active values that changed, and those of releasing entries that are not at their
  /// release value.
  void DoUnMute(Vrae_EventReceiver * iOutputP) const;

  /// This tracker takes over from the old one while muted: works out what `DoUnMute` has to send.
  void DoMutedUpdate(Vrae_ChaseTracker * iOldStateP);

  /// This tracker takes over from the old one while sounding: sends what differs.
  void DoUnMutedUpdate(Vrae_ChaseTracker * iOldStateP, Vrae_EventReceiver * iOutputP) const;

private:
  friend class Vrae_ChaseTracker_ActiveChasingIterator;
  friend class Vrae_ChaseTracker_ActiveReleasingIterator;

  int GetNumEntries() const;
  int GetNumChasing() const;
  bool FindEntry(int * oIndexP, Vrae_SubStream const & iSubStream) const;
  bool FindEntryForIndex(int * oIndexP, int iSubStreamIndex) const;
  bool FindChasingEntry(int * oIndexP, Vrae_SubStream const & iSubStream) const;
  void SetEntry(int iIndex, int iValue);

  bool GetEntryIsActive(int iIndex) const;
  int GetEntryValue(int iIndex) const;
  bool HoldsValue(int iIndex, int iValue) const;
  bool GetEntryIsReleasing(int iIndex) const;
  int GetEntryReleaseValue(int iIndex) const;
  Vrae_SubStream GetEntrySubStream(int iIndex) const;
  void OutputForEntry(int iIndex, Vrae_EventReceiver * iOutputP, int iValue) const;
  bool IsChangedFrom(Vrae_ChaseTracker const & iOld, int iIndex) const;
  void UpdateUnMutedEntry(int iIndex, Vrae_ChaseTracker const & iOld,
                          Vrae_EventReceiver * iOutputP) const;

  // Shared after an assignment; sized once.
  std::shared_ptr<int[]> mValues;             // one for each chasing entry
  std::shared_ptr<Time_Typed[]> mValueTimes;  // the same; written by SetActiveValueIfLater alone
  std::shared_ptr<bool[]> mActive;            // one for each entry
  std::shared_ptr<bool[]> mChanged;           // the same
  Vrae_ChaseTrackerMap const * mMapP;
  bool mIsClear;  // no active flag was set through this tracker since Clear
  bool mReleaseOnMute;
  int mNumValues;
  int mNumFlags;
};

/// Walks the active chasing entries. Stands at entry 0 to begin with, active or not; only the steps
/// filter. The tracker must outlive it.
/// Fails: reading or stepping at the end meets a throwing check; the position stays.
class VRAD_EXPORT Vrae_ChaseTracker_ActiveChasingIterator {
public:
  explicit Vrae_ChaseTracker_ActiveChasingIterator(Vrae_ChaseTracker const * iTrackerP);

  bool AtEnd() const;
  Vrae_ChaseTracker_ChasingEntry operator*() const;
  void operator++();

private:
  Vrae_ChaseTracker const * mTrackerP;
  int mIndex;
};

/// Walks the active releasing entries. Stands at entry 0 to begin with, active and releasing or
/// not, which reading it reports; only the steps filter. The tracker must outlive it.
/// Fails: as above.
class VRAD_EXPORT Vrae_ChaseTracker_ActiveReleasingIterator {
public:
  explicit Vrae_ChaseTracker_ActiveReleasingIterator(Vrae_ChaseTracker const * iTrackerP);

  bool AtEnd() const;
  Vrae_ChaseTracker_ReleasingEntry operator*() const;
  void operator++();

private:
  Vrae_ChaseTracker const * mTrackerP;
  int mIndex;
};
