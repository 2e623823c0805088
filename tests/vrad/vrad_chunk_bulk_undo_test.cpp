// What bulk edits announce, and that each comes back whole.
#include <gtest/gtest.h>

#include <string>

#include "cmn/cmn_assert.h"
#include "ndo/ndo_manager.h"
#include "support/chunk_samples.h"
#include "support/undo_testobject.h"
#include "vrad/vrad_chunk.h"

namespace {

class Vrad_Chunk_BulkUndo : public UndoTest {
protected:
  Vrad_Chunk_BulkUndo()
      : mChunk(MakeChunk(Ndo_Object::kUndoable)), mSource(MakeChunk(Ndo_Object::kUndoable)) {
    for (Vrad_Chunk * const chunkP : {mChunk.Get(), mSource.Get()}) {
      chunkP->AddEvent(NoteAt(Ticks(10), 60));
      chunkP->AddEvent(ControllerAt(Ticks(20), 7, 1));
      chunkP->AddEvent(SysexAt(Ticks(30), 5));
    }
    mSource->AddEvent(ControllerAt(Ticks(20), 9, 1));
  }

  void Add(long long iStart, long long iEnd, long long iOffset, EMidiNudgeMode iMode) {
    mChunk->AddEventsFromChunk(mSource.Get(), Ticks(iStart), Ticks(iEnd), Time_TickLength(iOffset),
                               iMode);
  }
  void Erase(long long iStart, long long iEnd, long long iOffset) {
    mChunk->EraseEventsFromChunk(mSource.Get(), Ticks(iStart), Ticks(iEnd),
                                 Time_TickLength(iOffset));
  }

  // Which of chunk, notes, streams and misc announce: "chunk notes data misc", each left out if
  // not.
  template <class F>
  std::string Announced(F iEdit) {
    Ndo_Manager & manager = Ndo_gManager;
    long long const dataID = mChunk->GetContinuousList()[0]->GetDataID();
    manager.BeginTransaction();
    iEdit();
    std::string text;
    if (manager.HasAnnounced(mChunk->NdoGetID())) text += "chunk ";
    if (manager.HasAnnounced(mChunk->GetNoteList()->NdoGetID())) text += "notes ";
    if (manager.HasAnnounced(dataID)) text += "data ";
    if (manager.HasAnnounced(mChunk->GetEventStream()->NdoGetID())) text += "misc ";
    if (manager.HasAnnounced(mSource->GetNoteList()->NdoGetID())) text += "source ";
    manager.AbortTransaction();
    return text;
  }

  template <class F>
  void ExpectUndoAndRedo(F iEdit) {
    std::string const before = Contents();
    Ndo_Transaction transaction("edit");
    iEdit();
    EXPECT_TRUE(transaction.End());
    std::string const after = Contents();
    EXPECT_NE(after, before);
    for (int i = 0; i < 2; ++i) {
      EXPECT_TRUE(Ndo_gManager.Undo());
      EXPECT_EQ(Contents(), before);
      EXPECT_EQ(Ndo_gManager.GetNumUndoSteps(), 0);
      EXPECT_TRUE(Ndo_gManager.Redo());
      EXPECT_EQ(Contents(), after);
    }
  }

  // Long notes along with what is printed.
  std::string Contents() const {
    return PrintContents(*mChunk.Get()) + " / long " +
           std::to_string(mChunk->GetNoteList()->GetLongNoteList()->Size());
  }

  ChunkPtr mChunk, mSource;
};

}  // namespace

TEST_F(Vrad_Chunk_BulkUndo, OfAddEventsFromChunk) {
  mSource->AddEvent(NoteAt(Ticks(5), 50, 20000000));
  ExpectUndoAndRedo([&] { Add(0, 100, 7, kNudgeTimes); });
}

TEST_F(Vrad_Chunk_BulkUndo, OfAddEventsFromChunkThatAvoidsOverlaps) {
  gAvoidOverlapsAndDuplicates = true;
  ExpectUndoAndRedo([&] { Add(0, 100, 7, kNudgeTimes); });
  gAvoidOverlapsAndDuplicates = false;
}

TEST_F(Vrad_Chunk_BulkUndo, OfAddEventsFromChunkInEachMode) {
  for (int mode = 0; mode < 4; ++mode) {
    Ndo_gManager.ClearHistory();
    ExpectUndoAndRedo([&] { Add(0, 100, 7, static_cast<EMidiNudgeMode>(mode)); });
  }
}

TEST_F(Vrad_Chunk_BulkUndo, OfEraseEventsFromChunk) {
  ExpectUndoAndRedo([&] { Erase(0, 100, 0); });
}

TEST_F(Vrad_Chunk_BulkUndo, OfEraseRange) {
  ExpectUndoAndRedo([&] { mChunk->EraseRange(Ticks(0), Ticks(100)); });
}

TEST_F(Vrad_Chunk_BulkUndo, OfEraseSubStream) {
  ExpectUndoAndRedo(
      [&] { mChunk->EraseSubStream(Vrae_SubStream::Controller(7), Ticks(0), Ticks(100)); });
}

TEST_F(Vrad_Chunk_BulkUndo, OfMoveNotesForLegacyPlayback) {
  mChunk->AddEvent(NoteAt(Ticks(5100), 50, 20000000));
  ExpectUndoAndRedo([&] { mChunk->MoveNotesForLegacyPlayback(Time_TickLength(7)); });
}

TEST_F(Vrad_Chunk_BulkUndo, AbortTakesAnEditBack) {
  std::string const before = Contents();
  Ndo_gManager.BeginTransaction();
  mChunk->EraseRange(Ticks(0), Ticks(100));
  Ndo_gManager.AbortTransaction();
  EXPECT_EQ(Contents(), before);
}

TEST_F(Vrad_Chunk_BulkUndo, AddEventsFromChunkAnnouncesTheStoresThatTakeSomething) {
  EXPECT_EQ(Announced([&] { Add(10, 11, 0, kNudgeTimes); }), "notes ");
  EXPECT_EQ(Announced([&] { Add(30, 31, 0, kNudgeTimes); }), "misc ");
}

TEST_F(Vrad_Chunk_BulkUndo, AddEventsFromChunkAnnouncesTheChunkForANewStreamAlone) {
  EXPECT_EQ(Announced([&] { Add(20, 21, 0, kNudgeTimes); }), "chunk data ");
  mChunk->AddEvent(ControllerAt(Ticks(20), 9, 1));
  EXPECT_EQ(Announced([&] { Add(20, 21, 0, kNudgeTimes); }), "data ");
}

TEST_F(Vrad_Chunk_BulkUndo, AddEventsFromChunkOfAnEmptyRangeAnnouncesNothing) {
  EXPECT_EQ(Announced([&] { Add(50, 60, 1, kNudgeTimes); }), "");
}

// The notes in between, copied and moved, are no object of the step.
TEST_F(Vrad_Chunk_BulkUndo, EditsOfNotesAnnounceTheNoteListAlone) {
  Ndo_gManager.BeginTransaction();
  Add(10, 11, 5, kNudgeTimes);
  Erase(10, 11, 5);
  EXPECT_EQ(Ndo_gManager.GetNumAnnounced(), 1);
  Ndo_gManager.EndTransaction();
}

TEST_F(Vrad_Chunk_BulkUndo, EditsOfAnEmptyRangeLeaveNoStep) {
  for (long long const offset : {0, 5}) {
    Ndo_gManager.BeginTransaction();
    Add(50, 60, offset, kNudgeTimes);
    Erase(50, 60, offset);
    EXPECT_FALSE(Ndo_gManager.EndTransaction());
  }
}

TEST_F(Vrad_Chunk_BulkUndo, EraseEventsFromChunkAnnouncesWithoutAMatchToo) {
  EXPECT_EQ(Announced([&] { Erase(10, 11, 1); }), "notes ");
  EXPECT_EQ(Announced([&] { Erase(20, 21, 1); }), "data ");
  EXPECT_EQ(Announced([&] { Erase(30, 31, 1); }), "misc ");
}

TEST_F(Vrad_Chunk_BulkUndo, EraseEventsFromChunkAnnouncesTheChunkForARemovedStream) {
  EXPECT_EQ(Announced([&] { Erase(20, 21, 0); }), "chunk data ");
}

TEST_F(Vrad_Chunk_BulkUndo, EraseEventsFromChunkOfAnEmptyRangeAnnouncesNothing) {
  EXPECT_EQ(Announced([&] { Erase(50, 60, 0); }), "");
}

TEST_F(Vrad_Chunk_BulkUndo, EraseRangeAnnouncesOnlyWhatLosesSomething) {
  EXPECT_EQ(Announced([&] { mChunk->EraseRange(Ticks(11), Ticks(20)); }), "");
  EXPECT_EQ(Announced([&] { mChunk->EraseRange(Ticks(10), Ticks(11)); }), "notes ");
  EXPECT_EQ(Announced([&] { mChunk->EraseRange(Ticks(11), Ticks(30)); }), "chunk data misc ");
}

TEST_F(Vrad_Chunk_BulkUndo, EraseSubStreamAnnouncesOnlyIfSomethingGoes) {
  Vrae_SubStream const volume = Vrae_SubStream::Controller(7);
  EXPECT_EQ(Announced([&] { mChunk->EraseSubStream(volume, Ticks(21), Ticks(90)); }), "");
  EXPECT_EQ(Announced([&] { mChunk->EraseSubStream(volume, Ticks(20), Ticks(90)); }),
            "chunk data ");
}

TEST_F(Vrad_Chunk_BulkUndo, RemovedStreamIsKeptByTheManager) {
  long long const id = mChunk->GetContinuousList()[0]->NdoGetID();
  Ndo_Transaction transaction;
  mChunk->EraseRange(Ticks(0), Ticks(100));
  EXPECT_TRUE(Ndo_gManager.IsKept(id));
  transaction.End();
}

TEST_F(Vrad_Chunk_BulkUndo, AddClipBoundaryAnnouncesNothing) {
  EXPECT_EQ(Announced([&] { mChunk->AddClipBoundary(5); }), "");
}

TEST_F(Vrad_Chunk_BulkUndo, MoveNotesForLegacyPlaybackAnnouncesTheNotesAlone) {
  EXPECT_EQ(Announced([&] { mChunk->MoveNotesForLegacyPlayback(Time_TickLength(0)); }), "notes ");
}
