// Sorting retrieved events against std::stable_sort, and under orders that contradict themselves or
// throw. The order of mixed units is the host's, through its converter, so a test can make it odd.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <vector>

#include "foundation/time_convert.h"
#include "vrad/vrad_extendedeventlist.h"

namespace {

struct Key {
  Time_Typed mTime;
  bool mIsNote;
  int mNumber;  // tells the element
};

bool operator==(Key const & iA, Key const & iB) {
  return iA.mNumber == iB.mNumber && iA.mIsNote == iB.mIsNote &&
         iA.mTime.AsInt64() == iB.mTime.AsInt64() && iA.mTime.GetType() == iB.mTime.GetType();
}

Vrae_Event EventOf(Key const & iKey) {
  if (iKey.mIsNote)
    return Vrae_NoteWithDurationEvent(60, Time_TypedLength(iKey.mNumber + 1, Time_eType_Ticks), 80,
                                      64);
  unsigned char contents[20];
  for (int i = 0; i < 20; ++i)
    contents[i] = static_cast<unsigned char>(i < 4 ? iKey.mNumber >> (7 * i) & 0x7f : 0);
  return Vrae_SysexEvent(20, contents);
}

Key KeyOf(Time_Typed iTime, Vrae_Event const & iEvent) {
  if (iEvent.GetType() == Vrae_Event::kNoteWithDuration)
    return {iTime, true, static_cast<int>(iEvent.AsNoteWithDuration().GetDuration().AsInt64()) - 1};
  unsigned char const * const contents = iEvent.AsSysex().GetInternalDataPtr();
  return {iTime, false, contents[0] | contents[1] << 7 | contents[2] << 14 | contents[3] << 21};
}

// Fills, sorts and reads one kind of list.
struct TimedKind {
  typedef Vrae_TimedEventList List;
  static Vrae_TimedEvent Make(Key const & iKey) { return {iKey.mTime, EventOf(iKey)}; }
  static Key Read(Vrae_TimedEvent const & iE) { return KeyOf(iE.mTime, iE.mEvent); }
};

struct ExtendedKind {
  typedef Vrad_ExtendedEventList List;
  static Vrad_ExtendedEvent Make(Key const & iKey) { return {iKey.mTime, EventOf(iKey)}; }
  static Key Read(Vrad_ExtendedEvent const & iE) { return KeyOf(iE.mTime, iE.mEvent); }
};

struct DisplayKind {
  typedef Vrad_DisplayItemList List;
  static Vrad_DisplayItem Make(Key const & iKey) {
    Vrad_ExtendedEvent const event(iKey.mTime, EventOf(iKey));
    return {event, event, true, iKey.mNumber};
  }
  static Key Read(Vrad_DisplayItem const & iItem) {
    RC_ASSERT(iItem.mDisplayValue == KeyOf(iItem.mTime, iItem.mNewEvent.mEvent).mNumber);
    RC_ASSERT(iItem.mDisplayValue == KeyOf(iItem.mTime, iItem.mOrigEvent.mEvent).mNumber);
    return KeyOf(iItem.mTime, iItem.mNewEvent.mEvent);
  }
};

template <class TKind>
typename TKind::List MakeList(std::vector<Key> const & iKeys) {
  typename TKind::List list;
  for (Key const & key : iKeys)
    list.push_back(TKind::Make(key));
  return list;
}

template <class TKind>
std::vector<Key> Read(typename TKind::List const & iList) {
  std::vector<Key> keys;
  for (auto const & element : iList)
    keys.push_back(TKind::Read(element));
  return keys;
}

template <class TKind>
bool GoesBefore(Key const & iA, Key const & iB) {
  if (iA.mTime != iB.mTime) return iA.mTime < iB.mTime;
  return !iA.mIsNote && iB.mIsNote;
}

// Items of one kind go on by the events' own order; numbers are made so that it is theirs.
template <>
bool GoesBefore<DisplayKind>(Key const & iA, Key const & iB) {
  if (iA.mTime != iB.mTime || iA.mIsNote != iB.mIsNote) return GoesBefore<TimedKind>(iA, iB);
  return EventOf(iA) < EventOf(iB);
}

std::vector<int> NumbersOf(std::vector<Key> const & iKeys) {
  std::vector<int> numbers;
  for (Key const & key : iKeys)
    numbers.push_back(key.mNumber);
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

// Runs that are sorted in themselves, as retrievals append them; iRunLength 1 gives no order at
// all.
std::vector<Key> MakeRuns(unsigned iSeed, int iNum, int iRunLength, int iNumTimes, bool iMixUnits) {
  std::mt19937 random(iSeed);
  auto const below = [&random](int iLimit) {
    return static_cast<int>(random() % static_cast<unsigned>(iLimit));
  };
  std::vector<Key> keys;
  for (int number = 0; number < iNum; ++number) {
    Time_EType const unit = iMixUnits && below(2) ? Time_eType_Samples : Time_eType_Ticks;
    keys.push_back({Time_Typed(below(iNumTimes), unit), below(2) == 1, number});
  }
  for (size_t at = 0; at < keys.size();) {
    size_t const end = std::min(keys.size(), at + 1 + static_cast<size_t>(below(iRunLength)));
    std::stable_sort(keys.begin() + static_cast<std::ptrdiff_t>(at),
                     keys.begin() + static_cast<std::ptrdiff_t>(end), GoesBefore<TimedKind>);
    at = end;
  }
  return keys;
}

std::vector<Key> DrawKeys(bool iMixUnits) {
  unsigned const seed = *rc::gen::arbitrary<unsigned>();
  int const num = *rc::gen::element(0, 1, 2, 3, 10, 100, 511, 512, 513, 1500, 3000);
  int const runLength = *rc::gen::element(1, 5, 100, 2000);
  int const numTimes = *rc::gen::element(1, 3, 1000, 1000000);
  return MakeRuns(seed, num, runLength, numTimes, iMixUnits);
}

template <class TKind>
void SortsLikeTheModel() {
  std::vector<Key> keys = DrawKeys(*rc::gen::arbitrary<bool>());
  typename TKind::List list = MakeList<TKind>(keys);
  int const first = *rc::gen::inRange(0, static_cast<int>(keys.size()) + 1);
  Vrad_EventListWrapper(&list).sort(static_cast<unsigned long long>(first));
  std::stable_sort(keys.begin() + first, keys.end(), GoesBefore<TKind>);
  RC_ASSERT(Read<TKind>(list) == keys);
}

// Compares unlike units by the throw of a die; after a number of calls it throws itself.
class OddConverter : public Time_Converter {
public:
  OddConverter(unsigned iSeed, int iNumCalls)
      : mFormerP(Time_Convert::sTimeConverter), mRandom(iSeed), mNumCalls(iNumCalls) {
    Time_Convert::sTimeConverter = this;
  }
  ~OddConverter() override { Time_Convert::sTimeConverter = mFormerP; }
  OddConverter(OddConverter const &) = delete;
  OddConverter & operator=(OddConverter const &) = delete;

  Time_Typed ToType(Time_Typed iTime, Time_EType iType) const override {
    return Time_Typed(iTime.AsInt64(), iType);
  }
  Time_Typed AddLength(Time_Typed iStart, Time_TypedLength const & iLength) const override {
    return Time_Typed(iStart.AsInt64() + iLength.AsInt64(), iStart.GetType());
  }
  int Compare(Time_Typed, Time_Typed) const override {
    if (mNumCalls >= 0 && mNumCalls-- == 0) throw std::runtime_error("odd");
    return static_cast<int>(mRandom() % 3) - 1;
  }

private:
  Time_Converter * mFormerP;
  mutable std::mt19937 mRandom;
  mutable int mNumCalls;
};

template <class TKind>
void KeepsTheElementsUnderAnyOrder() {
  std::vector<Key> const keys = DrawKeys(true);
  typename TKind::List list = MakeList<TKind>(keys);
  {
    OddConverter const converter(*rc::gen::arbitrary<unsigned>(), -1);
    Vrad_EventListWrapper(&list).sort(0);
  }
  RC_ASSERT(NumbersOf(Read<TKind>(list)) == NumbersOf(keys));
}

template <class TKind>
void KeepsTheElementsWhenTheOrderThrows() {
  std::vector<Key> const keys = DrawKeys(true);
  typename TKind::List list = MakeList<TKind>(keys);
  {
    OddConverter const converter(*rc::gen::arbitrary<unsigned>(), *rc::gen::inRange(0, 20000));
    try {
      Vrad_EventListWrapper(&list).sort(0);
    } catch (std::runtime_error const &) {
    }
  }
  RC_ASSERT(NumbersOf(Read<TKind>(list)) == NumbersOf(keys));
}

}  // namespace

RC_GTEST_PROP(EventListSort, TimedListSortsLikeTheModel, ()) {
  SortsLikeTheModel<TimedKind>();
}

RC_GTEST_PROP(EventListSort, ExtendedListSortsLikeTheModel, ()) {
  SortsLikeTheModel<ExtendedKind>();
}

RC_GTEST_PROP(EventListSort, DisplayListSortsLikeTheModel, ()) {
  SortsLikeTheModel<DisplayKind>();
}

RC_GTEST_PROP(EventListSort, TimedListKeepsItsElementsUnderAnyOrder, ()) {
  KeepsTheElementsUnderAnyOrder<TimedKind>();
}

RC_GTEST_PROP(EventListSort, ExtendedListKeepsItsElementsUnderAnyOrder, ()) {
  KeepsTheElementsUnderAnyOrder<ExtendedKind>();
}

RC_GTEST_PROP(EventListSort, DisplayListKeepsItsElementsUnderAnyOrder, ()) {
  KeepsTheElementsUnderAnyOrder<DisplayKind>();
}

RC_GTEST_PROP(EventListSort, TimedListKeepsItsElementsWhenTheOrderThrows, ()) {
  KeepsTheElementsWhenTheOrderThrows<TimedKind>();
}

RC_GTEST_PROP(EventListSort, DisplayListKeepsItsElementsWhenTheOrderThrows, ()) {
  KeepsTheElementsWhenTheOrderThrows<DisplayKind>();
}
