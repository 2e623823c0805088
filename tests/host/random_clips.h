// Clips, edits and numbers by chance, the same ones each time.
#pragma once

#include <algorithm>
#include <random>

#include "player_rig.h"

/// The same numbers on every system.
class Chance {
public:
  explicit Chance(unsigned iSeed) : mEngine(iSeed) {}

  /// 0 to iNum - 1.
  int Below(long long iNum) {
    return static_cast<int>(mEngine() % static_cast<unsigned long>(iNum));
  }
  int From(int iFirst, int iLast) { return iFirst + Below(iLast - iFirst + 1); }
  bool OneIn(int iNum) { return Below(iNum) == 0; }

private:
  std::mt19937 mEngine;
};

constexpr int kPlainControllers[] = {1, 7, 10, 11, 64, 64, 66, 67, 69, 91};

/// The ticks from there to the end of a sample. Notes end with a sample, or within the one that
/// they begin in: of the rest of a sample a loop may begin in, a receiver hears nothing.
inline long long ToEndOfSample(long long iTick, int iNumSamples) {
  return iNumSamples * kTicksPerSample - iTick % kTicksPerSample;
}

/// A note of one of a few pitches, so that they meet: most are short, some last for all of the
/// clip, some hardly at all. `iShortest`: ticks.
inline Vrad_NoteWithDurationExtendedEvent RandomNote(Chance & ioChance, int iLength,
                                                     long long iShortest) {
  long long const start = ioChance.Below(iLength) * kTicksPerSample + ioChance.Below(2);
  long long duration = ToEndOfSample(start, ioChance.From(1, 400));
  if (ioChance.OneIn(10)) duration = ioChance.From(1, 38);
  if (ioChance.OneIn(20)) duration = ToEndOfSample(start, ioChance.From(1, iLength));
  if (duration < iShortest) duration = ToEndOfSample(start, 10);
  Vrae_NoteWithDurationEvent const note(static_cast<signed char>(ioChance.From(60, 67)),
                                        Time_TickLength(duration),
                                        static_cast<signed char>(ioChance.From(1, 127)),
                                        static_cast<signed char>(ioChance.Below(128)));
  return Vrad_NoteWithDurationExtendedEvent(Ticks(start), note, ioChance.OneIn(15));
}

inline Vrae_Event RandomValue(Chance & ioChance) {
  signed char const value = static_cast<signed char>(ioChance.Below(128));
  signed char const pitch = static_cast<signed char>(ioChance.From(60, 67));
  switch (ioChance.Below(8)) {
  case 0:
    return Vrae_PitchBendEvent(static_cast<short>(ioChance.From(-8192, 8191)));
  case 1:
    return Vrae_MonoPressureEvent(value);
  case 2:
    return Vrae_PolyPressureEvent(pitch, value);
  case 3: {
    Vrae_ProgramEvent program(value, static_cast<short>(ioChance.Below(16384)));
    program.SetProgramEnable(!ioChance.OneIn(4));
    program.SetMSBBankEnable(ioChance.OneIn(3));
    program.SetLSBBankEnable(ioChance.OneIn(3));
    return program;
  }
  default:
    return Vrae_ControllerEvent(
        static_cast<signed char>(kPlainControllers[ioChance.Below(std::size(kPlainControllers))]),
        ioChance.OneIn(3) ? 0 : value);
  }
}

/// Selects a parameter, sets it, then steps it a few times. Takes some samples, often none. Whole:
/// all of its value at once.
inline void AddParameter(Vrad_Chunk & ioChunk, Chance & ioChance, int iSample, bool iIsWhole) {
  int const spread = iIsWhole || ioChance.OneIn(2) ? 0 : 5;
  auto const add = [&](int iNumber, int iValue) {
    AddController(ioChunk, iSample, iNumber, iValue);
    iSample += spread;
  };
  bool const isRegistered = !ioChance.OneIn(3);
  add(isRegistered ? 101 : 99, 0);
  add(isRegistered ? 100 : 98, ioChance.Below(3));
  add(6, ioChance.Below(128));
  if (iIsWhole || !ioChance.OneIn(3)) add(38, ioChance.Below(128));
  for (int i = ioChance.Below(3); i > 0; --i) {
    iSample += 1;
    add(ioChance.From(96, 97), 0);
  }
  iSample += 1;
  if (ioChance.OneIn(4)) {
    add(isRegistered ? 101 : 99, 127);
    add(isRegistered ? 100 : 98, 127);
  }
}

inline void FillAtRandom(Vrad_Chunk & ioChunk, Chance & ioChance, int iLength,
                         long long iShortest = 1, bool iAreParametersWhole = false) {
  for (int i = 0; i < iLength / 40; ++i)
    ioChunk.AddEvent(RandomNote(ioChance, iLength, iShortest));
  for (int i = 0; i < iLength / 60; ++i)
    AddEvent(ioChunk, ioChance.Below(iLength), RandomValue(ioChance));
  for (int i = 0; i < iLength / 2000; ++i)
    AddParameter(ioChunk, ioChance, i * 2000 + ioChance.Below(1900), iAreParametersWhole);
  for (int i = 0; i < iLength / 3000; ++i)
    ioChunk.AddEvent(SysexAt(AtSample(ioChance.Below(iLength)), ioChance.Below(128)));
}

/// A note of the clip, by chance. False if it has none.
inline bool FindNote(Vrad_Chunk & ioChunk, Chance & ioChance, int iLength,
                     Vrad_NoteListBase_Note & oNote) {
  Vrad_NoteListBase::FullNotesInRangeIter iter(ioChunk.GetNoteList(),
                                               AtSample(ioChance.Below(iLength)),
                                               Time_Typed::MaxTime(Time_eType_Ticks));
  if (!iter.IsMore()) return false;
  oNote = *iter;
  return true;
}

/// Adds, takes away or changes a note, or adds a value.
inline void EditAtRandom(Vrad_Chunk & ioChunk, Chance & ioChance, int iLength,
                         long long iShortest = 1) {
  Vrad_NoteListBase_Note note;
  int const what = ioChance.Below(4);
  if (what == 0) {
    ioChunk.AddEvent(RandomNote(ioChance, iLength, iShortest));
  } else if (what == 1) {
    AddEvent(ioChunk, ioChance.Below(iLength), RandomValue(ioChance));
  } else if (FindNote(ioChunk, ioChance, iLength, note)) {
    if (what == 2) {
      ioChunk.EraseEvent(Vrae_TimedEvent(note.mTime, note.mEvent));
    } else {
      Vrae_NoteWithDurationEvent changed = note.mEvent;
      changed.SetDuration(
          Time_TickLength(ToEndOfSample(note.mTime.AsInt64(), ioChance.From(10, 500))));
      ioChunk.GetNoteList()->ChangeNote(note.mTime, note.mEvent, changed);
    }
  }
}
