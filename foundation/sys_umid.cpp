#include "foundation/sys_umid.h"

#include <cstring>

#include "foundation/sys_random.h"

Sys_Umid::Sys_Umid() : mBytes{} {}

Sys_Umid Sys_Umid::Create() {
  Sys_Umid umid;
  do {
    Sys_FillRandom(umid.mBytes, kNumBytes);
  } while (umid == NoID());
  return umid;
}

Sys_Umid Sys_Umid::NoID() {
  return Sys_Umid();
}

std::string Sys_Umid::AsHexString() const {
  static char const kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(2 * kNumBytes);
  for (unsigned char const byte : mBytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

unsigned char const * Sys_Umid::GetBytes() const {
  return mBytes;
}

void Sys_Umid::SetBytes(unsigned char const * iBytes) {
  std::memcpy(mBytes, iBytes, kNumBytes);
}
