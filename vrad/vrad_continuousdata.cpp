#include "vrad/vrad_continuousdata.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <memory>
#include <vector>

#include "cmn/cmn_assert.h"
#include "vrad/vrad_sortedstore.h"

namespace {

typedef Vrad_ContinuousData_Segment Segment;
typedef std::vector<Segment> SegmentRun;

constexpr long long kNoUnit = std::numeric_limits<long long>::min();

Segment MakeSegment(Time_Typed iTime, int iValue) {
  Segment segment;
  segment.mTime = iTime;
  segment.mValue = iValue;
  return segment;
}

// Of segments at one time the first one stays.
void SortAndThin(SegmentRun & ioRun) {
  std::stable_sort(ioRun.begin(), ioRun.end(),
                   [](Segment const & iA, Segment const & iB) { return iA.mTime < iB.mTime; });
  ioRun.erase(
      std::unique(ioRun.begin(), ioRun.end(),
                  [](Segment const & iA, Segment const & iB) { return iA.mTime == iB.mTime; }),
      ioRun.end());
}

}  // namespace

Vrad_ContinuousData_OutputIter::~Vrad_ContinuousData_OutputIter() = default;

Vrad_ContinuousData_NdoState::Vrad_ContinuousData_NdoState(Vrad_ContinuousData const & iData)
    : mSnapToCoarseTicks(iData.mSnapToCoarseTicks), mSegments(iData.mSegments) {}

Vrad_ContinuousData_NdoState::~Vrad_ContinuousData_NdoState() = default;

Ndo_Object * Vrad_ContinuousData_NdoState::NdoReCreate() {
  return new Vrad_ContinuousData(Ndo_Object::kNotUndoable, true);
}

Vrad_ContinuousData::Vrad_ContinuousData(Ndo_Object::EUndoFlag iUndoFlag, bool iSnapToCoarseTicks)
    : Ndo_Object(iUndoFlag),
      mSortedUnit(kNoUnit),
      mSnapToCoarseTicks(iSnapToCoarseTicks),
      mFirstCount(0),
      mLastCount(0),
      mGapShift(0),
      mGap(0),
      mSegments(Vrad_TimeDigest<Segment>::Get()) {}

Vrad_ContinuousData::~Vrad_ContinuousData() = default;

// During an edit the outline is off, and stays so if the edit fails half way.
void Vrad_ContinuousData::BeginEdit() {
  mSortedUnit = kNoUnit;
}

void Vrad_ContinuousData::EndEdit() {
  Cmn_ChunkyVecSummary const all = mSegments.GetImpl().Summarise();
  mFirstCount = all.mFirst;
  mLastCount = all.mLast;
  for (Time_EType const unit : {Time_eType_Samples, Time_eType_Ticks})
    if (all.mNum > 0 && Vrad_IsSortedInUnit(all, unit)) mSortedUnit = unit;
  ResetGap();
}

// The least shift with which every place, and the one behind it, fits into half a word.
void Vrad_ContinuousData::ResetGap() {
  unsigned long long const span =
      static_cast<unsigned long long>(mLastCount) - static_cast<unsigned long long>(mFirstCount);
  mGapShift = std::max(0, static_cast<int>(std::bit_width(span)) - 31);
  mGap.store(0, std::memory_order_relaxed);
}

// Only whole steps belong to the gap.
void Vrad_ContinuousData::RememberGap(long long iCountBefore, long long iCountBehind) const {
  unsigned long long const first = GapPlaceOf(iCountBefore) + 1;
  unsigned long long const last = GapPlaceOf(iCountBehind);
  mGap.store(first | last << 32, std::memory_order_relaxed);
}

void Vrad_ContinuousData::SetSegments(Segments const & iSegments) {
  BeginEdit();
  mSegments.Assign(iSegments);
  EndEdit();
}

void Vrad_ContinuousData::AddValue(Time_Typed iTime, int iValue) {
  NdoAboutToModify();
  if (IsSortedIn(iTime.GetType()) && iTime.AsInt64() > mLastCount) {
    mSegments.PushBack(MakeSegment(iTime, iValue));
    mLastCount = iTime.AsInt64();
    ResetGap();
    return;
  }
  Segments const & segments = mSegments;
  int const index = Vrad_LowerBound(segments, iTime);
  BeginEdit();
  if (index < segments.Size() && segments[index].mTime == iTime)
    mSegments.Replace(index, MakeSegment(segments[index].mTime, iValue));
  else
    mSegments.Insert(mSegments.Begin() + index, MakeSegment(iTime, iValue));
  EndEdit();
}

void Vrad_ContinuousData::AddFromData(Vrad_ContinuousData const * iSourceP, Time_Typed iStart,
                                      Time_Typed iEnd, Time_TypedLength iOffset) {
  Vrad_IndexRange const source = Vrad_FindSource(iSourceP->mSegments, iStart, iEnd);
  if (source.IsEmpty()) return;
  NdoAboutToModify();
  Vrad_IndexRange const region = Vrad_FindRegion(mSegments, iStart + iOffset, iEnd + iOffset);
  SegmentRun run = Vrad_CopyIndices<Segment>(iSourceP->mSegments, source);
  for (Segment & segment : run)
    segment.mTime = Vrad_ShiftedTime(segment.mTime, iOffset, mSnapToCoarseTicks);
  // Put in front, so that in the stable sort the source wins.
  Segments const & segments = mSegments;
  run.insert(run.end(), segments.begin() + region.mFirst, segments.begin() + region.mLast);
  SortAndThin(run);
  BeginEdit();
  Vrad_ReplaceIndices(mSegments, region, run);
  EndEdit();
}

void Vrad_ContinuousData::EraseFromData(Vrad_ContinuousData const * iSourceP, Time_Typed iStart,
                                        Time_Typed iEnd, Time_TypedLength iOffset) {
  Vrad_IndexRange const range = Vrad_FindSource(iSourceP->mSegments, iStart, iEnd);
  if (range.IsEmpty()) return;
  NdoAboutToModify();
  SegmentRun source = Vrad_CopyIndices<Segment>(iSourceP->mSegments, range);
  for (Segment & segment : source)
    segment.mTime += iOffset;

  Segments const & segments = mSegments;
  int const first = Vrad_LowerBound(segments, source.front().mTime);
  auto next = segments.begin() + first;
  SegmentRun kept;
  for (auto gone = source.begin(); gone != source.end() && next != segments.end();) {
    bool const isLater = gone->mTime < next->mTime;
    if (isLater) {
      ++gone;
      continue;
    }
    bool const isSameTime = next->mTime == gone->mTime;
    if (!isSameTime || next->mValue != gone->mValue) kept.push_back(*next);
    if (isSameTime) ++gone;
    ++next;
  }
  Vrad_IndexRange const walked = {first, next.GetIndex()};
  if (static_cast<int>(kept.size()) == walked.mLast - walked.mFirst) return;
  BeginEdit();
  Vrad_ReplaceIndices(mSegments, walked, kept);
  EndEdit();
}

void Vrad_ContinuousData::EraseRange(Time_Typed iStart, Time_Typed iEnd) {
  Vrad_IndexRange const range = {Vrad_LowerBound(mSegments, iStart),
                                 Vrad_LowerBound(mSegments, iEnd)};
  if (range.IsEmpty()) return;
  NdoAboutToModify();
  BeginEdit();
  Vrad_EraseIndices(mSegments, range.mFirst, range.mLast);
  EndEdit();
}

bool Vrad_ContinuousData::GetLastValueChangeBeforeTime(Time_Typed * oTimeP, int * oValueP,
                                                       Time_Typed iTime) const {
  Segment const * lastP = nullptr;
  if (IsSortedIn(iTime.GetType())) {
    lastP = reinterpret_cast<Segment const *>(mSegments.GetImpl().FindLastBefore(iTime.AsInt64()));
  } else if (int const index = Vrad_LowerBound(mSegments, iTime)) {
    lastP = &mSegments[index - 1];
  }
  if (lastP == nullptr) return false;
  *oTimeP = lastP->mTime;
  *oValueP = lastP->mValue;
  return true;
}

int Vrad_ContinuousData::GetValueAtTime(Time_Typed iTime) const {
  int const index = Vrad_UpperBound(mSegments, iTime);
  if (!CMN_REQUIRE(index != 0, "i != mSegments.begin()")) return 0;
  return mSegments[index - 1].mValue;
}

void Vrad_ContinuousData::ForEachInRange(Vrad_ContinuousData_OutputIter * iOutputP,
                                         Time_Typed iStart, Time_Typed iEnd) const {
  if (IsSurelyEmptyInRange(iStart, iEnd)) return;
  Segment const * segments;
  int index;
  int num = FindSpanFrom(iStart, &segments, &index);
  Segment const * formerP = nullptr;
  for (; num > 0; num = mSegments.GetSpan(index, &segments)) {
    for (int i = 0; i < num; ++i) {
      if (!(segments[i].mTime < iEnd)) {
        if (mSortedUnit == kNoUnit || index + i == 0) return;
        if (formerP == nullptr) formerP = &mSegments[index + i - 1];
        RememberGap(formerP->mTime.AsInt64(), segments[i].mTime.AsInt64());
        return;
      }
      (*iOutputP)(segments[i].mTime, segments[i].mValue);
      formerP = &segments[i];
    }
    index += num;
  }
}

// The segments side by side from the first that is not earlier than a time.
int Vrad_ContinuousData::FindSpanFrom(Time_Typed iTime, Segment const ** oFirst,
                                      int * oIndex) const {
  if (!IsSortedIn(iTime.GetType())) {
    *oIndex = Vrad_LowerBound(mSegments, iTime);
    return mSegments.GetSpan(*oIndex, oFirst);
  }
  char const * first;
  int const num = mSegments.GetImpl().FindSpanFrom(iTime.AsInt64(), &first, oIndex);
  *oFirst = reinterpret_cast<Segment const *>(first);
  return num;
}

void Vrad_ContinuousData::OffsetTimes(Time_TypedLength iLength) {
  if (IsEmpty()) return;
  auto const iter = Segments::const_iterator(mSegments.Begin());
  CMN_CHECK(iter->mTime.GetType() == Time_eType_Ticks, "iter->mTime.GetType() == Time_eType_Ticks");
  BeginEdit();
  for (int index = 0; index < mSegments.Size();) {
    Segment * segments;
    int const num = mSegments.GetWritableSpan(index, &segments);
    for (int i = 0; i < num; ++i)
      segments[i].mTime = Vrad_ShiftedTime(segments[i].mTime, iLength, mSnapToCoarseTicks);
    index += num;
  }
  EndEdit();
}

void Vrad_ContinuousData::Clear() {
  if (IsEmpty()) return;
  NdoAboutToModify();
  mSegments.Clear();
  mSortedUnit = kNoUnit;
}

void Vrad_ContinuousData::ReplaceData(Vrad_ContinuousData const * iSourceP) {
  NdoAboutToModify();
  TakeContents(*iSourceP);
}

void Vrad_ContinuousData::TakeContents(Vrad_ContinuousData const & iSource) {
  mSnapToCoarseTicks = iSource.mSnapToCoarseTicks;
  SetSegments(iSource.mSegments);
}

Ndo_State * Vrad_ContinuousData::NdoGetState() {
  return new Vrad_ContinuousData_NdoState(*this);
}

void Vrad_ContinuousData::NdoRestoreState(Ndo_State * iStateP) {
  Vrad_ContinuousData_NdoState const * const p =
      dynamic_cast<Vrad_ContinuousData_NdoState const *>(iStateP);
  if (!CMN_REQUIRE_FLAGGED(p != nullptr, "p != 0")) return;
  mSnapToCoarseTicks = p->mSnapToCoarseTicks;
  SetSegments(p->mSegments);
}
