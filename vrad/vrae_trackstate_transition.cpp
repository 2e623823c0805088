// From one set of sounding notes to another.
#include <algorithm>
#include <array>
#include <cstddef>

#include "cmn/cmn_assert.h"
#include "vrad/vrae_trackstate.h"

namespace {

// The notes of one side that take part in the pairing: the first ones to end, by pitch. Notes of
// one pitch keep the order of their ends. A copy, since the receiver may work on the states.
class NotesByPitch {
public:
  // Takes notes from the list until it is full. Gives the first one that is left over.
  Vrae_NoteInProgress const * Fill(Vrae_NoteInProgress const * iFirstP) {
    for (; iFirstP != nullptr && mNum < kMaxNotes; iFirstP = iFirstP->mNextP)
      Insert(*iFirstP);
    return iFirstP;
  }
  bool AtEnd() const { return mAt == mNum; }
  Vrae_NoteInProgress const & Current() const { return mNotes[mAt]; }
  void Step() { ++mAt; }

private:
  static constexpr size_t kMaxNotes = 200;

  void Insert(Vrae_NoteInProgress const & iNote) {
    auto const end = mNotes.begin() + static_cast<std::ptrdiff_t>(mNum);
    auto const place =
        std::upper_bound(mNotes.begin(), end, iNote,
                         [](Vrae_NoteInProgress const & iA, Vrae_NoteInProgress const & iB) {
                           return iA.mPitch < iB.mPitch;
                         });
    std::move_backward(place, end, end + 1);
    *place = iNote;
    ++mNum;
  }

  std::array<Vrae_NoteInProgress, kMaxNotes> mNotes;
  size_t mNum = 0;
  size_t mAt = 0;
};

class TransitionSender {
public:
  TransitionSender(Vrae_EventReceiver & ioOutput, Vrae_TrackState::ETransitionMode iMode,
                   Time_Typed iTime)
      : mOutput(ioOutput), mMode(iMode), mTime(iTime) {}

  void SendOff(Vrae_NoteInProgress const & iNote) const {
    mOutput.ReceiveEvent(Vrae_NoteOffEvent(iNote.mPitch, iNote.mOffVelocity));
  }
  void SendOn(Vrae_NoteInProgress const & iNote) const {
    mOutput.ReceiveEvent(Vrae_NoteOnEvent(iNote.mPitch, iNote.mOnVelocity));
  }
  // A pair is replaced even if both are alike, and whatever is left of them.
  void SendPair(Vrae_NoteInProgress const & iOld, Vrae_NoteInProgress const & iNew) const {
    if (mMode != Vrae_TrackState::kTransitionInProgress) return;
    SendRest<Vrae_ClearNoteInProgressEvent>(iOld);
    SendRest<Vrae_AddNoteInProgressEvent>(iNew);
  }
  void SendNew(Vrae_NoteInProgress const & iNote) const {
    if (mMode == Vrae_TrackState::kTransitionNoteOn)
      SendOn(iNote);
    else if (mMode == Vrae_TrackState::kTransitionInProgress && iNote.mReleaseTime > mTime)
      SendRest<Vrae_NoteWithDurationEvent>(iNote);
  }

private:
  template <class TEvent>
  void SendRest(Vrae_NoteInProgress const & iNote) const {
    mOutput.ReceiveEvent(
        TEvent(iNote.mPitch, iNote.mReleaseTime - mTime, iNote.mOnVelocity, iNote.mOffVelocity));
  }

  Vrae_EventReceiver & mOutput;
  Vrae_TrackState::ETransitionMode mMode;
  Time_Typed mTime;
};

void SendByPitch(TransitionSender const & iSender, NotesByPitch & ioOld, NotesByPitch & ioNew) {
  while (!ioNew.AtEnd()) {
    if (!ioOld.AtEnd() && ioNew.Current().mPitch > ioOld.Current().mPitch) {
      iSender.SendOff(ioOld.Current());
      ioOld.Step();
    } else if (!ioOld.AtEnd() && ioNew.Current().mPitch == ioOld.Current().mPitch) {
      iSender.SendPair(ioOld.Current(), ioNew.Current());
      ioOld.Step();
      ioNew.Step();
    } else {
      iSender.SendNew(ioNew.Current());
      ioNew.Step();
    }
  }
  for (; !ioOld.AtEnd(); ioOld.Step())
    iSender.SendOff(ioOld.Current());
}

}  // namespace

void Vrae_TrackState::ComputeTransitionToNewState(Vrae_TrackState * iNewStateP,
                                                  Vrae_EventReceiver * iOutputP,
                                                  Vrae_ChaseSpec const & iChaseSpec,
                                                  bool iUpdateState) {
  if (!iChaseSpec.mChaseNotes) return;
  if (iOutputP != nullptr)
    ComputeNoteTransitions(iNewStateP, iOutputP, iChaseSpec.mTransitionMode, iChaseSpec.mTime);
  if (iUpdateState && iNewStateP != nullptr) *this = *iNewStateP;
}

void Vrae_TrackState::ComputeNoteTransitions(Vrae_TrackState * iNewStateP,
                                             Vrae_EventReceiver * iOutputP, ETransitionMode iMode,
                                             Time_Typed iTime) const {
  if (!CMN_REQUIRE(iOutputP != nullptr, "iOutputP")) return;
  if (!CMN_REQUIRE(iNewStateP != nullptr, "iNewStateP")) return;
  TransitionSender const sender(*iOutputP, iMode, iTime);
  NotesByPitch oldNotes, newNotes;
  Vrae_NoteInProgress const * oldP = oldNotes.Fill(mHeadP);
  Vrae_NoteInProgress const * newP = newNotes.Fill(iNewStateP->mHeadP);
  // What does not fit goes out at once, in every mode.
  for (; oldP != nullptr; oldP = oldP->mNextP)
    sender.SendOff(*oldP);
  for (; newP != nullptr; newP = newP->mNextP)
    sender.SendOn(*newP);
  SendByPitch(sender, oldNotes, newNotes);
}
