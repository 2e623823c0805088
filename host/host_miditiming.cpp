#include "host/host_miditiming.h"

#include "foundation/time_convert.h"

namespace {

constexpr long long kTicksPerSecond = Time_Globals::kTicksPerBeat * 2;  // at 120 beats a minute

}  // namespace

Host_MidiTiming::Host_MidiTiming(int iDivision)
    : mTicks(iDivision),
      mFramesPerSecond(0),
      mNumerator(Time_Globals::kTicksPerBeat),
      mDenominator(iDivision) {
  if (iDivision < 0x8000) return;
  mTicks = iDivision & 0xff;
  mFramesPerSecond = 0x100 - (iDivision >> 8);
  // 29 stands for 30000 frames in 1001 seconds.
  bool const isDropFrame = mFramesPerSecond == 29;
  mNumerator = kTicksPerSecond * (isDropFrame ? 1001 : 1);
  mDenominator = static_cast<long long>(isDropFrame ? 30000 : mFramesPerSecond) * mTicks;
}

Time_Tick Host_MidiTiming::ToTick(long long iFileTick) const {
  // In two parts, so that the product stays within 64 bits.
  long long const whole = iFileTick / mDenominator;
  long long const rest = iFileTick % mDenominator;
  return Time_Tick(whole * mNumerator +
                   (2 * rest * mNumerator + mDenominator) / (2 * mDenominator));
}
