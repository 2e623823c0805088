// A song as text, everything in it: what tests of writing and reading compare.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "clip_print.h"
#include "host/host_song.h"
#include "host/host_writereport.h"
#include "vrad/vrad_eventstream.h"
#include "vrad/vrad_notelist.h"

namespace midi {

inline std::string PrintTime(Time_Typed iTime) {
  return std::to_string(iTime.AsInt64()) + (iTime.GetType() == Time_eType_Ticks ? "" : "s");
}

/// The notes in the order of their list; what is unusual stands behind.
inline std::vector<std::string> PrintNotes(Vrad_Chunk & ioChunk) {
  std::vector<std::string> result;
  Vrad_NoteListBase::FullNotesInRangeIter iter(ioChunk.GetNoteList());
  for (; iter.IsMore(); ++iter) {
    Vrad_NoteListBase_Note const & note = *iter;
    std::string line = PrintTime(note.mTime) + ": " + PrintNote(note.mEvent);
    std::string const original = PrintNote(note.mOrigEvent);
    if (original != PrintNote(note.mEvent)) line += ", was " + original;
    if (note.mQuantizeTimeDelta.AsInt64() != 0) {
      line += ", delta " + std::to_string(note.mQuantizeTimeDelta.AsInt64());
    }
    if (note.mMuted) line += ", muted";
    result.push_back(line);
  }
  return result;
}

/// Sysex in the order of its stream.
inline std::vector<std::string> PrintSysexes(Vrad_Chunk const & iChunk) {
  std::vector<std::string> result;
  for (Vrad_EventStream_RangeIter iter(iChunk.GetEventStream()); iter.IsMore(); iter.Next()) {
    result.push_back(PrintTime(iter.GetEvent().mTime) + ": " + PrintEvent(iter.GetEvent().mEvent));
  }
  return result;
}

/// Everything that is neither note nor sysex, in the order of its retrieval.
inline std::vector<std::string> PrintValues(Vrad_Chunk const & iChunk) {
  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  Vrae_Filter filter;
  filter.SetAll().Set(Vrae_Filter::eDataType_Notes, false);
  filter.Set(Vrae_Filter::eDataType_Sysex, false);
  Time_Typed const start = Time_Typed::MinTime(Time_eType_Ticks);
  Time_Typed const end = Time_Typed::MaxTime(Time_eType_Ticks);
  iChunk.GetMidiEventsInRange(&wrapper, Time_TypedLength(), start, end, start, end, false, nullptr,
                              nullptr, filter, nullptr, false, 0, kNoteOffInclusion_None);
  std::vector<std::string> result;
  for (Vrae_TimedEvent const & event : list)
    result.push_back(PrintTime(event.mTime) + ": " + PrintEvent(event.mEvent));
  return result;
}

inline std::string PrintDouble(double iValue) {
  char text[32];
  std::snprintf(text, sizeof text, "%.17g", iValue);
  return text;
}

/// Tracks, tempo, signatures.
inline std::vector<std::string> PrintFrame(Host_Song const & iSong) {
  std::vector<std::string> result;
  result.push_back("division " + std::to_string(iSong.mHeader.mDivision));
  for (Host_MidiTrack const & track : iSong.mTracks) {
    result.push_back("track '" + track.mName + "' to " + std::to_string(track.mEnd.AsInt64()));
  }
  auto const placeOf = [](auto const & iItem) {
    return std::to_string(iItem.mTime.AsInt64()) + " in " + std::to_string(iItem.mTrack) + ": ";
  };
  for (Host_TempoChange const & change : iSong.mTempoChanges)
    result.push_back(placeOf(change) + "tempo " + PrintDouble(change.mBeatsPerMinute));
  for (Host_TimeSignature const & signature : iSong.mTimeSignatures) {
    result.push_back(placeOf(signature) + "meter " + std::to_string(signature.mNumerator) + "/" +
                     std::to_string(signature.mDenominator) + " " +
                     std::to_string(signature.mClocksPerClick) + " " +
                     std::to_string(signature.mThirtySecondsPerBeat));
  }
  for (Host_KeySignature const & signature : iSong.mKeySignatures) {
    result.push_back(placeOf(signature) + "key " + std::to_string(signature.mNumSharps) +
                     (signature.mIsMinor ? " minor" : " major"));
  }
  return result;
}

/// All clips with all in them.
inline std::vector<std::string> PrintMusic(Host_Song const & iSong) {
  std::vector<std::string> result;
  auto const append = [&result](std::vector<std::string> const & iLines) {
    result.insert(result.end(), iLines.begin(), iLines.end());
  };
  for (Host_Clip const & clip : iSong.mClips) {
    result.push_back("clip " + std::to_string(clip.mTrack) + "/" + std::to_string(clip.mChannel));
    append(PrintNotes(*clip.mChunk.Get()));
    append(PrintValues(*clip.mChunk.Get()));
    append(PrintSysexes(*clip.mChunk.Get()));
  }
  return result;
}

inline std::vector<std::string> PrintSong(Host_Song const & iSong) {
  std::vector<std::string> result = PrintFrame(iSong);
  std::vector<std::string> const music = PrintMusic(iSong);
  result.insert(result.end(), music.begin(), music.end());
  return result;
}

/// What was not written, a line each: count and name.
inline std::vector<std::string> PrintNotWritten(Host_WriteReport const & iReport) {
  std::vector<std::string> result;
  for (Host_WriteReport::NotWritten const & line : iReport.GetNotWritten())
    result.push_back(std::to_string(line.mCount) + " " + line.mName);
  return result;
}

}  // namespace midi
