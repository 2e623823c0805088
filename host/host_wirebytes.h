// Makes messages of the bytes that go over a MIDI cable.
#pragma once

#include <vector>

#include "host/host_blockreceiver.h"

/// Takes bytes in pieces, cut anywhere, and hands on whole messages: with the status byte where the
/// sender left it out, sysexes in one. What plays no part in a clip is left out: clock, active
/// sensing and other real-time bytes, wherever they come, and time code, song position, song select
/// and tune request. What makes no message is handed on as it came, and so is a system reset: a
/// stream checker names them.
/// Thread: one at a time. Takes memory for a sysex.
class Host_WireBytes {
public:
  /// The receiver must outlive it. When blocks begin and end it has to be told by others.
  explicit Host_WireBytes(Host_BlockReceiver & ioReceiver) : mReceiver(ioReceiver) {}

  /// Bytes of a clip, at an offset in samples from the block's start. A message belongs where its
  /// last byte comes; where it stands in its clip is not known.
  void Receive(int iClip, int iOffset, unsigned char const * iData, int iLength);

  /// Whether a message has begun and not ended.
  bool IsInMessage() const { return !mMessage.empty(); }

private:
  struct Place {
    int mClip, mOffset;
  };

  void TakeStatus(unsigned char iStatus, Place const & iPlace);
  void TakeData(unsigned char iByte, Place const & iPlace);
  void EndIfWhole(Place const & iPlace);
  void End(Place const & iPlace);
  void Send(unsigned char const * iData, size_t iLength, Place const & iPlace);

  Host_BlockReceiver & mReceiver;
  std::vector<unsigned char> mMessage;  // as far as it has come
  unsigned char mRunningStatus = 0;     // of the last channel message; 0: none that may be left out
};
