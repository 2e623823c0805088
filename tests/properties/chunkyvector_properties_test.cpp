#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "cmn/cmn_chunkyvector.h"

namespace {

struct Record {
  long long mOrder;
  long long mExtent;
  char mPadding[40];
};

// The order key is the order, the extent key the extent, the marks the low bits of the order.
class RecordDigest final : public Cmn_ChunkyVecDigest {
public:
  void Extract(char const * iRecords, int iNum, long long * oOrder, long long * oExtent,
               unsigned char * oMarks) const override {
    Record const * const records = reinterpret_cast<Record const *>(iRecords);
    for (int i = 0; i < iNum; ++i) {
      oOrder[i] = records[i].mOrder;
      oExtent[i] = records[i].mExtent;
      oMarks[i] = static_cast<unsigned char>(1u << (records[i].mOrder & 7));
    }
  }
};

RecordDigest const sDigest;

typedef Cmn_ChunkyPODVector<Record> Sequence;
typedef std::vector<Record> Model;

bool operator==(Record const & iA, Record const & iB) {
  return iA.mOrder == iB.mOrder && iA.mExtent == iB.mExtent;
}

bool SameRecords(Sequence const & iSequence, Model const & iModel) {
  return iSequence.size() == iModel.size() &&
         std::equal(iModel.begin(), iModel.end(), iSequence.Begin());
}

// What a summary must be, folded record by record.
Cmn_ChunkyVecSummary Fold(Model const & iModel, int iFirst, int iLast) {
  Cmn_ChunkyVecSummary result;
  for (int i = iFirst; i < iLast; ++i) {
    Record const & record = iModel[static_cast<size_t>(i)];
    Cmn_ChunkyVecSummary one;
    one.mNum = 1;
    one.mFirst = one.mLast = record.mOrder;
    one.mLeast = one.mGreatest = record.mExtent;
    one.mMarks = static_cast<unsigned char>(1u << (record.mOrder & 7));
    result.Append(one);
  }
  return result;
}

bool SameSummary(Cmn_ChunkyVecSummary const & iA, Cmn_ChunkyVecSummary const & iB) {
  if (iA.mNum != iB.mNum) return false;
  if (iA.mNum == 0) return true;
  return iA.mAscending == iB.mAscending && iA.mMarks == iB.mMarks && iA.mFirst == iB.mFirst &&
         iA.mLast == iB.mLast && iA.mLeast == iB.mLeast && iA.mGreatest == iB.mGreatest;
}

// Records seen by a walk, of the parts whose greatest extent is above a limit.
class Collector final : public Cmn_ChunkyVecVisitor {
public:
  explicit Collector(long long iLimit) : mLimit(iLimit) {}
  bool Wants(Cmn_ChunkyVecSummary const & iPart) override { return iPart.mGreatest > mLimit; }
  bool Visit(Cmn_ChunkyVecKeys const & iKeys) override {
    for (int i = 0; i < iKeys.mNum; ++i)
      if (iKeys.mExtent[i] > mLimit) mFound.push_back(iKeys.mFirstIndex + i);
    return true;
  }
  std::vector<int> mFound;

private:
  long long mLimit;
};

// One sequence and the vector that it must equal, and snapshots of both.
class Script {
public:
  Script() : mReal(&sDigest) {}

  void Step() {
    switch (*rc::gen::inRange(0, 18)) {
    case 0:
      return AppendSome();
    case 1:
    case 2:
      return InsertOne();
    case 3:
      return InsertSome();
    case 4:
      return InsertOwnRange();
    case 5:
      return InsertFromSnapshot();
    case 6:
    case 7:
      return EraseOne();
    case 8:
      return EraseRange();
    case 9:
      return Write();
    case 10:
      return Replace();
    case 11:
      return TakeSnapshot();
    case 12:
      return RestoreSnapshot();
    case 13:
    case 14:
    case 15:
      return AppendRuns();
    case 16:
      return mReal.Unshare();
    default:
      return DropSnapshot();
    }
  }

  void Check() const {
    RC_ASSERT(SameRecords(mReal, mModel));
    for (auto const & snapshot : mSnapshots)
      RC_ASSERT(SameRecords(*snapshot.first, snapshot.second));
    CheckSearches();
  }

private:
  int Size() const { return static_cast<int>(mModel.size()); }
  int AnyPosition() const { return *rc::gen::inRange(0, Size() + 1); }
  static Record AnyRecord() { return {*rc::gen::inRange(-50, 50), *rc::gen::inRange(0, 1000), {}}; }
  Model::iterator At(int iIndex) { return mModel.begin() + iIndex; }

  void AppendSome() {
    int const num = *rc::gen::inRange(1, 700);
    long long const start = mModel.empty() ? 0 : mModel.back().mOrder;
    for (int i = 0; i < num; ++i) {
      Record const record{start + i / 3, (i * 37) % 501, {}};
      mReal.PushBack(record);
      mModel.push_back(record);
    }
  }
  void InsertOne() {
    int const at = AnyPosition();
    Record const record = AnyRecord();
    auto const pos = mReal.Insert(std::as_const(mReal).At(at), record);
    RC_ASSERT(pos.GetIndex() == at);
    mModel.insert(At(at), record);
  }
  void InsertSome() {
    int const at = AnyPosition();
    Model some(static_cast<size_t>(*rc::gen::inRange(1, 400)), AnyRecord());
    mReal.Insert(mReal.At(at), static_cast<int>(some.size()), some.data());
    mModel.insert(At(at), some.begin(), some.end());
  }
  void InsertOwnRange() {
    int const at = AnyPosition(), a = AnyPosition(), b = AnyPosition();
    int const first = std::min(a, b), last = std::max(a, b);
    if (Size() > 20000) return;
    Model const some(At(first), At(last));
    mReal.Insert(mReal.At(at), mReal.At(first), mReal.At(last));
    mModel.insert(At(at), some.begin(), some.end());
  }
  void InsertFromSnapshot() {
    if (mSnapshots.empty() || Size() > 20000) return;
    auto const & [real, model] = mSnapshots[*rc::gen::inRange<size_t>(0, mSnapshots.size())];
    int const at = AnyPosition();
    int const first = *rc::gen::inRange(0, static_cast<int>(model.size()) + 1);
    int const last = *rc::gen::inRange(first, static_cast<int>(model.size()) + 1);
    Sequence const & source = *real;
    mReal.Insert(mReal.At(at), source.At(first), source.At(last));
    mModel.insert(At(at), model.begin() + first, model.begin() + last);
  }
  // Short and long ones, of a snapshot and its own.
  void AppendRuns() {
    for (int i = *rc::gen::inRange(1, 6); i > 0; --i) {
      if (mSnapshots.empty() || Size() > 20000) return;
      auto const & [real, model] = mSnapshots[*rc::gen::inRange<size_t>(0, mSnapshots.size())];
      bool const isOwn = *rc::gen::inRange(0, 4) == 0;
      int const size = isOwn ? Size() : static_cast<int>(model.size());
      int const first = *rc::gen::inRange(0, size + 1);
      int const last = std::min(size, first + *rc::gen::inRange(0, 200));
      Model const run =
          isOwn ? Model(At(first), At(last)) : Model(model.begin() + first, model.begin() + last);
      mReal.Append(isOwn ? mReal : *real, first, last);
      mModel.insert(mModel.end(), run.begin(), run.end());
    }
  }
  void EraseOne() {
    if (mModel.empty()) return;
    int const at = *rc::gen::inRange(0, Size());
    mReal.Erase(mReal.At(at));
    mModel.erase(At(at));
  }
  void EraseRange() {
    int const a = AnyPosition(), b = AnyPosition();
    int const first = std::min(a, b), last = std::max(a, b);
    auto const pos = mReal.Erase(mReal.At(first), mReal.At(last));
    RC_ASSERT(pos.GetIndex() == first);
    mModel.erase(At(first), At(last));
  }
  void Write() {
    int const first = AnyPosition();
    int const last = std::min(Size(), first + *rc::gen::inRange(0, 300));
    Record const record = AnyRecord();
    std::fill(mReal.At(first), mReal.At(last), record);
    std::fill(At(first), At(last), record);
  }
  void Replace() {
    if (mModel.empty()) return;
    int const at = *rc::gen::inRange(0, Size());
    Record const record = AnyRecord();
    mReal.Replace(at, record);
    mModel[static_cast<size_t>(at)] = record;
  }
  void TakeSnapshot() {
    if (mSnapshots.size() < 4) {
      mSnapshots.emplace_back(std::make_unique<Sequence>(mReal), mModel);
    }
  }
  void RestoreSnapshot() {
    if (mSnapshots.empty()) return;
    auto const & snapshot = mSnapshots[*rc::gen::inRange<size_t>(0, mSnapshots.size())];
    mReal = *snapshot.first;
    mModel = snapshot.second;
  }
  void DropSnapshot() {
    if (!mSnapshots.empty()) mSnapshots.erase(mSnapshots.begin());
  }

  void CheckSearches() const {
    int const a = AnyPosition(), b = AnyPosition();
    int const first = std::min(a, b), last = std::max(a, b);
    long long const limit = *rc::gen::inRange(-1, 1001);
    Cmn_ChunkyVecImpl const & impl = mReal.GetImpl();
    RC_ASSERT(SameSummary(impl.Summarise(), Fold(mModel, 0, Size())));
    RC_ASSERT(SameSummary(impl.Summarise(first, last), Fold(mModel, first, last)));
    std::vector<int> above;
    for (int i = first; i < last; ++i)
      if (mModel[static_cast<size_t>(i)].mExtent > limit) above.push_back(i);
    RC_ASSERT(impl.FindExtentAbove(first, last, limit) == (above.empty() ? last : above[0]));
    Collector forward(limit), backward(limit);
    impl.Walk(first, last, forward);
    impl.WalkBackward(first, last, backward);
    std::sort(backward.mFound.begin(), backward.mFound.end());
    RC_ASSERT(forward.mFound == above);
    RC_ASSERT(backward.mFound == above);
  }

  Sequence mReal;
  Model mModel;
  std::vector<std::pair<std::unique_ptr<Sequence>, Model>> mSnapshots;
};

}  // namespace

RC_GTEST_PROP(Cmn_ChunkyPODVector_Edits, AnyScriptGivesWhatAVectorHolds, ()) {
  Script script;
  int const numSteps = *rc::gen::inRange(1, 40);
  for (int i = 0; i < numSteps; ++i) {
    script.Step();
    script.Check();
  }
}

RC_GTEST_PROP(Cmn_ChunkyPODVector_Search, BoundsOfAnAscendingSequenceAreThoseOfAVector, ()) {
  Sequence sequence(&sDigest);
  std::vector<long long> model;
  int const num = *rc::gen::inRange(0, 3000);
  for (int i = 0; i < num; ++i) {
    long long const key = *rc::gen::inRange(0, 500);
    auto const at = std::upper_bound(model.begin(), model.end(), key);
    int const index = static_cast<int>(at - model.begin());
    RC_ASSERT(sequence.GetImpl().UpperBound(key) == index);
    RC_ASSERT(sequence.GetImpl().LowerBound(key) ==
              std::lower_bound(model.begin(), model.end(), key) - model.begin());
    sequence.Insert(sequence.At(index), Record{key, 0, {}});
    model.insert(at, key);
  }
  RC_ASSERT(sequence.GetImpl().Summarise().mAscending);
}
