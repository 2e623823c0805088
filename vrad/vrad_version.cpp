#include "vrad/vrad_version.h"

char const * Vrad_GetVersion() {
  return VRAD_VERSION;
}
