// Merging the notes of another list.
#include <algorithm>
#include <utility>

#include "vrad/vrad_notelist.h"
#include "vrad/vrad_notelist_overlaps.h"
#include "vrad/vrad_sortedstore.h"

namespace {

typedef Cmn_ChunkyPODVector<Vrad_NoteListBase_Note> Notes;
typedef Vrad_StoreCursor<Vrad_NoteListBase_Note> Cursor;

// A stable merge by time of a stretch of a list with all of another, run by run: notes of the list
// come ahead of those added at equal times.
void MergeRuns(Notes const & iOwn, Vrad_IndexRange iStretch, Notes const & iAdded,
               Notes & ioMerged) {
  Cursor own(iOwn, iStretch);
  Cursor added(iAdded, {0, iAdded.Size()});
  while (!own.IsAtEnd() && !added.IsAtEnd()) {
    int const firstOwn = own.GetIndex();
    own.SkipThrough(added->mTime);
    ioMerged.Append(iOwn, firstOwn, own.GetIndex());
    if (own.IsAtEnd()) break;
    int const firstAdded = added.GetIndex();
    added.SkipBefore(own->mTime);
    ioMerged.Append(iAdded, firstAdded, added.GetIndex());
  }
  ioMerged.Append(iOwn, own.GetIndex(), iStretch.mLast);
  ioMerged.Append(iAdded, added.GetIndex(), iAdded.Size());
}

}  // namespace

// Both forms put a new sequence together, which shares with the old ones all that they leave side
// by side: running out of memory leaves the list as it was. The other list is copied first, as it
// may be this one.
void Vrad_NoteListBase::Merge(Vrad_NoteListBase * iOther) {
  if (iOther->mNotes.empty()) return;
  Notes added(iOther->mNotes);
  NdoAboutToModify();
  if (!gAvoidOverlapsAndDuplicates) {
    MergeSorted(added);
    if (!mLongNoteListP) return;
    if (iOther->mLongNoteListP && HasThresholdsOf(*iOther))
      mLongNoteListP->Merge(iOther->mLongNoteListP.Get());
    else
      RegenerateLongNoteList();
    return;
  }
  Notes own(mNotes);
  Notes const merged = Vrad_MergeAvoidingOverlaps(own, added);
  if (iOther != this) iOther->mNotes = added;
  mNotes = merged;
  RegenerateLongNoteList();
}

// Only the stretch between the first and the last note that is added is looked at. Where a change
// of tempo has broken the order of another list's mixed units, the stretch may be empty.
void Vrad_NoteListBase::MergeSorted(Notes const & iAdded) {
  int const last = Vrad_UpperBound(mNotes, iAdded.back().mTime);
  int const first = std::min(Vrad_LowerBound(mNotes, iAdded.front().mTime), last);
  Notes merged(mNotes);
  merged.Clear();
  merged.Append(mNotes, 0, first);
  MergeRuns(mNotes, {first, last}, iAdded, merged);
  merged.Append(mNotes, last, mNotes.Size());
  mNotes = merged;
}
