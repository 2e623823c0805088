// The ways in which a command ends early.
#pragma once

#include <stdexcept>

/// What a command gives back to the shell.
enum Tool_EStatus : int { kStatus_Done = 0, kStatus_BadInput = 1, kStatus_BadCommandLine = 2 };

/// The command line asks for something that makes no sense. The text names the option.
class Tool_UsageError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// The input or the output failed. The text is all that stands behind "vrad: ".
class Tool_InputError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};
