// Prints what belongs to one clip after the other.
#pragma once

#include "host/host_midibars.h"
#include "host/host_midifile.h"
#include "tools/vrad/tool_event.h"
#include "tools/vrad/tool_output.h"
#include "tools/vrad/tool_wire.h"

/// As text with a heading for each clip, or as JSON objects.
class Tool_ClipPrinter {
public:
  /// The file must outlive it.
  Tool_ClipPrinter(Host_MidiFile const & iFile, bool iIsText);

  void BeginClip(int iClip);
  void Print(Tool_RetrievedEvent const & iEvent);
  void Print(Tool_WireMessage const & iMessage);
  void EndClip();

  /// Call at the end of a command.
  void Finish() { mOut.Flush(); }

private:
  // Text alone: the heading of the columns, before the first line.
  void PrintHeading();

  Host_MidiFile const & mFile;
  Host_BarMap mBars;
  bool mIsText;
  bool mIsFirstClip = true;
  bool mIsEmpty = true;  // nothing of this clip yet
  Tool_EventSource mSource{};
  Tool_Output mOut;
};
