// A note list as it is told: vectors, walked note by note. What properties compare the real one
// with.
#pragma once

#include <rapidcheck.h>

#include <algorithm>
#include <string>
#include <vector>

#include "vrad/vrad_notelist.h"

typedef Vrad_NoteListBase_Note Note;
typedef std::vector<Note> Notes;

inline std::string Print(Note const & iNote) {
  auto const unit = [](Time_EType iType) { return iType == Time_eType_Ticks ? "t" : "s"; };
  Time_TypedLength const duration = iNote.mEvent.GetDuration();
  return std::to_string(iNote.mEvent.GetPitch()) + "/" +
         std::to_string(iNote.mEvent.GetOnVelocity()) + "@" +
         std::to_string(iNote.mTime.AsInt64()) + unit(iNote.mTime.GetType()) + "+" +
         std::to_string(duration.AsInt64()) + unit(duration.GetType()) + " ";
}

inline std::string Print(Notes const & iNotes) {
  std::string result;
  for (Note const & note : iNotes)
    result += Print(note);
  return result;
}

inline bool AreAlike(Note const & iA, Note const & iB) {
  Time_TypedLength const a = iA.mEvent.GetDuration(), b = iB.mEvent.GetDuration();
  return iA.mTime.AsInt64() == iB.mTime.AsInt64() && iA.mTime.GetType() == iB.mTime.GetType() &&
         iA.mEvent.GetPitch() == iB.mEvent.GetPitch() &&
         iA.mEvent.GetOnVelocity() == iB.mEvent.GetOnVelocity() && a.AsInt64() == b.AsInt64() &&
         a.GetType() == b.GetType() &&
         iA.mQuantizeTimeDelta.AsInt64() == iB.mQuantizeTimeDelta.AsInt64();
}

// Prints only what differs: texts cost more than all else here.
inline void ExpectSame(Notes const & iReal, Notes const & iPlain) {
  if (!std::equal(iReal.begin(), iReal.end(), iPlain.begin(), iPlain.end(), AreAlike)) {
    RC_FAIL("is " + Print(iReal) + "\nnot " + Print(iPlain));
  }
}

inline Time_Typed EndOf(Note const & iNote) {
  return iNote.mTime + iNote.mEvent.GetDuration();
}

template <class TIsBefore>
int FindFirstNot(Notes const & iNotes, TIsBefore iIsBefore) {
  size_t first = 0;
  size_t num = iNotes.size();
  while (num > 0) {
    size_t const half = num / 2;
    if (iIsBefore(iNotes[first + half].mTime)) {
      first += half + 1;
      num -= half + 1;
    } else {
      num = half;
    }
  }
  return static_cast<int>(first);
}

// A note list as it is told: vectors, walked note by note.
class PlainList {
public:
  int LowerBound(Time_Typed iTime) const {
    return FindFirstNot(mNotes, [&](Time_Typed iOther) { return iOther < iTime; });
  }
  int UpperBound(Time_Typed iTime) const {
    return FindFirstNot(mNotes, [&](Time_Typed iOther) { return !(iTime < iOther); });
  }
  Time_Typed TimeOfFirst() const {
    return mNotes.empty() ? Time_Typed(0, Time_eType_Ticks) : mNotes[0].mTime;
  }

  void AddSorted(Note const & iNote) {
    bool const isLate = mNotes.empty() || !(iNote.mTime < mNotes.back().mTime);
    auto const at = isLate ? mNotes.end() : mNotes.begin() + UpperBound(iNote.mTime);
    mNotes.insert(at, iNote);
  }
  int Find(Time_Typed iTime, Vrae_NoteWithDurationEvent const & iEvent) const {
    for (size_t i = static_cast<size_t>(LowerBound(iTime)); i < mNotes.size(); ++i) {
      if (!(mNotes[i].mTime == iTime)) return -1;
      if (mNotes[i].mEvent.GetPitch() == iEvent.GetPitch() &&
          mNotes[i].mEvent.GetOnVelocity() == iEvent.GetOnVelocity())
        return static_cast<int>(i);
    }
    return -1;
  }
  Notes InRange(Time_Typed iStart, Time_Typed iEnd) const { return From(LowerBound(iStart), iEnd); }
  // Up to the first note that starts after the last one, where tempo changes broke the order.
  inline Notes All() const {
    if (mNotes.empty()) return mNotes;
    Time_Typed end = mNotes.back().mTime;
    return From(0, ++end);
  }

  Notes mNotes;

private:
  Notes From(int iFirst, Time_Typed iEnd) const {
    Notes result;
    for (size_t i = static_cast<size_t>(iFirst); i < mNotes.size(); ++i) {
      if (!(mNotes[i].mTime < iEnd)) break;
      result.push_back(mNotes[i]);
    }
    return result;
  }
};

class PlainNoteList {
public:
  bool IsLong(Vrae_NoteWithDurationEvent const & iEvent) const {
    return iEvent.GetDuration() >= Threshold(iEvent.GetDuration().GetType());
  }
  Time_TypedLength Threshold(Time_EType iType) const {
    return iType == Time_eType_Ticks ? mTicks : mSamples;
  }
  void Add(Note const & iNote) {
    mMain.AddSorted(iNote);
    if (IsLong(iNote.mEvent)) mLong.AddSorted(iNote);
  }
  void Erase(Time_Typed iTime, Vrae_NoteWithDurationEvent const & iEvent) {
    int const at = mMain.Find(iTime, iEvent);
    if (at < 0) return;
    if (IsLong(mMain.mNotes[static_cast<size_t>(at)].mEvent)) EraseLong(iTime, iEvent);
    mMain.mNotes.erase(mMain.mNotes.begin() + at);
  }
  void Change(size_t iIndex, Vrae_NoteWithDurationEvent const & iNew) {
    Note const former = mMain.mNotes[iIndex];
    bool const wasLong = IsLong(former.mEvent), isLong = IsLong(iNew);
    if (wasLong && isLong) {
      int const at = mLong.Find(former.mTime, former.mEvent);
      if (at >= 0) mLong.mNotes[static_cast<size_t>(at)].mEvent = iNew;
    } else if (wasLong) {
      EraseLong(former.mTime, former.mEvent);
    } else if (isLong) {
      mLong.AddSorted(former);
    }
    mMain.mNotes[iIndex].mEvent = iNew;
  }

  Notes Sustaining(Time_Typed iTime) const {
    Time_Typed const split =
        iTime - Threshold(iTime.GetType()) + Time_TypedLength(2, iTime.GetType());
    Notes candidates = mLong.InRange(mLong.TimeOfFirst(), split);
    Notes const rest = mMain.InRange(split, iTime);
    candidates.insert(candidates.end(), rest.begin(), rest.end());
    Notes result;
    for (Note const & note : candidates)
      if (EndOf(note) > iTime) result.push_back(note);
    return result;
  }
  Time_Typed EarliestRelease(Time_Typed iStart, Time_Typed iEnd) const {
    Time_Typed result = iEnd;
    for (Note const & note : mMain.mNotes) {
      if (!(note.mTime < iEnd)) break;
      if (EndOf(note) > iStart && EndOf(note) < iEnd && EndOf(note) < result) result = EndOf(note);
    }
    return result;
  }
  Time_Typed LastRelease(Time_Typed iStart, Time_Typed iEnd) const {
    Time_Typed result = iStart;
    for (Note const & note : mMain.mNotes) {
      if (!(note.mTime < iEnd)) break;
      if (EndOf(note) > iStart && EndOf(note) < iEnd && EndOf(note) > result) result = EndOf(note);
    }
    return result;
  }
  static Time_Typed Latest(PlainList const & iList, Time_Typed iFrom, Time_Typed iStart,
                           Time_Typed iEnd) {
    Time_Typed result = iStart;
    for (Note const & note : iList.InRange(iFrom, iEnd))
      if (EndOf(note) > result) result = EndOf(note);
    return result;
  }
  Time_Typed LatestRelease(Time_Typed iStart, Time_Typed iEnd) const {
    Time_Typed const limit = iEnd - Threshold(iEnd.GetType());
    Time_Typed const ofAll = Latest(mMain, iStart < limit ? limit : iStart, iStart, iEnd);
    Time_Typed const ofLong = Latest(mLong, iStart, iStart, iEnd);
    return ofLong > ofAll ? ofLong : ofAll;
  }

  PlainList mMain, mLong;
  Time_TypedLength mTicks{15360000, Time_eType_Ticks};
  Time_TypedLength mSamples{48000, Time_eType_Samples};

private:
  void EraseLong(Time_Typed iTime, Vrae_NoteWithDurationEvent const & iEvent) {
    int const at = mLong.Find(iTime, iEvent);
    if (at >= 0) mLong.mNotes.erase(mLong.mNotes.begin() + at);
  }
};

Notes All(Vrad_NoteListBase & iList) {
  Notes result;
  for (Vrad_NoteListBase::FullNotesInRangeIter iter(&iList); iter.IsMore(); ++iter)
    result.push_back(*iter);
  return result;
}
