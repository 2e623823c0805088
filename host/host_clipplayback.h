// What a player keeps of one clip: what sounds of it, what its receiver was told, and the events of
// the stretch that is being played.
#pragma once

#include <optional>

#include "foundation/time_typed.h"
#include "host/host_parameterchase.h"
#include "host/host_playposition.h"
#include "host/host_programchase.h"
#include "host/host_soundingnotes.h"
#include "host/host_wireoutput.h"
#include "vrad/vrae_chasetracker.h"
#include "vrad/vrae_timedevent.h"
#include "vrad/vrae_trackstate.h"

class Vrad_Chunk;

/// One clip of a player. A clip is engaged while the receiver is kept in its state: playing, not
/// muted, not taken away.
/// Thread: the player's. The constructor and `Prepare` take memory; the rest neither does so nor
/// locks nor throws.
class Host_ClipPlayback {
public:
  /// No stretch that is retrieved at once should be longer than this, in ticks.
  static constexpr long long kMaxStretch = 240000;

  /// `iChannel` 0 to 15. Fails: std::bad_alloc.
  Host_ClipPlayback(Vrad_Chunk * iChunkP, int iChannel, int iClip);
  Host_ClipPlayback(Host_ClipPlayback const &) = delete;
  Host_ClipPlayback & operator=(Host_ClipPlayback const &) = delete;

  /// Makes room for the events of any stretch and gathers the parameters, as the chunk now stands.
  /// `iPosition`: where the player stands. `iRange`: where alone the chunk has changed since it was
  /// prepared last. Fails: std::bad_alloc; what was prepared before stays.
  void Prepare(Host_PlayPosition const & iPosition,
               std::optional<Host_TimeRange> const & iRange = std::nullopt);

  /// The chunk is not touched any more.
  void Abandon() { mChunkP = nullptr; }
  bool IsAbandoned() const { return mChunkP == nullptr; }

  int GetClip() const { return mClip; }
  int GetChannel() const { return mChannel; }
  bool IsEngaged() const { return mIsEngaged; }
  int GetNumLostNotes() const { return mNumLostNotes; }
  Host_ParameterList const & GetParameters() const { return mParameters; }

  bool mIsMuted = false;
  bool mIsEdited = false;  // since the last block

  // Leaving a state. Ends what the clip has put into the receiver.

  /// A note-off for each sounding note, in order of release.
  void EndNotes(Host_WireOutput & ioOutput, Time_Typed iTime);
  void LiftPedals(Host_WireOutput & ioOutput, Time_Typed iTime);
  /// Notes, pedals, bend and pressures end; no longer engaged.
  void Disengage(Host_WireOutput & ioOutput, Time_Typed iTime);
  /// Forgets what the receiver was told: there is another one.
  void ForgetReceiver();

  // Entering a state, in this order.

  /// Brings the followed values to those of the position, what comes there included, the program
  /// first. All of them if it was not engaged, else what differs from the position that was left.
  /// `iHasSelections`: the channel has parameters, whose data are no plain controllers then.
  void ChaseValues(Host_WireOutput & ioOutput, Host_PlayPosition const & iFrom,
                   Host_PlayPosition const & iTo, bool iHasSelections,
                   Vrae_ChaseTracker & ioScratch);
  /// Strikes the notes that sound at the position. Engaged from here on.
  void StrikeNotes(Host_WireOutput & ioOutput, Host_PlayPosition const & iPosition);

  /// In place of ending and striking: notes of a pitch that sounds before and after go on, under
  /// the new end; the other ones of before end.
  void ReconcileNotes(Host_WireOutput & ioOutput, Host_PlayPosition const & iPosition);
  /// In place of ending and striking: notes that sound before and after go on, and the other ones
  /// of before ring on for as long as they had left.
  void WrapNotes(Host_WireOutput & ioOutput, Host_PlayPosition const & iFrom,
                 Host_PlayPosition const & iTo);

  /// Follows a position that moves while time does not. What is in samples has moved against the
  /// position then, and counts as edited.
  void MovePosition(long long iNumSamples);
  /// Brings what sounds into order of release again: with the tempo that of ticks and samples
  /// changes. To be called before anything is done with it.
  void SortNotes(Host_WireOutput & ioOutput, Time_Typed iTime);

  /// Adds what the clip holds up to the position. `iIsReached`: what comes there included.
  void AddChaseState(Vrae_ChaseTracker & ioTracker, Host_PlayPosition const & iPosition,
                     bool iHasSelections, bool iIsReached) const;
  /// Whether what comes at the position has been sent.
  bool AreValuesChased() const { return mAreValuesChased; }
  /// Whether the receiver was told this value for the clip.
  bool HasTold(Vrae_Event const & iEvent) const;
  /// The program that stands at the position, with its bank. `iEvent`: as the clip has it.
  void SendProgram(Vrae_Event const & iEvent, Host_WireOutput & ioOutput,
                   Host_PlayPosition const & iPosition, bool iIsReached);
  void SendEvent(Vrae_Event const & iEvent, Host_WireOutput & ioOutput, Time_Typed iTime);

  // Playing a stretch, event by event.

  /// Takes the stretch's events. Needs: engaged.
  void BeginStretch(Host_PlayStretch const & iStretch);
  /// Whether anything is left before the stretch's end, and when it comes.
  bool FindNext();
  Time_Typed GetNextTime() const { return mNextTime; }
  /// At one time values come first, then note-offs, then notes.
  int GetNextRank() const { return mNextRank; }
  void SendNext(Host_WireOutput & ioOutput);
  void EndStretch();

private:
  enum class ENext { kEvent, kNoteOff, kRingingNoteOff };

  // What is in ticks is read tick by tick.
  Time_Typed ClipTime(Host_PlayPosition const & iPosition) const {
    return iPosition.AsBound(mUnits);
  }
  Host_WireOutput::Origin OriginAt(Time_Typed iTime) const { return {mClip, mChannel, iTime}; }

  void SendNoteOff(Vrae_NoteInProgress const & iNote, Host_WireOutput & ioOutput, Time_Typed iTime);
  void EndNotes(Vrae_TrackState & ioNotes, Host_WireOutput & ioOutput, Time_Typed iTime);
  void EndRinging(signed char iPitch, Host_WireOutput & ioOutput, Time_Typed iTime);
  void Strike(signed char iPitch, signed char iVelocity, Host_WireOutput & ioOutput,
              Time_Typed iTime);
  bool Follow(Vrae_TrackState & ioNotes, Time_Typed iTime,
              Vrae_NoteWithDurationEvent const & iNote);
  int FindSounding(Host_PlayPosition const & iPosition, Vrae_TrackState & oNotes);
  void RingOn(Vrae_NoteInProgress const & iNote, Host_WireOutput & ioOutput,
              Host_PlayPosition const & iFrom, Host_PlayPosition const & iTo);
  void MoveRinging(long long iNumSamples);
  void TakeOtherNotes();
  void ChaseProgram(Host_WireOutput & ioOutput, Host_PlayPosition const & iFrom,
                    Host_PlayPosition const & iTo, Vrae_ChaseTracker & ioScratch);
  void SendNote(Vrae_TimedEvent const & iEvent, Host_WireOutput & ioOutput);
  void SortParameters();

  Vrae_TrackState & Notes() { return mNotes[mCurrent]; }
  Vrae_TrackState & OtherNotes() { return mNotes[1 - mCurrent]; }

  Vrad_Chunk * mChunkP;
  int const mChannel;
  int const mClip;
  bool mIsEngaged = false;
  Host_TimeUnits mUnits;  // of all events

  Vrae_TrackState mNotes[2];  // what sounds, and a spare one that is empty between calls
  int mCurrent = 0;
  Vrae_TrackState mRinging;  // what sounds from an earlier pass of a loop; ends in samples
  Vrae_ChaseTracker mTold;   // what the receiver was told for this clip
  Host_ParameterList mParameters;
  Host_SoundingNotes mSoundingNotes;
  Host_ProgramChase mPrograms;
  bool mIsProgramNew = false;  // an edit has changed the one that stands

  Vrae_TimedEventList mEvents;  // of the stretch; room for those of any stretch
  size_t mNextEvent = 0;
  bool mAreValuesChased = false;  // those that come where the next stretch begins have been sent
  Host_PlayStretch mStretch;
  ENext mNext = ENext::kEvent;
  Time_Typed mNextTime;
  int mNextRank = 0;
  int mNumLostNotes = 0;
};
