#include "vrad/vrad_init.h"

#include <atomic>
#include <stdexcept>

#include "vrad/vrad_strings.h"

namespace {

constexpr int kMaxTextLength = 1024;

// Starts at the library's own texts at whatever comes first: the initialiser below, or a call from
// another file's initialiser, whose setting the one below then leaves alone.
std::atomic<I18N_ModuleHandle> & GetModule() {
  static std::atomic<I18N_ModuleHandle> sModule(Vrad_GetOwnStrings());
  return sModule;
}

[[maybe_unused]] std::atomic<I18N_ModuleHandle> & sModuleAtLoad = GetModule();

}  // namespace

bool Vrad_Init::sIsInitialized = false;

void Vrad_Init::Init() {
  if (!sIsInitialized) sIsInitialized = true;
}

void Vrad_Init::Free() {
  sIsInitialized = false;
}

void Vrae_ResourceFailure::SignalFailure() {}
void Vrae_ResourceFailure::SignalMainMemoryFailure() {}
void Vrae_ResourceFailure::SignalRealTimeMemoryFailure() {}

I18N_ModuleHandle Vrad_GetResourceModule() {
  return GetModule().load(std::memory_order_acquire);
}

void Vrad_SetResourceModule(I18N_ModuleHandle iModule) {
  GetModule().store(iModule, std::memory_order_release);
}

std::string Vrad_LoadString(int iID) {
  I18N_ModuleHandle const module = Vrad_GetResourceModule();
  if (!module) return std::string();
  wchar_t buffer[kMaxTextLength];
  if (module->Load(iID, buffer, kMaxTextLength) == 0) {
    throw std::runtime_error("0 Length String");
  }
  return I18N_Utils::FormatL10nString(I18N_StUTF8Buffer(buffer).Get(), {});
}

void Vrad_ThrowBadData(int iID) {
  L10N_ExceptionData const data{Vrad_LoadString(iID)};
  throw Cmn_TypedException<L10N_ExceptionData>(L10N_ExceptionCode<L10N_ExceptionData>(iID), data);
}
