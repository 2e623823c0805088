// Events as lines of text, for logs and dumps. Nothing in the library depends on it.
#pragma once

#include <cstddef>
#include <iosfwd>

#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"
#include "vrad/vrae_event.h"
#include "vrad/vrae_timedevent.h"

class Vra_AppCallback;
class Vrae_TrackState;

/// Turns events into text. Formatting into a buffer cuts what does not fit and always terminates.
/// Needs: a buffer of at least one byte.
/// Fails: a text that is too long is reported.
/// Thread: any but the audio thread; texts are built on the heap.
class VRAD_EXPORT Vrae_TraceUtil {
public:
  static void FormatMidiEvent(char * oBuffer, size_t iSize, Vrae_Event const & iEvent);

  /// "<sample: N> " and the event's text, N being the plain count whatever its unit.
  static void FormatTimedMidiEvent(char * oBuffer, size_t iSize, Vrae_TimedEvent const & iEvent);

  /// "[seconds.milliseconds.hundreds of microseconds, sample]": modulo 10, 1000 and 10. Cuts
  /// silently.
  static void FormatMidiTimestamp(char * oBuffer, size_t iSize, long long iMicroseconds,
                                  Time_Sample iSample);

  /// The event's text, cut to 199 characters, without a line end.
  static void PrintMidiEvent(Vrae_Event const & iEvent, std::ostream & oStream);

  /// A line for each event: count, unit, text.
  static void PrintTimedEventList(Vrae_TimedEventList * iListP, std::ostream & oStream);

  /// A heading, and a line for each note in progress: pitch, velocities, count of the release time.
  static void PrintTrackState(Vrae_TrackState * iStateP, std::ostream & oStream);

  /// Writes each event's text to the run-time trace, without a line end.
  static void TraceMidiEventList(Vrae_TimedEventList * iListP);

  static void SetCallback(Vra_AppCallback * iCallbackP);

  static Vra_AppCallback * sCallback;  // kept for the host, not owned, never called
};
