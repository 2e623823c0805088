// The bar that long work shows on a terminal.
#pragma once

#include <cstddef>
#include <string>

/// Draws on the standard error stream when that is a terminal, and only for work of some length.
/// Leaves the line empty when destroyed.
class Tool_ProgressBar {
public:
  /// What is printed meanwhile must not go to the same terminal: then there is no bar.
  explicit Tool_ProgressBar(bool iIsPrinting = false);
  Tool_ProgressBar(Tool_ProgressBar const &) = delete;
  Tool_ProgressBar & operator=(Tool_ProgressBar const &) = delete;
  ~Tool_ProgressBar();

  /// So many of so many bytes are done.
  void Show(size_t iNumDone, size_t iNumBytes);

private:
  bool mIsWanted;
  int mPercent = -1;  // drawn last; -1: nothing
};

/// A line that says where something goes on, on the standard error stream when that is a terminal.
/// Leaves the line empty when destroyed.
class Tool_StatusLine {
public:
  Tool_StatusLine();
  Tool_StatusLine(Tool_StatusLine const &) = delete;
  Tool_StatusLine & operator=(Tool_StatusLine const &) = delete;
  ~Tool_StatusLine();

  /// In place of what it said before. Needs: characters of one column.
  void Show(std::string const & iText);

private:
  bool mIsWanted;
  std::string mText;
};
