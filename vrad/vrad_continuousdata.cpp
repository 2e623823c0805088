#include "vrad/vrad_continuousdata.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "cmn/cmn_assert.h"
#include "vrad/vrad_sortedstore.h"

namespace {

typedef Vrad_ContinuousData_Segment Segment;
typedef std::vector<Segment> SegmentRun;

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
      mSnapToCoarseTicks(iSnapToCoarseTicks),
      mSegments(Vrad_TimeDigest<Segment>::Get()) {}

Vrad_ContinuousData::~Vrad_ContinuousData() = default;

void Vrad_ContinuousData::AddValue(Time_Typed iTime, int iValue) {
  NdoAboutToModify();
  Segments const & segments = mSegments;
  int const index = Vrad_LowerBound(segments, iTime);
  if (index < segments.Size() && segments[index].mTime == iTime)
    mSegments.Replace(index, MakeSegment(segments[index].mTime, iValue));
  else
    mSegments.Insert(mSegments.Begin() + index, MakeSegment(iTime, iValue));
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
  Vrad_ReplaceIndices(mSegments, region, run);
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
  if (static_cast<int>(kept.size()) < walked.mLast - walked.mFirst)
    Vrad_ReplaceIndices(mSegments, walked, kept);
}

void Vrad_ContinuousData::EraseRange(Time_Typed iStart, Time_Typed iEnd) {
  Vrad_IndexRange const range = {Vrad_LowerBound(mSegments, iStart),
                                 Vrad_LowerBound(mSegments, iEnd)};
  if (range.IsEmpty()) return;
  NdoAboutToModify();
  Vrad_EraseIndices(mSegments, range.mFirst, range.mLast);
}

bool Vrad_ContinuousData::GetLastValueChangeBeforeTime(Time_Typed * oTimeP, int * oValueP,
                                                       Time_Typed iTime) const {
  int const index = Vrad_LowerBound(mSegments, iTime);
  if (index == 0) return false;
  Segment const & last = mSegments[index - 1];
  *oTimeP = last.mTime;
  *oValueP = last.mValue;
  return true;
}

int Vrad_ContinuousData::GetValueAtTime(Time_Typed iTime) const {
  int const index = Vrad_UpperBound(mSegments, iTime);
  if (!CMN_REQUIRE(index != 0, "i != mSegments.begin()")) return 0;
  return mSegments[index - 1].mValue;
}

bool Vrad_ContinuousData::IsSurelyEmptyInRange(Time_Typed iStart, Time_Typed iEnd) const {
  if (IsEmpty()) return true;
  Cmn_ChunkyVecSummary const all = mSegments.GetImpl().Summarise();
  if (iStart.GetType() != iEnd.GetType() || !Vrad_IsSortedInUnit(all, iStart.GetType()))
    return false;
  return all.mLast < iStart.AsInt64() || all.mFirst >= iEnd.AsInt64();
}

void Vrad_ContinuousData::ForEachInRange(Vrad_ContinuousData_OutputIter * iOutputP,
                                         Time_Typed iStart, Time_Typed iEnd) const {
  if (IsSurelyEmptyInRange(iStart, iEnd)) return;
  for (int index = Vrad_LowerBound(mSegments, iStart); index < mSegments.Size();) {
    Segment const * segments;
    int const num = mSegments.GetSpan(index, &segments);
    for (int i = 0; i < num; ++i) {
      if (!(segments[i].mTime < iEnd)) return;
      (*iOutputP)(segments[i].mTime, segments[i].mValue);
    }
    index += num;
  }
}

void Vrad_ContinuousData::OffsetTimes(Time_TypedLength iLength) {
  if (IsEmpty()) return;
  auto const iter = Segments::const_iterator(mSegments.Begin());
  CMN_CHECK(iter->mTime.GetType() == Time_eType_Ticks, "iter->mTime.GetType() == Time_eType_Ticks");
  for (int index = 0; index < mSegments.Size();) {
    Segment * segments;
    int const num = mSegments.GetWritableSpan(index, &segments);
    for (int i = 0; i < num; ++i)
      segments[i].mTime = Vrad_ShiftedTime(segments[i].mTime, iLength, mSnapToCoarseTicks);
    index += num;
  }
  mSegments.Settle();
}

void Vrad_ContinuousData::Clear() {
  if (IsEmpty()) return;
  NdoAboutToModify();
  mSegments.Clear();
}

void Vrad_ContinuousData::ReplaceData(Vrad_ContinuousData const * iSourceP) {
  NdoAboutToModify();
  TakeContents(*iSourceP);
}

void Vrad_ContinuousData::TakeContents(Vrad_ContinuousData const & iSource) {
  mSnapToCoarseTicks = iSource.mSnapToCoarseTicks;
  mSegments.Assign(iSource.mSegments);
}

Ndo_State * Vrad_ContinuousData::NdoGetState() {
  return new Vrad_ContinuousData_NdoState(*this);
}

void Vrad_ContinuousData::NdoRestoreState(Ndo_State * iStateP) {
  Vrad_ContinuousData_NdoState const * const p =
      dynamic_cast<Vrad_ContinuousData_NdoState const *>(iStateP);
  if (!CMN_REQUIRE_FLAGGED(p != nullptr, "p != 0")) return;
  mSnapToCoarseTicks = p->mSnapToCoarseTicks;
  mSegments.Assign(p->mSegments);
}
