// The bytes of long system-exclusive messages: immutable, counted, shared by all copies of an
// event. There are two variants, as a payload is made either on an edit thread or on a real-time
// input thread.
//
// Thread: any, several at once; the count is atomic and the bytes never change.
#pragma once

#include "foundation/sys_atomic.h"
#include "foundation/sys_delayeddeletion.h"
#include "foundation/vrad_export.h"

class Mem2_MasterAllocator;

/// One payload, which owns its bytes. Born with a count of 1, which the maker holds; never deleted
/// directly.
class VRAD_EXPORT Vrae_SysexDataBase {
public:
  Vrae_SysexDataBase(Vrae_SysexDataBase const &) = delete;
  Vrae_SysexDataBase & operator=(Vrae_SysexDataBase const &) = delete;

  /// The number of stored bytes, 0xF0 and 0xF7 included where they are there.
  int GetLength() const { return mLength; }
  unsigned char const * GetDataPtr() const { return mDataP; }

  void AddReference() { mRefCount.Increment(); }
  /// The last one releases the payload.
  void RemoveReference() {
    if (mRefCount.Decrement() == 0) this->Destroy();
  }

protected:
  /// Fails: null bytes throw "mDataP != 0".
  Vrae_SysexDataBase(int iLength, unsigned char * iDataP);
  virtual ~Vrae_SysexDataBase();
  /// The final release, on whichever thread drops the last reference.
  virtual void Destroy() = 0;

  unsigned char * GetOwnedDataPtr() const { return mDataP; }

private:
  Sys_AtomicInt32 mRefCount;
  int mLength;
  unsigned char * mDataP;  // owned; the variant's destructor frees it
};

/// The heap variant. Dropping the last reference only queues it, so the audio thread may; the bytes
/// are freed by `Sys_DelayedDeletionQueue::DeletePending`.
class VRAD_EXPORT Vrae_SysexData : public Vrae_SysexDataBase, public Sys_DelayedDeletionObject {
public:
  /// Takes over `iDataP`, made by `new unsigned char[]`. Not for the audio thread.
  /// Fails: null when memory runs out; the bytes stay the caller's then, as they do on a throw.
  static Vrae_SysexData * New(int iLength, unsigned char * iDataP);

protected:
  Vrae_SysexData(int iLength, unsigned char * iDataP);
  ~Vrae_SysexData() override;
  void Destroy() override;
};

/// The real-time variant: object and bytes lie in a pool, to which the last reference gives both
/// back at once. It never touches the heap. The pool must outlive it.
class VRAD_EXPORT Vrae_SysexDataRT : public Vrae_SysexDataBase {
public:
  /// Takes over `iDataP`, a block of `iAllocator`. Fails: null when the pool is exhausted or there
  /// is none; the bytes stay the caller's then, as they do on a throw.
  static Vrae_SysexDataRT * New(int iLength, unsigned char * iDataP,
                                Mem2_MasterAllocator * iAllocator);

protected:
  Vrae_SysexDataRT(int iLength, unsigned char * iDataP, Mem2_MasterAllocator * iAllocator);
  ~Vrae_SysexDataRT() override;
  void Destroy() override;

private:
  Mem2_MasterAllocator * mAllocatorP;
};
