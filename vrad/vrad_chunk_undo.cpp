#include "vrad/vrad_chunk.h"

#include <memory>
#include <utility>

#include "cmn/cmn_assert.h"

namespace {

// A live object without identifier could not be found again.
template <class T>
Ndo_StateRef<T> RefOf(Ndo_Ptr<T> const & iObjP) {
  CMN_REQUIRE(!(iObjP.mCachedID == -1 && iObjP.mPtr != 0),
              "!(iObjP.mCachedID == -1 && iObjP.mPtr != 0)");
  return Ndo_StateRef<T>(iObjP.mCachedID);
}

}  // namespace

Vrad_Chunk_NdoState::Vrad_Chunk_NdoState() : mIsLocal(true) {}

Vrad_Chunk_NdoState::~Vrad_Chunk_NdoState() = default;

Ndo_Object * Vrad_Chunk_NdoState::NdoReCreate() {
  return new Vrad_Chunk(Vrad_Chunk::ReCreate());
}

Vrad_Chunk::Vrad_Chunk(ReCreate) : Vrad_Chunk(kNotUndoable, false) {}

Ndo_State * Vrad_Chunk::NdoGetState() {
  std::unique_ptr<Vrad_Chunk_NdoState> stateP(new Vrad_Chunk_NdoState);
  stateP->mNoteListRef = RefOf(mNoteListP);
  stateP->mMiscEventsRef = RefOf(mMiscEventsP);
  stateP->mContinuousRefs.reserve(mContinuousList.size());
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : mContinuousList)
    stateP->mContinuousRefs.push_back(RefOf(streamP));
  stateP->mUID = mUID;
  stateP->mIsLocal = mIsLocal;
  return stateP.release();
}

void Vrad_Chunk::NdoRestoreState(Ndo_State * iStateP) {
  Vrad_Chunk_NdoState const * const p = dynamic_cast<Vrad_Chunk_NdoState const *>(iStateP);
  if (!CMN_REQUIRE_FLAGGED(p, "p")) return;
  ContinuousList streams;
  streams.reserve(p->mContinuousRefs.size());
  mNoteListP = p->mNoteListRef.Resolve();
  mMiscEventsP = p->mMiscEventsRef.Resolve();
  // A stream that was let go outside of any step may be gone for good: the list holds no null.
  for (Ndo_StateRef<Vrad_ContinuousDataStream> const & ref : p->mContinuousRefs)
    if (Ndo_Ptr<Vrad_ContinuousDataStream> const streamP = ref.Resolve())
      streams.push_back(streamP);
  mContinuousList = std::move(streams);
  mUID = p->mUID;
  mIsLocal = p->mIsLocal;
}
