#include "host/host_blockplayer.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "host/host_chasemap.h"
#include "host/host_clipplayback.h"
#include "host/host_wireoutput.h"

class Host_BlockPlayer::Impl {
public:
  explicit Impl(Host_BlockReceiver * iReceiverP)
      : mOutput(iReceiverP),
        mScratch(&Host_GetChaseMap(), true),
        mChannelScratch(&Host_GetChaseMap(), true) {}

  Host_ClipPlayback * Find(int iClip) const;
  bool Add(Vrad_Chunk * iChunkP, int iChannel, int iClip);
  void Remove(Host_ClipPlayback & iClip);
  void SetReceiver(Host_BlockReceiver * iReceiverP);
  void Process(int iNumSamples);
  Time_Sample GetPosition() const;
  int GetNumLostNotes() const;

  // What commands ask for; it takes effect in the next block.
  bool mShallPlay = false;
  std::optional<Time_Typed> mLocation;
  bool mHasLoop = false;
  Time_Typed mLoopFrom, mLoopTo;
  Host_ELoopPolicy mLoopPolicy = Host_ELoopPolicy::kCut;
  Host_PlayPosition mPosition;

private:
  enum class EMove { kNone, kJump, kKeepingWrap };

  // A clip with something left in a stretch. Of equal times the clip that was added first comes
  // first.
  struct Waiting {
    Host_ClipPlayback * mClipP;
    size_t mPlace;
    bool operator<(Waiting const & iOther) const {  // later is less, for the standard heap
      Time_Typed const time = mClipP->GetNextTime(), other = iOther.mClipP->GetNextTime();
      return time == other ? iOther.mPlace < mPlace : other < time;
    }
  };

  static constexpr size_t kNumChannels = Host_WireOutput::kNumChannels;

  void DropAbandoned();
  void FollowTempo();
  bool IsLooping() const { return mHasLoop && LoopStart() < LoopEnd(); }
  long long LoopStart() const { return std::max(Host_PlayPosition::SampleOf(mLoopFrom), 0LL); }
  long long LoopEnd() const { return Host_PlayPosition::SampleOf(mLoopTo); }

  bool IsWanted(Host_ClipPlayback const & iClip) const {
    return mShallPlay && mOutput.HasReceiver() && !iClip.mIsMuted && !iClip.IsAbandoned();
  }
  bool MustEnter(Host_ClipPlayback const & iClip, EMove iMove) const {
    return IsWanted(iClip) && (!iClip.IsEngaged() || iClip.mIsEdited || iMove != EMove::kNone);
  }

  void ApplyCommands();
  void Wrap();
  void Change(EMove iMove, Host_PlayPosition const & iTo);
  void LeaveStates(EMove iMove);
  void EnterStates(EMove iMove, Host_PlayPosition const & iFrom);
  void EnterNotes(Host_ClipPlayback & ioClip, EMove iMove, Host_PlayPosition const & iFrom);
  void ChaseChannel(int iChannel);
  bool IsShared(int iChannel) const { return mNumClips[static_cast<size_t>(iChannel)] > 1; }

  void Play(int iNumSamples);
  void PlayTo(long long iSample, int iOffset);
  void PlayStretch(Host_PlayStretch const & iStretch, int iOffset);

  // Tags what goes out for a channel as a whole with the clip that it comes from.
  class ChannelReceiver;

  Host_WireOutput mOutput;
  std::vector<std::unique_ptr<Host_ClipPlayback>> mClips;  // in order of adding
  std::vector<Waiting> mWaiting;                           // room for all clips
  std::array<int, kNumChannels> mNumClips{};               // of each channel
  std::array<bool, kNumChannels> mIsTouched{};             // channels that a change has touched
  Vrae_ChaseTracker mScratch, mChannelScratch;
  bool mIsPlaying = false;
  bool mIsWrapDue = false;  // at the loop's end, and what wrapping sends is still to be sent
};

class Host_BlockPlayer::Impl::ChannelReceiver : public Vrae_EventReceiver {
public:
  ChannelReceiver(Impl & iPlayer, int iChannel) : mPlayer(iPlayer), mChannel(iChannel) {}

  void ReceiveEvent(Vrae_Event const & iEvent) override {
    for (auto const & clipP : mPlayer.mClips)
      if (clipP->GetChannel() == mChannel && mPlayer.IsWanted(*clipP) && clipP->HasTold(iEvent)) {
        clipP->SendEvent(iEvent, mPlayer.mOutput, mPlayer.mPosition.mTick);
        return;
      }
  }

private:
  Impl & mPlayer;
  int mChannel;
};

Host_ClipPlayback * Host_BlockPlayer::Impl::Find(int iClip) const {
  for (auto const & clipP : mClips)
    if (clipP->GetClip() == iClip && !clipP->IsAbandoned()) return clipP.get();
  return nullptr;
}

bool Host_BlockPlayer::Impl::Add(Vrad_Chunk * iChunkP, int iChannel, int iClip) {
  if (!iChunkP || iChannel < -1 || iChannel >= Host_WireOutput::kNumChannels || Find(iClip))
    return false;
  DropAbandoned();
  auto clipP = std::make_unique<Host_ClipPlayback>(iChunkP, std::max(iChannel, 0), iClip);
  clipP->Prepare(mPosition);
  mWaiting.reserve(mClips.size() + 1);
  mClips.push_back(std::move(clipP));
  ++mNumClips[static_cast<size_t>(mClips.back()->GetChannel())];
  return true;
}

void Host_BlockPlayer::Impl::Remove(Host_ClipPlayback & iClip) {
  iClip.Abandon();
  DropAbandoned();
}

// One that still sounds stays until a block has ended it.
void Host_BlockPlayer::Impl::DropAbandoned() {
  std::erase_if(mClips, [this](std::unique_ptr<Host_ClipPlayback> const & iClipP) {
    if (!iClipP->IsAbandoned() || iClipP->IsEngaged()) return false;
    --mNumClips[static_cast<size_t>(iClipP->GetChannel())];
    return true;
  });
}

void Host_BlockPlayer::Impl::SetReceiver(Host_BlockReceiver * iReceiverP) {
  if (mOutput.HasReceiver()) {
    mOutput.GetReceiver()->BeginBlock(0);
    mOutput.SetOffset(0);
    for (auto const & clipP : mClips)
      if (clipP->IsEngaged()) clipP->Disengage(mOutput, mPosition);
    mOutput.GetReceiver()->EndBlock();
  }
  for (auto const & clipP : mClips)
    clipP->ForgetReceiver();
  mOutput.SetReceiver(iReceiverP);
}

Time_Sample Host_BlockPlayer::Impl::GetPosition() const {
  if (mLocation) return Time_Sample(std::max(Host_PlayPosition::SampleOf(*mLocation), 0LL));
  return Time_Sample(mIsWrapDue && IsLooping() ? LoopStart() : mPosition.mSample);
}

int Host_BlockPlayer::Impl::GetNumLostNotes() const {
  int numNotes = 0;
  for (auto const & clipP : mClips)
    numNotes += clipP->GetNumLostNotes();
  return numNotes;
}

void Host_BlockPlayer::Impl::Process(int iNumSamples) {
  int const numSamples = std::max(iNumSamples, 0);
  Host_BlockReceiver * const receiverP = mOutput.GetReceiver();
  if (receiverP) receiverP->BeginBlock(numSamples);
  mOutput.SetOffset(0);
  FollowTempo();
  ApplyCommands();
  if (mIsPlaying) Play(numSamples);
  if (receiverP) receiverP->EndBlock();
}

// Clips have been read up to a tick, so that is what stays when the tempo is another.
void Host_BlockPlayer::Impl::FollowTempo() {
  if (Host_PlayPosition::At(mPosition.mSample).mTick != mPosition.mTick)
    mPosition.mSample = Host_PlayPosition::SampleOf(mPosition.mTick);
}

void Host_BlockPlayer::Impl::ApplyCommands() {
  mIsPlaying = mShallPlay;
  if (mLocation) {
    auto const to = Host_PlayPosition::At(std::max(Host_PlayPosition::SampleOf(*mLocation), 0LL));
    mLocation.reset();
    mIsWrapDue = false;
    if (to.mSample != mPosition.mSample) {
      Change(EMove::kJump, to);
      return;
    }
  }
  if (mIsWrapDue && IsLooping())
    Wrap();
  else
    Change(EMove::kNone, mPosition);
  mIsWrapDue = false;
}

void Host_BlockPlayer::Impl::Wrap() {
  bool const keeps = mLoopPolicy == Host_ELoopPolicy::kKeep;
  Change(keeps ? EMove::kKeepingWrap : EMove::kJump, Host_PlayPosition::At(LoopStart()));
}

void Host_BlockPlayer::Impl::Change(EMove iMove, Host_PlayPosition const & iTo) {
  mIsTouched.fill(false);
  LeaveStates(iMove);
  Host_PlayPosition const from = mPosition;
  mPosition = iTo;
  EnterStates(iMove, from);
}

void Host_BlockPlayer::Impl::LeaveStates(EMove iMove) {
  for (auto const & clipP : mClips) {
    bool const mustEnter = MustEnter(*clipP, iMove);
    bool const mustLeave = clipP->IsEngaged() && !IsWanted(*clipP);
    if (mustEnter || mustLeave) mIsTouched[static_cast<size_t>(clipP->GetChannel())] = true;
    if (mustLeave) {
      clipP->Disengage(mOutput, mPosition);
    } else if (clipP->IsEngaged() && iMove != EMove::kNone) {
      if (iMove == EMove::kJump) clipP->EndNotes(mOutput, mPosition.mTick);
      clipP->LiftPedals(mOutput, mPosition.mTick);
    }
  }
}

void Host_BlockPlayer::Impl::EnterStates(EMove iMove, Host_PlayPosition const & iFrom) {
  for (auto const & clipP : mClips)
    if (MustEnter(*clipP, iMove)) clipP->ChaseValues(mOutput, mPosition, mScratch);
  for (int channel = 0; channel < Host_WireOutput::kNumChannels; ++channel)
    if (mIsTouched[static_cast<size_t>(channel)] && IsShared(channel)) ChaseChannel(channel);
  for (auto const & clipP : mClips)
    if (MustEnter(*clipP, iMove))
      clipP->ChaseParameters(mOutput, iFrom, mPosition, IsShared(clipP->GetChannel()));
  for (auto const & clipP : mClips)
    if (MustEnter(*clipP, iMove)) EnterNotes(*clipP, iMove, iFrom);
}

void Host_BlockPlayer::Impl::EnterNotes(Host_ClipPlayback & ioClip, EMove iMove,
                                        Host_PlayPosition const & iFrom) {
  ioClip.mIsEdited = false;
  if (!ioClip.IsEngaged() || iMove == EMove::kJump)
    ioClip.StrikeNotes(mOutput, mPosition);
  else if (iMove == EMove::kKeepingWrap)
    ioClip.WrapNotes(mOutput, iFrom, mPosition);
  else
    ioClip.ReconcileNotes(mOutput, mPosition);
}

// Each clip has brought its own values. Where several set one value of the channel, the latest
// counts, whichever was sent last.
void Host_BlockPlayer::Impl::ChaseChannel(int iChannel) {
  mChannelScratch.Clear();
  for (auto const & clipP : mClips)
    if (clipP->GetChannel() == iChannel && IsWanted(*clipP))
      clipP->AddChaseState(mChannelScratch, mPosition);
  ChannelReceiver receiver(*this, iChannel);
  mChannelScratch.DoUnMutedUpdate(&mOutput.GetChannelState(iChannel), &receiver);
}

void Host_BlockPlayer::Impl::Play(int iNumSamples) {
  int offset = 0;
  while (offset < iNumSamples) {
    long long length = iNumSamples - offset;
    bool const isAheadOfEnd = IsLooping() && mPosition.mSample < LoopEnd();
    if (isAheadOfEnd) length = std::min(length, LoopEnd() - mPosition.mSample);
    PlayTo(mPosition.mSample + length, offset);
    offset += static_cast<int>(length);
    mIsWrapDue = isAheadOfEnd && mPosition.mSample >= LoopEnd();
    if (mIsWrapDue && offset < iNumSamples) {
      mOutput.SetOffset(offset);
      Wrap();
    }
  }
}

void Host_BlockPlayer::Impl::PlayTo(long long iSample, int iOffset) {
  while (mPosition.mSample < iSample) {
    long long const limit = Host_PlayPosition::SampleOf(
        mPosition.mTick + Time_TickLength(Host_ClipPlayback::kMaxStretch));
    long long const end = std::clamp(limit, mPosition.mSample + 1, iSample);
    int const length = static_cast<int>(end - mPosition.mSample);
    PlayStretch({mPosition, Host_PlayPosition::At(end)}, iOffset);
    iOffset += length;
  }
}

void Host_BlockPlayer::Impl::PlayStretch(Host_PlayStretch const & iStretch, int iOffset) {
  mWaiting.clear();
  for (size_t i = 0; i < mClips.size(); ++i) {
    Host_ClipPlayback & clip = *mClips[i];
    if (!clip.IsEngaged()) continue;
    clip.BeginStretch(iStretch);
    if (clip.FindNext()) mWaiting.push_back({&clip, i});
  }
  std::make_heap(mWaiting.begin(), mWaiting.end());
  long long const start = iStretch.mFrom.mSample, last = iStretch.mTo.mSample - 1;
  while (!mWaiting.empty()) {
    std::pop_heap(mWaiting.begin(), mWaiting.end());
    Host_ClipPlayback & clip = *mWaiting.back().mClipP;
    long long const sample = Host_PlayPosition::SampleOf(clip.GetNextTime());
    mOutput.SetOffset(iOffset + static_cast<int>(std::clamp(sample, start, last) - start));
    clip.SendNext(mOutput);
    if (clip.FindNext()) {
      std::push_heap(mWaiting.begin(), mWaiting.end());
    } else {
      clip.EndStretch();
      mWaiting.pop_back();
    }
  }
  mPosition = iStretch.mTo;
}

Host_BlockPlayer::Host_BlockPlayer(Host_BlockReceiver * iReceiverP)
    : mImplP(std::make_unique<Impl>(iReceiverP)) {}

Host_BlockPlayer::~Host_BlockPlayer() = default;

bool Host_BlockPlayer::AddClip(Vrad_Chunk * iChunkP, int iChannel, int iClip) {
  return mImplP->Add(iChunkP, iChannel, iClip);
}

void Host_BlockPlayer::ClipEdited(int iClip) {
  if (Host_ClipPlayback * const clipP = mImplP->Find(iClip)) {
    clipP->mIsEdited = true;
    clipP->Prepare(mImplP->mPosition);
  }
}

void Host_BlockPlayer::RemoveClip(int iClip) {
  if (Host_ClipPlayback * const clipP = mImplP->Find(iClip)) mImplP->Remove(*clipP);
}

void Host_BlockPlayer::SetMuted(int iClip, bool iIsMuted) {
  if (Host_ClipPlayback * const clipP = mImplP->Find(iClip)) clipP->mIsMuted = iIsMuted;
}

bool Host_BlockPlayer::IsMuted(int iClip) const {
  Host_ClipPlayback const * const clipP = mImplP->Find(iClip);
  return clipP && clipP->mIsMuted;
}

bool Host_BlockPlayer::HasClip(int iClip) const {
  return mImplP->Find(iClip) != nullptr;
}

void Host_BlockPlayer::Start(Time_Typed iPosition) {
  Locate(iPosition);
  Start();
}

void Host_BlockPlayer::Start() {
  mImplP->mShallPlay = true;
}

void Host_BlockPlayer::Stop() {
  mImplP->mShallPlay = false;
}

void Host_BlockPlayer::Locate(Time_Typed iPosition) {
  mImplP->mLocation = iPosition;
}

void Host_BlockPlayer::SetLoop(Time_Typed iFrom, Time_Typed iTo) {
  mImplP->mHasLoop = true;
  mImplP->mLoopFrom = iFrom;
  mImplP->mLoopTo = iTo;
}

void Host_BlockPlayer::ClearLoop() {
  mImplP->mHasLoop = false;
}

void Host_BlockPlayer::SetLoopPolicy(Host_ELoopPolicy iPolicy) {
  mImplP->mLoopPolicy = iPolicy;
}

void Host_BlockPlayer::SetReceiver(Host_BlockReceiver * iReceiverP) {
  mImplP->SetReceiver(iReceiverP);
}

void Host_BlockPlayer::Process(int iNumSamples) {
  mImplP->Process(iNumSamples);
}

bool Host_BlockPlayer::IsPlaying() const {
  return mImplP->mShallPlay;
}

Time_Sample Host_BlockPlayer::GetPosition() const {
  return mImplP->GetPosition();
}

int Host_BlockPlayer::GetNumLostNotes() const {
  return mImplP->GetNumLostNotes();
}
