#include "host/host_checkedchannel.h"

namespace {

enum EController : int {
  kBankMSB = 0,
  kData = 6,
  kBankLSB = 32,
  kDataLSB = 38,
  kIncrement = 96,
  kDecrement = 97,
  kNonRegisteredLSB = 98,
  kNonRegisteredMSB = 99,
  kRegisteredLSB = 100,
  kRegisteredMSB = 101
};

constexpr int kNoParameter = 127;
constexpr int kNumNumbers = 128 * 128;

bool IsIn(int iExpected, int iActual) {
  return iExpected == -1 || iExpected == iActual;
}

// The length of a message with that status; 0 if it is none, -1 for a sysex.
int LengthOf(unsigned char iStatus) {
  switch (iStatus & 0xF0) {
  case 0x80:
  case 0x90:
  case 0xA0:
  case 0xB0:
  case 0xE0:
    return 3;
  case 0xC0:
  case 0xD0:
    return 2;
  default:
    return iStatus == 0xF0 ? -1 : 0;
  }
}

}  // namespace

Host_ParameterState::Data * Host_ParameterState::FindSelected() {
  Selection const & selection = Selected();
  if (!mIsAnySelected || !selection.IsComplete()) return nullptr;
  if (selection.mMSB == kNoParameter && selection.mLSB == kNoParameter) return nullptr;
  return &mData[(mIsRegistered ? 0 : kNumNumbers) + selection.mMSB * 128 + selection.mLSB];
}

void Host_ParameterState::Apply(int iController, int iValue) {
  switch (iController) {
  case kRegisteredMSB:
  case kRegisteredLSB:
  case kNonRegisteredMSB:
  case kNonRegisteredLSB: {
    mIsRegistered = iController >= kRegisteredLSB;
    mIsAnySelected = true;
    Selection & selection = mIsRegistered ? mRegistered : mNonRegistered;
    bool const isMSB = iController == kRegisteredMSB || iController == kNonRegisteredMSB;
    (isMSB ? selection.mMSB : selection.mLSB) = iValue;
    break;
  }
  default: {
    Data * const dataP = FindSelected();
    if (dataP == nullptr) break;
    if (iController == kData) {
      dataP->mMSB = iValue;
      dataP->mSteps = 0;
    } else if (iController == kDataLSB) {
      dataP->mLSB = iValue;
    } else {
      dataP->mSteps += iController == kIncrement ? 1 : -1;
    }
  }
  }
}

std::string Host_ParameterState::NameOf(bool iIsRegistered, int iMSB, int iLSB) {
  return std::string(iIsRegistered ? "registered" : "non-registered") + " parameter " +
         std::to_string(iMSB) + "/" + std::to_string(iLSB);
}

std::string Host_ParameterState::FindMissingFrom(Host_ParameterState const & iOther) const {
  for (auto const & [number, data] : mData) {
    auto const found = iOther.mData.find(number);
    Data const other = found == iOther.mData.end() ? Data() : found->second;
    std::string const name =
        NameOf(number < kNumNumbers, number % kNumNumbers / 128, number % 128) + ": ";
    if (!IsIn(data.mMSB, other.mMSB)) return name + "data " + std::to_string(data.mMSB);
    if (!IsIn(data.mLSB, other.mLSB)) return name + "data LSB " + std::to_string(data.mLSB);
    // From an unknown value steps lead to an unknown value.
    bool const isKnown = data.mMSB != kUnknown && data.mLSB != kUnknown;
    if (isKnown && data.mSteps != other.mSteps)
      return name + std::to_string(data.mSteps) + " steps";
  }
  Selection const & selected = Selected();
  if (!mIsAnySelected || !selected.IsComplete()) return {};
  Selection const & other = iOther.Selected();
  if (iOther.mIsAnySelected && iOther.mIsRegistered == mIsRegistered &&
      other.mMSB == selected.mMSB && other.mLSB == selected.mLSB)
    return {};
  return NameOf(mIsRegistered, selected.mMSB, selected.mLSB) + " selected";
}

Host_CheckedChannel::Host_CheckedChannel() {
  mValues.fill(kUnknown);
  mMayBeReset.fill(false);
}

// `kUnknown` for what a reset leaves alone.
int Host_CheckedChannel::ResetValueOf(int iKey) {
  constexpr int kModulation = 1, kExpression = 11, kFirstPedal = 64, kLastPedal = 67, kHold2 = 69;
  constexpr int kFull = 127, kBendCentre = 8192;
  if (iKey == kExpression) return kFull;
  if (iKey == kValueKey_Bend) return kBendCentre;
  bool const goesToZero = iKey == kModulation || (iKey >= kFirstPedal && iKey <= kLastPedal) ||
                          iKey == kHold2 || iKey >= kValueKey_MonoPressure;
  return goesToZero ? 0 : kUnknown;
}

void Host_CheckedChannel::Reset() {
  for (int key = 0; key < kValueKey_End; ++key)
    if (ResetValueOf(key) != kUnknown) mMayBeReset[static_cast<size_t>(key)] = true;
  mParameters.Deselect();
}

bool Host_CheckedChannel::HasValue(int iKey, int iValue) const {
  bool const isAsIfReset = !mMayBeReset[static_cast<size_t>(iKey)] || ResetValueOf(iKey) == iValue;
  return isAsIfReset && GetValue(iKey) == iValue;
}

int Host_CheckedChannel::KeyOf(unsigned char const * iData) {
  constexpr int kNumControllers = 120;
  switch (iData[0] & 0xF0) {
  case 0xA0:
    return kValueKey_PolyPressure + iData[1];
  case 0xB0:
    return iData[1] < kNumControllers ? iData[1] : -1;  // no modes: the receiver ignores them
  case 0xC0:
    return kValueKey_Program;
  case 0xD0:
    return kValueKey_MonoPressure;
  case 0xE0:
    return kValueKey_Bend;
  default:
    return -1;
  }
}

void Host_CheckedChannel::Apply(unsigned char const * iData) {
  int const key = KeyOf(iData);
  if (key < 0) return;
  int value = iData[1];
  if (key == kValueKey_Bend)
    value = iData[1] | iData[2] << 7;
  else if (key != kValueKey_Program && key != kValueKey_MonoPressure)
    value = iData[2];
  mValues[static_cast<size_t>(key)] = value;
  mMayBeReset[static_cast<size_t>(key)] = false;
  if (Host_IsParameterKey(key)) mParameters.Apply(key, value);
  if (key == kValueKey_Program) {
    mProgramMSB = GetValue(kBankMSB);
    mProgramLSB = GetValue(kBankLSB);
  }
}

bool Host_CheckedChannel::HasProgram(Host_ProgramParts const & iParts) const {
  bool const hasNumber = iParts.mProgram != -1;
  return IsIn(iParts.mProgram, GetValue(kValueKey_Program)) &&
         IsIn(iParts.mMSB, hasNumber ? mProgramMSB : GetValue(kBankMSB)) &&
         IsIn(iParts.mLSB, hasNumber ? mProgramLSB : GetValue(kBankLSB));
}

std::string Host_FindFlawOf(unsigned char const * iData, int iLength) {
  if (iLength < 1) return "has no bytes";
  if (iData[0] < 0x80) return "begins without a status byte";
  int const length = LengthOf(iData[0]);
  if (length == 0) return "is none that a clip holds";
  bool const isSysex = length < 0;
  if (!isSysex && iLength != length)
    return "has " + std::to_string(iLength) + " bytes instead of " + std::to_string(length);
  if (isSysex && (iLength < 2 || iData[iLength - 1] != 0xF7)) return "is a sysex without its end";
  int const numData = isSysex ? iLength - 2 : iLength - 1;
  for (int i = 1; i <= numData; ++i)
    if (iData[i] >= 0x80) return "has a status byte among its data";
  return {};
}
