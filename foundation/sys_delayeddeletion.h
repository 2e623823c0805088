// Objects that a real-time thread drops and another thread destroys.
#pragma once

#include <atomic>

#include "foundation/vrad_export.h"

/// The link by which an object hangs in the queue, so that queueing takes no memory.
class VRAD_EXPORT SPSAtomicElementBase {
protected:
  SPSAtomicElementBase();
  // A copy is an object of its own: it is in no queue.
  SPSAtomicElementBase(SPSAtomicElementBase const &);
  SPSAtomicElementBase & operator=(SPSAtomicElementBase const &);
  ~SPSAtomicElementBase();

private:
  friend class Sys_DelayedDeletionQueue;
  SPSAtomicElementBase * mNextP;  // queued just before this one; belongs to the queue once there
  std::atomic<bool> mIsQueued;    // never goes down again
};

/// An object on the heap that a real-time thread may drop without freeing it.
class VRAD_EXPORT Sys_DelayedDeletionObject : public SPSAtomicElementBase {
public:
  virtual ~Sys_DelayedDeletionObject();

  /// Queues the object for `Sys_DelayedDeletionQueue::DeletePending`; the caller must not use it
  /// afterwards. A second call does nothing. Thread: any; neither frees, allocates, nor blocks.
  void DelayedDelete();

protected:
  Sys_DelayedDeletionObject();
  Sys_DelayedDeletionObject(Sys_DelayedDeletionObject const &);
  Sys_DelayedDeletionObject & operator=(Sys_DelayedDeletionObject const &);
};

/// The one queue of dropped objects. Nothing empties it but the host, which should do so now and
/// then; what is still queued when the process ends is not destroyed.
class VRAD_EXPORT Sys_DelayedDeletionQueue {
public:
  /// Dropped and not yet destroyed. Thread: any.
  static int GetNumPending();

  /// Destroys what was dropped, in order of dropping, and what those destructors drop in turn.
  /// Gives the number destroyed. Thread: any where freeing memory is allowed, several at once.
  static int DeletePending();

private:
  friend class Sys_DelayedDeletionObject;
  static void Push(Sys_DelayedDeletionObject * iObjectP);
};
