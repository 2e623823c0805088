#include "tools/vrad/tool_event.h"

#include <algorithm>
#include <array>

namespace {

std::span<unsigned char const> GetContents(Vrae_Event const & iEvent) {
  Vrae_SysexEvent const & sysex = iEvent.AsSysex();
  return {sysex.GetInternalDataPtr(), static_cast<size_t>(sysex.GetLength())};
}

char const * GetKindName(Vrae_Event const & iEvent) {
  constexpr std::array<char const *, 24> kNames = {"NoEvent",
                                                   "NoteOn",
                                                   "NoteOff",
                                                   "NoteWithDuration",
                                                   "PitchBend",
                                                   "Controller",
                                                   "Program",
                                                   "MonoPressure",
                                                   "PolyPressure",
                                                   "SongPosition",
                                                   "Start",
                                                   "Continue",
                                                   "Stop",
                                                   "TimingClock",
                                                   "ShortSysex",
                                                   "LongSysex",
                                                   "SysexPacket",
                                                   "ClearNoteInProgress",
                                                   "AddNoteInProgress",
                                                   "ReleaseController",
                                                   "AllNotesOff",
                                                   "QuarterFrame",
                                                   "PitchToMIDINoteWithDuration",
                                                   "ClipEvent"};
  size_t const kind = static_cast<size_t>(iEvent.GetType());
  return kind < kNames.size() ? kNames[kind] : "Unknown";
}

void PrintProgramFields(Tool_Output & ioOut, Vrae_ProgramEvent const & iProgram) {
  if (iProgram.IsProgramEnabled()) ioOut.Print(",\"program\":{}", iProgram.GetProgram());
  if (iProgram.IsMSBBankEnabled()) ioOut.Print(",\"bank_msb\":{}", iProgram.GetMSBBank());
  if (iProgram.IsLSBBankEnabled()) ioOut.Print(",\"bank_lsb\":{}", iProgram.GetLSBBank());
}

void PrintNoteFields(Tool_Output & ioOut, Vrae_NoteWithDurationEvent const & iNote) {
  Time_TypedLength const duration = iNote.GetDuration();
  ioOut.Print(",\"pitch\":{},\"duration\":{},\"duration_unit\":\"{}\",\"on\":{},\"off\":{}",
              iNote.GetPitch(), duration.AsInt64(), Tool_GetUnit(duration.GetType()),
              iNote.GetOnVelocity(), iNote.GetOffVelocity());
}

// Only kinds that a chunk can hold, and those that turn one state into another, have fields here.
void PrintFields(Tool_Output & ioOut, Vrae_Event const & iEvent) {
  switch (iEvent.GetType()) {
  case Vrae_Event::kNoteOn:
    ioOut.Print(",\"pitch\":{},\"velocity\":{}", iEvent.AsNoteOn().GetPitch(),
                iEvent.AsNoteOn().GetVelocity());
    break;
  case Vrae_Event::kNoteOff:
    ioOut.Print(",\"pitch\":{},\"velocity\":{}", iEvent.AsNoteOff().GetPitch(),
                iEvent.AsNoteOff().GetVelocity());
    break;
  case Vrae_Event::kNoteWithDuration:
  case Vrae_Event::kPitchToMIDINoteWithDuration:
    PrintNoteFields(ioOut, iEvent.AsNoteWithDuration());
    break;
  case Vrae_Event::kPitchBend:
    ioOut.Print(",\"bend\":{}", iEvent.AsPitchBend().GetBendValue());
    break;
  case Vrae_Event::kController:
    ioOut.Print(",\"number\":{},\"value\":{}", iEvent.AsController().GetControllerNumber(),
                iEvent.AsController().GetValue());
    break;
  case Vrae_Event::kProgram:
    PrintProgramFields(ioOut, iEvent.AsProgram());
    break;
  case Vrae_Event::kMonoPressure:
    ioOut.Print(",\"pressure\":{}", iEvent.AsMonoPressure().GetPressure());
    break;
  case Vrae_Event::kPolyPressure:
    ioOut.Print(",\"pitch\":{},\"pressure\":{}", iEvent.AsPolyPressure().GetPitch(),
                iEvent.AsPolyPressure().GetPressure());
    break;
  case Vrae_Event::kShortSysex:
  case Vrae_Event::kLongSysex:
    ioOut.Print(",\"data\":\"");
    Tool_PrintBytes(ioOut, GetContents(iEvent), GetContents(iEvent).size());
    ioOut.Print("\"");
    break;
  default:
    break;
  }
}

void DescribeNote(Tool_Output & ioOut, Vrae_NoteWithDurationEvent const & iNote) {
  Time_TypedLength const duration = iNote.GetDuration();
  ioOut.Print("note        {:<7}  for {}{}, velocity {}, release {}",
              Tool_FormatPitch(iNote.GetPitch()), duration.AsInt64(),
              Tool_GetUnit(duration.GetType()), iNote.GetOnVelocity(), iNote.GetOffVelocity());
}

void DescribeProgram(Tool_Output & ioOut, Vrae_ProgramEvent const & iProgram) {
  ioOut.Print("program     ");
  bool const hasBank = iProgram.IsMSBBankEnabled() || iProgram.IsLSBBankEnabled();
  std::string const program =
      iProgram.IsProgramEnabled() ? std::to_string(iProgram.GetProgram()) : "-";
  ioOut.Print("{:<{}}", program, hasBank ? 7 : 0);
  if (iProgram.IsMSBBankEnabled()) ioOut.Print("  bank MSB {}", iProgram.GetMSBBank());
  if (iProgram.IsLSBBankEnabled()) ioOut.Print("  bank LSB {}", iProgram.GetLSBBank());
}

void DescribeSysex(Tool_Output & ioOut, Vrae_Event const & iEvent) {
  constexpr size_t kMaxBytes = 16;
  size_t const size = GetContents(iEvent).size();
  ioOut.Print("sysex       {} bytes: ", size);
  Tool_PrintBytes(ioOut, GetContents(iEvent), kMaxBytes);
  if (size > kMaxBytes) ioOut.Print(" ...");
}

}  // namespace

void Tool_PrintSourceAsJSON(Tool_Output & ioOut, Tool_EventSource const & iSource,
                            Time_Typed iTime) {
  ioOut.Print("{{\"clip\":{},\"track\":{},\"channel\":", iSource.mClip, iSource.mTrack);
  if (iSource.mChannel < 0) {
    ioOut.Print("null");
  } else {
    ioOut.Print("{}", iSource.mChannel);
  }
  ioOut.Print(",\"time\":{},\"unit\":\"{}\"", iTime.AsInt64(), Tool_GetUnit(iTime.GetType()));
}

std::string Tool_FormatPitch(int iPitch) {
  constexpr std::array<char const *, 12> kNames = {"C",  "C#", "D",  "D#", "E",  "F",
                                                   "F#", "G",  "G#", "A",  "A#", "B"};
  return fmt::format("{} {}{}", iPitch, kNames[static_cast<size_t>(iPitch % 12)], iPitch / 12 - 1);
}

void Tool_PrintBytes(Tool_Output & ioOut, std::span<unsigned char const> iBytes, size_t iMaxBytes) {
  char const * between = "";
  for (unsigned char byte : iBytes.first(std::min(iMaxBytes, iBytes.size()))) {
    ioOut.Print("{}{:02x}", between, byte);
    between = " ";
  }
}

char const * Tool_GetUnit(Time_EType iType) {
  return iType == Time_eType_Ticks ? "t" : "s";
}

std::string Tool_FormatBar(Host_BarMap const & iBars, Time_Typed iTime) {
  Time_Tick const tick = iTime.AsTick();
  if (tick.AsInt64() < 0) return "-";
  Host_BarPosition const bar = iBars.ToBar(tick);
  return fmt::format("{}:{}:{:06}", bar.mBar, bar.mBeat, bar.mTick);
}

void Tool_DescribeEvent(Tool_Output & ioOut, Vrae_Event const & iEvent) {
  switch (iEvent.GetType()) {
  case Vrae_Event::kNoEvent:
    ioOut.Print("marker      note-off");
    break;
  case Vrae_Event::kNoteOn:
    ioOut.Print("note on     {:<7}  velocity {}", Tool_FormatPitch(iEvent.AsNoteOn().GetPitch()),
                iEvent.AsNoteOn().GetVelocity());
    break;
  case Vrae_Event::kNoteOff:
    ioOut.Print("note off    {:<7}  velocity {}", Tool_FormatPitch(iEvent.AsNoteOff().GetPitch()),
                iEvent.AsNoteOff().GetVelocity());
    break;
  case Vrae_Event::kNoteWithDuration:
  case Vrae_Event::kPitchToMIDINoteWithDuration:
    DescribeNote(ioOut, iEvent.AsNoteWithDuration());
    break;
  case Vrae_Event::kPitchBend:
    ioOut.Print("bend        {:+}", iEvent.AsPitchBend().GetBendValue());
    break;
  case Vrae_Event::kController:
    ioOut.Print("cc{:<9} {}", iEvent.AsController().GetControllerNumber(),
                iEvent.AsController().GetValue());
    break;
  case Vrae_Event::kProgram:
    DescribeProgram(ioOut, iEvent.AsProgram());
    break;
  case Vrae_Event::kMonoPressure:
    ioOut.Print("pressure    {}", iEvent.AsMonoPressure().GetPressure());
    break;
  case Vrae_Event::kPolyPressure:
    ioOut.Print("pressure    {:<7}  {}", Tool_FormatPitch(iEvent.AsPolyPressure().GetPitch()),
                iEvent.AsPolyPressure().GetPressure());
    break;
  case Vrae_Event::kShortSysex:
  case Vrae_Event::kLongSysex:
    DescribeSysex(ioOut, iEvent);
    break;
  default:
    ioOut.Print("{}", GetKindName(iEvent));
    break;
  }
}

void Tool_PrintEventAsJSON(Tool_Output & ioOut, Tool_EventSource const & iSource,
                           Tool_RetrievedEvent const & iEvent) {
  Tool_PrintSourceAsJSON(ioOut, iSource, iEvent.mTime);
  ioOut.Print(",\"kind\":{},\"name\":\"{}\"", iEvent.mEvent.GetType(), GetKindName(iEvent.mEvent));
  PrintFields(ioOut, iEvent.mEvent);
  if (iEvent.mIsDisplayItem) {
    ioOut.Print(",\"muted\":{},\"tag\":{}", iEvent.mIsMuted, iEvent.mTag);
  }
  ioOut.Print("}}\n");
}

void Tool_PrintPlace(Tool_Output & ioOut, Host_BarMap const & iBars, Time_Typed iTime) {
  ioOut.Print("{:>14} {:>14}{}  ", Tool_FormatBar(iBars, iTime), iTime.AsInt64(),
              Tool_GetUnit(iTime.GetType()));
}

void Tool_PrintEventAsText(Tool_Output & ioOut, Host_BarMap const & iBars,
                           Tool_RetrievedEvent const & iEvent) {
  Tool_PrintPlace(ioOut, iBars, iEvent.mTime);
  Tool_DescribeEvent(ioOut, iEvent.mEvent);
  if (iEvent.mIsMuted) ioOut.Print(", muted");
  ioOut.Print("\n");
}
