// What goes to the standard output, and what goes to the standard error stream.
#pragma once

#include <string>

#include <fmt/format.h>

/// Collects text and writes it in large pieces.
class Tool_Output {
public:
  template <class... TArgs>
  void Print(fmt::format_string<TArgs...> iFormat, TArgs &&... iArgs) {
    fmt::format_to(std::back_inserter(mBuffer), iFormat, std::forward<TArgs>(iArgs)...);
    if (mBuffer.size() > kPieceSize) Flush();
  }

  /// Call at the end of a command.
  /// Fails: Tool_InputError when the text cannot be written, here and above.
  void Flush();

private:
  static constexpr size_t kPieceSize = 1 << 16;

  fmt::memory_buffer mBuffer;
};

/// Writes "vrad: ", iText and a line end to the standard error stream. What cannot be told there is
/// lost in silence: the exit status still says it.
void Tool_TellError(std::string const & iText);
