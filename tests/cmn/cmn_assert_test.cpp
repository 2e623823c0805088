#include "cmn/cmn_assert.h"

#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

// Keeps the last report as it came, without a copy of its own beyond the views.
class LastReport : public Cmn_AssertSink {
public:
  void Report(Cmn_AssertReport const & iReport) override {
    ++mNum;
    mCondition = iReport.mCondition;
    mPath = iReport.mPath;
    mLine = iReport.mLine;
    mFlag = iReport.mFlag;
    mThrowing = iReport.mThrowing;
  }

  int mNum = 0;
  std::string mCondition, mPath;
  int mLine = 0;
  bool mFlag = false, mThrowing = false;
};

// Switches throwing off while it lives.
class NoThrowing {
public:
  NoThrowing() : mFormer(Cmn_Assert::SetThrowing(false)) {}
  ~NoThrowing() { Cmn_Assert::SetThrowing(mFormer); }

private:
  bool mFormer;
};

}  // namespace

TEST(Cmn_Assert_HandleMagicAssertNoThrow, ReportsAndReturns) {
  Cmn_AssertRecorder const recorder;
  Cmn_Assert::HandleMagicAssertNoThrow(true, "iPitch >= 0@$^$@vrad/vrae_event.cpp", 17);
  ASSERT_EQ(1, recorder.GetNum());
  Cmn_AssertRecorder::Entry const entry = recorder.GetEntries()[0];
  EXPECT_EQ("iPitch >= 0", entry.mCondition);
  EXPECT_EQ("vrad/vrae_event.cpp", entry.mPath);
  EXPECT_EQ(17, entry.mLine);
  EXPECT_TRUE(entry.mFlag);
  EXPECT_FALSE(entry.mThrowing);
}

TEST(Cmn_Assert_HandleMagicAssert, ReportsAndThrowsTheCondition) {
  Cmn_AssertRecorder const recorder;
  try {
    Cmn_Assert::HandleMagicAssert(false, "iMapP != 0@$^$@vrad/vrae_chasetracker.cpp", 5);
    FAIL() << "nothing was thrown";
  } catch (Cmn_AssertException const & exception) {
    EXPECT_STREQ("iMapP != 0", exception.what());
  }
  ASSERT_EQ(1, recorder.GetNum("iMapP != 0"));
  EXPECT_EQ("vrad/vrae_chasetracker.cpp", recorder.GetEntries()[0].mPath);
  EXPECT_FALSE(recorder.GetEntries()[0].mFlag);
  EXPECT_TRUE(recorder.GetEntries()[0].mThrowing);
}

TEST(Cmn_Assert, TextWithoutSeparatorIsAllCondition) {
  Cmn_AssertRecorder const recorder;
  EXPECT_THROW(Cmn_Assert::HandleMagicAssert(false, "p", 1), Cmn_AssertException);
  EXPECT_EQ("p", recorder.GetEntries()[0].mCondition);
  EXPECT_EQ("", recorder.GetEntries()[0].mPath);
}

TEST(Cmn_Assert, ConditionKeepsItsBars) {
  Cmn_AssertRecorder const recorder;
  Cmn_Assert::HandleMagicAssertNoThrow(true, "a == 1 || b == 2@$^$@x.cpp", 1);
  EXPECT_EQ(1, recorder.GetNum("a == 1 || b == 2"));
}

TEST(Cmn_Assert_SetThrowing, IsOnAtStart) {
  EXPECT_TRUE(Cmn_Assert::SetThrowing(true));
}

TEST(Cmn_Assert_SetThrowing, OffReportsAndReturns) {
  Cmn_AssertRecorder const recorder;
  NoThrowing const noThrowing;
  Cmn_Assert::HandleMagicAssert(false, "iMapP != 0@$^$@x.cpp", 1);
  EXPECT_EQ(1, recorder.GetNum("iMapP != 0"));
}

TEST(Cmn_Assert_SetThrowing, OffStillNamesTheThrowingForm) {
  Cmn_AssertRecorder const recorder;
  NoThrowing const noThrowing;
  Cmn_Assert::HandleMagicAssert(true, "p@$^$@x.cpp", 1);
  EXPECT_TRUE(recorder.GetEntries()[0].mThrowing);
  EXPECT_TRUE(recorder.GetEntries()[0].mFlag);
}

TEST(Cmn_Assert_SetThrowing, GivesTheFormerSetting) {
  EXPECT_TRUE(Cmn_Assert::SetThrowing(false));
  EXPECT_FALSE(Cmn_Assert::SetThrowing(true));
}

TEST(Cmn_Assert_SetSink, TellsTheSinkAndGivesTheFormerOne) {
  LastReport first, second;
  EXPECT_EQ(nullptr, Cmn_Assert::SetSink(&first));
  EXPECT_EQ(&first, Cmn_Assert::SetSink(&second));
  Cmn_Assert::HandleMagicAssertNoThrow(true, "nip@$^$@vrad/vrae_trackstate.cpp", 3);
  EXPECT_EQ(&second, Cmn_Assert::SetSink(nullptr));
  EXPECT_EQ(0, first.mNum);
  EXPECT_EQ(1, second.mNum);
  EXPECT_EQ("nip", second.mCondition);
  EXPECT_EQ("vrad/vrae_trackstate.cpp", second.mPath);
  EXPECT_EQ(3, second.mLine);
}

TEST(Cmn_Assert_SetSink, NullRestoresTheErrorStream) {
  LastReport sink;
  Cmn_Assert::SetSink(&sink);
  Cmn_Assert::SetSink(nullptr);
  testing::internal::CaptureStderr();
  Cmn_Assert::HandleMagicAssertNoThrow(true, "iPitch >= 0@$^$@vrad/vrae_event.cpp", 17);
  EXPECT_EQ("vrad: vrad/vrae_event.cpp:17: check failed: iPitch >= 0\n",
            testing::internal::GetCapturedStderr());
  EXPECT_EQ(0, sink.mNum);
}

TEST(CMN_CHECK, HoldingConditionCostsNoReport) {
  Cmn_AssertRecorder const recorder;
  int const one = 1;
  EXPECT_TRUE(CMN_CHECK(one == 1, "one == 1"));
  EXPECT_TRUE(CMN_REQUIRE(one == 1, "one == 1"));
  EXPECT_TRUE(CMN_REQUIRE_FLAGGED(one == 1, "one == 1"));
  EXPECT_EQ(0, recorder.GetNum());
}

TEST(CMN_CHECK, ReportsWithFlagAndGivesFalse) {
  Cmn_AssertRecorder const recorder;
  EXPECT_FALSE(CMN_CHECK(false, "0"));
  Cmn_AssertRecorder::Entry const entry = recorder.GetEntries()[0];
  EXPECT_EQ("0", entry.mCondition);
  EXPECT_TRUE(entry.mFlag);
  EXPECT_FALSE(entry.mThrowing);
}

TEST(CMN_CHECK, TextNeedNotBeTheCondition) {
  Cmn_AssertRecorder const recorder;
  int const number = -1;
  CMN_CHECK(number > 0, "! (iNumber <= 0)");
  EXPECT_EQ(1, recorder.GetNum("! (iNumber <= 0)"));
}

TEST(CMN_CHECK, PathIsRelativeToTheSourceRoot) {
  Cmn_AssertRecorder const recorder;
  CMN_CHECK(false, "0");
  EXPECT_EQ("tests/cmn/cmn_assert_test.cpp", recorder.GetEntries()[0].mPath);
}

TEST(CMN_CHECK, LineIsThatOfTheCheck) {
  Cmn_AssertRecorder const recorder;
  int const line = __LINE__ + 1;
  CMN_CHECK(false, "0");
  EXPECT_EQ(line, recorder.GetEntries()[0].mLine);
}

TEST(CMN_REQUIRE, ThrowsWithoutFlag) {
  Cmn_AssertRecorder const recorder;
  EXPECT_THROW(CMN_REQUIRE(false, "iOutputP != 0"), Cmn_AssertException);
  Cmn_AssertRecorder::Entry const entry = recorder.GetEntries()[0];
  EXPECT_EQ("iOutputP != 0", entry.mCondition);
  EXPECT_FALSE(entry.mFlag);
  EXPECT_TRUE(entry.mThrowing);
}

TEST(CMN_REQUIRE, GivesFalseWithThrowingOff) {
  Cmn_AssertRecorder const recorder;
  NoThrowing const noThrowing;
  EXPECT_FALSE(CMN_REQUIRE(false, "iOutputP != 0"));
  EXPECT_EQ(1, recorder.GetNum());
}

TEST(CMN_REQUIRE_FLAGGED, ThrowsWithFlag) {
  Cmn_AssertRecorder const recorder;
  EXPECT_THROW(CMN_REQUIRE_FLAGGED(false, "p"), Cmn_AssertException);
  EXPECT_TRUE(recorder.GetEntries()[0].mFlag);
  EXPECT_TRUE(recorder.GetEntries()[0].mThrowing);
}

TEST(Cmn_AssertException, IsAStandardRuntimeErrorThatCopiesMovesAndAssigns) {
  static_assert(std::is_base_of_v<std::runtime_error, Cmn_AssertException>);
  Cmn_AssertException const first("iMapP != 0");
  Cmn_AssertException second(first);
  EXPECT_STREQ("iMapP != 0", second.what());
  Cmn_AssertException third("other");
  third = first;
  EXPECT_STREQ("iMapP != 0", third.what());
  Cmn_AssertException const fourth(std::move(second));
  EXPECT_STREQ("iMapP != 0", fourth.what());
}

TEST(Cmn_AssertRecorder, CountsAllAndByCondition) {
  Cmn_AssertRecorder const recorder;
  CMN_CHECK(false, "a");
  CMN_CHECK(false, "b");
  CMN_CHECK(false, "a");
  EXPECT_EQ(3, recorder.GetNum());
  EXPECT_EQ(2, recorder.GetNum("a"));
  EXPECT_EQ(1, recorder.GetNum("b"));
  EXPECT_EQ(0, recorder.GetNum("c"));
}

TEST(Cmn_AssertRecorder, KeepsTheOrder) {
  Cmn_AssertRecorder const recorder;
  CMN_CHECK(false, "a");
  CMN_CHECK(false, "b");
  EXPECT_EQ("a", recorder.GetEntries()[0].mCondition);
  EXPECT_EQ("b", recorder.GetEntries()[1].mCondition);
}

TEST(Cmn_AssertRecorder_Clear, ForgetsWhatWasRecorded) {
  Cmn_AssertRecorder recorder;
  CMN_CHECK(false, "a");
  recorder.Clear();
  EXPECT_EQ(0, recorder.GetNum());
  CMN_CHECK(false, "b");
  EXPECT_EQ(1, recorder.GetNum());
}

TEST(Cmn_AssertRecorder, InnerOneTakesOverAndOuterOneComesBack) {
  Cmn_AssertRecorder const outer;
  {
    Cmn_AssertRecorder const inner;
    CMN_CHECK(false, "inside");
    EXPECT_EQ(1, inner.GetNum("inside"));
  }
  CMN_CHECK(false, "outside");
  EXPECT_EQ(0, outer.GetNum("inside"));
  EXPECT_EQ(1, outer.GetNum("outside"));
}

TEST(Cmn_AssertRecorder, RestoresTheFormerSink) {
  LastReport sink;
  Cmn_Assert::SetSink(&sink);
  {
    Cmn_AssertRecorder const recorder;
    CMN_CHECK(false, "a");
  }
  CMN_CHECK(false, "b");
  Cmn_Assert::SetSink(nullptr);
  EXPECT_EQ(1, sink.mNum);
  EXPECT_EQ("b", sink.mCondition);
}

TEST(Cmn_AssertRecorder, LosesNothingBetweenThreads) {
  Cmn_AssertRecorder const recorder;
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([] {
        for (int step = 0; step < 250; ++step)
          CMN_CHECK(false, "a");
      });
    }
  }
  EXPECT_EQ(1000, recorder.GetNum("a"));
}
