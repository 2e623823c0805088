// Plays clips block by block, as an audio callback does, into a receiver of MIDI messages.
//
// What is sent when:
// - Start, jump, loop and unmuting bring the receiver to the state that playing from the beginning
//   would have left: first the program with its bank, then controllers, bend and pressures, then
//   registered and non-registered parameters, each with its selection before its data, then
//   note-ons for the notes that sound at the position. Start and unmuting send all of them, jump
//   and loop what differs.
// - Stop, jump, muting, and taking a clip or the receiver away send a note-off for each sounding
//   note, with its own release velocity, then the pedals 64, 66, 67 and 69 up that are down, then
//   bend and pressures that are not at rest to 0. Nothing relies on "all notes off".
// - A receiver is left with controllers other than the pedals, programs and parameters as they were
//   last sent. Where the clip has no value at a position, a jump leaves what was sent before.
// - At one time controllers come before note-offs and those before note-ons, be they of several
//   clips. Of a clip's controllers, selections of parameters come behind all plain ones, then their
//   data, then steps.
// - Notes of one pitch that overlap are struck and released one by one, as the clip has them.
// - Notes of the clip that are muted, and notes found in audio (kind 22), are not played.
// Positions are samples. Clips in ticks are read through the tempo map in force: when it is edited,
// the musical position stays and the sample position moves, and sounding notes keep their tick.
// What a clip holds in samples stays at its sample: it is met anew where the position moves to.
#pragma once

#include <memory>

#include "foundation/time_typed.h"
#include "host/host_blockreceiver.h"

class Vrad_Chunk;

/// What becomes of the notes that sound where a loop wraps.
enum class Host_ELoopPolicy : int {
  kCut,  // all end there; those that sound at the loop's start are struck
  kKeep  // they ring on to their own end, unless their pitch is struck again before; those that
         // also sound at the loop's start simply go on
};

/// One player feeds one receiver: clips of one channel share what stands on it, and of several
/// clips that set one controller the later value counts. A program is restored with the bank that
/// its own clip has given.
/// Needs: a `Host_NotePool`, or another pool of the host's for notes in progress, for as long as it
/// lives.
/// Thread: one at a time, commands and `Process` alike. What adds, edits or removes clips takes
/// memory, all else is fit for the audio thread: no heap, no lock, no throw. Commands take effect
/// in the next block, at its first sample. Wrong use is ignored.
class Host_BlockPlayer {
public:
  /// Positions behind this sample count as this one.
  static constexpr long long kLastSample = 1LL << 60;

  /// Stands at sample 0, stopped. A receiver may be null: then nothing is sent.
  explicit Host_BlockPlayer(Host_BlockReceiver * iReceiverP);
  /// Sends nothing. To end what sounds, take the receiver away before.
  ~Host_BlockPlayer();
  Host_BlockPlayer(Host_BlockPlayer const &) = delete;
  Host_BlockPlayer & operator=(Host_BlockPlayer const &) = delete;

  // Clips. A number names one clip; what names none is ignored.

  /// The chunk stays the host's and must live until `RemoveClip` has returned. `iChannel` 0 to 15,
  /// or -1 for a clip without one, whose channel messages go to channel 0. While playing, the clip
  /// comes in like one that is unmuted.
  /// False for a null chunk, a bad channel or a number in use. Cost: as `ClipEdited`.
  /// Fails: std::bad_alloc; nothing is added.
  bool AddClip(Vrad_Chunk * iChunkP, int iChannel, int iClip);

  /// To be called after each edit of the chunk, before the next block. Notes that still are there
  /// sound on under their new end; those that are gone end, and those that are new and should sound
  /// already are struck. Also counts the clip's events anew, so that no block needs memory, and
  /// gathers its parameter changes. O(events), some 0.15 s for a million.
  /// Fails: std::bad_alloc; the next blocks may then take memory.
  void ClipEdited(int iClip);
  /// The same where only events in [iFrom, iTo) were added, taken out or changed; one that has
  /// moved lay and lies there. Counts what lies there and within a beat of it: O(log n) for each
  /// stream, the events there, and the clip's programs and parameter changes. A range or a clip
  /// with times in samples is counted whole.
  void ClipEdited(int iClip, Time_Typed iFrom, Time_Typed iTo);

  /// The chunk is not touched again, and its number is free. What sounds of it ends in the next
  /// block.
  void RemoveClip(int iClip);

  void SetMuted(int iClip, bool iIsMuted);
  bool IsMuted(int iClip) const;
  bool HasClip(int iClip) const;

  // Transport.

  /// Plays from a position, or from where it stands. While playing, the first jumps and the second
  /// does nothing.
  void Start(Time_Typed iPosition);
  void Start();
  /// Nothing sounds any more at the end of the next block; `Process(0)` is one.
  void Stop();
  /// Jumps, playing or not. Nothing happens at the position that it stands at.
  void Locate(Time_Typed iPosition);

  /// Repeats [iFrom, iTo) once the position gets there; a position at or behind the end plays on.
  /// Bounds are taken to the sample in which they lie, anew with each block. A stretch shorter than
  /// a sample does not loop. Where it has come to the end of a loop and that is moved behind, it
  /// plays on.
  void SetLoop(Time_Typed iFrom, Time_Typed iTo);
  void ClearLoop();
  void SetLoopPolicy(Host_ELoopPolicy iPolicy);

  /// The former receiver gets what `Stop` would send, in a block of 0 samples, before this returns;
  /// the next block brings the new one to the state of the position. Null: nothing is sent.
  void SetReceiver(Host_BlockReceiver * iReceiverP);

  /// The next `iNumSamples`, 0 or more: 0 sends what is due at once. Stopped, it sends only what
  /// commands have left to send. Messages come in order of their offsets, at one offset in order of
  /// time, at one time as said above, then in the order in which the clips were added.
  /// Cost: O(log n) for each clip, and what is sent.
  void Process(int iNumSamples);

  bool IsPlaying() const;
  /// The sample that the next block begins with, within the loop while looping. Where a loop wraps
  /// at the very end of a block, what that sends comes with the next one.
  Time_Sample GetPosition() const;
  /// Notes that were not struck since the pool for notes in progress was used up. While a clip is
  /// edited, and where it wraps with `kKeep`, its notes take twice their room; without it all of
  /// them end and are struck again.
  int GetNumLostNotes() const;

private:
  class Impl;
  std::unique_ptr<Impl> mImplP;
};
