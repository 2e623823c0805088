// Makes the clips of one track out of its messages.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "foundation/time_typed.h"
#include "host/host_channelclip.h"
#include "host/host_midireport.h"
#include "host/host_song.h"
#include "vrad/vrae_event.h"

/// Takes the messages of one track after the other, in file order, and appends the clips of each
/// when it ends. Times are library ticks and never fall within a track.
/// Thread: one at a time.
class Host_ClipBuilder {
public:
  /// Both must outlive it.
  Host_ClipBuilder(std::vector<Host_Clip> & ioClips, Host_MidiReport & ioReport);
  ~Host_ClipBuilder();
  Host_ClipBuilder(Host_ClipBuilder const &) = delete;
  Host_ClipBuilder & operator=(Host_ClipBuilder const &) = delete;

  void BeginTrack(int iTrack);
  /// iStatus 0x80 to 0xEF, data 0 to 127.
  void AddChannelMessage(long long iTick, unsigned char iStatus, unsigned char iData1,
                         unsigned char iData2, size_t iOffset);
  /// The contents without 0xF0 and 0xF7.
  void AddSysex(long long iTick, std::span<unsigned char const> iContents, size_t iOffset);
  /// Ends open notes at iTick.
  void EndTrack(long long iTick);

private:
  static constexpr int kNumChannels = 16;

  void AddSysexRun();
  void AppendClip(int iChannel, Ndo_AutoPtr<Vrad_Chunk> iChunk);

  std::vector<Host_Clip> & mClips;
  Host_MidiReport & mReport;
  Host_StoreBudget mBudget;
  int mTrack = 0;
  std::array<std::unique_ptr<Host_ChannelClip>, kNumChannels> mChannels;  // made at need, reused
  std::array<bool, kNumChannels> mIsInUse{};                              // in this track
  Ndo_AutoPtr<Vrad_Chunk> mSysexChunk;  // null until there is sysex
  std::vector<Vrae_Event> mSysexRun;    // those of the latest tick, in file order
  long long mSysexTick = 0;
};
