// Start and stop, failed resources, and the library's own texts.
#pragma once

#include <string>

#include "foundation/i18n_stringtable.h"
#include "foundation/vrad_export.h"

/// The host's start and stop calls. The library works without either.
/// Thread: the host's main thread.
class VRAD_EXPORT Vrad_Init {
public:
  static void Init();  // sets the flag, and nothing else
  static void Free();  // clears it

  static bool sIsInitialized;
};

/// Marks the places where a resource ran out and the caller goes on. Has no state; all three do
/// nothing. Thread: any, audio threads too.
class VRAD_EXPORT Vrae_ResourceFailure {
public:
  static void SignalFailure();
  static void SignalMainMemoryFailure();
  static void SignalRealTimeMemoryFailure();
};

/// Where the library's texts come from: its own table at load. The table is the host's and outlives
/// its use. Null: all texts are empty. Thread: any for reading.
VRAD_EXPORT I18N_ModuleHandle Vrad_GetResourceModule();
VRAD_EXPORT void Vrad_SetResourceModule(I18N_ModuleHandle iModule);

/// The text of that id, at most 1023 characters, UTF-8; empty without a module.
/// Fails: `std::runtime_error` "0 Length String" when the module has no such text.
VRAD_EXPORT std::string Vrad_LoadString(int iID);

/// Throws `Cmn_TypedException<L10N_ExceptionData>` with the text of that id.
/// Fails: as `Vrad_LoadString`.
[[noreturn]] VRAD_EXPORT void Vrad_ThrowBadData(int iID);
