#include "foundation/sys_random.h"

#include <cerrno>
#include <system_error>

#include <sys/random.h>
#include <unistd.h>

void Sys_FillRandom(unsigned char * oBytes, int iNumBytes) {
  if (getentropy(oBytes, static_cast<size_t>(iNumBytes)) == 0) return;
  throw std::system_error(errno, std::generic_category(), "no random source");
}
