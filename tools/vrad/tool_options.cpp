#include "tools/vrad/tool_options.h"

#include <CLI/CLI.hpp>

void Tool_AddFileOption(CLI::App & ioCommand, std::string & oFile) {
  ioCommand.add_option("FILE", oFile, "A Standard MIDI File, or a project (.vrad)")->required();
}

void Tool_AddClipOption(CLI::App & ioCommand, std::optional<std::string> & oClip) {
  ioCommand.add_option("--clip", oClip, "Only this clip, as numbered by 'vrad info'")
      ->type_name("N");
}

void Tool_AddFormOption(CLI::App & ioCommand, std::string & oForm) {
  ioCommand.add_option("--as", oForm, "How to print: text, or jsonl for one JSON object a line")
      ->type_name("FORM")
      ->check(CLI::IsMember({"text", "jsonl"}));
}
