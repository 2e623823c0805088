#include "tools/vrad/tool_clipprinter.h"

#include "tools/vrad/tool_clips.h"

Tool_ClipPrinter::Tool_ClipPrinter(Host_Song const & iSong, bool iIsText)
    : mSong(iSong), mBars(iSong.mTimeSignatures), mIsText(iIsText), mProgress(iSong) {}

void Tool_ClipPrinter::BeginClip(int iClip) {
  mNumExpected = mNumPrints = 0;
  mProgress.BeginClip(iClip);
  Host_Clip const & clip = mSong.mClips[static_cast<size_t>(iClip)];
  mSource = {iClip, clip.mTrack, clip.mChannel};
  if (!mIsText) return;
  mOut.Print("{}{}\n", mIsFirstClip ? "" : "\n", Tool_DescribeClip(mSong, iClip));
  mIsFirstClip = false;
  mIsEmpty = true;
}

void Tool_ClipPrinter::Print(Tool_RetrievedEvent const & iEvent) {
  CountPrint();
  if (!mIsText) return Tool_PrintEventAsJSON(mOut, mSource, iEvent);
  PrintHeading();
  Tool_PrintEventAsText(mOut, mBars, iEvent);
}

void Tool_ClipPrinter::Print(Tool_WireMessage const & iMessage) {
  CountPrint();
  if (!mIsText) return Tool_PrintWireAsJSON(mOut, mSource, iMessage);
  PrintHeading();
  Tool_PrintWireAsText(mOut, mBars, iMessage);
}

void Tool_ClipPrinter::Print(Tool_PassedTransition const & iTransition) {
  CountPrint();
  if (!mIsText) return Tool_PrintScrubAsJSON(mOut, mSource, iTransition);
  PrintHeading();
  Tool_PrintScrubAsText(mOut, mBars, iTransition);
}

void Tool_ClipPrinter::EndClip() {
  if (mIsText && mIsEmpty) mOut.Print("{:>14}\n", "nothing");
}

void Tool_ClipPrinter::CountPrint() {
  ++mNumPrints;
  if (mNumPrints % 1024 == 0) mProgress.Show(mNumPrints, mNumExpected);
}

void Tool_ClipPrinter::PrintHeading() {
  if (mIsEmpty) mOut.Print("{:>14} {:>15}\n", "bar:beat:tick", "time");
  mIsEmpty = false;
}
