// Edits of many notes at once against the same edits done note by note, step by step.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "foundation/ticktimesmatter.h"
#include "foundation/time_convert.h"
#include "ndo/ndo_manager.h"
#include "support/plain_notelist.h"
#include "vrad/vrad_notelist.h"

namespace {

Time_Typed Shifted(Time_Typed iTime, Time_TypedLength iLength) {
  return Time_Convert::sTimeConverter->AddLength(iTime, iLength);
}

void MergePlainly(PlainList & ioOwn, Notes const & iAdded) {
  if (iAdded.empty()) return;
  int const last = ioOwn.UpperBound(iAdded.back().mTime);
  int const first = std::min(ioOwn.LowerBound(iAdded.front().mTime), last);
  Notes & own = ioOwn.mNotes;
  Notes merged;
  size_t a = static_cast<size_t>(first), b = 0;
  size_t const end = static_cast<size_t>(last);
  while (a < end || b < iAdded.size()) {
    bool const isOther = b < iAdded.size() && (a == end || iAdded[b].mTime < own[a].mTime);
    merged.push_back(isOther ? iAdded[b++] : own[a++]);
  }
  own.erase(own.begin() + first, own.begin() + last);
  own.insert(own.begin() + first, merged.begin(), merged.end());
}

bool KeepsOwn(Note & ioOwn, Notes const & iAdded, size_t iFirst) {
  bool isKept = true;
  Time_Typed const end = EndOf(ioOwn);
  for (size_t j = iFirst; j < iAdded.size() && iAdded[j].mTime < end; ++j) {
    if (iAdded[j].mEvent.GetPitch() != ioOwn.mEvent.GetPitch()) continue;
    Time_TypedLength const length = iAdded[j].mTime - ioOwn.mTime;
    if (length > ioOwn.mEvent.GetDuration() / 4)
      ioOwn.mEvent.SetDuration(length);
    else
      isKept = false;
  }
  return isKept;
}

void TakeAdded(Note & ioAdded, Notes & ioOwn, size_t iFirst) {
  Time_Typed const end = EndOf(ioAdded);
  for (size_t j = iFirst; j < ioOwn.size() && ioOwn[j].mTime < end; ++j) {
    Note & own = ioOwn[j];
    if (own.mEvent.GetOnVelocity() == 0) continue;
    if (own.mEvent.GetPitch() != ioAdded.mEvent.GetPitch()) continue;
    Time_TypedLength const length = own.mTime - ioAdded.mTime;
    if (length > ioAdded.mEvent.GetDuration() / 2 && end - own.mTime < own.mEvent.GetDuration() / 4)
      ioAdded.mEvent.SetDuration(length);
    else
      own.mEvent.MarkForDeletion();
  }
}

void MergeAvoiding(Notes & ioOwn, Notes & ioAdded) {
  Notes result;
  size_t a = 0, b = 0;
  while (a < ioOwn.size() || b < ioAdded.size()) {
    if (a == ioOwn.size()) {
      result.push_back(ioAdded[b++]);
    } else if (b == ioAdded.size()) {
      if (ioOwn[a].mEvent.GetOnVelocity() != 0) result.push_back(ioOwn[a]);
      ++a;
    } else if (ioOwn[a].mTime < ioAdded[b].mTime) {
      if (ioOwn[a].mEvent.GetOnVelocity() != 0 && KeepsOwn(ioOwn[a], ioAdded, b))
        result.push_back(ioOwn[a]);
      ++a;
    } else {
      TakeAdded(ioAdded[b], ioOwn, a);
      result.push_back(ioAdded[b++]);
    }
  }
  ioOwn = result;
}

bool IsBlank(Note const & iNote) {
  return iNote.mEvent.GetType() == Vrae_Event::kNoEvent;
}
void MakeBlank(Note & ioNote) {
  static_cast<Vrae_Event &>(ioNote.mEvent) = Vrae_Event();
}

void EraseEqual(PlainList & ioOwn, Notes const & iGone) {
  if (iGone.empty()) return;
  Notes & own = ioOwn.mNotes;
  size_t const first = static_cast<size_t>(ioOwn.LowerBound(iGone[0].mTime));
  size_t a = first, b = 0;
  while (b < iGone.size() && a < own.size()) {
    if (own[a].mTime > iGone[b].mTime) {
      ++b;
    } else if (own[a].mTime < iGone[b].mTime) {
      ++a;
    } else {
      for (size_t j = a; j < own.size() && own[j].mTime == own[a].mTime; ++j) {
        if (!(own[j].mEvent == iGone[b].mEvent)) continue;
        MakeBlank(own[j]);
        break;
      }
      ++b;
    }
  }
  size_t end = a;
  while (end < own.size() && own[end].mTime == own[a].mTime)
    ++end;
  auto const at = [&own](size_t iIndex) { return own.begin() + static_cast<long>(iIndex); };
  own.erase(std::remove_if(at(first), at(end), IsBlank), at(end));
}

class PlainEdits : public PlainNoteList {
public:
  bool Snaps() const { return mQuantizes && TickTimesMatter::Active(); }
  bool HasThresholdsOf(PlainEdits const & iOther) const {
    return mTicks == iOther.mTicks && mSamples == iOther.mSamples;
  }
  void Regenerate() {
    mLong.mNotes.clear();
    for (Note const & note : mMain.mNotes)
      if (IsLong(note.mEvent)) mLong.AddSorted(note);
  }

  void Merge(PlainEdits & ioOther, bool iAvoids) {
    if (ioOther.mMain.mNotes.empty()) return;
    if (iAvoids) {
      MergeAvoiding(mMain.mNotes, ioOther.mMain.mNotes);
      return Regenerate();
    }
    MergePlainly(mMain, ioOther.mMain.mNotes);
    if (!HasThresholdsOf(ioOther)) return Regenerate();
    MergePlainly(mLong, ioOther.mLong.mNotes);
  }
  void EraseAll(PlainEdits const & iOther) {
    if (iOther.mMain.mNotes.empty()) return;
    EraseEqual(mMain, iOther.mMain.mNotes);
    if (!HasThresholdsOf(iOther)) return Regenerate();
    EraseEqual(mLong, iOther.mLong.mNotes);
  }
  void EraseRange(Time_Typed iStart, Time_Typed iEnd) {
    if (EraseRange(mMain, iStart, iEnd)) EraseRange(mLong, iStart, iEnd);
  }
  void CopyRange(PlainEdits & oTarget, Time_Typed iStart, Time_Typed iEnd) const {
    int const first = mMain.LowerBound(iStart), last = mMain.LowerBound(iEnd);
    Notes const & all = mMain.mNotes;
    oTarget.mMain.mNotes = first < last ? Notes(all.begin() + first, all.begin() + last) : Notes();
    oTarget.Regenerate();
  }

  void OffsetTimes(Time_TypedLength iLength) {
    for (Notes * const notesP : {&mMain.mNotes, &mLong.mNotes})
      for (Note & note : *notesP) {
        note.mTime = Shifted(note.mTime, iLength);
        if (Snaps()) note.mTime = Time_Convert::SnapToCoarseInternalTick(note.mTime);
      }
  }
  void OffsetStarts(Time_TypedLength iLength) {
    if (OffsetStarts(mMain.mNotes, iLength)) OffsetStarts(mLong.mNotes, iLength);
  }
  void OffsetDurations(Time_TypedLength iLength) {
    for (Notes * const notesP : {&mMain.mNotes, &mLong.mNotes})
      for (Note & note : *notesP) {
        iLength = Shifted(note.mTime, iLength) - note.mTime;
        Time_TypedLength const duration = note.mEvent.GetDuration() + iLength;
        if (duration.AsInt64() >= 1) note.mEvent.SetDuration(duration);
      }
  }
  void OffsetPitches(Time_TypedLength iLength) {
    if (OffsetPitches(mMain.mNotes, iLength)) OffsetPitches(mLong.mNotes, iLength);
  }

  bool mQuantizes = false;

private:
  static bool EraseRange(PlainList & ioList, Time_Typed iStart, Time_Typed iEnd) {
    int const first = ioList.LowerBound(iStart), last = ioList.LowerBound(iEnd);
    if (first >= last) return false;
    ioList.mNotes.erase(ioList.mNotes.begin() + first, ioList.mNotes.begin() + last);
    return true;
  }
  // The length comes out as it then stands.
  bool OffsetStarts(Notes & ioNotes, Time_TypedLength & ioLength) {
    if (Snaps() && ioLength.GetType() == Time_eType_Ticks && !ioNotes.empty() &&
        ioNotes[0].mTime.GetType() == Time_eType_Ticks) {
      long long ticks = ioLength.AsInt64();
      Time_Convert::SnapToCoarseInternalTick(ticks);
      ioLength = Time_TypedLength(ticks, Time_eType_Ticks);
    }
    Notes moved = ioNotes;
    for (Note & note : moved) {
      Time_Typed const end = Shifted(note.mTime, note.mEvent.GetDuration());
      note.mTime = Shifted(note.mTime, ioLength);
      if (Snaps() && ioLength.GetType() == Time_eType_Samples &&
          note.mTime.GetType() == Time_eType_Ticks)
        note.mTime = Time_Convert::SnapToCoarseInternalTick(note.mTime);
      if ((end - note.mTime).AsInt64() <= 1) return false;
      note.mEvent.SetDuration(end - note.mTime);
    }
    ioNotes = moved;
    return true;
  }
  static bool OffsetPitches(Notes & ioNotes, Time_TypedLength iLength) {
    int highest = 0, lowest = 127;
    for (Note const & note : ioNotes) {
      highest = std::max<int>(highest, note.mEvent.GetPitch());
      lowest = std::min<int>(lowest, note.mEvent.GetPitch());
    }
    if (iLength.AsInt64() < 1 ? highest == 127 : lowest < 1) return false;
    for (Note & note : ioNotes)
      note.mEvent.SetPitch(
          static_cast<signed char>(note.mEvent.GetPitch() + (iLength.AsInt64() < 1 ? 1 : -1)));
    return true;
  }
};

enum EContents { kTicks, kSamples, kBlanks, kFarTimes, kMixedDurations, kMixedTimes };

// A real list and the plain one.
struct Pair {
  explicit Pair(bool iQuantizes) : mReal(Ndo_Object::kUndoable, iQuantizes) {
    mPlain.mQuantizes = iQuantizes;
  }
  void SetThreshold(Time_TypedLength iLength) {
    (iLength.GetType() == Time_eType_Ticks ? mPlain.mTicks : mPlain.mSamples) = iLength;
    mReal.SetLongNoteDuration(iLength);
  }
  void Check() { CheckAgainst(mPlain); }
  void CheckAgainst(PlainEdits const & iPlain) {
    ExpectSame(All(mReal), iPlain.mMain.All());
    RC_ASSERT(mReal.Size() == iPlain.mMain.mNotes.size());
    ExpectSame(All(*mReal.GetLongNoteList()), iPlain.mLong.All());
    RC_ASSERT(mReal.GetLongNoteList()->Size() == iPlain.mLong.mNotes.size());
  }
  Vrad_NoteList mReal;
  PlainEdits mPlain;
};

class Script {
public:
  explicit Script(EContents iContents)
      : mContents(iContents), mQuantizes(*rc::gen::arbitrary<bool>()) {
    TickTimesMatter::SetActive(*rc::gen::arbitrary<bool>());
    bool const areAlike = *rc::gen::inRange(0, 3) != 0;
    for (Time_EType const type : {Time_eType_Ticks, Time_eType_Samples}) {
      Time_TypedLength const length(*rc::gen::inRange(20, 300), type);
      mOne.SetThreshold(length);
      mTwo.SetThreshold(areAlike ? length : Time_TypedLength(*rc::gen::inRange(20, 300), type));
    }
    AddSome(mOne, *rc::gen::inRange(0, 400));
    AddSome(mTwo, *rc::gen::inRange(0, 400));
  }
  ~Script() {
    gAvoidOverlapsAndDuplicates = false;
    TickTimesMatter::SetActive(false);
    Time_Convert::GetDefaultTempoMap().Reset(120);
    Ndo_gManager.ClearHistory();
  }

  // One edit, and what undo and redo make of it.
  void Step() {
    bool const isSwapped = *rc::gen::arbitrary<bool>();
    Pair & own = isSwapped ? mTwo : mOne;
    Pair & other = isSwapped ? mOne : mTwo;
    if (*rc::gen::inRange(0, 6) == 0) ChangeTempo();
    if (*rc::gen::inRange(0, 3) == 0) AddSome(other, *rc::gen::inRange(1, 60));
    if (mOne.mReal.Size() + mTwo.mReal.Size() > 3000) Halve(own);
    Ndo_gManager.ClearHistory();
    PlainEdits const before = own.mPlain;
    Ndo_gManager.BeginTransaction();
    Edit(own, other);
    bool const isStep = Ndo_gManager.EndTransaction();
    own.Check();
    other.Check();
    if (!isStep) return own.CheckAgainst(before);
    PlainEdits const after = own.mPlain;
    RC_ASSERT(Ndo_gManager.GetNumUndoSteps() == 1);
    RC_ASSERT(Ndo_gManager.Undo());
    own.CheckAgainst(before);
    other.Check();
    RC_ASSERT(Ndo_gManager.Redo());
    own.CheckAgainst(after);
    other.Check();
  }

private:
  void Edit(Pair & ioOwn, Pair & ioOther) {
    switch (*rc::gen::inRange(0, 12)) {
    case 0:
    case 1:
    case 2:
      return Merge(ioOwn, ioOther, false);
    case 3:
    case 4:
    case 5:
      return Merge(ioOwn, ioOther, true);
    case 6:
      ioOwn.mReal.Erase(&ioOther.mReal);
      return ioOwn.mPlain.EraseAll(ioOther.mPlain);
    case 7: {
      Time_Typed const start = AnyTime(), end = AnyTime();
      ioOwn.mReal.EraseTimeRange(start, end);
      return ioOwn.mPlain.EraseRange(start, end);
    }
    case 8: {
      Time_Typed const start = AnyTime(), end = AnyTime();
      ioOther.mReal.CopyTimeRange(&ioOwn.mReal, start, end);
      return ioOther.mPlain.CopyRange(ioOwn.mPlain, start, end);
    }
    default:
      return Offset(ioOwn);
    }
  }
  void Merge(Pair & ioOwn, Pair & ioOther, bool iAvoids) {
    gAvoidOverlapsAndDuplicates = iAvoids;
    ioOwn.mReal.Merge(&ioOther.mReal);
    gAvoidOverlapsAndDuplicates = false;
    ioOwn.mPlain.Merge(ioOther.mPlain, iAvoids);
  }
  void Offset(Pair & ioOwn) {
    Time_TypedLength const length(*rc::gen::inRange(-30, 30), AnyUnit());
    switch (*rc::gen::inRange(0, 4)) {
    case 0:
      ioOwn.mReal.OffsetTimes(length);
      return ioOwn.mPlain.OffsetTimes(length);
    case 1:
      ioOwn.mReal.OffsetStarts(length);
      return ioOwn.mPlain.OffsetStarts(length);
    case 2:
      ioOwn.mReal.OffsetDurations(length);
      return ioOwn.mPlain.OffsetDurations(length);
    default:
      ioOwn.mReal.OffsetPitches(length);
      return ioOwn.mPlain.OffsetPitches(length);
    }
  }
  void Halve(Pair & ioPair) {
    Time_Typed const middle(500, mContents == kSamples ? Time_eType_Samples : Time_eType_Ticks);
    ioPair.mReal.EraseTimeRange(middle, Time_Typed::MaxTime(middle.GetType()));
    ioPair.mPlain.EraseRange(middle, Time_Typed::MaxTime(middle.GetType()));
  }

  Time_EType AnyUnit(bool iMayMix = true) const {
    if (mContents == kSamples) return Time_eType_Samples;
    bool const mixes = mContents == kMixedTimes || mContents == kMixedDurations;
    return iMayMix && mixes && *rc::gen::inRange(0, 3) == 0 ? Time_eType_Samples : Time_eType_Ticks;
  }
  bool IsFar() const { return mContents == kFarTimes && *rc::gen::inRange(0, 5) == 0; }
  Time_Typed AnyTime() const {
    Time_EType const unit = AnyUnit(mContents == kMixedTimes);
    int const count = *rc::gen::inRange(-20, 1500);
    if (IsFar()) return Time_Typed(Time_Saturating::kMax - 1480 + count, unit);
    if (IsFar()) return Time_Typed(Time_Saturating::kMin + 20 + count, unit);
    bool const isShared = mContents == kMixedTimes && unit == Time_eType_Samples;
    return Time_Typed(isShared ? count / 40 : count, unit);
  }
  // Told apart by its delta, though mostly alike as an event.
  Note AnyNote() {
    bool const isLong = *rc::gen::inRange(0, 5) == 0;
    long long const farLength = isLong && IsFar() ? 1LL << 62 : 0;
    Time_TypedLength const duration(farLength + *rc::gen::inRange(1, isLong ? 1500 : 60),
                                    AnyUnit());
    Vrae_NoteWithDurationEvent const event(static_cast<signed char>(*rc::gen::inRange(60, 64)),
                                           duration, 80, 64);
    Note note(AnyTime(), event, Time_TypedLength(++mTag, Time_eType_Ticks), event, false);
    int const oddity = *rc::gen::inRange(0, 40);
    if (oddity == 0) note.mEvent.MarkForDeletion();
    if (oddity < 4 && mContents == kBlanks) MakeBlank(note);
    return note;
  }
  void AddSome(Pair & ioPair, int iNum) {
    Ndo_gManager.BeginTransaction();
    for (int i = 0; i < iNum; ++i) {
      Note const note = AnyNote();
      ioPair.mReal.AddNote(note);
      ioPair.mPlain.Add(note);
    }
    Ndo_gManager.EndTransaction();
  }
  // Makes lists of mixed units unsorted.
  void ChangeTempo() {
    if (mContents != kTicks) Time_Convert::GetDefaultTempoMap().Reset(*rc::gen::inRange(20, 900));
  }

  EContents mContents;
  bool mQuantizes;
  Pair mOne{mQuantizes};
  Pair mTwo{mQuantizes};
  int mTag = 0;
};

void Run(EContents iContents) {
  Script script(iContents);
  for (int i = *rc::gen::inRange(1, 12); i > 0; --i)
    script.Step();
}

Notes NotesOfPitches(int iFirstPitch, int iLastPitch) {
  Notes result;
  for (int i = *rc::gen::inRange(0, 300); i > 0; --i)
    result.emplace_back(Time_Typed(*rc::gen::inRange(0, 200), Time_eType_Ticks),
                        Vrae_NoteWithDurationEvent(
                            static_cast<signed char>(*rc::gen::inRange(iFirstPitch, iLastPitch)),
                            Time_TypedLength(*rc::gen::inRange(1, 100), Time_eType_Ticks), 80, 64));
  return result;
}

void AddAll(Vrad_NoteList & ioList, Notes const & iNotes) {
  for (Note const & note : iNotes)
    ioList.AddNote(note);
}

}  // namespace

RC_GTEST_PROP(Vrad_NoteList_BulkEdits, InTicksAreThePlainWalk, ()) {
  Run(kTicks);
}
RC_GTEST_PROP(Vrad_NoteList_BulkEdits, InSamplesAreThePlainWalk, ()) {
  Run(kSamples);
}
RC_GTEST_PROP(Vrad_NoteList_BulkEdits, WithBlankNotesAreThePlainWalk, ()) {
  Run(kBlanks);
}
RC_GTEST_PROP(Vrad_NoteList_BulkEdits, AtFarTimesAreThePlainWalk, ()) {
  Run(kFarTimes);
}
RC_GTEST_PROP(Vrad_NoteList_BulkEdits, WithMixedDurationsAreThePlainWalk, ()) {
  Run(kMixedDurations);
}
RC_GTEST_PROP(Vrad_NoteList_BulkEdits, WithMixedTimesAreThePlainWalk, ()) {
  Run(kMixedTimes);
}

RC_GTEST_PROP(Vrad_NoteList_BulkEdits, APlainMergeIsAStableSortOfBothLists, ()) {
  Vrad_NoteList own(Ndo_Object::kNotUndoable, false), other(Ndo_Object::kNotUndoable, false);
  AddAll(own, NotesOfPitches(60, 70));
  AddAll(other, NotesOfPitches(80, 90));
  Notes expected = All(own);
  Notes const added = All(other);
  expected.insert(expected.end(), added.begin(), added.end());
  std::stable_sort(expected.begin(), expected.end(),
                   [](Note const & iA, Note const & iB) { return iA.mTime < iB.mTime; });
  own.Merge(&other);
  ExpectSame(All(own), expected);
}

RC_GTEST_PROP(Vrad_NoteList_BulkEdits, ErasingUndoesAPlainMergeOfDistinctNotes, ()) {
  Vrad_NoteList own(Ndo_Object::kNotUndoable, false), other(Ndo_Object::kNotUndoable, false);
  own.SetLongNoteDuration(Time_TypedLength(50, Time_eType_Ticks));
  other.SetLongNoteDuration(Time_TypedLength(50, Time_eType_Ticks));
  AddAll(own, NotesOfPitches(60, 70));
  AddAll(other, NotesOfPitches(80, 90));
  Notes const before = All(own), longBefore = All(*own.GetLongNoteList());
  own.Merge(&other);
  own.Erase(&other);
  ExpectSame(All(own), before);
  ExpectSame(All(*own.GetLongNoteList()), longBefore);
}

// Overlaps may remain, since a note that is cut may grow back over a later cut.
RC_GTEST_PROP(Vrad_NoteList_BulkEdits, AnAvoidingMergeOfTakesWithoutDuplicatesLeavesNone, ()) {
  Vrad_NoteList own(Ndo_Object::kNotUndoable, false), other(Ndo_Object::kNotUndoable, false);
  for (Vrad_NoteList * const listP : {&own, &other}) {
    long long time = 0;
    for (int i = *rc::gen::inRange(0, 200); i > 0; --i) {
      time += *rc::gen::inRange(0, 30);
      int const duration = *rc::gen::inRange(1, 80);
      listP->AddNote(Note(
          Time_Typed(time, Time_eType_Ticks),
          Vrae_NoteWithDurationEvent(60, Time_TypedLength(duration, Time_eType_Ticks), 80, 64)));
      time += duration;
    }
  }
  gAvoidOverlapsAndDuplicates = true;
  own.Merge(&other);
  gAvoidOverlapsAndDuplicates = false;
  Notes const merged = All(own);
  for (size_t i = 1; i < merged.size(); ++i)
    RC_ASSERT(merged[i - 1].mTime < merged[i].mTime);
}
