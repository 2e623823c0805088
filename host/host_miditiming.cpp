#include "host/host_miditiming.h"

#include "foundation/time_convert.h"

namespace {

constexpr long long kTicksPerSecond = Time_Globals::kTicksPerBeat * 2;  // at 120 beats a minute

// In two parts, so that the product with the rest stays within 64 bits. Saturates.
long long Scale(long long iNumber, long long iNumerator, long long iDenominator) {
  long long const whole = iNumber / iDenominator;
  long long const rest = iNumber % iDenominator;
  if (whole > Time_Saturating::kMax / iNumerator) return Time_Saturating::kMax;
  return Time_Saturating::Add(whole * iNumerator,
                              (2 * rest * iNumerator + iDenominator) / (2 * iDenominator));
}

}  // namespace

bool Host_IsDivision(int iDivision) {
  if (iDivision <= 0 || iDivision > 0xffff) return false;
  if (iDivision < 0x8000) return true;
  int const framesPerSecond = 0x100 - (iDivision >> 8);
  bool const isKnown = framesPerSecond == 24 || framesPerSecond == 25 || framesPerSecond == 29 ||
                       framesPerSecond == 30;
  return isKnown && (iDivision & 0xff) != 0;
}

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
  return Time_Tick(Scale(iFileTick, mNumerator, mDenominator));
}

long long Host_MidiTiming::ToFileTick(Time_Tick iTick) const {
  return Scale(iTick.AsInt64(), mDenominator, mNumerator);
}
