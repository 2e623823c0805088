// Scrubbing to and fro against a sorted list of all transitions: each is handed out once for each
// time that it is crossed, in the order of the way. And against the same rules in an array, also
// for what is out of order or counts as passed on purpose.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <tuple>
#include <vector>

#include "support/scrub_printing.h"

namespace {

struct Transition {
  long long mTime;
  int mType;
  int mValue;

  // A total order, so that alike ones can be compared in any order.
  auto Key() const { return std::tie(mTime, mType, mValue); }
  bool operator<(Transition const & iOther) const { return Key() < iOther.Key(); }
  bool operator==(Transition const & iOther) const { return Key() == iOther.Key(); }
  // Going forward, what ends at a time is crossed there, and what begins is not.
  bool IsAhead(long long iPosition) const {
    return mTime > iPosition || (mTime == iPosition && mType >= 2);
  }
};

typedef std::vector<Transition> Transitions;

long long AnyTime() {
  return *rc::gen::inRange(-20, 60);
}

class Scrubber {
public:
  void Run() {
    // A bend that comes first counts as passed, so a note has to.
    MoveTo(AnyTime());
    AddNote();
    int const numSteps = *rc::gen::inRange(1, 60);
    for (int i = 0; i < numSteps; ++i)
      Step(*rc::gen::inRange(0, 8));
  }

private:
  void Step(int iWhat) {
    switch (iWhat) {
    case 0:
    case 1:
      return AddNote();
    case 2:
      return AddBend();
    case 3:
      return Interrupt();
    default:
      return MoveTo(AnyTime());
    }
  }

  void AddNote() {
    int const pitch = *rc::gen::inRange(58, 62);
    long long const start = AnyTime(), length = *rc::gen::inRange(1, 30);
    mList.AddNote(ScrubNote(pitch, start, length), *rc::gen::arbitrary<bool>());
    mAll.push_back({start, 3, pitch});
    mAll.push_back({start + length, 0, pitch});
  }

  void AddBend() {
    int const before = *rc::gen::inRange(-3, 3), after = *rc::gen::inRange(-3, 3);
    long long const time = AnyTime();
    mList.AddPitchBend(ScrubBend(after, time), static_cast<short>(before),
                       *rc::gen::arbitrary<bool>());
    mAll.push_back({time, 1, before});
    mAll.push_back({time, 2, after});
  }

  Transitions Crossed(long long iTime) const {
    Transitions crossed;
    for (Transition const & transition : mAll)
      if (transition.IsAhead(mPosition) != transition.IsAhead(iTime)) crossed.push_back(transition);
    std::sort(crossed.begin(), crossed.end());
    return crossed;
  }

  void MoveTo(long long iTime) {
    Transitions const expected = Crossed(iTime);
    Transitions given;
    while (Vrad_ScrubEvent const * const eventP = mList.MoveTowards(Time_Tick(iTime))) {
      given.push_back({eventP->mTime, eventP->mType, eventP->mValue});
      RC_ASSERT(given.size() <= expected.size());
    }
    if (iTime < mPosition) std::reverse(given.begin(), given.end());
    RC_ASSERT(std::is_sorted(given.begin(), given.end(), [](auto const & a, auto const & b) {
      return std::tie(a.mTime, a.mType) < std::tie(b.mTime, b.mType);
    }));
    std::sort(given.begin(), given.end());
    RC_ASSERT(given == expected);
    mPosition = iTime;
  }

  // The host turns round in the middle of a move: what it was given it is given back, and no more.
  void Interrupt() {
    long long const target = AnyTime();
    Transitions given;
    for (int i = *rc::gen::inRange(1, 6); i > 0; --i) {
      Vrad_ScrubEvent const * const eventP = mList.MoveTowards(Time_Tick(target));
      if (!eventP) {
        mPosition = target;
        return;
      }
      given.push_back({eventP->mTime, eventP->mType, eventP->mValue});
    }
    long long const position = mPosition;
    for (; !given.empty(); given.pop_back()) {
      Vrad_ScrubEvent const * const eventP = mList.MoveTowards(Time_Tick(position));
      RC_ASSERT(eventP != nullptr);
      RC_ASSERT((Transition{eventP->mTime, eventP->mType, eventP->mValue}) == given.back());
    }
    RC_ASSERT(mList.MoveTowards(Time_Tick(position)) == nullptr);
  }

  Vrad_ScrubList mList;
  Transitions mAll;
  long long mPosition = 0;
};

std::string Print(Transition const & iTransition) {
  Vrad_ScrubEvent event;
  event.mTime = iTransition.mTime;
  event.mType = iTransition.mType;
  event.mValue = static_cast<short>(iTransition.mValue);
  return Print(&event);
}

// The list in an array. The place behind the last one stands for null.
class ArrayList {
public:
  void AddNote(int iPitch, long long iStart, long long iLength, bool iFromEnd) {
    Transition const start{iStart, 3, iPitch}, end{iStart + iLength, 0, iPitch};
    if (!mAll.empty()) return AddPair(start, end, iFromEnd);
    Insert(0, start);
    Insert(1, end);
  }
  void AddBend(int iBefore, int iAfter, long long iTime, bool iFromEnd) {
    Transition const before{iTime, 1, iBefore}, after{iTime, 2, iAfter};
    if (!mAll.empty()) return AddPair(before, after, iFromEnd);
    mAll = {before, after};
    mCurrent = 2;
  }
  std::string MoveTowards(long long iTime) {
    if (mCurrent < mAll.size() && !mAll[mCurrent].IsAhead(iTime)) {
      mPosition = mAll[mCurrent].mTime;
      return Print(mAll[mCurrent++]);
    }
    bool const isMovingOn = mCurrent == mAll.size() && iTime > mPosition;
    if (isMovingOn || mCurrent == 0 || !mAll[mCurrent - 1].IsAhead(iTime)) {
      mPosition = iTime;
      return "none";
    }
    mPosition = mAll[--mCurrent].mTime;
    return Print(mAll[mCurrent]);
  }
  void Clear() {
    mAll.clear();
    mCurrent = 0;
  }

private:
  static bool GoesBefore(Transition const & iA, Transition const & iB) {
    return std::tie(iA.mTime, iA.mType) < std::tie(iB.mTime, iB.mType);
  }
  void AddPair(Transition const & iFirst, Transition const & iSecond, bool iFromEnd) {
    if (iFromEnd)
      InsertBefore(iFirst, InsertBefore(iSecond, mAll.size() - 1));
    else
      InsertAfter(iSecond, InsertAfter(iFirst, 0));
  }
  // Both give the place where the one ended up that the look stopped at.
  size_t InsertAfter(Transition const & iNew, size_t iAt) {
    while (GoesBefore(mAll[iAt], iNew) && iAt + 1 < mAll.size())
      ++iAt;
    bool const isLast = GoesBefore(mAll[iAt], iNew);
    Insert(isLast ? iAt + 1 : iAt, iNew);
    return isLast ? iAt : iAt + 1;
  }
  size_t InsertBefore(Transition const & iNew, size_t iAt) {
    while (GoesBefore(iNew, mAll[iAt]) && iAt > 0)
      --iAt;
    bool const isFirst = GoesBefore(iNew, mAll[iAt]);
    Insert(isFirst ? iAt : iAt + 1, iNew);
    return isFirst ? iAt + 1 : iAt;
  }
  void Insert(size_t iAt, Transition const & iNew) {
    bool const isNext = iAt == mCurrent && iNew.IsAhead(mPosition);
    mAll.insert(mAll.begin() + static_cast<std::ptrdiff_t>(iAt), iNew);
    if (iAt <= mCurrent && !isNext) ++mCurrent;
  }

  std::vector<Transition> mAll;
  size_t mCurrent = 0;
  long long mPosition = 0;
};

}  // namespace

RC_GTEST_PROP(Vrad_ScrubList_Properties, DoesAsTheSameRulesInAnArray, ()) {
  Vrad_ScrubList list;
  ArrayList expected;
  for (int i = *rc::gen::inRange(0, 80); i > 0; --i) {
    int const what = *rc::gen::inRange(0, 14);
    long long const time = *rc::gen::inRange(-2, 5);
    bool const isFromEnd = *rc::gen::arbitrary<bool>();
    if (what == 0) {
      list.Clear();
      expected.Clear();
    } else if (what < 4) {
      list.AddPitchBend(ScrubBend(i, time), static_cast<short>(-i), isFromEnd);
      expected.AddBend(-i, i, time, isFromEnd);
    } else if (what < 8) {
      long long const length = *rc::gen::inRange(0, 4);
      list.AddNote(ScrubNote(i, time, length), isFromEnd);
      expected.AddNote(i, time, length, isFromEnd);
    } else {
      RC_ASSERT(Print(list.MoveTowards(Time_Tick(time))) == expected.MoveTowards(time));
    }
  }
}

RC_GTEST_PROP(Vrad_ScrubList_Properties, EachTransitionIsGivenOnceForEachCrossing, ()) {
  Scrubber().Run();
}

RC_GTEST_PROP(Vrad_ScrubList_Properties, TheWayBackIsTheWayThereReversed, ()) {
  Vrad_ScrubList list;
  list.AddNote(ScrubNote(60, AnyTime(), *rc::gen::inRange(1, 30)), false);
  for (int i = *rc::gen::inRange(0, 20); i > 0; --i)
    list.AddNote(ScrubNote(*rc::gen::inRange(58, 62), AnyTime(), *rc::gen::inRange(1, 30)),
                 *rc::gen::arbitrary<bool>());
  MoveTo(list, -100);
  std::vector<Vrad_ScrubEvent *> there, back;
  while (Vrad_ScrubEvent * const eventP = list.MoveTowards(Time_Tick(200)))
    there.push_back(eventP);
  while (Vrad_ScrubEvent * const eventP = list.MoveTowards(Time_Tick(-100)))
    back.push_back(eventP);
  std::reverse(back.begin(), back.end());
  RC_ASSERT(there == back);
}
