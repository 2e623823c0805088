// The bar that long work shows on a terminal.
#pragma once

#include <cstddef>

/// Draws on the standard error stream when that is a terminal, and only for work of some length.
/// Leaves the line empty when destroyed.
class Tool_ProgressBar {
public:
  Tool_ProgressBar();
  Tool_ProgressBar(Tool_ProgressBar const &) = delete;
  Tool_ProgressBar & operator=(Tool_ProgressBar const &) = delete;
  ~Tool_ProgressBar();

  /// So many of so many bytes are done.
  void Show(size_t iNumDone, size_t iNumBytes);

private:
  bool mIsWanted;
  int mPercent = -1;  // drawn last; -1: nothing
};
