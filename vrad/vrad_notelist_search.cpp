// Finding notes by time, pitch and on velocity.
#include "vrad/vrad_notelist.h"
#include "vrad/vrad_sortedstore.h"

bool Vrad_NoteListBase::IsNoteInList(Vrae_TimedEvent const & iNote) const {
  if (iNote.mEvent.GetType() != Vrae_Event::kNoteWithDuration) return false;
  return FindNote(iNote.mTime, iNote.mEvent.AsNoteWithDuration()).first;
}

// Notes of one time, pitch and on velocity cannot be told apart: it is always the first.
std::pair<bool, Vrad_NoteListBase::iterator>
Vrad_NoteListBase::FindNote(Time_Typed iTime, Vrae_NoteWithDurationEvent const & iEvent) const {
  iterator const end = mNotes.End();
  iterator iter = mNotes.Begin() + Vrad_LowerBound(mNotes, iTime);
  for (; iter != end && iter->mTime == iTime; ++iter) {
    if (iter->mEvent.GetPitch() == iEvent.GetPitch() &&
        iter->mEvent.GetOnVelocity() == iEvent.GetOnVelocity()) {
      return {true, iter};
    }
  }
  return {false, iter};
}

// In a list of one unit the first note is the earliest. Among mixed units the order may be broken,
// as the tempo may have changed since the notes were added.
void Vrad_NoteListBase::EarliestTime(Time_Typed & ioTime) const {
  if (mNotes.empty()) return;
  ioTime = mNotes.front().mTime;
  if (Vrad_HasKeysFor(mNotes, ioTime.GetType())) return;
  for (Vrad_NoteListBase_Note const & note : mNotes)
    if (note.mTime < ioTime) ioTime = note.mTime;
}

bool Vrad_NoteListBase::KnowsEndsIn(Time_EType iType) const {
  return Vrad_HasKeysFor(mNotes, iType) &&
         (mNotes.GetImpl().Summarise().mMarks & kStoreMark_NoExtent) == 0;
}
