#include "vrad/vrae_noteinprogress.h"

#include <new>

#include "cmn/cmn_assert.h"
#include "foundation/lumtrace.h"
#include "foundation/mem2_masterallocator.h"

namespace {

constexpr unsigned kTraceFacility = 0x2000F27;
constexpr int kNodeSize = static_cast<int>(sizeof(Vrae_NoteInProgress));

Mem2_MasterAllocator * sAllocatorP = nullptr;
Mem2_MasterAllocator::Statistics sStatistics("Vrae_NoteInProgress");

}  // namespace

void Vrae_NoteInProgress::SetAllocator(Mem2_MasterAllocator * iAllocatorP) {
  sAllocatorP = iAllocatorP;
}

Vrae_NoteInProgress * Vrae_NoteInProgress::Alloc() {
  void * blockP = nullptr;
  if (CMN_CHECK(sAllocatorP != nullptr, "sAllocatorP"))
    blockP = sAllocatorP->Alloc(kNodeSize, &sStatistics);
  LumTraceWrite(kTraceFacility, "Vrae_NoteInProgress alloc %p %d", blockP, kNodeSize);
  return blockP != nullptr ? new (blockP) Vrae_NoteInProgress : nullptr;
}

void Vrae_NoteInProgress::Free() {
  LumTraceWrite(kTraceFacility, "Vrae_NoteInProgress free %p", static_cast<void *>(this));
  if (sAllocatorP != nullptr) sAllocatorP->Free(this, &sStatistics);
}
