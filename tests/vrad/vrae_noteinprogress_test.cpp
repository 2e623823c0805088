#include "vrad/vrae_noteinprogress.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "cmn/cmn_assert.h"
#include "foundation/lumtrace.h"
#include "support/notes_in_progress.h"
#include "support/realtime_scope.h"

namespace {

typedef std::vector<std::pair<unsigned, std::string>> Lines;

std::string AddressOf(void const * iP) {
  char text[32];
  std::snprintf(text, sizeof text, "%p", iP);
  return text;
}

}  // namespace

TEST(Vrae_NoteInProgress, StartsZeroAtTickZero) {
  Vrae_NoteInProgress const nip;
  EXPECT_EQ(0, nip.mPitch);
  EXPECT_EQ(0, nip.mOnVelocity);
  EXPECT_EQ(0, nip.mOffVelocity);
  EXPECT_EQ(0, nip.mReleaseTime.AsInt64());
  EXPECT_EQ(Time_eType_Ticks, nip.mReleaseTime.GetType());
  EXPECT_EQ(nullptr, nip.mNextP);
}

TEST(Vrae_NoteInProgress, CopiesAllFiveFields) {
  Vrae_NoteInProgress next, nip, copy;
  nip.mPitch = 60;
  nip.mOnVelocity = 1;
  nip.mOffVelocity = 2;
  nip.mReleaseTime = Time_Sample(3);
  nip.mNextP = &next;
  copy = nip;
  Vrae_NoteInProgress const moved(std::move(copy));
  EXPECT_EQ(60, moved.mPitch);
  EXPECT_EQ(1, moved.mOnVelocity);
  EXPECT_EQ(2, moved.mOffVelocity);
  EXPECT_EQ(3, moved.mReleaseTime.AsInt64());
  EXPECT_EQ(Time_eType_Samples, moved.mReleaseTime.GetType());
  EXPECT_EQ(&next, moved.mNextP);
}

TEST(Vrae_NoteInProgress, AssignsAllFiveFieldsByMoving) {
  Vrae_NoteInProgress next, nip, target;
  nip.mPitch = 60;
  nip.mOnVelocity = 1;
  nip.mOffVelocity = 2;
  nip.mReleaseTime = Time_Sample(3);
  nip.mNextP = &next;
  target = std::move(nip);
  EXPECT_EQ(60, target.mPitch);
  EXPECT_EQ(1, target.mOnVelocity);
  EXPECT_EQ(2, target.mOffVelocity);
  EXPECT_EQ(3, target.mReleaseTime.AsInt64());
  EXPECT_EQ(Time_eType_Samples, target.mReleaseTime.GetType());
  EXPECT_EQ(&next, target.mNextP);
}

TEST(Vrae_NoteInProgress_Alloc, TakesANodeFromThePoolWithItsTimeSet) {
  NoteInProgressPool const pool;
  Vrae_NoteInProgress * const nip = Vrae_NoteInProgress::Alloc();
  ASSERT_NE(nullptr, nip);
  EXPECT_EQ(0, nip->mReleaseTime.AsInt64());
  EXPECT_EQ(Time_eType_Ticks, nip->mReleaseTime.GetType());
  EXPECT_EQ(1, pool.mAllocator.GetNumBlocksInUse());
  nip->Free();
  EXPECT_EQ(0, pool.mAllocator.GetNumBlocksInUse());
}

TEST(Vrae_NoteInProgress_Alloc, IsNullWhenThePoolIsExhausted) {
  NoteInProgressPool pool;
  pool.mAllocator.FailAfter(0);
  Cmn_AssertRecorder recorder;
  EXPECT_EQ(nullptr, Vrae_NoteInProgress::Alloc());
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(Vrae_NoteInProgress_Alloc, TracesANullPointerWhenThePoolIsExhausted) {
  NoteInProgressPool pool;
  pool.mAllocator.FailAfter(0);
  LumTraceRecorder trace;
  EXPECT_EQ(nullptr, Vrae_NoteInProgress::Alloc());
  EXPECT_EQ((Lines{{0x2000F27, "Vrae_NoteInProgress alloc " + AddressOf(nullptr) + " " +
                                   std::to_string(sizeof(Vrae_NoteInProgress))}}),
            trace.GetLines());
}

TEST(Vrae_NoteInProgress_Alloc, WithoutAPoolReportsTracesAndIsNull) {
  Vrae_NoteInProgress::SetAllocator(nullptr);
  LumTraceRecorder trace;
  Cmn_AssertRecorder recorder;
  EXPECT_EQ(nullptr, Vrae_NoteInProgress::Alloc());
  ASSERT_EQ(1, recorder.GetNum("sAllocatorP"));
  EXPECT_FALSE(recorder.GetEntries()[0].mThrowing);
  EXPECT_EQ((Lines{{0x2000F27, "Vrae_NoteInProgress alloc " + AddressOf(nullptr) + " " +
                                   std::to_string(sizeof(Vrae_NoteInProgress))}}),
            trace.GetLines());
}

TEST(Vrae_NoteInProgress_Alloc, AndFreeAreTraced) {
  NoteInProgressPool const pool;
  LumTraceRecorder trace;
  Vrae_NoteInProgress * const nip = Vrae_NoteInProgress::Alloc();
  std::string const address = AddressOf(nip);
  nip->Free();
  EXPECT_EQ((Lines{{0x2000F27, "Vrae_NoteInProgress alloc " + address + " " +
                                   std::to_string(sizeof(Vrae_NoteInProgress))},
                   {0x2000F27, "Vrae_NoteInProgress free " + address}}),
            trace.GetLines());
}

TEST(Vrae_NoteInProgress_Alloc, IsNotTracedForAnInactiveFacility) {
  NoteInProgressPool const pool;
  LumTraceRecorder trace;
  trace.SetActive(0x2000F27, false);
  Vrae_NoteInProgress::Alloc()->Free();
  EXPECT_EQ(Lines(), trace.GetLines());
}

TEST(Vrae_NoteInProgress_Alloc, TakesNothingFromTheHeap) {
  NoteInProgressPool const pool;
  EXPECT_EQ("", RealtimeViolationsOf([] { Vrae_NoteInProgress::Alloc()->Free(); }));
}

TEST(Vrae_NoteInProgress_Alloc, TakesNothingFromTheHeapWhenThePoolIsExhausted) {
  NoteInProgressPool pool;
  pool.mAllocator.FailAfter(0);
  EXPECT_EQ("", RealtimeViolationsOf([] { EXPECT_EQ(nullptr, Vrae_NoteInProgress::Alloc()); }));
}
