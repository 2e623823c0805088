#include "host/host_notepool.h"

#include "foundation/mem2_masterallocator.h"
#include "vrad/vrae_noteinprogress.h"

namespace {

// The allocator packs blocks into pages of 1024 bytes.
constexpr int kPageBytes = 1024;
constexpr int kBlockBytes = (static_cast<int>(sizeof(Vrae_NoteInProgress)) + 15) / 16 * 16;
constexpr int kNotesInPage = kPageBytes / kBlockBytes;

int PoolBytes(int iNumNotes) {
  return (iNumNotes + kNotesInPage - 1) / kNotesInPage * kPageBytes;
}

}  // namespace

Host_NotePool::Host_NotePool(int iNumNotes)
    : mAllocatorP(std::make_unique<Mem2_MasterAllocator>(PoolBytes(iNumNotes))) {
  Vrae_NoteInProgress::SetAllocator(mAllocatorP.get());
}

Host_NotePool::~Host_NotePool() {
  Vrae_NoteInProgress::SetAllocator(nullptr);
}

int Host_NotePool::GetNumInUse() const {
  return mAllocatorP->GetNumBlocksInUse();
}
