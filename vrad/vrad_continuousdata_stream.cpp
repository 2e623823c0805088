// continuousData := header("VrCD", 1)  count:int32  segment[count]
// segment        := time:int64  value:int32
#include <algorithm>
#include <vector>

#include "cmn/cmn_assert.h"
#include "foundation/sys_stream.h"
#include "foundation/sys_streamblock.h"
#include "vrad/vrad_continuousdata.h"
#include "vrad/vrad_init.h"
#include "vrad/vrae_savedtime.h"

namespace {

typedef Vrad_ContinuousData_Segment Segment;

constexpr char const * kTag = "VrCD";
constexpr int kBadDataString = 100;
constexpr int kSegmentBytes = 12;
constexpr int kSegmentsInRun = 1024;

// Order is asked of the counts alone, not of the instants.
Segment ReadSegment(Sys_BlockIn & ioBlock, long long * ioPreviousTime) {
  long long word;
  Segment segment;
  ioBlock.Read(&word);
  ioBlock.Read(&segment.mValue);
  segment.mTime = Vrae_TimeFromSaved(word);
  if (segment.mTime.AsInt64() < *ioPreviousTime) Vrad_ThrowBadData(kBadDataString);
  *ioPreviousTime = segment.mTime.AsInt64();
  return segment;
}

}  // namespace

void Vrad_ContinuousData::StreamOut(Sys_TypedOutStream & ioStream) const {
  Sys_StdStreamHeaderWriter header(ioStream, kTag, 1);
  Sys_BlockOut out(ioStream);
  out.Write(mSegments.Size());
  Time_Typed previousTime(0, Time_eType_Ticks);
  for (auto iter = mSegments.Begin(); iter != mSegments.End(); ++iter) {
    CMN_REQUIRE(iter->mTime.AsInt64() >= previousTime.AsInt64(),
                "iter->mTime.AsInt64() >= previousTime.AsInt64()");
    previousTime = iter->mTime;
    out.Write(Vrae_SavedTime(iter->mTime));
    out.Write(iter->mValue);
  }
  out.Flush();
  header.PatchSize();
}

void Vrad_ContinuousData::StreamIn(Sys_TypedInStream & ioStream) {
  Sys_StdStreamHeaderReader header(ioStream, kTag);
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
  Sys_BlockIn in(ioStream, static_cast<long long>(count) * kSegmentBytes);
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
