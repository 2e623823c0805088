#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "foundation/time_convert.h"
#include "ndo/ndo_manager.h"
#include "vrad/vrad_notelist.h"

namespace {

typedef Vrad_NoteListBase_Note Note;
typedef std::vector<Note> Notes;

std::string Print(Note const & iNote) {
  auto const unit = [](Time_EType iType) { return iType == Time_eType_Ticks ? "t" : "s"; };
  Time_TypedLength const duration = iNote.mEvent.GetDuration();
  return std::to_string(iNote.mEvent.GetPitch()) + "/" +
         std::to_string(iNote.mEvent.GetOnVelocity()) + "@" +
         std::to_string(iNote.mTime.AsInt64()) + unit(iNote.mTime.GetType()) + "+" +
         std::to_string(duration.AsInt64()) + unit(duration.GetType()) + " ";
}

std::string Print(Notes const & iNotes) {
  std::string result;
  for (Note const & note : iNotes)
    result += Print(note);
  return result;
}

bool AreAlike(Note const & iA, Note const & iB) {
  Time_TypedLength const a = iA.mEvent.GetDuration(), b = iB.mEvent.GetDuration();
  return iA.mTime.AsInt64() == iB.mTime.AsInt64() && iA.mTime.GetType() == iB.mTime.GetType() &&
         iA.mEvent.GetPitch() == iB.mEvent.GetPitch() &&
         iA.mEvent.GetOnVelocity() == iB.mEvent.GetOnVelocity() && a.AsInt64() == b.AsInt64() &&
         a.GetType() == b.GetType();
}

// Prints only what differs: texts cost more than all else here.
void ExpectSame(Notes const & iReal, Notes const & iPlain) {
  if (!std::equal(iReal.begin(), iReal.end(), iPlain.begin(), iPlain.end(), AreAlike)) {
    RC_FAIL("is " + Print(iReal) + "\nnot " + Print(iPlain));
  }
}

Time_Typed EndOf(Note const & iNote) {
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
  Notes All() const {
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

Notes InRange(Vrad_NoteListBase & iList, Time_Typed iStart, Time_Typed iEnd) {
  Notes result;
  for (Vrad_NoteListBase::FullNotesInRangeIter iter(&iList, iStart, iEnd); iter.IsMore(); ++iter)
    result.push_back(*iter);
  return result;
}

Notes Sustaining(Vrad_NoteListBase & iList, Time_Typed iTime) {
  Notes result;
  for (Vrad_NoteListBase::FullSustainingNoteIter iter(&iList, iTime); iter.IsMore(); ++iter)
    result.push_back(*iter);
  return result;
}

// What units times and durations of a script have, and the times it asks about.
enum EUnits { kTicks, kSamples, kMixedQuestions, kMixedDurations, kMixedTimes };

class Script {
public:
  explicit Script(EUnits iUnits) : mUnits(iUnits) {
    if (*rc::gen::arbitrary<bool>()) ShortenThresholds();
  }
  ~Script() {
    Time_Convert::GetDefaultTempoMap().Reset(120);
    Ndo_gManager.ClearHistory();
  }

  void Step() {
    int const kind = *rc::gen::inRange(0, 13);
    if (kind == 10) return UndoOrRedo(true);
    if (kind == 11) return UndoOrRedo(false);
    if (kind == 12) return ChangeTempo();
    mBefore.push_back(mPlain);
    Ndo_gManager.BeginTransaction();
    if (kind < 5)
      AddSome();
    else if (kind < 7)
      EraseSome();
    else if (kind < 9)
      ChangeOne();
    else
      Empty();
    if (!Ndo_gManager.EndTransaction()) {
      mBefore.pop_back();
    } else {
      mAfter.clear();
    }
  }

  void Check() {
    ExpectSame(All(mReal), mPlain.mMain.All());
    Time_Typed const a = AnyTime(AsksMixed()), b = AnyTime(AsksMixed());
    ExpectSame(InRange(mReal, a, b), mPlain.mMain.InRange(a, b));
    ExpectSame(Sustaining(mReal, a), mPlain.Sustaining(a));
    Expect(mReal.GetEarliestReleaseTimeForNotesInRange(a, b), mPlain.EarliestRelease(a, b));
    Expect(mReal.GetLastReleaseTimeForNotesInRange(a, b), mPlain.LastRelease(a, b));
    Expect(mReal.GetLatestReleaseTimeForNotesInRange(a, b), mPlain.LatestRelease(a, b));
    RC_ASSERT(mReal.Size() == mPlain.mMain.mNotes.size());
    ExpectSame(All(*mReal.GetLongNoteList()), mPlain.mLong.All());
    RC_ASSERT(mReal.GetLongNoteList()->Size() == mPlain.mLong.mNotes.size());
    CheckEarliest();
  }

private:
  static void Expect(Time_Typed iReal, Time_Typed iPlain) {
    RC_ASSERT(iReal.AsInt64() == iPlain.AsInt64());
    RC_ASSERT(iReal.GetType() == iPlain.GetType());
  }
  void CheckEarliest() {
    Time_Typed earliest(77, Time_eType_Ticks), plain = earliest;
    mReal.EarliestTime(earliest);
    if (!mPlain.mMain.mNotes.empty()) plain = mPlain.mMain.mNotes[0].mTime;
    for (Note const & note : mPlain.mMain.mNotes)
      if (note.mTime < plain) plain = note.mTime;
    Expect(earliest, plain);
  }
  bool AsksMixed() const { return mUnits == kMixedTimes || mUnits == kMixedQuestions; }
  Time_EType AnyUnit(bool iMayMix) const {
    if (mUnits == kSamples) return Time_eType_Samples;
    return iMayMix && *rc::gen::inRange(0, 3) == 0 ? Time_eType_Samples : Time_eType_Ticks;
  }
  Time_Typed AnyTime(bool iMayMix) const {
    Time_EType const unit = AnyUnit(iMayMix);
    int const count = *rc::gen::inRange(-20, 2000);
    bool const isShared = iMayMix && unit == Time_eType_Samples;  // both units in one stretch
    return Time_Typed(isShared ? count / 40 : count, unit);
  }
  Vrae_NoteWithDurationEvent AnyEvent() const {
    bool const isLong = *rc::gen::inRange(0, 5) == 0;
    Time_TypedLength const duration(*rc::gen::inRange(1, isLong ? 1500 : 60),
                                    AnyUnit(mUnits == kMixedDurations || mUnits == kMixedTimes));
    return Vrae_NoteWithDurationEvent(static_cast<signed char>(*rc::gen::inRange(60, 64)), duration,
                                      static_cast<signed char>(*rc::gen::inRange(1, 3)), 64);
  }
  void ShortenThresholds() {
    mPlain.mTicks = Time_TypedLength(*rc::gen::inRange(1, 300), Time_eType_Ticks);
    mPlain.mSamples = Time_TypedLength(*rc::gen::inRange(1, 300), Time_eType_Samples);
    mReal.SetLongNoteDuration(mPlain.mTicks);
    mReal.SetLongNoteDuration(mPlain.mSamples);
  }

  void AddSome() {
    for (int i = *rc::gen::inRange(1, 60); i > 0; --i) {
      Note const note(AnyTime(mUnits == kMixedTimes), AnyEvent());
      mReal.AddNote(note);
      mPlain.Add(note);
    }
  }
  void EraseSome() {
    for (int i = *rc::gen::inRange(1, 20); i > 0 && !mPlain.mMain.mNotes.empty(); --i) {
      Note const note = mPlain.mMain.mNotes[AnyIndex()];
      mReal.EraseNote(Vrae_TimedEvent(note.mTime, note.mEvent));
      mPlain.Erase(note.mTime, note.mEvent);
    }
  }
  void ChangeOne() {
    if (mPlain.mMain.mNotes.empty()) return;
    Note const note = mPlain.mMain.mNotes[AnyIndex()];
    Vrae_NoteWithDurationEvent const event = AnyEvent();
    int const at = mPlain.mMain.Find(note.mTime, note.mEvent);
    if (at < 0) return;
    mReal.ChangeNote(note.mTime, note.mEvent, event);
    mPlain.Change(static_cast<size_t>(at), event);
  }
  void Empty() {
    if (*rc::gen::inRange(0, 4) != 0) return;
    mReal.Clear();
    mPlain.mMain.mNotes.clear();
    mPlain.mLong.mNotes.clear();
  }
  void UndoOrRedo(bool iIsUndo) {
    std::vector<PlainNoteList> & from = iIsUndo ? mBefore : mAfter;
    std::vector<PlainNoteList> & to = iIsUndo ? mAfter : mBefore;
    bool const isDone = iIsUndo ? Ndo_gManager.Undo() : Ndo_gManager.Redo();
    RC_ASSERT(isDone == !from.empty());
    if (from.empty()) return;
    to.push_back(mPlain);
    mPlain = from.back();
    from.pop_back();
  }
  // Makes lists of mixed units unsorted.
  void ChangeTempo() {
    if (mUnits != kTicks) Time_Convert::GetDefaultTempoMap().Reset(*rc::gen::inRange(20, 900));
  }
  size_t AnyIndex() const { return *rc::gen::inRange<size_t>(0, mPlain.mMain.mNotes.size()); }

  EUnits mUnits;
  Vrad_NoteList mReal{Ndo_Object::kUndoable, false};
  PlainNoteList mPlain;
  std::vector<PlainNoteList> mBefore, mAfter;
};

void Run(EUnits iUnits) {
  Script script(iUnits);
  for (int i = *rc::gen::inRange(1, 60); i > 0; --i) {
    script.Step();
    script.Check();
  }
}

}  // namespace

RC_GTEST_PROP(Vrad_NoteList_Edits, AnyScriptInTicksIsThePlainWalk, ()) {
  Run(kTicks);
}
RC_GTEST_PROP(Vrad_NoteList_Edits, AnyScriptInSamplesIsThePlainWalk, ()) {
  Run(kSamples);
}
RC_GTEST_PROP(Vrad_NoteList_Edits, AnyScriptInTicksAskedInBothUnitsIsThePlainWalk, ()) {
  Run(kMixedQuestions);
}
RC_GTEST_PROP(Vrad_NoteList_Edits, AnyScriptWithMixedDurationsIsThePlainWalk, ()) {
  Run(kMixedDurations);
}
RC_GTEST_PROP(Vrad_NoteList_Edits, AnyScriptWithMixedTimesIsThePlainWalk, ()) {
  Run(kMixedTimes);
}
