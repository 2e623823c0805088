// Sorts what a retrieval appended: a few runs that are sorted in themselves (notes, each stream,
// the miscellaneous events) into one.
//
// A stable natural merge sort that takes no memory but a few kilobytes of stack. Elements are
// swapped and never held out, and no comparison lies between the two halves of a swap, so that the
// list holds the same elements whenever the order throws. Every index comes from the bounds of the
// runs and never from what a comparison promised, so that an order that contradicts itself spoils
// the order of the result and nothing else.
#include "vrad/vrad_extendedeventlist.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>
#include <utility>

namespace {

bool GoesBefore(Vrae_TimedEvent const & iA, Vrae_TimedEvent const & iB) {
  return Vrae_TimedEvent::PlaybackOrdering(iA, iB);
}

// The order of items is true both ways for some that are alike; those count as equal here.
bool GoesBefore(Vrad_DisplayItem const & iA, Vrad_DisplayItem const & iB) {
  if (!Vrad_DisplayItem::PlaybackOrdering(iA, iB)) return false;
  return iA.mTime != iB.mTime || !Vrad_DisplayItem::PlaybackOrdering(iB, iA);
}

// Exchanging the unions exchanges a long sysex with its reference: no count is touched.
void SwapTimeAndEvent(Vrae_TimedEvent & ioA, Vrae_TimedEvent & ioB) {
  std::swap(ioA.mTime, ioB.mTime);
  std::swap(ioA.mEvent.mU, ioB.mEvent.mU);
}

void Swap(Vrae_TimedEvent & ioA, Vrae_TimedEvent & ioB) {
  SwapTimeAndEvent(ioA, ioB);
  std::swap(ioA.mSourceStamp, ioB.mSourceStamp);
}

// The stamps stay where they are, as with every assignment of extended events.
void Swap(Vrad_ExtendedEvent & ioA, Vrad_ExtendedEvent & ioB) {
  SwapTimeAndEvent(ioA, ioB);
  std::swap(ioA.mExtensionKind, ioB.mExtensionKind);
  std::swap(ioA.mQuantizeDeltaValue, ioB.mQuantizeDeltaValue);
  std::swap(ioA.mQuantizeDeltaType, ioB.mQuantizeDeltaType);
  std::swap(ioA.mOrigPitch, ioB.mOrigPitch);
  std::swap(ioA.mOrigOnVelocity, ioB.mOrigOnVelocity);
  std::swap(ioA.mOrigOffVelocity, ioB.mOrigOffVelocity);
  std::swap(ioA.mOrigDurationValue, ioB.mOrigDurationValue);
  std::swap(ioA.mOrigDurationType, ioB.mOrigDurationType);
  std::swap(ioA.mMuted, ioB.mMuted);
}

void Swap(Vrad_DisplayItem & ioA, Vrad_DisplayItem & ioB) {
  std::swap(ioA.mTime, ioB.mTime);
  Swap(ioA.mNewEvent, ioB.mNewEvent);
  Swap(ioA.mOrigEvent, ioB.mOrigEvent);
  std::swap(ioA.mDisplayFlag, ioB.mDisplayFlag);
  std::swap(ioA.mDisplayValue, ioB.mDisplayValue);
}

// Exchanges [iFirst, iMiddle) with [iMiddle, iLast), block by block: each swap puts an element in
// its place for good. Gives the new border.
template <class T>
T * Rotate(T * iFirst, T * iMiddle, T * iLast) {
  T * const border = iFirst + (iLast - iMiddle);
  std::ptrdiff_t left = iMiddle - iFirst;
  std::ptrdiff_t right = iLast - iMiddle;
  while (left > 0 && right > 0) {
    std::ptrdiff_t const block = std::min(left, right);
    for (std::ptrdiff_t i = 0; i < block; ++i)
      Swap(iFirst[i], iMiddle[i]);
    iFirst += block;
    if (left <= right) {
      iMiddle += block;
      right -= block;
    } else {
      left -= block;
    }
  }
  return border;
}

template <class T>
T * FindRunEnd(T * iFirst, T * iLast) {
  T * at = iFirst + 1;
  while (at != iLast && !GoesBefore(*at, at[-1]))
    ++at;
  return at;
}

// A stretch short enough that its order can be worked out by ranks on the stack, before anything
// is moved; then each element is swapped into its place at once.
template <class T>
class Window {
public:
  static constexpr std::ptrdiff_t kMaxSize = 512;

  explicit Window(T * iFirst) : mFirst(iFirst) { mEnds[0] = 0; }

  // Runs follow each other from the window's start on.
  void AddRun(T const * iEnd) { mEnds[++mNumRuns] = static_cast<Rank>(iEnd - mFirst); }

  void Sort() {
    std::iota(mRanks, mRanks + mEnds[mNumRuns], Rank(0));
    while (mNumRuns > 1)
      MergePairs();
    Apply();
  }

private:
  typedef unsigned short Rank;

  bool IsBefore(Rank iA, Rank iB) const { return GoesBefore(mFirst[iA], mFirst[iB]); }

  void MergePairs() {
    size_t numMerged = 0;
    for (size_t run = 0; run < mNumRuns; run += 2) {
      size_t const last = std::min(run + 2, mNumRuns);
      std::merge(mSource + mEnds[run], mSource + mEnds[run + 1], mSource + mEnds[run + 1],
                 mSource + mEnds[last], mTarget + mEnds[run],
                 [this](Rank iA, Rank iB) { return IsBefore(iA, iB); });
      mEnds[++numMerged] = mEnds[last];
    }
    mNumRuns = numMerged;
    std::swap(mSource, mTarget);
  }

  // Follows each cycle of the order round.
  void Apply() {
    for (Rank start = 0; start < mEnds[mNumRuns]; ++start) {
      Rank at = start;
      while (mSource[at] != start) {
        Rank const from = mSource[at];
        Swap(mFirst[at], mFirst[from]);
        mSource[at] = at;
        at = from;
      }
      mSource[at] = at;
    }
  }

  T * mFirst;
  Rank mRanks[kMaxSize];  // in sorted order, within each run: the places the elements come from
  Rank mSpare[kMaxSize];
  Rank mEnds[kMaxSize + 1];  // of the runs; the first stands before them
  size_t mNumRuns = 0;
  Rank * mSource = mRanks;
  Rank * mTarget = mSpare;
};

template <class T>
void SortWindow(T * iFirst, T * iLast) {
  Window<T> window(iFirst);
  for (T * at = iFirst; at != iLast;) {
    at = FindRunEnd(at, iLast);
    window.AddRun(at);
  }
  window.Sort();
}

template <class T>
void MergeInWindow(T * iFirst, T * iMiddle, T * iLast) {
  Window<T> window(iFirst);
  window.AddRun(iMiddle);
  window.AddRun(iLast);
  window.Sort();
}

// Merges two neighbouring runs: drops the ends that stay where they are, cuts the longer run in
// half and the other at the same value, exchanges the inner parts, and goes on with either side.
template <class T>
void Merge(T * iFirst, T * iMiddle, T * iLast) {
  auto const before = [](T const & iA, T const & iB) { return GoesBefore(iA, iB); };
  while (iFirst != iMiddle && iMiddle != iLast) {
    iFirst = std::upper_bound(iFirst, iMiddle, *iMiddle, before);
    if (iFirst == iMiddle) return;
    iLast = std::lower_bound(iMiddle, iLast, iMiddle[-1], before);
    if (iLast - iFirst <= Window<T>::kMaxSize) return MergeInWindow(iFirst, iMiddle, iLast);

    T * leftCut = iFirst + (iMiddle - iFirst) / 2;
    T * rightCut = iMiddle + (iLast - iMiddle) / 2;
    if (iMiddle - iFirst >= iLast - iMiddle)
      rightCut = std::lower_bound(iMiddle, iLast, *leftCut, before);
    else
      leftCut = std::upper_bound(iFirst, iMiddle, *rightCut, before);
    T * const border = Rotate(leftCut, iMiddle, rightCut);
    Merge(iFirst, leftCut, border);
    iFirst = border;
    iMiddle = rightCut;
  }
}

// Finds the runs, makes short ones as long as a window, and merges each with those before it that
// are less than twice as long. So the lengths on the stack at least halve from one to the next.
template <class T>
void SortRuns(T * iFirst, T * iLast) {
  std::array<T *, 72> starts;
  size_t numRuns = 0;
  auto const mergeLast = [&](T * iEnd) {
    Merge(starts[numRuns - 2], starts[numRuns - 1], iEnd);
    --numRuns;
  };
  for (T * at = iFirst; at != iLast;) {
    T * end = FindRunEnd(at, iLast);
    if (end - at < Window<T>::kMaxSize && end != iLast) {
      end = at + std::min(Window<T>::kMaxSize, iLast - at);
      SortWindow(at, end);
    }
    starts[numRuns++] = at;
    at = end;
    while (numRuns > 1 &&
           starts[numRuns - 1] - starts[numRuns - 2] < 2 * (at - starts[numRuns - 1]))
      mergeLast(at);
  }
  while (numRuns > 1)
    mergeLast(iLast);
}

template <class TList>
void SortFrom(TList & ioList, unsigned long long iFirst) {
  if (iFirst >= ioList.size()) return;
  auto * const first = ioList.begin() + static_cast<std::ptrdiff_t>(iFirst);
  auto * const last = ioList.end();
  if (FindRunEnd(first, last) == last) return;
  if (last - first <= Window<typename TList::value_type>::kMaxSize)
    SortWindow(first, last);
  else
    SortRuns(first, last);
}

}  // namespace

void Vrad_EventListWrapper::sort(unsigned long long iFirst) {
  if (mTimedListP != nullptr)
    SortFrom(*mTimedListP, iFirst);
  else if (mExtListP != nullptr)
    SortFrom(*mExtListP, iFirst);
  else if (mDisplayItemListP != nullptr)
    SortFrom(*mDisplayItemListP, iFirst);
}
