// The run-time trace: slots for the entry points of an optional library, filled once at load.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "foundation/vrad_export.h"

typedef bool (*LumTraceIsActiveProc)(unsigned iFacility);
typedef void (*LumTraceFormatProc)(unsigned iFacility, char const * iFormat, ...);
typedef void (*LumTracePutsProc)(unsigned iFacility, char const * iText);
typedef void (*LumTraceMemProc)(unsigned iFacility, void const * iBytes, int iNumBytes);
typedef void (*LumTraceStackProc)(unsigned iFacility);

/// Whether anything is traced at all. False at load; the host sets it.
extern VRAD_EXPORT bool gLumTraceActive;

/// The slots. Null until the trace library is found, and for good if it or an entry point is
/// missing, which is no error. A host may fill them itself. Thread: written before any other thread
/// traces.
extern VRAD_EXPORT LumTraceIsActiveProc LumTraceIsActiveFunc;
extern VRAD_EXPORT LumTraceFormatProc LumTraceFormat;
extern VRAD_EXPORT LumTraceFormatProc LumTraceFormatQuiet;
extern VRAD_EXPORT LumTraceFormatProc LumTraceFormatTimestamp;
extern VRAD_EXPORT LumTracePutsProc LumTracePuts;
extern VRAD_EXPORT LumTraceMemProc LumTraceMem;
extern VRAD_EXPORT LumTraceStackProc LumTraceStack;

/// Whether a site that asks with `iFacility` writes: tracing is on, there is something to write
/// with, and the library, if it can be asked, wants the facility.
inline bool LumTraceIsWanted(unsigned iFacility) {
  return gLumTraceActive && LumTraceFormat != nullptr &&
         (LumTraceIsActiveFunc == nullptr || LumTraceIsActiveFunc(iFacility));
}

/// A trace site: asks with one facility and writes with another. Never changes what the caller
/// does. Thread: any, as far as the trace library allows; costs one test while tracing is off.
template <class... TArgs>
void LumTraceWriteAs(unsigned iAskFacility, unsigned iFacility, char const * iFormat,
                     TArgs... iArgs) {
  if (LumTraceIsWanted(iAskFacility)) LumTraceFormat(iFacility, iFormat, iArgs...);
}

/// A trace site that asks and writes with the same facility.
template <class... TArgs>
void LumTraceWrite(unsigned iFacility, char const * iFormat, TArgs... iArgs) {
  LumTraceWriteAs(iFacility, iFacility, iFormat, iArgs...);
}

/// Keeps what is traced, for tests and for hosts without a trace library. Fills the slots but those
/// for memory and stacks, switches tracing on, and puts all back when destroyed; recorders nest.
/// Thread: any for tracing, several at once; it locks and allocates, so not for the audio thread.
class VRAD_EXPORT LumTraceRecorder {
public:
  LumTraceRecorder();
  ~LumTraceRecorder();
  LumTraceRecorder(LumTraceRecorder const &) = delete;
  LumTraceRecorder & operator=(LumTraceRecorder const &) = delete;

  /// What sites that ask with `iFacility` are told. All facilities are active at start.
  void SetActive(unsigned iFacility, bool iActive);

  /// Facility and text of each line, in order of writing.
  std::vector<std::pair<unsigned, std::string>> GetLines() const;

private:
  struct Records;
  Records * mRecordsP;  // owned
};
