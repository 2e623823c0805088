// How much memory a piece of code takes at most, counted at the global allocation operators.
#pragma once

/// Include in one source file of a program: it replaces the operators.
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace memory_meter {

inline std::atomic<long long> gInUse{0};
inline std::atomic<long long> gMost{0};

constexpr size_t kHeader = alignof(std::max_align_t);

inline void * TakeOrNull(size_t iSize) noexcept {
  char * const block = static_cast<char *>(std::malloc(iSize + kHeader));
  if (!block) return nullptr;
  *reinterpret_cast<size_t *>(block) = iSize;
  long long const inUse = gInUse += static_cast<long long>(iSize);
  if (inUse > gMost) gMost = inUse;
  return block + kHeader;
}

inline void * Take(size_t iSize) {
  void * const block = TakeOrNull(iSize);
  if (!block) throw std::bad_alloc();
  return block;
}

inline void GiveBack(void * iBlock) {
  if (!iBlock) return;
  char * const block = static_cast<char *>(iBlock) - kHeader;
  gInUse -= static_cast<long long>(*reinterpret_cast<size_t *>(block));
  std::free(block);
}

/// The most bytes in use while it runs, above what was in use before.
template <class F>
long long Measure(F iBody) {
  long long const before = gInUse;
  gMost = before;
  iBody();
  return gMost - before;
}

}  // namespace memory_meter

void * operator new(size_t iSize) {
  return memory_meter::Take(iSize);
}
void * operator new[](size_t iSize) {
  return memory_meter::Take(iSize);
}
// Replaced too: a sanitizer's own would hand out blocks without the header.
void * operator new(size_t iSize, std::nothrow_t const &) noexcept {
  return memory_meter::TakeOrNull(iSize);
}
void * operator new[](size_t iSize, std::nothrow_t const &) noexcept {
  return memory_meter::TakeOrNull(iSize);
}
void operator delete(void * iBlock) noexcept {
  memory_meter::GiveBack(iBlock);
}
void operator delete[](void * iBlock) noexcept {
  memory_meter::GiveBack(iBlock);
}
void operator delete(void * iBlock, size_t) noexcept {
  memory_meter::GiveBack(iBlock);
}
void operator delete[](void * iBlock, size_t) noexcept {
  memory_meter::GiveBack(iBlock);
}
