// Sub-streams: names for continuous MIDI values, in one flat index space.
//
// Thread: any; sub-streams are plain values and their types are constants.
#pragma once

#include "foundation/vrad_export.h"
#include "vrad/vrae_event.h"

class Sys_TypedInStream;
class Sys_TypedOutStream;

/// Both ends included.
struct Vrae_SubStream_ValueRange {
  int mMin;
  int mMax;
};

/// What kind of continuous value a sub-stream is. There are six, one of them for no value at all,
/// whose operations throw "0".
class VRAD_EXPORT Vrae_SubStreamType {
public:
  constexpr Vrae_SubStreamType() = default;
  virtual ~Vrae_SubStreamType();
  /// 0 to 249 for a valid sub-type.
  virtual int GetIndex(int iSubType) const = 0;
  virtual Vrae_Event MakeEvent(int iSubType, int iValue) const = 0;
  virtual Vrae_SubStream_ValueRange GetValueRange() const = 0;
  /// An event of another kind is reported and read all the same.
  virtual int GetValueFromEvent(Vrae_Event const & iEvent) const = 0;
  /// 1 bend, 2 controller, 3 program, 4 mono pressure, 5 poly pressure. Saved in projects.
  virtual int GetTypeCode() const = 0;
  virtual bool IsValidSubType(int iSubType) const = 0;

  /// Throws `std::runtime_error` with string 201 if the sub-type is not valid: it came out of a
  /// file.
  void CheckValidSubType(int iSubType) const;
};

/// One continuous MIDI value: bend, one controller, program, mono pressure, or the pressure of one
/// pitch. On the null sub-stream, what reads through the type throws "0" and, with throwing off,
/// gives 0 or a default event.
class VRAD_EXPORT Vrae_SubStream {
public:
  /// The null sub-stream.
  Vrae_SubStream();
  /// The one that the event belongs to; null for kinds without one and for controllers outside 1 to
  /// 119. Bank select travels in the program, so controller 0 has none.
  Vrae_SubStream(Vrae_Event const & iEvent);

  /// Reports numbers outside 0 to 120. 0 and 120 pass, but name no valid stream.
  static Vrae_SubStream Controller(signed char iControllerNumber);
  static Vrae_SubStream PolyPressure(signed char iPitch);
  static Vrae_SubStream PitchBend();
  static Vrae_SubStream Program();
  static Vrae_SubStream MonoPressure();

  bool IsNull() const;
  /// Never null.
  Vrae_SubStreamType const * GetType() const { return mTypeP; }
  /// The controller number or the pitch; 0 for the other types.
  int GetSubType() const { return mSubType; }
  bool operator==(Vrae_SubStream const & iOther) const {
    return mTypeP == iOther.mTypeP && mSubType == iOther.mSubType;
  }
  bool operator!=(Vrae_SubStream const & iOther) const { return !(*this == iOther); }

  static int GetNumIndices() { return 250; }
  /// Bend 0, controllers 1 to 119, mono pressure 120, program 121, pressure of a pitch 122 to 249.
  int GetIndex() const;
  /// A value out of range is reported; the event is made all the same.
  Vrae_Event MakeEvent(int iValue) const;
  /// A program's value holds the bank's 16 bits, then the program's 8, flags included.
  Vrae_SubStream_ValueRange GetValueRange() const;
  int GetValueFromEvent(Vrae_Event const & iEvent) const;
  /// The kind of this stream's events. `oSubType` is written for controllers alone.
  void GetInfo(signed char & oType, signed char & oSubType) const;

  /// Writes the sub-stream's record. Fails: the null sub-stream throws "0".
  void StreamOut(Sys_TypedOutStream & ioStream) const;
  /// Becomes what the next record names.
  /// Fails: throws string 202 for an unknown type, string 201 for a sub-type out of range, "0" for
  /// the type of the null sub-stream, `Sys_StreamException`. The sub-stream is unchanged.
  void StreamIn(Sys_TypedInStream & ioStream);

private:
  explicit Vrae_SubStream(Vrae_SubStreamType const * iTypeP);
  Vrae_SubStream(Vrae_SubStreamType const * iTypeP, int iSubType);

  Vrae_SubStreamType const * mTypeP;
  int mSubType;
};
