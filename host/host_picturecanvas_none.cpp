// Where Cairo was not found: says so.
#include "host/host_picturecanvas.h"

struct Host_PictureCanvas::Surface {};

Host_PictureCanvas::Host_PictureCanvas(Host_EPictureForm, int, int) {
  throw Host_PictureError("this program was built without pictures: Cairo was not found");
}

Host_PictureCanvas::~Host_PictureCanvas() = default;
void Host_PictureCanvas::AddBox(Host_PictureBox const &) {}
void Host_PictureCanvas::Fill(Host_PictureColour const &) {}
void Host_PictureCanvas::FillBox(Host_PictureBox const &, Host_PictureColour const &) {}
void Host_PictureCanvas::FrameBox(Host_PictureBox const &, Host_PictureColour const &) {}
void Host_PictureCanvas::DrawLine(std::vector<std::pair<int, int>> const &,
                                  Host_PictureColour const &) {}
void Host_PictureCanvas::DrawText(std::string const &, Host_PictureFont const &, double, double,
                                  Host_EPictureAlign) {}

double Host_PictureCanvas::MeasureText(std::string const &, Host_PictureFont const &) {
  return 0;
}

std::string Host_PictureCanvas::FitText(std::string const & iText, Host_PictureFont const &,
                                        double) {
  return iText;
}

std::string Host_PictureCanvas::Finish() {
  return std::string();
}
