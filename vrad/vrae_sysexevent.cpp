// System-exclusive messages: the views on kinds 14, 15 and 16.
#include "vrad/vrae_event.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <new>
#include <span>

#include "cmn/cmn_assert.h"
#include "foundation/lumtrace.h"
#include "foundation/mem2_masterallocator.h"
#include "vrad/vrae_sysexdatabase.h"

namespace {

typedef std::span<unsigned char const> Bytes;

constexpr unsigned kTraceFacility = 0x2000f27;

bool BeginsMessage(Bytes iBytes) {
  return !iBytes.empty() && iBytes.front() == 0xF0;
}

bool EndsMessage(Bytes iBytes) {
  return !iBytes.empty() && iBytes.back() == 0xF7;
}

bool IsWholeMessage(Bytes iBytes) {
  return iBytes.size() >= 2 && BeginsMessage(iBytes) && EndsMessage(iBytes);
}

// What the record itself holds, as kind 14 or 16. A length that is no length holds nothing, or all
// that there is room for.
Bytes GetShortBytes(Vrae_Event const & iEvent) {
  Vrae_Event::ShortSysexData const & data = iEvent.mU.mShortSysex;
  return Bytes(data.mData, static_cast<size_t>(
                               std::clamp<int>(data.mLength, 0, Vrae_Event::kMaxShortSysexLength)));
}

// What the payload of kind 15 holds.
Bytes GetLongBytes(Vrae_Event const & iEvent) {
  Vrae_SysexDataBase const * const sysexP = iEvent.mU.mLongSysex.mSysexP;
  if (sysexP == nullptr || sysexP->GetDataPtr() == nullptr) return Bytes();
  return Bytes(sysexP->GetDataPtr(), static_cast<size_t>(std::max(sysexP->GetLength(), 0)));
}

int GetStoredLength(Vrae_Event const & iEvent) {
  Vrae_SysexDataBase const * const sysexP = iEvent.mU.mLongSysex.mSysexP;
  return sysexP == nullptr ? 0 : sysexP->GetLength();
}

// Without the bytes that frame them. Those of an incomplete message start where its 0xF0 would end.
Bytes GetContents(Vrae_Event const & iEvent) {
  if (iEvent.GetType() != Vrae_Event::kLongSysex) return GetShortBytes(iEvent);
  Bytes const bytes = GetLongBytes(iEvent);
  if (bytes.size() < 2) return Bytes();
  return bytes.subspan(BeginsMessage(bytes) ? 1 : 0, bytes.size() - 2);
}

// Writes bytes [iStartIndex, iEndIndex) of a sequence in which iBytes begin at iFirstIndex, each at
// its distance from iStartIndex. What lies outside is left as it was.
void CopyRange(Bytes iBytes, long long iFirstIndex, long long iStartIndex, long long iEndIndex,
               unsigned char * oData) {
  long long const size = static_cast<long long>(iBytes.size());
  long long const first = std::clamp<long long>(iStartIndex - iFirstIndex, 0, size);
  long long const end = std::clamp<long long>(iEndIndex - iFirstIndex, 0, size);
  if (first >= end) return;
  std::copy(iBytes.begin() + first, iBytes.begin() + end,
            oData + (first + iFirstIndex - iStartIndex));
}

}  // namespace

Vrae_SysexEvent::Vrae_SysexEvent(int iLength, unsigned char const * iData) {
  this->SetData(iLength, iData);
  CMN_CHECK(mU.mBase.mType == kShortSysex || mU.mBase.mType == kLongSysex,
            "mU.mBase.mType == kShortSysex || mU.mBase.mType == kLongSysex");
}

Vrae_SysexEvent::Vrae_SysexEvent(Cmn_PolyVector<unsigned char, 0> * iVector)
    : Vrae_SysexEvent(static_cast<int>(iVector->size()), iVector->begin()) {}

void Vrae_SysexEvent::SetData(int iLength, unsigned char const * iData) {
  CMN_CHECK(iLength >= 0, "iLength >= 0");
  // Takes the reference over and drops it at the end: the new contents may be part of the old.
  Vrae_Event former;
  if (mU.mBase.mType == kLongSysex) {
    former.mU = mU;
    mU.mBase.mType = kNoEvent;
  }
  if (iLength > kMaxShortSysexLength) {
    this->SetLongData(iLength, iData);
    return;
  }
  mU.mBase.mType = kShortSysex;
  mU.mShortSysex.mLength = static_cast<signed char>(std::max(iLength, SCHAR_MIN));
  if (iLength > 0) std::memmove(mU.mShortSysex.mData, iData, static_cast<size_t>(iLength));
}

void Vrae_SysexEvent::SetLongData(int iLength, unsigned char const * iData) {
  if (iLength > INT_MAX - 2) throw std::bad_alloc();
  int const storedLength = iLength + 2;
  std::unique_ptr<unsigned char[]> block(new unsigned char[static_cast<size_t>(storedLength)]);
  block[0] = 0xF0;
  std::copy_n(iData, iLength, block.get() + 1);
  block[static_cast<size_t>(storedLength - 1)] = 0xF7;
  Vrae_SysexDataBase * const sysexP = Vrae_SysexData::New(storedLength, block.get());
  if (sysexP != nullptr) block.release();
  mU.mBase.mType = kLongSysex;
  mU.mLongSysex.mSysexP = sysexP;
}

int Vrae_SysexEvent::GetLength() const {
  if (mU.mBase.mType != kLongSysex) return mU.mShortSysex.mLength;
  return mU.mLongSysex.mSysexP == nullptr ? 0 : GetStoredLength(*this) - 2;
}

void Vrae_SysexEvent::GetData(unsigned char * oData, int iStartIndex, int iEndIndex) const {
  CMN_CHECK(iStartIndex <= iEndIndex, "iStartIndex <= iEndIndex");
  CMN_CHECK(iStartIndex >= 0, "iStartIndex >= 0");
  CMN_CHECK(iEndIndex <= this->GetLength(), "iEndIndex <= this->GetLength()");
  CopyRange(GetContents(*this), 0, iStartIndex, iEndIndex, oData);
}

unsigned char const * Vrae_SysexEvent::GetDirectDataPtr() const {
  if (!CMN_REQUIRE(mU.mBase.mType == kLongSysex, "mU.mBase.mType == kLongSysex")) return nullptr;
  return GetLongBytes(*this).data();
}

unsigned char const * Vrae_SysexEvent::GetInternalDataPtr() const {
  if (mU.mBase.mType != kLongSysex) return mU.mShortSysex.mData;
  Bytes const bytes = GetLongBytes(*this);
  return BeginsMessage(bytes) ? bytes.data() + 1 : bytes.data();
}

Vrae_SysexPacketEvent::Vrae_SysexPacketEvent(int iLength, unsigned char const * iData,
                                             Mem2_MasterAllocator * iAllocator) {
  Bytes const bytes(iData, static_cast<size_t>(std::max(iLength, 0)));
  if (IsWholeMessage(bytes) && iLength - 2 <= kMaxShortSysexLength) {
    this->SetShortData(kShortSysex, iLength - 2, iData + 1);
  } else if (iLength > kMaxShortSysexLength) {
    this->SetPoolData(iLength, iData, iAllocator);
  } else {
    this->SetShortData(kSysexPacket, iLength, iData);
  }
}

Vrae_SysexPacketEvent::Vrae_SysexPacketEvent(InitWithBlock, unsigned char * iBlock, int iLength,
                                             Mem2_MasterAllocator * iAllocator) {
  this->TakeBlock(iLength, iBlock, iAllocator);
}

void Vrae_SysexPacketEvent::SetShortData(EType iType, int iLength, unsigned char const * iData) {
  mU.mBase.mType = static_cast<signed char>(iType);
  mU.mShortSysex.mLength = static_cast<signed char>(std::max(iLength, SCHAR_MIN));
  std::copy_n(iData, iLength, mU.mShortSysex.mData);
}

void Vrae_SysexPacketEvent::SetPoolData(int iLength, unsigned char const * iData,
                                        Mem2_MasterAllocator * iAllocator) {
  void * const blockP = iAllocator != nullptr ? iAllocator->Alloc(iLength, nullptr) : nullptr;
  LumTraceWrite(kTraceFacility, "Vrae_SysexPacketEvent alloc %p %d", blockP, iLength);
  if (blockP == nullptr) return;
  unsigned char * const bytesP = static_cast<unsigned char *>(blockP);
  if (this->TakeBlock(iLength, bytesP, iAllocator)) {
    std::copy_n(iData, iLength, bytesP);
    return;
  }
  LumTraceWrite(kTraceFacility, "Vrae_SysexPacketEvent free %p", blockP);
  iAllocator->Free(blockP, nullptr);
}

// True if the record has become kind 15; otherwise it is still kind 0.
bool Vrae_SysexPacketEvent::TakeBlock(int iLength, unsigned char * iBlock,
                                      Mem2_MasterAllocator * iAllocator) {
  Vrae_SysexDataBase * const sysexP = Vrae_SysexDataRT::New(iLength, iBlock, iAllocator);
  if (sysexP == nullptr) return false;
  mU.mBase.mType = kLongSysex;
  mU.mLongSysex.mSysexP = sysexP;
  return true;
}

int Vrae_SysexPacketEvent::GetLength() const {
  switch (mU.mBase.mType) {
  case kShortSysex:
    return std::max<int>(mU.mShortSysex.mLength, 0) + 2;
  case kLongSysex:
    return GetStoredLength(*this);
  case kSysexPacket:
    return mU.mShortSysex.mLength;
  default:
    CMN_CHECK(false, "0");
    return 0;
  }
}

bool Vrae_SysexPacketEvent::IsComplete() const {
  switch (mU.mBase.mType) {
  case kShortSysex:
    return true;
  case kLongSysex:
    return this->IsCompleteLongSysex();
  case kSysexPacket:
    return false;
  default:
    CMN_CHECK(false, "0");
    return false;
  }
}

// The payload's tests look at both ends and exclude each other; a packet's look at one end alone.
bool Vrae_SysexPacketEvent::IsBeginningPacket() const {
  switch (mU.mBase.mType) {
  case kShortSysex:
    return true;
  case kLongSysex:
    return BeginsMessage(GetLongBytes(*this)) && !EndsMessage(GetLongBytes(*this));
  case kSysexPacket:
    return BeginsMessage(GetShortBytes(*this));
  default:
    CMN_CHECK(false, "0");
    return false;
  }
}

bool Vrae_SysexPacketEvent::IsEndingPacket() const {
  switch (mU.mBase.mType) {
  case kShortSysex:
    return true;
  case kLongSysex:
    return !BeginsMessage(GetLongBytes(*this)) && EndsMessage(GetLongBytes(*this));
  case kSysexPacket:
    return EndsMessage(GetShortBytes(*this));
  default:
    CMN_CHECK(false, "0");
    return false;
  }
}

void Vrae_SysexPacketEvent::GetData(unsigned char * oData, int iStartIndex, int iEndIndex) const {
  static constexpr unsigned char kBegin[] = {0xF0}, kEnd[] = {0xF7};
  CMN_CHECK(iStartIndex <= iEndIndex, "iStartIndex <= iEndIndex");
  CMN_CHECK(iStartIndex >= 0, "iStartIndex >= 0");
  switch (mU.mBase.mType) {
  case kShortSysex: {
    Bytes const contents = GetShortBytes(*this);
    CMN_CHECK(iEndIndex <= this->GetLength(), "iEndIndex <= mU.mShortSysex.mLength + 2");
    CopyRange(kBegin, 0, iStartIndex, iEndIndex, oData);
    CopyRange(contents, 1, iStartIndex, iEndIndex, oData);
    CopyRange(kEnd, static_cast<long long>(contents.size()) + 1, iStartIndex, iEndIndex, oData);
    break;
  }
  case kLongSysex:
    CMN_CHECK(iEndIndex <= this->GetLength(), "iEndIndex <= mU.mLongSysex.mSysexP->GetLength()");
    CopyRange(GetLongBytes(*this), 0, iStartIndex, iEndIndex, oData);
    break;
  case kSysexPacket:
    CMN_CHECK(iEndIndex <= mU.mShortSysex.mLength, "iEndIndex <= mU.mShortSysex.mLength");
    CopyRange(GetShortBytes(*this), 0, iStartIndex, iEndIndex, oData);
    break;
  default:
    CMN_CHECK(false, "0");
    break;
  }
}

unsigned char const * Vrae_SysexPacketEvent::GetDirectDataPtr() const {
  return mU.mBase.mType == kLongSysex ? GetLongBytes(*this).data() : nullptr;
}
