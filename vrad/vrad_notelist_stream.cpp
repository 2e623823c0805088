// noteList  := header("VrNLB", 3)  count:int32  note[count]  [originals]  [muteFlags]
// note      := time:int64  pitch:int8  duration:int64  onVelocity:int8  offVelocity:int8
//              quantizeTimeDelta:int64  durationDelta:int64     (the deltas since version 2)
// originals := count:int32  size:int32 = 11  original[count]    (since version 3)
// original  := pitch:int8  duration:int64  onVelocity:int8  offVelocity:int8
// muteFlags := count:int32  version:int16 = 1  size:int32  muteFlag[count]
// muteFlag  := isMuted:bool  byte[size - 1]
#include <algorithm>
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
constexpr int kNotesInRun = 256;

Time_TypedLength LengthFromSaved(long long iWord) {
  Time_TypedLength length;
  length.SetFromRawSavedData(iWord);
  return length;
}

Time_TypedLength ReadLength(Sys_BlockIn & ioBlock) {
  long long word;
  ioBlock.Read(&word);
  return LengthFromSaved(word);
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

void SetFields(Vrae_NoteWithDurationEvent & oEvent, RawNote const & iRaw,
               Time_TypedLength iDuration) {
  oEvent.SetPitch(iRaw.mPitch);
  oEvent.SetDuration(iDuration);
  oEvent.SetOnVelocity(iRaw.mOnVelocity);
  oEvent.SetOffVelocity(iRaw.mOffVelocity);
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
    origDuration -= ReadLength(ioBlock);
    origDuration = Repaired(origDuration);
  } else {
    oNote.mQuantizeTimeDelta = Time_TypedLength(0, oNote.mTime.GetType());
  }
  SetFields(oNote.mOrigEvent, raw, origDuration);
}

void WriteNote(Sys_BlockOut & ioBlock, Note const & iNote) {
  Time_TypedLength const duration = iNote.mEvent.GetDuration();
  Time_TypedLength delta = duration;
  delta -= iNote.mOrigEvent.GetDuration();
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
  ioBlock.Write(iNote.mOrigEvent.GetDuration().GetRawDataForSave());
  ioBlock.Write(iNote.mOrigEvent.GetOnVelocity());
  ioBlock.Write(iNote.mOrigEvent.GetOffVelocity());
}

// Field by field, so that a record cut short sets what it has.
void ReadOriginal(Sys_BlockIn & ioBlock, Vrae_NoteWithDurationEvent & ioEvent) {
  signed char value;
  ioBlock.Read(&value);
  ioEvent.SetPitch(value);
  Time_TypedLength const duration = ReadLength(ioBlock), former = ioEvent.GetDuration();
  if (duration.AsInt64() != former.AsInt64() || duration.GetType() != former.GetType())
    ioEvent.SetDuration(duration);
  ioBlock.Read(&value);
  ioEvent.SetOnVelocity(value);
  ioBlock.Read(&value);
  ioEvent.SetOffVelocity(value);
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
  ReadNotes(ioStream, num, version);
  if (version >= 3 && header.IsMoreLeft()) ReadOriginals(ioStream, num);
  RegenerateLongNoteList();
  if (header.IsMoreLeft()) ReadMuteFlags(ioStream, num);
  header.SkipTheRest();
}

// In runs, of which whole chunks of the store are made. What comes before a bad note stays.
void Vrad_NoteListBase::ReadNotes(Sys_TypedInStream & ioStream, int iNum, int iVersion) {
  int const noteBytes = kFirstNoteBytes + (iVersion >= 2 ? kDeltasBytes : 0);
  Sys_BlockIn in(ioStream, static_cast<long long>(iNum) * noteBytes);
  std::vector<Note> run;
  int numRead = 0;
  auto const store = [this, &run, &numRead] {
    mNotes.Insert(mNotes.End(), numRead, run.data());
    numRead = 0;
  };
  try {
    for (int i = 0; i < iNum; ++i) {
      size_t const place = static_cast<size_t>(numRead);
      if (place == run.size()) run.emplace_back();
      ReadNote(in, iVersion, run[place]);
      if (++numRead == kNotesInRun) store();
    }
  } catch (...) {
    store();
    throw;
  }
  store();
}

void Vrad_NoteListBase::ReadOriginals(Sys_TypedInStream & ioStream, int iNum) {
  int num, size;
  ioStream.Read(&num);
  if (num != iNum) return;
  ioStream.Read(&size);
  if (size != kOriginalBytes) return;
  Sys_BlockIn in(ioStream, static_cast<long long>(iNum) * kOriginalBytes);
  Note * notes;
  for (int i = 0, span; (span = mNotes.GetWritableSpan(i, &notes)) > 0; i += span)
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
  for (int i = 0; i < iNum; ++i) {
    bool isMuted;
    ioStream.Read(&isMuted);
    if (isMuted) mNotes[i].mMuted = true;
    if (size > kMuteFlagBytes) ioStream.SetPos(ioStream.GetPos() + size - kMuteFlagBytes);
  }
}
