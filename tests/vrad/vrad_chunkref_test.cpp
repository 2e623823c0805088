#include "vrad/vrad_chunkref.h"

#include <gtest/gtest.h>

#include <functional>
#include <type_traits>
#include <utility>

#include "cmn/cmn_assert.h"
#include "ndo/ndo_manager.h"
#include "support/chunk_samples.h"
#include "support/event_samples.h"
#include "support/undo_testobject.h"

namespace {

typedef UndoTest Vrad_ChunkRef_Undo;

Vrad_Chunk * NewChunk(Ndo_Object::EUndoFlag iFlag = Ndo_Object::kNotUndoable) {
  return Vrad_Chunk::New(iFlag, false);
}

Vrad_NoteListBase_Note FirstNote(Vrad_ChunkRef const & iRef) {
  return *Vrad_NoteListBase::FullNotesInRangeIter(iRef->GetNoteList());
}

}  // namespace

static_assert(!std::is_convertible_v<Vrad_Chunk *, Vrad_ChunkRef>);
static_assert(!std::is_polymorphic_v<Vrad_ChunkRef>);
static_assert(sizeof(Vrad_ChunkRef) == sizeof(void *));
static_assert(!std::is_constructible_v<Vrad_ChunkRefCounter, Vrad_Chunk *>);

TEST(Vrad_ChunkRef, StartsEmpty) {
  Vrad_ChunkRef const ref;
  EXPECT_FALSE(ref);
  EXPECT_EQ(ref.Get(), nullptr);
  EXPECT_EQ(ref.operator->(), nullptr);
}

TEST(Vrad_ChunkRef, OfNullIsEmptyWithoutACounter) {
  Vrad_ChunkRef const ref(nullptr);
  EXPECT_FALSE(ref);
  EXPECT_EQ(ref.GetRefCount(), 0);
}

TEST(Vrad_ChunkRef, EmptyCountsNothing) {
  Vrad_ChunkRef ref;
  ref.AddToRealUsers(3);
  EXPECT_EQ(ref.GetNumRealUsers(), 0);
  EXPECT_EQ(ref.GetRefCount(), 0);
}

TEST(Vrad_ChunkRef, GivesItsChunk) {
  Vrad_Chunk * const chunkP = NewChunk();
  Vrad_ChunkRef const ref(chunkP);
  EXPECT_TRUE(ref);
  EXPECT_EQ(ref.Get(), chunkP);
  EXPECT_EQ(ref.operator->(), chunkP);
  EXPECT_EQ(&*ref, chunkP);
  EXPECT_EQ(ref.GetRefCount(), 1);
  EXPECT_EQ(ref.GetNumRealUsers(), 0);
}

TEST(Vrad_ChunkRef, CopiesShareTheCounter) {
  Vrad_ChunkRef ref(NewChunk());
  Vrad_ChunkRef const copy(ref);
  EXPECT_EQ(ref.GetRefCount(), 2);
  EXPECT_EQ(copy.GetRefCount(), 2);
  ref.AddToRealUsers(5);
  EXPECT_EQ(copy.GetNumRealUsers(), 5);
}

TEST(Vrad_ChunkRef, MovingSharesTheCounterToo) {
  Vrad_ChunkRef ref(NewChunk());
  Vrad_ChunkRef const moved(std::move(ref));
  EXPECT_EQ(moved.GetRefCount(), 2);
  EXPECT_TRUE(ref.IsSameChunkAs(moved));  // NOLINT(bugprone-use-after-move): shares by contract
}

TEST(Vrad_ChunkRef, AssignmentLetsGoOfTheFormerChunk) {
  Vrad_ChunkRef const ref(NewChunk());
  Vrad_Chunk * const formerP = NewChunk();
  Ndo_ExternalRefBase const former(formerP);
  Vrad_ChunkRef target(formerP);
  target = ref;
  EXPECT_EQ(former.GetObjPtr(), nullptr);
  EXPECT_EQ(ref.GetRefCount(), 2);
}

TEST(Vrad_ChunkRef, MoveAssignmentLetsGoOfTheFormerChunkAndShares) {
  Vrad_ChunkRef ref(NewChunk());
  Vrad_Chunk * const formerP = NewChunk();
  Ndo_ExternalRefBase const former(formerP);
  Vrad_ChunkRef target(formerP);
  target = std::move(ref);
  EXPECT_EQ(former.GetObjPtr(), nullptr);
  EXPECT_EQ(target.GetRefCount(), 2);
}

TEST(Vrad_ChunkRef, AssignmentToItselfKeepsTheChunk) {
  Vrad_ChunkRef ref(NewChunk());
  Vrad_ChunkRef const & same = ref;
  ref = same;
  EXPECT_TRUE(ref);
  EXPECT_EQ(ref.GetRefCount(), 1);
}

TEST(Vrad_ChunkRef, MadeSeparatelyHaveCountersOfTheirOwn) {
  Vrad_Chunk * const chunkP = NewChunk();
  Vrad_ChunkRef a(chunkP);
  Vrad_ChunkRef const b(chunkP);
  a.AddToRealUsers(1);
  EXPECT_EQ(a.GetRefCount(), 1);
  EXPECT_EQ(b.GetRefCount(), 1);
  EXPECT_EQ(b.GetNumRealUsers(), 0);
}

TEST(Vrad_ChunkRef, RealUsersMayGoBelowNone) {
  Vrad_ChunkRef ref(NewChunk());
  ref.AddToRealUsers(2);
  ref.AddToRealUsers(-5);
  EXPECT_EQ(ref.GetNumRealUsers(), -3);
}

TEST(Vrad_ChunkRef, IsFalseOnceTheChunkIsLost) {
  Vrad_Chunk * const chunkP = NewChunk();
  Vrad_ChunkRef const ref(chunkP);
  chunkP->NdoDelete();
  EXPECT_FALSE(ref);
  EXPECT_EQ(ref.Get(), nullptr);
  EXPECT_EQ(ref.GetRefCount(), 1);
}

TEST(Vrad_ChunkRef, LastCopyDeletesTheChunk) {
  Vrad_Chunk * const chunkP = NewChunk();
  Ndo_ExternalRefBase const chunk(chunkP);
  Vrad_ChunkRef ref(chunkP), copy(ref);
  ref = Vrad_ChunkRef();
  EXPECT_EQ(chunk.GetObjPtr(), chunkP);
  copy = Vrad_ChunkRef();
  EXPECT_EQ(chunk.GetObjPtr(), nullptr);
}

TEST(Vrad_ChunkRef, LastCopyDeletesTheChunkWithRealUsersStillCounted) {
  Vrad_Chunk * const chunkP = NewChunk();
  Ndo_ExternalRefBase const chunk(chunkP);
  Vrad_ChunkRef ref(chunkP);
  ref.AddToRealUsers(7);
  ref = Vrad_ChunkRef();
  EXPECT_EQ(chunk.GetObjPtr(), nullptr);
}

TEST(Vrad_ChunkRef, EmptyComesBeforeAnyWithAChunk) {
  Vrad_ChunkRef const empty, ref(NewChunk());
  EXPECT_TRUE(empty < ref);
}

TEST(Vrad_ChunkRef, NoneComesBeforeAnEmptyOne) {
  Vrad_ChunkRef const empty, other, ref(NewChunk());
  EXPECT_FALSE(ref < empty);
  EXPECT_FALSE(other < empty);
}

TEST(Vrad_ChunkRef, AreOrderedByAddress) {
  Vrad_ChunkRef const a(NewChunk()), b(NewChunk());
  EXPECT_EQ(a < b, std::less<>()(a.Get(), b.Get()));
  EXPECT_EQ(b < a, std::less<>()(b.Get(), a.Get()));
  EXPECT_FALSE(a < a);
}

TEST(Vrad_ChunkRef, WithALostChunkComesBeforeOneWithAChunk) {
  Vrad_Chunk * const lostP = NewChunk();
  Vrad_ChunkRef const lost(lostP), ref(NewChunk()), empty;
  lostP->NdoDelete();
  EXPECT_TRUE(lost < ref);
  EXPECT_FALSE(ref < lost);
  EXPECT_FALSE(empty < lost);
}

TEST(Vrad_ChunkRef, SameChunkWhateverTheCounter) {
  Vrad_Chunk * const chunkP = NewChunk();
  Vrad_ChunkRef const a(chunkP), copy(a), b(chunkP), other(NewChunk());
  EXPECT_TRUE(a.IsSameChunkAs(copy));
  EXPECT_TRUE(a.IsSameChunkAs(b));
  EXPECT_FALSE(a.IsSameChunkAs(other));
}

TEST(Vrad_ChunkRef, EmptyOnesAreNotTheSame) {
  Vrad_ChunkRef const empty, other, ref(NewChunk());
  EXPECT_FALSE(empty.IsSameChunkAs(other));
  EXPECT_FALSE(empty.IsSameChunkAs(empty));
  EXPECT_FALSE(empty.IsSameChunkAs(ref));
  EXPECT_FALSE(ref.IsSameChunkAs(empty));
}

TEST_F(Vrad_ChunkRef_Undo, LastCopyLeavesTheChunkToTheUndoManager) {
  Vrad_Chunk * const chunkP = NewChunk(Ndo_Object::kUndoable);
  long long const id = chunkP->NdoGetID();
  Vrad_ChunkRef ref(chunkP);
  Ndo_Transaction transaction;
  ref = Vrad_ChunkRef();
  EXPECT_TRUE(Ndo_gManager.IsKept(id));
  EXPECT_TRUE(transaction.End());
  EXPECT_EQ(Ndo_gManager.LookupObject(id), chunkP);
}

TEST_F(Vrad_ChunkRef_Undo, UndoBringsAChunkThatWasLetGoBackToANewHandle) {
  Vrad_ChunkRef ref(NewChunk(Ndo_Object::kUndoable));
  ref->AddEvent(NoteAt(Ticks(0), 60));
  long long const id = ref->NdoGetID();
  {
    Ndo_Transaction transaction;
    ref = Vrad_ChunkRef();
    transaction.End();
  }
  EXPECT_TRUE(Ndo_gManager.Undo());
  EXPECT_FALSE(Ndo_gManager.IsKept(id));
  Vrad_ChunkRef const again(static_cast<Vrad_Chunk *>(Ndo_gManager.LookupObject(id)));
  EXPECT_EQ(PrintContents(*again), "notes n60@0t+480t / misc");
}

TEST_F(Vrad_ChunkRef_Undo, HandleGoesOnYieldingAChunkThatIsKept) {
  Vrad_Chunk * const chunkP = NewChunk(Ndo_Object::kUndoable);
  Vrad_ChunkRef const ref(chunkP);
  chunkP->NdoDelete();
  EXPECT_TRUE(ref);
  EXPECT_EQ(ref.Get(), chunkP);
}

TEST_F(Vrad_ChunkRef_Undo, HandleIsFalseOnceTheManagerHasDroppedTheChunk) {
  Vrad_Chunk * const chunkP = NewChunk(Ndo_Object::kUndoable);
  Vrad_ChunkRef const ref(chunkP);
  chunkP->NdoDelete();
  Ndo_gManager.DropUnreferenced();
  EXPECT_FALSE(ref);
}

TEST(Vrad_ChunkWriter, WithoutAChunkDropsWhatItReceives) {
  Cmn_AssertRecorder const recorder;
  Vrad_ChunkWriter writer;
  writer.ReceiveEvent(NoteAt(Ticks(0), 60));
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST(Vrad_ChunkWriter, WithALostChunkDropsWhatItReceives) {
  Vrad_Chunk * const chunkP = NewChunk();
  Vrad_ChunkWriter writer;
  writer.SetChunkRef(Vrad_ChunkRef(chunkP));
  chunkP->NdoDelete();
  Cmn_AssertRecorder const recorder;
  writer.ReceiveEvent(NoteAt(Ticks(0), 60));
  EXPECT_EQ(recorder.GetNum(), 0);
}

TEST(Vrad_ChunkWriter, TakesAnotherHandlesCounter) {
  Vrad_ChunkRef const ref(NewChunk());
  Vrad_ChunkWriter writer;
  writer.SetChunkRef(ref);
  EXPECT_EQ(ref.GetRefCount(), 2);
  writer.SetChunkRef(Vrad_ChunkRef());
  EXPECT_EQ(ref.GetRefCount(), 1);
}

TEST(Vrad_ChunkWriter, SameCounterAgainChangesNoReferenceCount) {
  Vrad_ChunkRef const ref(NewChunk());
  Vrad_ChunkWriter writer;
  writer.SetChunkRef(ref);
  writer.SetChunkRef(ref);
  EXPECT_EQ(ref.GetRefCount(), 2);
}

TEST(Vrad_ChunkWriter, KeepsTheChunkAlive) {
  Vrad_Chunk * const chunkP = NewChunk();
  Ndo_ExternalRefBase const chunk(chunkP);
  {
    Vrad_ChunkWriter writer;
    writer.SetChunkRef(Vrad_ChunkRef(chunkP));
    EXPECT_EQ(chunk.GetObjPtr(), chunkP);
  }
  EXPECT_EQ(chunk.GetObjPtr(), nullptr);
}

TEST(Vrad_ChunkWriter, CopiesShareTheHandle) {
  Vrad_ChunkRef const ref(NewChunk());
  Vrad_ChunkWriter writer;
  writer.SetChunkRef(ref);
  Vrad_ChunkWriter copy(writer), assigned;
  assigned = copy;
  EXPECT_EQ(ref.GetRefCount(), 4);
  copy.ReceiveEvent(ControllerAt(Ticks(1), 7, 9));
  assigned.ReceiveEvent(ControllerAt(Ticks(2), 7, 9));
  EXPECT_EQ(PrintContents(*ref), "notes / stream 7 c7=9@1t c7=9@2t / misc");
}

TEST(Vrad_ChunkWriter, MovingSharesTheHandleToo) {
  Vrad_ChunkRef const ref(NewChunk());
  Vrad_ChunkWriter writer;
  writer.SetChunkRef(ref);
  Vrad_ChunkWriter moved(std::move(writer)), assigned;
  assigned = std::move(moved);
  EXPECT_EQ(ref.GetRefCount(), 4);
  assigned.ReceiveEvent(SysexAt(Ticks(3), 8));
  EXPECT_EQ(PrintContents(*ref), "notes / misc x8@3t");
}

class Vrad_ChunkWriter_ReceiveEvent : public testing::Test {
protected:
  Vrad_ChunkWriter_ReceiveEvent() : mRef(NewChunk()) { mWriter.SetChunkRef(mRef); }

  void Receive(Vrae_Event const & iEvent) {
    Vrae_TimedEventReceiver & receiver = mWriter;
    receiver.ReceiveEvent(Vrae_TimedEvent(Ticks(10), iEvent));
  }

  Vrad_ChunkRef mRef;
  Vrad_ChunkWriter mWriter;
};

TEST_F(Vrad_ChunkWriter_ReceiveEvent, EachKindGoesToItsStore) {
  Receive(MakeSampleEvent(Vrae_Event::kNoteWithDuration));
  Receive(MakeSampleEvent(Vrae_Event::kPitchBend));
  Receive(MakeSampleEvent(Vrae_Event::kController));
  Receive(MakeSampleEvent(Vrae_Event::kShortSysex));
  EXPECT_EQ(PrintContents(*mRef),
            "notes n60@10t+480t / stream 0 b1000@10t / stream 7 c7=90@10t / misc x1@10t");
}

TEST_F(Vrad_ChunkWriter_ReceiveEvent, NoteBecomesItsOwnOriginal) {
  Receive(Vrae_NoteWithDurationEvent(61, Time_TypedLength(480, Time_eType_Samples), 90, 33));
  Vrae_NoteWithDurationEvent const original = FirstNote(mRef).mOrigEvent;
  EXPECT_EQ(original.GetPitch(), 61);
  EXPECT_EQ(original.GetOnVelocity(), 90);
  EXPECT_EQ(original.GetOffVelocity(), 33);
  EXPECT_EQ(original.GetDuration().AsInt64(), 480);
  EXPECT_EQ(original.GetDuration().GetType(), Time_eType_Samples);
  EXPECT_EQ(FirstNote(mRef).mEvent.GetPitch(), 61);
}

TEST_F(Vrad_ChunkWriter_ReceiveEvent, NoteIsNotMuted) {
  Receive(MakeSampleEvent(Vrae_Event::kNoteWithDuration));
  EXPECT_FALSE(FirstNote(mRef).mMuted);
}

TEST_F(Vrad_ChunkWriter_ReceiveEvent, NotesDeltaIsNoneInTheUnitOfItsTime) {
  Vrae_TimedEventReceiver & receiver = mWriter;
  receiver.ReceiveEvent(
      Vrae_TimedEvent(Samples(10), MakeSampleEvent(Vrae_Event::kNoteWithDuration)));
  EXPECT_EQ(FirstNote(mRef).mQuantizeTimeDelta.AsInt64(), 0);
  EXPECT_EQ(FirstNote(mRef).mQuantizeTimeDelta.GetType(), Time_eType_Samples);
}

TEST_F(Vrad_ChunkWriter_ReceiveEvent, TimeAndEventAreCopiedAndTheStampIsNot) {
  Vrae_SourceStamp stamp;
  stamp.mStampFlag = 7;
  mWriter.ReceiveEvent(Vrae_TimedEvent(Ticks(10), MakeSampleEvent(Vrae_Event::kShortSysex), stamp));
  Vrad_EventStreamTimedEventsInRangeIter const iter(mRef->GetEventStream());
  EXPECT_EQ((*iter).mSourceStamp.mStampFlag, 0);
}

TEST_F(Vrad_ChunkWriter_ReceiveEvent, NoteWithAFractionalPitchIsReportedAndLost) {
  Cmn_AssertRecorder const recorder;
  Receive(MakeSampleEvent(Vrae_Event::kPitchToMIDINoteWithDuration));
  EXPECT_EQ(recorder.GetNum("!\"non-extended note event cannot be in a chunk\""), 1);
  EXPECT_EQ(recorder.GetNum(), 1);
  EXPECT_EQ(PrintContents(*mRef), "notes / misc");
}

TEST_F(Vrad_ChunkWriter_ReceiveEvent, WhatNoChunkHoldsIsReportedAndLost) {
  Cmn_AssertRecorder const recorder;
  Receive(MakeSampleEvent(Vrae_Event::kNoteOn));
  EXPECT_EQ(recorder.GetNum("!\"event type cannot be in a chunk\""), 1);
  EXPECT_EQ(PrintContents(*mRef), "notes / misc");
}

TEST_F(Vrad_ChunkWriter_ReceiveEvent, DropsTheCachedList) {
  mRef->StoreSortedEventList(new Vrad_DisplayItemList);
  Receive(MakeSampleEvent(Vrae_Event::kController));
  EXPECT_EQ(mRef->GetSortedEventList(), nullptr);
}

TEST_F(Vrad_ChunkWriter_ReceiveEvent, EndOfEventsDoesNothing) {
  Vrae_TimedEventReceiver & receiver = mWriter;
  receiver.EndOfEvents();
  EXPECT_EQ(PrintContents(*mRef), "notes / misc");
}
