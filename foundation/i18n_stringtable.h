// Texts by number, and what turns them into messages.
#pragma once

#include <string>
#include <vector>

#include "cmn/cmn_exception.h"
#include "foundation/vrad_export.h"

/// Texts by id. Thread: any for reading; the owner's, and nobody reading, for `Set`.
class VRAD_EXPORT I18N_StringTable {
public:
  /// Where a table gets a text from that was not set: fills `oBuffer` as `Load` does.
  typedef int (*Source)(int iID, wchar_t * oBuffer, int iBufferSize);

  /// An empty table.
  I18N_StringTable();

  /// A table that asks `iSource` for what it lacks.
  explicit I18N_StringTable(Source iSource);

  I18N_StringTable(I18N_StringTable const &) = delete;
  I18N_StringTable & operator=(I18N_StringTable const &) = delete;
  ~I18N_StringTable();

  /// Adds or replaces a text. Malformed UTF-8 becomes U+FFFD.
  void Set(int iID, std::string const & iUTF8);

  /// Copies the text, as much as fits, and ends it with a zero. `iBufferSize` is in characters, the
  /// zero included. Gives the characters copied without it; 0 if the text is absent or empty.
  int Load(int iID, wchar_t * oBuffer, int iBufferSize) const;

private:
  struct Texts;
  Texts * mTextsP;  // owned
  Source mSource;   // null: none
};

/// What stands for a module's resources. Null: none.
typedef I18N_StringTable const * I18N_ModuleHandle;

/// A wide text in UTF-8. What is no character becomes U+FFFD.
class VRAD_EXPORT I18N_StUTF8Buffer {
public:
  /// Up to the zero.
  explicit I18N_StUTF8Buffer(wchar_t const * iText);

  /// Lives: as long as this object.
  char const * Get() const;

private:
  std::string mUTF8;
};

class VRAD_EXPORT I18N_Utils {
public:
  /// Puts the arguments in the place of "%1" to "%9". A place without an argument stays as it is,
  /// and so does every other percent sign. UTF-8.
  static std::string FormatL10nString(std::string const & iText,
                                      std::vector<std::string> const & iArguments);
};
