// What holds for every chunk: written and read again it is equal in all that is saved, and it is
// written twice with the same bytes.
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "cmn/cmn_assert.h"
#include "foundation/sys_delayeddeletion.h"
#include "support/chunk_samples.h"
#include "support/golden_files.h"

namespace {

long long const kLargest = (1LL << 62) - 1;

signed char AnyByte(int iFirst) {
  return static_cast<signed char>(*rc::gen::inRange(iFirst, 128));
}

Time_EType AnyUnit() {
  return *rc::gen::element(Time_eType_Samples, Time_eType_Ticks);
}

// Small, long enough for the long note list, or as large as can be saved.
long long AnyCount(long long iLeast) {
  return *rc::gen::oneOf(rc::gen::inRange(iLeast, 3000LL), rc::gen::inRange(iLeast, 40000000LL),
                         rc::gen::inRange(iLeast, kLargest));
}

Vrae_NoteWithDurationEvent AnyNoteEvent(Time_EType iUnit) {
  return Vrae_NoteWithDurationEvent(AnyByte(0), Time_TypedLength(AnyCount(1), iUnit), AnyByte(1),
                                    AnyByte(0));
}

Vrad_NoteListBase_Note AnyNote() {
  Time_EType const unit = AnyUnit();
  Vrae_NoteWithDurationEvent const event = AnyNoteEvent(AnyUnit());
  bool const wasEdited = *rc::gen::arbitrary<bool>();
  return Vrad_NoteListBase_Note(Time_Typed(AnyCount(-kLargest), unit), event,
                                Time_TypedLength(AnyCount(-kLargest), AnyUnit()),
                                wasEdited ? AnyNoteEvent(AnyUnit()) : event,
                                *rc::gen::arbitrary<bool>());
}

Vrae_SubStream AnySubStream() {
  switch (*rc::gen::inRange(0, 5)) {
  case 0:
    return Vrae_SubStream::PitchBend();
  case 1:
    return Vrae_SubStream::Program();
  case 2:
    return Vrae_SubStream::MonoPressure();
  case 3:
    return Vrae_SubStream::PolyPressure(AnyByte(0));
  default:
    return Vrae_SubStream::Controller(static_cast<signed char>(*rc::gen::inRange(1, 120)));
  }
}

void AddAnyValues(Vrad_Chunk & ioChunk) {
  Vrae_SubStream const subStream = AnySubStream();
  Vrae_SubStream_ValueRange const range = subStream.GetValueRange();
  // One unit for each stream: counts that fall are not saved.
  Time_EType const unit = subStream.GetIndex() % 2 == 0 ? Time_eType_Samples : Time_eType_Ticks;
  int const num = *rc::gen::inRange(0, 12);
  for (int i = 0; i < num; ++i)
    ioChunk.AddEvent(
        Vrad_ExtendedEvent(Time_Typed(AnyCount(0), unit),
                           subStream.MakeEvent(*rc::gen::inRange(range.mMin, range.mMax + 1))));
}

Vrad_ExtendedEvent AnySysex() {
  auto const contents = *rc::gen::arbitrary<std::vector<unsigned char>>();
  return Vrad_ExtendedEvent(Time_Typed(AnyCount(-kLargest), AnyUnit()),
                            Vrae_SysexEvent(static_cast<int>(contents.size()), contents.data()));
}

ChunkPtr AnyChunk() {
  ChunkPtr chunkP = MakeChunk();
  int const numNotes = *rc::gen::inRange(0, 20), numStreams = *rc::gen::inRange(0, 4),
            numSysex = *rc::gen::inRange(0, 4);
  for (int i = 0; i < numNotes; ++i)
    chunkP->GetNoteList()->AddNote(AnyNote());
  for (int i = 0; i < numStreams; ++i)
    AddAnyValues(*chunkP.Get());
  for (int i = 0; i < numSysex; ++i)
    chunkP->AddEvent(AnySysex());
  chunkP->SetIsLocal(*rc::gen::arbitrary<bool>());
  return chunkP;
}

// Counts and values of each stream, and the bytes of each sysex.
std::string PrintRest(Vrad_Chunk & iChunk) {
  std::string text;
  for (auto const & streamP : iChunk.GetContinuousList()) {
    Vrae_SubStream const subStream = streamP->GetSubStream();
    text += " / " + std::to_string(subStream.GetIndex());
    for (Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(streamP.Get()); iter.IsMore(); ++iter)
      text += " " + Print((*iter).mTime) + "=" +
              std::to_string(subStream.GetValueFromEvent((*iter).mEvent));
  }
  for (Vrad_EventStreamTimedEventsInRangeIter iter(iChunk.GetEventStream()); iter.IsMore();
       ++iter) {
    Vrae_TimedEvent const event = *iter;
    text += " / " + Print(event.mTime) + ":";
    Vrae_SysexEvent const & sysex = event.mEvent.AsSysex();
    for (int i = 0; i < sysex.GetLength(); ++i)
      text += " " + std::to_string(sysex.GetInternalDataPtr()[i]);
  }
  return text;
}

}  // namespace

RC_GTEST_PROP(Vrad_Chunk_Stream, ReadingGivesBackAllThatIsSaved, ()) {
  Cmn_AssertRecorder const recorder;
  ChunkPtr const chunkP = AnyChunk();
  Bytes const bytes = Written(*chunkP.Get());
  Sys_MemoryInStream stream(bytes);
  ChunkPtr const copyP(Vrad_Chunk::StreamIn(stream, Ndo_Object::kNotUndoable, false));
  RC_ASSERT(stream.BytesLeft() == 0);
  RC_ASSERT(*chunkP->GetNoteList() == *copyP->GetNoteList());
  RC_ASSERT(chunkP->GetNoteList()->GetLongNoteList()->Size() ==
            copyP->GetNoteList()->GetLongNoteList()->Size());
  RC_ASSERT(PrintRest(*chunkP.Get()) == PrintRest(*copyP.Get()));
  RC_ASSERT(chunkP->GetUID() == copyP->GetUID());
  RC_ASSERT(chunkP->IsLocal() == copyP->IsLocal());
  RC_ASSERT(Written(*copyP.Get()) == bytes);
  RC_ASSERT(Written(*chunkP.Get()) == bytes);
  Sys_DelayedDeletionQueue::DeletePending();
}

// Wherever a file ends, what was read before is kept, and nothing but a report comes of it.
RC_GTEST_PROP(Vrad_Chunk_Stream, EveryTearIsReportedOnce, ()) {
  ChunkPtr const chunkP = AnyChunk();
  Bytes bytes = Written(*chunkP.Get());
  int const kHeader = 17;
  bytes.resize(static_cast<size_t>(*rc::gen::inRange(kHeader, static_cast<int>(bytes.size()))));
  Cmn_AssertRecorder const recorder;
  Sys_MemoryInStream stream(bytes);
  ChunkPtr const copyP(Vrad_Chunk::StreamIn(stream, Ndo_Object::kNotUndoable, false));
  RC_ASSERT(recorder.GetNum("Vrad_Chunk::StreamIn exception: end of stream") == 1);
  RC_ASSERT(copyP->GetNoteList()->Size() <= chunkP->GetNoteList()->Size());
  Sys_DelayedDeletionQueue::DeletePending();
}
