#include "foundation/sys_delayeddeletion.h"

namespace {

// Elements are pushed one by one and only ever taken all together, so a stale head cannot be
// mistaken for a fresh one.
constinit std::atomic<SPSAtomicElementBase *> sNewestP{nullptr};
constinit std::atomic<int> sNumPending{0};

}  // namespace

SPSAtomicElementBase::SPSAtomicElementBase() : mNextP(nullptr), mIsQueued(false) {}
SPSAtomicElementBase::SPSAtomicElementBase(SPSAtomicElementBase const &) : SPSAtomicElementBase() {}
SPSAtomicElementBase & SPSAtomicElementBase::operator=(SPSAtomicElementBase const &) {
  return *this;
}
SPSAtomicElementBase::~SPSAtomicElementBase() = default;

Sys_DelayedDeletionObject::Sys_DelayedDeletionObject() = default;
Sys_DelayedDeletionObject::Sys_DelayedDeletionObject(Sys_DelayedDeletionObject const &) = default;
Sys_DelayedDeletionObject &
Sys_DelayedDeletionObject::operator=(Sys_DelayedDeletionObject const &) = default;
Sys_DelayedDeletionObject::~Sys_DelayedDeletionObject() = default;

void Sys_DelayedDeletionObject::DelayedDelete() {
  Sys_DelayedDeletionQueue::Push(this);
}

void Sys_DelayedDeletionQueue::Push(Sys_DelayedDeletionObject * iObjectP) {
  SPSAtomicElementBase * const elementP = iObjectP;
  if (elementP->mIsQueued.exchange(true)) return;
  // Counted first: the object may be gone as soon as it hangs in the list.
  sNumPending.fetch_add(1);
  elementP->mNextP = sNewestP.load(std::memory_order_relaxed);
  while (!sNewestP.compare_exchange_weak(elementP->mNextP, elementP, std::memory_order_release,
                                         std::memory_order_relaxed)) {
  }
}

int Sys_DelayedDeletionQueue::GetNumPending() {
  return sNumPending.load();
}

int Sys_DelayedDeletionQueue::DeletePending() {
  int numDeleted = 0;
  while (SPSAtomicElementBase * nextP = sNewestP.exchange(nullptr, std::memory_order_acquire)) {
    SPSAtomicElementBase * oldestP = nullptr;
    while (nextP) {
      SPSAtomicElementBase * const elementP = nextP;
      nextP = elementP->mNextP;
      elementP->mNextP = oldestP;
      oldestP = elementP;
    }
    while (oldestP) {
      Sys_DelayedDeletionObject * const objectP = static_cast<Sys_DelayedDeletionObject *>(oldestP);
      oldestP = oldestP->mNextP;
      delete objectP;
      sNumPending.fetch_sub(1);
      ++numDeleted;
    }
  }
  return numDeleted;
}
