#include "foundation/sys_file.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/sys_stream.h"

namespace {

[[noreturn]] void Fail(std::string const & iPath, std::string const & iWhy) {
  throw Sys_StreamException(Sys_StreamException::kIO, iPath + ": " + iWhy);
}

[[noreturn]] void Fail(std::string const & iPath, int iError) {
  Fail(iPath, std::generic_category().message(iError));
}

int AsFD(std::intptr_t iHandle) {
  return static_cast<int>(iHandle);
}

std::string FolderOf(std::string const & iPath) {
  size_t const slash = iPath.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : iPath.substr(0, slash);
}

// The file behind a link is replaced, not the link, also where there is no such file yet.
std::string Resolved(std::string const & iPath, int iMaxLinks = 40) {
  std::unique_ptr<char, void (*)(void *)> const resolved(realpath(iPath.c_str(), nullptr), free);
  if (resolved) return resolved.get();
  char link[PATH_MAX];
  ssize_t const length = readlink(iPath.c_str(), link, sizeof link);
  if (length <= 0 || length == PATH_MAX || iMaxLinks == 0) return iPath;
  std::string const target(link, static_cast<size_t>(length));
  return Resolved(target[0] == '/' ? target : FolderOf(iPath) + "/" + target, iMaxLinks - 1);
}

// Names that no other process and no earlier file uses.
int OpenBeside(std::string const & iTargetPath, std::string & oPath) {
  static std::atomic<unsigned> sCounter(0);
  for (;;) {
    oPath =
        iTargetPath + "." + std::to_string(getpid()) + "-" + std::to_string(++sCounter) + ".new";
    int const fd = open(oPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0 || errno != EEXIST) return fd;
  }
}

// Not every file system can do this to a folder, and not every folder may be opened.
void SyncFolder(std::string const & iFolder) {
  int const fd = open(iFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  int const error = fsync(fd) == 0 ? 0 : errno;
  close(fd);
  if (error == EIO || error == ENOSPC) Fail(iFolder, error);
}

}  // namespace

Sys_NewFile::Sys_NewFile(std::string const & iTargetPath)
    : mTargetPath(iTargetPath), mRealPath(Resolved(iTargetPath)), mHandle(-1) {
  struct stat target;
  bool const exists = stat(mRealPath.c_str(), &target) == 0;
  if (!exists && errno != ENOENT) Fail(mTargetPath, errno);
  if (exists && S_ISDIR(target.st_mode)) Fail(mTargetPath, EISDIR);
  if (exists && !S_ISREG(target.st_mode)) Fail(mTargetPath, "Not a regular file");
  mHandle = OpenBeside(mRealPath, mPath);
  if (mHandle < 0) Fail(mTargetPath, errno);
  // Best effort: the new file may have the rights of a new file.
  if (exists && fchmod(AsFD(mHandle), target.st_mode & 07777) != 0) errno = 0;
}

Sys_NewFile::~Sys_NewFile() {
  CloseHandle();
  if (!mIsCommitted) unlink(mPath.c_str());
}

void Sys_NewFile::CloseHandle() {
  if (mHandle >= 0) close(AsFD(mHandle));
  mHandle = -1;
}

void Sys_NewFile::WriteAt(long long iPos, void const * iData, size_t iNumBytes) {
  char const * data = static_cast<char const *>(iData);
  while (iNumBytes > 0) {
    ssize_t const written = pwrite(AsFD(mHandle), data, iNumBytes, static_cast<off_t>(iPos));
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) Fail(mTargetPath, errno);
    if (written == 0) Fail(mTargetPath, ENOSPC);
    data += written;
    iPos += written;
    iNumBytes -= static_cast<size_t>(written);
  }
}

void Sys_NewFile::Commit() {
  if (fsync(AsFD(mHandle)) != 0) Fail(mTargetPath, errno);
  int const error = close(AsFD(mHandle)) == 0 ? 0 : errno;
  mHandle = -1;
  if (error != 0 && error != EINTR) Fail(mTargetPath, error);
  if (rename(mPath.c_str(), mRealPath.c_str()) != 0) Fail(mTargetPath, errno);
  mIsCommitted = true;
  SyncFolder(FolderOf(mRealPath));
}

Sys_ExistingFile::Sys_ExistingFile(std::string const & iPath)
    : mPath(iPath), mHandle(open(iPath.c_str(), O_RDONLY | O_CLOEXEC)) {
  if (mHandle < 0) Fail(iPath, errno);
  struct stat status;
  int const error = fstat(AsFD(mHandle), &status) != 0 ? errno
                    : S_ISDIR(status.st_mode)          ? EISDIR
                                                       : 0;
  if (error != 0) {
    close(AsFD(mHandle));
    Fail(iPath, error);
  }
  mSize = status.st_size;
}

Sys_ExistingFile::~Sys_ExistingFile() {
  close(AsFD(mHandle));
}

size_t Sys_ExistingFile::ReadAt(long long iPos, void * oData, size_t iNumBytes) {
  char * const data = static_cast<char *>(oData);
  size_t numRead = 0;
  while (numRead < iNumBytes) {
    ssize_t const got = pread(AsFD(mHandle), data + numRead, iNumBytes - numRead,
                              static_cast<off_t>(iPos + static_cast<long long>(numRead)));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) Fail(mPath, errno);
    if (got == 0) break;
    numRead += static_cast<size_t>(got);
  }
  return numRead;
}
