// A heap that refuses what a test wants refused, and counts what is in use. Include in one source
// file of a program: it replaces the global allocation operators.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

namespace refusing_heap {

inline long long gNumInUse = 0;  // blocks
inline long long gNumLeft = -1;  // that many more requests are granted, then none; -1: all are

inline void * TakeOrNull(size_t iSize) noexcept {
  if (gNumLeft == 0) return nullptr;
  if (gNumLeft > 0) --gNumLeft;
  void * const block = std::malloc(iSize);
  if (block) ++gNumInUse;
  return block;
}

inline void * Take(size_t iSize) {
  void * const block = TakeOrNull(iSize);
  if (!block) throw std::bad_alloc();
  return block;
}

inline void GiveBack(void * iBlock) noexcept {
  if (iBlock) --gNumInUse;
  std::free(iBlock);
}

/// Runs the body with so many requests granted. Whether it asked for more, and was refused.
template <class TBody>
bool IsRefusedAfter(int iNumGranted, TBody iBody) {
  gNumLeft = iNumGranted;
  try {
    iBody();
    gNumLeft = -1;
    return false;
  } catch (std::bad_alloc const &) {
    gNumLeft = -1;
    return true;
  }
}

}  // namespace refusing_heap

void * operator new(size_t iSize) {
  return refusing_heap::Take(iSize);
}
void * operator new[](size_t iSize) {
  return refusing_heap::Take(iSize);
}
// Replaced too: a sanitizer's own would hand out blocks of its own making.
void * operator new(size_t iSize, std::nothrow_t const &) noexcept {
  return refusing_heap::TakeOrNull(iSize);
}
void * operator new[](size_t iSize, std::nothrow_t const &) noexcept {
  return refusing_heap::TakeOrNull(iSize);
}
void operator delete(void * iBlock) noexcept {
  refusing_heap::GiveBack(iBlock);
}
void operator delete[](void * iBlock) noexcept {
  refusing_heap::GiveBack(iBlock);
}
void operator delete(void * iBlock, size_t) noexcept {
  refusing_heap::GiveBack(iBlock);
}
void operator delete[](void * iBlock, size_t) noexcept {
  refusing_heap::GiveBack(iBlock);
}
