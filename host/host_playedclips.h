// The clips of a player and the channels that they share.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "host/host_clipplayback.h"
#include "host/host_parameterchase.h"
#include "host/host_playposition.h"
#include "host/host_wireoutput.h"
#include "vrad/vrae_chasetracker.h"

class Vrad_Chunk;

/// Knows what is sent when something changes and while time passes, and not why.
/// Thread: the player's. The constructor, `Add`, `TakeEdit` and `Remove` take memory or give it
/// back; the rest neither does so nor locks nor throws.
class Host_PlayedClips {
public:
  enum class EMove : int {
    kNone,
    kJump,         // ends what sounds
    kKeepingWrap,  // lets it ring on
  };
  struct Change {
    bool mShallPlay;
    EMove mMove;
    Host_PlayPosition mFrom, mTo;  // alike without a move
  };

  explicit Host_PlayedClips(Host_BlockReceiver * iReceiverP);

  /// Null for a number that names none.
  Host_ClipPlayback * Find(int iClip) const;
  /// False for a null chunk, a bad channel or a number in use. Fails: std::bad_alloc.
  bool Add(Vrad_Chunk * iChunkP, int iChannel, int iClip, Host_PlayPosition const & iPosition);
  /// `iRange`: as in `Host_ClipPlayback::Prepare`. Fails: std::bad_alloc.
  void TakeEdit(Host_ClipPlayback & ioClip, Host_PlayPosition const & iPosition,
                std::optional<Host_TimeRange> const & iRange = std::nullopt);
  void Remove(Host_ClipPlayback & ioClip);
  void SetMuted(Host_ClipPlayback & ioClip, bool iIsMuted);

  Host_WireOutput & GetOutput() { return mOutput; }
  /// Ends what sounds in the former receiver.
  void SetReceiver(Host_BlockReceiver * iReceiverP, Host_PlayPosition const & iPosition);

  /// Brings the receiver from one state to another: of the transport, and of clips that were added,
  /// edited, muted or taken away since.
  void Apply(Change const & iChange);

  /// The position has moved, and time has not.
  void MovePosition(long long iNumSamples);

  /// What the stretch holds. `iOffset`: of its first sample.
  void Play(Host_PlayStretch const & iStretch, int iOffset);

  int GetNumLostNotes() const;

private:
  struct Channel {
    bool mIsShared = false;       // by several clips, now or before
    bool mIsTouched = false;      // by the change that is being made
    bool mWasEngaged = false;     // one of its clips was, before the change
    bool mIsStale = false;        // the parameters must be merged anew
    Host_PlayPosition mPosition;  // at which its parameters stand while no clip is engaged
    Host_ParameterChase mParameters;
    bool mAreParametersNew = false;  // before the position; so all are to be sent
  };

  // A clip with something left in a stretch. Of equal times the values of all clips come first, as
  // a note that ends must not end one that another clip of the channel begins; else the clip that
  // was added first.
  struct Waiting {
    Host_ClipPlayback * mClipP;
    size_t mPlace;
    bool operator<(Waiting const & iOther) const {  // later is less, for the standard heap
      Time_Typed const time = mClipP->GetNextTime(), other = iOther.mClipP->GetNextTime();
      if (time != other) return other < time;
      int const rank = mClipP->GetNextRank(), otherRank = iOther.mClipP->GetNextRank();
      return rank == otherRank ? iOther.mPlace < mPlace : otherRank < rank;
    }
  };

  class ChannelReceiver;

  Channel & ChannelOf(Host_ClipPlayback const & iClip) {
    return mChannels[static_cast<size_t>(iClip.GetChannel())];
  }
  bool IsOn(int iChannel, Host_ClipPlayback const & iClip) const {
    return iClip.GetChannel() == iChannel;
  }
  bool CanPlay(Host_ClipPlayback const & iClip) const {
    return !iClip.mIsMuted && !iClip.IsAbandoned();
  }
  bool IsWanted(Host_ClipPlayback const & iClip) const {
    return mShallPlay && mOutput.HasReceiver() && CanPlay(iClip);
  }
  bool MustEnter(Host_ClipPlayback const & iClip, EMove iMove) const {
    return IsWanted(iClip) && (!iClip.IsEngaged() || iClip.mIsEdited || iMove != EMove::kNone);
  }

  void DropAbandoned();
  void ReserveParameters(int iChannel, size_t iNumMore);
  void MergeParameters(int iChannel);
  void BeginChange(Change const & iChange);
  void LeaveStates(Change const & iChange);
  void EnterStates(Change const & iChange);
  void EnterNotes(Host_ClipPlayback & ioClip, Change const & iChange);
  void ChaseSharedValues(int iChannel, Host_PlayPosition const & iPosition);
  void ChaseParameters(int iChannel, Change const & iChange);

  Host_WireOutput mOutput;
  std::vector<std::unique_ptr<Host_ClipPlayback>> mClips;  // in order of adding
  std::vector<Waiting> mWaiting;                           // room for all clips
  std::array<Channel, Host_WireOutput::kNumChannels> mChannels;
  Vrae_ChaseTracker mScratch;
  bool mShallPlay = false;
  int mNumLostNotes = 0;  // of clips that were taken away
};
