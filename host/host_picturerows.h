// The notes of a roll, brought to pixels: internal to the pictures.
#pragma once

#include "host/host_picturelayout.h"

/// A stretch of one row that has one colour. Columns [mFirst, mLast).
struct Host_PictureRun {
  int mPitch;
  int mFirst, mLast;
  int mVelocity;  // 0: muted
};

/// The runs of a panel, by pitch, then column. Where notes meet on a pixel the loudest shows; a
/// note is at least two pixels wide, and one of some width leaves its last pixel free, so that the
/// next note of the pitch is seen to begin. At most as many as there are pixels.
std::vector<Host_PictureRun> Host_FindPictureRuns(Host_PictureContents const & iContents,
                                                  Host_PictureLayout const & iLayout);
