// The MIDI messages of an event. Grammar, with channel 0 in every status byte:
//
//   note on          90 pitch velocity
//   note off         80 pitch velocity; of velocity 64: 90 pitch 00, and of no other
//   pitch bend       E0 low7 high7, of bend + 8192
//   controller       B0 number value
//   all notes off    B0 7B 00
//   program          each while enabled: B0 00 msb, B0 20 lsb, C0 program
//   mono pressure    D0 pressure
//   poly pressure    A0 pitch pressure
//   song position    F2 low7 high7
//   quarter frame    F1 data
//   start FA, continue FB, stop FC, timing clock F8
//   sysex            F0 contents F7
#include "vrad/vrae_event.h"

#include <algorithm>

#include "cmn/cmn_assert.h"
#include "vrad/vrae_sysexdatabase.h"

namespace {

constexpr int kMaxPlainMessageLength = 3;  // of every kind but sysex

// A message of at most three bytes; length 0 stands for none.
struct Message {
  int mLength;
  unsigned char mBytes[kMaxPlainMessageLength];
};

Message Make(int iStatus) {
  return {1, {static_cast<unsigned char>(iStatus), 0, 0}};
}

Message Make(int iStatus, int iData) {
  return {2, {static_cast<unsigned char>(iStatus), static_cast<unsigned char>(iData), 0}};
}

Message Make(int iStatus, int iData1, int iData2) {
  return {3,
          {static_cast<unsigned char>(iStatus), static_cast<unsigned char>(iData1),
           static_cast<unsigned char>(iData2)}};
}

// 14 bits, the lower seven first.
Message MakeWithPair(int iStatus, int iValue) {
  return Make(iStatus, iValue & 0x7f, (iValue >> 7) & 0x7f);
}

// A release velocity of exactly 64 stands for none, and goes out in the form without one.
Message MakeNoteOff(signed char iPitch, signed char iVelocity) {
  return iVelocity == 64 ? Make(0x90, iPitch, 0) : Make(0x80, iPitch, iVelocity);
}

int GetNumParts(Vrae_ProgramEvent const & iEvent) {
  return iEvent.IsMSBBankEnabled() + iEvent.IsLSBBankEnabled() + iEvent.IsProgramEnabled();
}

// A disabled part takes no number.
Message MakeProgramMessage(Vrae_ProgramEvent const & iEvent, int iMessageNumber) {
  int part = 0;
  if (iEvent.IsMSBBankEnabled() && iMessageNumber == part++)
    return Make(0xB0, 0x00, iEvent.GetMSBBank());
  if (iEvent.IsLSBBankEnabled() && iMessageNumber == part++)
    return Make(0xB0, 0x20, iEvent.GetLSBBank());
  if (iEvent.IsProgramEnabled() && iMessageNumber == part) return Make(0xC0, iEvent.GetProgram());
  CMN_CHECK(false, "0");
  return {};
}

void CheckIsFirst(int iMessageNumber) {
  CMN_CHECK(iMessageNumber == 0, "iMessageNumber == 0");
}

// Kinds with one message; none for the others.
Message MakeOnlyMessage(Vrae_Event const & iEvent) {
  switch (iEvent.GetType()) {
  case Vrae_Event::kNoEvent:
  case Vrae_Event::kNoteWithDuration:
  case Vrae_Event::kReleaseController:
    CMN_CHECK(false, "0");
    return {};
  case Vrae_Event::kNoteOn:
    return Make(0x90, iEvent.mU.mNoteOn.mPitch, iEvent.mU.mNoteOn.mVelocity);
  case Vrae_Event::kNoteOff:
    return MakeNoteOff(iEvent.mU.mNoteOff.mPitch, iEvent.mU.mNoteOff.mVelocity);
  case Vrae_Event::kPitchBend:
    return MakeWithPair(0xE0, iEvent.mU.mPitchBend.mBend + 8192);
  case Vrae_Event::kController:
    return Make(0xB0, iEvent.mU.mController.mControllerNumber, iEvent.mU.mController.mValue);
  case Vrae_Event::kAllNotesOff:
    return Make(0xB0, 0x7B, 0);
  case Vrae_Event::kMonoPressure:
    return Make(0xD0, iEvent.mU.mMonoPressure.mPressure);
  case Vrae_Event::kPolyPressure:
    return Make(0xA0, iEvent.mU.mPolyPressure.mPitch, iEvent.mU.mPolyPressure.mPressure);
  case Vrae_Event::kSongPosition:
    return MakeWithPair(0xF2, iEvent.mU.mSongPosition.mPosition);
  case Vrae_Event::kQuarterFrame:
    return Make(0xF1, iEvent.mU.mQuarterFrame.mDataByte);
  case Vrae_Event::kStart:
    return Make(0xFA);
  case Vrae_Event::kContinue:
    return Make(0xFB);
  case Vrae_Event::kStop:
    return Make(0xFC);
  case Vrae_Event::kTimingClock:
    return Make(0xF8);
  default:
    CMN_REQUIRE(false, "0");
    return {};
  }
}

// Any kind but the two sysex ones.
Message MakeMessage(Vrae_Event const & iEvent, int iMessageNumber) {
  if (iEvent.GetType() == Vrae_Event::kProgram) {
    return MakeProgramMessage(iEvent.AsProgram(), iMessageNumber);
  }
  Message const message = MakeOnlyMessage(iEvent);
  if (message.mLength > 0) CheckIsFirst(iMessageNumber);
  return message;
}

// The whole message, for both sysex kinds. An incomplete long one has fewer stored bytes than the
// frame needs when it is 0 or 1 long; nothing is written past them.
int GetSysexMessageLength(Vrae_Event const & iEvent) {
  if (iEvent.GetType() == Vrae_Event::kShortSysex) {
    return std::clamp<int>(iEvent.mU.mShortSysex.mLength, 0, Vrae_Event::kMaxShortSysexLength) + 2;
  }
  Vrae_SysexDataBase const * const sysexP = iEvent.mU.mLongSysex.mSysexP;
  return sysexP == nullptr ? 0 : std::max(sysexP->GetLength(), 0);
}

int GetContentsLength(Vrae_Event const & iEvent) {
  return std::max(GetSysexMessageLength(iEvent) - 2, 0);
}

unsigned char * AsBytes(signed char * oData) {
  return reinterpret_cast<unsigned char *>(oData);
}

void WriteSysexMessage(Vrae_Event const & iEvent, unsigned char * oData) {
  Vrae_SysexEvent const & sysex = iEvent.AsSysex();
  int const length = GetSysexMessageLength(iEvent);
  int const contentsLength = GetContentsLength(iEvent);
  if (length > 0) oData[0] = 0xF0;
  if (contentsLength > 0) sysex.GetData(oData + 1, 0, contentsLength);
  if (length > 1) oData[length - 1] = 0xF7;
}

void WritePartialSysexMessage(Vrae_Event const & iEvent, unsigned char * oData, int iByteOffset,
                              int iByteLength) {
  if (iByteLength <= 0) return;
  Vrae_SysexEvent const & sysex = iEvent.AsSysex();
  long long offset = iByteOffset;
  long long numLeft = iByteLength;
  if (offset == 0) {
    *oData++ = 0xF0;
    --numLeft;
    ++offset;
  }
  long long const index = offset - 1;
  long long const numContents =
      std::clamp<long long>(GetContentsLength(iEvent) - index, 0, numLeft);
  if (numContents > 0) {
    sysex.GetData(oData, static_cast<int>(index), static_cast<int>(index + numContents));
    oData += numContents;
    numLeft -= numContents;
  }
  if (numLeft > 0) {
    CMN_CHECK(numLeft == 1, "iByteLength == 1");
    *oData = 0xF7;
  }
}

}  // namespace

int Vrae_Event::GetNumMessages() const {
  switch (mU.mBase.mType) {
  case kNoEvent:
  case kNoteWithDuration:
  case kSysexPacket:
  case kReleaseController:
    return 0;
  case kProgram:
    return GetNumParts(this->AsProgram());
  case kLongSysex:
    return this->IsCompleteLongSysex() ? 1 : 0;
  case kNoteOn:
  case kNoteOff:
  case kPitchBend:
  case kController:
  case kMonoPressure:
  case kPolyPressure:
  case kSongPosition:
  case kStart:
  case kContinue:
  case kStop:
  case kTimingClock:
  case kShortSysex:
  case kAllNotesOff:
  case kQuarterFrame:
    return 1;
  default:
    CMN_REQUIRE(false, "0");
    return 0;
  }
}

int Vrae_Event::GetMessageLength(int iMessageNumber) const {
  if (!this->IsMessageSysex(iMessageNumber)) return MakeMessage(*this, iMessageNumber).mLength;
  CheckIsFirst(iMessageNumber);
  return GetSysexMessageLength(*this);
}

void Vrae_Event::GetMessageData(signed char * oData, int iMessageNumber) const {
  if (this->IsMessageSysex(iMessageNumber)) {
    CheckIsFirst(iMessageNumber);
    WriteSysexMessage(*this, AsBytes(oData));
    return;
  }
  Message const message = MakeMessage(*this, iMessageNumber);
  std::copy_n(message.mBytes, message.mLength, AsBytes(oData));
}

void Vrae_Event::GetPartialMessageData(signed char * oData, int iMessageNumber, int iByteOffset,
                                       int iByteLength) const {
  if (this->IsMessageSysex(iMessageNumber)) {
    CheckIsFirst(iMessageNumber);
    WritePartialSysexMessage(*this, AsBytes(oData), iByteOffset, iByteLength);
    return;
  }
  CMN_CHECK(this->GetMessageLength(iMessageNumber) <= kMaxPlainMessageLength,
            "this->GetMessageLength(iMessageNumber) <= 3");
  signed char buffer[kMaxPlainMessageLength] = {};
  this->GetMessageData(buffer, iMessageNumber);
  long long const first = std::max(iByteOffset, 0);
  long long const end = std::min<long long>(static_cast<long long>(iByteOffset) + iByteLength,
                                            kMaxPlainMessageLength);
  if (first < end) std::copy(buffer + first, buffer + end, oData + (first - iByteOffset));
}
