// The bytes of one fuzz run, taken one by one as the choices of a script.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// Reads zeros past its end, so that a script may ask before it looks.
class FuzzInput {
public:
  FuzzInput(std::uint8_t const * iBytes, size_t iSize) : mNextP(iBytes), mEndP(iBytes + iSize) {}

  bool IsMore() const { return mNextP != mEndP; }
  int Take() { return IsMore() ? *mNextP++ : 0; }
  /// 0 to iNum - 1.
  int Take(int iNum) { return Take() % iNum; }
  bool TakeBool() { return (Take() & 1) != 0; }

private:
  std::uint8_t const * mNextP;
  std::uint8_t const * mEndP;
};

/// Ends the run as a find.
[[noreturn]] inline void FuzzFail(char const * iWhat) {
  std::fprintf(stderr, "fuzz: %s\n", iWhat);
  std::abort();
}

inline void FuzzExpect(bool iHolds, char const * iWhat) {
  if (!iHolds) FuzzFail(iWhat);
}
