#include "host/host_picture.h"

#include "host/host_filebytes.h"
#include "host/host_picturepainter.h"
#include "vrad/vrad_chunk.h"

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

// A clip counts by its notes, once when it is looked through and once when it is drawn.
class Steps {
public:
  Steps(std::vector<Host_PictureClip> const & iClips, Host_Progress const & iProgress)
      : mProgress(iProgress) {
    for (Host_PictureClip const & clip : iClips)
      mNumOfAll += 2 * SizeOf(clip);
    Tell();
  }

  void Step(Host_PictureClip const & iClip) {
    mNumDone += SizeOf(iClip);
    Tell();
  }

private:
  static size_t SizeOf(Host_PictureClip const & iClip) {
    Vrad_NoteListBase const * const notesP = iClip.mChunkP->GetNoteList();
    return notesP ? 1 + static_cast<size_t>(notesP->Size()) : 1;
  }

  void Tell() const {
    if (mProgress) mProgress(mNumDone, mNumOfAll);
  }

  Host_Progress const & mProgress;
  size_t mNumDone = 0, mNumOfAll = 0;
};

}  // namespace

Host_EPictureForm Host_GetPictureForm(std::string const & iPath) {
  if (EndsWith(iPath, ".svg")) return kPictureForm_SVG;
  if (EndsWith(iPath, ".png")) return kPictureForm_PNG;
  throw Host_PictureError("a picture's name ends in .svg or .png");
}

std::string Host_DrawPicture(Host_Picture const & iPicture, Host_EPictureForm iForm,
                             Host_Progress const & iProgress) {
  Steps steps(iPicture.mClips, iProgress);
  std::vector<Host_PictureContents> contents;
  for (Host_PictureClip const & clip : iPicture.mClips) {
    contents.emplace_back(*clip.mChunkP, iPicture.mFrom, iPicture.mTo);
    steps.Step(clip);
  }
  Host_PictureLayout const layout(iPicture, contents);
  Host_PictureCanvas canvas(iForm, layout.GetWidth(), layout.GetHeight());
  Host_PicturePainter painter(iPicture, contents, layout, canvas);
  painter.DrawTitle();
  painter.DrawRuler();
  for (size_t i = 0; i < contents.size(); ++i) {
    painter.DrawPanel(i);
    steps.Step(iPicture.mClips[i]);
  }
  return canvas.Finish();
}

void Host_WritePicture(Host_Picture const & iPicture, std::string const & iPath,
                       Host_Progress const & iProgress) {
  std::string const bytes = Host_DrawPicture(iPicture, Host_GetPictureForm(iPath), iProgress);
  Host_SaveBytes({reinterpret_cast<unsigned char const *>(bytes.data()), bytes.size()}, iPath);
}
