// Stores of continuous values and of events as one line, and what tests of shifting edits set.
#pragma once

#include <string>

#include "cmn/cmn_assert.h"
#include "foundation/time_typed.h"
#include "ndo/ndo_manager.h"
#include "ndo/ndo_object.h"
#include "support/tick_times_matter.h"
#include "vrad/vrad_continuousdata.h"
#include "vrad/vrad_extendedeventlist.h"
#include "vrad/vrae_timedevent.h"

inline Time_Typed Tick(long long iCount) {
  return Time_Typed(iCount, Time_eType_Ticks);
}
inline Time_Typed Sample(long long iCount) {
  return Time_Typed(iCount, Time_eType_Samples);
}
inline Time_TypedLength Ticks(long long iCount) {
  return Time_TypedLength(iCount, Time_eType_Ticks);
}
inline Time_TypedLength Samples(long long iCount) {
  return Time_TypedLength(iCount, Time_eType_Samples);
}

/// Ticks as a plain number, samples with an "s".
inline std::string Print(Time_Typed iTime) {
  return std::to_string(iTime.AsInt64()) + (iTime.GetType() == Time_eType_Samples ? "s" : "");
}

inline void AppendWord(std::string & ioLine, std::string const & iWord) {
  if (!ioLine.empty()) ioLine += ' ';
  ioLine += iWord;
}

/// "time:value time:value"
class PrintingVisitor : public Vrad_ContinuousData_OutputIter {
public:
  void operator()(Time_Typed iTime, int iValue) override {
    AppendWord(mLine, Print(iTime) + ":" + std::to_string(iValue));
  }
  std::string mLine;
};

inline std::string Print(Vrad_ContinuousData const & iData) {
  PrintingVisitor visitor;
  iData.ForEachInRange(&visitor, Time_Typed::MinTime(Time_eType_Ticks),
                       Time_Typed::MaxTime(Time_eType_Ticks));
  return visitor.mLine;
}

/// The part of an event that tests of stores tell apart: a controller's value, a sysex's first
/// byte.
inline std::string Print(Vrae_Event const & iEvent) {
  switch (iEvent.mU.mBase.mType) {
  case Vrae_Event::kController:
    return std::to_string(iEvent.mU.mController.mValue);
  case Vrae_Event::kPolyPressure:
    return std::to_string(iEvent.mU.mPolyPressure.mPressure);
  case Vrae_Event::kPitchBend:
    return std::to_string(iEvent.mU.mPitchBend.mBend);
  case Vrae_Event::kShortSysex:
    return std::to_string(iEvent.mU.mShortSysex.mData[0]);
  default:
    return "kind" + std::to_string(iEvent.mU.mBase.mType);
  }
}

inline std::string Print(Vrae_TimedEvent const & iEvent) {
  return Print(iEvent.mTime) + ":" + Print(iEvent.mEvent);
}

/// "new/original" for display items.
inline std::string Print(Vrad_DisplayItem const & iItem) {
  return Print(static_cast<Vrae_TimedEvent const &>(iItem.mNewEvent)) + "/" +
         Print(static_cast<Vrae_TimedEvent const &>(iItem.mOrigEvent));
}

template <class TElement>
std::string PrintList(Cmn_PolyVector<TElement, 0> const & iList) {
  std::string line;
  for (TElement const & element : iList)
    AppendWord(line, Print(element));
  return line;
}

template <class TIter>
std::string PrintRest(TIter & ioIter) {
  std::string line;
  for (; ioIter.IsMore(); ++ioIter)
    AppendWord(line, Print(static_cast<Vrae_TimedEvent const &>(*ioIter)));
  return line;
}

/// Checks go on instead of throwing, for the length of a scope.
class NotThrowingScope {
public:
  NotThrowingScope() : mFormer(Cmn_Assert::SetThrowing(false)) {}
  NotThrowingScope(NotThrowingScope const &) = delete;
  NotThrowingScope & operator=(NotThrowingScope const &) = delete;
  ~NotThrowingScope() { Cmn_Assert::SetThrowing(mFormer); }

private:
  bool const mFormer;
};

/// A state of no store.
class ForeignState : public Ndo_State {
public:
  Ndo_Object * NdoReCreate() override { return nullptr; }
};

/// Whether an edit announces itself: runs it in a transaction that is then aborted.
template <class TEdit>
bool Announces(Ndo_Object const & iObject, TEdit const & iEdit) {
  Ndo_gManager.BeginTransaction();
  iEdit();
  bool const hasAnnounced = Ndo_gManager.HasAnnounced(iObject.NdoGetID());
  Ndo_gManager.AbortTransaction();
  return hasAnnounced;
}
