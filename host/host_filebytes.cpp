#include "host/host_filebytes.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

#include "foundation/sys_stream.h"

namespace {

struct CloseFile {
  void operator()(std::FILE * iFile) const { std::fclose(iFile); }
};

[[noreturn]] void ThrowErrno() {
  throw std::system_error(errno, std::generic_category());
}

}  // namespace

// In growing blocks, so that pipes can be read too.
std::vector<unsigned char> Host_LoadBytes(std::string const & iPath,
                                          bool (*iMayGoOn)(std::span<unsigned char const>)) {
  std::unique_ptr<std::FILE, CloseFile> const file(std::fopen(iPath.c_str(), "rb"));
  if (!file) ThrowErrno();
  std::vector<unsigned char> bytes;
  for (size_t block = 16;; block = std::max<size_t>(bytes.size(), 1u << 16)) {
    size_t const size = bytes.size();
    bytes.resize(size + block);
    size_t const numRead = std::fread(bytes.data() + size, 1, block, file.get());
    bytes.resize(size + numRead);
    if (std::ferror(file.get())) ThrowErrno();
    if (numRead < block || (size == 0 && !iMayGoOn(bytes))) return bytes;
  }
}

void Host_WriteBytes(Sys_TypedOutStream & ioStream, std::span<unsigned char const> iBytes) {
  constexpr size_t kBlock = 1 << 20;
  for (size_t at = 0; at < iBytes.size(); at += kBlock) {
    size_t const size = std::min(kBlock, iBytes.size() - at);
    ioStream.WriteBlock(iBytes.data() + at, static_cast<int>(size));
  }
}

void Host_SaveBytes(std::span<unsigned char const> iBytes, std::string const & iPath) {
  Sys_FileOutStream stream(iPath);
  Host_WriteBytes(stream, iBytes);
  stream.Close();
}
