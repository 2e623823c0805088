// How a clip enters and leaves a state.
#include "host/host_chasemap.h"
#include "host/host_clipplayback.h"
#include "vrad/vrad_chunk.h"
#include "vrad/vrae_noteinprogress.h"

namespace {

constexpr int kNumPitches = 128;

// Hands what a tracker puts out to a clip's output.
class ClipReceiver : public Vrae_EventReceiver {
public:
  ClipReceiver(Host_ClipPlayback & iClip, Host_WireOutput & iOutput, Time_Typed iTime)
      : mClip(iClip), mOutput(iOutput), mTime(iTime) {}

  void ReceiveEvent(Vrae_Event const & iEvent) override { mClip.SendEvent(iEvent, mOutput, mTime); }

private:
  Host_ClipPlayback & mClip;
  Host_WireOutput & mOutput;
  Time_Typed mTime;
};

bool IsToldDown(Vrae_ChaseTracker const & iTold, Vrae_SubStream const & iPedal) {
  Vrae_ChaseTracker_ChasingEntry entry;
  return iTold.GetChasingEntry(&entry, iPedal) && entry.mIsActive && entry.mValue != 0;
}

void ForgetParameters(Vrae_ChaseTracker & ioTracker) {
  for (signed char const number : kHost_ParameterControllers)
    ioTracker.ClearActiveFlag(Vrae_SubStream::Controller(number));
}

bool IsPlayed(Vrae_NoteWithDurationEvent const & iNote) {
  return iNote.GetType() == Vrae_Event::kNoteWithDuration && iNote.GetPitch() >= 0 &&
         iNote.GetOnVelocity() > 0;
}

bool AreAlike(Vrae_NoteInProgress const & iA, Vrae_NoteInProgress const & iB) {
  return iA.mPitch == iB.mPitch && iA.mOnVelocity == iB.mOnVelocity &&
         iA.mOffVelocity == iB.mOffVelocity;
}

// Among those that end with the note, from iFirstP to iLastP, the latter left out.
int CountAlike(Vrae_NoteInProgress const * iFirstP, Vrae_NoteInProgress const * iLastP,
               Vrae_NoteInProgress const & iNote) {
  int num = 0;
  for (; iFirstP != iLastP && iFirstP->mReleaseTime == iNote.mReleaseTime;
       iFirstP = iFirstP->mNextP)
    if (AreAlike(*iFirstP, iNote)) ++num;
  return num;
}

// The notes of a list, in order of release, that another one does not have, be it for one of
// several alike.
template <class TNoteFound>
void ForEachNotIn(Vrae_TrackState const & iOther, Vrae_TrackState const & iNotes,
                  TNoteFound iFound) {
  Vrae_NoteInProgress const * otherP = iOther.NextNoteOff();
  Vrae_NoteInProgress const * firstP = iNotes.NextNoteOff();  // that ends with the note
  for (Vrae_NoteInProgress const * noteP = firstP; noteP; noteP = noteP->mNextP) {
    while (otherP && otherP->mReleaseTime < noteP->mReleaseTime)
      otherP = otherP->mNextP;
    if (firstP->mReleaseTime != noteP->mReleaseTime) firstP = noteP;
    if (CountAlike(firstP, noteP, *noteP) >= CountAlike(otherP, nullptr, *noteP)) iFound(*noteP);
  }
}

}  // namespace

void Host_ClipPlayback::EndNotes(Host_WireOutput & ioOutput, Time_Typed iTime) {
  EndNotes(mRinging, ioOutput, iTime);
  EndNotes(Notes(), ioOutput, iTime);
}

void Host_ClipPlayback::EndNotes(Vrae_TrackState & ioNotes, Host_WireOutput & ioOutput,
                                 Time_Typed iTime) {
  for (; Vrae_NoteInProgress const * noteP = ioNotes.NextNoteOff(); ioNotes.PopNoteOff())
    SendNoteOff(*noteP, ioOutput, iTime);
}

void Host_ClipPlayback::LiftPedals(Host_WireOutput & ioOutput, Time_Typed iTime) {
  for (signed char const number : kHost_Pedals)
    if (IsToldDown(mTold, Vrae_SubStream::Controller(number)))
      SendEvent(Vrae_ControllerEvent(number, 0), ioOutput, iTime);
}

void Host_ClipPlayback::Disengage(Host_WireOutput & ioOutput, Time_Typed iTime) {
  EndNotes(ioOutput, iTime);
  LiftPedals(ioOutput, iTime);
  ClipReceiver receiver(*this, ioOutput, iTime);
  mTold.DoMute(&receiver, false);
  mIsEngaged = false;
}

void Host_ClipPlayback::ForgetReceiver() {
  mTold.Clear();
}

void Host_ClipPlayback::AddChaseState(Vrae_ChaseTracker & ioTracker,
                                      Host_PlayPosition const & iPosition, bool iHasSelections,
                                      bool iIsReached) const {
  Time_Typed time = ClipTime(iPosition);
  if (!iIsReached) time -= Time_TypedLength(1, time.GetType());
  mChunkP->AddChaseStateAtTime(&ioTracker, time, Time_Typed::MinTime(Time_eType_Ticks));
  if (iHasSelections) ForgetParameters(ioTracker);
}

bool Host_ClipPlayback::HasTold(Vrae_Event const & iEvent) const {
  Vrae_SubStream const subStream(iEvent);
  Vrae_ChaseTracker_ChasingEntry entry;
  return mTold.GetChasingEntry(&entry, subStream) && entry.mIsActive &&
         entry.mValue == subStream.GetValueFromEvent(iEvent);
}

void Host_ClipPlayback::ChaseValues(Host_WireOutput & ioOutput, Host_PlayPosition const & iFrom,
                                    Host_PlayPosition const & iTo, bool iHasSelections,
                                    Vrae_ChaseTracker & ioScratch) {
  if (!mIsEngaged) mTold.Clear();  // other clips may have used the channel since
  // Those come step by step, however often alike.
  if (iHasSelections) ForgetParameters(mTold);
  ioScratch.Clear();
  AddChaseState(ioScratch, iTo, iHasSelections, true);
  ChaseProgram(ioOutput, iFrom, iTo, ioScratch);
  mAreValuesChased = true;
  ClipReceiver receiver(*this, ioOutput, iTo.mTick);
  if (!mIsEngaged) {
    ioScratch.Prep(&receiver);
    return;
  }
  for (signed char const number : kHost_Pedals) {
    Vrae_SubStream const pedal = Vrae_SubStream::Controller(number);
    if (!ioScratch.IsActive(pedal) && IsToldDown(mTold, pedal))
      receiver.ReceiveEvent(pedal.MakeEvent(0));
  }
  ioScratch.DoUnMutedUpdate(&mTold, &receiver);
}

// Ahead of all else, as a program may reset controllers.
void Host_ClipPlayback::ChaseProgram(Host_WireOutput & ioOutput, Host_PlayPosition const & iFrom,
                                     Host_PlayPosition const & iTo, Vrae_ChaseTracker & ioScratch) {
  Vrae_SubStream const program = Vrae_SubStream::Program();
  Vrae_ChaseTracker_ChasingEntry entry;
  if (!ioScratch.GetChasingEntry(&entry, program) || !entry.mIsActive) return;
  Vrae_Event const event = program.MakeEvent(entry.mValue);
  bool const hasMoved = mUnits.mHasSamples && !HasTold(event);  // by a change of tempo
  if (!mIsEngaged || mIsProgramNew || hasMoved || !mPrograms.IsSame(iFrom, mAreValuesChased, iTo))
    SendProgram(event, ioOutput, iTo, true);
  else
    mTold.TrackEvent(event);  // it may be written otherwise
  mIsProgramNew = false;
  ioScratch.ClearActiveFlag(program);
}

void Host_ClipPlayback::SendProgram(Vrae_Event const & iEvent, Host_WireOutput & ioOutput,
                                    Host_PlayPosition const & iPosition, bool iIsReached) {
  ClipReceiver receiver(*this, ioOutput, iPosition.mTick);
  mPrograms.Send(iPosition, iIsReached, receiver);
  mTold.TrackEvent(iEvent);
  ioOutput.GetChannelState(mChannel).TrackEvent(iEvent);
}

// Gives the number of those for which there was no memory.
int Host_ClipPlayback::FindSounding(Host_PlayPosition const & iPosition, Vrae_TrackState & oNotes) {
  int numLost = 0;
  mSoundingNotes.ForEachAt(
      mChunkP->GetNoteList(), ClipTime(iPosition), [&](Vrad_NoteListBase_Note const & iNote) {
        if (IsPlayed(iNote.mEvent) && !Follow(oNotes, iNote.mTime, iNote.mEvent)) ++numLost;
      });
  return numLost;
}

void Host_ClipPlayback::StrikeNotes(Host_WireOutput & ioOutput,
                                    Host_PlayPosition const & iPosition) {
  mIsEngaged = true;
  mNumLostNotes += FindSounding(iPosition, Notes());
  for (Vrae_NoteInProgress const * noteP = Notes().NextNoteOff(); noteP; noteP = noteP->mNextP)
    Strike(noteP->mPitch, noteP->mOnVelocity, ioOutput, iPosition.mTick);
}

// A note that is in both lists goes on. Of what is left of a pitch as many go on as are left in
// both: their ends have changed.
void Host_ClipPlayback::ReconcileNotes(Host_WireOutput & ioOutput,
                                       Host_PlayPosition const & iPosition) {
  if (FindSounding(iPosition, OtherNotes()) > 0) {  // no room for what was and what is at once
    OtherNotes().Clear();
    EndNotes(Notes(), ioOutput, iPosition.mTick);
    StrikeNotes(ioOutput, iPosition);
    return;
  }
  int numAfter[kNumPitches] = {}, numBefore[kNumPitches] = {};
  ForEachNotIn(Notes(), OtherNotes(),
               [&](Vrae_NoteInProgress const & iNote) { ++numAfter[iNote.mPitch]; });
  ForEachNotIn(OtherNotes(), Notes(), [&](Vrae_NoteInProgress const & iNote) {
    if (++numBefore[iNote.mPitch] > numAfter[iNote.mPitch])
      SendNoteOff(iNote, ioOutput, iPosition.mTick);
  });
  ForEachNotIn(Notes(), OtherNotes(), [&](Vrae_NoteInProgress const & iNote) {
    if (--numBefore[iNote.mPitch] < 0)
      Strike(iNote.mPitch, iNote.mOnVelocity, ioOutput, iPosition.mTick);
  });
  TakeOtherNotes();
}

void Host_ClipPlayback::WrapNotes(Host_WireOutput & ioOutput, Host_PlayPosition const & iFrom,
                                  Host_PlayPosition const & iTo) {
  MoveRinging(iTo.mSample - iFrom.mSample);
  if (FindSounding(iTo, OtherNotes()) > 0) {  // no room for what was and what is at once
    OtherNotes().Clear();
    EndNotes(ioOutput, iFrom.mTick);
    StrikeNotes(ioOutput, iTo);
    return;
  }
  ForEachNotIn(OtherNotes(), Notes(),
               [&](Vrae_NoteInProgress const & iNote) { RingOn(iNote, ioOutput, iFrom, iTo); });
  ForEachNotIn(Notes(), OtherNotes(), [&](Vrae_NoteInProgress const & iNote) {
    Strike(iNote.mPitch, iNote.mOnVelocity, ioOutput, iTo.mTick);
  });
  TakeOtherNotes();
}

// In samples: the tempo may be another where the loop begins.
void Host_ClipPlayback::RingOn(Vrae_NoteInProgress const & iNote, Host_WireOutput & ioOutput,
                               Host_PlayPosition const & iFrom, Host_PlayPosition const & iTo) {
  long long const rest = Host_PlayPosition::SampleOf(iNote.mReleaseTime) - iFrom.mSample;
  bool const isFollowed =
      rest > 0 && Follow(mRinging, Time_Sample(iTo.mSample),
                         Vrae_NoteWithDurationEvent(iNote.mPitch, Time_SampleLength(rest),
                                                    iNote.mOnVelocity, iNote.mOffVelocity));
  if (!isFollowed) SendNoteOff(iNote, ioOutput, iFrom.mTick);
}

void Host_ClipPlayback::MovePosition(long long iNumSamples) {
  MoveRinging(iNumSamples);
  mIsEdited = mIsEdited || mUnits.mHasSamples;
}

void Host_ClipPlayback::MoveRinging(long long iNumSamples) {
  mRinging.OffsetTimes(Time_SampleLength(iNumSamples));
}

void Host_ClipPlayback::TakeOtherNotes() {
  Notes().Clear();
  mCurrent = 1 - mCurrent;
}

void Host_ClipPlayback::SortNotes(Host_WireOutput & ioOutput, Time_Typed iTime) {
  if (!mUnits.mHasSamples) return;
  Vrae_NoteInProgress const * noteP = Notes().NextNoteOff();
  while (noteP && noteP->mNextP && noteP->mReleaseTime <= noteP->mNextP->mReleaseTime)
    noteP = noteP->mNextP;
  bool const areSorted = !noteP || !noteP->mNextP;
  if (areSorted) return;
  while (Vrae_NoteInProgress const * const firstP = Notes().NextNoteOff()) {
    Vrae_NoteInProgress const note = *firstP;
    Notes().PopNoteOff();  // first, so that there is memory for it in its new place
    Time_TypedLength const one(1, note.mReleaseTime.GetType());
    bool const isFollowed =
        Follow(OtherNotes(), note.mReleaseTime - one,
               Vrae_NoteWithDurationEvent(note.mPitch, one, note.mOnVelocity, note.mOffVelocity));
    if (!isFollowed) SendNoteOff(note, ioOutput, iTime);
  }
  mCurrent = 1 - mCurrent;
}
