// Counts that several threads may change at once.
#pragma once

#include <atomic>

#include "foundation/vrad_export.h"

/// An atomic counter. Thread: any; allocates nothing.
class VRAD_EXPORT Sys_AtomicInt32 {
public:
  explicit Sys_AtomicInt32(int iValue = 0);
  Sys_AtomicInt32(Sys_AtomicInt32 const &) = delete;
  Sys_AtomicInt32 & operator=(Sys_AtomicInt32 const &) = delete;

  /// Both give the new value.
  int Increment();
  int Decrement();

  int Get() const;

private:
  std::atomic<int> mValue;
};

/// A word of flags that several threads may raise at once.
class VRAD_EXPORT Sys_Flags_AtomicBase {
protected:
  Sys_Flags_AtomicBase();
  // Flags belong to one object: a copy starts without any, an assignment keeps the target's.
  Sys_Flags_AtomicBase(Sys_Flags_AtomicBase const &);
  Sys_Flags_AtomicBase & operator=(Sys_Flags_AtomicBase const &);
  ~Sys_Flags_AtomicBase();

  /// True for the one caller that found all flags of `iMask` down and raised them.
  bool RaiseFlags(unsigned iMask) const;

private:
  mutable std::atomic<unsigned> mFlags;
};

/// Base of objects on the heap that are shared through counted handles (`boost::intrusive_ptr`).
/// The count starts at 0 and handles add to it; copying an object does not copy its count.
/// Thread: any for the count; the release of the last handle destroys the object on its thread.
class VRAD_EXPORT Sys_ThreadSafeRefCountObject : public Sys_Flags_AtomicBase {
public:
  void AddReference() const;

  /// The release that brings the count to 0 calls `RefCountDelete`.
  void RemoveReference() const;

  int GetRefCount() const;

protected:
  Sys_ThreadSafeRefCountObject();
  Sys_ThreadSafeRefCountObject(Sys_ThreadSafeRefCountObject const &);
  Sys_ThreadSafeRefCountObject & operator=(Sys_ThreadSafeRefCountObject const &);
  virtual ~Sys_ThreadSafeRefCountObject();

  /// What happens when the last handle goes: `SmartDeletion`, unless a class has other plans.
  virtual void RefCountDelete() const;

  /// Destroys the object once, even if its destructor makes and drops handles on it.
  void SmartDeletion() const;

private:
  mutable std::atomic<int> mRefCount;
};

/// How `boost::intrusive_ptr` counts.
VRAD_EXPORT void intrusive_ptr_add_ref(Sys_ThreadSafeRefCountObject const * iObjectP);
VRAD_EXPORT void intrusive_ptr_release(Sys_ThreadSafeRefCountObject const * iObjectP);
