#include "tools/vrad/tool_filter.h"

#include <array>
#include <charconv>
#include <string_view>

#include <fmt/format.h>

#include "cmn/cmn_bitarray.h"
#include "tools/vrad/tool_error.h"

namespace {

struct Word {
  std::string_view mName;
  Vrae_Filter::EDataType mType;
};

constexpr std::array<Word, 6> kWords = {{{"notes", Vrae_Filter::eDataType_Notes},
                                         {"bend", Vrae_Filter::eDataType_PitchBend},
                                         {"program", Vrae_Filter::eDataType_Program},
                                         {"mono", Vrae_Filter::eDataType_MonoPressure},
                                         {"poly", Vrae_Filter::eDataType_PolyPressure},
                                         {"sysex", Vrae_Filter::eDataType_Sysex}}};

bool AddWord(std::string_view iWord, Vrae_Filter & ioFilter) {
  for (Word const & word : kWords) {
    if (word.mName != iWord) continue;
    ioFilter.Set(word.mType, true);
    return true;
  }
  return false;
}

// "cc" or "cc7". Bank select has no stream of its own and channel mode is not kept, so that asking
// for either is a mistake.
bool AddControllers(std::string_view iWord, Cmn_BitArray<128> & ioControllers) {
  if (!iWord.starts_with("cc")) return false;
  iWord.remove_prefix(2);
  if (iWord.empty()) {
    ioControllers.SetAll(true);
    return true;
  }
  int number = 0;
  char const * const end = iWord.data() + iWord.size();
  auto const [stop, error] = std::from_chars(iWord.data(), end, number);
  if (error != std::errc() || stop != end) return false;
  if (number < 1 || number > 119 || number == 32) return false;
  ioControllers.Set(number, true);
  return true;
}

}  // namespace

Vrae_Filter Tool_ParseFilter(std::string const & iOption, std::string const & iText) {
  Vrae_Filter filter;
  Cmn_BitArray<128> controllers;
  std::string_view rest = iText;
  for (bool isMore = true; isMore;) {
    size_t const comma = rest.find(',');
    std::string_view const word = rest.substr(0, comma);
    isMore = comma != std::string_view::npos;
    if (isMore) rest.remove_prefix(comma + 1);
    if (AddWord(word, filter) || AddControllers(word, controllers)) continue;
    throw Tool_UsageError(
        fmt::format("{}: '{}' is not one of notes, bend, program (with its bank), "
                    "mono, poly, sysex, cc, cc1 to cc119",
                    iOption, word));
  }
  // Velocities belong to the notes.
  filter.Set(Vrae_Filter::eDataType_NoteOnVelocity, true);
  filter.Set(Vrae_Filter::eDataType_NoteOffVelocity, true);
  filter.SetControllers(controllers);
  return filter;
}
