// What a chunk's notes may become when they are saved once.
#pragma once

#include <algorithm>
#include <iterator>
#include <vector>

/// Whether a count may have been cut to the largest that a word holds, or to the smallest: counts
/// beyond come from differences of lengths alone, and do not come back as they were.
inline bool HasCutCounts(std::vector<unsigned char> const & iBytes) {
  static constexpr unsigned char kLargest[] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F};
  static constexpr unsigned char kSmallest[] = {0, 0, 0, 0, 0, 0, 0x80};
  auto const has = [&iBytes](auto const & iEnd) {
    return std::search(iBytes.begin(), iBytes.end(), std::begin(iEnd), std::end(iEnd)) !=
           iBytes.end();
  };
  return has(kLargest) || has(kSmallest);
}
