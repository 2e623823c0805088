// chunk := header("VrChun", 1)  noteList  count:int32  continuousDataStream[count]
//          [eventStream]  [uid:byte[16]  isLocal:bool]
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <utility>

#include "cmn/cmn_assert.h"
#include "foundation/sys_stream.h"
#include "vrad/vrad_chunk.h"
#include "vrad/vrad_init.h"

namespace {

constexpr char const * kTag = "VrChun";
constexpr int kBadDataString = 100, kStreamNotUniqueString = 101;
constexpr int kUidBytes = 16;
constexpr long long kLeastStreamBytes = 55;  // three headers, the sub-stream and a count of 0
constexpr long long kSegmentBytes = 12;

// Throws, unless throwing is switched off.
void ReportDamage(char const * iText, int iLine) {
  Cmn_Assert::HandleMagicAssert(true, (std::string(iText) + CMN_ASSERT_TEXT("")).c_str(), iLine);
}

void ReportDamage(std::exception const & iException, int iLine) {
  char text[512];
  std::snprintf(text, sizeof(text), "Vrad_Chunk::StreamIn exception: %s", iException.what());
  ReportDamage(text, iLine);
}

// Calls the body; what it throws is reported and goes no further.
template <class TBody>
void Guard(TBody iBody) {
  try {
    try {
      iBody();
    } catch (std::exception const & exception) {
      ReportDamage(exception, __LINE__);
    } catch (...) {
      ReportDamage("Unexpected exception", __LINE__);
    }
  } catch (Cmn_AssertException const &) {
  }
}

}  // namespace

void Vrad_Chunk::StreamOut(Sys_TypedOutStream & ioStream) const {
  if (!CMN_REQUIRE(mNoteListP.Get(), "mNoteListP.Get()")) return;
  Sys_StdStreamHeaderWriter header(ioStream, kTag, 1);
  mNoteListP->StreamOut(ioStream);
  ioStream.Write(static_cast<int>(mContinuousList.size()));
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : mContinuousList)
    streamP->StreamOut(ioStream);
  mMiscEventsP->StreamOut(ioStream);
  ioStream.WriteBlock(mUID.GetBytes(), kUidBytes);
  ioStream.Write(mIsLocal);
  header.PatchSize();
}

Vrad_Chunk * Vrad_Chunk::StreamIn(Sys_TypedInStream & ioStream, Ndo_Object::EUndoFlag iUndoFlag,
                                  bool iQuantizeContents) {
  Sys_StdStreamHeaderReader header(ioStream, kTag);
  header.CheckVersion(1, 1);
  Ndo_AutoPtr<Vrad_Chunk> chunkP(New(iUndoFlag, iQuantizeContents));
  Guard([&] { chunkP->ReadContents(ioStream, header); });
  header.SkipTheRest();
  return chunkP.Release();
}

// A chunk of a file from before there were identities has none, rather than a new one.
void Vrad_Chunk::ReadContents(Sys_TypedInStream & ioStream, Sys_StdStreamHeaderReader & ioHeader) {
  mNoteListP->StreamIn(ioStream);
  ReadStreams(ioStream);
  if (ioHeader.IsMoreLeft()) mMiscEventsP->StreamIn(ioStream);
  if (ioHeader.IsMoreLeft()) {
    unsigned char bytes[kUidBytes];
    ioStream.ReadBlock(bytes, kUidBytes);
    mUID.SetBytes(bytes);
    ioStream.Read(&mIsLocal);
  } else {
    mUID = Sys_Umid::NoID();
    mIsLocal = true;
  }
}

// Sorted by index, whatever the order in the stream. Sizes may lead many streams to the same bytes:
// together they have no more segments than the input has bytes for.
void Vrad_Chunk::ReadStreams(Sys_TypedInStream & ioStream) {
  int count;
  ioStream.Read(&count);
  if (count < 0) Vrad_ThrowBadData(kBadDataString);
  long long const most = std::min<long long>(ioStream.BytesLeft() / kLeastStreamBytes,
                                             Vrae_SubStream::GetNumIndices());
  mContinuousList.reserve(static_cast<size_t>(std::min<long long>(count, most)));
  long long segmentsLeft = ioStream.BytesLeft() / kSegmentBytes;
  for (int i = 0; i < count; ++i) {
    Ndo_AutoPtr<Vrad_ContinuousDataStream> streamP(
        new Vrad_ContinuousDataStream(ioStream, UndoFlag(), mQuantizeContents));
    segmentsLeft -= streamP->GetData().Size();
    if (segmentsLeft < 0) Vrad_ThrowBadData(kBadDataString);
    int const index = streamP->GetSubStream().GetIndex();
    size_t const place = FindPlace(index);
    if (IsStreamAt(place, index)) Vrad_ThrowBadData(kStreamNotUniqueString);
    InsertStream(place, std::move(streamP));
  }
}
