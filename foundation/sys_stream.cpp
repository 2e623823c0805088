#include "foundation/sys_stream.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "foundation/sys_streamnumber.h"

namespace {

template <class T>
void WriteLittleEndian(Sys_TypedOutStream & iStream, T iValue) {
  unsigned char bytes[sizeof(T)];
  Sys_StoreLittleEndian(bytes, iValue);
  iStream.WriteBlock(bytes, sizeof(T));
}

template <class T>
void ReadLittleEndian(Sys_TypedInStream & iStream, T * oValue) {
  unsigned char bytes[sizeof(T)];
  iStream.ReadBlock(bytes, sizeof(T));
  *oValue = Sys_LoadLittleEndian<T>(bytes);
}

}  // namespace

Sys_StreamException::Sys_StreamException(EReason iReason, std::string const & iText)
    : Cmn_Exception(iText), mReason(iReason) {}

Sys_StreamException::~Sys_StreamException() = default;

Sys_StreamException * Sys_StreamException::Clone() const {
  return new Sys_StreamException(*this);
}

void Sys_StreamException::Throw() const {
  throw Sys_StreamException(*this);
}

Sys_TypedOutStream::~Sys_TypedOutStream() = default;

void Sys_TypedOutStream::Write(bool iValue) {
  WriteLittleEndian(*this, static_cast<signed char>(iValue ? 1 : 0));
}
void Sys_TypedOutStream::Write(signed char iValue) {
  WriteLittleEndian(*this, iValue);
}
void Sys_TypedOutStream::Write(short iValue) {
  WriteLittleEndian(*this, iValue);
}
void Sys_TypedOutStream::Write(int iValue) {
  WriteLittleEndian(*this, iValue);
}
void Sys_TypedOutStream::Write(long long iValue) {
  WriteLittleEndian(*this, iValue);
}

Sys_TypedInStream::~Sys_TypedInStream() = default;

void Sys_TypedInStream::Read(bool * oValue) {
  signed char byte;
  ReadLittleEndian(*this, &byte);
  *oValue = byte != 0;
}
void Sys_TypedInStream::Read(signed char * oValue) {
  ReadLittleEndian(*this, oValue);
}
void Sys_TypedInStream::Read(short * oValue) {
  ReadLittleEndian(*this, oValue);
}
void Sys_TypedInStream::Read(int * oValue) {
  ReadLittleEndian(*this, oValue);
}
void Sys_TypedInStream::Read(long long * oValue) {
  ReadLittleEndian(*this, oValue);
}

Sys_MemoryOutStream::Sys_MemoryOutStream() = default;
Sys_MemoryOutStream::~Sys_MemoryOutStream() = default;

void Sys_MemoryOutStream::WriteBlock(void const * iData, int iNumBytes) {
  if (iNumBytes <= 0) return;
  if (mPos < 0 || mPos > std::numeric_limits<long long>::max() - iNumBytes)
    throw Sys_StreamException(Sys_StreamException::kIO, "written outside of the stream");
  auto const * const data = static_cast<unsigned char const *>(iData);
  size_t const pos = static_cast<size_t>(mPos), count = static_cast<size_t>(iNumBytes);
  if (pos == mBytes.size()) {
    mBytes.insert(mBytes.end(), data, data + count);
  } else {
    if (pos + count > mBytes.size()) mBytes.resize(pos + count);
    std::copy_n(data, count, mBytes.begin() + mPos);
  }
  mPos += iNumBytes;
}

long long Sys_MemoryOutStream::GetPos() {
  return mPos;
}

void Sys_MemoryOutStream::SetPos(long long iPos) {
  mPos = iPos;
}

Sys_MemoryInStream::Sys_MemoryInStream(std::vector<unsigned char> iBytes)
    : mBytes(std::move(iBytes)) {}

Sys_MemoryInStream::~Sys_MemoryInStream() = default;

void Sys_MemoryInStream::ReadBlock(void * oData, int iNumBytes) {
  if (iNumBytes <= 0) return;
  if (iNumBytes > BytesLeft())
    throw Sys_StreamException(Sys_StreamException::kEndOfStream, "end of stream");
  std::memcpy(oData, mBytes.data() + mPos, static_cast<size_t>(iNumBytes));
  mPos += iNumBytes;
}

long long Sys_MemoryInStream::GetPos() {
  return mPos;
}

void Sys_MemoryInStream::SetPos(long long iPos) {
  mPos = iPos;
}

long long Sys_MemoryInStream::BytesLeft() {
  long long const size = static_cast<long long>(mBytes.size());
  return mPos < 0 || mPos > size ? 0 : size - mPos;
}
