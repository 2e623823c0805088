// Options that several commands have.
#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

// The values go to the given places, which must outlive the command.

void Tool_AddFileOption(CLI::App & ioCommand, std::string & oFile);
void Tool_AddClipOption(CLI::App & ioCommand, std::optional<std::string> & oClip);
/// --as text or jsonl.
void Tool_AddFormOption(CLI::App & ioCommand, std::string & oForm);
