// Equality and order of records of one kind, and the order of kinds in playback. Several rules are
// lopsided on purpose: stores and players rely on them as they are.
#include "vrad/vrae_event.h"

#include <algorithm>
#include <cstring>
#include <tuple>

#include "cmn/cmn_assert.h"
#include "vrad/vrae_sysexdatabase.h"

namespace {

auto Fields(Vrae_Event::NoteData const & iData) {
  return std::tuple(iData.mPitch, iData.mVelocity);
}

auto Fields(Vrae_Event::ControllerData const & iData) {
  return std::tuple(iData.mControllerNumber, iData.mValue);
}

auto Fields(Vrae_Event::PolyPressureData const & iData) {
  return std::tuple(iData.mPitch, iData.mPressure);
}

// The unit of the duration takes no part.
auto Fields(Vrae_Event::NoteWithDurationData const & iData) {
  return std::tuple(iData.mPitch, iData.mOnVelocity, iData.mOffVelocity, iData.mDuration);
}

size_t NumBytes(Vrae_Event::ShortSysexData const & iData) {
  return static_cast<size_t>(std::clamp<int>(iData.mLength, 0, Vrae_Event::kMaxShortSysexLength));
}

bool AreEqual(Vrae_Event::ShortSysexData const & iA, Vrae_Event::ShortSysexData const & iB) {
  return iA.mLength == iB.mLength && std::memcmp(iA.mData, iB.mData, NumBytes(iA)) == 0;
}

bool IsLess(Vrae_Event::ShortSysexData const & iA, Vrae_Event::ShortSysexData const & iB) {
  if (iA.mLength != iB.mLength) return iA.mLength < iB.mLength;
  return std::memcmp(iA.mData, iB.mData, NumBytes(iA)) < 0;
}

// One of the three parts of a program. The number of a disabled part means nothing.
struct Part {
  bool mEnabled;
  signed char mNumber;
};

struct Parts {
  explicit Parts(Vrae_ProgramEvent const & iEvent)
      : mParts{{iEvent.IsMSBBankEnabled(), iEvent.GetMSBBank()},
               {iEvent.IsLSBBankEnabled(), iEvent.GetLSBBank()},
               {iEvent.IsProgramEnabled(), iEvent.GetProgram()}} {}
  Part mParts[3];
};

bool AreEqual(Vrae_ProgramEvent const & iA, Vrae_ProgramEvent const & iB) {
  Parts const a(iA), b(iB);
  for (int i = 0; i < 3; ++i) {
    if (a.mParts[i].mEnabled != b.mParts[i].mEnabled) return false;
    if (a.mParts[i].mEnabled && a.mParts[i].mNumber != b.mParts[i].mNumber) return false;
  }
  return true;
}

// The first part that either side has enabled decides alone, even when it is equal on both.
bool IsLess(Vrae_ProgramEvent const & iA, Vrae_ProgramEvent const & iB) {
  Parts const a(iA), b(iB);
  for (int i = 0; i < 3; ++i) {
    if (a.mParts[i].mEnabled != b.mParts[i].mEnabled) return a.mParts[i].mEnabled;
    if (a.mParts[i].mEnabled) return a.mParts[i].mNumber < b.mParts[i].mNumber;
  }
  return true;
}

int GetStoredLength(Vrae_SysexDataBase const * iSysexP) {
  return iSysexP == nullptr || iSysexP->GetDataPtr() == nullptr ? 0 : iSysexP->GetLength();
}

bool IsLess(Vrae_SysexDataBase const * iAP, Vrae_SysexDataBase const * iBP) {
  if (iAP == iBP) return false;
  int const lengthA = GetStoredLength(iAP);
  int const lengthB = GetStoredLength(iBP);
  if (lengthA != lengthB) return lengthA < lengthB;
  return lengthA > 0 &&
         std::memcmp(iAP->GetDataPtr(), iBP->GetDataPtr(), static_cast<size_t>(lengthA)) < 0;
}

}  // namespace

bool Vrae_Event::operator==(Vrae_Event const & iOther) const {
  if (mU.mBase.mType != iOther.mU.mBase.mType) return false;
  switch (mU.mBase.mType) {
  case kNoEvent:
  case kStart:
  case kContinue:
  case kStop:
  case kTimingClock:
  case kAllNotesOff:
    return true;
  case kNoteOn:
  case kNoteOff:
    return Fields(mU.mNoteOn) == Fields(iOther.mU.mNoteOn);
  case kController:
    return Fields(mU.mController) == Fields(iOther.mU.mController);
  case kPolyPressure:
    return Fields(mU.mPolyPressure) == Fields(iOther.mU.mPolyPressure);
  case kNoteWithDuration:
  case kClearNoteInProgress:
  case kAddNoteInProgress:
    return Fields(mU.mNoteWithDuration) == Fields(iOther.mU.mNoteWithDuration);
  case kPitchBend:
    return mU.mPitchBend.mBend == iOther.mU.mPitchBend.mBend;
  case kSongPosition:
    return mU.mSongPosition.mPosition == iOther.mU.mSongPosition.mPosition;
  case kProgram:
    return AreEqual(this->AsProgram(), iOther.AsProgram());
  case kMonoPressure:
    return mU.mMonoPressure.mPressure == iOther.mU.mMonoPressure.mPressure;
  case kQuarterFrame:
    return mU.mQuarterFrame.mDataByte == iOther.mU.mQuarterFrame.mDataByte;
  case kShortSysex:
  case kSysexPacket:
    return AreEqual(mU.mShortSysex, iOther.mU.mShortSysex);
  case kLongSysex:
    return mU.mLongSysex.mSysexP == iOther.mU.mLongSysex.mSysexP;
  case kReleaseController:
    return mU.mReleaseController.mIndex == iOther.mU.mReleaseController.mIndex;
  default:
    CMN_REQUIRE(false, "0");
    return true;
  }
}

bool Vrae_Event::operator<(Vrae_Event const & iOther) const {
  if (mU.mBase.mType != iOther.mU.mBase.mType) return false;
  switch (mU.mBase.mType) {
  case kNoEvent:
  case kStart:
  case kContinue:
  case kStop:
  case kTimingClock:
  case kAllNotesOff:
    return true;
  case kNoteOn:
  case kNoteOff:
    return Fields(mU.mNoteOn) < Fields(iOther.mU.mNoteOn);
  case kController:
    return Fields(mU.mController) < Fields(iOther.mU.mController);
  case kPolyPressure:
    return Fields(mU.mPolyPressure) < Fields(iOther.mU.mPolyPressure);
  case kNoteWithDuration:
  case kClearNoteInProgress:
  case kAddNoteInProgress:
    return Fields(mU.mNoteWithDuration) < Fields(iOther.mU.mNoteWithDuration);
  case kPitchBend:
    return mU.mPitchBend.mBend < iOther.mU.mPitchBend.mBend;
  case kSongPosition:
    return mU.mSongPosition.mPosition < iOther.mU.mSongPosition.mPosition;
  case kProgram:
    return IsLess(this->AsProgram(), iOther.AsProgram());
  case kMonoPressure:
    return mU.mMonoPressure.mPressure < iOther.mU.mMonoPressure.mPressure;
  case kQuarterFrame:
    return mU.mQuarterFrame.mDataByte < iOther.mU.mQuarterFrame.mDataByte;
  case kShortSysex:
  case kSysexPacket:
    return IsLess(mU.mShortSysex, iOther.mU.mShortSysex);
  case kLongSysex:
    return IsLess(mU.mLongSysex.mSysexP, iOther.mU.mLongSysex.mSysexP);
  case kReleaseController:
    return mU.mReleaseController.mIndex < iOther.mU.mReleaseController.mIndex;
  default:
    CMN_REQUIRE(false, "0");
    return true;
  }
}

int Vrae_Event::GetPlaybackPriority() const {
  static constexpr int kPriorities[] = {
      0,    // no event
      100,  // note on
      90,   // note off
      100,  // note with duration
      50,   // pitch bend
      30,   // controller
      20,   // program
      50,   // mono pressure
      50,   // poly pressure
      0,    // song position
      0,    // start
      0,    // continue
      0,    // stop
      0,    // timing clock
      50,   // short sysex
      50,   // long sysex
      50,   // sysex packet
      0,    // clear note in progress
      0,    // add note in progress
      10,   // release controller
      0,    // all notes off
      0,    // quarter frame
      100,  // pitch to MIDI note with duration
      0,    // clip event
  };
  static_assert(sizeof(kPriorities) / sizeof(kPriorities[0]) == kClipEvent + 1);
  int const type = mU.mBase.mType;
  return type >= 0 && type <= kClipEvent ? kPriorities[type] : 0;
}
