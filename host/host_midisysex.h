// Makes whole sysex messages of the packets and escapes of a MIDI file.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

/// Listens to `Host_MidiSysexJoiner`.
class Host_MidiSysexListener {
public:
  virtual ~Host_MidiSysexListener();

  /// The contents without 0xF0 and 0xF7, valid during the call. Tick and offset are those of the
  /// first packet: a clip holds a message at one time, so the times of the others go.
  virtual void Sysex(long long iTick, std::span<unsigned char const> iContents, size_t iOffset) = 0;
  /// A channel message sent as bytes by an F7 event.
  virtual void EscapedMessage(long long iTick, unsigned char iStatus, unsigned char iData1,
                              unsigned char iData2, size_t iOffset) = 0;
  /// Bytes of an F7 event, one run of them, that make neither.
  virtual void EscapedBytes(size_t iOffset) = 0;
  /// A message whose 0xF7 has not come when the next began or the track ended.
  virtual void UnfinishedSysex(size_t iOffset) = 0;
};

/// Takes the F0 and F7 events of one track in file order. An F0 event, or an escape that begins
/// with 0xF0, opens a message; it ends with the event whose last byte is 0xF7. An F7 event outside
/// a message is an escape: its bytes are read as a cable would carry them, running status included.
/// Messages of other kinds between the packets leave an open message open.
/// Thread: one at a time. Holds at most the bytes of the message that is open.
class Host_MidiSysexJoiner {
public:
  explicit Host_MidiSysexJoiner(Host_MidiSysexListener & ioListener) : mListener(ioListener) {}

  /// iStatus 0xF0 or 0xF7.
  void AddPacket(long long iTick, unsigned char iStatus, std::span<unsigned char const> iBytes,
                 size_t iOffset);
  /// Reports a message that is still open.
  void EndTrack();

private:
  void Open(long long iTick, std::span<unsigned char const> iBytes, size_t iOffset);
  void Continue(std::span<unsigned char const> iBytes);
  void ReadEscape(long long iTick, std::span<unsigned char const> iBytes, size_t iOffset);
  size_t ReadEscapedMessage(long long iTick, std::span<unsigned char const> iBytes, size_t iOffset,
                            unsigned char & ioStatus);
  size_t ReadEscapedSysex(long long iTick, std::span<unsigned char const> iBytes, size_t iOffset);

  Host_MidiSysexListener & mListener;
  std::vector<unsigned char> mOpen;  // the contents so far
  bool mIsOpen = false;
  long long mTick = 0;
  size_t mOffset = 0;
};
