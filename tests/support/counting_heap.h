// A heap that counts and can refuse. Replaces the operators of the whole program, so it is included
// by the one file of a test program alone.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

// What has been taken from the heap and not given back, and how many requests are still granted.
static std::atomic<long long> sBytesTaken = 0;
static std::atomic<int> sNumTaken = 0;
static int sAllocationsLeft = -1;  // -1: any number

void * operator new(size_t iSize) {
  if (sAllocationsLeft == 0) throw std::bad_alloc();
  if (sAllocationsLeft > 0) --sAllocationsLeft;
  size_t * const block = static_cast<size_t *>(std::malloc(iSize + 16));
  if (!block) throw std::bad_alloc();
  *block = iSize;
  sBytesTaken += static_cast<long long>(iSize);
  ++sNumTaken;
  return reinterpret_cast<char *>(block) + 16;
}

void * operator new(size_t iSize, std::nothrow_t const &) noexcept {
  try {
    return operator new(iSize);
  } catch (std::bad_alloc const &) {
    return nullptr;
  }
}

void operator delete(void * iPlace) noexcept {
  if (!iPlace) return;
  size_t * const block = reinterpret_cast<size_t *>(static_cast<char *>(iPlace) - 16);
  sBytesTaken -= static_cast<long long>(*block);
  std::free(block);
}

void operator delete(void * iPlace, size_t) noexcept {
  operator delete(iPlace);
}

/// Runs an edit with that many requests granted. True: it has run out of memory.
template <class TEdit>
bool RunsOutOfMemory(int iNumAllocations, TEdit const & iEdit) {
  sAllocationsLeft = iNumAllocations;
  try {
    iEdit();
    sAllocationsLeft = -1;
    return false;
  } catch (std::bad_alloc const &) {
    sAllocationsLeft = -1;
    return true;
  }
}
