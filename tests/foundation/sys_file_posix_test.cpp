#include <filesystem>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "foundation/sys_stream.h"

namespace fs = std::filesystem;

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

class Sys_NewFile : public testing::Test {
protected:
  Sys_NewFile() { fs::create_directory(mFolder); }
  ~Sys_NewFile() override { fs::remove_all(mFolder); }

  void Write(std::string const & iName) {
    Sys_FileOutStream out((mFolder / iName).string());
    out.WriteBlock("new", 3);
    out.Close();
  }
  std::string WhyNot(std::string const & iName) {
    try {
      Write(iName);
    } catch (Sys_StreamException const & exception) {
      return exception.what();
    }
    return "";
  }

  fs::path const mFolder = fs::path(testing::TempDir()) / "sys_file_posix_test";
};

TEST_F(Sys_NewFile, IsMadeBehindALinkToNothing) {
  fs::create_directory(mFolder / "inner");
  fs::create_symlink("inner/second", mFolder / "first");
  fs::create_symlink("third", mFolder / "inner/second");
  Write("first");
  EXPECT_TRUE(fs::is_symlink(mFolder / "first"));
  EXPECT_TRUE(fs::is_symlink(mFolder / "inner/second"));
  EXPECT_EQ(fs::file_size(mFolder / "inner/third"), 3u);
}

TEST_F(Sys_NewFile, RefusesLinksInACircle) {
  fs::create_symlink("second", mFolder / "first");
  fs::create_symlink("first", mFolder / "second");
  EXPECT_EQ(WhyNot("first"), (mFolder / "first").string() + ": Too many levels of symbolic links");
  EXPECT_TRUE(fs::is_symlink(mFolder / "first"));
  EXPECT_TRUE(fs::is_symlink(mFolder / "second"));
}

TEST_F(Sys_NewFile, RefusesWhatIsNoFile) {
  fs::create_symlink("/dev/null", mFolder / "device");
  fs::create_directory(mFolder / "folder");
  EXPECT_EQ(WhyNot("device"), (mFolder / "device").string() + ": Not a regular file");
  EXPECT_EQ(WhyNot("folder"), (mFolder / "folder").string() + ": Is a directory");
}

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
