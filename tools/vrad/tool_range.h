// The range options that the retrieving commands share.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/time_typed.h"
#include "host/host_midifile.h"
#include "tools/vrad/tool_position.h"
#include "vrad/vrad_chunk.h"
#include "vrad/vrae_filter.h"

namespace CLI {
class App;
}

/// The options as they were written.
struct Tool_RangeOptions {
  std::optional<std::string> mClip, mFrom, mTo, mOffset, mWindow, mFilter;
  bool mIsSkippingMuted = false;
  std::string mNoteOffs = "none";

  /// The options write to this object, which must outlive ioCommand.
  void AddTo(CLI::App & ioCommand);
};

/// What they mean, first without a file and then with one.
class Tool_Range {
public:
  /// Fails: Tool_UsageError for what cannot be right with any file.
  explicit Tool_Range(Tool_RangeOptions const & iOptions);

  /// Takes the bars and the clips from a file.
  /// Fails: Tool_UsageError for what cannot be right with this file.
  void Resolve(Host_MidiFile const & iFile);

  /// Indices of the clips asked for. Needs: resolved, as the next.
  std::vector<int> const & GetClips() const { return mClips; }

  /// The chunk's retrieval under these options. iItemTag goes into display items.
  void Retrieve(Vrad_Chunk const & iChunk, int iItemTag, Vrad_EventListWrapper & ioList) const;

  /// Where the range begins and ends: the limits of time where nothing was said.
  Time_Typed GetStart() const { return mStart; }
  Time_Typed GetEnd() const { return mEnd; }

  Vrae_Filter const & GetFilter() const { return mFilter; }

  /// A time with the offset taken off, if the window holds it.
  std::optional<Time_Typed> GetShownTime(Time_Typed iTime) const;

private:
  typedef std::pair<Tool_Position, Tool_Position> Window;

  void ResolveTimes(Host_BarMap const & iBars);

  std::optional<long long> mClip;
  std::optional<Tool_Position> mFrom, mTo;
  std::optional<Window> mWindow;
  Time_TypedLength mOffset;
  Vrae_Filter mFilter;
  bool mIsSkippingMuted;
  ENoteOffInclusion mNoteOffs;
  std::vector<int> mClips;
  Time_Typed mStart, mEnd, mWindowStart, mWindowEnd;
};
