// A script of edits on two chunks, in undo steps that are taken back and repeated, compared after
// every command with what they should hold. A fuzzer adds the commands.
#pragma once

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cmn/cmn_assert.h"
#include "foundation/sys_delayeddeletion.h"
#include "foundation/ticktimesmatter.h"
#include "fuzz/chunk_model.h"
#include "fuzz/fuzz_input.h"
#include "ndo/ndo_manager.h"
#include "vrad/vrad_chunk.h"
#include "vrad/vrad_chunkref.h"

inline constexpr size_t kMaxEvents = 500;  // of a chunk, so that a script stays quick

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

// One chunk with what it should hold.
class Subject {
public:
  explicit Subject(bool iQuantize) : mRef(Vrad_Chunk::New(Ndo_Object::kUndoable, iQuantize)) {}

  Vrad_Chunk & GetChunk() const { return *mRef; }
  bool IsFull() const { return mModel.mNotes.size() + mModel.mMisc.size() > kMaxEvents; }
  void Compare() const;
  void CollectStreams(std::set<Vrad_ContinuousDataStream *> & ioStreams) const;

  Vrad_ChunkRef mRef;
  Model mModel;
  bool mHasCache = false;  // no part of the model: undo leaves it alone

private:
  void CompareNotes() const;
  void CompareStreams() const;
  void CompareMisc() const;
};

inline void Subject::Compare() const {
  FuzzExpect(GetChunk().IsLocal() == mModel.mIsLocal, "the local flag differs");
  FuzzExpect((GetChunk().GetSortedEventList() != nullptr) == mHasCache, "the cached list differs");
  CompareNotes();
  CompareStreams();
  CompareMisc();
}

inline ModelEvent AsModelEvent(Vrad_ExtendedEvent const & iEvent) {
  bool const isNote = iEvent.IsNoteWithDurationExtendedEvent();
  FuzzExpect(iEvent.mTime.GetType() == Time_eType_Ticks, "an event is not at a tick");
  return {iEvent.mTime.AsInt64(), iEvent.mEvent, isNote && iEvent.mMuted,
          isNote ? iEvent.mOrigPitch : -1};
}

inline void Subject::CompareNotes() const {
  std::vector<ModelEvent> found;
  Vrad_NoteListBase::NotesExtendedEventInRangeIter iter(GetChunk().GetNoteList());
  for (; iter.IsMore(); ++iter)
    found.push_back(AsModelEvent(*iter));
  FuzzExpect(AreSame(found, mModel.mNotes), "the notes differ");
}

inline void Subject::CompareStreams() const {
  auto const & list = GetChunk().GetContinuousList();
  FuzzExpect(list.size() == mModel.mStreams.size(), "the number of streams differs");
  size_t place = 0;
  for (auto const & [index, stream] : mModel.mStreams) {
    Vrad_ContinuousDataStream * const streamP = list[place++].Get();
    FuzzExpect(streamP->GetSubStream().GetIndex() == index, "the streams differ");
    size_t i = 0;
    Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(
        streamP, Time_Typed::MinTime(Time_eType_Ticks), Time_Typed::MaxTime(Time_eType_Ticks));
    for (; iter.IsMore(); ++iter, ++i) {
      FuzzExpect(i < stream.mValues.size(), "there are more values");
      Vrae_TimedEvent const event = *iter;
      FuzzExpect(event.mTime.AsInt64() == stream.mValues[i].first &&
                     stream.mSubStream.GetValueFromEvent(event.mEvent) == stream.mValues[i].second,
                 "the continuous values differ");
    }
    FuzzExpect(i == stream.mValues.size(), "there are fewer values");
  }
}

inline void Subject::CompareMisc() const {
  std::vector<ModelEvent> found;
  Vrad_EventStreamExtendedEventsInRangeIter iter(GetChunk().GetEventStream(),
                                                 Time_Typed::MinTime(Time_eType_Ticks),
                                                 Time_Typed::MaxTime(Time_eType_Ticks));
  for (; iter.IsMore(); ++iter)
    found.push_back(AsModelEvent(*iter));
  FuzzExpect(AreSame(found, mModel.mMisc), "the sysex differ");
}

inline void Subject::CollectStreams(std::set<Vrad_ContinuousDataStream *> & ioStreams) const {
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : GetChunk().GetContinuousList())
    ioStreams.insert(streamP.Get());
}

// The state of both chunks between steps.
typedef std::pair<Model, Model> Models;

class ChunkScript {
public:
  ChunkScript(std::uint8_t const * iBytes, size_t iSize)
      : mInput(iBytes, iSize),
        mQuantize(mInput.TakeBool()),
        mSubjects{Subject(mQuantize), Subject(mQuantize)} {
    TickTimesMatter::SetActive(mQuantize);
  }
  ChunkScript(ChunkScript const &) = delete;
  ChunkScript & operator=(ChunkScript const &) = delete;
  virtual ~ChunkScript();
  void Run();

protected:
  virtual void RunCommand() = 0;
  virtual void CompareAll() const;

  void AddEvent(Subject & ioSubject, ModelEvent iEvent);
  void Clear(Subject & ioSubject);
  void StoreCache(Subject & ioSubject);

  void Begin();
  void End();
  void Abort();
  void Undo();
  void Redo();
  // Ends the step and forgets all steps, ahead of an edit that is not undone.
  void ForgetSteps();

  long long TakeTicks();
  long long TakeBound();
  ModelEvent TakeNote();
  ModelEvent TakeContinuous();
  ModelEvent TakeSysex();
  ModelEvent TakeStored(Model const & iModel);

private:
  Models GetModels() const { return {mSubjects[0].mModel, mSubjects[1].mModel}; }
  void SetModels(Models const & iModels);
  std::set<Vrad_ContinuousDataStream *> GetStreams() const;

protected:
  OneTextSink mSink;
  FuzzInput mInput;
  bool const mQuantize;
  Subject mSubjects[2];

private:
  Models mBefore;  // the open transaction
  std::set<Vrad_ContinuousDataStream *> mStreamsBefore, mStreamsSince;
  std::vector<Models> mUndo, mRedo;
};

inline ChunkScript::~ChunkScript() {
  if (Ndo_gManager.IsRecording()) Ndo_gManager.EndTransaction();
  for (Subject & subject : mSubjects)
    subject.mRef = Vrad_ChunkRef();
  Ndo_gManager.ClearHistory();
  Sys_DelayedDeletionQueue::DeletePending();
  TickTimesMatter::SetActive(false);
}

inline void ChunkScript::Run() {
  while (mInput.IsMore()) {
    this->RunCommand();
    this->CompareAll();
    if (Ndo_gManager.IsRecording()) mStreamsSince.merge(this->GetStreams());
  }
}

inline void ChunkScript::CompareAll() const {
  for (Subject const & subject : mSubjects)
    subject.Compare();
}

// A note whose original pitch is not given is its own original.
inline void ChunkScript::AddEvent(Subject & ioSubject, ModelEvent iEvent) {
  if (ioSubject.IsFull()) return;
  this->Begin();
  if (IsNote(iEvent.mEvent)) {
    Vrae_NoteWithDurationEvent const & note = iEvent.mEvent.AsNoteWithDuration();
    Vrad_NoteWithDurationExtendedEvent event(Tick(iEvent.mTicks), note, iEvent.mMuted);
    if (iEvent.mOrigPitch < 0) iEvent.mOrigPitch = note.GetPitch();
    event.mOrigPitch = static_cast<signed char>(iEvent.mOrigPitch);
    ioSubject.GetChunk().AddEvent(event);
  } else {
    ioSubject.GetChunk().AddEvent(Vrad_ExtendedEvent(Tick(iEvent.mTicks), iEvent.mEvent));
  }
  if (mQuantize) iEvent.mTicks = Snapped(iEvent.mTicks);
  Add(ioSubject.mModel, iEvent);
  ioSubject.mHasCache = false;
}

inline void ChunkScript::Clear(Subject & ioSubject) {
  this->Begin();
  ioSubject.GetChunk().Clear();
  ioSubject.mModel.mNotes.clear();
  ioSubject.mModel.mMisc.clear();
  ioSubject.mModel.mStreams.clear();
  ioSubject.mHasCache = false;
}

inline void ChunkScript::StoreCache(Subject & ioSubject) {
  if (ioSubject.mHasCache) return;
  ioSubject.GetChunk().StoreSortedEventList(new Vrad_DisplayItemList);
  ioSubject.mHasCache = true;
}

inline void ChunkScript::Begin() {
  if (Ndo_gManager.IsRecording()) return;
  mBefore = this->GetModels();
  mStreamsBefore = mStreamsSince = this->GetStreams();
  Ndo_gManager.BeginTransaction();
}

inline void ChunkScript::End() {
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
inline void ChunkScript::Abort() {
  if (!Ndo_gManager.IsRecording()) return;
  Ndo_gManager.AbortTransaction();
  this->SetModels(mBefore);
  for (Vrad_ContinuousDataStream * streamP : mStreamsSince)
    if (mStreamsBefore.count(streamP) == 0) streamP->NdoDelete();
  Ndo_gManager.DropUnreferenced();
}

inline void ChunkScript::Undo() {
  this->End();
  FuzzExpect(Ndo_gManager.Undo() == !mUndo.empty(), "there is a step to undo or not");
  if (mUndo.empty()) return;
  mRedo.push_back(this->GetModels());
  this->SetModels(mUndo.back());
  mUndo.pop_back();
}

inline void ChunkScript::Redo() {
  this->End();
  FuzzExpect(Ndo_gManager.Redo() == !mRedo.empty(), "there is a step to redo or not");
  if (mRedo.empty()) return;
  mUndo.push_back(this->GetModels());
  this->SetModels(mRedo.back());
  mRedo.pop_back();
}

inline void ChunkScript::ForgetSteps() {
  this->End();
  Ndo_gManager.ClearHistory();
  mUndo.clear();
  mRedo.clear();
}

inline long long ChunkScript::TakeTicks() {
  return (mInput.Take() - 32) * 250LL;
}

inline long long ChunkScript::TakeBound() {
  return (mInput.Take(64) - 8) * 1000LL;
}

inline ModelEvent ChunkScript::TakeNote() {
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

inline ModelEvent ChunkScript::TakeContinuous() {
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

inline ModelEvent ChunkScript::TakeSysex() {
  static unsigned char const kContents[40] = {};
  long long const ticks = this->TakeTicks();
  return {ticks, Vrae_SysexEvent(mInput.Take(3) * 13, kContents), false};
}

// Something that the chunk holds, if it holds anything.
inline ModelEvent ChunkScript::TakeStored(Model const & iModel) {
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

inline void ChunkScript::SetModels(Models const & iModels) {
  mSubjects[0].mModel = iModels.first;
  mSubjects[1].mModel = iModels.second;
}

inline std::set<Vrad_ContinuousDataStream *> ChunkScript::GetStreams() const {
  std::set<Vrad_ContinuousDataStream *> streams;
  for (Subject const & subject : mSubjects)
    subject.CollectStreams(streams);
  return streams;
}
