#include "host/host_picturelayout.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kMargin = 16;
constexpr int kKeysWidth = 84;  // names and keys, left of the time axis
constexpr int kTitleHeight = 40;
constexpr int kRulerHeight = 18;
constexpr int kCaptionHeight = 22;
constexpr int kLaneHeight = 30;
constexpr int kLaneGap = 4;
constexpr int kPanelGap = 12;

constexpr int kMinNumRows = 13;     // an octave, both ends included
constexpr int kUsualHeight = 1200;  // what a picture without a height of its own comes to, or more
constexpr int kMinRowHeight = 1;
constexpr int kLegibleRowHeight = 4;
constexpr int kUsualRowHeight = 9;
constexpr int kMaxRowHeight = 24;

// The rows of a clip: its notes, one row around them, and at least an octave.
void FindRows(Host_PictureContents const & iContents, int & oLowest, int & oHighest) {
  oLowest = std::max(iContents.mLowest - 1, 0);
  oHighest = std::min(iContents.mHighest + 1, 127);
  int const numMissing = std::max(kMinNumRows - (oHighest - oLowest + 1), 0);
  oLowest = std::clamp(oLowest - numMissing / 2, 0, 128 - kMinNumRows);
  oHighest = std::max(oHighest, oLowest + kMinNumRows - 1);
}

int CountRows(Host_PictureContents const & iContents) {
  if (iContents.mNotes.empty()) return 0;
  int lowest, highest;
  FindRows(iContents, lowest, highest);
  return highest - lowest + 1;
}

long long HeightWithoutRows(std::vector<Host_PictureContents> const & iContents) {
  long long height = 2 * kMargin + kTitleHeight + kRulerHeight;
  for (Host_PictureContents const & contents : iContents) {
    height += kCaptionHeight + kPanelGap;
    height += static_cast<long long>(contents.mLanes.size()) * (kLaneHeight + kLaneGap);
  }
  return height;
}

void CheckSize(Host_Picture const & iPicture) {
  auto const fail = [](std::string const & iText) { throw Host_PictureError(iText); };
  std::string const limit = std::to_string(kHost_MaxPictureSide);
  if (iPicture.mWidth < kHost_MinPictureWidth || iPicture.mWidth > kHost_MaxPictureSide)
    fail("the width is " + std::to_string(kHost_MinPictureWidth) + " to " + limit + " pixels");
  if (iPicture.mHeight < 0 || iPicture.mHeight > kHost_MaxPictureSide)
    fail("the height is at most " + limit + " pixels");
  if (iPicture.mFrom.AsInt64() >= iPicture.mTo.AsInt64()) fail("the range is empty");
}

}  // namespace

Host_PictureLayout::Host_PictureLayout(Host_Picture const & iPicture,
                                       std::vector<Host_PictureContents> const & iContents)
    : mFrom(iPicture.mFrom.AsInt64()), mTo(iPicture.mTo.AsInt64()), mWidth(iPicture.mWidth) {
  CheckSize(iPicture);
  long long const rest = HeightWithoutRows(iContents);
  long long numRows = 0;
  for (Host_PictureContents const & contents : iContents)
    numRows += CountRows(contents);
  long long const least = rest + numRows * kMinRowHeight;
  long long const limit =
      std::min<long long>(kHost_MaxPictureSide, kHost_MaxPicturePixels / mWidth);
  if (least > limit)
    throw Host_PictureError("the clips need " + std::to_string(least) + " of at most " +
                            std::to_string(limit) + " pixels of height at this width");
  if (iPicture.mHeight > limit)
    throw Host_PictureError("the height is at most " + std::to_string(limit) +
                            " pixels at this width");
  if (iPicture.mHeight != 0 && iPicture.mHeight < least)
    throw Host_PictureError("the clips need a height of " + std::to_string(least) + " pixels");
  bool const isFree = iPicture.mHeight == 0;
  long long const height =
      isFree ? std::clamp<long long>(rest + numRows * kLegibleRowHeight,
                                     std::min<long long>(kUsualHeight, limit), limit)
             : iPicture.mHeight;
  mRowHeight =
      static_cast<int>(std::min<long long>(numRows == 0 ? kMinRowHeight : (height - rest) / numRows,
                                           isFree ? kUsualRowHeight : kMaxRowHeight));
  mHeight = static_cast<int>(isFree ? rest + numRows * mRowHeight : height);
  PlacePanels(iContents);
}

void Host_PictureLayout::PlacePanels(std::vector<Host_PictureContents> const & iContents) {
  int const left = kMargin + kKeysWidth;
  int const width = mWidth - left - kMargin;
  mTitle = {kMargin, kMargin, mWidth - 2 * kMargin, kTitleHeight};
  mRuler = {left, mTitle.GetBottom(), width, kRulerHeight};
  int y = mRuler.GetBottom();
  for (Host_PictureContents const & contents : iContents) {
    Host_PicturePanel panel{{kMargin, y, mWidth - 2 * kMargin, kCaptionHeight}, {}, 0, 0, {}};
    y += kCaptionHeight;
    FindRows(contents, panel.mLowest, panel.mHighest);
    panel.mRoll = {left, y, width, CountRows(contents) * mRowHeight};
    y = panel.mRoll.GetBottom();
    for (size_t i = 0; i < contents.mLanes.size(); ++i) {
      panel.mLanes.push_back({left, y + kLaneGap, width, kLaneHeight});
      y = panel.mLanes.back().GetBottom();
    }
    y += kPanelGap;
    mPanels.push_back(panel);
  }
}

int Host_PictureLayout::GetX(long long iTick) const {
  double const length = static_cast<double>(mTo) - static_cast<double>(mFrom);
  double const passed =
      static_cast<double>(std::clamp(iTick, mFrom, mTo)) - static_cast<double>(mFrom);
  return mRuler.mX + static_cast<int>(std::floor(passed / length * mRuler.mWidth));
}
