// event   := header("", 1)  [contents]
// contents := isEmpty:int8  [length:int32  byte[length]]
//
// The length is there if the flag is 0. Contents are those of a sysex, without 0xF0 and 0xF7.
#include <algorithm>
#include <memory>
#include <new>

#include "cmn/cmn_assert.h"
#include "foundation/sys_stream.h"
#include "vrad/vrae_event.h"
#include "vrad/vrae_sysexdatabase.h"

namespace {

constexpr char const * kTag = "";
constexpr int kLargestPiece = 1024;
constexpr signed char kHasContents = 0;

void WriteContents(Sys_TypedOutStream & ioStream, int iLength, unsigned char const * iData) {
  ioStream.Write(kHasContents);
  ioStream.Write(iLength);
  for (int done = 0; done < iLength; done += kLargestPiece)
    ioStream.WriteBlock(iData + done, std::min(iLength - done, kLargestPiece));
}

void WriteShortSysex(Sys_TypedOutStream & ioStream, Vrae_Event::ShortSysexData const & iData) {
  int const length = std::clamp<int>(iData.mLength, 0, Vrae_Event::kMaxShortSysexLength);
  WriteContents(ioStream, length, iData.mData);
}

// The first stored byte and the last are taken for the frame, whatever they are.
void WriteLongSysex(Sys_TypedOutStream & ioStream, Vrae_SysexDataBase const * iDataP) {
  bool const hasData = iDataP != nullptr && iDataP->GetDataPtr() != nullptr;
  int const length = hasData ? std::max(iDataP->GetLength() - 2, 0) : 0;
  WriteContents(ioStream, length, hasData ? iDataP->GetDataPtr() + 1 : nullptr);
}

// Nothing is taken for a length that the record cannot hold.
Vrae_SysexEvent ReadSysex(Sys_TypedInStream & ioStream, Sys_StdStreamHeaderReader const & iHeader) {
  int length;
  ioStream.Read(&length);
  if (length < 0) throw std::bad_alloc();
  if (length > std::min(iHeader.GetEndPos() - ioStream.GetPos(), ioStream.BytesLeft()))
    throw Sys_StreamException(Sys_StreamException::kEndOfStream, "end of stream");
  std::unique_ptr<unsigned char[]> const data(new unsigned char[static_cast<size_t>(length)]);
  ioStream.ReadBlock(data.get(), length);
  return Vrae_SysexEvent(length, data.get());
}

}  // namespace

void Vrae_Event::StreamOut(Sys_TypedOutStream & ioStream) const {
  Sys_StdStreamHeaderWriter header(ioStream, kTag, 1);
  switch (mU.mBase.mType) {
  case kShortSysex:
    WriteShortSysex(ioStream, mU.mShortSysex);
    break;
  case kLongSysex:
    WriteLongSysex(ioStream, mU.mLongSysex.mSysexP);
    break;
  default:
    CMN_CHECK(false, "0");
    break;
  }
  header.PatchSize();
}

void Vrae_Event::StreamIn(Sys_TypedInStream & ioStream) {
  Sys_StdStreamHeaderReader header(ioStream, kTag);
  header.CheckVersion(1, 1);
  signed char flag = 1;
  if (header.IsMoreLeft()) ioStream.Read(&flag);
  if (flag == kHasContents) {
    *this = ReadSysex(ioStream, header);
  } else {
    *this = Vrae_Event();
  }
  header.SkipTheRest();
}
