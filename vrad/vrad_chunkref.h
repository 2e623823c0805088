// How a host holds a chunk, and the receiver that records events into one.
#pragma once

#include "cmn/cmn_refcountobject.h"
#include "foundation/vrad_export.h"
#include "ndo/ndo_externalref.h"
#include "vrad/vrad_chunk.h"
#include "vrad/vrae_timedevent.h"

/// What the handles of one chunk share: the way to the chunk and the count of its real users. Made
/// by `Vrad_ChunkRef` alone.
class VRAD_EXPORT Vrad_ChunkRefCounter : public Cmn_RefCountObject {
public:
  Vrad_ChunkRefCounter(Vrad_ChunkRefCounter const &) = default;
  Vrad_ChunkRefCounter & operator=(Vrad_ChunkRefCounter const &) = default;

protected:
  /// `NdoDelete` on the chunk, if it is still there, whatever the count of real users.
  ~Vrad_ChunkRefCounter() override;

private:
  friend class Vrad_ChunkRef;

  explicit Vrad_ChunkRefCounter(Vrad_Chunk * iChunkP);
  Vrad_Chunk * GetChunk() const;

  Ndo_ExternalRefBase mChunkRef;
  int mNumRealUsers = 0;  // the host's bookkeeping; any value
};

/// A counted handle on a chunk, or empty. With the last copy the chunk gets `NdoDelete`, and then
/// lives as long as the undo manager keeps it. Handles share by being copied: a chunk is wrapped
/// once, since a second handle made from its address would let go of it a second time. Moving
/// copies, too: a handle that was moved from still holds the chunk.
/// Thread: the chunk's; counts have no lock.
class VRAD_EXPORT Vrad_ChunkRef {
public:
  Vrad_ChunkRef() = default;
  Vrad_ChunkRef(Vrad_ChunkRef const &) = default;
  Vrad_ChunkRef & operator=(Vrad_ChunkRef const &) = default;

  /// Takes the chunk over; null gives an empty handle. Fails: `std::bad_alloc`; the chunk stays the
  /// caller's.
  explicit Vrad_ChunkRef(Vrad_Chunk * iChunkP);

  /// Null for an empty handle, and once the chunk has been destroyed.
  Vrad_Chunk * Get() const;
  Vrad_Chunk * operator->() const { return Get(); }
  /// Needs: a chunk.
  Vrad_Chunk & operator*() const { return *Get(); }

  /// Whether there is a chunk.
  operator bool() const { return Get() != nullptr; }

  /// By address of the chunks; empty handles come first.
  bool operator<(Vrad_ChunkRef const & iOther) const;

  /// Empty handles are not the same.
  bool IsSameChunkAs(Vrad_ChunkRef const & iOther) const;

  /// The handles that share this one's counter, this one included; 0 for an empty handle.
  int GetRefCount() const;

  /// How many users the host has counted. Nothing in the library asks. 0 for an empty handle.
  int GetNumRealUsers() const;

  /// Adds a number, which may be negative. An empty handle counts nothing.
  void AddToRealUsers(int iNum);

private:
  friend class Vrad_ChunkWriter;

  struct Counting {
    static void AddReference(Vrad_ChunkRefCounter * iP) { iP->AddReference(); }
    static void RemoveReference(Vrad_ChunkRefCounter * iP) { iP->RemoveReference(); }
  };
  typedef Cmn_AliasedRefCountPtr<Vrad_ChunkRefCounter, Vrad_ChunkRefCounter *, Counting> CounterPtr;

  CounterPtr mCounterP;  // null: empty
};

/// Records what it receives into a chunk, at the times of the events. Shares the chunk's handle;
/// copies go on writing into the same chunk, and moving copies.
/// Thread: the chunk's.
class VRAD_EXPORT Vrad_ChunkWriter : public Vrae_TimedEventReceiver {
public:
  /// Without a chunk.
  Vrad_ChunkWriter();
  Vrad_ChunkWriter(Vrad_ChunkWriter const & iOther);
  Vrad_ChunkWriter & operator=(Vrad_ChunkWriter const & iOther);
  ~Vrad_ChunkWriter() override;

  /// From now on into the chunk of this handle.
  void SetChunkRef(Vrad_ChunkRef const & iRef);

  /// Adds the event to the chunk; a note becomes its own original, not muted. Without a chunk
  /// nothing happens.
  /// Fails: a note with a fractional pitch is reported and lost, on purpose, as is what a chunk
  /// cannot hold.
  void ReceiveEvent(Vrae_TimedEvent const & iEvent) override;

private:
  Vrad_ChunkRef mChunkRef;
};
