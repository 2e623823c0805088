#include "host/host_picturecontents.h"

#include <algorithm>
#include <cstdlib>

#include "vrad/vrad_chunk.h"

namespace {

constexpr char kKeyPressure[] = "key pressure";

struct ControllerName {
  int mNumber;
  char const * mName;
};

constexpr ControllerName kControllerNames[] = {
    {1, "modulation"}, {2, "breath"},      {4, "foot"},       {5, "portamento"},  {6, "data"},
    {7, "volume"},     {8, "balance"},     {10, "pan"},       {11, "expression"}, {38, "data LSB"},
    {64, "pedal"},     {65, "portamento"}, {66, "sostenuto"}, {67, "soft pedal"}, {68, "legato"},
    {71, "resonance"}, {72, "release"},    {73, "attack"},    {74, "brightness"}, {84, "glide"},
    {91, "reverb"},    {92, "tremolo"},    {93, "chorus"},    {94, "detune"},     {95, "phaser"},
    {98, "NRPN LSB"},  {99, "NRPN MSB"},   {100, "RPN LSB"},  {101, "RPN MSB"}};

std::string NameOf(int iController) {
  for (ControllerName const & entry : kControllerNames) {
    if (entry.mNumber == iController) return entry.mName;
  }
  return "cc " + std::to_string(iController);
}

Host_PictureLane LaneOf(Vrae_SubStream const & iSubStream) {
  signed char kind = 0, number = 0;
  iSubStream.GetInfo(kind, number);
  switch (kind) {
  case Vrae_Event::kPitchBend:
    return {"bend", -8192, 8191, 0, false, {}};
  case Vrae_Event::kProgram:
    return {"program", 0, 127, 0, true, {}};
  case Vrae_Event::kMonoPressure:
    return {"pressure", 0, 127, 0, false, {}};
  case Vrae_Event::kPolyPressure:
    return {kKeyPressure, 0, 127, 0, false, {}};
  default:
    return {NameOf(number), 0, 127, 0, false, {}};
  }
}

int ValueOf(Vrae_SubStream const & iSubStream, Vrae_Event const & iEvent) {
  if (iEvent.GetType() != Vrae_Event::kProgram) return iSubStream.GetValueFromEvent(iEvent);
  Vrae_ProgramEvent const & program = iEvent.AsProgram();
  return program.IsProgramEnabled() ? program.GetProgram() : kHost_BankAlone;
}

// Before the range only the last point counts.
void AddPoint(std::vector<Host_PicturePoint> & ioPoints, Host_PicturePoint const & iPoint,
              long long iFrom) {
  if (iPoint.mTick <= iFrom) ioPoints.clear();
  ioPoints.push_back(iPoint);
}

// Bends are mostly small: what is drawn reaches as far as the largest one.
void FitToValues(Host_PictureLane & ioLane) {
  int largest = 1;
  for (Host_PicturePoint const & point : ioLane.mCurves.front())
    largest = std::max(largest, std::abs(point.mValue));
  ioLane.mMin = -largest;
  ioLane.mMax = largest;
  ioLane.mName += " ±" + std::to_string(largest);
}

}  // namespace

Host_PictureContents::Host_PictureContents(Vrad_Chunk & iChunk, Time_Tick iFrom, Time_Tick iTo) {
  long long const from = iFrom.AsInt64();
  CollectNotes(iChunk, from, iTo);
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : iChunk.GetContinuousList())
    CollectStream(*streamP.Get(), from, iTo);
  CollectSysex(iChunk, from, iTo);
}

void Host_PictureContents::CollectNotes(Vrad_Chunk & iChunk, long long iFrom, Time_Typed iTo) {
  if (!iChunk.GetNoteList()) return;
  Vrad_NoteListBase::FullNotesInRangeIter iter(iChunk.GetNoteList(),
                                               Time_Typed::MinTime(Time_eType_Ticks), iTo);
  for (; iter.IsMore(); ++iter) {
    Vrad_NoteListBase_Note const & note = *iter;
    long long const start = note.mTime.AsTick().AsInt64();
    long long const end = (note.mTime + note.mEvent.GetDuration()).AsTick().AsInt64();
    if (start < iFrom && end <= iFrom) continue;
    int const pitch = std::clamp<int>(note.mEvent.GetPitch(), 0, 127);
    int const velocity = std::clamp<int>(note.mEvent.GetOnVelocity(), 0, 127);
    mNotes.push_back({start, end, pitch, velocity, note.mMuted});
    mLowest = std::min(mLowest, pitch);
    mHighest = std::max(mHighest, pitch);
  }
}

void Host_PictureContents::CollectStream(Vrad_ContinuousDataStream & iStream, long long iFrom,
                                         Time_Typed iTo) {
  Vrae_SubStream const subStream = iStream.GetSubStream();
  if (subStream.IsNull()) return;
  std::vector<Host_PicturePoint> points;
  Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(&iStream,
                                                       Time_Typed::MinTime(Time_eType_Ticks), iTo);
  for (; iter.IsMore(); ++iter) {
    Vrae_TimedEvent const event = *iter;
    AddPoint(points, {event.mTime.AsTick().AsInt64(), ValueOf(subStream, event.mEvent)}, iFrom);
  }
  if (!points.empty()) AddCurve(LaneOf(subStream), std::move(points));
}

void Host_PictureContents::CollectSysex(Vrad_Chunk & iChunk, long long iFrom, Time_Typed iTo) {
  if (!iChunk.GetEventStream()) return;
  std::vector<Host_PicturePoint> points;
  Vrad_EventStreamTimedEventsInRangeIter iter(iChunk.GetEventStream(),
                                              Time_Typed::MinTime(Time_eType_Ticks), iTo);
  for (; iter.IsMore(); ++iter) {
    long long const tick = (*iter).mTime.AsTick().AsInt64();
    if (tick >= iFrom) points.push_back({tick, 0});
  }
  if (!points.empty()) mLanes.push_back({"sysex", 0, 0, 0, true, {std::move(points)}});
}

void Host_PictureContents::AddCurve(Host_PictureLane const & iLane,
                                    std::vector<Host_PicturePoint> iPoints) {
  bool const isKeyPressure = iLane.mName == kKeyPressure;
  if (iPoints.size() == 1 && !isKeyPressure) {
    int const value = iPoints.front().mValue;
    mSettings += (mSettings.empty() ? "" : ", ") + iLane.mName + " " +
                 (value == kHost_BankAlone ? "-" : std::to_string(value));
    return;
  }
  if (!isKeyPressure || mLanes.empty() || mLanes.back().mName != iLane.mName)
    mLanes.push_back(iLane);
  mLanes.back().mCurves.push_back(std::move(iPoints));
  if (iLane.mMin < 0) FitToValues(mLanes.back());
}
