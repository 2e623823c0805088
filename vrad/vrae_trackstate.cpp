// The list of notes in progress: what fills it, what takes from it, copies.
#include "vrad/vrae_trackstate.h"

#include "cmn/cmn_assert.h"
#include "foundation/lumtrace.h"

namespace {

constexpr unsigned kAskFacility = 0x2000F27;
constexpr unsigned kReceiveFacility = 0x4000e0f;
constexpr unsigned kRemoveFacility = 0x8000e0f;

constexpr signed char kUntimedOffVelocity = 64;

class NoteOffMatcher : public Vrae_TrackState_Matcher {
public:
  explicit NoteOffMatcher(signed char iPitch) : mPitch(iPitch) {}
  bool operator()(Vrae_NoteInProgress const & iNote) const override {
    return iNote.mPitch == mPitch;
  }

private:
  signed char mPitch;
};

class ClearNoteInProgressMatcher : public Vrae_TrackState_Matcher {
public:
  explicit ClearNoteInProgressMatcher(Vrae_TimedEvent const & iEvent) : mEvent(iEvent) {}
  bool operator()(Vrae_NoteInProgress const & iNote) const override {
    Vrae_ClearNoteInProgressEvent const & note = mEvent.mEvent.AsClearNoteInProgress();
    return iNote.mReleaseTime == mEvent.mTime + note.GetDuration() &&
           iNote.mPitch == note.GetPitch() && iNote.mOnVelocity == note.GetOnVelocity() &&
           iNote.mOffVelocity == note.GetOffVelocity();
  }

private:
  Vrae_TimedEvent mEvent;
};

}  // namespace

Vrae_TrackState_Matcher::~Vrae_TrackState_Matcher() = default;
Vrae_TrackState::NoteInProgressFilter::~NoteInProgressFilter() = default;

Vrae_TrackState::Vrae_TrackState() : mHeadP(nullptr) {}

Vrae_TrackState::Vrae_TrackState(Vrae_TrackState const & iOther) : mHeadP(nullptr) {
  *this = iOther;
}

Vrae_TrackState::~Vrae_TrackState() {
  Clear();
}

// Each node is copied with its link, so that a copy which stops short runs on into the source.
Vrae_TrackState & Vrae_TrackState::operator=(Vrae_TrackState const & iOther) {
  Clear();
  Vrae_NoteInProgress ** linkP = &mHeadP;
  for (Vrae_NoteInProgress const * srcP = iOther.mHeadP; srcP != nullptr; srcP = srcP->mNextP) {
    Vrae_NoteInProgress * const newNIP = Vrae_NoteInProgress::Alloc();
    if (!CMN_CHECK(newNIP != nullptr, "newNIP")) break;
    *newNIP = *srcP;
    *linkP = newNIP;
    linkP = &newNIP->mNextP;
  }
  return *this;
}

void Vrae_TrackState::Clear() {
  while (mHeadP != nullptr)
    PopNoteOff();
}

void Vrae_TrackState::DeleteNotesInProgress() {
  Clear();
}

Vrae_NoteInProgress const * Vrae_TrackState::NextNoteOff() const {
  return mHeadP;
}

void Vrae_TrackState::PopNoteOff() {
  if (mHeadP == nullptr) return;
  Vrae_NoteInProgress * const firstP = mHeadP;
  mHeadP = firstP->mNextP;
  firstP->Free();
}

void Vrae_TrackState::OffsetTimes(Time_TypedLength iLength) {
  for (Vrae_NoteInProgress * nip = mHeadP; nip != nullptr; nip = nip->mNextP)
    nip->mReleaseTime += iLength;
}

void Vrae_TrackState::AddNoteInProgress(Time_Typed iTime, Vrae_NoteWithDurationBase const & iNote) {
  Vrae_NoteInProgress * const nip = Vrae_NoteInProgress::Alloc();
  if (!CMN_CHECK(nip != nullptr, "nip")) return;
  nip->mPitch = iNote.GetPitch();
  nip->mOnVelocity = iNote.GetOnVelocity();
  nip->mOffVelocity = iNote.GetOffVelocity();
  nip->mReleaseTime = iTime + iNote.GetDuration();
  Vrae_NoteInProgress ** linkP = &mHeadP;
  while (*linkP != nullptr && !(nip->mReleaseTime <= (*linkP)->mReleaseTime))
    linkP = &(*linkP)->mNextP;
  nip->mNextP = *linkP;
  *linkP = nip;
}

void Vrae_TrackState::RemoveMatchingNoteInProgress(Vrae_TrackState_Matcher const & iMatcher) {
  Vrae_NoteInProgress ** linkP = &mHeadP;
  while (*linkP != nullptr && !iMatcher(**linkP))
    linkP = &(*linkP)->mNextP;
  Vrae_NoteInProgress * const foundP = *linkP;
  if (foundP != nullptr) *linkP = foundP->mNextP;
  LumTraceWriteAs(kAskFacility, kRemoveFacility,
                  foundP != nullptr ? "Vrae_TrackState %p RemoveMatchingNoteInProgress found"
                                    : "Vrae_TrackState %p RemoveMatchingNoteInProgress not found",
                  static_cast<void const *>(this));
  if (foundP != nullptr) foundP->Free();
}

void Vrae_TrackState::RemoveNoteOfPitch(signed char iPitch) {
  RemoveMatchingNoteInProgress(NoteOffMatcher(iPitch));
}

void Vrae_TrackState::TraceReceived(char const * iFormat, int iPitch) const {
  LumTraceWriteAs(kAskFacility, kReceiveFacility, iFormat, static_cast<void const *>(this), iPitch);
}

void Vrae_TrackState::ReceiveEvent(Vrae_Event const & iEvent) {
  switch (iEvent.GetType()) {
  case Vrae_Event::kNoteOn: {
    Vrae_NoteOnEvent const & note = iEvent.AsNoteOn();
    TraceReceived("Vrae_TrackState %p ReceiveEvent note on %d", note.GetPitch());
    AddNoteInProgress(Time_Sample(0),
                      Vrae_NoteWithDurationEvent(note.GetPitch(), Time_SampleLength(1),
                                                 note.GetVelocity(), kUntimedOffVelocity));
    break;
  }
  case Vrae_Event::kNoteOff:
    TraceReceived("Vrae_TrackState %p ReceiveEvent note off %d", iEvent.AsNoteOff().GetPitch());
    RemoveNoteOfPitch(iEvent.AsNoteOff().GetPitch());
    break;
  default:
    break;
  }
}

void Vrae_TrackState::ReceiveEvent(Vrae_TimedEvent const & iEvent) {
  Vrae_Event const & event = iEvent.mEvent;
  switch (event.GetType()) {
  case Vrae_Event::kNoteOn:
    CMN_CHECK(false, "0");
    break;
  case Vrae_Event::kNoteOff:
    TraceReceived("Vrae_TrackState %p ReceiveTimedEvent note off %d", event.AsNoteOff().GetPitch());
    RemoveNoteOfPitch(event.AsNoteOff().GetPitch());
    break;
  case Vrae_Event::kNoteWithDuration:
    TraceReceived("Vrae_TrackState %p ReceiveTimedEvent note on %d",
                  event.AsNoteWithDuration().GetPitch());
    AddNoteInProgress(iEvent.mTime, event.AsNoteWithDuration());
    break;
  case Vrae_Event::kClearNoteInProgress:
    TraceReceived("Vrae_TrackState %p ReceiveTimedEvent clear note %d",
                  event.AsClearNoteInProgress().GetPitch());
    RemoveMatchingNoteInProgress(ClearNoteInProgressMatcher(iEvent));
    break;
  case Vrae_Event::kAddNoteInProgress:
    TraceReceived("Vrae_TrackState %p ReceiveTimedEvent add note %d",
                  event.AsAddNoteInProgress().GetPitch());
    AddNoteInProgress(iEvent.mTime, event.AsAddNoteInProgress());
    break;
  default:  // notes with a fractional pitch among them
    break;
  }
}

// The nodes not yet seen stay linked behind the survivors, so that nothing leaks on a throw.
void Vrae_TrackState::FilterNotesInProgress(NoteInProgressFilter const & iFilter) {
  Vrae_NoteInProgress * destTailP = nullptr;
  Vrae_NoteInProgress ** linkP = &mHeadP;
  while (*linkP != nullptr) {
    Vrae_NoteInProgress * const srcP = *linkP;
    if (!iFilter(*srcP)) {
      *linkP = srcP->mNextP;
      srcP->Free();
      continue;
    }
    CMN_REQUIRE(destTailP == nullptr || srcP->mReleaseTime >= destTailP->mReleaseTime,
                "srcP->mReleaseTime >= destTailP->mReleaseTime");
    destTailP = srcP;
    linkP = &srcP->mNextP;
  }
}
