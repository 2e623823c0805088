// What an edit did to a clip, told by comparing its contents before and after.
#pragma once

#include <string>
#include <tuple>
#include <vector>

#include "vrad/vrad_chunk.h"

/// The contents of a clip at one moment, in the order of its stores.
class Edit_Contents {
public:
  explicit Edit_Contents(Vrad_Chunk const & iChunk);

  /// Where the last note ends or the last event stands; tick 0 if nothing lies behind that.
  Time_Tick GetEnd() const;

  /// Whether all times and durations are below 2^62 in size, so that they can be saved.
  bool IsWithinLimits() const;

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
  void Add(Vrae_TimedEvent const & iEvent);

  std::vector<Note> mNotes;
  std::vector<Event> mEvents;
};

/// Notes and other events, counted by what became of them.
struct Edit_Difference {
  Edit_Difference(Edit_Contents const & iBefore, Edit_Contents const & iAfter);

  /// Of an edit that took iPart out of the clip and put it back as iMoved. A note or an event is
  /// then the same one wherever it went, also where it takes the place of an equal one.
  Edit_Difference(Edit_Contents const & iBefore, Edit_Contents const & iAfter,
                  Edit_Contents const & iPart, Edit_Contents const & iMoved);

  long long mNumAdded = 0;
  long long mNumDropped = 0;
  long long mNumShortened = 0;
  long long mNumLengthened = 0;
  long long mNumChanged = 0;  // in another way
  long long mNumEventsAdded = 0;
  long long mNumEventsDropped = 0;
  long long mNumEventsMoved = 0;

  /// What taking the edit back does.
  Edit_Difference GetReversed() const;

  /// As in "notes: 3 added, 1 shortened; other events: 2 dropped"; empty if nothing changed.
  std::string Describe() const;

private:
  typedef std::vector<Edit_Contents::Note> Notes;

  void CountNotes(Notes const & iGone, Notes const & iCome);
  void CountMovedNotes(Notes const & iPart, Notes const & iMoved);
  void CountChange(Edit_Contents::Note const & iGone, Edit_Contents::Note const & iCome);
};
