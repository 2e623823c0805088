// continuousDataStream := header("VrCDS", 2)  subStream  continuousData
#include "foundation/sys_stream.h"
#include "vrad/vrad_continuousdatastream.h"

namespace {

constexpr char const * kTag = "VrCDS";
constexpr short kVersion = 2;

}  // namespace

Vrad_ContinuousDataStream::Vrad_ContinuousDataStream(Sys_TypedInStream & ioStream,
                                                     Ndo_Object::EUndoFlag iUndoFlag,
                                                     bool iSnapToCoarseTicks)
    : Ndo_Object(iUndoFlag) {
  Sys_StdStreamHeaderReader header(ioStream, kTag);
  header.CheckVersion(kVersion, kVersion);
  mSubStream.StreamIn(ioStream);
  Ndo_AutoPtr<Vrad_ContinuousData> data(new Vrad_ContinuousData(iUndoFlag, iSnapToCoarseTicks));
  data->StreamIn(ioStream);
  header.SkipTheRest();
  mDataP = Ndo_Ptr<Vrad_ContinuousData>(data.Release());
}

void Vrad_ContinuousDataStream::StreamOut(Sys_TypedOutStream & ioStream) const {
  Sys_StdStreamHeaderWriter header(ioStream, kTag, kVersion);
  mSubStream.StreamOut(ioStream);
  GetData().StreamOut(ioStream);
  header.PatchSize();
}
