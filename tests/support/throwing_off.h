// For tests of how code goes on behind a throwing check.
#pragma once

#include "cmn/cmn_assert.h"

/// Throwing checks return while it lives.
class ThrowingOff {
public:
  ThrowingOff() : mFormer(Cmn_Assert::SetThrowing(false)) {}
  ~ThrowingOff() { Cmn_Assert::SetThrowing(mFormer); }
  ThrowingOff(ThrowingOff const &) = delete;
  ThrowingOff & operator=(ThrowingOff const &) = delete;

private:
  bool mFormer;
};
