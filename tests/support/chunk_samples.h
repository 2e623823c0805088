// Events for tests of chunks, and what retrievals gave, in print.
#pragma once

#include <sstream>
#include <string>

#include "ndo/ndo_ptr.h"
#include "vrad/vrad_chunk.h"
#include "vrad/vrae_event.h"

/// Owns a chunk as a host does.
typedef Ndo_AutoPtr<Vrad_Chunk> ChunkPtr;

inline ChunkPtr MakeChunk(Ndo_Object::EUndoFlag iFlag = Ndo_Object::kNotUndoable,
                          bool iQuantizeContents = false) {
  return ChunkPtr(Vrad_Chunk::New(iFlag, iQuantizeContents));
}

inline Time_Typed Ticks(long long iCount) {
  return Time_Typed(iCount, Time_eType_Ticks);
}
inline Time_Typed Samples(long long iCount) {
  return Time_Typed(iCount, Time_eType_Samples);
}

inline Vrad_NoteWithDurationExtendedEvent NoteAt(Time_Typed iTime, int iPitch,
                                                 long long iDuration = 480, bool iMuted = false) {
  return Vrad_NoteWithDurationExtendedEvent(
      iTime,
      Vrae_NoteWithDurationEvent(static_cast<signed char>(iPitch),
                                 Time_TypedLength(iDuration, iTime.GetType()), 100, 64),
      iMuted);
}
inline Vrad_ExtendedEvent ControllerAt(Time_Typed iTime, int iNumber, int iValue) {
  return Vrad_ExtendedEvent(iTime, Vrae_ControllerEvent(static_cast<signed char>(iNumber),
                                                        static_cast<signed char>(iValue)));
}
inline Vrad_ExtendedEvent BendAt(Time_Typed iTime, int iBend) {
  return Vrad_ExtendedEvent(iTime, Vrae_PitchBendEvent(static_cast<short>(iBend)));
}
/// Its contents are one byte.
inline Vrad_ExtendedEvent SysexAt(Time_Typed iTime, int iByte) {
  unsigned char const byte = static_cast<unsigned char>(iByte);
  return Vrad_ExtendedEvent(iTime, Vrae_SysexEvent(1, &byte));
}

inline std::string Print(Time_Typed iTime) {
  std::ostringstream text;
  text << iTime.AsInt64() << (iTime.GetType() == Time_eType_Ticks ? "t" : "s");
  return text.str();
}

/// "n60@0t+480t", "c7=90@10t", "x5@20t"; "-@30t" is a marker.
inline std::string Print(Vrae_TimedEvent const & iEvent) {
  std::ostringstream text;
  auto const & u = iEvent.mEvent.mU;
  switch (u.mBase.mType) {
  case Vrae_Event::kNoEvent:
    text << "-";
    break;
  case Vrae_Event::kNoteWithDuration:
    text << "n" << int(u.mNoteWithDuration.mPitch);
    break;
  case Vrae_Event::kPitchToMIDINoteWithDuration:
    text << "f" << int(u.mNoteWithDuration.mPitch);
    break;
  case Vrae_Event::kPitchBend:
    text << "b" << u.mPitchBend.mBend;
    break;
  case Vrae_Event::kController:
    text << "c" << int(u.mController.mControllerNumber) << "=" << int(u.mController.mValue);
    break;
  case Vrae_Event::kShortSysex:
    text << "x" << int(u.mShortSysex.mData[0]);
    break;
  default:
    text << "kind" << int(u.mBase.mType);
    break;
  }
  text << "@" << Print(iEvent.mTime);
  if (iEvent.IsNoteWithDurationEvent()) {
    Time_TypedLength const length = iEvent.GetDuration();
    text << "+" << Print(Time_Typed(length.AsInt64(), length.GetType()));
  }
  return text.str();
}

template <class TList>
std::string PrintList(TList const & iEvents) {
  std::string text;
  for (auto const & event : iEvents)
    text += (text.empty() ? "" : " | ") + Print(event);
  return text;
}

/// Everything that the chunk holds, store after store, in stored times.
inline std::string PrintContents(Vrad_Chunk const & iChunk) {
  Vrad_Chunk & chunk = const_cast<Vrad_Chunk &>(iChunk);
  std::string text = "notes";
  for (Vrad_NoteListBase::FullNotesInRangeIter iter(chunk.GetNoteList()); iter.IsMore(); ++iter)
    text += " " + Print(Vrae_TimedEvent((*iter).mTime, (*iter).mEvent));
  for (auto const & streamP : iChunk.GetContinuousList()) {
    text += " / stream " + std::to_string(streamP->GetSubStream().GetIndex());
    for (Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(streamP.Get()); iter.IsMore(); ++iter)
      text += " " + Print(*iter);
  }
  text += " / misc";
  for (Vrad_EventStreamTimedEventsInRangeIter iter(chunk.GetEventStream()); iter.IsMore(); ++iter)
    text += " " + Print(*iter);
  return text;
}
