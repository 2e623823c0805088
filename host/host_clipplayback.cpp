#include "host/host_clipplayback.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "host/host_chasemap.h"
#include "vrad/vrad_chunk.h"
#include "vrad/vrae_noteinprogress.h"

namespace {

// Counts how many events lie near each other, in stretches of fixed length side by side.
class Density {
public:
  void Add(Time_Typed iTime) {
    if (iTime.GetType() == Time_eType_Ticks)
      mPlaces.push_back(iTime.AsInt64() / Host_ClipPlayback::kMaxStretch);
    else
      ++mNumInSamples;
  }

  Host_TimeUnits GetUnits() const { return {!mPlaces.empty(), mNumInSamples > 0}; }

  // The most that a retrieval can find: in three neighbours, since it begins anywhere in the first
  // and is brought to whole samples, and whatever is in samples, since tempo moves that.
  size_t GetMost() {
    std::sort(mPlaces.begin(), mPlaces.end());
    size_t most = 0, first = 0;
    for (size_t i = 0; i < mPlaces.size(); ++i) {
      while (mPlaces[first] < mPlaces[i] - 2)
        ++first;
      most = std::max(most, i + 1 - first);
    }
    return most + mNumInSamples;
  }

private:
  std::vector<long long> mPlaces;
  size_t mNumInSamples = 0;
};

void AddAll(Vrae_TimedEventIterator && iIter, Density & ioDensity) {
  for (; iIter.IsMore(); ++iIter)
    ioDensity.Add((*iIter).mTime);
}

// Of all events, or of those in a range.
template <class... TTimes>
Density GetDensity(Vrad_Chunk & iChunk, TTimes... iRange) {
  Density density;
  for (Vrad_NoteListBase::FullNotesInRangeIter iter(iChunk.GetNoteList(), iRange...); iter.IsMore();
       ++iter)
    density.Add((*iter).mTime);
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : iChunk.GetContinuousList())
    AddAll(Vrad_ContinuousDataStreamTimedEventsInRangeIter(streamP.Get(), iRange...), density);
  AddAll(Vrad_EventStreamTimedEventsInRangeIter(iChunk.GetEventStream(), iRange...), density);
  return density;
}

// Of those in a range and of what can be retrieved together with these. Of all when a time in
// samples comes up, which may be retrieved together with anything.
Density GetDensityIn(Vrad_Chunk & iChunk, Host_TimeRange const & iRange) {
  bool const isInTicks =
      iRange.mFrom.GetType() == Time_eType_Ticks && iRange.mTo.GetType() == Time_eType_Ticks;
  if (!isInTicks) return GetDensity(iChunk);
  Time_TickLength const margin(3 * Host_ClipPlayback::kMaxStretch);
  Density const density = GetDensity(iChunk, iRange.mFrom - margin, iRange.mTo + margin);
  return density.GetUnits().mHasSamples ? GetDensity(iChunk) : density;
}

constexpr int kRankOfValue = 0, kRankOfNoteOff = 1, kRankOfNote = 2;

bool IsNote(Vrae_TimedEvent const & iEvent) {
  return iEvent.mEvent.GetType() == Vrae_Event::kNoteWithDuration;
}

int RankOf(Vrae_TimedEvent const & iEvent) {
  if (iEvent.mEvent.GetType() != Vrae_Event::kController) return 0;
  return Host_GetParameterRank(iEvent.mEvent.mU.mController.mControllerNumber);
}

// The note that ends first, if it does so before the time.
Vrae_NoteInProgress const * FindDue(Vrae_TrackState const & iNotes, Time_Typed iEnd) {
  Vrae_NoteInProgress const * const noteP = iNotes.NextNoteOff();
  return noteP && noteP->mReleaseTime < iEnd ? noteP : nullptr;
}

// The first note that does not end before the time: another one goes in front of it.
Vrae_NoteInProgress const * FindPlace(Vrae_TrackState const & iNotes, Time_Typed iEnd) {
  Vrae_NoteInProgress const * noteP = iNotes.NextNoteOff();
  while (noteP && noteP->mReleaseTime < iEnd)
    noteP = noteP->mNextP;
  return noteP;
}

bool ArePlayedAlike(Vrae_TimedEvent const & iA, Vrae_TimedEvent const & iB) {
  return iA.mTime == iB.mTime && iA.mEvent.GetPlaybackPriority() == iB.mEvent.GetPlaybackPriority();
}

}  // namespace

Host_ClipPlayback::Host_ClipPlayback(Vrad_Chunk * iChunkP, int iChannel, int iClip)
    : mChunkP(iChunkP), mChannel(iChannel), mClip(iClip), mTold(&Host_GetChaseMap(), true) {}

void Host_ClipPlayback::Prepare(Host_PlayPosition const & iPosition,
                                std::optional<Host_TimeRange> const & iRange) {
  bool const isPart = iRange && !mUnits.mHasSamples;
  Density density = isPart ? GetDensityIn(*mChunkP, *iRange) : GetDensity(*mChunkP);
  Host_TimeUnits units = density.GetUnits();
  units.mHasTicks = units.mHasTicks || (isPart && mUnits.mHasTicks);
  Host_ParameterList parameters = Host_GetParameters(*mChunkP, mClip);
  Host_ProgramChase programs;
  programs.Build(*mChunkP, units);
  Host_SoundingNotes soundingNotes;
  bool const areNotesAsBefore = isPart && !units.mHasSamples && mSoundingNotes.AsksTheList() &&
                                soundingNotes.AreCopiesTrue(mChunkP->GetNoteList(), *iRange);
  if (!areNotesAsBefore) soundingNotes.Build(mChunkP->GetNoteList(), units.mHasSamples);
  mEvents.reserve(density.GetMost());
  mIsProgramNew = mIsProgramNew || !programs.IsSame(mPrograms, iPosition);
  std::swap(mPrograms, programs);
  std::swap(mSoundingNotes, soundingNotes);
  mUnits = units;
  mParameters.swap(parameters);
}

void Host_ClipPlayback::SendEvent(Vrae_Event const & iEvent, Host_WireOutput & ioOutput,
                                  Time_Typed iTime) {
  ioOutput.Send(iEvent, {mClip, mChannel, iTime});
  mTold.TrackEvent(iEvent);
}

void Host_ClipPlayback::BeginStretch(Host_PlayStretch const & iStretch) {
  mStretch = iStretch;
  mEvents.clear();
  mNextEvent = 0;
  Vrad_EventListWrapper list(&mEvents);
  Vrae_Filter all;
  all.SetAll();
  Time_Typed const start = ClipTime(iStretch.mFrom);
  // Values come out in the unit of the offset, notes in their own. Where all are in samples they
  // are to stay beside each other.
  Time_TypedLength const noOffset(0, !mUnits.mHasTicks ? Time_eType_Samples : Time_eType_Ticks);
  mChunkP->GetMidiEventsInRange(
      &list, noOffset, start, ClipTime(iStretch.mTo), Time_Typed::MinTime(Time_eType_Ticks),
      Time_Typed::MaxTime(Time_eType_Ticks), false, mAreValuesChased ? &mTold : nullptr,
      &Host_GetChaseMap(), all, nullptr, true, 0, kNoteOffInclusion_None);
  mAreValuesChased = false;
  // The retrieval begins with the sample in which the start lies. After a change of tempo that may
  // have been played in part.
  while (mNextEvent < mEvents.size() && mEvents[mNextEvent].mTime < start)
    ++mNextEvent;
  SortParameters();
}

// Retrieval has controllers of one time in order of their numbers, data before selections.
void Host_ClipPlayback::SortParameters() {
  for (size_t i = mNextEvent + 1; i < mEvents.size(); ++i)
    for (size_t j = i; j > mNextEvent && ArePlayedAlike(mEvents[j - 1], mEvents[j]) &&
                       RankOf(mEvents[j]) < RankOf(mEvents[j - 1]);
         --j)
      std::swap(mEvents[j - 1], mEvents[j]);
}

bool Host_ClipPlayback::FindNext() {
  Vrae_NoteInProgress const * noteP = FindDue(Notes(), ClipTime(mStretch.mTo));
  Vrae_NoteInProgress const * const ringingP = FindDue(mRinging, Time_Sample(mStretch.mTo.mSample));
  mNext = ENext::kNoteOff;
  if (ringingP && (!noteP || ringingP->mReleaseTime <= noteP->mReleaseTime)) {
    noteP = ringingP;
    mNext = ENext::kRingingNoteOff;
  }
  bool const isEvent = mNextEvent < mEvents.size();
  if (!noteP && !isEvent) return false;

  if (isEvent) {
    Vrae_TimedEvent const & event = mEvents[mNextEvent];
    int const rank = IsNote(event) ? kRankOfNote : kRankOfValue;
    bool const isFirst = !noteP || event.mTime < noteP->mReleaseTime ||
                         (event.mTime == noteP->mReleaseTime && rank < kRankOfNoteOff);
    if (isFirst) {
      mNext = ENext::kEvent;
      mNextTime = event.mTime;
      mNextRank = rank;
      return true;
    }
  }
  mNextTime = noteP->mReleaseTime;
  mNextRank = kRankOfNoteOff;
  return true;
}

void Host_ClipPlayback::SendNext(Host_WireOutput & ioOutput) {
  if (mNext == ENext::kEvent) {
    Vrae_TimedEvent const & event = mEvents[mNextEvent++];
    if (IsNote(event))
      SendNote(event, ioOutput);
    else if (event.mEvent.GetType() != Vrae_Event::kPitchToMIDINoteWithDuration)
      SendEvent(event.mEvent, ioOutput, event.mTime);
    return;
  }
  Vrae_TrackState & notes = mNext == ENext::kNoteOff ? Notes() : mRinging;
  SendNoteOff(*notes.NextNoteOff(), ioOutput, mNextTime);
  notes.PopNoteOff();
}

void Host_ClipPlayback::EndStretch() {
  mEvents.clear();
}

void Host_ClipPlayback::SendNote(Vrae_TimedEvent const & iEvent, Host_WireOutput & ioOutput) {
  Vrae_NoteWithDurationEvent const & note = iEvent.mEvent.AsNoteWithDuration();
  if (note.GetPitch() < 0 || note.GetOnVelocity() <= 0) return;
  if (Follow(Notes(), iEvent.mTime, note))
    Strike(note.GetPitch(), note.GetOnVelocity(), ioOutput, iEvent.mTime);
  else
    ++mNumLostNotes;
}

// A note that cannot be followed must not be struck, as nothing would end it. Asking for room first
// spares a report; someone else may take it then.
bool Host_ClipPlayback::Follow(Vrae_TrackState & ioNotes, Time_Typed iTime,
                               Vrae_NoteWithDurationEvent const & iNote) {
  Vrae_NoteInProgress * const roomP = Vrae_NoteInProgress::Alloc();
  if (!roomP) return false;
  roomP->Free();
  Time_Typed const end = iTime + iNote.GetDuration();
  Vrae_NoteInProgress const * const placeP = FindPlace(ioNotes, end);
  ioNotes.ReceiveEvent(Vrae_TimedEvent(iTime, iNote));
  return FindPlace(ioNotes, end) != placeP;
}

void Host_ClipPlayback::Strike(signed char iPitch, signed char iVelocity,
                               Host_WireOutput & ioOutput, Time_Typed iTime) {
  EndRinging(iPitch, ioOutput, iTime);
  ioOutput.Send(Vrae_NoteOnEvent(iPitch, iVelocity), OriginAt(iTime));
}

void Host_ClipPlayback::SendNoteOff(Vrae_NoteInProgress const & iNote, Host_WireOutput & ioOutput,
                                    Time_Typed iTime) {
  ioOutput.Send(Vrae_NoteOffEvent(iNote.mPitch, iNote.mOffVelocity), OriginAt(iTime));
}

// A receiver ends all notes of a pitch with one note-off, as often as not.
void Host_ClipPlayback::EndRinging(signed char iPitch, Host_WireOutput & ioOutput,
                                   Time_Typed iTime) {
  Vrae_NoteInProgress const * noteP = mRinging.NextNoteOff();
  while (noteP) {
    Vrae_NoteInProgress const * const nextP = noteP->mNextP;
    if (noteP->mPitch == iPitch) {
      SendNoteOff(*noteP, ioOutput, iTime);
      mRinging.ReceiveEvent(Vrae_NoteOffEvent(iPitch, 0));  // the first one left, which is this
    }
    noteP = nextP;
  }
}
