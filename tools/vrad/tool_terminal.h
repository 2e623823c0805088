// What the tool asks of the system beside files.
#pragma once

#include <vector>

/// Whether somebody reads the standard error stream as it is written.
bool Tool_IsErrorTerminal();

/// The signals by which the system asks a program to end.
std::vector<int> Tool_GetEndingSignals();
