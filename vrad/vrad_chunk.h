// The chunk: everything that one clip holds, routed to its stores, and given out in time ranges.
#pragma once

#include <list>
#include <memory>
#include <set>
#include <string>

#include "cmn/cmn_polyvector.h"
#include "cmn/cmn_xmlnode.h"
#include "foundation/sys_umid.h"
#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"
#include "ndo/ndo_object.h"
#include "ndo/ndo_ptr.h"
#include "ndo/ndo_stateref.h"
#include "vrad/vrad_continuousdatastream.h"
#include "vrad/vrad_eventstream.h"
#include "vrad/vrad_extendedevent.h"
#include "vrad/vrad_extendedeventlist.h"
#include "vrad/vrad_notelist.h"
#include "vrad/vrae_filter.h"
#include "vrad/vrae_substream.h"
#include "vrad/vrae_timedevent.h"

class Sys_StdStreamHeaderReader;
class Sys_TypedInStream;
class Sys_TypedOutStream;
class Vrad_Chunk;
class Vrae_ChaseTracker;
class Vrae_ChaseTrackerMap;
class Vrae_TrackState;

/// Whether a retrieval adds a marker of kind 0 at a release of the notes in range. Every value
/// beyond 1 asks for the last one.
enum ENoteOffInclusion : int {
  kNoteOffInclusion_None = 0,
  kNoteOffInclusion_Earliest = 1,
  kNoteOffInclusion_Last = 2
};

/// What the offset of a bulk edit changes in notes.
enum EMidiNudgeMode : int {
  kNudgeTimes = 0,
  kNudgeStarts = 1,
  kNudgeDurations = 2,
  kNudgePitches = 3
};

/// A snapshot of a chunk: the identifiers of its stores, which have states of their own, and what
/// the chunk holds beside them. Comes from `Vrad_Chunk::NdoGetState` alone.
class VRAD_EXPORT Vrad_Chunk_NdoState : public Ndo_State {
public:
  Vrad_Chunk_NdoState(Vrad_Chunk_NdoState const &) = delete;
  Vrad_Chunk_NdoState & operator=(Vrad_Chunk_NdoState const &) = delete;
  ~Vrad_Chunk_NdoState() override;

  /// A chunk without stores that does not quantize.
  Ndo_Object * NdoReCreate() override;

private:
  friend class Vrad_Chunk;

  Vrad_Chunk_NdoState();

  Ndo_StateRef<Vrad_NoteListBase> mNoteListRef;
  Ndo_StateRef<Vrad_EventStream> mMiscEventsRef;
  Cmn_PolyVector<Ndo_StateRef<Vrad_ContinuousDataStream>, 0> mContinuousRefs;
  Sys_Umid mUID;
  bool mIsLocal;
};

/// The MIDI material of one clip: a note list, one continuous stream for each sub-stream in use and
/// a stream of sysex. It owns them; they leave it by `NdoDelete`. Times are the stores' own: a
/// chunk does not know where it lies on a timeline.
///
/// Edits of the composition are announced to undo here, edits of contents by the stores. Every
/// change of contents through the chunk drops the cached sorted list.
/// Thread: the owner's, one at a time, edits and reads alike. Retrieval allocates nothing but what
/// the target list needs to grow.
class VRAD_EXPORT Vrad_Chunk : public Ndo_Object {
public:
  /// Empty, with an identity of its own, local. The caller owns it. `iQuantizeContents`: while tick
  /// times matter, what is added in ticks goes to the coarse tick grid.
  static Vrad_Chunk * New(Ndo_Object::EUndoFlag iUndoFlag, bool iQuantizeContents);

  /// A chunk read from its record. The caller owns it. A record of before chunks had identities
  /// gives `Sys_Umid::NoID()`. Damage inside the record is reported in the throwing form, which is
  /// caught here: "Vrad_Chunk::StreamIn exception: " and what is wrong. The chunk then holds what
  /// was read up to there, and the stream stands behind the record all the same.
  /// Fails: `Sys_StreamException` where no chunk's record begins, or not of this version.
  static Vrad_Chunk * StreamIn(Sys_TypedInStream & ioStream, Ndo_Object::EUndoFlag iUndoFlag,
                               bool iQuantizeContents);

  /// Writes the chunk's record. Whether it quantizes, its clip boundaries and the cached list are
  /// not saved. Fails: throws without a note list, with nothing written; as its stores do.
  void StreamOut(Sys_TypedOutStream & ioStream) const;

  ~Vrad_Chunk() override;
  Vrad_Chunk(Vrad_Chunk const &) = delete;
  Vrad_Chunk & operator=(Vrad_Chunk const &) = delete;

  /// Stores the event: a note in the note list, a continuous value in the stream of its sub-stream,
  /// which is created at need, a sysex in the event stream.
  /// Fails: a note without its extras and any other kind are reported; nothing is stored.
  void AddEvent(Vrad_ExtendedEvent const & iEvent);

  /// Removes an equal event, and with a continuous stream's last one the stream. A note found in
  /// audio (kind 22) is not looked for in the note list, on purpose.
  void EraseEvent(Vrae_TimedEvent const & iEvent);

  /// Empties all stores. Identity, flags and clip boundaries stay.
  void Clear();

  /// Takes over the contents of another chunk, not its identity.
  /// Fails: a store that is missing on either side is reported and passed over.
  void ReplaceData(Vrad_Chunk const * iSrcP);

  /// Whether an equal event is stored within a unit of its time. Asking for a continuous value
  /// whose stream is missing leaves a new, empty stream.
  bool IsEventInChunk(Vrae_TimedEvent const & iEvent);

  /// Exchanges the note list; the former one gets `NdoDelete`.
  /// Fails: throws for a list that is undoable while the chunk is not, or the reverse; the chunk is
  /// unchanged and the list gets `NdoDelete`.
  void SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase> iNoteListP);

  // Edits of many events. Each goes store by store and drops the cached list. A chunk given to
  // itself acts as if it had been copied first. Fails: `std::bad_alloc`; what the edit has done so
  // far stands, and aborting the transaction takes it back.

  /// Merges in the source's events of [iStart, iEnd), moved by the offset. The mode says what the
  /// offset moves in notes; with any mode but times the other events come at their own times. While
  /// tick times matter and the range is in ticks, an offset of 0 is applied to notes too and brings
  /// them onto the grid.
  /// Fails: an unknown mode acts as times; where the notes are moved it is reported.
  void AddEventsFromChunk(Vrad_Chunk const * iSrc, Time_Typed iStart, Time_Typed iEnd,
                          Time_TypedLength iOffset, EMidiNudgeMode iMode);

  /// Removes, for each of the source's events of [iStart, iEnd), moved by the offset, one that is
  /// equal. A stream left empty goes. Notes come onto the grid where moving brings them there, the
  /// other events do not.
  void EraseEventsFromChunk(Vrad_Chunk const * iSrc, Time_Typed iStart, Time_Typed iEnd,
                            Time_TypedLength iOffset);

  /// Removes what starts in [iStart, iEnd), and sysex at `iEnd`, too. Empty streams go.
  void EraseRange(Time_Typed iStart, Time_Typed iEnd);

  /// Removes [iStart, iEnd) from the stream of the sub-stream, on purpose from the next one above
  /// it if there is none. A stream left empty goes. Fails: a null sub-stream throws.
  void EraseSubStream(Vrae_SubStream const & iSubStream, Time_Typed iStart, Time_Typed iEnd);

  /// Remembers where a clip begins or ends, a raw count, for the two operations below. Not undone,
  /// not saved.
  void AddClipBoundary(long long iBoundary);

  /// Moves all notes before their time by the length and down to the coarse tick grid, so that a
  /// note near a clip boundary stays on its side of it; none comes before tick -1. Times are in
  /// ticks afterwards. O(n log b) for b boundaries.
  void MoveNotesForLegacyPlayback(Time_TypedLength iLength);

  /// The one-time shift for playback in tick time: the first call moves all events by the length,
  /// the notes as `MoveNotesForLegacyPlayback` if there are clip boundaries; all others do nothing.
  /// Of this, undo restores the notes alone.
  void QuantizeEventsForTTM(Time_TypedLength iLength);

  /// Sets the places of the controllers that have a stream. Needs: 128 places, which are not
  /// cleared first.
  void FindMIDIControllersInUse(bool * ioUsed) const;

  Vrad_NoteListBase * GetNoteList() { return mNoteListP.Get(); }
  Vrad_NoteListBase const * GetNoteList() const { return mNoteListP.Get(); }
  Vrad_EventStream * GetEventStream() { return mMiscEventsP.Get(); }
  Vrad_EventStream const * GetEventStream() const { return mMiscEventsP.Get(); }

  /// Ascending by `Vrae_SubStream::GetIndex`, no two alike.
  Cmn_PolyVector<Ndo_Ptr<Vrad_ContinuousDataStream>, 0> & GetContinuousList() {
    return mContinuousList;
  }
  Cmn_PolyVector<Ndo_Ptr<Vrad_ContinuousDataStream>, 0> const & GetContinuousList() const {
    return mContinuousList;
  }

  /// The host's cached list of all events, null if there is none. The chunk's, and gone after the
  /// next change of contents.
  Vrad_DisplayItemList * GetSortedEventList() const { return mSortedEventListP; }

  /// Takes ownership. A list that is stored already is left to the host. Announces nothing.
  void StoreSortedEventList(Vrad_DisplayItemList * iListP);

  Sys_Umid const & GetUID() const { return mUID; }
  void SetUID(Sys_Umid const & iUID);
  bool IsLocal() const { return mIsLocal; }
  void SetIsLocal(bool iIsLocal);
  bool QuantizeContents() const { return mQuantizeContents; }

  /// Appends the events stored in [iStart, iEnd) to the list, then sorts what was appended into
  /// playback order. `iOffset` is taken off stored times; the result, after the properties, must
  /// lie in [iClipStart, iClipEnd). `iRangeFlag` goes to the conversion of tick ranges alone.
  /// The streams leave out what the tracker holds already; map and properties may be null, the
  /// tracker too. With `iSkipMuted` muted notes are left out, else display items say that they are
  /// muted. `iItemTag` goes into every display item. The note-off marker is neither filtered nor
  /// clipped.
  /// Cost: O(log n + k log k) for k events found; a stream without any, a comparison.
  void GetMidiEventsInRange(Vrad_EventListWrapper * iList, Time_TypedLength iOffset,
                            Time_Typed iStart, Time_Typed iEnd, Time_Typed iClipStart,
                            Time_Typed iClipEnd, bool iRangeFlag, Vrae_ChaseTracker * iChaseTracker,
                            Vrae_ChaseTrackerMap const * iChaseTrackerMap,
                            Vrae_Filter const & iFilter, Vrad_IRTProperties const * iProperties,
                            bool iSkipMuted, int iItemTag,
                            ENoteOffInclusion iNoteOffInclusion) const;

  /// Everything in the range: no clip range, no filter, no properties, muted notes too.
  void GetMidiEventsInRange(Vrad_EventListWrapper * iList, Time_TypedLength iOffset,
                            Time_Typed iStart, Time_Typed iEnd, bool iRangeFlag,
                            Vrae_ChaseTracker * iChaseTracker,
                            Vrae_ChaseTrackerMap const * iChaseTrackerMap,
                            ENoteOffInclusion iNoteOffInclusion) const;

  // What a receiver would be left with had it played the chunk from its beginning. Nothing here
  // takes from the heap.

  /// Feeds the tracker, for each stream, the last value at or before `iFirst`, unless it is older
  /// than `iSecond` or the tracker holds a later one. Times are told to it as stored.
  /// O(s log r) for s streams of r values.
  void AddChaseStateAtTime(Vrae_ChaseTracker * ioTracker, Time_Typed iFirst,
                           Time_Typed iSecond) const;

  /// The same, in a tracker that is cleared first.
  void GetChaseStateAtTime(Vrae_ChaseTracker * ioTracker, Time_Typed iFirst,
                           Time_Typed iSecond) const;

  /// Hands the track state the notes that sound at `iSustainStart`, started strictly before it and
  /// ending strictly after it, as far as they start in [iRangeStart, iRangeEnd). These are stored
  /// times; `iOffset` is added to what is handed on. With `iClipDuration` a note that would end
  /// after `iRangeEnd` ends there. Muted notes are handed on, too.
  /// Fails: a record that is no note is reported when its length is clipped.
  /// O(log n + f C) for f notes found in a list whose chunks hold C.
  void AddNoteStateAtTime(Vrae_TrackState * ioTrackState, Time_Typed iSustainStart,
                          Time_Typed iRangeStart, Time_Typed iRangeEnd, Time_TypedLength iOffset,
                          bool iClipDuration) const;

  /// The node "MIDI_Chunk": the note list's node, the number of continuous streams, the identity.
  /// A snapshot, for inspection; never read back. O(n).
  Cmn_XMLNodePtr GetAsXML() const;

  /// The notes, the continuous values and the size of the cached list as text, for reading only.
  /// O(n + r).
  std::string PrintContents() const;

  /// Fails: throws on a chunk that is not undoable, whose stores have no identifiers.
  Ndo_State * NdoGetState() override;

  /// Finds the stores by their identifiers, leaving out a stream that is gone; those held before
  /// are not touched, nor is the cached list. Fails: throws on a state of another class and leaves
  /// the chunk unchanged.
  void NdoRestoreState(Ndo_State * iStateP) override;

private:
  friend class Vrad_Chunk_NdoState;

  typedef Cmn_PolyVector<Ndo_Ptr<Vrad_ContinuousDataStream>, 0> ContinuousList;
  struct RangeRequest;

  struct ReCreate {};
  explicit Vrad_Chunk(ReCreate);
  Vrad_Chunk(Ndo_Object::EUndoFlag iUndoFlag, bool iQuantizeContents);

  Ndo_Object::EUndoFlag UndoFlag() const;
  size_t FindPlace(int iIndex) const;
  bool IsStreamAt(size_t iPlace, int iIndex) const;
  Vrad_ContinuousDataStream * FindContinuousStream(Vrae_SubStream const & iSubStream) const;
  Vrad_ContinuousDataStream * FindOrCreateContinuousStream(Vrae_SubStream const & iSubStream);
  Vrad_ContinuousDataStream * InsertStream(size_t iPlace,
                                           Ndo_AutoPtr<Vrad_ContinuousDataStream> iStreamP);
  void RemoveStreamIfEmpty(size_t iPlace);
  void EraseStreamRange(size_t iPlace, Time_Typed iStart, Time_Typed iEnd);
  void ReplaceStreams(Vrad_Chunk const & iSrc);
  void DropSortedEventList();

  void ReadContents(Sys_TypedInStream & ioStream, Sys_StdStreamHeaderReader & ioHeader);
  void ReadStreams(Sys_TypedInStream & ioStream);

  void StoreEvent(Vrad_ExtendedEvent const & iEvent);

  void AppendNotes(RangeRequest const & iRequest) const;
  void AppendNoteOffMarker(RangeRequest const & iRequest) const;
  void AppendStreams(RangeRequest const & iRequest) const;

  Ndo_Ptr<Vrad_NoteListBase> mNoteListP;     // owned; null only in a shell, or if the host set none
  ContinuousList mContinuousList;            // owned; ascending by index, no two alike
  Ndo_Ptr<Vrad_EventStream> mMiscEventsP;    // owned; null only in a shell
  Vrad_DisplayItemList * mSortedEventListP;  // owned; null: no cache
  Sys_Umid mUID;
  bool mIsLocal;
  bool mQuantizeContents;
  bool mIsMovedForTickTime;  // set for good by the shift for tick-time playback; not saved
  std::set<long long> mClipBoundaries;
};

/// Equal notes, equal sysex, and the very same continuous streams: they are compared by where they
/// are kept, so two chunks that have streams are never equal.
VRAD_EXPORT bool operator==(Vrad_Chunk const & iA, Vrad_Chunk const & iB);

/// The events of a chunk in a range, one by one, merged into playback order without a list. Times
/// are the stored ones. Of equal events the note comes first, then streams in order, then sysex.
/// Must not outlive the chunk, which must not change meanwhile. A step costs a walk over the stores
/// that have something left. Copies go on independently.
class VRAD_EXPORT Vrad_ChunkExtendedEventsInRangeIter : public Vrad_ExtendedEventIterator {
public:
  /// Nothing to walk.
  Vrad_ChunkExtendedEventsInRangeIter();

  /// `iOffset` shapes the conversion of a tick range alone. Without a chunk there is nothing to
  /// walk.
  Vrad_ChunkExtendedEventsInRangeIter(Vrad_Chunk * iChunkP, Time_Typed iStart, Time_Typed iEnd,
                                      Time_TypedLength iOffset, bool iRangeFlag,
                                      Vrae_Filter const & iFilter);
  Vrad_ChunkExtendedEventsInRangeIter(Vrad_ChunkExtendedEventsInRangeIter const & iOther);
  Vrad_ChunkExtendedEventsInRangeIter &
  operator=(Vrad_ChunkExtendedEventsInRangeIter const & iOther);
  ~Vrad_ChunkExtendedEventsInRangeIter() override;

  bool IsMore() const override;
  /// Fails: past the end is reported; the position stays.
  void operator++() override;
  /// Fails: past the end is reported; a default event.
  Vrad_ExtendedEvent operator*() const override;

private:
  typedef std::list<std::unique_ptr<Vrad_ExtendedEventIterator>> Iterators;

  void AddIfMore(std::unique_ptr<Vrad_ExtendedEventIterator> iIterP);
  void InsertSorted(Iterators & ioSource);

  Vrad_Chunk * mChunkP;
  Time_Typed mStart;
  Time_Typed mEnd;
  Iterators mIterators;  // none at its end; in playback order of their current events
};
