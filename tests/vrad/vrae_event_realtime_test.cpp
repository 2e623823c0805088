// What the audio thread does with events: no heap, no lock, no system call.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/mem2_masterallocator.h"
#include "foundation/sys_delayeddeletion.h"
#include "support/event_samples.h"
#include "support/realtime_scope.h"
#include "vrad/vrae_event.h"
#include "vrad/vrae_filter.h"
#include "vrad/vrae_substream.h"

namespace {

// A sink that does nothing, as a host's on the audio thread may not either.
class SilentSink final : public Cmn_AssertSink {
public:
  SilentSink() : mFormerP(Cmn_Assert::SetSink(this)) {}
  ~SilentSink() override { Cmn_Assert::SetSink(mFormerP); }
  void Report(Cmn_AssertReport const &) override { ++mNum; }
  int mNum = 0;

private:
  Cmn_AssertSink * mFormerP;
};

class EventOfKind : public testing::TestWithParam<int> {
protected:
  ~EventOfKind() override { Sys_DelayedDeletionQueue::DeletePending(); }
  Vrae_Event mEvent = MakeSampleEvent(GetParam());
};

}  // namespace

TEST_P(EventOfKind, IsCopiedAssignedAndDestroyedInRealTime) {
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              Vrae_Event copy(mEvent);
              Vrae_Event target;
              target = copy;
              copy = target;
              target = Vrae_NoteOnEvent(60);
            }));
}

TEST_P(EventOfKind, LosesItsLastCopyInRealTime) {
  EXPECT_EQ("", RealtimeViolationsOf([&] { mEvent = Vrae_Event(); }));
}

TEST_P(EventOfKind, IsFilteredInRealTime) {
  SilentSink const sink;
  Vrae_Filter const filter;
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              filter.FilterEvent(&mEvent);
              (void)Vrae_SubStream(mEvent);
            }));
}

TEST_P(EventOfKind, IsEncodedInRealTimeIfAtAll) {
  SilentSink const sink;
  bool const former = Cmn_Assert::SetThrowing(false);
  signed char data[64];
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              for (int i = 0; i < mEvent.GetNumMessages(); ++i) {
                (void)mEvent.GetMessageLength(i);
                mEvent.GetMessageData(data, i);
                for (int offset = 0; offset < 3; ++offset)
                  mEvent.GetPartialMessageData(data, i, offset, 1);
              }
              (void)mEvent.GetMessageLength(0);
              mEvent.GetMessageData(data, 0);
            }));
  Cmn_Assert::SetThrowing(former);
}

INSTANTIATE_TEST_SUITE_P(Realtime, EventOfKind, testing::Range(0, 24));

TEST(Vrae_Event_Realtime, ReportsAWrongViewWithoutTheHeap) {
  SilentSink const sink;
  Vrae_Event const event = Vrae_NoteOnEvent(60);
  EXPECT_EQ("", RealtimeViolationsOf([&] { (void)event.AsController(); }));
  EXPECT_EQ(sink.mNum, 1);
}

TEST(Vrae_Event_Realtime, BuildsEveryPlainKind) {
  EXPECT_EQ("", RealtimeViolationsOf([] {
              for (int kind = 0; kind <= 22; ++kind)
                if (kind != Vrae_Event::kLongSysex) (void)MakeSampleEvent(kind);
            }));
}

TEST(Vrae_Event_Realtime, MakesEventsOfSubStreams) {
  EXPECT_EQ("", RealtimeViolationsOf([] {
              Vrae_Event const event = Vrae_SubStream::Controller(7).MakeEvent(90);
              (void)Vrae_SubStream(event).GetIndex();
            }));
}

TEST(Vrae_Packet_Realtime, ComesFromThePoolAndGoesBack) {
  Mem2_MasterAllocator pool(1 << 16);
  std::vector<unsigned char> bytes(300, 5);
  for (int length : {0, 5, 14, 15, 17, 300}) {
    EXPECT_EQ("", RealtimeViolationsOf([&] {
                Vrae_Event const event = Vrae_SysexPacketEvent(length, bytes.data(), &pool);
                Vrae_Event const copy(event);
                unsigned char data[300];
                copy.AsSysexPacket().GetData(data, 0, length);
                (void)copy.AsSysexPacket().IsEndingPacket();
              }))
        << length;
  }
  EXPECT_EQ(pool.GetNumBlocksInUse(), 0);
}

TEST(Vrae_Packet_Realtime, TakesABlockOver) {
  Mem2_MasterAllocator pool(1 << 16);
  EXPECT_EQ("", RealtimeViolationsOf([&] {
              auto * const blockP = static_cast<unsigned char *>(pool.Alloc(40, nullptr));
              for (int i = 0; i < 40; ++i)
                blockP[i] = 5;
              (void)Vrae_SysexPacketEvent(Vrae_SysexPacketEvent::InitWithBlock(), blockP, 40,
                                          &pool);
            }));
  EXPECT_EQ(pool.GetNumBlocksInUse(), 0);
}

TEST(Vrae_Packet_Realtime, IsLostWithoutAWordOnExhaustion) {
  SilentSink const sink;
  Mem2_MasterAllocator pool(1 << 16);
  std::vector<unsigned char> const bytes(300, 5);
  for (int num = 0; num < 2; ++num) {
    pool.FailAfter(num);
    EXPECT_EQ("",
              RealtimeViolationsOf([&] { (void)Vrae_SysexPacketEvent(300, bytes.data(), &pool); }));
  }
  EXPECT_EQ(sink.mNum, 0);
}
