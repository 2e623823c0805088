// What the tool asks of the system beside files.
#pragma once

/// Whether somebody reads the standard error stream as it is written.
bool Tool_IsErrorTerminal();
