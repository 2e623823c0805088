// A stream checker at work: what tests of it send, as text.
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "host/host_streamchecker.h"
#include "support/chunk_samples.h"

/// One message: "17: 90 3c 64" is a note-on at offset 17. With "2/17: ..." it is of clip 2, else of
// clip 1.
struct WireText {
  WireText(char const * iText) {
    std::string text = iText;
    if (size_t const slash = text.find('/'); slash != std::string::npos) {
      mClip = std::stoi(text);
      text = text.substr(slash + 1);
    }
    mOffset = std::stoi(text);
    std::istringstream bytes(text.substr(text.find(':') + 1));
    for (int byte; bytes >> std::hex >> byte;)
      mBytes.push_back(static_cast<unsigned char>(byte));
  }
  int mClip = 1, mOffset = 0;
  std::vector<unsigned char> mBytes;
};

struct StreamChecker : testing::Test {
  ChunkPtr mChunk = MakeChunk(), mOther = MakeChunk();
  Host_StreamChecker mChecker;

  // Clip 1 on channel 0, as the chunk stands now, and plays from the sample.
  void Start(long long iSample = 0) {
    mChecker.AddClip(mChunk.Get(), 0, 1);
    mChecker.Start(Samples(iSample));
  }
  void Block(int iNumSamples, std::vector<WireText> const & iMessages = {}) {
    Block(mChecker, iNumSamples, iMessages);
  }
  static void Block(Host_StreamChecker & ioChecker, int iNumSamples,
                    std::vector<WireText> const & iMessages = {}) {
    ioChecker.BeginBlock(iNumSamples);
    for (WireText const & text : iMessages)
      ioChecker.ReceiveMessage({text.mClip, text.mOffset, text.mBytes.data(),
                                static_cast<int>(text.mBytes.size()), Time_Typed()});
    ioChecker.EndBlock();
  }
  // What another checker says of that clip and one block from the sample.
  Host_EViolation KindOf(long long iSample, int iNumSamples,
                         std::vector<WireText> const & iMessages) const {
    Host_StreamChecker checker;
    checker.AddClip(mChunk.Get(), 0, 1);
    checker.Start(Samples(iSample));
    Block(checker, iNumSamples, iMessages);
    return checker.GetViolation().mKind;
  }
  void AddNote(long long iStart, int iPitch, long long iLength, int iOffVelocity = 64) {
    mChunk->AddEvent(Vrad_NoteWithDurationExtendedEvent(
        Samples(iStart),
        Vrae_NoteWithDurationEvent(static_cast<signed char>(iPitch), Time_SampleLength(iLength),
                                   100, static_cast<signed char>(iOffVelocity)),
        false));
  }
  void AddController(long long iSample, int iNumber, int iValue) {
    mChunk->AddEvent(ControllerAt(Samples(iSample), iNumber, iValue));
  }
  Host_EViolation Kind() const { return mChecker.GetViolation().mKind; }
  std::string Why() const { return mChecker.GetViolation().mText; }
};
