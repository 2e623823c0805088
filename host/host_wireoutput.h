// The way from a player's events to the bytes that its receiver gets.
#pragma once

#include <array>
#include <memory>

#include "foundation/time_typed.h"
#include "host/host_blockreceiver.h"
#include "vrad/vrae_chasetracker.h"
#include "vrad/vrae_event.h"

/// Turns events into messages of a channel and remembers what each channel was last told.
/// Thread: one at a time. Only the constructor takes memory.
class Host_WireOutput {
public:
  static constexpr int kNumChannels = 16;

  /// Whose message it is, and where it stands in the clip.
  struct Origin {
    int mClip;
    int mChannel;  // 0 to 15
    Time_Typed mTime;
  };

  explicit Host_WireOutput(Host_BlockReceiver * iReceiverP);

  bool HasReceiver() const { return mReceiverP != nullptr; }
  Host_BlockReceiver * GetReceiver() const { return mReceiverP; }
  /// Nothing is known of what the channels of the new one were told.
  void SetReceiver(Host_BlockReceiver * iReceiverP);

  /// Of the messages that follow, samples from the block's start. Never falls within a block.
  void SetOffset(int iOffset) { mOffset = iOffset; }

  /// All messages of an event that has any; nothing for kinds without.
  void Send(Vrae_Event const & iEvent, Origin const & iOrigin);

  void SendController(int iNumber, int iValue, Origin const & iOrigin);

  /// What followed values the channel was last told.
  Vrae_ChaseTracker & GetChannelState(int iChannel) {
    return *mChannelStates[static_cast<size_t>(iChannel)];
  }

private:
  void SendSysex(Vrae_Event const & iEvent, Origin const & iOrigin);
  void Send(unsigned char const * iData, int iLength, Origin const & iOrigin);

  Host_BlockReceiver * mReceiverP;
  int mOffset = 0;
  std::array<std::unique_ptr<Vrae_ChaseTracker>, kNumChannels> mChannelStates;
};
