// Where everything of a picture stands, in whole pixels: internal to the pictures.
#pragma once

#include <vector>

#include "host/host_picturecontents.h"

struct Host_PictureBox {
  int mX, mY, mWidth, mHeight;
  int GetRight() const { return mX + mWidth; }
  int GetBottom() const { return mY + mHeight; }
};

/// The place of one clip: a caption, a roll if it has notes, lanes below.
struct Host_PicturePanel {
  Host_PictureBox mCaption;
  Host_PictureBox mRoll;  // of no height without notes
  int mLowest, mHighest;  // pitches of its rows
  std::vector<Host_PictureBox> mLanes;

  /// The upper edge of a pitch's row.
  int GetY(int iPitch, int iRowHeight) const { return mRoll.mY + (mHighest - iPitch) * iRowHeight; }
};

/// Rows are equally high throughout, as high as the picture allows.
class Host_PictureLayout {
public:
  /// Fails: Host_PictureError, as for drawing.
  Host_PictureLayout(Host_Picture const & iPicture,
                     std::vector<Host_PictureContents> const & iContents);

  int GetWidth() const { return mWidth; }
  int GetHeight() const { return mHeight; }
  int GetRowHeight() const { return mRowHeight; }
  Host_PictureBox const & GetTitle() const { return mTitle; }
  Host_PictureBox const & GetRuler() const { return mRuler; }
  std::vector<Host_PicturePanel> const & GetPanels() const { return mPanels; }

  /// The pixel column at whose left edge a tick lies; outside the range an edge of it.
  int GetX(long long iTick) const;

private:
  void PlacePanels(std::vector<Host_PictureContents> const & iContents);

  long long mFrom, mTo;
  int mWidth, mHeight, mRowHeight;
  Host_PictureBox mTitle, mRuler;
  std::vector<Host_PicturePanel> mPanels;
};
