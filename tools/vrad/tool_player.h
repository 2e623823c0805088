// A player with clips of a song in it.
#pragma once

#include <functional>
#include <vector>

#include "host/host_blockplayer.h"
#include "host/host_notepool.h"
#include "host/host_song.h"

class Tool_Player {
public:
  /// All must outlive it.
  Tool_Player(Host_Song const & iSong, std::vector<int> const & iClips,
              Host_BlockReceiver & iReceiver);

  Host_BlockPlayer & GetPlayer() { return mPlayer; }

  /// Says on the standard error stream how many notes were not struck. False if there are any.
  bool TellLostNotes() const;

private:
  Host_NotePool mPool;
  Host_BlockPlayer mPlayer;
};

/// The first sample behind all that the clips hold and behind the end of the song.
long long Tool_FindEnd(Host_Song const & iSong, std::vector<int> const & iClips);

/// The sample in which a position lies.
long long Tool_ToSample(Time_Typed iPosition);
