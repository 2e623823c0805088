// Random scripts of edits against copies of the whole document kept at each step.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "support/undo_testobject.h"

namespace {

constexpr int kNumRoots = 3;

/// What a root looks like: its value and the values of the chain of children below it.
typedef std::array<std::vector<int>, kNumRoots> Picture;

class Document {
public:
  Document() {
    for (auto & root : mRoots)
      root.reset(new UndoTestObject);
  }

  Picture TakePicture() const {
    Picture picture;
    for (size_t i = 0; i < kNumRoots; ++i)
      for (UndoTestObject const * p = mRoots[i].get(); p; p = p->mChildP.Get())
        picture[i].push_back(p->mValue);
    return picture;
  }

  /// Nothing that the document holds may be kept by the manager or unknown to it.
  void CheckWiring() const {
    for (auto const & root : mRoots) {
      for (UndoTestObject * p = root.get(); p; p = p->mChildP.Get()) {
        RC_ASSERT(Ndo_gManager.LookupObject(p->NdoGetID()) == p);
        RC_ASSERT(!Ndo_gManager.IsKept(p->NdoGetID()));
      }
    }
  }

  int GetNumObjects() const {
    int num = 0;
    for (std::vector<int> const & chain : TakePicture())
      num += static_cast<int>(chain.size());
    return num;
  }

  UndoTestObject & At(int iRoot, int iDepth) {
    UndoTestObject * p = mRoots[static_cast<size_t>(iRoot)].get();
    while (iDepth-- > 0 && p->mChildP)
      p = p->mChildP.Get();
    return *p;
  }

  bool Holds(UndoTestObject const * iObjectP) const {
    for (auto const & root : mRoots)
      for (UndoTestObject const * p = root.get(); p; p = p->mChildP.Get())
        if (p == iObjectP) return true;
    return false;
  }

private:
  std::array<std::unique_ptr<UndoTestObject>, kNumRoots> mRoots;
};

class Script {
public:
  void Run() {
    int const numSteps = *rc::gen::inRange(1, 40);
    for (int i = 0; i < numSteps; ++i) {
      switch (*rc::gen::inRange(0, 8)) {
      case 0:
      case 1:
        UndoOne();
        break;
      case 2:
        RedoOne();
        break;
      case 3:
        Abort();
        break;
      case 4:
        Ndo_gManager.DropUnreferenced();
        break;
      default:
        Record();
      }
      Check();
    }
    Ndo_gManager.ClearHistory();
    RC_ASSERT(UndoTestObject::sNumAlive == mDocument.GetNumObjects());
    RC_ASSERT(UndoTestObject::sNumStates == 0);
  }

private:
  void Check() {
    RC_ASSERT(mDocument.TakePicture() == mPresent);
    mDocument.CheckWiring();
    RC_ASSERT(Ndo_gManager.GetNumUndoSteps() == static_cast<int>(mUndo.size()));
    RC_ASSERT(Ndo_gManager.GetNumRedoSteps() == static_cast<int>(mRedo.size()));
  }

  void Edit() {
    UndoTestObject & target =
        mDocument.At(*rc::gen::inRange(0, kNumRoots), *rc::gen::inRange(0, 4));
    switch (*rc::gen::inRange(0, 4)) {
    case 0:
      target.SetChild(0);
      break;
    case 1:
      mCreated.push_back(new UndoTestObject(Ndo_Object::kUndoable, ++mLastValue));
      target.SetChild(mCreated.back());
      break;
    default:
      target.SetValue(++mLastValue);
    }
  }

  int Edits() {
    mCreated.clear();
    int const numEdits = *rc::gen::inRange(0, 6);
    for (int i = 0; i < numEdits; ++i)
      Edit();
    return numEdits;
  }

  void Record() {
    Ndo_Transaction transaction;
    int const numEdits = Edits();
    RC_ASSERT(transaction.End() == (numEdits > 0));
    if (numEdits == 0) return;
    mUndo.push_back(mPresent);
    mRedo.clear();
    mPresent = mDocument.TakePicture();
  }

  // What an aborted transaction created lives on, without an owner: ours to destroy.
  void Abort() {
    {
      Ndo_Transaction const transaction;
      Edits();
    }
    for (UndoTestObject * createdP : mCreated) {
      RC_ASSERT(!Ndo_gManager.IsKept(createdP->NdoGetID()));
      RC_ASSERT(!mDocument.Holds(createdP));
    }
    for (UndoTestObject * createdP : mCreated)
      createdP->mChildP = Ndo_Ptr<UndoTestObject>();
    for (UndoTestObject * createdP : mCreated)
      delete createdP;
  }

  void UndoOne() {
    RC_ASSERT(Ndo_gManager.Undo() == !mUndo.empty());
    if (mUndo.empty()) return;
    mRedo.push_back(mPresent);
    mPresent = mUndo.back();
    mUndo.pop_back();
  }

  void RedoOne() {
    RC_ASSERT(Ndo_gManager.Redo() == !mRedo.empty());
    if (mRedo.empty()) return;
    mUndo.push_back(mPresent);
    mPresent = mRedo.back();
    mRedo.pop_back();
  }

  Document mDocument;
  Picture mPresent = mDocument.TakePicture();
  std::vector<Picture> mUndo, mRedo;
  std::vector<UndoTestObject *> mCreated;  // in the transaction at hand
  int mLastValue = 0;
};

RC_GTEST_FIXTURE_PROP(UndoTest, EveryStepLeadsBackToTheDocumentAsItWas, ()) {
  Script().Run();
}

}  // namespace
