#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "foundation/time_convert.h"
#include "ndo/ndo_manager.h"
#include "support/plain_notelist.h"
#include "vrad/vrad_notelist.h"

namespace {

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
