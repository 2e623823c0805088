#include "tools/vrad/edit_parse.h"

#include <array>
#include <charconv>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "tools/vrad/tool_error.h"

namespace {

typedef std::vector<std::string> Words;

[[noreturn]] void Refuse(std::string const & iText, std::string const & iWhy) {
  throw Tool_UsageError(fmt::format("'{}': {}", iText, iWhy));
}

Words SplitIntoWords(std::string const & iText) {
  Words words;
  bool isInWord = false;
  bool isQuoted = false;
  for (char c : iText) {
    bool const isBlank = (c == ' ' || c == '\t') && !isQuoted;
    if (!isBlank && !isInWord) words.emplace_back();
    isInWord = !isBlank;
    if (c == '"') {
      isQuoted = !isQuoted;
    } else if (isInWord) {
      words.back() += c;
    }
  }
  if (isQuoted) Refuse(iText, "a quote is not closed");
  return words;
}

// The words behind a command's name, taken one by one.
class Arguments {
public:
  explicit Arguments(std::string const & iText) : mText(iText), mWords(SplitIntoWords(iText)) {
    if (mWords.empty()) Refuse(iText, "an empty command");
  }

  std::string const & GetName() const { return mWords.front(); }

  std::string Take(char const * iWhat) {
    if (!IsMore()) Refuse(mText, fmt::format("{} is missing", iWhat));
    return mWords[mNext++];
  }
  Time_TypedLength TakeLength() { return Tool_ParseLength(GetQuoted(), Take("a length")); }
  std::optional<Tool_Position> TakePosition(char const * iWhat) {
    return Tool_ParsePosition(GetQuoted(), Take(iWhat));
  }
  Edit_Range TakeRange() {
    Edit_Range range;
    range.mFrom = TakePosition("the start of the range");
    range.mTo = TakePosition("the end of the range");
    return range;
  }
  Edit_Range TakeRangeIfAny() { return IsMore() ? TakeRange() : Edit_Range(); }
  bool TakeIf(std::string_view iWord) {
    if (!IsMore() || mWords[mNext] != iWord) return false;
    ++mNext;
    return true;
  }
  bool IsMore() const { return mNext < mWords.size(); }
  void CheckEnd() const {
    if (IsMore()) Refuse(mText, fmt::format("'{}' is too much", mWords[mNext]));
  }
  [[noreturn]] void RefuseWord(std::string const & iWord, char const * iWanted) const {
    Refuse(mText, fmt::format("'{}' is not {}", iWord, iWanted));
  }

private:
  std::string GetQuoted() const { return "'" + mText + "'"; }

  std::string mText;
  Words mWords;
  size_t mNext = 1;
};

EMidiNudgeMode TakeMode(Arguments & ioArguments) {
  constexpr std::array<std::string_view, 4> kNames = {"times", "starts", "durations", "pitches"};
  std::string const word = ioArguments.Take("what to nudge");
  for (size_t i = 0; i < kNames.size(); ++i) {
    if (kNames[i] == word) return static_cast<EMidiNudgeMode>(i);
  }
  ioArguments.RefuseWord(word, "one of times, starts, durations, pitches");
}

// The number behind a prefix, if it lies between the bounds.
std::optional<signed char> ParseNumber(std::string_view iWord, std::string_view iPrefix,
                                       int iLowest, int iHighest) {
  if (!iWord.starts_with(iPrefix)) return std::nullopt;
  iWord.remove_prefix(iPrefix.size());
  int number = 0;
  char const * const end = iWord.data() + iWord.size();
  auto const [stop, error] = std::from_chars(iWord.data(), end, number);
  if (error != std::errc() || stop != end || number < iLowest || number > iHighest) {
    return std::nullopt;
  }
  return static_cast<signed char>(number);
}

Vrae_SubStream TakeStream(Arguments & ioArguments) {
  std::string const word = ioArguments.Take("a stream");
  if (word == "bend") return Vrae_SubStream::PitchBend();
  if (word == "program") return Vrae_SubStream::Program();
  if (word == "mono") return Vrae_SubStream::MonoPressure();
  if (auto const number = ParseNumber(word, "cc", 1, 119)) {
    return Vrae_SubStream::Controller(*number);
  }
  if (auto const pitch = ParseNumber(word, "poly", 0, 127)) {
    return Vrae_SubStream::PolyPressure(*pitch);
  }
  ioArguments.RefuseWord(word, "one of cc1 to cc119, bend, program, mono, poly0 to poly127");
}

Edit_Merge TakeMerge(Arguments & ioArguments) {
  std::string const file = ioArguments.Take("a file");
  return {file, ioArguments.TakeIf("avoiding")};
}

Edit_CopyRange TakeCopyRange(Arguments & ioArguments) {
  Edit_Range const range = ioArguments.TakeRange();
  return {range, ioArguments.TakeLength()};
}

Edit_Nudge TakeNudge(Arguments & ioArguments) {
  EMidiNudgeMode const mode = TakeMode(ioArguments);
  Time_TypedLength const offset = ioArguments.TakeLength();
  return {mode, offset, ioArguments.TakeRangeIfAny()};
}

Edit_EraseStream TakeEraseStream(Arguments & ioArguments) {
  Vrae_SubStream const stream = TakeStream(ioArguments);
  return {stream, ioArguments.TakeRangeIfAny()};
}

Edit_Quantize TakeQuantize(Arguments & ioArguments) {
  return {ioArguments.IsMore() ? ioArguments.TakeLength() : Time_TickLength(0)};
}

decltype(Edit_Command::mEdit) TakeEdit(Arguments & ioArguments) {
  std::string const & name = ioArguments.GetName();
  if (name == "merge") return TakeMerge(ioArguments);
  if (name == "erase-range") return Edit_EraseRange{ioArguments.TakeRange()};
  if (name == "copy-range") return TakeCopyRange(ioArguments);
  if (name == "nudge") return TakeNudge(ioArguments);
  if (name == "erase-stream") return TakeEraseStream(ioArguments);
  if (name == "quantize") return TakeQuantize(ioArguments);
  if (name == "undo") return Edit_Undo();
  if (name == "redo") return Edit_Redo();
  ioArguments.RefuseWord(name, "one of merge, erase-range, copy-range, nudge, erase-stream, "
                               "quantize, undo, redo");
}

}  // namespace

char const * Edit_GetCommandHelp() {
  return "COMMANDS, one word each for the shell ('nudge times 480000t'):\n"
         "  merge FILE [avoiding]         add the clips of FILE, each to the clip of its track "
         "and\n"
         "                                channel, without its tempo and meter; avoiding: "
         "overlaps\n"
         "                                of one pitch give way\n"
         "  erase-range POS POS           erase what begins in the range\n"
         "  copy-range POS POS LEN        copy what begins in the range to LEN later\n"
         "  nudge times LEN [POS POS]     move everything, or what begins in the range\n"
         "  nudge starts LEN [POS POS]    move where notes begin, not where they end; in a clip\n"
         "                                with a note too short for that, none\n"
         "  nudge durations LEN [POS POS] lengthen or shorten notes, but those too short for it\n"
         "  nudge pitches LEN [POS POS]   a semitone down if LEN is positive, up if negative; in "
         "a\n"
         "                                clip with a note at the end of the scale, none\n"
         "  erase-stream WHICH [POS POS]  WHICH: cc1 to cc119, bend, program, mono, poly0 to "
         "poly127\n"
         "  quantize [LEN]                move by LEN, then to the grid of 1000 ticks\n"
         "  undo, redo                    the last command, or the last one undone\n"
         "POS is 960000t, 48000s, 12.5sec or BAR:BEAT[:TICK]; LEN is 960000t, 48000s or 12.5sec.";
}

Edit_Command Edit_Parse(std::string const & iText) {
  Arguments arguments(iText);
  Edit_Command const command{iText, TakeEdit(arguments)};
  arguments.CheckEnd();
  return command;
}
