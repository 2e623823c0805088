// What reading a file could not keep or could not read: counted by kind, with the place of the
// first, so that nothing goes without a word and a hostile file cannot fill memory with words.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

/// What a file holds that has no place in a clip.
enum Host_ENotKept : int {
  kNotKept_ChannelMode,        // controllers 120 to 127
  kNotKept_EarlierValue,       // overwritten by a later one at the same tick
  kNotKept_EarlierBankSelect,  // followed by another before a program change could take it
  kNotKept_LoneBankSelect,     // not followed by a program change, with a program at the same tick
  kNotKept_UnmatchedNoteOff,
  kNotKept_UnfinishedSysex,
  kNotKept_EscapedMessage,  // bytes of an F7 event that are no channel message and no sysex
  kNotKept_EarlierTempo,
  kNotKept_EarlierTimeSignature,
  kNotKept_EarlierKeySignature,
  kNotKept_BadTempo,
  kNotKept_BadTimeSignature,
  kNotKept_BadKeySignature,
  kNotKept_TempoOfSMPTE,
  kNotKept_TempoOfFurtherSequence,
  kNotKept_TimeSignatureOfFurtherSequence,
  kNotKept_UnknownChunk,
  kNotKept_UnknownRecord,  // of a project file
  kNotKept_NumValues
};

/// Thread: one at a time. Memory is bounded whatever is reported.
class Host_MidiReport {
public:
  /// iOffset is where it stands, in bytes from the file's beginning.
  void CountNotKept(Host_ENotKept iWhat, size_t iOffset);
  /// A meta event of iType, 0 to 255, by its name where it has one.
  void CountMetaEvent(unsigned char iType, size_t iOffset);
  /// iIsLoss: something that may have been music could not be read.
  void AddProblem(size_t iOffset, std::string const & iText, bool iIsLoss);

  struct NotKept {
    std::string mName;  // as in "note-off without a note-on"
    long long mCount;   // at least 1
    size_t mOffset;     // of the first
  };
  /// Each kind that occurred, in a fixed order, and then the meta events by type.
  std::vector<NotKept> GetNotKept() const;
  /// 0 if nothing of the kind occurred.
  long long GetNumNotKept(Host_ENotKept iWhat) const;
  long long GetNumMetaEvents(unsigned char iType) const;

  struct Problem {
    size_t mOffset;
    std::string mText;
    bool mIsLoss;
  };
  static constexpr int kMaxProblems = 100;
  /// The first kMaxProblems, in the order found.
  std::vector<Problem> const & GetProblems() const { return mProblems; }
  /// All of them, also those beyond kMaxProblems.
  long long GetNumProblems() const { return mNumProblems; }
  /// Whether any problem was a loss.
  bool IsLossy() const { return mIsLossy; }

  /// As in "lyric"; an unknown one as in "unknown meta event 0x60".
  static std::string GetMetaEventName(unsigned char iType);

private:
  struct Tally {
    long long mCount = 0;
    size_t mOffset = 0;
  };

  void Count(int iKey, size_t iOffset);
  long long GetCount(int iKey) const;

  std::map<int, Tally> mTallies;  // by Host_ENotKept, then kNotKept_NumValues + meta type
  std::vector<Problem> mProblems;
  long long mNumProblems = 0;
  bool mIsLossy = false;
};
