// Project files for tests: records made by hand, and a song that has something of everything.
#pragma once

#include <bit>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>

#include "foundation/sys_stream.h"
#include "host/host_projectfile.h"
#include "host/host_projectformat.h"
#include "host/host_projectrecord.h"
#include "midi_bytes.h"
#include "support/chunk_samples.h"

namespace project {

using midi::Bytes;
using midi::operator+;

inline Bytes Int(int iNumber) {
  Sys_MemoryOutStream stream;
  stream.Write(iNumber);
  return stream.GetBytes();
}
inline Bytes Int64(long long iNumber) {
  Sys_MemoryOutStream stream;
  stream.Write(iNumber);
  return stream.GetBytes();
}
inline Bytes Ints(std::initializer_list<int> iNumbers) {
  Bytes bytes;
  for (int number : iNumbers)
    bytes = bytes + Int(number);
  return bytes;
}
inline Bytes Float(double iNumber) {
  return Int64(std::bit_cast<long long>(iNumber));
}

inline Bytes Record(char const * iTag, Bytes const & iContents, short iVersion = 1) {
  Sys_MemoryOutStream stream;
  Host_WriteProjectRecord(stream, iTag, iVersion, iContents);
  return stream.GetBytes();
}

inline Bytes Head(int iNumTracks, int iNumClips) {
  return Record(kHost_ProjectHead, Ints({1, 480, iNumTracks, iNumTracks, iNumClips}));
}
inline Bytes Track(int iNumber, long long iEnd, std::string const & iName) {
  return Record(kHost_ProjectTrack, Int(iNumber) + Int64(iEnd) +
                                        Int(static_cast<int>(iName.size())) + midi::Text(iName));
}
inline Bytes Clip(int iTrack, int iChannel, Vrad_Chunk const & iChunk) {
  Sys_MemoryOutStream stream;
  iChunk.StreamOut(stream);
  return Record(kHost_ProjectClip, Ints({iTrack, iChannel}) + stream.GetBytes());
}
inline Bytes Last(int iNumRecords) {
  return Record(kHost_ProjectLast, Int(iNumRecords));
}
/// All but the head and the last record.
inline Bytes File(Bytes const & iRecords, int iNumTracks, int iNumClips, int iNumRecords) {
  return Head(iNumTracks, iNumClips) + iRecords + Last(iNumRecords);
}

inline Host_Song Read(Bytes const & iFile) {
  return Host_ReadProjectFile(std::span<unsigned char const>(iFile));
}

/// Where the records begin, and the end of the last one.
inline std::vector<size_t> FindBounds(Bytes const & iFile) {
  Host_MidiReport report;
  Host_ProjectScanner scanner(iFile, report);
  std::vector<size_t> bounds = {0};
  while (scanner.Next())
    bounds.push_back(scanner.GetOffset());
  return bounds;
}

inline Vrad_Chunk & AddClip(Host_Song & ioSong, int iTrack, int iChannel) {
  ioSong.mClips.push_back({iTrack, iChannel, MakeChunk(Ndo_Object::kUndoable)});
  return *ioSong.mClips.back().mChunk.Get();
}

inline void AddNotes(Vrad_Chunk & ioChunk, int iNum) {
  for (int i = 0; i < iNum; ++i)
    ioChunk.AddEvent(NoteAt(Ticks(480000 * i), 40 + i % 40, 300000 + i));
  Vrae_NoteWithDurationEvent const edited(60, Time_TickLength(480000), 100, 64);
  Vrae_NoteWithDurationEvent const original(62, Time_TickLength(500000), 90, 0);
  ioChunk.GetNoteList()->AddNote(
      Vrad_NoteListBase_Note(Ticks(960000), edited, Time_TickLength(-1500), original, true));
}

inline void AddValues(Vrad_Chunk & ioChunk) {
  Vrae_ProgramEvent program(9, 387);
  program.SetLSBBankEnable(false);
  ioChunk.AddEvent(Vrad_ExtendedEvent(Ticks(0), program));
  ioChunk.AddEvent(BendAt(Ticks(240000), -8192));
  ioChunk.AddEvent(ControllerAt(Ticks(0), 7, 100));
  ioChunk.AddEvent(ControllerAt(Ticks(960000), 7, 0));
  ioChunk.AddEvent(ControllerAt(Ticks(1), 119, 127));
  ioChunk.AddEvent(Vrad_ExtendedEvent(Ticks(5), Vrae_MonoPressureEvent(50)));
  ioChunk.AddEvent(Vrad_ExtendedEvent(Ticks(6), Vrae_PolyPressureEvent(127, 51)));
}

inline void AddSysex(Vrad_Chunk & ioChunk) {
  unsigned char const data[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 127};
  ioChunk.AddEvent(SysexAt(Ticks(0), 0x41));
  ioChunk.AddEvent(Vrad_ExtendedEvent(Ticks(960001), Vrae_SysexEvent(17, data)));
}

/// Three tracks of five clips: thirteen records, some 3,000 bytes as a file.
inline Host_Song MakeSong() {
  Host_Song song;
  song.mHeader = {1, 3, 96};
  song.mTiming = Host_MidiTiming(96);
  song.mTracks = {{"Solo", Time_Tick(9600000)}, {"", Time_Tick(0)}, {"B\xe4sse", Time_Tick(5)}};
  song.mTempoChanges = {{Time_Tick(0), 97.3, 0}, {Time_Tick(960000), 1e-3, 2}};
  song.mTimeSignatures = {{Time_Tick(0), 6, 8, 0, 36, 24},
                          {Time_Tick(1440000), 255, 1024, 2, 0, 255}};
  song.mKeySignatures = {{Time_Tick(0), -7, true, 0}, {Time_Tick(0), 7, false, 2}};
  AddNotes(AddClip(song, 0, 0), 10);
  AddValues(AddClip(song, 0, 15));
  AddSysex(AddClip(song, 0, -1));
  AddNotes(AddClip(song, 2, 3), 20);
  Vrad_Chunk & inSamples = AddClip(song, 2, 4);
  inSamples.AddEvent(NoteAt(Samples(24000), 60, 12000));
  inSamples.AddEvent(ControllerAt(Samples(48000), 7, 1));
  return song;
}

}  // namespace project
