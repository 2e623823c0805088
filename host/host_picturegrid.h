// The lines of bars and beats: internal to the pictures.
#pragma once

#include <vector>

#include "host/host_picturelayout.h"

struct Host_PictureGridLine {
  int mX;
  long long mBar;  // the bar that begins here; 0: a beat
  bool mIsNumbered;
};

/// From left to right. Beats and bars that would lie too close are thinned out: every second bar
/// stays, every fourth, and so on; fewer still have a number.
std::vector<Host_PictureGridLine> Host_FindPictureGrid(Host_Picture const & iPicture,
                                                       Host_PictureLayout const & iLayout);
