// A clip as a stream checker sees it: flat lists, in samples.
#pragma once

#include <map>
#include <vector>

#include "foundation/time_typed.h"

class Vrad_Chunk;

/// The sample in which a time lies, at the tempo in force; no farther off than 2^61.
long long Host_SampleOf(Time_Typed iTime);

/// What a receiver keeps one value of: controllers by their number, and these.
enum Host_EValueKey : int {
  kValueKey_Bend = 128,
  kValueKey_Program,
  kValueKey_MonoPressure,
  kValueKey_PolyPressure,  // and the pitch
  kValueKey_End = kValueKey_PolyPressure + 128
};

/// Where at one time a value stands among the values of parameters: what selects, data, steps.
int Host_ParameterRank(int iKey);
inline bool Host_IsParameterKey(int iKey) {
  return Host_ParameterRank(iKey) > 0;
}

/// The parts of a program event, each -1 where it is disabled.
struct Host_ProgramParts {
  int mProgram, mMSB, mLSB;
};
int Host_PackProgram(Host_ProgramParts const & iParts);
Host_ProgramParts Host_UnpackProgram(int iValue);

/// A copy of all that a chunk holds, in order of time, with the samples at which it happens at the
/// tempo in force. Bend is 0 to 16383, a program packed.
/// Thread: one at a time. Fails: std::bad_alloc.
class Host_CheckedClip {
public:
  struct Note {
    Time_Typed mStart, mEnd;
    long long mStartSample, mEndSample;
    int mPitch, mOnVelocity, mOffVelocity;
    /// Too short to sound at the end of any sample.
    bool IsInstant() const { return mEndSample <= mStartSample; }
  };
  struct Value {
    Time_Typed mTime;
    long long mSample;
    int mValue;
  };
  struct Sysex {
    Time_Typed mTime;
    std::vector<unsigned char> mBytes;  // with 0xF0 and 0xF7
  };
  enum class EEdge : int { kValue, kSysex, kNoteEnd, kNoteStart };
  struct Edge {
    Time_Typed mTime;
    long long mSample;
    EEdge mKind;
    int mKey;    // of a value
    int mIndex;  // into the notes, the key's values or the sysexes
  };

  /// O(n log n).
  void Read(Vrad_Chunk const & iChunk);
  /// After a change of tempo. O(n log n).
  void ComputeSamples();

  std::vector<Note> const & GetNotes() const { return mNotes; }
  std::vector<Edge> const & GetEdges() const { return mEdges; }
  std::vector<Sysex> const & GetSysexes() const { return mSysexes; }
  std::map<int, std::vector<Value>> const & GetValues() const { return mValues; }

  /// The first edge in that sample or later.
  size_t FindEdge(long long iSample) const;
  /// The last value in that sample or earlier; null without one.
  Value const * FindValue(int iKey, long long iSample) const;
  /// The notes that begin before the sample and do not end before it.
  std::vector<int> FindSounding(long long iSample) const;

private:
  static constexpr size_t kEdgesPerSnapshot = 64;

  void ReadNotes(Vrad_Chunk const & iChunk);
  void ReadValues(Vrad_Chunk const & iChunk);
  void ReadSysexes(Vrad_Chunk const & iChunk);
  void MakeEdges();
  void ApplyEdge(Edge const & iEdge, std::vector<int> & ioSounding) const;

  std::vector<Note> mNotes;
  std::map<int, std::vector<Value>> mValues;
  std::vector<Sysex> mSysexes;
  std::vector<Edge> mEdges;
  std::vector<std::vector<int>> mSnapshots;  // of what sounds before each 64th edge
};
