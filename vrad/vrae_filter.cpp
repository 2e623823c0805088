#include "vrad/vrae_filter.h"

#include <algorithm>

#include "cmn/cmn_assert.h"

namespace {

constexpr signed char kNeutralVelocity = 64;

// The flag of a data type; a bad one shares the spare flag.
int GetFlagIndex(Vrae_Filter::EDataType iType) {
  return iType >= 0 && iType < Vrae_Filter::eDataType_NumValues ? iType
                                                                : Vrae_Filter::eDataType_NumValues;
}

}  // namespace

Vrae_Filter::Vrae_Filter() {
  this->ClearAll();
}

Vrae_Filter & Vrae_Filter::SetAll() {
  std::fill(std::begin(mFlags), std::end(mFlags), true);
  mControllers.SetAll(true);
  return *this;
}

Vrae_Filter & Vrae_Filter::ClearAll() {
  std::fill(std::begin(mFlags), std::end(mFlags), false);
  mControllers.SetAll(false);
  return *this;
}

Vrae_Filter & Vrae_Filter::InvertAll() {
  for (bool & flag : mFlags)
    flag = !flag;
  mControllers.InvertAll();
  return *this;
}

Vrae_Filter & Vrae_Filter::SetDefault() {
  this->ClearAll();
  mControllers.SetAll(true);
  return this->Set(eDataType_Notes, true)
      .Set(eDataType_NoteOnVelocity, true)
      .Set(eDataType_PitchBend, true)
      .Set(eDataType_Program, true);
}

bool Vrae_Filter::Get(EDataType iType) const {
  CMN_CHECK(iType >= 0 && iType < eDataType_NumValues, "iType >= 0 && iType < eDataType_NumValues");
  return mFlags[GetFlagIndex(iType)];
}

Vrae_Filter & Vrae_Filter::Set(EDataType iType, bool iPasses) {
  CMN_CHECK(iType >= 0 && iType < eDataType_NumValues, "iType >= 0 && iType < eDataType_NumValues");
  mFlags[GetFlagIndex(iType)] = iPasses;
  return *this;
}

Vrae_Filter & Vrae_Filter::SetControllers(Cmn_BitArray<128> const & iControllers) {
  mControllers = iControllers;
  return *this;
}

bool Vrae_Filter::operator==(Vrae_Filter const & iOther) const {
  return std::equal(mFlags, mFlags + eDataType_NumValues, iOther.mFlags) &&
         mControllers == iOther.mControllers;
}

bool Vrae_Filter::FilterEvent(Vrae_Event * ioEvent) const {
  switch (ioEvent->GetType()) {
  case Vrae_Event::kNoEvent:
    return true;
  case Vrae_Event::kNoteOn:
  case Vrae_Event::kNoteOff:
  case Vrae_Event::kNoteWithDuration:
    if (!mFlags[eDataType_Notes]) return false;
    this->FilterVelocities(*ioEvent);
    return true;
  case Vrae_Event::kPitchBend:
    return mFlags[eDataType_PitchBend];
  case Vrae_Event::kController:
    return mControllers.Get(ioEvent->AsController().GetControllerNumber());
  case Vrae_Event::kProgram:
    return mFlags[eDataType_Program];
  case Vrae_Event::kMonoPressure:
    return mFlags[eDataType_MonoPressure];
  case Vrae_Event::kPolyPressure:
    return mFlags[eDataType_PolyPressure];
  case Vrae_Event::kSongPosition:
  case Vrae_Event::kStart:
  case Vrae_Event::kContinue:
  case Vrae_Event::kStop:
  case Vrae_Event::kTimingClock:
    return mFlags[eDataType_Realtime];
  case Vrae_Event::kShortSysex:
  case Vrae_Event::kLongSysex:
  case Vrae_Event::kSysexPacket:
    return mFlags[eDataType_Sysex];
  default:
    CMN_CHECK(false, "0");
    return true;
  }
}

// A note-on falls back to the default velocity, a note with duration to the neutral one, on
// purpose.
void Vrae_Filter::FilterVelocities(Vrae_Event & ioEvent) const {
  bool const keepsOn = mFlags[eDataType_NoteOnVelocity];
  bool const keepsOff = mFlags[eDataType_NoteOffVelocity];
  switch (ioEvent.GetType()) {
  case Vrae_Event::kNoteOn:
    if (!keepsOn) ioEvent.AsNoteOn().SetVelocity(Vrae_NoteOnEvent::GetDefaultVelocity());
    break;
  case Vrae_Event::kNoteOff:
    if (!keepsOff) ioEvent.AsNoteOff().SetVelocity(kNeutralVelocity);
    break;
  default:
    if (!keepsOn) ioEvent.AsNoteWithDuration().SetOnVelocity(kNeutralVelocity);
    if (!keepsOff) ioEvent.AsNoteWithDuration().SetOffVelocity(kNeutralVelocity);
    break;
  }
}

// Asked for every stream of a clip in every audio block: where type and number tell, no event is
// made. What is no valid stream takes the long way, with the checks that lie on it.
bool Vrae_Filter::FilterSubStream(Vrae_SubStream const & iSubStream) const {
  if (!iSubStream.IsNull()) {
    Vrae_SubStreamType const & type = *iSubStream.GetType();
    int const subType = iSubStream.GetSubType();
    switch (type.IsValidSubType(subType) ? type.GetTypeCode() : 0) {
    case 1:
      return mFlags[eDataType_PitchBend];
    case 2:
      return mControllers.Get(subType);
    case 3:
      return mFlags[eDataType_Program];
    case 4:
      return mFlags[eDataType_MonoPressure];
    case 5:
      return mFlags[eDataType_PolyPressure];
    }
  }
  Vrae_Event event = iSubStream.MakeEvent(iSubStream.GetValueRange().mMin);
  return this->FilterEvent(&event);
}
