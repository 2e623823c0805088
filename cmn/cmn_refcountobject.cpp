#include "cmn/cmn_refcountobject.h"

Cmn_RefCountObject::Cmn_RefCountObject() : mRefCount(0) {}
Cmn_RefCountObject::Cmn_RefCountObject(Cmn_RefCountObject const &) : mRefCount(0) {}
Cmn_RefCountObject & Cmn_RefCountObject::operator=(Cmn_RefCountObject const &) {
  return *this;
}
Cmn_RefCountObject::~Cmn_RefCountObject() = default;

void Cmn_RefCountObject::AddReference() const {
  ++mRefCount;
}

void Cmn_RefCountObject::RemoveReference() const {
  if (--mRefCount == 0) delete this;
}

int Cmn_RefCountObject::GetRefCount() const {
  return mRefCount;
}
