#include "vrad/vrad_chunk.h"

#include <utility>

#include "cmn/cmn_assert.h"
#include "foundation/time_convert.h"

namespace {

typedef std::unique_ptr<Vrad_ExtendedEventIterator> IteratorPtr;

template <class T>
bool CopyIfIs(Vrad_ExtendedEventIterator const & iIter, IteratorPtr & oCopyP) {
  T const * const iterP = dynamic_cast<T const *>(&iIter);
  if (iterP) oCopyP = std::make_unique<T>(*iterP);
  return iterP != nullptr;
}

// Of one of the three kinds that the iterator is made of.
IteratorPtr Copy(Vrad_ExtendedEventIterator const & iIter) {
  IteratorPtr copyP;
  CopyIfIs<Vrad_NoteListBase::NotesExtendedEventInRangeIter>(iIter, copyP) ||
      CopyIfIs<Vrad_ContinuousDataStreamExtendedEventsInRangeIter>(iIter, copyP) ||
      CopyIfIs<Vrad_EventStreamExtendedEventsInRangeIter>(iIter, copyP);
  return copyP;
}

}  // namespace

Vrad_ChunkExtendedEventsInRangeIter::Vrad_ChunkExtendedEventsInRangeIter() : mChunkP(nullptr) {}

Vrad_ChunkExtendedEventsInRangeIter::Vrad_ChunkExtendedEventsInRangeIter(
    Vrad_Chunk * iChunkP, Time_Typed iStart, Time_Typed iEnd, Time_TypedLength iOffset,
    bool iRangeFlag, Vrae_Filter const & iFilter)
    : mChunkP(iChunkP), mStart(iStart), mEnd(iEnd) {
  if (iChunkP == nullptr) return;
  if (iFilter.Get(Vrae_Filter::eDataType_Notes))
    AddIfMore(std::make_unique<Vrad_NoteListBase::NotesExtendedEventInRangeIter>(
        iChunkP->GetNoteList(), Time_TypedLength(0, iStart.GetType()), iStart, iEnd, iRangeFlag));

  Time_Typed start, end;
  Time_Convert::MakeTickRangeSampleBased(iStart - iOffset, iEnd - iOffset, iRangeFlag, start, end);
  start += iOffset;
  end += iOffset;
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : iChunkP->GetContinuousList())
    if (iFilter.FilterSubStream(streamP->GetSubStream()))
      AddIfMore(std::make_unique<Vrad_ContinuousDataStreamExtendedEventsInRangeIter>(streamP.Get(),
                                                                                     start, end));
  if (iFilter.Get(Vrae_Filter::eDataType_Sysex))
    AddIfMore(std::make_unique<Vrad_EventStreamExtendedEventsInRangeIter>(iChunkP->GetEventStream(),
                                                                          start, end));
}

Vrad_ChunkExtendedEventsInRangeIter::Vrad_ChunkExtendedEventsInRangeIter(
    Vrad_ChunkExtendedEventsInRangeIter const & iOther)
    : mChunkP(iOther.mChunkP), mStart(iOther.mStart), mEnd(iOther.mEnd) {
  for (IteratorPtr const & iterP : iOther.mIterators)
    mIterators.push_back(Copy(*iterP));
}

Vrad_ChunkExtendedEventsInRangeIter &
Vrad_ChunkExtendedEventsInRangeIter::operator=(Vrad_ChunkExtendedEventsInRangeIter const & iOther) {
  Vrad_ChunkExtendedEventsInRangeIter copy(iOther);
  mChunkP = copy.mChunkP;
  mStart = copy.mStart;
  mEnd = copy.mEnd;
  mIterators.swap(copy.mIterators);
  return *this;
}

Vrad_ChunkExtendedEventsInRangeIter::~Vrad_ChunkExtendedEventsInRangeIter() = default;

void Vrad_ChunkExtendedEventsInRangeIter::AddIfMore(IteratorPtr iIterP) {
  if (!iIterP->IsMore()) return;
  Iterators single;
  single.push_back(std::move(iIterP));
  InsertSorted(single);
}

// Moves the first iterator of the source behind those that play before it or tie with it.
void Vrad_ChunkExtendedEventsInRangeIter::InsertSorted(Iterators & ioSource) {
  Vrad_ExtendedEvent const event = **ioSource.front();
  auto place = mIterators.begin();
  while (place != mIterators.end() && !Vrae_TimedEvent::PlaybackOrdering(event, ***place))
    ++place;
  mIterators.splice(place, ioSource, ioSource.begin());
}

bool Vrad_ChunkExtendedEventsInRangeIter::IsMore() const {
  return !mIterators.empty();
}

void Vrad_ChunkExtendedEventsInRangeIter::operator++() {
  if (!CMN_CHECK(this->IsMore(), "this->IsMore()")) return;
  Iterators head;
  head.splice(head.begin(), mIterators, mIterators.begin());
  ++*head.front();
  if (head.front()->IsMore()) InsertSorted(head);
}

Vrad_ExtendedEvent Vrad_ChunkExtendedEventsInRangeIter::operator*() const {
  if (!CMN_CHECK(this->IsMore(), "this->IsMore()")) return Vrad_ExtendedEvent();
  return **mIterators.front();
}
