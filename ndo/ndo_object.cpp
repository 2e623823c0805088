// The undoable object: everything beyond its identifier is the manager's.
#include "ndo/ndo_object.h"

#include "ndo/ndo_externalref.h"
#include "ndo/ndo_manager.h"

Ndo_Object::Ndo_Object(EUndoFlag iFlag) : mUndoID(-1), mRegistrationP(0), mFirstRefP(0) {
  if (iFlag != kNotUndoable) mRegistrationP = Ndo_gManager.Register(this);
}

Ndo_Object::Ndo_Object(Ndo_Object const & iOther)
    : Ndo_Object(iOther.NdoIsUndoable() ? kUndoable : kNotUndoable) {}

Ndo_Object & Ndo_Object::operator=(Ndo_Object const &) {
  return *this;
}

Ndo_Object::~Ndo_Object() {
  while (mFirstRefP)
    mFirstRefP->Detach();
  if (mRegistrationP) Ndo_gManager.Unregister(mRegistrationP);
}

void Ndo_Object::NdoDelete() {
  if (mRegistrationP)
    Ndo_gManager.HandOver(mRegistrationP);
  else
    delete this;
}

void Ndo_Object::NdoCleanup() {}

void Ndo_Object::NdoAboutToModify() {
  if (mRegistrationP) Ndo_gManager.Announce(mRegistrationP);
}

void Ndo_Object::NdoSetOwned() {
  if (mRegistrationP) Ndo_gManager.ForgetCreation(mRegistrationP);
}

Ndo_State::~Ndo_State() = default;
