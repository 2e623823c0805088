// The library's own texts. Not installed.
#pragma once

#include "foundation/i18n_stringtable.h"

/// Usable before any static initialiser has run, and never destroyed.
I18N_ModuleHandle Vrad_GetOwnStrings();
