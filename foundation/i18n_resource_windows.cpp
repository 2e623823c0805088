#include "foundation/i18n_resource.h"

#include <windows.h>

bool I18N_HasResources() {
  return true;
}

int I18N_LoadResource(int iID, wchar_t * oBuffer, int iBufferSize) {
  HMODULE module = nullptr;
  if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                              GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                          reinterpret_cast<LPCWSTR>(&I18N_LoadResource), &module)) {
    return 0;
  }
  return LoadStringW(module, static_cast<UINT>(iID), oBuffer, iBufferSize);
}
