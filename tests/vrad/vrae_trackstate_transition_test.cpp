#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "cmn/cmn_assert.h"
#include "support/notes_in_progress.h"
#include "support/throwing_off.h"
#include "vrad/vrae_trackstate.h"

namespace {

constexpr char const * kShort = "iDuration >= Time_TypedLength(1, iDuration.GetType())";

std::string NoteText(char const * iName, Vrae_NoteWithDurationBase const & iNote) {
  return iName + std::to_string(iNote.GetPitch()) + "+" +
         std::to_string(iNote.GetDuration().AsInt64()) +
         (iNote.GetDuration().GetType() == Time_eType_Ticks ? "t" : "s") + "/" +
         std::to_string(iNote.GetOnVelocity()) + "/" + std::to_string(iNote.GetOffVelocity());
}

// "on60/80 off61/64 note60+50t/80/64 clear60+... add60+..."
class NotePrinter : public Vrae_EventReceiver {
public:
  void ReceiveEvent(Vrae_Event const & iEvent) override {
    if (!mText.empty()) mText += " ";
    switch (iEvent.GetType()) {
    case Vrae_Event::kNoteOn:
      mText += "on" + std::to_string(iEvent.AsNoteOn().GetPitch()) + "/" +
               std::to_string(iEvent.AsNoteOn().GetVelocity());
      break;
    case Vrae_Event::kNoteOff:
      mText += "off" + std::to_string(iEvent.AsNoteOff().GetPitch()) + "/" +
               std::to_string(iEvent.AsNoteOff().GetVelocity());
      break;
    case Vrae_Event::kNoteWithDuration:
      mText += NoteText("note", iEvent.AsNoteWithDuration());
      break;
    case Vrae_Event::kClearNoteInProgress:
      mText += NoteText("clear", iEvent.AsClearNoteInProgress());
      break;
    case Vrae_Event::kAddNoteInProgress:
      mText += NoteText("add", iEvent.AsAddNoteInProgress());
      break;
    default:
      mText += "other";
    }
  }
  std::string Take() {
    std::string const text = mText;
    mText.clear();
    return text;
  }

private:
  std::string mText;
};

// Counts what comes in runs of one kind and velocity: "off/2 x3 on/80 x1". Kinds that alternate are
// counted side by side.
class NoteCounter : public Vrae_EventReceiver {
public:
  void ReceiveEvent(Vrae_Event const & iEvent) override {
    std::string const key = KeyOf(iEvent);
    for (size_t i = mRuns.size(); i > 0 && i + 2 > mRuns.size(); --i) {
      if (mRuns[i - 1].first != key) continue;
      ++mRuns[i - 1].second;
      return;
    }
    mRuns.push_back({key, 1});
  }
  std::string Print() const {
    std::string text;
    for (auto const & [key, num] : mRuns)
      text += (text.empty() ? "" : " ") + key + " x" + std::to_string(num);
    return text;
  }

private:
  static std::string KeyOf(Vrae_Event const & iEvent) {
    switch (iEvent.GetType()) {
    case Vrae_Event::kNoteOn:
      return "on/" + std::to_string(iEvent.AsNoteOn().GetVelocity());
    case Vrae_Event::kNoteOff:
      return "off/" + std::to_string(iEvent.AsNoteOff().GetVelocity());
    case Vrae_Event::kNoteWithDuration:
      return "note/" + std::to_string(iEvent.AsNoteWithDuration().GetOnVelocity());
    case Vrae_Event::kClearNoteInProgress:
      return "clear/" + std::to_string(iEvent.AsClearNoteInProgress().GetOnVelocity());
    default:
      return "add/" + std::to_string(iEvent.AsAddNoteInProgress().GetOnVelocity());
    }
  }

  std::vector<std::pair<std::string, int>> mRuns;
};

struct Vrae_TrackState_Transition : testing::Test {
  NoteInProgressPool mPool{1 << 18};
  Vrae_TrackState mOld, mNew;
  NotePrinter mOut;
  Cmn_AssertRecorder mRecorder;

  static Vrae_ChaseSpec Spec(int iMode, long long iTick = 100) {
    Vrae_ChaseSpec spec;
    spec.mChaseNotes = true;
    spec.mTransitionMode = static_cast<Vrae_TrackState::ETransitionMode>(iMode);
    spec.mTime = Time_Tick(iTick);
    return spec;
  }
  // Notes of pitch 60 that end one behind the other. Those past the first 200 have velocity 2, all
  // others velocity 1.
  static void AddNotes(Vrae_TrackState & ioState, int iNum) {
    for (int i = 0; i < iNum; ++i) {
      signed char const velocity = i < 200 ? 1 : 2;
      ioState.ReceiveEvent(TimedNote(0, 60, 1000 + i, velocity, velocity));
    }
  }
  std::string Transition(int iMode) {
    mOld.ComputeTransitionToNewState(&mNew, &mOut, Spec(iMode), false);
    return mOut.Take();
  }
};

}  // namespace

TEST_F(Vrae_TrackState_Transition, OfTwoEmptyStatesSendsNothing) {
  for (int mode : {0, 1, 2})
    EXPECT_EQ("", Transition(mode));
}

TEST_F(Vrae_TrackState_Transition, SendsNoteOffsForNotesOnlyInTheOldStateInEveryMode) {
  mOld.ReceiveEvent(TimedNote(0, 62, 200, 80, 33));
  mOld.ReceiveEvent(TimedNote(0, 60, 300, 80, 34));
  for (int mode : {0, 1, 2, 7, -1})
    EXPECT_EQ("off60/34 off62/33", Transition(mode));
}

TEST_F(Vrae_TrackState_Transition, ReplacesSharedNotesInModeZero) {
  mOld.ReceiveEvent(TimedNote(0, 60, 300, 80, 33));
  mNew.ReceiveEvent(TimedNote(0, 60, 400, 81, 34));
  EXPECT_EQ("clear60+200t/80/33 add60+300t/81/34", Transition(0));
}

TEST_F(Vrae_TrackState_Transition, ReplacesASharedNoteThatIsAlike) {
  mOld.ReceiveEvent(TimedNote(0, 60, 300));
  mNew.ReceiveEvent(TimedNote(0, 60, 300));
  EXPECT_EQ("clear60+200t/80/64 add60+200t/80/64", Transition(0));
}

TEST_F(Vrae_TrackState_Transition, SendsNothingForSharedNotesInOtherModes) {
  mOld.ReceiveEvent(TimedNote(0, 60, 300));
  mNew.ReceiveEvent(TimedNote(0, 60, 400));
  for (int mode : {1, 2, 7})
    EXPECT_EQ("", Transition(mode));
}

TEST_F(Vrae_TrackState_Transition, StartsNewNotesAsTheModeSays) {
  mNew.ReceiveEvent(TimedNote(0, 60, 300, 81, 34));
  EXPECT_EQ("note60+200t/81/34", Transition(0));
  EXPECT_EQ("on60/81", Transition(1));
  EXPECT_EQ("", Transition(2));
  EXPECT_EQ("", Transition(7));
}

TEST_F(Vrae_TrackState_Transition, InModeZeroStartsNothingThatHasEnded) {
  mNew.ReceiveEvent(TimedNote(0, 60, 100));
  mNew.ReceiveEvent(TimedNote(0, 61, 99));
  mNew.ReceiveEvent(TimedNote(0, 62, 101));
  EXPECT_EQ("note62+1t/80/64", Transition(0));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrae_TrackState_Transition, InModeOneStartsEvenWhatHasEnded) {
  mNew.ReceiveEvent(TimedNote(0, 60, 100));
  EXPECT_EQ("on60/80", Transition(1));
}

TEST_F(Vrae_TrackState_Transition, SendsAPairWhateverIsLeftOfItAndReportsTheLengths) {
  mOld.ReceiveEvent(TimedNote(0, 60, 100));
  mNew.ReceiveEvent(TimedNote(0, 60, 90));
  EXPECT_EQ("clear60+0t/80/64 add60+-10t/80/64", Transition(0));
  EXPECT_EQ(2, mRecorder.GetNum(kShort));
}

TEST_F(Vrae_TrackState_Transition, GoesByPitchAndNotByTime) {
  mOld.ReceiveEvent(TimedNote(0, 64, 200));
  mOld.ReceiveEvent(TimedNote(0, 60, 400));
  mNew.ReceiveEvent(TimedNote(0, 62, 500));
  mNew.ReceiveEvent(TimedNote(0, 61, 600));
  mNew.ReceiveEvent(TimedNote(0, 65, 150));
  EXPECT_EQ("off60/64 on61/80 on62/80 off64/64 on65/80", Transition(1));
}

TEST_F(Vrae_TrackState_Transition, PairsOffNotesOfOnePitch) {
  mOld.ReceiveEvent(TimedNote(0, 60, 200));
  mOld.ReceiveEvent(TimedNote(0, 60, 300));
  mNew.ReceiveEvent(TimedNote(0, 60, 400));
  EXPECT_EQ("off60/64", Transition(1));
}

TEST_F(Vrae_TrackState_Transition, ComparesPitchesAsSignedNumbers) {
  mOld.ReceiveEvent(TimedNote(0, 1, 200));
  mOld.ReceiveEvent(TimedNote(0, -1, 200));
  EXPECT_EQ("off-1/64 off1/64", Transition(1));
}

TEST_F(Vrae_TrackState_Transition, MeasuresInTheUnitOfTheReleaseTime) {
  mNew.ReceiveEvent(Vrae_TimedEvent(Time_Sample(0),
                                    Vrae_NoteWithDurationEvent(60, Time_SampleLength(10), 80, 64)));
  mOld.ComputeTransitionToNewState(&mNew, &mOut, Spec(0, 80), false);
  EXPECT_EQ("note60+8s/80/64", mOut.Take());
}

TEST_F(Vrae_TrackState_Transition, SendsTheOverflowOf201OldNotesFirst) {
  for (int i = 0; i < 201; ++i)
    mOld.ReceiveEvent(TimedNote(0, static_cast<signed char>(i % 100), 1000 + i, 80,
                                static_cast<signed char>(i == 200 ? 99 : 64)));
  std::string const text = Transition(0);
  EXPECT_EQ("off0/99 off0/64 off0/64 off1/64", text.substr(0, 31)) << "the latest to end";
}

TEST_F(Vrae_TrackState_Transition, SendsTheOverflowOf201NewNotesInEveryMode) {
  for (int i = 0; i < 201; ++i)
    mNew.ReceiveEvent(TimedNote(0, static_cast<signed char>(i % 100), 1000 + i,
                                static_cast<signed char>(i == 200 ? 99 : 80)));
  EXPECT_EQ("on0/99", Transition(2));
}

TEST_F(Vrae_TrackState_Transition, SendsAllOldOverflowBeforeAnyNew) {
  for (int i = 0; i < 202; ++i) {
    mOld.ReceiveEvent(TimedNote(0, 60, 1000 + i, 80, static_cast<signed char>(i < 200 ? 1 : 2)));
    mNew.ReceiveEvent(TimedNote(0, 60, 1000 + i, static_cast<signed char>(i < 200 ? 1 : 2)));
  }
  EXPECT_EQ("off60/2 off60/2 on60/2 on60/2", Transition(2));
}

TEST_F(Vrae_TrackState_Transition, HasNoOverflowOf200Notes) {
  for (int i = 0; i < 200; ++i)
    mNew.ReceiveEvent(TimedNote(0, 60, 1000 + i));
  EXPECT_EQ("", Transition(2));
}

TEST_F(Vrae_TrackState_Transition, Of200NotesASideSendsPairsAloneInEveryMode) {
  AddNotes(mOld, 200);
  AddNotes(mNew, 200);
  for (int mode : {0, 1, 2, 7}) {
    NoteCounter counter;
    mOld.ComputeTransitionToNewState(&mNew, &counter, Spec(mode), false);
    EXPECT_EQ(mode == 0 ? "clear/1 x200 add/1 x200" : "", counter.Print());
  }
}

TEST_F(Vrae_TrackState_Transition, Of203NotesASideSendsTheOverflowInEveryMode) {
  AddNotes(mOld, 203);
  AddNotes(mNew, 203);
  for (int mode : {0, 1, 2, 7}) {
    NoteCounter counter;
    mOld.ComputeTransitionToNewState(&mNew, &counter, Spec(mode), false);
    EXPECT_EQ(mode == 0 ? "off/2 x3 on/2 x3 clear/1 x200 add/1 x200" : "off/2 x3 on/2 x3",
              counter.Print());
  }
}

TEST_F(Vrae_TrackState_Transition, Of203OldNotesEndsThemAllInEveryMode) {
  AddNotes(mOld, 203);
  for (int mode : {0, 1, 2, 7}) {
    NoteCounter counter;
    mOld.ComputeTransitionToNewState(&mNew, &counter, Spec(mode), false);
    EXPECT_EQ("off/2 x3 off/1 x200", counter.Print());
  }
}

TEST_F(Vrae_TrackState_Transition, Of203NewNotesStartsThemAsTheModeSays) {
  AddNotes(mNew, 203);
  std::string const texts[] = {"on/2 x3 note/1 x200", "on/2 x3 on/1 x200", "on/2 x3"};
  for (int mode : {0, 1, 2}) {
    NoteCounter counter;
    mOld.ComputeTransitionToNewState(&mNew, &counter, Spec(mode), false);
    EXPECT_EQ(texts[mode], counter.Print());
  }
}

TEST_F(Vrae_TrackState_Transition, StartsOverflowThatHasEndedInModeZeroToo) {
  AddNotes(mNew, 201);
  mOld.ComputeTransitionToNewState(&mNew, &mOut, Spec(0, 5000), false);
  EXPECT_EQ("on60/2", mOut.Take()) << "nothing is left of the other 200";
}

TEST_F(Vrae_TrackState_Transition, SendsTheOverflowInOrderOfTheEnds) {
  AddNotes(mOld, 200);
  AddNotes(mNew, 200);
  for (int const number : {3, 5, 4}) {
    signed char const velocity = static_cast<signed char>(number);
    mOld.ReceiveEvent(
        TimedNote(0, static_cast<signed char>(70 - velocity), 5000 + velocity, 80, velocity));
    mNew.ReceiveEvent(
        TimedNote(0, static_cast<signed char>(70 - velocity), 5000 + velocity, velocity));
  }
  EXPECT_EQ("off67/3 off66/4 off65/5 on67/3 on66/4 on65/5", Transition(1));
}

TEST_F(Vrae_TrackState_Transition, PairsTheNotesThatEndFirstAmongMoreThan200) {
  // Of 201 old notes the last to end alone has pitch 61, so it can't meet the new one.
  AddNotes(mOld, 200);
  mOld.ReceiveEvent(TimedNote(0, 61, 9000, 80, 5));
  mNew.ReceiveEvent(TimedNote(0, 61, 9000, 81, 5));
  NoteCounter counter;
  mOld.ComputeTransitionToNewState(&mNew, &counter, Spec(1), false);
  EXPECT_EQ("off/5 x1 off/1 x200 on/81 x1", counter.Print());
}

TEST_F(Vrae_TrackState_Transition, NeverChangesTheNewState) {
  mOld.ReceiveEvent(TimedNote(0, 60, 300));
  mNew.ReceiveEvent(TimedNote(0, 60, 400));
  mNew.ReceiveEvent(TimedNote(0, 61, 50));
  for (int mode : {0, 1, 2, 7}) {
    mOld.ComputeTransitionToNewState(&mNew, &mOut, Spec(mode), true);
    EXPECT_EQ("61@50t 60@400t", PrintNotes(mNew));
  }
}

TEST_F(Vrae_TrackState_Transition, LeavesBothStatesUnlessToldToUpdate) {
  mOld.ReceiveEvent(TimedNote(0, 60, 300));
  mNew.ReceiveEvent(TimedNote(0, 61, 400));
  Transition(1);
  EXPECT_EQ("60@300t", PrintNotes(mOld));
  EXPECT_EQ("61@400t", PrintNotes(mNew));
}

TEST_F(Vrae_TrackState_Transition, BecomesTheNewStateWhenToldToUpdate) {
  mOld.ReceiveEvent(TimedNote(0, 60, 300));
  mNew.ReceiveEvent(TimedNote(0, 61, 400));
  mOld.ComputeTransitionToNewState(&mNew, &mOut, Spec(1), true);
  EXPECT_EQ("off60/64 on61/80", mOut.Take());
  EXPECT_EQ("61@400t", PrintNotes(mOld));
  EXPECT_EQ("61@400t", PrintNotes(mNew));
}

TEST_F(Vrae_TrackState_Transition, WithoutAReceiverStillUpdates) {
  mOld.ReceiveEvent(TimedNote(0, 60, 300));
  mNew.ReceiveEvent(TimedNote(0, 61, 400));
  mOld.ComputeTransitionToNewState(&mNew, nullptr, Spec(1), true);
  EXPECT_EQ("61@400t", PrintNotes(mOld));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrae_TrackState_Transition, DoesNothingWithoutChasingNotes) {
  mOld.ReceiveEvent(TimedNote(0, 60, 300));
  mOld.ComputeTransitionToNewState(&mNew, &mOut, Vrae_ChaseSpec(), true);
  EXPECT_EQ("", mOut.Take());
  EXPECT_EQ("60@300t", PrintNotes(mOld));
}

TEST_F(Vrae_TrackState_Transition, DoesNothingWithoutNewStateAndReceiver) {
  mOld.ReceiveEvent(TimedNote(0, 60, 300));
  mOld.ComputeTransitionToNewState(nullptr, nullptr, Spec(1), true);
  EXPECT_EQ("60@300t", PrintNotes(mOld));
  EXPECT_EQ(0, mRecorder.GetNum());
}

TEST_F(Vrae_TrackState_Transition, ThrowsWithoutANewState) {
  mOld.ReceiveEvent(TimedNote(0, 60, 300));
  EXPECT_THROW(mOld.ComputeTransitionToNewState(nullptr, &mOut, Spec(1), true),
               Cmn_AssertException);
  ASSERT_EQ(1, mRecorder.GetNum("iNewStateP"));
  EXPECT_FALSE(mRecorder.GetEntries()[0].mFlag);
  ThrowingOff const off;
  mOld.ComputeTransitionToNewState(nullptr, &mOut, Spec(1), true);
  EXPECT_EQ("", mOut.Take());
  EXPECT_EQ("60@300t", PrintNotes(mOld));
}
