// What writing a song could not put into the file: counted by kind, with the place of the first.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "foundation/time_typed.h"

/// What a song holds and a MIDI file has no place for.
enum Host_ENotWritten : int {
  kNotWritten_MutedNote,       // left out
  kNotWritten_OriginalNote,    // the note as it was before quantizing and other changes
  kNotWritten_CrossedNote,     // comes back with the end of another note of its pitch
  kNotWritten_NoLength,        // a note that ends where it begins or before: comes back with 1 tick
  kNotWritten_SilentNote,      // of on velocity 0: left out
  kNotWritten_PitchFraction,   // of a note found in audio
  kNotWritten_BadEvent,        // out of the range of MIDI: left out
  kNotWritten_EarlyEvent,      // before the beginning: left out
  kNotWritten_LateEvent,       // behind what a file can count: left out
  kNotWritten_SampleTime,      // written at the tick of its sample
  kNotWritten_OffGrid,         // moved to the nearest tick of the file
  kNotWritten_MergedValue,     // comes to stand at one tick with a later one of its kind
  kNotWritten_BankController,  // comes back as the bank of a program
  kNotWritten_TakenBankSelect,   // without program: comes back with the next program's
  kNotWritten_NoChannel,         // a channel event of a clip without a channel: on channel 0
  kNotWritten_SysexOfChannel,    // comes back in a clip without a channel
  kNotWritten_EmptyClip,         // holds nothing, and does not come back
  kNotWritten_SharedChannel,     // a clip that comes back as one with another of its channel
  kNotWritten_LongSysex,         // of 2^28 bytes or more: left out
  kNotWritten_RoundedTempo,      // a file counts whole microseconds to the quarter note
  kNotWritten_TempoOfSMPTE,      // left out where ticks are parts of a second
  kNotWritten_BadTimeSignature,  // left out
  kNotWritten_BadKeySignature,   // left out
  kNotWritten_NumValues
};

/// Thread: one at a time. Memory is bounded whatever is counted.
class Host_WriteReport {
public:
  /// iClip is an index into the song's clips, -1 for what stands in none. iTime as stored.
  void Count(Host_ENotWritten iWhat, int iClip, Time_Typed iTime);

  struct NotWritten {
    std::string mName;  // as in "muted note, left out"
    long long mCount;   // at least 1
    int mClip;          // of the first, as its time
    Time_Typed mTime;
  };
  /// Each kind that occurred, in a fixed order.
  std::vector<NotWritten> GetNotWritten() const;
  /// 0 if nothing of the kind occurred.
  long long GetNum(Host_ENotWritten iWhat) const;
  bool IsEmpty() const { return mTallies.empty(); }

private:
  struct Tally {
    long long mCount;
    int mClip;
    Time_Typed mTime;
  };

  std::map<Host_ENotWritten, Tally> mTallies;
};
