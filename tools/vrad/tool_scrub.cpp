#include "tools/vrad/tool_scrub.h"

#include <algorithm>

#include "vrad/vrad_extendedeventlist.h"
#include "vrad/vrae_filter.h"

namespace {

Vrae_TimedEventList GetNotesAndBends(Vrad_Chunk const & iChunk) {
  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  Time_Typed const first = Time_Typed::MinTime(Time_eType_Ticks);
  Time_Typed const end = Time_Typed::MaxTime(Time_eType_Ticks);
  Vrae_Filter filter;
  filter.ClearAll();
  filter.Set(Vrae_Filter::eDataType_Notes, true);
  filter.Set(Vrae_Filter::eDataType_PitchBend, true);
  iChunk.GetMidiEventsInRange(&wrapper, Time_TypedLength(), first, end, first, end, false, nullptr,
                              nullptr, filter, nullptr, false, 0, kNoteOffInclusion_None);
  return list;
}

// The same note in ticks: a scrub list takes one unit alone.
Vrae_TimedEvent InTicks(Vrae_TimedEvent const & iEvent) {
  Vrae_TimedEvent event(Time_Tick(iEvent.mTime.AsTick()), iEvent.mEvent);
  if (!iEvent.IsNoteWithDurationEvent()) return event;
  Time_Tick const end = (iEvent.mTime + iEvent.GetDuration()).AsTick();
  long long const ticks = end.AsInt64() - event.mTime.AsInt64();
  event.mEvent.AsNoteWithDuration().SetDuration(Time_TickLength(std::max(ticks, 1LL)));
  return event;
}

bool IsBend(Vrad_ScrubEvent const & iEvent) {
  return iEvent.mType == Vrad_ScrubEvent::kBendBefore ||
         iEvent.mType == Vrad_ScrubEvent::kBendAfter;
}

char const * GetTypeName(Vrad_ScrubEvent const & iEvent) {
  static char const * const kNames[] = {"NoteEnd", "BendBefore", "BendAfter", "NoteStart"};
  return kNames[iEvent.mType];
}

void Describe(Tool_Output & ioOut, Vrad_ScrubEvent const & iEvent) {
  switch (iEvent.mType) {
  case Vrad_ScrubEvent::kNoteStart:
    ioOut.Print("note start  {:<7}  velocity {}", Tool_FormatPitch(iEvent.mValue),
                iEvent.mOnVelocity);
    break;
  case Vrad_ScrubEvent::kNoteEnd:
    ioOut.Print("note end    {:<7}  release {}", Tool_FormatPitch(iEvent.mValue),
                iEvent.mOffVelocity);
    break;
  case Vrad_ScrubEvent::kBendBefore:
    ioOut.Print("bend from   {:+}", iEvent.mValue);
    break;
  default:
    ioOut.Print("bend to     {:+}", iEvent.mValue);
    break;
  }
}

}  // namespace

// A bend that comes first into a list counts as passed wherever the position is, so the position
// goes once to the beginning and from there to its place.
Tool_Scrubber::Tool_Scrubber(Vrad_Chunk const & iChunk, Time_Tick iFrom, Time_Tick iTo)
    : mPosition(Time_Saturating::kMin) {
  Fill(iChunk, std::min(iFrom.AsInt64(), iTo.AsInt64()), std::max(iFrom.AsInt64(), iTo.AsInt64()));
  Receiver const ignore = [](Tool_PassedTransition const &) {};
  MoveTo(Time_Tick(Time_Saturating::kMin), ignore);
  MoveTo(iFrom, ignore);
}

// In order of time, each looked for from the end: the place is never far.
void Tool_Scrubber::Fill(Vrad_Chunk const & iChunk, long long iFirst, long long iLast) {
  auto const isOnTheWay = [=](long long tick) { return iFirst <= tick && tick <= iLast; };
  short bend = 0;
  for (Vrae_TimedEvent const & stored : GetNotesAndBends(iChunk)) {
    Vrae_TimedEvent const event = InTicks(stored);
    long long const start = event.mTime.AsInt64();
    bool const isNote = event.IsNoteWithDurationEvent();
    long long const end = Time_Saturating::Add(start, event.GetDuration().AsInt64());
    short const former = bend;
    if (!isNote) bend = event.mEvent.AsPitchBend().GetBendValue();
    if (!isOnTheWay(start) && !isOnTheWay(end)) continue;
    if (isNote)
      mList.AddNote(event, true);
    else
      mList.AddPitchBend(event, former, true);
    mNumTransitions += 2;
  }
}

void Tool_Scrubber::MoveTo(Time_Tick iTick, Receiver const & iReceiver) {
  bool const isForward = iTick.AsInt64() >= mPosition;
  while (Vrad_ScrubEvent const * const eventP = mList.MoveTowards(iTick))
    iReceiver({*eventP, isForward});
  mPosition = iTick.AsInt64();
}

void Tool_PrintScrubAsJSON(Tool_Output & ioOut, Tool_EventSource const & iSource,
                           Tool_PassedTransition const & iTransition) {
  Vrad_ScrubEvent const & event = iTransition.mEvent;
  Tool_PrintSourceAsJSON(ioOut, iSource, Time_Tick(event.mTime));
  ioOut.Print(",\"direction\":\"{}\",\"type\":{},\"name\":\"{}\"",
              iTransition.mIsForward ? "forward" : "backward", event.mType, GetTypeName(event));
  if (IsBend(event))
    ioOut.Print(",\"bend\":{}}}\n", event.mValue);
  else
    ioOut.Print(",\"pitch\":{},\"on\":{},\"off\":{}}}\n", event.mValue, event.mOnVelocity,
                event.mOffVelocity);
}

void Tool_PrintScrubAsText(Tool_Output & ioOut, Host_BarMap const & iBars,
                           Tool_PassedTransition const & iTransition) {
  Tool_PrintPlace(ioOut, iBars, Time_Tick(iTransition.mEvent.mTime));
  ioOut.Print("{} ", iTransition.mIsForward ? ">" : "<");
  Describe(ioOut, iTransition.mEvent);
  ioOut.Print("\n");
}
