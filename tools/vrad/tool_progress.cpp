#include "tools/vrad/tool_progress.h"

#include <cstdio>
#include <string>

#include <fmt/format.h>

#include "tools/vrad/tool_terminal.h"

namespace {

constexpr size_t kLongWork = 1 << 22;  // bytes; less is done before one could read a bar
constexpr int kWidth = 40;

void Write(std::string const & iText) {
  std::fputs(iText.c_str(), stderr);
  std::fflush(stderr);
}

}  // namespace

Tool_ProgressBar::Tool_ProgressBar(bool iIsPrinting)
    : mIsWanted(Tool_IsErrorTerminal() && !(iIsPrinting && Tool_IsOutputTerminal())) {}

Tool_ProgressBar::~Tool_ProgressBar() {
  if (mPercent >= 0) Write(fmt::format("\r{:{}}\r", "", kWidth + 7));
}

void Tool_ProgressBar::Show(size_t iNumDone, size_t iNumBytes) {
  if (!mIsWanted || iNumBytes < kLongWork) return;
  int const percent = static_cast<int>(iNumDone * 100 / iNumBytes);
  if (percent == mPercent) return;
  mPercent = percent;
  Write(fmt::format("\r[{:<{}}] {:3}%",
                    std::string(static_cast<size_t>(percent * kWidth / 100), '#'), kWidth,
                    percent));
}

Tool_StatusLine::Tool_StatusLine() : mIsWanted(Tool_IsErrorTerminal()) {}

Tool_StatusLine::~Tool_StatusLine() {
  Show("");
  if (mIsWanted) Write("\r");
}

void Tool_StatusLine::Show(std::string const & iText) {
  if (!mIsWanted || iText == mText) return;
  Write(fmt::format("\r{:<{}}", iText, mText.size()));
  mText = iText;
}
