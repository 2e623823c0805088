// timedEventList := header("VrTEL", 1)  count:int32  timedEvent[count]
// timedEvent     := time:int64  event
#include <algorithm>

#include "foundation/sys_stream.h"
#include "vrad/vrae_savedtime.h"
#include "vrad/vrae_timedevent.h"

namespace {

constexpr char const * kTag = "VrTEL";
constexpr long long kLeastEventBytes = 19;  // a time and the header of an event

}  // namespace

void Vrae_TimedEventList::StreamOut(Sys_TypedOutStream & ioStream) const {
  Sys_StdStreamHeaderWriter header(ioStream, kTag, 1);
  ioStream.Write(static_cast<int>(size()));
  for (Vrae_TimedEvent const & event : *this) {
    ioStream.Write(Vrae_SavedTime(event.mTime));
    event.mEvent.StreamOut(ioStream);
  }
  header.PatchSize();
}

void Vrae_TimedEventList::StreamIn(Sys_TypedInStream & ioStream) {
  clear();
  Sys_StdStreamHeaderReader header(ioStream, kTag);
  header.CheckVersion(1, 1);
  int count;
  ioStream.Read(&count);
  long long const left =
      std::min(header.GetEndPos() - ioStream.GetPos(), ioStream.BytesLeft()) / kLeastEventBytes;
  reserve(static_cast<size_t>(std::clamp<long long>(count, 0, std::max(left, 0LL))));
  for (int i = 0; i < count; ++i) {
    long long word;
    ioStream.Read(&word);
    Vrae_TimedEvent event(Vrae_TimeFromSaved(word), Vrae_Event());
    event.mEvent.StreamIn(ioStream);
    push_back(event);
  }
  header.SkipTheRest();
}
