#include "host/host_midibars.h"

#include <algorithm>
#include <bit>

#include "foundation/time_convert.h"

namespace {

constexpr long long kWholeNote = Time_Globals::kTicksPerBeat * 4;
constexpr long long kMaxBar = 1ll << 30;  // keeps products within 64 bits

bool IsByte(int iNumber) {
  return iNumber >= 0 && iNumber <= 255;
}

}  // namespace

bool Host_IsTimeSignature(Host_TimeSignature const & iSignature) {
  return iSignature.mNumerator >= 1 && IsByte(iSignature.mNumerator) &&
         iSignature.mDenominator >= 1 && iSignature.mDenominator <= 1024 &&
         std::has_single_bit(static_cast<unsigned>(iSignature.mDenominator)) &&
         IsByte(iSignature.mClocksPerClick) && IsByte(iSignature.mThirtySecondsPerBeat);
}

Host_BarMap::Host_BarMap() : Host_BarMap(std::vector<Host_TimeSignature>()) {}

Host_BarMap::Host_BarMap(std::vector<Host_TimeSignature> const & iSignatures) {
  mStretches.push_back({0, 1, 4, kWholeNote / 4});
  for (Host_TimeSignature const & signature : iSignatures) {
    Stretch const & last = mStretches.back();
    long long const tick = signature.mTime.AsInt64();
    long long const passed = tick - last.mTick;
    long long const numBars = (passed + last.GetBarLength() - 1) / last.GetBarLength();
    Stretch const next = {tick, last.mBar + numBars, signature.mNumerator,
                          kWholeNote / signature.mDenominator};
    if (passed == 0) {
      mStretches.back() = next;
    } else {
      mStretches.push_back(next);
    }
  }
}

bool Host_BarMap::ToTick(Host_BarPosition const & iPosition, Time_Tick & oTick,
                         std::string & oWhyNot) const {
  if (iPosition.mBar < 1 || iPosition.mBar > kMaxBar) {
    oWhyNot = "bars count from 1 to " + std::to_string(kMaxBar);
    return false;
  }
  auto const after = std::upper_bound(
      mStretches.begin(), mStretches.end(), iPosition.mBar,
      [](long long iBar, Stretch const & iStretch) { return iBar < iStretch.mBar; });
  Stretch const & stretch = *(after - 1);
  if (iPosition.mBeat < 1 || iPosition.mBeat > stretch.mNumBeats) {
    oWhyNot = "bar " + std::to_string(iPosition.mBar) + " has beats 1 to " +
              std::to_string(stretch.mNumBeats);
    return false;
  }
  if (iPosition.mTick < 0 || iPosition.mTick >= stretch.mBeat) {
    oWhyNot = "a beat of bar " + std::to_string(iPosition.mBar) + " has ticks 0 to " +
              std::to_string(stretch.mBeat - 1);
    return false;
  }
  oTick = Time_Tick(stretch.mTick + (iPosition.mBar - stretch.mBar) * stretch.GetBarLength() +
                    (iPosition.mBeat - 1) * stretch.mBeat + iPosition.mTick);
  return true;
}

Host_BarPosition Host_BarMap::ToBar(Time_Tick iTick) const {
  long long const tick = iTick.AsInt64();
  auto const after = std::upper_bound(
      mStretches.begin(), mStretches.end(), tick,
      [](long long iAt, Stretch const & iStretch) { return iAt < iStretch.mTick; });
  Stretch const & stretch = *(after == mStretches.begin() ? after : after - 1);
  long long const passed = tick - stretch.mTick;
  long long const inBar = passed % stretch.GetBarLength();
  return {stretch.mBar + passed / stretch.GetBarLength(), 1 + inBar / stretch.mBeat,
          inBar % stretch.mBeat};
}
