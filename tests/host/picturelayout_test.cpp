// Where things stand in a picture, and which pixels notes take.
#include <string>

#include <gtest/gtest.h>

#include "host/host_picturegrid.h"
#include "host/host_picturelayout.h"
#include "host/host_picturerows.h"
#include "support/chunk_samples.h"

namespace {

constexpr long long kBar = 3840000;

// A picture of four bars of 4/4 with an axis of 1600 columns, from 100 on: 400 to the bar.
class PictureOfOneClip {
public:
  PictureOfOneClip() : mChunk(MakeChunk()) {
    mPicture.mClips.push_back({mChunk.Get(), "clip"});
    mPicture.mTo = Time_Tick(4 * kBar);
    mPicture.mWidth = 1716;
  }

  Vrad_Chunk & Chunk() { return *mChunk.Get(); }
  Host_PictureContents Contents() { return {Chunk(), mPicture.mFrom, mPicture.mTo}; }
  Host_PictureLayout Layout() { return {mPicture, {Contents()}}; }

  // "60:100-499v100", muted ones with "m".
  std::string PrintRuns() {
    std::string text;
    for (Host_PictureRun const & run : Host_FindPictureRuns(Contents(), Layout()))
      text += (text.empty() ? "" : " ") + std::to_string(run.mPitch) + ":" +
              std::to_string(run.mFirst) + "-" + std::to_string(run.mLast) +
              (run.mVelocity == 0 ? "m" : "v" + std::to_string(run.mVelocity));
    return text;
  }

  void AddNote(int iPitch, long long iTick, long long iDuration, int iVelocity,
               bool iMuted = false) {
    Chunk().AddEvent(Vrad_NoteWithDurationExtendedEvent(
        Ticks(iTick),
        Vrae_NoteWithDurationEvent(static_cast<signed char>(iPitch),
                                   Time_TypedLength(iDuration, Time_eType_Ticks),
                                   static_cast<signed char>(iVelocity), 64),
        iMuted));
  }

  std::string WhyNot() {
    try {
      Layout();
    } catch (Host_PictureError const & error) {
      return error.what();
    }
    return "";
  }

  Host_Picture mPicture;

private:
  ChunkPtr mChunk;
};

std::string PrintGrid(Host_Picture const & iPicture, Host_PictureLayout const & iLayout,
                      size_t iMaxLines) {
  std::string text;
  for (Host_PictureGridLine const & line : Host_FindPictureGrid(iPicture, iLayout)) {
    if (iMaxLines-- == 0) break;
    text += (text.empty() ? "" : " ") + std::to_string(line.mX);
    if (line.mBar > 0) text += "=" + std::to_string(line.mBar);
    if (line.mIsNumbered) text += "!";
  }
  return text;
}

std::string PrintLanes(Host_PictureContents const & iContents) {
  std::string text;
  for (Host_PictureLane const & lane : iContents.mLanes) {
    text += (text.empty() ? "" : " | ") + lane.mName;
    for (std::vector<Host_PicturePoint> const & curve : lane.mCurves)
      for (Host_PicturePoint const & point : curve)
        text += " " + std::to_string(point.mTick) + "=" + std::to_string(point.mValue);
  }
  return text;
}

}  // namespace

TEST(Host_PictureLayout, SpreadsTheRangeOverTheAxis) {
  PictureOfOneClip picture;
  Host_PictureLayout const layout = picture.Layout();
  EXPECT_EQ(layout.GetX(0), 100);
  EXPECT_EQ(layout.GetX(kBar), 500);
  EXPECT_EQ(layout.GetX(4 * kBar), 1700);
  EXPECT_EQ(layout.GetX(9600 - 1), 100);  // a column is 9600 ticks
  EXPECT_EQ(layout.GetX(9600), 101);
}

TEST(Host_PictureLayout, KeepsWhatLiesOutsideAtTheEdges) {
  PictureOfOneClip picture;
  picture.mPicture.mFrom = Time_Tick(kBar);
  Host_PictureLayout const layout = picture.Layout();
  EXPECT_EQ(layout.GetX(0), 100);
  EXPECT_EQ(layout.GetX(-kBar), 100);
  EXPECT_EQ(layout.GetX(1LL << 62), 1700);
}

TEST(Host_PictureLayout, HasAtLeastAnOctaveOfRows) {
  PictureOfOneClip picture;
  picture.AddNote(60, 0, kBar, 100);
  Host_PicturePanel const panel = picture.Layout().GetPanels()[0];
  EXPECT_EQ(panel.mLowest, 54);
  EXPECT_EQ(panel.mHighest, 66);
  EXPECT_EQ(panel.mRoll.mHeight, 13 * 9);
}

TEST(Host_PictureLayout, HasARowAroundTheNotes) {
  PictureOfOneClip picture;
  picture.AddNote(40, 0, kBar, 100);
  picture.AddNote(70, 0, kBar, 100);
  Host_PicturePanel const panel = picture.Layout().GetPanels()[0];
  EXPECT_EQ(panel.mLowest, 39);
  EXPECT_EQ(panel.mHighest, 71);
}

TEST(Host_PictureLayout, EndsWithTheLastPitches) {
  PictureOfOneClip picture;
  picture.AddNote(0, 0, kBar, 100);
  picture.AddNote(127, 0, kBar, 100);
  Host_PicturePanel const panel = picture.Layout().GetPanels()[0];
  EXPECT_EQ(panel.mLowest, 0);
  EXPECT_EQ(panel.mHighest, 127);
}

TEST(Host_PictureLayout, PutsHighPitchesAbove) {
  PictureOfOneClip picture;
  picture.AddNote(60, 0, kBar, 100);
  Host_PictureLayout const layout = picture.Layout();
  Host_PicturePanel const panel = layout.GetPanels()[0];
  EXPECT_EQ(panel.GetY(66, layout.GetRowHeight()), panel.mRoll.mY);
  EXPECT_EQ(panel.GetY(54, layout.GetRowHeight()) + layout.GetRowHeight(), panel.mRoll.GetBottom());
}

TEST(Host_PictureLayout, HasNoRollWithoutNotes) {
  PictureOfOneClip picture;
  picture.Chunk().AddEvent(SysexAt(Ticks(0), 1));
  Host_PicturePanel const panel = picture.Layout().GetPanels()[0];
  EXPECT_EQ(panel.mRoll.mHeight, 0);
  ASSERT_EQ(panel.mLanes.size(), 1u);
  EXPECT_EQ(panel.mLanes[0].mHeight, 30);
}

TEST(Host_PictureLayout, TakesTheHeightAskedFor) {
  PictureOfOneClip picture;
  picture.AddNote(60, 0, kBar, 100);
  picture.mPicture.mHeight = 300;
  EXPECT_EQ(picture.Layout().GetHeight(), 300);
  EXPECT_EQ(picture.Layout().GetRowHeight(), 13);  // (300 - 124) / 13
}

TEST(Host_PictureLayout, StaysInsideItsHeight) {
  PictureOfOneClip picture;
  picture.AddNote(60, 0, kBar, 100);
  for (int height : {0, 137, 138, 200, 1000}) {
    picture.mPicture.mHeight = height;
    Host_PictureLayout const layout = picture.Layout();
    EXPECT_LE(layout.GetPanels()[0].mRoll.GetBottom(), layout.GetHeight()) << height;
  }
}

TEST(Host_PictureLayout, RefusesWidthsOutOfBounds) {
  PictureOfOneClip picture;
  for (int width : {-1, 0, 319, 16385, 2147483647}) {
    picture.mPicture.mWidth = width;
    EXPECT_EQ(picture.WhyNot(), "the width is 320 to 16384 pixels") << width;
  }
  for (int width : {320, 16384}) {
    picture.mPicture.mWidth = width;
    EXPECT_EQ(picture.WhyNot(), "") << width;
  }
}

TEST(Host_PictureLayout, RefusesHeightsOutOfBounds) {
  PictureOfOneClip picture;
  picture.AddNote(60, 0, kBar, 100);
  for (int height : {-1, 16385}) {
    picture.mPicture.mHeight = height;
    EXPECT_EQ(picture.WhyNot(), "the height is at most 16384 pixels") << height;
  }
  picture.mPicture.mHeight = 136;
  EXPECT_EQ(picture.WhyNot(), "the clips need a height of 137 pixels");
  picture.mPicture.mHeight = 137;
  EXPECT_EQ(picture.WhyNot(), "");
}

TEST(Host_PictureLayout, RefusesMorePixelsThanMemoryIsMeantFor) {
  PictureOfOneClip picture;
  picture.mPicture.mWidth = 16384;
  picture.mPicture.mHeight = 4097;
  EXPECT_EQ(picture.WhyNot(), "the height is at most 4096 pixels at this width");
  picture.mPicture.mHeight = 4096;
  EXPECT_EQ(picture.WhyNot(), "");
}

TEST(Host_PictureLayout, RefusesMoreClipsThanFit) {
  PictureOfOneClip picture;
  std::vector<Host_PictureContents> const contents(500, picture.Contents());
  EXPECT_THROW(Host_PictureLayout(picture.mPicture, contents), Host_PictureError);
}

TEST(Host_PictureLayout, RefusesAnEmptyRange) {
  PictureOfOneClip picture;
  picture.mPicture.mTo = Time_Tick(0);
  EXPECT_EQ(picture.WhyNot(), "the range is empty");
  picture.mPicture.mTo = Time_Tick(1);
  EXPECT_EQ(picture.WhyNot(), "");
}

TEST(Host_FindPictureRuns, PutsANoteWhereItSounds) {
  PictureOfOneClip picture;
  picture.AddNote(60, kBar, kBar, 100);
  EXPECT_EQ(picture.PrintRuns(), "60:500-899v100");  // its last column is free
}

TEST(Host_FindPictureRuns, ShowsWhereTheNextNoteOfThePitchBegins) {
  PictureOfOneClip picture;
  picture.AddNote(60, 0, kBar, 100);
  picture.AddNote(60, kBar, kBar, 100);
  EXPECT_EQ(picture.PrintRuns(), "60:100-499v100 60:500-899v100");
}

TEST(Host_FindPictureRuns, MakesShortNotesTwoColumnsWide) {
  PictureOfOneClip picture;
  picture.AddNote(60, kBar, 1, 100);
  picture.AddNote(61, 4 * kBar - 1, 1, 100);
  EXPECT_EQ(picture.PrintRuns(), "60:500-502v100 61:1698-1700v100");
}

TEST(Host_FindPictureRuns, CutsNotesAtTheEdges) {
  PictureOfOneClip picture;
  picture.mPicture.mFrom = Time_Tick(2 * kBar);
  picture.AddNote(60, 0, 3 * kBar, 100);
  picture.AddNote(61, 3 * kBar, 1LL << 60, 100);
  EXPECT_EQ(picture.PrintRuns(), "60:100-899v100 61:900-1700v100");
}

TEST(Host_FindPictureRuns, LeavesOutWhatEndsBeforeTheRange) {
  PictureOfOneClip picture;
  picture.mPicture.mFrom = Time_Tick(2 * kBar);
  picture.AddNote(60, 0, 2 * kBar, 100);
  picture.AddNote(61, 4 * kBar, kBar, 100);
  EXPECT_EQ(picture.PrintRuns(), "");
}

TEST(Host_FindPictureRuns, DrawsTheLoudestOnTop) {
  PictureOfOneClip picture;
  picture.AddNote(60, 0, 3 * kBar, 50);
  picture.AddNote(60, kBar, kBar, 100);
  picture.AddNote(60, kBar, kBar, 70);
  EXPECT_EQ(picture.PrintRuns(), "60:100-500v50 60:500-899v100 60:899-1299v50");
}

TEST(Host_FindPictureRuns, DrawsMutedNotesBelowAndMarked) {
  PictureOfOneClip picture;
  picture.AddNote(60, 0, 2 * kBar, 127, true);
  picture.AddNote(60, kBar, kBar, 1);
  EXPECT_EQ(picture.PrintRuns(), "60:100-500m 60:500-899v1");
}

TEST(Host_FindPictureRuns, HasNoMoreRunsThanPixels) {
  PictureOfOneClip picture;
  picture.mPicture.mWidth = 320;  // an axis of 204 columns
  for (int i = 0; i < 20000; ++i)
    picture.AddNote(60 + i % 2, i * 768LL, 700, 1 + i % 127);
  EXPECT_LE(Host_FindPictureRuns(picture.Contents(), picture.Layout()).size(), 2u * 204);
}

TEST(Host_FindPictureGrid, HasBarsAndBeats) {
  PictureOfOneClip picture;
  EXPECT_EQ(PrintGrid(picture.mPicture, picture.Layout(), 6), "100=1! 200 300 400 500=2! 600");
}

TEST(Host_FindPictureGrid, FollowsTimeSignatures) {
  PictureOfOneClip picture;
  picture.mPicture.mBars = Host_BarMap({{Time_Tick(kBar), 3, 4}});
  EXPECT_EQ(
      PrintGrid(picture.mPicture, picture.Layout(), 99),
      "100=1! 200 300 400 500=2! 600 700 800=3! 900 1000 1100=4! 1200 1300 1400=5! 1500 1600");
}

TEST(Host_FindPictureGrid, BeginsInsideABar) {
  PictureOfOneClip picture;
  picture.mPicture.mFrom = Time_Tick(kBar / 2);
  picture.mPicture.mTo = Time_Tick(kBar / 2 * 3);
  EXPECT_EQ(PrintGrid(picture.mPicture, picture.Layout(), 99), "100 500 900=2! 1300");
}

TEST(Host_FindPictureGrid, LeavesOutNarrowBeats) {
  PictureOfOneClip picture;
  picture.mPicture.mTo = Time_Tick(50 * kBar);  // 32 columns to the bar, 8 to the beat
  EXPECT_EQ(PrintGrid(picture.mPicture, picture.Layout(), 5), "100=1! 108 116 124 132=2");
  picture.mPicture.mTo = Time_Tick(51 * kBar);
  EXPECT_EQ(PrintGrid(picture.mPicture, picture.Layout(), 3), "100=1! 131=2 162=3!");
}

TEST(Host_FindPictureGrid, ThinsOutNarrowBars) {
  PictureOfOneClip picture;
  picture.mPicture.mTo = Time_Tick(1000 * kBar);  // 1.6 columns to the bar
  EXPECT_EQ(PrintGrid(picture.mPicture, picture.Layout(), 3), "100=1! 112=9 125=17");
}

TEST(Host_FindPictureGrid, EndsSoonInAbsurdRanges) {
  PictureOfOneClip picture;
  picture.mPicture.mFrom = Time_Tick(-(1LL << 62));
  picture.mPicture.mTo = Time_Tick((1LL << 62) + 1);
  EXPECT_LE(Host_FindPictureGrid(picture.mPicture, picture.Layout()).size(), 300u);
}

TEST(Host_FindPictureGrid, IsEmptyBeforeTheFirstBar) {
  PictureOfOneClip picture;
  picture.mPicture.mFrom = Time_Tick(-kBar);
  picture.mPicture.mTo = Time_Tick(0);
  EXPECT_TRUE(Host_FindPictureGrid(picture.mPicture, picture.Layout()).empty());
}

TEST(Host_PictureContents, TellsValuesThatNeverChange) {
  PictureOfOneClip picture;
  picture.Chunk().AddEvent(ControllerAt(Ticks(0), 7, 100));
  picture.Chunk().AddEvent(ControllerAt(Ticks(0), 19, 3));
  picture.Chunk().AddEvent(
      Vrad_ExtendedEvent(Ticks(5), Vrae_ProgramEvent(static_cast<signed char>(0x80), 3)));
  EXPECT_EQ(picture.Contents().mSettings, "volume 100, cc 19 3, program -");
  EXPECT_EQ(PrintLanes(picture.Contents()), "");
}

TEST(Host_PictureContents, HasALaneForValuesThatChange) {
  PictureOfOneClip picture;
  picture.Chunk().AddEvent(BendAt(Ticks(0), -300));
  picture.Chunk().AddEvent(BendAt(Ticks(10), 200));
  picture.Chunk().AddEvent(ControllerAt(Ticks(0), 7, 100));
  picture.Chunk().AddEvent(ControllerAt(Ticks(9), 7, 90));
  EXPECT_EQ(PrintLanes(picture.Contents()), "bend ±300 0=-300 10=200 | volume 0=100 9=90");
  EXPECT_EQ(picture.Contents().mLanes[0].mMin, -300);
  EXPECT_EQ(picture.Contents().mLanes[0].mMax, 300);
}

TEST(Host_PictureContents, BeginsWithTheValueThatHoldsAtTheLeftEdge) {
  PictureOfOneClip picture;
  picture.mPicture.mFrom = Time_Tick(100);
  for (long long tick : {0, 50, 150, 200})
    picture.Chunk().AddEvent(ControllerAt(Ticks(tick), 7, static_cast<int>(tick / 2)));
  picture.mPicture.mTo = Time_Tick(200);
  EXPECT_EQ(PrintLanes(picture.Contents()), "volume 50=25 150=75");
}

TEST(Host_PictureContents, AValueAtTheLeftEdgeReplacesTheOneBefore) {
  PictureOfOneClip picture;
  picture.mPicture.mFrom = Time_Tick(100);
  for (long long tick : {50, 100, 150})
    picture.Chunk().AddEvent(ControllerAt(Ticks(tick), 7, static_cast<int>(tick / 2)));
  EXPECT_EQ(PrintLanes(picture.Contents()), "volume 100=50 150=75");
}

TEST(Host_PictureContents, HasOneLaneForThePressuresOfAllKeys) {
  PictureOfOneClip picture;
  for (int pitch : {61, 60})
    picture.Chunk().AddEvent(Vrad_ExtendedEvent(
        Ticks(pitch), Vrae_PolyPressureEvent(static_cast<signed char>(pitch), 9)));
  EXPECT_EQ(PrintLanes(picture.Contents()), "key pressure 60=9 61=9");
  EXPECT_EQ(picture.Contents().mLanes[0].mCurves.size(), 2u);
}

TEST(Host_PictureContents, MarksSysex) {
  PictureOfOneClip picture;
  picture.mPicture.mFrom = Time_Tick(5);
  picture.Chunk().AddEvent(SysexAt(Ticks(4), 1));
  picture.Chunk().AddEvent(SysexAt(Ticks(5), 1));
  EXPECT_EQ(PrintLanes(picture.Contents()), "sysex 5=0");
}

TEST(Host_PictureContents, TakesNotesInSamples) {
  PictureOfOneClip picture;
  picture.Chunk().AddEvent(NoteAt(Samples(24000), 60, 24000));  // half a second is a beat
  EXPECT_EQ(picture.PrintRuns(), "60:200-299v100");
}
