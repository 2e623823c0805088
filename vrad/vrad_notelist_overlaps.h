// Merging notes so that no two of one pitch overlap or stand twice.
#pragma once

#include "cmn/cmn_chunkyvector.h"
#include "vrad/vrad_extendedevent.h"

/// Gives all of `ioAdded` and what stays of `ioOwn` beside it, in order of time. Where two notes of
/// one pitch overlap the added one wins. The notes that are cut are cut in place, in either
/// sequence. O((n + m) log (n + m)) if both are sorted in one unit, durations included; else each
/// note costs a walk over those that begin while it lasts.
/// Fails: `std::bad_alloc`; some notes may have been cut.
Cmn_ChunkyPODVector<Vrad_NoteListBase_Note>
Vrad_MergeAvoidingOverlaps(Cmn_ChunkyPODVector<Vrad_NoteListBase_Note> & ioOwn,
                           Cmn_ChunkyPODVector<Vrad_NoteListBase_Note> & ioAdded);
