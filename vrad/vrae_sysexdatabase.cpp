#include "vrad/vrae_sysexdatabase.h"

#include <new>

#include "cmn/cmn_assert.h"
#include "foundation/mem2_masterallocator.h"

namespace {

Mem2_MasterAllocator::Statistics sStatistics("Vrae_SysexDataRT");

}  // namespace

Vrae_SysexDataBase::Vrae_SysexDataBase(int iLength, unsigned char * iDataP)
    : mRefCount(1), mLength(iLength), mDataP(iDataP) {
  CMN_REQUIRE(mDataP != nullptr, "mDataP != 0");
}

Vrae_SysexDataBase::~Vrae_SysexDataBase() = default;

Vrae_SysexData::Vrae_SysexData(int iLength, unsigned char * iDataP)
    : Vrae_SysexDataBase(iLength, iDataP) {}

Vrae_SysexData::~Vrae_SysexData() {
  delete[] this->GetOwnedDataPtr();
}

Vrae_SysexData * Vrae_SysexData::New(int iLength, unsigned char * iDataP) {
  return new (std::nothrow) Vrae_SysexData(iLength, iDataP);
}

void Vrae_SysexData::Destroy() {
  this->DelayedDelete();
}

Vrae_SysexDataRT::Vrae_SysexDataRT(int iLength, unsigned char * iDataP,
                                   Mem2_MasterAllocator * iAllocator)
    : Vrae_SysexDataBase(iLength, iDataP), mAllocatorP(iAllocator) {}

// The bytes were taken without statistics and are freed with them.
Vrae_SysexDataRT::~Vrae_SysexDataRT() {
  mAllocatorP->Free(this->GetOwnedDataPtr(), &sStatistics);
}

Vrae_SysexDataRT * Vrae_SysexDataRT::New(int iLength, unsigned char * iDataP,
                                         Mem2_MasterAllocator * iAllocator) {
  if (iAllocator == nullptr) return nullptr;
  void * const placeP = iAllocator->Alloc(sizeof(Vrae_SysexDataRT), &sStatistics);
  if (placeP == nullptr) return nullptr;
  try {
    return new (placeP) Vrae_SysexDataRT(iLength, iDataP, iAllocator);
  } catch (...) {
    iAllocator->Free(placeP, &sStatistics);
    throw;
  }
}

void Vrae_SysexDataRT::Destroy() {
  Mem2_MasterAllocator * const allocatorP = mAllocatorP;
  this->~Vrae_SysexDataRT();
  allocatorP->Free(this, &sStatistics);
}
