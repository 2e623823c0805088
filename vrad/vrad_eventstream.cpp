#include "vrad/vrad_eventstream.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>
#include <tuple>
#include <vector>

#include "cmn/cmn_assert.h"
#include "vrad/vrad_sortedstore.h"

namespace {

typedef Cmn_PolyVector<Vrae_TimedEvent, 0> Events;
typedef std::vector<Vrae_TimedEvent> EventRun;

Vrae_TimedEvent const & At(Events const & iEvents, int iIndex) {
  return iEvents[static_cast<size_t>(iIndex)];
}

int SizeOf(Events const & iEvents) {
  return static_cast<int>(iEvents.size());
}

EventRun MakeRun(Events const & iEvents, Vrad_IndexRange iRange) {
  return Vrad_CopyIndices<Vrae_TimedEvent>(iEvents, iRange);
}

auto FieldsOf(Vrae_Event::PitchToMIDINoteWithDurationData const & iData) {
  return std::tuple(iData.mPitch, iData.mOnVelocity, iData.mOffVelocity, iData.mDuration,
                    iData.mDurationType, std::bit_cast<unsigned>(iData.mFractionalPitch));
}

bool AreEqual(Vrae_Event::ClipEventData const & iA, Vrae_Event::ClipEventData const & iB) {
  return iA.mDuration == iB.mDuration &&
         std::strncmp(iA.mRegionName, iB.mRegionName, Vrae_Event::kRegionNameSize) == 0;
}

// Events know no equality of the last two kinds: it throws there.
bool AreEqual(Vrae_Event const & iA, Vrae_Event const & iB) {
  int const type = iA.mU.mBase.mType;
  if (type != iB.mU.mBase.mType) return false;
  if (type == Vrae_Event::kPitchToMIDINoteWithDuration)
    return FieldsOf(iA.mU.mPitchToMIDINoteWithDuration) ==
           FieldsOf(iB.mU.mPitchToMIDINoteWithDuration);
  if (type == Vrae_Event::kClipEvent) return AreEqual(iA.mU.mClipEvent, iB.mU.mClipEvent);
  return type < Vrae_Event::kNoEvent || type > Vrae_Event::kClipEvent || iA == iB;
}

// The walk of an erasure: which events of the store are to go. Nothing is changed before it is
// over, since comparing events may throw.
class Erasure {
public:
  Erasure(Events const & iEvents, int iFirst)
      : mEvents(iEvents),
        mFirst(iFirst),
        mCursor(iFirst),
        mIsGone(static_cast<size_t>(SizeOf(iEvents) - iFirst)) {}

  /// False: the end of the store is reached.
  bool Take(Vrae_TimedEvent const & iGone) {
    while (!IsAtEnd() && At(mEvents, mCursor).mTime < iGone.mTime)
      ++mCursor;
    if (IsAtEnd()) return false;
    // The cursor stays, so that a second equal event finds the next one.
    for (int i = mCursor; i < SizeOf(mEvents) && At(mEvents, i).mTime == iGone.mTime; ++i) {
      if (IsGone(i) || !(At(mEvents, i).mEvent == iGone.mEvent)) continue;
      IsGone(i) = true;
      break;
    }
    return true;
  }

  /// What stays of the stretch walked, the events of the cursor's time included. Kind 0 is what an
  /// erased event would become, so one that stood there goes along.
  EventRun GetKept(Vrad_IndexRange & oWalked) {
    int last = mCursor;
    while (last < SizeOf(mEvents) && At(mEvents, last).mTime == At(mEvents, mCursor).mTime)
      ++last;
    oWalked = {mFirst, last};
    EventRun kept;
    for (int i = mFirst; i < last; ++i)
      if (!IsGone(i) && At(mEvents, i).mEvent.mU.mBase.mType != Vrae_Event::kNoEvent)
        kept.push_back(At(mEvents, i));
    return kept;
  }

private:
  bool IsAtEnd() const { return mCursor == SizeOf(mEvents); }
  std::vector<bool>::reference IsGone(int iIndex) {
    return mIsGone[static_cast<size_t>(iIndex - mFirst)];
  }

  Events const & mEvents;
  int const mFirst;
  int mCursor;
  std::vector<bool> mIsGone;  // from mFirst on
};

}  // namespace

Vrad_EventStream_NdoState::Vrad_EventStream_NdoState(bool iSnapToCoarseTicks,
                                                     std::shared_ptr<Events> const & iEventsP)
    : mSnapToCoarseTicks(iSnapToCoarseTicks), mEventsP(iEventsP) {}

Vrad_EventStream_NdoState::~Vrad_EventStream_NdoState() = default;

Ndo_Object * Vrad_EventStream_NdoState::NdoReCreate() {
  return new Vrad_EventStream(Ndo_Object::kNotUndoable, true);
}

Vrad_EventStream::Vrad_EventStream(Ndo_Object::EUndoFlag iUndoFlag, bool iSnapToCoarseTicks)
    : Ndo_Object(iUndoFlag),
      mEventsP(std::make_shared<Events>()),
      mSnapToCoarseTicks(iSnapToCoarseTicks) {}

Vrad_EventStream::Vrad_EventStream(Vrad_EventStream const & iOther) = default;

Vrad_EventStream::~Vrad_EventStream() = default;

Vrad_EventStream::Events & Vrad_EventStream::Unshared() {
  if (mEventsP.use_count() > 1) mEventsP = std::make_shared<Events>(*mEventsP);
  return *mEventsP;
}

void Vrad_EventStream::AddEvent(Vrae_TimedEvent const & iEvent) {
  NdoAboutToModify();
  int const index = Vrad_LowerBound(*mEventsP, iEvent.mTime);
  Events & events = Unshared();
  events.insert(events.begin() + index, iEvent);
}

void Vrad_EventStream::EraseEvent(Vrae_TimedEvent const & iEvent) {
  Events const & events = *mEventsP;
  for (int i = Vrad_LowerBound(events, iEvent.mTime);
       i < SizeOf(events) && At(events, i).mTime == iEvent.mTime; ++i) {
    if (!(At(events, i).mEvent == iEvent.mEvent)) continue;
    NdoAboutToModify();
    Vrad_EraseIndices(Unshared(), i, i + 1);
    return;
  }
}

void Vrad_EventStream::AddFromStream(Vrad_EventStream const * iSourceP, Time_Typed iStart,
                                     Time_Typed iEnd, Time_TypedLength iOffset) {
  Vrad_IndexRange const source = Vrad_FindSource(*iSourceP->mEventsP, iStart, iEnd);
  if (source.IsEmpty()) return;
  NdoAboutToModify();
  Vrad_IndexRange const region = Vrad_FindRegion(*mEventsP, iStart + iOffset, iEnd + iOffset);
  EventRun run = MakeRun(*iSourceP->mEventsP, source);
  for (Vrae_TimedEvent & event : run)
    event.mTime = Vrad_ShiftedTime(event.mTime, iOffset, mSnapToCoarseTicks);
  // What comes in stands first among equal times.
  EventRun const old = MakeRun(*mEventsP, region);
  EventRun merged;
  merged.reserve(run.size() + old.size());
  std::merge(
      run.begin(), run.end(), old.begin(), old.end(), std::back_inserter(merged),
      [](Vrae_TimedEvent const & iA, Vrae_TimedEvent const & iB) { return iA.mTime < iB.mTime; });
  Vrad_ReplaceIndices(Unshared(), region, merged);
}

void Vrad_EventStream::EraseFromStream(Vrad_EventStream const * iSourceP, Time_Typed iStart,
                                       Time_Typed iEnd, Time_TypedLength iOffset) {
  Vrad_IndexRange const range = Vrad_FindSource(*iSourceP->mEventsP, iStart, iEnd);
  if (range.IsEmpty()) return;
  NdoAboutToModify();
  EventRun source = MakeRun(*iSourceP->mEventsP, range);
  for (Vrae_TimedEvent & event : source)
    event.mTime += iOffset;
  Erasure erasure(*mEventsP, Vrad_LowerBound(*mEventsP, source.front().mTime));
  for (Vrae_TimedEvent const & event : source)
    if (!erasure.Take(event)) break;
  Vrad_IndexRange walked;
  EventRun const kept = erasure.GetKept(walked);
  if (static_cast<int>(kept.size()) < walked.mLast - walked.mFirst)
    Vrad_ReplaceIndices(Unshared(), walked, kept);
}

void Vrad_EventStream::EraseRange(Time_Typed iStart, Time_Typed iEnd) {
  Vrad_IndexRange const range = {Vrad_LowerBound(*mEventsP, iStart),
                                 Vrad_UpperBound(*mEventsP, iEnd)};
  if (range.IsEmpty()) return;
  NdoAboutToModify();
  Vrad_EraseIndices(Unshared(), range.mFirst, range.mLast);
}

void Vrad_EventStream::Clear() {
  if (mEventsP->empty()) return;
  NdoAboutToModify();
  mEventsP = std::make_shared<Events>();
}

void Vrad_EventStream::OffsetTimes(Time_TypedLength iLength) {
  if (mEventsP->empty()) return;
  Events & events = Unshared();
  Events::const_iterator const iter = events.begin();
  CMN_CHECK(iter->mTime.GetType() == Time_eType_Ticks, "iter->mTime.GetType() == Time_eType_Ticks");
  for (Vrae_TimedEvent & event : events)
    event.mTime = Vrad_ShiftedTime(event.mTime, iLength, mSnapToCoarseTicks);
}

void Vrad_EventStream::ReplaceData(Vrad_EventStream const * iSourceP) {
  NdoAboutToModify();
  mEventsP = iSourceP->mEventsP;
}

bool Vrad_EventStream::operator==(Vrad_EventStream const & iOther) const {
  return std::equal(mEventsP->begin(), mEventsP->end(), iOther.mEventsP->begin(),
                    iOther.mEventsP->end(),
                    [](Vrae_TimedEvent const & iA, Vrae_TimedEvent const & iB) {
                      return iA.mTime == iB.mTime && AreEqual(iA.mEvent, iB.mEvent);
                    });
}

Ndo_State * Vrad_EventStream::NdoGetState() {
  return new Vrad_EventStream_NdoState(mSnapToCoarseTicks, mEventsP);
}

void Vrad_EventStream::NdoRestoreState(Ndo_State * iStateP) {
  Vrad_EventStream_NdoState const * const p =
      dynamic_cast<Vrad_EventStream_NdoState const *>(iStateP);
  if (!CMN_REQUIRE_FLAGGED(p != nullptr, "p")) return;
  mSnapToCoarseTicks = p->mSnapToCoarseTicks;
  mEventsP = p->mEventsP;
}
