#include "host/host_writereport.h"

namespace {

char const * GetName(Host_ENotWritten iWhat) {
  switch (iWhat) {
  case kNotWritten_MutedNote:
    return "muted note, left out";
  case kNotWritten_OriginalNote:
    return "note without what it was before it was changed";
  case kNotWritten_CrossedNote:
    return "note that gets the end of another one of its pitch";
  case kNotWritten_NoLength:
    return "note of no length, which is read as one of 1 tick";
  case kNotWritten_SilentNote:
    return "note of velocity 0, left out";
  case kNotWritten_PitchFraction:
    return "note found in audio without its fraction of a pitch";
  case kNotWritten_BadEvent:
    return "event with values that MIDI does not have, left out";
  case kNotWritten_EarlyEvent:
    return "event before the beginning, left out";
  case kNotWritten_LateEvent:
    return "event later than a file can say, left out";
  case kNotWritten_SampleTime:
    return "time in samples, written in ticks";
  case kNotWritten_OffGrid:
    return "time moved to the nearest tick of the file";
  case kNotWritten_MergedValue:
    return "value moved to the tick of a later one";
  case kNotWritten_BankController:
    return "controller 32 that is read as a bank select";
  case kNotWritten_TakenBankSelect:
    return "bank select that the next program change takes";
  case kNotWritten_NoChannel:
    return "event of a clip without a channel, written on channel 0";
  case kNotWritten_SysexOfChannel:
    return "sysex of a channel, written without it";
  case kNotWritten_EmptyClip:
    return "clip without events, left out";
  case kNotWritten_SharedChannel:
    return "clip that becomes one with another of its track and channel";
  case kNotWritten_LongSysex:
    return "sysex of 2^28 bytes or more, left out";
  case kNotWritten_RoundedTempo:
    return "tempo rounded to microseconds";
  case kNotWritten_TempoOfSMPTE:
    return "tempo in a file that counts time in frames, left out";
  case kNotWritten_BadTimeSignature:
    return "time signature that MIDI cannot say, left out";
  case kNotWritten_BadKeySignature:
    return "key signature that MIDI cannot say, left out";
  case kNotWritten_NumValues:
    break;
  }
  return "";
}

}  // namespace

void Host_WriteReport::Count(Host_ENotWritten iWhat, int iClip, Time_Typed iTime) {
  auto const [tally, isNew] = mTallies.try_emplace(iWhat, Tally{1, iClip, iTime});
  if (!isNew) ++tally->second.mCount;
}

std::vector<Host_WriteReport::NotWritten> Host_WriteReport::GetNotWritten() const {
  std::vector<NotWritten> result;
  for (auto const & [what, tally] : mTallies) {
    result.push_back({GetName(what), tally.mCount, tally.mClip, tally.mTime});
  }
  return result;
}

long long Host_WriteReport::GetNum(Host_ENotWritten iWhat) const {
  auto const found = mTallies.find(iWhat);
  return found == mTallies.end() ? 0 : found->second.mCount;
}
