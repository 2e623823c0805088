// Registered and non-registered parameters of a clip: which data each of them holds at a position.
#pragma once

#include <utility>
#include <vector>

#include "foundation/time_typed.h"

class Vrad_Chunk;

/// Takes what restores parameters, message by message.
class Host_ParameterReceiver {
public:
  virtual ~Host_ParameterReceiver() = default;
  virtual void ReceiveParameterController(int iNumber, int iValue) = 0;
};

/// Controllers 98 to 101 select a parameter; 6 and 38 set its value, coarse and fine, and 96 and 97
/// step it. A clip keeps each of the eight as a stream of its own, so one list is made of them when
/// the clip is added or edited. Positions are places in that list: a place stands for what the
/// messages ahead of it leave.
///
/// Data sent while nothing, half a parameter or "none" (127, 127) is selected belongs to no
/// parameter and is not restored, unless the clip selects nothing at all: then 6 and 38 are a
/// parameter of their own.
/// m messages: making the list costs O(m log m), finding a place O(log m). Restoring costs O(log m)
/// for each parameter, and a step for each datum since both parts of its value were last set.
/// Thread: one at a time. `Build` takes memory, nothing else does.
class Host_ParameterChase {
public:
  /// Makes the list anew. Fails: std::bad_alloc; the list is empty.
  void Build(Vrad_Chunk const & iChunk);

  bool IsEmpty() const { return mMessages.empty(); }
  /// The number of messages before the time.
  int GetPlace(Time_Typed iTime) const;
  /// Whether both lists have the same messages up to the places.
  bool IsSameUpTo(int iPlace, Host_ParameterChase const & iOther, int iOtherPlace) const;

  /// What leads from one place to another: the value of each parameter that has one there and may
  /// not have it yet, behind its selection, in order of the last data of each; in the end the
  /// selection of that place. A fine value that was only ever stepped is stepped by the difference.
  /// Nothing for a place to itself. With `iForce` all values are sent, whatever stands.
  void Restore(int iFrom, int iTo, bool iForce, Host_ParameterReceiver & iOutput) const;

private:
  enum EKind : signed char { kNonRegistered, kRegistered, kNone };
  static constexpr int kUnknown = -1;

  struct Pair {
    signed char mCoarse = kUnknown;
    signed char mFine = kUnknown;
    bool IsKnown() const { return mCoarse != kUnknown && mFine != kUnknown; }
    bool operator==(Pair const &) const = default;
  };
  struct Selection {
    EKind mKind = kNone;  // of the pair that data goes to
    Pair mPairs[kNone];
    bool operator==(Selection const &) const = default;
  };
  struct Message {
    Time_Typed mTime;
    signed char mNumber;
    signed char mValue;
    Selection mSelection;  // when it has been sent
  };
  struct Datum {
    int mMessage;   // its place
    int mFirst;     // datum from which on the data tell the value; kUnknown: its fine part is open
    int mCoarse;    // the last coarse datum up to here; kUnknown
    int mNext;      // datum that replaces this one before any step; kUnknown
    int mNumSteps;  // up less down, up to here
  };
  struct Parameter {
    EKind mKind;
    Pair mPair;
    std::vector<Datum> mData;
  };
  struct DataRun;

  static std::vector<Message> Gather(Vrad_Chunk const & iChunk);
  static void Apply(Message const & iMessage, Selection & ioSelection);
  void FindParameters();
  int GetLast(Parameter const & iParameter, int iPlace) const;
  Selection GetSelection(int iPlace) const;

  static void Select(EKind iKind, Pair iPair, Selection & ioPresent,
                     Host_ParameterReceiver & iOutput);
  static void SelectAll(Selection const & iWanted, Selection & ioPresent,
                        Host_ParameterReceiver & iOutput);
  void SendValue(Parameter const & iParameter, int iFrom, int iTo,
                 Host_ParameterReceiver & iOutput) const;

  std::vector<Message> mMessages;  // in order of playing
  std::vector<Parameter> mParameters;
  mutable std::vector<std::pair<int, int>> mOrder;  // last message and parameter; room for all
};
