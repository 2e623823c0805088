#include "vrad/vrad_chunkref.h"

#include <functional>
#include <memory>

#include "vrad/vrae_event.h"

Vrad_ChunkRefCounter::Vrad_ChunkRefCounter(Vrad_Chunk * iChunkP) : mChunkRef(iChunkP) {}

// The undo manager decides when the chunk goes. One that it keeps already is handed over once.
Vrad_ChunkRefCounter::~Vrad_ChunkRefCounter() {
  if (Vrad_Chunk * const chunkP = GetChunk()) chunkP->NdoDelete();
}

Vrad_Chunk * Vrad_ChunkRefCounter::GetChunk() const {
  return static_cast<Vrad_Chunk *>(mChunkRef.GetObjPtr());
}

Vrad_ChunkRef::Vrad_ChunkRef(Vrad_Chunk * iChunkP)
    : mCounterP(iChunkP ? new Vrad_ChunkRefCounter(iChunkP) : nullptr) {}

Vrad_Chunk * Vrad_ChunkRef::Get() const {
  return mCounterP ? mCounterP->GetChunk() : nullptr;
}

bool Vrad_ChunkRef::operator<(Vrad_ChunkRef const & iOther) const {
  return iOther.mCounterP && std::less<Vrad_Chunk *>()(Get(), iOther.Get());
}

bool Vrad_ChunkRef::IsSameChunkAs(Vrad_ChunkRef const & iOther) const {
  return Get() && Get() == iOther.Get();
}

int Vrad_ChunkRef::GetRefCount() const {
  return mCounterP ? mCounterP->GetRefCount() : 0;
}

int Vrad_ChunkRef::GetNumRealUsers() const {
  return mCounterP ? mCounterP->mNumRealUsers : 0;
}

void Vrad_ChunkRef::AddToRealUsers(int iNum) {
  if (mCounterP) mCounterP->mNumRealUsers += iNum;
}

Vrad_ChunkWriter::Vrad_ChunkWriter() = default;
Vrad_ChunkWriter::Vrad_ChunkWriter(Vrad_ChunkWriter const &) = default;
Vrad_ChunkWriter & Vrad_ChunkWriter::operator=(Vrad_ChunkWriter const &) = default;
Vrad_ChunkWriter::~Vrad_ChunkWriter() = default;

void Vrad_ChunkWriter::SetChunkRef(Vrad_ChunkRef const & iRef) {
  mChunkRef = iRef;
}

// Only the plain note gets its extras here, so the chunk refuses one with a fractional pitch.
void Vrad_ChunkWriter::ReceiveEvent(Vrae_TimedEvent const & iEvent) {
  Vrad_Chunk * const chunkP = mChunkRef.Get();
  if (!chunkP) return;
  if (iEvent.mEvent.GetType() == Vrae_Event::kNoteWithDuration)
    chunkP->AddEvent(Vrad_NoteWithDurationExtendedEvent(iEvent.mTime,
                                                        iEvent.mEvent.AsNoteWithDuration(), false));
  else
    chunkP->AddEvent(Vrad_ExtendedEvent(iEvent.mTime, iEvent.mEvent));
}
