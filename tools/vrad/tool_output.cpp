#include "tools/vrad/tool_output.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "tools/vrad/tool_error.h"

void Tool_Output::Flush() {
  bool const isWritten = std::fwrite(mBuffer.data(), 1, mBuffer.size(), stdout) == mBuffer.size() &&
                         std::fflush(stdout) == 0;
  mBuffer.clear();
  if (!isWritten) {
    throw Tool_InputError("standard output: " + std::generic_category().message(errno));
  }
}

void Tool_TellError(std::string const & iText) {
  std::string const line = "vrad: " + iText + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}
