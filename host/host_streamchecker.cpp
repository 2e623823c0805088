// Notes in time, and what the transport does to them.
#include "host/host_streamchecker.h"

#include <algorithm>
#include <cstdio>

#include "host/host_streamchecker_impl.h"

namespace {

std::string HexOf(std::vector<unsigned char> const & iBytes) {
  constexpr size_t kMaxShown = 12;
  std::string text;
  for (size_t i = 0; i < std::min(iBytes.size(), kMaxShown); ++i) {
    char byte[4];
    std::snprintf(byte, sizeof byte, "%02x", iBytes[i]);
    text += (i == 0 ? "" : " ") + std::string(byte);
  }
  return text + (iBytes.size() > kMaxShown ? " ..." : "");
}

// Positions before the first sample and behind the last one count as these.
long long PlayedSample(Time_Typed iTime) {
  return std::clamp(Host_SampleOf(iTime), 0LL, Host_BlockPlayer::kLastSample);
}

}  // namespace

void Host_StreamChecker::Impl::Blame(Host_EViolation iKind, int iClip, int iChannel,
                                     std::string const & iText) {
  if (!IsGood()) return;
  int const offset = mIsOpen ? mOpenOffset : mLastOffset;
  mViolation.mKind = iKind;
  mViolation.mBlock = mBlock;
  mViolation.mOffset = offset;
  mViolation.mSample = PositionAt(offset);
  mViolation.mClip = iClip;
  mViolation.mChannel = iChannel;
  std::string where = "block " + std::to_string(mBlock) + ", offset " + std::to_string(offset) +
                      " (sample " + std::to_string(mViolation.mSample) + "): ";
  if (iClip >= 0) where += "clip " + std::to_string(iClip) + ", ";
  if (iChannel >= 0) where += "channel " + std::to_string(iChannel) + ": ";
  mViolation.mText = where + iText;
}

// ---- Clips and transport ----

Host_StreamChecker::Impl::Clip * Host_StreamChecker::Impl::FindClip(int iNumber) {
  for (auto const & clipP : mClips)
    if (clipP->mNumber == iNumber && !clipP->mIsRemoved) return clipP.get();
  return nullptr;
}

void Host_StreamChecker::Impl::SetPending(Clip & ioClip, EPending iPending, char const * iWhy) {
  if (iPending < ioClip.mPending) return;
  ioClip.mPending = iPending;
  ioClip.mWhy = iWhy;
}

void Host_StreamChecker::Impl::SetAllPending(EPending iPending, char const * iWhy) {
  for (auto const & clipP : mClips)
    SetPending(*clipP, iPending, iWhy);
  for (Channel & channel : mChannels)
    channel.mIsExpectedStale = true;
}

bool Host_StreamChecker::Impl::AddClip(Vrad_Chunk const * iChunkP, int iChannel, int iClip) {
  if (iChunkP == nullptr || iChannel < -1 || iChannel >= kNumChannels || FindClip(iClip) != nullptr)
    return false;
  auto clipP = std::make_unique<Clip>();
  // One of that number that was taken away may sound yet.
  auto const former = std::find_if(mClips.begin(), mClips.end(), [&](auto const & iP) {
    return iP->mNumber == iClip && iP->mChannel == std::max(iChannel, 0);
  });
  if (former != mClips.end()) {
    clipP->mNotes = (*former)->mNotes;
    clipP->mNotes.Orphan();
    mClips.erase(former);
  }
  clipP->mChunkP = iChunkP;
  clipP->mChannel = std::max(iChannel, 0);
  clipP->mNumber = iClip;
  clipP->mWhy = "after the clip was added";
  clipP->mContents.Read(*iChunkP);
  mChannels[clipP->mChannel].mIsExpectedStale = true;
  mClips.push_back(std::move(clipP));
  return true;
}

// What sounds is found again by its beginning, its pitch and its velocity.
void Host_StreamChecker::Impl::ClipEdited(int iClip) {
  Clip * const clipP = FindClip(iClip);
  if (clipP == nullptr) return;
  std::vector<Host_CheckedClip::Note> const former = clipP->mContents.GetNotes();
  clipP->mContents.Read(*clipP->mChunkP);
  clipP->mNotes.FollowEdit(former, clipP->mContents.GetNotes());
  SetPending(*clipP, EPending::kKeepSounding, "after the edit");
  mChannels[clipP->mChannel].mIsExpectedStale = true;
}

void Host_StreamChecker::Impl::RemoveClip(int iClip) {
  Clip * const clipP = FindClip(iClip);
  if (clipP == nullptr) return;
  clipP->mPending = EPending::kNone;
  SetPending(*clipP, EPending::kAnew, "after the clip was taken away");
  clipP->mIsRemoved = true;
  clipP->mChunkP = nullptr;
  mChannels[clipP->mChannel].mIsExpectedStale = true;
}

void Host_StreamChecker::Impl::SetMuted(int iClip, bool iIsMuted) {
  Clip * const clipP = FindClip(iClip);
  if (clipP == nullptr || clipP->mIsMuted == iIsMuted) return;
  clipP->mIsMuted = iIsMuted;
  clipP->mPending = EPending::kNone;
  SetPending(*clipP, EPending::kAnew, iIsMuted ? "after the mute" : "after the unmute");
  mChannels[clipP->mChannel].mIsExpectedStale = true;
}

void Host_StreamChecker::Impl::TempoChanged() {
  mPosition = PlayedSample(mPositionTick);
  for (auto const & clipP : mClips) {
    clipP->mContents.ComputeSamples();
    clipP->mNotes.FreeRingingNotes(true);
    clipP->mIsTempoNew = true;
  }
  SetAllPending(EPending::kKeepSounding, "after the change of tempo");
}

bool Host_StreamChecker::Impl::IsLooping() const {
  return mHasLoop && LoopStart() < LoopEnd();
}

long long Host_StreamChecker::Impl::LoopStart() const {
  return PlayedSample(mLoopFrom);
}

long long Host_StreamChecker::Impl::LoopEnd() const {
  return PlayedSample(mLoopTo);
}

// It has come to the loop's end, and that has not been moved behind since.
bool Host_StreamChecker::Impl::MustWrap() const {
  return mIsWrapDue && IsLooping() && mPosition >= LoopEnd();
}

long long Host_StreamChecker::Impl::GetPosition() const {
  if (mLocation) return PlayedSample(*mLocation);
  return MustWrap() ? LoopStart() : mPosition;
}

void Host_StreamChecker::Impl::CheckPosition(long long iSample) {
  if (iSample == GetPosition()) return;
  Blame(Host_EViolation::kPosition, -1, -1,
        "the position is " + std::to_string(iSample) + " instead of " +
            std::to_string(GetPosition()));
}

void Host_StreamChecker::Impl::SetPosition(long long iSample) {
  mPosition = iSample;
  mPositionTick = Time_Typed(Time_Sample(iSample)).AsTick();
}

// What commands have asked for.
void Host_StreamChecker::Impl::ApplyCommands() {
  bool const wasPlaying = mIsPlaying;
  if (mShallPlay != mIsPlaying) {
    mIsPlaying = mShallPlay;
    SetAllPending(EPending::kAnew, mIsPlaying ? "after the start" : "after the stop");
  }
  if (mLocation) {
    long long const sample = GetPosition();
    mLocation.reset();
    mIsWrapDue = false;
    if (sample == mPosition) return;
    SetPosition(sample);
    if (wasPlaying && mIsPlaying) SetAllPending(EPending::kAnew, "after the jump");
  }
}

// ---- Time within a block ----

void Host_StreamChecker::Impl::BeginBlock(int iNumSamples) {
  if (!IsGood()) return;
  if (mIsInBlock)
    return Blame(Host_EViolation::kOrder, -1, -1, "a block begins before this one has ended");
  ++mBlock;
  mBlockLength = std::max(iNumSamples, 0);
  mIsInBlock = true;
  mLastOffset = mNextOffset = mRunOffset = 0;
  ApplyCommands();
  mRunPosition = mPosition;
  if (MustWrap()) {
    WrapAt(0);
    SetPosition(mRunPosition);
  }
  mIsWrapDue = false;
  mLoops = mIsPlaying && IsLooping() && mPosition < LoopEnd();
  mLoopEnd = LoopEnd();
}

// The first offset from there on at which something is due; the block's length if nothing is.
int Host_StreamChecker::Impl::FindNextOffset(int iFrom) const {
  long long next = mBlockLength;
  for (auto const & clipP : mClips) {
    Clip const & clip = *clipP;
    if (clip.mPending != EPending::kNone) return iFrom;
    std::vector<Edge> const & edges = clip.mContents.GetEdges();
    if (Plays(clip) && clip.mNextEdge < edges.size()) {
      long long const distance = edges[clip.mNextEdge].mSample - mRunPosition;
      if (distance < mBlockLength) next = std::min(next, mRunOffset + distance);
    }
    next = std::min(next, clip.mNotes.GetNextRingingEnd() - mClock);
  }
  return static_cast<int>(std::max<long long>(next, iFrom));
}

void Host_StreamChecker::Impl::WrapAt(int iOffset) {
  for (auto const & clipP : mClips)
    clipP->mNotes.SetRests(clipP->mContents.GetNotes(), PositionAt(iOffset), mClock + iOffset);
  mRunOffset = iOffset;
  mRunPosition = LoopStart();
  SetAllPending(EPending::kWrap, "after the loop's end");
}

// Looks at everything before the offset and opens it.
void Host_StreamChecker::Impl::AdvanceTo(int iOffset) {
  while (IsGood() && !(mIsOpen && mOpenOffset == iOffset)) {
    if (mIsOpen) CloseSample();
    if (mLoops && PositionAt(mNextOffset) == mLoopEnd) WrapAt(mNextOffset);
    long long next = std::min(FindNextOffset(mNextOffset), iOffset);
    if (mLoops) next = std::min(next, mRunOffset + (mLoopEnd - mRunPosition));
    if (mLoops && PositionAt(static_cast<int>(next)) == mLoopEnd) {
      mNextOffset = static_cast<int>(next);
      continue;
    }
    OpenSample(static_cast<int>(next));
  }
}

void Host_StreamChecker::Impl::EndBlock() {
  if (!IsGood() || !mIsInBlock) return;
  AdvanceTo(std::max(mBlockLength - 1, 0));
  if (IsGood()) CloseSample();
  if (!IsGood()) return;
  mIsInBlock = false;
  if (mIsPlaying && mBlockLength > 0) {
    SetPosition(PositionAt(mBlockLength));
    mIsWrapDue = mLoops && mPosition == mLoopEnd;
  }
  mClock += mBlockLength;
  std::erase_if(mClips, [](auto const & clipP) { return clipP->mIsRemoved; });
}

void Host_StreamChecker::Impl::OpenSample(int iOffset) {
  mIsOpen = true;
  mIsBetween = mBlockLength == 0;
  mOpenOffset = iOffset;
  for (Channel & channel : mChannels) {
    channel.mTouched.clear();
    channel.mParameterEdges.clear();
    channel.mIsAllChanged = channel.mIsAllLookedAt = false;
  }
  for (size_t i = 0; i < mClips.size(); ++i)
    OpenClip(i);
}

void Host_StreamChecker::Impl::CloseSample() {
  for (auto const & clipP : mClips) {
    CheckNotes(*clipP);
    CheckSysexes(*clipP);
  }
  CheckValues();
  mNextOffset = mOpenOffset + 1;
  if (IsGood()) mIsOpen = false;
}

// ---- One clip in the open sample ----

void Host_StreamChecker::Impl::OpenClip(size_t iClip) {
  Clip & clip = *mClips[iClip];
  clip.mNotes.OpenSample();
  clip.mDueSysexes.clear();
  clip.mSentSysexes.clear();
  EPending const pending = std::exchange(clip.mPending, EPending::kNone);
  if (pending == EPending::kNone) {
    clip.mWhy = "";
  } else {
    mChannels[clip.mChannel].mIsAllChanged = true;
    clip.mNextEdge = clip.mContents.FindEdge(PositionAt(mOpenOffset));
    if (pending == EPending::kKeepSounding)
      GoOnSounding(clip);
    else if (pending == EPending::kWrap && mPolicy == Host_ELoopPolicy::kKeep)
      Wrap(clip);
    else
      StartAnew(clip);
  }
  if (Plays(clip) && !mIsBetween) TakeEdges(iClip);
  clip.mNotes.EndRinging(mClock + mOpenOffset);
}

bool Host_StreamChecker::Impl::EndsLater(Host_CheckedClip::Note const & iNote) const {
  return iNote.mEnd > Time_Typed(Time_Sample(PositionAt(mOpenOffset)));
}

// Strikes the notes that began before the open sample and end after its beginning, those apart that
// sound on. One that ends within the sample may as well be left out.
void Host_StreamChecker::Impl::StrikeHeldOver(Clip & ioClip) {
  if (!Plays(ioClip)) return;
  long long const sample = PositionAt(mOpenOffset);
  for (int const index : ioClip.mContents.FindSounding(sample)) {
    Host_CheckedClip::Note const & note = ioClip.NoteAt(index);
    if (ioClip.mNotes.IsSounding(index) || !EndsLater(note)) continue;
    if (note.mEndSample <= sample && !mIsBetween)
      ioClip.mNotes.Pass(note, true);
    else
      ioClip.mNotes.Strike(index, note, true);
  }
}

void Host_StreamChecker::Impl::StartAnew(Clip & ioClip) {
  ioClip.mNotes.EndAll();
  StrikeHeldOver(ioClip);
}

void Host_StreamChecker::Impl::Wrap(Clip & ioClip) {
  long long const sample = PositionAt(mOpenOffset);
  ioClip.mNotes.Blur();
  ioClip.mNotes.RingUnless([&](int iIndex) {
    Host_CheckedClip::Note const & note = ioClip.NoteAt(iIndex);
    return Plays(ioClip) && note.mStartSample < sample && EndsLater(note);
  });
  StrikeHeldOver(ioClip);
}

// A note that begins in the open sample may have been struck before: then the tempo has moved it.
void Host_StreamChecker::Impl::GoOnSounding(Clip & ioClip) {
  long long const sample = PositionAt(mOpenOffset);
  ioClip.mNotes.Blur();
  ioClip.mNotes.EndUnless(
      [&](int iIndex) {
        Host_CheckedClip::Note const & note = ioClip.NoteAt(iIndex);
        return Plays(ioClip) && note.mStartSample <= sample && EndsLater(note);
      },
      true);
  StrikeHeldOver(ioClip);
}

void Host_StreamChecker::Impl::TakeEdges(size_t iClip) {
  Clip & clip = *mClips[iClip];
  clip.mMayHavePassed = std::exchange(clip.mIsTempoNew, false);
  Channel & channel = mChannels[clip.mChannel];
  std::vector<Edge> const & edges = clip.mContents.GetEdges();
  long long const sample = PositionAt(mOpenOffset);
  for (; clip.mNextEdge < edges.size() && edges[clip.mNextEdge].mSample <= sample;
       ++clip.mNextEdge) {
    Edge const & edge = edges[clip.mNextEdge];
    if (edge.mKind == EEdge::kValue) {
      channel.mTouched.push_back(edge.mKey);
      if (Host_IsParameterKey(edge.mKey))
        channel.mParameterEdges.push_back({edge.mTime, iClip, edge.mKey, ValueOf(clip, edge)});
    } else if (edge.mKind == EEdge::kSysex) {
      clip.mDueSysexes.push_back(edge.mIndex);
    } else {
      TakeNoteEdge(clip, edge);
    }
  }
}

int Host_StreamChecker::Impl::ValueOf(Clip const & iClip, Edge const & iEdge) {
  return iClip.mContents.GetValues().at(iEdge.mKey)[static_cast<size_t>(iEdge.mIndex)].mValue;
}

void Host_StreamChecker::Impl::TakeNoteEdge(Clip & ioClip, Edge const & iEdge) {
  Host_CheckedClip::Note const & note = ioClip.NoteAt(iEdge.mIndex);
  bool const isStart = iEdge.mKind == EEdge::kNoteStart;
  if (note.IsInstant()) {
    if (isStart) ioClip.mNotes.Pass(note, ioClip.mMayHavePassed);
  } else if (!isStart) {
    ioClip.mNotes.End(iEdge.mIndex, note);
  } else if (!ioClip.mNotes.IsSounding(iEdge.mIndex)) {
    ioClip.mNotes.Strike(iEdge.mIndex, note, false);
  }
}

void Host_StreamChecker::Impl::CheckNotes(Clip & ioClip) {
  std::string const why = ioClip.mWhy;
  Host_NoteFlaw const flaw = ioClip.mNotes.CloseSample(why.empty() ? "" : " " + why);
  if (flaw.mKind != Host_EViolation::kNone) Blame(flaw.mKind, ioClip, flaw.mText);
}

void Host_StreamChecker::Impl::CheckSysexes(Clip & ioClip) {
  std::vector<Host_CheckedClip::Sysex> const & sysexes = ioClip.mContents.GetSysexes();
  size_t numSent = 0;
  for (int const index : ioClip.mDueSysexes) {
    std::vector<unsigned char> const & bytes = sysexes[static_cast<size_t>(index)].mBytes;
    bool const isSent =
        numSent < ioClip.mSentSysexes.size() && ioClip.mSentSysexes[numSent] == bytes;
    if (isSent)
      ++numSent;
    else if (!ioClip.mMayHavePassed)
      return Blame(Host_EViolation::kSysex, ioClip, "the sysex " + HexOf(bytes) + " is not sent");
  }
  if (numSent < ioClip.mSentSysexes.size())
    Blame(Host_EViolation::kSysex, ioClip,
          "the sysex " + HexOf(ioClip.mSentSysexes[numSent]) + " is sent, which the clip has not");
}

// ---- The public face ----

Host_StreamChecker::Host_StreamChecker() : mImplP(std::make_unique<Impl>()) {}
Host_StreamChecker::~Host_StreamChecker() = default;

bool Host_StreamChecker::AddClip(Vrad_Chunk const * iChunkP, int iChannel, int iClip) {
  return mImplP->AddClip(iChunkP, iChannel, iClip);
}
void Host_StreamChecker::ClipEdited(int iClip) {
  mImplP->ClipEdited(iClip);
}
void Host_StreamChecker::RemoveClip(int iClip) {
  mImplP->RemoveClip(iClip);
}
void Host_StreamChecker::SetMuted(int iClip, bool iIsMuted) {
  mImplP->SetMuted(iClip, iIsMuted);
}
void Host_StreamChecker::Start(Time_Typed iPosition) {
  mImplP->mLocation = iPosition;
  mImplP->mShallPlay = true;
}
void Host_StreamChecker::Start() {
  mImplP->mShallPlay = true;
}
void Host_StreamChecker::Stop() {
  mImplP->mShallPlay = false;
}
void Host_StreamChecker::Locate(Time_Typed iPosition) {
  mImplP->mLocation = iPosition;
}
void Host_StreamChecker::SetLoop(Time_Typed iFrom, Time_Typed iTo) {
  mImplP->mHasLoop = true;
  mImplP->mLoopFrom = iFrom;
  mImplP->mLoopTo = iTo;
}
void Host_StreamChecker::ClearLoop() {
  mImplP->mHasLoop = false;
}
void Host_StreamChecker::SetLoopPolicy(Host_ELoopPolicy iPolicy) {
  mImplP->mPolicy = iPolicy;
}
void Host_StreamChecker::TempoChanged() {
  mImplP->TempoChanged();
}
void Host_StreamChecker::CheckPosition(Time_Sample iPosition) {
  mImplP->CheckPosition(iPosition.AsInt64());
}
void Host_StreamChecker::BeginBlock(int iNumSamples) {
  mImplP->BeginBlock(iNumSamples);
}
void Host_StreamChecker::ReceiveMessage(Host_WireMessage const & iMessage) {
  mImplP->ReceiveMessage(iMessage);
}
void Host_StreamChecker::EndBlock() {
  mImplP->EndBlock();
}
bool Host_StreamChecker::IsGood() const {
  return mImplP->mViolation.mKind == Host_EViolation::kNone;
}
Host_StreamViolation const & Host_StreamChecker::GetViolation() const {
  return mImplP->mViolation;
}
