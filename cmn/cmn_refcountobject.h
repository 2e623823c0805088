// Objects shared by counting, within one thread.
#pragma once

#include <utility>

#include "foundation/vrad_export.h"

/// Base of heap objects with a count for one thread. It starts at 0, handles add to it, and copying
/// an object does not copy its count.
class VRAD_EXPORT Cmn_RefCountObject {
public:
  void AddReference() const;

  /// The call that brings the count to 0 destroys the object.
  void RemoveReference() const;

  int GetRefCount() const;

protected:
  Cmn_RefCountObject();
  Cmn_RefCountObject(Cmn_RefCountObject const &);
  Cmn_RefCountObject & operator=(Cmn_RefCountObject const &);
  virtual ~Cmn_RefCountObject();

private:
  mutable int mRefCount;
};

/// A counted handle on a `T` that may be incomplete: `THelper::AddReference` and
/// `THelper::RemoveReference` do the counting.
template <class T, class TPtr, class THelper>
class Cmn_AliasedRefCountPtr {
public:
  Cmn_AliasedRefCountPtr() : mPtr(nullptr) {}
  explicit Cmn_AliasedRefCountPtr(TPtr iPtr) : mPtr(iPtr) {
    if (mPtr) THelper::AddReference(mPtr);
  }
  Cmn_AliasedRefCountPtr(Cmn_AliasedRefCountPtr const & iOther)
      : Cmn_AliasedRefCountPtr(iOther.mPtr) {}
  Cmn_AliasedRefCountPtr(Cmn_AliasedRefCountPtr && ioOther) noexcept
      : mPtr(std::exchange(ioOther.mPtr, nullptr)) {}
  Cmn_AliasedRefCountPtr & operator=(Cmn_AliasedRefCountPtr iOther) noexcept {
    std::swap(mPtr, iOther.mPtr);
    return *this;
  }
  ~Cmn_AliasedRefCountPtr() {
    if (mPtr) THelper::RemoveReference(mPtr);
  }

  TPtr Get() const { return mPtr; }
  TPtr operator->() const { return mPtr; }
  T & operator*() const { return *mPtr; }
  explicit operator bool() const { return mPtr != nullptr; }

private:
  TPtr mPtr;  // counted, or null
};
