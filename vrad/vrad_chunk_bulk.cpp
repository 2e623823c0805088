// Edits of many events of a chunk, store by store. The cached list goes ahead of the first store,
// so that an edit that runs out of memory half way leaves none that no longer fits.
#include "cmn/cmn_assert.h"
#include "foundation/ticktimesmatter.h"
#include "vrad/vrad_chunk.h"

namespace {

// Notes are moved for an offset, and for none too where they are to come onto the tick grid.
bool AreNotesMoved(Time_Typed iStart, Time_TypedLength iOffset) {
  return iOffset.AsInt64() != 0 ||
         (TickTimesMatter::Active() && iStart.GetType() == Time_eType_Ticks);
}

void MoveNotes(Vrad_NoteListBase & ioNotes, Time_TypedLength iOffset, EMidiNudgeMode iMode) {
  switch (iMode) {
  case kNudgeStarts:
    ioNotes.OffsetStarts(iOffset);
    break;
  case kNudgeDurations:
    ioNotes.OffsetDurations(iOffset);
    break;
  case kNudgePitches:
    ioNotes.OffsetPitches(iOffset);
    break;
  default:
    CMN_CHECK(iMode == kNudgeTimes, "unexpected nudge mode");
    ioNotes.OffsetTimes(iOffset);
    break;
  }
}

bool MovesNotesAlone(EMidiNudgeMode iMode) {
  return iMode == kNudgeStarts || iMode == kNudgeDurations || iMode == kNudgePitches;
}

}  // namespace

void Vrad_Chunk::AddEventsFromChunk(Vrad_Chunk const * iSrc, Time_Typed iStart, Time_Typed iEnd,
                                    Time_TypedLength iOffset, EMidiNudgeMode iMode) {
  DropSortedEventList();
  if (iSrc->mNoteListP && mNoteListP) {
    Vrad_NoteList notes(kNotUndoable, mQuantizeContents);
    iSrc->mNoteListP->CopyTimeRange(&notes, iStart, iEnd);
    if (AreNotesMoved(iStart, iOffset)) MoveNotes(notes, iOffset, iMode);
    mNoteListP->Merge(&notes);
  }
  Time_TypedLength const offset =
      MovesNotesAlone(iMode) ? Time_TypedLength(0, iOffset.GetType()) : iOffset;
  mMiscEventsP->AddFromStream(iSrc->mMiscEventsP.Get(), iStart, iEnd, offset);
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & sourceP : iSrc->mContinuousList)
    if (sourceP->IsEventInRange(iStart, iEnd))
      FindOrCreateContinuousStream(sourceP->GetSubStream())
          ->AddFromStream(sourceP.Get(), iStart, iEnd, offset);
}

void Vrad_Chunk::EraseEventsFromChunk(Vrad_Chunk const * iSrc, Time_Typed iStart, Time_Typed iEnd,
                                      Time_TypedLength iOffset) {
  DropSortedEventList();
  if (iSrc->mNoteListP && mNoteListP) {
    Vrad_NoteList notes(kNotUndoable, mQuantizeContents);
    iSrc->mNoteListP->CopyTimeRange(&notes, iStart, iEnd);
    if (iOffset.AsInt64() != 0) notes.OffsetTimes(iOffset);
    mNoteListP->Erase(&notes);
  }
  mMiscEventsP->EraseFromStream(iSrc->mMiscEventsP.Get(), iStart, iEnd, iOffset);
  // Backward, since a chunk that erases from itself shortens the list that is walked.
  for (size_t i = iSrc->mContinuousList.size(); i-- > 0;) {
    Vrad_ContinuousDataStream const * const sourceP = iSrc->mContinuousList[i].Get();
    if (!sourceP->IsEventInRange(iStart, iEnd)) continue;
    int const index = sourceP->GetSubStream().GetIndex();
    size_t const place = FindPlace(index);
    if (!IsStreamAt(place, index)) continue;
    mContinuousList[place]->EraseFromStream(sourceP, iStart, iEnd, iOffset);
    RemoveStreamIfEmpty(place);
  }
}

void Vrad_Chunk::EraseRange(Time_Typed iStart, Time_Typed iEnd) {
  DropSortedEventList();
  if (mNoteListP) mNoteListP->EraseTimeRange(iStart, iEnd);
  mMiscEventsP->EraseRange(iStart, iEnd);
  for (size_t place = mContinuousList.size(); place-- > 0;)
    EraseStreamRange(place, iStart, iEnd);
}

// The index found is not compared, on purpose: the next stream above stands in for a missing one.
void Vrad_Chunk::EraseSubStream(Vrae_SubStream const & iSubStream, Time_Typed iStart,
                                Time_Typed iEnd) {
  size_t const place = FindPlace(iSubStream.GetIndex());
  DropSortedEventList();
  if (place < mContinuousList.size()) EraseStreamRange(place, iStart, iEnd);
}

void Vrad_Chunk::EraseStreamRange(size_t iPlace, Time_Typed iStart, Time_Typed iEnd) {
  mContinuousList[iPlace]->EraseRange(iStart, iEnd);
  RemoveStreamIfEmpty(iPlace);
}

void Vrad_Chunk::AddClipBoundary(long long iBoundary) {
  mClipBoundaries.insert(iBoundary);
}

void Vrad_Chunk::QuantizeEventsForTTM(Time_TypedLength iLength) {
  if (mIsMovedForTickTime) return;
  DropSortedEventList();
  if (!mClipBoundaries.empty())
    MoveNotesForLegacyPlayback(iLength);
  else if (mNoteListP)
    mNoteListP->OffsetTimes(iLength);
  mMiscEventsP->OffsetTimes(iLength);
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : mContinuousList)
    streamP->OffsetTimes(iLength);
  mIsMovedForTickTime = true;
}
