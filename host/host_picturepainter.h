// Draws a picture part by part: internal to the pictures.
#pragma once

#include "host/host_picturecanvas.h"
#include "host/host_picturegrid.h"

/// The colour of a note: paler the softer.
Host_PictureColour Host_GetVelocityColour(int iVelocity);

/// Everything that it is given must outlive it.
class Host_PicturePainter {
public:
  Host_PicturePainter(Host_Picture const & iPicture,
                      std::vector<Host_PictureContents> const & iContents,
                      Host_PictureLayout const & iLayout, Host_PictureCanvas & ioCanvas);

  void DrawTitle();
  void DrawRuler();
  void DrawPanel(size_t iPanel);

private:
  void DrawLegend();
  void DrawCaption(size_t iPanel);
  void DrawKeys(Host_PicturePanel const & iPanel);
  void DrawRows(Host_PicturePanel const & iPanel);
  void DrawGrid(Host_PictureBox const & iBox);
  void DrawNotes(size_t iPanel);
  void DrawBoxes(std::vector<Host_PictureBox> const & iBoxes, Host_PictureColour const & iInside,
                 Host_PictureColour const & iEdge, Host_PictureColour const & iSmall);
  void DrawLane(Host_PictureBox const & iBox, Host_PictureLane const & iLane);
  void DrawMarks(Host_PictureBox const & iBox, Host_PictureLane const & iLane);
  void DrawCurve(Host_PictureBox const & iBox, Host_PictureLane const & iLane,
                 std::vector<Host_PicturePoint> const & iCurve);

  Host_Picture const & mPicture;
  std::vector<Host_PictureContents> const & mContents;
  Host_PictureLayout const & mLayout;
  Host_PictureCanvas & mCanvas;
  std::vector<Host_PictureGridLine> mGrid;
};
