#include "host/host_picturepainter.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>

#include "host/host_picturerows.h"

namespace {

constexpr Host_PictureColour kInk = {31, 36, 48}, kGrey = {104, 112, 128};
constexpr Host_PictureColour kFrame = {176, 182, 194};
constexpr Host_PictureColour kWhiteRow = {255, 255, 255}, kBlackRow = {243, 244, 248};
constexpr Host_PictureColour kOctaveLine = {222, 225, 232};
constexpr Host_PictureColour kBeatLine = {234, 236, 241}, kBarLine = {219, 223, 231};
constexpr Host_PictureColour kNumberedBarLine = {196, 202, 214};
constexpr Host_PictureColour kLaneGround = {249, 250, 252}, kCurve = {22, 134, 120};
constexpr Host_PictureColour kCurveArea = {205, 232, 227}, kRestLine = {196, 214, 212};
constexpr Host_PictureColour kMark = {196, 112, 24};
constexpr Host_PictureColour kMutedEdge = {150, 156, 168}, kMutedGround = {228, 231, 237};

constexpr Host_PictureFont kTitleFont = {17, true, kInk};
constexpr Host_PictureFont kCaptionFont = {12, true, kInk};
constexpr Host_PictureFont kSmallFont = {10.5, false, kGrey};
constexpr Host_PictureFont kBarFont = {10.5, false, kInk};
constexpr Host_PictureFont kMarkFont = {10.5, false, kMark};

constexpr int kKeyLength = 28;
constexpr int kMinGapHeight = 4;  // rows of which the notes leave a pixel free
constexpr int kMinEdgedHeight = 5;
constexpr int kMinEdgedWidth = 4;

bool IsBlackKey(int iPitch) {
  int const tone = iPitch % 12;
  return tone == 1 || tone == 3 || tone == 6 || tone == 8 || tone == 10;
}

Host_PictureColour Mix(Host_PictureColour const & iFrom, Host_PictureColour const & iTo,
                       double iPart) {
  auto const mix = [iPart](int iA, int iB) {
    return static_cast<unsigned char>(iA + (iB - iA) * iPart + 0.5);
  };
  return {mix(iFrom.mRed, iTo.mRed), mix(iFrom.mGreen, iTo.mGreen), mix(iFrom.mBlue, iTo.mBlue)};
}

std::string CountText(size_t iNum) {
  if (iNum == 0) return "no notes";
  std::string text = std::to_string(iNum);
  for (int i = static_cast<int>(text.size()) - 3; i > 0; i -= 3)
    text.insert(static_cast<size_t>(i), ",");
  return text + (iNum == 1 ? " note" : " notes");
}

int RowY(Host_PictureBox const & iBox, Host_PictureLane const & iLane, int iValue) {
  int const value = std::clamp(iValue, iLane.mMin, iLane.mMax);
  int const height = iBox.mHeight - 5;  // clear of the frame
  return iBox.mY + 2 + (iLane.mMax - value) * height / (iLane.mMax - iLane.mMin);
}

}  // namespace

Host_PictureColour Host_GetVelocityColour(int iVelocity) {
  constexpr std::array<Host_PictureColour, 5> kStops = {
      {{176, 205, 240}, {92, 151, 221}, {88, 86, 196}, {160, 44, 150}, {226, 38, 76}}};
  double const place = (std::clamp(iVelocity, 1, 127) - 1) / 126.0 * (kStops.size() - 1);
  size_t const stop = std::min(static_cast<size_t>(place), kStops.size() - 2);
  return Mix(kStops[stop], kStops[stop + 1], place - static_cast<double>(stop));
}

Host_PicturePainter::Host_PicturePainter(Host_Picture const & iPicture,
                                         std::vector<Host_PictureContents> const & iContents,
                                         Host_PictureLayout const & iLayout,
                                         Host_PictureCanvas & ioCanvas)
    : mPicture(iPicture),
      mContents(iContents),
      mLayout(iLayout),
      mCanvas(ioCanvas),
      mGrid(Host_FindPictureGrid(iPicture, iLayout)) {}

void Host_PicturePainter::DrawTitle() {
  Host_PictureBox const & box = mLayout.GetTitle();
  double const room = box.mWidth - 330;
  mCanvas.DrawText(mCanvas.FitText(mPicture.mTitle, kTitleFont, room), kTitleFont, box.mX,
                   box.mY + 18, kAlign_Left);
  DrawLegend();
}

void Host_PicturePainter::DrawLegend() {
  Host_PictureBox const & box = mLayout.GetTitle();
  int const y = box.mY + 7, height = 11;
  int x = box.GetRight() - 52;
  Host_PictureBox const muted = {x - 22, y, 16, height};
  mCanvas.FillBox(muted, kMutedGround);
  mCanvas.FrameBox(muted, kMutedEdge);
  mCanvas.DrawText("muted", kSmallFont, x, y + 9.5, kAlign_Left);
  x -= 48;
  mCanvas.DrawText("127", kSmallFont, x, y + 9.5, kAlign_Right);
  x -= 26;
  for (int velocity = 1; velocity <= 127; ++velocity)
    mCanvas.FillBox({x - 127 + velocity - 1, y, 1, height}, Host_GetVelocityColour(velocity));
  mCanvas.DrawText("velocity 1", kSmallFont, x - 127 - 6, y + 9.5, kAlign_Right);
}

void Host_PicturePainter::DrawRuler() {
  Host_PictureBox const & box = mLayout.GetRuler();
  mCanvas.DrawText("bar", kSmallFont, box.mX - 6, box.GetBottom() - 5, kAlign_Right);
  for (Host_PictureGridLine const & line : mGrid) {
    if (!line.mIsNumbered) continue;
    mCanvas.FillBox({line.mX, box.mY + 2, 1, box.mHeight - 2}, kFrame);
    std::string const number = std::to_string(line.mBar);
    if (line.mX + 4 + mCanvas.MeasureText(number, kBarFont) <= box.GetRight())
      mCanvas.DrawText(number, kBarFont, line.mX + 4, box.GetBottom() - 5, kAlign_Left);
  }
}

void Host_PicturePainter::DrawPanel(size_t iPanel) {
  Host_PicturePanel const & panel = mLayout.GetPanels()[iPanel];
  DrawCaption(iPanel);
  if (panel.mRoll.mHeight > 0) {
    DrawRows(panel);
    DrawGrid(panel.mRoll);
    DrawNotes(iPanel);
    mCanvas.FrameBox(panel.mRoll, kFrame);
    DrawKeys(panel);
  }
  for (size_t i = 0; i < panel.mLanes.size(); ++i)
    DrawLane(panel.mLanes[i], mContents[iPanel].mLanes[i]);
}

void Host_PicturePainter::DrawCaption(size_t iPanel) {
  Host_PictureBox const & box = mLayout.GetPanels()[iPanel].mCaption;
  Host_PictureContents const & contents = mContents[iPanel];
  std::string const label =
      mCanvas.FitText(mPicture.mClips[iPanel].mLabel, kCaptionFont, box.mWidth);
  mCanvas.DrawText(label, kCaptionFont, box.mX, box.GetBottom() - 7, kAlign_Left);
  double const x = box.mX + mCanvas.MeasureText(label, kCaptionFont) + 12;
  std::string rest = CountText(contents.mNotes.size());
  if (!contents.mSettings.empty()) rest += "; " + contents.mSettings;
  mCanvas.DrawText(mCanvas.FitText(rest, kSmallFont, box.GetRight() - x), kSmallFont, x,
                   box.GetBottom() - 7, kAlign_Left);
}

void Host_PicturePainter::DrawKeys(Host_PicturePanel const & iPanel) {
  int const rowHeight = mLayout.GetRowHeight();
  Host_PictureBox const & roll = iPanel.mRoll;
  int const left = roll.mX - kKeyLength - 2;
  for (int pitch = iPanel.mLowest; pitch <= iPanel.mHighest; ++pitch) {
    int const y = iPanel.GetY(pitch, rowHeight);
    if (pitch % 12 == 0 && rowHeight * 12 >= 11 && y + rowHeight - 9 >= roll.mY)
      mCanvas.DrawText("C" + std::to_string(pitch / 12 - 1), kSmallFont, left - 5,
                       y + rowHeight * 0.5 + 3.8, kAlign_Right);
  }
  for (int pitch = iPanel.mLowest; pitch <= iPanel.mHighest; ++pitch) {
    if (IsBlackKey(pitch))
      mCanvas.AddBox({left, iPanel.GetY(pitch, rowHeight), kKeyLength * 5 / 8, rowHeight});
  }
  mCanvas.Fill(kInk);
  for (int pitch = iPanel.mLowest; pitch < iPanel.mHighest; ++pitch) {
    // White keys meet between E and F, B and C.
    bool const meets = pitch % 12 == 4 || pitch % 12 == 11;
    if (meets) mCanvas.AddBox({left, iPanel.GetY(pitch, rowHeight), kKeyLength, 1});
  }
  mCanvas.Fill(kFrame);
  mCanvas.FrameBox({left, roll.mY, kKeyLength, roll.mHeight}, kFrame);
}

void Host_PicturePainter::DrawRows(Host_PicturePanel const & iPanel) {
  int const rowHeight = mLayout.GetRowHeight();
  Host_PictureBox const & roll = iPanel.mRoll;
  mCanvas.FillBox(roll, kWhiteRow);
  for (int pitch = iPanel.mLowest; pitch <= iPanel.mHighest; ++pitch) {
    if (IsBlackKey(pitch))
      mCanvas.AddBox({roll.mX, iPanel.GetY(pitch, rowHeight), roll.mWidth, rowHeight});
  }
  mCanvas.Fill(kBlackRow);
  for (int pitch = iPanel.mLowest + 1; pitch <= iPanel.mHighest; ++pitch) {
    if (pitch % 12 == 0)
      mCanvas.AddBox({roll.mX, iPanel.GetY(pitch - 1, rowHeight), roll.mWidth, 1});
  }
  mCanvas.Fill(kOctaveLine);
}

void Host_PicturePainter::DrawGrid(Host_PictureBox const & iBox) {
  auto const draw = [&](Host_PictureColour const & iColour, bool iIsBar, bool iIsNumbered) {
    for (Host_PictureGridLine const & line : mGrid) {
      if ((line.mBar > 0) == iIsBar && line.mIsNumbered == iIsNumbered)
        mCanvas.AddBox({line.mX, iBox.mY, 1, iBox.mHeight});
    }
    mCanvas.Fill(iColour);
  };
  draw(kBeatLine, false, false);
  draw(kBarLine, true, false);
  draw(kNumberedBarLine, true, true);
}

void Host_PicturePainter::DrawNotes(size_t iPanel) {
  Host_PicturePanel const & panel = mLayout.GetPanels()[iPanel];
  int const rowHeight = mLayout.GetRowHeight();
  int const height = rowHeight >= kMinGapHeight ? rowHeight - 1 : rowHeight;
  std::map<int, std::vector<Host_PictureBox>> boxes;  // by velocity; 0: muted
  for (Host_PictureRun const & run : Host_FindPictureRuns(mContents[iPanel], mLayout))
    boxes[run.mVelocity].push_back(
        {run.mFirst, panel.GetY(run.mPitch, rowHeight), run.mLast - run.mFirst, height});
  for (auto const & [velocity, group] : boxes) {
    Host_PictureColour const colour = Host_GetVelocityColour(velocity);
    if (velocity == 0)
      DrawBoxes(group, kMutedGround, kMutedEdge, kMutedEdge);
    else
      DrawBoxes(group, colour, Mix(colour, kInk, 0.35), colour);
  }
}

// Boxes of some size have an edge. Those that have none need a colour to be seen by.
void Host_PicturePainter::DrawBoxes(std::vector<Host_PictureBox> const & iBoxes,
                                    Host_PictureColour const & iInside,
                                    Host_PictureColour const & iEdge,
                                    Host_PictureColour const & iSmall) {
  auto const isEdged = [](Host_PictureBox const & iBox) {
    return iBox.mHeight >= kMinEdgedHeight && iBox.mWidth >= kMinEdgedWidth;
  };
  for (Host_PictureBox const & box : iBoxes)
    if (isEdged(box)) mCanvas.AddBox(box);
  mCanvas.Fill(iEdge);
  for (Host_PictureBox const & box : iBoxes)
    if (isEdged(box)) mCanvas.AddBox({box.mX + 1, box.mY + 1, box.mWidth - 2, box.mHeight - 2});
  mCanvas.Fill(iInside);
  for (Host_PictureBox const & box : iBoxes)
    if (!isEdged(box)) mCanvas.AddBox(box);
  mCanvas.Fill(iSmall);
}

void Host_PicturePainter::DrawLane(Host_PictureBox const & iBox, Host_PictureLane const & iLane) {
  mCanvas.FillBox(iBox, kLaneGround);
  DrawGrid(iBox);
  if (iLane.mIsMarked) {
    DrawMarks(iBox, iLane);
  } else {
    for (std::vector<Host_PicturePoint> const & curve : iLane.mCurves)
      DrawCurve(iBox, iLane, curve);
  }
  mCanvas.FrameBox(iBox, kFrame);
  mCanvas.DrawText(iLane.mName, kSmallFont, iBox.mX - 6, iBox.mY + iBox.mHeight * 0.5 + 4,
                   kAlign_Right);
}

void Host_PicturePainter::DrawMarks(Host_PictureBox const & iBox, Host_PictureLane const & iLane) {
  std::vector<Host_PicturePoint> const & points = iLane.mCurves.front();
  std::vector<int> columns;
  for (Host_PicturePoint const & point : points)
    columns.push_back(std::min(mLayout.GetX(point.mTick), iBox.GetRight() - 2));
  columns.push_back(iBox.GetRight());
  for (size_t i = 0; i < points.size(); ++i) {
    if (columns[i] != columns[i + 1])
      mCanvas.AddBox({columns[i], iBox.mY + 1, 2, iBox.mHeight - 2});
  }
  mCanvas.Fill(kMark);
  for (size_t i = 0; i < points.size(); ++i) {
    int const value = points[i].mValue;
    if (iLane.mMax == iLane.mMin || value == kHost_BankAlone) continue;
    std::string const text = std::to_string(value);
    if (columns[i] + 5 + mCanvas.MeasureText(text, kMarkFont) <= columns[i + 1])
      mCanvas.DrawText(text, kMarkFont, columns[i] + 5, iBox.mY + iBox.mHeight * 0.5 + 4,
                       kAlign_Left);
  }
}

// Steps from value to value. Of several values in one column the least, the greatest and the last
// are drawn.
void Host_PicturePainter::DrawCurve(Host_PictureBox const & iBox, Host_PictureLane const & iLane,
                                    std::vector<Host_PicturePoint> const & iCurve) {
  std::vector<std::pair<int, int>> pixels;
  int const rest = RowY(iBox, iLane, iLane.mRest);
  bool const isFilled = iLane.mCurves.size() == 1;
  for (size_t first = 0; first < iCurve.size();) {
    int const x = mLayout.GetX(iCurve[first].mTick);
    int highest = iBox.GetBottom(), lowest = iBox.mY, y = 0;
    size_t next = first;
    for (; next < iCurve.size() && mLayout.GetX(iCurve[next].mTick) == x; ++next) {
      y = RowY(iBox, iLane, iCurve[next].mValue);
      highest = std::min(highest, y);
      lowest = std::max(lowest, y);
    }
    int const end = next < iCurve.size() ? mLayout.GetX(iCurve[next].mTick) : iBox.GetRight();
    if (!pixels.empty()) pixels.emplace_back(x, pixels.back().second);
    if (lowest != highest) {
      pixels.emplace_back(x, highest);
      pixels.emplace_back(x, lowest);
    }
    pixels.emplace_back(x, y);
    if (isFilled) mCanvas.AddBox({x, std::min(y, rest), end - x, std::abs(y - rest) + 1});
    first = next;
  }
  pixels.emplace_back(iBox.GetRight() - 1, pixels.back().second);
  mCanvas.Fill(kCurveArea);
  if (iLane.mRest != iLane.mMin) mCanvas.FillBox({iBox.mX, rest, iBox.mWidth, 1}, kRestLine);
  mCanvas.DrawLine(pixels, kCurve);
}
