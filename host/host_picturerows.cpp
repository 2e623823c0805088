#include "host/host_picturerows.h"

#include <algorithm>

namespace {

constexpr int kMinWidth = 2;  // a single pixel is hard to see
constexpr int kMinWidthForGap = 4;
constexpr int kMuted = 1;  // in a row of pixels 0 is nothing, then the velocity plus 1

int MarkOf(Host_PictureNote const & iNote) {
  return iNote.mIsMuted ? kMuted : std::max(iNote.mVelocity, 1) + 1;
}

void AppendRuns(std::vector<unsigned char> const & iRow, int iPitch, int iX,
                std::vector<Host_PictureRun> & ioRuns) {
  for (size_t first = 0; first < iRow.size();) {
    size_t last = first + 1;
    while (last < iRow.size() && iRow[last] == iRow[first])
      ++last;
    if (iRow[first] != 0)
      ioRuns.push_back({iPitch, iX + static_cast<int>(first), iX + static_cast<int>(last),
                        iRow[first] - kMuted});
    first = last;
  }
}

}  // namespace

std::vector<Host_PictureRun> Host_FindPictureRuns(Host_PictureContents const & iContents,
                                                  Host_PictureLayout const & iLayout) {
  Host_PictureBox const & axis = iLayout.GetRuler();
  std::vector<std::vector<unsigned char>> rows(128);
  for (Host_PictureNote const & note : iContents.mNotes) {
    std::vector<unsigned char> & row = rows[static_cast<size_t>(note.mPitch)];
    row.resize(static_cast<size_t>(axis.mWidth));
    int const first = std::min(iLayout.GetX(note.mStart) - axis.mX, axis.mWidth - kMinWidth);
    int last = std::max(iLayout.GetX(note.mEnd) - axis.mX, first + kMinWidth);
    if (last - first >= kMinWidthForGap && last < axis.mWidth) --last;
    for (int x = first; x < last; ++x) {
      unsigned char & pixel = row[static_cast<size_t>(x)];
      pixel = std::max(pixel, static_cast<unsigned char>(MarkOf(note)));
    }
  }
  std::vector<Host_PictureRun> runs;
  for (size_t pitch = 0; pitch < rows.size(); ++pitch)
    AppendRuns(rows[pitch], static_cast<int>(pitch), axis.mX, runs);
  return runs;
}
