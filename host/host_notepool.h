// The memory for sounding notes, which a host hands to the library once.
#pragma once

#include <memory>

class Mem2_MasterAllocator;

/// Makes itself the pool of all notes in progress of the process.
/// Lives: longer than all track states and players; one at a time in a process.
class Host_NotePool {
public:
  static constexpr int kDefaultNumNotes = 16384;

  /// Room for that many notes that sound at once. Fails: std::bad_alloc.
  explicit Host_NotePool(int iNumNotes = kDefaultNumNotes);
  ~Host_NotePool();
  Host_NotePool(Host_NotePool const &) = delete;
  Host_NotePool & operator=(Host_NotePool const &) = delete;

  int GetNumInUse() const;

private:
  std::unique_ptr<Mem2_MasterAllocator> mAllocatorP;
};
