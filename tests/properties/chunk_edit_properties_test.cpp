// What holds for every bulk edit of every chunk, in either unit: one step that undo and redo
// reverse exactly, what is added can be erased, a range is emptied and nothing else, and notes that
// are moved stay on their side of a clip boundary.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "ndo/ndo_manager.h"
#include "support/chunk_samples.h"
#include "support/edit_scopes.h"
#include "support/tick_times_matter.h"

namespace {

Time_EType AnyUnit() {
  return *rc::gen::element(Time_eType_Samples, Time_eType_Ticks);
}

// Few places, so that events meet. Controllers are numbered from `iFirstController` on.
Vrad_ExtendedEvent AnyEvent(Time_EType iUnit, int iFirstController) {
  Time_Typed const time(*rc::gen::inRange(-3, 30) * 350LL, iUnit);
  switch (*rc::gen::inRange(0, 4)) {
  case 0:
    return ControllerAt(time, iFirstController + *rc::gen::inRange(0, 4),
                        *rc::gen::inRange(0, 128));
  case 1:
    return SysexAt(time, *rc::gen::inRange(0, 3));
  default: {
    Time_TypedLength const duration(*rc::gen::element(1, 2, 900, 5000, 20000000), iUnit);
    auto const pitch = static_cast<signed char>(*rc::gen::inRange(58, 62));
    Time_TypedLength const delta(*rc::gen::inRange(-5, 6), iUnit);
    return Vrad_NoteWithDurationExtendedEvent(
        time, Vrae_NoteWithDurationEvent(pitch, duration, 100, 64), delta,
        Vrae_NoteWithDurationEvent(70, duration, 1, 2), *rc::gen::arbitrary<bool>());
  }
  }
}

void Fill(Vrad_Chunk & oChunk, Time_EType iUnit, int iFirstController = 1) {
  for (int i = *rc::gen::inRange(0, 40); i > 0; --i)
    oChunk.AddEvent(AnyEvent(iUnit, iFirstController));
}

std::string PrintNotes(Vrad_NoteListBase & ioList) {
  std::string text;
  for (Vrad_NoteListBase::FullNotesInRangeIter iter(&ioList); iter.IsMore(); ++iter) {
    Vrad_NoteListBase_Note const & note = *iter;
    text += Print(Vrae_TimedEvent(note.mTime, note.mEvent)) + " " +
            std::to_string(note.mQuantizeTimeDelta.AsInt64()) + " " +
            Print(Vrae_TimedEvent(note.mTime, note.mOrigEvent)) + (note.mMuted ? "m; " : "; ");
  }
  return text;
}

// All fields of notes, and the long notes too.
std::string FullPrint(Vrad_Chunk & ioChunk) {
  return PrintContents(ioChunk) + " / " + PrintNotes(*ioChunk.GetNoteList()) + " / long " +
         PrintNotes(*ioChunk.GetNoteList()->GetLongNoteList());
}

std::vector<std::string> Sorted(Vrad_Chunk & ioChunk) {
  std::vector<std::string> texts;
  for (Vrad_NoteListBase::FullNotesInRangeIter iter(ioChunk.GetNoteList()); iter.IsMore(); ++iter)
    texts.push_back(Print(Vrae_TimedEvent((*iter).mTime, (*iter).mEvent)));
  for (auto const & streamP : ioChunk.GetContinuousList()) {
    Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(streamP.Get());
    for (; iter.IsMore(); ++iter)
      texts.push_back(Print(*iter));
  }
  Vrad_EventStreamTimedEventsInRangeIter iter(ioChunk.GetEventStream());
  for (; iter.IsMore(); ++iter)
    texts.push_back(Print(*iter));
  std::sort(texts.begin(), texts.end());
  return texts;
}

struct Range {
  explicit Range(Time_EType iUnit)
      : mStart(*rc::gen::inRange(-1500, 9000), iUnit),
        mEnd(*rc::gen::inRange(-1500, 12000), iUnit),
        mOffset(*rc::gen::inRange(-2, 3) * 350LL, iUnit) {}
  Time_Typed mStart, mEnd;
  Time_TypedLength mOffset;
};

void EditAtRandom(Vrad_Chunk & ioChunk, Vrad_Chunk const & iSource, Time_EType iUnit) {
  Range const range(iUnit);
  switch (*rc::gen::inRange(0, 6)) {
  case 0:
    ioChunk.EraseEventsFromChunk(&iSource, range.mStart, range.mEnd, range.mOffset);
    break;
  case 1:
    ioChunk.EraseRange(range.mStart, range.mEnd);
    break;
  case 2:
    ioChunk.EraseSubStream(
        Vrae_SubStream::Controller(static_cast<signed char>(*rc::gen::inRange(1, 9))), range.mStart,
        range.mEnd);
    break;
  case 3:
    ioChunk.MoveNotesForLegacyPlayback(range.mOffset);
    break;
  default: {
    auto const mode = static_cast<EMidiNudgeMode>(*rc::gen::inRange(0, 4));
    ioChunk.AddEventsFromChunk(&iSource, range.mStart, range.mEnd, range.mOffset, mode);
    break;
  }
  }
}

// Undo to the first state and redo to the last, twice.
void CheckHistory(Vrad_Chunk & ioChunk, std::vector<std::string> const & iStates) {
  for (int round = 0; round < 2; ++round) {
    for (size_t i = iStates.size() - 1; i-- > 0;) {
      RC_ASSERT(Ndo_gManager.Undo());
      RC_ASSERT(FullPrint(ioChunk) == iStates[i]);
    }
    RC_ASSERT(!Ndo_gManager.Undo());
    for (size_t i = 1; i < iStates.size(); ++i) {
      RC_ASSERT(Ndo_gManager.Redo());
      RC_ASSERT(FullPrint(ioChunk) == iStates[i]);
    }
    RC_ASSERT(!Ndo_gManager.Redo());
  }
}

// A grid and a length, and where they take one note.
struct LegacyMove {
  long long AnyTime() const { return *rc::gen::inRange<long long>(-5 * mGrid, 20 * mGrid); }

  long long Moved(std::set<long long> const & iBoundaries, long long iTime) const {
    GridScope const scope(static_cast<unsigned long long>(mGrid));
    ChunkPtr const chunk = MakeChunk();
    for (long long boundary : iBoundaries)
      chunk->AddClipBoundary(boundary);
    chunk->AddEvent(NoteAt(Ticks(iTime), 60));
    chunk->MoveNotesForLegacyPlayback(mLength);
    return chunk->GetNoteList()->TimeOfFirstNote().AsInt64();
  }

  long long mGrid = *rc::gen::element(1LL, 7LL, 1000LL);
  Time_TypedLength mLength{*rc::gen::inRange<long long>(-3 * mGrid, 3 * mGrid + 1),
                           Time_eType_Ticks};
};

}  // namespace

RC_GTEST_PROP(Vrad_Chunk_EditProperties, EachEditIsOneStepThatUndoAndRedoReverseExactly, ()) {
  Time_EType const unit = AnyUnit();
  std::optional<AvoidOverlapsScope> avoiding;
  if (*rc::gen::arbitrary<bool>()) avoiding.emplace();
  std::optional<TickTimesMatterScope> snapping;
  if (*rc::gen::arbitrary<bool>()) snapping.emplace();
  Ndo_gManager.ClearHistory();
  {
    ChunkPtr const chunk = MakeChunk(Ndo_Object::kUndoable, true);
    ChunkPtr const other = MakeChunk(Ndo_Object::kUndoable, true);
    Fill(*chunk.Get(), unit);
    Fill(*other.Get(), unit, *rc::gen::element(1, 5));
    // The other unit, perhaps, among them.
    if (*rc::gen::arbitrary<bool>()) Fill(*chunk.Get(), AnyUnit());
    std::string const source = FullPrint(*other.Get());
    for (long long i = *rc::gen::inRange(0, 4); i > 0; --i)
      chunk->AddClipBoundary(i * 4000 - 5000);
    Ndo_gManager.ClearHistory();
    std::vector<std::string> states(1, FullPrint(*chunk.Get()));
    for (int i = *rc::gen::inRange(1, 8); i > 0; --i) {
      Ndo_gManager.BeginTransaction();
      EditAtRandom(*chunk.Get(), *rc::gen::arbitrary<bool>() ? *chunk.Get() : *other.Get(), unit);
      bool const isStep = Ndo_gManager.EndTransaction();
      if (!isStep) RC_ASSERT(FullPrint(*chunk.Get()) == states.back());
      if (isStep) states.push_back(FullPrint(*chunk.Get()));
    }
    CheckHistory(*chunk.Get(), states);
    RC_ASSERT(FullPrint(*other.Get()) == source);
  }
  Ndo_gManager.ClearHistory();
}

RC_GTEST_PROP(Vrad_Chunk_EditProperties, WhatIsAddedCanBeErasedAgain, ()) {
  Time_EType const unit = AnyUnit();
  ChunkPtr const chunk = MakeChunk(), source = MakeChunk();
  Fill(*chunk.Get(), unit);
  // Controllers of its own: a value that stands already would be replaced.
  Fill(*source.Get(), unit, 20);
  Range const range(unit);
  std::vector<std::string> const before = Sorted(*chunk.Get());
  chunk->AddEventsFromChunk(source.Get(), range.mStart, range.mEnd, range.mOffset, kNudgeTimes);
  chunk->EraseEventsFromChunk(source.Get(), range.mStart, range.mEnd, range.mOffset);
  RC_ASSERT(Sorted(*chunk.Get()) == before);
}

RC_GTEST_PROP(Vrad_Chunk_EditProperties, ErasingARangeTakesWhatARetrievalWouldFindThere, ()) {
  Time_EType const unit = AnyUnit();
  ChunkPtr const chunk = MakeChunk(), rest = MakeChunk();
  Range const range(unit);
  for (int i = *rc::gen::inRange(0, 40); i > 0; --i) {
    Vrad_ExtendedEvent const event = AnyEvent(unit, 1);
    chunk->AddEvent(event);
    bool const isSysex = event.mEvent.GetType() == Vrae_Event::kShortSysex;
    bool const isBeforeEnd = isSysex ? event.mTime <= range.mEnd : event.mTime < range.mEnd;
    if (event.mTime < range.mStart || !isBeforeEnd) rest->AddEvent(event);
  }
  chunk->EraseRange(range.mStart, range.mEnd);
  RC_ASSERT(FullPrint(*chunk.Get()) == FullPrint(*rest.Get()));
}

RC_GTEST_PROP(Vrad_Chunk_EditProperties, AddingEverythingToAnEmptyChunkCopiesIt, ()) {
  Time_EType const unit = AnyUnit();
  ChunkPtr const chunk = MakeChunk(), source = MakeChunk();
  Fill(*source.Get(), unit);
  chunk->AddEventsFromChunk(source.Get(), Time_Typed(-9000, unit), Time_Typed(99000, unit),
                            Time_TypedLength(0, unit), kNudgeTimes);
  RC_ASSERT(FullPrint(*chunk.Get()) == FullPrint(*source.Get()));
}

RC_GTEST_PROP(Vrad_Chunk_EditProperties, TheShiftForTickTimeMovesEverythingAndUndoesTheNotes, ()) {
  Ndo_gManager.ClearHistory();
  {
    ChunkPtr const chunk = MakeChunk(Ndo_Object::kUndoable), moved = MakeChunk();
    Fill(*chunk.Get(), Time_eType_Ticks);
    Time_TypedLength const length(*rc::gen::inRange(-3000, 3000), Time_eType_Ticks);
    moved->AddEventsFromChunk(chunk.Get(), Ticks(-9000), Ticks(99000), length, kNudgeTimes);
    std::string const notes = PrintNotes(*chunk->GetNoteList());
    Ndo_gManager.BeginTransaction();
    chunk->QuantizeEventsForTTM(length);
    RC_ASSERT(Ndo_gManager.EndTransaction());
    RC_ASSERT(FullPrint(*chunk.Get()) == FullPrint(*moved.Get()));
    RC_ASSERT(Ndo_gManager.Undo());
    RC_ASSERT(PrintNotes(*chunk->GetNoteList()) == notes);
    RC_ASSERT(Ndo_gManager.Redo());
    RC_ASSERT(FullPrint(*chunk.Get()) == FullPrint(*moved.Get()));
  }
  Ndo_gManager.ClearHistory();
}

RC_GTEST_PROP(Vrad_Chunk_EditProperties, MovedNotesNeverComeBeforeABoundaryThatTheyWereBehind, ()) {
  LegacyMove const move;
  std::set<long long> boundaries;
  for (int i = *rc::gen::inRange(0, 6); i > 0; --i)
    boundaries.insert(move.AnyTime());
  long long const time = move.AnyTime();
  long long const place = move.Moved(boundaries, time);
  RC_ASSERT(place == -1 || (place >= 0 && place % move.mGrid == 0));
  for (long long boundary : boundaries)
    if (time >= boundary) RC_ASSERT(place >= move.Moved(boundaries, boundary));
}

RC_GTEST_PROP(Vrad_Chunk_EditProperties, MovedNotesStayAStepBeforeALoneBoundary, ()) {
  LegacyMove const move;
  long long const boundary = move.AnyTime();
  long long const time = boundary - *rc::gen::inRange<long long>(1, 5 * move.mGrid + 1);
  long long const boundaryPlace = move.Moved({boundary}, boundary);
  long long const place = move.Moved({boundary}, time);
  RC_ASSERT(place < boundaryPlace || (place == -1 && boundaryPlace == -1));
}
