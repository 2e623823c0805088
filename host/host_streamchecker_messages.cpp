// What is sent: whose it is, and what it does to a receiver.
#include <algorithm>
#include <span>
#include <string>

#include "host/host_streamchecker_impl.h"

namespace {

constexpr int kFirstMode = 120;  // of the controllers

bool IsNoteOn(unsigned char const * iData) {
  return (iData[0] & 0xF0) == 0x90 && iData[2] > 0;
}

bool IsNoteOff(unsigned char const * iData) {
  return (iData[0] & 0xF0) == 0x80 || ((iData[0] & 0xF0) == 0x90 && iData[2] == 0);
}

int OffVelocityOf(unsigned char const * iData) {
  constexpr int kImplied = 64;
  return (iData[0] & 0xF0) == 0x90 ? kImplied : iData[2];
}

}  // namespace

// How well a message would fit into a clip: -1 if not at all, else the higher the better.
int Host_StreamChecker::Impl::GetFit(Clip const & iClip, Host_WireMessage const & iMessage) {
  unsigned char const * const data = iMessage.mData;
  if (data[0] == 0xF0) return iClip.mIsRemoved ? -1 : static_cast<int>(IsSysexDue(iClip, iMessage));
  if ((data[0] & 0x0F) != iClip.mChannel) return -1;
  bool const isOn = IsNoteOn(data);
  if (!isOn && !IsNoteOff(data)) return 0;
  return iClip.mNotes.GetFit(data[1], isOn ? data[2] : OffVelocityOf(data), isOn);
}

bool Host_StreamChecker::Impl::IsSysexDue(Clip const & iClip, Host_WireMessage const & iMessage) {
  size_t const numSent = iClip.mSentSysexes.size();
  if (numSent >= iClip.mDueSysexes.size()) return false;
  std::vector<Host_CheckedClip::Sysex> const & sysexes = iClip.mContents.GetSysexes();
  return std::ranges::equal(sysexes[static_cast<size_t>(iClip.mDueSysexes[numSent])].mBytes,
                            std::span(iMessage.mData, static_cast<size_t>(iMessage.mLength)));
}

// The clip of a message that does not say whose it is.
Host_StreamChecker::Impl::Clip *
Host_StreamChecker::Impl::FindBestClip(Host_WireMessage const & iMessage) {
  Clip * foundP = nullptr;
  int best = -1;
  for (auto const & clipP : mClips) {
    int const fit = GetFit(*clipP, iMessage);
    if (fit > best) foundP = clipP.get();
    best = std::max(best, fit);
  }
  // A note-off that fits none is a stray one of the first clip.
  for (auto const & clipP : mClips)
    if (foundP == nullptr && (iMessage.mData[0] & 0x0F) == clipP->mChannel) foundP = clipP.get();
  if (foundP == nullptr)
    Blame(Host_EViolation::kClip, kAnyClip, -1,
          "no clip has channel " + std::to_string(iMessage.mData[0] & 0x0F));
  return foundP;
}

Host_StreamChecker::Impl::Clip *
Host_StreamChecker::Impl::FindReceivingClip(Host_WireMessage const & iMessage) {
  if (iMessage.mClip == kAnyClip) return FindBestClip(iMessage);
  Clip * foundP = nullptr;
  bool const isSysex = iMessage.mData[0] == 0xF0;
  for (auto const & clipP : mClips) {
    if (clipP->mNumber != iMessage.mClip) continue;
    foundP = clipP.get();
    bool const isItsOwn =
        isSysex ? !foundP->mIsRemoved : (iMessage.mData[0] & 0x0F) == foundP->mChannel;
    if (isItsOwn) return foundP;
  }
  if (foundP == nullptr)
    Blame(Host_EViolation::kClip, iMessage.mClip, -1, "there is no such clip");
  else
    Blame(Host_EViolation::kClip, *foundP,
          "a message goes to channel " + std::to_string(iMessage.mData[0] & 0x0F));
  return nullptr;
}

void Host_StreamChecker::Impl::ReceiveMessage(Host_WireMessage const & iMessage) {
  if (!IsGood()) return;
  int const offset = iMessage.mOffset;
  if (!mIsInBlock)
    return Blame(Host_EViolation::kOrder, iMessage.mClip, -1, "a message comes between two blocks");
  if (offset < 0 || offset >= std::max(mBlockLength, 1))
    return Blame(Host_EViolation::kOrder, iMessage.mClip, -1,
                 "a message has the offset " + std::to_string(offset) + " in a block of " +
                     std::to_string(mBlockLength));
  if (offset < mLastOffset)
    return Blame(Host_EViolation::kOrder, iMessage.mClip, -1,
                 "a message of the offset " + std::to_string(offset) + " comes behind one of " +
                     std::to_string(mLastOffset));
  AdvanceTo(offset);
  if (!IsGood()) return;
  mLastOffset = offset;
  std::string const flaw = Host_FindFlawOf(iMessage.mData, iMessage.mLength);
  if (!flaw.empty()) return Blame(Host_EViolation::kBytes, iMessage.mClip, -1, "a message " + flaw);
  if (Clip * const clipP = FindReceivingClip(iMessage)) TakeMessage(*clipP, iMessage);
}

void Host_StreamChecker::Impl::TakeMessage(Clip & ioClip, Host_WireMessage const & iMessage) {
  unsigned char const * const data = iMessage.mData;
  int const kind = data[0] & 0xF0;
  if (data[0] == 0xF0) {
    ioClip.mSentSysexes.emplace_back(data, data + iMessage.mLength);
  } else if (kind == 0x80 || kind == 0x90) {
    ReceiveNote(ioClip, data);
  } else if (kind == 0xB0 && data[1] >= kFirstMode) {
    ReceiveMode(ioClip.mChannel, data[1]);
  } else {
    Channel & channel = mChannels[ioClip.mChannel];
    channel.mReceiver.Apply(data);
    channel.mTouched.push_back(Host_CheckedChannel::KeyOf(data));
  }
}

// Receivers obey these or don't, and the stream has to be right for either.
void Host_StreamChecker::Impl::ReceiveMode(int iChannel, int iController) {
  constexpr int kResetControllers = 121, kLocalControl = 122;
  if (iController == kResetControllers) {
    mChannels[iChannel].mReceiver.Reset();
    mChannels[iChannel].mIsAllChanged = true;
  } else if (iController != kLocalControl) {
    for (auto const & clipP : mClips)
      if (clipP->mChannel == iChannel) clipP->mNotes.ReceiveAllOff();
  }
}

void Host_StreamChecker::Impl::ReceiveNote(Clip & ioClip, unsigned char const * iData) {
  int const pitch = iData[1];
  if (IsNoteOn(iData)) {
    CheckValuesAtStrike(ioClip, pitch);
    ioClip.mNotes.ReceiveNoteOn(pitch, iData[2]);
    return;
  }
  if (!ioClip.mNotes.ReceiveNoteOff(pitch, OffVelocityOf(iData)))
    Blame(Host_EViolation::kStrayNoteOff, ioClip,
          "note " + std::to_string(pitch) + " ends without having been struck");
}
