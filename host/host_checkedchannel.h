// What stands on one channel of a receiver, as a stream checker sees it.
#pragma once

#include <array>
#include <map>
#include <string>

#include "host/host_checkedclip.h"

/// Follows the controllers that select parameters and set them. Data that comes while none is
/// selected goes nowhere.
class Host_ParameterState {
public:
  /// A controller of those for which `Host_IsParameterKey` holds.
  void Apply(int iController, int iValue);
  /// None is selected any more.
  void Deselect() { mIsAnySelected = false; }

  /// What this state has and the other one lacks or holds differently, as "registered parameter
  /// 0/2: data 12"; empty if there is nothing.
  std::string FindMissingFrom(Host_ParameterState const & iOther) const;

private:
  static constexpr int kUnknown = -1;

  struct Data {
    int mMSB = kUnknown, mLSB = kUnknown;
    int mSteps = 0;  // since the last MSB
  };
  struct Selection {
    int mMSB = kUnknown, mLSB = kUnknown;
    bool IsComplete() const { return mMSB != kUnknown && mLSB != kUnknown; }
  };

  static std::string NameOf(bool iIsRegistered, int iMSB, int iLSB);
  Selection const & Selected() const { return mIsRegistered ? mRegistered : mNonRegistered; }
  Data * FindSelected();

  Selection mRegistered, mNonRegistered;
  bool mIsRegistered = true;  // the kind that was selected last
  bool mIsAnySelected = false;
  std::map<int, Data> mData;  // by kind and number
};

/// The values of one channel, as far as messages have told them.
class Host_CheckedChannel {
public:
  static constexpr int kUnknown = -1;

  Host_CheckedChannel();

  /// A whole message that is no note.
  void Apply(unsigned char const * iData);

  /// "Reset all controllers", which a receiver may obey.
  void Reset();

  /// Whether the value is in force for a receiver that has obeyed resets and for one that has not.
  bool HasValue(int iKey, int iValue) const;
  /// `kUnknown` before the first; resets ignored. Of a program: its number alone.
  int GetValue(int iKey) const { return mValues[static_cast<size_t>(iKey)]; }
  /// Whether the parts that are enabled are in force; without a program number, in its controllers.
  bool HasProgram(Host_ProgramParts const & iParts) const;
  Host_ParameterState const & GetParameters() const { return mParameters; }

  /// The value that the message sets, or -1.
  static int KeyOf(unsigned char const * iData);

private:
  static int ResetValueOf(int iKey);

  std::array<int, kValueKey_End> mValues;
  std::array<bool, kValueKey_End> mMayBeReset;
  int mProgramMSB = kUnknown, mProgramLSB = kUnknown;  // as they stood when the program came
  Host_ParameterState mParameters;
};

/// Empty for one whole message, from its status byte to its last byte; else what is wrong with it.
std::string Host_FindFlawOf(unsigned char const * iData, int iLength);
