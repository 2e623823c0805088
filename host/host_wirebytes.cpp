#include "host/host_wirebytes.h"

namespace {

enum EStatus : unsigned char {
  kSysex = 0xF0,
  kTimeCode = 0xF1,
  kSongPosition = 0xF2,
  kSongSelect = 0xF3,
  kTuneRequest = 0xF6,
  kEndOfSysex = 0xF7,
  kFirstRealTime = 0xF8,
  kReset = 0xFF
};

bool IsStatus(unsigned char iByte) {
  return iByte >= 0x80;
}

// With its status; what has none and what is undefined is one byte long.
size_t LengthOf(unsigned char iStatus) {
  if (!IsStatus(iStatus)) return 1;
  if (iStatus < kSysex) return (iStatus & 0xE0) == 0xC0 ? 2 : 3;
  if (iStatus == kSongPosition) return 3;
  return iStatus == kTimeCode || iStatus == kSongSelect ? 2 : 1;
}

bool IsOfNoClip(unsigned char iStatus) {
  return iStatus == kTimeCode || iStatus == kSongPosition || iStatus == kSongSelect ||
         iStatus == kTuneRequest;
}

}  // namespace

void Host_WireBytes::Receive(int iClip, int iOffset, unsigned char const * iData, int iLength) {
  Place const place = {iClip, iOffset};
  for (int i = 0; i < iLength; ++i) {
    unsigned char const byte = iData[i];
    if (byte == kReset)
      Send(&byte, 1, place);
    else if (IsStatus(byte) && byte < kFirstRealTime)
      TakeStatus(byte, place);
    else if (!IsStatus(byte))
      TakeData(byte, place);
  }
}

void Host_WireBytes::TakeStatus(unsigned char iStatus, Place const & iPlace) {
  bool const isInSysex = IsInMessage() && mMessage.front() == kSysex;
  if (isInSysex && iStatus == kEndOfSysex) {
    mMessage.push_back(iStatus);
    return End(iPlace);
  }
  if (IsInMessage()) End(iPlace);  // broken off
  mRunningStatus = iStatus < kSysex ? iStatus : static_cast<unsigned char>(0);
  mMessage.push_back(iStatus);
  EndIfWhole(iPlace);
}

void Host_WireBytes::TakeData(unsigned char iByte, Place const & iPlace) {
  if (!IsInMessage() && mRunningStatus != 0) mMessage.push_back(mRunningStatus);
  mMessage.push_back(iByte);
  EndIfWhole(iPlace);
}

void Host_WireBytes::EndIfWhole(Place const & iPlace) {
  unsigned char const status = mMessage.front();
  if (status != kSysex && mMessage.size() == LengthOf(status)) End(iPlace);
}

void Host_WireBytes::End(Place const & iPlace) {
  if (!IsOfNoClip(mMessage.front())) Send(mMessage.data(), mMessage.size(), iPlace);
  mMessage.clear();
}

void Host_WireBytes::Send(unsigned char const * iData, size_t iLength, Place const & iPlace) {
  mReceiver.ReceiveMessage(
      {iPlace.mClip, iPlace.mOffset, iData, static_cast<int>(iLength), Time_Typed()});
}
