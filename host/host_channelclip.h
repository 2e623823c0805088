// Makes one clip out of the messages of one channel of one track.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "foundation/time_typed.h"
#include "host/host_midireport.h"
#include "ndo/ndo_ptr.h"
#include "vrad/vrad_chunk.h"

/// How many stores a file may still make: clips, and streams of values in them. Past the last one
/// it says so, once, and refuses. Thread: one at a time.
class Host_StoreBudget {
public:
  Host_StoreBudget(int iNumStores, Host_MidiReport & ioReport)
      : mNumLeft(iNumStores), mReport(ioReport) {}

  /// False when none is left. iOffset is where the file asks for it.
  bool Take(size_t iOffset);

private:
  int mNumLeft;
  bool mIsTold = false;
  Host_MidiReport & mReport;
};

/// Gathers notes until their ends are known and files everything else at once. Reusable: `Finish`
/// leaves it as new.
/// Thread: one at a time.
class Host_ChannelClip {
public:
  /// Both must outlive it.
  Host_ChannelClip(Host_MidiReport & ioReport, Host_StoreBudget & ioBudget);
  Host_ChannelClip(Host_ChannelClip const &) = delete;
  Host_ChannelClip & operator=(Host_ChannelClip const &) = delete;

  /// Ticks are library ticks and never fall. iStatus 0x80 to 0xEF; the channel in it is not looked
  /// at. Data 0 to 127.
  void AddMessage(long long iTick, unsigned char iStatus, unsigned char iData1,
                  unsigned char iData2, size_t iOffset);

  /// Ends open notes at iTick and hands the chunk over; null when nothing was kept.
  Ndo_AutoPtr<Vrad_Chunk> Finish(long long iTick);

private:
  static constexpr int kNone = -1;
  static constexpr int kNumPitches = 128;
  static constexpr int kNumSubStreams = 250;

  struct Note {
    long long mStart;
    long long mDuration;  // 0 while open
    int mNextOpen;        // of the same pitch, in order of their beginning; kNone at the end
    signed char mPitch;
    signed char mOnVelocity;
    signed char mOffVelocity;
  };

  // The controllers 0 and 32 since the last program change.
  struct BankSelect {
    int mMSB = kNone;
    int mLSB = kNone;
    long long mTick = 0;  // of the later one
    size_t mMSBOffset = 0;
    size_t mLSBOffset = 0;
    bool IsGiven() const { return mMSB != kNone || mLSB != kNone; }
  };

  void StartNote(long long iTick, unsigned char iPitch, unsigned char iVelocity);
  void EndNote(long long iTick, unsigned char iPitch, unsigned char iVelocity, size_t iOffset);
  void AddController(long long iTick, unsigned char iNumber, unsigned char iValue, size_t iOffset);
  void SelectBank(long long iTick, int & ioPart, size_t & ioPartOffset, int iValue, size_t iOffset);
  void AddProgram(long long iTick, int iProgram, size_t iOffset);
  void AddLoneBankSelect();
  void AddValue(long long iTick, Vrae_Event const & iEvent, size_t iOffset);
  void AddNotes(long long iEnd);
  Vrad_Chunk & GetChunk();
  void StartAnew();

  Host_MidiReport & mReport;
  Host_StoreBudget & mBudget;
  Ndo_AutoPtr<Vrad_Chunk> mChunk;  // null until something is kept
  std::vector<Note> mNotes;        // in order of their beginning
  std::array<int, kNumPitches> mFirstOpen;
  std::array<int, kNumPitches> mLastOpen;
  struct LastValue {
    long long mTick;  // kNone before the first
    size_t mOffset;
  };
  std::array<LastValue, kNumSubStreams> mLastValues;  // by index of the sub-stream
  BankSelect mBank;
};
