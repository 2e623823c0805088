// Short ways to make notes and to print lists of them: "60@0+480 | 62@480+1", with an "s" behind
// counts of samples.
#pragma once

#include <string>
#include <vector>

#include "vrad/vrad_notelist.h"

inline Time_Typed TickTime(long long iTicks) {
  return Time_Typed(Time_Tick(iTicks));
}
inline Time_Typed SampleTime(long long iSamples) {
  return Time_Typed(Time_Sample(iSamples));
}
inline Time_TypedLength TickLength(long long iTicks) {
  return Time_TypedLength(Time_TickLength(iTicks));
}
inline Time_TypedLength SampleLength(long long iSamples) {
  return Time_TypedLength(Time_SampleLength(iSamples));
}

inline Vrae_NoteWithDurationEvent NoteEvent(int iPitch, Time_TypedLength iDuration,
                                            int iOnVelocity = 80) {
  return Vrae_NoteWithDurationEvent(static_cast<signed char>(iPitch), iDuration,
                                    static_cast<signed char>(iOnVelocity), 64);
}
inline Vrae_NoteWithDurationEvent NoteEvent(int iPitch, long long iTicks, int iOnVelocity = 80) {
  return NoteEvent(iPitch, TickLength(iTicks), iOnVelocity);
}
inline Vrad_NoteListBase_Note StoredNote(int iPitch, long long iTick, long long iTicks,
                                         int iOnVelocity = 80) {
  return Vrad_NoteListBase_Note(TickTime(iTick), NoteEvent(iPitch, iTicks, iOnVelocity));
}
inline Vrae_TimedEvent TimedNote(int iPitch, long long iTick, long long iTicks,
                                 int iOnVelocity = 80) {
  return Vrae_TimedEvent(TickTime(iTick), NoteEvent(iPitch, iTicks, iOnVelocity));
}

/// Adds a plain note of on velocity 80.
inline void AddNote(Vrad_NoteListBase & ioList, int iPitch, long long iTick, long long iTicks) {
  ioList.AddNote(StoredNote(iPitch, iTick, iTicks));
}

struct PlainNote {
  int mPitch;
  long long mTick;
  long long mTicks;
};
inline void AddNotes(Vrad_NoteListBase & ioList, std::vector<PlainNote> const & iNotes) {
  for (PlainNote const & note : iNotes)
    AddNote(ioList, note.mPitch, note.mTick, note.mTicks);
}

inline std::string PrintCount(long long iCount, Time_EType iType) {
  return std::to_string(iCount) + (iType == Time_eType_Samples ? "s" : "");
}
inline std::string Print(Time_Typed iTime) {
  return PrintCount(iTime.AsInt64(), iTime.GetType());
}
inline std::string Print(Vrad_NoteListBase_Note const & iNote) {
  Time_TypedLength const duration = iNote.mEvent.GetDuration();
  return std::to_string(iNote.mEvent.GetPitch()) + "@" + Print(iNote.mTime) + "+" +
         PrintCount(duration.AsInt64(), duration.GetType());
}

/// Prints what an iterator over stored notes still has.
template <class TIterator>
std::string PrintRest(TIterator iIter) {
  std::string result;
  for (; iIter.IsMore(); ++iIter)
    result += (result.empty() ? "" : " | ") + Print(*iIter);
  return result;
}
inline std::string Print(Vrad_NoteListBase & iList) {
  return PrintRest(Vrad_NoteListBase::FullNotesInRangeIter(&iList));
}
inline std::string PrintLongNotes(Vrad_NoteListBase const & iList) {
  return iList.GetLongNoteList() ? Print(*iList.GetLongNoteList()) : "none";
}
