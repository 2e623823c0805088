// A program of somebody who has vrad installed and nothing else of it.
#include <cstdio>
#include <cstring>

#include "vrad/vrad_version.h"

int main(int, char ** iArgs) {
  std::printf("compiled against %s, running with %s\n", VRAD_VERSION, Vrad_GetVersion());
  bool const asExpected =
      std::strcmp(VRAD_VERSION, iArgs[1]) == 0 && std::strcmp(Vrad_GetVersion(), iArgs[1]) == 0;
  return asExpected ? 0 : 1;
}
