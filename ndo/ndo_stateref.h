// How a state names another undoable object.
#pragma once

#include "cmn/cmn_assert.h"
#include "ndo/ndo_manager.h"
#include "ndo/ndo_object.h"
#include "ndo/ndo_ptr.h"

/// The identifier form of an `Ndo_Ptr`, for states: it holds neither the object nor its address.
template <class T>
class Ndo_StateRef {
public:
  Ndo_StateRef() : mID(-1) {}
  explicit Ndo_StateRef(long long iID) : mID(iID) {}

  /// Fails: throws for an object without identifier, which cannot be found again; holds -1 if
  /// throwing is switched off.
  explicit Ndo_StateRef(Ndo_Ptr<T> const & iObjP) : mID(iObjP.mCachedID) {
    CMN_REQUIRE(!(iObjP.mCachedID == -1 && iObjP.mPtr != 0),
                "! (iObjP.mCachedID == -1 && iObjP.mPtr != 0)");
  }

  long long GetID() const { return mID; }

  /// The living or kept object, if it is a `T`; else null with identifier -1.
  Ndo_Ptr<T> Resolve() const {
    if (mID == -1) return Ndo_Ptr<T>();
    return Ndo_Ptr<T>(dynamic_cast<T *>(Ndo_gManager.LookupObject(mID)));
  }

private:
  long long mID;
};
