#include "host/host_messagelist.h"

Host_MessageList::Host_MessageList() : mGrows(true) {}

Host_MessageList::Host_MessageList(size_t iNumMessages, size_t iNumBytes) : mGrows(false) {
  mMessages.reserve(iNumMessages);
  mBytes.reserve(iNumBytes);
}

void Host_MessageList::BeginBlock(int iNumSamples) {
  mBlockLength = iNumSamples;
}

void Host_MessageList::ReceiveMessage(Host_WireMessage const & iMessage) {
  size_t const length = static_cast<size_t>(iMessage.mLength);
  if (!mGrows && !HasRoomFor(length)) {
    ++mNumLost;
    return;
  }
  mMessages.push_back({mNumBlocks, iMessage.mClip, iMessage.mOffset, mNumSamples + iMessage.mOffset,
                       iMessage.mTime, mBytes.size(), length});
  mBytes.insert(mBytes.end(), iMessage.mData, iMessage.mData + iMessage.mLength);
}

void Host_MessageList::EndBlock() {
  ++mNumBlocks;
  mNumSamples += mBlockLength;
}

void Host_MessageList::Clear() {
  mMessages.clear();
  mBytes.clear();
  mNumBlocks = 0;
  mNumSamples = 0;
  mNumLost = 0;
}

std::span<unsigned char const> Host_MessageList::GetBytes(Message const & iMessage) const {
  return std::span<unsigned char const>(mBytes).subspan(iMessage.mFirst, iMessage.mLength);
}

bool Host_MessageList::HasRoomFor(size_t iLength) const {
  return mMessages.size() < mMessages.capacity() && iLength <= mBytes.capacity() - mBytes.size();
}
