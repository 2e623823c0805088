// What tests of chase trackers send to, and a map with every sort of entry.
#pragma once

#include <string>

#include "support/throwing_off.h"
#include "vrad/vrae_chasetrackermap.h"
#include "vrad/vrae_timedevent.h"

/// Keeps what it is sent as text: "cc7=100 bend=5".
class ChasePrinter : public Vrae_EventReceiver {
public:
  void ReceiveEvent(Vrae_Event const & iEvent) override {
    if (!mText.empty()) mText += " ";
    mText +=
        NameOf(iEvent) + "=" + std::to_string(Vrae_SubStream(iEvent).GetValueFromEvent(iEvent));
  }
  std::string Take() {
    std::string const text = mText;
    mText.clear();
    return text;
  }

private:
  static std::string NameOf(Vrae_Event const & iEvent) {
    switch (iEvent.GetType()) {
    case Vrae_Event::kController:
      return "cc" + std::to_string(iEvent.AsController().GetControllerNumber());
    case Vrae_Event::kPitchBend:
      return "bend";
    case Vrae_Event::kMonoPressure:
      return "pressure";
    case Vrae_Event::kPolyPressure:
      return "poly" + std::to_string(iEvent.AsPolyPressure().GetPitch());
    default:
      return "program";
    }
  }

  std::string mText;
};

/// Follows bend (releasing to 0), controller 7, sustain (to 0), pressure (to 5), and release-only
/// poly pressure of pitch 60 (to 0). Entry 0 is the controller 1 of every map, out of reach here:
/// neither releasing nor ever active.
class ChaseSmallMap : public Vrae_ChaseTrackerMap {
public:
  ChaseSmallMap() {
    Clear();
    AppendReleasingEntry(Vrae_SubStream::PitchBend(), 0);
    AppendEntry(Vrae_SubStream::Controller(7));
    AppendReleasingEntry(Vrae_SubStream::Controller(64), 0);
    AppendReleasingEntry(Vrae_SubStream::MonoPressure(), 5);
    DoneAddingChasingEntries();
    AppendReleasingEntry(Vrae_SubStream::PolyPressure(60), 0);
  }
};
