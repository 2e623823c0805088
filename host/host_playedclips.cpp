#include "host/host_playedclips.h"

#include <algorithm>

#include "host/host_chasemap.h"

// Tags what goes out for a channel as a whole with a clip.
class Host_PlayedClips::ChannelReceiver : public Vrae_EventReceiver, public Host_ParameterReceiver {
public:
  ChannelReceiver(Host_PlayedClips & ioClips, int iChannel, Host_PlayPosition const & iPosition)
      : mClips(ioClips), mChannel(iChannel), mPosition(iPosition) {}

  // The clip that the value comes from was told it already.
  void ReceiveEvent(Vrae_Event const & iEvent) override {
    for (auto const & clipP : mClips.mClips)
      if (mClips.IsOn(mChannel, *clipP) && mClips.IsWanted(*clipP) && clipP->HasTold(iEvent)) {
        if (iEvent.GetType() == Vrae_Event::kProgram)
          clipP->SendProgram(iEvent, mClips.mOutput, mPosition, clipP->AreValuesChased());
        else
          clipP->SendEvent(iEvent, mClips.mOutput, mPosition.mTick);
        return;
      }
  }

  void ReceiveParameterController(int iClip, int iNumber, int iValue) override {
    mClips.mOutput.SendController(iNumber, iValue, {iClip, mChannel, mPosition.mTick});
  }

private:
  Host_PlayedClips & mClips;
  int mChannel;
  Host_PlayPosition mPosition;
};

Host_PlayedClips::Host_PlayedClips(Host_BlockReceiver * iReceiverP)
    : mOutput(iReceiverP), mScratch(&Host_GetChaseMap(), true) {}

Host_ClipPlayback * Host_PlayedClips::Find(int iClip) const {
  for (auto const & clipP : mClips)
    if (clipP->GetClip() == iClip && !clipP->IsAbandoned()) return clipP.get();
  return nullptr;
}

bool Host_PlayedClips::Add(Vrad_Chunk * iChunkP, int iChannel, int iClip,
                           Host_PlayPosition const & iPosition) {
  if (!iChunkP || iChannel < -1 || iChannel >= Host_WireOutput::kNumChannels || Find(iClip))
    return false;
  DropAbandoned();
  auto clipP = std::make_unique<Host_ClipPlayback>(iChunkP, std::max(iChannel, 0), iClip);
  clipP->Prepare(iPosition);
  int const channel = clipP->GetChannel();
  ReserveParameters(channel, clipP->GetParameters().size());
  mWaiting.reserve(mClips.size() + 1);
  mClips.reserve(mClips.size() + 1);  // the last that can fail
  for (auto const & otherP : mClips)
    if (IsOn(channel, *otherP)) ChannelOf(*otherP).mIsShared = true;
  mClips.push_back(std::move(clipP));
  return true;
}

void Host_PlayedClips::TakeEdit(Host_ClipPlayback & ioClip, Host_PlayPosition const & iPosition,
                                std::optional<Host_TimeRange> const & iRange) {
  ioClip.mIsEdited = true;
  ioClip.Prepare(iPosition, iRange);
  ReserveParameters(ioClip.GetChannel(), 0);
}

void Host_PlayedClips::Remove(Host_ClipPlayback & ioClip) {
  ioClip.Abandon();
  ChannelOf(ioClip).mIsStale = true;
  DropAbandoned();
}

void Host_PlayedClips::SetMuted(Host_ClipPlayback & ioClip, bool iIsMuted) {
  if (ioClip.mIsMuted != iIsMuted) ChannelOf(ioClip).mIsStale = true;
  ioClip.mIsMuted = iIsMuted;
}

// One that still sounds stays until a block has ended it.
void Host_PlayedClips::DropAbandoned() {
  std::erase_if(mClips, [this](std::unique_ptr<Host_ClipPlayback> const & iClipP) {
    bool const isDropped = iClipP->IsAbandoned() && !iClipP->IsEngaged();
    if (isDropped) mNumLostNotes += iClipP->GetNumLostNotes();
    return isDropped;
  });
}

void Host_PlayedClips::ReserveParameters(int iChannel, size_t iNumMore) {
  size_t numMessages = iNumMore;
  for (auto const & clipP : mClips)
    if (IsOn(iChannel, *clipP)) numMessages += clipP->GetParameters().size();
  Channel & channel = mChannels[static_cast<size_t>(iChannel)];
  channel.mParameters.Reserve(numMessages);
  channel.mIsStale = true;
}

void Host_PlayedClips::SetReceiver(Host_BlockReceiver * iReceiverP,
                                   Host_PlayPosition const & iPosition) {
  if (mOutput.HasReceiver()) {
    mOutput.GetReceiver()->BeginBlock(0);
    mOutput.SetOffset(0);
    for (auto const & clipP : mClips) {
      if (!clipP->IsEngaged()) continue;
      clipP->Disengage(mOutput, iPosition.mTick);
      ChannelOf(*clipP).mPosition = iPosition;
    }
    mOutput.GetReceiver()->EndBlock();
  }
  for (auto const & clipP : mClips)
    clipP->ForgetReceiver();
  mOutput.SetReceiver(iReceiverP);
}

int Host_PlayedClips::GetNumLostNotes() const {
  int numNotes = mNumLostNotes;
  for (auto const & clipP : mClips)
    numNotes += clipP->GetNumLostNotes();
  return numNotes;
}

void Host_PlayedClips::Apply(Change const & iChange) {
  BeginChange(iChange);
  LeaveStates(iChange);
  EnterStates(iChange);
}

void Host_PlayedClips::BeginChange(Change const & iChange) {
  mShallPlay = iChange.mShallPlay;
  for (Channel & channel : mChannels)
    channel.mIsTouched = channel.mWasEngaged = false;
  for (auto const & clipP : mClips) {
    clipP->SortNotes(mOutput, iChange.mFrom.mTick);
    Channel & channel = ChannelOf(*clipP);
    bool const mustLeave = clipP->IsEngaged() && !IsWanted(*clipP);
    if (mustLeave || MustEnter(*clipP, iChange.mMove)) channel.mIsTouched = true;
    if (!clipP->IsEngaged()) continue;
    channel.mWasEngaged = true;
    channel.mPosition = iChange.mFrom;
  }
  for (int i = 0; i < Host_WireOutput::kNumChannels; ++i)
    if (mChannels[static_cast<size_t>(i)].mIsStale) MergeParameters(i);
}

void Host_PlayedClips::MergeParameters(int iChannel) {
  Channel & channel = mChannels[static_cast<size_t>(iChannel)];
  channel.mParameters.Begin();
  for (auto const & clipP : mClips)
    if (IsOn(iChannel, *clipP) && CanPlay(*clipP)) channel.mParameters.Add(clipP->GetParameters());
  channel.mParameters.End();
  channel.mAreParametersNew =
      channel.mAreParametersNew || !channel.mParameters.IsSameUpTo(channel.mPosition);
  channel.mIsStale = false;
}

void Host_PlayedClips::LeaveStates(Change const & iChange) {
  Time_Typed const time = iChange.mFrom.mTick;
  for (auto const & clipP : mClips) {
    if (!clipP->IsEngaged()) continue;
    if (!IsWanted(*clipP)) {
      clipP->Disengage(mOutput, time);
    } else if (iChange.mMove != EMove::kNone) {
      if (iChange.mMove == EMove::kJump) clipP->EndNotes(mOutput, time);
      clipP->LiftPedals(mOutput, time);
    }
  }
}

void Host_PlayedClips::EnterStates(Change const & iChange) {
  EMove const move = iChange.mMove;
  for (auto const & clipP : mClips)
    if (MustEnter(*clipP, move))
      clipP->ChaseValues(mOutput, iChange.mFrom, iChange.mTo,
                         ChannelOf(*clipP).mParameters.HasSelections(), mScratch);
  for (int i = 0; i < Host_WireOutput::kNumChannels; ++i) {
    Channel const & channel = mChannels[static_cast<size_t>(i)];
    if (channel.mIsTouched && channel.mIsShared) ChaseSharedValues(i, iChange.mTo);
    if (channel.mIsTouched && mShallPlay && mOutput.HasReceiver()) ChaseParameters(i, iChange);
  }
  for (auto const & clipP : mClips)
    if (MustEnter(*clipP, move)) EnterNotes(*clipP, iChange);
}

void Host_PlayedClips::EnterNotes(Host_ClipPlayback & ioClip, Change const & iChange) {
  ioClip.mIsEdited = false;
  if (!ioClip.IsEngaged() || iChange.mMove == EMove::kJump)
    ioClip.StrikeNotes(mOutput, iChange.mTo);
  else if (iChange.mMove == EMove::kKeepingWrap)
    ioClip.WrapNotes(mOutput, iChange.mFrom, iChange.mTo);
  else
    ioClip.ReconcileNotes(mOutput, iChange.mTo);
}

// Each clip has brought its own values. Where several set one value of the channel the latest
// counts, whichever was sent last. What comes at the position is left to the block, unless the clip
// has brought it.
void Host_PlayedClips::ChaseSharedValues(int iChannel, Host_PlayPosition const & iPosition) {
  bool const hasSelections = mChannels[static_cast<size_t>(iChannel)].mParameters.HasSelections();
  mScratch.Clear();
  for (auto const & clipP : mClips)
    if (IsOn(iChannel, *clipP) && IsWanted(*clipP))
      clipP->AddChaseState(mScratch, iPosition, hasSelections, clipP->AreValuesChased());
  ChannelReceiver receiver(*this, iChannel, iPosition);
  mScratch.DoUnMutedUpdate(&mOutput.GetChannelState(iChannel), &receiver);
}

void Host_PlayedClips::ChaseParameters(int iChannel, Change const & iChange) {
  Channel & channel = mChannels[static_cast<size_t>(iChannel)];
  ChannelReceiver receiver(*this, iChannel, iChange.mTo);
  channel.mParameters.Restore(channel.mParameters.GetPlace(channel.mPosition),
                              channel.mParameters.GetPlace(iChange.mTo),
                              !channel.mWasEngaged || channel.mAreParametersNew, receiver);
  channel.mAreParametersNew = false;
}

void Host_PlayedClips::MovePosition(long long iNumSamples) {
  for (auto const & clipP : mClips)
    clipP->MovePosition(iNumSamples);
  for (Channel & channel : mChannels)
    if (channel.mParameters.HasSamples()) channel.mIsStale = channel.mAreParametersNew = true;
}

void Host_PlayedClips::Play(Host_PlayStretch const & iStretch, int iOffset) {
  mWaiting.clear();
  for (size_t i = 0; i < mClips.size(); ++i) {
    Host_ClipPlayback & clip = *mClips[i];
    if (!clip.IsEngaged()) continue;
    clip.BeginStretch(iStretch);
    if (clip.FindNext()) mWaiting.push_back({&clip, i});
  }
  std::make_heap(mWaiting.begin(), mWaiting.end());
  long long const last = iStretch.mTo.mSample - 1;
  long long start = iStretch.mFrom.mSample;
  while (!mWaiting.empty()) {
    std::pop_heap(mWaiting.begin(), mWaiting.end());
    Host_ClipPlayback & clip = *mWaiting.back().mClipP;
    // A note of the clip's may end before it begins.
    start = std::clamp(Host_PlayPosition::SampleOf(clip.GetNextTime()), start, last);
    mOutput.SetOffset(iOffset + static_cast<int>(start - iStretch.mFrom.mSample));
    clip.SendNext(mOutput);
    if (clip.FindNext()) {
      std::push_heap(mWaiting.begin(), mWaiting.end());
    } else {
      clip.EndStretch();
      mWaiting.pop_back();
    }
  }
}
