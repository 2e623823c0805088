// Snapshots of a note list.
#include "cmn/cmn_assert.h"
#include "vrad/vrad_notelist.h"

Vrad_NoteListBase_NdoState::Vrad_NoteListBase_NdoState(
    Vrad_NoteListBase const & iList, Ndo_StateRef<Vrad_NoteListBase> const & iLongNoteListRef)
    : mQuantizeContents(iList.mQuantizeContents),
      mNotes(iList.mNotes),
      mLongNoteListRef(iLongNoteListRef),
      mLongNoteSamples(iList.mLongNoteDuration[Time_eType_Samples]),
      mLongNoteTicks(iList.mLongNoteDuration[Time_eType_Ticks]) {}

Vrad_NoteListBase_NdoState::~Vrad_NoteListBase_NdoState() = default;

Ndo_Object * Vrad_NoteListBase_NdoState::NdoReCreate() {
  return new Vrad_NoteListBase(Ndo_Object::kNotUndoable, true);
}

Ndo_State * Vrad_NoteListBase::NdoGetState() {
  Ndo_StateRef<Vrad_NoteListBase> const longNoteListRef(mLongNoteListP);
  return new Vrad_NoteListBase_NdoState(*this, longNoteListRef);
}

// The long note list restores itself, through a state of its own.
void Vrad_NoteListBase::NdoRestoreState(Ndo_State * iStateP) {
  auto * const p = dynamic_cast<Vrad_NoteListBase_NdoState *>(iStateP);
  if (!CMN_REQUIRE_FLAGGED(p, "p")) return;
  mQuantizeContents = p->mQuantizeContents;
  mNotes = p->mNotes;
  ShareLongNoteList(p->mLongNoteListRef.Resolve());
  mLongNoteDuration[Time_eType_Samples] = p->mLongNoteSamples;
  mLongNoteDuration[Time_eType_Ticks] = p->mLongNoteTicks;
}
