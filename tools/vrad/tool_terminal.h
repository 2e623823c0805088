// What the tool asks of the system beside files.
#pragma once

#include <vector>

/// Whether somebody reads the standard error stream as it is written.
bool Tool_IsErrorTerminal();

/// Whether what is printed appears where errors and progress do.
bool Tool_IsOutputTerminal();

/// The signals by which the system asks a program to end.
std::vector<int> Tool_GetEndingSignals();
