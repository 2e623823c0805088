// Plants the faults that players have into the stream of a good one: the checker must find each.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "host/host_streamchecker.h"
#include "player_rig.h"

namespace {

struct Message {
  int mClip, mOffset;
  std::vector<unsigned char> mBytes;
  Time_Typed mTime;
  int Status() const { return mBytes[0] & 0xF0; }
  bool IsController(int iNumber) const { return Status() == 0xB0 && mBytes[1] == iNumber; }
  bool IsNoteOn() const { return Status() == 0x90 && mBytes[2] > 0; }
  bool IsNoteOff() const { return Status() == 0x80 || (Status() == 0x90 && mBytes[2] == 0); }
};
typedef std::vector<Message> Messages;

// The blocks of the session below, in order.
enum class Block { kStart, kWrap, kLater, kMute, kUnmute, kSecondMute, kEdit, kJump, kStop };
typedef std::function<void(Block, Messages &)> Fault;

// Hands blocks on, spoiled.
class Spoiler : public Host_BlockReceiver {
public:
  Spoiler(Host_BlockReceiver & ioNext, Fault iFault) : mNext(ioNext), mFault(std::move(iFault)) {}

  void BeginBlock(int iNumSamples) override {
    mMessages.clear();
    mNext.BeginBlock(iNumSamples);
  }
  void ReceiveMessage(Host_WireMessage const & iMessage) override {
    mMessages.push_back({iMessage.mClip,
                         iMessage.mOffset,
                         {iMessage.mData, iMessage.mData + iMessage.mLength},
                         iMessage.mTime});
  }
  void EndBlock() override {
    mFault(mBlock, mMessages);
    for (Message const & message : mMessages)
      mNext.ReceiveMessage({message.mClip, message.mOffset, message.mBytes.data(),
                            static_cast<int>(message.mBytes.size()), message.mTime});
    mNext.EndBlock();
  }

  Block mBlock = Block::kStart;

private:
  Host_BlockReceiver & mNext;
  Fault mFault;
  Messages mMessages;
};

void FillChunk(Vrad_Chunk & ioChunk) {
  unsigned char const contents[] = {1, 2};
  AddEvent(ioChunk, 0, Vrae_ProgramEvent(5, 3));
  AddController(ioChunk, 0, 101, 0);
  AddController(ioChunk, 0, 100, 0);
  AddController(ioChunk, 0, 6, 12);
  AddController(ioChunk, 1, 7, 100);
  AddController(ioChunk, 2, 64, 127);
  AddBend(ioChunk, 2, 500);
  AddEvent(ioChunk, 2, Vrae_MonoPressureEvent(50));
  AddEvent(ioChunk, 4, Vrae_SysexEvent(2, contents));
  AddNote(ioChunk, 3, 2000, 60, 100, 20);  // sounds all through
  AddNote(ioChunk, 5, 5, 62, 90, 30);
  AddNote(ioChunk, 63, 1, 64, 80, 40);   // in a block's last sample
  AddNote(ioChunk, 90, 20, 65, 80, 50);  // over the loop's end
  AddNote(ioChunk, 300, 100, 66, 80, 50);
  AddController(ioChunk, 400, 7, 20);
  AddController(ioChunk, 400, 101, 0);
  AddController(ioChunk, 400, 100, 1);
  AddController(ioChunk, 400, 6, 70);
}

// A session under the checker: what it finds first.
Host_EViolation ViolationOf(Fault iFault, int iPositionError = 0) {
  Host_NotePool const pool(1000);
  ChunkPtr const chunkP = MakeChunk();
  FillChunk(*chunkP.Get());
  Host_StreamChecker checker;
  Spoiler spoiler(checker, std::move(iFault));
  Host_BlockPlayer player(&spoiler);
  auto const both = [&](auto iCommand) {
    iCommand(player);
    iCommand(checker);
  };
  auto const play = [&](Block iBlock) {
    spoiler.mBlock = iBlock;
    player.Process(64);
    checker.CheckPosition(Time_Sample(player.GetPosition().AsInt64() + iPositionError));
  };
  both([&](auto & ioTarget) { ioTarget.AddClip(chunkP.Get(), 0, 0); });
  both([](auto & ioTarget) { ioTarget.SetLoop(AtSample(10), AtSample(100)); });
  both([](auto & ioTarget) { ioTarget.Start(AtSample(0)); });
  play(Block::kStart);
  play(Block::kWrap);
  play(Block::kLater);
  both([](auto & ioTarget) { ioTarget.SetMuted(0, true); });
  play(Block::kMute);
  both([](auto & ioTarget) { ioTarget.SetMuted(0, false); });
  play(Block::kUnmute);
  both([](auto & ioTarget) { ioTarget.SetMuted(0, true); });
  play(Block::kSecondMute);
  both([](auto & ioTarget) { ioTarget.SetMuted(0, false); });
  play(Block::kLater);
  AddNote(*chunkP.Get(), 600, 10, 72);
  both([](auto & ioTarget) { ioTarget.ClipEdited(0); });
  play(Block::kEdit);
  both([](auto & ioTarget) { ioTarget.ClearLoop(); });
  both([](auto & ioTarget) { ioTarget.Locate(AtSample(450)); });
  play(Block::kJump);
  both([](auto & ioTarget) { ioTarget.Stop(); });
  play(Block::kStop);
  return checker.GetViolation().mKind;
}

template <class TCondition>
void Drop(Messages & ioMessages, TCondition iCondition) {
  std::erase_if(ioMessages, iCondition);
}

// A fault that leaves out the messages of one block for which the condition holds.
template <class TCondition>
Fault Dropping(Block iBlock, TCondition iCondition) {
  return [=](Block iNow, Messages & ioMessages) {
    if (iNow == iBlock) Drop(ioMessages, iCondition);
  };
}

bool IsPedalUp(Message const & iMessage) {
  return iMessage.IsController(64) && iMessage.mBytes[2] == 0;
}

bool IsBend(Message const & iMessage) {
  return iMessage.Status() == 0xE0;
}

constexpr int kWrapOffset = 36;  // in the block of the wrap

}  // namespace

TEST(Host_StreamChecker_Faults, NoneIsFoundInAGoodStream) {
  EXPECT_EQ(Host_EViolation::kNone, ViolationOf([](Block, Messages &) {}));
}

TEST(Host_StreamChecker_Faults, NoteOffDroppedAtTheLoopsEnd) {
  EXPECT_EQ(Host_EViolation::kNoteLeftOn,
            ViolationOf(Dropping(Block::kWrap, [](Message const & iMessage) {
              return iMessage.IsNoteOff() && iMessage.mBytes[1] == 65;
            })));
}

TEST(Host_StreamChecker_Faults, SecondMuteSendsNothing) {
  EXPECT_EQ(Host_EViolation::kNoteLeftOn,
            ViolationOf(Dropping(Block::kSecondMute, [](Message const &) { return true; })));
}

TEST(Host_StreamChecker_Faults, NothingRestoredAfterTheJump) {
  EXPECT_EQ(Host_EViolation::kLateValue,
            ViolationOf(Dropping(
                Block::kJump, [](Message const & iMessage) { return iMessage.IsController(7); })));
}

TEST(Host_StreamChecker_Faults, ProgramNotRestoredAtTheUnmute) {
  auto const withWrongProgram = [](Block iBlock, Messages & ioMessages) {
    for (Message & message : ioMessages)
      if (iBlock == Block::kUnmute && message.Status() == 0xC0) message.mBytes[1] = 6;
  };
  EXPECT_EQ(Host_EViolation::kLateValue, ViolationOf(withWrongProgram));
}

TEST(Host_StreamChecker_Faults, ReleaseVelocityLost) {
  auto const withoutVelocity = [](Block, Messages & ioMessages) {
    for (Message & message : ioMessages)
      if (message.Status() == 0x80) message.mBytes = {0x90, message.mBytes[1], 0};
  };
  EXPECT_EQ(Host_EViolation::kReleaseVelocity, ViolationOf(withoutVelocity));
}

TEST(Host_StreamChecker_Faults, LastSampleOfABlockDropped) {
  EXPECT_EQ(Host_EViolation::kMissingNote,
            ViolationOf(Dropping(Block::kStart,
                                 [](Message const & iMessage) { return iMessage.mOffset == 63; })));
}

TEST(Host_StreamChecker_Faults, OffByOneWhereTheLoopWraps) {
  auto const late = [](Block iBlock, Messages & ioMessages) {
    for (Message & message : ioMessages)
      if (iBlock == Block::kWrap && message.mOffset >= kWrapOffset) ++message.mOffset;
  };
  EXPECT_EQ(Host_EViolation::kNoteLeftOn, ViolationOf(late));
}

TEST(Host_StreamChecker_Faults, PlayheadPastTheLoopsEnd) {
  EXPECT_EQ(Host_EViolation::kPosition, ViolationOf([](Block, Messages &) {}, 1));
}

TEST(Host_StreamChecker_Faults, PedalNotLiftedByTheMute) {
  EXPECT_EQ(Host_EViolation::kNotAtRest, ViolationOf(Dropping(Block::kMute, IsPedalUp)));
}

TEST(Host_StreamChecker_Faults, PedalNotLiftedByTheStop) {
  EXPECT_EQ(Host_EViolation::kNotAtRest, ViolationOf(Dropping(Block::kStop, IsPedalUp)));
}

TEST(Host_StreamChecker_Faults, BendNotCentredByTheStop) {
  EXPECT_EQ(Host_EViolation::kNotAtRest, ViolationOf(Dropping(Block::kStop, IsBend)));
}

TEST(Host_StreamChecker_Faults, PressureLeftByTheStop) {
  EXPECT_EQ(Host_EViolation::kNotAtRest,
            ViolationOf(Dropping(
                Block::kStop, [](Message const & iMessage) { return iMessage.Status() == 0xD0; })));
}

TEST(Host_StreamChecker_Faults, DataOfAParameterBeforeItsSelection) {
  auto const dataFirst = [](Block iBlock, Messages & ioMessages) {
    if (iBlock != Block::kJump) return;
    std::stable_partition(ioMessages.begin(), ioMessages.end(), [](Message const & iMessage) {
      return iMessage.mOffset == 0 && iMessage.IsController(6);
    });
  };
  EXPECT_EQ(Host_EViolation::kParameter, ViolationOf(dataFirst));
}

TEST(Host_StreamChecker_Faults, ParametersBehindTheNotes) {
  auto const notesFirst = [](Block iBlock, Messages & ioMessages) {
    if (iBlock != Block::kJump) return;
    auto const isParameter = [](Message const & iMessage) {
      return iMessage.IsController(101) || iMessage.IsController(100) || iMessage.IsController(6);
    };
    auto const end = std::find_if(ioMessages.begin(), ioMessages.end(),
                                  [](Message const & iMessage) { return iMessage.mOffset > 0; });
    std::stable_partition(ioMessages.begin(), end, std::not_fn(isParameter));
  };
  EXPECT_EQ(Host_EViolation::kParameter, ViolationOf(notesFirst));
}

TEST(Host_StreamChecker_Faults, ParameterNotRestored) {
  EXPECT_EQ(Host_EViolation::kParameter,
            ViolationOf(Dropping(
                Block::kJump, [](Message const & iMessage) { return iMessage.IsController(6); })));
}

TEST(Host_StreamChecker_Faults, StopThatSendsOnlyAllNotesOff) {
  auto const allNotesOff = [](Block iBlock, Messages & ioMessages) {
    for (Message & message : ioMessages)
      if (iBlock == Block::kStop && message.IsNoteOff()) message.mBytes = {0xB0, 123, 0};
  };
  EXPECT_EQ(Host_EViolation::kNoteLeftOn, ViolationOf(allNotesOff));
}

TEST(Host_StreamChecker_Faults, NoteThatBeginsBeforeTheLoopNotStruck) {
  EXPECT_EQ(Host_EViolation::kMissingNote,
            ViolationOf(Dropping(Block::kWrap, [](Message const & iMessage) {
              return iMessage.IsNoteOn() && iMessage.mBytes[1] == 60;
            })));
}

TEST(Host_StreamChecker_Faults, UnmuteThatFiresWhatPassed) {
  auto const firing = [](Block iBlock, Messages & ioMessages) {
    if (iBlock != Block::kUnmute) return;
    ioMessages.insert(ioMessages.begin(), {0, 0, {0x90, 62, 90}, AtSample(5)});
  };
  EXPECT_EQ(Host_EViolation::kWrongNote, ViolationOf(firing));
}

TEST(Host_StreamChecker_Faults, EditThatStrikesASoundingNoteAgain) {
  auto const again = [](Block iBlock, Messages & ioMessages) {
    if (iBlock != Block::kEdit) return;
    ioMessages.insert(ioMessages.begin(), {0, 0, {0x90, 60, 100}, AtSample(3)});
  };
  EXPECT_EQ(Host_EViolation::kWrongNote, ViolationOf(again));
}

TEST(Host_StreamChecker_Faults, NoteOffWithoutItsNoteOn) {
  auto const stray = [](Block iBlock, Messages & ioMessages) {
    if (iBlock != Block::kStart) return;
    ioMessages.insert(ioMessages.begin(), {0, 0, {0x80, 62, 30}, AtSample(0)});
  };
  EXPECT_EQ(Host_EViolation::kStrayNoteOff, ViolationOf(stray));
}

TEST(Host_StreamChecker_Faults, EventsOutOfOrder) {
  auto const late = [](Block iBlock, Messages & ioMessages) {
    if (iBlock == Block::kStart) ioMessages.push_back({0, 1, {0xB0, 7, 100}, AtSample(1)});
  };
  EXPECT_EQ(Host_EViolation::kOrder, ViolationOf(late));
}

TEST(Host_StreamChecker_Faults, SysexDropped) {
  EXPECT_EQ(Host_EViolation::kSysex,
            ViolationOf(Dropping(Block::kStart, [](Message const & iMessage) {
              return iMessage.Status() == 0xF0;
            })));
}

TEST(Host_StreamChecker_Faults, ChannelNotMergedIn) {
  auto const onOtherChannel = [](Block, Messages & ioMessages) {
    for (Message & message : ioMessages)
      if (message.IsNoteOn()) message.mBytes[0] = 0x91;
  };
  EXPECT_EQ(Host_EViolation::kClip, ViolationOf(onOtherChannel));
}
