// What one track of a song says in MIDI, at library ticks: the step between clips and file ticks.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "host/host_song.h"
#include "host/host_writereport.h"

/// The order of what stands at one tick of a file.
enum Host_ETrackRank : int {
  kTrackRank_Name,
  kTrackRank_TimeSignature,
  kTrackRank_KeySignature,
  kTrackRank_Tempo,
  kTrackRank_NoteEnd,  // of a note that began at an earlier tick
  kTrackRank_Sysex,
  kTrackRank_Value,
  kTrackRank_Note  // its beginning, and its end where that falls on the same tick
};

/// Thread: one at a time. Plain data.
struct Host_TrackEvents {
  struct Note {
    long long mStart;
    long long mEnd;  // behind mStart
    int mClip;
    unsigned char mChannel;
    signed char mPitch, mOnVelocity, mOffVelocity;
  };

  struct Message {
    long long mTick;
    Host_ETrackRank mRank;
    int mClip;      // -1: none
    int mStream;    // of several messages of one stream of a clip at one tick the last counts; -1:
                    // none
    size_t mFirst;  // of its bytes in mBytes; as in a file, its status never left out
    size_t mNumBytes;
  };

  std::vector<Note> mNotes;        // of each clip in the order of its list
  std::vector<Message> mMessages;  // those of one tick and rank in their order
  std::vector<unsigned char> mBytes;
  long long mEnd = 0;  // of the track

  void AddMessage(Message iMessage, std::span<unsigned char const> iBytes);
};

/// Adds what a clip of the song holds. What has no place in a MIDI file is counted.
/// iTempo is the song's.
void Host_AddClip(Host_Song const & iSong, int iClip, Time_TempoMap const & iTempo,
                  Host_TrackEvents & ioTrack, Host_WriteReport & ioReport);
