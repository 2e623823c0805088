#include "foundation/sys_stream.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "foundation/sys_file.h"

namespace {

constexpr size_t kBufferSize = 64 * 1024;

// Also where the file has become shorter than it was when it was opened.
[[noreturn]] void ThrowEndOfFile() {
  throw Sys_StreamException(Sys_StreamException::kEndOfStream, "end of file");
}

}  // namespace

Sys_FileOutStream::Sys_FileOutStream(std::string const & iPath)
    : mFileP(std::make_unique<Sys_NewFile>(iPath)) {
  mBuffer.reserve(kBufferSize);
}

Sys_FileOutStream::~Sys_FileOutStream() = default;

// What was lost once stays lost: `mFailed` is never cleared by a later success.
void Sys_FileOutStream::WriteThrough(long long iPos, void const * iData, size_t iNumBytes) {
  if (mFailed) throw Sys_StreamException(Sys_StreamException::kIO, "an earlier write failed");
  mFailed = true;
  mFileP->WriteAt(iPos, iData, iNumBytes);
  mFailed = false;
}

void Sys_FileOutStream::Flush() {
  if (mBuffer.empty()) return;
  WriteThrough(mPos - static_cast<long long>(mBuffer.size()), mBuffer.data(), mBuffer.size());
  mBuffer.clear();
}

void Sys_FileOutStream::Close() {
  if (!mFileP) return;
  Flush();
  if (mFailed) throw Sys_StreamException(Sys_StreamException::kIO, "an earlier write failed");
  mFailed = true;
  mFileP->Commit();
  mFileP.reset();
}

void Sys_FileOutStream::WriteBlock(void const * iData, int iNumBytes) {
  if (iNumBytes <= 0) return;
  if (!mFileP) throw Sys_StreamException(Sys_StreamException::kIO, "the file is closed");
  if (mPos < 0 || mPos > std::numeric_limits<long long>::max() - iNumBytes)
    throw Sys_StreamException(Sys_StreamException::kIO, "written outside of the file");
  auto const * const data = static_cast<unsigned char const *>(iData);
  size_t const count = static_cast<size_t>(iNumBytes);
  if (mBuffer.size() + count > kBufferSize) Flush();
  if (count > kBufferSize)
    WriteThrough(mPos, data, count);
  else
    mBuffer.insert(mBuffer.end(), data, data + count);
  mPos += iNumBytes;
}

long long Sys_FileOutStream::GetPos() {
  return mPos;
}

void Sys_FileOutStream::SetPos(long long iPos) {
  if (iPos != mPos) Flush();
  mPos = iPos;
}

Sys_FileInStream::Sys_FileInStream(std::string const & iPath)
    : mFileP(std::make_unique<Sys_ExistingFile>(iPath)) {}

Sys_FileInStream::~Sys_FileInStream() = default;

// From the position on. After a failed read it holds nothing that a later one could take for the
// file's.
void Sys_FileInStream::FillBuffer() {
  std::vector<unsigned char> buffer = std::move(mBuffer);
  mBuffer.clear();
  buffer.resize(std::min(kBufferSize, static_cast<size_t>(BytesLeft())));
  buffer.resize(mFileP->ReadAt(mPos, buffer.data(), buffer.size()));
  mBuffer = std::move(buffer);
  mBufferPos = mPos;
}

void Sys_FileInStream::ReadBlock(void * oData, int iNumBytes) {
  if (iNumBytes <= 0) return;
  if (iNumBytes > BytesLeft()) ThrowEndOfFile();
  size_t const count = static_cast<size_t>(iNumBytes);
  bool const isBuffered =
      mPos >= mBufferPos && mPos + iNumBytes <= mBufferPos + static_cast<long long>(mBuffer.size());
  if (!isBuffered && count > kBufferSize) {
    if (mFileP->ReadAt(mPos, oData, count) < count) ThrowEndOfFile();
  } else {
    if (!isBuffered) FillBuffer();
    if (mPos == mBufferPos && mBuffer.size() < count) ThrowEndOfFile();
    std::memcpy(oData, mBuffer.data() + (mPos - mBufferPos), count);
  }
  mPos += iNumBytes;
}

long long Sys_FileInStream::GetPos() {
  return mPos;
}

void Sys_FileInStream::SetPos(long long iPos) {
  mPos = iPos;
}

long long Sys_FileInStream::BytesLeft() {
  long long const size = mFileP->GetSize();
  return mPos < 0 || mPos > size ? 0 : size - mPos;
}
