// From a time range of a chunk to one sorted list.
#include "vrad/vrad_chunk.h"

#include "foundation/time_convert.h"

// What the full form of the retrieval was asked, with the clip range made sample-exact.
struct Vrad_Chunk::RangeRequest {
  Vrad_EventListWrapper * mListP;
  Time_TypedLength mOffset;
  Time_Typed mStart, mEnd;
  Time_Typed mClipStart, mClipEnd;
  bool mRangeFlag;
  Vrae_ChaseTracker * mTrackerP;
  Vrae_ChaseTrackerMap const * mMapP;
  Vrae_Filter const & mFilter;
  Vrad_IRTProperties const * mPropertiesP;
  bool mSkipMuted;
  int mItemTag;
  ENoteOffInclusion mNoteOffInclusion;

  bool IsInClip(Time_Typed iTime) const { return !(iTime < mClipStart) && iTime < mClipEnd; }

  void Append(Vrad_ExtendedEvent const & iNew, Vrad_ExtendedEvent const & iOrig,
              bool iIsMuted) const {
    if (mListP->IsDisplayList())
      mListP->push_back(Vrad_DisplayItem(iNew, iOrig, iIsMuted, mItemTag));
    else
      mListP->push_back(iNew);
  }
};

void Vrad_Chunk::AppendNotes(RangeRequest const & iRequest) const {
  constexpr int kAllProperties = 255;
  Vrad_NoteListBase::NotesExtendedEventInRangeIter iter(
      mNoteListP.Get(), iRequest.mOffset, iRequest.mStart, iRequest.mEnd, iRequest.mRangeFlag);
  for (; iter.IsMore(); ++iter) {
    Vrad_ExtendedEvent original = *iter;
    bool const isMuted = original.mMuted;
    if (iRequest.mSkipMuted && isMuted) continue;
    original.mTime -= iRequest.mOffset;
    if (!iRequest.mPropertiesP) {
      if (iRequest.IsInClip(original.mTime)) iRequest.Append(original, original, isMuted);
      continue;
    }
    // The properties may move the note into the clip range or out of it.
    Vrad_ExtendedEvent changed(original);
    iRequest.mPropertiesP->ApplyRealTimeProperties(changed, kAllProperties);
    if (iRequest.IsInClip(changed.mTime)) iRequest.Append(changed, original, isMuted);
  }
}

// Neither the filter nor the clip range applies, on purpose: the host ends notes by the marker.
void Vrad_Chunk::AppendNoteOffMarker(RangeRequest const & iRequest) const {
  Time_Typed const time =
      iRequest.mNoteOffInclusion == kNoteOffInclusion_Earliest
          ? mNoteListP->GetEarliestReleaseTimeForNotesInRange(iRequest.mStart, iRequest.mEnd)
          : mNoteListP->GetLastReleaseTimeForNotesInRange(iRequest.mStart, iRequest.mEnd);
  Vrad_ExtendedEvent marker;
  marker.mTime = time - iRequest.mOffset;
  iRequest.Append(marker, marker, false);
}

void Vrad_Chunk::AppendStreams(RangeRequest const & iRequest) const {
  Time_TypedLength const offset = iRequest.mOffset;
  Time_EType const type = offset.GetType();
  Time_Typed start, end;
  Time_Convert::MakeTickRangeSampleBased(iRequest.mStart - offset, iRequest.mEnd - offset,
                                         iRequest.mRangeFlag, start, end);
  start += offset;
  end += offset;

  // Without an offset value 0, whatever the converter makes of sample 0.
  Time_Typed const origin = Time_Convert::ToType(Time_Sample(0), type);
  Time_Typed const streamFloor = offset.AsInt64() == 0 ? Time_Typed(0, type) : origin;
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : mContinuousList)
    if (iRequest.mFilter.FilterSubStream(streamP->GetSubStream()))
      streamP->GetMidiEventsInRange(iRequest.mListP, start, end, iRequest.mClipStart,
                                    iRequest.mClipEnd, iRequest.mTrackerP, iRequest.mMapP, offset,
                                    streamFloor, type, iRequest.mPropertiesP, false,
                                    iRequest.mItemTag);
  if (iRequest.mFilter.Get(Vrae_Filter::eDataType_Sysex))
    mMiscEventsP->GetEventsInRange(iRequest.mListP, start, end, iRequest.mClipStart,
                                   iRequest.mClipEnd, offset, origin, type, iRequest.mPropertiesP,
                                   false, iRequest.mItemTag);
}

void Vrad_Chunk::GetMidiEventsInRange(Vrad_EventListWrapper * iList, Time_TypedLength iOffset,
                                      Time_Typed iStart, Time_Typed iEnd, Time_Typed iClipStart,
                                      Time_Typed iClipEnd, bool iRangeFlag,
                                      Vrae_ChaseTracker * iChaseTracker,
                                      Vrae_ChaseTrackerMap const * iChaseTrackerMap,
                                      Vrae_Filter const & iFilter,
                                      Vrad_IRTProperties const * iProperties, bool iSkipMuted,
                                      int iItemTag, ENoteOffInclusion iNoteOffInclusion) const {
  unsigned long long const mark = iList->size();  // events of other chunks stand before it
  Time_Typed clipStart, clipEnd;
  Time_Convert::MakeTickRangeSampleBased(iClipStart, iClipEnd, false, clipStart, clipEnd);
  RangeRequest const request = {
      iList,      iOffset,          iStart,           iEnd,    clipStart,   clipEnd,
      iRangeFlag, iChaseTracker,    iChaseTrackerMap, iFilter, iProperties, iSkipMuted,
      iItemTag,   iNoteOffInclusion};
  if (iFilter.Get(Vrae_Filter::eDataType_Notes)) AppendNotes(request);
  if (iNoteOffInclusion != kNoteOffInclusion_None && mNoteListP) AppendNoteOffMarker(request);
  AppendStreams(request);
  iList->sort(mark);
}

void Vrad_Chunk::GetMidiEventsInRange(Vrad_EventListWrapper * iList, Time_TypedLength iOffset,
                                      Time_Typed iStart, Time_Typed iEnd, bool iRangeFlag,
                                      Vrae_ChaseTracker * iChaseTracker,
                                      Vrae_ChaseTrackerMap const * iChaseTrackerMap,
                                      ENoteOffInclusion iNoteOffInclusion) const {
  Vrae_Filter filter;
  filter.ClearAll();
  filter.SetAll();
  GetMidiEventsInRange(iList, iOffset, iStart, iEnd, Time_Typed::MinTime(iStart.GetType()),
                       Time_Typed::MaxTime(iEnd.GetType()), iRangeFlag, iChaseTracker,
                       iChaseTrackerMap, filter, nullptr, false, 0, iNoteOffInclusion);
}
