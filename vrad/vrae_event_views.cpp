// Constructors and accessors of the views, but for sysex. What is out of range is reported and
// stored all the same.
#include "vrad/vrae_event.h"

#include <algorithm>
#include <cstring>

#include "cmn/cmn_assert.h"

namespace {

signed char sDefaultVelocity = 80;

bool IsAtLeastOneUnit(Time_TypedLength const & iDuration) {
  return iDuration >= Time_TypedLength(1, iDuration.GetType());
}

unsigned short WithBits(int iField, int iMask, int iBits) {
  return static_cast<unsigned short>((iField & ~iMask) | (iBits & iMask));
}

}  // namespace

Vrae_NoteOnEvent::Vrae_NoteOnEvent(signed char iPitch) : Vrae_Event(kNoteOn) {
  CMN_CHECK(iPitch >= 0, "iPitch >= 0");
  mU.mNoteOn.mPitch = iPitch;
  mU.mNoteOn.mVelocity = sDefaultVelocity;
}

Vrae_NoteOnEvent::Vrae_NoteOnEvent(signed char iPitch, signed char iVelocity)
    : Vrae_Event(kNoteOn) {
  this->SetVelocity(iVelocity);
  this->SetPitch(iPitch);
}

void Vrae_NoteOnEvent::SetPitch(signed char iPitch) {
  CMN_CHECK(iPitch >= 0, "iPitch >= 0");
  mU.mNoteOn.mPitch = iPitch;
}

void Vrae_NoteOnEvent::SetVelocity(signed char iVelocity) {
  CMN_CHECK(iVelocity >= 1, "iVelocity >= 1");
  mU.mNoteOn.mVelocity = iVelocity;
}

signed char Vrae_NoteOnEvent::GetDefaultVelocity() {
  return sDefaultVelocity;
}

void Vrae_NoteOnEvent::SetDefaultVelocity(signed char iDefaultVelocity) {
  CMN_CHECK(iDefaultVelocity >= 1, "iDefaultVelocity >= 1");
  sDefaultVelocity = iDefaultVelocity;
}

Vrae_NoteOffEvent::Vrae_NoteOffEvent(signed char iPitch, signed char iVelocity)
    : Vrae_Event(kNoteOff) {
  this->SetVelocity(iVelocity);
  this->SetPitch(iPitch);
}

void Vrae_NoteOffEvent::SetPitch(signed char iPitch) {
  CMN_CHECK(iPitch >= 0, "iPitch >= 0");
  mU.mNoteOff.mPitch = iPitch;
}

void Vrae_NoteOffEvent::SetVelocity(signed char iVelocity) {
  CMN_CHECK(iVelocity >= 0, "iVelocity >= 0");
  mU.mNoteOff.mVelocity = iVelocity;
}

Vrae_NoteWithDurationBase::Vrae_NoteWithDurationBase(signed char iType)
    : Vrae_Event(static_cast<EType>(iType)) {}

Vrae_NoteWithDurationBase::Vrae_NoteWithDurationBase(signed char iPitch, Time_TypedLength iDuration,
                                                     signed char iOnVelocity,
                                                     signed char iOffVelocity, signed char iType)
    : Vrae_NoteWithDurationBase(iType) {
  this->SetPitch(iPitch);
  this->SetDuration(iDuration);
  this->SetOnVelocity(iOnVelocity);
  this->SetOffVelocity(iOffVelocity);
  CMN_CHECK(mU.mBase.mType == iType, "mU.mBase.mType == iType");
}

void Vrae_NoteWithDurationBase::SetPitch(signed char iPitch) {
  CMN_CHECK(iPitch >= 0, "iPitch >= 0");
  mU.mNoteWithDuration.mPitch = iPitch;
}

Time_TypedLength Vrae_NoteWithDurationBase::GetDuration() const {
  return Time_TypedLength(mU.mNoteWithDuration.mDuration, mU.mNoteWithDuration.mDurationType);
}

void Vrae_NoteWithDurationBase::SetDuration(Time_TypedLength iDuration) {
  CMN_CHECK(IsAtLeastOneUnit(iDuration), "iDuration >= Time_TypedLength(1, iDuration.GetType())");
  mU.mNoteWithDuration.mDuration = iDuration.AsInt64();
  mU.mNoteWithDuration.mDurationType = iDuration.GetType();
}

void Vrae_NoteWithDurationBase::SetOnVelocity(signed char iOnVelocity) {
  CMN_CHECK(iOnVelocity >= 1, "iOnVelocity >= 1");
  mU.mNoteWithDuration.mOnVelocity = iOnVelocity;
}

void Vrae_NoteWithDurationBase::SetOffVelocity(signed char iOffVelocity) {
  CMN_CHECK(iOffVelocity >= 0, "iOffVelocity >= 0");
  mU.mNoteWithDuration.mOffVelocity = iOffVelocity;
}

Vrae_NoteWithDurationEvent::Vrae_NoteWithDurationEvent()
    : Vrae_NoteWithDurationBase(kNoteWithDuration) {}

Vrae_NoteWithDurationEvent::Vrae_NoteWithDurationEvent(signed char iPitch,
                                                       Time_TypedLength iDuration,
                                                       signed char iOnVelocity,
                                                       signed char iOffVelocity)
    : Vrae_NoteWithDurationBase(iPitch, iDuration, iOnVelocity, iOffVelocity, kNoteWithDuration) {}

Vrae_AddNoteInProgressEvent::Vrae_AddNoteInProgressEvent(signed char iPitch,
                                                         Time_TypedLength iDuration,
                                                         signed char iOnVelocity,
                                                         signed char iOffVelocity)
    : Vrae_NoteWithDurationBase(iPitch, iDuration, iOnVelocity, iOffVelocity, kAddNoteInProgress) {}

Vrae_ClearNoteInProgressEvent::Vrae_ClearNoteInProgressEvent(signed char iPitch,
                                                             Time_TypedLength iDuration,
                                                             signed char iOnVelocity,
                                                             signed char iOffVelocity)
    : Vrae_NoteWithDurationBase(iPitch, iDuration, iOnVelocity, iOffVelocity,
                                kClearNoteInProgress) {}

Vrae_PitchToMIDINoteWithDuration::Vrae_PitchToMIDINoteWithDuration(signed char iPitch,
                                                                   Time_TypedLength iDuration,
                                                                   signed char iOnVelocity,
                                                                   signed char iOffVelocity,
                                                                   float iFractionalPitch)
    : Vrae_NoteWithDurationBase(iPitch, iDuration, iOnVelocity, iOffVelocity,
                                kPitchToMIDINoteWithDuration) {
  mU.mPitchToMIDINoteWithDuration.mFractionalPitch = iFractionalPitch;
}

void Vrae_PitchToMIDINoteWithDuration::SetFractionalPitch(float inFractionalPitch) {
  CMN_CHECK(inFractionalPitch >= 0, "inFractionalPitch >= 0");
  mU.mPitchToMIDINoteWithDuration.mFractionalPitch = inFractionalPitch;
}

Vrae_PitchBendEvent::Vrae_PitchBendEvent(short iBend) : Vrae_Event(kPitchBend) {
  this->SetBendValue(iBend);
}

void Vrae_PitchBendEvent::SetBendValue(short iBend) {
  CMN_CHECK(-8192 <= iBend && iBend <= 8191, "-8192 <= iBend && iBend <= 8191");
  mU.mPitchBend.mBend = iBend;
}

Vrae_ControllerEvent::Vrae_ControllerEvent(signed char iControllerNumber, signed char iValue)
    : Vrae_Event(kController) {
  this->SetControllerNumber(iControllerNumber);
  this->SetValue(iValue);
}

void Vrae_ControllerEvent::SetControllerNumber(signed char iControllerNumber) {
  CMN_CHECK(iControllerNumber >= 0, "iControllerNumber >= 0");
  CMN_CHECK(iControllerNumber < 120, "iControllerNumber < 120");
  mU.mController.mControllerNumber = iControllerNumber;
}

void Vrae_ControllerEvent::SetValue(signed char iValue) {
  CMN_CHECK(iValue >= 0, "iValue >= 0");
  mU.mController.mValue = iValue;
}

Vrae_ProgramEvent::Vrae_ProgramEvent(signed char iFullProgram, short iFullBank)
    : Vrae_Event(kProgram) {
  this->SetFullProgram(iFullProgram);
  this->SetFullBank(iFullBank);
}

signed char Vrae_ProgramEvent::GetProgram() const {
  return static_cast<signed char>(mU.mProgram.mFullProgram & 0x7f);
}

void Vrae_ProgramEvent::SetProgram(signed char iProgramNumber) {
  CMN_CHECK(iProgramNumber >= 0, "iProgramNumber >= 0");
  mU.mProgram.mFullProgram =
      static_cast<unsigned char>(WithBits(mU.mProgram.mFullProgram, 0x7f, iProgramNumber));
}

short Vrae_ProgramEvent::GetBank() const {
  return static_cast<short>(mU.mProgram.mFullBank & 0x3fff);
}

void Vrae_ProgramEvent::SetBank(short iBankNumber) {
  CMN_CHECK(iBankNumber >= 0, "iBankNumber >= 0");
  CMN_CHECK(iBankNumber < 16384, "iBankNumber < 16384");
  mU.mProgram.mFullBank = WithBits(mU.mProgram.mFullBank, 0x3fff, iBankNumber);
}

signed char Vrae_ProgramEvent::GetMSBBank() const {
  return static_cast<signed char>((mU.mProgram.mFullBank >> 7) & 0x7f);
}

void Vrae_ProgramEvent::SetMSBBank(signed char iMSBNumber) {
  CMN_CHECK(iMSBNumber >= 0, "iMSBNumber >= 0");
  mU.mProgram.mFullBank = WithBits(mU.mProgram.mFullBank, 0x3f80, iMSBNumber * 128);
}

signed char Vrae_ProgramEvent::GetLSBBank() const {
  return static_cast<signed char>(mU.mProgram.mFullBank & 0x7f);
}

void Vrae_ProgramEvent::SetLSBBank(signed char iLSBNumber) {
  CMN_CHECK(iLSBNumber >= 0, "iLSBNumber >= 0");
  mU.mProgram.mFullBank = WithBits(mU.mProgram.mFullBank, 0x7f, iLSBNumber);
}

void Vrae_ProgramEvent::SetProgramEnable(bool iEnable) {
  mU.mProgram.mFullProgram = static_cast<unsigned char>(
      WithBits(mU.mProgram.mFullProgram, kProgramDisabled, iEnable ? 0 : kProgramDisabled));
}

void Vrae_ProgramEvent::SetMSBBankEnable(bool iEnable) {
  mU.mProgram.mFullBank = WithBits(mU.mProgram.mFullBank, kMSBDisabled, iEnable ? 0 : kMSBDisabled);
}

void Vrae_ProgramEvent::SetLSBBankEnable(bool iEnable) {
  mU.mProgram.mFullBank = WithBits(mU.mProgram.mFullBank, kLSBDisabled, iEnable ? 0 : kLSBDisabled);
}

void Vrae_ProgramEvent::SetFullProgram(signed char iFullProgram) {
  mU.mProgram.mFullProgram = static_cast<unsigned char>(iFullProgram);
}

void Vrae_ProgramEvent::SetFullBank(short iFullBank) {
  mU.mProgram.mFullBank = static_cast<unsigned short>(iFullBank);
}

int Vrae_ProgramEvent::GetOMSPatchNum() const {
  unsigned const msb = this->IsMSBBankEnabled() ? static_cast<unsigned>(this->GetMSBBank()) : 0;
  unsigned const lsb = this->IsLSBBankEnabled() ? static_cast<unsigned>(this->GetLSBBank()) : 0;
  unsigned const program = static_cast<unsigned>(static_cast<int>(this->GetFullProgram()));
  return static_cast<int>(0xFF000000u | msb << 16 | lsb << 8 | program);
}

Vrae_MonoPressureEvent::Vrae_MonoPressureEvent(signed char iPressure) : Vrae_Event(kMonoPressure) {
  this->SetPressure(iPressure);
}

void Vrae_MonoPressureEvent::SetPressure(signed char iPressure) {
  CMN_CHECK(iPressure >= 0, "iPressure >= 0");
  mU.mMonoPressure.mPressure = iPressure;
}

Vrae_PolyPressureEvent::Vrae_PolyPressureEvent(signed char iPitch, signed char iPressure)
    : Vrae_Event(kPolyPressure) {
  this->SetPitch(iPitch);
  this->SetPressure(iPressure);
}

void Vrae_PolyPressureEvent::SetPitch(signed char iPitch) {
  CMN_CHECK(iPitch >= 0, "iPitch >= 0");
  mU.mPolyPressure.mPitch = iPitch;
}

void Vrae_PolyPressureEvent::SetPressure(signed char iPressure) {
  CMN_CHECK(iPressure >= 0, "iPressure >= 0");
  mU.mPolyPressure.mPressure = iPressure;
}

Vrae_SongPositionEvent::Vrae_SongPositionEvent(int iPosition) : Vrae_Event(kSongPosition) {
  this->SetPosition(iPosition);
}

void Vrae_SongPositionEvent::SetPosition(int iPosition) {
  CMN_CHECK(iPosition >= 0, "iPosition >= 0");
  CMN_CHECK(iPosition <= 0x3fff, "iPosition <= 0x3fff");
  mU.mSongPosition.mPosition = static_cast<short>(iPosition);
}

Vrae_StartEvent::Vrae_StartEvent() : Vrae_Event(kStart) {}

Vrae_ContinueEvent::Vrae_ContinueEvent() : Vrae_Event(kContinue) {}

Vrae_StopEvent::Vrae_StopEvent() : Vrae_Event(kStop) {}

Vrae_TimingClockEvent::Vrae_TimingClockEvent() : Vrae_Event(kTimingClock) {}

Vrae_ReleaseControllerEvent::Vrae_ReleaseControllerEvent(int iIndex)
    : Vrae_Event(kReleaseController) {
  this->SetIndex(iIndex);
}

void Vrae_ReleaseControllerEvent::SetIndex(int iIndex) {
  mU.mReleaseController.mIndex = iIndex;
}

Vrae_AllNotesOffEvent::Vrae_AllNotesOffEvent() : Vrae_Event(kAllNotesOff) {}

Vrae_QuarterFrameEvent::Vrae_QuarterFrameEvent(unsigned char iDataByte)
    : Vrae_Event(kQuarterFrame) {
  this->Init(iDataByte);
}

Vrae_QuarterFrameEvent::Vrae_QuarterFrameEvent(EQuarterFrameMessage iMessage, unsigned char iNibble)
    : Vrae_Event(kQuarterFrame) {
  this->Init(static_cast<unsigned char>(static_cast<unsigned>(iMessage) * 16 | iNibble));
}

void Vrae_QuarterFrameEvent::Init(unsigned char iDataByte) {
  mU.mQuarterFrame.mDataByte = iDataByte;
}

Vrae_QuarterFrameEvent::EQuarterFrameMessage Vrae_QuarterFrameEvent::GetQFMessage() const {
  return static_cast<EQuarterFrameMessage>((mU.mQuarterFrame.mDataByte >> 4) & 7);
}

unsigned char Vrae_QuarterFrameEvent::GetQFNibble() const {
  return mU.mQuarterFrame.mDataByte & 15;
}

Vrae_ClipEvent::Vrae_ClipEvent(std::string const & iRegionName, Time_TypedLength iDuration)
    : Vrae_Event(kClipEvent) {
  // The last byte stays zero, so that a longer name still ends inside the field.
  size_t const length = std::min<size_t>(iRegionName.size(), kRegionNameSize - 1);
  std::memcpy(mU.mClipEvent.mRegionName, iRegionName.data(), length);
  mU.mClipEvent.mDuration = static_cast<unsigned long long>(iDuration.AsInt64());
}

std::string Vrae_ClipEvent::GetRegionName() const {
  char const * const first = mU.mClipEvent.mRegionName;
  return std::string(first, std::find(first, first + kRegionNameSize, '\0'));
}
