// Numbers as they stand in streams. Not installed.
#pragma once

#include <bit>
#include <cstddef>
#include <cstring>
#include <type_traits>

/// Writes sizeof(T) bytes.
template <class T>
void Sys_StoreLittleEndian(unsigned char * oBytes, T iValue) {
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(oBytes, &iValue, sizeof(T));
  } else {
    auto const bits = static_cast<std::make_unsigned_t<T>>(iValue);
    for (size_t i = 0; i < sizeof(T); ++i)
      oBytes[i] = static_cast<unsigned char>(bits >> (8 * i));
  }
}

/// Reads sizeof(T) bytes.
template <class T>
T Sys_LoadLittleEndian(unsigned char const * iBytes) {
  T value;
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(&value, iBytes, sizeof(T));
  } else {
    unsigned long long bits = 0;
    for (size_t i = 0; i < sizeof(T); ++i)
      bits |= static_cast<unsigned long long>(iBytes[i]) << (8 * i);
    value = static_cast<T>(bits);
  }
  return value;
}
