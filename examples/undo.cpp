// Builds a clip in two undoable steps, takes them back and brings one of them again.
#include <cstdio>

#include "vrad/vrad.h"

namespace {

void AddNote(Vrad_Chunk & ioChunk, Time_Typed iStart, signed char iPitch) {
  Vrae_NoteWithDurationEvent const note(iPitch, Time_TickLength(240000), 100, 64);
  ioChunk.AddEvent(Vrad_NoteWithDurationExtendedEvent(iStart, note, false));
}

void Print(char const * iWhen, Vrad_Chunk const & iChunk) {
  std::printf("%s: %llu notes", iWhen, iChunk.GetNoteList()->Size());
  std::printf(", %d to undo, %d to redo\n", Ndo_gManager.GetNumUndoSteps(),
              Ndo_gManager.GetNumRedoSteps());
}

}  // namespace

int main() {
  Ndo_AutoPtr<Vrad_Chunk> chunk(Vrad_Chunk::New(Ndo_Object::kUndoable, false));
  {
    Ndo_Transaction transaction("Enter a chord");
    AddNote(*chunk.Get(), Time_Tick(0), 60);
    AddNote(*chunk.Get(), Time_Tick(0), 64);
    transaction.End();
  }
  {
    Ndo_Transaction transaction("Add a note");
    AddNote(*chunk.Get(), Time_Tick(960000), 67);
    transaction.End();
  }
  Print("entered", *chunk.Get());

  Ndo_gManager.Undo();
  Ndo_gManager.Undo();
  Print("undone", *chunk.Get());

  std::printf("redo: %s\n", Ndo_gManager.GetRedoName().c_str());
  Ndo_gManager.Redo();
  Print("redone", *chunk.Get());
}
