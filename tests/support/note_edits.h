// What tests of edits of many notes start from: two undoable lists and the switches as they are at
// start.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "ndo/ndo_manager.h"
#include "support/vrad_notes.h"
#include "vrad/vrad_notelist.h"

/// A list without a long note list that can be given one.
class AttachableList : public Vrad_NoteListBase {
public:
  explicit AttachableList(EUndoFlag iFlag = kNotUndoable) : Vrad_NoteListBase(iFlag, false) {}
  void Attach(Vrad_NoteListBase * iListP, long long iTicks, long long iSamples) {
    SetLongNoteList(Ndo_AutoPtr<Vrad_NoteListBase>(iListP), Time_TickLength(iTicks),
                    Time_SampleLength(iSamples));
  }
};

class NoteEditTest : public testing::Test {
protected:
  ~NoteEditTest() override {
    gAvoidOverlapsAndDuplicates = false;
    if (Ndo_gManager.IsRecording()) Ndo_gManager.AbortTransaction();
    Ndo_gManager.ClearHistory();
  }

  /// Makes notes of that many ticks long in both lists.
  void SetThresholds(long long iTicks) {
    mList.SetLongNoteDuration(TickLength(iTicks));
    mOther.SetLongNoteDuration(TickLength(iTicks));
  }

  static bool Do(std::function<void()> iEdit) {
    Ndo_gManager.BeginTransaction();
    iEdit();
    return Ndo_gManager.EndTransaction();
  }

  /// Who announces the edit: "list", "list long", "long", "other", "" for nobody.
  std::string Announced(std::function<void()> iEdit) {
    Ndo_gManager.BeginTransaction();
    iEdit();
    std::string result;
    auto const tell = [&result](char const * iName, long long iID) {
      if (Ndo_gManager.HasAnnounced(iID))
        result += (result.empty() ? "" : " ") + std::string(iName);
    };
    tell("list", mList.NdoGetID());
    tell("long", mList.GetLongNoteListID());
    tell("other", mOther.NdoGetID());
    tell("otherlong", mOther.GetLongNoteListID());
    Ndo_gManager.EndTransaction();
    return result;
  }

  Vrad_NoteList mList{Ndo_Object::kUndoable, false};
  Vrad_NoteList mOther{Ndo_Object::kUndoable, false};
};

/// Both lists, then what undo and redo make of them: "after; before; after".
inline std::string PrintUndoAndRedo(Vrad_NoteListBase & iList) {
  auto const both = [&iList] { return Print(iList) + " (" + PrintLongNotes(iList) + ")"; };
  std::string result = both();
  Ndo_gManager.Undo();
  result += "; " + both();
  Ndo_gManager.Redo();
  return result + "; " + both();
}
