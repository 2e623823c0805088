// Scripts of bulk edits on two chunks, in undo steps that are taken back and repeated, compared
// after every command with plain lists. The chunks are held by handles that come and go.
//
//   script  := quantize:bool command*
//   command := chunk:1 of 2, what:1 of 16, then what that command takes
#include <cstdint>
#include <set>
#include <string_view>

#include "fuzz/chunk_bulk_model.h"
#include "fuzz/chunk_script.h"

namespace {

constexpr int kNumHandles = 4;
constexpr int kNone = -1;
constexpr long long kTicksPerSample = 40;

struct Range {
  long long mStart, mEnd;
};

class Script final : public ChunkScript {
public:
  using ChunkScript::ChunkScript;
  ~Script() override { gAvoidOverlapsAndDuplicates = false; }

private:
  void RunCommand() override;
  void CompareAll() const override;

  void AddFrom(int iTarget, int iSource);
  void EraseFrom(int iTarget, int iSource);
  void EraseRange(Subject & ioSubject);
  void EraseSubStream(Subject & ioSubject);
  void EraseNullSubStream(Subject & ioSubject);
  void Move(int iWhich);
  void Shift(int iWhich);
  void Record();
  void TakeHandle(int iWhich);

  int TakeSource(int iTarget) { return mInput.Take(4) == 0 ? iTarget : 1 - iTarget; }
  Range TakeRange();
  Time_TypedLength TakeLength();
  ModelEvent TakeTaggedNote();
  ModelOffset AsModelOffset(Time_TypedLength iLength) const;

  std::set<long long> mBoundaries[2];
  bool mIsShifted[2] = {};
  Vrad_ChunkRef mHandles[kNumHandles];
  int mHeld[kNumHandles] = {kNone, kNone, kNone, kNone};  // which chunk
  Vrad_ChunkWriter mWriter;
  int mWritten = kNone;
  int mNumUsers[2] = {};
};

void Script::RunCommand() {
  int const which = mInput.Take(2);
  Subject & subject = mSubjects[which];
  switch (mInput.Take(16)) {
  case 0:
  case 1:
    return this->AddEvent(subject, this->TakeTaggedNote());
  case 2:
    return this->AddEvent(subject, this->TakeContinuous());
  case 3:
    return this->AddEvent(subject, this->TakeSysex());
  case 4:
  case 5:
    return this->AddFrom(which, this->TakeSource(which));
  case 6:
    return this->EraseFrom(which, this->TakeSource(which));
  case 7:
    return this->EraseRange(subject);
  case 8:
    return this->EraseSubStream(subject);
  case 9:
    return this->Move(which);
  case 10:
    return this->Shift(which);
  case 11:
    return this->TakeHandle(which);
  case 12:
    return this->Record();
  case 13:
    return mInput.Take(4) == 0 ? this->Abort() : this->End();
  case 14:
    return mInput.Take(4) == 0 ? this->StoreCache(subject) : this->Undo();
  default:
    return this->Redo();
  }
}

void Script::CompareAll() const {
  ChunkScript::CompareAll();
  for (int which = 0; which < 2; ++which) {
    Vrad_ChunkRef const & ref = mSubjects[which].mRef;
    int num = 1 + (mWritten == which);
    for (int i = 0; i < kNumHandles; ++i) {
      bool const isSame = mHandles[i].IsSameChunkAs(ref);
      FuzzExpect(isSame == (mHeld[i] == which), "a handle has another chunk");
      num += isSame;
    }
    FuzzExpect(ref.GetRefCount() == num, "the number of handles differs");
    FuzzExpect(ref.GetNumRealUsers() == mNumUsers[which], "the number of users differs");
  }
}

void Script::AddFrom(int iTarget, int iSource) {
  Range const range = this->TakeRange();
  Time_TypedLength const length = this->TakeLength();
  int const choice = mInput.Take(), mode = choice % 5;
  Subject & target = mSubjects[iTarget];
  Subject const & source = mSubjects[iSource];
  if (target.IsFull() || source.IsFull()) return;

  this->Begin();
  bool const areMoved = length.AsInt64() != 0 || mQuantize, isUnknown = mode == 4;
  int const numBefore = mSink.mNum;
  if (isUnknown) mSink.mAllowed = "unexpected nudge mode";
  gAvoidOverlapsAndDuplicates = choice % 2 != 0;
  target.GetChunk().AddEventsFromChunk(&source.GetChunk(), Tick(range.mStart), Tick(range.mEnd),
                                       length, static_cast<EMidiNudgeMode>(mode));
  gAvoidOverlapsAndDuplicates = false;
  mSink.mAllowed = std::string_view();
  FuzzExpect(mSink.mNum - numBefore == (isUnknown && areMoved), "a mode is reported or not");
  target.mHasCache = false;

  Model const from = source.mModel;  // the source may be the target
  Model & model = target.mModel;
  ModelOffset offset = this->AsModelOffset(length);
  ModelEvents notes = InRange(from.mNotes, range.mStart, range.mEnd);
  if (areMoved) OffsetNotes(notes, offset, mode);
  if (choice % 2 != 0 && !notes.empty())
    model.mNotes = OverlapMerge(model.mNotes, notes).mResult;
  else
    MergeNotes(model, notes);

  if (mode != kNudgeTimes && !isUnknown) offset.mTicks = 0;
  AddMisc(model.mMisc, InRange(from.mMisc, range.mStart, range.mEnd), range.mStart, range.mEnd,
          offset);
  for (auto const & [index, stream] : from.mStreams) {
    if (!HasValueIn(stream.mValues, range.mStart, range.mEnd)) continue;
    model.mStreams[index].mSubStream = stream.mSubStream;
    AddValues(model.mStreams[index].mValues, InRange(stream.mValues, range.mStart, range.mEnd),
              range.mStart, range.mEnd, offset);
  }
}

void Script::EraseFrom(int iTarget, int iSource) {
  Range const range = this->TakeRange();
  Time_TypedLength const length = this->TakeLength();
  Subject & target = mSubjects[iTarget];
  Subject const & source = mSubjects[iSource];
  this->Begin();
  target.GetChunk().EraseEventsFromChunk(&source.GetChunk(), Tick(range.mStart), Tick(range.mEnd),
                                         length);
  target.mHasCache = false;

  Model const from = source.mModel;
  Model & model = target.mModel;
  ModelOffset const offset = this->AsModelOffset(length);
  ModelEvents notes = InRange(from.mNotes, range.mStart, range.mEnd);
  if (length.AsInt64() != 0) OffsetNotes(notes, offset, kNudgeTimes);
  EraseNotes(model, notes);
  EraseMisc(model.mMisc, InRange(from.mMisc, range.mStart, range.mEnd), offset.mTicks);
  for (auto const & [index, stream] : from.mStreams) {
    auto const own = model.mStreams.find(index);
    if (own == model.mStreams.end() || !HasValueIn(stream.mValues, range.mStart, range.mEnd))
      continue;
    EraseValues(own->second.mValues, InRange(stream.mValues, range.mStart, range.mEnd),
                offset.mTicks);
    if (own->second.mValues.empty()) model.mStreams.erase(own);
  }
}

void Script::EraseRange(Subject & ioSubject) {
  Range const range = this->TakeRange();
  this->Begin();
  ioSubject.GetChunk().EraseRange(Tick(range.mStart), Tick(range.mEnd));
  ioSubject.mHasCache = false;
  Model & model = ioSubject.mModel;
  EraseInRange(model.mNotes, range.mStart, range.mEnd);
  EraseMiscRange(model.mMisc, range.mStart, range.mEnd);
  for (auto stream = model.mStreams.begin(); stream != model.mStreams.end();) {
    EraseInRange(stream->second.mValues, range.mStart, range.mEnd);
    stream = stream->second.mValues.empty() ? model.mStreams.erase(stream) : std::next(stream);
  }
}

void Script::EraseSubStream(Subject & ioSubject) {
  Vrae_SubStream const subStream(this->TakeContinuous().mEvent);
  Range const range = this->TakeRange();
  this->Begin();
  if (subStream.IsNull()) return this->EraseNullSubStream(ioSubject);
  ioSubject.GetChunk().EraseSubStream(subStream, Tick(range.mStart), Tick(range.mEnd));
  ioSubject.mHasCache = false;
  auto & streams = ioSubject.mModel.mStreams;
  auto const stream = streams.lower_bound(subStream.GetIndex());
  if (stream == streams.end()) return;
  EraseInRange(stream->second.mValues, range.mStart, range.mEnd);
  if (stream->second.mValues.empty()) streams.erase(stream);
}

// Refused, with everything left as it was, the cached list too.
void Script::EraseNullSubStream(Subject & ioSubject) {
  bool isRefused = false;
  mSink.mAllowed = "0";
  try {
    ioSubject.GetChunk().EraseSubStream(Vrae_SubStream(), Tick(0), Tick(1));
  } catch (Cmn_AssertException const &) {
    isRefused = true;
  }
  mSink.mAllowed = std::string_view();
  FuzzExpect(isRefused, "no sub-stream is erased from");
}

void Script::Move(int iWhich) {
  Subject & subject = mSubjects[iWhich];
  if (mInput.TakeBool()) {
    long long const boundary = this->TakeTicks();
    subject.GetChunk().AddClipBoundary(boundary);
    mBoundaries[iWhich].insert(boundary);
    return;
  }
  Time_TypedLength const length = this->TakeLength();
  this->Begin();
  subject.GetChunk().MoveNotesForLegacyPlayback(length);
  subject.mHasCache = false;
  MoveNotes(subject.mModel, length.AsInt64(), mBoundaries[iWhich]);
}

// Undo would take back the notes alone, so all steps are forgotten.
void Script::Shift(int iWhich) {
  Time_TypedLength const length = this->TakeLength();
  this->ForgetSteps();
  Subject & subject = mSubjects[iWhich];
  subject.GetChunk().QuantizeEventsForTTM(length);
  if (mIsShifted[iWhich]) return;
  mIsShifted[iWhich] = true;
  subject.mHasCache = false;
  Model & model = subject.mModel;
  ModelOffset const offset = this->AsModelOffset(length);
  if (mBoundaries[iWhich].empty())
    OffsetNotes(model.mNotes, offset, kNudgeTimes);
  else
    MoveNotes(model, length.AsInt64(), mBoundaries[iWhich]);
  for (ModelEvent & event : model.mMisc)
    event.mTicks = Shifted(event.mTicks, offset);
  for (auto & [index, stream] : model.mStreams)
    for (auto & value : stream.mValues)
      value.first = Shifted(value.first, offset);
}

// An event through the writer, which goes to no chunk at first.
void Script::Record() {
  int const choice = mInput.Take(4);
  if (choice == 0) {
    mWritten = mInput.Take(3) - 1;
    mWriter.SetChunkRef(mWritten == kNone ? Vrad_ChunkRef() : mSubjects[mWritten].mRef);
    return;
  }
  ModelEvent event = choice == 1   ? this->TakeTaggedNote()
                     : choice == 2 ? this->TakeContinuous()
                                   : this->TakeSysex();
  if (mWritten != kNone && mSubjects[mWritten].IsFull()) return;
  this->Begin();
  mWriter.ReceiveEvent(Vrae_TimedEvent(Tick(event.mTicks), event.mEvent));
  if (mWritten == kNone) return;
  if (mQuantize) event.mTicks = Snapped(event.mTicks);
  event.mMuted = false;
  event.mOrigPitch = choice == 1 ? PitchOf(event) : -1;
  Add(mSubjects[mWritten].mModel, event);
  mSubjects[mWritten].mHasCache = false;
}

void Script::TakeHandle(int iWhich) {
  int const choice = mInput.Take(), handle = choice % kNumHandles;
  switch (choice / kNumHandles % 4) {
  case 0:
    mHandles[handle] = Vrad_ChunkRef();
    mHeld[handle] = kNone;
    return;
  case 1:
    mHandles[handle] = mSubjects[iWhich].mRef;
    mHeld[handle] = iWhich;
    return;
  case 2: {
    int const other = choice / 16 % kNumHandles;
    mHandles[handle] = Vrad_ChunkRef(mHandles[other]);
    mHeld[handle] = mHeld[other];
    return;
  }
  default:
    mHandles[handle].AddToRealUsers(choice / 16 - 8);
    if (mHeld[handle] != kNone) mNumUsers[mHeld[handle]] += choice / 16 - 8;
  }
}

Range Script::TakeRange() {
  long long const start = this->TakeTicks();
  return {start, mInput.Take(4) == 0 ? this->TakeTicks() : start + mInput.Take() * 125LL};
}

Time_TypedLength Script::TakeLength() {
  static constexpr long long kCounts[] = {0, 0, 1, -1, 250, -250, 500, 1000, -1000, 1499, 20000};
  long long const count = kCounts[mInput.Take(11)];
  if (mInput.Take(4) != 0) return Ticks(count);
  return Time_TypedLength(count / kTicksPerSample, Time_eType_Samples);
}

// No fractional pitches, which do not compare.
ModelEvent Script::TakeTaggedNote() {
  ModelEvent note = this->TakeNote();
  note.mEvent.mU.mBase.mType = Vrae_Event::kNoteWithDuration;
  note.mOrigPitch = mInput.Take(128);
  return note;
}

ModelOffset Script::AsModelOffset(Time_TypedLength iLength) const {
  bool const isInSamples = iLength.GetType() == Time_eType_Samples;
  return {iLength.AsInt64() * (isInSamples ? kTicksPerSample : 1), isInSamples, mQuantize};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * iBytes, size_t iSize);

int LLVMFuzzerTestOneInput(std::uint8_t const * iBytes, size_t iSize) {
  Script(iBytes, iSize).Run();
  return 0;
}
