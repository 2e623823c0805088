#include "host/host_blockplayer.h"

#include <algorithm>
#include <optional>

#include "host/host_playedclips.h"
#include "host/host_playposition.h"

namespace {

// There is nothing to play before sample 0, and behind the last one there is room for any block.
long long PlayedSample(Time_Typed iTime) {
  return std::clamp(Host_PlayPosition::SampleOf(iTime), 0LL, Host_BlockPlayer::kLastSample);
}

}  // namespace

// The transport: when which stretch is played, and where it goes on.
class Host_BlockPlayer::Impl {
public:
  explicit Impl(Host_BlockReceiver * iReceiverP) : mClips(iReceiverP) {}

  void Process(int iNumSamples);
  Time_Sample GetPosition() const;

  Host_PlayedClips mClips;

  // What commands ask for. It takes effect in the next block.
  bool mShallPlay = false;
  std::optional<Time_Typed> mLocation;
  bool mHasLoop = false;
  Time_Typed mLoopFrom, mLoopTo;
  Host_ELoopPolicy mLoopPolicy = Host_ELoopPolicy::kCut;

  Host_PlayPosition mPosition;

private:
  typedef Host_PlayedClips::EMove EMove;

  bool IsLooping() const { return mHasLoop && LoopStart() < LoopEnd(); }
  long long LoopStart() const { return PlayedSample(mLoopFrom); }
  long long LoopEnd() const { return PlayedSample(mLoopTo); }
  bool MustWrap() const { return mIsWrapDue && IsLooping() && GetSample() >= LoopEnd(); }

  long long GetSample() const;
  void FollowTempo();
  void ApplyCommands();
  void Wrap();
  void Move(EMove iMove, Host_PlayPosition const & iTo);
  void Play(int iNumSamples);
  void PlayTo(long long iSample, int iOffset);

  bool mIsWrapDue = false;  // it has come to the loop's end, and still has to go back
};

Time_Sample Host_BlockPlayer::Impl::GetPosition() const {
  if (mLocation) return Time_Sample(PlayedSample(*mLocation));
  return Time_Sample(MustWrap() ? LoopStart() : GetSample());
}

void Host_BlockPlayer::Impl::Process(int iNumSamples) {
  int const numSamples = std::max(iNumSamples, 0);
  Host_BlockReceiver * const receiverP = mClips.GetOutput().GetReceiver();
  if (receiverP) receiverP->BeginBlock(numSamples);
  mClips.GetOutput().SetOffset(0);
  FollowTempo();
  ApplyCommands();
  if (mShallPlay) Play(numSamples);
  if (receiverP) receiverP->EndBlock();
}

// Clips have been read up to a tick, so that is what stays when the tempo is another.
long long Host_BlockPlayer::Impl::GetSample() const {
  bool const isAsBefore = Host_PlayPosition::At(mPosition.mSample).mTick == mPosition.mTick;
  return isAsBefore ? mPosition.mSample : PlayedSample(mPosition.mTick);
}

void Host_BlockPlayer::Impl::FollowTempo() {
  long long const sample = GetSample();
  if (sample == mPosition.mSample) return;
  mClips.MovePosition(sample - mPosition.mSample);
  mPosition.mSample = sample;
}

void Host_BlockPlayer::Impl::ApplyCommands() {
  bool const mustWrap = MustWrap();
  mIsWrapDue = false;
  if (!mLocation) {
    if (mustWrap)
      Wrap();
    else
      Move(EMove::kNone, mPosition);
    return;
  }
  auto const to = Host_PlayPosition::At(PlayedSample(*mLocation));
  mLocation.reset();
  if (to.mSample == mPosition.mSample)
    Move(EMove::kNone, mPosition);
  else
    Move(EMove::kJump, to);
}

void Host_BlockPlayer::Impl::Wrap() {
  bool const keeps = mLoopPolicy == Host_ELoopPolicy::kKeep;
  Move(keeps ? EMove::kKeepingWrap : EMove::kJump, Host_PlayPosition::At(LoopStart()));
}

void Host_BlockPlayer::Impl::Move(EMove iMove, Host_PlayPosition const & iTo) {
  mClips.Apply({mShallPlay, iMove, mPosition, iTo});
  mPosition = iTo;
}

void Host_BlockPlayer::Impl::Play(int iNumSamples) {
  int offset = 0;
  while (offset < iNumSamples) {
    long long length = iNumSamples - offset;
    bool const isAheadOfEnd = IsLooping() && mPosition.mSample < LoopEnd();
    if (isAheadOfEnd) length = std::min(length, LoopEnd() - mPosition.mSample);
    PlayTo(mPosition.mSample + length, offset);
    offset += static_cast<int>(length);
    if (!isAheadOfEnd || mPosition.mSample < LoopEnd()) continue;
    mIsWrapDue = offset == iNumSamples;
    if (mIsWrapDue) return;  // what going back sends comes with the next block
    mClips.GetOutput().SetOffset(offset);
    Wrap();
  }
}

void Host_BlockPlayer::Impl::PlayTo(long long iSample, int iOffset) {
  while (mPosition.mSample < iSample) {
    long long const limit = Host_PlayPosition::SampleOf(
        mPosition.mTick + Time_TickLength(Host_ClipPlayback::kMaxStretch));
    long long const end = std::clamp(limit, mPosition.mSample + 1, iSample);
    Host_PlayStretch const stretch = {mPosition, Host_PlayPosition::At(end)};
    mClips.Play(stretch, iOffset);
    iOffset += static_cast<int>(end - mPosition.mSample);
    mPosition = stretch.mTo;
  }
}

Host_BlockPlayer::Host_BlockPlayer(Host_BlockReceiver * iReceiverP)
    : mImplP(std::make_unique<Impl>(iReceiverP)) {}

Host_BlockPlayer::~Host_BlockPlayer() = default;

bool Host_BlockPlayer::AddClip(Vrad_Chunk * iChunkP, int iChannel, int iClip) {
  return mImplP->mClips.Add(iChunkP, iChannel, iClip, mImplP->mPosition);
}

void Host_BlockPlayer::ClipEdited(int iClip) {
  if (Host_ClipPlayback * const clipP = mImplP->mClips.Find(iClip))
    mImplP->mClips.TakeEdit(*clipP, mImplP->mPosition);
}

void Host_BlockPlayer::ClipEdited(int iClip, Time_Typed iFrom, Time_Typed iTo) {
  if (Host_ClipPlayback * const clipP = mImplP->mClips.Find(iClip))
    mImplP->mClips.TakeEdit(*clipP, mImplP->mPosition, Host_TimeRange{iFrom, iTo});
}

void Host_BlockPlayer::RemoveClip(int iClip) {
  if (Host_ClipPlayback * const clipP = mImplP->mClips.Find(iClip)) mImplP->mClips.Remove(*clipP);
}

void Host_BlockPlayer::SetMuted(int iClip, bool iIsMuted) {
  if (Host_ClipPlayback * const clipP = mImplP->mClips.Find(iClip))
    mImplP->mClips.SetMuted(*clipP, iIsMuted);
}

bool Host_BlockPlayer::IsMuted(int iClip) const {
  Host_ClipPlayback const * const clipP = mImplP->mClips.Find(iClip);
  return clipP && clipP->mIsMuted;
}

bool Host_BlockPlayer::HasClip(int iClip) const {
  return mImplP->mClips.Find(iClip) != nullptr;
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
  mImplP->mClips.SetReceiver(iReceiverP, mImplP->mPosition);
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
  return mImplP->mClips.GetNumLostNotes();
}
