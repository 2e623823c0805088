#include "vrad/vrae_timedevent.h"

#include <algorithm>

#include "foundation/time_convert.h"

namespace {

// A note starting this long after the last one of a chord no longer belongs to it.
constexpr long long kChordWindowTicks = 480000;

Time_Typed ToTypeOf(Time_Typed iTime, Time_Typed iModel) {
  if (iTime.GetType() == iModel.GetType()) return iTime;
  return Time_Typed(Time_CountInUnit(iTime, iModel.GetType()), iModel.GetType());
}

Time_Typed AfterWindow(Time_Typed iStart) {
  Time_TypedLength const window(kChordWindowTicks, Time_eType_Ticks);
  Time_Converter const * const converterP = Time_Convert::sTimeConverter;
  return converterP != nullptr ? converterP->AddLength(iStart, window) : iStart + window;
}

}  // namespace

bool Vrae_TimedEvent::IsNoteWithDurationEvent() const {
  signed char const kind = mEvent.GetType();
  return kind == Vrae_Event::kNoteWithDuration || kind == Vrae_Event::kPitchToMIDINoteWithDuration;
}

Time_TypedLength Vrae_TimedEvent::GetDuration() const {
  return IsNoteWithDurationEvent() ? mEvent.AsNoteWithDuration().GetDuration() : Time_TypedLength();
}

bool Vrae_TimedEvent::PlaybackOrdering(Vrae_TimedEvent const & iA, Vrae_TimedEvent const & iB) {
  if (iA.mTime != iB.mTime) return iA.mTime < iB.mTime;
  return iA.mEvent.GetPlaybackPriority() < iB.mEvent.GetPlaybackPriority();
}

bool operator==(Vrae_TimedEvent const & iA, Vrae_TimedEvent const & iB) {
  return iA.mTime == iB.mTime && iA.mEvent == iB.mEvent;
}

Time_Typed Vrae_TimedEventList::GetLatestNoteOff() const {
  Time_Typed latest(0, Time_eType_Samples);
  for (Vrae_TimedEvent const & event : *this) {
    // Notes with a fractional pitch are left out, unlike everywhere else.
    if (event.mEvent.GetType() != Vrae_Event::kNoteWithDuration) continue;
    Time_Typed const end = ToTypeOf(event.mTime + event.GetDuration(), latest);
    if (latest < end) latest = end;
  }
  return latest;
}

bool Vrae_Chord::CanAdd(Vrae_TimedEvent const & iNew) const {
  if (empty()) return true;
  Vrae_TimedEvent const & last = (*this)[size() - 1];
  Time_TypedLength const newLength = iNew.mEvent.AsNoteWithDuration().GetDuration();
  Time_TypedLength const lastLength = last.mEvent.AsNoteWithDuration().GetDuration();

  Time_Typed const firstEnd = std::min(iNew.mTime + newLength, last.mTime + lastLength);
  Time_TypedLength const overlap = firstEnd - std::max(iNew.mTime, last.mTime);
  if (overlap >= std::max(newLength, lastLength) * 3 / 4) return true;

  Time_Typed const limit = std::min(AfterWindow(last.mTime), last.mTime + lastLength * 0.25);
  return iNew.mTime < limit;
}

bool Vrae_Chord::InChord(Vrae_TimedEvent const & iEvent) const {
  return std::find(begin(), end(), iEvent) != end();
}

Vrae_EventReceiver::~Vrae_EventReceiver() = default;
Vrae_TimedEventReceiver::~Vrae_TimedEventReceiver() = default;
Vrae_TimedEventIterator::~Vrae_TimedEventIterator() = default;
