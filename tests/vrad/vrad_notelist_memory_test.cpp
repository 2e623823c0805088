// Edits of many notes when memory runs out half way: the first allocation fails, then the second,
// until an edit passes untouched.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "ndo/ndo_manager.h"
#include "support/counting_heap.h"
#include "support/vrad_notes.h"
#include "vrad/vrad_notelist.h"

namespace {

constexpr int kNumNotes = 200;

// Every other note is long, every third one of an own pitch; the added ones lie between.
std::unique_ptr<Vrad_NoteList> NewList(int iFirstTick) {
  auto listP = std::make_unique<Vrad_NoteList>(Ndo_Object::kUndoable, false);
  listP->SetLongNoteDuration(TickLength(50));
  for (int i = 0; i < kNumNotes; ++i)
    AddNote(*listP, 60 + i % 3, iFirstTick + 10 * i, i % 2 == 0 ? 60 : 20);
  return listP;
}

void ExpectSorted(Vrad_NoteListBase & iList) {
  Time_Typed last = iList.TimeOfFirstNote();
  unsigned long long num = 0;
  for (Vrad_NoteListBase::FullNotesInRangeIter iter(&iList); iter.IsMore(); ++iter, ++num) {
    EXPECT_FALSE((*iter).mTime < last);
    last = (*iter).mTime;
  }
  EXPECT_EQ(iList.Size(), num);
}

class Vrad_NoteList_OutOfMemory : public testing::Test {
protected:
  typedef std::function<void(Vrad_NoteList & ioList, Vrad_NoteList & ioOther)> Edit;

  ~Vrad_NoteList_OutOfMemory() override { gAvoidOverlapsAndDuplicates = false; }

  // Each allocation fails in turn, once inside a transaction and once outside.
  static void FailAtEach(Edit const & iEdit) {
    bool failsInside = true;
    bool failsOutside = true;
    int num = 0;
    for (; failsInside || failsOutside; ++num) {
      ASSERT_LT(num, 5000);
      failsInside = FailsAndIsTakenBack(num, iEdit);
      failsOutside = FailsAndLeavesAllOrNothing(num, iEdit);
    }
    EXPECT_GT(num, 1) << "the edit takes no memory";
  }

  static bool FailsAndIsTakenBack(int iNumAllocations, Edit const & iEdit) {
    auto const listP = NewList(0), otherP = NewList(5), beforeP = NewList(0);
    Ndo_gManager.BeginTransaction();
    bool const fails = RunsOutOfMemory(iNumAllocations, [&] { iEdit(*listP, *otherP); });
    ExpectSorted(*listP);
    ExpectSorted(*listP->GetLongNoteList());
    Ndo_gManager.AbortTransaction();
    EXPECT_TRUE(*listP == *beforeP) << "at allocation " << iNumAllocations;
    EXPECT_TRUE(*listP->GetLongNoteList() == *beforeP->GetLongNoteList())
        << "at allocation " << iNumAllocations;
    return fails;
  }

  static bool FailsAndLeavesAllOrNothing(int iNumAllocations, Edit const & iEdit) {
    auto const listP = NewList(0), otherP = NewList(5), beforeP = NewList(0);
    auto const doneP = NewList(0), doneOtherP = NewList(5);
    iEdit(*doneP, *doneOtherP);
    bool const fails = RunsOutOfMemory(iNumAllocations, [&] { iEdit(*listP, *otherP); });
    EXPECT_TRUE(*listP == *doneP || (fails && *listP == *beforeP))
        << "at allocation " << iNumAllocations << ": " << Print(*listP);
    ExpectSorted(*listP->GetLongNoteList());
    return fails;
  }
};

}  // namespace

TEST_F(Vrad_NoteList_OutOfMemory, InAPlainMerge) {
  FailAtEach([](Vrad_NoteList & ioList, Vrad_NoteList & ioOther) { ioList.Merge(&ioOther); });
}

TEST_F(Vrad_NoteList_OutOfMemory, InAPlainMergeThatMakesTheLongNotesAnew) {
  FailAtEach([](Vrad_NoteList & ioList, Vrad_NoteList & ioOther) {
    ioOther.SetLongNoteDuration(TickLength(51));
    ioList.Merge(&ioOther);
  });
}

TEST_F(Vrad_NoteList_OutOfMemory, InAnAvoidingMerge) {
  gAvoidOverlapsAndDuplicates = true;
  FailAtEach([](Vrad_NoteList & ioList, Vrad_NoteList & ioOther) { ioList.Merge(&ioOther); });
}

TEST_F(Vrad_NoteList_OutOfMemory, InAnAvoidingMergeOfMixedUnits) {
  gAvoidOverlapsAndDuplicates = true;
  FailAtEach([](Vrad_NoteList & ioList, Vrad_NoteList & ioOther) {
    ioOther.OffsetDurations(SampleLength(1));
    ioOther.AddNote(Vrad_NoteListBase_Note(SampleTime(7), NoteEvent(60, SampleLength(2))));
    ioList.Merge(&ioOther);
  });
}

TEST_F(Vrad_NoteList_OutOfMemory, InAnErasure) {
  FailAtEach([](Vrad_NoteList & ioList, Vrad_NoteList & ioOther) {
    ioOther.OffsetTimes(TickLength(25));
    ioList.Erase(&ioOther);
  });
}

TEST_F(Vrad_NoteList_OutOfMemory, InErasingARange) {
  FailAtEach([](Vrad_NoteList & ioList, Vrad_NoteList &) {
    ioList.EraseTimeRange(TickTime(105), TickTime(2015));
  });
}

TEST_F(Vrad_NoteList_OutOfMemory, InErasingAShortRange) {
  FailAtEach([](Vrad_NoteList & ioList, Vrad_NoteList &) {
    Vrad_NoteListBase const shares(ioList);
    ioList.EraseTimeRange(TickTime(105), TickTime(125));
  });
}

TEST_F(Vrad_NoteList_OutOfMemory, InTheMovingOfTimes) {
  FailAtEach([](Vrad_NoteList & ioList, Vrad_NoteList &) {
    Vrad_NoteListBase const shares(ioList);
    ioList.OffsetTimes(TickLength(7));
  });
}

TEST_F(Vrad_NoteList_OutOfMemory, InTheMovingOfStarts) {
  FailAtEach([](Vrad_NoteList & ioList, Vrad_NoteList &) {
    Vrad_NoteListBase const shares(ioList);
    ioList.OffsetStarts(TickLength(7));
  });
}

TEST_F(Vrad_NoteList_OutOfMemory, InTheMovingOfDurations) {
  FailAtEach([](Vrad_NoteList & ioList, Vrad_NoteList &) {
    Vrad_NoteListBase const shares(ioList);
    ioList.OffsetDurations(TickLength(-30));
  });
}

TEST_F(Vrad_NoteList_OutOfMemory, InTheMovingOfPitches) {
  FailAtEach([](Vrad_NoteList & ioList, Vrad_NoteList &) {
    Vrad_NoteListBase const shares(ioList);
    ioList.OffsetPitches(TickLength(1));
  });
}

// The target is emptied first, so it may stay empty.
TEST_F(Vrad_NoteList_OutOfMemory, InCopyingARange) {
  for (int num = 0; num < 5000; ++num) {
    auto const listP = NewList(0), targetP = NewList(5), sourceP = NewList(0), beforeP = NewList(5);
    Ndo_gManager.BeginTransaction();
    bool const fails = RunsOutOfMemory(
        num, [&] { listP->CopyTimeRange(targetP.get(), TickTime(105), TickTime(2015)); });
    EXPECT_TRUE(*listP == *sourceP);
    ExpectSorted(*targetP);
    Ndo_gManager.AbortTransaction();
    EXPECT_TRUE(*targetP == *beforeP);
    EXPECT_TRUE(*targetP->GetLongNoteList() == *beforeP->GetLongNoteList());
    if (!fails) return;
  }
  FAIL() << "never passes";
}
