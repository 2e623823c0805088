// Pictures of clips: a piano roll for each, with lanes of its continuous values, below one ruler of
// bars.
//
// Notes are coloured by velocity, muted ones are hollow. A picture is as wide as it is asked to be,
// however many notes there are: what falls on one pixel is drawn once, the loudest note on top. So
// its bytes have a bound, and the same clips give the same bytes.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/time_typed.h"
#include "host/host_midibars.h"
#include "host/host_progress.h"

class Vrad_Chunk;

/// A clip as it is drawn.
struct Host_PictureClip {
  Vrad_Chunk * mChunkP;  // not owned, only read
  std::string mLabel;    // UTF-8; stands above the clip
};

/// What is drawn, and how large.
struct Host_Picture {
  std::string mTitle;                    // UTF-8
  std::vector<Host_PictureClip> mClips;  // from top to bottom
  Host_BarMap mBars;
  Time_Tick mFrom = Time_Tick(0);  // [mFrom, mTo), from the left edge to the right one
  Time_Tick mTo = Time_Tick(0);
  int mWidth = 1600;  // pixels
  int mHeight = 0;    // pixels; 0: what the clips need to be legible
};

enum Host_EPictureForm : int { kPictureForm_SVG = 0, kPictureForm_PNG = 1 };

constexpr int kHost_MinPictureWidth = 320;
constexpr int kHost_MaxPictureSide = 16384;
constexpr long long kHost_MaxPicturePixels = 1LL << 26;  // a quarter of a gigabyte to draw in

/// The picture cannot be drawn as it is asked for. `what()` says why, in units of the caller.
class Host_PictureError : public std::invalid_argument {
public:
  using std::invalid_argument::invalid_argument;
};

/// The form that the ending of a path asks for, ".svg" or ".png" in either case.
/// Fails: Host_PictureError for any other ending.
Host_EPictureForm Host_GetPictureForm(std::string const & iPath);

/// Draws into memory and gives the file's bytes.
/// Fails: Host_PictureError when the size is out of bounds, too small for the clips, or the range
///        is empty; std::runtime_error when a text is not UTF-8; std::bad_alloc.
/// Thread: as the chunks.
///
/// `iProgress`, unless empty, is told at first, and after each clip that is looked through or
/// drawn.
std::string Host_DrawPicture(Host_Picture const & iPicture, Host_EPictureForm iForm,
                             Host_Progress const & iProgress = Host_Progress());

/// Draws into a file, in the form that its ending asks for. The file appears whole or not at all.
/// Fails: also Sys_StreamException when it cannot be written.
void Host_WritePicture(Host_Picture const & iPicture, std::string const & iPath,
                       Host_Progress const & iProgress = Host_Progress());
