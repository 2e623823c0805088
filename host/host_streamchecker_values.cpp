// Values that stand on channels: controllers, programs, bends, pressures, parameters.
#include <algorithm>
#include <functional>
#include <iterator>
#include <string>
#include <utility>

#include "host/host_streamchecker_impl.h"

namespace {

std::string NameOfKey(int iKey) {
  if (iKey < kValueKey_Bend) return "controller " + std::to_string(iKey);
  if (iKey == kValueKey_Bend) return "pitch bend";
  if (iKey == kValueKey_Program) return "program";
  if (iKey == kValueKey_MonoPressure) return "channel pressure";
  return "pressure of note " + std::to_string(iKey - kValueKey_PolyPressure);
}

bool IsPedal(int iKey) {
  return iKey == 64 || iKey == 66 || iKey == 67 || iKey == 69;
}

// What a receiver should not be left with.
bool HasRest(int iKey) {
  return IsPedal(iKey) || iKey == kValueKey_Bend || iKey >= kValueKey_MonoPressure;
}

bool IsAtRest(int iKey, int iValue) {
  constexpr int kPedalDown = 64, kBendCentre = 8192;
  if (iValue == Host_CheckedChannel::kUnknown || !HasRest(iKey)) return true;
  if (IsPedal(iKey)) return iValue < kPedalDown;
  return iValue == (iKey == kValueKey_Bend ? kBendCentre : 0);
}

std::string TextOf(int iKey, int iValue) {
  constexpr int kBendCentre = 8192;
  if (iValue == Host_CheckedChannel::kUnknown) return "not set";
  return std::to_string(iKey == kValueKey_Bend ? iValue - kBendCentre : iValue);
}

// What a clip asks for.
std::string TextOfExpected(int iKey, int iValue) {
  if (iKey != kValueKey_Program) return TextOf(iKey, iValue);
  Host_ProgramParts const parts = Host_UnpackProgram(iValue);
  std::string text = TextOf(iKey, parts.mProgram);
  if (parts.mMSB >= 0) text += ", bank MSB " + std::to_string(parts.mMSB);
  if (parts.mLSB >= 0) text += ", bank LSB " + std::to_string(parts.mLSB);
  return text;
}

// What the program's two bank controllers say is looked at with the program.
bool IsBank(int iKey) {
  return iKey == 0 || iKey == 32;
}

}  // namespace

bool Host_StreamChecker::Impl::HasValues(int iChannel, int iKey) const {
  return std::any_of(mClips.begin(), mClips.end(), [&](auto const & clipP) {
    return clipP->mChannel == iChannel && Plays(*clipP) &&
           clipP->mContents.GetValues().count(iKey) > 0;
  });
}

bool Host_StreamChecker::Impl::HasSelections(int iChannel) const {
  constexpr int kFirst = 98, kLast = 101;
  for (int key = kFirst; key <= kLast; ++key)
    if (HasValues(iChannel, key)) return true;
  return false;
}

// Whether the last value that came in is the one that counts.
bool Host_StreamChecker::Impl::IsLookedAt(int iChannel, int iKey) const {
  if (IsBank(iKey)) return !HasValues(iChannel, kValueKey_Program);
  if (!Host_IsParameterKey(iKey)) return true;
  bool const isData = Host_ParameterRank(iKey) == 2;
  return isData && !HasSelections(iChannel);
}

// All that clips have on the channel, and all that must be at rest where they have nothing.
std::vector<int> Host_StreamChecker::Impl::KeysOf(int iChannel) const {
  std::vector<int> keys = {64, 66, 67, 69, kValueKey_Bend, kValueKey_MonoPressure};
  for (int pitch = 0; pitch < 128; ++pitch)
    keys.push_back(kValueKey_PolyPressure + pitch);
  for (auto const & clipP : mClips)
    if (clipP->mChannel == iChannel && Plays(*clipP))
      for (auto const & [key, values] : clipP->mContents.GetValues())
        keys.push_back(key);
  return keys;
}

// The latest value of the channel's clips that comes in the sample or before.
Host_StreamChecker::Impl::Value const *
Host_StreamChecker::Impl::FindExpected(int iChannel, int iKey, long long iSample) const {
  Value const * foundP = nullptr;
  for (auto const & clipP : mClips) {
    if (clipP->mChannel != iChannel || !Plays(*clipP)) continue;
    Value const * const valueP = clipP->mContents.FindValue(iKey, iSample);
    if (valueP != nullptr && (foundP == nullptr || !(valueP->mTime < foundP->mTime)))
      foundP = valueP;
  }
  return foundP;
}

bool Host_StreamChecker::Impl::IsInForce(int iChannel, int iKey, Value const & iValue) const {
  Host_CheckedChannel const & receiver = mChannels[iChannel].mReceiver;
  if (iKey == kValueKey_Program) return receiver.HasProgram(Host_UnpackProgram(iValue.mValue));
  return receiver.HasValue(iKey, iValue.mValue);
}

// The same by time: what comes at the time counts for all clips, or for one alone.
Host_StreamChecker::Impl::Value const *
Host_StreamChecker::Impl::FindExpectedAt(int iChannel, int iKey, Time_Typed iTime,
                                         Clip const * iOwnP) const {
  Value const * foundP = nullptr;
  for (auto const & clipP : mClips) {
    if (clipP->mChannel != iChannel || !Plays(*clipP)) continue;
    bool const countsAtTime = iOwnP == nullptr || iOwnP == clipP.get();
    auto const values = clipP->mContents.GetValues().find(iKey);
    if (values == clipP->mContents.GetValues().end()) continue;
    Value const * valueP = clipP->mContents.FindValue(iKey, Host_SampleOf(iTime));
    Value const * const firstP = values->second.data();
    while (valueP != nullptr &&
           !(valueP->mTime < iTime || (countsAtTime && valueP->mTime == iTime)))
      valueP = valueP == firstP ? nullptr : valueP - 1;
    if (valueP != nullptr && (foundP == nullptr || !(valueP->mTime < foundP->mTime)))
      foundP = valueP;
  }
  return foundP;
}

// Whether one of the channel's clips has the value that is in force after the time, yet in the
// sample.
bool Host_StreamChecker::Impl::IsOneInForce(int iChannel, int iKey, Time_Typed iAfter,
                                            long long iSample) const {
  for (auto const & clipP : mClips) {
    if (clipP->mChannel != iChannel || !Plays(*clipP)) continue;
    auto const values = clipP->mContents.GetValues().find(iKey);
    if (values == clipP->mContents.GetValues().end()) continue;
    Value const * valueP = clipP->mContents.FindValue(iKey, iSample);
    Value const * const firstP = values->second.data();
    for (; valueP != nullptr && iAfter < valueP->mTime;
         valueP = valueP == firstP ? nullptr : valueP - 1)
      if (IsInForce(iChannel, iKey, *valueP)) return true;
  }
  return false;
}

// Whether the receiver has what it may have at a time, on the way to the end of the sample.
bool Host_StreamChecker::Impl::MayStandAt(int iChannel, int iKey, Time_Typed iTime,
                                          Clip const * iOwnP) const {
  bool const isAtRest = IsAtRest(iKey, mChannels[iChannel].mReceiver.GetValue(iKey));
  for (Clip const * const clipP : {static_cast<Clip const *>(nullptr), iOwnP}) {
    Value const * const valueP = FindExpectedAt(iChannel, iKey, iTime, clipP);
    if (valueP != nullptr ? IsInForce(iChannel, iKey, *valueP) : isAtRest) return true;
  }
  return IsOneInForce(iChannel, iKey, iTime, PositionAt(mOpenOffset));
}

std::string Host_StreamChecker::Impl::TextOfActual(int iChannel, int iKey) const {
  Host_CheckedChannel const & receiver = mChannels[iChannel].mReceiver;
  int const value = receiver.GetValue(iKey);
  bool const isSure = value == Host_CheckedChannel::kUnknown || receiver.HasValue(iKey, value);
  return TextOf(iKey, value) + (isSure ? "" : " or reset");
}

void Host_StreamChecker::Impl::CheckValue(int iChannel, int iKey) {
  if (!IsLookedAt(iChannel, iKey)) return;
  long long const sample = PositionAt(mOpenOffset);
  int const actual = mChannels[iChannel].mReceiver.GetValue(iKey);
  Value const * const valueP = FindExpected(iChannel, iKey, sample);
  if (valueP != nullptr && IsInForce(iChannel, iKey, *valueP)) return;
  if (mIsBetween && mIsPlaying && MayStandAt(iChannel, iKey, Time_Sample(sample), nullptr)) return;
  if (valueP != nullptr)
    return Blame(Host_EViolation::kValue, -1, iChannel,
                 NameOfKey(iKey) + " is " + TextOfActual(iChannel, iKey) + " instead of " +
                     TextOfExpected(iKey, valueP->mValue));
  if (!IsAtRest(iKey, actual))
    Blame(Host_EViolation::kNotAtRest, -1, iChannel,
          NameOfKey(iKey) + " is left at " + TextOf(iKey, actual) +
              ", where nothing holds it there");
  // Nothing but a message can have brought it up.
  if (!HasRest(iKey) && !mChannels[iChannel].mIsAllChanged && HasValues(iChannel, iKey))
    Blame(Host_EViolation::kValue, -1, iChannel,
          NameOfKey(iKey) + " comes to " + TextOf(iKey, actual) +
              " before the first of its values");
}

void Host_StreamChecker::Impl::CheckValues() {
  for (int number = 0; number < kNumChannels; ++number) {
    Channel const & channel = mChannels[number];
    std::vector<int> keys = channel.mTouched;
    if (channel.mIsAllChanged) std::ranges::copy(KeysOf(number), std::back_inserter(keys));
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    if (std::any_of(keys.begin(), keys.end(), IsBank) && HasValues(number, kValueKey_Program))
      keys.push_back(kValueKey_Program);
    for (int const key : keys)
      CheckValue(number, key);
    if (std::any_of(keys.begin(), keys.end(), Host_IsParameterKey)) CheckParameters(number);
  }
}

void Host_StreamChecker::Impl::CheckValuesAtStrike(Clip & ioClip, int iPitch) {
  Time_Typed time;
  if (!ioClip.mNotes.FindStrikeTime(iPitch, time)) return;
  time = std::max<Time_Typed>(time, Time_Sample(PositionAt(mOpenOffset)));
  Channel & channel = mChannels[ioClip.mChannel];
  std::vector<int> keys = channel.mTouched;
  bool const isAllNew = channel.mIsAllChanged && !std::exchange(channel.mIsAllLookedAt, true);
  if (isAllNew) std::ranges::copy(KeysOf(ioClip.mChannel), std::back_inserter(keys));
  for (int const key : keys) {
    if (Host_IsParameterKey(key) || !IsLookedAt(ioClip.mChannel, key)) continue;
    if (MayStandAt(ioClip.mChannel, key, time, &ioClip)) continue;
    Value const * const valueP = FindExpectedAt(ioClip.mChannel, key, time, nullptr);
    return Blame(Host_EViolation::kLateValue, ioClip,
                 "note " + std::to_string(iPitch) + " is struck while " + NameOfKey(key) + " is " +
                     TextOfActual(ioClip.mChannel, key) + " instead of " +
                     (valueP ? TextOfExpected(key, valueP->mValue) : "at rest"));
  }
  if (isAllNew) CheckParametersAtStrike(ioClip, iPitch, time);
}

// ---- Parameters ----

// All that the clips of a channel say of parameters by the values that are in, in order.
Host_ParameterState
Host_StreamChecker::Impl::WalkParameters(int iChannel,
                                         std::function<bool(Value const &)> const & iIsIn) const {
  ParameterEdges edges;
  for (size_t i = 0; i < mClips.size(); ++i) {
    Clip const & clip = *mClips[i];
    if (clip.mChannel != iChannel || !Plays(clip)) continue;
    for (auto const & [key, values] : clip.mContents.GetValues()) {
      if (!Host_IsParameterKey(key)) continue;
      for (Value const & value : values)
        if (iIsIn(value)) edges.push_back({value.mTime, i, key, value.mValue});
    }
  }
  Host_ParameterState state;
  ApplyParameters(edges, state);
  return state;
}

Host_ParameterState Host_StreamChecker::Impl::WalkParametersTo(int iChannel,
                                                               long long iLastSample) const {
  return WalkParameters(
      iChannel, [iLastSample](Value const & iValue) { return iValue.mSample <= iLastSample; });
}

void Host_StreamChecker::Impl::ApplyParameters(ParameterEdges & ioEdges,
                                               Host_ParameterState & ioState) {
  std::stable_sort(ioEdges.begin(), ioEdges.end(),
                   [](ParameterEdge const & iA, ParameterEdge const & iB) {
                     if (iA.mTime != iB.mTime) return iA.mTime < iB.mTime;
                     if (iA.mClip != iB.mClip) return iA.mClip < iB.mClip;
                     return Host_ParameterRank(iA.mKey) < Host_ParameterRank(iB.mKey);
                   });
  for (ParameterEdge const & edge : ioEdges)
    ioState.Apply(edge.mKey, edge.mValue);
}

void Host_StreamChecker::Impl::CheckParameters(int iChannel) {
  if (!HasSelections(iChannel)) return;
  Channel & channel = mChannels[iChannel];
  Host_ParameterState const & actual = channel.mReceiver.GetParameters();
  long long const sample = PositionAt(mOpenOffset);
  if (channel.mIsExpectedStale)
    channel.mExpected = WalkParametersTo(iChannel, sample);
  else
    ApplyParameters(channel.mParameterEdges, channel.mExpected);
  channel.mIsExpectedStale = mIsBetween;
  std::string const missing = channel.mExpected.FindMissingFrom(actual);
  if (missing.empty()) return;
  if (mIsBetween && WalkParametersTo(iChannel, sample - 1).FindMissingFrom(actual).empty()) return;
  Blame(Host_EViolation::kParameter, -1, iChannel, missing + " is not in force");
}

// What comes at the very time or later in the sample may be there or not.
void Host_StreamChecker::Impl::CheckParametersAtStrike(Clip const & iClip, int iPitch,
                                                       Time_Typed iTime) {
  int const number = iClip.mChannel;
  if (!HasSelections(number)) return;
  Host_ParameterState const & actual = mChannels[number].mReceiver.GetParameters();
  std::string const missing = WalkParameters(number, [&](Value const & iValue) {
                                return iValue.mTime < iTime;
                              }).FindMissingFrom(actual);
  if (missing.empty()) return;
  Host_ParameterState const atTime =
      WalkParameters(number, [&](Value const & iValue) { return iValue.mTime <= iTime; });
  if (atTime.FindMissingFrom(actual).empty()) return;
  if (WalkParametersTo(number, PositionAt(mOpenOffset)).FindMissingFrom(actual).empty()) return;
  Blame(Host_EViolation::kParameter, iClip,
        "note " + std::to_string(iPitch) + " is struck before " + missing + " is in force");
}
