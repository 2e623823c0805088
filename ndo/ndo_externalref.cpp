// The back-links between an object and the references to it.
#include "ndo/ndo_externalref.h"

#include "ndo/ndo_object.h"

Ndo_ExternalRefBase::Ndo_ExternalRefBase(Ndo_Object * iObjectP)
    : mObjectP(0), mPrevP(0), mNextP(0) {
  Attach(iObjectP);
}

Ndo_ExternalRefBase::Ndo_ExternalRefBase(Ndo_ExternalRefBase const & iOther)
    : Ndo_ExternalRefBase(iOther.mObjectP) {}

Ndo_ExternalRefBase & Ndo_ExternalRefBase::operator=(Ndo_ExternalRefBase const & iOther) {
  if (mObjectP != iOther.mObjectP) {
    Detach();
    Attach(iOther.mObjectP);
  }
  return *this;
}

Ndo_ExternalRefBase::~Ndo_ExternalRefBase() {
  Detach();
}

void Ndo_ExternalRefBase::Attach(Ndo_Object * iObjectP) {
  mObjectP = iObjectP;
  if (mObjectP == 0) return;
  mNextP = mObjectP->mFirstRefP;
  if (mNextP) mNextP->mPrevP = this;
  mObjectP->mFirstRefP = this;
}

void Ndo_ExternalRefBase::Detach() {
  if (mObjectP == 0) return;
  if (mNextP) mNextP->mPrevP = mPrevP;
  if (mPrevP)
    mPrevP->mNextP = mNextP;
  else
    mObjectP->mFirstRefP = mNextP;
  mObjectP = 0;
  mPrevP = mNextP = 0;
}
