#include "cmn/cmn_chunkyvector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <new>
#include <numeric>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "cmn/cmn_assert.h"
#include "support/counting_heap.h"

namespace {

struct Record {
  long long mKey;
  char mRest[192];
};

typedef Cmn_ChunkyPODVector<int> Numbers;

Numbers MakeNumbers(int iNum) {
  Numbers numbers;
  for (int i = 0; i < iNum; ++i)
    numbers.PushBack(i);
  return numbers;
}

std::string Print(Numbers const & iNumbers) {
  std::string result;
  for (int number : iNumbers)
    result += std::to_string(number) + " ";
  return result;
}

// The order key is the number, the extent key its double; even numbers are marked with 1.
class NumberDigest final : public Cmn_ChunkyVecDigest {
public:
  void Extract(char const * iRecords, int iNum, long long * oOrder, long long * oExtent,
               unsigned char * oMarks) const override {
    int const * const numbers = reinterpret_cast<int const *>(iRecords);
    for (int i = 0; i < iNum; ++i) {
      oOrder[i] = numbers[i];
      oExtent[i] = 2LL * numbers[i];
      oMarks[i] = numbers[i] % 2 == 0 ? 1 : 2;
    }
  }
};
NumberDigest const sDigest;

Numbers MakeKeyedNumbers(int iNum) {
  Numbers numbers(&sDigest);
  for (int i = 0; i < iNum; ++i)
    numbers.PushBack(i);
  return numbers;
}

// Refuses the first request, then the second, ... until the edit passes; the sequence must be as it
// was after each failure. Gives how often it failed.
template <class TEdit>
int CountRefusals(Numbers const & iStart, TEdit iEdit) {
  std::string const expected = Print(iStart);
  for (int num = 0;; ++num) {
    Numbers numbers(iStart);
    if (!RunsOutOfMemory(num, [&] { iEdit(numbers); })) return num;
    EXPECT_EQ(expected, Print(numbers)) << "after " << num << " requests";
  }
}

}  // namespace

TEST(Cmn_ChunkyPODVector, StartsEmpty) {
  Numbers const numbers;
  EXPECT_EQ(0, numbers.Size());
  EXPECT_TRUE(numbers.Begin() == numbers.End());
}

TEST(Cmn_ChunkyPODVector, KeepsRecordsInOrderOverManyChunks) {
  Numbers const numbers = MakeNumbers(50000);
  int expected = 0;
  for (int number : numbers)
    ASSERT_EQ(expected++, number);
  EXPECT_EQ(50000, expected);
  EXPECT_EQ(49999, numbers[49999]);
}

TEST(Cmn_ChunkyPODVector, InsertsBeforeAPosition) {
  Numbers numbers = MakeNumbers(4);
  auto const at = numbers.Insert(numbers.Begin() + 2, 9);
  EXPECT_EQ(2, at.GetIndex());
  EXPECT_EQ(9, *at);
  EXPECT_EQ("0 1 9 2 3 ", Print(numbers));
}

TEST(Cmn_ChunkyPODVector, InsertsARangeOfAnotherSequence) {
  Numbers const source = MakeNumbers(3);
  Numbers numbers = MakeNumbers(2);
  EXPECT_EQ(1, numbers.Insert(numbers.Begin() + 1, source.Begin(), source.End()).GetIndex());
  EXPECT_EQ("0 0 1 2 1 ", Print(numbers));
}

TEST(Cmn_ChunkyPODVector, InsertsARangeOfItself) {
  Numbers numbers = MakeNumbers(4);
  numbers.Insert(numbers.Begin() + 2, numbers.Begin() + 1, numbers.End());
  EXPECT_EQ("0 1 1 2 3 2 3 ", Print(numbers));
}

TEST(Cmn_ChunkyPODVector, InsertsARecordOfItself) {
  Numbers numbers = MakeNumbers(200);
  Numbers const snapshot(numbers);
  numbers.Insert(numbers.Begin() + 1, numbers.ReadAt(199));
  EXPECT_EQ(199, std::as_const(numbers)[1]);
  numbers.PushBack(numbers.ReadAt(5));
  EXPECT_EQ(4, std::as_const(numbers)[201]);
}

TEST(Cmn_ChunkyPODVector, ErasesAndGivesThePositionBehindTheGap) {
  Numbers numbers = MakeNumbers(5);
  EXPECT_EQ(2, *numbers.Erase(numbers.Begin() + 1));
  EXPECT_EQ("0 2 3 4 ", Print(numbers));
  EXPECT_EQ(2, numbers.Erase(numbers.Begin() + 2, numbers.End()).GetIndex());
  EXPECT_EQ("0 2 ", Print(numbers));
}

TEST(Cmn_ChunkyPODVector, ErasesALongStretch) {
  Numbers numbers = MakeNumbers(30000);
  numbers.Erase(numbers.Begin() + 10, numbers.Begin() + 29990);
  EXPECT_EQ("0 1 2 3 4 5 6 7 8 9 29990 29991 29992 29993 29994 29995 29996 29997 29998 29999 ",
            Print(numbers));
}

TEST(Cmn_ChunkyPODVector, TakesRecordsAfterLosingAll) {
  Numbers numbers = MakeNumbers(1000);
  numbers.Erase(numbers.Begin(), numbers.End());
  numbers.PushBack(3);
  EXPECT_EQ("3 ", Print(numbers));
  numbers.Clear();
  EXPECT_EQ(0, numbers.Size());
}

TEST(Cmn_ChunkyPODVector, WorksWithStandardAlgorithms) {
  Numbers numbers = MakeNumbers(500);
  std::reverse(numbers.Begin(), numbers.End());
  EXPECT_EQ(499, std::as_const(numbers)[0]);
  std::stable_sort(numbers.Begin(), numbers.End());
  auto const & sorted = numbers;
  EXPECT_EQ(250, std::lower_bound(sorted.Begin(), sorted.End(), 250).GetIndex());
}

TEST(Cmn_ChunkyPODVector, HasTheNamesOfAStandardContainer) {
  Numbers numbers;
  numbers.reserve(10);
  numbers.push_back(1);
  numbers.insert(numbers.begin(), 0);
  EXPECT_EQ(2u, numbers.size());
  EXPECT_EQ(0, std::as_const(numbers).front());
  EXPECT_EQ(1, std::as_const(numbers).back());
  numbers.erase(numbers.begin());
  numbers.clear();
  EXPECT_TRUE(numbers.empty());
}

TEST(Cmn_ChunkyPODVector_Span, RunsToTheEndOfAChunk) {
  Numbers const numbers = MakeNumbers(1000);
  int sum = 0, num = 0;
  for (int i = 0, next; i < 1000; i = next) {
    int const * first;
    num = numbers.GetSpan(i, &first);
    sum = std::accumulate(first, first + num, sum);
    next = i + num;
  }
  EXPECT_EQ(499500, sum);
  EXPECT_GT(num, 1);
}

TEST(Cmn_ChunkyPODVector_Copy, IsIndependent) {
  Numbers numbers = MakeNumbers(3000);
  Numbers copy(numbers);
  numbers[10] = -1;
  copy.PushBack(7);
  EXPECT_EQ(10, std::as_const(copy)[10]);
  EXPECT_EQ(-1, std::as_const(numbers)[10]);
  EXPECT_EQ(3000, numbers.Size());
  EXPECT_EQ(3001, copy.Size());
}

TEST(Cmn_ChunkyPODVector_Copy, OfAnySizeTakesNoMemory) {
  Numbers const numbers = MakeNumbers(100000);
  int const numBefore = sNumTaken;
  Numbers const copy(numbers);
  EXPECT_EQ(numBefore, sNumTaken.load());
}

TEST(Cmn_ChunkyPODVector_Copy, SharesUntilOneIsWritten) {
  Numbers numbers = MakeNumbers(1000);
  Numbers const copy(numbers);
  EXPECT_EQ(&std::as_const(numbers)[500], &copy[500]);
  numbers[500] = 1;
  EXPECT_NE(&std::as_const(numbers)[500], &copy[500]);
}

TEST(Cmn_ChunkyPODVector_Copy, ReadingNeverUnshares) {
  Numbers numbers = MakeNumbers(1000);
  Numbers const copy(numbers);
  Cmn_ChunkyVecImpl_Iterator const iter(&numbers.GetImpl(), 500);
  EXPECT_EQ(reinterpret_cast<char const *>(&copy[500]), iter.GetConstPtr());
  EXPECT_NE(reinterpret_cast<char const *>(&copy[500]), iter.GetPtr());
}

TEST(Cmn_ChunkyPODVector_Copy, OfARangeSharesWholeChunks) {
  Numbers const numbers = MakeNumbers(100000);
  long long const bytesBefore = sBytesTaken;
  Numbers part;
  part.Insert(part.End(), numbers.Begin() + 1, numbers.End() - 1);
  EXPECT_EQ(99998, part.Size());
  EXPECT_LT(sBytesTaken - bytesBefore, 20000);
}

TEST(Cmn_ChunkyPODVector_Copy, TakesTheDigestAlong) {
  Numbers numbers = MakeNumbers(10);
  numbers = MakeKeyedNumbers(300);
  EXPECT_EQ(598, numbers.GetImpl().Summarise().mGreatest);
  EXPECT_EQ(299, std::as_const(numbers).back());
}

TEST(Cmn_ChunkyPODVector_Copy, OfARangeAcrossDigestsCopiesTheRecords) {
  Numbers const plain = MakeNumbers(300);
  Numbers keyed(&sDigest);
  keyed.Insert(keyed.End(), plain.Begin() + 100, plain.End());
  EXPECT_EQ(200, keyed.GetImpl().Summarise().mLeast);
  EXPECT_EQ(299, std::as_const(keyed).back());
}

TEST(Cmn_ChunkyPODVector_Copy, MayBeDroppedOnAnotherThread) {
  Numbers numbers = MakeNumbers(20000);
  for (int i = 0; i < 20; ++i) {
    auto snapshotP = std::make_unique<Numbers>(numbers);
    std::thread other([&snapshotP] { snapshotP.reset(); });
    for (int k = 0; k < 20000; k += 100)
      numbers[k] = i;
    other.join();
  }
  EXPECT_EQ(19, std::as_const(numbers)[0]);
}

TEST(Cmn_ChunkyPODVector_Memory, BuiltInOrderTakesLittleMoreThanItsRecords) {
  long long const bytesBefore = sBytesTaken;
  Cmn_ChunkyPODVector<Record> records(nullptr);
  for (int i = 0; i < 20000; ++i)
    records.PushBack(Record{i, {}});
  EXPECT_LT(sBytesTaken - bytesBefore, 20000 * 200 * 103 / 100);
}

TEST(Cmn_ChunkyPODVector_Memory, AFewRecordsTakeASmallChunk) {
  long long const bytesBefore = sBytesTaken;
  Cmn_ChunkyPODVector<Record> records;
  records.PushBack(Record{1, {}});
  EXPECT_LT(sBytesTaken - bytesBefore, 2500);
}

TEST(Cmn_ChunkyPODVector_Memory, TheFirstEditAfterACopyTakesOnePath) {
  Cmn_ChunkyPODVector<Record> records;
  for (int i = 0; i < 200000; ++i)
    records.PushBack(Record{i, {}});
  for (int at = 0; at < 200000; at += 9973) {
    Cmn_ChunkyPODVector<Record> const snapshot(records);
    long long const bytesBefore = sBytesTaken;
    records.Insert(records.Begin() + at, Record{-1, {}});
    EXPECT_LT(sBytesTaken - bytesBefore, 80000);
  }
}

TEST(Cmn_ChunkyPODVector_Memory, GivesAllBack) {
  long long const bytesBefore = sBytesTaken;
  {
    Numbers numbers = MakeKeyedNumbers(20000);
    Numbers copy(numbers);
    copy.Erase(copy.Begin() + 5, copy.Begin() + 15000);
    numbers.Insert(numbers.Begin() + 77, copy.Begin(), copy.End());
  }
  EXPECT_EQ(bytesBefore, sBytesTaken.load());
}

TEST(Cmn_ChunkyPODVector_Failure, LeavesTheSequenceAsItWas) {
  Numbers const numbers = MakeKeyedNumbers(9000);
  EXPECT_GT(CountRefusals(numbers, [](Numbers & n) { n.Insert(n.Begin() + 4000, 1); }), 0);
  EXPECT_GT(CountRefusals(numbers, [](Numbers & n) { n.PushBack(1); }), 0);
  EXPECT_GT(CountRefusals(numbers, [](Numbers & n) { n.Erase(n.Begin() + 4000); }), 0);
  EXPECT_GT(CountRefusals(numbers, [](Numbers & n) { n.Erase(n.Begin() + 40, n.Begin() + 8000); }),
            0);
  EXPECT_GT(
      CountRefusals(numbers, [](Numbers & n) { n.Insert(n.Begin() + 9, n.Begin(), n.End()); }), 0);
  EXPECT_GT(CountRefusals(numbers, [](Numbers & n) { n.Replace(4000, 1); }), 0);
}

TEST(Cmn_ChunkyPODVector_Failure, WritingLeavesTheSequenceAsItWas) {
  Numbers const numbers = MakeKeyedNumbers(9000);
  EXPECT_GT(CountRefusals(numbers, [](Numbers & n) { n[4000] = 1; }), 0);
}

TEST(Cmn_ChunkyPODVector_Destructor, ReportsWhatIsThrown) {
  Cmn_AssertRecorder recorder;
  Cmn_ChunkyVec_Guard([] { throw std::runtime_error("any"); });
  EXPECT_EQ(1, recorder.GetNum("Cmn_ChunkyPODVector::~Cmn_ChunkyPODVector - unknown exception "
                               "caught."));
  EXPECT_EQ(1, recorder.GetNum());
}

TEST(Cmn_ChunkyVecImpl, WorksThroughUntypedPositions) {
  Cmn_ChunkyVecPODCopier copier(sizeof(int));
  Cmn_ChunkyVecImpl impl(copier, sizeof(int), 0);
  int const numbers[] = {1, 2, 3};
  auto const first = impl.Insert(impl.Begin(), 3, reinterpret_cast<char const *>(numbers));
  EXPECT_EQ(3, impl.Size());
  EXPECT_EQ(1, *reinterpret_cast<int const *>(first.GetConstPtr()));
  Cmn_ChunkyVecImpl_Iterator iter(&impl, 0);
  iter.Add(2);
  EXPECT_EQ(2, iter.Subtract(first));
  EXPECT_EQ(3, *reinterpret_cast<int *>(iter.GetPtr()));
  EXPECT_EQ(1, impl.End().Subtract(iter));
}

TEST(Cmn_ChunkyVecImpl, AssignIsACopyAndDestructEmpties) {
  Cmn_ChunkyVecPODCopier copier(sizeof(int));
  Cmn_ChunkyVecImpl impl(copier, sizeof(int), 0), other(copier, sizeof(int), 0);
  int const number = 5;
  impl.Append(reinterpret_cast<char const *>(&number));
  other.Assign(impl);
  impl.Destruct();
  EXPECT_EQ(0, impl.Size());
  EXPECT_EQ(1, other.Size());
}

TEST(Cmn_ChunkyVecImpl_Iterator, AtTheEndHasNoAddress) {
  Numbers const numbers = MakeNumbers(3);
  EXPECT_EQ(nullptr, Cmn_ChunkyVecImpl_Iterator(&numbers.GetImpl(), 3).GetConstPtr());
  EXPECT_EQ(nullptr, Cmn_ChunkyVecImpl_Iterator(&numbers.GetImpl(), 3).GetPtr());
}

TEST(Cmn_ChunkyVecImpl_Iterator, StaysAtItsIndexWhenTheSequenceChanges) {
  Numbers numbers = MakeNumbers(300);
  auto const iter = std::as_const(numbers).At(100);
  EXPECT_EQ(100, *iter);
  numbers.Insert(numbers.Begin(), -1);
  EXPECT_EQ(99, *iter);
  numbers.Erase(numbers.Begin(), numbers.Begin() + 50);
  EXPECT_EQ(149, *iter);
}

TEST(Cmn_ChunkyVecImpl_Iterator, WritesBesideACopyTakenMeanwhile) {
  Numbers numbers = MakeNumbers(300);
  auto const iter = numbers.At(100);
  *iter = 1;
  Numbers const snapshot(numbers);
  *iter = 2;
  EXPECT_EQ(1, snapshot[100]);
  EXPECT_EQ(2, std::as_const(numbers)[100]);
}

TEST(Cmn_ChunkyVecDigest, SummarisesAllRecords) {
  Numbers const numbers = MakeKeyedNumbers(1000);
  Cmn_ChunkyVecSummary const summary = numbers.GetImpl().Summarise();
  EXPECT_EQ(1000, summary.mNum);
  EXPECT_EQ(0, summary.mFirst);
  EXPECT_EQ(999, summary.mLast);
  EXPECT_EQ(0, summary.mLeast);
  EXPECT_EQ(1998, summary.mGreatest);
  EXPECT_EQ(3, summary.mMarks);
  EXPECT_TRUE(summary.mAscending);
}

TEST(Cmn_ChunkyVecDigest, TakesUpWhatWasWrittenThroughAnAddress) {
  Numbers numbers = MakeKeyedNumbers(1000);
  numbers[500] = 4000;
  Cmn_ChunkyVecSummary const summary = numbers.GetImpl().Summarise();
  EXPECT_EQ(8000, summary.mGreatest);
  EXPECT_FALSE(summary.mAscending);
}

TEST(Cmn_ChunkyVecDigest, OfACopyIsUpToDateWhenWritingWentBefore) {
  Numbers numbers = MakeKeyedNumbers(1000);
  numbers[500] = 4000;
  Numbers const copy(numbers);
  EXPECT_EQ(8000, copy.GetImpl().Summarise().mGreatest);
}

TEST(Cmn_ChunkyVecDigest, ForgetsWhatWasErased) {
  Numbers numbers = MakeKeyedNumbers(1000);
  numbers.Erase(numbers.End() - 1);
  EXPECT_EQ(1996, numbers.GetImpl().Summarise().mGreatest);
}

TEST(Cmn_ChunkyVecDigest, FindsBoundsByOrderKey) {
  Numbers numbers(&sDigest);
  for (int i = 0; i < 900; ++i)
    numbers.PushBack(i / 3 * 2);
  EXPECT_EQ(300, numbers.GetImpl().LowerBound(200));
  EXPECT_EQ(303, numbers.GetImpl().UpperBound(200));
  EXPECT_EQ(303, numbers.GetImpl().LowerBound(201));
  EXPECT_EQ(900, numbers.GetImpl().LowerBound(599));
  EXPECT_EQ(0, numbers.GetImpl().LowerBound(-1));
}

TEST(Cmn_ChunkyVecDigest, FindsTheNextExtentAboveALimit) {
  Numbers numbers = MakeKeyedNumbers(1000);
  EXPECT_EQ(301, numbers.GetImpl().FindExtentAbove(0, 1000, 600));
  EXPECT_EQ(400, numbers.GetImpl().FindExtentAbove(400, 1000, 600));
  EXPECT_EQ(200, numbers.GetImpl().FindExtentAbove(0, 200, 600));
  EXPECT_EQ(1000, numbers.GetImpl().FindExtentAbove(0, 1000, 1998));
}

TEST(Cmn_ChunkyPODVector_Append, OfAShortRunCopies) {
  Numbers const source = MakeNumbers(1000);
  Numbers numbers = MakeNumbers(3);
  numbers.Append(source, 500, 504);
  EXPECT_EQ("0 1 2 500 501 502 503 ", Print(numbers));
}

TEST(Cmn_ChunkyPODVector_Append, OfAnEmptyRunDoesNothing) {
  Numbers const source = MakeNumbers(10);
  Numbers numbers = MakeNumbers(3);
  numbers.Append(source, 10, 10);
  numbers.Append(source, 7, 5);
  EXPECT_EQ("0 1 2 ", Print(numbers));
}

TEST(Cmn_ChunkyPODVector_Append, OfALongRunSharesIt) {
  Numbers const source = MakeNumbers(100000);
  Numbers numbers;
  long long const bytesBefore = sBytesTaken;
  numbers.Append(source, 100, 99900);
  EXPECT_LT(sBytesTaken - bytesBefore, 40000);
  EXPECT_EQ(99800, numbers.Size());
  EXPECT_EQ(100, numbers[0]);
  EXPECT_EQ(99899, std::as_const(numbers)[99799]);
}

TEST(Cmn_ChunkyPODVector_Append, OfItsOwnRecords) {
  Numbers numbers = MakeNumbers(6);
  numbers.Append(numbers, 2, 5);
  EXPECT_EQ("0 1 2 3 4 5 2 3 4 ", Print(numbers));
}

TEST(Cmn_ChunkyPODVector_Append, OfManyRunsFillsItsChunks) {
  Numbers const source = MakeNumbers(20000);
  Numbers numbers;
  long long const bytesBefore = sBytesTaken;
  for (int i = 0; i < 20000; i += 5)
    numbers.Append(source, i, i + 5);
  EXPECT_LT(sBytesTaken - bytesBefore, 20000 * 4 * 5 / 2);
  EXPECT_EQ(Print(source), Print(numbers));
}

TEST(Cmn_ChunkyPODVector_Append, LeavesCopiesAlone) {
  Numbers const source = MakeNumbers(1000);
  Numbers numbers = MakeNumbers(70);
  Numbers const copy = numbers;
  numbers.Append(source, 0, 10);
  numbers.Append(source, 0, 500);
  numbers.Append(source, 0, 3);
  EXPECT_EQ(70, copy.Size());
  EXPECT_EQ(583, numbers.Size());
  EXPECT_EQ(1000, source.Size());
}

TEST(Cmn_ChunkyPODVector_Append, VoidsWhatWritersOfTheSourceRemember) {
  Numbers source = MakeNumbers(128);
  Numbers numbers = MakeNumbers(200);
  auto const iter = source.At(5);
  *iter = 55;
  numbers.Append(source, 0, 64);
  *iter = 99;
  EXPECT_EQ(55, std::as_const(numbers)[205]);
}

TEST(Cmn_ChunkyPODVector_Append, KeepsTheKeys) {
  Numbers const source = MakeKeyedNumbers(1000);
  Numbers numbers(&sDigest);
  numbers.Append(source, 0, 30);
  numbers.Append(source, 30, 700);
  numbers.Append(source, 700, 1000);
  Cmn_ChunkyVecSummary const all = numbers.GetImpl().Summarise();
  EXPECT_TRUE(all.mAscending);
  EXPECT_EQ(999, all.mLast);
  EXPECT_EQ(1998, all.mGreatest);
  EXPECT_EQ(3, all.mMarks);
  EXPECT_EQ(333, numbers.GetImpl().LowerBound(333));
}

TEST(Cmn_ChunkyPODVector_Append, OfARunThatDescendsIsSeen) {
  Numbers source(&sDigest);
  for (int number : {5, 6, 4})
    source.PushBack(number);
  Numbers numbers = MakeKeyedNumbers(3);
  numbers.Append(source, 0, 3);
  EXPECT_FALSE(numbers.GetImpl().Summarise().mAscending);
}

TEST(Cmn_ChunkyPODVector_Append, OutOfMemoryLeavesWhatCameFirst) {
  Numbers const source = MakeNumbers(70000);
  Numbers const start = MakeNumbers(40000);
  int num = 0;
  for (bool fails = true; fails; ++num) {
    Numbers numbers(start);
    fails = RunsOutOfMemory(num, [&] { numbers.Append(source, 30, 30000); });
    int const size = numbers.Size();
    EXPECT_TRUE(fails || size == 69970);
    for (int i = 40000; i < size; ++i)
      ASSERT_EQ(i - 40000 + 30, std::as_const(numbers)[i]);
    ASSERT_EQ(39999, std::as_const(numbers)[39999]);
  }
  EXPECT_LT(3, num);
}

TEST(Cmn_ChunkyPODVector_Unshare, MakesWritingTakeNoMemory) {
  Numbers numbers = MakeKeyedNumbers(1000);
  Numbers const copy = numbers;
  numbers.Unshare();
  int const numBefore = sNumTaken;
  for (int i = 0; i < 1000; ++i)
    numbers[i] = -i;
  EXPECT_EQ(numBefore, sNumTaken.load());
  EXPECT_EQ(500, copy[500]);
}

TEST(Cmn_ChunkyPODVector_Unshare, OfAnEmptyOneDoesNothing) {
  Numbers numbers;
  numbers.Unshare();
  EXPECT_EQ(0, numbers.Size());
}

TEST(Cmn_ChunkyPODVector_Unshare, OutOfMemoryChangesNothing) {
  EXPECT_LT(10, CountRefusals(MakeNumbers(1000), [](Numbers & ioNumbers) { ioNumbers.Unshare(); }));
}

TEST(Cmn_ChunkyPODVector_Unshare, VoidsWhatIteratorsRemember) {
  Numbers numbers = MakeNumbers(10);
  auto const iter = std::as_const(numbers).At(5);
  EXPECT_EQ(5, *iter);
  Numbers const copy = numbers;
  numbers.Unshare();
  numbers[5] = 77;
  EXPECT_EQ(77, *iter);
}
