#include "tools/vrad/command_picture.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "foundation/sys_stream.h"
#include "foundation/time_convert.h"
#include "host/host_picture.h"
#include "tools/vrad/tool_clips.h"
#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_load.h"
#include "tools/vrad/tool_names.h"
#include "tools/vrad/tool_options.h"
#include "tools/vrad/tool_position.h"
#include "tools/vrad/tool_progress.h"

namespace {

// Refused before the file is read, whatever it holds.
int ParseSide(std::string const & iOption, std::optional<std::string> const & iText, int iLeast,
              int iDefault) {
  if (!iText) return iDefault;
  int pixels = 0;
  char const * const end = iText->data() + iText->size();
  auto const [stop, error] = std::from_chars(iText->data(), end, pixels);
  if (error == std::errc() && stop == end && pixels >= iLeast && pixels <= kHost_MaxPictureSide)
    return pixels;
  throw Tool_UsageError(fmt::format("{}: '{}' is not {} to {} pixels", iOption, *iText, iLeast,
                                    kHost_MaxPictureSide));
}

void CheckForm(std::string const & iPath) {
  try {
    Host_GetPictureForm(iPath);
  } catch (Host_PictureError const & error) {
    throw Tool_UsageError(fmt::format("{}: {}", iPath, error.what()));
  }
}

Time_Tick Resolve(std::string const & iOption, std::optional<std::string> const & iText,
                  Host_BarMap const & iBars, Time_Tick iDefault) {
  if (!iText) return iDefault;
  Tool_Position const position = Tool_ParsePosition(iOption, *iText);
  return Tool_ResolvePosition(iOption, position, iBars).AsTick();
}

void Write(Host_Picture const & iPicture, std::string const & iPath) {
  constexpr size_t kBytesPerNote = 100;  // of a file that takes as long to read
  Tool_ProgressBar bar;
  auto const progress = [&bar](size_t iNumDone, size_t iNumOfAll) {
    bar.Show(iNumDone * kBytesPerNote, iNumOfAll * kBytesPerNote);
  };
  try {
    Host_WritePicture(iPicture, iPath, progress);
  } catch (Host_PictureError const & error) {
    throw Tool_UsageError(fmt::format("{}: {}", iPath, error.what()));
  } catch (Sys_StreamException const & error) {
    throw Tool_InputError(Tool_TellPath(iPath, error.what()));
  } catch (std::bad_alloc const &) {
    throw Tool_InputError(fmt::format("{}: out of memory", iPath));
  }
}

}  // namespace

CLI::App * Tool_PictureCommand::AddTo(CLI::App & ioApp) {
  CLI::App * const command =
      ioApp.add_subcommand("picture", "Draw a piano roll of each clip, with its controllers");
  Tool_AddFileOption(*command, mFile);
  command->add_option("OUT", mOut, "The picture, OUT.svg or OUT.png")->required();
  Tool_AddClipOption(*command, mClip);
  command->add_option("--from", mFrom, "The position at the left edge, instead of the start")
      ->type_name("POS");
  command->add_option("--to", mTo, "The position at the right edge, instead of the end")
      ->type_name("POS");
  command
      ->add_option("--width", mWidth,
                   fmt::format("In pixels, {} unless told", Host_Picture().mWidth))
      ->type_name("N");
  command->add_option("--height", mHeight, "In pixels; what the clips need unless told")
      ->type_name("N");
  command->footer("POS is 960000t (ticks, 960000 to the quarter note), 48000s (samples),\n"
                  "12.5sec, or BAR:BEAT[:TICK] with bars and beats from 1.");
  return command;
}

int Tool_PictureCommand::Run() const {
  CheckForm(mOut);
  Host_Picture picture;
  picture.mWidth = ParseSide("--width", mWidth, kHost_MinPictureWidth, picture.mWidth);
  picture.mHeight = ParseSide("--height", mHeight, 1, picture.mHeight);
  std::optional<long long> const clip = Tool_ParseClip(mClip);
  Host_MidiFile const file = Tool_LoadFile(mFile);
  picture.mTitle = Tool_MakePrintable(std::filesystem::path(mFile).filename().string(), 120);
  picture.mBars = Host_BarMap(file.mTimeSignatures);
  for (int const i : Tool_SelectClips(clip, static_cast<int>(file.mClips.size())))
    picture.mClips.push_back(
        {file.mClips[static_cast<size_t>(i)].mChunk.Get(), Tool_DescribeClip(file, i)});
  // A file without any time in it still has a picture.
  Time_Tick const end(std::max(file.GetEnd().AsInt64(), Time_Globals::kTicksPerBeat));
  picture.mFrom = Resolve("--from", mFrom, picture.mBars, Time_Tick(0));
  picture.mTo = Resolve("--to", mTo, picture.mBars, end);
  if (picture.mFrom.AsInt64() >= picture.mTo.AsInt64())
    throw Tool_UsageError(mTo ? "--from lies at or after --to" : "--from lies at or after the end");
  Write(picture, mOut);
  return Tool_GetStatus(file);
}
