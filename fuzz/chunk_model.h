// What two chunks should hold, as plain lists, and the single edits of such a list. For the fuzzers
// of chunks.
#pragma once

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "vrad/vrad_chunk.h"

inline constexpr long long kGrid = 1000;

inline Time_Typed Tick(long long iTicks) {
  return Time_Typed(iTicks, Time_eType_Ticks);
}

inline Time_TypedLength Ticks(long long iTicks) {
  return Time_TypedLength(iTicks, Time_eType_Ticks);
}

// To the nearest point of the grid, ties upward.
inline long long Snapped(long long iTicks) {
  long long const shifted = iTicks + kGrid / 2;
  long long const rest = shifted % kGrid;
  return shifted - (rest < 0 ? rest + kGrid : rest);
}

struct ModelEvent {
  long long mTicks;
  Vrae_Event mEvent;
  bool mMuted;  // of notes, like the next
  int mOrigPitch =
      -1;  // travels with the note through all edits, so that alike ones are told apart
};

struct ModelStream {
  Vrae_SubStream mSubStream;
  std::vector<std::pair<long long, int>> mValues;  // by time; the grid may break the order
};

// What a chunk should hold.
struct Model {
  std::vector<ModelEvent> mNotes;       // sorted; of one time in order of arrival
  std::vector<ModelEvent> mMisc;        // sorted; of one time the last to arrive first
  std::map<int, ModelStream> mStreams;  // by index
  bool mIsLocal = true;
};

inline long long TimeOf(ModelEvent const & iEvent) {
  return iEvent.mTicks;
}
inline long long TimeOf(std::pair<long long, int> const & iValue) {
  return iValue.first;
}

// The searches of the stores, probe by probe, which tells where they end in a list out of order.
template <class TIter>
TIter FirstNotBefore(TIter iFirst, TIter iLast, long long iTicks) {
  return std::lower_bound(iFirst, iLast, iTicks, [](auto const & iRecord, long long iTime) {
    return TimeOf(iRecord) < iTime;
  });
}
template <class TIter>
TIter FirstAfter(TIter iFirst, TIter iLast, long long iTicks) {
  return std::upper_bound(iFirst, iLast, iTicks, [](long long iTime, auto const & iRecord) {
    return iTime < TimeOf(iRecord);
  });
}
template <class TList>
auto FirstNotBefore(TList & iList, long long iTicks) {
  return FirstNotBefore(iList.begin(), iList.end(), iTicks);
}
template <class TList>
auto FirstAfter(TList & iList, long long iTicks) {
  return FirstAfter(iList.begin(), iList.end(), iTicks);
}

inline bool IsNote(Vrae_Event const & iEvent) {
  return iEvent.GetType() == Vrae_Event::kNoteWithDuration ||
         iEvent.GetType() == Vrae_Event::kPitchToMIDINoteWithDuration;
}

inline bool IsSysex(Vrae_Event const & iEvent) {
  return iEvent.GetType() == Vrae_Event::kShortSysex || iEvent.GetType() == Vrae_Event::kLongSysex;
}

// In all fields; the operators do not take kind 22.
inline bool AreSame(Vrae_Event const & iA, Vrae_Event const & iB) {
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

inline bool AreSame(ModelEvent const & iA, ModelEvent const & iB) {
  return iA.mTicks == iB.mTicks && iA.mMuted == iB.mMuted && iA.mOrigPitch == iB.mOrigPitch &&
         AreSame(iA.mEvent, iB.mEvent);
}

inline bool AreSame(std::vector<ModelEvent> const & iA, std::vector<ModelEvent> const & iB) {
  return std::equal(iA.begin(), iA.end(), iB.begin(), iB.end(),
                    [](ModelEvent const & a, ModelEvent const & b) { return AreSame(a, b); });
}

inline bool AreSame(Model const & iA, Model const & iB) {
  return AreSame(iA.mNotes, iB.mNotes) && AreSame(iA.mMisc, iB.mMisc) &&
         iA.mIsLocal == iB.mIsLocal &&
         std::equal(iA.mStreams.begin(), iA.mStreams.end(), iB.mStreams.begin(), iB.mStreams.end(),
                    [](auto const & a, auto const & b) {
                      return a.first == b.first && a.second.mValues == b.second.mValues;
                    });
}

// The first note that a search by time, pitch and on velocity finds.
inline std::vector<ModelEvent>::iterator FindNote(Model & ioModel, ModelEvent const & iNote) {
  Vrae_NoteWithDurationEvent const & wanted = iNote.mEvent.AsNoteWithDuration();
  return std::find_if(ioModel.mNotes.begin(), ioModel.mNotes.end(), [&](ModelEvent const & note) {
    Vrae_NoteWithDurationEvent const & event = note.mEvent.AsNoteWithDuration();
    return note.mTicks == iNote.mTicks && event.GetPitch() == wanted.GetPitch() &&
           event.GetOnVelocity() == wanted.GetOnVelocity();
  });
}

inline std::vector<ModelEvent>::iterator FindMisc(Model & ioModel, ModelEvent const & iEvent) {
  return std::find_if(ioModel.mMisc.begin(), ioModel.mMisc.end(), [&](ModelEvent const & event) {
    return event.mTicks == iEvent.mTicks && event.mEvent == iEvent.mEvent;
  });
}

inline void Add(Model & ioModel, ModelEvent const & iEvent) {
  if (IsNote(iEvent.mEvent)) {
    ioModel.mNotes.insert(FirstAfter(ioModel.mNotes, iEvent.mTicks), iEvent);
  } else if (IsSysex(iEvent.mEvent)) {
    ioModel.mMisc.insert(FirstNotBefore(ioModel.mMisc, iEvent.mTicks), iEvent);
  } else if (Vrae_SubStream const subStream(iEvent.mEvent); !subStream.IsNull()) {
    ModelStream & stream = ioModel.mStreams[subStream.GetIndex()];
    stream.mSubStream = subStream;
    std::pair<long long, int> const value(iEvent.mTicks,
                                          subStream.GetValueFromEvent(iEvent.mEvent));
    auto const place = FirstNotBefore(stream.mValues, iEvent.mTicks);
    if (place != stream.mValues.end() && place->first == iEvent.mTicks)
      place->second = value.second;
    else
      stream.mValues.insert(place, value);
  }
}

inline void Erase(Model & ioModel, ModelEvent const & iEvent) {
  if (iEvent.mEvent.GetType() == Vrae_Event::kNoteWithDuration) {
    auto const note = FindNote(ioModel, iEvent);
    if (note != ioModel.mNotes.end()) ioModel.mNotes.erase(note);
  } else if (IsSysex(iEvent.mEvent)) {
    auto const misc = FindMisc(ioModel, iEvent);
    if (misc != ioModel.mMisc.end()) ioModel.mMisc.erase(misc);
  } else if (Vrae_SubStream const subStream(iEvent.mEvent); !subStream.IsNull()) {
    auto const stream = ioModel.mStreams.find(subStream.GetIndex());
    if (stream == ioModel.mStreams.end()) return;
    auto & values = stream->second.mValues;
    values.erase(FirstNotBefore(values, iEvent.mTicks), FirstNotBefore(values, iEvent.mTicks + 1));
    if (stream->second.mValues.empty()) ioModel.mStreams.erase(stream);
  }
}

// Leaves an empty stream where one is asked about, as the chunk does.
inline bool Contains(Model & ioModel, ModelEvent const & iEvent) {
  if (IsNote(iEvent.mEvent)) {
    return iEvent.mEvent.GetType() == Vrae_Event::kNoteWithDuration &&
           FindNote(ioModel, iEvent) != ioModel.mNotes.end();
  }
  if (IsSysex(iEvent.mEvent)) return FindMisc(ioModel, iEvent) != ioModel.mMisc.end();
  Vrae_SubStream const subStream(iEvent.mEvent);
  if (subStream.IsNull()) return false;
  ModelStream & stream = ioModel.mStreams[subStream.GetIndex()];
  stream.mSubStream = subStream;
  auto const value = FirstNotBefore(stream.mValues, iEvent.mTicks);
  return value != stream.mValues.end() && value->first == iEvent.mTicks &&
         subStream.MakeEvent(value->second) == iEvent.mEvent;
}
