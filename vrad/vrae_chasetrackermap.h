// Which sub-streams a chase tracker follows, and how.
#pragma once

#include <memory>

#include "cmn/cmn_polyvector.h"
#include "foundation/vrad_export.h"
#include "vrad/vrae_substream.h"

/// One followed sub-stream.
struct Vrae_ChaseTrackerMap_Entry {
  Vrae_SubStream mSubStream;
  bool mIsReleasing = false;
  int mReleaseValue = 0;  // sent on release; says something only if `mIsReleasing`
};

/// Gives each followed sub-stream a dense entry index, so that trackers keep plain arrays. A
/// chasing entry's last value is sent when the transport arrives; a releasing entry has a value to
/// return to. The chasing entries are the first `GetNumChasingIndices()`; those behind are
/// release-only.
/// Built once, then shared: first `AppendEntry`, then `DoneAddingChasingEntries`, then entries that
/// are release-only. Must outlive its trackers.
/// Thread: any number of readers, once it is built. Looking up is one array read.
class VRAD_EXPORT Vrae_ChaseTrackerMap {
public:
  /// Controllers 1 to 119, pitch bend, mono pressure and program, all chasing, as entries 0 to 121
  /// in this order. Controller 64, bend and mono pressure release to 0.
  Vrae_ChaseTrackerMap();
  ~Vrae_ChaseTrackerMap();
  Vrae_ChaseTrackerMap(Vrae_ChaseTrackerMap const &) = delete;
  Vrae_ChaseTrackerMap & operator=(Vrae_ChaseTrackerMap const &) = delete;

  /// Nothing can be looked up and nothing chases. The entries stay and are still counted.
  void Clear();

  /// Appends an entry without a release value, or with one.
  /// Fails: a sub-stream that has an entry already is refused by a throwing check.
  void AppendEntry(Vrae_SubStream const & iSubStream);
  void AppendReleasingEntry(Vrae_SubStream const & iSubStream, int iReleaseValue);

  /// All entries so far are chasing; what is appended later is release-only.
  void DoneAddingChasingEntries();

  /// Clears, then leaves bend, controller 64 and mono pressure as release-only entries to 0: a
  /// tracker on this map chases nothing and releases these. Each call adds three entries.
  void SetStandardReleasingNoChasing();

  int GetNumIndices() const;
  int GetNumChasingIndices() const;

  /// By entry index. A bad one is not releasing and has the null sub-stream.
  bool GetEntryIsChasing(int iIndex) const;
  bool GetEntryIsReleasing(int iIndex) const;
  Vrae_SubStream GetEntrySubStream(int iIndex) const;

  /// Fails: an entry that is not releasing is reported; what it holds is given all the same.
  int GetEntryReleaseValue(int iIndex) const;

  /// Finds the entry of a sub-stream, or of an index of the sub-stream space, 0 to 249. False, with
  /// nothing stored, if there is none. A sub-stream that its own type calls invalid has none.
  /// Fails: a null sub-stream, a null pointer or an index out of range meets a throwing check.
  bool GetIndexForSubStream(int * oIndexP, Vrae_SubStream const & iSubStream) const;
  bool GetIndexForSubStreamIndex(int * oIndexP, int iSubStreamIndex) const;

private:
  void AddStandardReleasingEntries();
  void Append(Vrae_ChaseTrackerMap_Entry const & iEntry);
  bool IsEntry(int iIndex) const;
  static bool CheckSubStreamIndex(int iSubStreamIndex);

  int mNumSubStreamIndices;
  std::unique_ptr<int[]> mIndexTable;  // sub-stream index to entry index, or none
  Cmn_PolyVector<Vrae_ChaseTrackerMap_Entry, 0> mEntries;  // never shrinks
  int mNumChasing;                                         // entries below are chasing
};
