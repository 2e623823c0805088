// What a picture shows of a clip, as plain numbers: internal to the pictures.
#pragma once

#include <string>
#include <vector>

#include "host/host_picture.h"

class Vrad_ContinuousDataStream;

/// Times are ticks. A note of no length has equal ends.
struct Host_PictureNote {
  long long mStart, mEnd;
  int mPitch;     // 0 to 127
  int mVelocity;  // 0 to 127
  bool mIsMuted;
};

/// The value of a program event that selects a bank and no program.
constexpr int kHost_BankAlone = -32768;

struct Host_PicturePoint {
  long long mTick;
  int mValue;
};

/// Values over time: one curve, or one for each pitch that has a pressure of its own; or events
/// that are marked and not drawn as values.
struct Host_PictureLane {
  std::string mName;
  int mMin, mMax;
  int mRest;  // the value from which a curve rises or falls
  bool mIsMarked;
  std::vector<std::vector<Host_PicturePoint>> mCurves;  // of rising time, none empty
};

/// The notes that sound in the range and the values that hold in it. A value that is set once and
/// never changes is told in mSettings.
struct Host_PictureContents {
  Host_PictureContents(Vrad_Chunk & iChunk, Time_Tick iFrom, Time_Tick iTo);

  std::vector<Host_PictureNote> mNotes;  // in list order
  int mLowest = 127, mHighest = 0;       // of the notes
  std::vector<Host_PictureLane> mLanes;
  std::string mSettings;  // "volume 100, pan 64"

private:
  void CollectNotes(Vrad_Chunk & iChunk, long long iFrom, Time_Typed iTo);
  void CollectStream(Vrad_ContinuousDataStream & iStream, long long iFrom, Time_Typed iTo);
  void CollectSysex(Vrad_Chunk & iChunk, long long iFrom, Time_Typed iTo);
  void AddCurve(Host_PictureLane const & iLane, std::vector<Host_PicturePoint> iPoints);
};
