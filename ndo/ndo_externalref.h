// Weak references to undoable objects from outside the undo system.
#pragma once

#include "foundation/vrad_export.h"

class Ndo_Object;

/// Yields its object for as long as that lives or is kept by the undo manager, and null once it is
/// destroyed. Works for objects that are not undoable too. Owns nothing, allocates nothing.
/// Thread: that of the object.
class VRAD_EXPORT Ndo_ExternalRefBase {
public:
  explicit Ndo_ExternalRefBase(Ndo_Object * iObjectP);
  Ndo_ExternalRefBase(Ndo_ExternalRefBase const & iOther);
  Ndo_ExternalRefBase & operator=(Ndo_ExternalRefBase const & iOther);
  ~Ndo_ExternalRefBase();

  Ndo_Object * GetObjPtr() const { return mObjectP; }

private:
  friend class Ndo_Object;

  void Attach(Ndo_Object * iObjectP);
  void Detach();

  Ndo_Object * mObjectP;
  Ndo_ExternalRefBase * mPrevP;  // among the references to one object
  Ndo_ExternalRefBase * mNextP;
};
