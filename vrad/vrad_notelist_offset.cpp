// Moving times, starts, ends and pitches of all notes.
#include <algorithm>

#include "foundation/ticktimesmatter.h"
#include "foundation/time_convert.h"
#include "vrad/vrad_notelist.h"
#include "vrad/vrad_sortedstore.h"

namespace {

typedef Vrad_NoteListBase_Note Note;

Time_Typed AddLength(Time_Typed iTime, Time_TypedLength iLength) {
  Time_Converter const * const converterP = Time_Convert::sTimeConverter;
  return converterP ? converterP->AddLength(iTime, iLength) : iTime + iLength;
}

// Where a note goes whose start moves and whose end stays.
struct MovedStart {
  MovedStart(Note const & iNote, Time_TypedLength iLength, bool iSnaps)
      : mTime(AddLength(iNote.mTime, iLength)) {
    if (iSnaps && iLength.GetType() == Time_eType_Samples)
      mTime = Time_Convert::SnapToCoarseInternalTick(mTime);
    mDuration = AddLength(iNote.mTime, iNote.mEvent.GetDuration()) - mTime;
  }
  Time_Typed mTime;
  Time_TypedLength mDuration;
};

}  // namespace

void Vrad_NoteListBase::OffsetTimes(Time_TypedLength iLength) {
  NdoAboutToModify();
  bool const snaps = Snaps();
  Vrad_RewriteAll(mNotes, [&](Note & ioNote) {
    ioNote.mTime = AddLength(ioNote.mTime, iLength);
    if (snaps) ioNote.mTime = Time_Convert::SnapToCoarseInternalTick(ioNote.mTime);
  });
  if (mLongNoteListP) mLongNoteListP->OffsetTimes(iLength);
}

// A length in ticks is snapped itself, so that starts on the grid stay there; with one in samples
// each start is.
void Vrad_NoteListBase::OffsetStarts(Time_TypedLength iLength) {
  NdoAboutToModify();
  bool const snaps = Snaps();
  bool const hasTicks =
      !mNotes.empty() && std::as_const(mNotes).front().mTime.GetType() == Time_eType_Ticks;
  if (snaps && iLength.GetType() == Time_eType_Ticks && hasTicks) {
    long long ticks = iLength.AsInt64();
    Time_Convert::SnapToCoarseInternalTick(ticks);
    iLength = Time_TypedLength(ticks, Time_eType_Ticks);
  }
  for (Note const & note : std::as_const(mNotes))
    if (MovedStart(note, iLength, snaps).mDuration.AsInt64() <= 1) return;
  Vrad_RewriteAll(mNotes, [&](Note & ioNote) {
    MovedStart const moved(ioNote, iLength, snaps);
    ioNote.mTime = moved.mTime;
    ioNote.mEvent.SetDuration(moved.mDuration);
  });
  if (mLongNoteListP) mLongNoteListP->OffsetStarts(iLength);
}

// The length is turned into the unit of each note's time, and stays so for the next note and for
// the long note list.
void Vrad_NoteListBase::OffsetDurations(Time_TypedLength iLength) {
  NdoAboutToModify();
  Vrad_RewriteAll(mNotes, [&](Note & ioNote) {
    iLength = AddLength(ioNote.mTime, iLength) - ioNote.mTime;
    Time_TypedLength const duration = ioNote.mEvent.GetDuration() + iLength;
    if (duration.AsInt64() >= 1) ioNote.mEvent.SetDuration(duration);
  });
  if (mLongNoteListP) mLongNoteListP->OffsetDurations(iLength);
}

// The length is a direction, and upside down: one that is positive lowers the notes.
void Vrad_NoteListBase::OffsetPitches(Time_TypedLength iLength) {
  bool const isDown = iLength.AsInt64() >= 1;
  int highest = 0;
  int lowest = 127;
  for (Note const & note : std::as_const(mNotes)) {
    highest = std::max<int>(highest, note.mEvent.GetPitch());
    lowest = std::min<int>(lowest, note.mEvent.GetPitch());
  }
  if (isDown ? lowest < 1 : highest == 127) return;
  NdoAboutToModify();
  Vrad_RewriteAll(mNotes, [isDown](Note & ioNote) {
    int const pitch = ioNote.mEvent.GetPitch() + (isDown ? -1 : 1);
    ioNote.mEvent.SetPitch(static_cast<signed char>(pitch));
  });
  if (mLongNoteListP) mLongNoteListP->OffsetPitches(iLength);
}

bool Vrad_NoteListBase::Snaps() const {
  return mQuantizeContents && TickTimesMatter::Active();
}
