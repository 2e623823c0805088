#include "host/host_picturegrid.h"

#include <algorithm>

namespace {

constexpr double kMinBarWidth = 12;  // pixels
constexpr double kMinBeatWidth = 8;
constexpr double kMinNumberWidth = 44;

long long FindStep(double iBarWidth, double iMinWidth) {
  long long step = 1;
  while (static_cast<double>(step) * iBarWidth < iMinWidth)
    step *= 2;
  return step;
}

// Finds lines one by one. All ticks are of the picture.
class Finder {
public:
  Finder(Host_Picture const & iPicture, Host_PictureLayout const & iLayout)
      : mBars(iPicture.mBars),
        mLayout(iLayout),
        mFrom(std::max(iPicture.mFrom.AsInt64(), 0LL)),
        mTo(iPicture.mTo.AsInt64()),
        mColumnsPerTick(
            iLayout.GetRuler().mWidth /
            (static_cast<double>(mTo) - static_cast<double>(iPicture.mFrom.AsInt64()))) {}

  void FindAll() {
    if (mTo <= mFrom) return;
    long long const first = mBars.ToBar(Time_Tick(mFrom)).mBar;
    long long const last = mBars.ToBar(Time_Tick(mTo - 1)).mBar;
    double const barWidth =
        static_cast<double>(mTo - mFrom) * mColumnsPerTick / static_cast<double>(last - first + 1);
    long long const step = FindStep(barWidth, kMinBarWidth);
    mNumberStep = FindStep(barWidth, kMinNumberWidth);
    long long tick;
    for (long long bar = (first - 1) / step * step + 1; bar <= last && Find(bar, 1, tick);
         bar += step) {
      Add(tick, bar);
      if (step == 1) AddBeats(bar, tick);
    }
  }

  std::vector<Host_PictureGridLine> mLines;

private:
  bool Find(long long iBar, long long iBeat, long long & oTick) const {
    Time_Tick tick(0);
    std::string whyNot;
    bool const isThere = mBars.ToTick({iBar, iBeat, 0}, tick, whyNot);
    oTick = tick.AsInt64();
    return isThere;
  }

  void AddBeats(long long iBar, long long iBarTick) {
    long long tick;
    for (long long beat = 2; Find(iBar, beat, tick); ++beat) {
      double const beatWidth =
          static_cast<double>(tick - iBarTick) * mColumnsPerTick / static_cast<double>(beat - 1);
      if (beatWidth < kMinBeatWidth) return;
      Add(tick, 0);
    }
  }

  void Add(long long iTick, long long iBar) {
    if (iTick >= mFrom && iTick < mTo)
      mLines.push_back({mLayout.GetX(iTick), iBar, iBar > 0 && (iBar - 1) % mNumberStep == 0});
  }

  Host_BarMap const & mBars;
  Host_PictureLayout const & mLayout;
  long long mFrom, mTo;
  double mColumnsPerTick;
  long long mNumberStep = 1;
};

}  // namespace

std::vector<Host_PictureGridLine> Host_FindPictureGrid(Host_Picture const & iPicture,
                                                       Host_PictureLayout const & iLayout) {
  Finder finder(iPicture, iLayout);
  finder.FindAll();
  return finder.mLines;
}
