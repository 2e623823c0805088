// Names for a terminal: those from files, made fit for it, and those of keys.
#pragma once

#include <string>

/// Control characters and bytes that are not UTF-8 become "?"; at most iMaxChars characters stay,
/// the last of them "…" if there were more.
std::string Tool_MakePrintable(std::string const & iName, size_t iMaxChars);

/// The same bytes become "\xe9", each of them; all of the name stays. Markup is not escaped.
std::string Tool_EscapeForXML(std::string const & iName);

/// In characters, not bytes. Needs: what `Tool_MakePrintable` gives.
size_t Tool_GetNumChars(std::string const & iName);

/// As in "1 clip" and "2 clips".
std::string Tool_Plural(long long iNumber, char const * iNoun);

/// As in "E-flat major". iNumSharps -7 to 7, below 0 flats.
std::string Tool_GetKeyName(int iNumSharps, bool iIsMinor);
