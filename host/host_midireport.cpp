#include "host/host_midireport.h"

#include <cstdio>

namespace {

char const * GetName(Host_ENotKept iWhat) {
  switch (iWhat) {
  case kNotKept_ChannelMode:
    return "channel mode message (controllers 120 to 127)";
  case kNotKept_EarlierValue:
    return "value replaced by a later one at the same tick";
  case kNotKept_EarlierBankSelect:
    return "bank select replaced before a program change";
  case kNotKept_LoneBankSelect:
    return "bank select behind a program change at the same tick";
  case kNotKept_UnmatchedNoteOff:
    return "note-off without a note-on";
  case kNotKept_UnfinishedSysex:
    return "sysex without its end";
  case kNotKept_EscapedMessage:
    return "escaped message that is no channel message and no sysex";
  case kNotKept_EarlierTempo:
    return "tempo replaced by a later one at the same tick";
  case kNotKept_EarlierTimeSignature:
    return "time signature replaced by a later one at the same tick";
  case kNotKept_EarlierKeySignature:
    return "key signature replaced by a later one at the same tick";
  case kNotKept_BadTempo:
    return "tempo that is no tempo";
  case kNotKept_BadTimeSignature:
    return "time signature that is no time signature";
  case kNotKept_BadKeySignature:
    return "key signature that is no key signature";
  case kNotKept_TempoOfSMPTE:
    return "tempo in a file that counts time in frames";
  case kNotKept_TempoOfFurtherSequence:
    return "tempo of a further sequence of format 2";
  case kNotKept_TimeSignatureOfFurtherSequence:
    return "time signature of a further sequence of format 2";
  case kNotKept_UnknownChunk:
    return "chunk of an unknown kind";
  case kNotKept_UnknownRecord:
    return "record of an unknown kind";
  case kNotKept_NumValues:
    break;
  }
  return "";
}

char const * GetKnownMetaEventName(unsigned char iType) {
  switch (iType) {
  case 0x00:
    return "sequence number";
  case 0x01:
    return "text";
  case 0x02:
    return "copyright notice";
  case 0x03:
    return "further track name";
  case 0x04:
    return "instrument name";
  case 0x05:
    return "lyric";
  case 0x06:
    return "marker";
  case 0x07:
    return "cue point";
  case 0x08:
    return "program name";
  case 0x09:
    return "device name";
  case 0x20:
    return "channel prefix";
  case 0x21:
    return "port";
  case 0x51:
    return "tempo";
  case 0x54:
    return "SMPTE offset";
  case 0x58:
    return "time signature";
  case 0x59:
    return "key signature";
  case 0x7f:
    return "sequencer-specific meta event";
  default:
    return nullptr;
  }
}

}  // namespace

std::string Host_MidiReport::GetMetaEventName(unsigned char iType) {
  if (char const * const name = GetKnownMetaEventName(iType)) return name;
  char text[32];
  std::snprintf(text, sizeof text, "unknown meta event 0x%02x", static_cast<unsigned>(iType));
  return text;
}

void Host_MidiReport::CountNotKept(Host_ENotKept iWhat, size_t iOffset) {
  Count(iWhat, iOffset);
}

void Host_MidiReport::CountMetaEvent(unsigned char iType, size_t iOffset) {
  Count(kNotKept_NumValues + iType, iOffset);
}

void Host_MidiReport::AddProblem(size_t iOffset, std::string const & iText, bool iIsLoss) {
  ++mNumProblems;
  mIsLossy = mIsLossy || iIsLoss;
  if (mProblems.size() < kMaxProblems) mProblems.push_back({iOffset, iText, iIsLoss});
}

std::vector<Host_MidiReport::NotKept> Host_MidiReport::GetNotKept() const {
  std::vector<NotKept> result;
  for (auto const & [key, tally] : mTallies) {
    std::string const name =
        key < kNotKept_NumValues
            ? GetName(static_cast<Host_ENotKept>(key))
            : GetMetaEventName(static_cast<unsigned char>(key - kNotKept_NumValues));
    result.push_back({name, tally.mCount, tally.mOffset});
  }
  return result;
}

long long Host_MidiReport::GetNumNotKept(Host_ENotKept iWhat) const {
  return GetCount(iWhat);
}

long long Host_MidiReport::GetNumMetaEvents(unsigned char iType) const {
  return GetCount(kNotKept_NumValues + iType);
}

void Host_MidiReport::Count(int iKey, size_t iOffset) {
  Tally & tally = mTallies[iKey];
  if (tally.mCount++ == 0) tally.mOffset = iOffset;
}

long long Host_MidiReport::GetCount(int iKey) const {
  auto const found = mTallies.find(iKey);
  return found == mTallies.end() ? 0 : found->second.mCount;
}
