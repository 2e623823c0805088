#include "vrad/vrad_notelist_overlaps.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

#include "vrad/vrad_sortedstore.h"

namespace {

typedef Vrad_NoteListBase_Note Note;
typedef Cmn_ChunkyPODVector<Note> Notes;

Note const & Read(Notes const & iNotes, int iIndex) {
  return iNotes[iIndex];
}

// A note that has lost out, or was stored like that.
bool IsMarked(Note const & iNote) {
  return iNote.mEvent.GetOnVelocity() == 0;
}

// The result as stretches of the two sequences.
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
  struct Run {
    bool mIsAdded;
    int mFirst;
    int mLast;
  };
  std::vector<Run> mRuns;
};

// Takes notes by time, the added one first at equal times. An own note is asked whether it stays
// beside the added ones that are still to come; an added one pushes aside own ones still to come.
template <class TWalk>
Notes MergeBy(TWalk & ioWalk, Notes & ioOwn, Notes & ioAdded) {
  Runs runs;
  int own = 0;
  int added = 0;
  while (own < ioOwn.Size() || added < ioAdded.Size()) {
    bool const isOwn =
        own < ioOwn.Size() && (added == ioAdded.Size() || ioWalk.IsOwnBefore(own, added));
    if (!isOwn) {
      ioWalk.PushAside(added, own);
      runs.Keep(true, added++);
      continue;
    }
    if (ioWalk.StaysBeside(own, added)) runs.Keep(false, own);
    ++own;
  }
  ioWalk.WriteDurations();
  return runs.Join(ioOwn, ioAdded);
}

// The rules as they are told: note by note, comparing times and lengths whatever their units.
class PlainWalk {
public:
  PlainWalk(Notes & ioOwn, Notes & ioAdded) : mOwn(ioOwn), mAdded(ioAdded) {}

  bool IsOwnBefore(int iOwn, int iAdded) const {
    return Read(mOwn, iOwn).mTime < Read(mAdded, iAdded).mTime;
  }

  // Cut where the added notes begin, one after the other, but lost to one that would leave it no
  // more than a quarter.
  bool StaysBeside(int iOwn, int iFirstAdded) {
    Note note = Read(mOwn, iOwn);
    if (IsMarked(note)) return false;
    bool stays = true;
    bool isCut = false;
    ForEachUnder(note, mAdded, iFirstAdded, [&](Note const & iAdded, int) {
      Time_TypedLength const left = iAdded.mTime - note.mTime;
      bool const isEnough = left > note.mEvent.GetDuration() / 4;
      if (isEnough) note.mEvent.SetDuration(left);
      isCut = isCut || isEnough;
      stays = stays && isEnough;
    });
    if (stays && isCut) mOwn.Replace(iOwn, note);
    return stays;
  }

  // All go that begin while it lasts, but for one in its second half that would lose less than a
  // quarter of itself: there the added note is cut.
  void PushAside(int iAdded, int iFirstOwn) {
    Note note = Read(mAdded, iAdded);
    Time_Typed const end = EndOf(note);
    bool isCut = false;
    std::vector<int> losers;
    ForEachUnder(note, mOwn, iFirstOwn, [&](Note const & iOwn, int iIndex) {
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

  void WriteDurations() {}

private:
  static Time_Typed EndOf(Note const & iNote) { return iNote.mTime + iNote.mEvent.GetDuration(); }

  // The notes of the same pitch that begin before the end that the note has now.
  template <class TFound>
  static void ForEachUnder(Note const & iNote, Notes const & iNotes, int iFirst, TFound iFound) {
    Time_Typed const end = EndOf(iNote);
    signed char const pitch = iNote.mEvent.GetPitch();
    for (auto iter = iNotes.At(iFirst); iter != iNotes.End() && iter->mTime < end; ++iter)
      if (iter->mEvent.GetPitch() == pitch) iFound(*iter, iter.GetIndex());
  }

  Notes & mOwn;
  Notes & mAdded;
};

// The notes of a sequence ordered by pitch, those of one pitch by time, and a walk over them in the
// order of the sequence. A place is a position in the order by pitch.
class NotesByPitch {
public:
  explicit NotesByPitch(Notes const & iNotes)
      : mPitches(iNotes.size()), mTimes(iNotes.size()), mDurations(iNotes.size()) {
    size_t index = 0;
    for (Note const & note : iNotes) {
      unsigned char const pitch = static_cast<unsigned char>(note.mEvent.GetPitch());
      mPitches[index++] = pitch;
      ++mEnd[pitch];
    }
    std::partial_sum(mEnd, mEnd + kNumPitches, mEnd);
    Restart();
    for (Note const & note : iNotes) {
      size_t const place = static_cast<size_t>(NextPlace());
      mTimes[place] = note.mTime.AsInt64();
      mDurations[place] = note.mEvent.GetDuration().AsInt64();
      Pass();
    }
    Restart();
  }

  void Restart() {
    mIndex = 0;
    mNext[0] = 0;
    std::copy(mEnd, mEnd + kNumPitches - 1, mNext + 1);
  }

  int Size() const { return static_cast<int>(mPitches.size()); }
  long long TimeAt(int iPlace) const { return mTimes[static_cast<size_t>(iPlace)]; }
  long long DurationAt(int iPlace) const { return mDurations[static_cast<size_t>(iPlace)]; }

  /// The note that the walk has come to.
  int NextPitch() const { return mPitches[static_cast<size_t>(mIndex)]; }
  int NextPlace() const { return mNext[NextPitch()]; }
  void Pass() {
    ++mNext[NextPitch()];
    ++mIndex;
  }

  /// The places of that pitch still to come that begin before a time.
  Vrad_IndexRange Before(int iPitch, long long iTime) const {
    return {mNext[iPitch], FirstFrom({mNext[iPitch], mEnd[iPitch]}, iTime)};
  }
  /// The first place of the range, all of one pitch, that does not begin before a time.
  int FirstFrom(Vrad_IndexRange iRange, long long iTime) const {
    if (iRange.IsEmpty() || TimeAt(iRange.mFirst) >= iTime) return iRange.mFirst;  // mostly so
    return static_cast<int>(
        std::lower_bound(mTimes.begin() + iRange.mFirst, mTimes.begin() + iRange.mLast, iTime) -
        mTimes.begin());
  }

private:
  static constexpr int kNumPitches = 256;  // as unsigned bytes
  std::vector<unsigned char> mPitches;     // in the order of the sequence
  std::vector<long long> mTimes;           // by place
  std::vector<long long> mDurations;       // by place
  int mEnd[kNumPitches] = {};
  int mNext[kNumPitches] = {};
  int mIndex = 0;
};

// Which of the own notes still stand, each with the latest end of an added note over its start that
// it outlasts only by losing a quarter: a tree of the least of them, its leaves being the places.
class Standing {
public:
  explicit Standing(int iNum)
      : mNumLeaves(std::bit_ceil(static_cast<size_t>(iNum))), mLeast(2 * mNumLeaves, kGone) {}

  void Put(int iPlace, long long iLimit) { mLeast[Leaf(iPlace)] = iLimit; }
  /// After the last call of `Put`.
  void Complete() {
    for (size_t node = mNumLeaves - 1; node > 0; --node)
      Gather(node);
  }
  bool IsGone(int iPlace) const { return mLeast[Leaf(iPlace)] == kGone; }

  /// Of a range: those whose limit is not above one, all of them.
  void Remove(Vrad_IndexRange iRange, long long iLimit) {
    for (int place = FindFirst(iRange, iLimit); place < iRange.mLast;
         place = FindFirst({place + 1, iRange.mLast}, iLimit)) {
      size_t node = Leaf(place);
      mLeast[node] = kGone;
      while ((node /= 2) > 0)
        Gather(node);
    }
  }
  void RemoveAll(Vrad_IndexRange iRange) { Remove(iRange, kGone - 1); }

  /// The last in a range that stands; -1 if none does.
  int FindLast(Vrad_IndexRange iRange) const {
    if (iRange.IsEmpty()) return -1;
    size_t node = Leaf(iRange.mLast - 1);
    while (mLeast[node] == kGone) {
      while (node % 2 == 0)
        node /= 2;
      if (node == 1) return -1;
      --node;
    }
    while (node < mNumLeaves)
      node = 2 * node + (mLeast[2 * node + 1] == kGone ? 0 : 1);
    int const place = static_cast<int>(node - mNumLeaves);
    return place >= iRange.mFirst ? place : -1;
  }

private:
  static constexpr long long kGone = std::numeric_limits<long long>::max();

  size_t Leaf(int iPlace) const { return mNumLeaves + static_cast<size_t>(iPlace); }
  void Gather(size_t iNode) { mLeast[iNode] = std::min(mLeast[2 * iNode], mLeast[2 * iNode + 1]); }
  // The end of the range if there is none.
  int FindFirst(Vrad_IndexRange iRange, long long iLimit) const {
    if (iRange.IsEmpty()) return iRange.mLast;
    size_t node = Leaf(iRange.mFirst);
    while (mLeast[node] > iLimit) {
      while (node % 2 == 1)
        node /= 2;
      if (node == 0) return iRange.mLast;
      ++node;
    }
    while (node < mNumLeaves)
      node = 2 * node + (mLeast[2 * node] > iLimit ? 1 : 0);
    return std::min(static_cast<int>(node - mNumLeaves), iRange.mLast);
  }

  size_t mNumLeaves;
  std::vector<long long> mLeast;  // node 1 is the root, the children of node i are 2i and 2i + 1
};

// The same for two sequences sorted in one unit, without a walk over the notes that overlap: the
// plain walk cuts a note where the last of those begins that it does not lose to.
class SortedWalk {
public:
  SortedWalk(Notes & ioOwn, Notes & ioAdded)
      : mOwnNotes(ioOwn),
        mAddedNotes(ioAdded),
        mOwn(ioOwn),
        mAdded(ioAdded),
        mStanding(mOwn.Size()) {
    NotesByPitch order = mOwn;
    for (Note const & note : std::as_const(ioOwn)) {
      int const place = order.NextPlace();
      if (!IsMarked(note)) mStanding.Put(place, order.TimeAt(place) + order.DurationAt(place) / 4);
      order.Pass();
    }
    mStanding.Complete();
  }

  bool IsOwnBefore(int, int) const {
    return mOwn.TimeAt(mOwn.NextPlace()) < mAdded.TimeAt(mAdded.NextPlace());
  }

  // Once it is cut, whatever begins later leaves it more than a quarter.
  bool StaysBeside(int iOwn, int) {
    int const place = mOwn.NextPlace();
    int const pitch = mOwn.NextPitch();
    mOwn.Pass();
    if (mStanding.IsGone(place)) return false;
    long long const start = mOwn.TimeAt(place);
    long long const duration = mOwn.DurationAt(place);
    Vrad_IndexRange const above = mAdded.Before(pitch, start + duration);
    if (above.IsEmpty()) return true;
    if (mAdded.TimeAt(above.mFirst) - start <= duration / 4) return false;
    mOwnCuts.push_back({iOwn, mAdded.TimeAt(above.mLast - 1) - start});
    return true;
  }

  void PushAside(int iAdded, int) {
    int const place = mAdded.NextPlace();
    long long const start = mAdded.TimeAt(place);
    long long const duration = mAdded.DurationAt(place);
    Vrad_IndexRange const under = mOwn.Before(mAdded.NextPitch(), start + duration);
    mAdded.Pass();
    if (under.IsEmpty()) return;
    int const half = mOwn.FirstFrom(under, start + duration / 2 + 1);
    mStanding.RemoveAll({under.mFirst, half});
    mStanding.Remove({half, under.mLast}, start + duration);
    int const last = mStanding.FindLast({half, under.mLast});
    if (last >= 0) mAddedCuts.push_back({iAdded, mOwn.TimeAt(last) - start});
  }

  void WriteDurations() {
    Write(mOwnCuts, mOwnNotes);
    Write(mAddedCuts, mAddedNotes);
  }

private:
  struct Cut {
    int mIndex;
    long long mDuration;
  };

  static void Write(std::vector<Cut> const & iCuts, Notes & ioNotes) {
    auto iter = ioNotes.Begin();
    for (Cut const & cut : iCuts) {
      iter += cut.mIndex - iter.GetIndex();
      iter->mEvent.SetDuration(Time_TypedLength(cut.mDuration, iter->mTime.GetType()));
    }
    ioNotes.Settle();
  }

  Notes & mOwnNotes;
  Notes & mAddedNotes;
  NotesByPitch mOwn;
  NotesByPitch mAdded;
  Standing mStanding;
  std::vector<Cut> mOwnCuts;
  std::vector<Cut> mAddedCuts;
};

// Sorted in that unit, durations in it too, and all so near that sums cannot stop at a limit.
bool IsSortedAndNear(Notes const & iNotes, Time_EType iType) {
  constexpr long long kFar = 1LL << 60;
  Cmn_ChunkyVecSummary const & all = iNotes.GetImpl().Summarise();
  return Vrad_HasKeysFor(iNotes, iType) && (all.mMarks & kStoreMark_NoExtent) == 0 &&
         std::min(all.mFirst, all.mLeast) > -kFar && std::max(all.mLast, all.mGreatest) < kFar;
}

}  // namespace

Notes Vrad_MergeAvoidingOverlaps(Notes & ioOwn, Notes & ioAdded) {
  Time_EType const type = Read(ioAdded, 0).mTime.GetType();
  if (IsSortedAndNear(ioOwn, type) && IsSortedAndNear(ioAdded, type)) {
    SortedWalk walk(ioOwn, ioAdded);
    return MergeBy(walk, ioOwn, ioAdded);
  }
  PlainWalk walk(ioOwn, ioAdded);
  return MergeBy(walk, ioOwn, ioAdded);
}
