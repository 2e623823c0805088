#include "tools/vrad/command_play.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

#include <CLI/CLI.hpp>

#include "foundation/time_convert.h"
#include "host/host_midiport.h"
#include "host/host_wavewriter.h"
#include "tools/vrad/tool_error.h"
#include "tools/vrad/tool_event.h"
#include "tools/vrad/tool_interrupt.h"
#include "tools/vrad/tool_load.h"
#include "tools/vrad/tool_options.h"
#include "tools/vrad/tool_player.h"
#include "tools/vrad/tool_playrange.h"
#include "tools/vrad/tool_progress.h"

namespace {

constexpr int kLiveBlockSize = 256;
constexpr int kOfflineBlockSize = 4096;
constexpr double kMaxHoursOfSound = 24;

double ToSeconds(long long iNumSamples) {
  return static_cast<double>(iNumSamples) / Time_Globals::GetSampleRate();
}

std::string FormatSeconds(long long iNumSamples) {
  long long const seconds = static_cast<long long>(ToSeconds(iNumSamples));
  return fmt::format("{}:{:02}", seconds / 60, seconds % 60);
}

void Say(std::string const & iLine) {
  Tool_Output out;
  out.Print("{}\n", iLine);
  out.Flush();
}

int ListPorts() {
  Tool_Output out;
  std::vector<Host_MidiPortName> const ports = Host_ListMidiPorts();
  for (size_t i = 0; i < ports.size(); ++i) {
    out.Print("{:>3}  {:<6} {}\n", i, ports[i].mSystem, ports[i].mName);
  }
  if (ports.empty()) out.Print("no MIDI ports\n");
  out.Flush();
  return kStatus_Done;
}

// The first port behind which somebody listens. ALSA's own through port has no such.
std::string ChoosePort() {
  std::vector<Host_MidiPortName> const ports = Host_ListMidiPorts();
  for (size_t i = 0; i < ports.size(); ++i) {
    if (ports[i].mName.find("Midi Through") == std::string::npos) return std::to_string(i);
  }
  throw Tool_InputError("there is no MIDI port to play to; --wav OUT.wav writes sound to a file");
}

// One run of the player over the stretch asked for, as often as asked for.
class Run {
public:
  Run(Host_Song const & iSong, Tool_PlayRange const & iRange, Host_BlockReceiver & iReceiver)
      : mSong(iSong), mRange(iRange), mPlayer(iSong, iRange.GetClips(), iReceiver) {
    if (iRange.GetNumPasses() != 1) {
      mPlayer.GetPlayer().SetLoop(iRange.GetStart(), iRange.GetEnd());
    }
    mPlayer.GetPlayer().Start(iRange.GetStart());
  }

  // 0: without end.
  long long GetLength() const { return mRange.GetTotalLength(); }
  long long GetNumDone() const { return mNumDone; }
  bool IsAtEnd() const { return GetLength() > 0 && mNumDone >= GetLength(); }

  void PlayBlock(int iSize) {
    long long const numLeft = GetLength() > 0 ? GetLength() - mNumDone : iSize;
    int const size = static_cast<int>(std::min<long long>(iSize, numLeft));
    mPlayer.GetPlayer().Process(size);
    mNumDone += size;
  }

  // False if notes had to be left out.
  bool Stop() {
    mPlayer.GetPlayer().Stop();
    mPlayer.GetPlayer().Process(0);
    return mPlayer.TellLostNotes();
  }

  // As in "3:2:480000  0:05 of 0:49".
  std::string Describe() {
    Time_Sample const position = mPlayer.GetPlayer().GetPosition();
    std::string const length = GetLength() > 0 ? " of " + FormatSeconds(GetLength()) : "";
    std::string const pass = mRange.GetNumPasses() == 1
                                 ? ""
                                 : fmt::format("  pass {}", mNumDone / mRange.GetLength() + 1);
    return fmt::format("{}  {}{}{}", Tool_FormatBar(Host_BarMap(mSong.mTimeSignatures), position),
                       FormatSeconds(mNumDone), length, pass);
  }

private:
  Host_Song const & mSong;
  Tool_PlayRange const & mRange;
  Tool_Player mPlayer;
  long long mNumDone = 0;
};

// Blocks in time with the clock, as an audio system would call for them.
void PlayLive(Run & ioRun, Tool_InterruptGuard const & iInterrupt) {
  constexpr int kBlocksPerLine = 20;
  typedef std::chrono::steady_clock Clock;
  Tool_StatusLine line;
  Clock::time_point const start = Clock::now();
  for (long long block = 0; !ioRun.IsAtEnd() && !iInterrupt.IsRequested(); ++block) {
    if (block % kBlocksPerLine == 0) line.Show(ioRun.Describe());
    ioRun.PlayBlock(kLiveBlockSize);
    std::chrono::duration<double> const played(ToSeconds(ioRun.GetNumDone()));
    std::this_thread::sleep_until(start + std::chrono::duration_cast<Clock::duration>(played));
  }
}

int PlayToPort(Host_Song const & iSong, Tool_PlayRange const & iRange,
               std::optional<std::string> const & iPort) {
  Tool_InterruptGuard const interrupt;
  Host_MidiPort port(iPort ? *iPort : ChoosePort(), "vrad");
  Run run(iSong, iRange, port);
  Say(fmt::format("playing to {}", port.GetName().mName));
  PlayLive(run, interrupt);
  bool const isWhole = run.Stop();
  port.Close();
  if (port.GetNumLost() > 0) {
    throw Tool_InputError(fmt::format("{}: {} message{} could not be sent", port.GetName().mName,
                                      port.GetNumLost(), port.GetNumLost() == 1 ? "" : "s"));
  }
  return isWhole ? Tool_GetStatus(iSong) : kStatus_BadInput;
}

void CheckLengthOfSound(Run const & iRun) {
  double const hours = ToSeconds(iRun.GetLength()) / 3600;
  if (hours <= kMaxHoursOfSound) return;
  throw Tool_UsageError(
      fmt::format("--wav: {:.0f} hours of sound; {} are the most", hours, kMaxHoursOfSound));
}

int PlayToFile(Host_Song const & iSong, Tool_PlayRange const & iRange, std::string const & iPath,
               std::string const & iSoundFont) {
  Tool_InterruptGuard const interrupt;
  Host_WaveWriter writer(iPath, iSoundFont);
  Run run(iSong, iRange, writer);
  CheckLengthOfSound(run);
  {
    Tool_ProgressBar bar;
    while (!run.IsAtEnd() && !writer.HasFailed() && !interrupt.IsRequested()) {
      run.PlayBlock(kOfflineBlockSize);
      bar.Show(static_cast<size_t>(run.GetNumDone()), static_cast<size_t>(run.GetLength()));
    }
  }
  if (interrupt.IsRequested()) throw Tool_InputError(iPath + ": interrupted; nothing is written");
  bool const isWhole = run.Stop();
  writer.Finish();
  if (writer.GetNumClipped() > 0) {
    Tool_TellError(
        fmt::format("{}: too loud in {} places, which are cut off", iPath, writer.GetNumClipped()));
  }
  Say(fmt::format("{}: {:.3f} seconds of sound", iPath, ToSeconds(writer.GetNumFrames())));
  return isWhole ? Tool_GetStatus(iSong) : kStatus_BadInput;
}

void CheckName(char const * iOption, std::optional<std::string> const & iPath) {
  if (iPath && iPath->empty()) throw Tool_UsageError(fmt::format("{}: no file is named", iOption));
}

std::string ChooseSoundFont(std::optional<std::string> const & iSoundFont) {
  std::string const found = iSoundFont ? *iSoundFont : Host_FindSoundFont();
  if (!found.empty()) return found;
  throw Tool_InputError("no SoundFont is installed (on Debian: timgm6mb-soundfont); "
                        "--soundfont FILE names one");
}

}  // namespace

CLI::App * Tool_PlayCommand::AddTo(CLI::App & ioApp) {
  CLI::App * const command =
      ioApp.add_subcommand("play", "Play to a MIDI port, or write the sound to a WAV file");
  command->add_option("FILE", mFile, "A Standard MIDI File, or a project (.vrad)");
  Tool_AddClipOption(*command, mClip);
  command->add_option("--from", mFrom, "Begin here, with what is in force and sounds here")
      ->type_name("POS");
  command->add_option("--to", mTo, "End here")->type_name("POS");
  command->add_flag("--loop", mIsLooping, "Repeat from --from to --to until stopped by Ctrl-C");
  command->add_option("--passes", mPasses, "Repeat that often")->type_name("N");
  command->add_option("--speed", mSpeed, "2 is twice as fast, 0.5 half")->type_name("X");
  CLI::Option * const port =
      command->add_option("--port", mPort,
                          "Where to: a number or name of --list-ports, or part of a name; the "
                          "first port unless told");
  port->type_name("NAME");
  CLI::Option * const list =
      command->add_flag("--list-ports", mIsListingPorts, "List the MIDI ports");
  CLI::Option * const wave =
      command->add_option("--wav", mWave, "Write 16-bit stereo sound, faster than it plays");
  wave->type_name("OUT.wav")->excludes(port)->excludes(list);
  command->add_option("--soundfont", mSoundFont, "The instruments of --wav: an SF2 file")
      ->type_name("FILE")
      ->needs(wave);
  command->footer(
      std::string(kTool_PositionHelp) +
      "\nHowever playing ends, all notes, pedals, bends and pressures end with it. A WAV\n"
      "file holds the fading out behind the end, too.");
  return command;
}

int Tool_PlayCommand::Run() const {
  if (mIsListingPorts) return ListPorts();
  if (mFile.empty()) throw Tool_UsageError("FILE is required");
  CheckName("--wav", mWave);
  CheckName("--soundfont", mSoundFont);
  Tool_PlayRange range({mClip, mFrom, mTo, mSpeed, mPasses, mIsLooping});
  if (mWave && mIsLooping && !mPasses) {
    throw Tool_UsageError("--loop: a file has to end; --passes N repeats that often");
  }
  std::error_code error;
  if (mWave && std::filesystem::equivalent(mFile, *mWave, error)) {
    throw Tool_UsageError("--wav: that is the file to be played");
  }
  std::string const soundFont = mWave ? ChooseSoundFont(mSoundFont) : "";
  Host_Song const song = Tool_LoadFile(mFile);
  range.Resolve(song);
  return mWave ? PlayToFile(song, range, *mWave, soundFont) : PlayToPort(song, range, mPort);
}
