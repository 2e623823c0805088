// The value history of one continuous MIDI value: a step function over time.
#pragma once

#include <atomic>

#include "cmn/cmn_chunkyvector.h"
#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"
#include "ndo/ndo_object.h"
#include "vrad/vrad_extendedevent.h"
#include "vrad/vrae_substream.h"
#include "vrad/vrae_timedevent.h"

class Sys_TypedInStream;
class Sys_TypedOutStream;
class Vrad_ContinuousData;

/// A value that holds from its time on.
struct Vrad_ContinuousData_Segment {
  Time_Typed mTime;
  int mValue = 0;  // in the range of the sub-stream whose history it is; not checked here
};

/// Visits segments in order.
class VRAD_EXPORT Vrad_ContinuousData_OutputIter {
public:
  virtual ~Vrad_ContinuousData_OutputIter();

  virtual void operator()(Time_Typed iTime, int iValue) = 0;
};

/// A snapshot of continuous data. Comes from `Vrad_ContinuousData::NdoGetState` alone.
class VRAD_EXPORT Vrad_ContinuousData_NdoState : public Ndo_State {
public:
  Vrad_ContinuousData_NdoState(Vrad_ContinuousData_NdoState const &) = delete;
  Vrad_ContinuousData_NdoState & operator=(Vrad_ContinuousData_NdoState const &) = delete;
  ~Vrad_ContinuousData_NdoState() override;

  /// Blank data that snaps.
  Ndo_Object * NdoReCreate() override;

private:
  friend class Vrad_ContinuousData;

  explicit Vrad_ContinuousData_NdoState(Vrad_ContinuousData const & iData);

  bool mSnapToCoarseTicks;
  Cmn_ChunkyPODVector<Vrad_ContinuousData_Segment> mSegments;  // shared with the data
};

/// A time-sorted list of segments, one for each time. What is put in stays: a segment that repeats
/// the value before it is kept. Ranges are half open, [iStart, iEnd).
/// r segments: searches cost O(log r), a snapshot O(1); reading allocates nothing.
/// Thread: the chunk's owner.
class VRAD_EXPORT Vrad_ContinuousData : public Ndo_Object {
public:
  /// Empty. `iSnapToCoarseTicks`: shifted tick times go to the coarse grid while tick times matter.
  Vrad_ContinuousData(Ndo_Object::EUndoFlag iUndoFlag, bool iSnapToCoarseTicks);
  ~Vrad_ContinuousData() override;
  Vrad_ContinuousData(Vrad_ContinuousData const &) = delete;
  Vrad_ContinuousData & operator=(Vrad_ContinuousData const &) = delete;

  bool IsEmpty() const { return mSegments.Size() == 0; }

  /// Number of segments.
  int Size() const { return mSegments.Size(); }

  /// Sets the value from `iTime` on; a segment at that very time is overwritten. Always announces.
  void AddValue(Time_Typed iTime, int iValue);

  /// Merges in the source's segments of [iStart, iEnd), shifted and snapped. They replace what
  /// stands at their times; of two that the grid brings together the earlier one stays. Times
  /// outside the stretch may then be out of order or doubled. An empty source range announces
  /// nothing.
  void AddFromData(Vrad_ContinuousData const * iSourceP, Time_Typed iStart, Time_Typed iEnd,
                   Time_TypedLength iOffset);

  /// Takes out again what a merge put in: the segments that are alike in shifted time and in value.
  /// Shifted times are not snapped here, so what the grid has moved is missed.
  void EraseFromData(Vrad_ContinuousData const * iSourceP, Time_Typed iStart, Time_Typed iEnd,
                     Time_TypedLength iOffset);

  /// Removes the segments in [iStart, iEnd). Announces only if there are any.
  void EraseRange(Time_Typed iStart, Time_Typed iEnd);

  /// The last segment before `iTime`; one exactly there does not count. False, with nothing stored,
  /// if there is none.
  bool GetLastValueChangeBeforeTime(Time_Typed * oTimeP, int * oValueP, Time_Typed iTime) const;

  /// Asks memory for what `GetLastValueChangeBeforeTime` is going to read, in two steps that lie
  /// some time apart. For who searches many stores at once.
  void FetchTop() const { mSegments.GetImpl().FetchTop(); }
  void FetchBefore(Time_Typed iTime) const {
    if (IsSortedIn(iTime.GetType())) mSegments.GetImpl().FetchChunkBefore(iTime.AsInt64());
  }

  /// The value that holds at `iTime`; a segment exactly there counts.
  /// Fails: throws if no segment lies at or before `iTime`; 0 with throwing off.
  int GetValueAtTime(Time_Typed iTime) const;

  /// Whether a search need not be made: no segment lies in the range for certain. O(1).
  bool IsSurelyEmptyInRange(Time_Typed iStart, Time_Typed iEnd) const {
    if (IsEmpty()) return true;
    if (!IsSortedIn(iStart.GetType()) || !IsSortedIn(iEnd.GetType())) return false;
    return mLastCount < iStart.AsInt64() || mFirstCount >= iEnd.AsInt64() ||
           IsInGap(iStart.AsInt64(), iEnd.AsInt64());
  }

  /// Hands the segments in [iStart, iEnd) to the visitor.
  void ForEachInRange(Vrad_ContinuousData_OutputIter * iOutputP, Time_Typed iStart,
                      Time_Typed iEnd) const;

  /// Shifts and snaps all times. The owner announces. The order is not repaired after snapping.
  /// Fails: a first segment that is not in ticks is reported and shifted all the same.
  void OffsetTimes(Time_TypedLength iLength);

  /// Announces only if there is something to remove.
  void Clear();

  /// Takes over the source's segments and its snapping. O(1).
  void ReplaceData(Vrad_ContinuousData const * iSourceP);

  /// Writes the data's record. Fails: throws where a count falls below the one before it, or the
  /// first below 0; units are not looked at. Part of the record is then written.
  void StreamOut(Sys_TypedOutStream & ioStream) const;

  /// O(1): the segments are shared until either side changes.
  Ndo_State * NdoGetState() override;

  /// Fails: throws on a state of another class and leaves the data unchanged.
  void NdoRestoreState(Ndo_State * iStateP) override;

private:
  friend class Vrad_ContinuousData_NdoState;
  friend class Vrad_ContinuousData_RangeIter;
  friend class Vrad_ContinuousDataStream;

  typedef Cmn_ChunkyPODVector<Vrad_ContinuousData_Segment> Segments;

  bool IsSortedIn(Time_EType iUnit) const { return mSortedUnit == iUnit; }
  unsigned long long GapPlaceOf(long long iCount) const {
    return (static_cast<unsigned long long>(iCount) -
            static_cast<unsigned long long>(mFirstCount)) >>
           mGapShift;
  }
  bool IsInGap(long long iStart, long long iEnd) const {
    if (iStart <= mFirstCount || iEnd <= iStart) return false;
    unsigned long long const gap = mGap.load(std::memory_order_relaxed);
    return GapPlaceOf(iStart) >= (gap & 0xffffffff) && GapPlaceOf(iEnd - 1) < gap >> 32;
  }
  void RememberGap(long long iCountBefore, long long iCountBehind) const;
  void ResetGap();

  int FindSpanFrom(Time_Typed iTime, Vrad_ContinuousData_Segment const ** oFirst,
                   int * oIndex) const;
  void BeginEdit();
  void EndEdit();
  void StreamIn(Sys_TypedInStream & ioStream);
  void ReadSegments(Sys_TypedInStream & ioStream);
  void SetSegments(Segments const & iSegments);
  void TakeContents(Vrad_ContinuousData const & iSource);

  // An outline of the segments, by which most reads are done or made short. The unit of all times
  // while they are known to ascend; else, as in an empty store and during an edit, no int at all,
  // since a time may be of any unit.
  long long mSortedUnit;
  bool mSnapToCoarseTicks;
  long long mFirstCount, mLastCount;  // valid with the unit

  // The stretch between two segments where the last read of a range ended, so that playback from
  // one audio block to the next does not search: its first place and, in the upper half, the one
  // behind it, in steps of 2^mGapShift from the first count. One word, so that several reads at
  // once see it whole. 0: none.
  int mGapShift;
  mutable std::atomic<unsigned long long> mGap;

  Segments mSegments;  // ascending by time, no two alike, as far as the writers keep it so
};

/// The walk that the two iterators share. Must not outlive the data; stands by index, so an edit
/// moves the segments under it.
class VRAD_EXPORT Vrad_ContinuousData_RangeIter {
public:
  /// Nothing to walk.
  Vrad_ContinuousData_RangeIter();
  Vrad_ContinuousData_RangeIter(Vrad_ContinuousData const * iDataP,
                                Vrae_SubStream const & iSubStream);
  Vrad_ContinuousData_RangeIter(Vrad_ContinuousData const * iDataP,
                                Vrae_SubStream const & iSubStream, Time_Typed iStart,
                                Time_Typed iEnd);

  bool IsMore() const;
  void Next();

  /// Fails: a value out of the sub-stream's range is reported; past the end, tick 0 and no event.
  Vrae_TimedEvent GetEvent() const;

private:
  Vrad_ContinuousData const * mDataP;
  Vrae_SubStream mSubStream;
  int mIndex;
  bool mHasEnd;  // false: all segments are walked
  Time_Typed mEnd;
};

/// The segments as timed events of one sub-stream. Must not outlive the data.
class VRAD_EXPORT Vrad_ContinuousDataTimedEventsInRangeIter : public Vrae_TimedEventIterator {
public:
  Vrad_ContinuousDataTimedEventsInRangeIter(Vrad_ContinuousData * iDataP,
                                            Vrae_SubStream const & iSubStream);
  Vrad_ContinuousDataTimedEventsInRangeIter(Vrad_ContinuousData * iDataP,
                                            Vrae_SubStream const & iSubStream, Time_Typed iStart,
                                            Time_Typed iEnd);
  ~Vrad_ContinuousDataTimedEventsInRangeIter() override;

  bool IsMore() const override;
  void operator++() override;
  Vrae_TimedEvent operator*() const override;

private:
  Vrad_ContinuousData_RangeIter mIter;
};

/// The segments as extended events of one sub-stream. Must not outlive the data.
class VRAD_EXPORT Vrad_ContinuousDataExtendedEventsInRangeIter : public Vrad_ExtendedEventIterator {
public:
  Vrad_ContinuousDataExtendedEventsInRangeIter(Vrad_ContinuousData * iDataP,
                                               Vrae_SubStream const & iSubStream);
  Vrad_ContinuousDataExtendedEventsInRangeIter(Vrad_ContinuousData * iDataP,
                                               Vrae_SubStream const & iSubStream, Time_Typed iStart,
                                               Time_Typed iEnd);
  ~Vrad_ContinuousDataExtendedEventsInRangeIter() override;

  bool IsMore() const override;
  void operator++() override;
  Vrad_ExtendedEvent operator*() const override;

private:
  Vrad_ContinuousData_RangeIter mIter;
};
