#include "foundation/sys_random.h"

#include <system_error>

#include <windows.h>

#include <ntsecapi.h>

void Sys_FillRandom(unsigned char * oBytes, int iNumBytes) {
  if (RtlGenRandom(oBytes, static_cast<ULONG>(iNumBytes))) return;
  throw std::system_error(std::make_error_code(std::errc::io_error), "no random source");
}
