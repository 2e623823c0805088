// The system's files, as the file streams need them: internal to foundation/. Each system has its
// own source file. Paths are UTF-8; failures are `Sys_StreamException` with `kIO`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// A file under a name of its own, in the folder of the file that it is to replace.
class Sys_NewFile {
public:
  explicit Sys_NewFile(std::string const & iTargetPath);
  /// Removes the file unless it was committed.
  ~Sys_NewFile();
  Sys_NewFile(Sys_NewFile const &) = delete;
  Sys_NewFile & operator=(Sys_NewFile const &) = delete;

  /// What lies between the end and a position behind it becomes zeros.
  void WriteAt(long long iPos, void const * iData, size_t iNumBytes);

  /// Brings the bytes to the disk, then takes the target's place in one step.
  void Commit();

private:
  void CloseHandle();

  std::string mTargetPath;  // as it was given
  std::string mRealPath;    // of the same file, behind all links
  std::string mPath;        // of the new one
  std::intptr_t mHandle;    // -1 when closed
  bool mIsCommitted = false;
};

/// A file opened for reading.
class Sys_ExistingFile {
public:
  explicit Sys_ExistingFile(std::string const & iPath);
  ~Sys_ExistingFile();
  Sys_ExistingFile(Sys_ExistingFile const &) = delete;
  Sys_ExistingFile & operator=(Sys_ExistingFile const &) = delete;

  /// When it was opened.
  long long GetSize() const { return mSize; }

  /// Gives how many bytes there were; fewer than asked only at the end.
  size_t ReadAt(long long iPos, void * oData, size_t iNumBytes);

private:
  std::string mPath;
  std::intptr_t mHandle;
  long long mSize = 0;
};
