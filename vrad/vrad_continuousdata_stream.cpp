// continuousDataStream := header("VrCDS", 2)  subStream  continuousData
// continuousData       := header("VrCD", 1)  count:int32  segment[count]
// segment              := time:int64  value:int32
#include <algorithm>
#include <vector>

#include "cmn/cmn_assert.h"
#include "foundation/sys_stream.h"
#include "ndo/ndo_ptr.h"
#include "vrad/vrad_continuousdata.h"
#include "vrad/vrad_continuousdatastream.h"
#include "vrad/vrad_init.h"
#include "vrad/vrad_streamblock.h"

namespace {

typedef Vrad_ContinuousData_Segment Segment;

constexpr char const * kStreamTag = "VrCDS";
constexpr char const * kDataTag = "VrCD";
constexpr short kStreamVersion = 2;
constexpr int kBadDataString = 100;
constexpr int kSegmentBytes = 12;
constexpr int kSegmentsInRun = 1024;

// Order is asked of the counts alone, not of the instants.
Segment ReadSegment(Vrad_BlockIn & ioBlock, long long * ioPreviousTime) {
  long long word;
  Segment segment;
  ioBlock.Read(&word);
  ioBlock.Read(&segment.mValue);
  segment.mTime = Vrad_TimeFromSaved(word);
  if (segment.mTime.AsInt64() < *ioPreviousTime) Vrad_ThrowBadData(kBadDataString);
  *ioPreviousTime = segment.mTime.AsInt64();
  return segment;
}

}  // namespace

void Vrad_ContinuousData::StreamOut(Sys_TypedOutStream & ioStream) const {
  Sys_StdStreamHeaderWriter header(ioStream, kDataTag, 1);
  Vrad_BlockOut out(ioStream);
  out.Write(mSegments.Size());
  Time_Typed previousTime(0, Time_eType_Ticks);
  for (auto iter = mSegments.Begin(); iter != mSegments.End(); ++iter) {
    CMN_REQUIRE(iter->mTime.AsInt64() >= previousTime.AsInt64(),
                "iter->mTime.AsInt64() >= previousTime.AsInt64()");
    previousTime = iter->mTime;
    out.Write(Vrad_SavedTime(iter->mTime));
    out.Write(iter->mValue);
  }
  out.Flush();
  header.PatchSize();
}

void Vrad_ContinuousData::StreamIn(Sys_TypedInStream & ioStream) {
  Sys_StdStreamHeaderReader header(ioStream, kDataTag);
  try {
    header.CheckVersion(1, 1);
    ReadSegments(ioStream);
  } catch (...) {
    header.SkipTheRest();
    throw;
  }
  header.SkipTheRest();
}

void Vrad_ContinuousData::ReadSegments(Sys_TypedInStream & ioStream) {
  int count;
  ioStream.Read(&count);
  if (count < 0) Vrad_ThrowBadData(kBadDataString);
  BeginEdit();
  mSegments.Clear();
  Vrad_BlockIn in(ioStream, static_cast<long long>(count) * kSegmentBytes);
  std::vector<Segment> run;
  long long previousTime = 0;
  while (count > 0) {
    int const num = std::min(count, kSegmentsInRun);
    run.clear();
    for (int i = 0; i < num; ++i)
      run.push_back(ReadSegment(in, &previousTime));
    mSegments.Insert(mSegments.End(), num, run.data());
    count -= num;
  }
  EndEdit();
}

Vrad_ContinuousDataStream::Vrad_ContinuousDataStream(Sys_TypedInStream & ioStream,
                                                     Ndo_Object::EUndoFlag iUndoFlag,
                                                     bool iSnapToCoarseTicks)
    : Ndo_Object(iUndoFlag) {
  Sys_StdStreamHeaderReader header(ioStream, kStreamTag);
  header.CheckVersion(kStreamVersion, kStreamVersion);
  mSubStream.StreamIn(ioStream);
  Ndo_AutoPtr<Vrad_ContinuousData> data(new Vrad_ContinuousData(iUndoFlag, iSnapToCoarseTicks));
  data->StreamIn(ioStream);
  header.SkipTheRest();
  mDataP = Ndo_Ptr<Vrad_ContinuousData>(data.Release());
}

void Vrad_ContinuousDataStream::StreamOut(Sys_TypedOutStream & ioStream) const {
  Sys_StdStreamHeaderWriter header(ioStream, kStreamTag, kStreamVersion);
  mSubStream.StreamOut(ioStream);
  GetData().StreamOut(ioStream);
  header.PatchSize();
}
