// Pointers to undoable objects: one that remembers the identifier, one that hands ownership on.
#pragma once

#include "ndo/ndo_manager.h"

/// A pointer to an undoable object beside its identifier, which survives the object's absence. Owns
/// nothing itself: its holder lets go of the object through `Ndo_HandOver`.
template <class T>
class Ndo_Ptr {
public:
  Ndo_Ptr() : mPtr(0), mCachedID(-1) {}
  explicit Ndo_Ptr(T * iObjectP)
      : mPtr(iObjectP), mCachedID(iObjectP ? iObjectP->NdoGetID() : -1) {}

  T * Get() const { return mPtr; }
  T * operator->() const { return mPtr; }
  explicit operator bool() const { return mPtr != 0; }

  T * mPtr;
  long long mCachedID;  // -1: nothing held, or an object that is not undoable
};

/// Calls `NdoDelete` on what is held and empties the pointer. For destructors of owners: the
/// manager may have destroyed the object before its owner when it drops both, so an identifier that
/// is no longer known is passed over.
template <class T>
void Ndo_HandOver(Ndo_Ptr<T> & ioObjP) {
  Ndo_Ptr<T> const held = ioObjP;
  ioObjP = Ndo_Ptr<T>();
  if (held.mPtr == 0) return;
  bool const isGone = held.mCachedID != -1 && (Ndo_gManager.IsKept(held.mCachedID) ||
                                               Ndo_gManager.LookupObject(held.mCachedID) == 0);
  if (!isGone) held.mPtr->NdoDelete();
}

/// Carries a freshly built object into its owner, which takes it out with `Release`. Move only.
template <class T>
class Ndo_AutoPtr {
public:
  explicit Ndo_AutoPtr(T * iObjectP = 0) : mPtr(iObjectP) {}
  Ndo_AutoPtr(Ndo_AutoPtr && ioOther) noexcept : mPtr(ioOther.Release()) {}
  template <class U>
  Ndo_AutoPtr(Ndo_AutoPtr<U> && ioOther) noexcept : mPtr(ioOther.Release()) {}
  Ndo_AutoPtr(Ndo_AutoPtr const &) = delete;
  Ndo_AutoPtr & operator=(Ndo_AutoPtr const &) = delete;

  /// `NdoDelete` on what it still holds.
  ~Ndo_AutoPtr() { Reset(0); }

  /// Takes over; what was held before gets `NdoDelete`, which may need memory to keep it for undo.
  Ndo_AutoPtr & operator=(Ndo_AutoPtr && ioOther) {  // NOLINT(*-noexcept-move*)
    if (this != &ioOther) Reset(ioOther.Release());
    return *this;
  }

  T * Get() const { return mPtr; }
  T * operator->() const { return mPtr; }

  /// Gives the object up to the caller.
  T * Release() noexcept {
    T * const objectP = mPtr;
    mPtr = 0;
    return objectP;
  }

private:
  void Reset(T * iObjectP) {
    T * const formerP = mPtr;
    mPtr = iObjectP;
    if (formerP) formerP->NdoDelete();
  }

  T * mPtr;  // owned
};
