// Which notes of a clip sound at a position.
#pragma once

#include <vector>

#include "foundation/time_typed.h"
#include "host/host_playposition.h"
#include "vrad/vrad_notelist.h"

/// A note list looks back by a threshold of one unit, and farther only for the copies that it keeps
/// of long notes. Some edits leave these behind, and a clip may hold times in both units: then long
/// notes are kept here, as they are, and the list is looked through as far back as either unit asks
/// for.
/// Thread: one at a time. `Build` takes memory, nothing else does.
class Host_SoundingNotes {
public:
  /// To be called after each edit of the list, which may be null. `iHasSamples`: the clip holds
  /// times in samples. O(notes). Fails: std::bad_alloc; the former contents stay.
  void Build(Vrad_NoteListBase * iListP, bool iHasSamples);

  /// Whether the list alone may be asked: its copies of long notes are true.
  bool AsksTheList() const { return !mLooksItself; }
  /// Whether the copies that begin in a range are true. O(notes in it).
  static bool AreCopiesTrue(Vrad_NoteListBase * iListP, Host_TimeRange const & iRange);

  /// Calls `iFound` for each note that is not muted, begins before the time and ends after it, in
  /// order of their beginning. O(log n) for each note found; O(long notes and those of a
  /// threshold's length) where the list could miss some. Needs: the list as it was built from.
  template <class TFound>
  void ForEachAt(Vrad_NoteListBase * iListP, Time_Typed iTime, TFound iFound) const {
    if (!iListP) return;
    if (!mLooksItself) {
      for (Vrad_NoteListBase::FullSustainingNoteIter iter(iListP, iTime); iter.IsMore(); ++iter)
        if (!(*iter).mMuted) iFound(*iter);
      return;
    }
    Time_Typed const split = GetSplit(*iListP, iTime);
    for (Vrad_NoteListBase_Note const & note : mLongNotes) {
      if (!(note.mTime < split)) break;
      if (SoundsAt(note, iTime)) iFound(note);
    }
    for (Vrad_NoteListBase::FullNotesInRangeIter iter(iListP, split, iTime); iter.IsMore(); ++iter)
      if (SoundsAt(*iter, iTime)) iFound(*iter);
  }

private:
  static bool SoundsAt(Vrad_NoteListBase_Note const & iNote, Time_Typed iTime) {
    return !iNote.mMuted && iTime < iNote.mTime + iNote.mEvent.GetDuration();
  }
  static Time_Typed GetSplit(Vrad_NoteListBase const & iList, Time_Typed iTime);

  bool mLooksItself = false;                       // instead of asking the list
  std::vector<Vrad_NoteListBase_Note> mLongNotes;  // if it does; in the list's order
};
