// What pictures are drawn on: internal to the pictures, and the only place that knows Cairo.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/host_picture.h"
#include "host/host_picturelayout.h"

struct Host_PictureColour {
  unsigned char mRed, mGreen, mBlue;
};

enum Host_EPictureAlign : int { kAlign_Left, kAlign_Centre, kAlign_Right };

struct Host_PictureFont {
  double mSize;  // pixels
  bool mIsBold;
  Host_PictureColour mColour;
};

/// A white sheet. Coordinates are pixels from the upper left corner.
/// Fails: what goes wrong while drawing is told by `Finish`; std::bad_alloc.
class Host_PictureCanvas {
public:
  Host_PictureCanvas(Host_EPictureForm iForm, int iWidth, int iHeight);
  ~Host_PictureCanvas();
  Host_PictureCanvas(Host_PictureCanvas const &) = delete;
  Host_PictureCanvas & operator=(Host_PictureCanvas const &) = delete;

  /// Collects boxes, until one fill for all.
  void AddBox(Host_PictureBox const & iBox);
  void Fill(Host_PictureColour const & iColour);
  void FillBox(Host_PictureBox const & iBox, Host_PictureColour const & iColour);
  /// A line of one pixel along the inside of a box.
  void FrameBox(Host_PictureBox const & iBox, Host_PictureColour const & iColour);
  /// A line of one pixel through the centres of pixels.
  void DrawLine(std::vector<std::pair<int, int>> const & iPixels,
                Host_PictureColour const & iColour);

  /// A line of text around, from or up to iX, on the base line iY.
  void DrawText(std::string const & iText, Host_PictureFont const & iFont, double iX, double iY,
                Host_EPictureAlign iAlign);
  double MeasureText(std::string const & iText, Host_PictureFont const & iFont);
  /// As much of a text as fits, with "…" if that is not all of it.
  std::string FitText(std::string const & iText, Host_PictureFont const & iFont, double iWidth);

  /// The bytes of the file. The canvas cannot be used afterwards.
  /// Fails: std::runtime_error; std::bad_alloc.
  std::string Finish();

private:
  struct Surface;

  std::unique_ptr<Surface> mSurfaceP;
};
