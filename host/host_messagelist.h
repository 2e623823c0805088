// A receiver that keeps what a player sends.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "foundation/time_typed.h"
#include "host/host_blockreceiver.h"

/// Keeps copies of all messages, either into storage that is taken once, for the audio thread, or
/// into storage that grows, for work offline.
/// Thread: one at a time.
class Host_MessageList : public Host_BlockReceiver {
public:
  struct Message {
    int mBlock;  // from 0
    int mClip;
    int mOffset;             // samples from the block's start
    long long mSample;       // from the start of the first block
    Time_Typed mTime;        // as in Host_WireMessage
    size_t mFirst, mLength;  // of the bytes
  };

  /// Grows as it needs to. Fails: std::bad_alloc.
  Host_MessageList();

  /// Never takes more than this: a message for which there is no room is left out and counted.
  Host_MessageList(size_t iNumMessages, size_t iNumBytes);

  void BeginBlock(int iNumSamples) override;
  void ReceiveMessage(Host_WireMessage const & iMessage) override;
  void EndBlock() override;

  /// As new. The storage stays.
  void Clear();

  std::vector<Message> const & GetMessages() const { return mMessages; }
  /// Lives: until the list changes.
  std::span<unsigned char const> GetBytes(Message const & iMessage) const;

  int GetNumBlocks() const { return mNumBlocks; }
  /// Of all blocks that have ended.
  long long GetNumSamples() const { return mNumSamples; }
  int GetNumLost() const { return mNumLost; }

private:
  bool HasRoomFor(size_t iLength) const;

  bool mGrows;
  std::vector<Message> mMessages;
  std::vector<unsigned char> mBytes;
  int mNumBlocks = 0;
  int mBlockLength = 0;
  long long mNumSamples = 0;
  int mNumLost = 0;
};
