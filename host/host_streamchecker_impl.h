// How a stream checker works: notes in time, what is sent, and values share this.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/host_checkedchannel.h"
#include "host/host_checkedclip.h"
#include "host/host_checkednotes.h"
#include "host/host_streamchecker.h"

class Host_StreamChecker::Impl {
public:
  static constexpr int kNumChannels = 16;

  bool AddClip(Vrad_Chunk const * iChunkP, int iChannel, int iClip);
  void ClipEdited(int iClip);
  void RemoveClip(int iClip);
  void SetMuted(int iClip, bool iIsMuted);
  void TempoChanged();
  void CheckPosition(long long iSample);
  void BeginBlock(int iNumSamples);
  void ReceiveMessage(Host_WireMessage const & iMessage);
  void EndBlock();

  // What commands ask for; it takes effect in the next block.
  bool mShallPlay = false;
  std::optional<Time_Typed> mLocation;
  bool mHasLoop = false;
  Time_Typed mLoopFrom, mLoopTo;
  Host_ELoopPolicy mPolicy = Host_ELoopPolicy::kCut;
  Host_StreamViolation mViolation;

private:
  typedef Host_CheckedClip::Edge Edge;
  typedef Host_CheckedClip::EEdge EEdge;
  typedef Host_CheckedClip::Value Value;

  // What becomes of a clip at the next sample that is looked at.
  enum class EPending : int { kNone, kKeepSounding, kWrap, kAnew };

  struct Clip {
    Vrad_Chunk const * mChunkP;
    int mChannel, mNumber;
    bool mIsMuted = false, mIsRemoved = false;
    EPending mPending = EPending::kAnew;
    char const * mWhy = "";       // of what is pending
    bool mIsTempoNew = false;     // the tempo has changed since the last sample
    bool mMayHavePassed = false;  // so what happens in the open sample may be over
    Host_CheckedClip mContents;
    size_t mNextEdge = 0;
    Host_CheckedNotes mNotes;
    std::vector<int> mDueSysexes;
    std::vector<std::vector<unsigned char>> mSentSysexes;

    Host_CheckedClip::Note const & NoteAt(int iIndex) const {
      return mContents.GetNotes()[static_cast<size_t>(iIndex)];
    }
  };

  struct ParameterEdge {
    Time_Typed mTime;
    size_t mClip;
    int mKey, mValue;
  };
  typedef std::vector<ParameterEdge> ParameterEdges;

  struct Channel {
    Host_CheckedChannel mReceiver;
    Host_ParameterState mExpected;   // parameters
    bool mIsExpectedStale = true;    // must be walked anew
    bool mIsAllChanged = false;      // something was pending for it in the open sample
    bool mIsAllLookedAt = false;     // in the open sample, at a note
    std::vector<int> mTouched;       // values that messages or clips change in the open sample
    ParameterEdges mParameterEdges;  // of the open sample
  };

  bool IsGood() const { return mViolation.mKind == Host_EViolation::kNone; }
  void Blame(Host_EViolation iKind, int iClip, int iChannel, std::string const & iText);
  void Blame(Host_EViolation iKind, Clip const & iClip, std::string const & iText) {
    Blame(iKind, iClip.mNumber, iClip.mChannel, iText);
  }

  bool Plays(Clip const & iClip) const {
    return mIsPlaying && !iClip.mIsMuted && !iClip.mIsRemoved;
  }
  Clip * FindClip(int iNumber);
  Clip * FindReceivingClip(Host_WireMessage const & iMessage);
  Clip * FindBestClip(Host_WireMessage const & iMessage);
  static int GetFit(Clip const & iClip, Host_WireMessage const & iMessage);
  static bool IsSysexDue(Clip const & iClip, Host_WireMessage const & iMessage);
  void SetPending(Clip & ioClip, EPending iPending, char const * iWhy);
  void SetAllPending(EPending iPending, char const * iWhy);

  bool IsLooping() const;
  long long LoopStart() const;
  long long LoopEnd() const;
  bool MustWrap() const;
  long long GetPosition() const;
  void SetPosition(long long iSample);
  void ApplyCommands();

  // Time within a block.
  long long PositionAt(int iOffset) const { return mRunPosition + (iOffset - mRunOffset); }
  int FindNextOffset(int iFrom) const;
  void WrapAt(int iOffset);
  void AdvanceTo(int iOffset);
  void OpenSample(int iOffset);
  void CloseSample();

  // One clip in the open sample.
  void OpenClip(size_t iClip);
  void StartAnew(Clip & ioClip);
  void Wrap(Clip & ioClip);
  void GoOnSounding(Clip & ioClip);
  bool EndsLater(Host_CheckedClip::Note const & iNote) const;
  void StrikeHeldOver(Clip & ioClip);
  void TakeEdges(size_t iClip);
  void TakeNoteEdge(Clip & ioClip, Edge const & iEdge);
  static int ValueOf(Clip const & iClip, Edge const & iEdge);
  void CheckNotes(Clip & ioClip);
  void CheckSysexes(Clip & ioClip);

  // Values.
  bool HasSelections(int iChannel) const;
  bool HasValues(int iChannel, int iKey) const;
  bool IsLookedAt(int iChannel, int iKey) const;
  std::vector<int> KeysOf(int iChannel) const;
  Value const * FindExpected(int iChannel, int iKey, long long iSample) const;
  Value const * FindExpectedAt(int iChannel, int iKey, Time_Typed iTime, Clip const * iOwnP) const;
  bool IsInForce(int iChannel, int iKey, Value const & iValue) const;
  std::string TextOfActual(int iChannel, int iKey) const;
  void CheckValue(int iChannel, int iKey);
  bool IsOneInForce(int iChannel, int iKey, Time_Typed iAfter, long long iSample) const;
  bool MayStandAt(int iChannel, int iKey, Time_Typed iTime, Clip const * iOwnP) const;
  void CheckValues();
  void CheckValuesAtStrike(Clip & ioClip, int iPitch);
  Host_ParameterState WalkParameters(int iChannel,
                                     std::function<bool(Value const &)> const & iIsIn) const;
  Host_ParameterState WalkParametersTo(int iChannel, long long iLastSample) const;
  static void ApplyParameters(ParameterEdges & ioEdges, Host_ParameterState & ioState);
  void CheckParameters(int iChannel);
  void CheckParametersAtStrike(Clip const & iClip, int iPitch, Time_Typed iTime);

  void TakeMessage(Clip & ioClip, Host_WireMessage const & iMessage);
  void ReceiveNote(Clip & ioClip, unsigned char const * iData);
  void ReceiveMode(int iChannel, int iController);

  std::vector<std::unique_ptr<Clip>> mClips;  // in the order of adding
  Channel mChannels[kNumChannels];

  bool mIsPlaying = false;
  long long mPosition = 0;   // of the block's first sample
  Time_Typed mPositionTick;  // which stays when the tempo is edited
  bool mIsWrapDue = false;   // the position is the loop's end

  int mBlock = -1;
  int mBlockLength = 0;
  bool mIsInBlock = false;
  int mLastOffset = 0;
  long long mClock = 0;  // samples since the first block

  // The stretch of the block in which positions rise one by one.
  int mRunOffset = 0;
  long long mRunPosition = 0;
  bool mLoops = false;
  long long mLoopEnd = 0;

  bool mIsOpen = false;     // a sample is being looked at
  bool mIsBetween = false;  // it is a block of 0 samples
  int mOpenOffset = 0;
  int mNextOffset = 0;  // the first that has not been looked at
};
