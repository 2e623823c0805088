// What an edit did to a clip, told by comparing its contents before and after.
#pragma once

#include <string>
#include <vector>

#include "vrad/vrad_chunk.h"

/// The contents of a clip at one moment, in an order of its own, so that two can be compared.
class Edit_Contents {
public:
  explicit Edit_Contents(Vrad_Chunk const & iChunk);

private:
  friend struct Edit_Difference;

  struct Note {
    long long mTime;
    int mUnit;
    int mPitch;
    int mOnVelocity;
    long long mDuration;
    int mDurationUnit;
    int mOffVelocity;
    bool mIsMuted;
    auto operator<=>(Note const &) const = default;
    /// Same place, pitch and strength: what a change of length leaves of a note.
    auto GetOnset() const { return std::tuple(mTime, mUnit, mPitch, mOnVelocity); }
  };
  struct Event {
    long long mTime;
    int mUnit;
    std::string mBytes;
    auto operator<=>(Event const &) const = default;
  };

  void ReadNotes(Vrad_Chunk const & iChunk);
  void ReadEvents(Vrad_Chunk const & iChunk);

  std::vector<Note> mNotes;
  std::vector<Event> mEvents;
};

/// Notes and other events, counted by what became of them.
struct Edit_Difference {
  /// With iIsNudge a note that went and one that came are one that changed.
  Edit_Difference(Edit_Contents const & iBefore, Edit_Contents const & iAfter, bool iIsNudge);

  long long mNumAdded = 0;
  long long mNumDropped = 0;
  long long mNumShortened = 0;
  long long mNumLengthened = 0;
  long long mNumChanged = 0;  // in another way
  long long mNumEventsAdded = 0;
  long long mNumEventsDropped = 0;
  long long mNumEventsMoved = 0;

  /// As in "notes: 3 added, 1 shortened; other events: 2 dropped"; empty if nothing changed.
  std::string Describe() const;

private:
  void CountNotes(std::vector<Edit_Contents::Note> const & iGone,
                  std::vector<Edit_Contents::Note> const & iCome);
  void CountChange(Edit_Contents::Note const & iGone, Edit_Contents::Note const & iCome);
};
