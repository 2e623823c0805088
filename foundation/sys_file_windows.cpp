#include "foundation/sys_file.h"

#include <algorithm>
#include <atomic>
#include <system_error>

#include <windows.h>

#include "foundation/sys_stream.h"

namespace {

[[noreturn]] void Fail(std::string const & iPath, DWORD iError) {
  throw Sys_StreamException(Sys_StreamException::kIO,
                            iPath + ": " +
                                std::system_category().message(static_cast<int>(iError)));
}

HANDLE AsHandle(std::intptr_t iHandle) {
  return reinterpret_cast<HANDLE>(iHandle);
}

std::wstring AsWide(std::string const & iPath) {
  int const size = static_cast<int>(iPath.size());
  int const length =
      MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, iPath.data(), size, nullptr, 0);
  if (length == 0 && size > 0) Fail(iPath, GetLastError());
  std::wstring wide(static_cast<size_t>(length), L'\0');
  MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, iPath.data(), size, wide.data(), length);
  return wide;
}

OVERLAPPED AtPosition(long long iPos) {
  OVERLAPPED place = {};
  place.Offset = static_cast<DWORD>(iPos);
  place.OffsetHigh = static_cast<DWORD>(iPos >> 32);
  return place;
}

DWORD PartSize(size_t iNumBytes) {
  return static_cast<DWORD>(std::min<size_t>(iNumBytes, 1U << 30));
}

// Names that no other process and no earlier file uses.
HANDLE OpenBeside(std::string const & iTargetPath, std::string & oPath) {
  static std::atomic<unsigned> sCounter(0);
  for (;;) {
    oPath = iTargetPath + "." + std::to_string(GetCurrentProcessId()) + "-" +
            std::to_string(++sCounter) + ".new";
    HANDLE const handle = CreateFileW(AsWide(oPath).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle != INVALID_HANDLE_VALUE || GetLastError() != ERROR_FILE_EXISTS) return handle;
  }
}

}  // namespace

Sys_NewFile::Sys_NewFile(std::string const & iTargetPath)
    : mTargetPath(iTargetPath), mRealPath(iTargetPath), mHandle(-1) {
  DWORD const attributes = GetFileAttributesW(AsWide(iTargetPath).c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY))
    Fail(iTargetPath, ERROR_ACCESS_DENIED);
  HANDLE const handle = OpenBeside(mRealPath, mPath);
  if (handle == INVALID_HANDLE_VALUE) Fail(iTargetPath, GetLastError());
  mHandle = reinterpret_cast<std::intptr_t>(handle);
}

Sys_NewFile::~Sys_NewFile() {
  CloseHandle();
  if (!mIsCommitted) DeleteFileW(AsWide(mPath).c_str());
}

void Sys_NewFile::CloseHandle() {
  if (mHandle != -1) ::CloseHandle(AsHandle(mHandle));
  mHandle = -1;
}

void Sys_NewFile::WriteAt(long long iPos, void const * iData, size_t iNumBytes) {
  char const * data = static_cast<char const *>(iData);
  while (iNumBytes > 0) {
    OVERLAPPED place = AtPosition(iPos);
    DWORD written = 0;
    if (!WriteFile(AsHandle(mHandle), data, PartSize(iNumBytes), &written, &place))
      Fail(mTargetPath, GetLastError());
    if (written == 0) Fail(mTargetPath, ERROR_DISK_FULL);
    data += written;
    iPos += written;
    iNumBytes -= written;
  }
}

void Sys_NewFile::Commit() {
  if (!FlushFileBuffers(AsHandle(mHandle))) Fail(mTargetPath, GetLastError());
  CloseHandle();
  // Written through: the call returns when the folder is on the disk too.
  if (!MoveFileExW(AsWide(mPath).c_str(), AsWide(mRealPath).c_str(),
                   MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
    Fail(mTargetPath, GetLastError());
  mIsCommitted = true;
}

Sys_ExistingFile::Sys_ExistingFile(std::string const & iPath) : mPath(iPath), mHandle(-1) {
  HANDLE const handle = CreateFileW(AsWide(iPath).c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) Fail(iPath, GetLastError());
  LARGE_INTEGER size;
  if (!GetFileSizeEx(handle, &size)) {
    DWORD const error = GetLastError();
    ::CloseHandle(handle);
    Fail(iPath, error);
  }
  mHandle = reinterpret_cast<std::intptr_t>(handle);
  mSize = size.QuadPart;
}

Sys_ExistingFile::~Sys_ExistingFile() {
  ::CloseHandle(AsHandle(mHandle));
}

size_t Sys_ExistingFile::ReadAt(long long iPos, void * oData, size_t iNumBytes) {
  char * const data = static_cast<char *>(oData);
  size_t numRead = 0;
  while (numRead < iNumBytes) {
    OVERLAPPED place = AtPosition(iPos + static_cast<long long>(numRead));
    DWORD got = 0;
    if (!ReadFile(AsHandle(mHandle), data + numRead, PartSize(iNumBytes - numRead), &got, &place)) {
      if (GetLastError() == ERROR_HANDLE_EOF) break;
      Fail(mPath, GetLastError());
    }
    if (got == 0) break;
    numRead += got;
  }
  return numRead;
}
