// A page of the pool: 64 granules, a bit for each, one where it is free. Not installed.
#pragma once

#include <algorithm>
#include <cstdint>

constexpr int kMem2_PageGranules = 64;
constexpr std::uint64_t kMem2_WholePage = ~0ull;

/// iNum bits from iFirst on; at least one.
constexpr std::uint64_t Mem2_GetMask(int iFirst, int iNum) {
  return (kMem2_WholePage >> (kMem2_PageGranules - iNum)) << iFirst;
}

/// The bits at which iNum or more ones begin.
constexpr std::uint64_t Mem2_GetStarts(std::uint64_t iPage, int iNum) {
  for (int have = 1; have < iNum;) {
    int const step = std::min(have, iNum - have);
    iPage &= iPage >> step;
    have += step;
  }
  return iPage;
}

/// The length of the longest run of ones.
constexpr int Mem2_GetLongestRun(std::uint64_t iPage) {
  if (iPage == kMem2_WholePage) return kMem2_PageGranules;
  int length = 0;
  for (int step = kMem2_PageGranules / 2; step > 0; step /= 2) {
    if (Mem2_GetStarts(iPage, length + step) != 0) length += step;
  }
  return length;
}
