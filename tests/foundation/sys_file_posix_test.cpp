#include <filesystem>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "foundation/sys_stream.h"

namespace {

// A folder in the place of the file behind a stream that is opened next: reading it fails.
class FailingDisk {
public:
  FailingDisk() : mFD(open("/dev/null", O_RDONLY)) { close(mFD); }  // the lowest free one is next
  ~FailingDisk() { Repair(); }

  void Break() {
    mFile = dup(mFD);
    int const folder = open("/", O_RDONLY | O_DIRECTORY);
    dup2(folder, mFD);
    close(folder);
  }
  void Repair() {
    if (mFile < 0) return;
    dup2(mFile, mFD);
    close(mFile);
    mFile = -1;
  }

private:
  int const mFD;
  int mFile = -1;
};

}  // namespace

TEST(Sys_FileInStream, AFailedReadLeavesNothingThatALaterOneTakesForTheFile) {
  std::string const path =
      (std::filesystem::path(testing::TempDir()) / "vrad_failing_disk.bin").string();
  std::ofstream(path, std::ios::binary) << "abcd";
  FailingDisk disk;
  Sys_FileInStream in(path);
  char text[5] = {};
  disk.Break();
  try {
    in.ReadBlock(text, 4);
    FAIL() << "read from a folder";
  } catch (Sys_StreamException const & exception) {
    EXPECT_EQ(exception.GetReason(), Sys_StreamException::kIO);
  }
  EXPECT_EQ(in.GetPos(), 0);
  disk.Repair();
  in.ReadBlock(text, 4);
  EXPECT_STREQ(text, "abcd");
  std::filesystem::remove(path);
}
