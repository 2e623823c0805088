// Which classes of MIDI data a retrieval hands out.
#pragma once

#include "cmn/cmn_bitarray.h"
#include "foundation/vrad_export.h"
#include "vrad/vrae_event.h"
#include "vrad/vrae_substream.h"

/// Nine data classes and 128 controllers, each let through or not. A plain value, read-only during
/// a retrieval. The setters return the filter, for chaining.
class VRAD_EXPORT Vrae_Filter {
public:
  enum EDataType : int {
    eDataType_Notes = 0,
    eDataType_NoteOnVelocity = 1,   // off: notes play at a neutral velocity
    eDataType_NoteOffVelocity = 2,  // the same
    eDataType_PitchBend = 3,
    eDataType_Program = 4,
    eDataType_MonoPressure = 5,
    eDataType_PolyPressure = 6,
    eDataType_Sysex = 7,
    eDataType_Realtime = 8,  // song position, start, continue, stop, timing clock
    eDataType_NumValues = 9
  };

  /// Lets nothing through.
  Vrae_Filter();
  Vrae_Filter & SetAll();
  Vrae_Filter & ClearAll();
  Vrae_Filter & InvertAll();
  /// Notes with their on velocity, bend, program and all controllers.
  Vrae_Filter & SetDefault();

  /// A type outside 0 to 8 is reported; all of those share one spare flag.
  bool Get(EDataType iType) const;
  Vrae_Filter & Set(EDataType iType, bool iPasses);
  Cmn_BitArray<128> const & GetControllers() const { return mControllers; }
  Vrae_Filter & SetControllers(Cmn_BitArray<128> const & iControllers);

  bool operator==(Vrae_Filter const & iOther) const;

  /// True if the event passes. A velocity that is not kept is replaced: by the default velocity in
  /// a note-on, by 64 in a note-off and in a note with duration. Kinds 17 to 23 and unknown ones
  /// are reported and pass.
  bool FilterEvent(Vrae_Event * ioEvent) const;
  /// As `FilterEvent` of an event of that stream. A null sub-stream throws "0".
  bool FilterSubStream(Vrae_SubStream const & iSubStream) const;

private:
  void FilterVelocities(Vrae_Event & ioEvent) const;

  bool mFlags[eDataType_NumValues + 1];  // by EDataType; the last is the spare one
  Cmn_BitArray<128> mControllers;        // by controller number
};
