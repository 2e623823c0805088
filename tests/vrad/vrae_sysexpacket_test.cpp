// System-exclusive messages and fragments as they come in, in memory of a real-time pool.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "foundation/lumtrace.h"
#include "foundation/mem2_masterallocator.h"
#include "support/event_samples.h"
#include "vrad/vrae_event.h"
#include "vrad/vrae_sysexdatabase.h"

namespace {

typedef std::vector<int> Bytes;  // as numbers, so that failures are readable
typedef std::vector<unsigned char> Wire;

constexpr unsigned char kUntouched = 0x55;

// Bytes 1, 2, 3 ... of which the first and last are replaced unless they are 0.
Wire MakeWire(int iLength, int iFirst, int iLast) {
  Wire wire;
  for (int i = 1; i <= iLength; ++i)
    wire.push_back(static_cast<unsigned char>(i & 0x7f));
  if (iFirst != 0) wire.front() = static_cast<unsigned char>(iFirst);
  if (iLast != 0) wire.back() = static_cast<unsigned char>(iLast);
  return wire;
}

Bytes Read(Vrae_SysexPacketEvent const & iEvent, int iStartIndex, int iEndIndex, int iRoom) {
  Wire data(static_cast<size_t>(iRoom), kUntouched);
  iEvent.GetData(data.data(), iStartIndex, iEndIndex);
  return Bytes(data.begin(), data.end());
}

Bytes ReadAll(Vrae_SysexPacketEvent const & iEvent) {
  return Read(iEvent, 0, iEvent.GetLength(), iEvent.GetLength());
}

Bytes AsNumbers(Wire const & iWire) {
  return Bytes(iWire.begin(), iWire.end());
}

class Vrae_Packet : public testing::Test {
protected:
  Vrae_SysexPacketEvent Make(Wire const & iWire) {
    return Vrae_SysexPacketEvent(static_cast<int>(iWire.size()), iWire.data(), &mPool);
  }
  Vrae_SysexPacketEvent MakeWithBlock(Wire const & iWire) {
    unsigned char * const blockP =
        static_cast<unsigned char *>(mPool.Alloc(static_cast<int>(iWire.size()) + 1, nullptr));
    std::copy(iWire.begin(), iWire.end(), blockP);
    return Vrae_SysexPacketEvent(Vrae_SysexPacketEvent::InitWithBlock(), blockP,
                                 static_cast<int>(iWire.size()), &mPool);
  }

  Mem2_MasterAllocator mPool{1 << 16};
};

}  // namespace

TEST_F(Vrae_Packet, SixteenBytesOfACompleteMessageLieInTheRecord) {
  Vrae_SysexPacketEvent const event = Make(MakeWire(16, 0xF0, 0xF7));
  EXPECT_EQ(event.GetType(), 14);
  EXPECT_EQ(event.mU.mShortSysex.mLength, 14);
  EXPECT_EQ(event.mU.mShortSysex.mData[0], 2);
  EXPECT_EQ(event.mU.mShortSysex.mData[13], 15);
  EXPECT_EQ(mPool.GetNumBlocksInUse(), 0);
}

TEST_F(Vrae_Packet, SeventeenBytesOfACompleteMessageKeepTheirFrameInAPayload) {
  Wire const wire = MakeWire(17, 0xF0, 0xF7);
  Vrae_SysexPacketEvent const event = Make(wire);
  EXPECT_EQ(event.GetType(), 15);
  EXPECT_EQ(event.mU.mLongSysex.mSysexP->GetLength(), 17);
  EXPECT_EQ(std::memcmp(event.GetDirectDataPtr(), wire.data(), 17), 0);
  EXPECT_EQ(mPool.GetNumBlocksInUse(), 2);
}

TEST_F(Vrae_Packet, AnEmptyCompleteMessageIsShort) {
  Vrae_SysexPacketEvent const event = Make({0xF0, 0xF7});
  EXPECT_EQ(event.GetType(), 14);
  EXPECT_EQ(event.mU.mShortSysex.mLength, 0);
}

TEST_F(Vrae_Packet, FourteenBytesOfAFragmentLieInTheRecord) {
  for (Wire const & wire : {MakeWire(14, 0, 0), MakeWire(14, 0xF0, 0), MakeWire(14, 0, 0xF7)}) {
    Vrae_SysexPacketEvent const event = Make(wire);
    EXPECT_EQ(event.GetType(), 16);
    EXPECT_EQ(event.mU.mShortSysex.mLength, 14);
    EXPECT_EQ(ReadAll(event), AsNumbers(wire));
  }
  EXPECT_EQ(mPool.GetNumBlocksInUse(), 0);
}

TEST_F(Vrae_Packet, FifteenBytesOfAFragmentLieInAPayload) {
  for (Wire const & wire : {MakeWire(15, 0, 0), MakeWire(15, 0xF0, 0), MakeWire(16, 0, 0xF7)}) {
    Vrae_SysexPacketEvent const event = Make(wire);
    EXPECT_EQ(event.GetType(), 15);
    EXPECT_FALSE(event.IsComplete());
    EXPECT_EQ(ReadAll(event), AsNumbers(wire));
  }
}

TEST_F(Vrae_Packet, OneByteIsAFragmentEvenIfItBeginsOrEnds) {
  EXPECT_EQ(Make({0xF0}).GetType(), 16);
  EXPECT_EQ(Make({0xF7}).GetType(), 16);
}

TEST_F(Vrae_Packet, NoBytesAreAnEmptyFragment) {
  Vrae_SysexPacketEvent const event(0, nullptr, &mPool);
  EXPECT_EQ(event.GetType(), 16);
  EXPECT_EQ(event.GetLength(), 0);
}

TEST_F(Vrae_Packet, ANegativeLengthIsKeptInAFragment) {
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(Vrae_SysexPacketEvent(-3, nullptr, &mPool).GetType(), 16);
  EXPECT_EQ(Vrae_SysexPacketEvent(-3, nullptr, &mPool).GetLength(), -3);
  EXPECT_EQ(Vrae_SysexPacketEvent(-200, nullptr, &mPool).GetLength(), -128);
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST_F(Vrae_Packet, UpToFourteenBytesNeedNoPool) {
  EXPECT_EQ(Vrae_SysexPacketEvent(14, MakeWire(14, 0, 0).data(), nullptr).GetType(), 16);
  EXPECT_EQ(Vrae_SysexPacketEvent(16, MakeWire(16, 0xF0, 0xF7).data(), nullptr).GetType(), 14);
}

TEST_F(Vrae_Packet, WithoutAPoolALongOneIsNoEvent) {
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(Vrae_SysexPacketEvent(15, MakeWire(15, 0, 0).data(), nullptr).GetType(), 0);
  unsigned char block[20] = {};
  EXPECT_EQ(
      Vrae_SysexPacketEvent(Vrae_SysexPacketEvent::InitWithBlock(), block, 20, nullptr).GetType(),
      0);
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST_F(Vrae_Packet, EveryRefusalOfThePoolLosesTheEventAndNothingElse) {
  Wire const wire = MakeWire(40, 0xF0, 0xF7);
  int numAllocs = 0;
  for (;; ++numAllocs) {
    mPool.FailAfter(numAllocs);
    Cmn_AssertRecorder const recorder;
    Vrae_SysexPacketEvent const event = Make(wire);
    EXPECT_EQ(recorder.GetNum(), 0);
    if (event.GetType() == 15) break;
    EXPECT_EQ(event.GetType(), 0);
    EXPECT_EQ(std::memcmp(&event, std::vector<char>(sizeof(event)).data(), sizeof(event)), 0);
    EXPECT_EQ(mPool.GetNumBlocksInUse(), 0);
    EXPECT_EQ(mPool.GetNumBadFrees(), 0);
    ASSERT_LT(numAllocs, 5);
  }
  EXPECT_EQ(numAllocs, 2);
}

TEST_F(Vrae_Packet, ARefusalOfThePayloadGivesTheBlockBack) {
  mPool.FailAfter(1);
  EXPECT_EQ(Make(MakeWire(40, 0xF0, 0xF7)).GetType(), 0);
  EXPECT_EQ(mPool.GetNumBlocksInUse(), 0);
}

TEST_F(Vrae_Packet, WithABlockItTakesTheBlockOver) {
  unsigned char * const blockP = static_cast<unsigned char *>(mPool.Alloc(20, nullptr));
  std::memset(blockP, 9, 20);
  {
    Vrae_SysexPacketEvent const event(Vrae_SysexPacketEvent::InitWithBlock(), blockP, 20, &mPool);
    EXPECT_EQ(event.GetType(), 15);
    EXPECT_EQ(event.GetDirectDataPtr(), blockP);
    EXPECT_EQ(event.GetLength(), 20);
    EXPECT_EQ(mPool.GetNumBlocksInUse(), 2);
  }
  EXPECT_EQ(mPool.GetNumBlocksInUse(), 0);
}

TEST_F(Vrae_Packet, WithABlockARefusalLeavesItTheCallers) {
  unsigned char * const blockP = static_cast<unsigned char *>(mPool.Alloc(20, nullptr));
  mPool.FailAfter(0);
  Vrae_SysexPacketEvent const event(Vrae_SysexPacketEvent::InitWithBlock(), blockP, 20, &mPool);
  EXPECT_EQ(event.GetType(), 0);
  EXPECT_EQ(mPool.GetNumBlocksInUse(), 1);
  mPool.Free(blockP, nullptr);
  EXPECT_EQ(mPool.GetNumBadFrees(), 0);
}

TEST_F(Vrae_Packet, WithANullBlockItThrowsAndLeaksNothing) {
  Cmn_AssertRecorder const recorder;
  EXPECT_THROW(Vrae_SysexPacketEvent(Vrae_SysexPacketEvent::InitWithBlock(), nullptr, 20, &mPool),
               Cmn_AssertException);
  EXPECT_EQ(recorder.GetNum("mDataP != 0"), 1);
  EXPECT_EQ(recorder.GetNum(), 1);
  EXPECT_EQ(mPool.GetNumBlocksInUse(), 0);
}

TEST_F(Vrae_Packet, TheLastCopyGivesThePoolItsMemoryBack) {
  {
    Vrae_Event copy;
    {
      Vrae_Event const event = Make(MakeWire(40, 0, 0));
      copy = event;
    }
    EXPECT_EQ(mPool.GetNumBlocksInUse(), 2);
  }
  EXPECT_EQ(mPool.GetNumBlocksInUse(), 0);
}

TEST_F(Vrae_Packet, TracesTheBlockItTakes) {
  LumTraceRecorder const recorder;
  Vrae_SysexPacketEvent const event = Make(MakeWire(40, 0, 0));
  char expected[100];
  std::snprintf(expected, sizeof(expected), "Vrae_SysexPacketEvent alloc %p %d",
                static_cast<void const *>(event.GetDirectDataPtr()), 40);
  ASSERT_EQ(recorder.GetLines().size(), 1u);
  EXPECT_EQ(recorder.GetLines()[0].first, 0x2000f27u);
  EXPECT_EQ(recorder.GetLines()[0].second, expected);
}

TEST_F(Vrae_Packet, TracesANullBlockOnExhaustionAndNothingFreed) {
  char expected[100];
  std::snprintf(expected, sizeof(expected), "Vrae_SysexPacketEvent alloc %p %d",
                static_cast<void *>(nullptr), 40);
  LumTraceRecorder const recorder;
  mPool.FailAfter(0);
  (void)Make(MakeWire(40, 0, 0));
  ASSERT_EQ(recorder.GetLines().size(), 1u);
  EXPECT_EQ(recorder.GetLines()[0].second, expected);
}

TEST_F(Vrae_Packet, TracesTheBlockItGivesBack) {
  LumTraceRecorder const recorder;
  mPool.FailAfter(1);
  (void)Make(MakeWire(40, 0, 0));
  ASSERT_EQ(recorder.GetLines().size(), 2u);
  std::string const alloc = recorder.GetLines()[0].second, release = recorder.GetLines()[1].second;
  EXPECT_EQ(alloc.substr(0, 28), "Vrae_SysexPacketEvent alloc ");
  EXPECT_EQ(release, "Vrae_SysexPacketEvent free " + alloc.substr(28, alloc.size() - 31));
  EXPECT_EQ(recorder.GetLines()[1].first, 0x2000f27u);
}

TEST_F(Vrae_Packet, TracesNothingForShortOnesAndBlocksTakenOver) {
  LumTraceRecorder const recorder;
  (void)Make(MakeWire(14, 0, 0));
  (void)Make(MakeWire(16, 0xF0, 0xF7));
  (void)MakeWithBlock(MakeWire(40, 0, 0));
  EXPECT_TRUE(recorder.GetLines().empty());
}

TEST_F(Vrae_Packet, TracesNothingForAnInactiveFacility) {
  LumTraceRecorder recorder;
  recorder.SetActive(0x2000f27, false);
  (void)Make(MakeWire(40, 0, 0));
  EXPECT_TRUE(recorder.GetLines().empty());
}

TEST_F(Vrae_Packet, LengthCountsTheWire) {
  EXPECT_EQ(Make(MakeWire(5, 0xF0, 0xF7)).GetLength(), 5);
  EXPECT_EQ(Make(MakeWire(40, 0xF0, 0xF7)).GetLength(), 40);
  EXPECT_EQ(Make(MakeWire(5, 0xF0, 0)).GetLength(), 5);
}

TEST_F(Vrae_Packet, LengthAndContentsLengthDifferByTheFrame) {
  Vrae_Event const event = Make(MakeWire(5, 0xF0, 0xF7));
  EXPECT_EQ(event.AsSysexPacket().GetLength(), 5);
  EXPECT_EQ(event.AsSysex().GetLength(), 3);
}

TEST_F(Vrae_Packet, AMessageOfNegativeLengthIsTwoBytesLong) {
  Vrae_Event event = Make(MakeWire(5, 0xF0, 0xF7));
  event.mU.mShortSysex.mLength = -3;
  EXPECT_EQ(event.AsSysexPacket().GetLength(), 2);
  EXPECT_EQ(ReadAll(event.AsSysexPacket()), (Bytes{0xF0, 0xF7}));
}

TEST_F(Vrae_Packet, TheThreeTestsTellMessagesAndFragmentsApart) {
  struct {
    Wire mWire;
    bool mWithBlock;
    int mKind;
    bool mComplete, mBeginning, mEnding;
  } const rows[] = {
      {MakeWire(5, 0xF0, 0xF7), false, 14, true, true, true},
      {MakeWire(40, 0xF0, 0xF7), false, 15, true, false, false},
      {MakeWire(40, 0xF0, 0), false, 15, false, true, false},
      {MakeWire(40, 0, 0xF7), false, 15, false, false, true},
      {MakeWire(40, 0, 0), false, 15, false, false, false},
      {MakeWire(5, 0xF0, 0), false, 16, false, true, false},
      {MakeWire(5, 0, 0xF7), false, 16, false, false, true},
      {MakeWire(5, 0, 0), false, 16, false, false, false},
      {{}, false, 16, false, false, false},
      {{0xF0}, false, 16, false, true, false},
      {{0xF7}, false, 16, false, false, true},
      {{}, true, 15, false, false, false},
      {{0xF0}, true, 15, false, true, false},
      {{0xF7}, true, 15, false, false, true},
      {{0xF0, 0xF7}, true, 15, true, false, false},
      {{0xF7, 0xF0}, true, 15, false, false, false},
  };
  Cmn_AssertRecorder const recorder;
  for (auto const & row : rows) {
    SCOPED_TRACE(&row - rows);
    Vrae_SysexPacketEvent const event = row.mWithBlock ? MakeWithBlock(row.mWire) : Make(row.mWire);
    EXPECT_EQ(event.GetType(), row.mKind);
    EXPECT_EQ(event.IsComplete(), row.mComplete);
    EXPECT_EQ(event.IsBeginningPacket(), row.mBeginning);
    EXPECT_EQ(event.IsEndingPacket(), row.mEnding);
  }
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST_F(Vrae_Packet, OtherKindsAreReportedByEveryAccessor) {
  for (int kind : {0, 1, 13, 17, 23, 24, -1}) {
    SCOPED_TRACE(kind);
    Vrae_Event const event = MakeBlankEvent(kind);
    Vrae_SysexPacketEvent const & view = static_cast<Vrae_SysexPacketEvent const &>(event);
    Cmn_AssertRecorder const recorder;
    EXPECT_EQ(view.GetLength(), 0);
    EXPECT_FALSE(view.IsComplete());
    EXPECT_FALSE(view.IsBeginningPacket());
    EXPECT_FALSE(view.IsEndingPacket());
    EXPECT_EQ(Read(view, 0, 1, 1), Bytes{0x55});
    EXPECT_EQ(recorder.GetNum("0"), 5);
    EXPECT_EQ(recorder.GetNum(), 5);
    EXPECT_FALSE(recorder.GetEntries().front().mThrowing);
    EXPECT_EQ(view.GetDirectDataPtr(), nullptr);
    EXPECT_EQ(recorder.GetNum(), 5);
  }
}

TEST_F(Vrae_Packet, DirectDataIsThatOfThePayloadAlone) {
  EXPECT_EQ(Make(MakeWire(5, 0xF0, 0xF7)).GetDirectDataPtr(), nullptr);
  EXPECT_EQ(Make(MakeWire(5, 0, 0)).GetDirectDataPtr(), nullptr);
  Vrae_SysexPacketEvent const event = Make(MakeWire(40, 0, 0));
  EXPECT_EQ(event.GetDirectDataPtr(), event.mU.mLongSysex.mSysexP->GetDataPtr());
}

TEST_F(Vrae_Packet, GetDataGivesAnyRangeOfTheWire) {
  for (Wire const & wire : {MakeWire(5, 0xF0, 0xF7), MakeWire(5, 0, 0), MakeWire(40, 0xF0, 0xF7),
                            MakeWire(16, 0xF0, 0xF7), MakeWire(2, 0xF0, 0xF7)}) {
    Vrae_SysexPacketEvent const event = Make(wire);
    int const length = static_cast<int>(wire.size());
    Cmn_AssertRecorder const recorder;
    for (int start = 0; start <= length; ++start) {
      for (int end = start; end <= length; ++end) {
        Bytes expected(wire.begin() + start, wire.begin() + end);
        expected.push_back(0x55);
        ASSERT_EQ(Read(event, start, end, end - start + 1), expected) << start << " " << end;
      }
    }
    EXPECT_EQ(recorder.GetNum(), 0);
  }
}

TEST_F(Vrae_Packet, AnEmptyRangeWritesNoFrame) {
  Vrae_SysexPacketEvent const event = Make(MakeWire(5, 0xF0, 0xF7));
  EXPECT_EQ(Read(event, 0, 0, 1), Bytes{0x55});
  EXPECT_EQ(Read(event, 5, 5, 1), Bytes{0x55});
}

TEST_F(Vrae_Packet, GetDataReportsAnEndPastAShortMessageAndStillWritesTheEnd) {
  Vrae_SysexPacketEvent const event = Make(MakeWire(5, 0xF0, 0xF7));
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(Read(event, 3, 7, 4), (Bytes{4, 0xF7, 0x55, 0x55}));
  EXPECT_EQ(recorder.GetNum("iEndIndex <= mU.mShortSysex.mLength + 2"), 1);
  EXPECT_EQ(recorder.GetNum(), 1);
}

TEST_F(Vrae_Packet, GetDataReportsAnEndPastAPayload) {
  Vrae_SysexPacketEvent const event = Make(MakeWire(40, 0xF0, 0xF7));
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(Read(event, 38, 42, 4), (Bytes{39, 0xF7, 0x55, 0x55}));
  EXPECT_EQ(recorder.GetNum("iEndIndex <= mU.mLongSysex.mSysexP->GetLength()"), 1);
  EXPECT_EQ(recorder.GetNum(), 1);
}

TEST_F(Vrae_Packet, GetDataReportsAnEndPastAFragment) {
  Vrae_SysexPacketEvent const event = Make(MakeWire(5, 0, 0));
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(Read(event, 4, 7, 3), (Bytes{5, 0x55, 0x55}));
  EXPECT_EQ(recorder.GetNum("iEndIndex <= mU.mShortSysex.mLength"), 1);
  EXPECT_EQ(recorder.GetNum(), 1);
}

TEST_F(Vrae_Packet, GetDataReportsABadStartForEveryKind) {
  for (Wire const & wire :
       {MakeWire(5, 0xF0, 0xF7), MakeWire(5, 0xF0, 0), MakeWire(40, 0xF0, 0xF7)}) {
    Vrae_SysexPacketEvent const event = Make(wire);
    Cmn_AssertRecorder recorder;
    EXPECT_EQ(Read(event, -2, 2, 4), (Bytes{0x55, 0x55, 0xF0, 2}));
    EXPECT_EQ(recorder.GetNum("iStartIndex >= 0"), 1);
    EXPECT_EQ(recorder.GetNum(), 1);
    recorder.Clear();
    EXPECT_EQ(Read(event, 3, 1, 1), Bytes{0x55});
    EXPECT_EQ(recorder.GetNum("iStartIndex <= iEndIndex"), 1);
    EXPECT_EQ(recorder.GetNum(), 1);
  }
}

TEST_F(Vrae_Packet, WithoutAPayloadReadsAsEmptyInSilence) {
  Vrae_Event event = MakeBlankEvent(Vrae_Event::kLongSysex);
  Vrae_SysexPacketEvent const & view = event.AsSysexPacket();
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(view.GetLength(), 0);
  EXPECT_FALSE(view.IsComplete());
  EXPECT_FALSE(view.IsBeginningPacket());
  EXPECT_FALSE(view.IsEndingPacket());
  EXPECT_EQ(view.GetDirectDataPtr(), nullptr);
  EXPECT_EQ(Read(view, 0, 0, 1), Bytes{0x55});
  EXPECT_EQ(recorder.GetNum(), 0);
  event.mU.mBase.mType = 0;
}

TEST_F(Vrae_Packet, AFragmentWithoutAnEndIsNoSysexButAPacket) {
  Vrae_Event const event = Make(MakeWire(40, 0xF0, 0));
  EXPECT_EQ(
      GetFailedChecks([&] { (void)event.AsSysex(); }),
      std::vector<std::string>{"mU.mBase.mType == kShortSysex || this->IsCompleteLongSysex()"});
  EXPECT_TRUE(GetFailedChecks([&] { (void)event.AsSysexPacket(); }).empty());
}
