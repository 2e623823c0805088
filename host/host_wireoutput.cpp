#include "host/host_wireoutput.h"

#include "host/host_chasemap.h"
#include "vrad/vrae_sysexdatabase.h"

namespace {

// Of a sysex that lies in the event itself, its two frame bytes included.
constexpr int kMaxBytes = Vrae_Event::kMaxShortSysexLength + 2;

}  // namespace

Host_WireOutput::Host_WireOutput(Host_BlockReceiver * iReceiverP) : mReceiverP(iReceiverP) {
  for (std::unique_ptr<Vrae_ChaseTracker> & stateP : mChannelStates)
    stateP = std::make_unique<Vrae_ChaseTracker>(&Host_GetChaseMap(), true);
}

void Host_WireOutput::SetReceiver(Host_BlockReceiver * iReceiverP) {
  mReceiverP = iReceiverP;
  for (std::unique_ptr<Vrae_ChaseTracker> const & stateP : mChannelStates)
    stateP->Clear();
}

void Host_WireOutput::Send(Vrae_Event const & iEvent, Origin const & iOrigin) {
  if (iEvent.IsMessageSysex(0)) {
    SendSysex(iEvent, iOrigin);
    return;
  }
  int const numMessages = iEvent.GetNumMessages();
  for (int message = 0; message < numMessages; ++message) {
    unsigned char bytes[kMaxBytes];
    int const length = iEvent.GetMessageLength(message);
    iEvent.GetMessageData(reinterpret_cast<signed char *>(bytes), message);
    bytes[0] = static_cast<unsigned char>(bytes[0] | iOrigin.mChannel);
    // A store takes values out of range, but a set bit here would break the stream of bytes.
    for (int i = 1; i < length; ++i)
      bytes[i] &= 0x7f;
    Send(bytes, length, iOrigin);
  }
  GetChannelState(iOrigin.mChannel).TrackEvent(iEvent);
}

void Host_WireOutput::SendController(int iNumber, int iValue, Origin const & iOrigin) {
  Send(Vrae_ControllerEvent(static_cast<signed char>(iNumber), static_cast<signed char>(iValue)),
       iOrigin);
}

// A long one is sent out of its payload, whatever its length.
void Host_WireOutput::SendSysex(Vrae_Event const & iEvent, Origin const & iOrigin) {
  if (iEvent.IsCompleteLongSysex()) {
    Send(iEvent.AsSysex().GetDirectDataPtr(), iEvent.GetMessageLength(0), iOrigin);
  } else if (iEvent.GetType() == Vrae_Event::kShortSysex) {
    unsigned char bytes[kMaxBytes];
    iEvent.GetMessageData(reinterpret_cast<signed char *>(bytes), 0);
    Send(bytes, iEvent.GetMessageLength(0), iOrigin);
  }
}

void Host_WireOutput::Send(unsigned char const * iData, int iLength, Origin const & iOrigin) {
  mReceiverP->ReceiveMessage({iOrigin.mClip, mOffset, iData, iLength, iOrigin.mTime});
}
