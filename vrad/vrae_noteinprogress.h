// One sounding note, reduced to what ends it.
#pragma once

#include "foundation/time_typed.h"
#include "foundation/vrad_export.h"

class Mem2_MasterAllocator;

/// A node of the list that a track state keeps. Nodes come from the host's pool and from nowhere
/// else; copying a node copies its link.
/// Thread: any for taking and giving back, as far as the pool allows; a node belongs to its list.
class VRAD_EXPORT Vrae_NoteInProgress {
public:
  /// Once, before any node is taken. The pool stays the host's and must outlive all nodes.
  static void SetAllocator(Mem2_MasterAllocator * iAllocatorP);

  /// A node off the list, of whose fields the release time alone is sure to be set. Null when the
  /// pool is exhausted.
  /// Fails: without a pool it is reported, and null.
  static Vrae_NoteInProgress * Alloc();

  /// Gives back a node that `Alloc` gave. The owner of the list unlinks it first.
  void Free();

  Vrae_NoteInProgress() : mReleaseTime(0, Time_eType_Ticks) {}

  signed char mPitch = 0;
  signed char mOnVelocity = 0;
  signed char mOffVelocity = 0;
  Time_Typed mReleaseTime;                 // when the note ends
  Vrae_NoteInProgress * mNextP = nullptr;  // the one that ends next; null at the tail
};
