// Bulk edits and recording with each of their requests for memory refused in turn: what is left is
// a chunk in order, and aborting the transaction brings back what was there.
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

#include "ndo/ndo_manager.h"
#include "support/chunk_samples.h"
#include "support/edit_scopes.h"
#include "support/refusing_heap.h"
#include "support/undo_testobject.h"
#include "vrad/vrad_chunk.h"
#include "vrad/vrad_chunkref.h"

namespace {

void Fill(Vrad_Chunk & ioChunk, long long iStep) {
  for (int i = 0; i < 10; ++i) {
    ioChunk.AddEvent(NoteAt(Ticks(i * iStep), 60 + i % 4, i % 5 == 0 ? 20000000 : 700));
    ioChunk.AddEvent(ControllerAt(Ticks(i * iStep), 1 + i % 3, i));
    ioChunk.AddEvent(SysexAt(Ticks(i * iStep), i % 2));
  }
}

// All that an owner may rely on: times in order, streams in order, a cache only if it fits.
void ExpectInOrder(Vrad_Chunk & ioChunk) {
  Vrae_TimedEvent former(Time_Typed::MinTime(Time_eType_Ticks), Vrae_Event());
  for (Vrad_NoteListBase::FullNotesInRangeIter iter(ioChunk.GetNoteList()); iter.IsMore(); ++iter) {
    EXPECT_FALSE((*iter).mTime < former.mTime);
    former.mTime = (*iter).mTime;
  }
  int index = -1;
  for (auto const & streamP : ioChunk.GetContinuousList()) {
    EXPECT_GT(streamP->GetSubStream().GetIndex(), index);
    index = streamP->GetSubStream().GetIndex();
  }
  EXPECT_EQ(ioChunk.GetSortedEventList(), nullptr);
}

struct Edit {
  char const * mName;
  std::function<void(Vrad_Chunk &, Vrad_Chunk const &)> mApply;
};
void PrintTo(Edit const & iEdit, std::ostream * oStream) {
  *oStream << iEdit.mName;
}

Edit const kEdits[] = {
    {"add",
     [](Vrad_Chunk & ioChunk, Vrad_Chunk const & iSource) {
       ioChunk.AddEventsFromChunk(&iSource, Ticks(0), Ticks(9999), Time_TickLength(30),
                                  kNudgeTimes);
     }},
    {"add, avoiding overlaps",
     [](Vrad_Chunk & ioChunk, Vrad_Chunk const & iSource) {
       AvoidOverlapsScope const scope;
       ioChunk.AddEventsFromChunk(&iSource, Ticks(0), Ticks(9999), Time_TickLength(30),
                                  kNudgeStarts);
     }},
    {"erase",
     [](Vrad_Chunk & ioChunk, Vrad_Chunk const & iSource) {
       ioChunk.EraseEventsFromChunk(&iSource, Ticks(0), Ticks(9999), Time_TickLength(0));
     }},
    {"erase a range",
     [](Vrad_Chunk & ioChunk, Vrad_Chunk const &) { ioChunk.EraseRange(Ticks(150), Ticks(9999)); }},
    {"erase a sub-stream",
     [](Vrad_Chunk & ioChunk, Vrad_Chunk const &) {
       ioChunk.EraseSubStream(Vrae_SubStream::Controller(2), Ticks(0), Ticks(9999));
     }},
    {"move", [](Vrad_Chunk & ioChunk,
                Vrad_Chunk const &) { ioChunk.MoveNotesForLegacyPlayback(Time_TickLength(70)); }},
    {"shift", [](Vrad_Chunk & ioChunk,
                 Vrad_Chunk const &) { ioChunk.QuantizeEventsForTTM(Time_TickLength(70)); }},
};

// The chunks of one attempt.
struct Pair {
  Pair() : mChunk(MakeChunk(Ndo_Object::kUndoable)), mSource(MakeChunk()) {
    Fill(*mChunk.Get(), 100);
    Fill(*mSource.Get(), 200);
    mSource->AddEvent(BendAt(Ticks(3), 9));
  }
  ChunkPtr mChunk, mSource;
};

// Those that undo takes back as a whole come first.
constexpr int kNumUndone = 6;

class Vrad_Chunk_BulkMemory : public UndoTest, public testing::WithParamInterface<Edit> {
protected:
  static void Apply(Pair const & iPair) {
    GetParam().mApply(*iPair.mChunk.Get(), *iPair.mSource.Get());
  }
};

class Vrad_Chunk_BulkMemoryUndone : public Vrad_Chunk_BulkMemory {};

std::string AfterPassing(Edit const & iEdit) {
  Pair pair;
  iEdit.mApply(*pair.mChunk.Get(), *pair.mSource.Get());
  return PrintContents(*pair.mChunk.Get());
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Edits, Vrad_Chunk_BulkMemory, testing::ValuesIn(kEdits));
INSTANTIATE_TEST_SUITE_P(Edits, Vrad_Chunk_BulkMemoryUndone,
                         testing::ValuesIn(kEdits, kEdits + kNumUndone));

TEST_P(Vrad_Chunk_BulkMemory, EveryRefusalLeavesAChunkInOrder) {
  std::string const expected = AfterPassing(GetParam());
  int num = 0;
  for (bool isRefused = true; isRefused; ++num) {
    Pair pair;
    pair.mChunk->StoreSortedEventList(new Vrad_DisplayItemList);
    Ndo_gManager.BeginTransaction();
    isRefused = refusing_heap::IsRefusedAfter(num, [&] { Apply(pair); });
    Ndo_gManager.EndTransaction();
    ExpectInOrder(*pair.mChunk.Get());
    if (!isRefused) {
      EXPECT_EQ(PrintContents(*pair.mChunk.Get()), expected);
      continue;
    }
    // It goes on serving.
    pair.mChunk->Clear();
    EXPECT_EQ(PrintContents(*pair.mChunk.Get()), "notes / misc");
    Apply(pair);
  }
  EXPECT_GT(num, 3);
}

TEST_P(Vrad_Chunk_BulkMemory, EveryRefusalLeavesTheSourceAsItWas) {
  Pair const pristine;
  for (int num = 0, isRefused = 1; isRefused; ++num) {
    Pair pair;
    isRefused = refusing_heap::IsRefusedAfter(num, [&] { Apply(pair); });
    EXPECT_EQ(PrintContents(*pair.mSource.Get()), PrintContents(*pristine.mSource.Get()));
  }
}

TEST_P(Vrad_Chunk_BulkMemoryUndone, EveryRefusalIsTakenBackByAborting) {
  for (int num = 0, isRefused = 1; isRefused; ++num) {
    Pair pair;
    std::string const before = PrintContents(*pair.mChunk.Get());
    Ndo_gManager.BeginTransaction();
    isRefused = refusing_heap::IsRefusedAfter(num, [&] { Apply(pair); });
    Ndo_gManager.AbortTransaction();
    EXPECT_EQ(PrintContents(*pair.mChunk.Get()), before) << "after " << num << " requests";
  }
}

// A host may as well end the transaction and undo it.
TEST_P(Vrad_Chunk_BulkMemoryUndone, EveryRefusalIsTakenBackByUndo) {
  for (int num = 0, isRefused = 1; isRefused; ++num) {
    Pair pair;
    std::string const before = PrintContents(*pair.mChunk.Get());
    Ndo_gManager.ClearHistory();
    Ndo_gManager.BeginTransaction();
    isRefused = refusing_heap::IsRefusedAfter(num, [&] { Apply(pair); });
    Ndo_gManager.EndTransaction();
    std::string const after = PrintContents(*pair.mChunk.Get());
    bool const isUndone = Ndo_gManager.Undo();
    EXPECT_EQ(PrintContents(*pair.mChunk.Get()), before) << "after " << num << " requests";
    EXPECT_EQ(Ndo_gManager.Redo(), isUndone);
    EXPECT_EQ(PrintContents(*pair.mChunk.Get()), after) << "after " << num << " requests";
  }
}

TEST(Vrad_ChunkRef_Memory, ARefusedHandleLeavesTheChunkToTheCaller) {
  ChunkPtr chunk = MakeChunk();
  EXPECT_TRUE(refusing_heap::IsRefusedAfter(0, [&] { Vrad_ChunkRef const ref(chunk.Get()); }));
  EXPECT_EQ(PrintContents(*chunk.Get()), "notes / misc");
}

TEST(Vrad_ChunkWriter_Memory, EveryRefusalLeavesAChunkInOrderThatGoesOnReceiving) {
  for (Vrad_ExtendedEvent const & event :
       {Vrad_ExtendedEvent(NoteAt(Ticks(150), 60, 20000000)), ControllerAt(Ticks(150), 9, 1),
        SysexAt(Ticks(150), 5)}) {
    for (int num = 0, isRefused = 1; isRefused; ++num) {
      Vrad_ChunkRef const ref(MakeChunk().Release());
      Fill(*ref, 100);
      Vrad_ChunkWriter writer;
      writer.SetChunkRef(ref);
      isRefused = refusing_heap::IsRefusedAfter(num, [&] { writer.ReceiveEvent(event); });
      ExpectInOrder(*ref);
      if (!isRefused) continue;
      writer.ReceiveEvent(event);
      EXPECT_TRUE(ref->IsEventInChunk(event)) << "after " << num << " requests";
    }
  }
}
