// What a chunk says about itself, for inspection: as a tree and as text. Neither is read back.
#include "vrad/vrad_chunk.h"

Cmn_XMLNodePtr Vrad_Chunk::GetAsXML() const {
  Cmn_XMLNodePtr const node = Cmn_CreateXMLNode("MIDI_Chunk");
  if (mNoteListP) node->AddChild(mNoteListP->GetAsXML());
  node->AddChild(Cmn_CreateXMLNode("NumContinuousControllerDataStreams",
                                   static_cast<int>(mContinuousList.size())));
  node->AddChild(Cmn_CreateXMLNode("UID", mUID.AsHexString()));
  return node;
}

// Nothing else in the text says "none", so that it can be searched for.
std::string Vrad_Chunk::PrintContents() const {
  std::string text = "Notes: " + (mNoteListP ? mNoteListP->PrintNotes() : "\n");
  for (Ndo_Ptr<Vrad_ContinuousDataStream> const & streamP : mContinuousList)
    text += streamP->PrintContents();
  text += "Sorted list: ";
  text += mSortedEventListP ? std::to_string(mSortedEventListP->size()) : "none";
  return text + "\n";
}
