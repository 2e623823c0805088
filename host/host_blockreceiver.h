// Where a player's messages go: a port, a list, a synthesizer.
#pragma once

#include "foundation/time_typed.h"

/// One MIDI message as it leaves a player, the channel merged into its status byte.
struct Host_WireMessage {
  int mClip;    // the number that the clip was added under
  int mOffset;  // samples from the block's start
  unsigned char const *
      mData;         // whole messages, a sysex from its 0xF0 to its 0xF7. Lives: the call
  int mLength;       // bytes, at least 1
  Time_Typed mTime;  // where the message stands in its clip: of an event as it is stored,
                     // of a note-off its note's end, of all else the position
};

/// Takes what a player sends, block after block. Within a block offsets never fall.
/// Thread: the one that processes. A receiver that plays live neither allocates, locks nor throws.
class Host_BlockReceiver {
public:
  virtual ~Host_BlockReceiver() = default;

  /// A block of that many samples follows; 0 in one that only sends what is due at once.
  virtual void BeginBlock(int iNumSamples) { static_cast<void>(iNumSamples); }

  virtual void ReceiveMessage(Host_WireMessage const & iMessage) = 0;

  virtual void EndBlock() {}
};
