#include "vrad/vrad_chunk.h"

#include "cmn/cmn_assert.h"
#include "foundation/ticktimesmatter.h"
#include "foundation/time_convert.h"
#include "vrad/vrae_event.h"

Vrad_Chunk::Vrad_Chunk(Ndo_Object::EUndoFlag iUndoFlag, bool iQuantizeContents)
    : Ndo_Object(iUndoFlag),
      mSortedEventListP(nullptr),
      mIsLocal(true),
      mQuantizeContents(iQuantizeContents),
      mIsMovedForTickTime(false) {}

Vrad_Chunk * Vrad_Chunk::New(Ndo_Object::EUndoFlag iUndoFlag, bool iQuantizeContents) {
  std::unique_ptr<Vrad_Chunk> chunkP(new Vrad_Chunk(iUndoFlag, iQuantizeContents));
  chunkP->mNoteListP = Ndo_Ptr<Vrad_NoteListBase>(new Vrad_NoteList(iUndoFlag, iQuantizeContents));
  chunkP->mMiscEventsP =
      Ndo_Ptr<Vrad_EventStream>(new Vrad_EventStream(iUndoFlag, iQuantizeContents));
  chunkP->mUID = Sys_Umid::Create();
  return chunkP.release();
}

Vrad_Chunk::~Vrad_Chunk() {
  Ndo_HandOver(mNoteListP);
  Ndo_HandOver(mMiscEventsP);
  for (Ndo_Ptr<Vrad_ContinuousDataStream> & streamP : mContinuousList)
    Ndo_HandOver(streamP);
  DropSortedEventList();
}

void Vrad_Chunk::AddEvent(Vrad_ExtendedEvent const & iEvent) {
  if (TickTimesMatter::Active() && mQuantizeContents &&
      iEvent.mTime.GetType() == Time_eType_Ticks) {
    long long ticks = iEvent.mTime.AsInt64();
    Time_Convert::SnapToCoarseInternalTick(ticks);
    if (ticks != iEvent.mTime.AsInt64()) {
      Vrad_ExtendedEvent snapped(iEvent);
      snapped.mTime = Time_Tick(ticks);
      StoreEvent(snapped);
      return;
    }
  }
  StoreEvent(iEvent);
}

void Vrad_Chunk::StoreEvent(Vrad_ExtendedEvent const & iEvent) {
  switch (iEvent.mEvent.GetType()) {
  case Vrae_Event::kNoteWithDuration:
  case Vrae_Event::kPitchToMIDINoteWithDuration:
    if (CMN_CHECK(iEvent.IsNoteWithDurationExtendedEvent(),
                  "!\"non-extended note event cannot be in a chunk\"") &&
        mNoteListP)
      mNoteListP->AddNote(iEvent.AsNoteWithDurationExtendedEvent());
    break;
  case Vrae_Event::kPitchBend:
  case Vrae_Event::kController:
  case Vrae_Event::kProgram:
  case Vrae_Event::kMonoPressure:
  case Vrae_Event::kPolyPressure:
    if (Vrad_ContinuousDataStream * const streamP =
            FindOrCreateContinuousStream(Vrae_SubStream(iEvent.mEvent)))
      streamP->AddEvent(iEvent);
    break;
  case Vrae_Event::kShortSysex:
  case Vrae_Event::kLongSysex:
    mMiscEventsP->AddEvent(iEvent);
    break;
  default:
    CMN_CHECK(false, "!\"event type cannot be in a chunk\"");
    break;
  }
  DropSortedEventList();
}

void Vrad_Chunk::EraseEvent(Vrae_TimedEvent const & iEvent) {
  switch (iEvent.mEvent.GetType()) {
  case Vrae_Event::kNoteWithDuration:
    if (mNoteListP) mNoteListP->EraseNote(iEvent);
    break;
  case Vrae_Event::kShortSysex:
  case Vrae_Event::kLongSysex:
    mMiscEventsP->EraseEvent(iEvent);
    break;
  default:
    // Kind 22 comes here too, and belongs to no sub-stream.
    Vrae_SubStream const subStream(iEvent.mEvent);
    if (!subStream.IsNull()) {
      int const index = subStream.GetIndex();
      size_t const place = FindPlace(index);
      if (IsStreamAt(place, index)) {
        mContinuousList[place]->EraseEvent(iEvent);
        RemoveStreamIfEmpty(place);
      }
    }
    break;
  }
  DropSortedEventList();
}

void Vrad_Chunk::Clear() {
  if (mNoteListP) mNoteListP->Clear();
  mMiscEventsP->Clear();
  for (size_t place = mContinuousList.size(); place-- > 0;) {
    mContinuousList[place]->Clear();
    RemoveStreamIfEmpty(place);
  }
  DropSortedEventList();
}

void Vrad_Chunk::ReplaceData(Vrad_Chunk const * iSrcP) {
  bool const hasNoteList = CMN_CHECK(mNoteListP, "mNoteListP");
  if (CMN_CHECK(iSrcP->mNoteListP.Get(), "iSrcP->mNoteListP.Get()") && hasNoteList)
    mNoteListP->ReplaceData(iSrcP->mNoteListP.Get());
  ReplaceStreams(*iSrcP);
  bool const hasMiscEvents = CMN_CHECK(mMiscEventsP, "mMiscEventsP");
  if (CMN_CHECK(iSrcP->mMiscEventsP.Get(), "iSrcP->mMiscEventsP.Get()") && hasMiscEvents)
    mMiscEventsP->ReplaceData(iSrcP->mMiscEventsP.Get());
  DropSortedEventList();
}

// With itself as source the chunk loses its streams before it reads them.
void Vrad_Chunk::ReplaceStreams(Vrad_Chunk const & iSrc) {
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : mContinuousList)
    streamP->NdoDelete();
  if (!mContinuousList.empty()) {
    NdoAboutToModify();
    mContinuousList.clear();
  }
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & sourceP : iSrc.mContinuousList) {
    Ndo_AutoPtr<Vrad_ContinuousDataStream> streamP(
        new Vrad_ContinuousDataStream(sourceP->GetSubStream(), UndoFlag(), mQuantizeContents));
    streamP->ReplaceData(sourceP.Get());
    NdoAboutToModify();
    mContinuousList.push_back(Ndo_Ptr<Vrad_ContinuousDataStream>(streamP.Get()));
    streamP.Release();
  }
}

bool Vrad_Chunk::IsEventInChunk(Vrae_TimedEvent const & iEvent) {
  signed char const kind = iEvent.mEvent.GetType();
  if (kind == Vrae_Event::kNoteWithDuration || kind == Vrae_Event::kPitchToMIDINoteWithDuration)
    return mNoteListP && mNoteListP->IsNoteInList(iEvent);

  Time_TypedLength const unit(1, iEvent.mTime.GetType());
  Time_Typed const start = iEvent.mTime - unit, end = iEvent.mTime + unit;
  Vrae_TimedEventList events;
  Vrad_EventListWrapper wrapper(&events);
  if (kind == Vrae_Event::kShortSysex || kind == Vrae_Event::kLongSysex) {
    mMiscEventsP->GetEventsInRange(&wrapper, start, end, start, end, nullptr, 0);
  } else {
    Vrad_ContinuousDataStream * const streamP =
        FindOrCreateContinuousStream(Vrae_SubStream(iEvent.mEvent));
    if (!streamP) return false;
    streamP->GetMidiEventsInRange(&wrapper, start, end, start, end, nullptr, nullptr, nullptr,
                                  false, 0);
  }
  for (Vrae_TimedEvent const & event : events)
    if (event == iEvent) return true;
  return false;
}

void Vrad_Chunk::SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase> iNoteListP) {
  if (iNoteListP.Get())
    CMN_REQUIRE(this->NdoIsUndoable() == iNoteListP->NdoIsUndoable(),
                "this->NdoIsUndoable() == iNoteListP->NdoIsUndoable()");
  NdoAboutToModify();
  if (mNoteListP) mNoteListP->NdoDelete();
  mNoteListP = Ndo_Ptr<Vrad_NoteListBase>(iNoteListP.Release());
  DropSortedEventList();
}

void Vrad_Chunk::FindMIDIControllersInUse(bool * ioUsed) const {
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : mContinuousList) {
    signed char type = 0, subType = 0;
    streamP->GetSubStream().GetInfo(type, subType);
    if (type == Vrae_Event::kController) ioUsed[subType] = true;
  }
}

void Vrad_Chunk::StoreSortedEventList(Vrad_DisplayItemList * iListP) {
  mSortedEventListP = iListP;
}

void Vrad_Chunk::DropSortedEventList() {
  delete mSortedEventListP;
  mSortedEventListP = nullptr;
}

void Vrad_Chunk::SetUID(Sys_Umid const & iUID) {
  NdoAboutToModify();
  mUID = iUID;
}

void Vrad_Chunk::SetIsLocal(bool iIsLocal) {
  NdoAboutToModify();
  mIsLocal = iIsLocal;
}

Ndo_Object::EUndoFlag Vrad_Chunk::UndoFlag() const {
  return NdoIsUndoable() ? kUndoable : kNotUndoable;
}

// The first stream whose index is not less.
size_t Vrad_Chunk::FindPlace(int iIndex) const {
  size_t place = 0;
  for (size_t left = mContinuousList.size(); left > 0;) {
    size_t const half = left / 2;
    if (mContinuousList[place + half]->GetSubStream().GetIndex() < iIndex) {
      place += half + 1;
      left -= half + 1;
    } else {
      left = half;
    }
  }
  return place;
}

bool Vrad_Chunk::IsStreamAt(size_t iPlace, int iIndex) const {
  return iPlace < mContinuousList.size() &&
         mContinuousList[iPlace]->GetSubStream().GetIndex() == iIndex;
}

Vrad_ContinuousDataStream *
Vrad_Chunk::FindContinuousStream(Vrae_SubStream const & iSubStream) const {
  if (iSubStream.IsNull()) return nullptr;
  int const index = iSubStream.GetIndex();
  size_t const place = FindPlace(index);
  return IsStreamAt(place, index) ? mContinuousList[place].Get() : nullptr;
}

Vrad_ContinuousDataStream *
Vrad_Chunk::FindOrCreateContinuousStream(Vrae_SubStream const & iSubStream) {
  if (iSubStream.IsNull()) return nullptr;
  int const index = iSubStream.GetIndex();
  size_t const place = FindPlace(index);
  if (IsStreamAt(place, index)) return mContinuousList[place].Get();

  return InsertStream(place, Ndo_AutoPtr<Vrad_ContinuousDataStream>(new Vrad_ContinuousDataStream(
                                 iSubStream, UndoFlag(), mQuantizeContents)));
}

Vrad_ContinuousDataStream *
Vrad_Chunk::InsertStream(size_t iPlace, Ndo_AutoPtr<Vrad_ContinuousDataStream> iStreamP) {
  NdoAboutToModify();
  mContinuousList.insert(mContinuousList.begin() + iPlace,
                         Ndo_Ptr<Vrad_ContinuousDataStream>(iStreamP.Get()));
  return iStreamP.Release();
}

void Vrad_Chunk::RemoveStreamIfEmpty(size_t iPlace) {
  if (!mContinuousList[iPlace]->IsEmpty()) return;
  NdoAboutToModify();
  mContinuousList[iPlace]->NdoDelete();
  mContinuousList.erase(mContinuousList.begin() + iPlace);
}

bool operator==(Vrad_Chunk const & iA, Vrad_Chunk const & iB) {
  if (!iA.GetNoteList() || !iB.GetNoteList()) {
    if (iA.GetNoteList() != iB.GetNoteList()) return false;
  } else if (!(*iA.GetNoteList() == *iB.GetNoteList())) {
    return false;
  }
  auto const & a = iA.GetContinuousList();
  auto const & b = iB.GetContinuousList();
  if (a.size() != b.size()) return false;
  // The places of the elements, on purpose: what the streams hold is not compared.
  for (size_t i = 0; i < a.size(); ++i)
    if (&a[i] != &b[i]) return false;
  return *iA.GetEventStream() == *iB.GetEventStream();
}
