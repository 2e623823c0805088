#include "tools/vrad/edit_difference.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <numeric>

#include <fmt/format.h>

#include "vrad/vrad_continuousdatastream.h"
#include "vrad/vrad_eventstream.h"
#include "vrad/vrad_notelist.h"

namespace {

// In what way two stores differ.
template <class T>
struct Exchange {
  std::vector<T> mGone, mCome;  // each rising
};

template <class T>
Exchange<T> Compare(std::vector<T> iBefore, std::vector<T> iAfter) {
  std::sort(iBefore.begin(), iBefore.end());
  std::sort(iAfter.begin(), iAfter.end());
  Exchange<T> result;
  std::set_difference(iBefore.begin(), iBefore.end(), iAfter.begin(), iAfter.end(),
                      std::back_inserter(result.mGone));
  std::set_difference(iAfter.begin(), iAfter.end(), iBefore.begin(), iBefore.end(),
                      std::back_inserter(result.mCome));
  return result;
}

// Moving keeps the order of a store. Where events have met at one time, fewer are left.
template <class T>
long long CountMoved(std::vector<T> const & iPart, std::vector<T> const & iMoved) {
  if (iPart.size() != iMoved.size()) return std::ssize(Compare(iPart, iMoved).mCome);
  return std::inner_product(iPart.begin(), iPart.end(), iMoved.begin(), 0ll, std::plus<>(),
                            std::not_equal_to<>());
}

bool CanBeSaved(long long iCount) {
  constexpr long long kEnd = 1ll << 62;
  return iCount > -kEnd && iCount < kEnd;
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
}

void Edit_Contents::ReadEvents(Vrad_Chunk const & iChunk) {
  for (auto const & stream : iChunk.GetContinuousList()) {
    for (Vrad_ContinuousDataStreamTimedEventsInRangeIter iter(stream.Get()); iter.IsMore(); ++iter)
      Add(*iter);
  }
  Vrad_EventStream events(*iChunk.GetEventStream());
  for (Vrad_EventStreamTimedEventsInRangeIter iter(&events); iter.IsMore(); ++iter)
    Add(*iter);
}

void Edit_Contents::Add(Vrae_TimedEvent const & iEvent) {
  mEvents.push_back({iEvent.mTime.AsInt64(), iEvent.mTime.GetType(), GetBytes(iEvent.mEvent)});
}

Time_Tick Edit_Contents::GetEnd() const {
  long long end = 0;
  for (Note const & note : mNotes) {
    Time_Typed const start(note.mTime, static_cast<Time_EType>(note.mUnit));
    Time_TypedLength const duration(note.mDuration, static_cast<Time_EType>(note.mDurationUnit));
    end = std::max(end, (start + duration).AsTick().AsInt64());
  }
  for (Event const & event : mEvents) {
    Time_Typed const time(event.mTime, static_cast<Time_EType>(event.mUnit));
    end = std::max(end, time.AsTick().AsInt64());
  }
  return Time_Tick(end);
}

bool Edit_Contents::IsWithinLimits() const {
  return std::all_of(mNotes.begin(), mNotes.end(),
                     [](Note const & note) {
                       return CanBeSaved(note.mTime) && CanBeSaved(note.mDuration);
                     }) &&
         std::all_of(mEvents.begin(), mEvents.end(),
                     [](Event const & event) { return CanBeSaved(event.mTime); });
}

Edit_Difference::Edit_Difference(Edit_Contents const & iBefore, Edit_Contents const & iAfter) {
  auto const notes = Compare(iBefore.mNotes, iAfter.mNotes);
  CountNotes(notes.mGone, notes.mCome);
  auto const events = Compare(iBefore.mEvents, iAfter.mEvents);
  mNumEventsDropped = std::ssize(events.mGone);
  mNumEventsAdded = std::ssize(events.mCome);
}

Edit_Difference::Edit_Difference(Edit_Contents const & iBefore, Edit_Contents const & iAfter,
                                 Edit_Contents const & iPart, Edit_Contents const & iMoved) {
  CountMovedNotes(iPart.mNotes, iMoved.mNotes);
  mNumEventsMoved = CountMoved(iPart.mEvents, iMoved.mEvents);
  mNumEventsDropped = std::ssize(iBefore.mEvents) - std::ssize(iAfter.mEvents);
}

// Both rise, so those of one onset stand side by side.
void Edit_Difference::CountNotes(Notes const & iGone, Notes const & iCome) {
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

// No note is lost on the way, and each keeps its place in the order.
void Edit_Difference::CountMovedNotes(Notes const & iPart, Notes const & iMoved) {
  for (size_t i = 0; i < iPart.size(); ++i) {
    if (iPart[i] == iMoved[i]) continue;
    if (iPart[i].GetOnset() == iMoved[i].GetOnset())
      CountChange(iPart[i], iMoved[i]);
    else
      ++mNumChanged;
  }
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

Edit_Difference Edit_Difference::GetReversed() const {
  Edit_Difference reversed = *this;
  std::swap(reversed.mNumAdded, reversed.mNumDropped);
  std::swap(reversed.mNumShortened, reversed.mNumLengthened);
  std::swap(reversed.mNumEventsAdded, reversed.mNumEventsDropped);
  return reversed;
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
