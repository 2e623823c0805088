// The move of a chunk's notes onto the coarse tick grid. Notes near a clip boundary are placed by
// the boundary's own new place, so that none crosses it.
#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "foundation/time_convert.h"
#include "vrad/vrad_chunk.h"

namespace {

constexpr long long kEarliestTick = -1;

// A grid of no size, or of one too large to be reckoned with, moves nothing.
long long GetSignedGrid() {
  unsigned long long const grid = Time_Globals::sCoarseInternalTickGrid;
  return grid == 0 || grid > 1ULL << 62 ? 1 : static_cast<long long>(grid);
}

class LegacyMove {
public:
  LegacyMove(std::set<long long> const & iBoundaries, Time_TypedLength iLength)
      : mBoundaries(iBoundaries), mLength(iLength.AsInt64()), mGrid(GetSignedGrid()) {}

  long long operator()(long long iTime) const {
    auto const next = mBoundaries.upper_bound(iTime);
    bool const hasNext = next != mBoundaries.end(), hasPrev = next != mBoundaries.begin();
    bool const isNearNext = hasNext && IsNear(Time_Saturating::Subtract(*next, iTime));
    bool const isNearPrev = hasPrev && IsNear(Time_Saturating::Subtract(iTime, *std::prev(next)));
    return std::max(
        Place(iTime, isNearPrev ? &*std::prev(next) : nullptr, isNearNext ? &*next : nullptr),
        kEarliestTick);
  }

private:
  // Towards zero.
  long long OntoGrid(long long iTime) const { return iTime / mGrid * mGrid; }

  // Below twice the grid, which may itself be too large a number.
  bool IsNear(long long iDistance) const { return iDistance - mGrid < mGrid; }

  long long MovedOntoGrid(long long iTime) const {
    return OntoGrid(Time_Saturating::Subtract(iTime, mLength));
  }

  // From a boundary that is near; null: it is not. Between two of them neither the distance to the
  // one nor that to the other is exceeded, but the note stays behind the first.
  long long Place(long long iTime, long long const * iPrevP, long long const * iNextP) const {
    if (!iPrevP && !iNextP) return MovedOntoGrid(iTime);
    if (!iNextP) return AfterBoundary(iTime, *iPrevP);
    if (!iPrevP) return BeforeBoundary(iTime, *iNextP);
    return std::max(MovedOntoGrid(*iPrevP),
                    std::min(AfterBoundary(iTime, *iPrevP), BeforeBoundary(iTime, *iNextP)));
  }

  long long AfterBoundary(long long iTime, long long iBoundary) const {
    return Time_Saturating::Add(MovedOntoGrid(iBoundary),
                                OntoGrid(Time_Saturating::Subtract(iTime, iBoundary)));
  }

  // At least one step before it.
  long long BeforeBoundary(long long iTime, long long iBoundary) const {
    long long const distance = Time_Saturating::Subtract(iBoundary, iTime);
    return Time_Saturating::Subtract(MovedOntoGrid(iBoundary),
                                     OntoGrid(Time_Saturating::Add(distance, mGrid - 1)));
  }

  std::set<long long> const & mBoundaries;
  long long const mLength;
  long long const mGrid;
};

}  // namespace

void Vrad_Chunk::MoveNotesForLegacyPlayback(Time_TypedLength iLength) {
  DropSortedEventList();
  if (mNoteListP) {
    LegacyMove const move(mClipBoundaries, iLength);
    Vrad_NoteListBase moved(kNotUndoable, true);
    for (Vrad_NoteListBase_Note note : std::as_const(mNoteListP->mNotes)) {
      note.mTime = Time_Tick(move(note.mTime.AsInt64()));
      moved.AddNote(note);
    }
    mNoteListP->ReplaceData(&moved);
  }
}
