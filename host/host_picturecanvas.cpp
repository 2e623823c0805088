#include "host/host_picturecanvas.h"

#include <new>
#include <stdexcept>

#include <cairo-svg.h>
#include <cairo.h>

namespace {

// Cairo is C: nothing may be thrown through it.
cairo_status_t AppendBytes(void * ioString, unsigned char const * iData, unsigned iNumBytes) {
  try {
    static_cast<std::string *>(ioString)->append(reinterpret_cast<char const *>(iData), iNumBytes);
    return CAIRO_STATUS_SUCCESS;
  } catch (std::bad_alloc const &) {
    return CAIRO_STATUS_NO_MEMORY;
  }
}

void Check(cairo_status_t iStatus) {
  if (iStatus == CAIRO_STATUS_SUCCESS) return;
  if (iStatus == CAIRO_STATUS_NO_MEMORY) throw std::bad_alloc();
  throw std::runtime_error(iStatus == CAIRO_STATUS_INVALID_STRING
                               ? "a text is not UTF-8"
                               : cairo_status_to_string(iStatus));
}

cairo_surface_t * MakeSurface(Host_EPictureForm iForm, int iWidth, int iHeight,
                              std::string & ioBytes) {
  if (iForm == kPictureForm_PNG)
    return cairo_image_surface_create(CAIRO_FORMAT_RGB24, iWidth, iHeight);
  return cairo_svg_surface_create_for_stream(AppendBytes, &ioBytes, iWidth, iHeight);
}

// Cairo counts the surfaces of the process and names a group by that number, which nothing refers
// to. The same picture is to have the same bytes.
void ForgetSurfaceNumber(std::string & ioSVG) {
  static std::string const kName = "<g id=\"surface";
  size_t const at = ioSVG.find(kName);
  if (at == std::string::npos) return;
  size_t const number = at + kName.size();
  ioSVG.erase(number, ioSVG.find('"', number) - number);
}

// The same text takes the same place in both forms.
void SetFontOptions(cairo_t * iContextP) {
  cairo_font_options_t * const optionsP = cairo_font_options_create();
  cairo_font_options_set_antialias(optionsP, CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(optionsP, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(optionsP, CAIRO_HINT_METRICS_OFF);
  cairo_set_font_options(iContextP, optionsP);
  cairo_font_options_destroy(optionsP);
}

}  // namespace

struct Host_PictureCanvas::Surface {
  Surface(Host_EPictureForm iForm, int iWidth, int iHeight)
      : mForm(iForm),
        mSurfaceP(MakeSurface(iForm, iWidth, iHeight, mBytes)),
        mContextP(cairo_create(mSurfaceP)) {
    SetFontOptions(mContextP);
  }
  Surface(Surface const &) = delete;
  Surface & operator=(Surface const &) = delete;
  ~Surface() {
    cairo_destroy(mContextP);
    cairo_surface_destroy(mSurfaceP);
  }

  void SetColour(Host_PictureColour const & iColour) {
    cairo_set_source_rgb(mContextP, iColour.mRed / 255.0, iColour.mGreen / 255.0,
                         iColour.mBlue / 255.0);
  }
  void SetFont(Host_PictureFont const & iFont) {
    cairo_select_font_face(mContextP, "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                           iFont.mIsBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(mContextP, iFont.mSize);
  }

  std::string mBytes;  // written to until the surface is gone
  Host_EPictureForm mForm;
  cairo_surface_t * mSurfaceP;
  cairo_t * mContextP;
};

Host_PictureCanvas::Host_PictureCanvas(Host_EPictureForm iForm, int iWidth, int iHeight)
    : mSurfaceP(std::make_unique<Surface>(iForm, iWidth, iHeight)) {
  FillBox({0, 0, iWidth, iHeight}, {255, 255, 255});
}

Host_PictureCanvas::~Host_PictureCanvas() = default;

void Host_PictureCanvas::AddBox(Host_PictureBox const & iBox) {
  cairo_rectangle(mSurfaceP->mContextP, iBox.mX, iBox.mY, iBox.mWidth, iBox.mHeight);
}

void Host_PictureCanvas::Fill(Host_PictureColour const & iColour) {
  mSurfaceP->SetColour(iColour);
  cairo_fill(mSurfaceP->mContextP);
}

void Host_PictureCanvas::FillBox(Host_PictureBox const & iBox, Host_PictureColour const & iColour) {
  AddBox(iBox);
  Fill(iColour);
}

void Host_PictureCanvas::FrameBox(Host_PictureBox const & iBox,
                                  Host_PictureColour const & iColour) {
  AddBox({iBox.mX, iBox.mY, iBox.mWidth, 1});
  AddBox({iBox.mX, iBox.GetBottom() - 1, iBox.mWidth, 1});
  AddBox({iBox.mX, iBox.mY + 1, 1, iBox.mHeight - 2});
  AddBox({iBox.GetRight() - 1, iBox.mY + 1, 1, iBox.mHeight - 2});
  Fill(iColour);
}

void Host_PictureCanvas::DrawLine(std::vector<std::pair<int, int>> const & iPixels,
                                  Host_PictureColour const & iColour) {
  mSurfaceP->SetColour(iColour);
  cairo_set_line_width(mSurfaceP->mContextP, 1);
  for (auto const & [x, y] : iPixels)
    cairo_line_to(mSurfaceP->mContextP, x + 0.5, y + 0.5);
  cairo_stroke(mSurfaceP->mContextP);
}

void Host_PictureCanvas::DrawText(std::string const & iText, Host_PictureFont const & iFont,
                                  double iX, double iY, Host_EPictureAlign iAlign) {
  double const width = MeasureText(iText, iFont);
  double const part = iAlign == kAlign_Left ? 0 : iAlign == kAlign_Centre ? 0.5 : 1;
  mSurfaceP->SetColour(iFont.mColour);
  cairo_move_to(mSurfaceP->mContextP, iX - width * part, iY);
  cairo_show_text(mSurfaceP->mContextP, iText.c_str());
  cairo_new_path(mSurfaceP->mContextP);
}

double Host_PictureCanvas::MeasureText(std::string const & iText, Host_PictureFont const & iFont) {
  mSurfaceP->SetFont(iFont);
  cairo_text_extents_t extents;
  cairo_text_extents(mSurfaceP->mContextP, iText.c_str(), &extents);
  return extents.x_advance;
}

std::string Host_PictureCanvas::FitText(std::string const & iText, Host_PictureFont const & iFont,
                                        double iWidth) {
  if (MeasureText(iText, iFont) <= iWidth) return iText;
  std::string text = iText;
  while (!text.empty()) {
    // Off goes a whole character.
    while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xc0) == 0x80)
      text.pop_back();
    if (!text.empty()) text.pop_back();
    if (MeasureText(text + "…", iFont) <= iWidth) return text + "…";
  }
  return text;
}

std::string Host_PictureCanvas::Finish() {
  Check(cairo_status(mSurfaceP->mContextP));
  if (mSurfaceP->mForm == kPictureForm_PNG)
    Check(cairo_surface_write_to_png_stream(mSurfaceP->mSurfaceP, AppendBytes, &mSurfaceP->mBytes));
  cairo_surface_finish(mSurfaceP->mSurfaceP);
  Check(cairo_surface_status(mSurfaceP->mSurfaceP));
  if (mSurfaceP->mForm == kPictureForm_SVG) ForgetSurfaceNumber(mSurfaceP->mBytes);
  return std::move(mSurfaceP->mBytes);
}
