// Scripts of edits on two chunks, in undo steps that are taken back and repeated, compared after
// every command with plain sorted lists.
//
//   script  := quantize:bool command*
//   command := chunk:1 of 2, what:1 of 16, then what that command takes
//
// Times are ticks; bounds of ranges are whole samples, which the conversion of ranges leaves alone.
#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "fuzz/chunk_script.h"

namespace {

// What one retrieval asks for, in ticks.
struct Request {
  long long mStart, mEnd, mClipStart, mClipEnd, mOffset;
  Vrae_Filter mFilter;
  bool mSkipMuted;
};

std::vector<ModelEvent> Retrieve(Model const & iModel, Request const & iRequest) {
  std::vector<ModelEvent> found;
  auto const add = [&](ModelEvent iEvent) {
    if (iEvent.mTicks < iRequest.mStart || iEvent.mTicks >= iRequest.mEnd) return;
    bool const isNote = IsNote(iEvent.mEvent);
    iEvent.mTicks -= iRequest.mOffset;
    if (!isNote && iEvent.mTicks < 0) iEvent.mTicks = 0;
    if (iEvent.mTicks < iRequest.mClipStart || iEvent.mTicks >= iRequest.mClipEnd) return;
    found.push_back(iEvent);
  };
  if (iRequest.mFilter.Get(Vrae_Filter::eDataType_Notes)) {
    for (ModelEvent const & note : iModel.mNotes)
      if (!iRequest.mSkipMuted || !note.mMuted) add(note);
  }
  for (auto const & [index, stream] : iModel.mStreams) {
    if (!iRequest.mFilter.FilterSubStream(stream.mSubStream)) continue;
    for (auto const & [ticks, value] : stream.mValues)
      add({ticks, stream.mSubStream.MakeEvent(value), false});
  }
  if (iRequest.mFilter.Get(Vrae_Filter::eDataType_Sysex)) {
    for (ModelEvent const & event : iModel.mMisc)
      add(event);
  }
  return found;
}

// The iterator gives each store in its own order, and all of them in playback order.
void CompareWalk(Subject const & iSubject) {
  Vrad_ChunkExtendedEventsInRangeIter iter(
      &iSubject.GetChunk(), Time_Typed::MinTime(Time_eType_Ticks),
      Time_Typed::MaxTime(Time_eType_Ticks), Ticks(0), false, Vrae_Filter().SetAll());
  Model found;
  found.mIsLocal = iSubject.mModel.mIsLocal;
  Vrad_ExtendedEvent former;
  for (bool isFirst = true; iter.IsMore(); ++iter, isFirst = false) {
    Vrad_ExtendedEvent const event = *iter;
    FuzzExpect(isFirst || !Vrae_TimedEvent::PlaybackOrdering(event, former), "events out of order");
    former = event;
    ModelEvent const modelEvent = AsModelEvent(event);
    if (IsNote(modelEvent.mEvent))
      found.mNotes.push_back(modelEvent);
    else if (IsSysex(modelEvent.mEvent))
      found.mMisc.push_back(modelEvent);
    else
      Add(found, modelEvent);
  }
  // Streams without values give no events.
  for (auto const & [index, stream] : iSubject.mModel.mStreams)
    if (stream.mValues.empty()) found.mStreams[index] = stream;
  FuzzExpect(AreSame(found, iSubject.mModel), "a walk gives other events");
}

void CompareControllersInUse(Subject const & iSubject) {
  bool expected[128] = {}, used[128] = {};
  for (auto const & [index, stream] : iSubject.mModel.mStreams) {
    signed char type = 0, number = 0;
    stream.mSubStream.GetInfo(type, number);
    if (type == Vrae_Event::kController) expected[number] = true;
  }
  iSubject.GetChunk().FindMIDIControllersInUse(used);
  FuzzExpect(std::equal(used, used + 128, expected), "the controllers in use differ");
}

void CompareLongNotes(Subject const & iSubject) {
  Vrad_NoteListBase const & notes = *iSubject.GetChunk().GetNoteList();
  long long const threshold = notes.GetLongNoteDuration(Time_eType_Ticks).AsInt64();
  auto const numLong = std::count_if(
      iSubject.mModel.mNotes.begin(), iSubject.mModel.mNotes.end(), [&](ModelEvent const & note) {
        return note.mEvent.AsNoteWithDuration().GetDuration().AsInt64() >= threshold;
      });
  FuzzExpect(notes.GetLongNoteList()->Size() == static_cast<unsigned long long>(numLong),
             "the number of long notes differs");
}

// Ties may come in any order, so both sides are matched event by event within a time.
void CompareRange(Subject const & iSubject, Request const & iRequest) {
  Vrad_ExtendedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  iSubject.GetChunk().GetMidiEventsInRange(
      &wrapper, Ticks(iRequest.mOffset), Tick(iRequest.mStart), Tick(iRequest.mEnd),
      Tick(iRequest.mClipStart), Tick(iRequest.mClipEnd), false, nullptr, nullptr, iRequest.mFilter,
      nullptr, iRequest.mSkipMuted, 0, kNoteOffInclusion_None);
  std::vector<ModelEvent> expected = Retrieve(iSubject.mModel, iRequest);
  FuzzExpect(list.size() == expected.size(), "a range gives another number of events");
  for (size_t i = 0; i < list.size(); ++i) {
    FuzzExpect(i == 0 || !Vrae_TimedEvent::PlaybackOrdering(list[i], list[i - 1]),
               "a range is out of order");
    ModelEvent const event = AsModelEvent(list[i]);
    auto const match =
        std::find_if(expected.begin(), expected.end(),
                     [&](ModelEvent const & other) { return AreSame(event, other); });
    FuzzExpect(match != expected.end(), "a range gives another event");
    expected.erase(match);
  }
}

class Script final : public ChunkScript {
public:
  using ChunkScript::ChunkScript;

private:
  void RunCommand() override;
  void CompareAll() const override;
  void AddMisfit(Subject & ioSubject);
  void EraseEvent(Subject & ioSubject, ModelEvent const & iEvent);
  void FindEvent(Subject & ioSubject, ModelEvent const & iEvent);
  void ReplaceData(Subject & ioSubject, Subject const & iSource);
  Request TakeRequest();
};

void Script::RunCommand() {
  int const which = mInput.Take(2);
  Subject & subject = mSubjects[which];
  switch (mInput.Take(16)) {
  case 0:
  case 1:
    return this->AddEvent(subject, this->TakeNote());
  case 2:
  case 3:
    return this->AddEvent(subject, this->TakeContinuous());
  case 4:
    return this->AddEvent(subject, this->TakeSysex());
  case 5:
    return this->AddMisfit(subject);
  case 6:
    return this->EraseEvent(subject, this->TakeStored(subject.mModel));
  case 7:
    return this->EraseEvent(subject, mInput.TakeBool() ? this->TakeNote() : this->TakeContinuous());
  case 8:
    return this->FindEvent(subject, mInput.TakeBool() ? this->TakeStored(subject.mModel)
                                                      : this->TakeContinuous());
  case 9:
    return mInput.TakeBool() ? this->ReplaceData(subject, mSubjects[1 - which])
                             : this->Clear(subject);
  case 10:
    return this->StoreCache(subject);
  case 11:
    this->Begin();
    subject.mModel.mIsLocal = mInput.TakeBool();
    return subject.GetChunk().SetIsLocal(subject.mModel.mIsLocal);
  case 12:
    return CompareRange(subject, this->TakeRequest());
  case 13:
    return mInput.Take(4) == 0 ? this->Abort() : this->End();
  case 14:
    return this->Undo();
  default:
    return this->Redo();
  }
}

void Script::CompareAll() const {
  ChunkScript::CompareAll();
  for (Subject const & subject : mSubjects) {
    CompareWalk(subject);
    CompareControllersInUse(subject);
    CompareLongNotes(subject);
  }
}

// An event that no store takes, and a note without its extras.
void Script::AddMisfit(Subject & ioSubject) {
  static Vrae_Event const kMisfits[] = {Vrae_Event(), Vrae_NoteOnEvent(60), Vrae_StartEvent(),
                                        Vrae_ReleaseControllerEvent(5),
                                        Vrae_ClipEvent("", Ticks(1))};
  this->Begin();
  int const which = mInput.Take(6);
  int const numBefore = mSink.mNum;
  if (which == 5) {
    mSink.mAllowed = "!\"non-extended note event cannot be in a chunk\"";
    ioSubject.GetChunk().AddEvent(Vrad_ExtendedEvent(Tick(0), this->TakeNote().mEvent));
  } else {
    mSink.mAllowed = "!\"event type cannot be in a chunk\"";
    ioSubject.GetChunk().AddEvent(Vrad_ExtendedEvent(Tick(0), kMisfits[which]));
  }
  FuzzExpect(mSink.mNum == numBefore + 1, "a misfit is not reported");
  mSink.mAllowed = std::string_view();
  ioSubject.mHasCache = false;
}

void Script::EraseEvent(Subject & ioSubject, ModelEvent const & iEvent) {
  this->Begin();
  ioSubject.GetChunk().EraseEvent(Vrae_TimedEvent(Tick(iEvent.mTicks), iEvent.mEvent));
  Erase(ioSubject.mModel, iEvent);
  ioSubject.mHasCache = false;
}

void Script::FindEvent(Subject & ioSubject, ModelEvent const & iEvent) {
  this->Begin();
  bool const isFound =
      ioSubject.GetChunk().IsEventInChunk(Vrae_TimedEvent(Tick(iEvent.mTicks), iEvent.mEvent));
  FuzzExpect(isFound == Contains(ioSubject.mModel, iEvent), "an event is found or not");
}

void Script::ReplaceData(Subject & ioSubject, Subject const & iSource) {
  this->Begin();
  ioSubject.GetChunk().ReplaceData(&iSource.GetChunk());
  bool const isLocal = ioSubject.mModel.mIsLocal;
  ioSubject.mModel = iSource.mModel;
  ioSubject.mModel.mIsLocal = isLocal;
  ioSubject.mHasCache = false;
}

Request Script::TakeRequest() {
  Request request;
  request.mStart = this->TakeBound();
  request.mEnd = this->TakeBound();
  request.mClipStart = this->TakeBound();
  request.mClipEnd = this->TakeBound();
  request.mOffset = mInput.Take(3) * 2000LL;
  request.mFilter.SetDefault();
  int const flags = mInput.Take();
  for (int type = 0; type < Vrae_Filter::eDataType_NumValues; ++type)
    request.mFilter.Set(Vrae_Filter::EDataType(type), (flags >> (type % 8) & 1) == 0);
  request.mSkipMuted = mInput.TakeBool();
  return request;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * iBytes, size_t iSize);

int LLVMFuzzerTestOneInput(std::uint8_t const * iBytes, size_t iSize) {
  Script(iBytes, iSize).Run();
  return 0;
}
