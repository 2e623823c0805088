// How far sounding notes reach. The keys of the store answer while all times and durations are of
// the unit asked for; otherwise every note is looked at, in order.
#include <algorithm>

#include "vrad/vrad_notelist.h"
#include "vrad/vrad_sortedstore.h"

namespace {

// The earliest end strictly between two counts. Ends at the latest limit if there is none.
class EarliestEnd final : public Cmn_ChunkyVecVisitor {
public:
  EarliestEnd(long long iAfter, long long iBefore) : mAfter(iAfter), mFound(iBefore) {}
  bool Wants(Cmn_ChunkyVecSummary const & iPart) override {
    return iPart.mGreatest > mAfter && iPart.mLeast < mFound;
  }
  bool Visit(Cmn_ChunkyVecKeys const & iKeys) override {
    for (int i = 0; i < iKeys.mNum; ++i)
      if (iKeys.mExtent[i] > mAfter) mFound = std::min(mFound, iKeys.mExtent[i]);
    return true;
  }
  long long GetFound() const { return mFound; }

private:
  long long mAfter;
  long long mFound;
};

// The latest end strictly between two counts. Ends at the first of them if there is none.
class LatestEnd final : public Cmn_ChunkyVecVisitor {
public:
  LatestEnd(long long iAfter, long long iBefore) : mFound(iAfter), mBefore(iBefore) {}
  bool Wants(Cmn_ChunkyVecSummary const & iPart) override {
    return iPart.mGreatest > mFound && iPart.mLeast < mBefore;
  }
  bool Visit(Cmn_ChunkyVecKeys const & iKeys) override {
    for (int i = 0; i < iKeys.mNum; ++i)
      if (iKeys.mExtent[i] < mBefore) mFound = std::max(mFound, iKeys.mExtent[i]);
    return true;
  }
  long long GetFound() const { return mFound; }

private:
  long long mFound;
  long long mBefore;
};

}  // namespace

// Tells the ends of the notes from an index on, up to the first note that starts at or past iEnd.
template <class TNoteFound>
void Vrad_NoteListBase::WalkEndsBefore(Time_Typed iEnd, int iFirst, TNoteFound iFound) const {
  iterator const end = mNotes.End();
  for (iterator iter = mNotes.Begin() + iFirst; iter != end && iter->mTime < iEnd; ++iter)
    iFound(iter->mTime + iter->mEvent.GetDuration());
}

Time_Typed Vrad_NoteListBase::GetEarliestReleaseTimeForNotesInRange(Time_Typed iStart,
                                                                    Time_Typed iEnd) const {
  Time_EType const type = iEnd.GetType();
  if (iStart.GetType() == type && KnowsEndsIn(type)) {
    EarliestEnd visitor(iStart.AsInt64(), iEnd.AsInt64());
    mNotes.GetImpl().Walk(0, Vrad_LowerBound(mNotes, iEnd), visitor);
    return Time_Typed(visitor.GetFound(), type);
  }
  Time_Typed result = iEnd;
  WalkEndsBefore(iEnd, 0, [&](Time_Typed iNoteEnd) {
    if (iNoteEnd > iStart && iNoteEnd < iEnd && iNoteEnd < result) result = iNoteEnd;
  });
  return result;
}

// From the back: the latest ends are mostly those of the last notes.
Time_Typed Vrad_NoteListBase::GetLastReleaseTimeForNotesInRange(Time_Typed iStart,
                                                                Time_Typed iEnd) const {
  Time_EType const type = iEnd.GetType();
  if (iStart.GetType() == type && KnowsEndsIn(type)) {
    LatestEnd visitor(iStart.AsInt64(), iEnd.AsInt64());
    mNotes.GetImpl().WalkBackward(0, Vrad_LowerBound(mNotes, iEnd), visitor);
    return Time_Typed(visitor.GetFound(), type);
  }
  Time_Typed result = iStart;
  WalkEndsBefore(iEnd, 0, [&](Time_Typed iNoteEnd) {
    if (iNoteEnd > iStart && iNoteEnd < iEnd && iNoteEnd > result) result = iNoteEnd;
  });
  return result;
}

// A short note that starts a threshold before the end cannot outlast it, so it is not looked at.
Time_Typed Vrad_NoteListBase::GetLatestReleaseTimeForNotesInRange(Time_Typed iStart,
                                                                  Time_Typed iEnd) const {
  Time_EType const type = iEnd.GetType();
  Time_Typed result = iStart;
  Time_Typed scanStart = iStart;
  if (mLongNoteListP) {
    Time_Typed const earliestShort = iEnd - GetLongNoteDuration(type);
    if (scanStart < earliestShort) scanStart = earliestShort;
  }
  int const first = Vrad_LowerBound(mNotes, scanStart);
  if (iStart.GetType() == type && KnowsEndsIn(type)) {
    Cmn_ChunkyVecSummary const ends =
        mNotes.GetImpl().Summarise(first, Vrad_LowerBound(mNotes, iEnd));
    if (ends.mNum > 0 && ends.mGreatest > result.AsInt64()) {
      result = Time_Typed(ends.mGreatest, type);
    }
  } else {
    WalkEndsBefore(iEnd, first, [&](Time_Typed iNoteEnd) {
      if (iNoteEnd > result) result = iNoteEnd;
    });
  }
  if (!mLongNoteListP) return result;
  Time_Typed const longest = mLongNoteListP->GetLatestReleaseTimeForNotesInRange(iStart, iEnd);
  return longest > result ? longest : result;
}
