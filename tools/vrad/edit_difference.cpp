#include "tools/vrad/edit_difference.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include <fmt/format.h>

#include "vrad/vrad_extendedeventlist.h"
#include "vrad/vrad_notelist.h"

namespace {

template <class T>
std::vector<T> TakeAway(std::vector<T> const & iFrom, std::vector<T> const & iWhat) {
  std::vector<T> result;
  std::set_difference(iFrom.begin(), iFrom.end(), iWhat.begin(), iWhat.end(),
                      std::back_inserter(result));
  return result;
}

// All messages of an event in a row.
std::string GetBytes(Vrae_Event const & iEvent) {
  std::string bytes;
  for (int i = 0; i < iEvent.GetNumMessages(); ++i) {
    size_t const size = bytes.size();
    bytes.resize(size + static_cast<size_t>(iEvent.GetMessageLength(i)));
    iEvent.GetMessageData(reinterpret_cast<signed char *>(bytes.data() + size), i);
  }
  return bytes;
}

struct Count {
  long long mNumber;
  char const * mWhat;
};

std::string Join(char const * iTitle, std::initializer_list<Count> iCounts) {
  std::string text;
  for (Count const & count : iCounts) {
    if (count.mNumber == 0) continue;
    text += fmt::format("{}{} {}", text.empty() ? iTitle : ", ", count.mNumber, count.mWhat);
  }
  return text;
}

}  // namespace

Edit_Contents::Edit_Contents(Vrad_Chunk const & iChunk) {
  ReadNotes(iChunk);
  ReadEvents(iChunk);
}

void Edit_Contents::ReadNotes(Vrad_Chunk const & iChunk) {
  Vrad_NoteListBase notes(*iChunk.GetNoteList());
  mNotes.reserve(notes.Size());
  for (Vrad_NoteListBase::FullNotesInRangeIter iter(&notes); iter.IsMore(); ++iter) {
    Vrad_NoteListBase_Note const & note = *iter;
    Vrae_NoteWithDurationEvent const & event = note.mEvent.AsNoteWithDuration();
    Time_TypedLength const duration = event.GetDuration();
    mNotes.push_back({note.mTime.AsInt64(), note.mTime.GetType(), event.GetPitch(),
                      event.GetOnVelocity(), duration.AsInt64(), duration.GetType(),
                      event.GetOffVelocity(), note.mMuted});
  }
  std::sort(mNotes.begin(), mNotes.end());
}

void Edit_Contents::ReadEvents(Vrad_Chunk const & iChunk) {
  Vrae_TimedEventList list;
  Vrad_EventListWrapper wrapper(&list);
  Time_Typed const first = Time_Typed::MinTime(Time_eType_Ticks);
  Time_Typed const last = Time_Typed::MaxTime(Time_eType_Ticks);
  Vrae_Filter filter = Vrae_Filter().SetAll();
  filter.Set(Vrae_Filter::eDataType_Notes, false);
  iChunk.GetMidiEventsInRange(&wrapper, Time_TickLength(0), first, last, first, last, false,
                              nullptr, nullptr, filter, nullptr, false, 0, kNoteOffInclusion_None);
  mEvents.reserve(list.size());
  for (Vrae_TimedEvent const & event : list) {
    mEvents.push_back({event.mTime.AsInt64(), event.mTime.GetType(), GetBytes(event.mEvent)});
  }
  std::sort(mEvents.begin(), mEvents.end());
}

Edit_Difference::Edit_Difference(Edit_Contents const & iBefore, Edit_Contents const & iAfter,
                                 bool iIsNudge) {
  CountNotes(TakeAway(iBefore.mNotes, iAfter.mNotes), TakeAway(iAfter.mNotes, iBefore.mNotes));
  mNumEventsDropped = std::ssize(TakeAway(iBefore.mEvents, iAfter.mEvents));
  mNumEventsAdded = std::ssize(TakeAway(iAfter.mEvents, iBefore.mEvents));
  if (!iIsNudge) return;
  long long const numNotes = std::min(mNumAdded, mNumDropped);
  mNumAdded -= numNotes;
  mNumDropped -= numNotes;
  mNumChanged += numNotes;
  mNumEventsMoved = std::min(mNumEventsAdded, mNumEventsDropped);
  mNumEventsAdded -= mNumEventsMoved;
  mNumEventsDropped -= mNumEventsMoved;
}

// Both ascend, so those of one onset stand side by side.
void Edit_Difference::CountNotes(std::vector<Edit_Contents::Note> const & iGone,
                                 std::vector<Edit_Contents::Note> const & iCome) {
  auto gone = iGone.begin();
  auto come = iCome.begin();
  while (gone != iGone.end() && come != iCome.end()) {
    if (gone->GetOnset() == come->GetOnset()) {
      CountChange(*gone++, *come++);
    } else if (gone->GetOnset() < come->GetOnset()) {
      ++mNumDropped;
      ++gone;
    } else {
      ++mNumAdded;
      ++come;
    }
  }
  mNumDropped += iGone.end() - gone;
  mNumAdded += iCome.end() - come;
}

void Edit_Difference::CountChange(Edit_Contents::Note const & iGone,
                                  Edit_Contents::Note const & iCome) {
  bool const isOneUnit = iGone.mDurationUnit == iCome.mDurationUnit;
  if (isOneUnit && iCome.mDuration < iGone.mDuration) {
    ++mNumShortened;
  } else if (isOneUnit && iCome.mDuration > iGone.mDuration) {
    ++mNumLengthened;
  } else {
    ++mNumChanged;
  }
}

std::string Edit_Difference::Describe() const {
  std::string const notes = Join("notes: ", {{mNumAdded, "added"},
                                             {mNumDropped, "dropped"},
                                             {mNumShortened, "shortened"},
                                             {mNumLengthened, "lengthened"},
                                             {mNumChanged, "changed"}});
  std::string const events = Join(
      "other events: ",
      {{mNumEventsAdded, "added"}, {mNumEventsDropped, "dropped"}, {mNumEventsMoved, "moved"}});
  return notes + (notes.empty() || events.empty() ? "" : "; ") + events;
}
