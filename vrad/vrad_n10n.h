// What the library notifies its host of.
#pragma once

#include "foundation/vrad_export.h"

/// Sent through `Cmn_N10nCenter::Sender()` when notes with a note-on velocity of zero were read.
struct VRAD_EXPORT Vrad_N10n_MIDIZeroOnVelocitiesFound {};
