// The notes of a clip: a store sorted by start time, its companion of long notes, and the iterators
// through which all reading goes.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cmn/cmn_chunkyvector.h"
#include "cmn/cmn_xmlnode.h"
#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"
#include "ndo/ndo_object.h"
#include "ndo/ndo_ptr.h"
#include "ndo/ndo_stateref.h"
#include "vrad/vrad_extendedevent.h"
#include "vrad/vrae_event.h"
#include "vrad/vrae_timedevent.h"

class Sys_TypedInStream;
class Sys_TypedOutStream;

/// Whether merging treats overlapping notes of one pitch instead of keeping all. False at start.
extern VRAD_EXPORT bool gAvoidOverlapsAndDuplicates;

/// Notes sorted by start time and by nothing else; those of equal time stand in order of arrival.
/// Identical and overlapping notes are allowed. A list may have a long note list: a smaller list of
/// copies of the notes that last at least a threshold, one threshold for each unit of duration,
/// with which sounding notes are found. Copies of a list share its long note list, which goes with
/// its last owner.
///
/// n notes, C of them in a chunk of the store. Searches cost O(log n) while all times are of one
/// unit; with mixed units, each comparison goes through the time converter.
/// Fails: arguments at fault are reported and the call goes on; `std::bad_alloc`.
/// Thread: one at a time. Snapshots and copies share their notes and may live on other threads.
class VRAD_EXPORT Vrad_NoteListBase : public Ndo_Object {
public:
  class FullNotesInRangeIter;
  class NotesExtendedEventInRangeIter;
  class FullSustainingNoteIter;
  class SustainingNoteIter;

  /// Empty, without a long note list. `iQuantizeContents`: while tick times matter, moving notes
  /// keeps tick times on the coarse grid.
  Vrad_NoteListBase(Ndo_Object::EUndoFlag iFlag, bool iQuantizeContents);
  /// The long note list is shared, not copied. O(1).
  Vrad_NoteListBase(Vrad_NoteListBase const & iOther);
  /// Announces to undo. Lets go of this list's long note list and shares the other's. O(1).
  Vrad_NoteListBase & operator=(Vrad_NoteListBase const & iOther);
  ~Vrad_NoteListBase() override;

  /// Adds behind the notes of equal time; a long note goes to the long note list too. Announces.
  /// Amortised O(1) at the end, else O(log n + C).
  void AddNote(Vrad_NoteListBase_Note const & iNote);
  /// Fails: an event that is no note with duration is reported and stored as it lies.
  void AddNote(Vrad_NoteWithDurationExtendedEvent const & iNote);
  /// Erases the first note of that time, pitch and on velocity, whatever its duration. Announces
  /// only if there is one. O(log n + C).
  void EraseNote(Vrae_TimedEvent const & iNote);
  /// Replaces the event of the note that `EraseNote` would find; its time and all else stay.
  /// Announces. Fails: no such note is reported; nothing is changed.
  void ChangeNote(Time_Typed iTime, Vrae_NoteWithDurationEvent const & iOld,
                  Vrae_NoteWithDurationEvent const & iNew);
  /// Whether `EraseNote` would find one. Only for plain notes: a note with a fractional pitch is
  /// never in the list.
  bool IsNoteInList(Vrae_TimedEvent const & iNote) const;
  /// Empties this list and its long note list, which stays attached. Announces, on each.
  void Clear();
  /// Takes the notes of another list. The long note list takes those of the other's if both
  /// thresholds agree, and is made anew otherwise. Announces. O(1) when the thresholds agree.
  void ReplaceData(Vrad_NoteListBase const * iOther);

  /// Writes the list's record. The long note list, thresholds and quantizing are not saved, nor is
  /// a fractional pitch.
  void StreamOut(Sys_TypedOutStream & ioStream) const;
  /// Clears the list, then reads a record of any version into it, in the record's order. A duration
  /// of 0 is reported and repaired: 1000 ticks or 1 sample.
  /// Fails: throws string 100 for a negative count and for pitch, velocities or duration out of
  /// range, an on velocity of 0 after `Vrad_N10n_MIDIZeroOnVelocitiesFound` was sent;
  /// `Sys_StreamException`. The notes read so far stay.
  void StreamIn(Sys_TypedInStream & ioStream);

  unsigned long long Size() const;
  /// Tick 0 if the list is empty.
  Time_Typed TimeOfFirstNote() const;
  Time_Typed TimeOfLastNote() const;
  /// Needs: a note in the list.
  Vrad_NoteWithDurationExtendedEvent Last() const;
  /// The earliest start, whatever was passed in; an empty list leaves the argument as it is.
  void EarliestTime(Time_Typed & ioTime) const;
  /// Notes alike in every field, the long note lists apart.
  bool operator==(Vrad_NoteListBase const & iOther) const;
  void AssertInvariant() const;

  // Edits of many notes at once. A list passed to itself counts as a copy of it. The long note list
  // goes along with every edit. Fails: `std::bad_alloc`; what the edit has done so far may stand,
  // sorted as it was, and aborting the transaction takes it back.

  /// Adds the notes of another list; nothing for an empty one. Announces.
  /// Plain form: behind this list's notes of equal time, m of them at O(min(m log n, stretch + m)).
  /// While `gAvoidOverlapsAndDuplicates`: of two notes of one pitch that overlap the one that is
  /// added wins, and the other gives way or is cut; the other list's notes may come out shortened.
  /// O((n + m) log (n + m)) typically.
  void Merge(Vrad_NoteListBase * iOther);
  /// Removes, for each note of another list, the first of equal time and equal event. Nothing for
  /// an empty one. Announces.
  void Erase(Vrad_NoteListBase * iOther);
  /// Removes the notes that start in [iStart, iEnd). Announces only if there are any.
  /// O(log n + C).
  void EraseTimeRange(Time_Typed iStart, Time_Typed iEnd);
  /// Replaces the target's notes by those that start in [iStart, iEnd). Announces on the target.
  /// O(log n + C) and a walk for the target's long notes.
  void CopyTimeRange(Vrad_NoteListBase * iTarget, Time_Typed iStart, Time_Typed iEnd) const;

  // The next four touch each note once. They do not sort again, nor review who is long.

  /// Moves all notes. While tick times matter, ticks of a list that quantizes go to the coarse
  /// grid. Announces.
  void OffsetTimes(Time_TypedLength iLength);
  /// Moves all starts and keeps the ends, on the grid likewise. Announces.
  /// Fails: if any note would get shorter than 2, nothing is changed.
  void OffsetStarts(Time_TypedLength iLength);
  /// Lengthens or shortens all notes but those that would get shorter than 1. Announces.
  void OffsetDurations(Time_TypedLength iLength);
  /// One semitone down for a length of 1 or more, else one up. Announces.
  /// Fails: if a note stands at that edge of the pitches, nothing is changed.
  void OffsetPitches(Time_TypedLength iLength);

  /// Writes start and pitch of each note to the standard output, for debugging.
  void PrintList() const;

  /// The node "NoteList": "nNumNotes", then a "Note" for each note in order, muted ones too, which
  /// nothing marks. O(n).
  Cmn_XMLNodePtr GetAsXML() const;

  // A note's end is its start plus its duration.

  /// The earliest end strictly between the two times, of notes that start before `iEnd`; else
  /// `iEnd`. O(log n + C) typically.
  Time_Typed GetEarliestReleaseTimeForNotesInRange(Time_Typed iStart, Time_Typed iEnd) const;
  /// The latest end strictly between the two times, of notes that start before `iEnd`; else
  /// `iStart`.
  Time_Typed GetLastReleaseTimeForNotesInRange(Time_Typed iStart, Time_Typed iEnd) const;
  /// The latest end after `iStart`, beyond `iEnd` too, of notes that start in the range; else
  /// `iStart`. Of notes that start earlier than a threshold before `iEnd` only long ones count.
  Time_Typed GetLatestReleaseTimeForNotesInRange(Time_Typed iStart, Time_Typed iEnd) const;

  /// Changes the threshold of its unit. The long note list keeps what it has.
  void SetLongNoteDuration(Time_TypedLength iDuration);
  Time_TypedLength GetLongNoteDuration(Time_EType iType) const;
  /// Null and -1 without one. Owned by the lists that share it.
  Vrad_NoteListBase * GetLongNoteList() const;
  long long GetLongNoteListID() const;

  /// O(1): shares the notes.
  Ndo_State * NdoGetState() override;
  /// Fails: a state of another class throws "p"; nothing is restored.
  void NdoRestoreState(Ndo_State * iStateP) override;

protected:
  /// Lets go of the present long note list, attaches another as it stands, or none, and sets both
  /// thresholds. Fails: a list that differs in being undoable is reported and attached.
  void SetLongNoteList(Ndo_AutoPtr<Vrad_NoteListBase> iLongNoteListP, Time_TickLength iTicks,
                       Time_SampleLength iSamples);

private:
  friend class Vrad_Chunk;
  friend class Vrad_NoteListBase_NdoState;

  typedef Cmn_ChunkyPODVector<Vrad_NoteListBase_Note> Notes;
  typedef Cmn_ChunkyVectorConstIterator<Vrad_NoteListBase_Note> iterator;

  void ChangeNote(iterator iIter, Vrae_NoteWithDurationEvent const & iNew);
  std::pair<bool, iterator> FindNote(Time_Typed iTime,
                                     Vrae_NoteWithDurationEvent const & iEvent) const;
  std::vector<int> ReadNotes(Sys_TypedInStream & ioStream, int iNum, int iVersion);
  void ReadOriginals(Sys_TypedInStream & ioStream, int iNum);
  void ReadMuteFlags(Sys_TypedInStream & ioStream, int iNum);
  void RegenerateLongNoteList();
  void MergeSorted(Notes const & iAdded);
  void EraseEqual(Notes const & iGone);
  bool Snaps() const;
  bool IsLong(Vrae_NoteWithDurationEvent const & iEvent) const;
  bool HasThresholdsOf(Vrad_NoteListBase const & iOther) const;
  bool KnowsEndsIn(Time_EType iType) const;
  void ShareLongNoteList(Ndo_Ptr<Vrad_NoteListBase> const & iListP);
  Time_Typed SplitTime(Time_Typed iTime) const;
  static Vrad_NoteWithDurationExtendedEvent ToExtendedEvent(Vrad_NoteListBase_Note const & iNote);
  std::string PrintNotes() const;

  template <class TNoteFound>
  void WalkEndsBefore(Time_Typed iEnd, int iFirst, TNoteFound iFound) const;

  bool mQuantizeContents;  // while tick times matter, moving notes keeps ticks on the grid
  Notes mNotes;
  Ndo_Ptr<Vrad_NoteListBase> mLongNoteListP;  // owned together with the copies of this list
  Time_TypedLength mLongNoteDuration[3];      // by unit; the third is not used
  int mNumOwners = 0;                         // of this list, while it is a long note list
};

/// Notes that start in a time range: from the start, included, to the end, excluded.
/// Thread: as its list, which it must not outlive and which must not change meanwhile, but through
/// the iterator itself.
class VRAD_EXPORT Vrad_NoteListBase::FullNotesInRangeIter {
public:
  /// Without a list.
  FullNotesInRangeIter();
  /// Every note.
  explicit FullNotesInRangeIter(Vrad_NoteListBase * iListP);
  FullNotesInRangeIter(Vrad_NoteListBase * iListP, Time_Typed iStart, Time_Typed iEnd);

  /// Starts anew with another range of the same list. O(log n).
  void SetRange(Time_Typed iStart, Time_Typed iEnd);
  /// Fails: no list is reported; false.
  bool IsMore() const { return IsInRun() || FindRun(); }
  /// Lives: until the list is written.
  /// Fails: no note left is reported; a blank note.
  Vrad_NoteListBase_Note const & operator*() const {
    return IsInRun() || FindRunOrReport() ? *mNoteP : BlankNote();
  }
  /// Fails: no note left is reported; the position stays.
  void operator++() {
    if (!IsInRun() && !FindRunOrReport()) return;
    ++mIndex;
    ++mNoteP;
    --mRunLeft;
  }
  /// Replaces the event of the current note, as `ChangeNote`. The walk goes on.
  /// Fails: no note left is reported; nothing is changed.
  void ChangeCurrentNote(Vrae_NoteWithDurationEvent const & iNew);

private:
  friend class FullSustainingNoteIter;

  bool IsInRun() const { return mRunLeft > 0 && mStamp == mListP->mNotes.GetImpl().GetStamp(); }
  /// Whether there is a note, and the run that begins with it.
  bool FindRun() const;
  bool FindRunOrReport() const;
  static Vrad_NoteListBase_Note const & BlankNote();
  /// Moves on to the first note that may end after the time, or past the range. Needs: the time is
  /// of the same unit as the range's end.
  void SkipToEndAfter(Time_Typed iTime);

  Vrad_NoteListBase * mListP;
  int mIndex = 0;
  mutable int mEnd = 0;  // of the list when the range was set, until the range's own is known
  Time_Typed mEndTime;
  // The notes from the current one on that are known to lie in the range, side by side, as long as
  // the stamp is that of the list's notes.
  mutable int mRunLeft = 0;
  mutable unsigned long long mStamp = 0;
  mutable Vrad_NoteListBase_Note const * mNoteP = nullptr;
};

/// The same walk for retrievals, note by note as extended events. With ticks, unless tick times
/// matter or the start is open, the range is first brought to sample-exact bounds.
class VRAD_EXPORT Vrad_NoteListBase::NotesExtendedEventInRangeIter
    : public Vrad_ExtendedEventIterator {
public:
  NotesExtendedEventInRangeIter();
  explicit NotesExtendedEventInRangeIter(Vrad_NoteListBase * iListP);
  /// `iOffset` is how far the range lies after the notes' own time; it and the flag serve the
  /// conversion alone.
  NotesExtendedEventInRangeIter(Vrad_NoteListBase * iListP, Time_TypedLength iOffset,
                                Time_Typed iStart, Time_Typed iEnd, bool iFlag);
  NotesExtendedEventInRangeIter(NotesExtendedEventInRangeIter const &);
  NotesExtendedEventInRangeIter & operator=(NotesExtendedEventInRangeIter const &);
  ~NotesExtendedEventInRangeIter() override;

  bool IsMore() const override;
  void operator++() override;
  Vrad_ExtendedEvent operator*() const override;
  void ChangeCurrentNote(Vrae_NoteWithDurationEvent const & iNew);

private:
  FullNotesInRangeIter mIter;
};

/// Notes that sound at an instant: they start before it and end after it. In order of start.
/// Only long notes are looked for earlier than a threshold before the instant.
/// O(log n + C) for each note found.
class VRAD_EXPORT Vrad_NoteListBase::FullSustainingNoteIter {
public:
  FullSustainingNoteIter(Vrad_NoteListBase * iListP, Time_Typed iTime);

  bool IsMore() const;
  /// Fails: no note left is reported; a blank note.
  Vrad_NoteListBase_Note const & operator*() const;
  /// Fails: no note left is reported; the position stays.
  void operator++();

private:
  void AdvanceToNext();
  bool CheckSustain() const;
  void FindSustaining();

  Vrad_NoteListBase * mListP;
  Time_Typed mTime;
  FullNotesInRangeIter mIter;  // over the long note list first, then over mListP
  bool mInLongNoteList;        // the first of the two walks is under way
};

/// The same, handing out extended events.
class VRAD_EXPORT Vrad_NoteListBase::SustainingNoteIter {
public:
  SustainingNoteIter(Vrad_NoteListBase * iListP, Time_Typed iTime);

  bool IsMore() const;
  void operator++();
  Vrad_NoteWithDurationExtendedEvent operator*() const;

private:
  FullSustainingNoteIter mIter;
};

/// A snapshot of a note list: its notes, shared, and the identifier of its long note list.
class VRAD_EXPORT Vrad_NoteListBase_NdoState : public Ndo_State {
public:
  ~Vrad_NoteListBase_NdoState() override;
  Ndo_Object * NdoReCreate() override;

private:
  friend class Vrad_NoteListBase;

  Vrad_NoteListBase_NdoState(Vrad_NoteListBase const & iList,
                             Ndo_StateRef<Vrad_NoteListBase> const & iLongNoteListRef);

  bool mQuantizeContents;
  Vrad_NoteListBase::Notes mNotes;
  Ndo_StateRef<Vrad_NoteListBase> mLongNoteListRef;
  Time_TypedLength mLongNoteSamples;
  Time_TypedLength mLongNoteTicks;
};

/// A note list with its long note list in place: 15360000 ticks, and one second of samples at the
/// rate in force when the list was built.
class VRAD_EXPORT Vrad_NoteList : public Vrad_NoteListBase {
public:
  Vrad_NoteList(Ndo_Object::EUndoFlag iFlag, bool iQuantizeContents);
  Vrad_NoteList(Vrad_NoteList const & iOther);
  Vrad_NoteList & operator=(Vrad_NoteList const & iOther);
  ~Vrad_NoteList() override;
};
