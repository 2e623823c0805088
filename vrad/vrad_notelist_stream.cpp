// noteList  := header("VrNLB", 3)  count:int32  note[count]  [originals]  [muteFlags]
// note      := time:int64  pitch:int8  duration:int64  onVelocity:int8  offVelocity:int8
//              quantizeTimeDelta:int64  durationDelta:int64     (the deltas since version 2)
// originals := count:int32  size:int32 = 11  original[count]    (since version 3)
// original  := pitch:int8  duration:int64  onVelocity:int8  offVelocity:int8
// muteFlags := count:int32  version:int16 = 1  size:int32  muteFlag[count]
// muteFlag  := isMuted:bool  byte[size - 1]
#include <algorithm>
#include <cstring>
#include <vector>

#include "cmn/cmn_assert.h"
#include "cmn/cmn_n10ncenter.h"
#include "foundation/sys_stream.h"
#include "foundation/sys_streamblock.h"
#include "vrad/vrad_init.h"
#include "vrad/vrad_n10n.h"
#include "vrad/vrad_notelist.h"
#include "vrad/vrae_savedtime.h"

namespace {

typedef Vrad_NoteListBase_Note Note;

constexpr char const * kTag = "VrNLB";
constexpr short kVersion = 3;
constexpr int kBadDataString = 100;
constexpr int kFirstNoteBytes = 19;  // of version 1; the deltas add 16
constexpr int kDeltasBytes = 16;
constexpr int kOriginalBytes = 11;
constexpr short kMuteFlagVersion = 1;
constexpr int kMuteFlagBytes = 1;

Time_TypedLength LengthFromSaved(long long iWord) {
  long long count;
  Time_EType type;
  Time_TypedDefs::SetFromRawSavedData(iWord, &count, &type);
  return Time_TypedLength(count, type);
}

Time_TypedLength ReadLength(Sys_BlockIn & ioBlock) {
  long long word;
  ioBlock.Read(&word);
  return LengthFromSaved(word);
}

// In the unit of the former.
Time_TypedLength Difference(Time_TypedLength iFormer, Time_TypedLength iLatter) {
  if (iFormer.GetType() != iLatter.GetType()) return iFormer -= iLatter;
  return Time_TypedLength(Time_Saturating::Subtract(iFormer.AsInt64(), iLatter.AsInt64()),
                          iFormer.GetType());
}

// What was long ago saved as no duration at all gets a short one.
Time_TypedLength Repaired(Time_TypedLength durationTyped) {
  if (CMN_CHECK(durationTyped.AsInt64() > 0, "durationTyped.AsInt64() > 0")) return durationTyped;
  Time_EType const type = durationTyped.GetType();
  return Time_TypedLength(type == Time_eType_Ticks ? 1000 : 1, type);
}

struct RawNote {
  long long mTime, mDuration;
  signed char mPitch, mOnVelocity, mOffVelocity;
};

RawNote ReadRawNote(Sys_BlockIn & ioBlock) {
  RawNote raw;
  ioBlock.Read(&raw.mTime);
  ioBlock.Read(&raw.mPitch);
  ioBlock.Read(&raw.mDuration);
  ioBlock.Read(&raw.mOnVelocity);
  ioBlock.Read(&raw.mOffVelocity);
  return raw;
}

// The host hears of an on velocity of 0, which is refused all the same.
void CheckRawNote(RawNote const & iRaw) {
  if (iRaw.mOnVelocity == 0) Cmn_N10nCenter::Sender()->Send<Vrad_N10n_MIDIZeroOnVelocitiesFound>();
  if (iRaw.mPitch < 0 || iRaw.mDuration < 0 || iRaw.mOnVelocity < 1 || iRaw.mOffVelocity < 0)
    Vrad_ThrowBadData(kBadDataString);
}

// What was read is in range, so nothing is checked again.
void SetFields(Vrae_NoteWithDurationEvent & oEvent, RawNote const & iRaw,
               Time_TypedLength iDuration) {
  auto & data = oEvent.mU.mNoteWithDuration;
  data.mPitch = iRaw.mPitch;
  data.mOnVelocity = iRaw.mOnVelocity;
  data.mOffVelocity = iRaw.mOffVelocity;
  data.mDuration = iDuration.AsInt64();
  data.mDurationType = iDuration.GetType();
}

// Sets every field but the mute flag. The events are of kind 3 already.
void ReadNote(Sys_BlockIn & ioBlock, int iVersion, Note & oNote) {
  RawNote const raw = ReadRawNote(ioBlock);
  CheckRawNote(raw);
  Time_TypedLength const duration = Repaired(LengthFromSaved(raw.mDuration));
  oNote.mTime = Vrae_TimeFromSaved(raw.mTime);
  SetFields(oNote.mEvent, raw, duration);
  Time_TypedLength origDuration = duration;
  if (iVersion >= 2) {
    oNote.mQuantizeTimeDelta = ReadLength(ioBlock);
    origDuration = Repaired(Difference(duration, ReadLength(ioBlock)));
  } else {
    oNote.mQuantizeTimeDelta = Time_TypedLength(0, oNote.mTime.GetType());
  }
  SetFields(oNote.mOrigEvent, raw, origDuration);
}

Time_TypedLength DurationOf(Vrae_NoteWithDurationEvent const & iEvent) {
  auto const & data = iEvent.mU.mNoteWithDuration;
  return Time_TypedLength(data.mDuration, data.mDurationType);
}

void WriteNote(Sys_BlockOut & ioBlock, Note const & iNote) {
  Time_TypedLength const duration = DurationOf(iNote.mEvent);
  Time_TypedLength const delta = Difference(duration, DurationOf(iNote.mOrigEvent));
  ioBlock.Write(Vrae_SavedTime(iNote.mTime));
  ioBlock.Write(iNote.mEvent.GetPitch());
  ioBlock.Write(duration.GetRawDataForSave());
  ioBlock.Write(iNote.mEvent.GetOnVelocity());
  ioBlock.Write(iNote.mEvent.GetOffVelocity());
  ioBlock.Write(iNote.mQuantizeTimeDelta.GetRawDataForSave());
  ioBlock.Write(delta.GetRawDataForSave());
}

void WriteOriginal(Sys_BlockOut & ioBlock, Note const & iNote) {
  ioBlock.Write(iNote.mOrigEvent.GetPitch());
  ioBlock.Write(DurationOf(iNote.mOrigEvent).GetRawDataForSave());
  ioBlock.Write(iNote.mOrigEvent.GetOnVelocity());
  ioBlock.Write(iNote.mOrigEvent.GetOffVelocity());
}

// Field by field, so that a record cut short sets what it has. Only what differs is written and
// checked: what is there is in range.
void ReadOriginal(Sys_BlockIn & ioBlock, Vrae_NoteWithDurationEvent & ioEvent) {
  auto const & data = ioEvent.mU.mNoteWithDuration;
  signed char value;
  ioBlock.Read(&value);
  if (value != data.mPitch) ioEvent.SetPitch(value);
  Time_TypedLength const duration = ReadLength(ioBlock);
  if (duration.AsInt64() != data.mDuration || duration.GetType() != data.mDurationType)
    ioEvent.SetDuration(duration);
  ioBlock.Read(&value);
  if (value != data.mOnVelocity) ioEvent.SetOnVelocity(value);
  ioBlock.Read(&value);
  if (value != data.mOffVelocity) ioEvent.SetOffVelocity(value);
}

// Builds notes right behind the last one, as many as there is room for, up to a number of all.
// `iRead` is given a blank note and its index; what comes before one that it refuses stays.
template <class TNotes, class TRead>
void FillTail(TNotes & ioNotes, int iNumOfAll, TRead iRead) {
  Note const blank;
  int const first = ioNotes.Size();
  Note * notes;
  int const room = std::min(ioNotes.OpenTail(&notes), iNumOfAll - first);
  int num = 0;
  try {
    for (; num < room; ++num) {
      std::memcpy(static_cast<void *>(notes + num), &blank, sizeof(Note));
      iRead(notes[num], first + num);
    }
  } catch (...) {
    ioNotes.CloseTail(num);
    throw;
  }
  ioNotes.CloseTail(num);
}

// Calls for each note in order of the store.
template <class TNotes, class TVisit>
void ForEach(TNotes const & iNotes, TVisit iVisit) {
  Note const * notes;
  for (int i = 0, num; (num = iNotes.GetSpan(i, &notes)) > 0; i += num)
    std::for_each(notes, notes + num, iVisit);
}

}  // namespace

void Vrad_NoteListBase::StreamOut(Sys_TypedOutStream & ioStream) const {
  Sys_StdStreamHeaderWriter header(ioStream, kTag, kVersion);
  Sys_BlockOut out(ioStream);
  int const num = mNotes.Size();
  out.Write(num);
  ForEach(mNotes, [&out](Note const & iNote) { WriteNote(out, iNote); });
  out.Write(num);
  out.Write(kOriginalBytes);
  ForEach(mNotes, [&out](Note const & iNote) { WriteOriginal(out, iNote); });
  out.Write(num);
  out.Write(kMuteFlagVersion);
  out.Write(kMuteFlagBytes);
  ForEach(mNotes, [&out](Note const & iNote) { out.Write(iNote.mMuted); });
  out.Flush();
  header.PatchSize();
}

void Vrad_NoteListBase::StreamIn(Sys_TypedInStream & ioStream) {
  Clear();
  Sys_StdStreamHeaderReader header(ioStream, kTag);
  header.CheckVersion(1, kVersion);
  int const version = header.GetVersion();
  int num;
  ioStream.Read(&num);
  if (num < 0) Vrad_ThrowBadData(kBadDataString);
  std::vector<int> const longNotes = ReadNotes(ioStream, num, version);
  if (version >= 3 && header.IsMoreLeft()) ReadOriginals(ioStream, num);
  for (int const index : longNotes)
    mLongNoteListP->AddNote(mNotes.ReadAt(index));
  if (header.IsMoreLeft()) ReadMuteFlags(ioStream, num);
  header.SkipTheRest();
}

// Gives the places of the long notes, if there is a list for them.
std::vector<int> Vrad_NoteListBase::ReadNotes(Sys_TypedInStream & ioStream, int iNum,
                                              int iVersion) {
  int const noteBytes = kFirstNoteBytes + (iVersion >= 2 ? kDeltasBytes : 0);
  Sys_BlockIn in(ioStream, static_cast<long long>(iNum) * noteBytes);
  std::vector<int> longNotes;
  auto const read = [&](Note & oNote, int iIndex) {
    ReadNote(in, iVersion, oNote);
    if (mLongNoteListP && IsLong(oNote.mEvent)) longNotes.push_back(iIndex);
  };
  while (mNotes.Size() < iNum) {
    FillTail(mNotes, iNum, read);
    if (mNotes.Size() == iNum) break;
    Note note;  // the first of a chunk, which makes room for the others
    read(note, mNotes.Size());
    mNotes.PushBack(note);
  }
  return longNotes;
}

void Vrad_NoteListBase::ReadOriginals(Sys_TypedInStream & ioStream, int iNum) {
  int num, size;
  ioStream.Read(&num);
  if (num != iNum) return;
  ioStream.Read(&size);
  if (size != kOriginalBytes) return;
  Sys_BlockIn in(ioStream, static_cast<long long>(iNum) * kOriginalBytes);
  Note * notes;
  for (int i = 0, span; (span = mNotes.GetSpanBesideKeys(i, &notes)) > 0; i += span)
    for (Note * noteP = notes; noteP != notes + span; ++noteP)
      ReadOriginal(in, noteP->mOrigEvent);
}

// The notes are not muted yet.
void Vrad_NoteListBase::ReadMuteFlags(Sys_TypedInStream & ioStream, int iNum) {
  int num, size;
  short version;
  ioStream.Read(&num);
  if (num != iNum) return;
  ioStream.Read(&version);
  ioStream.Read(&size);
  if (version < kMuteFlagVersion) return;
  size = std::max(size, kMuteFlagBytes);
  Sys_BlockIn in(ioStream, static_cast<long long>(iNum) * size);
  Note * notes;
  for (int i = 0, span; (span = mNotes.GetSpanBesideKeys(i, &notes)) > 0; i += span) {
    for (Note * noteP = notes; noteP != notes + span; ++noteP) {
      bool isMuted;
      in.Read(&isMuted);
      if (isMuted) noteP->mMuted = true;
      in.Skip(size - kMuteFlagBytes);
    }
  }
}
