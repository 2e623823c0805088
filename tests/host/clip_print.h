// A file that has been read, as text: what tests compare.
#pragma once

#include <cstdio>
#include <string>

#include "host/host_midifile.h"
#include "midi_bytes.h"
#include "vrad/vrad_extendedeventlist.h"

namespace midi {

inline std::string PrintProgram(Vrae_ProgramEvent const & iProgram) {
  auto const part = [](bool iIsEnabled, int iValue) {
    return iIsEnabled ? std::to_string(iValue) : std::string("-");
  };
  return "program " + part(iProgram.IsProgramEnabled(), iProgram.GetProgram()) + " bank " +
         part(iProgram.IsMSBBankEnabled(), iProgram.GetMSBBank()) + "/" +
         part(iProgram.IsLSBBankEnabled(), iProgram.GetLSBBank());
}

inline std::string PrintSysex(Vrae_Event const & iEvent) {
  Vrae_SysexEvent const & sysex = iEvent.AsSysex();
  std::string result = "sysex";
  for (int i = 0; i < sysex.GetLength(); ++i) {
    char text[8];
    std::snprintf(text, sizeof text, " %02x", static_cast<unsigned>(sysex.GetInternalDataPtr()[i]));
    result += text;
  }
  return result;
}

inline std::string PrintNote(Vrae_NoteWithDurationEvent const & iNote) {
  return "note " + std::to_string(iNote.GetPitch()) + " +" +
         std::to_string(iNote.GetDuration().AsInt64()) + " on " +
         std::to_string(iNote.GetOnVelocity()) + " off " + std::to_string(iNote.GetOffVelocity());
}

inline std::string PrintEvent(Vrae_Event const & iEvent) {
  switch (iEvent.GetType()) {
  case Vrae_Event::kNoteWithDuration:
    return PrintNote(iEvent.AsNoteWithDuration());
  case Vrae_Event::kPitchBend:
    return "bend " + std::to_string(iEvent.AsPitchBend().GetBendValue());
  case Vrae_Event::kController:
    return "cc" + std::to_string(iEvent.AsController().GetControllerNumber()) + " " +
           std::to_string(iEvent.AsController().GetValue());
  case Vrae_Event::kProgram:
    return PrintProgram(iEvent.AsProgram());
  case Vrae_Event::kMonoPressure:
    return "mono " + std::to_string(iEvent.AsMonoPressure().GetPressure());
  case Vrae_Event::kPolyPressure:
    return "poly " + std::to_string(iEvent.AsPolyPressure().GetPitch()) + " " +
           std::to_string(iEvent.AsPolyPressure().GetPressure());
  case Vrae_Event::kShortSysex:
  case Vrae_Event::kLongSysex:
    return PrintSysex(iEvent);
  default:
    return "kind " + std::to_string(iEvent.GetType());
  }
}

/// The clip's events over all times, in retrieval order, one a line: tick, then the event.
inline std::vector<std::string> PrintClip(Vrad_Chunk const & iChunk) {
  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  iChunk.GetMidiEventsInRange(&wrapper, Time_TypedLength(), Time_Typed::MinTime(Time_eType_Ticks),
                              Time_Typed::MaxTime(Time_eType_Ticks), false, nullptr, nullptr,
                              kNoteOffInclusion_None);
  std::vector<std::string> result;
  for (Vrae_TimedEvent const & event : list) {
    result.push_back(std::to_string(event.mTime.AsInt64()) + ": " + PrintEvent(event.mEvent));
  }
  return result;
}

/// The clips of a file in their order: track and channel, -1 for none.
inline std::vector<std::string> PrintClips(Host_MidiFile const & iFile) {
  std::vector<std::string> result;
  for (Host_Clip const & clip : iFile.mClips) {
    result.push_back(std::to_string(clip.mTrack) + "/" + std::to_string(clip.mChannel));
  }
  return result;
}

/// What was not kept, a line each: count and name.
inline std::vector<std::string> PrintNotKept(Host_MidiFile const & iFile) {
  std::vector<std::string> result;
  for (Host_MidiReport::NotKept const & line : iFile.mReport.GetNotKept()) {
    result.push_back(std::to_string(line.mCount) + " " + line.mName);
  }
  return result;
}

inline std::vector<std::string> PrintProblems(Host_MidiFile const & iFile) {
  std::vector<std::string> result;
  for (Host_MidiReport::Problem const & problem : iFile.mReport.GetProblems()) {
    result.push_back(std::to_string(problem.mOffset) + ": " + problem.mText);
  }
  return result;
}

inline Host_MidiFile Read(Bytes const & iFile) {
  return Host_ReadMidiFile(std::span<unsigned char const>(iFile));
}

}  // namespace midi
