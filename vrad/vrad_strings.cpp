#include "vrad/vrad_strings.h"

#include "foundation/i18n_resource.h"

namespace {

struct OwnString {
  int mID;
  char const * mText;
};

#define VRAD_STRING(iID, iText) {iID, iText},
constexpr OwnString kOwnStrings[] = {
#include "vrad/vrad_strings.inc"
};
#undef VRAD_STRING

I18N_ModuleHandle MakeOwnStrings() {
  I18N_StringTable * const tableP = new I18N_StringTable(&I18N_LoadResource);
  if (I18N_HasResources()) return tableP;
  for (OwnString const & string : kOwnStrings)
    tableP->Set(string.mID, string.mText);
  return tableP;
}

}  // namespace

I18N_ModuleHandle Vrad_GetOwnStrings() {
  static I18N_ModuleHandle const sOwnStrings = MakeOwnStrings();
  return sOwnStrings;
}
