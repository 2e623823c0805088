#include "host/host_wavefile.h"

#include <vector>

namespace {

constexpr int kBytesPerFrame = 4;
constexpr long long kHeaderSize = 80;
constexpr long long kMaxPlainSize = 0xffffffffll;
constexpr int kIsInLongForm = -1;  // what stands for a size that 32 bits cannot hold
constexpr int kLongFormSize = 28;

void WriteTag(Sys_TypedOutStream & ioOut, char const * iTag) {
  ioOut.WriteBlock(iTag, 4);
}

// Of the outer frame, which counts what follows its tag and size.
long long GetFrameSize(long long iNumFrames) {
  return kHeaderSize - 8 + iNumFrames * kBytesPerFrame;
}

void WriteFormat(Sys_TypedOutStream & ioOut, int iFramesPerSecond) {
  WriteTag(ioOut, "fmt ");
  ioOut.Write(16);
  ioOut.Write(static_cast<short>(1));  // plain numbers
  ioOut.Write(static_cast<short>(2));  // channels
  ioOut.Write(iFramesPerSecond);
  ioOut.Write(iFramesPerSecond * kBytesPerFrame);
  ioOut.Write(static_cast<short>(kBytesPerFrame));
  ioOut.Write(static_cast<short>(16));  // bits
}

// The place of the long form's sizes is there in every file, since the length is known last.
void WriteLongSizes(Sys_TypedOutStream & ioOut, long long iNumFrames, bool iIsLong) {
  WriteTag(ioOut, iIsLong ? "ds64" : "JUNK");
  ioOut.Write(kLongFormSize);
  ioOut.Write(iIsLong ? GetFrameSize(iNumFrames) : 0ll);
  ioOut.Write(iIsLong ? iNumFrames * kBytesPerFrame : 0ll);
  ioOut.Write(iIsLong ? iNumFrames : 0ll);
  ioOut.Write(0);  // no further sizes
}

}  // namespace

void Host_WriteWaveHeader(Sys_TypedOutStream & ioOut, long long iNumFrames, int iFramesPerSecond) {
  bool const isLong = GetFrameSize(iNumFrames) > kMaxPlainSize;
  WriteTag(ioOut, isLong ? "RF64" : "RIFF");
  ioOut.Write(isLong ? kIsInLongForm : static_cast<int>(GetFrameSize(iNumFrames)));
  WriteTag(ioOut, "WAVE");
  WriteLongSizes(ioOut, iNumFrames, isLong);
  WriteFormat(ioOut, iFramesPerSecond);
  WriteTag(ioOut, "data");
  ioOut.Write(isLong ? kIsInLongForm : static_cast<int>(iNumFrames * kBytesPerFrame));
}

Host_WaveFile::Host_WaveFile(std::string const & iPath, int iFramesPerSecond)
    : mOut(iPath), mFramesPerSecond(iFramesPerSecond) {
  Host_WriteWaveHeader(mOut, 0, mFramesPerSecond);
}

void Host_WaveFile::Write(std::span<short const> iSamples) {
  std::vector<unsigned char> bytes;
  bytes.reserve(iSamples.size() * 2);
  for (short sample : iSamples) {
    unsigned const bits = static_cast<unsigned short>(sample);
    bytes.push_back(static_cast<unsigned char>(bits & 0xff));
    bytes.push_back(static_cast<unsigned char>(bits >> 8));
  }
  mOut.WriteBlock(bytes.data(), static_cast<int>(bytes.size()));
  mNumFrames += static_cast<long long>(iSamples.size() / 2);
}

void Host_WaveFile::Close() {
  mOut.SetPos(0);
  Host_WriteWaveHeader(mOut, mNumFrames, mFramesPerSecond);
  mOut.Close();
}
