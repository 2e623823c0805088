// What a note list says about itself, for inspection.
#include "vrad/vrad_notelist.h"

#include "vrad/vrad_dumptext.h"

namespace {

void AddNumber(Cmn_XMLNodePtr const & iParent, char const * iName, signed char iValue) {
  iParent->AddChild(Cmn_CreateXMLNode(iName, iValue));
}

Cmn_XMLNodePtr NodeOf(Vrad_NoteListBase_Note const & iNote) {
  Vrae_NoteWithDurationEvent const & event = iNote.mEvent;
  Vrae_NoteWithDurationEvent const & original = iNote.mOrigEvent;
  Cmn_XMLNodePtr const node = Cmn_CreateXMLNode("Note");
  node->AddChild(iNote.mTime.GetAsXML("Time"));
  AddNumber(node, "nPitch", event.GetPitch());
  node->AddChild(event.GetDuration().GetAsXML("Duration"));
  AddNumber(node, "nOnVel", event.GetOnVelocity());
  AddNumber(node, "nOffVel", event.GetOffVelocity());
  node->AddChild(iNote.mQuantizeTimeDelta.GetAsXML("QuantizeTimeDelta"));
  Time_TypedLength const delta = event.GetDuration() - original.GetDuration();
  node->AddChild(delta.GetAsXML("DurationDeltaFromOriginal"));
  AddNumber(node, "nOriginalPitch", original.GetPitch());
  node->AddChild(original.GetDuration().GetAsXML("OriginalDuration"));
  AddNumber(node, "nOriginalOnVel", original.GetOnVelocity());
  AddNumber(node, "nOriginalOffVel", original.GetOffVelocity());
  return node;
}

std::string LineOf(Vrad_NoteListBase_Note const & iNote) {
  Vrae_NoteWithDurationEvent const & event = iNote.mEvent;
  return "  " + Vrad_DumpText(iNote.mTime) + " pitch " + std::to_string(event.GetPitch()) +
         ", duration " + Vrad_DumpText(event.GetDuration()) + ", on " +
         std::to_string(event.GetOnVelocity()) + ", off " + std::to_string(event.GetOffVelocity()) +
         (iNote.mMuted ? ", muted" : "") + "\n";
}

}  // namespace

Cmn_XMLNodePtr Vrad_NoteListBase::GetAsXML() const {
  Cmn_XMLNodePtr const node = Cmn_CreateXMLNode("NoteList");
  node->AddChild(Cmn_CreateXMLNode("nNumNotes", mNotes.Size()));
  for (Vrad_NoteListBase_Note const & note : mNotes)
    node->AddChild(NodeOf(note));
  return node;
}

std::string Vrad_NoteListBase::PrintNotes() const {
  std::string text = std::to_string(mNotes.Size()) + "\n";
  for (Vrad_NoteListBase_Note const & note : mNotes)
    text += LineOf(note);
  return text;
}
