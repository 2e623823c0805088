#include "host/host_blockclock.h"

#include <cstdlib>

namespace {

constexpr long long kFarOff = 50'000'000;  // a pause or a jump, not an unsteady call
constexpr long long kSteadiness = 64;      // blocks in which most of a deviation is made up for

}  // namespace

void Host_BlockClock::BeginBlock(long long iNow, int iNumSamples) noexcept {
  long long const deviation = iNow - mEnd;
  bool const isFarOff = !mIsRunning || std::llabs(deviation) > kFarOff;
  mStart = isFarOff ? iNow : mEnd + deviation / kSteadiness;
  mEnd = GetTime(iNumSamples);
  mIsRunning = true;
}

long long Host_BlockClock::GetTime(int iOffset) const noexcept {
  return mStart + static_cast<long long>(iOffset * mNanosPerSample);
}
