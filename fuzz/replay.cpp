// Runs a fuzzer's entry on files, with any compiler and without a fuzzing engine. Arguments are
// files and folders; a folder that is missing counts as empty, but something must have been run.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * iBytes, size_t iSize);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> FindFiles(fs::path const & iPath) {
  std::vector<fs::path> files;
  if (fs::is_directory(iPath)) {
    for (fs::directory_entry const & entry : fs::directory_iterator(iPath))
      if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
  } else if (fs::is_regular_file(iPath)) {
    files.push_back(iPath);
  }
  return files;
}

void Run(fs::path const & iFile) {
  std::ifstream stream(iFile, std::ios::binary);
  std::vector<char> const bytes{std::istreambuf_iterator<char>(stream), {}};
  std::printf("%s: %zu bytes\n", iFile.filename().string().c_str(), bytes.size());
  std::fflush(stdout);
  LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const *>(bytes.data()), bytes.size());
}

}  // namespace

int main(int iNumArguments, char ** iArguments) {
  int numRun = 0;
  for (int i = 1; i < iNumArguments; ++i) {
    for (fs::path const & file : FindFiles(iArguments[i])) {
      Run(file);
      ++numRun;
    }
  }
  std::printf("%d inputs\n", numRun);
  return numRun == 0 ? 1 : 0;
}
