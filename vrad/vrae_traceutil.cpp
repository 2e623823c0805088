#include "vrad/vrae_traceutil.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <string>

#include "cmn/cmn_assert.h"
#include "foundation/lumtrace.h"
#include "vrad/vrae_trackstate.h"

namespace {

constexpr size_t kLineSize = 200;
constexpr unsigned kTraceFacility = 0x4000e0f;
constexpr char kIncompleteMark[] = " INCOMPLETE";

std::string Call(char const * iName, std::initializer_list<int> iArguments,
                 char const * iSeparator = ", ") {
  std::string text = iName;
  char const * before = "(";
  for (int const argument : iArguments) {
    text += before + std::to_string(argument);
    before = iSeparator;
  }
  return text + ")";
}

std::string NoteText(Vrae_NoteWithDurationEvent const & iNote) {
  Time_TypedLength const duration = iNote.GetDuration();
  return "NoteWithDuration(p: " + std::to_string(iNote.GetPitch()) +
         ", d: " + std::to_string(duration.AsInt64()) +
         (duration.GetType() == Time_eType_Ticks ? "t" : "s") +
         ", on: " + std::to_string(iNote.GetOnVelocity()) +
         ", off: " + std::to_string(iNote.GetOffVelocity()) + ")";
}

std::string ProgramText(Vrae_ProgramEvent const & iProgram) {
  return "Program(" + std::to_string(iProgram.GetProgram()) + ", bank " +
         std::to_string(iProgram.GetBank()) + (iProgram.IsLSBBankEnabled() ? " LSB" : "") +
         (iProgram.IsMSBBankEnabled() ? " MSB" : "") + ")";
}

void AppendByte(std::string & ioText, Vrae_SysexPacketEvent const & iPacket, int iIndex) {
  unsigned char byte = 0;
  iPacket.GetData(&byte, iIndex, iIndex + 1);
  char hex[4];
  std::snprintf(hex, sizeof hex, " %02x", static_cast<unsigned>(byte));
  ioText += hex;
}

// The head of the message and, if there is no room for all of it, its last four bytes. `ioRoom` is
// the usable length; a mark for an incomplete message takes its own length off it.
std::string SysexText(Vrae_SysexPacketEvent const & iPacket, long long & ioRoom) {
  std::string text = "Sysex -";
  auto const length = [&text] { return static_cast<long long>(text.size()); };
  if (!iPacket.IsComplete()) {
    text += kIncompleteMark;
    ioRoom -= static_cast<long long>(sizeof kIncompleteMark - 1);
  }
  int const numBytes = iPacket.GetLength();
  int index = 0;
  for (; index < numBytes && length() <= ioRoom - 26; ++index)
    AppendByte(text, iPacket, index);
  if (index >= numBytes) return text;
  if (length() < ioRoom - 5) text += " ...";
  if (length() < ioRoom - 14) {
    for (index = std::max(0, numBytes - 4); index < numBytes; ++index)
      AppendByte(text, iPacket, index);
  }
  return text;
}

std::string EventText(Vrae_Event const & iEvent, long long & ioRoom) {
  switch (iEvent.GetType()) {
  case Vrae_Event::kNoteOn:
    return Call("NoteOn", {iEvent.AsNoteOn().GetPitch(), iEvent.AsNoteOn().GetVelocity()});
  case Vrae_Event::kNoteOff:
    return Call("NoteOff", {iEvent.AsNoteOff().GetPitch(), iEvent.AsNoteOff().GetVelocity()});
  case Vrae_Event::kNoteWithDuration:
    return NoteText(iEvent.AsNoteWithDuration());
  case Vrae_Event::kPitchBend:
    return Call("PitchBend", {iEvent.AsPitchBend().GetBendValue()});
  case Vrae_Event::kController:
    return Call("Controller",
                {iEvent.AsController().GetControllerNumber(), iEvent.AsController().GetValue()},
                ": ");
  case Vrae_Event::kProgram:
    return ProgramText(iEvent.AsProgram());
  case Vrae_Event::kMonoPressure:
    return Call("MonoPressure", {iEvent.AsMonoPressure().GetPressure()});
  case Vrae_Event::kPolyPressure:
    return Call("PolyPressure",
                {iEvent.AsPolyPressure().GetPitch(), iEvent.AsPolyPressure().GetPressure()}, ": ");
  case Vrae_Event::kSongPosition:
    return Call("Song Position", {iEvent.AsSongPosition().GetPosition()});
  case Vrae_Event::kStart:
    return "Start";
  case Vrae_Event::kContinue:
    return "Continue";
  case Vrae_Event::kStop:
    return "Stop";
  case Vrae_Event::kTimingClock:
    return "TimingClock";
  case Vrae_Event::kShortSysex:
  case Vrae_Event::kLongSysex:
  case Vrae_Event::kSysexPacket:
    return SysexText(iEvent.AsSysexPacket(), ioRoom);
  default:
    return Call("UnknownEvent", {iEvent.GetType()});
  }
}

void Deliver(char * oBuffer, size_t iSize, std::string const & iText, long long iRoom) {
  CMN_CHECK(static_cast<long long>(iText.size()) < iRoom, "strlen(buf) < inLen");
  if (iSize == 0) return;
  oBuffer[iSize - 1] = 0;
  size_t const numKept = std::min(iText.size(), iSize - 1);
  std::memcpy(oBuffer, iText.data(), numKept);
  oBuffer[numKept] = 0;
}

}  // namespace

Vra_AppCallback * Vrae_TraceUtil::sCallback = nullptr;

void Vrae_TraceUtil::FormatMidiEvent(char * oBuffer, size_t iSize, Vrae_Event const & iEvent) {
  long long room = static_cast<long long>(iSize);
  std::string const text = EventText(iEvent, room);
  Deliver(oBuffer, iSize, text, room);
}

void Vrae_TraceUtil::FormatTimedMidiEvent(char * oBuffer, size_t iSize,
                                          Vrae_TimedEvent const & iEvent) {
  std::string const prefix = "<sample: " + std::to_string(iEvent.mTime.AsInt64()) + "> ";
  long long const wholeRoom = static_cast<long long>(iSize);
  long long room = wholeRoom - static_cast<long long>(prefix.size());
  std::string const text = EventText(iEvent.mEvent, room);
  // Both together are checked against the whole buffer, without the deduction for a mark.
  Deliver(oBuffer, iSize, prefix + text, wholeRoom);
}

void Vrae_TraceUtil::FormatMidiTimestamp(char * oBuffer, size_t iSize, long long iMicroseconds,
                                         Time_Sample iSample) {
  std::snprintf(oBuffer, iSize, "[%d.%d.%d, %lld]", static_cast<int>(iMicroseconds / 1000000 % 10),
                static_cast<int>(iMicroseconds / 1000 % 1000),
                static_cast<int>(iMicroseconds / 100 % 10), iSample.AsInt64());
}

void Vrae_TraceUtil::PrintMidiEvent(Vrae_Event const & iEvent, std::ostream & oStream) {
  char line[kLineSize];
  FormatMidiEvent(line, sizeof line, iEvent);
  oStream << line;
}

void Vrae_TraceUtil::PrintTimedEventList(Vrae_TimedEventList * iListP, std::ostream & oStream) {
  for (Vrae_TimedEvent const & event : *iListP) {
    oStream << event.mTime.AsInt64() << (event.mTime.GetType() == Time_eType_Ticks ? "t  " : "s  ");
    PrintMidiEvent(event.mEvent, oStream);
    oStream << '\n';
  }
}

void Vrae_TraceUtil::PrintTrackState(Vrae_TrackState * iStateP, std::ostream & oStream) {
  oStream << "Begin Vrae_TrackState:\n";
  for (Vrae_NoteInProgress const * nip = iStateP->NextNoteOff(); nip != nullptr; nip = nip->mNextP)
    oStream << "\t(" << int(nip->mPitch) << ", " << int(nip->mOnVelocity) << ", "
            << int(nip->mOffVelocity) << ", " << nip->mReleaseTime.AsInt64() << ")\n";
}

void Vrae_TraceUtil::TraceMidiEventList(Vrae_TimedEventList * iListP) {
  if (!gLumTraceActive || LumTracePuts == nullptr) return;
  if (LumTraceIsActiveFunc != nullptr && !LumTraceIsActiveFunc(kTraceFacility)) return;
  for (Vrae_TimedEvent const & event : *iListP) {
    char line[kLineSize];
    FormatMidiEvent(line, sizeof line, event.mEvent);
    LumTracePuts(kTraceFacility, line);
  }
}

void Vrae_TraceUtil::SetCallback(Vra_AppCallback * iCallbackP) {
  sCallback = iCallbackP;
}
