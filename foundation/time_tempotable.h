// The immutable table behind a tempo map: internal to foundation/.
//
// Between two changes the position in samples is a straight line,
//   sample + (offset + (tick - start) * num) / den,   0 <= offset < den,
// with whole numbers throughout, so nothing drifts. Tempo and sample rate are taken as the
// fractions that their doubles stand for. Nearly always a line has 64-bit numbers, whose products
// fit 128 bits; sums of many odd tempos need wide ones of fixed size.
#pragma once

#include <memory>
#include <vector>

#include <boost/multiprecision/cpp_int.hpp>

__extension__ typedef __int128 Time_Int128;
typedef boost::multiprecision::number<
    boost::multiprecision::cpp_int_backend<1024, 1024, boost::multiprecision::signed_magnitude,
                                           boost::multiprecision::unchecked, void>,
    boost::multiprecision::et_off>
    Time_IntWide;

/// The line from one change to the next. The first one also holds backward, the last one forward.
struct Time_TempoLine {
  long long mTick;     // where the tempo is set
  double mTempo;       // beats per minute
  long long mSample;   // whole samples at `mTick`, rounded down; saturated in a wide line
  long long mOffset;   // in a wide line only told from 0
  long long mNum = 0;  // num / den is samples per tick
  long long mDen = 0;  // 0: the line is wide
  int mWide = -1;      // index of the wide numbers
};

struct Time_TempoWideLine {
  Time_IntWide mSample, mOffset, mNum, mDen;
};

/// The numbers behind one table or several. What a table sees never changes: a later one of the
/// same numbers sees more at the end, and the storage does not move while two share it.
struct Time_TempoNumbers {
  std::vector<Time_TempoLine> mLines;  // at least one; ascending ticks, no two alike
  std::vector<Time_TempoWideLine> mWides;

  /// Derives all numbers from ticks and tempos.
  void Derive(double iSampleRate);
  /// The same for the last line alone, which starts after tick 0 and behind another.
  void DeriveLast(double iSampleRate);
};

/// What conversions read: so many lines and wide numbers from the beginning.
struct Time_TempoTable {
  explicit Time_TempoTable(std::shared_ptr<Time_TempoNumbers> const & iNumbersP);

  /// One more line at the end, amortised O(1): the next table shares these numbers as long as there
  /// is room behind them and nobody has taken it.
  std::unique_ptr<Time_TempoTable> MakeAppended(long long iTick, double iTempo,
                                                double iSampleRate) const;
  /// Numbers of their own, for edits elsewhere.
  std::shared_ptr<Time_TempoNumbers> CopyNumbers() const;

  std::shared_ptr<Time_TempoNumbers> mNumbersP;
  Time_TempoLine const * mLinesP;
  Time_TempoWideLine const * mWidesP;
  int mNumLines;
  int mNumWides;
  mutable Time_TempoTable const * mNextReplacedP = nullptr;  // of the map that owns it

private:
  bool CanGrow() const;
};

/// Conversions over lines that somebody keeps alive. Nothing here allocates or throws.
class Time_TempoLines {
public:
  /// A table's, or without one the tempo that a map has at start.
  explicit Time_TempoLines(Time_TempoTable const * iTableP);

  int GetNum() const { return mNum; }
  double TempoAt(long long iTick) const { return LineOfTick(iTick).mTempo; }

  long long TickToSample(long long iTick) const;    // rounded down
  long long SampleToTick(long long iSample) const;  // rounded up
  int CompareSampleWithTick(long long iSample, long long iTick) const;
  long long AddTicksToSample(long long iSample, long long iTicks) const;
  long long AddSamplesToTick(long long iTick, long long iSamples) const;

private:
  Time_TempoLine const & LineOfTick(long long iTick) const;
  Time_TempoLine const & LineOfSample(long long iSample) const;

  Time_TempoLine const * mFirst;
  int mNum;
  Time_TempoWideLine const * mWides;
};
