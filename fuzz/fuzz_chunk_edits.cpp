// Scripts of edits on two chunks, in undo steps that are taken back and repeated, compared after
// every command with plain sorted lists.
//
//   script  := quantize:bool command*
//   command := chunk:1 of 2, what:1 of 16, then what that command takes
//
// Times are ticks; bounds of ranges are whole samples, which the conversion of ranges leaves alone.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cmn/cmn_assert.h"
#include "foundation/sys_delayeddeletion.h"
#include "foundation/ticktimesmatter.h"
#include "fuzz/fuzz_input.h"
#include "ndo/ndo_manager.h"
#include "vrad/vrad_chunk.h"

namespace {

constexpr long long kGrid = 1000;
constexpr size_t kMaxEvents = 500;  // of a chunk, so that a script stays quick

Time_Typed Tick(long long iTicks) {
  return Time_Typed(iTicks, Time_eType_Ticks);
}

Time_TypedLength Ticks(long long iTicks) {
  return Time_TypedLength(iTicks, Time_eType_Ticks);
}

// To the nearest point of the grid, ties upward.
long long Snapped(long long iTicks) {
  long long const shifted = iTicks + kGrid / 2;
  long long const rest = shifted % kGrid;
  return shifted - (rest < 0 ? rest + kGrid : rest);
}

// Counts the reports of one text; any other report is a find.
class OneTextSink final : public Cmn_AssertSink {
public:
  OneTextSink() : mFormerP(Cmn_Assert::SetSink(this)) {}
  ~OneTextSink() override { Cmn_Assert::SetSink(mFormerP); }
  void Report(Cmn_AssertReport const & iReport) override {
    if (iReport.mCondition != mAllowed) FuzzFail(std::string(iReport.mCondition).c_str());
    ++mNum;
  }

  std::string_view mAllowed;
  int mNum = 0;

private:
  Cmn_AssertSink * mFormerP;
};

struct ModelEvent {
  long long mTicks;
  Vrae_Event mEvent;
  bool mMuted;  // of notes
};

struct ModelStream {
  Vrae_SubStream mSubStream;
  std::map<long long, int> mValues;  // by time
};

// What a chunk should hold.
struct Model {
  std::vector<ModelEvent> mNotes;       // sorted; of one time in order of arrival
  std::vector<ModelEvent> mMisc;        // sorted; of one time the last to arrive first
  std::map<int, ModelStream> mStreams;  // by index
  bool mIsLocal = true;
};

bool IsNote(Vrae_Event const & iEvent) {
  return iEvent.GetType() == Vrae_Event::kNoteWithDuration ||
         iEvent.GetType() == Vrae_Event::kPitchToMIDINoteWithDuration;
}

bool IsSysex(Vrae_Event const & iEvent) {
  return iEvent.GetType() == Vrae_Event::kShortSysex || iEvent.GetType() == Vrae_Event::kLongSysex;
}

// In all fields; the operators do not take kind 22.
bool AreSame(Vrae_Event const & iA, Vrae_Event const & iB) {
  if (iA.GetType() != iB.GetType()) return false;
  if (!IsNote(iA)) return iA == iB;
  Vrae_NoteWithDurationEvent const & a = iA.AsNoteWithDuration();
  Vrae_NoteWithDurationEvent const & b = iB.AsNoteWithDuration();
  if (a.GetType() == Vrae_Event::kPitchToMIDINoteWithDuration &&
      iA.AsPitchToMIDINoteWithDuration().GetFractionalPitch() !=
          iB.AsPitchToMIDINoteWithDuration().GetFractionalPitch()) {
    return false;
  }
  return a.GetPitch() == b.GetPitch() && a.GetOnVelocity() == b.GetOnVelocity() &&
         a.GetOffVelocity() == b.GetOffVelocity() &&
         a.GetDuration().AsInt64() == b.GetDuration().AsInt64();
}

bool AreSame(ModelEvent const & iA, ModelEvent const & iB) {
  return iA.mTicks == iB.mTicks && iA.mMuted == iB.mMuted && AreSame(iA.mEvent, iB.mEvent);
}

bool AreSame(std::vector<ModelEvent> const & iA, std::vector<ModelEvent> const & iB) {
  return std::equal(iA.begin(), iA.end(), iB.begin(), iB.end(),
                    [](ModelEvent const & a, ModelEvent const & b) { return AreSame(a, b); });
}

bool AreSame(Model const & iA, Model const & iB) {
  return AreSame(iA.mNotes, iB.mNotes) && AreSame(iA.mMisc, iB.mMisc) &&
         iA.mIsLocal == iB.mIsLocal &&
         std::equal(iA.mStreams.begin(), iA.mStreams.end(), iB.mStreams.begin(), iB.mStreams.end(),
                    [](auto const & a, auto const & b) {
                      return a.first == b.first && a.second.mValues == b.second.mValues;
                    });
}

// The first note that a search by time, pitch and on velocity finds.
std::vector<ModelEvent>::iterator FindNote(Model & ioModel, ModelEvent const & iNote) {
  Vrae_NoteWithDurationEvent const & wanted = iNote.mEvent.AsNoteWithDuration();
  return std::find_if(ioModel.mNotes.begin(), ioModel.mNotes.end(), [&](ModelEvent const & note) {
    Vrae_NoteWithDurationEvent const & event = note.mEvent.AsNoteWithDuration();
    return note.mTicks == iNote.mTicks && event.GetPitch() == wanted.GetPitch() &&
           event.GetOnVelocity() == wanted.GetOnVelocity();
  });
}

std::vector<ModelEvent>::iterator FindMisc(Model & ioModel, ModelEvent const & iEvent) {
  return std::find_if(ioModel.mMisc.begin(), ioModel.mMisc.end(), [&](ModelEvent const & event) {
    return event.mTicks == iEvent.mTicks && event.mEvent == iEvent.mEvent;
  });
}

void Add(Model & ioModel, ModelEvent const & iEvent) {
  auto const isLess = [](ModelEvent const & a, ModelEvent const & b) {
    return a.mTicks < b.mTicks;
  };
  if (IsNote(iEvent.mEvent)) {
    std::vector<ModelEvent> & notes = ioModel.mNotes;
    notes.insert(std::upper_bound(notes.begin(), notes.end(), iEvent, isLess), iEvent);
  } else if (IsSysex(iEvent.mEvent)) {
    std::vector<ModelEvent> & misc = ioModel.mMisc;
    misc.insert(std::lower_bound(misc.begin(), misc.end(), iEvent, isLess), iEvent);
  } else if (Vrae_SubStream const subStream(iEvent.mEvent); !subStream.IsNull()) {
    ModelStream & stream = ioModel.mStreams[subStream.GetIndex()];
    stream.mSubStream = subStream;
    stream.mValues[iEvent.mTicks] = subStream.GetValueFromEvent(iEvent.mEvent);
  }
}

void Erase(Model & ioModel, ModelEvent const & iEvent) {
  if (iEvent.mEvent.GetType() == Vrae_Event::kNoteWithDuration) {
    auto const note = FindNote(ioModel, iEvent);
    if (note != ioModel.mNotes.end()) ioModel.mNotes.erase(note);
  } else if (IsSysex(iEvent.mEvent)) {
    auto const misc = FindMisc(ioModel, iEvent);
    if (misc != ioModel.mMisc.end()) ioModel.mMisc.erase(misc);
  } else if (Vrae_SubStream const subStream(iEvent.mEvent); !subStream.IsNull()) {
    auto const stream = ioModel.mStreams.find(subStream.GetIndex());
    if (stream == ioModel.mStreams.end()) return;
    stream->second.mValues.erase(iEvent.mTicks);
    if (stream->second.mValues.empty()) ioModel.mStreams.erase(stream);
  }
}

// Leaves an empty stream where one is asked about, as the chunk does.
bool Contains(Model & ioModel, ModelEvent const & iEvent) {
  if (IsNote(iEvent.mEvent)) {
    return iEvent.mEvent.GetType() == Vrae_Event::kNoteWithDuration &&
           FindNote(ioModel, iEvent) != ioModel.mNotes.end();
  }
  if (IsSysex(iEvent.mEvent)) return FindMisc(ioModel, iEvent) != ioModel.mMisc.end();
  Vrae_SubStream const subStream(iEvent.mEvent);
  if (subStream.IsNull()) return false;
  ModelStream & stream = ioModel.mStreams[subStream.GetIndex()];
  stream.mSubStream = subStream;
  auto const value = stream.mValues.find(iEvent.mTicks);
  return value != stream.mValues.end() && subStream.MakeEvent(value->second) == iEvent.mEvent;
}

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

ModelEvent AsModelEvent(Vrad_ExtendedEvent const & iEvent) {
  bool const isMuted = iEvent.IsNoteWithDurationExtendedEvent() && iEvent.mMuted;
  FuzzExpect(iEvent.mTime.GetType() == Time_eType_Ticks, "an event is not at a tick");
  return {iEvent.mTime.AsInt64(), iEvent.mEvent, isMuted};
}

// One chunk with what it should hold.
class Subject {
public:
  explicit Subject(bool iQuantize) : mChunkP(Vrad_Chunk::New(Ndo_Object::kUndoable, iQuantize)) {}

  void CompareAll();
  void Compare(Request const & iRequest) const;
  void CollectStreams(std::set<Vrad_ContinuousDataStream *> & ioStreams) const;

  Vrad_Chunk * mChunkP;  // handed over at the end of the run
  Model mModel;
  bool mHasCache = false;  // no part of the model: undo leaves it alone

private:
  void CompareStores() const;
  void CompareStreams() const;
};

void Subject::CompareAll() {
  FuzzExpect(mChunkP->IsLocal() == mModel.mIsLocal, "the local flag differs");
  FuzzExpect((mChunkP->GetSortedEventList() != nullptr) == mHasCache, "the cached list differs");
  this->CompareStreams();
  this->CompareStores();
}

void Subject::CompareStreams() const {
  auto const & list = mChunkP->GetContinuousList();
  FuzzExpect(list.size() == mModel.mStreams.size(), "the number of streams differs");
  size_t place = 0;
  bool expected[128] = {}, used[128] = {};
  for (auto const & [index, stream] : mModel.mStreams) {
    FuzzExpect(list[place++]->GetSubStream().GetIndex() == index, "the streams differ");
    signed char type = 0, number = 0;
    stream.mSubStream.GetInfo(type, number);
    if (type == Vrae_Event::kController) expected[number] = true;
  }
  mChunkP->FindMIDIControllersInUse(used);
  FuzzExpect(std::equal(used, used + 128, expected), "the controllers in use differ");
}

// The iterator gives each store in its own order, and all of them in playback order.
void Subject::CompareStores() const {
  Vrad_ChunkExtendedEventsInRangeIter iter(mChunkP, Time_Typed::MinTime(Time_eType_Ticks),
                                           Time_Typed::MaxTime(Time_eType_Ticks), Ticks(0), false,
                                           Vrae_Filter().SetAll());
  Model found;
  found.mIsLocal = mModel.mIsLocal;
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
  for (auto const & [index, stream] : mModel.mStreams)
    if (stream.mValues.empty()) found.mStreams[index] = stream;
  FuzzExpect(AreSame(found.mNotes, mModel.mNotes), "the notes differ");
  FuzzExpect(AreSame(found.mMisc, mModel.mMisc), "the sysex differ");
  FuzzExpect(AreSame(found, mModel), "the continuous values differ");
  long long const threshold =
      mChunkP->GetNoteList()->GetLongNoteDuration(Time_eType_Ticks).AsInt64();
  auto const numLong =
      std::count_if(mModel.mNotes.begin(), mModel.mNotes.end(), [&](ModelEvent const & note) {
        return note.mEvent.AsNoteWithDuration().GetDuration().AsInt64() >= threshold;
      });
  FuzzExpect(mChunkP->GetNoteList()->GetLongNoteList()->Size() ==
                 static_cast<unsigned long long>(numLong),
             "the number of long notes differs");
}

// Ties may come in any order, so both sides are matched event by event within a time.
void Subject::Compare(Request const & iRequest) const {
  Vrad_ExtendedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  mChunkP->GetMidiEventsInRange(&wrapper, Ticks(iRequest.mOffset), Tick(iRequest.mStart),
                                Tick(iRequest.mEnd), Tick(iRequest.mClipStart),
                                Tick(iRequest.mClipEnd), false, nullptr, nullptr, iRequest.mFilter,
                                nullptr, iRequest.mSkipMuted, 0, kNoteOffInclusion_None);
  std::vector<ModelEvent> expected = Retrieve(mModel, iRequest);
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

void Subject::CollectStreams(std::set<Vrad_ContinuousDataStream *> & ioStreams) const {
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : mChunkP->GetContinuousList())
    ioStreams.insert(streamP.Get());
}

// The state of both chunks between steps.
typedef std::pair<Model, Model> Models;

class Script {
public:
  Script(std::uint8_t const * iBytes, size_t iSize)
      : mInput(iBytes, iSize),
        mQuantize(mInput.TakeBool()),
        mSubjects{Subject(mQuantize), Subject(mQuantize)} {
    TickTimesMatter::SetActive(mQuantize);
  }
  ~Script();
  void Run();

private:
  void RunCommand();
  void AddEvent(Subject & ioSubject, ModelEvent iEvent);
  void AddMisfit(Subject & ioSubject);
  void EraseEvent(Subject & ioSubject, ModelEvent const & iEvent);
  void FindEvent(Subject & ioSubject, ModelEvent const & iEvent);
  void ReplaceData(Subject & ioSubject, Subject const & iSource);
  void Clear(Subject & ioSubject);
  void StoreCache(Subject & ioSubject);

  void Begin();
  void End();
  void Abort();
  void Undo();
  void Redo();

  long long TakeTicks();
  long long TakeBound();
  ModelEvent TakeNote();
  ModelEvent TakeContinuous();
  ModelEvent TakeSysex();
  ModelEvent TakeStored(Model const & iModel);
  Request TakeRequest();

  Models GetModels() const { return {mSubjects[0].mModel, mSubjects[1].mModel}; }
  void SetModels(Models const & iModels);
  std::set<Vrad_ContinuousDataStream *> GetStreams() const;

  OneTextSink mSink;
  FuzzInput mInput;
  bool mQuantize;
  Subject mSubjects[2];
  Models mBefore;  // the open transaction
  std::set<Vrad_ContinuousDataStream *> mStreamsBefore, mStreamsSince;
  std::vector<Models> mUndo, mRedo;
};

Script::~Script() {
  if (Ndo_gManager.IsRecording()) Ndo_gManager.EndTransaction();
  for (Subject & subject : mSubjects)
    subject.mChunkP->NdoDelete();
  Ndo_gManager.ClearHistory();
  Sys_DelayedDeletionQueue::DeletePending();
  TickTimesMatter::SetActive(false);
}

void Script::Run() {
  while (mInput.IsMore()) {
    this->RunCommand();
    for (Subject & subject : mSubjects)
      subject.CompareAll();
    if (Ndo_gManager.IsRecording()) mStreamsSince.merge(this->GetStreams());
  }
}

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
    return subject.mChunkP->SetIsLocal(subject.mModel.mIsLocal);
  case 12:
    return subject.Compare(this->TakeRequest());
  case 13:
    return mInput.Take(4) == 0 ? this->Abort() : this->End();
  case 14:
    return this->Undo();
  default:
    return this->Redo();
  }
}

void Script::AddEvent(Subject & ioSubject, ModelEvent iEvent) {
  if (ioSubject.mModel.mNotes.size() + ioSubject.mModel.mMisc.size() > kMaxEvents) return;
  this->Begin();
  if (IsNote(iEvent.mEvent)) {
    ioSubject.mChunkP->AddEvent(Vrad_NoteWithDurationExtendedEvent(
        Tick(iEvent.mTicks), iEvent.mEvent.AsNoteWithDuration(), iEvent.mMuted));
  } else {
    ioSubject.mChunkP->AddEvent(Vrad_ExtendedEvent(Tick(iEvent.mTicks), iEvent.mEvent));
  }
  if (mQuantize) iEvent.mTicks = Snapped(iEvent.mTicks);
  Add(ioSubject.mModel, iEvent);
  ioSubject.mHasCache = false;
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
    ioSubject.mChunkP->AddEvent(Vrad_ExtendedEvent(Tick(0), this->TakeNote().mEvent));
  } else {
    mSink.mAllowed = "!\"event type cannot be in a chunk\"";
    ioSubject.mChunkP->AddEvent(Vrad_ExtendedEvent(Tick(0), kMisfits[which]));
  }
  FuzzExpect(mSink.mNum == numBefore + 1, "a misfit is not reported");
  mSink.mAllowed = std::string_view();
  ioSubject.mHasCache = false;
}

void Script::EraseEvent(Subject & ioSubject, ModelEvent const & iEvent) {
  this->Begin();
  ioSubject.mChunkP->EraseEvent(Vrae_TimedEvent(Tick(iEvent.mTicks), iEvent.mEvent));
  Erase(ioSubject.mModel, iEvent);
  ioSubject.mHasCache = false;
}

void Script::FindEvent(Subject & ioSubject, ModelEvent const & iEvent) {
  this->Begin();
  bool const isFound =
      ioSubject.mChunkP->IsEventInChunk(Vrae_TimedEvent(Tick(iEvent.mTicks), iEvent.mEvent));
  FuzzExpect(isFound == Contains(ioSubject.mModel, iEvent), "an event is found or not");
}

void Script::ReplaceData(Subject & ioSubject, Subject const & iSource) {
  this->Begin();
  ioSubject.mChunkP->ReplaceData(iSource.mChunkP);
  bool const isLocal = ioSubject.mModel.mIsLocal;
  ioSubject.mModel = iSource.mModel;
  ioSubject.mModel.mIsLocal = isLocal;
  ioSubject.mHasCache = false;
}

void Script::Clear(Subject & ioSubject) {
  this->Begin();
  ioSubject.mChunkP->Clear();
  ioSubject.mModel.mNotes.clear();
  ioSubject.mModel.mMisc.clear();
  ioSubject.mModel.mStreams.clear();
  ioSubject.mHasCache = false;
}

void Script::StoreCache(Subject & ioSubject) {
  if (ioSubject.mHasCache) return;
  ioSubject.mChunkP->StoreSortedEventList(new Vrad_DisplayItemList);
  ioSubject.mHasCache = true;
}

void Script::Begin() {
  if (Ndo_gManager.IsRecording()) return;
  mBefore = this->GetModels();
  mStreamsBefore = mStreamsSince = this->GetStreams();
  Ndo_gManager.BeginTransaction();
}

void Script::End() {
  if (!Ndo_gManager.IsRecording()) return;
  if (!Ndo_gManager.EndTransaction()) {
    Models const models = this->GetModels();
    FuzzExpect(AreSame(models.first, mBefore.first) && AreSame(models.second, mBefore.second),
               "a change makes no step");
    return;
  }
  mUndo.push_back(mBefore);
  mRedo.clear();
}

// Streams made in the transaction live on without an owner; the script lets go of them.
void Script::Abort() {
  if (!Ndo_gManager.IsRecording()) return;
  Ndo_gManager.AbortTransaction();
  this->SetModels(mBefore);
  for (Vrad_ContinuousDataStream * streamP : mStreamsSince)
    if (mStreamsBefore.count(streamP) == 0) streamP->NdoDelete();
  Ndo_gManager.DropUnreferenced();
}

void Script::Undo() {
  this->End();
  FuzzExpect(Ndo_gManager.Undo() == !mUndo.empty(), "there is a step to undo or not");
  if (mUndo.empty()) return;
  mRedo.push_back(this->GetModels());
  this->SetModels(mUndo.back());
  mUndo.pop_back();
}

void Script::Redo() {
  this->End();
  FuzzExpect(Ndo_gManager.Redo() == !mRedo.empty(), "there is a step to redo or not");
  if (mRedo.empty()) return;
  mUndo.push_back(this->GetModels());
  this->SetModels(mRedo.back());
  mRedo.pop_back();
}

long long Script::TakeTicks() {
  return (mInput.Take() - 32) * 250LL;
}

long long Script::TakeBound() {
  return (mInput.Take(64) - 8) * 1000LL;
}

ModelEvent Script::TakeNote() {
  static constexpr long long kDurations[] = {1, 40, 480, 999, 960000, 9600000, 96000000, 1LL << 40};
  long long const ticks = this->TakeTicks();
  int const choice = mInput.Take();
  auto const pitch = static_cast<signed char>(60 + choice % 4);
  auto const velocity = static_cast<signed char>(100 + choice / 4 % 2);
  Time_TypedLength const duration = Ticks(kDurations[choice / 8 % 8]);
  bool const isMuted = choice / 64 % 2 != 0;
  if (choice < 128) {
    return {ticks, Vrae_NoteWithDurationEvent(pitch, duration, velocity, 64), isMuted};
  }
  return {ticks, Vrae_PitchToMIDINoteWithDuration(pitch, duration, velocity, 64, 0.5f), isMuted};
}

ModelEvent Script::TakeContinuous() {
  long long const ticks = this->TakeTicks();
  int const choice = mInput.Take(8);
  auto const value = static_cast<signed char>(mInput.Take(128));
  switch (choice) {
  case 0:
    return {ticks, Vrae_PitchBendEvent(static_cast<short>(value * 100 - 8000)), false};
  case 1:
    return {ticks,
            Vrae_ProgramEvent(static_cast<signed char>(value * 2), static_cast<short>(value * 500)),
            false};
  case 2:
    return {ticks, Vrae_MonoPressureEvent(value), false};
  case 3:
    return {ticks, Vrae_PolyPressureEvent(static_cast<signed char>(60 + value % 3), value), false};
  case 4:
    return {ticks, Vrae_ControllerEvent(0, value), false};
  default:
    return {ticks, Vrae_ControllerEvent(static_cast<signed char>(choice - 4), value), false};
  }
}

ModelEvent Script::TakeSysex() {
  static unsigned char const kContents[40] = {};
  long long const ticks = this->TakeTicks();
  return {ticks, Vrae_SysexEvent(mInput.Take(3) * 13, kContents), false};
}

// Something that the chunk holds, if it holds anything.
ModelEvent Script::TakeStored(Model const & iModel) {
  int const where = mInput.Take(3), choice = mInput.Take();
  auto const pick = [&](auto const & iList) {
    return std::next(iList.begin(), choice % static_cast<int>(iList.size()));
  };
  if (where == 0 && !iModel.mNotes.empty()) return *pick(iModel.mNotes);
  if (where == 1 && !iModel.mMisc.empty()) return *pick(iModel.mMisc);
  if (iModel.mStreams.empty()) return this->TakeSysex();
  ModelStream const & stream = pick(iModel.mStreams)->second;
  if (stream.mValues.empty()) return this->TakeContinuous();
  auto const value = pick(stream.mValues);
  return {value->first, stream.mSubStream.MakeEvent(value->second), false};
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

void Script::SetModels(Models const & iModels) {
  mSubjects[0].mModel = iModels.first;
  mSubjects[1].mModel = iModels.second;
}

std::set<Vrad_ContinuousDataStream *> Script::GetStreams() const {
  std::set<Vrad_ContinuousDataStream *> streams;
  for (Subject const & subject : mSubjects)
    subject.CollectStreams(streams);
  return streams;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * iBytes, size_t iSize);

int LLVMFuzzerTestOneInput(std::uint8_t const * iBytes, size_t iSize) {
  Script(iBytes, iSize).Run();
  return 0;
}
