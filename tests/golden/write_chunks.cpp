// Tells every NAME.chunk in a folder field by field, as the library reads it, in NAME.json; then
// writes chunks of its own there, each with such a file. A reader in another language is held
// against them.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "cmn/cmn_assert.h"
#include "foundation/sys_stream.h"
#include "vrad/vrad_chunk.h"

namespace {

typedef std::minstd_rand Random;

long long Below(Random & ioRandom, long long iLimit) {
  return static_cast<long long>(ioRandom()) * 1000 % iLimit;
}

signed char ByteFrom(Random & ioRandom, int iFirst) {
  return static_cast<signed char>(iFirst + Below(ioRandom, 128 - iFirst));
}

Time_EType AnyUnit(Random & ioRandom) {
  return Below(ioRandom, 3) == 0 ? Time_eType_Samples : Time_eType_Ticks;
}

Vrae_NoteWithDurationEvent AnyNoteEvent(Random & ioRandom, Time_EType iUnit) {
  return Vrae_NoteWithDurationEvent(ByteFrom(ioRandom, 0),
                                    Time_TypedLength(1 + Below(ioRandom, 20000000), iUnit),
                                    ByteFrom(ioRandom, 1), ByteFrom(ioRandom, 0));
}

void AddNotes(Vrad_Chunk & ioChunk, Random & ioRandom, int iNum) {
  for (int i = 0; i < iNum; ++i) {
    Time_EType const unit = AnyUnit(ioRandom);
    Time_Typed const time(Below(ioRandom, 100000000) - 1000, unit);
    ioChunk.GetNoteList()->AddNote(
        Vrad_NoteListBase_Note(time, AnyNoteEvent(ioRandom, unit),
                               Time_TypedLength(Below(ioRandom, 5000) - 2500, AnyUnit(ioRandom)),
                               AnyNoteEvent(ioRandom, AnyUnit(ioRandom)), Below(ioRandom, 3) == 0));
  }
}

void AddStreams(Vrad_Chunk & ioChunk, Random & ioRandom, int iNumEach) {
  for (Vrae_SubStream const & subStream :
       {Vrae_SubStream::PolyPressure(127), Vrae_SubStream::Program(), Vrae_SubStream::PitchBend(),
        Vrae_SubStream::Controller(119), Vrae_SubStream::Controller(1),
        Vrae_SubStream::MonoPressure(), Vrae_SubStream::PolyPressure(0)}) {
    Time_EType const unit = AnyUnit(ioRandom);
    Vrae_SubStream_ValueRange const range = subStream.GetValueRange();
    for (int i = 0; i < iNumEach; ++i) {
      int const value =
          range.mMin + static_cast<int>(Below(ioRandom, range.mMax - range.mMin + 1LL));
      ioChunk.AddEvent(Vrad_ExtendedEvent(Time_Typed(Below(ioRandom, 100000000), unit),
                                          subStream.MakeEvent(value)));
    }
  }
}

void AddSysex(Vrad_Chunk & ioChunk, Random & ioRandom, int iLength) {
  std::vector<unsigned char> contents;
  for (int i = 0; i < iLength; ++i)
    contents.push_back(static_cast<unsigned char>(Below(ioRandom, 128)));
  ioChunk.AddEvent(Vrad_ExtendedEvent(Time_Typed(Below(ioRandom, 1000), AnyUnit(ioRandom)),
                                      Vrae_SysexEvent(iLength, contents.data())));
}

// What JSON is made of here.

std::string Quoted(std::string const & iText) {
  return '"' + iText + '"';
}

std::string Count(long long iCount, Time_EType iType) {
  return '[' + std::to_string(iCount) + ", " +
         Quoted(iType == Time_eType_Ticks ? "ticks" : "samples") + ']';
}

template <class T>
std::string Count(T const & iTime) {
  return Count(iTime.AsInt64(), iTime.GetType());
}

std::string Hex(unsigned char const * iBytes, int iNum) {
  std::string text;
  for (int i = 0; i < iNum; ++i) {
    char digits[3];
    std::snprintf(digits, sizeof(digits), "%02x", iBytes[i]);
    text += digits;
  }
  return Quoted(text);
}

class Items {
public:
  void Add(std::string const & iItem) { mText += (mText.empty() ? "" : ",\n ") + iItem; }
  std::string AsList() const { return "[" + mText + "]"; }

private:
  std::string mText;
};

std::string EventFields(Vrae_NoteWithDurationEvent const & iEvent) {
  return "\"pitch\": " + std::to_string(iEvent.GetPitch()) +
         ", \"duration\": " + Count(iEvent.GetDuration()) +
         ", \"onVelocity\": " + std::to_string(iEvent.GetOnVelocity()) +
         ", \"offVelocity\": " + std::to_string(iEvent.GetOffVelocity());
}

std::string Bool(bool iValue) {
  return iValue ? "true" : "false";
}

std::string Notes(Vrad_Chunk & iChunk) {
  Items items;
  for (Vrad_NoteListBase::FullNotesInRangeIter iter(iChunk.GetNoteList()); iter.IsMore(); ++iter) {
    Vrad_NoteListBase_Note const & note = *iter;
    items.Add("{\"start\": " + Count(note.mTime) + ", " + EventFields(note.mEvent) +
              ", \"quantizeDelta\": " + Count(note.mQuantizeTimeDelta) + ", \"original\": {" +
              EventFields(note.mOrigEvent) + "}, \"isMuted\": " + Bool(note.mMuted) + "}");
  }
  return items.AsList();
}

std::string Streams(Vrad_Chunk & iChunk) {
  Items items;
  for (auto const & streamP : iChunk.GetContinuousList()) {
    Vrae_SubStream const subStream = streamP->GetSubStream();
    Items segments;
    for (Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(streamP.Get()); iter.IsMore(); ++iter)
      segments.Add("{\"start\": " + Count((*iter).mTime) + ", \"value\": " +
                   std::to_string(subStream.GetValueFromEvent((*iter).mEvent)) + "}");
    items.Add("{\"index\": " + std::to_string(subStream.GetIndex()) +
              ", \"segments\": " + segments.AsList() + "}");
  }
  return items.AsList();
}

std::string Contents(Vrae_Event const & iEvent) {
  if (iEvent.GetType() == Vrae_Event::kNoEvent) return "null";
  Vrae_SysexEvent const & sysex = iEvent.AsSysex();
  return Hex(sysex.GetInternalDataPtr(), sysex.GetLength());
}

std::string Events(Vrad_Chunk & iChunk) {
  Items items;
  for (Vrad_EventStreamTimedEventsInRangeIter iter(iChunk.GetEventStream()); iter.IsMore();
       ++iter) {
    Vrae_TimedEvent const event = *iter;
    items.Add("{\"start\": " + Count(event.mTime) + ", \"contents\": " + Contents(event.mEvent) +
              "}");
  }
  return items.AsList();
}

std::string Json(Vrad_Chunk & iChunk) {
  return "{\"notes\": " + Notes(iChunk) + ",\n\"streams\": " + Streams(iChunk) +
         ",\n\"events\": " + Events(iChunk) + ",\n\"uid\": " + Hex(iChunk.GetUID().GetBytes(), 16) +
         ", \"isLocal\": " + Bool(iChunk.IsLocal()) + "}\n";
}

// Values that are repaired are no news here.
void Tell(std::filesystem::path const & iPath) {
  Cmn_AssertRecorder const checks;
  Sys_FileInStream stream(iPath.string());
  std::unique_ptr<Vrad_Chunk> const chunkP(
      Vrad_Chunk::StreamIn(stream, Ndo_Object::kNotUndoable, false));
  std::ofstream(std::filesystem::path(iPath).replace_extension(".json")) << Json(*chunkP);
}

void Write(std::string const & iPath, Vrad_Chunk & iChunk) {
  Sys_FileOutStream stream(iPath + ".chunk");
  iChunk.StreamOut(stream);
  stream.Close();
  std::ofstream(iPath + ".json") << Json(iChunk);
}

std::vector<std::filesystem::path> ChunksIn(std::string const & iFolder) {
  std::vector<std::filesystem::path> paths;
  for (std::filesystem::directory_entry const & entry :
       std::filesystem::directory_iterator(iFolder))
    if (entry.path().extension() == ".chunk") paths.push_back(entry.path());
  return paths;
}

// What a number of chunks hold, from nothing on.
std::unique_ptr<Vrad_Chunk> MakeChunk(int iNumber) {
  std::unique_ptr<Vrad_Chunk> chunkP(Vrad_Chunk::New(Ndo_Object::kNotUndoable, false));
  Random random(static_cast<unsigned>(iNumber) + 1);
  if (iNumber % 2 != 0) AddNotes(*chunkP, random, iNumber * 40);
  if (iNumber / 2 % 2 != 0) AddStreams(*chunkP, random, iNumber * 3);
  for (int const length : {0, 1, 14, 15, 3000})
    if (iNumber / 4 % 2 != 0) AddSysex(*chunkP, random, length);
  chunkP->SetIsLocal(iNumber % 3 != 0);
  return chunkP;
}

}  // namespace

int main(int iNumArgs, char ** iArgs) {
  if (iNumArgs != 2) {
    std::fprintf(stderr, "usage: write_chunks FOLDER\n");
    return 2;
  }
  for (std::filesystem::path const & path : ChunksIn(iArgs[1]))
    Tell(path);
  for (int number = 0; number < 8; ++number)
    Write(std::string(iArgs[1]) + "/" + std::to_string(number), *MakeChunk(number));
  return 0;
}
