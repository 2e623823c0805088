#include "tools/vrad/tool_names.h"

#include <vector>

#include <fmt/format.h>

namespace {

// The length of the UTF-8 character at iAt, 0 if none stands there or it is a control character or
// no character at all.
size_t GetCharLength(std::string const & iText, size_t iAt) {
  auto const byte = [&](size_t i) { return static_cast<unsigned char>(iText[iAt + i]); };
  unsigned const first = byte(0);
  if (first < 0x80) return first < 0x20 || first == 0x7f ? 0 : 1;
  if (first < 0xc2 || first > 0xf4) return 0;
  size_t const length = first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
  if (iText.size() - iAt < length) return 0;
  unsigned code = first & (0x7fu >> length);
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xc0) != 0x80) return 0;
    code = code << 6 | (byte(i) & 0x3fu);
  }
  constexpr unsigned kLeast[] = {0, 0, 0xa0, 0x800,
                                 0x10000};  // below: control, or written too long
  bool const isSurrogate = code >= 0xd800 && code < 0xe000;
  bool const isNone = code > 0x10ffff || (code & 0xfffe) == 0xfffe;
  return code < kLeast[length] || isSurrogate || isNone ? 0 : length;
}

}  // namespace

std::string Tool_MakePrintable(std::string const & iName, size_t iMaxChars) {
  std::vector<std::string> chars;
  for (size_t at = 0; at < iName.size() && chars.size() <= iMaxChars;) {
    size_t const length = GetCharLength(iName, at);
    chars.push_back(length == 0 ? "?" : iName.substr(at, length));
    at += length == 0 ? 1 : length;
  }
  if (chars.size() > iMaxChars) {
    chars.resize(iMaxChars);
    chars.back() = "…";
  }
  std::string result;
  for (std::string const & c : chars)
    result += c;
  return result;
}

std::string Tool_EscapeForXML(std::string const & iName) {
  std::string result;
  for (size_t at = 0; at < iName.size();) {
    size_t const length = GetCharLength(iName, at);
    if (length == 0)
      result += fmt::format("\\x{:02x}", static_cast<unsigned char>(iName[at]));
    else
      result += iName.substr(at, length);
    at += length == 0 ? 1 : length;
  }
  return result;
}

size_t Tool_GetNumChars(std::string const & iName) {
  size_t result = 0;
  for (char c : iName)
    result += (static_cast<unsigned char>(c) & 0xc0) != 0x80 ? 1u : 0u;
  return result;
}

std::string Tool_Plural(long long iNumber, char const * iNoun) {
  return fmt::format("{} {}{}", iNumber, iNoun, iNumber == 1 ? "" : "s");
}

std::string Tool_GetKeyName(int iNumSharps, bool iIsMinor) {
  // Each a fifth above the one before. The minor key of the same signature lies three steps on.
  static constexpr char kLetters[] = "FCGDAEB";
  int const step = iNumSharps + 8 + (iIsMinor ? 3 : 0);
  int const accidental = step / 7 - 1;
  char const * const sign = accidental < 0 ? "-flat" : accidental > 0 ? "-sharp" : "";
  return std::string(1, kLetters[step % 7]) + sign + (iIsMinor ? " minor" : " major");
}
