#include "tools/vrad/command_dump.h"

#include <CLI/CLI.hpp>

#include "tools/vrad/tool_clips.h"
#include "tools/vrad/tool_load.h"
#include "tools/vrad/tool_options.h"
#include "tools/vrad/tool_output.h"
#include "tools/vrad/tool_xml.h"

namespace {

void DumpAsXML(Host_MidiFile const & iFile, std::vector<int> const & iClips) {
  Tool_Output out;
  Tool_XMLWriter writer(iFile, out);
  for (int const clip : iClips)
    writer.WriteClip(clip);
  writer.Finish();
  out.Flush();
}

void DumpAsText(Host_MidiFile const & iFile, std::vector<int> const & iClips) {
  Tool_Output out;
  for (int const clip : iClips) {
    Vrad_Chunk const & chunk = *iFile.mClips[static_cast<size_t>(clip)].mChunk.Get();
    out.Print("{}{}\n{}", clip == iClips.front() ? "" : "\n", Tool_DescribeClip(iFile, clip),
              chunk.PrintContents());
  }
  out.Flush();
}

}  // namespace

CLI::App * Tool_DumpCommand::AddTo(CLI::App & ioApp) {
  CLI::App * const command =
      ioApp.add_subcommand("dump", "Print what each clip says about itself, for inspection");
  Tool_AddFileOption(*command, mFile);
  Tool_AddClipOption(*command, mClip);
  command
      ->add_option("--as", mAs,
                   "How to print: text, with the continuous values, or xml, with the whole record "
                   "of each note")
      ->type_name("FORM")
      ->check(CLI::IsMember({"text", "xml"}));
  return command;
}

int Tool_DumpCommand::Run() const {
  std::optional<long long> const clip = Tool_ParseClip(mClip);
  Host_MidiFile const file = Tool_LoadFile(mFile);
  std::vector<int> const clips = Tool_SelectClips(clip, static_cast<int>(file.mClips.size()));
  if (mAs == "xml")
    DumpAsXML(file, clips);
  else
    DumpAsText(file, clips);
  return Tool_GetStatus(file);
}
