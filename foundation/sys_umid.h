// Identities that no two objects share.
#pragma once

#include <string>

#include "foundation/vrad_export.h"

/// A unique identifier of 16 bytes. A value: copies are equal.
class VRAD_EXPORT Sys_Umid {
public:
  static constexpr int kNumBytes = 16;

  /// Blank, which is also `NoID()`.
  Sys_Umid();

  /// A fresh one, never blank, drawn from the system's random source.
  /// Fails: `std::system_error` when the system has none. Thread: any, not the audio thread.
  static Sys_Umid Create();

  /// The reserved value for no identity: all bytes 0.
  static Sys_Umid NoID();

  /// 32 lower-case hexadecimal digits, first byte first.
  std::string AsHexString() const;

  /// `kNumBytes` bytes. Lives: as long as this object.
  unsigned char const * GetBytes() const;
  void SetBytes(unsigned char const * iBytes);

  friend bool operator==(Sys_Umid const & iLeft, Sys_Umid const & iRight) = default;

private:
  unsigned char mBytes[kNumBytes];
};
