#include "host/host_midisysex.h"

#include <algorithm>

namespace {

bool IsData(unsigned char iByte) {
  return iByte < 0x80;
}

bool IsChannelStatus(unsigned char iByte) {
  return iByte >= 0x80 && iByte < 0xf0;
}

size_t GetNumData(unsigned char iStatus) {
  return (iStatus & 0xe0) == 0xc0 ? 1 : 2;
}

// Whether a channel message's data stand at iAt.
bool HasData(std::span<unsigned char const> iBytes, size_t iAt, unsigned char iStatus) {
  size_t const numData = GetNumData(iStatus);
  return iBytes.size() - iAt >= numData && IsData(iBytes[iAt]) && IsData(iBytes[iAt + numData - 1]);
}

}  // namespace

Host_MidiSysexListener::~Host_MidiSysexListener() = default;

void Host_MidiSysexJoiner::AddPacket(long long iTick, unsigned char iStatus,
                                     std::span<unsigned char const> iBytes, size_t iOffset) {
  if (iStatus == 0xf0) {
    Open(iTick, iBytes, iOffset);
  } else if (mIsOpen) {
    Continue(iBytes);
  } else {
    ReadEscape(iTick, iBytes, iOffset);
  }
}

void Host_MidiSysexJoiner::EndTrack() {
  if (mIsOpen) mListener.UnfinishedSysex(mOffset);
  mIsOpen = false;
  mOpen = {};
}

void Host_MidiSysexJoiner::Open(long long iTick, std::span<unsigned char const> iBytes,
                                size_t iOffset) {
  if (mIsOpen) mListener.UnfinishedSysex(mOffset);
  mIsOpen = false;
  if (!iBytes.empty() && iBytes.back() == 0xf7) {
    // The usual case, a message in one packet, is not copied.
    return mListener.Sysex(iTick, iBytes.first(iBytes.size() - 1), iOffset);
  }
  mIsOpen = true;
  mTick = iTick;
  mOffset = iOffset;
  mOpen.assign(iBytes.begin(), iBytes.end());
}

void Host_MidiSysexJoiner::Continue(std::span<unsigned char const> iBytes) {
  mOpen.insert(mOpen.end(), iBytes.begin(), iBytes.end());
  if (mOpen.empty() || mOpen.back() != 0xf7) return;
  mOpen.pop_back();
  mIsOpen = false;
  mListener.Sysex(mTick, mOpen, mOffset);
}

void Host_MidiSysexJoiner::ReadEscape(long long iTick, std::span<unsigned char const> iBytes,
                                      size_t iOffset) {
  unsigned char status = 0;
  bool wasOther = false;
  for (size_t at = 0; at < iBytes.size();) {
    std::span<unsigned char const> const rest = iBytes.subspan(at);
    size_t const taken = rest[0] == 0xf0 ? ReadEscapedSysex(iTick, rest, iOffset)
                                         : ReadEscapedMessage(iTick, rest, iOffset, status);
    bool const isOther = taken == 0;
    if (isOther && (!wasOther || !IsData(rest[0]))) mListener.EscapedBytes(iOffset);
    wasOther = isOther;
    at += isOther ? 1 : taken;
  }
}

// Gives the number of bytes taken, 0 if no channel message stands in front.
size_t Host_MidiSysexJoiner::ReadEscapedMessage(long long iTick,
                                                std::span<unsigned char const> iBytes,
                                                size_t iOffset, unsigned char & ioStatus) {
  size_t const dataAt = IsData(iBytes[0]) ? 0 : 1;
  if (dataAt == 1)
    ioStatus = IsChannelStatus(iBytes[0]) ? iBytes[0] : static_cast<unsigned char>(0);
  if (ioStatus == 0 || !HasData(iBytes, dataAt, ioStatus)) return 0;
  size_t const numData = GetNumData(ioStatus);
  unsigned char const second = numData == 2 ? iBytes[dataAt + 1] : static_cast<unsigned char>(0);
  mListener.EscapedMessage(iTick, ioStatus, iBytes[dataAt], second, iOffset);
  return dataAt + numData;
}

// The bytes taken go to the first 0xF7, or are all of them when the message goes on in
// further packets.
size_t Host_MidiSysexJoiner::ReadEscapedSysex(long long iTick,
                                              std::span<unsigned char const> iBytes,
                                              size_t iOffset) {
  auto const end = std::find(iBytes.begin(), iBytes.end(), static_cast<unsigned char>(0xf7));
  size_t const size = static_cast<size_t>(end - iBytes.begin()) + (end == iBytes.end() ? 0u : 1u);
  Open(iTick, iBytes.subspan(1, size - 1), iOffset);
  return size;
}
