#include "foundation/i18n_stringtable.h"

#include <algorithm>
#include <map>

namespace {

constexpr char32_t kReplacement = 0xfffd;
constexpr bool kIsWideUTF16 = sizeof(wchar_t) == 2;

bool IsSurrogate(char32_t iChar) {
  return iChar >= 0xd800 && iChar < 0xe000;
}

// Takes one character off the front of a UTF-8 text. A malformed sequence is taken as far as it is
// well formed, at least one byte, and gives the replacement character.
char32_t TakeUTF8(std::string const & iText, size_t & ioPos) {
  unsigned const lead = static_cast<unsigned char>(iText[ioPos++]);
  if (lead < 0x80) return lead;
  int const numMore = lead >= 0xf0 ? 3 : lead >= 0xe0 ? 2 : 1;
  static constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
  if (lead < 0xc2 || lead > 0xf4) return kReplacement;
  char32_t character = lead & (0x3fu >> numMore);
  for (int i = 0; i < numMore; ++i) {
    if (ioPos == iText.size() || (static_cast<unsigned char>(iText[ioPos]) & 0xc0) != 0x80) {
      return kReplacement;
    }
    character = (character << 6) | (static_cast<unsigned char>(iText[ioPos++]) & 0x3fu);
  }
  bool const isValid =
      character >= kLeast[numMore] && character <= 0x10ffff && !IsSurrogate(character);
  return isValid ? character : kReplacement;
}

void AppendWide(std::wstring & ioText, char32_t iChar) {
  if (kIsWideUTF16 && iChar >= 0x10000) {
    ioText += static_cast<wchar_t>(0xd800 + ((iChar - 0x10000) >> 10));
    ioText += static_cast<wchar_t>(0xdc00 + ((iChar - 0x10000) & 0x3ff));
    return;
  }
  ioText += static_cast<wchar_t>(iChar);
}

// Takes one character off the front of a wide text. Half a surrogate pair is no character.
char32_t TakeWide(wchar_t const *& ioText) {
  char32_t const first = static_cast<char32_t>(*ioText++);
  if (!IsSurrogate(first)) return first <= 0x10ffff ? first : kReplacement;
  if (!kIsWideUTF16 || first >= 0xdc00) return kReplacement;
  char32_t const second = static_cast<char32_t>(*ioText);
  if (second < 0xdc00 || second >= 0xe000) return kReplacement;
  ++ioText;
  return 0x10000 + ((first - 0xd800) << 10) + (second - 0xdc00);
}

void AppendUTF8(std::string & ioText, char32_t iChar) {
  int const numMore = iChar < 0x80 ? 0 : iChar < 0x800 ? 1 : iChar < 0x10000 ? 2 : 3;
  static constexpr unsigned kLead[] = {0, 0xc0, 0xe0, 0xf0};
  ioText += static_cast<char>(kLead[numMore] | (iChar >> (6 * numMore)));
  for (int i = numMore - 1; i >= 0; --i)
    ioText += static_cast<char>(0x80 | ((iChar >> (6 * i)) & 0x3f));
}

}  // namespace

struct I18N_StringTable::Texts {
  std::map<int, std::wstring> mTexts;
};

I18N_StringTable::I18N_StringTable() : I18N_StringTable(nullptr) {}
I18N_StringTable::I18N_StringTable(Source iSource) : mTextsP(new Texts), mSource(iSource) {}

I18N_StringTable::~I18N_StringTable() {
  delete mTextsP;
}

void I18N_StringTable::Set(int iID, std::string const & iUTF8) {
  std::wstring text;
  for (size_t pos = 0; pos < iUTF8.size();)
    AppendWide(text, TakeUTF8(iUTF8, pos));
  mTextsP->mTexts[iID] = text;
}

int I18N_StringTable::Load(int iID, wchar_t * oBuffer, int iBufferSize) const {
  if (iBufferSize <= 0) return 0;
  oBuffer[0] = 0;
  auto const found = mTextsP->mTexts.find(iID);
  if (found == mTextsP->mTexts.end()) return mSource ? mSource(iID, oBuffer, iBufferSize) : 0;
  size_t const num = found->second.copy(oBuffer, static_cast<size_t>(iBufferSize - 1));
  oBuffer[num] = 0;
  return static_cast<int>(num);
}

I18N_StUTF8Buffer::I18N_StUTF8Buffer(wchar_t const * iText) {
  while (*iText)
    AppendUTF8(mUTF8, TakeWide(iText));
}

char const * I18N_StUTF8Buffer::Get() const {
  return mUTF8.c_str();
}

std::string I18N_Utils::FormatL10nString(std::string const & iText,
                                         std::vector<std::string> const & iArguments) {
  std::string text;
  for (size_t pos = 0; pos < iText.size(); ++pos) {
    bool const isPlace = iText[pos] == '%' && pos + 1 < iText.size() && iText[pos + 1] >= '1' &&
                         iText[pos + 1] <= '9';
    size_t const index = isPlace ? static_cast<size_t>(iText[pos + 1] - '1') : 0;
    if (!isPlace || index >= iArguments.size()) {
      text += iText[pos];
      continue;
    }
    text += iArguments[index];
    ++pos;
  }
  return text;
}
