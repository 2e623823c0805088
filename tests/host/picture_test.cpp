// Pictures as files.
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "foundation/sys_stream.h"
#include "host/host_picture.h"
#include "host/host_picturepainter.h"
#include "support/chunk_samples.h"

namespace {

constexpr long long kBar = 3840000;

// A bar of 1600 columns, from 100 on, in a roll whose rows are 9 pixels high, the middle one 60.
class OneBar {
public:
  OneBar() : mChunk(MakeChunk()) {
    mPicture.mTitle = "Title";
    mPicture.mClips.push_back({mChunk.Get(), "Label"});
    mPicture.mTo = Time_Tick(kBar);
    mPicture.mWidth = 1716;
  }
  Vrad_Chunk & Chunk() { return *mChunk.Get(); }
  std::string DrawSVG() { return Host_DrawPicture(mPicture, kPictureForm_SVG); }

  Host_Picture mPicture;

private:
  ChunkPtr mChunk;
};

// A box as the picture writes it.
std::string PathOf(int iX, int iY, int iRight, int iBottom) {
  std::ostringstream path;
  path << "M " << iX << " " << iY << " L " << iRight << " " << iY << " L " << iRight << " "
       << iBottom << " L " << iX << " " << iBottom << " Z";
  return path.str();
}

// The colour of the last path that holds a box, as "red,green,blue"; "" if none does.
std::string ColourOf(std::string const & iSVG, std::string const & iBox) {
  size_t const at = iSVG.rfind(iBox);
  if (at == std::string::npos) return "";
  size_t const start = iSVG.rfind("<path", at);
  size_t const fill = iSVG.find("fill:rgb(", start) + 9;
  std::string percents = iSVG.substr(fill, iSVG.find(')', fill) - fill), colour;
  for (char & c : percents)
    if (c == '%' || c == ',') c = ' ';
  std::istringstream numbers(percents);
  for (double part; numbers >> part;)
    colour += (colour.empty() ? "" : ",") + std::to_string(static_cast<int>(part * 2.55 + 0.5));
  return colour;
}

std::string Print(Host_PictureColour const & iColour) {
  return std::to_string(iColour.mRed) + "," + std::to_string(iColour.mGreen) + "," +
         std::to_string(iColour.mBlue);
}

std::string ReadFile(std::string const & iPath) {
  std::ifstream file(iPath, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

// A folder that goes with the test.
class Folder {
public:
  Folder() : mPath(testing::TempDir() + "picture_test") {
    std::filesystem::create_directory(mPath);
  }
  ~Folder() { std::filesystem::remove_all(mPath); }
  std::string operator/(std::string const & iName) const { return mPath + "/" + iName; }
  int CountFiles() const {
    std::filesystem::directory_iterator const first(mPath);
    return static_cast<int>(std::distance(first, {}));
  }

private:
  std::string mPath;
};

}  // namespace

TEST(Host_GetPictureForm, GoesByTheEnding) {
  EXPECT_EQ(Host_GetPictureForm("a.svg"), kPictureForm_SVG);
  EXPECT_EQ(Host_GetPictureForm("b/c.d.PNG"), kPictureForm_PNG);
  for (char const * path : {"", "png", ".pn", "a.jpg", "a.svg ", "a.svgz", "svg/a"})
    EXPECT_THROW(Host_GetPictureForm(path), Host_PictureError) << path;
}

TEST(Host_GetVelocityColour, IsPalerTheSofter) {
  EXPECT_EQ(Print(Host_GetVelocityColour(1)), "176,205,240");
  EXPECT_EQ(Print(Host_GetVelocityColour(64)), "88,86,196");
  EXPECT_EQ(Print(Host_GetVelocityColour(127)), "226,38,76");
  EXPECT_EQ(Print(Host_GetVelocityColour(-5)), "176,205,240");
  EXPECT_EQ(Print(Host_GetVelocityColour(128)), "226,38,76");
}

TEST(Host_DrawPicture, DrawsANoteInItsColourAtItsPlace) {
  OneBar picture;
  picture.Chunk().AddEvent(NoteAt(Ticks(960000), 60, 960000));  // beat 2, velocity 100
  std::string const svg = picture.DrawSVG();
  // The edge, then the inside. Row 60 is the seventh of the roll, which begins at 96.
  EXPECT_EQ(ColourOf(svg, PathOf(500, 150, 899, 158)), "121,41,107");
  EXPECT_EQ(ColourOf(svg, PathOf(501, 151, 898, 157)), Print(Host_GetVelocityColour(100)));
}

TEST(Host_DrawPicture, DrawsAMutedNoteInGrey) {
  OneBar picture;
  picture.Chunk().AddEvent(NoteAt(Ticks(960000), 60, 960000, true));
  std::string const svg = picture.DrawSVG();
  EXPECT_EQ(ColourOf(svg, PathOf(500, 150, 899, 158)), "150,156,168");
  EXPECT_EQ(ColourOf(svg, PathOf(501, 151, 898, 157)), "228,231,237");
}

// Between rows of two greys an inside without an edge would not be seen.
TEST(Host_DrawPicture, DrawsASmallMutedNoteInTheColourOfTheEdge) {
  OneBar picture;
  picture.Chunk().AddEvent(NoteAt(Ticks(960000), 60, 7200, true));  // 3 columns
  EXPECT_EQ(ColourOf(picture.DrawSVG(), PathOf(500, 150, 503, 158)), "150,156,168");
}

TEST(Host_DrawPicture, IsAsLargeAsTold) {
  OneBar picture;
  picture.mPicture.mHeight = 234;
  EXPECT_NE(picture.DrawSVG().find("width=\"1716pt\" height=\"234pt\""), std::string::npos);
  std::string const png = Host_DrawPicture(picture.mPicture, kPictureForm_PNG);
  // The header's width and height, high byte first.
  EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
  EXPECT_EQ(png.substr(16, 8), std::string("\0\0\x06\xb4\0\0\0\xea", 8));
}

TEST(Host_DrawPicture, GivesTheSameBytesAgain) {
  OneBar picture;
  picture.Chunk().AddEvent(NoteAt(Ticks(0), 60, 960000));
  picture.Chunk().AddEvent(BendAt(Ticks(0), 1));
  picture.Chunk().AddEvent(BendAt(Ticks(960000), 2));
  EXPECT_TRUE(picture.DrawSVG() == picture.DrawSVG());
  EXPECT_TRUE(Host_DrawPicture(picture.mPicture, kPictureForm_PNG) ==
              Host_DrawPicture(picture.mPicture, kPictureForm_PNG));
}

TEST(Host_DrawPicture, LeavesTheChunkAsItWas) {
  OneBar picture;
  picture.Chunk().AddEvent(NoteAt(Ticks(0), 60, 960000));
  picture.Chunk().AddEvent(ControllerAt(Ticks(0), 7, 1));
  std::string const before = picture.Chunk().PrintContents();
  picture.DrawSVG();
  EXPECT_EQ(picture.Chunk().PrintContents(), before);
}

TEST(Host_DrawPicture, DrawsWithoutClips) {
  OneBar picture;
  picture.mPicture.mClips.clear();
  EXPECT_NE(picture.DrawSVG().find("</svg>"), std::string::npos);
}

TEST(Host_DrawPicture, DrawsLanesOfEveryKind) {
  OneBar picture;
  for (long long tick : {0, 960000}) {
    int const value = tick == 0 ? 0 : 127;
    picture.Chunk().AddEvent(BendAt(Ticks(tick), value));
    picture.Chunk().AddEvent(ControllerAt(Ticks(tick), 1, value));
    picture.Chunk().AddEvent(SysexAt(Ticks(tick), 1));
    signed char const byte = static_cast<signed char>(value);
    picture.Chunk().AddEvent(Vrad_ExtendedEvent(Ticks(tick), Vrae_ProgramEvent(byte, 0)));
    picture.Chunk().AddEvent(Vrad_ExtendedEvent(Ticks(tick), Vrae_MonoPressureEvent(byte)));
    picture.Chunk().AddEvent(Vrad_ExtendedEvent(Ticks(tick), Vrae_PolyPressureEvent(60, byte)));
  }
  std::string const svg = picture.DrawSVG();
  // Modulation stands in the second lane, which begins at 134: nothing, then up to its top.
  EXPECT_EQ(ColourOf(svg, PathOf(100, 161, 500, 162)), "205,232,227");
  EXPECT_EQ(ColourOf(svg, PathOf(500, 136, 1700, 162)), "205,232,227");
  // The program changes in the fourth, the sysex in the last.
  EXPECT_EQ(ColourOf(svg, PathOf(500, 203, 502, 231)), "196,112,24");
  EXPECT_EQ(ColourOf(svg, PathOf(500, 271, 502, 299)), "196,112,24");
}

TEST(Host_DrawPicture, DrawsBendsFromTheMiddle) {
  OneBar picture;
  picture.Chunk().AddEvent(BendAt(Ticks(0), -127));
  picture.Chunk().AddEvent(BendAt(Ticks(960000), 127));
  std::string const svg = picture.DrawSVG();
  EXPECT_EQ(ColourOf(svg, PathOf(100, 114, 500, 128)), "205,232,227");
  EXPECT_EQ(ColourOf(svg, PathOf(500, 102, 1700, 115)), "205,232,227");
}

TEST(Host_DrawPicture, FailsOnTextThatIsNotUTF8) {
  OneBar picture;
  picture.mPicture.mTitle = "\xff";
  EXPECT_THROW(picture.DrawSVG(), std::runtime_error);
  EXPECT_THROW(Host_DrawPicture(picture.mPicture, kPictureForm_PNG), std::runtime_error);
}

TEST(Host_DrawPicture, ShortensTextsThatDoNotFit) {
  OneBar picture;
  picture.mPicture.mTitle = picture.mPicture.mClips[0].mLabel = std::string(400, 'W');
  EXPECT_LT(picture.DrawSVG().size(), 200000u);
}

TEST(Host_WritePicture, WritesWhatIsDrawn) {
  Folder const folder;
  OneBar picture;
  Host_WritePicture(picture.mPicture, folder / "a.svg");
  EXPECT_TRUE(ReadFile(folder / "a.svg") == picture.DrawSVG());
  Host_WritePicture(picture.mPicture, folder / "a.png");
  EXPECT_TRUE(ReadFile(folder / "a.png") == Host_DrawPicture(picture.mPicture, kPictureForm_PNG));
  EXPECT_EQ(folder.CountFiles(), 2);
}

TEST(Host_WritePicture, FailureLeavesTheFileAsItWas) {
  Folder const folder;
  OneBar picture;
  std::ofstream(folder / "a.svg") << "old";
  picture.mPicture.mWidth = 1;
  EXPECT_THROW(Host_WritePicture(picture.mPicture, folder / "a.svg"), Host_PictureError);
  EXPECT_EQ(ReadFile(folder / "a.svg"), "old");
  EXPECT_EQ(folder.CountFiles(), 1);
}

TEST(Host_WritePicture, FailsWithoutAFolder) {
  Folder const folder;
  OneBar picture;
  EXPECT_THROW(Host_WritePicture(picture.mPicture, folder / "none/a.svg"), Sys_StreamException);
  EXPECT_EQ(folder.CountFiles(), 0);
}

TEST(Host_WritePicture, FailsOnAnUnknownEnding) {
  Folder const folder;
  OneBar picture;
  EXPECT_THROW(Host_WritePicture(picture.mPicture, folder / "a.pdf"), Host_PictureError);
  EXPECT_EQ(folder.CountFiles(), 0);
}
