#include "cmn/cmn_polyvector.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

// Counts the living, and can refuse to be copied.
class Tracked {
public:
  Tracked(int iValue = 0) : mValue(iValue) { ++sNumAlive; }
  Tracked(Tracked const & iOther) : mValue(iOther.mValue) {
    CountCopy();
    ++sNumAlive;
  }
  Tracked & operator=(Tracked const & iOther) {
    CountCopy();
    mValue = iOther.mValue;
    return *this;
  }
  ~Tracked() { --sNumAlive; }

  int mValue;
  static int sNumAlive;
  static int sCopiesLeft;  // -1: any number

private:
  static void CountCopy() {
    if (sCopiesLeft == 0) throw std::runtime_error("refused");
    if (sCopiesLeft > 0) --sCopiesLeft;
  }
};

int Tracked::sNumAlive = 0;
int Tracked::sCopiesLeft = -1;

typedef Cmn_PolyVector<Tracked, 0> Vector;
typedef Cmn_PolyVector<std::string, 0> Strings;

std::string Print(Vector const & iVector) {
  std::string result;
  for (Tracked const & element : iVector)
    result += std::to_string(element.mValue) + " ";
  return result;
}

std::string Print(Strings const & iVector) {
  std::string result;
  for (std::string const & element : iVector)
    result += element + " ";
  return result;
}

Vector MakeVector(int iNum) {
  Vector vector;
  for (int i = 0; i < iNum; ++i)
    vector.push_back(Tracked(i));
  return vector;
}

Strings MakeStrings() {
  Strings strings;
  for (char const * text : {"a", "b", "c", "d"})
    strings.push_back(text);
  return strings;
}

// Lets the first copy fail, then the second, ... until the edit passes; the vector must be as it
// was after each failure.
template <class TEdit>
int CountRefusals(Vector const & iStart, TEdit iEdit) {
  for (int num = 0;; ++num) {
    Vector vector(iStart);
    Tracked::sCopiesLeft = num;
    try {
      iEdit(vector);
      Tracked::sCopiesLeft = -1;
      return num;
    } catch (std::runtime_error const &) {
      Tracked::sCopiesLeft = -1;
    }
    EXPECT_EQ(Print(iStart), Print(vector)) << "after " << num << " copies";
  }
}

}  // namespace

TEST(Cmn_PolyVector, StartsEmptyWithAPlaceholderForAPosition) {
  Vector const vector;
  EXPECT_EQ(0u, vector.Size());
  EXPECT_TRUE(vector.empty());
  EXPECT_NE(nullptr, vector.Begin());
  EXPECT_EQ(vector.Begin(), vector.End());
}

TEST(Cmn_PolyVector, KeepsElementsInOrderAsItGrows) {
  EXPECT_EQ("0 1 2 3 4 5 6 7 8 ", Print(MakeVector(9)));
}

TEST(Cmn_PolyVector, GivesFrontBackAndIndices) {
  Vector vector = MakeVector(3);
  vector.back().mValue = 7;
  EXPECT_EQ(0, vector.front().mValue);
  EXPECT_EQ(1, vector[1].mValue);
  EXPECT_EQ(7, std::as_const(vector).back().mValue);
}

TEST(Cmn_PolyVector, DestroysEveryElementItMade) {
  {
    Vector vector = MakeVector(20);
    vector.erase(vector.begin() + 3, vector.begin() + 9);
    vector.insert(vector.begin() + 2, Tracked(5));
    Vector const copy(vector);
    vector.clear();
  }
  EXPECT_EQ(0, Tracked::sNumAlive);
}

TEST(Cmn_PolyVector_Copy, HasElementsOfItsOwn) {
  Vector const vector = MakeVector(3);
  Vector copy(vector);
  copy[0].mValue = 9;
  EXPECT_EQ("0 1 2 ", Print(vector));
  EXPECT_EQ("9 1 2 ", Print(copy));
}

TEST(Cmn_PolyVector_Copy, AssignsLongerAndShorterOnes) {
  Strings strings = MakeStrings();
  strings = Strings();
  EXPECT_EQ("", Print(strings));
  strings = MakeStrings();
  EXPECT_EQ("a b c d ", Print(strings));
}

TEST(Cmn_PolyVector_Copy, AssigningItselfChangesNothing) {
  Vector vector = MakeVector(3);
  Vector const & self = vector;
  vector = self;
  EXPECT_EQ("0 1 2 ", Print(vector));
}

TEST(Cmn_PolyVector_Move, LeavesTheSourceEmpty) {
  Vector source = MakeVector(3);
  Vector const target(std::move(source));
  EXPECT_EQ("0 1 2 ", Print(target));
  EXPECT_EQ(0u, source.Size());
}

TEST(Cmn_PolyVector_Insert, GivesThePositionOfTheNewElement) {
  Vector vector = MakeVector(4);
  EXPECT_EQ(2, vector.Insert(vector.Begin() + 2, Tracked(9)) - vector.Begin());
  EXPECT_EQ("0 1 9 2 3 ", Print(vector));
}

TEST(Cmn_PolyVector_Insert, WorksAtBothEnds) {
  Vector vector = MakeVector(2);
  vector.insert(vector.begin(), Tracked(8));
  vector.insert(vector.end(), Tracked(9));
  EXPECT_EQ("8 0 1 9 ", Print(vector));
}

TEST(Cmn_PolyVector_Insert, OfARangeGivesItsFirstElement) {
  Vector const source = MakeVector(3);
  Vector vector = MakeVector(2);
  EXPECT_EQ(1, vector.insert(vector.begin() + 1, source.begin(), source.end()) - vector.begin());
  EXPECT_EQ("0 0 1 2 1 ", Print(vector));
}

TEST(Cmn_PolyVector_Insert, OfAnEmptyRangeGivesThePosition) {
  Vector vector = MakeVector(2);
  EXPECT_EQ(1, vector.insert(vector.begin() + 1, vector.end(), vector.end()) - vector.begin());
  EXPECT_EQ("0 1 ", Print(vector));
}

TEST(Cmn_PolyVector_Insert, TakesAnElementOfItself) {
  Strings strings = MakeStrings();
  strings.insert(strings.begin(), strings[2]);
  strings.reserve(100);
  strings.insert(strings.begin(), strings.back());
  EXPECT_EQ("d c a b c d ", Print(strings));
}

TEST(Cmn_PolyVector_Insert, TakesARangeOfItself) {
  Strings strings = MakeStrings();
  strings.insert(strings.begin() + 2, strings.begin() + 1, strings.begin() + 4);
  EXPECT_EQ("a b b c d c d ", Print(strings));
}

TEST(Cmn_PolyVector_Insert, TakesARangeOfItselfWithRoomToSpare) {
  Cmn_PolyVector<int> vector;
  vector.reserve(20);
  for (int i = 0; i < 5; ++i)
    vector.push_back(i);
  vector.insert(vector.begin() + 1, vector.begin(), vector.begin() + 4);
  EXPECT_EQ(9u, vector.size());
  EXPECT_EQ(3, vector[4]);
  EXPECT_EQ(1, vector[5]);
}

TEST(Cmn_PolyVector_PushBack, TakesAnElementOfItselfWhenItGrows) {
  Strings strings;
  strings.push_back("a long enough text to live outside of its string");
  for (int i = 0; i < 9; ++i)
    strings.push_back(strings.front());
  EXPECT_EQ(strings.front(), strings.back());
}

TEST(Cmn_PolyVector_Erase, GivesThePositionBehindTheGap) {
  Vector vector = MakeVector(5);
  EXPECT_EQ(1, vector.Erase(vector.Begin() + 1)->mValue - 1);
  EXPECT_EQ("0 2 3 4 ", Print(vector));
  EXPECT_EQ(4, vector.erase(vector.begin() + 1, vector.begin() + 3)->mValue);
  EXPECT_EQ("0 4 ", Print(vector));
}

TEST(Cmn_PolyVector_Erase, OfAnEmptyRangeChangesNothing) {
  Vector vector = MakeVector(2);
  EXPECT_EQ(vector.begin(), vector.erase(vector.begin(), vector.begin()));
  EXPECT_EQ("0 1 ", Print(vector));
}

TEST(Cmn_PolyVector_Clear, KeepsTheRoom) {
  Vector vector = MakeVector(8);
  Tracked const * const place = vector.begin();
  vector.clear();
  vector.push_back(Tracked(1));
  EXPECT_EQ(place, vector.begin());
}

TEST(Cmn_PolyVector_Reserve, KeepsTheSizeAndThePlacesAfterwards) {
  Vector vector = MakeVector(2);
  vector.Reserve(50);
  Tracked const * const place = vector.begin();
  for (int i = 2; i < 50; ++i)
    vector.push_back(Tracked(i));
  EXPECT_EQ(place, vector.begin());
  EXPECT_EQ(50u, vector.size());
}

TEST(Cmn_PolyVector_Reserve, OfMoreThanThereIsFailsAndChangesNothing) {
  Vector vector = MakeVector(2);
  EXPECT_THROW(vector.reserve(std::numeric_limits<size_t>::max() / 4), std::bad_alloc);
  EXPECT_EQ("0 1 ", Print(vector));
}

TEST(Cmn_PolyVector_Failure, PushBackLeavesTheVectorAsItWas) {
  EXPECT_EQ(5, CountRefusals(MakeVector(4), [](Vector & v) { v.push_back(Tracked(9)); }));
}

TEST(Cmn_PolyVector_Failure, InsertingInTheMiddleLeavesTheVectorAsItWas) {
  EXPECT_EQ(5,
            CountRefusals(MakeVector(4), [](Vector & v) { v.insert(v.begin() + 1, Tracked(9)); }));
}

TEST(Cmn_PolyVector_Failure, InsertingARangeLeavesTheVectorAsItWas) {
  Vector const source = MakeVector(3);
  EXPECT_EQ(7, CountRefusals(MakeVector(4), [&source](Vector & v) {
              v.insert(v.begin() + 1, source.begin(), source.end());
            }));
}

TEST(Cmn_PolyVector_Failure, AppendingARangeWithRoomLeavesTheVectorAsItWas) {
  Vector const source = MakeVector(3);
  EXPECT_EQ(7, CountRefusals(MakeVector(4), [&source](Vector & v) {
              v.reserve(20);
              v.insert(v.end(), source.begin(), source.end());
            }));
}

TEST(Cmn_PolyVector_Failure, AssigningLeavesTheVectorAsItWas) {
  Vector const source = MakeVector(3);
  EXPECT_EQ(3, CountRefusals(MakeVector(4), [&source](Vector & v) { v = source; }));
}

TEST(Cmn_PolyVector_Failure, LeavesNoElementBehind) {
  CountRefusals(MakeVector(4), [](Vector & v) { v.insert(v.begin(), Tracked(9)); });
  EXPECT_EQ(0, Tracked::sNumAlive);
}

TEST(Cmn_PolyVectorImpl, WorksThroughUntypedPositions) {
  Cmn_PolyVectorTraits<std::string> traits;
  Cmn_PolyVectorImpl impl(traits, sizeof(std::string));
  std::string const text = "one";
  std::string const other = "two";
  impl.Insert(impl.End(), &text);
  impl.Insert(impl.Begin(), &other);
  EXPECT_EQ(2u, impl.Size());
  EXPECT_EQ("two", *reinterpret_cast<std::string *>(impl[0]));
  EXPECT_EQ("one", *reinterpret_cast<std::string *>(impl.Begin() + sizeof(std::string)));
  impl.Erase(impl.Begin());
  EXPECT_EQ("one", *reinterpret_cast<std::string *>(impl.Begin()));
}

TEST(Cmn_PolyVectorImpl, InitCopiesIntoAnEmptyVector) {
  Cmn_PolyVectorTraits<int> traits;
  Cmn_PolyVectorImpl source(traits, sizeof(int)), target(traits, sizeof(int));
  int const value = 3;
  source.Insert(source.End(), &value);
  target.Init(source);
  EXPECT_EQ(3, *reinterpret_cast<int *>(target[0]));
}

TEST(Cmn_PolyVectorImpl, CanBeUsedAgainAfterDestruct) {
  Cmn_PolyVectorTraits<int> traits;
  Cmn_PolyVectorImpl impl(traits, sizeof(int));
  int const value = 3;
  impl.Insert(impl.End(), &value);
  impl.Destruct();
  EXPECT_EQ(0u, impl.Size());
  impl.Insert(impl.End(), &value);
  EXPECT_EQ(1u, impl.Size());
}

TEST(Cmn_PolyVector, HoldsBytes) {
  Cmn_PolyVector<unsigned char, 0> bytes;
  unsigned char const some[] = {0xF0, 1, 2, 0xF7};
  bytes.insert(bytes.begin(), some, some + 4);
  EXPECT_EQ(4u, bytes.size());
  EXPECT_EQ(0xF7, bytes.back());
}
