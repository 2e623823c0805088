// From ticks to samples and back: the converter that hosts may replace, the library's tempo map,
// and the process-wide settings of time.
#pragma once

#include <atomic>

#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"

/// Maps between the two units. A host may derive its own and set `Time_Convert::sTimeConverter`;
/// only `ToType` and `AddLength` are asked of it, the rest has default bodies built on `ToType`.
/// Thread: called from any, the audio thread included, so it may neither lock nor allocate.
class VRAD_EXPORT Time_Converter {
public:
  virtual ~Time_Converter();

  /// The same instant in the given unit. Tick to sample rounds down, sample to tick rounds up, and
  /// the limits of one unit give those of the other.
  virtual Time_Typed ToType(Time_Typed iTime, Time_EType iType) const = 0;

  /// The position that lies the length after the start, in the unit of the start. A length of the
  /// other unit is measured along the tempo map from the start.
  virtual Time_Typed AddLength(Time_Typed iStart, Time_TypedLength const & iLength) const = 0;

  /// Unlike units: -1, 0 or 1 by exact instant. The default body takes for equal what `ToType`
  /// maps to each other in both directions.
  virtual int Compare(Time_Typed iA, Time_Typed iB) const;

  /// The sample-exact bounds of a tick range: for each tick bound the first tick of its sample.
  /// Bounds in samples and limits pass unchanged. The flag is for converters of a host's own.
  virtual void MakeTickRangeSampleBased(Time_Typed iStart, Time_Typed iEnd, bool iFlag,
                                        Time_Typed & oStart, Time_Typed & oEnd) const;

protected:
  constexpr Time_Converter() = default;
  Time_Converter(Time_Converter const &) = default;
  Time_Converter & operator=(Time_Converter const &) = default;
};

struct Time_TempoTable;

/// Any number of tempo changes, converted exactly. Tick 0 is sample 0 whatever is set before it;
/// the first tempo holds backward without end. A conversion costs O(log tempo changes).
/// Thread: conversions on any thread, without lock or allocation, also during an edit. Edits on any
/// thread but the audio thread; they wait for each other and show as a whole. The destructor needs
/// that nobody converts any more.
class VRAD_EXPORT Time_TempoMap : public Time_Converter {
public:
  /// One tempo throughout, given at tick 0.
  /// Fails: `std::invalid_argument` for a tempo that is not finite and positive, here and below;
  /// nothing is changed then.
  explicit Time_TempoMap(double iBeatsPerMinute = 120.0);
  ~Time_TempoMap() override;
  Time_TempoMap(Time_TempoMap const &) = delete;
  Time_TempoMap & operator=(Time_TempoMap const &) = delete;

  /// One tempo throughout, given at tick 0; all changes are dropped.
  void Reset(double iBeatsPerMinute);

  /// The tempo from that tick to the next change. A second call at one tick replaces.
  /// Amortised O(1) behind the last change; elsewhere all are derived anew.
  void SetTempoAt(Time_Tick iTick, double iBeatsPerMinute);

  /// At least 1: the tempo given at construction or by `Reset` counts.
  int GetNumTempoChanges() const;
  double GetTempoAt(Time_Tick iTick) const;

  Time_Typed ToType(Time_Typed iTime, Time_EType iType) const override;
  Time_Typed AddLength(Time_Typed iStart, Time_TypedLength const & iLength) const override;
  int Compare(Time_Typed iA, Time_Typed iB) const override;

private:
  friend class Time_Convert;
  friend class Time_Globals;
  class Reader;
  union DefaultMap;
  struct Unset {};

  explicit constexpr Time_TempoMap(Unset) {}
  void Publish(Time_TempoTable const * iTableP);
  static void SetSampleRate(double iHertz);

  // What conversions read. A table never changes; an edit puts another in its place. Null is the
  // tempo at start, so that the default map converts before anything has been initialised.
  std::atomic<Time_TempoTable const *> mTableP{nullptr};
  // Conversions under way. Replaced tables are freed by the first edit that finds none.
  mutable std::atomic<int> mNumReaders{0};
  Time_TempoTable const * mReplacedP = nullptr;
  Time_TempoMap * mNextMapP = nullptr;  // all maps but the default one, for a new sample rate
};

/// The calls that the library itself makes, on the converter of the process.
/// Thread: any, without a lock.
class VRAD_EXPORT Time_Convert {
public:
  /// Starts at the default tempo map. Owned by the host that sets another; null only if the host
  /// makes it so, and then counts are taken as they are.
  static Time_Converter * sTimeConverter;

  /// The library's own map, 120 beats per minute at start. Never destroyed.
  static Time_TempoMap & GetDefaultTempoMap();

  static Time_Typed ToType(Time_Sample iSample, Time_EType iType);
  static void MakeTickRangeSampleBased(Time_Typed iStart, Time_Typed iEnd, bool iFlag,
                                       Time_Typed & oStart, Time_Typed & oEnd);

  /// To the nearest multiple of `Time_Globals::sCoarseInternalTickGrid`, ties upward. A grid of 0
  /// or 1 changes nothing, nor does the position form change a position in samples.
  static void SnapToCoarseInternalTick(long long & ioTicks);
  static Time_Typed SnapToCoarseInternalTick(Time_Typed iTime);
};

/// Process-wide settings of time.
class VRAD_EXPORT Time_Globals {
public:
  static constexpr long long kTicksPerBeat = 960000;

  /// In hertz, 48000 at start. Thread: any, without a lock.
  static double GetSampleRate();

  /// Makes every tempo map convert at the new rate. Thread: any but the audio thread.
  /// Fails: `std::invalid_argument` for a rate that is not finite and positive; nothing is changed.
  static void SetSampleRate(double iHertz);

  /// The grid of the coarse internal ticks, 1000 at start.
  static unsigned long long sCoarseInternalTickGrid;
};

/// The project's time origin.
inline constexpr Time_Tick Time_cDefaultOriginTick(0);
