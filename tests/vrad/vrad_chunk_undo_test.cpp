#include "vrad/vrad_chunk.h"

#include <memory>

#include <gtest/gtest.h>

#include "cmn/cmn_assert.h"
#include "ndo/ndo_manager.h"
#include "support/chunk_samples.h"
#include "support/throwing_off.h"
#include "support/undo_testobject.h"

namespace {

char const * const kNoIDText = "!(iObjP.mCachedID == -1 && iObjP.mPtr != 0)";

// An undoable chunk with a note, a controller and a sysex, and no step recorded yet.
class Vrad_Chunk_Undo : public UndoTest {
protected:
  Vrad_Chunk_Undo() : mChunk(MakeChunk(Ndo_Object::kUndoable)) {
    mChunk->AddEvent(NoteAt(Ticks(0), 60));
    mChunk->AddEvent(ControllerAt(Ticks(5), 7, 1));
    mChunk->AddEvent(SysexAt(Ticks(9), 5));
  }

  std::string Contents() const { return PrintContents(*mChunk.Get()); }

  // Whether the chunk itself, not its stores, announces.
  template <class F>
  bool Announces(F iEdit) {
    Ndo_Transaction transaction;
    iEdit();
    return Ndo_gManager.HasAnnounced(mChunk->NdoGetID());
  }

  // Runs the edit as a step; the contents must come back by undo, and the result by redo.
  template <class F>
  void ExpectUndoAndRedo(F iEdit) {
    std::string const before = Contents();
    Ndo_Transaction transaction("edit");
    iEdit();
    EXPECT_TRUE(transaction.End());
    std::string const after = Contents();
    EXPECT_NE(after, before);
    EXPECT_TRUE(Ndo_gManager.Undo());
    EXPECT_EQ(Contents(), before);
    EXPECT_TRUE(Ndo_gManager.Redo());
    EXPECT_EQ(Contents(), after);
    EXPECT_TRUE(Ndo_gManager.Undo());
    EXPECT_EQ(Contents(), before);
  }

  ChunkPtr mChunk;
};

}  // namespace

TEST_F(Vrad_Chunk_Undo, OfAddEventTakesANewStreamOutAndLeavesTheCache) {
  Ndo_Transaction transaction;
  mChunk->AddEvent(ControllerAt(Ticks(5), 10, 1));
  transaction.End();
  Vrad_DisplayItemList * const listP = new Vrad_DisplayItemList;
  mChunk->StoreSortedEventList(listP);
  EXPECT_TRUE(Ndo_gManager.Undo());
  EXPECT_EQ(Contents(), "notes n60@0t+480t / stream 7 c7=1@5t / misc x5@9t");
  EXPECT_EQ(mChunk->GetSortedEventList(), listP);
}

TEST_F(Vrad_Chunk_Undo, OfAddEvent) {
  ExpectUndoAndRedo([&] { mChunk->AddEvent(NoteAt(Ticks(3), 61)); });
  ExpectUndoAndRedo([&] { mChunk->AddEvent(ControllerAt(Ticks(3), 7, 2)); });
  ExpectUndoAndRedo([&] { mChunk->AddEvent(ControllerAt(Ticks(3), 8, 2)); });
  ExpectUndoAndRedo([&] { mChunk->AddEvent(SysexAt(Ticks(3), 6)); });
}

TEST_F(Vrad_Chunk_Undo, OfEraseEvent) {
  ExpectUndoAndRedo([&] { mChunk->EraseEvent(NoteAt(Ticks(0), 60)); });
  ExpectUndoAndRedo([&] { mChunk->EraseEvent(ControllerAt(Ticks(5), 7, 1)); });
  ExpectUndoAndRedo([&] { mChunk->EraseEvent(SysexAt(Ticks(9), 5)); });
}

TEST_F(Vrad_Chunk_Undo, OfClear) {
  ExpectUndoAndRedo([&] { mChunk->Clear(); });
}

TEST_F(Vrad_Chunk_Undo, OfReplaceData) {
  ChunkPtr const source = MakeChunk();
  source->AddEvent(NoteAt(Ticks(100), 70));
  source->AddEvent(ControllerAt(Ticks(100), 1, 70));
  source->AddEvent(ControllerAt(Ticks(100), 7, 70));
  source->AddEvent(SysexAt(Ticks(100), 70));
  ExpectUndoAndRedo([&] { mChunk->ReplaceData(source.Get()); });
}

TEST_F(Vrad_Chunk_Undo, OfSetNoteList) {
  Vrad_NoteListBase * const formerP = mChunk->GetNoteList();
  ExpectUndoAndRedo([&] {
    Vrad_NoteListBase * const listP = new Vrad_NoteList(Ndo_Object::kUndoable, false);
    listP->AddNote(NoteAt(Ticks(1), 1));
    mChunk->SetNoteList(Ndo_AutoPtr<Vrad_NoteListBase>(listP));
  });
  EXPECT_EQ(mChunk->GetNoteList(), formerP);
}

TEST_F(Vrad_Chunk_Undo, OfSetUIDAndSetIsLocal) {
  Sys_Umid const id = mChunk->GetUID();
  Ndo_Transaction transaction;
  mChunk->SetUID(Sys_Umid::NoID());
  mChunk->SetIsLocal(false);
  transaction.End();
  EXPECT_TRUE(Ndo_gManager.Undo());
  EXPECT_EQ(mChunk->GetUID(), id);
  EXPECT_TRUE(mChunk->IsLocal());
  EXPECT_TRUE(Ndo_gManager.Redo());
  EXPECT_EQ(mChunk->GetUID(), Sys_Umid::NoID());
  EXPECT_FALSE(mChunk->IsLocal());
}

TEST_F(Vrad_Chunk_Undo, ARevivedStreamIsTheSameObject) {
  Vrad_ContinuousDataStream * const streamP = mChunk->GetContinuousList()[0].Get();
  Ndo_Transaction transaction;
  mChunk->EraseEvent(ControllerAt(Ticks(5), 7, 1));
  transaction.End();
  EXPECT_TRUE(Ndo_gManager.IsKept(streamP->NdoGetID()));
  EXPECT_TRUE(Ndo_gManager.Undo());
  EXPECT_EQ(mChunk->GetContinuousList()[0].Get(), streamP);
  EXPECT_FALSE(Ndo_gManager.IsKept(streamP->NdoGetID()));
}

TEST_F(Vrad_Chunk_Undo, AnAbortedEditLeavesNothing) {
  std::string const before = Contents();
  {
    Ndo_Transaction const transaction;
    mChunk->Clear();
    mChunk->AddEvent(ControllerAt(Ticks(5), 99, 1));
  }
  EXPECT_EQ(Contents(), before);
  EXPECT_EQ(Ndo_gManager.GetNumUndoSteps(), 0);
}

TEST_F(Vrad_Chunk_Undo, AnEventOfAnExistingStoreDoesNotEnterTheChunk) {
  EXPECT_FALSE(Announces([&] { mChunk->AddEvent(NoteAt(Ticks(3), 61)); }));
  EXPECT_FALSE(Announces([&] { mChunk->AddEvent(ControllerAt(Ticks(3), 7, 2)); }));
  EXPECT_FALSE(Announces([&] { mChunk->AddEvent(SysexAt(Ticks(3), 6)); }));
  EXPECT_FALSE(Announces([&] { mChunk->EraseEvent(NoteAt(Ticks(0), 60)); }));
  EXPECT_FALSE(Announces([&] { mChunk->EraseEvent(ControllerAt(Ticks(6), 7, 1)); }));
  EXPECT_FALSE(Announces([&] { mChunk->EraseEvent(ControllerAt(Ticks(5), 8, 1)); }));
}

TEST_F(Vrad_Chunk_Undo, AChangeOfTheCompositionIsAnnounced) {
  EXPECT_TRUE(Announces([&] { mChunk->AddEvent(ControllerAt(Ticks(3), 8, 2)); }));
  EXPECT_TRUE(Announces([&] { mChunk->EraseEvent(ControllerAt(Ticks(5), 7, 1)); }));
  EXPECT_TRUE(Announces([&] { mChunk->Clear(); }));
  EXPECT_TRUE(Announces([&] { mChunk->IsEventInChunk(ControllerAt(Ticks(3), 8, 2)); }));
}

TEST_F(Vrad_Chunk_Undo, SettersAnnounceAnEqualValueToo) {
  EXPECT_TRUE(Announces([&] { mChunk->SetUID(mChunk->GetUID()); }));
  EXPECT_TRUE(Announces([&] { mChunk->SetIsLocal(true); }));
}

TEST_F(Vrad_Chunk_Undo, ARefusedNoteListIsNotAnnounced) {
  EXPECT_FALSE(Announces([&] {
    Ndo_AutoPtr<Vrad_NoteListBase> listP(new Vrad_NoteList(Ndo_Object::kNotUndoable, false));
    EXPECT_THROW(mChunk->SetNoteList(std::move(listP)), Cmn_AssertException);
  }));
}

TEST_F(Vrad_Chunk_Undo, WithoutStreamsClearAndReplaceDataLeaveTheChunkOut) {
  mChunk->EraseEvent(ControllerAt(Ticks(5), 7, 1));
  ChunkPtr const source = MakeChunk();
  EXPECT_FALSE(Announces([&] { mChunk->Clear(); }));
  EXPECT_FALSE(Announces([&] { mChunk->ReplaceData(source.Get()); }));
}

TEST_F(Vrad_Chunk_Undo, StoringTheCacheIsNotAnnounced) {
  EXPECT_FALSE(Announces([&] { mChunk->StoreSortedEventList(new Vrad_DisplayItemList); }));
}

TEST_F(Vrad_Chunk_Undo, ADeletedChunkComesBackWithItsStores) {
  std::string const before = Contents();
  Ndo_Transaction transaction;
  Vrad_Chunk * const chunkP = mChunk.Release();
  long long const id = chunkP->NdoGetID();
  chunkP->NdoDelete();
  EXPECT_TRUE(transaction.End());
  EXPECT_TRUE(Ndo_gManager.IsKept(id));
  EXPECT_TRUE(Ndo_gManager.Undo());
  EXPECT_FALSE(Ndo_gManager.IsKept(id));
  EXPECT_EQ(PrintContents(*chunkP), before);
  mChunk = ChunkPtr(chunkP);
}

TEST_F(Vrad_Chunk_Undo, ADroppedChunkTakesItsStoresAlong) {
  long long const listID = mChunk->GetNoteList()->NdoGetID();
  long long const streamID = mChunk->GetContinuousList()[0].mCachedID;
  long long const miscID = mChunk->GetEventStream()->NdoGetID();
  mChunk.Release()->NdoDelete();
  Ndo_gManager.ClearHistory();
  Ndo_gManager.DropUnreferenced();
  for (long long const id : {listID, streamID, miscID})
    EXPECT_EQ(Ndo_gManager.LookupObject(id), nullptr);
}

TEST_F(Vrad_Chunk_Undo, AReCreatedChunkHasItsStoresAndQuantizesNoMore) {
  ChunkPtr chunk = MakeChunk(Ndo_Object::kUndoable, true);
  chunk->AddEvent(NoteAt(Ticks(0), 60));
  chunk->AddEvent(ControllerAt(Ticks(5), 7, 1));
  chunk->SetIsLocal(false);
  Sys_Umid const id = chunk->GetUID();
  long long const undoID = chunk->NdoGetID();
  std::string const before = PrintContents(*chunk.Get());
  std::unique_ptr<Ndo_State> const stateP(chunk->NdoGetState());
  delete chunk.Release();

  ChunkPtr const again(dynamic_cast<Vrad_Chunk *>(Ndo_gManager.ReCreate(stateP.get(), undoID)));
  ASSERT_NE(again.Get(), nullptr);
  EXPECT_EQ(PrintContents(*again.Get()), before);
  EXPECT_EQ(again->GetUID(), id);
  EXPECT_FALSE(again->IsLocal());
  EXPECT_TRUE(again->NdoIsUndoable());
  EXPECT_FALSE(again->QuantizeContents());
}

TEST_F(Vrad_Chunk_Undo, AShellHasNoStores) {
  std::unique_ptr<Ndo_State> const stateP(mChunk->NdoGetState());
  std::unique_ptr<Ndo_Object> const objectP(stateP->NdoReCreate());
  Vrad_Chunk const & shell = dynamic_cast<Vrad_Chunk const &>(*objectP);
  EXPECT_EQ(shell.GetNoteList(), nullptr);
  EXPECT_EQ(shell.GetEventStream(), nullptr);
  EXPECT_TRUE(shell.GetContinuousList().empty());
  EXPECT_EQ(shell.GetUID(), Sys_Umid());
  EXPECT_TRUE(shell.IsLocal());
  EXPECT_FALSE(shell.QuantizeContents());
  EXPECT_FALSE(shell.NdoIsUndoable());
}

TEST_F(Vrad_Chunk_Undo, RestoringFindsTheStoresByTheirIdentifiers) {
  std::unique_ptr<Ndo_State> const stateP(mChunk->NdoGetState());
  std::string const before = Contents();
  std::unique_ptr<Ndo_Object> const objectP(stateP->NdoReCreate());
  Vrad_Chunk & shell = dynamic_cast<Vrad_Chunk &>(*objectP);
  shell.NdoRestoreState(stateP.get());
  EXPECT_EQ(shell.GetNoteList(), mChunk->GetNoteList());
  EXPECT_EQ(shell.GetEventStream(), mChunk->GetEventStream());
  EXPECT_EQ(shell.GetContinuousList()[0].mCachedID, mChunk->GetContinuousList()[0].mCachedID);
  EXPECT_EQ(shell.GetUID(), mChunk->GetUID());
  EXPECT_EQ(PrintContents(shell), before);
}

// The last value is erased outside of any step, so that the next step drops the stream for good.
TEST_F(Vrad_Chunk_Undo, RestoringLeavesOutAStreamThatIsGone) {
  mChunk->AddEvent(ControllerAt(Ticks(5), 10, 2));
  Ndo_Transaction first;
  mChunk->SetIsLocal(false);
  first.End();
  mChunk->EraseEvent(ControllerAt(Ticks(5), 7, 1));
  Ndo_Transaction second;
  mChunk->AddEvent(NoteAt(Ticks(1), 61));
  second.End();
  EXPECT_TRUE(Ndo_gManager.Undo());
  EXPECT_TRUE(Ndo_gManager.Undo());
  EXPECT_TRUE(mChunk->IsLocal());
  EXPECT_EQ(Contents(), "notes n60@0t+480t / stream 10 c10=2@5t / misc x5@9t");
  mChunk->AddEvent(ControllerAt(Ticks(6), 7, 3));
  EXPECT_EQ(Contents(), "notes n60@0t+480t / stream 7 c7=3@6t / stream 10 c10=2@5t / misc x5@9t");
}

TEST_F(Vrad_Chunk_Undo, RestoringKeepsTheCache) {
  std::unique_ptr<Ndo_State> const stateP(mChunk->NdoGetState());
  Vrad_DisplayItemList * const listP = new Vrad_DisplayItemList;
  mChunk->StoreSortedEventList(listP);
  mChunk->NdoRestoreState(stateP.get());
  EXPECT_EQ(mChunk->GetSortedEventList(), listP);
}

TEST_F(Vrad_Chunk_Undo, AStateOfAnotherClassThrowsAndChangesNothing) {
  Cmn_AssertRecorder const recorder;
  UndoTestObject other;
  std::unique_ptr<Ndo_State> const stateP(other.NdoGetState());
  std::string const before = Contents();
  EXPECT_THROW(mChunk->NdoRestoreState(stateP.get()), Cmn_AssertException);
  ASSERT_EQ(recorder.GetNum("p"), 1);
  EXPECT_TRUE(recorder.GetEntries()[0].mFlag);
  EXPECT_TRUE(recorder.GetEntries()[0].mThrowing);
  ThrowingOff const off;
  mChunk->NdoRestoreState(stateP.get());
  mChunk->NdoRestoreState(nullptr);
  EXPECT_EQ(recorder.GetNum("p"), 3);
  EXPECT_EQ(Contents(), before);
}

TEST_F(Vrad_Chunk_Undo, TheStateOfAChunkThatIsNotUndoableThrows) {
  Cmn_AssertRecorder const recorder;
  ChunkPtr const chunk = MakeChunk(Ndo_Object::kNotUndoable);
  EXPECT_THROW(chunk->NdoGetState(), Cmn_AssertException);
  ASSERT_EQ(recorder.GetNum(kNoIDText), 1);
  EXPECT_FALSE(recorder.GetEntries()[0].mFlag);
  EXPECT_TRUE(recorder.GetEntries()[0].mThrowing);
}

TEST_F(Vrad_Chunk_Undo, WithThrowingOffSuchAStateNamesNoStore) {
  ThrowingOff const off;
  Cmn_AssertRecorder const recorder;
  ChunkPtr const chunk = MakeChunk(Ndo_Object::kNotUndoable);
  chunk->AddEvent(ControllerAt(Ticks(0), 7, 1));
  std::unique_ptr<Ndo_State> const stateP(chunk->NdoGetState());
  EXPECT_EQ(recorder.GetNum(kNoIDText), 3);
  std::unique_ptr<Ndo_Object> const objectP(stateP->NdoReCreate());
  objectP->NdoRestoreState(stateP.get());
  Vrad_Chunk const & shell = dynamic_cast<Vrad_Chunk const &>(*objectP);
  EXPECT_EQ(shell.GetNoteList(), nullptr);
  EXPECT_EQ(shell.GetEventStream(), nullptr);
}
