// Records that are built where they belong, and writes that no key depends on.
#include <string>

#include <gtest/gtest.h>

#include "cmn/cmn_chunkyvector.h"

namespace {

struct Pair {
  int mKey;
  int mRest;
};

class PairDigest final : public Cmn_ChunkyVecDigest {
public:
  void Extract(char const * iRecords, int iNum, long long * oOrder, long long * oExtent,
               unsigned char * oMarks) const override {
    Pair const * const pairs = reinterpret_cast<Pair const *>(iRecords);
    for (int i = 0; i < iNum; ++i) {
      oOrder[i] = oExtent[i] = pairs[i].mKey;
      oMarks[i] = 1;
      ++sNumExtracted;
    }
  }
  static inline int sNumExtracted = 0;
};

typedef Cmn_ChunkyPODVector<Pair> Pairs;

Pairs MakePairs(int iNum) {
  static PairDigest const sDigest;
  Pairs pairs(&sDigest);
  for (int i = 0; i < iNum; ++i)
    pairs.PushBack({i, 0});
  return pairs;
}

// Writes as many records as fit; gives how many.
int FillTail(Pairs & ioPairs) {
  Pair * place;
  int const room = ioPairs.OpenTail(&place);
  int const first = ioPairs.Size();
  for (int i = 0; i < room; ++i)
    place[i] = {first + i, 0};
  ioPairs.CloseTail(room);
  return room;
}

bool CountsUp(Pairs const & iPairs) {
  for (int i = 0; i < iPairs.Size(); ++i)
    if (iPairs.ReadAt(i).mKey != i) return false;
  return true;
}

}  // namespace

TEST(Cmn_ChunkyPODVector_Tail, HasNoRoomInAnEmptySequence) {
  Pairs pairs = MakePairs(0);
  Pair * place;
  EXPECT_EQ(0, pairs.OpenTail(&place));
  pairs.CloseTail(0);
  EXPECT_EQ(0, pairs.Size());
}

TEST(Cmn_ChunkyPODVector_Tail, TakesWhatFitsIntoTheLastChunk) {
  Pairs pairs = MakePairs(65);
  EXPECT_EQ(63, FillTail(pairs));
  EXPECT_EQ(128, pairs.Size());
  EXPECT_EQ(0, FillTail(pairs));
  EXPECT_TRUE(CountsUp(pairs));
}

TEST(Cmn_ChunkyPODVector_Tail, GrowsToAnySizeWithSinglesBetween) {
  Pairs pairs = MakePairs(0);
  while (pairs.Size() < 20000) {
    FillTail(pairs);
    pairs.PushBack({pairs.Size(), 0});
  }
  EXPECT_TRUE(CountsUp(pairs));
  EXPECT_EQ(12345, pairs.GetImpl().LowerBound(12345));
  EXPECT_EQ(pairs.Size() - 1, pairs.GetImpl().Summarise().mLast);
}

TEST(Cmn_ChunkyPODVector_Tail, TakesFewerThanThereIsRoomFor) {
  Pairs pairs = MakePairs(65);
  Pair * place;
  ASSERT_EQ(63, pairs.OpenTail(&place));
  place[0] = {65, 0};
  place[1] = {-1, 0};  // not counted
  pairs.CloseTail(1);
  EXPECT_EQ(66, pairs.Size());
  EXPECT_EQ(65, pairs.GetImpl().Summarise().mLast);
  EXPECT_TRUE(pairs.GetImpl().Summarise().mAscending);
}

TEST(Cmn_ChunkyPODVector_Tail, HasNoRoomWhileACopyShares) {
  Pairs pairs = MakePairs(65);
  Pairs const copy(pairs);
  Pair * place;
  EXPECT_EQ(0, pairs.OpenTail(&place));
  pairs.PushBack({65, 0});
  EXPECT_EQ(62, FillTail(pairs));
  EXPECT_EQ(65, copy.Size());
}

TEST(Cmn_ChunkyPODVector_BesideKeys, WritesWithoutDrawingKeysAgain) {
  Pairs pairs = MakePairs(200);
  PairDigest::sNumExtracted = 0;
  Pair * place;
  for (int i = 0, num; (num = pairs.GetSpanBesideKeys(i, &place)) > 0; i += num)
    for (int j = 0; j < num; ++j)
      place[j].mRest = i + j;
  pairs.Settle();
  EXPECT_EQ(0, PairDigest::sNumExtracted);
  EXPECT_EQ(150, pairs.ReadAt(150).mRest);
  EXPECT_EQ(100, pairs.GetImpl().LowerBound(100));
}

TEST(Cmn_ChunkyPODVector_BesideKeys, LeavesCopiesAlone) {
  Pairs pairs = MakePairs(200);
  Pairs const copy(pairs);
  Pair * place;
  ASSERT_LT(0, pairs.GetSpanBesideKeys(150, &place));
  place->mRest = 7;
  EXPECT_EQ(7, pairs.ReadAt(150).mRest);
  EXPECT_EQ(0, copy.ReadAt(150).mRest);
}

TEST(Cmn_ChunkyPODVector_BesideKeys, HasNothingOutsideTheSequence) {
  Pairs pairs = MakePairs(3);
  Pair * place;
  EXPECT_EQ(0, pairs.GetSpanBesideKeys(3, &place));
  EXPECT_EQ(0, pairs.GetSpanBesideKeys(-1, &place));
}
