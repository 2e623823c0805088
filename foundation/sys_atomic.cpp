#include "foundation/sys_atomic.h"

namespace {

constexpr unsigned kFlag_BeingDestroyed = 1;

}  // namespace

Sys_AtomicInt32::Sys_AtomicInt32(int iValue) : mValue(iValue) {}

int Sys_AtomicInt32::Increment() {
  return mValue.fetch_add(1, std::memory_order_relaxed) + 1;
}

// Whoever sees 0 must also see all that was done by those who decremented before.
int Sys_AtomicInt32::Decrement() {
  return mValue.fetch_sub(1, std::memory_order_acq_rel) - 1;
}

int Sys_AtomicInt32::Get() const {
  return mValue.load(std::memory_order_relaxed);
}

Sys_Flags_AtomicBase::Sys_Flags_AtomicBase() : mFlags(0) {}
Sys_Flags_AtomicBase::Sys_Flags_AtomicBase(Sys_Flags_AtomicBase const &) : mFlags(0) {}
Sys_Flags_AtomicBase & Sys_Flags_AtomicBase::operator=(Sys_Flags_AtomicBase const &) {
  return *this;
}
Sys_Flags_AtomicBase::~Sys_Flags_AtomicBase() = default;

bool Sys_Flags_AtomicBase::RaiseFlags(unsigned iMask) const {
  return (mFlags.fetch_or(iMask, std::memory_order_acq_rel) & iMask) == 0;
}

Sys_ThreadSafeRefCountObject::Sys_ThreadSafeRefCountObject() : mRefCount(0) {}
Sys_ThreadSafeRefCountObject::Sys_ThreadSafeRefCountObject(
    Sys_ThreadSafeRefCountObject const & iOther)
    : Sys_Flags_AtomicBase(iOther), mRefCount(0) {}
Sys_ThreadSafeRefCountObject &
Sys_ThreadSafeRefCountObject::operator=(Sys_ThreadSafeRefCountObject const &) {
  return *this;
}
Sys_ThreadSafeRefCountObject::~Sys_ThreadSafeRefCountObject() = default;

void Sys_ThreadSafeRefCountObject::AddReference() const {
  mRefCount.fetch_add(1, std::memory_order_relaxed);
}

void Sys_ThreadSafeRefCountObject::RemoveReference() const {
  if (mRefCount.fetch_sub(1, std::memory_order_acq_rel) == 1) RefCountDelete();
}

int Sys_ThreadSafeRefCountObject::GetRefCount() const {
  return mRefCount.load(std::memory_order_relaxed);
}

void Sys_ThreadSafeRefCountObject::RefCountDelete() const {
  SmartDeletion();
}

void Sys_ThreadSafeRefCountObject::SmartDeletion() const {
  if (RaiseFlags(kFlag_BeingDestroyed)) delete this;
}

void intrusive_ptr_add_ref(Sys_ThreadSafeRefCountObject const * iObjectP) {
  iObjectP->AddReference();
}

void intrusive_ptr_release(Sys_ThreadSafeRefCountObject const * iObjectP) {
  iObjectP->RemoveReference();
}
