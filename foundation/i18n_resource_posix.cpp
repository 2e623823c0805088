#include "foundation/i18n_resource.h"

bool I18N_HasResources() {
  return false;
}

int I18N_LoadResource(int, wchar_t *, int) {
  return 0;
}
