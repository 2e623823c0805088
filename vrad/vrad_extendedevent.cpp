#include "vrad/vrad_extendedevent.h"

#include "cmn/cmn_assert.h"

namespace {

enum EExtensionKind : int { kExtension_None = 0, kExtension_Note = 1 };

// The note's values as a note of the plain kind. Unchecked: a deletion mark must pass.
Vrae_NoteWithDurationEvent MakePlainNote(Vrae_NoteWithDurationEvent const & iEvent) {
  Vrae_NoteWithDurationEvent plain;
  auto & fields = plain.mU.mNoteWithDuration;
  fields.mPitch = iEvent.GetPitch();
  fields.mOnVelocity = iEvent.GetOnVelocity();
  fields.mOffVelocity = iEvent.GetOffVelocity();
  fields.mDuration = iEvent.GetDuration().AsInt64();
  fields.mDurationType = iEvent.GetDuration().GetType();
  return plain;
}

}  // namespace

Vrad_ExtendedEvent::Vrad_ExtendedEvent(Time_Typed iTime, Vrae_Event const & iEvent)
    : Vrae_TimedEvent(iTime, iEvent) {}

Vrad_ExtendedEvent::Vrad_ExtendedEvent(Vrad_ExtendedEvent const & iOther) noexcept
    : Vrae_TimedEvent(iOther.mTime, iOther.mEvent) {
  CopyExtension(iOther);
}

Vrad_ExtendedEvent const &
Vrad_ExtendedEvent::operator=(Vrad_ExtendedEvent const & iOther) noexcept {
  CopyTimeAndEvent(iOther);
  CopyExtension(iOther);
  return *this;
}

void Vrad_ExtendedEvent::CopyTimeAndEvent(Vrad_ExtendedEvent const & iOther) noexcept {
  mTime = iOther.mTime;
  mEvent = iOther.mEvent;  // the stamp stays, on purpose
}

void Vrad_ExtendedEvent::CopyExtension(Vrad_ExtendedEvent const & iOther) noexcept {
  if (!iOther.IsNoteWithDurationExtendedEvent()) {
    mExtensionKind = kExtension_None;
    return;
  }
  mExtensionKind = kExtension_Note;
  mQuantizeDeltaValue = iOther.mQuantizeDeltaValue;
  mQuantizeDeltaType = iOther.mQuantizeDeltaType;
  mOrigPitch = iOther.mOrigPitch;
  mOrigOnVelocity = iOther.mOrigOnVelocity;
  mOrigOffVelocity = iOther.mOrigOffVelocity;
  mOrigDurationValue = iOther.mOrigDurationValue;
  mOrigDurationType = iOther.mOrigDurationType;
  mMuted = iOther.mMuted;
}

bool Vrad_ExtendedEvent::IsNoteWithDurationExtendedEvent() const {
  return mExtensionKind == kExtension_Note;
}

Vrad_NoteWithDurationExtendedEvent & Vrad_ExtendedEvent::AsNoteWithDurationExtendedEvent() {
  CMN_CHECK(IsNoteWithDurationExtendedEvent(), "IsNoteWithDurationExtendedEvent()");
  return static_cast<Vrad_NoteWithDurationExtendedEvent &>(*this);
}

Vrad_NoteWithDurationExtendedEvent const &
Vrad_ExtendedEvent::AsNoteWithDurationExtendedEvent() const {
  CMN_CHECK(IsNoteWithDurationExtendedEvent(), "IsNoteWithDurationExtendedEvent()");
  return static_cast<Vrad_NoteWithDurationExtendedEvent const &>(*this);
}

static_assert(sizeof(Vrad_NoteWithDurationExtendedEvent) == sizeof(Vrad_ExtendedEvent));

Vrad_NoteWithDurationExtendedEvent::Vrad_NoteWithDurationExtendedEvent(
    Time_Typed iTime, Vrae_NoteWithDurationEvent const & iEvent, bool iMuted)
    : Vrad_NoteWithDurationExtendedEvent(iTime, iEvent, Time_TypedLength(0, iTime.GetType()),
                                         iEvent, iMuted) {}

Vrad_NoteWithDurationExtendedEvent::Vrad_NoteWithDurationExtendedEvent(
    Time_Typed iTime, Vrae_NoteWithDurationEvent const & iEvent, Time_TypedLength const & iDelta,
    Vrae_NoteWithDurationEvent const & iOrig, bool iMuted)
    : Vrad_ExtendedEvent(iTime, iEvent) {
  mExtensionKind = kExtension_Note;
  SetQuantizeTimeDelta(iDelta);
  SetOrigEvent(iOrig);
  mMuted = iMuted;
}

Vrad_NoteWithDurationExtendedEvent::Vrad_NoteWithDurationExtendedEvent(
    Vrad_NoteWithDurationExtendedEvent const & iOther)
    : Vrad_ExtendedEvent() {
  *this = iOther;
}

Vrad_NoteWithDurationExtendedEvent const &
Vrad_NoteWithDurationExtendedEvent::operator=(Vrad_NoteWithDurationExtendedEvent const & iOther) {
  CopyTimeAndEvent(iOther);
  mExtensionKind = kExtension_Note;
  SetQuantizeTimeDelta(iOther.GetQuantizeTimeDelta());
  SetOrigEvent(iOther.GetOrigEvent());
  mMuted = iOther.mMuted;
  return *this;
}

Time_TypedLength Vrad_NoteWithDurationExtendedEvent::GetQuantizeTimeDelta() const {
  return Time_TypedLength(mQuantizeDeltaValue, mQuantizeDeltaType);
}

void Vrad_NoteWithDurationExtendedEvent::SetQuantizeTimeDelta(Time_TypedLength const & iDelta) {
  mQuantizeDeltaValue = iDelta.AsInt64();
  mQuantizeDeltaType = iDelta.GetType();
}

void Vrad_NoteWithDurationExtendedEvent::AdjustQuantizeTimeDelta(Time_TypedLength const & iLength) {
  bool const isOtherUnit = iLength.GetType() != mQuantizeDeltaType;
  if (!CMN_CHECK(!isOtherUnit, "!bFail")) return;
  SetQuantizeTimeDelta(GetQuantizeTimeDelta() + iLength);
}

void Vrad_NoteWithDurationExtendedEvent::ResetQuantizeTimeDelta(Time_EType iType) {
  SetQuantizeTimeDelta(Time_TypedLength(0, iType));
}

Vrae_NoteWithDurationEvent Vrad_NoteWithDurationExtendedEvent::GetOrigEvent() const {
  return Vrae_NoteWithDurationEvent(mOrigPitch,
                                    Time_TypedLength(mOrigDurationValue, mOrigDurationType),
                                    mOrigOnVelocity, mOrigOffVelocity);
}

void Vrad_NoteWithDurationExtendedEvent::SetOrigEvent(Vrae_NoteWithDurationEvent const & iEvent) {
  mOrigPitch = iEvent.GetPitch();
  mOrigOnVelocity = iEvent.GetOnVelocity();
  mOrigOffVelocity = iEvent.GetOffVelocity();
  mOrigDurationValue = iEvent.GetDuration().AsInt64();
  mOrigDurationType = iEvent.GetDuration().GetType();
}

bool Vrad_NoteWithDurationExtendedEvent::IsMuted() const {
  return mMuted;
}

Vrad_NoteListBase_Note::Vrad_NoteListBase_Note() = default;

Vrad_NoteListBase_Note::Vrad_NoteListBase_Note(Time_Typed iTime,
                                               Vrae_NoteWithDurationEvent const & iEvent)
    : mTime(iTime),
      mEvent(iEvent),
      mQuantizeTimeDelta(0, iTime.GetType()),
      mOrigEvent(MakePlainNote(iEvent)) {}

Vrad_NoteListBase_Note::Vrad_NoteListBase_Note(Time_Typed iTime,
                                               Vrae_NoteWithDurationEvent const & iEvent,
                                               Time_TypedLength const & iDelta,
                                               Vrae_NoteWithDurationEvent const & iOrig,
                                               bool iMuted)
    : mTime(iTime), mEvent(iEvent), mQuantizeTimeDelta(iDelta), mOrigEvent(iOrig), mMuted(iMuted) {}

Vrad_NoteListBase_Note::Vrad_NoteListBase_Note(Vrad_NoteWithDurationExtendedEvent const & iEvent)
    : mTime(iEvent.mTime),
      mQuantizeTimeDelta(iEvent.GetQuantizeTimeDelta()),
      mOrigEvent(iEvent.GetOrigEvent()),
      mMuted(iEvent.IsMuted()) {
  // Whole and unseen, so that a fractional pitch travels along.
  static_cast<Vrae_Event &>(mEvent) = iEvent.mEvent;
}

Vrad_ExtendedEventIterator::~Vrad_ExtendedEventIterator() = default;
Vrad_IRTProperties::~Vrad_IRTProperties() = default;
