// A heap that runs out while a long sysex is being made.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "foundation/sys_delayeddeletion.h"
#include "support/event_samples.h"
#include "vrad/vrae_event.h"

namespace {

bool sRefuseObjects = false;
bool sRefuseArrays = false;
int sNumArrays = 0;

unsigned char const kContents[20] = {};

}  // namespace

// The payload's object is asked for without throwing, its bytes as an array.
void * operator new(size_t iSize, std::nothrow_t const &) noexcept {
  if (sRefuseObjects) return nullptr;
  try {
    return ::operator new(iSize);
  } catch (std::bad_alloc const &) {
    return nullptr;
  }
}

void * operator new[](size_t iSize) {
  void * const blockP = sRefuseArrays ? nullptr : std::malloc(iSize);
  if (blockP == nullptr) throw std::bad_alloc();
  ++sNumArrays;
  return blockP;
}

void operator delete[](void * iBlockP) noexcept {
  sNumArrays -= iBlockP != nullptr;
  std::free(iBlockP);
}

void operator delete[](void * iBlockP, size_t) noexcept {
  ::operator delete[](iBlockP);
}

TEST(Vrae_Sysex_Heap, GivesItsBytesBackWithThePayload) {
  int const numArrays = sNumArrays;
  {
    Vrae_SysexEvent const event(20, kContents);
    EXPECT_EQ(sNumArrays, numArrays + 1);
  }
  EXPECT_EQ(Sys_DelayedDeletionQueue::DeletePending(), 1);
  EXPECT_EQ(sNumArrays, numArrays);
}

TEST(Vrae_Sysex_Heap, ARefusedPayloadIsStoredAsNullAndItsBytesAreFreed) {
  Cmn_AssertRecorder const recorder;
  int const numArrays = sNumArrays;
  {
    sRefuseObjects = true;
    Vrae_SysexEvent const event(20, kContents);
    sRefuseObjects = false;
    EXPECT_EQ(event.GetType(), 15);
    EXPECT_EQ(event.mU.mLongSysex.mSysexP, nullptr);
    EXPECT_EQ(event.GetLength(), 0);
    EXPECT_EQ(sNumArrays, numArrays);
    EXPECT_EQ(recorder.GetNum(), 0);
  }
  EXPECT_EQ(recorder.GetNum("mU.mLongSysex.mSysexP != 0"), 1);
  EXPECT_EQ(recorder.GetNum(), 1);
}

TEST(Vrae_Sysex_Heap, RefusedBytesAreOutOfMemory) {
  sRefuseArrays = true;
  EXPECT_THROW(Vrae_SysexEvent(20, kContents), std::bad_alloc);
  sRefuseArrays = false;
}

TEST(Vrae_Sysex_Heap, RefusedBytesLeaveNoEventWhereAPayloadWas) {
  Vrae_SysexEvent event(20, kContents);
  sRefuseArrays = true;
  EXPECT_THROW(event.SetData(20, kContents), std::bad_alloc);
  sRefuseArrays = false;
  EXPECT_EQ(event.GetType(), 0);
  EXPECT_EQ(Sys_DelayedDeletionQueue::DeletePending(), 1);
}
