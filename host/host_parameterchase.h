// Registered and non-registered parameters of a channel: what each of them holds at a position.
#pragma once

#include <utility>
#include <vector>

#include "foundation/time_typed.h"
#include "host/host_playposition.h"

class Vrad_Chunk;

/// One of the controllers that select parameters, 98 to 101, or set the one selected: 6 and 38
/// coarse and fine, 96 and 97 step by step.
struct Host_ParameterMessage {
  Time_Typed mTime;
  int mClip;
  signed char mNumber;
  signed char mValue;
};
/// In order of playing: at one time selections come before data, and data before steps.
typedef std::vector<Host_ParameterMessage> Host_ParameterList;

/// The streams that a clip keeps of these controllers, as one list. Takes memory; O(m log m).
Host_ParameterList Host_GetParameters(Vrad_Chunk const & iChunk, int iClip);

/// Takes what restores parameters, message by message.
class Host_ParameterReceiver {
public:
  virtual ~Host_ParameterReceiver() = default;
  virtual void ReceiveParameterController(int iClip, int iNumber, int iValue) = 0;
};

/// The messages of all clips that play on a channel, merged. Positions are places among them: a
/// place stands for what the messages ahead of it leave. Data sent while nothing, half a parameter
/// or "none" (127, 127) is selected belongs to no parameter and is not restored.
/// m messages: merging costs O(m log m), finding a place O(log m). Restoring costs O(log m) for
/// each parameter, and a step for each datum since both parts of its value were last set. Thread:
/// one at a time. `Reserve` takes memory, nothing else does.
class Host_ParameterChase {
public:
  /// Room for that many messages. Fails: std::bad_alloc; nothing is changed.
  void Reserve(size_t iNumMessages);

  /// Starts to merge anew. The former list is kept for comparison.
  void Begin();
  void Add(Host_ParameterList const & iList);
  void End();

  /// Whether anything is selected anywhere. Without it, 6, 38, 96 and 97 are plain controllers.
  bool HasSelections() const { return mHasSelections; }
  /// Whether some message is not in ticks.
  bool HasSamples() const { return mUnits.mHasSamples; }
  /// The number of messages before the position.
  int GetPlace(Host_PlayPosition const & iPosition) const;
  /// Whether the former list had the same messages before the position.
  bool IsSameUpTo(Host_PlayPosition const & iPosition) const;

  /// What leads from one place to another: the value of each parameter that has one there and may
  /// not have it yet, behind its selection, in order of the last data of each; in the end the
  /// selection of that place. A fine value that was only ever stepped is stepped by the difference.
  /// Nothing for a place to itself. With `iForce` all values are sent, whatever stands.
  void Restore(int iFrom, int iTo, bool iForce, Host_ParameterReceiver & iOutput);

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
  struct Message : Host_ParameterMessage {
    int mSequence;         // in order of adding
    Selection mSelection;  // when it has been sent
  };
  struct Datum {
    int mKey;       // of its parameter
    int mMessage;   // its place
    int mFirst;     // datum from which on the data tell the value; kUnknown: its fine part is open
    int mCoarse;    // the last coarse datum up to here; kUnknown
    int mNext;      // datum that replaces this one before any step; kUnknown
    int mNumSteps;  // up less down, up to here
  };
  struct Parameter {
    EKind mKind;
    Pair mPair;
    int mBegin, mEnd;  // its data
  };
  struct DataRun;
  struct Due {
    int mMessage;  // the last one of the parameter
    int mParameter;
  };

  static void Apply(Message const & iMessage, Selection & ioSelection);
  void GatherData();
  void FindParameters();
  int GetLast(Parameter const & iParameter, int iPlace) const;
  Selection GetSelection(int iPlace) const;
  Message const & MessageOf(int iDatum) const;
  static int PlaceIn(std::vector<Message> const & iMessages, Time_Typed iTime);

  class Sender;

  std::vector<Message> mMessages;  // in order of playing
  std::vector<Message> mFormer;
  std::vector<Datum> mData;  // by parameter, then in order of playing
  std::vector<Parameter> mParameters;
  std::vector<Due> mDue;  // empty between calls; room for all parameters
  bool mHasSelections = false;
  Host_TimeUnits mUnits;  // of the messages
};
