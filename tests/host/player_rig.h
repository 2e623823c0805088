// A player with what it needs, clips in samples, and what it sent in print.
#pragma once

#include <cstdio>
#include <string>

#include "host/host_blockplayer.h"
#include "host/host_messagelist.h"
#include "host/host_notepool.h"
#include "support/chunk_samples.h"

/// At the tempo and sample rate of the start, which these tests keep.
constexpr long long kTicksPerSample = 40;

inline Time_Typed AtSample(long long iSample) {
  return Ticks(iSample * kTicksPerSample);
}

/// A note in ticks that begins and ends with samples.
inline void AddNote(Vrad_Chunk & ioChunk, long long iSample, long long iLength, int iPitch,
                    int iOnVelocity = 100, int iOffVelocity = 10) {
  ioChunk.AddEvent(Vrad_NoteWithDurationExtendedEvent(
      AtSample(iSample),
      Vrae_NoteWithDurationEvent(
          static_cast<signed char>(iPitch), Time_TickLength(iLength * kTicksPerSample),
          static_cast<signed char>(iOnVelocity), static_cast<signed char>(iOffVelocity)),
      false));
}

inline void AddController(Vrad_Chunk & ioChunk, long long iSample, int iNumber, int iValue) {
  ioChunk.AddEvent(ControllerAt(AtSample(iSample), iNumber, iValue));
}

inline void AddBend(Vrad_Chunk & ioChunk, long long iSample, int iBend) {
  ioChunk.AddEvent(BendAt(AtSample(iSample), iBend));
}

inline void AddEvent(Vrad_Chunk & ioChunk, long long iSample, Vrae_Event const & iEvent) {
  ioChunk.AddEvent(Vrad_ExtendedEvent(AtSample(iSample), iEvent));
}

inline std::string PrintBytes(std::span<unsigned char const> iBytes) {
  std::string text;
  char byte[3];
  for (unsigned char const value : iBytes) {
    std::snprintf(byte, sizeof byte, "%02x", value);
    text += (text.empty() ? "" : " ") + std::string(byte);
  }
  return text;
}

/// "3: 90 3c 64 | 7: 80 3c 0a": offsets and bytes. With several clips, "3 #1: 90 3c 64".
inline std::string PrintMessages(Host_MessageList const & iList, bool iWithClips = false) {
  std::string text;
  for (Host_MessageList::Message const & message : iList.GetMessages()) {
    text += (text.empty() ? "" : " | ") + std::to_string(message.mOffset);
    if (iWithClips) text += " #" + std::to_string(message.mClip);
    text += ": " + PrintBytes(iList.GetBytes(message));
  }
  return text;
}

struct PlayerRig {
  Host_NotePool mPool{1000};
  Host_MessageList mList;
  Host_BlockPlayer mPlayer{&mList};
  ChunkPtr mChunkP = MakeChunk();

  Vrad_Chunk & Chunk() { return *mChunkP.Get(); }

  /// Adds the chunk as clip 0 on channel 0.
  void AddClip() { mPlayer.AddClip(mChunkP.Get(), 0, 0); }

  /// What a block sends.
  std::string Play(int iNumSamples, bool iWithClips = false) {
    mList.Clear();
    mPlayer.Process(iNumSamples);
    return PrintMessages(mList, iWithClips);
  }

  /// Adds the chunk and plays it from the sample.
  std::string PlayFrom(long long iSample, int iNumSamples) {
    AddClip();
    mPlayer.Start(AtSample(iSample));
    return Play(iNumSamples);
  }
};
