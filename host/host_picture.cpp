#include "host/host_picture.h"

#include "foundation/sys_stream.h"
#include "host/host_picturepainter.h"

namespace {

bool EndsWith(std::string const & iPath, std::string const & iEnding) {
  if (iPath.size() < iEnding.size()) return false;
  size_t const start = iPath.size() - iEnding.size();
  for (size_t i = 0; i < iEnding.size(); ++i) {
    char const c = iPath[start + i];
    char const lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    if (lower != iEnding[i]) return false;
  }
  return true;
}

}  // namespace

Host_EPictureForm Host_GetPictureForm(std::string const & iPath) {
  if (EndsWith(iPath, ".svg")) return kPictureForm_SVG;
  if (EndsWith(iPath, ".png")) return kPictureForm_PNG;
  throw Host_PictureError("a picture's name ends in .svg or .png");
}

std::string Host_DrawPicture(Host_Picture const & iPicture, Host_EPictureForm iForm) {
  std::vector<Host_PictureContents> contents;
  for (Host_PictureClip const & clip : iPicture.mClips)
    contents.emplace_back(*clip.mChunkP, iPicture.mFrom, iPicture.mTo);
  Host_PictureLayout const layout(iPicture, contents);
  Host_PictureCanvas canvas(iForm, layout.GetWidth(), layout.GetHeight());
  Host_PicturePainter painter(iPicture, contents, layout, canvas);
  painter.DrawTitle();
  painter.DrawRuler();
  for (size_t i = 0; i < contents.size(); ++i)
    painter.DrawPanel(i);
  return canvas.Finish();
}

void Host_WritePicture(Host_Picture const & iPicture, std::string const & iPath) {
  std::string const bytes = Host_DrawPicture(iPicture, Host_GetPictureForm(iPath));
  Sys_FileOutStream file(iPath);
  file.WriteBlock(bytes.data(), static_cast<int>(bytes.size()));
  file.Close();
}
