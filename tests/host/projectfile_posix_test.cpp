// A save that is stopped leaves the old project as it was and nothing beside it.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <sys/resource.h>

#include <gtest/gtest.h>

#include "project_samples.h"

namespace {

namespace fs = std::filesystem;

using project::Bytes;

// Files of this process end here: what is written behind fails, as on a full disk.
class FileSizeLimit {
public:
  explicit FileSizeLimit(size_t iNumBytes) : mFormerHandler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &mFormer);
    rlimit const limit = {iNumBytes, mFormer.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  FileSizeLimit(FileSizeLimit const &) = delete;
  FileSizeLimit & operator=(FileSizeLimit const &) = delete;
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &mFormer);
    std::signal(SIGXFSZ, mFormerHandler);
  }

private:
  rlimit mFormer;
  void (*mFormerHandler)(int);
};

class StoppedSave : public testing::Test {
protected:
  StoppedSave() {
    fs::create_directory(mFolder);
    Host_WriteProjectFile(Host_Song(), mPath);
  }
  ~StoppedSave() override { fs::remove_all(mFolder); }

  Bytes Contents() const {
    std::ifstream file(mPath, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
  }
  std::ptrdiff_t NumFiles() const {
    return std::distance(fs::directory_iterator(mFolder), fs::directory_iterator());
  }

  fs::path const mFolder = fs::path(testing::TempDir()) / "projectfile_posix_test";
  std::string const mPath = (mFolder / "song.vrad").string();
};

TEST_F(StoppedSave, LeavesTheOldFileWhateverByteItStopsAt) {
  Host_Song const song = project::MakeSong();
  Bytes const before = Contents(), after = Host_WriteProjectFile(song);
  ASSERT_GT(after.size(), 2500u);
  for (size_t size = 0; size < after.size(); ++size) {
    {
      FileSizeLimit const limit(size);
      ASSERT_THROW(Host_WriteProjectFile(song, mPath), Sys_StreamException) << size;
    }
    ASSERT_EQ(Contents(), before) << size;
    ASSERT_EQ(NumFiles(), 1) << size;
  }
  FileSizeLimit const limit(after.size());
  Host_WriteProjectFile(song, mPath);
  EXPECT_EQ(Contents(), after);
  EXPECT_EQ(NumFiles(), 1);
}

}  // namespace
