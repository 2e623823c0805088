#include "foundation/lumtrace_loader.h"

#include <dlfcn.h>

void * LumTraceOpenLibrary() {
  return dlopen("libLumTrace.so", RTLD_NOW | RTLD_LOCAL);
}

void * LumTraceFindEntry(void * iLibraryP, char const * iName) {
  return dlsym(iLibraryP, iName);
}
