// What a receiver would have heard up to a time: values in force and notes that sound.
#include "vrad/vrad_chunk.h"
#include "vrad/vrae_chasetracker.h"
#include "vrad/vrae_trackstate.h"

namespace {

// Cuts the note to end at the time; a note that ends before is left as it is.
void EndNoteAt(Vrae_TimedEvent & ioNote, Time_Typed iEnd) {
  Vrae_NoteWithDurationEvent & note = ioNote.mEvent.AsNoteWithDuration();
  Time_TypedLength const longest = iEnd - ioNote.mTime;
  if (note.GetDuration() > longest) note.SetDuration(longest);
}

}  // namespace

// At a position out of the blue nothing is in the processor's cache, and a search waits at each of
// its steps. So memory is asked ahead for the streams behind the one whose turn it is.
void Vrad_Chunk::AddChaseStateAtTime(Vrae_ChaseTracker * ioTracker, Time_Typed iFirst,
                                     Time_Typed iSecond) const {
  constexpr size_t kAhead = 8;
  Time_TypedLength const noOffset(0, iFirst.GetType());
  size_t const num = mContinuousList.size();
  for (size_t i = 0; i < num + 2 * kAhead; ++i) {
    if (i < num) mContinuousList[i]->FetchTop();
    if (i >= kAhead && i - kAhead < num) mContinuousList[i - kAhead]->FetchBefore(iFirst);
    if (i >= 2 * kAhead)
      mContinuousList[i - 2 * kAhead]->AccumulateChaseStateAtTime(ioTracker, iFirst, iSecond,
                                                                  noOffset);
  }
}

void Vrad_Chunk::GetChaseStateAtTime(Vrae_ChaseTracker * ioTracker, Time_Typed iFirst,
                                     Time_Typed iSecond) const {
  ioTracker->Clear();
  AddChaseStateAtTime(ioTracker, iFirst, iSecond);
}

// The offset is added here, unlike in retrieval: a track state lives in output time.
void Vrad_Chunk::AddNoteStateAtTime(Vrae_TrackState * ioTrackState, Time_Typed iSustainStart,
                                    Time_Typed iRangeStart, Time_Typed iRangeEnd,
                                    Time_TypedLength iOffset, bool iClipDuration) const {
  Vrad_NoteListBase::FullSustainingNoteIter iter(mNoteListP.Get(), iSustainStart);
  for (; iter.IsMore(); ++iter) {
    Vrae_TimedEvent note((*iter).mTime, (*iter).mEvent);
    if (note.mTime < iRangeStart || !(note.mTime < iRangeEnd)) continue;
    if (iClipDuration) EndNoteAt(note, iRangeEnd);
    note.mTime += iOffset;
    ioTrackState->ReceiveEvent(note);
  }
}
