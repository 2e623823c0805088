// One continuous MIDI value of a chunk: its sub-stream tied to its value history, given out as
// events.
#pragma once

#include <memory>
#include <string>

#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"
#include "ndo/ndo_object.h"
#include "ndo/ndo_ptr.h"
#include "ndo/ndo_stateref.h"
#include "vrad/vrad_continuousdata.h"
#include "vrad/vrad_extendedevent.h"
#include "vrad/vrad_extendedeventlist.h"
#include "vrad/vrae_substream.h"
#include "vrad/vrae_timedevent.h"

class Sys_TypedInStream;
class Sys_TypedOutStream;
class Vrad_ContinuousDataStream;
class Vrae_ChaseTracker;
class Vrae_ChaseTrackerMap;

/// A snapshot of a stream: the sub-stream and the identifier of its data, which has states of its
/// own. Comes from `Vrad_ContinuousDataStream::NdoGetState` alone.
class VRAD_EXPORT Vrad_ContinuousDataStream_NdoState : public Ndo_State {
public:
  Vrad_ContinuousDataStream_NdoState(Vrad_ContinuousDataStream_NdoState const &) = delete;
  Vrad_ContinuousDataStream_NdoState &
  operator=(Vrad_ContinuousDataStream_NdoState const &) = delete;
  ~Vrad_ContinuousDataStream_NdoState() override;

  Ndo_Object * NdoReCreate() override;

private:
  friend class Vrad_ContinuousDataStream;

  Vrad_ContinuousDataStream_NdoState(Vrae_SubStream const & iSubStream,
                                     Ndo_Ptr<Vrad_ContinuousData> const & iDataP);

  Vrae_SubStream mSubStream;
  Ndo_StateRef<Vrad_ContinuousData> mData;
};

/// Owns the data of one sub-stream, which is undoable exactly when the stream is and announces its
/// own edits. Ranges are half open, [iStart, iEnd), on stored times.
/// Thread: the chunk's owner. Retrieval allocates nothing but what the target list needs.
class VRAD_EXPORT Vrad_ContinuousDataStream : public Ndo_Object {
public:
  /// Empty. `iSnapToCoarseTicks` as for `Vrad_ContinuousData`.
  Vrad_ContinuousDataStream(Vrae_SubStream const & iSubStream, Ndo_Object::EUndoFlag iUndoFlag,
                            bool iSnapToCoarseTicks);

  /// Reads its record: sub-stream and data. Announces nothing.
  /// Fails: throws string 100 for a negative count and for a count of time below the one before it,
  /// or below 0; what `Vrae_SubStream::StreamIn` throws; `Sys_StreamException`.
  Vrad_ContinuousDataStream(Sys_TypedInStream & ioStream, Ndo_Object::EUndoFlag iUndoFlag,
                            bool iSnapToCoarseTicks);

  /// The same contents, in data of its own.
  Vrad_ContinuousDataStream(Vrad_ContinuousDataStream const & iOther);
  Vrad_ContinuousDataStream & operator=(Vrad_ContinuousDataStream const &) = delete;

  /// The data goes by `NdoDelete`.
  ~Vrad_ContinuousDataStream() override;

  // As in Vrad_ContinuousData.
  void AddFromStream(Vrad_ContinuousDataStream const * iSourceP, Time_Typed iStart, Time_Typed iEnd,
                     Time_TypedLength iOffset);
  void EraseFromStream(Vrad_ContinuousDataStream const * iSourceP, Time_Typed iStart,
                       Time_Typed iEnd, Time_TypedLength iOffset);
  void EraseRange(Time_Typed iStart, Time_Typed iEnd);
  void Clear();
  bool IsEmpty() const;
  void OffsetTimes(Time_TypedLength iLength);
  void ReplaceData(Vrad_ContinuousDataStream const * iSourceP);
  bool GetLastValueChangeBeforeTime(Time_Typed * oTimeP, int * oValueP, Time_Typed iTime) const;

  /// Writes the stream's record. Fails: as writing its sub-stream and `Vrad_ContinuousData` do.
  void StreamOut(Sys_TypedOutStream & ioStream) const;

  /// Adds the event's value at its time.
  /// Fails: an event of another kind is reported and read all the same.
  void AddEvent(Vrae_TimedEvent const & iEvent);

  /// Erases what stands at the event's time, whatever its value.
  void EraseEvent(Vrae_TimedEvent const & iEvent);

  /// Whether a segment lies in [iStart, iEnd).
  bool IsEventInRange(Time_Typed iStart, Time_Typed iEnd) const;

  Vrae_SubStream GetSubStream() const { return mSubStream; }

  /// The undo identifier of the data, -1 if it has none.
  long long GetDataID() const { return mDataP.mCachedID; }

  // As in Vrad_ContinuousData, for the accumulation below.
  void FetchTop() const { GetData().FetchTop(); }
  void FetchBefore(Time_Typed iTime) const { GetData().FetchBefore(iTime); }

  /// Feeds the last value at or before `iTime` to the tracker, unless it is older than `iLimit` or
  /// the tracker has a later one. `iOffset` is added to the time that the tracker is told.
  void AccumulateChaseStateAtTime(Vrae_ChaseTracker * iTrackerP, Time_Typed iTime,
                                  Time_Typed iLimit, Time_TypedLength iOffset) const;

  /// For playback: the events in [iStart, iEnd), after the properties, that lie in the window
  /// [iWindowStart, iWindowEnd). A first event that repeats at `iStart` the value which the tracker
  /// holds is left out. Tracker and properties may be null; neither is changed, nor is the map
  /// used.
  void GetMidiEventsInRange(Vrad_EventListWrapper * iListP, Time_Typed iStart, Time_Typed iEnd,
                            Time_Typed iWindowStart, Time_Typed iWindowEnd,
                            Vrae_ChaseTracker * iTrackerP, Vrae_ChaseTrackerMap const * iMapP,
                            Vrad_IRTProperties const * iPropertiesP, bool iExtendedFlag,
                            int iExtendedIndex) const;

  /// The same with times shifted: `iOffset` is taken off, what comes before `iMinTime` moves up to
  /// it, and after the window the time becomes one of `iTimeType`. Into a display list it becomes
  /// one of the offset's type instead.
  void GetMidiEventsInRange(Vrad_EventListWrapper * iListP, Time_Typed iStart, Time_Typed iEnd,
                            Time_Typed iWindowStart, Time_Typed iWindowEnd,
                            Vrae_ChaseTracker * iTrackerP, Vrae_ChaseTrackerMap const * iMapP,
                            Time_TypedLength iOffset, Time_Typed iMinTime, Time_EType iTimeType,
                            Vrad_IRTProperties const * iPropertiesP, bool iExtendedFlag,
                            int iExtendedIndex) const;

  /// For display: shifted and clamped in the same way, converted before properties and window.
  void GetMidiEventsInRange(Vrad_DisplayItemList * iListP, Time_Typed iStart, Time_Typed iEnd,
                            Time_Typed iWindowStart, Time_Typed iWindowEnd,
                            Time_TypedLength iOffset, Time_Typed iMinTime, Time_EType iTimeType,
                            Vrad_IRTProperties const * iPropertiesP, bool iExtendedFlag,
                            int iExtendedIndex) const;

  /// A heading and a line for each segment, for reading only. O(r).
  std::string PrintContents() const;

  /// Fails: throws for a stream that is not undoable, whose data has no identifier.
  Ndo_State * NdoGetState() override;

  /// Finds the data by its identifier; the data held before is not touched.
  /// Fails: throws on a state of another class and leaves the stream unchanged.
  void NdoRestoreState(Ndo_State * iStateP) override;

private:
  friend class Vrad_Chunk;
  friend class Vrad_ContinuousDataStream_NdoState;
  friend class Vrad_ContinuousDataStreamTimedEventsInRangeIter;
  friend class Vrad_ContinuousDataStreamExtendedEventsInRangeIter;

  struct ReCreate {};
  explicit Vrad_ContinuousDataStream(ReCreate);

  Vrad_ContinuousData const & GetData() const;
  Time_Typed SkipChased(Time_Typed iStart, Vrae_ChaseTracker const * iTrackerP) const;

  template <class TIter, class... TRange>
  static std::unique_ptr<TIter> MakeIter(Vrad_ContinuousDataStream * iStreamP, TRange... iRange);

  Vrae_SubStream mSubStream;
  Ndo_Ptr<Vrad_ContinuousData> mDataP;  // null only in a restored stream whose data is gone: empty
};

/// The events of a stream in a range, as stored. Must not outlive the stream. Copies go on
/// independently.
class VRAD_EXPORT Vrad_ContinuousDataStreamTimedEventsInRangeIter : public Vrae_TimedEventIterator {
public:
  /// Nothing to walk.
  Vrad_ContinuousDataStreamTimedEventsInRangeIter();
  explicit Vrad_ContinuousDataStreamTimedEventsInRangeIter(Vrad_ContinuousDataStream * iStreamP);
  Vrad_ContinuousDataStreamTimedEventsInRangeIter(Vrad_ContinuousDataStream * iStreamP,
                                                  Time_Typed iStart, Time_Typed iEnd);
  Vrad_ContinuousDataStreamTimedEventsInRangeIter(
      Vrad_ContinuousDataStreamTimedEventsInRangeIter const & iOther);
  Vrad_ContinuousDataStreamTimedEventsInRangeIter &
  operator=(Vrad_ContinuousDataStreamTimedEventsInRangeIter const & iOther);
  ~Vrad_ContinuousDataStreamTimedEventsInRangeIter() override;

  bool IsMore() const override;
  void operator++() override;
  Vrae_TimedEvent operator*() const override;

private:
  std::unique_ptr<Vrad_ContinuousDataTimedEventsInRangeIter> mIterP;  // null: nothing to walk
};

/// The same as extended events.
class VRAD_EXPORT Vrad_ContinuousDataStreamExtendedEventsInRangeIter
    : public Vrad_ExtendedEventIterator {
public:
  /// Nothing to walk.
  Vrad_ContinuousDataStreamExtendedEventsInRangeIter();
  explicit Vrad_ContinuousDataStreamExtendedEventsInRangeIter(Vrad_ContinuousDataStream * iStreamP);
  Vrad_ContinuousDataStreamExtendedEventsInRangeIter(Vrad_ContinuousDataStream * iStreamP,
                                                     Time_Typed iStart, Time_Typed iEnd);
  Vrad_ContinuousDataStreamExtendedEventsInRangeIter(
      Vrad_ContinuousDataStreamExtendedEventsInRangeIter const & iOther);
  Vrad_ContinuousDataStreamExtendedEventsInRangeIter &
  operator=(Vrad_ContinuousDataStreamExtendedEventsInRangeIter const & iOther);
  ~Vrad_ContinuousDataStreamExtendedEventsInRangeIter() override;

  bool IsMore() const override;
  void operator++() override;
  Vrad_ExtendedEvent operator*() const override;

private:
  std::unique_ptr<Vrad_ContinuousDataExtendedEventsInRangeIter> mIterP;
};
