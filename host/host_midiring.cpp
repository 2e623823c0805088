#include "host/host_midiring.h"

#include <algorithm>
#include <bit>
#include <cstring>

Host_MidiRing::Host_MidiRing(size_t iNumBytes) : mBytes(std::bit_ceil(iNumBytes)) {}

bool Host_MidiRing::Push(long long iTime, unsigned char const * iData, int iLength) noexcept {
  size_t const in = mNumIn.load(std::memory_order_relaxed);
  size_t const numFree = mBytes.size() - (in - mNumOut.load(std::memory_order_acquire));
  size_t const length = static_cast<size_t>(iLength);
  size_t const numNeeded = kHeadSize + length + (iLength > 3 ? mBytes.size() / 4 : 0);
  if (numNeeded > numFree) return false;
  Write(in, &iTime, sizeof iTime);
  Write(in + sizeof iTime, &iLength, sizeof iLength);
  Write(in + kHeadSize, iData, length);
  mNumIn.store(in + kHeadSize + length, std::memory_order_release);
  return true;
}

bool Host_MidiRing::Peek(long long & oTime) const noexcept {
  size_t const out = mNumOut.load(std::memory_order_relaxed);
  if (mNumIn.load(std::memory_order_acquire) == out) return false;
  oTime = ReadHead(out).mTime;
  return true;
}

void Host_MidiRing::Pop(std::vector<unsigned char> & oMessage) {
  size_t const out = mNumOut.load(std::memory_order_relaxed);
  size_t const length = static_cast<size_t>(ReadHead(out).mLength);
  oMessage.resize(length);
  Read(out + kHeadSize, oMessage.data(), length);
  mNumOut.store(out + kHeadSize + length, std::memory_order_release);
}

// What reaches the end of the memory goes on at its beginning.
void Host_MidiRing::Write(size_t iAt, void const * iData, size_t iNumBytes) noexcept {
  if (iNumBytes == 0) return;  // then the data may be null
  size_t const place = iAt & (mBytes.size() - 1);
  size_t const numFirst = std::min(iNumBytes, mBytes.size() - place);
  std::memcpy(mBytes.data() + place, iData, numFirst);
  std::memcpy(mBytes.data(), static_cast<unsigned char const *>(iData) + numFirst,
              iNumBytes - numFirst);
}

void Host_MidiRing::Read(size_t iAt, void * oData, size_t iNumBytes) const noexcept {
  if (iNumBytes == 0) return;
  size_t const place = iAt & (mBytes.size() - 1);
  size_t const numFirst = std::min(iNumBytes, mBytes.size() - place);
  std::memcpy(oData, mBytes.data() + place, numFirst);
  std::memcpy(static_cast<unsigned char *>(oData) + numFirst, mBytes.data(), iNumBytes - numFirst);
}

Host_MidiRing::Head Host_MidiRing::ReadHead(size_t iAt) const noexcept {
  Head head{};
  Read(iAt, &head.mTime, sizeof head.mTime);
  Read(iAt + sizeof head.mTime, &head.mLength, sizeof head.mLength);
  return head;
}
