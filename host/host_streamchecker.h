// Says whether what was sent is what clips ask for: the referee of a player.
#pragma once

#include <memory>
#include <string>

#include "foundation/time_typed.h"
#include "host/host_blockplayer.h"
#include "host/host_blockreceiver.h"

class Vrad_Chunk;

/// What is wrong with a stream of messages.
enum class Host_EViolation : int {
  kNone,
  kOrder,            // an offset that falls, or lies outside its block
  kBytes,            // no whole message, or one that no clip asks for
  kClip,             // a clip or a channel that is not known
  kStrayNoteOff,     // a note-off without its note-on
  kNoteLeftOn,       // a note sounds that should have ended
  kNoteCutShort,     // a note ends that should sound on
  kWrongNote,        // a note-on where the clip has none, or of another velocity
  kMissingNote,      // a note that should sound was not struck
  kStruckTwice,      // a note is struck again before an end that the clip has between the two
  kReleaseVelocity,  // a note-off of another velocity
  kValue,            // a controller, bend, program or pressure is not what it should be
  kLateValue,        // it is, but a note was struck before
  kNotAtRest,        // a pedal is down, bend or pressure on, where nothing holds it
  kParameter,        // a registered or non-registered parameter, or which of them is selected
  kSysex,            // a sysex that is missing or that the clip does not have here
  kPosition          // the position is not where the transport should have come to
};

/// The first thing that was wrong.
struct Host_StreamViolation {
  Host_EViolation mKind = Host_EViolation::kNone;
  int mBlock = -1;        // from 0
  int mOffset = 0;        // samples from the block's start
  long long mSample = 0;  // the position there
  int mClip = -1;         // -1: no clip in particular
  int mChannel = -1;      // -1: no channel in particular
  std::string mText;      // "block 3, offset 17 (sample 785): clip 1, channel 0: note 60 is left
                          // on after the stop"
};

/// Listens to a player, is told what the transport does, and compares with what the clips hold. The
/// player may be any: what counts is what it sends. For a program's own one:
/// - tell the checker each command, before the block in which it takes effect;
/// - for each block, send or not, call `BeginBlock`, hand over what is sent, call `EndBlock`, and
///   give the position come to to `CheckPosition`;
/// - stop at the end, with one more block, so that what is left on is found;
/// - print `GetViolation().mText`. examples/check_stream.cpp is all of this.
/// What should be, sample by sample:
/// - While playing, the notes sound of each clip that is not muted that start at or before the
///   sample and end after it. Times are rounded down to the sample. Muted notes, notes of velocity
///   0 and notes with a fractional pitch don't count. Stopped, nothing sounds.
/// - Each note-on and note-off comes in its sample, of its velocities (a note-on of velocity 0 is a
///   note-off of 64). A note is not struck before those of its pitch have ended which end by then.
/// - After start, jump, unmuting and the wrap of a loop, notes that began before the position and
///   end after it are struck. A pitch that sounds before and after may as well go on instead.
///   An edit and a change of tempo strike nothing again that sounds already. Of several notes of
///   one pitch any may be the one that goes on.
/// - With `kKeep`, notes ring on over the loop's end for their rest, unless struck again; those
///   that sound at its start as well go on.
/// - Each value is in force at the end of its sample, and before a note is struck at or after its
///   time. Of several clips on a channel the later value counts, at equal times that of the clip
///   added last. Where no clip that plays has a value, pedals (64, 66, 67, 69) are up, bend and
///   pressures at rest. All else is free there, but changes only with a start, a jump and the like
///   where clips have a value later on.
/// - Of a program, the parts that the last event enables. While a channel has programs, the bank
///   controllers 0 and 32 are looked at with them alone.
/// - Where a channel selects parameters (98 to 101), 6, 38, 96 and 97 count for the parameter that
///   is selected: its data and, where both parts of it were set, the steps since the coarse one. At
///   one time selections come before data and data before steps.
/// - A block of 0 samples brings the state of the position, without what happens in its sample.
/// - What is sent must be right for a receiver that obeys channel mode messages ("all notes off",
///   "reset all controllers") and for one that ignores them.
///
/// Shares nothing with the player but the interface. Keeps a flat copy of each clip.
/// Cost: O(n log n) to add or edit a clip, for each message O(clips), for a jump or wrap O(k log n)
/// for k streams and sounding notes, and the number of parameter events.
/// Thread: one at a time. Takes memory: not for the audio thread.
/// Fails: std::bad_alloc.
class Host_StreamChecker : public Host_BlockReceiver {
public:
  /// In the place of a clip's number: the one clip of the message's channel. Where several share
  /// the channel, the one in which the message is due; better say whose it is where they strike the
  /// same pitches, as it may be due in two.
  static constexpr int kAnyClip = -1;

  /// Stands at sample 0, stopped, before a receiver of which nothing is known.
  Host_StreamChecker();
  ~Host_StreamChecker() override;
  Host_StreamChecker(Host_StreamChecker const &) = delete;
  Host_StreamChecker & operator=(Host_StreamChecker const &) = delete;

  // What the host does, as in `Host_BlockPlayer`. It takes effect in the next block. Positions
  // before sample 0 count as sample 0, those behind the last sample as that.

  /// The chunk is read here and by `ClipEdited` alone, and must live as long as that is called.
  /// False for a null chunk, a channel outside -1 to 15, or a number in use.
  bool AddClip(Vrad_Chunk const * iChunkP, int iChannel, int iClip);
  void ClipEdited(int iClip);
  void RemoveClip(int iClip);
  void SetMuted(int iClip, bool iIsMuted);
  void Start(Time_Typed iPosition);
  void Start();
  void Stop();
  void Locate(Time_Typed iPosition);
  void SetLoop(Time_Typed iFrom, Time_Typed iTo);
  void ClearLoop();
  void SetLoopPolicy(Host_ELoopPolicy iPolicy);

  /// After an edit of the tempo map: the musical position stays, the sample position moves.
  void TempoChanged();

  /// A position that is not the next block's first sample is a violation.
  void CheckPosition(Time_Sample iPosition);

  // What the player sends: whole messages, between the beginning and the end of each block, in
  // which nothing may be sent, too. `Host_WireBytes` makes messages of bytes.

  void BeginBlock(int iNumSamples) override;
  void ReceiveMessage(Host_WireMessage const & iMessage) override;
  void EndBlock() override;

  /// After the first violation nothing more is looked at.
  bool IsGood() const;
  Host_StreamViolation const & GetViolation() const;

private:
  class Impl;
  std::unique_ptr<Impl> mImplP;
};
