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

// The copies that the library keeps of long notes do not always know whether they are muted.
bool IsMuted(Vrad_NoteListBase * iListP, Vrad_NoteListBase_Note const & iNote) {
  Time_TypedLength const duration = iNote.mEvent.GetDuration();
  if (iNote.mMuted || iListP->GetLongNoteList() == nullptr ||
      duration < iListP->GetLongNoteDuration(duration.GetType()))
    return iNote.mMuted;
  Time_Typed end = iNote.mTime;
  for (Vrad_NoteListBase::FullNotesInRangeIter iter(iListP, iNote.mTime, ++end); iter.IsMore();
       ++iter) {
    Vrae_NoteWithDurationEvent const & event = (*iter).mEvent;
    if (event.GetPitch() == iNote.mEvent.GetPitch() && event.GetDuration() == duration &&
        event.GetOnVelocity() == iNote.mEvent.GetOnVelocity() &&
        event.GetOffVelocity() == iNote.mEvent.GetOffVelocity())
      return (*iter).mMuted;
  }
  return false;
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
                                      Host_PlayPosition const & iPosition,
                                      bool iHasSelections) const {
  mChunkP->AddChaseStateAtTime(&ioTracker, ClipTime(iPosition),
                               Time_Typed::MinTime(Time_eType_Ticks));
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
  AddChaseState(ioScratch, iTo, iHasSelections);
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
  if (!mIsEngaged || mIsProgramNew || !mPrograms.IsSame(iFrom, mAreValuesChased, iTo))
    SendProgram(event, ioOutput, iTo);
  else
    mTold.TrackEvent(event);  // events may differ and come to the same
  mIsProgramNew = false;
  ioScratch.ClearActiveFlag(program);
}

void Host_ClipPlayback::SendProgram(Vrae_Event const & iEvent, Host_WireOutput & ioOutput,
                                    Host_PlayPosition const & iPosition) {
  ClipReceiver receiver(*this, ioOutput, iPosition.mTick);
  mPrograms.Send(iPosition, receiver);
  mTold.TrackEvent(iEvent);
  ioOutput.GetChannelState(mChannel).TrackEvent(iEvent);
}

bool Host_ClipPlayback::IsPlayed(Vrad_NoteListBase_Note const & iNote) const {
  return iNote.mEvent.GetType() == Vrae_Event::kNoteWithDuration && iNote.mEvent.GetPitch() >= 0 &&
         iNote.mEvent.GetOnVelocity() > 0 && !IsMuted(mChunkP->GetNoteList(), iNote);
}

void Host_ClipPlayback::FindSounding(Host_PlayPosition const & iPosition,
                                     Vrae_TrackState & oNotes) {
  Vrad_NoteListBase * const listP = mChunkP->GetNoteList();
  if (!listP) return;
  for (Vrad_NoteListBase::FullSustainingNoteIter iter(listP, ClipTime(iPosition)); iter.IsMore();
       ++iter)
    if (IsPlayed(*iter)) Follow(oNotes, (*iter).mTime, (*iter).mEvent);
}

void Host_ClipPlayback::StrikeNotes(Host_WireOutput & ioOutput,
                                    Host_PlayPosition const & iPosition) {
  mIsEngaged = true;
  FindSounding(iPosition, Notes());
  for (Vrae_NoteInProgress const * noteP = Notes().NextNoteOff(); noteP; noteP = noteP->mNextP)
    Strike(noteP->mPitch, noteP->mOnVelocity, ioOutput, iPosition.mTick);
}

// A note that is in both lists goes on. Of what is left of a pitch as many go on as are left in
// both: their ends have changed.
void Host_ClipPlayback::ReconcileNotes(Host_WireOutput & ioOutput,
                                       Host_PlayPosition const & iPosition) {
  FindSounding(iPosition, OtherNotes());
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
  FindSounding(iTo, OtherNotes());
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

void Host_ClipPlayback::MoveRinging(long long iNumSamples) {
  mRinging.OffsetTimes(Time_SampleLength(iNumSamples));
}

void Host_ClipPlayback::TakeOtherNotes() {
  Notes().Clear();
  mCurrent = 1 - mCurrent;
}
