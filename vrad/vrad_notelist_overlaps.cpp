#include "vrad/vrad_notelist_overlaps.h"

#include <algorithm>
#include <climits>
#include <vector>

#include "vrad/vrad_sortedstore.h"

namespace {

typedef Vrad_NoteListBase_Note Note;
typedef Cmn_ChunkyPODVector<Note> Notes;

// A stretch of one of the two sequences, in the order of the result.
struct Run {
  bool mIsAdded;
  int mFirst;
  int mLast;
};

class Runs {
public:
  void Keep(bool iIsAdded, int iIndex) {
    bool const goesOn =
        !mRuns.empty() && mRuns.back().mIsAdded == iIsAdded && mRuns.back().mLast == iIndex;
    if (goesOn)
      ++mRuns.back().mLast;
    else
      mRuns.push_back({iIsAdded, iIndex, iIndex + 1});
  }
  Notes Join(Notes const & iOwn, Notes const & iAdded) const {
    Notes result(iOwn);
    result.Clear();
    for (Run const & run : mRuns)
      result.Append(run.mIsAdded ? iAdded : iOwn, run.mFirst, run.mLast);
    return result;
  }

private:
  std::vector<Run> mRuns;
};

// The merge as it is told: note by note, comparing times and lengths whatever their units.
class PlainWalk {
public:
  PlainWalk(Notes & ioOwn, Notes & ioAdded) : mOwn(ioOwn), mAdded(ioAdded) {}

  Notes Merge() {
    int own = 0;
    int added = 0;
    while (own < mOwn.Size() || added < mAdded.Size()) {
      if (own < mOwn.Size() &&
          (added == mAdded.Size() || Read(mOwn, own).mTime < Read(mAdded, added).mTime)) {
        if (StaysBeside(own, added)) mRuns.Keep(false, own);
        ++own;
      } else {
        PushAside(added, own);
        mRuns.Keep(true, added++);
      }
    }
    return mRuns.Join(mOwn, mAdded);
  }

private:
  static Note const & Read(Notes const & iNotes, int iIndex) { return iNotes[iIndex]; }
  static bool IsMarked(Note const & iNote) { return iNote.mEvent.GetOnVelocity() == 0; }
  static Time_Typed EndOf(Note const & iNote) { return iNote.mTime + iNote.mEvent.GetDuration(); }

  // Calls for the notes of a sequence that begin before a time and have that pitch.
  template <class TFound>
  static void ForEach(Notes const & iNotes, int iFirst, Time_Typed iEnd, int iPitch,
                      TFound iFound) {
    auto iter = iNotes.At(iFirst);
    for (; iter != iNotes.End() && iter->mTime < iEnd; ++iter)
      if (iter->mEvent.GetPitch() == iPitch) iFound(*iter, iter.GetIndex());
  }

  // An own note that begins first is cut where the added ones begin, one after the other, but for
  // one that would keep no more than a quarter.
  bool StaysBeside(int iOwn, int iFirstAdded) {
    Note note = Read(mOwn, iOwn);
    if (IsMarked(note)) return false;
    bool stays = true;
    bool isCut = false;
    ForEach(mAdded, iFirstAdded, EndOf(note), note.mEvent.GetPitch(),
            [&](Note const & iAdded, int) {
              Time_TypedLength const left = iAdded.mTime - note.mTime;
              if (left > note.mEvent.GetDuration() / 4) {
                note.mEvent.SetDuration(left);
                isCut = true;
              } else {
                stays = false;
              }
            });
    if (stays && isCut) mOwn.Replace(iOwn, note);
    return stays;
  }

  // An added note removes the own ones that begin while it lasts, but for one in its second half
  // that loses less than a quarter: there it is cut itself.
  void PushAside(int iAdded, int iFirstOwn) {
    Note note = Read(mAdded, iAdded);
    Time_Typed const end = EndOf(note);
    bool isCut = false;
    std::vector<int> losers;
    ForEach(mOwn, iFirstOwn, end, note.mEvent.GetPitch(), [&](Note const & iOwn, int iIndex) {
      if (IsMarked(iOwn)) return;
      Time_TypedLength const left = iOwn.mTime - note.mTime;
      if (left > note.mEvent.GetDuration() / 2 &&
          end - iOwn.mTime < iOwn.mEvent.GetDuration() / 4) {
        note.mEvent.SetDuration(left);
        isCut = true;
      } else {
        losers.push_back(iIndex);
      }
    });
    for (int const index : losers)
      mOwn[index].mEvent.MarkForDeletion();
    if (isCut) mAdded.Replace(iAdded, note);
  }

  Notes & mOwn;
  Notes & mAdded;
  Runs mRuns;
};

}  // namespace

Notes Vrad_MergeAvoidingOverlaps(Notes & ioOwn, Notes & ioAdded) {
  return PlainWalk(ioOwn, ioAdded).Merge();
}
