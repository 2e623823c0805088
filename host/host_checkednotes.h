// The notes of one clip as a stream checker follows them: what should sound, and what was sent.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "foundation/time_typed.h"
#include "host/host_checkedclip.h"
#include "host/host_streamchecker.h"

/// What is wrong, without its place.
struct Host_NoteFlaw {
  Host_EViolation mKind = Host_EViolation::kNone;
  std::string mText;
};

/// Goes from sample to sample: what is due there is said first, then what was sent is taken in,
/// then both are compared. Clocks count samples since the stream began.
class Host_CheckedNotes {
public:
  typedef std::vector<Host_CheckedClip::Note> Notes;

  Host_CheckedNotes() {
    mNumOn.fill(0);
    mNumCut.fill(0);
  }

  // Between samples.

  /// The clip holds other notes now: what sounds is found again by start, pitch and velocity.
  void FollowEdit(Notes const & iFormer, Notes const & iNow);
  /// From now on ringing notes may end at any time; after a change of tempo at no known time.
  void FreeRingingNotes(bool iIsTempoNew);
  /// The loop ends: notes that ring on over its end would do so until their own.
  void SetRests(Notes const & iNotes, long long iLoopEnd, long long iClock);
  /// The clock; beyond all clocks if nothing rings.
  long long GetNextRingingEnd() const;

  // What is due in a sample.

  void OpenSample();
  bool IsSounding(int iIndex) const;
  /// Each note ends that does not stay. `iMayGoOn`: unless its pitch is struck, and may go on.
  template <class TStays>
  void EndUnless(TStays const & iStays, bool iMayGoOn) {
    std::vector<Sounding> former;
    former.swap(mSounding);
    for (Sounding const & note : former) {
      if (note.mIndex >= 0 && iStays(note.mIndex))
        mSounding.push_back(note);
      else
        mDue.push_back(EndOf(note.mPitch, note.mOffVelocity, iMayGoOn));
    }
  }
  void EndAll();
  /// Each note rings on that does not stay.
  template <class TStays>
  void RingUnless(TStays const & iStays) {
    std::vector<Sounding> former;
    former.swap(mSounding);
    for (Sounding const & note : former) {
      if (note.mIndex >= 0 && iStays(note.mIndex))
        mSounding.push_back(note);
      else if (note.mIndex >= 0)
        mRinging.push_back(RestOf(note, former));
      else
        mDue.push_back(EndOf(note.mPitch, note.mOffVelocity, false));
    }
  }
  /// In the open sample notes of one pitch may stand for each other.
  void Blur();
  /// The clip is another one: what sounds is none of its notes.
  void Orphan();
  /// Also ends a note of that pitch that rings.
  void Strike(int iIndex, Host_CheckedClip::Note const & iNote, bool iMayGoOn);
  void End(int iIndex, Host_CheckedClip::Note const & iNote);
  /// A note that begins and ends in the sample. `iIsOptional`: it may have done so already.
  void Pass(Host_CheckedClip::Note const & iNote, bool iIsOptional);
  void EndRinging(long long iClock);

  // What was sent.

  void ReceiveNoteOn(int iPitch, int iVelocity);
  /// False if nothing of that pitch sounds.
  bool ReceiveNoteOff(int iPitch, int iVelocity);
  /// All notes off, which a receiver may obey.
  void ReceiveAllOff() { mNumCut = mNumOn; }
  /// How well a note-on or note-off would fit now: -1 if not at all, else the higher the better.
  int GetFit(int iPitch, int iVelocity, bool iIsOn) const;
  /// The start of the note that a note-on would strike now. False if none is due.
  bool FindStrikeTime(int iPitch, Time_Typed & oTime) const;

  /// What is wrong in the sample. `iWhy` ends the sentence: "after the stop".
  Host_NoteFlaw CloseSample(std::string const & iWhy);

private:
  struct Sounding {
    int mIndex;  // of the clip's note; -1 when the clip has it no more
    int mPitch, mOnVelocity, mOffVelocity;
    long long mRingEnd = 0;  // if it rings on over the loop's end
    bool mIsRestFree = false;
  };
  struct Ringing {
    int mPitch, mOffVelocity;
    long long mEnd;
    bool mIsFree;  // may end before
    bool mIsNew;   // rings since the open sample
  };
  struct Due {
    int mPitch;
    int mVelocity;  // or kAnyVelocity
    bool mIsOn;
    bool mMayGoOn;     // an end and a strike of one pitch may both be left out
    bool mIsOptional;  // an end and a strike that may have been sent before
    Time_Typed mTime;
  };
  struct Sent {
    int mPitch, mVelocity;
    bool mIsOn;
  };
  struct Counts {
    int mEnds = 0, mStrikes = 0;                // due
    int mEndsThatMay = 0, mStrikesThatMay = 0;  // of them, may be left out as pairs
    int mOptional = 0, mFree = 0;
    int mSentEnds = 0, mSentStrikes = 0;
  };

  static constexpr int kAnyVelocity = -1;

  static Ringing RestOf(Sounding const & iNote, std::vector<Sounding> const & iAll);
  static Due EndOf(int iPitch, int iOffVelocity, bool iMayGoOn);
  void EndRingingOf(int iPitch, bool iMayGoOn);
  Counts Count(int iPitch) const;
  std::vector<Due> FindLeft(int iPitch, bool iIsOn) const;
  static bool FindPairs(Counts const & iCounts, int & oNumKept, int & oNumFree);
  static Host_NoteFlaw FindWrongNumber(Counts const & iCounts, std::string const & iNote,
                                       std::string const & iWhy);
  Host_NoteFlaw FindWrongVelocity(int iPitch, bool iIsOn) const;
  bool IsOrderRight(int iPitch, int iNumKept) const;
  Host_NoteFlaw CheckPitch(int iPitch, std::string const & iWhy);
  Host_NoteFlaw FindCut() const;

  std::vector<Sounding> mSounding;
  std::vector<Ringing> mRinging;
  std::array<int, 128> mNumOn;   // at the receiver
  std::array<int, 128> mNumCut;  // of them, by "all notes off" in the sample
  bool mIsBlurred = false;       // in the sample
  std::vector<Due> mDue;         // in the sample
  std::vector<Sent> mSent;       // in the sample, in order
};
