// The smallest undoable object that owns another: a value and at most one child.
#pragma once

#include <gtest/gtest.h>

#include <stdexcept>

#include "ndo/ndo_manager.h"
#include "ndo/ndo_object.h"
#include "ndo/ndo_ptr.h"
#include "ndo/ndo_stateref.h"

class UndoTestObject : public Ndo_Object {
public:
  explicit UndoTestObject(EUndoFlag iFlag = kUndoable, int iValue = 0)
      : Ndo_Object(iFlag), mValue(iValue) {
    ++sNumAlive;
  }
  UndoTestObject(UndoTestObject const & iOther) : Ndo_Object(iOther), mValue(iOther.mValue) {
    ++sNumAlive;
  }
  UndoTestObject & operator=(UndoTestObject const & iOther) {
    Ndo_Object::operator=(iOther);
    mValue = iOther.mValue;
    return *this;
  }
  ~UndoTestObject() override {
    Ndo_HandOver(mChildP);
    --sNumAlive;
  }

  void SetValue(int iValue) {
    NdoAboutToModify();
    mValue = iValue;
  }

  /// The former child is handed over.
  void SetChild(UndoTestObject * iChildP) {
    NdoAboutToModify();
    Ndo_HandOver(mChildP);
    mChildP = Ndo_Ptr<UndoTestObject>(iChildP);
  }

  void MarkOwned() { NdoSetOwned(); }

  struct State : Ndo_State {
    State() { ++sNumStates; }
    ~State() override { --sNumStates; }
    Ndo_Object * NdoReCreate() override { return new UndoTestObject(kNotUndoable, -1); }

    int mValue = 0;
    Ndo_StateRef<UndoTestObject> mChild;
  };

  Ndo_State * NdoGetState() override {
    if (mThrowsInGetState) throw std::runtime_error("get");
    State * const stateP = new State;
    stateP->mValue = mValue;
    stateP->mChild = Ndo_StateRef<UndoTestObject>(mChildP);
    return stateP;
  }

  void NdoRestoreState(Ndo_State * iStateP) override {
    if (sNumRestoresLeft >= 0 && sNumRestoresLeft-- == 0) throw std::runtime_error("restore");
    State const & state = dynamic_cast<State &>(*iStateP);
    mValue = state.mValue;
    mChildP = state.mChild.Resolve();
    if (mOnRestore) mOnRestore(*this);
  }

  void NdoCleanup() override { ++sNumCleanups; }

  int mValue;
  Ndo_Ptr<UndoTestObject> mChildP;
  bool mThrowsInGetState = false;
  void (*mOnRestore)(UndoTestObject &) = 0;

  static inline int sNumAlive = 0;
  static inline int sNumStates = 0;
  static inline int sNumCleanups = 0;
  static inline int sNumRestoresLeft = -1;  // that many succeed, the next throws; -1: all succeed
};

/// Empties the manager before and after each test, so that counts start from nothing.
class UndoTest : public testing::Test {
protected:
  UndoTest() { Reset(); }
  ~UndoTest() override { Reset(); }

  static void Reset() {
    if (Ndo_gManager.IsRecording()) Ndo_gManager.AbortTransaction();
    Ndo_gManager.ClearHistory();
    UndoTestObject::sNumCleanups = 0;
    UndoTestObject::sNumRestoresLeft = -1;
  }
};
