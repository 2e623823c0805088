// eventStream := header("VrES", 1)  timedEventList
#include "foundation/sys_stream.h"
#include "vrad/vrad_eventstream.h"

namespace {

constexpr char const * kTag = "VrES";

}  // namespace

void Vrad_EventStream::StreamOut(Sys_TypedOutStream & ioStream) const {
  Sys_StdStreamHeaderWriter header(ioStream, kTag, 1);
  mEventsP->StreamOut(ioStream);
  header.PatchSize();
}

// Into events of its own: the present ones may be shared.
void Vrad_EventStream::StreamIn(Sys_TypedInStream & ioStream) {
  NdoAboutToModify();
  Sys_StdStreamHeaderReader header(ioStream, kTag);
  header.CheckVersion(1, 1);
  mEventsP = std::make_shared<Events>();
  mEventsP->StreamIn(ioStream);
  header.SkipTheRest();
}
