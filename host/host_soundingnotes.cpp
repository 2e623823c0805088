#include "host/host_soundingnotes.h"

#include <algorithm>

namespace {

typedef Vrad_NoteListBase::FullNotesInRangeIter NotesIter;

bool IsLong(Vrad_NoteListBase const & iList, Vrad_NoteListBase_Note const & iNote) {
  Time_TypedLength const duration = iNote.mEvent.GetDuration();
  return duration >= iList.GetLongNoteDuration(duration.GetType());
}

bool SoundAlike(Vrad_NoteListBase_Note const & iA, Vrad_NoteListBase_Note const & iB) {
  return iA.mTime == iB.mTime && iA.mMuted == iB.mMuted &&
         iA.mEvent.GetType() == iB.mEvent.GetType() &&
         iA.mEvent.GetPitch() == iB.mEvent.GetPitch() &&
         iA.mEvent.GetOnVelocity() == iB.mEvent.GetOnVelocity() &&
         iA.mEvent.GetOffVelocity() == iB.mEvent.GetOffVelocity() &&
         iA.mEvent.GetDuration() == iB.mEvent.GetDuration();
}

// Whether the copies that the list keeps of its long notes are these notes, in their order: of all,
// or of those in a range.
template <class... TTimes>
bool FindTrueCopies(Vrad_NoteListBase & iList, TTimes... iRange) {
  NotesIter copy(iList.GetLongNoteList(), iRange...);
  for (NotesIter iter(&iList, iRange...); iter.IsMore(); ++iter) {
    if (!IsLong(iList, *iter)) continue;
    if (!copy.IsMore() || !SoundAlike(*iter, *copy)) return false;
    ++copy;
  }
  return !copy.IsMore();
}

}  // namespace

void Host_SoundingNotes::Build(Vrad_NoteListBase * iListP, bool iHasSamples) {
  // Without copies the list looks at all of its notes.
  bool const hasCopies = iListP && iListP->GetLongNoteList();
  bool const looksItself = hasCopies && (iHasSamples || !FindTrueCopies(*iListP));
  std::vector<Vrad_NoteListBase_Note> longNotes;
  if (looksItself)
    for (NotesIter iter(iListP); iter.IsMore(); ++iter)
      if (IsLong(*iListP, *iter)) longNotes.push_back(*iter);
  mLongNotes.swap(longNotes);
  mLooksItself = looksItself;
}

bool Host_SoundingNotes::AreCopiesTrue(Vrad_NoteListBase * iListP, Host_TimeRange const & iRange) {
  return !iListP || !iListP->GetLongNoteList() || FindTrueCopies(*iListP, iRange.mFrom, iRange.mTo);
}

// What begins before it and is not long has ended by the time.
Time_Typed Host_SoundingNotes::GetSplit(Vrad_NoteListBase const & iList, Time_Typed iTime) {
  Time_Typed split = iTime;
  for (Time_EType const type : {Time_eType_Samples, Time_eType_Ticks}) {
    Time_Typed const time(Time_CountInUnit(iTime, type), type);
    split = std::min(split, time - iList.GetLongNoteDuration(type));
  }
  return split;
}
