#include "tools/vrad/command_dump.h"

#include <string_view>

#include <CLI/CLI.hpp>

#include "tools/vrad/tool_clipprogress.h"
#include "tools/vrad/tool_clips.h"
#include "tools/vrad/tool_load.h"
#include "tools/vrad/tool_options.h"
#include "tools/vrad/tool_output.h"
#include "tools/vrad/tool_xml.h"

namespace {

void DumpAsXML(Host_MidiFile const & iFile, std::vector<int> const & iClips) {
  Tool_Output out;
  Tool_ClipProgress progress(iFile);
  progress.Expect(iClips);
  Tool_XMLWriter writer(iFile, out, progress);
  for (int const clip : iClips) {
    progress.BeginClip(clip);
    writer.WriteClip(clip);
  }
  writer.Finish();
  out.Flush();
}

// The text takes about as long to make as to print.
void PrintContents(Vrad_Chunk const & iChunk, Tool_Output & ioOut, Tool_ClipProgress & ioProgress) {
  constexpr size_t kPiece = 1 << 18;
  ioProgress.Show(0, 2);
  std::string const text = iChunk.PrintContents();
  for (size_t at = 0; at < text.size(); at += kPiece) {
    ioProgress.Show(text.size() + at, 2 * text.size());
    ioOut.Print("{}", std::string_view(text).substr(at, kPiece));
  }
}

void DumpAsText(Host_MidiFile const & iFile, std::vector<int> const & iClips) {
  Tool_Output out;
  Tool_ClipProgress progress(iFile);
  progress.Expect(iClips);
  for (int const clip : iClips) {
    progress.BeginClip(clip);
    out.Print("{}{}\n", clip == iClips.front() ? "" : "\n", Tool_DescribeClip(iFile, clip));
    PrintContents(*iFile.mClips[static_cast<size_t>(clip)].mChunk.Get(), out, progress);
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
