#include "host/host_wavewriter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <vector>

#include <fluidsynth.h>

#include "foundation/sys_stream.h"
#include "foundation/time_convert.h"
#include "host/host_wavefile.h"

namespace {

constexpr int kMaxPiece = 1024;  // frames rendered at a time
constexpr int kMaxFadeSeconds = 10;
constexpr double kGain = 0.5;

void Ignore(int, char const *, void *) {}

// What the synthesizer says on the standard error stream is told by our exceptions.
void SilenceSynthesizer() {
  for (int level : {FLUID_PANIC, FLUID_ERR, FLUID_WARN, FLUID_INFO, FLUID_DBG}) {
    fluid_set_log_function(level, Ignore, nullptr);
  }
}

int GetFramesPerSecond() {
  double const rate = Time_Globals::GetSampleRate();
  if (rate < 8000 || rate > 96000 || rate != std::floor(rate)) {
    throw Host_SoundError("sound can be made at whole sample rates from 8000 to 96000 alone");
  }
  return static_cast<int>(rate);
}

// The system's word on why a file cannot be read is better than the synthesizer's.
void CheckReadable(std::string const & iPath) {
  try {
    Sys_FileInStream const in(iPath);
  } catch (Sys_StreamException const & error) {
    throw Host_SoundError(error.what());
  }
}

struct Delete {
  void operator()(fluid_settings_t * iSettings) const { delete_fluid_settings(iSettings); }
  void operator()(fluid_synth_t * iSynth) const { delete_fluid_synth(iSynth); }
};

}  // namespace

// Takes messages and gives sound.
class Host_WaveWriter::Synthesizer {
public:
  Synthesizer(std::string const & iSoundFont, int iFramesPerSecond) {
    CheckReadable(iSoundFont);
    SilenceSynthesizer();
    mSettings.reset(new_fluid_settings());
    fluid_settings_setnum(mSettings.get(), "synth.sample-rate", iFramesPerSecond);
    fluid_settings_setnum(mSettings.get(), "synth.gain", kGain);
    fluid_settings_setint(mSettings.get(), "synth.threadsafe-api", 0);
    fluid_settings_setint(mSettings.get(), "synth.lock-memory", 0);
    mSynth.reset(new_fluid_synth(mSettings.get()));
    if (!mSynth) throw Host_SoundError("the synthesizer cannot be set up");
    if (fluid_synth_sfload(mSynth.get(), iSoundFont.c_str(), 1) == FLUID_FAILED) {
      throw Host_SoundError(iSoundFont + ": not a SoundFont that can be used");
    }
  }

  void Receive(unsigned char const * iData, int iLength) {
    if (iLength < 2) return;
    int const channel = iData[0] & 0x0f;
    int const first = iData[1];
    int const second = iLength > 2 ? iData[2] : 0;
    switch (iData[0] & 0xf0) {
    case 0x80:
      fluid_synth_noteoff(mSynth.get(), channel, first);
      break;
    case 0x90:  // velocity 0 is understood as an off
      fluid_synth_noteon(mSynth.get(), channel, first, second);
      break;
    case 0xa0:
      fluid_synth_key_pressure(mSynth.get(), channel, first, second);
      break;
    case 0xb0:
      fluid_synth_cc(mSynth.get(), channel, first, second);
      break;
    case 0xc0:
      fluid_synth_program_change(mSynth.get(), channel, first);
      break;
    case 0xd0:
      fluid_synth_channel_pressure(mSynth.get(), channel, first);
      break;
    case 0xe0:
      fluid_synth_pitch_bend(mSynth.get(), channel, first | second << 7);
      break;
    default:
      ReceiveSysex(iData, iLength);
      break;
    }
  }

  void Render(int iNumFrames, float * oLeft, float * oRight) {
    fluid_synth_write_float(mSynth.get(), iNumFrames, oLeft, 0, 1, oRight, 0, 1);
  }

  bool IsSounding() const { return fluid_synth_get_active_voice_count(mSynth.get()) > 0; }

private:
  void ReceiveSysex(unsigned char const * iData, int iLength) {
    if (iData[0] != 0xf0 || iData[iLength - 1] != 0xf7) return;
    fluid_synth_sysex(mSynth.get(), reinterpret_cast<char const *>(iData + 1), iLength - 2, nullptr,
                      nullptr, nullptr, 0);
  }

  std::unique_ptr<fluid_settings_t, Delete> mSettings;
  std::unique_ptr<fluid_synth_t, Delete> mSynth;
};

struct Host_WaveWriter::Rendering {
  Rendering(std::string const & iPath, std::string const & iSoundFont)
      : mFramesPerSecond(GetFramesPerSecond()),
        mSynthesizer(iSoundFont, mFramesPerSecond),
        mFile(iPath, mFramesPerSecond) {}

  // Gives the loudest of the numbers written.
  int RenderPiece(int iNumFrames) {
    mSynthesizer.Render(iNumFrames, mLeft.data(), mRight.data());
    mSamples.clear();
    for (size_t i = 0; i < static_cast<size_t>(iNumFrames); ++i) {
      mSamples.push_back(ToSample(mLeft[i]));
      mSamples.push_back(ToSample(mRight[i]));
    }
    mFile.Write(mSamples);
    int loudest = 0;
    for (short sample : mSamples)
      loudest = std::max(loudest, std::abs(static_cast<int>(sample)));
    return loudest;
  }

  void RenderUpTo(int iOffset) {
    if (mFailure) return;
    try {
      for (; mNumDone < iOffset; mNumDone += std::min(kMaxPiece, iOffset - mNumDone)) {
        RenderPiece(std::min(kMaxPiece, iOffset - mNumDone));
      }
    } catch (...) {
      mFailure = std::current_exception();
    }
  }

  void FadeOut() {
    long long const end = mFile.GetNumFrames() + kMaxFadeSeconds * mFramesPerSecond;
    while (mFile.GetNumFrames() < end) {
      int const loudest = RenderPiece(kMaxPiece);
      if (loudest == 0 && !mSynthesizer.IsSounding()) return;
    }
  }

  short ToSample(float iValue) {
    float const scaled = std::round(iValue * 32767.0f);
    float const kept = std::clamp(scaled, -32768.0f, 32767.0f);
    if (kept != scaled) ++mNumClipped;
    return static_cast<short>(kept);
  }

  int mFramesPerSecond;
  Synthesizer mSynthesizer;
  Host_WaveFile mFile;
  int mNumDone = 0;  // of the block
  int mBlockSize = 0;
  long long mNumClipped = 0;
  std::exception_ptr mFailure;
  std::array<float, kMaxPiece> mLeft{}, mRight{};
  std::vector<short> mSamples;
};

Host_WaveWriter::Host_WaveWriter(std::string const & iPath, std::string const & iSoundFont)
    : mRendering(std::make_unique<Rendering>(iPath, iSoundFont)) {}

Host_WaveWriter::~Host_WaveWriter() = default;

void Host_WaveWriter::BeginBlock(int iNumSamples) {
  mRendering->mNumDone = 0;
  mRendering->mBlockSize = iNumSamples;
}

void Host_WaveWriter::ReceiveMessage(Host_WireMessage const & iMessage) {
  mRendering->RenderUpTo(std::min(iMessage.mOffset, mRendering->mBlockSize));
  mRendering->mSynthesizer.Receive(iMessage.mData, iMessage.mLength);
}

void Host_WaveWriter::EndBlock() {
  mRendering->RenderUpTo(mRendering->mBlockSize);
}

bool Host_WaveWriter::HasFailed() const {
  return mRendering->mFailure != nullptr;
}

void Host_WaveWriter::Finish() {
  if (mRendering->mFailure) std::rethrow_exception(mRendering->mFailure);
  mRendering->FadeOut();
  mRendering->mFile.Close();
}

long long Host_WaveWriter::GetNumFrames() const {
  return mRendering->mFile.GetNumFrames();
}

long long Host_WaveWriter::GetNumClipped() const {
  return mRendering->mNumClipped;
}
