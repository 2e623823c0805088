#include "host/host_wavefile.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

namespace {

std::string PrintHeader(long long iNumFrames) {
  Sys_MemoryOutStream out;
  Host_WriteWaveHeader(out, iNumFrames, 48000);
  std::string text;
  for (unsigned char byte : out.GetBytes()) {
    std::array<char, 8> number;
    std::snprintf(number.data(), number.size(), byte >= 32 && byte < 127 ? "%c" : "[%d]", byte);
    text += number.data();
  }
  return text;
}

std::string const kFormat = "fmt [16][0][0][0]"
                            "[1][0][2][0]"
                            "[128][187][0][0]"  // 48000 frames
                            "[0][238][2][0]"    // 192000 bytes
                            "[4][0][16][0]";
std::string const kNoLongSizes = "JUNK[28][0][0][0]"
                                 "[0][0][0][0][0][0][0][0][0][0][0][0][0][0]"
                                 "[0][0][0][0][0][0][0][0][0][0][0][0][0][0]";

std::string GetPath(char const * iName) {
  return testing::TempDir() + "vrad_wavefile_" + iName + ".wav";
}

std::string ReadFile(std::string const & iPath) {
  std::ifstream in(iPath, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace

TEST(Host_WriteWaveHeader, TakesEightyBytes) {
  Sys_MemoryOutStream out;
  Host_WriteWaveHeader(out, 5, 48000);
  EXPECT_EQ(80u, out.GetBytes().size());
}

TEST(Host_WriteWaveHeader, SaysTheSizes) {
  // 3 frames are 12 bytes, and 72 stand between.
  EXPECT_EQ("RIFFT[0][0][0]WAVE" + kNoLongSizes + kFormat + "data[12][0][0][0]", PrintHeader(3));
}

TEST(Host_WriteWaveHeader, OfNoSound) {
  EXPECT_EQ("RIFFH[0][0][0]WAVE" + kNoLongSizes + kFormat + "data[0][0][0][0]", PrintHeader(0));
}

TEST(Host_WriteWaveHeader, IsPlainUpToTheLargestSize) {
  // 72 + 4 * 1073741805 = 4294967292, the last multiple of 4 in 32 bits.
  EXPECT_EQ("RIFF[252][255][255][255]WAVE" + kNoLongSizes + kFormat + "data[180][255][255][255]",
            PrintHeader(1073741805));
}

TEST(Host_WriteWaveHeader, IsInTheLongFormBeyond) {
  EXPECT_EQ("RF64[255][255][255][255]WAVE"
            "ds64[28][0][0][0]"
            "[0][0][0][0][1][0][0][0]"          // 4294967296
            "[184][255][255][255][0][0][0][0]"  // 4294967224
            "[238][255][255]?[0][0][0][0]"      // 1073741806
            "[0][0][0][0]" +
                kFormat + "data[255][255][255][255]",
            PrintHeader(1073741806));
}

TEST(Host_WaveFile, HoldsWhatWasWritten) {
  std::string const path = GetPath("holds");
  Host_WaveFile file(path, 48000);
  file.Write(std::array<short, 2>{1, -2});
  file.Write(std::array<short, 4>{32767, -32768, 0, 258});
  EXPECT_EQ(3, file.GetNumFrames());
  file.Close();
  std::string const bytes = ReadFile(path);
  EXPECT_EQ(92u, bytes.size());
  EXPECT_EQ(std::string("\x01\x00\xfe\xff\xff\x7f\x00\x80\x00\x00\x02\x01", 12), bytes.substr(80));
  EXPECT_EQ(std::string("\x54\x00\x00\x00", 4), bytes.substr(4, 4));
  EXPECT_EQ(0, std::remove(path.c_str()));
}

TEST(Host_WaveFile, LeavesNothingUnlessClosed) {
  std::string const path = GetPath("unless_closed");
  {
    Host_WaveFile file(path, 48000);
    file.Write(std::array<short, 2>{1, 2});
  }
  EXPECT_FALSE(std::ifstream(path).is_open());
}

TEST(Host_WaveFile, LeavesTheOldFileUnlessClosed) {
  std::string const path = GetPath("old");
  std::ofstream(path) << "old";
  {
    Host_WaveFile file(path, 48000);
    file.Write(std::array<short, 2>{1, 2});
  }
  EXPECT_EQ("old", ReadFile(path));
  EXPECT_EQ(0, std::remove(path.c_str()));
}

TEST(Host_WaveFile, SaysWhereItCannotBe) {
  std::string const path = testing::TempDir() + "vrad_no_such_folder/out.wav";
  try {
    Host_WaveFile const file(path, 48000);
    FAIL() << "made";
  } catch (Sys_StreamException const & error) {
    EXPECT_EQ(path + ": No such file or directory", error.what());
  }
}
