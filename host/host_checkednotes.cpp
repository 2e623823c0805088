#include "host/host_checkednotes.h"

#include <algorithm>
#include <limits>

namespace {

constexpr long long kNever = std::numeric_limits<long long>::max();

bool IsSameNote(Host_CheckedClip::Note const & iA, Host_CheckedClip::Note const & iB) {
  return iA.mStart == iB.mStart && iA.mPitch == iB.mPitch && iA.mOnVelocity == iB.mOnVelocity;
}

}  // namespace

// ---- Between samples ----

void Host_CheckedNotes::FollowEdit(Notes const & iFormer, Notes const & iNow) {
  std::vector<bool> isTaken(iNow.size(), false);
  for (Sounding & sounding : mSounding) {
    if (sounding.mIndex < 0) continue;
    Host_CheckedClip::Note const & note = iFormer[static_cast<size_t>(sounding.mIndex)];
    sounding.mIndex = -1;
    auto iter = std::lower_bound(iNow.begin(), iNow.end(), note.mStart,
                                 [](Host_CheckedClip::Note const & iNote, Time_Typed iTime) {
                                   return iNote.mStart < iTime;
                                 });
    for (; iter != iNow.end() && iter->mStart == note.mStart; ++iter) {
      size_t const index = static_cast<size_t>(iter - iNow.begin());
      if (isTaken[index] || !IsSameNote(*iter, note)) continue;
      isTaken[index] = true;
      sounding.mIndex = static_cast<int>(index);
      sounding.mOffVelocity = iter->mOffVelocity;
      break;
    }
  }
  FreeRingingNotes(false);
}

void Host_CheckedNotes::FreeRingingNotes(bool iIsTempoNew) {
  for (Ringing & note : mRinging) {
    note.mIsFree = true;
    if (iIsTempoNew) note.mEnd = kNever;
  }
  if (!iIsTempoNew) return;
  for (Sounding & note : mSounding) {
    note.mIsRestFree = true;
    note.mRingEnd = kNever;
  }
}

void Host_CheckedNotes::SetRests(Notes const & iNotes, long long iLoopEnd, long long iClock) {
  for (Sounding & note : mSounding) {
    if (note.mIndex < 0) continue;
    long long const rest = iNotes[static_cast<size_t>(note.mIndex)].mEndSample - iLoopEnd;
    note.mRingEnd = rest < kNever - iClock ? iClock + rest : kNever;
    note.mIsRestFree = false;
  }
}

long long Host_CheckedNotes::GetNextRingingEnd() const {
  long long next = kNever;
  for (Ringing const & note : mRinging)
    next = std::min(next, note.mEnd);
  return next;
}

// ---- What is due ----

void Host_CheckedNotes::OpenSample() {
  mDue.clear();
  mSent.clear();
  mNumCut.fill(0);
  mIsBlurred = false;
  for (Ringing & note : mRinging)
    note.mIsNew = false;
}

void Host_CheckedNotes::Blur() {
  mIsBlurred = true;
}

void Host_CheckedNotes::Orphan() {
  for (Sounding & note : mSounding)
    note.mIndex = -1;
}

// Where several notes of a pitch sound, any of them may be the one that rings on.
Host_CheckedNotes::Ringing Host_CheckedNotes::RestOf(Sounding const & iNote,
                                                     std::vector<Sounding> const & iAll) {
  Ringing rest = {iNote.mPitch, iNote.mOffVelocity, iNote.mRingEnd, iNote.mIsRestFree, true};
  for (Sounding const & other : iAll) {
    if (other.mPitch != iNote.mPitch || &other == &iNote) continue;
    rest.mEnd = std::max(rest.mEnd, other.mRingEnd);
    rest.mOffVelocity = kAnyVelocity;
    rest.mIsFree = true;
  }
  return rest;
}

bool Host_CheckedNotes::IsSounding(int iIndex) const {
  return std::any_of(mSounding.begin(), mSounding.end(),
                     [iIndex](Sounding const & iNote) { return iNote.mIndex == iIndex; });
}

Host_CheckedNotes::Due Host_CheckedNotes::EndOf(int iPitch, int iOffVelocity, bool iMayGoOn) {
  return {iPitch, iOffVelocity, false, iMayGoOn, false, Time_Typed::MinTime(Time_eType_Samples)};
}

void Host_CheckedNotes::EndAll() {
  EndUnless([](int) { return false; }, true);
  for (Ringing const & note : mRinging)
    mDue.push_back(EndOf(note.mPitch, note.mOffVelocity, true));
  mRinging.clear();
}

// A strike ends one ringing note of its pitch, whichever, and may end all. `iMayGoOn`: one that has
// just begun to ring may instead go on as the note that is struck.
void Host_CheckedNotes::EndRingingOf(int iPitch, bool iMayGoOn) {
  auto const isEnding = [iPitch, iMayGoOn](Ringing const & iNote) {
    return iNote.mPitch == iPitch && (iNote.mIsNew || !iMayGoOn);
  };
  auto const isOfPitch = [iPitch](Ringing const & iNote) { return iNote.mPitch == iPitch; };
  auto const iter = std::find_if(mRinging.begin(), mRinging.end(), isEnding);
  if (iter != mRinging.end()) {
    bool const isOnlyOne = std::count_if(mRinging.begin(), mRinging.end(), isOfPitch) == 1;
    mDue.push_back(EndOf(iPitch, isOnlyOne ? iter->mOffVelocity : kAnyVelocity, iMayGoOn));
    mRinging.erase(iter);
  }
  for (Ringing & note : mRinging) {
    if (!isOfPitch(note)) continue;
    note.mIsFree = true;
    note.mOffVelocity = kAnyVelocity;
  }
}

void Host_CheckedNotes::Strike(int iIndex, Host_CheckedClip::Note const & iNote, bool iMayGoOn) {
  EndRingingOf(iNote.mPitch, iMayGoOn);
  mDue.push_back({iNote.mPitch, iNote.mOnVelocity, true, iMayGoOn, false, iNote.mStart});
  mSounding.push_back({iIndex, iNote.mPitch, iNote.mOnVelocity, iNote.mOffVelocity});
}

void Host_CheckedNotes::End(int iIndex, Host_CheckedClip::Note const & iNote) {
  auto const iter =
      std::find_if(mSounding.begin(), mSounding.end(),
                   [iIndex](Sounding const & iSounding) { return iSounding.mIndex == iIndex; });
  if (iter == mSounding.end()) return;
  mDue.push_back({iter->mPitch, iter->mOffVelocity, false, false, false, iNote.mEnd});
  mSounding.erase(iter);
}

void Host_CheckedNotes::Pass(Host_CheckedClip::Note const & iNote, bool iIsOptional) {
  if (!iIsOptional) EndRingingOf(iNote.mPitch, false);
  mDue.push_back({iNote.mPitch, iNote.mOnVelocity, true, false, iIsOptional, iNote.mStart});
  // One of no length does not end before it begins.
  Time_Typed const end = std::max<Time_Typed>(iNote.mEnd, iNote.mStart + Time_TickLength(1));
  mDue.push_back({iNote.mPitch, iNote.mOffVelocity, false, false, iIsOptional, end});
}

void Host_CheckedNotes::EndRinging(long long iClock) {
  for (Ringing const & note : mRinging)
    if (note.mEnd <= iClock) mDue.push_back(EndOf(note.mPitch, note.mOffVelocity, false));
  std::erase_if(mRinging, [iClock](Ringing const & iNote) { return iNote.mEnd <= iClock; });
}

// ---- What was sent ----

void Host_CheckedNotes::ReceiveNoteOn(int iPitch, int iVelocity) {
  ++mNumOn[static_cast<size_t>(iPitch)];
  mSent.push_back({iPitch, iVelocity, true});
}

bool Host_CheckedNotes::ReceiveNoteOff(int iPitch, int iVelocity) {
  int & numOn = mNumOn[static_cast<size_t>(iPitch)];
  if (numOn == 0) return false;
  --numOn;
  int & numCut = mNumCut[static_cast<size_t>(iPitch)];
  numCut = std::max(numCut - 1, 0);
  mSent.push_back({iPitch, iVelocity, false});
  return true;
}

int Host_CheckedNotes::GetFit(int iPitch, int iVelocity, bool iIsOn) const {
  enum EFit : int { kNot = -1, kPossible, kMayBeDue, kIsDue, kWithVelocity };
  if (!iIsOn && mNumOn[static_cast<size_t>(iPitch)] == 0) return kNot;
  auto const hasVelocity = [iVelocity](Due const & iDue) {
    return iDue.mVelocity == iVelocity || iDue.mVelocity == kAnyVelocity;
  };
  int best = !iIsOn && Count(iPitch).mFree > 0 ? kMayBeDue : kPossible;
  for (Due const & due : FindLeft(iPitch, iIsOn)) {
    int const fit = due.mMayGoOn || due.mIsOptional ? kMayBeDue : kIsDue;
    best = std::max(best, hasVelocity(due) ? fit + kWithVelocity : fit);
  }
  return best;
}

// What is due and has not been sent.
std::vector<Host_CheckedNotes::Due> Host_CheckedNotes::FindLeft(int iPitch, bool iIsOn) const {
  std::vector<Due> left;
  for (Due const & due : mDue)
    if (due.mPitch == iPitch && due.mIsOn == iIsOn) left.push_back(due);
  for (Sent const & sent : mSent) {
    if (sent.mPitch != iPitch || sent.mIsOn != iIsOn || left.empty()) continue;
    auto const iter = std::find_if(left.begin(), left.end(), [&sent](Due const & iDue) {
      return iDue.mVelocity == sent.mVelocity;
    });
    left.erase(iter == left.end() ? left.begin() : iter);
  }
  return left;
}

bool Host_CheckedNotes::FindStrikeTime(int iPitch, Time_Typed & oTime) const {
  std::vector<Time_Typed> times;
  for (Due const & due : mDue)
    if (due.mIsOn && due.mPitch == iPitch) times.push_back(due.mTime);
  std::sort(times.begin(), times.end());
  auto const numStruck = std::count_if(mSent.begin(), mSent.end(), [iPitch](Sent const & iSent) {
    return iSent.mIsOn && iSent.mPitch == iPitch;
  });
  if (static_cast<size_t>(numStruck) >= times.size()) return false;
  oTime = times[static_cast<size_t>(numStruck)];
  return true;
}

// ---- The comparison ----

Host_CheckedNotes::Counts Host_CheckedNotes::Count(int iPitch) const {
  Counts counts;
  for (Due const & due : mDue) {
    if (due.mPitch != iPitch) continue;
    if (due.mIsOptional) {
      if (due.mIsOn) ++counts.mOptional;
    } else {
      ++(due.mIsOn ? counts.mStrikes : counts.mEnds);
      if (due.mMayGoOn) ++(due.mIsOn ? counts.mStrikesThatMay : counts.mEndsThatMay);
    }
  }
  for (Sent const & sent : mSent)
    if (sent.mPitch == iPitch) ++(sent.mIsOn ? counts.mSentStrikes : counts.mSentEnds);
  for (Ringing const & note : mRinging)
    if (note.mPitch == iPitch && note.mIsFree) ++counts.mFree;
  return counts;
}

// Whether what was sent is what is due, but for pairs that go on, for optional notes, and for
// ringing notes that end at will.
bool Host_CheckedNotes::FindPairs(Counts const & iCounts, int & oNumKept, int & oNumFree) {
  int const maxKept = std::min(iCounts.mEndsThatMay, iCounts.mStrikesThatMay);
  for (int optional = 0; optional <= iCounts.mOptional; ++optional) {
    for (oNumFree = 0; oNumFree <= iCounts.mFree; ++oNumFree) {
      oNumKept = iCounts.mStrikes + optional - iCounts.mSentStrikes;
      int const ends = iCounts.mEnds + optional + oNumFree - iCounts.mSentEnds;
      if (ends == oNumKept && oNumKept >= 0 && oNumKept <= maxKept) return true;
    }
  }
  return false;
}

Host_NoteFlaw Host_CheckedNotes::FindWrongNumber(Counts const & iCounts, std::string const & iNote,
                                                 std::string const & iWhy) {
  int const missingEnds = iCounts.mEnds - iCounts.mSentEnds;
  int const missingStrikes = iCounts.mStrikes - iCounts.mSentStrikes;
  if (missingEnds > 0 && missingEnds >= missingStrikes)
    return {Host_EViolation::kNoteLeftOn, iNote + " is left on" + iWhy};
  if (missingStrikes > 0)
    return {Host_EViolation::kMissingNote, iNote + " is not struck, though it should sound" + iWhy};
  if (missingStrikes < 0)
    return {Host_EViolation::kWrongNote,
            iNote + " is struck, where the clip has no start of it" + iWhy};
  return {Host_EViolation::kNoteCutShort, iNote + " ends, though it should sound on" + iWhy};
}

// Each velocity that was sent takes one that is due.
Host_NoteFlaw Host_CheckedNotes::FindWrongVelocity(int iPitch, bool iIsOn) const {
  std::vector<int> due;
  for (Due const & entry : mDue)
    if (entry.mPitch == iPitch && entry.mIsOn == iIsOn) due.push_back(entry.mVelocity);
  for (Ringing const & note : mRinging)
    if (!iIsOn && note.mPitch == iPitch && note.mIsFree) due.push_back(note.mOffVelocity);
  for (Sounding const & note : mSounding)
    if (mIsBlurred && note.mPitch == iPitch)
      due.push_back(iIsOn ? note.mOnVelocity : note.mOffVelocity);
  for (Sent const & sent : mSent) {
    if (sent.mPitch != iPitch || sent.mIsOn != iIsOn) continue;
    auto found = std::find(due.begin(), due.end(), sent.mVelocity);
    if (found == due.end()) found = std::find(due.begin(), due.end(), kAnyVelocity);
    if (found != due.end()) {
      due.erase(found);
      continue;
    }
    std::string const text = "note " + std::to_string(iPitch) +
                             (iIsOn ? " is struck" : " is released") + " with velocity " +
                             std::to_string(sent.mVelocity) + " instead of " +
                             (due.empty() ? "none" : std::to_string(due.front()));
    return {iIsOn ? Host_EViolation::kWrongNote : Host_EViolation::kReleaseVelocity, text};
  }
  return {};
}

// No strike comes before the ends that are due until then.
bool Host_CheckedNotes::IsOrderRight(int iPitch, int iNumKept) const {
  std::vector<Time_Typed> strikes, ends;
  for (Due const & due : mDue) {
    if (due.mPitch != iPitch) continue;
    if (due.mIsOptional) return true;
    (due.mIsOn ? strikes : ends).push_back(due.mTime);
  }
  std::sort(strikes.begin(), strikes.end());
  size_t numStruck = 0;
  long long numEnded = 0;
  for (Sent const & sent : mSent) {
    if (sent.mPitch != iPitch) continue;
    if (!sent.mIsOn) {
      ++numEnded;
      continue;
    }
    if (numStruck == strikes.size()) return true;
    Time_Typed const time = strikes[numStruck++];
    auto const numDue =
        std::count_if(ends.begin(), ends.end(), [time](Time_Typed iEnd) { return iEnd <= time; });
    if (numEnded < numDue - iNumKept) return false;
  }
  return true;
}

Host_NoteFlaw Host_CheckedNotes::CheckPitch(int iPitch, std::string const & iWhy) {
  std::string const note = "note " + std::to_string(iPitch);
  Counts const counts = Count(iPitch);
  int numKept = 0, numFree = 0;
  if (!FindPairs(counts, numKept, numFree)) return FindWrongNumber(counts, note, iWhy);
  for (bool const isOn : {true, false}) {
    Host_NoteFlaw const flaw = FindWrongVelocity(iPitch, isOn);
    if (flaw.mKind != Host_EViolation::kNone) return flaw;
  }
  if (!IsOrderRight(iPitch, numKept))
    return {Host_EViolation::kStruckTwice, note + " is struck again before its end is sent"};
  for (auto iter = mRinging.begin(); numFree > 0 && iter != mRinging.end();) {
    bool const ends = iter->mPitch == iPitch && iter->mIsFree;
    iter = ends ? mRinging.erase(iter) : iter + 1;
    if (ends) --numFree;
  }
  return {};
}

// A note that some receivers end there and others don't is right for neither.
Host_NoteFlaw Host_CheckedNotes::FindCut() const {
  auto const iter = std::find_if(mNumCut.begin(), mNumCut.end(), [](int iNum) { return iNum > 0; });
  if (iter == mNumCut.end()) return {};
  return {Host_EViolation::kNoteCutShort,
          "note " + std::to_string(iter - mNumCut.begin()) +
              " is cut off by a channel mode message, though it should sound on"};
}

Host_NoteFlaw Host_CheckedNotes::CloseSample(std::string const & iWhy) {
  std::vector<int> pitches;
  for (Due const & due : mDue)
    pitches.push_back(due.mPitch);
  for (Sent const & sent : mSent)
    pitches.push_back(sent.mPitch);
  std::sort(pitches.begin(), pitches.end());
  pitches.erase(std::unique(pitches.begin(), pitches.end()), pitches.end());
  for (int const pitch : pitches) {
    Host_NoteFlaw const flaw = CheckPitch(pitch, iWhy);
    if (flaw.mKind != Host_EViolation::kNone) return flaw;
  }
  return FindCut();
}
