#include "foundation/lumtrace_loader.h"

#include <string>

#include <windows.h>

namespace {

constexpr int kDriveLength = 3;  // "C:\"
constexpr wchar_t kPathOnDrive[] = L"Program Files\\Common Files\\LumTrace\\LumTrace.dll";

}  // namespace

void * LumTraceOpenLibrary() {
  char systemFolder[MAX_PATH];
  if (GetSystemDirectoryA(systemFolder, MAX_PATH) < kDriveLength) return nullptr;
  std::wstring const drive(systemFolder, systemFolder + kDriveLength);
  return reinterpret_cast<void *>(LoadLibraryW((drive + kPathOnDrive).c_str()));
}

void * LumTraceFindEntry(void * iLibraryP, char const * iName) {
  return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(iLibraryP), iName));
}
