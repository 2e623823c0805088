// A program of somebody who builds a host on what is installed beside the library: it plays a file
// of one note, and lets the referee listen.
#include <cstdio>

#include "host/host_blockplayer.h"
#include "host/host_messagelist.h"
#include "host/host_midifile.h"
#include "host/host_midiwriter.h"
#include "host/host_notepool.h"
#include "host/host_projectfile.h"
#include "host/host_streamchecker.h"
#include "vrad/vrad.h"

namespace {

Host_Song MakeSong() {
  Host_Song song;
  song.mTracks.push_back({"Piano", Time_Tick(1920000)});
  song.mClips.push_back(
      {0, 0, Ndo_AutoPtr<Vrad_Chunk>(Vrad_Chunk::New(Ndo_Object::kNotUndoable, false))});
  song.mClips[0].mChunk->AddEvent(Vrad_NoteWithDurationExtendedEvent(
      Time_Tick(960000), Vrae_NoteWithDurationEvent(60, Time_TickLength(480000), 80, 64), false));
  return song;
}

// By way of both kinds of file.
Host_Song MakeSongFromBytes() {
  Host_Song const project = Host_ReadProjectFile(Host_WriteProjectFile(MakeSong()));
  Host_WriteReport report;
  return Host_ReadMidiFile(Host_WriteMidiFile(project, report));
}

void Play(Host_Song const & iSong, Host_BlockReceiver & ioReceiver) {
  Host_BlockPlayer player(&ioReceiver);
  player.AddClip(iSong.mClips[0].mChunk.Get(), 0, 1);
  player.Start();
  for (int i = 0; i < 100; ++i)
    player.Process(512);
}

}  // namespace

int main() {
  Host_NotePool const pool;
  Host_Song const song = MakeSongFromBytes();
  Host_MessageList messages;
  Play(song, messages);

  Host_StreamChecker checker;
  checker.AddClip(song.mClips[0].mChunk.Get(), 0, 1);
  checker.Start();
  Play(song, checker);

  size_t const num = messages.GetMessages().size();
  std::printf("%zu messages, of which the referee says: %s\n", num,
              checker.IsGood() ? "good" : checker.GetViolation().mText.c_str());
  return num == 2 && checker.IsGood() ? 0 : 1;
}
