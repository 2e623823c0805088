// Random notes through track states: the list against a plain model, and what a transition promises
// to a receiver: nothing hangs, nothing is started twice.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <map>
#include <tuple>
#include <vector>

#include "support/notes_in_progress.h"
#include "vrad/vrae_trackstate.h"

namespace {

// What to do, pitch, release tick.
typedef std::tuple<int, int, int> Step;

struct Note {
  int mPitch;
  long long mRelease;
};

std::vector<Step> DrawSteps() {
  return *rc::gen::container<std::vector<Step>>(
      rc::gen::tuple(rc::gen::inRange(0, 8), rc::gen::inRange(58, 64), rc::gen::inRange(1, 30)));
}

// Adds before the first note that does not end earlier, as the list does.
void AddToModel(std::vector<Note> & ioModel, Note const & iNote) {
  auto const place = std::find_if(ioModel.begin(), ioModel.end(), [&iNote](Note const & iOther) {
    return iNote.mRelease <= iOther.mRelease;
  });
  ioModel.insert(place, iNote);
}

std::vector<Note> Feed(Vrae_TrackState & ioState, std::vector<Step> const & iSteps) {
  std::vector<Note> model;
  for (auto const & [what, pitch, release] : iSteps) {
    if (what == 0) {
      ioState.ReceiveEvent(Vrae_NoteOffEvent(static_cast<signed char>(pitch), 0));
      auto const found = std::find_if(model.begin(), model.end(), [p = pitch](Note const & iNote) {
        return iNote.mPitch == p;
      });
      if (found != model.end()) model.erase(found);
    } else if (what == 1) {
      ioState.PopNoteOff();
      if (!model.empty()) model.erase(model.begin());
    } else {
      ioState.ReceiveEvent(TimedNote(0, static_cast<signed char>(pitch), release));
      AddToModel(model, {pitch, release});
    }
  }
  return model;
}

// How many notes of each pitch sound at a receiver of note-ons and note-offs.
class Sounding : public Vrae_EventReceiver {
public:
  void ReceiveEvent(Vrae_Event const & iEvent) override {
    if (iEvent.GetType() == Vrae_Event::kNoteOn) ++mNum[iEvent.AsNoteOn().GetPitch()];
    if (iEvent.GetType() == Vrae_Event::kNoteOff) --mNum[iEvent.AsNoteOff().GetPitch()];
  }
  std::map<int, int> mNum;
};

std::map<int, int> CountPitches(std::vector<Note> const & iNotes) {
  std::map<int, int> num;
  for (Note const & note : iNotes)
    ++num[note.mPitch];
  return num;
}

std::vector<Note> NotesOf(Vrae_TrackState const & iState) {
  std::vector<Note> notes;
  for (Vrae_NoteInProgress const * nip = iState.NextNoteOff(); nip != nullptr; nip = nip->mNextP)
    notes.push_back({nip->mPitch, nip->mReleaseTime.AsInt64()});
  return notes;
}

Vrae_ChaseSpec SpecOf(Vrae_TrackState::ETransitionMode iMode, long long iTick) {
  return {true, iMode, Time_Tick(iTick)};
}

}  // namespace

RC_GTEST_PROP(TrackState, HoldsItsNotesInOrder, ()) {
  NoteInProgressPool const pool;
  Vrae_TrackState state;
  std::vector<Note> const model = Feed(state, DrawSteps());
  std::vector<Note> const notes = NotesOf(state);
  RC_ASSERT(notes.size() == model.size());
  for (size_t i = 0; i < notes.size(); ++i) {
    RC_ASSERT(notes[i].mPitch == model[i].mPitch);
    RC_ASSERT(notes[i].mRelease == model[i].mRelease);
  }
  RC_ASSERT(pool.mAllocator.GetNumBlocksInUse() == static_cast<int>(model.size()));
}

RC_GTEST_PROP(TrackState, NoteOnTransitionLeavesWhatTheNewStateHolds, ()) {
  NoteInProgressPool const pool(1 << 18);
  Vrae_TrackState older, newer;
  Sounding sounding;
  sounding.mNum = CountPitches(Feed(older, DrawSteps()));
  std::map<int, int> const expected = CountPitches(Feed(newer, DrawSteps()));
  older.ComputeTransitionToNewState(&newer, &sounding,
                                    SpecOf(Vrae_TrackState::kTransitionNoteOn, 10), true);
  for (int pitch = 0; pitch < 128; ++pitch) {
    auto const at = expected.find(pitch);
    RC_ASSERT(sounding.mNum[pitch] == (at == expected.end() ? 0 : at->second));
  }
  RC_ASSERT(PrintNotes(older) == PrintNotes(newer));
}

// A state that hears the old notes' ends, the clears and the adds as timed events ends up with the
// new state's pitches. (A note-off may meet another note of its pitch, so the ends can differ.)
RC_GTEST_PROP(TrackState, InProgressTransitionRebuildsTheNewState, ()) {
  constexpr long long kTick = 10;
  NoteInProgressPool const pool(1 << 18);
  Vrae_TrackState older, newer;
  Feed(older, DrawSteps());
  Feed(newer, DrawSteps());
  // Notes that have ended are no part of the promise.
  struct StillSounding : Vrae_TrackState::NoteInProgressFilter {
    bool operator()(Vrae_NoteInProgress const & iNote) const override {
      return iNote.mReleaseTime.AsInt64() > kTick;
    }
  };
  older.FilterNotesInProgress(StillSounding());
  newer.FilterNotesInProgress(StillSounding());
  struct Mirror : Vrae_EventReceiver {
    void ReceiveEvent(Vrae_Event const & iEvent) override {
      mState.ReceiveEvent(Vrae_TimedEvent(Time_Tick(kTick), iEvent));
    }
    Vrae_TrackState mState;
  } mirror;
  mirror.mState = older;
  older.ComputeTransitionToNewState(&newer, &mirror,
                                    SpecOf(Vrae_TrackState::kTransitionInProgress, kTick), false);
  RC_ASSERT(CountPitches(NotesOf(mirror.mState)) == CountPitches(NotesOf(newer)));
}
