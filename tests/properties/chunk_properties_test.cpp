// What holds for every chunk: retrieval against a plain model, the lazy walk against the list, and
// undo and redo against kept copies.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "foundation/time_convert.h"
#include "ndo/ndo_manager.h"
#include "support/chunk_samples.h"

namespace {

Vrae_Filter All() {
  Vrae_Filter filter;
  return filter.SetAll();
}

// Few places, so that events meet.
Vrad_ExtendedEvent AnyEvent(int iSpan) {
  Time_Typed const time = Ticks(*rc::gen::inRange(0, iSpan) * 10LL);
  switch (*rc::gen::inRange(0, 5)) {
  case 0:
    return ControllerAt(time, *rc::gen::inRange(1, 5), *rc::gen::inRange(0, 128));
  case 1:
    return BendAt(time, *rc::gen::inRange(-8192, 8192));
  case 2:
    return SysexAt(time, *rc::gen::inRange(0, 100));
  default:
    return NoteAt(time, *rc::gen::inRange(58, 62), *rc::gen::inRange(1, 500),
                  *rc::gen::arbitrary<bool>());
  }
}

std::vector<Vrad_ExtendedEvent> AnyEvents(Vrad_Chunk & oChunk) {
  std::vector<Vrad_ExtendedEvent> events;
  int const num = *rc::gen::inRange(0, 40);
  for (int i = 0; i < num; ++i) {
    events.push_back(AnyEvent(30));
    oChunk.AddEvent(events.back());
  }
  return events;
}

std::vector<std::string> Sorted(std::vector<std::string> iTexts) {
  std::sort(iTexts.begin(), iTexts.end());
  return iTexts;
}

template <class TList>
std::vector<std::string> Texts(TList const & iEvents) {
  std::vector<std::string> texts;
  for (auto const & event : iEvents)
    texts.push_back(Print(event));
  return texts;
}

Vrae_TimedEventList Retrieve(Vrad_Chunk const & iChunk, long long iOffset, long long iStart,
                             long long iEnd, long long iClipStart, long long iClipEnd) {
  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  iChunk.GetMidiEventsInRange(&wrapper, Time_TypedLength(iOffset, Time_eType_Ticks), Ticks(iStart),
                              Ticks(iEnd), Ticks(iClipStart), Ticks(iClipEnd), false, nullptr,
                              nullptr, All(), nullptr, false, 0, kNoteOffInclusion_None);
  return list;
}

// Of the events of one sub-stream at one time only the last counts; all others stay.
bool IsReplaced(std::vector<Vrad_ExtendedEvent> const & iEvents, size_t iIndex) {
  Vrad_ExtendedEvent const & event = iEvents[iIndex];
  Vrae_SubStream const subStream(event.mEvent);
  for (size_t i = iIndex + 1; i < iEvents.size(); ++i)
    if (!subStream.IsNull() && Vrae_SubStream(iEvents[i].mEvent) == subStream &&
        iEvents[i].mTime == event.mTime)
      return true;
  return false;
}

long long FloorTo40(long long iTick) {
  return iTick >= 0 ? iTick / 40 * 40 : -((-iTick + 39) / 40 * 40);
}

void EditAtRandom(Vrad_Chunk & ioChunk, Vrad_Chunk const & iOther) {
  switch (*rc::gen::inRange(0, 9)) {
  case 0:
    ioChunk.Clear();
    break;
  case 1:
    ioChunk.ReplaceData(&iOther);
    break;
  case 2:
    ioChunk.SetIsLocal(*rc::gen::arbitrary<bool>());
    break;
  case 3: {
    Vrad_NoteListBase * const listP = new Vrad_NoteList(Ndo_Object::kUndoable, false);
    listP->AddNote(NoteAt(Ticks(*rc::gen::inRange(0, 100)), 60));
    ioChunk.SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase>(listP));
    break;
  }
  case 4:
    ioChunk.IsEventInChunk(AnyEvent(6));
    break;
  case 5:
  case 6:
    ioChunk.EraseEvent(AnyEvent(6));
    break;
  default:
    ioChunk.AddEvent(AnyEvent(6));
    break;
  }
}

std::string FullPrint(Vrad_Chunk const & iChunk) {
  return PrintContents(iChunk) + (iChunk.IsLocal() ? " local" : " shared");
}

}  // namespace

RC_GTEST_PROP(Vrad_Chunk_Properties, RetrievalGivesWhatAPlainModelGives, ()) {
  ChunkPtr const chunk = MakeChunk();
  std::vector<Vrad_ExtendedEvent> const events = AnyEvents(*chunk.Get());
  // Bounds on samples for the range; the clip range is brought to them.
  long long const offset = *rc::gen::inRange(-5, 5) * 40LL;
  long long const start = *rc::gen::inRange(0, 8) * 40LL, end = *rc::gen::inRange(0, 8) * 40LL;
  long long const clipStart = *rc::gen::inRange(-300, 300), clipEnd = *rc::gen::inRange(-300, 500);

  std::vector<std::string> expected;
  for (size_t i = 0; i < events.size(); ++i) {
    Vrad_ExtendedEvent event = events[i];
    long long const stored = event.mTime.AsInt64();
    if (stored < start || stored >= end || IsReplaced(events, i)) continue;
    long long shifted = stored - offset;
    if (!event.IsNoteWithDurationEvent()) shifted = std::max(shifted, 0LL);
    if (shifted < FloorTo40(clipStart) || shifted >= FloorTo40(clipEnd)) continue;
    event.mTime = Ticks(shifted);
    expected.push_back(Print(event));
  }
  Vrae_TimedEventList const list = Retrieve(*chunk.Get(), offset, start, end, clipStart, clipEnd);
  RC_ASSERT(Sorted(Texts(list)) == Sorted(expected));
  for (size_t i = 1; i < list.size(); ++i)
    RC_ASSERT(!Vrae_TimedEvent::PlaybackOrdering(list[i], list[i - 1]));
}

RC_GTEST_PROP(Vrad_Chunk_Properties, BlocksTogetherGiveTheWhole, ()) {
  ChunkPtr const chunk = MakeChunk();
  AnyEvents(*chunk.Get());
  long long const size = *rc::gen::inRange(7, 400);  // ticks, on no sample in particular
  std::vector<std::string> blocks;
  long long const min = Time_Saturating::kMin, max = Time_Saturating::kMax;
  for (long long start = 0; start < 400; start += size)
    for (std::string const & text : Texts(Retrieve(*chunk.Get(), 0, start, start + size, min, max)))
      blocks.push_back(text);
  RC_ASSERT(Sorted(blocks) == Sorted(Texts(Retrieve(*chunk.Get(), 0, 0, 400 + size, min, max))));
}

RC_GTEST_PROP(Vrad_Chunk_Properties, TheLazyWalkGivesTheSameEventsInOrder, ()) {
  ChunkPtr const chunk = MakeChunk();
  AnyEvents(*chunk.Get());
  long long const start = *rc::gen::inRange(0, 300), end = *rc::gen::inRange(0, 320);
  std::vector<Vrad_ExtendedEvent> walked;
  for (Vrad_ChunkExtendedEventsInRangeIter iter(chunk.Get(), Ticks(start), Ticks(end),
                                                Time_TypedLength(0, Time_eType_Ticks), false,
                                                All());
       iter.IsMore(); ++iter)
    walked.push_back(*iter);
  Vrae_TimedEventList const list =
      Retrieve(*chunk.Get(), 0, start, end, Time_Saturating::kMin, Time_Saturating::kMax);
  RC_ASSERT(Sorted(Texts(walked)) == Sorted(Texts(list)));
  for (size_t i = 1; i < walked.size(); ++i)
    RC_ASSERT(!Vrae_TimedEvent::PlaybackOrdering(walked[i], walked[i - 1]));
}

RC_GTEST_PROP(Vrad_Chunk_Properties, WhatIsAddedIsFoundAndWhatIsErasedIsNot, ()) {
  ChunkPtr const chunk = MakeChunk();
  AnyEvents(*chunk.Get());
  Vrad_ExtendedEvent const event = AnyEvent(30);
  chunk->AddEvent(event);
  RC_ASSERT(chunk->IsEventInChunk(event));
  for (int i = 0; i < 50 && chunk->IsEventInChunk(event); ++i)
    chunk->EraseEvent(event);
  RC_ASSERT(!chunk->IsEventInChunk(event));
}

RC_GTEST_PROP(Vrad_Chunk_Properties, UndoAndRedoGoThroughAllStates, ()) {
  Ndo_gManager.ClearHistory();
  {
    ChunkPtr const chunk = MakeChunk(Ndo_Object::kUndoable), other = MakeChunk();
    AnyEvents(*other.Get());
    std::vector<std::string> states(1, FullPrint(*chunk.Get()));
    int const numSteps = *rc::gen::inRange(1, 15);
    for (int step = 0; step < numSteps; ++step) {
      Ndo_Transaction transaction;
      int const numEdits = *rc::gen::inRange(1, 4);
      for (int i = 0; i < numEdits; ++i)
        EditAtRandom(*chunk.Get(), *other.Get());
      // An edit that changes nothing makes no step, and what it printed is the former state.
      if (*rc::gen::weightedElement<bool>({{4, true}, {1, false}}) && transaction.End())
        states.push_back(FullPrint(*chunk.Get()));
    }
    RC_ASSERT(Ndo_gManager.GetNumUndoSteps() == static_cast<int>(states.size()) - 1);
    for (int round = 0; round < 2; ++round) {
      for (size_t i = states.size() - 1; i-- > 0;) {
        RC_ASSERT(Ndo_gManager.Undo());
        RC_ASSERT(FullPrint(*chunk.Get()) == states[i]);
      }
      for (size_t i = 1; i < states.size(); ++i) {
        RC_ASSERT(Ndo_gManager.Redo());
        RC_ASSERT(FullPrint(*chunk.Get()) == states[i]);
      }
    }
  }
  Ndo_gManager.ClearHistory();
}
