// Prints what belongs to one clip after the other.
#pragma once

#include <vector>

#include "host/host_midibars.h"
#include "host/host_song.h"
#include "tools/vrad/tool_clipprogress.h"
#include "tools/vrad/tool_event.h"
#include "tools/vrad/tool_output.h"
#include "tools/vrad/tool_scrub.h"
#include "tools/vrad/tool_wire.h"
#include "vrad/vrae_trackstate.h"

/// As text with a heading for each clip, or as JSON objects.
class Tool_ClipPrinter {
public:
  /// The song must outlive it.
  Tool_ClipPrinter(Host_Song const & iSong, bool iIsText);

  /// Shows progress while these clips are printed, unless they are short.
  void ShowProgress(std::vector<int> const & iClips) { mProgress.Expect(iClips); }

  void BeginClip(int iClip);
  /// So many times `Print` follows for this clip. For the progress.
  void Expect(size_t iNumPrints) { mNumExpected = iNumPrints; }
  void Print(Tool_RetrievedEvent const & iEvent);
  void Print(Tool_WireMessage const & iMessage);
  void Print(Tool_PassedTransition const & iTransition);
  void EndClip();

  /// Call at the end of a command.
  void Finish() { mOut.Flush(); }

private:
  // Text alone: the heading of the columns, before the first line.
  void PrintHeading();
  void CountPrint();

  Host_Song const & mSong;
  Host_BarMap mBars;
  bool mIsText;
  bool mIsFirstClip = true;
  bool mIsEmpty = true;  // nothing of this clip yet
  Tool_EventSource mSource{};
  Tool_Output mOut;

  Tool_ClipProgress mProgress;
  size_t mNumExpected = 0, mNumPrints = 0;
};

/// Prints the events that it is sent, all at one position.
class Tool_EventPrinter : public Vrae_EventReceiver {
public:
  Tool_EventPrinter(Tool_ClipPrinter & ioPrinter, Time_Typed iPosition)
      : mPrinter(ioPrinter), mPosition(iPosition) {}

  void ReceiveEvent(Vrae_Event const & iEvent) override {
    mPrinter.Print({mPosition, iEvent, false, false, 0});
  }

private:
  Tool_ClipPrinter & mPrinter;
  Time_Typed mPosition;
};
