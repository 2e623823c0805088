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

/// What a clip is made of.
struct ClipKind {
  long long mShortestNote = 1;       // ticks
  bool mAreParametersWhole = false;  // all of their value at once
  int mNumInTicks = 1, mNumOf = 1;   // how many times of so many are in ticks, not in samples
  bool mHasLongNotes = false;        // most notes count as long, as does one that is made so
  bool mHasBanks = true;
};

constexpr int kPlainControllers[] = {1, 7, 10, 11, 64, 64, 66, 67, 69, 91};

/// The ticks from there to the end of a sample. Notes end with a sample, or within the one that
/// they begin in: of the rest of a sample a loop may begin in, a receiver hears nothing.
inline long long ToEndOfSample(long long iTick, int iNumSamples) {
  return iNumSamples * kTicksPerSample - iTick % kTicksPerSample;
}

inline bool IsInTicks(Chance & ioChance, ClipKind const & iKind) {
  return iKind.mNumInTicks == iKind.mNumOf || ioChance.Below(iKind.mNumOf) < iKind.mNumInTicks;
}

/// A note of one of a few pitches, so that they meet: most are short, some last for all of the
/// clip, some hardly at all.
inline Vrad_NoteWithDurationExtendedEvent RandomNote(Chance & ioChance, int iLength,
                                                     ClipKind const & iKind) {
  long long const start = ioChance.Below(iLength) * kTicksPerSample + ioChance.Below(2);
  long long duration = ToEndOfSample(start, ioChance.From(1, 400));
  if (ioChance.OneIn(10)) duration = ioChance.From(1, 38);
  if (ioChance.OneIn(20)) duration = ToEndOfSample(start, ioChance.From(1, iLength));
  if (duration < iKind.mShortestNote) duration = ToEndOfSample(start, 10);
  bool const isInTicks = IsInTicks(ioChance, iKind);
  Time_Typed const time = isInTicks ? Ticks(start) : Samples(start / kTicksPerSample);
  Time_TypedLength const length =
      isInTicks ? Time_TypedLength(Time_TickLength(duration))
                : Time_TypedLength(Time_SampleLength(1 + duration / kTicksPerSample));
  Vrae_NoteWithDurationEvent const note(static_cast<signed char>(ioChance.From(60, 67)), length,
                                        static_cast<signed char>(ioChance.From(1, 127)),
                                        static_cast<signed char>(ioChance.Below(128)));
  return Vrad_NoteWithDurationExtendedEvent(time, note, ioChance.OneIn(15));
}

/// The sample in either unit.
inline Time_Typed RandomTime(Chance & ioChance, long long iSample, ClipKind const & iKind) {
  return IsInTicks(ioChance, iKind) ? AtSample(iSample) : Samples(iSample);
}

inline Vrae_Event RandomValue(Chance & ioChance, ClipKind const & iKind) {
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
    program.SetProgramEnable(!iKind.mHasBanks || !ioChance.OneIn(4));
    program.SetMSBBankEnable(iKind.mHasBanks && ioChance.OneIn(3));
    program.SetLSBBankEnable(iKind.mHasBanks && ioChance.OneIn(3));
    return program;
  }
  default:
    return Vrae_ControllerEvent(
        static_cast<signed char>(kPlainControllers[ioChance.Below(std::size(kPlainControllers))]),
        ioChance.OneIn(3) ? 0 : value);
  }
}

/// Selects a parameter, sets it, then steps it a few times. Takes some samples, often none.
inline void AddParameter(Vrad_Chunk & ioChunk, Chance & ioChance, int iSample,
                         ClipKind const & iKind) {
  int const spread = iKind.mAreParametersWhole || ioChance.OneIn(2) ? 0 : 5;
  auto const add = [&](int iNumber, int iValue) {
    ioChunk.AddEvent(ControllerAt(RandomTime(ioChance, iSample, iKind), iNumber, iValue));
    iSample += spread;
  };
  bool const isRegistered = !ioChance.OneIn(3);
  add(isRegistered ? 101 : 99, 0);
  add(isRegistered ? 100 : 98, ioChance.Below(3));
  add(6, ioChance.Below(128));
  if (iKind.mAreParametersWhole || !ioChance.OneIn(3)) add(38, ioChance.Below(128));
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

inline void AddRandomValue(Vrad_Chunk & ioChunk, Chance & ioChance, int iLength,
                           ClipKind const & iKind) {
  Time_Typed const time = RandomTime(ioChance, ioChance.Below(iLength), iKind);
  ioChunk.AddEvent(Vrad_ExtendedEvent(time, RandomValue(ioChance, iKind)));
}

inline void AddRandomSysex(Vrad_Chunk & ioChunk, Chance & ioChance, int iLength,
                           ClipKind const & iKind) {
  Time_Typed const time = RandomTime(ioChance, ioChance.Below(iLength), iKind);
  ioChunk.AddEvent(SysexAt(time, ioChance.Below(128)));
}

inline void FillAtRandom(Vrad_Chunk & ioChunk, Chance & ioChance, int iLength,
                         ClipKind const & iKind = ClipKind()) {
  if (iKind.mHasLongNotes) {
    ioChunk.GetNoteList()->SetLongNoteDuration(Time_TickLength(100 * kTicksPerSample));
    ioChunk.GetNoteList()->SetLongNoteDuration(Time_SampleLength(100));
  }
  for (int i = 0; i < iLength / 40; ++i)
    ioChunk.AddEvent(RandomNote(ioChance, iLength, iKind));
  for (int i = 0; i < iLength / 60; ++i)
    AddRandomValue(ioChunk, ioChance, iLength, iKind);
  for (int i = 0; i < iLength / 2000; ++i)
    AddParameter(ioChunk, ioChance, i * 2000 + ioChance.Below(1900), iKind);
  for (int i = 0; i < iLength / 3000; ++i)
    AddRandomSysex(ioChunk, ioChance, iLength, iKind);
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
                         ClipKind const & iKind = ClipKind()) {
  Vrad_NoteListBase_Note note;
  int const what = ioChance.Below(4);
  if (what == 0) {
    ioChunk.AddEvent(RandomNote(ioChance, iLength, iKind));
  } else if (what == 1) {
    AddRandomValue(ioChunk, ioChance, iLength, iKind);
  } else if (FindNote(ioChunk, ioChance, iLength, note)) {
    if (what == 2) {
      ioChunk.EraseEvent(Vrae_TimedEvent(note.mTime, note.mEvent));
    } else {
      Vrae_NoteWithDurationEvent changed = note.mEvent;
      int const length = ioChance.From(10, 500);
      if (note.mTime.GetType() == Time_eType_Samples)
        changed.SetDuration(Time_SampleLength(length));
      else
        changed.SetDuration(Time_TickLength(ToEndOfSample(note.mTime.AsInt64(), length)));
      ioChunk.GetNoteList()->ChangeNote(note.mTime, note.mEvent, changed);
    }
  }
}
