// What the bulk edits of a chunk should do to plain lists, each step as slowly and plainly as
// possible. Lengths are in ticks.
#pragma once

#include <algorithm>
#include <cstddef>
#include <set>
#include <utility>
#include <vector>

#include "fuzz/chunk_model.h"

inline constexpr long long kNearBoundary = 2 * kGrid;

// What an offset does beside its count.
struct ModelOffset {
  long long mTicks = 0;
  bool mIsInSamples = false;
  bool mSnaps = false;
};

inline long long Shifted(long long iTicks, ModelOffset const & iOffset) {
  return iOffset.mSnaps ? Snapped(iTicks + iOffset.mTicks) : iTicks + iOffset.mTicks;
}

inline Vrae_NoteWithDurationEvent & NoteOf(ModelEvent & ioEvent) {
  return ioEvent.mEvent.AsNoteWithDuration();
}
inline int PitchOf(ModelEvent const & iEvent) {
  return iEvent.mEvent.AsNoteWithDuration().GetPitch();
}
inline long long DurationOf(ModelEvent const & iEvent) {
  return iEvent.mEvent.AsNoteWithDuration().GetDuration().AsInt64();
}
inline long long EndOf(ModelEvent const & iEvent) {
  return iEvent.mTicks + DurationOf(iEvent);
}
inline void SetDuration(ModelEvent & ioEvent, long long iTicks) {
  NoteOf(ioEvent).SetDuration(Ticks(iTicks));
}

typedef std::vector<ModelEvent> ModelEvents;
typedef std::vector<std::pair<long long, int>> ModelValues;

// The records of a range, found as the stores find them.
template <class TList>
TList InRange(TList const & iList, long long iStart, long long iEnd) {
  if (iStart >= iEnd) return TList();
  auto const first = FirstNotBefore(iList, iStart);
  return TList(first, FirstNotBefore(first, iList.end(), iEnd));
}

template <class TList>
void EraseInRange(TList & ioList, long long iStart, long long iEnd) {
  auto const first = FirstNotBefore(ioList, iStart), last = FirstNotBefore(ioList, iEnd);
  if (first < last) ioList.erase(first, last);
}

// Notes

inline void OffsetNoteStarts(ModelEvents & ioNotes, ModelOffset iOffset) {
  if (iOffset.mSnaps && !iOffset.mIsInSamples) iOffset.mTicks = Snapped(iOffset.mTicks);
  iOffset.mSnaps = iOffset.mSnaps && iOffset.mIsInSamples;
  ModelEvents moved(ioNotes);
  for (ModelEvent & note : moved) {
    long long const start = Shifted(note.mTicks, iOffset), duration = EndOf(note) - start;
    if (duration <= 1) return;
    note.mTicks = start;
    SetDuration(note, duration);
  }
  ioNotes = moved;
}

inline void OffsetNoteDurations(ModelEvents & ioNotes, long long iTicks) {
  for (ModelEvent & note : ioNotes)
    if (DurationOf(note) + iTicks >= 1) SetDuration(note, DurationOf(note) + iTicks);
}

inline void OffsetNotePitches(ModelEvents & ioNotes, long long iTicks) {
  int const step = iTicks >= 1 ? -1 : 1;
  for (ModelEvent const & note : ioNotes)
    if (PitchOf(note) + step < 0 || PitchOf(note) + step > 127) return;
  for (ModelEvent & note : ioNotes)
    NoteOf(note).SetPitch(static_cast<signed char>(PitchOf(note) + step));
}

inline void OffsetNotes(ModelEvents & ioNotes, ModelOffset const & iOffset, int iMode) {
  switch (iMode) {
  case kNudgeStarts:
    return OffsetNoteStarts(ioNotes, iOffset);
  case kNudgeDurations:
    return OffsetNoteDurations(ioNotes, iOffset.mTicks);
  case kNudgePitches:
    return OffsetNotePitches(ioNotes, iOffset.mTicks);
  default:
    for (ModelEvent & note : ioNotes)
      note.mTicks = Shifted(note.mTicks, iOffset);
  }
}

inline void MergeNotes(Model & ioModel, ModelEvents const & iAdded) {
  for (ModelEvent const & note : iAdded)
    Add(ioModel, note);
}

// Of two lists that are walked by time, the notes that stay, overlaps of one pitch cut or dropped.
class OverlapMerge {
public:
  OverlapMerge(ModelEvents const & iOwn, ModelEvents const & iAdded)
      : mOwn(iOwn), mAdded(iAdded), mIsMarked(iOwn.size(), false) {
    size_t own = 0, added = 0;
    while (own < mOwn.size() || added < mAdded.size()) {
      bool const isOwnFirst =
          added == mAdded.size() || (own < mOwn.size() && mOwn[own].mTicks < mAdded[added].mTicks);
      if (!isOwnFirst)
        TakeAdded(added++, own);
      else if (!mIsMarked[own++])
        TakeOwn(own - 1, added);
    }
  }

  ModelEvents mResult;

private:
  void TakeOwn(size_t iOwn, size_t iFirstAdded) {
    ModelEvent & own = mOwn[iOwn];
    long long const end = EndOf(own);
    bool isKept = true;
    for (size_t i = iFirstAdded; i < mAdded.size() && mAdded[i].mTicks < end; ++i) {
      if (PitchOf(mAdded[i]) != PitchOf(own)) continue;
      long long const until = mAdded[i].mTicks - own.mTicks;
      if (until > DurationOf(own) / 4)
        SetDuration(own, until);
      else
        isKept = false;
    }
    if (isKept) mResult.push_back(own);
  }

  void TakeAdded(size_t iAdded, size_t iFirstOwn) {
    ModelEvent & added = mAdded[iAdded];
    long long const end = EndOf(added);
    for (size_t i = iFirstOwn; i < mOwn.size() && mOwn[i].mTicks < end; ++i) {
      if (mIsMarked[i] || PitchOf(mOwn[i]) != PitchOf(added)) continue;
      long long const until = mOwn[i].mTicks - added.mTicks;
      if (until > DurationOf(added) / 2 && end - mOwn[i].mTicks < DurationOf(mOwn[i]) / 4)
        SetDuration(added, until);
      else
        mIsMarked[i] = true;
    }
    mResult.push_back(added);
  }

  ModelEvents mOwn, mAdded;
  std::vector<bool> mIsMarked;
};

inline void EraseNotes(Model & ioModel, ModelEvents const & iGone) {
  for (ModelEvent const & gone : iGone) {
    ModelEvents & notes = ioModel.mNotes;
    auto const note = std::find_if(notes.begin(), notes.end(), [&](ModelEvent const & one) {
      return one.mTicks == gone.mTicks && one.mEvent == gone.mEvent;
    });
    if (note != notes.end()) notes.erase(note);
  }
}

// Where a note goes that is moved onto the grid; a boundary that is near takes it along.
inline long long LegacyPlace(long long iTicks, long long iLength,
                             std::set<long long> const & iBoundaries) {
  auto const toGrid = [](long long iTime) { return iTime / kGrid * kGrid; };
  bool hasFormer = false, hasNext = false;
  long long former = 0, next = 0;
  for (long long boundary : iBoundaries) {
    if (boundary <= iTicks && iTicks - boundary < kNearBoundary) {
      hasFormer = true;
      former = boundary;
    }
    if (boundary > iTicks && boundary - iTicks < kNearBoundary && !hasNext) {
      hasNext = true;
      next = boundary;
    }
  }
  // A former boundary that is near but is not the last one cannot be: the last one is nearer.
  long long const behind = toGrid(former - iLength) + toGrid(iTicks - former);
  long long const before = toGrid(next - iLength) - toGrid(next - iTicks + kGrid - 1);
  long long place = toGrid(iTicks - iLength);
  if (hasFormer && hasNext)
    place = std::max(toGrid(former - iLength), std::min(behind, before));
  else if (hasFormer)
    place = behind;
  else if (hasNext)
    place = before;
  return std::max(place, -1LL);
}

inline void MoveNotes(Model & ioModel, long long iLength, std::set<long long> const & iBoundaries) {
  ModelEvents notes;
  notes.swap(ioModel.mNotes);
  for (ModelEvent & note : notes) {
    note.mTicks = LegacyPlace(note.mTicks, iLength, iBoundaries);
    Add(ioModel, note);
  }
}

// Sysex

inline void AddMisc(ModelEvents & ioEvents, ModelEvents iAdded, long long iStart, long long iEnd,
                    ModelOffset const & iOffset) {
  if (iAdded.empty()) return;
  auto const first = FirstNotBefore(ioEvents, iStart + iOffset.mTicks);
  auto const last = FirstAfter(first, ioEvents.end(), iEnd + iOffset.mTicks);
  for (ModelEvent & event : iAdded)
    event.mTicks = Shifted(event.mTicks, iOffset);
  ModelEvents merged(ioEvents.begin(), first);
  std::merge(iAdded.begin(), iAdded.end(), first, last, std::back_inserter(merged),
             [](ModelEvent const & iA, ModelEvent const & iB) { return iA.mTicks < iB.mTicks; });
  merged.insert(merged.end(), last, ioEvents.end());
  ioEvents = merged;
}

inline void EraseMisc(ModelEvents & ioEvents, ModelEvents const & iGone, long long iOffset) {
  if (iGone.empty()) return;
  size_t const first = static_cast<size_t>(
      FirstNotBefore(ioEvents, iGone.front().mTicks + iOffset) - ioEvents.begin());
  std::set<size_t> found;
  size_t cursor = first;
  for (ModelEvent const & gone : iGone) {
    long long const time = gone.mTicks + iOffset;
    while (cursor < ioEvents.size() && ioEvents[cursor].mTicks < time)
      ++cursor;
    if (cursor == ioEvents.size()) break;
    for (size_t i = cursor; i < ioEvents.size() && ioEvents[i].mTicks == time; ++i)
      if (ioEvents[i].mEvent == gone.mEvent && found.insert(i).second) break;
  }
  for (auto index = found.rbegin(); index != found.rend(); ++index)
    ioEvents.erase(ioEvents.begin() + static_cast<std::ptrdiff_t>(*index));
}

// Both bounds included.
inline void EraseMiscRange(ModelEvents & ioEvents, long long iStart, long long iEnd) {
  auto const first = FirstNotBefore(ioEvents, iStart), last = FirstAfter(ioEvents, iEnd);
  if (first < last) ioEvents.erase(first, last);
}

// Continuous values

inline bool HasValueIn(ModelValues const & iValues, long long iStart, long long iEnd) {
  auto const last = FirstNotBefore(iValues, iEnd);
  return last != iValues.begin() && std::prev(last)->first >= iStart;
}

inline void AddValues(ModelValues & ioValues, ModelValues iAdded, long long iStart, long long iEnd,
                      ModelOffset const & iOffset) {
  if (iAdded.empty()) return;
  auto const first = FirstNotBefore(ioValues, iStart + iOffset.mTicks);
  auto const last = FirstAfter(first, ioValues.end(), iEnd + iOffset.mTicks);
  for (auto & value : iAdded)
    value.first = Shifted(value.first, iOffset);
  iAdded.insert(iAdded.end(), first, last);
  std::stable_sort(iAdded.begin(), iAdded.end(),
                   [](auto const & iA, auto const & iB) { return iA.first < iB.first; });
  ModelValues merged(ioValues.begin(), first);
  for (size_t i = 0; i < iAdded.size(); ++i)
    if (i == 0 || iAdded[i - 1].first != iAdded[i].first) merged.push_back(iAdded[i]);
  merged.insert(merged.end(), last, ioValues.end());
  ioValues = merged;
}

inline void EraseValues(ModelValues & ioValues, ModelValues const & iGone, long long iOffset) {
  if (iGone.empty()) return;
  auto next = FirstNotBefore(ioValues, iGone.front().first + iOffset);
  for (auto gone = iGone.begin(); gone != iGone.end() && next != ioValues.end();) {
    long long const time = gone->first + iOffset;
    if (next->first < time) {
      ++next;
    } else if (next->first > time) {
      ++gone;
    } else {
      next = next->second == gone->second ? ioValues.erase(next) : next + 1;
      ++gone;
    }
  }
}
