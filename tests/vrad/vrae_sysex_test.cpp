// Complete system-exclusive messages, and the payloads that long ones share.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <new>
#include <vector>

#include "foundation/mem2_masterallocator.h"
#include "foundation/sys_delayeddeletion.h"
#include "support/event_samples.h"
#include "vrad/vrae_event.h"
#include "vrad/vrae_sysexdatabase.h"

namespace {

typedef std::vector<int> Bytes;  // as numbers, so that failures are readable

constexpr unsigned char kUntouched = 0x55;

std::vector<unsigned char> Counting(int iLength) {
  std::vector<unsigned char> bytes;
  for (int i = 1; i <= iLength; ++i)
    bytes.push_back(static_cast<unsigned char>(i & 0x7f));
  return bytes;
}

Vrae_SysexEvent Sysex(int iLength) {
  return Vrae_SysexEvent(iLength, Counting(iLength).data());
}

Bytes Read(Vrae_SysexEvent const & iEvent, int iStartIndex, int iEndIndex, int iRoom) {
  std::vector<unsigned char> data(static_cast<size_t>(iRoom), kUntouched);
  iEvent.GetData(data.data(), iStartIndex, iEndIndex);
  return Bytes(data.begin(), data.end());
}

Bytes ReadAll(Vrae_SysexEvent const & iEvent) {
  return Read(iEvent, 0, iEvent.GetLength(), iEvent.GetLength());
}

Bytes AsNumbers(std::vector<unsigned char> const & iBytes) {
  return Bytes(iBytes.begin(), iBytes.end());
}

class Vrae_Sysex : public testing::Test {
protected:
  void SetUp() override { Sys_DelayedDeletionQueue::DeletePending(); }
  void TearDown() override { Sys_DelayedDeletionQueue::DeletePending(); }
};

// Kind 15 whose bytes are given as they stand.
Vrae_Event MakeStored(std::vector<unsigned char> const & iBytes, Mem2_MasterAllocator * iPool) {
  unsigned char * const blockP =
      static_cast<unsigned char *>(iPool->Alloc(static_cast<int>(iBytes.size()) + 1, nullptr));
  std::copy(iBytes.begin(), iBytes.end(), blockP);
  return Vrae_SysexPacketEvent(Vrae_SysexPacketEvent::InitWithBlock(), blockP,
                               static_cast<int>(iBytes.size()), iPool);
}

}  // namespace

TEST_F(Vrae_Sysex, FourteenBytesLieInTheRecord) {
  Vrae_SysexEvent const event = Sysex(14);
  EXPECT_EQ(event.GetType(), 14);
  EXPECT_EQ(event.mU.mShortSysex.mLength, 14);
  EXPECT_EQ(event.GetLength(), 14);
  EXPECT_EQ(ReadAll(event), AsNumbers(Counting(14)));
}

TEST_F(Vrae_Sysex, FifteenBytesLieInAPayloadOfSeventeen) {
  Vrae_SysexEvent const event = Sysex(15);
  EXPECT_EQ(event.GetType(), 15);
  EXPECT_EQ(event.mU.mLongSysex.mSysexP->GetLength(), 17);
  EXPECT_EQ(event.GetLength(), 15);
  EXPECT_EQ(ReadAll(event), AsNumbers(Counting(15)));
}

TEST_F(Vrae_Sysex, APayloadIsFramed) {
  Vrae_SysexEvent const event = Sysex(100);
  EXPECT_EQ(event.GetDirectDataPtr()[0], 0xF0);
  EXPECT_EQ(event.GetDirectDataPtr()[100], 100);
  EXPECT_EQ(event.GetDirectDataPtr()[101], 0xF7);
  EXPECT_EQ(event.GetDirectDataPtr(), event.mU.mLongSysex.mSysexP->GetDataPtr());
  EXPECT_TRUE(event.IsCompleteLongSysex());
}

TEST_F(Vrae_Sysex, NoBytesAreAShortSysex) {
  Vrae_SysexEvent const event(0, nullptr);
  EXPECT_EQ(event.GetType(), 14);
  EXPECT_EQ(event.GetLength(), 0);
}

TEST_F(Vrae_Sysex, IsBuiltFromAVectorWithTheSameLimit) {
  for (int length : {0, 14, 15, 300}) {
    SCOPED_TRACE(length);
    Cmn_PolyVector<unsigned char, 0> vector;
    for (unsigned char byte : Counting(length))
      vector.push_back(byte);
    Vrae_SysexEvent const event(&vector);
    EXPECT_EQ(event.GetType(), length <= 14 ? 14 : 15);
    EXPECT_EQ(ReadAll(event), AsNumbers(Counting(length)));
  }
}

TEST_F(Vrae_Sysex, TheContentsAreCopied) {
  std::vector<unsigned char> bytes = Counting(20);
  Vrae_SysexEvent const event(20, bytes.data());
  bytes.assign(20, 0);
  EXPECT_EQ(ReadAll(event), AsNumbers(Counting(20)));
}

TEST_F(Vrae_Sysex, ASoundMessageReportsNothing) {
  EXPECT_TRUE(GetFailedChecks([] {
                for (int length : {0, 1, 14, 15, 16}) {
                  Vrae_SysexEvent event = Sysex(length);
                  event.SetData(3, Counting(3).data());
                  (void)ReadAll(event);
                  (void)event.GetInternalDataPtr();
                }
              }).empty());
}

TEST_F(Vrae_Sysex, ANegativeLengthIsReportedAndKept) {
  for (int length : {-1, -3, -128}) {
    Cmn_AssertRecorder const recorder;
    Vrae_SysexEvent const event(length, nullptr);
    EXPECT_EQ(recorder.GetNum("iLength >= 0"), 1);
    EXPECT_EQ(recorder.GetNum(), 1);
    EXPECT_EQ(event.GetType(), 14);
    EXPECT_EQ(event.GetLength(), length);
  }
}

TEST_F(Vrae_Sysex, ANegativeLengthBeyondTheFieldStaysNegative) {
  Cmn_AssertRecorder const silent;
  EXPECT_EQ(Vrae_SysexEvent(-200, nullptr).GetLength(), -128);
  EXPECT_EQ(Vrae_SysexEvent(INT_MIN, nullptr).GetLength(), -128);
}

TEST_F(Vrae_Sysex, OfNegativeLengthHoldsNoBytes) {
  Cmn_AssertRecorder const recorder;
  Vrae_SysexEvent const event(-1, nullptr);
  EXPECT_EQ(Read(event, 0, 2, 2), (Bytes{0x55, 0x55}));
  EXPECT_EQ(recorder.GetNum("iEndIndex <= this->GetLength()"), 1);
}

TEST_F(Vrae_Sysex, SetDataMakesAShortMessageLong) {
  Vrae_SysexEvent event = Sysex(3);
  event.SetData(20, Counting(20).data());
  EXPECT_EQ(event.GetType(), 15);
  EXPECT_EQ(ReadAll(event), AsNumbers(Counting(20)));
}

TEST_F(Vrae_Sysex, SetDataMakesALongMessageShortAndDropsTheReference) {
  Vrae_SysexEvent event = Sysex(20);
  event.SetData(3, Counting(3).data());
  EXPECT_EQ(event.GetType(), 14);
  EXPECT_EQ(ReadAll(event), (Bytes{1, 2, 3}));
  EXPECT_EQ(Sys_DelayedDeletionQueue::GetNumPending(), 1);
}

TEST_F(Vrae_Sysex, SetDataLeavesCopiesAlone) {
  Vrae_SysexEvent event = Sysex(20);
  Vrae_SysexEvent const copy(event);
  event.SetData(30, Counting(30).data());
  EXPECT_EQ(copy.GetLength(), 20);
  EXPECT_EQ(event.GetLength(), 30);
  EXPECT_EQ(Sys_DelayedDeletionQueue::GetNumPending(), 0);
}

TEST_F(Vrae_Sysex, SetDataTakesContentsOutOfItsOwnPayload) {
  Mem2_MasterAllocator pool(4096);
  std::vector<unsigned char> bytes = Counting(40);
  bytes.front() = 0xF0;
  bytes.back() = 0xF7;
  Vrae_Event event = Vrae_SysexPacketEvent(40, bytes.data(), &pool);
  event.AsSysex().SetData(5, event.AsSysex().GetInternalDataPtr() + 10);
  EXPECT_EQ(ReadAll(event.AsSysex()), (Bytes{12, 13, 14, 15, 16}));
  EXPECT_EQ(pool.GetNumBlocksInUse(), 0);
}

TEST_F(Vrae_Sysex, SetDataTakesContentsOutOfItsOwnRecord) {
  Vrae_SysexEvent event = Sysex(10);
  event.SetData(5, event.GetInternalDataPtr() + 2);
  EXPECT_EQ(ReadAll(event), (Bytes{3, 4, 5, 6, 7}));
}

TEST_F(Vrae_Sysex, SetDataWithoutAPayloadReportsAndGoesOn) {
  Vrae_Event event = MakeBlankEvent(Vrae_Event::kLongSysex);
  Cmn_AssertRecorder const recorder;
  static_cast<Vrae_SysexEvent &>(event).SetData(3, Counting(3).data());
  EXPECT_EQ(recorder.GetNum("mU.mLongSysex.mSysexP != 0"), 1);
  EXPECT_EQ(recorder.GetNum(), 1);
  EXPECT_EQ(event.GetType(), 14);
}

TEST_F(Vrae_Sysex, SetDataMakesAnyKindASysex) {
  Vrae_Event event = Vrae_NoteOnEvent(60);
  static_cast<Vrae_SysexEvent &>(event).SetData(3, Counting(3).data());
  EXPECT_EQ(event.GetType(), 14);
}

TEST_F(Vrae_Sysex, ALengthThatCannotBeStoredIsOutOfMemory) {
  unsigned char const byte = 1;
  EXPECT_THROW(Vrae_SysexEvent(INT_MAX, &byte), std::bad_alloc);
  EXPECT_THROW(Vrae_SysexEvent(INT_MAX - 1, &byte), std::bad_alloc);
}

TEST_F(Vrae_Sysex, OutOfMemoryLeavesNoEventWhereAPayloadWas) {
  unsigned char const byte = 1;
  Vrae_SysexEvent event = Sysex(20);
  EXPECT_THROW(event.SetData(INT_MAX, &byte), std::bad_alloc);
  EXPECT_EQ(event.GetType(), 0);
  EXPECT_EQ(Sys_DelayedDeletionQueue::GetNumPending(), 1);
}

TEST_F(Vrae_Sysex, GetDataGivesAnyRangeOfTheContents) {
  for (int length : {14, 15}) {
    Vrae_SysexEvent const event = Sysex(length);
    EXPECT_EQ(Read(event, 0, 3, 4), (Bytes{1, 2, 3, 0x55}));
    EXPECT_EQ(Read(event, 5, 7, 3), (Bytes{6, 7, 0x55}));
    EXPECT_EQ(Read(event, length - 1, length, 1), Bytes{length});
    EXPECT_EQ(Read(event, 4, 4, 1), Bytes{0x55});
    EXPECT_EQ(Read(event, length, length, 1), Bytes{0x55});
  }
}

TEST_F(Vrae_Sysex, GetDataReportsAReversedRange) {
  for (int length : {3, 20}) {
    Vrae_SysexEvent const event = Sysex(length);
    Cmn_AssertRecorder const recorder;
    EXPECT_EQ(Read(event, 2, 1, 1), Bytes{0x55});
    EXPECT_EQ(recorder.GetNum("iStartIndex <= iEndIndex"), 1);
    EXPECT_EQ(recorder.GetNum(), 1);
  }
}

TEST_F(Vrae_Sysex, GetDataReportsANegativeStartAndWritesWhatLiesInside) {
  for (int length : {3, 20}) {
    Vrae_SysexEvent const event = Sysex(length);
    Cmn_AssertRecorder const recorder;
    EXPECT_EQ(Read(event, -2, 2, 4), (Bytes{0x55, 0x55, 1, 2}));
    EXPECT_EQ(recorder.GetNum("iStartIndex >= 0"), 1);
    EXPECT_EQ(recorder.GetNum(), 1);
  }
}

TEST_F(Vrae_Sysex, GetDataReportsAnEndPastTheContentsAndWritesWhatLiesInside) {
  for (int length : {3, 20}) {
    Vrae_SysexEvent const event = Sysex(length);
    Cmn_AssertRecorder const recorder;
    EXPECT_EQ(Read(event, length - 1, length + 2, 3), (Bytes{length, 0x55, 0x55}));
    EXPECT_EQ(recorder.GetNum("iEndIndex <= this->GetLength()"), 1);
    EXPECT_EQ(recorder.GetNum(), 1);
  }
}

TEST_F(Vrae_Sysex, GetDataStaysInsideForTheWidestRange) {
  Cmn_AssertRecorder const silent;
  Vrae_SysexEvent const event = Sysex(3);
  EXPECT_EQ(Read(event, INT_MAX, INT_MAX, 1), Bytes{0x55});
  EXPECT_EQ(Read(event, INT_MAX, INT_MIN, 1), Bytes{0x55});
  EXPECT_EQ(Read(event, 0, INT_MAX, 4), (Bytes{1, 2, 3, 0x55}));
}

TEST_F(Vrae_Sysex, ACorruptLengthStaysInsideTheRecord) {
  Vrae_SysexEvent event = Sysex(14);
  event.mU.mShortSysex.mLength = 127;
  std::vector<unsigned char> data(127, kUntouched);
  event.GetData(data.data(), 0, 127);
  EXPECT_EQ(data[13], 14);
  EXPECT_EQ(data[14], kUntouched);
}

TEST_F(Vrae_Sysex, GetInternalDataPtrGivesTheContents) {
  Vrae_SysexEvent const shortEvent = Sysex(3), longEvent = Sysex(20);
  EXPECT_EQ(shortEvent.GetInternalDataPtr(), shortEvent.mU.mShortSysex.mData);
  EXPECT_EQ(longEvent.GetInternalDataPtr(), longEvent.GetDirectDataPtr() + 1);
}

TEST_F(Vrae_Sysex, GetInternalDataPtrStepsOverABeginningAlone) {
  Mem2_MasterAllocator pool(4096);
  Vrae_Event const event = MakeStored({5, 6, 7}, &pool);
  Vrae_SysexEvent const & view = static_cast<Vrae_SysexEvent const &>(event);
  EXPECT_EQ(view.GetInternalDataPtr(), view.GetDirectDataPtr());
}

TEST_F(Vrae_Sysex, AFragmentsContentsAreTwoBytesShorter) {
  Mem2_MasterAllocator pool(4096);
  Vrae_Event const begin = MakeStored({0xF0, 6, 7, 8}, &pool);
  Vrae_Event const middle = MakeStored({5, 6, 7, 8}, &pool);
  EXPECT_EQ(ReadAll(static_cast<Vrae_SysexEvent const &>(begin)), (Bytes{6, 7}));
  EXPECT_EQ(ReadAll(static_cast<Vrae_SysexEvent const &>(middle)), (Bytes{5, 6}));
}

TEST_F(Vrae_Sysex, AFragmentOfOneByteHasNoContents) {
  Cmn_AssertRecorder const silent;
  typedef std::vector<unsigned char> Stored;
  Mem2_MasterAllocator pool(4096);
  for (Stored const & bytes : {Stored{0xF0}, Stored{0xF7}, Stored{7}}) {
    Vrae_Event const event = MakeStored(bytes, &pool);
    Vrae_SysexEvent const & view = static_cast<Vrae_SysexEvent const &>(event);
    EXPECT_EQ(view.GetLength(), -1);
    EXPECT_EQ(Read(view, 0, 1, 1), Bytes{0x55});
  }
}

TEST_F(Vrae_Sysex, GetDirectDataPtrOfAnotherKindIsNullWithThrowingOff) {
  Vrae_SysexEvent const event = Sysex(3);
  EXPECT_EQ(GetFailedChecks([&] { EXPECT_EQ(event.GetDirectDataPtr(), nullptr); }, false),
            std::vector<std::string>{"mU.mBase.mType == kLongSysex"});
}

TEST_F(Vrae_Sysex, OtherKindsReadAsAShortMessage) {
  Vrae_Event event = MakeBlankEvent(Vrae_Event::kSysexPacket);
  event.mU.mShortSysex.mLength = 2;
  event.mU.mShortSysex.mData[0] = 8;
  event.mU.mShortSysex.mData[1] = 9;
  Vrae_SysexEvent const & view = static_cast<Vrae_SysexEvent const &>(event);
  EXPECT_EQ(view.GetLength(), 2);
  EXPECT_EQ(ReadAll(view), (Bytes{8, 9}));
}

TEST_F(Vrae_Sysex, WithoutAPayloadReadsAsEmptyInSilence) {
  Vrae_Event event = MakeBlankEvent(Vrae_Event::kLongSysex);
  Vrae_SysexEvent const & view = static_cast<Vrae_SysexEvent const &>(event);
  Cmn_AssertRecorder const recorder;
  EXPECT_EQ(view.GetLength(), 0);
  EXPECT_EQ(view.GetDirectDataPtr(), nullptr);
  EXPECT_EQ(view.GetInternalDataPtr(), nullptr);
  EXPECT_EQ(Read(view, 0, 0, 1), Bytes{0x55});
  EXPECT_EQ(recorder.GetNum(), 0);
  event.mU.mBase.mType = 0;
}

TEST_F(Vrae_Sysex, APayloadOnTheHeapIsQueuedByItsLastReference) {
  unsigned char * const bytesP = new unsigned char[3]{1, 2, 3};
  Vrae_SysexData * const dataP = Vrae_SysexData::New(3, bytesP);
  EXPECT_EQ(dataP->GetLength(), 3);
  EXPECT_EQ(dataP->GetDataPtr(), bytesP);
  dataP->AddReference();
  dataP->RemoveReference();
  EXPECT_EQ(Sys_DelayedDeletionQueue::GetNumPending(), 0);
  dataP->RemoveReference();
  EXPECT_EQ(Sys_DelayedDeletionQueue::GetNumPending(), 1);
  EXPECT_EQ(Sys_DelayedDeletionQueue::DeletePending(), 1);
}

TEST_F(Vrae_Sysex, APayloadInAPoolGoesBackAtOnce) {
  Mem2_MasterAllocator pool(4096);
  unsigned char * const bytesP = static_cast<unsigned char *>(pool.Alloc(3, nullptr));
  Vrae_SysexDataRT * const dataP = Vrae_SysexDataRT::New(3, bytesP, &pool);
  EXPECT_EQ(dataP->GetLength(), 3);
  EXPECT_EQ(dataP->GetDataPtr(), bytesP);
  EXPECT_EQ(pool.GetNumBlocksInUse(), 2);
  dataP->RemoveReference();
  EXPECT_EQ(pool.GetNumBlocksInUse(), 0);
  EXPECT_EQ(pool.GetNumBadFrees(), 0);
  EXPECT_EQ(Sys_DelayedDeletionQueue::GetNumPending(), 0);
}

TEST_F(Vrae_Sysex, APayloadThatThePoolRefusesLeavesTheBytesAlone) {
  Mem2_MasterAllocator pool(4096);
  unsigned char * const bytesP = static_cast<unsigned char *>(pool.Alloc(3, nullptr));
  pool.FailAfter(0);
  EXPECT_EQ(Vrae_SysexDataRT::New(3, bytesP, &pool), nullptr);
  EXPECT_EQ(pool.GetNumBlocksInUse(), 1);
  EXPECT_EQ(Vrae_SysexDataRT::New(3, bytesP, nullptr), nullptr);
  pool.Free(bytesP, nullptr);
}

TEST_F(Vrae_Sysex, APayloadWithoutBytesThrowsAndLeaksNothing) {
  Cmn_AssertRecorder const recorder;
  Mem2_MasterAllocator pool(4096);
  EXPECT_THROW((void)Vrae_SysexData::New(3, nullptr), Cmn_AssertException);
  EXPECT_THROW((void)Vrae_SysexDataRT::New(3, nullptr, &pool), Cmn_AssertException);
  EXPECT_EQ(recorder.GetNum("mDataP != 0"), 2);
  EXPECT_EQ(pool.GetNumBlocksInUse(), 0);
}

TEST_F(Vrae_Sysex, APayloadWithoutBytesStoresNullWithThrowingOff) {
  Cmn_AssertRecorder const silent;
  bool const former = Cmn_Assert::SetThrowing(false);
  Mem2_MasterAllocator pool(4096);
  {
    Vrae_Event const event =
        Vrae_SysexPacketEvent(Vrae_SysexPacketEvent::InitWithBlock(), nullptr, 20, &pool);
    EXPECT_EQ(event.GetType(), 15);
    EXPECT_EQ(event.AsSysexPacket().GetDirectDataPtr(), nullptr);
    EXPECT_EQ(event.AsSysexPacket().GetLength(), 20);
    EXPECT_FALSE(event.AsSysexPacket().IsComplete());
    EXPECT_FALSE(event.AsSysexPacket().IsBeginningPacket());
  }
  EXPECT_EQ(pool.GetNumBlocksInUse(), 0);
  Cmn_Assert::SetThrowing(former);
}
