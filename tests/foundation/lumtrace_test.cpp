#include "foundation/lumtrace.h"

#include <thread>

#include <gtest/gtest.h>

namespace {

typedef std::vector<std::pair<unsigned, std::string>> Lines;

int sNumWritten = 0;
unsigned sLastAsked = 0;

void CountLine(unsigned, char const *, ...) {
  ++sNumWritten;
}

bool SayNo(unsigned iFacility) {
  sLastAsked = iFacility;
  return false;
}

bool SayYes(unsigned iFacility) {
  sLastAsked = iFacility;
  return true;
}

// Sets the slots as wanted and empties them again.
class Lum : public testing::Test {
protected:
  void Fill(bool iActive, LumTraceFormatProc iFormat, LumTraceIsActiveProc iIsActive) {
    gLumTraceActive = iActive;
    LumTraceFormat = iFormat;
    LumTraceIsActiveFunc = iIsActive;
    sNumWritten = 0;
    sLastAsked = 0;
  }
  void TearDown() override { Fill(false, nullptr, nullptr); }
};

}  // namespace

// There is no trace library where the tests run.
TEST(LumTrace, IsOffAtLoad) {
  EXPECT_FALSE(gLumTraceActive);
}

TEST(LumTrace, MissingLibraryLeavesEverySlotEmpty) {
  EXPECT_EQ(nullptr, LumTraceIsActiveFunc);
  EXPECT_EQ(nullptr, LumTraceFormat);
  EXPECT_EQ(nullptr, LumTraceFormatQuiet);
  EXPECT_EQ(nullptr, LumTraceFormatTimestamp);
  EXPECT_EQ(nullptr, LumTracePuts);
  EXPECT_EQ(nullptr, LumTraceMem);
  EXPECT_EQ(nullptr, LumTraceStack);
}

TEST_F(Lum, SiteWritesNothingWhileTracingIsOff) {
  Fill(false, &CountLine, nullptr);
  LumTraceWrite(1, "text");
  EXPECT_EQ(0, sNumWritten);
}

TEST_F(Lum, SiteWritesNothingWithoutAFormatSlot) {
  Fill(true, nullptr, &SayYes);
  LumTraceWrite(1, "text");
  EXPECT_EQ(0u, sLastAsked);
}

TEST_F(Lum, SiteWritesWhenNobodyCanBeAsked) {
  Fill(true, &CountLine, nullptr);
  LumTraceWrite(1, "text");
  EXPECT_EQ(1, sNumWritten);
}

TEST_F(Lum, SiteWritesWhenTheLibrarySaysYes) {
  Fill(true, &CountLine, &SayYes);
  LumTraceWrite(0x2000f27, "text");
  EXPECT_EQ(1, sNumWritten);
  EXPECT_EQ(0x2000f27u, sLastAsked);
}

TEST_F(Lum, SiteWritesNothingWhenTheLibrarySaysNo) {
  Fill(true, &CountLine, &SayNo);
  LumTraceWrite(0x2000f27, "text");
  EXPECT_EQ(0, sNumWritten);
}

TEST_F(Lum, SiteAsksWithOneFacilityAndWritesWithAnother) {
  LumTraceRecorder const recorder;
  LumTraceIsActiveFunc = &SayYes;
  LumTraceWriteAs(0x2000f27, 0x4000e0f, "pitch %d", 60);
  EXPECT_EQ(0x2000f27u, sLastAsked);
  EXPECT_EQ((Lines{{0x4000e0f, "pitch 60"}}), recorder.GetLines());
}

TEST(LumTraceRecorder, KeepsFormattedLinesInOrder) {
  LumTraceRecorder const recorder;
  LumTraceWrite(1, "%s %d", "first", 1);
  LumTraceWrite(2, "second");
  LumTraceFormatQuiet(3, "third");
  LumTraceFormatTimestamp(4, "%c", 'f');
  LumTracePuts(5, "100 %d");
  EXPECT_EQ((Lines{{1, "first 1"}, {2, "second"}, {3, "third"}, {4, "f"}, {5, "100 %d"}}),
            recorder.GetLines());
}

TEST(LumTraceRecorder, KeepsLongLinesWhole) {
  LumTraceRecorder const recorder;
  std::string const text(5000, 'x');
  LumTraceWrite(1, "%s", text.c_str());
  EXPECT_EQ((Lines{{1, text}}), recorder.GetLines());
}

TEST(LumTraceRecorder, AllFacilitiesAreActiveAtStart) {
  LumTraceRecorder const recorder;
  EXPECT_TRUE(LumTraceIsWanted(0));
  EXPECT_TRUE(LumTraceIsWanted(0x2000f27));
}

TEST(LumTraceRecorder_SetActive, SwitchesOneFacility) {
  LumTraceRecorder recorder;
  recorder.SetActive(1, false);
  LumTraceWrite(1, "no");
  LumTraceWrite(2, "yes");
  recorder.SetActive(1, true);
  LumTraceWrite(1, "again");
  EXPECT_EQ((Lines{{2, "yes"}, {1, "again"}}), recorder.GetLines());
}

TEST(LumTraceRecorder, PutsTheSlotsBack) {
  {
    LumTraceRecorder const recorder;
    EXPECT_TRUE(gLumTraceActive);
    EXPECT_NE(nullptr, LumTracePuts);
  }
  EXPECT_FALSE(gLumTraceActive);
  EXPECT_EQ(nullptr, LumTraceIsActiveFunc);
  EXPECT_EQ(nullptr, LumTraceFormat);
  EXPECT_EQ(nullptr, LumTraceFormatQuiet);
  EXPECT_EQ(nullptr, LumTraceFormatTimestamp);
  EXPECT_EQ(nullptr, LumTracePuts);
}

TEST(LumTraceRecorder, InnerRecorderTakesOver) {
  LumTraceRecorder outer;
  outer.SetActive(1, false);
  {
    LumTraceRecorder const inner;
    LumTraceWrite(1, "inside");
    EXPECT_EQ((Lines{{1, "inside"}}), inner.GetLines());
  }
  LumTraceWrite(1, "not wanted");
  LumTraceWrite(2, "outside");
  EXPECT_EQ((Lines{{2, "outside"}}), outer.GetLines());
}

TEST(LumTraceRecorder, LosesNothingBetweenThreads) {
  LumTraceRecorder const recorder;
  {
    std::vector<std::jthread> threads;
    for (unsigned i = 0; i < 4; ++i) {
      threads.emplace_back([i] {
        for (int step = 0; step < 100; ++step)
          LumTraceWrite(i, "%d", step);
      });
    }
  }
  EXPECT_EQ(400u, recorder.GetLines().size());
}
